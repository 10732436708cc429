// Validation after RFC 5280 from the inside: the walk over a path, and the path around it.
#pragma once

#include "validation/internal/cpv.h"
#include "validation/internal/name_constraints.h"
#include "validation/internal/path_strict.h"
#include "validation/internal/policy_graph.h"

namespace velpki {

inline constexpr int kUsualLongestPath = 16;

// Whether a name and key issued a certificate that keeps its received octets.
int check_issued(const X509_CERT &cert, const X509_NAME *issuer, const X509_PUBKEY *key, const PathTask &task) noexcept;

// The certificates of a list as the standard reads them.
class StandardCerts {
 public:
  StandardCerts() noexcept = default;
  StandardCerts(const StandardCerts &) = delete;
  StandardCerts &operator=(const StandardCerts &) = delete;
  ~StandardCerts();
  int open(const STACK *certs, int &index) noexcept;  // `index` is of the one that failed, else -1
  std::span<const X509_CERT *const> certs() const noexcept {
    return {list_->data ? reinterpret_cast<const X509_CERT *const *>(list_->data) : nullptr, size_t(list_->count)};
  }

 private:
  int add(const X509_CERT *cert) noexcept;

  STACK *list_ = nullptr;  // lent: of the caller's list or of `made_`
  STACK *made_ = nullptr;
};

// One validation of 6.1 without the search for an anchor: the last certificate is known to be issued by it.
class PathWalk {
 public:
  explicit PathWalk(const VerifiedPath &path) noexcept;
  int run(STACK **policies) noexcept;
  int index() const noexcept { return index_; }  // of the certificate that failed, -1 for none

 private:
  int apply_anchor(const X509_CERT &anchor) noexcept;
  int step() noexcept;
  int check_basics(const X509_CERT &cert) noexcept;
  int check_policies(const PathExtensions &extensions, bool any_allowed) noexcept;
  int check_use(const PathExtensions &extensions, bool last) noexcept;
  int prepare(const PathExtensions &extensions, bool self_issued) noexcept;
  int become_issuer(const PathExtensions &extensions, bool self_issued) noexcept;
  int limit_policies(const PathExtensions &extensions) noexcept;
  int end_with(const PathExtensions &extensions) noexcept;
  int finish(STACK **policies) noexcept;

  const VerifiedPath &path_;
  const CERTPATH_SETTINGS &settings_;
  NameConstraints names_;
  PolicyGraph graph_;
  int index_ = -1;
  int explicit_policy_, policy_mapping_, any_policy_;
  int below_;  // authorities that may still follow
};

// Finds the anchor of certificates in standard form, and validates the path from it. The report is in its first state.
int validate_path(std::span<const X509_CERT *const> certs, const PathTask &task, CERTPATH_REPORT &report,
                  bool want_policies) noexcept;

}  // namespace velpki
