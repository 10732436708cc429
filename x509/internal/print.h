// What the printers of x509/ share.
#pragma once

#include <string_view>

#include "asn1/internal/print.h"
#include "x509/internal/x509.h"

namespace velpki {

// The registry's names of an OID, or its dotted text when it has no row.
std::string_view short_name(const OBJECT_IDENTIFIER &oid) noexcept;
std::string_view long_name(const OBJECT_IDENTIFIER &oid) noexcept;

inline void print_text(std::string_view text) noexcept { print_visible(octets_of_text(text)); }
void print_value(const ASN1_STRING &value) noexcept;  // text, by its string type
void print_number(const BIGINT *number) noexcept;     // hex, and the end of the line
void print_time(const char *label, const X509_TIME *time) noexcept;

}  // namespace velpki
