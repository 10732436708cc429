// The object registry against a scan of its rows, OpenSSL's names, and the provider identifiers.
#include <strings.h>
#include <velpki/asn1_objects.h>

#include <functional>
#include <map>

#include "support/asn1.h"

using namespace test;

namespace {

constexpr int kRows = 841;

std::string_view cell(int row, int column) { return OID_LIST(row)[column]; }
int scan(std::string_view text, int column) {
  int row = text.empty() ? kRows : 1;
  while (row < kRows && cell(row, column) != text) ++row;
  return row % kRows;
}
String of_row(int row) { return String(index_to_OBJECT_IDENTIFIER(row)); }
String decoded(const Bytes &octets) { return String(decodeToBERObjectIdentifier_n(octets.data(), int(octets.size()))); }

// What is found for every text of a column, and for its neighbours, is what a scan from row 1 finds.
TEST(Registry, LookUpsFindWhatAScanFinds) {
  int (*const look_up[])(const char *, int) = {index_from_sn, index_from_ln, index_from_oid_string};
  for (int row = 0; row < kRows; ++row) {
    for (int column = 0; column < 3; ++column) {
      const std::string text(cell(row, column)), longer = text + "1";
      std::string other = text;
      if (!other.empty()) other.back() = char(other.back() + 1);
      for (const std::string &each : {text, longer, other})
        ASSERT_EQ(look_up[column](each.c_str(), int(each.size())), scan(each, column)) << each;
      ASSERT_EQ(look_up[column](longer.c_str(), int(text.size())), 0) << "a longer text than stated";
      ASSERT_EQ(look_up[column](text.c_str(), int(text.size()) + 1), 0) << "a shorter text than stated";
    }
  }
  EXPECT_EQ(index_from_oid_string("1.3.6.1.5.5.7.48.1.2", 20), 366);
  EXPECT_EQ(index_from_sn("NULL", 4), 393);
  EXPECT_EQ(index_from_sn("UNDEF", 5), 0);
  EXPECT_EQ(index_from_sn(nullptr, 4), 0);
  EXPECT_EQ(OID_LIST(5000), OID_LIST(0));
  EXPECT_EQ(OID_LIST(-1), OID_LIST(0));
  EXPECT_EQ(sn_from_index(0), nullptr);
  EXPECT_STREQ(ln_from_index(840), "ecdsa-with-SHA256");
}

// Content octets find the row of the text that they decode to, by the index over contents and, padded, without it.
TEST(Registry, DecodedIdentifiersHaveTheTextOfTheirRow) {
  int encoded = 0;
  for (int row = 1; row < kRows; ++row) {
    const String oid = of_row(row);
    if (!oid) continue;
    ASN1_UNIT unit{};
    ASSERT_EQ(encodeToBERObjectIdentifier(&unit, 6, oid, oid->length, 0), 0) << row;
    Bytes octets = hex(flat(&unit));
    clean_ASN1_UNIT(&unit);
    const String back = decoded(octets);
    EXPECT_EQ(text_of(back), cell(row, 2));
    EXPECT_EQ(index_from_OBJECT_IDENTIFIER(back), scan(cell(row, 2), 2));
    octets.insert(octets.begin() + 3, 0x80);
    ++octets[1];
    EXPECT_EQ(text_of(decoded(octets)), cell(row, 2));
    ++encoded;
  }
  EXPECT_EQ(encoded, kRows - 1 - 48 - 12);
  const std::map<std::string, int> single = {{"060155", 11},  {"06012A", 182}, {"06012B", 379}, {"060100", 393},
                                             {"060128", 181}, {"060109", 434}, {"060150", 646}, {"060167", 647}};
  for (const auto &[octets, row] : single) {
    EXPECT_EQ(index_from_OBJECT_IDENTIFIER(decoded(hex(octets))), row) << octets;
    EXPECT_EQ(index_to_OBJECT_IDENTIFIER(row), nullptr);
  }
  for (const int row : {-1, 0, 33, 102, 404, 645, 676, 794, 841}) EXPECT_EQ(index_to_OBJECT_IDENTIFIER(row), nullptr);
}

// OpenSSL reads one SEQUENCE of all identifiers and names them; a slip in a row's text gives another name.
TEST(Registry, OpenSslGivesTheSameNames) {
  ASN1_UNIT sequence{};
  std::vector<int> rows;
  for (int row = 1; row < kRows; ++row) {
    const String oid = of_row(row);
    if (!oid || row == 831) continue;
    ASSERT_EQ(addToDERSequence(&sequence, TYPE_OBJECT_IDENTIFIER, oid, oid->length), 0);
    rows.push_back(row);
  }
  const Bytes der = hex(flat(&sequence));
  clean_ASN1_UNIT(&sequence);
  const std::string path = temporary_path("oids.der");
  ASSERT_TRUE(write_file(path, der.data(), der.size()));
  const std::string printed = run("openssl asn1parse -inform DER -in " + path + " | grep OBJECT | cut -d: -f4-");
  size_t at = 0, same = 0;
  for (const int row : rows) {
    const size_t end = printed.find('\n', at);
    ASSERT_NE(end, std::string::npos) << row;
    const std::string name = printed.substr(at, end - at);
    at = end + 1;
    const auto is = [&](const char *other) { return !strcasecmp(name.c_str(), other); };
    same += is(ln_from_index(row)) || is(sn_from_index(row)) || name == cell(row, 2);
  }
  EXPECT_GT(same, rows.size() - 40) << "of " << rows.size();
}

TEST(Registry, ProviderIdentifiers) {
  const std::map<std::string, std::function<int(int)>> functions = {
      {"get_DigestID_from_OID", [](int row) { return get_DigestID_from_OID(of_row(row)); }},
      {"get_CipherID_from_OID", [](int row) { return get_CipherID_from_OID(of_row(row)); }},
      {"get_AlgorType_from_OID", [](int row) { return get_AlgorType_from_OID(of_row(row)); }},
      {"get_OID_from_DigestID", get_OID_from_DigestID},
      {"get_OID_from_CipherID", get_OID_from_CipherID}};
  const auto number = [](const std::string &cell) { return int(std::stol(cell, nullptr, 0)); };
  for (const Row &row : table("provider_identifiers"))
    EXPECT_EQ(functions.at(row.at("function"))(number(row.at("given"))), number(row.at("answer")))
        << row.at("function") << row.at("given");
  EXPECT_EQ(get_AlgorType_from_OID(nullptr), 0);
  int sizes[5] = {};
  for (int row = 1; row < kRows; ++row) ++sizes[get_AlgorType_from_OID(of_row(row))];
  // Less those that have no identifier: MD5-SHA1, 41 of the 88 ciphers, cmsRsaEncryption.
  EXPECT_TRUE(sizes[1] == 18 && sizes[2] == 47 && sizes[3] == 27 && sizes[4] == 25);
}

TEST(Registry, ValuesAndLists) {
  const String cn = oid("2.5.4.3"), o = oid("2.5.4.10"), rsa = oid("1.2.840.113549");
  EXPECT_GT(cmp_OBJECT_IDENTIFIER(o, cn), 0);
  EXPECT_LT(cmp_OBJECT_IDENTIFIER(cn, rsa), 0);
  EXPECT_EQ(cmp_OBJECT_IDENTIFIER(cn, oid("2.5.4.6")), -1);
  EXPECT_EQ(cmp_OBJECT_IDENTIFIER(nullptr, nullptr), -1);
  EXPECT_EQ(cmp_OBJECT_IDENTIFIER(cn, nullptr), 1);
  const String named(get_OBJECT_IDENTIFIER("commonName", 0)), copy(dup_OBJECT_IDENTIFIER(named));
  EXPECT_EQ(cmp_OBJECT_IDENTIFIER(copy, cn), 0);
  EXPECT_EQ(get_OBJECT_IDENTIFIER("no such name", 0), nullptr);
  const Owned<STACK, free_OBJECT_IDENTIFIERS> list(new_OBJECT_IDENTIFIERS());
  for (const ASN1_STRING *each : {o.get(), cn.get(), cn.get()}) EXPECT_EQ(add_OBJECT_IDENTIFIERS(list, each), 0);
  EXPECT_EQ(add_OBJECT_IDENTIFIERS(list, nullptr), 1);
  EXPECT_EQ(get_OBJECT_IDENTIFIERS_index_by_OBJECT_IDENTIFIER(list, named), 1);
  EXPECT_EQ(get_OBJECT_IDENTIFIERS_index_by_OBJECT_IDENTIFIER(list, rsa), -1);
}

}  // namespace
