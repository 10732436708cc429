/** @file velpki/pkcs5.h
 * Password-based encryption of private keys (RFC 8018), with the national schemes for SEED and ARIA.
 *
 * encrypt_PKCS5_modern and decrypt_PKCS5_strict are what new code wants; the plain pair keeps the rules of the files
 * that it was made for (docs/key_files.md). The containers and keys are those of pkcs8.h, which to know first.
 * Passwords are octets, used as they are given; null is missing, length 0 an empty password. Iteration counts are
 * rounds, salts, keys and IVs octets; digests and ciphers are named by the identifiers of pkv.h.
 *
 * Families behave as docs/conventions.md says of SAMPLE. */
#ifndef VELPKI_PKCS5_H
#define VELPKI_PKCS5_H

#include <velpki/pkcs8.h>

VELPKI_BEGIN

/* Parameters. */

/** The parameters of a password-based algorithm: PBEParameter (RFC 8018 A.3). With an encryption scheme they are those
 * of PBES2 with PBKDF2 (A.4, A.2). */
struct p5_pbe_param {
  OCTET_STRING *salt;                     /**< octets; required */
  BIGINT *iteration;                      /**< the count; required */
  X509_ALGO_IDENTIFIER *encryptionScheme; /**< PBES2: the cipher, with its IV as an OCTET STRING; else null */
  X509_ALGO_IDENTIFIER *prf;              /**< of PBKDF2 as read; null means HMAC with SHA-1 */
  int key_length;                         /**< of PBKDF2 as read, in octets; 0 when absent */
};

/** @name Life cycle of P5_PBE_PARAM
 * @{ */
/** A new record has neither salt nor count, both of which encoding needs. */
VELPKI_API P5_PBE_PARAM *new_P5_PBE_PARAM(void) VELPKI_NOEXCEPT;
VELPKI_API void clean_P5_PBE_PARAM(P5_PBE_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API void free_P5_PBE_PARAM(P5_PBE_PARAM *p) VELPKI_NOEXCEPT;
VELPKI_API P5_PBE_PARAM *dup_P5_PBE_PARAM(const P5_PBE_PARAM *p) VELPKI_NOEXCEPT;
/** @} */

/** @name Members of P5_PBE_PARAM
 * @{ */
/** Fills in salt, iteration count (big-endian octets) and, when both of its parts are given, the encryption scheme; all
 * are copied. 0, or 1 when salt or count is null or has no octets, or memory ends. */
VELPKI_API int set_P5_PBE_PARAM(P5_PBE_PARAM *param, const unsigned char *salt, int salt_length,
                                const unsigned char *iteration, int iteration_length, const OBJECT_IDENTIFIER *scheme,
                                const ASN1_STRING *scheme_parameters) VELPKI_NOEXCEPT;
/** Decodes the parameters of an algorithm into a new record; null when they are missing or malformed. */
VELPKI_API P5_PBE_PARAM *get_P5_PBE_PARAM_from_X509_ALGO_IDENTIFIER(const X509_ALGO_IDENTIFIER *algo) VELPKI_NOEXCEPT;
/** @} */

/** @name Codec of P5_PBE_PARAM
 * @{ */
/** Encodes SEQUENCE { salt OCTET STRING, iterationCount INTEGER }, or for PBES2 SEQUENCE { SEQUENCE { "PBKDF2",
 * SEQUENCE { salt, iterationCount, keyLength OPTIONAL, prf DEFAULT hmacWithSHA1 } }, encryptionScheme }. Codes:
 * F_P5_PBE_PARAM_TO_SEQ.
 * @warning Key length and PRF are not written; P5_PBE_PARAM_to_Seq_RFC5280 writes both. */
VELPKI_API int P5_PBE_PARAM_to_Seq(const P5_PBE_PARAM *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** Decodes either form. The key derivation must be PBKDF2. Codes: F_SEQ_TO_P5_PBE_PARAM.
 * @warning A count is read without its sign: FF is 255. Seq_to_P5_PBE_PARAM_RFC5280 keeps the sign. */
VELPKI_API int Seq_to_P5_PBE_PARAM(ASN1_UNIT *in, P5_PBE_PARAM **out) VELPKI_NOEXCEPT;
/** As P5_PBE_PARAM_to_Seq, with key length and PRF where the record has them. */
VELPKI_API int P5_PBE_PARAM_to_Seq_RFC5280(const P5_PBE_PARAM *in, ASN1_UNIT **out) VELPKI_NOEXCEPT;
/** As Seq_to_P5_PBE_PARAM, with the sign of numbers kept. */
VELPKI_API int Seq_to_P5_PBE_PARAM_RFC5280(ASN1_UNIT *in, P5_PBE_PARAM **out) VELPKI_NOEXCEPT;
/** @} */

/** @name Key derivation
 * @{ */
/** PBKDF1 (RFC 8018 5.1): at most 16 octets with MD5, 20 with SHA-1, the digest's length with any other. The salt may
 * be empty, but not null; the caller's iteration count has no upper bound. Codes: F_PBKDF1 with 49 (null, fewer than
 * one iteration), 2B (a length), 3C, or the provider's. */
VELPKI_API int PBKDF1(const char *password, int password_length, const unsigned char *salt, int salt_length,
                      int iterations, int digest_id, unsigned char *out, int out_length) VELPKI_NOEXCEPT;
/** PBKDF2 (RFC 8018 5.2) with HMAC over the digest. The salt may be empty, but not null; the caller's iteration count
 * has no upper bound. Codes: F_PBKDF2 with 49 or 2B, or the provider's. */
VELPKI_API int PBKDF2(const char *password, int password_length, const unsigned char *salt, int salt_length,
                      int iterations, int digest_id, unsigned char *out, int out_length) VELPKI_NOEXCEPT;
/** @} */

/** @name Schemes
 * @{ */
/** Encrypts under PBES1 (RFC 8018 6.1): ciphers with keys of 8 octets. PBKDF1 gives the key and the IV. In this and the
 * other schemes `*out_length` holds the capacity, which must be a block more than the input, for decryption, too, and
 * receives the octets written. Codes: F_ENCRYPT_PBES1 with 49 for what is missing, fewer than one iteration too, and 2B
 * for a length, capacity or mode that is out of range; those of PBKDF1; or the provider's. */
VELPKI_API int encrypt_PBES1(unsigned char *out, int *out_length, const char *password, int password_length,
                             const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                             int in_length, int cipher_id, int digest_id) VELPKI_NOEXCEPT;
/** Decrypts what encrypt_PBES1 makes. Codes: F_DECRYPT_PBES1 as there; PKV_ERR_FAILED for padding that is wrong. */
VELPKI_API int decrypt_PBES1(unsigned char *out, int *out_length, const char *password, int password_length,
                             const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                             int in_length, int cipher_id, int digest_id) VELPKI_NOEXCEPT;
/** Encrypts under the KISA scheme, for SEED and ARIA with keys of a block. PBKDF1 gives the key, and with `iv_mode` 1
 * what is left of its result the IV, by SHA-1; with 0 the IV is fixed. Codes: F_ENC_PBES1_KISA as encrypt_PBES1, and
 * for the steps 12 for the derivation, 22, 5B and 18 for SHA-1; or the provider's.
 * @warning Bit 0x20 of the cipher identifier is set: CBC and ECB both mean CBC, but CFB becomes OFB. */
VELPKI_API int encrypt_PBES1_KISA(unsigned char *out, int *out_length, const char *password, int password_length,
                                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                                  int in_length, int cipher_id, int digest_id, int iv_mode) VELPKI_NOEXCEPT;
/** Decrypts what encrypt_PBES1_KISA makes. Codes: F_DEC_PBES1_KISA as there; PKV_ERR_FAILED for padding that is wrong.
 * @warning Bit 0x20 of the cipher identifier is set, as there. */
VELPKI_API int decrypt_PBES1_KISA(unsigned char *out, int *out_length, const char *password, int password_length,
                                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                                  int in_length, int cipher_id, int digest_id, int iv_mode) VELPKI_NOEXCEPT;
/** Encrypts under the GPKI scheme: key and IV by the derivation of PKCS#12 (RFC 7292 B.2) with SHA-1. Codes:
 * F_ENC_PBES1_GPKI as encrypt_PBES1, those of the derivation, or the provider's.
 * @warning Bit 0x20 of the cipher identifier is set, as in encrypt_PBES1_KISA. */
VELPKI_API int encrypt_PBES1_GPKI(unsigned char *out, int *out_length, const char *password, int password_length,
                                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                                  int in_length, int cipher_id) VELPKI_NOEXCEPT;
/** Decrypts what encrypt_PBES1_GPKI makes. Codes: F_DEC_PBES1_GPKI as there; PKV_ERR_FAILED for padding that is wrong.
 * @warning Bit 0x20 of the cipher identifier is set, as in encrypt_PBES1_KISA. */
VELPKI_API int decrypt_PBES1_GPKI(unsigned char *out, int *out_length, const char *password, int password_length,
                                  const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                                  int in_length, int cipher_id) VELPKI_NOEXCEPT;
/** Encrypts under PBES2 (RFC 8018 6.2): PBKDF2 gives the key. `iv` has room for 16 octets. `*iv_length` is the cipher's
 * IV length; when it is below 1, an IV is drawn and written to both. Codes: F_ENCRYPT_PBES2 as encrypt_PBES1, those of
 * PBKDF2, or the provider's. */
VELPKI_API int encrypt_PBES2(unsigned char *out, int *out_length, const char *password, int password_length,
                             const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                             int in_length, int cipher_id, int digest_id, unsigned char *iv,
                             int *iv_length) VELPKI_NOEXCEPT;
/** Decrypts what encrypt_PBES2 makes; `*iv_length` is the cipher's IV length. Codes: F_DECRYPT_PBES2 as there;
 * PKV_ERR_FAILED for padding that is wrong. */
VELPKI_API int decrypt_PBES2(unsigned char *out, int *out_length, const char *password, int password_length,
                             const unsigned char *salt, int salt_length, int iterations, const unsigned char *in,
                             int in_length, int cipher_id, int digest_id, unsigned char *iv,
                             int *iv_length) VELPKI_NOEXCEPT;
/** @} */

/* Keys under a password. */

/** A limit against files that are made to keep their reader busy. */
enum {
  PKCS5_MAX_ITERATIONS = 10000000 /**< the iteration counts of files that are accepted unless another limit is given */
};

/** Encrypts a key into a container at `*out` (as Seq_to_ stores one). The salt is drawn (8 octets) unless it is given.
 * The scheme follows from the registry row `oid_index`: 780 and 828 the KISA scheme with a derived IV, 777 with the
 * fixed one, 793 GPKI, the rows of single DES PBES1, any other cipher PBES2. Codes: F_ENC_PKCS5 with 49, 3B (a row
 * without a cipher), 30 or 3C; those of the encoder and of the scheme; 1 for a count that leaves no octets.
 * @warning The iteration count is written in as many octets as it can be divided by 16 while above 16. Counts up to 16
 * leave none and are refused; of 256 to 271 the octet written is 0 to 15, and nobody can open the result. For PBES2 no
 * PRF is stated, so that only SHA-1 (or a row's own digest, in this library) decrypts it again. encrypt_PKCS5_ex has
 * flags that mend both. */
VELPKI_API int encrypt_PKCS5(P8_PRIV_KEY_INFO *key, PKCS8 **out, const char *password, int password_length,
                             const unsigned char *salt, int salt_length, int iterations, int oid_index) VELPKI_NOEXCEPT;
/** Flags of encrypt_PKCS5_ex, which may be combined. */
enum {
  PKCS5_EXACT_ITERATIONS = 1, /**< write the count as a number */
  PKCS5_STATE_PRF = 2         /**< write the PRF of PBES2; 2B for a digest that has no HMAC identifier */
};
/** As encrypt_PKCS5, with a digest (0: the row's), an IV for PBES2 (null: drawn), and flags of PKCS5_EXACT_ITERATIONS
 * and PKCS5_STATE_PRF. Another digest than the row's has to be stated, so it is 2B without that flag and for other
 * schemes than PBES2. */
VELPKI_API int encrypt_PKCS5_ex(P8_PRIV_KEY_INFO *key, PKCS8 **out, const char *password, int password_length,
                                const unsigned char *salt, int salt_length, int iterations, int oid_index,
                                int digest_id, const unsigned char *iv, int iv_length, unsigned flags) VELPKI_NOEXCEPT;
/** Encrypts a key under PBES2 with AES-256-CBC, HMAC-SHA256 stated, 16 octets of salt, the count as it is. Codes as
 * encrypt_PKCS5. */
VELPKI_API int encrypt_PKCS5_modern(P8_PRIV_KEY_INFO *key, PKCS8 **out, const char *password, int password_length,
                                    int iterations) VELPKI_NOEXCEPT;

/** Decrypts a container made by encrypt_PKCS5. Codes: F_DEC_PKCS5 with 49 (null, a count of 0), 2B (a count above
 * PKCS5_MAX_ITERATIONS), ERR_NOT_FOUNDED (an algorithm that is none of the schemes') or 12 (wrong password); those of
 * the scheme and of the decoder.
 * @warning A key of fewer than 256 or more than 65535 octets, such as every elliptic one, counts as a wrong password,
 * and so does a file whose PRF is not HMAC-SHA1: the PRF is not looked at. decrypt_PKCS5_strict has none of these
 * rules. */
VELPKI_API int decrypt_PKCS5(PKCS8 *in, P8_PRIV_KEY_INFO **out, const char *password,
                             int password_length) VELPKI_NOEXCEPT;

/** What decrypt_PKCS5_strict found. */
typedef enum {
  PKCS5_SCHEME_NONE,            /**< for the caller to begin with; never an answer */
  PKCS5_SCHEME_PBES1,           /**< RFC 8018 6.1 */
  PKCS5_SCHEME_PBES2,           /**< RFC 8018 6.2 */
  PKCS5_SCHEME_PKCS12,          /**< the algorithms of PKCS#12 (RFC 7292 C) */
  PKCS5_SCHEME_KISA,            /**< SEED or ARIA with a derived IV */
  PKCS5_SCHEME_KISA_FIXED_IV,   /**< SEED with the fixed IV of encrypt_PKCS5 */
  PKCS5_SCHEME_KISA_COUNTED_IV, /**< SEED with the IV 0123456789012345 that other programs use */
  PKCS5_SCHEME_GPKI             /**< key and IV by the derivation of PKCS#12 */
} PKCS5_SCHEME;

/** Opens keys of any size and algorithm (see Seq_to_P8_PRIV_KEY_INFO_RFC5280), under the schemes above, RC2 of 40, 64
 * and 128 bits, the algorithms of PKCS#12 (for which a password that is UTF-8 is taken as such) and PBES2 with the PRF
 * and key length that the file states. Padding and whole decoding decide. `max_iterations` is the highest count that is
 * accepted, 0 meaning PKCS5_MAX_ITERATIONS; `scheme` may be null and is written on success only. Codes: F_DEC_PKCS5
 * with 49 (null; a count below 1), 2B (a negative argument, a count above the limit, parameters that do not fit the
 * cipher), ERR_ASN1_DECODING (parameters), 48 (an algorithm that is unknown), 3C, or 12 for a wrong password, whatever
 * it showed in. */
VELPKI_API int decrypt_PKCS5_strict(const PKCS8 *in, P8_PRIV_KEY_INFO **out, const char *password, int password_length,
                                    int max_iterations, PKCS5_SCHEME *scheme) VELPKI_NOEXCEPT;

VELPKI_END

#endif
