// What the parameters of RSAES-OAEP and RSASSA-PSS mean, in the provider's terms, and back.
#include <velpki/asn1_error.h>

#include "x509/internal/rsa_parameters.h"

namespace velpki {

namespace {

constexpr std::string_view kMgf1 = "1.2.840.113549.1.1.8", kSpecifiedLabel = "1.2.840.113549.1.1.9";

std::string_view oid_text(const X509_ALGO_IDENTIFIER &identifier) noexcept {
  return identifier.algorithm ? text(*identifier.algorithm) : std::string_view();
}

bool is_digest(int digest_id) noexcept {
  return !(digest_id & PKV_HMAC_FLAG) && PKV_Get_DIGEST_Length(digest_id) > 0 && get_OID_from_DigestID(digest_id) != 0;
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

}  // namespace

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

namespace {

owned<OBJECT_IDENTIFIER> oid_of(std::string_view text) noexcept {
  return owned<OBJECT_IDENTIFIER>(new_OBJECT_IDENTIFIER(text.data(), int(text.size())));
}

owned<X509_ALGO_IDENTIFIER> hash_identifier(int digest_id) noexcept {
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(get_OID_from_DigestID(digest_id));
  return new_algorithm(oid.get(), nullptr);
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
  return parameters ? new_algorithm(mgf1.get(), parameters.get()) : nullptr;
}

owned<X509_ALGO_IDENTIFIER> label_identifier(Octets label) noexcept {
  const owned<ASN1_STRING> parameters(new_string(TYPE_OCTET_STRING, label));
  const owned<OBJECT_IDENTIFIER> specified = oid_of(kSpecifiedLabel);
  return parameters ? new_algorithm(specified.get(), parameters.get()) : nullptr;
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

// Everything is made before the record changes.
int set_RSAES_OAEP_PARAM_values(RSAES_OAEP_PARAM *param, int digest_id, int mgf_digest_id, const unsigned char *label,
                                int label_length) noexcept {
  constexpr int kFunction = F_SET_RSAES_OAEP_PARAM_HASHALGORITHM;
  if (const int code = check_values(param, digest_id, mgf_digest_id, label_length, kFunction)) return code;
  if (!label && label_length > 0) return fail(kFunction, kNullArgument);
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
