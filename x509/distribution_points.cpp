// CRL distribution points and issuing distribution points (RFC 5280 4.2.1.13, 5.2.5).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<DIST_POINT> = std::tuple(own(&DIST_POINT::distpoint), own(&DIST_POINT::reasons),
                                                            list_of<GENERAL_NAME>(&DIST_POINT::CRLissuer));
template <>
inline constexpr auto owned_fields<ISSUING_DIST_POINT> = std::tuple(own(&ISSUING_DIST_POINT::distpoint),
                                                                    own(&ISSUING_DIST_POINT::onlySomeReasons));

ISSUING_DIST_POINT *Flat<ISSUING_DIST_POINT>::copy(const ISSUING_DIST_POINT *point) noexcept {
  return velpki::copy(point);
}

namespace {

// The choice of a DistributionPointName inside its wrapper. House form takes the wrapper itself for the names where
// what is inside is no choice: other children than one [0] or [1], or a [0] that is an otherName.
enum class NameForm { full, relative, bare };
NameForm name_form(const Tlv &wrapper, Tlv &inner) noexcept {
  Cursor in(wrapper);
  if (!in.next(inner) || !in.at_end()) return NameForm::bare;
  if (inner.identifier == tag::explicit_context(1)) return NameForm::relative;
  const uint8_t first = inner.content.empty() ? 0 : inner.content[0];
  const bool other_name = !wrapper.rules.standard && (first == TYPE_OBJECT_IDENTIFIER || first == tag::kSequence);
  return inner.identifier == tag::explicit_context(0) && !other_name ? NameForm::full : NameForm::bare;
}

// A relative name is one RDN without its SET; with it, it is what house form writes.
bool read_relative(TaggedMembers &in, const Tlv &relative, STACK &name) noexcept {
  Cursor content(relative);
  if (!in.rules().standard && content.at(tag::kSet)) return in.pass(decode_name(relative, name));
  return read_rdn(in, relative, name);
}

// DistributionPointName ::= CHOICE { fullName [0] GeneralNames, nameRelativeToCRLIssuer [1] RelativeDistinguishedName }
bool read_name(TaggedMembers &in, const Tlv &wrapper, DIST_POINT_NAME *&out) noexcept {
  take_over(out, new_DIST_POINT_NAME());
  if (!in.made(out) || !in.made(out->name = new_STACK()) || !in.constructed(wrapper)) return false;
  Tlv inner;
  switch (name_form(wrapper, inner)) {
    case NameForm::full:
      return in.pass(decode_general_names(inner, *out->name));
    case NameForm::relative:
      out->type = DIST_POINT_NAME_RELATIVE;
      return read_relative(in, inner, *out->name);
    case NameForm::bare:
      break;
  }
  return in.rules().standard ? in.stop(Read::malformed) : in.pass(decode_general_names(wrapper, *out->name));
}

int write_relative(const STACK &name, DerWriter &out) noexcept {
  if (!out.rules().standard) return encode_name(name, out, tag::explicit_context(1));
  int index = 0;
  if (const int code = encode_rdn(name, index, out, tag::explicit_context(1))) return code;
  if (index != name.count) out.refuse();
  return 0;
}

int write_name(const DIST_POINT_NAME &name, DerWriter &out) noexcept {
  const auto wrapper = out.explicit_context(0);
  if (!name.name) return out.refuse(), 0;
  if (name.type == DIST_POINT_NAME_RELATIVE) return write_relative(*name.name, out);
  return encode_general_names(*name.name, out, tag::explicit_context(0));
}

// The value of a member that house form wraps, and the standard tags implicitly. `by_form` takes either, by the
// constructed bit.
bool unwrapped(TaggedMembers &in, const Tlv &member, int type, bool by_form, Tlv &out) noexcept {
  out = member;
  if (in.rules().standard) return in.primitive(member);
  if (by_form && !(member.identifier & tag::kConstructed)) return true;
  Cursor wrapper(member);
  wrapper.next(type, out);
  return in.absorb(wrapper);
}

bool read_reasons(TaggedMembers &in, const Tlv &member, bool by_form, BIT_STRING *&out) noexcept {
  Tlv value;
  BIT_STRING *fresh = nullptr;
  if (!unwrapped(in, member, TYPE_BIT_STRING, by_form, value)) return false;
  if (!in.keep(read_string(value, TYPE_BIT_STRING, fresh))) return false;
  take_over(out, fresh);
  return true;
}

void write_reasons(int n, const BIT_STRING *reasons, DerWriter &out) noexcept {
  if (!reasons) return;
  if (out.rules().standard) return out.bits(reasons, tag::implicit_context(n));
  const auto wrapper = out.explicit_context(n);
  out.bits(reasons);
}

}  // namespace

// DistributionPoint ::= SEQUENCE { distributionPoint [0] DistributionPointName OPTIONAL, reasons [1] ReasonFlags
//   OPTIONAL, cRLIssuer [2] GeneralNames OPTIONAL }
int decode(const Tlv &tlv, DIST_POINT &out) noexcept {
  TaggedMembers in(tlv);
  for (Tlv member; in.next_member(member);) {
    if (member.number() == 0)
      read_name(in, member, out.distpoint);
    else if (member.number() == 1)
      read_reasons(in, member, false, out.reasons);
    else if (member.number() == 2)
      take_list<GENERAL_NAME>(in, member, out.CRLissuer, decode_general_names);
    else
      in.unknown();
  }
  return in.result(F_SEQ_TO_DIST_POINT);
}

namespace {

// House form writes full names only, and no point without one. The standard's point has a name or an issuer.
bool can_write(const DIST_POINT &point, bool standard) noexcept {
  if (!standard) return point.distpoint && point.distpoint->name && point.distpoint->type == DIST_POINT_NAME_FULL;
  return point.distpoint || (point.CRLissuer && point.CRLissuer->count > 0);
}

int encode(const DIST_POINT &point, DerWriter &out) noexcept {
  if (!can_write(point, out.rules().standard)) return fail(F_DIST_POINT_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (point.distpoint)
    if (const int code = write_name(*point.distpoint, out)) return code;
  write_reasons(1, point.reasons, out);
  if (out.failed()) return out.result(F_DIST_POINT_TO_SEQ);
  if (point.CRLissuer && point.CRLissuer->count > 0)
    if (const int code = encode_general_names(*point.CRLissuer, out, tag::explicit_context(2))) return code;
  return out.result(F_DIST_POINT_TO_SEQ);
}

}  // namespace

// CRLDistributionPoints ::= SEQUENCE SIZE (1..MAX) OF DistributionPoint
int decode_dist_points(const Tlv &tlv, STACK &points) noexcept {
  return decode_elements<DIST_POINT>(tlv, points, F_SEQ_TO_CRL_DIST_POINTS, decode);
}

namespace {

int encode_dist_points(const STACK &points, DerWriter &out) noexcept {
  return encode_elements<DIST_POINT>(points, out, F_CRL_DIST_POINTS_TO_SEQ, encode);
}

// The flags of an issuing distribution point, by the number of their tag.
int *flag_of(ISSUING_DIST_POINT &point, int number) noexcept {
  switch (number) {
    case 1:
      return &point.onlyContainsUserCerts;
    case 2:
      return &point.onlyContainsCACerts;
    case 4:
      return &point.indirectCRL;
    default:
      return nullptr;
  }
}

bool read_flag(TaggedMembers &in, const Tlv &member, int &out) noexcept {
  Tlv value;
  if (!unwrapped(in, member, TYPE_BOOLEAN, true, value)) return false;
  const bool whole = in.rules().standard ? value.content.size() == 1 : !value.content.empty();
  if (!whole) return in.stop(Read::malformed);
  out = value.content[0];
  return !in.rules().standard || out == 0 || out == 0xFF || in.stop(Read::malformed);
}

bool read_issuing_member(TaggedMembers &in, const Tlv &member, ISSUING_DIST_POINT &out) noexcept {
  const int number = member.number();
  if (number == 0) return read_name(in, member, out.distpoint);
  if (number == 3) return read_reasons(in, member, true, out.onlySomeReasons);
  if (number == 5 && in.rules().standard) return read_flag(in, member, out.onlyContainsAttributeCerts);
  int *flag = flag_of(out, number);
  return flag ? read_flag(in, member, *flag) : in.unknown();
}

void write_flag(int n, int value, DerWriter &out) noexcept {
  if (!value) return;
  if (out.rules().standard) {
    const size_t start = out.size();
    out.boolean(true);
    return out.retag(start, tag::implicit_context(n));
  }
  const auto wrapper = out.explicit_context(n);
  out.boolean(value & 0xFF);
}

}  // namespace

// IssuingDistributionPoint ::= SEQUENCE { distributionPoint [0] DistributionPointName OPTIONAL, onlyContainsUserCerts
//   [1] BOOLEAN DEFAULT FALSE, onlyContainsCACerts [2] BOOLEAN DEFAULT FALSE, onlySomeReasons [3] ReasonFlags OPTIONAL,
//   indirectCRL [4] BOOLEAN DEFAULT FALSE, onlyContainsAttributeCerts [5] BOOLEAN DEFAULT FALSE }
int decode(const Tlv &tlv, ISSUING_DIST_POINT &out) noexcept {
  TaggedMembers in(tlv);
  for (Tlv member; in.next_member(member);) read_issuing_member(in, member, out);
  return in.result(F_SEQ_TO_ISSUING_DIST_POINT);
}

namespace {

int encode(const ISSUING_DIST_POINT &point, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (point.distpoint)
    if (const int code = write_name(*point.distpoint, out)) return code;
  write_flag(1, point.onlyContainsUserCerts, out);
  write_flag(2, point.onlyContainsCACerts, out);
  write_reasons(3, point.onlySomeReasons, out);
  write_flag(4, point.indirectCRL, out);
  if (out.rules().standard) write_flag(5, point.onlyContainsAttributeCerts, out);
  return out.result(F_ISSUING_DIST_POINT_TO_SEQ);
}

int decode_issuing_points(const Tlv &tlv, STACK &points) noexcept {
  return decode_elements<ISSUING_DIST_POINT>(tlv, points, F_SEQ_TO_ISSUING_DIST_POINTS, decode);
}
int encode_issuing_points(const STACK &points, DerWriter &out) noexcept {
  return encode_elements<ISSUING_DIST_POINT>(points, out, F_ISSUING_DIST_POINTS_TO_SEQ, encode);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

// The type of a name decides what its list holds.
DIST_POINT_NAME *new_DIST_POINT_NAME(void) noexcept { return allocate_record<DIST_POINT_NAME>(); }

void free_DIST_POINT_NAME(DIST_POINT_NAME *p) noexcept {
  if (!p) return;
  if (p->type == DIST_POINT_NAME_RELATIVE)
    free_X509_NAME(p->name);
  else
    free_GENERAL_NAMES(p->name);
  release(p);
}

DIST_POINT_NAME *dup_DIST_POINT_NAME(const DIST_POINT_NAME *p) noexcept {
  owned<DIST_POINT_NAME> fresh(p ? new_DIST_POINT_NAME() : nullptr);
  if (!fresh) return nullptr;
  fresh->type = p->type;
  if (!p->name) return fresh.release();
  fresh->name = p->type == DIST_POINT_NAME_RELATIVE ? dup_X509_NAME(p->name) : dup_GENERAL_NAMES(p->name);
  return fresh->name ? fresh.release() : nullptr;
}

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(DIST_POINT)
VELPKI_EXTENSION_VALUE(DIST_POINT)
VELPKI_LIST_WITH_DUP(CRL_DIST_POINTS, DIST_POINT)
VELPKI_EXTENSION_LIST(CRL_DIST_POINTS, DIST_POINT, decode_dist_points, encode_dist_points)

ISSUING_DIST_POINT *new_ISSUING_DIST_POINT(void) noexcept { return make<ISSUING_DIST_POINT>(); }
void free_ISSUING_DIST_POINT(ISSUING_DIST_POINT *p) noexcept { destroy(p); }
VELPKI_EXTENSION_VALUE_AS(ISSUING_DIST_POINT, issuing_DIST_POINT, F_SEQ_TO_ISSUING_DIST_POINT,
                          F_ISSUING_DIST_POINT_TO_SEQ)
VELPKI_LIST_WITH_DUP(ISSUING_DIST_POINTS, ISSUING_DIST_POINT)

int issuing_DIST_POINTS_to_Seq(const ISSUING_DIST_POINTS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_ISSUING_DIST_POINTS_TO_SEQ, in, out, encode_issuing_points);
}
int Seq_to_issuing_DIST_POINTS(ASN1_UNIT *in, ISSUING_DIST_POINTS **out) noexcept {
  return values_from_seq<ISSUING_DIST_POINT>(F_SEQ_TO_ISSUING_DIST_POINTS, in, out, decode_issuing_points);
}
