/* velpki/asn1_error.h: the composite status codes and their names.
 *
 * A code is module (bits 31-24), function in the module (23-16) and reason (15-0): 0x42030101 is
 * F_ENCODE_TO_BER_BIT_STRING | ERR_INVALID_ENCODE_INPUT. It is built where the failure is found and passed up
 * unchanged. 0 is success; a plain 1, and the provider's bare PKV_ERR_ codes, are failures too. Modules 0x4E (DER and
 * PEM input and output) and 0x50 (OCSP) give codes but have no named functions. Conventions: docs/conventions.md. */
#ifndef VELPKI_ASN1_ERROR_H
#define VELPKI_ASN1_ERROR_H

#include <velpki/api.h>

VELPKI_BEGIN

/* One enumeration holds functions and reasons, so that C++ does not warn where they are combined. ERR_MASK extracts the
 * reason. */
#define VELPKI_FUNCTION(code, name) name = code,
#define VELPKI_REASON(code, name) name = code,
enum {
#include <velpki/error_codes_table.inc>
#include <velpki/error_reasons_table.inc>
#include <velpki/sibling_reasons_table.inc>
  VELPKI_SUCCESS = 0
};
#undef VELPKI_FUNCTION
#undef VELPKI_REASON

typedef struct {
  unsigned int code;
  const char *name;
} ASN1_CODE_NAME;

/* 325 functions in the order of their numbers and 30 reasons, each followed by a row {0, null}. */
VELPKI_API extern const ASN1_CODE_NAME asn1_function_codes[];
VELPKI_API extern const ASN1_CODE_NAME asn1_reason_codes[];

/* describe_velpki_code writes what a status code means as text that always ends in a zero octet: "success", "failed"
 * for a plain 1, "PKV_ERR_UNSUPPORTED", "F_SEQ_TO_X509_CERT: ERR_ASN1_DECODING", both names ("F_A or F_B") of a number
 * that two functions share, the module's subject where it has no named functions, and hexadecimal digits for what is
 * unknown. It returns the length without the zero octet; -1 for null and where the text, of at most 120 octets, does
 * not fit `capacity` (then cut off). */
VELPKI_API int describe_velpki_code(int code, char *out, int capacity) VELPKI_NOEXCEPT;

VELPKI_END

#endif
