// ASN1_STRING and its named types from the inside: one block for record and octets.
#pragma once

#include <velpki/ber.h>

#include <string_view>

#include "asn1/internal/memory.h"
#include "asn1/internal/tlv.h"

namespace velpki {

template <>
struct Flat<ASN1_STRING> {
  static void release(ASN1_STRING *string) noexcept { free_ASN1_STRING(string); }
  static ASN1_STRING *copy(const ASN1_STRING *string) noexcept { return dup_ASN1_STRING(string); }
};
template <>
struct Flat<ASN1_UNIT> {
  static void release(ASN1_UNIT *unit) noexcept { free_ASN1_UNIT(unit); }
  static ASN1_UNIT *copy(const ASN1_UNIT *unit) noexcept { return dup_ASN1_UNIT_strict(unit); }
};
template <>
struct Flat<ASN1_TIME> {
  static void release(ASN1_TIME *time) noexcept { free_ASN1_TIME(time); }
  static ASN1_TIME *copy(const ASN1_TIME *time) noexcept { return dup_ASN1_TIME(time); }
};

// A new string with a copy of the octets behind the record, in one block; two zero octets follow them. Null when memory
// is exhausted or the length is above INT_MAX.
ASN1_STRING *new_string(int type, Octets data, int unused_bits = 0, const char *file = __builtin_FILE(),
                        int line = __builtin_LINE()) noexcept;

// Appends to the octets of a string; false with the string as it was when memory is exhausted.
bool append_octets(ASN1_STRING &string, Octets more) noexcept;

inline Octets octets(const ASN1_STRING &string) noexcept { return octets_of(string.data, string.length); }
inline std::string_view text(const ASN1_STRING &string) noexcept {
  const Octets data = octets(string);
  return {reinterpret_cast<const char *>(data.data()), data.size()};
}
inline Octets octets_of_text(std::string_view text) noexcept {
  return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}
// Whether the two hold the same octets; the type and the unused bits do not count. Null holds nothing and equals
// nothing.
bool same_octets(const ASN1_STRING *a, const ASN1_STRING *b) noexcept;

// The `unused_bits` of a time, of tag number `type`: by the length for those of the usual forms, else by the last
// octet. Nothing may decide anything by it.
int time_flag(int type, Octets text) noexcept;

// Dotted decimal text as new_OBJECT_IDENTIFIER takes it.
bool is_dotted_decimal(std::string_view text) noexcept;

// Which of the two outcomes without a value it was.
enum class Read { ok, malformed, no_memory };

// The content of an encoded value as a string of `type`, or with `any` of the identifier found; `out` is set on ok
// only.
Read read_string(const Tlv &tlv, int type, ASN1_STRING *&out) noexcept;
Read read_any_string(const Tlv &tlv, ASN1_STRING *&out) noexcept;
Read read_oid(Octets content, OBJECT_IDENTIFIER *&out) noexcept;

// Whether the universal number is one of the string and time types, which have an encoder of their own.
bool is_string_type(int number) noexcept;

}  // namespace velpki
