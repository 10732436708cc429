// Names, algorithm identifiers, attributes and extension records.
#include <climits>

#include "samples.h"

using namespace test;

namespace {

constexpr int kCommonName = 13;

Name name(std::initializer_list<std::pair<int, const char *>> children) {
  Name made(new_X509_NAME());
  for (const auto &[type, text] : children) {
    EXPECT_EQ(
        add_X509_NAME_child_OID_index(made, kCommonName, type, reinterpret_cast<const unsigned char *>(text), -1, -1),
        0);
  }
  return made;
}

Name decoded_name(const Bytes &der, int (*decode)(ASN1_UNIT *, X509_NAME **) = Seq_to_X509_NAME, int *code = nullptr) {
  Name made;
  const int result = decode(unit(der), &made);
  if (code) *code = result;
  return made;
}

const Bytes kCn = TLV(0x06, "550403");
Bytes ava(const Bytes &value) { return TLV(0x30, kCn + value); }

TEST(Names, Compare) {
  const Name a = name({{12, "a"}}), same = name({{12, "a"}}), other_type = name({{19, "a"}}),
             upper = name({{12, "A "}});
  const Name two = name({{12, "a"}, {12, "b"}}), unencodable = name({{26, "a"}}), empty = name({});
  EXPECT_EQ(cmp_X509_NAME(a, same), 0);
  EXPECT_EQ(cmp_X509_NAME(a, other_type), -1);
  EXPECT_EQ(cmp_X509_NAME(a, two), -1);
  EXPECT_EQ(cmp_X509_NAME(a, nullptr), 1);
  EXPECT_EQ(cmp_X509_NAME(unencodable, unencodable), 1);
  EXPECT_EQ(cmp_X509_NAME(a, unencodable), 1);
  EXPECT_EQ(cmp_X509_NAME(empty, empty), 0);
  EXPECT_EQ(cmp_X509_NAME_RFC5280(a, other_type), 0);
  EXPECT_EQ(cmp_X509_NAME_RFC5280(a, upper), 0);
  EXPECT_EQ(cmp_X509_NAME_RFC5280(a, two), -1);
  EXPECT_EQ(cmp_X509_NAME_RFC5280(unencodable, a), 0);
}

// Values that encode alike although their members differ: an INTEGER with a zero in front.
TEST(Names, CompareByEncoding) {
  const Name padded(new_X509_NAME()), plain(new_X509_NAME());
  const unsigned char zero_five[] = {0, 5}, five[] = {5};
  add_X509_NAME_child_OID_index(padded, kCommonName, 2, zero_five, 2, -1);
  add_X509_NAME_child_OID_index(plain, kCommonName, 2, five, 1, -1);
  EXPECT_EQ(cmp_X509_NAME(padded, plain), 0);
  const Name low(new_X509_NAME()), high(new_X509_NAME());
  add_X509_NAME_child_OID(low, oid("0.90"), TYPE_UTF8_STRING, five, 1, -1);
  add_X509_NAME_child_OID(high, oid("2.10"), TYPE_UTF8_STRING, five, 1, -1);
  EXPECT_EQ(cmp_X509_NAME(low, high), 0) << "one encoding for both";
}

TEST(Names, StandardComparisonFoldsText) {
  for (const Row &row : table("name_texts")) {
    const auto named = [&](const char *type, const char *octets) {
      const Bytes text = hex(row.at(octets));
      return name({{number_in(row, type), std::string(text.begin(), text.end()).c_str()}});
    };
    const Name a = named("type_a", "a"), b = named("type_b", "b");
    EXPECT_EQ(cmp_X509_NAME_RFC5280(a, b), number_in(row, "order")) << row.at("why");
  }
  const Bytes one = ava(TLV(0x0C, "41")), other = ava(TLV(0x0C, "42"));
  const Name set = decoded_name(TLV(0x30, TLV(0x31, one + other)), Seq_to_X509_NAME_RFC5280);
  const Name turned = decoded_name(TLV(0x30, TLV(0x31, other + one)), Seq_to_X509_NAME_RFC5280);
  const Name apart = decoded_name(TLV(0x30, TLV(0x31, one) + TLV(0x31, other)), Seq_to_X509_NAME_RFC5280);
  EXPECT_EQ(cmp_X509_NAME_RFC5280(set, turned), 0);
  EXPECT_EQ(cmp_X509_NAME_RFC5280(set, apart), -1);
}

TEST(Names, MultivaluedSetsLoseAllButTheFirst) {
  const Bytes der = TLV(0x30, TLV(0x31, ava(TLV(0x0C, "41")) + ava(TLV(0x0C, "42"))));
  const Name plain = decoded_name(der), standard = decoded_name(der, Seq_to_X509_NAME_RFC5280);
  EXPECT_EQ(get_X509_NAME_count(plain), 1);
  EXPECT_EQ(get_X509_NAME_count(standard), 2);
  EXPECT_EQ(hex_of(X509_NAME_to_Seq, plain), to_hex(TLV(0x30, TLV(0x31, ava(TLV(0x0C, "41"))))));
  int code = 0;
  decoded_name(der, Seq_to_X509_NAME_strict, &code);
  EXPECT_EQ(code, F_SEQ_TO_X509_NAME | ERR_MULTIVALUED_RDN);
}

TEST(Names, DecodeCodes) {
  for (const Row &row : table("name_codes")) {
    int code = -1;
    const Name made = decoded_name(hex(row.at("der")), Seq_to_X509_NAME, &code);
    EXPECT_EQ(code, code_at(row, "code")) << row.at("der");
    EXPECT_EQ(made != nullptr, code == 0);
  }
  Name none;
  EXPECT_EQ(Seq_to_X509_NAME(nullptr, &none), F_SEQ_TO_X509_NAME | 0x49);
}

TEST(Names, EncodeRefillsAGivenUnit) {
  const Name empty = name({}), bad = name({{26, "x"}});
  Unit given = unit("020105"), fresh;
  const ASN1_UNIT *const address = given;
  EXPECT_EQ(X509_NAME_to_Seq(empty, &given), 0);
  EXPECT_EQ(given, address);
  EXPECT_EQ(flat(given), "3000");
  EXPECT_EQ(X509_NAME_to_Seq(bad, &given), F_X509_NAME_TO_SEQ | ERR_ASN1_ENCODING);
  EXPECT_EQ(given->tag, nullptr);
  push_STACK_value(empty, nullptr);
  EXPECT_EQ(X509_NAME_to_Seq(empty, &fresh), F_X509_NAME_TO_SEQ | 0x2B);
}

TEST(Names, HashAndSearch) {
  const Name n = name({{12, "a"}, {12, "b"}});
  const String cn(index_to_OBJECT_IDENTIFIER(kCommonName)), other(index_to_OBJECT_IDENTIFIER(14));
  EXPECT_EQ(get_X509_NAME_index_by_OID(n, cn, -5), 0);
  EXPECT_EQ(get_X509_NAME_index_by_OID(n, cn, 0), 1);
  EXPECT_EQ(get_X509_NAME_index_by_OID(n, cn, 1), -1);
  EXPECT_EQ(get_X509_NAME_index_by_OID(n, cn, INT_MAX), -1);
  EXPECT_EQ(get_X509_NAME_index_by_OID(n, other, -1), -1);
  unsigned char digest[64];
  EXPECT_EQ(get_X509_NAME_hash(n, PKV_DIGEST_SHA1, digest), 20);
  EXPECT_EQ(get_X509_NAME_hash(name({}), PKV_DIGEST_SHA1, digest), -1);
  EXPECT_EQ(get_X509_NAME_hash(n, 0x1234, digest), -1);
}

TEST(Names, TextIsConvertedOnlyByTheUtf8Sibling) {
  const String cn(index_to_OBJECT_IDENTIFIER(kCommonName));
  for (const Row &row : table("name_utf8")) {
    const Name n(new_X509_NAME());
    const Bytes utf8 = hex(row.at("utf8"));
    const std::string text(utf8.begin(), utf8.end()), &octets = row.at("octets");
    EXPECT_EQ(add_X509_NAME_child_OID_UTF8(n, cn, number_in(row, "type"), text.c_str(), -1, -1), octets == "-") << text;
    if (octets != "-") EXPECT_EQ(octets_hex(get_X509_NAME_CHILD_data(get_X509_NAME_CHILD(n, 0))), octets);
  }
}

TEST(Algorithms, ParametersAndCounts) {
  const String oid = test::oid("1.2.840.10045.4.3.2");
  const Owned<X509_ALGO_IDENTIFIER> forced(new_X509_ALGO_IDENTIFIER()), absent(new_X509_ALGO_IDENTIFIER());
  EXPECT_EQ(set_X509_ALGO_IDENTIFIER_value(forced, oid, nullptr), 0);
  EXPECT_EQ(set_X509_ALGO_IDENTIFIER_value_RFC5280(absent, oid, nullptr), 0);
  EXPECT_EQ(set_X509_ALGO_IDENTIFIER_value(nullptr, oid, nullptr), 1);
  EXPECT_EQ(hex_of(X509_ALGO_IDENTIFIER_to_Seq, forced), "300c06082a8648ce3d0403020500");
  EXPECT_EQ(hex_of(X509_ALGO_IDENTIFIER_to_Seq, absent), "300a06082a8648ce3d040302");
  for (const char *wrong : {"3000", "3009 060155 0500 0500 0500"}) {
    Owned<X509_ALGO_IDENTIFIER> made;
    EXPECT_EQ(Seq_to_X509_ALGO_IDENTIFIER(unit(wrong), &made), F_SEQ_TO_X509_ALGO_IDENTIFIER | 0x2B);
  }
}

TEST(Algorithms, SharedListsReleaseOnce) {
  using List = Owned<STACK, free_X509_ALGO_IDENTIFIERS>;
  const List list(new_X509_ALGO_IDENTIFIERS());
  push_STACK_value(list, new_X509_ALGO_IDENTIFIER());
  const List shallow(dup_X509_ALGO_IDENTIFIERS(list)), deep(dup_X509_ALGO_IDENTIFIERS_strict(list));
  EXPECT_EQ(get_STACK_value(list, 0), get_STACK_value(shallow, 0));
  EXPECT_NE(get_STACK_value(list, 0), get_STACK_value(deep, 0));
  auto *shared = item<X509_ALGO_IDENTIFIER>(list, 0);
  EXPECT_EQ(Seq_to_X509_ALGO_IDENTIFIER(unit("3005 06032a0304"), &shared), 0);
  EXPECT_EQ(text_of(item<X509_ALGO_IDENTIFIER>(shallow, 0)->algorithm), "1.2.3.4");
}

TEST(Attributes, ValuesByType) {
  const String oid = test::oid("2.5.4.3"), text = text_string(12, "a"), constructed = string(0x30, hex("020105"));
  const Unit value = unit("3003020105");
  Owned<X509_ATTRIBUTE> attribute;
  ASSERT_TRUE(create_X509_ATTRIBUTE_OID(&attribute, oid, 0x30, value));
  EXPECT_EQ(add_X509_ATTRIBUTE_data(attribute, 12, text), 0);
  EXPECT_EQ(add_X509_ATTRIBUTE_set(attribute, dup_ASN1_STRING(text)), 0);
  EXPECT_EQ(add_X509_ATTRIBUTE_set(attribute, dup_ASN1_STRING(constructed)), 0);
  EXPECT_EQ(add_X509_ATTRIBUTE_data(attribute, 12, nullptr), 1);
  EXPECT_EQ(add_X509_ATTRIBUTE_data(attribute, 256, text), 1);
  EXPECT_EQ(get_X509_ATTRIBUTE_count(attribute), 4);
  EXPECT_EQ(get_X509_ATTRIBUTE_data_type(attribute, 3), 0x30);
  EXPECT_EQ(get_X509_ATTRIBUTE_data_type(attribute, 4), -1);
  EXPECT_EQ(flat(static_cast<ASN1_UNIT *>(get_X509_ATTRIBUTE_data(attribute, 3))), "3003020105");
  EXPECT_EQ(create_X509_ATTRIBUTE_OID(&attribute, nullptr, 12, text), nullptr);
  EXPECT_EQ(get_X509_ATTRIBUTE_count(attribute), 4);
  const Owned<STACK, free_X509_ATTRIBUTES> list(new_X509_ATTRIBUTES());
  EXPECT_EQ(add_X509_ATTRIBUTES_child(list, attribute, 7), 0);
  EXPECT_EQ(add_X509_ATTRIBUTES_OID_INDEX(list, 14, 12, text, 0), 0);
  EXPECT_EQ(hex_of(X509_ATTRIBUTES_to_Seq, list),
            "3125300a060355040631030c016130170603550403311030030201050c01610c01613003020105");
  EXPECT_EQ(hex_of(X509_ATTRIBUTES_to_Seq_RFC5280, list),
            "3125300a060355040631030c01613017060355040331100c01610c016130030201053003020105");
}

TEST(Extensions, RecordAndList) {
  const String value = string(4, hex("3000"));
  Owned<STACK, free_X509_EXTENSIONS> list;
  const Owned<X509_EXTENSION> plain(create_X509_EXTENSION_by_OID_index(nullptr, 87, 256, value));
  EXPECT_EQ(get_X509_EXTENSION_critical(plain), 1);
  EXPECT_EQ(add_X509_EXTENSION(nullptr, plain, 0), 1);
  EXPECT_EQ(add_X509_EXTENSION(&list, nullptr, 0), 1);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(add_X509_EXTENSION(&list, plain, 9), 0);
  set_X509_EXTENSION_critical(plain, 0);
  EXPECT_EQ(add_X509_EXTENSION(&list, plain, 0), 0);
  EXPECT_EQ(get_X509_EXTENSION_index_by_OID_index(list, 87, 0), 1);
  EXPECT_EQ(get_X509_EXTENSION_index_by_OID_index(list, 87, 1), -1);
  EXPECT_EQ(get_X509_EXTENSION_index_by_OID_index(list, 33, -1), -2);
  EXPECT_EQ(hex_of(X509_EXTENSIONS_to_Seq, list), "301930090603551d1304023000300c0603551d130101ff04023000");
  remove_X509_EXTENSION(list, 0);
  EXPECT_EQ(get_X509_EXTENSION_count(list), 1);
}

TEST(Extensions, StrictRefusesByReason) {
  for (const Row &row : table("extension_lists")) {
    const Unit list = unit(row.at("der"));
    Owned<STACK, free_X509_EXTENSIONS> plain, strict;
    EXPECT_EQ(Seq_to_X509_EXTENSIONS(list, &plain), code_at(row, "plain")) << row.at("der");
    EXPECT_EQ(Seq_to_X509_EXTENSIONS_strict(list, &strict), code_at(row, "strict")) << row.at("der");
  }
}

}  // namespace
