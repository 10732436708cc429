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

std::map<std::string, std::pair<size_t, size_t>> report() {
  std::map<std::string, std::pair<size_t, size_t>> lines;
  const auto each = [](const char *file, size_t blocks, size_t octets, void *context) {
    auto &all = *static_cast<decltype(lines) *>(context);
    EXPECT_TRUE(all.emplace(file, std::pair(blocks, octets)).second) << file << " twice";
  };
  EXPECT_EQ(PKV_Report_Account(each, &lines), 0);
  return lines;
}

TEST(Memory, AccountFollowsEveryBlock) {
  const Difference since;
  void *block = PKV_Malloc(100, "a.c", 1);
  void *zeros = PKV_Calloc(10, 20, "a.c", 2);
  since.is(2, 300, 2);
  std::memset(block, 7, 100);
  block = PKV_Realloc(block, 1000, "b.c", 3);
  since.is(2, 1200, 3);
  EXPECT_GE(account().peak_octets, since.before.live_octets + 1200);
  block = PKV_Realloc(block, 50, "b.c", 4);
  since.is(2, 250, 3);
  EXPECT_EQ(test::Bytes(50, 7), test::Bytes((uint8_t *)block, (uint8_t *)block + 50));
  EXPECT_EQ(test::Bytes(200, 0), test::Bytes((uint8_t *)zeros, (uint8_t *)zeros + 200));
  EXPECT_EQ(uintptr_t(block) % alignof(std::max_align_t), 0u);
  PKV_Free(block, "a.c", 5);
  PKV_Free(zeros, "a.c", 6);
  PKV_Free(nullptr, "a.c", 7);
  since.is(0, 0, 3);
}

TEST(Memory, EmptyAndImpossibleSizes) {
  for (void *block : {PKV_Malloc(0, "a.c", 1), PKV_Calloc(0, 8, "a.c", 1), PKV_Realloc(nullptr, 0, "a.c", 1)}) {
    EXPECT_TRUE(block);
    PKV_Free(block, "a.c", 1);
  }
  for (const size_t size : {SIZE_MAX, SIZE_MAX - 8, SIZE_MAX / 2}) EXPECT_FALSE(PKV_Malloc(size, "a.c", 1));
  EXPECT_FALSE(PKV_Calloc(SIZE_MAX / 2, 3, "a.c", 1));
  EXPECT_FALSE(PKV_Calloc(size_t(1) << (sizeof(size_t) * 4), size_t(1) << (sizeof(size_t) * 4), "a.c", 1));
}

TEST(Memory, ReportGroupsByTheTextOfTheName) {
  const char here[] = "same.c", there[] = "same.c";
  void *blocks[] = {PKV_Malloc(1, here, 1), PKV_Malloc(2, there, 1), PKV_Malloc(4, "other.c", 1),
                    PKV_Malloc(8, nullptr, 1)};
  auto lines = report();
  EXPECT_EQ(lines["same.c"], std::pair(size_t(2), size_t(3)));
  EXPECT_EQ(lines["other.c"], std::pair(size_t(1), size_t(4)));
  for (void *block : blocks) PKV_Free(block, "x.c", 1);
  EXPECT_EQ(report().count("same.c"), 0u);
}

TEST(Memory, FailureIsOfTheThreadThatAsksForIt) {
  test::fail_allocation(1);
  void *first = PKV_Malloc(1, "a.c", 1), *second = PKV_Malloc(1, "a.c", 1), *elsewhere = nullptr;
  EXPECT_TRUE(first);
  EXPECT_FALSE(second);
  EXPECT_FALSE(PKV_Realloc(first, 2, "a.c", 1));  // which leaves the old block
  EXPECT_EQ(PKV_Realloc(first, 1, "a.c", 1), first);
  std::thread([&] { elsewhere = PKV_Malloc(1, "a.c", 1); }).join();
  EXPECT_TRUE(elsewhere);
  test::fail_allocation(-1);
  PKV_Free(first, "a.c", 1);
  PKV_Free(elsewhere, "a.c", 1);
  EXPECT_EQ(PKV_Fail_Allocation(-2), PKV_ERR_BAD_VALUE);
}

TEST(Memory, ThreadsShareOneAccount) {
  const Difference since;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (size_t size = 1; size < 2000; ++size) PKV_Free(PKV_Malloc(size, "thread.c", 1), "thread.c", 1);
    });
  }
  for (auto &thread : threads) thread.join();
  since.is(0, 0, 4 * 1999);
}

TEST(MemoryDeathTest, ReleasingTwiceIsFound) {
  const auto twice = [](size_t size) {
    void *block = PKV_Malloc(size, "a.c", 1);
    PKV_Free(block, "a.c", 1);
    PKV_Free(block, "culprit.c", 77);
  };
  for (const size_t size : {size_t(1), size_t(300), size_t(5000)}) {
    EXPECT_DEATH(twice(size), "culprit.c:77.*released twice|AddressSanitizer");
  }
}

// A second copy of the library, in which nothing has been allocated yet.
TEST(Memory, AccountingIsChosenBeforeTheFirstBlock) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer allows no second copy of a library";
#endif
  void *copy = dlmopen(LM_ID_NEWLM, VELPKI_BUILD_DIR "/lib/libvelCrypto.so", RTLD_NOW | RTLD_LOCAL);
  ASSERT_TRUE(copy) << dlerror();
  const auto allocate = reinterpret_cast<decltype(&PKV_Malloc)>(dlsym(copy, "PKV_Malloc"));
  const auto release = reinterpret_cast<decltype(&PKV_Free)>(dlsym(copy, "PKV_Free"));
  const auto start = reinterpret_cast<decltype(&PKV_Start_Accounting)>(dlsym(copy, "PKV_Start_Accounting"));
  const auto get = reinterpret_cast<decltype(&PKV_Get_Account)>(dlsym(copy, "PKV_Get_Account"));
  PKV_ACCOUNT unused;
  EXPECT_EQ(get(&unused), PKV_ERR_FAILED);
  void *block = allocate(10, "a.c", 1);
  EXPECT_EQ(start(), PKV_ERR_FAILED);
  EXPECT_EQ(get(&unused), PKV_ERR_FAILED);
  release(block, "a.c", 1);
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
