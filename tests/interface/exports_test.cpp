// Headers, version script and libraries say the same; nothing else is exported and nothing else is linked.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "support/support.h"

namespace {

using Names = std::set<std::string>;

std::string text_of_file(const std::filesystem::path &path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// The names that a header declares with VELPKI_API.
Names declared_in(const std::filesystem::path &header) {
  static const std::regex comment("/\\*[^*]*\\*+([^/*][^*]*\\*+)*/"), declaration("VELPKI_API\\s([^;]*);"),
      function("^[^(]*?(\\w+)\\s*\\("), variable("(\\w+)\\s*(\\[[^\\]]*\\])?\\s*$");
  const std::string text = std::regex_replace(text_of_file(header), comment, " ");
  Names names;
  for (std::sregex_iterator at(text.begin(), text.end(), declaration), end; at != end; ++at) {
    const std::string body = (*at)[1];
    std::smatch match;
    if (std::regex_search(body, match, body.rfind("extern", 0) == 0 ? variable : function)) names.insert(match[1]);
  }
  return names;
}

Names exported_by(const std::string &library, const std::string &version) {
  std::istringstream lines(test::run("nm -D --defined-only " + library + " | awk '{print $3}'"));
  Names names;
  for (std::string name; lines >> name;) {
    const size_t at = name.find('@');
    if (at == name.npos) {
      EXPECT_EQ(name, version);
      continue;
    }
    EXPECT_EQ(name.substr(name.rfind('@') + 1), version) << name;
    names.insert(name.substr(0, at));
  }
  names.erase(version);
  return names;
}

const std::string kLibrary = VELPKI_BUILD_DIR "/lib/libvelPKI.so", kProvider = VELPKI_BUILD_DIR "/lib/libvelCrypto.so";

TEST(Interface, LibraryExportsWhatTheHeadersDeclare) {
  Names declared;
  for (const auto &entry : std::filesystem::directory_iterator(VELPKI_SOURCE_DIR "/include/velpki"))
    if (entry.path().extension() == ".h" && entry.path().filename() != "pkv.h")
      declared.merge(declared_in(entry.path()));
  EXPECT_GT(declared.size(), 300u);
  EXPECT_EQ(exported_by(kLibrary, "VELPKI_1"), declared) << "run scripts/update_version_script";
}

TEST(Interface, ProviderExportsItsContract) {
  EXPECT_EQ(exported_by(kProvider, "VELCRYPTO_1"), declared_in(VELPKI_SOURCE_DIR "/include/velpki/pkv.h"));
}

// The functions declared from a place up to the next comment that begins a line.
std::vector<std::string> functions_at(const std::string &text, size_t place) {
  static const std::regex function("VELPKI_API\\s[^;(]*?(\\w+)\\s*\\(");
  const std::string declarations = text.substr(place, text.find("\n/*", place) - place);
  std::vector<std::string> names;
  for (std::sregex_iterator at(declarations.begin(), declarations.end(), function), end; at != end; ++at)
    names.push_back((*at)[1]);
  return names;
}

// A warning of a whole header, and one of a member of a record, is followed by no function.
TEST(Interface, EveryWarningIsOnThePageOfOddities) {
  const std::string page = text_of_file(VELPKI_SOURCE_DIR "/docs/guide/oddities.md");
  int warned = 0;
  for (const auto &entry : std::filesystem::directory_iterator(VELPKI_SOURCE_DIR "/include/velpki")) {
    const std::string text = text_of_file(entry.path());
    for (size_t at = text.find("@warning"); at != text.npos; at = text.find("@warning", text.find("*/", at))) {
      const auto names = functions_at(text, text.find("*/", at));
      const auto named = [&](const std::string &name) { return page.find('`' + name + '`') != page.npos; };
      warned += !names.empty();
      EXPECT_TRUE(names.empty() || std::any_of(names.begin(), names.end(), named)) << entry.path() << ": " << names[0];
    }
  }
  EXPECT_GT(warned, 90);
}

TEST(Interface, LinksNothingElseAndHasItsName) {
  const auto soname = [](const std::string &library) {
    return test::run("readelf -d " + library + " | sed -n 's/.*SONAME.*\\[\\(.*\\)\\]/\\1/p'");
  };
  EXPECT_EQ(soname(kLibrary) + soname(kProvider), "libvelPKI.so.1\nlibvelCrypto.so.1\n");
  const auto needed = [](const std::string &library) {
    return test::run("readelf -d " + library +
                     " | sed -n 's/.*NEEDED.*\\[\\(.*\\)\\]/\\1/p' | grep -vE '^(libc|libm|ld-linux.*|"
                     "linux.*|lib[a-z]*san|libclang_rt.*|libgcc_s)\\.so' | sort | tr '\\n' ' '");
  };
  EXPECT_EQ(needed(kLibrary), "libvelCrypto.so.1 ");
  EXPECT_EQ(needed(kProvider), "libcrypto.so.3 librhash.so.0 ");
}

}  // namespace
