#include "samples.h"

#include <velpki/pem.h>

namespace test {

Bytes der_of(const std::string &path, const std::string &format) {
  const Bytes octets = read_file(path);
  if (format != "PEM") return octets;
  unsigned char *der = nullptr;
  const int length = decode_PEM_ex(reinterpret_cast<const char *>(octets.data()), int(octets.size()), nullptr, nullptr,
                                   nullptr, nullptr, &der);
  const Block owner(der);
  return length > 0 ? Bytes(der, der + length) : Bytes();
}

std::string extension_list(const X509_EXTENSIONS *extensions) {
  std::string list;
  for (int i = 0; i < get_X509_EXTENSION_count(extensions); ++i) {
    const X509_EXTENSION *each = get_X509_EXTENSION(extensions, i);
    list += (i ? "," : "") + text_of(each->object) + (each->critical ? "!" : "");
  }
  return list;
}

std::string digest_hex(const Bytes &octets) {
  unsigned char digest[64];
  int length = 0;
  PKV_DIGEST(PKV_DIGEST_SHA256, octets.data(), int(octets.size()), digest, &length);
  return to_hex(digest, size_t(length));
}

}  // namespace test
