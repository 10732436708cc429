// Signatures in standard form: over the octets that were received, and with what the algorithm says.
#include "x509/internal/signature.h"

#include <velpki/asn1_error.h>

#include "x509/internal/dsa_signature.h"
#include "x509/internal/rsa_parameters.h"

namespace velpki {

namespace {

constexpr size_t kEd25519Key = 32, kEd25519Signature = 64;

// One verification: the signed octets, the signature, the signer's key, the digest of the algorithm and, for PSS, its
// parameters.
struct Task {
  Octets tbs;
  Octets signature;
  const X509_PUBKEY &signer;
  int digest_id;
  const Tlv *parameters;
  int function;
  int failure(int reason) const noexcept { return fail(function, reason); }
};

// A key of another kind than the algorithm's, or of no kind that is known here.
int wrong_key(const Task &task) noexcept {
  return task.failure(task.signer.key ? ERR_ALGORITHM_MISMATCH : kUnsupported);
}

bool is_pss_key(const X509_PUBKEY &key) noexcept {
  return index_from_OBJECT_IDENTIFIER(key.algorithm) == row::kRsassaPss;
}

// A key that is marked for PSS signs nothing else (RFC 4055 1.2).
int verify_rsa_pkcs1(const Task &task) noexcept {
  const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(task.signer.key);
  if (!key) return wrong_key(task);
  if (is_pss_key(task.signer)) return task.failure(ERR_ALGORITHM_MISMATCH);
  return PKV_RSASSA_VERIFY(key, task.digest_id, PKV_RSA_PKCS1, task.tbs.data(), int(task.tbs.size()),
                           task.signature.data(), int(task.signature.size()));
}

// The parameters of a PSS key are the only digests, and the shortest salt, that its signatures may have (RFC 4055 3.3).
int check_pss_key(const Task &task, const PssValues &used) noexcept {
  if (!is_pss_key(task.signer) || !task.signer.parameters) return 0;
  PssValues allowed;
  if (const int code = read_pss_values(view_of(*task.signer.parameters), task.function, allowed)) return code;
  const bool fits = used.digest_id == allowed.digest_id && used.mgf_digest_id == allowed.mgf_digest_id &&
                    used.salt_length >= allowed.salt_length;
  return fits ? 0 : task.failure(ERR_ALGORITHM_MISMATCH);
}

int verify_rsa_pss(const Task &task) noexcept {
  const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(task.signer.key);
  if (!key) return wrong_key(task);
  PssValues values;
  if (const int code = read_pss_values(*task.parameters, task.function, values)) return code;
  if (const int code = check_pss_key(task, values)) return code;
  return PKV_RSASSA_PSS_VERIFY(key, values.digest_id, values.mgf_digest_id, values.salt_length, task.tbs.data(),
                               int(task.tbs.size()), task.signature.data(), int(task.signature.size()));
}

// A signature of two halves, under a key of one kind.
template <class Unit>
int verify_halves(const Task &task, const Unit *key, bool (*read)(Octets, SignatureHalves &) noexcept,
                  int (*verify)(const Unit *, int, const unsigned char *, int, const unsigned char *, int,
                                const unsigned char *, int) noexcept) noexcept {
  if (!key) return wrong_key(task);
  SignatureHalves halves;
  if (!read(task.signature, halves)) return task.failure(ERR_ASN1_DECODING);
  return verify(key, task.digest_id, task.tbs.data(), int(task.tbs.size()), halves.r.data(), int(halves.r.size()),
                halves.s.data(), int(halves.s.size()));
}
int verify_ecdsa(const Task &task) noexcept {
  return verify_halves<ECC_UNIT>(task, ASYMMETRIC_KEY_to_ECC_UNIT(task.signer.key), read_ecdsa_value, PKV_ECDSA_VERIFY);
}
int verify_kcdsa_value(const Task &task) noexcept {
  return verify_halves<KCDSA_UNIT>(task, ASYMMETRIC_KEY_to_KCDSA_UNIT(task.signer.key), read_kcdsa_value,
                                   PKV_KCDSA_VERIFY);
}

int verify_ed25519(const Task &task) noexcept {
  const bool has_key = task.signer.algorithm && text(*task.signer.algorithm) == "1.3.101.112" &&
                       task.signer.subjectPublicKey && task.signer.subjectPublicKey->length == kEd25519Key;
  if (!has_key) return task.failure(ERR_ALGORITHM_MISMATCH);
  if (task.signature.size() != kEd25519Signature) return task.failure(ERR_ASN1_DECODING);
  return PKV_ED25519_VERIFY(task.signer.subjectPublicKey->data, task.tbs.data(), int(task.tbs.size()),
                            task.signature.data());
}

int verify_dsa_value(const Task &task) noexcept {
  return verify_dsa(task.tbs, task.signature, task.signer, task.digest_id, task.function);
}

// The other direction: signs `tbs` and appends the signature's octets.
struct Signing {
  Octets tbs;
  const ASYMMETRIC_KEY *key;
  int digest_id;
  int function;
  int failure(int reason) const noexcept { return fail(function, reason); }
};

constexpr int kHalfRoom = 72;  // a half of a P-521 signature has 66 octets

int sign_with_rsa(const Signing &task, int scheme, DerWriter &out) noexcept {
  const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(task.key);
  if (!key) return task.failure(ERR_ALGORITHM_MISMATCH);
  return write_rsa_signature(task.tbs, key, task.digest_id, scheme, task.function, out);
}
int sign_rsa_pkcs1(const Signing &task, DerWriter &out) noexcept { return sign_with_rsa(task, PKV_RSA_PKCS1, out); }
int sign_rsa_pss(const Signing &task, DerWriter &out) noexcept { return sign_with_rsa(task, PKV_RSA_PSS, out); }

int sign_ecdsa(const Signing &task, DerWriter &out) noexcept {
  const ECC_UNIT *key = ASYMMETRIC_KEY_to_ECC_UNIT(task.key);
  if (!key) return task.failure(ERR_ALGORITHM_MISMATCH);
  uint8_t r[kHalfRoom], s[kHalfRoom];
  int r_length = 0, s_length = 0;
  if (const int code = PKV_Get_ECC_Lengths(key, &r_length, &s_length)) return code;
  if (r_length > kHalfRoom || s_length > kHalfRoom) return task.failure(kBadValue);
  const int code = PKV_ECDSA_SIGN(key, task.digest_id, task.tbs.data(), int(task.tbs.size()), r, s);
  if (!code) write_ecdsa_value(octets_of(r, r_length), octets_of(s, s_length), out);
  return code;
}

int sign_kcdsa_value(const Signing &task, DerWriter &out) noexcept {
  const KCDSA_UNIT *key = ASYMMETRIC_KEY_to_KCDSA_UNIT(task.key);
  if (!key) return task.failure(ERR_ALGORITHM_MISMATCH);
  return write_kcdsa_signature(task.tbs, key, task.digest_id, task.function, out);
}

enum class Parameters { null_or_absent, absent, of_pss };

struct Algorithm {
  std::string_view oid;
  int digest_id;  // 0 where it is fixed, or for PSS in the parameters
  Parameters parameters;
  int (*verify)(const Task &) noexcept;
  int (*sign)(const Signing &, DerWriter &) noexcept;  // null where this library cannot
};

// clang-format off
constexpr Algorithm kAlgorithms[] = {
    {"1.2.840.113549.1.1.4",  PKV_DIGEST_MD5,    Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.5",  PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.3.14.3.2.29",         PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.14", PKV_DIGEST_SHA224, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.11", PKV_DIGEST_SHA256, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.12", PKV_DIGEST_SHA384, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.13", PKV_DIGEST_SHA512, Parameters::null_or_absent, verify_rsa_pkcs1, sign_rsa_pkcs1},
    {"1.2.840.113549.1.1.10", 0,                 Parameters::of_pss, verify_rsa_pss, sign_rsa_pss},
    {"1.2.840.10045.4.1",     PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.1",   PKV_DIGEST_SHA224, Parameters::null_or_absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.2",   PKV_DIGEST_SHA256, Parameters::null_or_absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.3",   PKV_DIGEST_SHA384, Parameters::null_or_absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10045.4.3.4",   PKV_DIGEST_SHA512, Parameters::null_or_absent, verify_ecdsa, sign_ecdsa},
    {"1.2.840.10040.4.3",     PKV_DIGEST_SHA1,   Parameters::null_or_absent, verify_dsa_value, nullptr},
    {"2.16.840.1.101.3.4.3.1", PKV_DIGEST_SHA224, Parameters::absent, verify_dsa_value, nullptr},
    {"2.16.840.1.101.3.4.3.2", PKV_DIGEST_SHA256, Parameters::absent, verify_dsa_value, nullptr},
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

bool parameters_fit(const Tlv *parameters, Parameters wanted) noexcept {
  if (wanted == Parameters::of_pss) return parameters && parameters->identifier == tag::kSequence;
  if (!parameters) return true;
  return wanted != Parameters::absent && parameters->identifier == TYPE_NULL && parameters->content.empty();
}

// An AlgorithmIdentifier in its place.
struct Identifier {
  owned<OBJECT_IDENTIFIER> oid;
  Tlv parameters;
  bool has_parameters = false;
};

int read_identifier(const Tlv &tlv, int function, Identifier &out) noexcept {
  Cursor in(tlv);
  OBJECT_IDENTIFIER *oid = nullptr;
  const bool read = in.oid(oid);
  out.oid.reset(oid);
  if (read && !in.at_end()) out.has_parameters = in.next(out.parameters);
  if (read && !in.at_end()) in.stop(Read::malformed);
  return in.result(function);
}

// The three parts of a signed structure, and the algorithm inside what is signed.
struct Parts {
  Tlv tbs, algorithm, signature, inner_algorithm;
};

bool take_apart(Octets whole, InnerAlgorithm inner, Parts &out) noexcept {
  Tlv structure;
  Rules rules;
  if (!Tlv::parse(whole, rules, structure)) return false;
  Cursor in(structure);
  if (!in.next(out.tbs) || !in.next(out.algorithm) || !in.next(out.signature)) return false;
  if (out.signature.identifier != TYPE_BIT_STRING) return false;
  Cursor tbs(out.tbs);
  return !inner || inner(tbs, out.inner_algorithm);
}

bool same(Octets a, Octets b) noexcept {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace

int verify_octets(Octets tbs, const Tlv &algorithm, Octets signature, const X509_PUBKEY &key, int function) noexcept {
  Identifier identifier;
  if (const int code = read_identifier(algorithm, function, identifier)) return code;
  const Algorithm *known = find_algorithm(*identifier.oid);
  if (!known) return fail(function, kUnsupported);
  const Tlv *parameters = identifier.has_parameters ? &identifier.parameters : nullptr;
  if (!parameters_fit(parameters, known->parameters)) return fail(function, ERR_ALGORITHM_MISMATCH);
  return known->verify({tbs, signature, key, known->digest_id, parameters, function});
}

int verify_signed(Octets whole, InnerAlgorithm inner, const X509_PUBKEY &key, int function) noexcept {
  Parts parts;
  if (!take_apart(whole, inner, parts)) return fail(function, ERR_ASN1_DECODING);
  if (inner && !same(parts.algorithm.whole, parts.inner_algorithm.whole)) {
    return fail(function, ERR_ALGORITHM_MISMATCH);
  }
  const Octets bits = parts.signature.content;
  if (bits.empty() || bits[0] != 0) return fail(function, ERR_UNUSED_BITS);
  return verify_octets(parts.tbs.whole, parts.algorithm, bits.subspan(1), key, function);
}

int digest_length_of_signed(Octets whole, int function, int &length) noexcept {
  Parts parts;
  Identifier identifier;
  if (!take_apart(whole, kNoInnerAlgorithm, parts)) return fail(function, ERR_ASN1_DECODING);
  if (const int code = read_identifier(parts.algorithm, function, identifier)) return code;
  const Algorithm *known = find_algorithm(*identifier.oid);
  if (!known) return fail(function, kUnsupported);
  PssValues values{known->digest_id, 0, 0};
  const bool of_pss = known->parameters == Parameters::of_pss && identifier.has_parameters;
  if (const int code = of_pss ? read_pss_values(identifier.parameters, function, values) : 0) return code;
  length = values.digest_id ? PKV_Get_DIGEST_Length(values.digest_id) : INT_MAX;
  return 0;
}

int verify_received(const X509_RECEIVED *received, InnerAlgorithm inner, const X509_PUBKEY &key,
                    int function) noexcept {
  return received ? verify_signed(received_whole(*received), inner, key, function) : fail(function, kNullArgument);
}

int check_signing_algorithm(const OBJECT_IDENTIFIER *oid, int function) noexcept {
  if (!oid) return fail(function, kNullArgument);
  const Algorithm *known = find_algorithm(*oid);
  return known && known->sign ? 0 : fail(function, kUnsupported);
}

int sign_octets(Octets tbs, const OBJECT_IDENTIFIER &oid, const ASYMMETRIC_KEY &key, int function, DerWriter &out,
                int pss_digest_id) noexcept {
  if (const int code = check_signing_algorithm(&oid, function)) return code;
  const Algorithm *known = find_algorithm(oid);
  const int digest_id = known->parameters == Parameters::of_pss ? pss_digest_id : known->digest_id;
  const int code = known->sign({tbs, &key, digest_id, function}, out);
  return code ? code : out.result(function);
}

}  // namespace velpki
