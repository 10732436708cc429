// Encoders, constructed values and the DER entry points.
#include <velpki/asn1_error.h>

#include "support/asn1.h"

using namespace test;

namespace {

constexpr int code(int function, int reason = ERR_INVALID_ENCODE_INPUT) { return function | reason; }

// A value of the kind that the type wants, made from hexadecimal octets (text for type 6).
struct Value {
  String string;
  Number number;
  Bytes octet;
  void *pointer = nullptr;
  int length = 0;

  Value(int type, const char *octets, int string_type = -1, int unused_bits = 0) {
    if (type == TYPE_INTEGER || type == TYPE_ENUMERATED) {
      number = test::number(octets);
      pointer = number;
      length = (PKV_Get_BIGINT_Bit_Length(number) + 8) / 8;
    } else if (type == TYPE_BOOLEAN) {
      octet = hex(octets);
      pointer = octet.data();
      length = 1;
    } else if (type != TYPE_NULL) {
      const bool dotted = type == TYPE_OBJECT_IDENTIFIER || string_type == TYPE_OBJECT_IDENTIFIER;
      const int own = string_type < 0 ? type : string_type;
      string = dotted ? text_string(own, octets) : test::string(own, hex(octets), unused_bits);
      pointer = string;
      length = string->length;
    }
  }
};

TEST(BerEncode, EachType) {
  for (const Row &row : table("ber_encode")) {
    const std::string &encoded = row.at("encoded");
    Value value(number_in(row, "type"), row.at("value").c_str(), number_in(row, "string_type"),
                number_in(row, "unused_bits"));
    Unit out(new_ASN1_UNIT());
    EXPECT_EQ(encodeToBER(out, number_in(row, "type"), value.pointer, value.length, number_in(row, "form")), 0)
        << encoded;
    EXPECT_EQ(flat(out), encoded);
    EXPECT_TRUE(unit(encoded)) << encoded;
  }
}

TEST(BerEncode, RefusesWithItsOwnCodeAndCleans) {
  for (const Row &row : table("ber_encode_refused")) {
    const int type = number_in(row, "type"), length = number_in(row, "length"), form = number_in(row, "form");
    Value value(type, row.at("value").c_str(), number_in(row, "string_type"), number_in(row, "unused_bits"));
    Unit out = unit("020105");
    EXPECT_EQ(encodeToBER(out, type, value.pointer, length, form), code(F_ENCODE_TO_BER)) << row.at("why");
    EXPECT_EQ(out->tag, nullptr) << row.at("why");
  }
  EXPECT_EQ(encodeToBER(nullptr, 5, nullptr, 0, 0), code(F_ENCODE_TO_BER));
  const String text = string(4, hex("41"));
  Unit out(new_ASN1_UNIT());
  for (const int form : {-1, 2, 3})
    EXPECT_EQ(encodeToBERASN1String(out, 4, text, 1, form), code(F_ENCODE_TO_BER_ASN1_STRING)) << form;
  EXPECT_EQ(encodeToBERGENERALIZEDTime(out, 24, nullptr, 1, 0), code(F_ENCODE_TO_BER_TIME));
  EXPECT_EQ(encodeToBERUTCTime(out, 23, nullptr, 1, 0), code(F_ENCODE_TO_BER_TIME));
  EXPECT_EQ(encodeToBER_CS(out, 31, 4, text, 1, 0), code(F_ENCODE_TO_BER_CS));
  EXPECT_EQ(encodeToBER_CS(out, 2, 4, text, 1, 0), 0);
  EXPECT_EQ(flat(out), "820141");
}

// Every length form at the places where it changes.
TEST(DerEncode, ChoosesTheShortestForm) {
  for (const int length : {0, 1, 126, 127, 128, 129, 255, 256, 65535, 65536}) {
    const Bytes data(size_t(length), 0x55);
    for (const int type : {3, 4, 12, 32}) {
      for (const int own : {3, 4}) {
        if (type != 32 && own != 4) continue;
        const String value = string(type == 32 ? own : type, data);
        Unit out(new_ASN1_UNIT());
        ASSERT_EQ(encodeToDER(out, type, value, length), 0) << type << " " << length;
        const int content = length + (value->type == 3);
        const int octets = content < 128 ? 1 : content < 256 ? 2 : content < 65536 ? 3 : 4;
        EXPECT_EQ(getASN1LengthSize(out->length_octets), octets) << type << " " << length;
        EXPECT_EQ(getASN1ValueLength(out), content);
      }
    }
  }
  Bytes magnitude(127, 0x80);
  const String number = string(2, magnitude);
  Unit out(new_ASN1_UNIT());
  ASSERT_EQ(encodeToDER(out, 32, number, 127), 0);
  EXPECT_EQ(flat(out).substr(0, 8), "02818000");
}

TEST(DerEncode, NormalisesTheCallersValue) {
  unsigned char octet = 1;
  Unit out(new_ASN1_UNIT());
  EXPECT_EQ(encodeToDER(out, 1, &octet, 1), 0);
  EXPECT_EQ(flat(out), "0101ff");
  EXPECT_EQ(octet, 0xFF);
  for (const Row &row : table("der_times")) {
    const std::string &text = row.at("text"), &plain = row.at("plain"), &strict = row.at("strict");
    const String kept = text_string(23, text), time = text_string(23, text);
    const int result = encodeToDER(out, 23, time, time->length);
    EXPECT_EQ(result, plain != "-" ? 0 : code(F_ENCODE_TO_DER)) << text;
    if (plain != "-") EXPECT_EQ(text_of(time), plain);
    const int strict_result = encodeToDER_strict(out, 23, kept, kept->length);
    EXPECT_EQ(strict_result, strict != "-" ? 0 : code(F_ENCODE_TO_DER)) << text;
    EXPECT_EQ(text_of(kept), text);
    if (strict != "-") EXPECT_EQ(flat(out).substr(4), to_hex(Bytes(strict.begin(), strict.end())));
  }
}

TEST(Constructed, GrowsChildByChild) {
  Unit seq(new_ASN1_UNIT());
  const String a = string(4, hex("41")), b = string(4, hex("42"));
  const Unit inner = unit("30800201050000");
  EXPECT_EQ(addToDERSetOf(seq, 4, b, 1), 0);
  EXPECT_EQ(addToDERSetOf(seq, 4, a, 1), 0);
  EXPECT_EQ(flat(seq), "3106040142040141");
  EXPECT_EQ(addToDERSequence(seq, TYPE_SEQUENCE, inner, 0), 0);
  EXPECT_EQ(flat(seq), "310d04014204014130800201050000");
  EXPECT_EQ(addToBERSequence_CS(seq, 3, TYPE_ASN1_UNIT, unit("020109").release(), 0, 0), 0);
  EXPECT_EQ(flat(seq), "a31004014204014130800201050000020109");
  EXPECT_EQ(setBERLengthForm(seq, 2), 0);
  EXPECT_EQ(addToDERSequence(seq, 5, nullptr, 0), 0);
  EXPECT_EQ(seq->eoc, nullptr);
  EXPECT_EQ(flat(seq), "a312040142040141308002010500000201090500");
  const String constructed = string(0x30, hex("020105"));
  EXPECT_EQ(addToDERSequence(seq, 32, constructed, 3), 0);
  EXPECT_EQ(flat(seq).substr(40), "3003020105");
}

TEST(Constructed, EmptyListsAreTheHouseForm) {
  Unit seq = unit("3003020105"), set(new_ASN1_UNIT()), strict(new_ASN1_UNIT());
  const String a = string(4, hex("41")), b = string(4, hex("40")), one = string(4, hex("41"));
  EXPECT_EQ(addToBERSequenceOf(seq, 2, nullptr, 0, 0), 0);
  EXPECT_EQ(flat(seq), "1000");
  EXPECT_EQ(addToBERSequenceOf(seq, 4, a, 1, 0), 0);
  EXPECT_EQ(flat(seq), "1003040141");
  EXPECT_EQ(addToDERSetOf(set, 4, a, 0), 0);
  EXPECT_EQ(flat(set), "1100");
  EXPECT_EQ(addToDERSetOf_strict(strict, 4, nullptr, 0), 0);
  EXPECT_EQ(flat(strict), "3100");
  for (const String *each : {&a, &b, &one}) EXPECT_EQ(addToDERSetOf_strict(strict, 4, each->get(), 1), 0);
  EXPECT_EQ(flat(strict), "3109040140040141040141");
  EXPECT_EQ(addToBERSetOf(nullptr, 4, a, 1, 0), code(F_ADD_TO_BER_SET_OF));
}

TEST(Constructed, FailureCleansAndTakesNothing) {
  Unit seq = unit("3003020105");
  ASN1_UNIT *child = new_ASN1_UNIT();
  EXPECT_EQ(addToBERSequence(seq, TYPE_ASN1_UNIT, child, 0, 0), code(F_ADD_TO_BER_SEQUENCE));
  EXPECT_EQ(seq->tag, nullptr);
  free_ASN1_UNIT(child);
  seq = unit("3003020105");
  EXPECT_EQ(addToDERSequence(seq, TYPE_SEQUENCE, seq, 0), code(F_ADD_TO_DER_SEQUENCE));
  seq = unit("3003020105");
  EXPECT_EQ(addToBERSet(seq, 26, seq, 1, 0), code(F_ADD_TO_BER_SET));
}

TEST(Constructed, StringSegments) {
  Unit seq(new_ASN1_UNIT());
  const String full = string(3, hex("ff00")), part = string(3, hex("e0"), 5), text = string(4, hex("41"));
  EXPECT_EQ(addToBERStringSequence(seq, 3, full, 2, 0), 0);
  EXPECT_EQ(addToBERStringSequence(seq, 3, part, 1, 0), 0);
  EXPECT_EQ(flat(seq), "2309030300ff00030205e0");
  EXPECT_EQ(addToBERStringSequence(seq, 3, full, 2, 0), code(F_ADD_TO_BER_STRING_SEQUENCE));
  seq = unit("2403040141");
  EXPECT_EQ(addToBERStringSequence(seq, 3, full, 2, 0), code(F_ADD_TO_BER_STRING_SEQUENCE));
}

TEST(FinishedUnits, LengthFormAndPadding) {
  for (const Row &row : table("length_forms")) {
    const std::string &in = row.at("in"), &out = row.at("out");
    Unit u = unit(in);
    EXPECT_EQ(setBERLengthForm(u, number_in(row, "form")), out == "-" ? code(F_SET_BER_LENGTH_FORM) : 0) << in;
    EXPECT_EQ(flat(u), out == "-" ? in : out);
  }
  const String bits = string(3, hex("6e40"), 6);
  EXPECT_EQ(addPadToBERBitString(bits, "101010"), 0);
  EXPECT_EQ(octets_hex(bits), "6e6a");
  for (const char *text : {"10101", "1010101", "10102 ", ""})
    EXPECT_EQ(addPadToBERBitString(bits, text), code(F_ADD_PAD_TO_BER_BIT_STRING)) << text;
  const String half(hexToBIT_STRING("6eA", 3));
  EXPECT_EQ(octets_hex(half), "6ea0");
  EXPECT_EQ(half->unused_bits, 4);
  for (const char *text : {"6g", "6e-", ""}) EXPECT_EQ(hexToBIT_STRING(text, int(std::strlen(text))), nullptr) << text;
}

}  // namespace
