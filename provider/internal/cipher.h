// Block ciphers: what is known of each, and the engines that run them.
#pragma once

#include <openssl/evp.h>

#include <array>
#include <span>

#include "provider/internal/memory.h"

namespace velcrypto {

constexpr size_t kMaxCipherBlock = 16;
constexpr size_t kMaxCipherKey = 255;

struct CipherInfo {
  int id;            // without the mode
  const char *name;  // libcrypto's, without the mode; null for RC5
  uint8_t block_length;
  uint8_t key_length;  // the usual one; equal to both limits for most
  uint8_t key_min;
  uint8_t key_max;
  uint16_t rc2_bits;  // effective key bits, 0 when not RC2
};

// Null for an unknown identifier or mode.
const CipherInfo *find_cipher(int cipher_id) noexcept;
inline int cipher_mode(int cipher_id) noexcept { return cipher_id & 0xFF; }
// CFB and OFB take any length and are not padded.
inline bool is_stream_mode(int mode) noexcept { return mode == PKV_MODE_CFB || mode == PKV_MODE_OFB; }

struct CipherStart {
  const CipherInfo *info;
  int mode;
  std::span<const uint8_t> key;
  const uint8_t *iv;  // a block of octets; unused for ECB
  bool encrypt;
};

// Both engines: `process` wants whole blocks in ECB and CBC; `out` may be the input's address.
class LibcryptoCipher {
 public:
  int start(const CipherStart &with) noexcept;
  bool process(std::span<const uint8_t> in, uint8_t *out) noexcept;

 private:
  owned<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free> context_;
};

// RC5-32/12/16 (RFC 2040), and the modes for it.
class Rc5 {
 public:
  static constexpr size_t kBlock = 8;
  using Block = std::array<uint8_t, kBlock>;

  ~Rc5();
  int start(const CipherStart &with) noexcept;
  bool process(std::span<const uint8_t> in, uint8_t *out) noexcept;

 private:
  static constexpr uint32_t kRounds = 12, kWords = 2 * (kRounds + 1);
  void expand_key(std::span<const uint8_t> key) noexcept;
  void encrypt_block(const uint8_t *in, uint8_t *out) const noexcept;
  void decrypt_block(const uint8_t *in, uint8_t *out) const noexcept;
  void cbc_encrypt(const uint8_t *in, uint8_t *out) noexcept;
  void cbc_decrypt(const uint8_t *in, uint8_t *out) noexcept;
  void block(const uint8_t *in, uint8_t *out) noexcept;
  uint8_t stream(uint8_t octet) noexcept;

  std::array<uint32_t, kWords> words_{};
  Block chain_{};    // the last ciphertext block; in CFB and OFB the key stream, replaced octet by octet in CFB
  size_t used_ = 0;  // octets of the key stream that are used up
  int mode_ = 0;
  bool encrypt_ = false;
};

}  // namespace velcrypto
