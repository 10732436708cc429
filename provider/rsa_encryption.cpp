// RSAES-OAEP and RSAES-PKCS1-v1_5 (RFC 8017 section 7).
//
// Decryption tells an attacker who sends chosen ciphertexts nothing but whether it worked: every check of the decrypted
// block is a mask, all of them are made, the message is brought to its place without an address that depends on where
// it begins, and one condition at the end decides.
#include <algorithm>

#include "provider/internal/arguments.h"
#include "provider/internal/constant_time.h"
#include "provider/internal/rsa.h"

using namespace velcrypto;

namespace {

using Octets = std::span<const uint8_t>;
using Block = Wiped<std::array<uint8_t, kMaxRsaOctets>>;

// What a decrypted block was found to hold.
struct Found {
  Mask good;
  size_t start;  // of the message, which goes to the block's end
};

struct Mark {
  size_t position;  // of the first octet equal to the one looked for; the block's end when there is none
  size_t before;    // all octets before it, ORed
};
Mark find_octet(Octets block, size_t from, uint8_t octet) noexcept {
  Mask looking = ~Mask{0};
  Mark mark{block.size(), 0};
  for (size_t i = from; i < block.size(); ++i) {
    const Mask here = is_equal_mask(block[i], octet) & looking;
    mark.position = select(here, i, mark.position);
    looking &= ~here;
    mark.before |= looking & block[i];
  }
  return mark;
}

// 00 || 02 || at least eight octets, none zero || 00 || message.
Found unpad_pkcs1(Octets block) noexcept {
  constexpr size_t kShortestEnd = 2 + 8;
  const size_t end = find_octet(block, 2, 0).position;
  const Mask good = is_zero_mask(block[0]) & is_equal_mask(block[1], 2) & is_below_mask(end, block.size()) &
                    ~is_below_mask(end, kShortestEnd);
  return {good, end + 1};
}

// 00 || seed || (hash of the label || zeros || 01 || message), the two last masked. Unmasks `block`.
int unpad_oaep(const RsaEncryptionState &state, std::span<uint8_t> block, Found &found) noexcept {
  const auto hash_length = size_t(PKV_Get_DIGEST_Length(state.digest_id));
  const auto seed = block.subspan(1, hash_length), data = block.subspan(1 + hash_length);
  uint8_t label_hash[PKV_MAX_DIGEST_LENGTH];
  if (int error = PKV_DIGEST(state.digest_id, state.label.data(), int(state.label.size()), label_hash, nullptr)) {
    return error;
  }
  if (int error = mgf1_xor(state.mgf_digest_id, data, seed)) return error;
  if (int error = mgf1_xor(state.mgf_digest_id, seed, data)) return error;
  size_t wrong = block[0];
  for (size_t i = 0; i < hash_length; ++i) wrong |= size_t(data[i] ^ label_hash[i]);
  const Mark mark = find_octet(data, hash_length, 1);
  found.good = is_zero_mask(wrong | mark.before) & is_below_mask(mark.position, data.size());
  found.start = 1 + hash_length + mark.position + 1;
  return 0;
}

// Moves the block left by a secret distance, a power of two at a time.
void shift_left(std::span<uint8_t> block, size_t distance) noexcept {
  for (size_t step = 1; step < block.size(); step <<= 1) {
    const Mask move = ~is_zero_mask(distance & step);
    for (size_t i = 0; i + step < block.size(); ++i) block[i] = uint8_t(select(move, block[i + step], block[i]));
  }
}

// Success is public in the end, so the copy may branch on it; what made a failure is not to be seen anywhere.
int deliver(std::span<uint8_t> block, Found found, unsigned char *out, int *out_length) noexcept {
  const size_t length = block.size() - select(found.good, found.start, block.size());
  const Mask good = found.good & ~is_below_mask(size_t(*out_length), length);
  shift_left(block, select(good, found.start, 0));
  if (!good) return PKV_ERR_FAILED;
  std::copy_n(block.begin(), length, out);
  *out_length = int(length);
  return 0;
}

int pad_pkcs1(Octets message, std::span<uint8_t> block) noexcept {
  if (block.size() < 11 || message.size() > block.size() - 11) return PKV_ERR_BAD_VALUE;
  const auto padding = block.subspan(2, block.size() - message.size() - 3);
  block[0] = 0;
  block[1] = 2;
  if (int error = PKV_Rand_Bytes(padding.data(), int(padding.size()))) return error;
  for (uint8_t &octet : padding) {
    while (octet == 0) {
      if (int error = PKV_Rand_Bytes(&octet, 1)) return error;
    }
  }
  block[2 + padding.size()] = 0;
  std::copy(message.begin(), message.end(), block.end() - std::ptrdiff_t(message.size()));
  return 0;
}

int pad_oaep(const RsaEncryptionState &state, Octets message, std::span<uint8_t> block) noexcept {
  const auto hash_length = size_t(PKV_Get_DIGEST_Length(state.digest_id));
  if (block.size() < 2 * hash_length + 2 || message.size() > block.size() - 2 * hash_length - 2) {
    return PKV_ERR_BAD_VALUE;
  }
  std::fill(block.begin(), block.end(), uint8_t(0));
  const auto seed = block.subspan(1, hash_length), data = block.subspan(1 + hash_length);
  if (int error = PKV_Rand_Bytes(seed.data(), int(seed.size()))) return error;
  if (int error = PKV_DIGEST(state.digest_id, state.label.data(), int(state.label.size()), data.data(), nullptr)) {
    return error;
  }
  data[data.size() - message.size() - 1] = 1;
  std::copy(message.begin(), message.end(), data.end() - std::ptrdiff_t(message.size()));
  if (int error = mgf1_xor(state.mgf_digest_id, seed, data)) return error;
  return mgf1_xor(state.mgf_digest_id, data, seed);
}

bool is_oaep(const RsaEncryptionState &state) noexcept { return state.scheme != PKV_RSA_PKCS1_CRYPT; }

// Of the given ciphertext, or of a block of zeros, which no padding accepts, in place of one out of range.
int decrypt_block(const RSA_UNIT &key, Octets in, std::span<uint8_t> block) noexcept {
  Block ciphertext;
  const BIGINT *n = key.part->number(PKV_RSA_N);
  if (in.size() == block.size() && std::memcmp(in.data(), n->octets, in.size()) < 0) {
    std::copy(in.begin(), in.end(), ciphertext.value.begin());
  }
  return rsa_private_operation(key, ciphertext.value.data(), block.data());
}

bool is_known_scheme(int scheme) noexcept {
  return scheme == PKV_RSA_PKCS1_CRYPT || scheme == PKV_RSA_OAEP || scheme == PKV_RSA_OAEP_SET;
}

int check_operation(const RSA_UNIT *key, bool encrypt, const void *in, int in_length, const void *out,
                    const int *out_length) noexcept {
  if (!key || !out_length) return PKV_ERR_NULL;
  if (int error = check_octets(in, in_length)) return error;
  if (int error = check_octets(out, *out_length)) return error;
  return key->encryption.scheme && key->encryption.encrypt == encrypt ? 0 : PKV_ERR_FAILED;
}

}  // namespace

int PKV_Init_RSAES(RSA_UNIT *key, int scheme, int encrypt) noexcept {
  if (!key) return PKV_ERR_NULL;
  key->encryption.scheme = 0;
  if (!is_known_scheme(scheme)) return PKV_ERR_UNSUPPORTED;
  if (!rsa_usable_length(key) || (!encrypt && !rsa_has_private_numbers(*key->part))) return PKV_ERR_BAD_VALUE;
  RsaEncryptionState &state = key->encryption;
  if (!state.label.resize(0)) return PKV_ERR_NO_MEMORY;
  state.digest_id = state.mgf_digest_id = PKV_DIGEST_SHA1;
  state.encrypt = encrypt != 0;
  state.scheme = scheme;
  return 0;
}

int PKV_Set_RSAES_OAEP(RSA_UNIT *key, int digest_id, int mgf_digest_id, const unsigned char *label,
                       int label_length) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (int error = check_octets(label, label_length)) return error;
  RsaEncryptionState &state = key->encryption;
  if (!state.scheme || !is_oaep(state)) return PKV_ERR_FAILED;
  if (!is_digest(digest_id) || !is_digest(mgf_digest_id)) return PKV_ERR_UNSUPPORTED;
  const auto hash_length = size_t(PKV_Get_DIGEST_Length(digest_id));
  if (rsa_usable_length(key) < 2 * hash_length + 2) return PKV_ERR_BAD_VALUE;
  if (!state.label.resize(size_t(label_length))) return state.scheme = 0, PKV_ERR_NO_MEMORY;  // the old one is gone
  if (label_length) std::memcpy(state.label.data(), label, size_t(label_length));
  state.digest_id = digest_id;
  state.mgf_digest_id = mgf_digest_id;
  return 0;
}

int PKV_Encrypt_RSAES(RSA_UNIT *key, const unsigned char *in, int in_length, unsigned char *out,
                      int *out_length) noexcept {
  if (int error = check_operation(key, true, in, in_length, out, out_length)) return error;
  const size_t length = rsa_usable_length(key);
  if (*out_length < int(length)) return PKV_ERR_BAD_VALUE;
  Block holder;
  const std::span<uint8_t> block(holder.value.data(), length);
  const Octets message(in, size_t(in_length));
  const RsaEncryptionState &state = key->encryption;
  if (int error = is_oaep(state) ? pad_oaep(state, message, block) : pad_pkcs1(message, block)) return error;
  if (int error = rsa_public_operation(*key, block.data(), block.data())) return error;
  std::copy(block.begin(), block.end(), out);
  *out_length = int(length);
  return 0;
}

int PKV_Decrypt_RSAES(RSA_UNIT *key, const unsigned char *in, int in_length, unsigned char *out,
                      int *out_length) noexcept {
  if (int error = check_operation(key, false, in, in_length, out, out_length)) return error;
  Block holder;
  const std::span<uint8_t> block(holder.value.data(), rsa_usable_length(key));
  const Octets ciphertext(in, size_t(in_length));
  if (int error = decrypt_block(*key, ciphertext, block)) return error;
  Found found{};
  if (!is_oaep(key->encryption)) {
    found = unpad_pkcs1(block);
  } else if (int error = unpad_oaep(key->encryption, block, found)) {
    return error;
  }
  return deliver(block, found, out, out_length);
}
