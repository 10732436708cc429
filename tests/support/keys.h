// Keys that tests sign with.
#pragma once

#include <gtest/gtest.h>

#include "support/asn1.h"

namespace test {

inline Owned<RSA_UNIT> generated_rsa() {
  Owned<RSA_UNIT> made(PKV_New_RSA());
  EXPECT_EQ(PKV_Generate_RSA(made, 1024, 0, nullptr, nullptr), 0);
  return made;
}
inline Owned<ASYMMETRIC_KEY> new_rsa() { return Owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(generated_rsa())); }

// Of any kind, in PKCS#8.
inline Owned<ASYMMETRIC_KEY> key_in(const Owned<P8_PRIV_KEY_INFO> &info) {
  return Owned<ASYMMETRIC_KEY>(info ? dup_ASYMMETRIC_KEY(info->key) : nullptr);
}
inline Owned<ASYMMETRIC_KEY> key_at(const std::string &path) {
  return key_in(read_by(readPEM_P8_PRIV_KEY_INFO_from_File, path));
}

// One RSA and one KCDSA key for the whole program; the domain is the published 1024/160 one.
inline RSA_UNIT *rsa_key() {
  static RSA_UNIT *const key = generated_rsa().release();
  return key;
}

inline const char kP[] =
    "d7b9afc104f4d53f737db88d6bf77e12cd7ec3d71cbe3cb74cd224bff348154afba6bfed797044dfc655dcc20c952c0ec43a97e1ad67e687d1"
    "0729caf622845d162afca8f0248cc412b3596c4c5d3384f7e25ee644ba87bb09b164fb465477b87fdba5eaa400ffa0925714ae19464ffacead"
    "3a9750d121948ab2d8d65c82379f";
inline const char kQ[] = "c3ddd3717bf05b8f8dd725c162f0b9432c6f77fb";
inline const char kG[] =
    "50e414c7a56892d1ad633e42d5cd8346f2c09808111c772cc30b0c544102c27e7b5f9bec57b9df2a153128919d795e46652b2a072e1f2517f2"
    "a3afff5815253aaefe35724cfa1af6afce3a6b41e3d0e13bed0eff54383c4665e69b47ba79bbc3339f86b9be2b58894a18b201afc41fe3a0d9"
    "3d3125efda79bc50dbbb2c3ab639";

inline KCDSA_UNIT *kcdsa_key() {
  static KCDSA_UNIT *const key = [] {
    KCDSA_UNIT *made = PKV_New_KCDSA();
    const Bytes seed = hex("68adb0d1b6aef144a950f3e784c9893d3604090e");
    EXPECT_EQ(PKV_Set_KCDSA_Params(made, number(kP), number(kQ), number(kG), nullptr, nullptr, seed.data(),
                                   int(seed.size()), 5189),
              0);
    EXPECT_EQ(PKV_Generate_KCDSA(made), 0);
    return made;
  }();
  return key;
}

// The keys above live to the end of the program and are no leak of the test that happens to make them first.
class WithKeys : public testing::Test {
 protected:
  static void SetUpTestSuite() { rsa_key(), kcdsa_key(); }
};

// Keys with the same numbers that share nothing with them, so that what a key prepares is released with the test.
inline Owned<ASYMMETRIC_KEY> rsa() {
  const Owned<RSA_UNIT> own(PKV_New_RSA());
  const auto part = [](PKV_RSA_COMPONENT which) { return PKV_Get_RSA_Component(rsa_key(), which); };
  EXPECT_EQ(PKV_Set_RSA_Params(own, part(PKV_RSA_N), part(PKV_RSA_E), part(PKV_RSA_D), part(PKV_RSA_P), part(PKV_RSA_Q),
                               part(PKV_RSA_DP), part(PKV_RSA_DQ), part(PKV_RSA_QINV)),
            0);
  return Owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(own));
}
inline Owned<ASYMMETRIC_KEY> kcdsa() {
  const Owned<KCDSA_UNIT> own(PKV_New_KCDSA());
  const auto part = [](PKV_KCDSA_COMPONENT which) { return PKV_Get_KCDSA_Component(kcdsa_key(), which); };
  EXPECT_EQ(PKV_Set_KCDSA_Params(own, part(PKV_KCDSA_P), part(PKV_KCDSA_Q), part(PKV_KCDSA_G), nullptr,
                                 part(PKV_KCDSA_Y), nullptr, 0, 0),
            0);
  EXPECT_EQ(PKV_Set_KCDSA_Private(own, part(PKV_KCDSA_X)), 0);
  return Owned<ASYMMETRIC_KEY>(KCDSA_UNIT_to_ASYMMETRIC_KEY(own));
}

// A new key on a curve, by the provider's name.
inline Owned<ASYMMETRIC_KEY> new_ec(const char *curve_name) {
  const Owned<ECC_UNIT> key(PKV_New_ECC());
  const Owned<ECURVE> curve(PKV_New_ECURVE());
  EXPECT_EQ(PKV_Set_ECURVE_Named(curve, curve_name), 0);
  EXPECT_EQ(PKV_Set_ECC_Curve(key, curve), 0);
  EXPECT_EQ(PKV_Generate_ECC(key), 0);
  return Owned<ASYMMETRIC_KEY>(ECC_UNIT_to_ASYMMETRIC_KEY(key));
}

// The public half of a key of any kind.
inline Owned<X509_PUBKEY> public_half(const ASYMMETRIC_KEY *key) {
  Owned<X509_PUBKEY> made(new_X509_PUBKEY());
  const int codes[] = {set_X509_PUBKEY_rsa(made, ASYMMETRIC_KEY_to_RSA_UNIT(key)),
                       set_X509_PUBKEY_kcdsa(made, ASYMMETRIC_KEY_to_KCDSA_UNIT(key)),
                       set_X509_PUBKEY_ecc(made, ASYMMETRIC_KEY_to_ECC_UNIT(key))};
  EXPECT_EQ(codes[key->type - 1], 0);
  return made;
}

}  // namespace test
