// KCDSA keys: life cycle, numbers, generation, consistency.
#include "provider/internal/kcdsa.h"
#include "provider/internal/libcrypto.h"

using namespace velcrypto;

KCDSA_UNIT *PKV_New_KCDSA(void) noexcept { return make<KCDSA_UNIT>(); }

void PKV_Free_KCDSA(KCDSA_UNIT *key) noexcept { destroy(key); }

void PKV_Clear_KCDSA(KCDSA_UNIT *key) noexcept {
  if (!key) return;
  key->~pkv_kcdsa();
  new (key) KCDSA_UNIT;
}

KCDSA_UNIT *PKV_Dup_KCDSA(const KCDSA_UNIT *key) noexcept {
  KCDSA_UNIT *copy = key ? PKV_New_KCDSA() : nullptr;
  if (!copy) return nullptr;
  copy->part = key->part;
  copy->signer = key->signer;
  return copy;
}

int PKV_Cmp_KCDSA(const KCDSA_UNIT *a, const KCDSA_UNIT *b) noexcept {
  if (!a || !b || !a->part || !b->part) return 1;
  for (const size_t which : {PKV_KCDSA_P, PKV_KCDSA_Q, PKV_KCDSA_G, PKV_KCDSA_Y}) {
    if (PKV_Cmp_BIGINT(a->part->number(which), b->part->number(which)) != 0) return 1;
  }
  return 0;
}

namespace {

using Numbers = std::array<Number, kKcdsaNumbers>;

Numbers numbers_held(const KCDSA_UNIT &key) noexcept {
  Numbers out;
  for (size_t i = 0; key.part && i < out.size(); ++i) out[i] = number_of(key.part->number(i));
  return out;
}

void replace(Number &held, const BIGINT *given) noexcept {
  if (given) held = number_of(given);
}

// What was running and the signer belong to the numbers that go.
int replace_numbers(KCDSA_UNIT &key, const Numbers &numbers, int count) noexcept {
  Shared<KcdsaPart> part(KcdsaPart::make(numbers));
  if (!part) return PKV_ERR_NO_MEMORY;
  part->extra.count = count;
  PKV_Clear_KCDSA(&key);
  key.part = std::move(part);
  return 0;
}

int count_held(const KCDSA_UNIT &key) noexcept { return key.part ? key.part->extra.count : 0; }

}  // namespace

int PKV_Set_KCDSA_Params(KCDSA_UNIT *key, const BIGINT *p, const BIGINT *q, const BIGINT *g, const BIGINT *j,
                         const BIGINT *y, const unsigned char *seed, int seed_length, int count) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (seed && (seed_length < 0 || count < 0)) return PKV_ERR_BAD_VALUE;
  Numbers numbers = numbers_held(*key);
  replace(numbers[PKV_KCDSA_P], p);
  replace(numbers[PKV_KCDSA_Q], q);
  replace(numbers[PKV_KCDSA_G], g);
  replace(numbers[PKV_KCDSA_J], j);
  replace(numbers[PKV_KCDSA_Y], y);
  if (p || q || g || y) numbers[PKV_KCDSA_X] = {};  // it belonged to the old ones
  if (seed) numbers[kKcdsaSeed] = {seed, seed_length, 0};
  return replace_numbers(*key, numbers, seed ? count : count_held(*key));
}

int PKV_Set_KCDSA_Callback(KCDSA_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) noexcept {
  if (!key || !sign) return PKV_ERR_NULL;
  if (!key->part || !key->part->number(PKV_KCDSA_Y) || key->part->number(PKV_KCDSA_X)) return PKV_ERR_BAD_VALUE;
  key->signer = {sign, context};
  return 0;
}

const BIGINT *PKV_Get_KCDSA_Component(const KCDSA_UNIT *key, PKV_KCDSA_COMPONENT which) noexcept {
  const auto index = static_cast<unsigned>(which);
  return key && key->part && index <= PKV_KCDSA_X ? key->part->number(index) : nullptr;
}

const unsigned char *PKV_Get_KCDSA_Seed(const KCDSA_UNIT *key, int *length, int *count) noexcept {
  const BIGINT *seed = key && key->part ? key->part->number(kKcdsaSeed) : nullptr;
  if (length) *length = seed ? seed->length : 0;
  if (count) *count = seed ? key->part->extra.count : 0;
  return seed ? seed->octets : nullptr;
}

int PKV_Is_KCDSA_Private(const KCDSA_UNIT *key) noexcept {
  return key && (key->signer.sign || (key->part && key->part->number(PKV_KCDSA_X)));
}

namespace velcrypto {

namespace {

bool is_in_range(const BIGINT *n, const BIGINT *below) noexcept {
  return n && !n->negative && PKV_Get_BIGINT_Bit_Length(n) > 1 && PKV_Cmp_BIGINT(n, below) < 0;
}

bool has_size(const BIGINT *n, int min_bits, int max_bits) noexcept {
  const int bits = PKV_Get_BIGINT_Bit_Length(n);
  return n && !n->negative && bits >= min_bits && bits <= max_bits && (n->octets[n->length - 1] & 1);
}

bool is_usable(const KcdsaPart &part) noexcept {
  const BIGINT *p = part.number(PKV_KCDSA_P), *q = part.number(PKV_KCDSA_Q), *y = part.number(PKV_KCDSA_Y);
  return has_size(p, kMinKcdsaPBits, kMaxKcdsaPBits) && has_size(q, kMinKcdsaQBits, kMaxKcdsaQBits) &&
         is_in_range(part.number(PKV_KCDSA_G), p) && (!y || is_in_range(y, p));
}

// q * ceil(2^(b+1) / q) for a q of b bits: with a number below q added it stays in 2^(b+1) to 2^(b+2) - 1.
bool compute_lift(KcdsaNumbers &numbers, BN_CTX *context) noexcept {
  numbers.lift.reset(BN_new());
  BIGNUM *lift = numbers.lift.get();
  return lift && BN_lshift(lift, BN_value_one(), BN_num_bits(numbers.q.get()) + 1) &&
         BN_div(lift, nullptr, lift, numbers.q.get(), context) && BN_add_word(lift, 1) &&
         BN_mul(lift, lift, numbers.q.get(), context);
}

bool prepare_moduli(KcdsaNumbers &numbers, BN_CTX *context) noexcept {
  numbers.mod_p.reset(BN_MONT_CTX_new());
  numbers.mod_q.reset(BN_MONT_CTX_new());
  numbers.inverse_power.reset(BN_dup(numbers.q.get()));
  return numbers.mod_p && numbers.mod_q && numbers.inverse_power && BN_sub_word(numbers.inverse_power.get(), 2) &&
         BN_MONT_CTX_set(numbers.mod_p.get(), numbers.p.get(), context) &&
         BN_MONT_CTX_set(numbers.mod_q.get(), numbers.q.get(), context);
}

// Whether the base has an order that divides q, as g and y must: with others anybody can make signatures.
bool find_order(const KcdsaNumbers &numbers, const BIGNUM *base, BN_CTX *context, bool &sound) noexcept {
  const BnOwner power(BN_new());
  if (!power || !BN_mod_exp_mont(power.get(), base, numbers.q.get(), numbers.p.get(), context, numbers.mod_p.get())) {
    return false;
  }
  sound = BN_is_one(power.get());
  return true;
}

bool find_orders(KcdsaNumbers &numbers, BN_CTX *context) noexcept {
  return find_order(numbers, numbers.g.get(), context, numbers.g_is_sound) &&
         (!numbers.y || find_order(numbers, numbers.y.get(), context, numbers.y_is_sound));
}

KcdsaNumbers *prepare(const KcdsaPart &part) noexcept {
  owned<KcdsaNumbers, destroy<KcdsaNumbers>> made(make<KcdsaNumbers>());
  const BnCtxOwner context(BN_CTX_new());
  if (!made || !context) return nullptr;
  made->p = to_bn(part.number(PKV_KCDSA_P));
  made->q = to_bn(part.number(PKV_KCDSA_Q));
  made->g = to_bn(part.number(PKV_KCDSA_G));
  made->y = to_bn(part.number(PKV_KCDSA_Y));
  if (!made->p || !made->q || !made->g || (part.number(PKV_KCDSA_Y) && !made->y)) return nullptr;
  made->p_length = size_t(part.number(PKV_KCDSA_P)->length);
  made->q_length = size_t(part.number(PKV_KCDSA_Q)->length);
  const bool prepared =
      compute_lift(*made, context.get()) && prepare_moduli(*made, context.get()) && find_orders(*made, context.get());
  return prepared ? made.release() : nullptr;
}

}  // namespace

const KcdsaNumbers *kcdsa_prepared(const KCDSA_UNIT &key, int &error) noexcept {
  error = PKV_ERR_BAD_VALUE;
  if (!key.part || !is_usable(*key.part)) return nullptr;
  error = PKV_ERR_NO_MEMORY;
  return key.part->extra.numbers.get([&] { return prepare(*key.part); });
}

const KcdsaNumbers *kcdsa_numbers(const KCDSA_UNIT &key, int &error) noexcept {
  const KcdsaNumbers *numbers = kcdsa_prepared(key, error);
  if (!numbers || (numbers->g_is_sound && numbers->y_is_sound)) return numbers;
  error = PKV_ERR_BAD_VALUE;
  return nullptr;
}

bool kcdsa_power_secret(const KcdsaNumbers &numbers, BIGNUM *out, const BIGNUM *base, const BIGNUM *exponent,
                        BN_CTX *context) noexcept {
  const BnOwner lifted(BN_new());
  if (!lifted) return false;
  BN_set_flags(lifted.get(), BN_FLG_CONSTTIME);
  return BN_add(lifted.get(), exponent, numbers.lift.get()) &&
         BN_mod_exp_mont_consttime(out, base, lifted.get(), numbers.p.get(), context, numbers.mod_p.get());
}

int kcdsa_default_digest(const KCDSA_UNIT &key) noexcept {
  switch (key.part ? PKV_Get_BIGINT_Bit_Length(key.part->number(PKV_KCDSA_Q)) : 0) {
    case 160:
      return PKV_DIGEST_HAS160;
    case 224:
      return PKV_DIGEST_SHA224;
    case 256:
      return PKV_DIGEST_SHA256;
    default:
      return 0;
  }
}

}  // namespace velcrypto

namespace {

// y = g^(1/x mod q) mod p.
BnOwner compute_y(const KcdsaNumbers &numbers, const BIGNUM *x) noexcept {
  const BnCtxOwner context(BN_CTX_new());
  const BnOwner inverse(BN_new());
  BnOwner y(BN_new());
  if (!context || !inverse || !y) return nullptr;
  const bool done = BN_mod_exp_mont_consttime(inverse.get(), x, numbers.inverse_power.get(), numbers.q.get(),
                                              context.get(), numbers.mod_q.get()) &&
                    kcdsa_power_secret(numbers, y.get(), numbers.g.get(), inverse.get(), context.get());
  return done ? std::move(y) : nullptr;
}

int set_pair(KCDSA_UNIT &key, const BIGNUM *x, const BIGNUM *y) noexcept {
  const BigintOwner x_held(new_from_bn(x)), y_held(new_from_bn(y));
  if (!x_held || !y_held) return PKV_ERR_NO_MEMORY;
  Numbers numbers = numbers_held(key);
  numbers[PKV_KCDSA_X] = number_of(x_held.get());
  numbers[PKV_KCDSA_Y] = number_of(y_held.get());
  return replace_numbers(key, numbers, count_held(key));
}

bool is_private_value(const BIGINT *x, const BIGINT *q) noexcept {
  return !x->negative && !is_zero(x) && PKV_Cmp_BIGINT(x, q) < 0;
}

// The y that belongs to x; PKV_ERR_MISMATCH when the key holds another.
int match_y(const KCDSA_UNIT &key, const BIGINT *x, BnOwner &x_out, BnOwner &y_out) noexcept {
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_prepared(key, error);
  if (!numbers) return error;
  if (!is_private_value(x, key.part->number(PKV_KCDSA_Q))) return PKV_ERR_BAD_VALUE;
  x_out = to_bn(x);
  if (!x_out) return PKV_ERR_NO_MEMORY;
  BN_set_flags(x_out.get(), BN_FLG_CONSTTIME);
  y_out = compute_y(*numbers, x_out.get());
  if (!y_out) return PKV_ERR_NO_MEMORY;
  return numbers->y && BN_ucmp(numbers->y.get(), y_out.get()) != 0 ? PKV_ERR_MISMATCH : 0;
}

}  // namespace

int PKV_Set_KCDSA_Private(KCDSA_UNIT *key, const BIGINT *x) noexcept {
  if (!key || !x) return PKV_ERR_NULL;
  BnOwner secret, y;
  if (int error = match_y(*key, x, secret, y)) return error;
  return set_pair(*key, secret.get(), y.get());
}

int PKV_Generate_KCDSA(KCDSA_UNIT *key) noexcept {
  if (!key) return PKV_ERR_NULL;
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_numbers(*key, error);
  if (!numbers) return error;
  const BnOwner x = random_exponent(numbers->q.get(), error);
  if (!x) return error;
  const BnOwner y = compute_y(*numbers, x.get());
  return y ? set_pair(*key, x.get(), y.get()) : PKV_ERR_NO_MEMORY;
}

int PKV_Check_KCDSA_Key(const KCDSA_UNIT *key) noexcept {
  if (!key) return PKV_ERR_NULL;
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_prepared(*key, error);
  if (!numbers) return error;
  if (!numbers->y || !numbers->y_is_sound) return PKV_ERR_BAD_VALUE;
  const BIGINT *x = key->part->number(PKV_KCDSA_X);
  BnOwner secret, y;
  return x ? match_y(*key, x, secret, y) : 0;
}
