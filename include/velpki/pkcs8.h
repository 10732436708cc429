/* velpki/pkcs8.h: private keys, plain and encrypted (RFC 5208, RFC 5958).
 *
 * PKCS8 is the container that a key file holds (signPri.key of an accredited key pair, "ENCRYPTED PRIVATE KEY");
 * P8_PRIV_KEY_INFO is what it contains. pkcs5.h turns one into the other under a password.
 *
 * Families behave as docs/conventions.md says of SAMPLE. Setters copy and return 0 or 1; getters lend. Conventions:
 * docs/conventions.md. */
#ifndef VELPKI_PKCS8_H
#define VELPKI_PKCS8_H

#include <velpki/x509.h>

VELPKI_BEGIN

/* A private key in an encoding that this library does not make itself, as it was read; opaque. */
typedef struct p8_kept_key P8_KEPT_KEY;

/* PrivateKeyInfo. */
typedef struct {
  BIGINT *version;
  OBJECT_IDENTIFIER *algorithm;
  ASYMMETRIC_KEY *key;
  X509_ATTRIBUTES *attributes; /* null when absent */
  P8_KEPT_KEY *kept;           /* see Seq_to_P8_PRIV_KEY_INFO_RFC5280 */
} P8_PRIV_KEY_INFO;

/* Kinds of container. */
enum { PKCS8_NATIONAL = 0, PKCS8_PBES1 = 1, PKCS8_PBES2 = 2 };

/* EncryptedPrivateKeyInfo. */
typedef struct {
  int kind;                        /* one of the above; PKCS8_PBES1 after decoding for every other algorithm, too */
  X509_ALGO_IDENTIFIER *algorithm; /* its parameters are a P5_PBE_PARAM, encoded */
  OCTET_STRING *encryptedData;
} PKCS8;

typedef struct p5_pbe_param P5_PBE_PARAM; /* pkcs5.h */

/* Private keys. */

/* new_P8_PRIV_KEY_INFO makes version 0, an empty key and an empty set of attributes. Numbers, kept octets and the
 * values of the attributes are wiped when they are released. */
VELPKI_API P8_PRIV_KEY_INFO *new_P8_PRIV_KEY_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void clean_P8_PRIV_KEY_INFO(P8_PRIV_KEY_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void free_P8_PRIV_KEY_INFO(P8_PRIV_KEY_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API P8_PRIV_KEY_INFO *dup_P8_PRIV_KEY_INFO(const P8_PRIV_KEY_INFO *p) VELPKI_NOEXCEPT;
/* gen_P8_PRIV_KEY_INFO makes the record of a key: "rsaEncryption", "kcdsa1" or "id-ecPublicKey" by the key's type, and
 * copies of key and attributes, which may be null. Null for a key that is empty. */
VELPKI_API P8_PRIV_KEY_INFO *gen_P8_PRIV_KEY_INFO(const ASYMMETRIC_KEY *key,
                                                  const X509_ATTRIBUTES *attributes) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *get_PRIV_KEY_version(const P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
VELPKI_API int set_PRIV_KEY_version(P8_PRIV_KEY_INFO *key, const BIGINT *version) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_PRIV_KEY_OID(const P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
VELPKI_API int set_PRIV_KEY_OID(P8_PRIV_KEY_INFO *key, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API ASYMMETRIC_KEY *get_PRIV_KEY_KeyParams(const P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/* set_PRIV_KEY_KeyParams drops kept octets. */
VELPKI_API int set_PRIV_KEY_KeyParams(P8_PRIV_KEY_INFO *key, const ASYMMETRIC_KEY *params) VELPKI_NOEXCEPT;
/* get_PRIV_KEY_kept lends the content of the privateKey OCTET STRING of a key that was kept; null, and length 0, for
 * any other. */
VELPKI_API const unsigned char *get_PRIV_KEY_kept(const P8_PRIV_KEY_INFO *key, int *length) VELPKI_NOEXCEPT;

/* PrivateKeyInfo ::= SEQUENCE { version, privateKeyAlgorithm, privateKey OCTET STRING, attributes [0] IMPLICIT
 * OPTIONAL, publicKey [1] IMPLICIT OPTIONAL }, version 0 or 1; the public key is read over and not written, nor is an
 * empty set of attributes. The key octets: RSAPrivateKey with parameters NULL (RFC 8017); for KCDSA the INTEGER x under
 * the domain parameters, y being computed; for curves prime256v1, secp384r1 and secp521r1 ECPrivateKey (RFC 5915),
 * written with the public point. An RSA key of eight numbers without version, as X509_PUBKEY has it, is read too.
 * Codes: F_P8_PRIV_KEY_INFO_TO_SEQ with ERR_ASN1_ENCODING for an algorithm that is not the key's, and for a key that is
 * not private or (RSA) lacks the values of the Chinese remainder theorem; F_SEQ_TO_P8_PRIV_KEY_INFO with
 * ERR_ASN1_DECODING.
 * @warning A key of any other algorithm is refused. Seq_to_P8_PRIV_KEY_INFO_RFC5280 keeps it: `key` stays empty, and
 * the parameters and octets that were read are written back; an RSASSA-PSS key has both. */
VELPKI_API int P8_PRIV_KEY_INFO_to_Seq(const P8_PRIV_KEY_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P8_PRIV_KEY_INFO(ASN1_UNIT *in, P8_PRIV_KEY_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P8_PRIV_KEY_INFO_RFC5280(ASN1_UNIT *in, P8_PRIV_KEY_INFO **out) VELPKI_NOEXCEPT;

/* The encrypted container. */

VELPKI_API PKCS8 *new_PKCS8(void) VELPKI_NOEXCEPT; /* all members zero */
VELPKI_API void clean_PKCS8(PKCS8 *p) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS8(PKCS8 *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS8 *dup_PKCS8(const PKCS8 *p) VELPKI_NOEXCEPT;
VELPKI_API OCTET_STRING *get_encryptedData_PKCS8(const PKCS8 *p8) VELPKI_NOEXCEPT;
VELPKI_API int set_encryptedData_PKCS8(PKCS8 *p8, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_OID_PKCS8(const PKCS8 *p8) VELPKI_NOEXCEPT;
/* set_OID_PKCS8 keeps the parameters, and leaves `kind` to the caller. */
VELPKI_API int set_OID_PKCS8(PKCS8 *p8, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/* get_PKCS8_P5_PBE_PARAM decodes the parameters into a new record, null when they are none; set_PKCS8_P5_PBE_PARAM
 * encodes them, as P5_PBE_PARAM_to_Seq does. */
VELPKI_API P5_PBE_PARAM *get_PKCS8_P5_PBE_PARAM(const PKCS8 *p8) VELPKI_NOEXCEPT;
VELPKI_API int set_PKCS8_P5_PBE_PARAM(PKCS8 *p8, const P5_PBE_PARAM *param) VELPKI_NOEXCEPT;

/* EncryptedPrivateKeyInfo ::= SEQUENCE { encryptionAlgorithm AlgorithmIdentifier, encryptedData OCTET STRING }. Codes:
 * F_P8_ENCRYPTED_KEY_TO_SEQ and F_SEQ_TO_P8_ENCRYPTED_KEY. */
VELPKI_API int P8_ENCRYPTED_KEY_to_Seq(const PKCS8 *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P8_ENCRYPTED_KEY(ASN1_UNIT *in, PKCS8 **out) VELPKI_NOEXCEPT;

/* Readers and writers. Labels: "PRIVATE KEY" and "ENCRYPTED PRIVATE KEY". See asn1_io.h for results. */

VELPKI_API int writeDER_PKCS8_to_Binary(PKCS8 *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS8_to_FILE(PKCS8 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS8_to_Binary(PKCS8 *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS8_to_FILE(PKCS8 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS8_from_Binary(PKCS8 **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS8_from_File(PKCS8 **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS8_from_Binary(PKCS8 **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS8_from_File(PKCS8 **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_P8_PRIV_KEY_INFO_to_Binary(P8_PRIV_KEY_INFO *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_P8_PRIV_KEY_INFO_to_FILE(P8_PRIV_KEY_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P8_PRIV_KEY_INFO_to_Binary(P8_PRIV_KEY_INFO *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P8_PRIV_KEY_INFO_to_FILE(P8_PRIV_KEY_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_P8_PRIV_KEY_INFO_from_Binary(P8_PRIV_KEY_INFO **out, const unsigned char *data,
                                                    int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_P8_PRIV_KEY_INFO_from_File(P8_PRIV_KEY_INFO **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_P8_PRIV_KEY_INFO_from_Binary(P8_PRIV_KEY_INFO **out, const char *text,
                                                    int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_P8_PRIV_KEY_INFO_from_File(P8_PRIV_KEY_INFO **out, const char *path) VELPKI_NOEXCEPT;

VELPKI_END

#endif
