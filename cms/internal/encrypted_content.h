// The encrypted content info of a message whose encryption begins.
#pragma once

#include "cms/internal/content_cipher.h"
#include "cms/internal/pkcs7.h"

namespace velpki {

// The algorithm asked for, or the one that was set before; null when there is neither.
const X509_ALGO_IDENTIFIER *content_algorithm(const P7_ENCRYPTED_CONTENT_INFO *info,
                                              const X509_ALGO_IDENTIFIER *asked) noexcept;

struct ContentArguments {
  const X509_ALGO_IDENTIFIER *algorithm;
  const uint8_t *key, *iv;
  bool encrypted_data;  // which may bring its cipher along, and parameters that are kept
};
// Puts a new one with a running cipher in place of what is there. 0, `function` with a reason, or the provider's code.
int replace_encrypted_content(P7_ENCRYPTED_CONTENT_INFO *&place, const ContentArguments &with, int function) noexcept;

}  // namespace velpki
