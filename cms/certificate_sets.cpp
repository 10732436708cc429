#include "cms/internal/certificate_sets.h"

namespace velpki {

namespace {

// One element of a set of choices: a SEQUENCE is what the set is made for.
template <class E>
bool read_choice(MessageReader &in, STACK &list, STACK *&others) noexcept {
  Tlv child;
  if (!in.next(child)) return false;
  owned<E> element(blank<E>());
  if (!in.made(element.get())) return false;
  const bool fits = child.fits(tag::kSequence);
  const int code = fits ? decode(child, *element) : 0;
  if (fits && !code) return append(&list, element) || in.stop(Read::no_memory);
  if (!in.rules().standard || reason_of(code) == kNoMemory) return in.inner(code);
  ASN1_UNIT *unit = nullptr;
  if (!in.keep(read_unit(child, unit))) return false;
  owned<ASN1_UNIT> kept(unit);
  return in.made(others ? others : others = new_STACK()) && (append(others, kept) || in.stop(Read::no_memory));
}

}  // namespace

template <class E>
bool read_choices(MessageReader &in, uint8_t identifier, STACK *&list, STACK *&others) noexcept {
  while (in.at_optional(identifier, list)) {
    Tlv set;
    destroy_list<E>(std::exchange(list, nullptr));
    if (!in.next(set) || !in.made(list = new_STACK())) return false;
    MessageReader inside(set);
    if (!reserve_stack(list, count_values(inside.rest(), inside.rules()))) return in.stop(Read::no_memory);
    while (!inside.at_end() && read_choice<E>(inside, *list, others)) continue;
    if (!in.join(inside)) return false;
  }
  return in.reason() == Read::ok;
}
template bool read_choices<X509_CERT>(MessageReader &, uint8_t, STACK *&, STACK *&) noexcept;
template bool read_choices<X509_CRL>(MessageReader &, uint8_t, STACK *&, STACK *&) noexcept;

namespace {

// In standard form a certificate goes out as it came.
int encode_choice(const X509_CERT &cert, DerWriter &out) noexcept {
  if (!out.rules().standard || !cert.received) return encode(cert, out);
  out.raw(received_whole(*cert.received));
  return 0;
}
int encode_choice(const X509_CRL &crl, DerWriter &out) noexcept { return encode(crl, out); }

}  // namespace

template <class E>
int write_choices(uint8_t identifier, const STACK *list, const STACK *others, int function, DerWriter &out) noexcept {
  if (!has_elements(list) && !has_elements(others)) return 0;
  const auto scope = out.constructed(identifier);
  const size_t start = out.size();
  for (const E *each : elements<E>(list)) {
    if (!each) return fail(function, ERR_ASN1_ENCODING);
    if (const int code = encode_choice(*each, out)) return code;
  }
  for (const ASN1_UNIT *each : elements<ASN1_UNIT>(others)) out.unit(each);
  if (out.rules().standard) out.sort_values(start);
  return 0;
}
template int write_choices<X509_CERT>(uint8_t, const STACK *, const STACK *, int, DerWriter &) noexcept;
template int write_choices<X509_CRL>(uint8_t, const STACK *, const STACK *, int, DerWriter &) noexcept;

}  // namespace velpki
