// Record families: what a record owns is said once, and zeroing, releasing and copying follow.
//
//   template <> inline constexpr auto owned_fields<X509_EXTENSION> =
//       std::tuple(own(&X509_EXTENSION::object), own(&X509_EXTENSION::value));
//   VELPKI_LIFE_CYCLE(X509_EXTENSION)   // new_, clean_, free_, dup_
#pragma once

#include <velpki/stack.h>

#include <tuple>
#include <utility>

#include "asn1/internal/memory.h"
#include "asn1/internal/stack.h"

namespace velpki {

// Kinds of field. `own`: a pointer that Flat<T> can release and copy. `made`: the same, and `new_` makes it. `list_of`:
// a STACK of elements E, released and copied with them. `made_list_of`: the same, and `new_` makes it.
template <class R, class T>
struct Own {
  T *R::*member;
  bool made;
};
template <class R, class E>
struct ListOf {
  STACK *R::*member;
  bool made;
};
template <class R, class T>
constexpr Own<R, T> own(T *R::*member) noexcept {
  return {member, false};
}
template <class R, class T>
constexpr Own<R, T> made(T *R::*member) noexcept {
  return {member, true};
}
template <class E, class R>
constexpr ListOf<R, E> list_of(STACK *R::*member) noexcept {
  return {member, false};
}
template <class E, class R>
constexpr ListOf<R, E> made_list_of(STACK *R::*member) noexcept {
  return {member, true};
}

template <class R>
inline constexpr auto owned_fields = std::tuple<>();

// Lists.

template <class E>
void destroy_list(STACK *list) noexcept {
  free_STACK_values(list, [](void *element) { Flat<E>::release(static_cast<E *>(element)); });
}
template <class E>
E *element(const STACK *list, int index) noexcept {
  return static_cast<E *>(get_STACK_value(list, index));
}
// The elements of a list, for range-for; none for null.
template <class E>
class Elements {
 public:
  struct Iterator {
    void *const *slot;
    E *operator*() const noexcept { return static_cast<E *>(*slot); }
    Iterator &operator++() noexcept { return ++slot, *this; }
    bool operator!=(const Iterator &other) const noexcept { return slot != other.slot; }
  };
  explicit Elements(const STACK *list) noexcept
      : slots_(list ? std::span<void *const>(list->data, size_t(list->count)) : std::span<void *const>()) {}
  Iterator begin() const noexcept { return {slots_.data()}; }
  Iterator end() const noexcept { return {slots_.data() + slots_.size()}; }

 private:
  std::span<void *const> slots_;
};
template <class E>
Elements<E> elements(const STACK *list) noexcept {
  return Elements<E>(list);
}
// Where a search goes on after the index found last, or begins when that is negative; INT_MAX ends every search.
constexpr int next_index(int last) noexcept { return last < 0 ? 0 : last == INT_MAX ? last : last + 1; }
// Appends an element that changes hands on success only.
template <class E>
bool append(STACK *list, owned<E> &element) noexcept {
  if (!element || !push_STACK_value(list, element.get())) return false;
  element.release();
  return true;
}
template <class E>
STACK *copy_list(const STACK *source) noexcept {
  if (!source) return nullptr;
  STACK *fresh = new_STACK_compare_func(source->compare);
  if (!fresh || !reserve_stack(fresh, source->count)) return free_STACK(fresh), nullptr;
  for (E *const each : elements<E>(source)) {
    E *copy = each ? Flat<E>::copy(each) : nullptr;
    if (each && !copy) return destroy_list<E>(fresh), nullptr;
    fresh->data[fresh->count++] = copy;
  }
  fresh->sorted = source->sorted;
  return fresh;
}
// Inserts a deep copy, as the `add_` functions of all lists do.
template <class E>
bool insert_copy(STACK *list, const E *source, int position) noexcept {
  if (!list || !source) return false;
  owned<E> copy(Flat<E>::copy(source));
  if (!copy || !insert_STACK_value(list, copy.get(), position)) return false;
  copy.release();
  return true;
}

// One field.

template <class R, class T>
void drop(R &record, Own<R, T> field) noexcept {
  if (record.*field.member) Flat<T>::release(record.*field.member);
}
template <class R, class E>
void drop(R &record, ListOf<R, E> field) noexcept {
  if (record.*field.member) destroy_list<E>(record.*field.member);
}
template <class R, class F>
void forget(R &record, F field) noexcept {
  record.*field.member = nullptr;
}
template <class R, class T>
bool duplicate(R &to, const R &from, Own<R, T> field) noexcept {
  if (!(from.*field.member)) return true;
  to.*field.member = Flat<T>::copy(from.*field.member);
  return to.*field.member != nullptr;
}
template <class R, class E>
bool duplicate(R &to, const R &from, ListOf<R, E> field) noexcept {
  if (!(from.*field.member)) return true;
  to.*field.member = copy_list<E>(from.*field.member);
  return to.*field.member != nullptr;
}
template <class R, class T>
bool prepare(R &record, Own<R, T> field) noexcept {
  if constexpr (requires { Flat<T>::make(); }) {
    if (field.made) record.*field.member = Flat<T>::make();
  }
  return !field.made || record.*field.member;
}
template <class R, class E>
bool prepare(R &record, ListOf<R, E> field) noexcept {
  if (field.made) record.*field.member = new_STACK();
  return !field.made || record.*field.member;
}

// A record's life.

template <class R>
void clean(R *record) noexcept {
  if (!record) return;
  std::apply([record](auto... field) { (drop(*record, field), ...); }, owned_fields<R>);
  std::memset(static_cast<void *>(record), 0, sizeof *record);
}
template <class R>
void destroy(R *record) noexcept {
  if (!record) return;
  std::apply([record](auto... field) { (drop(*record, field), ...); }, owned_fields<R>);
  release(record);
}
// Zero-filled but for the fields that are `made`. `blank` leaves those out too: decoders fill every field themselves.
template <class R>
R *blank() noexcept {
  return allocate_record<R>();
}
template <class R>
R *make() noexcept {
  owned<R> record(allocate_record<R>());
  if (!record) return nullptr;
  const bool whole = std::apply([&](auto... field) { return (prepare(*record, field) && ...); }, owned_fields<R>);
  return whole ? record.release() : nullptr;
}
template <class R>
R *copy(const R *source) noexcept {
  owned<R> fresh(source ? allocate_record<R>() : nullptr);
  if (!fresh) return nullptr;
  *fresh = *source;
  std::apply([&](auto... field) { (forget(*fresh, field), ...); }, owned_fields<R>);
  const bool whole =
      std::apply([&](auto... field) { return (duplicate(*fresh, *source, field) && ...); }, owned_fields<R>);
  return whole ? fresh.release() : nullptr;
}

// Puts a copy of `value` in place of what the member holds. The copy comes first, so failure changes nothing and a
// member may be set to itself.
template <class R, class T>
bool replace(R &record, T *R::*member, const T *value) noexcept {
  T *copy = value ? Flat<T>::copy(value) : nullptr;
  if (!copy) return false;
  if (record.*member) Flat<T>::release(record.*member);
  record.*member = copy;
  return true;
}

// The same for a list of E.
template <class E, class R>
bool replace_list(R &record, STACK *R::*member, const STACK *value) noexcept {
  STACK *copy = copy_list<E>(value);
  if (!copy) return false;
  destroy_list<E>(record.*member);
  record.*member = copy;
  return true;
}

// Declares that Flat<T> uses the flat functions of T. It stands in a header, after their declarations.
#define VELPKI_FLAT(T)                                                   \
  template <>                                                            \
  struct Flat<T> {                                                       \
    static T *make() noexcept { return new_##T(); }                      \
    static void release(T *record) noexcept { free_##T(record); }        \
    static T *copy(const T *record) noexcept { return dup_##T(record); } \
  };

// The same for a record without dup_.
#define VELPKI_FLAT_WITHOUT_DUP(T)                                \
  template <>                                                     \
  struct Flat<T> {                                                \
    static T *make() noexcept { return new_##T(); }               \
    static void release(T *record) noexcept { free_##T(record); } \
  };

// The flat functions of a record whose life has no peculiarity.
#define VELPKI_LIFE_CYCLE(T)                                     \
  T *new_##T(void) noexcept { return velpki::make<T>(); }        \
  void clean_##T(T *record) noexcept { velpki::clean(record); }  \
  void free_##T(T *record) noexcept { velpki::destroy(record); } \
  T *dup_##T(const T *record) noexcept { return velpki::copy(record); }
// The same without clean_.
#define VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(T)                       \
  T *new_##T(void) noexcept { return velpki::make<T>(); }        \
  void free_##T(T *record) noexcept { velpki::destroy(record); } \
  T *dup_##T(const T *record) noexcept { return velpki::copy(record); }
// Those of a record that is only made and released.
#define VELPKI_NEW_AND_FREE(T)                            \
  T *new_##T(void) noexcept { return velpki::make<T>(); } \
  void free_##T(T *record) noexcept { velpki::destroy(record); }
// The flat functions of a list of elements.
#define VELPKI_LIST(L, E)                           \
  L *new_##L(void) noexcept { return new_STACK(); } \
  void free_##L(L *list) noexcept { velpki::destroy_list<E>(list); }
#define VELPKI_LIST_WITH_DUP(L, E) \
  VELPKI_LIST(L, E)                \
  L *dup_##L(const L *list) noexcept { return velpki::copy_list<E>(list); }

}  // namespace velpki
