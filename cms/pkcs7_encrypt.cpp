// Enveloping and encrypting: init, update, final.
#include "cms/internal/encrypted_content.h"
#include "cms/internal/key_transport.h"
#include "cms/internal/pkcs7.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_P7_ENCRYPT, reason); }

bool has_encrypted_content(int row) noexcept {
  return row == PKCS7_ENVELOPED_DATA || row == PKCS7_SIGNED_AND_ENVELOPED_DATA || row == PKCS7_ENCRYPTED_DATA;
}

int check_message(const P7_CONTENT_INFO *p7) noexcept {
  if (!p7) return failure(kNullArgument);
  const int row = content_row(p7);
  if (!has_encrypted_content(row)) return failure(kUnsupported);
  return p7->content && p7->kind == row ? 0 : failure(kNullArgument);
}

void set_detached(const P7_CONTENT_INFO &p7, int detached) noexcept {
  if (P7_ENVELOPED_DATA *data = enveloped_data(&p7)) data->detached = detached;
  if (P7_ENCRYPTED_DATA *data = encrypted_data(&p7)) data->detached = detached;
}
bool is_detached(const P7_CONTENT_INFO &p7) noexcept {
  if (const P7_ENVELOPED_DATA *data = enveloped_data(&p7)) return data->detached;
  const P7_ENCRYPTED_DATA *data = encrypted_data(&p7);
  return data && data->detached;
}

EncryptionParts parts_of(const P7_CONTENT_INFO &p7, P7_ENCRYPTED_CONTENT_INFO &info) noexcept {
  return {info.encryptedContent, info.cipher, info.progress, is_detached(p7)};
}

int encrypt_keys(const P7_RECIPIENT_INFOS &recipients, const BLOCK_CIPHER_UNIT &cipher, int padding) noexcept {
  int length = 0;
  const uint8_t *key = PKV_Get_BLOCK_CIPHER_Key(&cipher, &length);
  for (P7_RECIPIENT_INFO *each : elements<P7_RECIPIENT_INFO>(&recipients)) {
    if (!each || !each->keyEncryptionAlgorithm) return failure(kNullArgument);
    owned<ASN1_STRING> encrypted;
    const int code = wrap_key(each->publicKey, *each->keyEncryptionAlgorithm, padding, octets_of(key, length),
                              F_P7_ENCRYPT, encrypted);
    if (code) return code;
    put(each->encryptedKey, std::move(encrypted));
  }
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int init_PKCS7_Encrypt(P7_CONTENT_INFO *p7, void *, X509_ALGO_IDENTIFIER *algorithm, int detached,
                       const unsigned char *key, const unsigned char *iv, int padding) noexcept {
  if (!p7 || !(padding = encryption_padding(padding))) return failure(kNullArgument);
  if (const int code = check_message(p7)) return code;
  P7_RECIPIENT_INFOS **recipients = recipient_list(p7);
  if (recipients && (!*recipients || (*recipients)->count == 0)) return failure(kNullArgument);
  set_detached(*p7, detached);
  const ContentArguments content{algorithm, key, iv, p7->kind == PKCS7_ENCRYPTED_DATA};
  if (const int code = replace_encrypted_content(*encrypted_content(p7), content, F_P7_ENCRYPT)) return code;
  return recipients ? encrypt_keys(**recipients, *(*encrypted_content(p7))->cipher, padding) : 0;
}

int update_PKCS7_encrypt(P7_CONTENT_INFO *p7, const unsigned char *in, int in_length, unsigned char *out,
                         int *out_length) noexcept {
  if (const int code = check_message(p7)) return code;
  P7_ENCRYPTED_CONTENT_INFO *info = *encrypted_content(p7);
  if (!info || in_length < 0 || (!in && in_length > 0)) return failure(kNullArgument);
  return update_content(parts_of(*p7, *info), octets_of(in, in_length), out, out_length, F_P7_ENCRYPT);
}

int final_PKCS7_Encrypt(P7_CONTENT_INFO *p7, unsigned char *out, int *out_length) noexcept {
  if (const int code = check_message(p7)) return code;
  P7_ENCRYPTED_CONTENT_INFO *info = *encrypted_content(p7);
  if (!info) return failure(kNullArgument);
  return finish_content(parts_of(*p7, *info), out, out_length, F_P7_ENCRYPT);
}

int encrypt_PKCS7_userKEY(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                          const unsigned char *data, int length, const unsigned char *key, const unsigned char *iv,
                          int padding) noexcept {
  if (const int code = init_PKCS7_Encrypt(p7, reserved, algorithm, 0, key, iv, padding)) return code;
  if (const int code = update_PKCS7_encrypt(p7, data, length, nullptr, nullptr)) return code;
  return final_PKCS7_Encrypt(p7, nullptr, nullptr);
}

int encrypt_PKCS7(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm, const unsigned char *data,
                  int length, int padding) noexcept {
  if (const int code = check_message(p7)) return code;
  ContentKey fresh(content_cipher_id(content_algorithm(*encrypted_content(p7), algorithm)));
  if (const int code = fresh.fill(F_P7_ENCRYPT)) return code;
  return encrypt_PKCS7_userKEY(p7, reserved, algorithm, data, length, fresh.key.data(), fresh.iv.data(), padding);
}

int set_PKCS7_P7_ENCRYPTED_CONTENT_INFO(P7_ENCRYPTED_CONTENT_INFO *eci, int type_index, X509_ALGO_IDENTIFIER *algorithm,
                                        const unsigned char *content, int length) noexcept {
  if (!eci || !algorithm || length < 0 || (!content && length > 0)) return 1;
  owned<OBJECT_IDENTIFIER> type = oid_of_row(type_index);
  owned<X509_ALGO_IDENTIFIER> copy(type ? dup_X509_ALGO_IDENTIFIER(algorithm) : nullptr);
  owned<ASN1_STRING> octets(copy && content ? new_string(TYPE_OCTET_STRING, octets_of(content, length)) : nullptr);
  if (!copy || (content && !octets)) return 1;
  put(eci->contentType, std::move(type));
  put(eci->contentEncryptionAlgorithm, std::move(copy));
  if (content) put(eci->encryptedContent, std::move(octets));
  if (eci->progress) release(std::exchange(eci->progress, nullptr));
  return 0;
}

int set_PKCS7_Cipher(P7_CONTENT_INFO *p7, X509_ALGO_IDENTIFIER *algorithm) noexcept {
  P7_ENCRYPTED_CONTENT_INFO **place = encrypted_content(p7);
  if (!place) return 1;
  owned<P7_ENCRYPTED_CONTENT_INFO> fresh(*place ? nullptr : new_P7_ENCRYPTED_CONTENT_INFO());
  P7_ENCRYPTED_CONTENT_INFO *info = *place ? *place : fresh.get();
  if (set_PKCS7_P7_ENCRYPTED_CONTENT_INFO(info, PKCS7_DATA, algorithm, nullptr, 0)) return 1;
  if (fresh) *place = fresh.release();
  return 0;
}

int get_PKCS7_ENCRYPTED_CONTENT_length(const P7_CONTENT_INFO *p7) noexcept {
  P7_ENCRYPTED_CONTENT_INFO **place = encrypted_content(p7);
  if (!place) return p7 && has_encrypted_content(content_row(p7)) ? 0 : -1;
  return *place && (*place)->encryptedContent ? (*place)->encryptedContent->length : 0;
}
