#include "samples.h"

namespace test {

std::string extension_list(const X509_EXTENSIONS *extensions) {
  std::string list;
  for (int i = 0; i < get_X509_EXTENSION_count(extensions); ++i) {
    const X509_EXTENSION *each = get_X509_EXTENSION(extensions, i);
    list += (i ? "," : "") + text_of(each->object) + (each->critical ? "!" : "");
  }
  return list;
}

}  // namespace test
