/* velpki/ber.h: BER encoders, decoders and navigators of single values (X.690), and the named string and time types.
 *
 * Encoders fill an empty unit and return 0, or their function code with ERR_INVALID_ENCODE_INPUT and the unit cleaned.
 * Decoders return a new value that the caller releases, or null; they do not look at the identifier octet, which is the
 * navigators' work. BER and DER are decoded alike. Conventions: docs/conventions.md. */
#ifndef VELPKI_BER_H
#define VELPKI_BER_H

#include <velpki/asn1.h>

VELPKI_BEGIN

/* Encoders of one value. */

/* `tag` is written unchanged as the identifier octet. `length` is the content length that the caller states: for an OID
 * the length of its text, for a BIT STRING the data octets without the unused-bits octet; a length above the value's
 * own is refused, one below writes that many octets. `form` is 0 (one length octet, below 128) or 1 (80 + n and n
 * octets). */
VELPKI_API int encodeToBERBoolean(ASN1_UNIT *out, unsigned char tag, unsigned char *value, int length,
                                  int form) VELPKI_NOEXCEPT;
/* encodeToBERInteger writes the magnitude right-aligned in `length` octets, which must hold it. */
VELPKI_API int encodeToBERInteger(ASN1_UNIT *out, unsigned char tag, BIGINT *value, int length,
                                  int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERBitString(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                    int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERNull(ASN1_UNIT *out, unsigned char tag, void *value, int length, int form) VELPKI_NOEXCEPT;
/* encodeToBERObjectIdentifier encodes dotted text. @warning An empty piece inside reads as 0, a final empty piece is no
 * arc, the first two arcs are not checked against 0-2 and 0-39, and an arc above 2147483647 is refused:
 * encodeToBERObjectIdentifier_RFC5280 takes arcs of any size and checks them. */
VELPKI_API int encodeToBERObjectIdentifier(ASN1_UNIT *out, unsigned char tag, OBJECT_IDENTIFIER *value, int length,
                                           int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERObjectIdentifier_RFC5280(ASN1_UNIT *out, unsigned char tag, const OBJECT_IDENTIFIER *value,
                                                   int length, int form) VELPKI_NOEXCEPT;
/* The two time encoders share one code, F_ENCODE_TO_BER_TIME. */
VELPKI_API int encodeToBERUTCTime(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                  int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERGENERALIZEDTime(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                          int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERASN1String(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                     int form) VELPKI_NOEXCEPT;

/* encodeToBER chooses the encoder by `type` & 31 and writes the whole `type` as identifier. The kind of value follows
 * the type: 1 one octet, 2 and 10 BIGINT, 3 4 12 19 20 22 23 24 30 ASN1_STRING, 5 ignored, 6 OBJECT_IDENTIFIER, 32 an
 * ASN1_STRING encoded as its own type (an INTEGER string holds a big-endian magnitude). VisibleString and every other
 * number have no encoder. */
VELPKI_API int encodeToBER(ASN1_UNIT *out, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/* encodeToBER_CS gives the result the identifier 80 + n (IMPLICIT, primitive); n is 0 to 30. */
VELPKI_API int encodeToBER_CS(ASN1_UNIT *out, int n, int type, void *value, int length, int form) VELPKI_NOEXCEPT;

/* Constructed values. */

/* addToBERSequence appends a child to `seq`, which starts empty and always has a definite length afterwards. For types
 * 16, 17, 48, 49 and 33 the value is an encoded ASN1_UNIT and `length` and `form` mean nothing. A unit passed as 16,
 * 17, 48 or 49 stays the caller's; passed as TYPE_ASN1_UNIT it is taken over and released, on success only. On failure
 * `seq` is cleaned. */
VELPKI_API int addToBERSequence(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/* addToBERSequenceOf and addToBERSetOf with a non-constructed type and length 0 make an empty list.
 * @warning The empty list has the primitive identifier 10 (11 for a SET), which standard decoders refuse, and children
 * that `seq` had are dropped. A later append keeps the identifier. Elements of a SET OF are not sorted. See der.h for
 * the strict siblings. */
VELPKI_API int addToBERSequenceOf(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
VELPKI_API int addToBERSet(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
VELPKI_API int addToBERSetOf(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/* addToBERSequence_CS appends and gives `seq` the identifier A0 + n (EXPLICIT, constructed); n is 0 to 30. */
VELPKI_API int addToBERSequence_CS(ASN1_UNIT *seq, int n, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/* addToBERStringSequence appends a segment to a constructed string (X.690 8.7.3); of a BIT STRING only the last segment
 * may have unused bits. */
VELPKI_API int addToBERStringSequence(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/* setBERLengthForm rewrites the length octets of a finished unit: form 0 short (refused from 128 on), 1 long, 2
 * indefinite (constructed units only). A refused unit is left as it was. */
VELPKI_API int setBERLengthForm(ASN1_UNIT *unit, int form) VELPKI_NOEXCEPT;
/* addPadToBERBitString ORs a text of exactly `unused_bits` characters "0" and "1" into the unused bits of the last
 * octet, the first character at the highest of them. */
VELPKI_API int addPadToBERBitString(ASN1_STRING *bit_string, const char *text) VELPKI_NOEXCEPT;

/* Decoders. */

/* Each takes a pointer to the identifier octet of one encoded value.
 * @warning They are given no length and believe the encoding's own: for octets of a stranger call the `_n` form, which
 * takes the octets available and never reads past them, or a navigator. */
VELPKI_API unsigned char *decodeToBERBoolean(const unsigned char *encoded) VELPKI_NOEXCEPT; /* one octet, as it is */
/* @warning Content is read as an unsigned magnitude: FF gives 255. decodeToBERInteger_strict refuses negative and
 * padded content. */
VELPKI_API BIGINT *decodeToBERInteger(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToBEREnumerated(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBitString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBEROctetString(const unsigned char *encoded) VELPKI_NOEXCEPT;
/* decodeToBERNull returns a block of four octets, released with PKV_Free, for any non-null input. */
VELPKI_API void *decodeToBERNull(const unsigned char *encoded) VELPKI_NOEXCEPT;
/* decodeToBERObjectIdentifier writes dotted text of at most 99 characters, arcs up to 2147483647; null beyond.
 * @warning A single subidentifier leaves a trailing dot: 51 gives "2.1.". decodeToBERObjectIdentifier_RFC5280 takes any
 * size and leaves no dot. */
VELPKI_API OBJECT_IDENTIFIER *decodeToBERObjectIdentifier(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERUTF8String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERPrintableString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERT61String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERIA5String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBMPString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERUTCTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERGENERALIZEDTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
/* decodeToBERSequence copies the whole encoding into a unit, whatever its type. */
VELPKI_API ASN1_UNIT *decodeToBERSequence(const unsigned char *encoded) VELPKI_NOEXCEPT;
/* decodeToBERASN1String reads any value as a string whose `type` is the identifier octet found. */
VELPKI_API ASN1_STRING *decodeToBERASN1String(const unsigned char *encoded) VELPKI_NOEXCEPT;

VELPKI_API unsigned char *decodeToBERBoolean_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToBERInteger_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToBERInteger_strict(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToBEREnumerated_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBitString_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBEROctetString_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API void *decodeToBERNull_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *decodeToBERObjectIdentifier_n(const unsigned char *encoded,
                                                            int available) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *decodeToBERObjectIdentifier_RFC5280(const unsigned char *encoded,
                                                                  int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERUTF8String_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERPrintableString_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERT61String_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERIA5String_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBMPString_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERUTCTime_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERGENERALIZEDTime_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_UNIT *decodeToBERSequence_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
/* decodeToBERSequence_strict measures indefinite lengths by X.690 alone and refuses them on primitives. */
VELPKI_API ASN1_UNIT *decodeToBERSequence_strict(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERASN1String_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;

/* Navigators. */

/* getBERChildAt returns the child at an index from 0 as a new value of the kind that `type` expects: 1 one octet
 * (PKV_Free), 2 and 10 BIGINT, 5 a placeholder (PKV_Free), 16 17 48 49 and 33 ASN1_UNIT, 6 OBJECT_IDENTIFIER, the
 * string and time types and 32 ASN1_STRING. Null when there is no such child or it has another type.
 * @warning A child of context-specific or private class is decoded as `type`, whatever its number; getBERChildAt_strict
 * takes the whole identifier octet that must stand there. */
VELPKI_API void *getBERChildAt(const ASN1_UNIT *unit, int index, int type) VELPKI_NOEXCEPT;
VELPKI_API void *getBERChildAt_strict(const ASN1_UNIT *unit, int index, int identifier, int type) VELPKI_NOEXCEPT;
/* getBERChildOffset walks: with 0 in `*cursor` it takes the child at `index`, with any other value the child after the
 * one that starts at that offset of the content. `*cursor` receives the offset of the child returned and is unchanged
 * on null. @warning After the first child the cursor is still 0, so the second call must pass index 1. */
VELPKI_API void *getBERChildOffset(const ASN1_UNIT *unit, int index, int type, int *cursor) VELPKI_NOEXCEPT;

/* normalize_BER rewrites one value of any BER into a new block, released with PKV_Free, and returns its octets: all
 * lengths definite and of the fewest octets, strings that are constructed of segments in one piece, everything else as
 * it was. What it makes of a value that is in that form already is that value. It takes time in proportion to the
 * octets. -1, with nothing stored, for null and exhausted memory, and for octets that are not exactly one value:
 * end-of-contents octets that are missing or stray, segments of another type, unused bits before the last segment,
 * nesting deeper than 64, octets left over. An implicitly tagged string that is constructed cannot be told from other
 * constructed values; its segments stay. */
VELPKI_API int normalize_BER(const unsigned char *octets, int length, unsigned char **out) VELPKI_NOEXCEPT;

/* printBERData writes one line to standard output: tag, length octets and content in hexadecimal. */
VELPKI_API void printBERData(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;

/* Named string and time types. */

/* new_OBJECT_IDENTIFIER takes dotted text: null for empty text, a dot first, last or twice, or any other character.
 * @warning Neither the number of arcs nor their size is checked. */
VELPKI_API OBJECT_IDENTIFIER *new_OBJECT_IDENTIFIER(const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_OBJECT_IDENTIFIER(OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API void clean_OBJECT_IDENTIFIER(OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;

/* new_T copies the octets into a value of the type; null for null data and negative lengths. Only PrintableString
 * (X.680 table 10), IA5String (00 to 7F) and the times (one of the four forms) check their content; a BMPString may
 * have an odd number of octets. clean_T leaves an empty value; free_T releases it. */
VELPKI_API BIT_STRING *new_BIT_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_BIT_STRING(BIT_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_BIT_STRING(BIT_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API OCTET_STRING *new_OCTET_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_OCTET_STRING(OCTET_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCTET_STRING(OCTET_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API UTF8_STRING *new_UTF8_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_UTF8_STRING(UTF8_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_UTF8_STRING(UTF8_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API PRINTABLE_STRING *new_PRINTABLE_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_PRINTABLE_STRING(PRINTABLE_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_PRINTABLE_STRING(PRINTABLE_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API T61_STRING *new_T61_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_T61_STRING(T61_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_T61_STRING(T61_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API IA5_STRING *new_IA5_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_IA5_STRING(IA5_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_IA5_STRING(IA5_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API BMP_STRING *new_BMP_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_BMP_STRING(BMP_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_BMP_STRING(BMP_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API UTC_TIME *new_UTC_TIME(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_UTC_TIME(UTC_TIME *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_UTC_TIME(UTC_TIME *value) VELPKI_NOEXCEPT;
VELPKI_API GENERALIZED_TIME *new_GENERALIZED_TIME(const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API void free_GENERALIZED_TIME(GENERALIZED_TIME *value) VELPKI_NOEXCEPT;
VELPKI_API void clean_GENERALIZED_TIME(GENERALIZED_TIME *value) VELPKI_NOEXCEPT;

/* hexToBIT_STRING reads hexadecimal digits of either case; an odd number leaves four unused bits. Null for any other
 * character and for none. */
VELPKI_API BIT_STRING *hexToBIT_STRING(const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API BIT_STRING *binaryToBIT_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT; /* = new_BIT_STRING */
/* copy_T replaces the content of `to` by that of `from`, which may be the same; `to`, or null with `to` unchanged. */
VELPKI_API UTC_TIME *copy_UTC_TIME(UTC_TIME *to, const UTC_TIME *from) VELPKI_NOEXCEPT;
VELPKI_API GENERALIZED_TIME *copy_GENERALIZED_TIME(GENERALIZED_TIME *to, const GENERALIZED_TIME *from) VELPKI_NOEXCEPT;
/* add_T shifts a time by seconds in place; form and offset of the text stay. Codes: F_ADD_UTC_TIME (F_ADD_TIME) with
 * reason 49 (null) or 2B (unreadable, or the result is out of range), the value then unchanged. */
VELPKI_API int add_UTC_TIME(UTC_TIME *time, long long seconds) VELPKI_NOEXCEPT;
VELPKI_API int add_GENERALIZED_TIME(GENERALIZED_TIME *time, long long seconds) VELPKI_NOEXCEPT;
/* cmp_T compares instants as cmp_ASN1_TIME does, with the same warning. */
VELPKI_API int cmp_UTC_TIME(const UTC_TIME *a, const UTC_TIME *b) VELPKI_NOEXCEPT;
VELPKI_API int cmp_GENERALIZED_TIME(const GENERALIZED_TIME *a, const GENERALIZED_TIME *b) VELPKI_NOEXCEPT;

VELPKI_END

#endif
