/* velpki/cms.h: CMS messages (RFC 5652): data, signed, enveloped, digested, encrypted and authenticated.
 *
 * A message is a CMS_CONTENT_INFO: a content type and the record of that type. It is built by set_CMS_Type, the add_
 * functions and one of the flows below, written and read by the readers and writers at the end.
 *
 * Families (new_, free_, X_to_Seq, Seq_to_X) behave as docs/conventions.md says of SAMPLE. A member that is missing or
 * cannot be encoded is the encoder's code with ERR_ASN1_ENCODING, one that is missing or malformed the decoder's with
 * ERR_ASN1_DECODING; the code of a record inside goes up unchanged. Elements after the known ones are ignored, and of
 * an optional element that is repeated the last counts; the _ex readers refuse both. Conventions: docs/conventions.md.
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

typedef struct {
  BIGINT *version;
  X509_ALGO_IDENTIFIERS *digestAlgorithms;
  ENCAPSULATED_CONTENT_INFO *encapContentInfo;
  X509_CERTIFICATES *certificates; /* null when absent */
  X509_CRLS *crls;                 /* null when absent */
  CMS_SIGNER_INFOS *signerInfos;
  STACK *otherCertificates; /* of ASN1_UNIT: choices other than certificates, which only the _ex readers take */
  STACK *otherCrls;         /* of ASN1_UNIT: likewise */
  int detached;
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
 * nextUpdate, and with them the whole message. The _ex functions read and write everything in standard form: numbers
 * with their sign, certificates with any key, other choices of certificates and CRLs kept as units; they write sets in
 * the order of DER, and what was received of certificates and signers octet for octet. */
VELPKI_API int CMS_CONTENT_INFO_to_Seq_ex(const CMS_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CMS_CONTENT_INFO_ex(ASN1_UNIT *in, CMS_CONTENT_INFO **out) VELPKI_NOEXCEPT;

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

VELPKI_END

#endif
