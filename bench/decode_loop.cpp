// Decodes and releases one certificate file a number of times: decode_loop FILE TIMES. For callgrind.
#include <velpki/asn1_io.h>
#include <velpki/x509.h>

#include <cstdlib>

int main(int argc, char **argv) {
  unsigned char *der = nullptr;
  const int length = argc > 2 ? File_to_binary(argv[1], &der) : -1;
  if (length < 0) return 1;
  for (int i = std::atoi(argv[2]); i > 0; --i) {
    X509_CERT *cert = nullptr;
    if (readDER_X509_CERT_from_Binary(&cert, der, length)) return 1;
    free_X509_CERT(cert);
  }
  PKV_Free(der, __FILE__, __LINE__);
  return 0;
}
