// What one revocation list says about one certificate, in parts (RFC 5280 6.3.3). check_X509_CRL_revocation_strict and
// path validation put them together. Codes are of kCrlModule, or those of extension values and of the signature.
#pragma once

#include "x509/internal/crl.h"
#include "x509/internal/x509v3.h"

namespace velpki {

// Reasons for a revocation, by their bits in ReasonFlags (RFC 5280 4.2.1.13).
using Reasons = unsigned;
inline constexpr Reasons kAllReasons = 0x1FE;

// The extensions of a list that say what it is. Lists with an unknown critical one, or one of these twice, are refused.
struct ListExtensions {
  const X509_EXTENSION *scope = nullptr;  // issuing distribution point
  const X509_EXTENSION *number = nullptr;
  const X509_EXTENSION *base = nullptr;  // of a delta list: the number of the list that it goes on from
  const X509_EXTENSION *authority_key = nullptr;
};
int find_list_extensions(const X509_CRL &crl, ListExtensions &out) noexcept;
int read_scope(const ListExtensions &extensions, owned<ISSUING_DIST_POINT> &out) noexcept;  // null where there is none

int check_list_dates(const X509_CRL &crl, const X509_TIME *time) noexcept;  // both boundaries are inside; null is now
int check_list_signature(const X509_CRL &crl, const X509_PUBKEY *key) noexcept;
int check_list_key_usage(const X509_CERT &signer) noexcept;

// The reasons for which a list covers a certificate, whatever its entries say. `scope` null: the list has none.
int find_coverage(const X509_CRL &crl, const ISSUING_DIST_POINT *scope, const X509_CERT &cert, Reasons &out) noexcept;

// The entry of a certificate, or null; one that takes back another only where none revokes.
int find_listed(const X509_CRL &crl, const X509_CERT &cert, X509_REVOKED *&entry) noexcept;
// The same in an indirect list, whose entries name the issuers of their certificates.
int find_listed_of_issuer(const X509_CRL &crl, const X509_CERT &cert, X509_REVOKED *&entry) noexcept;
bool takes_back(const X509_REVOKED &entry) noexcept;

}  // namespace velpki
