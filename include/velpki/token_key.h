/** @file velpki/token_key.h
 *
 * Signing with a private key that stays in a token. A P11_KEY says which key of which session it is; read_P11_KEY() or
 * join_P11_KEY() makes an ASYMMETRIC_KEY of it that every function which signs takes like any other of its kind: keys
 * of RSA for certificates, requests, revocation lists, PKCS#7 and CMS messages, OCSP requests and responses; keys on a
 * curve for those that the functions with _RFC5280 or _ex in their names sign.
 *
 * What the token has to know: CKM_RSA_PKCS for PKCS#1 v1.5, CKM_RSA_PKCS_PSS for PSS, CKM_ECDSA for prime256v1,
 * secp384r1 and secp521r1. The digest is made here. KCDSA has no mechanism in PKCS#11: write a PKV_SIGN_CALLBACK for
 * the module that has one (PKV_Set_KCDSA_Callback()).
 *
 * Ownership: the P11_KEY is the caller's. The ASYMMETRIC_KEY and all its copies, also those that a signer of a message
 * holds, point to it: it has to stay in its place until the last of them is released or will not sign any more.
 *
 * Threads: a session runs one operation at a time, so one P11_KEY signs in one thread at a time. Threads that sign at
 * once have a P11_KEY each, with sessions of their own; they may name the same key.
 *
 * Codes are the provider's: 0, or PKV_ERR_ with the token's own answer in `last_result`. */
#ifndef VELPKI_TOKEN_KEY_H
#define VELPKI_TOKEN_KEY_H

#include <velpki/pkcs11_access.h>
#include <velpki/x509.h>

VELPKI_BEGIN

/** Asked for the permission to sign between C_SignInit and C_Sign; calls p11_C_Login() with CKU_CONTEXT_SPECIFIC. What
 * it returns ends the signature if it is not CKR_OK. */
typedef CK_RV P11_AUTHENTICATE(CK_SESSION_HANDLE session, void *context);

/** A private key in a token. The caller sets the first two members, the next two for keys with CKA_ALWAYS_AUTHENTICATE,
 * and begins with zeros: `P11_KEY key = {0}`. */
typedef struct {
  CK_SESSION_HANDLE session;      /**< an open one, logged in where the key wants that */
  CK_OBJECT_HANDLE object;        /**< the private key */
  P11_AUTHENTICATE *authenticate; /**< null, or called once for each signature */
  void *authenticate_context;     /**< passed to it */
  CK_RV last_result;              /**< what the token answered last, of those functions here that got this record */
} P11_KEY;

/** Makes a key that signs in the token, with the public numbers of an object of the same session: the public key that
 * belongs to it, or for RSA the private key itself if it shows its public exponent. Release `*out` with
 * free_ASYMMETRIC_KEY().
 * @return 0; PKV_ERR_NULL; PKV_ERR_UNSUPPORTED for a key that is not RSA nor of one of the three curves;
 * PKV_ERR_MISMATCH as join_P11_KEY(); PKV_ERR_BAD_VALUE for numbers that are no key; PKV_ERR_FAILED for every other
 * answer of the token; PKV_ERR_NO_MEMORY. */
VELPKI_API int read_P11_KEY(P11_KEY *key, CK_OBJECT_HANDLE public_object, ASYMMETRIC_KEY **out) VELPKI_NOEXCEPT;

/** The same with a public key that is known already, say from the certificate (get_X509_SPKI()). The type of the key in
 * the token, and where it is RSA the modulus, have to be those of `public_key`.
 * @warning A private key on a curve does not show its point, so nothing tells here that it is another's: verify the
 * first signature.
 * @return 0; PKV_ERR_NULL; PKV_ERR_UNSUPPORTED for another type than RSA and ECC; PKV_ERR_BAD_VALUE for a key that has
 * private numbers of its own; PKV_ERR_MISMATCH; PKV_ERR_FAILED; PKV_ERR_NO_MEMORY. */
VELPKI_API int join_P11_KEY(P11_KEY *key, const ASYMMETRIC_KEY *public_key, ASYMMETRIC_KEY **out) VELPKI_NOEXCEPT;

/** The PKV_SIGN_CALLBACK behind both, for keys that are put together otherwise; `context` is a P11_KEY.
 * @return 0; PKV_ERR_NULL; PKV_ERR_UNSUPPORTED for a key, digest or scheme without a mechanism, here or in the token;
 * PKV_ERR_MISMATCH for a signature of another length than the key's; PKV_ERR_NO_MEMORY; PKV_ERR_FAILED for every other
 * answer of the token, CKR_CRYPTOKI_NOT_INITIALIZED of an unloaded module among them. */
VELPKI_API int sign_P11_KEY(void *context, int key, int digest_id, int scheme, const unsigned char *input,
                            int input_length, unsigned char *signature, int *signature_length) VELPKI_NOEXCEPT;

VELPKI_END

#endif
