// Keys from shared secrets (ANSI X9.63).
#include <algorithm>
#include <array>

#include "provider/internal/arguments.h"
#include "provider/internal/digest.h"
#include "provider/internal/memory.h"

namespace velcrypto {
namespace {

using Block = Wiped<std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>>;
using Counter = std::array<uint8_t, 4>;

Counter counter_octets(unsigned counter) noexcept {
  return {uint8_t(counter >> 24), uint8_t(counter >> 16), uint8_t(counter >> 8), uint8_t(counter)};
}

struct Input {
  const uint8_t *data;
  int length;
};

// Digest(secret || counter || info)
int shared_block(DIGEST_UNIT &unit, int digest_id, Input secret, unsigned counter, Input info, Block &out) noexcept {
  const Counter number = counter_octets(counter);
  int length = PKV_MAX_DIGEST_LENGTH;
  if (int code = PKV_Init_DIGEST(&unit, digest_id)) return code;
  if (int code = PKV_Update_DIGEST(&unit, secret.data, secret.length)) return code;
  if (int code = PKV_Update_DIGEST(&unit, number.data(), int(number.size()))) return code;
  if (int code = PKV_Update_DIGEST(&unit, info.data, info.length)) return code;
  return PKV_Final_DIGEST(&unit, out.value.data(), &length);
}

int check_output(const uint8_t *out, int length) noexcept {
  return length < 1 ? PKV_ERR_BAD_VALUE : out ? 0 : PKV_ERR_NULL;
}

// Fills `out` from blocks of `block_length`, made by `make`. On failure what was written is wiped.
template <class Make>
int fill(uint8_t *out, int length, int block_length, Make make) noexcept {
  int left = length;
  for (unsigned counter = 1; left > 0; ++counter) {
    Block block;
    if (int code = make(counter, block)) return PKV_Wipe(out, size_t(length)), code;
    const int taken = std::min(block_length, left);
    std::copy_n(block.value.begin(), taken, out + (length - left));
    left -= taken;
  }
  return 0;
}

}  // namespace
}  // namespace velcrypto

using namespace velcrypto;

int PKV_X963_KDF(int digest_id, const unsigned char *secret, int secret_length, const unsigned char *info,
                 int info_length, unsigned char *out, int length) noexcept {
  if (int code = check_octets(secret, secret_length)) return code;
  if (int code = check_octets(info, info_length)) return code;
  if (int code = check_output(out, length)) return code;
  const int block_length = digest_id & PKV_HMAC_FLAG ? 0 : PKV_Get_DIGEST_Length(digest_id);
  if (!block_length) return PKV_ERR_UNSUPPORTED;
  const owned<DIGEST_UNIT, PKV_Free_DIGEST> unit(PKV_New_DIGEST());
  if (!unit) return PKV_ERR_NO_MEMORY;
  return fill(out, length, block_length, [&](unsigned counter, Block &block) noexcept {
    return shared_block(*unit, digest_id, {secret, secret_length}, counter, {info, info_length}, block);
  });
}
