// The wrappers over a real module, and keys that stay in its token.
#include <dlfcn.h>

#include "softhsm.h"

namespace {

using namespace test;

Bytes input(100, 0x5A);

// What functions write that get a buffer and its length, one after the other.
template <class... Calls>
Bytes taken(Calls... calls) {
  Bytes all;
  const auto take = [&](auto call) {
    Bytes out(300);
    CK_ULONG length = out.size();
    EXPECT_EQ(call(out.data(), &length), CKR_OK);
    all.insert(all.end(), out.begin(), out.begin() + long(length));
  };
  (take(calls), ...);
  return all;
}
// One operation at once, and in pieces.
#define AT_ONCE(function, in) taken([&](auto... out) { return function(session, (in).data(), (in).size(), out...); })
#define IN_PIECES(update, final, in)                                                              \
  taken([&](auto... out) { return update(session, (in).data(), 60, out...); },                    \
        [&](auto... out) { return update(session, (in).data() + 60, (in).size() - 60, out...); }, \
        [&](auto... out) { return final(session, out...); })

TEST_F(SoftHsm, IsDrivenByTheWrappers) {
  CK_INFO info;
  CK_SLOT_INFO slot_info;
  CK_TOKEN_INFO token;
  CK_FUNCTION_LIST_PTR list = nullptr;
  EXPECT_TRUE(p11_C_GetInfo(&info) == CKR_OK && p11_C_GetSlotInfo(slot, &slot_info) == CKR_OK);
  EXPECT_EQ(p11_C_GetTokenInfo(slot, &token), CKR_OK);
  EXPECT_EQ(std::string((const char *)token.label, 7), "velPKI ");
  EXPECT_EQ(p11_C_GetFunctionList(&list), CKR_OK);
  EXPECT_EQ(list->C_Sign, pfnC_Sign);

  CK_BBOOL yes = CK_TRUE;
  CK_OBJECT_CLASS secret = CKO_SECRET_KEY;
  CK_KEY_TYPE aes = CKK_AES;
  CK_BYTE value[16] = {1, 2, 3}, iv[16] = {};
  CK_ATTRIBUTE made_of[] = {attribute(CKA_CLASS, secret), attribute(CKA_KEY_TYPE, aes), attribute(CKA_ENCRYPT, yes),
                            attribute(CKA_DECRYPT, yes), attribute(CKA_VALUE, value)};
  CK_OBJECT_HANDLE key = 0, found = 0;
  CK_ULONG count = 0;
  ASSERT_EQ(p11_C_CreateObject(session, made_of, 5, &key), CKR_OK);
  EXPECT_EQ(p11_C_FindObjectsInit(session, made_of, 2), CKR_OK);
  EXPECT_EQ(p11_C_FindObjects(session, &found, 1, &count), CKR_OK);
  EXPECT_EQ(p11_C_FindObjectsFinal(session), CKR_OK);
  EXPECT_TRUE(count == 1 && found == key);
  CK_MECHANISM cbc{CKM_AES_CBC_PAD, iv, sizeof iv}, sha256{CKM_SHA256, nullptr, 0};
  EXPECT_EQ(p11_C_EncryptInit(session, &cbc, key), CKR_OK);
  Bytes sealed = AT_ONCE(p11_C_Encrypt, input);
  EXPECT_EQ(p11_C_EncryptInit(session, &cbc, key), CKR_OK);
  EXPECT_EQ(IN_PIECES(p11_C_EncryptUpdate, p11_C_EncryptFinal, input), sealed);
  EXPECT_EQ(p11_C_DecryptInit(session, &cbc, key), CKR_OK);
  EXPECT_EQ(AT_ONCE(p11_C_Decrypt, sealed), input);
  EXPECT_EQ(p11_C_DecryptInit(session, &cbc, key), CKR_OK);
  EXPECT_EQ(IN_PIECES(p11_C_DecryptUpdate, p11_C_DecryptFinal, sealed), input);
  EXPECT_EQ(p11_C_DestroyObject(session, key), CKR_OK);

  EXPECT_EQ(p11_C_DigestInit(session, &sha256), CKR_OK);
  EXPECT_EQ(AT_ONCE(p11_C_Digest, input), digest(PKV_DIGEST_SHA256, input));
  EXPECT_EQ(p11_C_DigestInit(session, &sha256), CKR_OK);
  EXPECT_EQ(p11_C_DigestUpdate(session, input.data(), 60), CKR_OK);
  EXPECT_EQ(p11_C_DigestUpdate(session, &input[60], 40), CKR_OK);
  EXPECT_EQ(taken([&](auto... out) { return p11_C_DigestFinal(session, out...); }), digest(PKV_DIGEST_SHA256, input));

  CK_MECHANISM signing{CKM_SHA256_RSA_PKCS, nullptr, 0};
  EXPECT_EQ(p11_C_SignInit(session, &signing, rsa.private_key), CKR_OK);
  EXPECT_EQ(p11_C_SignUpdate(session, input.data(), input.size()), CKR_OK);
  Bytes signature = taken([&](auto... out) { return p11_C_SignFinal(session, out...); });
  for (const CK_RV result : {CK_RV(CKR_OK), CK_RV(CKR_SIGNATURE_INVALID)}) {
    EXPECT_EQ(p11_C_VerifyInit(session, &signing, rsa.public_key), CKR_OK);
    EXPECT_EQ(p11_C_Verify(session, input.data(), input.size(), signature.data(), signature.size()), result);
    signature[9] ^= 1;
  }
}

TEST_F(SoftHsm, KeysAreMadeOfWhatTheTokenShows) {
  const CK_OBJECT_HANDLE none = 999999;
  const struct {
    CK_OBJECT_HANDLE private_key, public_object;
    int code;
  } rows[] = {{rsa.private_key, rsa.public_key, 0},
              {rsa.private_key, rsa.private_key, 0},
              {ecc.private_key, ecc.public_key, 0},
              {rsa.private_key, careful.public_key, PKV_ERR_MISMATCH},
              {rsa.private_key, ecc.public_key, PKV_ERR_MISMATCH},
              {ecc.private_key, rsa.public_key, PKV_ERR_MISMATCH},
              {none, rsa.public_key, PKV_ERR_FAILED},
              {rsa.private_key, none, PKV_ERR_FAILED}};
  for (const auto &[private_key, public_object, code] : rows) {
    P11_KEY key = {session, private_key, nullptr, nullptr, CKR_OK};
    Owned<ASYMMETRIC_KEY> made, joined;
    EXPECT_EQ(read_P11_KEY(&key, public_object, &made), code) << private_key << " " << public_object;
    EXPECT_EQ(key.last_result != CKR_OK, code == PKV_ERR_FAILED);
    if (code) continue;
    EXPECT_EQ(join_P11_KEY(&key, public_half(made)->key, &joined), 0);
    EXPECT_EQ(cmp_ASYMMETRIC_KEY(made, joined), 0);
  }
  P11_KEY key = {session, rsa.private_key, nullptr, nullptr, CKR_OK};
  Owned<ASYMMETRIC_KEY> out;
  EXPECT_EQ(join_P11_KEY(&key, new_rsa(), &out), PKV_ERR_BAD_VALUE) << "it has a private number";
  EXPECT_EQ(join_P11_KEY(&key, public_half(kcdsa())->key, &out), PKV_ERR_UNSUPPORTED);
  EXPECT_FALSE(out);
}

// What a signature by the token comes to: every scheme and digest, and what goes wrong.
TEST_F(SoftHsm, SignaturesVerifyOrSayWhyNot) {
  const auto wrong_pin = [](CK_SESSION_HANDLE session, void *) {
    return p11_C_Login(session, CKU_CONTEXT_SPECIFIC, (CK_UTF8CHAR_PTR) "4321", 4);
  };
  const auto right_pin = [](CK_SESSION_HANDLE session, void *context) {
    ++*static_cast<int *>(context);
    return p11_C_Login(session, CKU_CONTEXT_SPECIFIC, (CK_UTF8CHAR_PTR)kPin, 4);
  };
  int asked = 0;
  const struct {
    KeyPair pair;
    P11_AUTHENTICATE *authenticate;
    int scheme, digest_id, code;
    CK_RV result;
  } rows[] = {{rsa, nullptr, PKV_RSA_PKCS1, PKV_DIGEST_SHA1, 0, CKR_OK},
              {rsa, nullptr, PKV_RSA_PKCS1, PKV_DIGEST_SHA512, 0, CKR_OK},
              {rsa, nullptr, PKV_RSA_PKCS1, PKV_DIGEST_HAS160, 0, CKR_OK},
              {rsa, nullptr, PKV_RSA_PKCS1, PKV_DIGEST_MDC2, PKV_ERR_UNSUPPORTED, CKR_OK},
              {rsa, nullptr, PKV_RSA_PSS, PKV_DIGEST_SHA224, 0, CKR_OK},
              {rsa, nullptr, PKV_RSA_PSS, PKV_DIGEST_SHA384, 0, CKR_OK},
              {rsa, nullptr, PKV_RSA_PSS, PKV_DIGEST_HAS160, PKV_ERR_UNSUPPORTED, CKR_OK},
              {careful, nullptr, PKV_RSA_PKCS1, PKV_DIGEST_SHA256, PKV_ERR_FAILED, CKR_USER_NOT_LOGGED_IN},
              {careful, wrong_pin, PKV_RSA_PKCS1, PKV_DIGEST_SHA256, PKV_ERR_FAILED, CKR_PIN_INCORRECT},
              {careful, right_pin, PKV_RSA_PKCS1, PKV_DIGEST_SHA256, 0, CKR_OK},
              {rsa, nullptr, PKV_RSA_PKCS1, PKV_DIGEST_SHA256, 0, CKR_OK},
              {ecc, nullptr, 0, PKV_DIGEST_SHA512, 0, CKR_OK},
              {ecc, nullptr, 0, PKV_DIGEST_SHA1, 0, CKR_OK}};
  for (const auto &row : rows) {
    P11_KEY key = {session, row.pair.private_key, row.authenticate, &asked, CKR_OK};
    Owned<ASYMMETRIC_KEY> made;
    ASSERT_EQ(read_P11_KEY(&key, row.pair.public_key, &made), 0);
    uint8_t out[512], *s = out + 48;
    int length = sizeof out, code = 0;
    if (const RSA_UNIT *unit = ASYMMETRIC_KEY_to_RSA_UNIT(made)) {
      code = PKV_RSASSA_SIGN(unit, row.digest_id, row.scheme, input.data(), 100, out, &length);
      if (!code) code = PKV_RSASSA_VERIFY(unit, row.digest_id, row.scheme, input.data(), 100, out, length);
    } else {
      const ECC_UNIT *point = ASYMMETRIC_KEY_to_ECC_UNIT(made);
      code = PKV_ECDSA_SIGN(point, row.digest_id, input.data(), 100, out, s);
      if (!code) code = PKV_ECDSA_VERIFY(point, row.digest_id, input.data(), 100, out, 48, s, 48);
    }
    EXPECT_EQ(code, row.code) << row.scheme << " " << std::hex << row.digest_id;
    EXPECT_EQ(key.last_result, row.result) << row.scheme << " " << std::hex << row.digest_id;
  }
  EXPECT_EQ(asked, 1);
}

TEST_F(SoftHsm, IsUnloadedWhileKeysRemain) {
  P11_KEY key = {session, rsa.private_key, nullptr, nullptr, CKR_OK};
  Owned<ASYMMETRIC_KEY> made;
  ASSERT_EQ(read_P11_KEY(&key, rsa.public_key, &made), 0);
  void *handle = dlopen(kSoftHsm, RTLD_LAZY | RTLD_NOLOAD);  // the session survives, the wrappers do not
  ASSERT_TRUE(handle);
  _unload_pkcs11_module();
  uint8_t out[256];
  int length = sizeof out;
  EXPECT_EQ(PKV_RSASSA_SIGN(ASYMMETRIC_KEY_to_RSA_UNIT(made), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, out, 1, out, &length),
            PKV_ERR_FAILED);
  EXPECT_EQ(key.last_result, CKR_CRYPTOKI_NOT_INITIALIZED);
  ASSERT_EQ(_load_pkcs11_module(kSoftHsm), 0);  // it exports its functions by name as well
  dlclose(handle);
  EXPECT_EQ(PKV_RSASSA_SIGN(ASYMMETRIC_KEY_to_RSA_UNIT(made), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, out, 1, out, &length),
            0);
}

}  // namespace
