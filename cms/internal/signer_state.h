// What a signer keeps beside its members, and its signature in work, as PKCS#7 and CMS share them.
#pragma once

#include "cms/internal/pkcs7.h"
#include "cms/internal/signature.h"

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

template <class Signer>
bool is_started(const Signer &signer) noexcept {
  return signer.state && signer.state->started;
}

// Starts the signature of a signer's key by its algorithms.
template <class Signer>
int start_signer(Signer &signer, const X509_ALGO_IDENTIFIER *signature_algorithm, int function) noexcept {
  ASYMMETRIC_KEY *key = signer.privateKey;
  if (!key) return fail(function, kUnsupported);
  SignatureScheme scheme;
  if (!signature_scheme(signer.digestAlgorithm, signature_algorithm, key->type, scheme)) {
    return fail(function, kBadValue);
  }
  if (const int code = start_signature(*key, scheme, function)) return code;
  P7_SIGNER_STATE *state = new_signer_state({});
  if (!state) return fail(function, kNoMemory);
  state->started = true;
  if (signer.state) Flat<P7_SIGNER_STATE>::release(signer.state);
  signer.state = state;
  return 0;
}

// Feeds content to the signatures in work. Signers that sign their attributes have no use for it here.
template <class Signer, class SignsAttributes>
int feed_signers(const STACK *signers, Octets content, bool (*is_signed)(const Signer &) noexcept,
                 SignsAttributes signs_attributes) noexcept {
  for (Signer *signer : elements<Signer>(signers)) {
    if (!signer || !is_started(*signer) || is_signed(*signer)) continue;
    if (signs_attributes(*signer))
      signer->state->skipped = true;
    else if (const int code = feed_signature(*signer->privateKey, content))
      return code;
  }
  return 0;
}

}  // namespace velpki
