// The key of a content out of a recipient of any kind.
#pragma once

#include "cms/internal/cms.h"
#include "cms/internal/key_encryption.h"

namespace velpki {

// The recipient that an opener can open.
struct OpenableRecipient {
  const CMS_RECIPIENT_INFO *recipient = nullptr;
  const RECIPIENT_ENCRYPTED_KEY *encrypted_key = nullptr;  // of key agreement
  int index = -1;
};
// The first recipient that the opener's certificate, key identifier or password fits: 0, or `function` with 49 or 2B.
int find_openable(const CMS_RECIPIENT_INFOS *recipients, const CMS_OPENER &opener, int function,
                  OpenableRecipient &out) noexcept;

// The key in it, of exactly `out.size()` octets. Where a password or a key-encryption key does not open it, those
// behind it that the opener fits are tried. With `decoy` whatever is wrong with the wrapped key of the last gives a
// random one after the same work.
int open_key(const CMS_CONTENT_INFO &cms, const OpenableRecipient &from, const CMS_OPENER &opener, bool decoy,
             int function, SecretOctets &out) noexcept;

}  // namespace velpki
