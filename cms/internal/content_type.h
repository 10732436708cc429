// The table of content types: how the content of a P7_CONTENT_INFO is made, released, read and written.
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

// Null for a row that is no content type.
const ContentType *content_type(int row) noexcept;

// A record whose content has a version, as `kind` of P7_CONTENT_INFO names it.
BIGINT **version_of(const P7_CONTENT_INFO &p7) noexcept;

// Releases the content, and leaves the type without one.
void drop_content(P7_CONTENT_INFO &p7) noexcept;

}  // namespace velpki
