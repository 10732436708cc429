// Certificate policies and their qualifiers (RFC 5280 4.2.1.4).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<NOTICE_REFERENCE> = std::tuple(own(&NOTICE_REFERENCE::organization),
                                                                  list_of<BIGINT>(&NOTICE_REFERENCE::noticeNumbers));
template <>
inline constexpr auto owned_fields<USER_NOTICE> = std::tuple(own(&USER_NOTICE::noticeRef),
                                                             own(&USER_NOTICE::explicitText));
template <>
inline constexpr auto owned_fields<POLICY_INFO> =
    std::tuple(own(&POLICY_INFO::policyIdentifier), list_of<POLICY_QUALIFIER_INFO>(&POLICY_INFO::policyQualifiers));

namespace {

// noticeNumbers SEQUENCE OF INTEGER. Where it has none, house form writes a NULL, and reads it as no number.
int decode_numbers(const Tlv &tlv, STACK &numbers) noexcept {
  Cursor in(tlv);
  if (in.at_end() && !in.rules().standard) return fail(F_SEQ_TO_NOTICE_NUMBERS, kBadValue);
  if (!reserve_stack(&numbers, count_values(in.rest(), in.rules()))) in.stop(Read::no_memory);
  while (in.reason() == Read::ok && !in.at_end()) {
    BIGINT *read = nullptr;
    if (!in.integer(read)) break;
    owned<BIGINT> number(read);
    if (!append(&numbers, number)) in.stop(Read::no_memory);
  }
  return in.result(F_SEQ_TO_NOTICE_NUMBERS);
}

int encode_numbers(const STACK &numbers, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (numbers.count == 0 && !out.rules().standard) out.null();
  for (const BIGINT *number : elements<BIGINT>(&numbers)) out.integer(number);
  return out.result(F_NOTICE_NUMBERS_TO_SEQ);
}

// DisplayText ::= CHOICE { ia5String, visibleString, bmpString, utf8String }
bool read_display_text(Cursor &in, ASN1_STRING *&out) noexcept {
  ASN1_STRING *fresh = nullptr;
  if (!in.any_string(fresh)) return false;
  take_over(out, fresh);
  const int type = fresh->type;
  const bool displayed =
      type == TYPE_IA5_STRING || type == TYPE_VISIBLE_STRING || type == TYPE_BMP_STRING || type == TYPE_UTF8_STRING;
  return !in.rules().standard || displayed || in.stop(Read::malformed);
}

// NoticeReference ::= SEQUENCE { organization DisplayText, noticeNumbers SEQUENCE OF INTEGER }
int decode(const Tlv &tlv, NOTICE_REFERENCE &out) noexcept {
  Cursor in(tlv);
  Tlv numbers;
  if (read_display_text(in, out.organization) && in.next(TYPE_SEQUENCE, numbers)) {
    if (in.made(out.noticeNumbers = new_STACK())) in.pass(decode_numbers(numbers, *out.noticeNumbers));
    in.finish();
  }
  return in.result(F_SEQ_TO_NOTICE_REFERENCE);
}

int encode(const NOTICE_REFERENCE &reference, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.string(reference.organization);
  if (out.failed()) return out.result(F_NOTICE_REFERENCE_TO_SEQ);
  if (const int code = encode_numbers(reference.noticeNumbers ? *reference.noticeNumbers : STACK{}, out)) return code;
  return out.result(F_NOTICE_REFERENCE_TO_SEQ);
}

bool read_reference(Cursor &in, USER_NOTICE &out) noexcept {
  Tlv child;
  if (!in.next(child)) return false;
  take_over(out.noticeRef, blank<NOTICE_REFERENCE>());
  return in.made(out.noticeRef) && in.pass(decode(child, *out.noticeRef));
}

// UserNotice ::= SEQUENCE { noticeRef NoticeReference OPTIONAL, explicitText DisplayText OPTIONAL }
// House form: every SEQUENCE is a reference, everything else a text, and the last of each counts.
int decode(const Tlv &tlv, USER_NOTICE &out) noexcept {
  Cursor in(tlv);
  bool read = true;
  while (read && !in.at_end()) {
    const bool reference = in.at(tag::kSequence);
    const bool again = out.explicitText || (reference && out.noticeRef);
    if (in.rules().standard && again) in.stop(Read::malformed);
    read = in.reason() == Read::ok && (reference ? read_reference(in, out) : read_display_text(in, out.explicitText));
  }
  return in.result(F_SEQ_TO_USER_NOTICE);
}

int encode(const USER_NOTICE &notice, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (notice.noticeRef)
    if (const int code = encode(*notice.noticeRef, out)) return code;
  if (notice.explicitText) out.string(notice.explicitText);
  return out.result(F_USER_NOTICE_TO_SEQ);
}

// What the OID of a qualifier says that it is.
int kind_by_id(const OBJECT_IDENTIFIER *id) noexcept {
  const int index = index_from_OBJECT_IDENTIFIER(id);
  if (index == row::kCpsQualifier) return POLICY_QUALIFIER_CPS;
  return index == row::kNoticeQualifier ? POLICY_QUALIFIER_NOTICE : POLICY_QUALIFIER_OTHER;
}

// What the record holds, or _BY_ID for nothing that is owned.
int kind_of(const POLICY_QUALIFIER_INFO &info) noexcept {
  if (info.kind != POLICY_QUALIFIER_BY_ID) return info.kind;
  const int kind = kind_by_id(info.policyQualifierId);
  return kind == POLICY_QUALIFIER_OTHER ? POLICY_QUALIFIER_BY_ID : kind;
}

void release_qualifier(POLICY_QUALIFIER_INFO &info) noexcept {
  switch (kind_of(info)) {
    case POLICY_QUALIFIER_CPS:
      return free_ASN1_STRING(static_cast<ASN1_STRING *>(info.qualifier));
    case POLICY_QUALIFIER_NOTICE:
      return free_USER_NOTICE(static_cast<USER_NOTICE *>(info.qualifier));
    case POLICY_QUALIFIER_OTHER:
      return free_ASN1_UNIT(static_cast<ASN1_UNIT *>(info.qualifier));
    default:
      return;
  }
}

void *copy_qualifier(const POLICY_QUALIFIER_INFO &info) noexcept {
  switch (kind_of(info)) {
    case POLICY_QUALIFIER_CPS:
      return dup_ASN1_STRING(static_cast<const ASN1_STRING *>(info.qualifier));
    case POLICY_QUALIFIER_NOTICE:
      return dup_USER_NOTICE(static_cast<const USER_NOTICE *>(info.qualifier));
    default:
      return dup_ASN1_UNIT_strict(static_cast<const ASN1_UNIT *>(info.qualifier));
  }
}

// What a value is by its identifier. Standard form asks the OID too, and keeps what does not agree as it is.
int kind_by_value(const Tlv &value, const OBJECT_IDENTIFIER *id) noexcept {
  const int kind = value.identifier == tag::kSequence    ? POLICY_QUALIFIER_NOTICE
                   : value.identifier == TYPE_IA5_STRING ? POLICY_QUALIFIER_CPS
                                                         : POLICY_QUALIFIER_BY_ID;
  return !value.rules.standard || kind == kind_by_id(id) ? kind : POLICY_QUALIFIER_OTHER;
}

template <class T>
bool keep_qualifier(Cursor &in, Read outcome, T *value, void *&out) noexcept {
  out = value;
  return in.keep(outcome);
}

bool read_qualifier(Cursor &in, const Tlv &value, POLICY_QUALIFIER_INFO &out) noexcept {
  out.kind = kind_by_value(value, out.policyQualifierId);
  if (out.kind == POLICY_QUALIFIER_CPS) {
    ASN1_STRING *uri = nullptr;
    const Read outcome = read_string(value, TYPE_IA5_STRING, uri);
    return keep_qualifier(in, outcome, uri, out.qualifier);
  }
  if (out.kind == POLICY_QUALIFIER_NOTICE) {
    auto *notice = blank<USER_NOTICE>();
    out.qualifier = notice;
    return in.made(notice) && in.pass(decode(value, *notice));
  }
  if (out.kind == POLICY_QUALIFIER_BY_ID) return true;
  ASN1_UNIT *unit = nullptr;
  const Read outcome = read_unit(value, unit);
  return keep_qualifier(in, outcome, unit, out.qualifier);
}

// PolicyQualifierInfo ::= SEQUENCE { policyQualifierId OBJECT IDENTIFIER, qualifier ANY DEFINED BY policyQualifierId }
int decode(const Tlv &tlv, POLICY_QUALIFIER_INFO &out) noexcept {
  Cursor in(tlv);
  Tlv value;
  if (in.oid(out.policyQualifierId) && in.next(value)) {
    if (in.at_end())
      read_qualifier(in, value, out);
    else
      in.stop(Read::malformed);
  }
  return in.result(F_SEQ_TO_POLICY_QUALIFIER_INFO);
}

int write_qualifier(const POLICY_QUALIFIER_INFO &info, DerWriter &out) noexcept {
  const int kind = kind_by_id(info.policyQualifierId);
  const bool agrees = info.kind == POLICY_QUALIFIER_BY_ID || info.kind == kind;
  if (!info.qualifier || (!agrees && !out.rules().standard)) return out.refuse(), 0;
  switch (agrees ? kind : info.kind) {
    case POLICY_QUALIFIER_CPS:
      return out.octets_as(TYPE_IA5_STRING, static_cast<const ASN1_STRING *>(info.qualifier)), 0;
    case POLICY_QUALIFIER_NOTICE:
      return encode(*static_cast<const USER_NOTICE *>(info.qualifier), out);
    default:
      if (info.kind != POLICY_QUALIFIER_OTHER || !out.rules().standard) return out.refuse(), 0;
      return out.unit(static_cast<const ASN1_UNIT *>(info.qualifier)), 0;
  }
}

int encode(const POLICY_QUALIFIER_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(info.policyQualifierId);
  if (out.failed()) return out.result(F_POLICY_QUALIFIER_INFO_TO_SEQ);
  if (const int code = write_qualifier(info, out)) return code;
  return out.result(F_POLICY_QUALIFIER_INFO_TO_SEQ);
}

int decode_qualifiers(const Tlv &tlv, STACK &qualifiers) noexcept {
  return decode_elements<POLICY_QUALIFIER_INFO>(tlv, qualifiers, F_SEQ_TO_POLICY_QUALIFIERS, decode);
}
int encode_qualifiers(const STACK &qualifiers, DerWriter &out) noexcept {
  return encode_elements<POLICY_QUALIFIER_INFO>(qualifiers, out, F_POLICY_QUALIFIERS_TO_SEQ, encode);
}

// PolicyInformation ::= SEQUENCE { policyIdentifier OBJECT IDENTIFIER, policyQualifiers SEQUENCE SIZE (1..MAX) OF
//   PolicyQualifierInfo OPTIONAL }
int decode(const Tlv &tlv, POLICY_INFO &out) noexcept {
  Cursor in(tlv);
  Tlv qualifiers;
  if (in.oid(out.policyIdentifier) && !in.at_end() && in.next(TYPE_SEQUENCE, qualifiers)) {
    if (!in.at_end())
      in.stop(Read::malformed);
    else if (in.rules().standard && qualifiers.content.empty())
      return 0;  // seen in real certificates, and the same as none
    else if (in.made(out.policyQualifiers = new_STACK()))
      in.pass(decode_qualifiers(qualifiers, *out.policyQualifiers));
  }
  return in.result(F_SEQ_TO_POLICY_INFO);
}

int encode(const POLICY_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(info.policyIdentifier);
  if (out.failed()) return out.result(F_POLICY_INFO_TO_SEQ);
  if (info.policyQualifiers)
    if (const int code = encode_qualifiers(*info.policyQualifiers, out)) return code;
  return out.result(F_POLICY_INFO_TO_SEQ);
}

}  // namespace

// CertificatePolicies ::= SEQUENCE SIZE (1..MAX) OF PolicyInformation
int decode_policies(const Tlv &tlv, STACK &policies) noexcept {
  return decode_elements<POLICY_INFO>(tlv, policies, F_SEQ_TO_CERTIFICATE_POLICIES, decode);
}

namespace {

int encode_policies(const STACK &policies, DerWriter &out) noexcept {
  return encode_elements<POLICY_INFO>(policies, out, F_CERTIFICATE_POLICIES_TO_SEQ, encode);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIST_WITH_DUP(NOTICE_NUMBERS, BIGINT)
VELPKI_EXTENSION_LIST(NOTICE_NUMBERS, BIGINT, decode_numbers, encode_numbers)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(NOTICE_REFERENCE)
VELPKI_EXTENSION_VALUE(NOTICE_REFERENCE)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(USER_NOTICE)
VELPKI_EXTENSION_VALUE(USER_NOTICE)

// The kind of qualifier decides what is released and copied.
POLICY_QUALIFIER_INFO *new_POLICY_QUALIFIER_INFO(void) noexcept { return allocate_record<POLICY_QUALIFIER_INFO>(); }

void free_POLICY_QUALIFIER_INFO(POLICY_QUALIFIER_INFO *p) noexcept {
  if (!p) return;
  release_qualifier(*p);
  free_OBJECT_IDENTIFIER(p->policyQualifierId);
  release(p);
}

POLICY_QUALIFIER_INFO *dup_POLICY_QUALIFIER_INFO(const POLICY_QUALIFIER_INFO *p) noexcept {
  owned<POLICY_QUALIFIER_INFO> fresh(p ? new_POLICY_QUALIFIER_INFO() : nullptr);
  if (!fresh) return nullptr;
  fresh->kind = p->kind;
  if (p->policyQualifierId && !replace(*fresh, &POLICY_QUALIFIER_INFO::policyQualifierId, p->policyQualifierId)) {
    return nullptr;
  }
  if (!p->qualifier || kind_of(*p) == POLICY_QUALIFIER_BY_ID) return fresh.release();
  fresh->qualifier = copy_qualifier(*p);
  return fresh->qualifier ? fresh.release() : nullptr;
}

VELPKI_EXTENSION_VALUE(POLICY_QUALIFIER_INFO)
VELPKI_LIST_WITH_DUP(POLICY_QUALIFIERS, POLICY_QUALIFIER_INFO)
VELPKI_EXTENSION_LIST(POLICY_QUALIFIERS, POLICY_QUALIFIER_INFO, decode_qualifiers, encode_qualifiers)
VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(POLICY_INFO)
VELPKI_EXTENSION_VALUE(POLICY_INFO)
VELPKI_LIST_WITH_DUP(CERTIFICATE_POLICIES, POLICY_INFO)
VELPKI_EXTENSION_LIST(CERTIFICATE_POLICIES, POLICY_INFO, decode_policies, encode_policies)
