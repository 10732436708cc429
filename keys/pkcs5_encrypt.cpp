// Private keys into containers.
#include <array>

#include "keys/internal/pbe.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_ENC_PKCS5, reason); }
constexpr int kUnknownRow = 0x3B;  // a row that names no cipher
constexpr int kOidNotSet = 0x30;   // the container does not take its algorithm
constexpr size_t kSlack = 32;      // more than a padding
constexpr int kUsualSalt = 8, kModernSalt = 16;

// What was asked for, and what follows from it.
struct Request {
  PasswordWork work;
  int digest_id;
  Octets iv;
  unsigned flags;
  owned<OBJECT_IDENTIFIER> oid;
  int row, cipher_id;
  Scheme scheme;
  uint8_t salt[kUsualSalt];
  uint8_t count[kIterationRoom];
  int count_length;
};

bool states_prf(const Request &request) noexcept {
  return request.scheme == Scheme::pbes2 && request.flags & PKCS5_STATE_PRF;
}

// The scheme of the row. A digest that the container cannot state must be the row's. The count must leave octets to
// write, which is seen before anything is derived.
int resolve(int oid_index, Request &request) noexcept {
  request.row = oid_index;
  request.oid = oid_of_row(oid_index);
  request.cipher_id = get_CipherID_from_OID(request.oid.get());
  request.scheme = scheme_of_row(oid_index, request.cipher_id);
  if (!request.cipher_id) return failure(kUnknownRow);
  const int row_digest = get_DigestID_from_OID(request.oid.get());
  const int usual = row_digest ? row_digest : PKV_DIGEST_SHA1;
  if (!request.digest_id) request.digest_id = usual;
  const bool stated = states_prf(request);
  if (stated ? prf_oid(request.digest_id).empty() : request.digest_id != usual) return failure(kBadValue);
  const bool exact = request.flags & PKCS5_EXACT_ITERATIONS;
  request.count_length = exact ? exact_iteration_octets(request.work.iterations, request.count)
                               : iteration_octets(request.work.iterations, request.count);
  return request.count_length > 0 ? 0 : 1;
}

int fill_salt(Request &request) noexcept {
  if (!request.work.salt.empty()) return 0;
  if (const int code = PKV_Rand_Bytes(request.salt, kUsualSalt)) return code;
  request.work.salt = request.salt;
  return 0;
}

struct Encrypted {
  owned<uint8_t> octets;
  int length;
  uint8_t iv[16];
  int iv_length;
};

int run_scheme(const Request &request, Octets in, Encrypted &out) noexcept {
  const auto &[password, salt, iterations] = request.work;
  const auto *text = reinterpret_cast<const char *>(password.data());
  const int text_length = int(password.size()), salt_length = int(salt.size()), in_length = int(in.size());
  switch (request.scheme) {
    case Scheme::kisa:
    case Scheme::kisa_fixed_iv:
      return encrypt_PBES1_KISA(out.octets.get(), &out.length, text, text_length, salt.data(), salt_length, iterations,
                                in.data(), in_length, request.cipher_id, request.digest_id,
                                request.scheme == Scheme::kisa ? 1 : 0);
    case Scheme::gpki:
      return encrypt_PBES1_GPKI(out.octets.get(), &out.length, text, text_length, salt.data(), salt_length, iterations,
                                in.data(), in_length, request.cipher_id);
    case Scheme::pbes1:
      return encrypt_PBES1(out.octets.get(), &out.length, text, text_length, salt.data(), salt_length, iterations,
                           in.data(), in_length, request.cipher_id, request.digest_id);
    default:
      return encrypt_PBES2(out.octets.get(), &out.length, text, text_length, salt.data(), salt_length, iterations,
                           in.data(), in_length, request.cipher_id, request.digest_id, out.iv, &out.iv_length);
  }
}

int encrypt_octets(const Request &request, Octets in, Encrypted &out) noexcept {
  if (request.iv.size() > sizeof out.iv) return failure(kBadValue);
  copy_octets(out.iv, request.iv);
  out.iv_length = int(request.iv.size());
  out.octets = new_octets(in.size() + kSlack);
  out.length = int(in.size() + kSlack);
  return out.octets ? run_scheme(request, in, out) : failure(kNoMemory);
}

// The identifier of the cipher alone, where the registry leads back from it and no digest of the row's would be lost;
// else the row's own.
owned<OBJECT_IDENTIFIER> cipher_oid(const Request &request) noexcept {
  const int own_digest = get_DigestID_from_OID(request.oid.get());
  owned<OBJECT_IDENTIFIER> oid = oid_of_row(get_OID_from_CipherID(request.cipher_id));
  const bool leads_back = oid && get_CipherID_from_OID(oid.get()) == request.cipher_id;
  if (leads_back && (!own_digest || own_digest == PKV_DIGEST_SHA1 || states_prf(request))) return oid;
  return owned<OBJECT_IDENTIFIER>(dup_OBJECT_IDENTIFIER(request.oid.get()));
}

// 0, or a code: that of set_P5_PBE_PARAM as it is.
int set_parameters(const Request &request, const Encrypted &encrypted, PKCS8 &p8) noexcept {
  const owned<P5_PBE_PARAM> param(new_P5_PBE_PARAM());
  const bool pbes2 = request.scheme == Scheme::pbes2;
  const owned<OBJECT_IDENTIFIER> cipher = pbes2 ? cipher_oid(request) : nullptr;
  const owned<ASN1_STRING> iv(pbes2 ? new_string(TYPE_OCTET_STRING, octets_of(encrypted.iv, encrypted.iv_length))
                                    : nullptr);
  if (!param || (pbes2 && (!cipher || !iv))) return failure(kNoMemory);
  const Octets salt = request.work.salt;
  if (const int code = set_P5_PBE_PARAM(param.get(), salt.data(), int(salt.size()), request.count, request.count_length,
                                        cipher.get(), iv.get())) {
    return code;
  }
  const bool stated = states_prf(request);
  if (stated && !set_prf(*param, request.digest_id)) return failure(kNoMemory);
  return store_pbe_param(*p8.algorithm, *param, stated ? kStandardRules : Rules()) ? 0 : failure(kNoMemory);
}

int kind_of(Scheme scheme) noexcept {
  return scheme == Scheme::pbes2 ? PKCS8_PBES2 : scheme == Scheme::pbes1 ? PKCS8_PBES1 : PKCS8_NATIONAL;
}

int fill_container(const Request &request, const Encrypted &encrypted, PKCS8 &p8) noexcept {
  p8.kind = kind_of(request.scheme);
  const owned<OBJECT_IDENTIFIER> pbes2 = oid_of_row(row::kPbes2);
  if (set_OID_PKCS8(&p8, request.scheme == Scheme::pbes2 ? pbes2.get() : request.oid.get())) {
    return failure(kOidNotSet);
  }
  if (set_encryptedData_PKCS8(&p8, encrypted.octets.get(), encrypted.length)) return failure(kNoMemory);
  return set_parameters(request, encrypted, p8);
}

int encrypt_key(const P8_PRIV_KEY_INFO &key, PKCS8 **out, int oid_index, Request &request) noexcept {
  DerWriter der({}, Content::secret);
  if (const int code = encode(key, der)) return code;
  if (const int code = der.result(F_P8_PRIV_KEY_INFO_TO_SEQ)) return code;
  if (const int code = resolve(oid_index, request)) return code;
  if (const int code = fill_salt(request)) return code;
  Encrypted encrypted{};
  if (const int code = encrypt_octets(request, der.written(), encrypted)) return code;
  owned<PKCS8> fresh(blank<PKCS8>());
  if (!fresh) return failure(kNoMemory);
  if (const int code = fill_container(request, encrypted, *fresh)) return code;
  return store(std::move(fresh), out);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int encrypt_PKCS5_ex(P8_PRIV_KEY_INFO *key, PKCS8 **out, const char *password, int password_length,
                     const unsigned char *salt, int salt_length, int iterations, int oid_index, int digest_id,
                     const unsigned char *iv, int iv_length, unsigned flags) noexcept {
  if (!key || !out || !password || iterations < 1) return failure(kNullArgument);
  if (password_length < 0) return failure(kBadValue);
  const Octets octets(reinterpret_cast<const unsigned char *>(password), size_t(password_length));
  Request request{};
  request.work = {octets, octets_of(salt, salt_length), iterations};
  request.digest_id = digest_id;
  request.iv = octets_of(iv, iv_length);
  request.flags = flags;
  return encrypt_key(*key, out, oid_index, request);
}

int encrypt_PKCS5(P8_PRIV_KEY_INFO *key, PKCS8 **out, const char *password, int password_length,
                  const unsigned char *salt, int salt_length, int iterations, int oid_index) noexcept {
  return encrypt_PKCS5_ex(key, out, password, password_length, salt, salt_length, iterations, oid_index, 0, nullptr, 0,
                          0);
}

int encrypt_PKCS5_modern(P8_PRIV_KEY_INFO *key, PKCS8 **out, const char *password, int password_length,
                         int iterations) noexcept {
  uint8_t salt[kModernSalt];
  if (const int code = PKV_Rand_Bytes(salt, kModernSalt)) return code;
  return encrypt_PKCS5_ex(key, out, password, password_length, salt, kModernSalt, iterations, row::kAes256Cbc,
                          PKV_DIGEST_SHA256, nullptr, 0, PKCS5_EXACT_ITERATIONS | PKCS5_STATE_PRF);
}
