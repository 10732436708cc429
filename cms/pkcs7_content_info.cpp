// P7_CONTENT_INFO and the types of content that it holds.
#include "asn1/internal/io.h"
#include "cms/internal/content_type.h"

namespace velpki {

namespace {

void release_unit(void *content) noexcept { free_ASN1_UNIT(static_cast<ASN1_UNIT *>(content)); }
void read_unit_content(MessageReader &in, void *&out) noexcept {
  ASN1_UNIT *unit = nullptr;
  in.unit(unit);
  out = unit;
}
int write_unit(const void *content, DerWriter &out) noexcept {
  out.unit(static_cast<const ASN1_UNIT *>(content));
  return 0;
}

constexpr ContentType kTypes[] = {
    octets_type(PKCS7_DATA),
    record_type<P7_SIGNED_DATA>(PKCS7_SIGNED_DATA, 1),
    record_type<P7_ENVELOPED_DATA>(PKCS7_ENVELOPED_DATA, 0),
    record_type<P7_SIGNED_AND_ENVELOPED_DATA>(PKCS7_SIGNED_AND_ENVELOPED_DATA, 1),
    record_type<P7_DIGESTED_DATA>(PKCS7_DIGESTED_DATA, 0),
    record_type<P7_ENCRYPTED_DATA>(PKCS7_ENCRYPTED_DATA, 0),
    {PKCS7_TRUST_LIST, -1, nullptr, release_unit, read_unit_content, write_unit},
    {PKCS7_OTHER, -1, nullptr, release_unit, read_unit_content, write_unit},
};

// The kind of content that a type has.
int kind_of(const OBJECT_IDENTIFIER *type) noexcept {
  const int row = index_from_OBJECT_IDENTIFIER(type);
  return content_type(row) ? row : int(PKCS7_OTHER);
}

}  // namespace

const ContentType *content_type(int row) noexcept { return find_type(kTypes, row); }

BIGINT **version_of(const P7_CONTENT_INFO &p7) noexcept {
  switch (p7.content ? p7.kind : 0) {
    case PKCS7_SIGNED_DATA:
      return &signed_data(&p7)->version;
    case PKCS7_ENVELOPED_DATA:
      return &enveloped_data(&p7)->version;
    case PKCS7_SIGNED_AND_ENVELOPED_DATA:
      return &signed_and_enveloped_data(&p7)->version;
    case PKCS7_DIGESTED_DATA:
      return &digested_data(&p7)->version;
    case PKCS7_ENCRYPTED_DATA:
      return &encrypted_data(&p7)->version;
    default:
      return nullptr;
  }
}

void drop_content(P7_CONTENT_INFO &p7) noexcept { release_content(p7, content_type(p7.kind)); }

// ContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, content [0] EXPLICIT ANY DEFINED BY contentType OPTIONAL }
int decode(const Tlv &tlv, P7_CONTENT_INFO &out) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(F_SEQ_TO_P7_CONTENT_INFO, ERR_ASN1_DECODING);
  MessageReader in(tlv);
  if (!in.oid(out.contentType)) return in.result(F_SEQ_TO_P7_CONTENT_INFO);
  const int kind = kind_of(out.contentType);
  if (kind == PKCS7_OTHER && !in.rules().standard) return fail(F_SEQ_TO_P7_CONTENT_INFO, kUnsupported);
  read_content(in, *content_type(kind), out);
  in.end();
  return in.result(F_SEQ_TO_P7_CONTENT_INFO);
}

int encode(const P7_CONTENT_INFO &info, DerWriter &out) noexcept {
  return write_content_info(info, kind_of(info.contentType), content_type(info.kind), F_P7_CONTENT_INFO_TO_SEQ, out);
}

int MessageContent::load(const P7_CONTENT_INFO &p7) noexcept {
  P7_CONTENT_INFO **place = inner_content(&p7);
  const P7_CONTENT_INFO *inner = place ? *place : nullptr;
  const ContentType *type = inner && inner->content ? content_type(inner->kind) : nullptr;
  if (!type) return 0;
  present_ = true;
  if (type->row == PKCS7_DATA) {
    octets_ = velpki::octets(*static_cast<const ASN1_STRING *>(inner->content));
    return 0;
  }
  if (const int code = type->write(inner->content, encoded_)) return code;
  Tlv tlv;
  Rules rules;
  if (!Tlv::parse(encoded_.written(), rules, tlv)) return fail(F_P7_CONTENT_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  octets_ = tlv.content;
  return 0;
}

namespace {

constexpr Codec<P7_CONTENT_INFO> kCodec{F_SEQ_TO_P7_CONTENT_INFO, F_P7_CONTENT_INFO_TO_SEQ, decode, encode, "PKCS7"};

}  // namespace

}  // namespace velpki

using namespace velpki;

P7_CONTENT_INFO *new_P7_CONTENT_INFO(void) noexcept { return allocate_record<P7_CONTENT_INFO>(); }

void free_P7_CONTENT_INFO(P7_CONTENT_INFO *p) noexcept {
  if (!p) return;
  drop_content(*p);
  free_OBJECT_IDENTIFIER(p->contentType);
  release(p);
}

int P7_CONTENT_INFO_to_Seq(const P7_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_CONTENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_P7_CONTENT_INFO(ASN1_UNIT *in, P7_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P7_CONTENT_INFO, in, out, decode);
}

int P7_CONTENT_INFO_to_Seq_RFC5280(const P7_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P7_CONTENT_INFO_TO_SEQ, in, out, encode, kStandardRules);
}
int Seq_to_P7_CONTENT_INFO_RFC5280(ASN1_UNIT *in, P7_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P7_CONTENT_INFO, in, out, decode, kStandardRules);
}

VELPKI_IO(P7_CONTENT_INFO, kCodec)

int readBER_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const unsigned char *data, int length) noexcept {
  return read_ber(kCodec, out, octets_of(data, length));
}
int readBER_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) noexcept {
  return read_ber(kCodec, out, read_file(path).octets());
}
int writeDER_P7_CONTENT_INFO_to_Binary_RFC5280(const P7_CONTENT_INFO *in, unsigned char **out) noexcept {
  return write_der(kCodec, in, out, kStandardRules);
}
int writePEM_P7_CONTENT_INFO_to_Binary_RFC5280(const P7_CONTENT_INFO *in, char **out) noexcept {
  return write_pem(kCodec, in, out, kStandardRules);
}
