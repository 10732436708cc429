// X509_ALGO_IDENTIFIER and its list.
#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_ALGO_IDENTIFIER> = std::tuple(own(&X509_ALGO_IDENTIFIER::algorithm),
                                                                      own(&X509_ALGO_IDENTIFIER::parameters));

// AlgorithmIdentifier ::= SEQUENCE { algorithm OBJECT IDENTIFIER, parameters ANY OPTIONAL }
int decode(const Tlv &tlv, X509_ALGO_IDENTIFIER &out) noexcept {
  Cursor in(tlv);
  const int count = count_values(tlv.content, in.rules());
  if (count < 1 || count > 2) return fail(F_SEQ_TO_X509_ALGO_IDENTIFIER, kBadValue);
  if (in.oid(out.algorithm) && !in.at_end()) in.any_string(out.parameters);
  return in.result(F_SEQ_TO_X509_ALGO_IDENTIFIER);
}

int encode(const X509_ALGO_IDENTIFIER &identifier, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(identifier.algorithm);
  if (identifier.parameters) out.string(identifier.parameters);
  return 0;
}

namespace {

int decode_algorithms(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<X509_ALGO_IDENTIFIER>(tlv, list, F_SEQ_TO_X509_ALGO_IDENTIFIERS, decode);
}
int encode_algorithms(const STACK &list, DerWriter &out) noexcept {
  return encode_list<X509_ALGO_IDENTIFIER>(list, out, tag::kSet, F_X509_ALGO_IDENTIFIERS_TO_SEQ, encode);
}

int set_value(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid, owned<ASN1_STRING> parameters) noexcept {
  if (!identifier || !oid || !replace(*identifier, &X509_ALGO_IDENTIFIER::algorithm, oid)) return 1;
  free_ASN1_STRING(identifier->parameters);
  identifier->parameters = parameters.release();
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

X509_ALGO_IDENTIFIER *new_X509_ALGO_IDENTIFIER(void) noexcept { return make<X509_ALGO_IDENTIFIER>(); }

// A record that further lists hold is released by the last of them.
void free_X509_ALGO_IDENTIFIER(X509_ALGO_IDENTIFIER *p) noexcept {
  if (p && __atomic_fetch_sub(&p->shares, 1, __ATOMIC_ACQ_REL) <= 0) destroy(p);
}

X509_ALGO_IDENTIFIER *dup_X509_ALGO_IDENTIFIER(const X509_ALGO_IDENTIFIER *p) noexcept {
  X509_ALGO_IDENTIFIER *fresh = copy(p);
  if (fresh) fresh->shares = 0;
  return fresh;
}

int set_X509_ALGO_IDENTIFIER_value(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid,
                                   const ASN1_STRING *parameters) noexcept {
  owned<ASN1_STRING> stored(parameters ? dup_ASN1_STRING(parameters) : new_string(TYPE_NULL, {}));
  return stored ? set_value(identifier, oid, std::move(stored)) : 1;
}

int set_X509_ALGO_IDENTIFIER_value_RFC5280(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid,
                                           const ASN1_STRING *parameters) noexcept {
  owned<ASN1_STRING> stored(dup_ASN1_STRING(parameters));
  return stored || !parameters ? set_value(identifier, oid, std::move(stored)) : 1;
}

int X509_ALGO_IDENTIFIER_to_Seq(const X509_ALGO_IDENTIFIER *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_ALGO_IDENTIFIER_TO_SEQ, in, out, encode);
}
// Into a record that is there go the members alone: how many lists hold it does not change.
int Seq_to_X509_ALGO_IDENTIFIER(ASN1_UNIT *in, X509_ALGO_IDENTIFIER **out) noexcept {
  X509_ALGO_IDENTIFIER *fresh = nullptr;
  const int code = from_seq(F_SEQ_TO_X509_ALGO_IDENTIFIER, in, out ? &fresh : nullptr, decode);
  if (code) return code;
  if (!*out) return *out = fresh, 0;
  const owned<X509_ALGO_IDENTIFIER> old(fresh);
  std::swap((*out)->algorithm, fresh->algorithm);
  std::swap((*out)->parameters, fresh->parameters);
  return 0;
}

VELPKI_LIST(X509_ALGO_IDENTIFIERS, X509_ALGO_IDENTIFIER)

X509_ALGO_IDENTIFIERS *dup_X509_ALGO_IDENTIFIERS(const X509_ALGO_IDENTIFIERS *p) noexcept {
  X509_ALGO_IDENTIFIERS *fresh = dup_STACK(p);
  if (!fresh) return nullptr;
  for (X509_ALGO_IDENTIFIER *each : elements<X509_ALGO_IDENTIFIER>(p))
    if (each) __atomic_fetch_add(&each->shares, 1, __ATOMIC_ACQ_REL);
  return fresh;
}

X509_ALGO_IDENTIFIERS *dup_X509_ALGO_IDENTIFIERS_strict(const X509_ALGO_IDENTIFIERS *p) noexcept {
  return copy_list<X509_ALGO_IDENTIFIER>(p);
}

int X509_ALGO_IDENTIFIERS_to_Seq(const X509_ALGO_IDENTIFIERS *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_ALGO_IDENTIFIERS_TO_SEQ, in, out, encode_algorithms);
}
int Seq_to_X509_ALGO_IDENTIFIERS(ASN1_UNIT *in, X509_ALGO_IDENTIFIERS **out) noexcept {
  return list_from_seq<X509_ALGO_IDENTIFIER>(F_SEQ_TO_X509_ALGO_IDENTIFIERS, in, out, decode_algorithms);
}

namespace velpki {

owned<X509_ALGO_IDENTIFIER> new_algorithm(const OBJECT_IDENTIFIER *oid, const ASN1_STRING *parameters) noexcept {
  owned<X509_ALGO_IDENTIFIER> made(oid ? new_X509_ALGO_IDENTIFIER() : nullptr);
  return made && set_X509_ALGO_IDENTIFIER_value(made.get(), oid, parameters) == 0 ? std::move(made) : nullptr;
}

owned<X509_ALGO_IDENTIFIER> new_bare_algorithm(const OBJECT_IDENTIFIER *oid) noexcept {
  owned<X509_ALGO_IDENTIFIER> made(oid ? new_X509_ALGO_IDENTIFIER() : nullptr);
  return made && set_X509_ALGO_IDENTIFIER_value_RFC5280(made.get(), oid, nullptr) == 0 ? std::move(made) : nullptr;
}

}  // namespace velpki
