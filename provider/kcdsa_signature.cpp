// KCDSA signatures (TTAK.KO-12.0001, ISO/IEC 14888-3): r an octet string, s a number below q.
#include <algorithm>

#include "provider/internal/arguments.h"
#include "provider/internal/kcdsa.h"

using namespace velcrypto;

namespace {

using Octets = std::span<const uint8_t>;
using Digest = std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>;

// A digest as KCDSA uses it: one longer than q is cut to its last octets.
struct Hash {
  int digest_id;
  size_t length, kept;
  Octets cut(const Digest &value) const noexcept { return {value.data() + (length - kept), kept}; }
};

int choose_hash(const KCDSA_UNIT &key, int digest_id, Hash &out) noexcept {
  const BIGINT *q = key.part ? key.part->number(PKV_KCDSA_Q) : nullptr;
  if (!q || is_zero(q)) return PKV_ERR_BAD_VALUE;
  if (digest_id == 0) digest_id = kcdsa_default_digest(key);
  if (!is_digest(digest_id)) return PKV_ERR_UNSUPPORTED;
  const auto length = size_t(PKV_Get_DIGEST_Length(digest_id));
  out = {digest_id, length, std::min(length, size_t(q->length))};
  return 0;
}

// Starts the digest of z || message; z is the end of y, as long as a block of the digest.
int start_digest(const KCDSA_UNIT &key, const Hash &hash, DigestOwner &out) noexcept {
  const BIGINT *y = key.part->number(PKV_KCDSA_Y);
  if (!y) return PKV_ERR_BAD_VALUE;
  out.reset(PKV_New_DIGEST());
  if (!out) return PKV_ERR_NO_MEMORY;
  if (int error = PKV_Init_DIGEST(out.get(), hash.digest_id)) return error;
  const int block = PKV_Get_DIGEST_Block_Length(hash.digest_id);
  constexpr std::array<uint8_t, 256> zeros{};
  const int held = std::min(block, y->length);
  if (block - held > int(zeros.size())) return PKV_ERR_UNSUPPORTED;
  if (int error = PKV_Update_DIGEST(out.get(), zeros.data(), block - held)) return error;
  return PKV_Update_DIGEST(out.get(), y->octets + (y->length - held), held);
}

int digest_message(const KCDSA_UNIT &key, const Hash &hash, Octets data, Digest &out) noexcept {
  DigestOwner running;
  if (int error = start_digest(key, hash, running)) return error;
  if (int error = PKV_Update_DIGEST(running.get(), data.data(), int(data.size()))) return error;
  return PKV_Final_DIGEST(running.get(), out.data(), nullptr);
}

// r = h(w), w in the octets of p.
int hash_witness(const KcdsaNumbers &numbers, const Hash &hash, const BIGNUM *w, Digest &out) noexcept {
  Wiped<std::array<uint8_t, kMaxKcdsaPOctets>> octets;
  const auto length = int(numbers.p_length);
  if (BN_bn2binpad(w, octets.value.data(), length) != length) return PKV_ERR_FAILED;
  return PKV_DIGEST(hash.digest_id, octets.value.data(), length, out.data(), nullptr);
}

// e = (r xor hz) mod q.
BnOwner combine(const KcdsaNumbers &numbers, Octets r, Octets message, BN_CTX *context) noexcept {
  Digest mixed;
  std::transform(r.begin(), r.end(), message.begin(), mixed.begin(),
                 [](uint8_t a, uint8_t b) { return uint8_t(a ^ b); });
  BnOwner e(BN_bin2bn(mixed.data(), int(r.size()), nullptr));
  return e && BN_nnmod(e.get(), e.get(), numbers.q.get(), context) ? std::move(e) : nullptr;
}

// s = x (k - e) mod q. Taking q - e first keeps everything positive; one Montgomery factor in x cancels the one that
// the product takes away.
bool compute_s(const KcdsaNumbers &numbers, const BIGNUM *x, const BIGNUM *k, const BIGNUM *e, BIGNUM *s,
               BN_CTX *context) noexcept {
  const BnOwner difference(BN_new()), factor(BN_new());
  if (!difference || !factor) return false;
  BN_set_flags(difference.get(), BN_FLG_CONSTTIME);
  BN_set_flags(factor.get(), BN_FLG_CONSTTIME);
  return BN_sub(difference.get(), numbers.q.get(), e) && BN_add(difference.get(), difference.get(), k) &&
         BN_nnmod(difference.get(), difference.get(), numbers.q.get(), context) &&
         BN_to_montgomery(factor.get(), x, numbers.mod_q.get(), context) &&
         BN_mod_mul_montgomery(s, difference.get(), factor.get(), numbers.mod_q.get(), context);
}

// The verifying half: h(y^s g^e mod p) is r.
int verify_digest(const KCDSA_UNIT &key, const Hash &hash, const Digest &message, Octets r, Octets s) noexcept {
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_numbers(key, error);
  if (!numbers) return error;
  if (!numbers->y) return PKV_ERR_BAD_VALUE;
  if (r.size() != hash.kept || s.size() > numbers->q_length) return PKV_ERR_MISMATCH;
  const BnCtxOwner context(BN_CTX_new());
  const BnOwner s_value(BN_bin2bn(s.data(), int(s.size()), nullptr)), w(BN_new());
  if (!context || !s_value || !w) return PKV_ERR_NO_MEMORY;
  if (BN_is_zero(s_value.get()) || BN_ucmp(s_value.get(), numbers->q.get()) >= 0) return PKV_ERR_MISMATCH;
  const BnOwner e = combine(*numbers, r, hash.cut(message), context.get());
  if (!e || !BN_mod_exp2_mont(w.get(), numbers->y.get(), s_value.get(), numbers->g.get(), e.get(), numbers->p.get(),
                              context.get(), numbers->mod_p.get())) {
    return PKV_ERR_NO_MEMORY;
  }
  Digest again;
  if ((error = hash_witness(*numbers, hash, w.get(), again))) return error;
  return std::equal(r.begin(), r.end(), hash.cut(again).begin()) ? 0 : PKV_ERR_MISMATCH;
}

struct Signature {
  Digest r;
  std::array<uint8_t, kMaxKcdsaQOctets> s;
};

// One attempt with one nonce; `zero` tells that s came out as 0 and another is needed.
int sign_once(const KcdsaNumbers &numbers, const Hash &hash, const BIGNUM *x, const Digest &message, Signature &out,
              bool &zero) noexcept {
  int error = 0;
  const BnOwner k = random_exponent(numbers.q.get(), error);
  if (!k) return error;
  const BnCtxOwner context(BN_CTX_new());
  const BnOwner w(BN_new()), s(BN_new());
  if (!context || !w || !s) return PKV_ERR_NO_MEMORY;
  if (!kcdsa_power_secret(numbers, w.get(), numbers.g.get(), k.get(), context.get())) return PKV_ERR_NO_MEMORY;
  Digest value;
  if ((error = hash_witness(numbers, hash, w.get(), value))) return error;
  const Octets r = hash.cut(value);
  const BnOwner e = combine(numbers, r, hash.cut(message), context.get());
  if (!e || !compute_s(numbers, x, k.get(), e.get(), s.get(), context.get())) return PKV_ERR_NO_MEMORY;
  zero = BN_is_zero(s.get());
  std::copy(r.begin(), r.end(), out.r.begin());
  return BN_bn2binpad(s.get(), out.s.data(), int(numbers.q_length)) < 0 ? PKV_ERR_FAILED : 0;
}

int sign_here(const KCDSA_UNIT &key, const Hash &hash, const Digest &message, Signature &out) noexcept {
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_numbers(key, error);
  if (!numbers) return error;
  const BnOwner x = to_bn(key.part->number(PKV_KCDSA_X));
  if (!x) return PKV_ERR_NO_MEMORY;
  BN_set_flags(x.get(), BN_FLG_CONSTTIME);
  for (bool zero = true; zero;) {
    if ((error = sign_once(*numbers, hash, x.get(), message, out, zero))) return error;
  }
  // A fault on the way can give the key away: what does not verify does not leave.
  error = verify_digest(key, hash, message, {out.r.data(), hash.kept}, {out.s.data(), numbers->q_length});
  return error == PKV_ERR_MISMATCH ? PKV_ERR_FAILED : error;
}

int sign_elsewhere(const KCDSA_UNIT &key, const Hash &hash, const Digest &message, size_t s_length,
                   Signature &out) noexcept {
  std::array<uint8_t, PKV_MAX_DIGEST_LENGTH + kMaxKcdsaQOctets> both;
  const auto length = int(hash.kept + s_length);
  int written = length;
  if (int error = key.signer.sign(key.signer.context, PKV_KEY_KCDSA, hash.digest_id, 0, message.data(),
                                  int(hash.length), both.data(), &written)) {
    return error;
  }
  if (written != length) return PKV_ERR_FAILED;
  std::copy_n(both.begin(), hash.kept, out.r.begin());
  std::copy_n(both.begin() + std::ptrdiff_t(hash.kept), s_length, out.s.begin());
  return 0;
}

// The caller's buffers are touched by a whole signature only.
int sign_digest(const KCDSA_UNIT &key, const Hash &hash, const Digest &message, uint8_t *r, uint8_t *s) noexcept {
  Signature made;
  const auto s_length = size_t(key.part->number(PKV_KCDSA_Q)->length);
  if (int error =
          key.signer.sign ? sign_elsewhere(key, hash, message, s_length, made) : sign_here(key, hash, message, made)) {
    return error;
  }
  std::copy_n(made.r.begin(), hash.kept, r);
  std::copy_n(made.s.begin(), s_length, s);
  return 0;
}

// Before anything is hashed: numbers in range, and one to sign with.
int check_key(const KCDSA_UNIT &key, bool sign) noexcept {
  int error = 0;
  const KcdsaNumbers *numbers = kcdsa_numbers(key, error);
  if (!numbers) return error;
  return numbers->y && (!sign || PKV_Is_KCDSA_Private(&key)) ? 0 : PKV_ERR_BAD_VALUE;
}

// Ends the running signature whatever comes of it.
int finish(KCDSA_UNIT &key, Hash &hash, Digest &digest) noexcept {
  const DigestOwner running = std::move(key.signature.digest);
  if (int error = choose_hash(key, key.signature.digest_id, hash)) return error;
  return PKV_Final_DIGEST(running.get(), digest.data(), nullptr);
}

}  // namespace

int PKV_Get_KCDSA_Lengths(const KCDSA_UNIT *key, int *r_length, int *s_length) noexcept {
  if (!key || !r_length || !s_length) return PKV_ERR_NULL;
  Hash hash{};
  if (int error = choose_hash(*key, key->signature.digest ? key->signature.digest_id : 0, hash)) return error;
  *r_length = int(hash.kept);
  *s_length = key->part->number(PKV_KCDSA_Q)->length;
  return 0;
}

int PKV_Init_KCDSA(KCDSA_UNIT *key, int sign) noexcept {
  if (!key) return PKV_ERR_NULL;
  key->signature = {};
  if (int error = check_key(*key, sign != 0)) return error;
  Hash hash{};
  if (int error = choose_hash(*key, 0, hash)) return error;
  DigestOwner digest;
  if (int error = start_digest(*key, hash, digest)) return error;
  key->signature = {std::move(digest), hash.digest_id, sign != 0, false};
  return 0;
}

int PKV_Set_KCDSA_DIGEST(KCDSA_UNIT *key, int digest_id) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (!key->signature.digest || key->signature.updated) return PKV_ERR_FAILED;
  if (!is_digest(digest_id)) return PKV_ERR_UNSUPPORTED;
  Hash hash{};
  if (int error = choose_hash(*key, digest_id, hash)) return error;
  DigestOwner digest;
  if (int error = start_digest(*key, hash, digest)) return error;
  key->signature.digest = std::move(digest);
  key->signature.digest_id = digest_id;
  return 0;
}

int PKV_Update_KCDSA(KCDSA_UNIT *key, const unsigned char *data, int length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (!key->signature.digest) return PKV_ERR_FAILED;
  if (int error = check_octets(data, length)) return error;
  key->signature.updated = true;
  return PKV_Update_DIGEST(key->signature.digest.get(), data, length);
}

int PKV_Final_KCDSA(KCDSA_UNIT *key, unsigned char *r, unsigned char *s) noexcept {
  if (!key || !r || !s) return PKV_ERR_NULL;
  if (!key->signature.digest) return PKV_ERR_FAILED;
  Hash hash{};
  Digest digest;
  if (int error = finish(*key, hash, digest)) return error;
  if (key->signature.sign) return sign_digest(*key, hash, digest, r, s);
  return verify_digest(*key, hash, digest, {r, hash.kept}, {s, size_t(key->part->number(PKV_KCDSA_Q)->length)});
}

int PKV_Verify_KCDSA(KCDSA_UNIT *key, const unsigned char *r, int r_length, const unsigned char *s,
                     int s_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(r, r_length)) return error;
  if (int error = check_octets(s, s_length)) return error;
  if (!key->signature.digest || key->signature.sign) return PKV_ERR_FAILED;
  Hash hash{};
  Digest digest;
  if (int error = finish(*key, hash, digest)) return error;
  return verify_digest(*key, hash, digest, {r, size_t(r_length)}, {s, size_t(s_length)});
}

int PKV_KCDSA_SIGN(const KCDSA_UNIT *key, int digest_id, const unsigned char *data, int length, unsigned char *r,
                   unsigned char *s) noexcept {
  if (!key || !r || !s) return PKV_ERR_NULL;
  if (int error = check_octets(data, length)) return error;
  if (int error = check_key(*key, true)) return error;
  Hash hash{};
  if (int error = choose_hash(*key, digest_id, hash)) return error;
  Digest digest;
  if (int error = digest_message(*key, hash, {data, size_t(length)}, digest)) return error;
  return sign_digest(*key, hash, digest, r, s);
}

int PKV_KCDSA_VERIFY(const KCDSA_UNIT *key, int digest_id, const unsigned char *data, int length,
                     const unsigned char *r, int r_length, const unsigned char *s, int s_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(data, length)) return error;
  if (int error = check_octets(r, r_length)) return error;
  if (int error = check_octets(s, s_length)) return error;
  if (int error = check_key(*key, false)) return error;
  Hash hash{};
  if (int error = choose_hash(*key, digest_id, hash)) return error;
  Digest digest;
  if (int error = digest_message(*key, hash, {data, size_t(length)}, digest)) return error;
  return verify_digest(*key, hash, digest, {r, size_t(r_length)}, {s, size_t(s_length)});
}
