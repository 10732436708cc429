// The private library context and what is fetched from it once.
#pragma once

#include <openssl/evp.h>

namespace velcrypto {

// The provider's own library context with the default and the legacy provider loaded, made at first use and kept; null
// when it cannot be made. Nothing here touches the application's default context.
OSSL_LIB_CTX *library_context() noexcept;

// The libcrypto digest of a PKV_DIGEST_ identifier (PKV_HMAC_FLAG ignored), fetched once and kept; null for HAS-160 and
// MDC2, which are not libcrypto's, and for unknown identifiers.
const EVP_MD *libcrypto_digest(int digest_id) noexcept;

// libcrypto's name of the digest ("SHA2-256" ...), or null as above.
const char *libcrypto_digest_name(int digest_id) noexcept;

}  // namespace velcrypto
