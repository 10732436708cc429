// Keys under keys: RFC 3394 over any cipher of 16-octet blocks, RFC 3217 for triple DES.
#include <algorithm>
#include <array>

#include "provider/internal/arguments.h"
#include "provider/internal/cipher.h"
#include "provider/internal/memory.h"

namespace velcrypto {
namespace {

constexpr int kSemiblock = 8, kAesBlock = 2 * kSemiblock;
constexpr int kMaxKey = 4096;
constexpr uint8_t kAesIv = 0xA6, kRounds = 6;
constexpr std::array<uint8_t, kSemiblock> kDesOuterIv = {0x4A, 0xDD, 0xA2, 0x2C, 0x79, 0xE8, 0x21, 0x05};
constexpr int kChecksum = 8, kDesOverhead = kSemiblock + kChecksum;

using UnitOwner = owned<BLOCK_CIPHER_UNIT, PKV_Free_BLOCK_CIPHER>;

// A block of the heap that is wiped.
class Scratch {
 public:
  explicit Scratch(int size) noexcept
      : data_(static_cast<uint8_t *>(PKV_Malloc(size_t(size), __FILE__, __LINE__))), size_(size) {}
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;
  ~Scratch() {
    PKV_Wipe(data_, data_ ? size_t(size_) : 0);
    PKV_Free(data_, __FILE__, __LINE__);
  }
  uint8_t *data() const noexcept { return data_; }

 private:
  uint8_t *data_;
  int size_;
};

struct WrapArguments {
  int cipher_id;
  const uint8_t *kek;
  int kek_length;
};

// Starts a cipher without padding. An ECB unit goes on for as many blocks as wanted.
int start(BLOCK_CIPHER_UNIT *unit, const WrapArguments &with, int mode, const uint8_t *iv, bool encrypt) noexcept {
  if (!unit) return PKV_ERR_NO_MEMORY;
  const int id = (with.cipher_id & ~0xFF) | mode;
  const int iv_length = iv ? kSemiblock : 0;
  if (int code = PKV_Init_BLOCK_CIPHER(unit, id, with.kek, with.kek_length, iv, iv_length, encrypt)) return code;
  return PKV_Set_BLOCK_CIPHER_Padding(unit, 0);
}

int run_block(BLOCK_CIPHER_UNIT *unit, uint8_t *block) noexcept {
  std::array<uint8_t, kAesBlock> in;
  std::copy_n(block, kAesBlock, in.begin());
  int length = kAesBlock;
  const int code = PKV_Update_BLOCK_CIPHER(unit, in.data(), kAesBlock, block, &length);
  PKV_Wipe(in.data(), in.size());
  return code ? code : length == kAesBlock ? 0 : PKV_ERR_FAILED;
}

void add_counter(uint8_t *a, unsigned counter) noexcept {
  for (int i = 0; i < 4; ++i) a[kSemiblock - 1 - i] ^= uint8_t(counter >> (8 * i));
}

// RFC 3394 2.2.1: `out` holds A and then the n semiblocks of the key.
int wrap_semiblocks(BLOCK_CIPHER_UNIT *unit, uint8_t *out, unsigned n) noexcept {
  Wiped<std::array<uint8_t, kAesBlock>> block;
  std::fill_n(out, kSemiblock, kAesIv);
  for (unsigned j = 0; j < kRounds; ++j)
    for (unsigned i = 1; i <= n; ++i) {
      std::copy_n(out, kSemiblock, block.value.begin());
      std::copy_n(out + size_t(i) * kSemiblock, kSemiblock, block.value.begin() + kSemiblock);
      if (int code = run_block(unit, block.value.data())) return code;
      std::copy_n(block.value.begin(), kSemiblock, out);
      add_counter(out, n * j + i);
      std::copy_n(block.value.begin() + kSemiblock, kSemiblock, out + size_t(i) * kSemiblock);
    }
  return 0;
}

// RFC 3394 2.2.2.
int unwrap_semiblocks(BLOCK_CIPHER_UNIT *unit, uint8_t *out, unsigned n) noexcept {
  Wiped<std::array<uint8_t, kAesBlock>> block;
  for (unsigned j = kRounds; j-- > 0;)
    for (unsigned i = n; i >= 1; --i) {
      std::copy_n(out, kSemiblock, block.value.begin());
      add_counter(block.value.data(), n * j + i);
      std::copy_n(out + size_t(i) * kSemiblock, kSemiblock, block.value.begin() + kSemiblock);
      if (int code = run_block(unit, block.value.data())) return code;
      std::copy_n(block.value.begin(), kSemiblock, out);
      std::copy_n(block.value.begin() + kSemiblock, kSemiblock, out + size_t(i) * kSemiblock);
    }
  return 0;
}

int wrap_aes(const WrapArguments &with, const uint8_t *key, int key_length, uint8_t *out) noexcept {
  const Scratch work(key_length + kSemiblock);
  const UnitOwner unit(PKV_New_BLOCK_CIPHER());
  if (!work.data()) return PKV_ERR_NO_MEMORY;
  if (int code = start(unit.get(), with, PKV_MODE_ECB, nullptr, true)) return code;
  std::copy_n(key, key_length, work.data() + kSemiblock);
  if (int code = wrap_semiblocks(unit.get(), work.data(), unsigned(key_length / kSemiblock))) return code;
  std::copy_n(work.data(), key_length + kSemiblock, out);
  return 0;
}

int unwrap_aes(const WrapArguments &with, const uint8_t *wrapped, int length, uint8_t *out) noexcept {
  const Scratch work(length);
  const UnitOwner unit(PKV_New_BLOCK_CIPHER());
  if (!work.data()) return PKV_ERR_NO_MEMORY;
  if (int code = start(unit.get(), with, PKV_MODE_ECB, nullptr, false)) return code;
  std::copy_n(wrapped, length, work.data());
  if (int code = unwrap_semiblocks(unit.get(), work.data(), unsigned(length / kSemiblock - 1))) return code;
  std::array<uint8_t, kSemiblock> expected;
  expected.fill(kAesIv);
  if (!PKV_Equal_Secret(work.data(), expected.data(), expected.size())) return PKV_ERR_FAILED;
  std::copy_n(work.data() + kSemiblock, length - kSemiblock, out);
  return 0;
}

// CBC without padding, from one buffer to another.
int run_cbc(const WrapArguments &with, const uint8_t *iv, bool encrypt, const uint8_t *in, int length,
            uint8_t *out) noexcept {
  const UnitOwner unit(PKV_New_BLOCK_CIPHER());
  if (int code = start(unit.get(), with, PKV_MODE_CBC, iv, encrypt)) return code;
  int written = length;
  if (int code = PKV_Update_BLOCK_CIPHER(unit.get(), in, length, out, &written)) return code;
  return written == length ? 0 : PKV_ERR_FAILED;
}

int checksum_of(const uint8_t *key, int length, uint8_t *out) noexcept {
  Wiped<std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>> digest;
  int written = PKV_MAX_DIGEST_LENGTH;
  if (int code = PKV_DIGEST(PKV_DIGEST_SHA1, key, length, digest.value.data(), &written)) return code;
  std::copy_n(digest.value.begin(), kChecksum, out);
  return 0;
}

// RFC 3217 3.1: IV || CBC(key || checksum), turned round, and encrypted again.
int wrap_des(const WrapArguments &with, const uint8_t *key, int key_length, uint8_t *out) noexcept {
  const int body = key_length + kChecksum, total = body + kSemiblock;
  const Scratch plain(body), inner(total);
  if (!plain.data() || !inner.data()) return PKV_ERR_NO_MEMORY;
  std::copy_n(key, key_length, plain.data());
  if (int code = checksum_of(key, key_length, plain.data() + key_length)) return code;
  if (int code = PKV_Rand_Bytes(inner.data(), kSemiblock)) return code;
  if (int code = run_cbc(with, inner.data(), true, plain.data(), body, inner.data() + kSemiblock)) return code;
  std::reverse(inner.data(), inner.data() + total);
  return run_cbc(with, kDesOuterIv.data(), true, inner.data(), total, out);
}

// RFC 3217 3.2.
int unwrap_des(const WrapArguments &with, const uint8_t *wrapped, int length, uint8_t *out) noexcept {
  const int body = length - kSemiblock, key_length = body - kChecksum;
  const Scratch inner(length), plain(body);
  if (!inner.data() || !plain.data()) return PKV_ERR_NO_MEMORY;
  if (int code = run_cbc(with, kDesOuterIv.data(), false, wrapped, length, inner.data())) return code;
  std::reverse(inner.data(), inner.data() + length);
  if (int code = run_cbc(with, inner.data(), false, inner.data() + kSemiblock, body, plain.data())) return code;
  std::array<uint8_t, kChecksum> checksum;
  if (int code = checksum_of(plain.data(), key_length, checksum.data())) return code;
  if (!PKV_Equal_Secret(checksum.data(), plain.data() + key_length, kChecksum)) return PKV_ERR_FAILED;
  std::copy_n(plain.data(), key_length, out);
  return 0;
}

// What wrapping adds under a cipher; 0 for one that wraps nothing.
int overhead_of(int cipher_id) noexcept {
  const int id = cipher_id & ~0xFF;
  if (PKV_Get_BLOCK_CIPHER_Block_Length(id) == kAesBlock) return kSemiblock;
  return id == 0x02010200 ? kDesOverhead : 0;
}

bool is_key_length(int length, int overhead) noexcept {
  const int least = overhead == kSemiblock ? 2 * kSemiblock : kSemiblock;
  return length >= least && length <= kMaxKey && length % kSemiblock == 0;
}

}  // namespace
}  // namespace velcrypto

using namespace velcrypto;

int PKV_Wrap_KEY(int cipher_id, const unsigned char *kek, int kek_length, const unsigned char *key, int key_length,
                 unsigned char *out, int *out_length) noexcept {
  const int overhead = overhead_of(cipher_id);
  if (!overhead) return PKV_ERR_UNSUPPORTED;
  if (!kek || !key) return PKV_ERR_NULL;
  if (!is_key_length(key_length, overhead)) return PKV_ERR_BAD_VALUE;
  if (int code = check_capacity(out, out_length, size_t(key_length + overhead))) return code;
  const WrapArguments with{cipher_id, kek, kek_length};
  const int code = overhead == kSemiblock ? wrap_aes(with, key, key_length, out) : wrap_des(with, key, key_length, out);
  if (!code) *out_length = key_length + overhead;
  return code;
}

int PKV_Unwrap_KEY(int cipher_id, const unsigned char *kek, int kek_length, const unsigned char *wrapped,
                   int wrapped_length, unsigned char *out, int *out_length) noexcept {
  const int overhead = overhead_of(cipher_id);
  if (!overhead) return PKV_ERR_UNSUPPORTED;
  if (!kek || !wrapped) return PKV_ERR_NULL;
  if (wrapped_length < overhead || !is_key_length(wrapped_length - overhead, overhead)) return PKV_ERR_BAD_VALUE;
  if (int code = check_capacity(out, out_length, size_t(wrapped_length - overhead))) return code;
  const WrapArguments with{cipher_id, kek, kek_length};
  const int code = overhead == kSemiblock ? unwrap_aes(with, wrapped, wrapped_length, out)
                                          : unwrap_des(with, wrapped, wrapped_length, out);
  if (!code) *out_length = wrapped_length - overhead;
  return code;
}
