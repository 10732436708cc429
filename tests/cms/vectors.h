// What the messages that others made come with: certificates and keys in files.
#pragma once

#include "cms_parties.h"

namespace test {

inline Certificate certificate_at(const std::string &path) { return read_certificate_RFC5280(read_file(path)); }
// Those of a list with commas in a column of the manifest.
inline Certificates certificates_at(const std::string &folder, const std::string &names) {
  Certificates list(new_X509_CERTIFICATES());
  for (const std::string &name : split(names))
    if (const Certificate cert = certificate_at(folder + "/" + name)) add_X509_CERTIFICATES(list, cert);
  return list;
}
// What the manifest states of a signed message; `known` where openssl's verdict and the content are there to compare.
struct Stated {
  const std::string &verdict;
  Bytes content;
  Certificates certs;
  bool known;

  Stated(const std::string &folder, const Row &row, bool attached)
      : verdict(row.at("expected").empty() ? row.at("openssl_verifies") : row.at("expected")),
        certs(certificates_at(folder, row.at("signer_certs"))),
        known(!row.at("signers").empty() && (verdict == "ok" || verdict == "fail")) {
    const std::string &file = row.at("content_file");
    if (!attached && !file.empty()) content = read_file(folder + "/" + file);
    if (!attached && file.empty()) known = false;
  }
  const uint8_t *data() const { return content.empty() ? nullptr : content.data(); }
  int size() const { return int(content.size()); }
};

}  // namespace test
