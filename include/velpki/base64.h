/** @file velpki/base64.h
 * Base64 (RFC 4648 section 4) with line feeds.
 *
 * Text and octets come in a new block, one octet longer than the length returned and ended by a zero octet, which is
 * released with PKV_Free. The functions return the length, or 0, with nothing stored, for null or empty input, a
 * result above INT_MAX, exhausted memory and what each refuses.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_BASE64_H
#define VELPKI_BASE64_H

#include <velpki/api.h>

VELPKI_BEGIN

/** @name Encoding
 * @{ */
/** Writes lines of 64 characters with a line feed between them when `mode` is 1, else one line. There is no line feed
 * at the end. */
VELPKI_API int encode_Base64(const unsigned char *data, int length, char **text, int mode) VELPKI_NOEXCEPT;
/** Writes lines of `line_length` characters, at least 1, with a line feed between them and none at the end. */
VELPKI_API int encode_Base64_Line(const unsigned char *data, int length, char **text, int line_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Decoding
 * @{ */
/** Reads text, skipping line feeds. It refuses a carriage return that no line feed follows, a third "=", a character of
 * the alphabet after "=", and a number of characters that is no multiple of four.
 * @warning Any other character, a space too, is not refused: it counts as a character of value 255 and corrupts the
 * octets of its group. Use decode_Base64_strict for text of a stranger. */
VELPKI_API int decode_Base64(const char *text, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** Reads text that has no other characters than the alphabet and line ends, and no bits left over that are not zero
 * (RFC 4648 3.5), so that octets have one text but for its lines. */
VELPKI_API int decode_Base64_strict(const char *text, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
