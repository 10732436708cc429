// Runs every program of the guide, each in a folder of its own, and compares what it prints with what its page says.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string content(const fs::path &path) {
  std::ostringstream out;
  out << std::ifstream(path).rdbuf();
  return out.str();
}

class Program : public testing::Test {
  const fs::path program_;
  void TestBody() override {
    const std::string folder = testing::TempDir() + "velpki_guide_" + program_.stem().string();
    fs::remove_all(folder);
    fs::create_directory(folder);
    const char *runner = std::getenv("VELPKI_RUNNER");
    const std::string run = std::string(runner ? runner : "") + " " + program_.string() + " >printed 2>complaints";
    EXPECT_EQ(0, std::system(("cd " + folder + " && " + run).c_str())) << content(folder + "/complaints");
    const fs::path expected = fs::path(program_).replace_extension(".expected");
    if (fs::exists(expected)) EXPECT_EQ(content(expected), content(folder + "/printed"));
    fs::remove_all(folder);
  }

 public:
  explicit Program(const fs::path &program) : program_(program) {}
};

const int registered = [] {
  int count = 0;
  for (const auto &each : fs::directory_iterator(GUIDE_FOLDER)) {
    const fs::path path = each.path();
    if (path.extension() != ".program") continue;
    ++count;
    testing::RegisterTest("Guide", path.stem().c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [path]() -> testing::Test * { return new Program(path); });
  }
  return count;
}();

TEST(Guide, HasPrograms) { EXPECT_GT(registered, 0); }

}  // namespace
