// Calendar times: arithmetic against the C library, texts, offsets and zones.
#include <velpki/asn1_error.h>
#include <velpki/time64.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <random>

#include "support/asn1.h"

namespace {

using test::Time;

struct Zone {
  explicit Zone(const char *name) { setenv("TZ", name, 1), tzset(); }
  ~Zone() { setenv("TZ", "UTC0", 1), tzset(); }
};
constexpr const char *kZones[] = {"UTC0", "KST-9", "EST5EDT,M3.2.0,M11.1.0"};

bool same_fields(const tm &a, const tm &b) {
  return a.tm_sec == b.tm_sec && a.tm_min == b.tm_min && a.tm_hour == b.tm_hour && a.tm_mday == b.tm_mday &&
         a.tm_mon == b.tm_mon && a.tm_year == b.tm_year && a.tm_wday == b.tm_wday && a.tm_yday == b.tm_yday &&
         a.tm_isdst == b.tm_isdst && a.tm_gmtoff == b.tm_gmtoff;
}

std::string shown(const ASN1_TIME *time) {
  char out[64];
  return time && std::strftime(out, sizeof out, "%Y-%m-%d %H:%M:%S", time) ? out : "-";
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
      ASSERT_TRUE(same_fields(found, expected)) << each;
      ASSERT_EQ(timegm64(&found), each);
      char text[64], expected_text[64];
      ASSERT_EQ(asctime64(&found, text), text);
      if (asctime_r(&expected, expected_text)) ASSERT_STREQ(text, expected_text);  // it stops at year 9999
      if (each < 31536000 || expected.tm_year > 8099) continue;  // glibc loses summer time in far years
      localtime_r(&instant, &expected);
      ASSERT_TRUE(localtime64(&each, &found)) << each;
      ASSERT_TRUE(same_fields(found, expected)) << name << each << " " << shown(&found) << shown(&expected);
      ASSERT_EQ(mktime64(&found), each) << name;
      ASSERT_TRUE(same_fields(found, expected)) << name << each;
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
  EXPECT_EQ(shown(Time(charToASN1_TIME("2009-02-30,12:00:00")).get()), "2009-02-30 12:00:00");
  for (const char *text : {"2009-13-01,12:00:00", "2009-1-01,12:00:00", "2009-00-01,12:00:00", "2009-01-01 12:00:00",
                           "2009-01-01,24:00:00", "2009-01-01,12:00:000", "2009-01-01,12:00:60", ""})
    EXPECT_EQ(charToASN1_TIME(text), nullptr) << text;
  EXPECT_EQ(check_ASN1_TIME(59, 59, 23, 31, 11), 0);
  EXPECT_EQ(check_ASN1_TIME(0, 0, 0, 0, 0), 0x4103002B);
}

TEST(EncodedTime, TextToFields) {
  const struct {
    int type;
    const char *text, *fields, *rfc5280;
    bool constructs;
  } cases[] = {{23, "491231235959Z", "2049-12-31 23:59:59", "2049-12-31 23:59:59", true},
               {23, "500101000000Z", "1950-01-01 00:00:00", "1950-01-01 00:00:00", true},
               {23, "0001010000Z", "2000-01-01 00:00:00", "-", true},
               {23, "260101083000+0900", "2025-12-31 23:30:00", "-", true},
               {23, "2601010830-0130", "2026-01-01 10:00:00", "-", true},
               {23, "000229000000Z", "2000-02-29 00:00:00", "2000-02-29 00:00:00", true},
               {23, "010229000000Z", "2001-03-01 00:00:00", "-", true},
               {24, "99991231235959Z", "9999-12-31 23:59:59", "9999-12-31 23:59:59", true},
               {24, "21000229000000Z", "2100-03-01 00:00:00", "-", true},
               {24, "20260101000000.123Z", "2026-01-01 00:00:00", "-", false},
               {24, "202601010000,9+0100", "2025-12-31 23:00:00", "-", false}};
  for (const auto &each : cases) {
    const test::String text = test::text_string(each.type, each.text);
    const bool utc = each.type == TYPE_UTC_TIME;
    const Time plain(utc ? utcTimeToASN1_TIME(text.get()) : generalizedTimeToASN1_TIME(text.get()));
    const Time strict(utc ? utcTimeToASN1_TIME_RFC5280(text.get()) : generalizedTimeToASN1_TIME_RFC5280(text.get()));
    EXPECT_EQ(shown(plain.get()), each.fields) << each.text;
    EXPECT_EQ(shown(strict.get()), each.rfc5280) << each.text;
    const auto make = utc ? new_UTC_TIME : new_GENERALIZED_TIME;
    const test::String made(make(text->data, text->length));
    EXPECT_EQ(made != nullptr, each.constructs) << each.text;
  }
  for (const char *text : {"261301000000Z", "260101000060Z", "260101000000+2400", "260101000000+0060", "260101000000",
                           "260101000000ZZ", "26010100000Z", "260101000000.5Z", "2601010000z", "+60101000000Z", ""}) {
    const test::String utc = test::text_string(23, text), generalized = test::text_string(24, std::string("20") + text);
    EXPECT_EQ(utcTimeToASN1_TIME(utc.get()), nullptr) << text;
    EXPECT_EQ(new_UTC_TIME(utc->data, utc->length), nullptr) << text;
    if (!std::strchr(text, '.')) EXPECT_EQ(generalizedTimeToASN1_TIME(generalized.get()), nullptr) << text;
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
        const Time second(dup_ASN1_TIME(time.get())), third(dup_ASN1_TIME(time.get()));
        const test::String plain(asn1TimeToUTC_TIME(time.get(), form));
        const test::String strict(asn1TimeToUTC_TIME_strict(second.get(), form));
        const test::String generalized(asn1TimeToGENERALIZED_TIME(third.get(), form));
        EXPECT_EQ(test::text_of(strict.get()), each.forms[form]);
        EXPECT_EQ(test::text_of(generalized.get()), std::string("20") + each.forms[form]);
        EXPECT_EQ(test::text_of(plain.get()).substr(0, 10), std::string(each.forms[form]).substr(0, 10));
        if (form == 3) EXPECT_EQ(test::text_of(plain.get()).substr(12), machine[zone_number]);
        EXPECT_EQ(plain->unused_bits, form % 2 ? 0 : 1);
        EXPECT_EQ(time->tm_gmtoff, form % 2 ? each.offset : 0) << "the time becomes its UTC equivalent";
      }
    }
    const Time local(getCurrentLocalTime()), now(getCurrentGMTime());
    EXPECT_LE(std::abs(timegm64(local.get()) - local->tm_gmtoff - timegm64(now.get())), 2);
  }
  const Time early(charToASN1_TIME("1949-12-31,23:59:59"));
  EXPECT_EQ(asn1TimeToUTC_TIME(early.get(), 2), nullptr);
  EXPECT_EQ(asn1TimeToGENERALIZED_TIME(early.get(), 4), nullptr);
  early->tm_mon = 12;
  EXPECT_EQ(asn1TimeToGENERALIZED_TIME(early.get(), 3), nullptr);
}

TEST(EncodedTime, ArithmeticAndOrder) {
  const struct {
    int type;
    const char *text;
    long long seconds;
    int code;
    const char *result;
  } cases[] = {{23, "251231235959Z", 1, 0, "260101000000Z"},
               {23, "2512312359+0900", 61, 0, "2601010000+0900"},
               {23, "491231235959Z", 1, 0x4501002B, "491231235959Z"},
               {23, "nonsense", 1, 0x4501002B, "nonsense"},
               {24, "20240228235959.25-0500", 86400, 0, "20240229235959.25-0500"},
               {24, "99991231235959Z", 1, 0x4502002B, "99991231235959Z"},
               {24, "20260101000000Z", LLONG_MAX, 0x4502002B, "20260101000000Z"}};
  for (const auto &each : cases) {
    const test::String time = test::text_string(each.type, each.text);
    const auto add = each.type == TYPE_UTC_TIME ? add_UTC_TIME : add_GENERALIZED_TIME;
    EXPECT_EQ(add(time.get(), each.seconds), each.code) << each.text;
    EXPECT_EQ(test::text_of(time.get()), each.result);
  }
  EXPECT_EQ(add_UTC_TIME(nullptr, 1), 0x45010049);
  const auto utc = [](const char *text) { return test::text_string(TYPE_UTC_TIME, text); };
  EXPECT_EQ(cmp_UTC_TIME(utc("260101090000+0900").get(), utc("2601010000Z").get()), 0);
  EXPECT_EQ(cmp_UTC_TIME(utc("260101090000+0900").get(), utc("260101090000Z").get()), -1);
  EXPECT_EQ(cmp_UTC_TIME(utc("000101000000Z").get(), utc("991231235959Z").get()), 1);
  EXPECT_EQ(cmp_UTC_TIME(utc("x").get(), utc("x").get()), -1);
  Time last_second(charToASN1_TIME("1969-12-31,23:59:59")), local(dup_ASN1_TIME(last_second.get()));
  local->tm_hour = 8, local->tm_mday = 1, local->tm_mon = 0, local->tm_year = 70, local->tm_gmtoff = 32400;
  EXPECT_EQ(cmp_ASN1_TIME(last_second.get(), local.get()), 0) << "the instant -1";
  EXPECT_EQ(cmp_ASN1_TIME(last_second.get(), nullptr), -1);
  EXPECT_EQ(cmp_ASN1_TIME(nullptr, nullptr), -1);
}

}  // namespace
