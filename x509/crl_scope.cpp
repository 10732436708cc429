// Which certificates a revocation list covers (RFC 5280 5.2.5, 6.3.3 b).
#include <velpki/asn1_error.h>

#include "x509/internal/crl.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(kCrlModule, reason); }

constexpr size_t kMaxPairs = 1 << 16;  // of names; strangers' lists are long

struct ReleaseName {
  void operator()(STACK *name) const noexcept { free_X509_NAME(name); }
};
struct ReleasePoints {
  void operator()(STACK *points) const noexcept { free_CRL_DIST_POINTS(points); }
};

// Names of the kinds that distribution points have; others are never the same.
bool same_name(const GENERAL_NAME *a, const GENERAL_NAME *b) noexcept {
  if (!a || !b || a->type != b->type || !a->value || !b->value) return false;
  switch (a->type) {
    case GENERAL_NAME_DIRECTORY:
      return cmp_X509_NAME_RFC5280(static_cast<X509_NAME *>(a->value), static_cast<X509_NAME *>(b->value)) == 0;
    case GENERAL_NAME_RFC822:
    case GENERAL_NAME_DNS:
    case GENERAL_NAME_URI:
    case GENERAL_NAME_IP:
      return same_octets(static_cast<ASN1_STRING *>(a->value), static_cast<ASN1_STRING *>(b->value));
    default:
      return false;
  }
}

// The names that a distribution point stands for.
class PointNames {
 public:
  PointNames() noexcept = default;
  PointNames(const PointNames &) = delete;
  PointNames &operator=(const PointNames &) = delete;

  // False when memory is exhausted.
  bool set(const DIST_POINT_NAME &name, const X509_NAME *issuer) noexcept {
    if (name.type == DIST_POINT_NAME_RELATIVE) return name.name && issuer && set_relative(*name.name, *issuer);
    if (name.name) names_ = {name.name->data, size_t(name.name->count)};
    return true;
  }
  void set_directory(X509_NAME *name) noexcept {
    one_ = {GENERAL_NAME_DIRECTORY, name};
    names_ = {&slot_, 1};
  }
  bool has_one_of(const PointNames &other) const noexcept {
    if (!other.names_.empty() && names_.size() > kMaxPairs / other.names_.size()) return false;
    for (void *const mine : names_)
      for (void *const theirs : other.names_)
        if (same_name(static_cast<GENERAL_NAME *>(mine), static_cast<GENERAL_NAME *>(theirs))) return true;
    return false;
  }

 private:
  // The issuer's name with one more RDN, whose number must not be that of the RDN before it.
  bool set_relative(const X509_NAME &rdn, const X509_NAME &issuer) noexcept {
    whole_.reset(dup_X509_NAME(&issuer));
    const int base = issuer.count;
    for (const X509_NAME_CHILD *each : elements<X509_NAME_CHILD>(whole_ ? &rdn : nullptr)) {
      if (!each || add_X509_NAME_child(whole_.get(), each, -1)) return false;
      X509_NAME_CHILD *added = get_X509_NAME_CHILD(whole_.get(), whole_->count - 1);
      if (added->rdn > 0) added->rdn += base;
    }
    set_directory(whole_.get());
    return whole_ != nullptr;
  }

  std::span<void *const> names_;
  std::unique_ptr<STACK, ReleaseName> whole_;
  GENERAL_NAME one_{};
  void *slot_ = &one_;
};

const X509_EXTENSION *extension_of(const X509_CERT &cert, int oid_row) noexcept {
  const X509_EXTENSIONS *list = get_X509_extensions(&cert);
  const int index = get_X509_EXTENSION_index_by_OID_index(list, oid_row, -1);
  return index < 0 ? nullptr : get_X509_EXTENSION(list, index);
}

int read_is_ca(const X509_CERT &cert, bool &is_ca) noexcept {
  is_ca = false;
  const X509_EXTENSION *extension = extension_of(cert, row::kBasicConstraints);
  if (!extension) return 0;
  BASIC_CONSTRAINTS *constraints = nullptr;
  if (const int code = X509_EXTENSION_to_BASIC_CONSTRAINTS_RFC5280(extension, &constraints)) return code;
  const owned<BASIC_CONSTRAINTS> owner(constraints);
  is_ca = constraints->ca != 0;
  return 0;
}

int check_kind(const ISSUING_DIST_POINT &scope, const X509_CERT &cert) noexcept {
  if (scope.onlyContainsAttributeCerts) return failure(ERR_CRL_SCOPE);
  if (!scope.onlyContainsUserCerts && !scope.onlyContainsCACerts) return 0;
  bool is_ca = false;
  if (const int code = read_is_ca(cert, is_ca)) return code;
  return (scope.onlyContainsUserCerts && is_ca) || (scope.onlyContainsCACerts && !is_ca) ? failure(ERR_CRL_SCOPE) : 0;
}

// A point with a list issuer of its own is for lists that others issue.
int match_points(const STACK &points, const PointNames &wanted, const X509_NAME *issuer, bool &partial) noexcept {
  bool some = false;
  for (const DIST_POINT *point : elements<DIST_POINT>(&points)) {
    PointNames names;
    if (!point || !point->distpoint || (point->CRLissuer && point->CRLissuer->count)) continue;
    if (!names.set(*point->distpoint, issuer)) return failure(kNoMemory);
    if (!names.has_one_of(wanted)) continue;
    if (!point->reasons) return 0;
    some = true;
  }
  partial |= some;
  return some ? 0 : failure(ERR_CRL_SCOPE);
}

// A certificate without distribution points counts as one with its issuer's name for one.
int match_certificate(const PointNames &wanted, const X509_CERT &cert, bool &partial) noexcept {
  X509_NAME *issuer = get_X509_issuer(&cert);
  const X509_EXTENSION *extension = extension_of(cert, row::kCrlDistributionPoints);
  if (!extension) {
    PointNames names;
    names.set_directory(issuer);
    return names.has_one_of(wanted) ? 0 : failure(ERR_CRL_SCOPE);
  }
  CRL_DIST_POINTS *points = nullptr;
  if (const int code = X509_EXTENSION_to_CRL_DIST_POINTS_RFC5280(extension, &points)) return code;
  const std::unique_ptr<STACK, ReleasePoints> owner(points);
  return match_points(*points, wanted, issuer, partial);
}

}  // namespace

int check_scope(const ISSUING_DIST_POINT &scope, const X509_CRL &crl, const X509_CERT &cert, bool &partial) noexcept {
  if (scope.indirectCRL) return failure(ERR_CRL_INDIRECT);
  if (const int code = check_kind(scope, cert)) return code;
  partial = scope.onlySomeReasons != nullptr;
  if (!scope.distpoint) return 0;
  PointNames wanted;
  if (!wanted.set(*scope.distpoint, get_X509_CRL_issuer(&crl))) return failure(kNoMemory);
  return match_certificate(wanted, cert, partial);
}

}  // namespace velpki
