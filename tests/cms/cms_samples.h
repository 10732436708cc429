// CMS records that the tests of this folder share.
#pragma once

#include <velpki/cms.h>

#include "samples.h"

namespace test {

// The pieces of small CMS messages, each of which a test may replace.
struct CmsParts : MessageParts {
  Bytes key_id = TLV(0x80, "0102030405060708");
  Bytes encapsulated = TLV(0x30, "06092a864886f70d010701 a007 0405 68656c6c6f");
  Bytes wrap = TLV(0x30, "060b2a864886f70d0109100306 0500");
  Bytes agreement = TLV(0x30, "06062b8104010b01 300b 0609608648016503040105");
  Bytes key_identifier = hex("0402a1a2 180f32303236303130313030303030305a 3009 06032a0304 0402beef");
  Bytes wrapped = TLV(0x04, Bytes(24, 0x5A));
  Bytes hmac = TLV(0x30, "06082a864886f70d0209 0500");

  Bytes cms_signer() const {
    return TLV(0x30, TLV(0x02, "03") + key_id + sha256 + TLV(0xA0, attributes) + rsa + TLV(0x04, Bytes(128, 0x5A)) +
                         TLV(0xA1, attributes));
  }
  Bytes cms_signed_data() const {
    return TLV(0x30, TLV(0x02, "03") + TLV(0x31, sha256) + encapsulated + TLV(0xA0, certificate.der()) +
                         TLV(0x31, cms_signer() + signer()));
  }
  Bytes originator() const { return TLV(0xA0, certificate.der()); }
  Bytes key_agree(const Bytes &originator_choice) const {
    const Bytes keys = TLV(0x30, issuer_and_serial + wrapped) + TLV(0x30, TLV(0xA0, key_identifier) + wrapped);
    return TLV(0xA1, TLV(0x02, "03") + TLV(0xA0, originator_choice) + TLV(0xA1, TLV(0x04, "a0a1")) + agreement +
                         TLV(0x30, keys));
  }
  Bytes originator_key() const { return TLV(0xA1, "3009 06072a8648ce3d0201 0303 000405"); }
  Bytes kek() const { return TLV(0xA2, TLV(0x02, "04") + TLV(0x30, key_identifier) + wrap + wrapped); }
  Bytes by_password() const {
    return TLV(0xA3, TLV(0x02, "00") + TLV(0xA0, "06092a864886f70d01050c 0500") + wrap + wrapped);
  }
  Bytes other_recipient() const { return TLV(0xA4, "06032a0304 0401ff"); }
  Bytes recipients() const {
    return TLV(0x31, recipient() + TLV(0x30, TLV(0x02, "02") + key_id + rsa + wrapped) + key_agree(originator_key()) +
                         key_agree(key_id) + key_agree(issuer_and_serial) + kek() + by_password() + other_recipient());
  }
  Bytes cms_enveloped_data() const {
    return TLV(0x30, TLV(0x02, "02") + TLV(0xA0, originator()) + recipients() + encrypted + TLV(0xA1, attributes));
  }
  Bytes authenticated_data() const {
    return TLV(0x30, TLV(0x02, "00") + TLV(0xA0, originator()) + TLV(0x31, kek()) + hmac +
                         TLV(0xA1, "0609608648016503040201") + encapsulated + TLV(0xA2, attributes) +
                         TLV(0x04, Bytes(32, 0x5A)) + TLV(0xA3, attributes));
  }
};

inline Bytes authenticated_info(const Bytes &content) {
  return TLV(0x30, TLV(0x06, "2a864886f70d0109100102") + TLV(0xA0, content));
}

}  // namespace test
