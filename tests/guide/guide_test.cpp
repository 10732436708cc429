// Runs every program of the guide, each in a folder of its own, and compares what it prints with what its page says.
#include <gtest/gtest.h>
#include <unistd.h>

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

// A folder of this process, removed at its end.
std::string folder_of(const std::string &name) {
  static const struct Folder {
    fs::path path = testing::TempDir() + "velpki_guide_" + std::to_string(getpid());
    ~Folder() { fs::remove_all(path); }
  } all;
  fs::create_directories(all.path / name);
  return all.path / name;
}

// The token that tokens.md is about, made as the page says; false without SoftHSM2.
bool has_token() {
  static const bool made = [] {
    const std::string folder = folder_of("token"), conf = folder + "/softhsm2.conf";
    std::ofstream(conf) << "directories.tokendir = " << folder << "\n";
    setenv("SOFTHSM2_CONF", conf.c_str(), 1);
    return fs::exists("/usr/lib/softhsm/libsofthsm2.so") &&
           std::system(
               "softhsm2-util --init-token --free --label guide --so-pin 12345678 --pin 1234 >/dev/null 2>&1") == 0;
  }();
  return made;
}

class Program : public testing::Test {
  const fs::path program_;
  void TestBody() override {
    if (program_.stem().string().rfind("tokens", 0) == 0 && !has_token()) GTEST_SKIP() << "no SoftHSM2 here";
    const std::string folder = folder_of(program_.stem());
    const char *runner = std::getenv("VELPKI_RUNNER");
    const std::string run = std::string(runner ? runner : "") + " " + program_.string() + " >printed 2>complaints";
    EXPECT_EQ(0, std::system(("cd " + folder + " && " + run).c_str())) << content(folder + "/complaints");
    const fs::path expected = fs::path(program_).replace_extension(".expected");
    if (fs::exists(expected)) EXPECT_EQ(content(expected), content(folder + "/printed"));
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
