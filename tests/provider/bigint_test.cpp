#include <velpki/pkv.h>

#include "provider/keys.h"

using namespace test;

namespace {

using Wide = long long;

Number decimal(const std::string &text) {
  Number n(PKV_New_BIGINT());
  EXPECT_EQ(PKV_Decimal_To_BIGINT(n, text.c_str()), 0) << text;
  return n;
}

std::string to_decimal(const BIGINT *n) {
  Owned<char> text;
  if (PKV_BIGINT_To_Decimal(n, &text)) return text ? "stored on failure" : "-";
  return text.get();
}

// Values of up to 60 bits, of every length, many of them equal or next to one another.
std::vector<Wide> values() {
  std::vector<Wide> all = {0, 1, -1, 255, 256, -256};
  for (int bits = 1; bits <= 60; bits += 3) {
    for (int near = -1; near <= 1; ++near) all.insert(all.end(), {(Wide(1) << bits) + near, -(Wide(1) << bits) + near});
  }
  return all;
}

Number of(Wide value) {
  Bytes octets;
  for (Wide rest = value < 0 ? -value : value; rest; rest >>= 8) octets.insert(octets.begin(), uint8_t(rest));
  octets.insert(octets.begin(), 2, 0);
  Number n(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
  EXPECT_EQ(PKV_Set_BIGINT_Negative(n, value < 0), 0);
  return n;
}

Wide wide(const BIGINT *n) {
  int length = 0;
  const unsigned char *octets = PKV_Get_BIGINT_Octets(n, &length);
  EXPECT_TRUE(!length || *octets) << "a leading zero";
  Wide value = 0;
  for (int i = 0; i < length; ++i) value = value << 8 | octets[i];
  return PKV_Is_BIGINT_Negative(n) ? -value : value;
}

TEST(Bigint, SumsRemaindersAndOrder) {
  const auto all = values();
  for (const Wide a : all) {
    const Number x = of(a);
    for (const Wide b : all) {
      const Number y = of(b), out(PKV_New_BIGINT());
      ASSERT_EQ(call(PKV_Cmp_BIGINT, x, y), a < b ? -1 : a > b);
      ASSERT_EQ(call(PKV_Add_BIGINT, out, x, y), 0);
      ASSERT_TRUE(wide(out) == a + b);
      ASSERT_EQ(call(PKV_Mod_BIGINT, out, x, y), b > 0 ? 0 : PKV_ERR_BAD_VALUE);
      if (b > 0) ASSERT_TRUE(wide(out) == (a % b + b) % b);
    }
  }
}

TEST(Bigint, ResultsMayBeOperands) {
  const Number n = decimal("-5"), m = decimal("7");
  EXPECT_EQ(call(PKV_Add_BIGINT, n, n, n), 0);
  EXPECT_EQ(call(PKV_Mod_BIGINT, m, n, m), 0);
  EXPECT_EQ(to_decimal(m), "4");
  // Its own octets, first from the inner room and then from a block of its own.
  for (const size_t length : {30, 3000}) {
    EXPECT_EQ(call(PKV_Binary_To_BIGINT, n, Bytes(length, 0xAB)), 0);
    EXPECT_EQ(PKV_Binary_To_BIGINT(n, PKV_Get_BIGINT_Octets(n, nullptr) + 1, int(length) - 2), 0);
    EXPECT_EQ(digits_of(n), to_hex(Bytes(length - 2, 0xAB)));
  }
}

TEST(Bigint, DecimalText) {
  const std::string longest(20000, '9');
  const char *const cases[][3] = {{"0", "", "0"},
                                  {"-0", "", "0"},
                                  {"0010", "0a", "10"},
                                  {"-18446744073709551616", "010000000000000000", "-18446744073709551616"},
                                  {"340282366920938463463374607431768211455", "ffffffffffffffffffffffffffffffff",
                                   "340282366920938463463374607431768211455"}};
  for (const auto &[text, digits, back] : cases) {
    const Number n = decimal(text);
    EXPECT_EQ(digits_of(n), digits);
    EXPECT_EQ(to_decimal(n), back);
  }
  const Number n = decimal("-" + longest), next = decimal("-1");
  for (const std::string &bad : {std::string(), std::string("-"), std::string("--1"), std::string("+1"),
                                 std::string("1 "), std::string("0x10"), longest + "9", "0" + longest})
    EXPECT_EQ(PKV_Decimal_To_BIGINT(n, bad.c_str()), PKV_ERR_BAD_VALUE) << bad.substr(0, 10);
  EXPECT_EQ(to_decimal(n), "-" + longest);
  EXPECT_EQ(call(PKV_Add_BIGINT, n, n, next), 0);
  EXPECT_EQ(to_decimal(n), "-") << "20001 digits";
  EXPECT_EQ(to_decimal(number("01" + std::string(20000, '0'))), "-");
}

TEST(Bigint, OctetsWordsBitsAndNulls) {
  const Number n = number("00001234"), zero(PKV_New_BIGINT()), none;
  uint8_t out[4] = {9, 9, 9, 9};
  EXPECT_EQ(PKV_BIGINT_To_Binary(n, out, 1), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(to_hex(out, 4), "09090909");
  EXPECT_EQ(PKV_BIGINT_To_Binary(n, out, 3), 0);
  EXPECT_EQ(to_hex(out, 4), "00123409");
  EXPECT_EQ(PKV_BIGINT_To_Binary(zero, nullptr, 0), 0);
  EXPECT_EQ(PKV_Binary_To_BIGINT(n, nullptr, 1), PKV_ERR_NULL);
  EXPECT_EQ(PKV_Binary_To_BIGINT(n, out, -1), PKV_ERR_BAD_VALUE);
  EXPECT_TRUE(!PKV_New_BIGINT_Binary(nullptr, 1) && !PKV_New_BIGINT_Binary(out, -1));
  for (const unsigned word : {0u, 1u, 255u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(PKV_Set_BIGINT_Word(n, word), 0);
    EXPECT_EQ(PKV_Get_BIGINT_Word(n), word);
    EXPECT_EQ(PKV_Get_BIGINT_Bit_Length(n), word ? 32 - __builtin_clz(word) : 0);
  }
  EXPECT_EQ(PKV_Get_BIGINT_Word(decimal("4294967296")), 0xFFFFFFFF);
  EXPECT_EQ(PKV_Get_BIGINT_Bit_Length(decimal("4294967296")), 33);
  EXPECT_EQ(PKV_Get_BIGINT_Word(nullptr), 0u);
  EXPECT_EQ(call(PKV_Cmp_BIGINT, none, none), -1);
  EXPECT_EQ(call(PKV_Cmp_BIGINT, none, n), -1);
  EXPECT_EQ(call(PKV_Cmp_BIGINT, n, none), 1);
  EXPECT_EQ(call(PKV_Copy_BIGINT, n, none), PKV_ERR_NULL);
}

// A placed number reads the caller's octets until it changes, and never writes to them.
TEST(Bigint, PlacedNumbers) {
  alignas(void *) uint8_t place[64];
  ASSERT_LE(PKV_Get_BIGINT_Size(), sizeof place);
  const Bytes octets = hex("00a1b2c3");
  BIGINT *n = PKV_Place_BIGINT(place, octets.data(), int(octets.size()));
  ASSERT_NE(n, nullptr);
  EXPECT_EQ(digits_of(n), "a1b2c3");
  EXPECT_EQ(PKV_Set_BIGINT_Negative(n, 1), 0);
  EXPECT_EQ(PKV_Add_BIGINT(n, n, number("a1b2c4")), 0);
  EXPECT_EQ(digits_of(n), "01");
  PKV_Clear_BIGINT(n);
  EXPECT_EQ(digits_of(n), "");
  EXPECT_EQ(PKV_Copy_BIGINT(n, number(std::string(80, '7'))), 0);
  PKV_Clear_BIGINT(n);
  EXPECT_EQ(to_hex(octets), "00a1b2c3");
  EXPECT_NE(PKV_Get_BIGINT_Octets(PKV_Place_BIGINT(place, nullptr, 0), nullptr), nullptr);
  EXPECT_TRUE(!PKV_Place_BIGINT(place, nullptr, 1) && !PKV_Place_BIGINT(nullptr, octets.data(), 1));
}

TEST(Bigint, ExhaustedMemoryChangesNothing) {
  const Number n = decimal("77"), big = number(std::string(400, 'f'));
  const auto work = [&] {
    const Number copy(PKV_Dup_BIGINT(n));
    if (!copy) return int(PKV_ERR_NO_MEMORY);
    const int code = call(PKV_Copy_BIGINT, copy, big);
    if (code) EXPECT_EQ(digits_of(copy), "4d");
    return code ? code : call(PKV_Add_BIGINT, copy, copy, n);
  };
  EXPECT_GT(fail_each_allocation(work), 2);
}

}  // namespace
