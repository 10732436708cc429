// Block ciphers as the interface has them: padding, and messages in pieces.
//
// The engines see whole blocks only. What does not fill a block waits in the unit, and a padded decryption holds back
// the last whole block too, since it may be the one with the padding.
#include <algorithm>
#include <cstring>

#include "provider/internal/arguments.h"
#include "provider/internal/cipher.h"
#include "provider/internal/constant_time.h"

struct pkv_block_cipher {
  const velcrypto::CipherInfo *info = nullptr;  // of the last Init that succeeded
  int mode = 0;
  bool encrypt = false;
  bool padding = true;
  bool running = false;
  velcrypto::LibcryptoCipher libcrypto;
  velcrypto::Rc5 rc5;
  int key_length = 0;
  int iv_length = 0;
  size_t waiting_length = 0;
  velcrypto::Wiped<std::array<uint8_t, velcrypto::kMaxCipherKey>> key;
  velcrypto::Wiped<std::array<uint8_t, velcrypto::kMaxCipherBlock>> iv;
  velcrypto::Wiped<std::array<uint8_t, velcrypto::kMaxCipherBlock>> waiting;

  bool is_padded() const noexcept { return padding && !velcrypto::is_stream_mode(mode); }
};

namespace velcrypto {
namespace {

bool process(BLOCK_CIPHER_UNIT &unit, std::span<const uint8_t> in, uint8_t *out) noexcept {
  if (in.empty()) return true;
  return unit.info->name ? unit.libcrypto.process(in, out) : unit.rc5.process(in, out);
}

int iv_length_of(const CipherInfo &info, int mode) noexcept { return mode == PKV_MODE_ECB ? 0 : info.block_length; }

int check_key_and_iv(const CipherInfo &info, int mode, const uint8_t *key, int key_length, const uint8_t *iv,
                     int iv_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int code = check_octets(iv, iv_length)) return code;
  if (key_length < info.key_min || key_length > info.key_max) return PKV_ERR_BAD_VALUE;
  return iv && iv_length != iv_length_of(info, mode) ? PKV_ERR_BAD_VALUE : 0;
}

// The key and the IV may be those that this unit has lent.
void keep_key_and_iv(BLOCK_CIPHER_UNIT &unit, const uint8_t *key, int key_length, const uint8_t *iv) noexcept {
  auto &kept_key = unit.key.value;
  std::memmove(kept_key.data(), key, size_t(key_length));
  PKV_Wipe(kept_key.data() + key_length, kept_key.size() - size_t(key_length));
  unit.key_length = key_length;
  unit.iv_length = iv_length_of(*unit.info, unit.mode);
  if (iv) std::memmove(unit.iv.value.data(), iv, size_t(unit.iv_length));
  if (!iv) unit.iv.value = {};
  PKV_Wipe(&unit.waiting, sizeof unit.waiting);
  unit.waiting_length = 0;
}

int start_engine(BLOCK_CIPHER_UNIT &unit) noexcept {
  const std::span<const uint8_t> key(unit.key.value.data(), size_t(unit.key_length));
  const CipherStart with{unit.info, unit.mode, key, unit.iv.value.data(), unit.encrypt};
  return unit.info->name ? unit.libcrypto.start(with) : unit.rc5.start(with);
}

// How many octets an Update of this many writes.
size_t update_length(const BLOCK_CIPHER_UNIT &unit, size_t in_length) noexcept {
  if (is_stream_mode(unit.mode)) return in_length;
  const size_t block = unit.info->block_length, total = unit.waiting_length + in_length;
  const size_t whole = total - total % block;
  const bool holds_back = !unit.encrypt && unit.padding && whole && whole == total;
  return holds_back ? whole - block : whole;
}

void wait(BLOCK_CIPHER_UNIT &unit, std::span<const uint8_t> in) noexcept {
  std::copy(in.begin(), in.end(), unit.waiting.value.begin() + ptrdiff_t(unit.waiting_length));
  unit.waiting_length += in.size();
}

// Writes `length` octets, whole blocks, first of what waits and then of `in`; the rest waits.
bool process_blocks(BLOCK_CIPHER_UNIT &unit, std::span<const uint8_t> in, uint8_t *out, size_t length) noexcept {
  const size_t block = unit.info->block_length;
  if (length && unit.waiting_length) {
    const size_t taken = block - unit.waiting_length;
    wait(unit, in.first(taken));
    unit.waiting_length = 0;
    if (!process(unit, {unit.waiting.value.data(), block}, out)) return false;
    in = in.subspan(taken);
    out += block;
    length -= block;
  }
  if (!process(unit, in.first(length), out)) return false;
  wait(unit, in.subspan(length));
  return true;
}

int final_encrypt(BLOCK_CIPHER_UNIT &unit, uint8_t *out, size_t *written) noexcept {
  const size_t block = unit.info->block_length, missing = block - unit.waiting_length;
  std::fill_n(unit.waiting.value.begin() + ptrdiff_t(unit.waiting_length), missing, uint8_t(missing));
  *written = block;
  return process(unit, {unit.waiting.value.data(), block}, out) ? 0 : PKV_ERR_FAILED;
}

// The message octets in the last block, whose padding is `good` or not; every octet is looked at either way.
size_t unpad(std::span<const uint8_t> last, Mask *good) noexcept {
  const size_t count = last.back();
  Mask bad = is_zero_mask(count) | is_below_mask(last.size(), count);
  for (size_t i = 0; i < last.size(); ++i) {
    bad |= is_below_mask(i, count) & ~is_equal_mask(last[last.size() - 1 - i], count);
  }
  *good = ~bad;
  return last.size() - (count & *good);
}

int final_decrypt(BLOCK_CIPHER_UNIT &unit, uint8_t *out, size_t *written) noexcept {
  const size_t block = unit.info->block_length;
  Wiped<std::array<uint8_t, kMaxCipherBlock>> last;
  if (unit.waiting_length != block) return PKV_ERR_FAILED;
  if (!process(unit, {unit.waiting.value.data(), block}, last.value.data())) return PKV_ERR_FAILED;
  Mask good = 0;
  const size_t length = unpad({last.value.data(), block}, &good);
  if (!good) return PKV_ERR_FAILED;
  std::copy_n(last.value.begin(), length, out);
  *written = length;
  return 0;
}

// Without padding nothing may be left but a block that was held back before the padding was switched off.
int final_unpadded(BLOCK_CIPHER_UNIT &unit, uint8_t *out, size_t *written) noexcept {
  const size_t length = unit.waiting_length;
  if (length % unit.info->block_length) return PKV_ERR_FAILED;
  *written = length;
  return process(unit, {unit.waiting.value.data(), length}, out) ? 0 : PKV_ERR_FAILED;
}

size_t final_capacity(const BLOCK_CIPHER_UNIT &unit) noexcept {
  return unit.is_padded() ? unit.info->block_length
                          : unit.waiting_length - unit.waiting_length % unit.info->block_length;
}

int finish(BLOCK_CIPHER_UNIT &unit, uint8_t *out, size_t *written) noexcept {
  if (!unit.is_padded()) return final_unpadded(unit, out, written);
  return unit.encrypt ? final_encrypt(unit, out, written) : final_decrypt(unit, out, written);
}

// A whole message through a unit that was just started; `out` has room for all that comes.
int run_message(BLOCK_CIPHER_UNIT &unit, std::span<const uint8_t> in, uint8_t *out, size_t *written) noexcept {
  const size_t first = update_length(unit, in.size());
  const bool streams = is_stream_mode(unit.mode);
  if (streams ? !process(unit, in, out) : !process_blocks(unit, in, out, first)) return PKV_ERR_FAILED;
  size_t last = 0;
  if (int code = finish(unit, out + first, &last)) return code;
  *written = first + last;
  return 0;
}

int encrypt_message(BLOCK_CIPHER_UNIT &unit, std::span<const uint8_t> in, uint8_t *out, int *out_length) noexcept {
  const size_t block = unit.info->block_length;
  const size_t needed = unit.is_padded() ? in.size() / block * block + block : in.size();
  if (int code = check_capacity(out, out_length, needed)) return code;
  size_t written = 0;
  if (int code = run_message(unit, in, out, &written)) return code;
  *out_length = int(written);
  return 0;
}

// A padded message is decrypted aside: the padding, at its end, decides whether anything is written.
int decrypt_message(BLOCK_CIPHER_UNIT &unit, std::span<const uint8_t> in, uint8_t *out, int *out_length) noexcept {
  if (int code = check_capacity(out, out_length, in.size())) return code;
  size_t written = 0;
  SecretBuffer aside;
  if (unit.is_padded() && !aside.resize(in.size())) return PKV_ERR_NO_MEMORY;
  if (int code = run_message(unit, in, aside ? aside.data() : out, &written)) return code;
  if (aside) std::copy_n(aside.data(), written, out);
  *out_length = int(written);
  return 0;
}

}  // namespace
}  // namespace velcrypto

using namespace velcrypto;

int PKV_Get_BLOCK_CIPHER_Key_Length(int cipher_id) noexcept {
  const CipherInfo *info = find_cipher(cipher_id);
  return info ? info->key_length : 0;
}

int PKV_Get_BLOCK_CIPHER_Block_Length(int cipher_id) noexcept {
  const CipherInfo *info = find_cipher(cipher_id);
  return info ? info->block_length : 0;
}

int PKV_Get_BLOCK_CIPHER_IV_Length(int cipher_id) noexcept {
  const CipherInfo *info = find_cipher(cipher_id);
  return info ? iv_length_of(*info, cipher_mode(cipher_id)) : 0;
}

int PKV_Encrypt_BLOCK_CIPHER(int cipher_id, const unsigned char *key, int key_length, const unsigned char *iv,
                             int iv_length, const unsigned char *in, int in_length, unsigned char *out,
                             int *out_length) noexcept {
  if (int code = check_octets(in, in_length)) return code;
  BLOCK_CIPHER_UNIT unit;
  if (int code = PKV_Init_BLOCK_CIPHER(&unit, cipher_id, key, key_length, iv, iv_length, 1)) return code;
  return encrypt_message(unit, {in, size_t(in_length)}, out, out_length);
}

int PKV_Decrypt_BLOCK_CIPHER(int cipher_id, const unsigned char *key, int key_length, const unsigned char *iv,
                             int iv_length, const unsigned char *in, int in_length, unsigned char *out,
                             int *out_length) noexcept {
  if (int code = check_octets(in, in_length)) return code;
  BLOCK_CIPHER_UNIT unit;
  if (int code = PKV_Init_BLOCK_CIPHER(&unit, cipher_id, key, key_length, iv, iv_length, 0)) return code;
  return decrypt_message(unit, {in, size_t(in_length)}, out, out_length);
}

BLOCK_CIPHER_UNIT *PKV_New_BLOCK_CIPHER(void) noexcept { return make<BLOCK_CIPHER_UNIT>(); }

void PKV_Free_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit) noexcept { destroy(unit); }

int PKV_Init_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, int cipher_id, const unsigned char *key, int key_length,
                          const unsigned char *iv, int iv_length, int encrypt) noexcept {
  if (!unit) return PKV_ERR_NULL;
  unit->running = false;
  const CipherInfo *info = find_cipher(cipher_id);
  if (!info) return PKV_ERR_UNSUPPORTED;
  const int mode = cipher_mode(cipher_id);
  if (int code = check_key_and_iv(*info, mode, key, key_length, iv, iv_length)) return code;
  unit->info = info;
  unit->mode = mode;
  unit->encrypt = encrypt;
  unit->padding = true;
  keep_key_and_iv(*unit, key, key_length, iv);
  const int code = start_engine(*unit);
  unit->running = code == 0;
  return code;
}

int PKV_Set_BLOCK_CIPHER_Padding(BLOCK_CIPHER_UNIT *unit, int padding) noexcept {
  if (!unit) return PKV_ERR_NULL;
  if (!unit->running) return PKV_ERR_FAILED;
  unit->padding = padding;
  return 0;
}

int PKV_Update_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, const unsigned char *in, int in_length, unsigned char *out,
                            int *out_length) noexcept {
  if (!unit) return PKV_ERR_NULL;
  if (int code = check_octets(in, in_length)) return code;
  if (!unit->running) return PKV_ERR_FAILED;
  const std::span octets(in, size_t(in_length));
  const size_t length = update_length(*unit, octets.size());
  if (int code = check_capacity(out, out_length, length)) return code;
  unit->running = is_stream_mode(unit->mode) ? process(*unit, octets, out) : process_blocks(*unit, octets, out, length);
  if (!unit->running) return PKV_ERR_FAILED;
  *out_length = int(length);
  return 0;
}

int PKV_Final_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, unsigned char *out, int *out_length) noexcept {
  if (!unit) return PKV_ERR_NULL;
  if (!unit->running) return PKV_ERR_FAILED;
  if (int code = check_capacity(out, out_length, final_capacity(*unit))) return code;
  unit->running = false;
  size_t written = 0;
  if (int code = finish(*unit, out, &written)) return code;
  *out_length = int(written);
  return 0;
}

const unsigned char *PKV_Get_BLOCK_CIPHER_Key(const BLOCK_CIPHER_UNIT *unit, int *length) noexcept {
  const bool known = unit && unit->key_length;
  if (length) *length = known ? unit->key_length : 0;
  return known ? unit->key.value.data() : nullptr;
}

const unsigned char *PKV_Get_BLOCK_CIPHER_IV(const BLOCK_CIPHER_UNIT *unit, int *length) noexcept {
  const bool known = unit && unit->iv_length;
  if (length) *length = known ? unit->iv_length : 0;
  return known ? unit->iv.value.data() : nullptr;
}
