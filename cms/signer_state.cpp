#include "cms/internal/signer_state.h"

namespace velpki {

void Flat<P7_SIGNER_STATE>::release(P7_SIGNER_STATE *state) noexcept { velpki::release(state); }

P7_SIGNER_STATE *new_signer_state(KeptOctets kept) noexcept {
  if (kept.octets.size() > INT_MAX) return nullptr;
  auto *state = static_cast<P7_SIGNER_STATE *>(allocate(sizeof(P7_SIGNER_STATE) + kept.octets.size()));
  if (!state) return nullptr;
  *state = {int(kept.octets.size()), kept.kind, false, false};
  copy_octets(state + 1, kept.octets);
  return state;
}

namespace {

// Takes children of a SignerInfo up to the one at an index, counted from its version.
bool take_up_to(Cursor &in, int index, Tlv &child) noexcept {
  for (int i = 0; i <= index; ++i)
    if (!in.next(child)) return false;
  return true;
}

Tlv parent_of(Octets content) noexcept {
  Tlv parent;
  parent.content = content;
  return parent;
}

}  // namespace

// Version, name and digest algorithm stand before the attributes; a name may have their tag. Of several sets the last
// one counts, as for the decoder.
bool find_kept_attributes(const KeptOctets &kept, Octets &set) noexcept {
  constexpr int kDigestAlgorithm = 2;
  Tlv child;
  if (kept.kind == Kept::nothing) return false;
  if (kept.kind == Kept::attributes) return set = kept.octets, true;
  Cursor in(parent_of(kept.octets));
  bool found = false;
  if (!take_up_to(in, kDigestAlgorithm, child)) return false;
  while (in.at(tag::explicit_context(0)) && in.next(child)) set = child.content, found = true;
  return found;
}

Octets received_name(const KeptOctets &kept) noexcept {
  Tlv child;
  const bool decoded = kept.kind == Kept::signer || kept.kind == Kept::changed;
  Cursor in(parent_of(kept.octets));
  return decoded && take_up_to(in, 1, child) ? child.content : Octets();
}

}  // namespace velpki
