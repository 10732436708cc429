// A certification authority in small: makes a root, takes a request by somebody else (or makes one itself when none is
// given), checks it, and issues a certificate for what it asks: issue_from_request DIRECTORY [REQUEST.pem]
#include <velpki/asn1_io.h>

#include <string>

#include "example.h"

namespace {

constexpr int kCommonName = 13, kEcdsaWithSha256 = 840;  // registry rows
constexpr int kKeyUsage = 83, kSubjectAltName = 85, kBasicConstraints = 87, kExtKeyUsage = 126;

// A P-256 key and its public half.
struct KeyPair {
  owned<ASYMMETRIC_KEY> key;
  owned<X509_PUBKEY> pubkey{new_X509_PUBKEY()};
  KeyPair() {
    const owned<ECC_UNIT> ecc(PKV_New_ECC());
    const owned<ECURVE> curve(PKV_New_ECURVE());
    check(PKV_Set_ECURVE_Named(curve.get(), "prime256v1"), "PKV_Set_ECURVE_Named");
    check(PKV_Set_ECC_Curve(ecc.get(), curve.get()), "PKV_Set_ECC_Curve");
    check(PKV_Generate_ECC(ecc.get()), "PKV_Generate_ECC");
    check(set_X509_PUBKEY_ecc(pubkey.get(), ecc.get()), "set_X509_PUBKEY_ecc");
    key.reset(ECC_UNIT_to_ASYMMETRIC_KEY(ecc.get()));
  }
};

owned<ASN1_STRING> oid_of_row(int row) { return owned<ASN1_STRING>(index_to_OBJECT_IDENTIFIER(row)); }

owned<X509_NAME> name_of(const char *common_name) {
  owned<X509_NAME> name(new_X509_NAME());
  const auto *octets = reinterpret_cast<const unsigned char *>(common_name);
  check(add_X509_NAME_child_OID_index(name.get(), kCommonName, TYPE_UTF8_STRING, octets, -1, -1), "common name");
  return name;
}

// An extension by its registry row and the octets of its value.
template <size_t n>
owned<X509_EXTENSION> extension(int row, int critical, const unsigned char (&value)[n]) {
  const owned<ASN1_STRING> octets(new_OCTET_STRING(value, n));
  return owned<X509_EXTENSION>(create_X509_EXTENSION_by_OID_index(nullptr, row, critical, octets.get()));
}

// The subscriber: a key, a name, and the wish for an alternative name and a usage, signed with the key.
void make_request(const std::string &path) {
  const unsigned char san[] = {0x30, 0x0D, 0x82, 0x0B, 'e', 'x', 'a', 'm', 'p', 'l', 'e', '.', 'c', 'o', 'm'};
  const unsigned char usage[] = {0x03, 0x02, 0x07, 0x80};
  const KeyPair pair;
  const owned<PKCS10_X509_REQ> req(new_PKCS10_X509_REQ());
  check(set_PKCS10_X509_REQ_subject(req.get(), name_of("example.com").get()), "subject");
  check(set_PKCS10_X509_REQ_pub_key(req.get(), pair.pubkey.get()), "public key");
  check(add_PKCS10_X509_REQ_extension(req.get(), extension(kSubjectAltName, 0, san).get(), -1), "alternative name");
  check(add_PKCS10_X509_REQ_extension(req.get(), extension(kKeyUsage, 1, usage).get(), -1), "key usage");
  check(set_PKCS10_X509_REQ_sig_alg(req.get(), oid_of_row(kEcdsaWithSha256).get()), "algorithm");
  check(gen_SIG_PKCS10_X509_REQ_RFC5280(req.get(), pair.key.get()), "gen_SIG_PKCS10_X509_REQ_RFC5280");
  char *text = nullptr;
  const int length = writePEM_PKCS10_X509_REQ_to_Binary_RFC5280(req.get(), &text);
  const owned<char> owner(text);
  if (!text || binary_to_File(reinterpret_cast<unsigned char *>(text), 0, length, path.c_str()) != length) {
    check(1, "writing the request");
  }
}

owned<PKCS10_X509_REQ> read_request(const std::string &path) {
  unsigned char *text = nullptr;
  const int length = File_to_binary(path.c_str(), &text);
  const owned<unsigned char> owner(text);
  PKCS10_X509_REQ *req = nullptr;
  check(readPEM_PKCS10_X509_REQ_from_Binary_RFC5280(&req, reinterpret_cast<char *>(text), length),
        "reading the request");
  return owned<PKCS10_X509_REQ>(req);
}

void show(const PKCS10_X509_REQ *req) {
  std::puts("the request is by");
  print_X509_NAME(get_PKCS10_X509_REQ_subject(req));
  const X509_EXTENSIONS *wanted = get_PKCS10_X509_REQ_extensions(req);
  for (int i = 0; i < get_X509_EXTENSION_count(wanted); ++i) {
    const OBJECT_IDENTIFIER *oid = get_X509_EXTENSION_object(get_X509_EXTENSION(wanted, i));
    std::printf("  asks for extension %.*s\n", oid->length, reinterpret_cast<const char *>(oid->data));
  }
}

owned<X509_TIME> time_of(const char *text) {
  const owned<ASN1_TIME> time(charToASN1_TIME(text));
  return owned<X509_TIME>(asn1TimeToX509_TIME_RFC5280(time.get()));
}

// What the authority says of every certificate itself, and its signature.
void sign(X509_CERT *cert, unsigned serial, const KeyPair &authority) {
  const owned<BIGINT> number(PKV_New_BIGINT());
  check(PKV_Set_BIGINT_Word(number.get(), serial), "serial");
  check(set_X509_serial(cert, number.get()), "set_X509_serial");
  check(set_X509_signature(cert, oid_of_row(kEcdsaWithSha256).get()), "set_X509_signature");
  check(set_X509_issuer(cert, name_of("velPKI demo authority").get()), "set_X509_issuer");
  check(set_X509_notBefore(cert, time_of("2026-01-01,00:00:00").get()), "set_X509_notBefore");
  check(set_X509_notAfter(cert, time_of("2036-01-01,00:00:00").get()), "set_X509_notAfter");
  check(gen_SIG_X509_Cert_RFC5280(cert, authority.key.get()), "gen_SIG_X509_Cert_RFC5280");
}

template <size_t n>
void add_constraints(X509_CERT *cert, const unsigned char (&value)[n]) {
  X509_EXTENSIONS *list = nullptr;
  check(add_X509_EXTENSION(&list, extension(kBasicConstraints, 1, value).get(), -1), "add_X509_EXTENSION");
  check(set_X509_extensions(cert, list), "set_X509_extensions");
  free_X509_EXTENSIONS(list);
}

owned<X509_CERT> make_root(const KeyPair &authority) {
  const unsigned char is_authority[] = {0x30, 0x03, 0x01, 0x01, 0xFF};
  owned<X509_CERT> root(new_X509_CERT());
  check(set_X509_version(root.get(), 2), "set_X509_version");
  check(set_X509_subject(root.get(), name_of("velPKI demo authority").get()), "set_X509_subject");
  check(set_X509_pub_key(root.get(), authority.pubkey.get()), "set_X509_pub_key");
  add_constraints(root.get(), is_authority);
  sign(root.get(), 1, authority);
  return root;
}

// The authority's own words come first, so that no request can change them; then what it is ready to take over. Here it
// would also check that the names belong to whoever asks.
owned<X509_CERT> issue(const PKCS10_X509_REQ *req, const KeyPair &authority) {
  const unsigned char is_user[] = {0x30, 0x00};
  owned<X509_CERT> cert(new_X509_CERT());
  add_constraints(cert.get(), is_user);
  OBJECT_IDENTIFIERS *allowed = new_OBJECT_IDENTIFIERS();
  for (const int row : {kKeyUsage, kSubjectAltName, kExtKeyUsage}) push_STACK_value(allowed, oid_of_row(row).release());
  check(set_X509_CERT_from_PKCS10_X509_REQ(cert.get(), req, allowed), "set_X509_CERT_from_PKCS10_X509_REQ");
  free_OBJECT_IDENTIFIERS(allowed);
  sign(cert.get(), 2, authority);
  return cert;
}

// The received octets of a signed certificate are its standard encoding.
void store(const X509_CERT *cert, const std::string &path) {
  int length = 0;
  const unsigned char *der = get_X509_received(cert, 0, &length);
  if (binary_to_File(der, 0, length, path.c_str()) != length) check(1, "writing a certificate");
  std::printf("%s: written\n", path.c_str());
}

}  // namespace

int main(int argc, char **argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  const std::string request = argc > 2 ? argv[2] : folder + "/request.pem";
  if (argc < 3) make_request(request);
  const owned<PKCS10_X509_REQ> req = read_request(request);
  show(req.get());
  const KeyPair authority;
  const owned<X509_CERT> root = make_root(authority), cert = issue(req.get(), authority);
  check(verify_SIG_X509_CERT_RFC5280(cert.get(), get_X509_SPKI(root.get())), "verify_SIG_X509_CERT_RFC5280");
  store(root.get(), folder + "/authority.der");
  store(cert.get(), folder + "/issued.der");
  return 0;
}
