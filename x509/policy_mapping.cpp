// Policy mappings and policy constraints (RFC 5280 4.2.1.5, 4.2.1.11).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<POLICY_MAPPING> = std::tuple(own(&POLICY_MAPPING::issuerDomainPolicy),
                                                                own(&POLICY_MAPPING::subjectDomainPolicy));
template <>
inline constexpr auto owned_fields<POLICY_CONSTRAINTS> = std::tuple(own(&POLICY_CONSTRAINTS::requireExplicitPolicy),
                                                                    own(&POLICY_CONSTRAINTS::inhibitPolicyMapping));

namespace {

// SEQUENCE { issuerDomainPolicy OBJECT IDENTIFIER, subjectDomainPolicy OBJECT IDENTIFIER }
int decode(const Tlv &tlv, POLICY_MAPPING &out) noexcept {
  Cursor in(tlv);
  const bool read = in.oid(out.issuerDomainPolicy) && in.oid(out.subjectDomainPolicy);
  if (read) in.finish();
  return in.result(F_SEQ_TO_POLICY_MAPPING);
}

int encode(const POLICY_MAPPING &mapping, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(mapping.issuerDomainPolicy);
  out.oid(mapping.subjectDomainPolicy);
  return out.result(F_POLICY_MAPPING_TO_SEQ);
}

}  // namespace

// PolicyMappings ::= SEQUENCE SIZE (1..MAX) OF SEQUENCE
int decode_mappings(const Tlv &tlv, STACK &mappings) noexcept {
  return decode_elements<POLICY_MAPPING>(tlv, mappings, F_SEQ_TO_POLICY_MAPPINGS, decode);
}

namespace {

int encode_mappings(const STACK &mappings, DerWriter &out) noexcept {
  return encode_elements<POLICY_MAPPING>(mappings, out, F_POLICY_MAPPINGS_TO_SEQ, encode);
}

}  // namespace

// PolicyConstraints ::= SEQUENCE { requireExplicitPolicy [0] INTEGER OPTIONAL, inhibitPolicyMapping [1] INTEGER
//   OPTIONAL }
// House form sets the constructed bit over the INTEGER's content, so that content is never descended into.
int decode(const Tlv &tlv, POLICY_CONSTRAINTS &out) noexcept {
  TaggedMembers in(tlv);
  for (Tlv member; in.next_member(member);) {
    BIGINT **number = member.number() == 0   ? &out.requireExplicitPolicy
                      : member.number() == 1 ? &out.inhibitPolicyMapping
                                             : nullptr;
    if (!number)
      in.unknown();
    else if (take_number(in, member, *number))
      not_negative(in, *number);
  }
  return in.result(F_SEQ_TO_POLICY_CONSTRAINTS);
}

namespace {

int encode(const POLICY_CONSTRAINTS &constraints, DerWriter &out) noexcept {
  const uint8_t form = out.rules().standard ? tag::implicit_context(0) : tag::explicit_context(0);
  const auto sequence = out.sequence();
  if (constraints.requireExplicitPolicy) out.integer(constraints.requireExplicitPolicy, form);
  if (constraints.inhibitPolicyMapping) out.integer(constraints.inhibitPolicyMapping, uint8_t(form + 1));
  return out.result(F_POLICY_CONSTRAINTS_TO_SEQ);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(POLICY_MAPPING)
VELPKI_EXTENSION_VALUE(POLICY_MAPPING)
VELPKI_LIST_WITH_DUP(POLICY_MAPPINGS, POLICY_MAPPING)
VELPKI_EXTENSION_LIST(POLICY_MAPPINGS, POLICY_MAPPING, decode_mappings, encode_mappings)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(POLICY_CONSTRAINTS)
VELPKI_EXTENSION_VALUE(POLICY_CONSTRAINTS)
