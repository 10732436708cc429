// A reader of the JSON files that test vectors come in.
#pragma once

#include <cstdlib>
#include <cstring>
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

// Aborts on what is not JSON. Escapes other than \" \\ \/ are kept as they stand.
class JsonReader {
 public:
  explicit JsonReader(const Bytes &file) : at_(file.data()), end_(at_ + file.size()) {}
  Json read() {
    Json out;
    const char first = peek();
    if (first == '{')
      read_fields(out);
    else if (first == '[')
      read_items(out);
    else if (first == '"')
      out.text = read_string();
    else
      while (at_ < end_ && !std::strchr(",]} \n\r\t", *at_)) out.text += char(*at_++);
    return out;
  }

 private:
  char peek() {
    while (at_ < end_ && std::strchr(" \n\r\t", *at_)) ++at_;
    if (at_ == end_) std::abort();
    return char(*at_);
  }
  bool take(char c) { return peek() == c ? ++at_, true : false; }
  void expect(char c) {
    if (!take(c)) std::abort();
  }
  std::string read_string() {
    std::string out;
    expect('"');
    for (; at_ < end_ && *at_ != '"'; ++at_) {
      if (*at_ == '\\' && end_ - at_ > 1 && std::strchr("\"\\/", at_[1])) ++at_;
      out += char(*at_);
    }
    expect('"');
    return out;
  }
  void read_items(Json &out) {
    expect('[');
    if (take(']')) return;
    do out.items.push_back(read());
    while (take(','));
    expect(']');
  }
  void read_fields(Json &out) {
    expect('{');
    if (take('}')) return;
    do {
      const std::string name = (peek(), read_string());
      expect(':');
      out.fields[name] = read();
    } while (take(','));
    expect('}');
  }
  const uint8_t *at_, *end_;
};

inline Json read_json(const std::string &path) { return JsonReader(read_file(path)).read(); }

// A group of values that independent code made for the Korean scheme.
inline const Json &korean(const char *group) {
  static const Json all = read_json(vectors("../reference/korean_vectors.json"));
  return all[group];
}

}  // namespace test

#define VELPKI_NEED_KOREAN \
  if (test::vectors("../reference/korean_vectors.json").empty()) GTEST_SKIP() << "no vectors here; set VELPKI_VECTORS"
