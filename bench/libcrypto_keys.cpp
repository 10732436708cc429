#include "libcrypto_keys.h"

#include <openssl/evp.h>
#include <openssl/pkcs12.h>

#include <cstdlib>

namespace peer {

namespace {

const EVP_MD *digest_of(const char *name) {
  const EVP_MD *digest = EVP_get_digestbyname(name);
  if (!digest) std::abort();
  return digest;
}

}  // namespace

void pbkdf2(const char *digest, const char *password, int password_length, const unsigned char *salt, int salt_length,
            int iterations, unsigned char *out, int length) {
  if (PKCS5_PBKDF2_HMAC(password, password_length, salt, salt_length, iterations, digest_of(digest), length, out) != 1)
    std::abort();
}

void pkcs12_key(const char *digest, const char *password, int password_length, const unsigned char *salt,
                int salt_length, int id, int iterations, unsigned char *out, int length) {
  unsigned char wide[128];
  int size = 0;
  for (int i = 0; i <= password_length && size + 2 <= int(sizeof wide); ++i) {
    wide[size++] = 0;
    wide[size++] = i < password_length ? static_cast<unsigned char>(password[i]) : 0;
  }
  auto *text = wide;
  auto *octets = const_cast<unsigned char *>(salt);
  if (PKCS12_key_gen_uni(text, size, octets, salt_length, id, iterations, length, out, digest_of(digest)) != 1)
    std::abort();
}

}  // namespace peer
