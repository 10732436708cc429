// What the messages that others made come with: certificates and keys in files.
#pragma once

#include "cms_parties.h"

namespace test {

inline Certificate certificate_at(const std::string &path) { return read_certificate_RFC5280(read_file(path)); }
// Those of a list with commas in a column of the manifest.
inline Certificates certificates_at(const std::string &folder, const std::string &names) {
  Certificates list(new_X509_CERTIFICATES());
  for (const std::string &name : split(names))
    if (const Certificate cert = certificate_at(folder + "/" + name)) add_X509_CERTIFICATES(list, cert);
  return list;
}
// PKCS#8: version, algorithm, OCTET STRING with the key.
inline Owned<ASYMMETRIC_KEY> key_at(const std::string &path, const X509_CERT *cert) {
  const Bytes file = read_file(path);
  const Unit info = unit(file);
  auto *octets = static_cast<ASN1_STRING *>(getBERChildAt(info, 2, TYPE_OCTET_STRING));
  const String owner(octets);
  PKCS1_RSA_PRIVATE_KEY *record = nullptr;
  if (!octets) return nullptr;
  if (readDER_PKCS1_RSA_PRIVATE_KEY_from_Binary(&record, octets->data, octets->length) == 0) {
    const Owned<RSA_UNIT> rsa(get_RSA_UNIT_from_PRIV_KEY(record));
    free_PKCS1_RSA_PRIVATE_KEY(record);
    return Owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(rsa));
  }
  // ECPrivateKey: version, OCTET STRING; the curve is that of the certificate.
  const X509_PUBKEY *spki = get_X509_SPKI(cert);
  const ECC_UNIT *unit = spki ? ASYMMETRIC_KEY_to_ECC_UNIT(spki->key) : nullptr;
  if (!unit || octets->length < 7) return nullptr;
  const Owned<ECC_UNIT> own(PKV_Dup_ECC(unit));
  const int at = octets->data[1] & 0x80 ? 7 : 6;
  BIGINT *d = PKV_New_BIGINT_Binary(octets->data + at + 1, octets->data[at]);
  PKV_Set_ECC_Private(own, d);
  PKV_Free_BIGINT(d);
  return Owned<ASYMMETRIC_KEY>(ECC_UNIT_to_ASYMMETRIC_KEY(own));
}

}  // namespace test
