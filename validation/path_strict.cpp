// validate_certpath_strict: certificates in standard form, the anchor of their path, the walk, and revocation.
#include <velpki/asn1_error.h>

#include "validation/internal/path_walk.h"
#include "x509/internal/received.h"

namespace velpki {

namespace {

constexpr int kAnchorTries = 64;  // anchors of the right name whose key is tried

using Certs = std::span<const X509_CERT *const>;

int index_of_anchor(const PathTask &task, const X509_CERT &cert) noexcept {
  for (int i = 0; i < task.anchors.count && task.budget.comparison(); ++i) {
    const auto *each = element<TRUST_ANCHOR>(&task.anchors, i);
    const bool same = each && cmp_X509_NAME_RFC5280(each->trustedCAName, get_X509_subject(&cert)) == 0 &&
                      cmp_X509_PUBKEY(each->trustedCAKey, get_X509_SPKI(&cert)) == 0;
    if (same) return i;
  }
  return -1;
}

// Takes the anchors' own certificates off the end; the last one taken, null for none.
const X509_CERT *take_off_anchors(Certs &certs, const PathTask &task) noexcept {
  const X509_CERT *taken = nullptr;
  while (certs.size() > 1 && index_of_anchor(task, *certs.back()) >= 0) {
    taken = certs.back();
    certs = certs.first(certs.size() - 1);
  }
  return taken;
}

// The first anchor whose key verifies the topmost certificate; or why the last one of its issuer's name did not.
int find_anchor(const X509_CERT &top, const PathTask &task, int &index) noexcept {
  int code = path_failure(ERR_INVALID_TRUST_ANCHOR), tries = kAnchorTries;
  for (int i = 0; i < task.anchors.count && tries > 0; ++i) {
    const auto *each = element<TRUST_ANCHOR>(&task.anchors, i);
    const int step = each ? check_issued(top, each->trustedCAName, each->trustedCAKey, task) : 0;
    if (!each || reason_of(step) == ERR_TBS_CERT_ISSUER) continue;
    if (!step) return index = i, 0;
    code = step;
    if (task.budget.is_spent()) break;
    --tries;
  }
  return code;
}

int check_revocation(const VerifiedPath &path, int &index) noexcept {
  const int flags = path.task.settings.flags;
  if (!asks_for_revocation(path.task.settings)) return 0;
  const int count = flags & CERTPATH_CHECK_REVOCATION ? int(path.certs.size()) : 1;
  for (index = 0; index < count; ++index)
    if (const int code = check_path_revocation(path, index)) return code;
  return index = -1, 0;
}

int walk(const VerifiedPath &path, CERTPATH_REPORT &report, STACK **policies) noexcept {
  PathWalk walk(path);
  const int code = walk.run(policies);
  report.index = walk.index();
  return code ? code : check_revocation(path, report.index);
}

}  // namespace

int validate_path(Certs certs, const PathTask &task, CERTPATH_REPORT &report, bool want_policies) noexcept {
  const CERTPATH_SETTINGS &settings = task.settings;
  const X509_CERT *given = take_off_anchors(certs, task);
  const int longest = settings.max_length > 0 ? settings.max_length : kUsualLongestPath;
  if (certs.size() > size_t(longest)) return path_failure(ERR_INVALID_MAX_PATH_LENGTH);
  report.index = int(certs.size()) - 1;
  int anchor = -1;
  if (const int code = find_anchor(*certs.back(), task, anchor)) return code;
  report.anchor = anchor;
  const bool constrained = settings.flags & CERTPATH_ANCHOR_CONSTRAINTS;
  if (!constrained || !given || index_of_anchor(task, *given) != anchor) given = nullptr;
  if (task.budget.is_spent()) return path_failure(ERR_TOO_MUCH_WORK);
  const VerifiedPath path{certs, *element<TRUST_ANCHOR>(&task.anchors, anchor), given, task};
  STACK *policies = nullptr;
  const int code = walk(path, report, want_policies ? &policies : nullptr);
  if (code) return free_CERTPATH_POLICIES(policies), code;
  report.policies = policies;
  return 0;
}

StandardCerts::~StandardCerts() {
  free_STACK(list_);
  destroy_list<X509_CERT>(made_);
}

int StandardCerts::add(const X509_CERT *cert) noexcept {
  if (!cert || !cert->received) return path_failure(kNullArgument);
  if (cert->received->standard)
    return push_STACK_value(list_, const_cast<X509_CERT *>(cert)) ? 0 : path_failure(kNoMemory);
  const Octets whole = received_whole(*cert->received);
  X509_CERT *read = nullptr;
  if (const int code = readDER_X509_CERT_from_Binary_RFC5280(&read, whole.data(), int(whole.size()))) return code;
  owned<X509_CERT> made(read);
  return append(made_, made) && push_STACK_value(list_, read) ? 0 : path_failure(kNoMemory);
}

int StandardCerts::open(const STACK *certs, int &index) noexcept {
  list_ = new_STACK();
  made_ = new_STACK();
  const bool made = list_ && made_ && reserve_stack(list_, certs->count) && reserve_stack(made_, certs->count);
  if (!made) return path_failure(kNoMemory);
  for (index = 0; index < certs->count; ++index)
    if (const int code = add(element<X509_CERT>(certs, index))) return code;
  return index = -1, 0;
}

}  // namespace velpki

using namespace velpki;

int validate_certpath_strict(const STACK *certs, const TRUST_ANCHORS *anchors, const CERTPATH_SETTINGS *settings,
                             CERTPATH_REPORT *report) noexcept {
  static constexpr CERTPATH_SETTINGS kDefaults{};
  CERTPATH_REPORT found{-1, -1, nullptr};
  if (!settings) settings = &kDefaults;
  StandardCerts standard;
  RevocationLists lists;
  int code = certs && certs->count > 0 && anchors ? 0 : path_failure(kNullArgument);
  if (!code && asks_for_revocation(*settings)) code = lists.open(settings->crls);
  if (!code) code = standard.open(certs, found.index);
  if (!code) {
    Budget budget(certs->count,
                  items_of(certs) + items_of(settings->pool) + items_of(anchors) + items_of(settings->crls));
    code = validate_path(standard.certs(), {*anchors, *settings, lists, budget, false}, found, report);
  }
  if (report) *report = found;
  return code;
}

void free_CERTPATH_POLICIES(STACK *policies) noexcept { destroy_list<ASN1_STRING>(policies); }
