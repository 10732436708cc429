// The records around content that is not encrypted: signed and digested data.
#include "cms/internal/cms.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<ENCAPSULATED_CONTENT_INFO> =
    std::tuple(own(&ENCAPSULATED_CONTENT_INFO::eContentType), own(&ENCAPSULATED_CONTENT_INFO::eContent));
template <>
inline constexpr auto owned_fields<CMS_SIGNED_DATA> = std::tuple(
    own(&CMS_SIGNED_DATA::version), made_list_of<X509_ALGO_IDENTIFIER>(&CMS_SIGNED_DATA::digestAlgorithms),
    own(&CMS_SIGNED_DATA::encapContentInfo), list_of<X509_CERT>(&CMS_SIGNED_DATA::certificates),
    list_of<X509_CRL>(&CMS_SIGNED_DATA::crls), made_list_of<CMS_SIGNER_INFO>(&CMS_SIGNED_DATA::signerInfos),
    list_of<ASN1_UNIT>(&CMS_SIGNED_DATA::otherCertificates), list_of<ASN1_UNIT>(&CMS_SIGNED_DATA::otherCrls));
template <>
inline constexpr auto owned_fields<CMS_DIGESTED_DATA> = std::tuple(own(&CMS_DIGESTED_DATA::version),
                                                                   own(&CMS_DIGESTED_DATA::digestAlgorithm),
                                                                   own(&CMS_DIGESTED_DATA::encapContentInfo),
                                                                   own(&CMS_DIGESTED_DATA::digest));

// EncapsulatedContentInfo ::= SEQUENCE { eContentType OBJECT IDENTIFIER, eContent [0] EXPLICIT OCTET STRING OPTIONAL }
int decode(const Tlv &tlv, ENCAPSULATED_CONTENT_INFO &out) noexcept {
  MessageReader in(tlv);
  in.oid(out.eContentType);
  while (in.at_optional(tag::explicit_context(0), out.eContent)) {
    Tlv wrapper;
    free_ASN1_STRING(std::exchange(out.eContent, nullptr));
    if (!in.next(wrapper)) break;
    MessageReader inside(wrapper);
    if (inside.octets(out.eContent)) inside.end();
    if (!in.join(inside)) break;
  }
  in.end();
  return in.result(F_SEQ_TO_ENCAPSULATED_CONTENT_INFO);
}

int encode(const ENCAPSULATED_CONTENT_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(info.eContentType);
  if (!info.eContent) return 0;
  const auto wrapper = out.explicit_context(0);
  out.octets_as(TYPE_OCTET_STRING, info.eContent);
  return 0;
}

namespace {

// One element of a set of choices: a SEQUENCE is what the set is made for.
template <class E>
bool read_choice(MessageReader &in, STACK &list, STACK *&others) noexcept {
  Tlv child;
  if (!in.next(child)) return false;
  owned<E> element(blank<E>());
  if (!in.made(element.get())) return false;
  const bool fits = child.identifier == tag::kSequence || !in.rules().standard;
  const int code = fits ? decode(child, *element) : 0;
  if (fits && !code) return append(&list, element) || in.stop(Read::no_memory);
  if (!in.rules().standard || reason_of(code) == kNoMemory) return in.inner(code);
  ASN1_UNIT *unit = nullptr;
  if (!in.keep(read_unit(child, unit))) return false;
  owned<ASN1_UNIT> kept(unit);
  return in.made(others ? others : others = new_STACK()) && (append(others, kept) || in.stop(Read::no_memory));
}

}  // namespace

template <class E>
bool read_choices(MessageReader &in, uint8_t identifier, STACK *&list, STACK *&others) noexcept {
  while (in.at_optional(identifier, list)) {
    Tlv set;
    destroy_list<E>(std::exchange(list, nullptr));
    if (!in.next(set) || !in.made(list = new_STACK())) return false;
    MessageReader inside(set);
    if (!reserve_stack(list, count_values(inside.rest(), inside.rules()))) return in.stop(Read::no_memory);
    while (!inside.at_end() && read_choice<E>(inside, *list, others)) continue;
    if (!in.join(inside)) return false;
  }
  return in.reason() == Read::ok;
}
template bool read_choices<X509_CERT>(MessageReader &, uint8_t, STACK *&, STACK *&) noexcept;
template bool read_choices<X509_CRL>(MessageReader &, uint8_t, STACK *&, STACK *&) noexcept;

template <class E>
int write_choices(uint8_t identifier, const STACK *list, const STACK *others, int function, DerWriter &out) noexcept {
  if (!has_elements(list) && !has_elements(others)) return 0;
  const auto scope = out.constructed(identifier);
  const size_t start = out.size();
  for (const E *each : elements<E>(list)) {
    if (!each) return fail(function, ERR_ASN1_ENCODING);
    if (const int code = encode(*each, out)) return code;
  }
  for (const ASN1_UNIT *each : elements<ASN1_UNIT>(others)) out.unit(each);
  if (out.rules().standard) out.sort_values(start);
  return 0;
}
template int write_choices<X509_CERT>(uint8_t, const STACK *, const STACK *, int, DerWriter &) noexcept;
template int write_choices<X509_CRL>(uint8_t, const STACK *, const STACK *, int, DerWriter &) noexcept;

// SignedData ::= SEQUENCE { version INTEGER, digestAlgorithms SET OF AlgorithmIdentifier, encapContentInfo,
//   certificates [0] IMPLICIT CertificateSet OPTIONAL, crls [1] IMPLICIT RevocationInfoChoices OPTIONAL, signerInfos }
int decode(const Tlv &tlv, CMS_SIGNED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.list(tag::kSet, out.digestAlgorithms, decode_algorithms) &&
      in.record(out.encapContentInfo) && read_sets(in, out) &&
      in.list(tag::kSet, out.signerInfos, decode_cms_signer_infos)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_SIGNED_DATA);
}

int encode(const CMS_SIGNED_DATA &data, DerWriter &out) noexcept {
  if (!data.digestAlgorithms || !data.encapContentInfo || !data.signerInfos) {
    return fail(F_CMS_SIGNED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  }
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode_algorithms(*data.digestAlgorithms, out)) return code;
  if (const int code = encode(*data.encapContentInfo, out)) return code;
  if (const int code = write_sets(data, out)) return code;
  return encode_cms_signer_infos(*data.signerInfos, out);
}

// DigestedData ::= SEQUENCE { version INTEGER, digestAlgorithm AlgorithmIdentifier, encapContentInfo,
//   digest OCTET STRING }
int decode(const Tlv &tlv, CMS_DIGESTED_DATA &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && in.record(out.digestAlgorithm) && in.record(out.encapContentInfo) &&
      in.octets(out.digest)) {
    in.end();
  }
  return in.result(F_SEQ_TO_CMS_DIGESTED_DATA);
}

int encode(const CMS_DIGESTED_DATA &data, DerWriter &out) noexcept {
  if (!data.digestAlgorithm || !data.encapContentInfo) return fail(F_CMS_DIGESTED_DATA_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(data.version, out);
  if (const int code = encode(*data.digestAlgorithm, out)) return code;
  if (const int code = encode(*data.encapContentInfo, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, data.digest);
  return 0;
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(ENCAPSULATED_CONTENT_INFO)
VELPKI_NEW_AND_FREE(CMS_DIGESTED_DATA)

VELPKI_NEW_AND_FREE(CMS_SIGNED_DATA)

int ENCAPSULATED_CONTENT_INFO_to_Seq(const ENCAPSULATED_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_ENCAPSULATED_CONTENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_ENCAPSULATED_CONTENT_INFO(ASN1_UNIT *in, ENCAPSULATED_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_ENCAPSULATED_CONTENT_INFO, in, out, decode);
}
int CMS_SIGNED_DATA_to_Seq(const CMS_SIGNED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_SIGNED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_SIGNED_DATA(ASN1_UNIT *in, CMS_SIGNED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_SIGNED_DATA, in, out, decode);
}
int CMS_DIGESTED_DATA_to_Seq(const CMS_DIGESTED_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_DIGESTED_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_DIGESTED_DATA(ASN1_UNIT *in, CMS_DIGESTED_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_DIGESTED_DATA, in, out, decode);
}
