#include "cms/internal/hmac_algorithm.h"

namespace velpki {

namespace {

struct Hmac {
  std::string_view oid;
  int digest_id;
};
// Those of PKCS#5, and the other name of the first (RFC 3370 3.1).
constexpr Hmac kHmacs[] = {{"1.2.840.113549.2.7", PKV_DIGEST_SHA1},    {"1.2.840.113549.2.8", PKV_DIGEST_SHA224},
                           {"1.2.840.113549.2.9", PKV_DIGEST_SHA256},  {"1.2.840.113549.2.10", PKV_DIGEST_SHA384},
                           {"1.2.840.113549.2.11", PKV_DIGEST_SHA512}, {"1.3.6.1.5.5.8.1.2", PKV_DIGEST_SHA1}};

}  // namespace

std::string_view hmac_oid(int digest_id) noexcept {
  for (const Hmac &each : kHmacs)
    if (each.digest_id == digest_id) return each.oid;
  return {};
}

int hmac_digest(const X509_ALGO_IDENTIFIER *algorithm) noexcept {
  for (const Hmac &each : kHmacs)
    if (algorithm && algorithm->algorithm && text(*algorithm->algorithm) == each.oid) return each.digest_id;
  return 0;
}

}  // namespace velpki
