// The record families of this folder, through the tests that hold for all of them.
#include "support/family.h"

#include "samples.h"

using namespace test;

namespace {

const std::vector<Family> &families() {
  static const CertificateParts parts;
  static const CrlParts crl;
  static const CrlParts v1 = [] {
    CrlParts p;
    p.version = p.next_update = p.tail = {};
    p.revoked = TLV(0x30, p.entry("80") + p.entry("ff7f"));
    return p;
  }();
  static const Bytes oid = TLV(0x06, "550403");
  static const Bytes attribute = TLV(0x30, oid + TLV(0x31, TLV(0x0C, "41") + TLV(0x30, "020105")));
  static const Bytes extension = TLV(0x30, TLV(0x06, "551d13") + TLV(0x01, "ff") + TLV(0x04, "3000"));
  static const Bytes wanted = TLV(0x30, hex("06092a864886f70d01090e") + TLV(0x31, TLV(0x30, extension)));
  static const Bytes info = TLV(0x30, hex("020100") + parts.subject + parts.spki + TLV(0xA0, attribute + wanted));
  static const Bytes request = TLV(0x30, info + parts.signature + parts.value);
  static const std::vector<Family> all = {
      FAMILY(X509_NAME, parts.issuer, dup_X509_NAME),
      FAMILY(X509_ALGO_IDENTIFIER, parts.signature, dup_X509_ALGO_IDENTIFIER),
      FAMILY(X509_ALGO_IDENTIFIERS, TLV(0x31, parts.signature + TLV(0x30, oid)), dup_X509_ALGO_IDENTIFIERS_strict),
      FAMILY(X509_ATTRIBUTE, attribute, dup_X509_ATTRIBUTE),
      FAMILY(X509_ATTRIBUTES, TLV(0x31, attribute + attribute), dup_X509_ATTRIBUTES),
      FAMILY(X509_EXTENSION, extension, dup_X509_EXTENSION),
      FAMILY(X509_EXTENSIONS, TLV(0x30, extension + extension), dup_X509_EXTENSIONS),
      FAMILY(X509_PUBKEY, parts.spki, dup_X509_PUBKEY),
      FAMILY(X509_TBS_CERT, parts.tbs(), dup_X509_TBS_CERT),
      FAMILY(X509_CERT, parts.der(), dup_X509_CERT),
      FAMILY(X509_CERTIFICATES, TLV(0x30, parts.der() + parts.der()), nullptr),
      FAMILY(X509_CERT_PAIR, TLV(0x30, TLV(0xA0, parts.der()) + TLV(0xA1, parts.der())), dup_X509_CERT_PAIR),
      FAMILY(PKCS10_X509_REQ_INFO, info, dup_PKCS10_X509_REQ_INFO),
      FAMILY(PKCS10_X509_REQ, request, dup_PKCS10_X509_REQ),
      FAMILY_RFC5280(PKCS10_X509_REQ, request, dup_PKCS10_X509_REQ),
      FAMILY(X509_AUX, TLV(0x30, TLV(0x0C, "41") + TLV(0x80, "0102")), dup_X509_AUX),
      FAMILY(ISSUER_AND_SERIAL_NUMBER, TLV(0x30, parts.issuer + parts.serial), nullptr),
      FAMILY(X509_CRL_INFO, crl.tbs(), dup_X509_CRL_INFO),
      FAMILY(X509_CRL, crl.der(), dup_X509_CRL),
      appending(FAMILY(X509_CRLS, TLV(0x30, crl.der() + crl.der()), nullptr)),
      appending(family<STACK>("X509_REVOKED", crl.revoked, Seq_to_X509_REVOKED, X509_REVOKED_to_Seq, nullptr,
                              free_X509_REVOKED_LIST)),
      FAMILY_RFC5280(X509_CRL, v1.der(), dup_X509_CRL),
      FAMILY_RFC5280(X509_NAME,
                     TLV(0x30, TLV(0x31, TLV(0x30, oid + TLV(0x0C, "41")) + TLV(0x30, oid + TLV(0x12, "42")))),
                     dup_X509_NAME),
      FAMILY_RFC5280(X509_CERT, parts.der(), dup_X509_CERT),
      FAMILY_RFC5280(X509_PUBKEY, TLV(0x30, TLV(0x30, "06032b6570") + TLV(0x03, "00aabb")), dup_X509_PUBKEY),
  };
  return all;
}

INSTANTIATE_FAMILIES(X509, families);

}  // namespace
