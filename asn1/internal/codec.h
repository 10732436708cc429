// The C borders of codecs: decoders fill a blank record, encoders write one value, and these make Seq_to_X and X_to_Seq
// of them.
#pragma once

#include <velpki/asn1_error.h>

#include "asn1/internal/cursor.h"
#include "asn1/internal/record.h"
#include "asn1/internal/writer.h"

namespace velpki {

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
