// Revocation lists that others made, real and damaged, against their manifests.
#include <cstdio>

#include "samples.h"

using namespace test;

namespace {

Bytes standard_octets(const X509_CRL *crl) {
  const std::string octets = hex_of(X509_CRL_to_Seq_RFC5280, crl);
  return octets == "-" ? Bytes() : hex(octets);
}
Bytes house_octets(X509_CRL *crl) { return octets_by(writeDER_X509_CRL_to_Binary, crl); }

// As the manifest writes a time: "1999-08-27 07:00:00Z", or NONE.
std::string time_text(const X509_TIME *time) {
  if (!time) return "NONE";
  const Time read(time->type == X509_TIME_UTC ? utcTimeToASN1_TIME(time->time)
                                              : generalizedTimeToASN1_TIME(time->time));
  if (!read) return "Bad time value";
  char text[40];
  std::snprintf(text, sizeof text, "%4d-%02d-%02d %02d:%02d:%02dZ", read->tm_year + 1900, read->tm_mon + 1,
                read->tm_mday, read->tm_hour, read->tm_min, read->tm_sec);
  return text;
}
// The content octets of a serial number, as the manifest has them; negative ones are told apart only.
std::string serial_text(const X509_REVOKED *entry) {
  int length = 0;
  const BIGINT *serial = get_X509_REVOKED_userCert(entry);
  const unsigned char *octets = PKV_Get_BIGINT_Octets(serial, &length);
  if (PKV_Is_BIGINT_Negative(serial)) return "negative";
  return (length == 0 || octets[0] & 0x80 ? "00" : "") + to_hex(octets, size_t(length));
}
std::string serial_text(const std::string &content) { return hex(content)[0] & 0x80 ? "negative" : content; }
// "3:1,4:2": how many entries have each reason code.
std::string reason_list(const STACK *revoked) {
  std::map<int, int> counts;
  for (int i = 0; i < get_X509_REVOKED_count(revoked); ++i) {
    constexpr int kReason = 141;  // row of the registry
    const X509_REVOKED *entry = get_X509_REVOKED(revoked, i);
    const int at = get_X509_REVOKED_ext_index_by_OID_index(entry, kReason, -1);
    const int reason = get_X509_REVOKED_CRLreason(entry, at), strict = get_X509_REVOKED_CRLreason_strict(entry);
    EXPECT_EQ(strict, at < 0 ? -1 : reason > 10 || reason == 7 ? -2 : reason);
    if (at >= 0) ++counts[reason & 0xFF];  // the manifest looks at the last octet of a value of two
  }
  std::string list;
  for (const auto &[reason, count] : counts)
    list += (list.empty() ? "" : ",") + std::to_string(reason) + ":" + std::to_string(count);
  return list;
}

void compare(const Row &row, const X509_CRL *crl) {
  const std::string &file = row.at("file");
  const STACK *revoked = get_X509_CRL_revoked(crl);
  const int count = revoked ? get_X509_REVOKED_count(revoked) : 0;
  EXPECT_EQ(time_text(get_X509_CRL_thisUpdate(crl)), row.at("last_update")) << file;
  EXPECT_EQ(time_text(get_X509_CRL_nextUpdate(crl)), row.at("next_update")) << file;
  EXPECT_EQ(std::to_string(get_X509_CRL_version(crl) + 1), row.at("version")) << file;
  EXPECT_EQ(std::to_string(count), row.at("entries")) << file;
  EXPECT_EQ(text_of(get_X509_CRL_sig_alg(crl)), row.at("signature_algorithm")) << file;
  EXPECT_EQ(extension_list(crl->tbs->extensions), row.at("crl_extensions")) << file;
  EXPECT_EQ(reason_list(revoked), row.at("reason_codes")) << file;
  if (!count) return;
  EXPECT_EQ(serial_text(get_X509_REVOKED(revoked, 0)), serial_text(row.at("first_serial"))) << file;
  EXPECT_EQ(serial_text(get_X509_REVOKED(revoked, count - 1)), serial_text(row.at("last_serial"))) << file;
  for (const int i : {0, count / 2, count - 1}) {
    const X509_REVOKED *entry = get_X509_REVOKED(revoked, i);
    const X509_REVOKED *found = find_X509_CRL_revoked(crl, entry->userCertificate);
    EXPECT_TRUE(found && PKV_Cmp_BIGINT(found->userCertificate, entry->userCertificate) == 0) << file;
  }
}

void print_codes(const char *what, const std::map<int, int> &codes) {
  for (const auto &[code, count] : codes) {
    char text[121];
    describe_velpki_code(code, text, sizeof text);
    std::printf("  %s: %d times %s\n", what, count, text);
  }
}

// What openssl reads is read in standard form, agrees with the manifest and comes back octet for octet.
TEST(CrlVectors, AgreeWithTheirManifest) {
  VELPKI_NEED_VECTORS("crl", folder);
  int peer = 0, standard = 0, house = 0, same = 0;
  std::map<int, int> refused, refused_house;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const Bytes der = read_file(folder + "/" + row.at("file"));
    int code = 0, house_code = 0;
    const Crl crl = read_crl_RFC5280(der, &code), plain = read_crl(der, &house_code);
    const bool peer_reads = row.at("openssl_decodes") == "yes";
    peer += peer_reads;
    standard += crl != nullptr;
    house += plain != nullptr;
    if (peer_reads) EXPECT_TRUE(crl) << row.at("file") << std::hex << " " << code;
    if (crl) EXPECT_EQ(standard_octets(crl), der) << row.at("file");
    if (crl && peer_reads) compare(row, crl);
    if (!crl) ++refused[code];
    if (!plain) ++refused_house[house_code];
    if (!plain) continue;
    const Bytes once = house_octets(plain);
    same += once == der;
    const Crl again = read_crl(once, &code);
    if (!once.empty()) EXPECT_TRUE(again && house_octets(again) == once) << row.at("file");
  }
  std::printf("CRLs: openssl reads %d, standard form %d, house form %d, of which %d come back to their own octets\n",
              peer, standard, house, same);
  print_codes("standard form", refused);
  print_codes("house form", refused_house);
  EXPECT_GT(same, 0);
}

TEST(CrlVectors, VerifyAsTheManifestSays) {
  VELPKI_NEED_VECTORS("crl", folder);
  int verified = 0, verified_house = 0, peer = 0;
  std::map<int, int> codes, codes_house;
  std::string others;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    if (row.at("issuer_file").empty()) continue;
    const Bytes der = read_file(folder + "/" + row.at("file"));
    int code = 0;
    const Crl crl = read_crl_RFC5280(der), plain = read_crl(der);
    const Certificate issuer = read_certificate_RFC5280(read_file(folder + "/" + row.at("issuer_file")));
    if (!crl || !issuer) continue;
    const bool good = row.at("verifies") == "ok";
    peer += good;
    code = verify_SIG_X509_CRL_RFC5280(crl, get_X509_SPKI(issuer));
    EXPECT_TRUE(good || code != 0) << row.at("file");
    verified += code == 0;
    if (good && code) {
      ++codes[code];
      // Algorithms that the provider does not have; openssl does not compare the algorithm inside with the one outside.
      const bool mismatch = row.at("file") == "files/boringssl_invalid_mismatched_signature_algorithm.der";
      EXPECT_EQ(code, F_VERIFY_RSASIGN | (mismatch ? ERR_ALGORITHM_MISMATCH : 0x48)) << row.at("file");
      others += mismatch ? "" : row.at("signature_algorithm") + " ";
    }
    if (good) EXPECT_EQ(cmp_X509_NAME_RFC5280(get_X509_CRL_issuer(crl), get_X509_subject(issuer)), 0) << row.at("file");
    if (!plain) continue;
    code = verify_SIG_X509_CRL(plain, get_X509_SPKI(issuer)->key);
    EXPECT_TRUE(good || code != 0) << row.at("file");
    verified_house += code == 0;
    if (good && code) ++codes_house[code];
  }
  std::printf("CRL signatures: openssl verifies %d, standard form %d, house form %d\n", peer, verified, verified_house);
  print_codes("standard form", codes);
  print_codes("house form", codes_house);
  std::printf("  other algorithms: %s\n", others.c_str());
  EXPECT_GT(verified_house, 0);
}

// Every damaged input as a revocation list, at the end of a page.
TEST(CrlVectors, DamagedInputs) {
  VELPKI_NEED_VECTORS("malformed", folder);
  int taken = 0;
  each_damaged(folder, [&](const Row &row, const uint8_t *at, int length) {
    Crl plain, standard;
    readDER_X509_CRL_from_Binary(&plain, at, length);
    readDER_X509_CRL_from_Binary_RFC5280(&standard, at, length);
    const bool must_refuse = row.at("expect") == "refuse" && row.at("format") != "PEM" &&
                             row.at("structure_fault") != "outer:end-of-contents missing";
    EXPECT_FALSE(must_refuse && (plain || standard)) << row.at("file");
    for (X509_CRL *crl : {plain.get(), standard.get()}) {
      if (!crl) continue;
      ++taken;
      house_octets(crl);
      standard_octets(crl);
      find_X509_CRL_revoked(crl, number("01"));
    }
  });
  std::printf("damaged inputs: %d taken as revocation lists\n", taken);
}

}  // namespace
