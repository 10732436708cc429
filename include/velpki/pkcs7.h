/* velpki/pkcs7.h: PKCS#7 messages (RFC 2315): data, signed, enveloped, signed-and-enveloped, digested and encrypted.
 *
 * A message is a P7_CONTENT_INFO: a content type and the record of that type. It is built by set_PKCS7_Type, the add_
 * functions and one of the flows below, written and read by the readers and writers at the end.
 *
 * Families (new_, free_, X_to_Seq, Seq_to_X) behave as docs/conventions.md says of SAMPLE. A member that is missing or
 * cannot be encoded is the encoder's code with ERR_ASN1_ENCODING, one that is missing or malformed the decoder's with
 * ERR_ASN1_DECODING; the code of a record inside goes up unchanged. Elements after the known ones are ignored, and of
 * an optional element that is repeated the last counts. Conventions: docs/conventions.md. */
#ifndef VELPKI_PKCS7_H
#define VELPKI_PKCS7_H

#include <velpki/asn1_objects.h>
#include <velpki/x509.h>

VELPKI_BEGIN

/* Records. Members that are not encoded stand last. */

/* Content types, by registry row. */
enum {
  PKCS7_DATA = 21,
  PKCS7_SIGNED_DATA = 22,
  PKCS7_ENVELOPED_DATA = 23,
  PKCS7_SIGNED_AND_ENVELOPED_DATA = 24,
  PKCS7_DIGESTED_DATA = 25,
  PKCS7_ENCRYPTED_DATA = 26,
  PKCS7_TRUST_LIST = 837
};

typedef struct {
  OBJECT_IDENTIFIER *contentType;
  void *content; /* OCTET_STRING for data, the P7_ record of the type, an ASN1_UNIT for a trust list; null: absent */
  int kind;      /* the type that `content` is of; 0 when it is null */
} P7_CONTENT_INFO;

typedef struct {
  X509_NAME *issuer;
  BIGINT *serialNumber;
} P7_ISSUER_AND_SERIAL_NUMBER;

/* A signature in progress, and the octets that a signer was decoded from; opaque. */
typedef struct p7_signer_state P7_SIGNER_STATE;
typedef struct {
  BIGINT *version;
  P7_ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber;
  X509_ALGO_IDENTIFIER *digestAlgorithm;
  X509_ATTRIBUTES *authenticatedAttributes; /* null when absent */
  X509_ALGO_IDENTIFIER *digestEncryptionAlgorithm;
  OCTET_STRING *encryptedDigest;
  X509_ATTRIBUTES *unauthenticatedAttributes; /* null when absent */
  ASYMMETRIC_KEY *privateKey;
  P7_SIGNER_STATE *state;
} P7_SIGNER_INFO;
typedef STACK P7_SIGNER_INFOS; /* of P7_SIGNER_INFO */

typedef struct {
  BIGINT *version;
  P7_ISSUER_AND_SERIAL_NUMBER *issuerAndSerialNumber;
  X509_ALGO_IDENTIFIER *keyEncryptionAlgorithm;
  OCTET_STRING *encryptedKey;
  ASYMMETRIC_KEY *publicKey;
} P7_RECIPIENT_INFO;
typedef STACK P7_RECIPIENT_INFOS; /* of P7_RECIPIENT_INFO */

/* What an encryption in progress keeps beside its message; opaque. */
typedef struct content_encryption CONTENT_ENCRYPTION;
typedef struct {
  OBJECT_IDENTIFIER *contentType;
  X509_ALGO_IDENTIFIER *contentEncryptionAlgorithm;
  OCTET_STRING *encryptedContent; /* null when it is elsewhere */
  BLOCK_CIPHER_UNIT *cipher;      /* its key and IV are those of the message, from init to final */
  CONTENT_ENCRYPTION *progress;
} P7_ENCRYPTED_CONTENT_INFO;

typedef struct {
  BIGINT *version;
  X509_ALGO_IDENTIFIERS *digestAlgorithms;
  P7_CONTENT_INFO *contentInfo;
  X509_CERTIFICATES *certificates; /* null when absent */
  STACK *crls;                     /* of X509_CRL; null when absent */
  P7_SIGNER_INFOS *signerInfos;
  int detached;
} P7_SIGNED_DATA;

typedef struct {
  BIGINT *version;
  P7_RECIPIENT_INFOS *recipientInfos;
  P7_ENCRYPTED_CONTENT_INFO *encryptedContentInfo;
  int detached;
} P7_ENVELOPED_DATA;

typedef struct {
  BIGINT *version;
  P7_RECIPIENT_INFOS *recipientInfos;
  X509_ALGO_IDENTIFIERS *digestAlgorithms;
  P7_ENCRYPTED_CONTENT_INFO *encryptedContentInfo;
  X509_CERTIFICATES *certificates; /* null when absent */
  STACK *crls;                     /* of X509_CRL; null when absent */
  P7_SIGNER_INFOS *signerInfos;
} P7_SIGNED_AND_ENVELOPED_DATA;

typedef struct {
  BIGINT *version;
  X509_ALGO_IDENTIFIER *digestAlgorithm;
  P7_CONTENT_INFO *contentInfo;
  OCTET_STRING *digest;
} P7_DIGESTED_DATA;

typedef struct {
  BIGINT *version;
  P7_ENCRYPTED_CONTENT_INFO *encryptedContentInfo;
  int detached;
} P7_ENCRYPTED_DATA;

typedef struct {
  X509_ALGO_IDENTIFIER *digestAlgorithm;
  OCTET_STRING *digest;
} P7_DIGEST_INFO;

/* Families. A version that is null is written as 0. */

VELPKI_API P7_ISSUER_AND_SERIAL_NUMBER *new_P7_ISSUER_AND_SERIAL_NUMBER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ISSUER_AND_SERIAL_NUMBER(P7_ISSUER_AND_SERIAL_NUMBER *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ISSUER_AND_SERIAL_NUMBER_to_Seq(const P7_ISSUER_AND_SERIAL_NUMBER *in,
                                                  ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ISSUER_AND_SERIAL_NUMBER(ASN1_UNIT *in, P7_ISSUER_AND_SERIAL_NUMBER **out) VELPKI_NOEXCEPT;
/* cmp_P7_ISSUER_AND_SERIAL_NUMBER returns 0 when the certificate's issuer and serial number are those of the record, -1
 * when the serial number differs or either member is missing, else what cmp_X509_NAME says. */
VELPKI_API int cmp_P7_ISSUER_AND_SERIAL_NUMBER(const X509_CERT *cert,
                                               const P7_ISSUER_AND_SERIAL_NUMBER *issuer_and_serial) VELPKI_NOEXCEPT;

/* Authenticated attributes that are present but empty are written as an empty [0], unauthenticated ones not at all. */
VELPKI_API P7_SIGNER_INFO *new_P7_SIGNER_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNER_INFO(P7_SIGNER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNER_INFO_to_Seq(const P7_SIGNER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNER_INFO(ASN1_UNIT *in, P7_SIGNER_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API P7_SIGNER_INFOS *new_P7_SIGNER_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNER_INFOS(P7_SIGNER_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNER_INFOS_to_Seq(const P7_SIGNER_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNER_INFOS(ASN1_UNIT *in, P7_SIGNER_INFOS **out) VELPKI_NOEXCEPT;
VELPKI_API P7_SIGNED_DATA *new_P7_SIGNED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNED_DATA(P7_SIGNED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNED_DATA_to_Seq(const P7_SIGNED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNED_DATA(ASN1_UNIT *in, P7_SIGNED_DATA **out) VELPKI_NOEXCEPT;

VELPKI_API P7_RECIPIENT_INFO *new_P7_RECIPIENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_RECIPIENT_INFO(P7_RECIPIENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_RECIPIENT_INFO_to_Seq(const P7_RECIPIENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_RECIPIENT_INFO(ASN1_UNIT *in, P7_RECIPIENT_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API P7_RECIPIENT_INFOS *new_P7_RECIPIENT_INFOS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_RECIPIENT_INFOS(P7_RECIPIENT_INFOS *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_RECIPIENT_INFOS_to_Seq(const P7_RECIPIENT_INFOS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_RECIPIENT_INFOS(ASN1_UNIT *in, P7_RECIPIENT_INFOS **out) VELPKI_NOEXCEPT;
VELPKI_API P7_ENCRYPTED_CONTENT_INFO *new_P7_ENCRYPTED_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ENCRYPTED_CONTENT_INFO(P7_ENCRYPTED_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ENCRYPTED_CONTENT_INFO_to_Seq(const P7_ENCRYPTED_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ENCRYPTED_CONTENT_INFO(ASN1_UNIT *in, P7_ENCRYPTED_CONTENT_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API P7_ENVELOPED_DATA *new_P7_ENVELOPED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ENVELOPED_DATA(P7_ENVELOPED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ENVELOPED_DATA_to_Seq(const P7_ENVELOPED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ENVELOPED_DATA(ASN1_UNIT *in, P7_ENVELOPED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API P7_SIGNED_AND_ENVELOPED_DATA *new_P7_SIGNED_AND_ENVELOPED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_SIGNED_AND_ENVELOPED_DATA(P7_SIGNED_AND_ENVELOPED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_SIGNED_AND_ENVELOPED_DATA_to_Seq(const P7_SIGNED_AND_ENVELOPED_DATA *in,
                                                   ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_SIGNED_AND_ENVELOPED_DATA(ASN1_UNIT *in, P7_SIGNED_AND_ENVELOPED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API P7_DIGESTED_DATA *new_P7_DIGESTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_DIGESTED_DATA(P7_DIGESTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_DIGESTED_DATA_to_Seq(const P7_DIGESTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_DIGESTED_DATA(ASN1_UNIT *in, P7_DIGESTED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API P7_ENCRYPTED_DATA *new_P7_ENCRYPTED_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_ENCRYPTED_DATA(P7_ENCRYPTED_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_ENCRYPTED_DATA_to_Seq(const P7_ENCRYPTED_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_ENCRYPTED_DATA(ASN1_UNIT *in, P7_ENCRYPTED_DATA **out) VELPKI_NOEXCEPT;
VELPKI_API P7_DIGEST_INFO *new_P7_DIGEST_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_DIGEST_INFO(P7_DIGEST_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_DIGEST_INFO_to_Seq(const P7_DIGEST_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_DIGEST_INFO(ASN1_UNIT *in, P7_DIGEST_INFO **out) VELPKI_NOEXCEPT;

/* A content type that is not among those above is F_SEQ_TO_P7_CONTENT_INFO with reason 48. The octets of a data content
 * and of an encrypted content may be in segments; they are joined. */
VELPKI_API P7_CONTENT_INFO *new_P7_CONTENT_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P7_CONTENT_INFO(P7_CONTENT_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int P7_CONTENT_INFO_to_Seq(const P7_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_CONTENT_INFO(ASN1_UNIT *in, P7_CONTENT_INFO **out) VELPKI_NOEXCEPT;

/* Readers and writers. The label is "PKCS7". See asn1_io.h for results. */

VELPKI_API int writeDER_P7_CONTENT_INFO_to_Binary(P7_CONTENT_INFO *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_P7_CONTENT_INFO_to_FILE(P7_CONTENT_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P7_CONTENT_INFO_to_Binary(P7_CONTENT_INFO *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P7_CONTENT_INFO_to_FILE(P7_CONTENT_INFO *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const unsigned char *data,
                                                   int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;

VELPKI_END

#endif
