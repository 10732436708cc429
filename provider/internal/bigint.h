// The big integer's block, and the way to and from libcrypto's numbers.
#pragma once

#include <limits.h>
#include <openssl/bn.h>
#include <velpki/pkv.h>

#include "provider/internal/memory.h"

// One flat block: the octets stand behind the struct while they fit in `room`, and in a block of their own after a
// number grew past it. `length` octets at `octets`, most significant first, the first one not zero. A placed number
// begins with octets that belong to its caller.
struct pkv_bigint {
  uint8_t *octets;
  int length;
  unsigned room : 30;  // octets that stand behind the struct
  bool negative : 1;   // never for zero
  bool borrowed : 1;   // the octets are the caller's: neither wiped nor released
};

namespace velcrypto {

inline constexpr int kMaxOctets = INT_MAX / 8;  // so that a bit length is an int

using BigintOwner = owned<BIGINT, PKV_Free_BIGINT>;
using BnOwner = owned<BIGNUM, BN_clear_free>;
using BnCtxOwner = owned<BN_CTX, BN_CTX_free>;

inline bool is_zero(const BIGINT *n) noexcept { return !n || n->length == 0; }

// A new libcrypto number of the same value; null for null or exhausted memory.
BnOwner to_bn(const BIGINT *n) noexcept;
// Sets `out` to the value of `n`; a PKV_ERR_ code.
int from_bn(BIGINT *out, const BIGNUM *n) noexcept;
// A new big integer of the value of `n`, or null.
BIGINT *new_from_bn(const BIGNUM *n) noexcept;

}  // namespace velcrypto
