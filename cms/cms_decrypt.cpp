// Decrypting: the content-encryption key of a recipient, and the content.
#include "cms/internal/cms.h"
#include "cms/internal/key_transport.h"
#include "cms/internal/pkcs7_decrypt.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_DECRYPT_CONTENT_ENCRYPTION_KEY, reason); }

// The first key transport recipient that names the certificate; without one the first of all, whose certificate the
// originator must have brought.
int find_recipient(const CMS_CONTENT_INFO &cms, const X509_CERT *cert, const KEY_TRANS_RECIPIENT_INFO *&out) noexcept {
  const CMS_ORIGINATOR_INFO *originator = *originator_info(&cms);
  for (const CMS_RECIPIENT_INFO *each : elements<CMS_RECIPIENT_INFO>(*recipient_list(&cms))) {
    const KEY_TRANS_RECIPIENT_INFO *info = key_trans(each);
    if (!info || !info->rid) continue;
    if (!cert) {
      out = info;
      return find_named(originator ? originator->certificates : nullptr, info->rid) ? 0 : failure(kNullArgument);
    }
    if (names_certificate(info->rid, *cert)) return out = info, 0;
  }
  return failure(kBadValue);
}

int decrypt_key(const CMS_CONTENT_INFO *cms, const X509_CERT *cert, const ASYMMETRIC_KEY *key, uint8_t *out,
                int *out_length, int capacity, int padding) noexcept {
  if (!key || !out || !out_length || !(padding = encryption_padding(padding))) return failure(kNullArgument);
  if (const int code = check_type(cms, CMS_TYPE_ENVELOPED_DATA, F_DECRYPT_CONTENT_ENCRYPTION_KEY)) return code;
  EncryptedView encrypted;
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  if (!rsa || !view_encrypted(*encrypted_content(cms), encrypted)) return failure(kUnsupported);
  if (capacity < encrypted.key_length) return failure(kBadValue);
  const KEY_TRANS_RECIPIENT_INFO *info = nullptr;
  if (const int code = find_recipient(*cms, cert, info)) return code;
  if (!info->encryptedKey || !info->keyEncryptionAlgorithm) return failure(kNullArgument);
  const int code =
      unwrap_key(*rsa, *info->keyEncryptionAlgorithm, padding, octets(*info->encryptedKey), encrypted.key_length, out);
  if (!code) *out_length = encrypted.key_length;
  return code;
}

int decrypt_into(const CMS_CONTENT_INFO *cms, const uint8_t *key, const uint8_t *iv, uint8_t *out, int *out_length,
                 int capacity) noexcept {
  EncryptedView encrypted;
  if (!cms || !key || !out || !out_length) return fail(F_DECRYPT_CMS, kNullArgument);
  CMS_ENCRYPTED_CONTENT_INFO **place = encrypted_content(cms);
  if (!place || !view_encrypted(*place, encrypted)) return fail(F_DECRYPT_CMS, kUnsupported);
  if (!encrypted.content) return fail(F_DECRYPT_CMS, kNullArgument);
  if (capacity < encrypted.content->length) return fail(F_DECRYPT_CMS, kBadValue);
  const int code = decrypt_view(encrypted, key, iv, out, out_length);
  return code == 1 ? fail(F_DECRYPT_CMS, kBadValue) : code;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int decrypt_content_encryption_key(CMS_CONTENT_INFO *cms, X509_CERT *cert, ASYMMETRIC_KEY *key, unsigned char *out,
                                   int *out_length, int padding) noexcept {
  return decrypt_key(cms, cert, key, out, out_length, INT_MAX, padding);
}

int decrypt_CMS(CMS_CONTENT_INFO *cms, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                int *out_length) noexcept {
  return decrypt_into(cms, key, iv, out, out_length, INT_MAX);
}

int decrypt_CMS_n(const CMS_CONTENT_INFO *cms, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                  int *out_length) noexcept {
  return decrypt_into(cms, key, iv, out, out_length, out_length ? *out_length : 0);
}
