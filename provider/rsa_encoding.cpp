// The message encodings of RFC 8017: EMSA-PKCS1-v1_5 (9.2), EMSA-PSS (9.1), MGF1 (B.2.1).
#include <algorithm>

#include "provider/internal/rsa.h"

namespace velcrypto {

namespace {

struct DigestOid {
  int digest_id;
  uint8_t length;
  uint8_t octets[9];
};
constexpr DigestOid kDigestOids[] = {
    {PKV_DIGEST_MD5, 8, {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x02, 0x05}},
    {PKV_DIGEST_SHA1, 5, {0x2B, 0x0E, 0x03, 0x02, 0x1A}},
    {PKV_DIGEST_SHA224, 9, {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x04}},
    {PKV_DIGEST_SHA256, 9, {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x01}},
    {PKV_DIGEST_SHA384, 9, {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x02}},
    {PKV_DIGEST_SHA512, 9, {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x03}},
    {PKV_DIGEST_HAS160, 8, {0x2A, 0x83, 0x1A, 0x8C, 0x9A, 0x44, 0x01, 0x02}},
    {PKV_DIGEST_MDC2, 4, {0x55, 0x08, 0x03, 0x65}},
};

const DigestOid *find_oid(int digest_id) noexcept {
  for (const DigestOid &one : kDigestOids) {
    if (one.digest_id == digest_id) return &one;
  }
  return nullptr;
}

constexpr size_t kMinPkcs1Padding = 8;

// DigestInfo ::= SEQUENCE { SEQUENCE { algorithm OBJECT IDENTIFIER, NULL }, digest OCTET STRING }; every length is
// below 128 and takes one octet.
void write_digest_info(const DigestOid &oid, std::span<const uint8_t> digest, uint8_t *out) noexcept {
  const auto digest_length = uint8_t(digest.size());
  const uint8_t head[] = {0x30,      uint8_t(8 + oid.length + digest_length), 0x30, uint8_t(4 + oid.length), 0x06,
                          oid.length};
  const uint8_t tail[] = {0x05, 0x00, 0x04, digest_length};
  out = std::copy(std::begin(head), std::end(head), out);
  out = std::copy(oid.octets, oid.octets + oid.length, out);
  out = std::copy(std::begin(tail), std::end(tail), out);
  std::copy(digest.begin(), digest.end(), out);
}

int digest_of(int digest_id, std::span<const uint8_t> data, uint8_t *out) noexcept {
  return PKV_DIGEST(digest_id, data.data(), int(data.size()), out, nullptr);
}

// H = Hash(eight zero octets || digest || salt).
int pss_hash(int digest_id, std::span<const uint8_t> digest, std::span<const uint8_t> salt, uint8_t *out) noexcept {
  SecretBuffer message(8 + digest.size() + salt.size());
  if (!message) return PKV_ERR_NO_MEMORY;
  std::copy(digest.begin(), digest.end(), message.data() + 8);
  std::copy(salt.begin(), salt.end(), message.data() + 8 + digest.size());
  return digest_of(digest_id, {message.data(), message.size()}, out);
}

// Where things are in a PSS encoding: (zero octet ||) padding || 01 || salt || H || BC. The encoding has one bit less
// than the modulus, so it may be one octet shorter than it.
struct PssLayout {
  size_t start, padding, salt, hash;
  uint8_t top_mask;

  // False when the modulus is too short for digest and salt.
  bool compute(size_t length, int bits, size_t digest_length, size_t salt_length) noexcept {
    start = size_t(bits - 1) % 8 == 0 ? 1 : 0;
    top_mask = uint8_t(0xFF >> (start ? 0 : 8 - (bits - 1) % 8));
    if (salt_length > length || length - start < digest_length + salt_length + 2) return false;
    padding = length - start - digest_length - salt_length - 2;
    salt = start + padding + 1;
    hash = salt + salt_length;
    return true;
  }
};

int lay_out(const RsaSignatureScheme &scheme, size_t digest_length, size_t length, int bits, PssLayout &out) noexcept {
  if (!is_digest(scheme.digest_id) || !is_digest(scheme.mgf_digest_id)) return PKV_ERR_UNSUPPORTED;
  if (scheme.salt_length < 0) return PKV_ERR_BAD_VALUE;
  return out.compute(length, bits, digest_length, size_t(scheme.salt_length)) ? 0 : PKV_ERR_BAD_VALUE;
}

}  // namespace

int mgf1_xor(int digest_id, std::span<const uint8_t> seed, std::span<uint8_t> out) noexcept {
  const auto step = size_t(PKV_Get_DIGEST_Length(digest_id));
  Wiped<std::array<uint8_t, PKV_MAX_DIGEST_LENGTH>> mask;
  SecretBuffer input(seed.size() + 4);
  if (!input) return PKV_ERR_NO_MEMORY;
  std::copy(seed.begin(), seed.end(), input.data());
  for (uint32_t counter = 0; !out.empty(); ++counter) {
    for (size_t i = 0; i < 4; ++i) input.data()[seed.size() + i] = uint8_t(counter >> (24 - 8 * i));
    if (int error = digest_of(digest_id, {input.data(), input.size()}, mask.value.data())) return error;
    const size_t now = std::min(step, out.size());
    for (size_t i = 0; i < now; ++i) out[i] ^= mask.value[i];
    out = out.subspan(now);
  }
  return 0;
}

int emsa_pkcs1_encode(int digest_id, std::span<const uint8_t> digest, std::span<uint8_t> em) noexcept {
  const DigestOid *oid = find_oid(digest_id);
  if (!oid) return PKV_ERR_UNSUPPORTED;
  const size_t info = 10 + size_t(oid->length) + digest.size();
  if (em.size() < info + kMinPkcs1Padding + 3) return PKV_ERR_BAD_VALUE;
  const size_t padding = em.size() - info - 3;
  em[0] = 0;
  em[1] = 1;
  std::fill_n(em.begin() + 2, padding, uint8_t(0xFF));
  em[2 + padding] = 0;
  write_digest_info(*oid, digest, em.data() + 3 + padding);
  return 0;
}

int emsa_pss_encode(const RsaSignatureScheme &scheme, std::span<const uint8_t> digest, int bits,
                    std::span<uint8_t> em) noexcept {
  PssLayout at;
  if (int error = lay_out(scheme, digest.size(), em.size(), bits, at)) return error;
  std::fill(em.begin(), em.end(), uint8_t(0));
  const auto salt = em.subspan(at.salt, size_t(scheme.salt_length));
  if (int error = PKV_Rand_Bytes(salt.data(), scheme.salt_length)) return error;
  const auto hash = em.subspan(at.hash, digest.size());
  if (int error = pss_hash(scheme.digest_id, digest, salt, hash.data())) return error;
  em[at.salt - 1] = 1;
  em[em.size() - 1] = 0xBC;
  const auto masked = em.subspan(at.start, at.hash - at.start);
  if (int error = mgf1_xor(scheme.mgf_digest_id, hash, masked)) return error;
  masked[0] &= at.top_mask;
  return 0;
}

namespace {

// Of any salt the layout says where its octet 01 may stand first, and the octets how long it is.
void find_salt(std::span<const uint8_t> unmasked, PssLayout &at) noexcept {
  const auto first = std::find_if(unmasked.begin(), unmasked.end(), [](uint8_t octet) { return octet != 0; });
  const size_t place = size_t(first - unmasked.begin());
  at.padding = std::min(place, unmasked.size() - 1);
  at.salt = at.start + at.padding + 1;
}

}  // namespace

int emsa_pss_verify(const RsaSignatureScheme &scheme, std::span<const uint8_t> digest, int bits,
                    std::span<uint8_t> em) noexcept {
  PssLayout at;
  const bool any_salt = scheme.salt_length == PKV_RSA_ANY_SALT;
  const RsaSignatureScheme least{scheme.digest_id, scheme.scheme, scheme.mgf_digest_id,
                                 any_salt ? 0 : scheme.salt_length};
  if (int error = lay_out(least, digest.size(), em.size(), bits, at)) return error;
  const auto masked = em.subspan(at.start, at.hash - at.start);
  if ((at.start && em[0]) || (masked[0] & ~at.top_mask) || em.back() != 0xBC) return PKV_ERR_MISMATCH;
  const auto hash = em.subspan(at.hash, digest.size());
  if (int error = mgf1_xor(scheme.mgf_digest_id, hash, masked)) return error;
  masked[0] &= at.top_mask;
  if (any_salt) find_salt(masked, at);
  const auto padding = masked.first(at.padding);
  if (std::any_of(padding.begin(), padding.end(), [](uint8_t octet) { return octet != 0; })) return PKV_ERR_MISMATCH;
  if (em[at.salt - 1] != 1) return PKV_ERR_MISMATCH;
  uint8_t expected[PKV_MAX_DIGEST_LENGTH];
  const auto salt = em.subspan(at.salt, at.hash - at.salt);
  if (int error = pss_hash(scheme.digest_id, digest, salt, expected)) return error;
  return std::equal(hash.begin(), hash.end(), expected) ? 0 : PKV_ERR_MISMATCH;
}

}  // namespace velcrypto
