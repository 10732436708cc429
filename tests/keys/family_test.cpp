// The record families of this folder.
#include "support/family.h"

using namespace test;

namespace {

const std::vector<Family> &families() {
  static const Bytes sha256 = TLV(0x30, "0609608648016503040201 0500");
  static const Bytes hash = TLV(0xA0, sha256), mask = TLV(0xA1, TLV(0x30, hex("06092a864886f70d010108") + sha256));
  static const Bytes kdf = TLV(0x30, "04080102030405060708 02020800 020120 300c06082a864886f70d02090500");
  static const Bytes pbes2 = TLV(0x30, TLV(0x30, hex("06092a864886f70d01050c") + kdf) +
                                           TLV(0x30, "060960864801650304012a 0410" + std::string(32, '1')));
  static const std::string attributes =
      "a027 3025 060a2a831a8c9a440a010103 3117 03150000112233445566778899aabbccddeeff00112233";
  static const Bytes rsa =
      TLV(0x30, hex("020100 300d06092a864886f70d0101010500") +
                    TLV(0x04, TLV(0x30, "020100 02020111 020103 020200ab 020111 020117 020107 020103 020102")) +
                    hex(attributes));
  static const Bytes mac =
      TLV(0x30, "3021 3009 06052b0e03021a 0500 0414" + std::string(40, '5') + "0404 01020304 02020800");
  static const Bytes cert_bag = TLV(0x30, "060a2a864886f70d01091601 a006 0404 30020500");
  static const Bytes key_bag = TLV(0x30, hex("060b2a864886f70d010c0a0101") + TLV(0xA0, rsa) +
                                             TLV(0x31, TLV(0x30, "06092a864886f70d010915 3103 0401aa")));
  static const Bytes nested_bag = TLV(0x30, hex("060b2a864886f70d010c0a0106") + TLV(0xA0, TLV(0x30, key_bag)));
  static const Bytes data = TLV(0x30, "06092a864886f70d010701 a004 04020500");
  static const std::vector<Family> all = {
      FAMILY(PKCS1_RSA_PRIVATE_KEY, TLV(0x30, "020100 02020111 020103 020200ab 020111 020117 020107 020103 020102"),
             dup_PKCS1_RSA_PRIVATE_KEY),
      FAMILY(PKCS1_RSA_PUBLIC_KEY, TLV(0x30, "02020111 020103"), dup_PKCS1_RSA_PUBLIC_KEY),
      FAMILY(RSASSA_PSS_PARAM, TLV(0x30, hash + mask + TLV(0xA2, "020120")), dup_RSASSA_PSS_PARAM),
      FAMILY(RSAES_OAEP_PARAM, TLV(0x30, hash + mask + TLV(0xA2, TLV(0x30, "06092a864886f70d010109 0402abcd"))),
             dup_RSAES_OAEP_PARAM),
      FAMILY(P5_PBE_PARAM, TLV(0x30, "04080102030405060708 02020800"), dup_P5_PBE_PARAM),
      FAMILY_RFC5280(P5_PBE_PARAM, pbes2, dup_P5_PBE_PARAM),
      FAMILY_AS(PKCS8, P8_ENCRYPTED_KEY,
                TLV(0x30, TLV(0x30, hex("06092a864886f70d01050d") + pbes2) + TLV(0x04, "0badcafe")), dup_PKCS8),
      FAMILY(P8_PRIV_KEY_INFO, rsa, dup_P8_PRIV_KEY_INFO),
      family<P8_PRIV_KEY_INFO>("P8_PRIV_KEY_INFO_of_an_unknown_key",
                               TLV(0x30, "020100 300506032b6570 0422 0420" + std::string(64, '7') + attributes),
                               Seq_to_P8_PRIV_KEY_INFO_RFC5280, P8_PRIV_KEY_INFO_to_Seq, dup_P8_PRIV_KEY_INFO,
                               free_P8_PRIV_KEY_INFO),
      FAMILY(P12_MAC_DATA, mac, nullptr),
      FAMILY(P12_BAGS, cert_bag, nullptr),
      family<P12_SAFEBAG>("P12_SAFEBAG_of_a_key", key_bag, Seq_to_P12_SAFEBAG, P12_SAFEBAG_to_Seq, nullptr,
                          free_P12_SAFEBAG),
      family<P12_SAFEBAG>("P12_SAFEBAG_of_another_type", TLV(0x30, "06032a0304 a003 020105"), Seq_to_P12_SAFEBAG,
                          P12_SAFEBAG_to_Seq, nullptr, free_P12_SAFEBAG),
      FAMILY(P12_SAFEBAGS, TLV(0x30, nested_bag + key_bag), nullptr),
      FAMILY(P12_AUTH_SAFE, TLV(0x30, data + data), nullptr),
      FAMILY_AS(PKCS12, P12_PFX, TLV(0x30, hex("020103") + data + mac), nullptr),
  };
  return all;
}

INSTANTIATE_FAMILIES(Keys, families);

}  // namespace
