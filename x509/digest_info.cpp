// X509_SIGN, the DigestInfo inside an RSA signature (RFC 8017 9.2).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_SIGN> = std::tuple(own(&X509_SIGN::algorithm), own(&X509_SIGN::digest));

namespace {

// DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING }
int decode(const Tlv &tlv, X509_SIGN &out) noexcept {
  Cursor in(tlv);
  Tlv algorithm;
  if (in.next(TYPE_SEQUENCE, algorithm) && in.made(out.algorithm = new_X509_ALGO_IDENTIFIER()) &&
      in.pass(decode(algorithm, *out.algorithm))) {
    in.string(TYPE_OCTET_STRING, out.digest);
  }
  return in.result(F_SEQ_TO_X509_SIGN);
}

int encode(const X509_SIGN &sign, DerWriter &out) noexcept {
  if (!sign.algorithm) return fail(F_X509_SIGN_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = encode(*sign.algorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, sign.digest);
  return out.result(F_X509_SIGN_TO_SEQ);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

X509_SIGN *new_X509_SIGN(void) noexcept { return make<X509_SIGN>(); }
void free_X509_SIGN(X509_SIGN *p) noexcept { destroy(p); }

int X509_SIGN_to_Seq(const X509_SIGN *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_SIGN_TO_SEQ, in, out, encode);
}
int Seq_to_X509_SIGN(ASN1_UNIT *in, X509_SIGN **out) noexcept { return from_seq(F_SEQ_TO_X509_SIGN, in, out, decode); }
