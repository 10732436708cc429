// A small authority with its responders, made by openssl once for the whole program.
#pragma once

#include "samples.h"

namespace test {

inline std::string pki() {
  static const std::string folder = [] {
    const std::string path = temporary_path("pki");
    run("mkdir -p " + path + " && cd " + path + R"( && exec 2>/dev/null
printf 'authorityKeyIdentifier=keyid\nsubjectKeyIdentifier=hash\nextendedKeyUsage=OCSPSigning\n' > ocsp.ext
printf 'authorityKeyIdentifier=keyid\nsubjectKeyIdentifier=hash\n' > plain.ext
for ca in ca other; do
  openssl req -x509 -newkey rsa:2048 -nodes -keyout $ca.p8 -out $ca.pem -days 3000 -subj "/O=velPKI/CN=$ca"
done
issue() { openssl req -newkey rsa:2048 -nodes -keyout $1.p8 -out $1.csr -subj "/O=velPKI/CN=$1"
  openssl x509 -req -in $1.csr -CA $2.pem -CAkey $2.p8 -set_serial $3 -days 2000 -extfile $4.ext -out $1.pem; }
issue good ca 0x1001 plain; issue revoked ca 0x1002 plain; issue absent ca 0x1003 plain
issue responder ca 0x2001 ocsp; issue stranger other 0x2001 ocsp
printf 'V\t401231235959Z\t\t1001\tunknown\t/CN=good\nR\t401231235959Z\t240102030405Z,keyCompromise\t1002\tunknown\t/CN=revoked\n' > index.txt
)");
    return path;
  }();
  return folder;
}

inline Certificate party_certificate(const std::string &name) {
  Certificate cert = read_by(readPEM_X509_CERT_from_File, pki() + "/" + name + ".pem");
  EXPECT_TRUE(cert) << name;
  return cert;
}
inline Owned<ASYMMETRIC_KEY> party_key(const std::string &name) { return key_at(pki() + "/" + name + ".p8"); }
inline Certificates list_with(const X509_CERT *cert) {
  Certificates list(new_X509_CERTIFICATES());
  EXPECT_EQ(add_X509_CERTIFICATES(list, cert), 0);
  return list;
}

}  // namespace test
