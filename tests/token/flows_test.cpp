// Every function that signs, with keys that are elsewhere: in SoftHSM2, and behind a callback that fails.
#include "cms/cms_parties.h"
#include "softhsm.h"
#include "x509/requests.h"

namespace {

using namespace test;

constexpr int kSha256 = 672, kBroken = 0x7E;
constexpr const char kPss[] = "1.2.840.113549.1.1.10", kRsaSha256[] = "1.2.840.113549.1.1.11";
const Bytes content(200, 0x5A);

// An unsigned certificate or list, for signatures by an algorithm.
template <class Parts>
Parts parts_for(const char *algorithm) {
  Parts parts;
  parts.signature = parts.outer = hex(hex_of(X509_ALGO_IDENTIFIER_to_Seq, test::algorithm(0, algorithm)));
  return parts;
}
Certificate certificate_for(const X509_PUBKEY *pubkey, const char *algorithm) {
  auto parts = parts_for<CertificateParts>(algorithm);
  parts.spki = hex(hex_of(X509_PUBKEY_to_Seq_RFC5280, pubkey));
  return read_certificate_RFC5280(parts.der());
}

struct OcspAnswer {
  Owned<OCSP_RESPONSE_DATA> data;
  Owned<BASIC_OCSP_RESPONSE> basic;
};

// Who signs, with a key that is elsewhere, what records are made for; the recipient has a key in memory.
struct Signer {
  const Owned<ASYMMETRIC_KEY> &key;
  const X509_PUBKEY *pubkey;
  const char *algorithm;  // of signatures in standard form
  const ASYMMETRIC_KEY *recipient_key;
  Certificate certificate = certificate_for(pubkey, algorithm);
  Certificate recipient = certificate_for(public_half(recipient_key), kRsaSha256);

  Crl list() const { return read_crl_RFC5280(parts_for<CrlParts>(algorithm).der()); }
  Message message(int type = PKCS7_SIGNED_DATA, int padding = PKV_RSA_PKCS1) const {
    Message made = message_of(type);
    EXPECT_TRUE(add_PKCS7_Signature_ex(made, certificate, key, kSha256, padding, nullptr));
    EXPECT_EQ(add_PKCS7_Certificate_ex(made, certificate), 0);
    if (type != PKCS7_SIGNED_DATA) EXPECT_TRUE(add_PKCS7_Recipient(made, recipient));
    return made;
  }
  Cms cms(int padding) const {
    Cms made = cms_of(CMS_TYPE_SIGNED_DATA);
    EXPECT_TRUE(add_CMS_Signature_ex(made, certificate, 0, key, kSha256, padding, nullptr));
    EXPECT_EQ(add_CMS_Certificate(made, certificate), 0);
    return made;
  }
  Owned<OCSP_REQUEST> question() const {
    Owned<OCSP_REQUEST> made;
    EXPECT_EQ(generate_single_OCSP_REQUEST_strict(&made, certificate, certificate, PKV_DIGEST_SHA1, nullptr, 0), 0);
    return made;
  }
  OcspAnswer answer() const {
    OcspAnswer made;
    const Owned<STACK, free_STACK> no_entries(new_STACK());
    EXPECT_EQ(generate_OCSP_RESPONSE_DATA(&made.data, certificate, 0, no_entries, nullptr, 0), 0);
    return made;
  }
};

int sign_in_pieces(const Message &p7) {
  EXPECT_EQ(init_PKCS7_Sign(p7, 1), 0);
  for (const size_t at : {0, 100}) EXPECT_EQ(update_PKCS7_Sign(p7, &content[at], 100), 0);
  return final_PKCS7_Sign(p7);
}
int open_and_verify(const Message &p7, const Signer &s) {
  uint8_t out[256];
  int length = sizeof out;
  return verify_decrypt_PKCS7_strict(p7, s.recipient, s.recipient_key, nullptr, 0, out, &length);
}
int verify_sent(const OCSP_REQUEST *request, const X509_CERT *by) {
  const Bytes octets = octets_by(writeDER_OCSP_REQUEST_to_Binary, request);
  return verify_OCSP_REQUEST_strict(read_by(readDER_OCSP_REQUEST_from_Binary, octets), by);
}

// What signing a record answers, and what verifying it with the public key does then.
struct Codes {
  int signing, verifying;
};
struct Flow {
  const char *name;
  bool rsa_only;
  Codes (*run)(const Signer &);
};
// clang-format off
#define OVER(record, signing, verifying) [](const Signer &s) -> Codes { auto r = record; return {signing, verifying}; }
const Flow kFlows[] = {
  {"certificate", true, OVER(certificate_for(s.pubkey, s.algorithm),
    gen_SIG_X509_Cert(r, s.key), verify_SIG_X509_CERT(r, s.pubkey->key))},
  {"certificate, RFC 5280", false, OVER(certificate_for(s.pubkey, s.algorithm),
    gen_SIG_X509_Cert_RFC5280(r, s.key), verify_SIG_X509_CERT_RFC5280(r, s.pubkey))},
  {"certificate, PSS", true, OVER(certificate_for(s.pubkey, kPss),
    gen_SIG_X509_Cert_RFC5280_ex(r, s.key, PKV_DIGEST_SHA384), verify_SIG_X509_CERT_RFC5280(r, s.pubkey))},
  {"request", true, OVER(unsigned_request(s.key, s.algorithm),
    gen_SIG_PKCS10_X509_REQ(r, s.key), verify_SIG_PKCS10_X509_REQ(r))},
  {"request, RFC 5280", false, OVER(unsigned_request(s.key, s.algorithm),
    gen_SIG_PKCS10_X509_REQ_RFC5280(r, s.key), verify_SIG_PKCS10_X509_REQ_RFC5280(r))},
  {"revocation list", true, OVER(s.list(),
    gen_RSA_SIG_X509_CRL(r, ASYMMETRIC_KEY_to_RSA_UNIT(s.key)), verify_SIG_X509_CRL(r, s.pubkey->key))},
  {"revocation list, RFC 5280", false, OVER(s.list(),
    gen_SIG_X509_CRL_RFC5280(r, s.key), verify_SIG_X509_CRL_RFC5280(r, s.pubkey))},
  {"PKCS#7", true, OVER(s.message(),
    sign_PKCS7_ex(r, content.data(), 200, 0, 0), verify_strictly(r))},
  {"PKCS#7, attributes", true, OVER(s.message(),
    sign_PKCS7_ex(r, content.data(), 200, 0, PKCS7_SIGN_ATTRIBUTES), verify_strictly(r))},
  {"PKCS#7, PSS", true, OVER(s.message(PKCS7_SIGNED_DATA, PKV_RSA_PSS),
    sign_PKCS7_ex(r, content.data(), 200, 0, PKCS7_SIGN_ATTRIBUTES), verify_strictly(r))},
  {"PKCS#7, in pieces, detached", true, OVER(s.message(), sign_in_pieces(r), verify_strictly(r, 0, &content))},
  {"PKCS#7, enveloped", true, OVER(s.message(PKCS7_SIGNED_AND_ENVELOPED_DATA),
    sign_encrypt_PKCS7_userKEY_SP_ex(r, algorithm(419), content.data(), 200, nullptr, nullptr, 0),
    open_and_verify(r, s))},
  {"CMS", true, OVER(s.cms(PKV_RSA_PKCS1), sign_CMS(r, content.data(), 200, 0), verify_strict(r, nullptr, 0))},
  {"CMS, PSS", true, OVER(s.cms(PKV_RSA_PSS), sign_CMS(r, content.data(), 200, 0), verify_strict(r, nullptr, 0))},
  {"OCSP request", true, OVER(s.question(),
    sign_OCSP_REQUEST_ex(r, s.key, s.certificate, PKV_DIGEST_SHA256), verify_sent(r, s.certificate))},
  {"OCSP request, strict", false, OVER(s.question(),
    sign_OCSP_REQUEST_strict(r, s.key, s.certificate, oid(s.algorithm)), verify_sent(r, s.certificate))},
  {"OCSP response", true, OVER(s.answer(),
    generate_BASIC_OCSP_RESPONSE(&r.basic, r.data, s.key, nullptr),
    verify_BASIC_OCSP_RESPONSE(r.basic, s.certificate, nullptr, 0))},
  {"OCSP response, strict", true, OVER(s.answer(),
    generate_BASIC_OCSP_RESPONSE_strict(&r.basic, r.data, s.key, nullptr, oid(s.algorithm)),
    verify_BASIC_OCSP_RESPONSE(r.basic, s.certificate, nullptr, 0))},
};
// clang-format on

int fail_to_sign(void *, int, int, int, const unsigned char *, int, unsigned char *, int *) { return kBroken; }

class Flows : public SoftHsm {
 protected:
  static void run_all(const char *pair, const char *algorithm) {
    P11_KEY by{};
    const Owned<ASYMMETRIC_KEY> key = key_of(pair, by), recipient = rsa();
    ASSERT_TRUE(key);
    const Owned<X509_PUBKEY> half = public_half(key);
    const Owned<ASYMMETRIC_KEY> broken(dup_ASYMMETRIC_KEY(half->key));
    RSA_UNIT *unit = ASYMMETRIC_KEY_to_RSA_UNIT(broken);
    if (unit) PKV_Set_RSA_Callback(unit, fail_to_sign, nullptr);
    if (!unit) PKV_Set_ECC_Callback(ASYMMETRIC_KEY_to_ECC_UNIT(broken), fail_to_sign, nullptr);
    const Signer good{key, half, algorithm, recipient}, bad{broken, half, algorithm, recipient};
    for (const Signer *each : {&good, &bad}) ASSERT_EQ(gen_SIG_X509_Cert_RFC5280(each->certificate, key), 0);
    for (const Flow &flow : kFlows) {
      if (flow.rsa_only && !unit) continue;
      SCOPED_TRACE(flow.name);
      const Codes well = flow.run(good), badly = flow.run(bad);
      EXPECT_EQ(well.signing, 0);
      EXPECT_EQ(well.verifying, 0);
      EXPECT_EQ(badly.signing, kBroken);
      EXPECT_NE(badly.verifying, 0);
    }
  }
};

TEST_F(Flows, SignWithAnRsaKeyElsewhere) { run_all("rsa", kRsaSha256); }
TEST_F(Flows, SignWithAnEccKeyElsewhere) { run_all("ecc", "1.2.840.10045.4.3.3"); }

}  // namespace
