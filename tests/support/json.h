// A reader of the JSON files that test vectors come in.
#pragma once

#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/support.h"

namespace test {

// Strings, numbers and true, false, null are `text`; an element that is missing is an empty one.
struct Json {
  std::string text;
  std::vector<Json> items;
  std::map<std::string, Json> fields;

  const Json &operator[](const std::string &name) const & {
    static const Json none;
    const auto found = fields.find(name);
    return found == fields.end() ? none : found->second;
  }
  // By value of one that goes away, so that a loop over it is safe.
  Json operator[](const std::string &name) && { return std::as_const(*this)[name]; }
  bool has(const std::string &name) const { return fields.count(name) != 0; }
  Bytes octets() const { return hex(text); }
  int number() const { return std::atoi(text.c_str()); }
};

// Of a file, and of text. What is not JSON ends the program.
Json read_json(const std::string &path);
Json parse_json(const std::string &text);

// A group of values that independent code made for the Korean scheme.
inline const Json &korean(const char *group) {
  static const Json all = read_json(vectors("../reference/korean_vectors.json"));
  return all[group];
}

}  // namespace test

#define VELPKI_NEED_KOREAN \
  if (test::vectors("../reference/korean_vectors.json").empty()) GTEST_SKIP() << "no vectors here; set VELPKI_VECTORS"
