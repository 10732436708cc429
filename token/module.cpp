// The module: loading, unloading, and its entry points.
#include <dlfcn.h>

#include <memory>

#include "token/internal/entry_point.h"

void *g_hModule = nullptr;

CK_C_Initialize pfnC_Initialize = nullptr;
CK_C_Finalize pfnC_Finalize = nullptr;
CK_C_GetSlotList pfnC_GetSlotList = nullptr;
CK_C_GetTokenInfo pfnC_GetTokenInfo = nullptr;
CK_C_OpenSession pfnC_OpenSession = nullptr;
CK_C_CloseSession pfnC_CloseSession = nullptr;
CK_C_Login pfnC_Login = nullptr;
CK_C_Logout pfnC_Logout = nullptr;
CK_C_GetAttributeValue pfnC_GetAttributeValue = nullptr;
CK_C_FindObjectsInit pfnC_FindObjectsInit = nullptr;
CK_C_FindObjects pfnC_FindObjects = nullptr;
CK_C_FindObjectsFinal pfnC_FindObjectsFinal = nullptr;
CK_C_GetSlotInfo pfnC_GetSlotInfo = nullptr;
CK_C_GetFunctionList pfnC_GetFunctionList = nullptr;
CK_C_GetInfo pfnC_GetInfo = nullptr;
CK_C_GenerateKeyPair pfnC_GenerateKeyPair = nullptr;
CK_C_CreateObject pfnC_CreateObject = nullptr;
CK_C_EncryptInit pfnC_EncryptInit = nullptr;
CK_C_Encrypt pfnC_Encrypt = nullptr;
CK_C_EncryptUpdate pfnC_EncryptUpdate = nullptr;
CK_C_EncryptFinal pfnC_EncryptFinal = nullptr;
CK_C_DecryptInit pfnC_DecryptInit = nullptr;
CK_C_Decrypt pfnC_Decrypt = nullptr;
CK_C_DecryptUpdate pfnC_DecryptUpdate = nullptr;
CK_C_DecryptFinal pfnC_DecryptFinal = nullptr;
CK_C_DigestInit pfnC_DigestInit = nullptr;
CK_C_Digest pfnC_Digest = nullptr;
CK_C_DigestUpdate pfnC_DigestUpdate = nullptr;
CK_C_DigestKey pfnC_DigestKey = nullptr;
CK_C_DigestFinal pfnC_DigestFinal = nullptr;
CK_C_SignInit pfnC_SignInit = nullptr;
CK_C_Sign pfnC_Sign = nullptr;
CK_C_SignUpdate pfnC_SignUpdate = nullptr;
CK_C_SignFinal pfnC_SignFinal = nullptr;
CK_C_VerifyInit pfnC_VerifyInit = nullptr;
CK_C_Verify pfnC_Verify = nullptr;
CK_C_DestroyObject pfnC_DestroyObject = nullptr;

namespace velpki {

namespace {

struct EntryPoint {
  const char *name;
  void (*assign)(const char *name, void *module, const CK_FUNCTION_LIST *list) noexcept;
  void (*close)() noexcept;
};

// The name comes first; the list, null for none, has what a module does not export.
template <auto &pointer, auto member>
void assign(const char *name, void *module, const CK_FUNCTION_LIST *list) noexcept {
  pointer = module ? reinterpret_cast<FunctionOf<pointer>>(dlsym(module, name)) : nullptr;
  if (!pointer && list) pointer = list->*member;
  closed<pointer> = nullptr;
}

template <auto &pointer>
void close() noexcept {
  closed<pointer> = pointer;
}

template <auto &pointer, auto member>
constexpr EntryPoint entry_point(const char *name) noexcept {
  return {name, assign<pointer, member>, close<pointer>};
}

constexpr EntryPoint kEntryPoints[] = {
    entry_point<pfnC_Initialize, &CK_FUNCTION_LIST::C_Initialize>("C_Initialize"),
    entry_point<pfnC_Finalize, &CK_FUNCTION_LIST::C_Finalize>("C_Finalize"),
    entry_point<pfnC_GetSlotList, &CK_FUNCTION_LIST::C_GetSlotList>("C_GetSlotList"),
    entry_point<pfnC_GetTokenInfo, &CK_FUNCTION_LIST::C_GetTokenInfo>("C_GetTokenInfo"),
    entry_point<pfnC_OpenSession, &CK_FUNCTION_LIST::C_OpenSession>("C_OpenSession"),
    entry_point<pfnC_CloseSession, &CK_FUNCTION_LIST::C_CloseSession>("C_CloseSession"),
    entry_point<pfnC_Login, &CK_FUNCTION_LIST::C_Login>("C_Login"),
    entry_point<pfnC_Logout, &CK_FUNCTION_LIST::C_Logout>("C_Logout"),
    entry_point<pfnC_GetAttributeValue, &CK_FUNCTION_LIST::C_GetAttributeValue>("C_GetAttributeValue"),
    entry_point<pfnC_FindObjectsInit, &CK_FUNCTION_LIST::C_FindObjectsInit>("C_FindObjectsInit"),
    entry_point<pfnC_FindObjects, &CK_FUNCTION_LIST::C_FindObjects>("C_FindObjects"),
    entry_point<pfnC_FindObjectsFinal, &CK_FUNCTION_LIST::C_FindObjectsFinal>("C_FindObjectsFinal"),
    entry_point<pfnC_GetSlotInfo, &CK_FUNCTION_LIST::C_GetSlotInfo>("C_GetSlotInfo"),
    entry_point<pfnC_GetFunctionList, &CK_FUNCTION_LIST::C_GetFunctionList>("C_GetFunctionList"),
    entry_point<pfnC_GetInfo, &CK_FUNCTION_LIST::C_GetInfo>("C_GetInfo"),
    entry_point<pfnC_GenerateKeyPair, &CK_FUNCTION_LIST::C_GenerateKeyPair>("C_GenerateKeyPair"),
    entry_point<pfnC_CreateObject, &CK_FUNCTION_LIST::C_CreateObject>("C_CreateObject"),
    entry_point<pfnC_EncryptInit, &CK_FUNCTION_LIST::C_EncryptInit>("C_EncryptInit"),
    entry_point<pfnC_Encrypt, &CK_FUNCTION_LIST::C_Encrypt>("C_Encrypt"),
    entry_point<pfnC_EncryptUpdate, &CK_FUNCTION_LIST::C_EncryptUpdate>("C_EncryptUpdate"),
    entry_point<pfnC_EncryptFinal, &CK_FUNCTION_LIST::C_EncryptFinal>("C_EncryptFinal"),
    entry_point<pfnC_DecryptInit, &CK_FUNCTION_LIST::C_DecryptInit>("C_DecryptInit"),
    entry_point<pfnC_Decrypt, &CK_FUNCTION_LIST::C_Decrypt>("C_Decrypt"),
    entry_point<pfnC_DecryptUpdate, &CK_FUNCTION_LIST::C_DecryptUpdate>("C_DecryptUpdate"),
    entry_point<pfnC_DecryptFinal, &CK_FUNCTION_LIST::C_DecryptFinal>("C_DecryptFinal"),
    entry_point<pfnC_DigestInit, &CK_FUNCTION_LIST::C_DigestInit>("C_DigestInit"),
    entry_point<pfnC_Digest, &CK_FUNCTION_LIST::C_Digest>("C_Digest"),
    entry_point<pfnC_DigestUpdate, &CK_FUNCTION_LIST::C_DigestUpdate>("C_DigestUpdate"),
    entry_point<pfnC_DigestKey, &CK_FUNCTION_LIST::C_DigestKey>("C_DigestKey"),
    entry_point<pfnC_DigestFinal, &CK_FUNCTION_LIST::C_DigestFinal>("C_DigestFinal"),
    entry_point<pfnC_SignInit, &CK_FUNCTION_LIST::C_SignInit>("C_SignInit"),
    entry_point<pfnC_Sign, &CK_FUNCTION_LIST::C_Sign>("C_Sign"),
    entry_point<pfnC_SignUpdate, &CK_FUNCTION_LIST::C_SignUpdate>("C_SignUpdate"),
    entry_point<pfnC_SignFinal, &CK_FUNCTION_LIST::C_SignFinal>("C_SignFinal"),
    entry_point<pfnC_VerifyInit, &CK_FUNCTION_LIST::C_VerifyInit>("C_VerifyInit"),
    entry_point<pfnC_Verify, &CK_FUNCTION_LIST::C_Verify>("C_Verify"),
    entry_point<pfnC_DestroyObject, &CK_FUNCTION_LIST::C_DestroyObject>("C_DestroyObject"),
};

// A null handle means every name in the process to dlsym, so it is not asked without one.
void assign_all(const CK_FUNCTION_LIST *list) noexcept {
  for (const EntryPoint &each : kEntryPoints) each.assign(each.name, g_hModule, list);
}

struct CloseModule {
  void operator()(void *module) const noexcept { dlclose(module); }
};
using Module = std::unique_ptr<void, CloseModule>;

// The list of a module of version 2 or later; version 1 had another layout.
const CK_FUNCTION_LIST *function_list(void *module) noexcept {
  const auto get = reinterpret_cast<CK_C_GetFunctionList>(dlsym(module, "C_GetFunctionList"));
  CK_FUNCTION_LIST *list = nullptr;
  return get && get(&list) == CKR_OK && list && list->version.major >= 2 ? list : nullptr;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int _load_pkcs11_module(const char *path) noexcept {
  if (!path) return -1;
  g_hModule = dlopen(path, RTLD_LAZY);
  if (!g_hModule) return -1;
  _assign_function_list();
  return 0;
}

int _load_pkcs11_module_ex(const char *path) noexcept {
  if (!path || !*path) return P11_LOAD_REFUSED;
  if (g_hModule) return P11_LOAD_NOT_UNLOADED;
  Module module(dlopen(path, RTLD_NOW));
  if (!module) return P11_LOAD_REFUSED;
  const CK_FUNCTION_LIST *list = function_list(module.get());
  if (!list) return P11_LOAD_NO_MODULE;
  g_hModule = module.release();
  assign_all(list);
  return 0;
}

void _assign_function_list(void) noexcept { assign_all(nullptr); }

void _unload_pkcs11_module(void) noexcept {
  if (!g_hModule) return;
  dlclose(g_hModule);
  for (const EntryPoint &each : kEntryPoints) each.close();
  g_hModule = nullptr;
}
