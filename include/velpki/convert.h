/** @file velpki/convert.h
 * Text between CP949, UTF-8 and UCS-2.
 *
 * CP949 is KS X 1001 with the Unified Hangul Code extension. UCS-2 is big-endian, two octets a character, as a
 * BMPString holds it. Each function stores a new block at `*out`, released with PKV_Free and followed by two zero
 * octets that do not count, and returns the octets written; -1, with nothing stored, for null, for input that cannot
 * be converted (never a substitute character), and for exhausted memory. Lengths are octets; -1 measures
 * NUL-terminated text (not for UCS-2).
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_CONVERT_H
#define VELPKI_CONVERT_H

#include <velpki/api.h>

VELPKI_BEGIN

/** The KS X 1001 plane: leads A1 to FD, trails A1 to FE, the UCS-2 character of each, 0000 where there is none. The
 * other 8,822 hangul syllables of CP949 (leads 81 to C6) are those that this table lacks, in order of their code
 * points. */
VELPKI_API extern const unsigned char cp949Table[17484];

/** @name CP949
 * @{ */
/** Converts CP949 to UCS-2. Octets below 80 are ASCII; a lead without a trail, or a pair that is no character, is
 * refused. */
VELPKI_API int cp949ToUnicode(const char *in, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** Converts UCS-2 to CP949; characters that CP949 lacks, and an odd octet at the end, are refused. */
VELPKI_API int unicodeToCP949(const unsigned char *in, int length, char **out) VELPKI_NOEXCEPT;
/** Converts CP949 to UTF-8, as cp949ToUnicode reads it. */
VELPKI_API int cp949ToUTF8(const char *in, int length, char **out) VELPKI_NOEXCEPT;
/** @} */

/** @name UTF-8
 * @{ */
/** Converts UTF-8 to UCS-2; what is no UTF-8 (RFC 3629) and characters above U+FFFF are refused. */
VELPKI_API int utf8ToUnicode(const char *in, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** Converts UCS-2 to UTF-8; surrogates and an odd octet at the end are refused. */
VELPKI_API int unicodeToUTF8(const unsigned char *in, int length, char **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Widened octets
 * @{ */
/** Widens octets: each becomes a character of its value.
 * @warning This does not convert: text that is not Latin-1 comes out as other text. Use utf8ToUnicode or
 * cp949ToUnicode. */
VELPKI_API int ascTouni(const char *in, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** Makes each character one octet, dropping one final 0000; characters above 00FF are refused. */
VELPKI_API int uniToasc(const unsigned char *in, int length, char **out) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
