/** @file velpki/cms.h
 * CMS messages (RFC 5652): data, signed, enveloped, digested, encrypted and authenticated.
 *
 * A message is a CMS_CONTENT_INFO: a content type and the record of that type. It is built by set_CMS_Type, the add_
 * functions and one of the flows below, written and read by the readers and writers at the end. For messages of others
 * the way is readBER_CMS_CONTENT_INFO_from_Binary, then verify_CMS_strict or decrypt_CMS_strict; docs/messages.md says
 * what was tried with which other program.
 *
 * Families (new_, free_, X_to_Seq, Seq_to_X) behave as docs/conventions.md says of SAMPLE. A member that is missing or
 * cannot be encoded is the encoder's code with ERR_ASN1_ENCODING, one that is missing or malformed the decoder's with
 * ERR_ASN1_DECODING; the code of a record inside goes up unchanged. Elements after the known ones are ignored, and of
 * an optional element that is repeated the last counts; the _RFC5280 readers refuse both. A version that is null is
 * written as 0; sets of attributes that are empty are not written. */
#ifndef VELPKI_CMS_H
#define VELPKI_CMS_H

#include <velpki/issuer_and_serial_number.h>
#include <velpki/pkcs7.h>
#include <velpki/x509_crl.h>

VELPKI_BEGIN

/* Records. Members that are not encoded stand last. */

/** Content types, by registry row. */
enum {
  CMS_TYPE_DATA = 21,               /**< OCTET_STRING */
  CMS_TYPE_SIGNED_DATA = 22,        /**< CMS_SIGNED_DATA */
  CMS_TYPE_ENVELOPED_DATA = 23,     /**< CMS_ENVELOPED_DATA */
  CMS_TYPE_DIGESTED_DATA = 25,      /**< CMS_DIGESTED_DATA */
  CMS_TYPE_ENCRYPTED_DATA = 26,     /**< CMS_ENCRYPTED_DATA */
  CMS_TYPE_AUTHENTICATED_DATA = 205 /**< CMS_AUTHENTICATED_DATA */
};

/** ContentInfo (RFC 5652 3): a message. */
typedef struct {
  OBJECT_IDENTIFIER *contentType; /**< the type as encoded */
  void *content;                  /**< OCTET_STRING for data, else the record of the type; null: absent */
  int kind;                       /**< the type that `content` is of, a CMS_TYPE_; 0 when it is null */
} CMS_CONTENT_INFO;

/** EncapsulatedContentInfo (RFC 5652 5.2). */
typedef struct {
  OBJECT_IDENTIFIER *eContentType; /**< any type */
  OCTET_STRING *eContent;          /**< null when it is elsewhere */
} ENCAPSULATED_CONTENT_INFO;

/** The choices of SIGNER_IDENTIFIER. */
enum {
  CMS_ID_ISSUER_AND_SERIAL = 0, /**< issuerAndSerialNumber */
  CMS_ID_SUBJECT_KEY = 1        /**< subjectKeyIdentifier [0] */
};
/** SignerIdentifier (RFC 5652 5.3): names a certificate, of a signer or of a recipient. */
typedef struct {
  int type;                                        /**< one of CMS_ID_ */
  ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber; /**< null for the other choice */
  OCTET_STRING *subjectKeyIdentifier;              /**< null for the other choice */
} SIGNER_IDENTIFIER;
/** RecipientIdentifier (RFC 5652 6.2.1), the same choice. */
typedef SIGNER_IDENTIFIER RECIPIENT_IDENTIFIER;

/** SignerInfo (RFC 5652 5.3). */
typedef struct {
  BIGINT *version;                          /**< 1, or 3 with a subject key identifier */
  SIGNER_IDENTIFIER *sid;                   /**< the signer's certificate */
  X509_ALGO_IDENTIFIER *digestAlgorithm;    /**< of the content */
  X509_ATTRIBUTES *signedAttrs;             /**< null when absent */
  X509_ALGO_IDENTIFIER *signatureAlgorithm; /**< with its parameters */
  OCTET_STRING *signature;                  /**< null until it is made */
  X509_ATTRIBUTES *unsignedAttrs;           /**< null when absent */
  ASYMMETRIC_KEY *privateKey;               /**< a copy of the signer's key; null in what was decoded */
  P7_SIGNER_STATE *state;                   /**< opaque */
} CMS_SIGNER_INFO;
/** SignerInfos: a list of CMS_SIGNER_INFO. */
typedef STACK CMS_SIGNER_INFOS;

/** Digests of content that comes in pieces; opaque. */
typedef struct cms_digests CMS_DIGESTS;

/** SignedData (RFC 5652 5.1). */
typedef struct {
  BIGINT *version;                             /**< 1 or 3; null is written as 0 */
  X509_ALGO_IDENTIFIERS *digestAlgorithms;     /**< one for each signer */
  ENCAPSULATED_CONTENT_INFO *encapContentInfo; /**< what is signed; null is written as data without
                                                * content where there are certificates or CRLs and no signers */
  X509_CERTIFICATES *certificates;             /**< null when absent */
  X509_CRLS *crls;                             /**< null when absent */
  CMS_SIGNER_INFOS *signerInfos;               /**< the signatures */
  /** of ASN1_UNIT: choices other than certificates, which only the _RFC5280 readers take */
  STACK *otherCertificates;
  STACK *otherCrls;     /**< of ASN1_UNIT: likewise */
  int detached;         /**< what init was told: not 0, and the content is not stored */
  CMS_DIGESTS *digests; /**< from init to final */
} CMS_SIGNED_DATA;

/** OriginatorInfo (RFC 5652 6.1). */
typedef struct {
  X509_CERTIFICATES *certificates; /**< null when absent */
  X509_CRLS *crls;                 /**< null when absent */
  STACK *otherCertificates;        /**< as in CMS_SIGNED_DATA */
  STACK *otherCrls;                /**< as in CMS_SIGNED_DATA */
} CMS_ORIGINATOR_INFO;

/** OtherKeyAttribute (RFC 5652 10.2.7). */
typedef struct {
  OBJECT_IDENTIFIER *keyAttrId; /**< what the attribute is */
  ASN1_UNIT *keyAttr;           /**< null when absent */
} OTHER_KEY_ATTRIBUTE;

/** RecipientKeyIdentifier and KEKIdentifier (RFC 5652 6.2.2, 6.2.3): names a key of a recipient of key agreement, and a
 * key-encryption key. */
typedef struct {
  OCTET_STRING *subjectKeyIdentifier; /**< keyIdentifier of a KEKIdentifier */
  ASN1_STRING *date;                  /**< GeneralizedTime, null when absent */
  OTHER_KEY_ATTRIBUTE *other;         /**< null when absent */
} RECIPIENT_KEY_IDENTIFIER;

/** A key that wraps the content's, or a password: kept beside its recipient, wiped with it and never encoded; opaque.
 */
typedef struct cms_secret CMS_SECRET;
/** KeyTransRecipientInfo (RFC 5652 6.2.1). */
typedef struct {
  BIGINT *version;                              /**< 0, or 2 with a subject key identifier */
  RECIPIENT_IDENTIFIER *rid;                    /**< the recipient's certificate */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm; /**< "rsaEncryption" or "id-RSAES-OAEP" */
  OCTET_STRING *encryptedKey;                   /**< null until it is made */
  ASYMMETRIC_KEY *publicKey;                    /**< a copy of the recipient's key; null in what was decoded */
} KEY_TRANS_RECIPIENT_INFO;

/** OriginatorPublicKey (RFC 5652 6.2.2). */
typedef struct {
  X509_ALGO_IDENTIFIER *algorithm; /**< without parameters where it is made here */
  BIT_STRING *publicKey;           /**< the key's octets, a point */
} ORIGINATOR_PUBLIC_KEY;

/** The choices of ORIGINATOR_IDENTIFIER_ORKEY. */
enum {
  CMS_ORIGINATOR_ISSUER_AND_SERIAL = 0, /**< issuerAndSerialNumber */
  CMS_ORIGINATOR_SUBJECT_KEY = 1,       /**< subjectKeyIdentifier [0] */
  CMS_ORIGINATOR_KEY = 2                /**< originatorKey [1] */
};
/** OriginatorIdentifierOrKey (RFC 5652 6.2.2): the other side of a key agreement. */
typedef struct {
  int type;                                        /**< one of CMS_ORIGINATOR_ */
  ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber; /**< null for the other choices */
  OCTET_STRING *subjectKeyIdentifier;              /**< null for the other choices */
  ORIGINATOR_PUBLIC_KEY *originatorKey;            /**< null for the other choices */
} ORIGINATOR_IDENTIFIER_ORKEY;

/** The choices of KEY_AGREE_RECIPIENT_IDENTIFIER. */
enum {
  CMS_KEY_AGREE_ISSUER_AND_SERIAL = 0, /**< issuerAndSerialNumber */
  CMS_KEY_AGREE_KEY_IDENTIFIER = 1     /**< rKeyId [0] */
};
/** KeyAgreeRecipientIdentifier (RFC 5652 6.2.2). */
typedef struct {
  int type;                                        /**< one of CMS_KEY_AGREE_ */
  ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber; /**< null for the other choice */
  RECIPIENT_KEY_IDENTIFIER *rKeyId;                /**< null for the other choice */
} KEY_AGREE_RECIPIENT_IDENTIFIER;

/** RecipientEncryptedKey (RFC 5652 6.2.2): one recipient of a key agreement. */
typedef struct {
  KEY_AGREE_RECIPIENT_IDENTIFIER *rid; /**< the recipient's certificate */
  OCTET_STRING *encryptedKey;          /**< the wrapped key; null until it is made */
  ASYMMETRIC_KEY *publicKey;           /**< a copy of the recipient's key; null in what was decoded */
} RECIPIENT_ENCRYPTED_KEY;
/** RecipientEncryptedKeys: a list of RECIPIENT_ENCRYPTED_KEY. */
typedef STACK RECIPIENT_ENCRYPTED_KEYS;

/** KeyAgreeRecipientInfo (RFC 5652 6.2.2), by ECDH (RFC 5753). */
typedef struct {
  BIGINT *version;                                  /**< 3 */
  ORIGINATOR_IDENTIFIER_ORKEY *originator;          /**< names a certificate, or brings a key */
  OCTET_STRING *ukm;                                /**< user keying material; null when absent */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;     /**< the agreement, with the wrap as its parameters */
  RECIPIENT_ENCRYPTED_KEYS *recipientEncryptedKeys; /**< one for each recipient */
  ASYMMETRIC_KEY *originatorPrivateKey;             /**< of an originator that is named by a certificate */
} KEY_AGREE_RECIPIENT_INFO;

/** KEKRecipientInfo (RFC 5652 6.2.3). */
typedef struct {
  BIGINT *version;                              /**< 4 */
  RECIPIENT_KEY_IDENTIFIER *kekid;              /**< names the key that both sides have */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm; /**< the wrap */
  OCTET_STRING *encryptedKey;                   /**< null until it is made */
  CMS_SECRET *key;                              /**< the key that wraps; null in what was decoded */
} KEK_RECIPIENT_INFO;

/** PasswordRecipientInfo (RFC 5652 6.2.4), as RFC 3211 has it. */
typedef struct {
  BIGINT *version;                              /**< 0 */
  X509_ALGO_IDENTIFIER *keyDerivationAlgorithm; /**< PBKDF2; null when absent */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm; /**< id-alg-PWRI-KEK, with the cipher as its parameters */
  OCTET_STRING *encryptedKey;                   /**< null until it is made */
  CMS_SECRET *password;                         /**< null in what was decoded */
} PASSWORD_RECIPIENT_INFO;

/** The kinds of recipient: the choices of RecipientInfo (RFC 5652 6.2). */
enum {
  CMS_RECIPIENT_KEY_TRANS = 0, /**< KEY_TRANS_RECIPIENT_INFO */
  CMS_RECIPIENT_KEY_AGREE = 1, /**< KEY_AGREE_RECIPIENT_INFO */
  CMS_RECIPIENT_KEK = 2,       /**< KEK_RECIPIENT_INFO */
  CMS_RECIPIENT_PASSWORD = 3,  /**< PASSWORD_RECIPIENT_INFO */
  CMS_RECIPIENT_OTHER = 4      /**< ASN1_UNIT */
};
/** RecipientInfo (RFC 5652 6.2). */
typedef struct {
  int kind;   /**< one of CMS_RECIPIENT_ */
  void *info; /**< the record of the kind; an ASN1_UNIT for CMS_RECIPIENT_OTHER, written back as it came */
} CMS_RECIPIENT_INFO;
/** RecipientInfos: a list of CMS_RECIPIENT_INFO. */
typedef STACK CMS_RECIPIENT_INFOS;

/** EncryptedContentInfo (RFC 5652 6.1), which is that of PKCS#7. */
typedef P7_ENCRYPTED_CONTENT_INFO CMS_ENCRYPTED_CONTENT_INFO;

/** EnvelopedData (RFC 5652 6.1). */
typedef struct {
  BIGINT *version;                                  /**< 0, 2 or 3, by what is in it */
  CMS_RECIPIENT_INFOS *recipientInfos;              /**< those who can decrypt */
  CMS_ENCRYPTED_CONTENT_INFO *encryptedContentInfo; /**< what they decrypt */
  X509_ATTRIBUTES *unprotectedAttrs;                /**< null when absent */
  int detached;                                     /**< what init was told: not 0, and the ciphertext is not stored */
  CMS_ORIGINATOR_INFO *originatorInfo;              /**< encoded before the recipients, when it holds anything */
} CMS_ENVELOPED_DATA;

/** DigestedData (RFC 5652 7). */
typedef struct {
  BIGINT *version;                             /**< 0, or 2 for content other than data */
  X509_ALGO_IDENTIFIER *digestAlgorithm;       /**< without parameters where digest_CMS made it */
  ENCAPSULATED_CONTENT_INFO *encapContentInfo; /**< what is digested */
  OCTET_STRING *digest;                        /**< of the content's octets */
} CMS_DIGESTED_DATA;

/** EncryptedData (RFC 5652 8): the key is known to the reader by other means. */
typedef struct {
  BIGINT *version;                                  /**< 0, or 2 with unprotected attributes */
  CMS_ENCRYPTED_CONTENT_INFO *encryptedContentInfo; /**< the content */
  X509_ATTRIBUTES *unprotectedAttrs;                /**< null when absent */
  int detached;                                     /**< what init was told: not 0, and the ciphertext is not stored */
} CMS_ENCRYPTED_DATA;

/** AuthenticatedData (RFC 5652 9.1). */
typedef struct {
  BIGINT *version;                             /**< 0; null is written as 0 */
  CMS_ORIGINATOR_INFO *originatorInfo;         /**< null when absent */
  CMS_RECIPIENT_INFOS *recipientInfos;         /**< those who can verify */
  X509_ALGO_IDENTIFIER *macAlgorithm;          /**< HMAC over a digest */
  X509_ALGO_IDENTIFIER *digestAlgorithm;       /**< of the attribute messageDigest; null when absent */
  ENCAPSULATED_CONTENT_INFO *encapContentInfo; /**< what is authenticated */
  X509_ATTRIBUTES *authAttrs;                  /**< null when absent */
  OCTET_STRING *mac;                           /**< null until it is made */
  X509_ATTRIBUTES *unauthAttrs;                /**< null when absent */
} CMS_AUTHENTICATED_DATA;

/* Families. */

/** @name The family of CMS_CONTENT_INFO
 * @{ */
/** A new message has neither type nor content; set_CMS_Type gives it both. Decoding a content type that is not among
 * the CMS_TYPE_ is F_SEQ_TO_CMS_CONTENT_INFO with reason 48. The octets of a content may be in segments; they are
 * joined.
 * @warning Certificates and CRLs are read in house form, which refuses keys that it does not know and CRLs without
 * nextUpdate, and with them the whole message. Seq_to_CMS_CONTENT_INFO_RFC5280 does not. */
VELPKI_API CMS_CONTENT_INFO *new_CMS_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_CONTENT_INFO(CMS_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_CONTENT_INFO_to_Seq(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_CONTENT_INFO(ASN1_UNIT *in, CMS_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of ENCAPSULATED_CONTENT_INFO
 * @{ */
/** A new record has neither type nor content; set_ENCAPSULATED_CONTENT_INFO fills it. */
VELPKI_API ENCAPSULATED_CONTENT_INFO *new_ENCAPSULATED_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ENCAPSULATED_CONTENT_INFO(ENCAPSULATED_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int ENCAPSULATED_CONTENT_INFO_to_Seq(const ENCAPSULATED_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_ENCAPSULATED_CONTENT_INFO(ASN1_UNIT *in, ENCAPSULATED_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_SIGNED_DATA
 * @{ */
/** New signed data have empty lists of algorithms and signers and no content; set_CMS_Type makes them inside a message.
 */
VELPKI_API CMS_SIGNED_DATA *new_CMS_SIGNED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_SIGNED_DATA(CMS_SIGNED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_SIGNED_DATA_to_Seq(const CMS_SIGNED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_SIGNED_DATA(ASN1_UNIT *in, CMS_SIGNED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of SIGNER_IDENTIFIER
 * @{ */
/** A new identifier is CMS_ID_ISSUER_AND_SERIAL, without a value. */
VELPKI_API SIGNER_IDENTIFIER *new_SIGNER_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_SIGNER_IDENTIFIER(SIGNER_IDENTIFIER *p) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_SIGNER_INFO
 * @{ */
/** A new signer is empty; set_CMS_SIGNER_INFO fills it. */
VELPKI_API CMS_SIGNER_INFO *new_CMS_SIGNER_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_SIGNER_INFO(CMS_SIGNER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_SIGNER_INFO_to_Seq(const CMS_SIGNER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_SIGNER_INFO(ASN1_UNIT *in, CMS_SIGNER_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_SIGNER_INFOS
 * @{ */
/** A new list is empty. It is encoded as a SET in the list's order. */
VELPKI_API CMS_SIGNER_INFOS *new_CMS_SIGNER_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_SIGNER_INFOS(CMS_SIGNER_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_SIGNER_INFOS_to_Seq(const CMS_SIGNER_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_SIGNER_INFOS(ASN1_UNIT *in, CMS_SIGNER_INFOS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_ORIGINATOR_INFO
 * @{ */
/** New information has neither certificates nor CRLs; add_CMS_Originator_Certificate and add_CMS_Originator_CRL fill it
 * inside a message. */
VELPKI_API CMS_ORIGINATOR_INFO *new_CMS_ORIGINATOR_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ORIGINATOR_INFO(CMS_ORIGINATOR_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ORIGINATOR_INFO_to_Seq(const CMS_ORIGINATOR_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ORIGINATOR_INFO(ASN1_UNIT *in, CMS_ORIGINATOR_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_ENVELOPED_DATA
 * @{ */
/** New enveloped data have an empty list of recipients; set_CMS_Type makes them inside a message. */
VELPKI_API CMS_ENVELOPED_DATA *new_CMS_ENVELOPED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ENVELOPED_DATA(CMS_ENVELOPED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ENVELOPED_DATA_to_Seq(const CMS_ENVELOPED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ENVELOPED_DATA(ASN1_UNIT *in, CMS_ENVELOPED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_RECIPIENT_INFO
 * @{ */
/** A new recipient is of key transport, without a value; set_CMS_RECIPIENT_INFO_ex fills every kind. Records inside it
 * have its codes, F_CMS_RECIPIENT_INFO_TO_SEQ and F_SEQ_TO_CMS_RECIPIENT_INFO. */
VELPKI_API CMS_RECIPIENT_INFO *new_CMS_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_RECIPIENT_INFO(CMS_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_RECIPIENT_INFO_to_Seq(const CMS_RECIPIENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_RECIPIENT_INFO(ASN1_UNIT *in, CMS_RECIPIENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_RECIPIENT_INFOS
 * @{ */
/** A new list is empty. It is encoded as a SET in the list's order. */
VELPKI_API CMS_RECIPIENT_INFOS *new_CMS_RECIPIENT_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_RECIPIENT_INFOS(CMS_RECIPIENT_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_RECIPIENT_INFOS_to_Seq(const CMS_RECIPIENT_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_RECIPIENT_INFOS(ASN1_UNIT *in, CMS_RECIPIENT_INFOS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle of what recipients hold
 * @{ */
/** These records have no codec of their own: they are encoded and decoded inside their CMS_RECIPIENT_INFO, which owns
 * them. A new one is empty, a choice of its first kind. */
VELPKI_API KEY_TRANS_RECIPIENT_INFO *new_KEY_TRANS_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KEY_TRANS_RECIPIENT_INFO(KEY_TRANS_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API RECIPIENT_IDENTIFIER *new_RECIPIENT_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RECIPIENT_IDENTIFIER(RECIPIENT_IDENTIFIER *p) VELPKI_NOEXCEPT;
VELPKI_API KEY_AGREE_RECIPIENT_INFO *new_KEY_AGREE_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KEY_AGREE_RECIPIENT_INFO(KEY_AGREE_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API ORIGINATOR_IDENTIFIER_ORKEY *new_ORIGINATOR_IDENTIFIER_ORKEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ORIGINATOR_IDENTIFIER_ORKEY(ORIGINATOR_IDENTIFIER_ORKEY *p) VELPKI_NOEXCEPT;
VELPKI_API ORIGINATOR_PUBLIC_KEY *new_ORIGINATOR_PUBLIC_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ORIGINATOR_PUBLIC_KEY(ORIGINATOR_PUBLIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API KEY_AGREE_RECIPIENT_IDENTIFIER *new_KEY_AGREE_RECIPIENT_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KEY_AGREE_RECIPIENT_IDENTIFIER(KEY_AGREE_RECIPIENT_IDENTIFIER *p) VELPKI_NOEXCEPT;
VELPKI_API RECIPIENT_KEY_IDENTIFIER *new_RECIPIENT_KEY_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RECIPIENT_KEY_IDENTIFIER(RECIPIENT_KEY_IDENTIFIER *p) VELPKI_NOEXCEPT;
VELPKI_API OTHER_KEY_ATTRIBUTE *new_OTHER_KEY_ATTRIBUTE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OTHER_KEY_ATTRIBUTE(OTHER_KEY_ATTRIBUTE *p) VELPKI_NOEXCEPT;
VELPKI_API RECIPIENT_ENCRYPTED_KEY *new_RECIPIENT_ENCRYPTED_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RECIPIENT_ENCRYPTED_KEY(RECIPIENT_ENCRYPTED_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API RECIPIENT_ENCRYPTED_KEYS *new_RECIPIENT_ENCRYPTED_KEYS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_RECIPIENT_ENCRYPTED_KEYS(RECIPIENT_ENCRYPTED_KEYS *p) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_ENCRYPTED_CONTENT_INFO
 * @{ */
/** The functions of P7_ENCRYPTED_CONTENT_INFO, but the codes are F_CMS_ENCRYPTED_CONTENT_INFO_TO_SEQ and
 * F_SEQ_TO_CMS_ENCRYPTED_CONTENT_INFO. */
VELPKI_API CMS_ENCRYPTED_CONTENT_INFO *new_CMS_ENCRYPTED_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ENCRYPTED_CONTENT_INFO(CMS_ENCRYPTED_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ENCRYPTED_CONTENT_INFO_to_Seq(const CMS_ENCRYPTED_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ENCRYPTED_CONTENT_INFO(ASN1_UNIT *in, CMS_ENCRYPTED_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_DIGESTED_DATA
 * @{ */
/** New digested data are empty; digest_CMS fills them inside a message. */
VELPKI_API CMS_DIGESTED_DATA *new_CMS_DIGESTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_DIGESTED_DATA(CMS_DIGESTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_DIGESTED_DATA_to_Seq(const CMS_DIGESTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_DIGESTED_DATA(ASN1_UNIT *in, CMS_DIGESTED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_ENCRYPTED_DATA
 * @{ */
/** New encrypted data are empty; set_CMS_Type makes them inside a message. */
VELPKI_API CMS_ENCRYPTED_DATA *new_CMS_ENCRYPTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ENCRYPTED_DATA(CMS_ENCRYPTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ENCRYPTED_DATA_to_Seq(const CMS_ENCRYPTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ENCRYPTED_DATA(ASN1_UNIT *in, CMS_ENCRYPTED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CMS_AUTHENTICATED_DATA
 * @{ */
/** New authenticated data have an empty list of recipients; set_CMS_Type makes them inside a message. */
VELPKI_API CMS_AUTHENTICATED_DATA *new_CMS_AUTHENTICATED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_AUTHENTICATED_DATA(CMS_AUTHENTICATED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_AUTHENTICATED_DATA_to_Seq(const CMS_AUTHENTICATED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_AUTHENTICATED_DATA(ASN1_UNIT *in, CMS_AUTHENTICATED_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle of recipients with a secret
 * @{ */
/** These records have no codec of their own, either. Their secrets are wiped when they are released. */
VELPKI_API KEK_RECIPIENT_INFO *new_KEK_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KEK_RECIPIENT_INFO(KEK_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API PASSWORD_RECIPIENT_INFO *new_PASSWORD_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PASSWORD_RECIPIENT_INFO(PASSWORD_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Messages in standard form
 * @{ */
/** Encodes everything in standard form: numbers with their sign, sets in the order of DER, and what was received of
 * certificates and signers octet for octet. Codes as CMS_CONTENT_INFO_to_Seq. */
VELPKI_API int CMS_CONTENT_INFO_to_Seq_RFC5280(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes everything in standard form: numbers with their sign, certificates with any key, other choices of
 * certificates and CRLs kept as units. No element twice and none left over. Codes as Seq_to_CMS_CONTENT_INFO. */
VELPKI_API int Seq_to_CMS_CONTENT_INFO_RFC5280(ASN1_UNIT *in, CMS_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/* Building. */

/** @name Type and content
 * For this and the next groups, down to signing: what is said to take over belongs to the message afterwards, on
 * success only; an object that the message already holds is refused (2B). Certificates, keys, algorithms and attributes
 * are copied.
 *
 * Versions follow what is added and are only raised: signed data 3 with a signer of version 3 or content other than
 * data; enveloped data 2 with a recipient whose version is not 0, an originator or unprotected attributes, 3 with a
 * password recipient or one of another kind; encrypted data 2 with unprotected attributes; digested data 2 for content
 * other than data. set_CMS_version, called last, overrides that.
 * @{ */
/** Sets the type and makes its empty content, of version 1 for signed data, else 0; for data it sets the type alone.
 * What the message held is released. F_SET_CMS_TYPE with 49, 48 or 3C. */
VELPKI_API int set_CMS_Type(CMS_CONTENT_INFO *cms, int type_index) VELPKI_NOEXCEPT;
/** Sets the version of the content, of every signer of signed data (1 and 3 only, else 2B), and of the key transport
 * and password recipients of enveloped data. The other functions raise versions by what is added, so it is called last.
 * F_SET_CMS_VERSION with 49, 48 (also when `type_index` is not the type of the message, and for data), 2B, or 28 for a
 * number that cannot be set, a negative one among them. */
VELPKI_API int set_CMS_version(CMS_CONTENT_INFO *cms, int version, int type_index) VELPKI_NOEXCEPT;
/** Fills a content with a type, by its registry row, and a copy of the octets; a null `bytes` of length 0 leaves them
 * absent. F_SET_ENCAPSULATED_CONTENT_INFO with 49, 48 (a row without identifier), 2B or 3C. */
VELPKI_API int set_ENCAPSULATED_CONTENT_INFO(ENCAPSULATED_CONTENT_INFO *eci, int type_index, const unsigned char *bytes,
                                             int length) VELPKI_NOEXCEPT;
/** Takes over the content of signed, digested or authenticated data, and raises the version of the first two for
 * content other than data. F_SET_CMS_CONTENT with 49, 48, 2B (the message holds it already) or 3C. */
VELPKI_API int set_Content_Info(CMS_CONTENT_INFO *cms, ENCAPSULATED_CONTENT_INFO *eci) VELPKI_NOEXCEPT;
/** Fills an encrypted content with a type, by its registry row, an algorithm and a copy of the octets; a null `content`
 * of length 0 leaves them absent. F_SET_CMS_ENCRYPTED_CONTENT_INFO with 49, 48 (a row without identifier), 2B or 3C. */
VELPKI_API int set_CMS_ENCRYPTED_CONTENT_INFO(CMS_ENCRYPTED_CONTENT_INFO *eci, int type_index,
                                              X509_ALGO_IDENTIFIER *algorithm, const unsigned char *content,
                                              int length) VELPKI_NOEXCEPT;
/** Stores a copy of the algorithm in enveloped or encrypted data, for an encryption that is given none.
 * F_SET_CMS_CIPHER with 49, 48 or 3C. */
VELPKI_API int set_CMS_Cipher(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** Stores a copy of the MAC's algorithm in authenticated data. F_SET_CMS_MACALGORITHM with 49, 48 or 3C. */
VELPKI_API int set_CMS_macAlgorithm(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** Stores a copy of the digest's algorithm in digested or authenticated data. F_SET_CMS_DIGESTALGORITHM with 49, 48 or
 * 3C. */
VELPKI_API int set_CMS_digestAlgorithm(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** Stores a copy of a MAC that was made elsewhere in authenticated data. F_SET_CMS_MAC with 49, 48, 2B or 3C. */
VELPKI_API int set_CMS_mac(CMS_CONTENT_INFO *cms, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name What names a certificate
 * @{ */
/** Stores a copy of the certificate's subject key identifier in place of what is there. F_SET_CMS_SUBJECTKEYIDENTIFIER
 * with 49, 3C, or 2B for a certificate without one. */
VELPKI_API int set_CMS_SubjectKeyIdentifier(OCTET_STRING **ski, X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the certificate's issuer and serial number in place of what is there.
 * F_SET_CMS_ISSUERANDSERIALNUMBER with 49 or 3C. */
VELPKI_API int set_CMS_IssuerAndSerialNumber(ISSUER_AND_SERIAL_NUMBER **issuer_and_serial,
                                             X509_CERT *cert) VELPKI_NOEXCEPT;
/** @} */

/** @name Signers
 * @{ */
/** Fills a signer: with bit 1 of the flags version 3 and the certificate's subject key identifier (2B when it has
 * none), else version 1 and issuer and serial number; a copy of the private key, which may be null; the digest of a
 * registry row; and the signature algorithm of set_PKCS7_P7_SIGNER_INFO. Paddings are 1 (PKCS#1 v1.5) and 2 (PSS), keys
 * RSA and KCDSA; another padding, key or row is 48. F_SET_CMS_SIGNER_INFO with 49, 48, 2B or 3C.
 * @warning `pss` is not looked at, as in pkcs7.h; set_CMS_SIGNER_INFO_ex writes the parameters and signs with them. */
VELPKI_API int set_CMS_SIGNER_INFO(CMS_SIGNER_INFO *si, X509_CERT *cert, int flags, ASYMMETRIC_KEY *key,
                                   int digest_index, int padding, RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** As set_CMS_SIGNER_INFO; but with padding 2 it writes the parameters of PSS and signs with them, null meaning the
 * digest for everything; and with padding 1 it takes keys on a curve, for ECDSA with a digest of SHA-1 or SHA-2 (RFC
 * 5753 2.1). Their signers need signed attributes where the content is detached. verify_CMS_strict verifies them,
 * verify_CMS refuses them. */
VELPKI_API int set_CMS_SIGNER_INFO_ex(CMS_SIGNER_INFO *si, const X509_CERT *cert, int flags, const ASYMMETRIC_KEY *key,
                                      int digest_index, int padding, const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** Takes a signer over, into signed data, and appends a copy of its digest algorithm to the message's, once for each
 * signer. F_ADD_CMS_SIGNER with 49, 48, 2B (the message holds it already) or 3C. */
VELPKI_API int add_CMS_SignerInfo(CMS_CONTENT_INFO *cms, CMS_SIGNER_INFO *si) VELPKI_NOEXCEPT;
/** Appends a copy of a digest algorithm alone: 0, or plain 1. */
VELPKI_API int add_CMS_DigestAlgoIdentifier(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/** Makes a signer as set_CMS_SIGNER_INFO and adds it; the signer is lent, null on failure.
 * @warning `pss` is not looked at. */
VELPKI_API CMS_SIGNER_INFO *add_CMS_Signature(CMS_CONTENT_INFO *cms, X509_CERT *cert, int flags, ASYMMETRIC_KEY *key,
                                              int digest_index, int padding, RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** As add_CMS_Signature, by set_CMS_SIGNER_INFO_ex. */
VELPKI_API CMS_SIGNER_INFO *add_CMS_Signature_ex(CMS_CONTENT_INFO *cms, const X509_CERT *cert, int flags,
                                                 const ASYMMETRIC_KEY *key, int digest_index, int padding,
                                                 const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/** @} */

/** @name Certificates and CRLs
 * @{ */
/** Appends a copy of a certificate to signed data, which may be without content and signers (certs-only).
 * F_ADD_CMS_CERTIFICATE with 49, 48 or 3C. */
VELPKI_API int add_CMS_Certificate(CMS_CONTENT_INFO *cms, X509_CERT *cert) VELPKI_NOEXCEPT;
/** Appends a copy of a CRL to signed data. F_ADD_CMS_CRL with 49, 48 or 3C. */
VELPKI_API int add_CMS_CRL(CMS_CONTENT_INFO *cms, X509_CRL *crl) VELPKI_NOEXCEPT;
/** Appends a copy of a certificate to the originator information of enveloped or authenticated data.
 * F_ADD_CMS_ORIGINATOR_CERTIFICATE with 49, 48 or 3C. */
VELPKI_API int add_CMS_Originator_Certificate(CMS_CONTENT_INFO *cms, X509_CERT *cert) VELPKI_NOEXCEPT;
/** Appends a copy of a CRL there. F_ADD_CMS_ORIGINATOR_CRL with 49, 48 or 3C. */
VELPKI_API int add_CMS_Originator_CRL(CMS_CONTENT_INFO *cms, X509_CRL *crl) VELPKI_NOEXCEPT;
/** @} */

/** @name Attributes
 * @{ */
/** Adds a signed attribute with one value, of which `type` and `bytes` are those of add_PKCS7_Signed_Attribute;
 * `oid_index` is a registry row. F_ADD_ATTRIBUTE with 49, 2B (a row without identifier, a negative length) or 3C (also
 * for octets that are no value of the type). */
VELPKI_API int add_CMS_Signed_Attribute(CMS_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                        int length) VELPKI_NOEXCEPT;
/** Adds an unsigned attribute to a signer in the same way, with the same codes. */
VELPKI_API int add_CMS_Unsigned_Attribute(CMS_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                          int length) VELPKI_NOEXCEPT;
/** Adds an unprotected attribute to enveloped or encrypted data in the same way, and raises their version to 2.
 * F_ADD_CMS_UNPROTECTED_ATTRIBUTE with 49, 48, 2B or 3C. */
VELPKI_API int add_CMS_Unprotected_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type, const unsigned char *bytes,
                                             int length) VELPKI_NOEXCEPT;
/** Adds an authenticated attribute to authenticated data in the same way. F_ADD_CMS_AUTHENTICATED_ATTRIBUTE with 49,
 * 48, 2B or 3C. */
VELPKI_API int add_CMS_Authenticated_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type,
                                               const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** Adds an attribute that the MAC does not cover to authenticated data in the same way.
 * F_ADD_CMS_UNAUTHENTICATED_ATTRIBUTE with 49, 48, 2B or 3C. */
VELPKI_API int add_CMS_Unauthenticated_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type,
                                                 const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Recipients
 * @{ */
/** Fills a recipient by its flags (16 goes before 32, 2 before 1):
 * - 16: key agreement, of version 3, for the certificate's key. The originator is the certificate's public key with 2,
 *   its subject key identifier with 1, else its issuer and serial number; the recipient is named by the subject key
 *   identifier with 1, else by issuer and serial number. The algorithm is ECDH with SHA-256 and the wrap of AES-256.
 * - 32: a key-encryption key; nothing is filled but the kind.
 * - else key transport: with 1 version 2 and the subject key identifier, else version 0 and issuer and serial number;
 *   "id-RSAES-OAEP" with the parameters for padding 8 and 16, else "rsaEncryption". The key must be RSA (48).
 *
 * F_SET_CMS_RECIPIENT_INFO with 49, 48, 2B (a certificate without subject key identifier) or 3C.
 * @warning A key agreement recipient whose originator is not a public key cannot be encrypted for: only
 * set_CMS_RECIPIENT_INFO_ex takes the originator's private key. */
VELPKI_API int set_CMS_RECIPIENT_INFO(CMS_RECIPIENT_INFO *ri, X509_CERT *cert, int padding, RSAES_OAEP_PARAM *oaep,
                                      int flags) VELPKI_NOEXCEPT;
/** What set_CMS_RECIPIENT_INFO_ex makes a recipient of. Options that are 0 or null have the defaults named behind the
 * semicolon; what is pointed to stays the caller's. */
typedef struct {
  int kind;                     /**< one of CMS_RECIPIENT_ but the last */
  const X509_CERT *cert;        /**< of the recipient: key transport and agreement */
  int flags;                    /**< 1 and 2, as in set_CMS_RECIPIENT_INFO */
  int padding;                  /**< key transport; PKCS#1 v1.5 */
  const RSAES_OAEP_PARAM *oaep; /**< of paddings 8 and 16; SHA-1 */
  int digest_id;                /**< of the key derivation: agreement and password; SHA-256 */
  /** what wraps: agreement AES-256, key-encryption key AES by its length; password AES-256-CBC */
  int cipher_id;
  const unsigned char *ukm;             /**< user keying material of agreement; none */
  int ukm_length;                       /**< octets */
  const X509_CERT *originator;          /**< of agreement, named without flag 2; the recipient's */
  const ASYMMETRIC_KEY *originator_key; /**< its private key; without one, and with 2, a fresh key is made each time */
  const unsigned char *secret;          /**< the key-encryption key, or the password */
  int secret_length;                    /**< octets */
  const unsigned char *key_id;          /**< that names the key-encryption key */
  int key_id_length;                    /**< octets */
  int iterations;                       /**< of the password's derivation; 600,000, and at most 10,000,000 */
} CMS_RECIPIENT_OPTIONS;
/** Fills a recipient of every kind from options. F_SET_CMS_RECIPIENT_INFO with 49, 48 (another kind, a key or cipher
 * that does not fit), 2B (a secret of another length than the wrap wants, a certificate without subject key identifier)
 * or 3C. */
VELPKI_API int set_CMS_RECIPIENT_INFO_ex(CMS_RECIPIENT_INFO *ri, const CMS_RECIPIENT_OPTIONS *options) VELPKI_NOEXCEPT;
/** Makes an originator of a certificate's public key, the algorithm without parameters. F_SET_CMS_ORIGINATORPUBLICKKEY
 * with 49, 48 or 3C. */
VELPKI_API int set_CMS_OriginatorPublickKey(ORIGINATOR_IDENTIFIER_ORKEY *originator, X509_CERT *cert) VELPKI_NOEXCEPT;
/** Takes a recipient over, into enveloped or authenticated data, and raises the version of enveloped data by its kind.
 * F_ADD_CMS_RECIPIENT_INFO with 49, 48, 2B (the message holds it already) or 3C. */
VELPKI_API int add_CMS_RECIPIENT_INFO(CMS_CONTENT_INFO *cms, CMS_RECIPIENT_INFO *ri) VELPKI_NOEXCEPT;
/** Makes a recipient as set_CMS_RECIPIENT_INFO and adds it; it is lent, null on failure. */
VELPKI_API CMS_RECIPIENT_INFO *add_CMS_Recipient(CMS_CONTENT_INFO *cms, X509_CERT *cert, int padding,
                                                 RSAES_OAEP_PARAM *oaep, int flags) VELPKI_NOEXCEPT;
/** As add_CMS_Recipient, by set_CMS_RECIPIENT_INFO_ex. */
VELPKI_API CMS_RECIPIENT_INFO *add_CMS_Recipient_ex(CMS_CONTENT_INFO *cms,
                                                    const CMS_RECIPIENT_OPTIONS *options) VELPKI_NOEXCEPT;
/** @} */

/** @name Signing
 * @{ */
/** Starts every signer that has no signature yet; the others are left as they are by all three steps. `detached` 1
 * keeps the content out of the message. F_INIT_CMS_SIGN with 49 (null, no content), 48 (content that is not signed
 * data; a key that is neither RSA nor KCDSA, nor on a curve with attributes or content that is not detached), 2B (no
 * signers, an unknown algorithm), 3C, or the provider's. */
VELPKI_API int init_CMS_Sign(CMS_CONTENT_INFO *cms, int detached) VELPKI_NOEXCEPT;
/** Keeps the first octets as the content of a message that is not detached, and ignores later ones; detached content
 * comes in any number of pieces and is not stored. F_UPDATE_CMS_SIGN with 49, 48, 2B (a negative
 * length), 3C, or the provider's. */
VELPKI_API int update_CMS_Sign(CMS_CONTENT_INFO *cms, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Signs: where a signer has signed attributes, or the content is of another type than data, contentType and
 * messageDigest are added unless the caller did, the attributes are put into the order of DER, and their SET OF is
 * signed; else the content is. An RSA signer of attributes, but one of PSS, then names "rsaEncryption"; KCDSA signers
 * name "kcdsa1". Signers keep their versions. A detached message's attributes must be there before init_CMS_Sign,
 * else 2B. F_FINAL_CMS_SIGN with 49 (also without init), 48, 2B, 5F (attributes that cannot be encoded), 54 (an empty
 * half of a KCDSA signature), 3C, or the provider's. */
VELPKI_API int final_CMS_Sign(CMS_CONTENT_INFO *cms) VELPKI_NOEXCEPT;
/** The three steps in one, with their codes. */
VELPKI_API int sign_CMS(CMS_CONTENT_INFO *cms, const unsigned char *data, int length, int detached) VELPKI_NOEXCEPT;
/** @} */

/** @name Verifying
 * @{ */
/** Verifies every signer with the certificate of the message that its identifier names, or, given a certificate, the
 * signers that name it. `data` is the content where the message has none. 0 when nothing failed, else the first
 * failure: F_VERIFY_CMS with 49 (null, no content), 48 (another type, an unsupported key), 5E (the message digest
 * differs), 0E (no KCDSA signature); 1 for a certificate that is missing, an unknown algorithm, missing data and
 * attributes that cannot be encoded; or the provider's code (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning A message without signers or without certificates verifies, also with a certificate given, and so does one
 * of which no signer names the certificate given. The certificate itself is not checked, nor is what the attributes say
 * but for the message digest, which may be missing (then nothing binds the content) and may be longer than the digest.
 * The attributes are encoded anew, in their order. A subject key identifier is compared as text, up to its first zero
 * octet: an empty one names every certificate that has one. See verify_CMS_strict. */
VELPKI_API int verify_CMS(CMS_CONTENT_INFO *cms, X509_CERT *cert, const unsigned char *data,
                          int length) VELPKI_NOEXCEPT;

/** What verify_CMS_strict found out about one signer. The pointers are lent by the message, or by `cert` and `more`. */
typedef struct {
  const CMS_SIGNER_INFO *signer; /**< of the message */
  const X509_CERT *certificate;  /**< null when there is none */
  int digest_id;                 /**< of the content */
  int code;                      /**< 0 for a valid signature */
} CMS_SIGNER_REPORT;
/** Flags of verify_CMS_strict. */
enum {
  CMS_ALLOW_WEAK_DIGESTS = 1 /**< digests of less than 28 octets */
};
/** Requires at least one signer and verifies every one, or with a certificate given those that name it, of which there
 * must be one; certificates are looked for in the message and in `more` (null allowed). What else it requires, the
 * algorithms and the codes are those of verify_PKCS7_strict, with F_VERIFY_CMS; identifiers are compared whole, weak
 * digests need their flag, and signers without attributes over content that is not data are refused. For each signer a
 * report is written, as long as `*report_count` (the capacity; then the number) allows; both may be null. Whether the
 * certificates are to be trusted is the caller's to find out. */
VELPKI_API int verify_CMS_strict(const CMS_CONTENT_INFO *cms, const X509_CERT *cert, const X509_CERTIFICATES *more,
                                 const unsigned char *data, int length, int flags, CMS_SIGNER_REPORT *reports,
                                 int *report_count) VELPKI_NOEXCEPT;
/** @} */

/** @name Encrypting for recipients
 * @{ */
/** Encrypts a content-encryption key for one recipient. `padding` is that of key transport, 0 meaning PKCS#1 v1.5. A
 * key agreement recipient with a public key for originator gets a fresh one. F_ENCRYPT_CMS_RECIPIENTINFO with 49 (a
 * padding other than 0, 32, 8 and 16, too), 48 (a key of the wrong kind), 2B, 3C, or the provider's. */
VELPKI_API int encrypt_CMS_RecipientInfo(CMS_RECIPIENT_INFO *ri, const unsigned char *cek, int cek_length,
                                         int padding) VELPKI_NOEXCEPT;
/** Encrypts a content-encryption key for every recipient of enveloped data, the key having the length of the cipher
 * that set_CMS_Cipher named. F_INIT_CMS_ENCRYPT_RECIPIENTINFO with 49 or 48, or those of a recipient. */
VELPKI_API int init_CMS_Encrypt_RecipientInfo(CMS_CONTENT_INFO *cms, const unsigned char *cek,
                                              int padding) VELPKI_NOEXCEPT;
/** @} */

/** @name Encrypting in pieces
 * @{ */
/** Starts the cipher of enveloped or encrypted data (a null `algorithm` is the one that was set) with a key and IV of
 * its lengths, and encrypts the key for the recipients, as init_PKCS7_Encrypt does. `reserved` is not looked at.
 * F_INIT_CMS_ENCRYPT with 49 (no content, no recipients, another padding, too), 48 (content that is neither, an unknown
 * cipher), 2B, 3C, those of a recipient, or the provider's. */
VELPKI_API int init_CMS_Encrypt(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm, int detached,
                                const unsigned char *key, const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** Writes the ciphertext of the blocks that are complete to the caller's buffer where the content is detached, else to
 * the message, by the rules of update_PKCS7_encrypt. F_UPDATE_CMS_ENCRYPT with 49 (also without init), 48, 2B, 3A
 * (encrypted content that cannot grow), 3C, or the provider's. */
VELPKI_API int update_CMS_encrypt(CMS_CONTENT_INFO *cms, const unsigned char *in, int in_length, unsigned char *out,
                                  int *out_length) VELPKI_NOEXCEPT;
/** Writes the last block in the same way, and ends the encryption. F_FINAL_CMS_ENCRYPT as there. */
VELPKI_API int final_CMS_Encrypt(CMS_CONTENT_INFO *cms, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Encrypting at once
 * @{ */
/** The three steps in one, with a random key and IV. `reserved` is not looked at. F_ENCRYPT_CMS with 49 or 48, and the
 * codes of the steps. */
VELPKI_API int encrypt_CMS(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                           const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
/** As encrypt_CMS, with the caller's key and IV. */
VELPKI_API int encrypt_CMS_userKEY(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                   const unsigned char *data, int length, const unsigned char *key,
                                   const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/** @} */

/** @name Decrypting
 * @{ */
/** Decrypts the key for the key transport recipient that the certificate names, or, given none, for the first one,
 * whose certificate must then be in the originator information. F_DECRYPT_CONTENT_ENCRYPTION_KEY with 49 (null, no
 * certificate), 48 (another type, a key that is not RSA, an unknown cipher), 2B (no such recipient), 3C, or the
 * provider's.
 * @warning `*out_length` is not read: `out` must have room for the key of the content's cipher, at most 32 octets.
 * decrypt_content_encryption_key_ex takes the capacity there.
 * @warning Identifiers are compared as verify_CMS does. A wrong padding is told from a right one (Bleichenbacher's
 * attack); decrypt_CMS_strict does not. */
VELPKI_API int decrypt_content_encryption_key(CMS_CONTENT_INFO *cms, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                              unsigned char *out, int *out_length, int padding) VELPKI_NOEXCEPT;
/** Decrypts the content of enveloped or encrypted data; a null IV means that of the algorithm. F_DECRYPT_CMS with 49,
 * 48 (another type, an unknown cipher), 2B (parameters that are no IV), or the provider's: PKV_ERR_FAILED for a padding
 * that is wrong.
 * @warning `*out_length` is not read: `out` must have room for the encrypted content. decrypt_CMS_n takes the capacity
 * there. */
VELPKI_API int decrypt_CMS(CMS_CONTENT_INFO *cms, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                           int *out_length) VELPKI_NOEXCEPT;
/** As decrypt_CMS, with the capacity in `*out_length`, which must be that of the encrypted content, else 2B. */
VELPKI_API int decrypt_CMS_n(const CMS_CONTENT_INFO *cms, const unsigned char *key, const unsigned char *iv,
                             unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** What opens a message: a private key (RSA for key transport, of a named curve for key agreement) and its certificate,
 * a key-encryption key, a password, or several of these. Members that are not used are 0 or null. */
typedef struct {
  const X509_CERT *cert;         /**< of the recipient */
  const ASYMMETRIC_KEY *key;     /**< its private key */
  const X509_CERT *originator;   /**< of key agreement, where the message names it but does not bring it */
  const unsigned char *kek;      /**< the key-encryption key */
  int kek_length;                /**< octets */
  const unsigned char *kek_id;   /**< null: any */
  int kek_id_length;             /**< octets */
  const unsigned char *password; /**< octets */
  int password_length;           /**< octets */
} CMS_OPENER;

/** @name Decrypting with what the reader has
 * @{ */
/** Gives the key out of the first recipient of enveloped data that the opener fits; the padding is what the algorithm
 * says, `*out_length` holds the capacity. A password, or a key-encryption key, that does not open its first recipient
 * is tried on the others that it may be meant for; a password with at most 10,000,000 iterations in all.
 * F_DECRYPT_CONTENT_ENCRYPTION_KEY with 49, 48, 2B (no such recipient, a buffer that is too small),
 * ERR_NO_SIGNER_CERTIFICATE (the originator's is nowhere), 3C, or the provider's: PKV_ERR_FAILED for a wrapped key that
 * is wrong in any way. */
VELPKI_API int decrypt_content_encryption_key_ex(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener,
                                                 unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Decrypts the content with the key that decrypt_content_encryption_key_ex finds, `*out_length` being a capacity of at
 * least the encrypted content's. Whatever is wrong with the wrapped key, the content goes on to be decrypted under a
 * random one (RFC 3218): the result is PKV_ERR_FAILED or, as with a wrong key, now and then rubbish. For what can be
 * told from the message alone F_DECRYPT_CMS with the reasons of decrypt_CMS and decrypt_content_encryption_key_ex; 2B
 * for a capacity that is too small. */
VELPKI_API int decrypt_CMS_strict(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener, unsigned char *out,
                                  int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Authenticating
 * @{ */
/** Makes the MAC of authenticated data: a fresh key of the digest's length for every recipient that was added, HMAC
 * over the content, or, where there are authenticated attributes or the content is not data, over these, with
 * contentType and messageDigest (by `digest_id`) added unless they are there. The content is stored unless it is
 * detached. F_SET_CMS_MAC with 49, 48, 5F (attributes that cannot be encoded) or 3C, those of the recipients, or the
 * provider's. SHA-1 keys have 20 octets, which key wraps do not take. */
VELPKI_API int authenticate_CMS(CMS_CONTENT_INFO *cms, int mac_digest_id, int digest_id, const unsigned char *data,
                                int length, int detached, int padding) VELPKI_NOEXCEPT;
/** Verifies the MAC as strictly as verify_CMS_strict does signatures; `data` is the content where the message has none.
 * F_VERIFY_CMS with 49, 48, 2B (no recipient that the opener fits), 5E (a MAC or message digest that differs, whatever
 * the key), ERR_NO_CONTENT, ERR_CONTENT_MISMATCH, those of verify_PKCS7_strict for attributes, ERR_WEAK_DIGEST (they
 * bind the content by one), 5F, or the provider's. */
VELPKI_API int verify_authenticated_CMS(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener,
                                        const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Digesting
 * @{ */
/** Makes the content of digested data, of type data, and its digest, the algorithm without parameters. F_DIGEST_CMS
 * with 49, 48 (another type, an unknown digest) or 3C. */
VELPKI_API int digest_CMS(CMS_CONTENT_INFO *cms, int digest_id, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing CMS_CONTENT_INFO
 * @{ */
/** A message in house form, as DER or under the PEM label "CMS"; results as asn1_io.h says. */
VELPKI_API int writeDER_CMS_CONTENT_INFO_to_Binary(CMS_CONTENT_INFO *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_CMS_CONTENT_INFO_to_FILE(CMS_CONTENT_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_CMS_CONTENT_INFO_to_Binary(CMS_CONTENT_INFO *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_CMS_CONTENT_INFO_to_FILE(CMS_CONTENT_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_CMS_CONTENT_INFO_from_Binary(CMS_CONTENT_INFO **out, const unsigned char *data,
                                                    int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_CMS_CONTENT_INFO_from_File(CMS_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_CMS_CONTENT_INFO_from_Binary(CMS_CONTENT_INFO **out, const char *text,
                                                    int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_CMS_CONTENT_INFO_from_File(CMS_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing in standard form
 * @{ */
/** Takes a message as others send it, in standard form: DER, BER with indefinite lengths and segments as streams write
 * it, or PEM, told apart by the first octet. Results as asn1_io.h says. */
VELPKI_API int readBER_CMS_CONTENT_INFO_from_Binary(CMS_CONTENT_INFO **out, const unsigned char *data,
                                                    int length) VELPKI_NOEXCEPT;
/** As readBER_CMS_CONTENT_INFO_from_Binary, out of a file. */
VELPKI_API int readBER_CMS_CONTENT_INFO_from_File(CMS_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
/** Writes DER in standard form, as CMS_CONTENT_INFO_to_Seq_RFC5280; the octets written, or a code. */
VELPKI_API int writeDER_CMS_CONTENT_INFO_to_Binary_RFC5280(CMS_CONTENT_INFO *in, unsigned char **out) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
