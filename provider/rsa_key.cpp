// RSA keys: life cycle, numbers, consistency.
#include "provider/internal/rsa.h"

using namespace velcrypto;

RSA_UNIT *PKV_New_RSA(void) noexcept { return make<RSA_UNIT>(); }

void PKV_Free_RSA(RSA_UNIT *key) noexcept { destroy(key); }

void PKV_Clear_RSA(RSA_UNIT *key) noexcept {
  if (!key) return;
  key->~pkv_rsa();
  new (key) RSA_UNIT;
}

RSA_UNIT *PKV_Dup_RSA(const RSA_UNIT *key) noexcept {
  RSA_UNIT *copy = key ? PKV_New_RSA() : nullptr;
  if (!copy) return nullptr;
  copy->part = key->part;
  copy->signer = key->signer;
  return copy;
}

int PKV_Cmp_RSA(const RSA_UNIT *a, const RSA_UNIT *b) noexcept {
  if (!a || !b || !a->part || !b->part) return 1;
  if (&*a->part == &*b->part) return 0;
  return PKV_Cmp_BIGINT(a->part->number(PKV_RSA_N), b->part->number(PKV_RSA_N)) != 0 ||
         PKV_Cmp_BIGINT(a->part->number(PKV_RSA_E), b->part->number(PKV_RSA_E)) != 0;
}

namespace {

// New numbers begin a new key: the signer of the old one and what was running are gone.
int replace_numbers(RSA_UNIT &key, const std::array<Number, 8> &numbers) noexcept {
  Shared<RsaPart> part(RsaPart::make(numbers));
  if (!part) return PKV_ERR_NO_MEMORY;
  PKV_Clear_RSA(&key);
  key.part = std::move(part);
  return 0;
}

}  // namespace

int PKV_Set_RSA_Params(RSA_UNIT *key, const BIGINT *n, const BIGINT *e, const BIGINT *d, const BIGINT *p,
                       const BIGINT *q, const BIGINT *dp, const BIGINT *dq, const BIGINT *qinv) noexcept {
  if (!key || !n || !e) return PKV_ERR_NULL;
  return replace_numbers(*key, {number_of(n), number_of(e), number_of(d), number_of(p), number_of(q), number_of(dp),
                                number_of(dq), number_of(qinv)});
}

int PKV_Set_RSA_Public(RSA_UNIT *key, const unsigned char *n, int n_length, const unsigned char *e,
                       int e_length) noexcept {
  if (!key || !n || !e) return PKV_ERR_NULL;
  for (const int length : {n_length, e_length})
    if (length < 0 || length > kMaxOctets) return PKV_ERR_BAD_VALUE;
  return replace_numbers(*key, {number_of(n, n_length), number_of(e, e_length)});
}

int PKV_Set_RSA_Callback(RSA_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) noexcept {
  if (!key || !sign) return PKV_ERR_NULL;
  if (!key->part || key->part->number(PKV_RSA_D)) return PKV_ERR_BAD_VALUE;
  key->signer = {sign, context};
  return 0;
}

const BIGINT *PKV_Get_RSA_Component(const RSA_UNIT *key, PKV_RSA_COMPONENT which) noexcept {
  const auto index = static_cast<unsigned>(which);
  return key && key->part && index <= PKV_RSA_QINV ? key->part->number(index) : nullptr;
}

int PKV_Is_RSA_Private(const RSA_UNIT *key) noexcept {
  return key && (key->signer.sign || (key->part && key->part->number(PKV_RSA_D)));
}

int PKV_Get_RSA_Length(const RSA_UNIT *key) noexcept {
  const BIGINT *n = PKV_Get_RSA_Component(key, PKV_RSA_N);
  return n ? n->length : 0;
}

namespace {

// Numbers of a private key in libcrypto's form, marked as secret.
struct PrivateNumbers {
  BnCtxOwner context{BN_CTX_new()};
  std::array<BnOwner, 8> at;
  const BIGNUM *operator[](PKV_RSA_COMPONENT which) const noexcept { return at[which].get(); }

  bool load(const RsaPart &part) noexcept {
    for (size_t i = 0; i < at.size(); ++i) {
      if (!part.number(i)) continue;
      at[i] = to_bn(part.number(i));
      if (!at[i]) return false;
      if (i >= PKV_RSA_D) BN_set_flags(at[i].get(), BN_FLG_CONSTTIME);
    }
    return context != nullptr;
  }
};

// a * b = 1 modulo `modulus`; `reduce` first takes one off the modulus, which makes p into its group's order.
bool is_inverse(const BIGNUM *a, const BIGNUM *b, const BIGNUM *modulus, bool reduce, BN_CTX *context) noexcept {
  const BnOwner m(BN_dup(modulus)), product(BN_new());
  if (!m || !product || (reduce && !BN_sub_word(m.get(), 1))) return false;
  BN_set_flags(m.get(), BN_FLG_CONSTTIME);
  return BN_mul(product.get(), a, b, context) && BN_nnmod(product.get(), product.get(), m.get(), context) &&
         BN_is_one(product.get());
}

bool is_product(const BIGNUM *n, const BIGNUM *p, const BIGNUM *q, BN_CTX *context) noexcept {
  const BnOwner product(BN_new());
  return product && BN_mul(product.get(), p, q, context) && BN_cmp(product.get(), n) == 0;
}

// (p, q) and e with the exponent that is used modulo p: d, or dp in place of it.
bool is_exponent(const PrivateNumbers &in, PKV_RSA_COMPONENT exponent, PKV_RSA_COMPONENT prime) noexcept {
  return !in[exponent] || is_inverse(in[PKV_RSA_E], in[exponent], in[prime], true, in.context.get());
}

bool has_consistent_primes(const PrivateNumbers &in) noexcept {
  return is_product(in[PKV_RSA_N], in[PKV_RSA_P], in[PKV_RSA_Q], in.context.get()) &&
         is_exponent(in, PKV_RSA_D, PKV_RSA_P) && is_exponent(in, PKV_RSA_D, PKV_RSA_Q) &&
         is_exponent(in, PKV_RSA_DP, PKV_RSA_P) && is_exponent(in, PKV_RSA_DQ, PKV_RSA_Q) &&
         (!in[PKV_RSA_QINV] || is_inverse(in[PKV_RSA_Q], in[PKV_RSA_QINV], in[PKV_RSA_P], false, in.context.get()));
}

// Without the primes the exponents can only be seen to undo each other.
int check_by_trial(const RSA_UNIT &key, size_t length) noexcept {
  Wiped<std::array<uint8_t, kMaxRsaOctets>> block, power;
  block.value[length - 1] = 2;
  if (int error = rsa_private_operation(key, block.value.data(), power.value.data())) return error;
  if (int error = rsa_public_operation(key, power.value.data(), power.value.data())) return error;
  return std::memcmp(block.value.data(), power.value.data(), length) == 0 ? 0 : PKV_ERR_BAD_VALUE;
}

}  // namespace

int PKV_Check_RSA(const RSA_UNIT *key) noexcept {
  if (!key) return PKV_ERR_NULL;
  const size_t length = rsa_usable_length(key);
  if (!length || !PKV_Is_RSA_Private(key)) return PKV_ERR_BAD_VALUE;
  if (key->signer.sign) return 0;
  const RsaPart &part = *key->part;
  if (!rsa_has_private_numbers(part)) return PKV_ERR_BAD_VALUE;
  if (!part.number(PKV_RSA_P) || !part.number(PKV_RSA_Q)) return check_by_trial(*key, length);
  ErrorScope errors;
  PrivateNumbers numbers;
  if (!numbers.load(part)) return PKV_ERR_NO_MEMORY;
  return has_consistent_primes(numbers) ? 0 : code_of_failure(PKV_ERR_BAD_VALUE);
}
