/* velpki/pkv.h: the crypto provider, libvelCrypto.so.
 *
 * Everything cryptographic that the PKI library does, and every heap allocation, goes through these names; another
 * provider (a validated module, a token) replaces this one by exporting the same names. docs/provider.md lists what
 * each must keep.
 *
 * Conventions of this header, beside those of docs/conventions.md:
 *  - Status functions return 0 or one of the PKV_ERR_ codes below; they are also the reasons that the PKI library
 *    combines with its own function codes.
 *  - `length` arguments are octets and at least 0. An `int *out_length` beside an output buffer holds its capacity in
 *    octets on entry and the octets written on success; nothing is written when the capacity is too small
 *    (PKV_ERR_BAD_VALUE). Digest functions are the exception: they need PKV_MAX_DIGEST_LENGTH octets, and `out_length`
 *    (null allowed) is an output only.
 *  - Objects are opaque; `PKV_New_X` makes one, `PKV_Free_X` releases it and accepts null, secrets in it are wiped.
 *  - A key may be shared by threads as long as all of them call only functions that take it as const. */
#ifndef VELPKI_PKV_H
#define VELPKI_PKV_H

#include <velpki/api.h>

VELPKI_BEGIN

enum {
  PKV_ERR_FAILED = 0x12,      /* a step failed: bad padding, calls out of order, no random octets */
  PKV_ERR_BAD_VALUE = 0x2B,   /* a value, length or field is out of range */
  PKV_ERR_NO_MEMORY = 0x3C,   /* an allocation failed */
  PKV_ERR_UNSUPPORTED = 0x48, /* unknown algorithm or identifier */
  PKV_ERR_NULL = 0x49,        /* a required argument is null */
  PKV_ERR_MISMATCH = 0x5E     /* a signature, MAC or digest does not verify */
};

/* Memory. */

/* Allocation with the caller's source file and line, for accounting; the texts must stay valid for ever (literals).
 * A size of 0 gives a valid block. PKV_Calloc checks count * size for overflow and zero-fills. PKV_Free accepts null.
 */
VELPKI_API void *PKV_Malloc(size_t size, const char *file, int line) VELPKI_NOEXCEPT;
VELPKI_API void *PKV_Calloc(size_t count, size_t size, const char *file, int line) VELPKI_NOEXCEPT;
VELPKI_API void *PKV_Realloc(void *block, size_t size, const char *file, int line) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free(void *block, const char *file, int line) VELPKI_NOEXCEPT;

/* PKV_Wipe overwrites `length` octets with zeros in a way that the compiler keeps; null is accepted. */
VELPKI_API void PKV_Wipe(void *data, size_t length) VELPKI_NOEXCEPT;
/* PKV_Equal_Secret returns 1 when both runs of `length` octets are equal, else 0, in a time that depends on `length`
 * only. It cannot order. */
VELPKI_API int PKV_Equal_Secret(const void *a, const void *b, size_t length) VELPKI_NOEXCEPT;

/* What is allocated now, and was at most. */
typedef struct {
  size_t live_blocks;
  size_t live_octets;
  size_t peak_octets;
  size_t all_blocks; /* allocations since accounting began; a growing PKV_Realloc counts as one */
} PKV_ACCOUNT;

/* PKV_Start_Accounting switches accounting on for the rest of the process. It returns 0, or PKV_ERR_FAILED when memory
 * has already been allocated through this provider. Without it accounting costs nothing. */
VELPKI_API int PKV_Start_Accounting(void) VELPKI_NOEXCEPT;
/* PKV_Get_Account fills `out`, and returns PKV_ERR_FAILED when accounting is off. */
VELPKI_API int PKV_Get_Account(PKV_ACCOUNT *out) VELPKI_NOEXCEPT;
/* PKV_Report_Account calls `each` once for every source file with live blocks, in no order. */
typedef void PKV_ACCOUNT_LINE(const char *file, size_t live_blocks, size_t live_octets, void *context);
VELPKI_API int PKV_Report_Account(PKV_ACCOUNT_LINE *each, void *context) VELPKI_NOEXCEPT;
/* PKV_Fail_Allocation makes the n-th allocation from now (0 is the next one) of the calling thread, and all after it,
 * return null; -1 ends that. It needs accounting, and is for tests. */
VELPKI_API int PKV_Fail_Allocation(long n) VELPKI_NOEXCEPT;

/* Random octets. */

/* Salts, paddings, nonces, seeds and the private values of KCDSA and ECC all come from here. */
VELPKI_API int PKV_Rand_Bytes(unsigned char *out, int length) VELPKI_NOEXCEPT;

/* Big integers. */

/* BIGINT: a sign and a magnitude, most significant octet first, without leading zero octets; zero has no octets. */
typedef struct pkv_bigint BIGINT;

VELPKI_API BIGINT *PKV_New_BIGINT(void) VELPKI_NOEXCEPT; /* zero */
/* PKV_New_BIGINT_Binary makes a number from octets in one allocation; null for null octets with a length, or below 0.
 */
VELPKI_API BIGINT *PKV_New_BIGINT_Binary(const unsigned char *octets, int length) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_BIGINT(BIGINT *n) VELPKI_NOEXCEPT; /* wipes */
/* Numbers inside a record that holds very many of them: PKV_Place_BIGINT makes one in PKV_Get_BIGINT_Size octets of the
 * caller's, aligned as a pointer, without allocating. It reads its value from the caller's octets, which must outlive
 * it, until it is changed; from then on it has octets of its own. PKV_Clear_BIGINT wipes and releases those and sets
 * the number to zero; a placed number is never released with PKV_Free_BIGINT. Null as PKV_New_BIGINT_Binary. */
VELPKI_API size_t PKV_Get_BIGINT_Size(void) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *PKV_Place_BIGINT(void *place, const unsigned char *octets, int length) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Clear_BIGINT(BIGINT *n) VELPKI_NOEXCEPT;
VELPKI_API BIGINT *PKV_Dup_BIGINT(const BIGINT *n) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Copy_BIGINT(BIGINT *to, const BIGINT *from) VELPKI_NOEXCEPT;
/* PKV_Binary_To_BIGINT sets `n` to the unsigned big-endian value of the octets. */
VELPKI_API int PKV_Binary_To_BIGINT(BIGINT *n, const unsigned char *octets, int length) VELPKI_NOEXCEPT;
/* PKV_BIGINT_To_Binary writes the magnitude right-aligned into exactly `length` octets, zeros on the left. A magnitude
 * that needs more is PKV_ERR_BAD_VALUE, with nothing written. */
VELPKI_API int PKV_BIGINT_To_Binary(const BIGINT *n, unsigned char *out, int length) VELPKI_NOEXCEPT;
/* PKV_Get_BIGINT_Octets lends the magnitude; `length` receives its octets. It never returns null for a non-null `n`. */
VELPKI_API const unsigned char *PKV_Get_BIGINT_Octets(const BIGINT *n, int *length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Get_BIGINT_Bit_Length(const BIGINT *n) VELPKI_NOEXCEPT; /* 0 for zero and null */
VELPKI_API int PKV_Is_BIGINT_Negative(const BIGINT *n) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_BIGINT_Negative(BIGINT *n, int negative) VELPKI_NOEXCEPT; /* zero stays positive */
/* Words are 32 bits. Reading gives 0 for null and 0xFFFFFFFF for a magnitude that needs more; the sign is left out. */
VELPKI_API int PKV_Set_BIGINT_Word(BIGINT *n, unsigned int word) VELPKI_NOEXCEPT;
VELPKI_API unsigned int PKV_Get_BIGINT_Word(const BIGINT *n) VELPKI_NOEXCEPT;
/* Decimal text: an optional "-" and digits; at most 20,000 digits either way, else PKV_ERR_BAD_VALUE. The text made is
 * released with PKV_Free. */
VELPKI_API int PKV_Decimal_To_BIGINT(BIGINT *n, const char *text) VELPKI_NOEXCEPT;
VELPKI_API int PKV_BIGINT_To_Decimal(const BIGINT *n, char **text) VELPKI_NOEXCEPT;
/* PKV_Cmp_BIGINT orders by value: -1, 0, 1. Null sorts before every number; two nulls compare as -1, never equal. */
VELPKI_API int PKV_Cmp_BIGINT(const BIGINT *a, const BIGINT *b) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Add_BIGINT(BIGINT *sum, const BIGINT *a, const BIGINT *b) VELPKI_NOEXCEPT;
/* PKV_Mod_BIGINT gives the remainder in 0 to modulus - 1; a modulus below 1 is PKV_ERR_BAD_VALUE. */
VELPKI_API int PKV_Mod_BIGINT(BIGINT *remainder, const BIGINT *a, const BIGINT *modulus) VELPKI_NOEXCEPT;

/* Digests. */

enum {
  PKV_DIGEST_SHA1 = 0x05000100,
  PKV_DIGEST_SHA224 = 0x05000200,
  PKV_DIGEST_SHA256 = 0x05000300,
  PKV_DIGEST_SHA384 = 0x05000400,
  PKV_DIGEST_SHA512 = 0x05000500,
  PKV_DIGEST_MD5 = 0x06000100,
  PKV_DIGEST_HAS160 = 0x07000100,
  PKV_DIGEST_MDC2 = 0x08000100,
  PKV_HMAC_FLAG = 0x10000000 /* 0x15000100 is HMAC with SHA-1, and so on */
};
#define PKV_MAX_DIGEST_LENGTH 64

typedef struct pkv_digest DIGEST_UNIT;

/* Output and block lengths in octets, with or without PKV_HMAC_FLAG; 0 for an unknown identifier. */
VELPKI_API int PKV_Get_DIGEST_Length(int digest_id) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Get_DIGEST_Block_Length(int digest_id) VELPKI_NOEXCEPT;
VELPKI_API int PKV_DIGEST(int digest_id, const unsigned char *data, int length, unsigned char *out,
                          int *out_length) VELPKI_NOEXCEPT;
VELPKI_API DIGEST_UNIT *PKV_New_DIGEST(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_DIGEST(DIGEST_UNIT *unit) VELPKI_NOEXCEPT;
VELPKI_API DIGEST_UNIT *PKV_Dup_DIGEST(const DIGEST_UNIT *unit) VELPKI_NOEXCEPT; /* goes on independently */
VELPKI_API int PKV_Init_DIGEST(DIGEST_UNIT *unit, int digest_id) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Update_DIGEST(DIGEST_UNIT *unit, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Final_DIGEST(DIGEST_UNIT *unit, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* The identifier of the digest that a unit computes; 0 for null, before Init and after Final. */
VELPKI_API int PKV_Get_DIGEST_ID(const DIGEST_UNIT *unit) VELPKI_NOEXCEPT;
/* PKV_Repeat_DIGEST replaces `value`, of the digest's own length, by its digest, `count` times over. */
VELPKI_API int PKV_Repeat_DIGEST(int digest_id, unsigned char *value, int count) VELPKI_NOEXCEPT;

/* HMAC over any of the digests (RFC 2104); the identifier may carry PKV_HMAC_FLAG. With MDC-2 a key has at most the 8
 * octets of its block (else PKV_ERR_BAD_VALUE). After Final the unit is ready for another message under the same key,
 * at a fraction of the cost of another Init. */
typedef struct pkv_hmac HMAC_UNIT;

VELPKI_API int PKV_HMAC(int digest_id, const unsigned char *key, int key_length, const unsigned char *data, int length,
                        unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
VELPKI_API HMAC_UNIT *PKV_New_HMAC(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_HMAC(HMAC_UNIT *unit) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Init_HMAC(HMAC_UNIT *unit, int digest_id, const unsigned char *key, int key_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Update_HMAC(HMAC_UNIT *unit, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Final_HMAC(HMAC_UNIT *unit, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;

/* PBKDF2 with HMAC over the digest (RFC 8018 5.2), the identifier with or without PKV_HMAC_FLAG. Password and salt may
 * be empty; fewer than one iteration or octet is PKV_ERR_BAD_VALUE. */
VELPKI_API int PKV_PBKDF2(int digest_id, const unsigned char *password, int password_length, const unsigned char *salt,
                          int salt_length, int iterations, unsigned char *out, int out_length) VELPKI_NOEXCEPT;

/* Ciphers. */

/* Cipher identifiers: top octet the family (01 AES, 02 DES, 03 ARIA, 04 SEED, 05 RC5, 06 Blowfish, 07 RC2), second
 * octet 01 for three-key triple DES, third octet the key size (AES and ARIA 01/02/03 for 128/192/256 bits; DES 00 and
 * 01 single, 02 two-key EDE, 12 two-key EDE of the password-based scheme; RC2 01 128-bit, 02 40-bit, 03 64-bit), low
 * octet the mode. */
enum {
  PKV_MODE_ECB = 0x00,
  PKV_MODE_CBC = 0x20,
  PKV_MODE_CFB = 0x40, /* full block feedback */
  PKV_MODE_OFB = 0x60
};

typedef struct pkv_block_cipher BLOCK_CIPHER_UNIT;

/* Lengths in octets; 0 for an unknown identifier (and for the IV of ECB). */
VELPKI_API int PKV_Get_BLOCK_CIPHER_Key_Length(int cipher_id) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Get_BLOCK_CIPHER_Block_Length(int cipher_id) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Get_BLOCK_CIPHER_IV_Length(int cipher_id) VELPKI_NOEXCEPT;
/* One-shot forms. ECB and CBC are padded as PKCS#7 says; CFB and OFB keep the length. On bad padding the result is
 * PKV_ERR_FAILED, nothing is written, and the time does not tell where the padding was wrong. A null `iv` is all zeros.
 * The capacity needed is the input's length rounded up past a whole block for encryption, the input's length else. */
VELPKI_API int PKV_Encrypt_BLOCK_CIPHER(int cipher_id, const unsigned char *key, int key_length,
                                        const unsigned char *iv, int iv_length, const unsigned char *in, int in_length,
                                        unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Decrypt_BLOCK_CIPHER(int cipher_id, const unsigned char *key, int key_length,
                                        const unsigned char *iv, int iv_length, const unsigned char *in, int in_length,
                                        unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
VELPKI_API BLOCK_CIPHER_UNIT *PKV_New_BLOCK_CIPHER(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit) VELPKI_NOEXCEPT;
/* PKV_Init_BLOCK_CIPHER starts encryption (`encrypt` 1) or decryption (0). Key and IV are copied. Ciphers have one key
 * length, but Blowfish takes 4 to 56 octets and RC5 1 to 255; another length, or an IV that is neither null nor of the
 * right length, is PKV_ERR_BAD_VALUE. Update writes the blocks that are complete, up to a block more than the input. A
 * padded decryption keeps the last one back for Final, which needs room for a block whenever there is padding. Input
 * and output of Update must not overlap; those of the one-shot forms may be the same. */
VELPKI_API int PKV_Init_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, int cipher_id, const unsigned char *key, int key_length,
                                     const unsigned char *iv, int iv_length, int encrypt) VELPKI_NOEXCEPT;
/* PKV_Set_BLOCK_CIPHER_Padding switches the padding of ECB and CBC off (0) or on (1, as after every Init). */
VELPKI_API int PKV_Set_BLOCK_CIPHER_Padding(BLOCK_CIPHER_UNIT *unit, int padding) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Update_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, const unsigned char *in, int in_length,
                                       unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Final_BLOCK_CIPHER(BLOCK_CIPHER_UNIT *unit, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* What the unit was started with, lent; null and 0 before. */
VELPKI_API const unsigned char *PKV_Get_BLOCK_CIPHER_Key(const BLOCK_CIPHER_UNIT *unit, int *length) VELPKI_NOEXCEPT;
VELPKI_API const unsigned char *PKV_Get_BLOCK_CIPHER_IV(const BLOCK_CIPHER_UNIT *unit, int *length) VELPKI_NOEXCEPT;

/* Keys under keys. The cipher's mode octet is not looked at: AES, ARIA and SEED wrap as RFC 3394 says (keys of 16 to
 * 4096 octets, and 8 more wrapped), three-key triple DES as RFC 3217 (8 to 4096, and 16 more; parity is left as it is);
 * other ciphers are PKV_ERR_UNSUPPORTED, lengths that are no multiple of 8 PKV_ERR_BAD_VALUE. What does not unwrap is
 * PKV_ERR_FAILED after the same work, and writes nothing. `out` may be the input. */
VELPKI_API int PKV_Wrap_KEY(int cipher_id, const unsigned char *kek, int kek_length, const unsigned char *key,
                            int key_length, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Unwrap_KEY(int cipher_id, const unsigned char *kek, int kek_length, const unsigned char *wrapped,
                              int wrapped_length, unsigned char *out, int *out_length) VELPKI_NOEXCEPT;
/* Exactly `length` octets (at least 1) from a shared secret with ANSI X9.63's function over a digest. */
VELPKI_API int PKV_X963_KDF(int digest_id, const unsigned char *secret, int secret_length, const unsigned char *info,
                            int info_length, unsigned char *out, int length) VELPKI_NOEXCEPT;

/* PKV_RC4 encrypts or decrypts `length` octets; `out` may be `in`. Keys have 5 to 32 octets. */
VELPKI_API int PKV_RC4(const unsigned char *key, int key_length, const unsigned char *in, int length,
                       unsigned char *out) VELPKI_NOEXCEPT;

/* Keys: what all have in common. */

enum { PKV_KEY_RSA = 0x20000000, PKV_KEY_DSA = 0x30000000, PKV_KEY_KCDSA = 0x40000000, PKV_KEY_ECC = 0x50000000 };

/* Progress of a key or domain parameter generation: called between candidates with a count that grows; a non-zero
 * return ends the generation with PKV_ERR_FAILED. */
typedef int PKV_PROGRESS(int count, void *context);

/* A private key that is elsewhere. It is asked to sign `input` and writes the signature: for RSA the modulus length in
 * octets; for KCDSA and ECC both halves, each as long as PKV_Get_..._Lengths says. `key` is one of PKV_KEY_;
 * `digest_id` is the digest of which `input` is the value (for KCDSA that of z || message, whole), or 0 when `input`
 * is the message itself (Ed25519); `scheme` is the RSA scheme. It returns 0 or a PKV_ERR_ code, which the signing call
 * passes on. */
typedef int PKV_SIGN_CALLBACK(void *context, int key, int digest_id, int scheme, const unsigned char *input,
                              int input_length, unsigned char *signature, int *signature_length);

/* RSA (RFC 8017). */

typedef struct pkv_rsa RSA_UNIT;

enum {
  PKV_RSA_PKCS1 = 1,       /* RSASSA-PKCS1-v1_5 */
  PKV_RSA_PSS = 2,         /* RSASSA-PSS */
  PKV_RSA_OAEP_SET = 8,    /* RSAES-OAEP */
  PKV_RSA_OAEP = 16,       /* RSAES-OAEP */
  PKV_RSA_PKCS1_CRYPT = 32 /* RSAES-PKCS1-v1_5 */
};
typedef enum {
  PKV_RSA_N,
  PKV_RSA_E,
  PKV_RSA_D,
  PKV_RSA_P,
  PKV_RSA_Q,
  PKV_RSA_DP,
  PKV_RSA_DQ,
  PKV_RSA_QINV
} PKV_RSA_COMPONENT;

VELPKI_API RSA_UNIT *PKV_New_RSA(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_RSA(RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Clear_RSA(RSA_UNIT *key) VELPKI_NOEXCEPT;          /* back to the state after PKV_New_RSA */
VELPKI_API RSA_UNIT *PKV_Dup_RSA(const RSA_UNIT *key) VELPKI_NOEXCEPT; /* shares the numbers, not a running operation */
/* PKV_Cmp_RSA compares n and e: 0 equal, 1 not (also for null and for keys without numbers). */
VELPKI_API int PKV_Cmp_RSA(const RSA_UNIT *a, const RSA_UNIT *b) VELPKI_NOEXCEPT;
/* Setting copies the numbers and makes another key of `key`: its callback and what was running are gone. `n` and `e`
 * are required, the others null when absent; a private key works with n, e and d alone. Values are checked at use, not
 * here: every operation refuses (PKV_ERR_BAD_VALUE) a modulus that is even or not of 512 to 16384 bits, and an
 * exponent that is even, below 3, not below the modulus, or of more than 64 bits under a modulus of more than 3072. */
VELPKI_API int PKV_Set_RSA_Params(RSA_UNIT *key, const BIGINT *n, const BIGINT *e, const BIGINT *d, const BIGINT *p,
                                  const BIGINT *q, const BIGINT *dp, const BIGINT *dq,
                                  const BIGINT *qinv) VELPKI_NOEXCEPT;
/* PKV_Set_RSA_Public sets a public key from the big-endian octets of n and e, in one allocation. */
VELPKI_API int PKV_Set_RSA_Public(RSA_UNIT *key, const unsigned char *n, int n_length, const unsigned char *e,
                                  int e_length) VELPKI_NOEXCEPT;
/* PKV_Set_RSA_Callback makes a key with only n and e a private one whose signatures come from `sign`. */
VELPKI_API int PKV_Set_RSA_Callback(RSA_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) VELPKI_NOEXCEPT;
VELPKI_API const BIGINT *PKV_Get_RSA_Component(const RSA_UNIT *key, PKV_RSA_COMPONENT which) VELPKI_NOEXCEPT; /* lent */
VELPKI_API int PKV_Is_RSA_Private(const RSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Get_RSA_Length(const RSA_UNIT *key) VELPKI_NOEXCEPT; /* octets of n; 0 without one */
/* PKV_Check_RSA checks a private key: n = pq, exponents and CRT values consistent; without p and q, that the exponents
 * undo each other. It does not test p and q for primality, and of a callback's key it sees the sizes only. */
VELPKI_API int PKV_Check_RSA(const RSA_UNIT *key) VELPKI_NOEXCEPT;
/* PKV_Generate_RSA makes a key of 1024 to 16384 bits; `exponent` is odd and at least 3, 0 means 65537. */
VELPKI_API int PKV_Generate_RSA(RSA_UNIT *key, int bits, unsigned int exponent, PKV_PROGRESS *progress,
                                void *context) VELPKI_NOEXCEPT;

/* Incremental signatures, on a key that the caller owns alone. `scheme` is PKV_RSA_PKCS1 or PKV_RSA_PSS, `sign` 1 to
 * sign, 0 to verify. Final signs into `signature` (capacity in `*length`), or verifies `*length` octets of it: 0 means
 * valid; a signature of another length than the modulus is PKV_ERR_MISMATCH like any other that is wrong. PSS uses the
 * digest for MGF1 and its length for the salt unless set after Init. */
VELPKI_API int PKV_Init_RSASSA(RSA_UNIT *key, int digest_id, int scheme, int sign) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_RSASSA_PSS(RSA_UNIT *key, int mgf_digest_id, int salt_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Update_RSASSA(RSA_UNIT *key, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Final_RSASSA(RSA_UNIT *key, unsigned char *signature, int *length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Verify_RSASSA(RSA_UNIT *key, const unsigned char *signature, int length) VELPKI_NOEXCEPT;
/* One-shot forms, safe from several threads on one key. */
VELPKI_API int PKV_RSASSA_SIGN(const RSA_UNIT *key, int digest_id, int scheme, const unsigned char *data, int length,
                               unsigned char *signature, int *signature_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_RSASSA_VERIFY(const RSA_UNIT *key, int digest_id, int scheme, const unsigned char *data, int length,
                                 const unsigned char *signature, int signature_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_RSASSA_PSS_SIGN(const RSA_UNIT *key, int digest_id, int mgf_digest_id, int salt_length,
                                   const unsigned char *data, int length, unsigned char *signature,
                                   int *signature_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_RSASSA_PSS_VERIFY(const RSA_UNIT *key, int digest_id, int mgf_digest_id, int salt_length,
                                     const unsigned char *data, int length, const unsigned char *signature,
                                     int signature_length) VELPKI_NOEXCEPT;
/* PKV_RSASSA_DIGEST_VERIFY verifies over octets whose digest is known, so that several signatures over the same ones
 * need it once. The MGF1 digest and the salt length are for PSS; PKV_RSA_ANY_SALT takes the length that the signature
 * itself shows. */
enum { PKV_RSA_ANY_SALT = -1 };
VELPKI_API int PKV_RSASSA_DIGEST_VERIFY(const RSA_UNIT *key, int digest_id, int scheme, int mgf_digest_id,
                                        int salt_length, const unsigned char *digest, int digest_length,
                                        const unsigned char *signature, int signature_length) VELPKI_NOEXCEPT;
/* Encryption. `scheme` is PKV_RSA_PKCS1_CRYPT, PKV_RSA_OAEP or PKV_RSA_OAEP_SET (the same); OAEP uses SHA-1, MGF1 with
 * SHA-1 and an empty label unless set after Init. Every failure of a decryption (padding, range, length of the result)
 * is the same PKV_ERR_FAILED after the same work, and writes nothing. */
VELPKI_API int PKV_Init_RSAES(RSA_UNIT *key, int scheme, int encrypt) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_RSAES_OAEP(RSA_UNIT *key, int digest_id, int mgf_digest_id, const unsigned char *label,
                                  int label_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Encrypt_RSAES(RSA_UNIT *key, const unsigned char *in, int in_length, unsigned char *out,
                                 int *out_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Decrypt_RSAES(RSA_UNIT *key, const unsigned char *in, int in_length, unsigned char *out,
                                 int *out_length) VELPKI_NOEXCEPT;

/* KCDSA (TTAK.KO-12.0001, ISO/IEC 14888-3). */

typedef struct pkv_kcdsa KCDSA_UNIT;

typedef enum { PKV_KCDSA_P, PKV_KCDSA_Q, PKV_KCDSA_G, PKV_KCDSA_J, PKV_KCDSA_Y, PKV_KCDSA_X } PKV_KCDSA_COMPONENT;

VELPKI_API KCDSA_UNIT *PKV_New_KCDSA(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_KCDSA(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Clear_KCDSA(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API KCDSA_UNIT *PKV_Dup_KCDSA(const KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/* PKV_Cmp_KCDSA compares p, q, g and y: 0 equal, 1 not. */
VELPKI_API int PKV_Cmp_KCDSA(const KCDSA_UNIT *a, const KCDSA_UNIT *b) VELPKI_NOEXCEPT;
/* PKV_Set_KCDSA_Params sets domain parameters and public value, copied; every one may be null, which keeps what the
 * key holds. A null `seed` keeps seed and count. A callback goes, and with a new p, q, g or y the private value. Sizes
 * are checked at use: |p| 1024 to 3072, |q| 160 to 256 bits. */
VELPKI_API int PKV_Set_KCDSA_Params(KCDSA_UNIT *key, const BIGINT *p, const BIGINT *q, const BIGINT *g, const BIGINT *j,
                                    const BIGINT *y, const unsigned char *seed, int seed_length,
                                    int count) VELPKI_NOEXCEPT;
/* PKV_Set_KCDSA_Private sets x, and y = g^(1/x mod q) mod p, computed when the key holds none and compared (else
 * PKV_ERR_MISMATCH) when it does. */
VELPKI_API int PKV_Set_KCDSA_Private(KCDSA_UNIT *key, const BIGINT *x) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_KCDSA_Callback(KCDSA_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) VELPKI_NOEXCEPT;
VELPKI_API const BIGINT *PKV_Get_KCDSA_Component(const KCDSA_UNIT *key, PKV_KCDSA_COMPONENT which) VELPKI_NOEXCEPT;
/* The seed of the domain parameters, lent, null without one; `length` and `count` (null allowed) are outputs. */
VELPKI_API const unsigned char *PKV_Get_KCDSA_Seed(const KCDSA_UNIT *key, int *length, int *count) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Is_KCDSA_Private(const KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/* PKV_Get_KCDSA_Lengths tells the octets of r and of s for this key and its digest. */
VELPKI_API int PKV_Get_KCDSA_Lengths(const KCDSA_UNIT *key, int *r_length, int *s_length) VELPKI_NOEXCEPT;
/* Domain parameters by the standard's procedure from a random seed, with the first h of 2, 3, ... that gives a
 * generator. |p|, |q| and the digest: 1024/160 with HAS-160 or SHA-1, 2048/224 with SHA-224 or SHA-256, 2048/256 and
 * 3072/256 with SHA-256. */
VELPKI_API int PKV_Generate_KCDSA_Params(KCDSA_UNIT *key, int p_bits, int q_bits, int digest_id, PKV_PROGRESS *progress,
                                         void *context) VELPKI_NOEXCEPT;
/* PKV_Derive_KCDSA_Params does the same from a given seed, trying counts from 1 up; PKV_ERR_FAILED when J is composite.
 */
VELPKI_API int PKV_Derive_KCDSA_Params(KCDSA_UNIT *key, int p_bits, int q_bits, int digest_id,
                                       const unsigned char *seed, int seed_length, PKV_PROGRESS *progress,
                                       void *context) VELPKI_NOEXCEPT;
/* PKV_Generate_KCDSA makes x and y under the parameters that the key holds. */
VELPKI_API int PKV_Generate_KCDSA(KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/* PKV_Check_KCDSA_Params checks sizes, that q divides p - 1 and g has order q; with `primes` 1 also that p and q (and
 * J) are prime and, when seed and count are held, that they lead to p and q under `digest_id`. */
VELPKI_API int PKV_Check_KCDSA_Params(const KCDSA_UNIT *key, int primes, int digest_id) VELPKI_NOEXCEPT;
/* PKV_Check_KCDSA_Key checks 1 < y < p, y^q = 1, and x against y when held. */
VELPKI_API int PKV_Check_KCDSA_Key(const KCDSA_UNIT *key) VELPKI_NOEXCEPT;
/* Incremental signatures. The digest follows from |q|: HAS-160 for 160, SHA-224 for 224, SHA-256 for 256 bits;
 * PKV_Set_KCDSA_DIGEST, after Init, chooses another. Final writes (signing) or reads (verifying) r and s, each of
 * exactly the octets that PKV_Get_KCDSA_Lengths says. */
VELPKI_API int PKV_Init_KCDSA(KCDSA_UNIT *key, int sign) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_KCDSA_DIGEST(KCDSA_UNIT *key, int digest_id) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Update_KCDSA(KCDSA_UNIT *key, const unsigned char *data, int length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Final_KCDSA(KCDSA_UNIT *key, unsigned char *r, unsigned char *s) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Verify_KCDSA(KCDSA_UNIT *key, const unsigned char *r, int r_length, const unsigned char *s,
                                int s_length) VELPKI_NOEXCEPT;
/* One-shot forms, safe from several threads on one key; `digest_id` 0 is the key's own. r must have its exact length; s
 * may have leading zeros left out, or zeros in front up to its length. */
VELPKI_API int PKV_KCDSA_SIGN(const KCDSA_UNIT *key, int digest_id, const unsigned char *data, int length,
                              unsigned char *r, unsigned char *s) VELPKI_NOEXCEPT;
VELPKI_API int PKV_KCDSA_VERIFY(const KCDSA_UNIT *key, int digest_id, const unsigned char *data, int length,
                                const unsigned char *r, int r_length, const unsigned char *s,
                                int s_length) VELPKI_NOEXCEPT;

/* Elliptic curves (SEC 1, FIPS 186). */

typedef struct pkv_ecurve ECURVE;
typedef struct pkv_ecc_point ECC_POINT;
typedef struct pkv_ecc ECC_UNIT;

VELPKI_API ECC_POINT *PKV_New_ECC_POINT(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_ECC_POINT(ECC_POINT *point) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_ECC_POINT(ECC_POINT *point, const BIGINT *x, const BIGINT *y) VELPKI_NOEXCEPT; /* copies */
VELPKI_API const BIGINT *PKV_Get_ECC_POINT_X(const ECC_POINT *point) VELPKI_NOEXCEPT; /* lent, null when unset */
VELPKI_API const BIGINT *PKV_Get_ECC_POINT_Y(const ECC_POINT *point) VELPKI_NOEXCEPT;

/* A curve is its id, its name and its domain values. Values are kept as given; operations need them to be those of
 * prime256v1, secp384r1 or secp521r1, else PKV_ERR_UNSUPPORTED. */
VELPKI_API ECURVE *PKV_New_ECURVE(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_ECURVE(ECURVE *curve) VELPKI_NOEXCEPT;
VELPKI_API ECURVE *PKV_Dup_ECURVE(const ECURVE *curve) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_ECURVE_Params(ECURVE *curve, int id, const char *name, const BIGINT *a, const BIGINT *b,
                                     const BIGINT *p, const ECC_POINT *g, const BIGINT *n) VELPKI_NOEXCEPT;
/* PKV_Set_ECURVE_Named fills a curve that this provider knows, by name; its id is its place in that list, from 0. */
VELPKI_API int PKV_Set_ECURVE_Named(ECURVE *curve, const char *name) VELPKI_NOEXCEPT;
VELPKI_API const char *PKV_Get_ECURVE_Name(const ECURVE *curve) VELPKI_NOEXCEPT; /* lent, null when unset */
VELPKI_API int PKV_Get_ECURVE_ID(const ECURVE *curve) VELPKI_NOEXCEPT;           /* -1 when unset */
VELPKI_API int PKV_Get_ECURVE_Field_Length(const ECURVE *curve) VELPKI_NOEXCEPT; /* octets of p, 0 when unset */

VELPKI_API ECC_UNIT *PKV_New_ECC(void) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Free_ECC(ECC_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API void PKV_Clear_ECC(ECC_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API ECC_UNIT *PKV_Dup_ECC(const ECC_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Cmp_ECC(const ECC_UNIT *a,
                           const ECC_UNIT *b) VELPKI_NOEXCEPT; /* curve name and point: 0 equal, 1 not */
/* Setting copies, and takes a callback away; a new point takes the private value away too. PKV_Set_ECC_Private needs a
 * known curve, wants 0 < d < n (else PKV_ERR_BAD_VALUE) and computes the point when the key holds none. */
VELPKI_API int PKV_Set_ECC_Curve(ECC_UNIT *key, const ECURVE *curve) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_ECC_Public(ECC_UNIT *key, const BIGINT *x, const BIGINT *y) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_ECC_Private(ECC_UNIT *key, const BIGINT *d) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Set_ECC_Callback(ECC_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) VELPKI_NOEXCEPT;
VELPKI_API const ECURVE *PKV_Get_ECC_Curve(const ECC_UNIT *key) VELPKI_NOEXCEPT;     /* lent; null when unset */
VELPKI_API const ECC_POINT *PKV_Get_ECC_Public(const ECC_UNIT *key) VELPKI_NOEXCEPT; /* lent; null when unset */
VELPKI_API const BIGINT *PKV_Get_ECC_Private(const ECC_UNIT *key) VELPKI_NOEXCEPT;   /* lent; null when unset */
VELPKI_API int PKV_Is_ECC_Private(const ECC_UNIT *key) VELPKI_NOEXCEPT;
/* PKV_Check_ECC checks that the point is on the curve and not at infinity, and d against it when held. */
VELPKI_API int PKV_Check_ECC(const ECC_UNIT *key) VELPKI_NOEXCEPT;
VELPKI_API int PKV_Generate_ECC(ECC_UNIT *key) VELPKI_NOEXCEPT; /* under the curve that the key holds */
/* r and s each have the octets of the curve's order: PKV_Get_ECC_Lengths. Verifying accepts shorter ones, and zeros in
 * front up to that length. One-shot, safe from several threads on one key. */
VELPKI_API int PKV_Get_ECC_Lengths(const ECC_UNIT *key, int *r_length, int *s_length) VELPKI_NOEXCEPT;
VELPKI_API int PKV_ECDSA_SIGN(const ECC_UNIT *key, int digest_id, const unsigned char *data, int length,
                              unsigned char *r, unsigned char *s) VELPKI_NOEXCEPT;
VELPKI_API int PKV_ECDSA_VERIFY(const ECC_UNIT *key, int digest_id, const unsigned char *data, int length,
                                const unsigned char *r, int r_length, const unsigned char *s,
                                int s_length) VELPKI_NOEXCEPT;
/* PKV_ECDH writes the x coordinate of the shared point, as many octets as the field has. */
VELPKI_API int PKV_ECDH(const ECC_UNIT *key, const ECC_POINT *peer, unsigned char *out,
                        int *out_length) VELPKI_NOEXCEPT;
/* PKV_ED25519_VERIFY verifies a signature of 64 octets under a public key of 32 (RFC 8032). */
VELPKI_API int PKV_ED25519_VERIFY(const unsigned char *public_key, const unsigned char *data, int length,
                                  const unsigned char *signature) VELPKI_NOEXCEPT;
/* PKV_DSA_VERIFY verifies with the public value y of the domain p, q, g (FIPS 186-4): p of 512 to 10,000 bits and q of
 * 160, 224 or 256, else PKV_ERR_BAD_VALUE. That p and q are primes is not looked at. */
VELPKI_API int PKV_DSA_VERIFY(const BIGINT *p, const BIGINT *q, const BIGINT *g, const BIGINT *y, int digest_id,
                              const unsigned char *data, int length, const unsigned char *r, int r_length,
                              const unsigned char *s, int s_length) VELPKI_NOEXCEPT;

VELPKI_END

#endif
