/** @file velpki/asn1_error.h
 * The composite status codes and their names.
 *
 * A code is module (bits 31-24), function in the module (23-16) and reason (15-0): 0x42030101 is
 * F_ENCODE_TO_BER_BIT_STRING | ERR_INVALID_ENCODE_INPUT. It is built where the failure is found and passed up
 * unchanged. 0 is success; a plain 1 or -1, and the provider's bare PKV_ERR_ codes (pkv.h), are failures too. Function
 * 0 is none in particular: all codes of the modules 0x4E (DER and PEM input and output) and 0x50 (OCSP) have it, and
 * some of 0x46 (certificates and requests), 0x47 (extensions and identity data), 0x48 (revocation lists) and 0x4B
 * (PKCS#7).
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_ASN1_ERROR_H
#define VELPKI_ASN1_ERROR_H

#include <velpki/api.h>

VELPKI_BEGIN

/** A row of the table of functions as an enumerator. */
#define VELPKI_FUNCTION(code, name) name = code,
/** A row of a table of reasons as an enumerator. */
#define VELPKI_REASON(code, name) name = code,
/** The functions and the reasons. One enumeration holds both, so that C++ does not warn where they are combined. */
enum {
#include <velpki/error_codes_table.inc>
#include <velpki/error_reasons_table.inc>
#include <velpki/sibling_reasons_table.inc>
  VELPKI_SUCCESS = 0 /**< every other value is a failure */
};
#undef VELPKI_FUNCTION
#undef VELPKI_REASON

/** A row of the tables of names. */
typedef struct {
  unsigned int code; /**< module and function, or a reason */
  const char *name;  /**< as in this header; null in the last row */
} ASN1_CODE_NAME;

/** 325 functions in the order of their modules, followed by a row {0, null}. */
VELPKI_API extern const ASN1_CODE_NAME asn1_function_codes[];
/** 30 reasons in the order of their numbers, followed by a row {0, null}; those of siblings are not among them. */
VELPKI_API extern const ASN1_CODE_NAME asn1_reason_codes[];

/** Writes what a status code means as text that always ends in a zero octet: "success", "failed" for a plain 1
 * or -1, "PKV_ERR_UNSUPPORTED", "F_SEQ_TO_X509_CERT: ERR_ASN1_DECODING", both names ("F_A or F_B") of a number that two
 * functions share, the module's subject for function 0 ("OCSP: ERR_OCSP_STATUS"), and hexadecimal digits for what is
 * unknown. It returns the length without the zero octet; -1 for null and where the text, of at most 120 octets, does
 * not fit `capacity` (then cut off). */
VELPKI_API int describe_velpki_code(int code, char *out, int capacity) VELPKI_NOEXCEPT;

VELPKI_END

#endif
