// Public keys: SubjectPublicKeyInfo, key octets, signature values.
#include "samples.h"

using namespace test;

namespace {

Bytes spki(const char *algorithm, const Bytes &key) {
  return TLV(0x30, TLV(0x30, algorithm) + TLV(0x03, Bytes{0} + key));
}
const char kP256[] = "06072a8648ce3d020106082a8648ce3d030107", kP384[] = "06072a8648ce3d020106052b81040022";
const char kKcdsa1[] = "06082a831a8c9a440115";  // parameters follow

TEST(PublicKeys, AcceptedAndRefused) {
  const int f = F_SEQ_TO_X509_PUBKEY, malformed = f | ERR_ASN1_DECODING;
  const Bytes point = hex("04") + hex(std::string(63, '1') + "0" + std::string(64, '2'));
  const std::string pqg = "020103020105020107";
  struct Case {
    const char *why;
    Bytes der;
    int plain;
  };
  const Case cases[] = {
      {"P-256", spki(kP256, point), 0},
      {"P-256, short halves", spki(kP256, hex("04aabb")), 0},
      {"P-256, infinity", spki(kP256, hex("00")), F_BITSTRING_TO_ECC_KEY | 0x49},
      {"P-256, compressed", spki(kP256, hex("02aabb")), F_BITSTRING_TO_ECC_KEY | 0x49},
      {"P-256, odd rest", spki(kP256, hex("04aabbcc")), F_BITSTRING_TO_ECC_KEY | 0x49},
      {"P-384", spki(kP384, point), malformed},
      {"no curve", spki("06072a8648ce3d0201", point), malformed},
      {"Ed25519", spki("06032b6570", hex("aa")), malformed},
      {"RSA without elements", spki("06092a864886f70d0101010500", hex("3000")), f | 0x38},
      {"RSA that is no SEQUENCE", spki("06092a864886f70d0101010500", hex("ff")), f | 0x38},
      {"RSA, other parameters", spki("06092a864886f70d010101020105", hex("3006020103020105")), 0},
      {"KCDSA, p q g", TLV(0x30, TLV(0x30, hex(kKcdsa1) + TLV(0x30, pqg)) + TLV(0x03, "00020109")), 0},
      {"KCDSA, with j and seed",
       TLV(0x30, TLV(0x30, hex(kKcdsa1) + TLV(0x30, pqg + "02010b3006040141020105")) + TLV(0x03, "00020109")), 0},
      {"KCDSA, seed without j",
       TLV(0x30, TLV(0x30, hex(kKcdsa1) + TLV(0x30, pqg + "3006040141020105")) + TLV(0x03, "00020109")), 0},
      {"KCDSA, huge count",
       TLV(0x30, TLV(0x30, hex(kKcdsa1) + TLV(0x30, pqg + "3009040141020480000000")) + TLV(0x03, "00020109")),
       malformed},
      {"KCDSA without parameters", spki(kKcdsa1, hex("020109")), malformed},
      {"KCDSA without y", TLV(0x30, TLV(0x30, hex(kKcdsa1) + TLV(0x30, pqg)) + TLV(0x03, "00040109")), f | 0x38},
  };
  for (const Case &c : cases) {
    X509_PUBKEY *key = nullptr, *standard = nullptr;
    EXPECT_EQ(Seq_to_X509_PUBKEY(unit(c.der).get(), &key), c.plain) << c.why;
    ASN1_UNIT *out = nullptr;
    if (key && c.der.size() > 20 && std::strstr(c.why, "KCDSA")) {
      EXPECT_EQ(X509_PUBKEY_to_Seq(key, &out), 0) << c.why;
      EXPECT_EQ(flat(out), to_hex(c.der)) << c.why;
      free_ASN1_UNIT(out);
    }
    EXPECT_EQ(Seq_to_X509_PUBKEY_RFC5280(unit(c.der).get(), &standard), 0) << c.why;
    EXPECT_EQ(X509_PUBKEY_to_Seq_RFC5280(standard, &out), 0) << c.why;
    EXPECT_EQ(flat(out), to_hex(c.der)) << c.why;
    free_ASN1_UNIT(out);
    free_X509_PUBKEY(key);
    free_X509_PUBKEY(standard);
  }
}

TEST(PublicKeys, FailureClearsTheCallersRecord) {
  X509_PUBKEY *key = nullptr;
  ASSERT_EQ(Seq_to_X509_PUBKEY(unit(CertificateParts().spki).get(), &key), 0);
  EXPECT_NE(Seq_to_X509_PUBKEY(unit("3000").get(), &key), 0);
  EXPECT_EQ(key->algorithm, nullptr);
  free_X509_PUBKEY(key);
}

TEST(RsaOctets, ByNumberOfElements) {
  const auto elements = [](int n) {
    Bytes content;
    for (int i = 0; i < n; ++i) content = content + TLV(0x02, Bytes{uint8_t(3 + i)});
    return TLV(0x30, content);
  };
  const int f = F_BITSTRING_to_RSA_KEY, malformed = f | ERR_ASN1_DECODING;
  struct Case {
    int elements, plain, strict;
    bool is_private;
  };
  for (const Case &c : {Case{0, f | 0x2B, f | 0x2B, false},
                        {1, malformed, malformed, false},
                        {2, 0, 0, false},
                        {3, 0, malformed, true},
                        {4, malformed, malformed, false},
                        {8, 0, malformed, true},
                        {9, 0, malformed, true}}) {
    const String bits = string(3, elements(c.elements));
    RSA_UNIT *plain = nullptr, *strict = nullptr, *seq = nullptr;
    EXPECT_EQ(BITSTRING_to_RSA_KEY(bits.get(), &plain), c.plain) << c.elements;
    EXPECT_EQ(BITSTRING_to_RSA_KEY_strict(bits.get(), &strict), c.strict) << c.elements;
    const int from_unit = Seq_to_RSA_KEY_strict(unit(elements(c.elements)).get(), &seq);
    EXPECT_EQ(from_unit == 0, c.elements == 2 || c.elements == 3 || c.elements == 8) << c.elements;
    const Owned<RSA_UNIT> owners[] = {Owned<RSA_UNIT>(plain), Owned<RSA_UNIT>(strict), Owned<RSA_UNIT>(seq)};
    if (!plain) continue;
    EXPECT_EQ(PKV_Is_RSA_Private(plain) != 0, c.is_private);
    ASN1_STRING *back = nullptr, *published = nullptr;
    ASSERT_EQ(RSA_KEY_to_BITSTRING(plain, &back), 0);
    ASSERT_EQ(RSA_KEY_to_BITSTRING_strict(plain, &published), 0);
    if (c.elements < 9) EXPECT_EQ(octets_hex(back), to_hex(elements(c.elements)));
    EXPECT_EQ(octets_hex(published), to_hex(elements(2)));
    free_ASN1_STRING(back);
    free_ASN1_STRING(published);
  }
}

// One key in 128 has a coordinate that begins with 00.
TEST(EccOctets, LeadingZerosAreLeftOut) {
  const Bytes point = hex("04") + hex("00" + std::string(62, '1') + std::string(64, '2'));
  ECC_UNIT *key = nullptr;
  ASSERT_EQ(BITSTRING_to_ECC_KEY(string(3, point).get(), &key), 0);
  const Owned<ECC_UNIT> owner(key);
  ASN1_STRING *shorter = nullptr, *whole = nullptr;
  ASSERT_EQ(ECC_KEY_to_BITSTRING(key, &shorter), 0);
  ASSERT_EQ(ECC_KEY_to_BITSTRING_RFC5280(key, &whole), 0);
  EXPECT_EQ(shorter->length, 64);
  EXPECT_EQ(octets_hex(whole), to_hex(point));
  ECC_UNIT *again = nullptr;
  EXPECT_EQ(BITSTRING_to_ECC_KEY(shorter, &again), F_BITSTRING_TO_ECC_KEY | 0x49);
  EXPECT_EQ(BITSTRING_to_ECC_KEY_strict(whole, &again),
            F_BITSTRING_TO_ECC_KEY | ERR_ASN1_DECODING);  // not on the curve
  // A whole SubjectPublicKeyInfo has the form that was asked for.
  const Owned<X509_PUBKEY> pubkey(new_X509_PUBKEY());
  ASSERT_EQ(set_X509_PUBKEY_ecc(pubkey.get(), key), 0);
  ASN1_UNIT *house = nullptr, *standard = nullptr;
  EXPECT_EQ(X509_PUBKEY_to_Seq(pubkey.get(), &house), 0);
  EXPECT_EQ(X509_PUBKEY_to_Seq_RFC5280(pubkey.get(), &standard), 0);
  EXPECT_TRUE(flat(house).ends_with("034100" + octets_hex(shorter)));
  EXPECT_TRUE(flat(standard).ends_with("034200" + to_hex(point)));
  free_ASN1_UNIT(house);
  free_ASN1_UNIT(standard);
  free_ASN1_STRING(shorter);
  free_ASN1_STRING(whole);
}

TEST(Curves, TheList) {
  ECURVE *curve = nullptr;
  EXPECT_EQ(set_ECURVE_from_list(&curve, 715), 1);
  EXPECT_EQ(curve, nullptr);
  ASSERT_EQ(set_ECURVE_from_list(&curve, 415), 0);
  EXPECT_STREQ(PKV_Get_ECURVE_Name(curve), "prime256v1");
  OBJECT_IDENTIFIER *oid = nullptr;
  EXPECT_EQ(get_ECURVE_OID_from_name(&oid, "secp384r1"), 1);
  EXPECT_EQ(get_ECURVE_OID_from_name(&oid, "prime256v1"), 0);
  EXPECT_EQ(get_ECURVE_OID_from_name(&oid, "prime256v1"), 0);
  EXPECT_EQ(text_of(oid), "1.2.840.10045.3.1.7");
  free_OBJECT_IDENTIFIER(oid);
  PKV_Free_ECURVE(curve);
}

TEST(SignatureValues, Halves) {
  struct Case {
    const char *r, *s, *s_read;
  };
  for (const Case &c : {Case{"00aabb", "7f", "7f"}, {"aa", "80", "0080"}, {"aa", "00", "00"}, {"aa", "000001", "01"}}) {
    const Bytes r = hex(c.r), s = hex(c.s);
    ASN1_STRING *value = nullptr;
    ASSERT_EQ(encode_KCDSASignatrueValue(r.data(), int(r.size()), s.data(), int(s.size()), &value), 0);
    unsigned char r_out[64], s_out[64];
    int r_length = -1, s_length = -1;
    EXPECT_EQ(decode_KCDSASignatrueValue(r_out, &r_length, s_out, &s_length, value), 0);
    EXPECT_EQ(to_hex(r_out, size_t(r_length)), c.r);
    EXPECT_EQ(to_hex(s_out, size_t(s_length)), c.s_read);
    r_length = int(r.size()) - 1, s_length = 64;
    EXPECT_EQ(decode_KCDSASignatureValue_n(r_out, &r_length, s_out, &s_length, value), 1);
    free_ASN1_STRING(value);
  }
  const Bytes big(4096, 0x11);
  ASN1_STRING *value = nullptr;
  unsigned char out[128];
  int r_length = 0, s_length = 0;
  ASSERT_EQ(encode_KCDSASignatureValue(big.data(), 4096, big.data(), 4096, &value), 0);
  EXPECT_EQ(decode_KCDSASignatureValue(out, &r_length, out + 64, &s_length, value), 1);
  free_ASN1_STRING(value);
  for (const auto &[der, code] : {std::pair{"3006020101020102", 0},
                                  {"3006020101020182", F_DECODE_ECDSA_SIGNATURE_VALUE | ERR_ASN1_DECODING},
                                  {"30080201010201020500", F_DECODE_ECDSA_SIGNATURE_VALUE | ERR_ASN1_DECODING}}) {
    r_length = s_length = 64;
    EXPECT_EQ(decode_ECDSA_SIGNATURE_VALUE(out, &r_length, out + 64, &s_length, string(3, hex(der)).get()), code)
        << der;
  }
}

}  // namespace
