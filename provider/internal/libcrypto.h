// The private library context and what is fetched from it once.
#pragma once

#include <openssl/evp.h>

#include <atomic>

namespace velcrypto {

// The provider's own library context with the default and the legacy provider loaded, made at first use and kept; null
// when it cannot be made. Nothing here touches the application's default context.
OSSL_LIB_CTX *library_context() noexcept;

// The libcrypto digest of a PKV_DIGEST_ identifier (PKV_HMAC_FLAG ignored), fetched once and kept; null for HAS-160 and
// MDC2, which are not libcrypto's, and for unknown identifiers.
const EVP_MD *libcrypto_digest(int digest_id) noexcept;

// libcrypto's name of the digest ("SHA2-256" ...), or null as above.
const char *libcrypto_digest_name(int digest_id) noexcept;

// The code of a call into libcrypto that failed: exhausted memory, or else what it is taken for. Inside an ErrorScope.
int code_of_failure(int otherwise) noexcept;

// Leaves libcrypto's error queue of the thread as it was: the queue is the application's, our errors are return values.
class ErrorScope {
 public:
  ErrorScope() noexcept;
  ~ErrorScope();
  ErrorScope(const ErrorScope &) = delete;
  ErrorScope &operator=(const ErrorScope &) = delete;
};

// The object kept in `slot`, made when there is none yet. Of several threads that make one at once the first wins, and
// the others release theirs.
template <class T, class Release, class Make>
T *keep_once(std::atomic<T *> &slot, Release release, Make make) noexcept {
  T *kept = slot.load(std::memory_order_acquire);
  if (kept) return kept;
  T *made = make();
  if (!made) return nullptr;
  if (slot.compare_exchange_strong(kept, made, std::memory_order_acq_rel, std::memory_order_acquire)) return made;
  release(made);
  return kept;
}

}  // namespace velcrypto
