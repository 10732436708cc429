// The key derivation of PKCS#12 by itself.
#include <velpki/pkcs12.h>

#include "keys/internal/pbe.h"

namespace velpki {

namespace {

int derive_with_unit(Octets password, Octets salt, int id, int iterations, std::span<uint8_t> out,
                     const DIGEST_UNIT *digest) noexcept {
  if (id < 1 || id > 0xFF || out.empty()) return PKV_ERR_BAD_VALUE;
  return derive_pkcs12({password, salt, iterations}, id, PKV_Get_DIGEST_ID(digest), out);
}

int derive_from_text(BmpPassword::Text text, const char *password, int length, const unsigned char *salt,
                     int salt_length, int id, int iterations, int out_length, unsigned char *out,
                     const DIGEST_UNIT *digest) noexcept {
  if (!salt || !out || !digest) return PKV_ERR_NULL;
  if (salt_length < 0 || out_length < 0) return PKV_ERR_BAD_VALUE;
  BmpPassword bmp;
  if (const int code = bmp.set(password, length, text)) return code;
  return derive_with_unit(bmp.octets(), octets_of(salt, salt_length), id, iterations, {out, size_t(out_length)},
                          digest);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int get_PKCS12_key_UNI(const unsigned char *password, int length, const unsigned char *salt, int salt_length, int id,
                       int iterations, int out_length, unsigned char *out, DIGEST_UNIT *digest) noexcept {
  if (!salt || !out || !digest) return PKV_ERR_NULL;
  if (length < 0 || salt_length < 0 || out_length < 0) return PKV_ERR_BAD_VALUE;
  return derive_with_unit(octets_of(password, length), octets_of(salt, salt_length), id, iterations,
                          {out, size_t(out_length)}, digest);
}

int gen_PKCS12_key_ASC(const char *password, int length, const unsigned char *salt, int salt_length, int id,
                       int iterations, int out_length, unsigned char *out, DIGEST_UNIT *digest) noexcept {
  return derive_from_text(BmpPassword::Text::octets, password, length, salt, salt_length, id, iterations, out_length,
                          out, digest);
}

int gen_PKCS12_key_UTF8(const char *password, int length, const unsigned char *salt, int salt_length, int id,
                        int iterations, int out_length, unsigned char *out, DIGEST_UNIT *digest) noexcept {
  return derive_from_text(BmpPassword::Text::utf8, password, length, salt, salt_length, id, iterations, out_length, out,
                          digest);
}
