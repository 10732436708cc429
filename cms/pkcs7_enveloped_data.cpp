// The records that hold encrypted content.
#include "cms/internal/content_cipher.h"
#include "cms/internal/pkcs7.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P7_ENCRYPTED_CONTENT_INFO> = std::tuple(
    own(&P7_ENCRYPTED_CONTENT_INFO::contentType), own(&P7_ENCRYPTED_CONTENT_INFO::contentEncryptionAlgorithm),
    own(&P7_ENCRYPTED_CONTENT_INFO::encryptedContent), own(&P7_ENCRYPTED_CONTENT_INFO::cipher),
    own(&P7_ENCRYPTED_CONTENT_INFO::progress));
template <>
inline constexpr auto owned_fields<P7_ENVELOPED_DATA> =
    std::tuple(own(&P7_ENVELOPED_DATA::version), made_list_of<P7_RECIPIENT_INFO>(&P7_ENVELOPED_DATA::recipientInfos),
               own(&P7_ENVELOPED_DATA::encryptedContentInfo));
template <>
inline constexpr auto owned_fields<P7_ENCRYPTED_DATA> = std::tuple(own(&P7_ENCRYPTED_DATA::version),
                                                                   own(&P7_ENCRYPTED_DATA::encryptedContentInfo));

// EncryptedContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, contentEncryptionAlgorithm AlgorithmIdentifier,
//   encryptedContent [0] IMPLICIT OCTET STRING OPTIONAL }
int decode_encrypted_content(const Tlv &tlv, P7_ENCRYPTED_CONTENT_INFO &out, int function) noexcept {
  MessageReader in(tlv);
  if (in.oid(out.contentType) && in.record(out.contentEncryptionAlgorithm) &&
      in.optional_implicit_octets(0, out.encryptedContent)) {
    in.end();
  }
  return in.result(function);
}
int decode(const Tlv &tlv, P7_ENCRYPTED_CONTENT_INFO &out) noexcept {
  return decode_encrypted_content(tlv, out, F_SEQ_TO_P7_ENCRYPTED_CONTENT_INFO);
}

int encode_encrypted_content(const P7_ENCRYPTED_CONTENT_INFO &info, DerWriter &out, int function) noexcept {
  if (!info.contentEncryptionAlgorithm) return fail(function, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  out.oid(info.contentType);
  if (const int code = encode(*info.contentEncryptionAlgorithm, out)) return code;
  write_optional_octets(0, info.encryptedContent, out);
  return 0;
}
int encode(const P7_ENCRYPTED_CONTENT_INFO &info, DerWriter &out) noexcept {
  return encode_encrypted_content(info, out, F_P7_ENCRYPTED_CONTENT_INFO_TO_SEQ);
}

// EnvelopedData ::= SEQUENCE { version INTEGER, recipientInfos RecipientInfos, encryptedContentInfo }
int decode(const Tlv &tlv, P7_ENVELOPED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.list(tag::kSet, out.recipientInfos, decode_recipient_infos) &&
      in.record(out.encryptedContentInfo)) {
    in.end();
  }
  return in.result(F_SEQ_TO_P7_ENVELOPED_DATA);
}

int encode(const P7_ENVELOPED_DATA &data, DerWriter &out) noexcept {
  if (!data.recipientInfos || !data.encryptedContentInfo) return fail(F_P7_ENVELOPED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode_recipient_infos(*data.recipientInfos, out)) return code;
  return encode(*data.encryptedContentInfo, out);
}

// EncryptedData ::= SEQUENCE { version INTEGER, encryptedContentInfo }
int decode(const Tlv &tlv, P7_ENCRYPTED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.record(out.encryptedContentInfo)) in.end();
  return in.result(F_SEQ_TO_P7_ENCRYPTED_DATA);
}

int encode(const P7_ENCRYPTED_DATA &data, DerWriter &out) noexcept {
  if (!data.encryptedContentInfo) return fail(F_P7_ENCRYPTED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  return encode(*data.encryptedContentInfo, out);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(P7_ENCRYPTED_CONTENT_INFO)
VELPKI_NEW_AND_FREE(P7_ENVELOPED_DATA)
VELPKI_NEW_AND_FREE(P7_ENCRYPTED_DATA)

int P7_ENCRYPTED_CONTENT_INFO_to_Seq(const P7_ENCRYPTED_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_ENCRYPTED_CONTENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_P7_ENCRYPTED_CONTENT_INFO(ASN1_UNIT *in, P7_ENCRYPTED_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P7_ENCRYPTED_CONTENT_INFO, in, out, decode);
}
int P7_ENVELOPED_DATA_to_Seq(const P7_ENVELOPED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_ENVELOPED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_P7_ENVELOPED_DATA(ASN1_UNIT *in, P7_ENVELOPED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_P7_ENVELOPED_DATA, in, out, decode);
}
int P7_ENCRYPTED_DATA_to_Seq(const P7_ENCRYPTED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_ENCRYPTED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_P7_ENCRYPTED_DATA(ASN1_UNIT *in, P7_ENCRYPTED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_P7_ENCRYPTED_DATA, in, out, decode);
}
