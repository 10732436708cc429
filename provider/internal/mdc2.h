// MDC-2 (ISO/IEC 10118-2) with DES.
#pragma once

#include <openssl/evp.h>

#include <array>
#include <span>

#include "provider/internal/memory.h"

namespace velcrypto {

class Mdc2 {
 public:
  static constexpr size_t kBlock = 8, kLength = 16;

  Mdc2() noexcept = default;
  Mdc2(const Mdc2 &) = delete;
  Mdc2 &operator=(const Mdc2 &) = delete;
  ~Mdc2();

  // Whether libcrypto has DES, which is in its legacy module.
  static bool is_there() noexcept;
  bool start() noexcept;
  bool update(std::span<const uint8_t> data) noexcept;
  bool finish(uint8_t *out) noexcept;
  bool copy_from(const Mdc2 &other) noexcept;

 private:
  using Block = std::array<uint8_t, kBlock>;
  bool encrypt_under(const Block &key, const uint8_t *in, Block &out) noexcept;
  bool compress(const uint8_t *block) noexcept;

  owned<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free> des_;
  Block left_{}, right_{}, partial_{};
  size_t partial_length_ = 0;
};

}  // namespace velcrypto
