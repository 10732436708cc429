// Every function that signs, with keys that are elsewhere: in SoftHSM2, and behind a callback that fails.
#include "cms/parties.h"
#include "softhsm.h"
#include "x509/requests.h"

namespace {

using namespace test;

constexpr int kSha256 = 672, kAes128Cbc = 419, kBroken = 0x7E;
const Bytes content(200, 0x5A);

// Who signs: the key that is elsewhere, its public half as the others have it, and its certificate.
struct Signer {
  const ASYMMETRIC_KEY *elsewhere;
  const X509_PUBKEY *pubkey;
  const char *algorithm;  // of signatures in standard form
  Certificate certificate;

  ASYMMETRIC_KEY *key() const { return const_cast<ASYMMETRIC_KEY *>(elsewhere); }
  String oid() const { return test::oid(algorithm); }
  template <class Parts>
  Parts parts() const {
    Parts made;
    made.signature = made.outer = hex(hex_of(X509_ALGO_IDENTIFIER_to_Seq, test::algorithm(0, algorithm).get()));
    return made;
  }
  Certificate unsigned_certificate() const {
    auto made = parts<CertificateParts>();
    made.spki = hex(hex_of(X509_PUBKEY_to_Seq_RFC5280, pubkey));
    return read_certificate_RFC5280(made.der());
  }
  Crl unsigned_crl() const { return read_crl_RFC5280(parts<CrlParts>().der()); }
  Request request() const { return unsigned_request(elsewhere, algorithm); }
};

// What signing answers, and what verifying what came of it with the public key does.
struct Codes {
  int signing, verifying;
};

void sign_by(const Signer &s, const Message &p7, int padding) {
  EXPECT_TRUE(add_PKCS7_Signature_ex(p7, s.certificate, s.key(), kSha256, padding, nullptr));
  EXPECT_EQ(add_PKCS7_Certificate_ex(p7, s.certificate), 0);
}
Codes sign_message(const Signer &s, int padding, int flags) {
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  sign_by(s, p7, padding);
  return {sign_PKCS7_ex(p7, content.data(), 200, 0, flags), verify_strictly(p7)};
}
Codes sign_cms(const Signer &s, int padding) {
  const Owned<CMS_CONTENT_INFO> cms(new_CMS_CONTENT_INFO());
  EXPECT_EQ(set_CMS_Type(cms, CMS_TYPE_SIGNED_DATA), 0);
  EXPECT_TRUE(add_CMS_Signature_ex(cms, s.certificate, 0, s.key(), kSha256, padding, nullptr));
  EXPECT_EQ(add_CMS_Certificate(cms, s.certificate), 0);
  return {sign_CMS(cms, content.data(), 200, 0), verify_CMS_strict(cms, nullptr, nullptr, nullptr, 0, 0, nullptr, 0)};
}
// The recipient has a key in memory; the signer does not.
Codes sign_and_seal(const Signer &s) {
  const Owned<ASYMMETRIC_KEY> own = rsa();
  const Owned<X509_PUBKEY> half = public_half(own);
  const Certificate to = Signer{nullptr, half, "1.2.840.113549.1.1.11", nullptr}.unsigned_certificate();
  const Message p7 = message_of(PKCS7_SIGNED_AND_ENVELOPED_DATA);
  sign_by(s, p7, PKV_RSA_PKCS1);
  EXPECT_TRUE(add_PKCS7_Recipient(p7, to));
  uint8_t out[256];
  int length = sizeof out;
  return {sign_encrypt_PKCS7_userKEY_SP_ex(p7, algorithm(kAes128Cbc), content.data(), 200, nullptr, nullptr, 0),
          verify_decrypt_PKCS7_strict(p7, to, own, nullptr, 0, out, &length)};
}

Codes sign_ocsp_request(const Signer &s, int (*sign)(OCSP_REQUEST *, const Signer &)) {
  Owned<OCSP_REQUEST> made;
  EXPECT_EQ(generate_single_OCSP_REQUEST_strict(&made, s.certificate, s.certificate, PKV_DIGEST_SHA1, nullptr, 0), 0);
  const int code = sign(made, s);
  const Owned<OCSP_REQUEST> read(
      read_by(readDER_OCSP_REQUEST_from_Binary, octets_by(writeDER_OCSP_REQUEST_to_Binary, made.get())));
  return {code, code ? code : verify_OCSP_REQUEST_strict(read, s.certificate)};
}
Codes sign_ocsp_response(const Signer &s, int (*sign)(BASIC_OCSP_RESPONSE **, OCSP_RESPONSE_DATA *, const Signer &)) {
  Owned<OCSP_RESPONSE_DATA> data;
  const Owned<STACK, free_STACK> no_entries(new_STACK());
  Owned<BASIC_OCSP_RESPONSE> basic;
  EXPECT_EQ(generate_OCSP_RESPONSE_DATA(&data, s.certificate, 0, no_entries, nullptr, 0), 0);
  const int code = sign(&basic, data, s);
  return {code, code ? code : verify_BASIC_OCSP_RESPONSE(basic, s.certificate, nullptr, 0)};
}

struct Flow {
  const char *name;
  bool rsa_only;
  Codes (*run)(const Signer &);
};
// clang-format off
const Flow kFlows[] = {
  {"certificate", true, [](const Signer &s) -> Codes {
    const Certificate c = s.unsigned_certificate();
    return {gen_SIG_X509_Cert(c, s.key()), verify_SIG_X509_CERT(c, s.pubkey->key)}; }},
  {"certificate, RFC 5280", false, [](const Signer &s) -> Codes {
    const Certificate c = s.unsigned_certificate();
    return {gen_SIG_X509_Cert_RFC5280(c, s.key()), verify_SIG_X509_CERT_RFC5280(c, s.pubkey)}; }},
  {"certificate, PSS", true, [](const Signer &s) -> Codes {
    const Certificate c = Signer{s.elsewhere, s.pubkey, "1.2.840.113549.1.1.10", nullptr}.unsigned_certificate();
    return {gen_SIG_X509_Cert_RFC5280_ex(c, s.key(), PKV_DIGEST_SHA384), verify_SIG_X509_CERT_RFC5280(c, s.pubkey)}; }},
  {"request", true, [](const Signer &s) -> Codes {
    const Request r = s.request();
    return {gen_SIG_PKCS10_X509_REQ(r, s.key()), verify_SIG_PKCS10_X509_REQ(r)}; }},
  {"request, RFC 5280", false, [](const Signer &s) -> Codes {
    const Request r = s.request();
    return {gen_SIG_PKCS10_X509_REQ_RFC5280(r, s.key()), verify_SIG_PKCS10_X509_REQ_RFC5280(r)}; }},
  {"revocation list", true, [](const Signer &s) -> Codes {
    const Crl c = s.unsigned_crl();
    return {gen_RSA_SIG_X509_CRL(c, ASYMMETRIC_KEY_to_RSA_UNIT(s.elsewhere)), verify_SIG_X509_CRL(c, s.pubkey->key)}; }},
  {"revocation list, RFC 5280", false, [](const Signer &s) -> Codes {
    const Crl c = s.unsigned_crl();
    return {gen_SIG_X509_CRL_RFC5280(c, s.key()), verify_SIG_X509_CRL_RFC5280(c, s.pubkey)}; }},
  {"PKCS#7", true, [](const Signer &s) { return sign_message(s, PKV_RSA_PKCS1, 0); }},
  {"PKCS#7, attributes", true, [](const Signer &s) { return sign_message(s, PKV_RSA_PKCS1, PKCS7_SIGN_ATTRIBUTES); }},
  {"PKCS#7, PSS", true, [](const Signer &s) { return sign_message(s, PKV_RSA_PSS, PKCS7_SIGN_ATTRIBUTES); }},
  {"PKCS#7, in pieces, detached", true, [](const Signer &s) -> Codes {
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    sign_by(s, p7, PKV_RSA_PKCS1);
    EXPECT_EQ(init_PKCS7_Sign(p7, 1), 0);
    for (const int at : {0, 100}) EXPECT_EQ(update_PKCS7_Sign(p7, &content[size_t(at)], 100), 0);
    return {final_PKCS7_Sign(p7), verify_strictly(p7, 0, &content)}; }},
  {"PKCS#7, enveloped", true, sign_and_seal},
  {"CMS", true, [](const Signer &s) { return sign_cms(s, PKV_RSA_PKCS1); }},
  {"CMS, PSS", true, [](const Signer &s) { return sign_cms(s, PKV_RSA_PSS); }},
  {"OCSP request", true, [](const Signer &s) {
    return sign_ocsp_request(s, [](OCSP_REQUEST *r, const Signer &by) {
      return sign_OCSP_REQUEST_ex(r, by.key(), by.certificate, PKV_DIGEST_SHA256); }); }},
  {"OCSP request, strict", false, [](const Signer &s) {
    return sign_ocsp_request(s, [](OCSP_REQUEST *r, const Signer &by) {
      return sign_OCSP_REQUEST_strict(r, by.key(), by.certificate, by.oid()); }); }},
  {"OCSP response", true, [](const Signer &s) {
    return sign_ocsp_response(s, [](BASIC_OCSP_RESPONSE **out, OCSP_RESPONSE_DATA *data, const Signer &by) {
      return generate_BASIC_OCSP_RESPONSE(out, data, by.key(), nullptr); }); }},
  {"OCSP response, strict", true, [](const Signer &s) {
    return sign_ocsp_response(s, [](BASIC_OCSP_RESPONSE **out, OCSP_RESPONSE_DATA *data, const Signer &by) {
      return generate_BASIC_OCSP_RESPONSE_strict(out, data, by.key(), nullptr, by.oid()); }); }},
};
// clang-format on

int fail_to_sign(void *, int, int, int, const unsigned char *, int, unsigned char *, int *) { return kBroken; }

class Flows : public SoftHsm {
 protected:
  static void run_all(const KeyPair &pair, const char *algorithm) {
    P11_KEY key = {session, pair.private_key, nullptr, nullptr, CKR_OK};
    Owned<ASYMMETRIC_KEY> made;
    ASSERT_EQ(read_P11_KEY(&key, pair.public_key, &made), 0);
    const Owned<X509_PUBKEY> half = public_half(made);
    const Owned<ASYMMETRIC_KEY> broken(dup_ASYMMETRIC_KEY(half->key));
    if (RSA_UNIT *unit = ASYMMETRIC_KEY_to_RSA_UNIT(broken)) PKV_Set_RSA_Callback(unit, fail_to_sign, nullptr);
    if (ECC_UNIT *unit = ASYMMETRIC_KEY_to_ECC_UNIT(broken)) PKV_Set_ECC_Callback(unit, fail_to_sign, nullptr);
    Signer good{made, half, algorithm, nullptr}, bad{broken, half, algorithm, nullptr};
    for (Signer *each : {&good, &bad}) {
      each->certificate = good.unsigned_certificate();
      ASSERT_EQ(gen_SIG_X509_Cert_RFC5280(each->certificate, made), 0);
    }
    for (const Flow &flow : kFlows) {
      if (flow.rsa_only && !ASYMMETRIC_KEY_to_RSA_UNIT(made)) continue;
      const Codes well = flow.run(good), badly = flow.run(bad);
      EXPECT_TRUE(well.signing == 0 && well.verifying == 0)
          << flow.name << std::hex << ": " << well.signing << ", " << well.verifying;
      EXPECT_EQ(badly.signing, kBroken) << flow.name;
      EXPECT_NE(badly.verifying, 0) << flow.name;
    }
  }
};

TEST_F(Flows, SignWithAnRsaKeyElsewhere) { run_all(rsa, "1.2.840.113549.1.1.11"); }
TEST_F(Flows, SignWithAnEccKeyElsewhere) { run_all(ecc, "1.2.840.10045.4.3.3"); }

}  // namespace
