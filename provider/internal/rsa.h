// RSA inside the provider: the key's shape, the two raw operations, the encodings of RFC 8017.
#pragma once

#include <openssl/evp.h>

#include <span>

#include "provider/internal/key_part.h"

namespace velcrypto {

inline constexpr int kMinRsaBits = 512;
inline constexpr int kMaxRsaBits = 16384;
inline constexpr size_t kMaxRsaOctets = kMaxRsaBits / 8;

// The public numbers ready for arithmetic; read-only once made, so any number of threads may use one.
struct RsaPublic {
  BnOwner n, e;
  BnMontOwner reduction;
};
struct RsaExtra {
  Prepared<RsaPublic, destroy<RsaPublic>> public_half;
  Prepared<EVP_PKEY, EVP_PKEY_free> private_half;
};
using RsaPart = KeyPart<RsaExtra, 8>;  // numbers by PKV_RSA_COMPONENT

struct RsaSignatureScheme {
  int digest_id = 0;
  int scheme = 0;
  int mgf_digest_id = 0;  // the last two are PSS's
  int salt_length = 0;
};

using DigestOwner = owned<DIGEST_UNIT, PKV_Free_DIGEST>;

// An incremental signature between Init and Final.
struct RsaSignatureState {
  DigestOwner digest;
  RsaSignatureScheme scheme;
  bool sign = false;
};
// Encryption parameters between Init and the operation.
struct RsaEncryptionState {
  int scheme = 0;  // 0: not started
  bool encrypt = false;
  int digest_id = PKV_DIGEST_SHA1;
  int mgf_digest_id = PKV_DIGEST_SHA1;
  SecretBuffer label;
};

}  // namespace velcrypto

struct pkv_rsa {
  velcrypto::Shared<velcrypto::RsaPart> part;
  velcrypto::Signer signer;
  velcrypto::RsaSignatureState signature;
  velcrypto::RsaEncryptionState encryption;
};

namespace velcrypto {

// Octets of the modulus of a key whose public numbers are in range, else 0.
size_t rsa_usable_length(const RSA_UNIT *key) noexcept;
// A usable key with d, and every private number positive and below n: libcrypto itself takes what it is given.
bool rsa_has_private_numbers(const RsaPart &part) noexcept;

// in^e mod n and in^d mod n over blocks of the modulus length, `in` below n; the latter blinded, in constant time.
int rsa_public_operation(const RSA_UNIT &key, const uint8_t *in, uint8_t *out) noexcept;
int rsa_private_operation(const RSA_UNIT &key, const uint8_t *in, uint8_t *out) noexcept;
// The prepared public numbers, or null with the reason in `error`.
const RsaPublic *rsa_public(const RSA_UNIT &key, int &error) noexcept;

// XORs MGF1(seed) into `out` (RFC 8017 B.2.1).
int mgf1_xor(int digest_id, std::span<const uint8_t> seed, std::span<uint8_t> out) noexcept;
// EMSA-PKCS1-v1_5 (9.2) and EMSA-PSS (9.1) of a digest value; `em` has the modulus length, `bits` is that of the
// modulus.
int emsa_pkcs1_encode(int digest_id, std::span<const uint8_t> digest, std::span<uint8_t> em) noexcept;
int emsa_pss_encode(const RsaSignatureScheme &scheme, std::span<const uint8_t> digest, int bits,
                    std::span<uint8_t> em) noexcept;
int emsa_pss_verify(const RsaSignatureScheme &scheme, std::span<const uint8_t> digest, int bits,
                    std::span<uint8_t> em) noexcept;

}  // namespace velcrypto
