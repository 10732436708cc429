/* velpki/der.h: the DER entry points (X.690 10, 11).
 *
 * The encoders normalise a few values, choose the shortest definite length and return their own code with
 * ERR_INVALID_ENCODE_INPUT for every failure. The decoders are those of ber.h under DER names and enforce no DER rule.
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_DER_H
#define VELPKI_DER_H

#include <velpki/ber.h>

VELPKI_BEGIN

/* Each is the function of ber.h with the same name but for the length form. Their `_strict` siblings write what X.690
 * demands: times in UTC with their offset applied, empty and sorted lists, BIT STRING padding of zeros. */
VELPKI_API int encodeToDER(ASN1_UNIT *out, int type, void *value, int length) VELPKI_NOEXCEPT;
/* encodeToDER_strict leaves the caller's value as it is. It writes UTCTime and GeneralizedTime as YY(YY)MMDDHHMMSSZ
 * with the offset applied, BOOLEAN as 00 or FF, and refuses a BIT STRING whose unused bits are not zero. */
VELPKI_API int encodeToDER_strict(ASN1_UNIT *out, int type, const void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int encodeToDER_CS(ASN1_UNIT *out, int n, int type, void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int addToDERSequence(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
/* @warning As in ber.h an empty list has the primitive identifier 10 or 11; addToDERSequenceOf_strict and
 * addToDERSetOf_strict write 30 00 and 31 00. Elements of a SET OF stay in the order of the calls;
 * addToDERSetOf_strict inserts each at its place by DER order (X.690 11.6). */
VELPKI_API int addToDERSequenceOf(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int addToDERSequenceOf_strict(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int addToDERSet(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int addToDERSetOf(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int addToDERSetOf_strict(ASN1_UNIT *seq, int type, void *value, int length) VELPKI_NOEXCEPT;
VELPKI_API int addToDERSequence_CS(ASN1_UNIT *seq, int n, int type, void *value, int length) VELPKI_NOEXCEPT;
/* checkDER normalises a value in place: a BOOLEAN that is not 0 becomes FF; a UTCTime without seconds is refused, one
 * of 17 characters is rewritten with Z, in the string and in `*length`. Everything else passes.
 * @warning The offset of the 17 characters is dropped, not applied: 260101120000+0900 becomes 260101120000Z, nine hours
 * late. encodeToDER_strict applies it. */
VELPKI_API int checkDER(int type, void *value, int *length) VELPKI_NOEXCEPT;

/* The decoders of ber.h under DER names, with the same warnings. */
VELPKI_API unsigned char *decodeToDERBoolean(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToDERInteger(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERBitString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDEROctetString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API void *decodeToDERNull(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *decodeToDERObjectIdentifier(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *decodeToDEREnumerated(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERUTF8String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_UNIT *decodeToDERSequence(const unsigned char *encoded) VELPKI_NOEXCEPT;
/* decodeToDERSequence_strict takes one DER value that fills `length`: definite and minimal lengths at every level, and
 * nothing left over. Null otherwise. */
VELPKI_API ASN1_UNIT *decodeToDERSequence_strict(const unsigned char *encoded, int length) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERPrintableString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERIA5String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERUTCTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERGENERALIZEDTime(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERBMPString(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *decodeToDERASN1String(const unsigned char *encoded) VELPKI_NOEXCEPT;
VELPKI_API void *getDERChildAt(const ASN1_UNIT *unit, int index, int type) VELPKI_NOEXCEPT;
VELPKI_API void printDERData(const ASN1_UNIT *unit) VELPKI_NOEXCEPT;

VELPKI_END

#endif
