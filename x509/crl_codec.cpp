// The codecs of revocation lists (RFC 5280 5.1).
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "x509/internal/crl.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

constexpr int kMaxVersion = 0xFFFF;
constexpr int kExtensions = 0;  // context tag of the body

// The identifier itself decides: a context tag is no time.
bool at_time(const Cursor &in) noexcept { return in.at(TYPE_UTC_TIME) || in.at(TYPE_GENERALIZED_TIME); }

bool read_date(Cursor &in, X509_TIME *&out) noexcept {
  return at_time(in) ? read_time(in, out) : in.stop(Read::malformed);
}

int version_value(Octets content) noexcept {
  int value = content.empty() ? -1 : 0;
  for (const uint8_t octet : content) value = value > kMaxVersion ? value : value << 8 | octet;
  return value;
}

// Whether there is an INTEGER, and its value. Standard form: an absent version is v1.
bool read_version(Cursor &in, int &version) noexcept {
  constexpr int kBadVersion = F_SEQ_TO_X509_CRLINFO | kBadValue;
  Tlv number;
  if (in.at_end()) return in.stop(Read::malformed);
  if (!in.at(TYPE_INTEGER)) return in.rules().standard || in.pass(kBadVersion);
  if (!in.next(number)) return false;
  version = version_value(number.content);
  return (version >= 0 && version <= kMaxVersion) || in.pass(kBadVersion);
}

// A list whose decoder's own code goes up.
bool read_whole_list(Cursor &in, STACK *&out, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  Tlv child;
  return in.next(TYPE_SEQUENCE, child) && in.made(out = new_STACK()) && in.pass(decode(child, *out));
}

// crlExtensions [0] EXPLICIT Extensions OPTIONAL
bool read_extensions(Cursor &in, X509_CRL_INFO &out) noexcept {
  Tlv wrapper;
  if (!in.at(tag::explicit_context(kExtensions))) return true;
  if (!in.next(wrapper)) return false;
  Cursor inner(wrapper);
  const bool standard = in.rules().standard;
  if (!inner.at_end() || standard) read_whole_list(inner, out.extensions, decode_extensions);
  inner.finish();
  return in.pass(inner.result(F_SEQ_TO_X509_CRLINFO));
}

// What the list of entries is decoded with.
struct Holders {
  const X509_RECEIVED &octets;
  X509_CRL_KEPT *kept;
};

// House form: after an empty list nothing more is looked at.
bool read_tail(Cursor &in, const Holders &holders, X509_CRL_INFO &out) noexcept {
  Tlv list;
  if (in.at(tag::kSequence)) {
    if (!in.next(list) || !in.pass(decode_revoked(list, holders.octets, holders.kept, out.revoked))) return false;
    if (out.revoked->count == 0 && !in.rules().standard) return true;
  }
  return read_extensions(in, out);
}

// TBSCertList ::= SEQUENCE { version INTEGER OPTIONAL, signature AlgorithmIdentifier, issuer Name, thisUpdate Time,
//   nextUpdate Time OPTIONAL, revokedCertificates SEQUENCE OF SEQUENCE { ... } OPTIONAL,
//   crlExtensions [0] EXPLICIT Extensions OPTIONAL }
// House form: version and nextUpdate must be there.
int decode_info(const Tlv &tlv, const Holders &holders, X509_CRL_INFO &out) noexcept {
  Cursor in(tlv);
  const bool standard = in.rules().standard;
  const bool read = read_version(in, out.version) && read_algorithm_oid(in, out.signature) &&
                    read_whole_list(in, out.issuer, decode_name) && read_date(in, out.thisUpdate) &&
                    ((standard && !at_time(in)) || read_date(in, out.nextUpdate)) && read_tail(in, holders, out);
  if (read) in.finish();
  return in.result(F_SEQ_TO_X509_CRLINFO);
}

}  // namespace

int decode(const Tlv &tlv, X509_CRL_INFO &out) noexcept {
  const owned<X509_RECEIVED> octets(new_received(tlv, tlv.content));
  if (!octets) return fail(F_SEQ_TO_X509_CRLINFO, kNoMemory);
  return decode_info(in_received(tlv, *octets), {*octets, nullptr}, out);
}

namespace {

// The CRL in the copy of its octets that it keeps.
int decode_kept(const Tlv &tlv, X509_CRL &out) noexcept {
  Cursor in(tlv);
  Tlv tbs;
  if (!in.next(TYPE_SEQUENCE, tbs)) return in.result(F_SEQ_TO_X509_CRL);
  X509_RECEIVED &received = *out.kept->received;
  received.tbs_offset = int(tbs.whole.data() - received_whole(received).data());
  received.tbs_length = int(tbs.whole.size());
  if (!in.made(out.tbs = blank<X509_CRL_INFO>())) return in.result(F_SEQ_TO_X509_CRL);
  if (const int code = decode_info(tbs, {received, out.kept}, *out.tbs)) return code;
  out.kept->received_count = get_STACK_count(out.tbs->revoked);
  out.kept->standard = tlv.rules.standard;
  if (read_algorithm_oid(in, out.sig_alg) && in.string(TYPE_BIT_STRING, out.sig_value)) {
    in.finish();
  }
  return in.result(F_SEQ_TO_X509_CRL);
}

}  // namespace

// CertificateList ::= SEQUENCE { tbsCertList, signatureAlgorithm AlgorithmIdentifier, signatureValue BIT STRING }
int decode(const Tlv &tlv, X509_CRL &out) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(F_SEQ_TO_X509_CRL, ERR_ASN1_DECODING);
  out.kept = Flat<X509_CRL_KEPT>::make();
  if (!out.kept) return fail(F_SEQ_TO_X509_CRL, kNoMemory);
  out.kept->received = new_received(tlv, tlv.content);
  if (!out.kept->received) return fail(F_SEQ_TO_X509_CRL, kNoMemory);
  return decode_kept(in_received(tlv, *out.kept->received), out);
}

namespace {

void write_version(int version, DerWriter &out) noexcept {
  if (out.rules().standard && version == 0) return;
  const auto low_octet = static_cast<uint8_t>(version);
  out.primitive(TYPE_INTEGER, Octets(&low_octet, 1));
}

int write_extensions(const STACK &extensions, DerWriter &out) noexcept {
  const auto wrapper = out.explicit_context(kExtensions);
  return encode_extensions(extensions, out);
}

bool has_fields(const X509_CRL_INFO &info, const Rules &rules) noexcept {
  return info.signature && info.issuer && info.thisUpdate && (info.nextUpdate || rules.standard);
}

bool holds_any(const STACK *list) noexcept { return list && list->count; }

}  // namespace

int encode(const X509_CRL_INFO &info, DerWriter &out) noexcept {
  if (!has_fields(info, out.rules())) return fail(F_X509_CRLINFO_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  write_version(info.version, out);
  write_algorithm_with_null(*info.signature, out);
  if (const int code = encode_name(*info.issuer, out)) return code;
  write_time(*info.thisUpdate, out);
  if (info.nextUpdate) write_time(*info.nextUpdate, out);
  if (const int code = out.result(F_X509_CRLINFO_TO_SEQ)) return code;
  if (holds_any(info.revoked)) {
    if (const int code = encode_revoked(*info.revoked, out)) return code;
  }
  if (holds_any(info.extensions)) {
    if (const int code = write_extensions(*info.extensions, out)) return code;
  }
  return out.result(F_X509_CRLINFO_TO_SEQ);
}

int encode(const X509_CRL &crl, DerWriter &out) noexcept {
  if (!crl.tbs) return fail(F_X509_CRL_TO_SEQ, ERR_ASN1_ENCODING);
  const X509_RECEIVED *received = out.rules().standard ? received_of(crl) : nullptr;
  if (received) return out.raw(received_whole(*received)), 0;
  const auto sequence = out.sequence();
  if (const int code = encode(*crl.tbs, out)) return code;
  if (!crl.sig_alg || !crl.sig_value) return fail(F_X509_CRL_TO_SEQ, ERR_ASN1_ENCODING);
  write_algorithm_with_null(*crl.sig_alg, out);
  out.bits(crl.sig_value);
  return out.result(F_X509_CRL_TO_SEQ);
}

int decode_crls(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<X509_CRL>(tlv, list, F_SEQ_TO_X509_CRLS, decode);
}
int encode_crls(const STACK &list, DerWriter &out, uint8_t identifier) noexcept {
  return encode_list<X509_CRL>(list, out, identifier, F_X509_CRLS_TO_SEQ, encode);
}

namespace {

constexpr Codec<X509_CRL> kCodec{F_SEQ_TO_X509_CRL, F_X509_CRL_TO_SEQ, decode, encode, "X509 CRL"};

int encode_sequence_of_crls(const STACK &list, DerWriter &out) noexcept {
  return encode_crls(list, out, tag::kSequence);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_IO(X509_CRL, kCodec)

int X509_CRL_INFO_to_Seq(const X509_CRL_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CRLINFO_TO_SEQ, in, out, encode);
}
int Seq_to_X509_CRL_INFO(ASN1_UNIT *in, X509_CRL_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_X509_CRLINFO, in, out, decode);
}
int X509_CRL_to_Seq(const X509_CRL *in, ASN1_UNIT **out) noexcept { return to_seq(F_X509_CRL_TO_SEQ, in, out, encode); }
int Seq_to_X509_CRL(ASN1_UNIT *in, X509_CRL **out) noexcept { return from_seq(F_SEQ_TO_X509_CRL, in, out, decode); }
int X509_CRL_to_Seq_RFC5280(const X509_CRL *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CRL_TO_SEQ, in, out, encode, kStandardRules);
}
int Seq_to_X509_CRL_RFC5280(ASN1_UNIT *in, X509_CRL **out) noexcept {
  return from_seq(F_SEQ_TO_X509_CRL, in, out, decode, kStandardRules);
}
int readDER_X509_CRL_from_Binary_RFC5280(X509_CRL **out, const unsigned char *data, int length) noexcept {
  return read_der(kCodec, out, octets_of(data, length), kStandardRules);
}

VELPKI_LIST(X509_CRLS, X509_CRL)

int X509_CRLS_to_Seq(const X509_CRLS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_CRLS_TO_SEQ, in, out, encode_sequence_of_crls);
}
int Seq_to_X509_CRLS(ASN1_UNIT *in, X509_CRLS **out) noexcept {
  return values_from_seq<X509_CRL>(F_SEQ_TO_X509_CRLS, in, out, decode_crls);
}
