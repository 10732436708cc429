// Ownership inside the library: every block comes from the provider, and an owner releases it.
#pragma once

#include <velpki/pkv.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

namespace velpki {

using Octets = std::span<const uint8_t>;

// `Octets` of an interface's (pointer, length); empty for null or a length below 1.
inline Octets octets_of(const unsigned char *data, int length) noexcept {
  return data && length > 0 ? Octets(data, size_t(length)) : Octets();
}

// The caller's place goes into the allocation record.
inline void *allocate(size_t size, const char *file = __builtin_FILE(), int line = __builtin_LINE()) noexcept {
  return PKV_Malloc(size, file, line);
}
inline void *allocate_zeroed(size_t size, const char *file = __builtin_FILE(), int line = __builtin_LINE()) noexcept {
  return PKV_Calloc(1, size, file, line);
}
inline void release(void *block, const char *file = __builtin_FILE(), int line = __builtin_LINE()) noexcept {
  PKV_Free(block, file, line);
}

// A zero-filled record of a C type.
template <class T>
T *allocate_record(const char *file = __builtin_FILE(), int line = __builtin_LINE()) noexcept {
  return static_cast<T *>(PKV_Calloc(1, sizeof(T), file, line));
}

// What `owned<T>` calls at the end of a T: specialised beside the declaration of each record's functions.
template <class T>
struct Flat {
  static void release(T *record) noexcept { record->cannot_be_released_here(); }
};
template <>
struct Flat<BIGINT> {
  static void release(BIGINT *n) noexcept { PKV_Free_BIGINT(n); }
  static BIGINT *copy(const BIGINT *n) noexcept { return PKV_Dup_BIGINT(n); }
};
template <>
struct Flat<uint8_t> {
  static void release(uint8_t *block) noexcept { velpki::release(block); }
};
template <>
struct Flat<char> {
  static void release(char *block) noexcept { velpki::release(block); }
};

struct FlatRelease {
  template <class T>
  void operator()(T *record) const noexcept {
    Flat<T>::release(record);
  }
};
template <class T>
using owned = std::unique_ptr<T, FlatRelease>;

// Puts a value in place of what a member holds.
template <class T>
void put(T *&place, owned<T> value) noexcept {
  const owned<T> before(std::exchange(place, value.release()));
}

// A new block of `size` octets, owned; null when memory is exhausted.
inline owned<uint8_t> new_octets(size_t size, const char *file = __builtin_FILE(),
                                 int line = __builtin_LINE()) noexcept {
  return owned<uint8_t>(static_cast<uint8_t *>(PKV_Malloc(size, file, line)));
}

// Whether what a buffer holds is wiped before its memory goes.
enum class Content : bool { open, secret };

// Wipes octets at the end of a scope.
class WipeAtEnd {
 public:
  WipeAtEnd(void *data, size_t length) noexcept : data_(data), length_(length) {}
  WipeAtEnd(const WipeAtEnd &) = delete;
  WipeAtEnd &operator=(const WipeAtEnd &) = delete;
  ~WipeAtEnd() { PKV_Wipe(data_, length_); }

 private:
  void *data_;
  size_t length_;
};

// Octets that are wiped when they go.
class SecretOctets {
 public:
  explicit SecretOctets(size_t size) noexcept : data_(new_octets(size)), size_(size) {}
  SecretOctets(const SecretOctets &) = delete;
  SecretOctets &operator=(const SecretOctets &) = delete;
  ~SecretOctets() { PKV_Wipe(data_.get(), data_ ? size_ : 0); }
  explicit operator bool() const noexcept { return data_ != nullptr; }
  uint8_t *data() const noexcept { return data_.get(); }
  int size() const noexcept { return int(size_); }

 private:
  owned<uint8_t> data_;
  size_t size_;
};

inline void copy_octets(void *to, Octets from) noexcept {
  if (!from.empty()) std::memcpy(to, from.data(), from.size());
}

}  // namespace velpki
