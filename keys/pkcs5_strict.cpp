// Private keys out of any container: every scheme that is known, and the whole plaintext decides.
#include <velpki/convert.h>

#include "keys/internal/pbe.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_DEC_PKCS5, reason); }
constexpr size_t kSlack = 32;  // more than a block
constexpr int kCbcBit = 0x20;
constexpr int kRc2_64Cbc = 0x07000320;
constexpr int kWrongPassword = F_DEC_PKCS5 | kFailedStep;

struct Opening {
  const P5_PBE_PARAM *param;
  const OBJECT_IDENTIFIER *oid;
  PasswordWork work;
  PKCS5_SCHEME scheme;
  int cipher_id;
  KeyAndIv key;
};

// The reason of a code of the derivation, as this function's own.
int own_code(int code) noexcept { return code ? failure(reason_of(code)) : 0; }

int start_pbes2(Opening &opening) noexcept {
  Pbes2 file{};
  if (const int reason = read_pbes2(*opening.param, file)) return failure(reason);
  opening.scheme = PKCS5_SCHEME_PBES2;
  opening.cipher_id = file.cipher_id;
  copy_octets(opening.key.iv, file.iv);
  opening.key.iv_length = int(file.iv.size());
  return own_code(
      derive_pbes2(opening.work, file.cipher_id, file.digest_id, file.key_length, F_DEC_PKCS5, opening.key));
}

int start_pkcs12(Opening &opening) noexcept {
  Pkcs12Cipher cipher{};
  if (!pkcs12_cipher_of(opening.oid, cipher)) return failure(kUnsupported);
  const auto *text = reinterpret_cast<const char *>(opening.work.password.data());
  const int length = int(opening.work.password.size());
  BmpPassword bmp;
  int code = bmp.set(text, length, BmpPassword::Text::utf8);
  if (code == PKV_ERR_BAD_VALUE) code = bmp.set(text, length);
  if (code) return failure(code);
  opening.scheme = PKCS5_SCHEME_PKCS12;
  opening.cipher_id = cipher.cipher_id;
  return own_code(
      derive_pkcs12_cipher({bmp.octets(), opening.work.salt, opening.work.iterations}, cipher, opening.key));
}

// RC2 of 64 bits (RFC 8018 A.3): the derivation of PBES1 with another cipher.
int start_rc2(Opening &opening) noexcept {
  constexpr int kDesCbc = 0x02000120;
  opening.scheme = PKCS5_SCHEME_PBES1;
  opening.cipher_id = kRc2_64Cbc;
  return own_code(derive_pbes1(opening.work, kDesCbc, get_DigestID_from_OID(opening.oid), F_DEC_PKCS5, opening.key));
}

int start_national(Opening &opening, Scheme scheme) noexcept {
  opening.cipher_id |= kCbcBit;
  if (scheme == Scheme::gpki) {
    opening.scheme = PKCS5_SCHEME_GPKI;
    return own_code(derive_gpki(opening.work, opening.cipher_id, F_DEC_PKCS5, opening.key));
  }
  const bool derived = scheme == Scheme::kisa;
  opening.scheme = derived ? PKCS5_SCHEME_KISA : PKCS5_SCHEME_KISA_FIXED_IV;
  return own_code(
      derive_kisa(opening.work, opening.cipher_id, PKV_DIGEST_SHA1, derived ? 1 : 0, F_DEC_PKCS5, opening.key));
}

int start_pbes1(Opening &opening) noexcept {
  const int digest_id = get_DigestID_from_OID(opening.oid);
  opening.scheme = PKCS5_SCHEME_PBES1;
  return own_code(derive_pbes1(opening.work, opening.cipher_id, digest_id ? digest_id : int(PKV_DIGEST_SHA1),
                               F_DEC_PKCS5, opening.key));
}

int start(Opening &opening) noexcept {
  const int row = index_from_OBJECT_IDENTIFIER(opening.oid);
  if (row == row::kPbes2) return start_pbes2(opening);
  if (row >= row::kPbeRc4_128 && row <= row::kPbeRc2_40) return start_pkcs12(opening);
  if (row == row::kPbeMd5Rc2 || row == row::kPbeSha1Rc2) return start_rc2(opening);
  opening.cipher_id = get_CipherID_from_OID(opening.oid);
  switch (const Scheme scheme = scheme_of_row(row, opening.cipher_id)) {
    case Scheme::kisa:
    case Scheme::kisa_fixed_iv:
    case Scheme::gpki:
      return start_national(opening, scheme);
    case Scheme::pbes1:
      return start_pbes1(opening);
    default:
      return failure(kUnsupported);
  }
}

// The whole plaintext as one key. Nothing but exhausted memory tells how it failed.
int decode_whole(Octets plain, P8_PRIV_KEY_INFO **out) noexcept {
  Tlv tlv;
  Rules rules = kStandardRules;
  if (!Tlv::parse(plain, rules, tlv) || tlv.identifier != tag::kSequence || tlv.whole.size() != plain.size()) {
    return kWrongPassword;
  }
  const int code = from_tlv(F_SEQ_TO_P8_PRIV_KEY_INFO, tlv, out, decode);
  return code ? reason_of(code) == kNoMemory ? failure(kNoMemory) : kWrongPassword : 0;
}

// The plaintext under the other IV differs in its first block alone, so one decryption tries both.
void change_iv(uint8_t *plain, size_t length) noexcept {
  for (size_t i = 0; i < length && i < kFixedIv.size(); ++i) plain[i] = uint8_t(plain[i] ^ kFixedIv[i] ^ kCountedIv[i]);
}

int decrypt_whole(Opening &opening, Octets encrypted, P8_PRIV_KEY_INFO **out) noexcept {
  const SecretOctets plain(encrypted.size() + kSlack);
  if (!plain) return failure(kNoMemory);
  int length = plain.size();
  const int code = run_cipher(Direction::decrypt, opening.cipher_id, opening.key, encrypted, plain.data(), &length);
  if (code) return code == PKV_ERR_FAILED ? kWrongPassword : own_code(code);
  const int decoded = decode_whole(octets_of(plain.data(), length), out);
  if (decoded != kWrongPassword || opening.scheme != PKCS5_SCHEME_KISA_FIXED_IV) return decoded;
  opening.scheme = PKCS5_SCHEME_KISA_COUNTED_IV;
  change_iv(plain.data(), size_t(length));
  return decode_whole(octets_of(plain.data(), length), out);
}

int open_container(const PKCS8 &in, Octets password, int maximum, PKCS5_SCHEME *scheme,
                   P8_PRIV_KEY_INFO **out) noexcept {
  owned<P5_PBE_PARAM> param;
  if (const int code = read_pbe_param(*in.algorithm, kStandardRules, param)) return own_code(code);
  Opening opening{param.get(), in.algorithm->algorithm, {password, octets(*param->salt), 0}, {}, 0, {}};
  if (const int reason = read_iterations(*param, maximum, opening.work.iterations)) return failure(reason);
  if (const int code = start(opening)) return code;
  if (const int code = decrypt_whole(opening, octets(*in.encryptedData), out)) return code;
  if (scheme) *scheme = opening.scheme;
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int decrypt_PKCS5_strict(const PKCS8 *in, P8_PRIV_KEY_INFO **out, const char *password, int password_length,
                         int max_iterations, PKCS5_SCHEME *scheme) noexcept {
  if (!in || !in->algorithm || !in->algorithm->algorithm || !in->encryptedData || !out || !password) {
    return failure(kNullArgument);
  }
  if (password_length < 0 || max_iterations < 0) return failure(kBadValue);
  return open_container(*in, {reinterpret_cast<const unsigned char *>(password), size_t(password_length)},
                        max_iterations ? max_iterations : int(PKCS5_MAX_ITERATIONS), scheme, out);
}
