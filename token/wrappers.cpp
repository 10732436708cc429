// The wrappers: one visible line each.
#include "token/internal/entry_point.h"

namespace velpki {

namespace {

template <auto &pointer, class... Arguments>
CK_RV forward(Arguments... arguments) noexcept {
  const auto function = pointer;
  return function && function != closed<pointer> ? function(arguments...) : CK_RV{CKR_CRYPTOKI_NOT_INITIALIZED};
}

}  // namespace

}  // namespace velpki

using namespace velpki;

CK_RV p11_C_Initialize(CK_VOID_PTR pInitArgs) noexcept { return forward<pfnC_Initialize>(pInitArgs); }
CK_RV p11_C_Finalize(CK_VOID_PTR pReserved) noexcept { return forward<pfnC_Finalize>(pReserved); }
CK_RV p11_C_GetSlotList(CK_BBOOL tokenPresent, CK_SLOT_ID_PTR pSlotList, CK_ULONG_PTR pulCount) noexcept {
  return forward<pfnC_GetSlotList>(tokenPresent, pSlotList, pulCount);
}
CK_RV p11_C_GetTokenInfo(CK_SLOT_ID slotID, CK_TOKEN_INFO_PTR pInfo) noexcept {
  return forward<pfnC_GetTokenInfo>(slotID, pInfo);
}
CK_RV p11_C_OpenSession(CK_SLOT_ID slotID, CK_FLAGS flags, CK_VOID_PTR pApplication, CK_NOTIFY Notify,
                        CK_SESSION_HANDLE_PTR phSession) noexcept {
  return forward<pfnC_OpenSession>(slotID, flags, pApplication, Notify, phSession);
}
CK_RV p11_C_CloseSession(CK_SESSION_HANDLE hSession) noexcept { return forward<pfnC_CloseSession>(hSession); }
CK_RV p11_C_Login(CK_SESSION_HANDLE hSession, CK_USER_TYPE userType, CK_UTF8CHAR_PTR pPin, CK_ULONG ulPinLen) noexcept {
  return forward<pfnC_Login>(hSession, userType, pPin, ulPinLen);
}
CK_RV p11_C_Logout(CK_SESSION_HANDLE hSession) noexcept { return forward<pfnC_Logout>(hSession); }
CK_RV p11_C_GetAttributeValue(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject, CK_ATTRIBUTE_PTR pTemplate,
                              CK_ULONG ulCount) noexcept {
  return forward<pfnC_GetAttributeValue>(hSession, hObject, pTemplate, ulCount);
}
CK_RV p11_C_FindObjectsInit(CK_SESSION_HANDLE hSession, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount) noexcept {
  return forward<pfnC_FindObjectsInit>(hSession, pTemplate, ulCount);
}
CK_RV p11_C_FindObjects(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE_PTR phObject, CK_ULONG ulMaxObjectCount,
                        CK_ULONG_PTR pulObjectCount) noexcept {
  return forward<pfnC_FindObjects>(hSession, phObject, ulMaxObjectCount, pulObjectCount);
}
CK_RV p11_C_FindObjectsFinal(CK_SESSION_HANDLE hSession) noexcept { return forward<pfnC_FindObjectsFinal>(hSession); }
CK_RV p11_C_GetSlotInfo(CK_SLOT_ID slotID, CK_SLOT_INFO_PTR pInfo) noexcept {
  return forward<pfnC_GetSlotInfo>(slotID, pInfo);
}
CK_RV p11_C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR ppFunctionList) noexcept {
  return forward<pfnC_GetFunctionList>(ppFunctionList);
}
CK_RV p11_C_GetInfo(CK_INFO_PTR pInfo) noexcept { return forward<pfnC_GetInfo>(pInfo); }
CK_RV p11_C_GenerateKeyPair(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism,
                            CK_ATTRIBUTE_PTR pPublicKeyTemplate, CK_ULONG ulPublicKeyAttributeCount,
                            CK_ATTRIBUTE_PTR pPrivateKeyTemplate, CK_ULONG ulPrivateKeyAttributeCount,
                            CK_OBJECT_HANDLE_PTR phPublicKey, CK_OBJECT_HANDLE_PTR phPrivateKey) noexcept {
  return forward<pfnC_GenerateKeyPair>(hSession, pMechanism, pPublicKeyTemplate, ulPublicKeyAttributeCount,
                                       pPrivateKeyTemplate, ulPrivateKeyAttributeCount, phPublicKey, phPrivateKey);
}
CK_RV p11_C_CreateObject(CK_SESSION_HANDLE hSession, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount,
                         CK_OBJECT_HANDLE_PTR phObject) noexcept {
  return forward<pfnC_CreateObject>(hSession, pTemplate, ulCount, phObject);
}
CK_RV p11_C_EncryptInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey) noexcept {
  return forward<pfnC_EncryptInit>(hSession, pMechanism, hKey);
}
CK_RV p11_C_Encrypt(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pEncryptedData,
                    CK_ULONG_PTR pulEncryptedDataLen) noexcept {
  return forward<pfnC_Encrypt>(hSession, pData, ulDataLen, pEncryptedData, pulEncryptedDataLen);
}
CK_RV p11_C_EncryptUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen, CK_BYTE_PTR pEncryptedPart,
                          CK_ULONG_PTR pulEncryptedPartLen) noexcept {
  return forward<pfnC_EncryptUpdate>(hSession, pPart, ulPartLen, pEncryptedPart, pulEncryptedPartLen);
}
CK_RV p11_C_EncryptFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pLastEncryptedPart,
                         CK_ULONG_PTR pulLastEncryptedPartLen) noexcept {
  return forward<pfnC_EncryptFinal>(hSession, pLastEncryptedPart, pulLastEncryptedPartLen);
}
CK_RV p11_C_DecryptInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey) noexcept {
  return forward<pfnC_DecryptInit>(hSession, pMechanism, hKey);
}
CK_RV p11_C_Decrypt(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedData, CK_ULONG ulEncryptedDataLen,
                    CK_BYTE_PTR pData, CK_ULONG_PTR pulDataLen) noexcept {
  return forward<pfnC_Decrypt>(hSession, pEncryptedData, ulEncryptedDataLen, pData, pulDataLen);
}
CK_RV p11_C_DecryptUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedPart, CK_ULONG ulEncryptedPartLen,
                          CK_BYTE_PTR pPart, CK_ULONG_PTR pulPartLen) noexcept {
  return forward<pfnC_DecryptUpdate>(hSession, pEncryptedPart, ulEncryptedPartLen, pPart, pulPartLen);
}
CK_RV p11_C_DecryptFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pLastPart, CK_ULONG_PTR pulLastPartLen) noexcept {
  return forward<pfnC_DecryptFinal>(hSession, pLastPart, pulLastPartLen);
}
CK_RV p11_C_DigestInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism) noexcept {
  return forward<pfnC_DigestInit>(hSession, pMechanism);
}
CK_RV p11_C_Digest(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pDigest,
                   CK_ULONG_PTR pulDigestLen) noexcept {
  return forward<pfnC_Digest>(hSession, pData, ulDataLen, pDigest, pulDigestLen);
}
CK_RV p11_C_DigestUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen) noexcept {
  return forward<pfnC_DigestUpdate>(hSession, pPart, ulPartLen);
}
CK_RV p11_C_DigestKey(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hKey) noexcept {
  return forward<pfnC_DigestKey>(hSession, hKey);
}
CK_RV p11_C_DigestFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pDigest, CK_ULONG_PTR pulDigestLen) noexcept {
  return forward<pfnC_DigestFinal>(hSession, pDigest, pulDigestLen);
}
CK_RV p11_C_SignInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey) noexcept {
  return forward<pfnC_SignInit>(hSession, pMechanism, hKey);
}
CK_RV p11_C_Sign(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,
                 CK_ULONG_PTR pulSignatureLen) noexcept {
  return forward<pfnC_Sign>(hSession, pData, ulDataLen, pSignature, pulSignatureLen);
}
CK_RV p11_C_SignUpdate(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen) noexcept {
  return forward<pfnC_SignUpdate>(hSession, pPart, ulPartLen);
}
CK_RV p11_C_SignFinal(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pSignature, CK_ULONG_PTR pulSignatureLen) noexcept {
  return forward<pfnC_SignFinal>(hSession, pSignature, pulSignatureLen);
}
CK_RV p11_C_VerifyInit(CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey) noexcept {
  return forward<pfnC_VerifyInit>(hSession, pMechanism, hKey);
}
CK_RV p11_C_Verify(CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,
                   CK_ULONG ulSignatureLen) noexcept {
  return forward<pfnC_Verify>(hSession, pData, ulDataLen, pSignature, ulSignatureLen);
}
CK_RV p11_C_DestroyObject(CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject) noexcept {
  return forward<pfnC_DestroyObject>(hSession, hObject);
}
