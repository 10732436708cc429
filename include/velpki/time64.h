/** @file velpki/time64.h
 * Calendar functions in 64 bits, for years before 1970 and after 2038 on every machine.
 *
 * They are named after those of C (ISO C 7.27) and POSIX, and take every second whose year fits `tm_year`: years
 * -2147481748 to 2147485547 of the proleptic Gregorian calendar. Beyond that, and for fields that no text can be made
 * of, they return null or -1 with errno EOVERFLOW; for null, EINVAL. Buffers are the caller's.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_TIME64_H
#define VELPKI_TIME64_H

#include <time.h>

#include <velpki/api.h>

VELPKI_BEGIN

/** @name Fields to seconds
 * @{ */
/** Returns the seconds since 1970-01-01 00:00:00 UTC of fields read as UTC. Fields out of their range carry over, and
 * the offset field is not used.
 * @warning -1 is an instant too, 1969-12-31 23:59:59: set errno to 0 before the call to tell it from failure. */
VELPKI_API long long timegm64(const struct tm *fields) VELPKI_NOEXCEPT;
/** Reads the fields as local time, as mktime does: it normalises them and obeys `tm_isdst`.
 * @warning -1 is an instant too, 1969-12-31 23:59:59 UTC: set errno to 0 before the call to tell it from failure. */
VELPKI_API long long mktime64(struct tm *fields) VELPKI_NOEXCEPT;
/** @} */

/** @name Seconds to fields
 * @{ */
/** Writes the fields of an instant, in seconds since 1970-01-01 00:00:00 UTC, in UTC and returns `out`. */
VELPKI_API struct tm *gmtime64(const long long *seconds, struct tm *out) VELPKI_NOEXCEPT;
/** Writes the fields in the machine's zone and returns `out`. Outside 1971 to 2037 the zone's rules of a year from 2010
 * to 2037 with the same calendar are taken. */
VELPKI_API struct tm *localtime64(const long long *seconds, struct tm *out) VELPKI_NOEXCEPT;
/** @} */

/** @name Text
 * @{ */
/** Writes "Thu Jan  1 00:00:00 1970" and a line feed into at least 36 octets and returns them. Seconds may be 60. */
VELPKI_API char *asctime64(const struct tm *fields, char *out) VELPKI_NOEXCEPT;
/** Writes the text of an instant in local time, as asctime64 does. */
VELPKI_API char *ctime64_r(const long long *seconds, char *out) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
