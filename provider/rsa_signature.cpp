// RSASSA-PKCS1-v1_5 and RSASSA-PSS (RFC 8017 section 8).
#include <algorithm>

#include "provider/internal/arguments.h"
#include "provider/internal/rsa.h"

using namespace velcrypto;

namespace {

using Octets = std::span<const uint8_t>;
// The whole encoding of the largest key; what is in it tells nothing that the signature does not.
using EncodingBlock = std::array<uint8_t, kMaxRsaOctets>;

int check_scheme(const RsaSignatureScheme &scheme) noexcept {
  if (!is_digest(scheme.digest_id)) return PKV_ERR_UNSUPPORTED;
  if (scheme.scheme == PKV_RSA_PKCS1) return 0;
  if (scheme.scheme != PKV_RSA_PSS || !is_digest(scheme.mgf_digest_id)) return PKV_ERR_UNSUPPORTED;
  return scheme.salt_length < 0 || scheme.salt_length > int(kMaxRsaOctets) ? PKV_ERR_BAD_VALUE : 0;
}

RsaSignatureScheme usual_scheme(int digest_id, int scheme) noexcept {
  return {digest_id, scheme, digest_id, PKV_Get_DIGEST_Length(digest_id)};
}

int modulus_bits(const RSA_UNIT &key) noexcept { return PKV_Get_BIGINT_Bit_Length(key.part->number(PKV_RSA_N)); }

int encode(const RSA_UNIT &key, const RsaSignatureScheme &scheme, Octets digest, std::span<uint8_t> em) noexcept {
  return scheme.scheme == PKV_RSA_PSS ? emsa_pss_encode(scheme, digest, modulus_bits(key), em)
                                      : emsa_pkcs1_encode(scheme.digest_id, digest, em);
}

// A fault during the private operation can give the key away, so the signature must lead back to what was signed.
int sign_encoded(const RSA_UNIT &key, Octets em, uint8_t *signature) noexcept {
  EncodingBlock made, back;
  if (int error = rsa_private_operation(key, em.data(), made.data())) return error;
  if (int error = rsa_public_operation(key, made.data(), back.data())) return error;
  if (!std::equal(em.begin(), em.end(), back.begin())) return PKV_ERR_FAILED;
  std::copy_n(made.begin(), em.size(), signature);
  return 0;
}

// A callback is told the digest and the scheme, so of PSS only the usual parameters can be asked of it.
bool callback_can(const RsaSignatureScheme &scheme) noexcept {
  const RsaSignatureScheme usual = usual_scheme(scheme.digest_id, scheme.scheme);
  return scheme.scheme != PKV_RSA_PSS ||
         (scheme.mgf_digest_id == usual.mgf_digest_id && scheme.salt_length == usual.salt_length);
}

int sign_elsewhere(const RSA_UNIT &key, const RsaSignatureScheme &scheme, Octets digest, size_t length,
                   uint8_t *signature) noexcept {
  if (!callback_can(scheme)) return PKV_ERR_UNSUPPORTED;
  EncodingBlock made;
  int written = int(length);
  if (int error = key.signer.sign(key.signer.context, PKV_KEY_RSA, scheme.digest_id, scheme.scheme, digest.data(),
                                  int(digest.size()), made.data(), &written)) {
    return error;
  }
  if (written != int(length)) return PKV_ERR_FAILED;
  std::copy_n(made.begin(), length, signature);
  return 0;
}

int sign_digest(const RSA_UNIT &key, const RsaSignatureScheme &scheme, Octets digest, uint8_t *signature) noexcept {
  const size_t length = rsa_usable_length(&key);
  if (key.signer.sign) return sign_elsewhere(key, scheme, digest, length, signature);
  EncodingBlock block;
  const std::span<uint8_t> em(block.data(), length);
  if (int error = encode(key, scheme, digest, em)) return error;
  return sign_encoded(key, em, signature);
}

// PKCS#1 v1.5 by making the one valid encoding and comparing all of it (8.2.2): there is nothing to parse, so no
// lenient parser to forge against.
int verify_digest(const RSA_UNIT &key, const RsaSignatureScheme &scheme, Octets digest, Octets signature) noexcept {
  const size_t length = rsa_usable_length(&key);
  if (!length) return PKV_ERR_BAD_VALUE;
  if (signature.size() != length) return PKV_ERR_MISMATCH;
  EncodingBlock block, expected;
  const std::span<uint8_t> em(block.data(), length);
  if (int error = rsa_public_operation(key, signature.data(), em.data())) {
    return error == PKV_ERR_BAD_VALUE ? PKV_ERR_MISMATCH : error;
  }
  if (scheme.scheme == PKV_RSA_PSS) return emsa_pss_verify(scheme, digest, modulus_bits(key), em);
  if (int error = emsa_pkcs1_encode(scheme.digest_id, digest, {expected.data(), length})) return error;
  return std::equal(em.begin(), em.end(), expected.begin()) ? 0 : PKV_ERR_MISMATCH;
}

// Before anything is hashed: the key can sign, and the caller's buffer holds the signature.
int check_signing(const RSA_UNIT &key, const unsigned char *signature, const int *capacity) noexcept {
  const size_t length = rsa_usable_length(&key);
  if (!length || !PKV_Is_RSA_Private(&key)) return PKV_ERR_BAD_VALUE;
  return check_capacity(signature, capacity, length);
}

int sign_message(const RSA_UNIT *key, const RsaSignatureScheme &scheme, const unsigned char *data, int length,
                 unsigned char *signature, int *signature_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(data, length)) return error;
  if (int error = check_scheme(scheme)) return error;
  if (int error = check_signing(*key, signature, signature_length)) return error;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int digest_length = 0;
  if (int error = PKV_DIGEST(scheme.digest_id, data, length, digest, &digest_length)) return error;
  if (int error = sign_digest(*key, scheme, {digest, size_t(digest_length)}, signature)) return error;
  *signature_length = PKV_Get_RSA_Length(key);
  return 0;
}

int verify_message(const RSA_UNIT *key, const RsaSignatureScheme &scheme, const unsigned char *data, int length,
                   const unsigned char *signature, int signature_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(data, length)) return error;
  if (int error = check_octets(signature, signature_length)) return error;
  if (int error = check_scheme(scheme)) return error;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int digest_length = 0;
  if (int error = PKV_DIGEST(scheme.digest_id, data, length, digest, &digest_length)) return error;
  return verify_digest(*key, scheme, {digest, size_t(digest_length)}, {signature, size_t(signature_length)});
}

int start(RSA_UNIT &key, const RsaSignatureScheme &scheme, bool sign) noexcept {
  if (int error = check_scheme(scheme)) return error;
  if (!rsa_usable_length(&key) || (sign && !PKV_Is_RSA_Private(&key))) return PKV_ERR_BAD_VALUE;
  DigestOwner digest(PKV_New_DIGEST());
  if (!digest) return PKV_ERR_NO_MEMORY;
  if (int error = PKV_Init_DIGEST(digest.get(), scheme.digest_id)) return error;
  key.signature = {std::move(digest), scheme, sign};
  return 0;
}

// Ends the running signature whatever comes of it.
int finish(RSA_UNIT &key, uint8_t *digest, int *digest_length) noexcept {
  const DigestOwner running = std::move(key.signature.digest);
  return PKV_Final_DIGEST(running.get(), digest, digest_length);
}

}  // namespace

int PKV_Init_RSASSA(RSA_UNIT *key, int digest_id, int scheme, int sign) noexcept {
  if (!key) return PKV_ERR_NULL;
  key->signature = {};
  return start(*key, usual_scheme(digest_id, scheme), sign != 0);
}

int PKV_Set_RSASSA_PSS(RSA_UNIT *key, int mgf_digest_id, int salt_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  RsaSignatureState &state = key->signature;
  if (!state.digest || state.scheme.scheme != PKV_RSA_PSS) return PKV_ERR_FAILED;
  const RsaSignatureScheme asked{state.scheme.digest_id, PKV_RSA_PSS, mgf_digest_id, salt_length};
  if (int error = check_scheme(asked)) return error;
  state.scheme = asked;
  return 0;
}

int PKV_Update_RSASSA(RSA_UNIT *key, const unsigned char *data, int length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (!key->signature.digest) return PKV_ERR_FAILED;
  return PKV_Update_DIGEST(key->signature.digest.get(), data, length);
}

int PKV_Final_RSASSA(RSA_UNIT *key, unsigned char *signature, int *length) noexcept {
  if (!key || !length) return PKV_ERR_NULL;
  if (!key->signature.digest) return PKV_ERR_FAILED;
  if (!key->signature.sign) return PKV_Verify_RSASSA(key, signature, *length);
  if (int error = check_signing(*key, signature, length)) return error;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int digest_length = 0;
  if (int error = finish(*key, digest, &digest_length)) return error;
  if (int error = sign_digest(*key, key->signature.scheme, {digest, size_t(digest_length)}, signature)) return error;
  *length = PKV_Get_RSA_Length(key);
  return 0;
}

int PKV_Verify_RSASSA(RSA_UNIT *key, const unsigned char *signature, int length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(signature, length)) return error;
  if (!key->signature.digest || key->signature.sign) return PKV_ERR_FAILED;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int digest_length = 0;
  if (int error = finish(*key, digest, &digest_length)) return error;
  return verify_digest(*key, key->signature.scheme, {digest, size_t(digest_length)}, {signature, size_t(length)});
}

int PKV_RSASSA_SIGN(const RSA_UNIT *key, int digest_id, int scheme, const unsigned char *data, int length,
                    unsigned char *signature, int *signature_length) noexcept {
  return sign_message(key, usual_scheme(digest_id, scheme), data, length, signature, signature_length);
}

int PKV_RSASSA_VERIFY(const RSA_UNIT *key, int digest_id, int scheme, const unsigned char *data, int length,
                      const unsigned char *signature, int signature_length) noexcept {
  return verify_message(key, usual_scheme(digest_id, scheme), data, length, signature, signature_length);
}

int PKV_RSASSA_DIGEST_VERIFY(const RSA_UNIT *key, int digest_id, int scheme, int mgf_digest_id, int salt_length,
                             const unsigned char *digest, int digest_length, const unsigned char *signature,
                             int signature_length) noexcept {
  if (!key || !digest) return PKV_ERR_NULL;
  if (int error = check_octets(signature, signature_length)) return error;
  const int salt = salt_length == PKV_RSA_ANY_SALT ? 0 : salt_length;
  if (int error = check_scheme({digest_id, scheme, mgf_digest_id, salt})) return error;
  if (digest_length != PKV_Get_DIGEST_Length(digest_id)) return PKV_ERR_BAD_VALUE;
  return verify_digest(*key, {digest_id, scheme, mgf_digest_id, salt_length}, {digest, size_t(digest_length)},
                       {signature, size_t(signature_length)});
}

int PKV_RSASSA_PSS_SIGN(const RSA_UNIT *key, int digest_id, int mgf_digest_id, int salt_length,
                        const unsigned char *data, int length, unsigned char *signature,
                        int *signature_length) noexcept {
  return sign_message(key, {digest_id, PKV_RSA_PSS, mgf_digest_id, salt_length}, data, length, signature,
                      signature_length);
}

int PKV_RSASSA_PSS_VERIFY(const RSA_UNIT *key, int digest_id, int mgf_digest_id, int salt_length,
                          const unsigned char *data, int length, const unsigned char *signature,
                          int signature_length) noexcept {
  return verify_message(key, {digest_id, PKV_RSA_PSS, mgf_digest_id, salt_length}, data, length, signature,
                        signature_length);
}
