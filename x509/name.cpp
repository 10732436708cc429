// X509_NAME: its life, its children, its codec.
#include <velpki/asn1_error.h>
#include <velpki/convert.h>

#include <algorithm>

#include "x509/internal/x509.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_NAME_CHILD> = std::tuple(own(&X509_NAME_CHILD::type),
                                                                 own(&X509_NAME_CHILD::value));

namespace {

// AttributeTypeAndValue ::= SEQUENCE { type OBJECT IDENTIFIER, value ANY }
bool read_attribute(Cursor &rdn, STACK &name, int rdn_number) noexcept {
  Tlv tlv;
  if (!rdn.next(TYPE_SEQUENCE, tlv)) return false;
  owned<X509_NAME_CHILD> child(blank<X509_NAME_CHILD>());
  if (!rdn.made(child.get())) return false;
  child->rdn = rdn_number;
  Cursor in(tlv);
  if (!in.oid(child->type) || !in.any_string(child->value) || !in.finish()) return rdn.absorb(in);
  return append(&name, child) || rdn.stop(Read::no_memory);
}

// Room for an RDN's attributes: doubled, since a stranger's name may have many large ones.
bool make_room(STACK &name, int more) noexcept {
  if (more <= name.capacity - name.count) return true;
  const int64_t wanted = std::max(int64_t(name.capacity) * 2, int64_t(name.count) + more);
  return wanted <= INT_MAX && reserve_stack(&name, int(wanted));
}

bool read_empty_rdn(Cursor &in, STACK &name) noexcept {
  owned<X509_NAME_CHILD> child(blank<X509_NAME_CHILD>());
  if (!in.made(child.get())) return false;
  child->rdn = kEmptyRdn;
  return append(&name, child) || in.stop(Read::no_memory);
}

}  // namespace

// RelativeDistinguishedName ::= SET OF AttributeTypeAndValue. House form keeps the first one; standard form keeps all,
// and those of one set share a number. An empty set, which certificates in use have, becomes a child without type and
// value.
bool read_rdn(Cursor &in, const Tlv &set, STACK &name) noexcept {
  if (in.rules().standard && set.content.empty()) return read_empty_rdn(in, name);
  Cursor rdn(set);
  const int before = name.count;
  const int count = in.rules().standard ? count_values(set.content, rdn.rules()) : 1;
  const bool several = count > 1;
  if (several && !make_room(name, count)) return in.stop(Read::no_memory);
  bool read = read_attribute(rdn, name, several ? before + 1 : 0);
  while (read && several && !rdn.at_end()) read = read_attribute(rdn, name, before + 1);
  return in.absorb(rdn);
}

// Name ::= SEQUENCE OF RelativeDistinguishedName
int decode_name(const Tlv &tlv, STACK &name) noexcept {
  Cursor in(tlv);
  if (!reserve_stack(&name, count_values(tlv.content, in.rules()))) in.stop(Read::no_memory);
  for (Tlv set; in.reason() == Read::ok && !in.at_end();)
    if (in.next(TYPE_SET, set)) read_rdn(in, set, name);
  return in.result(F_SEQ_TO_X509_NAME);
}

namespace {

void write_attribute(const X509_NAME_CHILD &child, DerWriter &out) noexcept {
  const auto attribute = out.sequence();
  out.oid(child.type);
  out.string(child.value);
}

// Whether the child at `index` belongs to the RDN of the one before it.
bool continues_rdn(const STACK &name, int index) noexcept {
  const auto *before = element<X509_NAME_CHILD>(&name, index - 1), *child = element<X509_NAME_CHILD>(&name, index);
  return before && child && child->rdn > 0 && child->rdn == before->rdn;
}

}  // namespace

int encode_rdn(const STACK &name, int &index, DerWriter &out, uint8_t identifier) noexcept {
  const auto rdn = out.constructed(identifier);
  const size_t start = out.size();
  do {
    const auto *child = element<X509_NAME_CHILD>(&name, index);
    if (!child) return fail(F_X509_NAME_TO_SEQ, kBadValue);
    if (out.rules().standard && child->rdn == kEmptyRdn) return ++index, 0;
    if (!child->type || !child->value) return fail(F_X509_NAME_TO_SEQ, ERR_ASN1_ENCODING);
    write_attribute(*child, out);
  } while (++index < name.count && out.rules().standard && continues_rdn(name, index));
  if (out.rules().standard) out.sort_values(start);
  return 0;
}

int encode_name(const STACK &name, DerWriter &out, uint8_t identifier) noexcept {
  const auto sequence = out.constructed(identifier);
  for (int i = 0; i < name.count;)
    if (const int code = encode_rdn(name, i, out)) return code;
  return 0;
}

namespace {

int encode_sequence(const STACK &name, DerWriter &out) noexcept { return encode_name(name, out); }

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(X509_NAME_CHILD)
VELPKI_LIST_WITH_DUP(X509_NAME, X509_NAME_CHILD)

int get_X509_NAME_count(const X509_NAME *name) noexcept { return get_STACK_count(name); }

X509_NAME_CHILD *get_X509_NAME_CHILD(const X509_NAME *name, int index) noexcept {
  return element<X509_NAME_CHILD>(name, index);
}

OBJECT_IDENTIFIER *get_X509_NAME_CHILD_OID(const X509_NAME_CHILD *child) noexcept {
  return child ? child->type : nullptr;
}

ASN1_STRING *get_X509_NAME_CHILD_data(const X509_NAME_CHILD *child) noexcept { return child ? child->value : nullptr; }

int get_X509_NAME_index_by_OID(const X509_NAME *name, const OBJECT_IDENTIFIER *oid, int last) noexcept {
  if (!name || !oid) return -1;
  for (int i = next_index(last); i < name->count; ++i) {
    const auto *child = element<X509_NAME_CHILD>(name, i);
    if (child && same_octets(child->type, oid)) return i;
  }
  return -1;
}

int add_X509_NAME_child(X509_NAME *name, const X509_NAME_CHILD *child, int position) noexcept {
  return insert_copy(name, child, position) ? 0 : 1;
}

namespace {

int insert_child(X509_NAME *name, const OBJECT_IDENTIFIER *oid, owned<ASN1_STRING> value, int position) noexcept {
  owned<X509_NAME_CHILD> child(value ? new_X509_NAME_CHILD() : nullptr);
  if (!name || !oid || !child || !replace(*child, &X509_NAME_CHILD::type, oid)) return 1;
  child->value = value.release();
  if (!insert_STACK_value(name, child.get(), position)) return 1;
  child.release();
  return 0;
}

// A negative length measures NUL-terminated text; null with length 0 is an empty value.
bool octets_given(const unsigned char *bytes, int length, Octets &out) noexcept {
  if (!bytes) return length == 0;
  out = length < 0 ? octets_of_text(reinterpret_cast<const char *>(bytes)) : octets_of(bytes, length);
  return true;
}

}  // namespace

int add_X509_NAME_child_OID(X509_NAME *name, const OBJECT_IDENTIFIER *oid, int type, const unsigned char *bytes,
                            int length, int position) noexcept {
  Octets value;
  if (!octets_given(bytes, length, value)) return 1;
  return insert_child(name, oid, owned<ASN1_STRING>(new_string(type, value)), position);
}

namespace {

// A string of the given type from UTF-8; null when the text has no such form.
owned<ASN1_STRING> string_from_utf8(int type, const char *text, int length) noexcept {
  unsigned char *ucs2 = nullptr;
  const int size = utf8ToUnicode(text, length, &ucs2);
  const owned<unsigned char> owner(ucs2);
  if (type == TYPE_BMP_STRING) return owned<ASN1_STRING>(size < 0 ? nullptr : new_BMP_STRING(ucs2, size));
  const auto *octets = reinterpret_cast<const unsigned char *>(text);
  if (type == TYPE_UTF8_STRING) return owned<ASN1_STRING>(new_UTF8_STRING(octets, length));
  if (type == TYPE_PRINTABLE_STRING) return owned<ASN1_STRING>(new_PRINTABLE_STRING(octets, length));
  if (type == TYPE_IA5_STRING) return owned<ASN1_STRING>(new_IA5_STRING(octets, length));
  char *latin1 = nullptr;
  const int count = type == TYPE_T61_STRING && size >= 0 ? uniToasc(ucs2, size, &latin1) : -1;
  const owned<char> latin1_owner(latin1);
  return owned<ASN1_STRING>(count < 0 ? nullptr : new_T61_STRING(reinterpret_cast<unsigned char *>(latin1), count));
}

}  // namespace

int add_X509_NAME_child_OID_UTF8(X509_NAME *name, const OBJECT_IDENTIFIER *oid, int type, const char *text, int length,
                                 int position) noexcept {
  if (!text) return 1;
  const size_t measured = length < 0 ? std::string_view(text).size() : size_t(length);
  return measured > INT_MAX ? 1 : insert_child(name, oid, string_from_utf8(type, text, int(measured)), position);
}

int add_X509_NAME_child_OID_index(X509_NAME *name, int oid_index, int type, const unsigned char *bytes, int length,
                                  int position) noexcept {
  return add_X509_NAME_child_OID(name, oid_of_row(oid_index).get(), type, bytes, length, position);
}

void remove_X509_NAME_child(X509_NAME *name, int index) noexcept {
  free_X509_NAME_CHILD(static_cast<X509_NAME_CHILD *>(remove_STACK_value(name, index)));
}

int X509_NAME_to_Seq(const X509_NAME *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_NAME_TO_SEQ, in, out, encode_sequence);
}
int X509_NAME_to_Seq_RFC5280(const X509_NAME *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_NAME_TO_SEQ, in, out, encode_sequence, kStandardRules);
}
int Seq_to_X509_NAME(ASN1_UNIT *in, X509_NAME **out) noexcept {
  return list_from_seq<X509_NAME_CHILD>(F_SEQ_TO_X509_NAME, in, out, decode_name);
}
int Seq_to_X509_NAME_RFC5280(ASN1_UNIT *in, X509_NAME **out) noexcept {
  return list_from_seq<X509_NAME_CHILD>(F_SEQ_TO_X509_NAME, in, out, decode_name, kStandardRules);
}

namespace {

int decode_name_strict(const Tlv &tlv, STACK &name) noexcept {
  Cursor in(tlv);
  for (Tlv set; in.next(set);)
    if (count_values(set.content, set.rules) > 1) return fail(F_SEQ_TO_X509_NAME, ERR_MULTIVALUED_RDN);
  return decode_name(tlv, name);
}

}  // namespace

int Seq_to_X509_NAME_strict(ASN1_UNIT *in, X509_NAME **out) noexcept {
  return list_from_seq<X509_NAME_CHILD>(F_SEQ_TO_X509_NAME, in, out, decode_name_strict, kStandardRules);
}
