// An import of a PFX: what is asked for, and what was found.
#pragma once

#include "keys/internal/pkcs12.h"

namespace velpki {

// A key that was found, with the local key identifier of its bag.
struct ImportedKey {
  P8_PRIV_KEY_INFO *key;
  OCTET_STRING *id;
};
template <>
inline constexpr auto owned_fields<ImportedKey> = std::tuple(own(&ImportedKey::key), own(&ImportedKey::id));
template <>
struct Flat<ImportedKey> {
  static void release(ImportedKey *key) noexcept { destroy(key); }
};

// A list that owns its elements.
template <class E>
struct OwnedList {
  OwnedList() noexcept = default;
  OwnedList(const OwnedList &) = delete;
  OwnedList &operator=(const OwnedList &) = delete;
  ~OwnedList() { destroy_list<E>(stack); }
  int count() const noexcept { return stack ? stack->count : 0; }
  E *take(int index) noexcept { return static_cast<E *>(std::exchange(stack->data[index], nullptr)); }
  // Takes the element over, on success only; room is doubled, so that many elements take linear time.
  bool add(owned<E> &element) noexcept {
    if (!stack && !(stack = new_STACK())) return false;
    if (stack->count == stack->capacity && !reserve_stack(stack, 2 * stack->capacity)) return false;
    return append(stack, element);
  }
  STACK *stack = nullptr;
};

struct ImportOptions {
  bool any_digest = false, utf8 = false, without_mac = false, skip_certs = false, strict = false;
  int maximum = PKCS5_MAX_ITERATIONS;
};

struct Import {
  explicit Import(const ImportOptions &with) noexcept : options(with), budget(with.maximum) {
    budget.pbes1 = with.any_digest;
  }
  ImportOptions options;
  Budget budget;
  OwnedList<ImportedKey> keys;
  OwnedList<X509_CERT> found;  // certificates in the order of the file
  OwnedList<X509_CERT> own, others;
  int skipped = 0;
};

// Reads all keys and certificates of the file into `import`; 0 or a reason.
int read_contents(Import &import, const Pkcs12Password &password, const PKCS12 &p12) noexcept;

}  // namespace velpki
