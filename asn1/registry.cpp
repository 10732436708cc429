// The rows of the object registry and their indexes.
#include "asn1/internal/registry.h"

#include <velpki/asn1_objects.h>

#include <array>

namespace velpki {

namespace {

enum Column { kShortName, kLongName, kText };

constexpr const char *kRows[kRegistryRows][3] = {
#define OBJECT(row, short_name, long_name, text) {short_name, long_name, text},
#include "asn1/object_table.inc"
#undef OBJECT
};
constexpr int kRowNumbers[] = {
#define OBJECT(row, short_name, long_name, text) row,
#include "asn1/object_table.inc"
#undef OBJECT
};
static_assert(std::size(kRowNumbers) == kRegistryRows);

constexpr bool rows_are_in_order() {
  for (int i = 0; i < kRegistryRows; ++i)
    if (kRowNumbers[i] != i) return false;
  return true;
}
static_assert(rows_are_in_order());

// Lengths beside the pointers, so that no look-up measures a text.
constexpr auto kLengths = [] {
  std::array<std::array<uint8_t, 3>, kRegistryRows> lengths{};
  for (size_t row = 0; row < kRegistryRows; ++row)
    for (size_t column = 0; column < 3; ++column)
      lengths[row][column] = uint8_t(std::string_view(kRows[row][column]).size());
  return lengths;
}();

template <Column column>
constexpr std::string_view cell(int row) {
  return {kRows[row][column], kLengths[size_t(row)][column]};
}

// Content octets.

struct Content {
  char octets[15] = {};
  uint8_t size = 0;

  constexpr void append(uint32_t subidentifier) {
    int groups = 1;
    while (subidentifier >> 7 * groups) ++groups;
    while (groups-- > 0) octets[size++] = char((subidentifier >> 7 * groups & 0x7F) | (groups ? 0x80 : 0));
  }
};

// Whether some content decodes to just this text: at least three arcs, or two and the dot that decoding leaves there.
constexpr bool is_decodable(std::string_view text) {
  size_t dots = 0;
  for (const char c : text) {
    if (c != '.' && (c < '0' || c > '9')) return false;
    dots += c == '.';
  }
  return dots >= 2 && (dots == 2 || text.back() != '.');
}

constexpr Content encode(std::string_view text) {
  Content content;
  uint32_t value = 0;
  int arc = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] != '.') {
      value = value * 10 + uint32_t(text[i] - '0');
      continue;
    }
    if (arc == 0)
      value *= 40;
    else if (i == 0 || text[i - 1] != '.')
      content.append(value), value = 0;
    ++arc;
  }
  return content;
}

constexpr auto kContents = [] {
  std::array<Content, kRegistryRows> contents{};
  for (int row = 1; row < kRegistryRows; ++row)
    if (is_decodable(cell<kText>(row))) contents[size_t(row)] = encode(cell<kText>(row));
  return contents;
}();

constexpr std::string_view content_of(int row) {
  const Content &content = kContents[size_t(row)];
  return {content.octets, content.size};
}

// Indexes.

constexpr uint64_t load(const char *from, size_t size) {
  uint64_t value = 0;
  for (size_t i = 0; i < size; ++i) value |= uint64_t(uint8_t(from[i])) << 8 * i;
  return value;
}

constexpr unsigned kIndexBits = 11;
constexpr size_t kIndexMask = (size_t(1) << kIndexBits) - 1;

// Beginning, middle and end: three loads instead of a walk over the text. Keys may be a stranger's, but what they can
// at worst meet is the longest run of this constant table.
constexpr size_t hash(std::string_view key) {
  constexpr uint64_t kFactor = 0x9E3779B97F4A7C15;
  const size_t size = key.size();
  if (size < 8) return size_t((load(key.data(), size) ^ size) * kFactor >> (64 - kIndexBits));
  const uint64_t ends = load(key.data() + size - 8, 8) + load(key.data(), 8) * kFactor;
  const uint64_t middle = load(key.data() + size / 2 - 4, 8) ^ size;
  return size_t((ends ^ middle * 0xD6E8FEB86659FD93) * kFactor >> (64 - kIndexBits));
}

using Index = std::array<uint16_t, kIndexMask + 1>;

// Open addressing; rows enter in order, and a key that is there already keeps its lower row.
template <class Key>
constexpr Index build_index(Key key) {
  Index index{};
  for (int row = 1; row < kRegistryRows; ++row) {
    const std::string_view text = key(row);
    if (text.empty()) continue;
    size_t slot = hash(text);
    while (index[slot] && key(index[slot]) != text) slot = (slot + 1) & kIndexMask;
    if (!index[slot]) index[slot] = uint16_t(row);
  }
  return index;
}

template <class Key>
int find(const Index &index, Key key, std::string_view text) noexcept {
  for (size_t slot = hash(text); index[slot]; slot = (slot + 1) & kIndexMask)
    if (key(index[slot]) == text) return index[slot];
  return 0;
}

constexpr Index kByShortName = build_index(cell<kShortName>);
constexpr Index kByLongName = build_index(cell<kLongName>);
constexpr Index kByText = build_index(cell<kText>);
constexpr Index kByContent = build_index(content_of);

constexpr size_t longest_run(const Index &index) {
  size_t longest = 0, run = 0;
  for (size_t i = 0; i < 2 * index.size(); ++i) {
    run = index[i & kIndexMask] ? run + 1 : 0;
    longest = run > longest ? run : longest;
  }
  return longest;
}
static_assert(longest_run(kByShortName) < 24 && longest_run(kByLongName) < 24);
static_assert(longest_run(kByText) < 24 && longest_run(kByContent) < 24);

constexpr std::string_view checked(int row, std::string_view (*column)(int)) {
  return row < 0 || row >= kRegistryRows ? std::string_view() : column(row);
}

}  // namespace

std::string_view row_short_name(int row) noexcept { return checked(row, cell<kShortName>); }
std::string_view row_long_name(int row) noexcept { return checked(row, cell<kLongName>); }
std::string_view row_text(int row) noexcept { return checked(row, cell<kText>); }

int row_of_text(std::string_view dotted) noexcept { return find(kByText, cell<kText>, dotted); }
int row_of_short_name(std::string_view name) noexcept { return find(kByShortName, cell<kShortName>, name); }
int row_of_long_name(std::string_view name) noexcept { return find(kByLongName, cell<kLongName>, name); }

int row_of_content(Octets content) noexcept {
  return find(kByContent, content_of, {reinterpret_cast<const char *>(content.data()), content.size()});
}

}  // namespace velpki

const char **OID_LIST(int index) noexcept {
  const int row = index < 0 || index >= velpki::kRegistryRows ? 0 : index;
  return const_cast<const char **>(velpki::kRows[row]);
}
