// Setting up a recipient.
#include "cms/internal/cms.h"
#include "cms/internal/key_encryption.h"
#include "cms/internal/key_transport.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_SET_CMS_RECIPIENT_INFO, reason); }

constexpr int kBySubjectKey = 1, kByPublicKey = 2, kKeyAgreement = 16, kKeyEncryptionKey = 32;  // flags
constexpr int kUsualWrap = 0x01000300, kUsualCipher = 0x01000320;                               // AES-256, and in CBC

const ASYMMETRIC_KEY *key_of(const X509_CERT *cert) noexcept {
  const X509_PUBKEY *spki = cert ? get_X509_SPKI(cert) : nullptr;
  return spki ? spki->key : nullptr;
}

int fill(const CMS_RECIPIENT_OPTIONS &from, KEY_TRANS_RECIPIENT_INFO &out) noexcept {
  const bool by_subject_key = from.flags & kBySubjectKey;
  const ASYMMETRIC_KEY *key = key_of(from.cert);
  if (!from.cert) return failure(kNullArgument);
  if (!ASYMMETRIC_KEY_to_RSA_UNIT(key)) return failure(kUnsupported);
  if (const int code = name_certificate(out.rid, *from.cert, by_subject_key, F_SET_CMS_RECIPIENT_INFO)) return code;
  const int code =
      set_key_encryption_algorithm(out.keyEncryptionAlgorithm, from.padding, from.oaep, F_SET_CMS_RECIPIENT_INFO);
  if (code) return code;
  out.publicKey = dup_ASYMMETRIC_KEY(key);
  return out.publicKey && set_version(out.version, by_subject_key ? 2 : 0) ? 0 : failure(kNoMemory);
}

int fill_originator(const X509_CERT &cert, int flags, ORIGINATOR_IDENTIFIER_ORKEY &out) noexcept {
  if (flags & kByPublicKey) {
    out.type = CMS_ORIGINATOR_KEY;
    return set_originator_key(out, cert, F_SET_CMS_RECIPIENT_INFO);
  }
  if (!(flags & kBySubjectKey)) return name_by_serial(out.issuerAndSerialNumber, cert, F_SET_CMS_RECIPIENT_INFO);
  owned<ASN1_STRING> identifier;
  if (const int reason = read_subject_key_identifier(cert, identifier)) return failure(reason);
  out.type = CMS_ORIGINATOR_SUBJECT_KEY;
  out.subjectKeyIdentifier = identifier.release();
  return 0;
}

int fill_identifier(const X509_CERT &cert, bool by_subject_key, KEY_AGREE_RECIPIENT_IDENTIFIER &out) noexcept {
  if (!by_subject_key) return name_by_serial(out.issuerAndSerialNumber, cert, F_SET_CMS_RECIPIENT_INFO);
  owned<ASN1_STRING> identifier;
  if (const int reason = read_subject_key_identifier(cert, identifier)) return failure(reason);
  out.type = CMS_KEY_AGREE_KEY_IDENTIFIER;
  if (!(out.rKeyId = new_RECIPIENT_KEY_IDENTIFIER())) return failure(kNoMemory);
  out.rKeyId->subjectKeyIdentifier = identifier.release();
  return 0;
}

int add_encrypted_key(const X509_CERT &cert, bool by_subject_key, KEY_AGREE_RECIPIENT_INFO &out) noexcept {
  owned<RECIPIENT_ENCRYPTED_KEY> key(new_RECIPIENT_ENCRYPTED_KEY());
  if (!key || !(key->rid = new_KEY_AGREE_RECIPIENT_IDENTIFIER())) return failure(kNoMemory);
  if (const int code = fill_identifier(cert, by_subject_key, *key->rid)) return code;
  const ASYMMETRIC_KEY *public_key = key_of(&cert);
  if (public_key && !(key->publicKey = dup_ASYMMETRIC_KEY(public_key))) return failure(kNoMemory);
  return append(out.recipientEncryptedKeys, key) ? 0 : failure(kNoMemory);
}

// The originator is a key that will be replaced by a fresh one, or the certificate that is given for it.
int fill(const CMS_RECIPIENT_OPTIONS &from, KEY_AGREE_RECIPIENT_INFO &out) noexcept {
  const X509_CERT *originator = from.originator ? from.originator : from.cert;
  if (!from.cert) return failure(kNullArgument);
  if (!set_version(out.version, 3) || !(out.originator = new_ORIGINATOR_IDENTIFIER_ORKEY())) return failure(kNoMemory);
  if (const int code = fill_originator(*originator, from.flags, *out.originator)) return code;
  if (from.originator_key && !(out.originatorPrivateKey = dup_ASYMMETRIC_KEY(from.originator_key))) {
    return failure(kNoMemory);
  }
  if (from.ukm_length > 0 && !(out.ukm = new_string(TYPE_OCTET_STRING, octets_of(from.ukm, from.ukm_length)))) {
    return failure(kNoMemory);
  }
  const int digest_id = from.digest_id ? from.digest_id : int(PKV_DIGEST_SHA256);
  const int cipher_id = from.cipher_id ? from.cipher_id : kUsualWrap;
  const int code = set_agreement_algorithm(out.keyEncryptionAlgorithm, digest_id, cipher_id, F_SET_CMS_RECIPIENT_INFO);
  return code ? code : add_encrypted_key(*from.cert, from.flags & kBySubjectKey, out);
}

int set_secret(CMS_SECRET *&out, const unsigned char *secret, int length) noexcept {
  if (!secret || length < 1) return failure(kNullArgument);
  out = new_secret(octets_of(secret, length)).release();
  return out ? 0 : failure(kNoMemory);
}

// AES by the length of the key.
int usual_wrap(int key_length) noexcept {
  return key_length == 16 ? 0x01000100 : key_length == 24 ? 0x01000200 : key_length == 32 ? kUsualWrap : 0;
}

int fill(const CMS_RECIPIENT_OPTIONS &from, KEK_RECIPIENT_INFO &out) noexcept {
  const int cipher_id = from.cipher_id ? from.cipher_id : usual_wrap(from.secret_length);
  if (!from.key_id || from.key_id_length < 1) return failure(kNullArgument);
  if (const int code = set_secret(out.key, from.secret, from.secret_length)) return code;
  if (PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id) != from.secret_length) return failure(kBadValue);
  if (const int code = set_wrap_algorithm(out.keyEncryptionAlgorithm, cipher_id, F_SET_CMS_RECIPIENT_INFO)) {
    return code;
  }
  out.kekid = new_RECIPIENT_KEY_IDENTIFIER();
  if (!out.kekid || !set_version(out.version, 4)) return failure(kNoMemory);
  out.kekid->subjectKeyIdentifier = new_string(TYPE_OCTET_STRING, octets_of(from.key_id, from.key_id_length));
  return out.kekid->subjectKeyIdentifier ? 0 : failure(kNoMemory);
}

int fill(const CMS_RECIPIENT_OPTIONS &from, PASSWORD_RECIPIENT_INFO &out) noexcept {
  if (const int code = set_secret(out.password, from.secret, from.secret_length)) return code;
  if (!set_version(out.version, 0)) return failure(kNoMemory);
  return set_password_algorithms(out, from.digest_id ? from.digest_id : int(PKV_DIGEST_SHA256),
                                 from.cipher_id ? from.cipher_id : kUsualCipher,
                                 from.iterations ? from.iterations : kUsualIterations, F_SET_CMS_RECIPIENT_INFO);
}

template <class R>
int set_info(CMS_RECIPIENT_INFO &out, const CMS_RECIPIENT_OPTIONS &from) noexcept {
  owned<R> info(Flat<R>::make());
  if (!info) return failure(kNoMemory);
  if (const int code = fill(from, *info)) return code;
  drop_info(out);
  out.info = info.release();
  out.kind = from.kind;
  return 0;
}

// What the flags of the plain function mean.
CMS_RECIPIENT_OPTIONS options_of(const X509_CERT *cert, int padding, const RSAES_OAEP_PARAM *oaep, int flags) noexcept {
  CMS_RECIPIENT_OPTIONS options{};
  options.kind = flags & kKeyAgreement ? CMS_RECIPIENT_KEY_AGREE : CMS_RECIPIENT_KEY_TRANS;
  options.cert = cert;
  options.flags = flags;
  options.padding = padding;
  options.oaep = oaep;
  return options;
}

// Raises the version of enveloped data for a recipient of the kinds that came later.
bool raise_for(CMS_CONTENT_INFO &cms, const CMS_RECIPIENT_INFO &recipient) noexcept {
  if (!enveloped_data(&cms)) return true;
  if (recipient.kind >= CMS_RECIPIENT_PASSWORD) return raise_version(*version_of(cms), 3);
  const KEY_TRANS_RECIPIENT_INFO *info = key_trans(&recipient);
  const bool version_0 = info && PKV_Get_BIGINT_Bit_Length(info->version) == 0;
  return version_0 || raise_version(*version_of(cms), 2);
}

}  // namespace

int set_originator_key(ORIGINATOR_IDENTIFIER_ORKEY &out, const X509_CERT &cert, int function) noexcept {
  const X509_PUBKEY *spki = get_X509_SPKI(&cert);
  if (!spki || !spki->algorithm || !spki->subjectPublicKey) return fail(function, kNullArgument);
  owned<ORIGINATOR_PUBLIC_KEY> fresh(new_ORIGINATOR_PUBLIC_KEY());
  if (!fresh) return fail(function, kNoMemory);
  fresh->algorithm = new_bare_algorithm(spki->algorithm).release();
  fresh->publicKey = dup_ASN1_STRING(spki->subjectPublicKey);
  if (!fresh->algorithm || !fresh->publicKey) return fail(function, kNoMemory);
  put(out.originatorKey, std::move(fresh));
  out.type = CMS_ORIGINATOR_KEY;
  return 0;
}

}  // namespace velpki

using namespace velpki;

int set_CMS_OriginatorPublickKey(ORIGINATOR_IDENTIFIER_ORKEY *originator, X509_CERT *cert) noexcept {
  if (!originator || !cert) return fail(F_SET_CMS_ORIGINATORPUBLICKKEY, kNullArgument);
  return set_originator_key(*originator, *cert, F_SET_CMS_ORIGINATORPUBLICKKEY);
}

int set_CMS_RECIPIENT_INFO(CMS_RECIPIENT_INFO *ri, X509_CERT *cert, int padding, RSAES_OAEP_PARAM *oaep,
                           int flags) noexcept {
  if (!ri) return failure(kNullArgument);
  if (!(flags & kKeyEncryptionKey) || flags & kKeyAgreement) {
    const CMS_RECIPIENT_OPTIONS options = options_of(cert, padding, oaep, flags);
    return set_CMS_RECIPIENT_INFO_ex(ri, &options);
  }
  KEK_RECIPIENT_INFO *info = new_KEK_RECIPIENT_INFO();
  if (!info) return failure(kNoMemory);
  drop_info(*ri);
  *ri = {CMS_RECIPIENT_KEK, info};
  return 0;
}

int set_CMS_RECIPIENT_INFO_ex(CMS_RECIPIENT_INFO *ri, const CMS_RECIPIENT_OPTIONS *options) noexcept {
  if (!ri || !options) return failure(kNullArgument);
  switch (options->kind) {
    case CMS_RECIPIENT_KEY_TRANS:
      return set_info<KEY_TRANS_RECIPIENT_INFO>(*ri, *options);
    case CMS_RECIPIENT_KEY_AGREE:
      return set_info<KEY_AGREE_RECIPIENT_INFO>(*ri, *options);
    case CMS_RECIPIENT_KEK:
      return set_info<KEK_RECIPIENT_INFO>(*ri, *options);
    case CMS_RECIPIENT_PASSWORD:
      return set_info<PASSWORD_RECIPIENT_INFO>(*ri, *options);
    default:
      return failure(kUnsupported);
  }
}

int add_CMS_RECIPIENT_INFO(CMS_CONTENT_INFO *cms, CMS_RECIPIENT_INFO *ri) noexcept {
  if (!cms || !ri) return fail(F_ADD_CMS_RECIPIENT_INFO, kNullArgument);
  CMS_RECIPIENT_INFOS **list = recipient_list(cms);
  if (!list) return fail(F_ADD_CMS_RECIPIENT_INFO, kUnsupported);
  if (!raise_for(*cms, *ri)) return fail(F_ADD_CMS_RECIPIENT_INFO, kNoMemory);
  return take(*list, ri, F_ADD_CMS_RECIPIENT_INFO);
}

namespace velpki {

namespace {

template <class Fill>
CMS_RECIPIENT_INFO *add_recipient(CMS_CONTENT_INFO *cms, Fill fill) noexcept {
  owned<CMS_RECIPIENT_INFO> recipient(new_CMS_RECIPIENT_INFO());
  if (!recipient || fill(recipient.get()) || add_CMS_RECIPIENT_INFO(cms, recipient.get())) return nullptr;
  return recipient.release();
}

}  // namespace

}  // namespace velpki

CMS_RECIPIENT_INFO *add_CMS_Recipient(CMS_CONTENT_INFO *cms, X509_CERT *cert, int padding, RSAES_OAEP_PARAM *oaep,
                                      int flags) noexcept {
  return add_recipient(cms, [&](CMS_RECIPIENT_INFO *recipient) noexcept {
    return set_CMS_RECIPIENT_INFO(recipient, cert, padding, oaep, flags);
  });
}
CMS_RECIPIENT_INFO *add_CMS_Recipient_ex(CMS_CONTENT_INFO *cms, const CMS_RECIPIENT_OPTIONS *options) noexcept {
  return add_recipient(
      cms, [&](CMS_RECIPIENT_INFO *recipient) noexcept { return set_CMS_RECIPIENT_INFO_ex(recipient, options); });
}
