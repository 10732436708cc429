/** @file velpki/asn1.h
 * Encoded units, strings and calendar times: what all other modules are written in.
 *
 * An ASN1_UNIT is one encoded value (X.690): every encoder makes one, every decoder takes one. An ASN1_STRING is one
 * decoded string-like value (X.680), an ASN1_TIME a broken-down calendar time. Read this header first, then ber.h for
 * single values, asn1_io.h for files, and x509.h for certificates.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_ASN1_H
#define VELPKI_ASN1_H

#include <time.h>

#include <velpki/api.h>
#include <velpki/pkv.h>

VELPKI_BEGIN

/** Universal tag numbers (X.680 8.4), and two codes of this library's own that the encoders and navigators take as
 * well. */
enum {
  TYPE_BOOLEAN = 1,           /**< one octet */
  TYPE_INTEGER = 2,           /**< a BIGINT */
  TYPE_BIT_STRING = 3,        /**< with `unused_bits` */
  TYPE_OCTET_STRING = 4,      /**< any octets */
  TYPE_NULL = 5,              /**< no value */
  TYPE_OBJECT_IDENTIFIER = 6, /**< dotted-decimal text */
  TYPE_ENUMERATED = 10,       /**< a BIGINT */
  TYPE_UTF8_STRING = 12,      /**< RFC 3629 */
  TYPE_SEQUENCE = 16,         /**< 48 (0x30) names the same */
  TYPE_SET = 17,              /**< 49 (0x31) names the same */
  TYPE_PRINTABLE_STRING = 19, /**< X.680 table 10 */
  TYPE_T61_STRING = 20,       /**< TeletexString; its octets are not converted */
  TYPE_IA5_STRING = 22,       /**< ASCII, 00 to 7F */
  TYPE_UTC_TIME = 23,         /**< years of two digits (X.680 47) */
  TYPE_GENERALIZED_TIME = 24, /**< years of four digits (X.680 46) */
  TYPE_VISIBLE_STRING = 26,   /**< read, but no house encoder writes it */
  TYPE_BMP_STRING = 30,       /**< UCS-2, big-endian */
  TYPE_ASN1_STRING = 32,      /**< the value is an ASN1_STRING, encoded as its own `type` */
  TYPE_ASN1_UNIT = 33         /**< the value is an ASN1_UNIT, taken as it is */
};

/** One encoded value. Only the low-tag-number form exists: tag numbers 0 to 30. All buffers are the unit's own and come
 * from PKV_Malloc; `eoc` points into `value`. */
typedef struct {
  unsigned char *tag;           /**< the identifier octet */
  unsigned char *length_octets; /**< as they stand in the encoding; the one octet 80 for the indefinite form */
  unsigned char *value;         /**< the content, followed by 00 00 in the indefinite form; null for a NULL */
  unsigned char *eoc;           /**< indefinite form: where 00 00 stands in `value`; else null */
} ASN1_UNIT;

/** One string-like value. Read the members; change them through functions only: `data` may share the block of the
 * record. */
typedef struct {
  int type;            /**< universal tag number, or the whole identifier octet of a value read generically */
  unsigned char *data; /**< `length` octets, and a zero octet after them that does not count; null in an empty record */
  int length;          /**< octets */
  int unused_bits;     /**< of a BIT STRING, in its last octet; 1 for a time whose text ends in Z, told by
                        * its length where that is one of the usual forms */
} ASN1_STRING;

/** An ASN1_STRING of type 3: whole octets and the number of unused bits at their end. */
typedef ASN1_STRING BIT_STRING;

/** An ASN1_STRING of type 4. */
typedef ASN1_STRING OCTET_STRING;

/** An ASN1_STRING of type 6, whose `data` is the dotted-decimal text. */
typedef ASN1_STRING OBJECT_IDENTIFIER;

/** An ASN1_STRING of type 12. */
typedef ASN1_STRING UTF8_STRING;

/** An ASN1_STRING of type 19. */
typedef ASN1_STRING PRINTABLE_STRING;

/** An ASN1_STRING of type 20. */
typedef ASN1_STRING T61_STRING;

/** An ASN1_STRING of type 22. */
typedef ASN1_STRING IA5_STRING;

/** An ASN1_STRING of type 30, two octets a character. */
typedef ASN1_STRING BMP_STRING;

/** An ASN1_STRING of type 23, whose `data` is the text of the time. */
typedef ASN1_STRING UTC_TIME;

/** An ASN1_STRING of type 24, whose `data` is the text of the time. */
typedef ASN1_STRING GENERALIZED_TIME;

/** A broken-down time. It denotes the instant of its fields less its own offset field (`tm_gmtoff`, seconds east of
 * UTC); an offset of 0 means UTC. The zone name is neither read nor released. */
typedef struct tm ASN1_TIME;

/** @name Life cycle of ASN1_UNIT
 * @{ */
/** A new unit has all members null. Encoders fill it; the writers, readers and decoders of records make and release
 * theirs. */
VELPKI_API ASN1_UNIT *new_ASN1_UNIT(void) VELPKI_NOEXCEPT;
VELPKI_API void clean_ASN1_UNIT(ASN1_UNIT *unit) VELPKI_NOEXCEPT;
VELPKI_API void free_ASN1_UNIT(ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** Copies a unit; null for a unit without tag, length octets or value, hence for every NULL.
 * @warning Length octets are copied up to their first zero octet (a last zero octet is kept): 82 01 00 copies whole,
 * 83 01 00 05 becomes 83 01 00 00 and the unit shorter. dup_ASN1_UNIT_strict copies any unit faithfully. */
VELPKI_API ASN1_UNIT *dup_ASN1_UNIT(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** Copies any unit that has a tag and readable length octets, a NULL and empty values too; null for others. */
VELPKI_API ASN1_UNIT *dup_ASN1_UNIT_strict(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** @} */

/** @name Lengths and children of encodings
 * @{ */
/** Returns the number of length octets that start at `length_octets` (X.690 8.1.3): 1 for a first octet of 00 to 80,
 * else (first & 7F) + 1; 0 for null. It reads one octet. */
VELPKI_API int getASN1LengthSize(const unsigned char *length_octets) VELPKI_NOEXCEPT;
/** Returns the content length of a unit in octets, for the indefinite form the distance to `eoc`; -1 for null, a unit
 * without length octets, more than four octets of length and a length above INT_MAX. */
VELPKI_API int getASN1ValueLength(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** Returns the content length from the length octets in an encoding; content of the indefinite form, which follows
 * them, is measured. -1 for null and where it cannot be measured.
 * @warning It is given no length and believes the encoding; see getASN1ValueLengthFromLO_n. */
VELPKI_API int getASN1ValueLengthFromLO(const unsigned char *length_octets) VELPKI_NOEXCEPT;
/** Measures content of the indefinite form up to, not including, its end-of-contents octets; -1 for null and for
 * nesting deeper than 64.
 * @warning After the first indefinite child every later sibling is measured as if it were indefinite too. And it is
 * given no length. getASN1IndefiniteValueLength_n stays within its octets and, where that rule would leave them,
 * measures by X.690 8.1.3.6. */
VELPKI_API int getASN1IndefiniteValueLength(const unsigned char *content) VELPKI_NOEXCEPT;
/** Does what getASN1LengthSize does within `available` octets; 0 when they do not suffice. */
VELPKI_API int getASN1LengthSize_n(const unsigned char *length_octets, int available) VELPKI_NOEXCEPT;
/** Does what getASN1ValueLengthFromLO does within `available` octets, which count from the length octets on; -1 when
 * they do not hold the length octets, or the whole content of the indefinite form. A stated length is returned as it
 * stands. */
VELPKI_API int getASN1ValueLengthFromLO_n(const unsigned char *length_octets, int available) VELPKI_NOEXCEPT;
/** Measures indefinite content within `available` octets; -1 when its end-of-contents octets are not among them. */
VELPKI_API int getASN1IndefiniteValueLength_n(const unsigned char *content, int available) VELPKI_NOEXCEPT;
/** Returns the length form that DER needs for a content length (X.690 10.1): 0 short, 1 long. For type 3 the
 * unused-bits octet is added to `length`. Negative lengths give 1. */
VELPKI_API int getASN1LengthForm(int type, int length) VELPKI_NOEXCEPT;
/** Returns the number of decimal digits of n, the sign left out; 1 for 0. */
VELPKI_API int getAsciiStringLength(int n) VELPKI_NOEXCEPT;
/** Counts the children of a constructed unit; 0 for null and for content that cannot be walked.
 * @warning A universal child whose number this library does not know makes the whole count 0. */
VELPKI_API int getSequenceChildNum(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** Returns the identifier octet of the child at an index from 0; -1 when there is none. */
VELPKI_API int getChildType(const ASN1_UNIT *unit, int index) VELPKI_NOEXCEPT;
/** Writes the whole encoding into a new block, released with PKV_Free, and returns its octets. -1, with nothing stored,
 * for null, a unit without tag or with unreadable length octets, and exhausted memory. */
VELPKI_API int ASN1_to_binary(const ASN1_UNIT *unit, unsigned char **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Strings
 * @{ */
/** The life of any string, whatever its type. A new string has type 0 and no data, and clean_ keeps the type. dup_
 * copies type and unused bits too, and gives null for a string whose length has no data behind it. */
VELPKI_API ASN1_STRING *new_ASN1_STRING(void) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *dup_ASN1_STRING(const ASN1_STRING *string) VELPKI_NOEXCEPT;
VELPKI_API void clean_ASN1_STRING(ASN1_STRING *string) VELPKI_NOEXCEPT;
VELPKI_API void free_ASN1_STRING(ASN1_STRING *string) VELPKI_NOEXCEPT;
/** Stores the type and a copy of the octets, with no unused bits. Null data with length 0 is the empty value. No
 * character set is checked. Codes: F_SET_ASN1_STRING_VALUE with reason 49 (null string), 2B (bad data or length), 3C
 * (memory); the string is then unchanged. */
VELPKI_API int set_ASN1_STRING_value(ASN1_STRING *string, int type, const unsigned char *data,
                                     int length) VELPKI_NOEXCEPT;
/** Returns 0 when type, length and octets are equal, else 1 (null equals nothing).
 * @warning Unused bits are not compared; cmp_ASN1_STRING_strict compares those of a BIT STRING as well. */
VELPKI_API int cmp_ASN1_STRING(const ASN1_STRING *a, const ASN1_STRING *b) VELPKI_NOEXCEPT;
/** Returns 0 when cmp_ASN1_STRING does and, for a BIT STRING, the unused bits are equal too; else 1. */
VELPKI_API int cmp_ASN1_STRING_strict(const ASN1_STRING *a, const ASN1_STRING *b) VELPKI_NOEXCEPT;
/** Encodes a string under its own type, as a child that addToDERSequence appends as TYPE_ASN1_STRING. Codes:
 * F_ASN1_STRING_TO_SEQ with reason 49, 3C or ERR_ASN1_ENCODING. */
VELPKI_API int ASN1_STRING_to_Seq(const ASN1_STRING *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Calendar times
 * @{ */
/** The life of a broken-down time. All fields of a new or cleaned one are 0. */
VELPKI_API ASN1_TIME *new_ASN1_TIME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ASN1_TIME(ASN1_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API void clean_ASN1_TIME(ASN1_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API ASN1_TIME *dup_ASN1_TIME(const ASN1_TIME *time) VELPKI_NOEXCEPT;
/** Reads exactly YYYY-MM-DD,HH:MM:SS, in UTC, into a new time; null for anything else.
 * @warning The day is not checked against the month: 2009-02-30 passes. */
VELPKI_API ASN1_TIME *charToASN1_TIME(const char *text) VELPKI_NOEXCEPT;
/** Accepts seconds and minutes 0 to 59, hours 0 to 23, day 1 to 31 and month 0 to 11, each by itself: 0, or
 * F_CHECK_ASN1_TIME with reason 2B. */
VELPKI_API int check_ASN1_TIME(int seconds, int minutes, int hours, int day, int month) VELPKI_NOEXCEPT;
/** Makes a new time of the machine's clock, in UTC; null without memory. */
VELPKI_API ASN1_TIME *getCurrentGMTime(void) VELPKI_NOEXCEPT;
/** Makes a new time of the machine's clock in its zone, with the offset field set; null without memory. */
VELPKI_API ASN1_TIME *getCurrentLocalTime(void) VELPKI_NOEXCEPT;
/** Compares instants: 1 when `a` is later, 0 when equal, -1 when earlier.
 * @warning -1 too when either cannot be converted (null, out of range): it is no ordering function. */
VELPKI_API int cmp_ASN1_TIME(const ASN1_TIME *a, const ASN1_TIME *b) VELPKI_NOEXCEPT;
/** @} */

/** @name Times as text
 * @{ */
/** Writes a time as the text of a new UTCTime (X.680 47), years 1950 to 2049; null for other years, fields out of range
 * and forms that are none of these:
 * - 0: YYMMDDHHMMZ
 * - 1: YYMMDDHHMM+hhmm
 * - 2: YYMMDDHHMMSSZ
 * - 3: YYMMDDHHMMSS+hhmm
 *
 * @warning Forms 0 and 2 overwrite `time` with its UTC equivalent. Forms 1 and 3 write the fields as they are and then
 * an offset that is right for UTC only: the machine's own offset in seconds is multiplied by 3600 once more (New York
 * gives -8000, Seoul an octet that is no digit). asn1TimeToUTC_TIME_strict writes the time's own offset. */
VELPKI_API UTC_TIME *asn1TimeToUTC_TIME(ASN1_TIME *time, int form) VELPKI_NOEXCEPT;
/** Writes the same forms; 1 and 3 with the offset field of the time, which must be whole minutes within a day.
 * @warning Forms 0 and 2 overwrite `time` with its UTC equivalent. */
VELPKI_API UTC_TIME *asn1TimeToUTC_TIME_strict(ASN1_TIME *time, int form) VELPKI_NOEXCEPT;
/** Writes the same forms as a new GeneralizedTime (X.680 46), with years of four digits, 0000 to 9999; 1 and 3 with the
 * offset field of the time.
 * @warning Forms 0 and 2 overwrite `time` with its UTC equivalent. */
VELPKI_API GENERALIZED_TIME *asn1TimeToGENERALIZED_TIME(ASN1_TIME *time, int form) VELPKI_NOEXCEPT;
/** Reads YYMMDDHHMM[SS] and Z or +hhmm or -hhmm into a new time in UTC; years below 50 are 20YY, the others 19YY. Null
 * for null and for text of another form or out of range; the day is not checked against the month. */
VELPKI_API ASN1_TIME *utcTimeToASN1_TIME(const UTC_TIME *utc) VELPKI_NOEXCEPT;
/** Reads YYYYMMDDHHMM[SS] and Z or +hhmm or -hhmm into a new time in UTC. A fraction before the zone, after "." or ",",
 * is cut off. Null as for utcTimeToASN1_TIME. */
VELPKI_API ASN1_TIME *generalizedTimeToASN1_TIME(const GENERALIZED_TIME *generalized) VELPKI_NOEXCEPT;
/** Reads the one form that certificates may carry (RFC 5280 4.1.2.5.1): YYMMDDHHMMSSZ, with a real day of the month.
 * Null for any other. */
VELPKI_API ASN1_TIME *utcTimeToASN1_TIME_RFC5280(const UTC_TIME *utc) VELPKI_NOEXCEPT;
/** Reads the one form that certificates may carry (RFC 5280 4.1.2.5.2): YYYYMMDDHHMMSSZ, without a fraction and with a
 * real day of the month. Null for any other. */
VELPKI_API ASN1_TIME *generalizedTimeToASN1_TIME_RFC5280(const GENERALIZED_TIME *generalized) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
