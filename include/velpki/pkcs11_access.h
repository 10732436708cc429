/** @file velpki/pkcs11_access.h
 *
 * Tokens: a PKCS#11 module chosen at run time, its entry points, and a wrapper for each. Signing with a key that stays
 * in the token is velpki/token_key.h.
 *
 * The types are those of PKCS#11 version 2, from p11-kit's header (Debian: libp11-kit-dev, `pkg-config --cflags
 * p11-kit-1`); nothing of p11-kit is linked. Templates and mechanisms are the caller's, and so are C_Initialize and
 * C_Finalize: loading does not call the one, nor unloading the other.
 *
 * @warning Handle and pointers belong to the whole process and are not guarded: no loading or unloading may run at the
 * same time as a wrapper. Whether wrappers may run in several threads is the module's affair (CK_C_INITIALIZE_ARGS). */
#ifndef VELPKI_PKCS11_ACCESS_H
#define VELPKI_PKCS11_ACCESS_H

#include <p11-kit/pkcs11.h>
#include <velpki/api.h>

VELPKI_BEGIN

/** The handle that dlopen gave for the module; null when none is loaded. */
VELPKI_API extern void *g_hModule;

/** @name Entry points
 * Each holds the address of the function of its name in the module, or null. A caller may set one of its own.
 * @warning They keep their addresses when the module is unloaded. Do not call through them then; the wrappers do not.
 * @{ */
VELPKI_API extern CK_C_Initialize pfnC_Initialize;               /**< C_Initialize */
VELPKI_API extern CK_C_Finalize pfnC_Finalize;                   /**< C_Finalize */
VELPKI_API extern CK_C_GetSlotList pfnC_GetSlotList;             /**< C_GetSlotList */
VELPKI_API extern CK_C_GetTokenInfo pfnC_GetTokenInfo;           /**< C_GetTokenInfo */
VELPKI_API extern CK_C_OpenSession pfnC_OpenSession;             /**< C_OpenSession */
VELPKI_API extern CK_C_CloseSession pfnC_CloseSession;           /**< C_CloseSession */
VELPKI_API extern CK_C_Login pfnC_Login;                         /**< C_Login */
VELPKI_API extern CK_C_Logout pfnC_Logout;                       /**< C_Logout */
VELPKI_API extern CK_C_GetAttributeValue pfnC_GetAttributeValue; /**< C_GetAttributeValue */
VELPKI_API extern CK_C_FindObjectsInit pfnC_FindObjectsInit;     /**< C_FindObjectsInit */
VELPKI_API extern CK_C_FindObjects pfnC_FindObjects;             /**< C_FindObjects */
VELPKI_API extern CK_C_FindObjectsFinal pfnC_FindObjectsFinal;   /**< C_FindObjectsFinal */
VELPKI_API extern CK_C_GetSlotInfo pfnC_GetSlotInfo;             /**< C_GetSlotInfo */
VELPKI_API extern CK_C_GetFunctionList pfnC_GetFunctionList;     /**< C_GetFunctionList */
VELPKI_API extern CK_C_GetInfo pfnC_GetInfo;                     /**< C_GetInfo */
VELPKI_API extern CK_C_GenerateKeyPair pfnC_GenerateKeyPair;     /**< C_GenerateKeyPair */
VELPKI_API extern CK_C_CreateObject pfnC_CreateObject;           /**< C_CreateObject */
VELPKI_API extern CK_C_EncryptInit pfnC_EncryptInit;             /**< C_EncryptInit */
VELPKI_API extern CK_C_Encrypt pfnC_Encrypt;                     /**< C_Encrypt */
VELPKI_API extern CK_C_EncryptUpdate pfnC_EncryptUpdate;         /**< C_EncryptUpdate */
VELPKI_API extern CK_C_EncryptFinal pfnC_EncryptFinal;           /**< C_EncryptFinal */
VELPKI_API extern CK_C_DecryptInit pfnC_DecryptInit;             /**< C_DecryptInit */
VELPKI_API extern CK_C_Decrypt pfnC_Decrypt;                     /**< C_Decrypt */
VELPKI_API extern CK_C_DecryptUpdate pfnC_DecryptUpdate;         /**< C_DecryptUpdate */
VELPKI_API extern CK_C_DecryptFinal pfnC_DecryptFinal;           /**< C_DecryptFinal */
VELPKI_API extern CK_C_DigestInit pfnC_DigestInit;               /**< C_DigestInit */
VELPKI_API extern CK_C_Digest pfnC_Digest;                       /**< C_Digest */
VELPKI_API extern CK_C_DigestUpdate pfnC_DigestUpdate;           /**< C_DigestUpdate */
VELPKI_API extern CK_C_DigestKey pfnC_DigestKey;                 /**< C_DigestKey */
VELPKI_API extern CK_C_DigestFinal pfnC_DigestFinal;             /**< C_DigestFinal */
VELPKI_API extern CK_C_SignInit pfnC_SignInit;                   /**< C_SignInit */
VELPKI_API extern CK_C_Sign pfnC_Sign;                           /**< C_Sign */
VELPKI_API extern CK_C_SignUpdate pfnC_SignUpdate;               /**< C_SignUpdate */
VELPKI_API extern CK_C_SignFinal pfnC_SignFinal;                 /**< C_SignFinal */
VELPKI_API extern CK_C_VerifyInit pfnC_VerifyInit;               /**< C_VerifyInit */
VELPKI_API extern CK_C_Verify pfnC_Verify;                       /**< C_Verify */
VELPKI_API extern CK_C_DestroyObject pfnC_DestroyObject;         /**< C_DestroyObject */
/** @} */

/** Loads a module: dlopen with lazy binding, then _assign_function_list(). Returns 0; -1 when `path` is null, and then
 * nothing changes, or when the loader refuses the file, and then the entry points stay as they were. dlerror() has the
 * reason.
 * @warning A module that is loaded already stays open, and nothing is left to close it by: unload it before. After a
 * refused file the handle is null, whatever it was. What the path may be is dlopen's affair: a name without a slash is
 * searched for, and the empty one is the program itself. _load_pkcs11_module_ex() is stricter.
 * @warning Modules that export their functions by C_GetFunctionList alone leave every other entry point null: use
 * _load_pkcs11_module_ex(). */
VELPKI_API int _load_pkcs11_module(const char *path) VELPKI_NOEXCEPT;

/** What _load_pkcs11_module_ex() returns beside 0. */
enum {
  P11_LOAD_REFUSED = -1,     /**< no path, or the loader refuses the file: dlerror() has the reason */
  P11_LOAD_NO_MODULE = -2,   /**< the file is no PKCS#11 module of version 2 or later */
  P11_LOAD_NOT_UNLOADED = -3 /**< a module is loaded: unload it before */
};
/** Loads a module as its standard says: entry points that it does not export by name come from the list that its
 * C_GetFunctionList returns. The file is bound at once, so that a function it lacks is found here and not in the middle
 * of a call. Returns 0 or one of P11_LOAD_; then nothing has changed, and the file is closed again. A function that the
 * list has as null stays null. */
VELPKI_API int _load_pkcs11_module_ex(const char *path) VELPKI_NOEXCEPT;

/** Looks every entry point up by name in the module of the handle; one that it does not export becomes null. Without a
 * handle all become null. */
VELPKI_API void _assign_function_list(void) VELPKI_NOEXCEPT;

/** Closes the module and makes the handle null. Without one it does nothing.
 * @warning The entry points keep their addresses, of code that is gone. The wrappers know them: each returns
 * CKR_CRYPTOKI_NOT_INITIALIZED until its entry point is set to something else or a module is loaded.
 * @warning C_Finalize is not called. */
VELPKI_API void _unload_pkcs11_module(void) VELPKI_NOEXCEPT;

/** @name Wrappers
 * Each passes its parameters to the module's function of that name and returns what it returns. Where that entry point
 * is null, or was closed with its module, it returns CKR_CRYPTOKI_NOT_INITIALIZED (0x190) and calls nothing.
 * @{ */
/** C_Initialize. */
VELPKI_API CK_RV p11_C_Initialize(CK_VOID_PTR pInitArgs) VELPKI_NOEXCEPT;
/** C_Finalize. */
VELPKI_API CK_RV p11_C_Finalize(CK_VOID_PTR pReserved) VELPKI_NOEXCEPT;
/** C_GetSlotList. */
VELPKI_API CK_RV p11_C_GetSlotList(CK_BBOOL tokenPresent, CK_SLOT_ID_PTR pSlotList,
                                   CK_ULONG_PTR pulCount) VELPKI_NOEXCEPT;
/** C_GetTokenInfo. */
VELPKI_API CK_RV p11_C_GetTokenInfo(CK_SLOT_ID slotID, CK_TOKEN_INFO_PTR pInfo) VELPKI_NOEXCEPT;
/** C_OpenSession. */
VELPKI_API CK_RV p11_C_OpenSession(CK_SLOT_ID slotID, CK_FLAGS flags, CK_VOID_PTR pApplication, CK_NOTIFY Notify,
                                   CK_SESSION_HANDLE_PTR phSession) VELPKI_NOEXCEPT;
/** C_CloseSession. */
VELPKI_API CK_RV p11_C_CloseSession(CK_SESSION_HANDLE hSession) VELPKI_NOEXCEPT;
/** C_Login. */
VELPKI_API CK_RV p11_C_Login(CK_SESSION_HANDLE hSession, CK_USER_TYPE userType, CK_UTF8CHAR_PTR pPin,
                             CK_ULONG ulPinLen) VELPKI_NOEXCEPT;
/** C_Logout. */
VELPKI_API CK_RV p11_C_Logout(CK_SESSION_HANDLE hSession) VELPKI_NOEXCEPT;
/** C_GetAttributeValue. */
VELPKI_API CK_RV p11_C_GetAttributeValue(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject,
                                         CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount) VELPKI_NOEXCEPT;
/** C_FindObjectsInit. */
VELPKI_API CK_RV p11_C_FindObjectsInit(CK_SESSION_HANDLE hSession, CK_ATTRIBUTE_PTR pTemplate,
                                       CK_ULONG ulCount) VELPKI_NOEXCEPT;
/** C_FindObjects. */
VELPKI_API CK_RV p11_C_FindObjects(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE_PTR phObject, CK_ULONG ulMaxObjectCount,
                                   CK_ULONG_PTR pulObjectCount) VELPKI_NOEXCEPT;
/** C_FindObjectsFinal. */
VELPKI_API CK_RV p11_C_FindObjectsFinal(CK_SESSION_HANDLE hSession) VELPKI_NOEXCEPT;
/** C_GetSlotInfo. */
VELPKI_API CK_RV p11_C_GetSlotInfo(CK_SLOT_ID slotID, CK_SLOT_INFO_PTR pInfo) VELPKI_NOEXCEPT;
/** C_GetFunctionList. */
VELPKI_API CK_RV p11_C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR ppFunctionList) VELPKI_NOEXCEPT;
/** C_GetInfo. */
VELPKI_API CK_RV p11_C_GetInfo(CK_INFO_PTR pInfo) VELPKI_NOEXCEPT;
/** C_GenerateKeyPair. */
VELPKI_API CK_RV p11_C_GenerateKeyPair(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism,
                                       CK_ATTRIBUTE_PTR pPublicKeyTemplate, CK_ULONG ulPublicKeyAttributeCount,
                                       CK_ATTRIBUTE_PTR pPrivateKeyTemplate, CK_ULONG ulPrivateKeyAttributeCount,
                                       CK_OBJECT_HANDLE_PTR phPublicKey,
                                       CK_OBJECT_HANDLE_PTR phPrivateKey) VELPKI_NOEXCEPT;
/** C_CreateObject. */
VELPKI_API CK_RV p11_C_CreateObject(CK_SESSION_HANDLE hSession, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount,
                                    CK_OBJECT_HANDLE_PTR phObject) VELPKI_NOEXCEPT;
/** C_EncryptInit. */
VELPKI_API CK_RV p11_C_EncryptInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism,
                                   CK_OBJECT_HANDLE hKey) VELPKI_NOEXCEPT;
/** C_Encrypt. */
VELPKI_API CK_RV p11_C_Encrypt(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen,
                               CK_BYTE_PTR pEncryptedData, CK_ULONG_PTR pulEncryptedDataLen) VELPKI_NOEXCEPT;
/** C_EncryptUpdate. */
VELPKI_API CK_RV p11_C_EncryptUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen,
                                     CK_BYTE_PTR pEncryptedPart, CK_ULONG_PTR pulEncryptedPartLen) VELPKI_NOEXCEPT;
/** C_EncryptFinal. */
VELPKI_API CK_RV p11_C_EncryptFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pLastEncryptedPart,
                                    CK_ULONG_PTR pulLastEncryptedPartLen) VELPKI_NOEXCEPT;
/** C_DecryptInit. */
VELPKI_API CK_RV p11_C_DecryptInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism,
                                   CK_OBJECT_HANDLE hKey) VELPKI_NOEXCEPT;
/** C_Decrypt. */
VELPKI_API CK_RV p11_C_Decrypt(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedData, CK_ULONG ulEncryptedDataLen,
                               CK_BYTE_PTR pData, CK_ULONG_PTR pulDataLen) VELPKI_NOEXCEPT;
/** C_DecryptUpdate. */
VELPKI_API CK_RV p11_C_DecryptUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedPart,
                                     CK_ULONG ulEncryptedPartLen, CK_BYTE_PTR pPart,
                                     CK_ULONG_PTR pulPartLen) VELPKI_NOEXCEPT;
/** C_DecryptFinal. */
VELPKI_API CK_RV p11_C_DecryptFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pLastPart,
                                    CK_ULONG_PTR pulLastPartLen) VELPKI_NOEXCEPT;
/** C_DigestInit. */
VELPKI_API CK_RV p11_C_DigestInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism) VELPKI_NOEXCEPT;
/** C_Digest. */
VELPKI_API CK_RV p11_C_Digest(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pDigest,
                              CK_ULONG_PTR pulDigestLen) VELPKI_NOEXCEPT;
/** C_DigestUpdate. */
VELPKI_API CK_RV p11_C_DigestUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen) VELPKI_NOEXCEPT;
/** C_DigestKey. */
VELPKI_API CK_RV p11_C_DigestKey(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hKey) VELPKI_NOEXCEPT;
/** C_DigestFinal. */
VELPKI_API CK_RV p11_C_DigestFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pDigest,
                                   CK_ULONG_PTR pulDigestLen) VELPKI_NOEXCEPT;
/** C_SignInit. */
VELPKI_API CK_RV p11_C_SignInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism,
                                CK_OBJECT_HANDLE hKey) VELPKI_NOEXCEPT;
/** C_Sign. */
VELPKI_API CK_RV p11_C_Sign(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,
                            CK_ULONG_PTR pulSignatureLen) VELPKI_NOEXCEPT;
/** C_SignUpdate. */
VELPKI_API CK_RV p11_C_SignUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen) VELPKI_NOEXCEPT;
/** C_SignFinal. */
VELPKI_API CK_RV p11_C_SignFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pSignature,
                                 CK_ULONG_PTR pulSignatureLen) VELPKI_NOEXCEPT;
/** C_VerifyInit. */
VELPKI_API CK_RV p11_C_VerifyInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism,
                                  CK_OBJECT_HANDLE hKey) VELPKI_NOEXCEPT;
/** C_Verify. */
VELPKI_API CK_RV p11_C_Verify(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,
                              CK_ULONG ulSignatureLen) VELPKI_NOEXCEPT;
/** C_DestroyObject. */
VELPKI_API CK_RV p11_C_DestroyObject(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
