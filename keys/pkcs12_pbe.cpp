// Encryption of safes and keys in PKCS#12.
#include "keys/internal/pkcs12.h"

namespace velpki {

namespace {

constexpr int kUsualSalt = 8, kUsualIterations = 2048;
constexpr size_t kSlack = 32;  // more than a padding
constexpr int kAes256 = 0x01000320;

// What is needed of a row: how its key is derived, and its cipher.
enum class Way { pkcs12, pbes1, pbes2 };
struct Means {
  Way way;
  Pkcs12Cipher cipher;
  bool pbes2() const noexcept { return way == Way::pbes2; }
};

int derive(const Means &means, const Pkcs12Password &password, Octets salt, int iterations, KeyAndIv &key) noexcept {
  const auto &[digest_id, cipher_id, key_length] = means.cipher;
  const PasswordWork by_octets{password.octets(), salt, iterations};
  switch (means.way) {
    case Way::pbes1:
      return derive_pbes1(by_octets, cipher_id, digest_id, 0, key);
    case Way::pbes2:
      return derive_pbes2(by_octets, cipher_id, digest_id, key_length, 0, key);
    default:
      return derive_pkcs12_cipher({password.characters(), salt, iterations}, means.cipher, key);
  }
}

// The salt that is given, or a new one in `drawn`.
int choose_salt(const Pkcs12Request &request, owned<uint8_t> &drawn, Octets &salt) noexcept {
  salt = request.salt;
  if (!salt.empty()) return 0;
  const int length = request.salt_length < 1 ? kUsualSalt : request.salt_length;
  drawn = new_octets(size_t(length));
  if (!drawn) return PKV_ERR_NO_MEMORY;
  salt = {drawn.get(), size_t(length)};
  return PKV_Rand_Bytes(drawn.get(), length);
}

int find_means(int pbe_index, Means &out) noexcept {
  if (pbe_index == row::kPbes2) {
    out = {Way::pbes2, {PKV_DIGEST_SHA256, kAes256, 0}};
    return 0;
  }
  out.way = Way::pkcs12;
  return pkcs12_cipher_of(oid_of_row(pbe_index).get(), out.cipher) ? 0 : PKV_ERR_UNSUPPORTED;
}

int fill_parameters(const Means &means, Octets salt, int iterations, const KeyAndIv &key,
                    P5_PBE_PARAM &param) noexcept {
  uint8_t count[kIterationRoom];
  const int length = iteration_octets(iterations, count);
  const owned<OBJECT_IDENTIFIER> cipher = means.pbes2() ? oid_of_row(row::kAes256Cbc) : nullptr;
  const owned<ASN1_STRING> iv(means.pbes2() ? new_string(TYPE_OCTET_STRING, octets_of(key.iv, key.iv_length))
                                            : nullptr);
  if (means.pbes2() && (!cipher || !iv)) return PKV_ERR_NO_MEMORY;
  if (set_P5_PBE_PARAM(&param, salt.data(), int(salt.size()), count, length, cipher.get(), iv.get())) {
    return PKV_ERR_NO_MEMORY;
  }
  return means.pbes2() && !set_prf(param, means.cipher.digest_id) ? PKV_ERR_NO_MEMORY : 0;
}

// The key and IV of a new file: those of PBES1 follow from the password, the IV of PBES2 is drawn.
int make_key(const Means &means, const Pkcs12Password &password, Octets salt, int iterations, KeyAndIv &out) noexcept {
  if (const int code = derive(means, password, salt, iterations, out)) return code;
  if (!means.pbes2()) return 0;
  out.iv_length = PKV_Get_BLOCK_CIPHER_IV_Length(means.cipher.cipher_id);
  return PKV_Rand_Bytes(out.iv, out.iv_length);
}

int encrypt(const Means &means, const KeyAndIv &key, Octets in, Protected &out) noexcept {
  out.octets = new_octets(in.size() + kSlack);
  if (!out.octets) return PKV_ERR_NO_MEMORY;
  out.length = int(in.size() + kSlack);
  return run_cipher(Direction::encrypt, means.cipher.cipher_id, key, in, out.octets.get(), &out.length);
}

int make_algorithm(int pbe_index, const P5_PBE_PARAM &param, owned<X509_ALGO_IDENTIFIER> &out) noexcept {
  out = new_algorithm(oid_of_row(pbe_index).get());
  return out && store_pbe_param(*out, param, kStandardRules) ? 0 : PKV_ERR_NO_MEMORY;
}

}  // namespace

int Pkcs12Password::set(const PasswordText &text) noexcept {
  const auto &[password, length, form] = text;
  if (const int code = bmp_.set(password, length, form)) return code;
  const size_t size = !password ? 0 : length < 0 ? std::strlen(password) : size_t(length);
  octets_ = {reinterpret_cast<const uint8_t *>(password), size};
  return 0;
}

int protect(const Pkcs12Request &request, Octets in, Protected &out) noexcept {
  Means means{};
  const int iterations = request.iterations < 1 ? kUsualIterations : request.iterations;
  uint8_t count[kIterationRoom];
  if (iteration_octets(iterations, count) == 0) return 1;
  if (const int code = find_means(request.pbe_index, means)) return code;
  owned<uint8_t> drawn;
  Octets salt;
  if (const int code = choose_salt(request, drawn, salt)) return code;
  KeyAndIv key;
  if (const int code = make_key(means, *request.password, salt, iterations, key)) return code;
  if (const int code = encrypt(means, key, in, out)) return code;
  const owned<P5_PBE_PARAM> param(new_P5_PBE_PARAM());
  if (!param) return PKV_ERR_NO_MEMORY;
  if (const int code = fill_parameters(means, salt, iterations, key, *param)) return code;
  return make_algorithm(request.pbe_index, *param, out.algorithm);
}

namespace {

// What the parameters of a file say. The IV of PBES2 goes into the key.
int read_means(const X509_ALGO_IDENTIFIER &algorithm, const P5_PBE_PARAM &param, bool pbes1, Means &out,
               KeyAndIv &key) noexcept {
  if (const int row = index_from_OBJECT_IDENTIFIER(algorithm.algorithm); row != row::kPbes2) {
    if (!pkcs12_cipher_of(algorithm.algorithm, out.cipher)) return kUnsupported;
    const bool is_pbes1 = pbes1 && scheme_of_row(row, out.cipher.cipher_id) == Scheme::pbes1;
    out.way = is_pbes1 ? Way::pbes1 : Way::pkcs12;
    return 0;
  }
  Pbes2 file{};
  if (const int reason = read_pbes2(param, file)) return reason;
  out = {Way::pbes2, {file.digest_id, file.cipher_id, file.key_length}};
  copy_octets(key.iv, file.iv);
  key.iv_length = int(file.iv.size());
  return 0;
}

}  // namespace

int unprotect(const X509_ALGO_IDENTIFIER &algorithm, const Pkcs12Password &password, Budget &budget, Octets in,
              uint8_t *plain, int *length) noexcept {
  owned<P5_PBE_PARAM> param;
  Means means{};
  KeyAndIv key;
  int iterations = 0;
  if (const int code = read_pbe_param(algorithm, kStandardRules, param)) return reason_of(code);
  if (const int reason = read_means(algorithm, *param, budget.pbes1, means, key)) return reason;
  if (const int reason = read_iterations(*param, budget.maximum, iterations)) return reason;
  if (!budget.spend(iterations)) return kBadValue;
  if (const int code = derive(means, password, octets(*param->salt), iterations, key)) return reason_of(code);
  return run_cipher(Direction::decrypt, means.cipher.cipher_id, key, in, plain, length);
}

int open_encrypted(const P7_CONTENT_INFO &p7, const Pkcs12Password &password, Budget &budget,
                   P12_SAFEBAGS *&out) noexcept {
  const P7_ENCRYPTED_DATA *data = encrypted_data(&p7);
  const P7_ENCRYPTED_CONTENT_INFO *info = data ? data->encryptedContentInfo : nullptr;
  if (!info || !info->contentEncryptionAlgorithm || !info->encryptedContent) return ERR_ASN1_DECODING;
  const Octets encrypted = octets(*info->encryptedContent);
  const SecretOctets plain(encrypted.size() + kSlack);
  if (!plain) return kNoMemory;
  int length = plain.size();
  if (const int reason =
          unprotect(*info->contentEncryptionAlgorithm, password, budget, encrypted, plain.data(), &length)) {
    return reason;
  }
  return reason_of(
      list_of_octets<P12_SAFEBAG>(octets_of(plain.data(), length), F_SEQ_TO_P12_SAFEBAGS, decode_safe_bags, out));
}

int open_shrouded(const PKCS8 &p8, const Pkcs12Password &password, Budget &budget,
                  owned<P8_PRIV_KEY_INFO> &out) noexcept {
  if (!p8.algorithm || !p8.algorithm->algorithm || !p8.encryptedData) return ERR_ASN1_DECODING;
  const Octets encrypted = octets(*p8.encryptedData);
  const SecretOctets plain(encrypted.size() + kSlack);
  if (!plain) return kNoMemory;
  int length = plain.size();
  if (const int reason = unprotect(*p8.algorithm, password, budget, encrypted, plain.data(), &length)) return reason;
  Tlv tlv;
  Rules rules = kStandardRules;
  if (!Tlv::parse(octets_of(plain.data(), length), rules, tlv)) return ERR_ASN1_DECODING;
  P8_PRIV_KEY_INFO *key = nullptr;
  const int code = from_tlv(F_SEQ_TO_P8_PRIV_KEY_INFO, tlv, &key, decode);
  out.reset(key);
  return reason_of(code);
}

}  // namespace velpki
