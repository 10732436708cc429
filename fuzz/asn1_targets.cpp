// Units, strings, identifiers, times and text.
#include <velpki/asn1_objects.h>
#include <velpki/base64.h>
#include <velpki/convert.h>
#include <velpki/pem.h>

#include <string>

#include "target.h"

namespace {

void units(const uint8_t *data, int size) {
  const Owned<ASN1_UNIT> unit(decodeToBERSequence_n(data, size));
  if (unit) {
    const Flat flat(unit);
    require(flat.length > 0, "a decoded unit can be flattened");
    getSequenceChildNum(unit);
    getChildType(unit, 1);
    int cursor = 0;
    for (int i = 0; void *child = getBERChildOffset(unit, i, TYPE_ASN1_STRING, &cursor); ++i)
      free_ASN1_STRING(static_cast<ASN1_STRING *>(child));
    const Owned<ASN1_UNIT> copy(dup_ASN1_UNIT(unit)), faithful(dup_ASN1_UNIT_strict(unit));
    require(faithful && Flat(faithful) == flat, "a faithful copy");
    if (copy) Flat{copy};
  }
  const Owned<ASN1_UNIT> strict(decodeToDERSequence_strict(data, size));
  if (strict) require(Flat(strict).length == size, "DER comes back octet for octet");
  free_ASN1_UNIT(decodeToBERSequence_strict(data, size));
}

void strings(const uint8_t *data, int size) {
  const Owned<ASN1_STRING> value(decodeToBERASN1String_n(data, size));
  Owned<ASN1_UNIT> unit;
  if (value && ASN1_STRING_to_Seq(value, &unit) == 0) require(Flat(unit).length >= 2, "an encoding");
  free_ASN1_STRING(decodeToBERBitString_n(data, size));
  PKV_Free_BIGINT(decodeToBERInteger_n(data, size));
}

void oids(const uint8_t *data, int size) {
  const Owned<ASN1_STRING> oid(decodeToBERObjectIdentifier_n(data, size));
  if (oid) {
    require(oid->length < 100, "bounded text");
    get_DigestID_from_OID(oid);
    get_AlgorType_from_OID(oid);
  }
  free_OBJECT_IDENTIFIER(decodeToBERObjectIdentifier_RFC5280(data, size));
  free_OBJECT_IDENTIFIER(new_OBJECT_IDENTIFIER(reinterpret_cast<const char *>(data), size));
  ASN1_STRING raw{TYPE_OBJECT_IDENTIFIER, const_cast<uint8_t *>(data), size, 0};
  const Owned<ASN1_UNIT> unit(new_ASN1_UNIT());
  encodeToBERObjectIdentifier(unit, 6, &raw, size, 1);
  encodeToBERObjectIdentifier_RFC5280(unit, 6, &raw, size, 1);
}

void times(const uint8_t *data, int size) {
  ASN1_STRING raw{TYPE_UTC_TIME, const_cast<uint8_t *>(data), size, 0};
  free_ASN1_TIME(utcTimeToASN1_TIME(&raw));
  free_ASN1_TIME(utcTimeToASN1_TIME_RFC5280(&raw));
  raw.type = TYPE_GENERALIZED_TIME;
  const Owned<ASN1_TIME> time(generalizedTimeToASN1_TIME(&raw));
  for (int form = 0; time && form < 4; ++form) {
    free_ASN1_STRING(asn1TimeToUTC_TIME(time, form));
    free_ASN1_STRING(asn1TimeToGENERALIZED_TIME(time, form));
  }
  free_ASN1_TIME(generalizedTimeToASN1_TIME_RFC5280(&raw));
  const std::string text(reinterpret_cast<const char *>(data), size_t(size));
  free_ASN1_TIME(charToASN1_TIME(text.c_str()));
}

void texts(const uint8_t *data, int size) {
  const char *text = reinterpret_cast<const char *>(data);
  for (const auto decode : {decode_PEM, decode_PEM_strict, decode_Base64_strict}) {
    Owned<unsigned char> out;
    decode(text, size, &out);
  }
  Owned<unsigned char> out;
  const int length = decode_Base64(text, size, &out);
  if (length <= 0) return;
  Owned<char> again;
  Owned<unsigned char> back;
  require(encode_Base64(out, length, &again, 1) > 0, "octets become text");
  require(decode_Base64(again, int(std::strlen(again)), &back) == length, "and octets again");
  require(std::memcmp(out, back, size_t(length)) == 0, "the same");
}

void conversions(const uint8_t *data, int size) {
  const char *text = reinterpret_cast<const char *>(data);
  Owned<unsigned char> ucs2, widened;
  Owned<char> back, utf8, cp949, narrowed;
  const int length = cp949ToUnicode(text, size, &ucs2);
  if (length > 0) {
    require(unicodeToCP949(ucs2, length, &back) == size, "CP949 comes back");
    require(std::memcmp(back, data, size_t(size)) == 0, "the same");
  }
  cp949ToUTF8(text, size, &utf8);
  unicodeToCP949(data, size, &cp949);
  ascTouni(text, size, &widened);
  uniToasc(data, size, &narrowed);
}

constexpr Target kTargets[] = {
    {"unit", units}, {"string", strings}, {"oid", oids}, {"time", times}, {"pem", texts}, {"cp949", conversions},
};

const Registered kRegistered(kTargets);

}  // namespace
