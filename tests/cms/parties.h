// Keys and certificates of signers and recipients, made by openssl once for the whole program, and files beside them.
#pragma once

#include "samples.h"

namespace test {

using Message = Owned<P7_CONTENT_INFO>;

// Files live as long as the program; what is read from them, as long as a test.
struct PartyFiles {
  std::string certificate_path, key_path;

  explicit PartyFiles(const std::string &name)
      : certificate_path(temporary_path(name + ".pem")), key_path(temporary_path(name + ".key")) {}
  // Makes the certificate for the key that is there; its number is the name.
  void certify(const std::string &name) const {
    run("openssl req -x509 -new -key " + key_path + " -days 30 -sha256 -set_serial 0x" +
        to_hex(Bytes(name.begin(), name.end())) + " -subj '/O=velPKI/CN=" + name + "' -out " + certificate_path +
        " 2>/dev/null");
  }
  Certificate certificate() const { return read_by(readPEM_X509_CERT_from_File, certificate_path); }
  Owned<ASYMMETRIC_KEY> key() const { return key_at(key_path); }
  // Options of openssl.
  std::string as_signer() const { return " -signer " + certificate_path + " -inkey " + key_path; }
  std::string as_recipient() const { return " -recip " + certificate_path + " -inkey " + key_path; }
};
struct Party : PartyFiles {
  explicit Party(const std::string &name, const std::string &bits = "2048") : PartyFiles(name) {
    run("openssl genrsa -out " + key_path + " " + bits + " 2>/dev/null");
    certify(name);
  }
};
// Two signers or recipients, and one whose digest fits where little room is.
inline const Party &first_party() {
  static const Party party("first");
  return party;
}
inline const Party &second_party() {
  static const Party party("second");
  return party;
}
inline const Party &small_party() {
  static const Party party("small", "1024");
  return party;
}

// Options of openssl for ciphers of its legacy provider.
constexpr const char *kProviders = " -provider default -provider legacy ";

inline Bytes damaged(Bytes octets, size_t place) {
  octets[place] ^= 1;
  return octets;
}
inline const Bytes &document() {
  static const Bytes octets = [] {
    Bytes out;
    for (int i = 0; i < 5000; ++i) out.push_back(uint8_t(i * 7 + i / 256));
    return out;
  }();
  return octets;
}
inline std::string document_path() {
  static const std::string path = temporary_path("document");
  static const bool written = write_file(path, document().data(), document().size());
  return written ? path : "";
}

inline Message message_of(int type) {
  Message p7(new_P7_CONTENT_INFO());
  if (set_PKCS7_Type(p7, type)) p7.reset();
  return p7;
}
inline Message read_message(const Bytes &der, int *code = nullptr) {
  return Message(read_by(readDER_P7_CONTENT_INFO_from_Binary, der, code));
}
inline Bytes written(P7_CONTENT_INFO *p7) { return octets_by(writeDER_P7_CONTENT_INFO_to_Binary, p7); }
// As a peer gets it.
inline Message sent(const Message &p7) { return read_message(written(p7)); }

// By its row in the registry, or by its OID where it has none.
inline Owned<X509_ALGO_IDENTIFIER> algorithm(int row, std::string_view otherwise = {}) {
  Owned<X509_ALGO_IDENTIFIER> made(new_X509_ALGO_IDENTIFIER());
  const String named = row ? String(index_to_OBJECT_IDENTIFIER(row)) : oid(otherwise);
  set_X509_ALGO_IDENTIFIER_value(made, named, nullptr);
  return made;
}

inline int verify(const Message &p7, const Bytes *data = nullptr) {
  return verify_PKCS7(p7, nullptr, data ? data->data() : nullptr, data ? int(data->size()) : 0);
}
inline int verify_strictly(const Message &p7, int flags = 0, const Bytes *data = nullptr,
                           const X509_CERT *cert = nullptr) {
  return verify_PKCS7_strict(p7, cert, nullptr, data ? data->data() : nullptr, data ? int(data->size()) : 0, flags,
                             nullptr, nullptr);
}

inline void add_content_type(P7_SIGNER_INFO *signer) {
  const std::string type = "1.2.840.113549.1.7.1";
  add_PKCS7_Signed_Attribute(signer, 50, TYPE_OBJECT_IDENTIFIER, reinterpret_cast<const uint8_t *>(type.data()),
                             int(type.size()));
}
// The attributes that a signer of the document needs.
inline void add_attributes(P7_SIGNER_INFO *signer, int digest_id, const Bytes &content = document()) {
  const Bytes value = digest(digest_id, content);
  add_content_type(signer);
  add_PKCS7_Signed_Attribute(signer, 51, TYPE_OCTET_STRING, value.data(), int(value.size()));
}

}  // namespace test
