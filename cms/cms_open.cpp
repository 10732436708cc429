#include "cms/internal/cms_open.h"

#include "cms/internal/pkcs7_decrypt.h"
#include "cms/internal/strict_key.h"

namespace velpki {

namespace {

bool names(const RECIPIENT_IDENTIFIER *rid, const X509_CERT &cert) noexcept {
  if (!rid) return false;
  if (rid->type == CMS_ID_SUBJECT_KEY) return has_subject_key(cert, rid->subjectKeyIdentifier);
  return cmp_ISSUER_AND_SERIAL_NUMBER(&cert, rid->issuerAndSerialNumber) == 0;
}

bool names(const KEY_AGREE_RECIPIENT_IDENTIFIER *rid, const X509_CERT &cert) noexcept {
  if (!rid) return false;
  if (rid->type != CMS_KEY_AGREE_KEY_IDENTIFIER) {
    return cmp_ISSUER_AND_SERIAL_NUMBER(&cert, rid->issuerAndSerialNumber) == 0;
  }
  return rid->rKeyId && has_subject_key(cert, rid->rKeyId->subjectKeyIdentifier);
}

const RECIPIENT_ENCRYPTED_KEY *find_agreed(const KEY_AGREE_RECIPIENT_INFO &info, const X509_CERT &cert) noexcept {
  for (const RECIPIENT_ENCRYPTED_KEY *each : elements<RECIPIENT_ENCRYPTED_KEY>(info.recipientEncryptedKeys))
    if (each && names(each->rid, cert)) return each;
  return nullptr;
}

bool is_key(const KEK_RECIPIENT_INFO &info, const CMS_OPENER &opener) noexcept {
  const ASN1_STRING *id = info.kekid ? info.kekid->subjectKeyIdentifier : nullptr;
  if (!opener.kek || !id) return false;
  const Octets wanted = octets_of(opener.kek_id, opener.kek_id_length), own = octets(*id);
  return !opener.kek_id || (own.size() == wanted.size() && std::equal(own.begin(), own.end(), wanted.begin()));
}

bool can_open(const CMS_RECIPIENT_INFO &recipient, const CMS_OPENER &opener, OpenableRecipient &out) noexcept {
  out.recipient = &recipient;
  if (const KEK_RECIPIENT_INFO *info = kek(&recipient)) return is_key(*info, opener);
  if (password(&recipient)) return opener.password != nullptr;
  if (!opener.cert || !opener.key) return false;
  if (const KEY_TRANS_RECIPIENT_INFO *info = key_trans(&recipient)) return names(info->rid, *opener.cert);
  const KEY_AGREE_RECIPIENT_INFO *info = key_agree(&recipient);
  out.encrypted_key = info ? find_agreed(*info, *opener.cert) : nullptr;
  return out.encrypted_key != nullptr;
}

// The key of an originator that is named by a certificate, which the opener or the message brings.
const ECC_UNIT *originator_key(const CMS_CONTENT_INFO &cms, const KEY_AGREE_RECIPIENT_INFO &info,
                               const CMS_OPENER &opener) noexcept {
  const ORIGINATOR_IDENTIFIER_ORKEY *originator = info.originator;
  if (!originator || originator->type == CMS_ORIGINATOR_KEY) return nullptr;
  const SIGNER_IDENTIFIER name{
      originator->type == CMS_ORIGINATOR_SUBJECT_KEY ? CMS_ID_SUBJECT_KEY : CMS_ID_ISSUER_AND_SERIAL,
      originator->issuerAndSerialNumber, originator->subjectKeyIdentifier};
  const CMS_ORIGINATOR_INFO *brought = *originator_info(&cms);
  const X509_CERT *found = opener.originator && names(&name, *opener.originator) ? opener.originator : nullptr;
  for (const X509_CERT *each : elements<X509_CERT>(brought && !found ? brought->certificates : nullptr))
    if (each && names(&name, *each)) found = each;
  const X509_PUBKEY *spki = get_X509_SPKI(found);
  return spki ? ASYMMETRIC_KEY_to_ECC_UNIT(spki->key) : nullptr;
}

int open_transported(const KEY_TRANS_RECIPIENT_INFO &info, const CMS_OPENER &opener, int function,
                     SecretOctets &out) noexcept {
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(opener.key);
  const int padding = padding_of(info.keyEncryptionAlgorithm);
  if (!rsa || !padding) return fail(function, kUnsupported);
  if (!info.encryptedKey) return fail(function, kNullArgument);
  return unwrap_key(*rsa, *info.keyEncryptionAlgorithm, padding, octets(*info.encryptedKey), out.size(), out.data());
}

int open_agreed(const CMS_CONTENT_INFO &cms, const KEY_AGREE_RECIPIENT_INFO &info,
                const RECIPIENT_ENCRYPTED_KEY &encrypted, const CMS_OPENER &opener, int function,
                SecretOctets &out) noexcept {
  const ECC_UNIT *key = ASYMMETRIC_KEY_to_ECC_UNIT(opener.key);
  const ECC_UNIT *originator = originator_key(cms, info, opener);
  if (!key) return fail(function, kUnsupported);
  if (!originator && info.originator && info.originator->type != CMS_ORIGINATOR_KEY) {
    return fail(function, ERR_NO_SIGNER_CERTIFICATE);
  }
  return unwrap_with_agreement(info, encrypted, *key, originator, function, out);
}

int open_exactly(const CMS_CONTENT_INFO &cms, const OpenableRecipient &from, const CMS_OPENER &opener, int function,
                 int &iterations_left, SecretOctets &out) noexcept {
  if (const KEY_TRANS_RECIPIENT_INFO *info = key_trans(from.recipient)) {
    return open_transported(*info, opener, function, out);
  }
  if (const KEY_AGREE_RECIPIENT_INFO *info = key_agree(from.recipient)) {
    return open_agreed(cms, *info, *from.encrypted_key, opener, function, out);
  }
  if (const KEK_RECIPIENT_INFO *info = kek(from.recipient)) {
    return unwrap_with_key(*info, octets_of(opener.kek, opener.kek_length), function, out);
  }
  return unwrap_with_password(*password(from.recipient), octets_of(opener.password, opener.password_length), function,
                              iterations_left, out);
}

// The next recipient that the opener fits.
bool find_next(const CMS_RECIPIENT_INFOS *recipients, const CMS_OPENER &opener, OpenableRecipient &at) noexcept {
  while (++at.index < get_STACK_count(recipients)) {
    const auto *each = element<CMS_RECIPIENT_INFO>(recipients, at.index);
    if (each && each->info && can_open(*each, opener, at)) return true;
  }
  return false;
}

// With `decoy` nobody learns whether the key of an RSA recipient was one.
int open_one(const CMS_CONTENT_INFO &cms, const OpenableRecipient &from, const CMS_OPENER &opener, bool decoy,
             int function, int &iterations_left, SecretOctets &out) noexcept {
  const KEY_TRANS_RECIPIENT_INFO *info = decoy ? key_trans(from.recipient) : nullptr;
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(opener.key);
  const int padding = info ? padding_of(info->keyEncryptionAlgorithm) : 0;
  if (info && rsa && padding && info->encryptedKey) {
    return recover_key(*rsa, *info->keyEncryptionAlgorithm, padding, octets(*info->encryptedKey), out);
  }
  return open_exactly(cms, from, opener, function, iterations_left, out);
}

// Whether only the check octets of a wrapped key tell for whom it is: a password has no name, and a key-encryption key
// may be given without. RSA keys have no such octets, and their recipients are named.
bool may_be_for_another(const OpenableRecipient &from) noexcept {
  return kek(from.recipient) || password(from.recipient);
}

bool is_refusal(int code, int function) noexcept {
  return code == PKV_ERR_FAILED || code == fail(function, kUnsupported) || code == fail(function, kBadValue);
}

}  // namespace

int find_openable(const CMS_RECIPIENT_INFOS *recipients, const CMS_OPENER &opener, int function,
                  OpenableRecipient &out) noexcept {
  if (opener.kek_length < 0 || opener.kek_id_length < 0 || opener.password_length < 0) return fail(function, kBadValue);
  out.index = -1;
  return find_next(recipients, opener, out) ? 0 : fail(function, kBadValue);
}

int open_key(const CMS_CONTENT_INFO &cms, const OpenableRecipient &from, const CMS_OPENER &opener, bool decoy,
             int function, SecretOctets &out) noexcept {
  const SecretOctets random(size_t(out.size()));
  if (!out || !random) return fail(function, kNoMemory);
  if (const int code = decoy ? PKV_Rand_Bytes(random.data(), random.size()) : 0) return code;
  int failed = 0, iterations_left = kMostIterations;
  for (OpenableRecipient at = from;;) {
    const int code = open_one(cms, at, opener, decoy, function, iterations_left, out);
    if (!code || !is_refusal(code, function)) return code;
    if (!failed || code == PKV_ERR_FAILED) failed = code;
    if (!may_be_for_another(at) || !find_next(*recipient_list(&cms), opener, at)) break;
  }
  if (!decoy || failed != PKV_ERR_FAILED) return failed;
  copy_octets(out.data(), octets_of(random.data(), random.size()));
  return 0;
}

}  // namespace velpki

using namespace velpki;

int decrypt_content_encryption_key_ex(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener, unsigned char *out,
                                      int *out_length) noexcept {
  constexpr int kFunction = F_DECRYPT_CONTENT_ENCRYPTION_KEY;
  if (!opener || !out || !out_length) return fail(kFunction, kNullArgument);
  if (const int code = check_type(cms, CMS_TYPE_ENVELOPED_DATA, kFunction)) return code;
  EncryptedView encrypted;
  OpenableRecipient recipient;
  if (!view_encrypted(*encrypted_content(cms), encrypted)) return fail(kFunction, kUnsupported);
  if (*out_length < encrypted.key_length) return fail(kFunction, kBadValue);
  if (const int code = find_openable(*recipient_list(cms), *opener, kFunction, recipient)) return code;
  SecretOctets key(size_t(encrypted.key_length));
  if (const int code = open_key(*cms, recipient, *opener, false, kFunction, key)) return code;
  copy_octets(out, octets_of(key.data(), key.size()));
  *out_length = key.size();
  return 0;
}

int decrypt_CMS_strict(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener, unsigned char *out,
                       int *out_length) noexcept {
  if (!opener || !out || !out_length) return fail(F_DECRYPT_CMS, kNullArgument);
  if (const int code = check_type(cms, CMS_TYPE_ENVELOPED_DATA, F_DECRYPT_CMS)) return code;
  EncryptedView encrypted;
  OpenableRecipient recipient;
  Octets iv;
  if (!view_encrypted(*encrypted_content(cms), encrypted)) return fail(F_DECRYPT_CMS, kUnsupported);
  if (!encrypted.content) return fail(F_DECRYPT_CMS, kNullArgument);
  if (*out_length < encrypted.content->length) return fail(F_DECRYPT_CMS, kBadValue);
  if (!content_iv(*encrypted.algorithm, encrypted.cipher_id, true, iv)) return fail(F_DECRYPT_CMS, kBadValue);
  if (const int code = find_openable(*recipient_list(cms), *opener, F_DECRYPT_CMS, recipient)) return code;
  SecretOctets key(size_t(encrypted.key_length));
  if (const int code = open_key(*cms, recipient, *opener, true, F_DECRYPT_CMS, key)) return code;
  return decrypt_content(encrypted.cipher_id, octets_of(key.data(), key.size()), iv, octets(*encrypted.content), out,
                         out_length);
}
