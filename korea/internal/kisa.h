// The records of kisa.h from the inside.
#pragma once

#include <velpki/kisa.h>

#include "x509/internal/x509v3.h"

namespace velpki {

VELPKI_FLAT(KISA_IDENTIFY_DATA)
VELPKI_FLAT(VID)
VELPKI_FLAT(KISA_HSM_DRIVER_INFO)
VELPKI_FLAT(KISA_HSM_TOKEN_DISTRIBUTION_URL)
VELPKI_FLAT(KISA_HSM_SIGNATURE_VALUE)
VELPKI_FLAT(KISA_HSM_SIGNATURE_TOKEN)

// The code of what has no function code of its own.
inline constexpr int kKisa = kExtensionModule;

int decode(const Tlv &tlv, KISA_IDENTIFY_DATA &out) noexcept;
int encode(const KISA_IDENTIFY_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, VID &out) noexcept;
int encode(const VID &vid, DerWriter &out) noexcept;

// The octets of (text, length) where a negative length measures NUL-terminated text.
inline Octets measured(const char *text, int length) noexcept {
  if (!text) return {};
  return {reinterpret_cast<const uint8_t *>(text), length < 0 ? std::strlen(text) : size_t(length)};
}
inline bool has_oid(const OBJECT_IDENTIFIER *oid, std::string_view dotted) noexcept {
  return oid && text(*oid) == dotted;
}

// A member that is an AlgorithmIdentifier, its code passed up.
inline bool read_algorithm(Cursor &in, X509_ALGO_IDENTIFIER *&out) noexcept {
  Tlv child;
  return in.next(TYPE_SEQUENCE, child) && in.made(out = new_X509_ALGO_IDENTIFIER()) && in.pass(decode(child, *out));
}

// The end of a SEQUENCE that has no further members.
inline bool ends(Cursor &in) noexcept { return in.at_end() || in.stop(Read::malformed); }

}  // namespace velpki
