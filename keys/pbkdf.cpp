// PBKDF1 and PBKDF2 (RFC 8018 5).
#include <array>

#include "keys/internal/pbe.h"

namespace velpki {

namespace {

using Digest = std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>;

// Hash(password || salt)
int first_digest(const PasswordWork &work, int digest_id, uint8_t *out) noexcept {
  const owned<DIGEST_UNIT> unit(PKV_New_DIGEST());
  if (!unit) return fail(F_PBKDF1, kNoMemory);
  if (const int code = PKV_Init_DIGEST(unit.get(), digest_id)) return code;
  if (const int code = PKV_Update_DIGEST(unit.get(), work.password.data(), int(work.password.size()))) return code;
  if (const int code = PKV_Update_DIGEST(unit.get(), work.salt.data(), int(work.salt.size()))) return code;
  return PKV_Final_DIGEST(unit.get(), out, nullptr);
}

int check(const char *password, int password_length, const unsigned char *salt, int salt_length, int iterations,
          const unsigned char *out, int out_length) noexcept {
  if (!password || !salt || !out || iterations < 1) return kNullArgument;
  return password_length < 0 || salt_length < 0 || out_length < 1 ? kBadValue : 0;
}

PasswordWork work_of(const char *password, int password_length, const unsigned char *salt, int salt_length,
                     int iterations) noexcept {
  return {octets_of(reinterpret_cast<const unsigned char *>(password), password_length), octets_of(salt, salt_length),
          iterations};
}

}  // namespace

int derive_pbkdf1(const PasswordWork &work, int digest_id, std::span<uint8_t> out) noexcept {
  if (out.size() > size_t(PKV_Get_DIGEST_Length(digest_id))) return fail(F_PBKDF1, kBadValue);
  Digest value;
  const WipeAtEnd wipe(value.data(), value.size());
  if (const int code = first_digest(work, digest_id, value.data())) return code;
  if (const int code = PKV_Repeat_DIGEST(digest_id, value.data(), work.iterations - 1)) return code;
  copy_octets(out.data(), Octets(value).first(out.size()));
  return 0;
}

}  // namespace velpki

using namespace velpki;

int PBKDF1(const char *password, int password_length, const unsigned char *salt, int salt_length, int iterations,
           int digest_id, unsigned char *out, int out_length) noexcept {
  if (const int reason = check(password, password_length, salt, salt_length, iterations, out, out_length)) {
    return fail(F_PBKDF1, reason);
  }
  return derive_pbkdf1(work_of(password, password_length, salt, salt_length, iterations), digest_id,
                       {out, size_t(out_length)});
}

int PBKDF2(const char *password, int password_length, const unsigned char *salt, int salt_length, int iterations,
           int digest_id, unsigned char *out, int out_length) noexcept {
  if (const int reason = check(password, password_length, salt, salt_length, iterations, out, out_length)) {
    return fail(F_PBKDF2, reason);
  }
  return PKV_PBKDF2(digest_id, reinterpret_cast<const unsigned char *>(password), password_length, salt, salt_length,
                    iterations, out, out_length);
}
