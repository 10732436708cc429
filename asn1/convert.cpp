// Text between CP949, UTF-8 and UCS-2.
#include <velpki/convert.h>

#include <algorithm>
#include <array>
#include <climits>

#include "asn1/internal/memory.h"
#include "asn1/internal/writer.h"

constexpr unsigned char cp949Table[17484] = {
#include "asn1/cp949_table.inc"
};

namespace velpki {

namespace {

constexpr unsigned kFirstHangul = 0xAC00, kLastHangul = 0xD7A3;
constexpr int kHangul = kLastHangul - kFirstHangul + 1;
constexpr int kCells = 93 * 94, kExtension = 8822;
constexpr int32_t kNone = -1;

constexpr unsigned cell(int index) noexcept { return unsigned(cp949Table[2 * index]) << 8 | cp949Table[2 * index + 1]; }

// The used cells in order of their characters, for the way back.
struct Back {
  uint16_t character, cell;
};
constexpr int count_used() noexcept {
  int used = 0;
  for (int i = 0; i < kCells; ++i) used += cell(i) != 0;
  return used;
}
constexpr auto kBack = [] {
  std::array<Back, size_t(count_used())> back{};
  size_t at = 0;
  for (int i = 0; i < kCells; ++i)
    if (cell(i)) back[at++] = {uint16_t(cell(i)), uint16_t(i)};
  std::sort(back.begin(), back.end(), [](const Back &a, const Back &b) { return a.character < b.character; });
  return back;
}();
static_assert(kBack.size() == 8226);

// For every 16 syllables, how many of all those before them the plane holds: so the n-th syllable that it lacks, and
// the number of such a syllable, are a short count away.
constexpr int kStep = 16;
constexpr auto kHeldBefore = [] {
  std::array<bool, kHangul> held{};
  for (int i = 0; i < kCells; ++i)
    if (cell(i) >= kFirstHangul && cell(i) <= kLastHangul) held[cell(i) - kFirstHangul] = true;
  std::array<uint16_t, kHangul / kStep + 2> before{};
  std::array<uint16_t, kHangul / kStep + 2> mask{};
  for (int i = 0; i < kHangul; ++i)
    if (held[size_t(i)]) mask[size_t(i / kStep)] = uint16_t(mask[size_t(i / kStep)] | 1u << i % kStep);
  for (size_t i = 1; i < before.size(); ++i) before[i] = uint16_t(before[i - 1] + __builtin_popcount(mask[i - 1]));
  return std::pair(before, mask);
}();

bool is_held(int syllable) noexcept { return kHeldBefore.second[size_t(syllable / kStep)] >> syllable % kStep & 1; }

int held_before(int syllable) noexcept {
  const size_t step = size_t(syllable / kStep);
  const unsigned below = kHeldBefore.second[step] & ((1u << syllable % kStep) - 1);
  return kHeldBefore.first[step] + __builtin_popcount(below);
}

// The syllable that is the n-th of those the plane lacks: the smallest with n lacking ones before it that is lacking.
int lacking_syllable(int n) noexcept {
  int low = 0, high = kHangul - 1;
  while (low < high) {
    const int middle = (low + high) / 2;
    const int lacking_up_to = middle + 1 - held_before(middle) - is_held(middle);
    if (lacking_up_to > n)
      high = middle;
    else
      low = middle + 1;
  }
  return low;
}

// Trails of the extension are counted without the gaps between letters.
int extension_trail(uint8_t trail) noexcept {
  if (trail >= 0x41 && trail <= 0x5A) return trail - 0x41;
  if (trail >= 0x61 && trail <= 0x7A) return trail - 0x61 + 26;
  return trail >= 0x81 && trail <= 0xFE ? trail - 0x81 + 52 : -1;
}
uint8_t trail_octet(int t) noexcept { return uint8_t(t < 26 ? 0x41 + t : t < 52 ? 0x61 + t - 26 : 0x81 + t - 52); }

constexpr int kWideLeads = 32, kWide = 178, kNarrow = 84, kWideTotal = kWideLeads * kWide;

int32_t extension_character(uint8_t lead, uint8_t trail) noexcept {
  const int t = extension_trail(trail), row = lead - 0x81;
  if (t < 0 || row < 0) return kNone;
  if (row >= kWideLeads && t >= kNarrow) return kNone;
  const int n = row < kWideLeads ? row * kWide + t : kWideTotal + (row - kWideLeads) * kNarrow + t;
  return n < kExtension ? int32_t(kFirstHangul) + lacking_syllable(n) : kNone;
}

int32_t from_cp949(uint8_t lead, uint8_t trail) noexcept {
  if (lead >= 0xA1 && lead <= 0xFD && trail >= 0xA1 && trail <= 0xFE) {
    const unsigned character = cell((lead - 0xA1) * 94 + trail - 0xA1);
    return character ? int32_t(character) : kNone;
  }
  return extension_character(lead, trail);
}

int32_t take_cp949(Octets &in) noexcept {
  const size_t size = in[0] < 0x80 ? 1 : 2;
  if (size > in.size()) return kNone;
  const int32_t character = size == 1 ? in[0] : from_cp949(in[0], in[1]);
  in = in.subspan(size);
  return character;
}

bool put_cp949(int32_t character, DerWriter &out) noexcept {
  if (character < 0x80) return out.octet(uint8_t(character)), true;
  const auto less = [](const Back &each, int32_t wanted) { return each.character < wanted; };
  const auto found = std::lower_bound(kBack.begin(), kBack.end(), character, less);
  if (found != kBack.end() && found->character == character) {
    out.octet(uint8_t(0xA1 + found->cell / 94));
    out.octet(uint8_t(0xA1 + found->cell % 94));
    return true;
  }
  const int syllable = character - int(kFirstHangul);
  if (syllable < 0 || syllable >= kHangul) return false;
  const int n = syllable - held_before(syllable), narrow = n - kWideTotal;
  out.octet(uint8_t(narrow < 0 ? 0x81 + n / kWide : 0xA1 + narrow / kNarrow));
  out.octet(trail_octet(narrow < 0 ? n % kWide : narrow % kNarrow));
  return true;
}

int32_t take_ucs2(Octets &in) noexcept {
  if (in.size() < 2) return kNone;
  const int32_t character = in[0] << 8 | in[1];
  in = in.subspan(2);
  return character;
}
bool put_ucs2(int32_t character, DerWriter &out) noexcept {
  out.octet(uint8_t(character >> 8));
  out.octet(uint8_t(character));
  return character <= 0xFFFF;
}

int32_t take_utf8(Octets &in) noexcept {
  const uint8_t lead = in[0];
  const size_t size = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 0;
  if (size == 0 || size > in.size()) return kNone;
  int32_t character = size == 1 ? lead : lead & (0x7F >> size);
  for (const uint8_t octet : in.subspan(1, size - 1)) {
    if ((octet & 0xC0) != 0x80) return kNone;
    character = character << 6 | (octet & 0x3F);
  }
  in = in.subspan(size);
  const bool shortest = size < 3 || character >= 0x800;
  return shortest && !(character >= 0xD800 && character < 0xE000) ? character : kNone;
}
bool put_utf8(int32_t character, DerWriter &out) noexcept {
  if (character >= 0xD800 && character < 0xE000) return false;
  if (character < 0x80) return out.octet(uint8_t(character)), true;
  if (character < 0x800)
    return out.octet(uint8_t(0xC0 | character >> 6)), out.octet(uint8_t(0x80 | (character & 0x3F))), true;
  out.octet(uint8_t(0xE0 | character >> 12));
  out.octet(uint8_t(0x80 | (character >> 6 & 0x3F)));
  out.octet(uint8_t(0x80 | (character & 0x3F)));
  return true;
}

int32_t take_octet(Octets &in) noexcept {
  const uint8_t octet = in[0];
  in = in.subspan(1);
  return octet;
}
bool put_octet(int32_t character, DerWriter &out) noexcept {
  out.octet(uint8_t(character));
  return character <= 0xFF;
}

// Reads characters by `take` and writes them by `put`; the octets written, or -1.
template <class Char>
int convert(Octets in, Char **out, int32_t (*take)(Octets &) noexcept,
            bool (*put)(int32_t, DerWriter &) noexcept) noexcept {
  DerWriter writer({}, Content::secret);  // the text may be a password
  while (!in.empty()) {
    const int32_t character = take(in);
    if (character < 0 || !put(character, writer)) return -1;
  }
  const size_t length = writer.size();
  writer.octet(0);  // a second zero octet after the text, for UCS-2; `release` adds the first
  owned<uint8_t> octets = writer.release();
  if (!octets) return -1;
  *out = reinterpret_cast<Char *>(octets.release());
  return int(length);
}

// The octets of (text, length), -1 measuring; false for null and other negative lengths.
bool given(const char *in, int length, Octets &out) noexcept {
  if (!in || length < -1) return false;
  out = length < 0 ? octets_of_text(in) : octets_of(reinterpret_cast<const unsigned char *>(in), length);
  return true;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int cp949ToUnicode(const char *in, int length, unsigned char **out) noexcept {
  Octets octets;
  return out && given(in, length, octets) ? convert(octets, out, take_cp949, put_ucs2) : -1;
}

int unicodeToCP949(const unsigned char *in, int length, char **out) noexcept {
  return out && in && length >= 0 ? convert(octets_of(in, length), out, take_ucs2, put_cp949) : -1;
}

int cp949ToUTF8(const char *in, int length, char **out) noexcept {
  Octets octets;
  return out && given(in, length, octets) ? convert(octets, out, take_cp949, put_utf8) : -1;
}

int utf8ToUnicode(const char *in, int length, unsigned char **out) noexcept {
  Octets octets;
  return out && given(in, length, octets) ? convert(octets, out, take_utf8, put_ucs2) : -1;
}

int unicodeToUTF8(const unsigned char *in, int length, char **out) noexcept {
  return out && in && length >= 0 ? convert(octets_of(in, length), out, take_ucs2, put_utf8) : -1;
}

int ascTouni(const char *in, int length, unsigned char **out) noexcept {
  Octets octets;
  return out && given(in, length, octets) ? convert(octets, out, take_octet, put_ucs2) : -1;
}

int uniToasc(const unsigned char *in, int length, char **out) noexcept {
  if (!out || !in || length < 0) return -1;
  Octets octets = octets_of(in, length);
  const size_t size = octets.size();
  if (size >= 2 && size % 2 == 0 && octets[size - 1] == 0 && octets[size - 2] == 0) octets = octets.first(size - 2);
  return convert(octets, out, take_ucs2, put_octet);
}
