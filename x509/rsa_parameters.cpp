// RSAES-OAEP-params and RSASSA-PSS-params (RFC 8017 A.2): the records, their codec, and what they mean.
#include "x509/internal/rsa_parameters.h"

#include <velpki/asn1_error.h>

#include <optional>

namespace velpki {

template <>
inline constexpr auto owned_fields<RSAES_OAEP_PARAM> = std::tuple(own(&RSAES_OAEP_PARAM::hashAlgorithm),
                                                                  own(&RSAES_OAEP_PARAM::maskGenAlgorithm),
                                                                  own(&RSAES_OAEP_PARAM::pSourceAlgorithm));
template <>
inline constexpr auto owned_fields<RSASSA_PSS_PARAM> = std::tuple(own(&RSASSA_PSS_PARAM::hashAlgorithm),
                                                                  own(&RSASSA_PSS_PARAM::maskGenAlgorithm),
                                                                  own(&RSASSA_PSS_PARAM::saltLength),
                                                                  own(&RSASSA_PSS_PARAM::trailerField));

namespace {

constexpr std::string_view kMgf1 = "1.2.840.113549.1.1.8", kSpecifiedLabel = "1.2.840.113549.1.1.9";
constexpr int kDefaultDigest = PKV_DIGEST_SHA1, kDefaultSalt = 20;
constexpr unsigned kTrailer = 1;
constexpr int kHash = 0, kMaskGen = 1, kSource = 2, kSalt = 2, kTrailerField = 3;  // context tags

// What the pieces mean. Nothing for an algorithm that is not known or parameters that do not fit; 0 is no digest.

std::string_view oid_text(const X509_ALGO_IDENTIFIER &identifier) noexcept {
  return identifier.algorithm ? text(*identifier.algorithm) : std::string_view();
}

bool is_digest(int digest_id) noexcept {
  return PKV_Get_DIGEST_Length(digest_id) > 0 && get_OID_from_DigestID(digest_id) != 0;
}

// The registry gives signature algorithms a digest too, so the row has to be the digest's own.
int digest_of(const X509_ALGO_IDENTIFIER &identifier) noexcept {
  const int digest_id = get_DigestID_from_OID(identifier.algorithm);
  const bool own_row =
      is_digest(digest_id) && get_OID_from_DigestID(digest_id) == index_from_OBJECT_IDENTIFIER(identifier.algorithm);
  const ASN1_STRING *parameters = identifier.parameters;
  const bool fits = !parameters || (parameters->type == TYPE_NULL && parameters->length == 0);
  return own_row && fits ? digest_id : 0;
}

// The code's reasons: 0, 48, ERR_ASN1_DECODING, 3C.
int read_hash(const X509_ALGO_IDENTIFIER *identifier, int function, int &digest_id) noexcept {
  digest_id = identifier ? digest_of(*identifier) : kDefaultDigest;
  return digest_id ? 0 : fail(function, kUnsupported);
}

int read_mask_gen(const X509_ALGO_IDENTIFIER *identifier, int function, int &digest_id) noexcept {
  if (!identifier) return read_hash(nullptr, function, digest_id);
  if (oid_text(*identifier) != kMgf1) return fail(function, kUnsupported);
  if (!identifier->parameters || identifier->parameters->type != tag::kSequence) {
    return fail(function, ERR_ASN1_DECODING);
  }
  const owned<X509_ALGO_IDENTIFIER> hash(new_X509_ALGO_IDENTIFIER());
  if (!hash) return fail(function, kNoMemory);
  if (const int code = decode(view_of(*identifier->parameters), *hash)) {
    return fail(function, reason_of(code) == kNoMemory ? kNoMemory : ERR_ASN1_DECODING);
  }
  return read_hash(hash.get(), function, digest_id);
}

int read_label(const X509_ALGO_IDENTIFIER *identifier, int function, Octets &label) noexcept {
  label = {};
  if (!identifier) return 0;
  if (oid_text(*identifier) != kSpecifiedLabel) return fail(function, kUnsupported);
  if (!identifier->parameters || identifier->parameters->type != TYPE_OCTET_STRING) {
    return fail(function, ERR_ASN1_DECODING);
  }
  label = octets(*identifier->parameters);
  return 0;
}

bool is_default_hash(const X509_ALGO_IDENTIFIER *identifier) noexcept {
  return !identifier || digest_of(*identifier) == kDefaultDigest;
}

bool is_default_label(const X509_ALGO_IDENTIFIER *identifier) noexcept {
  Octets label;
  return read_label(identifier, 0, label) == 0 && label.empty();
}

// Reading.

// [n] EXPLICIT, when it stands here.
bool read_algorithm(Cursor &in, int n, X509_ALGO_IDENTIFIER *&out) noexcept {
  Tlv wrapper;
  if (!in.at(tag::explicit_context(n))) return true;
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  if (read_record(inner, out) && !inner.at_end()) inner.stop(Read::malformed);
  return in.absorb(inner);
}

bool read_number(Cursor &in, int n, BIGINT *&out) noexcept {
  Tlv wrapper, number;
  if (!in.at(tag::explicit_context(n))) return true;
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  if (!inner.next(TYPE_INTEGER, number) || !inner.at_end()) return in.stop(Read::malformed);
  if (number.content.empty() || number.content[0] & 0x80) return in.stop(Read::malformed);
  return in.keep(read_integer(number, out));
}

bool at_end(Cursor &in) noexcept { return in.at_end() || in.stop(Read::malformed); }

}  // namespace

// RSAES-OAEP-params ::= SEQUENCE { hashAlgorithm [0] EXPLICIT HashAlgorithm DEFAULT sha1, maskGenAlgorithm [1] EXPLICIT
//   MaskGenAlgorithm DEFAULT mgf1SHA1, pSourceAlgorithm [2] EXPLICIT PSourceAlgorithm DEFAULT pSpecifiedEmpty }
int decode(const Tlv &tlv, RSAES_OAEP_PARAM &out) noexcept {
  Cursor in(tlv);
  if (read_algorithm(in, kHash, out.hashAlgorithm) && read_algorithm(in, kMaskGen, out.maskGenAlgorithm) &&
      read_algorithm(in, kSource, out.pSourceAlgorithm)) {
    at_end(in);
  }
  return in.result(F_SEQ_TO_RSAES_OAEP_PARAM);
}

// RSASSA-PSS-params ::= SEQUENCE { hashAlgorithm [0] EXPLICIT HashAlgorithm DEFAULT sha1, maskGenAlgorithm [1] EXPLICIT
//   MaskGenAlgorithm DEFAULT mgf1SHA1, saltLength [2] EXPLICIT INTEGER DEFAULT 20, trailerField [3] EXPLICIT INTEGER
//   DEFAULT 1 }
int decode(const Tlv &tlv, RSASSA_PSS_PARAM &out) noexcept {
  Cursor in(tlv);
  if (read_algorithm(in, kHash, out.hashAlgorithm) && read_algorithm(in, kMaskGen, out.maskGenAlgorithm) &&
      read_number(in, kSalt, out.saltLength) && read_number(in, kTrailerField, out.trailerField) && at_end(in)) {
    if (out.trailerField && PKV_Get_BIGINT_Word(out.trailerField) != kTrailer) in.stop(Read::malformed);
  }
  return in.result(F_SEQ_TO_RSASSA_PSS_PARAM);
}

// Writing.

namespace {

void write_algorithm(int n, const X509_ALGO_IDENTIFIER *identifier, DerWriter &out) noexcept {
  const auto wrapper = out.explicit_context(n);
  encode(*identifier, out);
}

bool is_default_mask(const X509_ALGO_IDENTIFIER *identifier, bool &no_memory) noexcept {
  int digest_id = 0;
  const int code = read_mask_gen(identifier, 0, digest_id);
  no_memory = code == kNoMemory;
  return code == 0 && digest_id == kDefaultDigest;
}

// The two members that both records begin with; false when memory is exhausted.
bool write_digests(const X509_ALGO_IDENTIFIER *hash, const X509_ALGO_IDENTIFIER *mask, DerWriter &out) noexcept {
  bool no_memory;
  const bool default_mask = is_default_mask(mask, no_memory);
  if (no_memory) return false;
  if (!is_default_hash(hash)) write_algorithm(kHash, hash, out);
  if (!default_mask) write_algorithm(kMaskGen, mask, out);
  return true;
}

}  // namespace

int encode(const RSAES_OAEP_PARAM &param, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (!write_digests(param.hashAlgorithm, param.maskGenAlgorithm, out)) {
    return fail(F_RSAES_OAEP_PARAM_TO_SEQ, kNoMemory);
  }
  if (!is_default_label(param.pSourceAlgorithm)) write_algorithm(kSource, param.pSourceAlgorithm, out);
  return 0;
}

int encode(const RSASSA_PSS_PARAM &param, DerWriter &out) noexcept {
  if (param.trailerField && PKV_Get_BIGINT_Word(param.trailerField) != kTrailer) {
    return fail(F_RSASSA_PSS_PARAM_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  if (!write_digests(param.hashAlgorithm, param.maskGenAlgorithm, out)) {
    return fail(F_RSASSA_PSS_PARAM_TO_SEQ, kNoMemory);
  }
  if (!param.saltLength || PKV_Get_BIGINT_Word(param.saltLength) == kDefaultSalt) return 0;
  const auto wrapper = out.explicit_context(kSalt);
  out.integer(param.saltLength);
  return 0;
}

// In the provider's terms.

namespace {

owned<X509_ALGO_IDENTIFIER> new_identifier(const OBJECT_IDENTIFIER *oid, const ASN1_STRING *parameters) noexcept {
  owned<X509_ALGO_IDENTIFIER> made(new_X509_ALGO_IDENTIFIER());
  return made && set_X509_ALGO_IDENTIFIER_value(made.get(), oid, parameters) == 0 ? std::move(made) : nullptr;
}

owned<OBJECT_IDENTIFIER> oid_of(std::string_view text) noexcept {
  return owned<OBJECT_IDENTIFIER>(new_OBJECT_IDENTIFIER(text.data(), int(text.size())));
}

owned<X509_ALGO_IDENTIFIER> hash_identifier(int digest_id) noexcept {
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(get_OID_from_DigestID(digest_id));
  return new_identifier(oid.get(), nullptr);
}

owned<X509_ALGO_IDENTIFIER> mask_identifier(int digest_id) noexcept {
  const owned<X509_ALGO_IDENTIFIER> hash = hash_identifier(digest_id);
  DerWriter written;
  if (!hash || encode(*hash, written) || written.failed()) return nullptr;
  Tlv tlv;
  Rules rules;
  if (!Tlv::parse(written.written(), rules, tlv)) return nullptr;
  const owned<ASN1_STRING> parameters(new_string(tag::kSequence, tlv.content));
  const owned<OBJECT_IDENTIFIER> mgf1 = oid_of(kMgf1);
  return parameters ? new_identifier(mgf1.get(), parameters.get()) : nullptr;
}

owned<X509_ALGO_IDENTIFIER> label_identifier(Octets label) noexcept {
  const owned<ASN1_STRING> parameters(new_string(TYPE_OCTET_STRING, label));
  const owned<OBJECT_IDENTIFIER> specified = oid_of(kSpecifiedLabel);
  return parameters ? new_identifier(specified.get(), parameters.get()) : nullptr;
}

int check_values(const void *param, int digest_id, int mgf_digest_id, int length, int function) noexcept {
  if (!param) return fail(function, kNullArgument);
  if (length < 0) return fail(function, kBadValue);
  return is_digest(digest_id) && is_digest(mgf_digest_id) ? 0 : fail(function, kUnsupported);
}

int meaning_of(const RSASSA_PSS_PARAM &param, int function, PssValues &out) noexcept {
  if (const int code = read_hash(param.hashAlgorithm, function, out.digest_id)) return code;
  if (const int code = read_mask_gen(param.maskGenAlgorithm, function, out.mgf_digest_id)) return code;
  const unsigned salt = param.saltLength ? PKV_Get_BIGINT_Word(param.saltLength) : unsigned(kDefaultSalt);
  if (salt > unsigned(INT_MAX)) return fail(function, ERR_ASN1_DECODING);
  out.salt_length = int(salt);
  return 0;
}

void tell(int *out, int value) noexcept {
  if (out) *out = value;
}

}  // namespace

int read_pss_values(const Tlv &parameters, int function, PssValues &out) noexcept {
  const owned<RSASSA_PSS_PARAM> param(new_RSASSA_PSS_PARAM());
  if (!param) return fail(function, kNoMemory);
  if (const int code = decode(parameters, *param)) return fail(function, reason_of(code));
  return meaning_of(*param, function, out);
}

void write_pss_values(const PssValues &values, DerWriter &out) noexcept {
  const owned<RSASSA_PSS_PARAM> param(new_RSASSA_PSS_PARAM());
  const int code = set_RSASSA_PSS_PARAM_values(param.get(), values.digest_id, values.mgf_digest_id, values.salt_length);
  if (code || encode(*param, out)) out.refuse();
}

PssValues usual_pss_values(int digest_id) noexcept { return {digest_id, digest_id, PKV_Get_DIGEST_Length(digest_id)}; }

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(RSAES_OAEP_PARAM)
VELPKI_LIFE_CYCLE(RSASSA_PSS_PARAM)

int RSAES_OAEP_PARAM_to_Seq(const RSAES_OAEP_PARAM *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_RSAES_OAEP_PARAM_TO_SEQ, in, out, encode);
}
int Seq_to_RSAES_OAEP_PARAM(ASN1_UNIT *in, RSAES_OAEP_PARAM **out) noexcept {
  return from_seq(F_SEQ_TO_RSAES_OAEP_PARAM, in, out, decode);
}
int RSASSA_PSS_PARAM_to_Seq(const RSASSA_PSS_PARAM *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_RSASSA_PSS_PARAM_TO_SEQ, in, out, encode);
}
int Seq_to_RSASSA_PSS_PARAM(ASN1_UNIT *in, RSASSA_PSS_PARAM **out) noexcept {
  return from_seq(F_SEQ_TO_RSASSA_PSS_PARAM, in, out, decode);
}

namespace velpki {

namespace {

// Puts a copy in a member's place; null takes it away.
template <class R, class T>
int set_member(int function, R *param, T *R::*member, const T *value) noexcept {
  if (!param) return fail(function, kNullArgument);
  if (value) return replace(*param, member, value) ? 0 : fail(function, kNoMemory);
  if (param->*member) Flat<T>::release(param->*member);
  param->*member = nullptr;
  return 0;
}

int set_number(int function, RSASSA_PSS_PARAM *param, BIGINT *RSASSA_PSS_PARAM::*member, unsigned value) noexcept {
  const owned<BIGINT> number(PKV_New_BIGINT());
  if (!number || PKV_Set_BIGINT_Word(number.get(), value)) return fail(function, kNoMemory);
  return set_member(function, param, member, number.get());
}

}  // namespace

}  // namespace velpki

int set_RSAES_OAEP_PARAM_hashAlgorithm(RSAES_OAEP_PARAM *param, const X509_ALGO_IDENTIFIER *hash) noexcept {
  return set_member(F_SET_RSAES_OAEP_PARAM_HASHALGORITHM, param, &RSAES_OAEP_PARAM::hashAlgorithm, hash);
}
int set_RSAES_OAEP_PARAM_maskGenAlgorithm(RSAES_OAEP_PARAM *param, const X509_ALGO_IDENTIFIER *mask) noexcept {
  return set_member(F_SET_RSAES_OAEP_PARAM_MASKGENALGORITHM, param, &RSAES_OAEP_PARAM::maskGenAlgorithm, mask);
}
int set_RSAES_OAEP_PARAM_pSourceAlgorithm(RSAES_OAEP_PARAM *param, const X509_ALGO_IDENTIFIER *source) noexcept {
  return set_member(F_SET_RSAES_OAEP_PARAM_PSOURCEALGORITHM, param, &RSAES_OAEP_PARAM::pSourceAlgorithm, source);
}
int set_RSASSA_PSS_PARAM_hashAlgorithm(RSASSA_PSS_PARAM *param, const X509_ALGO_IDENTIFIER *hash) noexcept {
  return set_member(F_SET_RSASSA_PSS_PARAM_HASHALGORITHM, param, &RSASSA_PSS_PARAM::hashAlgorithm, hash);
}
int set_RSASSA_PSS_PARAM_maskGenAlgorithm(RSASSA_PSS_PARAM *param, const X509_ALGO_IDENTIFIER *mask) noexcept {
  return set_member(F_SET_RSASSA_PSS_PARAM_MASKGENALGORITHM, param, &RSASSA_PSS_PARAM::maskGenAlgorithm, mask);
}
int set_RSASSA_PSS_PARAM_saltLength(RSASSA_PSS_PARAM *param, int salt_length) noexcept {
  return salt_length >= 0 && set_number(0, param, &RSASSA_PSS_PARAM::saltLength, unsigned(salt_length)) == 0 ? 0 : 1;
}
int set_RSASSA_PSS_PARAM_trailerField(RSASSA_PSS_PARAM *param, int trailer) noexcept {
  if (param && trailer != int(kTrailer)) return fail(F_SET_RSASSA_PSS_PARAM_TRAILERFIELD, kBadValue);
  return set_number(F_SET_RSASSA_PSS_PARAM_TRAILERFIELD, param, &RSASSA_PSS_PARAM::trailerField, kTrailer);
}

// Everything is made before the record changes.
int set_RSAES_OAEP_PARAM_values(RSAES_OAEP_PARAM *param, int digest_id, int mgf_digest_id, const unsigned char *label,
                                int label_length) noexcept {
  constexpr int kFunction = F_SET_RSAES_OAEP_PARAM_HASHALGORITHM;
  if (const int code = check_values(param, digest_id, mgf_digest_id, label_length, kFunction)) return code;
  owned<X509_ALGO_IDENTIFIER> hash = hash_identifier(digest_id), mask = mask_identifier(mgf_digest_id),
                              source = label_identifier(octets_of(label, label_length));
  if (!hash || !mask || !source) return fail(kFunction, kNoMemory);
  clean_RSAES_OAEP_PARAM(param);
  *param = {hash.release(), mask.release(), source.release()};
  return 0;
}

int get_RSAES_OAEP_PARAM_values(const RSAES_OAEP_PARAM *param, int *digest_id, int *mgf_digest_id,
                                const unsigned char **label, int *label_length) noexcept {
  constexpr int kFunction = F_SEQ_TO_RSAES_OAEP_PARAM;
  int digest = 0, mask = 0;
  Octets octets;
  if (!param) return fail(kFunction, kNullArgument);
  if (const int code = read_hash(param->hashAlgorithm, kFunction, digest)) return code;
  if (const int code = read_mask_gen(param->maskGenAlgorithm, kFunction, mask)) return code;
  if (const int code = read_label(param->pSourceAlgorithm, kFunction, octets)) return code;
  tell(digest_id, digest);
  tell(mgf_digest_id, mask);
  tell(label_length, int(octets.size()));
  if (label) *label = octets.data();
  return 0;
}

int set_RSASSA_PSS_PARAM_values(RSASSA_PSS_PARAM *param, int digest_id, int mgf_digest_id, int salt_length) noexcept {
  constexpr int kFunction = F_SET_RSASSA_PSS_PARAM_HASHALGORITHM;
  if (const int code = check_values(param, digest_id, mgf_digest_id, salt_length, kFunction)) return code;
  owned<X509_ALGO_IDENTIFIER> hash = hash_identifier(digest_id), mask = mask_identifier(mgf_digest_id);
  owned<BIGINT> salt(PKV_New_BIGINT());
  if (!hash || !mask || !salt || PKV_Set_BIGINT_Word(salt.get(), unsigned(salt_length))) {
    return fail(kFunction, kNoMemory);
  }
  clean_RSASSA_PSS_PARAM(param);
  *param = {hash.release(), mask.release(), salt.release(), nullptr};
  return 0;
}

int get_RSASSA_PSS_PARAM_values(const RSASSA_PSS_PARAM *param, int *digest_id, int *mgf_digest_id,
                                int *salt_length) noexcept {
  PssValues values;
  if (!param) return fail(F_SEQ_TO_RSASSA_PSS_PARAM, kNullArgument);
  if (const int code = meaning_of(*param, F_SEQ_TO_RSASSA_PSS_PARAM, values)) return code;
  tell(digest_id, values.digest_id);
  tell(mgf_digest_id, values.mgf_digest_id);
  tell(salt_length, values.salt_length);
  return 0;
}
