/** @file velpki/asn1_objects.h
 * The object registry, and object identifiers as values.
 *
 * The registry is a constant table of 841 rows: short name, long name and dotted text of an object identifier. The
 * library names algorithms, attributes and extensions by row number; 0 means that no row matched, so row 0 is never
 * found. Of equal names or texts the lowest row is found: 366 for 1.3.6.1.5.5.7.48.1.2, 393 for "NULL". Look-ups take
 * constant time and compare letter case. An OBJECT_IDENTIFIER holds dotted text; new_OBJECT_IDENTIFIER,
 * clean_OBJECT_IDENTIFIER and free_OBJECT_IDENTIFIER are in ber.h.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_ASN1_OBJECTS_H
#define VELPKI_ASN1_OBJECTS_H

#include <velpki/ber.h>
#include <velpki/stack.h>

VELPKI_BEGIN

/** A list of OBJECT_IDENTIFIER. */
typedef STACK OBJECT_IDENTIFIERS;

/** @name Rows of the registry
 * @{ */
/** Finds the row of a dotted text, a short name or a long name; 0 for none, for null and for empty text. `length` must
 * be the text's own length, and a zero octet must follow the text; else 0. */
VELPKI_API int index_from_oid_string(const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int index_from_sn(const char *name, int length) VELPKI_NOEXCEPT;
VELPKI_API int index_from_ln(const char *name, int length) VELPKI_NOEXCEPT;
/** Finds the row of an identifier; 0 for none and for null. */
VELPKI_API int index_from_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Lends the short name of rows 1 to 840 for ever; null for other numbers. */
VELPKI_API const char *sn_from_index(int index) VELPKI_NOEXCEPT;
/** Lends the long name of rows 1 to 840 for ever; null for other numbers. */
VELPKI_API const char *ln_from_index(int index) VELPKI_NOEXCEPT;
/** Lends the three texts of a row (short name, long name, dotted text), those of row 0 for a number outside the table.
 * They must not be written to. */
VELPKI_API const char **OID_LIST(int index) VELPKI_NOEXCEPT;

/** Makes the identifier of a row; null for a number outside 1 to 840.
 * @warning Null too for the 48 rows without an identifier, and for those whose text is none: 11, 181, 182, 379, 393,
 * 404, 434, 645, 646, 647 and 676 (a trailing dot) and 794. index_from_oid_string finds such text all the same. */
VELPKI_API OBJECT_IDENTIFIER *index_to_OBJECT_IDENTIFIER(int index) VELPKI_NOEXCEPT;
/** Makes the identifier of row `index`, or, where that is 0, of the row with the short name `name`, else with that long
 * name; null when there is none. */
VELPKI_API OBJECT_IDENTIFIER *get_OBJECT_IDENTIFIER(const char *name, int index) VELPKI_NOEXCEPT;
/** @} */

/** @name Identifiers
 * @{ */
/** Copies an identifier; null for null and for one without text. */
VELPKI_API OBJECT_IDENTIFIER *dup_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Returns the difference of the text lengths where they differ, else 1, 0 or -1 by octets. Null sorts first, and two
 * nulls give -1, never 0.
 * @warning The order is not that of the arcs: "2.5.4.3" comes before "1.2.840.113549". */
VELPKI_API int cmp_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIER *a, const OBJECT_IDENTIFIER *b) VELPKI_NOEXCEPT;
/** @} */

/** @name Lists of identifiers
 * @{ */
/** Makes an empty list. */
VELPKI_API OBJECT_IDENTIFIERS *new_OBJECT_IDENTIFIERS(void) VELPKI_NOEXCEPT;
/** Releases the list with its elements. */
VELPKI_API void free_OBJECT_IDENTIFIERS(OBJECT_IDENTIFIERS *list) VELPKI_NOEXCEPT;
/** Appends a copy: 0, or 1 for null and exhausted memory. */
VELPKI_API int add_OBJECT_IDENTIFIERS(OBJECT_IDENTIFIERS *list, const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Returns the index of the first equal element, or -1. */
VELPKI_API int get_OBJECT_IDENTIFIERS_index_by_OBJECT_IDENTIFIER(const OBJECT_IDENTIFIERS *list,
                                                                 const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** @} */

/** @name Identifiers of the provider
 * @{ */
/** Returns the provider's digest identifier (pkv.h) that an algorithm has or, for a signature, uses; 0 where the
 * registry gives none. */
VELPKI_API int get_DigestID_from_OID(const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Returns the registry row of a digest identifier, 0 for none. */
VELPKI_API int get_OID_from_DigestID(int digest_id) VELPKI_NOEXCEPT;
/** Returns the identifier (pkv.h) of a cipher, of the one that a password-based algorithm uses, or of a scheme of a
 * public key; 0 where the registry gives none.
 * @warning The two directions are no inverses. DES-EDE-CBC (43) gives the identifier of single DES in CBC mode,
 * 0x02000120, and ARIA-ECB (823) that of ARIA in CBC mode; back, 0x02000220 gives 43 and 0x03000100 gives 823, and
 * 0x02010200 (DES-EDE3) gives nothing. ecdsa-with-SHA1 and id-ecPublicKey have no cipher identifier. */
VELPKI_API int get_CipherID_from_OID(const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** Returns the registry row of a symmetric cipher's identifier, 0 for none. See the warning at get_CipherID_from_OID.
 */
VELPKI_API int get_OID_from_CipherID(int cipher_id) VELPKI_NOEXCEPT;
/** Returns the class of an algorithm: 1 digest or MAC, 2 symmetric cipher, 3 public key or signature, 4 password-based;
 * 0 where the registry gives none.
 * @warning RSA-SHA (42) and RSA-SHA1 (65) are in class 1; ecdsa-with-SHA256, id-ecPublicKey and the ARIA ciphers in
 * none. */
VELPKI_API int get_AlgorType_from_OID(const OBJECT_IDENTIFIER *oid) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
