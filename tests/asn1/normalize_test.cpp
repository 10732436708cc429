// Any BER into the definite form: a table, depth, time, and openssl's streams.
#include "support/asn1.h"

using namespace test;

namespace {

std::string normalized(const Bytes &in, int *length = nullptr) {
  GuardedBytes guarded(in.size());
  Block out;
  const int result = normalize_BER(guarded.place(in.data(), in.size()), int(in.size()), &out);
  if (length) *length = result;
  return out ? to_hex(out, size_t(result)) : "-";
}

Bytes nested(int levels, bool closed = true) {
  Bytes out;
  for (int i = 0; i < levels; ++i) out.insert(out.end(), {0x30, 0x80});
  for (int i = 0; closed && i < levels; ++i) out.insert(out.end(), {0, 0});
  return out;
}

}  // namespace

TEST(Normalize, FollowsTheTable) {
  for (const Row &row : table("normalize_ber")) {
    const std::string &out = row.at("out");
    const std::string wanted = out == "-" ? out : to_hex(hex(out));
    EXPECT_EQ(normalized(hex(row.at("in"))), wanted) << row.at("what");
    if (out != "-") EXPECT_EQ(normalized(hex(out)), wanted) << row.at("what");
  }
  unsigned char *out = nullptr;
  const Bytes null = hex("0500");
  EXPECT_EQ(normalize_BER(nullptr, 2, &out), -1);
  EXPECT_EQ(normalize_BER(null.data(), 2, nullptr), -1);
  EXPECT_EQ(normalize_BER(null.data(), -2, &out), -1);
}

TEST(Normalize, DepthEndsAt64) {
  EXPECT_NE(normalized(nested(64)), "-");
  EXPECT_EQ(normalized(nested(65)), "-");
  EXPECT_EQ(normalized(nested(100000, false)), "-");
}

// Long content at the bottom of many levels, and very many short segments.
TEST(Normalize, TakesLinearTime) {
  Bytes deep = nested(60, false);
  for (int i = 0; i < 1000000; ++i) deep.insert(deep.end(), {0x05, 0x00});
  deep.insert(deep.end(), 120, 0);
  Bytes segments = {0x24, 0x80};
  for (int i = 0; i < 1000000; ++i) segments.insert(segments.end(), {0x24, 0x03, 0x04, 0x01, 0x41});
  segments.insert(segments.end(), {0, 0});
  for (const Bytes *in : {&deep, &segments}) {
    Block out;
    EXPECT_GT(normalize_BER(in->data(), int(in->size()), &out), 1000000);
  }
}

TEST(Normalize, SurvivesEachFailedAllocation) {
  Bytes many = {0x30, 0x80};
  for (int i = 0; i < 200; ++i) many.insert(many.end(), {0x30, 0x80, 0, 0});
  many.insert(many.end(), {0, 0});
  survive_each_failed_allocation([&] {
    int length = -1;
    normalized(many, &length);
    EXPECT_TRUE(length == -1 || length == 404) << length;
    return length > 0;
  });
}
