// Recipients that share a password: PBKDF2 and the key wrap of RFC 3211.
#include <algorithm>

#include "cms/internal/hmac_algorithm.h"
#include "cms/internal/key_wrap.h"
#include "cms/internal/signature.h"

namespace velpki {

namespace {

constexpr std::string_view kPbkdf2 = "1.2.840.113549.1.5.12", kPwriKek = "1.2.840.113549.1.9.16.3.9";
constexpr int kSaltOctets = 16;

// The cipher of the wrap and its IV.
struct Cipher {
  int id = 0;
  Octets iv;
  owned<X509_ALGO_IDENTIFIER> algorithm;
  int key_length() const noexcept { return PKV_Get_BLOCK_CIPHER_Key_Length(id); }
  int block() const noexcept { return PKV_Get_BLOCK_CIPHER_Block_Length(id); }
};
// id-alg-PWRI-KEK, whose parameters are the AlgorithmIdentifier of a cipher in CBC mode.
bool read_cipher(const X509_ALGO_IDENTIFIER *algorithm, Cipher &out) noexcept {
  Tlv parameters;
  if (!algorithm || !algorithm->algorithm || text(*algorithm->algorithm) != kPwriKek) return false;
  if (!parameters_view(*algorithm, parameters) || parameters.identifier != tag::kSequence) return false;
  out.algorithm.reset(blank<X509_ALGO_IDENTIFIER>());
  if (!out.algorithm || decode(parameters, *out.algorithm)) return false;
  out.id = content_cipher_id(out.algorithm.get());
  return out.id && (out.id & 0xFF) == PKV_MODE_CBC && content_iv(*out.algorithm, out.id, true, out.iv) &&
         int(out.iv.size()) == out.block();
}

// PBKDF2-params ::= SEQUENCE { salt OCTET STRING, iterationCount INTEGER, keyLength INTEGER OPTIONAL,
//   prf AlgorithmIdentifier DEFAULT hmacWithSHA1 }
struct Derivation {
  Octets salt;
  int iterations = 0, digest_id = PKV_DIGEST_SHA1;
};
bool read_count(Cursor &in, int most, int &out) noexcept {
  Tlv number;
  if (!in.next(TYPE_INTEGER, number) || number.content.empty() || number.content.size() > 4) return false;
  unsigned value = 0;
  for (const uint8_t octet : number.content) value = value << 8 | octet;
  out = value > unsigned(most) ? 0 : int(value);
  return out > 0;
}
bool read_prf(Cursor &in, int &digest_id) noexcept {
  Tlv child;
  const owned<X509_ALGO_IDENTIFIER> prf(blank<X509_ALGO_IDENTIFIER>());
  if (!in.next(TYPE_SEQUENCE, child) || !prf || decode(child, *prf)) return false;
  digest_id = hmac_digest(prf.get());
  return digest_id != 0;
}
bool read_derivation(const X509_ALGO_IDENTIFIER &algorithm, int key_length, Derivation &out) noexcept {
  Tlv parameters, salt;
  int stated = key_length;
  if (!algorithm.algorithm || text(*algorithm.algorithm) != kPbkdf2) return false;
  if (!parameters_view(algorithm, parameters) || parameters.identifier != tag::kSequence) return false;
  Cursor in(parameters);
  if (!in.at(TYPE_OCTET_STRING) || !in.next(salt) || !read_count(in, kMostIterations, out.iterations)) return false;
  out.salt = salt.content;
  if (in.at(TYPE_INTEGER) && !read_count(in, INT_MAX, stated)) return false;
  if (!in.at_end() && !read_prf(in, out.digest_id)) return false;
  return stated == key_length && in.at_end();
}

// The key that a password means: derived from it, or without derivation the octets themselves.
int derive(const PASSWORD_RECIPIENT_INFO &info, Octets password, int function, int &iterations_left,
           SecretOctets &kek) noexcept {
  Derivation from;
  if (!kek) return fail(function, kNoMemory);
  if (!info.keyDerivationAlgorithm) {
    if (password.size() != size_t(kek.size())) return fail(function, kBadValue);
    copy_octets(kek.data(), password);
    return 0;
  }
  if (!read_derivation(*info.keyDerivationAlgorithm, kek.size(), from)) return fail(function, kUnsupported);
  if (from.iterations > iterations_left) return PKV_ERR_FAILED;
  iterations_left -= from.iterations;
  return PKV_PBKDF2(from.digest_id, password.data(), int(password.size()), from.salt.data(), int(from.salt.size()),
                    from.iterations, kek.data(), kek.size());
}

// CBC without padding over a buffer of whole blocks.
int run_cbc(const Cipher &cipher, const SecretOctets &kek, Octets iv, bool encrypt, Octets in, uint8_t *out) noexcept {
  const owned<BLOCK_CIPHER_UNIT> unit(PKV_New_BLOCK_CIPHER());
  if (!unit) return PKV_ERR_NO_MEMORY;
  int length = int(in.size());
  if (const int code =
          PKV_Init_BLOCK_CIPHER(unit.get(), cipher.id, kek.data(), kek.size(), iv.data(), int(iv.size()), encrypt)) {
    return code;
  }
  if (const int code = PKV_Set_BLOCK_CIPHER_Padding(unit.get(), 0)) return code;
  if (const int code = PKV_Update_BLOCK_CIPHER(unit.get(), in.data(), int(in.size()), out, &length)) return code;
  return length == int(in.size()) ? 0 : PKV_ERR_FAILED;
}

// RFC 3211 2.3.1: length, three check octets, the key and random octets, encrypted twice; the second time begins from
// the last block of the first.
int wrap_twice(const Cipher &cipher, const SecretOctets &kek, Octets key, int function, ASN1_STRING *&out) noexcept {
  const size_t block = size_t(cipher.block());
  const size_t blocks = std::max(size_t(2), (key.size() + 4 + block - 1) / block), size = blocks * block;
  const SecretOctets plain(size), inner(size), outer(size);
  if (!plain || !inner || !outer) return fail(function, kNoMemory);
  if (key.size() < 3 || key.size() > 255) return fail(function, kBadValue);
  if (const int code = PKV_Rand_Bytes(plain.data(), plain.size())) return code;
  plain.data()[0] = uint8_t(key.size());
  for (size_t i = 0; i < 3; ++i) plain.data()[1 + i] = uint8_t(~key[i]);
  copy_octets(plain.data() + 4, key);
  if (const int code = run_cbc(cipher, kek, cipher.iv, true, Octets(plain.data(), size), inner.data())) return code;
  const Octets last(inner.data() + size - block, block);
  if (const int code = run_cbc(cipher, kek, last, true, Octets(inner.data(), size), outer.data())) return code;
  ASN1_STRING *string = new_string(TYPE_OCTET_STRING, Octets(outer.data(), size));
  if (!string) return fail(function, kNoMemory);
  free_ASN1_STRING(std::exchange(out, string));
  return 0;
}

// The last block of the first encryption comes out of the last two of the second, and is what that began from.
int unwrap_twice(const Cipher &cipher, const SecretOctets &kek, Octets wrapped, uint8_t *plain) noexcept {
  const size_t block = size_t(cipher.block()), size = wrapped.size();
  const SecretOctets inner(size);
  if (!inner) return PKV_ERR_NO_MEMORY;
  uint8_t *const last = inner.data() + size - block;
  const Octets before_last = wrapped.subspan(size - 2 * block, block);
  if (const int code = run_cbc(cipher, kek, before_last, false, wrapped.subspan(size - block), last)) return code;
  if (const int code = run_cbc(cipher, kek, Octets(last, block), false, wrapped.first(size - block), inner.data())) {
    return code;
  }
  return run_cbc(cipher, kek, cipher.iv, false, Octets(inner.data(), size), plain);
}

// Whether the octets are a key of that length with its check octets; the time does not tell which was wrong.
bool is_wrapped_key(const uint8_t *plain, size_t length) noexcept {
  unsigned difference = plain[0] ^ unsigned(length);
  for (size_t i = 0; i < 3; ++i) difference |= unsigned(plain[1 + i] ^ plain[4 + i]) ^ 0xFF;
  return difference == 0;
}

}  // namespace

namespace {

int set_derivation(X509_ALGO_IDENTIFIER *&algorithm, std::string_view prf, int iterations, int function) noexcept {
  uint8_t salt[kSaltOctets];
  DerWriter parameters;
  if (const int code = PKV_Rand_Bytes(salt, kSaltOctets)) return code;
  {
    const auto sequence = parameters.sequence();
    parameters.primitive(TYPE_OCTET_STRING, salt);
    parameters.integer(unsigned(iterations));
    const auto inner = parameters.sequence();
    parameters.oid_text(prf);
    parameters.null();
  }
  if (parameters.failed()) return fail(function, kNoMemory);
  return set_algorithm_text(algorithm, kPbkdf2, parameters.written(), function);
}

int set_cipher(X509_ALGO_IDENTIFIER *&algorithm, int cipher_id, int function) noexcept {
  uint8_t iv[kSaltOctets];
  DerWriter parameters;
  const owned<OBJECT_IDENTIFIER> cipher = oid_of_row(get_OID_from_CipherID(cipher_id));
  const int block = PKV_Get_BLOCK_CIPHER_Block_Length(cipher_id);
  if (!cipher || (cipher_id & 0xFF) != PKV_MODE_CBC || block > kSaltOctets) return fail(function, kUnsupported);
  if (const int code = PKV_Rand_Bytes(iv, block)) return code;
  {
    const auto sequence = parameters.sequence();
    parameters.oid(cipher.get());
    parameters.primitive(TYPE_OCTET_STRING, octets_of(iv, block));
  }
  if (parameters.failed()) return fail(function, kNoMemory);
  return set_algorithm_text(algorithm, kPwriKek, parameters.written(), function);
}

}  // namespace

int set_password_algorithms(PASSWORD_RECIPIENT_INFO &info, int digest_id, int cipher_id, int iterations,
                            int function) noexcept {
  const std::string_view prf = hmac_oid(digest_id);
  if (prf.empty()) return fail(function, kUnsupported);
  if (iterations < 1 || iterations > kMostIterations) return fail(function, kBadValue);
  if (const int code = set_derivation(info.keyDerivationAlgorithm, prf, iterations, function)) return code;
  return set_cipher(info.keyEncryptionAlgorithm, cipher_id, function);
}

int wrap_for_password(PASSWORD_RECIPIENT_INFO &info, Octets content_key, int function) noexcept {
  Cipher cipher;
  int iterations_left = kMostIterations;
  if (!info.password) return fail(function, kNullArgument);
  if (!read_cipher(info.keyEncryptionAlgorithm, cipher)) return fail(function, kUnsupported);
  SecretOctets kek(size_t(cipher.key_length()));
  if (const int code = derive(info, octets(*info.password), function, iterations_left, kek)) return code;
  return wrap_twice(cipher, kek, content_key, function, info.encryptedKey);
}

int unwrap_with_password(const PASSWORD_RECIPIENT_INFO &info, Octets password, int function, int &iterations_left,
                         SecretOctets &out) noexcept {
  Cipher cipher;
  if (!read_cipher(info.keyEncryptionAlgorithm, cipher)) return fail(function, kUnsupported);
  const Octets wrapped = info.encryptedKey ? octets(*info.encryptedKey) : Octets();
  const size_t block = size_t(cipher.block());
  const bool fits = wrapped.size() >= std::max(2 * block, size_t(out.size()) + 4) && wrapped.size() <= 256 + block &&
                    wrapped.size() % block == 0;
  if (!fits) return PKV_ERR_FAILED;
  SecretOctets kek(size_t(cipher.key_length()));
  const SecretOctets plain(wrapped.size());
  if (!plain) return fail(function, kNoMemory);
  if (const int code = derive(info, password, function, iterations_left, kek)) return code;
  if (const int code = unwrap_twice(cipher, kek, wrapped, plain.data())) return code;
  if (!is_wrapped_key(plain.data(), size_t(out.size()))) return PKV_ERR_FAILED;
  copy_octets(out.data(), octets_of(plain.data() + 4, out.size()));
  return 0;
}

}  // namespace velpki
