#include "support/json.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace test {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}
  Json whole() {
    Json value = read();
    if (peek()) fail("text after the value");
    return value;
  }

 private:
  [[noreturn]] void fail(const char *why) const {
    std::fprintf(stderr, "JSON at %zu: %s\n", at_, why);
    std::abort();
  }
  char peek() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  bool take(char c) {
    if (peek() != c) return false;
    ++at_;
    return true;
  }
  void expect(char c) {
    if (!take(c)) fail("another character was expected");
  }

  Json read() {
    switch (peek()) {
      case '{':
        return object();
      case '[':
        return array();
      case '"':
        return {Json::kString, string(), {}, {}};
      default:
        return literal();
    }
  }
  Json object() {
    Json out{Json::kObject, {}, {}, {}};
    expect('{');
    while (!take('}')) {
      std::string name = string();
      expect(':');
      out.members.emplace_back(std::move(name), read());
      if (peek() != '}') expect(',');
    }
    return out;
  }
  Json array() {
    Json out{Json::kArray, {}, {}, {}};
    expect('[');
    while (!take(']')) {
      out.items.push_back(read());
      if (peek() != ']') expect(',');
    }
    return out;
  }
  Json literal() {
    const size_t start = at_;
    while (at_ < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[at_])) || text_[at_] == '-' ||
                                  text_[at_] == '+' || text_[at_] == '.')) {
      ++at_;
    }
    std::string text(text_.substr(start, at_ - start));
    if (text.empty()) fail("no value");
    return {text == "null" ? Json::kNull : Json::kLiteral, text, {}, {}};
  }
  std::string string() {
    std::string out;
    for (expect('"'); at_ < text_.size(); ++at_) {
      if (text_[at_] == '"') return ++at_, out;
      if (text_[at_] == '\\')
        escape(out);
      else
        out += text_[at_];
    }
    fail("no end of a string");
  }
  // On the backslash; leaves the last character of the escape to be passed.
  void escape(std::string &out) {
    const std::string_view plain = "\"\\/bfnrt", meant = "\"\\/\b\f\n\r\t";
    const char c = ++at_ < text_.size() ? text_[at_] : '\0';
    if (const size_t i = plain.find(c); i != plain.npos) {
      out += meant[i];
    } else if (c == 'u' && at_ + 4 < text_.size()) {
      append_utf8(out, std::strtoul(std::string(text_.substr(at_ + 1, 4)).c_str(), nullptr, 16));
      at_ += 4;
    } else {
      fail("an unknown escape");
    }
  }
  static void append_utf8(std::string &out, unsigned long code) {
    if (code < 0x80) {
      out += char(code);
    } else if (code < 0x800) {
      out += {char(0xC0 | code >> 6), char(0x80 | (code & 0x3F))};
    } else {
      out += {char(0xE0 | code >> 12), char(0x80 | (code >> 6 & 0x3F)), char(0x80 | (code & 0x3F))};
    }
  }

  std::string_view text_;
  size_t at_ = 0;
};

}  // namespace

const Json &Json::operator[](std::string_view name) const {
  static const Json missing;
  for (const auto &[key, value] : members) {
    if (key == name) return value;
  }
  return missing;
}

long Json::number() const { return std::strtol(text.c_str(), nullptr, 10); }

Bytes Json::octets() const { return hex(text); }

Json read_json(const std::string &path) {
  const Bytes text = read_file(path);
  return Reader({reinterpret_cast<const char *>(text.data()), text.size()}).whole();
}

}  // namespace test
