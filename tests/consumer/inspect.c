/* Verifies a certificate with its own key, and says that no token is there. */
#include <stdio.h>
#include <velpki/pkcs11_access.h>
#include <velpki/x509.h>

int main(int argc, char **argv) {
  X509_CERT *cert = NULL;
  int code = readPEM_X509_CERT_from_File(&cert, argc > 1 ? argv[1] : NULL);
  if (!code) code = verify_SIG_X509_CERT_RFC5280(cert, get_X509_SPKI(cert));
  if (!code) print_X509_NAME(get_X509_subject(cert));
  free_X509_CERT(cert);
  printf("%x %lu\n", (unsigned)code, p11_C_Initialize(NULL));
  return code != 0;
}
