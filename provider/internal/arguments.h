// The checks of arguments that the exported functions have in common.
#pragma once

#include <velpki/pkv.h>

namespace velcrypto {

// Octets that come in: null stands for none.
inline int check_octets(const void *data, int length) noexcept {
  if (length < 0) return PKV_ERR_BAD_VALUE;
  return length && !data ? PKV_ERR_NULL : 0;
}

// Octets that go out: `needed` of them into a capacity of `*out_length`.
inline int check_capacity(const void *out, const int *out_length, size_t needed) noexcept {
  if (!out_length || (!out && needed)) return PKV_ERR_NULL;
  return *out_length < 0 || size_t(*out_length) < needed ? PKV_ERR_BAD_VALUE : 0;
}

}  // namespace velcrypto
