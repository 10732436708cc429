/** @file velpki/pkcs12.h
 * Personal information exchange files, "PFX" (RFC 7292).
 *
 * import_PKCS12 and its siblings give the keys and certificates of a file. A file is written by adding bags to a list
 * (add_PKCS12_keyinfo, add_PKCS12_cert), lists to safes (PKCS12_add_safe), safes to a file (PKCS12_add_safes), and a
 * MAC (set_PKCS12_mac). Keys are records of pkcs8.h, certificates of x509.h; docs/key_files.md says what was tried with
 * which other program.
 *
 * Passwords: the plain functions take each octet as a character, the _UTF8 ones take UTF-8, as other programs do, of
 * characters up to U+FFFF; for
 * ASCII both are the same. PBES2 uses the octets as they are. Null is no password, which differs from an empty one; a
 * length of -1 measures NUL-terminated text. Functions that give a pointer give null on any failure.
 *
 * Families behave as docs/conventions.md says of SAMPLE. */
#ifndef VELPKI_PKCS12_H
#define VELPKI_PKCS12_H

#include <velpki/pkcs5.h>
#include <velpki/pkcs7.h>

VELPKI_BEGIN

/** MacData (RFC 7292 4). */
typedef struct {
  OBJECT_IDENTIFIER *digestAlgorithm; /**< of the DigestInfo: the MAC's digest, or PBMAC1 */
  OCTET_STRING *mac;                  /**< its octets */
  OCTET_STRING *salt;                 /**< of the key derivation */
  BIGINT *iteration;                  /**< null when absent: 1 */
  ASN1_STRING *digestParameters;      /**< null: NULL is written */
} P12_MAC_DATA;

/** PFX (RFC 7292 4): a whole file. */
typedef struct {
  BIGINT *version;           /**< 3; null is written as 3 */
  P7_CONTENT_INFO *authSafe; /**< data that hold an AuthenticatedSafe */
  P12_MAC_DATA *macData;     /**< null when absent */
} PKCS12;

/** A certificate bag: CertBag (RFC 7292 4.2.3). */
typedef struct {
  OBJECT_IDENTIFIER *certType; /**< "x509Certificate", or another */
  /** the certificate's DER for "x509Certificate"; null for a value that is no OCTET STRING */
  OCTET_STRING *value;
  ASN1_UNIT *otherValue; /**< such a value, else null */
} P12_BAGS;

/** What a safe bag holds, by the type of the record in its value. */
enum {
  P12_KIND_NONE = 0,      /**< nothing; the value is null */
  P12_KIND_KEY = 1,       /**< P8_PRIV_KEY_INFO, of "keyBag" */
  P12_KIND_SHROUDED = 2,  /**< PKCS8, of "pkcs8ShroudedKeyBag" */
  P12_KIND_CERT = 3,      /**< P12_BAGS, of "certBag" */
  P12_KIND_SAFE_BAGS = 4, /**< P12_SAFEBAGS, of "safeContentsBag" */
  P12_KIND_UNIT = 5       /**< ASN1_UNIT, of any other type */
};
/** SafeBag (RFC 7292 4.2). */
typedef struct {
  OBJECT_IDENTIFIER *bagType;  /**< bagId */
  void *value;                 /**< the record that `kind` says; owned */
  X509_ATTRIBUTES *attributes; /**< null when absent */
  int kind;                    /**< the type that `value` is of, a P12_KIND_ */
} P12_SAFEBAG;
/** SafeContents: a list of P12_SAFEBAG, which it owns. */
typedef STACK P12_SAFEBAGS;
/** AuthenticatedSafe: a list of P7_CONTENT_INFO, which it owns. */
typedef STACK P12_AUTH_SAFE;

/* Families. */

/** @name Life cycle of the records
 * For this group and the codecs below: values of unknown types are kept and written back unchanged, and OCTET STRINGs
 * in segments are joined.
 * @{ */
/** A new PKCS12 has version 3 and no content, other new records are empty. Freeing a record releases everything in it;
 * keys are wiped. */
VELPKI_API PKCS12 *new_PKCS12(void) VELPKI_NOEXCEPT;
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
/** @} */

/** @name Codec of PKCS12
 * @{ */
/** PFX ::= SEQUENCE { version INTEGER, authSafe ContentInfo, macData MacData OPTIONAL }. A PFX without a version is
 * written as version 3; any version is read. Codes: F_P12_PFX_TO_SEQ and F_SEQ_TO_P12_PFX. */
VELPKI_API int P12_PFX_to_Seq(const PKCS12 *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_PFX(ASN1_UNIT *in, PKCS12 **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P12_AUTH_SAFE
 * @{ */
/** AuthenticatedSafe ::= SEQUENCE OF ContentInfo. Codes: F_P12_AUTH_SAFE_TO_SEQ and F_SEQ_TO_P12_AUTH_SAFE, or those of
 * a content info. */
VELPKI_API int P12_AUTH_SAFE_to_Seq(const P12_AUTH_SAFE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_AUTH_SAFE(ASN1_UNIT *in, P12_AUTH_SAFE **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P12_SAFEBAGS
 * @{ */
/** SafeContents ::= SEQUENCE OF SafeBag. Codes: F_P12_SAFEBAGS_TO_SEQ and F_SEQ_TO_P12_SAFEBAGS, or those of a bag. */
VELPKI_API int P12_SAFEBAGS_to_Seq(const P12_SAFEBAGS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_SAFEBAGS(ASN1_UNIT *in, P12_SAFEBAGS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P12_SAFEBAG
 * @{ */
/** SafeBag ::= SEQUENCE { bagId OBJECT IDENTIFIER, bagValue [0] EXPLICIT ANY, bagAttributes SET OF Attribute OPTIONAL
 * }. Codes: F_P12_SAFEBAG_TO_SEQ and F_SEQ_TO_P12_SAFEBAG, or those of the value. */
VELPKI_API int P12_SAFEBAG_to_Seq(const P12_SAFEBAG *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_SAFEBAG(ASN1_UNIT *in, P12_SAFEBAG **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P12_BAGS
 * @{ */
/** CertBag ::= SEQUENCE { certId OBJECT IDENTIFIER, certValue [0] EXPLICIT ANY }. Codes: F_P12_BAGS_TO_SEQ and
 * F_SEQ_TO_P12_BAGS. */
VELPKI_API int P12_BAGS_to_Seq(const P12_BAGS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_BAGS(ASN1_UNIT *in, P12_BAGS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P12_MAC_DATA
 * @{ */
/** MacData ::= SEQUENCE { SEQUENCE { digestAlgorithm, digest OCTET STRING }, macSalt OCTET STRING, iterations INTEGER
 * DEFAULT 1 }. Codes: F_P12_MAC_DATA_TO_SEQ and F_SEQ_TO_P12_MAC_DATA. */
VELPKI_API int P12_MAC_DATA_to_Seq(const P12_MAC_DATA *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_P12_MAC_DATA(ASN1_UNIT *in, P12_MAC_DATA **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Certificates and their bags
 * @{ */
/** Makes a new bag of a certificate: 0, or F_X509_CERT_TO_CERTBAG with 49, 3C or ERR_ASN1_ENCODING. What a certificate
 * was decoded from is kept octet for octet. */
VELPKI_API int X509_CERT_to_CertBag(X509_CERT *cert, P12_BAGS **bag) VELPKI_NOEXCEPT;
/** Decodes the certificate of a bag (as Seq_to_), in house form or, where that refuses it, in standard form: 0, or
 * F_CERTBAG_TO_X509_CERT with 49, 3C, 48 (a bag of another type) or ERR_ASN1_DECODING. */
VELPKI_API int CertBag_to_X509_CERT(P12_BAGS *bag, X509_CERT **cert) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading a file
 * @{ */
/** Verifies the MAC and collects private keys (P8_PRIV_KEY_INFO), the certificates that belong to a key, in the order
 * of the keys, and all others; a list is made where the pointer holds null, and an output that is null is left out. A
 * certificate belongs to a key when their local key identifiers are equal, or, for a key that has none so, when it has
 * its public key. Names and identifiers go into X509_AUX. Nested safe bags are followed to a depth of 8; CRLs, secrets
 * and bags of unknown types are passed over. Keys that the provider does not have are kept octets (see pkcs8.h).
 * Without a password null and the empty one are tried. Codes: F_IMPORT_PKCS12 with 49 (no file), 5E (the MAC is wrong
 * or missing), 48 (a MAC digest other than those of set_PKCS12_mac, a cipher that is unknown), 2B (an iteration count
 * above PKCS5_MAX_ITERATIONS, all counts together above ten times that, more than four million pairs of keys and
 * certificates), 3B or 3C (memory), ERR_ASN1_DECODING for whatever else is not as it should be.
 * @warning On failure a list that was given is released with all its elements, and the pointer set to null, if the call
 * had already found an element for it. A file without MAC opens only without password. import_PKCS12_ex leaves the
 * lists alone, and has a flag for such files. */
VELPKI_API int import_PKCS12(PKCS12 *p12, const char *password, int password_length, STACK **keys, STACK **certs,
                             STACK **ca_certs) VELPKI_NOEXCEPT;
/** As import_PKCS12, its warning included, with a password in UTF-8. */
VELPKI_API int import_PKCS12_UTF8(PKCS12 *p12, const char *password, int password_length, STACK **keys, STACK **certs,
                                  STACK **ca_certs) VELPKI_NOEXCEPT;
/** Flags of import_PKCS12_ex, which may be combined. */
enum {
  PKCS12_UTF8 = 1,       /**< the password is UTF-8 */
  PKCS12_WITHOUT_MAC = 2 /**< a file without MAC is taken, whatever the password */
};
/** As import_PKCS12; but it also takes MACs over any digest of the provider and by PBMAC1 (RFC 9579), reads the
 * algorithms of PBES1 (rows 10 and 170) as PBES1, which the other functions read with the derivation of PKCS#12, as
 * they write them, and passes certificates over that cannot be decoded, counting them in `*skipped` (null allowed).
 * Lists and count change on success only. `max_iterations` 0 means PKCS5_MAX_ITERATIONS; below 0 is 2B. */
VELPKI_API int import_PKCS12_ex(PKCS12 *p12, const char *password, int password_length, int max_iterations,
                                unsigned flags, STACK **keys, STACK **certs, STACK **ca_certs,
                                int *skipped) VELPKI_NOEXCEPT;
/** As import_PKCS12_ex with a password in UTF-8; but it refuses a file without MAC (5E), any version but 3 (2B), and
 * certificates that cannot be decoded (ERR_ASN1_DECODING). */
VELPKI_API int import_PKCS12_strict(PKCS12 *p12, const char *password, int password_length, int max_iterations,
                                    STACK **keys, STACK **certs, STACK **ca_certs) VELPKI_NOEXCEPT;
/** Verifies the MAC alone: 0 when it is right, else F_IMPORT_PKCS12 with the reasons of import_PKCS12. Without MAC data
 * a null password is right. */
VELPKI_API int verify_PKCS12_mac(PKCS12 *p12, const char *password, int length) VELPKI_NOEXCEPT;
/** As verify_PKCS12_mac, with a password in UTF-8. */
VELPKI_API int verify_PKCS12_mac_UTF8(PKCS12 *p12, const char *password, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name The parts of a file
 * @{ */
/** Decodes the safes of a file into a new record. Here and below a content that is not of the type asked for gives
 * null. The MAC is not looked at. */
VELPKI_API P12_AUTH_SAFE *PKCS12_to_P12_AUTH_SAFE(PKCS12 *p12) VELPKI_NOEXCEPT;
/** Decodes the bags of a safe that is not encrypted into a new record. */
VELPKI_API P12_SAFEBAGS *get_PKCS12_p7data(P7_CONTENT_INFO *p7) VELPKI_NOEXCEPT;
/** Decrypts an encrypted safe and decodes its bags into a new record; null for a wrong password, too. */
VELPKI_API P12_SAFEBAGS *get_PKCS12_p7encdata(P7_CONTENT_INFO *p7, const char *password, int length) VELPKI_NOEXCEPT;
/** As get_PKCS12_p7encdata, with a password in UTF-8. */
VELPKI_API P12_SAFEBAGS *get_PKCS12_p7encdata_UTF8(P7_CONTENT_INFO *p7, const char *password,
                                                   int length) VELPKI_NOEXCEPT;
/** Decrypts the key of a shrouded key bag into a new record; null for a wrong password, too. */
VELPKI_API P8_PRIV_KEY_INFO *get_PKCS12_shr_key(const P12_SAFEBAG *bag, const char *password,
                                                int length) VELPKI_NOEXCEPT;
/** As get_PKCS12_shr_key, with a password in UTF-8. */
VELPKI_API P8_PRIV_KEY_INFO *get_PKCS12_shr_key_UTF8(const P12_SAFEBAG *bag, const char *password,
                                                     int length) VELPKI_NOEXCEPT;
/** Lends the first attribute of a registry row, null when there is none. */
VELPKI_API X509_ATTRIBUTE *get_PKCS12_attribute(P12_SAFEBAG *bag, int oid_index) VELPKI_NOEXCEPT;
/** Makes NUL-terminated text of the friendly name, an octet for a character, released with PKV_Free; null for a name
 * that has characters above U+00FF, and when there is none. */
VELPKI_API char *get_PKCS12_friendlyname(P12_SAFEBAG *bag) VELPKI_NOEXCEPT;
/** Makes NUL-terminated UTF-8 of the friendly name, released with PKV_Free; null when there is none. */
VELPKI_API char *get_PKCS12_friendlyname_UTF8(P12_SAFEBAG *bag) VELPKI_NOEXCEPT;
/** @} */

/* Writing. */

/** @name Adding bags
 * @{ */
/** Puts a bag itself into the list, which is made when missing; the list owns it, on success only. Codes:
 * F_ADD_PKCS12_BAG with 49, 3B or ERR_STK_ERROR (memory). */
VELPKI_API int add_PKCS12_bag(STACK **bags, P12_SAFEBAG *bag) VELPKI_NOEXCEPT;
/** Adds a copy of a key, in a plain bag with `pbe_index` -1, else in a shrouded one; the bag is lent. A local key
 * identifier is added when `lkid` is given. An iteration count below 1 means 2048. `pbe_index` is a registry row with a
 * cipher and a digest (the rows of PKCS#12 are 144 to 149), or 161 for PBES2 with AES-256-CBC and HMAC-SHA256.
 * @warning Iteration counts are written as encrypt_PKCS5 does: 1 to 16 are refused, and what is written with 256 to 271
 * cannot be opened again. The same holds for get_PKCS12_shr_keybag, PKCS12_add_safe and gen_PKCS12_p7encdata. */
VELPKI_API P12_SAFEBAG *add_PKCS12_keyinfo(STACK **bags, P8_PRIV_KEY_INFO *key, const unsigned char *lkid,
                                           int lkid_length, const char *password, int password_length, int pbe_index,
                                           int iteration) VELPKI_NOEXCEPT;
/** As add_PKCS12_keyinfo, with a password in UTF-8. */
VELPKI_API P12_SAFEBAG *add_PKCS12_keyinfo_UTF8(STACK **bags, P8_PRIV_KEY_INFO *key, const unsigned char *lkid,
                                                int lkid_length, const char *password, int password_length,
                                                int pbe_index, int iteration) VELPKI_NOEXCEPT;
/** Adds a copy of a certificate; the bag is lent. A local key identifier is added when `lkid` is given. */
VELPKI_API P12_SAFEBAG *add_PKCS12_cert(STACK **bags, X509_CERT *cert, const unsigned char *lkid,
                                        int lkid_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Bags by themselves
 * @{ */
/** Makes a plain key bag with a copy of the key. */
VELPKI_API P12_SAFEBAG *get_PKCS12_keybag(P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/** Makes a shrouded key bag. The salt is drawn unless it is given: `salt_length` octets, 8 when that is below 1.
 * Algorithm, count and warning are those of add_PKCS12_keyinfo. */
VELPKI_API P12_SAFEBAG *get_PKCS12_shr_keybag(int pbe_index, const char *password, int length,
                                              const unsigned char *salt, int salt_length, int iteration,
                                              P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/** As get_PKCS12_shr_keybag, with a password in UTF-8. */
VELPKI_API P12_SAFEBAG *get_PKCS12_shr_keybag_UTF8(int pbe_index, const char *password, int length,
                                                   const unsigned char *salt, int salt_length, int iteration,
                                                   P8_PRIV_KEY_INFO *key) VELPKI_NOEXCEPT;
/** @} */

/** @name Attributes of a bag
 * 0, or 1 for null, a negative length (but -1 where it is said), and when memory ends.
 * @{ */
/** Adds the attribute "localKeyID" (RFC 2985 5.5.2), by which a key and its certificate are matched. */
VELPKI_API int add_PKCS12_LKID(P12_SAFEBAG *bag, const unsigned char *id, int length) VELPKI_NOEXCEPT;
/** Adds the attribute "friendlyName" (RFC 2985 5.5.1) as a BMPString of the octets given; a length of -1 measures them.
 * @warning The text is not widened: "abcd" is a name of two characters, and an odd length makes a BMPString for which
 * openssl refuses the whole file. Use add_PKCS12_friendlyname_UTF8. */
VELPKI_API int add_PKCS12_friendlyname_ASC(P12_SAFEBAG *bag, const char *name, int length) VELPKI_NOEXCEPT;
/** Adds the attribute "friendlyName" of octets that are UTF-16BE already. */
VELPKI_API int add_PKCS12_friendlyname_UNI(P12_SAFEBAG *bag, const unsigned char *name, int length) VELPKI_NOEXCEPT;
/** Adds the attribute "friendlyName" of UTF-8 text, converted; 1 for text that is none. A length of -1 measures it. */
VELPKI_API int add_PKCS12_friendlyname_UTF8(P12_SAFEBAG *bag, const char *name, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Safes and files
 * @{ */
/** Adds bags, which stay the caller's, to the list of safes, which is made when missing: as data with `pbe_index` -1,
 * else encrypted under the NUL-terminated password; 0 means triple DES with three keys (row 146). Codes:
 * F_PKCS12_ADD_SAFE with 49, 3B (memory), or 12 where the content cannot be made. Count and warning are those of
 * add_PKCS12_keyinfo. */
VELPKI_API int PKCS12_add_safe(STACK **safes, STACK *bags, int pbe_index, int iteration,
                               const char *password) VELPKI_NOEXCEPT;
/** As PKCS12_add_safe, with a password in UTF-8. */
VELPKI_API int PKCS12_add_safe_UTF8(STACK **safes, STACK *bags, int pbe_index, int iteration,
                                    const char *password) VELPKI_NOEXCEPT;
/** Makes a safe of bags that is not encrypted: data with their encoding. */
VELPKI_API P7_CONTENT_INFO *gen_PKCS12_p7data(STACK *bags) VELPKI_NOEXCEPT;
/** Makes an encrypted safe of bags. The salt is drawn unless it is given: `salt_length` octets, 8 when that is below 1.
 * Algorithm, count and warning are those of add_PKCS12_keyinfo. */
VELPKI_API P7_CONTENT_INFO *gen_PKCS12_p7encdata(int pbe_index, const char *password, int password_length,
                                                 const unsigned char *salt, int salt_length, int iteration,
                                                 STACK *bags) VELPKI_NOEXCEPT;
/** As gen_PKCS12_p7encdata, with a password in UTF-8. */
VELPKI_API P7_CONTENT_INFO *gen_PKCS12_p7encdata_UTF8(int pbe_index, const char *password, int password_length,
                                                      const unsigned char *salt, int salt_length, int iteration,
                                                      STACK *bags) VELPKI_NOEXCEPT;
/** Makes a new file of safes, which stay the caller's, without a MAC. */
VELPKI_API PKCS12 *PKCS12_add_safes(STACK *safes) VELPKI_NOEXCEPT;
/** Makes safes, which stay the caller's, the content of a file, which is made when missing; a MAC that it had goes. 0,
 * or 1 for null, what cannot be encoded, and when memory ends. */
VELPKI_API int P12_AUTH_SAFE_to_PKCS12(P12_AUTH_SAFE *safes, PKCS12 **p12) VELPKI_NOEXCEPT;
/** @} */

/** @name The MAC of a file
 * @{ */
/** Computes the MAC (RFC 7292 appendix B) over SHA-1 (digest 0), SHA-256, SHA-384, SHA-512 or HAS-160. What the MAC
 * data already have of digest, salt and iteration count stays. The salt is drawn unless given: `salt_length` octets, 8
 * when that is below 1. Codes: F_SET_PKCS12_MAC with 49, ERR_P12_MAC_INIT or ERR_P12_MAC_GEN.
 * @warning A count below 17 is not written, and of 256 to 271 the octet written is 0 to 15. The MAC is computed with
 * the count that is written, 1 when none is. */
VELPKI_API int set_PKCS12_mac(PKCS12 *p12, const char *password, int length, const unsigned char *salt, int salt_length,
                              int iteration, int digest_id) VELPKI_NOEXCEPT;
/** As set_PKCS12_mac, its warning included, with a password in UTF-8. */
VELPKI_API int set_PKCS12_mac_UTF8(PKCS12 *p12, const char *password, int length, const unsigned char *salt,
                                   int salt_length, int iteration, int digest_id) VELPKI_NOEXCEPT;
/** Lends the iteration count of the MAC; null when there is none. */
VELPKI_API BIGINT *get_PKCS12_MAC_iter(const PKCS12 *p12) VELPKI_NOEXCEPT;
/** Sets the count from big-endian octets; MAC data are made when missing. 0, or 1 for null, no octets, and when memory
 * ends. */
VELPKI_API int set_PKCS12_MAC_iter(PKCS12 *p12, const unsigned char *bytes, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Key derivation
 * @{ */
/** The derivation of RFC 7292 B.2 into `out_length` octets, with the digest that the unit was started for; the unit is
 * not changed. `id` is 1 for a key, 2 for an IV, 3 for a MAC key. The password is UTF-16BE with its final zeros. 0, or
 * a PKV_ERR_ code without function: BAD_VALUE for a length, id or fewer than one iteration, NULL for salt, output or
 * unit, UNSUPPORTED for a unit that is not started. */
VELPKI_API int get_PKCS12_key_UNI(const unsigned char *password, int length, const unsigned char *salt, int salt_length,
                                  int id, int iterations, int out_length, unsigned char *out,
                                  DIGEST_UNIT *digest) VELPKI_NOEXCEPT;
/** As get_PKCS12_key_UNI, with a password of which each octet is a character. */
VELPKI_API int gen_PKCS12_key_ASC(const char *password, int length, const unsigned char *salt, int salt_length, int id,
                                  int iterations, int out_length, unsigned char *out,
                                  DIGEST_UNIT *digest) VELPKI_NOEXCEPT;
/** As get_PKCS12_key_UNI, with a password in UTF-8, BAD_VALUE for text that is none. */
VELPKI_API int gen_PKCS12_key_UTF8(const char *password, int length, const unsigned char *salt, int salt_length, int id,
                                   int iterations, int out_length, unsigned char *out,
                                   DIGEST_UNIT *digest) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing PKCS12
 * @{ */
/** A file as DER, the usual form, or under the PEM label "PKCS12"; results as asn1_io.h says. */
VELPKI_API int writeDER_PKCS12_to_Binary(PKCS12 *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_PKCS12_to_FILE(PKCS12 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS12_to_Binary(PKCS12 *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_PKCS12_to_FILE(PKCS12 *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS12_from_Binary(PKCS12 **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_PKCS12_from_File(PKCS12 **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS12_from_Binary(PKCS12 **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_PKCS12_from_File(PKCS12 **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
