// Constructed values that grow child by child, and what can be done to a finished unit.
#include <velpki/asn1_error.h>
#include <velpki/ber.h>

#include "asn1/internal/ber_encode.h"
#include "asn1/internal/cursor.h"
#include "asn1/internal/status.h"
#include "asn1/internal/string.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

bool is_constructed_type(int type) noexcept {
  return type == TYPE_SEQUENCE || type == TYPE_SET || type == tag::kSequence || type == tag::kSet;
}

// Puts new length octets in place of the old ones.
bool set_length_octets(ASN1_UNIT &unit, Octets octets) noexcept {
  owned<uint8_t> fresh = new_octets(octets.size() + 1);
  if (!fresh) return false;
  copy_octets(fresh.get(), octets);
  fresh.get()[octets.size()] = 0;
  release(unit.length_octets);
  unit.length_octets = fresh.release();
  return true;
}

bool set_shortest_length(ASN1_UNIT &unit, size_t length) noexcept {
  uint8_t octets[8];
  return set_length_octets(unit, Octets(octets, write_length(length, octets)));
}

// Grows `value` to `size` octets and one zero after them.
bool resize_value(ASN1_UNIT &unit, size_t size) noexcept {
  void *block = PKV_Realloc(unit.value, size + 1, __builtin_FILE(), __builtin_LINE());
  if (!block) return false;
  unit.value = static_cast<uint8_t *>(block);
  unit.value[size] = 0;
  return true;
}

// An empty unit becomes an empty SEQUENCE; any other keeps its identifier.
bool begin(ASN1_UNIT &seq) noexcept { return seq.tag || fill_unit(seq, tag::kSequence, {}, kShort); }

// `seq` is changed last, when nothing can fail any more but the two allocations, after which the caller cleans it.
bool append_tlv(ASN1_UNIT &seq, const Tlv &child) noexcept {
  if (!begin(seq)) return false;
  const int present = getASN1ValueLength(&seq);
  if (present < 0 || (present > 0 && !seq.value)) return false;
  const size_t end = child.indefinite ? 2 : 0;
  const size_t size = 1 + child.header.size() + child.content.size() + end;
  if (size > size_t(INT_MAX) - size_t(present)) return false;
  const size_t total = size_t(present) + size;
  if (!resize_value(seq, total) || !set_shortest_length(seq, total)) return false;
  seq.eoc = nullptr;
  uint8_t *at = seq.value + present;
  *at++ = child.identifier;
  copy_octets(at, child.header);
  at += child.header.size();
  copy_octets(at, child.content);
  std::memset(at + child.content.size(), 0, end);
  return true;
}

bool append_unit(ASN1_UNIT &seq, ASN1_UNIT *child, bool take) noexcept {
  Tlv tlv;
  if (!child || child == &seq || !view(*child, tlv) || !append_tlv(seq, tlv)) return false;
  if (take) free_ASN1_UNIT(child);
  return true;
}

// A string of type 16, 17, 48 or 49 holds the content of a constructed value.
bool encode_constructed_string(ASN1_UNIT &out, const ASN1_STRING &string, int length, int form) noexcept {
  return encode_octets(out, uint8_t(string.type), &string, length, form);
}

}  // namespace

bool is_unit_type(int type) noexcept { return is_constructed_type(type) || type == TYPE_ASN1_UNIT; }

bool makes_empty_list(int type, const void *value, int length) noexcept {
  if (length != 0 || is_unit_type(type)) return false;
  return type != TYPE_ASN1_STRING || !value || !is_constructed_type(static_cast<const ASN1_STRING *>(value)->type);
}

bool append_value(ASN1_UNIT &seq, int type, void *value, int length, int form) noexcept {
  if (is_unit_type(type)) return append_unit(seq, static_cast<ASN1_UNIT *>(value), type == TYPE_ASN1_UNIT);
  if (!value && type != TYPE_NULL) return false;
  ASN1_UNIT child{};
  const auto *string = static_cast<const ASN1_STRING *>(value);
  const bool constructed = type == TYPE_ASN1_STRING && is_constructed_type(string->type);
  const bool encoded = constructed ? encode_constructed_string(child, *string, length, form)
                                   : encode_value(child, type, value, length, form);
  const bool appended = encoded && append_unit(seq, &child, false);
  clean_ASN1_UNIT(&child);
  return appended;
}

namespace {

int finish(bool appended, int function, ASN1_UNIT *seq) noexcept {
  if (appended) return 0;
  clean_ASN1_UNIT(seq);
  return fail(function, ERR_INVALID_ENCODE_INPUT);
}

// The checks that encodeToBER makes of a value that is not a unit already.
bool is_sound(int type, int length, int form) noexcept {
  if (is_unit_type(type)) return true;
  return length >= 0 && form >= kShort && form <= kIndefinite && !(form == kShort && length >= 0x80);
}

bool append(ASN1_UNIT *seq, int type, void *value, int length, int form) noexcept {
  return seq && is_sound(type, length, form) && append_value(*seq, type, value, length, form);
}

int make_empty_list(ASN1_UNIT *seq, uint8_t identifier, int function) noexcept {
  return finish(fill_unit(*seq, identifier, {}, kShort), function, seq);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int addToBERSequence(ASN1_UNIT *seq, int type, void *value, int length, int form) noexcept {
  return finish(append(seq, type, value, length, form), F_ADD_TO_BER_SEQUENCE, seq);
}

int addToBERSequenceOf(ASN1_UNIT *seq, int type, void *value, int length, int form) noexcept {
  if (!seq) return fail(F_ADD_TO_BER_SEQUENCE_OF, ERR_INVALID_ENCODE_INPUT);
  if (makes_empty_list(type, value, length)) return make_empty_list(seq, TYPE_SEQUENCE, F_ADD_TO_BER_SEQUENCE_OF);
  return addToBERSequence(seq, type, value, length, form);
}

int addToBERSet(ASN1_UNIT *seq, int type, void *value, int length, int form) noexcept {
  const bool appended = append(seq, type, value, length, form);
  if (appended) seq->tag[0] = tag::kSet;
  return finish(appended, F_ADD_TO_BER_SET, seq);
}

int addToBERSetOf(ASN1_UNIT *seq, int type, void *value, int length, int form) noexcept {
  if (!seq) return fail(F_ADD_TO_BER_SET_OF, ERR_INVALID_ENCODE_INPUT);
  if (makes_empty_list(type, value, length)) return make_empty_list(seq, TYPE_SET, F_ADD_TO_BER_SET_OF);
  return addToBERSet(seq, type, value, length, form);
}

int addToBERSequence_CS(ASN1_UNIT *seq, int n, int type, void *value, int length, int form) noexcept {
  const bool appended = n >= 0 && n <= 30 && append(seq, type, value, length, form);
  if (appended) seq->tag[0] = tag::explicit_context(n);
  return finish(appended, F_ADD_TO_BER_SEQUENCE_CS, seq);
}

namespace {

// Only the last segment of a BIT STRING may have unused bits, so all that are there must have none.
bool segments_are_full(const ASN1_UNIT &seq) noexcept {
  Tlv parent, segment;
  if (!view(seq, parent)) return false;
  Cursor in(parent);
  while (!in.at_end())
    if (!in.next(segment) || segment.content.empty() || segment.content[0] != 0) return false;
  return true;
}

bool takes_segment(const ASN1_UNIT &seq, int type) noexcept {
  if (!is_string_type(type)) return false;
  if (!seq.tag) return true;
  return tag::number(seq.tag[0]) == type && (type != TYPE_BIT_STRING || segments_are_full(seq));
}

}  // namespace

int addToBERStringSequence(ASN1_UNIT *seq, int type, void *value, int length, int form) noexcept {
  const bool appended = seq && value && takes_segment(*seq, type) && append(seq, type, value, length, form);
  if (appended) seq->tag[0] = uint8_t(type | tag::kConstructed);
  return finish(appended, F_ADD_TO_BER_STRING_SEQUENCE, seq);
}

namespace {

bool set_definite(ASN1_UNIT &unit, size_t length, int form) noexcept {
  const bool indefinite = unit.length_octets[0] == 0x80;
  if (form == kShort && length >= 0x80) return false;
  if (!indefinite && (form == kShort || unit.length_octets[0] > 0x80)) return true;
  uint8_t octets[8] = {0x81, uint8_t(length)};
  const bool two = form == kLong && length < 0x80;
  if (!set_length_octets(unit, Octets(octets, two ? 2 : write_length(length, octets)))) return false;
  unit.eoc = nullptr;
  return true;
}

bool set_indefinite(ASN1_UNIT &unit, size_t length) noexcept {
  if (unit.length_octets[0] == 0x80) return true;
  if (!(unit.tag[0] & tag::kConstructed) || length > size_t(INT_MAX) - 2) return false;
  const uint8_t marker = 0x80;
  if (!resize_value(unit, length + 2) || !set_length_octets(unit, Octets(&marker, 1))) return false;
  unit.value[length] = unit.value[length + 1] = 0;
  unit.eoc = unit.value + length;
  return true;
}

}  // namespace

int setBERLengthForm(ASN1_UNIT *unit, int form) noexcept {
  Tlv tlv;
  const bool sound = unit && form >= kShort && form <= kIndefinite && view(*unit, tlv);
  const size_t length = tlv.content.size();
  const bool set = sound && (form == kIndefinite ? set_indefinite(*unit, length) : set_definite(*unit, length, form));
  return set ? 0 : fail(F_SET_BER_LENGTH_FORM, ERR_INVALID_ENCODE_INPUT);
}

int addPadToBERBitString(ASN1_STRING *bit_string, const char *text) noexcept {
  const int refused = fail(F_ADD_PAD_TO_BER_BIT_STRING, ERR_INVALID_ENCODE_INPUT);
  if (!bit_string || !text) return refused;
  const int unused = bit_string->unused_bits;
  if (unused < 0 || unused > 7 || (unused && (!bit_string->data || bit_string->length < 1))) return refused;
  unsigned bits = 0;
  int count = 0;
  for (; text[count]; ++count) {
    if (count >= unused || (text[count] != '0' && text[count] != '1')) return refused;
    bits = bits << 1 | unsigned(text[count] == '1');
  }
  if (count != unused) return refused;
  if (unused) bit_string->data[bit_string->length - 1] |= uint8_t(bits);
  return 0;
}
