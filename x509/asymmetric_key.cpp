// ASYMMETRIC_KEY: a provider key with its type.
#include "x509/internal/x509.h"

namespace velpki {

namespace {

// What can be done with the provider's key objects of one type.
struct KeyKind {
  void (*release)(void *) noexcept;
  void *(*copy)(const void *) noexcept;
  int (*compare)(const void *, const void *) noexcept;
};

template <class Unit, auto release, auto copy, auto compare>
constexpr KeyKind kKindOf = {[](void *key) noexcept { release(static_cast<Unit *>(key)); },
                             [](const void *key) noexcept -> void * { return copy(static_cast<const Unit *>(key)); },
                             [](const void *a, const void *b) noexcept {
                               return compare(static_cast<const Unit *>(a), static_cast<const Unit *>(b));
                             }};

// By ASYMMETRIC_KEY's types, from 1.
constexpr KeyKind kKinds[] = {kKindOf<RSA_UNIT, PKV_Free_RSA, PKV_Dup_RSA, PKV_Cmp_RSA>,
                              kKindOf<KCDSA_UNIT, PKV_Free_KCDSA, PKV_Dup_KCDSA, PKV_Cmp_KCDSA>,
                              kKindOf<ECC_UNIT, PKV_Free_ECC, PKV_Dup_ECC, PKV_Cmp_ECC>};

const KeyKind *kind_of(const ASYMMETRIC_KEY *key) noexcept {
  const bool known = key && key->key && key->type >= ASYMMETRIC_KEY_RSA && key->type <= ASYMMETRIC_KEY_ECC;
  return known ? &kKinds[key->type - 1] : nullptr;
}

// Wraps a key that changes hands on success only.
ASYMMETRIC_KEY *wrap(int type, void *key) noexcept {
  ASYMMETRIC_KEY *wrapped = key ? new_ASYMMETRIC_KEY() : nullptr;
  if (wrapped) *wrapped = {type, key};
  return wrapped;
}

ASYMMETRIC_KEY *wrap_copy(int type, const void *key) noexcept {
  void *copy = key ? kKinds[type - 1].copy(key) : nullptr;
  ASYMMETRIC_KEY *wrapped = wrap(type, copy);
  if (copy && !wrapped) kKinds[type - 1].release(copy);
  return wrapped;
}

void *unwrap(int type, const ASYMMETRIC_KEY *key) noexcept { return key && key->type == type ? key->key : nullptr; }

}  // namespace

}  // namespace velpki

using namespace velpki;

ASYMMETRIC_KEY *new_ASYMMETRIC_KEY(void) noexcept { return allocate_record<ASYMMETRIC_KEY>(); }

void free_ASYMMETRIC_KEY(ASYMMETRIC_KEY *p) noexcept {
  if (!p) return;
  if (const KeyKind *kind = kind_of(p)) kind->release(p->key);
  release(p);
}

ASYMMETRIC_KEY *dup_ASYMMETRIC_KEY(const ASYMMETRIC_KEY *p) noexcept {
  if (!p) return nullptr;
  return kind_of(p) ? wrap_copy(p->type, p->key) : new_ASYMMETRIC_KEY();
}

int cmp_ASYMMETRIC_KEY(const ASYMMETRIC_KEY *a, const ASYMMETRIC_KEY *b) noexcept {
  const KeyKind *kind = kind_of(a);
  return kind && kind == kind_of(b) && kind->compare(a->key, b->key) == 0 ? 0 : 1;
}

ASYMMETRIC_KEY *RSA_UNIT_to_ASYMMETRIC_KEY(RSA_UNIT *key) noexcept { return wrap_copy(ASYMMETRIC_KEY_RSA, key); }
ASYMMETRIC_KEY *KCDSA_UNIT_to_ASYMMETRIC_KEY(KCDSA_UNIT *key) noexcept { return wrap_copy(ASYMMETRIC_KEY_KCDSA, key); }
ASYMMETRIC_KEY *ECC_UNIT_to_ASYMMETRIC_KEY(ECC_UNIT *key) noexcept { return wrap_copy(ASYMMETRIC_KEY_ECC, key); }

RSA_UNIT *ASYMMETRIC_KEY_to_RSA_UNIT(const ASYMMETRIC_KEY *key) noexcept {
  return static_cast<RSA_UNIT *>(unwrap(ASYMMETRIC_KEY_RSA, key));
}
KCDSA_UNIT *ASYMMETRIC_KEY_to_KCDSA_UNIT(const ASYMMETRIC_KEY *key) noexcept {
  return static_cast<KCDSA_UNIT *>(unwrap(ASYMMETRIC_KEY_KCDSA, key));
}
ECC_UNIT *ASYMMETRIC_KEY_to_ECC_UNIT(const ASYMMETRIC_KEY *key) noexcept {
  return static_cast<ECC_UNIT *>(unwrap(ASYMMETRIC_KEY_ECC, key));
}
