// Certificates made from certification requests.
#include "requests.h"

using namespace test;

namespace {

// "OID=value", with a "!" behind the OID of a critical one.
Owned<X509_EXTENSION> parsed(const std::string &text) {
  const size_t equals = text.find('=');
  const bool critical = text[equals - 1] == '!';
  return extension(text.substr(0, equals - critical), text.substr(equals + 1), critical);
}

Request signed_request(const Row &row, const ASYMMETRIC_KEY *key) {
  Request req = unsigned_request(key, "1.2.840.10045.4.3.2");
  const Name nobody(new_X509_NAME());
  if (row.at("empty_subject") == "yes") set_PKCS10_X509_REQ_subject(req, nobody);
  set_PKCS10_X509_REQ_extensions(req, nullptr);
  for (const std::string &each : split(row.at("requested"), ' ')) add_PKCS10_X509_REQ_extension(req, parsed(each), -1);
  EXPECT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280(req, key), 0);
  return req;
}

// What an issuer takes of what is requested, by what it allows and what is present in the certificate before.
TEST_F(Requests, BecomeCertificatesWithinLimits) {
  const Owned<ASYMMETRIC_KEY> key = new_ec("prime256v1");
  for (const Row &row : table("request_extensions")) {
    const std::string &why = row.at("why");
    const Request req = signed_request(row, key);
    const Certificate cert(new_X509_CERT());
    const Owned<STACK, free_OBJECT_IDENTIFIERS> allowed(new_OBJECT_IDENTIFIERS());
    Owned<STACK, free_X509_EXTENSIONS> present;
    for (const std::string &each : split(row.at("allowed"), ' ')) push_STACK_value(allowed, test::oid(each).release());
    for (const std::string &each : split(row.at("present"), ' ')) add_X509_EXTENSION(&present, parsed(each), -1);
    set_X509_extensions(cert, present);
    const int reason = std::stoi(row.at("reason"), nullptr, 16);
    EXPECT_EQ(set_X509_CERT_from_PKCS10_X509_REQ(cert, req, allowed), reason ? kRequest | reason : 0) << why;
    EXPECT_EQ(extension_list(get_X509_extensions(cert)), row.at("result")) << why;
    EXPECT_EQ(get_X509_subject(cert) != nullptr, reason == 0) << why;
    EXPECT_EQ(cmp_X509_PUBKEY(get_X509_SPKI(cert), get_PKCS10_X509_REQ_SPKI(req)), reason ? 1 : 0) << why;
    EXPECT_EQ(get_X509_version(cert), reason ? 0 : 2) << why;
  }
}

// Without a valid signature nothing is taken, also where memory ends on the way.
TEST_F(Requests, AreVerifiedBeforeAnythingIsTaken) {
  const Owned<ASYMMETRIC_KEY> key = rsa(), other = new_ec("prime256v1");
  const Request req = unsigned_request(key, "1.2.840.113549.1.1.11");
  const Certificate cert(new_X509_CERT());
  EXPECT_EQ(set_X509_CERT_from_PKCS10_X509_REQ(cert, req, nullptr), kRequest | 0x49);  // never signed
  ASSERT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280(req, key), 0);
  for (long n = 0, failed = 1; failed; ++n) {
    const Certificate taken(new_X509_CERT());
    fail_allocation(n);
    failed = set_X509_CERT_from_PKCS10_X509_REQ(taken, req, nullptr);
    fail_allocation(-1);
    EXPECT_EQ(get_X509_subject(taken) != nullptr, failed == 0) << n;
    ASSERT_LT(n, 500);
  }
  // A name of two attributes in one RDN is taken whole, also where the plain reader kept one; one of none is no name.
  for (const auto &[der, count, code] : {std::tuple("30163114300806035504031301413008060355040a130142", 2, 0),
                                         {"30023100", 0, kRequest | ERR_TBS_CERT_SUBJECT}}) {
    Name name;
    ASSERT_EQ(Seq_to_X509_NAME_RFC5280(unit(der), &name), 0);
    const Request named = unsigned_request(key, "1.2.840.113549.1.1.11");
    set_PKCS10_X509_REQ_subject(named, name), set_PKCS10_X509_REQ_extensions(named, nullptr);
    ASSERT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280(named, key), 0);
    const Request plain = read_request(hex(written(named, true)), count == 0);
    const Certificate taken(new_X509_CERT());
    EXPECT_EQ(set_X509_CERT_from_PKCS10_X509_REQ(taken, plain, nullptr), code);
    EXPECT_EQ(get_X509_subject(taken) ? get_X509_NAME_count(get_X509_subject(taken)) : 0, count);
  }
  const Request stolen = read_request(hex(written(req, true)), true);
  Bytes der = hex(written(req, true));
  der.back() ^= 1;
  const Request forged = read_request(der, true);
  EXPECT_EQ(set_X509_CERT_from_PKCS10_X509_REQ(cert, forged, nullptr), PKV_ERR_MISMATCH);
  // A request with somebody else's key in it.
  ASSERT_EQ(set_PKCS10_X509_REQ_pub_key(stolen, public_half(other)), 0);
  EXPECT_EQ(set_X509_CERT_from_PKCS10_X509_REQ(cert, stolen, nullptr), kRequest | 0x48);
  EXPECT_EQ(get_X509_subject(cert), nullptr);
  EXPECT_EQ(set_PKCS10_X509_REQ_version(stolen, 1), kRequest | 0x2B);
  EXPECT_EQ(set_X509_CERT_from_PKCS10_X509_REQ(nullptr, req, nullptr), kRequest | 0x49);
  EXPECT_EQ(verify_SIG_PKCS10_X509_REQ(nullptr), kRequest | 0x49);
}

}  // namespace
