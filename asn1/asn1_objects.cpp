// The registry's C functions, and object identifiers as values.
#include <velpki/asn1_objects.h>

#include <string_view>

#include "asn1/internal/record.h"
#include "asn1/internal/registry.h"
#include "asn1/internal/string.h"

using namespace velpki;

namespace {

// The caller's text where its length is the one it states. It is read up to its zero octet only.
std::string_view stated_text(const char *text, int length) noexcept {
  if (!text || length < 1) return {};
  const bool ends_there = strnlen(text, size_t(length)) == size_t(length) && text[length] == 0;
  return ends_there ? std::string_view(text, size_t(length)) : std::string_view();
}

bool is_row(int index) noexcept { return index > 0 && index < kRegistryRows; }

int order_of_octets(const OBJECT_IDENTIFIER &a, const OBJECT_IDENTIFIER &b) noexcept {
  const int order = text(a).compare(text(b));
  return (order > 0) - (order < 0);
}

}  // namespace

int index_from_oid_string(const char *text, int length) noexcept { return row_of_text(stated_text(text, length)); }
int index_from_sn(const char *name, int length) noexcept { return row_of_short_name(stated_text(name, length)); }
int index_from_ln(const char *name, int length) noexcept { return row_of_long_name(stated_text(name, length)); }
int index_from_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIER *oid) noexcept { return oid ? row_of_text(text(*oid)) : 0; }

const char *sn_from_index(int index) noexcept { return is_row(index) ? row_short_name(index).data() : nullptr; }
const char *ln_from_index(int index) noexcept { return is_row(index) ? row_long_name(index).data() : nullptr; }

OBJECT_IDENTIFIER *index_to_OBJECT_IDENTIFIER(int index) noexcept {
  if (!is_row(index)) return nullptr;
  const std::string_view dotted = row_text(index);
  return new_OBJECT_IDENTIFIER(dotted.data(), int(dotted.size()));
}

OBJECT_IDENTIFIER *get_OBJECT_IDENTIFIER(const char *name, int index) noexcept {
  if (index || !name) return index_to_OBJECT_IDENTIFIER(index);
  const int row = row_of_short_name(name);
  return index_to_OBJECT_IDENTIFIER(row ? row : row_of_long_name(name));
}

OBJECT_IDENTIFIER *dup_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIER *oid) noexcept {
  return oid && oid->data ? dup_ASN1_STRING(oid) : nullptr;
}

int cmp_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIER *a, const OBJECT_IDENTIFIER *b) noexcept {
  if (!a) return -1;
  if (!b) return 1;
  if (a->length != b->length) return int(unsigned(a->length) - unsigned(b->length));
  return order_of_octets(*a, *b);
}

OBJECT_IDENTIFIERS *new_OBJECT_IDENTIFIERS(void) noexcept { return new_STACK(); }
void free_OBJECT_IDENTIFIERS(OBJECT_IDENTIFIERS *list) noexcept { destroy_list<OBJECT_IDENTIFIER>(list); }
int add_OBJECT_IDENTIFIERS(OBJECT_IDENTIFIERS *list, const OBJECT_IDENTIFIER *oid) noexcept {
  return insert_copy(list, oid, -1) ? 0 : 1;
}

int get_OBJECT_IDENTIFIERS_index_by_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIERS *list,
                                                      const OBJECT_IDENTIFIER *oid) noexcept {
  for (int i = 0; oid && i < get_STACK_count(list); ++i) {
    if (cmp_OBJECT_IDENTIFIER(element<OBJECT_IDENTIFIER>(list, i), oid) == 0) return i;
  }
  return -1;
}
