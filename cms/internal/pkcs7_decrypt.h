// What decrypting a message needs of it.
#pragma once

#include "cms/internal/content_cipher.h"
#include "cms/internal/pkcs7.h"

namespace velpki {

struct EncryptedView {
  int cipher_id = 0, key_length = 0;
  const X509_ALGO_IDENTIFIER *algorithm = nullptr;
  const ASN1_STRING *content = nullptr;  // null when it is elsewhere
};
// False for a message without encrypted content, or with a cipher that is not known.
bool find_encrypted(const P7_CONTENT_INFO *p7, EncryptedView &out) noexcept;
bool view_encrypted(const P7_ENCRYPTED_CONTENT_INFO *info, EncryptedView &out) noexcept;
// Decrypts under a key of the cipher's length; the IV is the one given, or that of the parameters. The buffer has room
// for the ciphertext.
int decrypt_view(const EncryptedView &encrypted, const uint8_t *key, const uint8_t *iv, uint8_t *out,
                 int *out_length) noexcept;

}  // namespace velpki
