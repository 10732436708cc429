// Authenticated data: a MAC under a key that the recipients share (RFC 5652 9).
#include "cms/internal/cms_digests.h"
#include "cms/internal/cms_open.h"
#include "cms/internal/hmac_algorithm.h"
#include "cms/internal/key_transport.h"
#include "cms/internal/key_wrap.h"
#include "cms/internal/strict.h"

namespace velpki {

namespace {

constexpr int kAttributeEncoding = 0x5F;

// What the MAC is over: the content, or the SET of the attributes that bind it.
bool write_covered(const CMS_AUTHENTICATED_DATA &data, Octets content, DerWriter &out) noexcept {
  if (!has_attributes(data.authAttrs)) return out.raw(content), !out.failed();
  return !write_attribute_set(*data.authAttrs, out) && !out.failed();
}

// Attributes, or a content of another type than data, need the digest of the content.
int bind_content(CMS_AUTHENTICATED_DATA &data, int digest_id, Octets content) noexcept {
  constexpr int kFunction = F_SET_CMS_MAC;
  if (!has_attributes(data.authAttrs) && !is_typed(data.encapContentInfo)) return 0;
  const int row = get_OID_from_DigestID(digest_id);
  ContentDigests digests(content);
  Octets digest;
  if (row < 1) return fail(kFunction, kUnsupported);
  if (const int code = digests.get(digest_id, digest)) return code;
  if (!set_algorithm(data.digestAlgorithm, row)) return fail(kFunction, kNoMemory);
  if (!add_content_attributes(data.authAttrs, data.encapContentInfo->eContentType, digest)) {
    return fail(kFunction, kNoMemory);
  }
  return sort_attributes(*data.authAttrs) ? 0 : fail(kFunction, kAttributeEncoding);
}

int set_mac(CMS_AUTHENTICATED_DATA &data, int mac_digest_id, const SecretOctets &key, Octets content) noexcept {
  constexpr int kFunction = F_SET_CMS_MAC;
  uint8_t mac[PKV_MAX_DIGEST_LENGTH];
  int length = PKV_MAX_DIGEST_LENGTH;
  DerWriter covered(kStandardRules);
  if (!write_covered(data, content, covered)) return fail(kFunction, kAttributeEncoding);
  const Octets octets = covered.written();
  if (const int code =
          PKV_HMAC(mac_digest_id, key.data(), key.size(), octets.data(), int(octets.size()), mac, &length)) {
    return code;
  }
  ASN1_STRING *string = new_string(TYPE_OCTET_STRING, octets_of(mac, length));
  if (!string) return fail(kFunction, kNoMemory);
  free_ASN1_STRING(std::exchange(data.mac, string));
  return 0;
}

int store_content(CMS_AUTHENTICATED_DATA &data, Octets content, bool detached) noexcept {
  if (!provide_content(data.encapContentInfo)) return fail(F_SET_CMS_MAC, kNoMemory);
  if (detached) return 0;
  ASN1_STRING *string = new_string(TYPE_OCTET_STRING, content);
  if (!string) return fail(F_SET_CMS_MAC, kNoMemory);
  free_ASN1_STRING(std::exchange(data.encapContentInfo->eContent, string));
  return 0;
}

// The content that a MAC to be verified is about: the message's own, or the caller's, which must not differ.
int find_content(const CMS_AUTHENTICATED_DATA &from, const unsigned char *data, int length, Octets &content) noexcept {
  if (!from.encapContentInfo || !from.encapContentInfo->eContentType || !from.mac) {
    return fail(F_VERIFY_CMS, kNullArgument);
  }
  const ASN1_STRING *attached = from.encapContentInfo->eContent;
  if (!attached && !data) return fail(F_VERIFY_CMS, ERR_NO_CONTENT);
  content = attached ? octets(*attached) : octets_of(data, length);
  const bool same = !attached || !data || equal_octets(content, octets_of(data, length));
  return same ? 0 : fail(F_VERIFY_CMS, ERR_CONTENT_MISMATCH);
}

int check_mac(const CMS_AUTHENTICATED_DATA &from, int digest_id, const SecretOctets &key, Octets content) noexcept {
  uint8_t mac[PKV_MAX_DIGEST_LENGTH];
  int length = PKV_MAX_DIGEST_LENGTH;
  DerWriter covered(kStandardRules);
  if (!write_covered(from, content, covered)) return fail(F_VERIFY_CMS, kAttributeEncoding);
  const Octets octets = covered.written();
  if (const int code = PKV_HMAC(digest_id, key.data(), key.size(), octets.data(), int(octets.size()), mac, &length)) {
    return code;
  }
  if (from.mac->length != length || !PKV_Equal_Secret(from.mac->data, mac, size_t(length))) {
    return fail(F_VERIFY_CMS, kMismatch);
  }
  if (has_attributes(from.authAttrs) && is_weak_digest(digest_id_of(from.digestAlgorithm))) {
    return fail(F_VERIFY_CMS, ERR_WEAK_DIGEST);
  }
  const StrictSigner binding{has_attributes(from.authAttrs) ? octets : Octets(), from.digestAlgorithm, nullptr,
                             nullptr};
  ContentDigests digests(content);
  return check_binding(binding, from.encapContentInfo->eContentType, digests, F_VERIFY_CMS);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int authenticate_CMS(CMS_CONTENT_INFO *cms, int mac_digest_id, int digest_id, const unsigned char *data, int length,
                     int detached, int padding) noexcept {
  constexpr int kFunction = F_SET_CMS_MAC;
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, kFunction)) return code;
  if (length < 0 || (!data && length > 0) || !(padding = encryption_padding(padding))) {
    return fail(kFunction, kNullArgument);
  }
  if (hmac_oid(mac_digest_id).empty()) return fail(kFunction, kUnsupported);
  CMS_AUTHENTICATED_DATA &out = *authenticated_data(cms);
  const Octets content = octets_of(data, length);
  SecretOctets key(size_t(PKV_Get_DIGEST_Length(mac_digest_id)));
  if (!key) return fail(kFunction, kNoMemory);
  if (const int code = PKV_Rand_Bytes(key.data(), key.size())) return code;
  const Octets key_octets = octets_of(key.data(), key.size());
  if (const int code = wrap_for_all(out.recipientInfos, key_octets, padding, F_ENCRYPT_CMS_RECIPIENTINFO)) return code;
  if (const int code = store_content(out, content, detached)) return code;
  if (const int code = bind_content(out, digest_id, content)) return code;
  if (const int code = set_algorithm_text(out.macAlgorithm, hmac_oid(mac_digest_id), {}, kFunction)) return code;
  return set_mac(out, mac_digest_id, key, content);
}

int verify_authenticated_CMS(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener, const unsigned char *data,
                             int length) noexcept {
  if (!opener || length < 0) return fail(F_VERIFY_CMS, kNullArgument);
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, F_VERIFY_CMS)) return code;
  const CMS_AUTHENTICATED_DATA &from = *authenticated_data(cms);
  const int digest_id = hmac_digest(from.macAlgorithm);
  Octets content;
  OpenableRecipient recipient;
  if (!digest_id) return fail(F_VERIFY_CMS, kUnsupported);
  if (const int code = find_content(from, data, length, content)) return code;
  if (const int code = find_openable(from.recipientInfos, *opener, F_VERIFY_CMS, recipient)) return code;
  SecretOctets key(size_t(PKV_Get_DIGEST_Length(digest_id)));
  if (const int code = open_key(*cms, recipient, *opener, true, F_VERIFY_CMS, key)) return code;
  return check_mac(from, digest_id, key, content);
}
