// The schemes by themselves: octets in, octets out.
#include "keys/internal/pbe.h"

namespace velpki {

namespace {

// What every scheme is called with.
struct Call {
  unsigned char *out;
  int *out_length;
  const char *password;
  int password_length;
  const unsigned char *salt;
  int salt_length;
  int iterations;
  const unsigned char *in;
  int in_length;
  int cipher_id;

  PasswordWork work() const noexcept {
    return {octets_of(reinterpret_cast<const unsigned char *>(password), password_length), octets_of(salt, salt_length),
            iterations};
  }
};

// 0, or the reason that is wrong with a call.
int check(const Call &call) noexcept {
  if (!call.out || !call.out_length || !call.password || !call.salt || call.iterations < 1) return kNullArgument;
  if (call.in_length > 0 && !call.in) return kNullArgument;
  if (call.password_length < 0 || call.salt_length < 0 || call.in_length < 0) return kBadValue;
  const int block = PKV_Get_BLOCK_CIPHER_Block_Length(call.cipher_id);
  return block && *call.out_length - block >= call.in_length ? 0 : kBadValue;
}

int run(Direction direction, const Call &call, int cipher_id, const KeyAndIv &with) noexcept {
  return run_cipher(direction, cipher_id, with, octets_of(call.in, call.in_length), call.out, call.out_length);
}

int run_pbes1(Direction direction, const Call &call, int digest_id, int function) noexcept {
  if (const int reason = check(call)) return fail(function, reason);
  KeyAndIv key;
  if (const int code = derive_pbes1(call.work(), call.cipher_id, digest_id, function, key)) return code;
  return run(direction, call, call.cipher_id, key);
}

constexpr int kCbcBit = 0x20;

int run_kisa(Direction direction, const Call &call, int digest_id, int iv_mode, int function) noexcept {
  if (const int reason = check(call)) return fail(function, reason);
  KeyAndIv key;
  if (const int code = derive_kisa(call.work(), call.cipher_id, digest_id, iv_mode, function, key)) return code;
  return run(direction, call, call.cipher_id | kCbcBit, key);
}

int run_gpki(Direction direction, const Call &call, int function) noexcept {
  if (const int reason = check(call)) return fail(function, reason);
  KeyAndIv key;
  if (const int code = derive_gpki(call.work(), call.cipher_id, function, key)) return code;
  return run(direction, call, call.cipher_id | kCbcBit, key);
}

// The IV of PBES2 into the key: the caller's, or for encryption a new one.
int choose_iv(Direction direction, const Call &call, const unsigned char *iv, int iv_length, KeyAndIv &key) noexcept {
  key.iv_length = PKV_Get_BLOCK_CIPHER_IV_Length(call.cipher_id);
  if (direction == Direction::encrypt && iv_length < 1) return PKV_Rand_Bytes(key.iv, key.iv_length);
  if (iv_length != key.iv_length) return PKV_ERR_BAD_VALUE;
  copy_octets(key.iv, octets_of(iv, iv_length));
  return 0;
}

int run_pbes2(Direction direction, const Call &call, int digest_id, unsigned char *iv, int *iv_length,
              int function) noexcept {
  if (!iv || !iv_length) return fail(function, kNullArgument);
  if (const int reason = check(call)) return fail(function, reason);
  KeyAndIv key;
  if (const int code = choose_iv(direction, call, iv, *iv_length, key)) return fail(function, code);
  if (const int code = derive_pbes2(call.work(), call.cipher_id, digest_id, 0, function, key)) return code;
  if (const int code = run(direction, call, call.cipher_id, key)) return code;
  copy_octets(iv, Octets(key.iv).first(size_t(key.iv_length)));
  *iv_length = key.iv_length;
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int encrypt_PBES1(unsigned char *out, int *out_length, const char *password, int password_length,
                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in, int in_length,
                  int cipher_id, int digest_id) noexcept {
  return run_pbes1(
      Direction::encrypt,
      {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id}, digest_id,
      F_ENCRYPT_PBES1);
}
int decrypt_PBES1(unsigned char *out, int *out_length, const char *password, int password_length,
                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in, int in_length,
                  int cipher_id, int digest_id) noexcept {
  return run_pbes1(
      Direction::decrypt,
      {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id}, digest_id,
      F_DECRYPT_PBES1);
}
int encrypt_PBES1_KISA(unsigned char *out, int *out_length, const char *password, int password_length,
                       const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                       int in_length, int cipher_id, int digest_id, int iv_mode) noexcept {
  return run_kisa(Direction::encrypt,
                  {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id},
                  digest_id, iv_mode, F_ENC_PBES1_KISA);
}
int decrypt_PBES1_KISA(unsigned char *out, int *out_length, const char *password, int password_length,
                       const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                       int in_length, int cipher_id, int digest_id, int iv_mode) noexcept {
  return run_kisa(Direction::decrypt,
                  {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id},
                  digest_id, iv_mode, F_DEC_PBES1_KISA);
}
int encrypt_PBES1_GPKI(unsigned char *out, int *out_length, const char *password, int password_length,
                       const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                       int in_length, int cipher_id) noexcept {
  return run_gpki(Direction::encrypt,
                  {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id},
                  F_ENC_PBES1_GPKI);
}
int decrypt_PBES1_GPKI(unsigned char *out, int *out_length, const char *password, int password_length,
                       const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                       int in_length, int cipher_id) noexcept {
  return run_gpki(Direction::decrypt,
                  {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id},
                  F_DEC_PBES1_GPKI);
}
int encrypt_PBES2(unsigned char *out, int *out_length, const char *password, int password_length,
                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in, int in_length,
                  int cipher_id, int digest_id, unsigned char *iv, int *iv_length) noexcept {
  return run_pbes2(
      Direction::encrypt,
      {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id}, digest_id,
      iv, iv_length, F_ENCRYPT_PBES2);
}
int decrypt_PBES2(unsigned char *out, int *out_length, const char *password, int password_length,
                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in, int in_length,
                  int cipher_id, int digest_id, unsigned char *iv, int *iv_length) noexcept {
  return run_pbes2(
      Direction::decrypt,
      {out, out_length, password, password_length, salt, salt_length, iterations, in, in_length, cipher_id}, digest_id,
      iv, iv_length, F_DECRYPT_PBES2);
}
