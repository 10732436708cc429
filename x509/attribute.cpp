// X509_ATTRIBUTE, its values and its list.
#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_ATTRIBUTE> =
    std::tuple(own(&X509_ATTRIBUTE::type), made_list_of<X509_ATTRIBUTE_DATA>(&X509_ATTRIBUTE::values));

namespace {

// The kind of value follows the type: a constructed one is kept as a unit.
bool holds_unit(int type) noexcept { return type & tag::kConstructed; }

void release_value(X509_ATTRIBUTE_DATA &data) noexcept {
  if (holds_unit(data.type))
    free_ASN1_UNIT(static_cast<ASN1_UNIT *>(data.value));
  else
    free_ASN1_STRING(static_cast<ASN1_STRING *>(data.value));
}

void *copy_value(int type, const void *value) noexcept {
  if (holds_unit(type)) return dup_ASN1_UNIT_strict(static_cast<const ASN1_UNIT *>(value));
  return dup_ASN1_STRING(static_cast<const ASN1_STRING *>(value));
}

owned<X509_ATTRIBUTE_DATA> new_value(int type, void *value) noexcept {
  owned<X509_ATTRIBUTE_DATA> data(value ? new_X509_ATTRIBUTE_DATA() : nullptr);
  if (data) {
    data->type = type;
    data->value = value;
  }
  return data;
}

Read read_value(const Tlv &tlv, X509_ATTRIBUTE_DATA &out) noexcept {
  out.type = tlv.identifier;
  if (holds_unit(out.type)) {
    ASN1_UNIT *unit = nullptr;
    const Read outcome = read_unit(tlv, unit);
    out.value = unit;
    return outcome;
  }
  ASN1_STRING *string = nullptr;
  const Read outcome = read_any_string(tlv, string);
  out.value = string;
  return outcome;
}

bool read_values(Cursor &in, STACK &values) noexcept {
  if (!reserve_stack(&values, count_values(in.rest(), in.rules()))) return in.stop(Read::no_memory);
  while (!in.at_end()) {
    Tlv child;
    if (!in.next(child)) return false;
    owned<X509_ATTRIBUTE_DATA> data(new_X509_ATTRIBUTE_DATA());
    if (!in.made(data.get()) || !in.keep(read_value(child, *data))) return false;
    if (!append(&values, data)) return in.stop(Read::no_memory);
  }
  return true;
}

}  // namespace

// Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET OF ANY }
int decode(const Tlv &tlv, X509_ATTRIBUTE &out) noexcept {
  Cursor in(tlv);
  Tlv set;
  if (in.oid(out.type) && in.next(TYPE_SET, set) && in.made(out.values = new_STACK())) {
    Cursor values(set);
    read_values(values, *out.values);
    in.absorb(values);
  }
  return in.result(F_SEQ_TO_X509_ATTRIBUTE);
}

namespace {

void write_value(const X509_ATTRIBUTE_DATA &data, DerWriter &out) noexcept {
  if (holds_unit(data.type)) return out.unit(static_cast<const ASN1_UNIT *>(data.value));
  const auto *string = static_cast<const ASN1_STRING *>(data.value);
  if (!string) return out.refuse();
  ASN1_STRING as_typed = *string;
  as_typed.type = data.type;
  out.string(&as_typed);
}

}  // namespace

int encode(const X509_ATTRIBUTE &attribute, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(attribute.type);
  const auto set = out.set();
  const size_t start = out.size();
  for (const X509_ATTRIBUTE_DATA *data : elements<X509_ATTRIBUTE_DATA>(attribute.values)) {
    if (!data) return fail(F_X509_ATTRIBUTE_TO_SEQ, ERR_ASN1_ENCODING);
    write_value(*data, out);
  }
  if (out.rules().standard) out.sort_values(start);
  return 0;
}

int decode_attributes(const Tlv &tlv, STACK &attributes) noexcept {
  return decode_list<X509_ATTRIBUTE>(tlv, attributes, F_SEQ_TO_X509_ATTRIBUTES, decode);
}

int encode_attributes(const STACK &attributes, DerWriter &out, uint8_t identifier) noexcept {
  return encode_list<X509_ATTRIBUTE>(attributes, out, identifier, F_X509_ATTRIBUTES_TO_SEQ, encode,
                                     out.rules().standard);
}

}  // namespace velpki

using namespace velpki;

X509_ATTRIBUTE_DATA *new_X509_ATTRIBUTE_DATA(void) noexcept { return allocate_record<X509_ATTRIBUTE_DATA>(); }

void free_X509_ATTRIBUTE_DATA(X509_ATTRIBUTE_DATA *p) noexcept {
  if (!p) return;
  release_value(*p);
  release(p);
}

X509_ATTRIBUTE_DATA *dup_X509_ATTRIBUTE_DATA(const X509_ATTRIBUTE_DATA *p) noexcept {
  owned<X509_ATTRIBUTE_DATA> fresh(p ? new_X509_ATTRIBUTE_DATA() : nullptr);
  if (!fresh) return nullptr;
  fresh->type = p->type;
  fresh->value = p->value ? copy_value(p->type, p->value) : nullptr;
  return fresh->value || !p->value ? fresh.release() : nullptr;
}

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(X509_ATTRIBUTE)

int set_X509_ATTRIBUTE_OID(X509_ATTRIBUTE *attribute, const OBJECT_IDENTIFIER *oid) noexcept {
  return attribute && replace(*attribute, &X509_ATTRIBUTE::type, oid) ? 0 : 1;
}

int add_X509_ATTRIBUTE_data(X509_ATTRIBUTE *attribute, int type, const void *value) noexcept {
  if (!attribute || !value || type < 0 || type > 0xFF) return 1;
  void *stored = copy_value(type, value);
  owned<X509_ATTRIBUTE_DATA> data = new_value(type, stored);
  if (data) return append(attribute->values, data) ? 0 : 1;
  X509_ATTRIBUTE_DATA lost{type, stored};
  release_value(lost);
  return 1;
}

// A string of a constructed type describes a unit, and a record of that type must hold one.
int add_X509_ATTRIBUTE_set(X509_ATTRIBUTE *attribute, ASN1_STRING *string) noexcept {
  if (!attribute || !string || string->type < 0 || string->type > 0xFF) return 1;
  if (holds_unit(string->type)) {
    ASN1_UNIT *unit = nullptr;
    if (ASN1_STRING_to_Seq(string, &unit)) return 1;
    const owned<ASN1_UNIT> owner(unit);
    if (add_X509_ATTRIBUTE_data(attribute, string->type, unit)) return 1;
    free_ASN1_STRING(string);
    return 0;
  }
  owned<X509_ATTRIBUTE_DATA> data = new_value(string->type, string);
  if (append(attribute->values, data)) return 0;
  if (data) data->value = nullptr;
  return 1;
}

OBJECT_IDENTIFIER *get_X509_ATTRIBUTE_OID(const X509_ATTRIBUTE *attribute) noexcept {
  return attribute ? attribute->type : nullptr;
}

int get_X509_ATTRIBUTE_count(const X509_ATTRIBUTE *attribute) noexcept {
  return attribute && attribute->values ? attribute->values->count : 0;
}

int get_X509_ATTRIBUTE_data_type(const X509_ATTRIBUTE *attribute, int index) noexcept {
  const auto *data = attribute ? element<X509_ATTRIBUTE_DATA>(attribute->values, index) : nullptr;
  return data ? data->type : -1;
}

void *get_X509_ATTRIBUTE_data(const X509_ATTRIBUTE *attribute, int index) noexcept {
  const auto *data = attribute ? element<X509_ATTRIBUTE_DATA>(attribute->values, index) : nullptr;
  return data ? data->value : nullptr;
}

// The value is added first: where that fails, or the OID cannot be set, the caller's attribute is as it was.
X509_ATTRIBUTE *create_X509_ATTRIBUTE_OID(X509_ATTRIBUTE **attribute, const OBJECT_IDENTIFIER *oid, int type,
                                          const void *value) noexcept {
  owned<X509_ATTRIBUTE> fresh(attribute && *attribute ? nullptr : new_X509_ATTRIBUTE());
  X509_ATTRIBUTE *target = attribute && *attribute ? *attribute : fresh.get();
  if (!target || !oid || add_X509_ATTRIBUTE_data(target, type, value)) return nullptr;
  if (set_X509_ATTRIBUTE_OID(target, oid)) {
    free_X509_ATTRIBUTE_DATA(static_cast<X509_ATTRIBUTE_DATA *>(pop_STACK_value(target->values)));
    return nullptr;
  }
  if (fresh && attribute) *attribute = fresh.get();
  static_cast<void>(fresh.release());
  return target;
}

X509_ATTRIBUTE *create_X509_ATTRIBUTE_index(X509_ATTRIBUTE **attribute, int oid_index, int type,
                                            const void *value) noexcept {
  return create_X509_ATTRIBUTE_OID(attribute, oid_of_row(oid_index).get(), type, value);
}

VELPKI_LIST_WITH_DUP(X509_ATTRIBUTES, X509_ATTRIBUTE)

int get_X509_ATTRIBUTES_count(const X509_ATTRIBUTES *list) noexcept { return get_STACK_count(list); }
X509_ATTRIBUTE *get_X509_ATTRIBUTES_child(const X509_ATTRIBUTES *list, int index) noexcept {
  return element<X509_ATTRIBUTE>(list, index);
}
int add_X509_ATTRIBUTES_child(X509_ATTRIBUTES *list, const X509_ATTRIBUTE *attribute, int position) noexcept {
  return insert_copy(list, attribute, position) ? 0 : 1;
}
int add_X509_ATTRIBUTES_child_OID(X509_ATTRIBUTES *list, const OBJECT_IDENTIFIER *oid, int type, const void *value,
                                  int position) noexcept {
  const owned<X509_ATTRIBUTE> attribute(create_X509_ATTRIBUTE_OID(nullptr, oid, type, value));
  return add_X509_ATTRIBUTES_child(list, attribute.get(), position);
}
int add_X509_ATTRIBUTES_OID_INDEX(X509_ATTRIBUTES *list, int oid_index, int type, const void *value,
                                  int position) noexcept {
  return add_X509_ATTRIBUTES_child_OID(list, oid_of_row(oid_index).get(), type, value, position);
}

namespace velpki {
namespace {
int encode_attribute_set(const STACK &attributes, DerWriter &out) noexcept {
  return encode_attributes(attributes, out);
}
}  // namespace
}  // namespace velpki

int X509_ATTRIBUTE_to_Seq(const X509_ATTRIBUTE *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_ATTRIBUTE_TO_SEQ, in, out, encode);
}
int Seq_to_X509_ATTRIBUTE(ASN1_UNIT *in, X509_ATTRIBUTE **out) noexcept {
  return from_seq(F_SEQ_TO_X509_ATTRIBUTE, in, out, decode);
}
int X509_ATTRIBUTES_to_Seq(const X509_ATTRIBUTES *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_ATTRIBUTES_TO_SEQ, in, out, encode_attribute_set);
}
int X509_ATTRIBUTES_to_Seq_RFC5280(const X509_ATTRIBUTES *in, ASN1_UNIT **out) noexcept {
  return to_refilled_seq(F_X509_ATTRIBUTES_TO_SEQ, in, out, encode_attribute_set, kStandardRules);
}
int Seq_to_X509_ATTRIBUTES(ASN1_UNIT *in, X509_ATTRIBUTES **out) noexcept {
  return list_from_seq<X509_ATTRIBUTE>(F_SEQ_TO_X509_ATTRIBUTES, in, out, decode_attributes);
}
