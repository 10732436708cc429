#include "keys.h"

using namespace test;

namespace {

Ecc key_on(const std::string &name) {
  const Curve curve(PKV_New_ECURVE());
  Ecc key(PKV_New_ECC());
  EXPECT_EQ(0, PKV_Set_ECURVE_Named(curve, name.c_str()));
  EXPECT_EQ(0, call(PKV_Set_ECC_Curve, key, curve));
  return key;
}

// r and s of a signature whose DER is the one that they encode to; whole octets, without leading zeros.
bool read_signature(const Bytes &der, Bytes &r, Bytes &s) {
  size_t at = der.size() > 1 && der[1] == 0x81 ? 3 : 2;
  std::string inner;
  for (Bytes *each : {&r, &s}) {
    if (at + 2 > der.size() || !der[at + 1] || at + 2 + der[at + 1] > der.size()) return false;
    each->assign(der.begin() + long(at + 2), der.begin() + long(at + 2 + der[at + 1]));
    at += 2 + each->size();
    if ((*each)[0] == 0 && each->size() > 1) each->erase(each->begin());
    const Bytes sign((*each)[0] >> 7);
    const uint8_t header[] = {2, uint8_t(sign.size() + each->size())};
    inner += to_hex(header, 2) + to_hex(sign) + to_hex(*each);
  }
  const uint8_t header[] = {0x30, 0x81, uint8_t(inner.size() / 2)};
  const std::string short_form = to_hex(header, 1) + to_hex(header + 2, 1), long_form = to_hex(header, 3);
  return to_hex(der) == (inner.size() / 2 < 0x80 ? short_form : long_form) + inner;
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
    const auto make = [&](const Json &group) {
      const Json &point = group["publicKey"];
      Ecc key = key_on(one.curve);
      EXPECT_EQ(0, call(PKV_Set_ECC_Public, key, number(point["wx"].text), number(point["wy"].text)));
      return key;
    };
    const auto check = [&](const Ecc &key, const Json &group, const Json &vector) {
      Bytes r, s;
      if (!read_signature(vector["sig"].octets(), r, s)) return;
      const bool good = vector["result"].text == "valid";
      EXPECT_EQ(good ? 0 : PKV_ERR_MISMATCH,
                call(PKV_ECDSA_VERIFY, key, digest_id(group["sha"].text), vector["msg"].octets(), r, s));
      ++(good ? valid : invalid);
    };
    each_vector(folder + "/ecdsa_" + one.file + "_test.json", make, check);
    EXPECT_TRUE(valid > one.valid && invalid > 10) << one.file << ' ' << valid << ' ' << invalid;
  }
}

TEST(Dsa, VerifiesVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  struct Key {
    Number p, q, g, y;
    explicit operator bool() const { return p && q && g && y; }
  };
  int valid = 0, invalid = 0;
  const auto make = [](const Json &group) {
    const Json &key = group["publicKey"];
    return Key{number(key["p"].text), number(key["q"].text), number(key["g"].text), number(key["y"].text)};
  };
  const auto check = [&](const Key &key, const Json &group, const Json &vector) {
    Bytes r, s;
    if (!read_signature(vector["sig"].octets(), r, s)) return;
    const bool good = vector["result"].text == "valid";
    EXPECT_EQ(good ? 0 : PKV_ERR_MISMATCH, call(PKV_DSA_VERIFY, key.p, key.q, key.g, key.y,
                                                digest_id(group["sha"].text), vector["msg"].octets(), r, s));
    ++(good ? valid : invalid);
    // With p for q there is no domain.
    EXPECT_EQ(PKV_ERR_BAD_VALUE, call(PKV_DSA_VERIFY, key.p, key.p, key.g, key.y, digest_id(group["sha"].text),
                                      vector["msg"].octets(), r, s));
  };
  for (const char *name : {"224_sha224", "256_sha256"})
    each_vector(folder + "/dsa_2048_" + name + "_test.json", make, check);
  EXPECT_TRUE(valid > 25 && invalid > 10) << valid << ' ' << invalid;
}

TEST(Ecc, VerifiesEd25519Vectors) {
  VELPKI_NEED_VECTORS("sigs/ed25519_test.json", file);
  int done = 0;
  each_vector(
      file, [](const Json &) { return true; },
      [&](bool, const Json &group, const Json &one) {
        const Bytes signature = one["sig"].octets();
        if (signature.size() != 64) return;  // the length is the caller's to check
        ++done;
        EXPECT_EQ(
            one["result"].text == "valid" ? 0 : PKV_ERR_MISMATCH,
            call(PKV_ED25519_VERIFY, group["publicKey"]["pk"].octets().data(), one["msg"].octets(), signature.data()));
      });
  EXPECT_GT(done, 60);
}

// RFC 5903 section 8.1.
TEST(Ecc, AgreesOnAPublishedSecret) {
  const Ecc own = key_on("prime256v1");
  const Point peer(PKV_New_ECC_POINT());
  const Number secret = number("C88F01F510D9AC3F70A292DAA2316DE544E9AAB8AFE84049C62A9C57862D1433"),
               x = number("D12DFB5289C8D4F81208B70270398C342296970A0BCCB74C736FC7554494BF63"),
               y = number("56FBF3CA366CC23E8157854C13C58D6AAC23F046ADA30F8353E74F33039872AB"), one = number("01");
  ASSERT_EQ(0, call(PKV_Set_ECC_Private, own, secret));
  EXPECT_EQ(digits_of(PKV_Get_ECC_POINT_X(PKV_Get_ECC_Public(own))),
            "dad0b65394221cf9b051e1feca5787d098dfe637fc90b9ef945d0c3772581180");
  ASSERT_EQ(0, call(PKV_Set_ECC_POINT, peer, x, y));
  Output shared(32), small(31);
  EXPECT_EQ(PKV_ERR_BAD_VALUE, call(PKV_ECDH, own, peer, small));
  ASSERT_EQ(0, call(PKV_ECDH, own, peer, shared));
  EXPECT_EQ(to_hex(shared.written()), "d6840f6b42f6edafd13116e0e12565202fef8e9ece7dce03812464d04b9442de");
  ASSERT_EQ(0, call(PKV_Set_ECC_POINT, peer, one, one));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, call(PKV_ECDH, own, peer, shared)) << "not on the curve";
}

TEST(Ecc, GeneratesSignsAndAgreesOnEveryCurve) {
  const Bytes message(50, 'm');
  for (const char *name : {"prime256v1", "secp384r1", "secp521r1"}) {
    SCOPED_TRACE(name);
    const Ecc key = key_on(name), other = key_on(name);
    for (const Ecc *each : {&key, &other}) ASSERT_EQ(0, PKV_Generate_ECC(each->get()));
    EXPECT_EQ(0, PKV_Check_ECC(key));
    EXPECT_EQ(1, call(PKV_Cmp_ECC, key, other));
    int width = 0, same = 0;
    ASSERT_EQ(0, PKV_Get_ECC_Lengths(key, &width, &same));
    Bytes r(size_t(width), 0), s(size_t(width), 0);
    for (const int digest : {PKV_DIGEST_SHA256, PKV_DIGEST_SHA512, PKV_DIGEST_HAS160}) {
      const auto verify = [&](const Bytes &with_r) { return call(PKV_ECDSA_VERIFY, key, digest, message, with_r, s); };
      ASSERT_EQ(0, call(PKV_ECDSA_SIGN, key, digest, message, r.data(), s.data()));
      EXPECT_EQ(0, verify(r));
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(hex("00" + to_hex(r))));
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(s));
    }
    Output ours(66), theirs(66);
    ASSERT_EQ(0, call(PKV_ECDH, key, PKV_Get_ECC_Public(other), ours));
    ASSERT_EQ(0, call(PKV_ECDH, other, PKV_Get_ECC_Public(key), theirs));
    EXPECT_EQ(ours.written(), theirs.written());
    EXPECT_EQ(ours.length, width);
  }
}

TEST(Ecc, RefusesForeignPointsValuesAndCurves) {
  const Ecc key = key_on("prime256v1");
  constexpr int kBad = PKV_ERR_BAD_VALUE;
  const std::string x = "6b17d1f2e12c4247f8bce6e563a440f277037d812deb33a0f4a13945d898c296",
                    y = "4fe342e2fe1a7f9b8ee7eb4a7c0f9e162bce33576b315ececbb6406837bf51f5",
                    n = "ffffffff00000000ffffffffffffffffbce6faada7179e84f3b9cac2fc632551";
  const auto set_point = [&](const std::string &at_x, const std::string &at_y) {
    ASSERT_EQ(0, call(PKV_Set_ECC_Public, key, number(at_x), number(at_y)));
  };
  const std::tuple<std::string, std::string, int> points[] = {
      {x, y, 0}, {x, x, kBad}, {"00", "00", kBad}, {"01" + x, y, kBad}};
  for (const auto &[at_x, at_y, expected] : points) {
    set_point(at_x, at_y);
    EXPECT_EQ(expected, PKV_Check_ECC(key)) << at_x;
    EXPECT_EQ(expected ? expected : PKV_ERR_MISMATCH,
              call(PKV_ECDSA_VERIFY, key, PKV_DIGEST_SHA1, Bytes(1, 1), Bytes(1, 1), Bytes(1, 1)));
  }
  for (const std::string &bad : {std::string("00"), n}) EXPECT_EQ(kBad, call(PKV_Set_ECC_Private, key, number(bad)));
  set_point(x, y);
  ASSERT_EQ(0, call(PKV_Set_ECC_Private, key, number("02")));
  EXPECT_EQ(PKV_ERR_MISMATCH, PKV_Check_ECC(key)) << "the point is that of 1";
  set_point(x, y);
  EXPECT_EQ(0, PKV_Is_ECC_Private(key)) << "another point's value";

  const Curve curve(PKV_New_ECURVE());
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Set_ECURVE_Named(curve, "secp256k1"));
  const Number small = number("07");
  ASSERT_EQ(0,
            call(PKV_Set_ECURVE_Params, curve, 42, "prime256v1", small, small, small, PKV_Get_ECC_Public(key), small));
  EXPECT_EQ(42, PKV_Get_ECURVE_ID(curve));
  ASSERT_EQ(0, call(PKV_Set_ECC_Curve, key, curve));
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Check_ECC(key)) << "a known name with other values";
}

TEST(Ecc, SharesAsksAndSurvivesExhaustedMemory) {
  const Ecc source = key_on("prime256v1");
  Bytes r(32), s(32);
  const auto work = [&] {
    const Ecc key(PKV_Dup_ECC(source));
    if (!key) return int(PKV_ERR_NO_MEMORY);
    if (int error = PKV_Generate_ECC(key)) return error;
    if (int error = call(PKV_ECDSA_SIGN, key, PKV_DIGEST_HAS160, Bytes(), r.data(), s.data())) return error;
    const Ecc copy(PKV_Dup_ECC(key));
    if (!copy) return int(PKV_ERR_NO_MEMORY);
    return in_two_threads([&] { return call(PKV_ECDSA_VERIFY, copy, PKV_DIGEST_HAS160, Bytes(), r, s); });
  };
  EXPECT_GT(fail_each_allocation(work), 3);

  const auto answer = [](void *, int kind, int digest, int, const unsigned char *input, int length,
                         unsigned char *signature, int *) {
    EXPECT_TRUE(kind == PKV_KEY_ECC && digest == PKV_DIGEST_SHA1 && length == 20);
    memset(signature, input[0], 32);
    memset(signature + 32, input[1], 32);
    return 0;
  };
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Set_ECC_Callback(source, answer, nullptr)) << "no point";
  ASSERT_EQ(0, call(PKV_Set_ECC_Public, source, number("01"), number("02")));
  ASSERT_EQ(0, PKV_Set_ECC_Callback(source, answer, nullptr));
  ASSERT_EQ(0, call(PKV_ECDSA_SIGN, source, PKV_DIGEST_SHA1, Bytes(), r.data(), s.data()));
  EXPECT_TRUE(r == Bytes(32, 0xDA) && s == Bytes(32, 0x39));
}
