// The valid policy tree as a path is walked: levels are added, and at the end cut down.
#include <velpki/asn1_error.h>

#include "validation/internal/cpv.h"

namespace velpki {

namespace {

constexpr int tree_failure(int reason) noexcept { return fail(F_ADD_VALID_POLICY_TREE_LIST, reason); }
constexpr int kTooLarge = tree_failure(ERR_INVALID_VALID_POLICY_TREE);

bool is_any(const OBJECT_IDENTIFIER *policy) noexcept { return policy && text(*policy) == kAnyPolicy; }

bool is_childless(const VALID_POLICY_NODE *node) noexcept { return !node || node->child_count < 1; }

// A node for a policy, which is all that it expects below.
owned<VALID_POLICY_NODE> new_policy_node(const OBJECT_IDENTIFIER &policy) noexcept {
  owned<VALID_POLICY_NODE> node(new_VALID_POLICY_NODE());
  owned<VALID_POLICY_DATA> data(new_VALID_POLICY_DATA());
  owned<OBJECT_IDENTIFIER> expected(Flat<OBJECT_IDENTIFIER>::copy(&policy));
  if (!node || !data || !append(data->expected_policy_set, expected)) return nullptr;
  data->valid_policy = Flat<OBJECT_IDENTIFIER>::copy(&policy);
  if (!data->valid_policy) return nullptr;
  node->data = data.release();
  return node;
}

void drop_node(VALID_POLICY_NODE *node) noexcept {
  if (node && node->parent) --node->parent->child_count;
  free_VALID_POLICY_NODE(node);
}

// Drops the nodes that `unwanted` says; what follows a dropped node is not asked where `skips_next`.
template <class F>
void cut(VALID_POLICY_NODES *nodes, bool skips_next, F &&unwanted) noexcept {
  if (!nodes) return;
  int kept = 0;
  for (int i = 0; i < nodes->count; ++i) {
    auto *node = static_cast<VALID_POLICY_NODE *>(nodes->data[i]);
    if (!unwanted(node)) {
      nodes->data[kept++] = node;
      continue;
    }
    drop_node(node);
    if (skips_next && i + 1 < nodes->count) nodes->data[kept++] = nodes->data[++i];
  }
  nodes->count = kept;
}

void mark(VALID_POLICY_NODES &nodes, int criticality) noexcept {
  for (VALID_POLICY_NODE *node : elements<VALID_POLICY_NODE>(&nodes))
    if (node && node->data) node->data->criticality = criticality;
}

int read_policies(const X509_EXTENSION *extension, STACK &out) noexcept {
  Tlv value;
  if (!extension) return 0;
  if (!value_of(*extension, value)) return fail(F_PROCESS_BASIC_CERTIFICATE, kUnreadable);
  const int code = decode_policies(value, out);
  if (!code) return 0;
  return fail(F_PROCESS_BASIC_CERTIFICATE, reason_of(code) == kNoMemory ? kNoMemory : kUnreadable);
}

// A list of policies that goes at the end of its scope.
class Policies {
 public:
  explicit Policies(STACK *list) noexcept : list_(list) {}
  Policies(const Policies &) = delete;
  Policies &operator=(const Policies &) = delete;
  ~Policies() { destroy_list<POLICY_INFO>(list_); }
  STACK *get() const noexcept { return list_; }

 private:
  STACK *list_;
};

}  // namespace

int PolicyTree::start() noexcept {
  if (!root_->nodes && !(root_->nodes = new_VALID_POLICY_NODES())) return tree_failure(kNoMemory);
  for (const VALID_POLICY_NODE *node : elements<VALID_POLICY_NODE>(root_->nodes))
    if (node && node->data && is_any(node->data->valid_policy)) return 0;
  const owned<OBJECT_IDENTIFIER> any(new_OBJECT_IDENTIFIER(kAnyPolicy.data(), int(kAnyPolicy.size())));
  owned<VALID_POLICY_NODE> node = any ? new_policy_node(*any) : nullptr;
  return append(root_->nodes, node) ? 0 : tree_failure(kNoMemory);
}

// Moves to the level above a certificate's; false where the tree does not reach so far.
bool PolicyTree::go_above(int depth) noexcept {
  while (above_ && above_depth_ < depth - 1) {
    above_ = above_->next;
    ++above_depth_;
  }
  return above_;
}

int PolicyTree::add_child(VALID_POLICY_NODE &parent, const OBJECT_IDENTIFIER &policy,
                          VALID_POLICY_NODES &level) noexcept {
  if (--nodes_left_ < 0) return kTooLarge;
  owned<VALID_POLICY_NODE> node = new_policy_node(policy);
  VALID_POLICY_NODE *const child = node.get();
  if (!append(&level, node)) return tree_failure(kNoMemory);
  child->parent = &parent;
  ++parent.child_count;
  return 0;
}

int PolicyTree::add_matching(VALID_POLICY_NODE &parent, const OBJECT_IDENTIFIER *expected, const STACK &policies,
                             VALID_POLICY_NODES &level) noexcept {
  const bool any = is_any(expected);
  for (const POLICY_INFO *each : elements<POLICY_INFO>(&policies)) {
    const OBJECT_IDENTIFIER *policy = each ? each->policyIdentifier : nullptr;
    if (--comparisons_left_ < 0) return kTooLarge;
    if (!policy || (!any && (is_any(policy) || !same_octets(policy, expected)))) continue;
    if (const int code = add_child(parent, *policy, level)) return code;
  }
  return 0;
}

int PolicyTree::add_children(VALID_POLICY_NODE &parent, const STACK &policies, VALID_POLICY_NODES &level) noexcept {
  const STACK *expected = parent.data ? parent.data->expected_policy_set : nullptr;
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(expected))
    if (const int code = add_matching(parent, each, policies, level)) return code;
  return 0;
}

int PolicyTree::extend(const X509_CERT &cert, int depth) noexcept {
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), kPoliciesOid);
  const Policies policies(new_STACK());
  if (!policies.get()) return tree_failure(kNoMemory);
  if (const int code = read_policies(extension, *policies.get())) return code;
  if (!go_above(depth)) return fail(F_PROCESS_BASIC_CERTIFICATE, kNullArgument);
  if (!above_->next && !(above_->next = new_node_LIST())) return tree_failure(kNoMemory);
  VALID_POLICY_NODES *&level = above_->next->nodes;
  if (!level && !(level = new_VALID_POLICY_NODES())) return tree_failure(kNoMemory);
  for (VALID_POLICY_NODE *node : elements<VALID_POLICY_NODE>(above_->nodes)) {
    const int code = node ? add_children(*node, *policies.get(), *level) : 0;
    if (code) return code;
  }
  cut(above_->nodes, true, is_childless);
  mark(*level, extension && extension->critical ? kTrue : 0);
  return 0;
}

namespace {

bool holds(const STACK &policies, const OBJECT_IDENTIFIER *policy) noexcept {
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(&policies))
    if (same_octets(each, policy)) return true;
  return false;
}

// The policies of the deepest level that are not the user's, up to the first that is.
void cut_deepest(VALID_POLICY_NODES *nodes, const STACK &policies) noexcept {
  bool matched = false;
  cut(nodes, false, [&](const VALID_POLICY_NODE *node) {
    matched = matched || (node && node->data && holds(policies, node->data->valid_policy));
    return !matched;
  });
}

void drop_empty(VALID_POLICY_NODES *&nodes) noexcept {
  if (nodes && nodes->count == 0) free_VALID_POLICY_NODES(std::exchange(nodes, nullptr));
}

// What has no children goes, from below to the root; then what has no nodes.
node_LIST *prune(node_LIST *root) noexcept {
  node_LIST *const deepest = reverse_node_LIST(root);
  drop_empty(deepest->nodes);
  for (node_LIST *level = deepest->next; level; level = level->next) {
    cut(level->nodes, false, is_childless);
    drop_empty(level->nodes);
  }
  node_LIST *left = reverse_node_LIST(deepest);
  for (node_LIST **at = &left; *at;) {
    if ((*at)->nodes)
      at = &(*at)->next;
    else
      *at = remove_node_LIST(*at, *at);
  }
  return left;
}

}  // namespace

node_LIST *PolicyTree::wrap_up(const STACK *user_policies) noexcept {
  node_LIST *deepest = root_;
  while (deepest->next) deepest = deepest->next;
  if (user_policies) cut_deepest(deepest->nodes, *user_policies);
  return prune(root_);
}

bool holds_any_policy(const STACK *policies) noexcept {
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(policies))
    if (is_any(each)) return true;
  return false;
}

}  // namespace velpki
