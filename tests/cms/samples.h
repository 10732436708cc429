// Records and encodings that the tests of this folder share.
#pragma once

#include <velpki/pkcs7.h>

#include "support/keys.h"
#include "x509/samples.h"

namespace test {

inline Bytes content_info(uint8_t type, const Bytes &content) {
  const Bytes oid = TLV(0x06, hex("2a864886f70d0107") + Bytes{type});
  return TLV(0x30, content.empty() ? oid : oid + TLV(0xA0, content));
}

// The pieces of small messages, each of which a test may replace.
struct MessageParts {
  CertificateParts certificate;
  Bytes issuer_and_serial = TLV(0x30, certificate.issuer + certificate.serial);
  Bytes sha256 = TLV(0x30, "0609608648016503040201 0500"), rsa = TLV(0x30, "06092a864886f70d010101 0500");
  Bytes aes128 = TLV(0x30, "0609608648016503040102 0410 000102030405060708090a0b0c0d0e0f");
  Bytes attributes = TLV(0x30,
                         "06092a864886f70d010903"
                         "310b06092a864886f70d010701");
  Bytes data = content_info(1, TLV(0x04, "68656c6c6f"));
  Bytes encrypted = TLV(0x30, TLV(0x06, "2a864886f70d010701") + aes128 + TLV(0x80, Bytes(16, 0xA5)));

  Bytes signer() const {
    return TLV(0x30, TLV(0x02, "01") + issuer_and_serial + sha256 + TLV(0xA0, attributes) + rsa +
                         TLV(0x04, Bytes(128, 0x5A)) + TLV(0xA1, attributes));
  }
  Bytes recipient() const { return TLV(0x30, TLV(0x02, "00") + issuer_and_serial + rsa + TLV(0x04, Bytes(128, 0x5A))); }
  Bytes signed_data() const {
    return TLV(0x30, TLV(0x02, "01") + TLV(0x31, sha256) + data + TLV(0xA0, certificate.der()) + TLV(0x31, signer()));
  }
  Bytes enveloped_data() const { return TLV(0x30, TLV(0x02, "00") + TLV(0x31, recipient()) + encrypted); }
  Bytes signed_and_enveloped_data() const {
    return TLV(0x30, TLV(0x02, "01") + TLV(0x31, recipient()) + TLV(0x31, sha256) + encrypted +
                         TLV(0xA0, certificate.der()) + TLV(0x31, signer()));
  }
  Bytes digested_data() const { return TLV(0x30, TLV(0x02, "00") + sha256 + data + TLV(0x04, Bytes(32, 0x33))); }
};

}  // namespace test
