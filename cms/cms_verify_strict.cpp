// Verifying without the tolerances of verify_CMS.
#include "cms/internal/cms.h"
#include "cms/internal/signer_state.h"
#include "cms/internal/strict.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_VERIFY_CMS, reason); }

// What all signers of a message share.
struct Task {
  const CMS_SIGNED_DATA &data;
  ContentDigests &digests;
  bool weak_allowed;
};

SignerName name_of(const CMS_SIGNER_INFO &signer) noexcept {
  SignerName name = velpki::name_of(signer.sid);
  name.received = received_name(kept_of(signer));
  return name;
}

int verify_one(const CMS_SIGNER_INFO &signer, const Task &task, const X509_CERT *cert) noexcept {
  const X509_PUBKEY *key = get_X509_SPKI(cert);
  if (!key) return failure(ERR_NO_SIGNER_CERTIFICATE);
  DerWriter attributes;
  if (!write_kept_attributes(kept_of(signer), signer.signedAttrs, attributes)) {
    return failure(ERR_ASN1_DECODING);
  }
  const StrictSigner strict{attributes.written(), signer.digestAlgorithm, signer.signatureAlgorithm, signer.signature};
  return verify_signer_strict(strict, task.data.encapContentInfo->eContentType, *key, task.weak_allowed, task.digests,
                              F_VERIFY_CMS);
}

}  // namespace

bool has_subject_key(const X509_CERT &cert, const ASN1_STRING *identifier) noexcept {
  Octets own;
  return identifier && view_subject_key_identifier(cert, own) && equal_octets(own, octets(*identifier));
}

}  // namespace velpki

using namespace velpki;

int verify_CMS_strict(const CMS_CONTENT_INFO *cms, const X509_CERT *cert, const X509_CERTIFICATES *more,
                      const unsigned char *data, int length, int flags, CMS_SIGNER_REPORT *reports,
                      int *report_count) noexcept {
  Reports<CMS_SIGNER_REPORT> made(reports, report_count);
  if (length < 0) return failure(kNullArgument);
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_VERIFY_CMS)) return code;
  const CMS_SIGNED_DATA &content = *signed_data(cms);
  const ENCAPSULATED_CONTENT_INFO *info = content.encapContentInfo;
  if (!info || !info->eContentType) return failure(kNullArgument);
  const Octets held = info->eContent ? octets(*info->eContent) : Octets(), given = octets_of(data, length);
  Octets chosen;
  if (const int code =
          choose_content(info->eContent ? &held : nullptr, data ? &given : nullptr, F_VERIFY_CMS, chosen)) {
    return code;
  }
  ContentDigests digests(chosen);
  const Task task{content, digests, bool(flags & CMS_ALLOW_WEAK_DIGESTS)};
  return verify_each<CMS_SIGNER_INFO>(content.signerInfos, {cert, content.certificates, more}, task, made, F_VERIFY_CMS,
                                      name_of, verify_one);
}
