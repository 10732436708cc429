// GENERAL_NAME, the CHOICE of nine kinds of name, and its list.
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

// What a choice holds, and how it is written: `house` and `standard` are the identifiers, `wraps` says that house form
// puts a whole inner value under it where the standard has the value's content.
enum class Holds { other, string, unit, name, party };
struct Choice {
  Holds holds;
  int string_type;
  uint8_t house;
  bool wraps;
  uint8_t standard;
};
// clang-format off
constexpr Choice kChoices[] = {
    {Holds::other,  0,                      0xA0, true,  0xA0},
    {Holds::string, TYPE_IA5_STRING,        0x81, false, 0x81},
    {Holds::string, TYPE_IA5_STRING,        0xA2, true,  0x82},
    {Holds::unit,   0,                      0xA3, true,  0xA3},
    {Holds::name,   0,                      0xA4, true,  0xA4},
    {Holds::party,  0,                      0xA0, true,  0xA5},
    {Holds::string, TYPE_IA5_STRING,        0x86, false, 0x86},
    {Holds::string, TYPE_OCTET_STRING,      0xA7, true,  0x87},
    {Holds::string, TYPE_OBJECT_IDENTIFIER, 0xA8, true,  0x88},
};
// clang-format on

const Choice *choice_of(int type) noexcept {
  return type >= 0 && size_t(type) < std::size(kChoices) ? &kChoices[type] : nullptr;
}

void release_value(Holds holds, void *value) noexcept {
  switch (holds) {
    case Holds::other:
      return free_OTHERNAME(static_cast<OTHERNAME *>(value));
    case Holds::string:
      return free_ASN1_STRING(static_cast<ASN1_STRING *>(value));
    case Holds::unit:
      return free_ASN1_UNIT(static_cast<ASN1_UNIT *>(value));
    case Holds::name:
      return free_X509_NAME(static_cast<X509_NAME *>(value));
    case Holds::party:
      return free_EDIPARTYNAME(static_cast<EDIPARTYNAME *>(value));
  }
}

void *copy_value(Holds holds, const void *value) noexcept {
  switch (holds) {
    case Holds::other:
      return dup_OTHERNAME(static_cast<const OTHERNAME *>(value));
    case Holds::string:
      return dup_ASN1_STRING(static_cast<const ASN1_STRING *>(value));
    case Holds::unit:
      return dup_ASN1_UNIT_strict(static_cast<const ASN1_UNIT *>(value));
    case Holds::name:
      return dup_X509_NAME(static_cast<const X509_NAME *>(value));
    case Holds::party:
      return dup_EDIPARTYNAME(static_cast<const EDIPARTYNAME *>(value));
  }
  return nullptr;
}

}  // namespace

// Reading a name.

namespace {

template <class R>
bool read_held(Cursor &in, const Tlv &tlv, void *&out, int (*decode)(const Tlv &, R &) noexcept) noexcept {
  owned<R> record(blank<R>());
  if (!in.made(record.get()) || !in.pass(decode(tlv, *record))) return false;
  out = record.release();
  return true;
}

// The SEQUENCE inside the wrapper of house form, or, without that wrapper, the element itself.
bool inner_sequence(const Tlv &tlv, Tlv &out) noexcept {
  Cursor in(tlv);
  return in.next(out) && out.identifier == tag::kSequence && in.at_end();
}

bool read_other(Cursor &in, const Tlv &tlv, void *&out) noexcept {
  Tlv inner;
  const bool wrapped = !in.rules().standard && inner_sequence(tlv, inner);
  return read_held<OTHERNAME>(in, wrapped ? inner : tlv, out, decode);
}

// House form takes the first length octet of rfc822Name and dNSName for their length.
Octets house_content(int type, const Tlv &tlv) noexcept {
  if (type != GENERAL_NAME_RFC822 && type != GENERAL_NAME_DNS) return tlv.content;
  return tlv.content.first(std::min(size_t(tlv.header[0]), tlv.content.size()));
}

bool read_text(Cursor &in, int type, const Tlv &tlv, void *&out) noexcept {
  Tlv value = tlv;
  if (!in.rules().standard) value.content = house_content(type, tlv);
  ASN1_STRING *string = nullptr;
  const int string_type = kChoices[type].string_type;
  const bool read = string_type == TYPE_OBJECT_IDENTIFIER ? in.oid_content(value, string)
                                                          : in.keep(read_string(value, string_type, string));
  out = string;
  return read;
}

// x400Address: house form keeps the value inside; standard form keeps the ORAddress, as the SEQUENCE that it is.
bool read_x400(Cursor &in, const Tlv &tlv, void *&out) noexcept {
  Tlv value = tlv;
  value.identifier = tag::kSequence;
  Cursor wrapper(tlv);
  if (!in.rules().standard && !wrapper.next(value)) return in.absorb(wrapper);
  ASN1_UNIT *unit = nullptr;
  if (!in.keep(read_unit(value, unit))) return false;
  out = unit;
  return true;
}

bool read_directory(Cursor &in, const Tlv &tlv, void *&out) noexcept {
  Cursor wrapper(tlv);
  Tlv name;
  if (!wrapper.next(TYPE_SEQUENCE, name)) return in.absorb(wrapper);
  if (in.rules().standard && !wrapper.at_end()) return in.stop(Read::malformed);
  STACK *list = new_STACK();
  out = list;
  return in.made(list) && in.pass(decode_name(name, *list));
}

bool read_party_name(Cursor &in, const Tlv &tlv, void *&out) noexcept {
  if (in.rules().standard) return read_held<EDIPARTYNAME>(in, tlv, out, decode);
  Cursor wrapper(tlv);
  Tlv inner;
  if (!wrapper.next(TYPE_SEQUENCE, inner)) return in.absorb(wrapper);
  return read_held<EDIPARTYNAME>(in, inner, out, decode);
}

bool read_value(Cursor &in, const Tlv &tlv, GENERAL_NAME &out) noexcept {
  switch (kChoices[out.type].holds) {
    case Holds::other:
      return read_other(in, tlv, out.value);
    case Holds::string:
      return read_text(in, out.type, tlv, out.value);
    case Holds::unit:
      return read_x400(in, tlv, out.value);
    case Holds::name:
      return read_directory(in, tlv, out.value);
    case Holds::party:
      return read_party_name(in, tlv, out.value);
  }
  return false;
}

}  // namespace

// GeneralName ::= CHOICE { otherName [0] OtherName, rfc822Name [1] IA5String, dNSName [2] IA5String, x400Address [3]
//   ORAddress, directoryName [4] Name, ediPartyName [5] EDIPartyName, uniformResourceIdentifier [6] IA5String,
//   iPAddress [7] OCTET STRING, registeredID [8] OBJECT IDENTIFIER }
int decode(const Tlv &tlv, GENERAL_NAME &out) noexcept {
  Cursor in(tlv);
  const Choice *choice = choice_of(tlv.number());
  if (tlv.rules.standard && (!choice || tlv.identifier != choice->standard)) in.stop(Read::malformed);
  if (choice && in.reason() == Read::ok) {
    out.type = tlv.number();
    read_value(in, tlv, out);
  }
  return in.result(F_SEQ_TO_GENERAL_NAME);
}

// Writing a name.

namespace {

int write_string(const Choice &choice, const ASN1_STRING &string, DerWriter &out) noexcept {
  const bool standard = out.rules().standard;
  const size_t start = out.size();
  const auto write = [&] {
    if (choice.string_type == TYPE_OBJECT_IDENTIFIER)
      out.oid(&string);
    else
      out.octets_as(uint8_t(choice.string_type), &string);
  };
  if (!standard && choice.wraps) {
    const auto wrapper = out.constructed(choice.house);
    write();
  } else {
    write();
    out.retag(start, standard ? choice.standard : choice.house);
  }
  return 0;
}

int write_x400(const ASN1_UNIT &unit, DerWriter &out) noexcept {
  const size_t start = out.size();
  if (out.rules().standard) {
    out.unit(&unit);
    out.retag(start, kChoices[GENERAL_NAME_X400].standard);
    return 0;
  }
  const auto wrapper = out.constructed(kChoices[GENERAL_NAME_X400].house);
  out.unit(&unit);
  return 0;
}

// OTHERNAME and EDIPARTYNAME: the standard tags them implicitly.
template <class R>
int write_sequence(const Choice &choice, const R &record, DerWriter &out) noexcept {
  if (out.rules().standard) return encode_as(choice.standard, record, out);
  const auto wrapper = out.constructed(choice.house);
  return encode(record, out);
}

int write_value(const Choice &choice, const void *value, DerWriter &out) noexcept {
  switch (choice.holds) {
    case Holds::other:
      return write_sequence(choice, *static_cast<const OTHERNAME *>(value), out);
    case Holds::string:
      return write_string(choice, *static_cast<const ASN1_STRING *>(value), out);
    case Holds::unit:
      return write_x400(*static_cast<const ASN1_UNIT *>(value), out);
    case Holds::name: {
      const auto wrapper = out.constructed(choice.standard);
      return encode_name(*static_cast<const X509_NAME *>(value), out);
    }
    case Holds::party:
      return write_sequence(choice, *static_cast<const EDIPARTYNAME *>(value), out);
  }
  return 0;
}

}  // namespace

int encode(const GENERAL_NAME &name, DerWriter &out) noexcept {
  const Choice *choice = choice_of(name.type);
  if (!choice || !name.value) return fail(F_GENERAL_NAME_TO_SEQ, ERR_ASN1_ENCODING);
  if (const int code = write_value(*choice, name.value, out)) return code;
  return out.result(F_GENERAL_NAME_TO_SEQ);
}

// GeneralNames ::= SEQUENCE SIZE (1..MAX) OF GeneralName
int decode_general_names(const Tlv &tlv, STACK &names) noexcept {
  return decode_elements<GENERAL_NAME>(tlv, names, F_SEQ_TO_GENERAL_NAMES, decode, kAnyType);
}
int encode_general_names(const STACK &names, DerWriter &out, uint8_t identifier) noexcept {
  return encode_elements<GENERAL_NAME>(names, out, F_GENERAL_NAMES_TO_SEQ, encode, identifier);
}

namespace {

int encode_names(const STACK &names, DerWriter &out) noexcept { return encode_general_names(names, out); }

}  // namespace

}  // namespace velpki

using namespace velpki;

GENERAL_NAME *new_GENERAL_NAME(void) noexcept { return allocate_record<GENERAL_NAME>(); }

void free_GENERAL_NAME(GENERAL_NAME *p) noexcept {
  if (!p) return;
  if (const Choice *choice = choice_of(p->type); choice && p->value) release_value(choice->holds, p->value);
  release(p);
}

GENERAL_NAME *dup_GENERAL_NAME(const GENERAL_NAME *p) noexcept {
  owned<GENERAL_NAME> fresh(p ? new_GENERAL_NAME() : nullptr);
  if (!fresh) return nullptr;
  fresh->type = p->type;
  const Choice *choice = choice_of(p->type);
  if (!choice || !p->value) return fresh.release();
  fresh->value = copy_value(choice->holds, p->value);
  return fresh->value ? fresh.release() : nullptr;
}

int GENERAL_NAME_to_Seq(const GENERAL_NAME *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_GENERAL_NAME_TO_SEQ, in, out, encode);
}
int Seq_to_GENERAL_NAME(ASN1_UNIT *in, GENERAL_NAME **out) noexcept {
  return from_seq(F_SEQ_TO_GENERAL_NAME, in, out, decode);
}
int GENERAL_NAME_to_Seq_RFC5280(const GENERAL_NAME *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_GENERAL_NAME_TO_SEQ, in, out, encode, kStandardRules);
}
int Seq_to_GENERAL_NAME_RFC5280(ASN1_UNIT *in, GENERAL_NAME **out) noexcept {
  return from_seq(F_SEQ_TO_GENERAL_NAME, in, out, decode, kStandardRules);
}

VELPKI_LIST_WITH_DUP(GENERAL_NAMES, GENERAL_NAME)
VELPKI_EXTENSION_LIST(GENERAL_NAMES, GENERAL_NAME, decode_general_names, encode_names)
