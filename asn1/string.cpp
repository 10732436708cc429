// ASN1_STRING: octets in one block with their record, and what is read into them.
#include "asn1/internal/string.h"

#include <velpki/asn1_error.h>

#include "asn1/internal/encoded_time.h"
#include "asn1/internal/oid_codec.h"
#include "asn1/internal/status.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

// The octets of a string stand behind its record. A record is always allocated at least one octet longer than the
// struct, so this address is never that of another block.
uint8_t *own_octets(ASN1_STRING *string) noexcept { return reinterpret_cast<uint8_t *>(string + 1); }

void release_octets(ASN1_STRING *string) noexcept {
  if (string->data != own_octets(string)) release(string->data);
}

constexpr size_t kTerminators = 2;  // one for text, two for UCS-2

}  // namespace

ASN1_STRING *new_string(int type, Octets data, int unused_bits, const char *file, int line) noexcept {
  if (data.size() > size_t(INT_MAX) - kTerminators) return nullptr;
  void *block = PKV_Malloc(sizeof(ASN1_STRING) + data.size() + kTerminators, file, line);
  if (!block) return nullptr;
  ASN1_STRING *string = static_cast<ASN1_STRING *>(block);
  uint8_t *octets = own_octets(string);
  *string = {type, octets, int(data.size()), unused_bits};
  copy_octets(octets, data);
  octets[data.size()] = octets[data.size() + 1] = 0;
  return string;
}

// Octets that share the record's block move into one of their own, which can grow.
bool append_octets(ASN1_STRING &string, Octets more) noexcept {
  const size_t length = size_t(string.length);
  if (more.size() > size_t(INT_MAX) - kTerminators - length) return false;
  const bool shared = string.data == own_octets(&string);
  void *block = PKV_Realloc(shared ? nullptr : string.data, length + more.size() + kTerminators, __FILE__, __LINE__);
  if (!block) return false;
  uint8_t *octets = static_cast<uint8_t *>(block);
  if (shared) copy_octets(octets, Octets(string.data, length));
  copy_octets(octets + length, more);
  octets[length + more.size()] = octets[length + more.size() + 1] = 0;
  string.data = octets;
  string.length = int(length + more.size());
  return true;
}

bool same_octets(const ASN1_STRING *a, const ASN1_STRING *b) noexcept {
  if (!a || !b || a->length != b->length) return false;
  const Octets left = octets(*a), right = octets(*b);
  return left.size() == right.size() && (left.empty() || std::memcmp(left.data(), right.data(), left.size()) == 0);
}

bool is_string_type(int number) noexcept {
  constexpr uint32_t kTypes = 1u << TYPE_BIT_STRING | 1u << TYPE_OCTET_STRING | 1u << TYPE_UTF8_STRING |
                              1u << TYPE_PRINTABLE_STRING | 1u << TYPE_T61_STRING | 1u << TYPE_IA5_STRING |
                              1u << TYPE_UTC_TIME | 1u << TYPE_GENERALIZED_TIME | 1u << TYPE_BMP_STRING;
  return number >= 0 && number < 32 && kTypes >> number & 1;
}

namespace {

Read keep(ASN1_STRING *string, ASN1_STRING *&out) noexcept {
  if (!string) return Read::no_memory;
  out = string;
  return Read::ok;
}

Read read_bits(int type, Octets content, ASN1_STRING *&out) noexcept {
  if (content.empty()) return Read::malformed;
  return keep(new_string(type, content.subspan(1), content[0]), out);
}

Read read_oid_as(int type, Octets content, ASN1_STRING *&out) noexcept {
  const Read outcome = read_oid(content, out);
  if (outcome == Read::ok) out->type = type;
  return outcome;
}

// Which numbers a generic string may hold.
bool holds_any_content(int number) noexcept {
  constexpr uint32_t kTypes = 1u << TYPE_BOOLEAN | 1u << TYPE_INTEGER | 1u << TYPE_OCTET_STRING | 1u << TYPE_NULL |
                              1u << TYPE_ENUMERATED | 1u << TYPE_UTF8_STRING | 1u << TYPE_SEQUENCE | 1u << TYPE_SET |
                              1u << TYPE_PRINTABLE_STRING | 1u << TYPE_T61_STRING | 1u << TYPE_IA5_STRING |
                              1u << TYPE_VISIBLE_STRING | 1u << TYPE_BMP_STRING;
  return kTypes >> number & 1;
}

}  // namespace

int time_flag(int type, Octets text) noexcept {
  const size_t without_seconds = type == TYPE_UTC_TIME ? 11 : 13;
  if (text.size() == without_seconds || text.size() == without_seconds + 2) return 1;
  if (text.size() == without_seconds + 4 || text.size() == without_seconds + 6) return 0;
  return !text.empty() && text.back() == 'Z';
}

Read read_string(const Tlv &tlv, int type, ASN1_STRING *&out) noexcept {
  switch (type) {
    case TYPE_BIT_STRING:
      return read_bits(type, tlv.content, out);
    case TYPE_OBJECT_IDENTIFIER:
      return read_oid(tlv.content, out);
    case TYPE_UTC_TIME:
    case TYPE_GENERALIZED_TIME:
      return keep(new_string(type, tlv.content, time_flag(type, tlv.content)), out);
    default:
      return keep(new_string(type, tlv.content), out);
  }
}

Read read_any_string(const Tlv &tlv, ASN1_STRING *&out) noexcept {
  const int type = tlv.identifier;
  const int number = tlv.number();
  if (tag::is_context_or_private(tlv.identifier) || holds_any_content(number)) {
    return keep(new_string(type, tlv.content), out);
  }
  if (number == TYPE_BIT_STRING) return read_bits(type, tlv.content, out);
  if (number == TYPE_OBJECT_IDENTIFIER) {
    const bool read = tlv.rules.standard && read_oid_any_size(tlv.content, out) == Read::ok;
    return read ? (out->type = type, Read::ok) : read_oid_as(type, tlv.content, out);
  }
  if (number == TYPE_UTC_TIME || number == TYPE_GENERALIZED_TIME) {
    return keep(new_string(type, tlv.content, time_flag(number, tlv.content)), out);
  }
  return tlv.rules.standard ? keep(new_string(type, tlv.content), out) : Read::malformed;
}

}  // namespace velpki

using namespace velpki;

ASN1_STRING *new_ASN1_STRING(void) noexcept {
  ASN1_STRING *string = static_cast<ASN1_STRING *>(allocate_zeroed(sizeof(ASN1_STRING) + 1));
  return string;
}

void clean_ASN1_STRING(ASN1_STRING *string) noexcept {
  if (!string) return;
  release_octets(string);
  string->data = nullptr;
  string->length = string->unused_bits = 0;
}

void free_ASN1_STRING(ASN1_STRING *string) noexcept {
  if (!string) return;
  release_octets(string);
  release(string);
}

ASN1_STRING *dup_ASN1_STRING(const ASN1_STRING *string) noexcept {
  if (!string || string->length < 0 || (!string->data && string->length > 0)) return nullptr;
  ASN1_STRING *copy = new_string(string->type, octets(*string), string->unused_bits);
  if (copy && !string->data) copy->data = nullptr;
  return copy;
}

int set_ASN1_STRING_value(ASN1_STRING *string, int type, const unsigned char *data, int length) noexcept {
  if (!string) return fail(F_SET_ASN1_STRING_VALUE, kNullArgument);
  if (length < 0 || (!data && length > 0) || length > INT_MAX - 2) return fail(F_SET_ASN1_STRING_VALUE, kBadValue);
  owned<uint8_t> copy;
  if (data) {
    copy = new_octets(size_t(length) + kTerminators);
    if (!copy) return fail(F_SET_ASN1_STRING_VALUE, kNoMemory);
    copy_octets(copy.get(), octets_of(data, length));
    copy.get()[length] = copy.get()[length + 1] = 0;
  }
  release_octets(string);
  string->type = type;
  string->data = copy.release();
  string->length = length;
  string->unused_bits = 0;
  return 0;
}

int cmp_ASN1_STRING(const ASN1_STRING *a, const ASN1_STRING *b) noexcept {
  return same_octets(a, b) && a->type == b->type ? 0 : 1;
}

int cmp_ASN1_STRING_strict(const ASN1_STRING *a, const ASN1_STRING *b) noexcept {
  if (cmp_ASN1_STRING(a, b)) return 1;
  return (a->type & 0x1F) == TYPE_BIT_STRING && a->unused_bits != b->unused_bits ? 1 : 0;
}

int ASN1_STRING_to_Seq(const ASN1_STRING *in, ASN1_UNIT **out) noexcept {
  if (!in || !out) return fail(F_ASN1_STRING_TO_SEQ, kNullArgument);
  DerWriter writer;
  writer.string(in);
  return unit_from(writer, F_ASN1_STRING_TO_SEQ, out);
}
