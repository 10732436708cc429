// The structures that hold the two halves of a KCDSA or ECDSA signature.
#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

namespace {

Octets without_leading_zeros(Octets number) noexcept {
  while (!number.empty() && number[0] == 0) number = number.subspan(1);
  return number;
}

// An INTEGER of (bit length + 8) / 8 octets from a big-endian magnitude.
void write_magnitude(Octets number, DerWriter &out) noexcept {
  const Octets magnitude = without_leading_zeros(number);
  const bool zero_in_front = magnitude.empty() || magnitude[0] & 0x80;
  const auto scope = out.constructed(TYPE_INTEGER);
  if (zero_in_front) out.octet(0);
  out.raw(magnitude);
}

}  // namespace

// KCDSASignatureValue ::= SEQUENCE { r BIT STRING, s INTEGER }
void write_kcdsa_value(Octets r, Octets s, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.bits(r);
  write_magnitude(s, out);
}

void write_ecdsa_value(Octets r, Octets s, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  write_magnitude(r, out);
  write_magnitude(s, out);
}

bool read_kcdsa_value(Octets der, SignatureHalves &out) noexcept {
  Tlv tlv, r, s;
  Rules rules;
  if (!Tlv::parse(der, rules, tlv)) return false;
  Cursor in(tlv);
  if (!in.next(TYPE_BIT_STRING, r) || r.content.empty() || r.content[0] != 0) return false;
  if (!in.next(TYPE_INTEGER, s) || s.content.empty()) return false;
  out = {r.content.subspan(1), without_leading_zeros(s.content)};
  return true;
}

namespace {

// The octets of s as an INTEGER holds them: one in front when the magnitude fills its octets, one for zero.
size_t integer_size(Octets magnitude) noexcept { return magnitude.size() + (magnitude.empty() || magnitude[0] & 0x80); }

void copy_right_aligned(Octets from, size_t size, uint8_t *to) noexcept {
  std::memset(to, 0, size - from.size());
  copy_octets(to + size - from.size(), from);
}

int store_string(DerWriter &writer, ASN1_STRING **encoded) noexcept {
  ASN1_STRING *string = writer.failed() ? nullptr : new_string(TYPE_BIT_STRING, writer.written());
  if (!string) return 1;
  *encoded = string;
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int encode_KCDSASignatureValue(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                               ASN1_STRING **encoded) noexcept {
  if (!r || !s || r_length < 1 || s_length < 1 || !encoded) return 1;
  DerWriter writer;
  write_kcdsa_value(octets_of(r, r_length), octets_of(s, s_length), writer);
  return store_string(writer, encoded);
}

int decode_KCDSASignatureValue_n(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                 const ASN1_STRING *encoded) noexcept {
  SignatureHalves halves;
  if (!r || !r_length || !s || !s_length || !encoded || !read_kcdsa_value(octets(*encoded), halves)) return 1;
  const size_t s_size = integer_size(halves.s);
  if (*r_length < 0 || *s_length < 0 || halves.r.size() > size_t(*r_length) || s_size > size_t(*s_length)) return 1;
  copy_octets(r, halves.r);
  copy_right_aligned(halves.s, s_size, s);
  *r_length = int(halves.r.size());
  *s_length = int(s_size);
  return 0;
}

int decode_KCDSASignatureValue(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                               const ASN1_STRING *encoded) noexcept {
  if (!r_length || !s_length) return 1;
  int r_size = 64, s_size = 64;
  if (decode_KCDSASignatureValue_n(r, &r_size, s, &s_size, encoded)) return 1;
  *r_length = r_size;
  *s_length = s_size;
  return 0;
}

int encode_KCDSASignatrueValue(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                               ASN1_STRING **encoded) noexcept {
  return encode_KCDSASignatureValue(r, r_length, s, s_length, encoded);
}

int decode_KCDSASignatrueValue(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                               const ASN1_STRING *encoded) noexcept {
  return decode_KCDSASignatureValue(r, r_length, s, s_length, encoded);
}

int encode_ECDSA_SIGNATURE_VALUE(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                 ASN1_STRING **encoded) noexcept {
  if (!r || !s || !encoded) return fail(F_ENCODE_ECDSA_SIGNATURE_VALUE, kNullArgument);
  if (r_length < 1 || s_length < 1) return fail(F_ENCODE_ECDSA_SIGNATURE_VALUE, kBadValue);
  DerWriter writer;
  write_ecdsa_value(octets_of(r, r_length), octets_of(s, s_length), writer);
  if (const int code = writer.result(F_ENCODE_ECDSA_SIGNATURE_VALUE)) return code;
  return store_string(writer, encoded) ? fail(F_ENCODE_ECDSA_SIGNATURE_VALUE, kNoMemory) : 0;
}

namespace velpki {

// ECDSA-Sig-Value ::= SEQUENCE { r INTEGER, s INTEGER }, both above zero.
bool read_ecdsa_value(Octets der, SignatureHalves &out) noexcept {
  Tlv tlv, r, s;
  Rules rules = kStandardRules;
  if (!Tlv::parse(der, rules, tlv) || tlv.identifier != tag::kSequence) return false;
  Cursor in(tlv);
  if (!in.next(TYPE_INTEGER, r) || !in.next(TYPE_INTEGER, s) || !in.at_end()) return false;
  for (const Tlv *half : {&r, &s})
    if (half->content.empty() || half->content[0] & 0x80) return false;
  out = {without_leading_zeros(r.content), without_leading_zeros(s.content)};
  return true;
}

}  // namespace velpki

int decode_ECDSA_SIGNATURE_VALUE(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                 const ASN1_STRING *encoded) noexcept {
  if (!r || !r_length || !s || !s_length || !encoded) return fail(F_DECODE_ECDSA_SIGNATURE_VALUE, kNullArgument);
  SignatureHalves halves;
  if (!read_ecdsa_value(octets(*encoded), halves)) return fail(F_DECODE_ECDSA_SIGNATURE_VALUE, ERR_ASN1_DECODING);
  if (*r_length < 0 || *s_length < 0 || halves.r.size() > size_t(*r_length) || halves.s.size() > size_t(*s_length)) {
    return fail(F_DECODE_ECDSA_SIGNATURE_VALUE, kBadValue);
  }
  copy_octets(r, halves.r);
  copy_octets(s, halves.s);
  *r_length = int(halves.r.size());
  *s_length = int(halves.s.size());
  return 0;
}
