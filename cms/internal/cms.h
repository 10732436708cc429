// The records of cms.h from the inside.
#pragma once

#include <velpki/cms.h>

#include "cms/internal/certificate_index.h"
#include "cms/internal/certificate_sets.h"
#include "cms/internal/pkcs7.h"
#include "x509/internal/crl.h"
#include "x509/internal/issuer_and_serial_number.h"

// One block: the octets stand behind the struct.
struct cms_secret {
  size_t size;
};

namespace velpki {

VELPKI_FLAT_WITHOUT_DUP(CMS_CONTENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(ENCAPSULATED_CONTENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(SIGNER_IDENTIFIER)
VELPKI_FLAT_WITHOUT_DUP(CMS_SIGNER_INFO)
VELPKI_FLAT_WITHOUT_DUP(CMS_SIGNED_DATA)
VELPKI_FLAT_WITHOUT_DUP(CMS_ORIGINATOR_INFO)
VELPKI_FLAT_WITHOUT_DUP(OTHER_KEY_ATTRIBUTE)
VELPKI_FLAT_WITHOUT_DUP(RECIPIENT_KEY_IDENTIFIER)
VELPKI_FLAT_WITHOUT_DUP(ORIGINATOR_PUBLIC_KEY)
VELPKI_FLAT_WITHOUT_DUP(ORIGINATOR_IDENTIFIER_ORKEY)
VELPKI_FLAT_WITHOUT_DUP(KEY_AGREE_RECIPIENT_IDENTIFIER)
VELPKI_FLAT_WITHOUT_DUP(RECIPIENT_ENCRYPTED_KEY)
VELPKI_FLAT_WITHOUT_DUP(KEY_TRANS_RECIPIENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(KEY_AGREE_RECIPIENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(KEK_RECIPIENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(PASSWORD_RECIPIENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(CMS_RECIPIENT_INFO)
VELPKI_FLAT_WITHOUT_DUP(CMS_ENVELOPED_DATA)
VELPKI_FLAT_WITHOUT_DUP(CMS_DIGESTED_DATA)
VELPKI_FLAT_WITHOUT_DUP(CMS_ENCRYPTED_DATA)
VELPKI_FLAT_WITHOUT_DUP(CMS_AUTHENTICATED_DATA)

template <>
struct Flat<CMS_SECRET> {
  static void release(CMS_SECRET *secret) noexcept;
};
// A new one with a copy of the octets, null when memory is exhausted.
owned<CMS_SECRET> new_secret(Octets octets) noexcept;
inline Octets octets(const CMS_SECRET &secret) noexcept {
  return {reinterpret_cast<const uint8_t *>(&secret + 1), secret.size};
}

int decode(const Tlv &tlv, ENCAPSULATED_CONTENT_INFO &out) noexcept;
int encode(const ENCAPSULATED_CONTENT_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_SIGNER_INFO &out) noexcept;
int encode(const CMS_SIGNER_INFO &signer, DerWriter &out) noexcept;
int decode_cms_signer_infos(const Tlv &tlv, STACK &out) noexcept;
int encode_cms_signer_infos(const STACK &signers, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_SIGNED_DATA &out) noexcept;
int encode(const CMS_SIGNED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_ORIGINATOR_INFO &out) noexcept;
int encode(const CMS_ORIGINATOR_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_RECIPIENT_INFO &out) noexcept;
int encode(const CMS_RECIPIENT_INFO &recipient, DerWriter &out) noexcept;
int decode_cms_recipient_infos(const Tlv &tlv, STACK &out) noexcept;
int encode_cms_recipient_infos(const STACK &recipients, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_ENVELOPED_DATA &out) noexcept;
int encode(const CMS_ENVELOPED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_DIGESTED_DATA &out) noexcept;
int encode(const CMS_DIGESTED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_ENCRYPTED_DATA &out) noexcept;
int encode(const CMS_ENCRYPTED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_AUTHENTICATED_DATA &out) noexcept;
int encode(const CMS_AUTHENTICATED_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, CMS_CONTENT_INFO &out) noexcept;
int encode(const CMS_CONTENT_INFO &info, DerWriter &out) noexcept;

// The pieces of identifiers as children of a reader or writer.
bool read_issuer_and_serial(MessageReader &in, ISSUER_AND_SERIAL_NUMBER *&out) noexcept;
int write_issuer_and_serial(const ISSUER_AND_SERIAL_NUMBER *record, DerWriter &out) noexcept;
bool read_identifier(MessageReader &in, SIGNER_IDENTIFIER *&out) noexcept;
int write_identifier(const SIGNER_IDENTIFIER *identifier, int function, DerWriter &out) noexcept;

// The subject key identifier of a certificate: 0, or 2B when it has none that can be read, or 3C.
int read_subject_key_identifier(const X509_CERT &cert, owned<ASN1_STRING> &out) noexcept;
// Its octets where they stand; false when there are none.
bool view_subject_key_identifier(const X509_CERT &cert, Octets &out) noexcept;
// Names a certificate: 0, or `function` with a reason.
int name_certificate(SIGNER_IDENTIFIER *&out, const X509_CERT &cert, bool by_subject_key, int function) noexcept;
int name_by_serial(ISSUER_AND_SERIAL_NUMBER *&out, const X509_CERT &cert, int function) noexcept;

// The public key of a certificate as an originator's: 0, or `function` with 49 or 3C.
int set_originator_key(ORIGINATOR_IDENTIFIER_ORKEY &out, const X509_CERT &cert, int function) noexcept;
// Puts the key of a content into every recipient: 0, or the code of the first that failed.
int wrap_for_all(const CMS_RECIPIENT_INFOS *recipients, Octets key, int padding, int function) noexcept;

// Whether a certificate has exactly this subject key identifier.
bool has_subject_key(const X509_CERT &cert, const ASN1_STRING *identifier) noexcept;
// Whether an identifier names a certificate, and the first of a list that it names (null: none), with the comparison of
// the plain functions.
bool names_certificate(const SIGNER_IDENTIFIER *identifier, const X509_CERT &cert) noexcept;
const X509_CERT *find_named(const X509_CERTIFICATES *list, const SIGNER_IDENTIFIER *identifier) noexcept;
// What an identifier says; no name for null.
SignerName name_of(const SIGNER_IDENTIFIER *identifier) noexcept;

inline bool has_anything(const CMS_ORIGINATOR_INFO *info) noexcept {
  return info && (has_elements(info->certificates) || has_elements(info->crls) ||
                  has_elements(info->otherCertificates) || has_elements(info->otherCrls));
}

// [n] IMPLICIT SET OF Attribute that is OPTIONAL.
inline bool read_attributes(MessageReader &in, int n, X509_ATTRIBUTES *&out) noexcept {
  return in.optional_list<X509_ATTRIBUTE>(tag::explicit_context(n), out, decode_attributes);
}
inline int write_attributes(const X509_ATTRIBUTES *attributes, int n, DerWriter &out) noexcept {
  return has_elements(attributes) ? encode_attributes(*attributes, out, tag::explicit_context(n)) : 0;
}

inline CMS_SIGNED_DATA *signed_data(const CMS_CONTENT_INFO *cms) noexcept {
  return content_of<CMS_SIGNED_DATA>(cms, CMS_TYPE_SIGNED_DATA);
}
inline CMS_ENVELOPED_DATA *enveloped_data(const CMS_CONTENT_INFO *cms) noexcept {
  return content_of<CMS_ENVELOPED_DATA>(cms, CMS_TYPE_ENVELOPED_DATA);
}
inline CMS_DIGESTED_DATA *digested_data(const CMS_CONTENT_INFO *cms) noexcept {
  return content_of<CMS_DIGESTED_DATA>(cms, CMS_TYPE_DIGESTED_DATA);
}
inline CMS_ENCRYPTED_DATA *encrypted_data(const CMS_CONTENT_INFO *cms) noexcept {
  return content_of<CMS_ENCRYPTED_DATA>(cms, CMS_TYPE_ENCRYPTED_DATA);
}
inline CMS_AUTHENTICATED_DATA *authenticated_data(const CMS_CONTENT_INFO *cms) noexcept {
  return content_of<CMS_AUTHENTICATED_DATA>(cms, CMS_TYPE_AUTHENTICATED_DATA);
}

// The version of a content that has one, else null.
BIGINT **version_of(const CMS_CONTENT_INFO &cms) noexcept;
// Releases the content, and leaves the type without one.
void drop_content(CMS_CONTENT_INFO &cms) noexcept;

// Where a message of some type keeps what several types have; null for the others.
CMS_RECIPIENT_INFOS **recipient_list(const CMS_CONTENT_INFO *cms) noexcept;
CMS_ENCRYPTED_CONTENT_INFO **encrypted_content(const CMS_CONTENT_INFO *cms) noexcept;
ENCAPSULATED_CONTENT_INFO **encapsulated_content(const CMS_CONTENT_INFO *cms) noexcept;
CMS_ORIGINATOR_INFO **originator_info(const CMS_CONTENT_INFO *cms) noexcept;
// The registry row of the message's type; 0 for none.
int content_row(const CMS_CONTENT_INFO *cms) noexcept;
// 0 when the message's type is `row` and its content is there; else `function` with 48, or 49.
int check_type(const CMS_CONTENT_INFO *cms, int row, int function) noexcept;
// Whether the content is of another type than data.
bool is_typed(const ENCAPSULATED_CONTENT_INFO *info) noexcept;
// The content info of a message, made with type data when it is missing; null when memory is exhausted.
ENCAPSULATED_CONTENT_INFO *provide_content(ENCAPSULATED_CONTENT_INFO *&info) noexcept;
// A version that is below `least` becomes that. False when memory is exhausted.
bool raise_version(BIGINT *&version, unsigned least) noexcept;
// Makes a list that is missing.
inline bool provide(STACK *&list) noexcept { return list || (list = new_STACK()); }
// Appends what the list takes over: 0, or `function` with 2B when it is in the list already, or 3C.
int take(STACK *&list, void *element, int function) noexcept;

// The record of a recipient that is of `kind`, else null.
template <class R>
R *info_of(const CMS_RECIPIENT_INFO *recipient, int kind) noexcept {
  return recipient && recipient->kind == kind ? static_cast<R *>(recipient->info) : nullptr;
}
inline KEY_TRANS_RECIPIENT_INFO *key_trans(const CMS_RECIPIENT_INFO *recipient) noexcept {
  return info_of<KEY_TRANS_RECIPIENT_INFO>(recipient, CMS_RECIPIENT_KEY_TRANS);
}
inline KEY_AGREE_RECIPIENT_INFO *key_agree(const CMS_RECIPIENT_INFO *recipient) noexcept {
  return info_of<KEY_AGREE_RECIPIENT_INFO>(recipient, CMS_RECIPIENT_KEY_AGREE);
}
inline KEK_RECIPIENT_INFO *kek(const CMS_RECIPIENT_INFO *recipient) noexcept {
  return info_of<KEK_RECIPIENT_INFO>(recipient, CMS_RECIPIENT_KEK);
}
inline PASSWORD_RECIPIENT_INFO *password(const CMS_RECIPIENT_INFO *recipient) noexcept {
  return info_of<PASSWORD_RECIPIENT_INFO>(recipient, CMS_RECIPIENT_PASSWORD);
}
// Releases what a recipient holds.
void drop_info(CMS_RECIPIENT_INFO &recipient) noexcept;

}  // namespace velpki
