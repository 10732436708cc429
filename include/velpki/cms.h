/* velpki/cms.h: CMS messages (RFC 5652): data, signed, enveloped, digested, encrypted and authenticated.
 *
 * A message is a CMS_CONTENT_INFO: a content type and the record of that type. It is built by set_CMS_Type, the add_
 * functions and one of the flows below, written and read by the readers and writers at the end.
 *
 * Families (new_, free_, X_to_Seq, Seq_to_X) behave as docs/conventions.md says of SAMPLE. A member that is missing or
 * cannot be encoded is the encoder's code with ERR_ASN1_ENCODING, one that is missing or malformed the decoder's with
 * ERR_ASN1_DECODING; the code of a record inside goes up unchanged. Elements after the known ones are ignored, and of
 * an optional element that is repeated the last counts; the _RFC5280 readers refuse both. Conventions:
 * docs/conventions.md.
 */
#ifndef VELPKI_CMS_H
#define VELPKI_CMS_H

#include <velpki/issuer_and_serial_number.h>
#include <velpki/pkcs7.h>
#include <velpki/x509_crl.h>

VELPKI_BEGIN

/* Records. Members that are not encoded stand last. */

/* Content types, by registry row. */
enum {
  CMS_TYPE_DATA = 21,
  CMS_TYPE_SIGNED_DATA = 22,
  CMS_TYPE_ENVELOPED_DATA = 23,
  CMS_TYPE_DIGESTED_DATA = 25,
  CMS_TYPE_ENCRYPTED_DATA = 26,
  CMS_TYPE_AUTHENTICATED_DATA = 205
};

typedef struct {
  OBJECT_IDENTIFIER *contentType;
  void *content; /* OCTET_STRING for data, else the record of the type; null: absent */
  int kind;      /* the type that `content` is of; 0 when it is null */
} CMS_CONTENT_INFO;

typedef struct {
  OBJECT_IDENTIFIER *eContentType;
  OCTET_STRING *eContent; /* null when it is elsewhere */
} ENCAPSULATED_CONTENT_INFO;

/* Names a certificate, of a signer or of a recipient. */
enum { CMS_ID_ISSUER_AND_SERIAL = 0, CMS_ID_SUBJECT_KEY = 1 };
typedef struct {
  int type; /* one of CMS_ID_ */
  ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber;
  OCTET_STRING *subjectKeyIdentifier;
} SIGNER_IDENTIFIER;
typedef SIGNER_IDENTIFIER RECIPIENT_IDENTIFIER;

typedef struct {
  BIGINT *version;
  SIGNER_IDENTIFIER *sid;
  X509_ALGO_IDENTIFIER *digestAlgorithm;
  X509_ATTRIBUTES *signedAttrs; /* null when absent */
  X509_ALGO_IDENTIFIER *signatureAlgorithm;
  OCTET_STRING *signature;
  X509_ATTRIBUTES *unsignedAttrs; /* null when absent */
  ASYMMETRIC_KEY *privateKey;
  P7_SIGNER_STATE *state;
} CMS_SIGNER_INFO;
typedef STACK CMS_SIGNER_INFOS; /* of CMS_SIGNER_INFO */

/* Digests of content that comes in pieces; opaque. */
typedef struct cms_digests CMS_DIGESTS;

typedef struct {
  BIGINT *version;
  X509_ALGO_IDENTIFIERS *digestAlgorithms;
  ENCAPSULATED_CONTENT_INFO *encapContentInfo;
  X509_CERTIFICATES *certificates; /* null when absent */
  X509_CRLS *crls;                 /* null when absent */
  CMS_SIGNER_INFOS *signerInfos;
  STACK *otherCertificates; /* of ASN1_UNIT: choices other than certificates, which only the _RFC5280 readers take */
  STACK *otherCrls;         /* of ASN1_UNIT: likewise */
  int detached;
  CMS_DIGESTS *digests; /* from init to final */
} CMS_SIGNED_DATA;

typedef struct {
  X509_CERTIFICATES *certificates; /* null when absent */
  X509_CRLS *crls;                 /* null when absent */
  STACK *otherCertificates;        /* as in CMS_SIGNED_DATA */
  STACK *otherCrls;
} CMS_ORIGINATOR_INFO;

typedef struct {
  OBJECT_IDENTIFIER *keyAttrId;
  ASN1_UNIT *keyAttr; /* null when absent */
} OTHER_KEY_ATTRIBUTE;

/* Names a key of a recipient of key agreement, and a key-encryption key. */
typedef struct {
  OCTET_STRING *subjectKeyIdentifier;
  ASN1_STRING *date;          /* GeneralizedTime, null when absent */
  OTHER_KEY_ATTRIBUTE *other; /* null when absent */
} RECIPIENT_KEY_IDENTIFIER;

/* The kinds of recipient. A key that wraps the content's is kept beside them, wiped with them and never encoded. */
typedef struct cms_secret CMS_SECRET; /* opaque */
typedef struct {
  BIGINT *version;
  RECIPIENT_IDENTIFIER *rid;
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;
  OCTET_STRING *encryptedKey;
  ASYMMETRIC_KEY *publicKey;
} KEY_TRANS_RECIPIENT_INFO;

typedef struct {
  X509_ALGO_IDENTIFIER *algorithm;
  BIT_STRING *publicKey;
} ORIGINATOR_PUBLIC_KEY;

enum { CMS_ORIGINATOR_ISSUER_AND_SERIAL = 0, CMS_ORIGINATOR_SUBJECT_KEY = 1, CMS_ORIGINATOR_KEY = 2 };
typedef struct {
  int type; /* one of CMS_ORIGINATOR_ */
  ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber;
  OCTET_STRING *subjectKeyIdentifier;
  ORIGINATOR_PUBLIC_KEY *originatorKey;
} ORIGINATOR_IDENTIFIER_ORKEY;

enum { CMS_KEY_AGREE_ISSUER_AND_SERIAL = 0, CMS_KEY_AGREE_KEY_IDENTIFIER = 1 };
typedef struct {
  int type; /* one of CMS_KEY_AGREE_ */
  ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber;
  RECIPIENT_KEY_IDENTIFIER *rKeyId;
} KEY_AGREE_RECIPIENT_IDENTIFIER;

typedef struct {
  KEY_AGREE_RECIPIENT_IDENTIFIER *rid;
  OCTET_STRING *encryptedKey;
  ASYMMETRIC_KEY *publicKey;
} RECIPIENT_ENCRYPTED_KEY;
typedef STACK RECIPIENT_ENCRYPTED_KEYS; /* of RECIPIENT_ENCRYPTED_KEY */

typedef struct {
  BIGINT *version;
  ORIGINATOR_IDENTIFIER_ORKEY *originator;
  OCTET_STRING *ukm; /* null when absent */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;
  RECIPIENT_ENCRYPTED_KEYS *recipientEncryptedKeys;
  ASYMMETRIC_KEY *originatorPrivateKey; /* of an originator that is named by a certificate */
} KEY_AGREE_RECIPIENT_INFO;

typedef struct {
  BIGINT *version;
  RECIPIENT_KEY_IDENTIFIER *kekid;
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;
  OCTET_STRING *encryptedKey;
  CMS_SECRET *key;
} KEK_RECIPIENT_INFO;

typedef struct {
  BIGINT *version;
  X509_ALGO_IDENTIFIER *keyDerivationAlgorithm; /* null when absent */
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;
  OCTET_STRING *encryptedKey;
  CMS_SECRET *password;
} PASSWORD_RECIPIENT_INFO;

enum {
  CMS_RECIPIENT_KEY_TRANS = 0,
  CMS_RECIPIENT_KEY_AGREE = 1,
  CMS_RECIPIENT_KEK = 2,
  CMS_RECIPIENT_PASSWORD = 3,
  CMS_RECIPIENT_OTHER = 4
};
typedef struct {
  int kind;   /* one of CMS_RECIPIENT_ */
  void *info; /* the record of the kind; an ASN1_UNIT for CMS_RECIPIENT_OTHER, written back as it came */
} CMS_RECIPIENT_INFO;
typedef STACK CMS_RECIPIENT_INFOS; /* of CMS_RECIPIENT_INFO */

typedef P7_ENCRYPTED_CONTENT_INFO CMS_ENCRYPTED_CONTENT_INFO;

typedef struct {
  BIGINT *version;
  CMS_RECIPIENT_INFOS *recipientInfos;
  CMS_ENCRYPTED_CONTENT_INFO *encryptedContentInfo;
  X509_ATTRIBUTES *unprotectedAttrs; /* null when absent */
  int detached;
  CMS_ORIGINATOR_INFO *originatorInfo; /* encoded before the recipients, when it holds anything */
} CMS_ENVELOPED_DATA;

typedef struct {
  BIGINT *version;
  X509_ALGO_IDENTIFIER *digestAlgorithm;
  ENCAPSULATED_CONTENT_INFO *encapContentInfo;
  OCTET_STRING *digest;
} CMS_DIGESTED_DATA;

typedef struct {
  BIGINT *version;
  CMS_ENCRYPTED_CONTENT_INFO *encryptedContentInfo;
  X509_ATTRIBUTES *unprotectedAttrs; /* null when absent */
  int detached;
} CMS_ENCRYPTED_DATA;

typedef struct {
  BIGINT *version;
  CMS_ORIGINATOR_INFO *originatorInfo; /* null when absent */
  CMS_RECIPIENT_INFOS *recipientInfos;
  X509_ALGO_IDENTIFIER *macAlgorithm;
  X509_ALGO_IDENTIFIER *digestAlgorithm; /* null when absent */
  ENCAPSULATED_CONTENT_INFO *encapContentInfo;
  X509_ATTRIBUTES *authAttrs; /* null when absent */
  OCTET_STRING *mac;
  X509_ATTRIBUTES *unauthAttrs; /* null when absent */
} CMS_AUTHENTICATED_DATA;

/* Families. A version that is null is written as 0. Sets of attributes that are empty are not written. */

VELPKI_API CMS_CONTENT_INFO *new_CMS_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_CONTENT_INFO(CMS_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_CONTENT_INFO_to_Seq(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_CONTENT_INFO(ASN1_UNIT *in, CMS_CONTENT_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API ENCAPSULATED_CONTENT_INFO *new_ENCAPSULATED_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ENCAPSULATED_CONTENT_INFO(ENCAPSULATED_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int ENCAPSULATED_CONTENT_INFO_to_Seq(const ENCAPSULATED_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_ENCAPSULATED_CONTENT_INFO(ASN1_UNIT *in, ENCAPSULATED_CONTENT_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_SIGNED_DATA *new_CMS_SIGNED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_SIGNED_DATA(CMS_SIGNED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_SIGNED_DATA_to_Seq(const CMS_SIGNED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_SIGNED_DATA(ASN1_UNIT *in, CMS_SIGNED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API SIGNER_IDENTIFIER *new_SIGNER_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_SIGNER_IDENTIFIER(SIGNER_IDENTIFIER *p) VELPKI_NOEXCEPT;
VELPKI_API CMS_SIGNER_INFO *new_CMS_SIGNER_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_SIGNER_INFO(CMS_SIGNER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_SIGNER_INFO_to_Seq(const CMS_SIGNER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_SIGNER_INFO(ASN1_UNIT *in, CMS_SIGNER_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_SIGNER_INFOS *new_CMS_SIGNER_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_SIGNER_INFOS(CMS_SIGNER_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_SIGNER_INFOS_to_Seq(const CMS_SIGNER_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_SIGNER_INFOS(ASN1_UNIT *in, CMS_SIGNER_INFOS **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_ORIGINATOR_INFO *new_CMS_ORIGINATOR_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ORIGINATOR_INFO(CMS_ORIGINATOR_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ORIGINATOR_INFO_to_Seq(const CMS_ORIGINATOR_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ORIGINATOR_INFO(ASN1_UNIT *in, CMS_ORIGINATOR_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_ENVELOPED_DATA *new_CMS_ENVELOPED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ENVELOPED_DATA(CMS_ENVELOPED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ENVELOPED_DATA_to_Seq(const CMS_ENVELOPED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ENVELOPED_DATA(ASN1_UNIT *in, CMS_ENVELOPED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_RECIPIENT_INFO *new_CMS_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_RECIPIENT_INFO(CMS_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_RECIPIENT_INFO_to_Seq(const CMS_RECIPIENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_RECIPIENT_INFO(ASN1_UNIT *in, CMS_RECIPIENT_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_RECIPIENT_INFOS *new_CMS_RECIPIENT_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_RECIPIENT_INFOS(CMS_RECIPIENT_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_RECIPIENT_INFOS_to_Seq(const CMS_RECIPIENT_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_RECIPIENT_INFOS(ASN1_UNIT *in, CMS_RECIPIENT_INFOS **out) VELPKI_NOEXCEPT;
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
VELPKI_API CMS_ENCRYPTED_CONTENT_INFO *new_CMS_ENCRYPTED_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ENCRYPTED_CONTENT_INFO(CMS_ENCRYPTED_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ENCRYPTED_CONTENT_INFO_to_Seq(const CMS_ENCRYPTED_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ENCRYPTED_CONTENT_INFO(ASN1_UNIT *in, CMS_ENCRYPTED_CONTENT_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_DIGESTED_DATA *new_CMS_DIGESTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_DIGESTED_DATA(CMS_DIGESTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_DIGESTED_DATA_to_Seq(const CMS_DIGESTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_DIGESTED_DATA(ASN1_UNIT *in, CMS_DIGESTED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_ENCRYPTED_DATA *new_CMS_ENCRYPTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_ENCRYPTED_DATA(CMS_ENCRYPTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_ENCRYPTED_DATA_to_Seq(const CMS_ENCRYPTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_ENCRYPTED_DATA(ASN1_UNIT *in, CMS_ENCRYPTED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API CMS_AUTHENTICATED_DATA *new_CMS_AUTHENTICATED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CMS_AUTHENTICATED_DATA(CMS_AUTHENTICATED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int CMS_AUTHENTICATED_DATA_to_Seq(const CMS_AUTHENTICATED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_AUTHENTICATED_DATA(ASN1_UNIT *in, CMS_AUTHENTICATED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API KEK_RECIPIENT_INFO *new_KEK_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_KEK_RECIPIENT_INFO(KEK_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API PASSWORD_RECIPIENT_INFO *new_PASSWORD_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PASSWORD_RECIPIENT_INFO(PASSWORD_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;

/* A content type that is not among those above is F_SEQ_TO_CMS_CONTENT_INFO with reason 48. The octets of a content may
 * be in segments; they are joined. Records inside a recipient have the codes of F_CMS_RECIPIENT_INFO_TO_SEQ and
 * F_SEQ_TO_CMS_RECIPIENT_INFO.
 * @warning Certificates and CRLs are read in house form, which refuses keys that it does not know and CRLs without
 * nextUpdate, and with them the whole message. The _RFC5280 functions read and write everything in standard form:
 * numbers with their sign, certificates with any key, other choices of certificates and CRLs kept as units; they write
 * sets in the order of DER, and what was received of certificates and signers octet for octet. */
VELPKI_API int CMS_CONTENT_INFO_to_Seq_RFC5280(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_CONTENT_INFO_RFC5280(ASN1_UNIT *in, CMS_CONTENT_INFO **out) VELPKI_NOEXCEPT;

/* Building. What is said to take over belongs to the message afterwards, on success only; an object that the message
 * already holds is refused (2B). Certificates, keys, algorithms and attributes are copied. Codes: each function's own,
 * with 49 (null, no content), 48 (another type of content), 2B (a negative length, and as said) or 3C.
 * Versions follow what is added and are only raised: signed data 3 with a signer of version 3 or content other than
 * data; enveloped data 2 with a recipient whose version is not 0, an originator or unprotected attributes, 3 with a
 * password recipient or one of another kind; encrypted data 2 with unprotected attributes; digested data 2 for content
 * other than data. set_CMS_version, called last, overrides that. */

/* set_CMS_Type sets the type and makes its empty content, of version 1 for signed data, else 0; for data it sets the
 * type alone. What the message held is released. */
VELPKI_API int set_CMS_Type(CMS_CONTENT_INFO *cms, int type_index) VELPKI_NOEXCEPT;
/* set_CMS_version sets the version of the content, of every signer of signed data (1 and 3 only, else 2B), and of the
 * key transport and password recipients of enveloped data. 48 also when `type_index` is not the type of the message; 28
 * for a number that cannot be set, a negative one among them. */
VELPKI_API int set_CMS_version(CMS_CONTENT_INFO *cms, int version, int type_index) VELPKI_NOEXCEPT;
/* Content. A null `bytes` of length 0 leaves it absent. set_Content_Info takes over the content of signed, digested or
 * authenticated data (F_SET_CMS_CONTENT). */
VELPKI_API int set_ENCAPSULATED_CONTENT_INFO(ENCAPSULATED_CONTENT_INFO *eci, int type_index, const unsigned char *bytes,
                                             int length) VELPKI_NOEXCEPT;
VELPKI_API int set_Content_Info(CMS_CONTENT_INFO *cms, ENCAPSULATED_CONTENT_INFO *eci) VELPKI_NOEXCEPT;
VELPKI_API int set_CMS_ENCRYPTED_CONTENT_INFO(CMS_ENCRYPTED_CONTENT_INFO *eci, int type_index,
                                              X509_ALGO_IDENTIFIER *algorithm, const unsigned char *content,
                                              int length) VELPKI_NOEXCEPT;
VELPKI_API int set_CMS_Cipher(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
VELPKI_API int set_CMS_macAlgorithm(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/* Of digested or authenticated data. */
VELPKI_API int set_CMS_digestAlgorithm(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
VELPKI_API int set_CMS_mac(CMS_CONTENT_INFO *cms, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;

/* What names a certificate, stored in place of what is there. A certificate without subject key identifier is 2B. */
VELPKI_API int set_CMS_SubjectKeyIdentifier(OCTET_STRING **ski, X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_CMS_IssuerAndSerialNumber(ISSUER_AND_SERIAL_NUMBER **issuer_and_serial,
                                             X509_CERT *cert) VELPKI_NOEXCEPT;

/* Signers. set_CMS_SIGNER_INFO fills one: with bit 1 of the flags version 3 and the certificate's subject key
 * identifier (2B when it has none), else version 1 and issuer and serial number; a copy of the private key, which may
 * be null; the digest of a registry row; and the signature algorithm of pkcs7.h. Paddings are 1 (PKCS#1 v1.5) and 2
 * (PSS), keys RSA and KCDSA; another padding, key or row is 48.
 * @warning `pss` is not looked at, as in pkcs7.h; the _ex functions write the parameters and sign with them. */
VELPKI_API int set_CMS_SIGNER_INFO(CMS_SIGNER_INFO *si, X509_CERT *cert, int flags, ASYMMETRIC_KEY *key,
                                   int digest_index, int padding, RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
VELPKI_API int set_CMS_SIGNER_INFO_ex(CMS_SIGNER_INFO *si, const X509_CERT *cert, int flags, const ASYMMETRIC_KEY *key,
                                      int digest_index, int padding, const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/* add_CMS_SignerInfo takes a signer over and appends a copy of its digest algorithm to the message's, once for each
 * signer (F_ADD_CMS_SIGNER); add_CMS_DigestAlgoIdentifier appends one alone: 0, or plain 1. */
VELPKI_API int add_CMS_SignerInfo(CMS_CONTENT_INFO *cms, CMS_SIGNER_INFO *si) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_DigestAlgoIdentifier(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/* Both steps; the signer is lent, null on failure. */
VELPKI_API CMS_SIGNER_INFO *add_CMS_Signature(CMS_CONTENT_INFO *cms, X509_CERT *cert, int flags, ASYMMETRIC_KEY *key,
                                              int digest_index, int padding, RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
VELPKI_API CMS_SIGNER_INFO *add_CMS_Signature_ex(CMS_CONTENT_INFO *cms, const X509_CERT *cert, int flags,
                                                 const ASYMMETRIC_KEY *key, int digest_index, int padding,
                                                 const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_Certificate(CMS_CONTENT_INFO *cms, X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_CRL(CMS_CONTENT_INFO *cms, X509_CRL *crl) VELPKI_NOEXCEPT;
/* Of enveloped or authenticated data. */
VELPKI_API int add_CMS_Originator_Certificate(CMS_CONTENT_INFO *cms, X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_Originator_CRL(CMS_CONTENT_INFO *cms, X509_CRL *crl) VELPKI_NOEXCEPT;

/* Attributes, each with one value as in pkcs7.h: of a signer (F_ADD_ATTRIBUTE), of enveloped or encrypted data, of
 * authenticated data. A row without identifier is 2B. */
VELPKI_API int add_CMS_Signed_Attribute(CMS_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                        int length) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_Unsigned_Attribute(CMS_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                          int length) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_Unprotected_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type, const unsigned char *bytes,
                                             int length) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_Authenticated_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type,
                                               const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
VELPKI_API int add_CMS_Unauthenticated_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type,
                                                 const unsigned char *bytes, int length) VELPKI_NOEXCEPT;

/* Recipients. set_CMS_RECIPIENT_INFO fills one by its flags (16 goes before 32, 2 before 1):
 *  - 16: key agreement, of version 3, for the certificate's key. The originator is the certificate's public key with 2,
 *    its subject key identifier with 1, else its issuer and serial number; the recipient is named by the subject key
 *    identifier with 1, else by issuer and serial number. The algorithm is ECDH with SHA-256 and the wrap of AES-256.
 *  - 32: a key-encryption key; nothing is filled but the kind.
 *  - else key transport: with 1 version 2 and the subject key identifier, else version 0 and issuer and serial number;
 *    "id-RSAES-OAEP" with the parameters for padding 8 and 16, else "rsaEncryption". The key must be RSA (48).
 * @warning A key agreement recipient whose originator is not a public key cannot be encrypted for: only the _ex
 * function takes the originator's private key. */
VELPKI_API int set_CMS_RECIPIENT_INFO(CMS_RECIPIENT_INFO *ri, X509_CERT *cert, int padding, RSAES_OAEP_PARAM *oaep,
                                      int flags) VELPKI_NOEXCEPT;
/* The same for every kind, from options of which those that are 0 or null have the defaults named. */
typedef struct {
  int kind;                     /* one of CMS_RECIPIENT_ but the last */
  const X509_CERT *cert;        /* of the recipient: key transport and agreement */
  int flags;                    /* 1 and 2, as above */
  int padding;                  /* key transport; PKCS#1 v1.5 */
  const RSAES_OAEP_PARAM *oaep; /* of paddings 8 and 16; SHA-1 */
  int digest_id;                /* of the key derivation: agreement and password; SHA-256 */
  int cipher_id; /* what wraps: agreement AES-256, key-encryption key AES by its length; password AES-256-CBC */
  const unsigned char *ukm; /* user keying material of agreement; none */
  int ukm_length;
  const X509_CERT *originator;          /* of agreement, named without flag 2; the recipient's */
  const ASYMMETRIC_KEY *originator_key; /* its private key; without one, and with 2, a fresh key is made each time */
  const unsigned char *secret;          /* the key-encryption key, or the password */
  int secret_length;
  const unsigned char *key_id; /* that names the key-encryption key */
  int key_id_length;
  int iterations; /* of the password's derivation; 600,000, and at most 10,000,000 */
} CMS_RECIPIENT_OPTIONS;
VELPKI_API int set_CMS_RECIPIENT_INFO_ex(CMS_RECIPIENT_INFO *ri, const CMS_RECIPIENT_OPTIONS *options) VELPKI_NOEXCEPT;
/* set_CMS_OriginatorPublickKey makes an originator of a certificate's public key, the algorithm without parameters. */
VELPKI_API int set_CMS_OriginatorPublickKey(ORIGINATOR_IDENTIFIER_ORKEY *originator, X509_CERT *cert) VELPKI_NOEXCEPT;
/* add_CMS_RECIPIENT_INFO takes a recipient over, into enveloped or authenticated data. add_CMS_Recipient fills one and
 * adds it; it is lent, null on failure. */
VELPKI_API int add_CMS_RECIPIENT_INFO(CMS_CONTENT_INFO *cms, CMS_RECIPIENT_INFO *ri) VELPKI_NOEXCEPT;
VELPKI_API CMS_RECIPIENT_INFO *add_CMS_Recipient(CMS_CONTENT_INFO *cms, X509_CERT *cert, int padding,
                                                 RSAES_OAEP_PARAM *oaep, int flags) VELPKI_NOEXCEPT;
VELPKI_API CMS_RECIPIENT_INFO *add_CMS_Recipient_ex(CMS_CONTENT_INFO *cms,
                                                    const CMS_RECIPIENT_OPTIONS *options) VELPKI_NOEXCEPT;

/* Signing. Codes: F_INIT_CMS_SIGN, F_UPDATE_CMS_SIGN, F_FINAL_CMS_SIGN with 49 (null, no content, final without init),
 * 48 (content that is not signed data, a key that is neither RSA nor KCDSA), 2B (no signers, an unknown algorithm, a
 * negative length), 5F (attributes that cannot be encoded), 54 (an empty half of a KCDSA signature), 3C, or the
 * provider's. */

/* init_CMS_Sign starts every signer that has no signature yet; the others are left as they are by all three steps.
 * update_CMS_Sign keeps the first octets as the content of a message that is not detached, and ignores later ones;
 * detached content comes in any number of pieces and is not stored. final_CMS_Sign signs: where a signer has signed
 * attributes, or the content is of another type than data, contentType and messageDigest are added unless the caller
 * did, the attributes are put into the order of DER, and their SET OF is signed; else the content is. An RSA signer of
 * attributes, but one of PSS, then names "rsaEncryption"; KCDSA signers name "kcdsa1". Signers keep their versions.
 * A detached message's attributes must be there before its first octets: 2B from final. */
VELPKI_API int init_CMS_Sign(CMS_CONTENT_INFO *cms, int detached) VELPKI_NOEXCEPT;
VELPKI_API int update_CMS_Sign(CMS_CONTENT_INFO *cms, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int final_CMS_Sign(CMS_CONTENT_INFO *cms) VELPKI_NOEXCEPT;
/* The three in one. */
VELPKI_API int sign_CMS(CMS_CONTENT_INFO *cms, const unsigned char *data, int length, int detached) VELPKI_NOEXCEPT;

/* Verifying. */

/* verify_CMS verifies every signer with the certificate of the message that its identifier names, or, given a
 * certificate, the signers that name it. `data` is the content where the message has none. 0 when nothing failed, else
 * the first failure: F_VERIFY_CMS with 49 (null, no content), 48 (another type, an unsupported key), 5E (the message
 * digest differs), 0E (no KCDSA signature); 1 for a certificate that is missing, an unknown algorithm, missing data and
 * attributes that cannot be encoded; or the provider's code (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning A message without signers or without certificates verifies, also with a certificate given, and so does one
 * of which no signer names the certificate given. The certificate itself is not checked, nor is what the attributes say
 * but for the message digest, which may be missing (then nothing binds the content) and may be longer than the digest.
 * The attributes are encoded anew, in their order. A subject key identifier is compared as text, up to its first zero
 * octet: an empty one names every certificate that has one. See verify_CMS_strict. */
VELPKI_API int verify_CMS(CMS_CONTENT_INFO *cms, X509_CERT *cert, const unsigned char *data,
                          int length) VELPKI_NOEXCEPT;

/* verify_CMS_strict requires at least one signer and verifies every one, or with a certificate given those that name
 * it, of which there must be one; certificates are looked for in the message and in `more` (null allowed). What else it
 * requires, the algorithms and the codes are those of verify_PKCS7_strict, with F_VERIFY_CMS; identifiers are compared
 * whole. For each signer a report is written, as long as `*report_count` (the capacity; then the number) allows; both
 * may be null. */
typedef struct {
  const CMS_SIGNER_INFO *signer;
  const X509_CERT *certificate; /* null when there is none */
  int digest_id;
  int code; /* 0 for a valid signature */
} CMS_SIGNER_REPORT;
enum { CMS_ALLOW_WEAK_DIGESTS = 1 };
VELPKI_API int verify_CMS_strict(const CMS_CONTENT_INFO *cms, const X509_CERT *cert, const X509_CERTIFICATES *more,
                                 const unsigned char *data, int length, int flags, CMS_SIGNER_REPORT *reports,
                                 int *report_count) VELPKI_NOEXCEPT;

/* Enveloping and encrypting. Codes: each function's own with 49 (null, no content, no recipients, a padding other than
 * 0, 32, 8 and 16, update or final without init), 48 (content that is neither enveloped nor encrypted data, an unknown
 * cipher, a key of the wrong kind), 2B, 3A (encrypted content that cannot grow), 3C, or the provider's. Those of a
 * recipient are F_ENCRYPT_CMS_RECIPIENTINFO's. */

/* encrypt_CMS_RecipientInfo encrypts a content-encryption key for one recipient; init_CMS_Encrypt_RecipientInfo does so
 * for every one of enveloped data, the key having the length of the cipher that set_CMS_Cipher named. Padding is that
 * of key transport, 0 meaning PKCS#1 v1.5. A key agreement recipient with a public key for originator gets a fresh one.
 */
VELPKI_API int encrypt_CMS_RecipientInfo(CMS_RECIPIENT_INFO *ri, const unsigned char *cek, int cek_length,
                                         int padding) VELPKI_NOEXCEPT;
VELPKI_API int init_CMS_Encrypt_RecipientInfo(CMS_CONTENT_INFO *cms, const unsigned char *cek,
                                              int padding) VELPKI_NOEXCEPT;
/* The flow of pkcs7.h: init starts the cipher (a null `algorithm` is the one that was set) and encrypts the key for the
 * recipients; update and final write to the caller's buffer where the content is detached, else to the message. */
VELPKI_API int init_CMS_Encrypt(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm, int detached,
                                const unsigned char *key, const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
VELPKI_API int update_CMS_encrypt(CMS_CONTENT_INFO *cms, const unsigned char *in, int in_length, unsigned char *out,
                                  int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int final_CMS_Encrypt(CMS_CONTENT_INFO *cms, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* The three in one, with a random key and IV or the caller's. */
VELPKI_API int encrypt_CMS(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                           const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
VELPKI_API int encrypt_CMS_userKEY(CMS_CONTENT_INFO *cms, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                   const unsigned char *data, int length, const unsigned char *key,
                                   const unsigned char *iv, int padding) VELPKI_NOEXCEPT;

/* Decrypting. */

/* decrypt_content_encryption_key decrypts the key for the key transport recipient that the certificate names, or, given
 * none, for the first one, whose certificate must then be in the originator information. `out` has room for the key of
 * the content's cipher; `*out_length` is written only. F_DECRYPT_CONTENT_ENCRYPTION_KEY with 49 (null, no certificate),
 * 48 (another type, a key that is not RSA, an unknown cipher), 2B (no such recipient), 3C, or the provider's.
 * @warning Identifiers are compared as verify_CMS does. A wrong padding is told from a right one (Bleichenbacher's
 * attack); decrypt_CMS_strict does not. */
VELPKI_API int decrypt_content_encryption_key(CMS_CONTENT_INFO *cms, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                              unsigned char *out, int *out_length, int padding) VELPKI_NOEXCEPT;
/* decrypt_CMS decrypts the content of enveloped or encrypted data; a null IV means that of the algorithm. `out` has
 * room for the encrypted content. F_DECRYPT_CMS with 49, 48 (another type, an unknown cipher), 2B (parameters that are
 * no IV), or the provider's: PKV_ERR_FAILED for a padding that is wrong. The _n form takes the capacity in
 * `*out_length`. */
VELPKI_API int decrypt_CMS(CMS_CONTENT_INFO *cms, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                           int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int decrypt_CMS_n(const CMS_CONTENT_INFO *cms, const unsigned char *key, const unsigned char *iv,
                             unsigned char *out, int *out_length) VELPKI_NOEXCEPT;

/* What opens a message: a private key (RSA for key transport, of a named curve for key agreement) and its certificate,
 * a key-encryption key, a password, or several of these. Members that are not used are 0 or null. */
typedef struct {
  const X509_CERT *cert;
  const ASYMMETRIC_KEY *key;
  const X509_CERT *originator; /* of key agreement, where the message names it but does not bring it */
  const unsigned char *kek;
  int kek_length;
  const unsigned char *kek_id; /* null: any */
  int kek_id_length;
  const unsigned char *password;
  int password_length;
} CMS_OPENER;
/* decrypt_content_encryption_key_ex gives the key out of the first recipient of enveloped data that the opener fits;
 * the padding is what the algorithm says, `*out_length` holds the capacity. F_DECRYPT_CONTENT_ENCRYPTION_KEY with 49,
 * 48, 2B (no such recipient, a buffer that is too small), ERR_NO_SIGNER_CERTIFICATE (the originator's is nowhere), 3C,
 * or the provider's: PKV_ERR_FAILED for a wrapped key that is wrong in any way. decrypt_CMS_strict decrypts the content
 * with it, `*out_length` being a capacity of at least the encrypted content's. Whatever is wrong with the wrapped key,
 * the content goes on to be decrypted under a random one (RFC 3218): the result is PKV_ERR_FAILED or, as with a wrong
 * key, now and then rubbish. F_DECRYPT_CMS as above for what can be told from the message alone. */
VELPKI_API int decrypt_content_encryption_key_ex(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener,
                                                 unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int decrypt_CMS_strict(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener, unsigned char *out,
                                  int *out_length) VELPKI_NOEXCEPT;

/* authenticate_CMS makes the MAC of authenticated data: a fresh key of the digest's length for every recipient that was
 * added, HMAC over the content, or, where there are authenticated attributes or the content is not data, over these,
 * with contentType and messageDigest (by `digest_id`) added unless they are there. The content is stored unless it is
 * detached. F_SET_CMS_MAC with 49, 48, 5F (attributes that cannot be encoded) or 3C, those of the recipients, or the
 * provider's. SHA-1 keys have 20 octets, which key wraps do not take.
 * verify_authenticated_CMS verifies it as strictly as verify_CMS_strict does signatures: F_VERIFY_CMS with 49, 48, 2B
 * (no recipient that the opener fits), 5E (a MAC or message digest that differs, whatever the key), ERR_NO_CONTENT to
 * ERR_AMBIGUOUS_CONTENT, 5F, or the provider's. */
VELPKI_API int authenticate_CMS(CMS_CONTENT_INFO *cms, int mac_digest_id, int digest_id, const unsigned char *data,
                                int length, int detached, int padding) VELPKI_NOEXCEPT;
VELPKI_API int verify_authenticated_CMS(const CMS_CONTENT_INFO *cms, const CMS_OPENER *opener,
                                        const unsigned char *data, int length) VELPKI_NOEXCEPT;

/* digest_CMS makes the content of digested data, of type data, and its digest, the algorithm without parameters.
 * F_DIGEST_CMS with 49, 48 (another type, an unknown digest) or 3C. */
VELPKI_API int digest_CMS(CMS_CONTENT_INFO *cms, int digest_id, const unsigned char *data, int length) VELPKI_NOEXCEPT;

/* Readers and writers. The label is "CMS". See asn1_io.h for results. */

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
/* readBER_ takes a message as others send it, in standard form: DER, BER with indefinite lengths and segments as
 * streams write it, or PEM, told apart by the first octet. */
VELPKI_API int readBER_CMS_CONTENT_INFO_from_Binary(CMS_CONTENT_INFO **out, const unsigned char *data,
                                                    int length) VELPKI_NOEXCEPT;
VELPKI_API int readBER_CMS_CONTENT_INFO_from_File(CMS_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_CMS_CONTENT_INFO_to_Binary_RFC5280(CMS_CONTENT_INFO *in, unsigned char **out) VELPKI_NOEXCEPT;

VELPKI_END

#endif
