// What one revocation list says about one certificate (RFC 5280 6.3.3).
#include <velpki/asn1_error.h>

#include "x509/internal/crl.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(kCrlModule, reason); }

constexpr int kRemoveFromCrl = 8;

struct Question {
  const X509_CRL &crl;
  const X509_CERT &cert, &issuer;
  const X509_TIME *time;
};

// The list, the certificate and the issuer's own certificate name one issuer.
int check_issuer(const Question &asked) noexcept {
  const X509_NAME *issuer = get_X509_CRL_issuer(&asked.crl);
  const bool same = cmp_X509_NAME_RFC5280(issuer, get_X509_issuer(&asked.cert)) == 0 &&
                    cmp_X509_NAME_RFC5280(issuer, get_X509_subject(&asked.issuer)) == 0;
  return same ? 0 : failure(ERR_CRL_ISSUER);
}

int check_key_usage(const Question &asked) noexcept {
  const X509_EXTENSIONS *list = get_X509_extensions(&asked.issuer);
  const int index = get_X509_EXTENSION_index_by_OID_index(list, row::kKeyUsage, -1);
  if (index < 0) return 0;
  BIT_STRING *usage = nullptr;
  if (const int code = X509_EXTENSION_to_KEY_USAGE_RFC5280(get_X509_EXTENSION(list, index), &usage)) return code;
  const owned<ASN1_STRING> owner(usage);
  return has_KEY_USAGE(usage, KEY_USAGE_CRL_SIGN) ? 0 : failure(ERR_CRL_SIGN);
}

int check_signature(const Question &asked) noexcept {
  if (!asked.crl.kept || !asked.crl.kept->standard) return failure(kBadValue);
  return verify_SIG_X509_CRL_RFC5280(&asked.crl, get_X509_SPKI(&asked.issuer));
}

// Both boundaries are inside.
int check_dates(const Question &asked) noexcept {
  const owned<ASN1_TIME> now = asked.time ? time_of(*asked.time) : owned<ASN1_TIME>(getCurrentLocalTime());
  if (!now) return failure(asked.time ? ERR_INVALID_X509_TIME_TYPE : kNoMemory);
  const X509_TIME *from = get_X509_CRL_thisUpdate(&asked.crl), *until = get_X509_CRL_nextUpdate(&asked.crl);
  const owned<ASN1_TIME> first = from ? standard_time_of(*from) : nullptr;
  if (!first || cmp_ASN1_TIME(first.get(), now.get()) > 0) return failure(ERR_CRL_THIS_UPDATE);
  const owned<ASN1_TIME> last = until ? standard_time_of(*until) : nullptr;
  return last && cmp_ASN1_TIME(last.get(), now.get()) >= 0 ? 0 : failure(ERR_CRL_NEXT_UPDATE);
}

bool is_known(std::string_view oid) noexcept {
  for (const char *known : {"2.5.29.18", "2.5.29.20", "2.5.29.28", "2.5.29.35", "2.5.29.46"})
    if (oid == known) return true;
  return false;
}

// Finds the issuing distribution point on the way.
int check_extensions(const Question &asked, const X509_EXTENSION *&scope) noexcept {
  scope = nullptr;
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(asked.crl.tbs->extensions)) {
    const std::string_view oid = each && each->object ? text(*each->object) : std::string_view();
    if (oid == "2.5.29.27") return failure(ERR_CRL_DELTA);
    if (each && each->critical && !is_known(oid)) return failure(ERR_UNKNOWN_EXTENSION);
    if (oid != "2.5.29.28") continue;
    if (scope) return failure(ERR_DUPLICATE_EXTENSION);
    scope = each;
  }
  return 0;
}

int check_coverage(const Question &asked, bool &partial) noexcept {
  const X509_EXTENSION *extension = nullptr;
  partial = false;
  if (const int code = check_extensions(asked, extension)) return code;
  if (const int fault = entries_fault(asked.crl)) return failure(fault);
  if (!extension) return 0;
  ISSUING_DIST_POINT *scope = nullptr;
  if (const int code = X509_EXTENSION_to_issuing_DIST_POINT_RFC5280(extension, &scope)) return code;
  const owned<ISSUING_DIST_POINT> owner(scope);
  return check_scope(*scope, asked.crl, asked.cert, partial);
}

bool is_revocation(const X509_REVOKED &entry) noexcept {
  return get_X509_REVOKED_CRLreason_strict(&entry) != kRemoveFromCrl;
}

// An entry that takes back is rare, and another of the same number may not.
X509_REVOKED *find_revocation(const X509_CRL &crl, const BIGINT *serial) noexcept {
  X509_REVOKED *found = find_X509_CRL_revoked(&crl, serial);
  if (!found || is_revocation(*found)) return found;
  for (X509_REVOKED *each : elements<X509_REVOKED>(crl.tbs->revoked))
    if (each && PKV_Cmp_BIGINT(each->userCertificate, serial) == 0 && is_revocation(*each)) return each;
  return nullptr;
}

// The serial number with its sign, which a certificate that was read in house form has lost.
owned<BIGINT> signed_serial(const X509_CERT &cert) noexcept {
  owned<BIGINT> number;
  Tlv tbs, serial;
  Rules rules = kStandardRules;
  if (!cert.received || !Tlv::parse(received_tbs(*cert.received), rules, tbs)) return number;
  Cursor in(tbs);
  Tlv skipped;
  if (in.at(tag::explicit_context(0)) && !in.next(skipped)) return number;
  BIGINT *read = nullptr;
  if (in.next(TYPE_INTEGER, serial) && read_integer(serial, read) == Read::ok) number.reset(read);
  return number;
}

int look_up(const Question &asked, X509_REVOKED *&entry) noexcept {
  const BIGINT *serial = get_X509_serial(&asked.cert);
  if (!serial) return failure(kNullArgument);
  entry = find_revocation(asked.crl, serial);
  if (entry || !asked.cert.received) return 0;
  const owned<BIGINT> with_sign = signed_serial(asked.cert);
  if (!with_sign) return failure(kNoMemory);
  if (PKV_Is_BIGINT_Negative(with_sign.get())) entry = find_revocation(asked.crl, with_sign.get());
  return 0;
}

int answer(const Question &asked, X509_REVOKED *&entry) noexcept {
  bool partial = false;
  for (const auto check : {check_issuer, check_key_usage, check_signature, check_dates})
    if (const int code = check(asked)) return code;
  if (const int code = check_coverage(asked, partial)) return code;
  if (const int code = look_up(asked, entry)) return code;
  if (entry) return failure(ERR_CERT_REVOKED);
  return partial ? failure(ERR_CRL_REASONS) : 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int check_X509_CRL_revocation_strict(const X509_CRL *crl, const X509_CERT *cert, const X509_CERT *issuer,
                                     const X509_TIME *time, X509_REVOKED **entry) noexcept {
  if (entry) *entry = nullptr;
  if (!crl || !crl->tbs || !cert || !issuer) return failure(kNullArgument);
  X509_REVOKED *found = nullptr;
  const int code = answer({*crl, *cert, *issuer, time}, found);
  if (entry) *entry = found;
  return code;
}
