// Public keys: SubjectPublicKeyInfo, key octets, signature values.
#include "samples.h"

using namespace test;

namespace {

TEST(PublicKeys, AcceptedAndRefused) {
  for (const Row &row : table("public_keys")) {
    const std::string &why = row.at("why"), &der = row.at("der");
    Owned<X509_PUBKEY> key, standard;
    EXPECT_EQ(Seq_to_X509_PUBKEY(unit(der), &key), code_at(row, "plain")) << why;
    if (key && why.find("KCDSA") == 0) EXPECT_EQ(hex_of(X509_PUBKEY_to_Seq, key), der) << why;
    EXPECT_EQ(Seq_to_X509_PUBKEY_RFC5280(unit(der), &standard), 0) << why;
    EXPECT_EQ(hex_of(X509_PUBKEY_to_Seq_RFC5280, standard), der) << why;
  }
}

TEST(PublicKeys, FailureClearsTheCallersRecord) {
  Owned<X509_PUBKEY> key;
  ASSERT_EQ(Seq_to_X509_PUBKEY(unit(CertificateParts().spki), &key), 0);
  EXPECT_NE(Seq_to_X509_PUBKEY(unit("3000"), &key), 0);
  EXPECT_EQ(key->algorithm, nullptr);
}

TEST(RsaOctets, ByNumberOfElements) {
  const auto elements = [](int n) {
    Bytes content;
    for (int i = 0; i < n; ++i) content = content + TLV(0x02, Bytes{uint8_t(3 + i)});
    return TLV(0x30, content);
  };
  for (const Row &row : table("rsa_elements")) {
    const int count = number_in(row, "elements");
    const String bits = string(3, elements(count));
    Owned<RSA_UNIT> plain, strict, seq;
    EXPECT_EQ(BITSTRING_to_RSA_KEY(bits, &plain), code_at(row, "plain")) << count;
    EXPECT_EQ(BITSTRING_to_RSA_KEY_strict(bits, &strict), code_at(row, "strict")) << count;
    const int from_unit = Seq_to_RSA_KEY_strict(unit(elements(count)), &seq);
    EXPECT_EQ(from_unit == 0, row.at("unit") == "yes") << count;
    if (!plain) continue;
    EXPECT_EQ(PKV_Is_RSA_Private(plain), number_in(row, "private"));
    String back, published;
    ASSERT_EQ(RSA_KEY_to_BITSTRING(plain, &back), 0);
    ASSERT_EQ(RSA_KEY_to_BITSTRING_strict(plain, &published), 0);
    if (count < 9) EXPECT_EQ(octets_hex(back), to_hex(elements(count)));
    EXPECT_EQ(octets_hex(published), to_hex(elements(2)));
  }
}

// One key in 128 has a coordinate that begins with 00.
TEST(EccOctets, LeadingZerosAreLeftOut) {
  const Bytes point = hex("04") + hex("00" + std::string(62, '1') + std::string(64, '2'));
  Owned<ECC_UNIT> key;
  ASSERT_EQ(BITSTRING_to_ECC_KEY(string(3, point), &key), 0);
  String shorter, whole;
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
  ASSERT_EQ(set_X509_PUBKEY_ecc(pubkey, key), 0);
  EXPECT_TRUE(hex_of(X509_PUBKEY_to_Seq, pubkey).ends_with("034100" + octets_hex(shorter)));
  EXPECT_TRUE(hex_of(X509_PUBKEY_to_Seq_RFC5280, pubkey).ends_with("034200" + to_hex(point)));
}

TEST(Curves, TheList) {
  Owned<ECURVE> curve;
  EXPECT_EQ(set_ECURVE_from_list(&curve, 715), 1);
  EXPECT_EQ(curve, nullptr);
  ASSERT_EQ(set_ECURVE_from_list(&curve, 415), 0);
  EXPECT_STREQ(PKV_Get_ECURVE_Name(curve), "prime256v1");
  Owned<OBJECT_IDENTIFIER> oid;
  EXPECT_EQ(get_ECURVE_OID_from_name(&oid, "secp384r1"), 1);
  EXPECT_EQ(get_ECURVE_OID_from_name(&oid, "prime256v1"), 0);
  EXPECT_EQ(get_ECURVE_OID_from_name(&oid, "prime256v1"), 0);
  EXPECT_EQ(text_of(oid), "1.2.840.10045.3.1.7");
}

TEST(SignatureValues, Halves) {
  struct Case {
    const char *r, *s, *s_read;
  };
  for (const Case &c : {Case{"00aabb", "7f", "7f"}, {"aa", "80", "0080"}, {"aa", "00", "00"}, {"aa", "000001", "01"}}) {
    const Bytes r = hex(c.r), s = hex(c.s);
    String value;
    ASSERT_EQ(encode_KCDSASignatrueValue(r.data(), int(r.size()), s.data(), int(s.size()), &value), 0);
    unsigned char r_out[64], s_out[64];
    int r_length = -1, s_length = -1;
    EXPECT_EQ(decode_KCDSASignatrueValue(r_out, &r_length, s_out, &s_length, value), 0);
    EXPECT_EQ(to_hex(r_out, size_t(r_length)), c.r);
    EXPECT_EQ(to_hex(s_out, size_t(s_length)), c.s_read);
    r_length = int(r.size()) - 1, s_length = 64;
    EXPECT_EQ(decode_KCDSASignatureValue_n(r_out, &r_length, s_out, &s_length, value), 1);
  }
  const Bytes big(4096, 0x11);
  String value;
  unsigned char out[128];
  int r_length = 0, s_length = 0;
  ASSERT_EQ(encode_KCDSASignatureValue(big.data(), 4096, big.data(), 4096, &value), 0);
  EXPECT_EQ(decode_KCDSASignatureValue(out, &r_length, out + 64, &s_length, value), 1);
  for (const auto &[der, code] : {std::pair{"3006020101020102", 0},
                                  {"3006020101020182", F_DECODE_ECDSA_SIGNATURE_VALUE | ERR_ASN1_DECODING},
                                  {"30080201010201020500", F_DECODE_ECDSA_SIGNATURE_VALUE | ERR_ASN1_DECODING}}) {
    r_length = s_length = 64;
    EXPECT_EQ(decode_ECDSA_SIGNATURE_VALUE(out, &r_length, out + 64, &s_length, string(3, hex(der))), code) << der;
  }
}

}  // namespace
