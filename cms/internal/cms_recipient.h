// The kinds of recipient, whose codecs write and read the members inside the kind's own tag.
#pragma once

#include "cms/internal/cms.h"

namespace velpki {

int decode(const Tlv &tlv, KEY_TRANS_RECIPIENT_INFO &out) noexcept;
int encode_members(const KEY_TRANS_RECIPIENT_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, KEY_AGREE_RECIPIENT_INFO &out) noexcept;
int encode_members(const KEY_AGREE_RECIPIENT_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, KEK_RECIPIENT_INFO &out) noexcept;
int encode_members(const KEK_RECIPIENT_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, PASSWORD_RECIPIENT_INFO &out) noexcept;
int encode_members(const PASSWORD_RECIPIENT_INFO &info, DerWriter &out) noexcept;

bool read_key_identifier(MessageReader &in, RECIPIENT_KEY_IDENTIFIER *&out) noexcept;
int write_key_identifier(const RECIPIENT_KEY_IDENTIFIER *identifier, uint8_t outer, DerWriter &out) noexcept;

}  // namespace velpki
