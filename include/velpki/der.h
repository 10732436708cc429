/** @file velpki/der.h
 * The DER entry points (X.690 10, 11).
 *
 * They are the functions of ber.h under DER names, to be read there. The encoders normalise a few values, choose the
 * shortest definite length and return their own code with ERR_INVALID_ENCODE_INPUT for every failure. The decoders
 * enforce no DER rule. The `_strict` siblings write and demand what X.690 does: times in UTC with their offset
 * applied, empty and sorted lists, BIT STRING padding of zeros.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_DER_H
#define VELPKI_DER_H

#include <velpki/ber.h>

VELPKI_BEGIN

/** @name Encoders
 * @{ */
/** Encodes a value as encodeToBER does, in the shortest length form, after checkDER. Code: F_ENCODE_TO_DER with
 * ERR_INVALID_ENCODE_INPUT, and `out` is then clean.
 * @warning checkDER changes the caller's value: a BOOLEAN octet, and a UTCTime, whose offset is dropped.
 * encodeToDER_strict does neither. */
VELPKI_API int encodeToDER(ASN1_UNIT *out, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Encodes a value and leaves it as it is. UTCTime and GeneralizedTime are written as YY(YY)MMDDHHMMSSZ with the offset
 * applied, BOOLEAN as 00 or FF, and a BIT STRING whose unused bits are not zero is refused. Code: F_ENCODE_TO_DER with
 * ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToDER_strict(ASN1_UNIT *out, int type, const void *value, int length) VELPKI_NOEXCEPT;
/** Does what encodeToDER does and gives the result the identifier 80 + n (IMPLICIT, primitive); n is 0 to 30. Code:
 * F_ENCODE_TO_DER_CS with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int encodeToDER_CS(ASN1_UNIT *out, int n, int type, void *value, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Constructed values
 * @{ */
/** Appends a child as addToBERSequence does, with its rules of ownership, in the shortest length form, after checkDER.
 * Code: F_ADD_TO_DER_SEQUENCE with ERR_INVALID_ENCODE_INPUT, and `seq` is then clean.
 * @warning checkDER writes into the caller's value, for this function and the four below: a BOOLEAN becomes FF, and a
 * UTCTime of 17 characters loses its offset. The _strict ones write into nothing. */
VELPKI_API int addToDERSequence(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Appends an element as addToBERSequenceOf does. Code: F_ADD_TO_DER_SEQUENCE_OF with ERR_INVALID_ENCODE_INPUT.
 * @warning As in ber.h an empty list has the primitive identifier 10; addToDERSequenceOf_strict writes 30 00. */
VELPKI_API int addToDERSequenceOf(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Appends an element encoded as encodeToDER_strict does it; an empty list is 30 00. Codes of addToDERSequenceOf. */
VELPKI_API int addToDERSequenceOf_strict(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Does what addToDERSequence does, and gives `seq` the identifier of a SET. The order of the calls stays. Code:
 * F_ADD_TO_DER_SET with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int addToDERSet(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Does what addToDERSequenceOf does, and gives `seq` the identifier of a SET. Code: F_ADD_TO_DER_SET_OF with
 * ERR_INVALID_ENCODE_INPUT.
 * @warning An empty list has the primitive identifier 11, and elements stay in the order of the calls.
 * addToDERSetOf_strict writes 31 00 and inserts each element at its place by DER order (X.690 11.6). */
VELPKI_API int addToDERSetOf(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Inserts an element, encoded as encodeToDER_strict does it, at its place by DER order (X.690 11.6); an empty list is
 * 31 00. Codes of addToDERSetOf. */
VELPKI_API int addToDERSetOf_strict(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/** Does what addToDERSequence does, and gives `seq` the identifier A0 + n (EXPLICIT, constructed); n is 0 to 30. Code:
 * F_ADD_TO_DER_SEQUENCE_CS with ERR_INVALID_ENCODE_INPUT. */
VELPKI_API int addToDERSequence_CS(ASN1_UNIT *seq, int n, int type, void *value, int length) VELPKI_NOEXCEPT;
/** @} */

/** Normalises a value in place: a BOOLEAN that is not 0 becomes FF; a UTCTime without seconds is refused, one of 17
 * characters is rewritten with Z, in the string and in `*length`. Everything else passes. Code: F_CHECK_DER with
 * ERR_INVALID_ENCODE_INPUT.
 * @warning The offset of the 17 characters is dropped, not applied: 260101120000+0900 becomes 260101120000Z, nine
 * hours late. encodeToDER_strict applies it. */
VELPKI_API int checkDER(int type, void *value, int *length) VELPKI_NOEXCEPT;

/** @name Decoders
 * @{ */
/** Each is the decoder of ber.h with BER in its name, with the same warnings, and enforces no rule of DER. */
VELPKI_API unsigned char *decodeToDERBoolean(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToDERInteger(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERBitString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDEROctetString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API void *decodeToDERNull(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *decodeToDERObjectIdentifier(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToDEREnumerated(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERUTF8String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_UNIT *decodeToDERSequence(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** Copies one DER value that fills `length` octets into a new unit: definite and minimal lengths at every level, and
 * nothing left over. Null otherwise. */
VELPKI_API ASN1_UNIT *decodeToDERSequence_strict(const unsigned char *encoded, int length) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERPrintableString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERIA5String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERUTCTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERGENERALIZEDTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERBMPString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERASN1String(const unsigned char *encoded) VELPKI_NOEXCEPT;
/** @} */

/** @name Navigating and printing
 * @{ */
/** Returns the child at an index as a new value, as getBERChildAt does, with its warning. */
VELPKI_API void *getDERChildAt(const ASN1_UNIT *unit, int index, int type) VELPKI_NOEXCEPT;
/** Writes one line to standard output: tag, length octets and content in hexadecimal. */
VELPKI_API void printDERData(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
