/** @file velpki/ber.h
 * BER encoders, decoders and navigators of single values (X.690), and the named string and time types.
 *
 * Records have encoders and decoders of their own (X_to_Seq, Seq_to_X); these functions are what is left when there is
 * no record for a value. Read asn1.h first. Encoders fill an empty unit and return 0, or their function code with
 * ERR_INVALID_ENCODE_INPUT and the unit cleaned. Decoders return a new value that the caller releases, or null; they
 * do not look at the identifier octet, which is the navigators' work. BER and DER are decoded alike.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_BER_H
#define VELPKI_BER_H

#include <velpki/asn1.h>

VELPKI_BEGIN

/** @name Encoders of one value
 * @{ */
/** Encodes a value of the kind that the function names. `tag` is written unchanged as the identifier octet. `length` is
 * the content length in octets that the caller states: for an OID the length of its text, for a BIT STRING the data
 * octets without the unused-bits octet, for a NULL 0; a length above the value's own is refused, one below writes that
 * many octets. `form` is 0 (one length octet, below 128) or 1 (80 + n and n octets). Code: the function's own
 * (F_ENCODE_TO_BER_BOOLEAN ...) with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToBERBoolean(ASN1_UNIT *out, unsigned char tag, unsigned char *value, int length,
                                  int form) VELPKI_NOEXCEPT;
/** Writes the magnitude of a number right-aligned in `length` octets, which must hold it. A magnitude whose first bit
 * is set needs an octet more, or it reads as negative. The rest is as for encodeToBERBoolean. */
VELPKI_API int encodeToBERInteger(ASN1_UNIT *out, unsigned char tag, BIGINT *value, int length,
                                  int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERBitString(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                    int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERNull(ASN1_UNIT *out, unsigned char tag, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Encodes dotted text. The rest is as for encodeToBERBoolean.
 * @warning An empty piece inside reads as 0, a final empty piece is no arc, the first two arcs are not checked against
 * 0 to 2 and 0 to 39, and an arc above 2147483647 is refused: encodeToBERObjectIdentifier_RFC5280 takes arcs of any
 * size and checks them. */
VELPKI_API int encodeToBERObjectIdentifier(ASN1_UNIT *out, unsigned char tag, OBJECT_IDENTIFIER *value, int length,
                                           int form) VELPKI_NOEXCEPT;
/** Encodes dotted text with arcs of up to 20,000 digits (X.690 8.19); text with impossible first arcs or an empty piece
 * that is not the last one is refused. The code is that of encodeToBERObjectIdentifier. */
VELPKI_API int encodeToBERObjectIdentifier_RFC5280(ASN1_UNIT *out, unsigned char tag, const OBJECT_IDENTIFIER *value,
                                                   int length, int form) VELPKI_NOEXCEPT;
/** Writes the text of a time as it is. Code: F_ENCODE_TO_BER_TIME, which both time encoders have, with
 * ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToBERUTCTime(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                  int form) VELPKI_NOEXCEPT;
/** Writes the text of a time as it is. Code: F_ENCODE_TO_BER_TIME with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToBERGENERALIZEDTime(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                          int form) VELPKI_NOEXCEPT;
VELPKI_API int encodeToBERASN1String(ASN1_UNIT *out, unsigned char tag, ASN1_STRING *value, int length,
                                     int form) VELPKI_NOEXCEPT;
/** @} */

/** @name Encoders by type
 * @{ */
/** Chooses the encoder by `type` & 31 and writes the whole `type` as identifier. The kind of value follows the type: 1
 * one octet; 2 and 10 BIGINT; 3, 4, 12, 19, 20, 22, 23, 24 and 30 ASN1_STRING; 5 ignored; 6 OBJECT_IDENTIFIER; 32 an
 * ASN1_STRING encoded as its own type (an INTEGER string holds a big-endian magnitude). VisibleString and every other
 * number have no encoder. Code: F_ENCODE_TO_BER with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToBER(ASN1_UNIT *out, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Does what encodeToBER does and gives the result the identifier 80 + n (IMPLICIT, primitive); n is 0 to 30. Code:
 * F_ENCODE_TO_BER_CS with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToBER_CS(ASN1_UNIT *out, int n, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** @} */

/** @name Constructed values
 * @{ */
/** Appends a child to `seq`, which starts empty and always has a definite length afterwards. For types 16, 17, 48, 49
 * and 33 the value is an encoded ASN1_UNIT and `length` and `form` mean nothing. A unit passed as 16, 17, 48 or 49
 * stays the caller's; passed as TYPE_ASN1_UNIT it is taken over and released, on success only. On failure `seq` is
 * cleaned. Code: F_ADD_TO_BER_SEQUENCE with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int addToBERSequence(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Does what addToBERSequence does; a type that is not constructed, with length 0, makes an empty list. Code:
 * F_ADD_TO_BER_SEQUENCE_OF with ERR_INVALID_ENCODE_INPUT.
 * @warning The empty list has the primitive identifier 10, which standard decoders refuse, and children that `seq` had
 * are dropped. A later append keeps the identifier. addToDERSequenceOf_strict writes 30 00. */
VELPKI_API int addToBERSequenceOf(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Does what addToBERSequence does, and gives `seq` the identifier of a SET. The order of the calls stays. Code:
 * F_ADD_TO_BER_SET with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int addToBERSet(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Does what addToBERSequenceOf does, and gives `seq` the identifier of a SET. Code: F_ADD_TO_BER_SET_OF with
 * ERR_INVALID_ENCODE_INPUT.
 * @warning The empty list has the primitive identifier 11, and elements are not sorted. addToDERSetOf_strict writes 31
 * 00 and sorts. */
VELPKI_API int addToBERSetOf(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Does what addToBERSequence does, and gives `seq` the identifier A0 + n (EXPLICIT, constructed); n is 0 to 30. Code:
 * F_ADD_TO_BER_SEQUENCE_CS with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int addToBERSequence_CS(ASN1_UNIT *seq, int n, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** Appends a segment to a constructed string (X.690 8.7.3); of a BIT STRING only the last segment may have unused bits.
 * Code: F_ADD_TO_BER_STRING_SEQUENCE with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int addToBERStringSequence(ASN1_UNIT *seq, int type, void *value, int length, int form) VELPKI_NOEXCEPT;
/** @} */

/** @name Changing finished values
 * @{ */
/** Rewrites the length octets of a finished unit: form 0 short (refused from 128 on), 1 long, 2 indefinite (constructed
 * units only). Code: F_SET_BER_LENGTH_FORM with ERR_INVALID_ENCODE_INPUT; the unit is then as it was. */
VELPKI_API int setBERLengthForm(ASN1_UNIT *unit, int form) VELPKI_NOEXCEPT;
/** ORs a text of exactly `unused_bits` characters "0" and "1" into the unused bits of the last octet, the first
 * character at the highest of them. Code: F_ADD_PAD_TO_BER_BIT_STRING with ERR_INVALID_ENCODE_INPUT; the string is
 * then as it was. */
VELPKI_API int addPadToBERBitString(ASN1_STRING *bit_string, const char *text) VELPKI_NOEXCEPT;
/** @} */

/** @name Decoders at a pointer
 * @{ */
/** Each decoder takes a pointer to the identifier octet of one encoded value and returns a new value of the kind that
 * it names, or null: a BOOLEAN as the one octet found, released with PKV_Free; a BIT STRING with its unused bits; a
 * time as its text; text of any character set unchecked.
 * @warning They are given no length and believe the encoding's own: for octets of a stranger call the `_n` form, which
 * takes the octets available and never reads past them, or a navigator. */
VELPKI_API unsigned char *decodeToBERBoolean(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Decodes an INTEGER to a new number, released with PKV_Free_BIGINT.
 * @warning Content is read as an unsigned magnitude: FF gives 255. decodeToBERInteger_strict refuses negative and
 * padded content. And the octets are believed; see decodeToBERBoolean. */
VELPKI_API BIGINT *decodeToBERInteger(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Decodes an ENUMERATED to a new number, as decodeToBERInteger does, with its warnings. */
VELPKI_API BIGINT *decodeToBEREnumerated(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBitString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBEROctetString(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Returns a new block of four octets, released with PKV_Free, for any input that is not null. */
VELPKI_API void *decodeToBERNull(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Decodes an OBJECT IDENTIFIER to dotted text of at most 99 characters, arcs up to 2147483647; null beyond.
 * @warning A single subidentifier leaves a trailing dot: 51 gives "2.1.". decodeToBERObjectIdentifier_RFC5280 takes
 * any size and leaves no dot. And the octets are believed; see decodeToBERBoolean. */
VELPKI_API OBJECT_IDENTIFIER *decodeToBERObjectIdentifier(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERUTF8String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERPrintableString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERT61String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERIA5String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBMPString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERUTCTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERGENERALIZEDTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Copies the whole encoding of a value into a new unit, whatever its type. See the warning at decodeToBERBoolean. */
VELPKI_API ASN1_UNIT *decodeToBERSequence(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Decodes a value as a string whose `type` is the identifier octet found; null for a universal type that this library
 * does not know. See the warning at decodeToBERBoolean. */
VELPKI_API ASN1_STRING *decodeToBERASN1String(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** @} */

/** @name Bounded decoders
 * @{ */
/** Each does what the decoder without `_n` does (without its warning of unbounded reading) within the `available`
 * octets at `encoded`, and returns null where they do not hold the whole value. Octets after the value are not looked
 * at. */
VELPKI_API unsigned char *decodeToBERBoolean_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToBERInteger_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
/** Decodes an INTEGER that is neither negative nor padded (X.690 8.3.2), so that it is written back as it was; null for
 * any other. */
VELPKI_API BIGINT *decodeToBERInteger_strict(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToBEREnumerated_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERBitString_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBEROctetString_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
/** Returns a new block of four octets, released with PKV_Free, when one octet is available. */
VELPKI_API void *decodeToBERNull_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *decodeToBERObjectIdentifier_n(const unsigned char *encoded,
                                                            int available) VELPKI_NOEXCEPT;
/** Decodes an OBJECT IDENTIFIER with arcs of up to 20,000 digits (X.690 8.19); null for content that is not one. */
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
/** Copies a value into a new unit as decodeToBERSequence_n does, but measures indefinite lengths by X.690 8.1.3.6 alone
 * and refuses them on primitive values. */
VELPKI_API ASN1_UNIT *decodeToBERSequence_strict(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToBERASN1String_n(const unsigned char *encoded, int available) VELPKI_NOEXCEPT;
/** @} */

/** @name Navigators
 * @{ */
/** Returns the child at an index from 0 as a new value of the kind that `type` expects: 1 one octet (PKV_Free); 2 and
 * 10 BIGINT; 5 a placeholder (PKV_Free); 16, 17, 48, 49 and 33 ASN1_UNIT; 6 OBJECT_IDENTIFIER; the string and time
 * types and 32 ASN1_STRING. Null when there is no such child or it has another type.
 * @warning A child of context-specific or private class is decoded as `type`, whatever its number, and a child of
 * application class as if it were universal; getBERChildAt_strict takes the whole identifier octet that must stand
 * there. */
VELPKI_API void *getBERChildAt(const ASN1_UNIT *unit, int index, int type) VELPKI_NOEXCEPT;
/** Returns the child at an index as getBERChildAt does, but only where its identifier octet is `identifier`.
 * TYPE_ASN1_UNIT takes any child as a unit. */
VELPKI_API void *getBERChildAt_strict(const ASN1_UNIT *unit, int index, int identifier, int type) VELPKI_NOEXCEPT;
/** Walks: with 0 in `*cursor` it takes the child at `index`, with any other value the child after the one that starts
 * at that offset of the content. `*cursor` receives the offset of the child returned and is unchanged on null. A null
 * `cursor` makes it getBERChildAt.
 * @warning After the first child the cursor is still 0, so the second call must pass index 1. Identifiers are judged
 * as getBERChildAt judges them. Where definite and indefinite lengths are mixed, children that getBERChildAt finds may
 * be missed, because each call measures anew; normalize_BER first. */
VELPKI_API void *getBERChildOffset(const ASN1_UNIT *unit, int index, int type, int *cursor) VELPKI_NOEXCEPT;
/** @} */

/** @name Whole values
 * @{ */
/** Rewrites one value of any BER into a new block at `*out`, released with PKV_Free, and returns its octets: all
 * lengths definite and of the fewest octets, strings that are constructed of segments in one piece, everything else as
 * it was. What it makes of a value that is in that form already is that value. It takes time in proportion to the
 * octets.
 *
 * -1, with nothing stored, for null and exhausted memory, and for octets that are not exactly one value:
 * end-of-contents octets that are missing or stray, segments of another type, unused bits before the last segment,
 * nesting deeper than 64, octets left over. An implicitly tagged string that is constructed cannot be told from other
 * constructed values; its segments stay. */
VELPKI_API int normalize_BER(const unsigned char *octets, int length, unsigned char **out) VELPKI_NOEXCEPT;

/** Writes one line to standard output: tag, length octets and content in hexadecimal. */
VELPKI_API void printBERData(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** @} */

/** @name Named types
 * @{ */
/** Makes an identifier of dotted text; null for empty text, a dot first, last or twice, or any other character.
 * @warning Neither the number of arcs nor their size is checked. */
VELPKI_API OBJECT_IDENTIFIER *new_OBJECT_IDENTIFIER(const char *text, int length) VELPKI_NOEXCEPT;
/** Releases an identifier. */
VELPKI_API void free_OBJECT_IDENTIFIER(OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Empties an identifier. */
VELPKI_API void clean_OBJECT_IDENTIFIER(OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;

/** Copies whole octets into a new BIT STRING without unused bits; null for null data and a negative length. */
VELPKI_API BIT_STRING *new_BIT_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_BIT_STRING(BIT_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_BIT_STRING(BIT_STRING *value) VELPKI_NOEXCEPT;
/** Copies octets into a new OCTET STRING; null for null data and a negative length. */
VELPKI_API OCTET_STRING *new_OCTET_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_OCTET_STRING(OCTET_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_OCTET_STRING(OCTET_STRING *value) VELPKI_NOEXCEPT;
/** Copies text into a new UTF8String; null for null data and a negative length. That it is UTF-8 is not checked. */
VELPKI_API UTF8_STRING *new_UTF8_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_UTF8_STRING(UTF8_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_UTF8_STRING(UTF8_STRING *value) VELPKI_NOEXCEPT;
/** Copies text into a new PrintableString; null for null data, a negative length, and a character that is not in X.680
 * table 10. */
VELPKI_API PRINTABLE_STRING *new_PRINTABLE_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_PRINTABLE_STRING(PRINTABLE_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_PRINTABLE_STRING(PRINTABLE_STRING *value) VELPKI_NOEXCEPT;
/** Copies octets into a new TeletexString, unchecked; null for null data and a negative length. */
VELPKI_API T61_STRING *new_T61_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_T61_STRING(T61_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_T61_STRING(T61_STRING *value) VELPKI_NOEXCEPT;
/** Copies text into a new IA5String; null for null data, a negative length, and an octet above 7F. */
VELPKI_API IA5_STRING *new_IA5_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_IA5_STRING(IA5_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_IA5_STRING(IA5_STRING *value) VELPKI_NOEXCEPT;
/** Copies UCS-2 text into a new BMPString; null for null data and a negative length.
 * @warning The number of octets may be odd. utf8ToUnicode makes the octets of UTF-8 text. */
VELPKI_API BMP_STRING *new_BMP_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_BMP_STRING(BMP_STRING *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_BMP_STRING(BMP_STRING *value) VELPKI_NOEXCEPT;
/** Copies the text of a time into a new UTCTime; null where it is none of the four forms of asn1TimeToUTC_TIME. */
VELPKI_API UTC_TIME *new_UTC_TIME(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_UTC_TIME(UTC_TIME *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_UTC_TIME(UTC_TIME *value) VELPKI_NOEXCEPT;
/** Copies the text of a time into a new GeneralizedTime; null where it is none of the four forms of asn1TimeToUTC_TIME,
 * with a year of four digits. */
VELPKI_API GENERALIZED_TIME *new_GENERALIZED_TIME(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Releases the value. */
VELPKI_API void free_GENERALIZED_TIME(GENERALIZED_TIME *value) VELPKI_NOEXCEPT;
/** Empties the value; its type stays. */
VELPKI_API void clean_GENERALIZED_TIME(GENERALIZED_TIME *value) VELPKI_NOEXCEPT;
/** @} */

/** @name Further makers
 * @{ */
/** Makes a BIT STRING of hexadecimal digits of either case; an odd number leaves four unused bits. Null for any other
 * character and for none. */
VELPKI_API BIT_STRING *hexToBIT_STRING(const char *text, int length) VELPKI_NOEXCEPT;
/** Does what new_BIT_STRING does. */
VELPKI_API BIT_STRING *binaryToBIT_STRING(const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Times as values
 * @{ */
/** Replaces the content of `to` by a copy of that of `from`, which may be the same, and returns `to`; null for null and
 * without memory, with `to` unchanged. */
VELPKI_API UTC_TIME *copy_UTC_TIME(UTC_TIME *to, const UTC_TIME *from) VELPKI_NOEXCEPT;
VELPKI_API GENERALIZED_TIME *copy_GENERALIZED_TIME(GENERALIZED_TIME *to, const GENERALIZED_TIME *from) VELPKI_NOEXCEPT;
/** Shifts a time by seconds in place; form and offset of the text stay, and what a form without seconds cannot hold is
 * cut off. Codes: F_ADD_UTC_TIME with reason 49 (null) or
 * 2B (unreadable, or the result is out of range), the value then unchanged. */
VELPKI_API int add_UTC_TIME(UTC_TIME *time, long long seconds) VELPKI_NOEXCEPT;
/** Shifts a time by seconds in place; form, fraction and offset of the text stay. Codes: F_ADD_TIME with reason 49
 * (null) or 2B (unreadable, or the result is out of range), the value then unchanged. */
VELPKI_API int add_GENERALIZED_TIME(GENERALIZED_TIME *time, long long seconds) VELPKI_NOEXCEPT;
/** Compares the instants of two texts: 1 when `a` is later, 0 when equal, -1 when earlier.
 * @warning -1 too when either cannot be read: it is no ordering function. */
VELPKI_API int cmp_UTC_TIME(const UTC_TIME *a, const UTC_TIME *b) VELPKI_NOEXCEPT;
/** Compares the instants of two texts as cmp_UTC_TIME does, with its warning; fractions are not looked at. */
VELPKI_API int cmp_GENERALIZED_TIME(const GENERALIZED_TIME *a, const GENERALIZED_TIME *b) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
