/** @file velpki/x509_crl.h
 * Certificate revocation lists (RFC 5280 5).
 *
 * To ask whether a certificate is revoked, read the list with readDER_X509_CRL_from_Binary_RFC5280 and call
 * check_X509_CRL_revocation_strict; a path with its lists is validated by cpv_validate.h. To issue a list, fill an
 * X509_CRL by the setters, add entries, and call gen_SIG_X509_CRL_RFC5280. Read x509.h first.
 *
 * X509_CRL is a family as docs/conventions.md says of SAMPLE; X509_CRL_INFO is one without readers and writers. A CRL
 * keeps, beside its members, the octets that it was decoded from and an index of its serial numbers; every function
 * here that changes the CRL or one of its entries drops both. Members are for reading, and so is what the getters of
 * an entry lend: the records of decoded entries stand in one block.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_X509_CRL_H
#define VELPKI_X509_CRL_H

#include <velpki/x509.h>

VELPKI_BEGIN

/** One entry of the list (RFC 5280 5.1.2.6). */
typedef struct {
  BIGINT *userCertificate;             /**< the serial number */
  X509_TIME *revocationDate;           /**< when it was revoked */
  X509_EXTENSIONS *crlEntryExtensions; /**< null when absent */
  int sequence;                        /**< the position, as of the last sort_X509_CRL_revoked; 0 before */
  int place;                           /**< where the record stands in its block; the library's own */
} X509_REVOKED;

/** TBSCertList: what the issuer signs (RFC 5280 5.1.2). */
typedef struct {
  int version;                  /**< 0 for v1, 1 for v2 */
  OBJECT_IDENTIFIER *signature; /**< the algorithm that the issuer signs with; its parameters are not kept */
  X509_NAME *issuer;            /**< who signs the list */
  X509_TIME *thisUpdate;        /**< when the list was made */
  X509_TIME *nextUpdate;        /**< when the next one is due; null when absent */
  STACK *revoked;               /**< of X509_REVOKED; null or empty when no certificate is revoked */
  X509_EXTENSIONS *extensions;  /**< null when absent */
} X509_CRL_INFO;

/** The received octets and the index of a CRL; opaque. */
typedef struct x509_crl_kept X509_CRL_KEPT;

/** CertificateList ::= SEQUENCE { tbsCertList, signatureAlgorithm, signatureValue BIT STRING } (RFC 5280 5.1). */
typedef struct {
  X509_CRL_INFO *tbs;         /**< never null but in a cleaned CRL */
  OBJECT_IDENTIFIER *sig_alg; /**< signatureAlgorithm, without its parameters; null before signing */
  BIT_STRING *sig_value;      /**< signatureValue; null before signing */
  X509_CRL_KEPT *kept;        /**< the library's own */
} X509_CRL;

/** A list of X509_CRL. */
typedef STACK X509_CRLS;

/** @name Life cycle of lists
 * @{ */
/** A new CRL has an empty `tbs`, which is version v1 and has no other member. A copy has the received octets too. */
VELPKI_API X509_CRL *new_X509_CRL(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CRL(X509_CRL *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CRL(X509_CRL *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CRL *dup_X509_CRL(const X509_CRL *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CRL_INFO *new_X509_CRL_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CRL_INFO(X509_CRL_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CRL_INFO(X509_CRL_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CRL_INFO *dup_X509_CRL_INFO(const X509_CRL_INFO *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle of entries
 * @{ */
/** A new entry has neither serial number nor date. The memory of a decoded entry that was taken out of its list is
 * returned with the last entry of that list. */
VELPKI_API X509_REVOKED *new_X509_REVOKED(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_REVOKED(X509_REVOKED *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_REVOKED(X509_REVOKED *p) VELPKI_NOEXCEPT;
VELPKI_API X509_REVOKED *dup_X509_REVOKED(const X509_REVOKED *p) VELPKI_NOEXCEPT;
/** Releases the entries and the list. */
VELPKI_API void free_X509_REVOKED_LIST(STACK *list) VELPKI_NOEXCEPT;
/** Makes an empty list of CRLs. */
VELPKI_API X509_CRLS *new_X509_CRLS(void) VELPKI_NOEXCEPT;
/** Releases the CRLs and the list. */
VELPKI_API void free_X509_CRLS(X509_CRLS *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Codecs (RFC 5280 5.1)
 * @{ */
/** Encodes TBSCertList in house form. Codes: F_X509_CRLINFO_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING for a member that
 * is missing or has no encoding; the codes of names, entries and extensions go up unchanged.
 * @warning The version is always written, 0 for v1 too (its low octet), nextUpdate must be there, and the signature
 * algorithm is written with NULL parameters. X509_CRL_to_Seq_RFC5280 has none of these. */
VELPKI_API int X509_CRL_INFO_to_Seq(const X509_CRL_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes TBSCertList in house form. Codes: F_SEQ_TO_X509_CRLINFO with 49, 3C, 2B (the version) or ERR_ASN1_DECODING
 * for a member that is missing or malformed; the codes of names, entries and extensions go up unchanged.
 * @warning A body without a version, or with one above FFFF, is refused, and one without nextUpdate. The parameters of
 * the signature algorithm are not kept. Serial numbers are read as magnitudes. Extensions that follow an empty list
 * (30 00) are not seen; elements after the known ones are ignored. Seq_to_X509_CRL_RFC5280 has none of these. */
VELPKI_API int Seq_to_X509_CRL_INFO(ASN1_UNIT *in, X509_CRL_INFO **out) VELPKI_NOEXCEPT;
/** Encodes a CRL in house form, from its members. Codes: F_X509_CRL_TO_SEQ with 49, 3C or ERR_ASN1_ENCODING, and those
 * of X509_CRL_INFO_to_Seq. See the warning there. */
VELPKI_API int X509_CRL_to_Seq(const X509_CRL *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a CRL in house form, and keeps the octets. Codes: F_SEQ_TO_X509_CRL with 49, 3C or ERR_ASN1_DECODING, and
 * those of Seq_to_X509_CRL_INFO. See the warning there. */
VELPKI_API int Seq_to_X509_CRL(ASN1_UNIT *in, X509_CRL **out) VELPKI_NOEXCEPT;
/** Encodes SEQUENCE OF entries, of which an empty one is refused. Codes: F_X509_REVOKED_TO_SEQ with 49, 3C, 2B (no
 * entries) or ERR_ASN1_ENCODING. */
VELPKI_API int X509_REVOKED_to_Seq(const STACK *revoked, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes SEQUENCE OF entries. A list at `*out` is appended to, all or nothing. Codes: F_SEQ_TO_X509_REVOKED with 49,
 * 3C or ERR_ASN1_DECODING. */
VELPKI_API int Seq_to_X509_REVOKED(ASN1_UNIT *in, STACK **out) VELPKI_NOEXCEPT;
/** Encodes SEQUENCE OF CertificateList in house form, which may be empty. Codes: F_X509_CRLS_TO_SEQ, or the CRL's. */
VELPKI_API int X509_CRLS_to_Seq(const X509_CRLS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes SEQUENCE OF CertificateList in house form. A list at `*out` is appended to, all or nothing. Codes:
 * F_SEQ_TO_X509_CRLS, or the CRL's. */
VELPKI_API int Seq_to_X509_CRLS(ASN1_UNIT *in, X509_CRLS **out) VELPKI_NOEXCEPT;
/** Encodes a CRL in standard form. What was received is written back octet for octet; a CRL that was built or changed
 * gets a version for v2 only, NULL parameters for RSA and KCDSA algorithms, those of SHA-256 for PSS, and none for the
 * others. Codes of X509_CRL_to_Seq. */
VELPKI_API int X509_CRL_to_Seq_RFC5280(const X509_CRL *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a CRL in standard form: version and nextUpdate may be absent, serial numbers have their sign, extensions may
 * follow an empty list, every name is kept, nothing is left over. Codes of Seq_to_X509_CRL. */
VELPKI_API int Seq_to_X509_CRL_RFC5280(ASN1_UNIT *in, X509_CRL **out) VELPKI_NOEXCEPT;
/** Reads a CRL as Seq_to_X509_CRL_RFC5280 does, from DER octets; results as asn1_io.h says. */
VELPKI_API int readDER_X509_CRL_from_Binary_RFC5280(X509_CRL **out, const unsigned char *data,
                                                    int length) VELPKI_NOEXCEPT;
/** Lends the octets that a CRL was decoded from, or signed as by gen_SIG_X509_CRL_RFC5280, its signed part when `tbs`
 * is not 0; null, with 0 in `*length`, for one that was built or changed. */
VELPKI_API const unsigned char *get_X509_CRL_received(const X509_CRL *crl, int tbs, int *length) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of lists
 * @{ */
/** Stores 0 for v1 or 1 for v2; 1 (unchanged) for another number and on failure. */
VELPKI_API int set_X509_CRL_version(X509_CRL *crl, int version) VELPKI_NOEXCEPT;
/** Returns 0 for v1, 1 for v2; -1 for a null or cleaned CRL. */
VELPKI_API int get_X509_CRL_version(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Stores a copy of the OID of the algorithm to sign with; 0, or 1 (unchanged) on failure. */
VELPKI_API int set_X509_CRL_signature(X509_CRL *crl, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Lends the OID of the algorithm inside what is signed; null for a null or cleaned CRL. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_CRL_signature(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Stores a copy of the issuer's name; 0, or 1 (unchanged) on failure. */
VELPKI_API int set_X509_CRL_issuer(X509_CRL *crl, const X509_NAME *issuer) VELPKI_NOEXCEPT;
/** Lends the issuer's name; null for a null or cleaned CRL. */
VELPKI_API X509_NAME *get_X509_CRL_issuer(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Stores a copy of the time when the list is made; 0, or 1 (unchanged) on failure. */
VELPKI_API int set_X509_CRL_thisUpdate(X509_CRL *crl, const X509_TIME *time) VELPKI_NOEXCEPT;
/** Lends the time when the list was made; null when there is none. */
VELPKI_API X509_TIME *get_X509_CRL_thisUpdate(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Stores a copy of the time when the next list is due; 0, or 1 (unchanged) on failure. */
VELPKI_API int set_X509_CRL_nextUpdate(X509_CRL *crl, const X509_TIME *time) VELPKI_NOEXCEPT;
/** Lends the time when the next list is due; null when there is none. */
VELPKI_API X509_TIME *get_X509_CRL_nextUpdate(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Stores a copy of the OID outside of what is signed, as for a signature made elsewhere; 0, or 1 (unchanged) on
 * failure. */
VELPKI_API int set_X509_CRL_sig_alg(X509_CRL *crl, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Lends the OID of the algorithm outside of what is signed. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_CRL_sig_alg(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Stores a copy of a signature made elsewhere; 0, or 1 (unchanged) on failure. */
VELPKI_API int set_X509_CRL_sig_value(X509_CRL *crl, const ASN1_STRING *value) VELPKI_NOEXCEPT;
/** Lends the signature, a BIT STRING. */
VELPKI_API ASN1_STRING *get_X509_CRL_sig_value(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Lends the list of X509_REVOKED; null when there is none. */
VELPKI_API STACK *get_X509_CRL_revoked(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** @} */

/** @name Extensions of lists
 * @{ */
/** Returns the number of extensions: 0 without a list, -1 for null. */
VELPKI_API int get_X509_CRL_ext_count(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** Returns the first index after `last` (from 0 when it is negative) with that OID, or -1. */
VELPKI_API int get_X509_CRL_ext_by_OBJ(const X509_CRL *crl, const OBJECT_IDENTIFIER *oid, int last) VELPKI_NOEXCEPT;
/** Does what get_X509_CRL_ext_by_OBJ does for the OID at a registry row; -2 when the row has none. */
VELPKI_API int get_X509_CRL_ext_index_by_OID_index(const X509_CRL *crl, int oid_index, int last) VELPKI_NOEXCEPT;
/** Lends the extension at an index, or null. */
VELPKI_API X509_EXTENSION *get_X509_CRL_ext(const X509_CRL *crl, int index) VELPKI_NOEXCEPT;
/** Takes the extension at an index out and releases it. */
VELPKI_API void remove_X509_CRL_ext(X509_CRL *crl, int index) VELPKI_NOEXCEPT;
/** Inserts a deep copy; a position outside the list, which is made when there is none, appends. 0, or 1 on failure. */
VELPKI_API int add_X509_CRL_ext(X509_CRL *crl, const X509_EXTENSION *extension, int position) VELPKI_NOEXCEPT;
/** @} */

/** @name Entries
 * @{ */
/** Returns the number of entries of a list, as get_X509_CRL_revoked lends it; -1 for null. */
VELPKI_API int get_X509_REVOKED_count(const STACK *revoked) VELPKI_NOEXCEPT;
/** Lends the entry at an index, or null. */
VELPKI_API X509_REVOKED *get_X509_REVOKED(const STACK *revoked, int index) VELPKI_NOEXCEPT;
/** Lends the serial number. */
VELPKI_API BIGINT *get_X509_REVOKED_userCert(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
/** Lends the date of revocation. */
VELPKI_API X509_TIME *get_X509_REVOKED_revocationDate(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
/** Stores a copy of the serial number; 0, or 1 on failure. */
VELPKI_API int set_X509_REVOKED_userCert(X509_REVOKED *entry, const BIGINT *serial) VELPKI_NOEXCEPT;
/** Stores a copy of the date of revocation; 0, or 1 on failure. */
VELPKI_API int set_X509_REVOKED_revocationDate(X509_REVOKED *entry, const X509_TIME *time) VELPKI_NOEXCEPT;
/** Inserts a deep copy into the list at `*list`, which it makes when that is null; a position outside the list appends.
 * 0, or 1 on failure. The list is not searched for the serial number.
 * @warning The list of a signed CRL is to be signed again after this. */
VELPKI_API int add_X509_REVOKED_child(STACK **list, const X509_REVOKED *entry, int position) VELPKI_NOEXCEPT;
/** Appends a deep copy to the CRL's list, which it makes when there is none; 0, or 1 on failure. The list is not
 * searched for the serial number.
 * @warning A signed CRL is to be signed again after this. */
VELPKI_API int add_X509_CRL_revoked(X509_CRL *crl, const X509_REVOKED *entry) VELPKI_NOEXCEPT;
/** Takes the entry at an index out and releases it.
 * @warning A signed CRL is to be signed again after this. */
VELPKI_API void remove_X509_CRL_revoked(X509_CRL *crl, int index) VELPKI_NOEXCEPT;
/** Sorts the entries by serial number and numbers them; 0, or 1 for null.
 * @warning A signed CRL is to be signed again after this. */
VELPKI_API int sort_X509_CRL_revoked(X509_CRL *crl) VELPKI_NOEXCEPT;
/** @} */

/** @name Extensions of entries
 * @{ */
/** Returns the number of extensions: 0 without a list, -1 for null. */
VELPKI_API int get_X509_REVOKED_ext_count(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
/** Returns the first index after `last` (from 0 when it is negative) with that OID, or -1. */
VELPKI_API int get_X509_REVOKED_ext_by_OID(const X509_REVOKED *entry, const OBJECT_IDENTIFIER *oid,
                                           int last) VELPKI_NOEXCEPT;
/** Does what get_X509_REVOKED_ext_by_OID does for the OID at a registry row; -2 when the row has none. */
VELPKI_API int get_X509_REVOKED_ext_index_by_OID_index(const X509_REVOKED *entry, int oid_index,
                                                       int last) VELPKI_NOEXCEPT;
/** Lends the extension at an index, or null. */
VELPKI_API X509_EXTENSION *get_X509_REVOKED_ext(const X509_REVOKED *entry, int index) VELPKI_NOEXCEPT;
/** Takes the extension at an index out and releases it. */
VELPKI_API void remove_X509_REVOKED_ext(X509_REVOKED *entry, int index) VELPKI_NOEXCEPT;
/** Inserts a deep copy; a position outside the list, which is made when there is none, appends. 0, or 1 on failure. */
VELPKI_API int add_X509_REVOKED_ext(X509_REVOKED *entry, const X509_EXTENSION *extension, int position) VELPKI_NOEXCEPT;
/** Reads the reason code (RFC 5280 5.3.1) of the extension at `index`: INT_MAX for a larger one, 0 for an index below 0
 * or outside the list, for another extension and for a value that is none.
 * @warning 0 is also the code "unspecified". get_X509_REVOKED_CRLreason_strict tells them apart. */
VELPKI_API int get_X509_REVOKED_CRLreason(const X509_REVOKED *entry, int index) VELPKI_NOEXCEPT;
/** Finds the reason code itself and returns its ENUMERATED value, which is 0 to 10 and not 7; -1 when the entry has
 * none, -2 when it is malformed or there twice. */
VELPKI_API int get_X509_REVOKED_CRLreason_strict(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
/** @} */

/** @name Signatures in house form
 * @{ */
/** Encodes the body anew in house form, signs it with the algorithm that it names and a private RSA key, and sets
 * `sig_alg` and `sig_value`. Codes: F_GEN_RSASIGN with 49, 3C, 2B for an algorithm that the registry does not give a
 * digest and scheme; the body's, or the provider's. */
VELPKI_API int gen_RSA_SIG_X509_CRL(X509_CRL *crl, RSA_UNIT *rsa_key) VELPKI_NOEXCEPT;
/** Does what gen_RSA_SIG_X509_CRL does with a private KCDSA key, from which the digest follows. Codes: F_GEN_KCDSASIGN.
 */
VELPKI_API int gen_KCDSA_SIG_X509_CRL(X509_CRL *crl, KCDSA_UNIT *kcdsa_key) VELPKI_NOEXCEPT;
/** Encodes the body anew in house form and verifies the signature with the issuer's RSA key and the algorithm
 * `sig_alg`: 0 valid; F_VERIFY_RSASIGN with 49, 3C or 2B as for signing; the body's codes, or the provider's
 * (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning A CRL whose body is not this library's own DER does not verify, and what decoding drops is not covered.
 * verify_SIG_X509_CRL_RFC5280 verifies over the received octets. */
VELPKI_API int verify_RSA_SIG_X509_CRL(X509_CRL *crl, RSA_UNIT *rsa_key) VELPKI_NOEXCEPT;
/** Does what verify_RSA_SIG_X509_CRL does with the issuer's KCDSA key, with its warning. Codes: F_VERIFY_KCDSASIGN,
 * also with ERR_ASN1_DECODING for a malformed value. */
VELPKI_API int verify_KCDSA_SIG_X509_CRL(X509_CRL *crl, KCDSA_UNIT *kcdsa_key) VELPKI_NOEXCEPT;
/** Verifies as the one of the two does that the key says, with their warning; 1 for null and any other key. */
VELPKI_API int verify_SIG_X509_CRL(X509_CRL *crl, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** @} */

/** @name Signatures in standard form
 * @{ */
/** Signs the standard encoding with a private RSA (PKCS#1 v1.5, or PSS with SHA-256), ECDSA or KCDSA key and the digest
 * that the body's algorithm names, and keeps the finished octets as if they had been received. Codes: F_GEN_RSASIGN
 * with 49 (null), 48 (an algorithm that is not among these), ERR_ALGORITHM_MISMATCH (a key of another kind), 3C or
 * ERR_ASN1_ENCODING; those of the body, or the provider's. */
VELPKI_API int gen_SIG_X509_CRL_RFC5280(X509_CRL *crl, const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Verifies the received octets with the issuer's public key, with the algorithms and the warning of
 * verify_SIG_X509_CERT_RFC5280. Codes: F_VERIFY_RSASIGN with 49 (null, or no received octets), 48 (an algorithm or key
 * that is not among them), ERR_ALGORITHM_MISMATCH (inside and outside differ, or a key of another kind),
 * ERR_UNUSED_BITS, 3C or ERR_ASN1_DECODING; or the provider's. */
VELPKI_API int verify_SIG_X509_CRL_RFC5280(const X509_CRL *crl, const X509_PUBKEY *issuer_key) VELPKI_NOEXCEPT;
/** @} */

/** @name Look-up
 * @{ */
/** Looks for the certificate's serial number: the index of the first entry that has it, -1 for null and for a
 * certificate without one.
 * @warning 0 means the entry at index 0 and also that there is none. Issuer, dates and signature of the CRL are not
 * looked at. find_X509_CRL_revoked and check_X509_CRL_revocation_strict are unambiguous. */
VELPKI_API int verify_CRL_X509_CERT(X509_CRL *crl, X509_CERT *cert) VELPKI_NOEXCEPT;
/** Lends the first entry with a serial number, or null. The first call makes an index (a few octets an entry), which
 * later ones use; any number of threads may search one CRL at a time. Where memory does not suffice for the index the
 * list is walked.
 * @warning Of changes by the functions of stack.h those are seen that change the number of entries or the last one: use
 * add_X509_CRL_revoked and remove_X509_CRL_revoked. */
VELPKI_API X509_REVOKED *find_X509_CRL_revoked(const X509_CRL *crl, const BIGINT *serial) VELPKI_NOEXCEPT;

/** Answers for one certificate by one CRL (RFC 5280 6.3.3): 0 when the CRL covers it and does not list it; 0x48000000
 * with ERR_CERT_REVOKED when it is revoked, with the entry lent in `*entry` (null in all other cases; `entry` itself
 * may be null). `issuer` is the certificate of the CRL's and the certificate's issuer, which the caller trusts; `time`
 * null is now. The CRL must have been read by an _RFC5280 function, or signed by one.
 *
 * All other codes say that the CRL gives no answer: the signature's (verify_SIG_X509_CRL_RFC5280); 0x48000000 with 49,
 * 2B (a CRL that was not so read), 3C, ERR_INVALID_X509_TIME_TYPE, ERR_CRL_ISSUER, ERR_CRL_SIGN, ERR_CRL_THIS_UPDATE,
 * ERR_CRL_NEXT_UPDATE (also where it has none), ERR_CRL_DELTA, ERR_CRL_INDIRECT, ERR_UNKNOWN_EXTENSION (critical, of
 * the CRL or any entry), ERR_DUPLICATE_EXTENSION, ERR_CRL_SCOPE (its issuing distribution point is for others),
 * ERR_CRL_REASONS (not listed, but it is for some reasons only); and the codes of extension values. An entry with the
 * reason removeFromCRL is no revocation. */
VELPKI_API int check_X509_CRL_revocation_strict(const X509_CRL *crl, const X509_CERT *cert, const X509_CERT *issuer,
                                                const X509_TIME *time, X509_REVOKED **entry) VELPKI_NOEXCEPT;
/** @} */

/** @name Printing
 * @{ */
/** Writes a CRL to standard output: issuer, dates, the number of entries and the first twenty of them, and which
 * extensions it has. Octets that a terminal would act on are made visible. */
VELPKI_API void print_X509_CRL(const X509_CRL *crl) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing
 * @{ */
/** A CRL in house form, as DER or under the PEM label "X509 CRL". Results as asn1_io.h says, and warnings as at
 * X509_CRL_INFO_to_Seq and Seq_to_X509_CRL_INFO. */
VELPKI_API int writeDER_X509_CRL_to_Binary(X509_CRL *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_CRL_to_FILE(X509_CRL *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CRL_to_Binary(X509_CRL *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CRL_to_FILE(X509_CRL *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CRL_from_Binary(X509_CRL **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CRL_from_File(X509_CRL **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CRL_from_Binary(X509_CRL **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CRL_from_File(X509_CRL **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
