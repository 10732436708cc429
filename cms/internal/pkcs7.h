// The records of pkcs7.h from the inside.
#pragma once

#include <velpki/pkcs7.h>

#include "cms/internal/message.h"

namespace velpki {

VELPKI_FLAT_WITHOUT_DUP(P7_CONTENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(P7_ISSUER_AND_SERIAL_NUMBER)
VELPKI_FLAT_WITHOUT_DUP(P7_SIGNER_INFO)
VELPKI_FLAT_WITHOUT_DUP(P7_RECIPIENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(P7_ENCRYPTED_CONTENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(P7_SIGNED_DATA)
VELPKI_FLAT_WITHOUT_DUP(P7_ENVELOPED_DATA)
VELPKI_FLAT_WITHOUT_DUP(P7_SIGNED_AND_ENVELOPED_DATA)
VELPKI_FLAT_WITHOUT_DUP(P7_DIGESTED_DATA)
VELPKI_FLAT_WITHOUT_DUP(P7_ENCRYPTED_DATA)
VELPKI_FLAT_WITHOUT_DUP(P7_DIGEST_INFO)

template <>
struct Flat<P7_SIGNER_STATE> {
  static void release(P7_SIGNER_STATE *state) noexcept;
};

int decode(const Tlv &tlv, P7_ISSUER_AND_SERIAL_NUMBER &out) noexcept;
int encode(const P7_ISSUER_AND_SERIAL_NUMBER &record, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_SIGNER_INFO &out) noexcept;
int encode(const P7_SIGNER_INFO &signer, DerWriter &out) noexcept;
int decode_signer_infos(const Tlv &tlv, STACK &out) noexcept;
int encode_signer_infos(const STACK &signers, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_RECIPIENT_INFO &out) noexcept;
int encode(const P7_RECIPIENT_INFO &recipient, DerWriter &out) noexcept;
int decode_recipient_infos(const Tlv &tlv, STACK &out) noexcept;
int encode_recipient_infos(const STACK &recipients, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_ENCRYPTED_CONTENT_INFO &out) noexcept;
int encode(const P7_ENCRYPTED_CONTENT_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_SIGNED_DATA &out) noexcept;
int encode(const P7_SIGNED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_ENVELOPED_DATA &out) noexcept;
int encode(const P7_ENVELOPED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_SIGNED_AND_ENVELOPED_DATA &out) noexcept;
int encode(const P7_SIGNED_AND_ENVELOPED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_DIGESTED_DATA &out) noexcept;
int encode(const P7_DIGESTED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_ENCRYPTED_DATA &out) noexcept;
int encode(const P7_ENCRYPTED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_DIGEST_INFO &out) noexcept;
int encode(const P7_DIGEST_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P7_CONTENT_INFO &out) noexcept;
int encode(const P7_CONTENT_INFO &info, DerWriter &out) noexcept;

// The content of a message that is of the type of registry row `kind`; null for another type and without content.
template <class R>
R *content_of(const P7_CONTENT_INFO *p7, int kind) noexcept {
  return p7 && p7->kind == kind ? static_cast<R *>(p7->content) : nullptr;
}
inline P7_SIGNED_DATA *signed_data(const P7_CONTENT_INFO *p7) noexcept {
  return content_of<P7_SIGNED_DATA>(p7, PKCS7_SIGNED_DATA);
}
inline P7_ENVELOPED_DATA *enveloped_data(const P7_CONTENT_INFO *p7) noexcept {
  return content_of<P7_ENVELOPED_DATA>(p7, PKCS7_ENVELOPED_DATA);
}
inline P7_SIGNED_AND_ENVELOPED_DATA *signed_and_enveloped_data(const P7_CONTENT_INFO *p7) noexcept {
  return content_of<P7_SIGNED_AND_ENVELOPED_DATA>(p7, PKCS7_SIGNED_AND_ENVELOPED_DATA);
}
inline P7_DIGESTED_DATA *digested_data(const P7_CONTENT_INFO *p7) noexcept {
  return content_of<P7_DIGESTED_DATA>(p7, PKCS7_DIGESTED_DATA);
}
inline P7_ENCRYPTED_DATA *encrypted_data(const P7_CONTENT_INFO *p7) noexcept {
  return content_of<P7_ENCRYPTED_DATA>(p7, PKCS7_ENCRYPTED_DATA);
}

}  // namespace velpki
