// KCDSA domain parameters: p = 2Jq + 1 with p, q and J prime, all from one seed (TTAK.KO-12.0001, annex on generation).
#include <algorithm>

#include "provider/internal/kcdsa.h"
#include "provider/internal/libcrypto.h"

using namespace velcrypto;

namespace {

constexpr int kMaxCount = 1 << 24;
constexpr int kMaxSeedOctets = 256;

struct ParamSet {
  int p_bits, q_bits, digest_id;
};
constexpr ParamSet kParamSets[] = {{1024, 160, PKV_DIGEST_HAS160}, {1024, 160, PKV_DIGEST_SHA1},
                                   {2048, 224, PKV_DIGEST_SHA224}, {2048, 224, PKV_DIGEST_SHA256},
                                   {2048, 256, PKV_DIGEST_SHA256}, {3072, 256, PKV_DIGEST_SHA256}};

bool is_known(const ParamSet &set) noexcept {
  return std::any_of(std::begin(kParamSets), std::end(kParamSets), [&](const ParamSet &known) {
    return known.p_bits == set.p_bits && known.q_bits == set.q_bits && known.digest_id == set.digest_id;
  });
}

struct Reporter {
  PKV_PROGRESS *report;
  void *context;
  int count = 0;
  // False when the caller wants no more.
  bool go_on() noexcept { return !report || report(++count, context) == 0; }
};

using Octets = std::span<const uint8_t>;

// The seed with room behind it for the count of the candidate and for PPGF's own counter.
struct SeedBuffer {
  std::array<uint8_t, kMaxSeedOctets + 5> octets;
  size_t length;
  void set(Octets seed) noexcept {
    length = seed.size();
    std::copy(seed.begin(), seed.end(), octets.begin());
  }
};

// PPGF: digests of (input || 00), (input || 01), ... fill the output from its end; the last one is cut to its rightmost
// octets, and the number to `bits` bits.
BnOwner expand(int digest_id, SeedBuffer &seed, size_t input_length, int bits) noexcept {
  std::array<uint8_t, kMaxKcdsaPOctets> out;
  std::array<uint8_t, PKV_MAX_DIGEST_LENGTH> digest;
  const auto digest_length = size_t(PKV_Get_DIGEST_Length(digest_id));
  const auto total = size_t(bits + 7) / 8;
  uint8_t counter = 0;
  for (size_t left = total; left > 0; ++counter) {
    seed.octets[input_length] = counter;
    if (PKV_DIGEST(digest_id, seed.octets.data(), int(input_length + 1), digest.data(), nullptr)) return nullptr;
    const size_t now = std::min(left, digest_length);
    left -= now;
    std::copy_n(digest.begin() + std::ptrdiff_t(digest_length - now), now, out.begin() + std::ptrdiff_t(left));
  }
  if (bits % 8) out[0] &= uint8_t(0xFF >> (8 - bits % 8));
  return BnOwner(BN_bin2bn(out.data(), int(total), nullptr));
}

// J = 2^(a-b-1) or U or 1.
BnOwner derive_j(const ParamSet &set, SeedBuffer &seed) noexcept {
  const int bits = set.p_bits - set.q_bits;
  BnOwner j = expand(set.digest_id, seed, seed.length, bits - 4);
  return j && BN_set_bit(j.get(), bits - 1) && BN_set_bit(j.get(), 0) ? std::move(j) : nullptr;
}

// q = 2^(b-1) or U or 1.
BnOwner derive_q(const ParamSet &set, SeedBuffer &seed, int count) noexcept {
  for (size_t i = 0; i < 4; ++i) seed.octets[seed.length + i] = uint8_t(count >> (24 - 8 * i));
  BnOwner q = expand(set.digest_id, seed, seed.length + 4, set.q_bits);
  return q && BN_set_bit(q.get(), set.q_bits - 1) && BN_set_bit(q.get(), 0) ? std::move(q) : nullptr;
}

// p = 2Jq + 1.
BnOwner derive_p(const BIGNUM *j, const BIGNUM *q, BN_CTX *context) noexcept {
  BnOwner p(BN_new());
  return p && BN_mul(p.get(), j, q, context) && BN_lshift1(p.get(), p.get()) && BN_add_word(p.get(), 1) ? std::move(p)
                                                                                                        : nullptr;
}

struct Domain {
  BnOwner p, q, g, j;
  int count = 0;
};

// The first h of 2, 3, ... that gives a generator. Which h does not matter, and this one anybody can do again.
bool find_generator(Domain &domain, BN_CTX *context) noexcept {
  const BnOwner power(BN_new()), h(BN_new());
  domain.g.reset(BN_new());
  if (!power || !h || !domain.g || !BN_lshift1(power.get(), domain.j.get()) || !BN_set_word(h.get(), 2)) return false;
  do {
    if (!BN_mod_exp(domain.g.get(), h.get(), power.get(), domain.p.get(), context) || !BN_add_word(h.get(), 1)) {
      return false;
    }
  } while (BN_is_one(domain.g.get()));
  return true;
}

// 1 when q and p of this count are prime, 0 when not, below 0 when memory is exhausted.
int try_count(const ParamSet &set, SeedBuffer &seed, int count, Domain &domain, BN_CTX *context) noexcept {
  domain.q = derive_q(set, seed, count);
  if (!domain.q) return -1;
  domain.p = derive_p(domain.j.get(), domain.q.get(), context);
  if (!domain.p) return -1;
  if (BN_num_bits(domain.p.get()) > set.p_bits) return 0;
  const int q_prime = BN_check_prime(domain.q.get(), context, nullptr);
  return q_prime == 1 ? BN_check_prime(domain.p.get(), context, nullptr) : q_prime;
}

// PKV_ERR_FAILED when the seed leads to nothing or the caller ends it.
int derive(const ParamSet &set, SeedBuffer &seed, Reporter &reporter, Domain &domain) noexcept {
  const BnCtxOwner context(BN_CTX_new_ex(library_context()));
  domain.j = derive_j(set, seed);
  if (!context || !domain.j) return PKV_ERR_NO_MEMORY;
  const int j_prime = BN_check_prime(domain.j.get(), context.get(), nullptr);
  if (j_prime != 1) return j_prime < 0 ? PKV_ERR_NO_MEMORY : PKV_ERR_FAILED;
  for (domain.count = 1; domain.count <= kMaxCount; ++domain.count) {
    if (!reporter.go_on()) return PKV_ERR_FAILED;
    const int found = try_count(set, seed, domain.count, domain, context.get());
    if (found < 0) return PKV_ERR_NO_MEMORY;
    if (found) return find_generator(domain, context.get()) ? 0 : PKV_ERR_NO_MEMORY;
  }
  return PKV_ERR_FAILED;
}

int store(KCDSA_UNIT *key, const Domain &domain, const SeedBuffer &seed) noexcept {
  const BigintOwner p(new_from_bn(domain.p.get())), q(new_from_bn(domain.q.get())), g(new_from_bn(domain.g.get())),
      j(new_from_bn(domain.j.get()));
  if (!p || !q || !g || !j) return PKV_ERR_NO_MEMORY;
  KCDSA_UNIT made;  // a key that held something keeps it unless all went well
  if (int error = PKV_Set_KCDSA_Params(&made, p.get(), q.get(), g.get(), j.get(), nullptr, seed.octets.data(),
                                       int(seed.length), domain.count)) {
    return error;
  }
  PKV_Clear_KCDSA(key);
  key->part = made.part;
  return 0;
}

}  // namespace

int PKV_Derive_KCDSA_Params(KCDSA_UNIT *key, int p_bits, int q_bits, int digest_id, const unsigned char *seed,
                            int seed_length, PKV_PROGRESS *progress, void *context) noexcept {
  if (!key || !seed) return PKV_ERR_NULL;
  const ParamSet set{p_bits, q_bits, digest_id};
  if (!is_known(set)) return PKV_ERR_UNSUPPORTED;
  if (seed_length < 1 || seed_length > kMaxSeedOctets) return PKV_ERR_BAD_VALUE;
  SeedBuffer buffer;
  buffer.set({seed, size_t(seed_length)});
  Reporter reporter{progress, context};
  Domain domain;
  if (int error = derive(set, buffer, reporter, domain)) return error;
  return store(key, domain, buffer);
}

int PKV_Generate_KCDSA_Params(KCDSA_UNIT *key, int p_bits, int q_bits, int digest_id, PKV_PROGRESS *progress,
                              void *context) noexcept {
  if (!key) return PKV_ERR_NULL;
  const ParamSet set{p_bits, q_bits, digest_id};
  if (!is_known(set)) return PKV_ERR_UNSUPPORTED;
  Reporter reporter{progress, context};
  SeedBuffer seed;
  seed.length = size_t(q_bits) / 8;
  // One seed in several hundred has a prime J; most of the others end at trial division.
  while (reporter.go_on()) {
    if (int error = PKV_Rand_Bytes(seed.octets.data(), int(seed.length))) return error;
    Domain domain;
    const int error = derive(set, seed, reporter, domain);
    if (!error) return store(key, domain, seed);
    if (error != PKV_ERR_FAILED) return error;
  }
  return PKV_ERR_FAILED;
}

namespace {

// q divides p - 1, and the rest of it is 2J.
bool is_divided(const KcdsaNumbers &numbers, const BIGNUM *j, BN_CTX *context) noexcept {
  const BnOwner quotient(BN_new()), remainder(BN_new()), order(BN_dup(numbers.p.get()));
  if (!quotient || !remainder || !order || !BN_sub_word(order.get(), 1)) return false;
  if (!BN_div(quotient.get(), remainder.get(), order.get(), numbers.q.get(), context)) return false;
  if (!BN_is_zero(remainder.get())) return false;
  return !j || (BN_rshift1(quotient.get(), quotient.get()) && BN_cmp(quotient.get(), j) == 0);
}

bool are_prime(const KcdsaNumbers &numbers, const BIGNUM *j, BN_CTX *context) noexcept {
  return BN_check_prime(numbers.q.get(), context, nullptr) == 1 &&
         BN_check_prime(numbers.p.get(), context, nullptr) == 1 && (!j || BN_check_prime(j, context, nullptr) == 1);
}

bool comes_from_seed(const KCDSA_UNIT &key, const KcdsaNumbers &numbers, int digest_id, BN_CTX *context) noexcept {
  const BIGINT *seed = key.part->number(kKcdsaSeed);
  const int count = key.part->extra.count;
  if (!is_digest(digest_id) || seed->length > kMaxSeedOctets || count < 1 || count > kMaxCount) return false;
  const ParamSet set{BN_num_bits(numbers.p.get()), BN_num_bits(numbers.q.get()), digest_id};
  SeedBuffer buffer;
  buffer.set({seed->octets, size_t(seed->length)});
  const BnOwner j = derive_j(set, buffer), q = derive_q(set, buffer, count);
  if (!j || !q || BN_cmp(q.get(), numbers.q.get()) != 0) return false;
  const BnOwner p = derive_p(j.get(), q.get(), context);
  return p && BN_cmp(p.get(), numbers.p.get()) == 0;
}

}  // namespace

int PKV_Check_KCDSA_Params(const KCDSA_UNIT *key, int primes, int digest_id) noexcept {
  if (!key) return PKV_ERR_NULL;
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_prepared(*key, error);
  if (!numbers) return error;
  const BIGINT *j_held = key->part->number(PKV_KCDSA_J);
  const BnOwner j = to_bn(j_held);
  const BnCtxOwner context(BN_CTX_new_ex(library_context()));
  if (!context || (j_held && !j)) return PKV_ERR_NO_MEMORY;
  if (!numbers->g_is_sound || !is_divided(*numbers, j.get(), context.get())) return PKV_ERR_BAD_VALUE;
  if (!primes) return 0;
  const bool seeded = key->part->number(kKcdsaSeed) != nullptr;
  // The seed first: primality of the largest sizes takes a second.
  if (seeded && !comes_from_seed(*key, *numbers, digest_id, context.get())) return PKV_ERR_BAD_VALUE;
  return are_prime(*numbers, j.get(), context.get()) ? 0 : PKV_ERR_BAD_VALUE;
}
