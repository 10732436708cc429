#include <unistd.h>
#include <velpki/pkv.h>

#include <atomic>

#include "provider/keys.h"

using namespace test;

namespace {

using Unit = Owned<DIGEST_UNIT>;
using Hmac = Owned<HMAC_UNIT>;

// FIPS 180 and RFC 1321: "abc"; the HAS-160 of its standard; MDC-2 of its first published example.
struct Known {
  int id, length, block;
  std::string message, digest;
};
const std::vector<Known> kKnown = [] {
  std::vector<Known> all;
  for (const Row &row : table("digest_values"))
    all.push_back(
        {code_at(row, "id"), number_in(row, "length"), number_in(row, "block"), row.at("message"), row.at("digest")});
  return all;
}();

Bytes octets_of(std::string_view text) { return Bytes(text.begin(), text.end()); }

// What a call writes that takes the digest and its length last.
template <class... Arguments>
std::string digest_of(const Arguments &...arguments) {
  Output out(PKV_MAX_DIGEST_LENGTH);
  EXPECT_EQ(call(arguments..., out), 0);
  return to_hex(out.written());
}
std::string digest(int id, const Bytes &data) { return digest_of(PKV_DIGEST, id, data); }
std::string final_of(const Unit &unit) { return digest_of(PKV_Final_DIGEST, unit); }

TEST(Digest, KnownValues) {
  for (const Known &known : kKnown) {
    EXPECT_EQ(digest(known.id, octets_of(known.message)), known.digest);
    EXPECT_EQ(PKV_Get_DIGEST_Length(known.id), known.length);
    EXPECT_EQ(PKV_Get_DIGEST_Block_Length(known.id | PKV_HMAC_FLAG), known.block);
  }
}

// Every way to cut a message in two, continued in the unit itself and in a copy of it.
TEST(Digest, PiecesAndCopiesGiveTheWhole) {
  Bytes whole(150);
  for (size_t i = 0; i < 150; ++i) whole[i] = uint8_t(i * i + 3 * i);
  for (const Known &known : kKnown) {
    const std::string expected = digest(known.id, whole), other = digest(known.id, Bytes(&whole[0], &whole[149]));
    const Unit unit(PKV_New_DIGEST());
    for (int cut = 0; cut < 149; ++cut) {
      ASSERT_EQ(PKV_Init_DIGEST(unit, known.id), 0);
      ASSERT_EQ(PKV_Update_DIGEST(unit, whole.data(), cut), 0);
      const Unit copy(PKV_Dup_DIGEST(unit));
      ASSERT_EQ(PKV_Update_DIGEST(copy, whole.data() + cut, 149 - cut), 0);
      ASSERT_EQ(PKV_Update_DIGEST(unit, whole.data() + cut, 150 - cut), 0);
      ASSERT_EQ(final_of(copy), other) << known.id << " at " << cut;
      ASSERT_EQ(final_of(unit), expected) << known.id << " at " << cut;
    }
  }
}

// A digest repeated, and PBKDF2, against the steps that they stand for.
TEST(Digest, RepeatedAndDerived) {
  const Bytes salt = hex("0102030405"), key(90, 0x61);
  for (const Known &known : kKnown) {
    if (known.id == PKV_DIGEST_MDC2) continue;  // no key longer than its block
    const size_t length = size_t(known.length);
    Bytes value(length, 7), repeated = value, derived(length + 3), sum(length);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(PKV_DIGEST(known.id, value.data(), int(length), value.data(), nullptr), 0);
    ASSERT_EQ(PKV_Repeat_DIGEST(known.id, repeated.data(), 3), 0);
    EXPECT_EQ(to_hex(repeated), to_hex(value)) << known.id;
    Bytes message = salt;
    message.insert(message.end(), {0, 0, 0, 1});
    for (int i = 0; i < 4; ++i) {
      value.assign(length, 0);
      ASSERT_EQ(PKV_HMAC(known.id, key.data(), 90, message.data(), int(message.size()), value.data(), nullptr), 0);
      for (size_t at = 0; at < length; ++at) sum[at] = uint8_t(sum[at] ^ value[at]);
      message = value;
    }
    ASSERT_EQ(PKV_PBKDF2(known.id | PKV_HMAC_FLAG, key.data(), 90, salt.data(), 5, 4, derived.data(), int(length) + 3),
              0);
    EXPECT_EQ(to_hex(derived.data(), length), to_hex(sum)) << known.id;
    const Unit unit(PKV_New_DIGEST());
    EXPECT_EQ(PKV_Get_DIGEST_ID(unit), 0);
    ASSERT_EQ(PKV_Init_DIGEST(unit, known.id), 0);
    EXPECT_EQ(PKV_Get_DIGEST_ID(unit), known.id);
  }
  EXPECT_EQ(PKV_Repeat_DIGEST(0x77, nullptr, 1), PKV_ERR_NULL);
  EXPECT_EQ(PKV_PBKDF2(0x77, nullptr, 0, nullptr, 0, 1, Bytes(1).data(), 1), PKV_ERR_UNSUPPORTED);
  EXPECT_EQ(PKV_PBKDF2(PKV_DIGEST_SHA1, nullptr, 0, nullptr, 0, 0, Bytes(1).data(), 1), PKV_ERR_BAD_VALUE);
}

TEST(Digest, Has160Vectors) {
  VELPKI_NEED_KOREAN;
  for (const Json &c : korean("has160").items) {
    const Bytes piece = c["message"].octets();
    const Unit unit(PKV_New_DIGEST());
    ASSERT_EQ(PKV_Init_DIGEST(unit, PKV_DIGEST_HAS160), 0);
    for (int i = 0; i < c["repeat"].number(); ++i) call(PKV_Update_DIGEST, unit, piece);
    EXPECT_EQ(final_of(unit), c["digest"].text) << c["name"].text;
  }
}

TEST(Digest, CallsOutOfOrderAndBadArguments) {
  const Unit unit(PKV_New_DIGEST());
  uint8_t out[PKV_MAX_DIGEST_LENGTH];
  EXPECT_EQ(PKV_Update_DIGEST(unit, out, 1), PKV_ERR_FAILED);
  EXPECT_EQ(PKV_Final_DIGEST(unit, out, nullptr), PKV_ERR_FAILED);
  for (const Known &known : kKnown) {
    ASSERT_EQ(PKV_Init_DIGEST(unit, known.id), 0);
    EXPECT_EQ(PKV_Update_DIGEST(unit, nullptr, 1), PKV_ERR_NULL);
    EXPECT_EQ(PKV_Update_DIGEST(unit, out, -1), PKV_ERR_BAD_VALUE);
    EXPECT_EQ(PKV_Update_DIGEST(unit, nullptr, 0), 0);
    EXPECT_EQ(final_of(unit), digest(known.id, {}));
    EXPECT_EQ(PKV_Final_DIGEST(unit, out, nullptr), PKV_ERR_FAILED);
  }
  for (const int id : {0, 0x05000600, PKV_DIGEST_SHA1 | PKV_HMAC_FLAG, 0x05000101}) {
    EXPECT_EQ(PKV_DIGEST(id, out, 1, out, nullptr), PKV_ERR_UNSUPPORTED) << id;
    EXPECT_EQ(PKV_Init_DIGEST(unit, id), PKV_ERR_UNSUPPORTED) << id;
  }
  EXPECT_EQ(PKV_DIGEST(PKV_DIGEST_SHA1, out, 1, nullptr, nullptr), PKV_ERR_NULL);
}

TEST(Digest, ThreadsDoNotDisturbOneAnother) {
  std::atomic<size_t> next = 0;
  const auto work = [&] {
    const Known &known = kKnown[6 * next++];
    int wrong = 0;
    for (int turn = 0; turn < 300; ++turn) wrong += digest(known.id, octets_of(known.message)) != known.digest;
    return wrong;
  };
  EXPECT_EQ(in_two_threads(work), 0);
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

// Two messages under one key, each in two pieces, and once in one call.
void expect_mac(int id, const Bytes &key, const Bytes &data, const std::string &expected) {
  const Hmac unit(PKV_New_HMAC());
  const int half = int(data.size() / 2);
  ASSERT_EQ(call(PKV_Init_HMAC, unit, id, key), 0);
  for (int turn = 0; turn < 2; ++turn) {
    EXPECT_EQ(PKV_Update_HMAC(unit, data.data(), half), 0);
    EXPECT_EQ(PKV_Update_HMAC(unit, data.data() + half, int(data.size()) - half), 0);
    EXPECT_EQ(digest_of(PKV_Final_HMAC, unit), expected);
  }
  EXPECT_EQ(digest_of(PKV_HMAC, id, key, data), expected);
}

TEST(HmacTest, KnownValues) {
  const Bytes key = octets_of("Jefe"), data = octets_of("what do ya want for nothing?");
  expect_mac(PKV_DIGEST_MD5, key, data, "750c783e6ab0b503eaa86e310a5db738");
  expect_mac(PKV_DIGEST_SHA224, key, data, "a30e01098bc6dbbf45690f3a7e9e6d0f8bbea2a39e6148008fd05e44");
  expect_mac(PKV_DIGEST_SHA384 | PKV_HMAC_FLAG, key, data,
             "af45d2e376484031617f78d2b58a6b1b9c7ef464f5a01b47e42ec3736322445e8e2240ca5e69e2c78b3239ecfab21649");
  expect_mac(PKV_DIGEST_SHA512, Bytes(131, 0xAA), octets_of("Test Using Larger Than Block-Size Key - Hash Key First"),
             "80b24263c7c1a3ebb71493c1dd7be8b49b46d1f41b4aeec1121b013783f8f3526b56d037e05f2598bd0fd2215d6a1e5295e64f73"
             "f63f0aec8b915a985d786598");
}

TEST(HmacTest, Vectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  VELPKI_NEED_KOREAN;
  for (const char *hash : {"sha1", "sha256"}) {
    const auto id = [&](const Json &) { return digest_id(hash); };
    each_vector(folder + "/hmac_" + hash + "_test.json", id, [](int id, const Json &group, const Json &c) {
      const std::string mac = digest_of(PKV_HMAC, id, c["key"].octets(), c["msg"].octets());
      EXPECT_EQ(mac.substr(0, size_t(group["tagSize"].number()) / 4) == c["tag"].text, c["result"].text == "valid");
    });
  }
  for (const Json &c : korean("hmac").items)
    expect_mac(digest_id(c["hash"].text), c["key"].octets(), c["message"].octets(), c["mac"].text);
}

TEST(HmacTest, BadArguments) {
  const Hmac unit(PKV_New_HMAC());
  uint8_t out[PKV_MAX_DIGEST_LENGTH] = {};
  EXPECT_EQ(PKV_Update_HMAC(unit, out, 1), PKV_ERR_FAILED);
  EXPECT_EQ(PKV_Init_HMAC(unit, PKV_DIGEST_MDC2, out, 8), 0);
  EXPECT_EQ(PKV_Init_HMAC(unit, PKV_DIGEST_MDC2, out, 9), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(PKV_Final_HMAC(unit, out, nullptr), PKV_ERR_FAILED);
  EXPECT_EQ(PKV_Init_HMAC(unit, PKV_DIGEST_SHA1, nullptr, 1), PKV_ERR_NULL);
  EXPECT_EQ(PKV_Init_HMAC(unit, 1, out, 1), PKV_ERR_UNSUPPORTED);
}

}  // namespace
