// The library from elsewhere: another project finds, links and runs what `cmake --install` puts down, wherever the tree
// is moved to, and Python calls it.
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

// A key that openssl made, opened from Python: the right one, another certificate's, and with a wrong password.
TEST(Interface, PythonOpensAKey) {
#ifndef VELPKI_SLOW_TESTS
  GTEST_SKIP() << "Python is built without sanitizers and for this machine";
#endif
  const std::string folder = test::temporary_path("python");
  const auto open = [&](const char *password, const char *certificate) {
    return test::run("cd " + folder + " && LD_LIBRARY_PATH=" VELPKI_BUILD_DIR "/lib VELPKI_PASSWORD=" + password +
                     " python3 " VELPKI_SOURCE_DIR "/examples/open_key.py key.der " + certificate + " 2>&1");
  };
  test::run("mkdir -p " + folder + " && cd " + folder +
            " && for n in 1 2; do openssl req -x509 -newkey rsa:2048 -nodes " +
            "-keyout $n.pem -subj /CN=k -outform DER -out $n.crt 2>/dev/null; done; openssl pkcs8 -topk8 -in 1.pem " +
            "-outform DER -out key.der -provider legacy -provider default -v2 seed-cbc -passout pass:secret");
  EXPECT_EQ(open("secret", "1.crt"), "a key of the algorithm rsaEncryption\nit is the key of the certificate\n");
  EXPECT_EQ(open("secret", "2.crt"), "a key of the algorithm rsaEncryption\nthe certificate has another key\n");
  EXPECT_EQ(open("other", ""), "key.der: F_DEC_PKCS5: PKV_ERR_FAILED\n");
}

}  // namespace
