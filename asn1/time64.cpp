// Calendar functions in 64 bits: UTC by arithmetic, local time by the C library in the years where it can be trusted.
#include <velpki/time64.h>

#include <cassert>
#include <cerrno>
#include <climits>
#include <cstdio>

#include "asn1/internal/calendar.h"

namespace velpki {

namespace {

constexpr int64_t kSecondsPerDay = 86400;

constexpr int64_t floor_divide(int64_t a, int64_t b) noexcept { return a / b - (a % b < 0); }
constexpr bool fits_year_field(int64_t year) noexcept { return year - 1900 >= INT_MIN && year - 1900 <= INT_MAX; }

int64_t year_of(const struct tm &fields) noexcept { return 1900 + int64_t(fields.tm_year); }
void set_day_of_year(struct tm &fields) noexcept {
  const int64_t year = year_of(fields);
  fields.tm_yday = int(days_of_date(year, fields.tm_mon, fields.tm_mday) - days_of_date(year, 0, 1));
}

struct Date {
  int64_t year;
  int month, day;
};

Date date_of_days(int64_t days) noexcept {
  const int64_t shifted = days + 719468;
  const int64_t era = floor_divide(shifted, 146097);
  const int64_t day_of_era = shifted - era * 146097;
  const int64_t year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const int64_t day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int month_from_march = int((5 * day_of_year + 2) / 153);
  const int month = (month_from_march + 2) % 12;
  return {year_of_era + era * 400 + (month < 2), month, int(day_of_year - (153 * month_from_march + 2) / 5 + 1)};
}

}  // namespace

bool seconds_of_fields(const struct tm &fields, int64_t &seconds) noexcept {
  const int64_t years_in_months = floor_divide(fields.tm_mon, 12);
  const int64_t days =
      days_of_date(year_of(fields) + years_in_months, int(fields.tm_mon - 12 * years_in_months), fields.tm_mday);
  const int64_t total =
      days * kSecondsPerDay + int64_t(fields.tm_hour) * 3600 + int64_t(fields.tm_min) * 60 + fields.tm_sec;
  if (!fits_year_field(date_of_days(floor_divide(total, kSecondsPerDay)).year)) return false;
  seconds = total;
  return true;
}

bool instant_of(const struct tm &time, int64_t &seconds) noexcept {
  int64_t as_utc = 0;
  return seconds_of_fields(time, as_utc) && !__builtin_sub_overflow(as_utc, int64_t(time.tm_gmtoff), &seconds);
}

bool fields_of_instant(int64_t seconds, struct tm &out) noexcept {
  const int64_t days = floor_divide(seconds, kSecondsPerDay);
  const int second_of_day = int((seconds % kSecondsPerDay + kSecondsPerDay) % kSecondsPerDay);
  const Date date = date_of_days(days);
  if (!fits_year_field(date.year)) return false;
  out = {};
  out.tm_year = int(date.year - 1900);
  out.tm_mon = date.month;
  out.tm_mday = date.day;
  out.tm_hour = second_of_day / 3600;
  out.tm_min = second_of_day / 60 % 60;
  out.tm_sec = second_of_day % 60;
  out.tm_wday = int((days % 7 + 11) % 7);  // 1970-01-01 was a Thursday
  out.tm_zone = "GMT";
  set_day_of_year(out);
  return true;
}

namespace {

// A year that the C library knows with the same length and the same weekdays. The 28 years from 2010 on hold all 14
// kinds.
int64_t safe_year(int64_t year) noexcept {
  if (year >= 1971 && year <= 2037) return year;
  const auto weekday = [](int64_t y) { return floor_divide(days_of_date(y, 0, 1), 7) * 7 - days_of_date(y, 0, 1); };
  int64_t safe = 2010;
  while (is_leap_year(safe) != is_leap_year(year) || weekday(safe) != weekday(year)) ++safe;
  assert(safe <= 2037 && safe >= 1971);
  return safe;
}

int64_t seconds_between(int64_t from_year, int64_t to_year) noexcept {
  return (days_of_date(to_year, 0, 1) - days_of_date(from_year, 0, 1)) * kSecondsPerDay;
}

// Puts the C library's answer for the safe year back into the year meant.
bool move_years(struct tm &fields, int64_t years) noexcept {
  const int64_t moved = year_of(fields) + years;
  if (!fits_year_field(moved)) return false;
  fields.tm_year = int(moved - 1900);
  set_day_of_year(fields);  // the year before a safe year need not be as long as the year before its double
  return true;
}

bool local_fields(int64_t seconds, struct tm &out) noexcept {
  struct tm utc;
  if (!fields_of_instant(seconds, utc)) return false;
  const int64_t year = year_of(utc), safe = safe_year(year);
  const time_t time = time_t(seconds - seconds_between(safe, year));
  struct tm local;
  if (!localtime_r(&time, &local) || !move_years(local, year - safe)) return false;
  out = local;
  return true;
}

bool local_seconds(struct tm &fields, int64_t &seconds) noexcept {
  int64_t as_utc;
  struct tm normal = fields;
  if (!seconds_of_fields(fields, as_utc) || !fields_of_instant(as_utc, normal)) return false;
  const int64_t year = year_of(normal), safe = safe_year(year);
  if (safe == year)
    normal = fields;
  else
    normal.tm_year = int(safe - 1900);
  normal.tm_isdst = fields.tm_isdst;
  const time_t time = std::mktime(&normal);
  if (time == -1 || !move_years(normal, year - safe)) return false;
  fields = normal;
  seconds = int64_t(time) + seconds_between(safe, year);
  return true;
}

bool can_be_written(const struct tm &fields) noexcept {
  const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
  return within(fields.tm_wday, 0, 6) && within(fields.tm_mon, 0, 11) && within(fields.tm_mday, 1, 31) &&
         within(fields.tm_hour, 0, 23) && within(fields.tm_min, 0, 59) && within(fields.tm_sec, 0, 60);
}

template <class T>
T refused(int error, T result) noexcept {
  errno = error;
  return result;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

long long timegm64(const struct tm *fields) noexcept {
  if (!fields) return refused(EINVAL, -1LL);
  int64_t seconds;
  return seconds_of_fields(*fields, seconds) ? seconds : refused(EOVERFLOW, -1LL);
}

long long mktime64(struct tm *fields) noexcept {
  if (!fields) return refused(EINVAL, -1LL);
  int64_t seconds;
  return local_seconds(*fields, seconds) ? seconds : refused(EOVERFLOW, -1LL);
}

struct tm *gmtime64(const long long *seconds, struct tm *out) noexcept {
  if (!seconds || !out) return refused(EINVAL, nullptr);
  return fields_of_instant(*seconds, *out) ? out : refused(EOVERFLOW, nullptr);
}

struct tm *localtime64(const long long *seconds, struct tm *out) noexcept {
  if (!seconds || !out) return refused(EINVAL, nullptr);
  return local_fields(*seconds, *out) ? out : refused(EOVERFLOW, nullptr);
}

char *asctime64(const struct tm *fields, char *out) noexcept {
  static constexpr char kDays[] = "SunMonTueWedThuFriSat";
  static constexpr char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
  if (!fields || !out) return refused(EINVAL, nullptr);
  if (!can_be_written(*fields)) return refused(EOVERFLOW, nullptr);
  const char *day = kDays + 3 * fields->tm_wday, *month = kMonths + 3 * fields->tm_mon;
  std::snprintf(out, 36, "%.3s %.3s%3d %02d:%02d:%02d %lld\n", day, month, fields->tm_mday, fields->tm_hour,
                fields->tm_min, fields->tm_sec, static_cast<long long>(year_of(*fields)));
  return out;
}

char *ctime64_r(const long long *seconds, char *out) noexcept {
  struct tm local;
  return localtime64(seconds, &local) ? asctime64(&local, out) : nullptr;
}
