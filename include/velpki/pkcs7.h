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
#include <velpki/pkcs1.h>
#include <velpki/x509_crl.h>

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
  PKCS7_TRUST_LIST = 837,
  PKCS7_OTHER = -1 /* of any other type; standard form only */
};

typedef struct {
  OBJECT_IDENTIFIER *contentType;
  void *content; /* OCTET_STRING for data, the P7_ record of the type, else an ASN1_UNIT; null: absent */
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
  X509_CRLS *crls;                 /* null when absent */
  P7_SIGNER_INFOS *signerInfos;
  int detached;
  STACK *otherCertificates; /* of ASN1_UNIT: what stands among the certificates and is none that can be read; */
  STACK *otherCrls;         /* the same of CRLs; standard form only */
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
  X509_CRLS *crls;                 /* null when absent */
  P7_SIGNER_INFOS *signerInfos;
  STACK *otherCertificates; /* as in P7_SIGNED_DATA */
  STACK *otherCrls;
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

/* Building. What is said to take over belongs to the message afterwards, on success only; an object that the message
 * already holds is refused. Certificates, keys, algorithms and attributes are copied. Functions that return int give 0,
 * or 1, unless they name codes. Messages are released with free_P7_CONTENT_INFO, on failures too. */

/* set_PKCS7_Type makes the empty content of a type (21 to 26), with its version: 1 for signed and signed-and-enveloped
 * data, else 0. What the message held is released. */
VELPKI_API int set_PKCS7_Type(P7_CONTENT_INFO *p7, int type_index) VELPKI_NOEXCEPT;
/* set_PKCS7_Content takes over the inner content of signed or digested data (1 for other types, and where it would
 * contain itself); new_PKCS7_Content makes an empty one of a type. */
VELPKI_API int set_PKCS7_Content(P7_CONTENT_INFO *p7, P7_CONTENT_INFO *content) VELPKI_NOEXCEPT;
VELPKI_API int new_PKCS7_Content(P7_CONTENT_INFO *p7, int type_index) VELPKI_NOEXCEPT;
/* A content info of type data with a copy of the octets, stored at `*p7` or made there. F_GET_PKCS7_DATA with 49, 2B (a
 * negative length) or 3C. */
VELPKI_API int gen_PKCS7_DATA_from_Binary(P7_CONTENT_INFO **p7, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/* set_P7_version sets the version of the content and of every signer and recipient in it. */
VELPKI_API int set_P7_version(P7_CONTENT_INFO *p7, int version) VELPKI_NOEXCEPT;

/* set_PKCS7_P7_SIGNER_INFO fills a signer: version 1, the certificate's issuer and serial number, a copy of the private
 * key (which may be null), the digest of a registry row, and the signature algorithm: "id-RSASSA-PSS" for padding 2,
 * and for padding 1 that of the digest with RSA, or "rsaEncryption" for a digest that has none. All parameters are
 * NULL. Codes: F_SET_PKCS7_P7_SIGNER_INFO with 49 (a padding other than 1 and 2, too; null, a certificate without
 * issuer or serial number), 48 (a key that is neither RSA nor KCDSA, a row without identifier) or 3C.
 * @warning `pss` is not looked at: the parameters stay NULL and the salt has the digest's length, which other programs
 * read as SHA-1 with 20 octets. set_PKCS7_P7_SIGNER_INFO_ex writes the parameters, null meaning the digest for
 * everything, and signs with them. */
VELPKI_API int set_PKCS7_P7_SIGNER_INFO(P7_SIGNER_INFO *si, X509_CERT *cert, ASYMMETRIC_KEY *key, int digest_index,
                                        int padding, RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
VELPKI_API int set_PKCS7_P7_SIGNER_INFO_ex(P7_SIGNER_INFO *si, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                           int digest_index, int padding, const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/* add_PKCS7_Signer takes a signer over, into signed or signed-and-enveloped data, and appends a copy of its digest
 * algorithm to the message's, once for each signer. */
VELPKI_API int add_PKCS7_Signer(P7_CONTENT_INFO *p7, P7_SIGNER_INFO *si) VELPKI_NOEXCEPT;
/* Both steps; the signer is lent, null on failure. The short form has padding 1. */
VELPKI_API P7_SIGNER_INFO *add_PKCS7_Signature(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                               int digest_index) VELPKI_NOEXCEPT;
VELPKI_API P7_SIGNER_INFO *add_PKCS7_Signature_withEncryptedAlgorithm(P7_CONTENT_INFO *p7, X509_CERT *cert,
                                                                      ASYMMETRIC_KEY *key, int digest_index,
                                                                      int padding,
                                                                      RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
VELPKI_API P7_SIGNER_INFO *add_PKCS7_Signature_ex(P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                                  int digest_index, int padding,
                                                  const RSASSA_PSS_PARAM *pss) VELPKI_NOEXCEPT;
/* Attributes, each with one value: the octets of a value of the universal type (dotted text for 6, a magnitude for 2);
 * with bit 0x20, and for 16 and 17, the content of a constructed one. Nothing is added by itself: content type, message
 * digest and signing time are the caller's to add before final_PKCS7_Sign. Sets keep the order of the calls; see
 * sign_PKCS7_ex. */
VELPKI_API int add_PKCS7_Signed_Attribute(P7_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                          int length) VELPKI_NOEXCEPT;
VELPKI_API int add_PKCS7_Unauthenticated_Attribute(P7_SIGNER_INFO *si, int oid_index, int type,
                                                   const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/* Append a copy to the certificates or CRLs of signed or signed-and-enveloped data.
 * @warning When the copy cannot be appended, add_PKCS7_Certificate releases the caller's certificate and returns 1; any
 * other failure, which returns 1 too, leaves it. add_PKCS7_Certificate_ex leaves it always. */
VELPKI_API int add_PKCS7_Certificate(P7_CONTENT_INFO *p7, X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int add_PKCS7_Certificate_ex(P7_CONTENT_INFO *p7, const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int add_PKCS7_Crl(P7_CONTENT_INFO *p7, X509_CRL *crl) VELPKI_NOEXCEPT;
/* add_PKCS7_P7_RECIPIENT_INFO takes a recipient over, into enveloped or signed-and-enveloped data. */
VELPKI_API int add_PKCS7_P7_RECIPIENT_INFO(P7_CONTENT_INFO *p7, P7_RECIPIENT_INFO *ri) VELPKI_NOEXCEPT;

/* Signing. Codes: F_P7_SIGN with 49 (null, no content, final without init), 48 (a content that is not signed or
 * signed-and-enveloped data, a key that is neither RSA nor KCDSA), 2B (no signers, an unknown algorithm, a negative
 * length), 3C, or the provider's. */

/* init_PKCS7_Sign starts every signer that has no signature yet; the others are left as they are by all three steps, so
 * signing twice adds nothing. update_PKCS7_Sign keeps the first octets that it is given as the content of signed data
 * that is not detached and ignores later ones; detached or signed-and-enveloped content goes to the signers in any
 * number of pieces and is not stored. final_PKCS7_Sign gives each signer the version of the content and signs:
 *  - where the version is not 0 and there are authenticated attributes, their SET OF, in list order. The content is
 *    bound by the message digest that the caller put there. An RSA signer but one of PSS then names "rsaEncryption";
 *  - else the content. With version 0 every RSA signer then names "rsaEncryption".
 * KCDSA signers name "kcdsa1" and have a KCDSASignatureValue.
 * Further codes of final: 5F (attributes that cannot be encoded), 54 (an empty half of a KCDSA signature), 4B190012 (a
 * KCDSA signature that cannot be encoded).
 * @warning A signer without a usable key is 4B1C0048, with attributes to sign 001C0048, a value without module.
 * @warning A signer of PSS and version 0 names an algorithm that its signature is not of, and never verifies. */
VELPKI_API int init_PKCS7_Sign(P7_CONTENT_INFO *p7, int detached) VELPKI_NOEXCEPT;
VELPKI_API int update_PKCS7_Sign(P7_CONTENT_INFO *p7, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int final_PKCS7_Sign(P7_CONTENT_INFO *p7) VELPKI_NOEXCEPT;
/* The three in one. */
VELPKI_API int sign_PKCS7(P7_CONTENT_INFO *p7, const unsigned char *data, int length, int detached) VELPKI_NOEXCEPT;
/* sign_PKCS7_ex with PKCS7_SIGN_ATTRIBUTES gives every signer the content type and message digest attributes that it
 * lacks and sorts its set as DER wants, so that everybody else's verification agrees. update_PKCS7_Sign_ex appends to
 * the content of an attached message where update_PKCS7_Sign would ignore. */
enum { PKCS7_SIGN_ATTRIBUTES = 1 };
VELPKI_API int sign_PKCS7_ex(P7_CONTENT_INFO *p7, const unsigned char *data, int length, int detached,
                             int flags) VELPKI_NOEXCEPT;
VELPKI_API int update_PKCS7_Sign_ex(P7_CONTENT_INFO *p7, const unsigned char *data, int length) VELPKI_NOEXCEPT;

/* Verifying. */

/* verify_PKCS7 verifies every signer with the certificate of the message that its issuer and serial number name, or,
 * given a certificate, the signers that name it. `data` is the content where the message has none. 0 when nothing
 * failed, else the first failure: F_P7_VERIFY with 49 (null, no content), 48 (another type), 5E (the message digest
 * differs), 0E (no KCDSA signature); 1 for a certificate that is missing, an unknown algorithm, missing data and
 * attributes that cannot be encoded; or the provider's code (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning A message without signers or without certificates verifies, also with a certificate given, and so does one
 * of which no signer names the certificate given. The certificate itself is not checked, nor is what the attributes
 * say but for the message digest, which may be missing (then nothing binds the content) and may be longer than the
 * digest. The attributes are encoded anew. Given data is ignored where the message has content. See
 * verify_PKCS7_strict. */
VELPKI_API int verify_PKCS7(P7_CONTENT_INFO *p7, X509_CERT *cert, const unsigned char *data,
                            int length) VELPKI_NOEXCEPT;
/* verify_PKCS7_data verifies one signer with a key: F_P7_VERIFY with 48 also for missing data. The scheme is the low
 * octet of `padding`, 0 meaning 1. */
VELPKI_API int verify_PKCS7_data(P7_CONTENT_INFO *p7, P7_SIGNER_INFO *si, ASYMMETRIC_KEY *key, int padding,
                                 int digest_id, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/* verify_PKCS7_strict requires at least one signer and verifies every one, or with a certificate given those that name
 * it, of which there must be one. Certificates are looked for in the message and in `more` (null allowed), by the
 * received octets of issuer and serial number; whether they are to be trusted is the caller's to find out. The
 * signature is over the received octets of the attributes. RSA (v1.5, and PSS with its parameters), KCDSA, ECDSA and
 * Ed25519. Digests of less than 28 octets (MD5, SHA-1, HAS-160) need PKCS7_ALLOW_WEAK_DIGESTS, and signers without
 * attributes over a content that is not data (RFC 2315 9.2) PKCS7_ALLOW_BARE_SIGNERS. For each signer a report is
 * written, as long as `*report_count` (the capacity; then the number) allows; both may be null. Codes: F_P7_VERIFY
 * with 49, 48 (another type, an unknown digest, algorithm or key), 2B (no such signer), the reasons
 * ERR_NO_SIGNER_CERTIFICATE to ERR_AMBIGUOUS_CONTENT, ERR_ALGORITHM_MISMATCH, 5E (message digest), ERR_ASN1_DECODING;
 * or the provider's: the first signer's that failed. */
typedef struct {
  const P7_SIGNER_INFO *signer;
  const X509_CERT *certificate; /* null when there is none */
  int digest_id;
  int code; /* 0 for a valid signature */
} P7_SIGNER_REPORT;
enum { PKCS7_ALLOW_WEAK_DIGESTS = 1, PKCS7_ALLOW_BARE_SIGNERS = 2 };
VELPKI_API int verify_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const X509_CERTIFICATES *more,
                                   const unsigned char *data, int length, int flags, P7_SIGNER_REPORT *reports,
                                   int *report_count) VELPKI_NOEXCEPT;

/* Enveloping and encrypting. Codes: F_P7_ENCRYPT with 49 (null, no content, no recipients, a padding that is none, a
 * missing key or IV, update or final without init, a buffer that is null or too small), 48 (a content without
 * encryption, an algorithm that is no cipher, a recipient whose key is not RSA), 3A (the content cannot grow), 3C, or
 * the provider's. */

/* set_PKCS7_P7_RECIPIENT_INFO fills a recipient: version 0, the certificate's issuer and serial number, its RSA key,
 * and the key encryption algorithm: "id-RSAES-OAEP" for padding 8 or 16, with the parameters given or their defaults,
 * else "rsaEncryption". Codes: F_SET_PKCS7_P7_RECIPIENT_INFO with 49 (null, a certificate without issuer or serial
 * number), 48 (a key that is not RSA) or 3C. The add_ forms put it into the message and lend it, null on failure; the
 * short one has padding 0. */
VELPKI_API int set_PKCS7_P7_RECIPIENT_INFO(P7_RECIPIENT_INFO *ri, X509_CERT *cert, int padding,
                                           RSAES_OAEP_PARAM *oaep) VELPKI_NOEXCEPT;
VELPKI_API P7_RECIPIENT_INFO *add_PKCS7_Recipient(P7_CONTENT_INFO *p7, X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API P7_RECIPIENT_INFO *add_PKCS7_Recipient_withEncryptedAlgorithm(P7_CONTENT_INFO *p7, X509_CERT *cert,
                                                                         int padding,
                                                                         RSAES_OAEP_PARAM *oaep) VELPKI_NOEXCEPT;
/* These fill the encrypted content info: type, algorithm and, unless null, the octets. 0, or 1. The algorithm serves
 * where an encryption is given none. */
VELPKI_API int set_PKCS7_P7_ENCRYPTED_CONTENT_INFO(P7_ENCRYPTED_CONTENT_INFO *eci, int type_index,
                                                   X509_ALGO_IDENTIFIER *algorithm, const unsigned char *content,
                                                   int length) VELPKI_NOEXCEPT;
VELPKI_API int set_PKCS7_Cipher(P7_CONTENT_INFO *p7, X509_ALGO_IDENTIFIER *algorithm) VELPKI_NOEXCEPT;
/* The octets of the encrypted content, 0 when it is elsewhere; -1 for null and other types. */
VELPKI_API int get_PKCS7_ENCRYPTED_CONTENT_length(const P7_CONTENT_INFO *p7) VELPKI_NOEXCEPT;

/* init_PKCS7_Encrypt starts the cipher with a key and IV of its lengths, writes the IV as OCTET STRING into the
 * algorithm's parameters, and encrypts the key for every recipient: `padding` is 32 for PKCS#1 v1.5 (0 too), 8 or 16
 * for OAEP with the parameters of each recipient. Encrypted data has no recipients; a cipher unit that it has already
 * is used in place of key and IV, and its parameters are written only where they are NULL and the algorithm is not
 * password-based. Signed-and-enveloped data is never detached. `reserved` is not looked at.
 * @warning A cipher without IV writes an empty OCTET STRING, 04 00.
 * update_PKCS7_encrypt and final_PKCS7_Encrypt append the ciphertext to the message and, where the caller's buffer
 * (capacity in `*out_length`) has room for it, copy it there; `*out_length` receives the octets copied. Detached
 * ciphertext goes to the buffer only, which must have room for the input, and for what waits in the cipher beside it.
 */
VELPKI_API int init_PKCS7_Encrypt(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm, int detached,
                                  const unsigned char *key, const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
VELPKI_API int update_PKCS7_encrypt(P7_CONTENT_INFO *p7, const unsigned char *in, int in_length, unsigned char *out,
                                    int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int final_PKCS7_Encrypt(P7_CONTENT_INFO *p7, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* The three in one, with a random key and IV or those given. */
VELPKI_API int encrypt_PKCS7(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                             const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
VELPKI_API int encrypt_PKCS7_userKEY(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                     const unsigned char *data, int length, const unsigned char *key,
                                     const unsigned char *iv, int padding) VELPKI_NOEXCEPT;

/* Signed-and-enveloped data: sign, then encrypt. Codes of both. */
VELPKI_API int sign_encrypt_PKCS7(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                  const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
VELPKI_API int sign_encrypt_PKCS7_userKEY(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                          const unsigned char *data, int length, const unsigned char *key,
                                          const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
/* The _SP forms then encrypt each encrypted digest under the content's key and IV, as RFC 2315 11 demands, and name
 * "rsaEncryption" for every signer. A padding that is none is 4B00002B, a code without function, and found first.
 * @warning A digest that needs more than 160 octets with the final block fails with F_P7_ENCRYPT and 2B, before any is
 * replaced; the message is signed and encrypted then. That is every RSA key of more than 1152 bits under a cipher of 16
 * octets a block. sign_encrypt_PKCS7_userKEY_SP_ex takes digests of any length, and makes key and IV where `key` is
 * null. */
VELPKI_API int sign_encrypt_PKCS7_SP(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                     const unsigned char *data, int length, int padding) VELPKI_NOEXCEPT;
VELPKI_API int sign_encrypt_PKCS7_userKEY_SP(P7_CONTENT_INFO *p7, void *reserved, X509_ALGO_IDENTIFIER *algorithm,
                                             const unsigned char *data, int length, const unsigned char *key,
                                             const unsigned char *iv, int padding) VELPKI_NOEXCEPT;
VELPKI_API int sign_encrypt_PKCS7_userKEY_SP_ex(P7_CONTENT_INFO *p7, const X509_ALGO_IDENTIFIER *algorithm,
                                                const unsigned char *data, int length, const unsigned char *key,
                                                const unsigned char *iv, int padding) VELPKI_NOEXCEPT;

/* Decrypting. What these refuse themselves is 1; the provider's codes pass. Nothing is written on failure. */

/* decrypt_PKCS7_enveloped_CEK decrypts the content-encryption key with an RSA private key: that of the first recipient
 * that names the certificate or, without one, of the first recipient, whose certificate the message must have. A key is
 * written only when it has the length that the content's cipher wants.
 * @warning `*out_key_length` is not read: the buffer must have room for the key, at most 32 octets. The _n form takes
 * the capacity there. With PKCS#1 v1.5 a caller who tells strangers that this failed helps them to decrypt
 * (Bleichenbacher's attack); decrypt_PKCS7_strict does not. */
VELPKI_API int decrypt_PKCS7_enveloped_CEK(P7_CONTENT_INFO *p7, X509_CERT *cert, ASYMMETRIC_KEY *key,
                                           unsigned char *out_key, int *out_key_length, int padding) VELPKI_NOEXCEPT;
VELPKI_API int decrypt_PKCS7_enveloped_CEK_n(const P7_CONTENT_INFO *p7, const X509_CERT *cert,
                                             const ASYMMETRIC_KEY *key, unsigned char *out_key, int *out_key_length,
                                             int padding) VELPKI_NOEXCEPT;
/* decrypt_PKCS7 decrypts the content of enveloped, signed-and-enveloped or encrypted data under a content-encryption
 * key of the cipher's length; a null IV is that of the algorithm's parameters, or zeros where they are NULL.
 * @warning `*out_length` is not read: the buffer must have room for get_PKCS7_ENCRYPTED_CONTENT_length octets. The _n
 * form takes the capacity there. */
VELPKI_API int decrypt_PKCS7(P7_CONTENT_INFO *p7, const unsigned char *key, const unsigned char *iv, unsigned char *out,
                             int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int decrypt_PKCS7_n(const P7_CONTENT_INFO *p7, const unsigned char *key, const unsigned char *iv,
                               unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* decrypt_PKCS7_strict decrypts enveloped or signed-and-enveloped content with the private key of the recipient that
 * the certificate names, whose algorithm says the padding; `*out_length` holds the capacity, which must be that of the
 * ciphertext. Whatever is wrong with the encrypted key, the content goes on to be decrypted under a random one (RFC
 * 3218), so that a stranger learns nothing from the result: it is PKV_ERR_FAILED or, as with a wrong key, now and then
 * rubbish. 1 for what can be told from the message alone: no such recipient, an unknown algorithm, parameters that are
 * no IV, a buffer that is too small. */
VELPKI_API int decrypt_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                    unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* verify_decrypt_PKCS7_strict does that for signed-and-enveloped data, decrypts the encrypted digests too, as the _SP
 * forms make them, and verifies as verify_PKCS7_strict. */
VELPKI_API int verify_decrypt_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                           const X509_CERTIFICATES *more, int flags, unsigned char *out,
                                           int *out_length) VELPKI_NOEXCEPT;
/* verify_decrypt_PKCS7 decrypts signed-and-enveloped data and verifies what comes out, with the same buffer rule.
 * @warning As verify_PKCS7; and it expects signatures that are not encrypted themselves. */
VELPKI_API int verify_decrypt_PKCS7(P7_CONTENT_INFO *p7, X509_CERT *cert, const unsigned char *key, unsigned char *out,
                                    int *out_length) VELPKI_NOEXCEPT;

/* digest_PKCS7 puts a copy of the data into digested data, with its digest and the digest's algorithm, which gets no
 * parameters. 1 for another type and an unknown digest. */
VELPKI_API int digest_PKCS7(P7_CONTENT_INFO *p7, int digest_id, const unsigned char *data, int length) VELPKI_NOEXCEPT;

/* The standard form reads what the standards allow: certificates with keys of any kind, CRLs of every version, content
 * of any type; what it cannot read of certificates and CRLs it keeps as octets. It takes exact identifiers, no element
 * twice and none left over, and it writes back signers, certificates and CRLs as they were received.
 * @warning Seq_to_P7_CONTENT_INFO refuses a whole message for one certificate whose key is not RSA, KCDSA or P-256, or
 * one CRL without a version; P7_CONTENT_INFO_to_Seq encodes anew, and what the house form does not keep (attributes
 * that are no strings it knows, a second value in a relative name) is lost or fails. */
VELPKI_API int P7_CONTENT_INFO_to_Seq_RFC5280(const P7_CONTENT_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P7_CONTENT_INFO_RFC5280(ASN1_UNIT *in, P7_CONTENT_INFO **out) VELPKI_NOEXCEPT;

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
/* readBER_ takes a message as others send it: DER, BER with indefinite lengths and segments as streams write it, or
 * PEM, perhaps behind other text, told apart by the first octet, and reads it in standard form. */
VELPKI_API int readBER_P7_CONTENT_INFO_from_Binary(P7_CONTENT_INFO **out, const unsigned char *data,
                                                   int length) VELPKI_NOEXCEPT;
VELPKI_API int readBER_P7_CONTENT_INFO_from_File(P7_CONTENT_INFO **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_P7_CONTENT_INFO_to_Binary_RFC5280(const P7_CONTENT_INFO *in,
                                                          unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_P7_CONTENT_INFO_to_Binary_RFC5280(const P7_CONTENT_INFO *in, char **out) VELPKI_NOEXCEPT;

VELPKI_END

#endif
