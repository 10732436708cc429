#include <bit>
#include <cstring>

#include "provider/internal/cipher.h"

namespace velcrypto {
namespace {

// The words of RFC 2040 are little-endian.
uint32_t load(const uint8_t *octets) noexcept {
  return uint32_t(octets[0]) | uint32_t(octets[1]) << 8 | uint32_t(octets[2]) << 16 | uint32_t(octets[3]) << 24;
}

void store(uint8_t *out, uint32_t word) noexcept {
  for (int i = 0; i < 4; ++i) out[i] = uint8_t(word >> (8 * i));
}

}  // namespace

Rc5::~Rc5() {
  PKV_Wipe(words_.data(), sizeof words_);
  PKV_Wipe(chain_.data(), kBlock);
}

// RFC 2040, sections 3 and 4: the key as words L, the constants P and Q, and three passes over the longer of the two.
void Rc5::expand_key(std::span<const uint8_t> key) noexcept {
  Wiped<std::array<uint32_t, 64>> l;
  for (size_t i = 0; i < key.size(); ++i) l.value[i / 4] |= uint32_t(key[i]) << (8 * (i % 4));
  const size_t key_words = (key.size() + 3) / 4;
  for (uint32_t i = 0; i < kWords; ++i) words_[i] = 0xB7E15163 + i * 0x9E3779B9;
  uint32_t a = 0, b = 0;
  const size_t turns = 3 * (key_words > kWords ? key_words : kWords);
  for (size_t i = 0; i < turns; ++i) {
    a = words_[i % kWords] = std::rotl(words_[i % kWords] + a + b, 3);
    b = l.value[i % key_words] = std::rotl(l.value[i % key_words] + a + b, int((a + b) & 31));
  }
}

void Rc5::encrypt_block(const uint8_t *in, uint8_t *out) const noexcept {
  uint32_t a = load(in) + words_[0], b = load(in + 4) + words_[1];
  for (size_t i = 1; i <= kRounds; ++i) {
    a = std::rotl(a ^ b, int(b & 31)) + words_[2 * i];
    b = std::rotl(b ^ a, int(a & 31)) + words_[2 * i + 1];
  }
  store(out, a);
  store(out + 4, b);
}

void Rc5::decrypt_block(const uint8_t *in, uint8_t *out) const noexcept {
  uint32_t a = load(in), b = load(in + 4);
  for (size_t i = kRounds; i > 0; --i) {
    b = std::rotr(b - words_[2 * i + 1], int(a & 31)) ^ a;
    a = std::rotr(a - words_[2 * i], int(b & 31)) ^ b;
  }
  store(out, a - words_[0]);
  store(out + 4, b - words_[1]);
}

int Rc5::start(const CipherStart &with) noexcept {
  mode_ = with.mode;
  encrypt_ = with.encrypt;
  used_ = kBlock;
  expand_key(with.key);
  if (mode_ != PKV_MODE_ECB) std::memcpy(chain_.data(), with.iv, kBlock);
  return 0;
}

void Rc5::cbc_encrypt(const uint8_t *in, uint8_t *out) noexcept {
  for (size_t i = 0; i < kBlock; ++i) chain_[i] ^= in[i];
  encrypt_block(chain_.data(), chain_.data());
  std::memcpy(out, chain_.data(), kBlock);
}

void Rc5::cbc_decrypt(const uint8_t *in, uint8_t *out) noexcept {
  const Block previous = chain_;
  std::memcpy(chain_.data(), in, kBlock);
  decrypt_block(chain_.data(), out);
  for (size_t i = 0; i < kBlock; ++i) out[i] ^= previous[i];
}

void Rc5::block(const uint8_t *in, uint8_t *out) noexcept {
  if (mode_ == PKV_MODE_CBC) return encrypt_ ? cbc_encrypt(in, out) : cbc_decrypt(in, out);
  return encrypt_ ? encrypt_block(in, out) : decrypt_block(in, out);
}

uint8_t Rc5::stream(uint8_t octet) noexcept {
  if (used_ == kBlock) {
    encrypt_block(chain_.data(), chain_.data());
    used_ = 0;
  }
  uint8_t &feedback = chain_[used_++];
  const uint8_t result = octet ^ feedback;
  if (mode_ == PKV_MODE_CFB) feedback = encrypt_ ? result : octet;
  return result;
}

bool Rc5::process(std::span<const uint8_t> in, uint8_t *out) noexcept {
  if (is_stream_mode(mode_)) {
    for (const uint8_t octet : in) *out++ = stream(octet);
    return true;
  }
  for (size_t i = 0; i + kBlock <= in.size(); i += kBlock) block(in.data() + i, out + i);
  return true;
}

}  // namespace velcrypto
