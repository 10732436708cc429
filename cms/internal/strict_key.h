// Content-encryption keys without an oracle (RFC 3218).
#pragma once

#include "cms/internal/key_transport.h"

namespace velpki {

// The padding that a key encryption algorithm means; 0 for one that is none of RSA's.
int padding_of(const X509_ALGO_IDENTIFIER *algorithm) noexcept;

// Decrypts a content-encryption key of `out.size()` octets. Where anything in it is wrong, `out` gets a random key
// after the same work. The result is not 0 only where random octets or memory are missing.
int recover_key(const RSA_UNIT &key, const X509_ALGO_IDENTIFIER &algorithm, int padding, Octets encrypted,
                SecretOctets &out) noexcept;

}  // namespace velpki
