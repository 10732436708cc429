// Signs a document with an RSA key that stays in a token: makes the key where the token has none, a certificate for it,
// and a PKCS#7 message: sign_with_token MODULE.so PIN DOCUMENT DIRECTORY
#include <dlfcn.h>
#include <velpki/asn1_io.h>
#include <velpki/asn1_objects.h>
#include <velpki/pkcs7.h>
#include <velpki/token_key.h>

#include <string>

#include "example.h"

namespace {

constexpr int kSha256 = 672, kSha256WithRsa = 668, kCommonName = 13;  // registry rows

void check_token(CK_RV result, const char *what) {
  if (result == CKR_OK) return;
  std::fprintf(stderr, "%s failed: CKR 0x%lx\n", what, result);
  std::exit(1);
}

// A session of the user with the first token there is. The module is finalized and unloaded at the end of the program.
class Session {
 public:
  Session(const char *module, std::string pin) {
    if (const int code = _load_pkcs11_module_ex(module)) {
      std::fprintf(stderr, "%s: %s\n", module, code == P11_LOAD_REFUSED ? dlerror() : "no PKCS#11 module");
      std::exit(1);
    }
    check_token(p11_C_Initialize(nullptr), "C_Initialize");
    CK_SLOT_ID slots[16];
    CK_ULONG count = 16;
    check_token(p11_C_GetSlotList(CK_TRUE, slots, &count), "C_GetSlotList");
    if (count == 0) die("finding a token");
    check_token(p11_C_OpenSession(slots[0], CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &handle_),
                "session");
    check_token(p11_C_Login(handle_, CKU_USER, reinterpret_cast<CK_UTF8CHAR_PTR>(pin.data()), pin.size()), "C_Login");
  }
  ~Session() {
    p11_C_Finalize(nullptr);
    _unload_pkcs11_module();
  }
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;
  CK_SESSION_HANDLE handle() const { return handle_; }

 private:
  CK_SESSION_HANDLE handle_ = 0;
};

char kLabel[] = "velPKI demo";
template <class T>
CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, T &value) {
  return {type, &value, sizeof value};
}

// The object of a class that has the label; 0 for none.
CK_OBJECT_HANDLE find(const Session &session, CK_OBJECT_CLASS kind) {
  CK_ATTRIBUTE wanted[] = {attribute(CKA_CLASS, kind), attribute(CKA_LABEL, kLabel)};
  CK_OBJECT_HANDLE found = 0;
  CK_ULONG count = 0;
  check_token(p11_C_FindObjectsInit(session.handle(), wanted, 2), "C_FindObjectsInit");
  check_token(p11_C_FindObjects(session.handle(), &found, 1, &count), "C_FindObjects");
  check_token(p11_C_FindObjectsFinal(session.handle()), "C_FindObjectsFinal");
  return count ? found : 0;
}

void generate(const Session &session) {
  CK_MECHANISM mechanism{CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
  CK_ULONG bits = 2048;
  CK_BBOOL yes = CK_TRUE;
  CK_ATTRIBUTE of_public[] = {attribute(CKA_MODULUS_BITS, bits), attribute(CKA_TOKEN, yes),
                              attribute(CKA_LABEL, kLabel)};
  CK_ATTRIBUTE of_private[] = {attribute(CKA_SIGN, yes), attribute(CKA_TOKEN, yes), attribute(CKA_PRIVATE, yes),
                               attribute(CKA_SENSITIVE, yes), attribute(CKA_LABEL, kLabel)};
  CK_OBJECT_HANDLE public_key = 0, private_key = 0;
  check_token(
      p11_C_GenerateKeyPair(session.handle(), &mechanism, of_public, 3, of_private, 5, &public_key, &private_key),
      "C_GenerateKeyPair");
  std::puts("the token made a key of 2048 bits");
}

owned<X509_TIME> time_of(const char *text) {
  const owned<ASN1_TIME> time(charToASN1_TIME(text));
  return owned<X509_TIME>(asn1TimeToX509_TIME_RFC5280(time.get()));
}

// A certificate of the key by itself.
owned<X509_CERT> certify(const ASYMMETRIC_KEY *key) {
  owned<X509_CERT> cert(new_X509_CERT());
  const owned<BIGINT> number(PKV_New_BIGINT());
  const owned<ASN1_STRING> algorithm(index_to_OBJECT_IDENTIFIER(kSha256WithRsa));
  const owned<X509_NAME> name(new_X509_NAME());
  const owned<X509_PUBKEY> pubkey(new_X509_PUBKEY());
  check(add_X509_NAME_child_OID_index(name.get(), kCommonName, TYPE_UTF8_STRING,
                                      reinterpret_cast<const unsigned char *>(kLabel), -1, -1),
        "the name");
  check(PKV_Set_BIGINT_Word(number.get(), 1), "the number");
  check(set_X509_PUBKEY_rsa(pubkey.get(), ASYMMETRIC_KEY_to_RSA_UNIT(key)), "set_X509_PUBKEY_rsa");
  check(set_X509_version(cert.get(), 2), "set_X509_version");
  check(set_X509_serial(cert.get(), number.get()), "set_X509_serial");
  check(set_X509_signature(cert.get(), algorithm.get()), "set_X509_signature");
  check(set_X509_issuer(cert.get(), name.get()), "set_X509_issuer");
  check(set_X509_subject(cert.get(), name.get()), "set_X509_subject");
  check(set_X509_notBefore(cert.get(), time_of("2026-01-01,00:00:00").get()), "set_X509_notBefore");
  check(set_X509_notAfter(cert.get(), time_of("2051-01-01,00:00:00").get()), "set_X509_notAfter");
  check(set_X509_pub_key(cert.get(), pubkey.get()), "set_X509_pub_key");
  check(gen_SIG_X509_Cert_RFC5280(cert.get(), key), "gen_SIG_X509_Cert_RFC5280");
  return cert;
}

void sign(const char *document, X509_CERT *cert, const ASYMMETRIC_KEY *key, const std::string &path) {
  unsigned char *octets = nullptr;
  const int length = File_to_binary(document, &octets);
  if (length < 0) die(document);
  const owned<unsigned char> owner(octets);
  P7_CONTENT_INFO *message = new_P7_CONTENT_INFO();
  check(set_PKCS7_Type(message, PKCS7_SIGNED_DATA), "set_PKCS7_Type");
  if (!add_PKCS7_Signature_ex(message, cert, key, kSha256, PKV_RSA_PKCS1, nullptr)) die("add_PKCS7_Signature_ex");
  check(add_PKCS7_Certificate_ex(message, cert), "add_PKCS7_Certificate_ex");
  check(sign_PKCS7_ex(message, octets, length, 0, PKCS7_SIGN_ATTRIBUTES), "sign_PKCS7_ex");
  check(verify_PKCS7_strict(message, nullptr, nullptr, nullptr, 0, 0, nullptr, nullptr), "verify_PKCS7_strict");
  check_written(writeDER_P7_CONTENT_INFO_to_FILE(message, path.c_str()), path.c_str());
  free_P7_CONTENT_INFO(message);
  std::puts("the token signed; the signature verifies");
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 5) usage("sign_with_token MODULE.so PIN DOCUMENT DIRECTORY");
  const std::string folder = argv[4];
  const Session session(argv[1], argv[2]);
  if (!find(session, CKO_PRIVATE_KEY)) generate(session);
  P11_KEY in_token = {session.handle(), find(session, CKO_PRIVATE_KEY), nullptr, nullptr, CKR_OK};
  ASYMMETRIC_KEY *key = nullptr;
  check(read_P11_KEY(&in_token, find(session, CKO_PUBLIC_KEY), &key), "read_P11_KEY");
  const owned<ASYMMETRIC_KEY> owner(key);
  const auto cert = certify(key);
  check_written(writePEM_X509_CERT_to_FILE(cert.get(), (folder + "/token.pem").c_str()), "writing the certificate");
  sign(argv[3], cert.get(), key, folder + "/token.p7m");
  return 0;
}
