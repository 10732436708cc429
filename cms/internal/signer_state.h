// What a P7_SIGNER_INFO keeps beside its members.
#pragma once

#include "cms/internal/pkcs7.h"

// One block: the octets stand behind the struct. A signer has a signature in progress or was decoded, never both.
struct p7_signer_state {
  int received;  // octets of the SignerInfo that was decoded; 0 for none
  bool started;  // the key of the signer runs a signature
  bool fed;      // and was given the content as it came
};

namespace velpki {

inline Octets received_of(const P7_SIGNER_INFO &signer) noexcept {
  if (!signer.state) return {};
  return {reinterpret_cast<const uint8_t *>(signer.state + 1), size_t(signer.state->received)};
}
// A new state with a copy of the octets, null when memory is exhausted.
P7_SIGNER_STATE *new_signer_state(Octets received) noexcept;

}  // namespace velpki
