// Paths and policy sets that the tests of this folder share.
#pragma once

#include <velpki/cpv_validate.h>

#include <initializer_list>

#include "samples.h"

namespace test {

struct ReleasePath {
  void operator()(STACK *p) const { free_X509_CERTIFICATES(p); }
};
using Path = std::unique_ptr<STACK, ReleasePath>;

// A user's policies, and the levels of a tree.
struct ReleasePolicies {
  void operator()(STACK *p) const {
    free_STACK_values(p, [](void *oid) { free_OBJECT_IDENTIFIER(static_cast<OBJECT_IDENTIFIER *>(oid)); });
  }
};
using Policies = std::unique_ptr<STACK, ReleasePolicies>;
struct ReleaseTree {
  void operator()(node_LIST *p) const { free_node_LIST(p); }
};
using Tree = std::unique_ptr<node_LIST, ReleaseTree>;

inline Policies policies_of(const std::vector<std::string> &dotted) {
  Policies out(new_STACK());
  for (const std::string &each : dotted) push_STACK_value(out.get(), oid(each).release());
  return out;
}

// The settings of one row; the usual ones come back at its end.
struct Settings {
  Settings(int explicit_policy, int any_policy_inhibit) {
    set_initial_explicit_policy(explicit_policy);
    set_initial_any_policy_inhibit(any_policy_inhibit);
  }
  ~Settings() {
    set_initial_explicit_policy(0);
    set_initial_any_policy_inhibit(0);
  }
};

}  // namespace test
