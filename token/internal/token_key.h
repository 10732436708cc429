// What signing with a token's key and reading its public part share.
#pragma once

#include <velpki/token_key.h>

#include "asn1/internal/status.h"

namespace velpki {

// Keeps the token's answer and turns it into a code.
inline int answered(P11_KEY &key, CK_RV result) noexcept {
  key.last_result = result;
  switch (result) {
    case CKR_OK:
      return 0;
    case CKR_HOST_MEMORY:
      return kNoMemory;
    case CKR_MECHANISM_INVALID:
    case CKR_MECHANISM_PARAM_INVALID:
    case CKR_KEY_TYPE_INCONSISTENT:
      return kUnsupported;
    default:
      return kFailedStep;
  }
}

}  // namespace velpki
