#include "asn1/internal/tlv.h"

namespace velpki {

size_t length_size(const uint8_t *at, size_t available) noexcept {
  if (!at || available == 0) return 0;
  const size_t size = at[0] > 0x80 ? size_t(at[0] & 0x7F) + 1 : 1;
  return size <= available ? size : 0;
}

int stated_length(const uint8_t *length_octets, size_t size) noexcept {
  if (size == 1) return length_octets[0];
  if (size > 5) return -1;
  uint32_t length = 0;
  for (size_t i = 1; i < size; ++i) length = length << 8 | length_octets[i];
  return length > INT_MAX ? -1 : int(length);
}

namespace {

// One header inside indefinite content: where its content starts, or 0 when it does not fit or is no unit.
size_t child_content(const uint8_t *content, size_t available, size_t at) noexcept {
  if (available - at < 2 || tag::number(content[at]) == 31) return 0;
  if (content[at + 1] > 0x84) return 0;
  const size_t size = length_size(content + at + 1, available - at - 1);
  return size ? at + 1 + size : 0;
}

// Steps over a child whose content starts at `start` and has `length` octets and `end` end octets; false past the end.
bool step_over(size_t available, size_t start, int length, size_t end, size_t &at) noexcept {
  if (length < 0 || size_t(length) > available - start) return false;
  const size_t rest = available - start - size_t(length);
  if (end > rest || start + size_t(length) + end > INT_MAX) return false;
  at = start + size_t(length) + end;
  return true;
}

}  // namespace

int measure_house(const uint8_t *content, size_t available, int depth) noexcept {
  if (depth <= 0) return -1;
  bool nested = false;
  size_t at = 0;
  while (at < available && content[at] != 0) {
    const size_t start = child_content(content, available, at);
    if (!start) return -1;
    nested |= content[at + 1] == 0x80;
    const int length = nested ? measure_house(content + start, available - start, depth - 1)
                              : stated_length(content + at + 1, start - at - 1);
    if (!step_over(available, start, length, nested ? 2 : 0, at)) return -1;
  }
  return at < available && at <= INT_MAX ? int(at) : -1;
}

int measure_x690(const uint8_t *content, size_t available, int depth) noexcept {
  if (depth <= 0) return -1;
  size_t at = 0;
  while (at < available && content[at] != 0) {
    const size_t start = child_content(content, available, at);
    if (!start) return -1;
    const bool indefinite = content[at + 1] == 0x80;
    const int length = indefinite ? measure_x690(content + start, available - start, depth - 1)
                                  : stated_length(content + at + 1, start - at - 1);
    if (!step_over(available, start, length, indefinite ? 2 : 0, at)) return -1;
  }
  const bool ended = at < available && available - at >= 2 && content[at + 1] == 0;
  return ended && at <= INT_MAX ? int(at) : -1;
}

int measure(Octets content, Rules &rules) noexcept {
  if (!rules.x690) {
    const int length = measure_house(content.data(), content.size(), rules.depth);
    if (length >= 0 && content.size() - size_t(length) >= 2) return length;
    rules.x690 = true;
  }
  return measure_x690(content.data(), content.size(), rules.depth);
}

bool Tlv::parse_long(Octets in, Rules &rules, Tlv &out) noexcept {
  const size_t size = length_size(in.data() + 1, in.size() - 1);
  if (size == 0 || size > 5) return false;
  const Octets rest = in.subspan(1 + size);
  const bool indefinite = in[1] == 0x80;
  if (indefinite && rules.standard && !(in[0] & tag::kConstructed)) return false;
  const int length = indefinite ? measure(rest, rules) : stated_length(in.data() + 1, size);
  const size_t end = indefinite ? 2 : 0;
  if (length < 0 || size_t(length) > rest.size() || end > rest.size() - size_t(length)) return false;
  out.identifier = in[0];
  out.indefinite = indefinite;
  out.rules = rules;
  out.content = rest.first(size_t(length));
  out.whole = in.first(1 + size + size_t(length) + end);
  out.header = in.subspan(1, size);
  return true;
}

bool Tlv::parse_unbounded(const uint8_t *encoded, Tlv &out) noexcept {
  if (!encoded || tag::number(encoded[0]) == 31 || encoded[1] > 0x84) return false;
  const size_t size = length_size(encoded + 1, kUnbounded);
  const bool indefinite = encoded[1] == 0x80;
  const uint8_t *content = encoded + 1 + size;
  const int length = indefinite ? measure_house(content, kUnbounded) : stated_length(encoded + 1, size);
  if (length < 0) return false;
  out.identifier = encoded[0];
  out.indefinite = indefinite;
  out.rules = Rules();
  out.content = Octets(content, size_t(length));
  out.whole = Octets(encoded, 1 + size + size_t(length) + (indefinite ? 2 : 0));
  out.header = Octets(encoded + 1, size);
  return true;
}

bool view(const ASN1_UNIT &unit, Tlv &out, Rules rules) noexcept {
  const int length = getASN1ValueLength(&unit);
  if (!unit.tag || length < 0 || tag::number(unit.tag[0]) == 31) return false;
  if (!unit.value && length > 0) return false;
  out.identifier = unit.tag[0];
  out.indefinite = unit.length_octets[0] == 0x80;
  out.rules = rules;
  out.content = octets_of(unit.value, length);
  out.whole = Octets();
  out.header = Octets(unit.length_octets, size_t(getASN1LengthSize(unit.length_octets)));
  return true;
}

}  // namespace velpki
