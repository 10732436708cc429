/* velpki/pkcs12.h: personal information exchange files, "PFX" (RFC 7292).
 *
 * import_PKCS12 and its siblings give the keys and certificates of a file. A file is written by adding bags to a list
 * (add_PKCS12_keyinfo, add_PKCS12_cert), lists to safes (PKCS12_add_safe), safes to a file (PKCS12_add_safes), and a
 * MAC (set_PKCS12_mac).
 *
 * Passwords: the plain functions take each octet as a character, the _UTF8 ones take UTF-8, as other programs do; for
 * ASCII both are the same. PBES2 uses the octets as they are. Null is no password, which differs from an empty one; a
 * length of -1 measures NUL-terminated text. Functions that give a pointer give null on any failure.
 *
 * Families behave as docs/conventions.md says of SAMPLE. Conventions: docs/conventions.md. */
#ifndef VELPKI_PKCS12_H
#define VELPKI_PKCS12_H

#include <velpki/pkcs5.h>
#include <velpki/pkcs7.h>

VELPKI_BEGIN

/* Records. */

typedef struct {
  OBJECT_IDENTIFIER *digestAlgorithm;
  OCTET_STRING *mac;
  OCTET_STRING *salt;
  BIGINT *iteration;             /* null when absent: 1 */
  ASN1_STRING *digestParameters; /* null: NULL is written */
} P12_MAC_DATA;

typedef struct {
  BIGINT *version;
  P7_CONTENT_INFO *authSafe;
  P12_MAC_DATA *macData; /* null when absent */
} PKCS12;

/* A certificate bag. */
typedef struct {
  OBJECT_IDENTIFIER *certType;
  OCTET_STRING *value;   /* the certificate's DER for "x509Certificate"; null for a value that is no OCTET STRING */
  ASN1_UNIT *otherValue; /* such a value */
} P12_BAGS;

/* What a safe bag holds. */
enum {
  P12_KIND_NONE = 0,
  P12_KIND_KEY = 1,       /* P8_PRIV_KEY_INFO, of "keyBag" */
  P12_KIND_SHROUDED = 2,  /* PKCS8, of "pkcs8ShroudedKeyBag" */
  P12_KIND_CERT = 3,      /* P12_BAGS, of "certBag" */
  P12_KIND_SAFE_BAGS = 4, /* P12_SAFEBAGS, of "safeContentsBag" */
  P12_KIND_UNIT = 5       /* ASN1_UNIT, of any other type */
};
typedef struct {
  OBJECT_IDENTIFIER *bagType;
  void *value;
  X509_ATTRIBUTES *attributes; /* null when absent */
  int kind;                    /* the type that `value` is of */
} P12_SAFEBAG;
typedef STACK P12_SAFEBAGS;  /* of P12_SAFEBAG */
typedef STACK P12_AUTH_SAFE; /* of P7_CONTENT_INFO */

/* Families. Values of unknown types are kept and written back unchanged. OCTET STRINGs in segments are joined. A PFX
 * without a version is written as version 3; any version is read. */

VELPKI_API PKCS12 *new_PKCS12(void) VELPKI_NOEXCEPT; /* version 3, no content */
VELPKI_API void free_PKCS12(PKCS12 *p) VELPKI_NOEXCEPT;
VELPKI_API P12_MAC_DATA *new_P12_MAC_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P12_MAC_DATA(P12_MAC_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAG *new_P12_SAFEBAG(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P12_SAFEBAG(P12_SAFEBAG *p) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAGS *new_P12_SAFEBAGS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P12_SAFEBAGS(P12_SAFEBAGS *p) VELPKI_NOEXCEPT;
VELPKI_API P12_BAGS *new_P12_BAGS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P12_BAGS(P12_BAGS *p) VELPKI_NOEXCEPT;
VELPKI_API P12_AUTH_SAFE *new_P12_AUTH_SAFE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_P12_AUTH_SAFE(P12_AUTH_SAFE *p) VELPKI_NOEXCEPT;
/* PFX ::= SEQUENCE { version INTEGER, authSafe ContentInfo, macData MacData OPTIONAL } */
VELPKI_API int P12_PFX_to_Seq(const PKCS12 *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_PFX(ASN1_UNIT *in, PKCS12 **out) VELPKI_NOEXCEPT;
/* AuthenticatedSafe ::= SEQUENCE OF ContentInfo */
VELPKI_API int P12_AUTH_SAFE_to_Seq(const P12_AUTH_SAFE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_AUTH_SAFE(ASN1_UNIT *in, P12_AUTH_SAFE **out) VELPKI_NOEXCEPT;
/* SafeContents ::= SEQUENCE OF SafeBag */
VELPKI_API int P12_SAFEBAGS_to_Seq(const P12_SAFEBAGS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_SAFEBAGS(ASN1_UNIT *in, P12_SAFEBAGS **out) VELPKI_NOEXCEPT;
/* SafeBag ::= SEQUENCE { bagId OBJECT IDENTIFIER, bagValue [0] EXPLICIT ANY, bagAttributes SET OF Attribute OPTIONAL }
 */
VELPKI_API int P12_SAFEBAG_to_Seq(const P12_SAFEBAG *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_SAFEBAG(ASN1_UNIT *in, P12_SAFEBAG **out) VELPKI_NOEXCEPT;
/* CertBag ::= SEQUENCE { certId OBJECT IDENTIFIER, certValue [0] EXPLICIT ANY } */
VELPKI_API int P12_BAGS_to_Seq(const P12_BAGS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_BAGS(ASN1_UNIT *in, P12_BAGS **out) VELPKI_NOEXCEPT;
/* MacData ::= SEQUENCE { SEQUENCE { digestAlgorithm, digest OCTET STRING }, macSalt OCTET STRING, iterations INTEGER
 * DEFAULT 1 } */
VELPKI_API int P12_MAC_DATA_to_Seq(const P12_MAC_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_MAC_DATA(ASN1_UNIT *in, P12_MAC_DATA **out) VELPKI_NOEXCEPT;

/* A certificate and its bag: 0, or F_X509_CERT_TO_CERTBAG and F_CERTBAG_TO_X509_CERT with 49, 3C, 48 (a bag of another
 * type), ERR_ASN1_ENCODING or ERR_ASN1_DECODING. What a certificate was decoded from is kept octet for octet. */
VELPKI_API int X509_CERT_to_CertBag(X509_CERT *cert, P12_BAGS **bag) VELPKI_NOEXCEPT;
VELPKI_API int CertBag_to_X509_CERT(P12_BAGS *bag, X509_CERT **cert) VELPKI_NOEXCEPT;

/* Reading. */

/* import_PKCS12 verifies the MAC and collects private keys (P8_PRIV_KEY_INFO), the certificates that belong to a key,
 * in the order of the keys, and all others; a list is made where the pointer holds null, and an output that is null is
 * left out. A certificate belongs to a key when their local key identifiers are equal, or, for a key that has none so,
 * when it has its public key. Names and identifiers go into X509_AUX. Nested safe bags are followed to a depth of 8;
 * CRLs, secrets and bags of unknown types are passed over. Keys that the provider does not have are kept octets (see
 * pkcs8.h). Without a password null and the empty one are tried. Codes: F_IMPORT_PKCS12 with 49 (no file), 5E (the MAC
 * is wrong or missing), 48 (a MAC digest other than those of set_PKCS12_mac, a cipher that is unknown), 2B (an
 * iteration count above PKCS5_MAX_ITERATIONS, all counts together above ten times that, more than four million pairs of
 * keys and certificates), 3B or 3C (memory), ERR_ASN1_DECODING for whatever else is not as it should be.
 * @warning On failure a list that was given is released with all its elements, and the pointer set to null, if the call
 * had already found an element for it. A file without MAC opens only without password. import_PKCS12_ex has neither
 * rule. */
VELPKI_API int import_PKCS12(PKCS12 *p12, const char *password, int password_length, STACK **keys, STACK **certs,
                             STACK **ca_certs) VELPKI_NOEXCEPT;
VELPKI_API int import_PKCS12_UTF8(PKCS12 *p12, const char *password, int password_length, STACK **keys, STACK **certs,
                                  STACK **ca_certs) VELPKI_NOEXCEPT;
/* import_PKCS12_ex also takes MACs over any digest of the provider and by PBMAC1 (RFC 9579), reads the algorithms of
 * PBES1 (rows 10 and 170) as PBES1, which the other functions read with the derivation of PKCS#12, as they write them,
 * and passes certificates over that cannot be decoded, counting them in `*skipped` (null allowed). The lists given grow
 * on success only. `max_iterations` 0 means PKCS5_MAX_ITERATIONS. import_PKCS12_strict takes UTF-8 and the same MACs,
 * and refuses a file without one, any version but 3, and certificates that cannot be decoded. */
enum {
  PKCS12_UTF8 = 1,       /* the password is UTF-8 */
  PKCS12_WITHOUT_MAC = 2 /* a file without MAC is taken, whatever the password */
};
VELPKI_API int import_PKCS12_ex(PKCS12 *p12, const char *password, int password_length, int max_iterations,
                                unsigned flags, STACK **keys, STACK **certs, STACK **ca_certs,
                                int *skipped) VELPKI_NOEXCEPT;
VELPKI_API int import_PKCS12_strict(PKCS12 *p12, const char *password, int password_length, int max_iterations,
                                    STACK **keys, STACK **certs, STACK **ca_certs) VELPKI_NOEXCEPT;
/* verify_PKCS12_mac: 0 when the MAC is right, else F_IMPORT_PKCS12 with the reasons above. Without MAC data a null
 * password is right. */
VELPKI_API int verify_PKCS12_mac(PKCS12 *p12, const char *password, int length) VELPKI_NOEXCEPT;
VELPKI_API int verify_PKCS12_mac_UTF8(PKCS12 *p12, const char *password, int length) VELPKI_NOEXCEPT;

/* The parts of a file, as new records. A content that is not of the type asked for gives null. */
VELPKI_API P12_AUTH_SAFE *PKCS12_to_P12_AUTH_SAFE(PKCS12 *p12) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAGS *get_PKCS12_p7data(P7_CONTENT_INFO *p7) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAGS *get_PKCS12_p7encdata(P7_CONTENT_INFO *p7, const char *password, int length) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAGS *get_PKCS12_p7encdata_UTF8(P7_CONTENT_INFO *p7, const char *password,
                                                   int length) VELPKI_NOEXCEPT;
/* get_PKCS12_shr_key decrypts the key of a shrouded key bag. */
VELPKI_API P8_PRIV_KEY_INFO *get_PKCS12_shr_key(const P12_SAFEBAG *bag, const char *password,
                                                int length) VELPKI_NOEXCEPT;
VELPKI_API P8_PRIV_KEY_INFO *get_PKCS12_shr_key_UTF8(const P12_SAFEBAG *bag, const char *password,
                                                     int length) VELPKI_NOEXCEPT;
/* The first attribute of a registry row, lent. */
VELPKI_API X509_ATTRIBUTE *get_PKCS12_attribute(P12_SAFEBAG *bag, int oid_index) VELPKI_NOEXCEPT;
/* The friendly name as NUL-terminated text, released with PKV_Free; the plain form gives null for a name that has
 * characters above U+00FF. */
VELPKI_API char *get_PKCS12_friendlyname(P12_SAFEBAG *bag) VELPKI_NOEXCEPT;
VELPKI_API char *get_PKCS12_friendlyname_UTF8(P12_SAFEBAG *bag) VELPKI_NOEXCEPT;

/* Writing. Functions that return int give 0 or 1 unless they name codes. An iteration count below 1 means 2048. The
 * algorithm `pbe_index` is a registry row with a cipher and a digest (the rows of PKCS#12 are 144 to 149), or 161 for
 * PBES2 with AES-256-CBC and HMAC-SHA256.
 * @warning Iteration counts are written as encrypt_PKCS5 does: 1 to 16 are refused, and what is written with 256 to 271
 * cannot be opened again. */

/* add_PKCS12_bag puts a bag itself into the list, which is made when missing; the list owns it, on success only. Codes:
 * F_ADD_PKCS12_BAG with 49, 3B or ERR_STK_ERROR. */
VELPKI_API int add_PKCS12_bag(STACK **bags, P12_SAFEBAG *bag) VELPKI_NOEXCEPT;
/* add_PKCS12_keyinfo adds a copy of a key, in a plain bag with `pbe_index` -1, else in a shrouded one; the bag is lent.
 * add_PKCS12_cert does the same for a certificate. A local key identifier is added when it is given. */
VELPKI_API P12_SAFEBAG *add_PKCS12_keyinfo(STACK **bags, P8_PRIV_KEY_INFO *key, const unsigned char *lkid,
                                           int lkid_length, const char *password, int password_length, int pbe_index,
                                           int iteration) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAG *add_PKCS12_keyinfo_UTF8(STACK **bags, P8_PRIV_KEY_INFO *key, const unsigned char *lkid,
                                                int lkid_length, const char *password, int password_length,
                                                int pbe_index, int iteration) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAG *add_PKCS12_cert(STACK **bags, X509_CERT *cert, const unsigned char *lkid,
                                        int lkid_length) VELPKI_NOEXCEPT;
/* The bags by themselves, as new records. The salt is drawn unless it is given: `salt_length` octets, 8 when that is
 * below 1. */
VELPKI_API P12_SAFEBAG *get_PKCS12_keybag(P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAG *get_PKCS12_shr_keybag(int pbe_index, const char *password, int length,
                                              const unsigned char *salt, int salt_length, int iteration,
                                              P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
VELPKI_API P12_SAFEBAG *get_PKCS12_shr_keybag_UTF8(int pbe_index, const char *password, int length,
                                                   const unsigned char *salt, int salt_length, int iteration,
                                                   P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/* Attributes of a bag: "localKeyID", and "friendlyName" as a BMPString of the octets given.
 * @warning add_PKCS12_friendlyname_ASC does not widen its text: "abcd" is a name of two characters, and an odd length
 * makes a BMPString for which openssl refuses the whole file. Use add_PKCS12_friendlyname_UTF8. */
VELPKI_API int add_PKCS12_LKID(P12_SAFEBAG *bag, const unsigned char *id, int length) VELPKI_NOEXCEPT;
VELPKI_API int add_PKCS12_friendlyname_ASC(P12_SAFEBAG *bag, const char *name, int length) VELPKI_NOEXCEPT;
VELPKI_API int add_PKCS12_friendlyname_UNI(P12_SAFEBAG *bag, const unsigned char *name, int length) VELPKI_NOEXCEPT;
VELPKI_API int add_PKCS12_friendlyname_UTF8(P12_SAFEBAG *bag, const char *name, int length) VELPKI_NOEXCEPT;

/* PKCS12_add_safe adds bags, which stay the caller's, to the list of safes, which is made when missing: as data with
 * `pbe_index` -1, else encrypted under the NUL-terminated password; 0 means triple DES with three keys (row 146).
 * Codes: F_PKCS12_ADD_SAFE with 49, 3B, or 12 where the content cannot be made. */
VELPKI_API int PKCS12_add_safe(STACK **safes, STACK *bags, int pbe_index, int iteration,
                               const char *password) VELPKI_NOEXCEPT;
VELPKI_API int PKCS12_add_safe_UTF8(STACK **safes, STACK *bags, int pbe_index, int iteration,
                                    const char *password) VELPKI_NOEXCEPT;
VELPKI_API P7_CONTENT_INFO *gen_PKCS12_p7data(STACK *bags) VELPKI_NOEXCEPT;
VELPKI_API P7_CONTENT_INFO *gen_PKCS12_p7encdata(int pbe_index, const char *password, int password_length,
                                                 const unsigned char *salt, int salt_length, int iteration,
                                                 STACK *bags) VELPKI_NOEXCEPT;
VELPKI_API P7_CONTENT_INFO *gen_PKCS12_p7encdata_UTF8(int pbe_index, const char *password, int password_length,
                                                      const unsigned char *salt, int salt_length, int iteration,
                                                      STACK *bags) VELPKI_NOEXCEPT;
/* A file of safes: a new one, or the content of one that is made when missing; a MAC that it had goes. */
VELPKI_API PKCS12 *PKCS12_add_safes(STACK *safes) VELPKI_NOEXCEPT;
VELPKI_API int P12_AUTH_SAFE_to_PKCS12(P12_AUTH_SAFE *safes, PKCS12 **p12) VELPKI_NOEXCEPT;

/* set_PKCS12_mac computes the MAC over SHA-1 (digest 0), SHA-256, SHA-384, SHA-512 or HAS-160. What the MAC data
 * already have of digest, salt and iteration count stays. The salt is drawn unless given: `salt_length` octets, 8 when
 * that is below 1. Codes: F_SET_PKCS12_MAC with 49, ERR_P12_MAC_INIT or ERR_P12_MAC_GEN.
 * @warning A count below 17 is not written, and of 256 to 271 the octet written is 0 to 15. The MAC is computed with
 * the count that is written, 1 when none is. */
VELPKI_API int set_PKCS12_mac(PKCS12 *p12, const char *password, int length, const unsigned char *salt, int salt_length,
                              int iteration, int digest_id) VELPKI_NOEXCEPT;
VELPKI_API int set_PKCS12_mac_UTF8(PKCS12 *p12, const char *password, int length, const unsigned char *salt,
                                   int salt_length, int iteration, int digest_id) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *get_PKCS12_MAC_iter(const PKCS12 *p12) VELPKI_NOEXCEPT;
/* The count as big-endian octets; MAC data are made when missing. */
VELPKI_API int set_PKCS12_MAC_iter(PKCS12 *p12, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;

/* Key derivation (RFC 7292 B.2) into `out_length` octets, with the digest that the unit was started for; the unit is
 * not changed. `id` is 1 for a key, 2 for an IV, 3 for a MAC key. get_PKCS12_key_UNI takes the password as UTF-16BE
 * with its final zeros. 0, or a PKV_ERR_ code: BAD_VALUE for a length, id or fewer than one iteration, NULL,
 * UNSUPPORTED for a unit that is not started. */
VELPKI_API int get_PKCS12_key_UNI(const unsigned char *password, int length, const unsigned char *salt, int salt_length,
                                  int id, int iterations, int out_length, unsigned char *out,
                                  DIGEST_UNIT *digest) VELPKI_NOEXCEPT;
VELPKI_API int gen_PKCS12_key_ASC(const char *password, int length, const unsigned char *salt, int salt_length, int id,
                                  int iterations, int out_length, unsigned char *out,
                                  DIGEST_UNIT *digest) VELPKI_NOEXCEPT;
VELPKI_API int gen_PKCS12_key_UTF8(const char *password, int length, const unsigned char *salt, int salt_length, int id,
                                   int iterations, int out_length, unsigned char *out,
                                   DIGEST_UNIT *digest) VELPKI_NOEXCEPT;

/* Readers and writers. Label: "PKCS12". See asn1_io.h for results. */

VELPKI_API int writeDER_PKCS12_to_Binary(PKCS12 *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS12_to_FILE(PKCS12 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS12_to_Binary(PKCS12 *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS12_to_FILE(PKCS12 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS12_from_Binary(PKCS12 **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS12_from_File(PKCS12 **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS12_from_Binary(PKCS12 **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS12_from_File(PKCS12 **out, const char *path) VELPKI_NOEXCEPT;

VELPKI_END

#endif
