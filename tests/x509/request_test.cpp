// Certification requests: those of others, ours to others, signatures, and certificates made from them.
#include <algorithm>

#include "requests.h"

using namespace test;

namespace {

// The OIDs of all attributes, sorted; the one that asks for extensions among them.
std::vector<std::string> attribute_oids(const PKCS10_X509_REQ *req) {
  std::vector<std::string> oids;
  const X509_ATTRIBUTES *list = get_PKCS10_X509_REQ_attributes(req);
  for (int i = 0; i < get_X509_ATTRIBUTES_count(list); ++i)
    oids.push_back(text_of(get_X509_ATTRIBUTE_OID(get_X509_ATTRIBUTES_child(list, i))));
  if (get_PKCS10_X509_REQ_extensions(req)) oids.push_back("1.2.840.113549.1.9.14");
  std::sort(oids.begin(), oids.end());
  return oids;
}
void compare(const Row &row, const PKCS10_X509_REQ *req) {
  const std::string &file = row.at("file");
  if (row.at("version").empty()) return;  // the manifest's own reader gave up
  EXPECT_EQ(std::to_string(get_PKCS10_X509_REQ_version(req)), row.at("version")) << file;
  EXPECT_EQ(text_of(get_PKCS10_X509_REQ_sig_alg(req)), row.at("signature_algorithm_oid")) << file;
  if (row.at("notes").find("not all facts") != std::string::npos) return;
  std::vector<std::string> attributes = split(row.at("attributes"), ',');
  std::sort(attributes.begin(), attributes.end());
  EXPECT_EQ(attribute_oids(req), attributes) << file;
  // The first extension of this one has another type in place of its OID, so the attribute stays what it is.
  const bool no_extensions = file == "files/mbedtls_test_csr_v3_all_malformed_extension_id_tag.csr.der";
  EXPECT_EQ(extension_list(get_PKCS10_X509_REQ_extensions(req)), no_extensions ? "" : row.at("requested_extensions"))
      << file;
  const std::string name = hex_of(X509_NAME_to_Seq_RFC5280, get_PKCS10_X509_REQ_subject(req));
  ASSERT_NE(name, "-") << file;
  EXPECT_EQ(to_hex(digest(PKV_DIGEST_SHA256, hex(name))), row.at("subject_sha256")) << file;
}

// What openssl reads is read in standard form, agrees, comes back octet for octet and verifies as openssl says.
TEST(RequestVectors, AgreeWithTheirManifest) {
  VELPKI_NEED_VECTORS("pkcs10", folder);
  int peer = 0, standard = 0, house = 0, verified = 0, other_algorithms = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const std::string &file = row.at("file");
    const Bytes der = der_of(folder, row);
    const Request req = read_request(der, true), plain = read_request(der, false);
    const bool decodes = row.at("decodes") == "yes";
    // An attribute whose value has a tag number above 30, which no reader here takes.
    const bool high_tag = file == "files/cryptography_long-form-attribute.pem";
    EXPECT_EQ(req != nullptr, decodes && !high_tag) << file;
    peer += decodes;
    house += plain != nullptr;
    if (plain && row.at("signature_verifies") == "fail") EXPECT_NE(verify_SIG_PKCS10_X509_REQ(plain), 0) << file;
    if (!req) continue;
    ++standard;
    EXPECT_EQ(written(req, true), to_hex(der)) << file;
    compare(row, req);
    const int code = verify_SIG_PKCS10_X509_REQ_RFC5280(req);
    if (code == (kRequest | 0x48) && row.at("signature_verifies") == "ok") {
      ++other_algorithms;
      continue;
    }
    EXPECT_EQ(code == 0, row.at("signature_verifies") == "ok") << file << std::hex << " " << code;
    verified += code == 0;
  }
  std::printf("requests: openssl reads %d, standard form %d, house form %d; %d verified, %d of other algorithms\n",
              peer, standard, house, verified, other_algorithms);
  EXPECT_GT(verified, 40);
}

TEST_F(Requests, OfEveryAlgorithmAreAcceptedByOpenssl) {
  const std::string path = temporary_path("request.pem");
  for (const Row &row : table("request_algorithms")) {
    const std::string &algorithm = row.at("algorithm"), &curve = row.at("curve");
    const Owned<ASYMMETRIC_KEY> key = curve.empty() ? rsa() : new_ec(curve.c_str());
    const Request req = unsigned_request(key, algorithm);
    ASSERT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280_ex(req, key, code_at(row, "pss_digest")), 0) << algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req), 0) << algorithm;
    Owned<char> text;
    const int length = writePEM_PKCS10_X509_REQ_to_Binary_RFC5280(req, &text);
    ASSERT_GT(length, 2);
    ASSERT_TRUE(write_file(path, text, size_t(length)));
    const std::string seen = run("openssl req -in " + path + " -noout -verify -text 2>&1");
    for (const char *part : {"verify OK", "DNS:example.com", "CN = example.com", "challengePassword"})
      EXPECT_NE(seen.find(part), std::string::npos) << algorithm << "\n" << seen;
    Owned<PKCS10_X509_REQ> back;
    ASSERT_EQ(readPEM_PKCS10_X509_REQ_from_Binary_RFC5280(&back, text, length), 0);
    EXPECT_EQ(written(back, true), written(req, true));
    EXPECT_EQ(extension_list(get_PKCS10_X509_REQ_extensions(back)), "2.5.29.17");
  }
}

// Made by openssl with every kind of key: read, verified, and refused when one bit of what is signed is turned.
TEST_F(Requests, OfOpensslVerify) {
  const std::string path = temporary_path("peer.der"), key = temporary_path("peer.key");
  for (const Row &row : table("request_openssl")) {
    const std::string &kind = row.at("key");
    ASSERT_EQ(status_of("openssl req -new -newkey " + kind + " -nodes -keyout " + key + " " + row.at("options") +
                        " -subj /CN=peer -addext subjectAltName=DNS:peer.example -outform DER -out " + path),
              0);
    Bytes der = read_file(path);
    const Request req = read_request(der, true), plain = read_request(der, false);
    ASSERT_TRUE(req) << kind;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req), 0) << kind;
    EXPECT_EQ(written(req, true), to_hex(der)) << kind;
    EXPECT_EQ(plain ? verify_SIG_PKCS10_X509_REQ(plain) : -1, code_at(row, "house")) << kind;
    const auto name = std::search(der.begin(), der.end(), std::begin("peer"), std::end("peer") - 1);
    ASSERT_NE(name, der.end());
    *name ^= 1;
    const Request changed = read_request(der, true);
    ASSERT_TRUE(changed);
    EXPECT_NE(verify_SIG_PKCS10_X509_REQ_RFC5280(changed), 0) << kind;
  }
}

TEST_F(Requests, OfTheHouseFormAreSignedAndVerified) {
  for (const Row &row : table("request_house")) {
    const std::string &algorithm = row.at("algorithm");
    const int code = code_at(row, "code");
    const Owned<ASYMMETRIC_KEY> key = row.at("key") == "kcdsa" ? kcdsa() : rsa(), p256 = new_ec("prime256v1");
    const Request req = unsigned_request(key, algorithm);
    EXPECT_EQ(gen_SIG_PKCS10_X509_REQ(req, p256), kRequest | 0x48);
    EXPECT_EQ(gen_SIG_PKCS10_X509_REQ(req, key), code) << algorithm;
    if (code) continue;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ(req), 0) << algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req), kRequest | 0x49);  // nothing was received
    const Request back = read_request(hex(written(req, false)), false);
    ASSERT_TRUE(back) << algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ(back), 0) << algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(back), 0) << algorithm;
    // A change drops what was received, and the signature is no longer over what there is.
    int length = 0;
    EXPECT_TRUE(get_PKCS10_X509_REQ_received(back, 1, &length));
    EXPECT_EQ(set_PKCS10_X509_REQ_extensions(back, nullptr), 0);
    EXPECT_FALSE(get_PKCS10_X509_REQ_received(back, 1, &length));
    EXPECT_NE(verify_SIG_PKCS10_X509_REQ(back), 0) << algorithm;
  }
}

// Which attributes are taken for a request for extensions, and what is written of them.
TEST(RequestCodec, SplitsExtensionsOff) {
  const CertificateParts parts;
  for (const Row &row : table("request_attributes")) {
    const std::string &why = row.at("why");
    const Bytes info = TLV(0x30, hex("020100") + parts.subject + parts.spki + TLV(0xA0, row.at("attributes")));
    const Bytes der = TLV(0x30, info + parts.signature + parts.value);
    const Request req = read_request(der, false);
    ASSERT_TRUE(req) << why;
    EXPECT_EQ(get_X509_ATTRIBUTES_count(get_PKCS10_X509_REQ_attributes(req)), number_in(row, "left")) << why;
    EXPECT_EQ(get_X509_EXTENSION_count(get_PKCS10_X509_REQ_extensions(req)), number_in(row, "extensions")) << why;
    EXPECT_EQ(written(req, false) == to_hex(der), row.at("same") == "yes") << why;
    const Request standard = read_request(der, true);
    EXPECT_EQ(written(standard, true), to_hex(der)) << why;
    Bytes set = der;
    set[0] = 0x31;
    EXPECT_FALSE(read_request(set, true)) << why;
  }
  for (const Row &row : table("request_shapes")) {
    const auto part = [&](const char *column) { return hex(row.at(column)); };
    const Bytes info = TLV(0x30, part("version") + parts.subject + parts.spki + part("attributes"));
    const Bytes value = row.at("signature") == "no" ? Bytes() : parts.value + part("behind");
    int code = 0;
    read_request(TLV(0x30, info + parts.signature + value), false, &code);
    EXPECT_EQ(code, code_at(row, "code")) << row.at("why");
  }
}

// A key for PSS verifies nothing else, and what its parameters allow.
TEST_F(Requests, ObeyTheParametersOfPssKeys) {
  const Owned<ASYMMETRIC_KEY> key = rsa();
  const Owned<X509_PUBKEY> half = public_half(key);
  for (const Row &row : table("request_pss")) {
    const std::string &why = row.at("why"), &parameters = row.at("parameters");
    const Bytes limits = parameters == "-" ? Bytes() : TLV(0x30, parameters);
    const Unit spki = unit(TLV(0x30, TLV(0x30, hex("06092a864886f70d01010a") + limits) +
                                         TLV(0x03, hex("00" + octets_hex(half->subjectPublicKey)))));
    Owned<X509_PUBKEY> read, house;
    ASSERT_EQ(Seq_to_X509_PUBKEY_RFC5280(spki, &read), 0) << why;
    EXPECT_NE(Seq_to_X509_PUBKEY(spki, &house), 0) << why;
    const Request req = unsigned_request(key, row.at("algorithm"));
    ASSERT_EQ(set_PKCS10_X509_REQ_pub_key(req, read), 0) << why;
    ASSERT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280_ex(req, key, code_at(row, "digest")), 0) << why;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req), code_at(row, "code")) << why;
    const std::string back = written(req, true);
    EXPECT_NE(back.find(flat(spki)), std::string::npos) << why;
    // Without its parameters, or with a NULL, PSS says nothing.
    int length = 0;
    const unsigned char *info = get_PKCS10_X509_REQ_received(req, 1, &length);
    for (const char *identifier : {"06092a864886f70d01010a", "06092a864886f70d01010a0500"}) {
      const Request bare = read_request(TLV(0x30, Bytes(info, info + length) + TLV(0x30, identifier) +
                                                      TLV(0x03, hex("00" + octets_hex(req->sig_value)))),
                                        true);
      EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(bare), kRequest | ERR_ALGORITHM_MISMATCH) << why;
    }
  }
}

}  // namespace
