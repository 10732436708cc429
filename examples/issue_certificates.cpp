// Makes an RSA root and a KCDSA root, issues a certificate under each, writes them as PEM and DER, reads them back and
// verifies them: issue_certificates DIRECTORY
#include <velpki/asn1_objects.h>

#include <cstring>
#include <string>

#include "example.h"

namespace {

// Progress of a generation: a dot whenever the count of candidates has doubled.
int show_progress(int count, void *) {
  if (count > 0 && (count & (count - 1)) == 0) std::fputc('.', stdout), std::fflush(stdout);
  return 0;
}

// A key pair and what a certificate says of it: the algorithm of its signatures, by registry row.
struct KeyPair {
  owned<ASYMMETRIC_KEY> key;
  owned<X509_PUBKEY> pubkey;
  int signature_row;
};

constexpr int kSha256WithRsa = 668, kKcdsa1WithHas160 = 783;

KeyPair new_rsa_pair() {
  std::printf("generating an RSA key of 2048 bits ");
  const owned<RSA_UNIT> rsa(PKV_New_RSA());
  check(PKV_Generate_RSA(rsa.get(), 2048, 0, show_progress, nullptr), "PKV_Generate_RSA");
  std::puts(" done");
  KeyPair pair{owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(rsa.get())), owned<X509_PUBKEY>(new_X509_PUBKEY()),
               kSha256WithRsa};
  check(set_X509_PUBKEY_rsa(pair.pubkey.get(), rsa.get()), "set_X509_PUBKEY_rsa");
  return pair;
}

KeyPair pair_of(KCDSA_UNIT *kcdsa) {
  KeyPair pair{owned<ASYMMETRIC_KEY>(KCDSA_UNIT_to_ASYMMETRIC_KEY(kcdsa)), owned<X509_PUBKEY>(new_X509_PUBKEY()),
               kKcdsa1WithHas160};
  check(set_X509_PUBKEY_kcdsa(pair.pubkey.get(), kcdsa), "set_X509_PUBKEY_kcdsa");
  return pair;
}

owned<KCDSA_UNIT> new_kcdsa_domain() {
  std::printf("generating KCDSA domain parameters of 1024 and 160 bits ");
  owned<KCDSA_UNIT> domain(PKV_New_KCDSA());
  check(PKV_Generate_KCDSA_Params(domain.get(), 1024, 160, PKV_DIGEST_HAS160, show_progress, nullptr),
        "PKV_Generate_KCDSA_Params");
  std::puts(" done");
  return domain;
}

// A further key under the same domain parameters.
KeyPair new_kcdsa_pair(const KCDSA_UNIT *domain) {
  const owned<KCDSA_UNIT> kcdsa(PKV_Dup_KCDSA(domain));
  check(PKV_Generate_KCDSA(kcdsa.get()), "PKV_Generate_KCDSA");
  return pair_of(kcdsa.get());
}

owned<X509_NAME> name_of(const char *common_name) {
  constexpr int kCommonName = 13, kCountry = 14, kOrganization = 17;
  const auto octets = [](const char *text) { return reinterpret_cast<const unsigned char *>(text); };
  owned<X509_NAME> name(new_X509_NAME());
  check(add_X509_NAME_child_OID_index(name.get(), kCountry, TYPE_PRINTABLE_STRING, octets("KR"), -1, -1), "country");
  check(add_X509_NAME_child_OID_index(name.get(), kOrganization, TYPE_UTF8_STRING, octets("velPKI demo"), -1, -1), "O");
  check(add_X509_NAME_child_OID_index(name.get(), kCommonName, TYPE_UTF8_STRING, octets(common_name), -1, -1), "CN");
  return name;
}

owned<X509_TIME> time_of(const char *text) {
  const owned<ASN1_TIME> time(charToASN1_TIME(text));
  return owned<X509_TIME>(asn1TimeToX509_TIME_RFC5280(time.get()));
}

void add_basic_constraints(X509_CERT *cert, bool ca) {
  constexpr int kBasicConstraints = 87;
  const unsigned char authority[] = {0x30, 0x03, 0x01, 0x01, 0xFF}, user[] = {0x30, 0x00};
  const owned<ASN1_STRING> value(new_OCTET_STRING(ca ? authority : user, ca ? sizeof authority : sizeof user));
  const owned<X509_EXTENSION> extension(
      create_X509_EXTENSION_by_OID_index(nullptr, kBasicConstraints, ca, value.get()));
  X509_EXTENSIONS *list = nullptr;
  check(add_X509_EXTENSION(&list, extension.get(), -1), "add_X509_EXTENSION");
  check(set_X509_extensions(cert, list), "set_X509_extensions");
  free_X509_EXTENSIONS(list);
}

void set_fields(X509_CERT *cert, unsigned serial, const X509_NAME *issuer, const X509_NAME *subject,
                const X509_PUBKEY *pubkey, int signature_row) {
  const owned<BIGINT> number(PKV_New_BIGINT());
  const owned<ASN1_STRING> algorithm(index_to_OBJECT_IDENTIFIER(signature_row));
  check(PKV_Set_BIGINT_Word(number.get(), serial), "serial");
  check(set_X509_version(cert, 2), "set_X509_version");
  check(set_X509_serial(cert, number.get()), "set_X509_serial");
  check(set_X509_signature(cert, algorithm.get()), "set_X509_signature");
  check(set_X509_issuer(cert, issuer), "set_X509_issuer");
  check(set_X509_subject(cert, subject), "set_X509_subject");
  check(set_X509_notBefore(cert, time_of("2026-01-01,00:00:00").get()), "set_X509_notBefore");
  check(set_X509_notAfter(cert, time_of("2051-01-01,00:00:00").get()), "set_X509_notAfter");
  check(set_X509_pub_key(cert, pubkey), "set_X509_pub_key");
}

owned<X509_CERT> issue(unsigned serial, const char *issuer, const char *subject, const KeyPair &subject_key,
                       const KeyPair &issuer_key) {
  owned<X509_CERT> cert(new_X509_CERT());
  set_fields(cert.get(), serial, name_of(issuer).get(), name_of(subject).get(), subject_key.pubkey.get(),
             issuer_key.signature_row);
  add_basic_constraints(cert.get(), std::strcmp(issuer, subject) == 0);
  check(gen_SIG_X509_Cert(cert.get(), issuer_key.key.get()), "gen_SIG_X509_Cert");
  return cert;
}

// Writes a certificate in both forms, reads both back, and verifies what was read.
void store_and_verify(X509_CERT *cert, const std::string &path, const KeyPair &issuer_key) {
  const std::string pem = path + ".pem", der = path + ".der";
  check_written(writePEM_X509_CERT_to_FILE(cert, pem.c_str()), "writing a certificate");
  check_written(writeDER_X509_CERT_to_FILE(cert, der.c_str()), "writing a certificate");
  X509_CERT *from_pem = nullptr, *from_der = nullptr;
  check(readPEM_X509_CERT_from_File(&from_pem, pem.c_str()), "readPEM_X509_CERT_from_File");
  check(readDER_X509_CERT_from_File(&from_der, der.c_str()), "readDER_X509_CERT_from_File");
  check(verify_SIG_X509_CERT(from_pem, issuer_key.pubkey->key), "verify_SIG_X509_CERT");
  check(verify_SIG_X509_CERT(from_der, issuer_key.pubkey->key), "verify_SIG_X509_CERT");
  check(verify_X509_validity(from_der, nullptr), "verify_X509_validity");
  std::printf("%s and .der: written, read back, verified\n", pem.c_str());
  free_X509_CERT(from_pem);
  free_X509_CERT(from_der);
}

// A root and a user certificate under it.
void make_pair_of_certificates(const std::string &folder, const char *name, const KeyPair &root, const KeyPair &user) {
  const std::string root_name = std::string(name) + " root", user_name = std::string(name) + " user 홍길동";
  const auto root_cert = issue(1, root_name.c_str(), root_name.c_str(), root, root);
  const auto user_cert = issue(2, root_name.c_str(), user_name.c_str(), user, root);
  store_and_verify(root_cert.get(), folder + "/" + name + "_root", root);
  store_and_verify(user_cert.get(), folder + "/" + name + "_user", root);
  if (std::strcmp(name, "kcdsa") == 0) print_X509(user_cert.get());
}

}  // namespace

int main(int argc, char **argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  const KeyPair rsa_root = new_rsa_pair(), rsa_user = new_rsa_pair();
  make_pair_of_certificates(folder, "rsa", rsa_root, rsa_user);
  const owned<KCDSA_UNIT> domain = new_kcdsa_domain();
  const KeyPair kcdsa_root = new_kcdsa_pair(domain.get()), kcdsa_user = new_kcdsa_pair(domain.get());
  make_pair_of_certificates(folder, "kcdsa", kcdsa_root, kcdsa_user);
  return 0;
}
