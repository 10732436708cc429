// Which key signed, which key is certified, and what it may be used for (RFC 5280 4.2.1.1 to 4.2.1.3, 4.2.1.12).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<AUTHORITY_KEYID> =
    std::tuple(own(&AUTHORITY_KEYID::keyIdentifier), list_of<GENERAL_NAME>(&AUTHORITY_KEYID::authorityCertIssuer),
               own(&AUTHORITY_KEYID::authorityCertSerialNumber));

// AuthorityKeyIdentifier ::= SEQUENCE { keyIdentifier [0] OCTET STRING OPTIONAL, authorityCertIssuer [1] GeneralNames
//   OPTIONAL, authorityCertSerialNumber [2] INTEGER OPTIONAL }
int decode(const Tlv &tlv, AUTHORITY_KEYID &out) noexcept {
  TaggedMembers in(tlv);
  for (Tlv member; in.next_member(member);) {
    if (member.number() == 0)
      take_string(in, member, TYPE_OCTET_STRING, out.keyIdentifier);
    else if (member.number() == 1)
      take_list<GENERAL_NAME>(in, member, out.authorityCertIssuer, decode_general_names);
    else if (member.number() == 2)
      take_number(in, member, out.authorityCertSerialNumber);
    else
      in.unknown();
  }
  return in.result(F_SEQ_TO_AUTHORITY_KEYID);
}

namespace {

int encode(const AUTHORITY_KEYID &id, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (id.keyIdentifier) out.octets_as(tag::implicit_context(0), id.keyIdentifier);
  if (out.failed()) return out.result(F_AUTHORITY_KEYID_TO_SEQ);
  if (id.authorityCertIssuer)
    if (const int code = encode_general_names(*id.authorityCertIssuer, out, tag::explicit_context(1))) return code;
  if (id.authorityCertSerialNumber) out.integer(id.authorityCertSerialNumber, tag::implicit_context(2));
  return out.result(F_AUTHORITY_KEYID_TO_SEQ);
}

}  // namespace

// ExtKeyUsageSyntax ::= SEQUENCE SIZE (1..MAX) OF OBJECT IDENTIFIER
int decode_purposes(const Tlv &tlv, STACK &purposes) noexcept {
  Cursor in(tlv);
  if (in.at_end()) return fail(kExtensionModule, kBadValue);
  if (!reserve_stack(&purposes, count_values(in.rest(), in.rules()))) in.stop(Read::no_memory);
  while (in.reason() == Read::ok && !in.at_end()) {
    OBJECT_IDENTIFIER *read = nullptr;
    if (!in.oid(read)) break;
    owned<OBJECT_IDENTIFIER> purpose(read);
    if (!append(&purposes, purpose)) in.stop(Read::no_memory);
  }
  return in.result(kExtensionModule);
}

namespace {

int encode_purposes(const STACK &purposes, DerWriter &out) noexcept {
  if (purposes.count == 0) return fail(kExtensionModule, kBadValue);
  const auto sequence = out.sequence();
  for (const OBJECT_IDENTIFIER *purpose : elements<OBJECT_IDENTIFIER>(&purposes)) out.oid(purpose);
  return out.result(kExtensionModule);
}

}  // namespace

// SubjectKeyIdentifier ::= OCTET STRING, KeyUsage ::= BIT STRING
int string_from_tlv(int type, const Tlv &tlv, ASN1_STRING **out) noexcept {
  if (tlv.identifier != type) return fail(kExtensionModule, ERR_ASN1_DECODING);
  ASN1_STRING *read = nullptr;
  const Read outcome = read_string(tlv, type, read);
  if (outcome == Read::ok && type == TYPE_BIT_STRING && (read->unused_bits > 7 || (!read->length && read->unused_bits)))
    return free_ASN1_STRING(read), fail(kExtensionModule, ERR_ASN1_DECODING);
  if (outcome != Read::ok) return fail(kExtensionModule, outcome == Read::no_memory ? kNoMemory : ERR_ASN1_DECODING);
  if (*out) free_ASN1_STRING(*out);
  *out = read;
  return 0;
}

namespace {

int string_from_seq(int type, const ASN1_UNIT *unit, ASN1_STRING **out) noexcept {
  Tlv tlv;
  if (const int code = view_argument(kExtensionModule, unit, out, kStandardRules, tlv)) return code;
  return string_from_tlv(type, tlv, out);
}

int encode_octets(const ASN1_STRING &string, DerWriter &out) noexcept {
  out.octets_as(TYPE_OCTET_STRING, &string);
  return out.result(kExtensionModule);
}

// The named bits up to the last that is set.
int encode_named_bits(const ASN1_STRING &string, DerWriter &out) noexcept {
  const Octets bits = octets(string);
  if (string.unused_bits < 0 || string.unused_bits > 7) out.refuse();
  size_t size = bits.size();
  // The octet at the end of those that are left, of which the unused bits do not count.
  const auto last = [&]() noexcept {
    return size < bits.size() ? bits[size - 1] : uint8_t(bits[size - 1] >> string.unused_bits << string.unused_bits);
  };
  while (size > 0 && last() == 0) --size;
  const auto scope = out.constructed(TYPE_BIT_STRING);
  out.octet(size ? uint8_t(std::countr_zero(last())) : uint8_t(0));
  if (size) out.raw(bits.first(size - 1)), out.octet(last());
  return out.result(kExtensionModule);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(AUTHORITY_KEYID)
VELPKI_EXTENSION_VALUE(AUTHORITY_KEYID)
VELPKI_LIST(EXTENDED_KEY_USAGE, OBJECT_IDENTIFIER)

int EXTENDED_KEY_USAGE_to_Seq_RFC5280(const EXTENDED_KEY_USAGE *in, ASN1_UNIT **out) noexcept {
  return to_seq(kExtensionModule, in, out, encode_purposes, kStandardRules);
}
int Seq_to_EXTENDED_KEY_USAGE_RFC5280(ASN1_UNIT *in, EXTENDED_KEY_USAGE **out) noexcept {
  return values_from_seq<OBJECT_IDENTIFIER>(kExtensionModule, in, out, decode_purposes, kStandardRules);
}

int SUBJECT_KEYID_to_Seq_RFC5280(const OCTET_STRING *in, ASN1_UNIT **out) noexcept {
  return to_seq(kExtensionModule, in, out, encode_octets, kStandardRules);
}
int Seq_to_SUBJECT_KEYID_RFC5280(ASN1_UNIT *in, OCTET_STRING **out) noexcept {
  return string_from_seq(TYPE_OCTET_STRING, in, out);
}
int KEY_USAGE_to_Seq_RFC5280(const BIT_STRING *in, ASN1_UNIT **out) noexcept {
  return to_seq(kExtensionModule, in, out, encode_named_bits, kStandardRules);
}
int Seq_to_KEY_USAGE_RFC5280(ASN1_UNIT *in, BIT_STRING **out) noexcept {
  return string_from_seq(TYPE_BIT_STRING, in, out);
}

int has_KEY_USAGE(const BIT_STRING *usage, int bit) noexcept {
  if (!usage || bit < 0 || !usage->data || bit >= 8LL * usage->length - usage->unused_bits) return 0;
  return usage->data[bit / 8] >> (7 - bit % 8) & 1;
}
