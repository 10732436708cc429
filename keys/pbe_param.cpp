// P5_PBE_PARAM: the parameters of PBES1, PBES2 and the algorithms of PKCS#12.
#include "keys/internal/pkcs5.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P5_PBE_PARAM> = std::tuple(own(&P5_PBE_PARAM::salt), own(&P5_PBE_PARAM::iteration),
                                                              own(&P5_PBE_PARAM::encryptionScheme),
                                                              own(&P5_PBE_PARAM::prf));

namespace {

constexpr std::string_view kPbkdf2 = "1.2.840.113549.1.5.12";

struct Prf {
  int digest_id;
  std::string_view oid;
};
// By text: the registry has only the first, and means HMAC by it.
constexpr Prf kPrfs[] = {
    {PKV_DIGEST_SHA1, "1.2.840.113549.2.7"},    {PKV_DIGEST_SHA224, "1.2.840.113549.2.8"},
    {PKV_DIGEST_SHA256, "1.2.840.113549.2.9"},  {PKV_DIGEST_SHA384, "1.2.840.113549.2.10"},
    {PKV_DIGEST_SHA512, "1.2.840.113549.2.11"}, {PKV_DIGEST_MD5, "1.2.840.113549.2.6"},
};

// keyLength INTEGER (1..MAX) OPTIONAL
bool read_key_length(Cursor &in, int &length) noexcept {
  if (tag::number(in.peek()) != TYPE_INTEGER) return true;
  BIGINT *number = nullptr;
  if (!in.integer(number)) return false;
  const owned<BIGINT> owner(number);
  const unsigned word = PKV_Get_BIGINT_Word(number);
  if (word > unsigned(INT_MAX) || PKV_Is_BIGINT_Negative(number)) return in.stop(Read::malformed);
  length = int(word);
  return true;
}

bool read_salt_and_count(Cursor &in, P5_PBE_PARAM &out) noexcept {
  return in.at(TYPE_OCTET_STRING) ? in.string(TYPE_OCTET_STRING, out.salt) && in.integer(out.iteration)
                                  : in.stop(Read::malformed);
}

// PBKDF2-params ::= SEQUENCE { salt CHOICE { specified OCTET STRING, ... }, iterationCount INTEGER, keyLength OPTIONAL,
// prf AlgorithmIdentifier DEFAULT hmacWithSHA1 }
bool read_derivation_parameters(Cursor &algorithm, P5_PBE_PARAM &out) noexcept {
  Tlv parameters;
  if (!algorithm.next(TYPE_SEQUENCE, parameters)) return false;
  Cursor in(parameters);
  const bool read =
      read_salt_and_count(in, out) && read_key_length(in, out.key_length) && (in.at_end() || read_record(in, out.prf));
  return read || algorithm.absorb(in);
}

// keyDerivationFunc AlgorithmIdentifier: PBKDF2. The parameters of scrypt have the same shape.
bool read_derivation(Cursor &in, P5_PBE_PARAM &out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  Cursor algorithm(child);
  OBJECT_IDENTIFIER *oid = nullptr;
  if (!algorithm.oid(oid)) return in.absorb(algorithm);
  const owned<OBJECT_IDENTIFIER> owner(oid);
  if (text(*oid) != kPbkdf2) return in.stop(Read::malformed);
  return read_derivation_parameters(algorithm, out) || in.absorb(algorithm);
}

}  // namespace

// PBEParameter ::= SEQUENCE { salt OCTET STRING, iterationCount INTEGER }
// PBES2-params ::= SEQUENCE { keyDerivationFunc AlgorithmIdentifier, encryptionScheme AlgorithmIdentifier }
int decode(const Tlv &tlv, P5_PBE_PARAM &out) noexcept {
  Cursor in(tlv);
  if (in.at(tag::kSequence)) {
    if (read_derivation(in, out)) read_record(in, out.encryptionScheme);
  } else {
    read_salt_and_count(in, out);
  }
  return in.result(F_SEQ_TO_P5_PBE_PARAM);
}

namespace {

void write_salt_and_count(const P5_PBE_PARAM &param, DerWriter &out) noexcept {
  out.octets_as(TYPE_OCTET_STRING, param.salt);
  out.integer(param.iteration);
}

int write_derivation(const P5_PBE_PARAM &param, DerWriter &out) noexcept {
  const auto algorithm = out.sequence();
  out.oid_text(kPbkdf2);
  const auto parameters = out.sequence();
  write_salt_and_count(param, out);
  if (!out.rules().standard) return 0;
  if (param.key_length > 0) out.integer(unsigned(param.key_length));
  return param.prf ? encode(*param.prf, out) : 0;
}

}  // namespace

int encode(const P5_PBE_PARAM &param, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (!param.encryptionScheme) return write_salt_and_count(param, out), 0;
  if (const int code = write_derivation(param, out)) return code;
  return encode(*param.encryptionScheme, out);
}

int read_pbe_param(const X509_ALGO_IDENTIFIER &algorithm, Rules rules, owned<P5_PBE_PARAM> &out) noexcept {
  if (!algorithm.parameters || algorithm.parameters->type != tag::kSequence) {
    return fail(F_SEQ_TO_P5_PBE_PARAM, ERR_ASN1_DECODING);
  }
  Tlv tlv = view_of(*algorithm.parameters);
  tlv.rules = rules;
  out.reset(blank<P5_PBE_PARAM>());
  return out ? decode(tlv, *out) : fail(F_SEQ_TO_P5_PBE_PARAM, kNoMemory);
}

bool store_pbe_param(X509_ALGO_IDENTIFIER &algorithm, const P5_PBE_PARAM &param, Rules rules) noexcept {
  DerWriter writer(rules);
  Tlv tlv;
  if (encode(param, writer) || !Tlv::parse(writer.written(), rules, tlv)) return false;
  ASN1_STRING *string = new_string(tag::kSequence, tlv.content);
  if (!string) return false;
  free_ASN1_STRING(std::exchange(algorithm.parameters, string));
  return true;
}

int prf_digest_id(const X509_ALGO_IDENTIFIER *prf) noexcept {
  if (!prf) return PKV_DIGEST_SHA1;
  for (const Prf &each : kPrfs)
    if (prf->algorithm && text(*prf->algorithm) == each.oid) return each.digest_id;
  return 0;
}

std::string_view prf_oid(int digest_id) noexcept {
  for (const Prf &each : kPrfs)
    if (each.digest_id == digest_id) return each.oid;
  return {};
}

bool set_prf(P5_PBE_PARAM &param, int digest_id) noexcept {
  if (digest_id == PKV_DIGEST_SHA1) return true;
  const std::string_view text = prf_oid(digest_id);
  const owned<OBJECT_IDENTIFIER> oid(new_OBJECT_IDENTIFIER(text.data(), int(text.size())));
  owned<X509_ALGO_IDENTIFIER> prf = new_algorithm(oid.get());
  if (!prf) return false;
  param.prf = prf.release();
  return true;
}

namespace {

int write_octets(int value, int count, uint8_t (&out)[kIterationRoom]) noexcept {
  for (int i = count; i-- > 0; value /= 0x100) out[i] = uint8_t(value);
  return count;
}

}  // namespace

int iteration_octets(int iterations, uint8_t (&out)[kIterationRoom]) noexcept {
  int count = 0;
  for (int left = iterations; left > 16; left /= 16) ++count;
  return write_octets(iterations, count, out);
}

int exact_iteration_octets(int iterations, uint8_t (&out)[kIterationRoom]) noexcept {
  int count = 1;
  for (int left = iterations; left >= 0x100; left /= 0x100) ++count;
  return write_octets(iterations, count, out);
}

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(P5_PBE_PARAM)

int set_P5_PBE_PARAM(P5_PBE_PARAM *param, const unsigned char *salt, int salt_length, const unsigned char *iteration,
                     int iteration_length, const OBJECT_IDENTIFIER *scheme,
                     const ASN1_STRING *scheme_parameters) noexcept {
  if (!param || !salt || salt_length < 1 || !iteration || iteration_length < 1) return 1;
  const bool with_scheme = scheme && scheme_parameters;
  owned<OCTET_STRING> octets(new_string(TYPE_OCTET_STRING, octets_of(salt, salt_length)));
  owned<BIGINT> count(PKV_New_BIGINT_Binary(iteration, iteration_length));
  owned<X509_ALGO_IDENTIFIER> algorithm = with_scheme ? new_algorithm(scheme, scheme_parameters) : nullptr;
  if (!octets || !count || (with_scheme && !algorithm)) return 1;
  put(param->salt, std::move(octets));
  put(param->iteration, std::move(count));
  if (with_scheme) put(param->encryptionScheme, std::move(algorithm));
  return 0;
}

P5_PBE_PARAM *get_P5_PBE_PARAM_from_X509_ALGO_IDENTIFIER(const X509_ALGO_IDENTIFIER *algo) noexcept {
  owned<P5_PBE_PARAM> param;
  return algo && read_pbe_param(*algo, {}, param) == 0 ? param.release() : nullptr;
}

int P5_PBE_PARAM_to_Seq(const P5_PBE_PARAM *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P5_PBE_PARAM_TO_SEQ, in, out, encode);
}
int Seq_to_P5_PBE_PARAM(ASN1_UNIT *in, P5_PBE_PARAM **out) noexcept {
  return from_seq(F_SEQ_TO_P5_PBE_PARAM, in, out, decode);
}
int P5_PBE_PARAM_to_Seq_RFC5280(const P5_PBE_PARAM *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P5_PBE_PARAM_TO_SEQ, in, out, encode, kStandardRules);
}
int Seq_to_P5_PBE_PARAM_RFC5280(ASN1_UNIT *in, P5_PBE_PARAM **out) noexcept {
  return from_seq(F_SEQ_TO_P5_PBE_PARAM, in, out, decode, kStandardRules);
}
