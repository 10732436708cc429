// The wrappers over a real module, and keys that stay in its token.
#include <dlfcn.h>

#include "softhsm.h"

namespace {

using namespace test;

// What an operation gives of the input, at once and in pieces; either way the same.
template <class Once, class Update, class Final>
Bytes done(CK_SESSION_HANDLE session, const std::function<CK_RV()> &begin, Once once, Update update, Final final,
           Bytes in) {
  Bytes whole, pieces;
  const auto take = [&](Bytes &all, auto call, auto... input) {
    CK_BYTE out[300];
    CK_ULONG length = sizeof out;
    expect_ok({call(session, input..., out, &length)});
    all.insert(all.end(), out, out + length);
  };
  expect_ok({begin()});
  take(whole, once, in.data(), in.size());
  expect_ok({begin()});
  for (const auto &[at, length] : {std::pair(size_t(0), size_t(60)), {size_t(60), in.size() - 60}}) {
    if constexpr (std::is_invocable_v<Update, CK_SESSION_HANDLE, CK_BYTE_PTR, CK_ULONG>)
      expect_ok({update(session, &in[at], length)});
    else
      take(pieces, update, &in[at], length);
  }
  take(pieces, final);
  EXPECT_EQ(pieces, whole);
  return whole;
}
#define DONE(name, in, ...)                                                                                  \
  done(                                                                                                      \
      session, [&] { return p11_C_##name##Init(session, __VA_ARGS__); }, p11_C_##name, p11_C_##name##Update, \
      p11_C_##name##Final, in)

TEST_F(SoftHsm, IsDrivenByTheWrappers) {
  CK_INFO info;
  CK_SLOT_INFO slot_info;
  CK_TOKEN_INFO token;
  CK_FUNCTION_LIST_PTR list = nullptr;
  expect_ok({p11_C_GetInfo(&info), p11_C_GetSlotInfo(slot, &slot_info), p11_C_GetTokenInfo(slot, &token),
             p11_C_GetFunctionList(&list)});
  EXPECT_EQ(std::string((const char *)token.label, 7), "velPKI ");
  EXPECT_EQ(list->C_Sign, pfnC_Sign);

  CK_BBOOL yes = CK_TRUE;
  CK_OBJECT_CLASS secret = CKO_SECRET_KEY;
  CK_KEY_TYPE aes = CKK_AES;
  CK_BYTE value[16] = {1, 2, 3}, iv[16] = {};
  CK_ATTRIBUTE made_of[] = {attribute(CKA_CLASS, secret), attribute(CKA_KEY_TYPE, aes), attribute(CKA_ENCRYPT, yes),
                            attribute(CKA_DECRYPT, yes), attribute(CKA_VALUE, value)};
  CK_OBJECT_HANDLE key = 0, found = 0;
  CK_ULONG count = 0;
  expect_ok({p11_C_CreateObject(session, made_of, 5, &key), p11_C_FindObjectsInit(session, made_of, 2),
             p11_C_FindObjects(session, &found, 1, &count), p11_C_FindObjectsFinal(session)});
  EXPECT_TRUE(count == 1 && found == key);
  const Bytes input(100, 0x5A);
  CK_MECHANISM cbc{CKM_AES_CBC_PAD, iv, sizeof iv}, sha256{CKM_SHA256, nullptr, 0};
  const Bytes sealed = DONE(Encrypt, input, &cbc, key);
  EXPECT_EQ(DONE(Decrypt, sealed, &cbc, key), input);
  expect_ok({p11_C_DestroyObject(session, key)});
  EXPECT_EQ(DONE(Digest, input, &sha256), digest(PKV_DIGEST_SHA256, input));

  CK_MECHANISM signing{CKM_SHA256_RSA_PKCS, nullptr, 0};
  Bytes signature = DONE(Sign, input, &signing, pairs["rsa"].private_key), in = input;
  for (const CK_RV result : {CK_RV(CKR_OK), CK_RV(CKR_SIGNATURE_INVALID)}) {
    expect_ok({p11_C_VerifyInit(session, &signing, pairs["rsa"].public_key)});
    EXPECT_EQ(p11_C_Verify(session, in.data(), in.size(), signature.data(), signature.size()), result);
    signature[9] ^= 1;
  }
}

TEST_F(SoftHsm, KeysAreMadeOfWhatTheTokenShows) {
  const CK_OBJECT_HANDLE none = 999999;
  const KeyPair rsa = pairs["rsa"], ecc = pairs["ecc"];
  const struct {
    CK_OBJECT_HANDLE private_key, public_object;
    int code;
  } rows[] = {{rsa.private_key, rsa.public_key, 0},
              {rsa.private_key, rsa.private_key, 0},
              {ecc.private_key, ecc.public_key, 0},
              {rsa.private_key, pairs["careful"].public_key, PKV_ERR_MISMATCH},
              {rsa.private_key, ecc.public_key, PKV_ERR_MISMATCH},
              {ecc.private_key, rsa.public_key, PKV_ERR_MISMATCH},
              {none, rsa.public_key, PKV_ERR_FAILED},
              {rsa.private_key, none, PKV_ERR_FAILED}};
  P11_KEY key = {session, 0, nullptr, nullptr, CKR_OK};
  for (const auto &[private_key, public_object, code] : rows) {
    Owned<ASYMMETRIC_KEY> made, joined;
    key.object = private_key;
    key.last_result = CKR_OK;
    EXPECT_EQ(read_P11_KEY(&key, public_object, &made), code) << private_key << " " << public_object;
    EXPECT_EQ(key.last_result != CKR_OK, code == PKV_ERR_FAILED);
    if (code) continue;
    EXPECT_EQ(join_P11_KEY(&key, public_half(made)->key, &joined), 0);
    EXPECT_EQ(cmp_ASYMMETRIC_KEY(made, joined), 0);
  }
  Owned<ASYMMETRIC_KEY> out;
  EXPECT_EQ(join_P11_KEY(&key, new_rsa(), &out), PKV_ERR_BAD_VALUE) << "it has a private number";
  EXPECT_EQ(join_P11_KEY(&key, public_half(kcdsa())->key, &out), PKV_ERR_UNSUPPORTED);
  EXPECT_FALSE(out);
}

// A signature by the token, and its verdict with the public numbers.
int signature_code(const ASYMMETRIC_KEY *key, int digest_id, int scheme) {
  uint8_t input[100] = {}, out[512], *s = out + 48;
  int length = sizeof out, code = 0;
  if (const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key)) {
    code = PKV_RSASSA_SIGN(rsa, digest_id, scheme, input, 100, out, &length);
    return code ? code : PKV_RSASSA_VERIFY(rsa, digest_id, scheme, input, 100, out, length);
  }
  const ECC_UNIT *point = ASYMMETRIC_KEY_to_ECC_UNIT(key);
  code = PKV_ECDSA_SIGN(point, digest_id, input, 100, out, s);
  return code ? code : PKV_ECDSA_VERIFY(point, digest_id, input, 100, out, 48, s, 48);
}

struct Permission {
  std::string pin;
  int asked = 0;
  static CK_RV give(CK_SESSION_HANDLE session, void *context) {
    auto &own = *static_cast<Permission *>(context);
    ++own.asked;
    return p11_C_Login(session, CKU_CONTEXT_SPECIFIC, (CK_UTF8CHAR_PTR)own.pin.data(), own.pin.size());
  }
};

// Every scheme and digest, and what goes wrong.
TEST_F(SoftHsm, SignaturesVerifyOrSayWhyNot) {
  for (const Row &row : table("token_signatures")) {
    Permission permission{row.at("pin")};
    P11_KEY by = {0, 0, permission.pin.empty() ? nullptr : Permission::give, &permission, CKR_OK};
    const Owned<ASYMMETRIC_KEY> key = key_of(row.at("key"), by);
    EXPECT_EQ(signature_code(key, digest_id(row.at("digest")), number_in(row, "scheme")), code_at(row, "code"))
        << row.at("key") << " " << row.at("scheme") << row.at("digest");
    EXPECT_EQ(by.last_result, CK_RV(code_at(row, "answer"))) << row.at("pin");
    EXPECT_EQ(permission.asked, permission.pin.empty() ? 0 : 1);
  }
}

TEST_F(SoftHsm, IsUnloadedWhileKeysRemain) {
  P11_KEY by{};
  const Owned<ASYMMETRIC_KEY> key = key_of("rsa", by);
  void *handle = dlopen(kSoftHsm, RTLD_LAZY | RTLD_NOLOAD);  // the session survives, the wrappers do not
  ASSERT_TRUE(handle);
  _unload_pkcs11_module();
  EXPECT_EQ(signature_code(key, PKV_DIGEST_SHA256, PKV_RSA_PKCS1), PKV_ERR_FAILED);
  EXPECT_EQ(by.last_result, CKR_CRYPTOKI_NOT_INITIALIZED);
  ASSERT_EQ(_load_pkcs11_module(kSoftHsm), 0);  // it exports its functions by name as well
  dlclose(handle);
  EXPECT_EQ(signature_code(key, PKV_DIGEST_SHA256, PKV_RSA_PKCS1), 0);
}

}  // namespace
