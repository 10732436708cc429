// What the codecs of OCSP messages share.
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"

namespace velpki {

bool read_small_number(Cursor &in, const Tlv &tlv, int type, int &out) noexcept {
  if (tlv.identifier != type || tlv.content.size() != 1 || tlv.content[0] > 127) return in.stop(Read::malformed);
  out = tlv.content[0];
  return true;
}
void write_small_number(int type, int number, DerWriter &out) noexcept {
  if (number < 0 || number > 127) return out.refuse();
  const auto octet = uint8_t(number);
  out.primitive(uint8_t(type), Octets(&octet, 1));
}

bool read_version(Cursor &in, int &out) noexcept {
  Tlv number;
  if (!in.at(tag::explicit_context(0))) return true;
  return take_explicit(in, 0, number) && read_small_number(in, number, TYPE_INTEGER, out);
}
int write_version(int version, DerWriter &out) noexcept {
  if (version == 0) return 0;
  const auto wrapper = out.explicit_context(0);
  write_small_number(TYPE_INTEGER, version, out);
  return 0;
}

bool read_extensions(Cursor &in, const Tlv &tlv, X509_EXTENSIONS *&out) noexcept {
  if (tlv.identifier != tag::kSequence) return in.stop(Read::malformed);
  return in.made(out = new_STACK()) && in.absorb(decode_extensions(tlv, *out));
}
int write_extensions(int n, const X509_EXTENSIONS *extensions, DerWriter &out) noexcept {
  if (!extensions || extensions->count == 0) return 0;
  const auto wrapper = out.explicit_context(n);
  return as_ocsp(encode_extensions(*extensions, out));
}

namespace {

// House form does not know every key that a certificate may have; such a one is read in standard form.
int decode_certificate(const Tlv &tlv, X509_CERT &out) noexcept {
  const int code = decode(tlv, out);
  if (!code || tlv.rules.standard || reason_of(code) == kNoMemory) return code;
  clean_X509_CERT(&out);
  return decode(in_standard_form(tlv), out);
}
int decode_certificates(const Tlv &tlv, STACK &certs) noexcept {
  return decode_list<X509_CERT>(tlv, certs, kOcsp, decode_certificate);
}

}  // namespace

bool read_certificates(Cursor &in, X509_CERTIFICATES *&out) noexcept {
  Tlv list;
  if (in.at_end()) return true;
  if (!take_explicit(in, 0, list) || !in.made(out = new_STACK())) return false;
  if (list.identifier != tag::kSequence) return in.stop(Read::malformed);
  return in.absorb(decode_certificates(list, *out)) && ends(in);
}
int write_certificates(const X509_CERTIFICATES *certs, DerWriter &out) noexcept {
  if (!certs || certs->count == 0) return 0;
  const auto wrapper = out.explicit_context(0);
  return write_in_standard_form(
      out, [&](DerWriter &own) { return encode_list<X509_CERT>(*certs, own, tag::kSequence, kOcsp, encode); });
}

}  // namespace velpki
