// Every test program: accounting on, all tests, and nothing left allocated at the end.
#include <gtest/gtest.h>

#include <velpki/pkv.h>
#include <cstdio>

namespace {

void print_line(const char *file, size_t blocks, size_t octets, void *) {
  std::printf("  %s: %zu blocks, %zu octets\n", file, blocks, octets);
}

// A test that leaks fails by itself, so that the culprit is named.
class NothingLeft : public testing::EmptyTestEventListener {
  size_t before_ = 0;
  static size_t live() {
    PKV_ACCOUNT account{};
    PKV_Get_Account(&account);
    return account.live_blocks;
  }
  void OnTestStart(const testing::TestInfo &) override { before_ = live(); }
  void OnTestEnd(const testing::TestInfo &info) override {
    PKV_Fail_Allocation(-1);
    if (live() > before_) {
      PKV_Report_Account(print_line, nullptr);
      ADD_FAILURE() << info.name() << " leaves " << live() - before_ << " blocks";
    }
  }
};

}  // namespace

int main(int argc, char **argv) {
  if (PKV_Start_Accounting()) {
    std::puts("accounting does not start");
    return 1;
  }
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new NothingLeft);
  return RUN_ALL_TESTS();
}
