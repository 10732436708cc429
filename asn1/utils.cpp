// Diagnostic printers.
#include <velpki/utils.h>

#include <algorithm>
#include <cstdio>

#include "asn1/internal/print.h"
#include "asn1/internal/string.h"

namespace velpki {

void Printer::flush() noexcept {
  std::fwrite(buffer_, 1, size_, stdout);
  size_ = 0;
}

namespace {

bool is_printable(uint8_t c) noexcept { return c >= 0x20 && c < 0x7F; }

// The octets of the UTF-8 character at the start of `text`; 0 when it is none, or a control character (U+0080 to
// U+009F).
size_t utf8_length(Octets text) noexcept {
  const uint8_t lead = text[0];
  const size_t length = lead >= 0xF0 && lead < 0xF5 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  if (lead >= 0xF5 || length == 0 || length > text.size()) return 0;
  uint32_t c = lead & (0x7Fu >> length);
  for (const uint8_t octet : text.subspan(1, length - 1)) {
    if ((octet & 0xC0) != 0x80) return 0;
    c = c << 6 | (octet & 0x3F);
  }
  const bool shortest = c >= (length == 2 ? 0x80u : length == 3 ? 0x800u : 0x10000u);
  const bool surrogate = c >= 0xD800 && c < 0xE000;
  // Direction marks reorder a terminal's line, so they are shown as octets.
  const bool reorders = (c >= 0x200E && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
  return shortest && !surrogate && !reorders && c >= 0xA0 && c <= 0x10FFFF ? length : 0;
}

void put_visible(Octets &text, Printer &out) noexcept {
  const size_t length = is_printable(text[0]) ? 1 : utf8_length(text);
  for (const uint8_t octet : text.first(length)) out.put(char(octet));
  if (length == 0) {
    out.put("\\x");
    out.put_hex(text[0]);
  }
  text = text.subspan(length ? length : 1);
}

void put_pairs(Octets octets, Printer &out) noexcept {
  for (size_t i = 0; i < octets.size(); ++i) {
    if (i) out.put(':');
    out.put_hex(octets[i]);
  }
}

void put_text(Octets text, Printer &out) noexcept {
  while (!text.empty()) {
    const size_t length = is_printable(text[0]) ? 1 : utf8_length(text);
    for (const uint8_t octet : text.first(length)) out.put(char(octet));
    if (length == 0) out.put('.');
    text = text.subspan(length ? length : 1);
  }
}

constexpr size_t kDumpWidth = 16;

void put_dump_line(size_t offset, Octets line, Printer &out) noexcept {
  for (int shift = 24; shift >= 0; shift -= 8) out.put_hex(uint8_t(offset >> shift));
  out.put("  ");
  for (size_t i = 0; i < kDumpWidth; ++i) {
    if (i < line.size())
      out.put_hex(line[i]);
    else
      out.put("  ");
    out.put(' ');
  }
  out.put(' ');
  for (const uint8_t c : line) out.put(is_printable(c) ? char(c) : '.');
  out.put('\n');
}

void put_dump(Octets octets, Printer &out) noexcept {
  for (size_t at = 0; at < octets.size(); at += kDumpWidth) {
    put_dump_line(at, octets.subspan(at, std::min(kDumpWidth, octets.size() - at)), out);
  }
}

Octets text_octets(const char *text, int length) noexcept {
  return octets_of(reinterpret_cast<const unsigned char *>(text), length);
}

}  // namespace

void print_visible(Octets text) noexcept {
  Printer out;
  while (!text.empty()) put_visible(text, out);
}

}  // namespace velpki

using namespace velpki;

void print_hex_no_nl(const unsigned char *data, int length) noexcept {
  Printer out;
  put_pairs(octets_of(data, length), out);
}

void print_hex_nl(const unsigned char *data, int length) noexcept {
  const Octets octets = octets_of(data, length);
  Printer out;
  put_pairs(octets, out);
  if (!octets.empty()) out.put('\n');
}

void print_hex(const unsigned char *data, int length) noexcept { print_hex_nl(data, length); }

void dump_hex(const unsigned char *data, int length) noexcept {
  Printer out;
  put_dump(octets_of(data, length), out);
}

void print_PCHAR(const char *text, int length) noexcept {
  Printer out;
  put_text(text_octets(text, length), out);
}

void dump_PCHAR(const char *text, int length) noexcept {
  const Octets octets = text_octets(text, length);
  Printer out;
  put_text(octets, out);
  if (!octets.empty()) out.put('\n');
}

void print_ASN1STRING(const ASN1_STRING *string) noexcept {
  if (string) dump_PCHAR(reinterpret_cast<const char *>(string->data), string->length);
}

void dump_ASN1STRING(const ASN1_STRING *string) noexcept {
  if (!string) return;
  std::printf("type %02X, %d octets\n", unsigned(string->type), string->length);
  dump_hex(string->data, string->length);
}
