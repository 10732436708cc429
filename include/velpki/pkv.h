/** @file velpki/pkv.h
 * The crypto provider, libvelCrypto.so: memory, random octets, big integers, digests, ciphers and keys.
 *
 * Everything cryptographic that the PKI library does, and every heap allocation, goes through these names; another
 * provider (a validated module, a token) replaces this one by exporting the same names. docs/provider.md lists what
 * each must keep, and has the tables of digests and ciphers with the standards that they follow.
 *
 * Conventions of this header, beside those of docs/conventions.md:
 * - Status functions return 0 or one of the PKV_ERR_ codes below; they are also the reasons that the PKI library
 *   combines with its own function codes. Where no code is named, a function has PKV_ERR_NULL for what is required and
 *   null, PKV_ERR_BAD_VALUE for a negative length, and PKV_ERR_NO_MEMORY.
 * - `length` arguments are octets and at least 0. An `int *out_length` beside an output buffer holds its capacity in
 *   octets on entry and the octets written on success; nothing is written when the capacity is too small
 *   (PKV_ERR_BAD_VALUE). Digest functions are the exception: they need PKV_MAX_DIGEST_LENGTH octets, and `out_length`
 *   (null allowed) is an output only.
 * - Objects are opaque; `PKV_New_X` makes one or returns null, `PKV_Free_X` releases it and accepts null, secrets in it
 *   are wiped.
 * - A key may be shared by threads as long as all of them call only functions that take it as const. */
#ifndef VELPKI_PKV_H
#define VELPKI_PKV_H

#include <velpki/api.h>

VELPKI_BEGIN

/** What status functions return beside 0: the reason half of the PKI library's codes (asn1_error.h). */
enum {
  PKV_ERR_FAILED = 0x12,      /**< a step failed: bad padding, calls out of order, no random octets */
  PKV_ERR_BAD_VALUE = 0x2B,   /**< a value, length or field is out of range */
  PKV_ERR_NO_MEMORY = 0x3C,   /**< an allocation failed */
  PKV_ERR_UNSUPPORTED = 0x48, /**< unknown algorithm or identifier */
  PKV_ERR_NULL = 0x49,        /**< a required argument is null */
  PKV_ERR_MISMATCH = 0x5E     /**< a signature, MAC or digest does not verify */
};

/** @name Memory
 * @{ */
/** Allocates `size` octets, aligned as malloc does; null when memory ends. `file` and `line` are the caller's, for
 * accounting; the text must stay valid for ever (a literal). A size of 0 gives a valid block. Here as in the other
 * three, a block is released with PKV_Free. */
VELPKI_API void *PKV_Malloc(size_t size, const char *file, int line) VELPKI_NOEXCEPT;
/** Allocates `count` * `size` octets filled with zeros; null also where the product overflows. */
VELPKI_API void *PKV_Calloc(size_t count, size_t size, const char *file, int line) VELPKI_NOEXCEPT;
/** Changes the size of a block, which may move; a null block is allocated. On failure the result is null and the old
 * block is as it was. What is left behind when a block moves is not wiped. */
VELPKI_API void *PKV_Realloc(void *block, size_t size, const char *file, int line) VELPKI_NOEXCEPT;
/** Releases a block of the three functions above, and every block or text that either library hands out as the
 * caller's. Null is accepted. */
VELPKI_API void PKV_Free(void *block, const char *file, int line) VELPKI_NOEXCEPT;

/** Overwrites `length` octets with zeros in a way that the compiler keeps; null is accepted. */
VELPKI_API void PKV_Wipe(void *data, size_t length) VELPKI_NOEXCEPT;
/** Returns 1 when both runs of `length` octets are equal, else 0, in a time that depends on `length` only. It cannot
 * order. Runs of length 0 are equal; null with a length is equal to nothing. */
VELPKI_API int PKV_Equal_Secret(const void *a, const void *b, size_t length) VELPKI_NOEXCEPT;

/** What is allocated at this moment, and was at most. The counts are exact whenever no other thread is allocating. */
typedef struct {
  size_t live_blocks; /**< blocks that are not released */
  size_t live_octets; /**< octets in them, as they were asked for */
  size_t peak_octets; /**< the highest value of `live_octets` */
  size_t all_blocks;  /**< allocations since accounting began; a growing PKV_Realloc counts as one */
} PKV_ACCOUNT;

/** Switches accounting on for the rest of the process. It returns 0, also where it is on already, or PKV_ERR_FAILED
 * when memory has been allocated through this provider before. Without it accounting costs nothing. */
VELPKI_API int PKV_Start_Accounting(void) VELPKI_NOEXCEPT;
/** Fills `out`; PKV_ERR_FAILED when accounting is off. */
VELPKI_API int PKV_Get_Account(PKV_ACCOUNT *out) VELPKI_NOEXCEPT;
/** Receives what one source file holds: its name as it was given to PKV_Malloc, and the `context` of the report. */
typedef void PKV_ACCOUNT_LINE(const char *file, size_t live_blocks, size_t live_octets, void *context);
/** Calls `each` once for every source file with live blocks, in no order; PKV_ERR_FAILED when accounting is off. */
VELPKI_API int PKV_Report_Account(PKV_ACCOUNT_LINE *each, void *context) VELPKI_NOEXCEPT;
/** Makes the n-th allocation from this call on (0 is the next one) of the calling thread, and all after it, return
 * null; -1 ends that. For tests. PKV_ERR_FAILED when accounting is off, PKV_ERR_BAD_VALUE below -1. */
VELPKI_API int PKV_Fail_Allocation(long n) VELPKI_NOEXCEPT;
/** @} */

/** @name Random octets
 * @{ */
/** Fills `length` octets from a generator fit for long-lived keys. Salts, paddings, nonces, seeds and the private
 * values of KCDSA and ECC all come from here. On failure (PKV_ERR_FAILED, or PKV_ERR_NO_MEMORY before the first octet)
 * there is no weaker fallback, and what was written is wiped. */
VELPKI_API int PKV_Rand_Bytes(unsigned char *out, int length) VELPKI_NOEXCEPT;
/** @} */

/** A big integer: a sign and a magnitude, most significant octet first, without leading zero octets; zero has no octets
 * and is never negative. */
typedef struct pkv_bigint BIGINT;

/** @name Big integers: life cycle
 * @{ */
/** Makes the number zero; null when memory ends. */
VELPKI_API BIGINT *PKV_New_BIGINT(void) VELPKI_NOEXCEPT;
/** Makes a number from unsigned big-endian octets, in one allocation. Null for null octets with a length, for a length
 * below 0, for a number of more than 2^28 - 1 octets, and when memory ends. */
VELPKI_API BIGINT *PKV_New_BIGINT_Binary(const unsigned char *octets, int length) VELPKI_NOEXCEPT;
/** Wipes and releases a number. */
VELPKI_API void PKV_Free_BIGINT(BIGINT *n) VELPKI_NOEXCEPT;
/** The octets that PKV_Place_BIGINT needs. */
VELPKI_API size_t PKV_Get_BIGINT_Size(void) VELPKI_NOEXCEPT;
/** Makes a number inside a record that holds very many of them: in PKV_Get_BIGINT_Size octets of the caller's, aligned
 * as a pointer, without allocating. It reads its value from the caller's octets, which must outlive it, until it is
 * changed; from then on it has octets of its own. A placed number is ended by PKV_Clear_BIGINT, or abandoned where it
 * was not changed; it is never released with PKV_Free_BIGINT. Null as for PKV_New_BIGINT_Binary,
 * leading zeros counted. */
VELPKI_API BIGINT *PKV_Place_BIGINT(void *place, const unsigned char *octets, int length) VELPKI_NOEXCEPT;
/** Wipes and releases the octets that a number owns, and sets it to zero. */
VELPKI_API void PKV_Clear_BIGINT(BIGINT *n) VELPKI_NOEXCEPT;
/** Makes a copy, sign included; null for null. */
VELPKI_API BIGINT *PKV_Dup_BIGINT(const BIGINT *n) VELPKI_NOEXCEPT;
/** Sets `to` to the value and sign of `from`. Both may be the same. */
VELPKI_API int PKV_Copy_BIGINT(BIGINT *to, const BIGINT *from) VELPKI_NOEXCEPT;
/** @} */

/** @name Big integers: values
 * @{ */
/** Sets `n` to the unsigned big-endian value of the octets, which may be its own. PKV_ERR_BAD_VALUE for more than 2^28
 * - 1. */
VELPKI_API int PKV_Binary_To_BIGINT(BIGINT *n, const unsigned char *octets, int length) VELPKI_NOEXCEPT;
/** Writes the magnitude right-aligned into exactly `length` octets, zeros on the left. A magnitude that needs more is
 * PKV_ERR_BAD_VALUE, with nothing written. The sign is left out. */
VELPKI_API int PKV_BIGINT_To_Binary(const BIGINT *n, unsigned char *out, int length) VELPKI_NOEXCEPT;
/** Lends the magnitude, until the number is changed; `length` (null allowed) receives its octets. It never returns null
 * for a non-null `n`. */
VELPKI_API const unsigned char *PKV_Get_BIGINT_Octets(const BIGINT *n, int *length) VELPKI_NOEXCEPT;
/** The bits of the magnitude without leading zeros; 0 for zero and null. */
VELPKI_API int PKV_Get_BIGINT_Bit_Length(const BIGINT *n) VELPKI_NOEXCEPT;
/** 1 for a number below zero, else 0, for null too. */
VELPKI_API int PKV_Is_BIGINT_Negative(const BIGINT *n) VELPKI_NOEXCEPT;
/** Sets the sign (0 positive, else negative) and keeps the magnitude; zero stays positive. */
VELPKI_API int PKV_Set_BIGINT_Negative(BIGINT *n, int negative) VELPKI_NOEXCEPT;
/** Sets a number to an unsigned word of 32 bits. */
VELPKI_API int PKV_Set_BIGINT_Word(BIGINT *n, unsigned int word) VELPKI_NOEXCEPT;
/** The low magnitude as a word of 32 bits: 0 for null and 0xFFFFFFFF for a magnitude that needs more; the sign is left
 * out. */
VELPKI_API unsigned int PKV_Get_BIGINT_Word(const BIGINT *n) VELPKI_NOEXCEPT;
/** Reads decimal text: an optional "-" and 1 to 20,000 digits, else PKV_ERR_BAD_VALUE. */
VELPKI_API int PKV_Decimal_To_BIGINT(BIGINT *n, const char *text) VELPKI_NOEXCEPT;
/** Makes decimal text, released with PKV_Free; PKV_ERR_BAD_VALUE for more than 20,000 digits. */
VELPKI_API int PKV_BIGINT_To_Decimal(const BIGINT *n, char **text) VELPKI_NOEXCEPT;
/** Orders by value: -1, 0, 1. Null sorts before every number; two nulls compare as -1, never equal. */
VELPKI_API int PKV_Cmp_BIGINT(const BIGINT *a, const BIGINT *b) VELPKI_NOEXCEPT;
/** Sets `sum` to a + b, signs regarded. It may be one of the operands. */
VELPKI_API int PKV_Add_BIGINT(BIGINT *sum, const BIGINT *a, const BIGINT *b) VELPKI_NOEXCEPT;
/** Gives the remainder in 0 to modulus - 1, also of a negative number; a modulus below 1 is PKV_ERR_BAD_VALUE. */
VELPKI_API int PKV_Mod_BIGINT(BIGINT *remainder, const BIGINT *a, const BIGINT *modulus) VELPKI_NOEXCEPT;
/** @} */

/* Digests, HMAC and key derivation. */

/** Identifiers of the digests; docs/provider.md has their lengths and standards. */
enum {
  PKV_DIGEST_SHA1 = 0x05000100,   /**< 20 octets; for old formats */
  PKV_DIGEST_SHA224 = 0x05000200, /**< 28 octets */
  PKV_DIGEST_SHA256 = 0x05000300, /**< 32 octets */
  PKV_DIGEST_SHA384 = 0x05000400, /**< 48 octets */
  PKV_DIGEST_SHA512 = 0x05000500, /**< 64 octets */
  PKV_DIGEST_MD5 = 0x06000100,    /**< 16 octets; for old formats */
  PKV_DIGEST_HAS160 = 0x07000100, /**< 20 octets; of KCDSA with a q of 160 bits */
  PKV_DIGEST_MDC2 = 0x08000100,   /**< 16 octets; MDC-2 with DES */
  PKV_HMAC_FLAG = 0x10000000      /**< 0x15000100 is HMAC with SHA-1, and so on */
};
/** The octets of the longest digest: what an output buffer for any digest needs. */
#define PKV_MAX_DIGEST_LENGTH 64

/** A digest in progress: Init, any number of Updates, Final; then another Init. */
typedef struct pkv_digest DIGEST_UNIT;

/** @name Digests
 * @{ */
/** The octets that a digest has, with or without PKV_HMAC_FLAG; 0 for an unknown identifier. */
VELPKI_API int PKV_Get_DIGEST_Length(int digest_id) VELPKI_NOEXCEPT;
/** The octets of a digest's block, which is also that of its HMAC; 0 for an unknown identifier. */
VELPKI_API int PKV_Get_DIGEST_Block_Length(int digest_id) VELPKI_NOEXCEPT;
/** Digests `length` octets in one call. PKV_ERR_UNSUPPORTED for an unknown identifier or one with PKV_HMAC_FLAG. */
VELPKI_API int PKV_DIGEST(int digest_id, const unsigned char *data, int length, unsigned char *out,
                          int *out_length) VELPKI_NOEXCEPT;
/** Makes a unit that computes nothing yet, for PKV_Init_DIGEST; null when memory ends. */
VELPKI_API DIGEST_UNIT *PKV_New_DIGEST(void) VELPKI_NOEXCEPT;
/** Releases a unit, whether it was finished or not. */
VELPKI_API void PKV_Free_DIGEST(DIGEST_UNIT *unit) VELPKI_NOEXCEPT;
/** Makes a unit that goes on independently from the same state, before Init as well; null for null. */
VELPKI_API DIGEST_UNIT *PKV_Dup_DIGEST(const DIGEST_UNIT *unit) VELPKI_NOEXCEPT;
/** Starts a digest; what was in progress is given up, on failure too. PKV_ERR_UNSUPPORTED as PKV_DIGEST. */
VELPKI_API int PKV_Init_DIGEST(DIGEST_UNIT *unit, int digest_id) VELPKI_NOEXCEPT;
/** Takes further octets of the message; PKV_ERR_FAILED for a unit that is not started. */
VELPKI_API int PKV_Update_DIGEST(DIGEST_UNIT *unit, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Writes the digest and ends the computation; PKV_ERR_FAILED for a unit that is not started. */
VELPKI_API int PKV_Final_DIGEST(DIGEST_UNIT *unit, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** The identifier of the digest that a unit computes; 0 for null, before Init and after Final. */
VELPKI_API int PKV_Get_DIGEST_ID(const DIGEST_UNIT *unit) VELPKI_NOEXCEPT;
/** Replaces `value`, of the digest's own length, by its digest, `count` times over, 0 included: the rounds of PBKDF1
 * (RFC 8018 5.1). PKV_ERR_BAD_VALUE for a negative count, PKV_ERR_UNSUPPORTED for an unknown digest. */
VELPKI_API int PKV_Repeat_DIGEST(int digest_id, unsigned char *value, int count) VELPKI_NOEXCEPT;
/** @} */

/** HMAC over any of the digests (RFC 2104), in progress. With MDC-2 a key has at most the 8 octets of its block (else
 * PKV_ERR_BAD_VALUE). The identifier may carry PKV_HMAC_FLAG in every function. */
typedef struct pkv_hmac HMAC_UNIT;

/** @name HMAC
 * @{ */
/** Computes an HMAC in one call. PKV_ERR_UNSUPPORTED for an unknown digest. */
VELPKI_API int PKV_HMAC(int digest_id, const unsigned char *key, int key_length, const unsigned char *data, int length,
                        unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Makes a unit without key, for PKV_Init_HMAC; null when memory ends. */
VELPKI_API HMAC_UNIT *PKV_New_HMAC(void) VELPKI_NOEXCEPT;
/** Releases a unit and wipes what it has of its key. */
VELPKI_API void PKV_Free_HMAC(HMAC_UNIT *unit) VELPKI_NOEXCEPT;
/** Sets digest and key, of any length, and starts a message. The key is not kept as such. */
VELPKI_API int PKV_Init_HMAC(HMAC_UNIT *unit, int digest_id, const unsigned char *key, int key_length) VELPKI_NOEXCEPT;
/** Takes further octets of the message; PKV_ERR_FAILED for a unit that is not started. */
VELPKI_API int PKV_Update_HMAC(HMAC_UNIT *unit, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Writes the MAC. After it the unit is ready for another message under the same key, at a fraction of the cost of
 * another Init. */
VELPKI_API int PKV_Final_HMAC(HMAC_UNIT *unit, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Key derivation
 * @{ */
/** PBKDF2 with HMAC over the digest (RFC 8018 5.2): `out_length` octets. The identifier is taken with or without
 * PKV_HMAC_FLAG. Password and salt may be empty; fewer than one iteration or octet is PKV_ERR_BAD_VALUE, an unknown
 * digest PKV_ERR_UNSUPPORTED. On failure the octets of `out` may be zeros. */
VELPKI_API int PKV_PBKDF2(int digest_id, const unsigned char *password, int password_length, const unsigned char *salt,
                          int salt_length, int iterations, unsigned char *out, int out_length) VELPKI_NOEXCEPT;
/** @} */

/* Ciphers. */

/** The low octet of a cipher identifier: the mode (NIST SP 800-38A). Above it: top octet the family (01 AES, 02 DES, 03
 * ARIA, 04 SEED, 05 RC5, 06 Blowfish, 07 RC2), second octet 01 for three-key triple DES, third octet the key size (AES
 * and ARIA 01/02/03 for 128/192/256 bits; DES 00 and 01 single, 02 two-key EDE, 12 two-key EDE of the password-based
 * scheme; RC2 01 128-bit, 02 40-bit, 03 64-bit). */
enum {
  PKV_MODE_ECB = 0x00, /**< each block by itself; no IV */
  PKV_MODE_CBC = 0x20, /**< cipher block chaining */
  PKV_MODE_CFB = 0x40, /**< full block feedback */
  PKV_MODE_OFB = 0x60  /**< full block feedback of the key stream */
};

/** An encryption or decryption in progress: Init, any number of Updates, Final. Key and IV are kept until the unit is
 * started again or released, and wiped then. */
typedef struct pkv_block_cipher BLOCK_CIPHER_UNIT;

/** @name Block ciphers
 * @{ */
/** The usual key length of a cipher in octets; 0 for an unknown identifier. */
VELPKI_API int PKV_Get_BLOCK_CIPHER_Key_Length(int cipher_id) VELPKI_NOEXCEPT;
/** The octets of a block: 8 or 16; 0 for an unknown identifier. */
VELPKI_API int PKV_Get_BLOCK_CIPHER_Block_Length(int cipher_id) VELPKI_NOEXCEPT;
/** The octets of an IV: a block, 0 in ECB and for an unknown identifier. */
VELPKI_API int PKV_Get_BLOCK_CIPHER_IV_Length(int cipher_id) VELPKI_NOEXCEPT;
/** Encrypts in one call. ECB and CBC are padded as PKCS#7 says (RFC 5652 6.3); CFB and OFB keep the length. A null `iv`
 * is all zeros. The capacity needed is the input's length rounded up past a whole block for a padded mode, else the
 * input's length. `out` may be `in`. PKV_ERR_UNSUPPORTED for an unknown cipher; lengths of key and IV as in
 * PKV_Init_BLOCK_CIPHER. */
VELPKI_API int PKV_Encrypt_BLOCK_CIPHER(int cipher_id, const unsigned char *key, int key_length,
                                        const unsigned char *iv, int iv_length, const unsigned char *in, int in_length,
                                        unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Decrypts in one call what PKV_Encrypt_BLOCK_CIPHER makes; the capacity needed is the input's length. On bad padding,
 * or a length that is no number of blocks, the result is PKV_ERR_FAILED, nothing is written, and the time does not tell
 * where the padding was wrong. */
VELPKI_API int PKV_Decrypt_BLOCK_CIPHER(int cipher_id, const unsigned char *key, int key_length,
                                        const unsigned char *iv, int iv_length, const unsigned char *in, int in_length,
                                        unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Makes a unit that does nothing yet, for PKV_Init_BLOCK_CIPHER; null when memory ends. */
VELPKI_API BLOCK_CIPHER_UNIT *PKV_New_BLOCK_CIPHER(void) VELPKI_NOEXCEPT;
/** Releases a unit and wipes its key. */
VELPKI_API void PKV_Free_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit) VELPKI_NOEXCEPT;
/** Starts encryption (`encrypt` 1) or decryption (0). Key and IV are copied. Ciphers have one key length, but Blowfish
 * takes 4 to 56 octets and RC5 1 to 255; another length, or an IV that is neither null (all zeros) nor of the right
 * length, is PKV_ERR_BAD_VALUE, and an unknown cipher PKV_ERR_UNSUPPORTED. */
VELPKI_API int PKV_Init_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, int cipher_id, const unsigned char *key, int key_length,
                                     const unsigned char *iv, int iv_length, int encrypt) VELPKI_NOEXCEPT;
/** Switches the padding of ECB and CBC off (0) or on (1, as after every Init). Without it a message that is no number
 * of blocks is PKV_ERR_FAILED in Final. PKV_ERR_FAILED for a unit that is not started. */
VELPKI_API int PKV_Set_BLOCK_CIPHER_Padding(BLOCK_CIPHER_UNIT *unit, int padding) VELPKI_NOEXCEPT;
/** Takes further octets and writes the blocks that are complete, up to a block more than the input; a padded decryption
 * keeps the last one back for Final. Input and output must not overlap. PKV_ERR_FAILED for a unit that is not started.
 */
VELPKI_API int PKV_Update_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, const unsigned char *in, int in_length,
                                       unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Ends the operation and writes what is left: it needs room for a block whenever there is padding, and none otherwise.
 * PKV_ERR_FAILED for bad padding, an unfinished block, or a unit that is not started. */
VELPKI_API int PKV_Final_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Lends the key that the unit was started with, also after Final; null and length 0 before. `length` may be null. */
VELPKI_API const unsigned char *PKV_Get_BLOCK_CIPHER_Key(const BLOCK_CIPHER_UNIT *unit, int *length) VELPKI_NOEXCEPT;
/** Lends the IV that the unit was started with (zeros where null was given); null and length 0 before, and in ECB. */
VELPKI_API const unsigned char *PKV_Get_BLOCK_CIPHER_IV(const BLOCK_CIPHER_UNIT *unit, int *length) VELPKI_NOEXCEPT;
/** @} */

/** @name Keys under keys
 * @{ */
/** Wraps a key under another. The cipher's mode octet is not looked at: AES, ARIA and SEED wrap as RFC 3394 says (keys
 * of 16 to 4096 octets, and 8 more wrapped), three-key triple DES as RFC 3217 (8 to 4096, and 16 more; parity is left
 * as it is). Other ciphers are PKV_ERR_UNSUPPORTED, lengths that are no multiple of 8 PKV_ERR_BAD_VALUE. `out` may be
 * the input. */
VELPKI_API int PKV_Wrap_KEY(int cipher_id, const unsigned char *kek, int kek_length, const unsigned char *key,
                            int key_length, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Unwraps what PKV_Wrap_KEY makes, with the same codes. What does not unwrap is PKV_ERR_FAILED after the same work,
 * and writes nothing. `out` may be the input. */
VELPKI_API int PKV_Unwrap_KEY(int cipher_id, const unsigned char *kek, int kek_length, const unsigned char *wrapped,
                              int wrapped_length, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/** Derives exactly `length` octets (at least 1) from a shared secret with the function of ANSI X9.63 (SEC 1 3.6.1) over
 * a digest; `info` is the shared information, and may be empty. PKV_ERR_UNSUPPORTED for an unknown digest.
 * On failure the octets of `out` may be zeros. */
VELPKI_API int PKV_X963_KDF(int digest_id, const unsigned char *secret, int secret_length, const unsigned char *info,
                            int info_length, unsigned char *out, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name RC4
 * @{ */
/** Encrypts or decrypts `length` octets with RC4; `out` may be `in`. Keys have 5 to 32 octets, else PKV_ERR_BAD_VALUE.
 */
VELPKI_API int PKV_RC4(const unsigned char *key, int key_length, const unsigned char *in, int length,
                       unsigned char *out) VELPKI_NOEXCEPT;
/** @} */

/* Keys: what all have in common. */

/** Kinds of keys, as a PKV_SIGN_CALLBACK is told them. The `type` of an ASYMMETRIC_KEY (x509.h) has numbers of its own.
 */
enum {
  PKV_KEY_RSA = 0x20000000,   /**< RSA_UNIT */
  PKV_KEY_DSA = 0x30000000,   /**< no object: PKV_DSA_VERIFY takes numbers */
  PKV_KEY_KCDSA = 0x40000000, /**< KCDSA_UNIT */
  PKV_KEY_ECC = 0x50000000    /**< ECC_UNIT */
};

/** Progress of a key or domain parameter generation: called between candidates with a count that grows; a non-zero
 * return ends the generation with PKV_ERR_FAILED. */
typedef int PKV_PROGRESS(int count, void *context);

/** A private key that is elsewhere. It is asked to sign `input` and writes the signature: for RSA the modulus length in
 * octets; for KCDSA and ECC both halves, each as long as PKV_Get_KCDSA_Lengths or PKV_Get_ECC_Lengths says.
 * `*signature_length` is the capacity, and is set to what was written. `key` is one of PKV_KEY_; `digest_id` is the
 * digest of which `input` is the value (for KCDSA that of z || message, whole), or 0 when `input` is the message itself
 * (Ed25519); `scheme` is the RSA scheme. PSS is asked for with MGF1 over the same digest and a salt of its length; a
 * signing call with other parameters is PKV_ERR_UNSUPPORTED. It returns 0 or a PKV_ERR_ code, which the call passes on.
 */
typedef int PKV_SIGN_CALLBACK(void *context, int key, int digest_id, int scheme, const unsigned char *input,
                              int input_length, unsigned char *signature, int *signature_length);

/* RSA (RFC 8017). */

/** An RSA key, and the signature or encryption in progress on it. */
typedef struct pkv_rsa RSA_UNIT;

/** The schemes of RFC 8017. */
enum {
  PKV_RSA_PKCS1 = 1,       /**< RSASSA-PKCS1-v1_5 (8.2) */
  PKV_RSA_PSS = 2,         /**< RSASSA-PSS (8.1) */
  PKV_RSA_OAEP_SET = 8,    /**< RSAES-OAEP (7.1) */
  PKV_RSA_OAEP = 16,       /**< RSAES-OAEP (7.1) */
  PKV_RSA_PKCS1_CRYPT = 32 /**< RSAES-PKCS1-v1_5 (7.2) */
};
/** The numbers of a key, as RSAPrivateKey names them (RFC 8017 A.1.2). */
typedef enum {
  PKV_RSA_N,   /**< modulus */
  PKV_RSA_E,   /**< publicExponent */
  PKV_RSA_D,   /**< privateExponent */
  PKV_RSA_P,   /**< prime1 */
  PKV_RSA_Q,   /**< prime2 */
  PKV_RSA_DP,  /**< exponent1, d mod (p - 1) */
  PKV_RSA_DQ,  /**< exponent2, d mod (q - 1) */
  PKV_RSA_QINV /**< coefficient, the inverse of q modulo p */
} PKV_RSA_COMPONENT;

/** @name RSA keys
 * @{ */
/** Makes a key without numbers; null when memory ends. */
VELPKI_API RSA_UNIT *PKV_New_RSA(void) VELPKI_NOEXCEPT;
/** Releases a key; its numbers are wiped with the last copy that shares them. */
VELPKI_API void PKV_Free_RSA(RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Brings a key back to the state after PKV_New_RSA. */
VELPKI_API void PKV_Clear_RSA(RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Makes a copy, which shares the numbers and the callback, not a running operation; null for null. */
VELPKI_API RSA_UNIT *PKV_Dup_RSA(const RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Compares n and e: 0 equal, 1 not (also for null and for keys without numbers). */
VELPKI_API int PKV_Cmp_RSA(const RSA_UNIT *a, const RSA_UNIT *b) VELPKI_NOEXCEPT;
/** Copies the numbers and makes another key of `key`: its callback and what was running are gone. `n` and `e` are
 * required, the others null when absent; a private key works with n, e and d alone. Values are checked at use, not
 * here: every operation refuses (PKV_ERR_BAD_VALUE) a modulus that is even or not of 512 to 16384 bits, and an exponent
 * that is even, below 3, not below the modulus, or of more than 64 bits under a modulus of more than 3072. */
VELPKI_API int PKV_Set_RSA_Params(RSA_UNIT *key, const BIGINT *n, const BIGINT *e, const BIGINT *d, const BIGINT *p,
                                  const BIGINT *q, const BIGINT *dp, const BIGINT *dq,
                                  const BIGINT *qinv) VELPKI_NOEXCEPT;
/** Sets a public key from the big-endian octets of n and e, in one allocation; else as PKV_Set_RSA_Params. */
VELPKI_API int PKV_Set_RSA_Public(RSA_UNIT *key, const unsigned char *n, int n_length, const unsigned char *e,
                                  int e_length) VELPKI_NOEXCEPT;
/** Makes a key with only n and e a private one whose signatures come from `sign`; it decrypts nothing.
 * PKV_ERR_BAD_VALUE for a key without numbers, or with d. */
VELPKI_API int PKV_Set_RSA_Callback(RSA_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) VELPKI_NOEXCEPT;
/** Lends a number; null where the key has none, as a callback's key has no private ones. */
VELPKI_API const BIGINT *PKV_Get_RSA_Component(const RSA_UNIT *key, PKV_RSA_COMPONENT which) VELPKI_NOEXCEPT;
/** 1 for a key with d or a callback, else 0. */
VELPKI_API int PKV_Is_RSA_Private(const RSA_UNIT *key) VELPKI_NOEXCEPT;
/** The octets of n, and so of every signature and ciphertext; 0 without one. */
VELPKI_API int PKV_Get_RSA_Length(const RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Checks a private key: n = pq, exponents and CRT values consistent; without p and q, that the exponents undo each
 * other. It does not test p and q for primality, and of a callback's key it sees the sizes only. PKV_ERR_BAD_VALUE for
 * a key that fails, and for a public one. */
VELPKI_API int PKV_Check_RSA(const RSA_UNIT *key) VELPKI_NOEXCEPT;
/** Makes a key of 1024 to 16384 bits; `exponent` is odd and at least 3, 0 means 65537. `progress` may be null.
 * PKV_ERR_BAD_VALUE for other sizes, PKV_ERR_FAILED when the generation fails or is ended. */
VELPKI_API int PKV_Generate_RSA(RSA_UNIT *key, int bits, unsigned int exponent, PKV_PROGRESS *progress,
                                void *context) VELPKI_NOEXCEPT;
/** @} */

/** @name RSA signatures in pieces
 * @{ */
/** Starts a signature (`sign` 1) or its verification (0), on a key that the caller owns alone. `scheme` is
 * PKV_RSA_PKCS1 or PKV_RSA_PSS; PSS uses the digest for MGF1 and its length for the salt unless set by
 * PKV_Set_RSASSA_PSS. PKV_ERR_UNSUPPORTED for another scheme or digest, PKV_ERR_BAD_VALUE for a key that cannot be
 * used. */
VELPKI_API int PKV_Init_RSASSA(RSA_UNIT *key, int digest_id, int scheme, int sign) VELPKI_NOEXCEPT;
/** After Init with PKV_RSA_PSS, chooses the digest of MGF1 and the octets of the salt. PKV_ERR_FAILED at any other
 * time. */
VELPKI_API int PKV_Set_RSASSA_PSS(RSA_UNIT *key, int mgf_digest_id, int salt_length) VELPKI_NOEXCEPT;
/** Takes further octets of the message; PKV_ERR_FAILED without Init. */
VELPKI_API int PKV_Update_RSASSA(RSA_UNIT *key, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Signs into `signature` (capacity in `*length`), or, after Init for verification, verifies `*length` octets of it as
 * PKV_Verify_RSASSA does. */
VELPKI_API int PKV_Final_RSASSA(RSA_UNIT *key, unsigned char *signature, int *length) VELPKI_NOEXCEPT;
/** Ends a verification: 0 means valid, PKV_ERR_MISMATCH not, PKV_ERR_BAD_VALUE that the modulus is too short for the
 * digest or the salt; a signature of another length than the modulus is
 * PKV_ERR_MISMATCH like any other that is wrong. PKV_ERR_FAILED without Init for verification. */
VELPKI_API int PKV_Verify_RSASSA(RSA_UNIT *key, const unsigned char *signature, int length) VELPKI_NOEXCEPT;
/** @} */

/** @name RSA signatures in one call
 * @{ */
/** Signs `data`, of which the digest is taken, with PKV_RSA_PKCS1 or PKV_RSA_PSS; the latter uses the digest for MGF1
 * and its length for the salt. Safe from several threads on one key, as are the others of this group.
 * PKV_ERR_UNSUPPORTED for another scheme or digest, PKV_ERR_BAD_VALUE for a key that is not private or is too short for
 * the scheme. */
VELPKI_API int PKV_RSASSA_SIGN(const RSA_UNIT *key, int digest_id, int scheme, const unsigned char *data, int length,
                               unsigned char *signature, int *signature_length) VELPKI_NOEXCEPT;
/** Verifies what PKV_RSASSA_SIGN makes: 0 means valid, PKV_ERR_MISMATCH not; PKV_ERR_BAD_VALUE for a key that cannot be
 * used or is too short for the digest, PKV_ERR_UNSUPPORTED as for signing. */
VELPKI_API int PKV_RSASSA_VERIFY(const RSA_UNIT *key, int digest_id, int scheme, const unsigned char *data, int length,
                                 const unsigned char *signature, int signature_length) VELPKI_NOEXCEPT;
/** Signs with RSASSA-PSS, a digest for MGF1 and a salt of 0 to 2048 octets, which must fit the modulus (else
 * PKV_ERR_BAD_VALUE). */
VELPKI_API int PKV_RSASSA_PSS_SIGN(const RSA_UNIT *key, int digest_id, int mgf_digest_id, int salt_length,
                                   const unsigned char *data, int length, unsigned char *signature,
                                   int *signature_length) VELPKI_NOEXCEPT;
/** Verifies RSASSA-PSS with a digest for MGF1 and exactly that length of salt, with the
 * results of PKV_RSASSA_VERIFY. */
VELPKI_API int PKV_RSASSA_PSS_VERIFY(const RSA_UNIT *key, int digest_id, int mgf_digest_id, int salt_length,
                                     const unsigned char *data, int length, const unsigned char *signature,
                                     int signature_length) VELPKI_NOEXCEPT;
/** A salt length for PKV_RSASSA_DIGEST_VERIFY. */
enum {
  PKV_RSA_ANY_SALT = -1 /**< the length that the signature itself shows */
};
/** Verifies over octets whose digest is known, so that several signatures over the same ones need it once.
 * `digest_length` is that of the digest (else PKV_ERR_BAD_VALUE). The MGF1 digest and the salt length are for PSS;
 * PKV_RSA_ANY_SALT takes the length that the signature itself shows. */
VELPKI_API int PKV_RSASSA_DIGEST_VERIFY(const RSA_UNIT *key, int digest_id, int scheme, int mgf_digest_id,
                                        int salt_length, const unsigned char *digest, int digest_length,
                                        const unsigned char *signature, int signature_length) VELPKI_NOEXCEPT;
/** @} */

/** @name RSA encryption
 * @{ */
/** Starts encryption (`encrypt` 1) or decryption (0), on a key that the caller owns alone. `scheme` is
 * PKV_RSA_PKCS1_CRYPT, PKV_RSA_OAEP or PKV_RSA_OAEP_SET (the same); OAEP uses SHA-1, MGF1 with SHA-1 and an empty label
 * unless set by PKV_Set_RSAES_OAEP. PKV_ERR_UNSUPPORTED for another scheme, PKV_ERR_BAD_VALUE for a key that cannot be
 * used. */
VELPKI_API int PKV_Init_RSAES(RSA_UNIT *key, int scheme, int encrypt) VELPKI_NOEXCEPT;
/** After Init with OAEP, chooses the digests and the label, which is copied. PKV_ERR_FAILED at any other time,
 * PKV_ERR_UNSUPPORTED for an unknown digest, PKV_ERR_BAD_VALUE where the modulus is too short for the digest. */
VELPKI_API int PKV_Set_RSAES_OAEP(RSA_UNIT *key, int digest_id, int mgf_digest_id, const unsigned char *label,
                                  int label_length) VELPKI_NOEXCEPT;
/** Encrypts a message into as many octets as the modulus has. PKV_ERR_BAD_VALUE for a message that is too long for
 * scheme and key, PKV_ERR_FAILED without Init for encryption. The key stays ready for another. */
VELPKI_API int PKV_Encrypt_RSAES(RSA_UNIT *key, const unsigned char *in, int in_length, unsigned char *out,
                                 int *out_length) VELPKI_NOEXCEPT;
/** Decrypts. Every failure of a decryption (padding, range, length of the result) is the same PKV_ERR_FAILED after the
 * same work, and writes nothing; so is a missing Init for decryption. */
VELPKI_API int PKV_Decrypt_RSAES(RSA_UNIT *key, const unsigned char *in, int in_length, unsigned char *out,
                                 int *out_length) VELPKI_NOEXCEPT;
/** @} */

/* KCDSA (TTAK.KO-12.0001, ISO/IEC 14888-3). */

/** A KCDSA key, domain parameters alone or a public value alone, and the signature in progress on it. */
typedef struct pkv_kcdsa KCDSA_UNIT;

/** The numbers of a key and of its domain. */
typedef enum {
  PKV_KCDSA_P, /**< the prime modulus */
  PKV_KCDSA_Q, /**< the prime order of g */
  PKV_KCDSA_G, /**< the generator */
  PKV_KCDSA_J, /**< the cofactor: p = 2qJ + 1 */
  PKV_KCDSA_Y, /**< the public value, g^(1/x mod q) mod p */
  PKV_KCDSA_X  /**< the private value */
} PKV_KCDSA_COMPONENT;

/** @name KCDSA keys
 * @{ */
/** Makes a key without numbers; null when memory ends. */
VELPKI_API KCDSA_UNIT *PKV_New_KCDSA(void) VELPKI_NOEXCEPT;
/** Releases a key; its numbers are wiped with the last copy that shares them. */
VELPKI_API void PKV_Free_KCDSA(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Brings a key back to the state after PKV_New_KCDSA. */
VELPKI_API void PKV_Clear_KCDSA(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Makes a copy, which shares the numbers and the callback, not a running operation; null for null. */
VELPKI_API KCDSA_UNIT *PKV_Dup_KCDSA(const KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Compares p, q, g and y: 0 equal, 1 not, as where one of them is missing and for null. */
VELPKI_API int PKV_Cmp_KCDSA(const KCDSA_UNIT *a, const KCDSA_UNIT *b) VELPKI_NOEXCEPT;
/** Sets domain parameters and public value, copied; every one may be null, which keeps what the key holds. A null
 * `seed` keeps seed and count. A callback goes, and with a new p, q, g or y the private value. Sizes are checked at use
 * (PKV_ERR_BAD_VALUE there): |p| 1024 to 3072, |q| 160 to 256 bits. */
VELPKI_API int PKV_Set_KCDSA_Params(KCDSA_UNIT *key, const BIGINT *p, const BIGINT *q, const BIGINT *g, const BIGINT *j,
                                    const BIGINT *y, const unsigned char *seed, int seed_length,
                                    int count) VELPKI_NOEXCEPT;
/** Sets x, and y = g^(1/x mod q) mod p, computed when the key holds none and compared (else PKV_ERR_MISMATCH) when it
 * does. Needs domain parameters; PKV_ERR_BAD_VALUE for an x that is not between 0 and q. */
VELPKI_API int PKV_Set_KCDSA_Private(KCDSA_UNIT *key, const BIGINT *x) VELPKI_NOEXCEPT;
/** Makes a key with y and without x a private one whose signatures come from `sign`. PKV_ERR_BAD_VALUE for any other
 * key. */
VELPKI_API int PKV_Set_KCDSA_Callback(KCDSA_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) VELPKI_NOEXCEPT;
/** Lends a number; null where the key has none. */
VELPKI_API const BIGINT *PKV_Get_KCDSA_Component(const KCDSA_UNIT *key, PKV_KCDSA_COMPONENT which) VELPKI_NOEXCEPT;
/** Lends the seed of the domain parameters, null without one; `length` and `count` (null allowed) are outputs. */
VELPKI_API const unsigned char *PKV_Get_KCDSA_Seed(const KCDSA_UNIT *key, int *length, int *count) VELPKI_NOEXCEPT;
/** 1 for a key with x or a callback, else 0. */
VELPKI_API int PKV_Is_KCDSA_Private(const KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Tells the octets of r and of s for this key and its digest, which is the one of a running operation, or its own.
 * PKV_ERR_BAD_VALUE for a key without q, PKV_ERR_UNSUPPORTED for a q whose size has no digest. */
VELPKI_API int PKV_Get_KCDSA_Lengths(const KCDSA_UNIT *key, int *r_length, int *s_length) VELPKI_NOEXCEPT;
/** @} */

/** @name KCDSA domain parameters and key pairs
 * @{ */
/** Makes domain parameters by the standard's procedure from a random seed, with the first h of 2, 3, ... that gives a
 * generator. |p|, |q| and the digest: 1024/160 with HAS-160 or SHA-1, 2048/224 with SHA-224 or SHA-256, 2048/256 and
 * 3072/256 with SHA-256; others are PKV_ERR_UNSUPPORTED. `progress` may be null. What the key held is replaced on
 * success. */
VELPKI_API int PKV_Generate_KCDSA_Params(KCDSA_UNIT *key, int p_bits, int q_bits, int digest_id, PKV_PROGRESS *progress,
                                         void *context) VELPKI_NOEXCEPT;
/** Does the same from a given seed, trying counts from 1 up; PKV_ERR_FAILED when J is composite, PKV_ERR_BAD_VALUE for
 * a seed of no octets or more than 256. */
VELPKI_API int PKV_Derive_KCDSA_Params(KCDSA_UNIT *key, int p_bits, int q_bits, int digest_id,
                                       const unsigned char *seed, int seed_length, PKV_PROGRESS *progress,
                                       void *context) VELPKI_NOEXCEPT;
/** Makes x and y under the parameters that the key holds; PKV_ERR_BAD_VALUE where they are missing or cannot be used.
 */
VELPKI_API int PKV_Generate_KCDSA(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** Checks sizes, that q divides p - 1 and g has order q; with `primes` 1 also that p and q (and J) are prime and, when
 * seed and count are held, that they lead to p and q under `digest_id`. PKV_ERR_BAD_VALUE for parameters that fail. */
VELPKI_API int PKV_Check_KCDSA_Params(const KCDSA_UNIT *key, int primes, int digest_id) VELPKI_NOEXCEPT;
/** Checks 1 < y < p, y^q = 1 (else PKV_ERR_BAD_VALUE), and x against y when held (else PKV_ERR_MISMATCH). */
VELPKI_API int PKV_Check_KCDSA_Key(const KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/** @} */

/** @name KCDSA signatures
 * @{ */
/** Starts a signature (`sign` 1) or its verification (0), on a key that the caller owns alone. The digest follows from
 * |q|: HAS-160 for 160, SHA-224 for 224, SHA-256 for 256 bits. */
VELPKI_API int PKV_Init_KCDSA(KCDSA_UNIT *key, int sign) VELPKI_NOEXCEPT;
/** After Init and before the first Update, chooses another digest: PKV_ERR_FAILED at any other time,
 * PKV_ERR_UNSUPPORTED for an unknown one. */
VELPKI_API int PKV_Set_KCDSA_DIGEST(KCDSA_UNIT *key, int digest_id) VELPKI_NOEXCEPT;
/** Takes further octets of the message; PKV_ERR_FAILED without Init. */
VELPKI_API int PKV_Update_KCDSA(KCDSA_UNIT *key, const unsigned char *data, int length) VELPKI_NOEXCEPT;
/** Writes r and s when signing, reads them when verifying, each of exactly the octets that PKV_Get_KCDSA_Lengths says.
 * A verification is 0 for a valid signature, else PKV_ERR_MISMATCH. */
VELPKI_API int PKV_Final_KCDSA(KCDSA_UNIT *key, unsigned char *r, unsigned char *s) VELPKI_NOEXCEPT;
/** Ends a verification with the lengths of r and s given, by the rule of PKV_KCDSA_VERIFY. PKV_ERR_FAILED without Init
 * for verification. */
VELPKI_API int PKV_Verify_KCDSA(KCDSA_UNIT *key, const unsigned char *r, int r_length, const unsigned char *s,
                                int s_length) VELPKI_NOEXCEPT;
/** Signs in one call, safe from several threads on one key; `digest_id` 0 is the key's own. `r` and `s` have room
 * for as many octets as q has; written are those of s, and of r those of the digest, at most as many. PKV_ERR_BAD_VALUE
 * for a key that is not private, PKV_ERR_UNSUPPORTED for an unknown digest. */
VELPKI_API int PKV_KCDSA_SIGN(const KCDSA_UNIT *key, int digest_id, const unsigned char *data, int length,
                              unsigned char *r, unsigned char *s) VELPKI_NOEXCEPT;
/** Verifies in one call, safe from several threads on one key: 0 means valid, PKV_ERR_MISMATCH not, and
 * PKV_ERR_BAD_VALUE that the key cannot be used: numbers out of range, or g or y not of order q. r must have its exact
 * length; s may have leading zeros left out, or zeros in front up to its length. */
VELPKI_API int PKV_KCDSA_VERIFY(const KCDSA_UNIT *key, int digest_id, const unsigned char *data, int length,
                                const unsigned char *r, int r_length, const unsigned char *s,
                                int s_length) VELPKI_NOEXCEPT;
/** @} */

/* Elliptic curves (SEC 1, FIPS 186). */

/** A curve: its id, its name and its domain values. Values are kept as given; operations need them to be those of
 * prime256v1, secp384r1 or secp521r1, else PKV_ERR_UNSUPPORTED. */
typedef struct pkv_ecurve ECURVE;
/** A point in affine coordinates, which nothing checks until it is used. */
typedef struct pkv_ecc_point ECC_POINT;
/** A key: a curve, a point and, in a private one, d or a callback. */
typedef struct pkv_ecc ECC_UNIT;

/** @name Points
 * @{ */
/** Makes a point without coordinates; null when memory ends. */
VELPKI_API ECC_POINT *PKV_New_ECC_POINT(void) VELPKI_NOEXCEPT;
/** Releases a point and its coordinates. */
VELPKI_API void PKV_Free_ECC_POINT(ECC_POINT *point) VELPKI_NOEXCEPT;
/** Sets both coordinates, which are copied. */
VELPKI_API int PKV_Set_ECC_POINT(ECC_POINT *point, const BIGINT *x, const BIGINT *y) VELPKI_NOEXCEPT;
/** Lends the x coordinate, null when unset. */
VELPKI_API const BIGINT *PKV_Get_ECC_POINT_X(const ECC_POINT *point) VELPKI_NOEXCEPT;
/** Lends the y coordinate, null when unset. */
VELPKI_API const BIGINT *PKV_Get_ECC_POINT_Y(const ECC_POINT *point) VELPKI_NOEXCEPT;
/** @} */

/** @name Curves
 * @{ */
/** Makes a curve without values; null when memory ends. */
VELPKI_API ECURVE *PKV_New_ECURVE(void) VELPKI_NOEXCEPT;
/** Releases a curve; keys that were given it have a share of their own. */
VELPKI_API void PKV_Free_ECURVE(ECURVE *curve) VELPKI_NOEXCEPT;
/** Makes a curve that shares the values; null for null. */
VELPKI_API ECURVE *PKV_Dup_ECURVE(const ECURVE *curve) VELPKI_NOEXCEPT;
/** Sets all values, copied: coefficients a and b, prime p, generator g and its order n (SEC 1 3.1.1), and a name of at
 * most 255 octets, else PKV_ERR_BAD_VALUE. `id` is the caller's. */
VELPKI_API int PKV_Set_ECURVE_Params(ECURVE *curve, int id, const char *name, const BIGINT *a, const BIGINT *b,
                                     const BIGINT *p, const ECC_POINT *g, const BIGINT *n) VELPKI_NOEXCEPT;
/** Fills a curve that this provider knows, by name; its id is its place in that list, from 0. PKV_ERR_UNSUPPORTED for
 * another. */
VELPKI_API int PKV_Set_ECURVE_Named(ECURVE *curve, const char *name) VELPKI_NOEXCEPT;
/** Lends the name as NUL-terminated text, null when unset. */
VELPKI_API const char *PKV_Get_ECURVE_Name(const ECURVE *curve) VELPKI_NOEXCEPT;
/** The id, -1 when unset. */
VELPKI_API int PKV_Get_ECURVE_ID(const ECURVE *curve) VELPKI_NOEXCEPT;
/** The octets of p, 0 when unset. */
VELPKI_API int PKV_Get_ECURVE_Field_Length(const ECURVE *curve) VELPKI_NOEXCEPT;
/** @} */

/** @name Elliptic keys
 * @{ */
/** Makes a key without curve or point; null when memory ends. */
VELPKI_API ECC_UNIT *PKV_New_ECC(void) VELPKI_NOEXCEPT;
/** Releases a key; its numbers are wiped with the last copy that shares them. */
VELPKI_API void PKV_Free_ECC(ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Brings a key back to the state after PKV_New_ECC. */
VELPKI_API void PKV_Clear_ECC(ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Makes a copy, which shares curve, numbers and callback; null for null. */
VELPKI_API ECC_UNIT *PKV_Dup_ECC(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Compares curve name and point: 0 equal, 1 not, as where one of them is missing and for null. */
VELPKI_API int PKV_Cmp_ECC(const ECC_UNIT *a, const ECC_UNIT *b) VELPKI_NOEXCEPT;
/** Sets the curve and keeps the numbers; a callback goes. PKV_ERR_BAD_VALUE for a curve without values. */
VELPKI_API int PKV_Set_ECC_Curve(ECC_UNIT *key, const ECURVE *curve) VELPKI_NOEXCEPT;
/** Sets the point, copied, which need not be on the curve; the private value and a callback go. */
VELPKI_API int PKV_Set_ECC_Public(ECC_UNIT *key, const BIGINT *x, const BIGINT *y) VELPKI_NOEXCEPT;
/** Sets d, and computes the point when the key holds none; one that it holds is not compared (PKV_Check_ECC does that).
 * A callback goes. Needs a known curve (PKV_ERR_UNSUPPORTED) and 0 < d < n (PKV_ERR_BAD_VALUE). */
VELPKI_API int PKV_Set_ECC_Private(ECC_UNIT *key, const BIGINT *d) VELPKI_NOEXCEPT;
/** Makes a key with a point and without d a private one whose signatures come from `sign`. PKV_ERR_BAD_VALUE for any
 * other key. */
VELPKI_API int PKV_Set_ECC_Callback(ECC_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) VELPKI_NOEXCEPT;
/** Lends the curve; null when unset. */
VELPKI_API const ECURVE *PKV_Get_ECC_Curve(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Lends the point; null when unset. */
VELPKI_API const ECC_POINT *PKV_Get_ECC_Public(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Lends d; null when unset, and for a key that is elsewhere. */
VELPKI_API const BIGINT *PKV_Get_ECC_Private(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/** 1 for a key with d or a callback, else 0. */
VELPKI_API int PKV_Is_ECC_Private(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Checks that the point is on the curve and not at infinity (else PKV_ERR_BAD_VALUE), and d against it when held (else
 * PKV_ERR_MISMATCH). PKV_ERR_UNSUPPORTED for a curve that is not known. */
VELPKI_API int PKV_Check_ECC(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/** Makes d and the point under the curve that the key holds; PKV_ERR_UNSUPPORTED where it is not known. */
VELPKI_API int PKV_Generate_ECC(ECC_UNIT *key) VELPKI_NOEXCEPT;
/** @} */

/** @name ECDSA and ECDH
 * @{ */
/** Tells the octets of r and of s: both those of the curve's order. PKV_ERR_UNSUPPORTED for a curve that is not known.
 */
VELPKI_API int PKV_Get_ECC_Lengths(const ECC_UNIT *key, int *r_length, int *s_length) VELPKI_NOEXCEPT;
/** Signs the digest of `data` (FIPS 186-4), safe from several threads on one key. `r` and `s` have the room that
 * PKV_Get_ECC_Lengths says. PKV_ERR_BAD_VALUE for a key that is not private, PKV_ERR_UNSUPPORTED for the curve or
 * digest. */
VELPKI_API int PKV_ECDSA_SIGN(const ECC_UNIT *key, int digest_id, const unsigned char *data, int length,
                              unsigned char *r, unsigned char *s) VELPKI_NOEXCEPT;
/** Verifies, safe from several threads on one key: 0 means valid, PKV_ERR_MISMATCH not;
 * PKV_ERR_BAD_VALUE for a point that is not on the curve, PKV_ERR_UNSUPPORTED as for signing. r and s may be shorter
 * than PKV_Get_ECC_Lengths says, or have zeros in front up to that length. */
VELPKI_API int PKV_ECDSA_VERIFY(const ECC_UNIT *key, int digest_id, const unsigned char *data, int length,
                                const unsigned char *r, int r_length, const unsigned char *s,
                                int s_length) VELPKI_NOEXCEPT;
/** Writes the x coordinate of the point that key and peer share (SEC 1 3.3.1), as many octets as the field has.
 * PKV_ERR_BAD_VALUE for a key without d and for a peer that is not a point of the key's curve, PKV_ERR_UNSUPPORTED for
 * a curve that is not known. */
VELPKI_API int PKV_ECDH(const ECC_UNIT *key, const ECC_POINT *peer, unsigned char *out,
                        int *out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Signatures without a key object
 * @{ */
/** Verifies a signature of 64 octets under a public key of 32 (RFC 8032): 0 means valid, PKV_ERR_MISMATCH not. */
VELPKI_API int PKV_ED25519_VERIFY(const unsigned char *public_key, const unsigned char *data, int length,
                                  const unsigned char *signature) VELPKI_NOEXCEPT;
/** Verifies with the public value y of the domain p, q, g (FIPS 186-4): p of 512 to 10,000 bits and q of 160, 224 or
 * 256, else PKV_ERR_BAD_VALUE; PKV_ERR_UNSUPPORTED for an unknown digest. 0 means valid, PKV_ERR_MISMATCH not. That p
 * and q are primes is not looked at. */
VELPKI_API int PKV_DSA_VERIFY(const BIGINT *p, const BIGINT *q, const BIGINT *g, const BIGINT *y, int digest_id,
                              const unsigned char *data, int length, const unsigned char *r, int r_length,
                              const unsigned char *s, int s_length) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
