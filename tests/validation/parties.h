// A small authority with its responders, made by openssl once for the whole program.
#pragma once

#include "samples.h"

namespace test {

inline bool has_openssl() { return !run("openssl version").empty(); }
#define VELPKI_NEED_OPENSSL \
  if (!test::has_openssl()) GTEST_SKIP() << "no openssl command"

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
for n in ca other good revoked responder stranger; do openssl rsa -traditional -in $n.p8 -out $n.key; done
printf 'V\t401231235959Z\t\t1001\tunknown\t/CN=good\nR\t401231235959Z\t240102030405Z,keyCompromise\t1002\tunknown\t/CN=revoked\n' > index.txt
)");
    return path;
  }();
  return folder;
}

inline Certificate party_certificate(const std::string &name) {
  X509_CERT *cert = nullptr;
  EXPECT_EQ(readPEM_X509_CERT_from_File(&cert, (pki() + "/" + name + ".pem").c_str()), 0) << name;
  return Certificate(cert);
}
inline Owned<ASYMMETRIC_KEY> party_key(const std::string &name) {
  PKCS1_RSA_PRIVATE_KEY *record = nullptr;
  EXPECT_EQ(readPEM_PKCS1_RSA_PRIVATE_KEY_from_File(&record, (pki() + "/" + name + ".key").c_str()), 0) << name;
  const Owned<RSA_UNIT> rsa(get_RSA_UNIT_from_PRIV_KEY(record));
  free_PKCS1_RSA_PRIVATE_KEY(record);
  return Owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(rsa.get()));
}
inline Owned<STACK> list_with(const X509_CERT *cert) {
  Owned<STACK> list(new_X509_CERTIFICATES());
  EXPECT_EQ(add_X509_CERTIFICATES(list.get(), cert), 0);
  return list;
}

}  // namespace test
