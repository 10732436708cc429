// What the examples share: owners of the library's records, and an end with the reason when a call fails.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/pkcs1.h>
#include <velpki/pkcs10.h>
#include <velpki/x509_crl.h>
#include <velpki/x509v3.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

struct Release {
  void operator()(X509_CERT *p) const { free_X509_CERT(p); }
  void operator()(X509_CRL *p) const { free_X509_CRL(p); }
  void operator()(X509_REVOKED *p) const { free_X509_REVOKED(p); }
  void operator()(PKCS10_X509_REQ *p) const { free_PKCS10_X509_REQ(p); }
  void operator()(PKCS1_RSA_PRIVATE_KEY *p) const { free_PKCS1_RSA_PRIVATE_KEY(p); }
  void operator()(X509_NAME *p) const { free_X509_NAME(p); }
  void operator()(X509_TIME *p) const { free_X509_TIME(p); }
  void operator()(X509_PUBKEY *p) const { free_X509_PUBKEY(p); }
  void operator()(X509_EXTENSION *p) const { free_X509_EXTENSION(p); }
  void operator()(ASN1_TIME *p) const { free_ASN1_TIME(p); }
  void operator()(ASN1_STRING *p) const { free_ASN1_STRING(p); }
  void operator()(ASN1_UNIT *p) const { free_ASN1_UNIT(p); }
  void operator()(ASYMMETRIC_KEY *p) const { free_ASYMMETRIC_KEY(p); }
  void operator()(BIGINT *p) const { PKV_Free_BIGINT(p); }
  void operator()(RSA_UNIT *p) const { PKV_Free_RSA(p); }
  void operator()(KCDSA_UNIT *p) const { PKV_Free_KCDSA(p); }
  void operator()(ECC_UNIT *p) const { PKV_Free_ECC(p); }
  void operator()(ECURVE *p) const { PKV_Free_ECURVE(p); }
  void operator()(char *p) const { PKV_Free(p, __FILE__, __LINE__); }
  void operator()(unsigned char *p) const { PKV_Free(p, __FILE__, __LINE__); }
};
template <class T>
using owned = std::unique_ptr<T, Release>;

[[noreturn]] inline void usage(const char *call) {
  std::fprintf(stderr, "usage: %s\n", call);
  std::exit(1);
}
// Without a code there is no reason to tell.
[[noreturn]] inline void die(const char *what, int code = 0) {
  char why[200] = "";
  if (code) describe_velpki_code(code, why, sizeof why);
  std::fprintf(stderr, "%s failed%s%s\n", what, code ? ": " : "", why);
  std::exit(1);
}
inline void check(int code, const char *what) {
  if (code) die(what, code);
}
// Writers return the octets written, or a code in the same int.
inline void check_written(int result, const char *what) {
  if (result < 2 || result >= 0x41000000) die(what, result < 2 ? 0 : result);
}

// A certificate, and an unencrypted RSA private key ("RSA PRIVATE KEY"), from PEM files.
inline owned<X509_CERT> read_certificate(const char *path) {
  X509_CERT *cert = nullptr;
  check(readPEM_X509_CERT_from_File(&cert, path), path);
  return owned<X509_CERT>(cert);
}
inline owned<ASYMMETRIC_KEY> read_key(const char *path) {
  PKCS1_RSA_PRIVATE_KEY *read = nullptr;
  check(readPEM_PKCS1_RSA_PRIVATE_KEY_from_File(&read, path), path);
  const owned<PKCS1_RSA_PRIVATE_KEY> record(read);
  const owned<RSA_UNIT> rsa(get_RSA_UNIT_from_PRIV_KEY(read));
  return owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(rsa.get()));
}
