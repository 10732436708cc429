// DSA signatures, verified with a SubjectPublicKeyInfo.
#pragma once

#include <velpki/x509.h>

#include "asn1/internal/memory.h"

namespace velpki {

// 0 for valid; `function` with ERR_ALGORITHM_MISMATCH (no DSA key), 48 (inherited parameters), 3C or ERR_ASN1_DECODING;
// or the provider's code.
int verify_dsa(Octets tbs, Octets signature, const X509_PUBKEY &pubkey, int digest_id, int function) noexcept;

}  // namespace velpki
