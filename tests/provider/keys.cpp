#include "keys.h"

#include <dlfcn.h>

#include <algorithm>

namespace {
test::Bytes chosen;
}

void test::choose_random(const Bytes &octets) { chosen = octets; }

// The provider calls its own exported name, so that the program's definition comes first.
int PKV_Rand_Bytes(unsigned char *out, int length) noexcept {
  if (chosen.size() >= size_t(length) && length > 0) {
    std::copy_n(chosen.begin(), length, out);
    chosen.erase(chosen.begin(), chosen.begin() + length);
    return 0;
  }
  static const auto real = reinterpret_cast<decltype(&PKV_Rand_Bytes)>(dlsym(RTLD_NEXT, "PKV_Rand_Bytes"));
  return real(out, length);
}
