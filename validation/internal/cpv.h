// Path validation from the inside.
#pragma once

#include <velpki/cpv_validate.h>

#include "validation/internal/ctl.h"
#include "validation/internal/extension.h"
#include "x509/internal/x509v3.h"

namespace velpki {

VELPKI_FLAT_WITHOUT_DUP(VALID_POLICY_DATA)
VELPKI_FLAT_WITHOUT_DUP(VALID_POLICY_NODE)

template <>
struct Flat<node_LIST> {
  static void release(node_LIST *list) noexcept { free_node_LIST(list); }
};

inline constexpr std::string_view kKeyUsageOid = "2.5.29.15", kBasicConstraintsOid = "2.5.29.19",
                                  kPoliciesOid = "2.5.29.32", kAnyPolicy = "2.5.29.32.0",
                                  kPolicyConstraintsOid = "2.5.29.36", kInhibitAnyPolicyOid = "2.5.29.54";

// keyCertSign as it stands in the first octet of a key usage.
inline constexpr uint8_t kKeyCertSign = 0x04;
// The octet that is true for cA.
inline constexpr int kTrue = 0xFF;

// What path validation asks of an extension: 0 with null where it is absent, or `function` with 0E or 3C.
int read_basic_constraints(const X509_CERT &cert, int function, owned<BASIC_CONSTRAINTS> &out) noexcept;
// Whether keyCertSign is among the usages, and whether there are any.
struct KeyUsage {
  bool present = false, cert_sign = false;
};
int read_key_usage(const X509_CERT &cert, int function, KeyUsage &out) noexcept;

// The identifiers of a certificate's key and of its issuer's, in the extensions' octets; empty for none.
Octets subject_key_id(const X509_CERT &cert) noexcept;
Octets issuer_key_id(const X509_CERT &cert) noexcept;

// The tree of one validation, which the walk extends level by level.
class PolicyTree {
 public:
  explicit PolicyTree(node_LIST *root) noexcept : root_(root), above_(root) {}
  // The root level's node of anyPolicy, made where it is missing.
  int start() noexcept;
  // The level of a certificate at a depth of the path.
  int extend(const X509_CERT &cert, int depth) noexcept;
  // Cuts the tree down, with a set of the user's to its policies; the levels that are left.
  node_LIST *wrap_up(const STACK *user_policies) noexcept;

 private:
  bool go_above(int depth) noexcept;
  int add_children(VALID_POLICY_NODE &parent, const STACK &policies, VALID_POLICY_NODES &level) noexcept;
  int add_matching(VALID_POLICY_NODE &parent, const OBJECT_IDENTIFIER *expected, const STACK &policies,
                   VALID_POLICY_NODES &level) noexcept;
  int add_child(VALID_POLICY_NODE &parent, const OBJECT_IDENTIFIER &policy, VALID_POLICY_NODES &level) noexcept;

  node_LIST *root_;
  node_LIST *above_;  // the level at above_depth_
  int above_depth_ = 0;
  int nodes_left_ = 10000;
  int comparisons_left_ = 10000000;
};
bool holds_any_policy(const STACK *policies) noexcept;

}  // namespace velpki
