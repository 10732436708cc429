/* velpki/utils.h: diagnostic printers, to standard output.
 *
 * Each writes what it prints in order, without a limit on the length; null or a length below 1 prints nothing. Octets
 * that a terminal would act on never go out as they are. */
#ifndef VELPKI_UTILS_H
#define VELPKI_UTILS_H

#include <velpki/asn1.h>

VELPKI_BEGIN

/* print_hex_no_nl writes pairs of hexadecimal digits joined by ":"; print_hex and print_hex_nl add a line feed. */
VELPKI_API void print_hex_no_nl(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void print_hex_nl(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void print_hex(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/* dump_hex writes 16 octets a line: offset, hexadecimal, and the text with "." for octets that are not printable. */
VELPKI_API void dump_hex(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/* print_PCHAR writes text with "." for control octets; dump_PCHAR adds a line feed. */
VELPKI_API void print_PCHAR(const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API void dump_PCHAR(const char *text, int length) VELPKI_NOEXCEPT;
/* print_ASN1STRING writes a string's text as print_PCHAR does and a line feed; dump_ASN1STRING its type, its length and
 * its octets as dump_hex does. */
VELPKI_API void print_ASN1STRING(const ASN1_STRING *string) VELPKI_NOEXCEPT;
VELPKI_API void dump_ASN1STRING(const ASN1_STRING *string) VELPKI_NOEXCEPT;

VELPKI_END

#endif
