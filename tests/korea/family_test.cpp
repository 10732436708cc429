// The record families of kisa.h.
#include <velpki/kisa.h>

#include "support/family.h"

using namespace test;

namespace {

const std::vector<Family> &families() {
  static const Bytes sha256 = TLV(0x30, "0609608648016503040201 0500");
  static const Bytes bare = TLV(0x30, "06052b0e03021a");
  static const Bytes vid = TLV(0x30, bare + TLV(0xA0, TLV(0x04, Bytes(20, 0x5A))));
  static const Bytes text = TLV(0x0C, "616263"), url = TLV(0x30, TLV(0x16, "6874") + TLV(0x16, "6c64"));
  static const Bytes info = TLV(0x30, TLV(0x30, TLV(0x06, "2a831a8c9a440a010101") + vid) +
                                          TLV(0x30, TLV(0x06, "2a831a8c9a440a010102") + TLV(0x04, "0102")));
  static const Bytes driver = TLV(0x30, text + text + text + text + sha256 + TLV(0x04, "aabb"));
  static const Bytes signature = TLV(0x30, sha256 + TLV(0x03, "00cc"));
  static const std::vector<Family> all = {
      FAMILY(KISA_IDENTIFY_DATA, TLV(0x30, text + info), dup_KISA_IDENTIFY_DATA),
      FAMILY(VID, vid, dup_VID),
      FAMILY(KISA_HSM_DRIVER_INFO, driver, dup_KISA_HSM_DRIVER_INFO),
      FAMILY(KISA_HSM_TOKEN_DISTRIBUTION_URL, url, dup_KISA_HSM_TOKEN_DISTRIBUTION_URL),
      FAMILY(KISA_HSM_SIGNATURE_VALUE, signature, dup_KISA_HSM_SIGNATURE_VALUE),
      FAMILY(KISA_HSM_SIGNATURE_TOKEN, TLV(0x30, TLV(0x02, "00") + TLV(0x30, driver + driver) + url + signature),
             dup_KISA_HSM_SIGNATURE_TOKEN),
  };
  return all;
}

INSTANTIATE_FAMILIES(Korea, families);

}  // namespace
