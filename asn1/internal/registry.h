// The object registry from the inside: rows by name, by dotted text and by content octets, in one probe of a table that
// is built at compile time. Each look-up gives the lowest row that matches, and 0 for none.
#pragma once

#include <string_view>

#include "asn1/internal/memory.h"

namespace velpki {

inline constexpr int kRegistryRows = 841;

std::string_view row_short_name(int row) noexcept;
std::string_view row_long_name(int row) noexcept;
std::string_view row_text(int row) noexcept;  // dotted; empty for a row without an identifier

int row_of_text(std::string_view dotted) noexcept;
int row_of_short_name(std::string_view name) noexcept;
int row_of_long_name(std::string_view name) noexcept;

// The row whose text is what the content octets of an OBJECT IDENTIFIER decode to. Padded encodings miss: their row is
// found through the text.
int row_of_content(Octets content) noexcept;

}  // namespace velpki
