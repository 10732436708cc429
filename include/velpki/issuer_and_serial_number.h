/* velpki/issuer_and_serial_number.h: the pair that names a certificate in messages (RFC 5652 10.2.4).
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_ISSUER_AND_SERIAL_NUMBER_H
#define VELPKI_ISSUER_AND_SERIAL_NUMBER_H

#include <velpki/x509.h>

VELPKI_BEGIN

typedef struct {
  X509_NAME *issuer;
  BIGINT *serialNumber;
} ISSUER_AND_SERIAL_NUMBER;

VELPKI_API ISSUER_AND_SERIAL_NUMBER *new_ISSUER_AND_SERIAL_NUMBER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ISSUER_AND_SERIAL_NUMBER(ISSUER_AND_SERIAL_NUMBER *p) VELPKI_NOEXCEPT;
/* Codes: F_ISSUER_AND_SERIAL_NUMBER_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING; F_SEQ_TO_ISSUER_AND_SERIAL_NUMBER with 49,
 * 3C or ERR_ASN1_DECODING (anything but exactly two elements).
 * @warning Encoding leaves out a member that is null; decoding does not read such a value back. */
VELPKI_API int ISSUER_AND_SERIAL_NUMBER_to_Seq(const ISSUER_AND_SERIAL_NUMBER *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_ISSUER_AND_SERIAL_NUMBER(ASN1_UNIT *in, ISSUER_AND_SERIAL_NUMBER **out) VELPKI_NOEXCEPT;
/* cmp_ISSUER_AND_SERIAL_NUMBER compares a certificate with a record: 0 when both members are equal, -1 when the serial
 * number differs or either member is missing, else what cmp_X509_NAME says. */
VELPKI_API int cmp_ISSUER_AND_SERIAL_NUMBER(const X509_CERT *cert,
                                            const ISSUER_AND_SERIAL_NUMBER *record) VELPKI_NOEXCEPT;
/* The first certificate of the list that the record names, lent; null when there is none. */
VELPKI_API X509_CERT *find_X509_CERT_by_IssuerAndSerialNumber(const X509_CERTIFICATES *certs,
                                                              const ISSUER_AND_SERIAL_NUMBER *record) VELPKI_NOEXCEPT;

VELPKI_END

#endif
