// KCDSA inside the provider: the key's shape and its arithmetic.
#pragma once

#include <span>

#include "provider/internal/key_part.h"

namespace velcrypto {

// Domain parameters and public value ready for arithmetic, checked for size, range and order; read-only once made.
struct KcdsaNumbers {
  BnOwner p, q, g;
  BnOwner y;              // null for a key without one
  BnOwner inverse_power;  // q - 2: x^(q-2) = 1/x without a branch on x
  BnOwner lift;           // a multiple of q that gives every secret exponent the same bit length
  BnMontOwner mod_p, mod_q;
  size_t p_length = 0, q_length = 0;
  bool g_is_sound = true, y_is_sound = true;  // of order q
};
struct KcdsaExtra {
  int count = 0;  // of the seed
  Prepared<KcdsaNumbers, destroy<KcdsaNumbers>> numbers;
};
inline constexpr size_t kKcdsaSeed = PKV_KCDSA_X + 1;  // kept as octets: its leading zeros count
inline constexpr size_t kKcdsaNumbers = kKcdsaSeed + 1;
using KcdsaPart = KeyPart<KcdsaExtra, kKcdsaNumbers>;  // numbers by PKV_KCDSA_COMPONENT, then the seed

using DigestOwner = owned<DIGEST_UNIT, PKV_Free_DIGEST>;

struct KcdsaSignatureState {
  DigestOwner digest;
  int digest_id = 0;
  bool sign = false;
  bool updated = false;
};

}  // namespace velcrypto

struct pkv_kcdsa {
  velcrypto::Shared<velcrypto::KcdsaPart> part;
  velcrypto::Signer signer;
  velcrypto::KcdsaSignatureState signature;
};

namespace velcrypto {

inline constexpr int kMinKcdsaPBits = 1024;
inline constexpr int kMaxKcdsaPBits = 3072;
inline constexpr int kMinKcdsaQBits = 160;
inline constexpr int kMaxKcdsaQBits = 256;
inline constexpr size_t kMaxKcdsaPOctets = kMaxKcdsaPBits / 8;
inline constexpr size_t kMaxKcdsaQOctets = kMaxKcdsaQBits / 8;

// The prepared numbers of a key whose numbers are in range, or null with the reason in `error`.
const KcdsaNumbers *kcdsa_prepared(const KCDSA_UNIT &key, int &error) noexcept;
// The same of a key that may be used: g and y are of order q.
const KcdsaNumbers *kcdsa_numbers(const KCDSA_UNIT &key, int &error) noexcept;

// base^exponent mod p for a secret exponent below q and a base of order q, in a time that depends on the sizes only.
bool kcdsa_power_secret(const KcdsaNumbers &numbers, BIGNUM *out, const BIGNUM *base, const BIGNUM *exponent,
                        BN_CTX *context) noexcept;
// The digest that goes with the length of q, 0 for a length that none goes with.
int kcdsa_default_digest(const KCDSA_UNIT &key) noexcept;

}  // namespace velcrypto
