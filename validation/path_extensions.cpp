// The extensions of a certificate that path validation processes, found and read.
#include "validation/internal/path_extensions.h"

#include <velpki/asn1_error.h>

namespace velpki {

namespace {

struct Known {
  std::string_view oid;
  const X509_EXTENSION *PathExtensions::*place;
};
constexpr Known kKnown[] = {
    {"2.5.29.15", &PathExtensions::key_usage},
    {"2.5.29.17", &PathExtensions::alternative_names},
    {"2.5.29.19", &PathExtensions::basic_constraints},
    {"2.5.29.30", &PathExtensions::name_constraints},
    {"2.5.29.31", &PathExtensions::distribution_points},
    {"2.5.29.32", &PathExtensions::policies},
    {"2.5.29.33", &PathExtensions::mappings},
    {"2.5.29.36", &PathExtensions::policy_constraints},
    {"2.5.29.37", &PathExtensions::purposes},
    {"2.5.29.54", &PathExtensions::inhibit_any_policy},
};

int keep(const X509_EXTENSION &extension, PathExtensions &out) noexcept {
  for (const Known &known : kKnown)
    if (text(*extension.object) == known.oid) return out.*known.place = &extension, 0;
  return extension.critical ? path_failure(ERR_UNKNOWN_EXTENSION) : 0;
}

// A number of certificates. None is above what an int holds.
int number_of(const BIGINT *number, int absent) noexcept {
  if (!number) return absent;
  return PKV_Get_BIGINT_Bit_Length(number) > 31 ? INT_MAX : int(PKV_Get_BIGINT_Word(number));
}

}  // namespace

int find_path_extensions(const X509_CERT &cert, PathExtensions &out) noexcept {
  const X509_EXTENSIONS *all = get_X509_extensions(&cert);
  if (!all) return 0;
  bool no_memory = false;
  if (has_duplicates(*all, no_memory)) return path_failure(ERR_DUPLICATE_EXTENSION);
  if (no_memory) return path_failure(kNoMemory);
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(all)) {
    if (!each || !each->object || !each->value) return path_failure(kNullArgument);
    if (const int code = keep(*each, out)) return code;
  }
  return 0;
}

int read_authority(const X509_EXTENSION *extension, Authority &out) noexcept {
  BASIC_CONSTRAINTS *read = nullptr;
  if (!extension) return 0;
  if (const int code = X509_EXTENSION_to_BASIC_CONSTRAINTS_RFC5280(extension, &read)) return code;
  const owned<BASIC_CONSTRAINTS> constraints(read);
  out.is_one = constraints->ca != 0;
  if (constraints->pathLenConstraint) out.below = *constraints->pathLenConstraint;
  return 0;
}

int read_usage(const X509_EXTENSION *extension, Usage &out) noexcept {
  BIT_STRING *read = nullptr;
  if (!extension) return 0;
  if (const int code = X509_EXTENSION_to_KEY_USAGE_RFC5280(extension, &read)) return code;
  const owned<ASN1_STRING> bits(read);
  out.stated = true;
  for (int bit = KEY_USAGE_DIGITAL_SIGNATURE; bit <= KEY_USAGE_DECIPHER_ONLY; ++bit)
    if (has_KEY_USAGE(bits.get(), bit)) out.mask |= 1u << bit;
  return 0;
}

int read_policy_limits(const X509_EXTENSION *extension, PolicyLimits &out) noexcept {
  POLICY_CONSTRAINTS *read = nullptr;
  if (!extension) return 0;
  if (const int code = X509_EXTENSION_to_POLICY_CONSTRAINTS_RFC5280(extension, &read)) return code;
  const owned<POLICY_CONSTRAINTS> constraints(read);
  const bool empty = !constraints->requireExplicitPolicy && !constraints->inhibitPolicyMapping;
  out.require_explicit = number_of(constraints->requireExplicitPolicy, INT_MAX);
  out.inhibit_mapping = number_of(constraints->inhibitPolicyMapping, INT_MAX);
  return empty ? fail(F_SEQ_TO_POLICY_CONSTRAINTS, ERR_ASN1_DECODING) : 0;
}

int read_inhibit_any_policy(const X509_EXTENSION *extension, int &out) noexcept {
  if (!extension) return 0;
  const Octets value = octets(*extension->value);
  Rules rules = kStandardRules;
  Tlv tlv;
  BIGINT *read = nullptr;
  if (!Tlv::parse(value, rules, tlv) || tlv.identifier != TYPE_INTEGER || tlv.whole.size() != value.size()) {
    return fail(F_VERIFY_INHIBITANYPOLICY, ERR_ASN1_DECODING);
  }
  const Read outcome = read_integer(tlv, read);
  const owned<BIGINT> number(read);
  if (outcome == Read::no_memory) return fail(F_VERIFY_INHIBITANYPOLICY, kNoMemory);
  const bool fits = outcome == Read::ok && !PKV_Is_BIGINT_Negative(read);
  out = fits ? number_of(read, 0) : 0;
  return fits ? 0 : fail(F_VERIFY_INHIBITANYPOLICY, ERR_ASN1_DECODING);
}

int check_critical_points(const X509_EXTENSION *extension) noexcept {
  CRL_DIST_POINTS *read = nullptr;
  const int code = extension && extension->critical ? X509_EXTENSION_to_CRL_DIST_POINTS_RFC5280(extension, &read) : 0;
  free_CRL_DIST_POINTS(read);
  return code;
}

int check_alternative_names(const X509_EXTENSION *extension) noexcept {
  GENERAL_NAMES *read = nullptr;
  const int code = extension ? X509_EXTENSION_to_GENERAL_NAMES_RFC5280(extension, &read) : 0;
  free_GENERAL_NAMES(read);
  return code;
}

int read_purpose(const X509_EXTENSION *extension, const OBJECT_IDENTIFIER *purpose, bool &allowed) noexcept {
  allowed = true;
  STACK *read = nullptr;
  if (!extension) return 0;
  if (const int code = X509_EXTENSION_to_EXTENDED_KEY_USAGE_RFC5280(extension, &read)) return code;
  allowed = !purpose;
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(read))
    if (purpose && (text(*each) == text(*purpose) || text(*each) == "2.5.29.37.0")) allowed = true;
  free_EXTENDED_KEY_USAGE(read);
  return 0;
}

}  // namespace velpki
