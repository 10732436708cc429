// Certification requests that the tests of this folder make and read.
#pragma once

#include "samples.h"
#include "support/keys.h"

namespace test {

inline constexpr int kRequest = 0x46000000;
using Request = Owned<PKCS10_X509_REQ>;

inline Request read_request(const Bytes &der, bool standard, int *code = nullptr) {
  const auto reader = standard ? readDER_PKCS10_X509_REQ_from_Binary_RFC5280 : readDER_PKCS10_X509_REQ_from_Binary;
  return Request(read_by(reader, der, code));
}

inline std::string written(const PKCS10_X509_REQ *req, bool standard) {
  return hex_of(standard ? PKCS10_X509_REQ_to_Seq_RFC5280 : PKCS10_X509_REQ_to_Seq, req);
}

class Requests : public WithKeys {};

inline Owned<X509_EXTENSION> extension(std::string_view oid, std::string_view value, bool critical = false) {
  return Owned<X509_EXTENSION>(
      create_X509_EXTENSION_by_OID(nullptr, test::oid(oid), critical, string(TYPE_OCTET_STRING, hex(value))));
}

inline const char kSan[] = "30 0d 82 0b 6578616d706c652e636f6d";  // dNSName example.com

// A request with an attribute and a requested extension, for a key; unsigned.
inline Request unsigned_request(const ASYMMETRIC_KEY *key, std::string_view algorithm) {
  Request req(new_PKCS10_X509_REQ());
  const Name subject(new_X509_NAME());
  add_X509_NAME_child_OID_index(subject, 13, TYPE_UTF8_STRING, reinterpret_cast<const unsigned char *>("example.com"),
                                -1, -1);
  const Owned<X509_ATTRIBUTE> password(create_X509_ATTRIBUTE_OID(
      nullptr, test::oid("1.2.840.113549.1.9.7"), TYPE_UTF8_STRING, text_string(TYPE_UTF8_STRING, "secret")));
  EXPECT_EQ(set_PKCS10_X509_REQ_subject(req, subject), 0);
  EXPECT_EQ(set_PKCS10_X509_REQ_pub_key(req, public_half(key)), 0);
  EXPECT_EQ(add_PKCS10_X509_REQ_attribute(req, password, -1), 0);
  EXPECT_EQ(add_PKCS10_X509_REQ_extension(req, extension("2.5.29.17", kSan), -1), 0);
  EXPECT_EQ(set_PKCS10_X509_REQ_sig_alg(req, test::oid(algorithm)), 0);
  return req;
}

}  // namespace test
