// Signers with keys on a curve (RFC 5753 2.1). Their signature is made at once, over octets that are all there.
#pragma once

#include "cms/internal/signature.h"

namespace velpki {

inline bool is_on_curve(const ASYMMETRIC_KEY *key) noexcept { return key && key->type == ASYMMETRIC_KEY_ECC; }

// The digest that an algorithm of ECDSA names; 0 for every other algorithm.
int ecdsa_digest(const OBJECT_IDENTIFIER &oid) noexcept;
// The algorithm of ECDSA with a digest, in place of what is there. 0, or `function` with 48 or 3C.
int set_ecdsa_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int digest_id, int function) noexcept;
// Whether the two algorithms of a signer are of ECDSA and name one digest.
bool is_ecdsa(const X509_ALGO_IDENTIFIER *digest, const X509_ALGO_IDENTIFIER *signature) noexcept;

int sign_on_curve(const ASYMMETRIC_KEY &key, const OBJECT_IDENTIFIER &algorithm, Octets octets, int function,
                  owned<ASN1_STRING> &out) noexcept;

}  // namespace velpki
