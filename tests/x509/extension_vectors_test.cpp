// Every extension of the certificates that others made, through both forms.
#include <filesystem>

#include "extension_types.h"

using namespace test;

namespace {

// How many values of one type there are; how many each form reads, and writes back octet for octet.
struct Tally {
  int all = 0, house = 0, house_same = 0, standard = 0, standard_same = 0;
  std::map<std::string, int> house_refusals, refusals;
};

const std::map<std::string, std::string> kTypeOf = [] {
  std::map<std::string, std::string> types;
  for (const Row &row : table("extension_oids")) types[row.at("oid")] = row.at("type");
  return types;
}();

void count_one(const X509_EXTENSION *extension, Tally &tally) {
  ++tally.all;
  Unit unit, back;
  const int code = get_X509_EXTENSION_unit(extension, &unit);
  if (code) return void(++tally.refusals[hex_code(code)]);
  const Type &type = type_named(kTypeOf.at(text_of(extension->object)));
  const auto run = [&](const Read &read, const Write &write, int &reads, int &same, auto &refusals) {
    if (!read) return;
    void *record = nullptr;
    if (const int refused = read(unit, &record)) return void(++refusals[hex_code(refused)]);
    ++reads;
    back.reset();
    same += !write(record, &back) && flat(back) == octets_hex(extension->value);
    type.release(record);
  };
  run(type.read, type.write, tally.house, tally.house_same, tally.house_refusals);
  run(type.read_standard, type.write_standard, tally.standard, tally.standard_same, tally.refusals);
}

std::string shown(const std::map<std::string, int> &refusals) {
  std::string text;
  for (const auto &[code, count] : refusals) text += " " + code + "x" + std::to_string(count);
  return text;
}

// What is left out in standard form: values cut short or with something behind them, and a member that is none.
TEST(ExtensionVectors, AreReadInStandardForm) {
  VELPKI_NEED_VECTORS("", folder);
  std::map<std::string, Tally> tallies;
  for (const char *kind : {"/certs/files", "/crl/issuers", "/pkits/certs"}) {
    for (const auto &entry : std::filesystem::directory_iterator(folder + kind)) {
      const Certificate cert = read_certificate_RFC5280(read_file(entry.path()));
      const X509_EXTENSIONS *extensions = get_X509_extensions(cert);
      for (int i = 0; i < get_X509_EXTENSION_count(extensions); ++i) {
        const X509_EXTENSION *each = get_X509_EXTENSION(extensions, i);
        const auto type = kTypeOf.find(text_of(each->object));
        if (type != kTypeOf.end()) count_one(each, tallies[type->second]);
      }
    }
  }
  int read = 0, same = 0, all = 0;
  for (const auto &[type, tally] : tallies) {
    printf("%-22s %5d: house %4d/%4d standard %4d/%4d refused%s; house%s\n", type.c_str(), tally.all, tally.house,
           tally.house_same, tally.standard, tally.standard_same, shown(tally.refusals).c_str(),
           shown(tally.house_refusals).c_str());
    all += tally.all;
    read += tally.standard;
    same += tally.standard_same;
  }
  EXPECT_GE(read, all - 25);
  EXPECT_GE(same, read - 55);
}

}  // namespace
