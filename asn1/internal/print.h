// What printers of records are written with.
#pragma once

#include "asn1/internal/memory.h"

namespace velpki {

// Collects output in a buffer of its own and writes it in large pieces, so that printing takes time in proportion to
// the text and never memory.
class Printer {
 public:
  Printer() noexcept = default;
  Printer(const Printer &) = delete;
  Printer &operator=(const Printer &) = delete;
  ~Printer() { flush(); }
  void put(char c) noexcept {
    if (size_ == sizeof buffer_) flush();
    buffer_[size_++] = c;
  }
  void put(const char *text) noexcept {
    while (*text) put(*text++);
  }
  void put_hex(uint8_t octet) noexcept {
    put("0123456789ABCDEF"[octet >> 4]);
    put("0123456789ABCDEF"[octet & 0x0F]);
  }
  void flush() noexcept;

 private:
  char buffer_[4096];
  size_t size_ = 0;
};

// Text of a stranger: printable characters and valid UTF-8 as they are, every other octet as \xNN.
void print_visible(Octets text) noexcept;

}  // namespace velpki
