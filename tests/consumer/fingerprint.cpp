// The SHA-256 fingerprint of a certificate, as openssl prints it.
#include <velpki/x509.h>
#include <cstdio>
#include <memory>

int main(int argc, char **argv) {
  X509_CERT *read = nullptr;
  if (readPEM_X509_CERT_from_File(&read, argc > 1 ? argv[1] : nullptr)) return 1;
  const std::unique_ptr<X509_CERT, void (*)(X509_CERT *)> cert(read, free_X509_CERT);
  unsigned char digest[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  if (X509_CERT_digest_RFC5280(cert.get(), PKV_DIGEST_SHA256, digest, &length)) return 1;
  for (int i = 0; i < length; ++i) std::printf(i ? ":%02X" : "%02X", digest[i]);
  std::puts("");
}
