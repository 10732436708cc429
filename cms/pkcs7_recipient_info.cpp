// P7_RECIPIENT_INFO and its list.
#include "cms/internal/pkcs7.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P7_RECIPIENT_INFO> = std::tuple(own(&P7_RECIPIENT_INFO::version),
                                                                   own(&P7_RECIPIENT_INFO::issuerAndSerialNumber),
                                                                   own(&P7_RECIPIENT_INFO::keyEncryptionAlgorithm),
                                                                   own(&P7_RECIPIENT_INFO::encryptedKey),
                                                                   own(&P7_RECIPIENT_INFO::publicKey));

// RecipientInfo ::= SEQUENCE { version INTEGER, issuerAndSerialNumber, keyEncryptionAlgorithm AlgorithmIdentifier,
//   encryptedKey OCTET STRING }
// The kinds of recipient that came later have tags of their own, and are none of these.
int decode(const Tlv &tlv, P7_RECIPIENT_INFO &out) noexcept {
  MessageReader in(tlv);
  if (tag::is_context_or_private(tlv.identifier)) in.stop(Read::malformed);
  if (in.reason() == Read::ok && in.integer(out.version) && in.record(out.issuerAndSerialNumber) &&
      in.record(out.keyEncryptionAlgorithm) && in.octets(out.encryptedKey)) {
    in.end();
  }
  return in.result(F_SEQ_TO_P7_RECIPIENT_INFO);
}

int encode(const P7_RECIPIENT_INFO &recipient, DerWriter &out) noexcept {
  if (!recipient.issuerAndSerialNumber || !recipient.keyEncryptionAlgorithm) {
    return fail(F_P7_RECIPIENT_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(recipient.version, out);
  if (const int code = encode(*recipient.issuerAndSerialNumber, out)) return code;
  if (const int code = encode(*recipient.keyEncryptionAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, recipient.encryptedKey);
  return 0;
}

// RecipientInfos ::= SET OF RecipientInfo
int decode_recipient_infos(const Tlv &tlv, STACK &out) noexcept {
  return decode_list<P7_RECIPIENT_INFO>(tlv, out, F_SEQ_TO_P7_RECIPIENT_INFOS, decode);
}

int encode_recipient_infos(const STACK &recipients, DerWriter &out) noexcept {
  return encode_list<P7_RECIPIENT_INFO>(recipients, out, tag::kSet, F_P7_RECIPIENT_INFOS_TO_SEQ, encode);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(P7_RECIPIENT_INFO)
VELPKI_LIST(P7_RECIPIENT_INFOS, P7_RECIPIENT_INFO)

int P7_RECIPIENT_INFO_to_Seq(const P7_RECIPIENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_RECIPIENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_P7_RECIPIENT_INFO(ASN1_UNIT *in, P7_RECIPIENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P7_RECIPIENT_INFO, in, out, decode);
}
int P7_RECIPIENT_INFOS_to_Seq(const P7_RECIPIENT_INFOS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_RECIPIENT_INFOS_TO_SEQ, in, out, encode_recipient_infos);
}
int Seq_to_P7_RECIPIENT_INFOS(ASN1_UNIT *in, P7_RECIPIENT_INFOS **out) noexcept {
  return list_from_seq<P7_RECIPIENT_INFO>(F_SEQ_TO_P7_RECIPIENT_INFOS, in, out, decode_recipient_infos);
}
