// The records of x509v3.h from the inside. House and standard form of a type are one codec: where they differ, the
// difference stands beside the type as a tag, a wrapper or a default.
#pragma once

#include <velpki/x509v3.h>

#include <algorithm>
#include <bit>

#include "x509/internal/x509.h"

namespace velpki {

VELPKI_FLAT(GENERAL_NAME)
VELPKI_FLAT(OTHERNAME)
VELPKI_FLAT(EDIPARTYNAME)
VELPKI_FLAT(BASIC_CONSTRAINTS)
VELPKI_FLAT(AUTHORITY_KEYID)
VELPKI_FLAT(ACCESS_DESCRIPTION)
VELPKI_FLAT(DIST_POINT_NAME)
VELPKI_FLAT(DIST_POINT)
VELPKI_FLAT(NOTICE_REFERENCE)
VELPKI_FLAT(USER_NOTICE)
VELPKI_FLAT(POLICY_QUALIFIER_INFO)
VELPKI_FLAT(POLICY_INFO)
VELPKI_FLAT(POLICY_MAPPING)
VELPKI_FLAT(POLICY_CONSTRAINTS)
VELPKI_FLAT(GENERAL_SUBTREE)
VELPKI_FLAT(NAME_CONSTRAINTS)

template <>
struct Flat<ISSUING_DIST_POINT> {
  static void release(ISSUING_DIST_POINT *point) noexcept { free_ISSUING_DIST_POINT(point); }
  static ISSUING_DIST_POINT *copy(const ISSUING_DIST_POINT *point) noexcept;
};
template <>
struct Flat<X509_SIGN> {
  static void release(X509_SIGN *sign) noexcept { free_X509_SIGN(sign); }
};
template <>
struct Flat<int> {
  static void release(int *number) noexcept { velpki::release(number); }
  static int *copy(const int *number) noexcept;
};

namespace row {
inline constexpr int kSubjectKeyIdentifier = 82;
inline constexpr int kKeyUsage = 83;
inline constexpr int kSubjectAltName = 85;
inline constexpr int kBasicConstraints = 87;
inline constexpr int kCertificatePolicies = 89;
inline constexpr int kAuthorityKeyIdentifier = 90;
inline constexpr int kCrlDistributionPoints = 103;
inline constexpr int kCpsQualifier = 164;
inline constexpr int kNoticeQualifier = 165;
inline constexpr int kAuthorityInfoAccess = 177;
inline constexpr int kPolicyConstraints = 401;
inline constexpr int kNameConstraints = 666;
inline constexpr int kPolicyMappings = 747;
inline constexpr int kIssuingDistributionPoint = 770;
}  // namespace row

// The code of values that have no function code of their own.
inline constexpr int kExtensionModule = 0x47000000;

// The codecs. Unlike those of x509.h they give a failing member's own code.
int decode(const Tlv &tlv, GENERAL_NAME &out) noexcept;
int encode(const GENERAL_NAME &name, DerWriter &out) noexcept;
int decode_general_names(const Tlv &tlv, STACK &names) noexcept;
int encode_general_names(const STACK &names, DerWriter &out, uint8_t identifier = tag::kSequence) noexcept;
int decode(const Tlv &tlv, OTHERNAME &out) noexcept;
int encode(const OTHERNAME &name, DerWriter &out) noexcept;
int encode_as(uint8_t identifier, const OTHERNAME &name, DerWriter &out) noexcept;
int decode(const Tlv &tlv, EDIPARTYNAME &out) noexcept;
int encode(const EDIPARTYNAME &name, DerWriter &out) noexcept;
int encode_as(uint8_t identifier, const EDIPARTYNAME &name, DerWriter &out) noexcept;
int decode(const Tlv &tlv, BASIC_CONSTRAINTS &out) noexcept;
int decode(const Tlv &tlv, AUTHORITY_KEYID &out) noexcept;
int decode(const Tlv &tlv, DIST_POINT &out) noexcept;
int decode(const Tlv &tlv, ISSUING_DIST_POINT &out) noexcept;
int decode_dist_points(const Tlv &tlv, STACK &points) noexcept;
int decode(const Tlv &tlv, POLICY_CONSTRAINTS &out) noexcept;
int decode(const Tlv &tlv, NAME_CONSTRAINTS &out) noexcept;
int decode_policies(const Tlv &tlv, STACK &policies) noexcept;
int decode_mappings(const Tlv &tlv, STACK &mappings) noexcept;
int decode_access(const Tlv &tlv, STACK &descriptions) noexcept;
int decode_purposes(const Tlv &tlv, STACK &purposes) noexcept;
int string_from_tlv(int type, const Tlv &tlv, ASN1_STRING **out) noexcept;  // SubjectKeyIdentifier and KeyUsage

// The members of a SEQUENCE that are told apart by context tags. House form: by the low five bits, in any order, the
// last of a repeated one counts, and others are passed over. Standard form: in the order of their numbers, each once.
class TaggedMembers : public Cursor {
 public:
  using Cursor::Cursor;
  bool next_member(Tlv &out) noexcept {
    if (at_end() || !next(out)) return false;
    if (!rules().standard) return true;
    const bool in_order = (out.identifier & 0xC0) == tag::kContext && out.number() > last_;
    last_ = out.number();
    return in_order || stop(Read::malformed);
  }
  // A member whose number the type does not have.
  bool unknown() noexcept { return !rules().standard || stop(Read::malformed); }
  // A member that must be primitive; house form does not look.
  bool primitive(const Tlv &member) noexcept {
    return !rules().standard || !(member.identifier & tag::kConstructed) || stop(Read::malformed);
  }
  bool constructed(const Tlv &member) noexcept {
    return !rules().standard || member.identifier & tag::kConstructed || stop(Read::malformed);
  }

 private:
  int last_ = -1;
};

// Puts a value that was read in place of an earlier one.
template <class T>
void take_over(T *&member, T *fresh) noexcept {
  if (member) Flat<T>::release(member);
  member = fresh;
}
inline bool take_string(TaggedMembers &in, const Tlv &member, int type, ASN1_STRING *&out) noexcept {
  ASN1_STRING *fresh = nullptr;
  if (!in.primitive(member) || !in.keep(read_string(member, type, fresh))) return false;
  take_over(out, fresh);
  return true;
}
// A number of certificates, a length or an index: never negative.
inline bool not_negative(Cursor &in, const BIGINT *number) noexcept {
  return !PKV_Is_BIGINT_Negative(number) || in.stop(Read::malformed);
}
inline bool take_number(TaggedMembers &in, const Tlv &member, BIGINT *&out) noexcept {
  BIGINT *fresh = nullptr;
  if (!in.primitive(member) || !in.keep(read_integer(member, fresh))) return false;
  take_over(out, fresh);
  return true;
}
template <class E>
bool take_list(TaggedMembers &in, const Tlv &member, STACK *&out,
               int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  if (!in.constructed(member)) return false;
  destroy_list<E>(out);
  out = new_STACK();
  return in.made(out) && in.pass(decode(member, *out));
}

// SEQUENCE OF E: an empty list is reason 2B, and an element's own code goes up. `type` is what the elements are, or
// kAnyType for a CHOICE.
inline constexpr int kAnyType = -1;
template <class E>
int decode_elements(const Tlv &tlv, STACK &list, int function, int (*decode)(const Tlv &, E &) noexcept,
                    int type = TYPE_SEQUENCE) noexcept {
  Cursor in(tlv);
  if (in.at_end()) return fail(function, kBadValue);
  if (!reserve_stack(&list, count_values(in.rest(), in.rules()))) return fail(function, kNoMemory);
  for (Tlv child; !in.at_end() && in.next(child);) {
    if (type != kAnyType && !in.expect(child, type)) break;
    owned<E> element(blank<E>());
    if (!in.made(element.get()) || !in.pass(decode(child, *element))) break;
    if (!append(&list, element)) in.stop(Read::no_memory);
  }
  return in.result(function);
}
template <class E>
int encode_elements(const STACK &list, DerWriter &out, int function, int (*encode)(const E &, DerWriter &) noexcept,
                    uint8_t identifier = tag::kSequence) noexcept {
  if (out.rules().standard && list.count == 0) return fail(function, kBadValue);
  if (const int code = encode_list<E>(list, out, identifier, function, encode)) return code;
  return out.result(function);
}

// The C borders. A list that the caller passes is appended to, all or nothing.
template <class E>
int append_from_tlv(int function, const Tlv &tlv, STACK **list, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  STACK *fresh = nullptr;
  int code = list_from_tlv<E>(function, tlv, &fresh, decode);
  if (!code && *list) {
    if (!reserve_stack(*list, (*list)->count + fresh->count)) code = fail(function, kNoMemory);
    for (int i = 0; !code && i < fresh->count; ++i) push_STACK_value(*list, fresh->data[i]);
    if (!code) return free_STACK(fresh), 0;
  }
  if (code)
    destroy_list<E>(fresh);
  else
    *list = fresh;
  return code;
}
template <class R>
int value_from_tlv(int function, const Tlv &tlv, R **record, int (*decode)(const Tlv &, R &) noexcept) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(function, ERR_ASN1_DECODING);
  return from_tlv(function, tlv, record, decode);
}
template <class E>
int values_from_tlv(int function, const Tlv &tlv, STACK **list, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(function, ERR_ASN1_DECODING);
  return append_from_tlv<E>(function, tlv, list, decode);
}
// The view of a unit, or the code for its lack.
inline int view_argument(int function, const ASN1_UNIT *unit, const void *record, Rules rules, Tlv &out) noexcept {
  if (!unit || !record) return fail(function, kNullArgument);
  return view(*unit, out, rules) ? 0 : fail(function, ERR_ASN1_DECODING);
}
template <class R>
int value_from_seq(int function, const ASN1_UNIT *unit, R **record, int (*decode)(const Tlv &, R &) noexcept,
                   Rules rules = {}) noexcept {
  Tlv tlv;
  if (const int code = view_argument(function, unit, record, rules, tlv)) return code;
  return value_from_tlv(function, tlv, record, decode);
}
template <class E>
int values_from_seq(int function, const ASN1_UNIT *unit, STACK **list, int (*decode)(const Tlv &, STACK &) noexcept,
                    Rules rules = {}) noexcept {
  Tlv tlv;
  if (const int code = view_argument(function, unit, list, rules, tlv)) return code;
  return values_from_tlv<E>(function, tlv, list, decode);
}

}  // namespace velpki

// X_to_Seq and Seq_to_X in both forms, over the overloads decode and encode.
#define VELPKI_EXTENSION_VALUE_AS(T, name, decode_function, encode_function)                                      \
  int name##_to_Seq(const T *in, ASN1_UNIT **out) noexcept { return to_seq(encode_function, in, out, encode); }   \
  int Seq_to_##name(ASN1_UNIT *in, T **out) noexcept { return value_from_seq(decode_function, in, out, decode); } \
  int name##_to_Seq_RFC5280(const T *in, ASN1_UNIT **out) noexcept {                                              \
    return to_seq(encode_function, in, out, encode, kStandardRules);                                              \
  }                                                                                                               \
  int Seq_to_##name##_RFC5280(ASN1_UNIT *in, T **out) noexcept {                                                  \
    return value_from_seq(decode_function, in, out, decode, kStandardRules);                                      \
  }
#define VELPKI_EXTENSION_VALUE(T) VELPKI_EXTENSION_VALUE_AS(T, T, F_SEQ_TO_##T, F_##T##_TO_SEQ)
// The same for a list of E over named codecs.
#define VELPKI_EXTENSION_LIST(T, E, decode, encode)                                                             \
  int T##_to_Seq(const T *in, ASN1_UNIT **out) noexcept { return to_seq(F_##T##_TO_SEQ, in, out, encode); }     \
  int Seq_to_##T(ASN1_UNIT *in, T **out) noexcept { return values_from_seq<E>(F_SEQ_TO_##T, in, out, decode); } \
  int T##_to_Seq_RFC5280(const T *in, ASN1_UNIT **out) noexcept {                                               \
    return to_seq(F_##T##_TO_SEQ, in, out, encode, kStandardRules);                                             \
  }                                                                                                             \
  int Seq_to_##T##_RFC5280(ASN1_UNIT *in, T **out) noexcept {                                                   \
    return values_from_seq<E>(F_SEQ_TO_##T, in, out, decode, kStandardRules);                                   \
  }
