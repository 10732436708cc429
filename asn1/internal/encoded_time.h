// The texts of UTCTime and GeneralizedTime (X.680 46 and 47).
#pragma once

#include <velpki/asn1.h>

#include "asn1/internal/memory.h"

namespace velpki {

// What a text says, before its offset is applied.
struct TimeText {
  struct tm fields;  // each within its range; the day is not checked against the month
  int offset = 0;    // seconds east of UTC
  bool seconds = false, fraction = false, zulu = false;
};

// Reads YYMMDDHHMM[SS] (TYPE_UTC_TIME) or YYYYMMDDHHMM[SS][.digits] (TYPE_GENERALIZED_TIME) with Z, +hhmm or -hhmm.
bool read_time_text(int type, Octets text, TimeText &out) noexcept;

// Whether the text has one of the four forms of its type: with or without seconds, Z or an offset, no fraction.
bool is_time_text(int type, Octets text) noexcept;

// The instant of a text; false for null and for text that cannot be read.
bool instant_of_text(int type, const ASN1_STRING *time, int64_t &seconds) noexcept;
// The same for the form of RFC 5280 4.1.2.5 only.
bool instant_of_certificate_time(int type, const ASN1_STRING *time, int64_t &seconds) noexcept;

}  // namespace velpki
