#include "asn1/internal/cursor.h"

#include <velpki/asn1_error.h>

#include "asn1/internal/oid_codec.h"

namespace velpki {

bool Cursor::accepts_standard(uint8_t identifier, int type) noexcept {
  if (type == TYPE_SEQUENCE || type == TYPE_SET) return identifier == (type | tag::kConstructed);
  return identifier == type;
}

Read Cursor::read_oid_by_rules(const Tlv &child, OBJECT_IDENTIFIER *&out) noexcept {
  if (!child.rules.standard) [[likely]]
    return read_oid(child.content, out);
  const Read outcome = read_oid(child.content, out);
  if (outcome != Read::malformed && (outcome != Read::ok || out->data[out->length - 1] != '.')) return outcome;
  if (outcome == Read::ok) free_OBJECT_IDENTIFIER(out);
  out = nullptr;
  return read_oid_any_size(child.content, out);
}

bool Cursor::integer(BIGINT *&out) noexcept {
  Tlv child;
  return next(TYPE_INTEGER, child) && keep(read_integer(child, out));
}

bool Cursor::boolean(unsigned char &out) noexcept {
  Tlv child;
  if (!next(TYPE_BOOLEAN, child)) return false;
  if (child.content.size() != 1) return stop(Read::malformed);
  out = child.content[0];
  return true;
}

bool Cursor::unit(ASN1_UNIT *&out) noexcept {
  Tlv child;
  return next(child) && keep(read_unit(child, out));
}

int Cursor::result(int function) const noexcept {
  if (reason_ == Read::ok) return 0;
  if (code_) return code_;
  return fail(function, reason_ == Read::no_memory ? kNoMemory : ERR_ASN1_DECODING);
}

int count_values(Octets octets, Rules rules) noexcept {
  int count = 0;
  for (Tlv value; Tlv::parse(octets, rules, value); ++count) octets = octets.subspan(value.whole.size());
  return count;
}

namespace {

// The magnitude of negative two's-complement content: complement and add one, in a copy.
BIGINT *negative_number(Octets content) noexcept {
  const owned<uint8_t> copy = new_octets(content.size());
  if (!copy) return nullptr;
  unsigned carry = 1;
  for (size_t i = content.size(); i-- > 0;) {
    carry += uint8_t(~content[i]);
    copy.get()[i] = uint8_t(carry);
    carry >>= 8;
  }
  owned<BIGINT> number(PKV_New_BIGINT_Binary(copy.get(), int(content.size())));
  if (!number || PKV_Set_BIGINT_Negative(number.get(), 1)) return nullptr;
  return number.release();
}

}  // namespace

Read read_integer(const Tlv &tlv, BIGINT *&out) noexcept {
  if (tlv.content.empty()) return Read::malformed;
  const bool negative = tlv.rules.standard && tlv.content[0] & 0x80;
  BIGINT *number =
      negative ? negative_number(tlv.content) : PKV_New_BIGINT_Binary(tlv.content.data(), int(tlv.content.size()));
  if (!number) return Read::no_memory;
  out = number;
  return Read::ok;
}

namespace {

uint8_t *copied(Octets octets, size_t zeros) noexcept {
  owned<uint8_t> copy = new_octets(octets.size() + zeros);
  if (!copy) return nullptr;
  copy_octets(copy.get(), octets);
  std::memset(copy.get() + octets.size(), 0, zeros);
  return copy.release();
}

}  // namespace

// Content of the indefinite form is followed by its two end octets; empty content has one zero octet, so that only a
// NULL has no buffer.
Read read_unit(const Tlv &tlv, ASN1_UNIT *&out) noexcept {
  owned<ASN1_UNIT> unit(new_ASN1_UNIT());
  if (!unit) return Read::no_memory;
  const bool no_value = tlv.identifier == TYPE_NULL && tlv.content.empty() && !tlv.indefinite;
  unit->tag = copied(Octets(&tlv.identifier, 1), 1);
  unit->length_octets = copied(tlv.header, 1);
  if (!no_value) unit->value = copied(tlv.content, tlv.indefinite ? 2 : 1);
  if (!unit->tag || !unit->length_octets || (!no_value && !unit->value)) return Read::no_memory;
  if (tlv.indefinite) unit->eoc = unit->value + tlv.content.size();
  out = unit.release();
  return Read::ok;
}

}  // namespace velpki
