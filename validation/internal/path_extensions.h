// The extensions of a certificate that path validation processes (RFC 5280 6.1).
#pragma once

#include "validation/internal/extension.h"
#include "x509/internal/x509v3.h"

namespace velpki {

constexpr int path_failure(int reason) noexcept { return fail(F_VALIDATE_CERTPATH, reason); }

// Null where a certificate has none.
struct PathExtensions {
  const X509_EXTENSION *key_usage = nullptr, *alternative_names = nullptr, *basic_constraints = nullptr,
                       *name_constraints = nullptr, *distribution_points = nullptr, *policies = nullptr,
                       *mappings = nullptr, *policy_constraints = nullptr, *purposes = nullptr,
                       *inhibit_any_policy = nullptr;
};

// One that stands twice, or is critical and not among these, fails.
int find_path_extensions(const X509_CERT &cert, PathExtensions &out) noexcept;

// What the values say, in standard form. An extension that is absent says what the record says when it is new.
struct Authority {
  bool is_one = false;
  int below = INT_MAX;  // authorities that may follow
};
int read_authority(const X509_EXTENSION *extension, Authority &out) noexcept;
struct Usage {
  bool stated = false;
  unsigned mask = 0;  // of 1 << KEY_USAGE_
};
int read_usage(const X509_EXTENSION *extension, Usage &out) noexcept;
struct PolicyLimits {
  int require_explicit = INT_MAX, inhibit_mapping = INT_MAX;  // certificates that may be skipped
};
int read_policy_limits(const X509_EXTENSION *extension, PolicyLimits &out) noexcept;
int read_inhibit_any_policy(const X509_EXTENSION *extension, int &out) noexcept;
// Only whether the values can be read; of distribution points where they are critical.
int check_critical_points(const X509_EXTENSION *extension) noexcept;
int check_alternative_names(const X509_EXTENSION *extension) noexcept;
// Whether a list of purposes allows one; null for the list or the purpose allows all.
int read_purpose(const X509_EXTENSION *extension, const OBJECT_IDENTIFIER *purpose, bool &allowed) noexcept;

}  // namespace velpki
