// The DER entry points over the shared encoders, and their strict siblings.
#include <velpki/der.h>

#include <velpki/asn1_error.h>

#include <algorithm>

#include "asn1/internal/ber_encode.h"
#include "asn1/internal/cursor.h"
#include "asn1/internal/encoded_time.h"
#include "asn1/internal/status.h"
#include "asn1/internal/string.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

int finish(bool done, int function, ASN1_UNIT *unit) noexcept {
  if (done) return 0;
  clean_ASN1_UNIT(unit);
  return fail(function, ERR_INVALID_ENCODE_INPUT);
}

constexpr int kUtcTimeWithZ = 13, kUtcTimeWithOffset = 17;

// Date and time of a UTCTime of 17 characters as written, without its offset, as 13 characters; null when unreadable.
owned<UTC_TIME> without_offset(const ASN1_STRING &time) noexcept {
  uint8_t text[kUtcTimeWithZ];
  std::memcpy(text, time.data, sizeof text - 1);
  text[sizeof text - 1] = 'Z';
  const owned<UTC_TIME> written(new_UTC_TIME(text, sizeof text));
  const owned<ASN1_TIME> fields(utcTimeToASN1_TIME(written.get()));
  return owned<UTC_TIME>(asn1TimeToUTC_TIME(fields.get(), 2));
}

bool normalise_utc_time(ASN1_STRING *time, int *length) noexcept {
  if (!time || !length || *length < 0 || *length > time->length) return false;
  if (*length == 11 || *length == 15) return false;
  if (*length != kUtcTimeWithOffset) return true;
  if (!time->data) return false;
  const owned<UTC_TIME> written = without_offset(*time);
  if (!written || written->length != kUtcTimeWithZ) return false;
  std::memcpy(time->data, written->data, kUtcTimeWithZ + 1);
  *length = time->length = kUtcTimeWithZ;
  return true;
}

// The caller's octet may be constant memory unless it has to change.
bool normalise_boolean(uint8_t *octet) noexcept {
  if (!octet) return false;
  if (*octet != 0x00 && *octet != 0xFF) *octet = 0xFF;
  return true;
}

bool normalise(int type, void *value, int *length) noexcept {
  if (type == TYPE_BOOLEAN) return normalise_boolean(static_cast<uint8_t *>(value));
  if (type == TYPE_UTC_TIME) return normalise_utc_time(static_cast<ASN1_STRING *>(value), length);
  return true;
}

bool has_value(int type, const void *value, int length) noexcept { return (value || type == TYPE_NULL) && length >= 0; }

bool encode(ASN1_UNIT *out, int type, void *value, int length) noexcept {
  return out && has_value(type, value, length) && normalise(type, value, &length) &&
         encode_value(*out, type, value, length, kShortest);
}

bool append(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  return seq && normalise(type, value, &length) && append_value(*seq, type, value, length, kShortest);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int checkDER(int type, void *value, int *length) noexcept {
  return normalise(type, value, length) ? 0 : fail(F_CHECK_DER, ERR_INVALID_ENCODE_INPUT);
}

int encodeToDER(ASN1_UNIT *out, int type, void *value, int length) noexcept {
  return finish(encode(out, type, value, length), F_ENCODE_TO_DER, out);
}

int encodeToDER_CS(ASN1_UNIT *out, int n, int type, void *value, int length) noexcept {
  const bool encoded = n >= 0 && n <= 30 && encode(out, type, value, length);
  if (encoded) out->tag[0] = tag::implicit_context(n);
  return finish(encoded, F_ENCODE_TO_DER_CS, out);
}

int addToDERSequence(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  return finish(append(seq, type, value, length), F_ADD_TO_DER_SEQUENCE, seq);
}

int addToDERSet(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  const bool appended = append(seq, type, value, length);
  if (appended) seq->tag[0] = tag::kSet;
  return finish(appended, F_ADD_TO_DER_SET, seq);
}

int addToDERSequence_CS(ASN1_UNIT *seq, int n, int type, void *value, int length) noexcept {
  const bool appended = n >= 0 && n <= 30 && append(seq, type, value, length);
  if (appended) seq->tag[0] = tag::explicit_context(n);
  return finish(appended, F_ADD_TO_DER_SEQUENCE_CS, seq);
}

// The empty list is the BER function's; so is the choice when it is one.
int addToDERSequenceOf(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  const bool empty = seq && makes_empty_list(type, value, length);
  const bool done = empty ? addToBERSequenceOf(seq, type, value, 0, kShort) == 0 : append(seq, type, value, length);
  return finish(done, F_ADD_TO_DER_SEQUENCE_OF, seq);
}

int addToDERSetOf(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  const bool empty = seq && makes_empty_list(type, value, length);
  if (empty) return finish(addToBERSetOf(seq, type, value, 0, kShort) == 0, F_ADD_TO_DER_SET_OF, seq);
  const bool appended = append(seq, type, value, length);
  if (appended) seq->tag[0] = tag::kSet;
  return finish(appended, F_ADD_TO_DER_SET_OF, seq);
}

// Strict siblings.

namespace velpki {

namespace {

// A time in UTC with seconds and its offset applied, as DER wants it; null when it cannot be read.
owned<ASN1_STRING> der_time(int type, const ASN1_STRING *time) noexcept {
  const bool utc = type == TYPE_UTC_TIME;
  const owned<ASN1_TIME> fields(utc ? utcTimeToASN1_TIME(time) : generalizedTimeToASN1_TIME(time));
  return owned<ASN1_STRING>(utc ? asn1TimeToUTC_TIME(fields.get(), 2) : asn1TimeToGENERALIZED_TIME(fields.get(), 2));
}

bool padding_is_zero(const ASN1_STRING &bits) noexcept {
  if (bits.unused_bits < 0 || bits.unused_bits > 7) return false;
  if (bits.unused_bits == 0) return true;
  return bits.data && bits.length > 0 && !(bits.data[bits.length - 1] & ((1 << bits.unused_bits) - 1));
}

bool encode_strict(ASN1_UNIT &out, int type, const void *value, int length) noexcept {
  const auto *string = static_cast<const ASN1_STRING *>(value);
  const int kind = type == TYPE_ASN1_STRING && string ? string->type : type;
  if (!has_value(kind, value, length)) return false;
  if (kind == TYPE_UTC_TIME || kind == TYPE_GENERALIZED_TIME) {
    const owned<ASN1_STRING> time = der_time(kind, string);
    return time && encode_octets(out, uint8_t(kind), time.get(), time->length, kShortest);
  }
  if (type == TYPE_BOOLEAN) {
    const uint8_t octet = *static_cast<const uint8_t *>(value) ? 0xFF : 0x00;
    return encode_boolean(out, TYPE_BOOLEAN, &octet, length, kShortest);
  }
  if (kind == TYPE_BIT_STRING && !padding_is_zero(*string)) return false;
  return encode_value(out, type, value, length, kShortest);
}

// Where a value stands among the children of a sorted SET OF: before the first one that is greater (X.690 11.6).
size_t sorted_place(const Tlv &set, Octets value) noexcept {
  Cursor in(set);
  for (Tlv child; in.next(child);) {
    const size_t common = std::min(child.whole.size(), value.size());
    const int order = std::memcmp(child.whole.data(), value.data(), common);
    if (order > 0 || (order == 0 && child.whole.size() > value.size())) {
      return size_t(child.whole.data() - set.content.data());
    }
  }
  return set.content.size();
}

// Moves the child that was appended last to its place.
bool sort_last_child(ASN1_UNIT &set, size_t before) noexcept {
  Tlv tlv;
  if (!view(set, tlv, kStandardRules)) return false;
  const Octets added = tlv.content.subspan(before);
  Tlv old = tlv;
  old.content = tlv.content.first(before);
  const size_t place = sorted_place(old, added);
  const owned<uint8_t> copy = new_octets(added.size());
  if (!copy) return false;
  copy_octets(copy.get(), added);
  std::memmove(set.value + place + added.size(), set.value + place, before - place);
  std::memcpy(set.value + place, copy.get(), added.size());
  return true;
}

bool is_unit(int type, const void *value) noexcept { return is_unit_type(type) && value; }

// Appends a child, encoded here unless it is a unit. A unit is not taken over yet.
bool append_strict(ASN1_UNIT &seq, int type, void *value, int length) noexcept {
  if (is_unit(type, value)) return append_value(seq, TYPE_SEQUENCE, value, length, kShortest);
  ASN1_UNIT child{};
  const bool appended =
      encode_strict(child, type, value, length) && append_value(seq, TYPE_SEQUENCE, &child, 0, kShortest);
  clean_ASN1_UNIT(&child);
  return appended;
}

// What the caller has handed over is released when nothing can fail any more.
bool taken(bool appended, int type, void *value) noexcept {
  if (appended && type == TYPE_ASN1_UNIT) free_ASN1_UNIT(static_cast<ASN1_UNIT *>(value));
  return appended;
}

}  // namespace

}  // namespace velpki

int encodeToDER_strict(ASN1_UNIT *out, int type, const void *value, int length) noexcept {
  return finish(out && encode_strict(*out, type, value, length), F_ENCODE_TO_DER, out);
}

int addToDERSequenceOf_strict(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  const bool empty = seq && !seq->tag && makes_empty_list(type, value, length);
  const bool done = seq && (empty ? fill_unit(*seq, tag::kSequence, {}, kShort)
                                  : taken(append_strict(*seq, type, value, length), type, value));
  return finish(done, F_ADD_TO_DER_SEQUENCE_OF, seq);
}

int addToDERSetOf_strict(ASN1_UNIT *seq, int type, void *value, int length) noexcept {
  if (!seq) return fail(F_ADD_TO_DER_SET_OF, ERR_INVALID_ENCODE_INPUT);
  if (!seq->tag && makes_empty_list(type, value, length)) {
    return finish(fill_unit(*seq, tag::kSet, {}, kShort), F_ADD_TO_DER_SET_OF, seq);
  }
  const int before = seq->tag ? getASN1ValueLength(seq) : 0;
  const bool appended =
      before >= 0 && append_strict(*seq, type, value, length) && sort_last_child(*seq, size_t(before));
  if (appended) seq->tag[0] = tag::kSet;
  return finish(taken(appended, type, value), F_ADD_TO_DER_SET_OF, seq);
}

// Decoders.

#define DER_DECODER(name, T) \
  T *decodeToDER##name(const unsigned char *encoded) noexcept { return decodeToBER##name(encoded); }

DER_DECODER(Boolean, unsigned char)
DER_DECODER(Integer, BIGINT)
DER_DECODER(BitString, ASN1_STRING)
DER_DECODER(OctetString, ASN1_STRING)
DER_DECODER(Null, void)
DER_DECODER(ObjectIdentifier, OBJECT_IDENTIFIER)
DER_DECODER(Enumerated, BIGINT)
DER_DECODER(UTF8String, ASN1_STRING)
DER_DECODER(Sequence, ASN1_UNIT)
DER_DECODER(PrintableString, ASN1_STRING)
DER_DECODER(IA5String, ASN1_STRING)
DER_DECODER(UTCTime, ASN1_STRING)
DER_DECODER(GENERALIZEDTime, ASN1_STRING)
DER_DECODER(BMPString, ASN1_STRING)
DER_DECODER(ASN1String, ASN1_STRING)

void *getDERChildAt(const ASN1_UNIT *unit, int index, int type) noexcept { return getBERChildAt(unit, index, type); }
void printDERData(const ASN1_UNIT *unit) noexcept { printBERData(unit); }

namespace velpki {

namespace {

bool length_is_minimal(const Tlv &tlv) noexcept {
  uint8_t octets[8];
  return !tlv.indefinite && tlv.header.size() == write_length(tlv.content.size(), octets);
}

// Every value of `octets`, and those inside the constructed ones, has a definite length of the fewest octets.
bool lengths_are_der(Octets octets, Rules rules) noexcept {
  if (rules.depth == 0) return false;
  --rules.depth;
  while (!octets.empty()) {
    Tlv value;
    if (!Tlv::parse(octets, rules, value) || !length_is_minimal(value)) return false;
    if (value.identifier & tag::kConstructed && !lengths_are_der(value.content, rules)) return false;
    octets = octets.subspan(value.whole.size());
  }
  return true;
}

}  // namespace

bool is_der(Octets octets) noexcept {
  Tlv value;
  Rules rules = kStandardRules;
  return Tlv::parse(octets, rules, value) && value.whole.size() == octets.size() &&
         lengths_are_der(octets, kStandardRules);
}

}  // namespace velpki

ASN1_UNIT *decodeToDERSequence_strict(const unsigned char *encoded, int length) noexcept {
  return is_der(octets_of(encoded, length)) ? decodeToBERSequence_n(encoded, length) : nullptr;
}
