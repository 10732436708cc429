// build_certPath over pools made for it.
#include "paths.h"

using namespace test;

namespace {

class PathBuilding : public WithThreeKeys {
 protected:
  void SetUp() override {
    WithThreeKeys::SetUp();
    pool.reset(new_X509_CERTIFICATES());
    anchors.reset(new_TRUST_ANCHORS());
  }
  void TearDown() override {
    anchors.reset();
    pool.reset();
    WithThreeKeys::TearDown();
  }

  static Bytes of_authority(const std::string &key_id = "") {
    Bytes out = extension("551d13", hex("30030101ff"));
    if (!key_id.empty()) out = out + extension("551d0e", TLV(0x04, key_id));
    return out;
  }
  static Bytes of_issuer(const std::string &key_id) { return extension("551d23", TLV(0x30, TLV(0x80, key_id))); }

  X509_CERT *add(const Made &made) {
    X509_CERT *cert = make_certificate(made).release();
    push_STACK_value(pool, cert);
    return cert;
  }
  void trust(const X509_CERT *cert) {
    const TRUST_ANCHOR anchor{get_X509_subject(cert), get_X509_SPKI(cert)};
    EXPECT_EQ(add_TRUST_ANCHORS(anchors, &anchor), 0);
  }
  // The code, and the common names of the path.
  int build(const X509_CERT *cert, std::string *names = nullptr) {
    Certificates path;
    const int code = build_certPath(&path, const_cast<X509_CERT *>(cert), pool, anchors);
    EXPECT_EQ(code == 0, path != nullptr);
    for (int i = 0; names && i < get_STACK_count(path); ++i) {
      const auto *each = item<X509_CERT>(path, i);
      *names += (i ? " " : "") + text_of(get_X509_NAME_CHILD_data(get_X509_NAME_CHILD(get_X509_subject(each), 0)));
    }
    Tree tree;
    if (path) EXPECT_EQ(validate_certpath(path, nullptr, &tree), 0);
    return code;
  }

  Certificates pool;
  Owned<STACK, free_TRUST_ANCHORS> anchors;
};

TEST_F(PathBuilding, ThePathEndsAtAnAnchor) {
  const X509_CERT *root = add({"root", "root", 0, 0, of_authority()});
  add({"ca", "root", 1, 0, of_authority()});
  const Certificate end = make_certificate({"end", "ca", 2, 1, {}, false});
  const Certificate orphan = make_certificate({"end", "nobody", 2, 1, {}, false});
  EXPECT_EQ(build(end), F_BUILD_CERTPATH | ERR_INVALID_TRUST_ANCHOR);
  EXPECT_EQ(build(orphan), F_BUILD_CERTPATH | ERR_NOT_FOUNDED);
  trust(root);
  std::string names;
  EXPECT_EQ(build(end, &names), 0);
  EXPECT_EQ(names, "end ca root");
  EXPECT_EQ(build(root, &(names = "")), 0);
  EXPECT_EQ(names, "root");
  // The same name with another key is no anchor.
  pool.reset(new_X509_CERTIFICATES());
  add({"root", "root", 1, 1, of_authority()});
  add({"ca", "root", 2, 1, of_authority()});
  const Certificate other = make_certificate({"end", "ca", 0, 2, {}, false});
  EXPECT_EQ(build(other), F_BUILD_CERTPATH | ERR_INVALID_TRUST_ANCHOR);
  STACK *path = nullptr;
  EXPECT_EQ(build_certPath(&path, nullptr, pool, anchors), F_BUILD_CERTPATH | 0x49);
  EXPECT_EQ(build_certPath(&path, other, pool, nullptr), F_BUILD_CERTPATH | 0x49);
}

// Of several certificates of one name and key, the one that validation takes; cross-certificates and loops lead on.
TEST_F(PathBuilding, TheBetterIssuerIsTakenFirst) {
  add({"root", "root", 0, 0, of_authority()});
  trust(item<X509_CERT>(pool, 0));
  add({"ca", "root", 1, 0, {}, true, "3031303130313030303030305a"});
  add({"ca", "root", 1, 0, of_authority("aa"), true, "3031303130313030303030305a"});
  add({"ca", "root", 1, 0, extension("551d0f", hex("030206c0")) + of_authority("aa")});
  add({"ca", "root", 1, 0, of_authority("aa")});
  add({"ca", "root", 2, 0, of_authority("bb")});
  add({"ca", "other", 1, 2, of_authority("aa")});
  add({"other", "ca", 2, 1, of_authority("aa")});
  add({"other", "other", 2, 2, of_authority()});
  const Certificate end = make_certificate({"end", "ca", 2, 1, of_issuer("aa")});
  std::string names;
  EXPECT_EQ(build(end, &names), 0);
  EXPECT_EQ(names, "end ca root");
}

TEST_F(PathBuilding, LoopsEnd) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      if (i != j) add({"c" + std::to_string(i), "c" + std::to_string(j), i, j, of_authority()});
  const Certificate end = make_certificate({"end", "c0", 2, 0, {}, false});
  EXPECT_EQ(build(end), F_BUILD_CERTPATH | ERR_NOT_FOUNDED);
}

// A large pool, with many of one name of which none is the issuer, and then with the issuer behind them.
TEST_F(PathBuilding, WorkIsBounded) {
  const X509_CERT *root = add({"root", "root", 0, 0, of_authority()});
  trust(root);
  const Certificate one = make_certificate({"many", "root", 1, 0, of_authority("aa")});
  const Certificate far = make_certificate({"far", "root", 1, 0, of_authority("aa")});
  for (int i = 0; i < 1000; ++i) add_X509_CERTIFICATES(pool, one);
  for (int i = 0; i < 9000; ++i) add_X509_CERTIFICATES(pool, far);
  const Certificate end = make_certificate({"end", "many", 2, 2, {}, false});
  EXPECT_EQ(build(end), F_BUILD_CERTPATH | ERR_INVALID_MAX_PATH_LENGTH);
  const Certificate good = make_certificate({"end", "many", 2, 1, {}, false});
  std::string names;
  EXPECT_EQ(build(good, &names), 0);
  EXPECT_EQ(names, "end many root");
  // A chain that is too long.
  for (int i = 0; i < 20; ++i) {
    const std::string issuer = i ? "d" + std::to_string(i - 1) : "root";
    add({"d" + std::to_string(i), issuer, i % 3, i ? (i - 1) % 3 : 0, of_authority()});
  }
  const Certificate deep = make_certificate({"end", "d13", 2, 13 % 3, {}, false});
  const Certificate deeper = make_certificate({"end", "d14", 2, 14 % 3, {}, false});
  EXPECT_EQ(build(deep), 0);
  EXPECT_EQ(build(deeper), F_BUILD_CERTPATH | ERR_INVALID_MAX_PATH_LENGTH);
}

TEST_F(PathBuilding, EachAllocationMayFail) {
  trust(add({"root", "root", 0, 0, of_authority("aa")}));
  add({"ca", "root", 1, 0, of_authority("bb")});
  const Certificate end = make_certificate({"end", "ca", 2, 1, of_issuer("bb")});
  ASSERT_EQ(build(end), 0);
  survive_each_failed_allocation([&] {
    Certificates path;
    const int code = build_certPath(&path, end, pool, anchors);
    EXPECT_EQ(code != 0, path == nullptr);
    return code == 0;
  });
}

}  // namespace
