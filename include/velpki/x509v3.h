/** @file velpki/x509v3.h
 * What stands inside the extensions of certificates, CRLs and CRL entries (RFC 5280 4.2 and 5.2).
 *
 * An extension (X509_EXTENSION, x509.h) holds its value as octets; the records here are those values decoded. To read
 * one, find the extension in its list and call the X509_EXTENSION_to_ function of its type; to write one, fill a
 * record, encode it with its _RFC5280 function and call create_X509_EXTENSION_from_Seq.
 *
 * Families (new_, free_, dup_, X_to_Seq, Seq_to_X) behave as docs/conventions.md says of SAMPLE, with two differences:
 * a list passed to Seq_to_ is appended to, all or nothing, and a failing element's own code goes up. Codes: each
 * function's own (F_GENERAL_NAME_TO_SEQ, F_SEQ_TO_GENERAL_NAME ...; the _RFC5280 form has the plain one's) with reason
 * 49, 3C, ERR_ASN1_ENCODING (a missing or unencodable member), ERR_ASN1_DECODING (a missing or unreadable one), and 2B
 * for a list without elements. What the groups below say of codes is in addition.
 *
 * @warning X_to_Seq and Seq_to_X have the house form, which departs from the standard in the tags that each group
 * names; others cannot read those values. The _RFC5280 pairs have the standard's form over the same records: exact
 * identifiers, members in their order and once, nothing left over, no empty list. A value that one form wrote may read
 * as something else in the other.
 *
 * Numbers are magnitudes in house form (02 01 FF is 255); the standard form refuses negative ones.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_X509V3_H
#define VELPKI_X509V3_H

#include <velpki/x509.h>

VELPKI_BEGIN

/** The choices of GeneralName (RFC 5280 4.2.1.6), and what `value` is for each. */
enum {
  GENERAL_NAME_OTHER = 0,      /**< OTHERNAME */
  GENERAL_NAME_RFC822 = 1,     /**< IA5_STRING, a mail address */
  GENERAL_NAME_DNS = 2,        /**< IA5_STRING, a host name */
  GENERAL_NAME_X400 = 3,       /**< ASN1_UNIT, not looked into */
  GENERAL_NAME_DIRECTORY = 4,  /**< X509_NAME */
  GENERAL_NAME_EDIPARTY = 5,   /**< EDIPARTYNAME */
  GENERAL_NAME_URI = 6,        /**< IA5_STRING */
  GENERAL_NAME_IP = 7,         /**< OCTET_STRING of 4 or 16 octets; with the mask, 8 or 32, in name constraints */
  GENERAL_NAME_REGISTERED = 8, /**< OBJECT_IDENTIFIER */
};

/** GeneralName (RFC 5280 4.2.1.6). */
typedef struct {
  int type;    /**< the choice, GENERAL_NAME_OTHER to GENERAL_NAME_REGISTERED */
  void *value; /**< owned, of the type that the choice names; null in the empty name */
} GENERAL_NAME;

/** A list of GENERAL_NAME: subjectAltName, issuerAltName. */
typedef STACK GENERAL_NAMES;

/** OtherName ::= SEQUENCE { type-id OBJECT IDENTIFIER, value [0] EXPLICIT ANY } (RFC 5280 4.2.1.6). The virtual
 * identifier of a Korean certificate travels in one; see kisa.h. */
typedef struct {
  OBJECT_IDENTIFIER *type_id; /**< null in a house subtree base whose choice is lost */
  ASN1_STRING *value;         /**< the encoded value, identifier and length included */
} OTHERNAME;

/** EDIPartyName (RFC 5280 4.2.1.6). */
typedef struct {
  ASN1_STRING *nameAssigner; /**< null when absent */
  ASN1_STRING *partyName;    /**< required */
} EDIPARTYNAME;

/** BasicConstraints (RFC 5280 4.2.1.9): whether the subject is a certification authority. */
typedef struct {
  int ca;                 /**< the octet of the BOOLEAN as decoded; not 0 is a CA */
  int *pathLenConstraint; /**< authorities that may follow in a path; owned, made with PKV_Malloc; null when absent */
} BASIC_CONSTRAINTS;

/** AuthorityKeyIdentifier (RFC 5280 4.2.1.1): which key of the issuer signed. Issuer and serial number stand together.
 */
typedef struct {
  OCTET_STRING *keyIdentifier;        /**< the issuer's SubjectKeyIdentifier; null when absent */
  GENERAL_NAMES *authorityCertIssuer; /**< who issued the issuer's certificate; null when absent */
  BIGINT *authorityCertSerialNumber;  /**< of the issuer's certificate; null when absent */
} AUTHORITY_KEYID;

/** AccessDescription (RFC 5280 4.2.2.1): where a service or further information is. */
typedef struct {
  OBJECT_IDENTIFIER *accessMethod; /**< "id-ad-ocsp", "id-ad-caIssuers" ... */
  GENERAL_NAME *accessLocation;    /**< most often a GENERAL_NAME_URI */
} ACCESS_DESCRIPTION;

/** A list of ACCESS_DESCRIPTION: AuthorityInfoAccess, SubjectInfoAccess. */
typedef STACK AUTHORITY_INFO_ACCESS;

/** A list of OBJECT_IDENTIFIER: the purposes that a key has (RFC 5280 4.2.1.12). */
typedef STACK EXTENDED_KEY_USAGE;

/** Kinds of DIST_POINT_NAME. */
enum {
  DIST_POINT_NAME_FULL = 0,    /**< GENERAL_NAMES */
  DIST_POINT_NAME_RELATIVE = 1 /**< one RDN below the name of the list's issuer */
};

/** DistributionPointName (RFC 5280 4.2.1.13). */
typedef struct {
  int type;    /**< DIST_POINT_NAME_FULL or DIST_POINT_NAME_RELATIVE */
  STACK *name; /**< GENERAL_NAMES, or for a relative name the X509_NAME of one RDN */
} DIST_POINT_NAME;

/** DistributionPoint (RFC 5280 4.2.1.13): where a revocation list for the certificate is. */
typedef struct {
  DIST_POINT_NAME *distpoint; /**< null when absent: then the list is at `CRLissuer` */
  BIT_STRING *reasons;        /**< ReasonFlags, the reasons that the list covers; null when it covers all */
  GENERAL_NAMES *CRLissuer;   /**< who signs the list where that is not the certificate's issuer; null when absent */
} DIST_POINT;

/** A list of DIST_POINT: CRLDistributionPoints, FreshestCRL. */
typedef STACK CRL_DIST_POINTS;

/** IssuingDistributionPoint (RFC 5280 5.2.5): what a revocation list covers. The flags hold the octet of the BOOLEAN as
 * decoded. */
typedef struct {
  DIST_POINT_NAME *distpoint;     /**< null when absent */
  int onlyContainsUserCerts;      /**< not 0: the list covers certificates of end entities only */
  int onlyContainsCACerts;        /**< not 0: certificates of authorities only */
  BIT_STRING *onlySomeReasons;    /**< ReasonFlags; null when the list covers all reasons */
  int indirectCRL;                /**< not 0: entries may be of other issuers */
  int onlyContainsAttributeCerts; /**< not 0: attribute certificates only; neither read nor written in house form */
} ISSUING_DIST_POINT;

/** A list of ISSUING_DIST_POINT. */
typedef STACK ISSUING_DIST_POINTS;

/** A list of BIGINT: the numbers of statements that an organization prepared. */
typedef STACK NOTICE_NUMBERS;

/** NoticeReference (RFC 5280 4.2.1.4). */
typedef struct {
  ASN1_STRING *organization;     /**< its `type` is the string type as encoded */
  NOTICE_NUMBERS *noticeNumbers; /**< null is written as an empty list */
} NOTICE_REFERENCE;

/** UserNotice (RFC 5280 4.2.1.4): text to show to somebody who relies on the certificate. */
typedef struct {
  NOTICE_REFERENCE *noticeRef; /**< null when absent */
  ASN1_STRING *explicitText;   /**< its `type` is the string type as encoded; null when absent */
} USER_NOTICE;

/** Kinds of POLICY_QUALIFIER_INFO. */
enum {
  POLICY_QUALIFIER_BY_ID = 0,  /**< what the OID says; any other OID: nothing owned */
  POLICY_QUALIFIER_CPS = 1,    /**< IA5_STRING, the URI of a practice statement */
  POLICY_QUALIFIER_NOTICE = 2, /**< USER_NOTICE */
  POLICY_QUALIFIER_OTHER = 3   /**< ASN1_UNIT (_RFC5280 only) */
};

/** PolicyQualifierInfo (RFC 5280 4.2.1.4). */
typedef struct {
  OBJECT_IDENTIFIER *policyQualifierId; /**< "id-qt-cps", "id-qt-unotice" or another */
  void *qualifier;                      /**< owned, of the type that `kind` says; null for none */
  int kind;                             /**< POLICY_QUALIFIER_BY_ID to POLICY_QUALIFIER_OTHER */
} POLICY_QUALIFIER_INFO;

/** A list of POLICY_QUALIFIER_INFO. */
typedef STACK POLICY_QUALIFIERS;

/** PolicyInformation (RFC 5280 4.2.1.4): a policy under which the certificate was issued. */
typedef struct {
  OBJECT_IDENTIFIER *policyIdentifier; /**< the policy's OID */
  POLICY_QUALIFIERS *policyQualifiers; /**< null when absent */
} POLICY_INFO;

/** A list of POLICY_INFO: CertificatePolicies. */
typedef STACK CERTIFICATE_POLICIES;

/** One element of PolicyMappings (RFC 5280 4.2.1.5): two policies that the issuer takes for the same. */
typedef struct {
  OBJECT_IDENTIFIER *issuerDomainPolicy;  /**< the issuer's policy */
  OBJECT_IDENTIFIER *subjectDomainPolicy; /**< the subject's policy */
} POLICY_MAPPING;

/** A list of POLICY_MAPPING: PolicyMappings. */
typedef STACK POLICY_MAPPINGS;

/** PolicyConstraints (RFC 5280 4.2.1.11). */
typedef struct {
  BIGINT *requireExplicitPolicy; /**< certificates that may follow before every one needs a policy; null when absent */
  BIGINT *inhibitPolicyMapping;  /**< certificates that may follow before mapping ends; null when absent */
} POLICY_CONSTRAINTS;

/** GeneralSubtree (RFC 5280 4.2.1.10): all names under a base. */
typedef struct {
  GENERAL_NAME *base; /**< required */
  BIGINT *minimum;    /**< null is 0, the only value that RFC 5280 has */
  BIGINT *maximum;    /**< null when absent, as RFC 5280 wants */
} GENERAL_SUBTREE;

/** A list of GENERAL_SUBTREE. */
typedef STACK GENERAL_SUBTREES;

/** NameConstraints (RFC 5280 4.2.1.10): which names the certificates below may have. */
typedef struct {
  GENERAL_SUBTREES *permittedSubtrees; /**< null when absent: then every name is permitted that is not excluded */
  GENERAL_SUBTREES *excludedSubtrees;  /**< null when absent */
} NAME_CONSTRAINTS;

/** DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING } (RFC 8017 9.2). */
typedef struct {
  X509_ALGO_IDENTIFIER *algorithm; /**< of the digest */
  OCTET_STRING *digest;            /**< its octets */
} X509_SIGN;

/** @name GENERAL_NAME (RFC 5280 4.2.1.6)
 * @{ */
/** A new name is empty: type 0, without value. House form of the choices: 0 A0{SEQUENCE}, 1 81, 2 A2{IA5String}, 3
 * A3{value}, 4 A4{Name}, 5 A0{SEQUENCE}, 6 86, 7 A7{OCTET STRING}, 8 A8{OBJECT IDENTIFIER}; the standard's are 0 A0, 1
 * 81, 2 82, 3 A3, 4 A4{Name}, 5 A5, 6 86, 7 87, 8 88. Both readers take names without looking at their characters.
 * @warning House reading goes by the low five bits of the identifier alone. Choices 2, 7 and 8 are read without the
 * wrapper they are written in, so the inner identifier and length come back as part of the value; choice 5 comes back
 * as choice 0; the length of choices 1 and 2 is their first length octet, so names of 128 octets and more are cut or
 * short; and choices 9 to 30 succeed with the empty name (`value` is null), which every user of a name must test. */
VELPKI_API GENERAL_NAME *new_GENERAL_NAME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_GENERAL_NAME(GENERAL_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API GENERAL_NAME *dup_GENERAL_NAME(const GENERAL_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_NAME_to_Seq(const GENERAL_NAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_NAME(ASN1_UNIT *in, GENERAL_NAME **out) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_NAME_to_Seq_RFC5280(const GENERAL_NAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_NAME_RFC5280(ASN1_UNIT *in, GENERAL_NAME **out) VELPKI_NOEXCEPT;
/** @} */

/** @name GENERAL_NAMES (RFC 5280 4.2.1.6)
 * @{ */
/** SEQUENCE OF GeneralName, with the warning at GENERAL_NAME_to_Seq. An empty list is 30 00 in house
 * form, which neither form reads (2B), and 2B in standard form. */
VELPKI_API GENERAL_NAMES *new_GENERAL_NAMES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_GENERAL_NAMES(GENERAL_NAMES *p) VELPKI_NOEXCEPT;
VELPKI_API GENERAL_NAMES *dup_GENERAL_NAMES(const GENERAL_NAMES *p) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_NAMES_to_Seq(const GENERAL_NAMES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_NAMES(ASN1_UNIT *in, GENERAL_NAMES **out) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_NAMES_to_Seq_RFC5280(const GENERAL_NAMES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_NAMES_RFC5280(ASN1_UNIT *in, GENERAL_NAMES **out) VELPKI_NOEXCEPT;
/** @} */

/** @name OTHERNAME and EDIPARTYNAME (RFC 5280 4.2.1.6)
 * @{ */
/** House form: SEQUENCE { OID, 80 value } and SEQUENCE { 80 assigner, 81 name }, read by number in any order; the
 * strings come back as octets without their type. Standard: SEQUENCE { OID, A0{value} } and SEQUENCE { A0{assigner},
 * A1{name} } with strings of the DirectoryString types. */
VELPKI_API OTHERNAME *new_OTHERNAME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_OTHERNAME(OTHERNAME *p) VELPKI_NOEXCEPT;
VELPKI_API OTHERNAME *dup_OTHERNAME(const OTHERNAME *p) VELPKI_NOEXCEPT;
VELPKI_API int OTHERNAME_to_Seq(const OTHERNAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OTHERNAME(ASN1_UNIT *in, OTHERNAME **out) VELPKI_NOEXCEPT;
VELPKI_API int OTHERNAME_to_Seq_RFC5280(const OTHERNAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_OTHERNAME_RFC5280(ASN1_UNIT *in, OTHERNAME **out) VELPKI_NOEXCEPT;
VELPKI_API EDIPARTYNAME *new_EDIPARTYNAME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_EDIPARTYNAME(EDIPARTYNAME *p) VELPKI_NOEXCEPT;
VELPKI_API EDIPARTYNAME *dup_EDIPARTYNAME(const EDIPARTYNAME *p) VELPKI_NOEXCEPT;
VELPKI_API int EDIPARTYNAME_to_Seq(const EDIPARTYNAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_EDIPARTYNAME(ASN1_UNIT *in, EDIPARTYNAME **out) VELPKI_NOEXCEPT;
VELPKI_API int EDIPARTYNAME_to_Seq_RFC5280(const EDIPARTYNAME *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_EDIPARTYNAME_RFC5280(ASN1_UNIT *in, EDIPARTYNAME **out) VELPKI_NOEXCEPT;
/** @} */

/** @name AUTHORITY_KEYID (RFC 5280 4.2.1.1)
 * @{ */
/** SEQUENCE { 80 keyIdentifier, A1 authorityCertIssuer, 82 authorityCertSerialNumber }, any of which may be absent:
 * only the names inside depart from the standard. In house form members go by number in any order, others are passed
 * over. */
VELPKI_API AUTHORITY_KEYID *new_AUTHORITY_KEYID(void) VELPKI_NOEXCEPT;
VELPKI_API void free_AUTHORITY_KEYID(AUTHORITY_KEYID *p) VELPKI_NOEXCEPT;
VELPKI_API AUTHORITY_KEYID *dup_AUTHORITY_KEYID(const AUTHORITY_KEYID *p) VELPKI_NOEXCEPT;
VELPKI_API int AUTHORITY_KEYID_to_Seq(const AUTHORITY_KEYID *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_AUTHORITY_KEYID(ASN1_UNIT *in, AUTHORITY_KEYID **out) VELPKI_NOEXCEPT;
VELPKI_API int AUTHORITY_KEYID_to_Seq_RFC5280(const AUTHORITY_KEYID *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_AUTHORITY_KEYID_RFC5280(ASN1_UNIT *in, AUTHORITY_KEYID **out) VELPKI_NOEXCEPT;
/** @} */

/** @name EXTENDED_KEY_USAGE (RFC 5280 4.2.1.12)
 * @{ */
/** A list of key purposes, not empty. There is no house form; codes are 0x47000000 with the reason. */
VELPKI_API EXTENDED_KEY_USAGE *new_EXTENDED_KEY_USAGE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_EXTENDED_KEY_USAGE(EXTENDED_KEY_USAGE *p) VELPKI_NOEXCEPT;
VELPKI_API int EXTENDED_KEY_USAGE_to_Seq_RFC5280(const EXTENDED_KEY_USAGE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_EXTENDED_KEY_USAGE_RFC5280(ASN1_UNIT *in, EXTENDED_KEY_USAGE **out) VELPKI_NOEXCEPT;
/** @} */

/** Bits of KeyUsage, numbered from the first (RFC 5280 4.2.1.3); see has_KEY_USAGE. */
enum {
  KEY_USAGE_DIGITAL_SIGNATURE = 0, /**< signs anything but certificates and lists */
  KEY_USAGE_NON_REPUDIATION = 1,   /**< signs what cannot be denied later (contentCommitment) */
  KEY_USAGE_KEY_ENCIPHERMENT = 2,  /**< encrypts keys */
  KEY_USAGE_DATA_ENCIPHERMENT = 3, /**< encrypts data without another key */
  KEY_USAGE_KEY_AGREEMENT = 4,     /**< agrees on keys */
  KEY_USAGE_KEY_CERT_SIGN = 5,     /**< signs certificates */
  KEY_USAGE_CRL_SIGN = 6,          /**< signs revocation lists */
  KEY_USAGE_ENCIPHER_ONLY = 7,     /**< with key agreement: encrypts only */
  KEY_USAGE_DECIPHER_ONLY = 8,     /**< with key agreement: decrypts only */
};

/** @name Key identifier and key usage (RFC 5280 4.2.1.2, 4.2.1.3)
 * @{ */
/** Encodes SubjectKeyIdentifier ::= OCTET STRING. Codes are 0x47000000 with 49, 3C or ERR_ASN1_ENCODING. */
VELPKI_API int SUBJECT_KEYID_to_Seq_RFC5280(const OCTET_STRING *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes SubjectKeyIdentifier in place of `*out`. Codes are 0x47000000 with 49, 3C or ERR_ASN1_DECODING. */
VELPKI_API int Seq_to_SUBJECT_KEYID_RFC5280(ASN1_UNIT *in, OCTET_STRING **out) VELPKI_NOEXCEPT;
/** Encodes KeyUsage ::= BIT STRING without trailing zero bits (X.690 11.2.2). Codes as SUBJECT_KEYID_to_Seq_RFC5280. */
VELPKI_API int KEY_USAGE_to_Seq_RFC5280(const BIT_STRING *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes KeyUsage in place of `*out`. Codes as Seq_to_SUBJECT_KEYID_RFC5280. */
VELPKI_API int Seq_to_KEY_USAGE_RFC5280(ASN1_UNIT *in, BIT_STRING **out) VELPKI_NOEXCEPT;
/** Returns 1 when a bit is set, 0 when not, for an unused bit and for null. */
VELPKI_API int has_KEY_USAGE(const BIT_STRING *usage, int bit) VELPKI_NOEXCEPT;
/** @} */

/** @name Policy qualifiers (RFC 5280 4.2.1.4)
 * @{ */
/** From the inside out: NOTICE_NUMBERS, NOTICE_REFERENCE, USER_NOTICE, POLICY_QUALIFIER_INFO and their list. In house
 * form a qualifier's OID decides what is written: "id-qt-cps" an IA5String, "id-qt-unotice" a USER_NOTICE; any other
 * OID, or a `kind` that disagrees, is ERR_ASN1_ENCODING. What is read goes by the value's identifier: a SEQUENCE
 * becomes a USER_NOTICE, an IA5String the string, anything else no qualifier. A POLICY_QUALIFIER_INFO has exactly two
 * elements.
 * @warning Text is written under its own type and read as any; a VisibleString is read but has no house encoder. An
 * empty NOTICE_NUMBERS is written as SEQUENCE { NULL }, which does not read back. The _RFC5280 forms write the
 * VisibleString and the empty list, and keep qualifiers of other kinds as units. */
VELPKI_API NOTICE_NUMBERS *new_NOTICE_NUMBERS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_NOTICE_NUMBERS(NOTICE_NUMBERS *p) VELPKI_NOEXCEPT;
VELPKI_API NOTICE_NUMBERS *dup_NOTICE_NUMBERS(const NOTICE_NUMBERS *p) VELPKI_NOEXCEPT;
VELPKI_API int NOTICE_NUMBERS_to_Seq(const NOTICE_NUMBERS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_NOTICE_NUMBERS(ASN1_UNIT *in, NOTICE_NUMBERS **out) VELPKI_NOEXCEPT;
VELPKI_API int NOTICE_NUMBERS_to_Seq_RFC5280(const NOTICE_NUMBERS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_NOTICE_NUMBERS_RFC5280(ASN1_UNIT *in, NOTICE_NUMBERS **out) VELPKI_NOEXCEPT;
VELPKI_API NOTICE_REFERENCE *new_NOTICE_REFERENCE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_NOTICE_REFERENCE(NOTICE_REFERENCE *p) VELPKI_NOEXCEPT;
VELPKI_API NOTICE_REFERENCE *dup_NOTICE_REFERENCE(const NOTICE_REFERENCE *p) VELPKI_NOEXCEPT;
VELPKI_API int NOTICE_REFERENCE_to_Seq(const NOTICE_REFERENCE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_NOTICE_REFERENCE(ASN1_UNIT *in, NOTICE_REFERENCE **out) VELPKI_NOEXCEPT;
VELPKI_API int NOTICE_REFERENCE_to_Seq_RFC5280(const NOTICE_REFERENCE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_NOTICE_REFERENCE_RFC5280(ASN1_UNIT *in, NOTICE_REFERENCE **out) VELPKI_NOEXCEPT;
VELPKI_API USER_NOTICE *new_USER_NOTICE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_USER_NOTICE(USER_NOTICE *p) VELPKI_NOEXCEPT;
VELPKI_API USER_NOTICE *dup_USER_NOTICE(const USER_NOTICE *p) VELPKI_NOEXCEPT;
VELPKI_API int USER_NOTICE_to_Seq(const USER_NOTICE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_USER_NOTICE(ASN1_UNIT *in, USER_NOTICE **out) VELPKI_NOEXCEPT;
VELPKI_API int USER_NOTICE_to_Seq_RFC5280(const USER_NOTICE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_USER_NOTICE_RFC5280(ASN1_UNIT *in, USER_NOTICE **out) VELPKI_NOEXCEPT;
VELPKI_API POLICY_QUALIFIER_INFO *new_POLICY_QUALIFIER_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_POLICY_QUALIFIER_INFO(POLICY_QUALIFIER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API POLICY_QUALIFIER_INFO *dup_POLICY_QUALIFIER_INFO(const POLICY_QUALIFIER_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_QUALIFIER_INFO_to_Seq(const POLICY_QUALIFIER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_QUALIFIER_INFO(ASN1_UNIT *in, POLICY_QUALIFIER_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_QUALIFIER_INFO_to_Seq_RFC5280(const POLICY_QUALIFIER_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_QUALIFIER_INFO_RFC5280(ASN1_UNIT *in, POLICY_QUALIFIER_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API POLICY_QUALIFIERS *new_POLICY_QUALIFIERS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_POLICY_QUALIFIERS(POLICY_QUALIFIERS *p) VELPKI_NOEXCEPT;
VELPKI_API POLICY_QUALIFIERS *dup_POLICY_QUALIFIERS(const POLICY_QUALIFIERS *p) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_QUALIFIERS_to_Seq(const POLICY_QUALIFIERS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_QUALIFIERS(ASN1_UNIT *in, POLICY_QUALIFIERS **out) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_QUALIFIERS_to_Seq_RFC5280(const POLICY_QUALIFIERS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_QUALIFIERS_RFC5280(ASN1_UNIT *in, POLICY_QUALIFIERS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Policies (RFC 5280 4.2.1.4)
 * @{ */
/** SEQUENCE { policyIdentifier, policyQualifiers OPTIONAL }, of one or two elements, and its list, which has one
 * element at least. The qualifiers inside have the warning at POLICY_QUALIFIERS_to_Seq. Where the list of qualifiers
 * is empty, the standard form reads none. */
VELPKI_API POLICY_INFO *new_POLICY_INFO(void) VELPKI_NOEXCEPT;
VELPKI_API void free_POLICY_INFO(POLICY_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API POLICY_INFO *dup_POLICY_INFO(const POLICY_INFO *p) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_INFO_to_Seq(const POLICY_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_INFO(ASN1_UNIT *in, POLICY_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_INFO_to_Seq_RFC5280(const POLICY_INFO *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_INFO_RFC5280(ASN1_UNIT *in, POLICY_INFO **out) VELPKI_NOEXCEPT;
VELPKI_API CERTIFICATE_POLICIES *new_CERTIFICATE_POLICIES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CERTIFICATE_POLICIES(CERTIFICATE_POLICIES *p) VELPKI_NOEXCEPT;
VELPKI_API CERTIFICATE_POLICIES *dup_CERTIFICATE_POLICIES(const CERTIFICATE_POLICIES *p) VELPKI_NOEXCEPT;
VELPKI_API int CERTIFICATE_POLICIES_to_Seq(const CERTIFICATE_POLICIES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CERTIFICATE_POLICIES(ASN1_UNIT *in, CERTIFICATE_POLICIES **out) VELPKI_NOEXCEPT;
VELPKI_API int CERTIFICATE_POLICIES_to_Seq_RFC5280(const CERTIFICATE_POLICIES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CERTIFICATE_POLICIES_RFC5280(ASN1_UNIT *in, CERTIFICATE_POLICIES **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Policy mappings (RFC 5280 4.2.1.5)
 * @{ */
/** SEQUENCE { issuerDomainPolicy, subjectDomainPolicy } and its list, which has one element at least. Both forms have
 * the same octets. */
VELPKI_API POLICY_MAPPING *new_POLICY_MAPPING(void) VELPKI_NOEXCEPT;
VELPKI_API void free_POLICY_MAPPING(POLICY_MAPPING *p) VELPKI_NOEXCEPT;
VELPKI_API POLICY_MAPPING *dup_POLICY_MAPPING(const POLICY_MAPPING *p) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_MAPPING_to_Seq(const POLICY_MAPPING *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_MAPPING(ASN1_UNIT *in, POLICY_MAPPING **out) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_MAPPING_to_Seq_RFC5280(const POLICY_MAPPING *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_MAPPING_RFC5280(ASN1_UNIT *in, POLICY_MAPPING **out) VELPKI_NOEXCEPT;
VELPKI_API POLICY_MAPPINGS *new_POLICY_MAPPINGS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_POLICY_MAPPINGS(POLICY_MAPPINGS *p) VELPKI_NOEXCEPT;
VELPKI_API POLICY_MAPPINGS *dup_POLICY_MAPPINGS(const POLICY_MAPPINGS *p) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_MAPPINGS_to_Seq(const POLICY_MAPPINGS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_MAPPINGS(ASN1_UNIT *in, POLICY_MAPPINGS **out) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_MAPPINGS_to_Seq_RFC5280(const POLICY_MAPPINGS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_MAPPINGS_RFC5280(ASN1_UNIT *in, POLICY_MAPPINGS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name POLICY_CONSTRAINTS (RFC 5280 4.2.1.11)
 * @{ */
/** A new record has neither number.
 * @warning House form: the INTEGERs are tagged A0 and A1 though they are primitive; the standard's are 80 and 81. Both
 * are read. */
VELPKI_API POLICY_CONSTRAINTS *new_POLICY_CONSTRAINTS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_POLICY_CONSTRAINTS(POLICY_CONSTRAINTS *p) VELPKI_NOEXCEPT;
VELPKI_API POLICY_CONSTRAINTS *dup_POLICY_CONSTRAINTS(const POLICY_CONSTRAINTS *p) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_CONSTRAINTS_to_Seq(const POLICY_CONSTRAINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_CONSTRAINTS(ASN1_UNIT *in, POLICY_CONSTRAINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int POLICY_CONSTRAINTS_to_Seq_RFC5280(const POLICY_CONSTRAINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_POLICY_CONSTRAINTS_RFC5280(ASN1_UNIT *in, POLICY_CONSTRAINTS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name BASIC_CONSTRAINTS (RFC 5280 4.2.1.9)
 * @{ */
/** A new record is of no authority. Lengths above INT_MAX read as INT_MAX. The _RFC5280 pair reads cA as false where it
 * is absent, refuses a BOOLEAN that is neither 00 nor FF, reads a length without cA all the same, and writes one of any
 * size, with cA only.
 * @warning House form writes `pathLenConstraint & 0xFF` in one octet: 128 to 255 are negative numbers to others, and
 * from 256 on another length is read back. And it
 * reads no value without the BOOLEAN: the empty SEQUENCE of a certificate that is no CA, which it also writes, is
 * ERR_ASN1_DECODING. */
VELPKI_API BASIC_CONSTRAINTS *new_BASIC_CONSTRAINTS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_BASIC_CONSTRAINTS(BASIC_CONSTRAINTS *p) VELPKI_NOEXCEPT;
VELPKI_API BASIC_CONSTRAINTS *dup_BASIC_CONSTRAINTS(const BASIC_CONSTRAINTS *p) VELPKI_NOEXCEPT;
VELPKI_API int BASIC_CONSTRAINTS_to_Seq(const BASIC_CONSTRAINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_BASIC_CONSTRAINTS(ASN1_UNIT *in, BASIC_CONSTRAINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int BASIC_CONSTRAINTS_to_Seq_RFC5280(const BASIC_CONSTRAINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_BASIC_CONSTRAINTS_RFC5280(ASN1_UNIT *in, BASIC_CONSTRAINTS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Name constraints (RFC 5280 4.2.1.10)
 * @{ */
/** SEQUENCE { A0 permittedSubtrees, A1 excludedSubtrees }, each a list of one subtree at least. A new GENERAL_SUBTREE
 * has no base, and needs one to be encoded.
 * @warning House form loses what kind of name a base is: GENERAL_SUBTREE is written as A0 { base, minimum } or, with a
 * maximum, A1 { base, minimum, maximum }, with the base's identifier overwritten by A0, so every base reads back as
 * choice 0, an OTHERNAME without type_id where it is none. A missing minimum is written as 0. */
VELPKI_API GENERAL_SUBTREE *new_GENERAL_SUBTREE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_GENERAL_SUBTREE(GENERAL_SUBTREE *p) VELPKI_NOEXCEPT;
VELPKI_API GENERAL_SUBTREE *dup_GENERAL_SUBTREE(const GENERAL_SUBTREE *p) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_SUBTREE_to_Seq(const GENERAL_SUBTREE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_SUBTREE(ASN1_UNIT *in, GENERAL_SUBTREE **out) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_SUBTREE_to_Seq_RFC5280(const GENERAL_SUBTREE *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_SUBTREE_RFC5280(ASN1_UNIT *in, GENERAL_SUBTREE **out) VELPKI_NOEXCEPT;
VELPKI_API GENERAL_SUBTREES *new_GENERAL_SUBTREES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_GENERAL_SUBTREES(GENERAL_SUBTREES *p) VELPKI_NOEXCEPT;
VELPKI_API GENERAL_SUBTREES *dup_GENERAL_SUBTREES(const GENERAL_SUBTREES *p) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_SUBTREES_to_Seq(const GENERAL_SUBTREES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_SUBTREES(ASN1_UNIT *in, GENERAL_SUBTREES **out) VELPKI_NOEXCEPT;
VELPKI_API int GENERAL_SUBTREES_to_Seq_RFC5280(const GENERAL_SUBTREES *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_GENERAL_SUBTREES_RFC5280(ASN1_UNIT *in, GENERAL_SUBTREES **out) VELPKI_NOEXCEPT;
VELPKI_API NAME_CONSTRAINTS *new_NAME_CONSTRAINTS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_NAME_CONSTRAINTS(NAME_CONSTRAINTS *p) VELPKI_NOEXCEPT;
VELPKI_API NAME_CONSTRAINTS *dup_NAME_CONSTRAINTS(const NAME_CONSTRAINTS *p) VELPKI_NOEXCEPT;
VELPKI_API int NAME_CONSTRAINTS_to_Seq(const NAME_CONSTRAINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_NAME_CONSTRAINTS(ASN1_UNIT *in, NAME_CONSTRAINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int NAME_CONSTRAINTS_to_Seq_RFC5280(const NAME_CONSTRAINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_NAME_CONSTRAINTS_RFC5280(ASN1_UNIT *in, NAME_CONSTRAINTS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name DIST_POINT_NAME (RFC 5280 4.2.1.13)
 * @{ */
/** A new record is of type 0, without name. It has no codec of its own. */
VELPKI_API DIST_POINT_NAME *new_DIST_POINT_NAME(void) VELPKI_NOEXCEPT;
VELPKI_API void free_DIST_POINT_NAME(DIST_POINT_NAME *p) VELPKI_NOEXCEPT;
VELPKI_API DIST_POINT_NAME *dup_DIST_POINT_NAME(const DIST_POINT_NAME *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Distribution points (RFC 5280 4.2.1.13)
 * @{ */
/** House form: SEQUENCE { A0{A0 names}, A1{BIT STRING}, A2 names }; the reasons of the standard are 81. Readers take a
 * relative name (A1) in both. The list has one element at least.
 * @warning DIST_POINT_to_Seq writes full names only: without a name, or with a relative one, it is ERR_ASN1_ENCODING.
 * Seq_to_DIST_POINT reads the reasons of the house form only; the standard's `81` fails. */
VELPKI_API DIST_POINT *new_DIST_POINT(void) VELPKI_NOEXCEPT;
VELPKI_API void free_DIST_POINT(DIST_POINT *p) VELPKI_NOEXCEPT;
VELPKI_API DIST_POINT *dup_DIST_POINT(const DIST_POINT *p) VELPKI_NOEXCEPT;
VELPKI_API int DIST_POINT_to_Seq(const DIST_POINT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_DIST_POINT(ASN1_UNIT *in, DIST_POINT **out) VELPKI_NOEXCEPT;
VELPKI_API int DIST_POINT_to_Seq_RFC5280(const DIST_POINT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_DIST_POINT_RFC5280(ASN1_UNIT *in, DIST_POINT **out) VELPKI_NOEXCEPT;
VELPKI_API CRL_DIST_POINTS *new_CRL_DIST_POINTS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_CRL_DIST_POINTS(CRL_DIST_POINTS *p) VELPKI_NOEXCEPT;
VELPKI_API CRL_DIST_POINTS *dup_CRL_DIST_POINTS(const CRL_DIST_POINTS *p) VELPKI_NOEXCEPT;
VELPKI_API int CRL_DIST_POINTS_to_Seq(const CRL_DIST_POINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CRL_DIST_POINTS(ASN1_UNIT *in, CRL_DIST_POINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int CRL_DIST_POINTS_to_Seq_RFC5280(const CRL_DIST_POINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_CRL_DIST_POINTS_RFC5280(ASN1_UNIT *in, CRL_DIST_POINTS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Issuing distribution points (RFC 5280 5.2.5)
 * @{ */
/** A new record covers everything. In house form every member has an explicit wrapper; the standard's are implicit.
 * @warning Seq_to_issuing_DIST_POINT takes both forms of a member, by its constructed bit. The codes of
 * ISSUING_DIST_POINTS are also those of CERTIFICATE_POLICIES. */
VELPKI_API ISSUING_DIST_POINT *new_ISSUING_DIST_POINT(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ISSUING_DIST_POINT(ISSUING_DIST_POINT *p) VELPKI_NOEXCEPT;
VELPKI_API int issuing_DIST_POINT_to_Seq(const ISSUING_DIST_POINT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_issuing_DIST_POINT(ASN1_UNIT *in, ISSUING_DIST_POINT **out) VELPKI_NOEXCEPT;
VELPKI_API int issuing_DIST_POINT_to_Seq_RFC5280(const ISSUING_DIST_POINT *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_issuing_DIST_POINT_RFC5280(ASN1_UNIT *in, ISSUING_DIST_POINT **out) VELPKI_NOEXCEPT;
VELPKI_API ISSUING_DIST_POINTS *new_ISSUING_DIST_POINTS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ISSUING_DIST_POINTS(ISSUING_DIST_POINTS *p) VELPKI_NOEXCEPT;
VELPKI_API ISSUING_DIST_POINTS *dup_ISSUING_DIST_POINTS(const ISSUING_DIST_POINTS *p) VELPKI_NOEXCEPT;
VELPKI_API int issuing_DIST_POINTS_to_Seq(const ISSUING_DIST_POINTS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_issuing_DIST_POINTS(ASN1_UNIT *in, ISSUING_DIST_POINTS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Information access (RFC 5280 4.2.2)
 * @{ */
/** SEQUENCE { accessMethod, accessLocation } and its list, which has one element at least. Only the locations inside
 * depart from the standard; see GENERAL_NAME_to_Seq. */
VELPKI_API ACCESS_DESCRIPTION *new_ACCESS_DESCRIPTION(void) VELPKI_NOEXCEPT;
VELPKI_API void free_ACCESS_DESCRIPTION(ACCESS_DESCRIPTION *p) VELPKI_NOEXCEPT;
VELPKI_API ACCESS_DESCRIPTION *dup_ACCESS_DESCRIPTION(const ACCESS_DESCRIPTION *p) VELPKI_NOEXCEPT;
VELPKI_API int ACCESS_DESCRIPTION_to_Seq(const ACCESS_DESCRIPTION *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_ACCESS_DESCRIPTION(ASN1_UNIT *in, ACCESS_DESCRIPTION **out) VELPKI_NOEXCEPT;
VELPKI_API int ACCESS_DESCRIPTION_to_Seq_RFC5280(const ACCESS_DESCRIPTION *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_ACCESS_DESCRIPTION_RFC5280(ASN1_UNIT *in, ACCESS_DESCRIPTION **out) VELPKI_NOEXCEPT;
VELPKI_API AUTHORITY_INFO_ACCESS *new_AUTHORITY_INFO_ACCESS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_AUTHORITY_INFO_ACCESS(AUTHORITY_INFO_ACCESS *p) VELPKI_NOEXCEPT;
VELPKI_API int AUTHORITY_INFO_ACCESS_to_Seq(const AUTHORITY_INFO_ACCESS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_AUTHORITY_INFO_ACCESS(ASN1_UNIT *in, AUTHORITY_INFO_ACCESS **out) VELPKI_NOEXCEPT;
VELPKI_API int AUTHORITY_INFO_ACCESS_to_Seq_RFC5280(const AUTHORITY_INFO_ACCESS *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_AUTHORITY_INFO_ACCESS_RFC5280(ASN1_UNIT *in, AUTHORITY_INFO_ACCESS **out) VELPKI_NOEXCEPT;
/** @} */

/** @name X509_SIGN (RFC 8017 9.2)
 * @{ */
/** A new record has neither algorithm nor digest, and needs both to be encoded. */
VELPKI_API X509_SIGN *new_X509_SIGN(void) VELPKI_NOEXCEPT;
VELPKI_API void free_X509_SIGN(X509_SIGN *p) VELPKI_NOEXCEPT;
VELPKI_API int X509_SIGN_to_Seq(const X509_SIGN *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_X509_SIGN(ASN1_UNIT *in, X509_SIGN **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Values of extensions
 * @{ */
/** Decodes an extension's value, in standard form, into the record at `*out`, as Seq_to_ does; whole: octets left over
 * are ERR_TRAILING_OCTETS. Which extension it is stays with the caller. Codes are those of the record's decoder. */
VELPKI_API int X509_EXTENSION_to_GENERAL_NAMES_RFC5280(const X509_EXTENSION *in, GENERAL_NAMES **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_AUTHORITY_KEYID_RFC5280(const X509_EXTENSION *in,
                                                         AUTHORITY_KEYID **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_EXTENDED_KEY_USAGE_RFC5280(const X509_EXTENSION *in,
                                                            EXTENDED_KEY_USAGE **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_SUBJECT_KEYID_RFC5280(const X509_EXTENSION *in, OCTET_STRING **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_KEY_USAGE_RFC5280(const X509_EXTENSION *in, BIT_STRING **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_CERTIFICATE_POLICIES_RFC5280(const X509_EXTENSION *in,
                                                              CERTIFICATE_POLICIES **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_POLICY_MAPPINGS_RFC5280(const X509_EXTENSION *in,
                                                         POLICY_MAPPINGS **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_POLICY_CONSTRAINTS_RFC5280(const X509_EXTENSION *in,
                                                            POLICY_CONSTRAINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_BASIC_CONSTRAINTS_RFC5280(const X509_EXTENSION *in,
                                                           BASIC_CONSTRAINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_NAME_CONSTRAINTS_RFC5280(const X509_EXTENSION *in,
                                                          NAME_CONSTRAINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_CRL_DIST_POINTS_RFC5280(const X509_EXTENSION *in,
                                                         CRL_DIST_POINTS **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_issuing_DIST_POINT_RFC5280(const X509_EXTENSION *in,
                                                            ISSUING_DIST_POINT **out) VELPKI_NOEXCEPT;
VELPKI_API int X509_EXTENSION_to_AUTHORITY_INFO_ACCESS_RFC5280(const X509_EXTENSION *in,
                                                               AUTHORITY_INFO_ACCESS **out) VELPKI_NOEXCEPT;
/** Does what create_X509_EXTENSION_by_OID_index does for a value that is a unit, which stays the caller's. */
VELPKI_API X509_EXTENSION *create_X509_EXTENSION_from_Seq(X509_EXTENSION **extension, int oid_index, int critical,
                                                          const ASN1_UNIT *value) VELPKI_NOEXCEPT;
/** Makes a new unit of an extension's value, which is one whole value. Codes: F_SEQ_TO_X509_EXT with 49, 3C,
 * ERR_ASN1_DECODING or ERR_TRAILING_OCTETS. */
VELPKI_API int get_X509_EXTENSION_unit(const X509_EXTENSION *extension, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Printing extensions
 * @{ */
/** Writes the extensions of a certificate to standard output, with the values of those it knows, read in house form. A
 * value that cannot be read has its heading only. The texts have their oddities ("Policy Mapping" over certificate
 * policies). */
VELPKI_API void print_X509_Extension(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** Writes the extensions as print_X509_Extension does, read in standard form. */
VELPKI_API void print_X509_Extension_RFC5280(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
