// DSA verification (FIPS 186-4 4.7), for the old certificates that have it. There is no signing.
#include <algorithm>
#include <span>

#include "provider/internal/arguments.h"
#include "provider/internal/bigint.h"
#include "provider/internal/libcrypto.h"

using namespace velcrypto;

namespace {

constexpr int kMinimumBits = 512, kMaximumBits = 10000;  // of p; what is larger is work that a stranger chooses

struct Domain {
  BnOwner p, q, g, y;
};

bool is_between_one_and(const BIGNUM *value, const BIGNUM *limit) noexcept {
  return !BN_is_zero(value) && !BN_is_one(value) && BN_ucmp(value, limit) < 0;
}

bool is_sound(const Domain &domain) noexcept {
  const int p_bits = BN_num_bits(domain.p.get()), q_bits = BN_num_bits(domain.q.get());
  return p_bits >= kMinimumBits && p_bits <= kMaximumBits && BN_is_odd(domain.p.get()) &&
         (q_bits == 160 || q_bits == 224 || q_bits == 256) && is_between_one_and(domain.g.get(), domain.p.get()) &&
         is_between_one_and(domain.y.get(), domain.p.get());
}

// The leftmost bits of the digest, as many as q has.
BnOwner hash_number(std::span<const uint8_t> digest, const BIGNUM *q) noexcept {
  const auto q_length = size_t(BN_num_bytes(q));
  return BnOwner(BN_bin2bn(digest.data(), int(std::min(digest.size(), q_length)), nullptr));
}

// (g^(H/s) y^(r/s) mod p) mod q.
bool recompute(const Domain &domain, const BIGNUM *hash, const BIGNUM *r, const BIGNUM *s, BIGNUM *out) noexcept {
  const BnCtxOwner context(BN_CTX_new());
  const BnOwner inverse(BN_new()), u1(BN_new()), u2(BN_new());
  BN_CTX *c = context.get();
  return c && inverse && u1 && u2 && BN_mod_inverse(inverse.get(), s, domain.q.get(), c) &&
         BN_mod_mul(u1.get(), hash, inverse.get(), domain.q.get(), c) &&
         BN_mod_mul(u2.get(), r, inverse.get(), domain.q.get(), c) &&
         BN_mod_exp2_mont(out, domain.g.get(), u1.get(), domain.y.get(), u2.get(), domain.p.get(), c, nullptr) &&
         BN_nnmod(out, out, domain.q.get(), c);
}

}  // namespace

int PKV_DSA_VERIFY(const BIGINT *p, const BIGINT *q, const BIGINT *g, const BIGINT *y, int digest_id,
                   const unsigned char *data, int length, const unsigned char *r, int r_length, const unsigned char *s,
                   int s_length) noexcept {
  if (!p || !q || !g || !y) return PKV_ERR_NULL;
  if (int error = check_octets(r, r_length)) return error;
  if (int error = check_octets(s, s_length)) return error;
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int digest_length = 0;
  if (int error = PKV_DIGEST(digest_id, data, length, digest, &digest_length)) return error;
  for (const BIGINT *number : {p, q, g, y})
    if (PKV_Is_BIGINT_Negative(number)) return PKV_ERR_BAD_VALUE;
  ErrorScope errors;
  const Domain domain{to_bn(p), to_bn(q), to_bn(g), to_bn(y)};
  const BnOwner r_value(BN_bin2bn(r, r_length, nullptr)), s_value(BN_bin2bn(s, s_length, nullptr)), again(BN_new());
  if (!domain.p || !domain.q || !domain.g || !domain.y || !r_value || !s_value || !again) return PKV_ERR_NO_MEMORY;
  if (!is_sound(domain)) return PKV_ERR_BAD_VALUE;
  for (const BIGNUM *half : {r_value.get(), s_value.get()})
    if (BN_is_zero(half) || BN_ucmp(half, domain.q.get()) >= 0) return PKV_ERR_MISMATCH;
  const BnOwner hash = hash_number({digest, size_t(digest_length)}, domain.q.get());
  if (!hash) return PKV_ERR_NO_MEMORY;
  // A composite q may share a factor with s; then there is no inverse, and no valid signature.
  if (!recompute(domain, hash.get(), r_value.get(), s_value.get(), again.get())) {
    return code_of_failure(PKV_ERR_MISMATCH);
  }
  return BN_ucmp(again.get(), r_value.get()) == 0 ? 0 : PKV_ERR_MISMATCH;
}
