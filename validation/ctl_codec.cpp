// The records of certificate trust lists and their codec.
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "validation/internal/ctl.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<TRUSTED_CERTIFICATE> =
    std::tuple(own(&TRUSTED_CERTIFICATE::subjectIdentifier), list_of<X509_ATTRIBUTE>(&TRUSTED_CERTIFICATE::attributes));
template <>
inline constexpr auto owned_fields<CERT_TRUST_LIST> = std::tuple(
    own(&CERT_TRUST_LIST::version), made_list_of<OBJECT_IDENTIFIER>(&CERT_TRUST_LIST::subjectUsage),
    own(&CERT_TRUST_LIST::sequenceNumber), own(&CERT_TRUST_LIST::thisUpdate), own(&CERT_TRUST_LIST::nextUpdate),
    own(&CERT_TRUST_LIST::subjectAlgorithm), made_list_of<TRUSTED_CERTIFICATE>(&CERT_TRUST_LIST::trustedSubjects),
    list_of<X509_EXTENSION>(&CERT_TRUST_LIST::extensions));

namespace {

// TrustedCertificate ::= SEQUENCE { subjectIdentifier OCTET STRING, attributes SET OF Attribute OPTIONAL }
int decode(const Tlv &tlv, TRUSTED_CERTIFICATE &out) noexcept {
  Cursor in(tlv);
  Tlv set;
  if (in.string(TYPE_OCTET_STRING, out.subjectIdentifier) && !in.at_end() && in.next(TYPE_SET, set) &&
      in.made(out.attributes = new_STACK())) {
    in.absorb(decode_attributes(set, *out.attributes));
  }
  return in.result(F_SEQ_TO_TRUSTED_CERTIFICATE);
}

// The code of a record whose member could not be encoded.
int member_failure(int function, int code) noexcept {
  return fail(function, reason_of(code) == kNoMemory ? kNoMemory : int(ERR_ASN1_ENCODING));
}

int encode(const TRUSTED_CERTIFICATE &certificate, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.octets_as(TYPE_OCTET_STRING, certificate.subjectIdentifier);
  const int code = certificate.attributes ? encode_attributes(*certificate.attributes, out) : 0;
  return code ? member_failure(F_TRUSTED_CERTIFICATE_TO_SEQ, code) : out.result(F_TRUSTED_CERTIFICATE_TO_SEQ);
}

int decode_subjects(const Tlv &tlv, STACK &subjects) noexcept {
  return decode_list<TRUSTED_CERTIFICATE>(tlv, subjects, F_SEQ_TO_TRUSTED_SUBJECTS, decode);
}
int encode_subjects(const STACK &subjects, DerWriter &out) noexcept {
  return encode_list<TRUSTED_CERTIFICATE>(subjects, out, tag::kSequence, F_TRUSTED_SUBJECTS_TO_SEQ, encode);
}

// subjectUsage SEQUENCE OF OBJECT IDENTIFIER
bool read_usages(Cursor &in, STACK *&out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child) || !in.made(out = new_STACK())) return false;
  Cursor inner(child);
  while (!inner.at_end()) {
    OBJECT_IDENTIFIER *read = nullptr;
    if (!inner.oid(read)) break;
    owned<OBJECT_IDENTIFIER> usage(read);
    if (!append(out, usage)) inner.stop(Read::no_memory);
  }
  return in.absorb(inner);
}

bool read_number(Cursor &in, BIGINT *&out) noexcept { return !in.at(TYPE_INTEGER) || in.integer(out); }

bool skip_list_identifier(Cursor &in) noexcept {
  Tlv skipped;
  return !in.at(TYPE_OCTET_STRING) || in.next(skipped);
}

bool read_dates(Cursor &in, CERT_TRUST_LIST &out) noexcept {
  if (!read_time(in, out.thisUpdate)) return false;
  return !(in.at(TYPE_UTC_TIME) || in.at(TYPE_GENERALIZED_TIME)) || read_time(in, out.nextUpdate);
}

// subjectAlgorithm OBJECT IDENTIFIER, or an AlgorithmIdentifier
bool read_subject_algorithm(Cursor &in, OBJECT_IDENTIFIER *&out) noexcept {
  return in.at(tag::kSequence) ? read_algorithm_oid(in, out) : in.oid(out);
}

bool read_subjects(Cursor &in, CERT_TRUST_LIST &out) noexcept {
  Tlv child;
  if (!in.made(out.trustedSubjects = new_STACK())) return false;
  if (!in.at(tag::kSequence)) return true;
  return in.next(child) && in.pass(decode_subjects(child, *out.trustedSubjects));
}

// extensions Extensions OPTIONAL, which others have in [0] EXPLICIT
bool read_list_extensions(Cursor &in, X509_EXTENSIONS *&out) noexcept {
  Tlv wrapper;
  if (in.at_end()) return true;
  if (!in.at(tag::explicit_context(0))) return read_list(in, out, decode_extensions);
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  read_list(inner, out, decode_extensions);
  return in.absorb(inner);
}

// CertTrustList ::= SEQUENCE { version INTEGER, subjectUsage, listIdentifier OCTET STRING OPTIONAL, sequenceNumber
//   INTEGER, thisUpdate Time, nextUpdate Time, subjectAlgorithm, trustedSubjects SEQUENCE OF TrustedCertificate,
//   extensions }
int decode(const Tlv &tlv, CERT_TRUST_LIST &out) noexcept {
  Cursor in(tlv);
  if (read_number(in, out.version) && read_usages(in, out.subjectUsage) && skip_list_identifier(in) &&
      read_number(in, out.sequenceNumber) && read_dates(in, out) && read_subject_algorithm(in, out.subjectAlgorithm) &&
      read_subjects(in, out)) {
    read_list_extensions(in, out.extensions);
  }
  return in.result(F_SEQ_TO_CERT_TRUST_LIST);
}

void write_usages(const STACK &usages, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  for (const OBJECT_IDENTIFIER *usage : elements<OBJECT_IDENTIFIER>(&usages)) out.oid(usage);
}

void write_head(const CERT_TRUST_LIST &list, DerWriter &out) noexcept {
  list.version ? out.integer(list.version) : out.integer(0u);
  write_usages(*list.subjectUsage, out);
  if (list.sequenceNumber) out.integer(list.sequenceNumber);
  write_time(*list.thisUpdate, out);
  if (list.nextUpdate) write_time(*list.nextUpdate, out);
  out.oid(list.subjectAlgorithm);
}

int encode(const CERT_TRUST_LIST &list, DerWriter &out) noexcept {
  constexpr int kFunction = F_CERT_TRUST_LIST_TO_SEQ;
  if (!list.subjectUsage || !list.thisUpdate || !list.trustedSubjects) return fail(kFunction, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_head(list, out);
  if (const int code = encode_subjects(*list.trustedSubjects, out)) return code;
  const bool extended = list.extensions && list.extensions->count > 0;
  const int code = extended ? encode_extensions(*list.extensions, out) : 0;
  return code ? member_failure(kFunction, code) : out.result(kFunction);
}

constexpr Codec<CERT_TRUST_LIST> kCodec{F_SEQ_TO_CERT_TRUST_LIST, F_CERT_TRUST_LIST_TO_SEQ, decode, encode,
                                        "CERTIFICATE TRUST LIST"};

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(TRUSTED_CERTIFICATE)
VELPKI_LIFE_CYCLE(CERT_TRUST_LIST)
VELPKI_LIST(TRUSTED_SUBJECTS, TRUSTED_CERTIFICATE)
VELPKI_IO(CERT_TRUST_LIST, kCodec)

int TRUSTED_CERTIFICATE_to_Seq(const TRUSTED_CERTIFICATE *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_TRUSTED_CERTIFICATE_TO_SEQ, in, out, encode);
}
int Seq_to_TRUSTED_CERTIFICATE(ASN1_UNIT *in, TRUSTED_CERTIFICATE **out) noexcept {
  return from_seq(F_SEQ_TO_TRUSTED_CERTIFICATE, in, out, decode);
}
int TRUSTED_SUBJECTS_to_Seq(const TRUSTED_SUBJECTS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_TRUSTED_SUBJECTS_TO_SEQ, in, out, encode_subjects);
}
int Seq_to_TRUSTED_SUBJECTS(ASN1_UNIT *in, TRUSTED_SUBJECTS **out) noexcept {
  return list_from_seq<TRUSTED_CERTIFICATE>(F_SEQ_TO_TRUSTED_SUBJECTS, in, out, decode_subjects);
}
int CERT_TRUST_LIST_to_Seq(const CERT_TRUST_LIST *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CERT_TRUST_LIST_TO_SEQ, in, out, encode);
}
int Seq_to_CERT_TRUST_LIST(ASN1_UNIT *in, CERT_TRUST_LIST **out) noexcept {
  return from_seq(F_SEQ_TO_CERT_TRUST_LIST, in, out, decode);
}
