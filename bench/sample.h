// The certificate that benchmarks run on.
#pragma once

#include <velpki/asn1_objects.h>
#include <velpki/pem.h>
#include <velpki/x509.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "libcrypto_side.h"

using peer::Bytes;

struct Release {
  void operator()(X509_CERT *cert) const { free_X509_CERT(cert); }
};
using Certificate = std::unique_ptr<X509_CERT, Release>;

inline Certificate decoded(const Bytes &der) {
  X509_CERT *cert = nullptr;
  if (readDER_X509_CERT_from_Binary(&cert, der.data(), int(der.size()))) std::abort();
  return Certificate(cert);
}

inline const char *bundle_path() {
  const char *given = std::getenv("VELPKI_BUNDLE");
  return given ? given : "/etc/ssl/certs/ca-certificates.crt";
}

// The first certificate of the machine's bundle with a 2048-bit RSA key that signs itself with SHA-256.
inline Bytes sample_certificate() {
  std::ifstream in(bundle_path(), std::ios::binary);
  const std::string text(std::istreambuf_iterator<char>(in), {});
  for (size_t at = 0; (at = text.find("-----BEGIN CERTIFICATE-----", at)) != text.npos; ++at) {
    unsigned char *der = nullptr;
    const size_t end = text.find("-----END CERTIFICATE-----", at);
    if (end == text.npos) break;
    const int length = decode_PEM(text.data() + at, int(end + 25 - at), &der);
    const Bytes octets(der, der + (length > 0 ? length : 0));
    PKV_Free(der, __FILE__, __LINE__);
    X509_CERT *cert = nullptr;
    readDER_X509_CERT_from_Binary(&cert, octets.data(), int(octets.size()));
    const Certificate owner(cert);
    const X509_PUBKEY *pubkey = get_X509_SPKI(cert);
    const bool fits = pubkey && PKV_Get_RSA_Length(ASYMMETRIC_KEY_to_RSA_UNIT(pubkey->key)) == 256 &&
                      get_DigestID_from_OID(get_X509_sig_alg(cert)) == PKV_DIGEST_SHA256 &&
                      verify_SIG_X509_CERT(cert, pubkey->key) == 0;
    if (fits) return octets;
  }
  std::fputs("no suitable certificate in the bundle\n", stderr);
  std::exit(1);
}
