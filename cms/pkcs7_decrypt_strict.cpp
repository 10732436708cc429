// Decrypting for strangers, and verifying what comes out.
#include "cms/internal/pkcs7_decrypt.h"
#include "cms/internal/pkcs7_strict.h"
#include "cms/internal/strict_key.h"

namespace velpki {

namespace {

const P7_RECIPIENT_INFO *find_recipient(const P7_CONTENT_INFO &p7, const X509_CERT *cert) noexcept {
  P7_RECIPIENT_INFOS **list = recipient_list(&p7);
  for (const P7_RECIPIENT_INFO *each : elements<P7_RECIPIENT_INFO>(list ? *list : nullptr))
    if (each && cmp_P7_ISSUER_AND_SERIAL_NUMBER(cert, each->issuerAndSerialNumber) == 0) return each;
  return nullptr;
}

// What can be told from the message alone.
struct Opening {
  EncryptedView encrypted;
  const P7_RECIPIENT_INFO *recipient = nullptr;
  const RSA_UNIT *key = nullptr;
  int padding = 0;
  Octets iv;
};
bool prepare(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key, Opening &out) noexcept {
  out.key = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  if (!out.key || !cert || !find_encrypted(p7, out.encrypted) || !out.encrypted.content) return false;
  out.recipient = find_recipient(*p7, cert);
  if (!out.recipient || !out.recipient->encryptedKey) return false;
  out.padding = padding_of(out.recipient->keyEncryptionAlgorithm);
  return out.padding && content_iv(*out.encrypted.algorithm, out.encrypted.cipher_id, true, out.iv);
}

int open(const Opening &opening, SecretOctets &key, uint8_t *out, int *out_length) noexcept {
  const P7_RECIPIENT_INFO &recipient = *opening.recipient;
  const int code = recover_key(*opening.key, *recipient.keyEncryptionAlgorithm, opening.padding,
                               octets(*recipient.encryptedKey), key);
  if (code) return code;
  return decrypt_content(opening.encrypted.cipher_id, octets_of(key.data(), key.size()), opening.iv,
                         octets(*opening.encrypted.content), out, out_length);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int decrypt_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                         unsigned char *out, int *out_length) noexcept {
  Opening opening;
  if (!out || !out_length || !prepare(p7, cert, key, opening)) return 1;
  if (*out_length < opening.encrypted.content->length) return 1;
  SecretOctets content_key{size_t(opening.encrypted.key_length)};
  return open(opening, content_key, out, out_length);
}

int verify_decrypt_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                const X509_CERTIFICATES *more, int flags, unsigned char *out,
                                int *out_length) noexcept {
  Opening opening;
  if (!out || !out_length || !signed_and_enveloped_data(p7) || !prepare(p7, cert, key, opening)) return 1;
  if (*out_length < opening.encrypted.content->length) return 1;
  SecretOctets content_key{size_t(opening.encrypted.key_length)};
  SecretOctets plain(size_t(opening.encrypted.content->length) + 1);
  int length = 0;
  if (!plain) return PKV_ERR_NO_MEMORY;
  if (const int code = open(opening, content_key, plain.data(), &length)) return code;
  const DigestCipher cipher{opening.encrypted.cipher_id, octets_of(content_key.data(), content_key.size()), opening.iv};
  if (const int code = verify_sealed(*p7, more, octets_of(plain.data(), length), flags, cipher)) return code;
  copy_octets(out, octets_of(plain.data(), length));
  *out_length = length;
  return 0;
}
