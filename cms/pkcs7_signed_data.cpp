// The records that hold signers.
#include "cms/internal/certificate_sets.h"
#include "cms/internal/pkcs7.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P7_SIGNED_DATA> =
    std::tuple(own(&P7_SIGNED_DATA::version), made_list_of<X509_ALGO_IDENTIFIER>(&P7_SIGNED_DATA::digestAlgorithms),
               own(&P7_SIGNED_DATA::contentInfo), list_of<X509_CERT>(&P7_SIGNED_DATA::certificates),
               list_of<X509_CRL>(&P7_SIGNED_DATA::crls), made_list_of<P7_SIGNER_INFO>(&P7_SIGNED_DATA::signerInfos),
               list_of<ASN1_UNIT>(&P7_SIGNED_DATA::otherCertificates), list_of<ASN1_UNIT>(&P7_SIGNED_DATA::otherCrls));
template <>
inline constexpr auto owned_fields<P7_SIGNED_AND_ENVELOPED_DATA> =
    std::tuple(own(&P7_SIGNED_AND_ENVELOPED_DATA::version),
               made_list_of<P7_RECIPIENT_INFO>(&P7_SIGNED_AND_ENVELOPED_DATA::recipientInfos),
               made_list_of<X509_ALGO_IDENTIFIER>(&P7_SIGNED_AND_ENVELOPED_DATA::digestAlgorithms),
               own(&P7_SIGNED_AND_ENVELOPED_DATA::encryptedContentInfo),
               list_of<X509_CERT>(&P7_SIGNED_AND_ENVELOPED_DATA::certificates),
               list_of<X509_CRL>(&P7_SIGNED_AND_ENVELOPED_DATA::crls),
               made_list_of<P7_SIGNER_INFO>(&P7_SIGNED_AND_ENVELOPED_DATA::signerInfos),
               list_of<ASN1_UNIT>(&P7_SIGNED_AND_ENVELOPED_DATA::otherCertificates),
               list_of<ASN1_UNIT>(&P7_SIGNED_AND_ENVELOPED_DATA::otherCrls));

namespace {

// certificates [0] IMPLICIT SET OF Certificate OPTIONAL, crls [1] IMPLICIT SET OF CertificateList OPTIONAL, signerInfos
template <class R>
bool read_signers(MessageReader &in, R &out) noexcept {
  return read_sets(in, out) && in.list(tag::kSet, out.signerInfos, decode_signer_infos) && in.end();
}
template <class R>
int write_signers(const R &data, DerWriter &out) noexcept {
  const int code = write_sets(data, out);
  return code ? code : encode_signer_infos(*data.signerInfos, out);
}

}  // namespace

// SignedData ::= SEQUENCE { version INTEGER, digestAlgorithms SET OF AlgorithmIdentifier, contentInfo ContentInfo,
//   certificates, crls, signerInfos }
int decode(const Tlv &tlv, P7_SIGNED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.list(tag::kSet, out.digestAlgorithms, decode_algorithms) &&
      in.record(out.contentInfo)) {
    read_signers(in, out);
  }
  return in.result(F_SEQ_TO_P7_SIGNED_DATA);
}

int encode(const P7_SIGNED_DATA &data, DerWriter &out) noexcept {
  if (!data.digestAlgorithms || !data.signerInfos || !(data.contentInfo || holds_certificates_only(data))) {
    return fail(F_P7_SIGNED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode_algorithms(*data.digestAlgorithms, out)) return code;
  if (!data.contentInfo) write_no_content(out);
  if (const int code = data.contentInfo ? encode(*data.contentInfo, out) : 0) return code;
  return write_signers(data, out);
}

// SignedAndEnvelopedData ::= SEQUENCE { version INTEGER, recipientInfos RecipientInfos, digestAlgorithms SET OF
//   AlgorithmIdentifier, encryptedContentInfo, certificates, crls, signerInfos }
int decode(const Tlv &tlv, P7_SIGNED_AND_ENVELOPED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.list(tag::kSet, out.recipientInfos, decode_recipient_infos) &&
      in.list(tag::kSet, out.digestAlgorithms, decode_algorithms) && in.record(out.encryptedContentInfo)) {
    read_signers(in, out);
  }
  return in.result(F_SEQ_TO_P7_SIG_AND_ENV_DATA);
}

int encode(const P7_SIGNED_AND_ENVELOPED_DATA &data, DerWriter &out) noexcept {
  if (!data.recipientInfos || !data.digestAlgorithms || !data.encryptedContentInfo || !data.signerInfos) {
    return fail(F_P7_SIG_AND_ENV_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode_recipient_infos(*data.recipientInfos, out)) return code;
  if (const int code = encode_algorithms(*data.digestAlgorithms, out)) return code;
  if (const int code = encode(*data.encryptedContentInfo, out)) return code;
  return write_signers(data, out);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(P7_SIGNED_DATA)
VELPKI_NEW_AND_FREE(P7_SIGNED_AND_ENVELOPED_DATA)

int P7_SIGNED_DATA_to_Seq(const P7_SIGNED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_SIGNED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_P7_SIGNED_DATA(ASN1_UNIT *in, P7_SIGNED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_P7_SIGNED_DATA, in, out, decode);
}
int P7_SIGNED_AND_ENVELOPED_DATA_to_Seq(const P7_SIGNED_AND_ENVELOPED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_SIG_AND_ENV_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_P7_SIGNED_AND_ENVELOPED_DATA(ASN1_UNIT *in, P7_SIGNED_AND_ENVELOPED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_P7_SIG_AND_ENV_DATA, in, out, decode);
}
