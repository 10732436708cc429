/** @file velpki/x509.h
 * Names, algorithm identifiers, attributes, extension records, public keys and certificates (RFC 5280).
 *
 * Start with readPEM_X509_CERT_from_File, or with readDER_X509_CERT_from_Binary_RFC5280, which takes every certificate
 * of the standard and not only those with the keys and names of the house form; then the getters of a certificate,
 * verify_SIG_X509_CERT_RFC5280 and verify_X509_validity_RFC5280. A path of certificates is validated by
 * cpv_validate.h. What stands inside the extensions is in x509v3.h, revocation lists in x509_crl.h, requests in
 * pkcs10.h.
 *
 * Families (new_, free_, clean_, dup_, X_to_Seq, Seq_to_X, and the eight readers and writers of DER and PEM) behave as
 * docs/conventions.md says of SAMPLE. Codes: each function's own with reason 49, 3C, ERR_ASN1_ENCODING or
 * ERR_ASN1_DECODING, where nothing else is said. Members are for reading; change them through the functions, which
 * drop what a record keeps beside its members.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_X509_H
#define VELPKI_X509_H

#include <velpki/asn1.h>
#include <velpki/ber.h>
#include <velpki/stack.h>

VELPKI_BEGIN

/** AttributeTypeAndValue: one attribute of a name, which is one relative distinguished name (RDN). */
typedef struct {
  OBJECT_IDENTIFIER *type; /**< the attribute's OID; its names are in the registry (asn1_objects.h) */
  ASN1_STRING *value;      /**< its `type` is the string type as encoded */
  int rdn; /**< 0, or in _RFC5280 functions: a number that consecutive children of one multi-valued RDN share, or -1 for
              an RDN without attributes, whose type and value are null */
} X509_NAME_CHILD;

/** Name: a list of X509_NAME_CHILD, in encoding order. */
typedef STACK X509_NAME;

/** AlgorithmIdentifier ::= SEQUENCE { algorithm OBJECT IDENTIFIER, parameters ANY OPTIONAL } (RFC 5280 4.1.1.2). */
typedef struct {
  OBJECT_IDENTIFIER *algorithm; /**< its row in the registry says digest and scheme */
  ASN1_STRING *parameters;      /**< null when absent; a NULL is a string of type 5 */
  int shares;                   /**< further lists that hold this record, see dup_X509_ALGO_IDENTIFIERS */
} X509_ALGO_IDENTIFIER;

/** A list of X509_ALGO_IDENTIFIER. */
typedef STACK X509_ALGO_IDENTIFIERS;

/** One value of an attribute. */
typedef struct {
  int type;    /**< the value's identifier octet */
  void *value; /**< an ASN1_UNIT when bit 0x20 of the type is set, else an ASN1_STRING; owned */
} X509_ATTRIBUTE_DATA;

/** Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET OF ANY } (X.501). */
typedef struct {
  OBJECT_IDENTIFIER *type; /**< says what the values are */
  STACK *values;           /**< of X509_ATTRIBUTE_DATA */
} X509_ATTRIBUTE;

/** A list of X509_ATTRIBUTE. */
typedef STACK X509_ATTRIBUTES;

/** Extension ::= SEQUENCE { extnID OBJECT IDENTIFIER, critical BOOLEAN DEFAULT FALSE, extnValue OCTET STRING } (RFC
 * 5280 4.2). */
typedef struct {
  OBJECT_IDENTIFIER *object; /**< extnID */
  unsigned char critical;    /**< 0 or 1 */
  ASN1_STRING *value;        /**< extnValue: the octets are the extension's DER value */
} X509_EXTENSION;

/** A list of X509_EXTENSION. */
typedef STACK X509_EXTENSIONS;

/** Kinds of ASYMMETRIC_KEY. */
enum {
  ASYMMETRIC_KEY_RSA = 1,   /**< RSA_UNIT */
  ASYMMETRIC_KEY_KCDSA = 2, /**< KCDSA_UNIT */
  ASYMMETRIC_KEY_ECC = 3    /**< ECC_UNIT */
};

/** A key of the provider with its type, public or private. */
typedef struct {
  int type;  /**< ASYMMETRIC_KEY_RSA, ASYMMETRIC_KEY_KCDSA or ASYMMETRIC_KEY_ECC; 0 when empty */
  void *key; /**< RSA_UNIT, KCDSA_UNIT or ECC_UNIT, owned */
} ASYMMETRIC_KEY;

/** SubjectPublicKeyInfo ::= SEQUENCE { algorithm AlgorithmIdentifier, subjectPublicKey BIT STRING } (RFC 5280 4.1.2.7).
 */
typedef struct {
  OBJECT_IDENTIFIER *algorithm; /**< the identifier without its parameters */
  BIT_STRING *subjectPublicKey; /**< as decoded */
  ASYMMETRIC_KEY *key;          /**< made of the two above; null where the _RFC5280 decoder does not know the key */
  ASN1_STRING *parameters;      /**< kept by the _RFC5280 decoder, which writes them back; else null */
} X509_PUBKEY;

/** Kinds of X509_TIME. */
enum {
  X509_TIME_UTC = 0,        /**< UTC_TIME */
  X509_TIME_GENERALIZED = 1 /**< GENERALIZED_TIME */
};

/** Time ::= CHOICE { utcTime UTCTime, generalTime GeneralizedTime } (RFC 5280 4.1.2.5). */
typedef struct {
  int type;          /**< X509_TIME_UTC or X509_TIME_GENERALIZED */
  ASN1_STRING *time; /**< the text, as encoded */
} X509_TIME;

/** What a program keeps beside a certificate: SEQUENCE { friendlyName UTF8String OPTIONAL, localKeyID [0] OCTET STRING
 * OPTIONAL }. */
typedef struct {
  UTF8_STRING *friendlyName; /**< a name to show; null when absent */
  OCTET_STRING *localKeyID;  /**< links the certificate to its private key; null when absent */
} X509_AUX;

/** TBSCertificate: what the issuer signs (RFC 5280 4.1.2). Members that a certificate must have are null in an empty
 * record. */
typedef struct {
  unsigned char version;             /**< 0 for v1, 1 for v2, 2 for v3 */
  BIGINT *serialNumber;              /**< unique within the issuer */
  OBJECT_IDENTIFIER *signature;      /**< the algorithm that the issuer signs with; its parameters are not kept */
  X509_NAME *issuer;                 /**< may not be empty in a certificate of RFC 5280 */
  X509_TIME *notBefore;              /**< the first instant of validity */
  X509_TIME *notAfter;               /**< the last instant of validity */
  X509_NAME *subject;                /**< empty where subjectAltName has the names */
  X509_PUBKEY *subjectPublicKeyInfo; /**< the subject's key */
  BIT_STRING *issuerUniqueID;        /**< neither read nor written but by the _RFC5280 functions */
  BIT_STRING *subjectUniqueID;       /**< likewise */
  X509_EXTENSIONS *extensions;       /**< null when absent */
} X509_TBS_CERT;

/** The octets that a certificate was decoded from; opaque. */
typedef struct x509_received X509_RECEIVED;

/** Certificate ::= SEQUENCE { tbsCertificate, signatureAlgorithm, signatureValue BIT STRING } (RFC 5280 4.1), and what
 * belongs to it. */
typedef struct {
  X509_TBS_CERT *tbs;         /**< never null but in a cleaned certificate */
  OBJECT_IDENTIFIER *sig_alg; /**< signatureAlgorithm, without its parameters; null before signing */
  BIT_STRING *sig_value;      /**< signatureValue; null before signing */
  X509_AUX *aux;              /**< never encoded into the certificate; null when there is none */
  X509_RECEIVED *received;    /**< dropped by every setter; null for a certificate that was built */
} X509_CERT;

/** A list of X509_CERT. */
typedef STACK X509_CERTIFICATES;

/** CertificatePair ::= SEQUENCE { forward [0] EXPLICIT OPTIONAL, reverse [1] EXPLICIT OPTIONAL }, one at least (X.509).
 */
typedef struct {
  X509_CERT *forward; /**< issued to this authority by others; null when absent */
  X509_CERT *reverse; /**< issued by this authority to others; null when absent */
} X509_CERT_PAIR;

/** @name Life cycle of names
 * @{ */
/** A name is a list that owns its children, empty when new. A new child has neither type nor value. */
VELPKI_API X509_NAME *new_X509_NAME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_NAME(X509_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME *dup_X509_NAME(const X509_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME_CHILD *new_X509_NAME_CHILD(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_NAME_CHILD(X509_NAME_CHILD *p) VELPKI_NOEXCEPT;
VELPKI_API X509_NAME_CHILD *dup_X509_NAME_CHILD(const X509_NAME_CHILD *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of names
 * @{ */
/** Returns the number of children, -1 for null. */
VELPKI_API int get_X509_NAME_count(const X509_NAME *name) VELPKI_NOEXCEPT;
/** Lends the child at an index, or null. */
VELPKI_API X509_NAME_CHILD *get_X509_NAME_CHILD(const X509_NAME *name, int index) VELPKI_NOEXCEPT;
/** Lends the type of a child. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_NAME_CHILD_OID(const X509_NAME_CHILD *child) VELPKI_NOEXCEPT;
/** Lends the value of a child. */
VELPKI_API ASN1_STRING *get_X509_NAME_CHILD_data(const X509_NAME_CHILD *child) VELPKI_NOEXCEPT;
/** Returns the first index after `last` (from 0 when it is negative) whose type equals `oid`; -1 when there is none.
 * Passing the result back finds the next one. */
VELPKI_API int get_X509_NAME_index_by_OID(const X509_NAME *name, const OBJECT_IDENTIFIER *oid,
                                          int last) VELPKI_NOEXCEPT;
/** Inserts a deep copy, appending when `position` is below 0 or above the count; 0, or 1 on failure. The copy has the
 * child's `rdn`: where children of several names come together, number their RDNs anew. */
VELPKI_API int add_X509_NAME_child(X509_NAME *name, const X509_NAME_CHILD *child, int position) VELPKI_NOEXCEPT;
/** Inserts a child of a type, a string type (TYPE_UTF8_STRING ...) and octets; a negative length measures
 * NUL-terminated text. The octets are not checked against the string type. Positions and results as for
 * add_X509_NAME_child.
 * @warning Text is stored as octets: for a BMPString it must be UCS-2 already, and a negative length stops at its
 * first zero octet. add_X509_NAME_child_OID_UTF8 takes UTF-8 and converts it to the string type. */
VELPKI_API int add_X509_NAME_child_OID(X509_NAME *name, const OBJECT_IDENTIFIER *oid, int type,
                                       const unsigned char *bytes, int length, int position) VELPKI_NOEXCEPT;
/** Inserts a child whose text is UTF-8 of `length` octets, measured when negative, and is converted to the string type:
 * UTF8String, BMPString, TeletexString (as Latin-1), PrintableString or IA5String. 0; 1 also for text that the string
 * type does not have, and for other string types. */
VELPKI_API int add_X509_NAME_child_OID_UTF8(X509_NAME *name, const OBJECT_IDENTIFIER *oid, int type, const char *text,
                                            int length, int position) VELPKI_NOEXCEPT;
/** Does what add_X509_NAME_child_OID does for the type at a registry row, with its warning; 1 also for a row without
 * OID. */
VELPKI_API int add_X509_NAME_child_OID_index(X509_NAME *name, int oid_index, int type, const unsigned char *bytes,
                                             int length, int position) VELPKI_NOEXCEPT;
/** Takes the child at an index out and releases it. */
VELPKI_API void remove_X509_NAME_child(X509_NAME *name, int index) VELPKI_NOEXCEPT;
/** @} */

/** @name Using names
 * @{ */
/** Digests the DER octets of a name into `out`, which has PKV_MAX_DIGEST_LENGTH octets, and returns the digest's length
 * in octets; -1 for null, an empty name and any failure. */
VELPKI_API int get_X509_NAME_hash(const X509_NAME *name, int digest_id, unsigned char *out) VELPKI_NOEXCEPT;
/** Returns 0 when both names have the same DER octets, 1 when either is null or cannot be encoded, else -1. It is no
 * ordering function.
 * @warning Text that differs only in string type, case or spaces compares unequal; cmp_X509_NAME_RFC5280 compares as
 * the standard says. */
VELPKI_API int cmp_X509_NAME(const X509_NAME *a, const X509_NAME *b) VELPKI_NOEXCEPT;
/** Compares as RFC 5280 7.1 says (case and spaces folded, any string type, each RDN as a set): 0 when equal, 1 for
 * null, else -1. It is no ordering function. */
VELPKI_API int cmp_X509_NAME_RFC5280(const X509_NAME *a, const X509_NAME *b) VELPKI_NOEXCEPT;
/** Writes "  - CN=..." lines to standard output; control characters are made visible. */
VELPKI_API void print_X509_NAME(const X509_NAME *name) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of names
 * @{ */
/** Encodes Name ::= SEQUENCE OF RelativeDistinguishedName, each child as an RDN of its own (RFC 5280 4.1.2.4), into
 * `*out`, which it refills when it holds a unit. Codes: F_X509_NAME_TO_SEQ with 49, 3C, 2B (a missing child) or
 * ERR_ASN1_ENCODING. */
VELPKI_API int X509_NAME_to_Seq(const X509_NAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a name. Codes: F_SEQ_TO_X509_NAME with 49, 3C or ERR_ASN1_DECODING.
 * @warning The first attribute of a multi-valued RDN is kept only, so different names may decode alike;
 * Seq_to_X509_NAME_RFC5280 keeps them all, Seq_to_X509_NAME_strict refuses such a name. */
VELPKI_API int Seq_to_X509_NAME(ASN1_UNIT *in, X509_NAME **out) VELPKI_NOEXCEPT;
/** Encodes a name with its multi-valued and empty RDNs, and with values of every string type. Codes of
 * X509_NAME_to_Seq. */
VELPKI_API int X509_NAME_to_Seq_RFC5280(const X509_NAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a name with its multi-valued and empty RDNs, and with values of every string type. Codes of
 * Seq_to_X509_NAME. */
VELPKI_API int Seq_to_X509_NAME_RFC5280(ASN1_UNIT *in, X509_NAME **out) VELPKI_NOEXCEPT;
/** Decodes a name in standard form that has one attribute in each RDN; F_SEQ_TO_X509_NAME with ERR_MULTIVALUED_RDN for
 * any other, or the codes of Seq_to_X509_NAME. */
VELPKI_API int Seq_to_X509_NAME_strict(ASN1_UNIT *in, X509_NAME **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Algorithm identifiers
 * @{ */
/** A new identifier has neither algorithm nor parameters. A copy belongs to no list. */
VELPKI_API X509_ALGO_IDENTIFIER *new_X509_ALGO_IDENTIFIER(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ALGO_IDENTIFIER(X509_ALGO_IDENTIFIER *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ALGO_IDENTIFIER *dup_X509_ALGO_IDENTIFIER(const X509_ALGO_IDENTIFIER *p) VELPKI_NOEXCEPT;
/** Stores copies of OID and parameters; 0, or 1 (unchanged) for a null identifier or OID or a failed copy.
 * @warning Null parameters store an explicit NULL, which ECDSA, EdDSA and PSS must not have;
 * set_X509_ALGO_IDENTIFIER_value_RFC5280 leaves them out. */
VELPKI_API int set_X509_ALGO_IDENTIFIER_value(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid,
                                              const ASN1_STRING *parameters) VELPKI_NOEXCEPT;
/** Stores copies of OID and parameters, which are absent when null; results as set_X509_ALGO_IDENTIFIER_value. */
VELPKI_API int set_X509_ALGO_IDENTIFIER_value_RFC5280(X509_ALGO_IDENTIFIER *identifier, const OBJECT_IDENTIFIER *oid,
                                                      const ASN1_STRING *parameters) VELPKI_NOEXCEPT;
/** Encodes into `*out`, which it refills when it holds a unit. Codes: F_X509_ALGO_IDENTIFIER_TO_SEQ with 49, 3C or
 * ERR_ASN1_ENCODING. */
VELPKI_API int X509_ALGO_IDENTIFIER_to_Seq(const X509_ALGO_IDENTIFIER *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a SEQUENCE of one or two elements. Codes: F_SEQ_TO_X509_ALGO_IDENTIFIER with 49, 3C, 2B (another number of
 * elements) or ERR_ASN1_DECODING. */
VELPKI_API int Seq_to_X509_ALGO_IDENTIFIER(ASN1_UNIT *in, X509_ALGO_IDENTIFIER **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Lists of algorithm identifiers
 * @{ */
/** A list owns its elements, and is empty when new. */
VELPKI_API X509_ALGO_IDENTIFIERS *new_X509_ALGO_IDENTIFIERS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ALGO_IDENTIFIERS(X509_ALGO_IDENTIFIERS *p) VELPKI_NOEXCEPT;
/** Makes a second list of the same elements. Each list is released with its own free_.
 * @warning The elements are shared: a change to one shows in both lists. dup_X509_ALGO_IDENTIFIERS_strict copies them.
 */
VELPKI_API X509_ALGO_IDENTIFIERS *dup_X509_ALGO_IDENTIFIERS(const X509_ALGO_IDENTIFIERS *p) VELPKI_NOEXCEPT;
/** Makes a deep copy. */
VELPKI_API X509_ALGO_IDENTIFIERS *dup_X509_ALGO_IDENTIFIERS_strict(const X509_ALGO_IDENTIFIERS *p) VELPKI_NOEXCEPT;
/** Encodes a SET OF AlgorithmIdentifier, in list order, into `*out`, which it refills when it holds a unit. Codes:
 * F_X509_ALGO_IDENTIFIERS_TO_SEQ, or the element's. */
VELPKI_API int X509_ALGO_IDENTIFIERS_to_Seq(const X509_ALGO_IDENTIFIERS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a SET OF AlgorithmIdentifier. Codes: F_SEQ_TO_X509_ALGO_IDENTIFIERS, or the element's. */
VELPKI_API int Seq_to_X509_ALGO_IDENTIFIERS(ASN1_UNIT *in, X509_ALGO_IDENTIFIERS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Attributes
 * @{ */
/** A new attribute has no OID and an empty list of values; a new value has type 0. */
VELPKI_API X509_ATTRIBUTE *new_X509_ATTRIBUTE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ATTRIBUTE(X509_ATTRIBUTE *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE *dup_X509_ATTRIBUTE(const X509_ATTRIBUTE *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE_DATA *new_X509_ATTRIBUTE_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ATTRIBUTE_DATA(X509_ATTRIBUTE_DATA *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTE_DATA *dup_X509_ATTRIBUTE_DATA(const X509_ATTRIBUTE_DATA *p) VELPKI_NOEXCEPT;
/** Stores a copy of the OID; 0, or 1 on failure. */
VELPKI_API int set_X509_ATTRIBUTE_OID(X509_ATTRIBUTE *attribute, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Appends a copy of a value under an identifier octet. `value` is an ASN1_UNIT when `type` has bit 0x20, else an
 * ASN1_STRING. 0; 1 for null, a type above FF and a failed copy. */
VELPKI_API int add_X509_ATTRIBUTE_data(X509_ATTRIBUTE *attribute, int type, const void *value) VELPKI_NOEXCEPT;
/** Appends a string under its own type; 0, or 1 on failure.
 * @warning It takes the string itself over, and the caller must not release it after success; a string whose type has
 * bit 0x20 becomes the unit that it describes. add_X509_ATTRIBUTE_data copies. */
VELPKI_API int add_X509_ATTRIBUTE_set(X509_ATTRIBUTE *attribute, ASN1_STRING *string) VELPKI_NOEXCEPT;
/** Lends the OID. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_ATTRIBUTE_OID(const X509_ATTRIBUTE *attribute) VELPKI_NOEXCEPT;
/** Returns the number of values; 0 for null. */
VELPKI_API int get_X509_ATTRIBUTE_count(const X509_ATTRIBUTE *attribute) VELPKI_NOEXCEPT;
/** Returns the identifier octet of the value at an index, or -1. */
VELPKI_API int get_X509_ATTRIBUTE_data_type(const X509_ATTRIBUTE *attribute, int index) VELPKI_NOEXCEPT;
/** Lends the value at an index, of the type that get_X509_ATTRIBUTE_data_type says; or null. */
VELPKI_API void *get_X509_ATTRIBUTE_data(const X509_ATTRIBUTE *attribute, int index) VELPKI_NOEXCEPT;
/** Sets the OID of `*attribute` and adds a value, as add_X509_ATTRIBUTE_data does; when the address or what it holds is
 * null it makes a new attribute, stored at a non-null address. It returns the attribute; null on failure, with the
 * caller's attribute unchanged. */
VELPKI_API X509_ATTRIBUTE *create_X509_ATTRIBUTE_OID(X509_ATTRIBUTE **attribute, const OBJECT_IDENTIFIER *oid, int type,
                                                     const void *value) VELPKI_NOEXCEPT;
/** Does what create_X509_ATTRIBUTE_OID does for the OID at a registry row. */
VELPKI_API X509_ATTRIBUTE *create_X509_ATTRIBUTE_index(X509_ATTRIBUTE **attribute, int oid_index, int type,
                                                       const void *value) VELPKI_NOEXCEPT;
/** @} */

/** @name Lists of attributes
 * @{ */
/** A list owns its attributes, and is empty when new. */
VELPKI_API X509_ATTRIBUTES *new_X509_ATTRIBUTES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_ATTRIBUTES(X509_ATTRIBUTES *p) VELPKI_NOEXCEPT;
VELPKI_API X509_ATTRIBUTES *dup_X509_ATTRIBUTES(const X509_ATTRIBUTES *p) VELPKI_NOEXCEPT;
/** Returns the number of attributes, -1 for null. */
VELPKI_API int get_X509_ATTRIBUTES_count(const X509_ATTRIBUTES *list) VELPKI_NOEXCEPT;
/** Lends the attribute at an index, or null. */
VELPKI_API X509_ATTRIBUTE *get_X509_ATTRIBUTES_child(const X509_ATTRIBUTES *list, int index) VELPKI_NOEXCEPT;
/** Inserts a deep copy; a position outside the list appends. 0, or 1 on failure. */
VELPKI_API int add_X509_ATTRIBUTES_child(X509_ATTRIBUTES *list, const X509_ATTRIBUTE *attribute,
                                         int position) VELPKI_NOEXCEPT;
/** Inserts an attribute of one value, of which it stores a copy as add_X509_ATTRIBUTE_data does; a position outside the
 * list appends. 0, or 1 on failure. */
VELPKI_API int add_X509_ATTRIBUTES_child_OID(X509_ATTRIBUTES *list, const OBJECT_IDENTIFIER *oid, int type,
                                             const void *value, int position) VELPKI_NOEXCEPT;
/** Does what add_X509_ATTRIBUTES_child_OID does for the OID at a registry row. */
VELPKI_API int add_X509_ATTRIBUTES_OID_INDEX(X509_ATTRIBUTES *list, int oid_index, int type, const void *value,
                                             int position) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of attributes
 * @{ */
/** Encodes Attribute, the values in their order, into `*out`, which it refills when it holds a unit. Codes:
 * F_X509_ATTRIBUTE_TO_SEQ. */
VELPKI_API int X509_ATTRIBUTE_to_Seq(const X509_ATTRIBUTE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes Attribute. Codes: F_SEQ_TO_X509_ATTRIBUTE. */
VELPKI_API int Seq_to_X509_ATTRIBUTE(ASN1_UNIT *in, X509_ATTRIBUTE **out) VELPKI_NOEXCEPT;
/** Encodes a SET OF Attribute into `*out`, which it refills when it holds a unit. Codes: F_X509_ATTRIBUTES_TO_SEQ, or
 * the attribute's.
 * @warning The order of the list and of the values is kept, which is DER only when they are sorted;
 * X509_ATTRIBUTES_to_Seq_RFC5280 sorts the encodings. */
VELPKI_API int X509_ATTRIBUTES_to_Seq(const X509_ATTRIBUTES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Encodes a SET OF Attribute, with attributes and values sorted by their encodings (X.690 11.6). Codes of
 * X509_ATTRIBUTES_to_Seq. */
VELPKI_API int X509_ATTRIBUTES_to_Seq_RFC5280(const X509_ATTRIBUTES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a SET OF Attribute. Codes: F_SEQ_TO_X509_ATTRIBUTES, or the attribute's. */
VELPKI_API int Seq_to_X509_ATTRIBUTES(ASN1_UNIT *in, X509_ATTRIBUTES **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Extension records
 * @{ */
/** A new record has neither OID nor value and is not critical. x509v3.h makes records of the values. */
VELPKI_API X509_EXTENSION *new_X509_EXTENSION(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_EXTENSION(X509_EXTENSION *p) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSION *dup_X509_EXTENSION(const X509_EXTENSION *p) VELPKI_NOEXCEPT;
/** Stores a copy of the OID; 0, or 1 on failure. */
VELPKI_API int set_X509_EXTENSION_object(X509_EXTENSION *extension, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Stores 0, or 1 for any other number; 1 for a null extension. */
VELPKI_API int set_X509_EXTENSION_critical(X509_EXTENSION *extension, int critical) VELPKI_NOEXCEPT;
/** Stores a copy of the value, whose octets are the DER of the extension's type; 0, or 1 on failure. */
VELPKI_API int set_X509_EXTENSION_data(X509_EXTENSION *extension, const ASN1_STRING *value) VELPKI_NOEXCEPT;
/** Lends the OID. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_EXTENSION_object(const X509_EXTENSION *extension) VELPKI_NOEXCEPT;
/** Lends the value, whose octets are the DER of the extension's type. */
VELPKI_API ASN1_STRING *get_X509_EXTENSION_data(const X509_EXTENSION *extension) VELPKI_NOEXCEPT;
/** Returns 1 for a critical extension; 0 for another and for null. */
VELPKI_API int get_X509_EXTENSION_critical(const X509_EXTENSION *extension) VELPKI_NOEXCEPT;
/** Makes an extension of copies. It replaces the content of `*extension`; when the address or what it holds is null it
 * makes a new one, stored at a non-null address. It returns the extension; null on failure, with the caller's
 * unchanged. */
VELPKI_API X509_EXTENSION *create_X509_EXTENSION_by_OID(X509_EXTENSION **extension, const OBJECT_IDENTIFIER *oid,
                                                        int critical, const ASN1_STRING *value) VELPKI_NOEXCEPT;
/** Does what create_X509_EXTENSION_by_OID does for the OID at a registry row. */
VELPKI_API X509_EXTENSION *create_X509_EXTENSION_by_OID_index(X509_EXTENSION **extension, int oid_index, int critical,
                                                              const ASN1_STRING *value) VELPKI_NOEXCEPT;
/** Encodes Extension, `critical` only where it is TRUE, into `*out`, which it refills when it holds a unit. Codes:
 * F_X509_EXT_TO_SEQ. */
VELPKI_API int X509_EXTENSION_to_Seq(const X509_EXTENSION *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes Extension, of two or three elements. Codes: F_SEQ_TO_X509_EXT. */
VELPKI_API int Seq_to_X509_EXTENSION(ASN1_UNIT *in, X509_EXTENSION **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Lists of extensions
 * @{ */
/** A list owns its extensions, and is empty when new. */
VELPKI_API X509_EXTENSIONS *new_X509_EXTENSIONS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_EXTENSIONS(X509_EXTENSIONS *p) VELPKI_NOEXCEPT;
VELPKI_API X509_EXTENSIONS *dup_X509_EXTENSIONS(const X509_EXTENSIONS *p) VELPKI_NOEXCEPT;
/** Returns the number of extensions, -1 for null. */
VELPKI_API int get_X509_EXTENSION_count(const X509_EXTENSIONS *list) VELPKI_NOEXCEPT;
/** Lends the extension at an index, or null. */
VELPKI_API X509_EXTENSION *get_X509_EXTENSION(const X509_EXTENSIONS *list, int index) VELPKI_NOEXCEPT;
/** Takes the extension at an index out and releases it. */
VELPKI_API void remove_X509_EXTENSION(X509_EXTENSIONS *list, int index) VELPKI_NOEXCEPT;
/** Inserts a deep copy into the list at `*list`, which it makes when that is null; a position outside the list appends.
 * 0, or 1 on failure. */
VELPKI_API int add_X509_EXTENSION(X509_EXTENSIONS **list, const X509_EXTENSION *extension,
                                  int position) VELPKI_NOEXCEPT;
/** Returns the first index after `last` (from 0 when it is negative) with that OID, or -1. */
VELPKI_API int get_X509_EXTENSION_index_by_OID(const X509_EXTENSIONS *list, const OBJECT_IDENTIFIER *oid,
                                               int last) VELPKI_NOEXCEPT;
/** Does what get_X509_EXTENSION_index_by_OID does for the OID at a registry row; -2 when the row has none. */
VELPKI_API int get_X509_EXTENSION_index_by_OID_index(const X509_EXTENSIONS *list, int oid_index,
                                                     int last) VELPKI_NOEXCEPT;
/** Encodes SEQUENCE OF Extension, an empty one too, into `*out`, which it refills when it holds a unit. Codes:
 * F_X509_EXT_TO_SEQ. */
VELPKI_API int X509_EXTENSIONS_to_Seq(const X509_EXTENSIONS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes SEQUENCE OF Extension. Codes: F_SEQ_TO_X509_EXT.
 * @warning Duplicates, an empty list and a written FALSE are taken; Seq_to_X509_EXTENSIONS_strict refuses them. */
VELPKI_API int Seq_to_X509_EXTENSIONS(ASN1_UNIT *in, X509_EXTENSIONS **out) VELPKI_NOEXCEPT;
/** Decodes SEQUENCE OF Extension. Codes: F_SEQ_TO_X509_EXT with ERR_DUPLICATE_EXTENSION, ERR_EMPTY_LIST or
 * ERR_NOT_CANONICAL (`critical` is written otherwise than as FF), or those of Seq_to_X509_EXTENSIONS. */
VELPKI_API int Seq_to_X509_EXTENSIONS_strict(ASN1_UNIT *in, X509_EXTENSIONS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Keys
 * @{ */
/** A new record is empty, of type 0. A copy shares the numbers of the provider's key, which never change. */
VELPKI_API ASYMMETRIC_KEY *new_ASYMMETRIC_KEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ASYMMETRIC_KEY(ASYMMETRIC_KEY *p) VELPKI_NOEXCEPT;
VELPKI_API ASYMMETRIC_KEY *dup_ASYMMETRIC_KEY(const ASYMMETRIC_KEY *p) VELPKI_NOEXCEPT;
/** Compares types, public values and domain: 0 equal, 1 not (also for null and empty keys). */
VELPKI_API int cmp_ASYMMETRIC_KEY(const ASYMMETRIC_KEY *a, const ASYMMETRIC_KEY *b) VELPKI_NOEXCEPT;
/** Wraps a copy of an RSA key in a new record; null for null. */
VELPKI_API ASYMMETRIC_KEY *RSA_UNIT_to_ASYMMETRIC_KEY(RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Wraps a copy of a KCDSA key in a new record; null for null. */
VELPKI_API ASYMMETRIC_KEY *KCDSA_UNIT_to_ASYMMETRIC_KEY(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Wraps a copy of an ECC key in a new record; null for null. */
VELPKI_API ASYMMETRIC_KEY *ECC_UNIT_to_ASYMMETRIC_KEY(ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Lends the RSA key; null for another type. */
VELPKI_API RSA_UNIT *ASYMMETRIC_KEY_to_RSA_UNIT(const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Lends the KCDSA key; null for another type. */
VELPKI_API KCDSA_UNIT *ASYMMETRIC_KEY_to_KCDSA_UNIT(const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Lends the ECC key; null for another type. */
VELPKI_API ECC_UNIT *ASYMMETRIC_KEY_to_ECC_UNIT(const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** @} */

/** @name Public keys
 * @{ */
/** A new record has no algorithm and no key. */
VELPKI_API X509_PUBKEY *new_X509_PUBKEY(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_PUBKEY(X509_PUBKEY *p) VELPKI_NOEXCEPT;
VELPKI_API X509_PUBKEY *dup_X509_PUBKEY(const X509_PUBKEY *p) VELPKI_NOEXCEPT;
/** Compares algorithms and keys, and the octets of keys that are not known: 0 equal, 1 not (also for null). */
VELPKI_API int cmp_X509_PUBKEY(const X509_PUBKEY *a, const X509_PUBKEY *b) VELPKI_NOEXCEPT;
/** Fills a record from an RSA key, of which only the public numbers are stored; 0, or 1 (unchanged). */
VELPKI_API int set_X509_PUBKEY_rsa(X509_PUBKEY *pubkey, RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Fills a record from a KCDSA key, of which only the public value and the domain are stored; 0, or 1 (unchanged). */
VELPKI_API int set_X509_PUBKEY_kcdsa(X509_PUBKEY *pubkey, KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Fills a record from an ECC key, of which only the public point and the curve are stored; 0, or 1 (unchanged). */
VELPKI_API int set_X509_PUBKEY_ecc(X509_PUBKEY *pubkey, ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Decodes SubjectPublicKeyInfo (RFC 5280 4.1.2.7) with rsaEncryption, KCDSA1 or id-ecPublicKey on prime256v1. Codes:
 * F_SEQ_TO_X509_PUBKEY with 49, 3C, ERR_ASN1_DECODING (also for any other key), or 38 for a BIT STRING that holds no
 * RSA or KCDSA key. A record passed to a failing call is left cleared. */
VELPKI_API int Seq_to_X509_PUBKEY(ASN1_UNIT *in, X509_PUBKEY **out) VELPKI_NOEXCEPT;
/** Encodes the algorithm, parameters made from the key, and the key. Codes: F_X509_PUBKEY_TO_SEQ with 49, 3C, or
 * ERR_ASN1_ENCODING (also for a key that is not the algorithm's). */
VELPKI_API int X509_PUBKEY_to_Seq(const X509_PUBKEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a key of any algorithm, with its parameters: `key` is null for those that the provider does not know (it
 * knows RSA, also under id-RSASSA-PSS, KCDSA, and the curves prime256v1, secp384r1 and secp521r1), and for octets that
 * are no such key or more than a public one. Whether a point is on its curve is seen when it is used. Codes of
 * Seq_to_X509_PUBKEY. */
VELPKI_API int Seq_to_X509_PUBKEY_RFC5280(ASN1_UNIT *in, X509_PUBKEY **out) VELPKI_NOEXCEPT;
/** Encodes a key that Seq_to_X509_PUBKEY_RFC5280 read as it was read, but for the NULL that RSA keys get as parameters
 * where they had none, and one that was set as X509_PUBKEY_to_Seq does,
 * on all three curves. Codes of X509_PUBKEY_to_Seq. */
VELPKI_API int X509_PUBKEY_to_Seq_RFC5280(const X509_PUBKEY *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Octets of RSA keys
 * @{ */
/** Reads SEQUENCE { n, e [, d [, p, q, dP, dQ, qInv]] } from the octets of a string. It fills the provider key at
 * `*out`, which it makes when that is null and leaves cleared on failure. Codes: F_BITSTRING_to_RSA_KEY with 49, 2B
 * (no elements), 3C or ERR_ASN1_DECODING.
 * @warning The first eight elements of a longer SEQUENCE, such as a PKCS#1 private key with its version, are read as
 * if they were these (n becomes 0, and every use of the key fails). BITSTRING_to_RSA_KEY_strict takes two. */
VELPKI_API int BITSTRING_to_RSA_KEY(const ASN1_STRING *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
/** Reads SEQUENCE { n, e } and nothing else (RFC 3279 2.3.1), as BITSTRING_to_RSA_KEY does, with its codes. */
VELPKI_API int BITSTRING_to_RSA_KEY_strict(const ASN1_STRING *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
/** Makes a new BIT STRING of the DER of a key. Codes: F_RSA_KEY_to_BITSTRING with 49, 3C or ERR_ASN1_ENCODING.
 * @warning The private numbers of a private key are written too; RSA_KEY_to_BITSTRING_strict writes n and e. */
VELPKI_API int RSA_KEY_to_BITSTRING(RSA_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
/** Makes a new BIT STRING of SEQUENCE { n, e } (RFC 3279 2.3.1). Codes of RSA_KEY_to_BITSTRING. */
VELPKI_API int RSA_KEY_to_BITSTRING_strict(RSA_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
/** Reads a key from a unit, as BITSTRING_to_RSA_KEY does. Codes: F_Seq_to_RSA_KEY with the same reasons.
 * @warning A longer SEQUENCE is read as if it had eight elements. Seq_to_RSA_KEY_strict takes exactly 2, 3 or 8. */
VELPKI_API int Seq_to_RSA_KEY(ASN1_UNIT *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
/** Reads a SEQUENCE of exactly 2, 3 or 8 elements from a unit. Codes of Seq_to_RSA_KEY. */
VELPKI_API int Seq_to_RSA_KEY_strict(ASN1_UNIT *in, RSA_UNIT **out) VELPKI_NOEXCEPT;
/** Makes a new unit of a key. Codes: F_RSA_KEY_to_Seq with 49, 3C or ERR_ASN1_ENCODING.
 * @warning The private numbers of a private key are written too. */
VELPKI_API int RSA_KEY_to_Seq(RSA_UNIT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Octets of KCDSA keys
 * @{ */
/** Reads the public value y, an INTEGER, from the octets of a string; the domain parameters stand elsewhere. The
 * provider key at `*out` is made when that is null, and else cleared first, domain parameters included: set them
 * afterwards. Codes: F_BITSTRING_to_KCDSA_KEY with 49, 3C or ERR_ASN1_DECODING. */
VELPKI_API int BITSTRING_to_KCDSA_KEY(const ASN1_STRING *in, KCDSA_UNIT **out) VELPKI_NOEXCEPT;
/** Makes a new BIT STRING of the DER of y. Codes: F_KCDSA_KEY_to_BITSTRING with 49, 3C or ERR_ASN1_ENCODING. */
VELPKI_API int KCDSA_KEY_to_BITSTRING(KCDSA_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
/** Reads y from a unit, as BITSTRING_to_KCDSA_KEY does. Codes: F_Seq_to_KCDSA_KEY with the same reasons. */
VELPKI_API int Seq_to_KCDSA_KEY(ASN1_UNIT *in, KCDSA_UNIT **out) VELPKI_NOEXCEPT;
/** Makes a new unit of y. Codes: F_KCDSA_KEY_to_Seq with 49, 3C or ERR_ASN1_ENCODING. */
VELPKI_API int KCDSA_KEY_to_Seq(KCDSA_UNIT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Octets of ECC keys
 * @{ */
/** Reads 04 and two coordinates as a point of prime256v1. The provider key at `*out` is made when that is null and left
 * cleared on failure. Codes: F_BITSTRING_TO_ECC_KEY with 49 (null, or octets of another form) or 3C.
 * @warning Any two halves of equal length are taken, whether they are a point of the curve or not;
 * BITSTRING_to_ECC_KEY_strict takes points only. */
VELPKI_API int BITSTRING_to_ECC_KEY(const ASN1_STRING *in, ECC_UNIT **out) VELPKI_NOEXCEPT;
/** Reads 65 octets that are a point of prime256v1 (SEC 1 2.3.4). Codes of BITSTRING_to_ECC_KEY, and ERR_ASN1_DECODING
 * for coordinates that are no point. */
VELPKI_API int BITSTRING_to_ECC_KEY_strict(const ASN1_STRING *in, ECC_UNIT **out) VELPKI_NOEXCEPT;
/** Makes a new BIT STRING of 04 and both coordinates. Codes: F_ECC_KEY_TO_BITSTRING with 49, 3C or ERR_ASN1_ENCODING
 * (no public point).
 * @warning Leading zeros of a coordinate are left out, so one key in 128 is shorter than 65 octets and is not read
 * back; ECC_KEY_to_BITSTRING_RFC5280 pads. */
VELPKI_API int ECC_KEY_to_BITSTRING(ECC_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
/** Makes a new BIT STRING of 04 and both coordinates, padded to the length of the curve's field (SEC 1 2.3.3). Codes of
 * ECC_KEY_to_BITSTRING. */
VELPKI_API int ECC_KEY_to_BITSTRING_RFC5280(ECC_UNIT *in, ASN1_STRING **out) VELPKI_NOEXCEPT;
/** Loads the curve of a registry row (415, prime256v1) into `*curve`, which is made when null; 0, or 1 for any other
 * row and on failure. */
VELPKI_API int set_ECURVE_from_list(ECURVE **curve, int index) VELPKI_NOEXCEPT;
/** Replaces `*oid`, which may be null, by the OID of a curve in the list ("prime256v1"); 0, or 1 (unchanged). */
VELPKI_API int get_ECURVE_OID_from_name(OBJECT_IDENTIFIER **oid, const char *name) VELPKI_NOEXCEPT;
/** @} */

/** @name Keys of certificates
 * @{ */
/** Digests the key octets (the BIT STRING's content) of an RSA or KCDSA certificate, encoded anew, into `out`, which
 * has PKV_MAX_DIGEST_LENGTH octets, and returns the digest's length in octets; 0 for ECC keys and on failure. */
VELPKI_API int get_X509_PUBLIC_KEY_hash(const X509_CERT *cert, int digest_id, unsigned char *out) VELPKI_NOEXCEPT;
/** Digests the key octets of any certificate as they were received, which with SHA-1 is the usual key identifier (RFC
 * 5280 4.2.1.2); results as get_X509_PUBLIC_KEY_hash. */
VELPKI_API int get_X509_PUBLIC_KEY_hash_RFC5280(const X509_CERT *cert, int digest_id,
                                                unsigned char *out) VELPKI_NOEXCEPT;
/** Tells whether a private key belongs to the certificate's public key: 0, or 1 (another key or type, ECC, null).
 * @warning The public numbers of both are compared. Whether the private numbers fit them PKV_Check_RSA tells, or a
 * signature that is made and verified. */
VELPKI_API int check_X509_keypair(const X509_CERT *cert, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Does what check_X509_keypair does for an RSA key, with its warning. */
VELPKI_API int check_X509_RSA_keypair(const X509_CERT *cert, RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Does what check_X509_keypair does for a KCDSA key, with its warning. */
VELPKI_API int check_X509_KCDSA_keypair(const X509_CERT *cert, KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** @} */

/** @name Times
 * @{ */
/** A new time has type X509_TIME_UTC and no text. */
VELPKI_API X509_TIME *new_X509_TIME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_TIME(X509_TIME *p) VELPKI_NOEXCEPT;
VELPKI_API X509_TIME *dup_X509_TIME(const X509_TIME *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_TIME(X509_TIME *p) VELPKI_NOEXCEPT;
/** Makes a UTCTime to 2049 and a GeneralizedTime from 2050 on (RFC 5280 4.1.2.5); null for null and for a time that has
 * neither text. `time` is not changed. */
VELPKI_API X509_TIME *asn1TimeToX509_TIME_RFC5280(const ASN1_TIME *time) VELPKI_NOEXCEPT;
/** @} */

/** @name Auxiliary data
 * @{ */
/** A new record has neither value. Every failure here is plain 1. */
VELPKI_API X509_AUX *new_X509_AUX(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_AUX(X509_AUX *p) VELPKI_NOEXCEPT;
VELPKI_API X509_AUX *dup_X509_AUX(const X509_AUX *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_AUX(X509_AUX *p) VELPKI_NOEXCEPT;
VELPKI_API int X509_AUX_to_Seq(const X509_AUX *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_AUX(ASN1_UNIT *in, X509_AUX **out) VELPKI_NOEXCEPT;
/** Stores a copy of the name, and null takes it away; 0, or 1 on failure. The certificate's octets stay as they are. */
VELPKI_API int set_X509_AUX_friendly(X509_CERT *cert, const UTF8_STRING *name) VELPKI_NOEXCEPT;
/** Lends the name, or null. */
VELPKI_API UTF8_STRING *get_X509_AUX_friendly(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the identifier, and null takes it away; 0, or 1 on failure. The certificate's octets stay as they
 * are. */
VELPKI_API int set_X509_AUX_localkey(X509_CERT *cert, const OCTET_STRING *id) VELPKI_NOEXCEPT;
/** Lends the identifier, or null. */
VELPKI_API OCTET_STRING *get_X509_AUX_localkey(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of certificates
 * @{ */
/** Stores 0, 1 or 2. Codes: F_SET_X509_VERSION with 49, 2B (another number) or 3C. */
VELPKI_API int set_X509_version(X509_CERT *cert, int version) VELPKI_NOEXCEPT;
/** Returns 0 for v1, 1 for v2, 2 for v3; -1 for null. */
VELPKI_API int get_X509_version(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the serial number. Codes: F_SET_X509_SERIAL with 49 or 3C. */
VELPKI_API int set_X509_serial(X509_CERT *cert, const BIGINT *serial) VELPKI_NOEXCEPT;
/** Lends the serial number. */
VELPKI_API BIGINT *get_X509_serial(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the OID of the algorithm to sign with. Codes: F_SET_X509_SIGNATURE with 49 or 3C. */
VELPKI_API int set_X509_signature(X509_CERT *cert, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Lends the OID of the algorithm inside what is signed. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_signature(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the issuer's name. Codes: F_SET_X509_ISSUER with 49 or 3C. */
VELPKI_API int set_X509_issuer(X509_CERT *cert, const X509_NAME *issuer) VELPKI_NOEXCEPT;
/** Lends the issuer's name. */
VELPKI_API X509_NAME *get_X509_issuer(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the subject's name. Codes: F_SET_X509_SUBJECT with 49 or 3C. */
VELPKI_API int set_X509_subject(X509_CERT *cert, const X509_NAME *subject) VELPKI_NOEXCEPT;
/** Lends the subject's name. */
VELPKI_API X509_NAME *get_X509_subject(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the first instant of validity. Codes: F_SET_X509_NOTBEFORE with 49 or 3C. */
VELPKI_API int set_X509_notBefore(X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
/** Lends the first instant of validity. */
VELPKI_API X509_TIME *get_X509_notBefore(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the last instant of validity. Codes: F_SET_X509_NOTAFTER with 49 or 3C. */
VELPKI_API int set_X509_notAfter(X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
/** Lends the last instant of validity. */
VELPKI_API X509_TIME *get_X509_notAfter(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the subject's public key. Codes: F_SET_X509_PUB_KEY with 49 or 3C. */
VELPKI_API int set_X509_pub_key(X509_CERT *cert, const X509_PUBKEY *pubkey) VELPKI_NOEXCEPT;
/** Lends the subject's public key. */
VELPKI_API X509_PUBKEY *get_X509_SPKI(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Stores a copy of the list, and null takes the list away; 0, or plain 1. */
VELPKI_API int set_X509_extensions(X509_CERT *cert, const X509_EXTENSIONS *extensions) VELPKI_NOEXCEPT;
/** Lends the list of extensions; null when there is none. */
VELPKI_API X509_EXTENSIONS *get_X509_extensions(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Lends the OID of the algorithm outside of what is signed. */
VELPKI_API OBJECT_IDENTIFIER *get_X509_sig_alg(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Lends the signature, a BIT STRING. */
VELPKI_API ASN1_STRING *get_X509_sig_value(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Lends the octets that a certificate was decoded from, or signed as by gen_SIG_X509_Cert_RFC5280, its `tbs` part when
 * `tbs` is not 0; null, with 0 in `*length`, for one that was built or changed. */
VELPKI_API const unsigned char *get_X509_received(const X509_CERT *cert, int tbs, int *length) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle of certificates
 * @{ */
/** A new certificate has an empty `tbs`, which is version v1 and has no other member. A copy has the received octets
 * too. */
VELPKI_API X509_TBS_CERT *new_X509_TBS_CERT(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_TBS_CERT(X509_TBS_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API X509_TBS_CERT *dup_X509_TBS_CERT(const X509_TBS_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_TBS_CERT(X509_TBS_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CERT *new_X509_CERT(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CERT(X509_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CERT(X509_CERT *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CERT *dup_X509_CERT(const X509_CERT *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of certificates
 * @{ */
/** Encodes TBSCertificate in house form. Codes: F_X509_TBS_CERT_TO_SEQ with ERR_TBS_CERT_SERIAL, _SIGNATURE, _ISSUER,
 * _VALIDITY, _SUBJECT or _SPKI for the first field that is missing, 49, 3C (also for an OID text that is none), else
 * ERR_ASN1_ENCODING.
 * @warning The signature algorithm is written with NULL parameters, whatever the algorithm, and unique identifiers are
 * not written. X509_CERT_to_Seq_RFC5280 has neither rule. */
VELPKI_API int X509_TBS_CERT_to_Seq(const X509_TBS_CERT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes TBSCertificate in house form. Codes: F_SEQ_TO_X509_TBS_CERT with 49, 3C, ERR_ASN1_DECODING, or 2B for a
 * value that is no SEQUENCE.
 * @warning The parameters of the signature algorithm are not kept. A TBS with a unique identifier is refused, and at
 * most one element after the public key is looked at. Seq_to_X509_CERT_RFC5280 has none of this. */
VELPKI_API int Seq_to_X509_TBS_CERT(ASN1_UNIT *in, X509_TBS_CERT **out) VELPKI_NOEXCEPT;
/** Encodes a certificate in house form, from its members. Codes: those of X509_TBS_CERT_to_Seq; F_X509_CERT_TO_SEQ with
 * 49, 3C or ERR_ASN1_ENCODING (no signature).
 * @warning Both signature algorithms are written with NULL parameters, so a certificate that another program made may
 * come out with other octets than were read, under which its signature does not hold. X509_CERT_to_Seq_RFC5280 writes
 * what was received. */
VELPKI_API int X509_CERT_to_Seq(const X509_CERT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a certificate in house form, and keeps the octets. Codes: those of Seq_to_X509_TBS_CERT; F_SEQ_TO_X509_CERT
 * with 49, 3C or ERR_ASN1_DECODING. See the warning at Seq_to_X509_TBS_CERT. */
VELPKI_API int Seq_to_X509_CERT(ASN1_UNIT *in, X509_CERT **out) VELPKI_NOEXCEPT;

/** Encodes a certificate in standard form. What was received is written back octet for octet; a certificate that was
 * built or changed gets NULL parameters for RSA and KCDSA algorithms, those of SHA-256 for PSS, and none for the
 * others. Codes of X509_CERT_to_Seq. */
VELPKI_API int X509_CERT_to_Seq_RFC5280(const X509_CERT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes a certificate in standard form: unique identifiers, every key, every string type, multi-valued RDNs, serial
 * numbers with their sign, and nothing left over. Codes of Seq_to_X509_CERT. */
VELPKI_API int Seq_to_X509_CERT_RFC5280(ASN1_UNIT *in, X509_CERT **out) VELPKI_NOEXCEPT;
/** Reads a certificate as Seq_to_X509_CERT_RFC5280 does, from DER octets; results as asn1_io.h says. */
VELPKI_API int readDER_X509_CERT_from_Binary_RFC5280(X509_CERT **out, const unsigned char *data,
                                                     int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Signing certificates
 * @{ */
/** Signs the house encoding with the algorithm that the TBS names and a private RSA or KCDSA key, and sets `sig_alg`
 * and `sig_value`; 1 for null and any other key. Codes: F_GEN_RSASIGN_TBS_CERT or F_GEN_KCDSASIGN_TBS_CERT with reason
 * 2B for an algorithm that the registry does not give a digest and scheme, 49, 3C; those of the TBS, or the
 * provider's.
 * @warning RSASSA-PSS and kcdsa1 have no digest of their own and end in reason 2B. The digest of KCDSA follows from
 * the key, whatever the algorithm says. gen_SIG_X509_Cert_RFC5280 signs with these too. */
VELPKI_API int gen_SIG_X509_Cert(X509_CERT *cert, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Signs the house encoding of a TBS with the algorithm `oid` and a private RSA key into `out`, a BIT STRING that the
 * caller made. The TBS's own algorithm is not looked at. Codes: F_GEN_RSASIGN_TBS_CERT as for gen_SIG_X509_Cert. */
VELPKI_API int gen_RSA_SIG_X509_TBS_CERT(X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid,
                                         RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Does what gen_RSA_SIG_X509_TBS_CERT does with a private KCDSA key. Codes: F_GEN_KCDSASIGN_TBS_CERT as for
 * gen_SIG_X509_Cert. */
VELPKI_API int gen_KCDSA_SIG_X509_TBS_CERT(X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid,
                                           KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Signs the standard encoding with a private RSA (PKCS#1 v1.5 or PSS), ECDSA or KCDSA key and the digest that the
 * TBS's algorithm names, and keeps the finished octets as if they had been received. The OID of RSASSA-PSS names no
 * digest: it is SHA-256, MGF1 has the same, and the salt its length. Codes: F_GEN_RSASIGN_TBS_CERT with 49, 48 (an
 * algorithm that is not among these), ERR_ALGORITHM_MISMATCH (a key of another kind), 3C, ERR_ASN1_ENCODING, those of
 * the TBS, or the provider's. */
VELPKI_API int gen_SIG_X509_Cert_RFC5280(X509_CERT *cert, const ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Does what gen_SIG_X509_Cert_RFC5280 does, with the given digest under RSASSA-PSS. Other algorithms do not look at
 * it. */
VELPKI_API int gen_SIG_X509_Cert_RFC5280_ex(X509_CERT *cert, const ASYMMETRIC_KEY *key,
                                            int pss_digest_id) VELPKI_NOEXCEPT;
/** @} */

/** @name Verifying certificates
 * @{ */
/** Verifies the signature with the issuer's RSA or KCDSA key: 0 valid; 1 for null and ECC keys;
 * F_VERIFY_RSASIGN_TBS_CERT or F_VERIFY_KCDSASIGN_TBS_CERT with 2B, 49 or ERR_ASN1_DECODING; those of the TBS; or the
 * provider's code (PKV_ERR_MISMATCH for a signature that is not valid).
 * @warning The TBS is encoded anew and the signature verified over those octets: certificates whose TBS is not this
 * library's own DER do not verify, and what decoding drops (a second attribute of an RDN, elements after the
 * extensions, parameters of algorithms) is not covered. verify_SIG_X509_CERT_RFC5280 verifies over the received
 * octets. */
VELPKI_API int verify_SIG_X509_CERT(X509_CERT *cert, ASYMMETRIC_KEY *key) VELPKI_NOEXCEPT;
/** Does what verify_SIG_X509_CERT does with an RSA key, with its warning; F_VERIFY_RSASIGN_TBS_CERT with 49 for null.
 */
VELPKI_API int verify_RSA_SIG_X509_CERT(X509_CERT *cert, RSA_UNIT *rsa_key) VELPKI_NOEXCEPT;
/** Does what verify_SIG_X509_CERT does with a KCDSA key, with its warning; F_VERIFY_KCDSASIGN_TBS_CERT with 49 for
 * null. */
VELPKI_API int verify_KCDSA_SIG_X509_CERT(X509_CERT *cert, KCDSA_UNIT *kcdsa_key) VELPKI_NOEXCEPT;
/** Verifies the received octets of a decoded certificate with the issuer's public key: RSA (PKCS#1 v1.5 and PSS),
 * ECDSA, Ed25519, KCDSA and DSA, the digest as the algorithm says. PSS takes digest, mask generation and the exact
 * length of the salt from its parameters, which have to be there; a key for id-RSASSA-PSS verifies PSS alone, and only
 * what its own parameters allow (RFC 4055). Codes: F_VERIFY_RSASIGN_TBS_CERT with 49 (null, or no received octets),
 * ERR_ALGORITHM_MISMATCH (inside and outside differ, parameters that do not fit, or the key is of another kind),
 * ERR_UNUSED_BITS, 48 (an algorithm, key or digest that is not among these), ERR_ASN1_DECODING, or the provider's
 * code.
 * @warning The strength of a digest or key is not judged: MD5 and SHA-1 verify. And a valid signature says nothing of
 * dates, names and powers; cpv_validate.h judges a path. */
VELPKI_API int verify_SIG_X509_CERT_RFC5280(const X509_CERT *cert, const X509_PUBKEY *issuer_key) VELPKI_NOEXCEPT;
/** Compares the certificate's dates with a time, null meaning now. Codes: F_VERIFY_X509_VALIDITY with
 * ERR_INVALID_X509_TIME_TYPE, ERR_CERT_NOT_BEFORE and ERR_CERT_NOT_AFTER (unreadable), ERR_INVALID_CERT_NOT_BEFORE and
 * ERR_INVALID_CERT_NOT_AFTER (outside), 49, 3C (no clock).
 * @warning Both boundaries are outside, and a missing date is not checked; verify_X509_validity_RFC5280 has the
 * boundaries inside and requires both dates. */
VELPKI_API int verify_X509_validity(const X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
/** Compares the dates, both of which have to be there in their standard form, with a time, null meaning now. The
 * boundaries are inside (RFC 5280 4.1.2.5). Codes of verify_X509_validity. */
VELPKI_API int verify_X509_validity_RFC5280(const X509_CERT *cert, const X509_TIME *time) VELPKI_NOEXCEPT;
/** @} */

/** @name Digests of certificates
 * @{ */
/** Digests the certificate's own DER into `out`, which has PKV_MAX_DIGEST_LENGTH octets; `*out_length` receives the
 * octets. 0, the codes of X509_CERT_to_Seq, or the provider's.
 * @warning That is the house encoding made anew. The fingerprint that other programs show is X509_CERT_digest_RFC5280.
 */
VELPKI_API int X509_CERT_digest(const X509_CERT *cert, int digest_id, unsigned char *out,
                                int *out_length) VELPKI_NOEXCEPT;
/** Digests the received octets, which is the fingerprint that other programs show. Codes of X509_CERT_digest.
 * @warning A certificate that was built or changed has no received octets; then this is X509_CERT_digest. */
VELPKI_API int X509_CERT_digest_RFC5280(const X509_CERT *cert, int digest_id, unsigned char *out,
                                        int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Lists of certificates
 * @{ */
/** A list owns its certificates, and is empty when new. */
VELPKI_API X509_CERTIFICATES *new_X509_CERTIFICATES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CERTIFICATES(X509_CERTIFICATES *p) VELPKI_NOEXCEPT;
/** Appends a deep copy; 0, or 1 on failure. */
VELPKI_API int add_X509_CERTIFICATES(X509_CERTIFICATES *list, const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Returns the first index whose serial number and whole house encoding equal the certificate's, or -1. */
VELPKI_API int get_X509_CERTS_index_by_X509_CERT(const X509_CERTIFICATES *certs, const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Encodes SEQUENCE OF Certificate in house form. Codes: F_X509_CERTIFICATES_TO_SEQ, or the certificate's. */
VELPKI_API int X509_CERTIFICATES_to_Seq(const X509_CERTIFICATES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes SEQUENCE OF Certificate in house form. Codes: F_SEQ_TO_X509_CERTIFICATES, or the certificate's. */
VELPKI_API int Seq_to_X509_CERTIFICATES(ASN1_UNIT *in, X509_CERTIFICATES **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Pairs of certificates
 * @{ */
/** A new pair is empty, and cannot be encoded before it has a certificate. Codes: F_X509_CERT_PAIR_TO_SEQ and
 * F_SEQ_TO_X509_CERT_PAIR, or the certificate's. */
VELPKI_API X509_CERT_PAIR *new_X509_CERT_PAIR(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_CERT_PAIR(X509_CERT_PAIR *p) VELPKI_NOEXCEPT;
VELPKI_API X509_CERT_PAIR *dup_X509_CERT_PAIR(const X509_CERT_PAIR *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_X509_CERT_PAIR(X509_CERT_PAIR *p) VELPKI_NOEXCEPT;
VELPKI_API int X509_CERT_PAIR_to_Seq(const X509_CERT_PAIR *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_CERT_PAIR(ASN1_UNIT *in, X509_CERT_PAIR **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Signature values
 * @{ */
/** Makes a new BIT STRING of KCDSASignatureValue ::= SEQUENCE { r BIT STRING, s INTEGER }; 0, or 1. Lengths are octets.
 */
VELPKI_API int encode_KCDSASignatureValue(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                          ASN1_STRING **encoded) VELPKI_NOEXCEPT;
/** Reads KCDSASignatureValue from any string that holds it, writes s with (bit length + 8) / 8 octets, and stores the
 * two lengths; 0, or 1 with nothing written. The lengths are not read.
 * @warning It needs 64 octets at each buffer, and refuses more. decode_KCDSASignatureValue_n is told the capacities. */
VELPKI_API int decode_KCDSASignatureValue(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                          const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
/** Does what decode_KCDSASignatureValue does in buffers whose capacities the lengths hold on entry; 1 also where they
 * do not suffice. */
VELPKI_API int decode_KCDSASignatureValue_n(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                            const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
/** Is encode_KCDSASignatureValue under a second spelling. */
VELPKI_API int encode_KCDSASignatrueValue(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                          ASN1_STRING **encoded) VELPKI_NOEXCEPT;
/** Is decode_KCDSASignatureValue under a second spelling, with its warning. */
VELPKI_API int decode_KCDSASignatrueValue(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                          const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
/** Makes a new BIT STRING of ECDSA-Sig-Value ::= SEQUENCE { r INTEGER, s INTEGER } (RFC 3279 2.2.3), with r and s given
 * as big-endian octets. Codes: F_ENCODE_ECDSA_SIGNATURE_VALUE with 49, 2B, 3C or ERR_ASN1_ENCODING. */
VELPKI_API int encode_ECDSA_SIGNATURE_VALUE(const unsigned char *r, int r_length, const unsigned char *s, int s_length,
                                            ASN1_STRING **encoded) VELPKI_NOEXCEPT;
/** Reads ECDSA-Sig-Value into buffers whose capacities the lengths hold on entry, without leading zeros, and stores the
 * lengths. Codes: F_DECODE_ECDSA_SIGNATURE_VALUE with 49, 2B (a buffer does not suffice) or ERR_ASN1_DECODING. */
VELPKI_API int decode_ECDSA_SIGNATURE_VALUE(unsigned char *r, int *r_length, unsigned char *s, int *s_length,
                                            const ASN1_STRING *encoded) VELPKI_NOEXCEPT;
/** @} */

/** @name Printing certificates
 * @{ */
/** Writes a certificate to standard output. Octets that a terminal would act on are made visible. */
VELPKI_API void print_X509(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Writes each certificate of a list as print_X509 does, numbered. */
VELPKI_API void print_X509_CERTIFICATES(const X509_CERTIFICATES *certs) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing public keys
 * @{ */
/** SubjectPublicKeyInfo in house form, as DER or under the PEM label "PUBLIC KEY". Results as asn1_io.h says. */
VELPKI_API int writeDER_X509_PUBKEY_to_Binary(X509_PUBKEY *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_PUBKEY_to_FILE(X509_PUBKEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_PUBKEY_to_Binary(X509_PUBKEY *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_PUBKEY_to_FILE(X509_PUBKEY *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_PUBKEY_from_Binary(X509_PUBKEY **out, const unsigned char *data,
                                               int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_PUBKEY_from_File(X509_PUBKEY **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_PUBKEY_from_Binary(X509_PUBKEY **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_PUBKEY_from_File(X509_PUBKEY **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** @name Reading and writing certificates
 * @{ */
/** A certificate in house form, as DER or under the PEM label "CERTIFICATE". Results as asn1_io.h says, and warnings as
 * at X509_CERT_to_Seq and Seq_to_X509_TBS_CERT. */
VELPKI_API int writeDER_X509_CERT_to_Binary(X509_CERT *in, unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_X509_CERT_to_FILE(X509_CERT *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CERT_to_Binary(X509_CERT *in, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_X509_CERT_to_FILE(X509_CERT *in, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CERT_from_Binary(X509_CERT **out, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_X509_CERT_from_File(X509_CERT **out, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CERT_from_Binary(X509_CERT **out, const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_X509_CERT_from_File(X509_CERT **out, const char *path) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
