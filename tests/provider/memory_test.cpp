#include <dlfcn.h>
#include <velpki/pkv.h>

#include <map>
#include <thread>

#include "support/support.h"

namespace {

PKV_ACCOUNT account() {
  PKV_ACCOUNT now{};
  EXPECT_EQ(PKV_Get_Account(&now), 0);
  return now;
}

struct Difference {
  PKV_ACCOUNT before = account();
  void is(long blocks, long octets, long all) const {
    const PKV_ACCOUNT now = account();
    EXPECT_EQ(long(now.live_blocks - before.live_blocks), blocks);
    EXPECT_EQ(long(now.live_octets - before.live_octets), octets);
    EXPECT_EQ(long(now.all_blocks - before.all_blocks), all);
  }
};

// The calls with this file and line.
void *take(size_t size) { return PKV_Malloc(size, "a.c", 1); }
void *resize(void *block, size_t size) { return PKV_Realloc(block, size, "b.c", 1); }
void release(void *block) { PKV_Free(block, "a.c", 1); }

TEST(Memory, AccountFollowsEveryBlock) {
  const Difference since;
  auto *block = static_cast<uint8_t *>(take(100)), *zeros = static_cast<uint8_t *>(PKV_Calloc(10, 20, "a.c", 2));
  since.is(2, 300, 2);
  std::memset(block, 7, 100);
  block = static_cast<uint8_t *>(resize(block, 1000));
  since.is(2, 1200, 3);
  EXPECT_GE(account().peak_octets, since.before.live_octets + 1200);
  block = static_cast<uint8_t *>(resize(block, 50));
  since.is(2, 250, 3);
  EXPECT_EQ(test::Bytes(50, 7), test::Bytes(block, block + 50));
  EXPECT_EQ(test::Bytes(200, 0), test::Bytes(zeros, zeros + 200));
  EXPECT_EQ(uintptr_t(block) % alignof(std::max_align_t), 0u);
  for (void *each : {block, zeros, static_cast<uint8_t *>(nullptr)}) release(each);
  since.is(0, 0, 3);
}

TEST(Memory, EmptyAndImpossibleSizes) {
  for (void *block : {take(0), PKV_Calloc(0, 8, "a.c", 1), resize(nullptr, 0)}) {
    EXPECT_TRUE(block);
    release(block);
  }
  for (const size_t size : {SIZE_MAX, SIZE_MAX - 8, SIZE_MAX / 2}) EXPECT_FALSE(take(size));
  EXPECT_FALSE(PKV_Calloc(SIZE_MAX / 2, 3, "a.c", 1));
  EXPECT_FALSE(PKV_Calloc(size_t(1) << (sizeof(size_t) * 4), size_t(1) << (sizeof(size_t) * 4), "a.c", 1));
}

TEST(Memory, ReportGroupsByTheTextOfTheName) {
  std::map<std::string, std::pair<size_t, size_t>> lines;
  const auto each = [](const char *file, size_t blocks, size_t octets, void *context) {
    auto &all = *static_cast<decltype(lines) *>(context);
    EXPECT_TRUE(all.emplace(file, std::pair(blocks, octets)).second) << file << " twice";
  };
  const char here[] = "same.c", there[] = "same.c";
  void *blocks[] = {PKV_Malloc(1, here, 1), PKV_Malloc(2, there, 1), PKV_Malloc(4, "other.c", 1),
                    PKV_Malloc(8, nullptr, 1)};
  EXPECT_EQ(PKV_Report_Account(each, &lines), 0);
  EXPECT_EQ(lines["same.c"], std::pair(size_t(2), size_t(3)));
  EXPECT_EQ(lines["other.c"], std::pair(size_t(1), size_t(4)));
  for (void *block : blocks) release(block);
  lines.clear();
  EXPECT_EQ(PKV_Report_Account(each, &lines), 0);
  EXPECT_EQ(lines.count("same.c"), 0u);
}

TEST(Memory, FailureIsOfTheThreadThatAsksForIt) {
  test::fail_allocation(1);
  void *first = take(1), *elsewhere = nullptr;
  EXPECT_TRUE(first);
  EXPECT_FALSE(take(1));
  EXPECT_FALSE(resize(first, 2));  // which leaves the old block
  EXPECT_EQ(resize(first, 1), first);
  std::thread([&] { elsewhere = take(1); }).join();
  EXPECT_TRUE(elsewhere);
  test::fail_allocation(-1);
  release(first);
  release(elsewhere);
  EXPECT_EQ(PKV_Fail_Allocation(-2), PKV_ERR_BAD_VALUE);
}

TEST(Memory, ThreadsShareOneAccount) {
  const Difference since;
  const auto work = [] {
    for (size_t size = 1; size < 2000; ++size) release(take(size));
  };
  std::thread threads[] = {std::thread(work), std::thread(work), std::thread(work)};
  for (auto &thread : threads) thread.join();
  since.is(0, 0, 3 * 1999);
}

TEST(MemoryDeathTest, ReleasingTwiceIsFound) {
  for (const size_t size : {1, 300, 5000}) {
    void *block = take(size);
    EXPECT_DEATH((release(block), PKV_Free(block, "culprit.c", 77)), "culprit.c:77.*released twice|AddressSanitizer");
    release(block);
  }
}

// A second copy of the library, in which nothing has been allocated yet.
TEST(Memory, AccountingIsChosenBeforeTheFirstBlock) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer allows no second copy of a library";
#endif
  void *copy = dlmopen(LM_ID_NEWLM, VELPKI_BUILD_DIR "/lib/libvelCrypto.so", RTLD_NOW | RTLD_LOCAL);
  ASSERT_TRUE(copy) << dlerror();
  const auto find = [&]<class F>(F *, const char *name) { return reinterpret_cast<F *>(dlsym(copy, name)); };
  const auto start = find(PKV_Start_Accounting, "PKV_Start_Accounting");
  const auto get = find(PKV_Get_Account, "PKV_Get_Account");
  PKV_ACCOUNT unused;
  EXPECT_EQ(get(&unused), PKV_ERR_FAILED);
  void *block = find(PKV_Malloc, "PKV_Malloc")(10, "a.c", 1);
  EXPECT_EQ(start(), PKV_ERR_FAILED);
  EXPECT_EQ(get(&unused), PKV_ERR_FAILED);
  find(PKV_Free, "PKV_Free")(block, "a.c", 1);
  dlclose(copy);
}

TEST(Memory, WipingAndComparing) {
  uint8_t a[33], b[33];
  for (size_t i = 0; i < sizeof a; ++i) a[i] = b[i] = uint8_t(i * 37);
  EXPECT_EQ(PKV_Equal_Secret(a, b, sizeof a), 1);
  for (size_t i = 0; i < sizeof a; ++i) {
    b[i] ^= 0x80;
    EXPECT_EQ(PKV_Equal_Secret(a, b, sizeof a), 0) << i;
    EXPECT_EQ(PKV_Equal_Secret(a, b, i), 1) << i;
    b[i] ^= 0x80;
  }
  PKV_Wipe(a, sizeof a - 1);
  EXPECT_EQ(test::to_hex(a, 33), std::string(64, '0') + "a0");
  PKV_Wipe(nullptr, 0);
}

}  // namespace
