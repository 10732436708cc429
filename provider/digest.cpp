// Digests: one-shot and incremental.
#include "provider/internal/digest.h"

#include <iterator>

#include "provider/internal/arguments.h"
#include "provider/internal/libcrypto.h"

namespace velcrypto {
namespace {

constexpr DigestInfo kDigests[] = {
    {PKV_DIGEST_SHA1, 20, 64, DigestInfo::kLibcrypto},    {PKV_DIGEST_SHA224, 28, 64, DigestInfo::kLibcrypto},
    {PKV_DIGEST_SHA256, 32, 64, DigestInfo::kLibcrypto},  {PKV_DIGEST_SHA384, 48, 128, DigestInfo::kLibcrypto},
    {PKV_DIGEST_SHA512, 64, 128, DigestInfo::kLibcrypto}, {PKV_DIGEST_MD5, 16, 64, DigestInfo::kLibcrypto},
    {PKV_DIGEST_HAS160, 20, 64, DigestInfo::kHas160},     {PKV_DIGEST_MDC2, 16, 8, DigestInfo::kMdc2},
};

// Calls `use` with the engine that computes the unit's digest.
template <class Unit, class Use>
bool with_engine(Unit &unit, DigestInfo::Engine engine, Use use) noexcept {
  switch (engine) {
    case DigestInfo::kHas160:
      return use(unit.has160);
    case DigestInfo::kMdc2:
      return use(unit.mdc2);
    default:
      return use(unit.libcrypto);
  }
}

bool start(DIGEST_UNIT &unit, const DigestInfo &info) noexcept {
  switch (info.engine) {
    case DigestInfo::kHas160:
      return unit.has160.start();
    case DigestInfo::kMdc2:
      return unit.mdc2.start();
    default:
      return unit.libcrypto.start(libcrypto_digest(info.id));
  }
}

// A started context for each of libcrypto's digests, kept by the thread: most of the cost of a short digest is in
// making one. Contexts stand started while they wait, so that nothing of the last message stays in them.
class ThreadContexts {
 public:
  ~ThreadContexts() { gone_ = true; }
  static bool gone() noexcept { return gone_; }
  bool digest(const DigestInfo &info, std::span<const uint8_t> data, uint8_t *out) noexcept {
    const size_t at = size_t(&info - kDigests);
    const EVP_MD *algorithm = libcrypto_digest(info.id);
    LibcryptoDigest &kept = contexts_[at];
    if (!started_[at] && !kept.start(algorithm)) return false;
    started_[at] = false;
    if (!kept.update(data) || !kept.finish(out)) return false;
    started_[at] = kept.start(algorithm);
    return true;
  }

 private:
  // Digests are still computed by destructors that run after those of the thread.
  static thread_local bool gone_;
  LibcryptoDigest contexts_[std::size(kDigests)];
  bool started_[std::size(kDigests)]{};
};
thread_local bool ThreadContexts::gone_ = false;
thread_local ThreadContexts thread_contexts;

int digest_by_unit(int digest_id, const unsigned char *data, int length, unsigned char *out, int *out_length) noexcept {
  DIGEST_UNIT unit;
  if (int code = PKV_Init_DIGEST(&unit, digest_id)) return code;
  if (int code = PKV_Update_DIGEST(&unit, data, length)) return code;
  return PKV_Final_DIGEST(&unit, out, out_length);
}

}  // namespace

const DigestInfo *find_digest(int digest_id) noexcept {
  for (const DigestInfo &info : kDigests) {
    if (info.id == digest_id) return &info;
  }
  return nullptr;
}

bool LibcryptoDigest::start(const EVP_MD *algorithm) noexcept {
  if (!context_) context_.reset(EVP_MD_CTX_new());
  return context_ && algorithm && EVP_DigestInit_ex2(context_.get(), algorithm, nullptr) == 1;
}

bool LibcryptoDigest::update(std::span<const uint8_t> data) noexcept {
  return EVP_DigestUpdate(context_.get(), data.data(), data.size()) == 1;
}

bool LibcryptoDigest::finish(uint8_t *out) noexcept { return EVP_DigestFinal_ex(context_.get(), out, nullptr) == 1; }

bool LibcryptoDigest::copy_from(const LibcryptoDigest &other) noexcept {
  if (!context_) context_.reset(EVP_MD_CTX_new());
  return context_ && EVP_MD_CTX_copy_ex(context_.get(), other.context_.get()) == 1;
}

bool copy_digest(DIGEST_UNIT &to, const DIGEST_UNIT &from) noexcept {
  to.info = nullptr;
  if (!from.info) return true;
  bool copied = false;
  switch (from.info->engine) {
    case DigestInfo::kHas160:
      copied = to.has160.copy_from(from.has160);
      break;
    case DigestInfo::kMdc2:
      copied = to.mdc2.copy_from(from.mdc2);
      break;
    case DigestInfo::kLibcrypto:
      copied = to.libcrypto.copy_from(from.libcrypto);
      break;
  }
  if (copied) to.info = from.info;
  return copied;
}

}  // namespace velcrypto

using namespace velcrypto;

int PKV_Get_DIGEST_Length(int digest_id) noexcept {
  const DigestInfo *info = find_digest(digest_id & ~PKV_HMAC_FLAG);
  return info ? info->length : 0;
}

int PKV_Get_DIGEST_Block_Length(int digest_id) noexcept {
  const DigestInfo *info = find_digest(digest_id & ~PKV_HMAC_FLAG);
  return info ? info->block_length : 0;
}

int PKV_DIGEST(int digest_id, const unsigned char *data, int length, unsigned char *out, int *out_length) noexcept {
  if (!out) return PKV_ERR_NULL;
  if (int code = check_octets(data, length)) return code;
  const DigestInfo *info = find_digest(digest_id);
  if (!info) return PKV_ERR_UNSUPPORTED;
  if (info->engine != DigestInfo::kLibcrypto || ThreadContexts::gone()) {
    return digest_by_unit(digest_id, data, length, out, out_length);
  }
  if (!thread_contexts.digest(*info, {data, size_t(length)}, out)) return PKV_ERR_NO_MEMORY;
  if (out_length) *out_length = info->length;
  return 0;
}

DIGEST_UNIT *PKV_New_DIGEST(void) noexcept { return make<DIGEST_UNIT>(); }

void PKV_Free_DIGEST(DIGEST_UNIT *unit) noexcept { destroy(unit); }

DIGEST_UNIT *PKV_Dup_DIGEST(const DIGEST_UNIT *unit) noexcept {
  DIGEST_UNIT *copy = unit ? PKV_New_DIGEST() : nullptr;
  if (!copy || copy_digest(*copy, *unit)) return copy;
  PKV_Free_DIGEST(copy);
  return nullptr;
}

int PKV_Init_DIGEST(DIGEST_UNIT *unit, int digest_id) noexcept {
  if (!unit) return PKV_ERR_NULL;
  unit->info = nullptr;
  const DigestInfo *info = find_digest(digest_id);
  if (!info) return PKV_ERR_UNSUPPORTED;
  if (!start(*unit, *info)) {
    const bool missing = digest_id == PKV_DIGEST_MDC2 && !Mdc2::is_there();
    return missing ? PKV_ERR_UNSUPPORTED : PKV_ERR_NO_MEMORY;
  }
  unit->info = info;
  return 0;
}

int PKV_Get_DIGEST_ID(const DIGEST_UNIT *unit) noexcept { return unit && unit->info ? unit->info->id : 0; }

int PKV_Update_DIGEST(DIGEST_UNIT *unit, const unsigned char *data, int length) noexcept {
  if (!unit) return PKV_ERR_NULL;
  if (int code = check_octets(data, length)) return code;
  if (!unit->info) return PKV_ERR_FAILED;
  if (!length) return 0;
  const std::span octets(data, size_t(length));
  if (with_engine(*unit, unit->info->engine, [&](auto &engine) { return engine.update(octets); })) return 0;
  unit->info = nullptr;
  return PKV_ERR_FAILED;
}

int PKV_Final_DIGEST(DIGEST_UNIT *unit, unsigned char *out, int *out_length) noexcept {
  if (!unit || !out) return PKV_ERR_NULL;
  const DigestInfo *info = std::exchange(unit->info, nullptr);
  if (!info) return PKV_ERR_FAILED;
  if (!with_engine(*unit, info->engine, [&](auto &engine) { return engine.finish(out); })) return PKV_ERR_FAILED;
  if (out_length) *out_length = info->length;
  return 0;
}
