// Base64 from the inside.
#pragma once

#include <array>
#include <string_view>

#include "asn1/internal/memory.h"

namespace velpki {

inline constexpr std::string_view kBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr uint8_t kNotBase64 = 0xFF;
inline constexpr auto kBase64Values = [] {
  std::array<uint8_t, 256> values{};
  values.fill(kNotBase64);
  for (size_t i = 0; i < kBase64Alphabet.size(); ++i) values[uint8_t(kBase64Alphabet[i])] = uint8_t(i);
  return values;
}();

// The simple cases, many at a time; see base64_simd.cpp. `encode_run` writes whole groups of three octets and returns
// the octets taken. `decode_run` takes groups of four characters of the alphabet up to the first other character and
// returns the characters taken; it may write up to kDecodeSlack octets past those that belong to them.
inline constexpr size_t kDecodeSlack = 8;
size_t encode_run(Octets in, char *out) noexcept;
size_t decode_run(std::string_view text, uint8_t *out) noexcept;

// What becomes of characters that are neither of the alphabet nor "=", CR or LF.
enum class Strays { corrupt, refuse, skip_blanks };

// The octets of Base64 text, with a zero octet after them; null when it is refused or there are none.
owned<uint8_t> decode_base64(std::string_view text, Strays strays, size_t &length) noexcept;
// The same as a result of the interface.
int give_decoded(std::string_view text, Strays strays, unsigned char **out) noexcept;

// The characters that octets take in lines of `line` characters (0: in one line), and their writing. A number above
// INT_MAX is 0 or what it is: it never wraps.
size_t base64_size(size_t octets, size_t line) noexcept;
void write_base64(Octets in, size_t line, char *out) noexcept;

}  // namespace velpki
