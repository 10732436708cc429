// Messages that others made, as CMS: what is read, verified and opened of them.
#include <cstdio>

#include "vectors.h"

using namespace test;

namespace {

struct Tally {
  int read = 0, refused = 0, good = 0, bad = 0, plain = 0;
};
void tell(const Row &row, const char *what, int code) {
  std::printf("%s: %s %s %08x (%s)\n", what, row.at("file").c_str(), row.at("content_type").c_str(), unsigned(code),
              row.at("notes").c_str());
}

void verify_row(const std::string &folder, const Row &row, const Cms &cms, Tally &tally) {
  const Stated stated(folder, row, content<CMS_SIGNED_DATA>(cms)->encapContentInfo->eContent);
  if (!stated.known) return;
  const int code = verify_CMS_strict(cms, nullptr, stated.certs, stated.data(), stated.size(), CMS_ALLOW_WEAK_DIGESTS,
                                     nullptr, nullptr);
  (code ? tally.bad : tally.good)++;
  if (stated.verdict == "fail" && code == 0) tell(row, "verified although openssl does not", code);
  if (stated.verdict == "ok" && code) tell(row, "not verified", code);
  tally.plain += verify_CMS(cms, nullptr, stated.data(), stated.size()) == 0;
}

// What opens a row: its recipient's key, or the secret that the manifest states.
struct RowOpener {
  std::vector<std::pair<Certificate, Owned<ASYMMETRIC_KEY>>> keys;
  Bytes secret, id;
  std::vector<CMS_OPENER> all;

  RowOpener(const std::string &folder, const Row &row) {
    const auto certs = split(row.at("recipient_cert")), private_keys = split(row.at("recipient_key"));
    for (size_t i = 0; i < std::min(certs.size(), private_keys.size()); ++i) {
      Certificate cert = certificate_at(folder + "/" + certs[i]);
      Owned<ASYMMETRIC_KEY> key =
          key_in(decoded(Seq_to_P8_PRIV_KEY_INFO_RFC5280, read_file(folder + "/" + private_keys[i])));
      keys.emplace_back(std::move(cert), std::move(key));
    }
    for (const auto &[cert, key] : keys) all.push_back({.cert = cert, .key = key});
    const auto stated = split(row.at("secret"), ':');
    if (stated.size() == 3) {
      secret = hex(stated[1]), id = hex(stated[2]);
      all.push_back({.kek = secret.data(),
                     .kek_length = int(secret.size()),
                     .kek_id = id.data(),
                     .kek_id_length = int(id.size())});
    } else if (stated.size() == 2 && stated[0] == "pwri") {
      secret.assign(stated[1].begin(), stated[1].end());
      all.push_back({.password = secret.data(), .password_length = int(secret.size())});
    }
  }
};

void open_row(const std::string &folder, const Row &row, const Cms &cms, Tally &tally) {
  const RowOpener opener(folder, row);
  for (const CMS_OPENER &each : opener.all) {
    Bytes out;
    const int code = open_strict(cms, each, out);
    const bool right = code == 0 && int(out.size()) == number_in(row, "content_length");
    (right ? tally.good : tally.bad)++;
    if (!right && row.at("expected") == "ok") tell(row, "not opened", code);
    if (right && row.at("expected") == "fail") tell(row, "opened although openssl does not", code);
  }
}

TEST(CmsVectors, EveryMessage) {
  VELPKI_NEED_VECTORS("cms", folder);
  Tally signers, recipients, macs;
  int rows = 0, read = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    ++rows;
    int code = 0;
    const Cms cms = read_cms(read_file(folder + "/" + row.at("file")), &code);
    if (!cms) {
      const std::string &type = row.at("content_type");
      const bool unknown = code == (F_SEQ_TO_CMS_CONTENT_INFO | 0x48);
      if (!unknown) tell(row, "not read", code);
      if (type == "signedData" || type == "envelopedData") EXPECT_FALSE(unknown) << row.at("file");
      continue;
    }
    ++read;
    const Bytes out = octets_by(writeDER_CMS_CONTENT_INFO_to_Binary_RFC5280, cms);
    EXPECT_NE(read_cms(out), nullptr) << row.at("file");
    if (cms->kind == CMS_TYPE_SIGNED_DATA) verify_row(folder, row, cms, signers);
    if (cms->kind == CMS_TYPE_ENVELOPED_DATA) open_row(folder, row, cms, recipients);
    if (cms->kind != CMS_TYPE_AUTHENTICATED_DATA) continue;
    for (const CMS_OPENER &each : RowOpener(folder, row).all) {
      const int result = verify_authenticated_CMS(cms, &each, nullptr, 0);
      (result ? macs.bad : macs.good)++;
      if (result) tell(row, "MAC not verified", result);
    }
  }
  std::printf(
      "%d rows, %d read; signed: %d verified, %d not (%d in plain form); enveloped: %d opened, %d not; MACs: %d\n",
      rows, read, signers.good, signers.bad, signers.plain, recipients.good, recipients.bad, macs.good);
  EXPECT_EQ(macs.bad, 0);
  EXPECT_EQ(macs.good, 4);
  EXPECT_GE(signers.good, 50);
  EXPECT_GE(recipients.good, 45);
}

}  // namespace
