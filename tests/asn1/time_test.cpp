// Calendar times: arithmetic against the C library, texts, offsets and zones.
#include <velpki/asn1_error.h>
#include <velpki/time64.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <random>
#include <tuple>

#include "support/asn1.h"

namespace {

using namespace test;

struct Zone {
  explicit Zone(const char *name) { setenv("TZ", name, 1), tzset(); }
  ~Zone() { setenv("TZ", "UTC0", 1), tzset(); }
};
constexpr const char *kZones[] = {"UTC0", "KST-9", "EST5EDT,M3.2.0,M11.1.0"};

auto fields_of(const tm &t) {
  return std::tuple(t.tm_sec, t.tm_min, t.tm_hour, t.tm_mday, t.tm_mon, t.tm_year, t.tm_wday, t.tm_yday, t.tm_isdst,
                    t.tm_gmtoff);
}

std::string shown(const ASN1_TIME *time) {
  char out[64];
  return time && std::strftime(out, sizeof out, "%Y%m%d%H%M%S", time) ? out : "-";
}

// 64-bit C libraries know every year; the zones here have the same rules in all of them.
TEST(Calendar, AgreesWithTheCLibrary) {
  std::mt19937_64 random(1);
  std::vector<long long> instants = {
      -1,        0,         67767976233529199, 67767976233529200, -67768040609712000, -67768040609712001,
      LLONG_MAX, LLONG_MIN, 2147483647,        2147483648,        4102444800};
  for (int i = 0; i < 3000; ++i) {
    instants.push_back((long long)(random()) >> (7 + i % 30));
    instants.push_back((long long)(random() % 6000000000) - 1000000000);
  }
  for (const char *name : kZones) {
    const Zone zone(name);
    for (const long long each : instants) {
      const time_t instant = time_t(each);
      tm expected{}, found{};
      const bool known = gmtime_r(&instant, &expected);
      ASSERT_EQ(gmtime64(&each, &found) != nullptr, known) << each;
      if (!known) continue;
      ASSERT_EQ(fields_of(found), fields_of(expected)) << each;
      ASSERT_EQ(timegm64(&found), each);
      char text[64], expected_text[64];
      ASSERT_EQ(asctime64(&found, text), text);
      if (asctime_r(&expected, expected_text)) ASSERT_STREQ(text, expected_text);  // it stops at year 9999
      if (each < 31536000 || expected.tm_year > 8099) continue;  // glibc loses summer time in far years
      localtime_r(&instant, &expected);
      ASSERT_TRUE(localtime64(&each, &found)) << each;
      ASSERT_EQ(fields_of(found), fields_of(expected)) << name << each;
      ASSERT_EQ(mktime64(&found), each) << name;
      ASSERT_EQ(fields_of(found), fields_of(expected)) << name << each;
    }
  }
}

TEST(Calendar, FieldsCarryOverAndRangesEnd) {
  tm fields{};
  fields.tm_year = 100, fields.tm_mon = -25, fields.tm_mday = 400, fields.tm_hour = -50, fields.tm_sec = 100000;
  tm expected = fields;
  EXPECT_EQ(timegm64(&fields), (long long)(timegm(&expected)));
  fields = {};
  fields.tm_year = INT_MAX, fields.tm_mon = 12, fields.tm_mday = 1;
  for (const auto convert : {+[](tm *t) { return timegm64(t); }, +[](tm *t) { return mktime64(t); }}) {
    errno = 0;
    EXPECT_EQ(convert(&fields), -1);
    EXPECT_EQ(errno, EOVERFLOW);
  }
  char text[36] = "kept";
  EXPECT_EQ(asctime64(&fields, text), nullptr) << "month 12";
  EXPECT_STREQ(text, "kept");
  fields.tm_mon = 11;
  EXPECT_STREQ(asctime64(&fields, text), "Sun Dec  1 00:00:00 2147485547\n");
  const long long never = LLONG_MAX;
  EXPECT_EQ(ctime64_r(&never, text), nullptr);
  EXPECT_EQ(ctime64_r(nullptr, text), nullptr);
}

TEST(CalendarTime, Text) {
  EXPECT_EQ(shown(Time(charToASN1_TIME("2009-02-30,12:00:00"))), "20090230120000");
  for (const char *text : {"2009-13-01,12:00:00", "2009-1-01,12:00:00", "2009-00-01,12:00:00", "2009-01-01 12:00:00",
                           "2009-01-01,24:00:00", "2009-01-01,12:00:000", "2009-01-01,12:00:60", ""})
    EXPECT_EQ(charToASN1_TIME(text), nullptr) << text;
  EXPECT_EQ(check_ASN1_TIME(59, 59, 23, 31, 11), 0);
  EXPECT_EQ(check_ASN1_TIME(0, 0, 0, 0, 0), 0x4103002B);
}

// UTCTime and GeneralizedTime, side by side.
const struct {
  ASN1_TIME *(*fields)(const ASN1_STRING *), *(*strict_fields)(const ASN1_STRING *);
  ASN1_STRING *(*make)(const unsigned char *, int);
  int (*add)(ASN1_STRING *, long long);
  const char *century;
} kTypes[] = {
    {utcTimeToASN1_TIME, utcTimeToASN1_TIME_RFC5280, new_UTC_TIME, add_UTC_TIME, ""},
    {generalizedTimeToASN1_TIME, generalizedTimeToASN1_TIME_RFC5280, new_GENERALIZED_TIME, add_GENERALIZED_TIME, "20"}};

// "=" stands for the same fields. Texts with fractions are read but not constructed.
TEST(EncodedTime, TextToFields) {
  for (const Row &row : table("time_fields")) {
    const int tag = number_in(row, "type");
    const std::string &text = row.at("text"), &fields = row.at("fields"), &rfc5280 = row.at("rfc5280");
    const auto &type = kTypes[tag - 23];
    const String string = text_string(tag, text), made(type.make(string->data, string->length));
    EXPECT_EQ(shown(Time(type.fields(string))), fields) << text;
    EXPECT_EQ(shown(Time(type.strict_fields(string))), rfc5280 == "=" ? fields : rfc5280) << text;
    EXPECT_EQ(made == nullptr, text.find_first_of(".,") != text.npos) << text;
  }
  for (const char *text : {"261301000000Z", "260101000060Z", "260101000000+2400", "260101000000+0060", "260101000000",
                           "260101000000ZZ", "26010100000Z", "260101000000.5Z", "2601010000z", "+60101000000Z", ""}) {
    for (const auto &type : kTypes) {
      if (*type.century && std::strchr(text, '.')) continue;
      const String string = text_string(*type.century ? 24 : 23, type.century + std::string(text));
      EXPECT_EQ(type.fields(string), nullptr) << text;
      EXPECT_EQ(type.make(string->data, string->length), nullptr) << text;
    }
  }
}

TEST(EncodedTime, FieldsToTextInEveryZone) {
  // The offset of form 3 in each zone, Seoul's with an octet that is no digit.
  const std::string machine[] = {"+0000", std::string("+\xD8") + "000", "-8000"};
  const struct {
    long offset;
    const char *forms[4];
  } cases[] = {{0, {"2601020304Z", "2601020304+0000", "260102030405Z", "260102030405+0000"}},
               {32400, {"2601011804Z", "2601020304+0900", "260101180405Z", "260102030405+0900"}},
               {-5400, {"2601020434Z", "2601020304-0130", "260102043405Z", "260102030405-0130"}}};
  for (size_t zone_number = 0; zone_number < 3; ++zone_number) {
    const Zone zone(kZones[zone_number]);
    for (const auto &each : cases) {
      for (int form = 0; form < 4; ++form) {
        const Time time(charToASN1_TIME("2026-01-02,03:04:05"));
        time->tm_gmtoff = each.offset;
        const Time second(dup_ASN1_TIME(time)), third(dup_ASN1_TIME(time));
        const String plain(asn1TimeToUTC_TIME(time, form)), strict(asn1TimeToUTC_TIME_strict(second, form)),
            generalized(asn1TimeToGENERALIZED_TIME(third, form));
        const std::string expected = each.forms[form];
        EXPECT_EQ(text_of(strict), expected);
        EXPECT_EQ(text_of(generalized), "20" + expected);
        EXPECT_EQ(text_of(plain).substr(0, 10), expected.substr(0, 10));
        if (form == 3) EXPECT_EQ(text_of(plain).substr(12), machine[zone_number]);
        EXPECT_EQ(plain->unused_bits, form % 2 ? 0 : 1);
        EXPECT_EQ(time->tm_gmtoff, form % 2 ? each.offset : 0) << "the time becomes its UTC equivalent";
      }
    }
    const Time local(getCurrentLocalTime()), now(getCurrentGMTime());
    EXPECT_LE(std::abs(timegm64(local) - local->tm_gmtoff - timegm64(now)), 2);
  }
  const Time early(charToASN1_TIME("1949-12-31,23:59:59"));
  EXPECT_EQ(asn1TimeToUTC_TIME(early, 2), nullptr);
  EXPECT_EQ(asn1TimeToGENERALIZED_TIME(early, 4), nullptr);
  early->tm_mon = 12;
  EXPECT_EQ(asn1TimeToGENERALIZED_TIME(early, 3), nullptr);
}

TEST(EncodedTime, ArithmeticAndOrder) {
  for (const Row &row : table("time_sums")) {
    const int type = number_in(row, "type"), refused = type == 23 ? 0x4501002B : 0x4502002B;
    const std::string &text = row.at("text"), &result = row.at("result");
    const String time = text_string(type, text);
    EXPECT_EQ(kTypes[type - 23].add(time, std::stoll(row.at("seconds"))), result == "-" ? refused : 0) << text;
    EXPECT_EQ(text_of(time), result == "-" ? text : result);
  }
  EXPECT_EQ(add_UTC_TIME(nullptr, 1), 0x45010049);
  const auto order = [](const char *a, const char *b) { return cmp_UTC_TIME(text_string(23, a), text_string(23, b)); };
  EXPECT_EQ(order("260101090000+0900", "2601010000Z"), 0);
  EXPECT_EQ(order("260101090000+0900", "260101090000Z"), -1);
  EXPECT_EQ(order("000101000000Z", "991231235959Z"), 1);
  EXPECT_EQ(order("x", "x"), -1);
  Time last_second(charToASN1_TIME("1969-12-31,23:59:59")), local(charToASN1_TIME("1970-01-01,08:59:59"));
  local->tm_gmtoff = 32400;
  EXPECT_EQ(cmp_ASN1_TIME(last_second, local), 0) << "the instant -1";
  EXPECT_EQ(cmp_ASN1_TIME(last_second, nullptr), -1);
  EXPECT_EQ(cmp_ASN1_TIME(nullptr, nullptr), -1);
}

}  // namespace
