// Base64 and PEM: the rules, the long stretches, and OpenSSL's text.
#include <velpki/pem.h>

#include <random>

#include "support/asn1.h"

namespace {

using test::Bytes;
using Decode = int (*)(const char *, int, unsigned char **);

// The octets in hex, or "-" when the text is refused; the text ends where memory does.
std::string decoded(Decode decode, std::string_view text) {
  static test::GuardedBytes guarded(1 << 16);
  const uint8_t *placed = guarded.place(reinterpret_cast<const uint8_t *>(text.data()), text.size());
  unsigned char *out = nullptr;
  const int length = decode(reinterpret_cast<const char *>(placed), int(text.size()), &out);
  const test::Block owner(out);
  if (length == 0) return out ? "stored on failure" : "-";
  return out[length] == 0 ? test::to_hex(out, size_t(length)) : "not terminated";
}

Bytes random_bytes(size_t size) {
  static std::minstd_rand random(3);
  Bytes bytes(size);
  for (uint8_t &each : bytes) each = uint8_t(random() >> 8);
  return bytes;
}

std::string encoded(const Bytes &octets, int line) {
  static test::GuardedBytes guarded(1 << 12);
  char *text = nullptr;
  const uint8_t *placed = guarded.place(octets.data(), octets.size());
  const int length = line ? encode_Base64_Line(placed, int(octets.size()), &text, line)
                          : encode_Base64(placed, int(octets.size()), &text, 0);
  const std::unique_ptr<char, test::Release> owner(text);
  return text && std::strlen(text) == size_t(length) ? text : "-";
}

TEST(Base64, Rules) {
  const struct {
    const char *text, *plain, *strict;
  } cases[] = {{"QUJD", "414243", "414243"},
               {"QQ==", "41", "41"},
               {"QUI=", "4142", "4142"},
               {"QR==", "41", "-"},  // bits left over
               {"QUJ=", "4142", "-"},
               {"QU\nJD", "414243", "414243"},
               {"QU\r\nJD\r\n", "414243", "414243"},
               {"\n\nQUJD\n", "414243", "414243"},
               {"QU D", "417fc3", "-"},
               {"Q U J D ", "4ff5ff2ff0ff", "-"},
               {"QQ==\n", "41", "41"}};
  for (const auto &each : cases) {
    EXPECT_EQ(decoded(decode_Base64, each.text), each.plain) << each.text;
    EXPECT_EQ(decoded(decode_Base64_strict, each.text), each.strict) << each.text;
  }
  for (const char *refused :
       {"QU\rJD", "QUJD\r", "QUJDR", "QUJDRA", "QU JD", "Q===", "QQ==QUJD", "Q=Q=", "==", "QQ=", "====", "", "\n"}) {
    EXPECT_EQ(decoded(decode_Base64, refused), "-") << refused;
    EXPECT_EQ(decoded(decode_Base64_strict, refused), "-") << refused;
  }
  unsigned char *out = nullptr;
  EXPECT_EQ(decode_Base64(nullptr, 4, &out), 0);
  EXPECT_EQ(decode_Base64("QUJD", -1, &out), 0);
  EXPECT_EQ(decode_Base64("QUJD", 4, nullptr), 0);
}

// A stray character anywhere in a text of several machine blocks spoils its own group and no other, and a line feed
// none.
TEST(Base64, EveryPositionFollowsTheRules) {
  const Bytes octets = random_bytes(111);
  const std::string text = encoded(octets, 0);
  for (size_t at = 0; at < text.size(); ++at) {
    std::string broken = text, folded = text;
    folded.insert(at, at % 2 ? "\n" : "\r\n");
    EXPECT_EQ(decoded(decode_Base64, folded), test::to_hex(octets));
    EXPECT_EQ(decoded(decode_Base64_strict, folded), test::to_hex(octets));
    broken[at] = " \x7F-_\xFF\x80@["[at % 8];
    const size_t group = at / 4 * 3;
    uint32_t value = uint32_t(octets[group]) << 16 | uint32_t(octets[group + 1]) << 8 | octets[group + 2];
    value = (value & ~(0x3Fu << (18 - 6 * (at % 4)))) | 0xFFu << (18 - 6 * (at % 4));
    Bytes expected = octets;
    for (size_t i = 0; i < 3; ++i) expected[group + i] = uint8_t(value >> (16 - 8 * i));
    EXPECT_EQ(decoded(decode_Base64, broken), test::to_hex(expected)) << at;
    EXPECT_EQ(decoded(decode_Base64_strict, broken), "-");
    EXPECT_EQ(decoded(decode_Base64, text.substr(0, at)), at % 4 || at == 0 ? "-" : test::to_hex(octets.data(), group));
  }
}

TEST(Base64, EncodesAsOpenSslDoes) {
  const std::string path = test::temporary_path("octets");
  for (const size_t size : {1u, 2u, 3u, 47u, 48u, 49u, 96u, 1000u}) {
    const Bytes octets = random_bytes(size);
    ASSERT_TRUE(test::write_file(path, octets.data(), size));
    EXPECT_EQ(encoded(octets, 64) + "\n", test::run("openssl base64 -in " + path));
    EXPECT_EQ(encoded(octets, 0), test::run("openssl base64 -A -in " + path));
  }
  for (size_t size = 1; size < 200; ++size) {
    const Bytes octets = random_bytes(size);
    for (const int line : {1, 3, 4, 64, 76, 1000}) {
      const std::string text = encoded(octets, line);
      EXPECT_EQ(decoded(decode_Base64_strict, text), test::to_hex(octets));
      for (size_t at = size_t(line); at < text.size(); at += size_t(line) + 1) ASSERT_EQ(text[at], '\n');
    }
  }
  char *text = nullptr;
  EXPECT_EQ(encode_Base64_Line(reinterpret_cast<const unsigned char *>("x"), 1, &text, 0), 0);
  EXPECT_EQ(encode_Base64(nullptr, 3, &text, 1), 0);
}

TEST(Pem, PlainAndStrictSideBySide) {
  const std::string begin = "-----BEGIN CERTIFICATE-----\n", end = "-----END CERTIFICATE-----\n", ok = "414243";
  const struct {
    std::string text, plain, strict;
  } cases[] = {{begin + "QUJD\n" + end, ok, ok},
               {"-----BEGIN CERTIFICATE-----\r\nQUJD\r\n-----END CERTIFICATE-----\r\n", ok, ok},
               {begin + "QUJD\n-----END CERTIFICATE-----", ok, ok},
               {begin + "QUJD\n-----END X509 CRL-----\n", ok, "-"},
               {begin + "QUJD\n-----END CERT", ok, "-"},
               {"-----BEGIN A-----\n\n \n-QUJD\n-", ok, "-"},
               {begin + "QUJD-----END CERTIFICATE-----\n", ok, "-"},
               {begin + "QUJD\n" + end + "\n" + begin, ok, "-"},
               {"\n" + begin + "QUJD\n" + end, ok, "-"},
               {"subject=CN=a very long name\n" + begin + "QUJD\n" + end, "-", "-"},
               {begin + "Proc-Type: 4,ENCRYPTED\n\nQUJD\n" + end, "3eba1c", "-"},
               {begin + end, "-", "-"},
               {begin + "QUJD\n", "-", "-"},
               {begin + "QU D\n" + end, "417fc3", "-"},
               {begin + "QUJD \n" + end, "-", "-"},
               {"=" + begin + "QUJD\n" + end, "-", "-"},
               {"-----BBB-----\nQUJD\n-", ok, "-"},
               {"-----BB-----\nQUJD\n-", "-", "-"}};  // 19 characters
  for (const auto &each : cases) {
    EXPECT_EQ(decoded(decode_PEM, each.text), each.plain) << each.text;
    EXPECT_EQ(decoded(decode_PEM_strict, each.text), each.strict) << each.text;
  }
}

TEST(Pem, Framing) {
  const Bytes octets = random_bytes(300);
  for (const int mode : {0, 1}) {
    char *pem = nullptr, *base64 = nullptr, *framed = nullptr;
    const int length = encode_PEM(octets.data(), 300, "DATA", 4, &pem, mode);
    const int inner = encode_Base64(octets.data(), 300, &base64, mode);
    EXPECT_EQ(base64ToPEM(base64, inner, "DATA", 4, &framed), length);
    EXPECT_STREQ(framed, pem);
    EXPECT_EQ(pem, "-----BEGIN DATA-----\n" + std::string(base64) + "\n-----END DATA-----\n");
    EXPECT_EQ(decoded(decode_PEM_strict, pem), test::to_hex(octets));
    for (char *each : {pem, base64, framed}) PKV_Free(each, __FILE__, __LINE__);
  }
  char *none = nullptr;
  EXPECT_EQ(encode_PEM(octets.data(), 300, nullptr, 4, &none, 1), 0);
  EXPECT_EQ(base64ToPEM(nullptr, 4, "DATA", 4, &none), 0);
}

// A bundle with text, attributes, blanks, an encrypted block and one without an end, walked block by block.
TEST(Pem, BundleIsWalked) {
  const std::string bundle =
      "Bag Attributes\n  a: -----BEGIN not at the start\n-----BEGIN KEY-----\nQQ==\n-----END KEY-----\nsubject=b\n"
      "-----BEGIN CERTIFICATE-----  \n QUJD \r\n\t\n-----END CERTIFICATE-----\t\n"
      "-----BEGIN KEY-----\nProc-Type: 4,ENCRYPTED\n\nQQ==\n-----END KEY-----\n"
      "-----BEGIN CERTIFICATE-----\nQUI=\n-----END OTHER-----\n-----BEGIN CERTIFICATE-----\r\nQUI=\r\n"
      "-----END CERTIFICATE-----\r\n-----BEGIN CERTIFICATE-----\nQUJD";
  const auto walk = [&](const char *wanted) {
    std::string seen;
    for (size_t at = 0; at < bundle.size();) {
      const char *label = nullptr;
      int label_length = 0, consumed = 0;
      unsigned char *out = nullptr;
      const int length =
          decode_PEM_ex(bundle.data() + at, int(bundle.size() - at), wanted, &label, &label_length, &consumed, &out);
      const test::Block owner(out);
      const std::string octets = length ? test::to_hex(out, size_t(length)) : "-";
      if (label) seen += std::string(label, size_t(label_length)) + ":" + octets + " ";
      if (consumed < 1) return std::string("stuck");
      at += size_t(consumed);
    }
    return seen;
  };
  EXPECT_EQ(walk(nullptr), "KEY:41 CERTIFICATE:414243 KEY:- CERTIFICATE:- CERTIFICATE:4142 CERTIFICATE:- ");
  EXPECT_EQ(walk("CERTIFICATE"), "CERTIFICATE:414243 CERTIFICATE:- CERTIFICATE:4142 CERTIFICATE:- ");
  EXPECT_EQ(walk("NONE"), "");
}

}  // namespace
