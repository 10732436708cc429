// Verifying, with the tolerances of the plain functions.
#include "cms/internal/cms.h"
#include "cms/internal/signature.h"

namespace velpki {

namespace {

// The comparison of identifiers: as text, for the length of the wanted one.
bool begins_as_text(const ASN1_STRING &own, const ASN1_STRING &wanted) noexcept {
  const Octets a = octets(own), b = octets(wanted);
  for (size_t i = 0; i < b.size(); ++i) {
    const uint8_t left = i < a.size() ? a[i] : 0;
    if (left != b[i]) return false;
    if (left == 0) return true;
  }
  return true;
}

}  // namespace

int names_certificate(const SIGNER_IDENTIFIER *identifier, const X509_CERT &cert, bool &named) noexcept {
  named = false;
  if (!identifier) return 0;
  if (identifier->type != CMS_ID_SUBJECT_KEY) {
    named = cmp_ISSUER_AND_SERIAL_NUMBER(&cert, identifier->issuerAndSerialNumber) == 0;
    return 0;
  }
  owned<ASN1_STRING> own;
  const int reason = read_subject_key_identifier(cert, own);
  if (reason == kNoMemory) return reason;
  named = own && identifier->subjectKeyIdentifier && begins_as_text(*own, *identifier->subjectKeyIdentifier);
  return 0;
}

int find_named(const X509_CERTIFICATES *list, const SIGNER_IDENTIFIER *identifier, const X509_CERT *&out) noexcept {
  for (const X509_CERT *cert : elements<X509_CERT>(list)) {
    bool named = false;
    if (const int reason = cert ? names_certificate(identifier, *cert, named) : 0) return reason;
    if (named) return out = cert, 0;
  }
  return 0;
}

namespace {

constexpr int failure(int reason) noexcept { return fail(F_VERIFY_CMS, reason); }

int verify_with(const CMS_SIGNER_INFO &signer, const X509_CERT &cert, ContentDigests &digests) noexcept {
  const X509_PUBKEY *spki = get_X509_SPKI(&cert);
  SignatureScheme scheme;
  if (!spki || !spki->key) return 1;
  if (!signature_scheme(signer.digestAlgorithm, signer.signatureAlgorithm, spki->key->type, scheme)) return 1;
  const SignerParts parts{signer.version, signer.signedAttrs, signer.signature};
  return verify_signer(parts, *spki->key, scheme, digests, F_VERIFY_CMS);
}

// The certificate that verifies a signer; null for one that the given certificate is not meant for.
int certificate_for(const CMS_SIGNER_INFO &signer, const X509_CERT *given, const X509_CERTIFICATES *list,
                    const X509_CERT *&out) noexcept {
  bool named = false;
  if (!given) return find_named(list, signer.sid, out);
  const int reason = names_certificate(signer.sid, *given, named);
  out = named ? given : nullptr;
  return reason;
}

int verify_all(const CMS_SIGNED_DATA &data, const X509_CERT *given, ContentDigests &digests) noexcept {
  for (const CMS_SIGNER_INFO *signer : elements<CMS_SIGNER_INFO>(data.signerInfos)) {
    const X509_CERT *cert = nullptr;
    if (const int reason = signer ? certificate_for(*signer, given, data.certificates, cert) : 0) {
      return failure(reason);
    }
    if (!cert && given) continue;
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
  if (!attached) content.detached = 1;
  if (!attached && (!data || length < 0)) return 1;
  ContentDigests digests(attached ? octets(*attached) : octets_of(data, length));
  return verify_all(content, cert, digests);
}
