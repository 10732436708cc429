/* velpki/pkcs1.h: RSA keys and the parameters of RSAES-OAEP and RSASSA-PSS (RFC 8017, appendix A).
 *
 * Families behave as docs/conventions.md says of SAMPLE. Conventions: docs/conventions.md. */
#ifndef VELPKI_PKCS1_H
#define VELPKI_PKCS1_H

#include <velpki/x509.h>

VELPKI_BEGIN

/* Keys (A.1). */

/* RSAPrivateKey of two primes. The numbers are wiped when they are released. */
typedef struct {
  int version; /* 0 */
  BIGINT *n;
  BIGINT *e;
  BIGINT *d;
  BIGINT *p;
  BIGINT *q;
  BIGINT *dP;
  BIGINT *dQ;
  BIGINT *qInv;
} PKCS1_RSA_PRIVATE_KEY;

typedef struct {
  BIGINT *n;
  BIGINT *e;
} PKCS1_RSA_PUBLIC_KEY;

/* Codes: F_P1_PRIV_KEY_INFO_TO_SEQ, F_P1_PUB_KEY_INFO_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING (a number is missing, or
 * the version is not 0); F_SEQ_TO_P1_PRIV_KEY_INFO, F_SEQ_TO_P1_PUB_KEY_INFO with 49, 3C or ERR_ASN1_DECODING, which a
 * key of more than two primes and any other number of elements than nine or two are too. The numbers are not checked
 * against each other (PKV_Check_RSA does). Units, octets and text that are handed out are the caller's to wipe; what is
 * used on the way is wiped. */
VELPKI_API PKCS1_RSA_PRIVATE_KEY *new_PKCS1_RSA_PRIVATE_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS1_RSA_PRIVATE_KEY(PKCS1_RSA_PRIVATE_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS1_RSA_PRIVATE_KEY(PKCS1_RSA_PRIVATE_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS1_RSA_PRIVATE_KEY *dup_PKCS1_RSA_PRIVATE_KEY(const PKCS1_RSA_PRIVATE_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API int PKCS1_RSA_PRIVATE_KEY_to_Seq(const PKCS1_RSA_PRIVATE_KEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_PKCS1_RSA_PRIVATE_KEY(ASN1_UNIT *in, PKCS1_RSA_PRIVATE_KEY **out) VELPKI_NOEXCEPT;
VELPKI_API PKCS1_RSA_PUBLIC_KEY *new_PKCS1_RSA_PUBLIC_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS1_RSA_PUBLIC_KEY(PKCS1_RSA_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS1_RSA_PUBLIC_KEY(PKCS1_RSA_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS1_RSA_PUBLIC_KEY *dup_PKCS1_RSA_PUBLIC_KEY(const PKCS1_RSA_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API int PKCS1_RSA_PUBLIC_KEY_to_Seq(const PKCS1_RSA_PUBLIC_KEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_PKCS1_RSA_PUBLIC_KEY(ASN1_UNIT *in, PKCS1_RSA_PUBLIC_KEY **out) VELPKI_NOEXCEPT;

/* set_RSA_UNIT_to_P1_... copies a provider key's numbers into a record: 0, or F_SET_RSA_UNIT_TO_P1_PRIV_KEY,
 * F_SET_RSA_UNIT_TO_P1_PUB_KEY with 49, 3C, or 2B for a key without those numbers (a private key without its primes, or
 * one that signs elsewhere). get_RSA_UNIT_from_... makes a new provider key; null when a number is missing, or memory.
 */
VELPKI_API int set_RSA_UNIT_to_P1_PRIV_KEY(PKCS1_RSA_PRIVATE_KEY *record, const RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int set_RSA_UNIT_to_P1_PUB_KEY(PKCS1_RSA_PUBLIC_KEY *record, const RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API RSA_UNIT *get_RSA_UNIT_from_PRIV_KEY(const PKCS1_RSA_PRIVATE_KEY *record) VELPKI_NOEXCEPT;
VELPKI_API RSA_UNIT *get_RSA_UNIT_from_PUB_KEY(const PKCS1_RSA_PUBLIC_KEY *record) VELPKI_NOEXCEPT;

/* @warning The labels written are "PKV_RSA PRIVATE KEY" and "PKV_RSA PUBLIC KEY", which other programs do not know; the
 * readers take these, "RSA PRIVATE KEY", "RSA PUBLIC KEY" and any other label. writePEM_..._RFC7468 writes the usual
 * ones. Encrypted PEM (with header lines) is not read. */
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
VELPKI_API int writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary_RFC7468(PKCS1_RSA_PRIVATE_KEY *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary_RFC7468(PKCS1_RSA_PUBLIC_KEY *in, char **out) VELPKI_NOEXCEPT;

/* Parameters (A.2.1 and A.2.3). */

/* A member that is null has its default: SHA-1, MGF1 with SHA-1, an empty label, a salt of 20 octets, trailer 1. A
 * member that equals its default is not written. */
typedef struct {
  X509_ALGO_IDENTIFIER *hashAlgorithm;
  X509_ALGO_IDENTIFIER *maskGenAlgorithm; /* id-mgf1, whose parameters are the AlgorithmIdentifier of its hash */
  X509_ALGO_IDENTIFIER *pSourceAlgorithm; /* id-pSpecified, whose parameters are the label's OCTET STRING */
} RSAES_OAEP_PARAM;

typedef struct {
  X509_ALGO_IDENTIFIER *hashAlgorithm;
  X509_ALGO_IDENTIFIER *maskGenAlgorithm;
  BIGINT *saltLength;
  BIGINT *trailerField;
} RSASSA_PSS_PARAM;

/* Codes: F_RSAES_OAEP_PARAM_TO_SEQ, F_RSASSA_PSS_PARAM_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING (also for a trailer
 * other than 1); F_SEQ_TO_RSAES_OAEP_PARAM, F_SEQ_TO_RSASSA_PSS_PARAM with 49, 3C or ERR_ASN1_DECODING (also for a
 * negative salt length, another trailer, and elements out of order or left over). Any algorithm decodes. */
VELPKI_API RSAES_OAEP_PARAM *new_RSAES_OAEP_PARAM(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RSAES_OAEP_PARAM(RSAES_OAEP_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_RSAES_OAEP_PARAM(RSAES_OAEP_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API RSAES_OAEP_PARAM *dup_RSAES_OAEP_PARAM(const RSAES_OAEP_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API int RSAES_OAEP_PARAM_to_Seq(const RSAES_OAEP_PARAM *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_RSAES_OAEP_PARAM(ASN1_UNIT *in, RSAES_OAEP_PARAM **out) VELPKI_NOEXCEPT;
VELPKI_API RSASSA_PSS_PARAM *new_RSASSA_PSS_PARAM(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RSASSA_PSS_PARAM(RSASSA_PSS_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_RSASSA_PSS_PARAM(RSASSA_PSS_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API RSASSA_PSS_PARAM *dup_RSASSA_PSS_PARAM(const RSASSA_PSS_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API int RSASSA_PSS_PARAM_to_Seq(const RSASSA_PSS_PARAM *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_RSASSA_PSS_PARAM(ASN1_UNIT *in, RSASSA_PSS_PARAM **out) VELPKI_NOEXCEPT;

/* Setters store copies, and null takes the member away. Each returns 0 or its own code with 49 (no record), 3C or 2B (a
 * trailer other than 1); set_RSASSA_PSS_PARAM_saltLength, which has no code, 1 (also for a negative length). */
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
VELPKI_API int set_RSASSA_PSS_PARAM_saltLength(RSASSA_PSS_PARAM *param, int salt_length) VELPKI_NOEXCEPT;
VELPKI_API int set_RSASSA_PSS_PARAM_trailerField(RSASSA_PSS_PARAM *param, int trailer) VELPKI_NOEXCEPT;

/* The same in the provider's terms. set_..._values fills a record for a digest, a digest of MGF1, and a salt length or
 * a label; F_SET_..._HASHALGORITHM with 49, 3C, 2B (a negative length) or 48 (a digest without a registry row).
 * get_..._values tells what a record means, defaults included; outputs may be null, the label is lent. F_SEQ_TO_...
 * with 49, 48 for a hash or mask generation that the provider lacks, ERR_ASN1_DECODING for parameters of these that are
 * malformed or a salt above INT_MAX. */
VELPKI_API int set_RSAES_OAEP_PARAM_values(RSAES_OAEP_PARAM *param, int digest_id, int mgf_digest_id,
                                           const unsigned char *label, int label_length) VELPKI_NOEXCEPT;
VELPKI_API int get_RSAES_OAEP_PARAM_values(const RSAES_OAEP_PARAM *param, int *digest_id, int *mgf_digest_id,
                                           const unsigned char **label, int *label_length) VELPKI_NOEXCEPT;
VELPKI_API int set_RSASSA_PSS_PARAM_values(RSASSA_PSS_PARAM *param, int digest_id, int mgf_digest_id,
                                           int salt_length) VELPKI_NOEXCEPT;
VELPKI_API int get_RSASSA_PSS_PARAM_values(const RSASSA_PSS_PARAM *param, int *digest_id, int *mgf_digest_id,
                                           int *salt_length) VELPKI_NOEXCEPT;

VELPKI_END

#endif
