// The provider's own libcrypto context, and the digests fetched from it.
//
// What is made here lives as long as the process and is not released at its end: objects that the application destroys
// late, in whatever order, still find it. A maker that loses the race with another thread releases its own result, so
// no lock is needed, and a failure is not kept: the next call tries again.
#include "provider/internal/libcrypto.h"

#include <openssl/err.h>
#include <openssl/provider.h>
#include <velpki/pkv.h>

#include <atomic>
#include <cstddef>
#include <iterator>

#include "provider/internal/memory.h"

namespace velcrypto {
namespace {

// libcrypto's exit handler would take its locks and generators away under objects that an application destroys after
// it: signing there would crash. It must be declined before anything else calls libcrypto, hence as the library loads.
[[gnu::constructor]] void decline_exit_handler() noexcept { OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr); }

using ContextOwner = owned<OSSL_LIB_CTX, OSSL_LIB_CTX_free>;

OSSL_LIB_CTX *make_context() noexcept {
  const ErrorScope errors;
  ContextOwner context(OSSL_LIB_CTX_new());
  if (!context || !OSSL_PROVIDER_load(context.get(), "default")) return nullptr;
  // Without the legacy module only its algorithms are missing: single DES, SEED, RC2, RC4 and Blowfish.
  (void)OSSL_PROVIDER_load(context.get(), "legacy");
  return context.release();
}

struct DigestName {
  int id;
  const char *name;
};
constexpr DigestName kDigests[] = {
    {PKV_DIGEST_SHA1, "SHA1"},       {PKV_DIGEST_SHA224, "SHA2-224"}, {PKV_DIGEST_SHA256, "SHA2-256"},
    {PKV_DIGEST_SHA384, "SHA2-384"}, {PKV_DIGEST_SHA512, "SHA2-512"}, {PKV_DIGEST_MD5, "MD5"},
};
std::atomic<EVP_MD *> fetched[std::size(kDigests)];

size_t digest_index(int digest_id) noexcept {
  size_t i = 0;
  while (i < std::size(kDigests) && kDigests[i].id != (digest_id & ~PKV_HMAC_FLAG)) ++i;
  return i;
}

}  // namespace

ErrorScope::ErrorScope() noexcept { ERR_set_mark(); }
ErrorScope::~ErrorScope() { ERR_pop_to_mark(); }

int code_of_failure(int otherwise) noexcept {
  return ERR_GET_REASON(ERR_peek_last_error()) == ERR_R_MALLOC_FAILURE ? PKV_ERR_NO_MEMORY : otherwise;
}

OSSL_LIB_CTX *library_context() noexcept {
  static std::atomic<OSSL_LIB_CTX *> kept;
  return keep_once(kept, OSSL_LIB_CTX_free, make_context);
}

const EVP_MD *libcrypto_digest(int digest_id) noexcept {
  const size_t i = digest_index(digest_id);
  if (i == std::size(kDigests)) return nullptr;
  return keep_once(fetched[i], EVP_MD_free, [i]() noexcept -> EVP_MD * {
    const ErrorScope errors;
    OSSL_LIB_CTX *context = library_context();
    return context ? EVP_MD_fetch(context, kDigests[i].name, nullptr) : nullptr;
  });
}

const char *libcrypto_digest_name(int digest_id) noexcept {
  const size_t i = digest_index(digest_id);
  return i == std::size(kDigests) ? nullptr : kDigests[i].name;
}

}  // namespace velcrypto
