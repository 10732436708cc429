/* velpki/cpv.h: trust anchors, the settings of path validation, the valid policy tree, and building a path. The
 * validation itself is in cpv_validate.h. Conventions: docs/conventions.md. */
#ifndef VELPKI_CPV_H
#define VELPKI_CPV_H

#include <velpki/pkcs7.h>

VELPKI_BEGIN

/* Records. */

typedef struct {
  X509_NAME *trustedCAName;
  X509_PUBKEY *trustedCAKey;
} TRUST_ANCHOR;
typedef STACK TRUST_ANCHORS; /* of TRUST_ANCHOR */

typedef struct {
  int criticality; /* 255 where the certificate's policies are critical, else 0 */
  OBJECT_IDENTIFIER *valid_policy;
  void *qualifier_set;        /* the caller's; null in what is made here, and never released */
  STACK *expected_policy_set; /* of OBJECT_IDENTIFIER */
} VALID_POLICY_DATA;
typedef struct valid_policy_node {
  int child_count; /* at the next level */
  VALID_POLICY_DATA *data;
  struct valid_policy_node *parent; /* lent; null at the root */
} VALID_POLICY_NODE;
typedef STACK VALID_POLICY_NODES; /* of VALID_POLICY_NODE */

/* One level of the tree, and through `next` the deeper ones. */
typedef struct node_list {
  int node_count_hint;       /* 0; no limit */
  int capacity;              /* 64; no limit */
  VALID_POLICY_NODES *nodes; /* null once the level is emptied */
  struct node_list *next;    /* null at the deepest level */
} node_LIST;

/* Settings. They hold for the whole process and are read once at the start of a validation; they may be changed at any
 * time, also while other threads validate. */

/* set_max_certificatePath_length stores `n` and returns 0, or returns 1 for n < 1, which changes nothing; the getter
 * returns 3 as long as nothing was stored.
 * @warning The length ends no validation: the number left stops at 0 and is never found to be below. */
VELPKI_API int set_max_certificatePath_length(int n) VELPKI_NOEXCEPT;
VELPKI_API int get_max_certificatePath_length(void) VELPKI_NOEXCEPT;
/* Whether every certificate but the self-issued ones must have certificate policies; whether anyPolicy is inhibited
 * from the start (0 both). @warning The latter is counted, but nothing in the validation looks at the count. */
VELPKI_API void set_initial_explicit_policy(int flag) VELPKI_NOEXCEPT;
VELPKI_API int get_initial_explicit_policy(void) VELPKI_NOEXCEPT;
VELPKI_API void set_initial_any_policy_inhibit(int flag) VELPKI_NOEXCEPT;
VELPKI_API int get_initial_any_policy_inhibit(void) VELPKI_NOEXCEPT;
/* @warning Policy mappings are not processed, so the setter stores nothing and the getter returns 0. */
VELPKI_API void set_initial_policy_mapping_inhibit(int flag) VELPKI_NOEXCEPT;
VELPKI_API int get_initial_policy_mapping_inhibit(void) VELPKI_NOEXCEPT;

/* The valid policy tree (RFC 5280 6.1.2). */

/* new_node_LIST makes one level without nodes; free_node_LIST releases a level, its nodes and all deeper ones.
 * reverse_node_LIST turns the chain round in place and returns its new head. remove_node_LIST takes a level out of the
 * chain, releases it and returns the head of what is left; a level that is not in the chain stays. The number of levels
 * is 0 for null. @warning Nodes of the next level go on pointing to their released parents. */
VELPKI_API node_LIST *new_node_LIST(void) VELPKI_NOEXCEPT;
VELPKI_API void free_node_LIST(node_LIST *list) VELPKI_NOEXCEPT;
VELPKI_API node_LIST *reverse_node_LIST(node_LIST *list) VELPKI_NOEXCEPT;
VELPKI_API node_LIST *remove_node_LIST(node_LIST *head, node_LIST *level) VELPKI_NOEXCEPT;
VELPKI_API int get_count_from_node_LIST(const node_LIST *list) VELPKI_NOEXCEPT;
/* A node owns its data, a list its nodes. New data has an empty expected policy set. */
VELPKI_API VALID_POLICY_NODE *new_VALID_POLICY_NODE(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VALID_POLICY_NODE(VALID_POLICY_NODE *p) VELPKI_NOEXCEPT;
VELPKI_API VALID_POLICY_NODES *new_VALID_POLICY_NODES(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VALID_POLICY_NODES(VALID_POLICY_NODES *p) VELPKI_NOEXCEPT;
VELPKI_API VALID_POLICY_DATA *new_VALID_POLICY_DATA(void) VELPKI_NOEXCEPT;
VELPKI_API void free_VALID_POLICY_DATA(VALID_POLICY_DATA *p) VELPKI_NOEXCEPT;
/* Both take over what they append, on success only: a node to the end of a level's nodes (0, or 1), and a level of
 * nodes below the deepest level (0, or F_ADD_VALID_POLICY_TREE_LIST with 49 or 3C). */
VELPKI_API int add_VALID_POLICY_NODE(VALID_POLICY_NODES *nodes, VALID_POLICY_NODE *node) VELPKI_NOEXCEPT;
VELPKI_API int add_VALID_POLICY_TREE_LIST(node_LIST *list, VALID_POLICY_NODES *nodes) VELPKI_NOEXCEPT;
/* One line a node on standard output, "[0] Valid Policy : 2.5.29.32.0", numbered from 0 in each level. */
VELPKI_API void print_VALID_POLICY_TREE_LIST(const node_LIST *tree) VELPKI_NOEXCEPT;
VELPKI_API void print_VALID_POLICY_NODES(const VALID_POLICY_NODES *nodes) VELPKI_NOEXCEPT;

/* Questions about one certificate. */

/* @warning is_selfSigned says the opposite of its name: 1 when issuer and subject differ (or one is missing), 0 when
 * they are equal. It asks whether the certificate needs the full processing, and looks at no signature. */
VELPKI_API int is_selfSigned(const X509_CERT *cert) VELPKI_NOEXCEPT;
/* verify_X509_validity at the present time. */
VELPKI_API int verify_X509_expireDate(const X509_CERT *cert) VELPKI_NOEXCEPT;

/* Trust anchors: a family as docs/conventions.md says of SAMPLE, SEQUENCE { Name, SubjectPublicKeyInfo } in house form.
 * add_TRUST_ANCHORS appends a copy, 0 or 1. get_TRUST_ANCHORS_index_by_TRUST_ANCHOR finds the first anchor of the same
 * name (cmp_X509_NAME) and key, or returns -1. */
VELPKI_API TRUST_ANCHOR *new_TRUST_ANCHOR(void) VELPKI_NOEXCEPT;
VELPKI_API void free_TRUST_ANCHOR(TRUST_ANCHOR *p) VELPKI_NOEXCEPT;
VELPKI_API void clean_TRUST_ANCHOR(TRUST_ANCHOR *p) VELPKI_NOEXCEPT;
VELPKI_API TRUST_ANCHOR *dup_TRUST_ANCHOR(const TRUST_ANCHOR *p) VELPKI_NOEXCEPT;
VELPKI_API int TRUST_ANCHOR_to_Seq(const TRUST_ANCHOR *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
VELPKI_API int Seq_to_TRUST_ANCHOR(ASN1_UNIT *in, TRUST_ANCHOR **out) VELPKI_NOEXCEPT;
VELPKI_API TRUST_ANCHORS *new_TRUST_ANCHORS(void) VELPKI_NOEXCEPT;
VELPKI_API void free_TRUST_ANCHORS(TRUST_ANCHORS *p) VELPKI_NOEXCEPT;
VELPKI_API int add_TRUST_ANCHORS(TRUST_ANCHORS *anchors, const TRUST_ANCHOR *anchor) VELPKI_NOEXCEPT;
VELPKI_API int get_TRUST_ANCHORS_index_by_TRUST_ANCHOR(const TRUST_ANCHORS *anchors,
                                                       const TRUST_ANCHOR *anchor) VELPKI_NOEXCEPT;
/* add_TRUST_ANCHORS_from_CTL appends an anchor for every certificate of a message that verify_ctlSignedData (ctl.h)
 * takes without a signer given, all or none. F_ADD_TRUSTLIST with 49 (null, or a message that does not verify) or 0E (a
 * certificate without subject or key, a failed copy).
 * @warning Anyone can make such a message: find out first who signed it, by verify_ctlSignedData with a certificate
 * that is trusted, or use the _strict form. The list's subjects and dates are not looked at, and the signer becomes an
 * anchor like the rest. */
VELPKI_API int add_TRUST_ANCHORS_from_CTL(TRUST_ANCHORS *anchors, P7_CONTENT_INFO *ctl_message) VELPKI_NOEXCEPT;
/* add_TRUST_ANCHORS_from_CTL_strict takes a message that the given certificate signed, which the caller trusts, at a
 * time between the list's dates (null: now), and adds only the certificates that the list's subjects name by their
 * digest. F_ADD_TRUSTLIST with 49, 0E, 48 (an unknown subject algorithm), ERR_INVALID_X509_TIME_TYPE,
 * ERR_TRUST_LIST_DATES or ERR_NOT_FOUNDED (no certificate is named), those of verify_ctlSignedData, or of the list. */
VELPKI_API int add_TRUST_ANCHORS_from_CTL_strict(TRUST_ANCHORS *anchors, P7_CONTENT_INFO *ctl_message,
                                                 X509_CERT *signer, const X509_TIME *time) VELPKI_NOEXCEPT;

/* build_certPath looks for a path from `cert` to a trust anchor among the certificates of `pool` and gives a new STACK
 * of copies, released with free_X509_CERTIFICATES, in the order that validate_certpath takes: `cert` first, and last
 * the one self-issued certificate, which has the name and key of an anchor. Every signature of it verifies; all other
 * questions are the validation's. Of several issuers the better is tried first: key identifiers that agree (RFC 5280
 * 4.2.1.1), then basic constraints and key usage that allow it, then its dates. No name and key come twice, a path has
 * 16 certificates at most, and 256 signatures are verified at most. `*path` is written on success only.
 * Codes: F_BUILD_CERTPATH with 49, 3C, ERR_INVALID_TRUST_ANCHOR (paths end at roots that are no anchors),
 * ERR_NOT_FOUNDED (they end nowhere) or ERR_INVALID_MAX_PATH_LENGTH (one of the limits was met).
 * @warning An anchor whose certificate is not in the pool ends no path, because validate_certpath needs that
 * certificate. Names are compared by cmp_X509_NAME and signatures verified by verify_SIG_X509_CERT, as there. */
VELPKI_API int build_certPath(STACK **path, X509_CERT *cert, STACK *pool, TRUST_ANCHORS *anchors) VELPKI_NOEXCEPT;

VELPKI_END

#endif
