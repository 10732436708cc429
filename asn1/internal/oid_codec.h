// Object identifiers between dotted text and content octets (X.690 8.19).
#pragma once

#include <velpki/asn1.h>

#include <string_view>

#include "asn1/internal/string.h"

namespace velpki {

class DerWriter;

// Text of at most 99 characters, arcs up to 2147483647; 0 when the content is empty, unfinished or does not fit. `out`
// receives no terminating zero. A single subidentifier leaves a trailing dot.
inline constexpr size_t kOidTextRoom = 100;
size_t oid_text(Octets content, char (&out)[kOidTextRoom]) noexcept;

// Appends the content octets of dotted text; false for an arc, or a value to be written, above 2147483647 or below 0.
// Pieces are read as `atoi` does, a final empty piece is no arc.
bool write_oid_content(std::string_view text, DerWriter &out) noexcept;

// The forms without those limits: arcs of any size (up to 20,000 digits), at least two, the first 0 to 2 and the second
// below 40 under 0 and 1; content without padding (X.690 8.19.2). False is for text that is none; what memory cannot
// hold shows in the writer.
Read read_oid_any_size(Octets content, OBJECT_IDENTIFIER *&out) noexcept;
bool write_oid_content_any_size(std::string_view text, DerWriter &out) noexcept;

}  // namespace velpki
