// A reader of JSON test vectors: a tree of values, every member looked up by name.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/support.h"

namespace test {

// A string or literal has `text`, an array `items`, an object `members`. What is missing is the empty value, so that
// look-ups can be chained.
struct Json {
  enum Kind { kNull, kLiteral, kString, kArray, kObject };
  Kind kind = kNull;
  std::string text;
  std::vector<Json> items;
  std::vector<std::pair<std::string, Json>> members;

  const Json &operator[](std::string_view name) const;
  bool has(std::string_view name) const { return (*this)[name].kind != kNull; }
  bool is_true() const { return kind == kLiteral && text == "true"; }
  long number() const;   // 0 when it is none
  Bytes octets() const;  // of hexadecimal text
};

// Aborts on a file that is no JSON: vectors are not hostile input.
Json read_json(const std::string &path);

}  // namespace test
