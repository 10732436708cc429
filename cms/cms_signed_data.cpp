// The records around content that is not encrypted: signed and digested data.
#include "cms/internal/cms_digests.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<ENCAPSULATED_CONTENT_INFO> =
    std::tuple(own(&ENCAPSULATED_CONTENT_INFO::eContentType), own(&ENCAPSULATED_CONTENT_INFO::eContent));
template <>
inline constexpr auto owned_fields<CMS_SIGNED_DATA> =
    std::tuple(own(&CMS_SIGNED_DATA::version), made_list_of<X509_ALGO_IDENTIFIER>(&CMS_SIGNED_DATA::digestAlgorithms),
               own(&CMS_SIGNED_DATA::encapContentInfo), list_of<X509_CERT>(&CMS_SIGNED_DATA::certificates),
               list_of<X509_CRL>(&CMS_SIGNED_DATA::crls), made_list_of<CMS_SIGNER_INFO>(&CMS_SIGNED_DATA::signerInfos),
               list_of<ASN1_UNIT>(&CMS_SIGNED_DATA::otherCertificates), list_of<ASN1_UNIT>(&CMS_SIGNED_DATA::otherCrls),
               own(&CMS_SIGNED_DATA::digests));
template <>
inline constexpr auto owned_fields<CMS_DIGESTED_DATA> = std::tuple(own(&CMS_DIGESTED_DATA::version),
                                                                   own(&CMS_DIGESTED_DATA::digestAlgorithm),
                                                                   own(&CMS_DIGESTED_DATA::encapContentInfo),
                                                                   own(&CMS_DIGESTED_DATA::digest));

// EncapsulatedContentInfo ::= SEQUENCE { eContentType OBJECT IDENTIFIER, eContent [0] EXPLICIT OCTET STRING OPTIONAL }
int decode(const Tlv &tlv, ENCAPSULATED_CONTENT_INFO &out) noexcept {
  MessageReader in(tlv);
  in.oid(out.eContentType);
  while (in.at_optional(tag::explicit_context(0), out.eContent)) {
    Tlv wrapper;
    free_ASN1_STRING(std::exchange(out.eContent, nullptr));
    if (!in.next(wrapper)) break;
    MessageReader inside(wrapper);
    if (inside.octets(out.eContent)) inside.end();
    if (!in.join(inside)) break;
  }
  in.end();
  return in.result(F_SEQ_TO_ENCAPSULATED_CONTENT_INFO);
}

int encode(const ENCAPSULATED_CONTENT_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(info.eContentType);
  if (!info.eContent) return 0;
  const auto wrapper = out.explicit_context(0);
  out.octets_as(TYPE_OCTET_STRING, info.eContent);
  return 0;
}

// SignedData ::= SEQUENCE { version INTEGER, digestAlgorithms SET OF AlgorithmIdentifier, encapContentInfo,
//   certificates [0] IMPLICIT CertificateSet OPTIONAL, crls [1] IMPLICIT RevocationInfoChoices OPTIONAL, signerInfos }
int decode(const Tlv &tlv, CMS_SIGNED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.list(tag::kSet, out.digestAlgorithms, decode_algorithms) &&
      in.record(out.encapContentInfo) && read_sets(in, out) &&
      in.list(tag::kSet, out.signerInfos, decode_cms_signer_infos)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_SIGNED_DATA);
}

int encode(const CMS_SIGNED_DATA &data, DerWriter &out) noexcept {
  if (!data.digestAlgorithms || !data.signerInfos || !(data.encapContentInfo || holds_certificates_only(data))) {
    return fail(F_CMS_SIGNED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode_algorithms(*data.digestAlgorithms, out)) return code;
  if (!data.encapContentInfo) write_no_content(out);
  if (const int code = data.encapContentInfo ? encode(*data.encapContentInfo, out) : 0) return code;
  if (const int code = write_sets(data, out)) return code;
  return encode_cms_signer_infos(*data.signerInfos, out);
}

// DigestedData ::= SEQUENCE { version INTEGER, digestAlgorithm AlgorithmIdentifier, encapContentInfo,
//   digest OCTET STRING }
int decode(const Tlv &tlv, CMS_DIGESTED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.record(out.digestAlgorithm) && in.record(out.encapContentInfo) &&
      in.octets(out.digest)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_DIGESTED_DATA);
}

int encode(const CMS_DIGESTED_DATA &data, DerWriter &out) noexcept {
  if (!data.digestAlgorithm || !data.encapContentInfo) return fail(F_CMS_DIGESTED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode(*data.digestAlgorithm, out)) return code;
  if (const int code = encode(*data.encapContentInfo, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, data.digest);
  return 0;
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(ENCAPSULATED_CONTENT_INFO)
VELPKI_NEW_AND_FREE(CMS_DIGESTED_DATA)

VELPKI_NEW_AND_FREE(CMS_SIGNED_DATA)

int ENCAPSULATED_CONTENT_INFO_to_Seq(const ENCAPSULATED_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_ENCAPSULATED_CONTENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_ENCAPSULATED_CONTENT_INFO(ASN1_UNIT *in, ENCAPSULATED_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_ENCAPSULATED_CONTENT_INFO, in, out, decode);
}
int CMS_SIGNED_DATA_to_Seq(const CMS_SIGNED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_SIGNED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_SIGNED_DATA(ASN1_UNIT *in, CMS_SIGNED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_SIGNED_DATA, in, out, decode);
}
int CMS_DIGESTED_DATA_to_Seq(const CMS_DIGESTED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_DIGESTED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_DIGESTED_DATA(ASN1_UNIT *in, CMS_DIGESTED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_DIGESTED_DATA, in, out, decode);
}
