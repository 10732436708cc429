// What holds for every record family: round trips, copies, null arguments, decoding into filled records, and that the
// n-th allocation may fail for every n. A test program lists its families and ends in INSTANTIATE_FAMILIES.
#pragma once

#include "support/untyped.h"

namespace test {

struct Family {
  const char *name;
  Bytes sample;
  Read decode;
  Write encode;
  std::function<void *(const void *)> copy;  // empty where the type has none
  std::function<void(void *)> release;
  bool appends = false;  // a list whose decoder adds to the one that it gets
};

template <class R>
Family family(const char *name, Bytes sample, int (*decode)(ASN1_UNIT *, R **), int (*encode)(const R *, ASN1_UNIT **),
              R *(*copy)(const R *), void (*release)(R *)) {
  Family f{name,           std::move(sample), reader(decode),
           writer(encode), nullptr,           [release](void *record) { release(static_cast<R *>(record)); }};
  if (copy) f.copy = [copy](const void *record) { return copy(static_cast<const R *>(record)); };
  return f;
}

#define FAMILY(T, sample, copy) family<T>(#T, sample, Seq_to_##T, T##_to_Seq, copy, free_##T)
// In standard form; and where the codec has another name than the record.
#define FAMILY_RFC5280(T, sample, copy) \
  family<T>(#T "_RFC5280", sample, Seq_to_##T##_RFC5280, T##_to_Seq_RFC5280, copy, free_##T)
#define FAMILY_AS(T, name, sample, copy) family<T>(#name, sample, Seq_to_##name, name##_to_Seq, copy, free_##T)

inline Family appending(Family f) {
  f.appends = true;
  return f;
}
// A list with its elements twice.
inline Bytes twice(const Bytes &list) {
  const Bytes content(list.begin() + (list[1] < 0x80 ? 2 : 2 + (list[1] & 0x7F)), list.end());
  return TLV(list[0], content + content);
}

class EveryFamily : public testing::TestWithParam<Family> {};

TEST_P(EveryFamily, ComesBackOctetForOctet) {
  const Family &f = GetParam();
  const Unit unit = test::unit(f.sample);
  void *record = nullptr, *copy = nullptr;
  ASSERT_EQ(f.decode(unit, &record), 0);
  if (f.copy) copy = f.copy(record);
  const void *source = f.copy ? copy : record;
  ASSERT_NE(source, nullptr);
  Unit back;
  EXPECT_EQ(f.encode(source, &back), 0);
  EXPECT_EQ(flat(back), to_hex(f.sample));
  f.release(record);
  if (copy) f.release(copy);
  f.release(nullptr);
}

TEST_P(EveryFamily, RefusesNullAndKeepsAFilledRecord) {
  const Family &f = GetParam();
  const Unit unit = test::unit(f.sample), bad = test::unit("3004 3003 0201");
  const Unit odd = test::unit("3003060180");
  void *record = nullptr;
  Unit out;
  EXPECT_NE(f.decode(nullptr, &record), 0);
  EXPECT_NE(f.decode(unit, nullptr), 0);
  EXPECT_NE(f.encode(nullptr, &out), 0);
  EXPECT_EQ(out, nullptr);
  ASSERT_EQ(f.decode(unit, &record), 0);
  void *const address = record;
  EXPECT_NE(f.encode(record, nullptr), 0);
  EXPECT_NE(f.decode(odd, &record), 0);
  EXPECT_EQ(f.decode(unit, &record), 0);
  EXPECT_EQ(record, address);
  EXPECT_EQ(f.encode(record, &out), 0);
  EXPECT_EQ(flat(out), to_hex(f.appends ? twice(f.sample) : f.sample));
  f.release(record);
}

// Decode, copy and encode with the n-th allocation failing, until none fails. Nothing leaks and every failure has a
// code.
TEST_P(EveryFamily, SurvivesEachFailedAllocation) {
  const Family &f = GetParam();
  const Unit unit = test::unit(f.sample);
  survive_each_failed_allocation([&] {
    void *record = nullptr, *copy = nullptr;
    Unit out;
    const int decoded = f.decode(unit, &record);
    if (!decoded && f.copy) copy = f.copy(record);
    const int encoded = decoded ? decoded : f.encode(record, &out);
    const bool done = !encoded && (copy || !f.copy);
    EXPECT_EQ(decoded == 0, record != nullptr);
    EXPECT_EQ(encoded == 0, out != nullptr);
    if (decoded && decoded != 1) EXPECT_EQ(decoded & 0xFFFF, 0x3C) << std::hex << decoded;
    if (record) f.release(record);
    if (copy) f.release(copy);
    return done;
  });
}

// One changed octet, one missing, at every place: no crash, and whatever decodes can be written and released.
TEST_P(EveryFamily, SurvivesDamage) {
  const Family &f = GetParam();
  GuardedBytes guarded(f.sample.size());
  const auto run = [&](const Bytes &octets) {
    const uint8_t *at = guarded.place(octets.data(), octets.size());
    const Unit unit(decodeToBERSequence_n(at, int(octets.size())));
    void *record = nullptr;
    Unit out;
    if (!unit || f.decode(unit, &record)) {
      EXPECT_EQ(record, nullptr);
      return;
    }
    f.encode(record, &out);
    f.release(record);
  };
  each_damage(f.sample, run);
}

#define INSTANTIATE_FAMILIES(group, families)                                 \
  INSTANTIATE_TEST_SUITE_P(group, EveryFamily, testing::ValuesIn(families()), \
                           [](const auto &info) { return std::string(info.param.name); })

}  // namespace test
