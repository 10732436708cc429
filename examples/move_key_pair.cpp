// An accredited-style key pair: made, kept in two files, opened again, checked against its owner's number, and moved to
// another program in one file: move_key_pair DIRECTORY
#include <velpki/kisa.h>
#include <velpki/pkcs12.h>

#include <cstring>
#include <string>

#include "example.h"

namespace {

constexpr char kPassword[] = "test1234!", kNumber[] = "0000000000001", kName[] = "홍길동";
constexpr int kPasswordLength = sizeof kPassword - 1;

struct ReleaseMore : Release {
  using Release::operator();
  void operator()(P8_PRIV_KEY_INFO *p) const { free_P8_PRIV_KEY_INFO(p); }
  void operator()(PKCS8 *p) const { free_PKCS8(p); }
  void operator()(PKCS12 *p) const { free_PKCS12(p); }
  void operator()(VID *p) const { free_VID(p); }
  void operator()(KISA_IDENTIFY_DATA *p) const { free_KISA_IDENTIFY_DATA(p); }
  void operator()(GENERAL_NAME *p) const { free_GENERAL_NAME(p); }
};
template <class T>
using own = std::unique_ptr<T, ReleaseMore>;

constexpr int kRandomLength = 20;
struct Random {
  unsigned char octets[kRandomLength];
};

// subjectAltName with the owner's name and the number's digest, in the form of issued certificates.
owned<X509_EXTENSION> identity_extension(const Random &random) {
  constexpr int kSubjectAltName = 85;
  VID *vid = nullptr;
  GENERAL_NAME *name = nullptr;
  ASN1_UNIT *unit = nullptr;
  check(gen_VID(&vid, kNumber, -1, random.octets, kRandomLength, PKV_DIGEST_SHA256), "gen_VID");
  const own<VID> vid_owner(vid);
  const own<KISA_IDENTIFY_DATA> data(new_KISA_IDENTIFY_DATA());
  check(set_KISA_IDENTIFY_DATA_realName(data.get(), kName, -1), "set_KISA_IDENTIFY_DATA_realName");
  check(add_KISA_IDENTIFY_DATA_VID(data.get(), vid), "add_KISA_IDENTIFY_DATA_VID");
  check(KISA_IDENTIFY_DATA_to_GENERAL_NAME(data.get(), &name), "KISA_IDENTIFY_DATA_to_GENERAL_NAME");
  const own<GENERAL_NAME> name_owner(name);
  GENERAL_NAMES *names = new_GENERAL_NAMES();
  check(push_STACK_value(names, name) ? 0 : 1, "push_STACK_value");
  const int code = GENERAL_NAMES_to_Seq_RFC5280(names, &unit);
  free_STACK(names);
  check(code, "GENERAL_NAMES_to_Seq_RFC5280");
  const owned<ASN1_UNIT> unit_owner(unit);
  return owned<X509_EXTENSION>(create_X509_EXTENSION_from_Seq(nullptr, kSubjectAltName, 0, unit));
}

owned<X509_TIME> time_of(const char *text) {
  const owned<ASN1_TIME> time(charToASN1_TIME(text));
  return owned<X509_TIME>(asn1TimeToX509_TIME_RFC5280(time.get()));
}

owned<X509_CERT> certificate(RSA_UNIT *rsa, ASYMMETRIC_KEY *key, const Random &random) {
  constexpr int kCommonName = 13, kSha256WithRsa = 668;
  owned<X509_CERT> cert(new_X509_CERT());
  const owned<X509_NAME> name(new_X509_NAME());
  const owned<X509_PUBKEY> pubkey(new_X509_PUBKEY());
  const owned<BIGINT> serial(PKV_New_BIGINT());
  const owned<ASN1_STRING> algorithm(index_to_OBJECT_IDENTIFIER(kSha256WithRsa));
  const auto *text = reinterpret_cast<const unsigned char *>(kName);
  check(add_X509_NAME_child_OID_index(name.get(), kCommonName, TYPE_UTF8_STRING, text, -1, -1), "name");
  check(set_X509_PUBKEY_rsa(pubkey.get(), rsa) | PKV_Set_BIGINT_Word(serial.get(), 7), "key and serial number");
  check(set_X509_version(cert.get(), 2) | set_X509_serial(cert.get(), serial.get()), "version and serial number");
  check(set_X509_signature(cert.get(), algorithm.get()), "set_X509_signature");
  check(set_X509_issuer(cert.get(), name.get()) | set_X509_subject(cert.get(), name.get()), "names");
  check(set_X509_notBefore(cert.get(), time_of("2026-01-01,00:00:00").get()), "set_X509_notBefore");
  check(set_X509_notAfter(cert.get(), time_of("2036-01-01,00:00:00").get()), "set_X509_notAfter");
  check(set_X509_pub_key(cert.get(), pubkey.get()), "set_X509_pub_key");
  X509_EXTENSIONS *extensions = nullptr;
  check(add_X509_EXTENSION(&extensions, identity_extension(random).get(), -1), "add_X509_EXTENSION");
  check(set_X509_extensions(cert.get(), extensions), "set_X509_extensions");
  free_X509_EXTENSIONS(extensions);
  check(gen_SIG_X509_Cert_RFC5280(cert.get(), key), "gen_SIG_X509_Cert_RFC5280");
  return cert;
}

// The private key with the random octets among its attributes, under SEED and the password.
void store_key(const ASYMMETRIC_KEY *key, const Random &random, const std::string &path) {
  constexpr int kSeedScheme = 780;
  const char kRandomNum[] = KISA_OID_RANDOM_NUM;
  const owned<ASN1_STRING> type(new_OBJECT_IDENTIFIER(kRandomNum, sizeof kRandomNum - 1));
  const owned<ASN1_STRING> bits(new_ASN1_STRING());
  check(set_ASN1_STRING_value(bits.get(), TYPE_BIT_STRING, random.octets, kRandomLength), "set_ASN1_STRING_value");
  X509_ATTRIBUTES *attributes = new_X509_ATTRIBUTES();
  check(add_X509_ATTRIBUTES_child_OID(attributes, type.get(), TYPE_BIT_STRING, bits.get(), -1), "attribute");
  const own<P8_PRIV_KEY_INFO> info(gen_P8_PRIV_KEY_INFO(key, attributes));
  free_X509_ATTRIBUTES(attributes);
  PKCS8 *container = nullptr;
  check(encrypt_PKCS5(info.get(), &container, kPassword, kPasswordLength, nullptr, 0, 2048, kSeedScheme),
        "encrypt_PKCS5");
  const own<PKCS8> owner(container);
  check_written(writeDER_PKCS8_to_FILE(container, path.c_str()), "writing the key");
}

void make_pair(const std::string &folder) {
  Random random;
  const owned<RSA_UNIT> rsa(PKV_New_RSA());
  check(PKV_Generate_RSA(rsa.get(), 2048, 0, nullptr, nullptr), "PKV_Generate_RSA");
  check(PKV_Rand_Bytes(random.octets, kRandomLength), "PKV_Rand_Bytes");
  const owned<ASYMMETRIC_KEY> key(RSA_UNIT_to_ASYMMETRIC_KEY(rsa.get()));
  const owned<X509_CERT> cert = certificate(rsa.get(), key.get(), random);
  check_written(writeDER_X509_CERT_to_FILE(cert.get(), (folder + "/signCert.der").c_str()), "writing the certificate");
  store_key(key.get(), random, folder + "/signPri.key");
  std::puts("made: signCert.der and signPri.key (SEED, 2048 rounds)");
}

own<P8_PRIV_KEY_INFO> open_key(const std::string &path) {
  PKCS8 *container = nullptr;
  P8_PRIV_KEY_INFO *key = nullptr;
  check(readDER_PKCS8_from_File(&container, path.c_str()), "readDER_PKCS8_from_File");
  const own<PKCS8> owner(container);
  check(decrypt_PKCS5(container, &key, kPassword, kPasswordLength), "decrypt_PKCS5");
  return own<P8_PRIV_KEY_INFO>(key);
}

void check_pair(const P8_PRIV_KEY_INFO *key, const X509_CERT *cert) {
  Random random;
  int length = kRandomLength;
  check(cmp_ASYMMETRIC_KEY(key->key, get_X509_SPKI(cert)->key), "key and certificate");
  check(get_VID_random(key->attributes, random.octets, &length), "get_VID_random");
  check(check_VID(cert, kNumber, -1, random.octets, length), "check_VID");
  std::puts("opened: the key is the certificate's, and the owner's number is the one in it");
}

void export_pair(P8_PRIV_KEY_INFO *key, X509_CERT *cert, const std::string &path) {
  constexpr int kPbes2 = 161;
  const unsigned char id[] = {1};
  STACK *keys = nullptr, *certs = nullptr, *safes = nullptr;
  P12_SAFEBAG *key_bag = add_PKCS12_keyinfo(&keys, key, id, 1, kPassword, kPasswordLength, kPbes2, 2048);
  P12_SAFEBAG *cert_bag = add_PKCS12_cert(&certs, cert, id, 1);
  if (!key_bag || !cert_bag) die("making a bag");
  check(add_PKCS12_friendlyname_UTF8(key_bag, kName, -1), "add_PKCS12_friendlyname_UTF8");
  check(add_PKCS12_friendlyname_UTF8(cert_bag, kName, -1), "add_PKCS12_friendlyname_UTF8");
  check(PKCS12_add_safe(&safes, certs, kPbes2, 2048, kPassword), "PKCS12_add_safe");
  check(PKCS12_add_safe(&safes, keys, -1, 0, nullptr), "PKCS12_add_safe");
  const own<PKCS12> file(PKCS12_add_safes(safes));
  check(set_PKCS12_mac(file.get(), kPassword, -1, nullptr, 0, 2048, PKV_DIGEST_SHA256), "set_PKCS12_mac");
  check_written(writeDER_PKCS12_to_FILE(file.get(), path.c_str()), "writing the file");
  free_P12_SAFEBAGS(keys);
  free_P12_SAFEBAGS(certs);
  free_P12_AUTH_SAFE(safes);
}

void import_pair(const std::string &path) {
  PKCS12 *file = nullptr;
  STACK *keys = nullptr, *certs = nullptr, *others = nullptr;
  check(readDER_PKCS12_from_File(&file, path.c_str()), "readDER_PKCS12_from_File");
  const own<PKCS12> owner(file);
  check(import_PKCS12_strict(file, kPassword, -1, 0, &keys, &certs, &others), "import_PKCS12_strict");
  const auto *key = static_cast<P8_PRIV_KEY_INFO *>(get_STACK_value(keys, 0));
  const auto *cert = static_cast<X509_CERT *>(get_STACK_value(certs, 0));
  if (!key || !cert) die("finding the pair");
  check_pair(key, cert);
  const ASN1_STRING *name = get_X509_AUX_friendly(cert);
  std::printf("imported: %d key, %d certificate of its own, %d others, named %.*s\n", keys->count, certs->count,
              others->count, name ? name->length : 0, name ? reinterpret_cast<const char *>(name->data) : "");
  free_STACK_values(keys, [](void *each) { free_P8_PRIV_KEY_INFO(static_cast<P8_PRIV_KEY_INFO *>(each)); });
  free_X509_CERTIFICATES(certs);
  free_X509_CERTIFICATES(others);
}

}  // namespace

int main(int argc, char **argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  make_pair(folder);
  X509_CERT *cert = nullptr;
  check(readDER_X509_CERT_from_File(&cert, (folder + "/signCert.der").c_str()), "readDER_X509_CERT_from_File");
  const owned<X509_CERT> owner(cert);
  const own<P8_PRIV_KEY_INFO> key = open_key(folder + "/signPri.key");
  check_pair(key.get(), cert);
  export_pair(key.get(), cert, folder + "/pair.pfx");
  import_pair(folder + "/pair.pfx");
  return 0;
}
