// The codecs of OCSP responses (RFC 6960 4.2.1).
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "validation/internal/ocsp.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<OCSP_RESPONSE_DATA> =
    std::tuple(own(&OCSP_RESPONSE_DATA::responderID), own(&OCSP_RESPONSE_DATA::producedAt),
               list_of<OCSP_SINGLE_RESPONSE>(&OCSP_RESPONSE_DATA::responses),
               list_of<X509_EXTENSION>(&OCSP_RESPONSE_DATA::responseExtensions));
template <>
inline constexpr auto owned_fields<BASIC_OCSP_RESPONSE> = std::tuple(own(&BASIC_OCSP_RESPONSE::tbsResponseData),
                                                                     own(&BASIC_OCSP_RESPONSE::encoded),
                                                                     own(&BASIC_OCSP_RESPONSE::signatureAlgorithm),
                                                                     own(&BASIC_OCSP_RESPONSE::signature),
                                                                     list_of<X509_CERT>(&BASIC_OCSP_RESPONSE::certs));
template <>
inline constexpr auto owned_fields<OCSP_RESPONSE_BYTES> = std::tuple(own(&OCSP_RESPONSE_BYTES::responseType),
                                                                     own(&OCSP_RESPONSE_BYTES::response));
template <>
inline constexpr auto owned_fields<OCSP_RESPONSE> = std::tuple(own(&OCSP_RESPONSE::responseBytes));

namespace {

// ResponderID ::= CHOICE { byName [1] EXPLICIT Name, byKey [2] EXPLICIT KeyHash }
constexpr int kByName = 1, kByKey = 2;

bool read_responder_name(Cursor &in, OCSP_RESPONDER_ID &out) noexcept {
  Tlv name;
  if (!take_explicit(in, kByName, name)) return false;
  if (name.identifier != tag::kSequence) return in.stop(Read::malformed);
  STACK *list = new_STACK();
  out.type = OCSP_RESPONDER_BY_NAME;
  out.value = list;
  return in.made(list) && in.absorb(decode_name(in_standard_form(name), *list));
}
bool read_responder_key(Cursor &in, OCSP_RESPONDER_ID &out) noexcept {
  Tlv hash;
  ASN1_STRING *string = nullptr;
  if (!take_explicit(in, kByKey, hash)) return false;
  if (hash.identifier != TYPE_OCTET_STRING) return in.stop(Read::malformed);
  const bool read = in.keep(read_string(hash, TYPE_OCTET_STRING, string));
  out.type = OCSP_RESPONDER_BY_KEY;
  out.value = string;
  return read;
}
bool read_responder(Cursor &in, OCSP_RESPONDER_ID *&out) noexcept {
  if (!in.made(out = blank<OCSP_RESPONDER_ID>())) return false;
  return in.at(tag::explicit_context(kByName)) ? read_responder_name(in, *out) : read_responder_key(in, *out);
}
int write_responder(const OCSP_RESPONDER_ID *id, DerWriter &out) noexcept {
  if (!id || !id->value) return ocsp_failure(ERR_ASN1_ENCODING);
  const bool by_name = id->type == OCSP_RESPONDER_BY_NAME;
  const auto wrapper = out.explicit_context(by_name ? kByName : kByKey);
  if (!by_name) return out.octets_as(TYPE_OCTET_STRING, static_cast<const ASN1_STRING *>(id->value)), 0;
  return write_in_standard_form(
      out, [&](DerWriter &own) { return encode_name(*static_cast<const X509_NAME *>(id->value), own); });
}

int decode_responses(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<OCSP_SINGLE_RESPONSE>(tlv, list, kOcsp, decode);
}

bool read_data_extensions(Cursor &in, X509_EXTENSIONS *&out) noexcept {
  Tlv extensions;
  return in.at_end() || (take_explicit(in, 1, extensions) && read_extensions(in, extensions, out));
}

}  // namespace

// ResponseData ::= SEQUENCE { version [0] EXPLICIT Version DEFAULT v1, responderID ResponderID,
//   producedAt GeneralizedTime, responses SEQUENCE OF SingleResponse, responseExtensions [1] EXPLICIT Extensions
//   OPTIONAL }
int decode(const Tlv &tlv, OCSP_RESPONSE_DATA &out) noexcept {
  Cursor in(tlv);
  Tlv time, list;
  if (read_version(in, out.version) && read_responder(in, out.responderID) && in.next(time) &&
      read_time_text(in, time, out.producedAt) && take(in, tag::kSequence, list) &&
      in.made(out.responses = new_STACK()) && in.absorb(decode_responses(list, *out.responses)) &&
      read_data_extensions(in, out.responseExtensions)) {
    ends(in);
  }
  return in.result(kOcsp);
}
int encode(const OCSP_RESPONSE_DATA &data, DerWriter &out) noexcept {
  if (!data.responses) return ocsp_failure(ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = write_responder(data.responderID, out)) return code;
  out.octets_as(TYPE_GENERALIZED_TIME, data.producedAt);
  if (const int code = encode_list<OCSP_SINGLE_RESPONSE>(*data.responses, out, tag::kSequence, kOcsp, encode)) {
    return as_ocsp(code);
  }
  if (const int code = write_extensions(1, data.responseExtensions, out)) return code;
  return out.result(kOcsp);
}

// BasicOCSPResponse ::= SEQUENCE { tbsResponseData ResponseData, signatureAlgorithm AlgorithmIdentifier,
//   signature BIT STRING, certs [0] EXPLICIT SEQUENCE OF Certificate OPTIONAL }
int decode(const Tlv &tlv, BASIC_OCSP_RESPONSE &out) noexcept {
  Cursor in(tlv);
  Tlv data;
  if (take(in, tag::kSequence, data) && in.made(out.tbsResponseData = blank<OCSP_RESPONSE_DATA>()) &&
      in.absorb(decode(data, *out.tbsResponseData)) &&
      in.made(out.encoded = new_string(TYPE_OCTET_STRING, data.whole)) && read_record(in, out.signatureAlgorithm) &&
      in.string(TYPE_BIT_STRING, out.signature)) {
    read_certificates(in, out.certs);
  }
  return in.result(kOcsp);
}
int encode(const BASIC_OCSP_RESPONSE &basic, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (basic.encoded)
    out.raw(octets(*basic.encoded));
  else if (const int code = write_member(basic.tbsResponseData, out))
    return code;
  if (const int code = write_member(basic.signatureAlgorithm, out)) return code;
  out.bits(basic.signature);
  if (const int code = write_certificates(basic.certs, out)) return code;
  return out.result(kOcsp);
}

namespace {

// ResponseBytes ::= SEQUENCE { responseType OBJECT IDENTIFIER, response OCTET STRING }
int decode(const Tlv &tlv, OCSP_RESPONSE_BYTES &out) noexcept {
  Cursor in(tlv);
  if (in.oid(out.responseType) && in.string(TYPE_OCTET_STRING, out.response)) ends(in);
  return in.result(kOcsp);
}
int encode(const OCSP_RESPONSE_BYTES &bytes, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(bytes.responseType);
  out.octets_as(TYPE_OCTET_STRING, bytes.response);
  return out.result(kOcsp);
}

bool read_bytes(Cursor &in, OCSP_RESPONSE_BYTES *&out) noexcept {
  Tlv bytes;
  if (in.at_end()) return true;
  if (!take_explicit(in, 0, bytes) || !in.made(out = blank<OCSP_RESPONSE_BYTES>())) return false;
  if (bytes.identifier != tag::kSequence) return in.stop(Read::malformed);
  return in.absorb(decode(bytes, *out)) && ends(in);
}

// OCSPResponse ::= SEQUENCE { responseStatus ENUMERATED, responseBytes [0] EXPLICIT ResponseBytes OPTIONAL }
int decode(const Tlv &tlv, OCSP_RESPONSE &out) noexcept {
  Cursor in(tlv);
  Tlv status;
  if (in.next(status) && read_small_number(in, status, TYPE_ENUMERATED, out.responseStatus)) {
    read_bytes(in, out.responseBytes);
  }
  return in.result(kOcsp);
}
int encode(const OCSP_RESPONSE &response, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  write_small_number(TYPE_ENUMERATED, response.responseStatus, out);
  if (response.responseBytes) {
    const auto wrapper = out.explicit_context(0);
    if (const int code = encode(*response.responseBytes, out)) return code;
  }
  return out.result(kOcsp);
}

constexpr Codec<OCSP_RESPONSE> kResponse = {kOcsp, kOcsp, decode, encode, "OCSP RESPONSE"};

void release_responder(OCSP_RESPONDER_ID &id) noexcept {
  if (id.type == OCSP_RESPONDER_BY_KEY)
    free_ASN1_STRING(static_cast<ASN1_STRING *>(id.value));
  else
    free_X509_NAME(static_cast<X509_NAME *>(id.value));
}
void *copy_responder(const OCSP_RESPONDER_ID &id) noexcept {
  if (id.type == OCSP_RESPONDER_BY_KEY) return dup_ASN1_STRING(static_cast<const ASN1_STRING *>(id.value));
  return dup_X509_NAME(static_cast<const X509_NAME *>(id.value));
}

}  // namespace

}  // namespace velpki

using namespace velpki;

// What a responder ID owns depends on its type.
OCSP_RESPONDER_ID *new_OCSP_RESPONDER_ID(void) noexcept { return blank<OCSP_RESPONDER_ID>(); }
void clean_OCSP_RESPONDER_ID(OCSP_RESPONDER_ID *p) noexcept {
  if (!p) return;
  release_responder(*p);
  *p = {};
}
void free_OCSP_RESPONDER_ID(OCSP_RESPONDER_ID *p) noexcept {
  clean_OCSP_RESPONDER_ID(p);
  release(p);
}
OCSP_RESPONDER_ID *dup_OCSP_RESPONDER_ID(const OCSP_RESPONDER_ID *p) noexcept {
  owned<OCSP_RESPONDER_ID> fresh(p ? blank<OCSP_RESPONDER_ID>() : nullptr);
  if (!fresh) return nullptr;
  fresh->type = p->type;
  if (!p->value) return fresh.release();
  fresh->value = copy_responder(*p);
  return fresh->value ? fresh.release() : nullptr;
}

VELPKI_LIFE_CYCLE(OCSP_RESPONSE_DATA)
VELPKI_LIFE_CYCLE(BASIC_OCSP_RESPONSE)
VELPKI_LIFE_CYCLE(OCSP_RESPONSE_BYTES)
VELPKI_LIFE_CYCLE(OCSP_RESPONSE)
VELPKI_IO(OCSP_RESPONSE, kResponse)

int OCSP_RESPONSE_DATA_to_Seq(const OCSP_RESPONSE_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int OCSP_RESPONSE_DATA_to_Seq_strict(const OCSP_RESPONSE_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode, kStandardRules);
}
int Seq_to_OCSP_RESPONSE_DATA(ASN1_UNIT *in, OCSP_RESPONSE_DATA **out) noexcept {
  return from_seq(kOcsp, in, out, decode);
}
int BASIC_OCSP_RESPONSE_to_Seq(const BASIC_OCSP_RESPONSE *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int Seq_to_BASIC_OCSP_RESPONSE(ASN1_UNIT *in, BASIC_OCSP_RESPONSE **out) noexcept {
  return from_seq(kOcsp, in, out, decode);
}
int OCSP_RESPONSE_BYTES_to_Seq(const OCSP_RESPONSE_BYTES *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int Seq_to_OCSP_RESPONSE_BYTES(ASN1_UNIT *in, OCSP_RESPONSE_BYTES **out) noexcept {
  return from_seq(kOcsp, in, out, decode);
}
int OCSP_RESPONSE_to_Seq(const OCSP_RESPONSE *in, ASN1_UNIT **out) noexcept { return to_seq(kOcsp, in, out, encode); }
int Seq_to_OCSP_RESPONSE(ASN1_UNIT *in, OCSP_RESPONSE **out) noexcept { return from_seq(kOcsp, in, out, decode); }
