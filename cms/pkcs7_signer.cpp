// Setting up a signer.
#include "cms/internal/signature.h"
#include "cms/internal/signer_state.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_SET_PKCS7_P7_SIGNER_INFO, reason); }

// What can be told before anything is changed.
int check_signer(const X509_CERT *cert, const ASYMMETRIC_KEY *key, int padding) noexcept {
  if (padding != PKV_RSA_PKCS1 && padding != PKV_RSA_PSS) return failure(kNullArgument);
  if (!cert || !get_X509_issuer(cert) || !get_X509_serial(cert)) return failure(kNullArgument);
  if (key && key->type != ASYMMETRIC_KEY_RSA && key->type != ASYMMETRIC_KEY_KCDSA) return failure(kUnsupported);
  return 0;
}

// A fresh signer for the certificate, complete or an error.
int make_signer(const X509_CERT &cert, const ASYMMETRIC_KEY *key, int digest_index, int padding,
                P7_SIGNER_INFO &out) noexcept {
  if (!oid_of_row(digest_index)) return failure(kUnsupported);
  if (!set_version(out.version, 1) || !set_issuer_and_serial(out.issuerAndSerialNumber, cert)) {
    return failure(kNoMemory);
  }
  if (key && !(out.privateKey = dup_ASYMMETRIC_KEY(key))) return failure(kNoMemory);
  if (!set_algorithm(out.digestAlgorithm, digest_index)) return failure(kNoMemory);
  if (!set_algorithm(out.digestEncryptionAlgorithm, signature_row(digest_index, padding))) return failure(kNoMemory);
  return 0;
}

// The content of `fresh` takes the place of the caller's.
int store_signer(P7_SIGNER_INFO &fresh, P7_SIGNER_INFO &out) noexcept {
  std::swap(fresh, out);
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_PKCS7_P7_SIGNER_INFO(P7_SIGNER_INFO *si, X509_CERT *cert, ASYMMETRIC_KEY *key, int digest_index, int padding,
                             RSASSA_PSS_PARAM *) noexcept {
  if (!si) return failure(kNullArgument);
  if (const int code = check_signer(cert, key, padding)) return code;
  const owned<P7_SIGNER_INFO> fresh(new_P7_SIGNER_INFO());
  if (!fresh) return failure(kNoMemory);
  if (const int code = make_signer(*cert, key, digest_index, padding, *fresh)) return code;
  return store_signer(*fresh, *si);
}

int set_PKCS7_P7_SIGNER_INFO_ex(P7_SIGNER_INFO *si, const X509_CERT *cert, const ASYMMETRIC_KEY *key, int digest_index,
                                int padding, const RSASSA_PSS_PARAM *pss) noexcept {
  if (!si) return failure(kNullArgument);
  if (const int code = check_signer(cert, key, padding)) return code;
  const owned<P7_SIGNER_INFO> fresh(new_P7_SIGNER_INFO());
  if (!fresh) return failure(kNoMemory);
  if (const int code = make_signer(*cert, key, digest_index, padding, *fresh)) return code;
  if (padding == PKV_RSA_PSS) {
    if (const int code = set_pss_parameters(pss, *fresh->digestAlgorithm, F_SET_PKCS7_P7_SIGNER_INFO,
                                            *fresh->digestEncryptionAlgorithm))
      return code;
  }
  return store_signer(*fresh, *si);
}

namespace velpki {

namespace {

// A signer that a setter fills and the message takes, or null.
template <class Fill>
P7_SIGNER_INFO *add_signer(P7_CONTENT_INFO *p7, Fill fill) noexcept {
  owned<P7_SIGNER_INFO> signer(new_P7_SIGNER_INFO());
  if (!signer || fill(signer.get()) || add_PKCS7_Signer(p7, signer.get())) return nullptr;
  return signer.release();
}

}  // namespace

}  // namespace velpki

P7_SIGNER_INFO *add_PKCS7_Signature_withEncryptedAlgorithm(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                                           int digest_index, int padding,
                                                           RSASSA_PSS_PARAM *pss) noexcept {
  return add_signer(p7, [&](P7_SIGNER_INFO *signer) noexcept {
    return set_PKCS7_P7_SIGNER_INFO(signer, cert, key, digest_index, padding, pss);
  });
}

P7_SIGNER_INFO *add_PKCS7_Signature(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                    int digest_index) noexcept {
  return add_PKCS7_Signature_withEncryptedAlgorithm(p7, cert, key, digest_index, PKV_RSA_PKCS1, nullptr);
}

P7_SIGNER_INFO *add_PKCS7_Signature_ex(P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                       int digest_index, int padding, const RSASSA_PSS_PARAM *pss) noexcept {
  return add_signer(p7, [&](P7_SIGNER_INFO *signer) noexcept {
    return set_PKCS7_P7_SIGNER_INFO_ex(signer, cert, key, digest_index, padding, pss);
  });
}
