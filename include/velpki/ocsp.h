/** @file velpki/ocsp.h
 * Asking for the status of certificates and answering (RFC 6960). Messages only; transport is the application's.
 *
 * A client makes a request with generate_single_OCSP_REQUEST_strict, sends its DER, reads the response, takes the basic
 * response out with get_BASIC_OCSP_RESPONSE_strict and asks verify_BASIC_OCSP_RESPONSE_strict. A responder reads
 * requests, collects entries with add_single_OCSP_RESPONSE, and makes a response of them with the generate_ functions
 * at the end.
 *
 * Families behave as docs/conventions.md says of SAMPLE. Every code of this module is 0x50000000 with a reason, or one
 * of the provider; decoding and encoding give 49, 3C, ERR_ASN1_DECODING and ERR_ASN1_ENCODING. Numbers are magnitudes
 * where a record is decoded, as everywhere in house form. Names and certificates inside a message have the standard
 * form. */
#ifndef VELPKI_OCSP_H
#define VELPKI_OCSP_H

#include <velpki/x509v3.h>

VELPKI_BEGIN

/* Records. */

/** CertID (RFC 6960 4.1.1): names a certificate by its issuer and its serial number. */
typedef struct {
  X509_ALGO_IDENTIFIER *hashAlgorithm; /**< of both hashes */
  OCTET_STRING *issuerNameHash;        /**< of the DER of the issuer's name */
  OCTET_STRING *issuerKeyHash;         /**< of the octets of the issuer's key, without tag, length and unused bits */
  BIGINT *serialNumber;                /**< of the certificate */
} OCSP_CERT_ID;

/** Request (RFC 6960 4.1.1): one question. */
typedef struct {
  OCSP_CERT_ID *reqCert;                    /**< the certificate asked for */
  X509_EXTENSIONS *singleRequestExtensions; /**< null when absent */
} OCSP_SINGLE_REQUEST;
/** TBSRequest (RFC 6960 4.1.1): what is signed of a request. */
typedef struct {
  int version;                        /**< 0, which is not written */
  GENERAL_NAME *requestorName;        /**< null when absent */
  STACK *requestList;                 /**< of OCSP_SINGLE_REQUEST */
  X509_EXTENSIONS *requestExtensions; /**< the nonce, mostly; null when absent */
} OCSP_TBS_REQUEST;
/** Signature (RFC 6960 4.1.1) of a request. */
typedef struct {
  X509_ALGO_IDENTIFIER *signatureAlgorithm; /**< with its parameters */
  BIT_STRING *signature;                    /**< over the DER of the TBS */
  X509_CERTIFICATES *certs;                 /**< null when absent */
} OCSP_SIGNATURE;
/** OCSPRequest (RFC 6960 4.1.1). */
typedef struct {
  OCSP_TBS_REQUEST *tbsRequest;      /**< the questions */
  OCSP_SIGNATURE *optionalSignature; /**< null in a request that is not signed */
  OCTET_STRING *encoded;             /**< of a signed request: the TBS as received or signed, which is written back */
} OCSP_REQUEST;

/** RevokedInfo (RFC 6960 4.2.1). */
typedef struct {
  GENERALIZED_TIME *revocationTime; /**< when the certificate was revoked */
  int revocationReason;             /**< a CRLReason (RFC 5280 5.3.1), or -1 for none */
} OCSP_REVOKED_INFO;
/** The choices of CertStatus (RFC 6960 4.2.1). */
enum {
  OCSP_STATUS_GOOD = 0,    /**< not revoked, as far as the responder knows */
  OCSP_STATUS_REVOKED = 1, /**< with an OCSP_REVOKED_INFO */
  OCSP_STATUS_UNKNOWN = 2  /**< the responder does not know the certificate */
};
/** CertStatus (RFC 6960 4.2.1). */
typedef struct {
  int type;                       /**< one of OCSP_STATUS_ */
  OCSP_REVOKED_INFO *revokedInfo; /**< of a revoked certificate; else null */
} OCSP_CERT_STATUS;
/** The choices of ResponderID (RFC 6960 4.2.1). */
enum {
  OCSP_RESPONDER_BY_NAME = 0, /**< [1], an X509_NAME */
  OCSP_RESPONDER_BY_KEY = 1   /**< [2], an OCTET_STRING */
};
/** ResponderID (RFC 6960 4.2.1): names the certificate that signed. */
typedef struct {
  int type;    /**< one of OCSP_RESPONDER_ */
  void *value; /**< X509_NAME, or an OCTET_STRING with the SHA-1 digest of the key; owned */
} OCSP_RESPONDER_ID;
/** SingleResponse (RFC 6960 4.2.1): one answer. */
typedef struct {
  OCSP_CERT_ID *certID;              /**< the certificate that it is about */
  OCSP_CERT_STATUS *certStatus;      /**< what is said of it */
  GENERALIZED_TIME *thisUpdate;      /**< when that was known to be right */
  GENERALIZED_TIME *nextUpdate;      /**< when more will be known; null when absent */
  X509_EXTENSIONS *singleExtensions; /**< null when absent */
} OCSP_SINGLE_RESPONSE;
/** ResponseData (RFC 6960 4.2.1): what is signed of a response. */
typedef struct {
  int version;                         /**< 0, which is not written */
  OCSP_RESPONDER_ID *responderID;      /**< who signs */
  GENERALIZED_TIME *producedAt;        /**< when it was signed */
  STACK *responses;                    /**< of OCSP_SINGLE_RESPONSE */
  X509_EXTENSIONS *responseExtensions; /**< the nonce, mostly; null when absent */
} OCSP_RESPONSE_DATA;
/** BasicOCSPResponse (RFC 6960 4.2.1). */
typedef struct {
  OCSP_RESPONSE_DATA *tbsResponseData; /**< the answers */
  /** the response data as received or signed, which is verified and written back */
  OCTET_STRING *encoded;
  X509_ALGO_IDENTIFIER *signatureAlgorithm; /**< with its parameters */
  BIT_STRING *signature;                    /**< over `encoded` */
  X509_CERTIFICATES *certs;                 /**< null when absent */
} BASIC_OCSP_RESPONSE;

/** ResponseBytes (RFC 6960 4.2.1). */
typedef struct {
  OBJECT_IDENTIFIER *responseType; /**< id-pkix-ocsp-basic, or another */
  OCTET_STRING *response;          /**< the DER of the response of that type */
} OCSP_RESPONSE_BYTES;
/** OCSPResponseStatus (RFC 6960 4.2.1). */
enum {
  OCSP_SUCCESSFUL = 0,        /**< there is an answer */
  OCSP_MALFORMED_REQUEST = 1, /**< the request could not be read */
  OCSP_INTERNAL_ERROR = 2,    /**< of the responder */
  OCSP_TRY_LATER = 3,         /**< the responder is busy */
  OCSP_SIG_REQUIRED = 5,      /**< the request must be signed */
  OCSP_UNAUTHORIZED = 6,      /**< this client gets no answer, or none of this certificate */
};
/** OCSPResponse (RFC 6960 4.2.1): what comes over the wire. */
typedef struct {
  int responseStatus;                 /**< one of OCSP_SUCCESSFUL to OCSP_UNAUTHORIZED */
  OCSP_RESPONSE_BYTES *responseBytes; /**< null when absent */
} OCSP_RESPONSE;

/* Families. */

/** @name The family of OCSP_CERT_ID
 * @{ */
/** A new identifier is empty; the generate_ functions for requests fill one. */
VELPKI_API OCSP_CERT_ID *new_OCSP_CERT_ID(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_CERT_ID(OCSP_CERT_ID *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_CERT_ID(OCSP_CERT_ID *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_CERT_ID *dup_OCSP_CERT_ID(const OCSP_CERT_ID *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_CERT_ID_to_Seq(const OCSP_CERT_ID *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_CERT_ID(ASN1_UNIT *in, OCSP_CERT_ID **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_SINGLE_REQUEST
 * @{ */
/** A new request has no certificate, and needs one to be encoded. */
VELPKI_API OCSP_SINGLE_REQUEST *new_OCSP_SINGLE_REQUEST(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_SINGLE_REQUEST(OCSP_SINGLE_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_SINGLE_REQUEST(OCSP_SINGLE_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_SINGLE_REQUEST *dup_OCSP_SINGLE_REQUEST(const OCSP_SINGLE_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_SINGLE_REQUEST_to_Seq(const OCSP_SINGLE_REQUEST *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_SINGLE_REQUEST(ASN1_UNIT *in, OCSP_SINGLE_REQUEST **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_TBS_REQUEST
 * @{ */
/** A new record is empty, and needs a list of requests to be encoded. */
VELPKI_API OCSP_TBS_REQUEST *new_OCSP_TBS_REQUEST(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_TBS_REQUEST(OCSP_TBS_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_TBS_REQUEST(OCSP_TBS_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_TBS_REQUEST *dup_OCSP_TBS_REQUEST(const OCSP_TBS_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_TBS_REQUEST_to_Seq(const OCSP_TBS_REQUEST *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_TBS_REQUEST(ASN1_UNIT *in, OCSP_TBS_REQUEST **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_SIGNATURE
 * @{ */
/** A new signature has neither algorithm nor octets, and needs both to be encoded. */
VELPKI_API OCSP_SIGNATURE *new_OCSP_SIGNATURE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_SIGNATURE(OCSP_SIGNATURE *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_SIGNATURE(OCSP_SIGNATURE *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_SIGNATURE *dup_OCSP_SIGNATURE(const OCSP_SIGNATURE *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_SIGNATURE_to_Seq(const OCSP_SIGNATURE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_SIGNATURE(ASN1_UNIT *in, OCSP_SIGNATURE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_REQUEST
 * @{ */
/** A new request has an empty TBS. The octets of a signed TBS are written back as they came, whatever its members say.
 */
VELPKI_API OCSP_REQUEST *new_OCSP_REQUEST(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_REQUEST(OCSP_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_REQUEST(OCSP_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_REQUEST *dup_OCSP_REQUEST(const OCSP_REQUEST *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_REQUEST_to_Seq(const OCSP_REQUEST *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_REQUEST(ASN1_UNIT *in, OCSP_REQUEST **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_REVOKED_INFO
 * @{ */
/** A new record has no time, which encoding needs, and the reason -1. */
VELPKI_API OCSP_REVOKED_INFO *new_OCSP_REVOKED_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_REVOKED_INFO(OCSP_REVOKED_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_REVOKED_INFO(OCSP_REVOKED_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_REVOKED_INFO *dup_OCSP_REVOKED_INFO(const OCSP_REVOKED_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_REVOKED_INFO_to_Seq(const OCSP_REVOKED_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_REVOKED_INFO(ASN1_UNIT *in, OCSP_REVOKED_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_CERT_STATUS
 * @{ */
/** A choice inside an OCSP_SINGLE_RESPONSE, without a codec of its own. A new one is OCSP_STATUS_GOOD. */
VELPKI_API OCSP_CERT_STATUS *new_OCSP_CERT_STATUS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_CERT_STATUS(OCSP_CERT_STATUS *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_CERT_STATUS(OCSP_CERT_STATUS *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_CERT_STATUS *dup_OCSP_CERT_STATUS(const OCSP_CERT_STATUS *p) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_RESPONDER_ID
 * @{ */
/** A choice inside an OCSP_RESPONSE_DATA, without a codec of its own. A new one is OCSP_RESPONDER_BY_NAME, without a
 * value. */
VELPKI_API OCSP_RESPONDER_ID *new_OCSP_RESPONDER_ID(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_RESPONDER_ID(OCSP_RESPONDER_ID *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_RESPONDER_ID(OCSP_RESPONDER_ID *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_RESPONDER_ID *dup_OCSP_RESPONDER_ID(const OCSP_RESPONDER_ID *p) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_SINGLE_RESPONSE
 * @{ */
/** A new entry is empty; add_single_OCSP_RESPONSE fills one.
 * @warning OCSP_SINGLE_RESPONSE_to_Seq writes nextUpdate without its tag [0] and the extensions under [2]. Others do
 * not read that: OCSP_SINGLE_RESPONSE_to_Seq_strict has [0] and [1] (RFC 6960 4.2.1). Reading takes both, and the
 * status good as A0, unknown as A2. */
VELPKI_API OCSP_SINGLE_RESPONSE *new_OCSP_SINGLE_RESPONSE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_SINGLE_RESPONSE(OCSP_SINGLE_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_SINGLE_RESPONSE(OCSP_SINGLE_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_SINGLE_RESPONSE *dup_OCSP_SINGLE_RESPONSE(const OCSP_SINGLE_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_SINGLE_RESPONSE_to_Seq(const OCSP_SINGLE_RESPONSE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_SINGLE_RESPONSE(ASN1_UNIT *in, OCSP_SINGLE_RESPONSE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_RESPONSE_DATA
 * @{ */
/** New data are empty; generate_OCSP_RESPONSE_DATA makes them of entries.
 * @warning OCSP_RESPONSE_DATA_to_Seq writes its entries as OCSP_SINGLE_RESPONSE_to_Seq does, and so does everything
 * that is signed over it but by the _strict functions. */
VELPKI_API OCSP_RESPONSE_DATA *new_OCSP_RESPONSE_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_RESPONSE_DATA(OCSP_RESPONSE_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_RESPONSE_DATA(OCSP_RESPONSE_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_RESPONSE_DATA *dup_OCSP_RESPONSE_DATA(const OCSP_RESPONSE_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_RESPONSE_DATA_to_Seq(const OCSP_RESPONSE_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_RESPONSE_DATA(ASN1_UNIT *in, OCSP_RESPONSE_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of BASIC_OCSP_RESPONSE
 * @{ */
/** A new response is empty; generate_BASIC_OCSP_RESPONSE_strict makes one. The octets that were signed are written back
 * as they came, whatever the members say. */
VELPKI_API BASIC_OCSP_RESPONSE *new_BASIC_OCSP_RESPONSE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API BASIC_OCSP_RESPONSE *dup_BASIC_OCSP_RESPONSE(const BASIC_OCSP_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API int BASIC_OCSP_RESPONSE_to_Seq(const BASIC_OCSP_RESPONSE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_BASIC_OCSP_RESPONSE(ASN1_UNIT *in, BASIC_OCSP_RESPONSE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_RESPONSE_BYTES
 * @{ */
/** A new record has neither type nor octets, and needs both to be encoded. */
VELPKI_API OCSP_RESPONSE_BYTES *new_OCSP_RESPONSE_BYTES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_RESPONSE_BYTES(OCSP_RESPONSE_BYTES *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_RESPONSE_BYTES(OCSP_RESPONSE_BYTES *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_RESPONSE_BYTES *dup_OCSP_RESPONSE_BYTES(const OCSP_RESPONSE_BYTES *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_RESPONSE_BYTES_to_Seq(const OCSP_RESPONSE_BYTES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_RESPONSE_BYTES(ASN1_UNIT *in, OCSP_RESPONSE_BYTES **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of OCSP_RESPONSE
 * @{ */
/** A new response is OCSP_SUCCESSFUL without octets. Decoding takes any status. */
VELPKI_API OCSP_RESPONSE *new_OCSP_RESPONSE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OCSP_RESPONSE(OCSP_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_OCSP_RESPONSE(OCSP_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API OCSP_RESPONSE *dup_OCSP_RESPONSE(const OCSP_RESPONSE *p) VELPKI_NOEXCEPT;
VELPKI_API int OCSP_RESPONSE_to_Seq(const OCSP_RESPONSE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OCSP_RESPONSE(ASN1_UNIT *in, OCSP_RESPONSE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Encoding in standard form
 * @{ */
/** Encodes an entry with nextUpdate under [0] and the extensions under [1] (RFC 6960 4.2.1). */
VELPKI_API int OCSP_SINGLE_RESPONSE_to_Seq_strict(const OCSP_SINGLE_RESPONSE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Encodes response data with their entries in that form. */
VELPKI_API int OCSP_RESPONSE_DATA_to_Seq_strict(const OCSP_RESPONSE_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing OCSP_REQUEST
 * @{ */
/** A request as DER, the form of the wire, or under the PEM label "OCSP REQUEST"; results as asn1_io.h says. */
VELPKI_API int writeDER_OCSP_REQUEST_to_Binary(OCSP_REQUEST *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_OCSP_REQUEST_to_FILE(OCSP_REQUEST *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_OCSP_REQUEST_to_Binary(OCSP_REQUEST *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_OCSP_REQUEST_to_FILE(OCSP_REQUEST *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_OCSP_REQUEST_from_Binary(OCSP_REQUEST **out, const unsigned char *data,
                                                int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_OCSP_REQUEST_from_File(OCSP_REQUEST **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_OCSP_REQUEST_from_Binary(OCSP_REQUEST **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_OCSP_REQUEST_from_File(OCSP_REQUEST **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing OCSP_RESPONSE
 * @{ */
/** A response as DER, the form of the wire, or under the PEM label "OCSP RESPONSE"; results as asn1_io.h says. */
VELPKI_API int writeDER_OCSP_RESPONSE_to_Binary(OCSP_RESPONSE *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_OCSP_RESPONSE_to_FILE(OCSP_RESPONSE *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_OCSP_RESPONSE_to_Binary(OCSP_RESPONSE *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_OCSP_RESPONSE_to_FILE(OCSP_RESPONSE *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_OCSP_RESPONSE_from_Binary(OCSP_RESPONSE **out, const unsigned char *data,
                                                 int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_OCSP_RESPONSE_from_File(OCSP_RESPONSE **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_OCSP_RESPONSE_from_Binary(OCSP_RESPONSE **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_OCSP_RESPONSE_from_File(OCSP_RESPONSE **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Naming certificates
 * @{ */
/** Digests the DER of a name into `out` (PKV_MAX_DIGEST_LENGTH octets) and stores the length. 0, reason 49 or 3C, the
 * reason of the name's encoder, or PKV_ERR_UNSUPPORTED for an unknown digest. */
VELPKI_API int hash_X509_NAME(const X509_NAME *name, int digest, unsigned char *out, int *out_len) VELPKI_NOEXCEPT;
/** Tells whether an identifier names a certificate of an issuer: both hashes, of the received name and key octets under
 * the identifier's own digest, and the serial number. 0, or reason 49, 48 (an unknown digest), ERR_OCSP_CERT_ID
 * (another certificate), 3C or ERR_ASN1_DECODING. */
VELPKI_API int match_OCSP_CERT_ID(const OCSP_CERT_ID *id, const X509_CERT *cert,
                                  const X509_CERT *issuer) VELPKI_NOEXCEPT;
/** @} */

/** @name Asking
 * @{ */
/** Makes a request (as Seq_to_ stores one) for a certificate, with SHA-1. Without `nonce`, or with a length below 1, 16
 * random octets are drawn. Reasons: 12 (null slot), 11 (null certificate), FF (no key identifier), 49 (a certificate
 * without issuer or serial number), 3C.
 * @warning The hash of the issuer's key is not computed: it is the issuer's subjectKeyIdentifier as it stands, or
 * without an issuer the authorityKeyIdentifier of the certificate, which responders know only where that is the SHA-1
 * of the key. And the nonce stands in its extension without the OCTET STRING that RFC 8954 wants.
 * generate_single_OCSP_REQUEST_strict mends both. */
VELPKI_API int generate_single_OCSP_REQUEST(OCSP_REQUEST **request, X509_CERT *cert, X509_CERT *issuer_cert,
                                            const unsigned char *nonce, int nonce_len) VELPKI_NOEXCEPT;
/** Makes a request for a certificate of a given issuer: it hashes the received octets of the issuer's key with the
 * given digest, keeps the sign of the serial number, and wraps the nonce (at most 128 octets, else 2B). Reasons: 12
 * (null slot), 11 (null certificate or issuer), 48 (an unknown digest), FF (an issuer without a key), 2B, 3C,
 * ERR_ASN1_DECODING. */
VELPKI_API int generate_single_OCSP_REQUEST_strict(OCSP_REQUEST **request, const X509_CERT *cert,
                                                   const X509_CERT *issuer_cert, int digest, const unsigned char *nonce,
                                                   int nonce_len) VELPKI_NOEXCEPT;
/** Makes a request for a list of certificates (X509_CERT), and one of their issuers in the same order, which may be
 * null, shorter or have nulls in it. Reasons, 11 also for an empty list, and warning of generate_single_OCSP_REQUEST.
 */
VELPKI_API int generate_multi_OCSP_REQUEST(OCSP_REQUEST **request, STACK *certs, STACK *issuers,
                                           const unsigned char *nonce, int nonce_len) VELPKI_NOEXCEPT;
/** Signs a request with SHA-1, names the certificate's subject as the requestor where none is named, and carries the
 * certificate; `cert` may be null. The request stays as it was on failure. Reasons: 49, 29 (a key that is neither RSA
 * nor KCDSA), 2B (a digest without an algorithm), 3C.
 * @warning The algorithm recorded is ...WithRSAEncryption for a KCDSA key too, whose digest follows from the key. */
VELPKI_API int sign_OCSP_REQUEST(OCSP_REQUEST *request, ASYMMETRIC_KEY *key, X509_CERT *cert) VELPKI_NOEXCEPT;
/** As sign_OCSP_REQUEST, its warning included, with a digest of pkv.h: one of those that generate_BASIC_OCSP_RESPONSE
 * lists, else 2B. */
VELPKI_API int sign_OCSP_REQUEST_ex(OCSP_REQUEST *request, ASYMMETRIC_KEY *key, X509_CERT *cert,
                                    int digest) VELPKI_NOEXCEPT;
/** As sign_OCSP_REQUEST; but it signs with the algorithm given, as certificates are signed in standard form. Reasons:
 * 49, 48 (an unknown algorithm), ERR_ALGORITHM_MISMATCH (one that is not the key's), 3C. */
VELPKI_API int sign_OCSP_REQUEST_strict(OCSP_REQUEST *request, const ASYMMETRIC_KEY *key, const X509_CERT *cert,
                                        const OBJECT_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading an answer
 * @{ */
/** Decodes the basic response inside into a new record; null unless the status is OCSP_SUCCESSFUL and the type basic.
 */
VELPKI_API BASIC_OCSP_RESPONSE *get_BASIC_OCSP_RESPONSE(OCSP_RESPONSE *response) VELPKI_NOEXCEPT;
/** Decodes the basic response inside in standard form (as Seq_to_ stores one), and says why not: 49, 48 (another type),
 * ERR_OCSP_STATUS, 3C, ERR_ASN1_DECODING, ERR_TRAILING_OCTETS. */
VELPKI_API int get_BASIC_OCSP_RESPONSE_strict(const OCSP_RESPONSE *response, BASIC_OCSP_RESPONSE **out) VELPKI_NOEXCEPT;
/** Flags of verify_BASIC_OCSP_RESPONSE_strict. */
enum {
  OCSP_ALLOW_NO_NEXT_UPDATE = 1, /**< an answer that does not say when more is known is current for ever */
  OCSP_ALLOW_CLOCK_SKEW = 2      /**< the responder's clock may be 300 seconds away */
};
/** Verifies the signature with the signer's certificate, or with the first one carried where that is null, then the
 * nonce where one is given. Reasons: 49, 14 (no certificate), 18 (no encoded response data), 17 (no signature), 1B (an
 * RSA algorithm without a digest), 29 (a key that is neither RSA nor KCDSA), ERR_ASN1_DECODING (a malformed KCDSA
 * signature), 1A (no nonce), 19 (another nonce), or the provider's code.
 * @warning A carried certificate is believed, so an answer that anybody made verifies; nothing is said about which
 * certificate the answer is for, nor when; and nonces are compared up to their first zero octet only. See
 * verify_BASIC_OCSP_RESPONSE_strict. */
VELPKI_API int verify_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE *response, X509_CERT *signer_cert,
                                          const unsigned char *nonce, int nonce_len) VELPKI_NOEXCEPT;
/** verify_BASIC_OCSP_RESPONSE under a second name, its warning included. */
VELPKI_API int verfy_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE *response, X509_CERT *signer_cert,
                                         const unsigned char *nonce, int nonce_len) VELPKI_NOEXCEPT;
/** Answers whether the response says something current about `cert`, and lends what it says in `*answer` (which may be
 * null): `issuer` itself signed it, or a certificate that it carries and that `issuer` issued for OCSPSigning, valid at
 * `time` (null: now); the responder ID names that signer; an entry matches certificate and issuer as match_OCSP_CERT_ID
 * says; `time` lies in its interval, boundaries included; and a nonce that is given is in the response, wrapped, in
 * full (RFC 6960 3.2). Take the record from get_BASIC_OCSP_RESPONSE_strict. 0 says nothing of the status: look at the
 * answer. Reasons: 49, 18, 17, 19 and 1A as in verify_BASIC_OCSP_RESPONSE, ERR_OCSP_RESPONDER (no authorised signer),
 * ERR_OCSP_CERT_ID, ERR_OCSP_THIS_UPDATE, ERR_OCSP_NEXT_UPDATE (past, or absent without OCSP_ALLOW_NO_NEXT_UPDATE),
 * ERR_UNKNOWN_EXTENSION (a critical one), 3C, those of verify_SIG_X509_CERT_RFC5280 and the provider's. Whether the
 * issuer is trusted, and whether a delegate was itself revoked, is the caller's to know. Memory that ends while
 * candidates are looked at counts as a candidate that does not fit. */
VELPKI_API int verify_BASIC_OCSP_RESPONSE_strict(const BASIC_OCSP_RESPONSE *response, const X509_CERT *cert,
                                                 const X509_CERT *issuer, const unsigned char *nonce, int nonce_len,
                                                 const X509_TIME *time, unsigned flags,
                                                 const OCSP_SINGLE_RESPONSE **answer) VELPKI_NOEXCEPT;
/** The number of entries; -1 for null. */
VELPKI_API int get_CERT_STATUS_count_from_OCSP_RESPONSE(const BASIC_OCSP_RESPONSE *response) VELPKI_NOEXCEPT;
/** Lends the status of the entry for an identifier; null where there is none. A null `id` asks for the only entry. */
VELPKI_API OCSP_CERT_STATUS *get_CERT_STATUS_from_OCSP_RESPONSE(const BASIC_OCSP_RESPONSE *response,
                                                                const OCSP_CERT_ID *id) VELPKI_NOEXCEPT;
/** Lends the status of an entry by its position, from 0; null where there is none. */
VELPKI_API OCSP_CERT_STATUS *get_CERT_STATUS_from_OCSP_RESPONSE_index(const BASIC_OCSP_RESPONSE *response,
                                                                      int i) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading a request
 * @{ */
/** Verifies a request's signature over the octets that were received, with the signer's certificate or the first one
 * carried: the reasons and the warning of verify_BASIC_OCSP_RESPONSE. */
VELPKI_API int verify_OCSP_REQUEST(OCSP_REQUEST *request, X509_CERT *signer) VELPKI_NOEXCEPT;
/** As verify_OCSP_REQUEST; but it takes every algorithm of verify_SIG_X509_CERT_RFC5280 and needs the signer. */
VELPKI_API int verify_OCSP_REQUEST_strict(const OCSP_REQUEST *request, const X509_CERT *signer) VELPKI_NOEXCEPT;
/** 1 for a request that has a signature, else 0, for null too. Nothing is verified. */
VELPKI_API int is_OCSP_REQUEST_signature(const OCSP_REQUEST *req) VELPKI_NOEXCEPT;
/** Lends the first certificate carried; null when there is none. */
VELPKI_API X509_CERT *get_OCSP_REQUEST_signature_cert(const OCSP_REQUEST *req) VELPKI_NOEXCEPT;
/** The number of requests; -1 for null. */
VELPKI_API int get_OCSP_REQUEST_list_count(const OCSP_REQUEST *req) VELPKI_NOEXCEPT;
/** Lends the list of requests (OCSP_SINGLE_REQUEST); null for null. */
VELPKI_API STACK *get_OCSP_REQUEST_list(const OCSP_REQUEST *req) VELPKI_NOEXCEPT;
/** The octets of the nonce, which is the value of its extension as it stands, an inner OCTET STRING included: what a
 * response gives back. 0 when there is none. */
VELPKI_API int get_OCSP_REQUEST_nonce_length(const OCSP_REQUEST *req) VELPKI_NOEXCEPT;
/** Copies those octets: 0, or reason 49, 1A (none) or 2B (no room). */
VELPKI_API int get_OCSP_REQUEST_nonce(const OCSP_REQUEST *req, unsigned char *out, int capacity) VELPKI_NOEXCEPT;
/** @} */

/** @name Answering
 * @{ */
/** Appends an entry to the list at `*responses`, which it makes when that is null; everything is copied. `revoked`
 * belongs to OCSP_STATUS_REVOKED, `next_update` and `extensions` may be null. Reasons: 49, 2B (no such status), 3C. */
VELPKI_API int add_single_OCSP_RESPONSE(STACK **responses, const OCSP_CERT_ID *id, int status,
                                        const OCSP_REVOKED_INFO *revoked, const GENERALIZED_TIME *this_update,
                                        const GENERALIZED_TIME *next_update,
                                        const X509_EXTENSIONS *extensions) VELPKI_NOEXCEPT;
/** Makes response data of copies, produced at the present time, by the responder's name or key (`by_key` not 0). A
 * nonce of 1 octet or more goes into the extension as it is. Reasons: 49, 3C, 12 (no clock). */
VELPKI_API int generate_OCSP_RESPONSE_DATA(OCSP_RESPONSE_DATA **data, X509_CERT *responder, int by_key,
                                           STACK *responses, const unsigned char *nonce, int nonce_len) VELPKI_NOEXCEPT;
/** Signs response data into a basic response, with SHA-1, and carries `certs` (or null); all is copied. Algorithms
 * recorded: sha1, sha224, sha256, sha384, sha512 and md5WithRSAEncryption; reasons and warning as sign_OCSP_REQUEST_ex.
 * @warning The entries have the house form of OCSP_SINGLE_RESPONSE_to_Seq, which others do not read.
 * generate_BASIC_OCSP_RESPONSE_strict writes the standard form. */
VELPKI_API int generate_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE **response, OCSP_RESPONSE_DATA *data,
                                            ASYMMETRIC_KEY *key, X509_CERTIFICATES *certs) VELPKI_NOEXCEPT;
/** As generate_BASIC_OCSP_RESPONSE, its warning included, with a digest of pkv.h. */
VELPKI_API int generate_BASIC_OCSP_RESPONSE_ex(BASIC_OCSP_RESPONSE **response, OCSP_RESPONSE_DATA *data,
                                               ASYMMETRIC_KEY *key, X509_CERTIFICATES *certs,
                                               int digest) VELPKI_NOEXCEPT;
/** As generate_BASIC_OCSP_RESPONSE; but it writes the standard form and signs with the algorithm given, with the
 * reasons of sign_OCSP_REQUEST_strict. */
VELPKI_API int generate_BASIC_OCSP_RESPONSE_strict(BASIC_OCSP_RESPONSE **response, const OCSP_RESPONSE_DATA *data,
                                                   const ASYMMETRIC_KEY *key, const X509_CERTIFICATES *certs,
                                                   const OBJECT_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** Makes a response of a status. One of OCSP_SUCCESSFUL carries `basic`, encoded; one of another status, nothing.
 * Reasons: 49, 2B (no such status), 3C. */
VELPKI_API int generate_OCSP_RESPONSE(OCSP_RESPONSE **response, int status, BASIC_OCSP_RESPONSE *basic) VELPKI_NOEXCEPT;
/** Encodes a basic response into a new record of the type basic, for a response that is put together by hand. Reasons:
 * 49, 3C, or those of its encoder. */
VELPKI_API int generate_OCSP_RESPONSE_BYTES(OCSP_RESPONSE_BYTES **bytes, BASIC_OCSP_RESPONSE *basic) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
