// Record families: what a record owns is said once, and zeroing, releasing, copying and the C borders of its codecs
// follow.
//
//   template <> inline constexpr auto owned_fields<X509_EXTENSION> =
//       std::tuple(own(&X509_EXTENSION::object), own(&X509_EXTENSION::value));
//   VELPKI_LIFE_CYCLE(X509_EXTENSION)   // new_, clean_, free_, dup_
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/stack.h>

#include <tuple>
#include <utility>

#include "asn1/internal/cursor.h"
#include "asn1/internal/memory.h"
#include "asn1/internal/stack.h"
#include "asn1/internal/writer.h"

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

// The C borders of codecs.

// Seq_to_X. A record that the caller passes is replaced on success and untouched on failure.
template <class R>
int store(owned<R> fresh, R **record) noexcept {
  if (*record)
    std::swap(**record, *fresh);  // the caller's record keeps its address; `fresh` takes the old content away
  else
    *record = fresh.release();
  return 0;
}
template <class R>
int from_tlv(int function, const Tlv &tlv, R **record, int (*decode)(const Tlv &, R &) noexcept) noexcept {
  owned<R> fresh(blank<R>());
  if (!fresh) return fail(function, kNoMemory);
  if (const int code = decode(tlv, *fresh)) return code;
  return store(std::move(fresh), record);
}
template <class R>
int from_seq(int function, const ASN1_UNIT *unit, R **record, int (*decode)(const Tlv &, R &) noexcept,
             Rules rules = {}) noexcept {
  if (!unit || !record) return fail(function, kNullArgument);
  Tlv tlv;
  if (!view(*unit, tlv, rules)) return fail(function, ERR_ASN1_DECODING);
  return from_tlv(function, tlv, record, decode);
}
// The same for lists, whose C type is STACK for all of them.
template <class E>
int list_from_tlv(int function, const Tlv &tlv, STACK **list, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  STACK *fresh = new_STACK();
  if (!fresh) return fail(function, kNoMemory);
  int code = decode(tlv, *fresh);
  if (!code && *list)
    std::swap(**list, *fresh);
  else if (!code)
    *list = std::exchange(fresh, nullptr);
  destroy_list<E>(fresh);
  return code;
}
template <class E>
int list_from_seq(int function, const ASN1_UNIT *unit, STACK **list, int (*decode)(const Tlv &, STACK &) noexcept,
                  Rules rules = {}) noexcept {
  if (!unit || !list) return fail(function, kNullArgument);
  Tlv tlv;
  if (!view(*unit, tlv, rules)) return fail(function, ERR_ASN1_DECODING);
  return list_from_tlv<E>(function, tlv, list, decode);
}

// X_to_Seq. `unit` is written on success only and not read before.
template <class R>
int to_seq(int function, const R *record, ASN1_UNIT **unit, int (*encode)(const R &, DerWriter &) noexcept,
           Rules rules = {}, Content content = Content::open) noexcept {
  if (!record || !unit) return fail(function, kNullArgument);
  DerWriter out(rules, content);
  if (const int code = encode(*record, out)) return code;
  return unit_from(out, function, unit);
}

// The same for the encoders that refill a unit which the caller passes: it is cleaned first, and stays empty on
// failure.
template <class R>
int to_refilled_seq(int function, const R *record, ASN1_UNIT **unit, int (*encode)(const R &, DerWriter &) noexcept,
                    Rules rules = {}) noexcept {
  if (!unit || !*unit) return to_seq(function, record, unit, encode, rules);
  clean_ASN1_UNIT(*unit);
  ASN1_UNIT *fresh = nullptr;
  if (const int code = to_seq(function, record, &fresh, encode, rules)) return code;
  std::swap(**unit, *fresh);
  free_ASN1_UNIT(fresh);
  return 0;
}

// SEQUENCE OF or SET OF E into the list: the elements are counted first, so that the slots come in one piece.
template <class E>
bool read_elements(Cursor &in, STACK &list, int (*decode)(const Tlv &, E &) noexcept, int &code) noexcept {
  if (!reserve_stack(&list, count_values(in.rest(), in.rules()))) return in.stop(Read::no_memory);
  while (!in.at_end()) {
    Tlv child;
    if (!in.next(TYPE_SEQUENCE, child)) return false;
    owned<E> element(blank<E>());
    if (!in.made(element.get())) return false;
    if ((code = decode(child, *element))) return false;
    if (!append(&list, element)) return in.stop(Read::no_memory);
  }
  return true;
}

// The codecs of a list: SEQUENCE OF or SET OF E. `function` is the code of a missing or malformed element; an element's
// own code goes up.
template <class E>
int decode_list(const Tlv &tlv, STACK &list, int function, int (*decode)(const Tlv &, E &) noexcept) noexcept {
  Cursor in(tlv);
  int code = 0;
  read_elements(in, list, decode, code);
  return code ? code : in.result(function);
}
// With `sorted` in the order of DER.
template <class E>
int encode_list(const STACK &list, DerWriter &out, uint8_t identifier, int function,
                int (*encode)(const E &, DerWriter &) noexcept, bool sorted = false) noexcept {
  const auto scope = out.constructed(identifier);
  const size_t start = out.size();
  for (const E *each : elements<E>(&list)) {
    if (!each) return fail(function, ERR_ASN1_ENCODING);
    if (const int code = encode(*each, out)) return code;
  }
  if (sorted) out.sort_values(start);
  return 0;
}

}  // namespace velpki
