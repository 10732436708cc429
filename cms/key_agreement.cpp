// Key agreement: ECDH, the key derivation of ANSI X9.63, and a key wrap (RFC 5753).
#include "cms/internal/key_wrap.h"
#include "cms/internal/signature.h"

namespace velpki {

namespace {

struct Agreement {
  std::string_view oid;
  int digest_id;
};
// dhSinglePass-stdDH-...kdf-scheme; then with the cofactor, which is 1 on every curve here.
constexpr Agreement kAgreements[] = {
    {"1.3.133.16.840.63.0.2", PKV_DIGEST_SHA1}, {"1.3.132.1.11.0", PKV_DIGEST_SHA224},
    {"1.3.132.1.11.1", PKV_DIGEST_SHA256},      {"1.3.132.1.11.2", PKV_DIGEST_SHA384},
    {"1.3.132.1.11.3", PKV_DIGEST_SHA512},      {"1.3.133.16.840.63.0.3", PKV_DIGEST_SHA1},
    {"1.3.132.1.14.0", PKV_DIGEST_SHA224},      {"1.3.132.1.14.1", PKV_DIGEST_SHA256},
    {"1.3.132.1.14.2", PKV_DIGEST_SHA384},      {"1.3.132.1.14.3", PKV_DIGEST_SHA512},
};

constexpr int kMostFieldOctets = 66;

// What a key encryption algorithm of key agreement says.
struct Scheme {
  int digest_id = 0, cipher_id = 0;
  Octets wrap;  // the content of the wrap's AlgorithmIdentifier
};
bool read_scheme(const X509_ALGO_IDENTIFIER *algorithm, Scheme &out) noexcept {
  Tlv parameters;
  if (!algorithm || !algorithm->algorithm || !parameters_view(*algorithm, parameters)) return false;
  for (const Agreement &each : kAgreements)
    if (text(*algorithm->algorithm) == each.oid) out.digest_id = each.digest_id;
  const owned<X509_ALGO_IDENTIFIER> wrap(blank<X509_ALGO_IDENTIFIER>());
  if (!out.digest_id || parameters.identifier != tag::kSequence || !wrap || decode(parameters, *wrap)) return false;
  out.cipher_id = wrap_cipher(wrap.get());
  out.wrap = parameters.content;
  return out.cipher_id != 0;
}

// ECC-CMS-SharedInfo ::= SEQUENCE { keyInfo AlgorithmIdentifier, entityUInfo [0] EXPLICIT OCTET STRING OPTIONAL,
//   suppPubInfo [2] EXPLICIT OCTET STRING }
void write_shared_info(const Scheme &scheme, const OCTET_STRING *ukm, int key_length, DerWriter &out) noexcept {
  const unsigned bits = unsigned(key_length) * 8;
  const uint8_t length[] = {uint8_t(bits >> 24), uint8_t(bits >> 16), uint8_t(bits >> 8), uint8_t(bits)};
  const auto sequence = out.sequence();
  out.primitive(tag::kSequence, scheme.wrap);
  if (ukm) {
    const auto wrapper = out.explicit_context(0);
    out.octets_as(TYPE_OCTET_STRING, ukm);
  }
  const auto wrapper = out.explicit_context(2);
  out.primitive(TYPE_OCTET_STRING, length);
}

// The key-encryption key that two parties share.
int derive(const Scheme &scheme, const OCTET_STRING *ukm, const ECC_UNIT &own, const ECC_UNIT &peer, int function,
           SecretOctets &kek) noexcept {
  const SecretOctets shared(kMostFieldOctets);
  DerWriter info;
  write_shared_info(scheme, ukm, kek.size(), info);
  if (!shared || !kek || info.failed()) return fail(function, kNoMemory);
  int length = shared.size();
  if (const int code = PKV_ECDH(&own, PKV_Get_ECC_Public(&peer), shared.data(), &length)) return code;
  return PKV_X963_KDF(scheme.digest_id, shared.data(), length, info.written().data(), int(info.size()), kek.data(),
                      kek.size());
}

const char *curve_of(const ECC_UNIT *key) noexcept {
  return key ? PKV_Get_ECURVE_Name(PKV_Get_ECC_Curve(key)) : nullptr;
}
bool same_curve(const ECC_UNIT *a, const ECC_UNIT *b) noexcept {
  const char *left = curve_of(a), *right = curve_of(b);
  return left && right && std::string_view(left) == right;
}

// A fresh key on the curve of another, put into the originator as its public key.
int make_ephemeral(const ECC_UNIT &recipient, int function, owned<ECC_UNIT> &key,
                   ORIGINATOR_IDENTIFIER_ORKEY &originator) noexcept {
  key.reset(PKV_New_ECC());
  if (!key) return fail(function, kNoMemory);
  if (const int code = PKV_Set_ECC_Curve(key.get(), PKV_Get_ECC_Curve(&recipient))) return code;
  if (const int code = PKV_Generate_ECC(key.get())) return code;
  owned<ORIGINATOR_PUBLIC_KEY> fresh(new_ORIGINATOR_PUBLIC_KEY());
  if (!fresh) return fail(function, kNoMemory);
  constexpr std::string_view kEcPublicKey = "1.2.840.10045.2.1";
  if (const int code = set_algorithm_text(fresh->algorithm, kEcPublicKey, {}, function)) return code;
  if (const int code = ECC_KEY_to_BITSTRING_RFC5280(key.get(), &fresh->publicKey)) return code;
  put(originator.originatorKey, std::move(fresh));
  return 0;
}

const ECC_UNIT *public_key(const RECIPIENT_ENCRYPTED_KEY *recipient) noexcept {
  return recipient ? ASYMMETRIC_KEY_to_ECC_UNIT(recipient->publicKey) : nullptr;
}

int wrap_for_all(const KEY_AGREE_RECIPIENT_INFO &info, const Scheme &scheme, const ECC_UNIT &own, Octets content_key,
                 int function) noexcept {
  SecretOctets kek(size_t(PKV_Get_BLOCK_CIPHER_Key_Length(scheme.cipher_id)));
  for (RECIPIENT_ENCRYPTED_KEY *each : elements<RECIPIENT_ENCRYPTED_KEY>(info.recipientEncryptedKeys)) {
    const ECC_UNIT *peer = public_key(each);
    if (!same_curve(peer, &own)) return fail(function, kUnsupported);
    if (const int code = derive(scheme, info.ukm, own, *peer, function, kek)) return code;
    const Octets wrapping = octets_of(kek.data(), kek.size());
    if (const int code = wrap(scheme.cipher_id, wrapping, content_key, function, each->encryptedKey)) return code;
  }
  return 0;
}

}  // namespace

int set_agreement_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int digest_id, int cipher_id, int function) noexcept {
  const Agreement *agreement = nullptr;
  for (const Agreement &each : kAgreements)
    if (!agreement && each.digest_id == digest_id) agreement = &each;
  if (!agreement || wrap_oid(cipher_id).empty()) return fail(function, kUnsupported);
  DerWriter parameters;
  write_wrap_algorithm(cipher_id, parameters);
  if (parameters.failed()) return fail(function, kNoMemory);
  return set_algorithm_text(algorithm, agreement->oid, parameters.written(), function);
}

int wrap_for_agreement(KEY_AGREE_RECIPIENT_INFO &info, Octets content_key, int function) noexcept {
  Scheme scheme;
  const ECC_UNIT *recipient = public_key(element<RECIPIENT_ENCRYPTED_KEY>(info.recipientEncryptedKeys, 0));
  if (!info.originator) return fail(function, kNullArgument);
  if (!recipient || !read_scheme(info.keyEncryptionAlgorithm, scheme)) return fail(function, kUnsupported);
  if (info.originator->type != CMS_ORIGINATOR_KEY) {
    const ECC_UNIT *own = ASYMMETRIC_KEY_to_ECC_UNIT(info.originatorPrivateKey);
    return own ? wrap_for_all(info, scheme, *own, content_key, function) : fail(function, kUnsupported);
  }
  owned<ECC_UNIT> ephemeral;
  if (const int code = make_ephemeral(*recipient, function, ephemeral, *info.originator)) return code;
  return wrap_for_all(info, scheme, *ephemeral, content_key, function);
}

int unwrap_with_agreement(const KEY_AGREE_RECIPIENT_INFO &info, const RECIPIENT_ENCRYPTED_KEY &wrapped,
                          const ECC_UNIT &key, const ECC_UNIT *originator, int function, SecretOctets &out) noexcept {
  Scheme scheme;
  if (!read_scheme(info.keyEncryptionAlgorithm, scheme) || !curve_of(&key)) return fail(function, kUnsupported);
  const owned<ECC_UNIT> brought(PKV_New_ECC());
  if (!brought) return fail(function, kNoMemory);
  if (!originator) {
    const ORIGINATOR_PUBLIC_KEY *from = info.originator ? info.originator->originatorKey : nullptr;
    if (!from || !from->publicKey || from->publicKey->unused_bits) return fail(function, kNullArgument);
    const int code = read_point_of(octets(*from->publicKey), function, curve_of(&key), *brought);
    if (code) return code;
    originator = brought.get();
  }
  if (!same_curve(originator, &key)) return fail(function, kUnsupported);
  SecretOctets kek(size_t(PKV_Get_BLOCK_CIPHER_Key_Length(scheme.cipher_id)));
  if (const int code = derive(scheme, info.ukm, key, *originator, function, kek)) return code;
  return unwrap(scheme.cipher_id, octets_of(kek.data(), kek.size()), wrapped.encryptedKey, out);
}

}  // namespace velpki
