// Signing with what RFC 2315 9.2 wants of a signer, and content in pieces.
#include "cms/internal/cms_digests.h"
#include "cms/internal/pkcs7.h"
#include "cms/internal/signature.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_P7_SIGN, reason); }

// Content type and message digest where a signer lacks them, and all its attributes in the order of DER.
int complete(P7_SIGNER_INFO &signer, const OBJECT_IDENTIFIER *type, ContentDigests &digests) noexcept {
  const int digest_id = digest_id_of(signer.digestAlgorithm);
  Octets digest;
  if (!digest_id) return failure(kBadValue);
  if (const int code = digests.get(digest_id, digest)) return code;
  if (!add_content_attributes(signer.authenticatedAttributes, type, digest)) return failure(kNoMemory);
  return sort_attributes(*signer.authenticatedAttributes) ? 0 : failure(kNoMemory);
}

int complete_signers(const P7_CONTENT_INFO &p7, Octets data) noexcept {
  MessageContent content;
  if (const int code = content.load(p7)) return code;
  const P7_SIGNED_DATA *signed_content = signed_data(&p7);
  const P7_CONTENT_INFO *inner = signed_content ? signed_content->contentInfo : nullptr;
  const owned<OBJECT_IDENTIFIER> data_type = oid_of_row(PKCS7_DATA);
  if (!data_type) return failure(kNoMemory);
  ContentDigests digests(content.present() ? content.octets() : data);
  const OBJECT_IDENTIFIER *type = inner && inner->contentType ? inner->contentType : data_type.get();
  for (P7_SIGNER_INFO *signer : elements<P7_SIGNER_INFO>(signer_infos(&p7))) {
    if (!signer || (signer->encryptedDigest && signer->encryptedDigest->length > 0)) continue;
    if (const int code = complete(*signer, type, digests)) return code;
  }
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int sign_PKCS7_ex(P7_CONTENT_INFO *p7, const unsigned char *data, int length, int detached, int flags) noexcept {
  if (!p7) return failure(kNullArgument);
  if (length < 0 || (!data && length > 0)) return failure(kBadValue);
  if (flags & PKCS7_SIGN_ATTRIBUTES) {
    if (const int code = complete_signers(*p7, octets_of(data, length))) return code;
  }
  return sign_PKCS7(p7, data, length, detached);
}

int update_PKCS7_Sign_ex(P7_CONTENT_INFO *p7, const unsigned char *data, int length) noexcept {
  const P7_SIGNED_DATA *content = signed_data(p7);
  const P7_CONTENT_INFO *inner = content && !content->detached ? content->contentInfo : nullptr;
  if (!inner || inner->kind != PKCS7_DATA || !inner->content) return update_PKCS7_Sign(p7, data, length);
  if (length < 0) return failure(kBadValue);
  if (!data && length > 0) return failure(kNullArgument);
  return append_octets(*static_cast<ASN1_STRING *>(inner->content), octets_of(data, length)) ? 0 : failure(kNoMemory);
}
