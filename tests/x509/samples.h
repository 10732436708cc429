// Records and encodings that the tests of this folder share.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/asn1_objects.h>
#include <velpki/issuer_and_serial_number.h>
#include <velpki/pkcs10.h>
#include <velpki/x509.h>
#include <velpki/x509_crl.h>

#include "support/asn1.h"

namespace test {

using Crl = Owned<X509_CRL>;
using Name = Owned<STACK, free_X509_NAME>;

// The pieces of a small certificate, each of which a test may replace.
struct CertificateParts {
  Bytes version = TLV(0xA0, "020102"), serial = TLV(0x02, "05"), signature = TLV(0x30, "06092a864886f70d01010b0500");
  Bytes issuer = TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "4341"))));
  Bytes validity = TLV(0x30, TLV(0x17, "3236303130313030303030305a") + TLV(0x17, "3330303130313030303030305a"));
  Bytes subject = issuer;
  Bytes spki =
      TLV(0x30, TLV(0x30, "06092a864886f70d0101010500") +
                    TLV(0x03, Bytes{0} + TLV(0x30, TLV(0x02, Bytes{0} + Bytes(128, 0xC5)) + TLV(0x02, "010001"))));
  Bytes tail = TLV(0xA3, TLV(0x30, TLV(0x30, TLV(0x06, "551d13") + TLV(0x01, "ff") + TLV(0x04, "3000"))));
  Bytes outer = signature, value = TLV(0x03, Bytes{0} + Bytes(128, 0x5A));

  std::map<std::string, Bytes *> named() {
    return {{"version", &version},   {"serial", &serial},   {"signature", &signature}, {"issuer", &issuer},
            {"validity", &validity}, {"subject", &subject}, {"spki", &spki},           {"tail", &tail},
            {"outer", &outer},       {"value", &value}};
  }
  Bytes tbs() const { return TLV(0x30, version + serial + signature + issuer + validity + subject + spki + tail); }
  Bytes der() const { return TLV(0x30, tbs() + outer + value); }
};

// The same of a small revocation list: serial numbers 1, 80 (as 0080) and 0, the second with a reason.
struct CrlParts {
  static Bytes entry(std::string_view serial, const Bytes &extensions = {}) {
    return TLV(0x30, TLV(0x02, serial) + TLV(0x17, "3235303130313030303030305a") + extensions);
  }
  Bytes version = TLV(0x02, "01"), signature = TLV(0x30, "06092a864886f70d01010b0500");
  Bytes issuer = CertificateParts().issuer;
  Bytes this_update = TLV(0x17, "3236303130313030303030305a"),
        next_update = TLV(0x18, "32303330303130313030303030305a");
  Bytes entries = entry("01") + entry("0080", TLV(0x30, extension("551d15", TLV(0x0A, "01")))) + entry("00");
  Bytes revoked = TLV(0x30, entries);
  Bytes tail = TLV(0xA0, TLV(0x30, extension("551d14", TLV(0x02, "05"))));
  Bytes outer = signature, value = TLV(0x03, Bytes{0} + Bytes(128, 0x5A));

  std::map<std::string, Bytes *> named() {
    return {
        {"version", &version},         {"signature", &signature}, {"issuer", &issuer}, {"this_update", &this_update},
        {"next_update", &next_update}, {"revoked", &revoked},     {"tail", &tail},     {"value", &value}};
  }
  Bytes tbs() const { return TLV(0x30, version + signature + issuer + this_update + next_update + revoked + tail); }
  Bytes der() const { return TLV(0x30, tbs() + outer + value); }
};

// Puts other octets in place of parts: "version=0200 tail=".
template <class Parts>
void change(Parts &parts, const std::string &changes) {
  for (const std::string &one : split(changes, ' '))
    *parts.named().at(one.substr(0, one.find('='))) = hex(one.substr(one.find('=') + 1));
}

inline Certificate read_certificate(const Bytes &der, int *code = nullptr) {
  return Certificate(read_by(readDER_X509_CERT_from_Binary, der, code));
}
inline Certificate read_certificate_RFC5280(const Bytes &der, int *code = nullptr) {
  return Certificate(read_by(readDER_X509_CERT_from_Binary_RFC5280, der, code));
}
inline Crl read_crl(const Bytes &der, int *code = nullptr) {
  return Crl(read_by(readDER_X509_CRL_from_Binary, der, code));
}
inline Crl read_crl_RFC5280(const Bytes &der, int *code = nullptr) {
  return Crl(read_by(readDER_X509_CRL_from_Binary_RFC5280, der, code));
}
inline std::string written(X509_CERT *cert) {
  const Bytes octets = octets_by(writeDER_X509_CERT_to_Binary, cert);
  return octets.empty() ? "-" : to_hex(octets);
}

// The OIDs of a list, each critical one with "!".
inline std::string extension_list(const X509_EXTENSIONS *extensions) {
  std::string list;
  for (int i = 0; i < get_X509_EXTENSION_count(extensions); ++i) {
    const X509_EXTENSION *each = get_X509_EXTENSION(extensions, i);
    list += (i ? "," : "") + text_of(each->object) + (each->critical ? "!" : "");
  }
  return list;
}

}  // namespace test
