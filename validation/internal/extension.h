// Extensions of a certificate by their OID.
#pragma once

#include "x509/internal/x509.h"

namespace velpki {

// The first of an OID; null where there is none.
inline const X509_EXTENSION *find_extension(const X509_EXTENSIONS *extensions, std::string_view oid) noexcept {
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(extensions))
    if (each && each->object && each->value && text(*each->object) == oid) return each;
  return nullptr;
}

// The value of an extension in house form; false where it is none.
inline bool value_of(const X509_EXTENSION &extension, Tlv &out) noexcept {
  Rules rules;
  return Tlv::parse(octets(*extension.value), rules, out);
}

}  // namespace velpki
