// Encoding one value of a C interface type into a unit: what the BER and the DER entry points share.
#pragma once

#include <velpki/asn1.h>

#include "asn1/internal/memory.h"

namespace velpki {

// Length forms of the interface, and the shortest definite one that DER demands.
enum LengthForm { kShort = 0, kLong = 1, kIndefinite = 2, kShortest = 3 };

// Puts identifier, length octets in the given form and a copy of the content into `out`, in place of what it holds.
// False, with `out` as it was, when the form cannot express the length or memory ends. Only a NULL gets no value
// buffer.
bool fill_unit(ASN1_UNIT &out, uint8_t identifier, Octets content, int form) noexcept;

// What the encoders of one value do; the identifier is written as given. False when refused.
bool encode_boolean(ASN1_UNIT &out, uint8_t identifier, const uint8_t *value, int length, int form) noexcept;
bool encode_integer(ASN1_UNIT &out, uint8_t identifier, const BIGINT *value, int length, int form) noexcept;
bool encode_bits(ASN1_UNIT &out, uint8_t identifier, const ASN1_STRING *value, int length, int form) noexcept;
bool encode_null(ASN1_UNIT &out, uint8_t identifier, int length, int form) noexcept;
bool encode_oid(ASN1_UNIT &out, uint8_t identifier, const ASN1_STRING *value, int length, int form,
                bool any_size = false) noexcept;
bool encode_octets(ASN1_UNIT &out, uint8_t identifier, const ASN1_STRING *value, int length, int form) noexcept;

// The encoder of `type`, pseudo type 32 included.
bool encode_value(ASN1_UNIT &out, int type, const void *value, int length, int form) noexcept;

// The types whose value is an encoded unit, and when an append of a list function makes an empty list instead: an
// element type, no length and no constructed value.
bool is_unit_type(int type) noexcept;
bool makes_empty_list(int type, const void *value, int length) noexcept;

// Appends one child of any type to a constructed unit; see addToBERSequence. False when refused, with `seq` untouched.
bool append_value(ASN1_UNIT &seq, int type, void *value, int length, int form) noexcept;

}  // namespace velpki
