// A digest in progress, whichever library computes it.
#pragma once

#include <openssl/evp.h>

#include <span>

#include "provider/internal/has160.h"
#include "provider/internal/mdc2.h"
#include "provider/internal/memory.h"

namespace velcrypto {

struct DigestInfo {
  enum Engine { kLibcrypto, kHas160, kMdc2 };
  int id;
  int length;
  int block_length;
  Engine engine;
};

// Null for an unknown identifier, and for one with PKV_HMAC_FLAG.
const DigestInfo *find_digest(int digest_id) noexcept;

// Makes `to` a digest in the state of `from`; false, with `to` not started, when memory is exhausted.
bool copy_digest(DIGEST_UNIT &to, const DIGEST_UNIT &from) noexcept;

class LibcryptoDigest {
 public:
  bool start(const EVP_MD *algorithm) noexcept;
  bool update(std::span<const uint8_t> data) noexcept;
  bool finish(uint8_t *out) noexcept;
  bool copy_from(const LibcryptoDigest &other) noexcept;

 private:
  owned<EVP_MD_CTX, EVP_MD_CTX_free> context_;
};

}  // namespace velcrypto

// `info` is null before Init, after Final and after a failure: then only Init leads on.
struct pkv_digest {
  const velcrypto::DigestInfo *info = nullptr;
  velcrypto::LibcryptoDigest libcrypto;
  velcrypto::Has160 has160;
  velcrypto::Mdc2 mdc2;
};
