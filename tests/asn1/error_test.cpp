// Status codes and their names.
#include <velpki/asn1_error.h>
#include <velpki/pkv.h>

#include <set>

#include "support/support.h"

namespace {

std::string described(int code) {
  char out[121];
  const int length = describe_velpki_code(code, out, sizeof out);
  return length == int(std::strlen(out)) ? out : "wrong length";
}

TEST(StatusCodes, Description) {
  const struct {
    int code;
    const char *text;
  } cases[] = {{0, "success"},
               {1, "failed"},
               {PKV_ERR_UNSUPPORTED, "PKV_ERR_UNSUPPORTED"},
               {0x460F0104, "F_SEQ_TO_X509_CERT: ERR_ASN1_DECODING"},
               {0x4B1C002B, "F_P7_SIGN: PKV_ERR_BAD_VALUE"},
               {0x47270104, "F_SEQ_TO_ISSUING_DIST_POINTS or F_SEQ_TO_CERTIFICATE_POLICIES: ERR_ASN1_DECODING"},
               {0x525B0000, "F_INIT_CMS_ENCRYPT_RECIPIENTINFO"},
               {0x46060202, "F_SET_X509_NOTAFTER: ERR_DUPLICATE_EXTENSION"},
               {0x4E00002B, "DER and PEM input and output: PKV_ERR_BAD_VALUE"},
               {0x50000104, "OCSP: ERR_ASN1_DECODING"},
               {0x46FF0007, "0x46FF0000: 0x07"},
               {0x46FF0999, "0x46FF0000: 0x0999"},
               {-1, "0xFFFF0000: ERR_MASK"}};
  for (const auto &each : cases) EXPECT_EQ(described(each.code), each.text);
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
