// Encryption of a message's content, as PKCS#7 and CMS share it.
#pragma once

#include "cms/internal/message.h"

// What an encryption in progress keeps beside its message.
struct content_encryption {
  size_t block;     // octets of a block; 1 where the mode needs none
  bool padded;      // a final block of padding is due
  size_t buffered;  // octets that wait in the cipher for their block to be full
  size_t capacity;  // octets allocated for the encrypted content while it grows
};
typedef struct content_encryption CONTENT_ENCRYPTION;

namespace velpki {

template <>
struct Flat<BLOCK_CIPHER_UNIT> {
  static void release(BLOCK_CIPHER_UNIT *unit) noexcept { PKV_Free_BLOCK_CIPHER(unit); }
};
template <>
struct Flat<CONTENT_ENCRYPTION> {
  static void release(CONTENT_ENCRYPTION *progress) noexcept { velpki::release(progress); }
};

}  // namespace velpki
