// Calendar arithmetic in 64 bits, without the C library: the same on every word size and in every time zone.
#pragma once

#include <ctime>

#include <cstdint>

namespace velpki {

// Days from 1970-01-01 to a date of the proleptic Gregorian calendar. Months run from 0 to 11; any day will do.
constexpr int64_t days_of_date(int64_t year, int month, int64_t day) noexcept {
  // Years begin in March here, so that a leap day is the last of its year.
  const int64_t shifted = month < 2 ? year - 1 : year;
  const int64_t era = (shifted >= 0 ? shifted : shifted - 399) / 400;
  const int64_t year_of_era = shifted - era * 400;
  const int64_t day_of_year = (153 * ((month + 10) % 12) + 2) / 5 + day - 1;
  return era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year - 719468;
}
constexpr bool is_leap_year(int64_t year) noexcept { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }
constexpr int days_in_month(int64_t year, int month) noexcept {
  return int(days_of_date(month == 11 ? year + 1 : year, (month + 1) % 12, 1) - days_of_date(year, month, 1));
}

// Seconds since 1970 of the fields taken as UTC; fields beyond their range carry over, and the offset field is not
// looked at. False when the date that they make has a year that a `struct tm` cannot hold.
bool seconds_of_fields(const struct tm &fields, int64_t &seconds) noexcept;
// The instant that a time denotes: its fields less its own offset.
bool instant_of(const struct tm &time, int64_t &seconds) noexcept;
// The fields of an instant in UTC. False when the year does not fit; `out` is then unchanged.
bool fields_of_instant(int64_t seconds, struct tm &out) noexcept;

// What the comparing functions of the interface return: 1, 0, -1, and -1 where either side has no value.
constexpr int compare_instants(bool both_known, int64_t a, int64_t b) noexcept {
  if (!both_known) return -1;
  return (a > b) - (a < b);
}

}  // namespace velpki
