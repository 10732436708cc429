// ASN1_TIME: broken-down times.
#include <velpki/asn1.h>
#include <velpki/time64.h>

#include <ctime>

#include "asn1/internal/calendar.h"
#include "asn1/internal/memory.h"
#include "asn1/internal/status.h"
#include "asn1/internal/string.h"

namespace velpki {

namespace {

constexpr char kPattern[] = "dddd-dd-dd,dd:dd:dd";
constexpr size_t kPatternSize = sizeof kPattern - 1;

bool has_pattern(const char *text) noexcept {
  if (strnlen(text, kPatternSize + 1) != kPatternSize) return false;
  for (size_t i = 0; i < kPatternSize; ++i) {
    const bool is_digit = text[i] >= '0' && text[i] <= '9';
    if (kPattern[i] == 'd' ? !is_digit : text[i] != kPattern[i]) return false;
  }
  return true;
}

int number(const char *digits, int count) noexcept {
  int value = 0;
  while (count-- > 0) value = value * 10 + (*digits++ - '0');
  return value;
}

using Break = struct tm *(*)(const long long *, struct tm *);

ASN1_TIME *current_time(Break fields_of) noexcept {
  const long long now = std::time(nullptr);
  owned<ASN1_TIME> time(new_ASN1_TIME());
  return time && fields_of(&now, time.get()) ? time.release() : nullptr;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

ASN1_TIME *new_ASN1_TIME(void) noexcept { return allocate_record<ASN1_TIME>(); }

void free_ASN1_TIME(ASN1_TIME *time) noexcept { release(time); }

void clean_ASN1_TIME(ASN1_TIME *time) noexcept {
  if (time) *time = {};
}

ASN1_TIME *dup_ASN1_TIME(const ASN1_TIME *time) noexcept {
  ASN1_TIME *copy = time ? new_ASN1_TIME() : nullptr;
  if (copy) *copy = *time;
  return copy;
}

int check_ASN1_TIME(int seconds, int minutes, int hours, int day, int month) noexcept {
  const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
  const bool allowed = within(seconds, 0, 59) && within(minutes, 0, 59) && within(hours, 0, 23) && within(day, 1, 31) &&
                       within(month, 0, 11);
  return allowed ? 0 : fail(F_CHECK_ASN1_TIME, kBadValue);
}

ASN1_TIME *charToASN1_TIME(const char *text) noexcept {
  if (!text || !has_pattern(text)) return nullptr;
  ASN1_TIME time{};
  time.tm_year = number(text, 4) - 1900;
  time.tm_mon = number(text + 5, 2) - 1;
  time.tm_mday = number(text + 8, 2);
  time.tm_hour = number(text + 11, 2);
  time.tm_min = number(text + 14, 2);
  time.tm_sec = number(text + 17, 2);
  if (check_ASN1_TIME(time.tm_sec, time.tm_min, time.tm_hour, time.tm_mday, time.tm_mon)) return nullptr;
  return dup_ASN1_TIME(&time);
}

ASN1_TIME *getCurrentGMTime(void) noexcept { return current_time(gmtime64); }
ASN1_TIME *getCurrentLocalTime(void) noexcept { return current_time(localtime64); }

int cmp_ASN1_TIME(const ASN1_TIME *a, const ASN1_TIME *b) noexcept {
  int64_t left = 0, right = 0;
  const bool both_known = a && b && instant_of(*a, left) && instant_of(*b, right);
  return compare_instants(both_known, left, right);
}
