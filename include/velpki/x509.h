/* velpki/x509.h: names, algorithm identifiers, attributes, extension records, public keys and certificates (RFC 5280).
 *
 * Families (new_, free_, clean_, dup_, X_to_Seq, Seq_to_X, and the eight readers and writers of DER and PEM) behave as
 * docs/conventions.md says of SAMPLE. Members are for reading; change them through the functions, which drop what a
 * record keeps beside its members. Conventions: docs/conventions.md. */
#ifndef VELPKI_X509_H
#define VELPKI_X509_H

#include <velpki/asn1.h>
#include <velpki/ber.h>
#include <velpki/stack.h>

VELPKI_BEGIN

/* Records. */

/* One attribute of a name, which is one relative distinguished name. `value->type` is the string type as encoded. */
typedef struct {
  OBJECT_IDENTIFIER *type;
  ASN1_STRING *value;
  int rdn; /* 0, or in _RFC5280 functions: a number that consecutive children of one multi-valued RDN share, or -1 for
            * an RDN without attributes, whose type and value are null */
} X509_NAME_CHILD;
typedef STACK X509_NAME; /* of X509_NAME_CHILD, in encoding order */

typedef struct {
  OBJECT_IDENTIFIER *algorithm;
  ASN1_STRING *parameters; /* null when absent; a NULL is a string of type 5 */
  int shares;              /* further lists that hold this record, see dup_X509_ALGO_IDENTIFIERS */
} X509_ALGO_IDENTIFIER;
typedef STACK X509_ALGO_IDENTIFIERS; /* of X509_ALGO_IDENTIFIER */

typedef struct {
  int type;    /* the value's identifier octet */
  void *value; /* an ASN1_UNIT when bit 0x20 of the type is set, else an ASN1_STRING */
} X509_ATTRIBUTE_DATA;
typedef struct {
  OBJECT_IDENTIFIER *type;
  STACK *values; /* of X509_ATTRIBUTE_DATA */
} X509_ATTRIBUTE;
typedef STACK X509_ATTRIBUTES; /* of X509_ATTRIBUTE */

typedef struct {
  OBJECT_IDENTIFIER *object;
  unsigned char critical; /* 0 or 1 */
  ASN1_STRING *value;     /* OCTET STRING whose octets are the extension's DER value */
} X509_EXTENSION;
typedef STACK X509_EXTENSIONS; /* of X509_EXTENSION */

enum { ASYMMETRIC_KEY_RSA = 1, ASYMMETRIC_KEY_KCDSA = 2, ASYMMETRIC_KEY_ECC = 3 };
typedef struct {
  int type;  /* one of ASYMMETRIC_KEY_, 0 when empty */
  void *key; /* RSA_UNIT, KCDSA_UNIT or ECC_UNIT, owned */
} ASYMMETRIC_KEY;

typedef struct {
  OBJECT_IDENTIFIER *algorithm;
  BIT_STRING *subjectPublicKey; /* as decoded */
  ASYMMETRIC_KEY *key;          /* made of the two above */
  ASN1_STRING *parameters;      /* kept by the _RFC5280 decoder for keys that it does not know */
} X509_PUBKEY;

enum { X509_TIME_UTC = 0, X509_TIME_GENERALIZED = 1 };
typedef struct {
  int type; /* one of X509_TIME_ */
  ASN1_STRING *time;
} X509_TIME;

typedef struct {
  UTF8_STRING *friendlyName;
  OCTET_STRING *localKeyID;
} X509_AUX;

typedef struct {
  unsigned char version; /* 0 for v1, 1 for v2, 2 for v3 */
  BIGINT *serialNumber;
  OBJECT_IDENTIFIER *signature;
  X509_NAME *issuer;
  X509_TIME *notBefore;
  X509_TIME *notAfter;
  X509_NAME *subject;
  X509_PUBKEY *subjectPublicKeyInfo;
  BIT_STRING *issuerUniqueID;  /* neither read nor written but by the _RFC5280 functions */
  BIT_STRING *subjectUniqueID; /* likewise */
  X509_EXTENSIONS *extensions; /* null when absent */
} X509_TBS_CERT;

/* The octets that a certificate was decoded from; opaque. */
typedef struct x509_received X509_RECEIVED;
typedef struct {
  X509_TBS_CERT *tbs;
  OBJECT_IDENTIFIER *sig_alg;
  BIT_STRING *sig_value;
  X509_AUX *aux;           /* never encoded into the certificate */
  X509_RECEIVED *received; /* dropped by every setter */
} X509_CERT;
typedef STACK X509_CERTIFICATES; /* of X509_CERT */

typedef struct {
  X509_CERT *forward;
  X509_CERT *reverse;
} X509_CERT_PAIR;

/* Names (RFC 5280 4.1.2.4). */

VELPKI_API X509_NAME *new_X509_NAME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_NAME(X509_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME *dup_X509_NAME(const X509_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME_CHILD *new_X509_NAME_CHILD(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_NAME_CHILD(X509_NAME_CHILD *p) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME_CHILD *dup_X509_NAME_CHILD(const X509_NAME_CHILD *p) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_NAME_count(const X509_NAME *name) VELPKI_NOEXCEPT; /* -1 for null */
VELPKI_API X509_NAME_CHILD *get_X509_NAME_CHILD(const X509_NAME *name, int index) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_NAME_CHILD_OID(const X509_NAME_CHILD *child) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *get_X509_NAME_CHILD_data(const X509_NAME_CHILD *child) VELPKI_NOEXCEPT;
/* get_X509_NAME_index_by_OID returns the first index after `last` (from 0 when it is negative) whose type equals `oid`;
 * -1 when there is none. Passing the result back finds the next one. */
VELPKI_API int get_X509_NAME_index_by_OID(const X509_NAME *name, const OBJECT_IDENTIFIER *oid,
                                          int last) VELPKI_NOEXCEPT;
/* add_X509_NAME_child inserts a deep copy, appending when `position` is below 0 or above the count; 0, or 1 on failure.
 * add_X509_NAME_child_OID builds the child from a string type and octets (a negative length measures NUL-terminated
 * text); the _index form names the type by its registry row. The strings are not checked against their type.
 * @warning Text is stored as octets: for a BMPString it must be UCS-2 already, and a negative length stops at its first
 * zero octet. add_X509_NAME_child_OID_UTF8 takes UTF-8 and converts it to the string type. */
VELPKI_API int add_X509_NAME_child(X509_NAME *name, const X509_NAME_CHILD *child, int position) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_NAME_child_OID(X509_NAME *name, const OBJECT_IDENTIFIER *oid, int type,
                                       const unsigned char *bytes, int length, int position) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_NAME_child_OID_UTF8(X509_NAME *name, const OBJECT_IDENTIFIER *oid, int type, const char *text,
                                            int length, int position) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_NAME_child_OID_index(X509_NAME *name, int oid_index, int type, const unsigned char *bytes,
                                             int length, int position) VELPKI_NOEXCEPT;
VELPKI_API void remove_X509_NAME_child(X509_NAME *name, int index) VELPKI_NOEXCEPT;
/* get_X509_NAME_hash digests the DER octets of a name into `out` (PKV_MAX_DIGEST_LENGTH octets) and returns the
 * digest's length; -1 for null, an empty name and any failure. */
VELPKI_API int get_X509_NAME_hash(const X509_NAME *name, int digest_id, unsigned char *out) VELPKI_NOEXCEPT;
/* cmp_X509_NAME returns 0 when both names have the same DER octets, 1 when either is null or cannot be encoded, else
 * -1. It is no ordering function.
 * @warning Text that differs only in string type, case or spaces compares unequal; cmp_X509_NAME_RFC5280 compares as
 * RFC 5280 7.1 says (case and spaces folded, any string type, each RDN as a set) and returns 0, 1 for null, or -1. */
VELPKI_API int cmp_X509_NAME(const X509_NAME *a, const X509_NAME *b) VELPKI_NOEXCEPT;
VELPKI_API int cmp_X509_NAME_RFC5280(const X509_NAME *a, const X509_NAME *b) VELPKI_NOEXCEPT;
/* print_X509_NAME writes "  - CN=..." lines to standard output; control characters are made visible. */
VELPKI_API void print_X509_NAME(const X509_NAME *name) VELPKI_NOEXCEPT;
/* @warning Seq_to_X509_NAME keeps the first attribute of a multi-valued RDN only, so different names may decode alike;
 * the _RFC5280 pair keeps them all, and values of every string type. Codes: F_SEQ_TO_X509_NAME with reason 49 or
 * ERR_ASN1_DECODING; F_X509_NAME_TO_SEQ with 49, 2B (a missing child) or ERR_ASN1_ENCODING. */
VELPKI_API int X509_NAME_to_Seq(const X509_NAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_NAME(ASN1_UNIT *in, X509_NAME **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_NAME_to_Seq_RFC5280(const X509_NAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_NAME_RFC5280(ASN1_UNIT *in, X509_NAME **out) VELPKI_NOEXCEPT;
/* Seq_to_X509_NAME_strict refuses what the plain form drops: F_SEQ_TO_X509_NAME with ERR_MULTIVALUED_RDN. */
VELPKI_API int Seq_to_X509_NAME_strict(ASN1_UNIT *in, X509_NAME **out) VELPKI_NOEXCEPT;

/* Algorithm identifiers (RFC 5280 4.1.1.2). */

VELPKI_API X509_ALGO_IDENTIFIER *new_X509_ALGO_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ALGO_IDENTIFIER(X509_ALGO_IDENTIFIER *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ALGO_IDENTIFIER *dup_X509_ALGO_IDENTIFIER(const X509_ALGO_IDENTIFIER *p) VELPKI_NOEXCEPT;
/* set_X509_ALGO_IDENTIFIER_value stores copies; 0, or 1 (unchanged) for a null identifier or OID or a failed copy.
 * @warning Null parameters store an explicit NULL, which ECDSA, EdDSA and PSS must not have;
 * set_X509_ALGO_IDENTIFIER_value_RFC5280 leaves them out. */
VELPKI_API int set_X509_ALGO_IDENTIFIER_value(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid,
                                              const ASN1_STRING *parameters) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_ALGO_IDENTIFIER_value_RFC5280(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid,
                                                      const ASN1_STRING *parameters) VELPKI_NOEXCEPT;
/* A SEQUENCE of one or two elements decodes; another number is F_SEQ_TO_X509_ALGO_IDENTIFIER with reason 2B. */
VELPKI_API int X509_ALGO_IDENTIFIER_to_Seq(const X509_ALGO_IDENTIFIER *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_ALGO_IDENTIFIER(ASN1_UNIT *in, X509_ALGO_IDENTIFIER **out) VELPKI_NOEXCEPT;
VELPKI_API X509_ALGO_IDENTIFIERS *new_X509_ALGO_IDENTIFIERS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ALGO_IDENTIFIERS(X509_ALGO_IDENTIFIERS *p) VELPKI_NOEXCEPT;
/* @warning dup_X509_ALGO_IDENTIFIERS shares the elements: a change to one shows in both lists. Each list is released
 * with its own free_. dup_X509_ALGO_IDENTIFIERS_strict copies them. */
VELPKI_API X509_ALGO_IDENTIFIERS *dup_X509_ALGO_IDENTIFIERS(const X509_ALGO_IDENTIFIERS *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ALGO_IDENTIFIERS *dup_X509_ALGO_IDENTIFIERS_strict(const X509_ALGO_IDENTIFIERS *p) VELPKI_NOEXCEPT;
/* The list is a SET OF AlgorithmIdentifier, in list order. */
VELPKI_API int X509_ALGO_IDENTIFIERS_to_Seq(const X509_ALGO_IDENTIFIERS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_ALGO_IDENTIFIERS(ASN1_UNIT *in, X509_ALGO_IDENTIFIERS **out) VELPKI_NOEXCEPT;

/* Attributes (X.501). */

VELPKI_API X509_ATTRIBUTE *new_X509_ATTRIBUTE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ATTRIBUTE(X509_ATTRIBUTE *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE *dup_X509_ATTRIBUTE(const X509_ATTRIBUTE *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE_DATA *new_X509_ATTRIBUTE_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ATTRIBUTE_DATA(X509_ATTRIBUTE_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE_DATA *dup_X509_ATTRIBUTE_DATA(const X509_ATTRIBUTE_DATA *p) VELPKI_NOEXCEPT;
/* These return 0, or 1 on failure. `value` is an ASN1_UNIT when `type` has bit 0x20, else an ASN1_STRING; it is copied.
 * @warning add_X509_ATTRIBUTE_set takes the string itself over, under the string's own type, and the caller must not
 * release it after success; a string whose type has bit 0x20 becomes the unit that it describes. */
VELPKI_API int set_X509_ATTRIBUTE_OID(X509_ATTRIBUTE *attribute, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_ATTRIBUTE_data(X509_ATTRIBUTE *attribute, int type, const void *value) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_ATTRIBUTE_set(X509_ATTRIBUTE *attribute, ASN1_STRING *string) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_ATTRIBUTE_OID(const X509_ATTRIBUTE *attribute) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_ATTRIBUTE_count(const X509_ATTRIBUTE *attribute) VELPKI_NOEXCEPT; /* values; 0 for null */
VELPKI_API int get_X509_ATTRIBUTE_data_type(const X509_ATTRIBUTE *attribute, int index) VELPKI_NOEXCEPT; /* or -1 */
VELPKI_API void *get_X509_ATTRIBUTE_data(const X509_ATTRIBUTE *attribute, int index) VELPKI_NOEXCEPT;
/* create_X509_ATTRIBUTE_OID sets the OID of `*attribute` and adds a value; when the address or what it holds is null it
 * makes a new attribute, stored at a non-null address. Null on failure, when only an attribute made here is released.
 */
VELPKI_API X509_ATTRIBUTE *create_X509_ATTRIBUTE_OID(X509_ATTRIBUTE **attribute, const OBJECT_IDENTIFIER *oid, int type,
                                                     const void *value) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE *create_X509_ATTRIBUTE_index(X509_ATTRIBUTE **attribute, int oid_index, int type,
                                                       const void *value) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTES *new_X509_ATTRIBUTES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ATTRIBUTES(X509_ATTRIBUTES *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTES *dup_X509_ATTRIBUTES(const X509_ATTRIBUTES *p) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_ATTRIBUTES_count(const X509_ATTRIBUTES *list) VELPKI_NOEXCEPT; /* -1 for null */
VELPKI_API X509_ATTRIBUTE *get_X509_ATTRIBUTES_child(const X509_ATTRIBUTES *list, int index) VELPKI_NOEXCEPT;
/* Insert a deep copy; a position outside the list appends. 0, or 1 on failure. */
VELPKI_API int add_X509_ATTRIBUTES_child(X509_ATTRIBUTES *list, const X509_ATTRIBUTE *attribute,
                                         int position) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_ATTRIBUTES_child_OID(X509_ATTRIBUTES *list, const OBJECT_IDENTIFIER *oid, int type,
                                             const void *value, int position) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_ATTRIBUTES_OID_INDEX(X509_ATTRIBUTES *list, int oid_index, int type, const void *value,
                                             int position) VELPKI_NOEXCEPT;
VELPKI_API int X509_ATTRIBUTE_to_Seq(const X509_ATTRIBUTE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_ATTRIBUTE(ASN1_UNIT *in, X509_ATTRIBUTE **out) VELPKI_NOEXCEPT;
/* The list is a SET OF Attribute. @warning X509_ATTRIBUTES_to_Seq keeps the order of the list and of the values, which
 * is DER only when they are sorted; X509_ATTRIBUTES_to_Seq_RFC5280 sorts the encodings (X.690 11.6). */
VELPKI_API int X509_ATTRIBUTES_to_Seq(const X509_ATTRIBUTES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_ATTRIBUTES_to_Seq_RFC5280(const X509_ATTRIBUTES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_ATTRIBUTES(ASN1_UNIT *in, X509_ATTRIBUTES **out) VELPKI_NOEXCEPT;

/* Extension records (RFC 5280 4.2). */

VELPKI_API X509_EXTENSION *new_X509_EXTENSION(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_EXTENSION(X509_EXTENSION *p) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSION *dup_X509_EXTENSION(const X509_EXTENSION *p) VELPKI_NOEXCEPT;
/* Setters copy; 0, or 1 on failure. */
VELPKI_API int set_X509_EXTENSION_object(X509_EXTENSION *extension, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_EXTENSION_critical(X509_EXTENSION *extension, int critical) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_EXTENSION_data(X509_EXTENSION *extension, const ASN1_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_EXTENSION_object(const X509_EXTENSION *extension) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *get_X509_EXTENSION_data(const X509_EXTENSION *extension) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_EXTENSION_critical(const X509_EXTENSION *extension) VELPKI_NOEXCEPT; /* 0 for null */
/* As create_X509_ATTRIBUTE_OID. */
VELPKI_API X509_EXTENSION *create_X509_EXTENSION_by_OID(X509_EXTENSION **extension, const OBJECT_IDENTIFIER *oid,
                                                        int critical, const ASN1_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSION *create_X509_EXTENSION_by_OID_index(X509_EXTENSION **extension, int oid_index, int critical,
                                                              const ASN1_STRING *value) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_Seq(const X509_EXTENSION *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_EXTENSION(ASN1_UNIT *in, X509_EXTENSION **out) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSIONS *new_X509_EXTENSIONS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_EXTENSIONS(X509_EXTENSIONS *p) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSIONS *dup_X509_EXTENSIONS(const X509_EXTENSIONS *p) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_EXTENSION_count(const X509_EXTENSIONS *list) VELPKI_NOEXCEPT; /* -1 for null */
VELPKI_API X509_EXTENSION *get_X509_EXTENSION(const X509_EXTENSIONS *list, int index) VELPKI_NOEXCEPT;
VELPKI_API void remove_X509_EXTENSION(X509_EXTENSIONS *list, int index) VELPKI_NOEXCEPT; /* and releases it */
/* add_X509_EXTENSION inserts a deep copy into the list at `*list`, which it makes when that is null; a position outside
 * the list appends. 0, or 1 on failure. */
VELPKI_API int add_X509_EXTENSION(X509_EXTENSIONS **list, const X509_EXTENSION *extension,
                                  int position) VELPKI_NOEXCEPT;
/* The first index after `last` (from 0 when it is negative), or -1; -2 when the registry row has no OID. */
VELPKI_API int get_X509_EXTENSION_index_by_OID(const X509_EXTENSIONS *list, const OBJECT_IDENTIFIER *oid,
                                               int last) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_EXTENSION_index_by_OID_index(const X509_EXTENSIONS *list, int oid_index,
                                                     int last) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSIONS_to_Seq(const X509_EXTENSIONS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/* @warning Seq_to_X509_EXTENSIONS takes duplicates, an empty list and a written FALSE; Seq_to_X509_EXTENSIONS_strict
 * refuses them with ERR_DUPLICATE_EXTENSION, ERR_EMPTY_LIST and ERR_NOT_CANONICAL. */
VELPKI_API int Seq_to_X509_EXTENSIONS(ASN1_UNIT *in, X509_EXTENSIONS **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_EXTENSIONS_strict(ASN1_UNIT *in, X509_EXTENSIONS **out) VELPKI_NOEXCEPT;

/* Keys. */

VELPKI_API ASYMMETRIC_KEY *new_ASYMMETRIC_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ASYMMETRIC_KEY(ASYMMETRIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API ASYMMETRIC_KEY *dup_ASYMMETRIC_KEY(const ASYMMETRIC_KEY *p) VELPKI_NOEXCEPT;
/* cmp_ASYMMETRIC_KEY compares types, public values and domain: 0 equal, 1 not (also for null and empty keys). */
VELPKI_API int cmp_ASYMMETRIC_KEY(const ASYMMETRIC_KEY *a, const ASYMMETRIC_KEY *b) VELPKI_NOEXCEPT;
/* X_UNIT_to_ASYMMETRIC_KEY wraps a copy of a provider key; ASYMMETRIC_KEY_to_X_UNIT lends it, null for another type. */
VELPKI_API ASYMMETRIC_KEY *RSA_UNIT_to_ASYMMETRIC_KEY(RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API ASYMMETRIC_KEY *KCDSA_UNIT_to_ASYMMETRIC_KEY(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API ASYMMETRIC_KEY *ECC_UNIT_to_ASYMMETRIC_KEY(ECC_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API RSA_UNIT *ASYMMETRIC_KEY_to_RSA_UNIT(const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API KCDSA_UNIT *ASYMMETRIC_KEY_to_KCDSA_UNIT(const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API ECC_UNIT *ASYMMETRIC_KEY_to_ECC_UNIT(const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;

/* SubjectPublicKeyInfo (RFC 5280 4.1.2.7): rsaEncryption, KCDSA1 and id-ecPublicKey on prime256v1; anything else is
 * F_SEQ_TO_X509_PUBKEY with ERR_ASN1_DECODING, a BIT STRING that holds no RSA or KCDSA key with reason 38. A record
 * passed to a failing decoder is left cleared. Seq_to_X509_PUBKEY_RFC5280 takes every algorithm: `key` is null for
 * those that it does not know, and the pair writes back what was read. A key for id-RSASSA-PSS is an RSA key. */
VELPKI_API X509_PUBKEY *new_X509_PUBKEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_PUBKEY(X509_PUBKEY *p) VELPKI_NOEXCEPT;
VELPKI_API X509_PUBKEY *dup_X509_PUBKEY(const X509_PUBKEY *p) VELPKI_NOEXCEPT;
VELPKI_API int cmp_X509_PUBKEY(const X509_PUBKEY *a, const X509_PUBKEY *b) VELPKI_NOEXCEPT; /* 0 equal, 1 not */
/* These fill a record from a provider key, of which only the public numbers are stored; 0, or 1 (unchanged). */
VELPKI_API int set_X509_PUBKEY_rsa(X509_PUBKEY *pubkey, RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_PUBKEY_kcdsa(X509_PUBKEY *pubkey, KCDSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_PUBKEY_ecc(X509_PUBKEY *pubkey, ECC_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_PUBKEY(ASN1_UNIT *in, X509_PUBKEY **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_PUBKEY_to_Seq(const X509_PUBKEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_PUBKEY_RFC5280(ASN1_UNIT *in, X509_PUBKEY **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_PUBKEY_to_Seq_RFC5280(const X509_PUBKEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;

/* Key octets. A reader fills the provider key at `*out`, which it makes when that is null and leaves cleared on
 * failure; a writer stores a new string or unit. Codes: each function's own with 49, 2B (no elements), 3C,
 * ERR_ASN1_DECODING or ERR_ASN1_ENCODING.
 *
 * RSA: SEQUENCE { n, e [, d [, p, q, dP, dQ, qInv]] }. @warning Seq_to_RSA_KEY reads the first eight elements of a
 * longer SEQUENCE, such as a PKCS#1 private key with its version, as if they were these (n becomes 0, and every use of
 * the key fails); and RSA_KEY_to_Seq writes the private numbers of a private key. The _strict readers take exactly 2, 3
 * or 8 elements (the public one 2), the strict writer writes two. */
VELPKI_API int BITSTRING_to_RSA_KEY(const ASN1_STRING *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int BITSTRING_to_RSA_KEY_strict(const ASN1_STRING *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int RSA_KEY_to_BITSTRING(RSA_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
VELPKI_API int RSA_KEY_to_BITSTRING_strict(RSA_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_RSA_KEY(ASN1_UNIT *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_RSA_KEY_strict(ASN1_UNIT *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int RSA_KEY_to_Seq(RSA_UNIT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/* KCDSA: the public value y as an INTEGER. */
VELPKI_API int BITSTRING_to_KCDSA_KEY(const ASN1_STRING *in, KCDSA_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int KCDSA_KEY_to_BITSTRING(KCDSA_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_KCDSA_KEY(ASN1_UNIT *in, KCDSA_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int KCDSA_KEY_to_Seq(KCDSA_UNIT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/* ECC on prime256v1: 04 and both coordinates. @warning The plain writer leaves leading zeros of a coordinate out, so
 * one key in 128 is shorter than 65 octets and is not read back; the _RFC5280 writer pads (SEC 1 2.3.3). The plain
 * reader takes any two halves of equal length, the strict one 65 octets that are a point of the curve. */
VELPKI_API int BITSTRING_to_ECC_KEY(const ASN1_STRING *in, ECC_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int BITSTRING_to_ECC_KEY_strict(const ASN1_STRING *in, ECC_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int ECC_KEY_to_BITSTRING(ECC_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
VELPKI_API int ECC_KEY_to_BITSTRING_RFC5280(ECC_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
/* set_ECURVE_from_list loads the curve of a registry row (415, prime256v1) into `*curve`, which is made when null; 1
 * for any other row. get_ECURVE_OID_from_name replaces `*oid` by the OID of a curve in the list; 0, or 1. */
VELPKI_API int set_ECURVE_from_list(ECURVE **curve, int index) VELPKI_NOEXCEPT;
VELPKI_API int get_ECURVE_OID_from_name(OBJECT_IDENTIFIER **oid, const char *name) VELPKI_NOEXCEPT;

/* get_X509_PUBLIC_KEY_hash digests the key octets (the BIT STRING's content) of an RSA or KCDSA certificate, encoded
 * anew, into `out` (PKV_MAX_DIGEST_LENGTH octets) and returns the digest's length; 0 for ECC keys and on failure. The
 * _RFC5280 form digests the received key octets of any key. */
VELPKI_API int get_X509_PUBLIC_KEY_hash(const X509_CERT *cert, int digest_id, unsigned char *out) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_PUBLIC_KEY_hash_RFC5280(const X509_CERT *cert, int digest_id,
                                                unsigned char *out) VELPKI_NOEXCEPT;
/* Whether a private key belongs to the certificate's public key: 0, or 1 (another key or type, ECC, null). */
VELPKI_API int check_X509_keypair(const X509_CERT *cert, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API int check_X509_RSA_keypair(const X509_CERT *cert, RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int check_X509_KCDSA_keypair(const X509_CERT *cert, KCDSA_UNIT *key) VELPKI_NOEXCEPT;

/* Certificates (RFC 5280 4.1). */

VELPKI_API X509_TIME *new_X509_TIME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_TIME(X509_TIME *p) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *dup_X509_TIME(const X509_TIME *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_TIME(X509_TIME *p) VELPKI_NOEXCEPT;
/* asn1TimeToX509_TIME_RFC5280 makes a UTCTime to 2049 and a GeneralizedTime from 2050 on (RFC 5280 4.1.2.5); `time` is
 * not changed. */
VELPKI_API X509_TIME *asn1TimeToX509_TIME_RFC5280(const ASN1_TIME *time) VELPKI_NOEXCEPT;

/* X509_AUX ::= SEQUENCE { friendlyName UTF8String OPTIONAL, localKeyID [0] OCTET STRING OPTIONAL }. Failure is plain 1.
 * Setters copy, and null takes the value away. */
VELPKI_API X509_AUX *new_X509_AUX(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_AUX(X509_AUX *p) VELPKI_NOEXCEPT;
VELPKI_API X509_AUX *dup_X509_AUX(const X509_AUX *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_AUX(X509_AUX *p) VELPKI_NOEXCEPT;
VELPKI_API int X509_AUX_to_Seq(const X509_AUX *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_AUX(ASN1_UNIT *in, X509_AUX **out) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_AUX_friendly(X509_CERT *cert, const UTF8_STRING *name) VELPKI_NOEXCEPT;
VELPKI_API UTF8_STRING *get_X509_AUX_friendly(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_AUX_localkey(X509_CERT *cert, const OCTET_STRING *id) VELPKI_NOEXCEPT;
VELPKI_API OCTET_STRING *get_X509_AUX_localkey(const X509_CERT *cert) VELPKI_NOEXCEPT;

/* Setters copy; each returns 0 or its own code with reason 49 (null), 2B (a version above 2) or 3C. Getters lend. */
VELPKI_API int set_X509_version(X509_CERT *cert, int version) VELPKI_NOEXCEPT;
VELPKI_API int get_X509_version(const X509_CERT *cert) VELPKI_NOEXCEPT; /* -1 for null */
VELPKI_API int set_X509_serial(X509_CERT *cert, const BIGINT *serial) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *get_X509_serial(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_signature(X509_CERT *cert, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_signature(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_issuer(X509_CERT *cert, const X509_NAME *issuer) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME *get_X509_issuer(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_subject(X509_CERT *cert, const X509_NAME *subject) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME *get_X509_subject(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_notBefore(X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *get_X509_notBefore(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_notAfter(X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *get_X509_notAfter(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API int set_X509_pub_key(X509_CERT *cert, const X509_PUBKEY *pubkey) VELPKI_NOEXCEPT;
VELPKI_API X509_PUBKEY *get_X509_SPKI(const X509_CERT *cert) VELPKI_NOEXCEPT;
/* set_X509_extensions returns 0 or plain 1; null takes the list away. */
VELPKI_API int set_X509_extensions(X509_CERT *cert, const X509_EXTENSIONS *extensions) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSIONS *get_X509_extensions(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API OBJECT_IDENTIFIER *get_X509_sig_alg(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API ASN1_STRING *get_X509_sig_value(const X509_CERT *cert) VELPKI_NOEXCEPT;
/* get_X509_received lends the octets that a certificate was decoded from, its `tbs` part when `tbs` is not 0; null,
 * with 0 in `*length`, for one that was built or changed. */
VELPKI_API const unsigned char *get_X509_received(const X509_CERT *cert, int tbs, int *length) VELPKI_NOEXCEPT;

VELPKI_API X509_TBS_CERT *new_X509_TBS_CERT(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_TBS_CERT(X509_TBS_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API X509_TBS_CERT *dup_X509_TBS_CERT(const X509_TBS_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_TBS_CERT(X509_TBS_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CERT *new_X509_CERT(void) VELPKI_NOEXCEPT; /* with an empty `tbs` */
VELPKI_API void free_X509_CERT(X509_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CERT(X509_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CERT *dup_X509_CERT(const X509_CERT *p) VELPKI_NOEXCEPT;
/* Codes of the TBS: F_X509_TBS_CERT_TO_SEQ with ERR_TBS_CERT_SERIAL, _SIGNATURE, _ISSUER, _VALIDITY, _SUBJECT or _SPKI
 * for the first field that is missing, 3C for an OID text that is none, else ERR_ASN1_ENCODING;
 * F_SEQ_TO_X509_TBS_CERT with ERR_ASN1_DECODING, or 2B for a value that is no SEQUENCE.
 * @warning Both signature algorithms are written with NULL parameters, whatever the algorithm, and those read are not
 * kept. A TBS with a unique identifier is refused, and at most one element after the public key is looked at. */
VELPKI_API int X509_TBS_CERT_to_Seq(const X509_TBS_CERT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_TBS_CERT(ASN1_UNIT *in, X509_TBS_CERT **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_CERT_to_Seq(const X509_CERT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CERT(ASN1_UNIT *in, X509_CERT **out) VELPKI_NOEXCEPT;

/* The _RFC5280 pair reads and writes the standard form: unique identifiers, every key, every string type, multi-valued
 * RDNs, serial numbers with their sign, and nothing left over. What was received is written back octet for octet; a
 * certificate that was built or changed gets NULL parameters for RSA and KCDSA algorithms, those of SHA-256 for PSS,
 * and none for the others. */
VELPKI_API int X509_CERT_to_Seq_RFC5280(const X509_CERT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CERT_RFC5280(ASN1_UNIT *in, X509_CERT **out) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CERT_from_Binary_RFC5280(X509_CERT **out, const unsigned char *data,
                                                     int length) VELPKI_NOEXCEPT;

/* gen_SIG_X509_Cert signs with the algorithm that the TBS names and a private RSA or KCDSA key, and sets `sig_alg` and
 * `sig_value`; 1 for null and any other key. Codes: F_GEN_RSASIGN_TBS_CERT or F_GEN_KCDSASIGN_TBS_CERT with reason 2B
 * for an algorithm that the registry does not give a digest and scheme, 49, ERR_ASN1_ENCODING, or the provider's code.
 * @warning RSASSA-PSS and kcdsa1 have no digest of their own and end in reason 2B. The digest of KCDSA follows from the
 * key, whatever the algorithm says. */
VELPKI_API int gen_SIG_X509_Cert(X509_CERT *cert, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API int gen_RSA_SIG_X509_TBS_CERT(X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid,
                                         RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int gen_KCDSA_SIG_X509_TBS_CERT(X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid,
                                           KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/* gen_SIG_X509_Cert_RFC5280 signs the standard encoding with a private RSA (PKCS#1 v1.5 or PSS), ECDSA or KCDSA key and
 * the digest that the TBS's algorithm names, and keeps the finished octets as if they had been received. The OID of
 * RSASSA-PSS names none: SHA-256, or the digest given to the _ex form, which other algorithms do not look at; MGF1 has
 * the same digest, and the salt its length. Codes: F_GEN_RSASIGN_TBS_CERT with 49, 48 (an algorithm that is not among
 * these), ERR_ALGORITHM_MISMATCH (a key of another kind), 3C, ERR_ASN1_ENCODING, those of the TBS, or the provider's.
 */
VELPKI_API int gen_SIG_X509_Cert_RFC5280(X509_CERT *cert, const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API int gen_SIG_X509_Cert_RFC5280_ex(X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                            int pss_digest_id) VELPKI_NOEXCEPT;
/* verify_SIG_X509_CERT verifies with the issuer's key: 0 valid; 1 for null and ECC keys; F_VERIFY_RSASIGN_TBS_CERT or
 * F_VERIFY_KCDSASIGN_TBS_CERT with 2B, 49 or ERR_ASN1_DECODING; or the provider's code (PKV_ERR_MISMATCH for a
 * signature that is not valid).
 * @warning The TBS is encoded anew and the signature verified over those octets: certificates whose TBS is not this
 * library's own DER do not verify, and what decoding drops (a second attribute of an RDN, elements after the
 * extensions, parameters of algorithms) is not covered. verify_SIG_X509_CERT_RFC5280 verifies over the received octets.
 */
VELPKI_API int verify_SIG_X509_CERT(X509_CERT *cert, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
VELPKI_API int verify_RSA_SIG_X509_CERT(X509_CERT *cert, RSA_UNIT *rsa_key) VELPKI_NOEXCEPT;
VELPKI_API int verify_KCDSA_SIG_X509_CERT(X509_CERT *cert, KCDSA_UNIT *kcdsa_key) VELPKI_NOEXCEPT;
/* verify_SIG_X509_CERT_RFC5280 verifies the received octets of a decoded certificate with the issuer's public key: RSA
 * (PKCS#1 v1.5 and PSS), ECDSA, Ed25519 and KCDSA, the digest as the algorithm says. PSS takes digest, mask generation
 * and the exact length of the salt from its parameters, which have to be there; a key for id-RSASSA-PSS verifies PSS
 * alone, and only what its own parameters allow (RFC 4055). Codes: F_VERIFY_RSASIGN_TBS_CERT with 49 (null, or no
 * received octets), ERR_ALGORITHM_MISMATCH (inside and outside differ, parameters that do not fit, or the key is of
 * another kind), ERR_UNUSED_BITS, 48 (an algorithm, key or digest that is not among these), ERR_ASN1_DECODING, or the
 * provider's code. */
VELPKI_API int verify_SIG_X509_CERT_RFC5280(const X509_CERT *cert, const X509_PUBKEY *issuer_key) VELPKI_NOEXCEPT;
/* verify_X509_validity compares the certificate's dates with a time, null meaning now. Codes: F_VERIFY_X509_VALIDITY
 * with ERR_INVALID_X509_TIME_TYPE, ERR_CERT_NOT_BEFORE and ERR_CERT_NOT_AFTER (unreadable), ERR_INVALID_CERT_NOT_BEFORE
 * and ERR_INVALID_CERT_NOT_AFTER (outside), 49, 3C (no clock).
 * @warning Both boundaries are outside, and a missing date is not checked; verify_X509_validity_RFC5280 has the
 * boundaries inside (RFC 5280 4.1.2.5) and requires both dates in their standard form. */
VELPKI_API int verify_X509_validity(const X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
VELPKI_API int verify_X509_validity_RFC5280(const X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
/* X509_CERT_digest digests the certificate's own DER into `out` (PKV_MAX_DIGEST_LENGTH octets); 0 on success.
 * @warning That is the encoding made anew. The fingerprint that other programs show is X509_CERT_digest_RFC5280, over
 * the received octets. */
VELPKI_API int X509_CERT_digest(const X509_CERT *cert, int digest_id, unsigned char *out,
                                int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int X509_CERT_digest_RFC5280(const X509_CERT *cert, int digest_id, unsigned char *out,
                                        int *out_length) VELPKI_NOEXCEPT;

VELPKI_API X509_CERTIFICATES *new_X509_CERTIFICATES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CERTIFICATES(X509_CERTIFICATES *p) VELPKI_NOEXCEPT;
VELPKI_API int add_X509_CERTIFICATES(X509_CERTIFICATES *list,
                                     const X509_CERT *cert) VELPKI_NOEXCEPT; /* a copy; 0 or 1 */
/* The first index whose serial number and whole encoding equal the certificate's, or -1. */
VELPKI_API int get_X509_CERTS_index_by_X509_CERT(const X509_CERTIFICATES *certs, const X509_CERT *cert) VELPKI_NOEXCEPT;
/* SEQUENCE OF Certificate. */
VELPKI_API int X509_CERTIFICATES_to_Seq(const X509_CERTIFICATES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CERTIFICATES(ASN1_UNIT *in, X509_CERTIFICATES **out) VELPKI_NOEXCEPT;
/* CertificatePair ::= SEQUENCE { forward [0] EXPLICIT OPTIONAL, reverse [1] EXPLICIT OPTIONAL }, one at least. */
VELPKI_API X509_CERT_PAIR *new_X509_CERT_PAIR(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CERT_PAIR(X509_CERT_PAIR *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CERT_PAIR *dup_X509_CERT_PAIR(const X509_CERT_PAIR *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CERT_PAIR(X509_CERT_PAIR *p) VELPKI_NOEXCEPT;
VELPKI_API int X509_CERT_PAIR_to_Seq(const X509_CERT_PAIR *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CERT_PAIR(ASN1_UNIT *in, X509_CERT_PAIR **out) VELPKI_NOEXCEPT;

/* KCDSASignatureValue ::= SEQUENCE { r BIT STRING, s INTEGER }. Encoding makes a BIT STRING of its DER. Decoding takes
 * any string that holds it, writes s with (bit length + 8) / 8 octets and the two lengths as outputs; it needs 64
 * octets at each buffer and refuses more. 0, or 1 with nothing written. The _n form takes the capacities in the
 * lengths. */
VELPKI_API int encode_KCDSASignatureValue(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                          ASN1_STRING **encoded) VELPKI_NOEXCEPT;
VELPKI_API int decode_KCDSASignatureValue(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                          const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
VELPKI_API int decode_KCDSASignatureValue_n(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                            const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
/* The same two functions under a second spelling. */
VELPKI_API int encode_KCDSASignatrueValue(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                          ASN1_STRING **encoded) VELPKI_NOEXCEPT;
VELPKI_API int decode_KCDSASignatrueValue(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                          const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
/* ECDSA-Sig-Value ::= SEQUENCE { r INTEGER, s INTEGER } (RFC 3279 2.2.3), r and s as big-endian octets; the lengths of
 * the decoder hold the capacities on entry. Codes: F_ENCODE_ECDSA_SIGNATURE_VALUE and F_DECODE_ECDSA_SIGNATURE_VALUE
 * with 49, 2B, 3C, ERR_ASN1_ENCODING or ERR_ASN1_DECODING. */
VELPKI_API int encode_ECDSA_SIGNATURE_VALUE(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                            ASN1_STRING **encoded) VELPKI_NOEXCEPT;
VELPKI_API int decode_ECDSA_SIGNATURE_VALUE(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                            const ASN1_STRING *encoded) VELPKI_NOEXCEPT;

/* print_X509 writes a certificate to standard output; print_X509_CERTIFICATES each one of a list, numbered. Octets that
 * a terminal would act on are made visible. */
VELPKI_API void print_X509(const X509_CERT *cert) VELPKI_NOEXCEPT;
VELPKI_API void print_X509_CERTIFICATES(const X509_CERTIFICATES *certs) VELPKI_NOEXCEPT;

/* Readers and writers. */

/* Labels: "PUBLIC KEY" and "CERTIFICATE". See asn1_io.h for results. */
VELPKI_API int writeDER_X509_PUBKEY_to_Binary(X509_PUBKEY *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_PUBKEY_to_FILE(X509_PUBKEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_PUBKEY_to_Binary(X509_PUBKEY *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_PUBKEY_to_FILE(X509_PUBKEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_PUBKEY_from_Binary(X509_PUBKEY **out, const unsigned char *data,
                                               int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_PUBKEY_from_File(X509_PUBKEY **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_PUBKEY_from_Binary(X509_PUBKEY **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_PUBKEY_from_File(X509_PUBKEY **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_CERT_to_Binary(X509_CERT *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_CERT_to_FILE(X509_CERT *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CERT_to_Binary(X509_CERT *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CERT_to_FILE(X509_CERT *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CERT_from_Binary(X509_CERT **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CERT_from_File(X509_CERT **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CERT_from_Binary(X509_CERT **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CERT_from_File(X509_CERT **out, const char *path) VELPKI_NOEXCEPT;

VELPKI_END

#endif
