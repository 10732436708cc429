// validate_certpath_strict where input is hostile or memory ends; the suites of paths are in path_suites_test.cpp.
#include <velpki/x509_crl.h>

#include "paths.h"

using namespace test;

namespace {

Bytes policy(int number) { return TLV(0x06, Bytes{0x2A, uint8_t(number >> 7 | 0x80), uint8_t(number & 0x7F)}); }
Bytes policies(int count) {
  Bytes list;
  for (int i = 0; i < count; ++i) list = list + TLV(0x30, policy(i));
  return extension("551d20", TLV(0x30, list));
}
// Each policy to every other.
Bytes mappings(int count) {
  Bytes list;
  for (int i = 0; i < count * count; ++i) list = list + TLV(0x30, policy(i / count) + policy(i % count));
  return extension("551d21", TLV(0x30, list));
}
Bytes host(int number) {
  const std::string text = "h" + std::to_string(number) + ".example";
  return TLV(0x82, Bytes(text.begin(), text.end()));
}
Bytes hosts(int count) {
  Bytes list;
  for (int i = 0; i < count; ++i) list = list + host(i);
  return extension("551d11", TLV(0x30, list));
}
// The hosts from 10,000 on are excluded.
Bytes excluded(int count) {
  Bytes list;
  for (int i = 0; i < count; ++i) list = list + TLV(0x30, host(10000 + i));
  return extension("551d1e", TLV(0x30, TLV(0xA1, list)), true);
}

class Strict : public WithThreeKeys {};

TEST_F(Strict, WorkIsBounded) {
  const Bytes exploding = kAuthority + policies(40) + mappings(40);
  const std::vector<std::pair<int, std::vector<Made>>> paths = {
      {0, {{"user", "b", 1, 1, hosts(100)}, {"b", "root", 1, 0, kAuthority + excluded(100)}, kRoot}},
      {ERR_TOO_MUCH_WORK, {{"user", "b", 1, 1, hosts(2000)}, {"b", "root", 1, 0, kAuthority + excluded(2000)}, kRoot}},
      {0, {{"user", "c", 1, 1, policies(40)}, {"c", "b", 1, 1, exploding}, {"b", "root", 1, 0, exploding}, kRoot}}};
  for (const auto &[reason, made] : paths) {
    const StrictPath path(made);
    CERTPATH_REPORT report;
    EXPECT_EQ(validate_certpath_strict(path.certs, path.anchors, nullptr, &report) & 0xFFFF, reason);
    if (made.size() == 4) EXPECT_EQ(get_STACK_count(report.policies), 40);
    free_CERTPATH_POLICIES(report.policies);
  }
}

TEST_F(Strict, LongPathsAreRefusedUnlessAskedFor) {
  std::vector<Made> made = {{"user", "40", 1, 1}};
  for (int i = 40; i > 0; --i)
    made.push_back({std::to_string(i), i > 1 ? std::to_string(i - 1) : "root", 1, i > 1, kAuthority});
  made.push_back(kRoot);
  const StrictPath path(made);
  CERTPATH_SETTINGS settings{};
  for (const auto &[length, reason] :
       {std::pair(0, int(ERR_INVALID_MAX_PATH_LENGTH)), {40, ERR_INVALID_MAX_PATH_LENGTH}, {41, 0}}) {
    settings.max_length = length;
    EXPECT_EQ(validate_certpath_strict(path.certs, path.anchors, &settings, nullptr) & 0xFFFF, reason) << length;
  }
}

TEST_F(Strict, AuthoritiesAreFoundInALargePool) {
  std::vector<Made> made = {{"user", "5", 1, 1}};
  for (int i = 5; i > 0; --i)
    made.push_back({std::to_string(i), i > 1 ? std::to_string(i - 1) : "root", 1, i > 1, kAuthority});
  made.push_back(kRoot);
  const StrictPath path(made);
  const Owned<STACK, free_STACK> pool(new_STACK());
  for (int i = 0; i < 20000; ++i) push_STACK_value(pool, path.certs->data[0]);  // nobody's issuer
  for (int i = 1; i < 6; ++i) push_STACK_value(pool, path.certs->data[i]);
  Certificates built;
  EXPECT_EQ(build_certPath_strict(&built, item<X509_CERT>(path.certs, 0), pool, path.anchors, nullptr, nullptr), 0);
  EXPECT_EQ(get_STACK_count(built), 6);
}

TEST_F(Strict, EachAllocationMayFail) {
  const StrictPath path({{"user", "b", 1, 1, hosts(2) + policies(2)},
                         {"b", "root", 1, 0, kAuthority + excluded(2) + policies(2) + mappings(2)},
                         kRoot});
  const Bytes algorithm = TLV(0x30, "06092a864886f70d01010b0500"), date = TLV(0x17, "3230303130313030303030305a");
  const Bytes list =
      TLV(0x30, TLV(0x30, TLV(0x02, "01") + algorithm + name_of("b") + date + TLV(0x17, "3430303130313030303030305a")) +
                    algorithm + TLV(0x03, "00aa"));
  const Owned<X509_CRL> crl = read_by(readDER_X509_CRL_from_Binary_RFC5280, list);
  ASSERT_TRUE(crl);
  ASSERT_EQ(gen_SIG_X509_CRL_RFC5280(crl, test_key(1)), 0);
  const Owned<STACK, free_STACK> crls(new_STACK());
  push_STACK_value(crls, static_cast<X509_CRL *>(crl));
  CERTPATH_SETTINGS settings{};
  settings.crls = crls, settings.flags = CERTPATH_CHECK_REVOCATION_END_ENTITY;
  const auto build = [&] {
    Certificates built;
    CERTPATH_REPORT report;
    const auto *user = item<X509_CERT>(path.certs, 0);
    const int code = build_certPath_strict(&built, user, path.certs, path.anchors, &settings, &report);
    free_CERTPATH_POLICIES(report.policies);
    EXPECT_TRUE(!code || (code & 0xFFFF) == PKV_ERR_NO_MEMORY) << std::hex << code;
    return code == 0;
  };
  EXPECT_TRUE(build());  // keys and list keep what they prepare at their first use
  survive_each_failed_allocation(build);
}

}  // namespace
