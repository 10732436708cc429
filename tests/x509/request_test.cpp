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
  ASN1_UNIT *name = nullptr;
  ASSERT_EQ(X509_NAME_to_Seq_RFC5280(get_PKCS10_X509_REQ_subject(req), &name), 0) << file;
  const Unit owner(name);
  EXPECT_EQ(digest_hex(hex(flat(name))), row.at("subject_sha256")) << file;
}

// What openssl reads is read in standard form, agrees, comes back octet for octet and verifies as openssl says.
TEST(RequestVectors, AgreeWithTheirManifest) {
  VELPKI_NEED_VECTORS("pkcs10", folder);
  int peer = 0, standard = 0, house = 0, verified = 0, other_algorithms = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const std::string &file = row.at("file");
    const Bytes der = der_of(folder + "/" + file, row.at("format"));
    const Request req = read_request(der, true), plain = read_request(der, false);
    const bool decodes = row.at("decodes") == "yes";
    // An attribute whose value has a tag number above 30, which no reader here takes.
    const bool high_tag = file == "files/cryptography_long-form-attribute.pem";
    EXPECT_EQ(req != nullptr, decodes && !high_tag) << file;
    peer += decodes;
    house += plain != nullptr;
    if (plain && row.at("signature_verifies") == "fail") EXPECT_NE(verify_SIG_PKCS10_X509_REQ(plain.get()), 0) << file;
    if (!req) continue;
    ++standard;
    EXPECT_EQ(written(req.get(), true), to_hex(der)) << file;
    compare(row, req.get());
    const int code = verify_SIG_PKCS10_X509_REQ_RFC5280(req.get());
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

// openssl's view of a request: verification's verdict, and its text.
std::string openssl_text(const std::string &path) {
  return run("openssl req -in " + path + " -noout -verify -text 2>&1");
}

TEST_F(Requests, OfEveryAlgorithmAreAcceptedByOpenssl) {
  const Owned<ASYMMETRIC_KEY> rsa_key = rsa(), p256 = new_ec("prime256v1"), p384 = new_ec("secp384r1"),
                              p521 = new_ec("secp521r1");
  const struct {
    const char *algorithm;
    ASYMMETRIC_KEY *key;
    int pss_digest;
  } cases[] = {{"1.2.840.113549.1.1.11", rsa_key.get(), 0},
               {"1.2.840.113549.1.1.10", rsa_key.get(), PKV_DIGEST_SHA256},
               {"1.2.840.113549.1.1.10", rsa_key.get(), PKV_DIGEST_SHA1},
               {"1.2.840.10045.4.3.2", p256.get(), 0},
               {"1.2.840.10045.4.3.3", p384.get(), 0},
               {"1.2.840.10045.4.3.4", p521.get(), 0}};
  const std::string path = temporary_path("request.pem");
  for (const auto &c : cases) {
    const Request req = unsigned_request(c.key, c.algorithm);
    ASSERT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280_ex(req.get(), c.key, c.pss_digest), 0) << c.algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req.get()), 0) << c.algorithm;
    char *text = nullptr;
    const int length = writePEM_PKCS10_X509_REQ_to_Binary_RFC5280(req.get(), &text);
    const std::unique_ptr<char, Release> owner(text);
    ASSERT_GT(length, 2);
    ASSERT_TRUE(write_file(path, text, size_t(length)));
    const std::string seen = openssl_text(path);
    for (const char *part : {"verify OK", "DNS:example.com", "CN = example.com", "challengePassword"})
      EXPECT_NE(seen.find(part), std::string::npos) << c.algorithm << "\n" << seen;
    PKCS10_X509_REQ *back = nullptr;
    ASSERT_EQ(readPEM_PKCS10_X509_REQ_from_Binary_RFC5280(&back, text, length), 0);
    const Request again(back);
    EXPECT_EQ(written(back, true), written(req.get(), true));
    EXPECT_EQ(extension_list(get_PKCS10_X509_REQ_extensions(back)), "2.5.29.17");
  }
}

// Made by openssl with every kind of key: read, verified, and refused when one bit of what is signed is turned.
TEST_F(Requests, OfOpensslVerify) {
  const struct {
    const char *key, *options;
    int house;  // whether the house form reads it, and verifies
  } cases[] = {{"rsa:1024", "-sha256", 0},
               {"rsa:1024", "-sha512 -sigopt rsa_padding_mode:pss -sigopt rsa_pss_saltlen:17", kRequest | 0x2B},
               {"rsa-pss -pkeyopt rsa_keygen_bits:1024", "-sha256", kRequest | 0x2B},
               {"rsa-pss -pkeyopt rsa_keygen_bits:1024 -pkeyopt rsa_pss_keygen_md:sha384 -pkeyopt "
                "rsa_pss_keygen_mgf1_md:sha384 -pkeyopt rsa_pss_keygen_saltlen:20",
                "", -1},
               {"ec -pkeyopt ec_paramgen_curve:P-256", "-sha256", kRequest | 0x48},
               {"ec -pkeyopt ec_paramgen_curve:P-384", "-sha384", -1},
               {"ec -pkeyopt ec_paramgen_curve:P-521", "-sha512", -1},
               {"ed25519", "", -1}};
  const std::string path = temporary_path("peer.der"), key = temporary_path("peer.key");
  for (const auto &c : cases) {
    int status = 0;
    run("openssl req -new -newkey " + std::string(c.key) + " -nodes -keyout " + key + " " + c.options +
            " -subj /CN=peer -addext subjectAltName=DNS:peer.example -outform DER -out " + path + " 2>&1",
        &status);
    ASSERT_EQ(status, 0) << c.key;
    Bytes der = read_file(path);
    const Request req = read_request(der, true), plain = read_request(der, false);
    ASSERT_TRUE(req) << c.key;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req.get()), 0) << c.key;
    EXPECT_EQ(written(req.get(), true), to_hex(der)) << c.key;
    EXPECT_EQ(plain ? verify_SIG_PKCS10_X509_REQ(plain.get()) : -1,
              std::string(c.key).find("rsa-pss") == 0 ? -1 : c.house)
        << c.key;
    const auto name = std::search(der.begin(), der.end(), std::begin("peer"), std::end("peer") - 1);
    ASSERT_NE(name, der.end());
    *name ^= 1;
    const Request changed = read_request(der, true);
    ASSERT_TRUE(changed);
    EXPECT_NE(verify_SIG_PKCS10_X509_REQ_RFC5280(changed.get()), 0) << c.key;
  }
}

TEST_F(Requests, OfTheHouseFormAreSignedAndVerified) {
  const struct {
    const char *algorithm;
    bool with_kcdsa;
    int code;
  } cases[] = {{"1.2.840.113549.1.1.11", false, 0},
               {"1.2.840.113549.1.1.5", false, 0},
               {"1.2.410.200004.1.22", true, 0},
               {"1.2.840.113549.1.1.10", false, kRequest | 0x2B},  // PSS has no digest
               {"1.2.3.4", true, kRequest | 0x2B}};
  for (const auto &c : cases) {
    const Owned<ASYMMETRIC_KEY> key = c.with_kcdsa ? kcdsa() : rsa(), p256 = new_ec("prime256v1");
    const Request req = unsigned_request(key.get(), c.algorithm);
    EXPECT_EQ(gen_SIG_PKCS10_X509_REQ(req.get(), p256.get()), kRequest | 0x48);
    EXPECT_EQ(gen_SIG_PKCS10_X509_REQ(req.get(), key.get()), c.code) << c.algorithm;
    if (c.code) continue;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ(req.get()), 0) << c.algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req.get()), kRequest | 0x49);  // nothing was received
    const Request back = read_request(hex(written(req.get(), false)), false);
    ASSERT_TRUE(back) << c.algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ(back.get()), 0) << c.algorithm;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(back.get()), 0) << c.algorithm;
    // A change drops what was received, and the signature is no longer over what there is.
    int length = 0;
    EXPECT_TRUE(get_PKCS10_X509_REQ_received(back.get(), 1, &length));
    EXPECT_EQ(set_PKCS10_X509_REQ_extensions(back.get(), nullptr), 0);
    EXPECT_FALSE(get_PKCS10_X509_REQ_received(back.get(), 1, &length));
    EXPECT_NE(verify_SIG_PKCS10_X509_REQ(back.get()), 0) << c.algorithm;
  }
}

// Which attributes are taken for a request for extensions, and what is written of them.
TEST(RequestCodec, SplitsExtensionsOff) {
  const CertificateParts parts;
  const Bytes san = TLV(0x30, TLV(0x06, "551d11") + TLV(0x04, kSan)), two = TLV(0x30, san + san);
  const auto asking = [](std::string_view oid, const Bytes &values) {
    return TLV(0x30, TLV(0x06, oid) + TLV(0x31, values));
  };
  const std::string_view pkcs9 = "2a864886f70d01090e", microsoft = "2b06010401823702010e";
  const Bytes other = asking("2a864886f70d010907", TLV(0x0C, "41"));
  const struct {
    const char *why;
    Bytes attributes;
    int left, extensions;
    bool same;  // whether the house form writes it back as it was
  } cases[] = {{"none", {}, 0, -1, true},
               {"the usual", asking(pkcs9, two), 0, 2, true},
               {"behind another", other + asking(pkcs9, two), 1, 2, true},
               {"before another", asking(pkcs9, two) + other, 1, 2, false},
               {"by the second OID", asking(microsoft, two), 0, 2, false},
               {"twice", asking(pkcs9, two) + asking(pkcs9, TLV(0x30, san)), 1, 2, false},
               {"an empty list", asking(pkcs9, TLV(0x30, "")), 1, -1, true},
               {"two values", asking(pkcs9, two + two), 1, -1, true},
               {"no value", asking(pkcs9, {}), 1, -1, true},
               {"a string", asking(pkcs9, TLV(0x0C, "41")), 1, -1, true},
               {"no extensions inside", asking(pkcs9, TLV(0x30, "020101")), 1, -1, true}};
  for (const auto &c : cases) {
    const Bytes info = TLV(0x30, hex("020100") + parts.subject + parts.spki + TLV(0xA0, c.attributes));
    const Bytes der = TLV(0x30, info + parts.signature + parts.value);
    const Request req = read_request(der, false);
    ASSERT_TRUE(req) << c.why;
    EXPECT_EQ(get_X509_ATTRIBUTES_count(get_PKCS10_X509_REQ_attributes(req.get())), c.left) << c.why;
    EXPECT_EQ(get_X509_EXTENSION_count(get_PKCS10_X509_REQ_extensions(req.get())), c.extensions) << c.why;
    EXPECT_EQ(written(req.get(), false) == to_hex(der), c.same) << c.why;
    const Request standard = read_request(der, true);
    EXPECT_EQ(written(standard.get(), true), to_hex(der)) << c.why;
  }
  const Bytes end = parts.signature + parts.value, start = hex("020100") + parts.subject + parts.spki;
  const struct {
    const char *why;
    Bytes der;
    int code;
  } shapes[] = {{"no attributes", TLV(0x30, TLV(0x30, start) + end), 0},
                {"version of two octets", TLV(0x30, TLV(0x30, hex("02020000") + parts.subject + parts.spki) + end), 1},
                {"negative version", TLV(0x30, TLV(0x30, hex("0201ff") + parts.subject + parts.spki) + end), 1},
                {"attributes under another tag", TLV(0x30, TLV(0x30, start + TLV(0xA1, "")) + end), 1},
                {"attributes as a plain SET", TLV(0x30, TLV(0x30, start + TLV(0x31, "")) + end), 1},
                {"something behind the attributes", TLV(0x30, TLV(0x30, start + hex("a0000500")) + end), 1},
                {"something behind the signature", TLV(0x30, TLV(0x30, start + hex("a000")) + end + hex("0500")), 1},
                {"no signature", TLV(0x30, TLV(0x30, start + hex("a000")) + parts.signature), 1}};
  for (const auto &c : shapes) {
    int code = 0;
    read_request(c.der, false, &code);
    EXPECT_EQ(code, c.code ? kRequest | ERR_ASN1_DECODING : 0) << c.why;
  }
}

// A key for PSS verifies nothing else, and what its parameters allow.
TEST_F(Requests, ObeyTheParametersOfPssKeys) {
  const std::string sha256 = "300d06096086480165030402010500", mgf1 = "301a06092a864886f70d010108" + sha256;
  const std::string both = "a00f" + sha256 + "a11c" + mgf1;
  const std::string pss = "1.2.840.113549.1.1.10", pkcs1 = "1.2.840.113549.1.1.11";
  const struct {
    const char *why;
    std::string parameters;  // content of the key's; "-" for none
    std::string algorithm;
    int digest, code;
  } cases[] = {{"no limits", "-", pss, PKV_DIGEST_SHA384, 0},
               {"no limits, but PSS alone", "-", pkcs1, 0, kRequest | ERR_ALGORITHM_MISMATCH},
               {"the digest", both, pss, PKV_DIGEST_SHA256, 0},
               {"another digest", both, pss, PKV_DIGEST_SHA384, kRequest | ERR_ALGORITHM_MISMATCH},
               {"the salt", both + "a203020120", pss, PKV_DIGEST_SHA256, 0},
               {"a longer salt wanted", both + "a203020121", pss, PKV_DIGEST_SHA256, kRequest | ERR_ALGORITHM_MISMATCH},
               {"another mask", "a00f" + sha256, pss, PKV_DIGEST_SHA256, kRequest | ERR_ALGORITHM_MISMATCH},
               {"the defaults", "", pss, PKV_DIGEST_SHA1, 0},
               {"unreadable", "a2030201ff", pss, PKV_DIGEST_SHA1, kRequest | ERR_ASN1_DECODING}};
  const Owned<ASYMMETRIC_KEY> key = rsa();
  const Owned<X509_PUBKEY> half = public_half(key.get());
  for (const auto &c : cases) {
    const Bytes limits = c.parameters == "-" ? Bytes() : TLV(0x30, c.parameters);
    const Unit spki = unit(TLV(0x30, TLV(0x30, hex("06092a864886f70d01010a") + limits) +
                                         TLV(0x03, hex("00" + octets_hex(half->subjectPublicKey)))));
    X509_PUBKEY *read = nullptr, *house = nullptr;
    ASSERT_EQ(Seq_to_X509_PUBKEY_RFC5280(spki.get(), &read), 0) << c.why;
    EXPECT_NE(Seq_to_X509_PUBKEY(spki.get(), &house), 0) << c.why;
    const Owned<X509_PUBKEY> owner(read);
    const Request req = unsigned_request(key.get(), c.algorithm);
    ASSERT_EQ(set_PKCS10_X509_REQ_pub_key(req.get(), read), 0) << c.why;
    ASSERT_EQ(gen_SIG_PKCS10_X509_REQ_RFC5280_ex(req.get(), key.get(), c.digest), 0) << c.why;
    EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(req.get()), c.code) << c.why;
    const std::string back = written(req.get(), true);
    EXPECT_NE(back.find(flat(spki.get())), std::string::npos) << c.why;
    // Without its parameters, or with a NULL, PSS says nothing.
    int length = 0;
    const unsigned char *info = get_PKCS10_X509_REQ_received(req.get(), 1, &length);
    for (const char *identifier : {"06092a864886f70d01010a", "06092a864886f70d01010a0500"}) {
      const Request bare = read_request(TLV(0x30, Bytes(info, info + length) + TLV(0x30, identifier) +
                                                      TLV(0x03, hex("00" + octets_hex(req->sig_value)))),
                                        true);
      EXPECT_EQ(verify_SIG_PKCS10_X509_REQ_RFC5280(bare.get()), kRequest | ERR_ALGORITHM_MISMATCH) << c.why;
    }
  }
}

}  // namespace
