// Certificates that others made, real and damaged, against their manifests.
#include "samples.h"

using namespace test;

namespace {

// What is read in standard form against the manifest's fields.
void compare(const Row &row, const X509_CERT *cert) {
  const std::string &file = row.at("file");
  EXPECT_EQ(std::to_string(get_X509_version(cert) + 1), row.at("version")) << file;
  EXPECT_EQ(text_of(get_X509_sig_alg(cert)), row.at("signature_algorithm_oid")) << file;
  EXPECT_EQ(text_of(get_X509_signature(cert)), row.at("inner_signature_algorithm_oid")) << file;
  EXPECT_EQ(extension_list(get_X509_extensions(cert)), row.at("extensions")) << file;
  unsigned char own[64];
  int length = 0;
  EXPECT_EQ(X509_CERT_digest_RFC5280(cert, PKV_DIGEST_SHA256, own, &length), 0);
  if (!row.at("sha256").empty()) EXPECT_EQ(to_hex(own, size_t(length)), row.at("sha256")) << file;
  if (file == "files/zlint_caOrgNameEmpty.der") return;  // an RDN whose SET is not in DER order; it is written sorted
  const std::string name = hex_of(X509_NAME_to_Seq_RFC5280, get_X509_subject(cert));
  ASSERT_NE(name, "-") << file;
  EXPECT_EQ(to_hex(digest(PKV_DIGEST_SHA256, hex(name))), row.at("subject_name_sha256")) << file;
}

// Everything that openssl reads is read in standard form and agrees; what the house form reads, it writes back and
// reads again.
TEST(CertificateVectors, AgreeWithTheirManifest) {
  VELPKI_NEED_VECTORS("certs", folder);
  int house = 0, standard = 0, peer = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const Bytes der = der_of(folder, row);
    peer += row.at("openssl_decodes") == "yes";
    const Certificate plain = read_certificate(der), cert = read_certificate_RFC5280(der);
    house += plain != nullptr;
    standard += cert != nullptr;
    if (cert && row.at("openssl_decodes") == "yes" && !row.at("version").empty()) compare(row, cert);
    if (!plain) continue;
    const std::string once = written(plain);
    const Certificate again = once == "-" ? nullptr : read_certificate(hex(once));
    if (again) EXPECT_EQ(written(again), once) << row.at("file");
  }
  std::printf("certificates: openssl reads %d, standard form %d, house form %d\n", peer, standard, house);
  EXPECT_GE(standard * 100, peer * 95);
  EXPECT_GT(house, 0);
}

// Signatures by the issuer that is in the same set.
TEST(CertificateVectors, VerifyAsTheManifestSays) {
  VELPKI_NEED_VECTORS("certs", folder);
  int verified = 0, other_algorithms = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    if (row.at("issuer_file").empty() || row.at("signature_verifies").empty() || row.at("format") == "PEM") continue;
    const std::string issuer_path = row.at("issuer_file").find('/') == std::string::npos
                                        ? folder + "/files/" + row.at("issuer_file")
                                        : folder + "/" + row.at("issuer_file");
    const Certificate cert = read_certificate_RFC5280(read_file(folder + "/" + row.at("file")));
    const Certificate issuer = read_certificate_RFC5280(read_file(issuer_path));
    if (!cert || !issuer) continue;
    const int code = verify_SIG_X509_CERT_RFC5280(cert, get_X509_SPKI(issuer));
    if (code == (F_VERIFY_RSASIGN_TBS_CERT | 0x48)) {
      ++other_algorithms;
      continue;
    }
    EXPECT_EQ(code == 0, row.at("signature_verifies") == "ok") << row.at("file") << std::hex << " " << code;
    verified += code == 0;
    // The house form may refuse a good certificate; it never takes one whose signature is wrong.
    const Certificate house = read_certificate(read_file(folder + "/" + row.at("file")));
    const Certificate house_issuer = read_certificate(read_file(issuer_path));
    if (house && house_issuer && row.at("signature_verifies") == "no")
      EXPECT_NE(verify_SIG_X509_CERT(house, get_X509_SPKI(house_issuer)->key), 0) << row.at("file");
  }
  std::printf("signatures: %d verified, %d of other algorithms\n", verified, other_algorithms);
  EXPECT_GT(verified, 100);
}

// Every damaged input through every decoder, at the end of a page. Those that no decoder may take are refused.
TEST(MalformedVectors, AreRefusedWithoutAccident) {
  VELPKI_NEED_VECTORS("malformed", folder);
  int refused = 0, taken = 0;
  each_damaged(folder, [&](const Row &row, const uint8_t *at, int length) {
    const Unit unit(decodeToBERSequence_n(at, length)), strict(decodeToBERSequence_strict(at, length));
    // Missing end-of-contents octets inside a definite value show only to who looks inside.
    const bool outer_fault = row.at("structure_fault") != "outer:end-of-contents missing";
    if (row.at("expect") == "refuse" && row.at("format") != "PEM" && outer_fault) {
      EXPECT_FALSE(unit) << row.at("file");
      EXPECT_FALSE(strict) << row.at("file");
    }
    String(decodeToBERASN1String_n(at, length));
    Unit(decodeToDERSequence_strict(at, length));
    Certificate cert, standard;
    const int code = readDER_X509_CERT_from_Binary(&cert, at, length);
    readDER_X509_CERT_from_Binary_RFC5280(&standard, at, length);
    ++(code ? refused : taken);
    EXPECT_EQ(code != 0, cert == nullptr);
    if (row.at("expect") == "refuse" && row.at("format") != "PEM") EXPECT_FALSE(cert || standard) << row.at("file");
    if (cert) {
      hex_of(X509_CERT_to_Seq, cert);
      verify_SIG_X509_CERT(cert, get_X509_SPKI(cert)->key);
      captured_stdout([&] { print_X509(cert); });
    }
    if (readPEM_X509_CERT_from_Binary(&standard, reinterpret_cast<const char *>(at), length) == 0) ++taken;
    Owned<PKCS10_X509_REQ> plain_request, request;
    if (readDER_PKCS10_X509_REQ_from_Binary(&plain_request, at, length) == 0) {
      hex_of(PKCS10_X509_REQ_to_Seq, plain_request);
      verify_SIG_PKCS10_X509_REQ(plain_request);
    }
    if (readDER_PKCS10_X509_REQ_from_Binary_RFC5280(&request, at, length) == 0) {
      verify_SIG_PKCS10_X509_REQ_RFC5280(request);
    }
    if (row.at("expect") == "refuse" && row.at("format") != "PEM") EXPECT_FALSE(plain_request || request);
    // As the other records that begin with a SEQUENCE or SET.
    if (!unit) return;
    Owned<STACK, free_X509_NAME> name;
    Owned<STACK, free_X509_ATTRIBUTES> attributes;
    Owned<STACK, free_X509_EXTENSIONS> extensions;
    Owned<X509_PUBKEY> pubkey;
    Seq_to_X509_NAME_RFC5280(unit, &name);
    Seq_to_X509_ATTRIBUTES(unit, &attributes);
    Seq_to_X509_EXTENSIONS_strict(unit, &extensions);
    Seq_to_X509_PUBKEY(unit, &pubkey);
  });
  std::printf("damaged inputs: %d refused as certificates, %d taken\n", refused, taken);
  EXPECT_GT(refused, 1000);
}

}  // namespace
