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

// The child of a SignerInfo at an index, counted from its version.
bool child_at(Octets signer_info, int index, Tlv &child) noexcept {
  Tlv parent;
  parent.content = signer_info;
  Cursor in(parent);
  for (int i = 0; i < index; ++i)
    if (!in.next(child)) return false;
  return in.next(child);
}

}  // namespace

// Version, name and digest algorithm stand before the attributes; a name may have their tag.
bool find_kept_attributes(const KeptOctets &kept, Octets &set) noexcept {
  constexpr int kAttributes = 3;
  Tlv child;
  if (kept.kind == Kept::nothing) return false;
  if (kept.kind == Kept::attributes) return set = kept.octets, true;
  if (!child_at(kept.octets, kAttributes, child) || child.identifier != tag::explicit_context(0)) return false;
  set = child.content;
  return true;
}

Octets received_name(const KeptOctets &kept) noexcept {
  Tlv child;
  const bool decoded = kept.kind == Kept::signer || kept.kind == Kept::changed;
  return decoded && child_at(kept.octets, 1, child) ? child.content : Octets();
}

}  // namespace velpki
