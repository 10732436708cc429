// Decisions without branches, for values that must not show in the time taken.
#pragma once

#include <cstddef>

namespace velcrypto {

// All ones for true, 0 for false. `opaque` keeps the compiler from seeing that a mask has two values only and branching
// on it.
using Mask = size_t;
inline Mask opaque(Mask mask) noexcept {
  asm("" : "+r"(mask));
  return mask;
}
inline Mask mask_of_top_bit(size_t value) noexcept { return opaque(0 - (value >> (sizeof value * 8 - 1))); }
inline Mask is_zero_mask(size_t value) noexcept { return mask_of_top_bit(~value & (value - 1)); }
inline Mask is_equal_mask(size_t a, size_t b) noexcept { return is_zero_mask(a ^ b); }
// Both below half the range of size_t.
inline Mask is_below_mask(size_t a, size_t b) noexcept { return mask_of_top_bit(a - b); }
inline size_t select(Mask mask, size_t if_true, size_t if_false) noexcept {
  return (mask & if_true) | (~mask & if_false);
}

}  // namespace velcrypto
