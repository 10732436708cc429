// STACK against a vector, and with comparators that order nothing.
#include <velpki/stack.h>

#include <algorithm>
#include <random>

#include "support/owned.h"
#include "support/support.h"

namespace {

int by_value(const void *a, const void *b) {
  const int left = **static_cast<int *const *>(a), right = **static_cast<int *const *>(b);
  return (left > right) - (left < right);
}
int always_less(const void *, const void *) { return -1; }
int at_random(const void *, const void *) {
  static std::minstd_rand random;
  return int(random() % 3) - 1;
}

using List = test::Owned<STACK, free_STACK>;

struct Numbers {
  Numbers(size_t n, int (*compare)(const void *, const void *)) : values(n), stack(new_STACK_compare_func(compare)) {
    for (size_t i = 0; i < n; ++i) values[i] = int(i * 7919 % 101), push_STACK_value(stack, &values[i]);
  }
  ~Numbers() { free_STACK(stack); }
  std::vector<int> values;
  STACK *stack;
};

TEST(Stack, EditsLikeAVector) {
  std::minstd_rand random(1);
  std::vector<int> elements(64);
  std::vector<void *> model;
  const List stack(new_STACK());
  int capacity = 4;
  for (int step = 0; step < 3000; ++step) {
    const int position = int(random() % 40) - 2;
    const bool inside = position >= 0 && position < int(model.size());
    void *element = &elements[random() % elements.size()];
    if (random() % 5 < 2 || model.size() < 3) {
      EXPECT_EQ(insert_STACK_value(stack, element, position), int(model.size()) + 1);
      model.insert(inside ? model.begin() + position : model.end(), element);
      capacity = std::max(capacity, int(model.size()));
    } else if (random() % 3 == 0) {
      EXPECT_EQ(set_STACK_value(stack, element, position), inside ? element : nullptr);
      if (inside) model[size_t(position)] = element;
    } else {
      EXPECT_EQ(remove_STACK_value(stack, position), inside ? model[size_t(position)] : nullptr);
      if (inside) model.erase(model.begin() + position);
    }
    ASSERT_EQ(get_STACK_count(stack), int(model.size()));
    ASSERT_TRUE(std::equal(model.begin(), model.end(), stack->data));
    EXPECT_EQ(stack->capacity, capacity) << "one slot at a time beyond the first four";
    const auto found = std::find(model.begin(), model.end(), element);
    EXPECT_EQ(find_STACK_value(stack, element), found == model.end() ? -1 : int(found - model.begin()));
  }
  const List copy(dup_STACK(stack));
  EXPECT_EQ(copy->capacity, capacity);
  EXPECT_TRUE(std::equal(model.begin(), model.end(), copy->data));
  EXPECT_EQ(pop_STACK_value(copy), model.back());
}

TEST(Stack, SortsAndSearches) {
  for (const size_t size : {0u, 1u, 2u, 3u, 4u, 5u, 100u, 1000u}) {
    const Numbers numbers(size, by_value);
    STACK *stack = numbers.stack;
    std::vector<int> sorted = numbers.values;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(is_STACK_sorted(stack), 0);
    for (int wanted = -1; wanted <= 101; ++wanted) {
      const auto [first, last] = std::equal_range(sorted.begin(), sorted.end(), wanted);
      EXPECT_EQ(find_STACK_value(stack, &wanted), first == last ? -1 : int(first - sorted.begin()));
      const int near = find_STACK_value_ex(stack, &wanted);
      if (size == 0) EXPECT_EQ(near, -1);
      if (first != last) EXPECT_EQ(sorted[size_t(near)], wanted);
      if (size && first == last) EXPECT_LE(std::abs(near - int(first - sorted.begin())), 1);
    }
    EXPECT_EQ(is_STACK_sorted(stack), 1);
    for (size_t i = 0; i < size; ++i) ASSERT_EQ(*static_cast<int *>(get_STACK_value(stack, int(i))), sorted[i]);
    EXPECT_EQ(find_STACK_value(stack, nullptr), -1);
    int zero = 0;
    push_STACK_value(stack, &zero);
    EXPECT_EQ(is_STACK_sorted(stack), 0);
  }
}

// Comparators of times and names answer -1 both ways; every element must still be there, once.
TEST(Stack, SortingKeepsTheElementsWhateverTheComparatorSays) {
  for (const auto compare : {always_less, at_random}) {
    for (size_t size = 0; size < 300; ++size) {
      Numbers numbers(size, compare);
      STACK *stack = numbers.stack;
      std::vector<void *> before(stack->data, stack->data + size);
      test::fail_allocation(0);
      sort_STACK(stack);
      test::fail_allocation(-1);
      std::sort(stack->data, stack->data + size);
      EXPECT_TRUE(std::equal(before.begin(), before.end(), stack->data));
      EXPECT_GE(find_STACK_value(stack, &numbers), -1);
    }
  }
}

TEST(Stack, NullAndExhaustedMemory) {
  EXPECT_EQ(insert_STACK_value(nullptr, nullptr, 0), 0);
  EXPECT_EQ(get_STACK_count(nullptr), -1);
  EXPECT_EQ(is_STACK_sorted(nullptr), 1);
  EXPECT_EQ(dup_STACK(nullptr), nullptr);
  free_STACK_values(nullptr, nullptr);
  const Numbers numbers(4, nullptr);
  STACK *stack = numbers.stack;
  for (const long n : {0, 1, 2}) {
    test::fail_allocation(n);
    const List copy(dup_STACK(stack));
    const int count = n == 0 ? push_STACK_value(stack, stack) : 0;
    test::fail_allocation(-1);
    EXPECT_EQ(copy == nullptr, n < 2);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(get_STACK_count(stack), 4);
  }
  static int released;
  released = 0;
  STACK *copy = dup_STACK(stack);
  sk_set(copy, 1, nullptr);
  free_STACK_values(copy, [](void *) { ++released; });
  EXPECT_EQ(released, 3);
}

}  // namespace
