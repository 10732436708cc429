// The extensions of a certificate on standard output.
#include <velpki/asn1_objects.h>
#include <velpki/utils.h>

#include <cstdio>

#include "x509/internal/print.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

void print_line(const char *label, std::string_view text) noexcept {
  std::fputs(label, stdout);
  print_text(text);
  std::fputs("\n", stdout);
}

void print_text_of(const char *label, const ASN1_STRING *value) noexcept {
  if (value) print_line(label, text(*value));
}

void print_hex_of(const char *label, const ASN1_STRING *value) noexcept {
  if (!value) return;
  std::fputs(label, stdout);
  print_hex_nl(value->data, value->length);
}

void print_labelled(const char *label, const BIGINT *number) noexcept {
  if (!number) return;
  std::fputs(label, stdout);
  print_number(number);
}

void print_oid(const char *before, const OBJECT_IDENTIFIER *oid, const char *after) noexcept {
  if (!oid) return;
  std::fputs(before, stdout);
  print_text(text(*oid));
  std::fputs(after, stdout);
}

void print_values(const char *label, const X509_NAME *name) noexcept {
  for (const X509_NAME_CHILD *child : elements<X509_NAME_CHILD>(name)) {
    if (!child || !child->value) continue;
    std::fputs(label, stdout);
    print_value(*child->value);
    std::fputs("\n", stdout);
  }
}

// The value of a name when it is of one kind, else null.
template <class T>
const T *name_of(const GENERAL_NAME *name, int type) noexcept {
  return name && name->type == type ? static_cast<const T *>(name->value) : nullptr;
}

void print_uris(const char *label, const STACK *names) noexcept {
  for (const GENERAL_NAME *name : elements<GENERAL_NAME>(names)) {
    print_text_of(label, name_of<ASN1_STRING>(name, GENERAL_NAME_URI));
  }
}

// Decodes an extension's value and prints it; nothing when it cannot be read.
template <class R>
void with_record(const Tlv &value, int (*decode)(const Tlv &, R &) noexcept, void (*print)(const R &)) noexcept {
  const owned<R> record(blank<R>());
  if (record && decode(value, *record) == 0) print(*record);
}
template <class E>
void with_list(const Tlv &value, int (*decode)(const Tlv &, STACK &) noexcept, void (*print)(const STACK &)) noexcept {
  STACK *list = new_STACK();
  if (list && decode(value, *list) == 0) print(*list);
  destroy_list<E>(list);
}
void with_string(const Tlv &value, int type, const char *label) noexcept {
  ASN1_STRING *read = nullptr;
  if (value.identifier == type && read_string(value, type, read) == Read::ok) print_hex_of(label, read);
  free_ASN1_STRING(read);
}

// One printer for each extension that is known.

void print_key_id(const Tlv &value) noexcept {
  with_string(value, TYPE_OCTET_STRING, "  * SKey Id (PKV_SHA1 Hash Value) : ");
}

void print_key_usage(const Tlv &value) noexcept { with_string(value, TYPE_BIT_STRING, "  * key_usage : "); }

void print_alternative_names(const Tlv &value) noexcept {
  with_list<GENERAL_NAME>(value, decode_general_names, [](const STACK &names) {
    for (const GENERAL_NAME *name : elements<GENERAL_NAME>(&names)) {
      if (const auto *other = name_of<OTHERNAME>(name, GENERAL_NAME_OTHER))
        print_oid("  * OID = ", other->type_id, " \n");
    }
  });
}

void print_basic_constraints(const Tlv &value) noexcept {
  with_record<BASIC_CONSTRAINTS>(value, decode, [](const BASIC_CONSTRAINTS &constraints) {
    std::printf("  * BasicConstraints, CA = %x\n", unsigned(constraints.ca));
    if (const int *length = constraints.pathLenConstraint)
      std::printf("  * BasicConstraints, pathLenConstraint = %d\n", *length);
  });
}

constexpr char kPolicyLine[] = "  * Policy Mapping, issuerDomainPolicy\n";

void print_policies(const Tlv &value) noexcept {
  with_list<POLICY_INFO>(value, decode_policies, [](const STACK &policies) {
    for (const POLICY_INFO *policy : elements<POLICY_INFO>(&policies)) {
      std::fputs(kPolicyLine, stdout);
      print_oid("", policy->policyIdentifier, "=\n");
    }
  });
}

void print_mappings(const Tlv &value) noexcept {
  with_list<POLICY_MAPPING>(value, decode_mappings, [](const STACK &mappings) {
    for (const POLICY_MAPPING *mapping : elements<POLICY_MAPPING>(&mappings)) {
      std::fputs(kPolicyLine, stdout);
      print_text(short_name(*mapping->issuerDomainPolicy));
      print_line("=", short_name(*mapping->subjectDomainPolicy));
    }
  });
}

void print_policy_constraints(const Tlv &value) noexcept {
  with_record<POLICY_CONSTRAINTS>(value, decode, [](const POLICY_CONSTRAINTS &constraints) {
    std::fputs("  * PolicyConstraints : \n", stdout);
    print_labelled("    PolicyConstraints->requireExplicitPolicy ", constraints.requireExplicitPolicy);
    print_labelled("    PolicyConstraints->inhibitPolicyMapping ", constraints.inhibitPolicyMapping);
    if (!constraints.requireExplicitPolicy && !constraints.inhibitPolicyMapping)
      std::fputs("    PolicyConstraints has no data\n", stdout);
  });
}

void print_authority_key_id(const Tlv &value) noexcept {
  with_record<AUTHORITY_KEYID>(value, decode, [](const AUTHORITY_KEYID &id) {
    print_hex_of("  * Key Id : ", id.keyIdentifier);
    print_labelled("  * Serial : ", id.authorityCertSerialNumber);
    const auto *first = element<GENERAL_NAME>(id.authorityCertIssuer, 0);
    print_values("      * ", name_of<X509_NAME>(first, GENERAL_NAME_DIRECTORY));
  });
}

void print_issuing_point(const Tlv &value) noexcept {
  with_record<ISSUING_DIST_POINT>(
      value, decode, [](const ISSUING_DIST_POINT &) { std::fputs("  * IssuingDistrubutionPoint : \n", stdout); });
}

void print_name_constraints(const Tlv &value) noexcept {
  with_record<NAME_CONSTRAINTS>(value, decode, [](const NAME_CONSTRAINTS &constraints) {
    std::fputs("  * NameConstraints : \n", stdout);
    if (!constraints.permittedSubtrees) return;
    std::fputs("    NameConstraints->permittedSubtrees\n", stdout);
    for (const GENERAL_SUBTREE *tree : elements<GENERAL_SUBTREE>(constraints.permittedSubtrees))
      print_text_of("  * permittedSubtrees->DNS ", name_of<ASN1_STRING>(tree->base, GENERAL_NAME_DNS));
  });
}

void print_dist_point(const DIST_POINT &point) noexcept {
  const DIST_POINT_NAME *name = point.distpoint;
  if (name && name->type == DIST_POINT_NAME_FULL) print_uris("  * DISTPOINT URI : ", name->name);
  if (name && name->type == DIST_POINT_NAME_RELATIVE) {
    std::fputs("  * DISTPOINT->relativename\n", stdout);
    print_values("      * ", name->name);
  }
  print_hex_of("  * Reason Flags ", point.reasons);
  print_uris("  * CRLissuer->URI ", point.CRLissuer);
}

void print_dist_points(const Tlv &value) noexcept {
  with_list<DIST_POINT>(value, decode_dist_points, [](const STACK &points) {
    for (const DIST_POINT *point : elements<DIST_POINT>(&points)) print_dist_point(*point);
  });
}

void print_access(const Tlv &value) noexcept {
  with_list<ACCESS_DESCRIPTION>(value, decode_access, [](const STACK &descriptions) {
    for (const ACCESS_DESCRIPTION *each : elements<ACCESS_DESCRIPTION>(&descriptions)) {
      print_oid("  * OID = ", each->accessMethod, " / ");
      print_line("", long_name(*each->accessMethod));
      print_text_of("  * AuthorityInfoAccess uri : ", name_of<ASN1_STRING>(each->accessLocation, GENERAL_NAME_URI));
    }
  });
}

struct KnownExtension {
  int row;
  void (*print)(const Tlv &) noexcept;
};
constexpr KnownExtension kKnown[] = {
    {row::kSubjectKeyIdentifier, print_key_id},
    {row::kKeyUsage, print_key_usage},
    {row::kSubjectAltName, print_alternative_names},
    {row::kBasicConstraints, print_basic_constraints},
    {row::kCertificatePolicies, print_policies},
    {row::kAuthorityKeyIdentifier, print_authority_key_id},
    {row::kPolicyConstraints, print_policy_constraints},
    {row::kPolicyMappings, print_mappings},
    {row::kIssuingDistributionPoint, print_issuing_point},
    {row::kNameConstraints, print_name_constraints},
    {row::kCrlDistributionPoints, print_dist_points},
    {row::kAuthorityInfoAccess, print_access},
};

void print_extension(int index, const X509_EXTENSION &extension, Rules rules) noexcept {
  std::printf("\n - Extension (%d) : ", index);
  print_text(text(*extension.object));
  print_line(" / ", long_name(*extension.object));
  Tlv value;
  if (!extension.value || !Tlv::parse(octets(*extension.value), rules, value)) return;
  const int found = index_from_OBJECT_IDENTIFIER(extension.object);
  for (const KnownExtension &each : kKnown)
    if (each.row == found) return each.print(value);
}

void print_extensions(const X509_CERT *cert, Rules rules) noexcept {
  int index = 0;
  for (const X509_EXTENSION *extension : elements<X509_EXTENSION>(get_X509_extensions(cert))) {
    if (extension && extension->object) print_extension(index, *extension, rules);
    ++index;
  }
}

}  // namespace

}  // namespace velpki

using namespace velpki;

void print_X509_Extension(const X509_CERT *cert) noexcept { print_extensions(cert, {}); }
void print_X509_Extension_RFC5280(const X509_CERT *cert) noexcept { print_extensions(cert, kStandardRules); }
