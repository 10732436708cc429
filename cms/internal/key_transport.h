// Content-encryption keys under the RSA keys of recipients (RFC 2315 10, RFC 3560).
#pragma once

#include <velpki/pkcs1.h>

#include "cms/internal/content_cipher.h"
#include "cms/internal/signature.h"

namespace velpki {

// 0 means PKCS#1 v1.5; 0 for a padding that is none.
constexpr int encryption_padding(int padding) noexcept {
  if (padding == 0) return PKV_RSA_PKCS1_CRYPT;
  return padding == PKV_RSA_PKCS1_CRYPT || padding == PKV_RSA_OAEP || padding == PKV_RSA_OAEP_SET ? padding : 0;
}
constexpr bool is_oaep(int padding) noexcept { return padding == PKV_RSA_OAEP || padding == PKV_RSA_OAEP_SET; }

// The key encryption algorithm of a padding: "id-RSAES-OAEP" with the parameters given, null meaning their defaults, or
// "rsaEncryption" with NULL. 0, or `function` with 3C, or the code of the parameters.
int set_key_encryption_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int padding, const RSAES_OAEP_PARAM *oaep,
                                 int function) noexcept;

// Encrypts a content-encryption key. OAEP takes hash, mask and label from the algorithm's parameters.
int wrap_key(ASYMMETRIC_KEY *key, const X509_ALGO_IDENTIFIER &algorithm, int padding, Octets content_key, int function,
             owned<ASN1_STRING> &out) noexcept;
// Decrypts one: whatever fails in it is the same code. `length` holds the capacity on entry; nothing but a key of
// exactly `wanted` octets is written.
int unwrap_key(const RSA_UNIT &key, const X509_ALGO_IDENTIFIER &algorithm, int padding, Octets encrypted, int wanted,
               uint8_t *out) noexcept;

}  // namespace velpki
