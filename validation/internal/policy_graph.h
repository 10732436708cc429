// The valid policies of a path as a graph (RFC 5280 6.1.2, in the form of RFC 9618: a policy is one node of a level,
// whatever leads to it).
#pragma once

#include "validation/internal/path_extensions.h"

namespace velpki {

// The policies at one depth. What they are spelled with belongs to the records of the certificate.
struct PolicyLevel {
  struct Node {
    std::string_view policy;
    int parents;  // the first of its links, or kFromAny
    bool mapped, reached;
  };
  struct Link {
    int parent;  // a node of the level above
    int next;
  };
  static constexpr int kFromAny = -1;

  PolicyLevel *above;
  STACK *policies, *mappings;
  Node *nodes;
  int count;
  Link *links;
  int link_count;
  bool any;  // anyPolicy is valid too
};

class PolicyGraph {
 public:
  PolicyGraph() noexcept = default;
  PolicyGraph(const PolicyGraph &) = delete;
  PolicyGraph &operator=(const PolicyGraph &) = delete;
  ~PolicyGraph();

  int start() noexcept;
  // The policies of a certificate (6.1.3 d, e). `any_allowed`: its anyPolicy counts.
  int add(const X509_EXTENSION *policies, bool any_allowed) noexcept;
  // Its mappings, of which none may be of anyPolicy (6.1.4 a).
  int read_mappings(const X509_EXTENSION *mappings) noexcept;
  // The level of what these make of its policies (6.1.4 b).
  int map(bool allowed) noexcept;
  bool is_empty() const noexcept { return level_->count == 0 && !level_->any; }
  // Whether there are policies of the user that the path is valid for (6.1.5 g). They go to `out`, a new list, unless
  // that is null.
  int wrap_up(const STACK *user, STACK **out, bool &some) noexcept;

 private:
  int descend(int nodes, int links) noexcept;
  int sort_listed(std::string_view *listed, int &count, bool &any) const noexcept;
  int keep_listed(bool any_allowed) noexcept;
  void add_from_any(const std::string_view *policies, int count) noexcept;
  int mark_mapped() noexcept;
  void drop_mapped() noexcept;
  int pass_on(const STACK *mappings) noexcept;
  void arrive(std::string_view policy, int parent) noexcept;
  bool collect(const STACK *user, STACK *out, bool &some) noexcept;

  PolicyLevel *level_ = nullptr;  // the deepest
};

}  // namespace velpki
