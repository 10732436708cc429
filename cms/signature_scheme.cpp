// Algorithm identifiers of signers, and attributes.
#include "cms/internal/signature.h"
#include "x509/internal/rsa_parameters.h"

namespace velpki {

namespace {

struct DigestSignature {
  int digest_row, signature_row;
};
// md2, md5, sha, sha1, md4, sha256, sha384, sha512, sha224 WithRSAEncryption.
constexpr DigestSignature kSignatures[] = {{3, 7},     {4, 8},     {41, 42},   {64, 65},  {257, 396},
                                           {672, 668}, {673, 669}, {674, 670}, {675, 671}};

}  // namespace

int signature_row(int digest_row, int padding) noexcept {
  if (padding == PKV_RSA_PSS) return row::kRsassaPss;
  for (const DigestSignature &each : kSignatures)
    if (each.digest_row == digest_row) return each.signature_row;
  return row::kRsaEncryption;
}

int digest_id_of(const X509_ALGO_IDENTIFIER *algorithm) noexcept {
  return algorithm ? get_DigestID_from_OID(algorithm->algorithm) : 0;
}

int rsa_scheme_of(int cipher_id) noexcept {
  const int scheme = cipher_id & 0xFF;
  if ((cipher_id & 0x70000000) != PKV_KEY_RSA || scheme > PKV_RSA_PSS) return 0;
  return scheme ? scheme : PKV_RSA_PKCS1;
}

bool parameters_view(const X509_ALGO_IDENTIFIER &algorithm, Tlv &out) noexcept {
  const ASN1_STRING *parameters = algorithm.parameters;
  if (!parameters || parameters->type == TYPE_NULL) return false;
  out.identifier = uint8_t(parameters->type);
  out.content = octets(*parameters);
  return true;
}

bool set_parameters(X509_ALGO_IDENTIFIER &algorithm, const DerWriter &der) noexcept {
  Tlv tlv;
  Rules rules;
  if (!Tlv::parse(der.written(), rules, tlv)) return false;
  ASN1_STRING *string = new_string(tlv.identifier, tlv.content);
  if (!string) return false;
  free_ASN1_STRING(std::exchange(algorithm.parameters, string));
  return true;
}

bool read_pss_parameters(const X509_ALGO_IDENTIFIER &algorithm, SignatureScheme &scheme) noexcept {
  Tlv parameters;
  PssValues values;
  if (!parameters_view(algorithm, parameters)) return true;
  if (parameters.identifier != tag::kSequence || read_pss_values(parameters, F_P7_VERIFY, values)) return false;
  scheme.mgf_digest_id = values.mgf_digest_id;
  scheme.salt_length = values.salt_length;
  return values.digest_id == scheme.digest_id;
}

bool signature_scheme(const X509_ALGO_IDENTIFIER *digest, const X509_ALGO_IDENTIFIER *signature, int key_type,
                      SignatureScheme &out) noexcept {
  const int cipher_id = signature ? get_CipherID_from_OID(signature->algorithm) : 0;
  out = SignatureScheme();
  out.digest_id = out.mgf_digest_id = digest_id_of(digest);
  if (!out.digest_id || !cipher_id) return false;
  if (key_type != ASYMMETRIC_KEY_RSA) return true;
  out.scheme = rsa_scheme_of(cipher_id);
  return out.scheme == PKV_RSA_PSS ? read_pss_parameters(*signature, out) : out.scheme != 0;
}

int set_pss_parameters(const RSASSA_PSS_PARAM *given, const X509_ALGO_IDENTIFIER &digest, int function,
                       X509_ALGO_IDENTIFIER &algorithm) noexcept {
  DerWriter parameters;
  if (!given) {
    write_pss_values(usual_pss_values(digest_id_of(&digest)), parameters);
  } else if (const int code = encode(*given, parameters)) {
    return code;
  }
  if (const int code = parameters.result(function)) return code;
  return set_parameters(algorithm, parameters) ? 0 : fail(function, kNoMemory);
}

bool set_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int row) noexcept {
  owned<X509_ALGO_IDENTIFIER> fresh = new_algorithm(oid_of_row(row).get());
  if (!fresh) return false;
  free_X509_ALGO_IDENTIFIER(algorithm);
  algorithm = fresh.release();
  return true;
}

int write_attribute_set(const X509_ATTRIBUTES &attributes, DerWriter &out) noexcept {
  return encode_attributes(attributes, out, tag::kSet);
}

bool name_signature(X509_ALGO_IDENTIFIER *&algorithm, int key_type, bool attributes, bool version_0) noexcept {
  if (key_type == ASYMMETRIC_KEY_ECC) return true;
  if (key_type == ASYMMETRIC_KEY_KCDSA) return set_algorithm(algorithm, row::kKcdsa1);
  const int row = index_from_OBJECT_IDENTIFIER(algorithm->algorithm);
  const bool pss = row == row::kRsassaPss || row == row::kPssRsa;
  return (!version_0 && (!attributes || pss)) || set_algorithm(algorithm, row::kRsaEncryption);
}

const X509_ATTRIBUTE *find_attribute(const X509_ATTRIBUTES *attributes, int row) noexcept {
  for (const X509_ATTRIBUTE *each : elements<X509_ATTRIBUTE>(attributes))
    if (each && index_from_OBJECT_IDENTIFIER(each->type) == row) return each;
  return nullptr;
}

namespace {

// The octets of a number as both forms write it: not padded, and not negative.
owned<ASN1_STRING> new_number(Octets magnitude) noexcept {
  const owned<BIGINT> number(PKV_New_BIGINT_Binary(magnitude.data(), int(magnitude.size())));
  DerWriter encoded;
  encoded.integer(number.get());
  Tlv tlv;
  Rules rules;
  if (!number || !Tlv::parse(encoded.written(), rules, tlv)) return nullptr;
  return owned<ASN1_STRING>(new_string(TYPE_INTEGER, tlv.content));
}

owned<X509_ATTRIBUTE> new_attribute(int row, int type, Octets value) noexcept {
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(row);
  owned<X509_ATTRIBUTE> attribute(oid ? new_X509_ATTRIBUTE() : nullptr);
  if (!attribute) return nullptr;
  owned<ASN1_STRING> string(type == TYPE_INTEGER ? new_number(value).release() : new_string(type, value));
  if (!string || set_X509_ATTRIBUTE_OID(attribute.get(), oid.get())) return nullptr;
  if (add_X509_ATTRIBUTE_set(attribute.get(), string.get())) return nullptr;
  static_cast<void>(string.release());
  return attribute;
}

}  // namespace

bool add_attribute(X509_ATTRIBUTES *&attributes, int row, int type, Octets value) noexcept {
  if (type == TYPE_SEQUENCE || type == TYPE_SET) type |= tag::kConstructed;
  owned<X509_ATTRIBUTE> attribute = new_attribute(row, type, value);
  STACK *fresh = attributes ? nullptr : new_STACK();
  if (!append(fresh ? fresh : attributes, attribute)) return free_STACK(fresh), false;
  if (fresh) attributes = fresh;
  return true;
}

}  // namespace velpki
