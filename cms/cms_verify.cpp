// Verifying, with the tolerances of the plain functions.
#include "cms/internal/cms.h"
#include "cms/internal/signature.h"

namespace velpki {

namespace {

// The comparison of identifiers: as text, for the length of the wanted one.
bool begins_as_text(Octets a, Octets b) noexcept {
  for (size_t i = 0; i < b.size(); ++i) {
    const uint8_t left = i < a.size() ? a[i] : 0;
    if (left != b[i]) return false;
    if (left == 0) return true;
  }
  return true;
}

}  // namespace

bool names_certificate(const SIGNER_IDENTIFIER *identifier, const X509_CERT &cert) noexcept {
  if (!identifier) return false;
  if (identifier->type != CMS_ID_SUBJECT_KEY) {
    return cmp_ISSUER_AND_SERIAL_NUMBER(&cert, identifier->issuerAndSerialNumber) == 0;
  }
  Octets own;
  return identifier->subjectKeyIdentifier && view_subject_key_identifier(cert, own) &&
         begins_as_text(own, octets(*identifier->subjectKeyIdentifier));
}

const X509_CERT *find_named(const X509_CERTIFICATES *list, const SIGNER_IDENTIFIER *identifier) noexcept {
  for (const X509_CERT *cert : elements<X509_CERT>(list))
    if (cert && names_certificate(identifier, *cert)) return cert;
  return nullptr;
}

SignerName name_of(const SIGNER_IDENTIFIER *identifier) noexcept {
  if (!identifier) return {};
  if (identifier->type == CMS_ID_SUBJECT_KEY) return {.subject_key = identifier->subjectKeyIdentifier};
  const ISSUER_AND_SERIAL_NUMBER *name = identifier->issuerAndSerialNumber;
  return name ? SignerName{.issuer = name->issuer, .serial = name->serialNumber} : SignerName();
}

namespace {

int verify_with(const CMS_SIGNER_INFO &signer, const X509_CERT &cert, ContentDigests &digests) noexcept {
  const X509_PUBKEY *spki = get_X509_SPKI(&cert);
  SignatureScheme scheme;
  if (!spki || !spki->key) return 1;
  if (!signature_scheme(signer.digestAlgorithm, signer.signatureAlgorithm, spki->key->type, scheme)) return 1;
  const SignerParts parts{signer.version, signer.signedAttrs, signer.signature};
  return verify_signer(parts, *spki->key, scheme, digests, F_VERIFY_CMS);
}

int verify_all(const CMS_SIGNED_DATA &data, const X509_CERT *given, ContentDigests &digests) noexcept {
  const CertificateIndex index(given ? nullptr : data.signerInfos, data.certificates, nullptr,
                               CertificateIndex::Comparison::plain);
  for (const CMS_SIGNER_INFO *signer : elements<CMS_SIGNER_INFO>(data.signerInfos)) {
    if (!signer || (given && !names_certificate(signer->sid, *given))) continue;
    const X509_CERT *cert = given;
    if (!cert && !index.find(name_of(signer->sid), cert)) cert = find_named(data.certificates, signer->sid);
    if (!cert) return 1;
    if (const int code = verify_with(*signer, *cert, digests)) return code;
  }
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int verify_CMS(CMS_CONTENT_INFO *cms, X509_CERT *cert, const unsigned char *data, int length) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_VERIFY_CMS)) return code;
  CMS_SIGNED_DATA &content = *signed_data(cms);
  if (!has_elements(content.signerInfos) || !has_elements(content.certificates)) return 0;
  const ASN1_STRING *attached = content.encapContentInfo ? content.encapContentInfo->eContent : nullptr;
  if (!attached) mark_detached(content.detached);
  if (!attached && (!data || length < 0)) return 1;
  ContentDigests digests(attached ? octets(*attached) : octets_of(data, length));
  return verify_all(content, cert, digests);
}
