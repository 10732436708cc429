// Secret exponents, for keys and nonces of all discrete logarithm schemes.
#include "provider/internal/key_part.h"

namespace velcrypto {

// Rejection keeps the distribution even: a bias of a few bits in nonces gives the key away.
BnOwner random_exponent(const BIGNUM *order, int &error) noexcept {
  constexpr size_t kLargestOrder = 66;
  Wiped<std::array<uint8_t, kLargestOrder>> octets;
  const int bits = BN_num_bits(order), length = (bits + 7) / 8;
  BnOwner out(BN_new());
  for (error = PKV_ERR_NO_MEMORY; out;) {
    if ((error = PKV_Rand_Bytes(octets.value.data(), length))) return nullptr;
    octets.value[0] &= uint8_t(0xFF >> (8 * length - bits));
    error = PKV_ERR_NO_MEMORY;
    if (!BN_bin2bn(octets.value.data(), length, out.get())) return nullptr;
    if (BN_is_zero(out.get()) || BN_ucmp(out.get(), order) >= 0) continue;
    BN_set_flags(out.get(), BN_FLG_CONSTTIME);
    return out;
  }
  return nullptr;
}

}  // namespace velcrypto
