// The path suite of NIST through validate_certpath. tests/data/pkits_differences.tsv says where the answer is another,
// and by which rule.
#include <cstdio>

#include "paths.h"

using namespace test;

namespace {

bool issued(const STACK *path, int cert, int issuer) {
  const X509_PUBKEY *key = get_X509_SPKI(item<X509_CERT>(path, issuer));
  return key && verify_SIG_X509_CERT(item<X509_CERT>(path, cert), key->key) == 0;
}

// Takes out what stands between a certificate and its issuer: the certificates of those who sign revocation lists only.
void drop_bystanders(STACK *path) {
  for (int i = 0; i + 1 < path->count; ++i) {
    int issuer = i + 1;
    while (issuer < path->count && !issued(path, i, issuer)) ++issuer;
    for (; issuer < path->count && issuer > i + 1; --issuer)
      free_X509_CERT(static_cast<X509_CERT *>(remove_STACK_value(path, i + 1)));
  }
}

// The code of a row; -1 for a path that cannot be read.
int validate(const Row &row, const std::string &folder) {
  const Certificates path(new_X509_CERTIFICATES());
  std::vector<std::string> files = split(row.at("intermediates"));
  files.insert(files.begin(), row.at("trust_anchor"));
  files.push_back(row.at("end_entity"));
  for (auto file = files.rbegin(); file != files.rend(); ++file)
    if (Certificate cert = read_by(readDER_X509_CERT_from_Binary, read_file(folder + "/" + *file)))
      push_STACK_value(path, cert.release());
    else
      return -1;
  drop_bystanders(path);
  const Settings settings(number_in(row, "initial_explicit_policy"), number_in(row, "initial_inhibit_any_policy"));
  const Policies user = policies_of(split(row.at("initial_policy_set")));
  Owned<node_LIST> tree;
  return validate_certpath(path, user, &tree);
}

TEST(Pkits, EveryDifferenceHasItsRule) {
  VELPKI_NEED_VECTORS("pkits", folder);
  std::map<std::string, std::string> rules;
  for (const Row &row : table("pkits_differences")) rules[row.at("test_id")] = row.at("rule");
  std::map<std::string, std::pair<int, int>> sections;  // agreeing and all
  for (const Row &row : read_tsv(folder + "/tests.tsv")) {
    const std::string &id = row.at("test_id");
    const int code = validate(row, folder);
    const bool agrees = (code == 0) == (row.at("expected") == "valid");
    EXPECT_EQ(agrees, rules.count(id) == 0) << id << " " << row.at("title") << std::hex << " " << code;
    auto &[agreeing, all] = sections[row.at("section")];
    agreeing += agrees;
    ++all;
    rules.erase(id);
  }
  for (const auto &[id, rule] : rules) ADD_FAILURE() << "no such test: " << id;
  for (const auto &[section, count] : sections)
    std::printf("section %s: %d of %d agree\n", section.c_str(), count.first, count.second);
}

template <class R>
R *read_one(const std::string &path, int (*read)(R **, const unsigned char *, int)) {
  const Bytes der = read_file(path);
  R *record = nullptr;
  EXPECT_EQ(read(&record, der.data(), int(der.size())), 0) << path;
  return record;
}

// Revocation lists count for every certificate; who signed them stands among the intermediate certificates.
int validate_strict(const Row &row, const std::string &folder) {
  const auto certificate = [&](const std::string &file) {
    return read_one(folder + "/" + file, readDER_X509_CERT_from_Binary_RFC5280);
  };
  const Certificate root(certificate(row.at("trust_anchor"))), cert(certificate(row.at("end_entity")));
  const Certificates pool(new_X509_CERTIFICATES());
  for (const std::string &each : split(row.at("intermediates"))) push_STACK_value(pool, certificate(each));
  const Owned<STACK, free_X509_CRLS> crls(new_STACK());
  for (const std::string &each : split(row.at("crls")))
    push_STACK_value(crls, read_one(folder + "/" + each, readDER_X509_CRL_from_Binary_RFC5280));
  const Owned<STACK, free_TRUST_ANCHORS> anchors(new_TRUST_ANCHORS());
  const TRUST_ANCHOR anchor{get_X509_subject(root), get_X509_SPKI(root)};
  add_TRUST_ANCHORS(anchors, &anchor);
  const Policies user = policies_of(split(row.at("initial_policy_set")));
  const auto time = time_of("20110415000000Z");
  CERTPATH_SETTINGS settings{};
  settings.time = time, settings.user_initial_policy_set = user, settings.crls = crls, settings.pool = pool;
  settings.initial_explicit_policy = number_in(row, "initial_explicit_policy");
  settings.initial_policy_mapping_inhibit = number_in(row, "initial_policy_mapping_inhibit");
  settings.initial_any_policy_inhibit = number_in(row, "initial_inhibit_any_policy");
  settings.flags = CERTPATH_CHECK_REVOCATION | CERTPATH_ALLOW_WEAK_DIGESTS;
  Certificates path;
  return build_certPath_strict(&path, cert, pool, anchors, &settings, nullptr);
}

TEST(Pkits, StrictAgrees) {
  VELPKI_NEED_VECTORS("pkits", folder);
  for (const Row &row : read_tsv(folder + "/tests.tsv")) {
    const int code = validate_strict(row, folder);
    const bool inherits = row.at("test_id") == "4.1.5";  // a DSA key without parameters is no key here
    EXPECT_EQ(code == 0, row.at("expected") == "valid" && !inherits)
        << row.at("test_id") << " " << row.at("title") << std::hex << " " << code;
  }
}

}  // namespace
