#include "provider/internal/has160.h"

#include <array>

namespace velcrypto {
namespace {

// librhash would otherwise look for a libcrypto of its own to load, for digests that are not used here.
bool prepare_library() noexcept {
  static const bool done = [] {
    rhash_set_openssl_mask(0);
    rhash_library_init();
    return true;
  }();
  return done;
}

}  // namespace

bool Has160::start() noexcept {
  if (state_) {
    rhash_reset(state_);
    return true;
  }
  state_ = prepare_library() ? rhash_init(RHASH_HAS160) : nullptr;
  return state_ != nullptr;
}

bool Has160::update(std::span<const uint8_t> data) noexcept {
  return rhash_update(state_, data.data(), data.size()) == 0;
}

bool Has160::finish(uint8_t *out) noexcept { return rhash_final(state_, out) == 0; }

bool Has160::copy_from(const Has160 &other) noexcept {
  const size_t size = rhash_export(other.state_, nullptr, 0);
  SecretBuffer exported;
  if (!size || !exported.resize(size) || rhash_export(other.state_, exported.data(), size) != size) return false;
  release();
  state_ = rhash_import(exported.data(), size);
  return state_ != nullptr;
}

// librhash does not wipe. Two blocks of zeros overwrite the whole buffer of the context wherever it stands, and the
// reset the chaining value: the key of a MAC may have been in them.
void Has160::release() noexcept {
  if (!state_) return;
  constexpr std::array<uint8_t, 2 * kBlock> zeros{};
  rhash_reset(state_);
  rhash_update(state_, zeros.data(), 1);
  rhash_update(state_, zeros.data(), zeros.size());
  rhash_reset(state_);
  rhash_free(state_);
  state_ = nullptr;
}

}  // namespace velcrypto
