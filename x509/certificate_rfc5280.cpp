// Certificates signed and verified in standard form.
#include <velpki/asn1_error.h>

#include "x509/internal/signature.h"

namespace velpki {

namespace {

// TBSCertificate ::= SEQUENCE { version [0] OPTIONAL, serialNumber, signature AlgorithmIdentifier, ... }
bool algorithm_of_tbs(Cursor &in, Tlv &algorithm) noexcept {
  Tlv skipped;
  if (in.at(tag::explicit_context(0)) && !in.next(skipped)) return false;
  return in.next(skipped) && in.next(algorithm);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int gen_SIG_X509_Cert_RFC5280(X509_CERT *cert, const ASYMMETRIC_KEY *key) noexcept {
  return gen_SIG_X509_Cert_RFC5280_ex(cert, key, kPssDigest);
}

int gen_SIG_X509_Cert_RFC5280_ex(X509_CERT *cert, const ASYMMETRIC_KEY *key, int pss_digest_id) noexcept {
  constexpr int kFunction = F_GEN_RSASIGN_TBS_CERT;
  if (!cert || !cert->tbs || !key) return fail(kFunction, kNullArgument);
  const X509_TBS_CERT &tbs = *cert->tbs;
  if (const int code = check_signing_algorithm(tbs.signature, kFunction)) return code;
  DerWriter octets(kStandardRules);
  if (const int code = encode_tbs(tbs, octets, pss_digest_id)) return code;
  return sign_record(*cert, octets.written(), *tbs.signature, *key, kFunction, pss_digest_id);
}

int verify_SIG_X509_CERT_RFC5280(const X509_CERT *cert, const X509_PUBKEY *issuer_key) noexcept {
  if (!cert || !issuer_key) return fail(F_VERIFY_RSASIGN_TBS_CERT, kNullArgument);
  return verify_received(cert->received, algorithm_of_tbs, *issuer_key, F_VERIFY_RSASIGN_TBS_CERT);
}
