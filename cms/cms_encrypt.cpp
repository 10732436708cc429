// Enveloping and encrypting: init, update, final.
#include "cms/internal/cms.h"
#include "cms/internal/encrypted_content.h"
#include "cms/internal/key_encryption.h"
#include "cms/internal/key_transport.h"

namespace velpki {

namespace {

// The message holds enveloped or encrypted data.
int check_encrypted(const CMS_CONTENT_INFO *cms, int function) noexcept {
  if (!cms) return fail(function, kNullArgument);
  const int row = content_row(cms);
  if (row != CMS_TYPE_ENVELOPED_DATA && row != CMS_TYPE_ENCRYPTED_DATA) return fail(function, kUnsupported);
  return check_type(cms, row, function);
}

void set_detached(const CMS_CONTENT_INFO &cms, int detached) noexcept {
  if (CMS_ENVELOPED_DATA *data = enveloped_data(&cms)) data->detached = detached;
  if (CMS_ENCRYPTED_DATA *data = encrypted_data(&cms)) data->detached = detached;
}
bool is_detached(const CMS_CONTENT_INFO &cms) noexcept {
  if (const CMS_ENVELOPED_DATA *data = enveloped_data(&cms)) return data->detached;
  return encrypted_data(&cms)->detached;
}

EncryptionParts parts_of(const CMS_CONTENT_INFO &cms, CMS_ENCRYPTED_CONTENT_INFO &info) noexcept {
  return {info.encryptedContent, info.cipher, info.progress, is_detached(cms)};
}

int wrap_for_transport(KEY_TRANS_RECIPIENT_INFO &info, Octets key, int padding, int function) noexcept {
  if (!info.keyEncryptionAlgorithm || !info.publicKey) return fail(function, kNullArgument);
  owned<ASN1_STRING> encrypted;
  if (const int code = wrap_key(info.publicKey, *info.keyEncryptionAlgorithm, padding, key, function, encrypted)) {
    return code;
  }
  put(info.encryptedKey, std::move(encrypted));
  return 0;
}

// Kinds that are kept as units bring their key.
int wrap_for(CMS_RECIPIENT_INFO &recipient, Octets key, int padding, int function) noexcept {
  if (!recipient.info) return fail(function, kNullArgument);
  if (KEY_TRANS_RECIPIENT_INFO *info = key_trans(&recipient)) return wrap_for_transport(*info, key, padding, function);
  if (KEY_AGREE_RECIPIENT_INFO *info = key_agree(&recipient)) return wrap_for_agreement(*info, key, function);
  if (KEK_RECIPIENT_INFO *info = kek(&recipient)) return wrap_for_key(*info, key, function);
  if (PASSWORD_RECIPIENT_INFO *info = password(&recipient)) return wrap_for_password(*info, key, function);
  return fail(function, kUnsupported);
}

}  // namespace

int wrap_for_all(const CMS_RECIPIENT_INFOS *recipients, Octets key, int padding, int function) noexcept {
  if (!has_elements(recipients)) return fail(function, kNullArgument);
  for (CMS_RECIPIENT_INFO *each : elements<CMS_RECIPIENT_INFO>(recipients)) {
    if (!each) return fail(function, kNullArgument);
    if (const int code = wrap_for(*each, key, padding, function)) return code;
  }
  return 0;
}

}  // namespace velpki

using namespace velpki;

int encrypt_CMS_RecipientInfo(CMS_RECIPIENT_INFO *ri, const unsigned char *cek, int cek_length, int padding) noexcept {
  constexpr int kFunction = F_ENCRYPT_CMS_RECIPIENTINFO;
  if (!ri || !cek || cek_length < 1 || !(padding = encryption_padding(padding))) return fail(kFunction, kNullArgument);
  return wrap_for(*ri, octets_of(cek, cek_length), padding, kFunction);
}

int init_CMS_Encrypt_RecipientInfo(CMS_CONTENT_INFO *cms, const unsigned char *cek, int padding) noexcept {
  constexpr int kFunction = F_INIT_CMS_ENCRYPT_RECIPIENTINFO;
  if (const int code = check_type(cms, CMS_TYPE_ENVELOPED_DATA, kFunction)) return code;
  if (!cek || !(padding = encryption_padding(padding))) return fail(kFunction, kNullArgument);
  const CMS_ENCRYPTED_CONTENT_INFO *info = *encrypted_content(cms);
  const int cipher_id = info ? content_cipher_id(info->contentEncryptionAlgorithm) : 0;
  if (!cipher_id) return fail(kFunction, kUnsupported);
  const Octets key = octets_of(cek, PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id));
  return wrap_for_all(*recipient_list(cms), key, padding, F_ENCRYPT_CMS_RECIPIENTINFO);
}

int init_CMS_Encrypt(CMS_CONTENT_INFO *cms, void *, X509_ALGO_IDENTIFIER *algorithm, int detached,
                     const unsigned char *key, const unsigned char *iv, int padding) noexcept {
  constexpr int kFunction = F_INIT_CMS_ENCRYPT;
  if (!cms || !(padding = encryption_padding(padding))) return fail(kFunction, kNullArgument);
  if (const int code = check_encrypted(cms, kFunction)) return code;
  CMS_RECIPIENT_INFOS **recipients = recipient_list(cms);
  if (recipients && !has_elements(*recipients)) return fail(kFunction, kNullArgument);
  set_detached(*cms, detached);
  CMS_ENCRYPTED_CONTENT_INFO *&place = *encrypted_content(cms);
  const ContentArguments content{algorithm, key, iv, cms->kind == CMS_TYPE_ENCRYPTED_DATA};
  if (const int code = replace_encrypted_content(place, content, kFunction)) return code;
  if (!recipients) return 0;
  int length = 0;
  const uint8_t *cek = PKV_Get_BLOCK_CIPHER_Key(place->cipher, &length);
  return wrap_for_all(*recipients, octets_of(cek, length), padding, F_ENCRYPT_CMS_RECIPIENTINFO);
}

int update_CMS_encrypt(CMS_CONTENT_INFO *cms, const unsigned char *in, int in_length, unsigned char *out,
                       int *out_length) noexcept {
  if (const int code = check_encrypted(cms, F_UPDATE_CMS_ENCRYPT)) return code;
  CMS_ENCRYPTED_CONTENT_INFO *info = *encrypted_content(cms);
  if (!info || in_length < 0 || (!in && in_length > 0)) return fail(F_UPDATE_CMS_ENCRYPT, kNullArgument);
  return update_content(parts_of(*cms, *info), octets_of(in, in_length), out, out_length, F_UPDATE_CMS_ENCRYPT);
}

int final_CMS_Encrypt(CMS_CONTENT_INFO *cms, unsigned char *out, int *out_length) noexcept {
  if (const int code = check_encrypted(cms, F_FINAL_CMS_ENCRYPT)) return code;
  CMS_ENCRYPTED_CONTENT_INFO *info = *encrypted_content(cms);
  if (!info) return fail(F_FINAL_CMS_ENCRYPT, kNullArgument);
  return finish_content(parts_of(*cms, *info), out, out_length, F_FINAL_CMS_ENCRYPT);
}

int encrypt_CMS_userKEY(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                        const unsigned char *data, int length, const unsigned char *key, const unsigned char *iv,
                        int padding) noexcept {
  if (const int code = init_CMS_Encrypt(cms, reserved, algorithm, 0, key, iv, padding)) return code;
  if (const int code = update_CMS_encrypt(cms, data, length, nullptr, nullptr)) return code;
  return final_CMS_Encrypt(cms, nullptr, nullptr);
}

int encrypt_CMS(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm, const unsigned char *data,
                int length, int padding) noexcept {
  if (const int code = check_encrypted(cms, F_ENCRYPT_CMS)) return code;
  ContentKey fresh(content_cipher_id(content_algorithm(*encrypted_content(cms), algorithm)));
  if (const int code = fresh.fill(F_ENCRYPT_CMS)) return code;
  return encrypt_CMS_userKEY(cms, reserved, algorithm, data, length, fresh.key.data(), fresh.iv.data(), padding);
}
