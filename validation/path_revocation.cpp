// What revocation lists say about a certificate of a path (RFC 5280 6.3).
#include <velpki/asn1_error.h>

#include "validation/internal/path_strict.h"
#include "x509/internal/crl_check.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(kCrlModule, reason); }

bool same_value(const X509_EXTENSION *a, const X509_EXTENSION *b) noexcept {
  return a && b ? same_octets(a->value, b->value) : a == b;
}

int find_entry(const X509_CRL &crl, bool indirect, const X509_CERT &cert, X509_REVOKED *&entry) noexcept {
  if (indirect) return find_listed_of_issuer(crl, cert, entry);
  if (const int fault = entries_fault(crl)) return failure(fault);
  return find_listed(crl, cert, entry);
}

int size_of_points(const X509_CERT &cert) noexcept {
  const X509_EXTENSIONS *list = get_X509_extensions(&cert);
  const int index = get_X509_EXTENSION_index_by_OID_index(list, row::kCrlDistributionPoints, -1);
  const X509_EXTENSION *points = index < 0 ? nullptr : get_X509_EXTENSION(list, index);
  return points && points->value ? points->value->length : 0;
}

// A complete list that is being looked at.
struct List {
  const X509_CRL &crl;
  const ListExtensions &extensions;
  bool indirect = false;
  const X509_PUBKEY *key = nullptr;  // that signed it
};

class Status {
 public:
  Status(const VerifiedPath &path, int index) noexcept
      : path_(path), index_(size_t(index)), budget_(path.task.budget), size_of_points_(size_of_points(cert())) {}

  int run() noexcept {
    for (const PathList &each : path_.task.lists.complete()) {
      const int code = consider(each);
      if (budget_.is_spent()) return failure(ERR_TOO_MUCH_WORK);
      if (reason_of(code) == ERR_CERT_REVOKED || reason_of(code) == kNoMemory) return code;
      if (code) note(code);
      if (covered_ == kAllReasons) return 0;
    }
    if (covered_) return failure(ERR_CRL_REASONS);
    return why_not_ ? why_not_ : failure(ERR_CRL_MISSING);
  }

 private:
  const X509_CERT &cert() const noexcept { return *path_.certs[index_]; }

  // Why no list gave an answer: the first one that would have been about the certificate.
  void note(int code) noexcept {
    const bool other = reason_of(code) == ERR_CRL_ISSUER || reason_of(code) == ERR_CRL_SCOPE;
    if (!other && !why_not_) why_not_ = code;
  }

  // Newer lists were looked at before: what they cover is decided.
  int consider(const PathList &candidate) noexcept {
    List list{*candidate.crl, candidate.extensions};
    Reasons reasons = 0;
    if (candidate.fault) return candidate.fault;
    if (!budget_.comparisons(names_compared(candidate))) return failure(ERR_TOO_MUCH_WORK);
    if (const int code = read_coverage(list, reasons)) return code;
    if (!(reasons & ~covered_)) return 0;
    if (const int code = check_list_dates(list.crl, path_.task.settings.time)) return code;
    if (const int code = find_signer(list)) return code;
    if (const int code = look_up(list)) return code;
    covered_ |= reasons;
    return 0;
  }
  // About as many as there may be names of the list's point beside names of the certificate's.
  int64_t names_compared(const PathList &list) const noexcept {
    constexpr int kOctetsOfName = 64;
    const X509_EXTENSION *scope = list.extensions.scope;
    const int64_t size = scope && scope->value ? scope->value->length : 0;
    return 1 + size / kOctetsOfName * (1 + size_of_points_ / kOctetsOfName);
  }
  int read_coverage(List &list, Reasons &reasons) noexcept {
    owned<ISSUING_DIST_POINT> scope;
    if (const int code = read_scope(list.extensions, scope)) return code;
    list.indirect = scope && scope->indirectCRL;
    return find_coverage(list.crl, scope.get(), cert(), reasons);
  }

  // What the newest delta says goes before what the list says.
  int look_up(const List &list) noexcept {
    X509_REVOKED *entry = nullptr;
    const X509_CRL &newest = newest_of(list);
    if (const int code = find_entry(newest, list.indirect, cert(), entry)) return code;
    const bool go_on = !entry && &newest != &list.crl;
    if (const int code = go_on ? find_entry(list.crl, list.indirect, cert(), entry) : 0) return code;
    return entry && !takes_back(*entry) ? failure(ERR_CERT_REVOKED) : 0;
  }

  // The newest delta list that goes on from a list (RFC 5280 6.3.3 c) and beyond it, or the list itself.
  const X509_CRL &newest_of(const List &list) noexcept {
    const ListNumber complete = number_in(list.extensions.number);
    for (const PathList &each : path_.task.lists.deltas()) {
      const ListNumber base = number_in(each.extensions.base);
      const bool fits = complete.known && base.known && !is_less(complete, base) && is_less(complete, each.number);
      if (!budget_.comparison()) break;
      if (fits && goes_with(list, *each.crl, each.extensions)) return *each.crl;
    }
    return list.crl;
  }
  bool goes_with(const List &list, const X509_CRL &delta, const ListExtensions &extensions) noexcept {
    return cmp_X509_NAME_RFC5280(get_X509_CRL_issuer(&delta), get_X509_CRL_issuer(&list.crl)) == 0 &&
           same_value(extensions.scope, list.extensions.scope) &&
           same_value(extensions.authority_key, list.extensions.authority_key) &&
           check_list_dates(delta, path_.task.settings.time) == 0 && verify(delta, list.key) == 0;
  }

  // The key that signed a list is the anchor's, or of a certificate above on the path, or of one of the pool that has a
  // path of its own. 0, or why the last one of the right name did not.
  int find_signer(List &list) noexcept {
    int code = failure(ERR_CRL_ISSUER);
    tried_.forget_from(0);
    for (size_t i = index_ + 1; i < path_.certs.size() && code; ++i) try_certificate(list, *path_.certs[i], code);
    if (code && is_issuer(list, path_.anchor.trustedCAName)) code = try_anchor(list);
    if (!code || path_.task.of_list_signer) return code;
    for (const X509_CERT *each : elements<X509_CERT>(path_.task.settings.pool)) {
      if (each && try_certificate(list, *each, code)) code = verify_signer(*each);
      if (!code || reason_of(code) == kNoMemory) break;
    }
    return code;
  }
  int try_anchor(List &list) noexcept {
    if (const int code = path_.anchor_cert ? check_list_key_usage(*path_.anchor_cert) : 0) return code;
    return try_key(list, path_.anchor.trustedCAKey);
  }
  bool is_issuer(const List &list, const X509_NAME *name) noexcept {
    return budget_.comparison() && cmp_X509_NAME_RFC5280(get_X509_CRL_issuer(&list.crl), name) == 0;
  }
  // Whether a certificate's key signed the list. Leaves the code as it is of those with other names, and of those that
  // were tried.
  bool try_certificate(List &list, const X509_CERT &signer, int &code) noexcept {
    if (!is_issuer(list, get_X509_subject(&signer)) || !tried_.add(signer, 0, budget_)) return false;
    code = check_list_key_usage(signer);
    if (!code) code = try_key(list, get_X509_SPKI(&signer));
    return !code;
  }
  int verify_signer(const X509_CERT &signer) noexcept {
    return budget_.list_signer() ? verify_list_signer(signer, path_) : failure(ERR_TOO_MUCH_WORK);
  }
  int try_key(List &list, const X509_PUBKEY *key) noexcept {
    list.key = key;
    return verify(list.crl, key);
  }
  int verify(const X509_CRL &crl, const X509_PUBKEY *key) noexcept {
    if (!budget_.signature()) return failure(ERR_TOO_MUCH_WORK);
    const int code = check_list_signature(crl, key);
    const bool of_provider = code == reason_of(code);
    return code && of_provider ? failure(code == kNoMemory ? kNoMemory : ERR_SIGNATURE_MISMATCH) : code;
  }

  const VerifiedPath &path_;
  const size_t index_;
  Budget &budget_;
  const int size_of_points_;  // octets of the certificate's distribution points
  Reasons covered_ = 0;
  int why_not_ = 0;
  TriedCerts tried_;  // for one list
};

}  // namespace

int check_path_revocation(const VerifiedPath &path, int index) noexcept { return Status(path, index).run(); }

}  // namespace velpki
