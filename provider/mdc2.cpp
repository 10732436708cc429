#include "provider/internal/mdc2.h"

#include <algorithm>
#include <cstring>

#include "provider/internal/libcrypto.h"

namespace velcrypto {
namespace {

const EVP_CIPHER *des() noexcept {
  static std::atomic<EVP_CIPHER *> kept;
  return keep_once(kept, EVP_CIPHER_free, []() noexcept -> EVP_CIPHER * {
    OSSL_LIB_CTX *context = library_context();
    return context ? EVP_CIPHER_fetch(context, "DES-ECB", nullptr) : nullptr;
  });
}

}  // namespace

Mdc2::~Mdc2() {
  for (Block *block : {&left_, &right_, &partial_}) PKV_Wipe(block->data(), kBlock);
}

bool Mdc2::is_there() noexcept { return des() != nullptr; }

bool Mdc2::start() noexcept {
  const ErrorScope errors;
  if (!des_) des_.reset(EVP_CIPHER_CTX_new());
  if (!des_ || !des() || EVP_EncryptInit_ex2(des_.get(), des(), nullptr, nullptr, nullptr) != 1) return false;
  left_.fill(0x52);
  right_.fill(0x25);
  partial_length_ = 0;
  return true;
}

bool Mdc2::encrypt_under(const Block &key, const uint8_t *in, Block &out) noexcept {
  int length = 0;
  return EVP_EncryptInit_ex2(des_.get(), nullptr, key.data(), nullptr, nullptr) == 1 &&
         EVP_CIPHER_CTX_set_padding(des_.get(), 0) == 1 &&
         EVP_EncryptUpdate(des_.get(), out.data(), &length, in, int(kBlock)) == 1 && length == int(kBlock);
}

// Both halves encrypt the block under a key made from the chaining value; bits 2 and 3 of the first octet are set to 10
// and 01, so that the two keys differ. The right halves of the results change places.
bool Mdc2::compress(const uint8_t *block) noexcept {
  left_[0] = uint8_t((left_[0] & 0x9F) | 0x40);
  right_[0] = uint8_t((right_[0] & 0x9F) | 0x20);
  Block a, b;
  if (!encrypt_under(left_, block, a) || !encrypt_under(right_, block, b)) return false;
  for (size_t i = 0; i < kBlock; ++i) {
    left_[i] = uint8_t(block[i] ^ (i < kBlock / 2 ? a[i] : b[i]));
    right_[i] = uint8_t(block[i] ^ (i < kBlock / 2 ? b[i] : a[i]));
  }
  return true;
}

bool Mdc2::update(std::span<const uint8_t> data) noexcept {
  while (!data.empty()) {
    const size_t taken = std::min(data.size(), kBlock - partial_length_);
    std::memcpy(partial_.data() + partial_length_, data.data(), taken);
    data = data.subspan(taken);
    partial_length_ += taken;
    if (partial_length_ < kBlock) break;
    partial_length_ = 0;
    if (!compress(partial_.data())) return false;
  }
  return true;
}

// Padding method 1: zeros fill a block that is begun; a whole number of blocks gets none.
bool Mdc2::finish(uint8_t *out) noexcept {
  if (partial_length_) {
    std::fill(partial_.begin() + ptrdiff_t(partial_length_), partial_.end(), uint8_t{0});
    partial_length_ = 0;
    if (!compress(partial_.data())) return false;
  }
  std::copy(left_.begin(), left_.end(), out);
  std::copy(right_.begin(), right_.end(), out + kBlock);
  return true;
}

bool Mdc2::copy_from(const Mdc2 &other) noexcept {
  if (!start()) return false;
  left_ = other.left_;
  right_ = other.right_;
  partial_ = other.partial_;
  partial_length_ = other.partial_length_;
  return true;
}

}  // namespace velcrypto
