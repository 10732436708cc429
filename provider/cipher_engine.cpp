// The table of block ciphers, and the engine of those that libcrypto has.
#include <openssl/core_names.h>
#include <openssl/params.h>

#include <cstdio>
#include <iterator>

#include "provider/internal/cipher.h"
#include "provider/internal/libcrypto.h"

namespace velcrypto {
namespace {

constexpr CipherInfo kCiphers[] = {
    {0x01000100, "AES-128", 16, 16, 16, 16, 0},  {0x01000200, "AES-192", 16, 24, 24, 24, 0},
    {0x01000300, "AES-256", 16, 32, 32, 32, 0},  {0x02000000, "DES", 8, 8, 8, 8, 0},
    {0x02000100, "DES", 8, 8, 8, 8, 0},          {0x02000200, "DES-EDE", 8, 16, 16, 16, 0},
    {0x02001200, "DES-EDE", 8, 16, 16, 16, 0},   {0x02010200, "DES-EDE3", 8, 24, 24, 24, 0},
    {0x03000100, "ARIA-128", 16, 16, 16, 16, 0}, {0x03000200, "ARIA-192", 16, 24, 24, 24, 0},
    {0x03000300, "ARIA-256", 16, 32, 32, 32, 0}, {0x04000100, "SEED", 16, 16, 16, 16, 0},
    {0x05000100, nullptr, 8, 16, 1, 255, 0},     {0x06000100, "BF", 8, 16, 4, 56, 0},
    {0x07000100, "RC2", 8, 16, 16, 16, 128},     {0x07000200, "RC2", 8, 5, 5, 5, 40},
    {0x07000300, "RC2", 8, 8, 8, 8, 64},
};
constexpr const char *kModeNames[] = {"ECB", "CBC", "CFB", "OFB"};
constexpr int kModeStep = PKV_MODE_CBC - PKV_MODE_ECB;

std::atomic<EVP_CIPHER *> fetched[std::size(kCiphers)][std::size(kModeNames)];

EVP_CIPHER *fetch(const CipherInfo &info, size_t mode) noexcept {
  OSSL_LIB_CTX *context = library_context();
  char name[16];
  std::snprintf(name, sizeof name, "%s-%s", info.name, kModeNames[mode]);
  return context ? EVP_CIPHER_fetch(context, name, nullptr) : nullptr;
}

const EVP_CIPHER *libcrypto_cipher(const CipherInfo &info, int mode) noexcept {
  const size_t at = size_t(mode / kModeStep);
  return keep_once(fetched[&info - kCiphers][at], EVP_CIPHER_free, [&info, at]() noexcept { return fetch(info, at); });
}

bool set_key_size(EVP_CIPHER_CTX *context, const EVP_CIPHER *cipher, const CipherStart &with) noexcept {
  size_t length = with.key.size(), rc2_bits = with.info->rc2_bits;
  const OSSL_PARAM end = OSSL_PARAM_construct_end();
  const OSSL_PARAM bits = OSSL_PARAM_construct_size_t(OSSL_CIPHER_PARAM_RC2_KEYBITS, &rc2_bits);
  const OSSL_PARAM params[] = {OSSL_PARAM_construct_size_t(OSSL_CIPHER_PARAM_KEYLEN, &length), rc2_bits ? bits : end,
                               end};
  return EVP_CipherInit_ex2(context, cipher, nullptr, nullptr, with.encrypt, params) == 1;
}

}  // namespace

const CipherInfo *find_cipher(int cipher_id) noexcept {
  const int mode = cipher_mode(cipher_id);
  if (mode % kModeStep || mode > PKV_MODE_OFB) return nullptr;
  for (const CipherInfo &info : kCiphers) {
    if (info.id == (cipher_id & ~0xFF)) return &info;
  }
  return nullptr;
}

int LibcryptoCipher::start(const CipherStart &with) noexcept {
  const ErrorScope errors;
  const EVP_CIPHER *cipher = libcrypto_cipher(*with.info, with.mode);
  if (!cipher) return library_context() ? PKV_ERR_UNSUPPORTED : PKV_ERR_NO_MEMORY;
  if (!context_) context_.reset(EVP_CIPHER_CTX_new());
  if (!context_) return PKV_ERR_NO_MEMORY;
  EVP_CIPHER_CTX *context = context_.get();
  const bool fixed = with.info->key_min == with.info->key_max && !with.info->rc2_bits;
  // Where the length of the key is a choice it comes first: the key schedule is made when the key arrives.
  if (!fixed && !set_key_size(context, cipher, with)) return PKV_ERR_FAILED;
  const bool started =
      EVP_CipherInit_ex2(context, fixed ? cipher : nullptr, with.key.data(), with.iv, with.encrypt, nullptr) == 1 &&
      EVP_CIPHER_CTX_set_padding(context, 0) == 1;
  return started ? 0 : PKV_ERR_FAILED;
}

bool LibcryptoCipher::process(std::span<const uint8_t> in, uint8_t *out) noexcept {
  int length = 0;
  return EVP_CipherUpdate(context_.get(), out, &length, in.data(), int(in.size())) == 1 && size_t(length) == in.size();
}

}  // namespace velcrypto
