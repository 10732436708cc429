// OTHERNAME and EDIPARTYNAME, the two records among the kinds of general name.
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<OTHERNAME> = std::tuple(own(&OTHERNAME::type_id), own(&OTHERNAME::value));
template <>
inline constexpr auto owned_fields<EDIPARTYNAME> = std::tuple(own(&EDIPARTYNAME::nameAssigner),
                                                              own(&EDIPARTYNAME::partyName));

// OtherName ::= SEQUENCE { type-id OBJECT IDENTIFIER, value [0] EXPLICIT ANY }
// House form writes the value under a primitive [0]; the octets inside are the same.
int decode(const Tlv &tlv, OTHERNAME &out) noexcept {
  Cursor in(tlv);
  Tlv value;
  if (in.oid(out.type_id) && in.next(value)) {
    if (in.rules().standard && (value.identifier != tag::explicit_context(0) || !in.at_end())) in.stop(Read::malformed);
    if (!in.rules().standard) in.expect(value, TYPE_SEQUENCE);
    if (in.reason() == Read::ok) in.keep(read_string(value, TYPE_OCTET_STRING, out.value));
  }
  return in.result(F_SEQ_TO_OTHERNAME);
}

int encode_as(uint8_t identifier, const OTHERNAME &name, DerWriter &out) noexcept {
  const auto sequence = out.constructed(identifier);
  out.oid(name.type_id);
  out.octets_as(out.rules().standard ? tag::explicit_context(0) : tag::implicit_context(0), name.value);
  return out.result(F_OTHERNAME_TO_SEQ);
}
int encode(const OTHERNAME &name, DerWriter &out) noexcept { return encode_as(tag::kSequence, name, out); }

namespace {

bool is_directory_string(int type) noexcept {
  constexpr int kUniversalString = 28;
  return type == TYPE_UTF8_STRING || type == TYPE_PRINTABLE_STRING || type == TYPE_T61_STRING ||
         type == TYPE_BMP_STRING || type == kUniversalString;
}

// A DirectoryString, which as a CHOICE is tagged explicitly; house form has its octets alone.
bool read_party(TaggedMembers &in, const Tlv &member, ASN1_STRING *&out) noexcept {
  if (!in.rules().standard) return take_string(in, member, TYPE_OCTET_STRING, out);
  if (!in.constructed(member)) return false;
  Cursor wrapper(member);
  if (!wrapper.any_string(out) || !is_directory_string(out->type) || !wrapper.at_end()) wrapper.stop(Read::malformed);
  return in.absorb(wrapper);
}

void write_party(int n, const ASN1_STRING *party, DerWriter &out) noexcept {
  if (!out.rules().standard) return out.octets_as(tag::implicit_context(n), party);
  if (!party || !is_directory_string(party->type)) return out.refuse();
  const auto wrapper = out.explicit_context(n);
  out.string(party);
}

}  // namespace

// EDIPartyName ::= SEQUENCE { nameAssigner [0] DirectoryString OPTIONAL, partyName [1] DirectoryString }
int decode(const Tlv &tlv, EDIPARTYNAME &out) noexcept {
  TaggedMembers in(tlv);
  for (Tlv member; in.next_member(member);) {
    if (member.number() == 0)
      read_party(in, member, out.nameAssigner);
    else if (member.number() == 1)
      read_party(in, member, out.partyName);
    else
      in.unknown();
  }
  if (!out.partyName) in.stop(Read::malformed);
  return in.result(F_SEQ_TO_EDIPARTYNAME);
}

int encode_as(uint8_t identifier, const EDIPARTYNAME &name, DerWriter &out) noexcept {
  const auto sequence = out.constructed(identifier);
  if (name.nameAssigner) write_party(0, name.nameAssigner, out);
  write_party(1, name.partyName, out);
  return out.result(F_EDIPARTYNAME_TO_SEQ);
}
int encode(const EDIPARTYNAME &name, DerWriter &out) noexcept { return encode_as(tag::kSequence, name, out); }

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(OTHERNAME)
VELPKI_EXTENSION_VALUE(OTHERNAME)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(EDIPARTYNAME)
VELPKI_EXTENSION_VALUE(EDIPARTYNAME)
