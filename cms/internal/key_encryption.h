// Content-encryption keys under other keys than RSA's: key agreement (RFC 5753), key-encryption keys (RFC 3394, RFC
// 3217) and passwords (RFC 3211).
#pragma once

#include "cms/internal/cms.h"
#include "cms/internal/content_cipher.h"

namespace velpki {

// Wrapped keys of other lengths are none.
inline constexpr size_t kLeastWrapped = 24, kMostWrapped = 72;
// The password recipients of a message that one password is tried on may ask for this many iterations together; what
// asks for more is refused.
inline constexpr int kMostIterations = 10000000, kUsualIterations = 600000;

// The AlgorithmIdentifier of a key wrap by the provider's cipher: parameters are absent, but NULL for triple DES.
// `function` with 48 for a cipher that wraps nothing, or 3C.
int set_wrap_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int cipher_id, int function) noexcept;
// That of ECDH with the X9.63 function over a digest, the wrap being its parameters.
int set_agreement_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int digest_id, int cipher_id, int function) noexcept;
// Those of a password recipient: PBKDF2 with a fresh salt, and the cipher, in CBC mode, with a fresh IV.
int set_password_algorithms(PASSWORD_RECIPIENT_INFO &info, int digest_id, int cipher_id, int iterations,
                            int function) noexcept;

// Wraps a content-encryption key into the recipient. `function` with 49 (a key that is missing), 48 (an algorithm or a
// curve that is not known) or 3C, or the provider's code.
int wrap_for_key(KEK_RECIPIENT_INFO &info, Octets content_key, int function) noexcept;
int wrap_for_password(PASSWORD_RECIPIENT_INFO &info, Octets content_key, int function) noexcept;
int wrap_for_agreement(KEY_AGREE_RECIPIENT_INFO &info, Octets content_key, int function) noexcept;

// The reverse, for a key of exactly `out.size()` octets. What is wrong with the wrapped key is PKV_ERR_FAILED.
int unwrap_with_key(const KEK_RECIPIENT_INFO &info, Octets key, int function, SecretOctets &out) noexcept;
// What needs more than `iterations_left`, from which its iterations are taken, fails in the same way.
int unwrap_with_password(const PASSWORD_RECIPIENT_INFO &info, Octets password, int function, int &iterations_left,
                         SecretOctets &out) noexcept;
// `originator` is the key of an originator that is named by a certificate; null for one that brings its key.
int unwrap_with_agreement(const KEY_AGREE_RECIPIENT_INFO &info, const RECIPIENT_ENCRYPTED_KEY &wrapped,
                          const ECC_UNIT &key, const ECC_UNIT *originator, int function, SecretOctets &out) noexcept;

}  // namespace velpki
