// Allocation, and its accounting.
//
// The choice for or against accounting falls with the first allocation, so that every block of the process either has a
// header or has none. Without accounting the whole cost is one load and a branch that always goes the same way.
#include "provider/internal/memory.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace velcrypto {
namespace {

enum Mode { kUndecided, kPlain, kAccounting };
std::atomic<int> mode{kUndecided};

bool is_plain() noexcept {
  const int now = mode.load(std::memory_order_relaxed);
  if (now == kPlain) [[likely]]
    return true;
  int expected = kUndecided;
  return now == kUndecided && (mode.compare_exchange_strong(expected, kPlain) || expected == kPlain);
}

// What one source file holds. Files are told apart by the address of their name: it is a literal, and hashing its text
// at every allocation would cost more than merging equal texts in a report.
struct FileAccount {
  std::atomic<const char *> file{};
  std::atomic<size_t> blocks{};
  std::atomic<size_t> octets{};
};

constexpr size_t kFiles = 1024;
// The last entry takes all files that find no entry of their own.
constexpr char kOtherFiles[] = "(other files)";

FileAccount files[kFiles + 1];
std::atomic<size_t> live_blocks, live_octets, peak_octets, all_blocks;
thread_local long allocations_left = -1;

FileAccount &file_account(const char *file) noexcept {
  if (!file) file = "(unknown)";
  size_t at = (reinterpret_cast<uintptr_t>(file) >> 3) % kFiles;
  for (size_t i = 0; i < kFiles; ++i, at = (at + 1) % kFiles) {
    const char *found = files[at].file.load();
    if (!found && files[at].file.compare_exchange_strong(found, file)) return files[at];
    if (found == file) return files[at];
  }
  files[kFiles].file.store(kOtherFiles);
  return files[kFiles];
}

// Stands before every block of an accounting process. `state` is last: what the C library keeps in a free block begins
// at its start, so that a freed block is still known as one.
struct alignas(std::max_align_t) Header {
  size_t size;
  FileAccount *account;
  uint32_t reserved;
  uint32_t state;
};
constexpr uint32_t kLive = 0x6C697665, kFreed = 0x66726565;
constexpr int kFreedOctet = 0xDD;

// A fill that the compiler keeps although the block is released next.
void fill(void *data, int octet, size_t length) noexcept {
  std::memset(data, octet, length);
  asm volatile("" : : "r"(data) : "memory");
}

void raise_peak(size_t octets) noexcept {
  size_t peak = peak_octets.load();
  while (peak < octets && !peak_octets.compare_exchange_weak(peak, octets)) {
  }
}

bool fails_on_request() noexcept {
  if (allocations_left < 0) return false;
  if (allocations_left == 0) return true;
  --allocations_left;
  return false;
}

void *account_allocate(size_t size, const char *file) noexcept {
  if (fails_on_request() || size > PTRDIFF_MAX - sizeof(Header)) return nullptr;
  auto *header = static_cast<Header *>(std::malloc(sizeof(Header) + size));
  if (!header) return nullptr;
  FileAccount &account = file_account(file);
  *header = Header{size, &account, 0, kLive};
  ++account.blocks;
  account.octets += size;
  ++live_blocks;
  ++all_blocks;
  raise_peak(live_octets += size);
  return header + 1;
}

Header *live_header(void *block, const char *file, int line) noexcept {
  Header *header = static_cast<Header *>(block) - 1;
  if (header->state == kLive) return header;
  std::fprintf(stderr, "PKV memory: %s:%d: block %p is released twice or was never allocated\n", file ? file : "?",
               line, block);
  std::abort();
}

void account_free(void *block, const char *file, int line) noexcept {
  Header *header = live_header(block, file, line);
  --header->account->blocks;
  header->account->octets -= header->size;
  --live_blocks;
  live_octets -= header->size;
  fill(block, kFreedOctet, header->size);
  header->state = kFreed;
  asm volatile("" : : "r"(header) : "memory");
  std::free(header);
}

// Growing always moves, which shows callers that keep an old address.
void *account_reallocate(void *block, size_t size, const char *file, int line) noexcept {
  Header *header = live_header(block, file, line);
  if (size > header->size) {
    void *moved = account_allocate(size, file);
    if (!moved) return nullptr;
    std::memcpy(moved, block, header->size);
    account_free(block, file, line);
    return moved;
  }
  fill(static_cast<uint8_t *>(block) + size, kFreedOctet, header->size - size);
  header->account->octets -= header->size - size;
  live_octets -= header->size - size;
  header->size = size;
  return block;
}

bool same_file(size_t a, size_t b) noexcept {
  const char *first = files[a].file.load(), *second = files[b].file.load();
  return first && second && std::strcmp(first, second) == 0;
}

// One line for the entry `at` and all later ones of the same text; nothing when an earlier entry had that text.
void report_file(size_t at, PKV_ACCOUNT_LINE *each, void *context) noexcept {
  for (size_t i = 0; i < at; ++i) {
    if (same_file(i, at)) return;
  }
  size_t blocks = 0, octets = 0;
  for (size_t i = at; i <= kFiles; ++i) {
    if (!same_file(at, i)) continue;
    blocks += files[i].blocks.load();
    octets += files[i].octets.load();
  }
  if (blocks) each(files[at].file.load(), blocks, octets, context);
}

}  // namespace
}  // namespace velcrypto

using namespace velcrypto;

void *PKV_Malloc(size_t size, const char *file, int) noexcept {
  if (is_plain()) [[likely]]
    return std::malloc(size ? size : 1);
  return account_allocate(size, file);
}

void *PKV_Calloc(size_t count, size_t size, const char *file, int) noexcept {
  size_t total = 0;
  if (__builtin_mul_overflow(count, size, &total)) return nullptr;
  if (is_plain()) [[likely]]
    return std::calloc(total ? total : 1, 1);
  void *block = account_allocate(total, file);
  if (block) std::memset(block, 0, total);
  return block;
}

void *PKV_Realloc(void *block, size_t size, const char *file, int line) noexcept {
  if (is_plain()) [[likely]]
    return std::realloc(block, size ? size : 1);
  return block ? account_reallocate(block, size, file, line) : account_allocate(size, file);
}

void PKV_Free(void *block, const char *file, int line) noexcept {
  if (!block) return;
  if (mode.load(std::memory_order_relaxed) != kAccounting) [[likely]]
    return std::free(block);
  account_free(block, file, line);
}

void PKV_Wipe(void *data, size_t length) noexcept {
  if (data && length) fill(data, 0, length);
}

int PKV_Equal_Secret(const void *a, const void *b, size_t length) noexcept {
  if (!length) return 1;
  if (!a || !b) return 0;
  const auto *x = static_cast<const volatile uint8_t *>(a), *y = static_cast<const volatile uint8_t *>(b);
  uint32_t difference = 0;
  for (size_t i = 0; i < length; ++i) difference |= uint32_t(x[i] ^ y[i]);
  return int((difference - 1) >> 31);
}

int PKV_Start_Accounting(void) noexcept {
  int expected = kUndecided;
  return mode.compare_exchange_strong(expected, kAccounting) || expected == kAccounting ? 0 : PKV_ERR_FAILED;
}

int PKV_Get_Account(PKV_ACCOUNT *out) noexcept {
  if (!out) return PKV_ERR_NULL;
  if (mode.load() != kAccounting) return PKV_ERR_FAILED;
  *out = PKV_ACCOUNT{live_blocks.load(), live_octets.load(), peak_octets.load(), all_blocks.load()};
  return 0;
}

int PKV_Report_Account(PKV_ACCOUNT_LINE *each, void *context) noexcept {
  if (!each) return PKV_ERR_NULL;
  if (mode.load() != kAccounting) return PKV_ERR_FAILED;
  for (size_t i = 0; i <= kFiles; ++i) {
    if (files[i].blocks.load()) report_file(i, each, context);
  }
  return 0;
}

int PKV_Fail_Allocation(long n) noexcept {
  if (n < -1) return PKV_ERR_BAD_VALUE;
  if (mode.load() != kAccounting) return PKV_ERR_FAILED;
  allocations_left = n;
  return 0;
}
