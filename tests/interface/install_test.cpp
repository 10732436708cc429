// What `cmake --install` puts down is found, linked and run by another project, wherever the tree is moved to.
#include <filesystem>

#include "support/support.h"

namespace {

TEST(Interface, InstalledTreeServesAnotherProject) {
#ifndef VELPKI_SLOW_TESTS
  GTEST_SKIP() << "the programs of the other project are built without sanitizers and for this machine";
#endif
  const std::string folder = test::temporary_path("installed"), first = folder + "/first", moved = folder + "/moved";
  test::run("cmake --install " VELPKI_BUILD_DIR " --prefix " + first);
  std::filesystem::rename(first, moved);
  EXPECT_EQ(test::run(VELPKI_SOURCE_DIR "/tests/consumer/check " + folder + "/work " + moved + " 2>&1"),
            "consumers found by CMake and by pkg-config: as expected\n");
}

}  // namespace
