// Which certificates a revocation list covers (RFC 5280 5.2.5, 6.3.3 b).
#include <velpki/asn1_error.h>

#include "x509/internal/crl_check.h"
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
    if (name.name) set_list(*name.name);
    return true;
  }
  void set_list(const STACK &names) noexcept { names_ = {names.data, size_t(names.count)}; }
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

Reasons reasons_of(const BIT_STRING *flags) noexcept {
  Reasons found = 0;
  for (int bit = 1; bit <= 8; ++bit) found |= has_KEY_USAGE(flags, bit) ? 1u << bit : 0;
  return flags ? found : kAllReasons;
}

bool is_among(const X509_NAME *name, const GENERAL_NAMES *names) noexcept {
  for (const GENERAL_NAME *each : elements<GENERAL_NAME>(names))
    if (each && each->type == GENERAL_NAME_DIRECTORY &&
        cmp_X509_NAME_RFC5280(static_cast<const X509_NAME *>(each->value), name) == 0)
      return true;
  return false;
}

// What a list stands for, and the reasons for which points of a certificate have it.
class Coverage {
 public:
  Coverage(const X509_CRL &crl, const ISSUING_DIST_POINT *scope, const X509_CERT &cert) noexcept
      : scope_(scope), issuer_(get_X509_CRL_issuer(&crl)), cert_issuer_(get_X509_issuer(&cert)) {
    direct_ = cmp_X509_NAME_RFC5280(issuer_, cert_issuer_) == 0;
  }

  int run(const X509_CERT &cert, Reasons &out) noexcept {
    if (!direct_ && !(scope_ && scope_->indirectCRL)) return failure(ERR_CRL_ISSUER);
    if (scope_ && scope_->distpoint && !names_.set(*scope_->distpoint, issuer_)) return failure(kNoMemory);
    const X509_EXTENSION *points = extension_of(cert, row::kCrlDistributionPoints);
    if (direct_ && (any_point() || (!points && is_point_of_issuer()))) found_ = kAllReasons;
    if (const int code = points && found_ != kAllReasons ? add_points(*points) : 0) return code;
    out = found_ & reasons_of(scope_ ? scope_->onlySomeReasons : nullptr);
    return found_ ? 0 : failure(ERR_CRL_SCOPE);
  }

 private:
  bool any_point() const noexcept { return !scope_ || !scope_->distpoint; }

  // A certificate without points counts as one with its issuer's name for one.
  bool is_point_of_issuer() const noexcept {
    PointNames names;
    names.set_directory(cert_issuer_);
    return names.has_one_of(names_);
  }

  int add_points(const X509_EXTENSION &extension) noexcept {
    CRL_DIST_POINTS *points = nullptr;
    if (const int code = X509_EXTENSION_to_CRL_DIST_POINTS_RFC5280(&extension, &points)) return code;
    const std::unique_ptr<STACK, ReleasePoints> owner(points);
    for (const DIST_POINT *each : elements<DIST_POINT>(points))
      if (const int code = each ? add(*each) : 0) return code;
    return 0;
  }

  // A point may name the issuer of its lists; then they are indirect ones.
  int add(const DIST_POINT &point) noexcept {
    const bool named = point.CRLissuer && point.CRLissuer->count;
    const bool mine = named ? scope_ && scope_->indirectCRL && is_among(issuer_, point.CRLissuer) : direct_;
    bool matches = false;
    if (const int code = mine ? match(point, named, matches) : 0) return code;
    if (matches) found_ |= reasons_of(point.reasons);
    return 0;
  }
  int match(const DIST_POINT &point, bool named, bool &matches) noexcept {
    PointNames names;
    if (point.distpoint && !names.set(*point.distpoint, named ? issuer_ : cert_issuer_)) return failure(kNoMemory);
    if (!point.distpoint && named) names.set_list(*point.CRLissuer);
    matches = any_point() || names.has_one_of(names_);
    return 0;
  }

  const ISSUING_DIST_POINT *scope_;
  X509_NAME *issuer_, *cert_issuer_;
  bool direct_;
  PointNames names_;  // of the list's own point
  Reasons found_ = 0;
};

}  // namespace

int find_coverage(const X509_CRL &crl, const ISSUING_DIST_POINT *scope, const X509_CERT &cert, Reasons &out) noexcept {
  out = 0;
  if (const int code = scope ? check_kind(*scope, cert) : 0) return code;
  return Coverage(crl, scope, cert).run(cert, out);
}

}  // namespace velpki
