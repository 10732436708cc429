// The settings of path validation, one set for the process.
#include <velpki/cpv.h>

#include <atomic>

namespace velpki {

namespace {

constexpr int kUsualLength = 3;

constinit std::atomic<int> maximum_length{0}, explicit_policy{0}, any_policy_inhibit{0};

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_max_certificatePath_length(int n) noexcept {
  if (n < 1) return 1;
  maximum_length.store(n, std::memory_order_relaxed);
  return 0;
}
int get_max_certificatePath_length(void) noexcept {
  const int length = maximum_length.load(std::memory_order_relaxed);
  return length < 1 ? kUsualLength : length;
}

void set_initial_explicit_policy(int flag) noexcept { explicit_policy.store(flag, std::memory_order_relaxed); }
int get_initial_explicit_policy(void) noexcept { return explicit_policy.load(std::memory_order_relaxed); }
void set_initial_any_policy_inhibit(int flag) noexcept { any_policy_inhibit.store(flag, std::memory_order_relaxed); }
int get_initial_any_policy_inhibit(void) noexcept { return any_policy_inhibit.load(std::memory_order_relaxed); }

// Mappings are not processed, so nothing can be inhibited.
void set_initial_policy_mapping_inhibit(int) noexcept {}
int get_initial_policy_mapping_inhibit(void) noexcept { return 0; }
