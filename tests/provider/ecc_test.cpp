#include <thread>

#include "keys.h"

using namespace test;

namespace {

const char *const kCurves[] = {"prime256v1", "secp384r1", "secp521r1"};

Ecc key_on(const std::string &name) {
  const Curve curve(PKV_New_ECURVE());
  Ecc key(PKV_New_ECC());
  EXPECT_EQ(0, PKV_Set_ECURVE_Named(curve.get(), name.c_str()));
  EXPECT_EQ(0, PKV_Set_ECC_Curve(key.get(), curve.get()));
  return key;
}

// INTEGER in its one DER form, positive.
bool read_integer(const Bytes &der, size_t &at, Bytes &out) {
  if (at + 2 > der.size() || der[at] != 2 || der[at + 1] == 0 || der[at + 1] > 0x7F) return false;
  const size_t length = der[at + 1], begin = at + 2;
  if (begin + length > der.size() || der[begin] & 0x80) return false;
  if (length > 1 && der[begin] == 0 && !(der[begin + 1] & 0x80)) return false;
  out.assign(der.begin() + long(begin), der.begin() + long(begin + length));
  at = begin + length;
  return true;
}
// SEQUENCE of two of them and nothing else.
bool read_signature(const Bytes &der, Bytes &r, Bytes &s) {
  if (der.size() < 2 || der[0] != 0x30) return false;
  size_t at = der[1] == 0x81 ? 3 : 2;
  if (der.size() < at || der[at - 1] != der.size() - at || (at == 3) != (der[at - 1] > 0x7F)) return false;
  return read_integer(der, at, r) && read_integer(der, at, s) && at == der.size();
}

}  // namespace

TEST(Ecc, VerifiesEcdsaVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const struct {
    const char *file, *curve;
    int valid;
  } cases[] = {{"secp256r1_sha256", "prime256v1", 50},
               {"secp256r1_sha512", "prime256v1", 40},
               {"secp384r1_sha384", "secp384r1", 30},
               {"secp521r1_sha512", "secp521r1", 25}};
  for (const auto &one : cases) {
    int valid = 0, invalid = 0;
    for (const Json &group : read_json(folder + "/ecdsa_" + one.file + "_test.json")["testGroups"].items) {
      const Ecc key = key_on(one.curve);
      ASSERT_EQ(0, PKV_Set_ECC_Public(key.get(), number(group["publicKey"]["wx"].text).get(),
                                      number(group["publicKey"]["wy"].text).get()));
      for (const Json &vector : group["tests"].items) {
        const Bytes message = vector["msg"].octets();
        Bytes r, s;
        if (!read_signature(vector["sig"].octets(), r, s)) continue;
        if (r[0] == 0) r.erase(r.begin());
        if (s[0] == 0) s.erase(s.begin());
        const bool good = vector["result"].text == "valid";
        EXPECT_EQ(good ? 0 : PKV_ERR_MISMATCH,
                  PKV_ECDSA_VERIFY(key.get(), digest_id(group["sha"].text), message.data(), int(message.size()),
                                   r.data(), int(r.size()), s.data(), int(s.size())))
            << one.file << ' ' << vector["tcId"].text;
        ++(good ? valid : invalid);
      }
    }
    EXPECT_TRUE(valid > one.valid && invalid > 10) << one.file << ' ' << valid << ' ' << invalid;
  }
}

TEST(Ecc, VerifiesEd25519Vectors) {
  VELPKI_NEED_VECTORS("sigs/ed25519_test.json", file);
  int done = 0;
  for (const Json &group : read_json(file)["testGroups"].items) {
    const Bytes key = group["publicKey"]["pk"].octets();
    for (const Json &one : group["tests"].items) {
      const Bytes message = one["msg"].octets(), signature = one["sig"].octets();
      if (signature.size() != 64) continue;  // the length is the caller's to check
      EXPECT_EQ(one["result"].text == "valid" ? 0 : PKV_ERR_MISMATCH,
                PKV_ED25519_VERIFY(key.data(), message.data(), int(message.size()), signature.data()))
          << one["tcId"].text;
      ++done;
    }
  }
  EXPECT_GT(done, 60);
}

// RFC 5903 section 8.1.
TEST(Ecc, AgreesOnAPublishedSecret) {
  const Ecc own = key_on("prime256v1");
  const Point peer(PKV_New_ECC_POINT());
  ASSERT_EQ(0, PKV_Set_ECC_Private(own.get(),
                                   number("C88F01F510D9AC3F70A292DAA2316DE544E9AAB8AFE84049C62A9C57862D1433").get()));
  EXPECT_EQ(digits_of(PKV_Get_ECC_POINT_X(PKV_Get_ECC_Public(own.get()))),
            "dad0b65394221cf9b051e1feca5787d098dfe637fc90b9ef945d0c3772581180");
  ASSERT_EQ(
      0, PKV_Set_ECC_POINT(peer.get(), number("D12DFB5289C8D4F81208B70270398C342296970A0BCCB74C736FC7554494BF63").get(),
                           number("56FBF3CA366CC23E8157854C13C58D6AAC23F046ADA30F8353E74F33039872AB").get()));
  Bytes shared(32);
  int length = 31;
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_ECDH(own.get(), peer.get(), shared.data(), &length));
  length = 32;
  ASSERT_EQ(0, PKV_ECDH(own.get(), peer.get(), shared.data(), &length));
  EXPECT_EQ(to_hex(shared), "d6840f6b42f6edafd13116e0e12565202fef8e9ece7dce03812464d04b9442de");
  ASSERT_EQ(0, PKV_Set_ECC_POINT(peer.get(), number("01").get(), number("01").get()));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_ECDH(own.get(), peer.get(), shared.data(), &length)) << "not on the curve";
}

TEST(Ecc, GeneratesSignsAndAgreesOnEveryCurve) {
  const Bytes message(50, 'm');
  for (const char *name : kCurves) {
    const Ecc key = key_on(name), other = key_on(name);
    ASSERT_EQ(0, PKV_Generate_ECC(key.get()));
    ASSERT_EQ(0, PKV_Generate_ECC(other.get()));
    EXPECT_EQ(0, PKV_Check_ECC(key.get())) << name;
    EXPECT_EQ(1, PKV_Cmp_ECC(key.get(), other.get()));
    int width = 0, same = 0;
    ASSERT_EQ(0, PKV_Get_ECC_Lengths(key.get(), &width, &same));
    Bytes r(size_t(width), 0), s(size_t(width), 0), ours(66), theirs(66);
    for (const int digest : {PKV_DIGEST_SHA256, PKV_DIGEST_SHA512, PKV_DIGEST_HAS160}) {
      const auto verify = [&](const Bytes &with_r) {
        return PKV_ECDSA_VERIFY(key.get(), digest, message.data(), 50, with_r.data(), int(with_r.size()), s.data(),
                                width);
      };
      ASSERT_EQ(0, PKV_ECDSA_SIGN(key.get(), digest, message.data(), 50, r.data(), s.data())) << name;
      EXPECT_EQ(0, verify(r)) << name;
      Bytes longer = r;
      longer.insert(longer.begin(), 0);
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(longer)) << name;
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(s)) << name;
    }
    int length = 66, other_length = 66;
    ASSERT_EQ(0, PKV_ECDH(key.get(), PKV_Get_ECC_Public(other.get()), ours.data(), &length));
    ASSERT_EQ(0, PKV_ECDH(other.get(), PKV_Get_ECC_Public(key.get()), theirs.data(), &other_length));
    EXPECT_TRUE(ours == theirs && length == width && other_length == width) << name;
  }
}

TEST(Ecc, RefusesForeignPointsValuesAndCurves) {
  const Ecc key = key_on("prime256v1");
  const std::string x = "6b17d1f2e12c4247f8bce6e563a440f277037d812deb33a0f4a13945d898c296",
                    y = "4fe342e2fe1a7f9b8ee7eb4a7c0f9e162bce33576b315ececbb6406837bf51f5",
                    n = "ffffffff00000000ffffffffffffffffbce6faada7179e84f3b9cac2fc632551";
  const struct {
    std::string x, y;
    int expected;
  } points[] = {
      {x, y, 0}, {x, x, PKV_ERR_BAD_VALUE}, {"00", "00", PKV_ERR_BAD_VALUE}, {"01" + x, y, PKV_ERR_BAD_VALUE}};
  const uint8_t one = 1;
  for (const auto &point : points) {
    ASSERT_EQ(0, PKV_Set_ECC_Public(key.get(), number(point.x).get(), number(point.y).get()));
    EXPECT_EQ(point.expected, PKV_Check_ECC(key.get())) << point.x;
    EXPECT_EQ(point.expected ? point.expected : PKV_ERR_MISMATCH,
              PKV_ECDSA_VERIFY(key.get(), PKV_DIGEST_SHA1, &one, 1, &one, 1, &one, 1));
  }
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Set_ECC_Private(key.get(), number("00").get()));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Set_ECC_Private(key.get(), number(n).get()));
  ASSERT_EQ(0, PKV_Set_ECC_Public(key.get(), number(x).get(), number(y).get()));
  ASSERT_EQ(0, PKV_Set_ECC_Private(key.get(), number("02").get()));
  EXPECT_EQ(PKV_ERR_MISMATCH, PKV_Check_ECC(key.get())) << "the point is that of 1";
  ASSERT_EQ(0, PKV_Set_ECC_Public(key.get(), number(x).get(), number(y).get()));
  EXPECT_EQ(0, PKV_Is_ECC_Private(key.get())) << "another point's value";

  const Curve curve(PKV_New_ECURVE());
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Set_ECURVE_Named(curve.get(), "secp256k1"));
  const Number small = number("07");
  ASSERT_EQ(0, PKV_Set_ECURVE_Params(curve.get(), 42, "prime256v1", small.get(), small.get(), small.get(),
                                     PKV_Get_ECC_Public(key.get()), small.get()));
  EXPECT_EQ(42, PKV_Get_ECURVE_ID(curve.get()));
  ASSERT_EQ(0, PKV_Set_ECC_Curve(key.get(), curve.get()));
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Check_ECC(key.get())) << "a known name with other values";
}

TEST(Ecc, SharesAsksAndSurvivesExhaustedMemory) {
  const Ecc source = key_on("prime256v1");
  uint8_t r[32], s[32];
  const auto work = [&] {
    const Ecc key(PKV_Dup_ECC(source.get()));
    if (!key) return int(PKV_ERR_NO_MEMORY);
    if (int error = PKV_Generate_ECC(key.get())) return error;
    if (int error = PKV_ECDSA_SIGN(key.get(), PKV_DIGEST_HAS160, r, 0, r, s)) return error;
    const Ecc copy(PKV_Dup_ECC(key.get()));
    if (!copy) return int(PKV_ERR_NO_MEMORY);
    int results[2];
    const auto verify = [&](int *result) {
      *result = PKV_ECDSA_VERIFY(copy.get(), PKV_DIGEST_HAS160, r, 0, r, 32, s, 32);
    };
    std::thread other(verify, &results[1]);
    verify(&results[0]);
    other.join();
    return results[0] ? results[0] : results[1];
  };
  EXPECT_GT(fail_each_allocation(work), 3);

  const Ecc key = key_on("prime256v1");
  const auto answer = [](void *, int kind, int digest, int, const unsigned char *input, int length,
                         unsigned char *signature, int *) {
    EXPECT_TRUE(kind == PKV_KEY_ECC && digest == PKV_DIGEST_SHA1 && length == 20);
    memset(signature, input[0], 32);
    memset(signature + 32, input[1], 32);
    return 0;
  };
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Set_ECC_Callback(key.get(), answer, nullptr)) << "no point";
  ASSERT_EQ(0, PKV_Set_ECC_Public(key.get(), number("01").get(), number("02").get()));
  ASSERT_EQ(0, PKV_Set_ECC_Callback(key.get(), answer, nullptr));
  ASSERT_EQ(0, PKV_ECDSA_SIGN(key.get(), PKV_DIGEST_SHA1, nullptr, 0, r, s));
  EXPECT_TRUE(r[31] == 0xDA && s[31] == 0x39);
}
