// The record families of pkcs1.h.
#include "support/family.h"

#include "samples.h"

using namespace test;

namespace {

const std::vector<Family> &families() {
  static const Bytes sha256 = TLV(0x30, "0609608648016503040201 0500");
  static const Bytes hash = TLV(0xA0, sha256), mask = TLV(0xA1, TLV(0x30, hex("06092a864886f70d010108") + sha256));
  static const std::vector<Family> all = {
      FAMILY(PKCS1_RSA_PRIVATE_KEY, TLV(0x30, "020100 02020111 020103 020200ab 020111 020117 020107 020103 020102"),
             dup_PKCS1_RSA_PRIVATE_KEY),
      FAMILY(PKCS1_RSA_PUBLIC_KEY, TLV(0x30, "02020111 020103"), dup_PKCS1_RSA_PUBLIC_KEY),
      FAMILY(RSASSA_PSS_PARAM, TLV(0x30, hash + mask + TLV(0xA2, "020120")), dup_RSASSA_PSS_PARAM),
      FAMILY(RSAES_OAEP_PARAM, TLV(0x30, hash + mask + TLV(0xA2, TLV(0x30, "06092a864886f70d010109 0402abcd"))),
             dup_RSAES_OAEP_PARAM),
  };
  return all;
}

INSTANTIATE_FAMILIES(Keys, families);

}  // namespace
