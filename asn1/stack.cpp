// STACK: a growable array of element pointers.
#include "asn1/internal/stack.h"

#include <climits>
#include <utility>

#include "asn1/internal/memory.h"

namespace velpki {

namespace {

constexpr int kFirstSlots = 4;

bool holds(const STACK *stack, int position) noexcept { return stack && position >= 0 && position < stack->count; }

bool resize(STACK *stack, int slots) noexcept {
  if (size_t(slots) > size_t(PTRDIFF_MAX) / sizeof(void *)) return false;
  void *data = PKV_Realloc(stack->data, size_t(slots) * sizeof(void *), __FILE__, __LINE__);
  if (!data) return false;
  stack->data = static_cast<void **>(data);
  stack->capacity = slots;
  return true;
}

// One slot at a time beyond the first four: `capacity` is visible to callers, who count on it.
bool make_room(STACK *stack) noexcept {
  if (stack->count < stack->capacity) return true;
  return stack->capacity < INT_MAX && resize(stack, stack->capacity + 1);
}

// Lets the element at `root` sink below its children within [0, count).
void sift_down(STACK *stack, size_t root, size_t count) noexcept {
  void **const slot = stack->data;
  for (size_t child = 2 * root + 1; child < count; child = 2 * root + 1) {
    if (child + 1 < count && stack->compare(&slot[child], &slot[child + 1]) < 0) ++child;
    if (stack->compare(&slot[root], &slot[child]) >= 0) return;
    std::swap(slot[root], slot[child]);
    root = child;
  }
}

// Heap sort. Comparators of certificates and times are no orders (they may answer -1 both ways), with which a library's
// qsort may read outside the array once it has no memory for merging. Here positions never follow from an answer, and
// no memory is needed, so sorting cannot fail.
void heap_sort(STACK *stack) noexcept {
  const size_t count = size_t(stack->count);
  for (size_t root = count / 2; root-- > 0;) sift_down(stack, root, count);
  for (size_t end = count; end-- > 1;) {
    std::swap(stack->data[0], stack->data[end]);
    sift_down(stack, 0, end);
  }
}

int find_pointer(const STACK *stack, const void *element) noexcept {
  for (int i = 0; i < stack->count; ++i)
    if (stack->data[i] == element) return i;
  return -1;
}

// The slot where the search by halves ended; `equal` tells whether it is an equal one.
int probe(const STACK *stack, void *element, bool &equal) noexcept {
  int low = 0, high = stack->count, at = -1;
  equal = false;
  while (low < high && !equal) {
    at = low + (high - low) / 2;
    const int order = stack->compare(&element, &stack->data[at]);
    if (order > 0)
      low = at + 1;
    else
      high = at;
    equal = order == 0;
  }
  return at;
}

int search(STACK *stack, void *element, bool &equal) noexcept {
  if (!stack) return -1;
  if (stack->compare) {
    if (!element) return -1;
    sort_STACK(stack);
    return probe(stack, element, equal);
  }
  const int at = find_pointer(stack, element);
  equal = at >= 0;
  return at;
}

int first_equal(const STACK *stack, void *element, int at) noexcept {
  while (at > 0 && stack->compare(&element, &stack->data[at - 1]) == 0) --at;
  return at;
}

}  // namespace

bool reserve_stack(STACK *stack, int slots) noexcept {
  if (!stack || slots < 0) return false;
  return slots <= stack->capacity || resize(stack, slots);
}

}  // namespace velpki

using namespace velpki;

STACK *new_STACK(void) noexcept { return new_STACK_compare_func(nullptr); }

STACK *new_STACK_compare_func(int (*compare)(const void *, const void *)) noexcept {
  STACK *stack = allocate_record<STACK>();
  if (!stack) return nullptr;
  stack->data = static_cast<void **>(PKV_Calloc(kFirstSlots, sizeof(void *), __FILE__, __LINE__));
  if (!stack->data) return release(stack), nullptr;
  stack->capacity = kFirstSlots;
  stack->compare = compare;
  return stack;
}

STACK *dup_STACK(const STACK *stack) noexcept {
  if (!stack) return nullptr;
  STACK *copy = new_STACK_compare_func(stack->compare);
  if (!copy) return nullptr;
  if (!reserve_stack(copy, stack->capacity)) return free_STACK(copy), nullptr;
  for (int i = 0; i < stack->count; ++i) copy->data[i] = stack->data[i];
  copy->count = stack->count;
  copy->sorted = stack->sorted;
  return copy;
}

int insert_STACK_value(STACK *stack, void *element, int position) noexcept {
  if (!stack || !make_room(stack)) return 0;
  const int at = holds(stack, position) ? position : stack->count;
  void **const slot = stack->data + at;
  std::memmove(slot + 1, slot, size_t(stack->count - at) * sizeof(void *));
  *slot = element;
  stack->sorted = 0;
  return ++stack->count;
}

int push_STACK_value(STACK *stack, void *element) noexcept { return insert_STACK_value(stack, element, -1); }

void *remove_STACK_value(STACK *stack, int position) noexcept {
  if (!holds(stack, position)) return nullptr;
  void **const slot = stack->data + position;
  void *element = *slot;
  --stack->count;
  std::memmove(slot, slot + 1, size_t(stack->count - position) * sizeof(void *));
  return element;
}

void *pop_STACK_value(STACK *stack) noexcept { return stack ? remove_STACK_value(stack, stack->count - 1) : nullptr; }

void *set_STACK_value(STACK *stack, void *element, int position) noexcept {
  return holds(stack, position) ? stack->data[position] = element : nullptr;
}

void *sk_set(STACK *stack, int position, void *element) noexcept { return set_STACK_value(stack, element, position); }

void *get_STACK_value(const STACK *stack, int position) noexcept {
  return holds(stack, position) ? stack->data[position] : nullptr;
}

int get_STACK_count(const STACK *stack) noexcept { return stack ? stack->count : -1; }

int find_STACK_value(STACK *stack, void *element) noexcept {
  bool equal = false;
  const int at = search(stack, element, equal);
  return equal && stack->compare ? first_equal(stack, element, at) : equal ? at : -1;
}

int find_STACK_value_ex(STACK *stack, void *element) noexcept {
  bool equal = false;
  return search(stack, element, equal);
}

void sort_STACK(STACK *stack) noexcept {
  if (!stack || !stack->compare || stack->sorted) return;
  heap_sort(stack);
  stack->sorted = 1;
}

int is_STACK_sorted(const STACK *stack) noexcept { return stack ? stack->sorted : 1; }

void free_STACK(STACK *stack) noexcept {
  if (!stack) return;
  release(stack->data);
  release(stack);
}

void free_STACK_values(STACK *stack, void (*release_element)(void *)) noexcept {
  for (int i = 0; stack && release_element && i < stack->count; ++i) {
    if (void *element = std::exchange(stack->data[i], nullptr)) release_element(element);
  }
  free_STACK(stack);
}
