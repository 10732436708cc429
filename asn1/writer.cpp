#include "asn1/internal/writer.h"

#include <velpki/asn1_error.h>

#include <algorithm>
#include <bit>

#include "asn1/internal/cursor.h"
#include "asn1/internal/oid_codec.h"
#include "asn1/internal/status.h"

namespace velpki {

// Moving a block leaves its octets in the old place, so a secret one is moved by hand.
uint8_t *DerWriter::resize(size_t room) noexcept {
  if (content_ == Content::open) {
    return static_cast<uint8_t *>(PKV_Realloc(data_, room, __builtin_FILE(), __builtin_LINE()));
  }
  auto *block = static_cast<uint8_t *>(allocate(room));
  if (!block) return nullptr;
  copy_octets(block, Octets(data_, size_));
  discard();
  return block;
}

uint8_t *DerWriter::grow(size_t more) noexcept {
  if (failed()) return nullptr;
  if (more >= size_t(INT_MAX) - size_) {
    refuse();
    return nullptr;
  }
  const size_t needed = size_ + more + 1;  // one octet for the zero at the end
  const size_t room = std::max({needed, std::min(room_ * 2, size_t(INT_MAX)), size_t(512)});
  uint8_t *block = resize(room);
  if (!block) {
    fail(Read::no_memory);
    return nullptr;
  }
  data_ = block;
  room_ = room;
  return data_ + size_;
}

owned<uint8_t> DerWriter::release() noexcept {
  if (!reserve(1)) return nullptr;
  data_[size_] = 0;
  uint8_t *data = data_;
  data_ = nullptr;
  size_ = room_ = 0;
  return owned<uint8_t>(data);
}

int DerWriter::result(int function) const noexcept {
  if (status_ == Read::ok) return 0;
  return velpki::fail(function, status_ == Read::no_memory ? kNoMemory : ERR_ASN1_ENCODING);
}

size_t write_length(size_t length, uint8_t *out) noexcept {
  if (length < 0x80) {
    out[0] = uint8_t(length);
    return 1;
  }
  const uint32_t value = uint32_t(length);  // nothing here is longer than INT_MAX
  const size_t count = (size_t(std::bit_width(value)) + 7) / 8;
  out[0] = uint8_t(0x80 | count);
  for (size_t i = 0; i < count; ++i) out[1 + i] = uint8_t(value >> (8 * (count - 1 - i)));
  return 1 + count;
}

// The length is not known yet: one octet is left for it, which is all that short content needs.
size_t DerWriter::open(uint8_t identifier) noexcept {
  if (uint8_t *at = reserve(2)) {
    at[0] = identifier;
    size_ += 2;
  }
  return size_;
}

void DerWriter::close(size_t start) noexcept {
  if (failed()) return;
  const size_t length = size_ - start;
  if (length < 0x80) {
    data_[start - 1] = uint8_t(length);
    return;
  }
  uint8_t octets[8];
  const size_t count = write_length(length, octets);
  if (!reserve(count - 1)) return;
  std::memmove(data_ + start + count - 1, data_ + start, length);
  std::memcpy(data_ + start - 1, octets, count);
  size_ += count - 1;
}

void DerWriter::header(uint8_t identifier, size_t length) noexcept {
  uint8_t *at = reserve(10);
  if (!at) return;
  at[0] = identifier;
  size_ += 1 + write_length(length, at + 1);
}

void DerWriter::raw(Octets octets) noexcept {
  uint8_t *at = reserve(octets.size());
  if (!at) return;
  copy_octets(at, octets);
  size_ += octets.size();
}

void DerWriter::primitive(uint8_t identifier, Octets content) noexcept {
  header(identifier, content.size());
  raw(content);
}

void DerWriter::boolean(bool value) noexcept {
  const uint8_t content = value ? 0xFF : 0x00;
  primitive(TYPE_BOOLEAN, Octets(&content, 1));
}

void DerWriter::null() noexcept { primitive(TYPE_NULL, {}); }

void DerWriter::integer(const BIGINT *value, uint8_t identifier) noexcept {
  if (!value) return refuse();
  int length = 0;
  const uint8_t *magnitude = PKV_Get_BIGINT_Octets(value, &length);
  if (rules_.standard && PKV_Is_BIGINT_Negative(value))
    return negative_integer(octets_of(magnitude, length), identifier);
  const bool zero_in_front = length == 0 || magnitude[0] & 0x80;
  header(identifier, size_t(length) + zero_in_front);
  if (zero_in_front) octet(0);
  raw(octets_of(magnitude, length));
}

// Complement and add one; an octet of ones goes in front when the top bit would be clear.
void DerWriter::negative_integer(Octets magnitude, uint8_t identifier) noexcept {
  const auto scope = constructed(identifier);
  const size_t start = size_;
  octet(0xFF);
  raw(magnitude);
  if (failed()) return;
  unsigned carry = 1;
  for (size_t i = size_; i-- > start + 1;) {
    carry += uint8_t(~data_[i]);
    data_[i] = uint8_t(carry);
    carry >>= 8;
  }
  if (!(data_[start + 1] & 0x80)) return;
  std::memmove(data_ + start, data_ + start + 1, size_ - start - 1);
  --size_;
}

void DerWriter::integer(unsigned value, uint8_t identifier) noexcept {
  uint8_t content[5] = {0, uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value)};
  size_t skip = 0;
  while (skip < 4 && content[skip] == 0 && content[skip + 1] < 0x80) ++skip;
  primitive(identifier, Octets(content).subspan(skip));
}

void DerWriter::bits(const ASN1_STRING *value, uint8_t identifier) noexcept {
  if (!value || value->length < 0 || (!value->data && value->length > 0)) return refuse();
  if (value->unused_bits < 0 || value->unused_bits > 7 || (value->unused_bits && value->length == 0)) return refuse();
  header(identifier, size_t(value->length) + 1);
  octet(uint8_t(value->unused_bits));
  raw(velpki::octets(*value));
}

void DerWriter::bits(Octets data) noexcept {
  header(TYPE_BIT_STRING, data.size() + 1);
  octet(0);
  raw(data);
}

void DerWriter::oid(const OBJECT_IDENTIFIER *value) noexcept {
  if (!value || !value->data || value->length < 0) return refuse();
  oid_text(text(*value));
}

void DerWriter::oid_text(std::string_view text) noexcept {
  const Scope scope = constructed(TYPE_OBJECT_IDENTIFIER);
  oid_content(text);
}

void DerWriter::oid_content(std::string_view text) noexcept {
  if (!(rules_.standard ? write_oid_content_any_size(text, *this) : write_oid_content(text, *this))) refuse();
}

void DerWriter::octets_as(uint8_t identifier, const ASN1_STRING *value) noexcept {
  if (!value || value->length < 0 || (!value->data && value->length > 0)) return refuse();
  primitive(identifier, velpki::octets(*value));
}

StringForm form_of(const ASN1_STRING &string, bool constructed_too) noexcept {
  const int type = string.type;
  if (type < 0 || type > 0xFF || string.length < 0 || (!string.data && string.length > 0)) return StringForm::refused;
  if (type == TYPE_INTEGER) return StringForm::integer;
  const bool context = tag::is_context_or_private(uint8_t(type));
  switch (type & 0x1F) {
    case TYPE_BIT_STRING:
      return context ? StringForm::plain : StringForm::bits;
    case TYPE_OBJECT_IDENTIFIER:
      return context ? StringForm::plain : StringForm::oid;
    case TYPE_NULL:
      return context || string.length == 0 ? StringForm::plain : StringForm::refused;
    case TYPE_SEQUENCE:
    case TYPE_SET:
      return constructed_too && (type & ~0x20) < 0x20 ? StringForm::plain : StringForm::refused;
    case TYPE_BOOLEAN:
    case TYPE_INTEGER:
    case TYPE_ENUMERATED:
      return StringForm::plain;
    default:
      return is_string_type(type & 0x1F) ? StringForm::plain : StringForm::refused;
  }
}

void DerWriter::string(const ASN1_STRING *value) noexcept {
  if (!value) return refuse();
  const uint8_t identifier = uint8_t(value->type);
  switch (form_of(*value, true)) {
    case StringForm::refused:
      // Standard decoding keeps values of every tag, and so they are written.
      return rules_.standard && value->type > 0 && value->type <= 0xFF ? octets_as(identifier, value) : refuse();
    case StringForm::integer: {
      if (rules_.standard) return octets_as(identifier, value);
      const owned<BIGINT> number(PKV_New_BIGINT_Binary(value->data, value->length));
      return number ? integer(number.get()) : fail(Read::no_memory);
    }
    case StringForm::bits:
      return bits(value, identifier);
    case StringForm::oid: {
      const Scope scope = constructed(identifier);
      oid_content(text(*value));
      return;
    }
    case StringForm::plain:
      return octets_as(identifier, value);
  }
}

void DerWriter::unit(const ASN1_UNIT *value) noexcept {
  Tlv tlv;
  if (!value || !view(*value, tlv)) return refuse();
  octet(tlv.identifier);
  raw(tlv.header);
  raw(tlv.content);
  if (tlv.indefinite) raw(Octets(reinterpret_cast<const uint8_t *>("\0"), 2));
}

namespace {

bool der_less(const Octets &a, const Octets &b) noexcept {
  const int order = std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
  return order < 0 || (order == 0 && a.size() < b.size());
}

}  // namespace

void DerWriter::sort_values(size_t from) noexcept {
  const Octets values = written(from);
  const int count = count_values(values, rules_);
  if (count < 2) return;
  const owned<uint8_t> copy = new_octets(values.size()), block = new_octets(size_t(count) * sizeof(Octets));
  if (!copy || !block) return fail(Read::no_memory);
  copy_octets(copy.get(), values);
  Octets *spans = reinterpret_cast<Octets *>(block.get());
  Octets rest(copy.get(), values.size());
  Tlv value;
  for (int i = 0; i < count && Tlv::parse(rest, rules_, value); ++i) {
    new (spans + i) Octets(value.whole);
    rest = rest.subspan(value.whole.size());
  }
  std::sort(spans, spans + count, der_less);
  uint8_t *at = data_ + from;
  for (int i = 0; i < count; at += spans[i++].size()) copy_octets(at, spans[i]);
}

int unit_from(DerWriter &writer, int function, ASN1_UNIT **unit) noexcept {
  if (const int code = writer.result(function)) return code;
  ASN1_UNIT *made = decodeToBERSequence_n(writer.written().data(), int(writer.size()));
  if (!made) return fail(function, kNoMemory);
  *unit = made;
  return 0;
}

}  // namespace velpki
