// The value of an extension as a record or a unit, and back.
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

// The one value inside an extension, in standard form.
int value_of(int function, const X509_EXTENSION *extension, const void *record, Tlv &out) noexcept {
  if (!extension || !extension->value || !record) return fail(function, kNullArgument);
  const Octets value = octets(*extension->value);
  Rules rules = kStandardRules;
  if (!Tlv::parse(value, rules, out)) return fail(function, ERR_ASN1_DECODING);
  return out.whole.size() == value.size() ? 0 : fail(function, ERR_TRAILING_OCTETS);
}

template <class R>
int record_of(int function, const X509_EXTENSION *extension, R **record,
              int (*decode)(const Tlv &, R &) noexcept) noexcept {
  Tlv tlv;
  if (const int code = value_of(function, extension, record, tlv)) return code;
  return value_from_tlv(function, tlv, record, decode);
}
template <class E>
int list_of_extension(int function, const X509_EXTENSION *extension, STACK **list,
                      int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  Tlv tlv;
  if (const int code = value_of(function, extension, list, tlv)) return code;
  return values_from_tlv<E>(function, tlv, list, decode);
}
int string_of(int type, const X509_EXTENSION *extension, ASN1_STRING **out) noexcept {
  Tlv tlv;
  if (const int code = value_of(kExtensionModule, extension, out, tlv)) return code;
  return string_from_tlv(type, tlv, out);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int X509_EXTENSION_to_GENERAL_NAMES_RFC5280(const X509_EXTENSION *in, GENERAL_NAMES **out) noexcept {
  return list_of_extension<GENERAL_NAME>(F_SEQ_TO_GENERAL_NAMES, in, out, decode_general_names);
}
int X509_EXTENSION_to_AUTHORITY_KEYID_RFC5280(const X509_EXTENSION *in, AUTHORITY_KEYID **out) noexcept {
  return record_of(F_SEQ_TO_AUTHORITY_KEYID, in, out, decode);
}
int X509_EXTENSION_to_EXTENDED_KEY_USAGE_RFC5280(const X509_EXTENSION *in, EXTENDED_KEY_USAGE **out) noexcept {
  return list_of_extension<OBJECT_IDENTIFIER>(kExtensionModule, in, out, decode_purposes);
}
int X509_EXTENSION_to_SUBJECT_KEYID_RFC5280(const X509_EXTENSION *in, OCTET_STRING **out) noexcept {
  return string_of(TYPE_OCTET_STRING, in, out);
}
int X509_EXTENSION_to_KEY_USAGE_RFC5280(const X509_EXTENSION *in, BIT_STRING **out) noexcept {
  return string_of(TYPE_BIT_STRING, in, out);
}
int X509_EXTENSION_to_CERTIFICATE_POLICIES_RFC5280(const X509_EXTENSION *in, CERTIFICATE_POLICIES **out) noexcept {
  return list_of_extension<POLICY_INFO>(F_SEQ_TO_CERTIFICATE_POLICIES, in, out, decode_policies);
}
int X509_EXTENSION_to_POLICY_MAPPINGS_RFC5280(const X509_EXTENSION *in, POLICY_MAPPINGS **out) noexcept {
  return list_of_extension<POLICY_MAPPING>(F_SEQ_TO_POLICY_MAPPINGS, in, out, decode_mappings);
}
int X509_EXTENSION_to_POLICY_CONSTRAINTS_RFC5280(const X509_EXTENSION *in, POLICY_CONSTRAINTS **out) noexcept {
  return record_of(F_SEQ_TO_POLICY_CONSTRAINTS, in, out, decode);
}
int X509_EXTENSION_to_BASIC_CONSTRAINTS_RFC5280(const X509_EXTENSION *in, BASIC_CONSTRAINTS **out) noexcept {
  return record_of(F_SEQ_TO_BASIC_CONSTRAINTS, in, out, decode);
}
int X509_EXTENSION_to_NAME_CONSTRAINTS_RFC5280(const X509_EXTENSION *in, NAME_CONSTRAINTS **out) noexcept {
  return record_of(F_SEQ_TO_NAME_CONSTRAINTS, in, out, decode);
}
int X509_EXTENSION_to_CRL_DIST_POINTS_RFC5280(const X509_EXTENSION *in, CRL_DIST_POINTS **out) noexcept {
  return list_of_extension<DIST_POINT>(F_SEQ_TO_CRL_DIST_POINTS, in, out, decode_dist_points);
}
int X509_EXTENSION_to_issuing_DIST_POINT_RFC5280(const X509_EXTENSION *in, ISSUING_DIST_POINT **out) noexcept {
  return record_of(F_SEQ_TO_ISSUING_DIST_POINT, in, out, decode);
}
int X509_EXTENSION_to_AUTHORITY_INFO_ACCESS_RFC5280(const X509_EXTENSION *in, AUTHORITY_INFO_ACCESS **out) noexcept {
  return list_of_extension<ACCESS_DESCRIPTION>(F_SEQ_TO_AUTHORITY_INFO_ACCESS, in, out, decode_access);
}

X509_EXTENSION *create_X509_EXTENSION_from_Seq(X509_EXTENSION **extension, int oid_index, int critical,
                                               const ASN1_UNIT *value) noexcept {
  DerWriter out;
  out.unit(value);
  const owned<ASN1_STRING> octets(out.failed() ? nullptr : new_string(TYPE_OCTET_STRING, out.written()));
  return create_X509_EXTENSION_by_OID_index(extension, oid_index, critical, octets.get());
}

int get_X509_EXTENSION_unit(const X509_EXTENSION *extension, ASN1_UNIT **out) noexcept {
  Tlv tlv;
  if (const int code = value_of(F_SEQ_TO_X509_EXT, extension, out, tlv)) return code;
  ASN1_UNIT *unit = nullptr;
  if (read_unit(tlv, unit) != Read::ok) return fail(F_SEQ_TO_X509_EXT, kNoMemory);
  *out = unit;
  return 0;
}
