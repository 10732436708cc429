// Building a path that validates: candidates are tried until one does, within limits of work.
#include <velpki/asn1_error.h>

#include "validation/internal/path_walk.h"

namespace velpki {

namespace {

constexpr int kLongestBuilt = 64;

constexpr int failure(int reason) noexcept { return fail(F_BUILD_CERTPATH, reason); }

bool has_key_id_of_issuer(const X509_CERT &candidate, const X509_CERT &cert) noexcept {
  const Octets wanted = issuer_key_id(cert), found = subject_key_id(candidate);
  return !wanted.empty() && std::equal(wanted.begin(), wanted.end(), found.begin(), found.end());
}

class StrictBuilder {
 public:
  StrictBuilder(const PathTask &task, const STACK *first_pool, const STACK *pool, CERTPATH_REPORT &report) noexcept
      : task_(task), pools_{first_pool, pool}, report_(report) {}

  int run(const X509_CERT &cert, bool want_policies) noexcept {
    want_policies_ = want_policies;
    path_[length_++] = &cert;
    if (extend()) return 0;
    if (no_memory_) return failure(kNoMemory);
    if (code_) return code_;
    return failure(task_.budget.is_spent() || too_long_ ? ERR_INVALID_MAX_PATH_LENGTH : ERR_NOT_FOUNDED);
  }
  std::span<const X509_CERT *const> path() const noexcept { return {path_, size_t(length_)}; }

 private:
  const X509_CERT &last() const noexcept { return *path_[length_ - 1]; }

  // Goes on from the last certificate: to an anchor, then to each issuer.
  bool extend() noexcept {
    if (ends_at_anchor() && validates()) return true;
    if (length_ == longest()) return too_long_ = true, false;
    const int mark = tried_.mark();
    for (const bool agrees : {true, false})
      for (const STACK *pool : pools_)
        for (const X509_CERT *each : elements<X509_CERT>(pool)) {
          if (stopped()) return false;
          if (each && try_issuer(*each, agrees, mark)) return true;
        }
    tried_.forget_from(mark);
    return false;
  }
  int longest() const noexcept {
    const int wanted = task_.settings.max_length > 0 ? task_.settings.max_length : kUsualLongestPath;
    return std::min(wanted, kLongestBuilt);
  }

  bool try_issuer(const X509_CERT &issuer, bool agrees, int mark) noexcept {
    if (!is_named(get_X509_subject(&issuer)) || is_on_path(issuer)) return false;
    if (has_key_id_of_issuer(issuer, last()) != agrees || !tried_.add(issuer, mark, task_.budget)) return false;
    if (!verifies(get_X509_SPKI(&issuer))) return false;
    path_[length_++] = &issuer;
    if (extend()) return true;
    --length_;
    return false;
  }
  // Whether the last certificate says that this is its issuer.
  bool is_named(const X509_NAME *name) noexcept {
    return task_.budget.comparison() && cmp_X509_NAME_RFC5280(name, get_X509_issuer(&last())) == 0;
  }
  bool verifies(const X509_PUBKEY *key) noexcept {
    if (!task_.budget.signature()) return false;
    const int code = verify_SIG_X509_CERT_RFC5280(&last(), key);
    no_memory_ = no_memory_ || reason_of(code) == kNoMemory;
    return code == 0;
  }
  bool ends_at_anchor() noexcept {
    for (const TRUST_ANCHOR *each : elements<TRUST_ANCHOR>(&task_.anchors))
      if (each && is_named(each->trustedCAName) && verifies(each->trustedCAKey)) return anchor_ = each, true;
    return false;
  }
  // The anchor's own certificate, where it counts and is there.
  const X509_CERT *certificate_of_anchor() const noexcept {
    if (!(task_.settings.flags & CERTPATH_ANCHOR_CONSTRAINTS)) return nullptr;
    for (const STACK *pool : pools_)
      for (const X509_CERT *each : elements<X509_CERT>(pool))
        if (each && task_.budget.comparison() &&
            cmp_X509_NAME_RFC5280(get_X509_subject(each), anchor_->trustedCAName) == 0 &&
            cmp_X509_PUBKEY(get_X509_SPKI(each), anchor_->trustedCAKey) == 0)
          return each;
    return nullptr;
  }

  // A name and key that are on the path already would only lead round.
  bool is_on_path(const X509_CERT &cert) const noexcept {
    for (const X509_CERT *each : path())
      if (cmp_X509_PUBKEY(get_X509_SPKI(each), get_X509_SPKI(&cert)) == 0 &&
          cmp_X509_NAME_RFC5280(get_X509_subject(each), get_X509_subject(&cert)) == 0)
        return true;
    return false;
  }

  bool validates() noexcept {
    StandardCerts standard;
    CERTPATH_REPORT found{-1, -1, nullptr};
    path_[length_] = certificate_of_anchor();
    const int count = length_ + (path_[length_] ? 1 : 0);
    STACK lent{count, reinterpret_cast<void **>(const_cast<X509_CERT **>(path_)), 0, count, nullptr};
    int code = standard.open(&lent, found.index);
    if (!code) code = validate_path(standard.certs(), task_, found, want_policies_);
    no_memory_ = no_memory_ || reason_of(code) == kNoMemory;
    code_ = code;
    report_ = found;
    return code == 0;
  }
  bool stopped() const noexcept { return task_.budget.is_spent() || no_memory_; }

  const PathTask &task_;
  const STACK *const pools_[2];
  CERTPATH_REPORT &report_;
  const TRUST_ANCHOR *anchor_ = nullptr;  // that the path ends at
  const X509_CERT *path_[kLongestBuilt + 1];
  int length_ = 0, code_ = 0;
  TriedCerts tried_;  // from each certificate of the path
  bool too_long_ = false, no_memory_ = false, want_policies_ = false;
};

STACK *copies_of(std::span<const X509_CERT *const> path) noexcept {
  STACK *copies = new_STACK();
  for (const X509_CERT *each : path)
    if (!insert_copy(copies, each, -1)) return destroy_list<X509_CERT>(copies), nullptr;
  return copies;
}

}  // namespace

// The anchor is that of the path. Revocation is asked for as for the path; the lists' signers that come up on the way
// are not validated again.
int verify_list_signer(const X509_CERT &signer, const VerifiedPath &path) noexcept {
  CERTPATH_SETTINGS settings = path.task.settings;
  settings.user_initial_policy_set = nullptr;
  settings.initial_explicit_policy = settings.key_usage = 0;
  settings.extended_key_usage = nullptr;
  void *anchor[] = {const_cast<TRUST_ANCHOR *>(&path.anchor)};
  const STACK anchors{1, anchor, 0, 1, nullptr};
  const STACK certs{int(path.certs.size()), reinterpret_cast<void **>(const_cast<X509_CERT **>(path.certs.data())), 0,
                    0, nullptr};
  CERTPATH_REPORT report{};
  const PathTask task{anchors, settings, path.task.lists, path.task.budget, true};
  return StrictBuilder(task, &certs, settings.pool, report).run(signer, false);
}

}  // namespace velpki

using namespace velpki;

int build_certPath_strict(STACK **path, const X509_CERT *cert, const STACK *pool, const TRUST_ANCHORS *anchors,
                          const CERTPATH_SETTINGS *settings, CERTPATH_REPORT *report) noexcept {
  static constexpr CERTPATH_SETTINGS kDefaults{};
  CERTPATH_REPORT found{-1, -1, nullptr};
  if (report) *report = found;
  if (!path || !cert || !pool || !anchors) return failure(kNullArgument);
  if (!settings) settings = &kDefaults;
  RevocationLists lists;
  if (const int code = asks_for_revocation(*settings) ? lists.open(settings->crls) : 0) return code;
  Budget budget(0, items_of(pool) + items_of(settings->pool) + items_of(anchors) + items_of(settings->crls));
  const PathTask task{*anchors, *settings, lists, budget, false};
  StrictBuilder builder(task, nullptr, pool, found);
  int code = builder.run(*cert, report);
  STACK *copies = code ? nullptr : copies_of(builder.path());
  if (!code && !copies) {
    code = failure(kNoMemory);
    free_CERTPATH_POLICIES(std::exchange(found.policies, nullptr));
  }
  if (report) *report = found;
  if (!code) *path = copies;
  return code;
}
