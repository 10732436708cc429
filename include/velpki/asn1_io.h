/** @file velpki/asn1_io.h
 * Structures to and from DER and PEM, in memory and in files.
 *
 * The generic functions take a structure and the function that turns it into a unit, or a unit into it. Every
 * structure has typed forms of them, writeDER_X_to_Binary to readPEM_X_from_File, in its own header: call those.
 *
 * Writers return the octets written, or a code in the same int: what is below 2, or 0x41000000 and above, is a failure
 * (0x4E00002B for no output address, path or, in the generic forms, structure, for exhausted memory, and an output that
 * large; -1 for a file that cannot be written). Readers return 0 or a code: 0x4E00002B for no input, an unreadable file
 * or PEM that decodes to nothing, 0x4E00004F for octets that do not begin with one unit, else the structure's own.
 * Octets after the unit are ignored; the `_strict` readers refuse them and everything that is not DER. The label of PEM
 * text is not looked at on reading. Blocks that are made are released with PKV_Free.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_ASN1_IO_H
#define VELPKI_ASN1_IO_H

#include <velpki/asn1.h>

VELPKI_BEGIN

/** Turns a structure into a new unit; 0 or a code. Every X_to_Seq is such a function. */
typedef int ASN1_TO_UNIT(void *structure, ASN1_UNIT **unit);

/** Decodes a unit into `*structure`, made where it is null; 0 or a code. Every Seq_to_X is such a function. */
typedef int ASN1_FROM_UNIT(ASN1_UNIT *unit, void **structure);

/** @name Octets and files of a structure
 * @{ */
/** Stores the DER octets of a structure as a new block at `*out`. A code of `to_unit` goes up as it is, one that could
 * be taken for a length as 1. */
VELPKI_API int writeDER_to_Binary(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit),
                                  unsigned char **out) VELPKI_NOEXCEPT;
/** Writes the DER octets of a structure to a file, replacing what it held. */
VELPKI_API int writeDER_to_FILE(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit),
                                const char *path) VELPKI_NOEXCEPT;
/** Decodes the unit at the start of `length` octets. */
VELPKI_API int readDER_from_Binary(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                   const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Decodes the unit at the start of a file. */
VELPKI_API int readDER_from_File(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                 const char *path) VELPKI_NOEXCEPT;
/** Stores the DER octets of a structure as PEM text (RFC 7468), in lines of 64 characters under a label of
 * `label_length` octets, as a new block at `*out`. */
VELPKI_API int writePEM_to_Binary(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit), const char *label,
                                  int label_length, char **out) VELPKI_NOEXCEPT;
/** Writes the same text to a file, replacing what it held. */
VELPKI_API int writePEM_to_FILE(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit), const char *label,
                                int label_length, const char *path) VELPKI_NOEXCEPT;
/** Decodes PEM text of `length` octets, as decode_PEM reads it. */
VELPKI_API int readPEM_from_Binary(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                   const char *text, int length) VELPKI_NOEXCEPT;
/** Decodes a file of PEM text, as decode_PEM reads it. */
VELPKI_API int readPEM_from_File(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                 const char *path) VELPKI_NOEXCEPT;
/** Decodes octets that are exactly one DER value; 0x4E000200 (ERR_NOT_CANONICAL) for another form or octets left over.
 */
VELPKI_API int readDER_from_Binary_strict(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                          const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Decodes PEM text as decode_PEM_strict takes it, which holds exactly one DER value; codes as
 * readDER_from_Binary_strict, and 0x4E00002B for text that is refused. */
VELPKI_API int readPEM_from_Binary_strict(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                          const char *text, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name Files
 * @{ */
/** Reads a whole file into a new block of exactly its size (no zero octet after it) and returns the octets; -1, with
 * nothing stored, for a file that is missing, empty, above INT_MAX or not readable to its end. */
VELPKI_API int File_to_binary(const char *path, unsigned char **out) VELPKI_NOEXCEPT;
/** Writes `length` octets from `data + offset` to a file and returns how many were written; -1 for null, a negative
 * offset, a length below 1 and a file that cannot be opened.
 * @warning Where the disk is full the number is smaller and the file is cut off. A length that is not greater than the
 * offset is refused too, and `data` must have offset + length octets, which nothing checks: binary_to_File_n takes the
 * octets of `data` and has none of this. */
VELPKI_API int binary_to_File(const unsigned char *data, int offset, int length, const char *path) VELPKI_NOEXCEPT;
/** Writes `length` octets from `data + offset`, which must lie within the `data_length` octets of `data`, to a file and
 * returns their number; -1 otherwise, and for null, a length below 1 and a file that cannot be written. */
VELPKI_API int binary_to_File_n(const unsigned char *data, int data_length, int offset, int length,
                                const char *path) VELPKI_NOEXCEPT;
/** Writes the octets of a unit, as ASN1_to_binary makes them, to a file and returns how many were written, fewer on a
 * full disk; -1 on failure. */
VELPKI_API int ASN1_to_FILE(const ASN1_UNIT *unit, const char *path) VELPKI_NOEXCEPT;
/** @} */

/** Digests the DER octets of a structure into `out`, which has PKV_MAX_DIGEST_LENGTH octets, and returns the digest's
 * length in octets; 0 on failure. `digest_id` is one of pkv.h. */
VELPKI_API int get_ASN1_hash(void *structure, int (*encoder)(void *structure, ASN1_UNIT **unit), int digest_id,
                             unsigned char *out) VELPKI_NOEXCEPT;

VELPKI_END

#endif
