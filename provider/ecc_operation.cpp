// ECDSA (FIPS 186-5 section 6), ECDH (SP 800-56A 5.7.1.2) and Ed25519 verification (RFC 8032).
#include <algorithm>

#include "provider/internal/arguments.h"
#include "provider/internal/ecc.h"
#include "provider/internal/libcrypto.h"

using namespace velcrypto;

namespace {

using Octets = std::span<const uint8_t>;
using SignatureOwner = owned<ECDSA_SIG, ECDSA_SIG_free>;

// libcrypto's key, made at first use; null, with the reason, for a point that is not on a known curve.
EVP_PKEY *prepared_key(const ECC_UNIT &key, int &error) noexcept {
  error = PKV_ERR_UNSUPPORTED;
  const KnownCurve *curve = find_curve(key);
  if (!curve) return nullptr;
  error = PKV_ERR_BAD_VALUE;
  const EccPart &part = *key.part;
  const BIGINT *d = part.number(kEccD);
  EncodedPoint point;
  if (encode_point(*curve, part.number(kEccX), part.number(kEccY), point)) return nullptr;
  if (d && !is_private_value(*curve, d)) return nullptr;
  EVP_PKEY *prepared = part.extra.key.get([&] { return make_ec_key(*curve, point, d).release(); });
  if (!prepared) error = code_of_failure(PKV_ERR_BAD_VALUE);
  return prepared;
}

// ECDSA-Sig-Value, the form that libcrypto takes and gives; 16 octets hold the headers of three elements.
using DerSignature = std::array<uint8_t, 2 * kMaxFieldOctets + 16>;

size_t encode_signature(Octets r, Octets s, DerSignature &out) noexcept {
  const SignatureOwner signature(ECDSA_SIG_new());
  BnOwner r_value(BN_bin2bn(r.data(), int(r.size()), nullptr)), s_value(BN_bin2bn(s.data(), int(s.size()), nullptr));
  if (!signature || !r_value || !s_value) return 0;
  if (!ECDSA_SIG_set0(signature.get(), r_value.release(), s_value.release())) return 0;
  uint8_t *at = out.data();
  const int length = i2d_ECDSA_SIG(signature.get(), &at);
  return length > 0 ? size_t(length) : 0;
}

int decode_signature(Octets der, size_t length, uint8_t *r, uint8_t *s) noexcept {
  const uint8_t *at = der.data();
  const SignatureOwner signature(d2i_ECDSA_SIG(nullptr, &at, long(der.size())));
  if (!signature) return PKV_ERR_FAILED;
  const auto width = int(length);
  return BN_bn2binpad(ECDSA_SIG_get0_r(signature.get()), r, width) == width &&
                 BN_bn2binpad(ECDSA_SIG_get0_s(signature.get()), s, width) == width
             ? 0
             : PKV_ERR_FAILED;
}

int verify_der(EVP_PKEY *key, Octets digest, Octets der) noexcept {
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_pkey(library_context(), key, nullptr));
  if (!context || EVP_PKEY_verify_init(context.get()) <= 0) return code_of_failure(PKV_ERR_FAILED);
  const int result = EVP_PKEY_verify(context.get(), der.data(), der.size(), digest.data(), digest.size());
  return result == 1 ? 0 : result < 0 ? code_of_failure(PKV_ERR_MISMATCH) : PKV_ERR_MISMATCH;
}

// A fault on the way can give the key away: what does not verify does not leave.
int sign_here(const ECC_UNIT &key, size_t length, Octets digest, uint8_t *r, uint8_t *s) noexcept {
  int error = 0;
  EVP_PKEY *pkey = prepared_key(key, error);
  if (!pkey) return error;
  DerSignature der;
  size_t written = der.size();
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_pkey(library_context(), pkey, nullptr));
  if (!context || EVP_PKEY_sign_init(context.get()) <= 0 ||
      EVP_PKEY_sign(context.get(), der.data(), &written, digest.data(), digest.size()) <= 0) {
    return code_of_failure(PKV_ERR_FAILED);
  }
  if (int code = verify_der(pkey, digest, {der.data(), written})) {
    return code == PKV_ERR_MISMATCH ? PKV_ERR_FAILED : code;
  }
  return decode_signature({der.data(), written}, length, r, s);
}

int sign_elsewhere(const ECC_UNIT &key, size_t length, int digest_id, Octets digest, uint8_t *r, uint8_t *s) noexcept {
  std::array<uint8_t, 2 * kMaxFieldOctets> both;
  int written = int(2 * length);
  if (int error = key.signer.sign(key.signer.context, PKV_KEY_ECC, digest_id, 0, digest.data(), int(digest.size()),
                                  both.data(), &written)) {
    return error;
  }
  if (written != int(2 * length)) return PKV_ERR_FAILED;
  std::copy_n(both.begin(), length, r);
  std::copy_n(both.begin() + std::ptrdiff_t(length), length, s);
  return 0;
}

// The digest that is signed, with its length.
int digest_message(int digest_id, const unsigned char *data, int length, uint8_t *out, size_t &out_length) noexcept {
  if (int error = check_octets(data, length)) return error;
  if (!is_digest(digest_id)) return PKV_ERR_UNSUPPORTED;
  out_length = size_t(PKV_Get_DIGEST_Length(digest_id));
  return PKV_DIGEST(digest_id, data, length, out, nullptr);
}

// Leading zeros off; empty for a number that is zero or longer than the order.
Octets trimmed(const unsigned char *octets, int length, size_t order_length) noexcept {
  if (size_t(length) > order_length) return {};
  const Number number = number_of(octets, length);
  return {number.octets, size_t(number.length)};
}

}  // namespace

int PKV_Get_ECC_Lengths(const ECC_UNIT *key, int *r_length, int *s_length) noexcept {
  if (!key || !r_length || !s_length) return PKV_ERR_NULL;
  const KnownCurve *curve = find_curve(*key);
  if (!curve) return PKV_ERR_UNSUPPORTED;
  *r_length = *s_length = int(curve->length);
  return 0;
}

int PKV_ECDSA_SIGN(const ECC_UNIT *key, int digest_id, const unsigned char *data, int length, unsigned char *r,
                   unsigned char *s) noexcept {
  if (!key || !r || !s) return PKV_ERR_NULL;
  const KnownCurve *curve = find_curve(*key);
  if (!curve) return PKV_ERR_UNSUPPORTED;
  if (!PKV_Is_ECC_Private(key)) return PKV_ERR_BAD_VALUE;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  size_t digest_length = 0;
  if (int error = digest_message(digest_id, data, length, digest, digest_length)) return error;
  ErrorScope errors;
  return key->signer.sign ? sign_elsewhere(*key, curve->length, digest_id, {digest, digest_length}, r, s)
                          : sign_here(*key, curve->length, {digest, digest_length}, r, s);
}

int PKV_ECDSA_VERIFY(const ECC_UNIT *key, int digest_id, const unsigned char *data, int length, const unsigned char *r,
                     int r_length, const unsigned char *s, int s_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(r, r_length)) return error;
  if (int error = check_octets(s, s_length)) return error;
  ErrorScope errors;
  int error = 0;
  EVP_PKEY *pkey = prepared_key(*key, error);
  if (!pkey) return error;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  size_t digest_length = 0;
  if ((error = digest_message(digest_id, data, length, digest, digest_length))) return error;
  const size_t order_length = find_curve(*key)->length;
  const Octets r_octets = trimmed(r, r_length, order_length), s_octets = trimmed(s, s_length, order_length);
  if (r_octets.empty() || s_octets.empty()) return PKV_ERR_MISMATCH;
  DerSignature der;
  const size_t der_length = encode_signature(r_octets, s_octets, der);
  if (!der_length) return PKV_ERR_NO_MEMORY;
  return verify_der(pkey, {digest, digest_length}, {der.data(), der_length});
}

namespace {

int derive(EVP_PKEY *own, EVP_PKEY *other, size_t length, uint8_t *out) noexcept {
  Wiped<std::array<uint8_t, kMaxFieldOctets>> shared;
  size_t written = shared.value.size();
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_pkey(library_context(), own, nullptr));
  if (!context || EVP_PKEY_derive_init(context.get()) <= 0 || EVP_PKEY_derive_set_peer(context.get(), other) <= 0 ||
      EVP_PKEY_derive(context.get(), shared.value.data(), &written) <= 0 || written != length) {
    return code_of_failure(PKV_ERR_FAILED);
  }
  std::copy_n(shared.value.begin(), length, out);
  return 0;
}

}  // namespace

int PKV_ECDH(const ECC_UNIT *key, const ECC_POINT *peer, unsigned char *out, int *out_length) noexcept {
  if (!key || !peer) return PKV_ERR_NULL;
  const KnownCurve *curve = find_curve(*key);
  if (!curve) return PKV_ERR_UNSUPPORTED;
  if (!PKV_Get_ECC_Private(key)) return PKV_ERR_BAD_VALUE;
  int error = check_capacity(out, out_length, curve->length);
  if (error) return error;
  EncodedPoint point;
  if ((error = encode_point(*curve, peer->x, peer->y, point))) return error;
  ErrorScope errors;
  EVP_PKEY *own = prepared_key(*key, error);
  if (!own) return error;
  const PkeyOwner other = make_ec_key(*curve, point, nullptr);
  if (!other) return PKV_ERR_BAD_VALUE;
  if ((error = derive(own, other.get(), curve->length, out))) return error;
  *out_length = int(curve->length);
  return 0;
}

int PKV_ED25519_VERIFY(const unsigned char *public_key, const unsigned char *data, int length,
                       const unsigned char *signature) noexcept {
  constexpr size_t kKeyOctets = 32, kSignatureOctets = 64;
  if (!public_key || !signature) return PKV_ERR_NULL;
  if (int error = check_octets(data, length)) return error;
  ErrorScope errors;
  const PkeyOwner key(EVP_PKEY_new_raw_public_key_ex(library_context(), "ED25519", nullptr, public_key, kKeyOctets));
  const owned<EVP_MD_CTX, EVP_MD_CTX_free> context(EVP_MD_CTX_new());
  if (!key || !context) return PKV_ERR_NO_MEMORY;
  if (EVP_DigestVerifyInit_ex(context.get(), nullptr, nullptr, library_context(), nullptr, key.get(), nullptr) <= 0) {
    return PKV_ERR_NO_MEMORY;
  }
  constexpr uint8_t kNothing = 0;
  return EVP_DigestVerify(context.get(), signature, kSignatureOctets, data ? data : &kNothing, size_t(length)) == 1
             ? 0
             : PKV_ERR_MISMATCH;
}
