// The key and IV of each password-based scheme.
#include <algorithm>
#include <array>

#include "keys/internal/pbe.h"

namespace velpki {

namespace {

using Digest = std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>;

constexpr int kPbes1Key = 8;
constexpr int kSha1Length = 20;

// The reasons of the steps of the KISA scheme.
enum : int { kDigestInit = 0x22, kDigestUpdate = 0x5B, kDigestFinal = 0x18 };

bool fits(const KeyAndIv &out, int key_length, int iv_length) noexcept {
  return size_t(key_length) <= sizeof out.key && size_t(iv_length) <= sizeof out.iv;
}

// The IV of the KISA scheme: the digest of what the key left.
int digest_rest(Octets rest, int iv_length, int function, uint8_t *iv) noexcept {
  Digest value;
  const WipeAtEnd wipe(value.data(), value.size());
  const owned<DIGEST_UNIT> unit(PKV_New_DIGEST());
  if (!unit || PKV_Init_DIGEST(unit.get(), PKV_DIGEST_SHA1)) return fail(function, kDigestInit);
  if (PKV_Update_DIGEST(unit.get(), rest.data(), int(rest.size()))) return fail(function, kDigestUpdate);
  if (PKV_Final_DIGEST(unit.get(), value.data(), nullptr)) return fail(function, kDigestFinal);
  copy_octets(iv, Octets(value).first(size_t(iv_length)));
  return 0;
}

}  // namespace

int derive_pbes1(const PasswordWork &work, int cipher_id, int digest_id, int function, KeyAndIv &out) noexcept {
  Digest dk;
  const WipeAtEnd wipe(dk.data(), dk.size());
  const int length = PKV_Get_DIGEST_Length(digest_id);
  if (PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id) != kPbes1Key) return fail(function, kBadValue);
  if (length < 2 * kPbes1Key) return fail(function, length ? kBadValue : kUnsupported);
  if (const int code = derive_pbkdf1(work, digest_id, {dk.data(), size_t(length)})) return code;
  out.key_length = kPbes1Key;
  out.iv_length = PKV_Get_BLOCK_CIPHER_IV_Length(cipher_id);
  copy_octets(out.key, Octets(dk).first(kPbes1Key));
  copy_octets(out.iv, Octets(dk).subspan(kPbes1Key, size_t(out.iv_length)));
  return 0;
}

int derive_kisa(const PasswordWork &work, int cipher_id, int digest_id, int iv_mode, int function,
                KeyAndIv &out) noexcept {
  Digest dk;
  const WipeAtEnd wipe(dk.data(), dk.size());
  const int length = PKV_Get_DIGEST_Length(digest_id), block = PKV_Get_BLOCK_CIPHER_Block_Length(cipher_id);
  const bool good_mode = iv_mode == 0 || iv_mode == 1;
  if (!length || !block || length < block || !good_mode || block > kSha1Length) return fail(function, kBadValue);
  if (derive_pbkdf1(work, digest_id, {dk.data(), size_t(length)})) return fail(function, kFailedStep);
  out.key_length = out.iv_length = block;
  copy_octets(out.key, Octets(dk).first(size_t(block)));
  if (iv_mode == 1)
    return digest_rest(Octets(dk).subspan(size_t(block), size_t(length - block)), block, function, out.iv);
  copy_octets(out.iv, octets_of_text(kFixedIv).first(size_t(block)));
  return 0;
}

int derive_gpki(const PasswordWork &work, int cipher_id, int function, KeyAndIv &out) noexcept {
  out.key_length = PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id);
  out.iv_length = PKV_Get_BLOCK_CIPHER_Block_Length(cipher_id);
  if (!out.key_length || !out.iv_length || !fits(out, out.key_length, out.iv_length)) return fail(function, kBadValue);
  BmpPassword bmp;
  const auto *text = reinterpret_cast<const char *>(work.password.data());
  if (const int code = bmp.set(text ? text : "", int(work.password.size()))) return fail(function, code);
  const PasswordWork wide{bmp.octets(), work.salt, work.iterations};
  int code = derive_pkcs12(wide, kPkcs12Key, PKV_DIGEST_SHA1, {out.key, size_t(out.key_length)});
  if (!code) code = derive_pkcs12(wide, kPkcs12Iv, PKV_DIGEST_SHA1, {out.iv, size_t(out.iv_length)});
  return code ? fail(function, code) : 0;
}

int derive_pbes2(const PasswordWork &work, int cipher_id, int digest_id, int key_length, int function,
                 KeyAndIv &out) noexcept {
  const int usual = PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id);
  out.key_length = key_length ? key_length : usual;
  if (!usual || !fits(out, out.key_length, 0)) return fail(function, kBadValue);
  return PKV_PBKDF2(digest_id, work.password.data(), int(work.password.size()), work.salt.data(), int(work.salt.size()),
                    work.iterations, out.key, out.key_length);
}

bool pkcs12_cipher_of(const OBJECT_IDENTIFIER *algorithm, Pkcs12Cipher &out) noexcept {
  constexpr int kRc4Key = 16, kRc4ExportKey = 5;
  out = {get_DigestID_from_OID(algorithm), get_CipherID_from_OID(algorithm), 0};
  const int row = index_from_OBJECT_IDENTIFIER(algorithm);
  if (row == row::kPbeRc4_128 || row == row::kPbeRc4_40) {
    out.key_length = row == row::kPbeRc4_128 ? kRc4Key : kRc4ExportKey;
    return true;
  }
  out.key_length = PKV_Get_BLOCK_CIPHER_Key_Length(out.cipher_id);
  return out.key_length > 0 && PKV_Get_DIGEST_Length(out.digest_id) > 0 && !(out.digest_id & PKV_HMAC_FLAG);
}

int derive_pkcs12_cipher(const PasswordWork &work, const Pkcs12Cipher &cipher, KeyAndIv &out) noexcept {
  out.key_length = cipher.key_length;
  out.iv_length = cipher.cipher_id ? PKV_Get_BLOCK_CIPHER_IV_Length(cipher.cipher_id) : 0;
  if (!fits(out, out.key_length, out.iv_length)) return PKV_ERR_BAD_VALUE;
  const int code = derive_pkcs12(work, kPkcs12Key, cipher.digest_id, {out.key, size_t(out.key_length)});
  if (code || !out.iv_length) return code;
  return derive_pkcs12(work, kPkcs12Iv, cipher.digest_id, {out.iv, size_t(out.iv_length)});
}

int run_cipher(Direction direction, int cipher_id, const KeyAndIv &with, Octets in, uint8_t *out,
               int *out_length) noexcept {
  if (cipher_id == 0) {
    if (*out_length < 0 || size_t(*out_length) < in.size()) return PKV_ERR_BAD_VALUE;
    const int code = PKV_RC4(with.key, with.key_length, in.data(), int(in.size()), out);
    if (!code) *out_length = int(in.size());
    return code;
  }
  const auto one_shot = direction == Direction::encrypt ? PKV_Encrypt_BLOCK_CIPHER : PKV_Decrypt_BLOCK_CIPHER;
  const int iv_length = PKV_Get_BLOCK_CIPHER_IV_Length(cipher_id);
  return one_shot(cipher_id, with.key, with.key_length, iv_length ? with.iv : nullptr, iv_length ? with.iv_length : 0,
                  in.data(), int(in.size()), out, out_length);
}

Scheme scheme_of_row(int row, int cipher_id) noexcept {
  constexpr unsigned kCipherMask = 0xFFFFFF00, kSingleDes = 0x02000100;
  switch (row) {
    case row::kPbeSeed:
    case row::kPbeAria:
      return Scheme::kisa;
    case row::kSeedCbc:
      return Scheme::kisa_fixed_iv;
    case row::kPbeGpkiSeed:
      return Scheme::gpki;
    default:
      if (!cipher_id) return Scheme::none;
      return (unsigned(cipher_id) & kCipherMask) == kSingleDes ? Scheme::pbes1 : Scheme::pbes2;
  }
}

int read_iterations(const P5_PBE_PARAM &param, int maximum, int &out) noexcept {
  const unsigned count = param.iteration ? PKV_Get_BIGINT_Word(param.iteration) : 0;
  if (!count || PKV_Is_BIGINT_Negative(param.iteration)) return kNullArgument;
  if (count > unsigned(maximum)) return kBadValue;
  out = int(count);
  return 0;
}

}  // namespace velpki
