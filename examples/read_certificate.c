/* Reads a certificate from a PEM file and prints its subject: read_certificate FILE */
#include <stdio.h>
#include <velpki/asn1_error.h>
#include <velpki/x509.h>

int main(int argc, char **argv) {
  X509_CERT *cert = NULL;
  char why[200];
  const int code = readPEM_X509_CERT_from_File(&cert, argc > 1 ? argv[1] : NULL);
  if (code == 0) print_X509_NAME(get_X509_subject(cert));
  else if (describe_velpki_code(code, why, sizeof why) > 0) fprintf(stderr, "%s\n", why);
  free_X509_CERT(cert);
  return code != 0;
}
