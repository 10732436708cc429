// CMS_CONTENT_INFO and the types of content that it holds.
#include "asn1/internal/io.h"
#include "cms/internal/cms.h"
#include "cms/internal/content_type.h"

namespace velpki {

namespace {

constexpr ContentType kTypes[] = {
    octets_type(CMS_TYPE_DATA),
    record_type<CMS_SIGNED_DATA>(CMS_TYPE_SIGNED_DATA, 1),
    record_type<CMS_ENVELOPED_DATA>(CMS_TYPE_ENVELOPED_DATA, 0),
    record_type<CMS_DIGESTED_DATA>(CMS_TYPE_DIGESTED_DATA, 0),
    record_type<CMS_ENCRYPTED_DATA>(CMS_TYPE_ENCRYPTED_DATA, 0),
    record_type<CMS_AUTHENTICATED_DATA>(CMS_TYPE_AUTHENTICATED_DATA, 0),
};

}  // namespace

const ContentType *cms_content_type(int row) noexcept { return find_type(kTypes, row); }

BIGINT **version_of(const CMS_CONTENT_INFO &cms) noexcept {
  switch (cms.content ? cms.kind : 0) {
    case CMS_TYPE_SIGNED_DATA:
      return &signed_data(&cms)->version;
    case CMS_TYPE_ENVELOPED_DATA:
      return &enveloped_data(&cms)->version;
    case CMS_TYPE_DIGESTED_DATA:
      return &digested_data(&cms)->version;
    case CMS_TYPE_ENCRYPTED_DATA:
      return &encrypted_data(&cms)->version;
    case CMS_TYPE_AUTHENTICATED_DATA:
      return &authenticated_data(&cms)->version;
    default:
      return nullptr;
  }
}

void drop_content(CMS_CONTENT_INFO &cms) noexcept { release_content(cms, cms_content_type(cms.kind)); }

// ContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, content [0] EXPLICIT ANY DEFINED BY contentType }
int decode(const Tlv &tlv, CMS_CONTENT_INFO &out) noexcept {
  if (!tlv.fits(tag::kSequence)) return fail(F_SEQ_TO_CMS_CONTENT_INFO, ERR_ASN1_DECODING);
  MessageReader in(tlv);
  if (!in.oid(out.contentType)) return in.result(F_SEQ_TO_CMS_CONTENT_INFO);
  const ContentType *type = cms_content_type(index_from_OBJECT_IDENTIFIER(out.contentType));
  if (!type) return fail(F_SEQ_TO_CMS_CONTENT_INFO, kUnsupported);
  read_content(in, *type, out);
  in.end();
  return in.result(F_SEQ_TO_CMS_CONTENT_INFO);
}

int encode(const CMS_CONTENT_INFO &info, DerWriter &out) noexcept {
  return write_content_info(info, index_from_OBJECT_IDENTIFIER(info.contentType), cms_content_type(info.kind),
                            F_CMS_CONTENT_INFO_TO_SEQ, out);
}

namespace {

constexpr Codec<CMS_CONTENT_INFO> kCodec{F_SEQ_TO_CMS_CONTENT_INFO, F_CMS_CONTENT_INFO_TO_SEQ, decode, encode, "CMS"};

}  // namespace

}  // namespace velpki

using namespace velpki;

CMS_CONTENT_INFO *new_CMS_CONTENT_INFO(void) noexcept { return allocate_record<CMS_CONTENT_INFO>(); }

void free_CMS_CONTENT_INFO(CMS_CONTENT_INFO *p) noexcept {
  if (!p) return;
  drop_content(*p);
  free_OBJECT_IDENTIFIER(p->contentType);
  release(p);
}

int CMS_CONTENT_INFO_to_Seq(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_CONTENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_CONTENT_INFO(ASN1_UNIT *in, CMS_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_CONTENT_INFO, in, out, decode);
}
int CMS_CONTENT_INFO_to_Seq_RFC5280(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_CONTENT_INFO_TO_SEQ, in, out, encode, kStandardRules);
}
int Seq_to_CMS_CONTENT_INFO_RFC5280(ASN1_UNIT *in, CMS_CONTENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_CONTENT_INFO, in, out, decode, kStandardRules);
}

VELPKI_IO(CMS_CONTENT_INFO, kCodec)

int readBER_CMS_CONTENT_INFO_from_Binary(CMS_CONTENT_INFO **out, const unsigned char *data, int length) noexcept {
  return read_ber(kCodec, out, octets_of(data, length));
}
int readBER_CMS_CONTENT_INFO_from_File(CMS_CONTENT_INFO **out, const char *path) noexcept {
  return read_ber(kCodec, out, read_file(path).octets());
}
int writeDER_CMS_CONTENT_INFO_to_Binary_RFC5280(CMS_CONTENT_INFO *in, unsigned char **out) noexcept {
  return write_der(kCodec, in, out, kStandardRules);
}
