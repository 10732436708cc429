// The long stretches of Base64: 32 characters at a time with AVX2 where the machine has it, else four.
#include "asn1/internal/base64.h"

#if defined(__x86_64__) || defined(__i386__)
#define VELPKI_AVX2 __attribute__((target("avx2")))
#include <immintrin.h>
#endif

namespace velpki {

namespace {

size_t encode_groups(Octets in, char *out) noexcept {
  size_t at = 0;
  for (; in.size() - at >= 3; at += 3, out += 4) {
    const uint32_t group = uint32_t(in[at]) << 16 | uint32_t(in[at + 1]) << 8 | in[at + 2];
    for (int i = 0; i < 4; ++i) out[i] = kBase64Alphabet[group >> (18 - 6 * i) & 63];
  }
  return at;
}

// The value of a character at each of the four places of a group; kStray where it is none.
constexpr uint32_t kStray = uint32_t(1) << 31;
constexpr auto kPlaced = [] {
  std::array<std::array<uint32_t, 256>, 4> placed{};
  for (size_t place = 0; place < 4; ++place)
    for (size_t c = 0; c < 256; ++c)
      placed[place][c] = kBase64Values[c] == kNotBase64 ? kStray : uint32_t(kBase64Values[c]) << (18 - 6 * place);
  return placed;
}();

size_t decode_groups(std::string_view text, uint8_t *out) noexcept {
  const auto *const in = reinterpret_cast<const uint8_t *>(text.data());
  size_t at = 0;
  for (; text.size() - at >= 4; at += 4, out += 3) {
    const uint32_t group =
        kPlaced[0][in[at]] | kPlaced[1][in[at + 1]] | kPlaced[2][in[at + 2]] | kPlaced[3][in[at + 3]];
    if (group & kStray) break;
    out[0] = uint8_t(group >> 16);
    out[1] = uint8_t(group >> 8);
    out[2] = uint8_t(group);
  }
  return at;
}

#ifdef VELPKI_AVX2

// A table for the byte shuffle, the same in both halves.
VELPKI_AVX2 __m256i both_halves(const std::array<int8_t, 16> &table) noexcept {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(table.data())));
}

// Whether a character is of the alphabet: its high half chooses a bit, its low half tells for which high halves it is.
constexpr auto kBitOfHigh = [] {
  std::array<int8_t, 16> bits{};
  for (size_t high = 2; high < 8; ++high) bits[high] = int8_t(1 << (high - 2));
  return bits;
}();
constexpr auto kHighsOfLow = [] {
  std::array<int8_t, 16> highs{};
  for (size_t c = 0; c < 128; ++c)
    if (kBase64Values[c] != kNotBase64) highs[c & 15] = int8_t(highs[c & 15] | kBitOfHigh[c >> 4]);
  return highs;
}();
// Value less character, by the high half; "/" shares that of "+" and is three less.
constexpr auto kShiftOfHigh = [] {
  std::array<int8_t, 16> shift{};
  for (const char c : {'+', '0', 'A', 'P', 'a', 'p'})
    shift[size_t(c) >> 4] = int8_t(int(kBase64Values[size_t(c)]) - int(c));
  return shift;
}();
constexpr int8_t kSlashShift = int8_t(int(kBase64Values['/']) - '/' - (int(kBase64Values['+']) - '+'));

constexpr std::array<int8_t, 16> kPackThree = {2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1};

// 32 characters to 24 octets; 28 are written. False when any is not of the alphabet.
VELPKI_AVX2 inline bool decode_block(const char *in, uint8_t *out) noexcept {
  const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in));
  const __m256i nibble = _mm256_set1_epi8(0x0F);
  const __m256i high = _mm256_and_si256(_mm256_srli_epi32(text, 4), nibble);
  const __m256i allowed = _mm256_shuffle_epi8(both_halves(kHighsOfLow), _mm256_and_si256(text, nibble));
  const __m256i found = _mm256_and_si256(allowed, _mm256_shuffle_epi8(both_halves(kBitOfHigh), high));
  if (_mm256_movemask_epi8(_mm256_cmpeq_epi8(found, _mm256_setzero_si256()))) return false;
  const __m256i slash = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('/'));
  const __m256i shift = _mm256_add_epi8(_mm256_shuffle_epi8(both_halves(kShiftOfHigh), high),
                                        _mm256_and_si256(slash, _mm256_set1_epi8(kSlashShift)));
  const __m256i values = _mm256_add_epi8(text, shift);
  const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0140));   // first * 64 + second
  const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));  // first pair * 4096 + second
  const __m256i octets = _mm256_shuffle_epi8(groups, both_halves(kPackThree));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm256_castsi256_si128(octets));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 12), _mm256_extracti128_si256(octets, 1));
  return true;
}
static_assert(kDecodeSlack >= 28 - 24);

VELPKI_AVX2 size_t decode_blocks(std::string_view text, uint8_t *out) noexcept {
  size_t at = 0;
  while (text.size() - at >= 32 && decode_block(text.data() + at, out)) at += 32, out += 24;
  return at;
}

// Each group of three octets as b a c b: every pair of neighbours then holds two of the four values.
constexpr std::array<int8_t, 16> kSpreadThree = {1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10};

// 24 octets to 32 characters; 28 are read.
VELPKI_AVX2 inline void encode_block(const uint8_t *in, char *out) noexcept {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 12));
  const __m256i spread = _mm256_shuffle_epi8(_mm256_set_m128i(high, low), both_halves(kSpreadThree));
  // Values one and three of a group go right within their pair, by a multiplication that keeps the upper half; two and
  // four go left.
  const __m256i odd =
      _mm256_mulhi_epu16(_mm256_and_si256(spread, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
  const __m256i even =
      _mm256_mullo_epi16(_mm256_and_si256(spread, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
  const __m256i values = _mm256_or_si256(odd, even);
  // The distance from value to character changes at each of these values.
  __m256i text = _mm256_add_epi8(values, _mm256_set1_epi8('A'));
  const auto step = [&](int above, int change) VELPKI_AVX2 {
    const __m256i past = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(int8_t(above)));
    text = _mm256_add_epi8(text, _mm256_and_si256(past, _mm256_set1_epi8(int8_t(change))));
  };
  step(25, 'a' - 26 - 'A');
  step(51, '0' - 52 - ('a' - 26));
  step(61, '+' - 62 - ('0' - 52));
  step(62, '/' - 63 - ('+' - 62));
  _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), text);
}

VELPKI_AVX2 size_t encode_blocks(Octets in, char *out) noexcept {
  size_t at = 0;
  for (; in.size() - at >= 28; at += 24, out += 32) encode_block(in.data() + at, out);
  return at;
}

bool has_avx2() noexcept {
  static const bool has = __builtin_cpu_supports("avx2");
  return has;
}

#else

bool has_avx2() noexcept { return false; }
size_t encode_blocks(Octets, char *) noexcept { return 0; }
size_t decode_blocks(std::string_view, uint8_t *) noexcept { return 0; }

#endif

}  // namespace

size_t encode_run(Octets in, char *out) noexcept {
  const size_t taken = has_avx2() ? encode_blocks(in, out) : 0;
  return taken + encode_groups(in.subspan(taken), out + taken / 3 * 4);
}

size_t decode_run(std::string_view text, uint8_t *out) noexcept {
  const size_t taken = has_avx2() ? decode_blocks(text, out) : 0;
  return taken + decode_groups(text.substr(taken), out + taken / 4 * 3);
}

}  // namespace velpki
