/** @file velpki/cpv.h
 * Trust anchors, the settings of path validation, the valid policy tree, and building a path.
 *
 * The validation itself is in cpv_validate.h. A program collects its anchors (add_TRUST_ANCHORS, or a trust list of
 * ctl.h), builds a path with build_certPath, and validates that. The terms are those of RFC 5280 section 6;
 * docs/validation.md says how far the rules follow it. */
#ifndef VELPKI_CPV_H
#define VELPKI_CPV_H

#include <velpki/pkcs7.h>

VELPKI_BEGIN

/** A name and key that are trusted (RFC 5280 6.1.1 (d)). */
typedef struct {
  X509_NAME *trustedCAName;  /**< the subject of the anchor's certificate */
  X509_PUBKEY *trustedCAKey; /**< its key */
} TRUST_ANCHOR;
/** A list of TRUST_ANCHOR, in the order in which they were added. */
typedef STACK TRUST_ANCHORS;

/** What a node of the tree says (RFC 5280 6.1.2). */
typedef struct {
  int criticality;                 /**< 255 where the certificate's policies are critical, else 0 */
  OBJECT_IDENTIFIER *valid_policy; /**< one policy */
  void *qualifier_set;             /**< the caller's; null in what is made here, and never released */
  STACK *expected_policy_set;      /**< of OBJECT_IDENTIFIER */
} VALID_POLICY_DATA;
/** A node of the tree. It owns its data. */
typedef struct valid_policy_node {
  int child_count;                  /**< at the next level */
  VALID_POLICY_DATA *data;          /**< what the node says */
  struct valid_policy_node *parent; /**< lent; null at the root */
} VALID_POLICY_NODE;
/** A list of VALID_POLICY_NODE, which it owns. */
typedef STACK VALID_POLICY_NODES;

/** One level of the tree, and through `next` the deeper ones. */
typedef struct node_list {
  int node_count_hint;       /**< 0; no limit */
  int capacity;              /**< 64; no limit */
  VALID_POLICY_NODES *nodes; /**< null once the level is emptied */
  struct node_list *next;    /**< null at the deepest level */
} node_LIST;

/** @name Settings
 * @{ */
/** Stores the greatest length of a path and returns 0, or returns 1 for n < 1, which changes nothing. This and the
 * other settings hold for the whole process and are read once at the start of a validation; they may be changed at any
 * time, also while other threads validate.
 * @warning The length ends no validation: the number left stops at 0 and is never found to be below. */
VELPKI_API int set_max_certificatePath_length(int n) VELPKI_NOEXCEPT;
/** The length stored; 3 as long as nothing was. */
VELPKI_API int get_max_certificatePath_length(void) VELPKI_NOEXCEPT;
/** Sets whether every certificate but the self-issued ones must have certificate policies (initial-explicit-policy of
 * RFC 5280 6.1.1): 0 no, as at first, else yes. */
VELPKI_API void set_initial_explicit_policy(int flag) VELPKI_NOEXCEPT;
/** The value last set, 0 at first. */
VELPKI_API int get_initial_explicit_policy(void) VELPKI_NOEXCEPT;
/** Sets whether anyPolicy is inhibited from the start (initial-any-policy-inhibit of RFC 5280 6.1.1).
 * @warning It is counted, but nothing in the validation looks at the count. */
VELPKI_API void set_initial_any_policy_inhibit(int flag) VELPKI_NOEXCEPT;
/** The value last set, 0 at first. */
VELPKI_API int get_initial_any_policy_inhibit(void) VELPKI_NOEXCEPT;
/** Takes the initial-policy-mapping-inhibit of RFC 5280 6.1.1.
 * @warning Policy mappings are not processed, so nothing is stored. */
VELPKI_API void set_initial_policy_mapping_inhibit(int flag) VELPKI_NOEXCEPT;
/** Always 0; see the setter. */
VELPKI_API int get_initial_policy_mapping_inhibit(void) VELPKI_NOEXCEPT;
/** @} */

/* The valid policy tree (RFC 5280 6.1.2). */

/** @name Levels of the tree
 * @{ */
/** Makes one level without nodes; null when memory ends. */
VELPKI_API node_LIST *new_node_LIST(void) VELPKI_NOEXCEPT;
/** Releases a level, its nodes and all deeper ones. */
VELPKI_API void free_node_LIST(node_LIST *list) VELPKI_NOEXCEPT;
/** Turns the chain round in place and returns its new head; null for null. */
VELPKI_API node_LIST *reverse_node_LIST(node_LIST *list) VELPKI_NOEXCEPT;
/** Takes a level out of the chain, releases it and returns the head of what is left; a level that is not in the chain
 * stays.
 * @warning Nodes of the next level go on pointing to their released parents. */
VELPKI_API node_LIST *remove_node_LIST(node_LIST *head, node_LIST *level) VELPKI_NOEXCEPT;
/** The number of levels from this one down; 0 for null. */
VELPKI_API int get_count_from_node_LIST(const node_LIST *list) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle of nodes
 * @{ */
/** A node owns its data, a list its nodes: freeing one releases the other. A new node has no data and no parent, a new
 * list no nodes, and new data an empty expected policy set. */
VELPKI_API VALID_POLICY_NODE *new_VALID_POLICY_NODE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VALID_POLICY_NODE(VALID_POLICY_NODE *p) VELPKI_NOEXCEPT;
VELPKI_API VALID_POLICY_NODES *new_VALID_POLICY_NODES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VALID_POLICY_NODES(VALID_POLICY_NODES *p) VELPKI_NOEXCEPT;
VELPKI_API VALID_POLICY_DATA *new_VALID_POLICY_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VALID_POLICY_DATA(VALID_POLICY_DATA *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Nodes of the tree
 * @{ */
/** Takes a node over and appends it to the nodes of a level: 0, or 1 for null and when memory ends, where the node
 * stays the caller's. */
VELPKI_API int add_VALID_POLICY_NODE(VALID_POLICY_NODES *nodes, VALID_POLICY_NODE *node) VELPKI_NOEXCEPT;
/** Takes a list of nodes over as a new level below the deepest one: 0, or F_ADD_VALID_POLICY_TREE_LIST with 49 or 3C,
 * where the list stays the caller's. */
VELPKI_API int add_VALID_POLICY_TREE_LIST(node_LIST *list, VALID_POLICY_NODES *nodes) VELPKI_NOEXCEPT;
/** Prints one line a node on standard output, "[0] Valid Policy : 2.5.29.32.0", numbered from 0 in each level. */
VELPKI_API void print_VALID_POLICY_TREE_LIST(const node_LIST *tree) VELPKI_NOEXCEPT;
/** Prints the nodes of one level, as print_VALID_POLICY_TREE_LIST. */
VELPKI_API void print_VALID_POLICY_NODES(const VALID_POLICY_NODES *nodes) VELPKI_NOEXCEPT;
/** @} */

/** @name Questions about one certificate
 * @{ */
/** Asks whether the certificate needs the full processing: 1 when issuer and subject differ (or one is missing, or the
 * certificate is null), 0 when they are equal.
 * @warning is_selfSigned says the opposite of its name, and looks at no signature. */
VELPKI_API int is_selfSigned(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** verify_X509_validity (x509.h) at the present time, with its codes. */
VELPKI_API int verify_X509_expireDate(const X509_CERT *cert) VELPKI_NOEXCEPT;
/** @} */

/** @name The family of TRUST_ANCHOR
 * @{ */
/** SEQUENCE { Name, SubjectPublicKeyInfo } in house form. A new anchor has neither, and both must be there to be
 * encoded. Codes: F_TRUST_ANCHOR_TO_SEQ and F_SEQ_TO_TRUST_ANCHOR. */
VELPKI_API TRUST_ANCHOR *new_TRUST_ANCHOR(void) VELPKI_NOEXCEPT;
VELPKI_API void free_TRUST_ANCHOR(TRUST_ANCHOR *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_TRUST_ANCHOR(TRUST_ANCHOR *p) VELPKI_NOEXCEPT;
VELPKI_API TRUST_ANCHOR *dup_TRUST_ANCHOR(const TRUST_ANCHOR *p) VELPKI_NOEXCEPT;
VELPKI_API int TRUST_ANCHOR_to_Seq(const TRUST_ANCHOR *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_TRUST_ANCHOR(ASN1_UNIT *in, TRUST_ANCHOR **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Life cycle of TRUST_ANCHORS
 * @{ */
/** A list, empty when it is made, that owns its anchors. */
VELPKI_API TRUST_ANCHORS *new_TRUST_ANCHORS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_TRUST_ANCHORS(TRUST_ANCHORS *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Lists of trust anchors
 * @{ */
/** Appends a copy of an anchor: 0, or 1 for null and when memory ends. */
VELPKI_API int add_TRUST_ANCHORS(TRUST_ANCHORS *anchors, const TRUST_ANCHOR *anchor) VELPKI_NOEXCEPT;
/** The index of the first anchor of the same name (cmp_X509_NAME) and key, or -1. */
VELPKI_API int get_TRUST_ANCHORS_index_by_TRUST_ANCHOR(const TRUST_ANCHORS *anchors,
                                                       const TRUST_ANCHOR *anchor) VELPKI_NOEXCEPT;
/** Appends an anchor for every certificate of a message that verify_ctlSignedData (ctl.h) takes without a signer given,
 * all or none. F_ADD_TRUSTLIST with 49 (null, or a message that does not verify) or 0E (a certificate without subject
 * or key, a failed copy).
 * @warning Anyone can make such a message: find out first who signed it, by verify_ctlSignedData with a certificate
 * that is trusted, or use add_TRUST_ANCHORS_from_CTL_strict. The list's subjects and dates are not looked at, and the
 * signer becomes an anchor like the rest. */
VELPKI_API int add_TRUST_ANCHORS_from_CTL(TRUST_ANCHORS *anchors, P7_CONTENT_INFO *ctl_message) VELPKI_NOEXCEPT;
/** Takes a message that the given certificate signed, which the caller trusts, at a time between the list's dates
 * (null: now), and adds only the certificates that the list's subjects name by their digest. F_ADD_TRUSTLIST with 49,
 * 0E, 48 (an unknown subject algorithm), ERR_INVALID_X509_TIME_TYPE, ERR_TRUST_LIST_DATES or ERR_NOT_FOUNDED (no
 * certificate is named), those of verify_ctlSignedData, or of the list. */
VELPKI_API int add_TRUST_ANCHORS_from_CTL_strict(TRUST_ANCHORS *anchors, P7_CONTENT_INFO *ctl_message,
                                                 X509_CERT *signer, const X509_TIME *time) VELPKI_NOEXCEPT;
/** @} */

/** @name Building a path
 * @{ */
/** Looks for a path from `cert` to a trust anchor among the certificates of `pool` and gives a new STACK of copies,
 * released with free_X509_CERTIFICATES, in the order that validate_certpath takes: `cert` first, and last the one
 * self-issued certificate, which has the name and key of an anchor. Every signature of it verifies; all other questions
 * are the validation's. Of several issuers the better is tried first: key identifiers that agree (RFC 5280 4.2.1.1),
 * then basic constraints and key usage that allow it, then its dates. No name and key come twice, a path has 16
 * certificates at most, and 256 signatures are verified at most. `*path` is written on success only. Codes:
 * F_BUILD_CERTPATH with 49, 3C, ERR_INVALID_TRUST_ANCHOR (paths end at roots that are no anchors), ERR_NOT_FOUNDED
 * (they end nowhere) or ERR_INVALID_MAX_PATH_LENGTH (one of the limits was met).
 * @warning An anchor whose certificate is not in the pool ends no path, because validate_certpath needs that
 * certificate. Names are compared by cmp_X509_NAME and signatures verified by verify_SIG_X509_CERT, as there. */
VELPKI_API int build_certPath(STACK **path, X509_CERT *cert, STACK *pool, TRUST_ANCHORS *anchors) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
