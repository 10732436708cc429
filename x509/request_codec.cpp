// The codec of certification requests (RFC 2986).
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "x509/internal/pkcs10.h"

namespace velpki {

namespace {

constexpr int kAttributes = 0;  // context tag

// version INTEGER { v1(0) }. Others are kept: who uses the request decides.
bool read_version(Cursor &in, unsigned char &version) noexcept {
  Tlv number;
  if (!in.next(TYPE_INTEGER, number)) return false;
  if (number.content.size() != 1 || number.content[0] > 0x7F) return in.stop(Read::malformed);
  version = number.content[0];
  return true;
}

bool read_attributes(Cursor &in, STACK *&out) noexcept {
  Tlv set;
  if (in.at_end()) return true;
  if (!in.at(tag::explicit_context(kAttributes))) return in.stop(Read::malformed);
  return in.next(set) && in.made(out = new_STACK()) && in.absorb(decode_attributes(set, *out));
}

// ExtensionRequest ::= Extensions, as the one value of its attribute. False when it is none, or memory is exhausted.
bool read_request(const X509_ATTRIBUTE &attribute, Rules rules, STACK *&out, bool &no_memory) noexcept {
  if (!is_extension_request(attribute) || get_X509_ATTRIBUTE_count(&attribute) != 1) return false;
  const auto *data = element<X509_ATTRIBUTE_DATA>(attribute.values, 0);
  Tlv tlv;
  if (!data || data->type != tag::kSequence || !view(*static_cast<ASN1_UNIT *>(data->value), tlv, rules)) return false;
  STACK *extensions = new_STACK();
  const int code = extensions ? decode_extensions(tlv, *extensions) : kNoMemory;
  no_memory = reason_of(code) == kNoMemory;
  if (code || extensions->count == 0) return destroy_list<X509_EXTENSION>(extensions), false;
  out = extensions;
  return true;
}

// The first request for extensions leaves the attributes and becomes a list of its own.
bool split_extensions(Cursor &in, PKCS10_X509_REQ_INFO &info) noexcept {
  for (int i = 0; i < get_STACK_count(info.attributes); ++i) {
    bool no_memory = false;
    const bool found =
        read_request(*element<X509_ATTRIBUTE>(info.attributes, i), in.rules(), info.extensions, no_memory);
    if (no_memory) return in.stop(Read::no_memory);
    if (!found) continue;
    free_X509_ATTRIBUTE(static_cast<X509_ATTRIBUTE *>(remove_STACK_value(info.attributes, i)));
    return true;
  }
  return true;
}

}  // namespace

bool is_extension_request(const X509_ATTRIBUTE &attribute) noexcept {
  const int row = index_from_OBJECT_IDENTIFIER(attribute.type);
  return row == row::kExtensionRequest || row == row::kMsExtensionRequest;
}

// CertificationRequestInfo ::= SEQUENCE { version INTEGER, subject Name, subjectPKInfo SubjectPublicKeyInfo,
//   attributes [0] IMPLICIT SET OF Attribute }
int decode(const Tlv &tlv, PKCS10_X509_REQ_INFO &out) noexcept {
  Cursor in(tlv);
  if (read_version(in, out.version) && read_list(in, out.subject, decode_name) &&
      read_record(in, out.subjectPublicKeyInfo) && read_attributes(in, out.attributes) &&
      (in.at_end() || in.stop(Read::malformed))) {
    split_extensions(in, out);
  }
  return in.result(kRequest);
}

// CertificationRequest ::= SEQUENCE { certificationRequestInfo CertificationRequestInfo, signatureAlgorithm
//   AlgorithmIdentifier, signature BIT STRING }
int decode(const Tlv &tlv, PKCS10_X509_REQ &out) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(kRequest, ERR_ASN1_DECODING);
  Cursor in(tlv);
  Tlv info;
  if (!in.next(TYPE_SEQUENCE, info)) return in.result(kRequest);
  out.info = blank<PKCS10_X509_REQ_INFO>();
  if (in.made(out.info) && in.absorb(decode(info, *out.info)) && read_algorithm_oid(in, out.sig_alg) &&
      in.string(TYPE_BIT_STRING, out.sig_value) && (in.at_end() || in.stop(Read::malformed))) {
    in.made(out.received = new_received(tlv, info.whole));
  }
  return in.result(kRequest);
}

namespace {

int write_extension_request(const STACK &extensions, DerWriter &out) noexcept {
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(row::kExtensionRequest);
  if (!oid) return fail(kRequest, kNoMemory);
  const auto sequence = out.sequence();
  out.oid(oid.get());
  const auto set = out.set();
  return encode_extensions(extensions, out);
}

int write_attributes(const PKCS10_X509_REQ_INFO &info, DerWriter &out) noexcept {
  const auto set = out.explicit_context(kAttributes);
  const size_t start = out.size();
  for (const X509_ATTRIBUTE *each : elements<X509_ATTRIBUTE>(info.attributes)) {
    if (!each) return fail(kRequest, ERR_ASN1_ENCODING);
    if (const int code = encode(*each, out)) return code;
  }
  if (get_STACK_count(info.extensions) > 0) {
    if (const int code = write_extension_request(*info.extensions, out)) return code;
  }
  if (out.rules().standard) out.sort_values(start);
  return 0;
}

// Whatever goes wrong inside a field is the request's own failure, but for exhausted memory.
int own_code(int code) noexcept {
  if (code == 0) return 0;
  return fail(kRequest, reason_of(code) == kNoMemory ? kNoMemory : ERR_ASN1_ENCODING);
}

}  // namespace

int encode(const PKCS10_X509_REQ_INFO &info, DerWriter &out) noexcept {
  if (!info.subject || !info.subjectPublicKeyInfo) return fail(kRequest, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  out.integer(0u);
  int code = encode_name(*info.subject, out);
  if (!code) code = encode(*info.subjectPublicKeyInfo, out);
  if (!code) code = write_attributes(info, out);
  return code ? own_code(code) : out.result(kRequest);
}

int encode(const PKCS10_X509_REQ &req, DerWriter &out) noexcept {
  if (out.rules().standard && req.received) return out.raw(received_whole(*req.received)), 0;
  if (!req.info || !req.sig_alg || !req.sig_value) return fail(kRequest, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = encode(*req.info, out)) return code;
  write_algorithm_with_null(*req.sig_alg, out);
  out.bits(req.sig_value);
  return 0;
}

namespace {

constexpr Codec<PKCS10_X509_REQ> kCodec{kRequest, kRequest, decode, encode, "CERTIFICATE REQUEST"};

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_IO(PKCS10_X509_REQ, kCodec)

int PKCS10_X509_REQ_INFO_to_Seq(const PKCS10_X509_REQ_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(kRequest, in, out, encode);
}
int Seq_to_PKCS10_X509_REQ_INFO(ASN1_UNIT *in, PKCS10_X509_REQ_INFO **out) noexcept {
  return from_seq(kRequest, in, out, decode);
}
int PKCS10_X509_REQ_to_Seq(const PKCS10_X509_REQ *in, ASN1_UNIT **out) noexcept {
  return to_seq(kRequest, in, out, encode);
}
int Seq_to_PKCS10_X509_REQ(ASN1_UNIT *in, PKCS10_X509_REQ **out) noexcept {
  return from_seq(kRequest, in, out, decode);
}
int PKCS10_X509_REQ_to_Seq_RFC5280(const PKCS10_X509_REQ *in, ASN1_UNIT **out) noexcept {
  return to_seq(kRequest, in, out, encode, kStandardRules);
}
int Seq_to_PKCS10_X509_REQ_RFC5280(ASN1_UNIT *in, PKCS10_X509_REQ **out) noexcept {
  return from_seq(kRequest, in, out, decode, kStandardRules);
}

int writeDER_PKCS10_X509_REQ_to_Binary_RFC5280(PKCS10_X509_REQ *in, unsigned char **out) noexcept {
  return write_der(kCodec, in, out, kStandardRules);
}
int writePEM_PKCS10_X509_REQ_to_Binary_RFC5280(PKCS10_X509_REQ *in, char **out) noexcept {
  return write_pem(kCodec, in, out, kStandardRules);
}
int readDER_PKCS10_X509_REQ_from_Binary_RFC5280(PKCS10_X509_REQ **out, const unsigned char *data, int length) noexcept {
  return read_der(kCodec, out, octets_of(data, length), kStandardRules);
}
int readPEM_PKCS10_X509_REQ_from_Binary_RFC5280(PKCS10_X509_REQ **out, const char *text, int length) noexcept {
  const Octets octets = octets_of(reinterpret_cast<const unsigned char *>(text), length);
  return read_der(kCodec, out, decode_pem(octets).octets(), kStandardRules);
}
