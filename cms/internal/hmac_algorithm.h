// HMAC by AlgorithmIdentifier.
#pragma once

#include "cms/internal/message.h"

namespace velpki {

// The identifier of HMAC over a digest, empty for none; and the digest of an HMAC, 0 for none.
std::string_view hmac_oid(int digest_id) noexcept;
int hmac_digest(const X509_ALGO_IDENTIFIER *algorithm) noexcept;

}  // namespace velpki
