// The MAC of a PFX.
#include <array>

#include "keys/internal/pkcs12.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_SET_PKCS12_MAC, reason); }
constexpr int kUsualSalt = 8;
constexpr int kSmallestCount = 2;  // that is written at all

using Mac = std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>;

constexpr int kDigests[] = {PKV_DIGEST_SHA1, PKV_DIGEST_SHA256, PKV_DIGEST_SHA384, PKV_DIGEST_SHA512,
                            PKV_DIGEST_HAS160};

bool is_usual(int digest_id) noexcept {
  for (const int each : kDigests)
    if (each == digest_id) return true;
  return false;
}

// An absent count and one of 0 mean 1. 0, or the reason of one that is too high.
int read_count(const P12_MAC_DATA &mac, int maximum, int &out) noexcept {
  const unsigned word = mac.iteration ? PKV_Get_BIGINT_Word(mac.iteration) : 1;
  if (word > unsigned(maximum)) return kBadValue;
  out = word ? int(word) : 1;
  return 0;
}

// HMAC under the derived key.
int compute(const P12_MAC_DATA &mac, int digest_id, int iterations, Octets characters, Octets content,
            Mac &out) noexcept {
  Mac key;
  const WipeAtEnd wipe(key.data(), key.size());
  const size_t length = size_t(PKV_Get_DIGEST_Length(digest_id));
  const PasswordWork work{characters, mac.salt ? octets(*mac.salt) : Octets(), iterations};
  if (const int code = derive_pkcs12(work, kPkcs12Mac, digest_id, {key.data(), length})) return code;
  return PKV_HMAC(digest_id, key.data(), int(length), content.data(), int(content.size()), out.data(), nullptr);
}

int compare(const P12_MAC_DATA &mac, const Mac &computed, int length) noexcept {
  const bool same = mac.mac && length > 0 && mac.mac->length == length &&
                    PKV_Equal_Secret(mac.mac->data, computed.data(), size_t(length));
  return same ? 0 : kMismatch;
}

// What the parameters of PBMAC1 say; a password-based key of `key_length` octets is made in `iterations` steps.
struct Pbmac1 {
  owned<P5_PBE_PARAM> param;
  int prf_digest_id, hmac_digest_id, iterations, key_length;
};

// PBMAC1-params (RFC 8018 A.5, RFC 9579) have the shape of those of PBES2, with an HMAC for a cipher.
constexpr int kShortestMacKey = 20;  // octets (RFC 9579); of shorter ones a forger tries all

int read_pbmac1(const P12_MAC_DATA &mac, Budget &budget, Pbmac1 &out) noexcept {
  if (!mac.digestParameters) return ERR_ASN1_DECODING;
  P5_PBE_PARAM *decoded = nullptr;
  if (const int code = from_tlv(F_SEQ_TO_P5_PBE_PARAM, view_of(*mac.digestParameters), &decoded, decode)) {
    return reason_of(code);
  }
  out.param.reset(decoded);
  out.prf_digest_id = prf_digest_id(decoded->prf);
  out.hmac_digest_id = decoded->encryptionScheme ? prf_digest_id(decoded->encryptionScheme) : 0;
  out.key_length = decoded->key_length;
  if (!out.prf_digest_id || !out.hmac_digest_id) return kUnsupported;
  if (const int reason = read_iterations(*decoded, budget.maximum, out.iterations)) return reason;
  const bool fits = out.key_length >= kShortestMacKey && size_t(out.key_length) <= Mac().size();
  return fits && budget.spend(out.iterations) ? 0 : kBadValue;
}

int check_pbmac1(const P12_MAC_DATA &mac, const Pkcs12Password &password, Octets content, Budget &budget) noexcept {
  Pbmac1 by{};
  if (const int reason = read_pbmac1(mac, budget, by)) return reason;
  Mac key, computed;
  const WipeAtEnd wipe(key.data(), key.size());
  const Octets salt = octets(*by.param->salt), text = password.octets();
  int code = PKV_PBKDF2(by.prf_digest_id, text.data(), int(text.size()), salt.data(), int(salt.size()), by.iterations,
                        key.data(), by.key_length);
  if (!code) {
    code = PKV_HMAC(by.hmac_digest_id, key.data(), by.key_length, content.data(), int(content.size()), computed.data(),
                    nullptr);
  }
  return code ? reason_of(code) : compare(mac, computed, PKV_Get_DIGEST_Length(by.hmac_digest_id));
}

}  // namespace

bool auth_safe_octets(const PKCS12 &p12, Octets &out) noexcept {
  const auto *content = content_of<ASN1_STRING>(p12.authSafe, PKCS7_DATA);
  if (!content) return false;
  out = octets(*content);
  return true;
}

int check_mac(const PKCS12 &p12, const Pkcs12Password &password, bool any_digest, Budget &budget) noexcept {
  Octets content;
  Mac computed;
  int iterations = 0;
  const P12_MAC_DATA &mac = *p12.macData;
  if (!auth_safe_octets(p12, content)) return ERR_ASN1_DECODING;
  if (any_digest && index_from_OBJECT_IDENTIFIER(mac.digestAlgorithm) == row::kPbmac1) {
    return check_pbmac1(mac, password, content, budget);
  }
  const int digest_id = get_DigestID_from_OID(mac.digestAlgorithm), length = PKV_Get_DIGEST_Length(digest_id);
  if (!length || digest_id & PKV_HMAC_FLAG || (!any_digest && !is_usual(digest_id))) return kUnsupported;
  if (const int reason = read_count(mac, budget.maximum, iterations)) return reason;
  if (!budget.spend(iterations)) return kBadValue;
  if (const int code = compute(mac, digest_id, iterations, password.characters(), content, computed)) {
    return reason_of(code);
  }
  return compare(mac, computed, length);
}

namespace {

struct MacRequest {
  Octets salt;
  int salt_length, iteration, digest_id;
};

int fill_digest(const MacRequest &request, P12_MAC_DATA &mac, int &digest_id) noexcept {
  digest_id = request.digest_id ? request.digest_id : int(PKV_DIGEST_SHA1);
  if (mac.digestAlgorithm) digest_id = get_DigestID_from_OID(mac.digestAlgorithm);
  if (!is_usual(digest_id)) return failure(ERR_P12_MAC_INIT);
  if (mac.digestAlgorithm) return 0;
  mac.digestAlgorithm = index_to_OBJECT_IDENTIFIER(get_OID_from_DigestID(digest_id));
  return mac.digestAlgorithm ? 0 : failure(ERR_P12_MAC_INIT);
}

int fill_salt(const MacRequest &request, P12_MAC_DATA &mac) noexcept {
  if (mac.salt) return 0;
  const int length = request.salt_length < 1 ? kUsualSalt : request.salt_length;
  const owned<uint8_t> drawn(request.salt.empty() ? new_octets(size_t(length)) : nullptr);
  if (request.salt.empty() && (!drawn || PKV_Rand_Bytes(drawn.get(), length))) return failure(ERR_P12_MAC_INIT);
  mac.salt = new_string(TYPE_OCTET_STRING, request.salt.empty() ? Octets(drawn.get(), size_t(length)) : request.salt);
  return mac.salt ? 0 : failure(ERR_P12_MAC_INIT);
}

int fill_count(const MacRequest &request, P12_MAC_DATA &mac) noexcept {
  if (mac.iteration || request.iteration < kSmallestCount) return 0;
  uint8_t count[kIterationRoom];
  const int length = iteration_octets(request.iteration, count);
  if (length == 0) return 0;
  mac.iteration = PKV_New_BIGINT_Binary(count, length);
  return mac.iteration ? 0 : failure(ERR_P12_MAC_INIT);
}

int fill_mac(const PKCS12 &p12, const BmpPassword &password, const MacRequest &request, P12_MAC_DATA &mac) noexcept {
  int digest_id = 0, iterations = 0;
  Octets content;
  Mac value;
  if (const int code = fill_digest(request, mac, digest_id)) return code;
  if (const int code = fill_salt(request, mac)) return code;
  if (const int code = fill_count(request, mac)) return code;
  if (!auth_safe_octets(p12, content) || read_count(mac, INT_MAX, iterations)) return failure(ERR_P12_MAC_GEN);
  if (compute(mac, digest_id, iterations, password.octets(), content, value)) return failure(ERR_P12_MAC_GEN);
  ASN1_STRING *stored = new_string(TYPE_OCTET_STRING, Octets(value).first(size_t(PKV_Get_DIGEST_Length(digest_id))));
  if (!stored) return failure(ERR_P12_MAC_GEN);
  free_ASN1_STRING(std::exchange(mac.mac, stored));
  return 0;
}

int set_mac(PKCS12 *p12, const char *password, int length, BmpPassword::Text text, const MacRequest &request) noexcept {
  if (!p12) return failure(kNullArgument);
  BmpPassword bmp;
  if (bmp.set(password, length, text)) return failure(ERR_P12_MAC_INIT);
  owned<P12_MAC_DATA> fresh(p12->macData ? copy(p12->macData) : new_P12_MAC_DATA());
  if (!fresh) return failure(ERR_P12_MAC_INIT);
  if (const int code = fill_mac(*p12, bmp, request, *fresh)) return code;
  put(p12->macData, std::move(fresh));
  return 0;
}

int verify_mac(PKCS12 *p12, const char *password, int length, BmpPassword::Text text) noexcept {
  if (!p12) return fail(F_IMPORT_PKCS12, kNullArgument);
  if (!p12->macData) return password ? fail(F_IMPORT_PKCS12, kMismatch) : 0;
  Pkcs12Password both;
  Budget budget;
  if (const int code = both.set({password, length, text})) return fail(F_IMPORT_PKCS12, code);
  const int reason = check_mac(*p12, both, false, budget);
  return reason ? fail(F_IMPORT_PKCS12, reason) : 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_PKCS12_mac(PKCS12 *p12, const char *password, int length, const unsigned char *salt, int salt_length,
                   int iteration, int digest_id) noexcept {
  return set_mac(p12, password, length, BmpPassword::Text::octets,
                 {octets_of(salt, salt_length), salt_length, iteration, digest_id});
}
int set_PKCS12_mac_UTF8(PKCS12 *p12, const char *password, int length, const unsigned char *salt, int salt_length,
                        int iteration, int digest_id) noexcept {
  return set_mac(p12, password, length, BmpPassword::Text::utf8,
                 {octets_of(salt, salt_length), salt_length, iteration, digest_id});
}
int verify_PKCS12_mac(PKCS12 *p12, const char *password, int length) noexcept {
  return verify_mac(p12, password, length, BmpPassword::Text::octets);
}
int verify_PKCS12_mac_UTF8(PKCS12 *p12, const char *password, int length) noexcept {
  return verify_mac(p12, password, length, BmpPassword::Text::utf8);
}

BIGINT *get_PKCS12_MAC_iter(const PKCS12 *p12) noexcept {
  return p12 && p12->macData ? p12->macData->iteration : nullptr;
}
int set_PKCS12_MAC_iter(PKCS12 *p12, const unsigned char *bytes, int length) noexcept {
  if (!p12 || !bytes || length < 1) return 1;
  owned<BIGINT> count(PKV_New_BIGINT_Binary(bytes, length));
  if (!count) return 1;
  if (!p12->macData && !(p12->macData = new_P12_MAC_DATA())) return 1;
  put(p12->macData->iteration, std::move(count));
  return 0;
}
