/** @file velpki/pem.h
 * PEM text (RFC 7468): Base64 between a BEGIN and an END line.
 *
 * Results are as in base64.h: the length of a new block, or 0 with nothing stored. Records have readers and writers of
 * their own, which asn1_io.h describes; these functions are below them, and serve text with several blocks.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_PEM_H
#define VELPKI_PEM_H

#include <velpki/base64.h>

VELPKI_BEGIN

/** @name Encoding
 * @{ */
/** Puts the lines of a label around Base64 text, which it takes as it stands. The result ends in a line feed. */
VELPKI_API int base64ToPEM(const char *base64, int length, const char *label, int label_length,
                           char **out) VELPKI_NOEXCEPT;
/** Encodes octets, with the `mode` of encode_Base64 (1: lines of 64 characters), and puts the lines of a label around
 * them. The result ends in a line feed. */
VELPKI_API int encode_PEM(const unsigned char *data, int length, const char *label, int label_length, char **out,
                          int mode) VELPKI_NOEXCEPT;
/** @} */

/** @name Decoding
 * @{ */
/** Decodes what stands between the first run of five "-" after the fifth character and the next "-", by the rules of
 * decode_Base64. Labels are not looked at. Text below 20 characters and text that begins with "=" is refused.
 * @warning It expects the BEGIN line at the start: text before it, header lines and an empty body give nothing or,
 * with a length, wrong octets; only the first block is seen. decode_PEM_strict and decode_PEM_ex have none of this. */
VELPKI_API int decode_PEM(const char *text, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** Decodes text that is exactly one block: the BEGIN line first, strict Base64, an END line of the same label, and only
 * line ends after it. */
VELPKI_API int decode_PEM_strict(const char *text, int length, unsigned char **out) VELPKI_NOEXCEPT;
/** Decodes the next block of a text of any number of blocks with anything between them. `wanted` is the label of the
 * blocks to stop at, or null for any. Blanks inside the Base64 are skipped; header lines are refused.
 *
 * `*label` (lent, within `text`, not terminated) and `*label_length` receive the label of the block, null and 0 when
 * there is no further block; `*consumed` the characters up to the end of the block, so that the next search starts
 * there, also after a block that is refused. The three may be null. */
VELPKI_API int decode_PEM_ex(const char *text, int length, const char *wanted, const char **label, int *label_length,
                             int *consumed, unsigned char **out) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
