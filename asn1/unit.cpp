// ASN1_UNIT: its life, its measures, its flat form.
#include <velpki/asn1.h>

#include "asn1/internal/cursor.h"
#include "asn1/internal/string.h"
#include "asn1/internal/tlv.h"

using namespace velpki;

ASN1_UNIT *new_ASN1_UNIT(void) noexcept { return allocate_record<ASN1_UNIT>(); }

void clean_ASN1_UNIT(ASN1_UNIT *unit) noexcept {
  if (!unit) return;
  release(unit->tag);
  release(unit->length_octets);
  release(unit->value);
  *unit = {};
}

void free_ASN1_UNIT(ASN1_UNIT *unit) noexcept {
  if (!unit) return;
  clean_ASN1_UNIT(unit);
  release(unit);
}

namespace {

// Cuts the copied length octets at their first zero. The first octet still says how many there are, so zeros stay
// behind it and the length can only become smaller: the copied value always suffices.
void cut_at_zero(uint8_t *length_octets, size_t size) noexcept {
  size_t at = 0;
  while (at < size && length_octets[at]) ++at;
  std::memset(length_octets + at, 0, size - at);
}

}  // namespace

ASN1_UNIT *dup_ASN1_UNIT(const ASN1_UNIT *unit) noexcept {
  if (!unit || !unit->tag || !unit->length_octets || !unit->value) return nullptr;
  ASN1_UNIT *copy = dup_ASN1_UNIT_strict(unit);
  if (copy) cut_at_zero(copy->length_octets, size_t(getASN1LengthSize(unit->length_octets)));
  return copy;
}

ASN1_UNIT *dup_ASN1_UNIT_strict(const ASN1_UNIT *unit) noexcept {
  Tlv tlv;
  ASN1_UNIT *copy = nullptr;
  return unit && view(*unit, tlv) && read_unit(tlv, copy) == Read::ok ? copy : nullptr;
}

int getASN1LengthSize(const unsigned char *length_octets) noexcept {
  return int(length_size(length_octets, kUnbounded));
}

int getASN1LengthSize_n(const unsigned char *length_octets, int available) noexcept {
  return available < 0 ? 0 : int(length_size(length_octets, size_t(available)));
}

int getASN1ValueLength(const ASN1_UNIT *unit) noexcept {
  if (!unit || !unit->length_octets) return -1;
  if (unit->length_octets[0] != 0x80) {
    return stated_length(unit->length_octets, length_size(unit->length_octets, kUnbounded));
  }
  if (!unit->eoc || !unit->value || unit->eoc - unit->value > INT_MAX) return -1;
  return int(unit->eoc - unit->value);
}

int getASN1ValueLengthFromLO(const unsigned char *length_octets) noexcept {
  if (!length_octets) return -1;
  if (length_octets[0] == 0x80) return getASN1IndefiniteValueLength(length_octets + 1);
  return stated_length(length_octets, length_size(length_octets, kUnbounded));
}

int getASN1ValueLengthFromLO_n(const unsigned char *length_octets, int available) noexcept {
  const Octets octets = octets_of(length_octets, available);
  const size_t size = length_size(octets.data(), octets.size());
  if (size == 0) return -1;
  if (octets[0] == 0x80) return getASN1IndefiniteValueLength_n(length_octets + 1, available - 1);
  return stated_length(length_octets, size);
}

int getASN1IndefiniteValueLength(const unsigned char *content) noexcept {
  return content ? measure_house(content, kUnbounded) : -1;
}

int getASN1IndefiniteValueLength_n(const unsigned char *content, int available) noexcept {
  Rules rules;
  return content ? measure(octets_of(content, available), rules) : -1;
}

int getASN1LengthForm(int type, int length) noexcept {
  const int longest = type == TYPE_BIT_STRING ? 126 : 127;
  return length < 0 || length > longest ? 1 : 0;
}

int getAsciiStringLength(int n) noexcept {
  unsigned rest = n < 0 ? 0u - unsigned(n) : unsigned(n);
  int digits = 1;
  while (rest /= 10) ++digits;
  return digits;
}

namespace {

bool is_counted(uint8_t identifier) noexcept {
  constexpr uint32_t kOthers = 1u << TYPE_BOOLEAN | 1u << TYPE_INTEGER | 1u << TYPE_NULL |
                               1u << TYPE_OBJECT_IDENTIFIER | 1u << TYPE_ENUMERATED | 1u << TYPE_SEQUENCE |
                               1u << TYPE_SET | 1u << TYPE_VISIBLE_STRING;
  const int number = tag::number(identifier);
  return tag::is_context_or_private(identifier) || kOthers >> number & 1 || is_string_type(number);
}

// End-of-contents octets that stand among the children are stepped over.
bool is_end_of_contents(uint8_t identifier) noexcept {
  return !tag::is_context_or_private(identifier) && tag::number(identifier) == 0;
}

}  // namespace

int getSequenceChildNum(const ASN1_UNIT *unit) noexcept {
  Tlv parent, child;
  if (!unit || !view(*unit, parent)) return 0;
  int count = 0;
  for (Octets rest = parent.content; !rest.empty();) {
    if (is_end_of_contents(rest[0])) {
      if (rest.size() < 2) return 0;
      rest = rest.subspan(2);
      continue;
    }
    if (!is_counted(rest[0]) || !Tlv::parse(rest, parent.rules, child)) return 0;
    rest = rest.subspan(child.whole.size());
    ++count;
  }
  return count;
}

int getChildType(const ASN1_UNIT *unit, int index) noexcept {
  Tlv parent, child;
  if (!unit || index < 0 || !view(*unit, parent)) return -1;
  Cursor in(parent);
  for (int i = 0; in.next(child); ++i)
    if (i == index) return child.identifier;
  return -1;
}

namespace {

// Indefinite content is measured again here, and ends where the measure says; where that fails, where `eoc` says.
Octets flat_content(const Tlv &tlv, const ASN1_UNIT &unit) noexcept {
  if (!tlv.indefinite) return tlv.content;
  Rules rules;
  const int measured = measure(Octets(unit.value, tlv.content.size() + 2), rules);
  return measured < 0 ? tlv.content : octets_of(unit.value, measured);
}

}  // namespace

int ASN1_to_binary(const ASN1_UNIT *unit, unsigned char **out) noexcept {
  Tlv tlv;
  if (!unit || !out || !view(*unit, tlv)) return -1;
  const Octets content = flat_content(tlv, *unit);
  const size_t end = tlv.indefinite ? 2 : 0;
  const size_t size = 1 + tlv.header.size() + content.size() + end;
  if (size > INT_MAX) return -1;
  uint8_t *flat = static_cast<uint8_t *>(allocate(size));
  if (!flat) return -1;
  flat[0] = tlv.identifier;
  copy_octets(flat + 1, tlv.header);
  copy_octets(flat + 1 + tlv.header.size(), content);
  if (end) std::memcpy(flat + size - end, unit->eoc, end);
  *out = flat;
  return int(size);
}
