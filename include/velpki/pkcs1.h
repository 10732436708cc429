/** @file velpki/pkcs1.h
 * RSA keys and the parameters of RSAES-OAEP and RSASSA-PSS (RFC 8017, appendix A).
 *
 * Public keys inside certificates are X509_PUBKEY records (x509.h) and private keys in files mostly PKCS#8 containers
 * (pkcs8.h); the records here are the bare RSAPrivateKey and RSAPublicKey, and a way from and to the provider's
 * RSA_UNIT.
 *
 * Families behave as docs/conventions.md says of SAMPLE. */
#ifndef VELPKI_PKCS1_H
#define VELPKI_PKCS1_H

#include <velpki/x509.h>

VELPKI_BEGIN

/** RSAPrivateKey of two primes (RFC 8017 A.1.2). The numbers are wiped when they are released. */
typedef struct {
  int version;  /**< 0 */
  BIGINT *n;    /**< modulus */
  BIGINT *e;    /**< publicExponent */
  BIGINT *d;    /**< privateExponent */
  BIGINT *p;    /**< prime1 */
  BIGINT *q;    /**< prime2 */
  BIGINT *dP;   /**< exponent1, d mod (p - 1) */
  BIGINT *dQ;   /**< exponent2, d mod (q - 1) */
  BIGINT *qInv; /**< coefficient, the inverse of q modulo p */
} PKCS1_RSA_PRIVATE_KEY;

/** RSAPublicKey (RFC 8017 A.1.1). */
typedef struct {
  BIGINT *n; /**< modulus */
  BIGINT *e; /**< publicExponent */
} PKCS1_RSA_PUBLIC_KEY;

/** @name The family of PKCS1_RSA_PRIVATE_KEY
 * @{ */
/** A new key has no numbers. Codes: F_P1_PRIV_KEY_INFO_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING (a number is missing, or
 * the version is not 0); F_SEQ_TO_P1_PRIV_KEY_INFO with 49, 3C or ERR_ASN1_DECODING, which a key of more than two
 * primes and any other number of elements than nine are too. The numbers are not checked against each other
 * (PKV_Check_RSA does). Units that are handed out are the caller's to wipe; what is used on the way is wiped. */
VELPKI_API PKCS1_RSA_PRIVATE_KEY *new_PKCS1_RSA_PRIVATE_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS1_RSA_PRIVATE_KEY(PKCS1_RSA_PRIVATE_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS1_RSA_PRIVATE_KEY(PKCS1_RSA_PRIVATE_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS1_RSA_PRIVATE_KEY *dup_PKCS1_RSA_PRIVATE_KEY(const PKCS1_RSA_PRIVATE_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API int PKCS1_RSA_PRIVATE_KEY_to_Seq(const PKCS1_RSA_PRIVATE_KEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_PKCS1_RSA_PRIVATE_KEY(ASN1_UNIT *in, PKCS1_RSA_PRIVATE_KEY **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of PKCS1_RSA_PUBLIC_KEY
 * @{ */
/** A new key has no numbers. Codes: F_P1_PUB_KEY_INFO_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING (a number is missing);
 * F_SEQ_TO_P1_PUB_KEY_INFO with 49, 3C or ERR_ASN1_DECODING, which any other number of elements than two is too. */
VELPKI_API PKCS1_RSA_PUBLIC_KEY *new_PKCS1_RSA_PUBLIC_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS1_RSA_PUBLIC_KEY(PKCS1_RSA_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS1_RSA_PUBLIC_KEY(PKCS1_RSA_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS1_RSA_PUBLIC_KEY *dup_PKCS1_RSA_PUBLIC_KEY(const PKCS1_RSA_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API int PKCS1_RSA_PUBLIC_KEY_to_Seq(const PKCS1_RSA_PUBLIC_KEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_PKCS1_RSA_PUBLIC_KEY(ASN1_UNIT *in, PKCS1_RSA_PUBLIC_KEY **out) VELPKI_NOEXCEPT;
/** @} */

/** @name From and to the provider's keys
 * @{ */
/** Copies a provider key's numbers into a record: 0, or F_SET_RSA_UNIT_TO_P1_PRIV_KEY with 49, 3C, or 2B for a key
 * without those numbers (a public key, one without its primes, or one that signs elsewhere). */
VELPKI_API int set_RSA_UNIT_to_P1_PRIV_KEY(PKCS1_RSA_PRIVATE_KEY *record, const RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Copies n and e into a record: 0, or F_SET_RSA_UNIT_TO_P1_PUB_KEY with 49, 3C, or 2B for a key without them. */
VELPKI_API int set_RSA_UNIT_to_P1_PUB_KEY(PKCS1_RSA_PUBLIC_KEY *record, const RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Makes a new provider key of the record's numbers, released with PKV_Free_RSA; null when a number is missing, or
 * memory. */
VELPKI_API RSA_UNIT *get_RSA_UNIT_from_PRIV_KEY(const PKCS1_RSA_PRIVATE_KEY *record) VELPKI_NOEXCEPT;
/** Makes a new provider key of n and e, released with PKV_Free_RSA; null when one is missing, or memory. */
VELPKI_API RSA_UNIT *get_RSA_UNIT_from_PUB_KEY(const PKCS1_RSA_PUBLIC_KEY *record) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing PKCS1_RSA_PRIVATE_KEY
 * @{ */
/** RSAPrivateKey as DER or PEM; results as asn1_io.h says. Octets and text that are made are the caller's to wipe.
 * @warning The label written is "PKV_RSA PRIVATE KEY", which other programs do not know; the readers take this, "RSA
 * PRIVATE KEY" and any other label. writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary_RFC7468 writes the usual one. Encrypted
 * PEM (with header lines) is not read. */
VELPKI_API int writeDER_PKCS1_RSA_PRIVATE_KEY_to_Binary(PKCS1_RSA_PRIVATE_KEY *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS1_RSA_PRIVATE_KEY_to_FILE(PKCS1_RSA_PRIVATE_KEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary(PKCS1_RSA_PRIVATE_KEY *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS1_RSA_PRIVATE_KEY_to_FILE(PKCS1_RSA_PRIVATE_KEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS1_RSA_PRIVATE_KEY_from_Binary(PKCS1_RSA_PRIVATE_KEY **out, const unsigned char *data,
                                                         int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS1_RSA_PRIVATE_KEY_from_File(PKCS1_RSA_PRIVATE_KEY **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS1_RSA_PRIVATE_KEY_from_Binary(PKCS1_RSA_PRIVATE_KEY **out, const char *text,
                                                         int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS1_RSA_PRIVATE_KEY_from_File(PKCS1_RSA_PRIVATE_KEY **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing PKCS1_RSA_PUBLIC_KEY
 * @{ */
/** RSAPublicKey as DER or PEM; results as asn1_io.h says.
 * @warning The label written is "PKV_RSA PUBLIC KEY", which other programs do not know; the readers take this, "RSA
 * PUBLIC KEY" and any other label. writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary_RFC7468 writes the usual one. */
VELPKI_API int writeDER_PKCS1_RSA_PUBLIC_KEY_to_Binary(PKCS1_RSA_PUBLIC_KEY *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS1_RSA_PUBLIC_KEY_to_FILE(PKCS1_RSA_PUBLIC_KEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary(PKCS1_RSA_PUBLIC_KEY *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS1_RSA_PUBLIC_KEY_to_FILE(PKCS1_RSA_PUBLIC_KEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS1_RSA_PUBLIC_KEY_from_Binary(PKCS1_RSA_PUBLIC_KEY **out, const unsigned char *data,
                                                        int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS1_RSA_PUBLIC_KEY_from_File(PKCS1_RSA_PUBLIC_KEY **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS1_RSA_PUBLIC_KEY_from_Binary(PKCS1_RSA_PUBLIC_KEY **out, const char *text,
                                                        int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS1_RSA_PUBLIC_KEY_from_File(PKCS1_RSA_PUBLIC_KEY **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name PEM under the usual labels
 * @{ */
/** Writes PEM under the label "RSA PRIVATE KEY"; else as writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary. */
VELPKI_API int writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary_RFC7468(PKCS1_RSA_PRIVATE_KEY *in, char **out) VELPKI_NOEXCEPT;
/** Writes PEM under the label "RSA PUBLIC KEY"; else as writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary. */
VELPKI_API int writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary_RFC7468(PKCS1_RSA_PUBLIC_KEY *in, char **out) VELPKI_NOEXCEPT;
/** @} */

/* Parameters (A.2.1 and A.2.3). */

/** RSAES-OAEP-params (RFC 8017 A.2.1). A member that is null has its default: SHA-1, MGF1 with SHA-1, an empty label. A
 * member that equals its default is not written. */
typedef struct {
  X509_ALGO_IDENTIFIER *hashAlgorithm;    /**< the digest of the label */
  X509_ALGO_IDENTIFIER *maskGenAlgorithm; /**< id-mgf1, whose parameters are the AlgorithmIdentifier of its hash */
  X509_ALGO_IDENTIFIER *pSourceAlgorithm; /**< id-pSpecified, whose parameters are the label's OCTET STRING */
} RSAES_OAEP_PARAM;

/** RSASSA-PSS-params (RFC 8017 A.2.3). A member that is null has its default: SHA-1, MGF1 with SHA-1, a salt of 20
 * octets, trailer 1. A member that equals its default is not written. */
typedef struct {
  X509_ALGO_IDENTIFIER *hashAlgorithm;    /**< the digest of the message */
  X509_ALGO_IDENTIFIER *maskGenAlgorithm; /**< as in RSAES_OAEP_PARAM */
  BIGINT *saltLength;                     /**< octets */
  BIGINT *trailerField;                   /**< 1, for the octet BC */
} RSASSA_PSS_PARAM;

/** @name The family of RSAES_OAEP_PARAM
 * @{ */
/** New parameters have every default. Codes: F_RSAES_OAEP_PARAM_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING;
 * F_SEQ_TO_RSAES_OAEP_PARAM with 49, 3C or ERR_ASN1_DECODING (also for elements out of order or left over). Any
 * algorithm decodes. */
VELPKI_API RSAES_OAEP_PARAM *new_RSAES_OAEP_PARAM(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RSAES_OAEP_PARAM(RSAES_OAEP_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_RSAES_OAEP_PARAM(RSAES_OAEP_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API RSAES_OAEP_PARAM *dup_RSAES_OAEP_PARAM(const RSAES_OAEP_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API int RSAES_OAEP_PARAM_to_Seq(const RSAES_OAEP_PARAM *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_RSAES_OAEP_PARAM(ASN1_UNIT *in, RSAES_OAEP_PARAM **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of RSASSA_PSS_PARAM
 * @{ */
/** New parameters have every default. Codes: F_RSASSA_PSS_PARAM_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING (also for a
 * trailer other than 1); F_SEQ_TO_RSASSA_PSS_PARAM with 49, 3C or ERR_ASN1_DECODING (also for a negative salt length,
 * another trailer, and elements out of order or left over). Any algorithm decodes. */
VELPKI_API RSASSA_PSS_PARAM *new_RSASSA_PSS_PARAM(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RSASSA_PSS_PARAM(RSASSA_PSS_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_RSASSA_PSS_PARAM(RSASSA_PSS_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API RSASSA_PSS_PARAM *dup_RSASSA_PSS_PARAM(const RSASSA_PSS_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API int RSASSA_PSS_PARAM_to_Seq(const RSASSA_PSS_PARAM *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_RSASSA_PSS_PARAM(ASN1_UNIT *in, RSASSA_PSS_PARAM **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Algorithms of parameters
 * @{ */
/** Stores a copy in place of the member; null takes the member away. 0, or the function's own code
 * (F_SET_RSAES_OAEP_PARAM_HASHALGORITHM and so on) with 49 (no record) or 3C. */
VELPKI_API int set_RSAES_OAEP_PARAM_hashAlgorithm(RSAES_OAEP_PARAM *param,
                                                  const X509_ALGO_IDENTIFIER *hash) VELPKI_NOEXCEPT;
VELPKI_API int set_RSAES_OAEP_PARAM_maskGenAlgorithm(RSAES_OAEP_PARAM *param,
                                                     const X509_ALGO_IDENTIFIER *mask) VELPKI_NOEXCEPT;
VELPKI_API int set_RSAES_OAEP_PARAM_pSourceAlgorithm(RSAES_OAEP_PARAM *param,
                                                     const X509_ALGO_IDENTIFIER *source) VELPKI_NOEXCEPT;
VELPKI_API int set_RSASSA_PSS_PARAM_hashAlgorithm(RSASSA_PSS_PARAM *param,
                                                  const X509_ALGO_IDENTIFIER *hash) VELPKI_NOEXCEPT;
VELPKI_API int set_RSASSA_PSS_PARAM_maskGenAlgorithm(RSASSA_PSS_PARAM *param,
                                                     const X509_ALGO_IDENTIFIER *mask) VELPKI_NOEXCEPT;
/** @} */

/** @name Numbers of parameters
 * @{ */
/** Sets the salt's octets: 0, or 1 for null, a negative length, or no memory. */
VELPKI_API int set_RSASSA_PSS_PARAM_saltLength(RSASSA_PSS_PARAM *param, int salt_length) VELPKI_NOEXCEPT;
/** Sets the trailer: 0, or F_SET_RSASSA_PSS_PARAM_TRAILERFIELD with 49, 3C, or 2B for any other than 1. */
VELPKI_API int set_RSASSA_PSS_PARAM_trailerField(RSASSA_PSS_PARAM *param, int trailer) VELPKI_NOEXCEPT;
/** @} */

/** @name Parameters in the provider's terms
 * @{ */
/** Fills a record for a digest, a digest of MGF1 and a label (null and 0 for the empty one), by the identifiers of
 * pkv.h. F_SET_RSAES_OAEP_PARAM_HASHALGORITHM with 49, 3C, 2B (a negative length) or 48 (a digest without a registry
 * row). */
VELPKI_API int set_RSAES_OAEP_PARAM_values(RSAES_OAEP_PARAM *param, int digest_id, int mgf_digest_id,
                                           const unsigned char *label, int label_length) VELPKI_NOEXCEPT;
/** Tells what a record means, defaults included; outputs may be null, the label is lent. F_SEQ_TO_RSAES_OAEP_PARAM with
 * 49, 3C, 48 for a hash, mask generation or label source that the provider lacks, ERR_ASN1_DECODING for parameters of
 * these that are malformed. */
VELPKI_API int get_RSAES_OAEP_PARAM_values(const RSAES_OAEP_PARAM *param, int *digest_id, int *mgf_digest_id,
                                           const unsigned char **label, int *label_length) VELPKI_NOEXCEPT;
/** Fills a record for a digest, a digest of MGF1 and the octets of a salt. F_SET_RSASSA_PSS_PARAM_HASHALGORITHM with
 * 49, 3C, 2B (a negative length) or 48 (a digest without a registry row). */
VELPKI_API int set_RSASSA_PSS_PARAM_values(RSASSA_PSS_PARAM *param, int digest_id, int mgf_digest_id,
                                           int salt_length) VELPKI_NOEXCEPT;
/** Tells what a record means, defaults included; outputs may be null. F_SEQ_TO_RSASSA_PSS_PARAM with 49, 3C, 48 for a
 * hash or mask generation that the provider lacks, ERR_ASN1_DECODING for parameters of these that are malformed or a
 * salt above INT_MAX. */
VELPKI_API int get_RSASSA_PSS_PARAM_values(const RSASSA_PSS_PARAM *param, int *digest_id, int *mgf_digest_id,
                                           int *salt_length) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
