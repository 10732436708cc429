// Decoders and navigators.
#include <climits>

#include "support/asn1.h"

using namespace test;

namespace {

template <class T>
Owned<T> bounded(T *(*decode)(const unsigned char *, int), std::string_view octets) {
  static GuardedBytes guarded(4096);
  const Bytes bytes = hex(octets);
  return Owned<T>(decode(guarded.place(bytes.data(), bytes.size()), int(bytes.size())));
}

TEST(Decoders, OneValueEach) {
  EXPECT_EQ(*bounded(decodeToBERBoolean_n, "010105"), 0x05);
  EXPECT_FALSE(bounded(decodeToBERBoolean_n, "01020000"));
  EXPECT_EQ(PKV_Get_BIGINT_Word(bounded(decodeToBERInteger_n, "0201ff")), 255u);
  EXPECT_FALSE(bounded(decodeToBERInteger_n, "0200"));
  for (const char *odd : {"0201ff", "02020001", "0200"}) EXPECT_FALSE(bounded(decodeToBERInteger_strict, odd)) << odd;
  const String bits = bounded(decodeToBERBitString_n, "0303066e40");
  EXPECT_EQ(bits->unused_bits, 6);
  EXPECT_EQ(octets_hex(bits), "6e40");
  EXPECT_FALSE(bounded(decodeToBERBitString_n, "0300"));
  EXPECT_TRUE(Block(static_cast<unsigned char *>(decodeToBERNull_n(hex("0501").data(), 2))));
  const String printable = bounded(decodeToBERPrintableString_n, "13024142");
  EXPECT_EQ(printable->data[2] + printable->data[3], 0);
  // The flag of a time is told by its length, and by its last octet where the length is no usual one.
  for (const auto &[text, flag] : std::map<std::string, int>{
           {"2601011200Z", 1}, {"2601011200+09", 1}, {"260101120000.0Z", 0}, {"260101Z", 1}, {"260101120000", 0}})
    EXPECT_EQ(bounded(decodeToBERASN1String_n, to_hex(TLV(0x17, Bytes(text.begin(), text.end()))))->unused_bits, flag);
  EXPECT_EQ(bounded(decodeToBERGENERALIZEDTime_n, "180b3236303130313132303030")->unused_bits, 0);
}

TEST(Decoders, ObjectIdentifiers) {
  for (const Row &row : table("oid_decode")) {
    const std::string &octets = row.at("octets"), &any_size = row.at("any_size");
    EXPECT_EQ(text_of(bounded(decodeToBERObjectIdentifier_n, octets)), row.at("text")) << octets;
    const String any = bounded(decodeToBERObjectIdentifier_RFC5280, octets);
    if (any_size.empty()) continue;
    EXPECT_EQ(text_of(any), any_size) << octets;
    if (!any) continue;
    Unit back(new_ASN1_UNIT());
    EXPECT_EQ(encodeToBERObjectIdentifier_RFC5280(back, 6, any, any->length, 0), 0);
    EXPECT_EQ(flat(back), octets);
  }
}

TEST(Decoders, TextOfAHundredCharactersIsTooLong) {
  for (const auto &[arcs, decodes] : {std::pair{46, true}, {47, false}}) {  // "2.5.10" and ".1" for each arc
    Bytes octets{0x06, uint8_t(arcs + 2), 0x55, 0x0A};
    octets.resize(octets.size() + size_t(arcs), 0x01);
    const String oid(decodeToBERObjectIdentifier_n(octets.data(), int(octets.size())));
    EXPECT_EQ(oid != nullptr, decodes) << arcs;
    if (oid) EXPECT_EQ(oid->length, 6 + 2 * arcs);
    const String any(decodeToBERObjectIdentifier_RFC5280(octets.data(), int(octets.size())));
    EXPECT_TRUE(any);
  }
}

// A value of every identifier: what a generic string keeps, it writes back as it was; an INTEGER is normalised.
TEST(Decoders, GenericStringsComeBack) {
  for (int identifier = 0; identifier < 256; ++identifier) {
    if (identifier == TYPE_INTEGER) continue;
    for (const size_t length : {0u, 1u, 2u, 20u}) {
      Bytes octets{uint8_t(identifier), uint8_t(length)};
      octets.resize(2 + length, 0x41);
      const String value(decodeToBERASN1String_n(octets.data(), int(octets.size())));
      if (!value) continue;
      EXPECT_EQ(value->type, identifier);
      Unit out(new_ASN1_UNIT());
      if (encodeToDER(out, TYPE_ASN1_STRING, value, value->length)) continue;
      EXPECT_EQ(flat(out), to_hex(octets));
    }
  }
  EXPECT_TRUE(bounded(decodeToBERASN1String_n, "1a0141"));
  EXPECT_FALSE(bounded(decodeToBERASN1String_n, "120131"));
  EXPECT_FALSE(bounded(decodeToBERASN1String_n, "1f0131"));
}

TEST(Navigators, TagRule) {
  const Unit u = unit("30 17 800105 020107 010101 0c0141 3003020109 13024142 0500");
  ASSERT_TRUE(u);
  const auto child = [&](int index, int type) { return getBERChildAt(u, index, type); };
  EXPECT_EQ(octets_hex(String(static_cast<ASN1_STRING *>(child(0, 4)))), "05");
  EXPECT_EQ(child(1, 4), nullptr);
  EXPECT_EQ(child(7, 2), nullptr);
  EXPECT_EQ(child(-1, 2), nullptr);
  EXPECT_EQ(child(2, TYPE_ASN1_UNIT), nullptr);
  EXPECT_EQ(child(0, TYPE_ASN1_UNIT), nullptr);
  EXPECT_EQ(flat(Unit(static_cast<ASN1_UNIT *>(child(3, TYPE_ASN1_UNIT)))), "0c0141");
  EXPECT_EQ(flat(Unit(static_cast<ASN1_UNIT *>(child(4, 48)))), "3003020109");
  const String ab(static_cast<ASN1_STRING *>(child(5, 32)));
  EXPECT_EQ(ab->type, 0x13);
  EXPECT_EQ(text_of(ab), "AB");
  EXPECT_EQ(child(5, 26), nullptr);
  EXPECT_EQ(getBERChildAt_strict(u, 0, 0x04, 4), nullptr);
  EXPECT_TRUE(String(static_cast<ASN1_STRING *>(getBERChildAt_strict(u, 0, 0x80, 4))));
}

TEST(Navigators, CursorWalks) {
  const Unit u = unit("30 09 020101 020102 020103");
  int cursor = 0;
  std::string seen;
  for (int i = 0; Number child{static_cast<BIGINT *>(getBERChildOffset(u, i, 2, &cursor))}; ++i)
    seen += char('0' + PKV_Get_BIGINT_Word(child));
  EXPECT_EQ(seen, "123");
  EXPECT_EQ(cursor, 6);
  for (int wrong : {-1, 7, 10, INT_MAX}) {
    const int before = wrong;
    EXPECT_EQ(getBERChildOffset(u, 0, 2, &wrong), nullptr);
    EXPECT_EQ(wrong, before);
  }
  EXPECT_TRUE(Number(static_cast<BIGINT *>(getBERChildOffset(u, 2, 2, nullptr))));
}

TEST(StrictSequence, TakesDerOnly) {
  const auto strict = [](std::string_view octets) {
    const Bytes bytes = hex(octets);
    return Unit(decodeToDERSequence_strict(bytes.data(), int(bytes.size()))) != nullptr;
  };
  EXPECT_TRUE(strict("30053003020105"));
  for (const char *other :
       {"300530030201", "3005300302010500", "30800201050000", "308103020105", "3006308103020105", "300730800201050000"})
    EXPECT_FALSE(strict(other)) << other;
}

// Every prefix of a value, with the last octet at the end of a page: no decoder reads on.
TEST(BoundedReaders, StayInsideEveryPrefix) {
  GuardedBytes guarded(4096);
  for (const char *sample : {"30800201050000", "3081300201050401413080020105000002010500000000", "0382000402aabbcc",
                             "06062a864886f70d", "24800401410000", "a0820003020105"}) {
    const Bytes octets = hex(sample);
    for (size_t n = 0; n <= octets.size(); ++n) {
      const uint8_t *at = guarded.place(octets.data(), n);
      const int length = int(n);
      Unit(decodeToBERSequence_n(at, length));
      Unit(decodeToBERSequence_strict(at, length));
      Unit(decodeToDERSequence_strict(at, length));
      String(decodeToBERASN1String_n(at, length));
      String(decodeToBERBitString_n(at, length));
      String(decodeToBERObjectIdentifier_n(at, length));
      Number(decodeToBERInteger_n(at, length));
      if (n) getASN1ValueLengthFromLO_n(at + 1, length - 1);
      getASN1IndefiniteValueLength_n(at, length);
    }
  }
}

}  // namespace
