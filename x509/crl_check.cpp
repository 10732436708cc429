// What one revocation list says about one certificate (RFC 5280 6.3.3).
#include "x509/internal/crl_check.h"

#include <velpki/asn1_error.h>

#include "asn1/internal/calendar.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(kCrlModule, reason); }

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

int check_key_usage(const Question &asked) noexcept { return check_list_key_usage(asked.issuer); }
int check_signature(const Question &asked) noexcept {
  return check_list_signature(asked.crl, get_X509_SPKI(&asked.issuer));
}
int check_dates(const Question &asked) noexcept { return check_list_dates(asked.crl, asked.time); }

// Where an extension that is known belongs; null for the others.
const X509_EXTENSION **place_of(std::string_view oid, ListExtensions &in) noexcept {
  if (oid == "2.5.29.20") return &in.number;
  if (oid == "2.5.29.27") return &in.base;
  if (oid == "2.5.29.28") return &in.scope;
  if (oid == "2.5.29.35") return &in.authority_key;
  return nullptr;
}
// Of the standard's extensions these two alone may be critical.
bool may_be_critical(std::string_view oid) noexcept { return oid == "2.5.29.27" || oid == "2.5.29.28"; }

int check_coverage(const Question &asked, Reasons &reasons) noexcept {
  ListExtensions extensions;
  if (const int code = find_list_extensions(asked.crl, extensions)) return code;
  if (extensions.base) return failure(ERR_CRL_DELTA);
  if (const int fault = entries_fault(asked.crl)) return failure(fault);
  owned<ISSUING_DIST_POINT> scope;
  if (const int code = read_scope(extensions, scope)) return code;
  if (scope && scope->indirectCRL) return failure(ERR_CRL_INDIRECT);
  return find_coverage(asked.crl, scope.get(), asked.cert, reasons);
}

int answer(const Question &asked, X509_REVOKED *&entry) noexcept {
  Reasons reasons = 0;
  for (const auto check : {check_issuer, check_key_usage, check_signature, check_dates})
    if (const int code = check(asked)) return code;
  if (const int code = check_coverage(asked, reasons)) return code;
  if (const int code = find_listed(asked.crl, asked.cert, entry)) return code;
  if (entry && takes_back(*entry)) entry = nullptr;
  if (entry) return failure(ERR_CERT_REVOKED);
  return reasons == kAllReasons ? 0 : failure(ERR_CRL_REASONS);
}

}  // namespace

int find_list_extensions(const X509_CRL &crl, ListExtensions &out) noexcept {
  out = {};
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(crl.tbs->extensions)) {
    const std::string_view oid = each && each->object ? text(*each->object) : std::string_view();
    if (each && each->critical && !may_be_critical(oid)) return failure(ERR_UNKNOWN_EXTENSION);
    const X509_EXTENSION **place = place_of(oid, out);
    if (!place) continue;
    if (*place) return failure(ERR_DUPLICATE_EXTENSION);
    *place = each;
  }
  return 0;
}

int read_scope(const ListExtensions &extensions, owned<ISSUING_DIST_POINT> &out) noexcept {
  if (!extensions.scope) return 0;
  ISSUING_DIST_POINT *scope = nullptr;
  const int code = X509_EXTENSION_to_issuing_DIST_POINT_RFC5280(extensions.scope, &scope);
  out.reset(scope);
  return code;
}

int check_list_dates(const X509_CRL &crl, const X509_TIME *time) noexcept {
  const owned<ASN1_TIME> now = time ? time_of(*time) : owned<ASN1_TIME>(getCurrentLocalTime());
  if (!now) return failure(time ? ERR_INVALID_X509_TIME_TYPE : kNoMemory);
  int64_t present, from, until;
  if (!instant_of(*now, present)) return failure(ERR_INVALID_X509_TIME_TYPE);
  if (!standard_instant_of(get_X509_CRL_thisUpdate(&crl), from) || from > present) return failure(ERR_CRL_THIS_UPDATE);
  const bool current = standard_instant_of(get_X509_CRL_nextUpdate(&crl), until) && until >= present;
  return current ? 0 : failure(ERR_CRL_NEXT_UPDATE);
}

int check_list_signature(const X509_CRL &crl, const X509_PUBKEY *key) noexcept {
  if (!crl.kept || !crl.kept->standard) return failure(kBadValue);
  return verify_SIG_X509_CRL_RFC5280(&crl, key);
}

int check_list_key_usage(const X509_CERT &signer) noexcept {
  const X509_EXTENSIONS *list = get_X509_extensions(&signer);
  const int index = get_X509_EXTENSION_index_by_OID_index(list, row::kKeyUsage, -1);
  if (index < 0) return 0;
  BIT_STRING *usage = nullptr;
  if (const int code = X509_EXTENSION_to_KEY_USAGE_RFC5280(get_X509_EXTENSION(list, index), &usage)) return code;
  const owned<ASN1_STRING> owner(usage);
  return has_KEY_USAGE(usage, KEY_USAGE_CRL_SIGN) ? 0 : failure(ERR_CRL_SIGN);
}

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
