// Key derivation and password-based encryption, as PKCS#5, PKCS#8 and PKCS#12 share them.
#pragma once

#include <string_view>

#include "keys/internal/pbe_row.h"
#include "keys/internal/pkcs5.h"

namespace velpki {

template <>
struct Flat<DIGEST_UNIT> {
  static void release(DIGEST_UNIT *unit) noexcept { PKV_Free_DIGEST(unit); }
};

// What every derivation starts from.
struct PasswordWork {
  Octets password;
  Octets salt;
  int iterations;
};

// The key and IV of one encryption, wiped when they go.
struct KeyAndIv {
  KeyAndIv() noexcept = default;
  KeyAndIv(const KeyAndIv &) = delete;
  KeyAndIv &operator=(const KeyAndIv &) = delete;
  ~KeyAndIv() {
    PKV_Wipe(key, sizeof key);
    PKV_Wipe(iv, sizeof iv);
  }
  uint8_t key[64] = {}, iv[16] = {};
  int key_length = 0, iv_length = 0;
};

// A password as PKCS#12 has it: two octets a character, with a final 0000. A null one has no octets at all.
class BmpPassword {
 public:
  enum class Text { octets, utf8 };  // each octet a character, or UTF-8
  BmpPassword() noexcept = default;
  BmpPassword(const BmpPassword &) = delete;
  BmpPassword &operator=(const BmpPassword &) = delete;
  ~BmpPassword() { PKV_Wipe(block_.get(), block_ ? length_ : 0); }
  // A length of -1 measures NUL-terminated text. 0, or a PKV_ERR_ code: BAD_VALUE for what is not UTF-8.
  int set(const char *password, int length, Text text = Text::octets) noexcept;
  Octets octets() const noexcept { return {block_.get(), length_}; }

 private:
  owned<uint8_t> block_;
  size_t length_ = 0;
};

// PBKDF1; codes as PBKDF1.
int derive_pbkdf1(const PasswordWork &work, int digest_id, std::span<uint8_t> out) noexcept;
// The derivation of PKCS#12 (RFC 7292 B.2); `work.password` is a BmpPassword's. 0, or a PKV_ERR_ code.
enum : int { kPkcs12Key = 1, kPkcs12Iv = 2, kPkcs12Mac = 3 };
int derive_pkcs12(const PasswordWork &work, int id, int digest_id, std::span<uint8_t> out) noexcept;

// The key and IV of each scheme. `function` is the code of the scheme's own failures.
int derive_pbes1(const PasswordWork &work, int cipher_id, int digest_id, int function, KeyAndIv &out) noexcept;
int derive_kisa(const PasswordWork &work, int cipher_id, int digest_id, int iv_mode, int function,
                KeyAndIv &out) noexcept;
int derive_gpki(const PasswordWork &work, int cipher_id, int function, KeyAndIv &out) noexcept;
// The key alone, of the cipher's length or, where the cipher has several, of `key_length` octets.
int derive_pbes2(const PasswordWork &work, int cipher_id, int digest_id, int key_length, int function,
                 KeyAndIv &out) noexcept;

// An algorithm of PKCS#12: its digest, and its cipher or the key length of RC4 (then `cipher_id` is 0).
struct Pkcs12Cipher {
  int digest_id, cipher_id, key_length;
};
// False for an algorithm that lacks either.
bool pkcs12_cipher_of(const OBJECT_IDENTIFIER *algorithm, Pkcs12Cipher &out) noexcept;
int derive_pkcs12_cipher(const PasswordWork &work, const Pkcs12Cipher &cipher, KeyAndIv &out) noexcept;

// Encrypts or decrypts; `cipher_id` 0 is RC4. Room and results as the provider's one-shot forms have them.
enum class Direction : bool { encrypt, decrypt };
int run_cipher(Direction direction, int cipher_id, const KeyAndIv &with, Octets in, uint8_t *out,
               int *out_length) noexcept;

// A fixed IV of the KISA scheme.
inline constexpr std::string_view kFixedIv = "8642097531864209", kCountedIv = "0123456789012345";

// The scheme of a registry row, by which keys are encrypted.
enum class Scheme { none, pbes1, kisa, kisa_fixed_iv, gpki, pbes2 };
Scheme scheme_of_row(int row, int cipher_id) noexcept;

// What a PBES2 file says, in the provider's terms.
struct Pbes2 {
  int cipher_id, digest_id, key_length;
  Octets iv;
};
// 0, or a reason: 48 for a cipher or PRF that is not known, 2B for parameters that do not fit the cipher.
int read_pbes2(const P5_PBE_PARAM &param, Pbes2 &out) noexcept;

// The iteration count of parameters: 0, or the reason 49 for one below 1 and 2B for one above `maximum`.
int read_iterations(const P5_PBE_PARAM &param, int maximum, int &out) noexcept;

}  // namespace velpki
