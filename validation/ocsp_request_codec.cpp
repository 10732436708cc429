// The codecs of OCSP requests (RFC 6960 4.1).
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "validation/internal/ocsp.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<OCSP_CERT_ID> = std::tuple(own(&OCSP_CERT_ID::hashAlgorithm),
                                                              own(&OCSP_CERT_ID::issuerNameHash),
                                                              own(&OCSP_CERT_ID::issuerKeyHash),
                                                              own(&OCSP_CERT_ID::serialNumber));
template <>
inline constexpr auto owned_fields<OCSP_SINGLE_REQUEST> = std::tuple(
    own(&OCSP_SINGLE_REQUEST::reqCert), list_of<X509_EXTENSION>(&OCSP_SINGLE_REQUEST::singleRequestExtensions));
template <>
inline constexpr auto owned_fields<OCSP_TBS_REQUEST> =
    std::tuple(own(&OCSP_TBS_REQUEST::requestorName), list_of<OCSP_SINGLE_REQUEST>(&OCSP_TBS_REQUEST::requestList),
               list_of<X509_EXTENSION>(&OCSP_TBS_REQUEST::requestExtensions));
template <>
inline constexpr auto owned_fields<OCSP_SIGNATURE> = std::tuple(own(&OCSP_SIGNATURE::signatureAlgorithm),
                                                                own(&OCSP_SIGNATURE::signature),
                                                                list_of<X509_CERT>(&OCSP_SIGNATURE::certs));
template <>
inline constexpr auto owned_fields<OCSP_REQUEST> = std::tuple(made(&OCSP_REQUEST::tbsRequest),
                                                              own(&OCSP_REQUEST::optionalSignature),
                                                              own(&OCSP_REQUEST::encoded));

// CertID ::= SEQUENCE { hashAlgorithm AlgorithmIdentifier, issuerNameHash OCTET STRING, issuerKeyHash OCTET STRING,
//   serialNumber CertificateSerialNumber }
int decode(const Tlv &tlv, OCSP_CERT_ID &out) noexcept {
  Cursor in(tlv);
  if (read_record(in, out.hashAlgorithm) && in.string(TYPE_OCTET_STRING, out.issuerNameHash) &&
      in.string(TYPE_OCTET_STRING, out.issuerKeyHash) && in.integer(out.serialNumber)) {
    ends(in);
  }
  return in.result(kOcsp);
}

namespace {

// Only what was read in standard form is negative, and it stays what it is.
int write_serial(const BIGINT *serial, DerWriter &out) noexcept {
  if (!serial || !PKV_Is_BIGINT_Negative(serial)) return out.integer(serial), 0;
  return write_in_standard_form(out, [serial](DerWriter &own) { return own.integer(serial), 0; });
}

}  // namespace

int encode(const OCSP_CERT_ID &id, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const int code = write_member(id.hashAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, id.issuerNameHash);
  out.octets_as(TYPE_OCTET_STRING, id.issuerKeyHash);
  if (const int code = write_serial(id.serialNumber, out)) return code;
  return out.result(kOcsp);
}

namespace {

// Request ::= SEQUENCE { reqCert CertID, singleRequestExtensions [0] EXPLICIT Extensions OPTIONAL }
int decode(const Tlv &tlv, OCSP_SINGLE_REQUEST &out) noexcept {
  Cursor in(tlv);
  Tlv id, extensions;
  if (take(in, tag::kSequence, id) && in.made(out.reqCert = blank<OCSP_CERT_ID>()) &&
      in.absorb(velpki::decode(id, *out.reqCert)) && !in.at_end() && take_explicit(in, 0, extensions) &&
      read_extensions(in, extensions, out.singleRequestExtensions)) {
    ends(in);
  }
  return in.result(kOcsp);
}
int encode(const OCSP_SINGLE_REQUEST &request, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const int code = write_member(request.reqCert, out)) return code;
  if (const int code = write_extensions(0, request.singleRequestExtensions, out)) return code;
  return out.result(kOcsp);
}

int decode_requests(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<OCSP_SINGLE_REQUEST>(tlv, list, kOcsp, decode);
}

bool read_requestor(Cursor &in, GENERAL_NAME *&out) noexcept {
  Tlv name;
  if (!in.at(tag::explicit_context(1))) return true;
  return take_explicit(in, 1, name) && in.made(out = blank<GENERAL_NAME>()) &&
         in.absorb(velpki::decode(in_standard_form(name), *out));
}
int write_requestor(const GENERAL_NAME *name, DerWriter &out) noexcept {
  if (!name) return 0;
  const auto wrapper = out.explicit_context(1);
  return write_in_standard_form(out, [&](DerWriter &own) { return velpki::encode(*name, own); });
}

bool read_tbs_extensions(Cursor &in, X509_EXTENSIONS *&out) noexcept {
  Tlv extensions;
  return in.at_end() || (take_explicit(in, 2, extensions) && read_extensions(in, extensions, out));
}

// TBSRequest ::= SEQUENCE { version [0] EXPLICIT Version DEFAULT v1, requestorName [1] EXPLICIT GeneralName OPTIONAL,
//   requestList SEQUENCE OF Request, requestExtensions [2] EXPLICIT Extensions OPTIONAL }
int decode(const Tlv &tlv, OCSP_TBS_REQUEST &out) noexcept {
  Cursor in(tlv);
  Tlv list;
  if (read_version(in, out.version) && read_requestor(in, out.requestorName) && take(in, tag::kSequence, list) &&
      in.made(out.requestList = new_STACK()) && in.absorb(decode_requests(list, *out.requestList)) &&
      read_tbs_extensions(in, out.requestExtensions)) {
    ends(in);
  }
  return in.result(kOcsp);
}

}  // namespace

int encode(const OCSP_TBS_REQUEST &tbs, DerWriter &out) noexcept {
  if (!tbs.requestList) return ocsp_failure(ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(tbs.version, out);
  if (const int code = write_requestor(tbs.requestorName, out)) return code;
  if (const int code = encode_list<OCSP_SINGLE_REQUEST>(*tbs.requestList, out, tag::kSequence, kOcsp, encode)) {
    return as_ocsp(code);
  }
  if (const int code = write_extensions(2, tbs.requestExtensions, out)) return code;
  return out.result(kOcsp);
}

namespace {

// Signature ::= SEQUENCE { signatureAlgorithm AlgorithmIdentifier, signature BIT STRING,
//   certs [0] EXPLICIT SEQUENCE OF Certificate OPTIONAL }
int decode(const Tlv &tlv, OCSP_SIGNATURE &out) noexcept {
  Cursor in(tlv);
  if (read_record(in, out.signatureAlgorithm) && in.string(TYPE_BIT_STRING, out.signature)) {
    read_certificates(in, out.certs);
  }
  return in.result(kOcsp);
}
int encode(const OCSP_SIGNATURE &signature, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const int code = write_member(signature.signatureAlgorithm, out)) return code;
  out.bits(signature.signature);
  if (const int code = write_certificates(signature.certs, out)) return code;
  return out.result(kOcsp);
}

// Of a signed request the TBS is kept as it came.
bool read_signature(Cursor &in, const Tlv &tbs, OCSP_REQUEST &out) noexcept {
  Tlv signature;
  if (in.at_end()) return true;
  return take_explicit(in, 0, signature) && in.made(out.optionalSignature = blank<OCSP_SIGNATURE>()) &&
         in.absorb(decode(signature, *out.optionalSignature)) &&
         in.made(out.encoded = new_string(TYPE_OCTET_STRING, tbs.whole)) && ends(in);
}

// OCSPRequest ::= SEQUENCE { tbsRequest TBSRequest, optionalSignature [0] EXPLICIT Signature OPTIONAL }
int decode(const Tlv &tlv, OCSP_REQUEST &out) noexcept {
  Cursor in(tlv);
  Tlv tbs;
  if (take(in, tag::kSequence, tbs) && in.made(out.tbsRequest = blank<OCSP_TBS_REQUEST>()) &&
      in.absorb(decode(tbs, *out.tbsRequest))) {
    read_signature(in, tbs, out);
  }
  return in.result(kOcsp);
}
int write_signature(const OCSP_SIGNATURE *signature, DerWriter &out) noexcept {
  if (!signature) return 0;
  const auto wrapper = out.explicit_context(0);
  return encode(*signature, out);
}
int encode(const OCSP_REQUEST &request, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (request.encoded)
    out.raw(octets(*request.encoded));
  else if (const int code = write_member(request.tbsRequest, out))
    return code;
  if (const int code = write_signature(request.optionalSignature, out)) return code;
  return out.result(kOcsp);
}

constexpr Codec<OCSP_REQUEST> kRequest = {kOcsp, kOcsp, decode, encode, "OCSP REQUEST"};

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(OCSP_CERT_ID)
VELPKI_LIFE_CYCLE(OCSP_SINGLE_REQUEST)
VELPKI_LIFE_CYCLE(OCSP_TBS_REQUEST)
VELPKI_LIFE_CYCLE(OCSP_SIGNATURE)
VELPKI_LIFE_CYCLE(OCSP_REQUEST)
VELPKI_IO(OCSP_REQUEST, kRequest)

int OCSP_CERT_ID_to_Seq(const OCSP_CERT_ID *in, ASN1_UNIT **out) noexcept { return to_seq(kOcsp, in, out, encode); }
int Seq_to_OCSP_CERT_ID(ASN1_UNIT *in, OCSP_CERT_ID **out) noexcept { return from_seq(kOcsp, in, out, decode); }
int OCSP_SINGLE_REQUEST_to_Seq(const OCSP_SINGLE_REQUEST *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int Seq_to_OCSP_SINGLE_REQUEST(ASN1_UNIT *in, OCSP_SINGLE_REQUEST **out) noexcept {
  return from_seq(kOcsp, in, out, decode);
}
int OCSP_TBS_REQUEST_to_Seq(const OCSP_TBS_REQUEST *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int Seq_to_OCSP_TBS_REQUEST(ASN1_UNIT *in, OCSP_TBS_REQUEST **out) noexcept { return from_seq(kOcsp, in, out, decode); }
int OCSP_SIGNATURE_to_Seq(const OCSP_SIGNATURE *in, ASN1_UNIT **out) noexcept { return to_seq(kOcsp, in, out, encode); }
int Seq_to_OCSP_SIGNATURE(ASN1_UNIT *in, OCSP_SIGNATURE **out) noexcept { return from_seq(kOcsp, in, out, decode); }
int OCSP_REQUEST_to_Seq(const OCSP_REQUEST *in, ASN1_UNIT **out) noexcept { return to_seq(kOcsp, in, out, encode); }
int Seq_to_OCSP_REQUEST(ASN1_UNIT *in, OCSP_REQUEST **out) noexcept { return from_seq(kOcsp, in, out, decode); }
