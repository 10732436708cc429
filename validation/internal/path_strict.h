// Path validation after RFC 5280: what its halves, the path (6.1) and revocation (6.3), ask of each other.
#pragma once

#include <velpki/cpv_validate.h>

#include <span>

#include "validation/internal/path_budget.h"
#include "validation/internal/path_lists.h"

namespace velpki {

// What a validation is asked for, and what it goes by.
struct PathTask {
  const TRUST_ANCHORS &anchors;
  const CERTPATH_SETTINGS &settings;
  const RevocationLists &lists;
  Budget &budget;
  bool of_list_signer;  // another validation asks for it, because its end entity signed a revocation list
};

constexpr bool asks_for_revocation(const CERTPATH_SETTINGS &settings) noexcept {
  return settings.flags & (CERTPATH_CHECK_REVOCATION | CERTPATH_CHECK_REVOCATION_END_ENTITY);
}

// A path whose certificates have been verified, the end entity first. The last one was issued by the anchor.
struct VerifiedPath {
  std::span<const X509_CERT *const> certs;
  const TRUST_ANCHOR &anchor;
  const X509_CERT *anchor_cert;  // the anchor's own certificate, where what it says counts; else null
  const PathTask &task;
};

// 0 when the lists say that the certificate is not revoked, for every reason that there is.
int check_path_revocation(const VerifiedPath &path, int index) noexcept;

// 0 when a path leads from the signer of a list to the anchor, through certificates of the path and of the pool.
// Policies, usage and purpose are not asked for; revocation is, once: of a path that is of a list signer itself,
// nothing.
int verify_list_signer(const X509_CERT &signer, const VerifiedPath &path) noexcept;

}  // namespace velpki
