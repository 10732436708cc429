/* velpki/x509_crl.h: certificate revocation lists (RFC 5280 5).
 *
 * X509_CRL is a family as docs/conventions.md says of SAMPLE; X509_CRL_INFO is one without readers and writers. A CRL
 * keeps, beside its members, the octets that it was decoded from and an index of its serial numbers; every function
 * here that changes the CRL or one of its entries drops both. Members are for reading, and so is what the getters of
 * an entry lend: the records of decoded entries stand in one block. Conventions: docs/conventions.md. */
#ifndef VELPKI_X509_CRL_H
#define VELPKI_X509_CRL_H

#include <velpki/x509.h>

VELPKI_BEGIN

/* One entry of the list. */
typedef struct {
  BIGINT *userCertificate; /* the serial number */
  X509_TIME *revocationDate;
  X509_EXTENSIONS *crlEntryExtensions; /* null when absent */
  int sequence;                        /* the position, as of the last sort_X509_CRL_revoked; 0 before */
  int place;                           /* where the record stands in its block; the library's own */
} X509_REVOKED;

typedef struct {
  int version; /* 0 for v1, 1 for v2 */
  OBJECT_IDENTIFIER *signature;
  X509_NAME *issuer;
  X509_TIME *thisUpdate;
  X509_TIME *nextUpdate;
  STACK *revoked; /* of X509_REVOKED; null or empty when no certificate is revoked */
  X509_EXTENSIONS *extensions;
} X509_CRL_INFO;

/* The received octets and the index of a CRL; opaque. */
typedef struct x509_crl_kept X509_CRL_KEPT;
typedef struct {
  X509_CRL_INFO *tbs;
  OBJECT_IDENTIFIER *sig_alg;
  BIT_STRING *sig_value;
  X509_CRL_KEPT *kept;
} X509_CRL;
typedef STACK X509_CRLS; /* of X509_CRL */

/* Life. */

VELPKI_API X509_CRL *new_X509_CRL(void) VELPKI_NOEXCEPT; /* with an empty `tbs` */
VELPKI_API void free_X509_CRL(X509_CRL *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CRL(X509_CRL *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CRL *dup_X509_CRL(const X509_CRL *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CRL_INFO *new_X509_CRL_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CRL_INFO(X509_CRL_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CRL_INFO(X509_CRL_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CRL_INFO *dup_X509_CRL_INFO(const X509_CRL_INFO *p) VELPKI_NOEXCEPT;
/* The memory of a decoded entry that was taken out of its list is returned with the last entry of that list. */
VELPKI_API X509_REVOKED *new_X509_REVOKED(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_REVOKED(X509_REVOKED *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_REVOKED(X509_REVOKED *p) VELPKI_NOEXCEPT;
VELPKI_API X509_REVOKED *dup_X509_REVOKED(const X509_REVOKED *p) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_REVOKED_LIST(STACK *list) VELPKI_NOEXCEPT; /* the entries and the list */
VELPKI_API X509_CRLS *new_X509_CRLS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CRLS(X509_CRLS *p) VELPKI_NOEXCEPT;

/* Codecs (RFC 5280 5.1). Codes: each function's own (F_X509_CRLINFO_TO_SEQ, F_SEQ_TO_X509_CRLINFO, F_X509_CRL_TO_SEQ,
 * F_SEQ_TO_X509_CRL, F_X509_REVOKED_TO_SEQ, F_SEQ_TO_X509_REVOKED, F_X509_CRLS_TO_SEQ, F_SEQ_TO_X509_CRLS) with 49, 3C,
 * ERR_ASN1_ENCODING for a member that is missing or has no encoding, ERR_ASN1_DECODING for one that is missing or
 * malformed; the codes of names, entries and extensions go up unchanged.
 *
 * @warning These have the house form. The version is always written, 0 for v1 too, and a body without a version, or
 * with one above FFFF, is refused: F_SEQ_TO_X509_CRLINFO with reason 2B. (Its low octet is what is written.)
 * @warning nextUpdate must be there. Both signature algorithms are written with NULL parameters, and those read are not
 * kept. Serial numbers are read as magnitudes. Extensions that follow an empty list (30 00) are not seen; elements
 * after the known ones are ignored. The _RFC5280 functions have none of these. */
VELPKI_API int X509_CRL_INFO_to_Seq(const X509_CRL_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CRL_INFO(ASN1_UNIT *in, X509_CRL_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_CRL_to_Seq(const X509_CRL *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CRL(ASN1_UNIT *in, X509_CRL **out) VELPKI_NOEXCEPT;
/* Lists: SEQUENCE OF entries, of which an empty one is not written (F_X509_REVOKED_TO_SEQ with reason 2B), and SEQUENCE
 * OF CertificateList, which may be empty. A list that is passed to Seq_to_ is appended to, all or nothing. */
VELPKI_API int X509_REVOKED_to_Seq(const STACK *revoked, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_REVOKED(ASN1_UNIT *in, STACK **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_CRLS_to_Seq(const X509_CRLS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CRLS(ASN1_UNIT *in, X509_CRLS **out) VELPKI_NOEXCEPT;
/* The _RFC5280 functions read and write the standard form: version and nextUpdate may be absent, serial numbers have
 * their sign, extensions may follow an empty list, every name is kept, nothing is left over. What was received is
 * written back octet for octet; a CRL that was built or changed gets a version for v2 only, and NULL parameters for RSA
 * and KCDSA algorithms only. */
VELPKI_API int X509_CRL_to_Seq_RFC5280(const X509_CRL *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CRL_RFC5280(ASN1_UNIT *in, X509_CRL **out) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CRL_from_Binary_RFC5280(X509_CRL **out, const unsigned char *data,
                                                    int length) VELPKI_NOEXCEPT;
/* get_X509_CRL_received lends the octets that a CRL was decoded from, its signed part when `tbs` is not 0; null, with 0
 * in `*length`, for one that was built or changed. */
VELPKI_API const unsigned char *get_X509_CRL_received(const X509_CRL *crl, int tbs, int *length) VELPKI_NOEXCEPT;

/* Members. Setters copy and make what is missing; 0, or 1 (unchanged) on failure and for a version other than 0 and 1.
 * Getters lend; null, or -1 for the version, for a null or cleaned CRL. */

VELPKI_API int set_X509_CRL_version(X509_CRL *crl, int version) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_CRL_version(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_CRL_signature(X509_CRL *crl, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_CRL_signature(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_CRL_issuer(X509_CRL *crl, const X509_NAME *issuer) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME *get_X509_CRL_issuer(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_CRL_thisUpdate(X509_CRL *crl, const X509_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *get_X509_CRL_thisUpdate(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_CRL_nextUpdate(X509_CRL *crl, const X509_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *get_X509_CRL_nextUpdate(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_CRL_sig_alg(X509_CRL *crl, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_CRL_sig_alg(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_CRL_sig_value(X509_CRL *crl, const ASN1_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *get_X509_CRL_sig_value(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API STACK *get_X509_CRL_revoked(const X509_CRL *crl) VELPKI_NOEXCEPT;

/* The CRL's extensions, as the functions of the same name on X509_EXTENSIONS; the count is 0 without a list and -1 for
 * null. `_by_OBJ` gives the first index after `last`. */
VELPKI_API int get_X509_CRL_ext_count(const X509_CRL *crl) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_CRL_ext_by_OBJ(const X509_CRL *crl, const OBJECT_IDENTIFIER *oid, int last) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_CRL_ext_index_by_OID_index(const X509_CRL *crl, int oid_index, int last) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSION *get_X509_CRL_ext(const X509_CRL *crl, int index) VELPKI_NOEXCEPT;
VELPKI_API void remove_X509_CRL_ext(X509_CRL *crl, int index) VELPKI_NOEXCEPT; /* and releases it */
VELPKI_API int add_X509_CRL_ext(X509_CRL *crl, const X509_EXTENSION *extension, int position) VELPKI_NOEXCEPT;

/* Entries. */

/* These read a list of entries, as get_X509_CRL_revoked lends it: -1, or null, for a null list. */
VELPKI_API int get_X509_REVOKED_count(const STACK *revoked) VELPKI_NOEXCEPT;
VELPKI_API X509_REVOKED *get_X509_REVOKED(const STACK *revoked, int index) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *get_X509_REVOKED_userCert(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *get_X509_REVOKED_revocationDate(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_REVOKED_userCert(X509_REVOKED *entry, const BIGINT *serial) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_REVOKED_revocationDate(X509_REVOKED *entry, const X509_TIME *time) VELPKI_NOEXCEPT;
/* Both insert a deep copy; 0, or 1 on failure. add_X509_REVOKED_child makes the list when `*list` is null and appends
 * where the position is outside it; add_X509_CRL_revoked appends. Neither looks for the serial number in the list.
 * @warning A signed CRL is to be signed again after this, and after sort_X509_CRL_revoked. */
VELPKI_API int add_X509_REVOKED_child(STACK **list, const X509_REVOKED *entry, int position) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_CRL_revoked(X509_CRL *crl, const X509_REVOKED *entry) VELPKI_NOEXCEPT;
VELPKI_API void remove_X509_CRL_revoked(X509_CRL *crl, int index) VELPKI_NOEXCEPT; /* and releases it */
/* sort_X509_CRL_revoked sorts the entries by serial number and numbers them; 0, or 1 for null. */
VELPKI_API int sort_X509_CRL_revoked(X509_CRL *crl) VELPKI_NOEXCEPT;

/* An entry's extensions. */
VELPKI_API int get_X509_REVOKED_ext_count(const X509_REVOKED *entry) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_REVOKED_ext_by_OID(const X509_REVOKED *entry, const OBJECT_IDENTIFIER *oid,
                                           int last) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_REVOKED_ext_index_by_OID_index(const X509_REVOKED *entry, int oid_index,
                                                       int last) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSION *get_X509_REVOKED_ext(const X509_REVOKED *entry, int index) VELPKI_NOEXCEPT;
VELPKI_API void remove_X509_REVOKED_ext(X509_REVOKED *entry, int index) VELPKI_NOEXCEPT; /* and releases it */
VELPKI_API int add_X509_REVOKED_ext(X509_REVOKED *entry, const X509_EXTENSION *extension, int position) VELPKI_NOEXCEPT;
/* get_X509_REVOKED_CRLreason reads the reason code (RFC 5280 5.3.1) of the extension at `index`: INT_MAX for a larger
 * one, 0 for an index below 0 or outside the list, for another extension and for a value that is none.
 * @warning 0 is also the code "unspecified". get_X509_REVOKED_CRLreason_strict finds the extension itself and returns
 * its ENUMERATED value, which is 0 to 10 and not 7; -1 when the entry has none, -2 when it is malformed or there twice.
 */
VELPKI_API int get_X509_REVOKED_CRLreason(const X509_REVOKED *entry, int index) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_REVOKED_CRLreason_strict(const X509_REVOKED *entry) VELPKI_NOEXCEPT;

/* Signatures. */

/* Signing encodes the body anew, signs it with the algorithm that it names, and sets `sig_alg` and `sig_value`;
 * verifying encodes it anew and takes `sig_alg`. 0, or F_GEN_RSASIGN, F_GEN_KCDSASIGN, F_VERIFY_RSASIGN or
 * F_VERIFY_KCDSASIGN with 49, 3C, 2B for an algorithm that the registry does not give a digest and scheme,
 * ERR_ASN1_DECODING for a malformed KCDSA value; the body's codes, or the provider's. verify_SIG_X509_CRL takes the one
 * of the two that the key says; 1 for null and any other key.
 * @warning A CRL whose body is not this library's own DER does not verify, and what decoding drops is not covered.
 * verify_SIG_X509_CRL_RFC5280 verifies over the received octets. */
VELPKI_API int gen_RSA_SIG_X509_CRL(X509_CRL *crl, RSA_UNIT *rsa_key) VELPKI_NOEXCEPT;
VELPKI_API int gen_KCDSA_SIG_X509_CRL(X509_CRL *crl, KCDSA_UNIT *kcdsa_key) VELPKI_NOEXCEPT;
VELPKI_API int verify_RSA_SIG_X509_CRL(X509_CRL *crl, RSA_UNIT *rsa_key) VELPKI_NOEXCEPT;
VELPKI_API int verify_KCDSA_SIG_X509_CRL(X509_CRL *crl, KCDSA_UNIT *kcdsa_key) VELPKI_NOEXCEPT;
VELPKI_API int verify_SIG_X509_CRL(X509_CRL *crl, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;

/* gen_SIG_X509_CRL_RFC5280 signs the standard encoding with a private RSA (PKCS#1 v1.5), ECDSA or KCDSA key and the
 * digest that the body's algorithm names, and keeps the finished octets as if they had been received.
 * verify_SIG_X509_CRL_RFC5280 verifies the received octets with the issuer's public key, of those kinds and Ed25519.
 * Codes: F_GEN_RSASIGN or F_VERIFY_RSASIGN with 49 (null, or no received octets), 48 (an algorithm or key that is not
 * among these), ERR_ALGORITHM_MISMATCH (inside and outside differ, or a key of another kind), ERR_UNUSED_BITS, 3C,
 * ERR_ASN1_DECODING or ERR_ASN1_ENCODING; those of the body, or the provider's. */
VELPKI_API int gen_SIG_X509_CRL_RFC5280(X509_CRL *crl, const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API int verify_SIG_X509_CRL_RFC5280(const X509_CRL *crl, const X509_PUBKEY *issuer_key) VELPKI_NOEXCEPT;

/* Look-up. */

/* verify_CRL_X509_CERT looks for the certificate's serial number: the index of the first entry that has it, -1 for null
 * and for a certificate without one.
 * @warning 0 means the entry at index 0 and also that there is none. Issuer, dates and signature of the CRL are not
 * looked at. find_X509_CRL_revoked and check_X509_CRL_revocation_strict are unambiguous. */
VELPKI_API int verify_CRL_X509_CERT(X509_CRL *crl, X509_CERT *cert) VELPKI_NOEXCEPT;
/* find_X509_CRL_revoked lends the first entry with a serial number, or null. The first call makes an index (a few
 * octets an entry), which later ones use; any number of threads may search one CRL at a time. Where memory does not
 * suffice for the index, or the list was changed by the functions of stack.h, the list is walked. */
VELPKI_API X509_REVOKED *find_X509_CRL_revoked(const X509_CRL *crl, const BIGINT *serial) VELPKI_NOEXCEPT;

/* check_X509_CRL_revocation_strict answers for one certificate by one CRL (RFC 5280 6.3.3): 0 when the CRL covers it
 * and does not list it; 0x48000000 with ERR_CERT_REVOKED when it is revoked, with the entry lent in `*entry` (null in
 * all other cases; `entry` itself may be null). `issuer` is the certificate of the CRL's and the certificate's issuer,
 * which the caller trusts; `time` null is now. The CRL must have been read by an _RFC5280 function, or signed by one.
 * All other codes say that the CRL gives no answer: the signature's (verify_SIG_X509_CRL_RFC5280); 0x48000000 with 49,
 * 2B (a CRL that was not so read), 3C, ERR_INVALID_X509_TIME_TYPE, ERR_CRL_ISSUER, ERR_CRL_SIGN, ERR_CRL_THIS_UPDATE,
 * ERR_CRL_NEXT_UPDATE (also where it has none), ERR_CRL_DELTA, ERR_CRL_INDIRECT, ERR_UNKNOWN_EXTENSION (critical, of
 * the CRL or any entry), ERR_DUPLICATE_EXTENSION, ERR_CRL_SCOPE (its issuing distribution point is for others),
 * ERR_CRL_REASONS (not listed, but it is for some reasons only); and the codes of extension values. An entry with the
 * reason removeFromCRL is no revocation. */
VELPKI_API int check_X509_CRL_revocation_strict(const X509_CRL *crl, const X509_CERT *cert, const X509_CERT *issuer,
                                                const X509_TIME *time, X509_REVOKED **entry) VELPKI_NOEXCEPT;

/* print_X509_CRL writes a CRL to standard output: issuer, dates, the number of entries and the first twenty of them,
 * and which extensions it has. Octets that a terminal would act on are made visible. */
VELPKI_API void print_X509_CRL(const X509_CRL *crl) VELPKI_NOEXCEPT;

/* Readers and writers. Label: "X509 CRL". See asn1_io.h for results. */

VELPKI_API int writeDER_X509_CRL_to_Binary(X509_CRL *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_CRL_to_FILE(X509_CRL *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CRL_to_Binary(X509_CRL *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CRL_to_FILE(X509_CRL *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CRL_from_Binary(X509_CRL **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CRL_from_File(X509_CRL **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CRL_from_Binary(X509_CRL **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CRL_from_File(X509_CRL **out, const char *path) VELPKI_NOEXCEPT;

VELPKI_END

#endif
