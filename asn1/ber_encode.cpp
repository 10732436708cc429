// The encoders of one value.
#include "asn1/internal/ber_encode.h"

#include <velpki/asn1_error.h>
#include <velpki/ber.h>

#include "asn1/internal/oid_codec.h"
#include "asn1/internal/status.h"
#include "asn1/internal/string.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

constexpr size_t kLengthRoom = 6;

// The length octets in the given form, in `out`; their number, or 0 when the form cannot be used. The long form has at
// least one octet of length: 80 alone would mean indefinite.
size_t length_octets(size_t length, int form, uint8_t (&out)[kLengthRoom]) noexcept {
  if (form == kShortest) return write_length(length, out);
  if (form == kShort && length < 0x80) return write_length(length, out);
  if (form != kLong) return 0;
  if (length >= 0x80) return write_length(length, out);
  out[0] = 0x81;
  out[1] = uint8_t(length);
  return 2;
}

uint8_t *copy_of(Octets octets) noexcept {
  uint8_t *copy = static_cast<uint8_t *>(allocate(octets.size() + 1));
  if (!copy) return nullptr;
  copy_octets(copy, octets);
  copy[octets.size()] = 0;
  return copy;
}

// A string whose first `length` octets may be read.
bool is_readable(const ASN1_STRING *value, int length) noexcept {
  return value && length >= 0 && length <= value->length && (value->data || length == 0);
}

}  // namespace

bool fill_unit(ASN1_UNIT &out, uint8_t identifier, Octets content, int form) noexcept {
  uint8_t lengths[kLengthRoom];
  const size_t count = length_octets(content.size(), form, lengths);
  if (!count || content.size() > INT_MAX || tag::number(identifier) == 31) return false;
  const bool no_value = identifier == TYPE_NULL && content.empty();
  ASN1_UNIT fresh{copy_of(Octets(&identifier, 1)), copy_of(Octets(lengths, count)),
                  no_value ? nullptr : copy_of(content), nullptr};
  if (!fresh.tag || !fresh.length_octets || (!no_value && !fresh.value)) return clean_ASN1_UNIT(&fresh), false;
  clean_ASN1_UNIT(&out);
  out = fresh;
  return true;
}

bool encode_boolean(ASN1_UNIT &out, uint8_t identifier, const uint8_t *value, int length, int form) noexcept {
  return value && length == 1 && fill_unit(out, identifier, Octets(value, 1), form);
}

bool encode_integer(ASN1_UNIT &out, uint8_t identifier, const BIGINT *value, int length, int form) noexcept {
  if (!value || length < 1) return false;
  const owned<uint8_t> content = new_octets(size_t(length));
  return content && PKV_BIGINT_To_Binary(value, content.get(), length) == 0 &&
         fill_unit(out, identifier, Octets(content.get(), size_t(length)), form);
}

bool encode_bits(ASN1_UNIT &out, uint8_t identifier, const ASN1_STRING *value, int length, int form) noexcept {
  if (!is_readable(value, length) || value->unused_bits < 0 || value->unused_bits > 7) return false;
  if (length == 0 && value->unused_bits) return false;
  DerWriter content;
  content.octet(uint8_t(value->unused_bits));
  content.raw(octets_of(value->data, length));
  return !content.failed() && fill_unit(out, identifier, content.written(), form);
}

bool encode_null(ASN1_UNIT &out, uint8_t identifier, int length, int form) noexcept {
  return length == 0 && fill_unit(out, identifier, {}, form);
}

bool encode_oid(ASN1_UNIT &out, uint8_t identifier, const ASN1_STRING *value, int length, int form,
                bool any_size) noexcept {
  if (!is_readable(value, length)) return false;
  DerWriter content;
  const std::string_view dotted = text(*value).substr(0, size_t(length));
  const bool encodable = any_size ? write_oid_content_any_size(dotted, content) : write_oid_content(dotted, content);
  return encodable && !content.failed() && fill_unit(out, identifier, content.written(), form);
}

bool encode_octets(ASN1_UNIT &out, uint8_t identifier, const ASN1_STRING *value, int length, int form) noexcept {
  return is_readable(value, length) && fill_unit(out, identifier, octets_of(value->data, length), form);
}

namespace {

// An INTEGER string holds a magnitude of `length` octets; it is written with (bit length + 8) / 8.
bool encode_integer_string(ASN1_UNIT &out, const ASN1_STRING *value, int length, int form) noexcept {
  if (!is_readable(value, length)) return false;
  const owned<BIGINT> number(PKV_New_BIGINT_Binary(value->data, length));
  return number &&
         encode_integer(out, TYPE_INTEGER, number.get(), (PKV_Get_BIGINT_Bit_Length(number.get()) + 8) / 8, form);
}

// A string under its own type. The kinds of value differ by type, so the string's type chooses a string encoder and
// never one that expects an octet or a number.
bool encode_string(ASN1_UNIT &out, const ASN1_STRING *value, int length, int form, bool constructed_too) noexcept {
  if (!value) return false;
  const uint8_t identifier = uint8_t(value->type);
  switch (form_of(*value, constructed_too)) {
    case StringForm::refused:
      return false;
    case StringForm::integer:
      return encode_integer_string(out, value, length, form);
    case StringForm::bits:
      return encode_bits(out, identifier, value, length, form);
    case StringForm::oid:
      return encode_oid(out, identifier, value, length, form);
    case StringForm::plain:
      return encode_octets(out, identifier, value, length, form);
  }
  return false;
}

}  // namespace

bool encode_value(ASN1_UNIT &out, int type, const void *value, int length, int form) noexcept {
  const auto *string = static_cast<const ASN1_STRING *>(value);
  if (type == TYPE_ASN1_STRING) return encode_string(out, string, length, form, false);
  if (type == TYPE_ASN1_UNIT || type < 0 || type > 0xFF) return false;
  const uint8_t identifier = uint8_t(type);
  switch (type & 0x1F) {
    case TYPE_BOOLEAN:
      return encode_boolean(out, identifier, static_cast<const uint8_t *>(value), length, form);
    case TYPE_INTEGER:
    case TYPE_ENUMERATED:
      return encode_integer(out, identifier, static_cast<const BIGINT *>(value), length, form);
    case TYPE_BIT_STRING:
      return encode_bits(out, identifier, string, length, form);
    case TYPE_NULL:
      return encode_null(out, identifier, length, form);
    case TYPE_OBJECT_IDENTIFIER:
      return encode_oid(out, identifier, string, length, form);
    default:
      return is_string_type(type & 0x1F) && encode_octets(out, identifier, string, length, form);
  }
}

namespace {

// The forms that the encoders of one value take from a caller; the shortest one is DER's.
bool is_stated(int form) noexcept { return form == kShort || form == kLong; }

// The code of an encoder: 0, or its own with `out` cleaned.
int finish(bool encoded, int function, ASN1_UNIT *out) noexcept {
  if (encoded) return 0;
  clean_ASN1_UNIT(out);
  return fail(function, ERR_INVALID_ENCODE_INPUT);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int encodeToBERBoolean(ASN1_UNIT *out, unsigned char tag, unsigned char *value, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_boolean(*out, tag, value, length, form), F_ENCODE_TO_BER_BOOLEAN, out);
}
int encodeToBERInteger(ASN1_UNIT *out, unsigned char tag, BIGINT *value, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_integer(*out, tag, value, length, form), F_ENCODE_TO_BER_INTEGER, out);
}
int encodeToBERBitString(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_bits(*out, tag, value, length, form), F_ENCODE_TO_BER_BIT_STRING, out);
}
int encodeToBERNull(ASN1_UNIT *out, unsigned char tag, void *, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_null(*out, tag, length, form), F_ENCODE_TO_BER_NULL, out);
}
int encodeToBERObjectIdentifier(ASN1_UNIT *out, unsigned char tag, OBJECT_IDENTIFIER *value, int length,
                                int form) noexcept {
  return finish(out && is_stated(form) && encode_oid(*out, tag, value, length, form), F_ENCODE_TO_BER_OBJECT_IDENTIFIER,
                out);
}
int encodeToBERObjectIdentifier_RFC5280(ASN1_UNIT *out, unsigned char tag, const OBJECT_IDENTIFIER *value, int length,
                                        int form) noexcept {
  return finish(out && is_stated(form) && encode_oid(*out, tag, value, length, form, true),
                F_ENCODE_TO_BER_OBJECT_IDENTIFIER, out);
}
int encodeToBERUTCTime(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_octets(*out, tag, value, length, form), F_ENCODE_TO_BER_TIME, out);
}
int encodeToBERGENERALIZEDTime(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_octets(*out, tag, value, length, form), F_ENCODE_TO_BER_TIME, out);
}
int encodeToBERASN1String(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length, int form) noexcept {
  return finish(out && is_stated(form) && encode_octets(*out, tag, value, length, form), F_ENCODE_TO_BER_ASN1_STRING,
                out);
}

int encodeToBER(ASN1_UNIT *out, int type, void *value, int length, int form) noexcept {
  const bool sound = out && (value || type == TYPE_NULL) && length >= 0 && form >= kShort && form <= kIndefinite &&
                     !(form == kShort && length >= 0x80);
  return finish(sound && encode_value(*out, type, value, length, form), F_ENCODE_TO_BER, out);
}

int encodeToBER_CS(ASN1_UNIT *out, int n, int type, void *value, int length, int form) noexcept {
  const bool encoded = n >= 0 && n <= 30 && encodeToBER(out, type, value, length, form) == 0;
  if (encoded) out->tag[0] = velpki::tag::implicit_context(n);
  return finish(encoded, F_ENCODE_TO_BER_CS, out);
}
