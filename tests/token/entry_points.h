// The 37 entry points as a list, for the tests and for the modules that they load.
// clang-format off
#define VELPKI_ENTRY_POINTS(X)                                                                                   \
  X(Initialize) X(Finalize) X(GetSlotList) X(GetTokenInfo) X(OpenSession) X(CloseSession) X(Login) X(Logout)     \
  X(GetAttributeValue) X(FindObjectsInit) X(FindObjects) X(FindObjectsFinal) X(GetSlotInfo) X(GetFunctionList)   \
  X(GetInfo) X(GenerateKeyPair) X(CreateObject) X(EncryptInit) X(Encrypt) X(EncryptUpdate) X(EncryptFinal)       \
  X(DecryptInit) X(Decrypt) X(DecryptUpdate) X(DecryptFinal) X(DigestInit) X(Digest) X(DigestUpdate) X(DigestKey) \
  X(DigestFinal) X(SignInit) X(Sign) X(SignUpdate) X(SignFinal) X(VerifyInit) X(Verify) X(DestroyObject)
