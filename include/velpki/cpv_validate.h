/** @file velpki/cpv_validate.h
 * Validation of a certification path, by the rules of the house.
 *
 * Read cpv.h first: trust anchors, settings, the tree that comes out, and building the path that goes in. The walk
 * takes its terms from RFC 5280 section 6 and does a part of it; what it leaves out stands in the warnings below and in
 * docs/validation.md. */
#ifndef VELPKI_CPV_VALIDATE_H
#define VELPKI_CPV_VALIDATE_H

#include <velpki/cpv.h>
#include <velpki/x509v3.h>

VELPKI_BEGIN

/** Validates a path, the end entity at index 0 and a self-issued certificate last, and gives the valid policy tree: its
 * levels as they are left, null where none is. 0 for a valid path. Validations may run at the same time in several
 * threads, on different paths, policy sets and trees.
 *
 * From the last certificate to the first: a self-issued one (equal issuer and subject) must verify with its own key.
 * Any other must verify with the key of the one before, be valid now and have its subject as issuer; its certificate
 * policies make a new level of the tree; and the one before must have basic constraints (or no extensions at all) and,
 * if it has a key usage, keyCertSign. At the end the deepest level is cut down to the policies of
 * `user_initial_policy_set` (null: all), and what has no children goes.
 *
 * `*tree` null: a tree is made; on failure it stays null. Not null: that tree is extended, its first level being the
 * root; on failure it stays the caller's, whole, but null where the end left no level of it. It is released with
 * free_node_LIST. `user_initial_policy_set`, a list of OBJECT_IDENTIFIER, loses its elements, which are released, when
 * the walk along the path succeeds, whatever comes after; the STACK stays. When the walk fails it is untouched.
 *
 * Codes: F_VALIDATE_CERTPATH with 49 (null, also for an element), 3C or ERR_INVALID_VALID_POLICY_TREE (an explicit
 * policy is required and nothing is left); for a self-issued certificate those of verify_SIG_X509_CERT; those of
 * verify_X509_validity; F_PROCESS_BASIC_CERTIFICATE with 49 (no certificate before, no level above), 54 (signature),
 * ERR_TBS_CERT_ISSUER, 0E (policies that cannot be read) or ERR_INVALID_CERTIFICATE_POLICIES (required and missing);
 * F_VERIFY_BASICCONSTRAINTS with ERR_INVALID_BASIC_CONSTRAINTS, F_VERIFY_KEYUSAGE with ERR_INVALID_KEY_USAGE, and these
 * two, F_VERIFY_POLICYCONSTRANITS and F_VERIFY_INHIBITANYPOLICY with 2B (an empty list of extensions) or 0E (a value
 * that cannot be read); F_ADD_VALID_POLICY_TREE_LIST with ERR_INVALID_VALID_POLICY_TREE for certificates whose policies
 * would make more than 10,000 nodes or take more than 10,000,000 comparisons.
 *
 * @warning Nobody asks whether the last certificate is trusted; see get_TRUST_ANCHORS_index_by_TRUST_ANCHOR and
 * build_certPath.
 * @warning A self-issued certificate needs its own signature and nothing else, wherever it stands: no issuer, no dates,
 * no constraints. So a path whose first certificate is self-issued says nothing about that one; and one in the middle
 * makes the next one fail (F_PROCESS_BASIC_CERTIFICATE with 49), unless the tree passed in is deeper.
 * @warning Not checked at all: revocation, name constraints, extended key usage, critical extensions that are unknown,
 * the path length in numbers (a length of 0 refuses a CA below, also as the end entity; other lengths are not looked
 * at), policy mappings and anyPolicy inhibition. A CA passes without extensions, and with cA false if it has no key
 * usage. requireExplicitPolicy of 0 is ignored. Only the octet FF is true for cA.
 * @warning Extensions are read in house form: basic constraints without their BOOLEAN are unreadable. Signatures are
 * those of verify_SIG_X509_CERT: RSA and KCDSA, over the certificate encoded anew.
 * @warning Once a node of the deepest level has matched a policy of the user, all nodes after it stay; and anyPolicy in
 * the user's set ends the cutting before it begins, so the tree keeps nodes and levels without children. A node of
 * anyPolicy matches no other policy. Of two neighbouring nodes without children, a level that is extended loses the
 * first only. An empty path is decided by the user's set alone. */
VELPKI_API int validate_certpath(STACK *certs, STACK *user_initial_policy_set, node_LIST **tree) VELPKI_NOEXCEPT;

/** What validation after RFC 5280 is asked for. All zero means: now, any policy, any use, nothing about revocation.
 * Everything that is pointed to stays the caller's. */
typedef struct {
  const X509_TIME *time;                /**< null: the present */
  const STACK *user_initial_policy_set; /**< of OBJECT_IDENTIFIER, not consumed; null or empty: any policy */
  int initial_explicit_policy;          /**< 1: the path must be valid for some policy (RFC 5280 6.1.1 f) */
  int initial_policy_mapping_inhibit;   /**< 1: policies are not mapped (e) */
  int initial_any_policy_inhibit;       /**< 1: anyPolicy counts for nothing (g) */
  int max_length;                       /**< certificates of a path without its anchor; 0: 16 */
  int key_usage; /**< what the first certificate must allow, a mask of 1 << KEY_USAGE_ (x509v3.h); 0: anything */
  const OBJECT_IDENTIFIER *extended_key_usage; /**< a purpose that the path must be good for; null: any */
  const STACK *crls;                           /**< of X509_CRL */
  const STACK *pool;                           /**< of X509_CERT, which may have signed revocation lists */
  int flags;                                   /**< of CERTPATH_ */
  const GENERAL_SUBTREES *initial_permitted;   /**< names that are permitted (6.1.1 h); null: all */
  const GENERAL_SUBTREES *initial_excluded;    /**< names that are excluded (i); null: none */
} CERTPATH_SETTINGS;

/** Flags of CERTPATH_SETTINGS, which may be combined. */
enum {
  CERTPATH_CHECK_REVOCATION = 1,            /**< of every certificate, by the lists of the settings */
  CERTPATH_CHECK_REVOCATION_END_ENTITY = 2, /**< of the first certificate only */
  CERTPATH_ALLOW_WEAK_DIGESTS = 4,          /**< signatures over digests of less than 28 octets */
  CERTPATH_ANCHOR_CONSTRAINTS = 8 /**< what the anchor's own certificate says, where it is given, counts too */
};

/** What a validation found. */
typedef struct {
  int index;       /**< of the certificate that failed; -1: the path as a whole, or nothing */
  int anchor;      /**< index of the anchor that the path ends at; -1: none was found */
  STACK *policies; /**< of OBJECT_IDENTIFIER: the user-constrained policy set (RFC 5280 6.1.6) of a valid path,
                    * anyPolicy being 2.5.29.32.0; null otherwise. The caller's, released with free_CERTPATH_POLICIES */
} CERTPATH_REPORT;

/** Validates a path by RFC 5280 section 6.1, the end entity at index 0, each certificate issued by the next one and the
 * last one by an anchor. An anchor is a name and a key; where its own certificate ends the path, once or more, that is
 * left out. `settings` null: the defaults. `report` null: not wanted; it is written whatever the outcome. Nothing that
 * is passed is changed, and the settings of cpv.h are not read.
 *
 * What counts is the octets that were received: signatures are over them (verify_SIG_X509_CERT_RFC5280), and a
 * certificate or revocation list that the plain readers made is read anew by the standard's rules. Faster and surer is
 * to read certificates, lists and anchors with the _RFC5280 readers: a name of several attributes in one RDN that the
 * plain reader made of an anchor's certificate equals no issuer.
 *
 * Every certificate: signature, dates with both boundaries inside, issuer (cmp_X509_NAME_RFC5280), no extension twice,
 * none critical but key usage, alternative names, basic constraints, name constraints, policies, mappings, policy
 * constraints, distribution points, purposes and inhibitAnyPolicy, and all of these readable in standard form,
 * distribution points where they are critical. Each that issues: version 3, cA, keyCertSign if there is a key usage,
 * and no more authorities below than pathLenConstraint allows. Names: every kind but otherName, x400Address,
 * ediPartyName and registeredID, of which a critical constraint refuses any name of its kind; an rfc822Name constraint
 * holds for SmtpUTF8Mailbox (RFC 9598) too, and in a certificate without alternative names for emailAddress, and for
 * common names that read as host names where hosts are constrained. A name that is no proper one of its kind is refused
 * where its kind is constrained; where hosts are, so is a common name of wide characters (BMPString, UniversalString)
 * that cannot be converted, and one with a zero octet. Policies: a graph as in RFC 9618. Purposes: where
 * `extended_key_usage` is given, a certificate of the path that has a list of them must have it, or
 * anyExtendedKeyUsage.
 *
 * Revocation (RFC 5280 6.3), where it is asked for: of the lists that cover a certificate the newest decides, by
 * thisUpdate, then by CRL number, wherever it stands in `crls`, and the newest delta list that goes on from it. A list
 * is passed over that is not valid at the time, or not signed by the anchor, an authority of the path, or a certificate
 * of `pool` from which a path leads to the anchor. Equal certificates of `pool` are tried once.
 *
 * Work is bounded: at most 512 signatures are verified beside one for each certificate of `certs`, 65,536 names
 * compared and 128 more for each certificate of `certs` and `pool`, each anchor and each list, and paths looked for of
 * 64 signers of lists, everything that revocation asks for included. Beyond that nothing is valid: ERR_TOO_MUCH_WORK.
 *
 * Codes: F_VALIDATE_CERTPATH with 49 (null, an empty path, a certificate that keeps no received octets), 3C,
 * ERR_INVALID_TRUST_ANCHOR (no anchor has the name of the last issuer), ERR_INVALID_MAX_PATH_LENGTH (longer than
 * `max_length`), ERR_SIGNATURE_MISMATCH, ERR_WEAK_DIGEST, ERR_TBS_CERT_ISSUER, ERR_DUPLICATE_EXTENSION,
 * ERR_UNKNOWN_EXTENSION, ERR_TBS_CERT_VERSION (extensions, or an issuer, of another version than 3),
 * ERR_INVALID_BASIC_CONSTRAINTS, ERR_PATH_LENGTH_CONSTRAINT, ERR_INVALID_KEY_USAGE, ERR_EXTENDED_KEY_USAGE,
 * ERR_NAME_NOT_PERMITTED, ERR_NAME_EXCLUDED, ERR_NAME_UNREADABLE, ERR_NAME_CONSTRAINTS (constraints that cannot be
 * applied), ERR_INVALID_CERTIFICATE_POLICIES (a policy twice, or critical ones with an unknown qualifier),
 * ERR_INVALID_POLICY_MAPPING (of anyPolicy), ERR_INVALID_VALID_POLICY_TREE (a policy is required and none is left) or
 * ERR_TOO_MUCH_WORK (one of the limits, or more names times constraints than 2,000,000 or so); or the codes of the
 * reader of a value, of verify_X509_validity_RFC5280 and of verify_SIG_X509_CERT_RFC5280. Of revocation: 0x48000000
 * with ERR_CERT_REVOKED, ERR_CRL_MISSING (no list is about the certificate), ERR_CRL_REASONS (those that are cover some
 * reasons only) or ERR_TOO_MUCH_WORK; else why the newest list that is about the certificate gave no answer: 0x48000000
 * with 2B (it was built or changed, and not signed by an _RFC5280 function since), 3C, ERR_CRL_SIGN,
 * ERR_CRL_THIS_UPDATE, ERR_CRL_NEXT_UPDATE (also where it has none), ERR_CRL_INDIRECT, ERR_UNKNOWN_EXTENSION
 * (critical), ERR_DUPLICATE_EXTENSION, ERR_INVALID_X509_TIME_TYPE or ERR_SIGNATURE_MISMATCH, the code of why its
 * signer's path does not validate or F_BUILD_CERTPATH with ERR_NOT_FOUNDED or ERR_INVALID_MAX_PATH_LENGTH where there
 * is none, or the codes of readDER_X509_CRL_from_Binary_RFC5280, of verify_SIG_X509_CRL_RFC5280 and of the readers of
 * extension values. */
VELPKI_API int validate_certpath_strict(const STACK *certs, const TRUST_ANCHORS *anchors,
                                        const CERTPATH_SETTINGS *settings, CERTPATH_REPORT *report) VELPKI_NOEXCEPT;

/** Finds a path that validate_certpath_strict takes with these settings, from `cert` through certificates of `pool` to
 * an anchor, and gives a new STACK of copies, `cert` first and without the anchor's own certificate, released with
 * free_X509_CERTIFICATES. A path that fails is followed by the next one. Of several issuers those whose key identifier
 * agrees come first, and of equal certificates one is tried. No name and key come twice. At most 512 signatures are
 * verified, over all paths and their revocation, 65,536 names compared and 128 more for each certificate of both pools,
 * each anchor and each list, and paths looked for of 64 signers of lists.
 * `*path` is written on success only; the report is that of the path found, or of the last that failed. Codes: those of
 * the last path that reached an anchor and failed; else F_BUILD_CERTPATH with 49, 3C, ERR_NOT_FOUNDED (none reaches an
 * anchor) or ERR_INVALID_MAX_PATH_LENGTH (one of the limits was met before any did). With
 * CERTPATH_ANCHOR_CONSTRAINTS the anchor's certificate is looked for in `pool`. */
VELPKI_API int build_certPath_strict(STACK **path, const X509_CERT *cert, const STACK *pool,
                                     const TRUST_ANCHORS *anchors, const CERTPATH_SETTINGS *settings,
                                     CERTPATH_REPORT *report) VELPKI_NOEXCEPT;

/** Releases the policies of a report; null is nothing. */
VELPKI_API void free_CERTPATH_POLICIES(STACK *policies) VELPKI_NOEXCEPT;

VELPKI_END

#endif
