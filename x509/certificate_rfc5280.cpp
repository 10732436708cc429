// Signatures in standard form: over the octets that were received, and with what the algorithm says.
#include <velpki/asn1_error.h>

#include "x509/internal/received.h"
#include "x509/internal/x509.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_VERIFY_RSASIGN_TBS_CERT, reason); }

constexpr size_t kEd25519Key = 32, kEd25519Signature = 64;

// One verification: the signed octets, the signature, the issuer's key and the digest of the algorithm.
struct Task {
  Octets tbs;
  Octets signature;
  const X509_PUBKEY &issuer;
  int digest_id;
};

// A key of another kind than the algorithm's, or of no kind that is known here.
int wrong_key(const Task &task) noexcept { return failure(task.issuer.key ? ERR_ALGORITHM_MISMATCH : kUnsupported); }

int verify_rsa_pkcs1(const Task &task) noexcept {
  const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(task.issuer.key);
  if (!key) return wrong_key(task);
  return PKV_RSASSA_VERIFY(key, task.digest_id, PKV_RSA_PKCS1, task.tbs.data(), int(task.tbs.size()),
                           task.signature.data(), int(task.signature.size()));
}

int verify_ecdsa(const Task &task) noexcept {
  const ECC_UNIT *key = ASYMMETRIC_KEY_to_ECC_UNIT(task.issuer.key);
  if (!key) return wrong_key(task);
  SignatureHalves halves;
  if (!read_ecdsa_value(task.signature, halves)) return failure(ERR_ASN1_DECODING);
  return PKV_ECDSA_VERIFY(key, task.digest_id, task.tbs.data(), int(task.tbs.size()), halves.r.data(),
                          int(halves.r.size()), halves.s.data(), int(halves.s.size()));
}

int verify_kcdsa_value(const Task &task) noexcept {
  const KCDSA_UNIT *key = ASYMMETRIC_KEY_to_KCDSA_UNIT(task.issuer.key);
  if (!key) return wrong_key(task);
  SignatureHalves halves;
  if (!read_kcdsa_value(task.signature, halves)) return failure(ERR_ASN1_DECODING);
  return PKV_KCDSA_VERIFY(key, task.digest_id, task.tbs.data(), int(task.tbs.size()), halves.r.data(),
                          int(halves.r.size()), halves.s.data(), int(halves.s.size()));
}

int verify_ed25519(const Task &task) noexcept {
  const bool has_key = task.issuer.algorithm && text(*task.issuer.algorithm) == "1.3.101.112" &&
                       task.issuer.subjectPublicKey && task.issuer.subjectPublicKey->length == kEd25519Key;
  if (!has_key) return failure(ERR_ALGORITHM_MISMATCH);
  if (task.signature.size() != kEd25519Signature) return failure(ERR_ASN1_DECODING);
  return PKV_ED25519_VERIFY(task.issuer.subjectPublicKey->data, task.tbs.data(), int(task.tbs.size()),
                            task.signature.data());
}

// The other direction: signs `tbs` and appends the signature's octets.
struct Signing {
  Octets tbs;
  const ASYMMETRIC_KEY *key;
  int digest_id;
};

constexpr int kHalfRoom = 72;  // a half of a P-521 signature has 66 octets

int signing_failure(int reason) noexcept { return fail(F_GEN_RSASIGN_TBS_CERT, reason); }

int sign_rsa_pkcs1(const Signing &task, DerWriter &out) noexcept {
  const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(task.key);
  if (!key) return signing_failure(ERR_ALGORITHM_MISMATCH);
  return write_rsa_signature(task.tbs, key, task.digest_id, PKV_RSA_PKCS1, F_GEN_RSASIGN_TBS_CERT, out);
}

int sign_ecdsa(const Signing &task, DerWriter &out) noexcept {
  const ECC_UNIT *key = ASYMMETRIC_KEY_to_ECC_UNIT(task.key);
  if (!key) return signing_failure(ERR_ALGORITHM_MISMATCH);
  uint8_t r[kHalfRoom], s[kHalfRoom];
  int r_length = 0, s_length = 0;
  if (const int code = PKV_Get_ECC_Lengths(key, &r_length, &s_length)) return code;
  if (r_length > kHalfRoom || s_length > kHalfRoom) return signing_failure(kBadValue);
  const int code = PKV_ECDSA_SIGN(key, task.digest_id, task.tbs.data(), int(task.tbs.size()), r, s);
  if (!code) write_ecdsa_value(octets_of(r, r_length), octets_of(s, s_length), out);
  return code;
}

int sign_kcdsa_value(const Signing &task, DerWriter &out) noexcept {
  const KCDSA_UNIT *key = ASYMMETRIC_KEY_to_KCDSA_UNIT(task.key);
  if (!key) return signing_failure(ERR_ALGORITHM_MISMATCH);
  return write_kcdsa_signature(task.tbs, key, task.digest_id, F_GEN_RSASIGN_TBS_CERT, out);
}

enum class Parameters { null_or_absent, absent };

struct Algorithm {
  std::string_view oid;
  int digest_id;
  Parameters parameters;
  int (*verify)(const Task &) noexcept;
  int (*sign)(const Signing &, DerWriter &) noexcept;  // null where this library cannot
};

// clang-format off
constexpr Algorithm kAlgorithms[] = {
    {"1.2.840.113549.1.1.4",  PKV_DIGEST_MD5,    Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.5",  PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.14", PKV_DIGEST_SHA224, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.11", PKV_DIGEST_SHA256, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.12", PKV_DIGEST_SHA384, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.13", PKV_DIGEST_SHA512, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.10045.4.1",     PKV_DIGEST_SHA1,   Parameters::absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.1",   PKV_DIGEST_SHA224, Parameters::absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.2",   PKV_DIGEST_SHA256, Parameters::absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.3",   PKV_DIGEST_SHA384, Parameters::absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.4",   PKV_DIGEST_SHA512, Parameters::absent, verify_ecdsa, sign_ecdsa},
    {"1.3.101.112",           0,                 Parameters::absent, verify_ed25519, nullptr},
    {"1.2.410.200004.1.22",   PKV_DIGEST_HAS160, Parameters::null_or_absent, verify_kcdsa_value, sign_kcdsa_value},
    {"1.2.410.200004.1.23",   PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_kcdsa_value, sign_kcdsa_value},
    {"1.2.410.200004.1.8",    PKV_DIGEST_HAS160, Parameters::null_or_absent, verify_kcdsa_value, sign_kcdsa_value},
    {"1.2.410.200004.1.9",    PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_kcdsa_value, sign_kcdsa_value},
};
// clang-format on

const Algorithm *find_algorithm(const OBJECT_IDENTIFIER &oid) noexcept {
  for (const Algorithm &each : kAlgorithms)
    if (text(oid) == each.oid) return &each;
  return nullptr;
}

bool parameters_fit(const X509_ALGO_IDENTIFIER &identifier, Parameters wanted) noexcept {
  if (!identifier.parameters) return true;
  return wanted != Parameters::absent && identifier.parameters->type == TYPE_NULL && identifier.parameters->length == 0;
}

// The three parts of the received certificate, and the algorithm inside its TBS.
struct Parts {
  Tlv tbs, algorithm, signature, inner_algorithm;
};

bool take_apart(Octets whole, Parts &out) noexcept {
  Tlv certificate;
  Rules rules;
  if (!Tlv::parse(whole, rules, certificate)) return false;
  Cursor in(certificate);
  if (!in.next(out.tbs) || !in.next(out.algorithm) || !in.next(out.signature)) return false;
  Cursor tbs(out.tbs);
  Tlv skipped;
  if (tbs.at(tag::explicit_context(0)) && !tbs.next(skipped)) return false;
  return tbs.next(skipped) && tbs.next(out.inner_algorithm);
}

bool same(Octets a, Octets b) noexcept {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
}

int verify_parts(const Parts &parts, const X509_PUBKEY &issuer) noexcept {
  if (!same(parts.algorithm.whole, parts.inner_algorithm.whole)) return failure(ERR_ALGORITHM_MISMATCH);
  const Octets bits = parts.signature.content;
  if (bits.empty() || bits[0] != 0) return failure(ERR_UNUSED_BITS);
  owned<X509_ALGO_IDENTIFIER> identifier(new_X509_ALGO_IDENTIFIER());
  if (!identifier) return failure(kNoMemory);
  if (decode(parts.algorithm, *identifier)) return failure(ERR_ASN1_DECODING);
  const Algorithm *algorithm = find_algorithm(*identifier->algorithm);
  if (!algorithm) return failure(kUnsupported);
  if (!parameters_fit(*identifier, algorithm->parameters)) return failure(ERR_ALGORITHM_MISMATCH);
  return algorithm->verify({parts.tbs.whole, bits.subspan(1), issuer, algorithm->digest_id});
}

// The certificate as it is written from now on, kept beside its members.
int keep_octets(X509_CERT &cert) noexcept {
  DerWriter whole(kStandardRules);
  if (const int code = encode(cert, whole)) return code;
  if (const int code = whole.result(F_GEN_RSASIGN_TBS_CERT)) return code;
  Tlv certificate, tbs;
  Rules rules;
  if (!Tlv::parse(whole.written(), rules, certificate) || !Cursor(certificate).next(tbs)) {
    return signing_failure(ERR_ASN1_ENCODING);
  }
  cert.received = new_received(certificate, tbs.whole);
  return cert.received ? 0 : signing_failure(kNoMemory);
}

// Signature and algorithm take their places; what was received no longer describes the certificate.
int attach(X509_CERT &cert, Octets signature) noexcept {
  owned<ASN1_STRING> bits(new_string(TYPE_BIT_STRING, signature));
  if (!bits || !replace(cert, &X509_CERT::sig_alg, cert.tbs->signature)) return signing_failure(kNoMemory);
  free_ASN1_STRING(cert.sig_value);
  cert.sig_value = bits.release();
  if (cert.received) Flat<X509_RECEIVED>::release(cert.received);
  cert.received = nullptr;
  return keep_octets(cert);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int gen_SIG_X509_Cert_RFC5280(X509_CERT *cert, const ASYMMETRIC_KEY *key) noexcept {
  if (!cert || !cert->tbs || !cert->tbs->signature || !key) return signing_failure(kNullArgument);
  const Algorithm *algorithm = find_algorithm(*cert->tbs->signature);
  if (!algorithm || !algorithm->sign) return signing_failure(kUnsupported);
  DerWriter tbs(kStandardRules), signature;
  if (const int code = encode(*cert->tbs, tbs)) return code;
  if (const int code = algorithm->sign({tbs.written(), key, algorithm->digest_id}, signature)) return code;
  if (const int code = signature.result(F_GEN_RSASIGN_TBS_CERT)) return code;
  return attach(*cert, signature.written());
}

int verify_SIG_X509_CERT_RFC5280(const X509_CERT *cert, const X509_PUBKEY *issuer_key) noexcept {
  if (!cert || !issuer_key || !cert->received) return failure(kNullArgument);
  Parts parts;
  if (!take_apart(received_whole(*cert->received), parts)) return failure(ERR_ASN1_DECODING);
  return verify_parts(parts, *issuer_key);
}
