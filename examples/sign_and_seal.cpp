// Signs a document, shows what the message is made of, verifies it, seals it for two recipients and opens it again:
// sign_and_seal DOCUMENT SIGNER.pem SIGNER_KEY.pem RECIPIENT1.pem RECIPIENT2.pem RECIPIENT2_KEY.pem DIRECTORY
#include <velpki/asn1_io.h>
#include <velpki/asn1_objects.h>
#include <velpki/pkcs7.h>
#include <velpki/utils.h>

#include <string>

#include "example.h"

namespace {

constexpr int kSha256 = 672, kAes256Cbc = 427;  // registry rows
constexpr int kPkcs1Padding = 32;

struct ReleaseMessage {
  void operator()(P7_CONTENT_INFO *p) const { free_P7_CONTENT_INFO(p); }
};
using Message = std::unique_ptr<P7_CONTENT_INFO, ReleaseMessage>;

struct Document {
  owned<unsigned char> octets;
  int length;
};
Document read_document(const char *path) {
  unsigned char *octets = nullptr;
  const int length = File_to_binary(path, &octets);
  if (length < 0) die(path);
  return {owned<unsigned char>(octets), length};
}

Message new_message(int type) {
  Message message(new_P7_CONTENT_INFO());
  check(set_PKCS7_Type(message.get(), type), "set_PKCS7_Type");
  return message;
}

Message read_message(const std::string &path) {
  P7_CONTENT_INFO *read = nullptr;
  check(readDER_P7_CONTENT_INFO_from_File(&read, path.c_str()), path.c_str());
  return Message(read);
}

void write_message(P7_CONTENT_INFO *message, const std::string &path) {
  check_written(writeDER_P7_CONTENT_INFO_to_FILE(message, path.c_str()), path.c_str());
}

const char *name_of(const OBJECT_IDENTIFIER *oid) {
  const char *name = ln_from_index(index_from_OBJECT_IDENTIFIER(oid));
  return name ? name : "?";
}

void show_whose(const P7_ISSUER_AND_SERIAL_NUMBER *whose) {
  int length = 0;
  const unsigned char *serial = PKV_Get_BIGINT_Octets(whose->serialNumber, &length);
  print_X509_NAME(whose->issuer);
  std::printf("  - serial number ");
  print_hex_nl(serial, length);
}

void show_signed(const P7_CONTENT_INFO *message) {
  const auto *data = static_cast<const P7_SIGNED_DATA *>(message->content);
  std::printf("%s of %s, %d certificate(s)\n", name_of(message->contentType), name_of(data->contentInfo->contentType),
              get_STACK_count(data->certificates));
  for (int i = 0; i < data->signerInfos->count; ++i) {
    const auto *signer = static_cast<const P7_SIGNER_INFO *>(data->signerInfos->data[i]);
    std::printf("signer %d, %s and %s\n", i + 1, name_of(signer->digestAlgorithm->algorithm),
                name_of(signer->digestEncryptionAlgorithm->algorithm));
    show_whose(signer->issuerAndSerialNumber);
    for (int k = 0; k < get_X509_ATTRIBUTES_count(signer->authenticatedAttributes); ++k) {
      const X509_ATTRIBUTE *each = get_X509_ATTRIBUTES_child(signer->authenticatedAttributes, k);
      std::printf("  - signed attribute %s\n", name_of(get_X509_ATTRIBUTE_OID(each)));
    }
  }
}

void show_sealed(const P7_CONTENT_INFO *message) {
  const auto *data = static_cast<const P7_ENVELOPED_DATA *>(message->content);
  std::printf("%s under %s, %d octets\n", name_of(message->contentType),
              name_of(data->encryptedContentInfo->contentEncryptionAlgorithm->algorithm),
              get_PKCS7_ENCRYPTED_CONTENT_length(message));
  for (int i = 0; i < data->recipientInfos->count; ++i) {
    const auto *recipient = static_cast<const P7_RECIPIENT_INFO *>(data->recipientInfos->data[i]);
    std::printf("recipient %d, %s\n", i + 1, name_of(recipient->keyEncryptionAlgorithm->algorithm));
    show_whose(recipient->issuerAndSerialNumber);
  }
}

void sign(const Document &document, X509_CERT *signer, ASYMMETRIC_KEY *key, const std::string &path) {
  const Message message = new_message(PKCS7_SIGNED_DATA);
  if (!add_PKCS7_Signature(message.get(), signer, key, kSha256)) die("add_PKCS7_Signature");
  check(add_PKCS7_Certificate_ex(message.get(), signer), "add_PKCS7_Certificate_ex");
  check(sign_PKCS7_ex(message.get(), document.octets.get(), document.length, 0, PKCS7_SIGN_ATTRIBUTES),
        "sign_PKCS7_ex");
  write_message(message.get(), path);
}

void verify(const std::string &path) {
  const Message message = read_message(path);
  show_signed(message.get());
  P7_SIGNER_REPORT report;
  int count = 1;
  check(verify_PKCS7_strict(message.get(), nullptr, nullptr, nullptr, 0, 0, &report, &count), "verify_PKCS7_strict");
  std::printf("verified: %d signer(s), by the certificate of\n", count);
  print_X509_NAME(get_X509_subject(report.certificate));
}

void seal(const Document &document, X509_CERT *first, X509_CERT *second, const std::string &path) {
  const Message message = new_message(PKCS7_ENVELOPED_DATA);
  const owned<ASN1_STRING> oid(index_to_OBJECT_IDENTIFIER(kAes256Cbc));
  X509_ALGO_IDENTIFIER *cipher = new_X509_ALGO_IDENTIFIER();
  check(set_X509_ALGO_IDENTIFIER_value(cipher, oid.get(), nullptr), "set_X509_ALGO_IDENTIFIER_value");
  for (X509_CERT *recipient : {first, second})
    if (!add_PKCS7_Recipient(message.get(), recipient)) die("add_PKCS7_Recipient");
  check(encrypt_PKCS7(message.get(), nullptr, cipher, document.octets.get(), document.length, kPkcs1Padding),
        "encrypt_PKCS7");
  free_X509_ALGO_IDENTIFIER(cipher);
  write_message(message.get(), path);
}

void open(const std::string &path, const X509_CERT *recipient, const ASYMMETRIC_KEY *key, const Document &document) {
  const Message message = read_message(path);
  show_sealed(message.get());
  int length = get_PKCS7_ENCRYPTED_CONTENT_length(message.get());
  std::string opened(size_t(length), 0);
  check(decrypt_PKCS7_strict(message.get(), recipient, key, reinterpret_cast<unsigned char *>(opened.data()), &length),
        "decrypt_PKCS7_strict");
  opened.resize(size_t(length));
  if (opened != std::string(reinterpret_cast<const char *>(document.octets.get()), size_t(document.length)))
    die("comparing what was opened");
  std::puts("opened by the second recipient: the same document");
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 8)
    usage(
        "sign_and_seal DOCUMENT SIGNER.pem SIGNER_KEY.pem RECIPIENT1.pem RECIPIENT2.pem RECIPIENT2_KEY.pem DIRECTORY");
  const Document document = read_document(argv[1]);
  const auto signer = read_certificate(argv[2]), first = read_certificate(argv[4]), second = read_certificate(argv[5]);
  const auto signer_key = read_key(argv[3]), second_key = read_key(argv[6]);
  const std::string folder = argv[7], signed_path = folder + "/signed.p7m", sealed_path = folder + "/sealed.p7m";
  sign(document, signer.get(), signer_key.get(), signed_path);
  verify(signed_path);
  seal(document, first.get(), second.get(), sealed_path);
  open(sealed_path, second.get(), second_key.get(), document);
  return 0;
}
