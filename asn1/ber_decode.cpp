// The decoders of one value, each at a bare pointer and within octets that are known.
#include <velpki/ber.h>

#include "asn1/internal/cursor.h"
#include "asn1/internal/oid_codec.h"
#include "asn1/internal/string.h"

namespace velpki {

namespace {

uint8_t *boolean_of(const Tlv &tlv) noexcept {
  if (tlv.content.size() != 1) return nullptr;
  uint8_t *octet = static_cast<uint8_t *>(allocate(1));
  if (octet) *octet = tlv.content[0];
  return octet;
}
BIGINT *integer_of(const Tlv &tlv) noexcept {
  BIGINT *number = nullptr;
  return read_integer(tlv, number) == Read::ok ? number : nullptr;
}
template <int type>
ASN1_STRING *string_of(const Tlv &tlv) noexcept {
  ASN1_STRING *string = nullptr;
  return read_string(tlv, type, string) == Read::ok ? string : nullptr;
}
ASN1_STRING *any_string_of(const Tlv &tlv) noexcept {
  ASN1_STRING *string = nullptr;
  return read_any_string(tlv, string) == Read::ok ? string : nullptr;
}
ASN1_UNIT *unit_of(const Tlv &tlv) noexcept {
  ASN1_UNIT *unit = nullptr;
  return read_unit(tlv, unit) == Read::ok ? unit : nullptr;
}

// Neither negative nor padded: then the magnitude is the value, and it is written back as it was.
BIGINT *strict_integer_of(const Tlv &tlv) noexcept {
  const Octets content = tlv.content;
  if (content.empty() || content[0] & 0x80) return nullptr;
  if (content.size() > 1 && content[0] == 0 && !(content[1] & 0x80)) return nullptr;
  return integer_of(tlv);
}

template <class T>
T *decode_unbounded(const uint8_t *encoded, T *(*read)(const Tlv &) noexcept) noexcept {
  Tlv tlv;
  return Tlv::parse_unbounded(encoded, tlv) ? read(tlv) : nullptr;
}
template <class T>
T *decode_bounded(const uint8_t *encoded, int available, T *(*read)(const Tlv &) noexcept, Rules rules = {}) noexcept {
  Tlv tlv;
  return Tlv::parse(octets_of(encoded, available), rules, tlv) ? read(tlv) : nullptr;
}

// Something that is not null stands for a NULL.
void *null_placeholder() noexcept { return allocate_zeroed(4); }

}  // namespace

}  // namespace velpki

using namespace velpki;

// A decoder at a bare pointer, and its bounded twin.
#define DECODER(name, T, read)                                                                               \
  T *decodeToBER##name(const unsigned char *encoded) noexcept { return decode_unbounded<T>(encoded, read); } \
  T *decodeToBER##name##_n(const unsigned char *encoded, int available) noexcept {                           \
    return decode_bounded<T>(encoded, available, read);                                                      \
  }

DECODER(Boolean, unsigned char, boolean_of)
DECODER(Integer, BIGINT, integer_of)
DECODER(Enumerated, BIGINT, integer_of)
DECODER(BitString, ASN1_STRING, string_of<TYPE_BIT_STRING>)
DECODER(OctetString, ASN1_STRING, string_of<TYPE_OCTET_STRING>)
DECODER(ObjectIdentifier, OBJECT_IDENTIFIER, string_of<TYPE_OBJECT_IDENTIFIER>)
DECODER(UTF8String, ASN1_STRING, string_of<TYPE_UTF8_STRING>)
DECODER(PrintableString, ASN1_STRING, string_of<TYPE_PRINTABLE_STRING>)
DECODER(T61String, ASN1_STRING, string_of<TYPE_T61_STRING>)
DECODER(IA5String, ASN1_STRING, string_of<TYPE_IA5_STRING>)
DECODER(BMPString, ASN1_STRING, string_of<TYPE_BMP_STRING>)
DECODER(UTCTime, ASN1_STRING, string_of<TYPE_UTC_TIME>)
DECODER(GENERALIZEDTime, ASN1_STRING, string_of<TYPE_GENERALIZED_TIME>)
DECODER(Sequence, ASN1_UNIT, unit_of)
DECODER(ASN1String, ASN1_STRING, any_string_of)

void *decodeToBERNull(const unsigned char *encoded) noexcept { return encoded ? null_placeholder() : nullptr; }
void *decodeToBERNull_n(const unsigned char *encoded, int available) noexcept {
  return encoded && available > 0 ? null_placeholder() : nullptr;
}

BIGINT *decodeToBERInteger_strict(const unsigned char *encoded, int available) noexcept {
  return decode_bounded<BIGINT>(encoded, available, strict_integer_of);
}
OBJECT_IDENTIFIER *decodeToBERObjectIdentifier_RFC5280(const unsigned char *encoded, int available) noexcept {
  const auto decode = +[](const Tlv &tlv) noexcept {
    OBJECT_IDENTIFIER *oid = nullptr;
    read_oid_any_size(tlv.content, oid);
    return oid;
  };
  return decode_bounded<OBJECT_IDENTIFIER>(encoded, available, decode, kStandardRules);
}
ASN1_UNIT *decodeToBERSequence_strict(const unsigned char *encoded, int available) noexcept {
  return decode_bounded<ASN1_UNIT>(encoded, available, unit_of, kStandardRules);
}

namespace {

// The kind of value that each expected type decodes to.
void *value_of(const Tlv &child, int type) noexcept {
  ASN1_STRING *string = nullptr;
  switch (type) {
    case TYPE_BOOLEAN:
      return boolean_of(child);
    case TYPE_INTEGER:
    case TYPE_ENUMERATED:
      return integer_of(child);
    case TYPE_NULL:
      return null_placeholder();
    case TYPE_SEQUENCE:
    case TYPE_SET:
    case tag::kSequence:
    case tag::kSet:
      return unit_of(child);
    case TYPE_ASN1_STRING:
      return any_string_of(child);
    default:
      if (type != TYPE_OBJECT_IDENTIFIER && !is_string_type(type)) return nullptr;
      return read_string(child, type, string) == Read::ok ? string : nullptr;
  }
}

// The tag rule of the navigators. 33 & 31 is 1, so a BOOLEAN met where a unit is expected passes the second test and
// then finds no decoder.
void *expected_value(const Tlv &child, int type) noexcept {
  if (tag::is_context_or_private(child.identifier)) return value_of(child, type);
  if (child.number() == (type & 0x1F)) return value_of(child, type);
  if (type == TYPE_ASN1_STRING) return any_string_of(child);
  return type == TYPE_ASN1_UNIT && is_string_type(child.number()) ? unit_of(child) : nullptr;
}

// The child at `index` of those that start at `from` in the parent's content; `offset` receives where it starts.
bool find_child(const Tlv &parent, size_t from, int index, Tlv &child, size_t &offset) noexcept {
  if (index < 0) return false;
  Tlv part = parent;
  part.content = parent.content.subspan(from);
  Cursor in(part);
  for (int i = 0; in.next(child); ++i) {
    if (i != index) continue;
    offset = size_t(child.whole.data() - parent.content.data());
    return true;
  }
  return false;
}

}  // namespace

void *getBERChildAt(const ASN1_UNIT *unit, int index, int type) noexcept {
  Tlv parent, child;
  size_t offset;
  if (!unit || !view(*unit, parent) || !find_child(parent, 0, index, child, offset)) return nullptr;
  return expected_value(child, type);
}

void *getBERChildAt_strict(const ASN1_UNIT *unit, int index, int identifier, int type) noexcept {
  Tlv parent, child;
  size_t offset;
  if (!unit || !view(*unit, parent, kStandardRules) || !find_child(parent, 0, index, child, offset)) return nullptr;
  if (child.identifier != identifier) return nullptr;
  return type == TYPE_ASN1_UNIT ? unit_of(child) : value_of(child, type);
}

void *getBERChildOffset(const ASN1_UNIT *unit, int index, int type, int *cursor) noexcept {
  if (!cursor) return getBERChildAt(unit, index, type);
  Tlv parent, child;
  if (!unit || !view(*unit, parent) || *cursor < 0 || size_t(*cursor) > parent.content.size()) return nullptr;
  size_t offset = 0;
  if (!find_child(parent, size_t(*cursor), *cursor ? 1 : index, child, offset)) return nullptr;
  void *value = expected_value(child, type);
  if (value) *cursor = int(offset);
  return value;
}
