// CMS_SIGNER_INFO and its list.
#include "cms/internal/cms.h"
#include "cms/internal/signer_state.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<CMS_SIGNER_INFO> =
    std::tuple(own(&CMS_SIGNER_INFO::version), own(&CMS_SIGNER_INFO::sid), own(&CMS_SIGNER_INFO::digestAlgorithm),
               list_of<X509_ATTRIBUTE>(&CMS_SIGNER_INFO::signedAttrs), own(&CMS_SIGNER_INFO::signatureAlgorithm),
               own(&CMS_SIGNER_INFO::signature), list_of<X509_ATTRIBUTE>(&CMS_SIGNER_INFO::unsignedAttrs),
               own(&CMS_SIGNER_INFO::privateKey), own(&CMS_SIGNER_INFO::state));

// SignerInfo ::= SEQUENCE { version INTEGER, sid SignerIdentifier, digestAlgorithm AlgorithmIdentifier,
//   signedAttrs [0] IMPLICIT SET OF Attribute OPTIONAL, signatureAlgorithm AlgorithmIdentifier,
//   signature OCTET STRING, unsignedAttrs [1] IMPLICIT SET OF Attribute OPTIONAL }
int decode(const Tlv &tlv, CMS_SIGNER_INFO &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && read_identifier(in, out.sid) && in.record(out.digestAlgorithm) &&
      read_attributes(in, 0, out.signedAttrs) && in.record(out.signatureAlgorithm) && in.octets(out.signature) &&
      read_attributes(in, 1, out.unsignedAttrs) && in.end()) {
    in.made(out.state = new_signer_state({Kept::signer, tlv.content}));
  }
  return in.result(F_SEQ_TO_CMS_SIGNER_INFO);
}

namespace {

int write_members(const CMS_SIGNER_INFO &signer, DerWriter &out) noexcept {
  write_version(signer.version, out);
  if (const int code = write_identifier(signer.sid, F_CMS_SIGNER_INFO_TO_SEQ, out)) return code;
  if (const int code = encode(*signer.digestAlgorithm, out)) return code;
  if (const int code = write_signed_attributes(signer, signer.signedAttrs, out)) return code;
  if (const int code = encode(*signer.signatureAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, signer.signature);
  return write_attributes(signer.unsignedAttrs, 1, out);
}

}  // namespace

int encode(const CMS_SIGNER_INFO &signer, DerWriter &out) noexcept {
  if (!signer.digestAlgorithm || !signer.signatureAlgorithm) return fail(F_CMS_SIGNER_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const Octets received = received_of(signer); out.rules().standard && !received.empty()) {
    return out.raw(received), 0;
  }
  return write_members(signer, out);
}

// SignerInfos ::= SET OF SignerInfo
int decode_cms_signer_infos(const Tlv &tlv, STACK &out) noexcept {
  return decode_list<CMS_SIGNER_INFO>(tlv, out, F_SEQ_TO_CMS_SIGNER_INFOS, decode);
}

int encode_cms_signer_infos(const STACK &signers, DerWriter &out) noexcept {
  return encode_list<CMS_SIGNER_INFO>(signers, out, tag::kSet, F_CMS_SIGNER_INFOS_TO_SEQ, encode, out.rules().standard);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(CMS_SIGNER_INFO)
VELPKI_LIST(CMS_SIGNER_INFOS, CMS_SIGNER_INFO)

int CMS_SIGNER_INFO_to_Seq(const CMS_SIGNER_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_SIGNER_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_SIGNER_INFO(ASN1_UNIT *in, CMS_SIGNER_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_SIGNER_INFO, in, out, decode);
}
int CMS_SIGNER_INFOS_to_Seq(const CMS_SIGNER_INFOS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_SIGNER_INFOS_TO_SEQ, in, out, encode_cms_signer_infos);
}
int Seq_to_CMS_SIGNER_INFOS(ASN1_UNIT *in, CMS_SIGNER_INFOS **out) noexcept {
  return list_from_seq<CMS_SIGNER_INFO>(F_SEQ_TO_CMS_SIGNER_INFOS, in, out, decode_cms_signer_infos);
}
