// The record families of ocsp.h, ctl.h and the trust anchors.
#include "support/family.h"

#include <velpki/cpv.h>
#include <velpki/ctl.h>

#include "samples.h"

using namespace test;

namespace {

const std::vector<Family> &families() {
  static const Bytes sha1 = TLV(0x30, "06052b0e03021a 0500"), rsa = TLV(0x30, "06092a864886f70d01010b 0500");
  static const Bytes id = TLV(0x30, sha1 + TLV(0x04, "aa") + TLV(0x04, "bb") + TLV(0x02, "05"));
  static const Bytes extensions = TLV(0x30, TLV(0x30, "06092b0601050507300102" + std::string("0402abcd")));
  static const Bytes time = TLV(0x18, "32303236313132353032303030305a");
  static const Bytes name = TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "4341"))));
  static const Bytes single_request = TLV(0x30, id + TLV(0xA0, extensions));
  static const Bytes tbs = TLV(0x30, TLV(0xA0, "020101") + TLV(0xA1, TLV(0xA4, name)) +
                                         TLV(0x30, single_request + TLV(0x30, id)) + TLV(0xA2, extensions));
  static const Bytes signature = TLV(0x30, rsa + TLV(0x03, "00cc"));
  static const Bytes revoked = TLV(0x30, time + TLV(0xA0, "0a0104"));
  static const Bytes single =
      TLV(0x30, id + TLV(0xA1, time + TLV(0xA0, "0a0104")) + time + time + TLV(0xA2, extensions));
  static const Bytes unknown = TLV(0x30, id + TLV(0x82, "") + time);
  static const Bytes data = TLV(0x30, TLV(0xA1, name) + time + TLV(0x30, single + unknown) + TLV(0xA1, extensions));
  static const Bytes by_key = TLV(0x30, TLV(0xA2, "0401aa") + time + TLV(0x30, TLV(0x30, id + TLV(0x80, "") + time)));
  static const Bytes basic = TLV(0x30, by_key + rsa + TLV(0x03, "00cc"));
  static const Bytes bytes = TLV(0x30, "06092b0601050507300101" + std::string("0401aa"));
  static const std::vector<Family> all = {
      FAMILY(OCSP_CERT_ID, id, dup_OCSP_CERT_ID),
      FAMILY(OCSP_SINGLE_REQUEST, single_request, dup_OCSP_SINGLE_REQUEST),
      FAMILY(OCSP_TBS_REQUEST, tbs, dup_OCSP_TBS_REQUEST),
      FAMILY(OCSP_SIGNATURE, signature, dup_OCSP_SIGNATURE),
      FAMILY(OCSP_REQUEST, TLV(0x30, tbs + TLV(0xA0, signature)), dup_OCSP_REQUEST),
      FAMILY(OCSP_REVOKED_INFO, revoked, dup_OCSP_REVOKED_INFO),
      FAMILY(OCSP_SINGLE_RESPONSE, single, dup_OCSP_SINGLE_RESPONSE),
      FAMILY(OCSP_RESPONSE_DATA, data, dup_OCSP_RESPONSE_DATA),
      FAMILY(BASIC_OCSP_RESPONSE, basic, dup_BASIC_OCSP_RESPONSE),
      FAMILY(OCSP_RESPONSE_BYTES, bytes, dup_OCSP_RESPONSE_BYTES),
      FAMILY(OCSP_RESPONSE, TLV(0x30, TLV(0x0A, "00") + TLV(0xA0, bytes)), dup_OCSP_RESPONSE),
  };
  return all;
}

const std::vector<Family> &trust_families() {
  static const Bytes spki =
      TLV(0x30, TLV(0x30, "06092a864886f70d010101 0500") + TLV(0x03, "00" + std::string("300602010b020103")));
  static const Bytes name = TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "4341"))));
  static const Bytes attribute = TLV(0x30, "06092a864886f70d010914 310a1e08c608c81c00200031");
  static const Bytes plain = TLV(0x30, TLV(0x04, "0102"));
  static const Bytes subject = TLV(0x30, TLV(0x04, "0102") + TLV(0x31, attribute));
  static const Bytes subjects = TLV(0x30, plain + subject);
  static const Bytes head = TLV(0x02, "00") + TLV(0x30, "060a2a831a8c9a4408010101") + TLV(0x02, "29");
  static const Bytes dates =
      TLV(0x17, "3230303130313030303030305a") + TLV(0x18, "32303530303130313030303030305a") + TLV(0x06, "2b0e03021a");
  static const Bytes extensions = TLV(0x30, TLV(0x30, "0603551d0e 0401aa"));
  static const std::vector<Family> all = {
      FAMILY(TRUST_ANCHOR, TLV(0x30, name + spki), dup_TRUST_ANCHOR),
      FAMILY(TRUSTED_CERTIFICATE, subject, dup_TRUSTED_CERTIFICATE),
      FAMILY(TRUSTED_SUBJECTS, subjects, nullptr),
      FAMILY(CERT_TRUST_LIST, TLV(0x30, head + dates + subjects + extensions), dup_CERT_TRUST_LIST),
  };
  return all;
}

INSTANTIATE_FAMILIES(Ocsp, families);
INSTANTIATE_FAMILIES(Trust, trust_families);

}  // namespace
