// The ciphers that algorithm identifiers name.
#include "x509/internal/x509.h"

namespace velpki {

namespace {

struct CipherOfText {
  std::string_view oid;
  int cipher_id;
};
// ARIA of RFC 5794, which the registry does not have: ECB, CBC, CFB and OFB of each key length.
constexpr CipherOfText kFurtherCiphers[] = {
    {"1.2.410.200046.1.1.1", 0x03000100},  {"1.2.410.200046.1.1.2", 0x03000120},  {"1.2.410.200046.1.1.3", 0x03000140},
    {"1.2.410.200046.1.1.4", 0x03000160},  {"1.2.410.200046.1.1.6", 0x03000200},  {"1.2.410.200046.1.1.7", 0x03000220},
    {"1.2.410.200046.1.1.8", 0x03000240},  {"1.2.410.200046.1.1.9", 0x03000260},  {"1.2.410.200046.1.1.11", 0x03000300},
    {"1.2.410.200046.1.1.12", 0x03000320}, {"1.2.410.200046.1.1.13", 0x03000340}, {"1.2.410.200046.1.1.14", 0x03000360},
};

constexpr int kFamily = 0x70000000;  // content ciphers have none of these bits

}  // namespace

int content_cipher_id(const X509_ALGO_IDENTIFIER *algorithm) noexcept {
  if (!algorithm || !algorithm->algorithm) return 0;
  if (const int id = get_CipherID_from_OID(algorithm->algorithm)) return id & kFamily ? 0 : id;
  for (const CipherOfText &each : kFurtherCiphers)
    if (text(*algorithm->algorithm) == each.oid) return each.cipher_id;
  return 0;
}

}  // namespace velpki
