// Base64 and PEM: the rules, the long stretches, and OpenSSL's text.
#include <velpki/pem.h>

#include <random>

#include "support/asn1.h"

namespace {

using namespace test;
using Decode = int (*)(const char *, int, unsigned char **);

// The octets in hex, or "-" when the text is refused; the text ends where memory does.
std::string decoded(Decode decode, std::string_view text) {
  static GuardedBytes guarded(1 << 16);
  const uint8_t *placed = guarded.place(reinterpret_cast<const uint8_t *>(text.data()), text.size());
  Block out;
  const int length = decode(reinterpret_cast<const char *>(placed), int(text.size()), &out);
  if (length == 0) return out ? "stored on failure" : "-";
  return out[length] == 0 ? to_hex(out, size_t(length)) : "not terminated";
}

Bytes random_bytes(size_t size) {
  static std::minstd_rand random(3);
  Bytes bytes(size);
  for (uint8_t &each : bytes) each = uint8_t(random() >> 8);
  return bytes;
}

std::string encoded(const Bytes &octets, int line) {
  static GuardedBytes guarded(1 << 12);
  Owned<char> text;
  const uint8_t *placed = guarded.place(octets.data(), octets.size());
  const int length = line ? encode_Base64_Line(placed, int(octets.size()), &text, line)
                          : encode_Base64(placed, int(octets.size()), &text, 0);
  return text && std::strlen(text) == size_t(length) ? text.get() : "-";
}

// Checks texts for what the plain decoder gives, and the strict one.
auto checker(Decode plain, Decode strict) {
  return [=](const char *expected, const char *strictly, const std::vector<std::string> &texts) {
    for (const std::string &text : texts) {
      EXPECT_EQ(decoded(plain, text), expected) << text;
      EXPECT_EQ(decoded(strict, text), strictly) << text;
    }
  };
}

// The strict decoder refuses bits left over, in "QR==" and "QUJ=", and characters that are none of Base64's.
TEST(Base64, Rules) {
  const auto check = checker(decode_Base64, decode_Base64_strict);
  check("41", "41", {"QQ==", "QQ==\n"});
  check("41", "-", {"QR==", "QX=="});
  check("4142", "4142", {"QUI="});
  check("4142", "-", {"QUJ="});
  check("414243", "414243", {"QUJD", "QU\nJD", "QU\r\nJD\r\n", "\n\nQUJD\n"});
  check("417fc3", "-", {"QU D"});
  check("4ff5ff2ff0ff", "-", {"Q U J D "});
  check("-", "-",
        {"QU\rJD", "QUJD\r", "QUJDR", "QUJDRA", "QU JD", "Q===", "QQ==QUJD", "Q=Q=", "==", "QQ=", "====", "", "\n"});
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
    EXPECT_EQ(decoded(decode_Base64, folded), to_hex(octets));
    EXPECT_EQ(decoded(decode_Base64_strict, folded), to_hex(octets));
    broken[at] = " \x7F-_\xFF\x80@["[at % 8];
    const size_t group = at / 4 * 3;
    uint32_t value = uint32_t(octets[group]) << 16 | uint32_t(octets[group + 1]) << 8 | octets[group + 2];
    value = (value & ~(0x3Fu << (18 - 6 * (at % 4)))) | 0xFFu << (18 - 6 * (at % 4));
    Bytes expected = octets;
    for (size_t i = 0; i < 3; ++i) expected[group + i] = uint8_t(value >> (16 - 8 * i));
    EXPECT_EQ(decoded(decode_Base64, broken), to_hex(expected)) << at;
    EXPECT_EQ(decoded(decode_Base64_strict, broken), "-");
    EXPECT_EQ(decoded(decode_Base64, text.substr(0, at)), at % 4 || at == 0 ? "-" : to_hex(octets.data(), group));
  }
}

TEST(Base64, EncodesAsOpenSslDoes) {
  const std::string path = temporary_path("octets");
  for (const size_t size : {1u, 2u, 3u, 47u, 48u, 49u, 96u, 1000u}) {
    const Bytes octets = random_bytes(size);
    ASSERT_TRUE(write_file(path, octets.data(), size));
    EXPECT_EQ(encoded(octets, 64) + "\n", run("openssl base64 -in " + path));
    EXPECT_EQ(encoded(octets, 0), run("openssl base64 -A -in " + path));
  }
  for (size_t size = 1; size < 200; ++size) {
    const Bytes octets = random_bytes(size);
    for (const int line : {1, 3, 4, 64, 76, 1000}) {
      const std::string text = encoded(octets, line);
      EXPECT_EQ(decoded(decode_Base64_strict, text), to_hex(octets));
      for (size_t at = size_t(line); at < text.size(); at += size_t(line) + 1) ASSERT_EQ(text[at], '\n');
    }
  }
  char *text = nullptr;
  EXPECT_EQ(encode_Base64_Line(reinterpret_cast<const unsigned char *>("x"), 1, &text, 0), 0);
  EXPECT_EQ(encode_Base64(nullptr, 3, &text, 1), 0);
}

// The last refused text has 19 characters: one more is a text.
TEST(Pem, PlainAndStrictSideBySide) {
  const std::string begin = "-----BEGIN CERTIFICATE-----\n", end = "-----END CERTIFICATE-----\n",
                    body = begin + "QUJD\n";
  const auto check = checker(decode_PEM, decode_PEM_strict);
  check("414243", "414243",
        {body + end, body + "-----END CERTIFICATE-----",
         "-----BEGIN CERTIFICATE-----\r\nQUJD\r\n-----END CERTIFICATE-----\r\n"});
  check("414243", "-",
        {body + "-----END X509 CRL-----\n", body + "-----END CERT", "-----BEGIN A-----\n\n \n-QUJD\n-",
         begin + "QUJD-----END CERTIFICATE-----\n", body + end + "\n" + begin, "\n" + body + end,
         "-----BBB-----\nQUJD\n-"});
  check("3eba1c", "-", {begin + "Proc-Type: 4,ENCRYPTED\n\nQUJD\n" + end});
  check("417fc3", "-", {begin + "QU D\n" + end});
  check("-", "-",
        {"subject=CN=a very long name\n" + body + end, begin + end, body, begin + "QUJD \n" + end, "=" + body + end,
         "-----BB-----\nQUJD\n-"});
}

TEST(Pem, Framing) {
  const Bytes octets = random_bytes(300);
  for (const int mode : {0, 1}) {
    Text pem, base64, framed;
    const int length = encode_PEM(octets.data(), 300, "DATA", 4, &pem, mode);
    const int inner = encode_Base64(octets.data(), 300, &base64, mode);
    EXPECT_EQ(base64ToPEM(base64, inner, "DATA", 4, &framed), length);
    EXPECT_STREQ(framed, pem);
    EXPECT_EQ(pem.get(), std::string("-----BEGIN DATA-----\n") + base64.get() + "\n-----END DATA-----\n");
    EXPECT_EQ(decoded(decode_PEM_strict, pem.get()), to_hex(octets));
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
      Block out;
      const int length =
          decode_PEM_ex(bundle.data() + at, int(bundle.size() - at), wanted, &label, &label_length, &consumed, &out);
      const std::string octets = length ? to_hex(out, size_t(length)) : "-";
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
