#include "cms/internal/strict_key.h"

namespace velpki {

int padding_of(const X509_ALGO_IDENTIFIER *algorithm) noexcept {
  if (!algorithm || !algorithm->algorithm) return 0;
  if (index_from_OBJECT_IDENTIFIER(algorithm->algorithm) == row::kRsaesOaep) return PKV_RSA_OAEP;
  return get_CipherID_from_OID(algorithm->algorithm) == PKV_KEY_RSA ? PKV_RSA_PKCS1_CRYPT : 0;
}

int recover_key(const RSA_UNIT &key, const X509_ALGO_IDENTIFIER &algorithm, int padding, Octets encrypted,
                SecretOctets &out) noexcept {
  SecretOctets found(size_t(out.size()));
  if (!found || !out) return PKV_ERR_NO_MEMORY;
  std::memset(found.data(), 0, size_t(found.size()));
  if (const int code = PKV_Rand_Bytes(out.data(), out.size())) return code;
  const int code = unwrap_key(key, algorithm, padding, encrypted, out.size(), found.data());
  if (code == PKV_ERR_NO_MEMORY) return code;
  const uint8_t take = uint8_t((unsigned(code) | (0u - unsigned(code))) >> 31) - 1;  // ones for 0, else zeros
  for (int i = 0; i < out.size(); ++i) {
    out.data()[i] = uint8_t((found.data()[i] & take) | (out.data()[i] & uint8_t(~take)));
  }
  return 0;
}

}  // namespace velpki
