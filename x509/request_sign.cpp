// Signatures over certification requests.
#include <velpki/asn1_error.h>

#include "x509/internal/pkcs10.h"
#include "x509/internal/signature.h"

namespace velpki {

namespace {

int sign_by_key(Octets tbs, const OBJECT_IDENTIFIER *oid, const ASYMMETRIC_KEY *key, ASN1_STRING &out) noexcept {
  if (const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key)) return sign_rsa(tbs, oid, rsa, kRequest, out);
  if (const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(key)) return sign_kcdsa(tbs, oid, kcdsa, kRequest, out);
  return fail(kRequest, kUnsupported);
}

int verify_by_key(Octets tbs, const PKCS10_X509_REQ &req, const ASYMMETRIC_KEY *key) noexcept {
  if (const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key)) {
    return verify_rsa(tbs, req.sig_alg, req.sig_value, rsa, kRequest);
  }
  if (const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(key)) {
    return verify_kcdsa(tbs, req.sig_alg, req.sig_value, kcdsa, kRequest);
  }
  return fail(kRequest, kUnsupported);
}

}  // namespace

int verify_request(const PKCS10_X509_REQ &req) noexcept {
  const X509_PUBKEY *pubkey = get_PKCS10_X509_REQ_SPKI(&req);
  if (!pubkey || !req.sig_alg) return fail(kRequest, kNullArgument);
  if (req.received) return verify_by_key(received_tbs(*req.received), req, pubkey->key);
  DerWriter info;
  if (const int code = encode(*req.info, info)) return code;
  return verify_by_key(info.written(), req, pubkey->key);
}

}  // namespace velpki

using namespace velpki;

int gen_SIG_PKCS10_X509_REQ(PKCS10_X509_REQ *req, ASYMMETRIC_KEY *key) noexcept {
  if (!req || !req->info || !req->sig_alg || !key) return fail(kRequest, kNullArgument);
  owned<ASN1_STRING> signature(new_ASN1_STRING());
  if (!signature) return fail(kRequest, kNoMemory);
  DerWriter info;
  if (const int code = encode(*req->info, info)) return code;
  if (const int code = sign_by_key(info.written(), req->sig_alg, key, *signature)) return code;
  put(req->sig_value, std::move(signature));
  drop_received(*req);
  return 0;
}

int gen_SIG_PKCS10_X509_REQ_RFC5280(PKCS10_X509_REQ *req, const ASYMMETRIC_KEY *key) noexcept {
  return gen_SIG_PKCS10_X509_REQ_RFC5280_ex(req, key, kPssDigest);
}

int gen_SIG_PKCS10_X509_REQ_RFC5280_ex(PKCS10_X509_REQ *req, const ASYMMETRIC_KEY *key, int pss_digest_id) noexcept {
  if (!req || !req->info || !key) return fail(kRequest, kNullArgument);
  if (const int code = check_signing_algorithm(req->sig_alg, kRequest)) return code;
  DerWriter info(kStandardRules);
  if (const int code = encode(*req->info, info)) return code;
  return sign_record(*req, info.written(), *req->sig_alg, *key, kRequest, pss_digest_id);
}

int verify_SIG_PKCS10_X509_REQ(PKCS10_X509_REQ *req) noexcept {
  return req ? verify_request(*req) : fail(kRequest, kNullArgument);
}

int verify_SIG_PKCS10_X509_REQ_RFC5280(const PKCS10_X509_REQ *req) noexcept {
  const X509_PUBKEY *pubkey = get_PKCS10_X509_REQ_SPKI(req);
  if (!pubkey) return fail(kRequest, kNullArgument);
  return verify_received(req->received, kNoInnerAlgorithm, *pubkey, kRequest);
}
