// Suites of paths through validate_certpath_strict. tests/data/certpath_suites.tsv says where the answer is
// another, and why.
#include <algorithm>
#include <cstdio>

#include <velpki/base64.h>
#include <velpki/x509_crl.h>
#include "paths.h"

#include "support/json.h"

using namespace test;

namespace {

std::string digits_of(const std::string &iso) {  // 2021-10-05T12:00:00+00:00 as a GeneralizedTime
  std::string out;
  for (const char c : iso.substr(0, 19))
    if (c >= '0' && c <= '9') out += c;
  return out + "Z";
}

// False where the text is no certificate.
template <class R = X509_CERT>
bool add_text(STACK *list, const std::string &base64,
              int (*read)(R **, const unsigned char *, int) = readDER_X509_CERT_from_Binary_RFC5280) {
  unsigned char *der = nullptr;
  const int length = decode_Base64(base64.data(), int(base64.size()), &der);
  R *record = nullptr;
  const bool done = length > 0 && read(&record, der, length) == 0;
  PKV_Free(der, __FILE__, __LINE__);
  return done && push_STACK_value(list, record);
}

// The text between the first and the last line of a PEM block, without line feeds.
std::string base64_of(const std::string &pem) {
  const size_t start = pem.find('\n') + 1;
  std::string out = pem.substr(start, pem.rfind("\n-----END") - start);
  out.erase(std::remove(out.begin(), out.end(), '\n'), out.end());
  return out;
}

// One object a line.
std::vector<Json> rows_of(const std::string &path) {
  const Bytes file = read_file(path);
  std::vector<Json> rows;
  for (const std::string &line : split(std::string(file.begin(), file.end()), '\n'))
    if (!line.empty()) rows.push_back(parse_json(line));
  return rows;
}

void free_crls(STACK *crls) {
  free_STACK_values(crls, [](void *crl) { free_X509_CRL(static_cast<X509_CRL *>(crl)); });
}
using Anchors = Owned<STACK, free_TRUST_ANCHORS>;
void add_anchor(TRUST_ANCHORS *anchors, const X509_CERT *cert) {
  const TRUST_ANCHOR anchor{get_X509_subject(cert), get_X509_SPKI(cert)};
  add_TRUST_ANCHORS(anchors, &anchor);
}
Anchors anchors_of(const STACK *certs) {
  Anchors out(new_TRUST_ANCHORS());
  for (int i = 0; i < certs->count; ++i) add_anchor(out, static_cast<X509_CERT *>(get_STACK_value(certs, i)));
  return out;
}

// Compares answers with a suite's, and counts.
class Suite {
 public:
  explicit Suite(const std::string &name) : name_(name) {
    for (const Row &row : table("certpath_suites"))
      if (row.at("suite") == name) rules_[row.at("id")] = row.at("reason");
  }
  ~Suite() {
    for (const auto &[id, rule] : rules_) ADD_FAILURE() << "no such row: " << id;
    std::printf("%s: %d agree, %d differ, %d left out\n", name_.c_str(), agree_, differ_, left_out_);
  }
  void leave_out() { ++left_out_; }
  void compare(const std::string &id, int code, const std::string &expected) {
    char text[128];
    describe_velpki_code(code, text, sizeof text);
    const bool agrees = (code == 0) == (expected == "valid");
    EXPECT_EQ(agrees, rules_.erase(id) == 0) << id << ": " << expected << ", and here " << text;
    ++(agrees ? agree_ : differ_);
  }

 private:
  std::string name_;
  std::map<std::string, std::string> rules_;
  int agree_ = 0, differ_ = 0, left_out_ = 0;
};

int validate_chain(const Json &row) {
  const Certificates path(new_X509_CERTIFICATES()), roots(new_X509_CERTIFICATES());
  for (const Json &each : row["chain"].items)
    if (!add_text(path, each.text)) return -1;
  for (const Json &each : row["trust_anchors"].items)
    if (!add_text(roots, each.text)) return -1;
  const Owned<STACK, free_crls> crls(new_STACK());
  for (const Json &each : row["crls"].items)
    if (!add_text<X509_CRL>(crls, each.text, readDER_X509_CRL_from_Binary_RFC5280)) return -1;
  const auto time = time_of(digits_of(row["time"].text));
  CERTPATH_SETTINGS settings{};
  settings.time = time;
  settings.flags = CERTPATH_ALLOW_WEAK_DIGESTS;
  if (row["id"].text.find("/CRL_") != std::string::npos) settings.flags |= CERTPATH_CHECK_REVOCATION;
  settings.crls = crls;
  if (row["anchor_mode"].text.find("constraints") != std::string::npos) {
    settings.flags |= CERTPATH_ANCHOR_CONSTRAINTS;
    for (int i = 0; i < roots->count; ++i)
      push_STACK_value(path, dup_X509_CERT(static_cast<X509_CERT *>(get_STACK_value(roots, i))));
  }
  return validate_certpath_strict(path, anchors_of(roots), &settings, nullptr);
}

TEST(PathSuites, Chains) {
  VELPKI_NEED_VECTORS("chains", folder);
  Suite suite("chains");
  for (const Json &row : rows_of(folder + "/chains.jsonl")) {
    const bool contested = row["note"].text.find("contested") != std::string::npos ||
                           row["note"].text.find("description") != std::string::npos;
    contested ? suite.leave_out() : suite.compare(row["id"].text, validate_chain(row), row["expected_rfc5280"].text);
  }
}

// Without the peer's name and purpose, which are no matter of paths: rows whose expectation hangs on these are left
// out.
int build_path(const Json &row) {
  const Certificates roots(new_X509_CERTIFICATES()), pool(new_X509_CERTIFICATES()), peer(new_X509_CERTIFICATES());
  const Owned<STACK, free_crls> crls(new_STACK());
  const auto add = [](STACK *list, const Json &from, auto read) {
    bool all = true;
    for (const Json &each : from.items) all = add_text(list, base64_of(each.text), read) && all;
    return all;
  };
  const auto certificate = readDER_X509_CERT_from_Binary_RFC5280;
  if (!add_text(peer, base64_of(row["peer_certificate"].text), certificate)) return -1;
  add(roots, row["trusted_certs"], certificate);
  add(pool, row["trusted_certs"], certificate);
  add(pool, row["untrusted_intermediates"], certificate);
  if (!add(crls, row["crls"], readDER_X509_CRL_from_Binary_RFC5280)) return -1;
  CERTPATH_SETTINGS settings{};
  const std::string at = row["validation_time"].text;
  const auto time = time_of(digits_of(at == "null" ? "2026-01-01T00:00:00" : at));
  settings.time = time, settings.crls = crls,
  settings.flags = CERTPATH_ANCHOR_CONSTRAINTS | (crls->count ? CERTPATH_CHECK_REVOCATION_END_ENTITY : 0);
  if (row["max_chain_depth"].text != "null") settings.max_length = row["max_chain_depth"].number() + 1;
  Certificates path;
  return build_certPath_strict(&path, static_cast<X509_CERT *>(peer->data[0]), pool, anchors_of(roots), &settings,
                               nullptr);
}

TEST(PathSuites, Limbo) {
  VELPKI_NEED_VECTORS("limbo", folder);
  Suite suite("limbo");
  for (const Json &row : rows_of(folder + "/limbo.jsonl")) {
    const std::string &expected = row["expected"].text;
    row["openssl_path_only"].text == expected ? suite.compare(row["id"].text, build_path(row), expected)
                                              : suite.leave_out();
  }
}

}  // namespace
