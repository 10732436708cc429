// The records that have recipients or encrypted content, and what names their originator.
#include "cms/internal/cms.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<CMS_ORIGINATOR_INFO> = std::tuple(
    list_of<X509_CERT>(&CMS_ORIGINATOR_INFO::certificates), list_of<X509_CRL>(&CMS_ORIGINATOR_INFO::crls),
    list_of<ASN1_UNIT>(&CMS_ORIGINATOR_INFO::otherCertificates), list_of<ASN1_UNIT>(&CMS_ORIGINATOR_INFO::otherCrls));
template <>
inline constexpr auto owned_fields<CMS_ENVELOPED_DATA> = std::tuple(
    own(&CMS_ENVELOPED_DATA::version), made_list_of<CMS_RECIPIENT_INFO>(&CMS_ENVELOPED_DATA::recipientInfos),
    own(&CMS_ENVELOPED_DATA::encryptedContentInfo), list_of<X509_ATTRIBUTE>(&CMS_ENVELOPED_DATA::unprotectedAttrs),
    own(&CMS_ENVELOPED_DATA::originatorInfo));
template <>
inline constexpr auto owned_fields<CMS_ENCRYPTED_DATA> =
    std::tuple(own(&CMS_ENCRYPTED_DATA::version), own(&CMS_ENCRYPTED_DATA::encryptedContentInfo),
               list_of<X509_ATTRIBUTE>(&CMS_ENCRYPTED_DATA::unprotectedAttrs));
template <>
inline constexpr auto owned_fields<CMS_AUTHENTICATED_DATA> = std::tuple(
    own(&CMS_AUTHENTICATED_DATA::version), own(&CMS_AUTHENTICATED_DATA::originatorInfo),
    made_list_of<CMS_RECIPIENT_INFO>(&CMS_AUTHENTICATED_DATA::recipientInfos),
    own(&CMS_AUTHENTICATED_DATA::macAlgorithm), own(&CMS_AUTHENTICATED_DATA::digestAlgorithm),
    own(&CMS_AUTHENTICATED_DATA::encapContentInfo), list_of<X509_ATTRIBUTE>(&CMS_AUTHENTICATED_DATA::authAttrs),
    own(&CMS_AUTHENTICATED_DATA::mac), list_of<X509_ATTRIBUTE>(&CMS_AUTHENTICATED_DATA::unauthAttrs));

// OriginatorInfo ::= SEQUENCE { certs [0] IMPLICIT CertificateSet OPTIONAL,
//   crls [1] IMPLICIT RevocationInfoChoices OPTIONAL }
// Elements may follow the known ones; where there are none of these, it is something else.
int decode(const Tlv &tlv, CMS_ORIGINATOR_INFO &out) noexcept {
  MessageReader in(tlv);
  if (read_sets(in, out) && in.end() && !out.certificates && !out.crls && !in.at_end()) in.stop(Read::malformed);
  return in.result(F_SEQ_TO_CMS_ORIGINATOR_INFO);
}
int encode(const CMS_ORIGINATOR_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  return write_sets(info, out);
}

namespace {

// originatorInfo [0] IMPLICIT OriginatorInfo OPTIONAL
bool read_originator(MessageReader &in, CMS_ORIGINATOR_INFO *&out) noexcept {
  while (in.at_optional(tag::explicit_context(0), out)) {
    Tlv child;
    free_CMS_ORIGINATOR_INFO(std::exchange(out, nullptr));
    if (!in.next(child) || !in.made(out = blank<CMS_ORIGINATOR_INFO>()) || !in.inner(decode(child, *out))) return false;
  }
  return in.reason() == Read::ok;
}
int write_originator(const CMS_ORIGINATOR_INFO *info, DerWriter &out) noexcept {
  if (!has_anything(info)) return 0;
  const auto scope = out.explicit_context(0);
  return write_sets(*info, out);
}

bool read_encrypted_content(MessageReader &in, CMS_ENCRYPTED_CONTENT_INFO *&out) noexcept {
  Tlv child;
  return in.next(TYPE_SEQUENCE, child) && in.made(out = blank<CMS_ENCRYPTED_CONTENT_INFO>()) &&
         in.inner(decode_encrypted_content(child, *out, F_SEQ_TO_CMS_ENCRYPTED_CONTENT_INFO));
}
int write_encrypted_content(const CMS_ENCRYPTED_CONTENT_INFO &info, DerWriter &out) noexcept {
  return encode_encrypted_content(info, out, F_CMS_ENCRYPTED_CONTENT_INFO_TO_SEQ);
}

}  // namespace

// EnvelopedData ::= SEQUENCE { version INTEGER, originatorInfo, recipientInfos RecipientInfos, encryptedContentInfo,
//   unprotectedAttrs [1] IMPLICIT SET OF Attribute OPTIONAL }
int decode(const Tlv &tlv, CMS_ENVELOPED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && read_originator(in, out.originatorInfo) &&
      in.list(tag::kSet, out.recipientInfos, decode_cms_recipient_infos) &&
      read_encrypted_content(in, out.encryptedContentInfo) && read_attributes(in, 1, out.unprotectedAttrs)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_ENVELOPED_DATA);
}

int encode(const CMS_ENVELOPED_DATA &data, DerWriter &out) noexcept {
  if (!data.recipientInfos || !data.encryptedContentInfo) return fail(F_CMS_ENVELOPED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = write_originator(data.originatorInfo, out)) return code;
  if (const int code = encode_cms_recipient_infos(*data.recipientInfos, out)) return code;
  if (const int code = write_encrypted_content(*data.encryptedContentInfo, out)) return code;
  return write_attributes(data.unprotectedAttrs, 1, out);
}

// EncryptedData ::= SEQUENCE { version INTEGER, encryptedContentInfo,
//   unprotectedAttrs [1] IMPLICIT SET OF Attribute OPTIONAL }
int decode(const Tlv &tlv, CMS_ENCRYPTED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && read_encrypted_content(in, out.encryptedContentInfo) &&
      read_attributes(in, 1, out.unprotectedAttrs)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_ENCRYPTED_DATA);
}

int encode(const CMS_ENCRYPTED_DATA &data, DerWriter &out) noexcept {
  if (!data.encryptedContentInfo) return fail(F_CMS_ENCRYPTED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = write_encrypted_content(*data.encryptedContentInfo, out)) return code;
  return write_attributes(data.unprotectedAttrs, 1, out);
}

namespace {

// digestAlgorithm [1] IMPLICIT AlgorithmIdentifier OPTIONAL
bool read_digest_algorithm(MessageReader &in, X509_ALGO_IDENTIFIER *&out) noexcept {
  while (in.at_optional(tag::explicit_context(1), out)) {
    free_X509_ALGO_IDENTIFIER(std::exchange(out, nullptr));
    Tlv child;
    if (!in.next(child) || !in.made(out = blank<X509_ALGO_IDENTIFIER>()) || !in.inner(decode(child, *out))) {
      return false;
    }
  }
  return in.reason() == Read::ok;
}
int write_digest_algorithm(const X509_ALGO_IDENTIFIER *algorithm, DerWriter &out) noexcept {
  if (!algorithm) return 0;
  const size_t start = out.size();
  const int code = encode(*algorithm, out);
  out.retag(start, tag::explicit_context(1));
  return code;
}

}  // namespace

// AuthenticatedData ::= SEQUENCE { version INTEGER, originatorInfo, recipientInfos RecipientInfos,
//   macAlgorithm AlgorithmIdentifier, digestAlgorithm, encapContentInfo,
//   authAttrs [2] IMPLICIT SET OF Attribute OPTIONAL, mac OCTET STRING,
//   unauthAttrs [3] IMPLICIT SET OF Attribute OPTIONAL }
int decode(const Tlv &tlv, CMS_AUTHENTICATED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && read_originator(in, out.originatorInfo) &&
      in.list(tag::kSet, out.recipientInfos, decode_cms_recipient_infos) && in.record(out.macAlgorithm) &&
      read_digest_algorithm(in, out.digestAlgorithm) && in.record(out.encapContentInfo) &&
      read_attributes(in, 2, out.authAttrs) && in.octets(out.mac) && read_attributes(in, 3, out.unauthAttrs)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_AUTHENTICATED_DATA);
}

int encode(const CMS_AUTHENTICATED_DATA &data, DerWriter &out) noexcept {
  if (!data.recipientInfos || !data.macAlgorithm || !data.encapContentInfo) {
    return fail(F_CMS_AUTHENTICATED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = write_originator(data.originatorInfo, out)) return code;
  if (const int code = encode_cms_recipient_infos(*data.recipientInfos, out)) return code;
  if (const int code = encode(*data.macAlgorithm, out)) return code;
  if (const int code = write_digest_algorithm(data.digestAlgorithm, out)) return code;
  if (const int code = encode(*data.encapContentInfo, out)) return code;
  if (const int code = write_attributes(data.authAttrs, 2, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, data.mac);
  return write_attributes(data.unauthAttrs, 3, out);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(CMS_ORIGINATOR_INFO)
VELPKI_NEW_AND_FREE(CMS_ENVELOPED_DATA)
VELPKI_NEW_AND_FREE(CMS_ENCRYPTED_DATA)
VELPKI_NEW_AND_FREE(CMS_AUTHENTICATED_DATA)
CMS_ENCRYPTED_CONTENT_INFO *new_CMS_ENCRYPTED_CONTENT_INFO(void) noexcept { return new_P7_ENCRYPTED_CONTENT_INFO(); }
void free_CMS_ENCRYPTED_CONTENT_INFO(CMS_ENCRYPTED_CONTENT_INFO *p) noexcept { free_P7_ENCRYPTED_CONTENT_INFO(p); }

int CMS_ORIGINATOR_INFO_to_Seq(const CMS_ORIGINATOR_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_ORIGINATOR_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_ORIGINATOR_INFO(ASN1_UNIT *in, CMS_ORIGINATOR_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_ORIGINATOR_INFO, in, out, decode);
}
int CMS_ENVELOPED_DATA_to_Seq(const CMS_ENVELOPED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_ENVELOPED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_ENVELOPED_DATA(ASN1_UNIT *in, CMS_ENVELOPED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_ENVELOPED_DATA, in, out, decode);
}
int CMS_ENCRYPTED_CONTENT_INFO_to_Seq(const CMS_ENCRYPTED_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq<CMS_ENCRYPTED_CONTENT_INFO>(F_CMS_ENCRYPTED_CONTENT_INFO_TO_SEQ, in, out, write_encrypted_content);
}
int Seq_to_CMS_ENCRYPTED_CONTENT_INFO(ASN1_UNIT *in, CMS_ENCRYPTED_CONTENT_INFO **out) noexcept {
  return from_seq<CMS_ENCRYPTED_CONTENT_INFO>(
      F_SEQ_TO_CMS_ENCRYPTED_CONTENT_INFO, in, out, [](const Tlv &tlv, CMS_ENCRYPTED_CONTENT_INFO &info) noexcept {
        return decode_encrypted_content(tlv, info, F_SEQ_TO_CMS_ENCRYPTED_CONTENT_INFO);
      });
}
int CMS_ENCRYPTED_DATA_to_Seq(const CMS_ENCRYPTED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_ENCRYPTED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_ENCRYPTED_DATA(ASN1_UNIT *in, CMS_ENCRYPTED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_ENCRYPTED_DATA, in, out, decode);
}
int CMS_AUTHENTICATED_DATA_to_Seq(const CMS_AUTHENTICATED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_AUTHENTICATED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_AUTHENTICATED_DATA(ASN1_UNIT *in, CMS_AUTHENTICATED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_AUTHENTICATED_DATA, in, out, decode);
}
