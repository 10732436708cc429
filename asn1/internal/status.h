// Status codes from the inside.
#pragma once

#include <velpki/asn1_error.h>

namespace velpki {

// Reasons in the provider's numbering that the library gives as well.
inline constexpr int kFailedStep = 0x12;
inline constexpr int kBadValue = 0x2B;
inline constexpr int kNoMemory = 0x3C;
inline constexpr int kUnsupported = 0x48;
inline constexpr int kNullArgument = 0x49;
inline constexpr int kMismatch = 0x5E;

[[nodiscard]] constexpr int fail(int function, int reason) noexcept { return function | reason; }
constexpr int reason_of(int code) noexcept { return code & ERR_MASK; }

}  // namespace velpki
