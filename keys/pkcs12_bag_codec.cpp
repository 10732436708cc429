// The bags of PKCS#12: SafeBag, its values, and lists of them.
#include "keys/internal/pkcs12.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P12_BAGS> = std::tuple(own(&P12_BAGS::certType), own(&P12_BAGS::value),
                                                          own(&P12_BAGS::otherValue));

namespace {

// certValue [0] EXPLICIT ANY
bool read_cert_value(Cursor &in, P12_BAGS &out) noexcept {
  Tlv wrapper, value;
  if (!in.at(tag::explicit_context(0))) return in.stop(Read::malformed);
  if (!in.next(wrapper)) return false;
  Cursor inside(wrapper);
  if (!inside.next(value)) return in.absorb(inside);
  return in.keep(is_octet_string(value) ? read_joined_octets(value, out.value) : read_unit(value, out.otherValue));
}

}  // namespace

// CertBag ::= SEQUENCE { certId OBJECT IDENTIFIER, certValue [0] EXPLICIT ANY DEFINED BY certId }
int decode(const Tlv &tlv, P12_BAGS &out) noexcept {
  Cursor in(tlv);
  if (in.oid(out.certType)) read_cert_value(in, out);
  return in.result(F_SEQ_TO_P12_BAGS);
}

int encode(const P12_BAGS &bag, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(bag.certType);
  const auto wrapper = out.explicit_context(0);
  if (bag.value)
    out.octets_as(TYPE_OCTET_STRING, bag.value);
  else
    out.unit(bag.otherValue);
  return 0;
}

namespace {

void drop_value(P12_SAFEBAG &bag) noexcept {
  switch (bag.kind) {
    case P12_KIND_KEY:
      return free_P8_PRIV_KEY_INFO(static_cast<P8_PRIV_KEY_INFO *>(bag.value));
    case P12_KIND_SHROUDED:
      return free_PKCS8(static_cast<PKCS8 *>(bag.value));
    case P12_KIND_CERT:
      return free_P12_BAGS(static_cast<P12_BAGS *>(bag.value));
    case P12_KIND_SAFE_BAGS:
      return free_P12_SAFEBAGS(static_cast<P12_SAFEBAGS *>(bag.value));
    case P12_KIND_UNIT:
      return free_ASN1_UNIT(static_cast<ASN1_UNIT *>(bag.value));
    default:
      return;
  }
}

int kind_of_row(int row) noexcept {
  switch (row) {
    case row::kKeyBag:
      return P12_KIND_KEY;
    case row::kShroudedKeyBag:
      return P12_KIND_SHROUDED;
    case row::kCertBag:
      return P12_KIND_CERT;
    case row::kSafeContentsBag:
      return P12_KIND_SAFE_BAGS;
    default:
      return P12_KIND_UNIT;
  }
}

template <class R>
bool read_value_record(Cursor &in, void *&out) noexcept {
  R *record = nullptr;
  const bool read = read_record(in, record);
  out = record;
  return read;
}

// Keys are read in standard form: what a file of others holds need not be a key that the provider has.
bool read_key(Cursor &in, void *&out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  child.rules.standard = true;
  P8_PRIV_KEY_INFO *key = blank<P8_PRIV_KEY_INFO>();
  out = key;
  return in.made(key) && in.absorb(decode(child, *key));
}

bool read_value(Cursor &in, P12_SAFEBAG &out) noexcept {
  out.kind = kind_of_row(index_from_OBJECT_IDENTIFIER(out.bagType));
  switch (out.kind) {
    case P12_KIND_KEY:
      return read_key(in, out.value);
    case P12_KIND_SHROUDED:
      return read_value_record<PKCS8>(in, out.value);
    case P12_KIND_CERT:
      return read_value_record<P12_BAGS>(in, out.value);
    case P12_KIND_SAFE_BAGS: {
      STACK *bags = nullptr;
      const bool read = read_list(in, bags, decode_safe_bags);
      out.value = bags;
      return read;
    }
    default: {
      ASN1_UNIT *unit = nullptr;
      const bool read = in.unit(unit);
      out.value = unit;
      return read;
    }
  }
}

bool read_attributes(Cursor &in, X509_ATTRIBUTES *&out) noexcept {
  Tlv child;
  if (in.at_end()) return true;
  return in.next(TYPE_SET, child) && in.made(out = new_STACK()) && in.absorb(decode_attributes(child, *out));
}

}  // namespace

// SafeBag ::= SEQUENCE { bagId OBJECT IDENTIFIER, bagValue [0] EXPLICIT ANY DEFINED BY bagId, bagAttributes SET OF
// PKCS12Attribute OPTIONAL }
int decode(const Tlv &tlv, P12_SAFEBAG &out) noexcept {
  Cursor in(tlv);
  Tlv wrapper;
  if (!in.oid(out.bagType)) return in.result(F_SEQ_TO_P12_SAFEBAG);
  if (!in.at(tag::explicit_context(0))) return fail(F_SEQ_TO_P12_SAFEBAG, ERR_ASN1_DECODING);
  if (in.next(wrapper)) {
    Cursor inside(wrapper);
    read_value(inside, out) ? read_attributes(in, out.attributes) : in.absorb(inside);
  }
  return in.result(F_SEQ_TO_P12_SAFEBAG);
}

namespace {

int write_value(const P12_SAFEBAG &bag, DerWriter &out) noexcept {
  switch (bag.value ? bag.kind : 0) {
    case P12_KIND_KEY:
      return encode(*static_cast<const P8_PRIV_KEY_INFO *>(bag.value), out);
    case P12_KIND_SHROUDED:
      return encode(*static_cast<const PKCS8 *>(bag.value), out);
    case P12_KIND_CERT:
      return encode(*static_cast<const P12_BAGS *>(bag.value), out);
    case P12_KIND_SAFE_BAGS:
      return encode_safe_bags(*static_cast<const STACK *>(bag.value), out);
    case P12_KIND_UNIT:
      return out.unit(static_cast<const ASN1_UNIT *>(bag.value)), 0;
    default:
      return fail(F_P12_SAFEBAG_TO_SEQ, ERR_ASN1_ENCODING);
  }
}

}  // namespace

int encode(const P12_SAFEBAG &bag, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(bag.bagType);
  {
    const auto wrapper = out.explicit_context(0);
    if (const int code = write_value(bag, out)) return code;
  }
  if (!bag.attributes || bag.attributes->count == 0) return 0;
  return encode_attributes(*bag.attributes, out);
}

int decode_safe_bags(const Tlv &tlv, STACK &out) noexcept {
  return decode_list<P12_SAFEBAG>(tlv, out, F_SEQ_TO_P12_SAFEBAGS, decode);
}
int encode_safe_bags(const STACK &bags, DerWriter &out) noexcept {
  return encode_list<P12_SAFEBAG>(bags, out, tag::kSequence, F_P12_SAFEBAGS_TO_SEQ, encode);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(P12_BAGS)
P12_SAFEBAG *new_P12_SAFEBAG(void) noexcept { return allocate_record<P12_SAFEBAG>(); }
void free_P12_SAFEBAG(P12_SAFEBAG *p) noexcept {
  if (!p) return;
  drop_value(*p);
  free_OBJECT_IDENTIFIER(p->bagType);
  free_X509_ATTRIBUTES(p->attributes);
  release(p);
}
VELPKI_LIST(P12_SAFEBAGS, P12_SAFEBAG)

int P12_SAFEBAGS_to_Seq(const P12_SAFEBAGS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P12_SAFEBAGS_TO_SEQ, in, out, encode_safe_bags, {}, Content::secret);
}
int Seq_to_P12_SAFEBAGS(ASN1_UNIT *in, P12_SAFEBAGS **out) noexcept {
  return list_from_seq<P12_SAFEBAG>(F_SEQ_TO_P12_SAFEBAGS, in, out, decode_safe_bags);
}
int P12_SAFEBAG_to_Seq(const P12_SAFEBAG *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P12_SAFEBAG_TO_SEQ, in, out, encode, {}, Content::secret);
}
int Seq_to_P12_SAFEBAG(ASN1_UNIT *in, P12_SAFEBAG **out) noexcept {
  return from_seq(F_SEQ_TO_P12_SAFEBAG, in, out, decode);
}
int P12_BAGS_to_Seq(const P12_BAGS *in, ASN1_UNIT **out) noexcept { return to_seq(F_P12_BAGS_TO_SEQ, in, out, encode); }
int Seq_to_P12_BAGS(ASN1_UNIT *in, P12_BAGS **out) noexcept { return from_seq(F_SEQ_TO_P12_BAGS, in, out, decode); }
