// Messages that others made: what is read, verified and opened of them.
#include <velpki/asn1_io.h>

#include <cstdio>

#include "vectors.h"

using namespace test;

namespace {

// What is written of a message reads again, and is written the same.
void write_back(const Message &p7, const std::string &path) {
  const Bytes out = octets_by(writeDER_P7_CONTENT_INFO_to_Binary_RFC5280, p7);
  const Message again = read_by(readBER_P7_CONTENT_INFO_from_Binary, out);
  ASSERT_TRUE(again) << path;
  EXPECT_TRUE(octets_by(writeDER_P7_CONTENT_INFO_to_Binary_RFC5280, again) == out) << path;
}

std::string first_of(const std::string &list) { return list.substr(0, list.find(',')); }
bool is_ours(const std::string &signers) { return signers.find("keyId") == std::string::npos; }

}  // namespace

TEST(Vectors, SignedMessages) {
  VELPKI_NEED_VECTORS("cms", folder);
  int decoded = 0, verified = 0, refused = 0, plain = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    if (row.at("content_type") != "signedData" || !is_ours(row.at("signers"))) continue;
    const std::string path = folder + "/" + row.at("file");
    int code = -1;
    const Message p7 = read_by(readBER_P7_CONTENT_INFO_from_File, path, &code);
    if (!p7) {
      // One lacks its last end-of-contents octets.
      const bool known = row.at("file").find("signed-indefinite-length") != std::string::npos;
      EXPECT_TRUE(known || row.at("openssl_decodes").substr(0, 3) != "yes") << path << std::hex << " " << code;
      continue;
    }
    ++decoded;
    write_back(p7, path);
    const Stated stated(folder, row, static_cast<P7_SIGNED_DATA *>(p7->content)->contentInfo->content);
    if (!stated.known) continue;
    const int strict = verify_PKCS7_strict(p7, nullptr, stated.certs, stated.data(), stated.size(),
                                           PKCS7_ALLOW_WEAK_DIGESTS, nullptr, nullptr);
    // One signs content that is no OCTET STRING, which openssl does not look at.
    if (stated.verdict == "fail" && row.at("file").find(".cat") == std::string::npos) EXPECT_NE(strict, 0) << path;
    verified += strict == 0;
    refused += strict != 0;
    plain += verify_PKCS7(p7, nullptr, stated.data(), stated.size()) == 0;
    if (strict && stated.verdict == "ok")
      std::printf("not verified: %s %08x (%s)\n", row.at("file").c_str(), unsigned(strict), row.at("notes").c_str());
  }
  std::printf("signed messages: %d read, %d verified, %d not, %d pass the plain form\n", decoded, verified, refused,
              plain);
  EXPECT_GT(decoded, 70);
  EXPECT_GT(verified, 40);
}

TEST(Vectors, EnvelopedMessages) {
  VELPKI_NEED_VECTORS("cms", folder);
  int opened = 0, decoded = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    if (row.at("content_type") != "envelopedData" || row.at("recipient_key").empty()) continue;
    const std::string path = folder + "/" + row.at("file");
    const Message p7 = read_by(readBER_P7_CONTENT_INFO_from_File, path);
    if (!p7) continue;  // recipients of another kind
    ++decoded;
    const Certificate cert = certificate_at(folder + "/" + first_of(row.at("recipient_cert")));
    const Owned<ASYMMETRIC_KEY> key = key_in(
        test::decoded(Seq_to_P8_PRIV_KEY_INFO_RFC5280, read_file(folder + "/" + first_of(row.at("recipient_key")))));
    int length = get_PKCS7_ENCRYPTED_CONTENT_length(p7);
    Bytes out(size_t(std::max(length, 1)));
    const int result = decrypt_PKCS7_strict(p7, cert, key, out.data(), &length);
    if (result == 0 && row.at("expected") != "fail") {
      EXPECT_EQ(length, number_in(row, "content_length")) << path;
      ++opened;
    }
    if (result && row.at("expected") == "ok")
      std::printf("not opened: %s %08x (%s)\n", row.at("file").c_str(), unsigned(result), row.at("notes").c_str());
  }
  std::printf("enveloped messages: %d read, %d opened\n", decoded, opened);
  EXPECT_GT(opened, 15);
}

// Everything that is here, as DER and damaged: no crash, and a code.
TEST(Vectors, DamagedMessages) {
  VELPKI_NEED_VECTORS("malformed", folder);
  int taken = 0;
  each_damaged(folder, [&](const Row &, const uint8_t *at, int length) {
    if (!length) return;
    for (const auto read : {readBER_P7_CONTENT_INFO_from_Binary, readDER_P7_CONTENT_INFO_from_Binary}) {
      Message p7;
      if (read(&p7, at, length)) continue;
      ++taken;
      verify_PKCS7(p7, nullptr, at, 4);
      verify_PKCS7_strict(p7, nullptr, nullptr, at, 4, 1, nullptr, nullptr);
    }
  });
  std::printf("damaged inputs: %d taken as messages\n", taken);
}
