// What a signer keeps beside its members, and its signature in work, as PKCS#7 and CMS share them.
#pragma once

#include "cms/internal/pkcs7.h"
#include "cms/internal/signature.h"

namespace velpki {

// What the octets behind a state are.
enum class Kept : uint8_t {
  nothing,
  signer,      // the content of the SignerInfo that was decoded
  changed,     // the same, of which the signer's name and its signed attributes still hold
  attributes,  // the content of the attributes as they were signed here
};

struct KeptOctets {
  Kept kind = Kept::nothing;
  Octets octets = {};
};

}  // namespace velpki

// One block: the octets stand behind the struct. A signer has a signature in progress or octets, never both.
struct p7_signer_state {
  int size;
  velpki::Kept kept;
  bool started;  // the key of the signer runs a signature
  bool skipped;  // content that came was not fed to it
};

namespace velpki {

// A new state with a copy of the octets, null when memory is exhausted.
P7_SIGNER_STATE *new_signer_state(KeptOctets kept) noexcept;

template <class Signer>
KeptOctets kept_of(const Signer &signer) noexcept {
  if (!signer.state) return {};
  return {signer.state->kept, {reinterpret_cast<const uint8_t *>(signer.state + 1), size_t(signer.state->size)}};
}
// The whole SignerInfo as it was received; empty where it was not, or something has changed.
template <class Signer>
Octets received_of(const Signer &signer) noexcept {
  const KeptOctets kept = kept_of(signer);
  return kept.kind == Kept::signer ? kept.octets : Octets();
}
// The signed attributes among what is kept, the content of their set; false when there are none.
bool find_kept_attributes(const KeptOctets &kept, Octets &set) noexcept;
// The name of a signer that was received, the content behind its version; empty for one that was built here.
Octets received_name(const KeptOctets &kept) noexcept;

// Something else than the signed attributes is about to change.
template <class Signer>
void change_beside_attributes(Signer &signer) noexcept {
  if (signer.state && signer.state->kept == Kept::signer) signer.state->kept = Kept::changed;
}
// The signed attributes are about to change.
template <class Signer>
void change_attributes(Signer &signer) noexcept {
  if (signer.state) signer.state->kept = Kept::nothing;
}

// Writes the signed attributes, which in standard form are the octets that were received or signed.
template <class Signer>
int write_signed_attributes(const Signer &signer, const X509_ATTRIBUTES *attributes, DerWriter &out) noexcept {
  Octets set;
  if (out.rules().standard && find_kept_attributes(kept_of(signer), set)) {
    return out.primitive(tag::explicit_context(0), set), 0;
  }
  return attributes ? encode_attributes(*attributes, out, tag::explicit_context(0)) : 0;
}

template <class Signer>
bool is_started(const Signer &signer) noexcept {
  return signer.state && signer.state->started;
}

// The signature of a signer is in work.
template <class Signer>
int begin_signer(Signer &signer, int function) noexcept {
  P7_SIGNER_STATE *state = new_signer_state({});
  if (!state) return fail(function, kNoMemory);
  state->started = true;
  if (signer.state) Flat<P7_SIGNER_STATE>::release(signer.state);
  signer.state = state;
  return 0;
}

// Starts the signature of a signer's key by its algorithms.
template <class Signer>
int start_signer(Signer &signer, const X509_ALGO_IDENTIFIER *signature_algorithm, int function) noexcept {
  ASYMMETRIC_KEY *key = signer.privateKey;
  SignatureScheme scheme;
  if (!signature_scheme(signer.digestAlgorithm, signature_algorithm, key ? key->type : 0, scheme)) {
    return fail(function, kBadValue);
  }
  if (!key) return fail(function, kUnsupported);
  if (const int code = start_signature(*key, scheme, function)) return code;
  return begin_signer(signer, function);
}

// The signature is made: of the signer's state stays what it signed, the encoded set of its attributes, if it did.
template <class Signer>
bool end_signer(Signer &signer, Octets signed_set) noexcept {
  Tlv set;
  Rules rules;
  P7_SIGNER_STATE *kept = nullptr;
  if (!signed_set.empty()) {
    if (!Tlv::parse(signed_set, rules, set)) return false;
    if (!(kept = new_signer_state({Kept::attributes, set.content}))) return false;
  }
  Flat<P7_SIGNER_STATE>::release(std::exchange(signer.state, kept));
  return true;
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
