// Signatures by a token's private key.
#include <algorithm>
#include <array>

#include "asn1/internal/writer.h"
#include "token/internal/token_key.h"

namespace velpki {

namespace {

constexpr CK_MECHANISM_TYPE kNoMechanism = ~CK_MECHANISM_TYPE{0};

// A digest in a DigestInfo, and in the parameters of PSS.
struct Digest {
  int digest_id;
  std::string_view oid;
  CK_MECHANISM_TYPE mechanism;
  CK_ULONG mask_generation;
};
constexpr Digest kDigests[] = {
    {PKV_DIGEST_MD5, "1.2.840.113549.2.5", kNoMechanism, 0},
    {PKV_DIGEST_SHA1, "1.3.14.3.2.26", CKM_SHA_1, CKG_MGF1_SHA1},
    {PKV_DIGEST_SHA224, "2.16.840.1.101.3.4.2.4", CKM_SHA224, CKG_MGF1_SHA224},
    {PKV_DIGEST_SHA256, "2.16.840.1.101.3.4.2.1", CKM_SHA256, CKG_MGF1_SHA256},
    {PKV_DIGEST_SHA384, "2.16.840.1.101.3.4.2.2", CKM_SHA384, CKG_MGF1_SHA384},
    {PKV_DIGEST_SHA512, "2.16.840.1.101.3.4.2.3", CKM_SHA512, CKG_MGF1_SHA512},
    {PKV_DIGEST_HAS160, "1.2.410.200004.1.2", kNoMechanism, 0},
};
const Digest *find_digest(int digest_id) noexcept {
  const auto *found = std::ranges::find(kDigests, digest_id, &Digest::digest_id);
  return found == std::end(kDigests) ? nullptr : found;
}

constexpr size_t kMaxSignature = 2048;  // of an RSA key of 16384 bits

// Every signature is made into a buffer that is large enough for any: too small a one would leave the operation open.
struct Signature {
  std::array<uint8_t, kMaxSignature> octets;
  CK_ULONG length = kMaxSignature;
};

// The interface of PKCS#11 has no const.
uint8_t *read_only(Octets octets) noexcept { return const_cast<uint8_t *>(octets.data()); }

// C_Sign is called without permission too: it fails then, and ends what C_SignInit began.
CK_RV sign(const P11_KEY &key, CK_MECHANISM mechanism, Octets input, Signature &out) noexcept {
  if (const CK_RV result = p11_C_SignInit(key.session, &mechanism, key.object)) return result;
  const CK_RV refused = key.authenticate ? key.authenticate(key.session, key.authenticate_context) : CKR_OK;
  const CK_RV result =
      p11_C_Sign(key.session, read_only(input), CK_ULONG(input.size()), out.octets.data(), &out.length);
  return refused ? refused : result;
}

// DigestInfo ::= SEQUENCE { SEQUENCE { algorithm OBJECT IDENTIFIER, NULL }, digest OCTET STRING }
void write_digest_info(const Digest &digest, Octets value, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  {
    const auto algorithm = out.sequence();
    out.oid_text(digest.oid);
    out.null();
  }
  out.primitive(TYPE_OCTET_STRING, value);
}

int sign_pkcs1(P11_KEY &key, const Digest &digest, Octets value, Signature &out) noexcept {
  DerWriter info;
  write_digest_info(digest, value, info);
  if (info.failed()) return kNoMemory;
  return answered(key, sign(key, {CKM_RSA_PKCS, nullptr, 0}, info.written(), out));
}

// MGF1 with the same digest and a salt of its length, as the provider asks it of a callback.
int sign_pss(P11_KEY &key, const Digest &digest, Octets value, Signature &out) noexcept {
  if (digest.mechanism == kNoMechanism) return kUnsupported;
  CK_RSA_PKCS_PSS_PARAMS pss{};
  pss.hashAlg = digest.mechanism;
  pss.mgf = digest.mask_generation;
  pss.sLen = CK_ULONG(value.size());
  return answered(key, sign(key, {CKM_RSA_PKCS_PSS, &pss, sizeof pss}, value, out));
}

int sign_rsa(P11_KEY &key, int digest_id, int scheme, Octets value, Signature &out) noexcept {
  const Digest *digest = find_digest(digest_id);
  if (digest && scheme == PKV_RSA_PKCS1) return sign_pkcs1(key, *digest, value, out);
  if (digest && scheme == PKV_RSA_PSS) return sign_pss(key, *digest, value, out);
  return kUnsupported;
}

// A digest longer than the order is cut here, which not every token does.
int sign_ecdsa(P11_KEY &key, int digest_id, Octets value, size_t order_length, Signature &out) noexcept {
  if (!digest_id) return kUnsupported;
  const Octets cut = value.first(std::min(value.size(), order_length));
  return answered(key, sign(key, {CKM_ECDSA, nullptr, 0}, cut, out));
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int sign_P11_KEY(void *context, int key, int digest_id, int scheme, const unsigned char *input, int input_length,
                 unsigned char *signature, int *signature_length) noexcept {
  if (!context || !input || !signature || !signature_length) return kNullArgument;
  auto &token_key = *static_cast<P11_KEY *>(context);
  const Octets value = octets_of(input, input_length);
  const int expected = *signature_length;
  Signature made;
  int code = kUnsupported;
  if (key == PKV_KEY_RSA) code = sign_rsa(token_key, digest_id, scheme, value, made);
  if (key == PKV_KEY_ECC) code = sign_ecdsa(token_key, digest_id, value, size_t(expected) / 2, made);
  if (code) return code;
  if (expected < 1 || made.length != CK_ULONG(expected)) return kMismatch;
  std::copy_n(made.octets.begin(), expected, signature);
  return 0;
}
