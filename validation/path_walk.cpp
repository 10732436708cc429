// The walk of RFC 5280 section 6.1, from the anchor to the end entity.
#include "validation/internal/path_walk.h"

#include <velpki/asn1_error.h>

#include "x509/internal/signature.h"

namespace velpki {

namespace {

constexpr int kWeakDigestLength = 28;
constexpr unsigned char kVersion3 = 2;

void lower(int &counter, int limit) noexcept { counter = std::min(counter, limit); }
void count_down(int &counter) noexcept {
  if (counter > 0) --counter;
}
int start_of(int inhibited, size_t certificates) noexcept { return inhibited ? 0 : int(certificates) + 1; }

bool is_self_issued(const X509_CERT &cert) noexcept {
  return cmp_X509_NAME_RFC5280(get_X509_issuer(&cert), get_X509_subject(&cert)) == 0;
}

int check_digest(const X509_CERT &cert) noexcept {
  int length = 0;
  const int code = digest_length_of_signed(received_whole(*cert.received), F_VALIDATE_CERTPATH, length);
  return code || length >= kWeakDigestLength ? code : path_failure(ERR_WEAK_DIGEST);
}

}  // namespace

int check_issued(const X509_CERT &cert, const X509_NAME *issuer, const X509_PUBKEY *key,
                 const PathTask &task) noexcept {
  if (!task.budget.comparison()) return path_failure(ERR_TOO_MUCH_WORK);
  if (cmp_X509_NAME_RFC5280(get_X509_issuer(&cert), issuer)) return path_failure(ERR_TBS_CERT_ISSUER);
  if (const int code = task.settings.flags & CERTPATH_ALLOW_WEAK_DIGESTS ? 0 : check_digest(cert)) return code;
  if (!task.budget.signature()) return path_failure(ERR_TOO_MUCH_WORK);
  const int code = verify_SIG_X509_CERT_RFC5280(&cert, key);
  if (code == kNoMemory) return path_failure(kNoMemory);
  const bool of_provider = code && code == reason_of(code);
  return of_provider ? path_failure(ERR_SIGNATURE_MISMATCH) : code;
}

PathWalk::PathWalk(const VerifiedPath &path) noexcept
    : path_(path),
      settings_(path.task.settings),
      names_(settings_.initial_permitted, settings_.initial_excluded),
      explicit_policy_(start_of(settings_.initial_explicit_policy, path.certs.size())),
      policy_mapping_(start_of(settings_.initial_policy_mapping_inhibit, path.certs.size())),
      any_policy_(start_of(settings_.initial_any_policy_inhibit, path.certs.size())),
      below_(int(path.certs.size())) {}

int PathWalk::run(STACK **policies) noexcept {
  if (const int code = names_.check_first()) return code;
  if (const int code = graph_.start()) return code;
  if (const int code = path_.anchor_cert ? apply_anchor(*path_.anchor_cert) : 0) return code;
  for (index_ = int(path_.certs.size()) - 1; index_ >= 0; --index_)
    if (const int code = step()) return code;
  return finish(policies);
}

// What an anchor's certificate says as an issuer, without its dates and signature.
int PathWalk::apply_anchor(const X509_CERT &anchor) noexcept {
  PathExtensions extensions;
  Authority authority;
  if (const int code = find_path_extensions(anchor, extensions)) return code;
  if (const int code = extensions.policies ? graph_.add(extensions.policies, true) : 0) return code;
  if (const int code = graph_.read_mappings(extensions.mappings)) return code;
  if (const int code = graph_.map(policy_mapping_ > 0)) return code;
  if (const int code = check_use(extensions, false)) return code;
  if (const int code = names_.add(extensions.name_constraints)) return code;
  if (const int code = limit_policies(extensions)) return code;
  if (const int code = read_authority(extensions.basic_constraints, authority)) return code;
  if (extensions.basic_constraints && !authority.is_one) return path_failure(ERR_INVALID_BASIC_CONSTRAINTS);
  lower(below_, authority.below);
  return 0;
}

int PathWalk::step() noexcept {
  const X509_CERT &cert = *path_.certs[size_t(index_)];
  const bool self_issued = is_self_issued(cert), last = index_ == 0;
  PathExtensions extensions;
  if (const int code = check_basics(cert)) return code;
  if (const int code = find_path_extensions(cert, extensions)) return code;
  const bool any_allowed = any_policy_ > 0 || (self_issued && !last);
  const X509_EXTENSION *names = extensions.alternative_names;
  if (const int code = self_issued && !last ? check_alternative_names(names) : names_.check(cert, names, last))
    return code;
  if (const int code = check_critical_points(extensions.distribution_points)) return code;
  if (const int code = check_policies(extensions, any_allowed)) return code;
  if (const int code = graph_.read_mappings(extensions.mappings)) return code;
  if (const int code = check_use(extensions, last)) return code;
  if (last) return end_with(extensions);
  if (get_X509_version(&cert) != kVersion3) return path_failure(ERR_TBS_CERT_VERSION);
  return prepare(extensions, self_issued);
}

// 6.1.3 (a). That an anchor issued the topmost is known.
int PathWalk::check_basics(const X509_CERT &cert) noexcept {
  const size_t above = size_t(index_) + 1;
  const X509_CERT *issuer = above < path_.certs.size() ? path_.certs[above] : nullptr;
  const int code = issuer ? check_issued(cert, get_X509_subject(issuer), get_X509_SPKI(issuer), path_.task) : 0;
  if (code) return code;
  const bool extended = get_X509_extensions(&cert), version3 = get_X509_version(&cert) == kVersion3;
  return extended && !version3 ? path_failure(ERR_TBS_CERT_VERSION)
                               : verify_X509_validity_RFC5280(&cert, settings_.time);
}

// 6.1.3 (d) to (f).
int PathWalk::check_policies(const PathExtensions &extensions, bool any_allowed) noexcept {
  if (const int code = graph_.add(extensions.policies, any_allowed)) return code;
  const bool missing = explicit_policy_ == 0 && graph_.is_empty();
  return missing ? path_failure(ERR_INVALID_VALID_POLICY_TREE) : 0;
}

int PathWalk::check_use(const PathExtensions &extensions, bool last) noexcept {
  bool allowed = true;
  Usage usage;
  if (const int code = read_purpose(extensions.purposes, settings_.extended_key_usage, allowed)) return code;
  if (!allowed) return path_failure(ERR_EXTENDED_KEY_USAGE);
  if (const int code = read_usage(extensions.key_usage, usage)) return code;
  const unsigned wanted = last ? unsigned(settings_.key_usage) : 1u << KEY_USAGE_KEY_CERT_SIGN;
  return usage.stated && (usage.mask & wanted) != wanted ? path_failure(ERR_INVALID_KEY_USAGE) : 0;
}

// 6.1.4 (a) to (m); keyCertSign (n) is looked at before.
int PathWalk::prepare(const PathExtensions &extensions, bool self_issued) noexcept {
  if (const int code = graph_.map(policy_mapping_ > 0)) return code;
  if (const int code = names_.add(extensions.name_constraints)) return code;
  if (!self_issued) {
    for (int *counter : {&explicit_policy_, &policy_mapping_, &any_policy_}) count_down(*counter);
  }
  if (const int code = limit_policies(extensions)) return code;
  return become_issuer(extensions, self_issued);
}

// 6.1.4 (i) and (j).
int PathWalk::limit_policies(const PathExtensions &extensions) noexcept {
  PolicyLimits limits;
  int any_policy = INT_MAX;
  if (const int code = read_policy_limits(extensions.policy_constraints, limits)) return code;
  if (const int code = read_inhibit_any_policy(extensions.inhibit_any_policy, any_policy)) return code;
  lower(explicit_policy_, limits.require_explicit);
  lower(policy_mapping_, limits.inhibit_mapping);
  lower(any_policy_, any_policy);
  return 0;
}

// 6.1.4 (k) to (m).
int PathWalk::become_issuer(const PathExtensions &extensions, bool self_issued) noexcept {
  Authority authority;
  if (const int code = read_authority(extensions.basic_constraints, authority)) return code;
  if (!authority.is_one) return path_failure(ERR_INVALID_BASIC_CONSTRAINTS);
  if (!self_issued && below_-- <= 0) return path_failure(ERR_PATH_LENGTH_CONSTRAINT);
  lower(below_, authority.below);
  return 0;
}

// 6.1.5 (a) and (b), and that the rest of an end entity can be read. Only authorities constrain names.
int PathWalk::end_with(const PathExtensions &extensions) noexcept {
  Authority authority;
  PolicyLimits limits;
  int any_policy = INT_MAX;
  if (const int code = read_authority(extensions.basic_constraints, authority)) return code;
  if (const int code = names_.add(extensions.name_constraints)) return code;
  if (extensions.name_constraints && !authority.is_one) return path_failure(ERR_NAME_CONSTRAINTS);
  if (const int code = read_policy_limits(extensions.policy_constraints, limits)) return code;
  if (const int code = read_inhibit_any_policy(extensions.inhibit_any_policy, any_policy)) return code;
  count_down(explicit_policy_);
  if (limits.require_explicit == 0) explicit_policy_ = 0;
  return 0;
}

// 6.1.5 (g).
int PathWalk::finish(STACK **policies) noexcept {
  bool some = false;
  STACK *found = nullptr;
  if (const int code = graph_.wrap_up(settings_.user_initial_policy_set, policies ? &found : nullptr, some))
    return code;
  if (explicit_policy_ > 0 || some) return policies ? (*policies = found, 0) : 0;
  destroy_list<ASN1_STRING>(found);
  return path_failure(ERR_INVALID_VALID_POLICY_TREE);
}

}  // namespace velpki
