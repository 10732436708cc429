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

// A list of a year with its number, and the certificate that it revokes or, as a delta, takes back.
struct MadeList {
  std::string issuer;
  int key, year;
  const X509_CERT *listed = nullptr;
  int base = 0;
};
Owned<X509_CRL> make_list(const MadeList &made) {
  const Bytes algorithm = TLV(0x30, "06092a864886f70d01010b0500"), until = TLV(0x17, "3430303130313030303030305a");
  const auto date = [](int year) { return TLV(0x17, "303" + std::to_string(year) + "303130313030303030305a"); };
  const auto number = [](int value) { return TLV(0x02, Bytes{uint8_t(value)}); };
  Bytes entries, extensions = extension("551d14", number(made.year));
  if (made.base) extensions = extensions + extension("551d1b", number(made.base), true);
  if (made.listed) {
    int length = 0;
    const unsigned char *serial = PKV_Get_BIGINT_Octets(get_X509_serial(made.listed), &length);
    const Bytes taken_back = made.base ? TLV(0x30, extension("551d15", hex("0a0108"))) : Bytes();
    entries = TLV(0x30, TLV(0x30, TLV(0x02, Bytes(serial, serial + length)) + date(made.year) + taken_back));
  }
  const Bytes body = TLV(0x02, "01") + algorithm + name_of(made.issuer) + date(made.year) + until + entries +
                     TLV(0xA0, TLV(0x30, extensions));
  Owned<X509_CRL> crl =
      read_by(readDER_X509_CRL_from_Binary_RFC5280, TLV(0x30, TLV(0x30, body) + algorithm + TLV(0x03, "00aa")));
  EXPECT_TRUE(crl);
  EXPECT_EQ(gen_SIG_X509_CRL_RFC5280(crl, test_key(made.key)), 0);
  return crl;
}

class Strict : public WithThreeKeys {};

// openssl verify -crl_check says of the first two rows that the certificate is revoked.
TEST_F(Strict, TheNewestListDecides) {
  const StrictPath path({{"user", "root", 1, 0}, kRoot});
  const std::map<char, MadeList> made = {{'o', {"root", 0, 5}},
                                         {'n', {"root", 0, 6, path.at(0)}},
                                         {'f', {"root", 1, 9}},
                                         {'l', {"root", 0, 7}},
                                         {'d', {"root", 0, 8, path.at(0), 6}}};
  std::map<char, Owned<X509_CRL>> lists;
  for (const auto read : {readDER_X509_CRL_from_Binary_RFC5280, readDER_X509_CRL_from_Binary}) {
    for (const auto &[letter, list] : made)
      lists[letter] = read_by(read, encoded(X509_CRL_to_Seq_RFC5280, make_list(list)));
    for (const auto &[order, reason] : std::vector<std::pair<std::string, int>>{{"on", ERR_CERT_REVOKED},
                                                                                {"no", ERR_CERT_REVOKED},
                                                                                {"ofn", ERR_CERT_REVOKED},
                                                                                {"onl", 0},
                                                                                {"dno", 0},
                                                                                {"f", ERR_SIGNATURE_MISMATCH},
                                                                                {"", ERR_CRL_MISSING}}) {
      const Owned<STACK, free_STACK> crls(new_STACK());
      for (const char letter : order) push_STACK_value(crls, static_cast<X509_CRL *>(lists[letter]));
      CERTPATH_SETTINGS settings{};
      settings.crls = crls, settings.flags = CERTPATH_CHECK_REVOCATION_END_ENTITY;
      const int code = validate_certpath_strict(path.certs, path.anchors, &settings, nullptr);
      EXPECT_EQ(code, reason ? 0x48000000 | reason : 0) << order;
    }
  }
}

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

// openssl verify, too, finds the host as a BMPString among the excluded ones.
TEST_F(Strict, CommonNamesOfAnyStringTypeAreConstrained) {
  const auto wide = [](size_t zeros, const std::string &text) {
    std::string out;
    for (const char c : text) out += std::string(zeros, 0) + c;
    return out;
  };
  const std::string host = "a.h10000.example", other = "a.h.example";
  for (const auto &[type, name, reason] :
       std::vector<std::tuple<uint8_t, std::string, int>>{{0x0C, host, ERR_NAME_EXCLUDED},
                                                          {0x14, host, ERR_NAME_EXCLUDED},
                                                          {0x1E, wide(1, host), ERR_NAME_EXCLUDED},
                                                          {0x1C, wide(3, host), ERR_NAME_EXCLUDED},
                                                          {0x1E, wide(1, other), 0},
                                                          {0x0C, host + '\0', ERR_NAME_UNREADABLE},
                                                          {0x1E, wide(1, std::string(300, 'a') + "." + host), 0},
                                                          {0x1E, wide(1, other) + "\xD8", ERR_NAME_UNREADABLE},
                                                          {0x1E, wide(1, other) + "\xD8\x01", ERR_NAME_UNREADABLE},
                                                          {0x1C, wide(3, other) + "\x01", ERR_NAME_UNREADABLE}}) {
    Made user{name, "b", 1, 1};
    user.subject_type = type;
    const StrictPath path({user, {"b", "root", 1, 0, kAuthority + excluded(1)}, kRoot});
    EXPECT_EQ(validate_certpath_strict(path.certs, path.anchors, nullptr, nullptr) & 0xFFFF, reason) << int(type);
  }
}

TEST_F(Strict, CriticalValuesMustBeReadable) {
  const Bytes points = extension("551d1f", hex("0500"), true), names = extension("551d11", hex("0500"), true);
  for (const auto &[user, own, index] : {std::tuple(points, Bytes(), 0), {Bytes(), names, 1}, {Bytes(), Bytes(), -1}}) {
    const StrictPath path(
        {{"user", "b", 2, 2, user}, {"b", "b", 2, 1, kAuthority + own}, {"b", "root", 1, 0, kAuthority}, kRoot});
    CERTPATH_REPORT report;
    EXPECT_EQ(validate_certpath_strict(path.certs, path.anchors, nullptr, &report) != 0, index >= 0);
    EXPECT_EQ(report.index, index);
    free_CERTPATH_POLICIES(report.policies);
  }
}

// Certificates that differ in their signatures only.
Certificates forgeries_of(const X509_CERT *cert, int count) {
  Certificates out(new_X509_CERTIFICATES());
  Bytes der = encoded(X509_CERT_to_Seq_RFC5280, cert);
  for (int i = 0; i < count; ++i) {
    der[der.size() - 1] = uint8_t(i), der[der.size() - 2] = uint8_t(i >> 8);
    push_STACK_value(out, read_by(readDER_X509_CERT_from_Binary_RFC5280, der).release());
  }
  return out;
}

// The newest list is signed by those who have no path: each search for one tries all the forgeries. Signatures are
// counted over all searches, and the older list says nothing where one was cut short.
TEST_F(Strict, SearchesShareOneLimit) {
  const StrictPath path({{"user", "root", 1, 0}, kRoot}),
      bad({{"root", "z", 2, 2, kAuthority}, {"root", "z", 2, 2, kAuthority}, {"z", "y", 1, 1, kAuthority}, kRoot});
  const Owned<X509_CRL> older = make_list({"root", 0, 5}), newer = make_list({"root", 2, 6});
  const Certificates forgeries = forgeries_of(bad.at(2), 300);
  const Owned<STACK, free_STACK> crls(new_STACK());
  for (X509_CRL *each : {static_cast<X509_CRL *>(older), static_cast<X509_CRL *>(newer)}) push_STACK_value(crls, each);
  for (const auto &[signers, reason] : {std::pair(1, 0), {2, int(ERR_TOO_MUCH_WORK)}}) {
    const Owned<STACK, free_STACK> pool(new_STACK());
    for (int i = 0; i < 100; ++i) push_STACK_value(pool, bad.at(i % signers));
    for (int i = 0; i < 600; ++i) push_STACK_value(pool, forgeries->data[i % 300]);
    CERTPATH_SETTINGS settings{};
    settings.crls = crls, settings.pool = pool, settings.flags = CERTPATH_CHECK_REVOCATION_END_ENTITY;
    EXPECT_EQ(validate_certpath_strict(path.certs, path.anchors, &settings, nullptr) & 0xFFFF, reason);
    Certificates built;
    EXPECT_EQ(build_certPath_strict(&built, path.at(0), pool, path.anchors, &settings, nullptr) & 0xFFFF, reason);
  }
}

TEST_F(Strict, EachAllocationMayFail) {
  const StrictPath path({{"user", "b", 1, 1, hosts(2) + policies(2)},
                         {"b", "root", 1, 0, kAuthority + excluded(2) + policies(2) + mappings(2)},
                         kRoot});
  const Owned<X509_CRL> crl = make_list({"b", 1, 0});
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
