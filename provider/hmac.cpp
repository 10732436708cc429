// HMAC (RFC 2104) over the provider's own digests.
#include <algorithm>

#include "provider/internal/arguments.h"
#include "provider/internal/digest.h"

// The two digests that have taken in the key stay as they are; each message starts from copies of them, which is what
// makes a derivation of many MACs under one key cheap.
struct pkv_hmac {
  DIGEST_UNIT inner;
  DIGEST_UNIT outer;
  DIGEST_UNIT message;
};

namespace velcrypto {
namespace {

constexpr size_t kMaxBlock = 128;
constexpr uint8_t kInnerPad = 0x36, kOuterPad = 0x5C;
using Block = Wiped<std::array<uint8_t, kMaxBlock>>;

// A key longer than a block is replaced by its digest, which must then fit: MDC-2 has a block shorter than its result,
// a case that RFC 2104 leaves undefined.
int block_of_key(const DigestInfo &info, const uint8_t *key, int key_length, Block &block) noexcept {
  if (key_length <= info.block_length) {
    std::copy_n(key, key_length, block.value.begin());
    return 0;
  }
  if (info.length > info.block_length) return PKV_ERR_BAD_VALUE;
  return PKV_DIGEST(info.id, key, key_length, block.value.data(), nullptr);
}

int start_padded(DIGEST_UNIT &unit, const DigestInfo &info, const Block &key, uint8_t pad) noexcept {
  Block padded;
  for (size_t i = 0; i < kMaxBlock; ++i) padded.value[i] = key.value[i] ^ pad;
  if (int code = PKV_Init_DIGEST(&unit, info.id)) return code;
  return PKV_Update_DIGEST(&unit, padded.value.data(), info.block_length);
}

int start_keyed(HMAC_UNIT &unit, const DigestInfo &info, const uint8_t *key, int key_length) noexcept {
  Block block;
  if (int code = block_of_key(info, key, key_length, block)) return code;
  if (int code = start_padded(unit.outer, info, block, kOuterPad)) return code;
  return start_padded(unit.inner, info, block, kInnerPad);
}

int begin_message(HMAC_UNIT &unit) noexcept {
  if (!unit.inner.info) return PKV_ERR_FAILED;
  if (unit.message.info) return 0;
  return copy_digest(unit.message, unit.inner) ? 0 : PKV_ERR_NO_MEMORY;
}

}  // namespace
}  // namespace velcrypto

using namespace velcrypto;

HMAC_UNIT *PKV_New_HMAC(void) noexcept { return make<HMAC_UNIT>(); }

void PKV_Free_HMAC(HMAC_UNIT *unit) noexcept { destroy(unit); }

int PKV_Init_HMAC(HMAC_UNIT *unit, int digest_id, const unsigned char *key, int key_length) noexcept {
  if (!unit) return PKV_ERR_NULL;
  unit->inner.info = unit->outer.info = unit->message.info = nullptr;
  if (int code = check_octets(key, key_length)) return code;
  const DigestInfo *info = find_digest(digest_id & ~PKV_HMAC_FLAG);
  if (!info) return PKV_ERR_UNSUPPORTED;
  return start_keyed(*unit, *info, key, key_length);
}

int PKV_Update_HMAC(HMAC_UNIT *unit, const unsigned char *data, int length) noexcept {
  if (!unit) return PKV_ERR_NULL;
  if (int code = check_octets(data, length)) return code;
  if (int code = begin_message(*unit)) return code;
  return PKV_Update_DIGEST(&unit->message, data, length);
}

int PKV_Final_HMAC(HMAC_UNIT *unit, unsigned char *out, int *out_length) noexcept {
  if (!unit || !out) return PKV_ERR_NULL;
  if (int code = begin_message(*unit)) return code;
  Wiped<std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>> inner;
  int length = 0;
  if (int code = PKV_Final_DIGEST(&unit->message, inner.value.data(), &length)) return code;
  if (!copy_digest(unit->message, unit->outer)) return PKV_ERR_NO_MEMORY;
  if (int code = PKV_Update_DIGEST(&unit->message, inner.value.data(), length)) return code;
  return PKV_Final_DIGEST(&unit->message, out, out_length);
}

int PKV_HMAC(int digest_id, const unsigned char *key, int key_length, const unsigned char *data, int length,
             unsigned char *out, int *out_length) noexcept {
  HMAC_UNIT unit;
  if (int code = PKV_Init_HMAC(&unit, digest_id, key, key_length)) return code;
  if (int code = PKV_Update_HMAC(&unit, data, length)) return code;
  return PKV_Final_HMAC(&unit, out, out_length);
}
