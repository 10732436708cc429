// Content types: how the content of a message is made, released, read and written. PKCS#7 and CMS have a table each.
#pragma once

#include "cms/internal/pkcs7.h"

namespace velpki {

struct ContentType {
  int row;                   // of the registry
  int version;               // that a new content has; -1 for none
  void *(*make)() noexcept;  // null where it cannot be made empty
  void (*release)(void *) noexcept;
  void (*read)(MessageReader &in, void *&out) noexcept;  // the child inside [0]
  int (*write)(const void *content, DerWriter &out) noexcept;
};

// The type whose content is an OCTET STRING, and those whose content is a record.
constexpr ContentType octets_type(int row) noexcept {
  return {row,
          -1,
          []() noexcept -> void * { return new_string(TYPE_OCTET_STRING, {}); },
          [](void *content) noexcept { free_ASN1_STRING(static_cast<ASN1_STRING *>(content)); },
          [](MessageReader &in, void *&out) noexcept {
            ASN1_STRING *string = nullptr;
            in.octets(string);
            out = string;
          },
          [](const void *content, DerWriter &out) noexcept {
            out.octets_as(TYPE_OCTET_STRING, static_cast<const ASN1_STRING *>(content));
            return 0;
          }};
}
template <class R>
constexpr ContentType record_type(int row, int version) noexcept {
  return {row,
          version,
          []() noexcept -> void * { return Flat<R>::make(); },
          [](void *content) noexcept { Flat<R>::release(static_cast<R *>(content)); },
          [](MessageReader &in, void *&out) noexcept {
            R *record = nullptr;
            in.record(record);
            out = record;
          },
          [](const void *content, DerWriter &out) noexcept { return encode(*static_cast<const R *>(content), out); }};
}

template <size_t n>
const ContentType *find_type(const ContentType (&table)[n], int row) noexcept {
  for (const ContentType &each : table)
    if (each.row == row) return &each;
  return nullptr;
}

// P7_CONTENT_INFO and CMS_CONTENT_INFO have the same members, and one ContentInfo. `type` is that of what is held.
template <class M>
void release_content(M &message, const ContentType *type) noexcept {
  if (type && message.content) type->release(message.content);
  message.content = nullptr;
  message.kind = 0;
}
// content [0] EXPLICIT ANY DEFINED BY contentType OPTIONAL
template <class M>
void read_content(MessageReader &in, const ContentType &type, M &out) noexcept {
  while (in.at_optional(tag::explicit_context(0), out.content)) {
    Tlv wrapper;
    release_content(out, &type);
    if (!in.next(wrapper)) return;
    MessageReader inside(wrapper);
    out.kind = type.row;
    type.read(inside, out.content);
    inside.end();
    if (!in.join(inside)) return;
  }
}
// `named` is the kind that the message's contentType means.
template <class M>
int write_content_info(const M &message, int named, const ContentType *type, int function, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(message.contentType);
  if (!message.content) return 0;
  if (!type || named != message.kind) return fail(function, ERR_ASN1_ENCODING);
  const auto wrapper = out.explicit_context(0);
  return type->write(message.content, out);
}

// Null for a row that is no content type of PKCS#7, or of CMS.
const ContentType *content_type(int row) noexcept;
const ContentType *cms_content_type(int row) noexcept;

// A record whose content has a version, as `kind` of P7_CONTENT_INFO names it.
BIGINT **version_of(const P7_CONTENT_INFO &p7) noexcept;

// Releases the content, and leaves the type without one.
void drop_content(P7_CONTENT_INFO &p7) noexcept;

}  // namespace velpki
