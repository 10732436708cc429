// RSAES-OAEP-params and RSASSA-PSS-params (RFC 8017 A.2): the records and their codec.
#include "x509/internal/rsa_parameters.h"

#include <velpki/asn1_error.h>

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

constexpr unsigned kTrailer = 1;
constexpr int kHash = 0, kMaskGen = 1, kSource = 2, kSalt = 2, kTrailerField = 3;  // context tags

bool is_default_hash(const X509_ALGO_IDENTIFIER *identifier) noexcept {
  int digest_id = 0;
  return read_hash(identifier, 0, digest_id) == 0 && digest_id == kDefaultDigest;
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
