// Units: lengths, measures, counting, flattening, copying, and what hostile octets must not do.
#include <velpki/asn1_error.h>

#include <climits>

#include "support/asn1.h"

using namespace test;

namespace {

TEST(UnitLengths, AreReadByTheirForm) {
  for (const Row &row : table("length_octets")) {
    const Bytes octets = hex(row.at("octets"));
    EXPECT_EQ(getASN1LengthSize(octets.data()), number_in(row, "size")) << row.at("octets");
    EXPECT_EQ(getASN1ValueLengthFromLO(octets.data()), number_in(row, "length")) << row.at("octets");
    if (octets.size() > 1) EXPECT_EQ(getASN1LengthSize_n(octets.data(), int(octets.size()) - 1), 0) << to_hex(octets);
  }
  EXPECT_EQ(getASN1LengthSize(nullptr), 0);
  EXPECT_EQ(getASN1ValueLengthFromLO(nullptr), -1);
  EXPECT_EQ(getASN1ValueLength(nullptr), -1);
}

TEST(UnitLengths, FormThatDerNeeds) {
  EXPECT_EQ(getASN1LengthForm(3, 126), 0);
  EXPECT_EQ(getASN1LengthForm(3, 127), 1);
  EXPECT_EQ(getASN1LengthForm(4, 127), 0);
  EXPECT_EQ(getASN1LengthForm(4, 128), 1);
  EXPECT_EQ(getASN1LengthForm(4, -1), 1);
  EXPECT_EQ(getASN1LengthForm(3, INT_MAX), 1);
  EXPECT_EQ(getAsciiStringLength(0), 1);
  EXPECT_EQ(getAsciiStringLength(-12), 2);
  EXPECT_EQ(getAsciiStringLength(INT_MIN), 10);
}

TEST(UnitMeasure, IndefiniteContent) {
  for (const Row &row : table("indefinite_content")) {
    const Bytes octets = hex(row.at("content"));
    const std::string &why = row.at("why"), &bare = row.at("bare");
    EXPECT_EQ(getASN1IndefiniteValueLength_n(octets.data(), int(octets.size())), number_in(row, "bounded")) << why;
    if (!bare.empty()) EXPECT_EQ(getASN1IndefiniteValueLength(octets.data()), std::stoi(bare)) << why;
  }
}

Bytes nested_indefinite(size_t levels) {
  Bytes octets;
  for (size_t i = 0; i < levels; ++i) octets.insert(octets.end(), {0x30, 0x80});
  octets.insert(octets.end(), levels * 2, 0);
  return octets;
}

TEST(UnitMeasure, NestingEndsAt64Levels) {
  for (const auto &[levels, decodes] : {std::pair{64u, true}, {65u, false}, {1000000u, false}}) {
    const Bytes octets = nested_indefinite(levels);
    EXPECT_EQ(unit(octets) != nullptr, decodes) << levels;
    EXPECT_EQ(Unit(decodeToBERSequence_strict(octets.data(), int(octets.size()))) != nullptr, decodes) << levels;
  }
}

// Siblings after an indefinite child defeat the house measure; each level may try it once only. Quadratic time would
// make so many take minutes.
TEST(UnitMeasure, TimeIsLinearInSiblings) {
  constexpr int kSiblings = 200000;
  Bytes octets = hex("3080 3080 0000");
  for (int i = 0; i < kSiblings; ++i) octets.insert(octets.end(), {0x30, 0x80, 0x04, 0x01, 0x41, 0x00, 0x00});
  octets.insert(octets.end(), {0x04, 0x01, 0x41, 0x00, 0x00});
  const Unit decoded = unit(octets);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(getSequenceChildNum(decoded), kSiblings + 2);
}

TEST(Units, DecodeIndefinite) {
  const Unit u = unit("30800201050000");
  ASSERT_TRUE(u);
  EXPECT_EQ(u->length_octets[0], 0x80);
  EXPECT_EQ(u->eoc - u->value, 3);
  EXPECT_EQ(flat(u), "30800201050000");
}

TEST(Units, ChildrenAreCountedAndTyped) {
  const Unit u = unit("30 0e 800105 020107 a003020109 0500");
  EXPECT_FALSE(u);  // a length that does not fit
  const Unit whole = unit("30 0d 800105 020107 a003020109 0500");
  ASSERT_TRUE(whole);
  EXPECT_EQ(getSequenceChildNum(whole), 4);
  EXPECT_EQ(getChildType(whole, 2), 0xA0);
  EXPECT_EQ(getChildType(whole, 4), -1);
  EXPECT_EQ(getChildType(whole, -1), -1);
  EXPECT_EQ(getSequenceChildNum(unit("30 02 0700")), 0);
  EXPECT_EQ(getSequenceChildNum(unit("30 02 8700")), 1);
  EXPECT_EQ(getSequenceChildNum(unit("30 0a 3080 020105 0000 020107")), 2);
  EXPECT_EQ(getSequenceChildNum(unit("30 03 020105")), 1);
  EXPECT_EQ(getSequenceChildNum(unit("30 01 00")), 0);
}

TEST(Units, CopiesCutLengthsAtAZero) {
  for (const size_t length : {size_t(0), size_t(127), size_t(256), size_t(65535), size_t(65536), size_t(65541)}) {
    const Bytes octets = TLV(0x04, Bytes(length, 0x41));
    const Unit u = unit(octets), faithful(dup_ASN1_UNIT_strict(u)), cut(dup_ASN1_UNIT(u));
    ASSERT_TRUE(cut && faithful) << length;
    EXPECT_EQ(flat(faithful), to_hex(octets)) << length;
    const int expected = length == 65541 ? 65536 : int(length);  // 83 01 00 05 becomes 83 01 00 00
    EXPECT_EQ(getASN1ValueLength(cut), expected) << length;
    EXPECT_EQ(flat(cut).size() / 2, octets.size() - (length - size_t(expected)));
  }
  const Unit null_unit = unit("0500");
  ASSERT_TRUE(null_unit);
  EXPECT_EQ(null_unit->value, nullptr);
  EXPECT_FALSE(Unit(dup_ASN1_UNIT(null_unit)));
  EXPECT_EQ(flat(Unit(dup_ASN1_UNIT_strict(null_unit))), "0500");
  EXPECT_TRUE(Unit(dup_ASN1_UNIT(unit("3000"))));
}

TEST(Units, FlatFormMeasuresIndefiniteContentAgain) {
  const Unit inner = unit("30800000");
  Unit outer(new_ASN1_UNIT());
  const String sibling = string(TYPE_OCTET_STRING, hex("00000000"));
  ASSERT_EQ(addToBERSequence(outer, TYPE_SEQUENCE, inner, 0, 0), 0);
  ASSERT_EQ(addToBERSequence(outer, TYPE_ASN1_STRING, sibling, 4, 0), 0);
  ASSERT_EQ(setBERLengthForm(outer, 2), 0);
  EXPECT_EQ(getASN1ValueLength(outer), 10);
  EXPECT_EQ(flat(outer).size() / 2, 8u + 4u);
}

TEST(Units, HalfMadeOnesAreRefused) {
  const Unit u(new_ASN1_UNIT());
  Block out;
  EXPECT_EQ(ASN1_to_binary(u, &out), -1);
  EXPECT_EQ(getASN1ValueLength(u), -1);
  EXPECT_EQ(getSequenceChildNum(u), 0);
  EXPECT_EQ(getChildType(u, 0), -1);
  EXPECT_EQ(dup_ASN1_UNIT(u), nullptr);
}

}  // namespace
