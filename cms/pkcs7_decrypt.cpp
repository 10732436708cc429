// Decrypting: the content-encryption key of a recipient, and the content.
#include "cms/internal/pkcs7_decrypt.h"
#include "cms/internal/key_transport.h"

namespace velpki {

namespace {

const P7_ISSUER_AND_SERIAL_NUMBER *name_of(const P7_RECIPIENT_INFO *recipient) noexcept {
  return recipient ? recipient->issuerAndSerialNumber : nullptr;
}

// Without a certificate that of the message which the recipient names stands in, and must be there.
const P7_RECIPIENT_INFO *find_recipient(const P7_CONTENT_INFO &p7, const X509_CERT *cert) noexcept {
  P7_RECIPIENT_INFOS **list = recipient_list(&p7);
  for (const P7_RECIPIENT_INFO *each : elements<P7_RECIPIENT_INFO>(list ? *list : nullptr)) {
    const P7_ISSUER_AND_SERIAL_NUMBER *name = name_of(each);
    if (!name) continue;
    if (!cert) return find_certificate(certificates_of(&p7), name->issuer, name->serialNumber) ? each : nullptr;
    if (cmp_P7_ISSUER_AND_SERIAL_NUMBER(cert, name) == 0) return each;
  }
  return nullptr;
}

}  // namespace

bool find_encrypted(const P7_CONTENT_INFO *p7, EncryptedView &out) noexcept {
  P7_ENCRYPTED_CONTENT_INFO **place = encrypted_content(p7);
  return view_encrypted(place ? *place : nullptr, out);
}

bool view_encrypted(const P7_ENCRYPTED_CONTENT_INFO *info, EncryptedView &out) noexcept {
  out.cipher_id = info ? content_cipher_id(info->contentEncryptionAlgorithm) : 0;
  if (!out.cipher_id) return false;
  out.key_length = PKV_Get_BLOCK_CIPHER_Key_Length(out.cipher_id);
  out.algorithm = info->contentEncryptionAlgorithm;
  out.content = info->encryptedContent;
  return out.key_length > 0;
}

int decrypt_view(const EncryptedView &encrypted, const uint8_t *key, const uint8_t *iv, uint8_t *out,
                 int *out_length) noexcept {
  if (!encrypted.content) return 1;
  Octets iv_octets;
  if (iv)
    iv_octets = Octets(iv, size_t(PKV_Get_BLOCK_CIPHER_IV_Length(encrypted.cipher_id)));
  else if (!content_iv(*encrypted.algorithm, encrypted.cipher_id, false, iv_octets))
    return 1;
  return decrypt_content(encrypted.cipher_id, octets_of(key, encrypted.key_length), iv_octets,
                         octets(*encrypted.content), out, out_length);
}

namespace {

int decrypt_key(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key, uint8_t *out,
                int *out_length, int capacity, int padding) noexcept {
  EncryptedView encrypted;
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  if (!rsa || !out || !out_length || !find_encrypted(p7, encrypted) || capacity < encrypted.key_length) return 1;
  const P7_RECIPIENT_INFO *recipient = find_recipient(*p7, cert);
  if (!recipient || !recipient->encryptedKey || !recipient->keyEncryptionAlgorithm) return 1;
  const int code = unwrap_key(*rsa, *recipient->keyEncryptionAlgorithm, padding ? padding : PKV_RSA_PKCS1_CRYPT,
                              octets(*recipient->encryptedKey), encrypted.key_length, out);
  if (!code) *out_length = encrypted.key_length;
  return code;
}

int decrypt_into(const P7_CONTENT_INFO *p7, const uint8_t *key, const uint8_t *iv, uint8_t *out, int *out_length,
                 int capacity) noexcept {
  EncryptedView encrypted;
  if (!key || !out || !out_length || !find_encrypted(p7, encrypted) || !encrypted.content) return 1;
  return capacity < encrypted.content->length ? 1 : decrypt_view(encrypted, key, iv, out, out_length);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int decrypt_PKCS7_enveloped_CEK(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key, unsigned char *out_key,
                                int *out_key_length, int padding) noexcept {
  return decrypt_key(p7, cert, key, out_key, out_key_length, INT_MAX, padding);
}

int decrypt_PKCS7_enveloped_CEK_n(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                  unsigned char *out_key, int *out_key_length, int padding) noexcept {
  return decrypt_key(p7, cert, key, out_key, out_key_length, out_key_length ? *out_key_length : 0, padding);
}

int decrypt_PKCS7(P7_CONTENT_INFO *p7, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                  int *out_length) noexcept {
  return decrypt_into(p7, key, iv, out, out_length, INT_MAX);
}

int decrypt_PKCS7_n(const P7_CONTENT_INFO *p7, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                    int *out_length) noexcept {
  return decrypt_into(p7, key, iv, out, out_length, out_length ? *out_length : 0);
}
