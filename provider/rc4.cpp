// RC4: a stream cipher, for old password-based containers only.
#include "provider/internal/arguments.h"
#include "provider/internal/libcrypto.h"
#include "provider/internal/memory.h"

using namespace velcrypto;

namespace {

constexpr int kMinKey = 5, kMaxKey = 32;

const EVP_CIPHER *rc4() noexcept {
  static std::atomic<EVP_CIPHER *> kept;
  return keep_once(kept, EVP_CIPHER_free, []() noexcept -> EVP_CIPHER * {
    OSSL_LIB_CTX *context = library_context();
    return context ? EVP_CIPHER_fetch(context, "RC4", nullptr) : nullptr;
  });
}

}  // namespace

int PKV_RC4(const unsigned char *key, int key_length, const unsigned char *in, int length,
            unsigned char *out) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (key_length < kMinKey || key_length > kMaxKey) return PKV_ERR_BAD_VALUE;
  if (int code = check_octets(in, length)) return code;
  if (!length) return 0;
  if (!out) return PKV_ERR_NULL;
  const ErrorScope errors;
  const EVP_CIPHER *cipher = rc4();
  if (!cipher) return PKV_ERR_UNSUPPORTED;
  const owned<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free> context(EVP_CIPHER_CTX_new());
  if (!context) return PKV_ERR_NO_MEMORY;
  int written = 0;
  const bool done = EVP_EncryptInit_ex2(context.get(), cipher, nullptr, nullptr, nullptr) == 1 &&
                    EVP_CIPHER_CTX_set_key_length(context.get(), key_length) == 1 &&
                    EVP_EncryptInit_ex2(context.get(), nullptr, key, nullptr, nullptr) == 1 &&
                    EVP_EncryptUpdate(context.get(), out, &written, in, length) == 1;
  return done ? 0 : PKV_ERR_FAILED;
}
