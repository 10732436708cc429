// Private keys out of containers, by the rules of encrypt_PKCS5.
#include "keys/internal/pbe.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_DEC_PKCS5, reason); }
constexpr size_t kSlack = 32;  // more than a block
constexpr uint8_t kTwoLengthOctets = 0x82;

// What the container's algorithm means.
struct Cipher {
  Scheme scheme;
  int cipher_id, digest_id;
  uint8_t iv[16];
  int iv_length;
};

int digest_or_sha1(const OBJECT_IDENTIFIER *oid) noexcept {
  const int digest_id = get_DigestID_from_OID(oid);
  return digest_id ? digest_id : PKV_DIGEST_SHA1;
}

int resolve_pbes2(const P5_PBE_PARAM &param, Cipher &out) noexcept {
  const X509_ALGO_IDENTIFIER *scheme = param.encryptionScheme;
  out.scheme = Scheme::pbes2;
  out.cipher_id = scheme ? get_CipherID_from_OID(scheme->algorithm) : 0;
  if (!out.cipher_id) return failure(ERR_NOT_FOUNDED);
  out.digest_id = digest_or_sha1(scheme->algorithm);
  const ASN1_STRING *iv = scheme->parameters;
  if (!iv || iv->type != TYPE_OCTET_STRING || size_t(iv->length) > sizeof out.iv) return failure(kBadValue);
  copy_octets(out.iv, octets(*iv));
  out.iv_length = iv->length;
  return 0;
}

int resolve(const OBJECT_IDENTIFIER *oid, const P5_PBE_PARAM &param, Cipher &out) noexcept {
  const int row = index_from_OBJECT_IDENTIFIER(oid);
  if (row == row::kPbes2) return resolve_pbes2(param, out);
  out = {};
  out.cipher_id = get_CipherID_from_OID(oid);
  out.scheme = scheme_of_row(row, out.cipher_id);
  out.digest_id = out.scheme == Scheme::kisa_fixed_iv ? int(PKV_DIGEST_SHA1) : digest_or_sha1(oid);
  return out.scheme == Scheme::none || out.scheme == Scheme::pbes2 ? failure(ERR_NOT_FOUNDED) : 0;
}

int run_scheme(Cipher &cipher, const PasswordWork &work, Octets in, uint8_t *out, int *out_length) noexcept {
  const auto *text = reinterpret_cast<const char *>(work.password.data());
  const int text_length = int(work.password.size()), salt_length = int(work.salt.size()), in_length = int(in.size());
  const uint8_t *salt = work.salt.data();
  switch (cipher.scheme) {
    case Scheme::kisa:
    case Scheme::kisa_fixed_iv:
      return decrypt_PBES1_KISA(out, out_length, text, text_length, salt, salt_length, work.iterations, in.data(),
                                in_length, cipher.cipher_id, cipher.digest_id, cipher.scheme == Scheme::kisa ? 1 : 0);
    case Scheme::gpki:
      return decrypt_PBES1_GPKI(out, out_length, text, text_length, salt, salt_length, work.iterations, in.data(),
                                in_length, cipher.cipher_id);
    case Scheme::pbes1:
      return decrypt_PBES1(out, out_length, text, text_length, salt, salt_length, work.iterations, in.data(), in_length,
                           cipher.cipher_id, cipher.digest_id);
    default:
      return decrypt_PBES2(out, out_length, text, text_length, salt, salt_length, work.iterations, in.data(), in_length,
                           cipher.cipher_id, cipher.digest_id, cipher.iv, &cipher.iv_length);
  }
}

int decode_key(Octets plain, P8_PRIV_KEY_INFO **out) noexcept {
  if (plain.size() < 2 || plain[1] != kTwoLengthOctets) return failure(kFailedStep);
  Tlv tlv;
  Rules rules;
  if (!Tlv::parse(plain, rules, tlv)) return fail(F_SEQ_TO_P8_PRIV_KEY_INFO, ERR_ASN1_DECODING);
  return from_tlv(F_SEQ_TO_P8_PRIV_KEY_INFO, tlv, out, decode);
}

int decrypt_key(const PKCS8 &in, Octets password, P8_PRIV_KEY_INFO **out) noexcept {
  owned<P5_PBE_PARAM> param;
  PasswordWork work{password, {}, 0};
  Cipher cipher{};
  if (const int code = read_pbe_param(*in.algorithm, {}, param)) return code;
  if (const int code = resolve(in.algorithm->algorithm, *param, cipher)) return code;
  if (const int reason = read_iterations(*param, PKCS5_MAX_ITERATIONS, work.iterations)) return failure(reason);
  work.salt = {param->salt->data, size_t(param->salt->length)};
  const Octets encrypted = octets(*in.encryptedData);
  const SecretOctets plain(encrypted.size() + kSlack);
  if (!plain) return failure(kNoMemory);
  int length = plain.size();
  const int code = run_scheme(cipher, work, encrypted, plain.data(), &length);
  if (code) return code == PKV_ERR_FAILED ? failure(kFailedStep) : code;
  return decode_key(octets_of(plain.data(), length), out);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int decrypt_PKCS5(PKCS8 *in, P8_PRIV_KEY_INFO **out, const char *password, int password_length) noexcept {
  if (!in || !in->algorithm || !in->encryptedData || !out || !password) return failure(kNullArgument);
  if (password_length < 0) return failure(kBadValue);
  return decrypt_key(*in, {reinterpret_cast<const unsigned char *>(password), size_t(password_length)}, out);
}
