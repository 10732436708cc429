// The codec of certificates (RFC 5280 4.1), their lists and pairs.
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "x509/internal/received.h"
#include "x509/internal/rsa_parameters.h"
#include "x509/internal/x509.h"

namespace velpki {

namespace {

constexpr int kVersion = 0, kIssuerUniqueID = 1, kSubjectUniqueID = 2, kExtensions = 3;  // context tags of the TBS

// version [0] EXPLICIT INTEGER DEFAULT v1. More than one content octet is refused, so that 256 cannot read as v1.
bool read_version(Cursor &in, unsigned char &version) noexcept {
  Tlv wrapper, number;
  if (!in.at(tag::explicit_context(kVersion))) return true;
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  if (!inner.next(TYPE_INTEGER, number)) return in.absorb(inner);
  if (number.content.size() != 1) return in.stop(Read::malformed);
  version = number.content[0];
  inner.finish();
  return in.absorb(inner);
}

// Validity ::= SEQUENCE { notBefore Time, notAfter Time }
bool read_validity(Cursor &in, X509_TBS_CERT &out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  Cursor validity(child);
  if (read_time(validity, out.notBefore) && read_time(validity, out.notAfter)) validity.finish();
  return in.absorb(validity);
}

// The Extensions inside their explicit tag.
bool read_extensions(Cursor &in, X509_TBS_CERT &out) noexcept {
  Tlv wrapper;
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  if (read_list(inner, out.extensions, decode_extensions)) inner.finish();
  return in.absorb(inner);
}

// House form: at most one more element is looked at, and the low four bits of its identifier must say [3].
bool read_house_tail(Cursor &in, X509_TBS_CERT &out) noexcept {
  if (in.at_end()) return true;
  return (in.peek() & 0x0F) == kExtensions ? read_extensions(in, out) : in.stop(Read::malformed);
}

bool read_unique_id(Cursor &in, int n, BIT_STRING *&out) noexcept {
  Tlv child;
  if (!in.at(tag::implicit_context(n))) return true;
  return in.next(child) && in.keep(read_string(child, TYPE_BIT_STRING, out));
}

bool read_standard_tail(Cursor &in, X509_TBS_CERT &out) noexcept {
  const bool read = read_unique_id(in, kIssuerUniqueID, out.issuerUniqueID) &&
                    read_unique_id(in, kSubjectUniqueID, out.subjectUniqueID) &&
                    (!in.at(tag::explicit_context(kExtensions)) || read_extensions(in, out));
  return read && in.finish();
}

}  // namespace

// AlgorithmIdentifier of which only the OID is kept.
bool read_algorithm_oid(Cursor &in, OBJECT_IDENTIFIER *&out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  Cursor algorithm(child);
  if (algorithm.oid(out) && (algorithm.at_end() || algorithm.next(child))) algorithm.finish();
  return in.absorb(algorithm);
}

// Time ::= CHOICE { utcTime UTCTime, generalTime GeneralizedTime }
bool read_time(Cursor &in, X509_TIME *&out) noexcept {
  Tlv child;
  if (!in.next(child)) return false;
  const int number = child.number();
  if (number != TYPE_UTC_TIME && number != TYPE_GENERALIZED_TIME) return in.stop(Read::malformed);
  if (!child.fits(uint8_t(number))) return in.stop(Read::malformed);
  out = new_X509_TIME();
  if (!in.made(out)) return false;
  out->type = number == TYPE_UTC_TIME ? X509_TIME_UTC : X509_TIME_GENERALIZED;
  return in.keep(read_string(child, number, out->time));
}

void write_time(const X509_TIME &time, DerWriter &out) noexcept {
  if (time.type != X509_TIME_UTC && time.type != X509_TIME_GENERALIZED) return out.refuse();
  out.octets_as(time.type == X509_TIME_UTC ? TYPE_UTC_TIME : TYPE_GENERALIZED_TIME, time.time);
}

// TBSCertificate ::= SEQUENCE { version [0] EXPLICIT INTEGER DEFAULT v1, serialNumber INTEGER, signature
//   AlgorithmIdentifier, issuer Name, validity Validity, subject Name, subjectPublicKeyInfo SubjectPublicKeyInfo,
//   extensions [3] EXPLICIT Extensions OPTIONAL }
int decode(const Tlv &tlv, X509_TBS_CERT &out) noexcept {
  if (tlv.number() != TYPE_SEQUENCE) return fail(F_SEQ_TO_X509_TBS_CERT, kBadValue);
  Cursor in(tlv);
  if (read_version(in, out.version) && in.integer(out.serialNumber) && read_algorithm_oid(in, out.signature) &&
      read_list(in, out.issuer, decode_name) && read_validity(in, out) && read_list(in, out.subject, decode_name) &&
      read_record(in, out.subjectPublicKeyInfo)) {
    in.rules().standard ? read_standard_tail(in, out) : read_house_tail(in, out);
  }
  return in.result(F_SEQ_TO_X509_TBS_CERT);
}

// Certificate ::= SEQUENCE { tbsCertificate, signatureAlgorithm AlgorithmIdentifier, signatureValue BIT STRING }
int decode(const Tlv &tlv, X509_CERT &out) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(F_SEQ_TO_X509_CERT, ERR_ASN1_DECODING);
  Cursor in(tlv);
  Tlv tbs;
  if (!in.next(TYPE_SEQUENCE, tbs)) return in.result(F_SEQ_TO_X509_CERT);
  out.tbs = blank<X509_TBS_CERT>();
  if (!in.made(out.tbs)) return in.result(F_SEQ_TO_X509_CERT);
  if (const int code = decode(tbs, *out.tbs)) return code;
  if (read_algorithm_oid(in, out.sig_alg) && in.string(TYPE_BIT_STRING, out.sig_value)) {
    in.finish();
    in.made(out.received = new_received(tlv, tbs.whole));
  }
  return in.result(F_SEQ_TO_X509_CERT);
}

namespace {

// The first field that is missing decides the code.
int check_fields(const X509_TBS_CERT &tbs) noexcept {
  const auto missing = [](int reason) { return fail(F_X509_TBS_CERT_TO_SEQ, reason); };
  if (!tbs.serialNumber) return missing(ERR_TBS_CERT_SERIAL);
  if (!tbs.signature) return missing(ERR_TBS_CERT_SIGNATURE);
  if (!tbs.issuer) return missing(ERR_TBS_CERT_ISSUER);
  if (!tbs.notBefore || !tbs.notAfter) return missing(ERR_TBS_CERT_VALIDITY);
  if (!tbs.subject) return missing(ERR_TBS_CERT_SUBJECT);
  return tbs.subjectPublicKeyInfo ? 0 : missing(ERR_TBS_CERT_SPKI);
}

void write_version(unsigned char version, DerWriter &out) noexcept {
  if (version == 0) return;
  const auto wrapper = out.explicit_context(kVersion);
  out.primitive(TYPE_INTEGER, Octets(&version, 1));
}

void write_validity(const X509_TBS_CERT &tbs, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  write_time(*tbs.notBefore, out);
  write_time(*tbs.notAfter, out);
}

void write_unique_ids(const X509_TBS_CERT &tbs, DerWriter &out) noexcept {
  if (tbs.issuerUniqueID) out.bits(tbs.issuerUniqueID, tag::implicit_context(kIssuerUniqueID));
  if (tbs.subjectUniqueID) out.bits(tbs.subjectUniqueID, tag::implicit_context(kSubjectUniqueID));
}

int write_extensions(const X509_TBS_CERT &tbs, DerWriter &out) noexcept {
  if (!tbs.extensions) return 0;
  const auto wrapper = out.explicit_context(kExtensions);
  return encode_extensions(*tbs.extensions, out);
}

}  // namespace

void write_algorithm_with_null(const OBJECT_IDENTIFIER &oid, DerWriter &out, int pss_digest_id) noexcept {
  const auto sequence = out.sequence();
  out.oid(&oid);
  const bool pss = index_from_OBJECT_IDENTIFIER(&oid) == row::kRsassaPss;
  if (out.rules().standard && pss) return write_pss_values(usual_pss_values(pss_digest_id), out);
  const int key = get_CipherID_from_OID(&oid) & 0x70000000;
  if (!out.rules().standard || key == PKV_KEY_RSA || key == PKV_KEY_KCDSA) out.null();
}

// Whatever goes wrong inside a field is this encoder's own failure, but for exhausted memory.
int encode_tbs(const X509_TBS_CERT &tbs, DerWriter &out, int pss_digest_id) noexcept {
  if (const int code = check_fields(tbs)) return code;
  if (!is_dotted_decimal(text(*tbs.signature))) return fail(F_X509_TBS_CERT_TO_SEQ, kNoMemory);
  const auto sequence = out.sequence();
  write_version(tbs.version, out);
  out.integer(tbs.serialNumber);
  write_algorithm_with_null(*tbs.signature, out, pss_digest_id);
  int code = encode_name(*tbs.issuer, out);
  write_validity(tbs, out);
  if (!code) code = encode_name(*tbs.subject, out);
  if (!code) code = encode(*tbs.subjectPublicKeyInfo, out);
  if (out.rules().standard) write_unique_ids(tbs, out);
  if (!code) code = write_extensions(tbs, out);
  return code ? fail(F_X509_TBS_CERT_TO_SEQ, ERR_ASN1_ENCODING) : out.result(F_X509_TBS_CERT_TO_SEQ);
}

int encode(const X509_TBS_CERT &tbs, DerWriter &out) noexcept { return encode_tbs(tbs, out, kPssDigest); }

int encode(const X509_CERT &cert, DerWriter &out) noexcept {
  if (!cert.tbs) return fail(F_X509_TBS_CERT_TO_SEQ, kNullArgument);
  if (out.rules().standard && cert.received) return out.raw(received_whole(*cert.received)), 0;
  const auto sequence = out.sequence();
  if (const int code = encode(*cert.tbs, out)) return code;
  if (!cert.sig_alg || !cert.sig_value) return fail(F_X509_CERT_TO_SEQ, ERR_ASN1_ENCODING);
  if (!is_dotted_decimal(text(*cert.sig_alg))) return fail(F_X509_CERT_TO_SEQ, kNoMemory);
  write_algorithm_with_null(*cert.sig_alg, out);
  out.bits(cert.sig_value);
  return 0;
}

namespace {

constexpr Codec<X509_CERT> kCodec{F_SEQ_TO_X509_CERT, F_X509_CERT_TO_SEQ, decode, encode, "CERTIFICATE"};

int decode_certificates(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<X509_CERT>(tlv, list, F_SEQ_TO_X509_CERTIFICATES, decode);
}
int encode_certificates(const STACK &list, DerWriter &out) noexcept {
  return encode_list<X509_CERT>(list, out, tag::kSequence, F_X509_CERTIFICATES_TO_SEQ, encode);
}

bool read_pair_member(Cursor &in, int n, X509_CERT *&out) noexcept {
  Tlv wrapper;
  if (!in.at(tag::explicit_context(n))) return true;
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  read_record(inner, out);
  return in.absorb(inner);
}

int decode_pair(const Tlv &tlv, X509_CERT_PAIR &out) noexcept {
  Cursor in(tlv);
  if (read_pair_member(in, 0, out.forward) && read_pair_member(in, 1, out.reverse)) {
    if (!in.at_end() || (!out.forward && !out.reverse)) in.stop(Read::malformed);
  }
  return in.result(F_SEQ_TO_X509_CERT_PAIR);
}

int write_pair_member(int n, const X509_CERT *cert, DerWriter &out) noexcept {
  if (!cert) return 0;
  const auto wrapper = out.explicit_context(n);
  return encode(*cert, out);
}

int encode_pair(const X509_CERT_PAIR &pair, DerWriter &out) noexcept {
  if (!pair.forward && !pair.reverse) return fail(F_X509_CERT_PAIR_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = write_pair_member(0, pair.forward, out)) return code;
  return write_pair_member(1, pair.reverse, out);
}

}  // namespace

template <>
inline constexpr auto owned_fields<X509_CERT_PAIR> = std::tuple(own(&X509_CERT_PAIR::forward),
                                                                own(&X509_CERT_PAIR::reverse));

}  // namespace velpki

using namespace velpki;

VELPKI_IO(X509_CERT, kCodec)

int X509_TBS_CERT_to_Seq(const X509_TBS_CERT *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_TBS_CERT_TO_SEQ, in, out, encode);
}
int Seq_to_X509_TBS_CERT(ASN1_UNIT *in, X509_TBS_CERT **out) noexcept {
  return from_seq(F_SEQ_TO_X509_TBS_CERT, in, out, decode);
}
int X509_CERT_to_Seq(const X509_CERT *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CERT_TO_SEQ, in, out, encode);
}
int Seq_to_X509_CERT(ASN1_UNIT *in, X509_CERT **out) noexcept { return from_seq(F_SEQ_TO_X509_CERT, in, out, decode); }
int X509_CERT_to_Seq_RFC5280(const X509_CERT *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CERT_TO_SEQ, in, out, encode, kStandardRules);
}
int Seq_to_X509_CERT_RFC5280(ASN1_UNIT *in, X509_CERT **out) noexcept {
  return from_seq(F_SEQ_TO_X509_CERT, in, out, decode, kStandardRules);
}
int readDER_X509_CERT_from_Binary_RFC5280(X509_CERT **out, const unsigned char *data, int length) noexcept {
  return read_der(kCodec, out, octets_of(data, length), kStandardRules);
}

VELPKI_LIST(X509_CERTIFICATES, X509_CERT)

int add_X509_CERTIFICATES(X509_CERTIFICATES *list, const X509_CERT *cert) noexcept {
  return insert_copy(list, cert, -1) ? 0 : 1;
}
int X509_CERTIFICATES_to_Seq(const X509_CERTIFICATES *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CERTIFICATES_TO_SEQ, in, out, encode_certificates);
}
int Seq_to_X509_CERTIFICATES(ASN1_UNIT *in, X509_CERTIFICATES **out) noexcept {
  return list_from_seq<X509_CERT>(F_SEQ_TO_X509_CERTIFICATES, in, out, decode_certificates);
}

VELPKI_LIFE_CYCLE(X509_CERT_PAIR)

int X509_CERT_PAIR_to_Seq(const X509_CERT_PAIR *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CERT_PAIR_TO_SEQ, in, out, encode_pair);
}
int Seq_to_X509_CERT_PAIR(ASN1_UNIT *in, X509_CERT_PAIR **out) noexcept {
  return from_seq(F_SEQ_TO_X509_CERT_PAIR, in, out, decode_pair);
}
