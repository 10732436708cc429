// UTCTime and GeneralizedTime: between text, broken-down times and instants.
#include "asn1/internal/encoded_time.h"

#include <velpki/ber.h>
#include <velpki/time64.h>

#include <cstdlib>

#include "asn1/internal/calendar.h"
#include "asn1/internal/status.h"
#include "asn1/internal/string.h"

namespace velpki {

namespace {

// Reading.

bool is_digit(uint8_t c) noexcept { return c >= '0' && c <= '9'; }

// Takes decimal digits off the front of a text.
class Digits {
 public:
  explicit Digits(Octets text) noexcept : rest_(text) {}

  bool number(size_t count, int low, int high, int &value) noexcept {
    if (rest_.size() < count) return false;
    value = 0;
    for (const uint8_t c : rest_.first(count)) {
      if (!is_digit(c)) return false;
      value = value * 10 + (c - '0');
    }
    rest_ = rest_.subspan(count);
    return value >= low && value <= high;
  }
  bool at_digit() const noexcept { return !rest_.empty() && is_digit(rest_[0]); }
  bool take(uint8_t c) noexcept {
    if (rest_.empty() || rest_[0] != c) return false;
    rest_ = rest_.subspan(1);
    return true;
  }
  size_t left() const noexcept { return rest_.size(); }

 private:
  Octets rest_;
};

// RFC 5280 4.1.2.5.1: two digits below 50 are of this century.
bool read_year(int type, Digits &in, int &year_field) noexcept {
  int year = 0;
  if (type == TYPE_GENERALIZED_TIME) {
    if (!in.number(4, 0, 9999, year)) return false;
    year_field = year - 1900;
    return true;
  }
  if (!in.number(2, 0, 99, year)) return false;
  year_field = year < 50 ? year + 100 : year;
  return true;
}

bool read_fraction(int type, Digits &in, bool &fraction) noexcept {
  fraction = type == TYPE_GENERALIZED_TIME && (in.take('.') || in.take(','));
  if (!fraction) return true;
  int digit = 0;
  if (!in.at_digit()) return false;
  while (in.at_digit()) in.number(1, 0, 9, digit);
  return true;
}

bool read_zone(Digits &in, TimeText &out) noexcept {
  out.zulu = in.take('Z');
  if (out.zulu) return in.left() == 0;
  const bool west = in.take('-');
  if (!west && !in.take('+')) return false;
  int hours = 0, minutes = 0;
  if (!in.number(2, 0, 23, hours) || !in.number(2, 0, 59, minutes)) return false;
  out.offset = (hours * 60 + minutes) * (west ? -60 : 60);
  return in.left() == 0;
}

}  // namespace

bool read_time_text(int type, Octets text, TimeText &out) noexcept {
  out = {};
  Digits in(text);
  struct tm &fields = out.fields;
  if (!read_year(type, in, fields.tm_year) || !in.number(2, 1, 12, fields.tm_mon)) return false;
  --fields.tm_mon;
  if (!in.number(2, 1, 31, fields.tm_mday)) return false;
  if (!in.number(2, 0, 23, fields.tm_hour) || !in.number(2, 0, 59, fields.tm_min)) return false;
  out.seconds = in.at_digit();
  if (out.seconds && !in.number(2, 0, 59, fields.tm_sec)) return false;
  return read_fraction(type, in, out.fraction) && read_zone(in, out);
}

bool is_time_text(int type, Octets text) noexcept {
  TimeText read;
  return read_time_text(type, text, read) && !read.fraction;
}

namespace {

bool instant_of(const TimeText &text, int64_t &seconds) noexcept {
  if (!seconds_of_fields(text.fields, seconds)) return false;
  seconds -= text.offset;
  return true;
}

ASN1_TIME *in_utc(const TimeText &text) noexcept {
  int64_t seconds = 0;
  owned<ASN1_TIME> time(new_ASN1_TIME());
  return time && instant_of(text, seconds) && fields_of_instant(seconds, *time) ? time.release() : nullptr;
}

ASN1_TIME *read_time(int type, const ASN1_STRING *string) noexcept {
  TimeText text;
  return string && read_time_text(type, octets(*string), text) ? in_utc(text) : nullptr;
}

// RFC 5280 4.1.2.5: in UTC, with seconds, without fraction. The calendar must have the day.
bool read_certificate_text(int type, const ASN1_STRING *string, TimeText &text) noexcept {
  if (!string || !read_time_text(type, octets(*string), text)) return false;
  if (!text.zulu || !text.seconds || text.fraction) return false;
  return text.fields.tm_mday <= days_in_month(text.fields.tm_year + 1900, text.fields.tm_mon);
}

ASN1_TIME *read_certificate_time(int type, const ASN1_STRING *string) noexcept {
  TimeText text;
  return read_certificate_text(type, string, text) ? in_utc(text) : nullptr;
}

}  // namespace

bool instant_of_certificate_time(int type, const ASN1_STRING *time, int64_t &seconds) noexcept {
  TimeText text;
  return read_certificate_text(type, time, text) && instant_of(text, seconds);
}

bool instant_of_text(int type, const ASN1_STRING *time, int64_t &seconds) noexcept {
  TimeText text;
  return time && read_time_text(type, octets(*time), text) && instant_of(text, seconds);
}

namespace {

// Writing.

constexpr size_t kLongestTime = sizeof "YYYYMMDDHHMMSS+hhmm" - 1;

class TimeWriter {
 public:
  void digits(int value, int count) noexcept {
    for (int divisor = count == 4 ? 1000 : 10; divisor; divisor /= 10) octet(uint8_t('0' + value / divisor % 10));
  }
  void octet(uint8_t value) noexcept { text_[size_++] = value; }
  Octets written() const noexcept { return {text_, size_}; }

 private:
  uint8_t text_[kLongestTime];
  size_t size_ = 0;
};

bool year_is_allowed(int type, const struct tm &fields) noexcept {
  const int64_t year = int64_t(fields.tm_year) + 1900;
  return type == TYPE_UTC_TIME ? year >= 1950 && year <= 2049 : year >= 0 && year <= 9999;
}

// Date and time as digits; false when a field is out of its range.
bool write_fields(int type, const struct tm &fields, bool seconds, TimeWriter &out) noexcept {
  if (!year_is_allowed(type, fields)) return false;
  if (check_ASN1_TIME(fields.tm_sec, fields.tm_min, fields.tm_hour, fields.tm_mday, fields.tm_mon)) return false;
  const int year = fields.tm_year + 1900;
  if (type == TYPE_UTC_TIME)
    out.digits(year % 100, 2);
  else
    out.digits(year, 4);
  for (const int field : {fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min}) out.digits(field, 2);
  if (seconds) out.digits(fields.tm_sec, 2);
  return true;
}

// The offset that the time itself states; whole minutes within a day.
bool write_own_offset(const struct tm &time, TimeWriter &out) noexcept {
  const long offset = time.tm_gmtoff;
  if (offset % 60 || offset <= -86400 || offset >= 86400) return false;
  const int minutes = int(offset < 0 ? -offset : offset) / 60;
  out.octet(offset < 0 ? '-' : '+');
  out.digits(minutes / 60, 2);
  out.digits(minutes % 60, 2);
  return true;
}

// The offset of the machine's zone in seconds multiplied by 3600 once more: what existing readers of these texts have
// always been given. The characters are computed as octets, never looked up: for most zones they are no digits.
bool write_machine_offset(const struct tm &time, TimeWriter &out) noexcept {
  struct tm fields = time, utc;
  const long long instant = mktime64(&fields);
  if (!gmtime64(&instant, &utc)) return false;
  const int64_t value = int32_t(uint32_t(uint64_t(instant - mktime64(&utc)) * 3600));
  const int64_t v = value < 0 ? -value : value;
  out.octet(value < 0 ? '-' : '+');
  for (const int64_t digit : {v / 36000, v / 3600 % 10, v / 60 % 60 / 10, v / 60 % 10}) {
    out.octet(uint8_t('0' + uint32_t(digit)));
  }
  return true;
}

using WriteOffset = bool (*)(const struct tm &, TimeWriter &);

// Forms: bit 1 seconds, bit 0 an offset instead of Z.
ASN1_STRING *write_time(int type, ASN1_TIME *time, int form, WriteOffset write_offset) noexcept {
  if (!time || form < 0 || form > 3) return nullptr;
  const bool zulu = !(form & 1);
  int64_t seconds = 0;
  struct tm fields = *time;
  if (zulu && !(velpki::instant_of(*time, seconds) && fields_of_instant(seconds, fields))) return nullptr;
  TimeWriter out;
  if (!write_fields(type, fields, form & 2, out)) return nullptr;
  if (zulu)
    out.octet('Z');
  else if (!write_offset(fields, out))
    return nullptr;
  ASN1_STRING *string = new_string(type, out.written(), zulu);
  if (string) *time = fields;
  return string;
}

// Arithmetic and order.

// Only the digits of date and time change; fraction and offset stay as they are written.
int add_seconds(int type, int function, ASN1_STRING *time, long long seconds) noexcept {
  if (!time) return fail(function, kNullArgument);
  TimeText text;
  int64_t shifted = 0;
  if (!read_time_text(type, octets(*time), text) || !seconds_of_fields(text.fields, shifted) ||
      __builtin_add_overflow(shifted, int64_t(seconds), &shifted) || !fields_of_instant(shifted, text.fields)) {
    return fail(function, kBadValue);
  }
  TimeWriter out;
  if (!write_fields(type, text.fields, text.seconds, out)) return fail(function, kBadValue);
  copy_octets(time->data, out.written());
  return 0;
}

int compare(int type, const ASN1_STRING *a, const ASN1_STRING *b) noexcept {
  int64_t left = 0, right = 0;
  const bool both_known = instant_of_text(type, a, left) && instant_of_text(type, b, right);
  return compare_instants(both_known, left, right);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

UTC_TIME *asn1TimeToUTC_TIME(ASN1_TIME *time, int form) noexcept {
  return write_time(TYPE_UTC_TIME, time, form, write_machine_offset);
}
UTC_TIME *asn1TimeToUTC_TIME_strict(ASN1_TIME *time, int form) noexcept {
  return write_time(TYPE_UTC_TIME, time, form, write_own_offset);
}
GENERALIZED_TIME *asn1TimeToGENERALIZED_TIME(ASN1_TIME *time, int form) noexcept {
  return write_time(TYPE_GENERALIZED_TIME, time, form, write_own_offset);
}

ASN1_TIME *utcTimeToASN1_TIME(const UTC_TIME *utc) noexcept { return read_time(TYPE_UTC_TIME, utc); }
ASN1_TIME *generalizedTimeToASN1_TIME(const GENERALIZED_TIME *generalized) noexcept {
  return read_time(TYPE_GENERALIZED_TIME, generalized);
}
ASN1_TIME *utcTimeToASN1_TIME_RFC5280(const UTC_TIME *utc) noexcept {
  return read_certificate_time(TYPE_UTC_TIME, utc);
}
ASN1_TIME *generalizedTimeToASN1_TIME_RFC5280(const GENERALIZED_TIME *generalized) noexcept {
  return read_certificate_time(TYPE_GENERALIZED_TIME, generalized);
}

int add_UTC_TIME(UTC_TIME *time, long long seconds) noexcept {
  return add_seconds(TYPE_UTC_TIME, F_ADD_UTC_TIME, time, seconds);
}
int add_GENERALIZED_TIME(GENERALIZED_TIME *time, long long seconds) noexcept {
  return add_seconds(TYPE_GENERALIZED_TIME, F_ADD_TIME, time, seconds);
}

int cmp_UTC_TIME(const UTC_TIME *a, const UTC_TIME *b) noexcept { return compare(TYPE_UTC_TIME, a, b); }
int cmp_GENERALIZED_TIME(const GENERALIZED_TIME *a, const GENERALIZED_TIME *b) noexcept {
  return compare(TYPE_GENERALIZED_TIME, a, b);
}
