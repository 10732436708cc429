/** @file velpki/pkcs8.h
 * Private keys, plain and encrypted (RFC 5208, RFC 5958).
 *
 * PKCS8 is the container that a key file holds (signPri.key of an accredited key pair, "ENCRYPTED PRIVATE KEY");
 * P8_PRIV_KEY_INFO is what it contains. pkcs5.h turns one into the other under a password, and pkcs12.h carries both.
 *
 * Families behave as docs/conventions.md says of SAMPLE. Setters copy and return 0, or 1 for null and when memory ends;
 * getters lend, and give null for null. */
#ifndef VELPKI_PKCS8_H
#define VELPKI_PKCS8_H

#include <velpki/x509.h>

VELPKI_BEGIN

/** A private key in an encoding that this library does not make itself, as it was read; opaque. */
typedef struct p8_kept_key P8_KEPT_KEY;

/** PrivateKeyInfo (RFC 5208 5), OneAsymmetricKey of RFC 5958. */
typedef struct {
  BIGINT *version;              /**< 0; 1 is read too, and written back */
  OBJECT_IDENTIFIER *algorithm; /**< privateKeyAlgorithm without its parameters, which are made from the key */
  ASYMMETRIC_KEY *key;          /**< empty where the key is kept */
  X509_ATTRIBUTES *attributes;  /**< null when absent */
  P8_KEPT_KEY *kept;            /**< null, or what Seq_to_P8_PRIV_KEY_INFO_RFC5280 kept */
} P8_PRIV_KEY_INFO;

/** Kinds of container, by the password-based scheme. */
enum {
  PKCS8_NATIONAL = 0, /**< the KISA and GPKI schemes for SEED and ARIA */
  PKCS8_PBES1 = 1,    /**< after decoding every other algorithm, too */
  PKCS8_PBES2 = 2     /**< RFC 8018 6.2 */
};

/** EncryptedPrivateKeyInfo (RFC 5208 6). */
typedef struct {
  int kind;                        /**< one of PKCS8_NATIONAL, PKCS8_PBES1 and PKCS8_PBES2 */
  X509_ALGO_IDENTIFIER *algorithm; /**< its parameters are a P5_PBE_PARAM, encoded */
  OCTET_STRING *encryptedData;     /**< the encrypted DER of a P8_PRIV_KEY_INFO */
} PKCS8;

/** Parameters of a password-based algorithm; see pkcs5.h. */
typedef struct p5_pbe_param P5_PBE_PARAM;

/** @name Life cycle of P8_PRIV_KEY_INFO
 * @{ */
/** A new record has version 0, an empty key and an empty set of attributes. Numbers, kept octets and the values of the
 * attributes are wiped when they are released. */
VELPKI_API P8_PRIV_KEY_INFO *new_P8_PRIV_KEY_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void clean_P8_PRIV_KEY_INFO(P8_PRIV_KEY_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void free_P8_PRIV_KEY_INFO(P8_PRIV_KEY_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API P8_PRIV_KEY_INFO *dup_P8_PRIV_KEY_INFO(const P8_PRIV_KEY_INFO *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of P8_PRIV_KEY_INFO
 * @{ */
/** Makes the record of a key: "rsaEncryption", "kcdsa1" or "id-ecPublicKey" by the key's type, and copies of key and
 * attributes, which may be null. Null for a key that is empty, and when memory ends. */
VELPKI_API P8_PRIV_KEY_INFO *gen_P8_PRIV_KEY_INFO(const ASYMMETRIC_KEY *key,
                                                  const X509_ATTRIBUTES *attributes) VELPKI_NOEXCEPT;
/** Lends the version. */
VELPKI_API BIGINT *get_PRIV_KEY_version(const P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/** Stores a copy of the version, which nothing checks before encoding. */
VELPKI_API int set_PRIV_KEY_version(P8_PRIV_KEY_INFO *key, const BIGINT *version) VELPKI_NOEXCEPT;
/** Lends the identifier of the algorithm. */
VELPKI_API OBJECT_IDENTIFIER *get_PRIV_KEY_OID(const P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/** Stores a copy of the identifier. Encoding refuses one that is not the key's. */
VELPKI_API int set_PRIV_KEY_OID(P8_PRIV_KEY_INFO *key, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Lends the key; an empty one where the key is kept. */
VELPKI_API ASYMMETRIC_KEY *get_PRIV_KEY_KeyParams(const P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/** Stores a copy of the key and drops kept octets. The algorithm stays. */
VELPKI_API int set_PRIV_KEY_KeyParams(P8_PRIV_KEY_INFO *key, const ASYMMETRIC_KEY *params) VELPKI_NOEXCEPT;
/** Lends the content of the privateKey OCTET STRING of a key that was kept; null, and length 0, for any other. */
VELPKI_API const unsigned char *get_PRIV_KEY_kept(const P8_PRIV_KEY_INFO *key, int *length) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P8_PRIV_KEY_INFO
 * @{ */
/** Encodes PrivateKeyInfo ::= SEQUENCE { version, privateKeyAlgorithm, privateKey OCTET STRING, attributes [0] IMPLICIT
 * OPTIONAL, publicKey [1] IMPLICIT OPTIONAL }, version 0 or 1; the public key is not written, nor is an empty set of
 * attributes. The key octets: RSAPrivateKey with parameters NULL (RFC 8017); for KCDSA the INTEGER x under the domain
 * parameters; for curves prime256v1, secp384r1 and secp521r1 ECPrivateKey (RFC 5915), written with the public point. A
 * kept key is written as it was read. F_P8_PRIV_KEY_INFO_TO_SEQ with 49, 3C, or ERR_ASN1_ENCODING for an algorithm that
 * is not the key's, and for a key that is not private or (RSA) lacks the values of the Chinese remainder theorem. The
 * unit is the caller's to wipe. */
VELPKI_API int P8_PRIV_KEY_INFO_to_Seq(const P8_PRIV_KEY_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes PrivateKeyInfo with a key of the three kinds above; the y of KCDSA is computed, and the public key is read
 * over. An RSA key of eight numbers without version, as X509_PUBKEY has it, is read too. F_SEQ_TO_P8_PRIV_KEY_INFO with
 * 49, 3C or ERR_ASN1_DECODING.
 * @warning A key of any other algorithm is refused. Seq_to_P8_PRIV_KEY_INFO_RFC5280 keeps it. */
VELPKI_API int Seq_to_P8_PRIV_KEY_INFO(ASN1_UNIT *in, P8_PRIV_KEY_INFO **out) VELPKI_NOEXCEPT;
/** Decodes a key of any algorithm, in standard form. One that the provider does not have is kept: `key` stays empty,
 * and the parameters and octets that were read are written back; an RSASSA-PSS key has both. Codes as
 * Seq_to_P8_PRIV_KEY_INFO. */
VELPKI_API int Seq_to_P8_PRIV_KEY_INFO_RFC5280(ASN1_UNIT *in, P8_PRIV_KEY_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/* The encrypted container. */

/** @name Life cycle of PKCS8
 * @{ */
/** A new container has all members zero: PKCS8_NATIONAL, without algorithm and data. */
VELPKI_API PKCS8 *new_PKCS8(void) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS8(PKCS8 *p) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS8(PKCS8 *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS8 *dup_PKCS8(const PKCS8 *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of PKCS8
 * @{ */
/** Lends the encrypted octets. */
VELPKI_API OCTET_STRING *get_encryptedData_PKCS8(const PKCS8 *p8) VELPKI_NOEXCEPT;
/** Stores a copy of the octets; 1 also for a negative length. */
VELPKI_API int set_encryptedData_PKCS8(PKCS8 *p8, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** Lends the identifier of the algorithm; null where there is no algorithm. */
VELPKI_API OBJECT_IDENTIFIER *get_OID_PKCS8(const PKCS8 *p8) VELPKI_NOEXCEPT;
/** Stores a copy of the identifier, keeps the parameters, and leaves `kind` to the caller. */
VELPKI_API int set_OID_PKCS8(PKCS8 *p8, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Decodes the parameters into a new record, as Seq_to_P5_PBE_PARAM does; null when they are none. */
VELPKI_API P5_PBE_PARAM *get_PKCS8_P5_PBE_PARAM(const PKCS8 *p8) VELPKI_NOEXCEPT;
/** Encodes the parameters into the algorithm, as P5_PBE_PARAM_to_Seq does; 1 also where they cannot be encoded. */
VELPKI_API int set_PKCS8_P5_PBE_PARAM(PKCS8 *p8, const P5_PBE_PARAM *param) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of PKCS8
 * @{ */
/** EncryptedPrivateKeyInfo ::= SEQUENCE { encryptionAlgorithm AlgorithmIdentifier, encryptedData OCTET STRING }.
 * Decoding sets `kind` by the algorithm. Codes: F_P8_ENCRYPTED_KEY_TO_SEQ and F_SEQ_TO_P8_ENCRYPTED_KEY. */
VELPKI_API int P8_ENCRYPTED_KEY_to_Seq(const PKCS8 *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P8_ENCRYPTED_KEY(ASN1_UNIT *in, PKCS8 **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing PKCS8
 * @{ */
/** An encrypted key file, as DER or under the PEM label "ENCRYPTED PRIVATE KEY"; results as asn1_io.h says. */
VELPKI_API int writeDER_PKCS8_to_Binary(PKCS8 *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS8_to_FILE(PKCS8 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS8_to_Binary(PKCS8 *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS8_to_FILE(PKCS8 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS8_from_Binary(PKCS8 **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS8_from_File(PKCS8 **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS8_from_Binary(PKCS8 **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS8_from_File(PKCS8 **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing P8_PRIV_KEY_INFO
 * @{ */
/** A plain key file, as DER or under the PEM label "PRIVATE KEY"; results as asn1_io.h says. Octets and text that are
 * made are the caller's to wipe. */
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
/** @} */

VELPKI_END

#endif
