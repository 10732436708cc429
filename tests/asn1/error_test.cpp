// Status codes and their names.
#include <velpki/asn1_error.h>
#include <velpki/pkv.h>

#include <set>

#include "support/support.h"

using namespace test;

namespace {

std::string described(int code) {
  char out[121];
  const int length = describe_velpki_code(code, out, sizeof out);
  return length == int(std::strlen(out)) ? out : "wrong length";
}

TEST(StatusCodes, Description) {
  for (const Row &row : table("status_codes")) EXPECT_EQ(described(code_at(row, "code")), row.at("text"));
}

TEST(StatusCodes, EveryCodeHasItsNameAndTheTextStaysInItsRoom) {
  std::set<std::string> names;
  for (const ASN1_CODE_NAME *row = asn1_function_codes; row->name; ++row) {
    EXPECT_NE(described(int(row->code)).find(row->name), std::string::npos) << row->name;
    EXPECT_TRUE(names.insert(row->name).second) << row->name;
  }
  for (const ASN1_CODE_NAME *row = asn1_reason_codes; row->name; ++row)
    EXPECT_EQ(described(int(0x41010000 | row->code)), std::string("F_SET_ASN1_STRING_VALUE: ") + row->name);
  const std::string whole = described(0x460F0104);
  for (int capacity = 1; capacity <= int(whole.size()) + 1; ++capacity) {
    std::string room(size_t(capacity) + 1, '#');
    const int fits = capacity > int(whole.size()) ? int(whole.size()) : -1;
    EXPECT_EQ(describe_velpki_code(0x460F0104, room.data(), capacity), fits);
    EXPECT_EQ(room.c_str(), whole.substr(0, size_t(capacity) - 1));
    EXPECT_EQ(room.back(), '#');
  }
  EXPECT_EQ(describe_velpki_code(0, nullptr, 10), -1);
}

}  // namespace
