// What holds for every record family: round trips, copies, null arguments, decoding into filled records, and that the
// n-th allocation may fail for every n.
#include <functional>

#include "samples.h"

using namespace test;

namespace {

struct Family {
  const char *name;
  Bytes sample;
  std::function<int(ASN1_UNIT *, void **)> decode;
  std::function<int(const void *, ASN1_UNIT **)> encode;
  std::function<void *(const void *)> copy;  // empty where the type has none
  std::function<void(void *)> release;
};

template <class R>
Family family(const char *name, Bytes sample, int (*decode)(ASN1_UNIT *, R **), int (*encode)(const R *, ASN1_UNIT **),
              R *(*copy)(const R *), void (*release)(R *)) {
  Family f{name,
           std::move(sample),
           [decode](ASN1_UNIT *unit, void **record) {
             R *typed = record ? static_cast<R *>(*record) : nullptr;
             const int code = decode(unit, record ? &typed : nullptr);
             if (record) *record = typed;
             return code;
           },
           [encode](const void *record, ASN1_UNIT **unit) { return encode(static_cast<const R *>(record), unit); },
           nullptr,
           [release](void *record) { release(static_cast<R *>(record)); }};
  if (copy) f.copy = [copy](const void *record) { return copy(static_cast<const R *>(record)); };
  return f;
}

#define FAMILY(T, sample, copy) family<T>(#T, sample, Seq_to_##T, T##_to_Seq, copy, free_##T)

const std::vector<Family> &families() {
  static const CertificateParts parts;
  static const Bytes oid = TLV(0x06, "550403");
  static const Bytes attribute = TLV(0x30, oid + TLV(0x31, TLV(0x0C, "41") + TLV(0x30, "020105")));
  static const Bytes extension = TLV(0x30, TLV(0x06, "551d13") + TLV(0x01, "ff") + TLV(0x04, "3000"));
  static const std::vector<Family> all = {
      FAMILY(X509_NAME, parts.issuer, dup_X509_NAME),
      FAMILY(X509_ALGO_IDENTIFIER, parts.signature, dup_X509_ALGO_IDENTIFIER),
      FAMILY(X509_ALGO_IDENTIFIERS, TLV(0x31, parts.signature + TLV(0x30, oid)), dup_X509_ALGO_IDENTIFIERS_strict),
      FAMILY(X509_ATTRIBUTE, attribute, dup_X509_ATTRIBUTE),
      FAMILY(X509_ATTRIBUTES, TLV(0x31, attribute + attribute), dup_X509_ATTRIBUTES),
      FAMILY(X509_EXTENSION, extension, dup_X509_EXTENSION),
      FAMILY(X509_EXTENSIONS, TLV(0x30, extension + extension), dup_X509_EXTENSIONS),
      FAMILY(X509_PUBKEY, parts.spki, dup_X509_PUBKEY),
      FAMILY(X509_TBS_CERT, parts.tbs(), dup_X509_TBS_CERT),
      FAMILY(X509_CERT, parts.der(), dup_X509_CERT),
      FAMILY(X509_CERTIFICATES, TLV(0x30, parts.der() + parts.der()), nullptr),
      FAMILY(X509_CERT_PAIR, TLV(0x30, TLV(0xA0, parts.der()) + TLV(0xA1, parts.der())), dup_X509_CERT_PAIR),
      FAMILY(X509_AUX, TLV(0x30, TLV(0x0C, "41") + TLV(0x80, "0102")), dup_X509_AUX),
      FAMILY(ISSUER_AND_SERIAL_NUMBER, TLV(0x30, parts.issuer + parts.serial), nullptr),
      family<X509_NAME>("X509_NAME_RFC5280",
                        TLV(0x30, TLV(0x31, TLV(0x30, oid + TLV(0x0C, "41")) + TLV(0x30, oid + TLV(0x12, "42")))),
                        Seq_to_X509_NAME_RFC5280, X509_NAME_to_Seq_RFC5280, dup_X509_NAME, free_X509_NAME),
      family<X509_CERT>("X509_CERT_RFC5280", parts.der(), Seq_to_X509_CERT_RFC5280, X509_CERT_to_Seq_RFC5280,
                        dup_X509_CERT, free_X509_CERT),
      family<X509_PUBKEY>("X509_PUBKEY_RFC5280", TLV(0x30, TLV(0x30, "06032b6570") + TLV(0x03, "00aabb")),
                          Seq_to_X509_PUBKEY_RFC5280, X509_PUBKEY_to_Seq_RFC5280, dup_X509_PUBKEY, free_X509_PUBKEY),
  };
  return all;
}

class EveryFamily : public testing::TestWithParam<Family> {};

TEST_P(EveryFamily, ComesBackOctetForOctet) {
  const Family &f = GetParam();
  const Unit unit = test::unit(f.sample);
  void *record = nullptr, *copy = nullptr;
  ASSERT_EQ(f.decode(unit.get(), &record), 0);
  if (f.copy) copy = f.copy(record);
  const void *source = f.copy ? copy : record;
  ASSERT_NE(source, nullptr);
  ASN1_UNIT *back = nullptr;
  EXPECT_EQ(f.encode(source, &back), 0);
  EXPECT_EQ(flat(back), to_hex(f.sample));
  free_ASN1_UNIT(back);
  f.release(record);
  if (copy) f.release(copy);
  f.release(nullptr);
}

TEST_P(EveryFamily, RefusesNullAndKeepsAFilledRecord) {
  const Family &f = GetParam();
  const Unit unit = test::unit(f.sample), bad = test::unit("3004 3003 0201");
  const Unit odd = test::unit("3003060180");
  void *record = nullptr;
  ASN1_UNIT *out = nullptr;
  EXPECT_NE(f.decode(nullptr, &record), 0);
  EXPECT_NE(f.decode(unit.get(), nullptr), 0);
  EXPECT_NE(f.encode(nullptr, &out), 0);
  EXPECT_EQ(out, nullptr);
  ASSERT_EQ(f.decode(unit.get(), &record), 0);
  void *const address = record;
  EXPECT_NE(f.encode(record, nullptr), 0);
  EXPECT_NE(f.decode(odd.get(), &record), 0);
  EXPECT_EQ(f.decode(unit.get(), &record), 0);
  EXPECT_EQ(record, address);
  EXPECT_EQ(f.encode(record, &out), 0);
  EXPECT_EQ(flat(out), to_hex(f.sample));
  free_ASN1_UNIT(out);
  f.release(record);
}

// Decode, copy and encode with the n-th allocation failing, until none fails. Nothing leaks and every failure has a
// code.
TEST_P(EveryFamily, SurvivesEachFailedAllocation) {
  const Family &f = GetParam();
  const Unit unit = test::unit(f.sample);
  bool failed = true;
  for (long n = 0; failed && n < 2000; ++n) {
    const size_t before = live_blocks();
    void *record = nullptr, *copy = nullptr;
    ASN1_UNIT *out = nullptr;
    fail_allocation(n);
    const int decoded = f.decode(unit.get(), &record);
    if (!decoded && f.copy) copy = f.copy(record);
    const int encoded = decoded ? decoded : f.encode(record, &out);
    failed = encoded || (f.copy && !copy);
    fail_allocation(-1);
    EXPECT_EQ(decoded == 0, record != nullptr) << n;
    EXPECT_EQ(encoded == 0, out != nullptr) << n;
    if (decoded && decoded != 1) EXPECT_EQ(decoded & 0xFFFF, 0x3C) << n << " " << std::hex << decoded;
    if (record) f.release(record);
    if (copy) f.release(copy);
    free_ASN1_UNIT(out);
    ASSERT_EQ(live_blocks(), before) << "allocation " << n;
  }
  EXPECT_FALSE(failed);
}

// One changed octet, one missing, at every place: no crash, and whatever decodes can be written and released.
TEST_P(EveryFamily, SurvivesDamage) {
  const Family &f = GetParam();
  GuardedBytes guarded(f.sample.size());
  const auto run = [&](const Bytes &octets) {
    const uint8_t *at = guarded.place(octets.data(), octets.size());
    const Unit unit(decodeToBERSequence_n(at, int(octets.size())));
    void *record = nullptr;
    ASN1_UNIT *out = nullptr;
    if (!unit || f.decode(unit.get(), &record)) {
      EXPECT_EQ(record, nullptr);
      return;
    }
    if (f.encode(record, &out) == 0) free_ASN1_UNIT(out);
    f.release(record);
  };
  for (size_t i = 0; i < f.sample.size(); ++i) {
    for (const uint8_t change : {0x01, 0x20, 0x80, 0xFF}) {
      Bytes damaged = f.sample;
      damaged[i] ^= change;
      run(damaged);
    }
    run(Bytes(f.sample.begin(), f.sample.begin() + long(i)));
  }
}

INSTANTIATE_TEST_SUITE_P(X509, EveryFamily, testing::ValuesIn(families()),
                         [](const auto &info) { return std::string(info.param.name); });

}  // namespace
