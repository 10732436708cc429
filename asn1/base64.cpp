// Base64: every rule, one character at a time; base64_simd.cpp does the long stretches where no rule applies.
#include <velpki/base64.h>

#include <climits>

#include "asn1/internal/base64.h"

namespace velpki {

namespace {

void encode_tail(Octets in, char *out) noexcept {
  if (in.empty()) return;
  const uint32_t group = uint32_t(in[0]) << 16 | (in.size() > 1 ? uint32_t(in[1]) << 8 : 0);
  out[0] = kBase64Alphabet[group >> 18];
  out[1] = kBase64Alphabet[group >> 12 & 63];
  out[2] = in.size() > 1 ? kBase64Alphabet[group >> 6 & 63] : '=';
  out[3] = '=';
}

void encode_line(Octets in, char *out) noexcept {
  const size_t taken = encode_run(in, out);
  encode_tail(in.subspan(taken), out + taken / 3 * 4);
}

// Line feeds that go into a text of `size` characters: between full lines, not after the last.
size_t line_feeds(size_t size, size_t line) noexcept { return line && size ? size / line - (size % line == 0) : 0; }

class Decoder {
 public:
  Decoder(std::string_view text, Strays strays, uint8_t *out) noexcept : rest_(text), strays_(strays), out_(out) {}

  // The octets, or 0 when the text is refused.
  size_t run() noexcept {
    uint8_t *const start = out_;
    while (!rest_.empty()) {
      if (gathered_ == 0 && padding_ == 0) take_groups();
      if (!rest_.empty() && !take_character()) return 0;
    }
    return gathered_ == 0 ? size_t(out_ - start) : 0;
  }

 private:
  void take_groups() noexcept {
    const size_t taken = decode_run(rest_, out_);
    rest_.remove_prefix(taken);
    out_ += taken / 4 * 3;
  }

  bool take_character() noexcept {
    const char c = rest_[0];
    rest_.remove_prefix(1);
    if (c == '\n') return true;
    if (c == '\r') return !rest_.empty() && rest_[0] == '\n';
    if (c == '=') return ++padding_ <= 2 && gather(0, 1);
    const uint8_t value = kBase64Values[uint8_t(c)];
    if (value != kNotBase64) return padding_ == 0 && gather(value, 0);
    if (strays_ == Strays::skip_blanks) return c == ' ' || c == '\t';
    return strays_ == Strays::corrupt && gather(value, 0);
  }

  // A stray's value has eight bits: the upper two spoil the character before it.
  bool gather(uint8_t value, int padding) noexcept {
    group_ = group_ << 6 | value;
    group_padding_ += padding;
    return ++gathered_ < 4 || finish_group();
  }

  bool finish_group() noexcept {
    const int octets = 3 - group_padding_;
    const uint32_t left_over = group_ & ((1u << (24 - 8 * octets)) - 1);
    if (strays_ != Strays::corrupt && left_over) return false;
    for (int i = 0; i < octets; ++i) *out_++ = uint8_t(group_ >> (16 - 8 * i));
    group_ = 0;
    gathered_ = group_padding_ = 0;
    return true;
  }

  std::string_view rest_;
  Strays strays_;
  uint8_t *out_;
  uint32_t group_ = 0;
  int gathered_ = 0, group_padding_ = 0, padding_ = 0;
};

int give_encoded(Octets in, size_t line, char **text) noexcept {
  const size_t size = base64_size(in.size(), line);
  if (!text || size == 0 || size > size_t(INT_MAX)) return 0;
  char *const out = static_cast<char *>(allocate(size + 1));
  if (!out) return 0;
  write_base64(in, line, out);
  out[size] = 0;
  *text = out;
  return int(size);
}

}  // namespace

size_t base64_size(size_t octets, size_t line) noexcept {
  if (octets > size_t(INT_MAX) / 4 * 3) return 0;
  const size_t size = (octets + 2) / 3 * 4;
  return size + line_feeds(size, line);
}

// The characters are written behind the room that the line feeds need; then the lines move up to their places.
void write_base64(Octets in, size_t line, char *out) noexcept {
  const size_t size = base64_size(in.size(), 0);
  size_t feeds = line_feeds(size, line);
  const char *characters = out + feeds;
  encode_line(in, out + feeds);
  for (; feeds; --feeds) {
    std::memmove(out, characters, line);
    out[line] = '\n';
    out += line + 1;
    characters += line;
  }
}

owned<uint8_t> decode_base64(std::string_view text, Strays strays, size_t &length) noexcept {
  length = 0;
  const size_t room = text.size() / 4 * 3 + 1 + kDecodeSlack;
  owned<uint8_t> out = text.empty() ? nullptr : new_octets(room);
  if (!out) return nullptr;
  length = Decoder(text, strays, out.get()).run();
  if (length == 0) {
    PKV_Wipe(out.get(), room);  // a key's first octets must not stay behind
    return nullptr;
  }
  out.get()[length] = 0;
  return out;
}

int give_decoded(std::string_view text, Strays strays, unsigned char **out) noexcept {
  size_t length = 0;
  owned<uint8_t> octets = out ? decode_base64(text, strays, length) : nullptr;
  if (!octets) return 0;
  *out = octets.release();
  return int(length);
}

}  // namespace velpki

using namespace velpki;

namespace {

constexpr size_t kLine = 64;

std::string_view given(const char *text, int length) noexcept {
  return text && length > 0 ? std::string_view(text, size_t(length)) : std::string_view();
}

}  // namespace

int encode_Base64(const unsigned char *data, int length, char **text, int mode) noexcept {
  return give_encoded(octets_of(data, length), mode == 1 ? kLine : 0, text);
}

int encode_Base64_Line(const unsigned char *data, int length, char **text, int line_length) noexcept {
  return line_length < 1 ? 0 : give_encoded(octets_of(data, length), size_t(line_length), text);
}

int decode_Base64(const char *text, int length, unsigned char **out) noexcept {
  return give_decoded(given(text, length), Strays::corrupt, out);
}

int decode_Base64_strict(const char *text, int length, unsigned char **out) noexcept {
  return give_decoded(given(text, length), Strays::refuse, out);
}
