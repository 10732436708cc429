// Verifying, with the tolerances of the plain functions.
#include "cms/internal/certificate_index.h"
#include "cms/internal/signature.h"
#include "cms/internal/signer_state.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_P7_VERIFY, reason); }

SignerParts parts_of(const P7_SIGNER_INFO &signer) noexcept {
  return {signer.version, signer.authenticatedAttributes, signer.encryptedDigest};
}

int verify_with(const P7_SIGNER_INFO &signer, const ASYMMETRIC_KEY *key, ContentDigests &digests) noexcept {
  SignatureScheme scheme;
  if (!key) return 1;
  if (!signature_scheme(signer.digestAlgorithm, signer.digestEncryptionAlgorithm, key->type, scheme)) return 1;
  return verify_signer(parts_of(signer), *key, scheme, digests, F_P7_VERIFY);
}

const ASYMMETRIC_KEY *key_of(const X509_CERT *cert) noexcept {
  const X509_PUBKEY *spki = get_X509_SPKI(cert);
  return spki ? spki->key : nullptr;
}

// The certificate that verifies a signer; null for one that the given certificate is not meant for.
const X509_CERT *certificate_for(const P7_SIGNER_INFO &signer, const X509_CERT *given, const X509_CERTIFICATES *list,
                                 const CertificateIndex &index) noexcept {
  const P7_ISSUER_AND_SERIAL_NUMBER *wanted = signer.issuerAndSerialNumber;
  const X509_CERT *found = nullptr;
  if (given) return cmp_P7_ISSUER_AND_SERIAL_NUMBER(given, wanted) == 0 ? given : nullptr;
  if (!wanted || index.find({nullptr, wanted->issuer, wanted->serialNumber}, found)) return found;
  return find_certificate(list, wanted->issuer, wanted->serialNumber);
}

int verify_all(const P7_CONTENT_INFO &p7, const X509_CERT *given, ContentDigests &digests) noexcept {
  const X509_CERTIFICATES *certificates = certificates_of(&p7);
  const CertificateIndex index(given ? nullptr : signer_infos(&p7), certificates, nullptr,
                               CertificateIndex::Comparison::plain);
  for (const P7_SIGNER_INFO *signer : elements<P7_SIGNER_INFO>(signer_infos(&p7))) {
    const X509_CERT *cert = signer ? certificate_for(*signer, given, certificates, index) : nullptr;
    if (!cert && given) continue;
    if (!cert) return 1;
    if (const int code = verify_with(*signer, key_of(cert), digests)) return code;
  }
  return 0;
}

bool is_empty(const STACK *list) noexcept { return !list || list->count == 0; }

}  // namespace

}  // namespace velpki

using namespace velpki;

int verify_PKCS7(P7_CONTENT_INFO *p7, X509_CERT *cert, const unsigned char *data, int length) noexcept {
  if (!p7) return failure(kNullArgument);
  const int row = content_row(p7);
  if (row != PKCS7_SIGNED_DATA && row != PKCS7_SIGNED_AND_ENVELOPED_DATA) return failure(kUnsupported);
  if (!p7->content || p7->kind != row) return failure(kNullArgument);
  if (is_empty(signer_infos(p7)) || is_empty(certificates_of(p7))) return 0;
  MessageContent content;
  if (const int code = content.load(*p7)) return code;
  if (P7_SIGNED_DATA *signed_content = signed_data(p7); signed_content && !content.present()) {
    mark_detached(signed_content->detached);
  }
  if (!content.present() && (!data || length < 0)) return 1;
  ContentDigests digests(content.present() ? content.octets() : octets_of(data, length));
  return verify_all(*p7, cert, digests);
}

int verify_PKCS7_data(P7_CONTENT_INFO *p7, P7_SIGNER_INFO *si, ASYMMETRIC_KEY *key, int padding, int digest_id,
                      const unsigned char *data, int length) noexcept {
  if (!p7 || !si || !key) return failure(kNullArgument);
  MessageContent content;
  if (const int code = content.load(*p7)) return code;
  if (!content.present() && (!data || length < 0)) return failure(kUnsupported);
  SignatureScheme scheme;
  scheme.digest_id = scheme.mgf_digest_id = digest_id;
  scheme.scheme = padding & 0xFF ? padding & 0xFF : PKV_RSA_PKCS1;
  if (scheme.scheme == PKV_RSA_PSS && si->digestEncryptionAlgorithm &&
      !read_pss_parameters(*si->digestEncryptionAlgorithm, scheme)) {
    return failure(kUnsupported);
  }
  ContentDigests digests(content.present() ? content.octets() : octets_of(data, length));
  return verify_signer(parts_of(*si), *key, scheme, digests, F_P7_VERIFY);
}
