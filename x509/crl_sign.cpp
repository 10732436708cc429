// Signatures over revocation lists.
#include <velpki/asn1_error.h>

#include "x509/internal/crl.h"

namespace velpki {

namespace {

template <class Key>
using Sign = int (*)(Octets, const OBJECT_IDENTIFIER *, const Key *, int, ASN1_STRING &) noexcept;
template <class Key>
using Verify = int (*)(Octets, const OBJECT_IDENTIFIER *, const ASN1_STRING *, const Key *, int) noexcept;

// The body in house form, which is what is signed.
int write_body(const X509_CRL_INFO &info, int function, DerWriter &out) noexcept {
  const int code = encode(info, out);
  return code ? code : out.result(function);
}

// Signature and algorithm take their places together.
int attach(X509_CRL &crl, owned<ASN1_STRING> signature, int function) noexcept {
  if (!replace(crl, &X509_CRL::sig_alg, crl.tbs->signature)) return fail(function, kNoMemory);
  put(crl.sig_value, std::move(signature));
  drop_content(crl.kept);
  return 0;
}

template <class Key>
int sign_crl(X509_CRL *crl, const Key *key, int function, Sign<Key> sign) noexcept {
  if (!crl || !crl->tbs || !key) return fail(function, kNullArgument);
  DerWriter body;
  if (const int code = write_body(*crl->tbs, function, body)) return code;
  owned<ASN1_STRING> signature(new_ASN1_STRING());
  if (!signature) return fail(function, kNoMemory);
  if (const int code = sign(body.written(), crl->tbs->signature, key, function, *signature)) return code;
  return attach(*crl, std::move(signature), function);
}

template <class Key>
int verify_crl(const X509_CRL *crl, const Key *key, int function, Verify<Key> verify) noexcept {
  if (!crl || !crl->tbs || !crl->sig_alg || !key) return fail(function, kNullArgument);
  DerWriter body;
  if (const int code = write_body(*crl->tbs, function, body)) return code;
  return verify(body.written(), crl->sig_alg, crl->sig_value, key, function);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int gen_RSA_SIG_X509_CRL(X509_CRL *crl, RSA_UNIT *rsa_key) noexcept {
  return sign_crl<RSA_UNIT>(crl, rsa_key, F_GEN_RSASIGN, sign_rsa);
}
int gen_KCDSA_SIG_X509_CRL(X509_CRL *crl, KCDSA_UNIT *kcdsa_key) noexcept {
  return sign_crl<KCDSA_UNIT>(crl, kcdsa_key, F_GEN_KCDSASIGN, sign_kcdsa);
}
int verify_RSA_SIG_X509_CRL(X509_CRL *crl, RSA_UNIT *rsa_key) noexcept {
  return verify_crl<RSA_UNIT>(crl, rsa_key, F_VERIFY_RSASIGN, verify_rsa);
}
int verify_KCDSA_SIG_X509_CRL(X509_CRL *crl, KCDSA_UNIT *kcdsa_key) noexcept {
  return verify_crl<KCDSA_UNIT>(crl, kcdsa_key, F_VERIFY_KCDSASIGN, verify_kcdsa);
}

int verify_SIG_X509_CRL(X509_CRL *crl, ASYMMETRIC_KEY *key) noexcept {
  if (!crl || !key) return 1;
  switch (key->type) {
    case ASYMMETRIC_KEY_RSA:
      return verify_RSA_SIG_X509_CRL(crl, ASYMMETRIC_KEY_to_RSA_UNIT(key));
    case ASYMMETRIC_KEY_KCDSA:
      return verify_KCDSA_SIG_X509_CRL(crl, ASYMMETRIC_KEY_to_KCDSA_UNIT(key));
    default:
      return 1;
  }
}
