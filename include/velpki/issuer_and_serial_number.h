/** @file velpki/issuer_and_serial_number.h
 * The pair that names a certificate in messages (RFC 5652 10.2.4).
 *
 * Signers and recipients of PKCS#7 and CMS messages name their certificates by it. Read x509.h first.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_ISSUER_AND_SERIAL_NUMBER_H
#define VELPKI_ISSUER_AND_SERIAL_NUMBER_H

#include <velpki/x509.h>

VELPKI_BEGIN

/** IssuerAndSerialNumber ::= SEQUENCE { issuer Name, serialNumber INTEGER }. */
typedef struct {
  X509_NAME *issuer;    /**< null in a new record */
  BIGINT *serialNumber; /**< null in a new record */
} ISSUER_AND_SERIAL_NUMBER;

/** @name Life cycle and codec
 * @{ */
/** A new record names no certificate. */
VELPKI_API ISSUER_AND_SERIAL_NUMBER *new_ISSUER_AND_SERIAL_NUMBER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ISSUER_AND_SERIAL_NUMBER(ISSUER_AND_SERIAL_NUMBER *p) VELPKI_NOEXCEPT;
/** Encodes in house form. Codes: F_ISSUER_AND_SERIAL_NUMBER_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING.
 * @warning A member that is null is left out; Seq_to_ISSUER_AND_SERIAL_NUMBER does not read such a value back. */
VELPKI_API int ISSUER_AND_SERIAL_NUMBER_to_Seq(const ISSUER_AND_SERIAL_NUMBER *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes exactly two elements. Codes: F_SEQ_TO_ISSUER_AND_SERIAL_NUMBER with 49, 3C or ERR_ASN1_DECODING. */
VELPKI_API int Seq_to_ISSUER_AND_SERIAL_NUMBER(ASN1_UNIT *in, ISSUER_AND_SERIAL_NUMBER **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Finding certificates
 * @{ */
/** Compares a certificate with a record: 0 when both members are equal, -1 when the serial number differs or either
 * member is missing, else what cmp_X509_NAME says. */
VELPKI_API int cmp_ISSUER_AND_SERIAL_NUMBER(const X509_CERT *cert,
                                            const ISSUER_AND_SERIAL_NUMBER *record) VELPKI_NOEXCEPT;
/** Lends the first certificate of the list that the record names; null when there is none. */
VELPKI_API X509_CERT *find_X509_CERT_by_IssuerAndSerialNumber(const X509_CERTIFICATES *certs,
                                                              const ISSUER_AND_SERIAL_NUMBER *record) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
