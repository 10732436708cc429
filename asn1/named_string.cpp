// The named string types: what each lets in.
#include "asn1/internal/encoded_time.h"
#include "asn1/internal/string.h"

namespace velpki {

bool is_dotted_decimal(std::string_view text) noexcept {
  if (text.empty() || text.front() == '.' || text.back() == '.') return false;
  char before = 0;
  for (const char c : text) {
    if (!(c == '.' ? before != '.' : c >= '0' && c <= '9')) return false;
    before = c;
  }
  return true;
}

}  // namespace velpki

using namespace velpki;

namespace {

ASN1_STRING *new_named(int type, const unsigned char *data, int length) noexcept {
  return data && length >= 0 ? new_string(type, octets_of(data, length)) : nullptr;
}

// The named types' release functions are those of the generic string under other names.
#define NAMED_STRING(T)                                         \
  void free_##T(T *value) noexcept { free_ASN1_STRING(value); } \
  void clean_##T(T *value) noexcept { clean_ASN1_STRING(value); }

bool is_printable(uint8_t c) noexcept {
  const bool alphanumeric = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
  return alphanumeric || (c && std::strchr(" '()+,-./:=?", c));
}
bool is_ia5(uint8_t c) noexcept { return c < 0x80; }

bool all_are(Octets text, bool (*allowed)(uint8_t)) noexcept {
  for (const uint8_t c : text)
    if (!allowed(c)) return false;
  return true;
}

// The value of a hexadecimal digit, or -1.
int digit_value(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = char(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

ASN1_STRING *copy_time(ASN1_STRING *to, const ASN1_STRING *from) noexcept {
  if (!to || !from) return nullptr;
  if (to == from) return to;
  const int unused_bits = from->unused_bits;
  if (set_ASN1_STRING_value(to, from->type, from->data, from->length)) return nullptr;
  to->unused_bits = unused_bits;
  return to;
}

ASN1_STRING *new_time(int type, const unsigned char *data, int length) noexcept {
  const Octets text = octets_of(data, length);
  return is_time_text(type, text) ? new_string(type, text, time_flag(type, text)) : nullptr;
}

}  // namespace

NAMED_STRING(OBJECT_IDENTIFIER)
NAMED_STRING(BIT_STRING)
NAMED_STRING(OCTET_STRING)
NAMED_STRING(UTF8_STRING)
NAMED_STRING(PRINTABLE_STRING)
NAMED_STRING(T61_STRING)
NAMED_STRING(IA5_STRING)
NAMED_STRING(BMP_STRING)
NAMED_STRING(UTC_TIME)
NAMED_STRING(GENERALIZED_TIME)

OBJECT_IDENTIFIER *new_OBJECT_IDENTIFIER(const char *text, int length) noexcept {
  if (!text || length < 1 || !is_dotted_decimal({text, size_t(length)})) return nullptr;
  return new_string(TYPE_OBJECT_IDENTIFIER, octets_of_text({text, size_t(length)}));
}

BIT_STRING *new_BIT_STRING(const unsigned char *data, int length) noexcept {
  return new_named(TYPE_BIT_STRING, data, length);
}
BIT_STRING *binaryToBIT_STRING(const unsigned char *data, int length) noexcept { return new_BIT_STRING(data, length); }
OCTET_STRING *new_OCTET_STRING(const unsigned char *data, int length) noexcept {
  return new_named(TYPE_OCTET_STRING, data, length);
}
UTF8_STRING *new_UTF8_STRING(const unsigned char *data, int length) noexcept {
  return new_named(TYPE_UTF8_STRING, data, length);
}
PRINTABLE_STRING *new_PRINTABLE_STRING(const unsigned char *data, int length) noexcept {
  return all_are(octets_of(data, length), is_printable) ? new_named(TYPE_PRINTABLE_STRING, data, length) : nullptr;
}
T61_STRING *new_T61_STRING(const unsigned char *data, int length) noexcept {
  return new_named(TYPE_T61_STRING, data, length);
}
IA5_STRING *new_IA5_STRING(const unsigned char *data, int length) noexcept {
  return all_are(octets_of(data, length), is_ia5) ? new_named(TYPE_IA5_STRING, data, length) : nullptr;
}
BMP_STRING *new_BMP_STRING(const unsigned char *data, int length) noexcept {
  return new_named(TYPE_BMP_STRING, data, length);
}
UTC_TIME *new_UTC_TIME(const unsigned char *data, int length) noexcept { return new_time(TYPE_UTC_TIME, data, length); }
GENERALIZED_TIME *new_GENERALIZED_TIME(const unsigned char *data, int length) noexcept {
  return new_time(TYPE_GENERALIZED_TIME, data, length);
}

BIT_STRING *hexToBIT_STRING(const char *text, int length) noexcept {
  if (!text || length < 1) return nullptr;
  owned<BIT_STRING> bits(new_ASN1_STRING());
  const owned<uint8_t> octets = new_octets(size_t(length) / 2 + 1);
  if (!bits || !octets) return nullptr;
  std::memset(octets.get(), 0, size_t(length) / 2 + 1);
  for (int i = 0; i < length; ++i) {
    const int value = digit_value(text[i]);
    if (value < 0) return nullptr;
    octets.get()[i / 2] |= uint8_t(i % 2 ? value : value << 4);
  }
  if (set_ASN1_STRING_value(bits.get(), TYPE_BIT_STRING, octets.get(), length / 2 + length % 2)) return nullptr;
  bits->unused_bits = length % 2 ? 4 : 0;
  return bits.release();
}

UTC_TIME *copy_UTC_TIME(UTC_TIME *to, const UTC_TIME *from) noexcept { return copy_time(to, from); }
GENERALIZED_TIME *copy_GENERALIZED_TIME(GENERALIZED_TIME *to, const GENERALIZED_TIME *from) noexcept {
  return copy_time(to, from);
}
