// validate_certpath over paths made for it: tests/data/certpath.tsv. A path is written from its root down, certificates
// apart by semicolons, each a list of words: policies (any, p, q), and what differs from an ordinary one.
#include <thread>

#include "paths.h"

using namespace test;

namespace {

const std::map<std::string, std::string> kPolicies = {
    {"any", "2.5.29.32.0"}, {"p", "1.2.3.4"}, {"q", "1.2.3.5"}, {"r", "1.2.3.6"}};
const std::map<std::string, const char *> kPolicyContents = {
    {"any", "551d2000"}, {"p", "2a0304"}, {"q", "2a0305"}, {"r", "2a0306"}};

// What the words of a certificate say.
struct Words {
  Bytes policies, others, constraints = hex("30030101ff");
  bool critical = false, authority = true;
  void take(const std::string &word, Made &made);
  void take_value(const std::string &name, const Bytes &value);
};
void Words::take(const std::string &word, Made &made) {
  const auto policy = kPolicyContents.find(word);
  if (policy != kPolicyContents.end()) return void(policies = policies + TLV(0x30, TLV(0x06, policy->second)));
  if (word.empty() || word == "-") return;
  if (word == "critical") return void(critical = true);
  if (word == "bare") return void(made.extended = false);
  if (word == "empty") return void(authority = false);
  if (word == "expired") return void(made.until = "3031303130313030303030305a");
  if (word == "forged") return void(made.signer = (made.signer + 1) % 3);
  if (word == "stranger") return void(made.issuer = "stranger");
  if (word == "selfissued") return void(made.issuer = made.subject);
  if (word == "own") return void(made.signer = made.key);
  const size_t at = word.find('=');
  ASSERT_NE(at, word.npos) << word;
  take_value(word.substr(0, at), hex(word.substr(at + 1)));
}
void Words::take_value(const std::string &name, const Bytes &value) {
  static const std::map<std::string, const char *> oids = {{"ku", "551d0f"}, {"pc", "551d24"}, {"iap", "551d36"}};
  if (name == "bc")
    constraints = value;
  else if (name == "cp")
    others = others + extension("551d20", value);
  else
    others = others + extension(oids.at(name), value);
}

Certificate certificate_of(const std::string &text, int depth, bool end) {
  Made made{"c" + std::to_string(depth),
            "c" + std::to_string(depth ? depth - 1 : 0),
            depth % 3,
            (depth ? depth - 1 : 0) % 3,
            {}};
  Words words;
  words.authority = !end;
  for (const std::string &word : split(text, ' ')) words.take(word, made);
  if (words.authority && !words.constraints.empty()) made.extensions = extension("551d13", words.constraints);
  if (!words.policies.empty())
    made.extensions = made.extensions + extension("551d20", TLV(0x30, words.policies), words.critical);
  made.extensions = made.extensions + words.others;
  if (end && made.extensions.empty() && text.find("empty") == text.npos) made.extended = false;
  return make_certificate(made);
}

// The end entity stands first.
Certificates path_of(const std::string &text) {
  Certificates path(new_X509_CERTIFICATES());
  const std::vector<std::string> certificates = split(text, ';');
  for (int depth = 0; depth < int(certificates.size()); ++depth) {
    const bool end =
        depth + 1 == int(certificates.size()) && certificates[size_t(depth)].find("bc=") == std::string::npos;
    insert_STACK_value(path, certificate_of(certificates[size_t(depth)], depth, end && depth).release(), 0);
  }
  return path;
}

std::string short_name(const VALID_POLICY_NODE *node) {
  for (const auto &[name, dotted] : kPolicies)
    if (text_of(node->data->valid_policy) == dotted) return name + (node->data->criticality ? "!" : "");
  return "?";
}
std::string text_of(const node_LIST *tree) {
  std::string out;
  for (; tree; tree = tree->next) {
    for (int i = 0; i < get_STACK_count(tree->nodes); ++i)
      out += (i ? " " : "") + short_name(item<VALID_POLICY_NODE>(tree->nodes, i));
    if (tree->next) out += "/";
  }
  return out.empty() ? "-" : out;
}

Policies user_of(const std::string &text) {
  if (text == "-") return nullptr;
  std::vector<std::string> dotted;
  for (const std::string &each : split(text, ' '))
    if (each != "none") dotted.push_back(kPolicies.at(each));
  return policies_of(dotted);
}

class CertPath : public WithThreeKeys {};

TEST_F(CertPath, EveryRowOfTheTable) {
  for (const Row &row : table("certpath")) {
    SCOPED_TRACE(row.at("path") + " | " + row.at("user") + " | " + row.at("explicit"));
    const Certificates path = path_of(row.at("path"));
    const Policies user = user_of(row.at("user"));
    const int policies = user ? user->count : 0;
    const Settings settings(number_in(row, "explicit"), 0);
    Tree tree;
    const int code = validate_certpath(path, user, &tree);
    EXPECT_EQ(code, code_at(row, "code")) << std::hex << code;
    EXPECT_EQ(text_of(tree), row.at("tree"));
    const bool walked = code == 0 || code == (F_VALIDATE_CERTPATH | ERR_INVALID_VALID_POLICY_TREE);
    if (user) EXPECT_EQ(user->count, walked ? 0 : policies);
  }
}

TEST_F(CertPath, Settings) {
  EXPECT_EQ(get_max_certificatePath_length(), 3);
  EXPECT_EQ(set_max_certificatePath_length(0), 1);
  EXPECT_EQ(set_max_certificatePath_length(-1), 1);
  EXPECT_EQ(get_max_certificatePath_length(), 3);
  EXPECT_EQ(set_max_certificatePath_length(1), 0);
  EXPECT_EQ(get_max_certificatePath_length(), 1);
  Tree tree;
  EXPECT_EQ(validate_certpath(path_of("-;-;-;-"), nullptr, &tree), 0);  // the length ends nothing
  EXPECT_EQ(set_max_certificatePath_length(3), 0);
  set_initial_policy_mapping_inhibit(1);
  EXPECT_EQ(get_initial_policy_mapping_inhibit(), 0);
  EXPECT_EQ(get_initial_explicit_policy() + get_initial_any_policy_inhibit(), 0);
  EXPECT_EQ(validate_certpath(nullptr, nullptr, &tree), F_VALIDATE_CERTPATH | 0x49);
  EXPECT_EQ(validate_certpath(path_of(""), nullptr, nullptr), F_VALIDATE_CERTPATH | 0x49);
  const Certificates hollow(new_X509_CERTIFICATES());
  EXPECT_EQ(validate_certpath(hollow, nullptr, &tree), 0);
  EXPECT_EQ(text_of(tree), "any");
  push_STACK_value(hollow, nullptr);
  EXPECT_EQ(validate_certpath(hollow, nullptr, &tree), F_VALIDATE_CERTPATH | 0x49);
  EXPECT_EQ(is_selfSigned(nullptr), 1);
}

// A tree of the caller's grows, and a deeper one lets a self-issued certificate in the middle pass.
TEST_F(CertPath, ATreeThatIsPassedIn) {
  const Certificates path = path_of("-;p;p"), middle = path_of("-;selfissued own;p");
  Tree tree;
  ASSERT_EQ(validate_certpath(path, nullptr, &tree), 0);
  EXPECT_EQ(text_of(tree), "any/p/p");
  EXPECT_EQ(validate_certpath(path, nullptr, &tree), 0);
  EXPECT_EQ(text_of(tree), "any/p p/p p p");
  Tree none;
  EXPECT_EQ(validate_certpath(middle, nullptr, &none), F_PROCESS_BASIC_CERTIFICATE | 0x49);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(validate_certpath(middle, nullptr, &tree), 0);
  const Policies nothing = policies_of({});
  EXPECT_EQ(validate_certpath(path, nothing, &tree), 0);
  EXPECT_EQ(tree, nullptr);
}

TEST_F(CertPath, TheTreeIsBounded) {
  std::string many;
  for (int i = 0; i < 100; ++i) many += " p";
  const Certificates path = path_of("-;" + many + ";" + many + ";" + many);
  Tree tree;
  EXPECT_EQ(validate_certpath(path, nullptr, &tree), F_ADD_VALID_POLICY_TREE_LIST | ERR_INVALID_VALID_POLICY_TREE);
  EXPECT_EQ(tree, nullptr);
}

TEST_F(CertPath, EachAllocationMayFail) {
  const Certificates path = path_of("-;p q pc=3003800102 iap=020101;p ku=030206c0");
  Tree tree;
  ASSERT_EQ(validate_certpath(path, nullptr, &tree), 0);
  tree.reset();
  int code = 1;
  for (long n = 0; code && n < 5000; ++n) {
    const Policies user = policies_of({"1.2.3.4", "1.2.3.5", "1.2.3.6"});
    const size_t before = live_blocks();
    fail_allocation(n);
    code = validate_certpath(path, user, &tree);
    fail_allocation(-1);
    if (!code) break;
    const bool of_dates = (code & ~0xFFFF) == F_VERIFY_X509_VALIDITY;  // which cannot tell
    EXPECT_TRUE(of_dates || (code & 0xFFFF) == 0x3C) << n << std::hex << " " << code;
    ASSERT_TRUE(live_blocks() == before && !tree) << n;
  }
  EXPECT_EQ(code, 0);
  EXPECT_EQ(text_of(tree), "any/p/p");
}

TEST_F(CertPath, ThreadsValidateAtTheSameTime) {
  const auto run = [] {
    const Certificates path = path_of("-;p;p");
    for (int i = 0; i < 50; ++i) {
      Tree tree;
      EXPECT_EQ(validate_certpath(path, nullptr, &tree), 0);
      EXPECT_EQ(text_of(tree), "any/p/p");
    }
  };
  std::thread first(run);
  first.join();
  std::thread second(run), third(run);
  second.join();
  third.join();
}

TEST(PolicyTree, LevelsAreListed) {
  node_LIST *list = new_node_LIST();
  EXPECT_EQ(list->capacity, 64);
  for (const char *dotted : {"1.2.3.4", "1.2.3.5"}) {
    VALID_POLICY_NODE *node = new_VALID_POLICY_NODE();
    node->data = new_VALID_POLICY_DATA();
    node->data->valid_policy = oid(dotted).release();
    VALID_POLICY_NODES *nodes = new_VALID_POLICY_NODES();
    EXPECT_EQ(add_VALID_POLICY_NODE(nodes, node), 0);
    EXPECT_EQ(add_VALID_POLICY_TREE_LIST(list, nodes), 0);
  }
  EXPECT_EQ(get_count_from_node_LIST(list), 3);
  list = reverse_node_LIST(list);
  EXPECT_EQ(text_of(list), "q/p/");
  EXPECT_EQ(captured_stdout([list] { print_VALID_POLICY_TREE_LIST(list); }),
            "[0] Valid Policy : 1.2.3.5\n[0] Valid Policy : 1.2.3.4\n");
  list = remove_node_LIST(list, list->next);
  list = remove_node_LIST(list, list->next);
  EXPECT_EQ(text_of(list), "q");
  EXPECT_EQ(remove_node_LIST(list, nullptr), list);
  EXPECT_EQ(add_VALID_POLICY_TREE_LIST(list, nullptr), F_ADD_VALID_POLICY_TREE_LIST | 0x49);
  EXPECT_EQ(add_VALID_POLICY_NODE(nullptr, nullptr), 1);
  EXPECT_EQ(remove_node_LIST(list, list), nullptr);
  EXPECT_EQ(get_count_from_node_LIST(nullptr), 0);
}

}  // namespace
