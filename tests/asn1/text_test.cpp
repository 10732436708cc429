// Character sets against the C library's iconv, and the printers.
#include <iconv.h>
#include <velpki/convert.h>
#include <velpki/utils.h>

#include <tuple>

#include "support/asn1.h"

namespace {

using test::Bytes;

// The whole input in the other character set, or "-" when iconv refuses any of it.
std::string by_iconv(iconv_t converter, Bytes in) {
  char out[16], *to = out, *from = reinterpret_cast<char *>(in.data());
  size_t left = in.size(), room = sizeof out;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  if (iconv(converter, &from, &left, &to, &room) || left) return "-";
  return test::to_hex(reinterpret_cast<uint8_t *>(out), sizeof out - room);
}

template <class In, class Out>
std::string converted(int (*convert)(const In *, int, Out **), const Bytes &in) {
  test::Owned<Out> out;
  const int length = convert(reinterpret_cast<const In *>(in.data()), int(in.size()), &out);
  return length < 0 ? (out ? "stored on failure" : "-")
                    : test::to_hex(reinterpret_cast<uint8_t *>(out.get()), size_t(length));
}

TEST(Convert, AgreesWithIconvOverEverything) {
  const iconv_t to_unicode = iconv_open("UCS-2BE", "CP949"), to_utf8 = iconv_open("UTF-8", "CP949");
  const iconv_t to_cp949 = iconv_open("CP949", "UCS-2BE");
  ASSERT_NE(to_cp949, iconv_t(-1));
  int mapped = 0;
  for (unsigned value = 0; value < 0x10000; ++value) {
    const Bytes pair = {uint8_t(value >> 8), uint8_t(value)};
    const std::string expected = by_iconv(to_unicode, pair);
    mapped += pair[0] >= 0x80 && expected != "-";
    ASSERT_EQ(converted(cp949ToUnicode, pair), expected) << value;
    ASSERT_EQ(converted(cp949ToUTF8, pair), by_iconv(to_utf8, pair)) << value;
    ASSERT_EQ(converted(unicodeToCP949, pair), by_iconv(to_cp949, pair)) << value;
    const std::string utf8 = converted(unicodeToUTF8, pair);
    ASSERT_EQ(utf8 == "-", value >= 0xD800 && value < 0xE000);
    if (utf8 != "-") ASSERT_EQ(converted(utf8ToUnicode, test::hex(utf8)), test::to_hex(pair));
  }
  EXPECT_EQ(mapped, 8226 + 8822);
  for (const iconv_t each : {to_unicode, to_utf8, to_cp949}) iconv_close(each);
}

TEST(Convert, Edges) {
  for (const char *in : {"C080", "E0808A", "EDA080", "F0908080", "E282", "80", "C2C2"})
    EXPECT_EQ(converted(utf8ToUnicode, test::hex(in)), "-") << in;
  EXPECT_EQ(converted(cp949ToUnicode, test::hex("B0")), "-");
  EXPECT_EQ(converted(cp949ToUnicode, test::hex("41B0A1")), "0041ac00");
  EXPECT_EQ(converted(unicodeToCP949, test::hex("AC00AC")), "-");
  EXPECT_EQ(converted(ascTouni, test::hex("41FF")), "004100ff");
  EXPECT_EQ(converted(uniToasc, test::hex("004100FF0000")), "41ff");
  for (const char *in : {"0100", "004100"}) EXPECT_EQ(converted(uniToasc, test::hex(in)), "-") << in;
  test::Block out;
  EXPECT_EQ(ascTouni("abc", -1, &out), 6);
  EXPECT_EQ(test::to_hex(out, 8), "0061006200630000");
  EXPECT_TRUE(ascTouni(nullptr, 3, &out) == -1 && ascTouni("abc", 3, nullptr) == -1);
}

// What a printer says of octets.
template <class... Arguments>
std::string said(void (*print)(Arguments...), const std::string &octets) {
  const test::String s = test::string(TYPE_UTF8_STRING, test::hex(octets));
  return test::captured_stdout([&] {
    if constexpr (std::is_invocable_v<decltype(print), const ASN1_STRING *>)
      print(s);
    else
      print(reinterpret_cast<std::tuple_element_t<0, std::tuple<Arguments...>>>(s->data), s->length);
  });
}

TEST(Printers, Formats) {
  EXPECT_EQ(said(print_hex_no_nl, "00AB7F"), "00:AB:7F");
  EXPECT_EQ(said(print_hex, "00AB7F"), "00:AB:7F\n");
  EXPECT_EQ(said(print_hex_nl, ""), "");
  EXPECT_EQ(said(print_PCHAR, "411B5B0A7F9BEAB0"), "A.[.....");
  EXPECT_EQ(said(dump_PCHAR, "EAB08041"),
            "\xEA\xB0\x80"
            "A\n");
  EXPECT_EQ(said(print_ASN1STRING, "410042"), "A.B\n");
  EXPECT_EQ(said(dump_hex, "4142430A7F80FF00000000000000003031"),
            "00000000  41 42 43 0A 7F 80 FF 00 00 00 00 00 00 00 00 30  ABC............0\n"
            "00000010  31                                               1\n");
  EXPECT_EQ(said(dump_ASN1STRING, "41"),
            "type 0C, 1 octets\n00000000  41                                               A\n");
  const auto print_null = [] { print_hex(nullptr, 3), dump_hex(nullptr, 3), print_ASN1STRING(nullptr); };
  EXPECT_EQ(test::captured_stdout(print_null), "");
}

}  // namespace
