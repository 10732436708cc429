/** @file velpki/kisa.h
 * Korean identity data and virtual identifiers (VID) in certificates, and the signed statement of where the driver of a
 * hardware token comes from.
 *
 * Records and algorithm of identity data follow the technical standard of the Korean accredited scheme (KISA:
 * identification of subscribers by a virtual ID); the octets of a VID and the random octets beside the private key are
 * what others read and write. Extensions and general names, which carry the data, are in x509v3.h.
 *
 * Families behave as docs/conventions.md says of SAMPLE. Codes: each function's own of module 47, or 0x47000000 where
 * it has none, with reason 49, 3C, ERR_ASN1_ENCODING (a missing or unencodable member) or ERR_ASN1_DECODING; a member's
 * own code goes up. */
#ifndef VELPKI_KISA_H
#define VELPKI_KISA_H

#include <velpki/x509v3.h>

VELPKI_BEGIN

/* Identity data. */

/** The type of the otherName in a subjectAltName that holds a KISA_IDENTIFY_DATA. */
#define KISA_OID_IDENTIFY_DATA "1.2.410.200004.10.1.1"
/** The type of a VID in `userInfo`. */
#define KISA_OID_VID "1.2.410.200004.10.1.1.1"
/** The type of an encrypted VID in `userInfo`, which is kept as it came. */
#define KISA_OID_ENCRYPTED_VID "1.2.410.200004.10.1.1.2"
/** The attribute beside the private key with the random octets of the VID, a BIT STRING. */
#define KISA_OID_RANDOM_NUM "1.2.410.200004.10.1.1.3"

/** SEQUENCE { type OBJECT IDENTIFIER, value ANY }: one entry of `userInfo`. */
typedef struct {
  OBJECT_IDENTIFIER *type; /**< what the value is */
  ASN1_UNIT *value;        /**< whatever the type says; an encrypted VID stays as it came */
} KISA_USER_INFO;
/** SEQUENCE { realName UTF8String, userInfo SEQUENCE OF SEQUENCE { type, value } OPTIONAL } */
typedef struct {
  UTF8_STRING *realName; /**< the subscriber's name */
  STACK *userInfo;       /**< of KISA_USER_INFO; null when absent, and an empty list is not written */
} KISA_IDENTIFY_DATA;

/** SEQUENCE { hashAlg AlgorithmIdentifier, virtualID [0] EXPLICIT OCTET STRING }. The parameters of `hashAlg` are
 * written as they were read: gen_VID makes none, others write NULL. */
typedef struct {
  X509_ALGO_IDENTIFIER *hashAlg; /**< the digest H of the identifier */
  OCTET_STRING *virtualID;       /**< H(H(identity number and random octets)); see gen_VID */
} VID;

/** @name The family of KISA_IDENTIFY_DATA
 * @{ */
/** New data have neither name nor entries, and need a name to be encoded. */
VELPKI_API KISA_IDENTIFY_DATA *new_KISA_IDENTIFY_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KISA_IDENTIFY_DATA(KISA_IDENTIFY_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API KISA_IDENTIFY_DATA *dup_KISA_IDENTIFY_DATA(const KISA_IDENTIFY_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_KISA_IDENTIFY_DATA(KISA_IDENTIFY_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int KISA_IDENTIFY_DATA_to_Seq(const KISA_IDENTIFY_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_KISA_IDENTIFY_DATA(ASN1_UNIT *in, KISA_IDENTIFY_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of VID
 * @{ */
/** A new VID has neither algorithm nor octets, both of which encoding needs. */
VELPKI_API VID *new_VID(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VID(VID *p) VELPKI_NOEXCEPT;
VELPKI_API VID *dup_VID(const VID *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_VID(VID *p) VELPKI_NOEXCEPT;
VELPKI_API int VID_to_Seq(const VID *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_VID(ASN1_UNIT *in, VID **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of identity data
 * @{ */
/** Stores a copy of the name. A negative length measures NUL-terminated text; UTF-8 is not checked. 0, or 0x47000000
 * with 49 or 3C. */
VELPKI_API int set_KISA_IDENTIFY_DATA_realName(KISA_IDENTIFY_DATA *data, const char *name, int length) VELPKI_NOEXCEPT;
/** Appends a copy of a value under a type, which is dotted text: 0, or 0x47000000 with 49, 3C, or 2B for text that is
 * no OID. */
VELPKI_API int add_KISA_IDENTIFY_DATA_userInfo(KISA_IDENTIFY_DATA *data, const char *oid,
                                               const ASN1_UNIT *value) VELPKI_NOEXCEPT;
/** Appends a VID, encoded, under KISA_OID_VID: 0, 0x47000000 with 49 or 3C, or the code of VID_to_Seq. */
VELPKI_API int add_KISA_IDENTIFY_DATA_VID(KISA_IDENTIFY_DATA *data, const VID *vid) VELPKI_NOEXCEPT;
/** Lends the first value of a type (dotted text), or null. */
VELPKI_API ASN1_UNIT *get_KISA_IDENTIFY_DATA_userInfo(const KISA_IDENTIFY_DATA *data, const char *oid) VELPKI_NOEXCEPT;
/** @} */

/** @name Identity data in certificates
 * @{ */
/** Makes the otherName that carries identity data; codes as KISA_IDENTIFY_DATA_to_Seq.
 * @warning GENERAL_NAME_to_Seq writes this name in the house form, which others do not read; certificates of the field
 * have what GENERAL_NAME_to_Seq_RFC5280 writes. */
VELPKI_API int KISA_IDENTIFY_DATA_to_GENERAL_NAME(const KISA_IDENTIFY_DATA *in, GENERAL_NAME **out) VELPKI_NOEXCEPT;
/** Decodes the first such name of a certificate's subjectAltName into `*out` (as Seq_to_): both forms of otherName are
 * read, and the type 1.2.410.200004.6.1 as well. Codes: 0x47000000 with 49, 3C, ERR_NOT_FOUNDED (no such name) or
 * ERR_ASN1_DECODING (no list of names), else those of Seq_to_KISA_IDENTIFY_DATA. The certificate is not verified. */
VELPKI_API int get_X509_KISA_IDENTIFY_DATA(const X509_CERT *cert, KISA_IDENTIFY_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Virtual identifiers
 * @{ */
/** Makes a new VID at `*out`: H(H(DER of SEQUENCE { idn PrintableString, random BIT STRING })). `idn` is the identity
 * number without hyphens (a negative length measures it), `random` the octets kept beside the private key. 0, or
 * 0x47000000 with 49, 48 (a digest without an identifier), 2B (no octets, or a character that PrintableString has not)
 * or 3C. */
VELPKI_API int gen_VID(VID **out, const char *idn, int idn_length, const unsigned char *random, int random_length,
                       int digest_id) VELPKI_NOEXCEPT;
/** Recomputes the VID that a certificate carries, with its own digest, and compares in constant time: 0, or F_CHECK_VID
 * with 49, ERR_NOT_FOUNDED (no identity data, or no VID in it), 48 (an unknown digest), 2B (as for gen_VID),
 * ERR_INVALID_VID_LENGTH, ERR_INVALID_VID_DATA (another number, or other octets); what does not decode gives its
 * decoder's code.
 * @warning check_VID does not verify the certificate. A number has few digits: whoever has the random octets finds it
 * by trying, so they are a secret. */
VELPKI_API int check_VID(const X509_CERT *cert, const char *idn, int idn_length, const unsigned char *random,
                         int random_length) VELPKI_NOEXCEPT;
/** Copies the random octets out of the attributes of a private key (P8_PRIV_KEY_INFO). `*length` is the room of `out`
 * before and the number of octets after; 0, or 0x47000000 with 49, ERR_NOT_FOUNDED, ERR_ASN1_DECODING (no BIT STRING of
 * whole octets) or 2B (no room; `*length` says how much is needed). */
VELPKI_API int get_VID_random(const X509_ATTRIBUTES *attributes, unsigned char *out, int *length) VELPKI_NOEXCEPT;
/** @} */

/* Drivers of hardware tokens. No public text has the definition of these four records; the layouts are this library's.
 */

/** One driver: SEQUENCE { tokenName, osName, driverVersion, libraryName UTF8String, hashAlgorithm AlgorithmIdentifier,
 * libraryHash OCTET STRING } */
typedef struct {
  UTF8_STRING *tokenName;              /**< the token that the driver is for */
  UTF8_STRING *osName;                 /**< the system that it runs on */
  UTF8_STRING *driverVersion;          /**< free text */
  UTF8_STRING *libraryName;            /**< the driver's file */
  X509_ALGO_IDENTIFIER *hashAlgorithm; /**< the digest of `libraryHash` */
  OCTET_STRING *libraryHash;           /**< the digest of the driver's file */
} KISA_HSM_DRIVER_INFO;
/** Where the drivers are to be had: SEQUENCE SIZE (1..MAX) OF IA5String */
typedef struct {
  STACK *urls; /**< of IA5_STRING */
} KISA_HSM_TOKEN_DISTRIBUTION_URL;
/** SEQUENCE { signatureAlgorithm AlgorithmIdentifier, signature BIT STRING } */
typedef struct {
  X509_ALGO_IDENTIFIER *signatureAlgorithm; /**< with its parameters */
  BIT_STRING *signature;                    /**< whole octets */
} KISA_HSM_SIGNATURE_VALUE;
/** The statement: SEQUENCE { version INTEGER (0), drivers SEQUENCE OF KISA_HSM_DRIVER_INFO, distributionURL,
 * signatureValue } */
typedef struct {
  int version;                                      /**< 0 */
  STACK *drivers;                                   /**< of KISA_HSM_DRIVER_INFO */
  KISA_HSM_TOKEN_DISTRIBUTION_URL *distributionURL; /**< required */
  KISA_HSM_SIGNATURE_VALUE *signatureValue;         /**< null until it is signed, which encoding needs */
} KISA_HSM_SIGNATURE_TOKEN;

/** @name The family of KISA_HSM_SIGNATURE_TOKEN
 * @{ */
/** A new statement has version 0 and nothing else. Drivers, of which there may be none, URL list and signature must be
 * there to be encoded. */
VELPKI_API KISA_HSM_SIGNATURE_TOKEN *new_KISA_HSM_SIGNATURE_TOKEN(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KISA_HSM_SIGNATURE_TOKEN(KISA_HSM_SIGNATURE_TOKEN *p) VELPKI_NOEXCEPT;
VELPKI_API KISA_HSM_SIGNATURE_TOKEN *dup_KISA_HSM_SIGNATURE_TOKEN(const KISA_HSM_SIGNATURE_TOKEN *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_KISA_HSM_SIGNATURE_TOKEN(KISA_HSM_SIGNATURE_TOKEN *p) VELPKI_NOEXCEPT;
VELPKI_API int KISA_HSM_SIGNATURE_TOKEN_to_Seq(const KISA_HSM_SIGNATURE_TOKEN *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_KISA_HSM_SIGNATURE_TOKEN(ASN1_UNIT *in, KISA_HSM_SIGNATURE_TOKEN **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of KISA_HSM_TOKEN_DISTRIBUTION_URL
 * @{ */
/** A new record has no list of addresses. Without one address it is neither encoded nor decoded. */
VELPKI_API KISA_HSM_TOKEN_DISTRIBUTION_URL *new_KISA_HSM_TOKEN_DISTRIBUTION_URL(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KISA_HSM_TOKEN_DISTRIBUTION_URL(KISA_HSM_TOKEN_DISTRIBUTION_URL *p) VELPKI_NOEXCEPT;
VELPKI_API KISA_HSM_TOKEN_DISTRIBUTION_URL *dup_KISA_HSM_TOKEN_DISTRIBUTION_URL(
    const KISA_HSM_TOKEN_DISTRIBUTION_URL *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_KISA_HSM_TOKEN_DISTRIBUTION_URL(KISA_HSM_TOKEN_DISTRIBUTION_URL *p) VELPKI_NOEXCEPT;
VELPKI_API int KISA_HSM_TOKEN_DISTRIBUTION_URL_to_Seq(const KISA_HSM_TOKEN_DISTRIBUTION_URL *in,
                                                      ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_KISA_HSM_TOKEN_DISTRIBUTION_URL(ASN1_UNIT *in,
                                                      KISA_HSM_TOKEN_DISTRIBUTION_URL **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of KISA_HSM_DRIVER_INFO
 * @{ */
/** A new driver has no members, and all of them must be there to be encoded. */
VELPKI_API KISA_HSM_DRIVER_INFO *new_KISA_HSM_DRIVER_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KISA_HSM_DRIVER_INFO(KISA_HSM_DRIVER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API KISA_HSM_DRIVER_INFO *dup_KISA_HSM_DRIVER_INFO(const KISA_HSM_DRIVER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_KISA_HSM_DRIVER_INFO(KISA_HSM_DRIVER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int KISA_HSM_DRIVER_INFO_to_Seq(const KISA_HSM_DRIVER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_KISA_HSM_DRIVER_INFO(ASN1_UNIT *in, KISA_HSM_DRIVER_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of KISA_HSM_SIGNATURE_VALUE
 * @{ */
/** A new value has neither algorithm nor signature, and both must be there to be encoded. */
VELPKI_API KISA_HSM_SIGNATURE_VALUE *new_KISA_HSM_SIGNATURE_VALUE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KISA_HSM_SIGNATURE_VALUE(KISA_HSM_SIGNATURE_VALUE *p) VELPKI_NOEXCEPT;
VELPKI_API KISA_HSM_SIGNATURE_VALUE *dup_KISA_HSM_SIGNATURE_VALUE(const KISA_HSM_SIGNATURE_VALUE *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_KISA_HSM_SIGNATURE_VALUE(KISA_HSM_SIGNATURE_VALUE *p) VELPKI_NOEXCEPT;
VELPKI_API int KISA_HSM_SIGNATURE_VALUE_to_Seq(const KISA_HSM_SIGNATURE_VALUE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_KISA_HSM_SIGNATURE_VALUE(ASN1_UNIT *in, KISA_HSM_SIGNATURE_VALUE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Signature of the statement
 * @{ */
/** Signs the DER of each driver, one after the other, then that of the URL list; algorithms are those that certificates
 * are signed with in standard form (RSASSA-PSS signs with SHA-256). 0, or 0x47000000 with 49, 48 (an unknown
 * algorithm), ERR_ALGORITHM_MISMATCH (one that is not the key's), ERR_ASN1_ENCODING or 3C; the provider's codes pass.
 * On failure the statement is as it was. */
VELPKI_API int sign_KISA_HSM_SIGNATURE_TOKEN(KISA_HSM_SIGNATURE_TOKEN *token, const ASYMMETRIC_KEY *key,
                                             const OBJECT_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** Verifies the signature with a certificate's key: 0, or 0x47000000 with 49, 48, ERR_ALGORITHM_MISMATCH,
 * ERR_UNUSED_BITS, ERR_ASN1_ENCODING, ERR_ASN1_DECODING or 3C; the provider's codes pass (PKV_ERR_MISMATCH for a
 * signature that is not valid).
 * @warning Verifying says nothing about the certificate: whether the signer may speak for a token is the caller's. */
VELPKI_API int verify_KISA_HSM_SIGNATURE_TOKEN(const KISA_HSM_SIGNATURE_TOKEN *token,
                                               const X509_CERT *signer) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
