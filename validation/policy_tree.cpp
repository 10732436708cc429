// The records of the valid policy tree and its list of levels.
#include <velpki/asn1_error.h>

#include <cstdio>

#include "validation/internal/cpv.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<VALID_POLICY_DATA> = std::tuple(
    own(&VALID_POLICY_DATA::valid_policy), made_list_of<OBJECT_IDENTIFIER>(&VALID_POLICY_DATA::expected_policy_set));
template <>
inline constexpr auto owned_fields<VALID_POLICY_NODE> = std::tuple(own(&VALID_POLICY_NODE::data));

namespace {

constexpr int kCapacity = 64;

void free_level(node_LIST *level) noexcept {
  free_VALID_POLICY_NODES(level->nodes);
  release(level);
}

void print_node(int index, const VALID_POLICY_NODE *node) noexcept {
  const OBJECT_IDENTIFIER *policy = node && node->data ? node->data->valid_policy : nullptr;
  const std::string_view dotted = policy ? text(*policy) : std::string_view();
  std::printf("[%d] Valid Policy : %.*s\n", index, int(dotted.size()), dotted.data());
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(VALID_POLICY_DATA)
VELPKI_NEW_AND_FREE(VALID_POLICY_NODE)
VELPKI_LIST(VALID_POLICY_NODES, VALID_POLICY_NODE)

node_LIST *new_node_LIST(void) noexcept {
  auto *level = allocate_record<node_LIST>();
  if (!level) return nullptr;
  level->capacity = kCapacity;
  level->nodes = new_VALID_POLICY_NODES();
  return level->nodes ? level : (release(level), nullptr);
}

void free_node_LIST(node_LIST *list) noexcept {
  while (list) free_level(std::exchange(list, list->next));
}

node_LIST *reverse_node_LIST(node_LIST *list) noexcept {
  node_LIST *reversed = nullptr;
  while (list) {
    node_LIST *next = std::exchange(list->next, reversed);
    reversed = std::exchange(list, next);
  }
  return reversed;
}

node_LIST *remove_node_LIST(node_LIST *head, node_LIST *level) noexcept {
  for (node_LIST **at = &head; *at; at = &(*at)->next) {
    if (*at != level) continue;
    *at = level->next;
    free_level(level);
    break;
  }
  return head;
}

int get_count_from_node_LIST(const node_LIST *list) noexcept {
  int count = 0;
  for (; list; list = list->next) ++count;
  return count;
}

int add_VALID_POLICY_NODE(VALID_POLICY_NODES *nodes, VALID_POLICY_NODE *node) noexcept {
  return nodes && node && push_STACK_value(nodes, node) ? 0 : 1;
}

int add_VALID_POLICY_TREE_LIST(node_LIST *list, VALID_POLICY_NODES *nodes) noexcept {
  if (!list || !nodes) return fail(F_ADD_VALID_POLICY_TREE_LIST, kNullArgument);
  auto *level = allocate_record<node_LIST>();
  if (!level) return fail(F_ADD_VALID_POLICY_TREE_LIST, kNoMemory);
  level->capacity = kCapacity;
  level->nodes = nodes;
  while (list->next) list = list->next;
  list->next = level;
  return 0;
}

void print_VALID_POLICY_NODES(const VALID_POLICY_NODES *nodes) noexcept {
  int index = 0;
  for (const VALID_POLICY_NODE *node : elements<VALID_POLICY_NODE>(nodes)) print_node(index++, node);
}

void print_VALID_POLICY_TREE_LIST(const node_LIST *tree) noexcept {
  for (; tree; tree = tree->next) print_VALID_POLICY_NODES(tree->nodes);
}
