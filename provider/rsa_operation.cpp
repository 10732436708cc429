// The two raw RSA operations, RSAEP/RSAVP1 and RSADP/RSASP1 of RFC 8017, over blocks of the modulus length.
//
// The public one works on the numbers themselves: an EVP verification costs several microseconds of look-ups before it
// begins, for a prepared key and much more for a fresh one, and the encodings around it are the provider's own anyway.
// The Montgomery form of n is all that is worth keeping, and is read-only, so that threads share it without a lock. The
// private one goes through EVP, which brings blinding, the Chinese remainder form and its fault check.
#include <openssl/core_names.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>

#include "provider/internal/libcrypto.h"
#include "provider/internal/rsa.h"

namespace velcrypto {

namespace {

// Work grows with the length of e times the square of that of n; keys in use have long exponents only at small sizes.
constexpr int kSmallModulusBits = 3072;
constexpr int kMaxExponentBits = 64;

bool is_odd(const BIGINT *n) noexcept { return n && !n->negative && n->length > 0 && (n->octets[n->length - 1] & 1); }

bool is_usable(const RsaPart &part) noexcept {
  const BIGINT *n = part.number(PKV_RSA_N), *e = part.number(PKV_RSA_E);
  if (!is_odd(n) || !is_odd(e)) return false;
  const int bits = PKV_Get_BIGINT_Bit_Length(n), exponent_bits = PKV_Get_BIGINT_Bit_Length(e);
  if (bits < kMinRsaBits || bits > kMaxRsaBits || exponent_bits < 2) return false;
  return exponent_bits <= kMaxExponentBits ||
         (bits <= kSmallModulusBits && exponent_bits <= bits && PKV_Cmp_BIGINT(e, n) < 0);
}

RsaPublic *prepare_public(const RsaPart &part) noexcept {
  std::unique_ptr<RsaPublic, Releases<destroy<RsaPublic>>> made(make<RsaPublic>());
  const BnCtxOwner context(BN_CTX_new());
  if (!made || !context) return nullptr;
  made->n = to_bn(part.number(PKV_RSA_N));
  made->e = to_bn(part.number(PKV_RSA_E));
  made->reduction.reset(BN_MONT_CTX_new());
  if (!made->n || !made->e || !made->reduction) return nullptr;
  return BN_MONT_CTX_set(made->reduction.get(), made->n.get(), context.get()) ? made.release() : nullptr;
}

constexpr const char *kParameterNames[] = {OSSL_PKEY_PARAM_RSA_N,         OSSL_PKEY_PARAM_RSA_E,
                                           OSSL_PKEY_PARAM_RSA_D,         OSSL_PKEY_PARAM_RSA_FACTOR1,
                                           OSSL_PKEY_PARAM_RSA_FACTOR2,   OSSL_PKEY_PARAM_RSA_EXPONENT1,
                                           OSSL_PKEY_PARAM_RSA_EXPONENT2, OSSL_PKEY_PARAM_RSA_COEFFICIENT1};

using BuilderOwner = owned<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free>;
using ParamsOwner = owned<OSSL_PARAM, OSSL_PARAM_free>;
using PkeyContextOwner = owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;

// Only a whole remainder form is of use; with less than that the key works by n and d alone.
size_t numbers_to_pass(const RsaPart &part) noexcept {
  for (size_t i = PKV_RSA_P; i <= PKV_RSA_QINV; ++i) {
    if (!part.number(i)) return PKV_RSA_P;
  }
  return PKV_RSA_QINV + 1;
}

ParamsOwner private_params(const RsaPart &part) noexcept {
  const BuilderOwner builder(OSSL_PARAM_BLD_new());
  if (!builder) return nullptr;
  std::array<BnOwner, 8> numbers;  // the builder copies them only at the end
  for (size_t i = 0; i < numbers_to_pass(part); ++i) {
    numbers[i] = to_bn(part.number(i));
    if (!numbers[i]) return nullptr;
    if (i >= PKV_RSA_D) BN_set_flags(numbers[i].get(), BN_FLG_CONSTTIME);
    if (!OSSL_PARAM_BLD_push_BN(builder.get(), kParameterNames[i], numbers[i].get())) return nullptr;
  }
  return ParamsOwner(OSSL_PARAM_BLD_to_param(builder.get()));
}

// OSSL_PARAM_free wipes only what was pushed as secure memory.
void wipe_params(OSSL_PARAM *params) noexcept {
  for (OSSL_PARAM *one = params; one->key; ++one) PKV_Wipe(one->data, one->data_size);
}

EVP_PKEY *prepare_private(const RsaPart &part) noexcept {
  const ParamsOwner params = private_params(part);
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_name(library_context(), "RSA", nullptr));
  EVP_PKEY *key = nullptr;
  const bool made = params && context && EVP_PKEY_fromdata_init(context.get()) > 0 &&
                    EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_KEYPAIR, params.get()) > 0;
  if (params) wipe_params(params.get());
  return made ? key : nullptr;
}

}  // namespace

bool rsa_has_private_numbers(const RsaPart &part) noexcept {
  if (!is_usable(part) || !part.number(PKV_RSA_D)) return false;
  for (size_t i = PKV_RSA_D; i <= PKV_RSA_QINV; ++i) {
    const BIGINT *one = part.number(i);
    if (one && (one->negative || is_zero(one) || PKV_Cmp_BIGINT(one, part.number(PKV_RSA_N)) >= 0)) return false;
  }
  return true;
}

size_t rsa_usable_length(const RSA_UNIT *key) noexcept {
  return key && key->part && is_usable(*key->part) ? size_t(key->part->number(PKV_RSA_N)->length) : 0;
}

const RsaPublic *rsa_public(const RSA_UNIT &key, int &error) noexcept {
  error = PKV_ERR_BAD_VALUE;
  if (!key.part || !is_usable(*key.part)) return nullptr;
  error = PKV_ERR_NO_MEMORY;
  return key.part->extra.public_half.get([&] { return prepare_public(*key.part); });
}

int rsa_public_operation(const RSA_UNIT &key, const uint8_t *in, uint8_t *out) noexcept {
  int error = 0;
  const RsaPublic *numbers = rsa_public(key, error);
  if (!numbers) return error;
  const int length = key.part->number(PKV_RSA_N)->length;
  const BnCtxOwner context(BN_CTX_new());
  const BnOwner value(BN_bin2bn(in, length, nullptr));
  if (!context || !value) return PKV_ERR_NO_MEMORY;
  if (BN_ucmp(value.get(), numbers->n.get()) >= 0) return PKV_ERR_BAD_VALUE;
  if (!BN_mod_exp_mont(value.get(), value.get(), numbers->e.get(), numbers->n.get(), context.get(),
                       numbers->reduction.get())) {
    return PKV_ERR_NO_MEMORY;
  }
  return BN_bn2binpad(value.get(), out, length) == length ? 0 : PKV_ERR_FAILED;
}

int rsa_private_operation(const RSA_UNIT &key, const uint8_t *in, uint8_t *out) noexcept {
  if (!key.part || !rsa_has_private_numbers(*key.part)) return PKV_ERR_BAD_VALUE;
  ErrorScope errors;
  EVP_PKEY *pkey = key.part->extra.private_half.get([&] { return prepare_private(*key.part); });
  if (!pkey) return PKV_ERR_FAILED;
  const auto length = size_t(key.part->number(PKV_RSA_N)->length);
  size_t written = length;
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_pkey(library_context(), pkey, nullptr));
  const bool done = context && EVP_PKEY_decrypt_init(context.get()) > 0 &&
                    EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_NO_PADDING) > 0 &&
                    EVP_PKEY_decrypt(context.get(), out, &written, in, length) > 0 && written == length;
  return done ? 0 : PKV_ERR_FAILED;
}

}  // namespace velcrypto
