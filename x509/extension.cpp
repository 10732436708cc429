// X509_EXTENSION, the generic record, and its list.
#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_EXTENSION> = std::tuple(own(&X509_EXTENSION::object),
                                                                own(&X509_EXTENSION::value));

namespace {

bool read_critical(Cursor &in, const Tlv &child, unsigned char &critical) noexcept {
  if (!in.expect(child, TYPE_BOOLEAN)) return false;
  if (child.content.size() != 1) return in.stop(Read::malformed);
  critical = child.content[0] != 0;
  return true;
}

}  // namespace

// Extension ::= SEQUENCE { extnID OBJECT IDENTIFIER, critical BOOLEAN DEFAULT FALSE, extnValue OCTET STRING }
// Exactly two or three elements; with three the second is the BOOLEAN.
int decode(const Tlv &tlv, X509_EXTENSION &out) noexcept {
  Cursor in(tlv);
  Tlv child;
  bool read = in.oid(out.object) && in.next(child);
  if (read && !in.at_end()) read = read_critical(in, child, out.critical) && in.next(child);
  if (read && !in.at_end()) read = in.stop(Read::malformed);
  if (read && in.expect(child, TYPE_OCTET_STRING)) in.keep(read_string(child, TYPE_OCTET_STRING, out.value));
  return in.result(F_SEQ_TO_X509_EXT);
}

int encode(const X509_EXTENSION &extension, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(extension.object);
  if (extension.critical) out.boolean(true);
  out.octets_as(TYPE_OCTET_STRING, extension.value);
  return 0;
}

// Extensions ::= SEQUENCE OF Extension
int decode_extensions(const Tlv &tlv, STACK &extensions) noexcept {
  return decode_list<X509_EXTENSION>(tlv, extensions, F_SEQ_TO_X509_EXT, decode);
}

int encode_extensions(const STACK &extensions, DerWriter &out) noexcept {
  return encode_list<X509_EXTENSION>(extensions, out, tag::kSequence, F_X509_EXT_TO_SEQ, encode);
}

namespace {

// DER leaves FALSE out and writes TRUE as FF.
bool critical_is_canonical(const Tlv &extension) noexcept {
  Cursor in(extension);
  Tlv object, critical;
  if (!in.next(object) || !in.next(critical) || critical.identifier != TYPE_BOOLEAN) return true;
  return critical.content.size() == 1 && critical.content[0] == 0xFF;
}

}  // namespace

bool has_duplicates(const STACK &extensions, bool &no_memory) noexcept {
  STACK *sorted = new_STACK_compare_func(+[](const void *a, const void *b) {
    const auto *left = *static_cast<const X509_EXTENSION *const *>(a),
               *right = *static_cast<const X509_EXTENSION *const *>(b);
    return cmp_OBJECT_IDENTIFIER(left->object, right->object);
  });
  no_memory = !sorted || !reserve_stack(sorted, extensions.count);
  bool found = false;
  for (int i = 0; !no_memory && i < extensions.count; ++i) push_STACK_value(sorted, extensions.data[i]);
  if (!no_memory) sort_STACK(sorted);
  for (int i = 1; !no_memory && !found && i < extensions.count; ++i)
    found = sorted->compare(&sorted->data[i - 1], &sorted->data[i]) == 0;
  free_STACK(sorted);
  return found;
}

namespace {

int decode_extensions_strict(const Tlv &tlv, STACK &extensions) noexcept {
  if (const int code = decode_extensions(tlv, extensions)) return code;
  if (extensions.count == 0) return fail(F_SEQ_TO_X509_EXT, ERR_EMPTY_LIST);
  Cursor in(tlv);
  for (Tlv extension; in.next(extension);)
    if (!critical_is_canonical(extension)) return fail(F_SEQ_TO_X509_EXT, ERR_NOT_CANONICAL);
  bool no_memory;
  const bool duplicates = has_duplicates(extensions, no_memory);
  if (no_memory) return fail(F_SEQ_TO_X509_EXT, kNoMemory);
  return duplicates ? fail(F_SEQ_TO_X509_EXT, ERR_DUPLICATE_EXTENSION) : 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(X509_EXTENSION)

int set_X509_EXTENSION_object(X509_EXTENSION *extension, const OBJECT_IDENTIFIER *oid) noexcept {
  return extension && replace(*extension, &X509_EXTENSION::object, oid) ? 0 : 1;
}
int set_X509_EXTENSION_critical(X509_EXTENSION *extension, int critical) noexcept {
  if (!extension) return 1;
  extension->critical = critical != 0;
  return 0;
}
int set_X509_EXTENSION_data(X509_EXTENSION *extension, const ASN1_STRING *value) noexcept {
  return extension && replace(*extension, &X509_EXTENSION::value, value) ? 0 : 1;
}
OBJECT_IDENTIFIER *get_X509_EXTENSION_object(const X509_EXTENSION *extension) noexcept {
  return extension ? extension->object : nullptr;
}
ASN1_STRING *get_X509_EXTENSION_data(const X509_EXTENSION *extension) noexcept {
  return extension ? extension->value : nullptr;
}
int get_X509_EXTENSION_critical(const X509_EXTENSION *extension) noexcept {
  return extension && extension->critical ? 1 : 0;
}

X509_EXTENSION *create_X509_EXTENSION_by_OID(X509_EXTENSION **extension, const OBJECT_IDENTIFIER *oid, int critical,
                                             const ASN1_STRING *value) noexcept {
  owned<X509_EXTENSION> filled(new_X509_EXTENSION());
  if (set_X509_EXTENSION_object(filled.get(), oid) || set_X509_EXTENSION_data(filled.get(), value)) return nullptr;
  set_X509_EXTENSION_critical(filled.get(), critical);
  if (extension && *extension) {
    std::swap(**extension, *filled);
    return *extension;
  }
  if (extension) *extension = filled.get();
  return filled.release();
}

X509_EXTENSION *create_X509_EXTENSION_by_OID_index(X509_EXTENSION **extension, int oid_index, int critical,
                                                   const ASN1_STRING *value) noexcept {
  return create_X509_EXTENSION_by_OID(extension, oid_of_row(oid_index).get(), critical, value);
}

int X509_EXTENSION_to_Seq(const X509_EXTENSION *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_EXT_TO_SEQ, in, out, encode);
}
int Seq_to_X509_EXTENSION(ASN1_UNIT *in, X509_EXTENSION **out) noexcept {
  return from_seq(F_SEQ_TO_X509_EXT, in, out, decode);
}

VELPKI_LIST_WITH_DUP(X509_EXTENSIONS, X509_EXTENSION)

int get_X509_EXTENSION_count(const X509_EXTENSIONS *list) noexcept { return get_STACK_count(list); }
X509_EXTENSION *get_X509_EXTENSION(const X509_EXTENSIONS *list, int index) noexcept {
  return element<X509_EXTENSION>(list, index);
}
void remove_X509_EXTENSION(X509_EXTENSIONS *list, int index) noexcept {
  free_X509_EXTENSION(static_cast<X509_EXTENSION *>(remove_STACK_value(list, index)));
}

int add_X509_EXTENSION(X509_EXTENSIONS **list, const X509_EXTENSION *extension, int position) noexcept {
  if (!list || !extension) return 1;
  STACK *fresh = *list ? nullptr : new_STACK();
  if (!insert_copy(*list ? *list : fresh, extension, position)) return free_STACK(fresh), 1;
  if (fresh) *list = fresh;
  return 0;
}

int get_X509_EXTENSION_index_by_OID(const X509_EXTENSIONS *list, const OBJECT_IDENTIFIER *oid, int last) noexcept {
  if (!list || !oid) return -1;
  for (int i = next_index(last); i < list->count; ++i) {
    const auto *extension = element<X509_EXTENSION>(list, i);
    if (extension && same_octets(extension->object, oid)) return i;
  }
  return -1;
}

int get_X509_EXTENSION_index_by_OID_index(const X509_EXTENSIONS *list, int oid_index, int last) noexcept {
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(oid_index);
  return oid ? get_X509_EXTENSION_index_by_OID(list, oid.get(), last) : -2;
}

int X509_EXTENSIONS_to_Seq(const X509_EXTENSIONS *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_EXT_TO_SEQ, in, out, encode_extensions);
}
int Seq_to_X509_EXTENSIONS(ASN1_UNIT *in, X509_EXTENSIONS **out) noexcept {
  return list_from_seq<X509_EXTENSION>(F_SEQ_TO_X509_EXT, in, out, decode_extensions);
}
int Seq_to_X509_EXTENSIONS_strict(ASN1_UNIT *in, X509_EXTENSIONS **out) noexcept {
  return list_from_seq<X509_EXTENSION>(F_SEQ_TO_X509_EXT, in, out, decode_extensions_strict, kStandardRules);
}
