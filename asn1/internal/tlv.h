// Tlv: the bounded view of one encoded value, and the only place that reads lengths.
#pragma once

#include <velpki/asn1.h>
#include <climits>

#include "asn1/internal/memory.h"

namespace velpki {

inline constexpr int kMaximumDepth = 64;

// How octets are read; children inherit it from their parent.
struct Rules {
  uint8_t depth = kMaximumDepth;  // levels that may still be entered
  bool x690 = false;              // indefinite lengths by X.690 alone, without the house measure
  bool standard = false;          // the exact identifiers of the standards, and no tolerance of the house form
};

// The rules of the `_RFC5280` and `_strict` siblings.
inline constexpr Rules kStandardRules{kMaximumDepth, true, true};

// The identifier octets that have names.
namespace tag {
inline constexpr uint8_t kConstructed = 0x20;
inline constexpr uint8_t kContext = 0x80;
inline constexpr uint8_t kSequence = 0x30;
inline constexpr uint8_t kSet = 0x31;
constexpr uint8_t number(uint8_t identifier) noexcept { return identifier & 0x1F; }
constexpr bool is_context_or_private(uint8_t identifier) noexcept { return identifier & 0x80; }
constexpr uint8_t explicit_context(int n) noexcept { return uint8_t(0xA0 + n); }
constexpr uint8_t implicit_context(int n) noexcept { return uint8_t(0x80 + n); }
}  // namespace tag

// One encoded value in octets that belong to somebody else. A child is made from its parent's content, so it cannot
// reach past it.
struct Tlv {
  uint8_t identifier = 0;
  bool indefinite = false;
  Rules rules;
  Octets content;  // without end-of-contents octets
  Octets whole;    // identifier to last octet, end-of-contents octets included; empty for a view of an ASN1_UNIT
  Octets header;   // the length octets

  uint8_t number() const noexcept { return tag::number(identifier); }
  // Whether a record with this identifier may be read from the value. House form does not look at the outermost one.
  bool fits(uint8_t wanted) const noexcept { return !rules.standard || identifier == wanted; }

  // Reads the value at the start of `in`. Where the house measure of an indefinite length does not stay inside, `rules`
  // changes to X.690 for the caller's whole walk: so at most one failed try is made per level, and time stays linear.
  // False when it does not fit, has more than four length octets or a length above INT_MAX, or is nested too deep.
  static bool parse(Octets in, Rules &rules, Tlv &out) noexcept {
    if (in.size() < 2 || tag::number(in[0]) == 31) [[unlikely]]
      return false;
    if (in[1] < 0x80) [[likely]] {
      const size_t length = in[1];
      if (length > in.size() - 2) [[unlikely]]
        return false;
      out.identifier = in[0];
      out.indefinite = false;
      out.rules = rules;
      out.content = in.subspan(2, length);
      out.whole = in.first(2 + length);
      out.header = in.subspan(1, 1);
      return true;
    }
    return parse_long(in, rules, out);
  }

  // The same at a pointer whose octets have no known end: the encoding is believed.
  static bool parse_unbounded(const uint8_t *encoded, Tlv &out) noexcept;

 private:
  static bool parse_long(Octets in, Rules &rules, Tlv &out) noexcept;
};

// The view of a unit; false for one without tag or with unreadable lengths.
bool view(const ASN1_UNIT &unit, Tlv &out, Rules rules = {}) noexcept;

// Octets that `size` is no bound of.
inline constexpr size_t kUnbounded = size_t(-1);

// The number of length octets at `at`, of `available`; 0 when there is none or they do not fit.
size_t length_size(const uint8_t *at, size_t available) noexcept;
// The length that a long or short form states (not 80); -1 for more than four octets or above INT_MAX.
int stated_length(const uint8_t *length_octets, size_t size) noexcept;

// The length of indefinite content up to its end-of-contents octets, or -1. The house measure treats every sibling
// after an indefinite one as indefinite; the X.690 measure takes each by its own form.
int measure_house(const uint8_t *content, size_t available, int depth = kMaximumDepth) noexcept;
int measure_x690(const uint8_t *content, size_t available, int depth = kMaximumDepth) noexcept;
// House measure while it and the end octets stay inside, else X.690's, with `rules.x690` set from then on.
int measure(Octets content, Rules &rules) noexcept;

}  // namespace velpki
