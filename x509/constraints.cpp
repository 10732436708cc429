// Basic constraints and name constraints (RFC 5280 4.2.1.9, 4.2.1.10).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

int *Flat<int>::copy(const int *number) noexcept {
  auto *fresh = static_cast<int *>(allocate(sizeof(int)));
  if (fresh) *fresh = *number;
  return fresh;
}

template <>
inline constexpr auto owned_fields<BASIC_CONSTRAINTS> = std::tuple(own(&BASIC_CONSTRAINTS::pathLenConstraint));
template <>
inline constexpr auto owned_fields<GENERAL_SUBTREE> = std::tuple(own(&GENERAL_SUBTREE::base),
                                                                 own(&GENERAL_SUBTREE::minimum),
                                                                 own(&GENERAL_SUBTREE::maximum));
template <>
inline constexpr auto owned_fields<NAME_CONSTRAINTS> =
    std::tuple(list_of<GENERAL_SUBTREE>(&NAME_CONSTRAINTS::permittedSubtrees),
               list_of<GENERAL_SUBTREE>(&NAME_CONSTRAINTS::excludedSubtrees));

namespace {

bool read_ca(Cursor &in, int &ca) noexcept {
  Tlv flag;
  if (!in.next(TYPE_BOOLEAN, flag)) return false;
  if (flag.content.empty()) return in.stop(Read::malformed);
  ca = flag.content[0];
  const bool is_der = flag.content.size() == 1 && (ca == 0x00 || ca == 0xFF);
  return !in.rules().standard || is_der || in.stop(Read::malformed);
}

bool read_path_length(Cursor &in, int *&out) noexcept {
  Tlv number;
  if (!in.next(TYPE_INTEGER, number)) return false;
  const bool negative = in.rules().standard && !number.content.empty() && number.content[0] & 0x80;
  if (number.content.empty() || negative) return in.stop(Read::malformed);
  const int value = saturated_number(number.content);
  return in.made(out = Flat<int>::copy(&value));
}

}  // namespace

// BasicConstraints ::= SEQUENCE { cA BOOLEAN DEFAULT FALSE, pathLenConstraint INTEGER (0..MAX) OPTIONAL }
// House form has fixed positions: the BOOLEAN must be there.
int decode(const Tlv &tlv, BASIC_CONSTRAINTS &out) noexcept {
  Cursor in(tlv);
  const bool standard = in.rules().standard;
  const bool read = standard && !in.at(TYPE_BOOLEAN) ? true : read_ca(in, out.ca);
  if (read && (in.at_end() || read_path_length(in, out.pathLenConstraint))) in.finish();
  return in.result(F_SEQ_TO_BASIC_CONSTRAINTS);
}

namespace {

int encode(const BASIC_CONSTRAINTS &constraints, DerWriter &out) noexcept {
  const bool standard = out.rules().standard;
  const auto sequence = out.sequence();
  if (constraints.ca) out.boolean(standard || constraints.ca & 0xFF);
  if (const int *length = constraints.pathLenConstraint) {
    const uint8_t low = uint8_t(*length);
    if (standard && (!constraints.ca || *length < 0)) out.refuse();
    if (standard)
      out.integer(unsigned(*length));
    else
      out.primitive(TYPE_INTEGER, Octets(&low, 1));
  }
  return out.result(F_BASIC_CONSTRAINTS_TO_SEQ);
}

// A base whose own identifier house form has overwritten: where it is no readable otherName, its content is all that is
// left of it.
bool read_lost_base(Cursor &in, const Tlv &tlv, GENERAL_NAME &out) noexcept {
  owned<OTHERNAME> lost(blank<OTHERNAME>());
  if (!in.made(lost.get()) || !in.keep(read_string(tlv, TYPE_OCTET_STRING, lost->value))) return false;
  out.type = GENERAL_NAME_OTHER;
  out.value = lost.release();
  return true;
}

bool read_base(Cursor &in, GENERAL_NAME *&out) noexcept {
  Tlv child;
  owned<GENERAL_NAME> base(blank<GENERAL_NAME>());
  if (!in.made(base.get()) || !in.next(child)) return false;
  const int code = decode(child, *base);
  const bool lost =
      !in.rules().standard && child.identifier == tag::explicit_context(0) && code && reason_of(code) != kNoMemory;
  if (!lost && !in.pass(code)) return false;
  if (lost) {
    base.reset(blank<GENERAL_NAME>());
    if (!in.made(base.get()) || !read_lost_base(in, child, *base)) return false;
  }
  out = base.release();
  return true;
}

// Which bound a child is: 80 and 81 say so, and house form's INTEGERs go by position; null for something else.
BIGINT **bound_of(const Tlv &child, GENERAL_SUBTREE &out, int &position) noexcept {
  if (child.identifier == tag::implicit_context(0)) return &out.minimum;
  if (child.identifier == tag::implicit_context(1)) return &out.maximum;
  if (child.rules.standard || child.identifier != TYPE_INTEGER) return nullptr;
  ++position;
  return position == 1 ? &out.minimum : position == 2 ? &out.maximum : nullptr;
}

// GeneralSubtree ::= SEQUENCE { base GeneralName, minimum [0] INTEGER DEFAULT 0, maximum [1] INTEGER OPTIONAL }
int decode(const Tlv &tlv, GENERAL_SUBTREE &out) noexcept {
  TaggedMembers in(tlv);
  int position = 0;
  if (read_base(in, out.base)) {
    for (Tlv child; in.next_member(child);) {
      BIGINT **bound = bound_of(child, out, position);
      if (!bound)
        in.unknown();
      else if (take_number(in, child, *bound))
        not_negative(in, *bound);
    }
  }
  return in.result(F_SEQ_TO_GENERAL_SUBTREE);
}

bool is_zero(const BIGINT &number) noexcept {
  int length = 0;
  PKV_Get_BIGINT_Octets(&number, &length);
  return length == 0;
}

void write_standard_bounds(const GENERAL_SUBTREE &tree, DerWriter &out) noexcept {
  if (tree.minimum && !is_zero(*tree.minimum)) out.integer(tree.minimum, tag::implicit_context(0));
  if (tree.maximum) out.integer(tree.maximum, tag::implicit_context(1));
}

void write_house_bounds(const GENERAL_SUBTREE &tree, DerWriter &out) noexcept {
  if (tree.minimum)
    out.integer(tree.minimum);
  else
    out.integer(0u);
  if (tree.maximum) out.integer(tree.maximum);
}

// What read_lost_base left, else null.
const OTHERNAME *lost_base(const GENERAL_NAME &base) noexcept {
  const auto *name = base.type == GENERAL_NAME_OTHER ? static_cast<const OTHERNAME *>(base.value) : nullptr;
  return name && !name->type_id ? name : nullptr;
}

// House form overwrites identifiers: the base's becomes [0], and the tree's own the tag of the last member.
int encode(const GENERAL_SUBTREE &tree, DerWriter &out) noexcept {
  const bool standard = out.rules().standard;
  if (!tree.base) return fail(F_GENERAL_SUBTREE_TO_SEQ, ERR_ASN1_ENCODING);
  const auto scope = out.constructed(standard ? tag::kSequence : tag::explicit_context(tree.maximum ? 1 : 0));
  const size_t base = out.size();
  if (const OTHERNAME *lost = standard ? nullptr : lost_base(*tree.base))
    out.octets_as(tag::explicit_context(0), lost->value);
  else if (const int code = encode(*tree.base, out))
    return code;
  if (!standard) out.retag(base, tag::explicit_context(0));
  standard ? write_standard_bounds(tree, out) : write_house_bounds(tree, out);
  return out.result(F_GENERAL_SUBTREE_TO_SEQ);
}

int decode_subtrees(const Tlv &tlv, STACK &trees) noexcept {
  return decode_elements<GENERAL_SUBTREE>(tlv, trees, F_SEQ_TO_GENERAL_SUBTREES, decode);
}
int encode_subtrees_as(uint8_t identifier, const STACK &trees, DerWriter &out) noexcept {
  return encode_elements<GENERAL_SUBTREE>(trees, out, F_GENERAL_SUBTREES_TO_SEQ, encode, identifier);
}
int encode_subtrees(const STACK &trees, DerWriter &out) noexcept {
  return encode_subtrees_as(tag::kSequence, trees, out);
}

}  // namespace

// NameConstraints ::= SEQUENCE { permittedSubtrees [0] GeneralSubtrees OPTIONAL, excludedSubtrees [1] GeneralSubtrees
//   OPTIONAL }
int decode(const Tlv &tlv, NAME_CONSTRAINTS &out) noexcept {
  TaggedMembers in(tlv);
  for (Tlv member; in.next_member(member);) {
    if (member.number() == 0)
      take_list<GENERAL_SUBTREE>(in, member, out.permittedSubtrees, decode_subtrees);
    else if (member.number() == 1)
      take_list<GENERAL_SUBTREE>(in, member, out.excludedSubtrees, decode_subtrees);
    else
      in.unknown();
  }
  return in.result(F_SEQ_TO_NAME_CONSTRAINTS);
}

namespace {

int encode(const NAME_CONSTRAINTS &constraints, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const STACK *permitted = constraints.permittedSubtrees)
    if (const int code = encode_subtrees_as(tag::explicit_context(0), *permitted, out)) return code;
  if (const STACK *excluded = constraints.excludedSubtrees)
    if (const int code = encode_subtrees_as(tag::explicit_context(1), *excluded, out)) return code;
  return out.result(F_NAME_CONSTRAINTS_TO_SEQ);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(BASIC_CONSTRAINTS)
VELPKI_EXTENSION_VALUE(BASIC_CONSTRAINTS)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(GENERAL_SUBTREE)
VELPKI_EXTENSION_VALUE(GENERAL_SUBTREE)
VELPKI_LIST_WITH_DUP(GENERAL_SUBTREES, GENERAL_SUBTREE)
VELPKI_EXTENSION_LIST(GENERAL_SUBTREES, GENERAL_SUBTREE, decode_subtrees, encode_subtrees)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(NAME_CONSTRAINTS)
VELPKI_EXTENSION_VALUE(NAME_CONSTRAINTS)
