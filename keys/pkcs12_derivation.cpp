// The key derivation of PKCS#12 (RFC 7292 B.2), and passwords in its form.
#include <velpki/convert.h>

#include <algorithm>
#include <array>

#include "keys/internal/pbe.h"

namespace velpki {

namespace {

constexpr size_t kMaxBlock = 128;
using Digest = std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>;

constexpr size_t round_up(size_t length, size_t block) noexcept { return (length + block - 1) / block * block; }

// Fills `out` with copies of `from`, the last one cut off.
void repeat(Octets from, std::span<uint8_t> out) noexcept {
  for (size_t at = 0; at < out.size() && !from.empty(); at += from.size()) {
    copy_octets(out.data() + at, from.first(std::min(from.size(), out.size() - at)));
  }
}

// block = (block + addend + 1) mod 2^(8 length)
void add_and_one(uint8_t *block, const uint8_t *addend, size_t length) noexcept {
  unsigned carry = 1;
  for (size_t i = length; i-- > 0; carry >>= 8) {
    carry += unsigned(block[i]) + addend[i];
    block[i] = uint8_t(carry);
  }
}

// The two strings that are digested: D, and I = salt and password in whole blocks.
struct Input {
  Input(const PasswordWork &work, int id, size_t block) noexcept
      : block(block),
        salt_size(round_up(work.salt.size(), block)),
        size(salt_size + round_up(work.password.size(), block)),
        octets(size ? size : 1) {
    diversifier.fill(uint8_t(id));
    if (!octets) return;
    repeat(work.salt, {octets.data(), salt_size});
    repeat(work.password, {octets.data() + salt_size, size - salt_size});
  }
  size_t block, salt_size, size;
  std::array<uint8_t, kMaxBlock> diversifier;
  SecretOctets octets;
};

int digest_input(const Input &input, DIGEST_UNIT *unit, int digest_id, uint8_t *out) noexcept {
  if (const int code = PKV_Init_DIGEST(unit, digest_id)) return code;
  if (const int code = PKV_Update_DIGEST(unit, input.diversifier.data(), int(input.block))) return code;
  if (const int code = PKV_Update_DIGEST(unit, input.octets.data(), int(input.size))) return code;
  return PKV_Final_DIGEST(unit, out, nullptr);
}

// Makes the input of the next digest.
void advance(Input &input, Octets digest) noexcept {
  std::array<uint8_t, kMaxBlock> addend;
  const WipeAtEnd wipe(addend.data(), addend.size());
  repeat(digest, {addend.data(), input.block});
  for (size_t at = 0; at < input.size; at += input.block) {
    add_and_one(input.octets.data() + at, addend.data(), input.block);
  }
}

}  // namespace

int derive_pkcs12(const PasswordWork &work, int id, int digest_id, std::span<uint8_t> out) noexcept {
  const size_t length = size_t(PKV_Get_DIGEST_Length(digest_id));
  const size_t block = size_t(PKV_Get_DIGEST_Block_Length(digest_id));
  if (!length || digest_id & PKV_HMAC_FLAG) return PKV_ERR_UNSUPPORTED;
  if (work.iterations < 1 || work.salt.size() + work.password.size() > INT_MAX - 2 * kMaxBlock) {
    return PKV_ERR_BAD_VALUE;
  }
  Input input(work, id, block);
  const owned<DIGEST_UNIT> unit(PKV_New_DIGEST());
  if (!unit || !input.octets) return PKV_ERR_NO_MEMORY;
  Digest value;
  const WipeAtEnd wipe(value.data(), value.size());
  for (;;) {
    if (const int code = digest_input(input, unit.get(), digest_id, value.data())) return code;
    if (const int code = PKV_Repeat_DIGEST(digest_id, value.data(), work.iterations - 1)) return code;
    const size_t taken = std::min(out.size(), length);
    copy_octets(out.data(), Octets(value).first(taken));
    out = out.subspan(taken);
    if (out.empty()) return 0;
    advance(input, Octets(value).first(length));
  }
}

namespace {

int set_utf8(const char *password, int length, owned<uint8_t> &block, size_t &size) noexcept {
  unsigned char *converted = nullptr;
  const int written = utf8ToUnicode(password, length, &converted);
  if (written < 0) return PKV_ERR_BAD_VALUE;
  block.reset(converted);
  size = size_t(written) + 2;  // what is converted is followed by two zero octets
  return 0;
}

}  // namespace

int BmpPassword::set(const char *password, int length, Text text) noexcept {
  if (!password) return 0;
  if (length < -1) return PKV_ERR_BAD_VALUE;
  if (text == Text::utf8) return set_utf8(password, length, block_, length_);
  const size_t count = length < 0 ? std::strlen(password) : size_t(length);
  if (count > size_t(INT_MAX) / 2 - 2) return PKV_ERR_BAD_VALUE;
  block_ = new_octets(2 * count + 2);
  if (!block_) return PKV_ERR_NO_MEMORY;
  length_ = 2 * count + 2;
  for (size_t i = 0; i <= count; ++i) {
    block_.get()[2 * i] = 0;
    block_.get()[2 * i + 1] = i < count ? uint8_t(password[i]) : uint8_t(0);
  }
  return 0;
}

}  // namespace velpki
