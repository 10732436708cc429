// Key wrapping by AlgorithmIdentifier.
#pragma once

#include "cms/internal/key_encryption.h"

namespace velpki {

inline constexpr int kTripleDesWrap = 0x02010200;

// The wrap of a cipher: empty for one that wraps nothing; and the cipher of a wrap, 0 for none.
std::string_view wrap_oid(int cipher_id) noexcept;
int wrap_cipher(const X509_ALGO_IDENTIFIER *algorithm) noexcept;
void write_wrap_algorithm(int cipher_id, DerWriter &out) noexcept;

// An AlgorithmIdentifier by dotted text, with one encoded value as parameters or, for empty octets, without.
int set_algorithm_text(X509_ALGO_IDENTIFIER *&algorithm, std::string_view oid, Octets parameters,
                       int function) noexcept;

int wrap(int cipher_id, Octets kek, Octets key, int function, ASN1_STRING *&out) noexcept;
// A key of exactly `out.size()` octets, else PKV_ERR_FAILED.
int unwrap(int cipher_id, Octets kek, const ASN1_STRING *wrapped, SecretOctets &out) noexcept;

}  // namespace velpki
