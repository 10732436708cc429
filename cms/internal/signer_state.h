// What a P7_SIGNER_INFO keeps beside its members.
#pragma once

#include "cms/internal/pkcs7.h"

// One block: the octets stand behind the struct. A signer has a signature in progress or was decoded, never both.
struct p7_signer_state {
  int received;  // octets of the content of the SignerInfo that was decoded; 0 for none
  bool started;  // the key of the signer runs a signature
  bool skipped;  // content that came was not fed to it
};

namespace velpki {

template <class Signer>
Octets received_of(const Signer &signer) noexcept {
  if (!signer.state) return {};
  return {reinterpret_cast<const uint8_t *>(signer.state + 1), size_t(signer.state->received)};
}
// A new state with a copy of the octets, null when memory is exhausted.
P7_SIGNER_STATE *new_signer_state(Octets received) noexcept;

}  // namespace velpki
