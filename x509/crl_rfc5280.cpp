// Revocation lists signed and verified in standard form.
#include <velpki/asn1_error.h>

#include "x509/internal/crl.h"
#include "x509/internal/signature.h"

namespace velpki {

namespace {

// TBSCertList ::= SEQUENCE { version INTEGER OPTIONAL, signature AlgorithmIdentifier, ... }
bool algorithm_of_body(Cursor &in, Tlv &algorithm) noexcept {
  Tlv skipped;
  if (in.at(TYPE_INTEGER) && !in.next(skipped)) return false;
  return in.next(algorithm);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int gen_SIG_X509_CRL_RFC5280(X509_CRL *crl, const ASYMMETRIC_KEY *key) noexcept {
  if (!crl || !crl->tbs || !crl->kept || !key) return fail(F_GEN_RSASIGN, kNullArgument);
  const X509_CRL_INFO &info = *crl->tbs;
  if (const int code = check_signing_algorithm(info.signature, F_GEN_RSASIGN)) return code;
  DerWriter body(kStandardRules);
  if (const int code = encode(info, body)) return code;
  Signed made;
  if (const int code = sign_tbs(body.written(), *info.signature, *key, F_GEN_RSASIGN, made)) return code;
  free_OBJECT_IDENTIFIER(std::exchange(crl->sig_alg, made.algorithm.release()));
  free_ASN1_STRING(std::exchange(crl->sig_value, made.signature.release()));
  drop_content(crl->kept);
  crl->kept->received = made.received.release();
  crl->kept->received_count = get_STACK_count(info.revoked);
  crl->kept->standard = true;
  return 0;
}

int verify_SIG_X509_CRL_RFC5280(const X509_CRL *crl, const X509_PUBKEY *issuer_key) noexcept {
  if (!crl || !issuer_key) return fail(F_VERIFY_RSASIGN, kNullArgument);
  return verify_received(received_of(*crl), algorithm_of_body, *issuer_key, F_VERIFY_RSASIGN);
}
