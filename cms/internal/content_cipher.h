// Encryption of a message's content, as PKCS#7 and CMS share it.
#pragma once

#include "cms/internal/message.h"

// What an encryption in progress keeps beside its message.
struct content_encryption {
  size_t capacity;  // octets allocated for the encrypted content, which grows
};
typedef struct content_encryption CONTENT_ENCRYPTION;

namespace velpki {

template <>
struct Flat<BLOCK_CIPHER_UNIT> {
  static void release(BLOCK_CIPHER_UNIT *unit) noexcept { PKV_Free_BLOCK_CIPHER(unit); }
};
template <>
struct Flat<CONTENT_ENCRYPTION> {
  static void release(CONTENT_ENCRYPTION *progress) noexcept { velpki::release(progress); }
};

inline constexpr int kNoRoom = 0x3A;  // encrypted content that cannot grow

// A fresh random key and IV for a cipher.
struct ContentKey {
  explicit ContentKey(int cipher_id) noexcept
      : key(size_t(PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id))),
        iv(size_t(PKV_Get_BLOCK_CIPHER_IV_Length(cipher_id))) {}
  int fill(int function) noexcept;
  SecretOctets key, iv;
};

// Starts the encryption of content: key and IV have the cipher's lengths, neither may be null where it has one.
int start_content_cipher(int cipher_id, const uint8_t *key, const uint8_t *iv, int function,
                         owned<BLOCK_CIPHER_UNIT> &out) noexcept;
// Parameters that hold the IV of a unit; an empty OCTET STRING for one without.
bool set_iv_parameters(X509_ALGO_IDENTIFIER &algorithm, const BLOCK_CIPHER_UNIT &unit) noexcept;

// The members of an encrypted content info that an encryption works on.
struct EncryptionParts {
  ASN1_STRING *&content;
  BLOCK_CIPHER_UNIT *&cipher;
  CONTENT_ENCRYPTION *&progress;
  bool detached;
};
// One step. Detached ciphertext goes to the caller's buffer; else it is appended to the content, and copied into the
// buffer when that has room for it, `out_length` then being what it has, and 0 when not.
int update_content(EncryptionParts parts, Octets in, uint8_t *out, int *out_length, int function) noexcept;
// The last step, after which the cipher is gone.
int finish_content(EncryptionParts parts, uint8_t *out, int *out_length, int function) noexcept;

// The IV in an algorithm's parameters, empty for none. False for parameters that cannot hold it; `exact` allows no
// other length than the cipher's.
bool content_iv(const X509_ALGO_IDENTIFIER &algorithm, int cipher_id, bool exact, Octets &iv) noexcept;
// Decrypts whole content into a buffer with room for the ciphertext's length.
int decrypt_content(int cipher_id, Octets key, Octets iv, Octets encrypted, uint8_t *out, int *out_length) noexcept;

}  // namespace velpki
