// Signing: init, update, final.
#include "cms/internal/signer_state.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_P7_SIGN, reason); }

constexpr int kUnknownKeyOnAttributes = 0x1C0048;  // the code that has no module
constexpr int kAttributeEncoding = 0x5F;

bool is_signed(const P7_SIGNER_INFO &signer) noexcept {
  return signer.encryptedDigest && signer.encryptedDigest->length > 0;
}

bool has_version_0(const BIGINT *version) noexcept { return PKV_Get_BIGINT_Bit_Length(version) == 0; }

// Whether the signature is over the attributes, when the signer has the version of the content.
bool signs_attributes(const P7_SIGNER_INFO &signer, const BIGINT *version) noexcept {
  return !has_version_0(version) && has_attributes(signer.authenticatedAttributes);
}

// The message's type is one that has signers, and its content is there.
int check_message(const P7_CONTENT_INFO *p7) noexcept {
  if (!p7) return failure(kNullArgument);
  const int row = content_row(p7);
  if (row != PKCS7_SIGNED_DATA && row != PKCS7_SIGNED_AND_ENVELOPED_DATA) return failure(kUnsupported);
  return p7->content && p7->kind == row ? 0 : failure(kNullArgument);
}

BIGINT *version_of_content(const P7_CONTENT_INFO &p7) noexcept {
  const P7_SIGNED_DATA *data = signed_data(&p7);
  return data ? data->version : signed_and_enveloped_data(&p7)->version;
}

// The content of an attached message is kept when it comes first, and nothing of what comes after.
int keep_content(P7_SIGNED_DATA &data, Octets octets) noexcept {
  if (data.contentInfo && data.contentInfo->content) return 0;
  if (data.contentInfo && content_row(data.contentInfo) != PKCS7_DATA) return failure(kUnsupported);
  owned<P7_CONTENT_INFO> content = new_data(octets);
  if (!content) return failure(kNoMemory);
  put(data.contentInfo, std::move(content));
  return 0;
}

int feed_all(const P7_CONTENT_INFO &p7, Octets octets) noexcept {
  const BIGINT *version = version_of_content(p7);
  return feed_signers<P7_SIGNER_INFO>(signer_infos(&p7), octets, is_signed, [version](const P7_SIGNER_INFO &signer) {
    return signs_attributes(signer, version);
  });
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int init_PKCS7_Sign(P7_CONTENT_INFO *p7, int detached) noexcept {
  if (const int code = check_message(p7)) return code;
  if (P7_SIGNED_DATA *data = signed_data(p7)) {
    data->detached = detached;
    if (!data->contentInfo && !(data->contentInfo = new_P7_CONTENT_INFO())) return failure(kNoMemory);
    OBJECT_IDENTIFIER *&type = data->contentInfo->contentType;
    if (!type && !(type = index_to_OBJECT_IDENTIFIER(PKCS7_DATA))) return failure(kNoMemory);
  }
  const P7_SIGNER_INFOS *signers = signer_infos(p7);
  if (!signers || signers->count == 0) return failure(kBadValue);
  for (P7_SIGNER_INFO *signer : elements<P7_SIGNER_INFO>(signers)) {
    if (!signer || is_signed(*signer)) continue;
    if (const int code = start_signer(*signer, signer->digestEncryptionAlgorithm, F_P7_SIGN)) return code;
  }
  return 0;
}

int update_PKCS7_Sign(P7_CONTENT_INFO *p7, const unsigned char *data, int length) noexcept {
  if (const int code = check_message(p7)) return code;
  if (length < 0) return failure(kBadValue);
  if (!data && length > 0) return failure(kNullArgument);
  P7_SIGNED_DATA *content = signed_data(p7);
  if (content && !content->detached) return keep_content(*content, octets_of(data, length));
  return feed_all(*p7, octets_of(data, length));
}

namespace velpki {

namespace {

// Feeds what is signed, from the start: the attributes, of which `set` receives the encoding, or the content that the
// message has. Where it has none the content was fed as it came, unless the signer had attributes then and its version
// has become 0 since.
int feed(P7_SIGNER_INFO &signer, bool attributes, const MessageContent &content, DerWriter &set) noexcept {
  if (!attributes && !content.present()) return signer.state->skipped ? failure(kBadValue) : 0;
  if (const int code = start_signer(signer, signer.digestEncryptionAlgorithm, F_P7_SIGN)) return code;
  if (!attributes) return feed_signature(*signer.privateKey, content.octets());
  if (write_attribute_set(*signer.authenticatedAttributes, set) || set.failed()) return failure(kAttributeEncoding);
  return feed_signature(*signer.privateKey, set.written());
}

int finish(P7_SIGNER_INFO &signer, const BIGINT *version, const MessageContent &content) noexcept {
  const bool attributes = signs_attributes(signer, version);
  const int key_type = signer.privateKey ? signer.privateKey->type : 0;
  if (key_type != ASYMMETRIC_KEY_RSA && key_type != ASYMMETRIC_KEY_KCDSA) {
    return attributes ? kUnknownKeyOnAttributes : failure(kUnsupported);
  }
  if (!is_started(signer)) return failure(kNullArgument);
  DerWriter set;
  if (const int code = feed(signer, attributes, content, set)) return code;
  owned<ASN1_STRING> signature;
  const int code =
      finish_signature(*signer.privateKey, F_P7_SIGN, fail(F_P7_CONTENT_INFO_TO_SEQ, kFailedStep), signature);
  if (code) return code;
  if (!name_signature(signer.digestEncryptionAlgorithm, key_type, attributes, has_version_0(version))) {
    return failure(kNoMemory);
  }
  if (!end_signer(signer, set.written())) return failure(kNoMemory);
  put(signer.encryptedDigest, std::move(signature));
  return 0;
}

}  // namespace

}  // namespace velpki

int final_PKCS7_Sign(P7_CONTENT_INFO *p7) noexcept {
  if (const int code = check_message(p7)) return code;
  const BIGINT *version = version_of_content(*p7);
  MessageContent content;
  if (const int code = content.load(*p7)) return code;
  for (P7_SIGNER_INFO *signer : elements<P7_SIGNER_INFO>(signer_infos(p7))) {
    if (!signer || is_signed(*signer)) continue;
    if (!set_version(signer->version, PKV_Get_BIGINT_Word(version))) return failure(kNoMemory);
    if (const int code = finish(*signer, version, content)) return code;
  }
  return 0;
}

int sign_PKCS7(P7_CONTENT_INFO *p7, const unsigned char *data, int length, int detached) noexcept {
  if (const int code = init_PKCS7_Sign(p7, detached)) return code;
  if (const int code = update_PKCS7_Sign(p7, data, length)) return code;
  return final_PKCS7_Sign(p7);
}
