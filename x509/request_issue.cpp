// What an issuer takes from a certification request into a certificate, and what it must not.
#include <velpki/asn1_error.h>

#include "x509/internal/pkcs10.h"
#include "x509/internal/received.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

// Extensions that an issuer alone decides about: they speak of it, or they give powers.
constexpr std::string_view kIssuersOwn[] = {
    "2.5.29.18",                // issuerAltName
    "2.5.29.19",                // basicConstraints
    "2.5.29.30",                // nameConstraints
    "2.5.29.31",                // cRLDistributionPoints
    "2.5.29.33",                // policyMappings
    "2.5.29.35",                // authorityKeyIdentifier
    "2.5.29.36",                // policyConstraints
    "2.5.29.46",                // freshestCRL
    "2.5.29.54",                // inhibitAnyPolicy
    "1.3.6.1.5.5.7.1.1",        // authorityInfoAccess
    "1.3.6.1.5.5.7.48.1.5",     // id-pkix-ocsp-nocheck
    "1.3.6.1.4.1.11129.2.4.2",  // signed certificate timestamps
    "1.3.6.1.4.1.11129.2.4.3",  // precertificate
};
constexpr std::string_view kKeyUsage = "2.5.29.15", kSubjectAltName = "2.5.29.17", kExtKeyUsage = "2.5.29.37";
constexpr std::string_view kSubjectKeyIdentifier = "2.5.29.14", kCertificatePolicies = "2.5.29.32";

// Purposes that would let the certificate's key speak for the issuer.
constexpr std::string_view kAuthorityPurposes[] = {"1.3.6.1.5.5.7.3.9", "2.5.29.37.0"};
constexpr uint8_t kKeyCertSign = 0x04, kCrlSign = 0x02;  // in the first octet of keyUsage

template <size_t n>
bool is_among(std::string_view oid, const std::string_view (&list)[n]) noexcept {
  for (const std::string_view each : list)
    if (each == oid) return true;
  return false;
}

std::string_view oid_of(const X509_EXTENSION &extension) noexcept {
  return extension.object ? text(*extension.object) : std::string_view();
}

// A value that is not its type's is this function's failure, but for exhausted memory.
int unreadable(int code) noexcept {
  return code ? fail(kRequest, reason_of(code) == kNoMemory ? kNoMemory : ERR_ASN1_DECODING) : 0;
}

int check_key_usage(const X509_EXTENSION &extension) noexcept {
  BIT_STRING *usage = nullptr;
  const int code = X509_EXTENSION_to_KEY_USAGE_RFC5280(&extension, &usage);
  const owned<ASN1_STRING> owner(usage);
  if (code) return unreadable(code);
  bool any = false;
  for (int bit = KEY_USAGE_DIGITAL_SIGNATURE; bit <= KEY_USAGE_DECIPHER_ONLY; ++bit) any |= has_KEY_USAGE(usage, bit);
  if (!any) return fail(kRequest, ERR_ASN1_DECODING);
  const bool authority = usage->length > 0 && usage->data[0] & (kKeyCertSign | kCrlSign);
  return authority ? fail(kRequest, ERR_AUTHORITY_REQUESTED) : 0;
}

int check_purposes(const X509_EXTENSION &extension) noexcept {
  EXTENDED_KEY_USAGE *purposes = nullptr;
  if (const int code = X509_EXTENSION_to_EXTENDED_KEY_USAGE_RFC5280(&extension, &purposes)) return unreadable(code);
  bool authority = false;
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(purposes)) {
    authority = authority || is_among(text(*each), kAuthorityPurposes);
  }
  free_EXTENDED_KEY_USAGE(purposes);
  return authority ? fail(kRequest, ERR_AUTHORITY_REQUESTED) : 0;
}

int check_names(const X509_EXTENSION &extension) noexcept {
  GENERAL_NAMES *names = nullptr;
  const int code = X509_EXTENSION_to_GENERAL_NAMES_RFC5280(&extension, &names);
  free_GENERAL_NAMES(names);
  return unreadable(code);
}

int check_policies(const X509_EXTENSION &extension) noexcept {
  CERTIFICATE_POLICIES *policies = nullptr;
  const int code = X509_EXTENSION_to_CERTIFICATE_POLICIES_RFC5280(&extension, &policies);
  free_CERTIFICATE_POLICIES(policies);
  return unreadable(code);
}

int check_key_identifier(const X509_EXTENSION &extension) noexcept {
  OCTET_STRING *identifier = nullptr;
  const int code = X509_EXTENSION_to_SUBJECT_KEYID_RFC5280(&extension, &identifier);
  free_ASN1_STRING(identifier);
  return unreadable(code);
}

// Of a type that is not known here the value has to be one value.
int check_unknown(const X509_EXTENSION &extension) noexcept {
  ASN1_UNIT *value = nullptr;
  const int code = get_X509_EXTENSION_unit(&extension, &value);
  free_ASN1_UNIT(value);
  return unreadable(code);
}

struct Check {
  std::string_view oid;
  int (*run)(const X509_EXTENSION &) noexcept;
};
constexpr Check kChecks[] = {{kKeyUsage, check_key_usage},
                             {kExtKeyUsage, check_purposes},
                             {kSubjectAltName, check_names},
                             {kCertificatePolicies, check_policies},
                             {kSubjectKeyIdentifier, check_key_identifier}};

int check_value(const X509_EXTENSION &extension) noexcept {
  for (const Check &each : kChecks)
    if (each.oid == oid_of(extension)) return each.run(extension);
  return check_unknown(extension);
}

// Null elements allow nothing.
bool is_allowed(const OBJECT_IDENTIFIERS *allowed, const X509_EXTENSION &extension) noexcept {
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(allowed))
    if (each && same_octets(each, extension.object)) return true;
  return false;
}

int check_allowed(const OBJECT_IDENTIFIERS *allowed) noexcept {
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(allowed))
    if (each && is_among(text(*each), kIssuersOwn)) return fail(kRequest, kBadValue);
  return 0;
}

int check_request(const PKCS10_X509_REQ &req) noexcept {
  const int verified = req.received ? verify_SIG_PKCS10_X509_REQ_RFC5280(&req) : verify_request(req);
  if (verified) return verified;
  const PKCS10_X509_REQ_INFO &info = *req.info;
  if (info.version != 0) return fail(kRequest, kBadValue);
  for (const X509_ATTRIBUTE *each : elements<X509_ATTRIBUTE>(info.attributes))
    if (each && is_extension_request(*each)) return fail(kRequest, ERR_ASN1_DECODING);
  bool no_memory = false;
  const bool twice = info.extensions && has_duplicates(*info.extensions, no_memory);
  if (no_memory) return fail(kRequest, kNoMemory);
  return twice ? fail(kRequest, ERR_DUPLICATE_EXTENSION) : 0;
}

// Appends what is allowed and not there yet.
int add_extensions(const STACK *requested, const OBJECT_IDENTIFIERS *allowed, STACK &list) noexcept {
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(requested)) {
    if (!each || !is_allowed(allowed, *each) || get_X509_EXTENSION_index_by_OID(&list, each->object, -1) >= 0) continue;
    if (const int code = check_value(*each)) return code;
    if (!insert_copy(&list, each, -1)) return fail(kRequest, kNoMemory);
  }
  return 0;
}

// Where the subject is empty, the alternative name is all that names it (RFC 5280 4.1.2.6).
int check_subject(const STACK &subject, const STACK &extensions) noexcept {
  for (const X509_NAME_CHILD *each : elements<X509_NAME_CHILD>(&subject))
    if (each && each->rdn != kEmptyRdn) return 0;
  for (X509_EXTENSION *each : elements<X509_EXTENSION>(&extensions)) {
    if (!each || oid_of(*each) != kSubjectAltName) continue;
    each->critical = 1;
    return 0;
  }
  return fail(kRequest, ERR_TBS_CERT_SUBJECT);
}

// Fills a copy, which takes the certificate's place when everything went well.
int fill(X509_CERT &cert, const PKCS10_X509_REQ_INFO &info, const OBJECT_IDENTIFIERS *allowed) noexcept {
  X509_TBS_CERT &tbs = *cert.tbs;
  const bool had_list = tbs.extensions;
  if (!had_list) tbs.extensions = new_STACK();
  if (!tbs.extensions || set_X509_version(&cert, 2) || set_X509_subject(&cert, info.subject) ||
      set_X509_pub_key(&cert, info.subjectPublicKeyInfo)) {
    return fail(kRequest, kNoMemory);
  }
  if (const int code = add_extensions(info.extensions, allowed, *tbs.extensions)) return code;
  if (const int code = check_subject(*info.subject, *tbs.extensions)) return code;
  if (!had_list && tbs.extensions->count == 0) set_X509_extensions(&cert, nullptr);
  return 0;
}

// What was verified, in standard form: the plain reader's record may lack names that the octets have.
int read_again(const PKCS10_X509_REQ &req, owned<PKCS10_X509_REQ> &out) noexcept {
  Tlv tlv;
  Rules rules = kStandardRules;
  PKCS10_X509_REQ *fresh = nullptr;
  if (!Tlv::parse(received_whole(*req.received), rules, tlv)) return fail(kRequest, ERR_ASN1_DECODING);
  const int code = from_tlv(kRequest, tlv, &fresh, decode);
  out.reset(fresh);
  return code;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_X509_CERT_from_PKCS10_X509_REQ(X509_CERT *cert, const PKCS10_X509_REQ *req,
                                       const OBJECT_IDENTIFIERS *allowed) noexcept {
  if (!cert || !req || !req->info || !req->info->subject) return fail(kRequest, kNullArgument);
  if (const int code = check_allowed(allowed)) return code;
  owned<PKCS10_X509_REQ> received;
  if (req->received) {
    if (const int code = read_again(*req, received)) return code;
    req = received.get();
  }
  if (const int code = check_request(*req)) return code;
  const owned<X509_CERT> filled(dup_X509_CERT(cert));
  if (!filled) return fail(kRequest, kNoMemory);
  if (!filled->tbs) filled->tbs = new_X509_TBS_CERT();
  if (!filled->tbs) return fail(kRequest, kNoMemory);
  if (const int code = fill(*filled, *req->info, allowed)) return code;
  std::swap(*cert, *filled);
  return 0;
}
