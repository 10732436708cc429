/* Shows a certificate with the values of its extensions: show_certificate FILE, PEM or DER */
#include <stdio.h>
#include <velpki/asn1_error.h>
#include <velpki/x509v3.h>

int main(int argc, char **argv) {
  X509_CERT *cert = NULL;
  char why[200];
  const char *path = argc > 1 ? argv[1] : NULL;
  int code = readPEM_X509_CERT_from_File(&cert, path);
  if (code) code = readDER_X509_CERT_from_File(&cert, path);
  if (code == 0) {
    print_X509(cert);
    print_X509_Extension_RFC5280(cert);
  } else if (describe_velpki_code(code, why, sizeof why) > 0) {
    fprintf(stderr, "%s\n", why);
  }
  free_X509_CERT(cert);
  return code != 0;
}
