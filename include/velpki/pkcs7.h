/** @file velpki/pkcs7.h
 * PKCS#7 messages (RFC 2315): data, signed, enveloped, signed-and-enveloped, digested and encrypted.
 *
 * A message is a P7_CONTENT_INFO: a content type and the record of that type. It is built by set_PKCS7_Type, the add_
 * functions and one of the flows below, written and read by the readers and writers at the end. New code that can
 * choose takes CMS (cms.h); docs/messages.md says what was tried with which other program. Verifying wants
 * verify_PKCS7_strict, decrypting decrypt_PKCS7_strict.
 *
 * Families (new_, free_, X_to_Seq, Seq_to_X) behave as docs/conventions.md says of SAMPLE. A member that is missing or
 * cannot be encoded is the encoder's code with ERR_ASN1_ENCODING, one that is missing or malformed the decoder's with
 * ERR_ASN1_DECODING; the code of a record inside goes up unchanged. Elements after the known ones are ignored, and of
 * an optional element that is repeated the last counts. A version that is null is written as 0. */
#ifndef VELPKI_PKCS7_H
#define VELPKI_PKCS7_H

#include <velpki/asn1_objects.h>
#include <velpki/pkcs1.h>
#include <velpki/x509_crl.h>

VELPKI_BEGIN

/* Records. Members that are not encoded stand last. */

/** Content types, by registry row (RFC 2315 14). */
enum {
  PKCS7_DATA = 21,                      /**< OCTET_STRING */
  PKCS7_SIGNED_DATA = 22,               /**< P7_SIGNED_DATA */
  PKCS7_ENVELOPED_DATA = 23,            /**< P7_ENVELOPED_DATA */
  PKCS7_SIGNED_AND_ENVELOPED_DATA = 24, /**< P7_SIGNED_AND_ENVELOPED_DATA */
  PKCS7_DIGESTED_DATA = 25,             /**< P7_DIGESTED_DATA */
  PKCS7_ENCRYPTED_DATA = 26,            /**< P7_ENCRYPTED_DATA */
  PKCS7_TRUST_LIST = 837,               /**< ASN1_UNIT; see ctl.h */
  PKCS7_OTHER = -1                      /**< ASN1_UNIT of any other type; standard form only */
};

/** ContentInfo (RFC 2315 7): a message, or the content inside one. */
typedef struct {
  OBJECT_IDENTIFIER *contentType; /**< the type as encoded */
  /** OCTET_STRING for data, the P7_ record of the type, else an ASN1_UNIT; null: absent */
  void *content;
  int kind; /**< the type that `content` is of, a PKCS7_; 0 when it is null */
} P7_CONTENT_INFO;

/** IssuerAndSerialNumber (RFC 2315 6.7): names a certificate. */
typedef struct {
  X509_NAME *issuer;    /**< the certificate's issuer */
  BIGINT *serialNumber; /**< the certificate's serial number */
} P7_ISSUER_AND_SERIAL_NUMBER;

/** A signature in progress, and the octets that a signer was decoded from; opaque. */
typedef struct p7_signer_state P7_SIGNER_STATE;
/** SignerInfo (RFC 2315 9.2). */
typedef struct {
  BIGINT *version;                                    /**< 1, or that of the message; null is written as 0 */
  P7_ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber; /**< the signer's certificate */
  X509_ALGO_IDENTIFIER *digestAlgorithm;              /**< of the content */
  X509_ATTRIBUTES *authenticatedAttributes;           /**< null when absent */
  X509_ALGO_IDENTIFIER *digestEncryptionAlgorithm;    /**< of the signature */
  OCTET_STRING *encryptedDigest;                      /**< the signature; null until it is made */
  X509_ATTRIBUTES *unauthenticatedAttributes;         /**< null when absent */
  ASYMMETRIC_KEY *privateKey;                         /**< a copy of the signer's key; null in what was decoded */
  P7_SIGNER_STATE *state;                             /**< opaque */
} P7_SIGNER_INFO;
/** SignerInfos: a list of P7_SIGNER_INFO. */
typedef STACK P7_SIGNER_INFOS;

/** RecipientInfo (RFC 2315 10.2). */
typedef struct {
  BIGINT *version;                                    /**< 0 */
  P7_ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber; /**< the recipient's certificate */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;       /**< with its parameters */
  /** the content-encryption key under the recipient's; null until it is made */
  OCTET_STRING *encryptedKey;
  ASYMMETRIC_KEY *publicKey; /**< a copy of the recipient's key; null in what was decoded */
} P7_RECIPIENT_INFO;
/** RecipientInfos: a list of P7_RECIPIENT_INFO. */
typedef STACK P7_RECIPIENT_INFOS;

/** What an encryption in progress keeps beside its message; opaque. */
typedef struct content_encryption CONTENT_ENCRYPTION;
/** EncryptedContentInfo (RFC 2315 10.1). */
typedef struct {
  OBJECT_IDENTIFIER *contentType;                   /**< of the plain content */
  X509_ALGO_IDENTIFIER *contentEncryptionAlgorithm; /**< the cipher, with its IV as an OCTET STRING */
  OCTET_STRING *encryptedContent;                   /**< null when it is elsewhere */
  BLOCK_CIPHER_UNIT *cipher;                        /**< its key and IV are those of the message, from init to final */
  CONTENT_ENCRYPTION *progress;                     /**< opaque */
} P7_ENCRYPTED_CONTENT_INFO;

/** SignedData (RFC 2315 9.1). */
typedef struct {
  BIGINT *version;                         /**< 1; null is written as 0 */
  X509_ALGO_IDENTIFIERS *digestAlgorithms; /**< one for each signer */
  P7_CONTENT_INFO *contentInfo;            /**< what is signed, or its type alone; null is written as
                                            * data where there are certificates or CRLs and no signers */
  X509_CERTIFICATES *certificates;         /**< null when absent */
  X509_CRLS *crls;                         /**< null when absent */
  P7_SIGNER_INFOS *signerInfos;            /**< the signatures */
  int detached;                            /**< what init was told: not 0, and the content is not stored */
  /** of ASN1_UNIT: what stands among the certificates and is none that can be read; standard form only */
  STACK *otherCertificates;
  STACK *otherCrls; /**< the same of CRLs */
} P7_SIGNED_DATA;

/** EnvelopedData (RFC 2315 10.1). */
typedef struct {
  BIGINT *version;                                 /**< 0 */
  P7_RECIPIENT_INFOS *recipientInfos;              /**< those who can decrypt */
  P7_ENCRYPTED_CONTENT_INFO *encryptedContentInfo; /**< what they decrypt */
  int detached;                                    /**< what init was told: not 0, and the ciphertext is not stored */
} P7_ENVELOPED_DATA;

/** SignedAndEnvelopedData (RFC 2315 11.1). */
typedef struct {
  BIGINT *version;                                 /**< 1; null is written as 0 */
  P7_RECIPIENT_INFOS *recipientInfos;              /**< those who can decrypt */
  X509_ALGO_IDENTIFIERS *digestAlgorithms;         /**< one for each signer */
  P7_ENCRYPTED_CONTENT_INFO *encryptedContentInfo; /**< what is signed and encrypted */
  X509_CERTIFICATES *certificates;                 /**< null when absent */
  X509_CRLS *crls;                                 /**< null when absent */
  P7_SIGNER_INFOS *signerInfos;                    /**< the signatures, encrypted by the _SP functions */
  STACK *otherCertificates;                        /**< as in P7_SIGNED_DATA */
  STACK *otherCrls;                                /**< as in P7_SIGNED_DATA */
} P7_SIGNED_AND_ENVELOPED_DATA;

/** DigestedData (RFC 2315 12). */
typedef struct {
  BIGINT *version;                       /**< 0 */
  X509_ALGO_IDENTIFIER *digestAlgorithm; /**< without parameters where digest_PKCS7 made it */
  P7_CONTENT_INFO *contentInfo;          /**< what is digested */
  OCTET_STRING *digest;                  /**< of the content's octets */
} P7_DIGESTED_DATA;

/** EncryptedData (RFC 2315 13): the key is known to the reader by other means. */
typedef struct {
  BIGINT *version;                                 /**< 0 */
  P7_ENCRYPTED_CONTENT_INFO *encryptedContentInfo; /**< the content */
  int detached;                                    /**< what init was told: not 0, and the ciphertext is not stored */
} P7_ENCRYPTED_DATA;

/** DigestInfo (RFC 2315 9.4), which a signature of RSA has inside. */
typedef struct {
  X509_ALGO_IDENTIFIER *digestAlgorithm; /**< with its parameters */
  OCTET_STRING *digest;                  /**< the octets */
} P7_DIGEST_INFO;

/* Families. */

/** @name The family of P7_ISSUER_AND_SERIAL_NUMBER
 * @{ */
/** A new record has neither issuer nor number, and needs both to be encoded. Codes: F_P7_IS_AND_SN_TO_SEQ and
 * F_SEQ_TO_P7_IS_AND_SN. */
VELPKI_API P7_ISSUER_AND_SERIAL_NUMBER *new_P7_ISSUER_AND_SERIAL_NUMBER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ISSUER_AND_SERIAL_NUMBER(P7_ISSUER_AND_SERIAL_NUMBER *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ISSUER_AND_SERIAL_NUMBER_to_Seq(const P7_ISSUER_AND_SERIAL_NUMBER *in,
                                                  ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ISSUER_AND_SERIAL_NUMBER(ASN1_UNIT *in, P7_ISSUER_AND_SERIAL_NUMBER **out) VELPKI_NOEXCEPT;
/** @} */

/** Returns 0 when the certificate's issuer and serial number are those of the record, -1 when the serial number differs
 * or either member is missing, else what cmp_X509_NAME says. */
VELPKI_API int cmp_P7_ISSUER_AND_SERIAL_NUMBER(const X509_CERT *cert,
                                               const P7_ISSUER_AND_SERIAL_NUMBER *issuer_and_serial) VELPKI_NOEXCEPT;

/** @name The family of P7_SIGNER_INFO
 * @{ */
/** A new signer is empty; set_PKCS7_P7_SIGNER_INFO fills it. Authenticated attributes that are present but empty are
 * written as an empty [0], unauthenticated ones not at all. */
VELPKI_API P7_SIGNER_INFO *new_P7_SIGNER_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNER_INFO(P7_SIGNER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNER_INFO_to_Seq(const P7_SIGNER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNER_INFO(ASN1_UNIT *in, P7_SIGNER_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_SIGNER_INFOS
 * @{ */
/** A new list is empty. It is encoded as a SET in the list's order. */
VELPKI_API P7_SIGNER_INFOS *new_P7_SIGNER_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNER_INFOS(P7_SIGNER_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNER_INFOS_to_Seq(const P7_SIGNER_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNER_INFOS(ASN1_UNIT *in, P7_SIGNER_INFOS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_SIGNED_DATA
 * @{ */
/** New signed data have empty lists of algorithms and signers and no content; set_PKCS7_Type makes them inside a
 * message. */
VELPKI_API P7_SIGNED_DATA *new_P7_SIGNED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNED_DATA(P7_SIGNED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNED_DATA_to_Seq(const P7_SIGNED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNED_DATA(ASN1_UNIT *in, P7_SIGNED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_RECIPIENT_INFO
 * @{ */
/** A new recipient is empty; set_PKCS7_P7_RECIPIENT_INFO fills it. */
VELPKI_API P7_RECIPIENT_INFO *new_P7_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_RECIPIENT_INFO(P7_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_RECIPIENT_INFO_to_Seq(const P7_RECIPIENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_RECIPIENT_INFO(ASN1_UNIT *in, P7_RECIPIENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_RECIPIENT_INFOS
 * @{ */
/** A new list is empty. It is encoded as a SET in the list's order. */
VELPKI_API P7_RECIPIENT_INFOS *new_P7_RECIPIENT_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_RECIPIENT_INFOS(P7_RECIPIENT_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_RECIPIENT_INFOS_to_Seq(const P7_RECIPIENT_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_RECIPIENT_INFOS(ASN1_UNIT *in, P7_RECIPIENT_INFOS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_ENCRYPTED_CONTENT_INFO
 * @{ */
/** A new record has neither type nor algorithm; set_PKCS7_P7_ENCRYPTED_CONTENT_INFO fills it. A cipher that is kept is
 * wiped with it. */
VELPKI_API P7_ENCRYPTED_CONTENT_INFO *new_P7_ENCRYPTED_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ENCRYPTED_CONTENT_INFO(P7_ENCRYPTED_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ENCRYPTED_CONTENT_INFO_to_Seq(const P7_ENCRYPTED_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ENCRYPTED_CONTENT_INFO(ASN1_UNIT *in, P7_ENCRYPTED_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_ENVELOPED_DATA
 * @{ */
/** New enveloped data have an empty list of recipients; set_PKCS7_Type makes them inside a message. */
VELPKI_API P7_ENVELOPED_DATA *new_P7_ENVELOPED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ENVELOPED_DATA(P7_ENVELOPED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ENVELOPED_DATA_to_Seq(const P7_ENVELOPED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ENVELOPED_DATA(ASN1_UNIT *in, P7_ENVELOPED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_SIGNED_AND_ENVELOPED_DATA
 * @{ */
/** New data have empty lists of recipients, algorithms and signers; set_PKCS7_Type makes them inside a message. */
VELPKI_API P7_SIGNED_AND_ENVELOPED_DATA *new_P7_SIGNED_AND_ENVELOPED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNED_AND_ENVELOPED_DATA(P7_SIGNED_AND_ENVELOPED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNED_AND_ENVELOPED_DATA_to_Seq(const P7_SIGNED_AND_ENVELOPED_DATA *in,
                                                   ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNED_AND_ENVELOPED_DATA(ASN1_UNIT *in, P7_SIGNED_AND_ENVELOPED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_DIGESTED_DATA
 * @{ */
/** New digested data are empty; digest_PKCS7 fills them inside a message. */
VELPKI_API P7_DIGESTED_DATA *new_P7_DIGESTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_DIGESTED_DATA(P7_DIGESTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_DIGESTED_DATA_to_Seq(const P7_DIGESTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_DIGESTED_DATA(ASN1_UNIT *in, P7_DIGESTED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_ENCRYPTED_DATA
 * @{ */
/** New encrypted data are empty; set_PKCS7_Type makes them inside a message. */
VELPKI_API P7_ENCRYPTED_DATA *new_P7_ENCRYPTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ENCRYPTED_DATA(P7_ENCRYPTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ENCRYPTED_DATA_to_Seq(const P7_ENCRYPTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ENCRYPTED_DATA(ASN1_UNIT *in, P7_ENCRYPTED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_DIGEST_INFO
 * @{ */
/** A new record has neither algorithm nor digest, and needs both to be encoded. */
VELPKI_API P7_DIGEST_INFO *new_P7_DIGEST_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_DIGEST_INFO(P7_DIGEST_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_DIGEST_INFO_to_Seq(const P7_DIGEST_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_DIGEST_INFO(ASN1_UNIT *in, P7_DIGEST_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of P7_CONTENT_INFO
 * @{ */
/** A new message has neither type nor content; set_PKCS7_Type gives it both. Decoding a content type that is not among
 * the PKCS7_ is F_SEQ_TO_P7_CONTENT_INFO with reason 48. The octets of a data content and of an encrypted content may
 * be in segments; they are joined.
 * @warning Seq_to_P7_CONTENT_INFO refuses a whole message for one certificate whose key is not RSA, KCDSA or P-256, or
 * one CRL without a version; P7_CONTENT_INFO_to_Seq encodes anew, and what the house form does not keep (attributes
 * that are no strings it knows, a second value in a relative name) is lost or fails. The _RFC5280 pair below has
 * neither rule. */
VELPKI_API P7_CONTENT_INFO *new_P7_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_CONTENT_INFO(P7_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_CONTENT_INFO_to_Seq(const P7_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_CONTENT_INFO(ASN1_UNIT *in, P7_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/* Building. */

/** @name Type and content
 * For this and the next groups, down to signing: what is said to take over belongs to the message afterwards, on
 * success only; an object that the message already holds is refused. Certificates, keys, algorithms and attributes are
 * copied. Messages are released with free_P7_CONTENT_INFO, on failures too.
 * @{ */
/** Makes the empty content of a type (21 to 26), with its version: 1 for signed and signed-and-enveloped data, else 0.
 * What the message held is released. 0, or 1 for null, another type, and when memory ends. */
VELPKI_API int set_PKCS7_Type(P7_CONTENT_INFO *p7, int type_index) VELPKI_NOEXCEPT;
/** Takes over the inner content of signed or digested data: 0, or 1 for other types, and where it would contain itself.
 */
VELPKI_API int set_PKCS7_Content(P7_CONTENT_INFO *p7, P7_CONTENT_INFO *content) VELPKI_NOEXCEPT;
/** Makes an empty inner content of a type in signed or digested data, as set_PKCS7_Content. */
VELPKI_API int new_PKCS7_Content(P7_CONTENT_INFO *p7, int type_index) VELPKI_NOEXCEPT;
/** Makes a content info of type data with a copy of the octets, stored at `*p7` or made there. F_GET_PKCS7_DATA with
 * 49, 2B (a negative length) or 3C. */
VELPKI_API int gen_PKCS7_DATA_from_Binary(P7_CONTENT_INFO **p7, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** Sets the version of the content and of every signer and recipient in it: 0, or 1 for null, data and a negative
 * number. Where memory ends, which is 1 too, some may be set. */
VELPKI_API int set_P7_version(P7_CONTENT_INFO *p7, int version) VELPKI_NOEXCEPT;
/** @} */

/** @name Signers
 * @{ */
/** Fills a signer: version 1, the certificate's issuer and serial number, a copy of the private key (which may be
 * null), the digest of a registry row, and the signature algorithm: "id-RSASSA-PSS" for padding 2, and for padding 1
 * that of the digest with RSA, or "rsaEncryption" for a digest that has none. All parameters are NULL. Codes:
 * F_SET_PKCS7_P7_SIGNER_INFO with 49 (a padding other than 1 and 2, too; null, a certificate without issuer or serial
 * number), 48 (a key that is neither RSA nor KCDSA, a row without identifier) or 3C.
 * @warning `pss` is not looked at: the parameters stay NULL and the salt has the digest's length, which other programs
 * read as SHA-1 with 20 octets. set_PKCS7_P7_SIGNER_INFO_ex writes the parameters. */
VELPKI_API int set_PKCS7_P7_SIGNER_INFO(P7_SIGNER_INFO *si, X509_CERT *cert, ASYMMETRIC_KEY *key, int digest_index,
                                        int padding, RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** As set_PKCS7_P7_SIGNER_INFO; but with padding 2 it writes the parameters of PSS and signs with them, null meaning
 * the digest for everything. */
VELPKI_API int set_PKCS7_P7_SIGNER_INFO_ex(P7_SIGNER_INFO *si, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                           int digest_index, int padding, const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** Takes a signer over, into signed or signed-and-enveloped data, and appends a copy of its digest algorithm to the
 * message's, once for each signer. 0, or 1. */
VELPKI_API int add_PKCS7_Signer(P7_CONTENT_INFO *p7, P7_SIGNER_INFO *si) VELPKI_NOEXCEPT;
/** Makes a signer as set_PKCS7_P7_SIGNER_INFO with padding 1, and adds it; the signer is lent, null on failure. */
VELPKI_API P7_SIGNER_INFO *add_PKCS7_Signature(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                               int digest_index) VELPKI_NOEXCEPT;
/** As add_PKCS7_Signature, with the padding given.
 * @warning `pss` is not looked at, as in set_PKCS7_P7_SIGNER_INFO. */
VELPKI_API P7_SIGNER_INFO *add_PKCS7_Signature_withEncryptedAlgorithm(P7_CONTENT_INFO *p7, X509_CERT *cert,
                                                                      ASYMMETRIC_KEY *key, int digest_index,
                                                                      int padding,
                                                                      RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** As add_PKCS7_Signature, by set_PKCS7_P7_SIGNER_INFO_ex. */
VELPKI_API P7_SIGNER_INFO *add_PKCS7_Signature_ex(P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                                  int digest_index, int padding,
                                                  const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** @} */

/** @name Attributes of signers
 * @{ */
/** Adds an authenticated attribute with one value: the octets of a value of the universal type (dotted text for 6, a
 * magnitude for 2); with bit 0x20, and for 16 and 17, the content of a constructed one. `oid_index` is a registry row.
 * Nothing is added by itself: content type, message digest and signing time are the caller's to add before
 * final_PKCS7_Sign. Sets keep the order of the calls; see sign_PKCS7_ex. 0, or 1. */
VELPKI_API int add_PKCS7_Signed_Attribute(P7_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                          int length) VELPKI_NOEXCEPT;
/** Adds an unauthenticated attribute in the same way; the signature does not cover it. */
VELPKI_API int add_PKCS7_Unauthenticated_Attribute(P7_SIGNER_INFO *si, int oid_index, int type,
                                                   const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Certificates, CRLs and recipients
 * @{ */
/** Appends a copy of a certificate to signed or signed-and-enveloped data, which may be signed data without content and
 * signers (certs-only). 0, or 1.
 * @warning When the copy cannot be appended, add_PKCS7_Certificate releases the caller's certificate and returns 1; any
 * other failure, which returns 1 too, leaves it. add_PKCS7_Certificate_ex leaves it always. */
VELPKI_API int add_PKCS7_Certificate(P7_CONTENT_INFO *p7, X509_CERT *cert) VELPKI_NOEXCEPT;
/** As add_PKCS7_Certificate; the certificate stays the caller's in any case. */
VELPKI_API int add_PKCS7_Certificate_ex(P7_CONTENT_INFO *p7, const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Appends a copy of a CRL to signed or signed-and-enveloped data. 0, or 1. */
VELPKI_API int add_PKCS7_Crl(P7_CONTENT_INFO *p7, X509_CRL *crl) VELPKI_NOEXCEPT;
/** Takes a recipient over, into enveloped or signed-and-enveloped data. 0, or 1. */
VELPKI_API int add_PKCS7_P7_RECIPIENT_INFO(P7_CONTENT_INFO *p7, P7_RECIPIENT_INFO *ri) VELPKI_NOEXCEPT;
/** @} */

/** @name Signing in pieces
 * @{ */
/** Starts every signer that has no signature yet; the others are left as they are by all three steps, so signing twice
 * adds nothing. `detached` 1 keeps the content out of the message. The functions of this group and the next have these
 * codes: F_P7_SIGN with 49 (null, no content, final without init), 48 (a content that is not signed or
 * signed-and-enveloped data, a key that is neither RSA nor KCDSA), 2B (no signers, an unknown algorithm, a negative
 * length), 3C, or the provider's. */
VELPKI_API int init_PKCS7_Sign(P7_CONTENT_INFO *p7, int detached) VELPKI_NOEXCEPT;
/** Keeps the first octets that it is given as the content of signed data that is not detached and ignores later ones
 * (update_PKCS7_Sign_ex does not); detached or signed-and-enveloped content goes to the signers in any number of pieces
 * and is not stored. */
VELPKI_API int update_PKCS7_Sign(P7_CONTENT_INFO *p7, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Gives each signer the version of the content and signs:
 * - where the version is not 0 and there are authenticated attributes, their SET OF, in list order. The content is
 *   bound by the message digest that the caller put there. An RSA signer but one of PSS then names "rsaEncryption";
 * - else the content. With version 0 every RSA signer then names "rsaEncryption".
 *
 * KCDSA signers name "kcdsa1" and have a KCDSASignatureValue. Further codes: 5F (attributes that cannot be encoded), 54
 * (an empty half of a KCDSA signature), 4B190012 (a KCDSA signature that cannot be encoded).
 * @warning A signer without a usable key is 4B1C0048, with attributes to sign 001C0048, a value without module.
 * @warning A signer of PSS and version 0 names an algorithm that its signature is not of, and never verifies. */
VELPKI_API int final_PKCS7_Sign(P7_CONTENT_INFO *p7) VELPKI_NOEXCEPT;
/** @} */

/** @name Signing at once
 * @{ */
/** The three steps in one, with their codes. */
VELPKI_API int sign_PKCS7(P7_CONTENT_INFO *p7, const unsigned char *data, int length, int detached) VELPKI_NOEXCEPT;
/** Flags of sign_PKCS7_ex. */
enum {
  PKCS7_SIGN_ATTRIBUTES = 1 /**< content type and message digest are added where they are missing */
};
/** As sign_PKCS7; but with PKCS7_SIGN_ATTRIBUTES every signer gets the content type and message digest attributes that
 * it lacks, and its set is sorted as DER wants, so that everybody else's verification agrees. */
VELPKI_API int sign_PKCS7_ex(P7_CONTENT_INFO *p7, const unsigned char *data, int length, int detached,
                             int flags) VELPKI_NOEXCEPT;
/** As update_PKCS7_Sign; but it appends to the content of a message that is not detached. */
VELPKI_API int update_PKCS7_Sign_ex(P7_CONTENT_INFO *p7, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Verifying
 * @{ */
/** Verifies every signer with the certificate of the message that its issuer and serial number name, or, given a
 * certificate, the signers that name it. `data` is the content where the message has none. 0 when nothing failed, else
 * the first failure: F_P7_VERIFY with 49 (null, no content), 48 (another type), 5E (the message digest differs), 0E (no
 * KCDSA signature); 1 for a certificate that is missing, an unknown algorithm, missing data and attributes that cannot
 * be encoded; or the provider's code (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning A message without signers or without certificates verifies, also with a certificate given, and so does one
 * of which no signer names the certificate given. The certificate itself is not checked, nor is what the attributes say
 * but for the message digest, which may be missing (then nothing binds the content) and may be longer than the digest.
 * The attributes are encoded anew. Given data is ignored where the message has content. See verify_PKCS7_strict. */
VELPKI_API int verify_PKCS7(P7_CONTENT_INFO *p7, X509_CERT *cert, const unsigned char *data,
                            int length) VELPKI_NOEXCEPT;
/** Verifies one signer with a key: the codes of verify_PKCS7, F_P7_VERIFY with 48 also for missing data. The scheme is
 * the low octet of `padding`, 0 meaning 1. The digest is that of `digest_id`. */
VELPKI_API int verify_PKCS7_data(P7_CONTENT_INFO *p7, P7_SIGNER_INFO *si, ASYMMETRIC_KEY *key, int padding,
                                 int digest_id, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** What verify_PKCS7_strict found out about one signer. The pointers are lent by the message, or by `cert` and `more`.
 */
typedef struct {
  const P7_SIGNER_INFO *signer; /**< of the message */
  const X509_CERT *certificate; /**< null when there is none */
  int digest_id;                /**< of the content */
  int code;                     /**< 0 for a valid signature */
} P7_SIGNER_REPORT;
/** Flags of verify_PKCS7_strict, which may be combined. */
enum {
  PKCS7_ALLOW_WEAK_DIGESTS = 1, /**< digests of less than 28 octets (MD5, SHA-1, HAS-160) */
  PKCS7_ALLOW_BARE_SIGNERS = 2  /**< signers without attributes over a content that is not data (RFC 2315 9.2) */
};
/** Requires at least one signer and verifies every one, or with a certificate given those that name it, of which there
 * must be one. Certificates are looked for in the message and in `more` (null allowed), by the received octets of
 * issuer and serial number; whether they are to be trusted is the caller's to find out. The signature is over the
 * received octets of the attributes. RSA (v1.5, and PSS with its parameters), KCDSA, ECDSA and Ed25519; weak digests
 * and bare signers need their flags. For each signer a report is written, as long as `*report_count` (the capacity;
 * then the number) allows; both may be null. Codes: F_P7_VERIFY with 49, 48 (another type, an unknown digest, algorithm
 * or key), 2B (no such signer), ERR_NO_SIGNER_CERTIFICATE, ERR_NO_CONTENT, ERR_CONTENT_MISMATCH (`data` is not the
 * content of the message), ERR_WEAK_DIGEST, ERR_ALGORITHM_MISMATCH, 5E (message digest), ERR_ASN1_DECODING; of the
 * attributes ERR_ATTRIBUTE_MISSING (no content type or message digest, or a signer without attributes that must have
 * them), ERR_ATTRIBUTE_NOT_SINGLE (one of the two twice, or without just one value), ERR_CONTENT_TYPE_MISMATCH (another
 * type than the content's) and ERR_AMBIGUOUS_CONTENT (none, over a content that could be attributes itself); or the
 * provider's: the first signer's that failed. */
VELPKI_API int verify_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const X509_CERTIFICATES *more,
                                   const unsigned char *data, int length, int flags, P7_SIGNER_REPORT *reports,
                                   int *report_count) VELPKI_NOEXCEPT;
/** @} */

/** @name Recipients and cipher
 * @{ */
/** Fills a recipient: version 0, the certificate's issuer and serial number, its RSA key, and the key encryption
 * algorithm: "id-RSAES-OAEP" for padding 8 or 16, with the parameters given or their defaults, else "rsaEncryption".
 * Codes: F_SET_PKCS7_P7_RECIPIENT_INFO with 49 (null, a certificate without issuer or serial number), 48 (a key that is
 * not RSA) or 3C. */
VELPKI_API int set_PKCS7_P7_RECIPIENT_INFO(P7_RECIPIENT_INFO *ri, X509_CERT *cert, int padding,
                                           RSAES_OAEP_PARAM *oaep) VELPKI_NOEXCEPT;
/** Makes a recipient as set_PKCS7_P7_RECIPIENT_INFO with padding 0, and adds it; it is lent, null on failure. */
VELPKI_API P7_RECIPIENT_INFO *add_PKCS7_Recipient(P7_CONTENT_INFO *p7, X509_CERT *cert) VELPKI_NOEXCEPT;
/** As add_PKCS7_Recipient, with the padding and the parameters given. */
VELPKI_API P7_RECIPIENT_INFO *add_PKCS7_Recipient_withEncryptedAlgorithm(P7_CONTENT_INFO *p7, X509_CERT *cert,
                                                                         int padding,
                                                                         RSAES_OAEP_PARAM *oaep) VELPKI_NOEXCEPT;
/** Fills the encrypted content info: type, algorithm and octets, all copied; null leaves the octets that are there. 0,
 * or
 * 1. The algorithm serves where an encryption is given none; one that is in work ends. */
VELPKI_API int set_PKCS7_P7_ENCRYPTED_CONTENT_INFO(P7_ENCRYPTED_CONTENT_INFO *eci, int type_index,
                                                   X509_ALGO_IDENTIFIER *algorithm, const unsigned char *content,
                                                   int length) VELPKI_NOEXCEPT;
/** Stores a copy of the algorithm in the content of a message, as set_PKCS7_P7_ENCRYPTED_CONTENT_INFO with null octets.
 * 0, or 1. */
VELPKI_API int set_PKCS7_Cipher(P7_CONTENT_INFO *p7, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** The octets of the encrypted content, 0 when it is elsewhere; -1 for null and other types. */
VELPKI_API int get_PKCS7_ENCRYPTED_CONTENT_length(const P7_CONTENT_INFO *p7) VELPKI_NOEXCEPT;
/** @} */

/** @name Encrypting in pieces
 * @{ */
/** Starts the cipher with a key and IV of its lengths, writes the IV as OCTET STRING into the algorithm's parameters,
 * and encrypts the key for every recipient: `padding` is 32 for PKCS#1 v1.5 (0 too), 8 or 16 for OAEP with the
 * parameters of each recipient. Encrypted data has no recipients; a cipher unit that it has already is used in place of
 * key and IV, and its parameters are written only where they are NULL and the algorithm is not password-based.
 * Signed-and-enveloped data is never detached. `reserved` is not looked at. The functions of this group and the next
 * have these codes: F_P7_ENCRYPT with 49 (null, no content, no recipients, a padding that is none, a missing key or IV,
 * update or final without init, a buffer that is null or too small), 48 (a content without encryption, an algorithm
 * that is no cipher, a recipient whose key is not RSA), 3A (the content cannot grow), 3C, or the provider's.
 * @warning A cipher without IV writes an empty OCTET STRING, 04 00. */
VELPKI_API int init_PKCS7_Encrypt(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm, int detached,
                                  const unsigned char *key, const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** Appends the ciphertext of the blocks that are complete to the message and, where the caller's buffer (capacity in
 * `*out_length`) has room for it, copies it there; `*out_length` receives the octets copied. Detached ciphertext goes
 * to the buffer only, which must have room for the input, and for what waits in the cipher beside it. */
VELPKI_API int update_PKCS7_encrypt(P7_CONTENT_INFO *p7, const unsigned char *in, int in_length, unsigned char *out,
                                    int *out_length) VELPKI_NOEXCEPT;
/** Appends the last block in the same way, and ends the encryption. */
VELPKI_API int final_PKCS7_Encrypt(P7_CONTENT_INFO *p7, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Encrypting at once
 * @{ */
/** The three steps in one, with a random key and IV. `reserved` is not looked at. */
VELPKI_API int encrypt_PKCS7(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                             const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
/** As encrypt_PKCS7, with the key and IV given. */
VELPKI_API int encrypt_PKCS7_userKEY(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                     const unsigned char *data, int length, const unsigned char *key,
                                     const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** @} */

/** @name Signing and encrypting
 * @{ */
/** Signs signed-and-enveloped data, then encrypts them with a random key and IV. Codes of both. */
VELPKI_API int sign_encrypt_PKCS7(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                  const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
/** As sign_encrypt_PKCS7, with the key and IV given. */
VELPKI_API int sign_encrypt_PKCS7_userKEY(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                          const unsigned char *data, int length, const unsigned char *key,
                                          const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** As sign_encrypt_PKCS7; then encrypts each encrypted digest under the content's key and IV, as RFC 2315 11 demands,
 * and names "rsaEncryption" for every signer. A padding that is none is 4B00002B, a code without function, and found
 * first.
 * @warning A digest that needs more than 160 octets with the final block fails with F_P7_ENCRYPT and 2B, before any is
 * replaced; the message is signed and encrypted then. That is every RSA key of more than 1152 bits under a cipher of 16
 * octets a block. sign_encrypt_PKCS7_userKEY_SP_ex takes digests of any length. */
VELPKI_API int sign_encrypt_PKCS7_SP(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                     const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
/** As sign_encrypt_PKCS7_SP, its warning included, with the key and IV given. */
VELPKI_API int sign_encrypt_PKCS7_userKEY_SP(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                             const unsigned char *data, int length, const unsigned char *key,
                                             const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** As sign_encrypt_PKCS7_userKEY_SP, with digests of any length; it makes key and IV where `key` is null. */
VELPKI_API int sign_encrypt_PKCS7_userKEY_SP_ex(P7_CONTENT_INFO *p7, const X509_ALGO_IDENTIFIER *algorithm,
                                                const unsigned char *data, int length, const unsigned char *key,
                                                const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** @} */

/** @name Decrypting
 * What these functions refuse themselves is 1; the provider's codes pass. Nothing is written on failure.
 * @{ */
/** Decrypts the content-encryption key with an RSA private key: that of the first recipient that names the certificate
 * or, without one, of the first recipient, whose certificate the message must have. A key is written only when it has
 * the length that the content's cipher wants. 0, 1, or the provider's code.
 * @warning `*out_key_length` is not read: the buffer must have room for the key, at most 32 octets.
 * decrypt_PKCS7_enveloped_CEK_n takes the capacity there. With PKCS#1 v1.5 a caller who tells strangers that this
 * failed helps them to decrypt (Bleichenbacher's attack); decrypt_PKCS7_strict does not. */
VELPKI_API int decrypt_PKCS7_enveloped_CEK(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                           unsigned char *out_key, int *out_key_length, int padding) VELPKI_NOEXCEPT;
/** As decrypt_PKCS7_enveloped_CEK, with the capacity in `*out_key_length`; 1 where it is too small.
 * @warning With PKCS#1 v1.5 the result tells about the padding, as there. */
VELPKI_API int decrypt_PKCS7_enveloped_CEK_n(const P7_CONTENT_INFO *p7, const X509_CERT *cert,
                                             const ASYMMETRIC_KEY *key, unsigned char *out_key, int *out_key_length,
                                             int padding) VELPKI_NOEXCEPT;
/** Decrypts the content of enveloped, signed-and-enveloped or encrypted data under a content-encryption key of the
 * cipher's length; a null IV is that of the algorithm's parameters, or zeros where they are NULL. 0, 1, or the
 * provider's code.
 * @warning `*out_length` is not read: the buffer must have room for get_PKCS7_ENCRYPTED_CONTENT_length octets.
 * decrypt_PKCS7_n takes the capacity there. */
VELPKI_API int decrypt_PKCS7(P7_CONTENT_INFO *p7, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                             int *out_length) VELPKI_NOEXCEPT;
/** As decrypt_PKCS7, with the capacity in `*out_length`, which must be that of the ciphertext. */
VELPKI_API int decrypt_PKCS7_n(const P7_CONTENT_INFO *p7, const unsigned char *key, const unsigned char *iv,
                               unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Decrypting with a private key
 * @{ */
/** Decrypts enveloped or signed-and-enveloped content with the private key of the recipient that the certificate names,
 * whose algorithm says the padding; `*out_length` holds the capacity, which must be that of the ciphertext. Whatever is
 * wrong with the encrypted key, the content goes on to be decrypted under a random one (RFC 3218), so that a stranger
 * learns nothing from the result: it is PKV_ERR_FAILED or, as with a wrong key, now and then rubbish. 1 for what can be
 * told from the message alone: no such recipient, an unknown algorithm, parameters that are no IV, a buffer that is too
 * small. */
VELPKI_API int decrypt_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                    unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Decrypts signed-and-enveloped data as decrypt_PKCS7_strict, decrypts the encrypted digests too, as the _SP functions
 * make them, and verifies as verify_PKCS7_strict, with its codes. */
VELPKI_API int verify_decrypt_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                           const X509_CERTIFICATES *more, int flags, unsigned char *out,
                                           int *out_length) VELPKI_NOEXCEPT;
/** Decrypts signed-and-enveloped data under a content-encryption key, with the buffer rule of decrypt_PKCS7, and
 * verifies what comes out, with the codes of verify_PKCS7.
 * @warning As verify_PKCS7; and it expects signatures that are not encrypted themselves. */
VELPKI_API int verify_decrypt_PKCS7(P7_CONTENT_INFO *p7, X509_CERT *cert, const unsigned char *key, unsigned char *out,
                                    int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Digesting
 * @{ */
/** Puts a copy of the data into digested data, with its digest and the digest's algorithm, which gets no parameters. 0;
 * 1 for null, another type, an unknown digest, and when memory ends; or the provider's code. */
VELPKI_API int digest_PKCS7(P7_CONTENT_INFO *p7, int digest_id, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Messages in standard form
 * @{ */
/** Writes back signers, certificates and CRLs as they were received. Codes as P7_CONTENT_INFO_to_Seq. */
VELPKI_API int P7_CONTENT_INFO_to_Seq_RFC5280(const P7_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Reads what the standards allow: certificates with keys of any kind, CRLs of every version, content of any type; what
 * it cannot read of certificates and CRLs it keeps as octets. It takes exact identifiers, no element twice and none
 * left over. Codes as Seq_to_P7_CONTENT_INFO. */
VELPKI_API int Seq_to_P7_CONTENT_INFO_RFC5280(ASN1_UNIT *in, P7_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing P7_CONTENT_INFO
 * @{ */
/** A message in house form, as DER or under the PEM label "PKCS7"; results as asn1_io.h says. */
VELPKI_API int writeDER_P7_CONTENT_INFO_to_Binary(P7_CONTENT_INFO *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_P7_CONTENT_INFO_to_FILE(P7_CONTENT_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P7_CONTENT_INFO_to_Binary(P7_CONTENT_INFO *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P7_CONTENT_INFO_to_FILE(P7_CONTENT_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const unsigned char *data,
                                                   int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing in standard form
 * @{ */
/** Takes a message as others send it: DER, BER with indefinite lengths and segments as streams write it, or PEM,
 * perhaps behind other text, told apart by the first octet, and reads it in standard form. Results as asn1_io.h says.
 */
VELPKI_API int readBER_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const unsigned char *data,
                                                   int length) VELPKI_NOEXCEPT;
/** As readBER_P7_CONTENT_INFO_from_Binary, out of a file. */
VELPKI_API int readBER_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
/** Writes DER in standard form, as P7_CONTENT_INFO_to_Seq_RFC5280; the octets written, or a code. */
VELPKI_API int writeDER_P7_CONTENT_INFO_to_Binary_RFC5280(const P7_CONTENT_INFO *in,
                                                          unsigned char **out) VELPKI_NOEXCEPT;
/** Writes PEM in standard form under the label "PKCS7"; the octets written, or a code. */
VELPKI_API int writePEM_P7_CONTENT_INFO_to_Binary_RFC5280(const P7_CONTENT_INFO *in, char **out) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
