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
}  // namespace test
