// ISSUER_AND_SERIAL_NUMBER from the inside.
#pragma once

#include <velpki/issuer_and_serial_number.h>

#include "x509/internal/x509.h"

namespace velpki {

VELPKI_FLAT_WITHOUT_DUP(ISSUER_AND_SERIAL_NUMBER)

int decode(const Tlv &tlv, ISSUER_AND_SERIAL_NUMBER &out) noexcept;
int encode(const ISSUER_AND_SERIAL_NUMBER &record, DerWriter &out) noexcept;

}  // namespace velpki
