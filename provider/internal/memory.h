// Ownership inside the provider: blocks that release themselves, secrets that are wiped.
#pragma once

#include <velpki/pkv.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace velcrypto {

// A new T, value-initialised, from PKV_Calloc; null when memory is exhausted. T's members initialise themselves.
template <class T, class... A>
T *make(A &&...arguments) noexcept {
  void *block = PKV_Calloc(1, sizeof(T), __builtin_FILE(), __builtin_LINE());
  return block ? new (block) T(std::forward<A>(arguments)...) : nullptr;
}
template <class T>
void destroy(T *object) noexcept {
  if (!object) return;
  object->~T();
  PKV_Free(object, __builtin_FILE(), __builtin_LINE());
}

// Calls one flat release function: `owned<EVP_PKEY, EVP_PKEY_free>`, `owned<BIGINT, PKV_Free_BIGINT>`.
template <auto release>
struct Releases {
  template <class T>
  void operator()(T *object) const noexcept {
    release(object);
  }
};
template <class T, auto release>
using owned = std::unique_ptr<T, Releases<release>>;

// Octets on the heap that are wiped on release. `resize` keeps nothing of the old content.
class SecretBuffer {
 public:
  SecretBuffer() noexcept = default;
  explicit SecretBuffer(size_t size) noexcept { static_cast<void>(resize(size)); }
  SecretBuffer(const SecretBuffer &) = delete;
  SecretBuffer &operator=(const SecretBuffer &) = delete;
  ~SecretBuffer() { release(); }
  // False, with the buffer empty, when memory is exhausted. The octets are zero.
  [[nodiscard]] bool resize(size_t size) noexcept {
    release();
    data_ = static_cast<uint8_t *>(PKV_Calloc(1, size ? size : 1, __builtin_FILE(), __builtin_LINE()));
    size_ = data_ ? size : 0;
    return data_ != nullptr;
  }
  explicit operator bool() const noexcept { return data_ != nullptr; }
  uint8_t *data() noexcept { return data_; }
  const uint8_t *data() const noexcept { return data_; }
  size_t size() const noexcept { return size_; }

 private:
  void release() noexcept {
    if (data_) PKV_Wipe(data_, size_);
    PKV_Free(data_, __builtin_FILE(), __builtin_LINE());
    data_ = nullptr;
    size_ = 0;
  }
  uint8_t *data_ = nullptr;
  size_t size_ = 0;
};

// A plain value that is wiped when it goes out of scope (a digest, an IV, a short key on the stack).
template <class T>
struct Wiped {
  T value{};
  ~Wiped() { PKV_Wipe(&value, sizeof value); }
};

}  // namespace velcrypto
