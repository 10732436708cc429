// PEM text around Base64.
#include <velpki/pem.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <utility>

#include "asn1/internal/base64.h"

namespace velpki {

namespace {

constexpr std::string_view kBegin = "-----BEGIN ", kEnd = "-----END ", kDashes = "-----";

std::string_view given(const char *text, int length) noexcept {
  return text && length > 0 ? std::string_view(text, size_t(length)) : std::string_view();
}

// Writing.

// Text of a size known beforehand, written from front to back.
class Frame {
 public:
  Frame(size_t base64_size, std::string_view label) noexcept {
    const uint64_t lines = kBegin.size() + kEnd.size() + 2 * (uint64_t(label.size()) + kDashes.size()) + 3;
    const uint64_t size = lines + base64_size;
    if (base64_size == 0 || size > uint64_t(INT_MAX)) return;
    size_ = size_t(size);
    text_.reset(static_cast<char *>(allocate(size_ + 1)));
    at_ = text_.get();
  }
  explicit operator bool() const noexcept { return text_ != nullptr; }
  void put(std::string_view piece) noexcept {
    if (!piece.empty()) std::memcpy(at_, piece.data(), piece.size());
    at_ += piece.size();
  }
  // Room for a piece that the caller writes itself.
  char *skip(size_t size) noexcept { return std::exchange(at_, at_ + size); }
  int give(char **out) noexcept {
    *at_ = 0;
    *out = text_.release();
    return int(size_);
  }

 private:
  size_t size_ = 0;
  owned<char> text_;
  char *at_ = nullptr;
};

void put_begin(Frame &frame, std::string_view label) noexcept {
  for (const std::string_view piece : {kBegin, label, kDashes, std::string_view("\n")}) frame.put(piece);
}
void put_end(Frame &frame, std::string_view label) noexcept {
  for (const std::string_view piece : {std::string_view("\n"), kEnd, label, kDashes, std::string_view("\n")}) {
    frame.put(piece);
  }
}

bool can_frame(const char *label, int label_length, char **out) noexcept { return label && label_length >= 0 && out; }

// Reading.

constexpr size_t kShortestText = 20;

// Where decode_PEM finds its Base64, by the dashes alone.
std::string_view between_dashes(std::string_view text) noexcept {
  if (text.size() < kShortestText || text[0] == '=') return {};
  const size_t dashes = text.find(kDashes, 5);
  if (dashes == text.npos) return {};
  const size_t begin = text.find_first_not_of(" \n\r-", dashes + kDashes.size());
  const size_t end = begin == text.npos ? begin : text.find('-', begin);
  if (end == text.npos) return {};
  std::string_view base64 = text.substr(begin, end - begin);
  if (base64.ends_with('\n')) base64.remove_suffix(1);
  if (base64.ends_with('\r')) base64.remove_suffix(1);
  return base64;
}

bool take(std::string_view &text, std::string_view prefix) noexcept {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool take_line_end(std::string_view &text) noexcept { return take(text, "\n") || take(text, "\r\n"); }

void skip_blanks(std::string_view &text) noexcept {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

// The label of a BEGIN line (RFC 7468 section 3), with the text moved behind the line; nothing when it is no such line.
std::optional<std::string_view> take_begin_line(std::string_view &text, bool lax) noexcept {
  std::string_view rest = text;
  if (!take(rest, kBegin)) return std::nullopt;
  const std::string_view line = rest.substr(0, rest.find('\n'));
  const size_t size = line.find(kDashes);
  if (size == line.npos) return std::nullopt;
  const std::string_view label = rest.substr(0, size);
  for (const char c : label)
    if (c < 0x20 || c > 0x7E) return std::nullopt;
  rest.remove_prefix(size + kDashes.size());
  if (lax) skip_blanks(rest);
  if (!take_line_end(rest)) return std::nullopt;
  text = rest;
  return label;
}

bool take_end_line(std::string_view &text, std::string_view label, bool lax) noexcept {
  if (!take(text, kEnd) || !take(text, label) || !take(text, kDashes)) return false;
  if (lax) skip_blanks(text);
  return take_line_end(text) || text.empty() || lax;
}

// The Base64 between the lines: up to the first dash, which begins a line. Nothing when there is none.
std::optional<std::string_view> take_body(std::string_view &text) noexcept {
  const size_t end = text.find('-');
  if (end == text.npos || end == 0 || text[end - 1] != '\n') {
    text.remove_prefix(std::min(end, text.size()));
    return std::nullopt;
  }
  const std::string_view body = text.substr(0, end);
  text.remove_prefix(end);
  return body;
}

// Moves `text` behind the next BEGIN line with the label wanted.
std::optional<std::string_view> find_begin_line(std::string_view &text, const char *wanted) noexcept {
  while (!text.empty()) {
    const std::optional<std::string_view> label = take_begin_line(text, true);
    if (label && (!wanted || *label == wanted)) return label;
    if (!label) text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
  return std::nullopt;
}

int decode_next(std::string_view &text, const char *wanted, std::string_view &label, unsigned char **out) noexcept {
  const std::optional<std::string_view> found = find_begin_line(text, wanted);
  if (!found) return 0;
  label = *found;
  const std::optional<std::string_view> body = take_body(text);
  if (!body || !take_end_line(text, label, true)) return 0;
  return give_decoded(*body, Strays::skip_blanks, out);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int base64ToPEM(const char *base64, int length, const char *label, int label_length, char **out) noexcept {
  const std::string_view text = given(base64, length), name = given(label, label_length);
  if (!can_frame(label, label_length, out)) return 0;
  Frame frame(text.size(), name);
  if (!frame) return 0;
  put_begin(frame, name);
  frame.put(text);
  put_end(frame, name);
  return frame.give(out);
}

int encode_PEM(const unsigned char *data, int length, const char *label, int label_length, char **out,
               int mode) noexcept {
  const Octets octets = octets_of(data, length);
  const std::string_view name = given(label, label_length);
  const size_t line = mode == 1 ? 64 : 0, size = base64_size(octets.size(), line);
  if (!can_frame(label, label_length, out)) return 0;
  Frame frame(size, name);
  if (!frame) return 0;
  put_begin(frame, name);
  write_base64(octets, line, frame.skip(size));
  put_end(frame, name);
  return frame.give(out);
}

int decode_PEM(const char *text, int length, unsigned char **out) noexcept {
  return give_decoded(between_dashes(given(text, length)), Strays::corrupt, out);
}

int decode_PEM_strict(const char *text, int length, unsigned char **out) noexcept {
  std::string_view rest = given(text, length);
  const std::optional<std::string_view> label = take_begin_line(rest, false);
  const std::optional<std::string_view> body = label ? take_body(rest) : std::nullopt;
  if (!body || !take_end_line(rest, *label, false)) return 0;
  if (rest.find_first_not_of("\r\n") != rest.npos) return 0;
  return give_decoded(*body, Strays::refuse, out);
}

int decode_PEM_ex(const char *text, int length, const char *wanted, const char **label, int *label_length,
                  int *consumed, unsigned char **out) noexcept {
  const std::string_view all = given(text, length);
  std::string_view rest = all, found;
  const int decoded = out ? decode_next(rest, wanted, found, out) : 0;
  if (label) *label = found.data();
  if (label_length) *label_length = int(found.size());
  if (consumed) *consumed = int(all.size() - rest.size());
  return decoded;
}
