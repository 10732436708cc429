/* velpki/asn1_io.h: structures to and from DER and PEM, in memory and in files.
 *
 * The generic functions take a structure and the function that turns it into a unit, or a unit into it; every structure
 * has typed forms of them (writeDER_X_to_Binary ... readPEM_X_from_File) in its own header.
 *
 * Writers return the octets written, or a code in the same int: what is below 2, or 0x41000000 and above, is a failure
 * (0x4E00002B: no output address, path or structure, or an output that large). Readers return 0 or a code: 0x4E00002B
 * for no input, an unreadable file or PEM that decodes to nothing, 0x4E00004F for octets that do not begin with one
 * unit, else the structure's own. Octets after the unit are ignored; the `_strict` readers refuse them and everything
 * that is not DER. The label of PEM text is not looked at on reading. Blocks that are made are released with PKV_Free.
 */
#ifndef VELPKI_ASN1_IO_H
#define VELPKI_ASN1_IO_H

#include <velpki/asn1.h>

VELPKI_BEGIN

typedef int ASN1_TO_UNIT(void *structure, ASN1_UNIT **unit);
typedef int ASN1_FROM_UNIT(ASN1_UNIT *unit, void **structure);

VELPKI_API int writeDER_to_Binary(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit),
                                  unsigned char **out) VELPKI_NOEXCEPT;
VELPKI_API int writeDER_to_FILE(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit),
                                const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readDER_from_Binary(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                   const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readDER_from_File(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                 const char *path) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_to_Binary(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit), const char *label,
                                  int label_length, char **out) VELPKI_NOEXCEPT;
VELPKI_API int writePEM_to_FILE(void *structure, int (*to_unit)(void *structure, ASN1_UNIT **unit), const char *label,
                                int label_length, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_from_Binary(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                   const char *text, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_from_File(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                 const char *path) VELPKI_NOEXCEPT;
/* readDER_from_Binary_strict and readPEM_from_Binary_strict take exactly one DER value: 0x4E000200 (ERR_NOT_CANONICAL)
 * for another form or octets left over; PEM text as decode_PEM_strict takes it. */
VELPKI_API int readDER_from_Binary_strict(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                          const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int readPEM_from_Binary_strict(void **structure, int (*from_unit)(ASN1_UNIT *unit, void **structure),
                                          const char *text, int length) VELPKI_NOEXCEPT;

/* File_to_binary reads a whole file into a new block of exactly its size (no zero octet after it) and returns the
 * octets; -1, with nothing stored, for a file that is missing, empty, above INT_MAX or not readable to its end. */
VELPKI_API int File_to_binary(const char *path, unsigned char **out) VELPKI_NOEXCEPT;
/* binary_to_File writes `length` octets from `data + offset` and returns their number; -1 for null, a negative offset,
 * a length below 1 and a file that cannot be written.
 * @warning A length that is not greater than the offset is refused too, and `data` must have offset + length octets,
 * which nothing checks: binary_to_File_n takes the octets of `data` and has neither rule. */
VELPKI_API int binary_to_File(const unsigned char *data, int offset, int length, const char *path) VELPKI_NOEXCEPT;
VELPKI_API int binary_to_File_n(const unsigned char *data, int data_length, int offset, int length,
                                const char *path) VELPKI_NOEXCEPT;
/* ASN1_to_FILE writes a unit's flat octets; their number, or -1. */
VELPKI_API int ASN1_to_FILE(const ASN1_UNIT *unit, const char *path) VELPKI_NOEXCEPT;
/* get_ASN1_hash digests the DER octets of a structure into `out`, of PKV_MAX_DIGEST_LENGTH octets, and returns the
 * digest's length; 0 on failure. */
VELPKI_API int get_ASN1_hash(void *structure, int (*encoder)(void *structure, ASN1_UNIT **unit), int digest_id,
                             unsigned char *out) VELPKI_NOEXCEPT;

VELPKI_END

#endif
