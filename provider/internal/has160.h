// HAS-160 (TTAS.KO-12.0011/R2) by librhash.
#pragma once

#include <rhash.h>

#include <span>

#include "provider/internal/memory.h"

namespace velcrypto {

class Has160 {
 public:
  static constexpr size_t kBlock = 64, kLength = 20;

  Has160() noexcept = default;
  Has160(const Has160 &) = delete;
  Has160 &operator=(const Has160 &) = delete;
  ~Has160() { release(); }

  bool start() noexcept;
  bool update(std::span<const uint8_t> data) noexcept;
  bool finish(uint8_t *out) noexcept;
  bool copy_from(const Has160 &other) noexcept;

 private:
  void release() noexcept;
  rhash state_ = nullptr;
};

}  // namespace velcrypto
