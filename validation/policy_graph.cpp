// The valid policies of a path as a graph: levels, built down, and searched up at the end.
#include "validation/internal/policy_graph.h"

#include <velpki/asn1_error.h>

namespace velpki {

namespace {

using Node = PolicyLevel::Node;
using Link = PolicyLevel::Link;

constexpr std::string_view kAnyPolicy = "2.5.29.32.0";

// An array that its holder releases; null when memory is exhausted.
template <class T>
T *new_array(size_t count) noexcept {
  return static_cast<T *>(allocate(count * sizeof(T) + 1));
}
template <class T>
struct ReleaseArray {
  void operator()(T *array) const noexcept { release(array); }
};
template <class T>
using Array = std::unique_ptr<T, ReleaseArray<T>>;

// A policy that comes into a level, and the node that it comes from.
struct Arrival {
  std::string_view policy;
  int parent;
};

std::span<Node> nodes_of(PolicyLevel &level) noexcept { return {level.nodes, size_t(level.count)}; }
bool is_before(const Node &a, const Node &b) noexcept { return a.policy < b.policy; }

Node *find(PolicyLevel &level, std::string_view policy) noexcept {
  const std::span<Node> nodes = nodes_of(level);
  const auto found = std::lower_bound(nodes.begin(), nodes.end(), Node{policy, 0, false, false}, is_before);
  return found != nodes.end() && found->policy == policy ? &*found : nullptr;
}

// Room for more nodes than there are.
bool make_room(PolicyLevel &level, int more) noexcept {
  auto *nodes = new_array<Node>(size_t(level.count) + size_t(more));
  if (!nodes) return false;
  std::copy_n(level.nodes, level.count, nodes);
  release(std::exchange(level.nodes, nodes));
  return true;
}

void release_level(PolicyLevel *level) noexcept {
  destroy_list<POLICY_INFO>(level->policies);
  destroy_list<POLICY_MAPPING>(level->mappings);
  release(level->nodes);
  release(level->links);
  release(level);
}

// A qualifier that is not one of RFC 5280 4.2.1.4.
bool has_unknown_qualifier(const STACK &policies) noexcept {
  for (const POLICY_INFO *policy : elements<POLICY_INFO>(&policies))
    for (const POLICY_QUALIFIER_INFO *each : elements<POLICY_QUALIFIER_INFO>(policy->policyQualifiers))
      if (each->kind != POLICY_QUALIFIER_CPS && each->kind != POLICY_QUALIFIER_NOTICE) return true;
  return false;
}
std::string_view policy_of(const POLICY_INFO &info) noexcept { return text(*info.policyIdentifier); }

bool holds(const STACK *policies, std::string_view policy) noexcept {
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(policies))
    if (each && text(*each) == policy) return true;
  return false;
}
// Appends a policy to the ones found, where they are kept.
bool take(std::string_view policy, STACK *out, bool &some) noexcept {
  some = true;
  if (!out) return true;
  owned<ASN1_STRING> copy(new_string(TYPE_OBJECT_IDENTIFIER, octets_of_text(policy)));
  return append(out, copy);
}
int compare_policies(const void *a, const void *b) noexcept {
  return text(**static_cast<ASN1_STRING *const *>(a)).compare(text(**static_cast<ASN1_STRING *const *>(b)));
}
// A policy may be found at several levels.
void drop_repeated(STACK &policies) noexcept {
  int kept = 0;
  sort_STACK(&policies);
  for (int i = 0; i < policies.count; ++i) {
    const bool repeated = kept > 0 && compare_policies(&policies.data[kept - 1], &policies.data[i]) == 0;
    if (repeated)
      free_ASN1_STRING(element<ASN1_STRING>(&policies, i));
    else
      policies.data[kept++] = policies.data[i];
  }
  policies.count = kept;
}

bool is_of_any(const POLICY_MAPPING &mapping) noexcept {
  return text(*mapping.issuerDomainPolicy) == kAnyPolicy || text(*mapping.subjectDomainPolicy) == kAnyPolicy;
}

}  // namespace

PolicyGraph::~PolicyGraph() {
  while (level_) release_level(std::exchange(level_, level_->above));
}

// A level below the deepest, with room for its nodes.
int PolicyGraph::descend(int nodes, int links) noexcept {
  auto *level = allocate_record<PolicyLevel>();
  if (!level) return path_failure(kNoMemory);
  level->above = std::exchange(level_, level);
  level->nodes = new_array<Node>(size_t(nodes));
  level->links = new_array<Link>(size_t(links));
  return level->nodes && level->links ? 0 : path_failure(kNoMemory);
}

int PolicyGraph::start() noexcept {
  if (const int code = descend(0, 0)) return code;
  level_->any = true;
  return 0;
}

int PolicyGraph::add(const X509_EXTENSION *policies, bool any_allowed) noexcept {
  if (policies) {
    const int code = X509_EXTENSION_to_CERTIFICATE_POLICIES_RFC5280(policies, &level_->policies);
    if (code) return code;
    const bool understood = !policies->critical || !has_unknown_qualifier(*level_->policies);
    return understood ? keep_listed(any_allowed) : path_failure(ERR_INVALID_CERTIFICATE_POLICIES);
  }
  level_->count = 0;
  level_->any = false;
  return 0;
}

// The certificate's own policies in order, each once; anyPolicy is not among them.
int PolicyGraph::sort_listed(std::string_view *listed, int &count, bool &any) const noexcept {
  for (const POLICY_INFO *each : elements<POLICY_INFO>(level_->policies)) listed[count++] = policy_of(*each);
  std::sort(listed, listed + count);
  if (std::adjacent_find(listed, listed + count) != listed + count) {
    return path_failure(ERR_INVALID_CERTIFICATE_POLICIES);
  }
  std::string_view *end = std::remove(listed, listed + count, kAnyPolicy);
  any = end != listed + count;
  count = int(end - listed);
  return 0;
}

int PolicyGraph::keep_listed(bool any_allowed) noexcept {
  const Array<std::string_view> listed(new_array<std::string_view>(size_t(level_->policies->count)));
  int count = 0;
  bool any = false;
  if (!listed || !make_room(*level_, level_->policies->count)) return path_failure(kNoMemory);
  if (const int code = sort_listed(listed.get(), count, any)) return code;
  any = any && any_allowed;
  const std::span<const std::string_view> own(listed.get(), size_t(count));
  const auto is_out = [&](const Node &node) {
    return !any && !std::binary_search(own.begin(), own.end(), node.policy);
  };
  const bool was_any = std::exchange(level_->any, level_->any && any);
  const std::span<Node> nodes = nodes_of(*level_);
  level_->count = int(std::remove_if(nodes.begin(), nodes.end(), is_out) - nodes.begin());
  if (was_any) add_from_any(listed.get(), count);
  return 0;
}

// Those that no node stands for come from anyPolicy above.
void PolicyGraph::add_from_any(const std::string_view *policies, int count) noexcept {
  int added = 0;
  for (int i = 0; i < count; ++i)
    if (!find(*level_, policies[i])) {
      level_->nodes[level_->count + added++] = {policies[i], PolicyLevel::kFromAny, false, false};
    }
  level_->count += added;
  std::sort(level_->nodes, level_->nodes + level_->count, is_before);
}

int PolicyGraph::read_mappings(const X509_EXTENSION *mappings) noexcept {
  const int code = mappings ? X509_EXTENSION_to_POLICY_MAPPINGS_RFC5280(mappings, &level_->mappings) : 0;
  if (code) return code;
  for (const POLICY_MAPPING *each : elements<POLICY_MAPPING>(level_->mappings))
    if (is_of_any(*each)) return path_failure(ERR_INVALID_POLICY_MAPPING);
  return 0;
}

int PolicyGraph::map(bool allowed) noexcept {
  const STACK *mappings = allowed ? level_->mappings : nullptr;
  if (const int code = mappings ? mark_mapped() : 0) return code;
  if (!allowed) drop_mapped();
  return pass_on(mappings);
}

// The policies that are mapped, made where only anyPolicy stands for them.
int PolicyGraph::mark_mapped() noexcept {
  const int count = level_->mappings->count;
  const Array<std::string_view> issuers(new_array<std::string_view>(size_t(count)));
  if (!issuers || !make_room(*level_, count)) return path_failure(kNoMemory);
  std::string_view *end = issuers.get();
  for (const POLICY_MAPPING *each : elements<POLICY_MAPPING>(level_->mappings))
    *end++ = text(*each->issuerDomainPolicy);
  std::sort(issuers.get(), end);
  end = std::unique(issuers.get(), end);
  if (level_->any) add_from_any(issuers.get(), int(end - issuers.get()));
  for (const std::string_view *each = issuers.get(); each != end; ++each)
    if (Node *node = find(*level_, *each)) node->mapped = true;
  return 0;
}

// Where mapping is inhibited, policies that would be mapped are valid no longer.
void PolicyGraph::drop_mapped() noexcept {
  for (const POLICY_MAPPING *each : elements<POLICY_MAPPING>(level_->mappings))
    if (Node *node = find(*level_, text(*each->issuerDomainPolicy))) node->mapped = true;
  const std::span<Node> nodes = nodes_of(*level_);
  const auto end = std::remove_if(nodes.begin(), nodes.end(), [](const Node &node) { return node.mapped; });
  level_->count = int(end - nodes.begin());
}

// Makes the next level: what the nodes are mapped to, and those that are not mapped as they are.
int PolicyGraph::pass_on(const STACK *mappings) noexcept {
  PolicyLevel &from = *level_;
  const int most = from.count + (mappings ? mappings->count : 0);
  const Array<Arrival> arrivals(new_array<Arrival>(size_t(most)));
  if (!arrivals) return path_failure(kNoMemory);
  int count = 0;
  for (const Node &node : nodes_of(from))
    if (!node.mapped) arrivals.get()[count++] = {node.policy, int(&node - from.nodes)};
  for (const POLICY_MAPPING *each : elements<POLICY_MAPPING>(mappings))
    if (const Node *node = find(from, text(*each->issuerDomainPolicy)))
      arrivals.get()[count++] = {text(*each->subjectDomainPolicy), int(node - from.nodes)};
  std::sort(arrivals.get(), arrivals.get() + count,
            [](const Arrival &a, const Arrival &b) { return a.policy < b.policy; });
  if (const int code = descend(count, count)) return code;
  level_->any = from.any;
  for (int i = 0; i < count; ++i) arrive(arrivals.get()[i].policy, arrivals.get()[i].parent);
  return 0;
}

// Arrivals come in the order of their policies.
void PolicyGraph::arrive(std::string_view policy, int parent) noexcept {
  PolicyLevel &level = *level_;
  const bool known = level.count > 0 && level.nodes[level.count - 1].policy == policy;
  if (!known) level.nodes[level.count++] = {policy, PolicyLevel::kFromAny, false, false};
  Node &node = level.nodes[level.count - 1];
  level.links[level.link_count] = {parent, node.parents};
  node.parents = level.link_count++;
}

// From the deepest level up: the policies that stand right below anyPolicy, in the terms of the anchor's domain.
bool PolicyGraph::collect(const STACK *user, STACK *out, bool &some) noexcept {
  const bool all = !user || user->count == 0 || holds(user, kAnyPolicy);
  for (Node &node : nodes_of(*level_)) node.reached = true;
  for (PolicyLevel *level = level_; level; level = level->above) {
    for (const Node &node : nodes_of(*level)) {
      if (!node.reached) continue;
      for (int i = node.parents; i != PolicyLevel::kFromAny; i = level->links[i].next)
        level->above->nodes[level->links[i].parent].reached = true;
      const bool wanted = node.parents == PolicyLevel::kFromAny && (all || holds(user, node.policy));
      if (wanted && !take(node.policy, out, some)) return false;
    }
  }
  if (!level_->any) return true;
  if (all) return take(kAnyPolicy, out, some);
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(user))
    if (each && !take(text(*each), out, some)) return false;
  return true;
}

int PolicyGraph::wrap_up(const STACK *user, STACK **out, bool &some) noexcept {
  STACK *policies = out ? new_STACK_compare_func(compare_policies) : nullptr;
  if ((out && !policies) || !collect(user, policies, some)) {
    destroy_list<ASN1_STRING>(policies);
    return path_failure(kNoMemory);
  }
  if (out) drop_repeated(*policies), *out = policies;
  return 0;
}

}  // namespace velpki
