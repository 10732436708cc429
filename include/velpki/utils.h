/** @file velpki/utils.h
 * Diagnostic printers, to standard output.
 *
 * Each writes what it prints in order, without a limit on the length; null or a length below 1 prints nothing. Octets
 * that a terminal would act on never go out as they are. Printers of records (print_X509 ...) are in the records'
 * headers. */
#ifndef VELPKI_UTILS_H
#define VELPKI_UTILS_H

#include <velpki/asn1.h>

VELPKI_BEGIN

/** @name Octets
 * @{ */
/** Writes pairs of hexadecimal digits joined by ":". */
VELPKI_API void print_hex_no_nl(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Writes pairs of hexadecimal digits joined by ":", and a line feed. */
VELPKI_API void print_hex_nl(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Does what print_hex_nl does. */
VELPKI_API void print_hex(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Writes 16 octets a line: offset, hexadecimal, and the text with "." for octets that are not printable. */
VELPKI_API void dump_hex(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Text
 * @{ */
/** Writes text with "." for control octets. */
VELPKI_API void print_PCHAR(const char *text, int length) VELPKI_NOEXCEPT;
/** Writes text as print_PCHAR does, and a line feed. */
VELPKI_API void dump_PCHAR(const char *text, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Strings
 * @{ */
/** Writes a string's text as print_PCHAR does, and a line feed. */
VELPKI_API void print_ASN1STRING(const ASN1_STRING *string) VELPKI_NOEXCEPT;
/** Writes a string's type, its length, and its octets as dump_hex does. */
VELPKI_API void dump_ASN1STRING(const ASN1_STRING *string) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
