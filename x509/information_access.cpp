// Authority and subject information access (RFC 5280 4.2.2).
#include <velpki/asn1_error.h>

#include "x509/internal/x509v3.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<ACCESS_DESCRIPTION> = std::tuple(own(&ACCESS_DESCRIPTION::accessMethod),
                                                                    own(&ACCESS_DESCRIPTION::accessLocation));

namespace {

// AccessDescription ::= SEQUENCE { accessMethod OBJECT IDENTIFIER, accessLocation GeneralName }
int decode(const Tlv &tlv, ACCESS_DESCRIPTION &out) noexcept {
  Cursor in(tlv);
  Tlv location;
  if (in.oid(out.accessMethod) && in.next(location) && in.made(out.accessLocation = new_GENERAL_NAME())) {
    in.pass(decode(location, *out.accessLocation));
    in.finish();
  }
  return in.result(F_SEQ_TO_ACCESS_DESCRIPTION);
}

int encode(const ACCESS_DESCRIPTION &description, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid(description.accessMethod);
  if (!description.accessLocation) out.refuse();
  if (out.failed()) return out.result(F_ACCESS_DESCRIPTION_TO_SEQ);
  if (const int code = encode(*description.accessLocation, out)) return code;
  return out.result(F_ACCESS_DESCRIPTION_TO_SEQ);
}

}  // namespace

// AuthorityInfoAccessSyntax ::= SEQUENCE SIZE (1..MAX) OF AccessDescription
int decode_access(const Tlv &tlv, STACK &descriptions) noexcept {
  return decode_elements<ACCESS_DESCRIPTION>(tlv, descriptions, F_SEQ_TO_AUTHORITY_INFO_ACCESS, decode);
}

namespace {

int encode_access(const STACK &descriptions, DerWriter &out) noexcept {
  return encode_elements<ACCESS_DESCRIPTION>(descriptions, out, F_AUTHORITY_INFO_ACCESS_TO_SEQ, encode);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(ACCESS_DESCRIPTION)
VELPKI_EXTENSION_VALUE(ACCESS_DESCRIPTION)
VELPKI_LIST(AUTHORITY_INFO_ACCESS, ACCESS_DESCRIPTION)
VELPKI_EXTENSION_LIST(AUTHORITY_INFO_ACCESS, ACCESS_DESCRIPTION, decode_access, encode_access)
