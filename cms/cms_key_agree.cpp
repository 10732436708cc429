// The records of key agreement recipients, and what names a key-encryption key.
#include "cms/internal/cms_recipient.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<OTHER_KEY_ATTRIBUTE> = std::tuple(own(&OTHER_KEY_ATTRIBUTE::keyAttrId),
                                                                     own(&OTHER_KEY_ATTRIBUTE::keyAttr));
template <>
inline constexpr auto owned_fields<RECIPIENT_KEY_IDENTIFIER> =
    std::tuple(own(&RECIPIENT_KEY_IDENTIFIER::subjectKeyIdentifier), own(&RECIPIENT_KEY_IDENTIFIER::date),
               own(&RECIPIENT_KEY_IDENTIFIER::other));
template <>
inline constexpr auto owned_fields<ORIGINATOR_PUBLIC_KEY> = std::tuple(own(&ORIGINATOR_PUBLIC_KEY::algorithm),
                                                                       own(&ORIGINATOR_PUBLIC_KEY::publicKey));
template <>
inline constexpr auto owned_fields<ORIGINATOR_IDENTIFIER_ORKEY> = std::tuple(
    own(&ORIGINATOR_IDENTIFIER_ORKEY::issuerAndSerialNumber), own(&ORIGINATOR_IDENTIFIER_ORKEY::subjectKeyIdentifier),
    own(&ORIGINATOR_IDENTIFIER_ORKEY::originatorKey));
template <>
inline constexpr auto owned_fields<KEY_AGREE_RECIPIENT_IDENTIFIER> = std::tuple(
    own(&KEY_AGREE_RECIPIENT_IDENTIFIER::issuerAndSerialNumber), own(&KEY_AGREE_RECIPIENT_IDENTIFIER::rKeyId));
template <>
inline constexpr auto owned_fields<RECIPIENT_ENCRYPTED_KEY> = std::tuple(own(&RECIPIENT_ENCRYPTED_KEY::rid),
                                                                         own(&RECIPIENT_ENCRYPTED_KEY::encryptedKey),
                                                                         own(&RECIPIENT_ENCRYPTED_KEY::publicKey));
template <>
inline constexpr auto owned_fields<KEY_AGREE_RECIPIENT_INFO> =
    std::tuple(own(&KEY_AGREE_RECIPIENT_INFO::version), own(&KEY_AGREE_RECIPIENT_INFO::originator),
               own(&KEY_AGREE_RECIPIENT_INFO::ukm), own(&KEY_AGREE_RECIPIENT_INFO::keyEncryptionAlgorithm),
               made_list_of<RECIPIENT_ENCRYPTED_KEY>(&KEY_AGREE_RECIPIENT_INFO::recipientEncryptedKeys),
               own(&KEY_AGREE_RECIPIENT_INFO::originatorPrivateKey));

namespace {

constexpr int kMissing = F_CMS_RECIPIENT_INFO_TO_SEQ | ERR_ASN1_ENCODING;

// OtherKeyAttribute ::= SEQUENCE { keyAttrId OBJECT IDENTIFIER, keyAttr ANY OPTIONAL }
bool read_other(MessageReader &in, OTHER_KEY_ATTRIBUTE *&out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child) || !in.made(out = blank<OTHER_KEY_ATTRIBUTE>())) return false;
  MessageReader inside(child);
  if (inside.oid(out->keyAttrId) && (inside.at_end() || inside.unit(out->keyAttr))) inside.end();
  return in.join(inside);
}
void write_other(const OTHER_KEY_ATTRIBUTE &other, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(other.keyAttrId);
  if (other.keyAttr) out.unit(other.keyAttr);
}

}  // namespace

// RecipientKeyIdentifier, KEKIdentifier ::= SEQUENCE { identifier OCTET STRING, date GeneralizedTime OPTIONAL,
//   other OtherKeyAttribute OPTIONAL }
bool read_key_identifier(MessageReader &in, RECIPIENT_KEY_IDENTIFIER *&out) noexcept {
  Tlv child;
  if (!in.next(child) || !in.made(out = blank<RECIPIENT_KEY_IDENTIFIER>())) return false;
  MessageReader inside(child);
  bool read = inside.octets(out->subjectKeyIdentifier);
  if (read && inside.at(TYPE_GENERALIZED_TIME)) read = inside.string(TYPE_GENERALIZED_TIME, out->date);
  if (read && inside.at(tag::kSequence)) read = read_other(inside, out->other);
  if (read) inside.end();
  return in.join(inside);
}
int write_key_identifier(const RECIPIENT_KEY_IDENTIFIER *identifier, uint8_t outer, DerWriter &out) noexcept {
  if (!identifier || !identifier->subjectKeyIdentifier) return kMissing;
  const auto sequence = out.constructed(outer);
  out.octets_as(TYPE_OCTET_STRING, identifier->subjectKeyIdentifier);
  if (identifier->date) out.string(identifier->date);
  if (identifier->other) write_other(*identifier->other, out);
  return 0;
}

namespace {

// OriginatorPublicKey ::= SEQUENCE { algorithm AlgorithmIdentifier, publicKey BIT STRING }
bool read_public_key(MessageReader &in, ORIGINATOR_PUBLIC_KEY *&out) noexcept {
  Tlv child;
  if (!in.next(child) || !in.made(out = blank<ORIGINATOR_PUBLIC_KEY>())) return false;
  MessageReader inside(child);
  if (inside.record(out->algorithm) && inside.string(TYPE_BIT_STRING, out->publicKey)) inside.end();
  return in.join(inside);
}
int write_public_key(const ORIGINATOR_PUBLIC_KEY *key, DerWriter &out) noexcept {
  if (!key || !key->algorithm || !key->publicKey) return kMissing;
  const auto sequence = out.explicit_context(1);
  if (const int code = encode(*key->algorithm, out)) return code;
  out.bits(key->publicKey);
  return 0;
}

// OriginatorIdentifierOrKey ::= CHOICE { issuerAndSerialNumber, subjectKeyIdentifier [0] IMPLICIT OCTET STRING,
//   originatorKey [1] IMPLICIT OriginatorPublicKey }, inside [0] EXPLICIT
bool read_choice(MessageReader &in, ORIGINATOR_IDENTIFIER_ORKEY &out) noexcept {
  if (in.at(tag::kSequence)) return read_issuer_and_serial(in, out.issuerAndSerialNumber);
  if (in.at(tag::explicit_context(1))) {
    out.type = CMS_ORIGINATOR_KEY;
    return read_public_key(in, out.originatorKey);
  }
  out.type = CMS_ORIGINATOR_SUBJECT_KEY;
  return (in.optional_implicit_octets(0, out.subjectKeyIdentifier) && out.subjectKeyIdentifier) ||
         in.stop(Read::malformed);
}
bool read_originator(MessageReader &in, ORIGINATOR_IDENTIFIER_ORKEY *&out) noexcept {
  Tlv wrapper;
  if (!in.at(tag::explicit_context(0))) return in.stop(Read::malformed);
  if (!in.next(wrapper) || !in.made(out = blank<ORIGINATOR_IDENTIFIER_ORKEY>())) return false;
  MessageReader inside(wrapper);
  if (read_choice(inside, *out)) inside.end();
  return in.join(inside);
}
int write_originator(const ORIGINATOR_IDENTIFIER_ORKEY *originator, DerWriter &out) noexcept {
  if (!originator) return kMissing;
  const auto wrapper = out.explicit_context(0);
  if (originator->type == CMS_ORIGINATOR_KEY) return write_public_key(originator->originatorKey, out);
  if (originator->type != CMS_ORIGINATOR_SUBJECT_KEY) {
    return write_issuer_and_serial(originator->issuerAndSerialNumber, out);
  }
  if (!originator->subjectKeyIdentifier) return kMissing;
  out.octets_as(tag::implicit_context(0), originator->subjectKeyIdentifier);
  return 0;
}

// KeyAgreeRecipientIdentifier ::= CHOICE { issuerAndSerialNumber, rKeyId [0] IMPLICIT RecipientKeyIdentifier }
bool read_recipient(MessageReader &in, KEY_AGREE_RECIPIENT_IDENTIFIER *&out) noexcept {
  if (!in.made(out = blank<KEY_AGREE_RECIPIENT_IDENTIFIER>())) return false;
  if (in.at(tag::kSequence)) return read_issuer_and_serial(in, out->issuerAndSerialNumber);
  out->type = CMS_KEY_AGREE_KEY_IDENTIFIER;
  return in.at(tag::explicit_context(0)) ? read_key_identifier(in, out->rKeyId) : in.stop(Read::malformed);
}
int write_recipient(const KEY_AGREE_RECIPIENT_IDENTIFIER *recipient, DerWriter &out) noexcept {
  if (!recipient) return kMissing;
  if (recipient->type == CMS_KEY_AGREE_KEY_IDENTIFIER) {
    return write_key_identifier(recipient->rKeyId, tag::explicit_context(0), out);
  }
  return write_issuer_and_serial(recipient->issuerAndSerialNumber, out);
}

// RecipientEncryptedKey ::= SEQUENCE { rid KeyAgreeRecipientIdentifier, encryptedKey OCTET STRING }
int decode_key(const Tlv &tlv, RECIPIENT_ENCRYPTED_KEY &out) noexcept {
  MessageReader in(tlv);
  if (read_recipient(in, out.rid) && in.octets(out.encryptedKey)) in.end();
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFO);
}
int encode_key(const RECIPIENT_ENCRYPTED_KEY &key, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const int code = write_recipient(key.rid, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, key.encryptedKey);
  return 0;
}
int decode_keys(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<RECIPIENT_ENCRYPTED_KEY>(tlv, list, F_SEQ_TO_CMS_RECIPIENT_INFO, decode_key);
}

// ukm [1] EXPLICIT OCTET STRING OPTIONAL
bool read_ukm(MessageReader &in, OCTET_STRING *&out) noexcept {
  Tlv wrapper;
  if (!in.at(tag::explicit_context(1))) return true;
  if (!in.next(wrapper)) return false;
  MessageReader inside(wrapper);
  if (inside.octets(out)) inside.end();
  return in.join(inside);
}

}  // namespace

// KeyAgreeRecipientInfo ::= SEQUENCE { version INTEGER, originator, ukm, keyEncryptionAlgorithm AlgorithmIdentifier,
//   recipientEncryptedKeys SEQUENCE OF RecipientEncryptedKey }
int decode(const Tlv &tlv, KEY_AGREE_RECIPIENT_INFO &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && read_originator(in, out.originator) && read_ukm(in, out.ukm) &&
      in.record(out.keyEncryptionAlgorithm) && in.list(tag::kSequence, out.recipientEncryptedKeys, decode_keys)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFO);
}

int encode_members(const KEY_AGREE_RECIPIENT_INFO &info, DerWriter &out) noexcept {
  if (!info.keyEncryptionAlgorithm || !info.recipientEncryptedKeys) return kMissing;
  write_version(info.version, out);
  if (const int code = write_originator(info.originator, out)) return code;
  if (info.ukm) {
    const auto wrapper = out.explicit_context(1);
    out.octets_as(TYPE_OCTET_STRING, info.ukm);
  }
  if (const int code = encode(*info.keyEncryptionAlgorithm, out)) return code;
  return encode_list<RECIPIENT_ENCRYPTED_KEY>(*info.recipientEncryptedKeys, out, tag::kSequence,
                                              F_CMS_RECIPIENT_INFO_TO_SEQ, encode_key);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(OTHER_KEY_ATTRIBUTE)
VELPKI_NEW_AND_FREE(RECIPIENT_KEY_IDENTIFIER)
VELPKI_NEW_AND_FREE(ORIGINATOR_PUBLIC_KEY)
VELPKI_NEW_AND_FREE(ORIGINATOR_IDENTIFIER_ORKEY)
VELPKI_NEW_AND_FREE(KEY_AGREE_RECIPIENT_IDENTIFIER)
VELPKI_NEW_AND_FREE(RECIPIENT_ENCRYPTED_KEY)
VELPKI_LIST(RECIPIENT_ENCRYPTED_KEYS, RECIPIENT_ENCRYPTED_KEY)
VELPKI_NEW_AND_FREE(KEY_AGREE_RECIPIENT_INFO)
