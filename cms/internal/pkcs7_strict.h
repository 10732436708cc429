// Strict verification of signed-and-enveloped data.
#pragma once

#include "cms/internal/pkcs7.h"

namespace velpki {

// What the encrypted digests of signers are encrypted with themselves (RFC 2315 11).
struct DigestCipher {
  int cipher_id;
  Octets key, iv;
};
int verify_sealed(const P7_CONTENT_INFO &p7, const X509_CERTIFICATES *more, Octets content, int flags,
                  const DigestCipher &cipher) noexcept;

}  // namespace velpki
