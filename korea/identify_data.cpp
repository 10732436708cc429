// KISA_IDENTIFY_DATA: the name of a certificate's holder and what identifies him beside it.
#include <velpki/asn1_error.h>

#include "asn1/internal/oid_codec.h"
#include "korea/internal/kisa.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<KISA_USER_INFO> = std::tuple(own(&KISA_USER_INFO::type),
                                                                own(&KISA_USER_INFO::value));
template <>
struct Flat<KISA_USER_INFO> {
  static void release(KISA_USER_INFO *info) noexcept { destroy(info); }
  static KISA_USER_INFO *copy(const KISA_USER_INFO *info) noexcept { return velpki::copy(info); }
};
template <>
inline constexpr auto owned_fields<KISA_IDENTIFY_DATA> =
    std::tuple(own(&KISA_IDENTIFY_DATA::realName), list_of<KISA_USER_INFO>(&KISA_IDENTIFY_DATA::userInfo));

namespace {

// AttributeTypeAndValue ::= SEQUENCE { type OBJECT IDENTIFIER, value ANY }
int decode_info(const Tlv &tlv, KISA_USER_INFO &out) noexcept {
  Cursor in(tlv);
  if (in.oid(out.type) && in.unit(out.value)) ends(in);
  return in.result(F_SEQ_TO_KISA_IDENTIFY_DATA);
}
int encode_info(const KISA_USER_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(info.type);
  out.unit(info.value);
  return out.result(F_KISA_IDENTIFY_DATA_TO_SEQ);
}

int decode_infos(const Tlv &tlv, STACK &infos) noexcept {
  return decode_list<KISA_USER_INFO>(tlv, infos, F_SEQ_TO_KISA_IDENTIFY_DATA, decode_info);
}

bool read_infos(Cursor &in, STACK *&out) noexcept {
  Tlv list;
  return in.next(TYPE_SEQUENCE, list) && in.made(out = new_STACK()) && in.pass(decode_infos(list, *out));
}

}  // namespace

// IdentifyData ::= SEQUENCE { realName UTF8String, userInfo SEQUENCE SIZE (1..MAX) OF AttributeTypeAndValue OPTIONAL }
int decode(const Tlv &tlv, KISA_IDENTIFY_DATA &out) noexcept {
  Cursor in(tlv);
  if (in.string(TYPE_UTF8_STRING, out.realName) && (in.at_end() || read_infos(in, out.userInfo))) ends(in);
  return in.result(F_SEQ_TO_KISA_IDENTIFY_DATA);
}
int encode(const KISA_IDENTIFY_DATA &data, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.octets_as(TYPE_UTF8_STRING, data.realName);
  if (data.userInfo && data.userInfo->count > 0) {
    const int code =
        encode_list<KISA_USER_INFO>(*data.userInfo, out, tag::kSequence, F_KISA_IDENTIFY_DATA_TO_SEQ, encode_info);
    if (code) return code;
  }
  return out.result(F_KISA_IDENTIFY_DATA_TO_SEQ);
}

namespace {

// Appends a user information, both parts of which change hands on success.
int add_info(KISA_IDENTIFY_DATA &data, owned<OBJECT_IDENTIFIER> type, owned<ASN1_UNIT> value) noexcept {
  owned<KISA_USER_INFO> info(blank<KISA_USER_INFO>());
  if (!info || !type || !value) return fail(kKisa, kNoMemory);
  info->type = type.release();
  info->value = value.release();
  if (!data.userInfo && !(data.userInfo = new_STACK())) return fail(kKisa, kNoMemory);
  return append(data.userInfo, info) ? 0 : fail(kKisa, kNoMemory);
}

int copy_oid(const char *dotted, owned<OBJECT_IDENTIFIER> &out) noexcept {
  DerWriter content;
  if (!write_oid_content_any_size(dotted, content)) return fail(kKisa, content.failed() ? kNoMemory : kBadValue);
  out.reset(new_OBJECT_IDENTIFIER(dotted, int(std::strlen(dotted))));
  return out ? 0 : fail(kKisa, kNoMemory);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(KISA_IDENTIFY_DATA)

int KISA_IDENTIFY_DATA_to_Seq(const KISA_IDENTIFY_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_KISA_IDENTIFY_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_KISA_IDENTIFY_DATA(ASN1_UNIT *in, KISA_IDENTIFY_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_KISA_IDENTIFY_DATA, in, out, decode);
}

int set_KISA_IDENTIFY_DATA_realName(KISA_IDENTIFY_DATA *data, const char *name, int length) noexcept {
  if (!data || !name) return fail(kKisa, kNullArgument);
  ASN1_STRING *fresh = new_string(TYPE_UTF8_STRING, measured(name, length));
  if (!fresh) return fail(kKisa, kNoMemory);
  free_ASN1_STRING(std::exchange(data->realName, fresh));
  return 0;
}

int add_KISA_IDENTIFY_DATA_userInfo(KISA_IDENTIFY_DATA *data, const char *oid, const ASN1_UNIT *value) noexcept {
  if (!data || !oid || !value) return fail(kKisa, kNullArgument);
  owned<OBJECT_IDENTIFIER> type;
  if (const int code = copy_oid(oid, type)) return code;
  return add_info(*data, std::move(type), owned<ASN1_UNIT>(dup_ASN1_UNIT_strict(value)));
}

int add_KISA_IDENTIFY_DATA_VID(KISA_IDENTIFY_DATA *data, const VID *vid) noexcept {
  if (!data || !vid) return fail(kKisa, kNullArgument);
  owned<OBJECT_IDENTIFIER> type;
  if (const int code = copy_oid(KISA_OID_VID, type)) return code;
  ASN1_UNIT *value = nullptr;
  if (const int code = VID_to_Seq(vid, &value)) return code;
  return add_info(*data, std::move(type), owned<ASN1_UNIT>(value));
}

ASN1_UNIT *get_KISA_IDENTIFY_DATA_userInfo(const KISA_IDENTIFY_DATA *data, const char *oid) noexcept {
  if (!data || !oid) return nullptr;
  for (const KISA_USER_INFO *info : elements<KISA_USER_INFO>(data->userInfo))
    if (info && has_oid(info->type, oid)) return info->value;
  return nullptr;
}
