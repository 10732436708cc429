#include "support/json.h"

#include <nlohmann/json.hpp>

namespace test {

namespace {

Json of(const nlohmann::json &value) {
  Json out;
  if (value.is_object())
    for (const auto &[name, member] : value.items()) out.fields[name] = of(member);
  else if (value.is_array())
    for (const auto &each : value) out.items.push_back(of(each));
  else
    out.text = value.is_string() ? value.get<std::string>() : value.dump();
  return out;
}

}  // namespace

Json parse_json(const std::string &text) { return of(nlohmann::json::parse(text)); }
Json read_json(const std::string &path) {
  const Bytes file = read_file(path);
  return parse_json({file.begin(), file.end()});
}

}  // namespace test
