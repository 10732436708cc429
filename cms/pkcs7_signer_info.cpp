// P7_SIGNER_INFO, its list, and P7_ISSUER_AND_SERIAL_NUMBER.
#include "cms/internal/signer_state.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P7_ISSUER_AND_SERIAL_NUMBER> = std::tuple(
    list_of<X509_NAME_CHILD>(&P7_ISSUER_AND_SERIAL_NUMBER::issuer), own(&P7_ISSUER_AND_SERIAL_NUMBER::serialNumber));
template <>
inline constexpr auto owned_fields<P7_SIGNER_INFO> = std::tuple(
    own(&P7_SIGNER_INFO::version), own(&P7_SIGNER_INFO::issuerAndSerialNumber), own(&P7_SIGNER_INFO::digestAlgorithm),
    list_of<X509_ATTRIBUTE>(&P7_SIGNER_INFO::authenticatedAttributes), own(&P7_SIGNER_INFO::digestEncryptionAlgorithm),
    own(&P7_SIGNER_INFO::encryptedDigest), list_of<X509_ATTRIBUTE>(&P7_SIGNER_INFO::unauthenticatedAttributes),
    own(&P7_SIGNER_INFO::privateKey), own(&P7_SIGNER_INFO::state));

// IssuerAndSerialNumber ::= SEQUENCE { issuer Name, serialNumber INTEGER }
int decode(const Tlv &tlv, P7_ISSUER_AND_SERIAL_NUMBER &out) noexcept {
  MessageReader in(tlv);
  if (in.name(out.issuer) && in.integer(out.serialNumber)) in.end();
  return in.result(F_SEQ_TO_P7_IS_AND_SN);
}

int encode(const P7_ISSUER_AND_SERIAL_NUMBER &record, DerWriter &out) noexcept {
  if (!record.issuer || !record.serialNumber) return fail(F_P7_IS_AND_SN_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = encode_name(*record.issuer, out)) return code;
  out.integer(record.serialNumber);
  return 0;
}

// SignerInfo ::= SEQUENCE { version INTEGER, issuerAndSerialNumber, digestAlgorithm AlgorithmIdentifier,
//   authenticatedAttributes [0] IMPLICIT SET OF Attribute OPTIONAL, digestEncryptionAlgorithm AlgorithmIdentifier,
//   encryptedDigest OCTET STRING, unauthenticatedAttributes [1] IMPLICIT SET OF Attribute OPTIONAL }
int decode(const Tlv &tlv, P7_SIGNER_INFO &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.record(out.issuerAndSerialNumber) && in.record(out.digestAlgorithm) &&
      in.optional_list<X509_ATTRIBUTE>(tag::explicit_context(0), out.authenticatedAttributes, decode_attributes) &&
      in.record(out.digestEncryptionAlgorithm) && in.octets(out.encryptedDigest) &&
      in.optional_list<X509_ATTRIBUTE>(tag::explicit_context(1), out.unauthenticatedAttributes, decode_attributes) &&
      in.end()) {
    in.made(out.state = new_signer_state({Kept::signer, tlv.content}));
  }
  return in.result(F_SEQ_TO_P7_SIGNER_INFO);
}

namespace {

int encode_algorithms_and_digest(const P7_SIGNER_INFO &signer, DerWriter &out) noexcept {
  if (const int code = encode(*signer.digestAlgorithm, out)) return code;
  if (const int code = write_signed_attributes(signer, signer.authenticatedAttributes, out)) return code;
  if (const int code = encode(*signer.digestEncryptionAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, signer.encryptedDigest);
  return 0;
}

}  // namespace

int encode(const P7_SIGNER_INFO &signer, DerWriter &out) noexcept {
  if (const Octets received = received_of(signer); out.rules().standard && !received.empty()) {
    return out.primitive(tag::kSequence, received), 0;
  }
  if (!signer.issuerAndSerialNumber || !signer.digestAlgorithm || !signer.digestEncryptionAlgorithm) {
    return fail(F_P7_SIGNER_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(signer.version, out);
  if (const int code = encode(*signer.issuerAndSerialNumber, out)) return code;
  if (const int code = encode_algorithms_and_digest(signer, out)) return code;
  const STACK *attributes = signer.unauthenticatedAttributes;
  return attributes && attributes->count ? encode_attributes(*attributes, out, tag::explicit_context(1)) : 0;
}

// SignerInfos ::= SET OF SignerInfo
int decode_signer_infos(const Tlv &tlv, STACK &out) noexcept {
  return decode_list<P7_SIGNER_INFO>(tlv, out, F_SEQ_TO_P7_SIGNER_INFOS, decode);
}

int encode_signer_infos(const STACK &signers, DerWriter &out) noexcept {
  return encode_list<P7_SIGNER_INFO>(signers, out, tag::kSet, F_P7_SIGNER_INFOS_TO_SEQ, encode);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(P7_ISSUER_AND_SERIAL_NUMBER)
VELPKI_NEW_AND_FREE(P7_SIGNER_INFO)
VELPKI_LIST(P7_SIGNER_INFOS, P7_SIGNER_INFO)

int P7_ISSUER_AND_SERIAL_NUMBER_to_Seq(const P7_ISSUER_AND_SERIAL_NUMBER *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_IS_AND_SN_TO_SEQ, in, out, encode);
}
int Seq_to_P7_ISSUER_AND_SERIAL_NUMBER(ASN1_UNIT *in, P7_ISSUER_AND_SERIAL_NUMBER **out) noexcept {
  return from_seq(F_SEQ_TO_P7_IS_AND_SN, in, out, decode);
}
int cmp_P7_ISSUER_AND_SERIAL_NUMBER(const X509_CERT *cert,
                                    const P7_ISSUER_AND_SERIAL_NUMBER *issuer_and_serial) noexcept {
  return issuer_and_serial ? compare_issuer_and_serial(cert, issuer_and_serial->issuer, issuer_and_serial->serialNumber)
                           : -1;
}
int P7_SIGNER_INFO_to_Seq(const P7_SIGNER_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_SIGNER_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_P7_SIGNER_INFO(ASN1_UNIT *in, P7_SIGNER_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P7_SIGNER_INFO, in, out, decode);
}
int P7_SIGNER_INFOS_to_Seq(const P7_SIGNER_INFOS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_SIGNER_INFOS_TO_SEQ, in, out, encode_signer_infos);
}
int Seq_to_P7_SIGNER_INFOS(ASN1_UNIT *in, P7_SIGNER_INFOS **out) noexcept {
  return list_from_seq<P7_SIGNER_INFO>(F_SEQ_TO_P7_SIGNER_INFOS, in, out, decode_signer_infos);
}
