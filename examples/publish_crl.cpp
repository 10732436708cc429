// Publishes a revocation list that lists a certificate, reads it back and asks it about the certificate and its issuer:
// publish_crl ISSUER.pem ISSUER_KEY.pem CERTIFICATE.pem CRL.der
#include <velpki/asn1_objects.h>

#include <ctime>

#include "example.h"

namespace {

constexpr int kSha256WithRsa = 668, kCrlNumber = 88, kCrlReason = 141;  // registry rows
constexpr int kKeyCompromise = 1;

owned<X509_TIME> days_from_now(int days) {
  const std::time_t then = std::time(nullptr) + days * 86400L;
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d,%H:%M:%S", std::gmtime(&then));
  const owned<ASN1_TIME> time(charToASN1_TIME(text));
  return owned<X509_TIME>(asn1TimeToX509_TIME_RFC5280(time.get()));
}

// An extension whose value is one small number of the given type.
owned<X509_EXTENSION> number_extension(int row, unsigned char type, unsigned char number) {
  const unsigned char der[] = {type, 1, number};
  const owned<ASN1_STRING> value(new_OCTET_STRING(der, sizeof der));
  return owned<X509_EXTENSION>(create_X509_EXTENSION_by_OID_index(nullptr, row, 0, value.get()));
}

void revoke(X509_CRL *crl, const BIGINT *serial) {
  const owned<X509_REVOKED> entry(new_X509_REVOKED());
  check(set_X509_REVOKED_userCert(entry.get(), serial), "set_X509_REVOKED_userCert");
  check(set_X509_REVOKED_revocationDate(entry.get(), days_from_now(0).get()), "set_X509_REVOKED_revocationDate");
  check(add_X509_REVOKED_ext(entry.get(), number_extension(kCrlReason, TYPE_ENUMERATED, kKeyCompromise).get(), -1),
        "add_X509_REVOKED_ext");
  check(add_X509_CRL_revoked(crl, entry.get()), "add_X509_CRL_revoked");
}

owned<X509_CRL> make_crl(const X509_CERT *issuer, const BIGINT *serial, ASYMMETRIC_KEY *key) {
  owned<X509_CRL> crl(new_X509_CRL());
  const owned<ASN1_STRING> algorithm(index_to_OBJECT_IDENTIFIER(kSha256WithRsa));
  check(set_X509_CRL_version(crl.get(), 1), "set_X509_CRL_version");
  check(set_X509_CRL_signature(crl.get(), algorithm.get()), "set_X509_CRL_signature");
  check(set_X509_CRL_issuer(crl.get(), get_X509_subject(issuer)), "set_X509_CRL_issuer");
  check(set_X509_CRL_thisUpdate(crl.get(), days_from_now(0).get()), "set_X509_CRL_thisUpdate");
  check(set_X509_CRL_nextUpdate(crl.get(), days_from_now(7).get()), "set_X509_CRL_nextUpdate");
  check(add_X509_CRL_ext(crl.get(), number_extension(kCrlNumber, TYPE_INTEGER, 1).get(), -1), "add_X509_CRL_ext");
  revoke(crl.get(), serial);
  check(gen_SIG_X509_CRL_RFC5280(crl.get(), key), "gen_SIG_X509_CRL_RFC5280");
  return crl;
}

// Prints the answer, and tells whether it is one: revoked or not. Every other code says that the list does not answer.
bool ask(const X509_CRL *crl, const char *whose, const X509_CERT *cert, const X509_CERT *issuer) {
  X509_REVOKED *entry = nullptr;
  const int code = check_X509_CRL_revocation_strict(crl, cert, issuer, nullptr, &entry);
  char why[200] = "not revoked";
  if (code) describe_velpki_code(code, why, sizeof why);
  std::printf("%s: %s", whose, why);
  if (entry) std::printf(", reason %d", get_X509_REVOKED_CRLreason_strict(entry));
  std::puts("");
  return code == 0 || (code & ERR_MASK) == ERR_CERT_REVOKED;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 5) usage("publish_crl ISSUER.pem ISSUER_KEY.pem CERTIFICATE.pem CRL.der");
  const auto issuer = read_certificate(argv[1]), cert = read_certificate(argv[3]);
  const auto key = read_key(argv[2]);
  if (check_X509_keypair(issuer.get(), key.get()) != 0) die("matching the issuer's certificate and key");
  const auto made = make_crl(issuer.get(), get_X509_serial(cert.get()), key.get());
  check_written(writeDER_X509_CRL_to_FILE(made.get(), argv[4]), "writeDER_X509_CRL_to_FILE");

  X509_CRL *read = nullptr;
  check(readDER_X509_CRL_from_File(&read, argv[4]), "readDER_X509_CRL_from_File");
  const owned<X509_CRL> crl(read);
  const bool found = find_X509_CRL_revoked(read, get_X509_serial(cert.get()));
  std::printf("%d entry, the certificate %s\n", get_X509_REVOKED_count(get_X509_CRL_revoked(read)),
              found ? "is listed" : "is not listed");
  const bool answered = ask(made.get(), "the certificate", cert.get(), issuer.get());
  ask(made.get(), "its issuer", issuer.get(), issuer.get());  // no answer where somebody else issued that one
  return answered ? 0 : 1;
}
