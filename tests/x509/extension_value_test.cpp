// Extension values in both forms: what each reads, what it writes back, and what comes of mixing them.
#include "extension_types.h"

using namespace test;

namespace {

struct Case {
  const char *column;
  const Type &type;
  const Read &read;
  const Write &write;
  std::string octets, wanted;
};

// Every row of the table in every form that it has a result for.
void for_each_case(const std::function<void(const Case &)> &run) {
  for (const Row &row : table("extension_values")) {
    const Type &type = type_named(row.at("type"));
    const std::string &octets = row.at("octets");
    SCOPED_TRACE(row.at("type") + " " + octets);
    const auto with = [&](const char *column, const Read &read, const Write &write) {
      const std::string &wanted = row.at(column);
      if (wanted != "-") run({column, type, read, write, octets, wanted == "=" ? octets : wanted});
    };
    with("house", type.read, type.write);
    with("standard", type.read_standard, type.write_standard);
    with("house_to_standard", type.read, type.write_standard);
  }
}

TEST(ExtensionValues, ReadAndWriteAsTheirFormSays) {
  for_each_case([](const Case &each) {
    const Unit in = unit(each.octets);
    EXPECT_EQ(passed_through(in, each.type, each.read, each.write), each.wanted) << each.column;
  });
}

TEST(ExtensionValues, SurviveEachFailedAllocation) {
  for_each_case([](const Case &each) {
    const Unit in = unit(each.octets);
    survive_each_failed_allocation([&] {
      const std::string result = passed_through(in, each.type, each.read, each.write);
      if (result != each.wanted && result != "-") EXPECT_EQ(result.substr(4), "003c") << each.column;
      return result == each.wanted;
    });
  });
}

// One changed octet, one missing, at every place and at the end of a page: no crash, no leak.
TEST(ExtensionValues, SurviveDamage) {
  for_each_case([](const Case &each) {
    const Bytes sample = hex(each.octets);
    GuardedBytes guarded(sample.size());
    const auto run = [&](const Bytes &octets) {
      const Unit in(decodeToBERSequence_n(guarded.place(octets.data(), octets.size()), int(octets.size())));
      if (in) passed_through(in, each.type, each.read, each.write);
    };
    const size_t before = live_blocks();
    each_damage(sample, run);
    EXPECT_EQ(live_blocks(), before);
  });
}

// Lists are appended to, all or nothing; records keep what they had.
TEST(ExtensionValues, FillWhatTheCallerHas) {
  const Unit good = unit("300b8204612e6b728603753a78"), bad = unit("30058603753a7a0c");
  Owned<STACK, free_GENERAL_NAMES> names;
  ASSERT_EQ(Seq_to_GENERAL_NAMES(good, &names), 0);
  const STACK *const address = names;
  EXPECT_EQ(Seq_to_GENERAL_NAMES(unit("30068603753a7900"), &names) & 0xFFFF, ERR_ASN1_DECODING);
  EXPECT_EQ(names->count, 2);
  EXPECT_EQ(Seq_to_GENERAL_NAMES_RFC5280(unit("30058603753a79"), &names), 0);
  EXPECT_EQ(names, address);
  ASSERT_EQ(names->count, 3);
  EXPECT_EQ(text_of(static_cast<ASN1_STRING *>(static_cast<GENERAL_NAME *>(names->data[2])->value)), "u:y");
}

// The length of an rfc822Name or dNSName is its first length octet, and nothing behind the name is read.
TEST(ExtensionValues, HouseNamesAreMeasuredByOneLengthOctet) {
  const struct {
    int size;
    std::string header;
    int read;
  } cases[] = {{127, "817f", 127},     {128, "818180", 128}, {129, "818181", 129},
               {256, "81820100", 130}, {5, "818105", 5},     {200, "8181c8", 129}};
  for (const auto &each : cases) {
    const Bytes octets = hex(each.header) + Bytes(size_t(each.size), 'a');
    GuardedBytes guarded(octets.size());
    const Unit in(decodeToBERSequence_n(guarded.place(octets.data(), octets.size()), int(octets.size())));
    for (const bool standard : {false, true}) {
      Owned<GENERAL_NAME> name;
      ASSERT_EQ(standard ? Seq_to_GENERAL_NAME_RFC5280(in, &name) : Seq_to_GENERAL_NAME(in, &name), 0);
      EXPECT_EQ(static_cast<ASN1_STRING *>(name->value)->length, standard ? each.size : each.read) << each.header;
    }
  }
}

// The extensions of one certificate in the order of this table; the heading of each is checked by its number and OID.
TEST(ExtensionValues, AreShownOnTheTerminal) {
  const auto lines = [](const std::string &cell) {
    std::string text;
    for (size_t i = 0; i < cell.size(); ++i) text += cell[i] != '\\' ? cell[i] : cell[++i] == 'n' ? '\n' : cell[i];
    return text;
  };
  for (const Row &row : table("extension_prints")) {
    const std::string &value = row.at("value"), house = lines(row.at("house")), &standard = row.at("standard");
    CertificateParts parts;
    parts.tail = TLV(0xA3, TLV(0x30, TLV(0x30, TLV(0x06, row.at("oid")) + TLV(0x04, value))));
    const Certificate cert = read_certificate(parts.der());
    ASSERT_NE(cert, nullptr);
    const auto shown = [&](void (*print)(const X509_CERT *)) {
      const std::string text = captured_stdout([&] { print(cert); });
      EXPECT_EQ(text.find("\n - Extension (0) : "), 0u) << text;
      return text.substr(std::min(text.find('\n', 1) + 1, text.size()));
    };
    EXPECT_EQ(shown(print_X509_Extension), house) << value;
    EXPECT_EQ(shown(print_X509_Extension_RFC5280), standard == "=" ? house : lines(standard)) << value;
  }
}

}  // namespace
