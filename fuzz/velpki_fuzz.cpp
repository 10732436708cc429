// The fuzz program: VELPKI_FUZZ_TARGET chooses one of the targets, --list shows them.
#include <climits>

#include "target.h"

namespace {

const Target *chosen = nullptr;

template <class F>
void for_each_target(F &&run) {
  for (const Registered *each = Registered::first; each; each = each->next)
    for (const Target &target : each->list) run(target);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
  const char *name = std::getenv("VELPKI_FUZZ_TARGET");
  const bool list = *argc > 1 && std::strcmp((*argv)[1], "--list") == 0;
  for_each_target([&](const Target &target) {
    if (list) std::puts(target.name);
    if (name && std::strcmp(name, target.name) == 0) chosen = &target;
  });
  if (list) std::exit(0);
  if (chosen) return 0;
  std::fputs("VELPKI_FUZZ_TARGET names no target; --list shows them\n", stderr);
  std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size <= INT_MAX) chosen->run(data, int(size));
  return 0;
}
