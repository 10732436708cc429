#include "cms/internal/content_cipher.h"

#include <algorithm>

namespace velpki {

namespace {

constexpr size_t kSlack = 64;  // more than any block

}  // namespace

int ContentKey::fill(int function) noexcept {
  if (!key || !iv) return fail(function, kNoMemory);
  if (const int code = key.size() ? PKV_Rand_Bytes(key.data(), key.size()) : 0) return code;
  return iv.size() ? PKV_Rand_Bytes(iv.data(), iv.size()) : 0;
}

int start_content_cipher(int cipher_id, const uint8_t *key, const uint8_t *iv, int function,
                         owned<BLOCK_CIPHER_UNIT> &out) noexcept {
  const int key_length = PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id);
  const int iv_length = PKV_Get_BLOCK_CIPHER_IV_Length(cipher_id);
  if (!key || (!iv && iv_length > 0)) return fail(function, kNullArgument);
  out.reset(PKV_New_BLOCK_CIPHER());
  if (!out) return fail(function, kNoMemory);
  return PKV_Init_BLOCK_CIPHER(out.get(), cipher_id, key, key_length, iv_length ? iv : nullptr, iv_length, 1);
}

bool set_iv_parameters(X509_ALGO_IDENTIFIER &algorithm, const BLOCK_CIPHER_UNIT &unit) noexcept {
  int length = 0;
  const uint8_t *iv = PKV_Get_BLOCK_CIPHER_IV(&unit, &length);
  ASN1_STRING *string = new_string(TYPE_OCTET_STRING, octets_of(iv, length));
  if (!string) return false;
  free_ASN1_STRING(std::exchange(algorithm.parameters, string));
  return true;
}

namespace {

// Room for `more` octets behind the content; the octets stand in a block of their own, so that they can grow.
bool grow_content(const EncryptionParts &parts, size_t more) noexcept {
  if (!parts.content) {
    parts.content = new_ASN1_STRING();
    if (!parts.content) return false;
    parts.content->type = TYPE_OCTET_STRING;
    parts.progress->capacity = 0;
  }
  const size_t length = size_t(parts.content->length), needed = length + more + 2;
  if (needed <= parts.progress->capacity) return true;
  if (needed > size_t(INT_MAX)) return false;
  const size_t room = std::max(needed, std::min(parts.progress->capacity * 2, size_t(INT_MAX)));
  void *block = PKV_Realloc(parts.progress->capacity ? parts.content->data : nullptr, room, __FILE__, __LINE__);
  if (!block) return false;
  parts.content->data = static_cast<uint8_t *>(block);
  parts.progress->capacity = room;
  return true;
}

// What a step wrote behind the content becomes part of it, and is copied to a caller who has room.
void take_over(const EncryptionParts &parts, size_t written, uint8_t *out, int *out_length) noexcept {
  uint8_t *at = parts.content->data + parts.content->length;
  const bool copied = out && out_length && *out_length >= 0 && size_t(*out_length) >= written;
  if (copied) copy_octets(out, Octets(at, written));
  if (out_length) *out_length = copied ? int(written) : 0;
  at[written] = at[written + 1] = 0;
  parts.content->length += int(written);
}

// Runs one step of the cipher. A buffer that is too small is a missing argument.
template <class Step>
int run_detached(uint8_t *out, int *out_length, int function, Step step) noexcept {
  int written = *out_length;
  const int code = step(out, &written);
  if (code == PKV_ERR_BAD_VALUE) return fail(function, kNullArgument);
  if (!code) *out_length = written;
  return code;
}
template <class Step>
int run_attached(const EncryptionParts &parts, size_t more, uint8_t *out, int *out_length, int function,
                 Step step) noexcept {
  if (!grow_content(parts, more)) return fail(function, kNoRoom);
  int written = int(more);
  if (const int code = step(parts.content->data + parts.content->length, &written)) return code;
  take_over(parts, size_t(written), out, out_length);
  return 0;
}

bool is_running(const EncryptionParts &parts) noexcept { return parts.cipher && parts.progress; }

}  // namespace

int update_content(EncryptionParts parts, Octets in, uint8_t *out, int *out_length, int function) noexcept {
  if (!is_running(parts)) return fail(function, kNullArgument);
  const auto step = [&](uint8_t *to, int *length) noexcept {
    return PKV_Update_BLOCK_CIPHER(parts.cipher, in.data(), int(in.size()), to, length);
  };
  if (!parts.detached) return run_attached(parts, in.size() + 2 * kSlack, out, out_length, function, step);
  if (!out || !out_length || *out_length < 0 || size_t(*out_length) < in.size()) return fail(function, kNullArgument);
  return run_detached(out, out_length, function, step);
}

int finish_content(EncryptionParts parts, uint8_t *out, int *out_length, int function) noexcept {
  if (!is_running(parts)) return fail(function, kNullArgument);
  const auto step = [&](uint8_t *to, int *length) noexcept { return PKV_Final_BLOCK_CIPHER(parts.cipher, to, length); };
  if (parts.detached && (!out || !out_length || *out_length < 0)) return fail(function, kNullArgument);
  const int code = parts.detached ? run_detached(out, out_length, function, step)
                                  : run_attached(parts, kSlack, out, out_length, function, step);
  if (code) return code;
  PKV_Free_BLOCK_CIPHER(std::exchange(parts.cipher, nullptr));
  release(std::exchange(parts.progress, nullptr));
  return 0;
}

bool content_iv(const X509_ALGO_IDENTIFIER &algorithm, int cipher_id, bool exact, Octets &iv) noexcept {
  const ASN1_STRING *parameters = algorithm.parameters;
  const size_t length = size_t(PKV_Get_BLOCK_CIPHER_IV_Length(cipher_id));
  iv = {};
  const bool none = !parameters || parameters->type == TYPE_NULL || parameters->length == 0;
  if (length == 0 || (none && !exact)) return true;
  if (none || parameters->type != TYPE_OCTET_STRING) return false;
  const Octets octets = velpki::octets(*parameters);
  if (octets.size() < length || (exact && octets.size() != length)) return false;
  iv = octets.first(length);
  return true;
}

int decrypt_content(int cipher_id, Octets key, Octets iv, Octets encrypted, uint8_t *out, int *out_length) noexcept {
  int written = int(encrypted.size());
  const int code = PKV_Decrypt_BLOCK_CIPHER(cipher_id, key.data(), int(key.size()), iv.empty() ? nullptr : iv.data(),
                                            int(iv.size()), encrypted.data(), int(encrypted.size()), out, &written);
  if (!code) *out_length = written;
  return code;
}

}  // namespace velpki
