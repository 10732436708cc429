/** @file velpki/ctl.h
 * Certificate trust lists, and the signed messages that carry them.
 *
 * A list travels as the content of signed data (pkcs7.h, to be read first), under the type "kisa-ctl" (registry row
 * 837). There it is an ASN1_UNIT with the octets that were signed; CERT_TRUST_LIST_to_P7_CONTENT_INFO and
 * P7_CONTENT_INFO_to_CERT_TRUST_LIST give that content its type. The layout follows the Korean accredited scheme
 * (KISA); no RFC has it. Anchors of path validation are made from a list in cpv.h.
 *
 * Families behave as docs/conventions.md says of SAMPLE. A member that is missing or malformed is the code of the
 * record that it belongs to; the code of a TRUSTED_CERTIFICATE goes up through its list. */
#ifndef VELPKI_CTL_H
#define VELPKI_CTL_H

#include <velpki/pkcs7.h>

VELPKI_BEGIN

/** One certificate that a list names: SEQUENCE { subjectIdentifier OCTET STRING, attributes SET OF Attribute OPTIONAL
 * }. */
typedef struct {
  OCTET_STRING *subjectIdentifier; /**< the digest of the certificate's DER, by the list's algorithm */
  X509_ATTRIBUTES *attributes;     /**< null when absent */
} TRUSTED_CERTIFICATE;
/** A list of TRUSTED_CERTIFICATE: SEQUENCE OF. */
typedef STACK TRUSTED_SUBJECTS;

/** A certificate trust list, with its members in the order of the encoding. */
typedef struct {
  BIGINT *version;                     /**< null: 0, which is written */
  STACK *subjectUsage;                 /**< of OBJECT_IDENTIFIER: "kisa-ctl-subjectusage" (row 838) */
  BIGINT *sequenceNumber;              /**< INTEGER; null when absent */
  X509_TIME *thisUpdate;               /**< when the list was made; required */
  X509_TIME *nextUpdate;               /**< when the next one is due; null when absent */
  OBJECT_IDENTIFIER *subjectAlgorithm; /**< the digest of the subject identifiers */
  TRUSTED_SUBJECTS *trustedSubjects;   /**< the certificates named */
  X509_EXTENSIONS *extensions;         /**< null when absent; an empty list is not written */
} CERT_TRUST_LIST;

/** @name The family of TRUSTED_CERTIFICATE
 * @{ */
/** A new record has neither identifier nor attributes, and needs an identifier to be encoded. Codes:
 * F_TRUSTED_CERTIFICATE_TO_SEQ and F_SEQ_TO_TRUSTED_CERTIFICATE. */
VELPKI_API TRUSTED_CERTIFICATE *new_TRUSTED_CERTIFICATE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_TRUSTED_CERTIFICATE(TRUSTED_CERTIFICATE *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_TRUSTED_CERTIFICATE(TRUSTED_CERTIFICATE *p) VELPKI_NOEXCEPT;
VELPKI_API TRUSTED_CERTIFICATE *dup_TRUSTED_CERTIFICATE(const TRUSTED_CERTIFICATE *p) VELPKI_NOEXCEPT;
VELPKI_API int TRUSTED_CERTIFICATE_to_Seq(const TRUSTED_CERTIFICATE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_TRUSTED_CERTIFICATE(ASN1_UNIT *in, TRUSTED_CERTIFICATE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of TRUSTED_SUBJECTS
 * @{ */
/** A new list is empty, and an empty list is encoded as such. */
VELPKI_API TRUSTED_SUBJECTS *new_TRUSTED_SUBJECTS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_TRUSTED_SUBJECTS(TRUSTED_SUBJECTS *p) VELPKI_NOEXCEPT;
VELPKI_API int TRUSTED_SUBJECTS_to_Seq(const TRUSTED_SUBJECTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_TRUSTED_SUBJECTS(ASN1_UNIT *in, TRUSTED_SUBJECTS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of CERT_TRUST_LIST
 * @{ */
/** A list made by new_CERT_TRUST_LIST has empty lists of usages and subjects. Codes: F_CERT_TRUST_LIST_TO_SEQ and
 * F_SEQ_TO_CERT_TRUST_LIST with 49, 3C, ERR_ASN1_ENCODING or ERR_ASN1_DECODING.
 * @warning What is written differs from the lists of others in three places: the version is always there, the subject
 * algorithm is a bare OBJECT IDENTIFIER, and the extensions have no tag. The reader takes both forms, lists without
 * version, sequence number, next update or subjects, and passes over a list identifier (an OCTET STRING behind the
 * usages), which is not kept; what it read in the other form is therefore not written back octet for octet. */
VELPKI_API CERT_TRUST_LIST *new_CERT_TRUST_LIST(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CERT_TRUST_LIST(CERT_TRUST_LIST *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_CERT_TRUST_LIST(CERT_TRUST_LIST *p) VELPKI_NOEXCEPT;
VELPKI_API CERT_TRUST_LIST *dup_CERT_TRUST_LIST(const CERT_TRUST_LIST *p) VELPKI_NOEXCEPT;
VELPKI_API int CERT_TRUST_LIST_to_Seq(const CERT_TRUST_LIST *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CERT_TRUST_LIST(ASN1_UNIT *in, CERT_TRUST_LIST **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing CERT_TRUST_LIST
 * @{ */
/** A bare list, outside any message, as DER or under the PEM label "CERTIFICATE TRUST LIST". Results as asn1_io.h says.
 */
VELPKI_API int writeDER_CERT_TRUST_LIST_to_Binary(CERT_TRUST_LIST *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_CERT_TRUST_LIST_to_FILE(CERT_TRUST_LIST *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_CERT_TRUST_LIST_to_Binary(CERT_TRUST_LIST *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_CERT_TRUST_LIST_to_FILE(CERT_TRUST_LIST *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_CERT_TRUST_LIST_from_Binary(CERT_TRUST_LIST **out, const unsigned char *data,
                                                   int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_CERT_TRUST_LIST_from_File(CERT_TRUST_LIST **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_CERT_TRUST_LIST_from_Binary(CERT_TRUST_LIST **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_CERT_TRUST_LIST_from_File(CERT_TRUST_LIST **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Messages
 * @{ */
/** Makes a new content info of the list, which set_PKCS7_Content puts into signed data. Codes: F_CERT_TRUST_LIST_TO_SEQ
 * with 49 or 3C, or those of the list. */
VELPKI_API int CERT_TRUST_LIST_to_P7_CONTENT_INFO(const CERT_TRUST_LIST *in, P7_CONTENT_INFO **out) VELPKI_NOEXCEPT;
/** Reads the list out of a content info of it, or out of the signed data around it. Nothing is verified. Codes:
 * F_SEQ_TO_CERT_TRUST_LIST with 49, 48 (the message holds no list) or 3C, or those of the list. */
VELPKI_API int P7_CONTENT_INFO_to_CERT_TRUST_LIST(const P7_CONTENT_INFO *in, CERT_TRUST_LIST **out) VELPKI_NOEXCEPT;

/** Verifies a message: 0 when it is signed data around a trust list and verifies as verify_PKCS7_strict says, over the
 * list's octets as they were received. There is at least one signer, and all of them are valid, or with `signer` given
 * all of those that name it, at least one. Without `signer` the certificates are those of the message. Digests of less
 * than 28 octets and signers without attributes are taken. Codes: F_ADD_TRUSTLIST with 49 or 48 (no signed data, no
 * list in it), else those of verify_PKCS7_strict.
 * @warning Without `signer` this says that the message has not changed since somebody signed it, not who that was. */
VELPKI_API int verify_ctlSignedData(P7_CONTENT_INFO *ctl, X509_CERT *signer) VELPKI_NOEXCEPT;
/** Appends copies of all certificates of the message to `certs`, all or none. Codes: F_ADD_CERTLIST with 49 (null, or a
 * message that verify_ctlSignedData without signer refuses) or 0E (a certificate without subject, a failed copy).
 * @warning The list's subjects are not looked at: what is added are the certificates beside it, the signer's too. */
VELPKI_API int add_CERTIFICATES_from_CTL(X509_CERTIFICATES *certs, P7_CONTENT_INFO *ctl) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
