// Password-based derivation: PBKDF2 (RFC 8018 5.2), and a digest applied again and again.
//
// A round is one or two compressions of a block that is known but for its first octets, so libcrypto's block functions
// are called directly: what a context costs to start, copy and finish would be most of the time.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/md5.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "provider/internal/arguments.h"
#include "provider/internal/digest.h"

namespace velcrypto {
namespace {

// A block function: its chaining value as words, and how those become octets. `kLength` octets of them are the digest.
template <class W, size_t words, size_t length, bool big_endian>
struct Shape {
  using Word = W;
  using Words = std::array<W, words>;
  static constexpr size_t kLength = length, kBlock = 16 * sizeof(W);
  static constexpr bool kBigEndian = big_endian;
};

struct Sha1 : Shape<uint32_t, 5, 20, true> {
  static Words start() noexcept {
    SHA_CTX context;
    SHA1_Init(&context);
    return {context.h0, context.h1, context.h2, context.h3, context.h4};
  }
  static Words compress(const Words &from, const uint8_t *block) noexcept {
    SHA_CTX context;
    context.h0 = from[0], context.h1 = from[1], context.h2 = from[2], context.h3 = from[3], context.h4 = from[4];
    SHA1_Transform(&context, block);
    return {context.h0, context.h1, context.h2, context.h3, context.h4};
  }
};

struct Md5 : Shape<uint32_t, 4, 16, false> {
  static Words start() noexcept {
    MD5_CTX context;
    MD5_Init(&context);
    return {context.A, context.B, context.C, context.D};
  }
  static Words compress(const Words &from, const uint8_t *block) noexcept {
    MD5_CTX context;
    context.A = from[0], context.B = from[1], context.C = from[2], context.D = from[3];
    MD5_Transform(&context, block);
    return {context.A, context.B, context.C, context.D};
  }
};

// SHA-2: the contexts hold the words as an array.
template <class S, class Context, int (*init)(Context *), void (*transform)(Context *, const unsigned char *)>
struct Sha2 : S {
  using Words = typename S::Words;
  static Words start() noexcept {
    Context context;
    init(&context);
    return words_of(context);
  }
  static Words compress(const Words &from, const uint8_t *block) noexcept {
    Context context;
    std::copy(from.begin(), from.end(), context.h);
    transform(&context, block);
    return words_of(context);
  }
  static Words words_of(const Context &context) noexcept {
    Words words;
    std::copy_n(context.h, words.size(), words.begin());
    return words;
  }
};
using Sha224 = Sha2<Shape<uint32_t, 8, 28, true>, SHA256_CTX, SHA224_Init, SHA256_Transform>;
using Sha256 = Sha2<Shape<uint32_t, 8, 32, true>, SHA256_CTX, SHA256_Init, SHA256_Transform>;
using Sha384 = Sha2<Shape<uint64_t, 8, 48, true>, SHA512_CTX, SHA384_Init, SHA512_Transform>;
using Sha512 = Sha2<Shape<uint64_t, 8, 64, true>, SHA512_CTX, SHA512_Init, SHA512_Transform>;

// One store each: this runs five to eight times a round.
template <class Word>
void write_word(Word word, bool big_endian, uint8_t *out) noexcept {
  if (big_endian == (std::endian::native == std::endian::little)) {
    word = sizeof word == 8 ? Word(__builtin_bswap64(word)) : Word(__builtin_bswap32(uint32_t(word)));
  }
  std::memcpy(out, &word, sizeof word);
}

template <class A>
void write_digest(const typename A::Words &words, uint8_t *out) noexcept {
  for (size_t i = 0; i * sizeof(words[0]) < A::kLength; ++i) {
    write_word(words[i], A::kBigEndian, out + i * sizeof(words[0]));
  }
}

// The last block of a message: a digest, and the padding for `before` octets in front of it.
template <class A>
struct LastBlock {
  explicit LastBlock(size_t before) noexcept {
    octets[A::kLength] = 0x80;
    const uint64_t bits = 8 * (before + A::kLength);
    write_word(bits, A::kBigEndian, octets.data() + A::kBlock - sizeof bits);
  }
  LastBlock(const LastBlock &) = delete;
  LastBlock &operator=(const LastBlock &) = delete;
  ~LastBlock() { PKV_Wipe(octets.data(), octets.size()); }
  std::array<uint8_t, A::kBlock> octets{};
};

template <class A>
void repeat(uint8_t *value, int count) noexcept {
  const typename A::Words start = A::start();
  LastBlock<A> block(0);
  std::memcpy(block.octets.data(), value, A::kLength);
  for (int i = 0; i < count; ++i) write_digest<A>(A::compress(start, block.octets.data()), block.octets.data());
  std::memcpy(value, block.octets.data(), A::kLength);
}

// HMAC of one digest under a key that has been taken in.
template <class A>
class Rounds {
 public:
  // `key` fills a block.
  explicit Rounds(const uint8_t *key) noexcept : inner_(keyed(key, 0x36)), outer_(keyed(key, 0x5C)) {}
  Rounds(const Rounds &) = delete;
  Rounds &operator=(const Rounds &) = delete;
  ~Rounds() {
    PKV_Wipe(inner_.data(), sizeof inner_);
    PKV_Wipe(outer_.data(), sizeof outer_);
  }
  // `value` is U1 on entry, and U1 ^ ... ^ Ucount afterwards.
  void run(uint8_t *value, int count) const noexcept {
    LastBlock<A> message(A::kBlock), digest(A::kBlock);
    std::memcpy(message.octets.data(), value, A::kLength);
    for (int i = 1; i < count; ++i) {
      write_digest<A>(A::compress(inner_, message.octets.data()), digest.octets.data());
      write_digest<A>(A::compress(outer_, digest.octets.data()), message.octets.data());
      for (size_t at = 0; at < A::kLength; ++at) value[at] ^= message.octets[at];
    }
  }

 private:
  static typename A::Words keyed(const uint8_t *key, uint8_t pad) noexcept {
    Wiped<std::array<uint8_t, A::kBlock>> block;
    for (size_t i = 0; i < A::kBlock; ++i) block.value[i] = key[i] ^ pad;
    return A::compress(A::start(), block.value.data());
  }
  typename A::Words inner_, outer_;
};

// Calls `use` with the block function of a digest; false for those of other libraries.
template <class Use>
bool with_block_function(int digest_id, Use use) noexcept {
  switch (digest_id) {
    case PKV_DIGEST_SHA1:
      return use(Sha1()), true;
    case PKV_DIGEST_SHA224:
      return use(Sha224()), true;
    case PKV_DIGEST_SHA256:
      return use(Sha256()), true;
    case PKV_DIGEST_SHA384:
      return use(Sha384()), true;
    case PKV_DIGEST_SHA512:
      return use(Sha512()), true;
    case PKV_DIGEST_MD5:
      return use(Md5()), true;
    default:
      return false;
  }
}

int repeat_by_unit(int digest_id, int length, uint8_t *value, int count) noexcept {
  DIGEST_UNIT unit;
  for (int i = 0; i < count; ++i) {
    if (int code = PKV_Init_DIGEST(&unit, digest_id)) return code;
    if (int code = PKV_Update_DIGEST(&unit, value, length)) return code;
    if (int code = PKV_Final_DIGEST(&unit, value, nullptr)) return code;
  }
  return 0;
}

using Value = Wiped<std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>>;
using HmacOwner = owned<HMAC_UNIT, PKV_Free_HMAC>;

struct Derivation {
  const DigestInfo *digest;
  std::span<const uint8_t> password, salt;
  int iterations;
  HmacOwner hmac;
};

// U1 = HMAC(password, salt || INT(i))
int first_round(const Derivation &with, uint32_t index, uint8_t *out) noexcept {
  uint8_t counter[4];
  write_word(index, true, counter);
  if (int code = PKV_Update_HMAC(with.hmac.get(), with.salt.data(), int(with.salt.size()))) return code;
  if (int code = PKV_Update_HMAC(with.hmac.get(), counter, sizeof counter)) return code;
  return PKV_Final_HMAC(with.hmac.get(), out, nullptr);
}

int further_rounds_by_unit(const Derivation &with, uint8_t *value) noexcept {
  Value round = {};
  std::copy_n(value, size_t(with.digest->length), round.value.begin());
  for (int i = 1; i < with.iterations; ++i) {
    if (int code = PKV_Update_HMAC(with.hmac.get(), round.value.data(), with.digest->length)) return code;
    if (int code = PKV_Final_HMAC(with.hmac.get(), round.value.data(), nullptr)) return code;
    for (size_t at = 0; at < size_t(with.digest->length); ++at) value[at] ^= round.value[at];
  }
  return 0;
}

// The key of an HMAC as a whole block. A key longer than a block is replaced by its digest.
int block_of(const Derivation &with, std::array<uint8_t, 128> &block) noexcept {
  if (with.password.size() > size_t(with.digest->block_length)) {
    return PKV_DIGEST(with.digest->id, with.password.data(), int(with.password.size()), block.data(), nullptr);
  }
  std::copy(with.password.begin(), with.password.end(), block.begin());
  return 0;
}

// Every block of the output, each handed to `rounds` after its first round.
template <class FurtherRounds>
int derive_blocks(const Derivation &with, std::span<uint8_t> out, FurtherRounds rounds) noexcept {
  Value value;
  for (uint32_t index = 1; !out.empty(); ++index) {
    if (int code = first_round(with, index, value.value.data())) return code;
    if (int code = rounds(value.value.data())) return code;
    const size_t taken = std::min(out.size(), size_t(with.digest->length));
    std::copy_n(value.value.begin(), taken, out.begin());
    out = out.subspan(taken);
  }
  return 0;
}

int derive(const Derivation &with, std::span<uint8_t> out) noexcept {
  Wiped<std::array<uint8_t, 128>> key;
  if (int code = block_of(with, key.value)) return code;
  int code = 0;
  const bool known = with_block_function(with.digest->id, [&](auto algorithm) noexcept {
    const Rounds<decltype(algorithm)> rounds(key.value.data());
    code = derive_blocks(with, out, [&](uint8_t *value) noexcept { return rounds.run(value, with.iterations), 0; });
  });
  if (known) return code;
  return derive_blocks(with, out, [&](uint8_t *value) noexcept { return further_rounds_by_unit(with, value); });
}

}  // namespace
}  // namespace velcrypto

using namespace velcrypto;

int PKV_Repeat_DIGEST(int digest_id, unsigned char *value, int count) noexcept {
  if (!value) return PKV_ERR_NULL;
  if (count < 0) return PKV_ERR_BAD_VALUE;
  const DigestInfo *info = find_digest(digest_id);
  if (!info) return PKV_ERR_UNSUPPORTED;
  const bool known =
      with_block_function(digest_id, [&](auto algorithm) noexcept { repeat<decltype(algorithm)>(value, count); });
  return known ? 0 : repeat_by_unit(digest_id, info->length, value, count);
}

int PKV_PBKDF2(int digest_id, const unsigned char *password, int password_length, const unsigned char *salt,
               int salt_length, int iterations, unsigned char *out, int out_length) noexcept {
  if (!out) return PKV_ERR_NULL;
  if (int code = check_octets(password, password_length)) return code;
  if (int code = check_octets(salt, salt_length)) return code;
  if (iterations < 1 || out_length < 1) return PKV_ERR_BAD_VALUE;
  const DigestInfo *info = find_digest(digest_id & ~PKV_HMAC_FLAG);
  if (!info) return PKV_ERR_UNSUPPORTED;
  Derivation with{
      info, {password, size_t(password_length)}, {salt, size_t(salt_length)}, iterations, HmacOwner(PKV_New_HMAC())};
  if (!with.hmac) return PKV_ERR_NO_MEMORY;
  if (int code = PKV_Init_HMAC(with.hmac.get(), info->id, password, password_length)) return code;
  const int code = derive(with, {out, size_t(out_length)});
  if (code) PKV_Wipe(out, size_t(out_length));
  return code;
}
