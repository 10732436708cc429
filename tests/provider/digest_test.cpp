#include <unistd.h>
#include <velpki/pkv.h>

#include <thread>

#include "provider/keys.h"

namespace {

using test::Bytes;
using test::hex;
using test::Json;
using Unit = std::unique_ptr<DIGEST_UNIT, test::Releases<PKV_Free_DIGEST>>;
using Hmac = std::unique_ptr<HMAC_UNIT, test::Releases<PKV_Free_HMAC>>;

// FIPS 180 and RFC 1321: "abc"; the HAS-160 of its standard; MDC-2 of its first published example.
const struct Known {
  int id, length, block;
  const char *message, *digest;
} kKnown[] = {
    {PKV_DIGEST_SHA1, 20, 64, "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
    {PKV_DIGEST_SHA224, 28, 64, "abc", "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
    {PKV_DIGEST_SHA256, 32, 64, "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {PKV_DIGEST_SHA384, 48, 128, "abc",
     "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7"},
    {PKV_DIGEST_SHA512, 64, 128, "abc",
     "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e"
     "2a9ac94fa54ca49f"},
    {PKV_DIGEST_MD5, 16, 64, "abc", "900150983cd24fb0d6963f7d28e17f72"},
    {PKV_DIGEST_HAS160, 20, 64, "abc", "975e810488cf2a3d49838478124afce4b1c78804"},
    {PKV_DIGEST_MDC2, 16, 8, "Now is the time for all ", "42e50cd224baceba760bdd2bd409281a"},
};

std::string digest(int id, const Bytes &data) {
  uint8_t out[PKV_MAX_DIGEST_LENGTH];
  int length = -1;
  EXPECT_EQ(PKV_DIGEST(id, data.data(), int(data.size()), out, &length), 0);
  return test::to_hex(out, size_t(length));
}

std::string final_of(DIGEST_UNIT *unit) {
  uint8_t out[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  EXPECT_EQ(PKV_Final_DIGEST(unit, out, &length), 0);
  return test::to_hex(out, size_t(length));
}

Bytes message(size_t length) {
  Bytes out(length);
  for (size_t i = 0; i < length; ++i) out[i] = uint8_t(i * i + 3 * i);
  return out;
}

TEST(Digest, KnownValues) {
  for (const Known &known : kKnown) {
    const std::string text = known.message;
    EXPECT_EQ(digest(known.id, Bytes(text.begin(), text.end())), known.digest);
    EXPECT_EQ(PKV_Get_DIGEST_Length(known.id), known.length);
    EXPECT_EQ(PKV_Get_DIGEST_Block_Length(known.id | PKV_HMAC_FLAG), known.block);
  }
}

// Every way to cut a message in two, continued in the unit itself and in a copy of it.
TEST(Digest, PiecesAndCopiesGiveTheWhole) {
  const Bytes whole = message(150);
  for (const Known &known : kKnown) {
    const std::string expected = digest(known.id, whole), other = digest(known.id, message(149));
    const Unit unit(PKV_New_DIGEST());
    for (int cut = 0; cut < 149; ++cut) {
      ASSERT_EQ(PKV_Init_DIGEST(unit.get(), known.id), 0);
      ASSERT_EQ(PKV_Update_DIGEST(unit.get(), whole.data(), cut), 0);
      const Unit copy(PKV_Dup_DIGEST(unit.get()));
      ASSERT_EQ(PKV_Update_DIGEST(copy.get(), whole.data() + cut, 149 - cut), 0);
      ASSERT_EQ(PKV_Update_DIGEST(unit.get(), whole.data() + cut, 150 - cut), 0);
      ASSERT_EQ(final_of(copy.get()), other) << known.id << " at " << cut;
      ASSERT_EQ(final_of(unit.get()), expected) << known.id << " at " << cut;
    }
  }
}

TEST(Digest, Has160Vectors) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json all = test::read_json(file);
  for (const Json &c : all["has160"].items) {
    const Bytes piece = c["message"].octets();
    const Unit unit(PKV_New_DIGEST());
    ASSERT_EQ(PKV_Init_DIGEST(unit.get(), PKV_DIGEST_HAS160), 0);
    for (int i = 0; i < c["repeat"].number(); ++i) PKV_Update_DIGEST(unit.get(), piece.data(), int(piece.size()));
    EXPECT_EQ(final_of(unit.get()), c["digest"].text) << c["name"].text;
  }
}

TEST(Digest, CallsOutOfOrderAndBadArguments) {
  const Unit unit(PKV_New_DIGEST());
  uint8_t out[PKV_MAX_DIGEST_LENGTH];
  EXPECT_EQ(PKV_Update_DIGEST(unit.get(), out, 1), PKV_ERR_FAILED);
  EXPECT_EQ(PKV_Final_DIGEST(unit.get(), out, nullptr), PKV_ERR_FAILED);
  for (const Known &known : kKnown) {
    ASSERT_EQ(PKV_Init_DIGEST(unit.get(), known.id), 0);
    EXPECT_EQ(PKV_Update_DIGEST(unit.get(), nullptr, 1), PKV_ERR_NULL);
    EXPECT_EQ(PKV_Update_DIGEST(unit.get(), out, -1), PKV_ERR_BAD_VALUE);
    EXPECT_EQ(PKV_Update_DIGEST(unit.get(), nullptr, 0), 0);
    EXPECT_EQ(final_of(unit.get()), digest(known.id, {}));
    EXPECT_EQ(PKV_Final_DIGEST(unit.get(), out, nullptr), PKV_ERR_FAILED);
  }
  for (const int id : {0, 0x05000600, PKV_DIGEST_SHA1 | PKV_HMAC_FLAG, 0x05000101}) {
    EXPECT_EQ(PKV_DIGEST(id, out, 1, out, nullptr), PKV_ERR_UNSUPPORTED) << id;
    EXPECT_EQ(PKV_Init_DIGEST(unit.get(), id), PKV_ERR_UNSUPPORTED) << id;
  }
  EXPECT_EQ(PKV_DIGEST(PKV_DIGEST_SHA1, out, 1, nullptr, nullptr), PKV_ERR_NULL);
}

TEST(Digest, ThreadsDoNotDisturbOneAnother) {
  std::vector<std::thread> threads;
  for (size_t i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      const Known &known = kKnown[2 * i];
      const Bytes text(known.message, known.message + std::strlen(known.message));
      for (int turn = 0; turn < 300; ++turn) ASSERT_EQ(digest(known.id, text), known.digest);
    });
  }
  for (auto &thread : threads) thread.join();
}

// Constructed before libcrypto is first used, so destroyed after whatever that registers for the process's end.
struct LateUser {
  bool armed = false;
  ~LateUser() {
    uint8_t out[PKV_MAX_DIGEST_LENGTH];
    if (armed) _exit(PKV_Rand_Bytes(out, 16) | PKV_DIGEST(PKV_DIGEST_SHA384, out, 16, out, nullptr));
  }
} late_user;

TEST(ProviderDeathTest, WorksInTheLastDestructor) {
  EXPECT_EXIT((late_user.armed = true, std::exit(99)), testing::ExitedWithCode(0), "");
}

std::string mac(HMAC_UNIT *unit, const Bytes &data) {
  uint8_t out[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  const size_t half = data.size() / 2;
  EXPECT_EQ(PKV_Update_HMAC(unit, data.data(), int(half)), 0);
  EXPECT_EQ(PKV_Update_HMAC(unit, data.data() + half, int(data.size() - half)), 0);
  EXPECT_EQ(PKV_Final_HMAC(unit, out, &length), 0);
  return test::to_hex(out, size_t(length));
}

// Two messages under one key, and once in one call.
void expect_mac(int id, const Bytes &key, const Bytes &data, const std::string &expected) {
  const Hmac unit(PKV_New_HMAC());
  ASSERT_EQ(PKV_Init_HMAC(unit.get(), id, key.data(), int(key.size())), 0);
  EXPECT_EQ(mac(unit.get(), data), expected);
  EXPECT_EQ(mac(unit.get(), data), expected);
  uint8_t out[PKV_MAX_DIGEST_LENGTH];
  ASSERT_EQ(PKV_HMAC(id, key.data(), int(key.size()), data.data(), int(data.size()), out, nullptr), 0);
  EXPECT_EQ(test::to_hex(out, size_t(PKV_Get_DIGEST_Length(id))), expected);
}

TEST(HmacTest, KnownValues) {
  const std::string jefe = "Jefe", what = "what do ya want for nothing?";
  const Bytes key(jefe.begin(), jefe.end()), data(what.begin(), what.end());
  expect_mac(PKV_DIGEST_MD5, key, data, "750c783e6ab0b503eaa86e310a5db738");
  expect_mac(PKV_DIGEST_SHA224, key, data, "a30e01098bc6dbbf45690f3a7e9e6d0f8bbea2a39e6148008fd05e44");
  expect_mac(PKV_DIGEST_SHA384 | PKV_HMAC_FLAG, key, data,
             "af45d2e376484031617f78d2b58a6b1b9c7ef464f5a01b47e42ec3736322445e8e2240ca5e69e2c78b3239ecfab21649");
  const std::string first = "Test Using Larger Than Block-Size Key - Hash Key First";
  expect_mac(
      PKV_DIGEST_SHA512, Bytes(131, 0xAA), Bytes(first.begin(), first.end()),
      "80b24263c7c1a3ebb71493c1dd7be8b49b46d1f41b4aeec1121b013783f8f3526b56d037e05f2598bd0fd2215d6a1e5295e64f73f63f"
      "0aec8b915a985d786598");
}

TEST(HmacTest, Vectors) {
  VELPKI_NEED_VECTORS("sigs/hmac_sha1_test.json", sha1);
  VELPKI_NEED_VECTORS("sigs/hmac_sha256_test.json", sha256);
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", korean);
  for (const auto &[id, file] : {std::pair(PKV_DIGEST_SHA1, sha1), std::pair(PKV_DIGEST_SHA256, sha256)}) {
    for (const Json &group : test::read_json(file)["testGroups"].items) {
      const size_t digits = size_t(group["tagSize"].number()) / 4;
      for (const Json &c : group["tests"].items) {
        uint8_t out[PKV_MAX_DIGEST_LENGTH];
        const Bytes key = c["key"].octets(), data = c["msg"].octets();
        ASSERT_EQ(PKV_HMAC(id, key.data(), int(key.size()), data.data(), int(data.size()), out, nullptr), 0);
        EXPECT_EQ(test::to_hex(out, digits / 2) == c["tag"].text, c["result"].text == "valid") << c["tcId"].text;
      }
    }
  }
  for (const Json &c : test::read_json(korean)["hmac"].items) {
    expect_mac(test::digest_id(c["hash"].text), c["key"].octets(), c["message"].octets(), c["mac"].text);
  }
}

TEST(HmacTest, BadArguments) {
  const Hmac unit(PKV_New_HMAC());
  uint8_t out[PKV_MAX_DIGEST_LENGTH] = {};
  EXPECT_EQ(PKV_Update_HMAC(unit.get(), out, 1), PKV_ERR_FAILED);
  EXPECT_EQ(PKV_Init_HMAC(unit.get(), PKV_DIGEST_MDC2, out, 8), 0);
  EXPECT_EQ(PKV_Init_HMAC(unit.get(), PKV_DIGEST_MDC2, out, 9), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(PKV_Final_HMAC(unit.get(), out, nullptr), PKV_ERR_FAILED);
  EXPECT_EQ(PKV_Init_HMAC(unit.get(), PKV_DIGEST_SHA1, nullptr, 1), PKV_ERR_NULL);
  EXPECT_EQ(PKV_Init_HMAC(unit.get(), 1, out, 1), PKV_ERR_UNSUPPORTED);
}

}  // namespace
