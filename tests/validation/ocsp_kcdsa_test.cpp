// OCSP messages signed with a KCDSA key, and signatures of sizes that the key does not have.
#include "samples.h"
#include "support/json.h"

using namespace test;

namespace {

struct Signer {
  Certificate cert{new_X509_CERT()};
  Owned<ASYMMETRIC_KEY> key;
  explicit Signer(const Json &v) {
    const Owned<KCDSA_UNIT> unit(PKV_New_KCDSA());
    EXPECT_EQ(PKV_Set_KCDSA_Params(unit, number(v["p"].text), number(v["q"].text), number(v["g"].text), nullptr,
                                   nullptr, nullptr, 0, 0),
              0);
    EXPECT_EQ(PKV_Set_KCDSA_Private(unit, number(v["x"].text)), 0);
    key.reset(KCDSA_UNIT_to_ASYMMETRIC_KEY(unit));
    EXPECT_EQ(set_X509_pub_key(cert, public_half(key)), 0);
  }
};

const Bytes kRequest =
    hex("30423040303e303c303a300906052b0e03021a05000414449b1c5b31c6e9990966523e49c3f773c024190a041434"
        "5cb28b1d8cdd6cbff8f5ccf46521e87a8df391020105");

Bytes signature_of(const Bytes &r, const Bytes &s) { return TLV(0x30, TLV(0x03, Bytes{0} + r) + TLV(0x02, s)); }

TEST(OcspKcdsa, RecordsAnRsaAlgorithmAndVerifiesAllTheSame) {
  VELPKI_NEED_KOREAN;
  const Signer signer(korean("kcdsa_keys").items[0]);
  const Request request = decoded(Seq_to_OCSP_REQUEST, kRequest);
  ASSERT_EQ(sign_OCSP_REQUEST(request, signer.key, nullptr), 0);
  EXPECT_EQ(text_of(request->optionalSignature->signatureAlgorithm->algorithm), "1.2.840.113549.1.1.5");
  EXPECT_EQ(verify_OCSP_REQUEST(request, signer.cert), 0);
  EXPECT_EQ(verify_OCSP_REQUEST_strict(request, signer.cert), kOcsp | ERR_ALGORITHM_MISMATCH);
  for (const char *algorithm : {"1.2.410.200004.1.22", "1.2.410.200004.1.23"}) {
    ASSERT_EQ(sign_OCSP_REQUEST_strict(request, signer.key, nullptr, oid(algorithm)), 0) << algorithm;
    EXPECT_EQ(text_of(request->optionalSignature->signatureAlgorithm->algorithm), algorithm);
    EXPECT_EQ(verify_OCSP_REQUEST_strict(request, signer.cert), 0) << algorithm;
  }
}

TEST(OcspKcdsa, RefusesSignaturesOfAnotherSize) {
  VELPKI_NEED_KOREAN;
  const Signer signer(korean("kcdsa_keys").items[0]);
  const Request request = decoded(Seq_to_OCSP_REQUEST, kRequest);
  ASSERT_EQ(sign_OCSP_REQUEST(request, signer.key, nullptr), 0);
  const Bytes r20(20, 0x81), s20 = Bytes{0} + Bytes(20, 0x81);
  for (const auto &[r, s] : {std::pair(r20, s20),
                             {Bytes(21, 0x81), s20},
                             {Bytes(19, 0x81), s20},
                             {Bytes(), s20},
                             {Bytes(4000, 0x81), s20},
                             {r20, Bytes{0x7F} + Bytes(4000, 0x81)}}) {
    ASN1_STRING *&place = request->optionalSignature->signature;
    free_ASN1_STRING(place);
    place = string(TYPE_BIT_STRING, signature_of(r, s)).release();
    EXPECT_NE(verify_OCSP_REQUEST(request, signer.cert), 0) << r.size() << " " << s.size();
  }
  free_ASN1_STRING(request->optionalSignature->signature);
  request->optionalSignature->signature = string(TYPE_BIT_STRING, hex("3005")).release();
  EXPECT_EQ(verify_OCSP_REQUEST(request, signer.cert), kOcsp | ERR_ASN1_DECODING);
}

}  // namespace
