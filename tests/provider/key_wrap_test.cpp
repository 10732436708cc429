// Key wrapping and key derivation against the values of their documents.
#include <velpki/pkv.h>

#include "support/asn1.h"

using namespace test;

namespace {

constexpr int kAes128 = 0x01000100, kDes3 = 0x02010200, kSeed = 0x04000100;

int wrap(int cipher, const Bytes &kek, const Bytes &key, Bytes &out) {
  int length = int(out.size());
  const int code = PKV_Wrap_KEY(cipher, kek.data(), int(kek.size()), key.data(), int(key.size()), out.data(), &length);
  if (!code) out.resize(size_t(length));
  return code;
}
int unwrap(int cipher, const Bytes &kek, const Bytes &wrapped, Bytes &out) {
  int length = int(out.size());
  const int code =
      PKV_Unwrap_KEY(cipher, kek.data(), int(kek.size()), wrapped.data(), int(wrapped.size()), out.data(), &length);
  if (!code) out.resize(size_t(length));
  return code;
}

// RFC 3394 4.1 to 4.6.
TEST(KeyWrap, AesValues) {
  const Bytes kek = hex("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
  const Bytes key = hex("00112233445566778899aabbccddeeff000102030405060708090a0b0c0d0e0f");
  for (const Row &row : table("key_wraps")) {
    const size_t key_length = size_t(number_in(row, "key"));
    const int cipher = code_at(row, "cipher");
    const Bytes under(kek.begin(), kek.begin() + number_in(row, "kek")),
        secret(key.begin(), key.begin() + long(key_length));
    Bytes out(key_length + 8), back(key_length);
    ASSERT_EQ(wrap(cipher, under, secret, out), 0);
    EXPECT_EQ(to_hex(out), row.at("wrapped"));
    ASSERT_EQ(unwrap(cipher, under, out, back), 0);
    EXPECT_TRUE(back == secret);
  }
}

// RFC 3217 4.4.
TEST(KeyWrap, TripleDesValue) {
  const Bytes kek = hex("255e0d1c07b646dfb3134cc843ba8aa71f025b7c0838251f");
  Bytes back(24);
  ASSERT_EQ(
      unwrap(kDes3, kek, hex("690107618ef092b3b48ca1796b234ae9fa33ebb4159604037db5d6a84eb3aac2768c632775a467d4"), back),
      0);
  EXPECT_EQ(to_hex(back), "2923bf85e06dd6ae529149f1f1bae9eab3a7da3d860d3e98");
}

TEST(KeyWrap, EveryDamageIsTheSameFailure) {
  const Bytes kek24(24, 0x2A), kek16(16, 0x2A);
  for (const auto &[cipher, kek] : {std::pair(kDes3, kek24), {kAes128, kek16}, {kSeed, kek16}}) {
    const Bytes key(24, 0x5C);
    Bytes wrapped(64);
    ASSERT_EQ(wrap(cipher, kek, key, wrapped), 0);
    for (size_t i = 0; i < wrapped.size(); ++i) {
      Bytes bad = wrapped, out(24, 0xEE);
      bad[i] ^= 0x10;
      EXPECT_EQ(unwrap(cipher, kek, bad, out), PKV_ERR_FAILED) << i;
      EXPECT_TRUE(out == Bytes(24, 0xEE));
    }
    Bytes out(24);
    ASSERT_EQ(unwrap(cipher, kek, wrapped, out), 0);
    EXPECT_TRUE(out == key);
    Bytes small(23);
    EXPECT_EQ(unwrap(cipher, kek, wrapped, small), PKV_ERR_BAD_VALUE);
    for (const size_t length : {1, 8, 23, 25, 5000}) {
      Bytes room(6000);
      EXPECT_EQ(unwrap(cipher, kek, Bytes(length, 1), room), PKV_ERR_BAD_VALUE) << length;
    }
    EXPECT_EQ(wrap(cipher, Bytes(7, 1), key, wrapped = Bytes(64)), PKV_ERR_BAD_VALUE);
  }
  Bytes room(64);
  EXPECT_EQ(wrap(0x02000000, Bytes(8, 1), Bytes(16, 1), room), PKV_ERR_UNSUPPORTED);
}

// X9.63: values of the CAVP file for SHA-256, one block and more.
TEST(KeyDerivation, Values) {
  const Bytes secret = hex("22518b10e70f2a3f243810ae3254139efbee04aa57c7af7d"),
              info = hex("75eef81aa3041e33b80971203d2c0c52");
  const std::string wanted =
      "c498af77161cc59f2962b9a713e2b215152d139766ce34a776df11866a69bf2e52a13d9c7c6fc878c50c5ea0bc7b00e0da2447cfd874f6"
      "cf92f30d0097111485500c90c3af8b487872d04685d14c8d1dc8d7fa08beb0ce0ababc11f0bd496269142d43525a78e5bc79a17f59676a"
      "5706dc54d54d4d1f0bd7e386128ec26afc21";
  for (const int length : {1, 31, 32, 33, 128}) {
    Bytes out(static_cast<size_t>(length));
    ASSERT_EQ(PKV_X963_KDF(PKV_DIGEST_SHA256, secret.data(), int(secret.size()), info.data(), int(info.size()),
                           out.data(), length),
              0);
    EXPECT_EQ(to_hex(out), wanted.substr(0, 2 * size_t(length)));
  }
  Bytes out(8);
  EXPECT_EQ(PKV_X963_KDF(99, nullptr, 0, nullptr, 0, out.data(), 8), PKV_ERR_UNSUPPORTED);
  EXPECT_EQ(PKV_X963_KDF(PKV_DIGEST_SHA1, nullptr, 0, nullptr, 0, out.data(), 0), PKV_ERR_BAD_VALUE);
}

}  // namespace
