/** @file velpki/pkcs10.h
 * Certification requests (PKCS#10, RFC 2986), and certificates made from them.
 *
 * A requester fills a PKCS10_X509_REQ by the setters and calls gen_SIG_PKCS10_X509_REQ_RFC5280; an issuer reads it,
 * checks the names, and calls set_X509_CERT_from_PKCS10_X509_REQ. Read x509.h first.
 *
 * Families behave as docs/conventions.md says of SAMPLE. Members are for reading; change them through the functions,
 * which drop the octets that a request keeps beside its members. No function here has a code of its own: their
 * failures are 0x46000000 with a reason, 49 (null), 2B, 3C, ERR_ASN1_ENCODING, ERR_ASN1_DECODING, or what is said
 * below.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_PKCS10_H
#define VELPKI_PKCS10_H

#include <velpki/asn1_objects.h>
#include <velpki/x509.h>

VELPKI_BEGIN

/** CertificationRequestInfo: what the requester signs (RFC 2986 4.1). */
typedef struct {
  unsigned char version;             /**< as read; written as 0 */
  X509_NAME *subject;                /**< the name asked for; may be an empty list */
  X509_PUBKEY *subjectPublicKeyInfo; /**< the requester's key */
  X509_ATTRIBUTES *attributes;       /**< without the request for extensions; null or empty when there are none */
  X509_EXTENSIONS *extensions;       /**< what the extensionRequest attribute asks for; null when there is none */
} PKCS10_X509_REQ_INFO;

/** CertificationRequest ::= SEQUENCE { certificationRequestInfo, signatureAlgorithm, signature BIT STRING } (RFC 2986
 * 4.2). */
typedef struct {
  PKCS10_X509_REQ_INFO *info; /**< never null but in a cleaned request */
  OBJECT_IDENTIFIER *sig_alg; /**< signatureAlgorithm, without its parameters; set before signing */
  BIT_STRING *sig_value;      /**< signature; null before signing */
  X509_RECEIVED *received;    /**< dropped by every setter; null for a request that was built */
} PKCS10_X509_REQ;

/** @name Life cycle and codec of PKCS10_X509_REQ_INFO
 * @{ */
/** A new record has no member, and needs subject and key to be encoded. `extensions` travel as the attribute
 * extensionRequest (1.2.840.113549.1.9.14, RFC 2985 5.4.2), written behind the others. Reading splits the first such
 * attribute with one value that is a list of extensions off the attributes; one by Microsoft's OID
 * (1.3.6.1.4.1.311.2.1.14) too. What cannot be read as extensions stays an attribute. Attributes may be missing when a
 * request is read, and are always written (A0 00 when there are none).
 * @warning Names and keys have the forms that certificates have in house form: one attribute of a multi-valued RDN is
 * read, and keys other than RSA, KCDSA and P-256 are refused. */
VELPKI_API PKCS10_X509_REQ_INFO *new_PKCS10_X509_REQ_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS10_X509_REQ_INFO(PKCS10_X509_REQ_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS10_X509_REQ_INFO *dup_PKCS10_X509_REQ_INFO(const PKCS10_X509_REQ_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS10_X509_REQ_INFO(PKCS10_X509_REQ_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int PKCS10_X509_REQ_INFO_to_Seq(const PKCS10_X509_REQ_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_PKCS10_X509_REQ_INFO(ASN1_UNIT *in, PKCS10_X509_REQ_INFO **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle and codec of PKCS10_X509_REQ
 * @{ */
/** A new request has an empty `info`. A copy has the received octets too. */
VELPKI_API PKCS10_X509_REQ *new_PKCS10_X509_REQ(void) VELPKI_NOEXCEPT;
VELPKI_API void free_PKCS10_X509_REQ(PKCS10_X509_REQ *p) VELPKI_NOEXCEPT;
VELPKI_API PKCS10_X509_REQ *dup_PKCS10_X509_REQ(const PKCS10_X509_REQ *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_PKCS10_X509_REQ(PKCS10_X509_REQ *p) VELPKI_NOEXCEPT;
/** Encodes a request in house form, from its members.
 * @warning The signature algorithm is written with NULL parameters, whatever the algorithm.
 * PKCS10_X509_REQ_to_Seq_RFC5280 writes what was received. */
VELPKI_API int PKCS10_X509_REQ_to_Seq(const PKCS10_X509_REQ *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a request in house form, and keeps the octets; see PKCS10_X509_REQ_INFO_to_Seq for what is in it.
 * @warning One attribute of a multi-valued RDN is read, keys other than RSA, KCDSA and P-256 are refused, and the
 * parameters of the signature algorithm are not kept. Seq_to_PKCS10_X509_REQ_RFC5280 has none of this. */
VELPKI_API int Seq_to_PKCS10_X509_REQ(ASN1_UNIT *in, PKCS10_X509_REQ **out) VELPKI_NOEXCEPT;
/** Encodes a request in standard form. What was received is written back octet for octet; the attributes of a request
 * that was built or changed are sorted (X.690 11.6), and its algorithm has the parameters that
 * X509_CERT_to_Seq_RFC5280 writes. */
VELPKI_API int PKCS10_X509_REQ_to_Seq_RFC5280(const PKCS10_X509_REQ *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a request in standard form: every name, every key, and nothing left over. */
VELPKI_API int Seq_to_PKCS10_X509_REQ_RFC5280(ASN1_UNIT *in, PKCS10_X509_REQ **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Members
 * @{ */
/** Stores 0; no other version can be set (2B). */
VELPKI_API int set_PKCS10_X509_REQ_version(PKCS10_X509_REQ *req, int version) VELPKI_NOEXCEPT;
/** Returns the version, -1 for null. */
VELPKI_API int get_PKCS10_X509_REQ_version(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Stores a copy of the name asked for. */
VELPKI_API int set_PKCS10_X509_REQ_subject(PKCS10_X509_REQ *req, const X509_NAME *subject) VELPKI_NOEXCEPT;
/** Lends the name asked for. */
VELPKI_API X509_NAME *get_PKCS10_X509_REQ_subject(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Stores a copy of the requester's public key. */
VELPKI_API int set_PKCS10_X509_REQ_pub_key(PKCS10_X509_REQ *req, const X509_PUBKEY *pubkey) VELPKI_NOEXCEPT;
/** Lends the requester's public key. */
VELPKI_API X509_PUBKEY *get_PKCS10_X509_REQ_SPKI(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Stores a copy of the attributes, and null takes them away. */
VELPKI_API int set_PKCS10_X509_REQ_attributes(PKCS10_X509_REQ *req, const X509_ATTRIBUTES *attributes) VELPKI_NOEXCEPT;
/** Lends the attributes without the request for extensions; null or empty when there are none. */
VELPKI_API X509_ATTRIBUTES *get_PKCS10_X509_REQ_attributes(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Stores a copy of the extensions to ask for, and null takes them away. */
VELPKI_API int set_PKCS10_X509_REQ_extensions(PKCS10_X509_REQ *req, const X509_EXTENSIONS *extensions) VELPKI_NOEXCEPT;
/** Lends the extensions asked for; null when there are none. */
VELPKI_API X509_EXTENSIONS *get_PKCS10_X509_REQ_extensions(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Stores a copy of the OID of the algorithm to sign with. */
VELPKI_API int set_PKCS10_X509_REQ_sig_alg(PKCS10_X509_REQ *req, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Lends the OID of the signature's algorithm. */
VELPKI_API OBJECT_IDENTIFIER *get_PKCS10_X509_REQ_sig_alg(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Lends the signature, a BIT STRING; null before signing. */
VELPKI_API ASN1_STRING *get_PKCS10_X509_REQ_sig_value(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Lends the octets that a request was decoded from, or signed as by gen_SIG_PKCS10_X509_REQ_RFC5280, its `info` part
 * when `info` is not 0; null, with 0 in `*length`, for one that was built or changed. */
VELPKI_API const unsigned char *get_PKCS10_X509_REQ_received(const PKCS10_X509_REQ *req, int info,
                                                             int *length) VELPKI_NOEXCEPT;
/** Inserts a deep copy of an attribute; a position outside the list, which is made when there is none, appends. */
VELPKI_API int add_PKCS10_X509_REQ_attribute(PKCS10_X509_REQ *req, const X509_ATTRIBUTE *attribute,
                                             int position) VELPKI_NOEXCEPT;
/** Inserts a deep copy of an extension to ask for; a position outside the list, which is made when there is none,
 * appends. */
VELPKI_API int add_PKCS10_X509_REQ_extension(PKCS10_X509_REQ *req, const X509_EXTENSION *extension,
                                             int position) VELPKI_NOEXCEPT;
/** @} */

/** @name Signatures
 * @{ */
/** Signs the house encoding with the algorithm `sig_alg` and a private RSA or KCDSA key: 48 for any other key, 2B for
 * an algorithm that the registry does not give a digest and scheme, or the provider's code.
 * @warning Write it in house form: standard form has the attributes in another order where this is not DER's, and the
 * signature does not hold. What gen_SIG_PKCS10_X509_REQ_RFC5280 signed is written in standard form. */
VELPKI_API int gen_SIG_PKCS10_X509_REQ(PKCS10_X509_REQ *req, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Signs the standard encoding with any algorithm that certificates are signed with, and keeps the finished octets as
 * if they had been received. The reasons are those of gen_SIG_X509_Cert_RFC5280, under 0x46000000. */
VELPKI_API int gen_SIG_PKCS10_X509_REQ_RFC5280(PKCS10_X509_REQ *req, const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Does what gen_SIG_PKCS10_X509_REQ_RFC5280 does, with the given digest under RSASSA-PSS. Other algorithms do not look
 * at it. */
VELPKI_API int gen_SIG_PKCS10_X509_REQ_RFC5280_ex(PKCS10_X509_REQ *req, const ASYMMETRIC_KEY *key,
                                                  int pss_digest_id) VELPKI_NOEXCEPT;
/** Verifies with the key in the request, over the received octets, or over the request's own encoding when it was built
 * or changed: 0 for valid, 48 for other keys than RSA and KCDSA, the reasons of signing, ERR_ASN1_DECODING, or the
 * provider's code (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning A valid signature says that whoever made the request has the private key; it says nothing of the name. */
VELPKI_API int verify_SIG_PKCS10_X509_REQ(PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** Verifies with the key in the request over the received octets alone (49 without them), with every algorithm that
 * verify_SIG_X509_CERT_RFC5280 knows; its reasons, under 0x46000000, or the provider's code.
 * @warning A valid signature says that whoever made the request has the private key; it says nothing of the name. */
VELPKI_API int verify_SIG_PKCS10_X509_REQ_RFC5280(const PKCS10_X509_REQ *req) VELPKI_NOEXCEPT;
/** @} */

/** Verifies a request, over the received octets and in standard form where it has any, whatever it was read by, and
 * takes into a certificate, as version 3, what an issuer may take from it: subject, public key,
 * and of the requested extensions those whose OID is in `allowed` (null: none). An extension that the certificate has
 * already stays as it is. Serial number, issuer, dates and the signature's algorithm are the issuer's to set, before
 * or after, and so are all extensions that speak of the issuer or give powers: a list `allowed` that names one
 * (basicConstraints, nameConstraints, the policy constraints and mappings, inhibitAnyPolicy, the authority's and
 * issuer's own, CRL distribution points, information access, OCSP no-check, certificate transparency) is refused with
 * 2B. On failure the certificate is as it was.
 *
 * Codes: those of verification; 2B for a version other than 0; ERR_DUPLICATE_EXTENSION for an extension requested
 * twice; ERR_ASN1_DECODING for a request or an extensionRequest that cannot be read, an allowed extension whose value
 * is not its type's in standard form, and an allowed keyUsage without a bit; ERR_AUTHORITY_REQUESTED for an allowed
 * keyUsage with keyCertSign or cRLSign, and an extKeyUsage with OCSPSigning or anyExtendedKeyUsage;
 * ERR_TBS_CERT_SUBJECT for a subject without an attribute and without a subjectAltName in the certificate (which is
 * made critical, RFC 5280 4.1.2.6).
 * @warning Names, in the subject and in subjectAltName, are what the requester claims: check them before signing. */
VELPKI_API int set_X509_CERT_from_PKCS10_X509_REQ(X509_CERT *cert, const PKCS10_X509_REQ *req,
                                                  const OBJECT_IDENTIFIERS *allowed) VELPKI_NOEXCEPT;

/** @name Reading and writing in house form
 * @{ */
/** A request as DER, or under the PEM label "CERTIFICATE REQUEST"; the readers take "NEW CERTIFICATE REQUEST" and any
 * other. Results as asn1_io.h says, and warnings as at PKCS10_X509_REQ_to_Seq and Seq_to_PKCS10_X509_REQ. */
VELPKI_API int writeDER_PKCS10_X509_REQ_to_Binary(PKCS10_X509_REQ *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS10_X509_REQ_to_FILE(PKCS10_X509_REQ *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS10_X509_REQ_to_Binary(PKCS10_X509_REQ *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS10_X509_REQ_to_FILE(PKCS10_X509_REQ *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS10_X509_REQ_from_Binary(PKCS10_X509_REQ **out, const unsigned char *data,
                                                   int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS10_X509_REQ_from_File(PKCS10_X509_REQ **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS10_X509_REQ_from_Binary(PKCS10_X509_REQ **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS10_X509_REQ_from_File(PKCS10_X509_REQ **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing in standard form
 * @{ */
/** The same as PKCS10_X509_REQ_to_Seq_RFC5280 and Seq_to_PKCS10_X509_REQ_RFC5280 have it. */
VELPKI_API int writeDER_PKCS10_X509_REQ_to_Binary_RFC5280(PKCS10_X509_REQ *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS10_X509_REQ_to_Binary_RFC5280(PKCS10_X509_REQ *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS10_X509_REQ_from_Binary_RFC5280(PKCS10_X509_REQ **out, const unsigned char *data,
                                                           int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS10_X509_REQ_from_Binary_RFC5280(PKCS10_X509_REQ **out, const char *text,
                                                           int length) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
