#include "asn1/internal/oid_codec.h"

#include <algorithm>

#include "asn1/internal/registry.h"
#include "asn1/internal/string.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

constexpr int64_t kLargestArc = 2147483647;

// Takes one subidentifier off the front of `content`; false when it is unfinished or above 2147483647.
bool take_subidentifier(Octets &content, uint32_t &value) noexcept {
  uint64_t sum = 0;
  for (size_t i = 0; i < content.size(); ++i) {
    sum = sum << 7 | (content[i] & 0x7F);
    if (sum > uint64_t(kLargestArc)) return false;
    if (content[i] & 0x80) continue;
    content = content.subspan(i + 1);
    value = uint32_t(sum);
    return true;
  }
  return false;
}

// Text that grows in a buffer of fixed size.
struct Text {
  char (&room)[kOidTextRoom];
  size_t length = 0;
  bool append(char c) noexcept {
    if (length + 1 >= kOidTextRoom) return false;
    room[length++] = c;
    return true;
  }
  bool append_number(uint32_t value) noexcept {
    size_t digits = 1;
    for (uint32_t rest = value / 10; rest; rest /= 10) ++digits;
    if (digits >= kOidTextRoom - length) return false;
    for (size_t at = length += digits; digits-- > 0; value /= 10) room[--at] = char('0' + value % 10);
    return true;
  }
};

}  // namespace

size_t oid_text(Octets content, char (&out)[kOidTextRoom]) noexcept {
  Text text{out};
  uint32_t value;
  if (!take_subidentifier(content, value)) return 0;
  const uint32_t first = std::min(value / 40, 2u);
  if (!text.append_number(first) || !text.append('.') || !text.append_number(value - 40 * first)) return 0;
  if (!text.append('.')) return 0;
  while (!content.empty()) {
    if (!take_subidentifier(content, value) || !text.append_number(value)) return 0;
    if (!content.empty() && !text.append('.')) return 0;
  }
  return text.length;
}

Read read_oid(Octets content, OBJECT_IDENTIFIER *&out) noexcept {
  char room[kOidTextRoom];
  std::string_view text;
  if (const int row = row_of_content(content)) {
    text = row_text(row);
  } else {
    const size_t length = oid_text(content, room);
    if (!length) return Read::malformed;
    text = {room, length};
  }
  OBJECT_IDENTIFIER *oid = new_string(TYPE_OBJECT_IDENTIFIER, octets_of_text(text));
  if (!oid) return Read::no_memory;
  out = oid;
  return Read::ok;
}

namespace {

// One piece of dotted text as `atoi` reads it, in 64 bits: white space, a sign, digits up to the first other character.
bool read_arc(std::string_view piece, int64_t &value) noexcept {
  size_t i = 0;
  while (i < piece.size() && (piece[i] == ' ' || (piece[i] >= '\t' && piece[i] <= '\r'))) ++i;
  const bool negative = i < piece.size() && piece[i] == '-';
  if (i < piece.size() && (piece[i] == '-' || piece[i] == '+')) ++i;
  value = 0;
  for (; i < piece.size() && piece[i] >= '0' && piece[i] <= '9'; ++i) {
    value = value * 10 + (piece[i] - '0');
    if (value > kLargestArc) return false;
  }
  if (negative) value = -value;
  return true;
}

// Takes the next piece off the front of `text`; false at the end. A final empty piece does not count.
bool take_piece(std::string_view &text, std::string_view &piece) noexcept {
  if (text.empty()) return false;
  const size_t dot = std::min(text.find('.'), text.size());
  piece = text.substr(0, dot);
  text.remove_prefix(std::min(dot + 1, text.size()));
  return true;
}

void write_subidentifier(uint64_t value, DerWriter &out) noexcept {
  uint8_t groups[10];
  size_t at = sizeof groups;
  groups[--at] = uint8_t(value & 0x7F);
  while (value >>= 7) groups[--at] = uint8_t(0x80 | (value & 0x7F));
  out.raw(Octets(groups).subspan(at));
}

}  // namespace

bool write_oid_content(std::string_view text, DerWriter &out) noexcept {
  std::string_view piece;
  int64_t first = 0, arc = 0;
  if (!take_piece(text, piece)) return true;
  if (!read_arc(piece, first)) return false;
  for (int64_t shift = first * 40; take_piece(text, piece); shift = 0) {
    if (!read_arc(piece, arc)) return false;
    const int64_t value = arc + shift;
    if (value < 0 || value > kLargestArc) return false;
    write_subidentifier(uint64_t(value), out);
  }
  return true;
}

namespace {

using Number = owned<BIGINT>;

Number small_number(unsigned value, bool negative = false) noexcept {
  Number number(PKV_New_BIGINT());
  if (!number || PKV_Set_BIGINT_Word(number.get(), value)) return nullptr;
  PKV_Set_BIGINT_Negative(number.get(), negative);
  return number;
}

constexpr size_t kSmallDigits = 18, kMostDigits = 20000, kMostGroups = 9491;

// The groups of one subidentifier off the front; false for one that is unfinished, padded or of more digits than text
// may have.
bool take_groups(Octets &content, Octets &groups) noexcept {
  size_t length = 0;
  while (length < content.size() && content[length] & 0x80) ++length;
  if (length == content.size() || length >= kMostGroups || content[0] == 0x80) return false;
  groups = content.first(length + 1);
  content = content.subspan(length + 1);
  return true;
}

// Groups of seven bits, of any number, as a number.
Number number_of(Octets groups) noexcept {
  const size_t size = (groups.size() * 7 + 7) / 8;
  const owned<uint8_t> octets = new_octets(size);
  if (!octets) return nullptr;
  uint32_t bits = 0, count = 0;
  size_t at = size;
  for (size_t i = groups.size(); i-- > 0;) {
    bits |= uint32_t(groups[i] & 0x7F) << count;
    for (count += 7; count >= 8; count -= 8, bits >>= 8) octets.get()[--at] = uint8_t(bits);
  }
  if (at > 0) octets.get()[--at] = uint8_t(bits);
  return Number(PKV_New_BIGINT_Binary(octets.get() + at, int(size - at)));
}

bool write_decimal(const BIGINT *number, DerWriter &out) noexcept {
  char *digits = nullptr;
  if (PKV_BIGINT_To_Decimal(number, &digits)) return false;
  const owned<char> owner(digits);
  out.raw(octets_of_text(digits));
  return true;
}

// The first subidentifier holds two arcs.
bool write_first_arcs(const BIGINT *value, DerWriter &out) noexcept {
  const unsigned word = PKV_Get_BIGINT_Word(value);
  const unsigned first = std::min(word / 40, 2u);
  const Number less = small_number(40 * first, true), second(PKV_New_BIGINT());
  if (!less || !second || PKV_Add_BIGINT(second.get(), value, less.get())) return false;
  out.octet(uint8_t('0' + first));
  out.octet('.');
  return write_decimal(second.get(), out);
}

bool write_big_subidentifier(const BIGINT *value, DerWriter &out) noexcept {
  const int groups = std::max(1, (PKV_Get_BIGINT_Bit_Length(value) + 6) / 7);
  int length = 0;
  const uint8_t *octets = PKV_Get_BIGINT_Octets(value, &length);
  for (int group = groups; group-- > 0;) {
    unsigned bits = 0;
    for (int bit = 6; bit >= 0; --bit) {
      const int at = group * 7 + bit;
      const bool set = at / 8 < length && octets[length - 1 - at / 8] >> at % 8 & 1;
      bits = bits << 1 | unsigned(set);
    }
    out.octet(uint8_t(bits | (group ? 0x80 : 0)));
  }
  return true;
}

bool is_decimal(std::string_view piece) noexcept {
  return !piece.empty() && piece.find_first_not_of("0123456789") == piece.npos;
}

// A piece of decimal digits as a number; null when memory ends. The piece is copied, because the conversion wants a
// terminated text.
Number big_arc(std::string_view piece) noexcept {
  const owned<uint8_t> copy = new_octets(piece.size() + 1);
  Number number(PKV_New_BIGINT());
  if (!copy || !number) return nullptr;
  copy_octets(copy.get(), octets_of_text(piece));
  copy.get()[piece.size()] = 0;
  if (PKV_Decimal_To_BIGINT(number.get(), reinterpret_cast<const char *>(copy.get()))) return nullptr;
  return number;
}

// The value of at most kSmallDigits digits.
uint64_t small_arc(std::string_view piece) noexcept {
  uint64_t value = 0;
  for (const char digit : piece) value = value * 10 + uint64_t(digit - '0');
  return value;
}

// One subidentifier: the arc, and what the arc before it adds. False for text that is no arc.
bool write_any_arc(std::string_view piece, unsigned shift, DerWriter &out) noexcept {
  if (!is_decimal(piece) || piece.size() > kMostDigits) return false;
  if (piece.size() <= kSmallDigits) return write_subidentifier(small_arc(piece) + shift, out), true;
  const Number arc = big_arc(piece), more = small_number(shift), sum(PKV_New_BIGINT());
  if (!arc || !more || !sum || PKV_Add_BIGINT(sum.get(), arc.get(), more.get())) return out.run_out(), true;
  write_big_subidentifier(sum.get(), out);
  return true;
}

}  // namespace

Read read_oid_any_size(Octets content, OBJECT_IDENTIFIER *&out) noexcept {
  if (content.empty()) return Read::malformed;
  DerWriter text;
  for (bool first = true; !content.empty(); first = false) {
    Octets groups;
    if (!take_groups(content, groups)) return Read::malformed;
    const Number value = number_of(groups);
    if (!first) text.octet('.');
    if (!value || !(first ? write_first_arcs(value.get(), text) : write_decimal(value.get(), text))) {
      return Read::no_memory;
    }
  }
  OBJECT_IDENTIFIER *oid = text.failed() ? nullptr : new_string(TYPE_OBJECT_IDENTIFIER, text.written());
  if (oid) out = oid;
  return oid ? Read::ok : Read::no_memory;
}

bool write_oid_content_any_size(std::string_view text, DerWriter &out) noexcept {
  std::string_view piece;
  if (!take_piece(text, piece) || piece.size() != 1 || piece[0] < '0' || piece[0] > '2') return false;
  const unsigned first = unsigned(piece[0] - '0');
  if (!take_piece(text, piece) || (first < 2 && (piece.size() > 2 || small_arc(piece) >= 40))) return false;
  if (!write_any_arc(piece, first * 40, out)) return false;
  while (take_piece(text, piece))
    if (!write_any_arc(piece, 0, out)) return false;
  return true;
}

}  // namespace velpki
