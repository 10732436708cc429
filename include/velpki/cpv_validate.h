/** @file velpki/cpv_validate.h
 * Validation of a certification path, by the rules of the house.
 *
 * Read cpv.h first: trust anchors, settings, the tree that comes out, and building the path that goes in. The walk
 * takes its terms from RFC 5280 section 6 and does a part of it; what it leaves out stands in the warnings below and in
 * docs/validation.md. */
#ifndef VELPKI_CPV_VALIDATE_H
#define VELPKI_CPV_VALIDATE_H

#include <velpki/cpv.h>

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

/** What validation after RFC 5280 is asked for. All zero means: now, any policy, nothing about revocation. Everything
 * that is pointed to stays the caller's. */
typedef struct {
  const X509_TIME *time;                /**< null: the present */
  const STACK *user_initial_policy_set; /**< of OBJECT_IDENTIFIER, not consumed; null or empty: any policy */
  int initial_explicit_policy;          /**< 1: the path must be valid for some policy (RFC 5280 6.1.1 f) */
  int initial_policy_mapping_inhibit;   /**< 1: policies are not mapped (e) */
  int initial_any_policy_inhibit;       /**< 1: anyPolicy counts for nothing (g) */
  int max_length;                       /**< certificates of a path without its anchor; 0: a bound of the library's */
  int key_usage;                        /**< a KEY_USAGE_ that the first certificate must allow; -1: any */
  const OBJECT_IDENTIFIER *extended_key_usage; /**< a purpose that the path must be good for; null: any */
  const STACK *crls;                           /**< of X509_CRL */
  const STACK *pool;                           /**< of X509_CERT, which may have signed revocation lists */
  int flags;                                   /**< of CERTPATH_ */
} CERTPATH_SETTINGS;

/** Flags of CERTPATH_SETTINGS, which may be combined. */
enum {
  CERTPATH_CHECK_REVOCATION = 1,            /**< of every certificate, by the lists of the settings */
  CERTPATH_CHECK_REVOCATION_END_ENTITY = 2, /**< of the first certificate only */
  CERTPATH_ALLOW_WEAK_DIGESTS = 4           /**< signatures over digests of less than 28 octets */
};

VELPKI_END

#endif
