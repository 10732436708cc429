// What keys of all kinds are made of: one immutable, counted block of numbers that copies of a key share, and what
// operations prepare from it at first use.
#pragma once

#include <array>
#include <atomic>
#include <cstring>

#include "provider/internal/bigint.h"
#include "provider/internal/libcrypto.h"
#include "provider/internal/memory.h"

namespace velcrypto {

// A number as it goes into a part; octets null: absent.
struct Number {
  const uint8_t *octets = nullptr;
  int length = 0;
  bool negative = false;
};
inline Number number_of(const BIGINT *n) noexcept {
  if (!n) return {};
  Number out{nullptr, 0, n->negative};
  out.octets = PKV_Get_BIGINT_Octets(n, &out.length);
  return out;
}
inline Number number_of(const uint8_t *octets, int length) noexcept {
  for (; length > 0 && *octets == 0; --length) ++octets;
  return {octets, length, 0};
}

// The block: this struct with the octets of all numbers behind it, so that a key costs one allocation however many
// numbers it has. `Extra` holds what else belongs to the numbers; its destructor releases what was prepared.
template <class Extra, size_t N>
struct KeyPart {
  std::atomic<unsigned> references{1};
  size_t size = 0;  // octets behind the struct
  std::array<pkv_bigint, N> numbers{};
  Extra extra;

  const BIGINT *number(size_t which) const noexcept { return numbers[which].octets ? &numbers[which] : nullptr; }

  // Null when memory is exhausted or the lengths together pass what size_t holds.
  static KeyPart *make(const std::array<Number, N> &given) noexcept {
    size_t size = 1;  // so that a zero's octets point into the block
    for (const Number &one : given) {
      if (size > SIZE_MAX / 2 - size_t(one.length)) return nullptr;
      size += size_t(one.length);
    }
    void *block = PKV_Malloc(sizeof(KeyPart) + size, __builtin_FILE(), __builtin_LINE());
    if (!block) return nullptr;
    auto *part = new (block) KeyPart;
    part->size = size;
    auto *at = reinterpret_cast<uint8_t *>(part + 1);
    for (size_t i = 0; i < N; ++i) at = part->place(i, given[i], at);
    return part;
  }

  void retain() noexcept { references.fetch_add(1, std::memory_order_relaxed); }
  void release() noexcept {
    if (references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    PKV_Wipe(this + 1, size);
    this->~KeyPart();
    PKV_Free(this, __builtin_FILE(), __builtin_LINE());
  }

 private:
  uint8_t *place(size_t which, const Number &one, uint8_t *at) noexcept {
    if (!one.octets) return at;
    if (one.length) std::memcpy(at, one.octets, size_t(one.length));
    numbers[which] = {at, one.length, 0, one.negative, false};
    return at + one.length;
  }
};

// One counted reference to a part.
template <class Part>
class Shared {
 public:
  Shared() noexcept = default;
  explicit Shared(Part *taken) noexcept : part_(taken) {}
  Shared(const Shared &other) noexcept : part_(other.part_) {
    if (part_) part_->retain();
  }
  Shared(Shared &&other) noexcept : part_(std::exchange(other.part_, nullptr)) {}
  Shared &operator=(Shared other) noexcept {
    std::swap(part_, other.part_);
    return *this;
  }
  ~Shared() {
    if (part_) part_->release();
  }
  explicit operator bool() const noexcept { return part_ != nullptr; }
  Part *operator->() const noexcept { return part_; }
  Part &operator*() const noexcept { return *part_; }

 private:
  Part *part_ = nullptr;
};

// Something made from a part at first use, without a lock: see keep_once.
template <class T, auto release_one>
class Prepared {
 public:
  Prepared() noexcept = default;
  Prepared(const Prepared &) = delete;
  Prepared &operator=(const Prepared &) = delete;
  ~Prepared() {
    if (T *held = slot_.load(std::memory_order_relaxed)) release_one(held);
  }
  // What `make_one` made now or before; null when it made nothing.
  template <class Make>
  T *get(Make make_one) const noexcept {
    return keep_once(slot_, release_one, make_one);
  }

 private:
  mutable std::atomic<T *> slot_{nullptr};
};

// A private key's signer elsewhere.
struct Signer {
  PKV_SIGN_CALLBACK *sign = nullptr;
  void *context = nullptr;
};

using BnMontOwner = owned<BN_MONT_CTX, BN_MONT_CTX_free>;

// A number of 1 to order - 1, all equally likely, for a private value or a nonce; null with the reason in `error`.
BnOwner random_exponent(const BIGNUM *order, int &error) noexcept;

// Digests that may be signed: known ones, without the HMAC flag.
inline bool is_digest(int digest_id) noexcept {
  return !(digest_id & PKV_HMAC_FLAG) && PKV_Get_DIGEST_Length(digest_id) > 0;
}

}  // namespace velcrypto
