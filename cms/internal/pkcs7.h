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
// PKCS#7 and CMS have the same record with different codes.
int decode_encrypted_content(const Tlv &tlv, P7_ENCRYPTED_CONTENT_INFO &out, int function) noexcept;
int encode_encrypted_content(const P7_ENCRYPTED_CONTENT_INFO &info, DerWriter &out, int function) noexcept;
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

// The content of a message, P7_ or CMS_CONTENT_INFO, that is of the type of registry row `kind`; null for another type
// and without content.
template <class R, class M>
R *content_of(const M *message, int kind) noexcept {
  return message && message->kind == kind ? static_cast<R *>(message->content) : nullptr;
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

// Where a message of some type keeps what several types have; null for the others.
P7_SIGNER_INFOS *signer_infos(const P7_CONTENT_INFO *p7) noexcept;
X509_CERTIFICATES *certificates_of(const P7_CONTENT_INFO *p7) noexcept;
P7_RECIPIENT_INFOS **recipient_list(const P7_CONTENT_INFO *p7) noexcept;
P7_ENCRYPTED_CONTENT_INFO **encrypted_content(const P7_CONTENT_INFO *p7) noexcept;
P7_CONTENT_INFO **inner_content(const P7_CONTENT_INFO *p7) noexcept;

// The registry row of the message's type; 0 for none.
int content_row(const P7_CONTENT_INFO *p7) noexcept;
// A content info of type data with a copy of the octets; null when memory is exhausted.
owned<P7_CONTENT_INFO> new_data(Octets octets) noexcept;

// The content that a message signs: the octets of data, of any other type those of its value without tag and length.
class MessageContent {
 public:
  explicit MessageContent(Rules rules = {}) noexcept : encoded_(rules) {}
  // 0, or the code of a content that cannot be encoded.
  int load(const P7_CONTENT_INFO &p7) noexcept;
  bool present() const noexcept { return present_; }
  Octets octets() const noexcept { return octets_; }

 private:
  bool present_ = false;
  Octets octets_;
  DerWriter encoded_;
};

// Names a certificate by its issuer and serial number; false when it lacks either, or memory ends.
bool set_issuer_and_serial(P7_ISSUER_AND_SERIAL_NUMBER *&out, const X509_CERT &cert) noexcept;

}  // namespace velpki
