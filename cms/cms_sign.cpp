// Signing: init, update, final.
#include "cms/internal/cms.h"
#include "cms/internal/cms_digests.h"
#include "cms/internal/ecdsa.h"
#include "cms/internal/signer_state.h"

namespace velpki {

namespace {

constexpr int kAttributeEncoding = 0x5F;

bool is_signed(const CMS_SIGNER_INFO &signer) noexcept { return signer.signature && signer.signature->length > 0; }

// Whether the signature is over attributes: those that the signer has, or the ones that a content of another type than
// data makes necessary.
bool signs_attributes(const CMS_SIGNED_DATA &data, const CMS_SIGNER_INFO &signer) noexcept {
  return has_attributes(signer.signedAttrs) || is_typed(data.encapContentInfo);
}

// A key on a curve starts nothing; content in pieces is not for it.
int start(const CMS_SIGNED_DATA &data, CMS_SIGNER_INFO &signer) noexcept {
  if (!is_on_curve(signer.privateKey)) return start_signer(signer, signer.signatureAlgorithm, F_INIT_CMS_SIGN);
  if (!is_ecdsa(signer.digestAlgorithm, signer.signatureAlgorithm)) return fail(F_INIT_CMS_SIGN, kBadValue);
  if (data.detached && !signs_attributes(data, signer)) return fail(F_INIT_CMS_SIGN, kUnsupported);
  return begin_signer(signer, F_INIT_CMS_SIGN);
}

// Signers whose content will come in pieces need it digested on the way.
int start_all(CMS_SIGNED_DATA &data) noexcept {
  for (CMS_SIGNER_INFO *signer : elements<CMS_SIGNER_INFO>(data.signerInfos)) {
    if (!signer || is_signed(*signer)) continue;
    if (const int code = start(data, *signer)) return code;
    if (!data.detached || !signs_attributes(data, *signer)) continue;
    const int code = start_digest(data.digests, digest_id_of(signer->digestAlgorithm), F_INIT_CMS_SIGN);
    if (code) return code;
  }
  return 0;
}

// The content of an attached message is kept when it comes first, and nothing of what comes after.
int keep_content(CMS_SIGNED_DATA &data, Octets octets) noexcept {
  if (!provide_content(data.encapContentInfo)) return fail(F_UPDATE_CMS_SIGN, kNoMemory);
  if (data.encapContentInfo->eContent) return 0;
  data.encapContentInfo->eContent = new_string(TYPE_OCTET_STRING, octets);
  return data.encapContentInfo->eContent ? 0 : fail(F_UPDATE_CMS_SIGN, kNoMemory);
}

int feed_all(CMS_SIGNED_DATA &data, Octets octets) noexcept {
  if (const int code = update_digests(data.digests, octets)) return code;
  return feed_signers<CMS_SIGNER_INFO>(data.signerInfos, octets, is_signed, [&data](const CMS_SIGNER_INFO &signer) {
    return signs_attributes(data, signer);
  });
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int init_CMS_Sign(CMS_CONTENT_INFO *cms, int detached) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_INIT_CMS_SIGN)) return code;
  CMS_SIGNED_DATA &data = *signed_data(cms);
  if (!has_elements(data.signerInfos)) return fail(F_INIT_CMS_SIGN, kBadValue);
  if (!provide_content(data.encapContentInfo)) return fail(F_INIT_CMS_SIGN, kNoMemory);
  data.detached = detached;
  Flat<CMS_DIGESTS>::release(std::exchange(data.digests, nullptr));
  return start_all(data);
}

int update_CMS_Sign(CMS_CONTENT_INFO *cms, const unsigned char *data, int length) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_UPDATE_CMS_SIGN)) return code;
  if (length < 0) return fail(F_UPDATE_CMS_SIGN, kBadValue);
  if (!data && length > 0) return fail(F_UPDATE_CMS_SIGN, kNullArgument);
  CMS_SIGNED_DATA &content = *signed_data(cms);
  return content.detached ? feed_all(content, octets_of(data, length)) : keep_content(content, octets_of(data, length));
}

namespace velpki {

namespace {

// The digest of the content for a signer: of what the message holds, or of what came in pieces.
int content_digest(const CMS_SIGNED_DATA &data, ContentDigests *attached, int digest_id, DigestValue &out) noexcept {
  if (!attached) return finish_digest(data.digests, digest_id, F_FINAL_CMS_SIGN, out);
  Octets digest;
  if (const int code = attached->get(digest_id, digest)) return code;
  out.set(digest);
  return 0;
}

int write_attributes(const CMS_SIGNED_DATA &data, CMS_SIGNER_INFO &signer, ContentDigests *attached,
                     DerWriter &set) noexcept {
  DigestValue digest;
  if (const int code = content_digest(data, attached, digest_id_of(signer.digestAlgorithm), digest)) return code;
  if (!add_content_attributes(signer.signedAttrs, data.encapContentInfo->eContentType, digest.octets())) {
    return fail(F_FINAL_CMS_SIGN, kNoMemory);
  }
  if (!sort_attributes(*signer.signedAttrs)) return fail(F_FINAL_CMS_SIGN, kAttributeEncoding);
  if (write_attribute_set(*signer.signedAttrs, set) || set.failed()) return fail(F_FINAL_CMS_SIGN, kAttributeEncoding);
  return 0;
}

// Signs octets, or with null what was fed. That came as it was, unless attributes that the signer had then are gone.
int make_signature(CMS_SIGNER_INFO &signer, const Octets *octets, owned<ASN1_STRING> &out) noexcept {
  ASYMMETRIC_KEY &key = *signer.privateKey;
  if (!octets && signer.state->skipped) return fail(F_FINAL_CMS_SIGN, kBadValue);
  if (is_on_curve(&key)) {
    if (!octets || !is_ecdsa(signer.digestAlgorithm, signer.signatureAlgorithm))
      return fail(F_FINAL_CMS_SIGN, kBadValue);
    return sign_on_curve(key, *signer.signatureAlgorithm->algorithm, *octets, F_FINAL_CMS_SIGN, out);
  }
  if (octets) {
    if (const int code = start_signer(signer, signer.signatureAlgorithm, F_FINAL_CMS_SIGN)) return code;
    if (const int code = feed_signature(key, *octets)) return code;
  }
  return finish_signature(key, F_FINAL_CMS_SIGN, fail(F_FINAL_CMS_SIGN, kFailedStep), out);
}

int finish(const CMS_SIGNED_DATA &data, CMS_SIGNER_INFO &signer, ContentDigests *attached) noexcept {
  const int type = signer.privateKey ? signer.privateKey->type : 0;
  if (type != ASYMMETRIC_KEY_RSA && type != ASYMMETRIC_KEY_KCDSA && type != ASYMMETRIC_KEY_ECC) {
    return fail(F_FINAL_CMS_SIGN, kUnsupported);
  }
  if (!is_started(signer)) return fail(F_FINAL_CMS_SIGN, kNullArgument);
  const bool attributes = signs_attributes(data, signer);
  DerWriter set;
  if (attributes) {
    if (const int code = write_attributes(data, signer, attached, set)) return code;
  }
  const Octets octets = attributes ? set.written() : attached ? attached->content() : Octets();
  owned<ASN1_STRING> signature;
  if (const int code = make_signature(signer, attributes || attached ? &octets : nullptr, signature)) return code;
  if (!name_signature(signer.signatureAlgorithm, type, attributes, false)) {
    return fail(F_FINAL_CMS_SIGN, kNoMemory);
  }
  if (!end_signer(signer, set.written())) return fail(F_FINAL_CMS_SIGN, kNoMemory);
  put(signer.signature, std::move(signature));
  return 0;
}

}  // namespace

}  // namespace velpki

int final_CMS_Sign(CMS_CONTENT_INFO *cms) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_FINAL_CMS_SIGN)) return code;
  CMS_SIGNED_DATA &data = *signed_data(cms);
  if (!provide_content(data.encapContentInfo)) return fail(F_FINAL_CMS_SIGN, kNoMemory);
  const ASN1_STRING *content = data.encapContentInfo->eContent;
  ContentDigests attached(content ? octets(*content) : Octets());
  for (CMS_SIGNER_INFO *signer : elements<CMS_SIGNER_INFO>(data.signerInfos)) {
    if (!signer || is_signed(*signer)) continue;
    if (const int code = finish(data, *signer, content ? &attached : nullptr)) return code;
  }
  Flat<CMS_DIGESTS>::release(std::exchange(data.digests, nullptr));
  return 0;
}

int sign_CMS(CMS_CONTENT_INFO *cms, const unsigned char *data, int length, int detached) noexcept {
  if (const int code = init_CMS_Sign(cms, detached)) return code;
  if (const int code = update_CMS_Sign(cms, data, length)) return code;
  return final_CMS_Sign(cms);
}
