#include <velpki/pkv.h>

#include "provider/keys.h"

namespace {

using test::Number;
using test::number;
using Wide = long long;

Number decimal(const std::string &text) {
  Number n(PKV_New_BIGINT());
  EXPECT_EQ(PKV_Decimal_To_BIGINT(n.get(), text.c_str()), 0) << text;
  return n;
}

std::string to_decimal(const BIGINT *n) {
  char *text = nullptr;
  EXPECT_EQ(PKV_BIGINT_To_Decimal(n, &text), 0);
  const std::string copy = text ? text : "";
  PKV_Free(text, __FILE__, __LINE__);
  return copy;
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
  test::Bytes octets;
  for (Wide rest = value < 0 ? -value : value; rest; rest >>= 8) octets.insert(octets.begin(), uint8_t(rest));
  octets.insert(octets.begin(), 2, 0);
  Number n(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
  EXPECT_EQ(PKV_Set_BIGINT_Negative(n.get(), value < 0), 0);
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
      ASSERT_EQ(PKV_Cmp_BIGINT(x.get(), y.get()), a < b ? -1 : a > b);
      ASSERT_EQ(PKV_Add_BIGINT(out.get(), x.get(), y.get()), 0);
      ASSERT_TRUE(wide(out.get()) == a + b);
      ASSERT_EQ(PKV_Mod_BIGINT(out.get(), x.get(), y.get()), b > 0 ? 0 : PKV_ERR_BAD_VALUE);
      if (b > 0) ASSERT_TRUE(wide(out.get()) == (a % b + b) % b);
    }
  }
}

TEST(Bigint, ResultsMayBeOperands) {
  const Number n = decimal("-5"), m = decimal("7");
  EXPECT_EQ(PKV_Add_BIGINT(n.get(), n.get(), n.get()), 0);
  EXPECT_EQ(PKV_Mod_BIGINT(m.get(), n.get(), m.get()), 0);
  EXPECT_EQ(to_decimal(m.get()), "4");
  // Its own octets, first from the inner room and then from a block of its own.
  for (const int length : {30, 3000}) {
    EXPECT_EQ(PKV_Binary_To_BIGINT(n.get(), test::Bytes(size_t(length), 0xAB).data(), length), 0);
    EXPECT_EQ(PKV_Binary_To_BIGINT(n.get(), PKV_Get_BIGINT_Octets(n.get(), nullptr) + 1, length - 2), 0);
    EXPECT_EQ(test::digits_of(n.get()), test::to_hex(test::Bytes(size_t(length) - 2, 0xAB)));
  }
}

TEST(Bigint, DecimalText) {
  const struct {
    const char *text, *digits, *back;
  } cases[] = {{"0", "", "0"},
               {"-0", "", "0"},
               {"0010", "0a", "10"},
               {"-18446744073709551616", "010000000000000000", "-18446744073709551616"},
               {"340282366920938463463374607431768211455", "ffffffffffffffffffffffffffffffff",
                "340282366920938463463374607431768211455"}};
  for (const auto &c : cases) {
    const Number n = decimal(c.text);
    EXPECT_EQ(test::digits_of(n.get()), c.digits);
    EXPECT_EQ(to_decimal(n.get()), c.back);
  }
  const std::string longest(20000, '9');
  Number n = decimal("-" + longest);
  EXPECT_EQ(to_decimal(n.get()), "-" + longest);
  for (const std::string &bad : {std::string(), std::string("-"), std::string("--1"), std::string("+1"),
                                 std::string("1 "), std::string("0x10"), longest + "9", "0" + longest}) {
    EXPECT_EQ(PKV_Decimal_To_BIGINT(n.get(), bad.c_str()), PKV_ERR_BAD_VALUE) << bad.substr(0, 10);
  }
  EXPECT_EQ(to_decimal(n.get()), "-" + longest);
  char *text = nullptr;
  const Number next = decimal("-1");
  EXPECT_EQ(PKV_Add_BIGINT(n.get(), n.get(), next.get()), 0);
  EXPECT_EQ(PKV_BIGINT_To_Decimal(n.get(), &text), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(PKV_BIGINT_To_Decimal(number("01" + std::string(20000, '0')).get(), &text), PKV_ERR_BAD_VALUE);
  EXPECT_FALSE(text);
}

TEST(Bigint, OctetsOfFixedLength) {
  const Number n = number("00001234");
  uint8_t out[4] = {9, 9, 9, 9};
  EXPECT_EQ(PKV_BIGINT_To_Binary(n.get(), out, 1), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(test::to_hex(out, 4), "09090909");
  EXPECT_EQ(PKV_BIGINT_To_Binary(n.get(), out, 3), 0);
  EXPECT_EQ(test::to_hex(out, 4), "00123409");
  EXPECT_EQ(PKV_BIGINT_To_Binary(Number(PKV_New_BIGINT()).get(), nullptr, 0), 0);
  EXPECT_EQ(PKV_Binary_To_BIGINT(n.get(), nullptr, 1), PKV_ERR_NULL);
  EXPECT_EQ(PKV_Binary_To_BIGINT(n.get(), out, -1), PKV_ERR_BAD_VALUE);
  EXPECT_FALSE(PKV_New_BIGINT_Binary(nullptr, 1));
  EXPECT_FALSE(PKV_New_BIGINT_Binary(out, -1));
}

TEST(Bigint, WordsBitsAndNulls) {
  const Number n(PKV_New_BIGINT()), five = decimal("4294967296"), none;
  for (const unsigned word : {0u, 1u, 255u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(PKV_Set_BIGINT_Word(n.get(), word), 0);
    EXPECT_EQ(PKV_Get_BIGINT_Word(n.get()), word);
    EXPECT_EQ(PKV_Get_BIGINT_Bit_Length(n.get()), word ? 32 - __builtin_clz(word) : 0);
  }
  EXPECT_EQ(PKV_Get_BIGINT_Word(five.get()), 0xFFFFFFFF);
  EXPECT_EQ(PKV_Get_BIGINT_Bit_Length(five.get()), 33);
  EXPECT_EQ(PKV_Get_BIGINT_Word(nullptr), 0u);
  EXPECT_EQ(PKV_Cmp_BIGINT(nullptr, nullptr), -1);
  EXPECT_EQ(PKV_Cmp_BIGINT(nullptr, n.get()), -1);
  EXPECT_EQ(PKV_Cmp_BIGINT(n.get(), nullptr), 1);
  EXPECT_EQ(PKV_Copy_BIGINT(n.get(), nullptr), PKV_ERR_NULL);
}

TEST(Bigint, ExhaustedMemoryChangesNothing) {
  const Number n = decimal("77"), big = number(std::string(400, 'f'));
  EXPECT_GT(test::fail_each_allocation([&] {
              const Number copy(PKV_Dup_BIGINT(n.get()));
              if (!copy) return int(PKV_ERR_NO_MEMORY);
              const int code = PKV_Copy_BIGINT(copy.get(), big.get());
              if (code) EXPECT_EQ(test::digits_of(copy.get()), "4d");
              return code ? code : PKV_Add_BIGINT(copy.get(), copy.get(), n.get());
            }),
            2);
}

}  // namespace
