// P7_DIGESTED_DATA and P7_DIGEST_INFO.
#include "cms/internal/pkcs7.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P7_DIGESTED_DATA> = std::tuple(own(&P7_DIGESTED_DATA::version),
                                                                  own(&P7_DIGESTED_DATA::digestAlgorithm),
                                                                  own(&P7_DIGESTED_DATA::contentInfo),
                                                                  own(&P7_DIGESTED_DATA::digest));
template <>
inline constexpr auto owned_fields<P7_DIGEST_INFO> = std::tuple(own(&P7_DIGEST_INFO::digestAlgorithm),
                                                                own(&P7_DIGEST_INFO::digest));

// DigestedData ::= SEQUENCE { version INTEGER, digestAlgorithm AlgorithmIdentifier, contentInfo ContentInfo,
//   digest OCTET STRING }
int decode(const Tlv &tlv, P7_DIGESTED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.record(out.digestAlgorithm) && in.record(out.contentInfo) &&
      in.octets(out.digest)) {
    in.end();
  }
  return in.result(F_SEQ_TO_P7_DIGESTED_DATA);
}

int encode(const P7_DIGESTED_DATA &data, DerWriter &out) noexcept {
  if (!data.digestAlgorithm || !data.contentInfo) return fail(F_P7_DIGESTED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode(*data.digestAlgorithm, out)) return code;
  if (const int code = encode(*data.contentInfo, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, data.digest);
  return 0;
}

// DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING }
int decode(const Tlv &tlv, P7_DIGEST_INFO &out) noexcept {
  MessageReader in(tlv);
  if (in.record(out.digestAlgorithm) && in.octets(out.digest)) in.end();
  return in.result(F_SEQ_TO_P7_DIGEST_INFO);
}

int encode(const P7_DIGEST_INFO &info, DerWriter &out) noexcept {
  if (!info.digestAlgorithm) return fail(F_P7_DIGEST_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = encode(*info.digestAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, info.digest);
  return 0;
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(P7_DIGESTED_DATA)
VELPKI_NEW_AND_FREE(P7_DIGEST_INFO)

int P7_DIGESTED_DATA_to_Seq(const P7_DIGESTED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_DIGESTED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_P7_DIGESTED_DATA(ASN1_UNIT *in, P7_DIGESTED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_P7_DIGESTED_DATA, in, out, decode);
}
int P7_DIGEST_INFO_to_Seq(const P7_DIGEST_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_DIGEST_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_P7_DIGEST_INFO(ASN1_UNIT *in, P7_DIGEST_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P7_DIGEST_INFO, in, out, decode);
}
