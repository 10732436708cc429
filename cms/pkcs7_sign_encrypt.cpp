// Signed-and-enveloped messages, made and opened.
#include "cms/internal/key_transport.h"
#include "cms/internal/pkcs7_decrypt.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_P7_ENCRYPT, reason); }

constexpr size_t kSpRoom = 160;         // octets for an encrypted digest that is encrypted itself
constexpr int kSpPadding = 0x4B00002B;  // the code of a padding that is none: the module's, without a function

// What the four variants have in common.
struct Sealing {
  void *reserved;
  X509_ALGO_IDENTIFIER *algorithm;
  Octets data;
  const uint8_t *key, *iv;
  int padding;
};

int check_message(const P7_CONTENT_INFO *p7) noexcept {
  if (!p7) return failure(kNullArgument);
  if (content_row(p7) != PKCS7_SIGNED_AND_ENVELOPED_DATA) return failure(kUnsupported);
  return signed_and_enveloped_data(p7) ? 0 : failure(kNullArgument);
}

const X509_ALGO_IDENTIFIER *algorithm_of(const P7_CONTENT_INFO &p7, const X509_ALGO_IDENTIFIER *asked) noexcept {
  const P7_ENCRYPTED_CONTENT_INFO *info = *encrypted_content(&p7);
  return asked || !info ? asked : info->contentEncryptionAlgorithm;
}

int sign_and_encrypt(P7_CONTENT_INFO *p7, const Sealing &sealing) noexcept {
  if (const int code = check_message(p7)) return code;
  if (!sealing.data.data() && !sealing.data.empty()) return failure(kNullArgument);
  if (const int code = sign_PKCS7(p7, sealing.data.data(), int(sealing.data.size()), 1)) return code;
  return encrypt_PKCS7_userKEY(p7, sealing.reserved, sealing.algorithm, sealing.data.data(), int(sealing.data.size()),
                               sealing.key, sealing.iv, sealing.padding);
}

// Encrypts one digest in a fresh unit; what does not fit into the room is refused.
int encrypt_digest(int cipher_id, const Sealing &sealing, size_t room, const ASN1_STRING &digest,
                   owned<ASN1_STRING> &out) noexcept {
  owned<BLOCK_CIPHER_UNIT> unit;
  if (const int code = start_content_cipher(cipher_id, sealing.key, sealing.iv, F_P7_ENCRYPT, unit)) return code;
  const owned<uint8_t> buffer = new_octets(room);
  if (!buffer) return failure(kNoMemory);
  int first = int(room), last = 0;
  if (const int code = PKV_Update_BLOCK_CIPHER(unit.get(), digest.data, digest.length, buffer.get(), &first)) {
    return code == PKV_ERR_BAD_VALUE ? failure(kBadValue) : code;
  }
  last = int(room) - first;
  if (const int code = PKV_Final_BLOCK_CIPHER(unit.get(), buffer.get() + first, &last)) {
    return code == PKV_ERR_BAD_VALUE ? failure(kBadValue) : code;
  }
  out.reset(new_string(TYPE_OCTET_STRING, octets_of(buffer.get(), first + last)));
  return out ? 0 : failure(kNoMemory);
}

// Whether every digest fits is known before one is replaced.
bool all_fit(const P7_SIGNER_INFOS &signers, int cipher_id, size_t room) noexcept {
  const size_t block = size_t(PKV_Get_BLOCK_CIPHER_Block_Length(cipher_id));
  for (const P7_SIGNER_INFO *signer : elements<P7_SIGNER_INFO>(&signers))
    if (!signer || !signer->encryptedDigest || size_t(signer->encryptedDigest->length) + block > room) return false;
  return true;
}

// With no room given each digest has what it needs.
int encrypt_digests(const P7_CONTENT_INFO &p7, const Sealing &sealing, size_t room) noexcept {
  const P7_SIGNER_INFOS *signers = signer_infos(&p7);
  const int cipher_id = content_cipher_id(algorithm_of(p7, sealing.algorithm));
  if (room && !all_fit(*signers, cipher_id, room)) return failure(kBadValue);
  for (P7_SIGNER_INFO *signer : elements<P7_SIGNER_INFO>(signers)) {
    if (!signer || !signer->encryptedDigest) return failure(kNullArgument);
    owned<ASN1_STRING> encrypted;
    const ASN1_STRING &digest = *signer->encryptedDigest;
    const size_t needed = size_t(digest.length) + 2 * size_t(PKV_Get_BLOCK_CIPHER_Block_Length(cipher_id));
    if (const int code = encrypt_digest(cipher_id, sealing, room ? room : needed, digest, encrypted)) return code;
    if (!set_algorithm(signer->digestEncryptionAlgorithm, row::kRsaEncryption)) return failure(kNoMemory);
    put(signer->encryptedDigest, std::move(encrypted));
  }
  return 0;
}

int sign_and_encrypt_sp(P7_CONTENT_INFO *p7, const Sealing &sealing, size_t room) noexcept {
  if (const int code = sign_and_encrypt(p7, sealing)) return code;
  return encrypt_digests(*p7, sealing, room);
}

// Runs a variant with a random key and IV.
template <class Variant>
int with_fresh_key(P7_CONTENT_INFO *p7, Sealing sealing, Variant variant) noexcept {
  if (const int code = check_message(p7)) return code;
  ContentKey fresh(content_cipher_id(algorithm_of(*p7, sealing.algorithm)));
  if (const int code = fresh.fill(F_P7_ENCRYPT)) return code;
  sealing.key = fresh.key.data();
  sealing.iv = fresh.iv.data();
  return variant(sealing);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int sign_encrypt_PKCS7_userKEY(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                               const unsigned char *data, int length, const unsigned char *key, const unsigned char *iv,
                               int padding) noexcept {
  if (length < 0 || (!data && length > 0)) return failure(kNullArgument);
  return sign_and_encrypt(p7, {reserved, algorithm, octets_of(data, length), key, iv, padding});
}

int sign_encrypt_PKCS7(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm, const unsigned char *data,
                       int length, int padding) noexcept {
  if (length < 0 || (!data && length > 0)) return failure(kNullArgument);
  const Sealing sealing{reserved, algorithm, octets_of(data, length), nullptr, nullptr, padding};
  return with_fresh_key(p7, sealing, [p7](const Sealing &whole) noexcept { return sign_and_encrypt(p7, whole); });
}

namespace velpki {

namespace {

int seal_sp(P7_CONTENT_INFO *p7, const Sealing &sealing, size_t room) noexcept {
  if (sealing.key) return sign_and_encrypt_sp(p7, sealing, room);
  return with_fresh_key(p7, sealing,
                        [=](const Sealing &whole) noexcept { return sign_and_encrypt_sp(p7, whole, room); });
}

}  // namespace

}  // namespace velpki

int sign_encrypt_PKCS7_SP(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                          const unsigned char *data, int length, int padding) noexcept {
  if (!encryption_padding(padding)) return kSpPadding;
  if (length < 0 || (!data && length > 0)) return failure(kNullArgument);
  return seal_sp(p7, {reserved, algorithm, octets_of(data, length), nullptr, nullptr, padding}, kSpRoom);
}

int sign_encrypt_PKCS7_userKEY_SP(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                  const unsigned char *data, int length, const unsigned char *key,
                                  const unsigned char *iv, int padding) noexcept {
  if (!encryption_padding(padding)) return kSpPadding;
  if (length < 0 || !key || (!data && length > 0)) return failure(kNullArgument);
  return seal_sp(p7, {reserved, algorithm, octets_of(data, length), key, iv, padding}, kSpRoom);
}

int sign_encrypt_PKCS7_userKEY_SP_ex(P7_CONTENT_INFO *p7, const X509_ALGO_IDENTIFIER *algorithm,
                                     const unsigned char *data, int length, const unsigned char *key,
                                     const unsigned char *iv, int padding) noexcept {
  if (!encryption_padding(padding)) return kSpPadding;
  if (length < 0 || (!data && length > 0)) return failure(kNullArgument);
  owned<X509_ALGO_IDENTIFIER> copy(dup_X509_ALGO_IDENTIFIER(algorithm));
  if (algorithm && !copy) return failure(kNoMemory);
  return seal_sp(p7, {nullptr, copy.get(), octets_of(data, length), key, iv, padding}, 0);
}

int verify_decrypt_PKCS7(P7_CONTENT_INFO *p7, X509_CERT *cert, const unsigned char *key, unsigned char *out,
                         int *out_length) noexcept {
  EncryptedView encrypted;
  if (!signed_and_enveloped_data(p7) || !key || !out || !out_length) return 1;
  if (!find_encrypted(p7, encrypted) || !encrypted.content) return 1;
  const SecretOctets plain(size_t(encrypted.content->length) + 1);
  if (!plain) return PKV_ERR_NO_MEMORY;
  int length = 0;
  if (const int code = decrypt_view(encrypted, key, nullptr, plain.data(), &length)) return code;
  if (const int code = verify_PKCS7(p7, cert, plain.data(), length)) return code;
  copy_octets(out, octets_of(plain.data(), length));
  *out_length = length;
  return 0;
}
