// SoftHSM2 with a token of its own, and key pairs in it: what the tests of this folder sign with.
#pragma once

#include <velpki/token_key.h>

#include <filesystem>

#include "support/keys.h"

namespace test {

inline const char kSoftHsm[] = "/usr/lib/softhsm/libsofthsm2.so";
inline char pin[] = "1234";

// A token labelled velPKI in a temporary directory; made once.
inline bool has_softhsm() {
  static const bool made = [] {
    const std::string folder = temporary_path("softhsm"), conf = folder + "/softhsm2.conf";
    const std::string text = "directories.tokendir = " + folder + "\nlog.level = ERROR\n";
    std::filesystem::create_directory(folder);
    return std::filesystem::exists(kSoftHsm) && write_file(conf, text.data(), text.size()) &&
           setenv("SOFTHSM2_CONF", conf.c_str(), 1) == 0 &&
           status_of("softhsm2-util --init-token --free --label velPKI --so-pin 12345678 --pin 1234 >/dev/null") == 0;
  }();
  return made;
}

// Answers of the token, in the order of their calls.
inline void expect_ok(std::initializer_list<CK_RV> answers) {
  EXPECT_EQ(std::vector(answers), std::vector<CK_RV>(answers.size(), CKR_OK));
}

template <class T>
CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, T &value) {
  return {type, &value, sizeof value};
}

struct KeyPair {
  CK_OBJECT_HANDLE public_key = 0, private_key = 0;
};

class SoftHsm : public testing::Test {
 protected:
  static inline CK_SLOT_ID slot;
  static inline CK_SESSION_HANDLE session;
  static inline std::map<std::string, KeyPair> pairs;  // "careful" wants permission for each signature

  static void SetUpTestSuite() {
    rsa_key(), kcdsa_key();
    if (!has_softhsm()) return;
    ASSERT_EQ(_load_pkcs11_module_ex(kSoftHsm), 0);
    CK_ULONG bits = 2048;
    CK_BYTE secp384r1[] = {0x06, 0x05, 0x2B, 0x81, 0x04, 0x00, 0x22};
    const CK_ATTRIBUTE size = attribute(CKA_MODULUS_BITS, bits), curve = attribute(CKA_EC_PARAMS, secp384r1);
    expect_ok({p11_C_Initialize(nullptr), first_slot(),
               p11_C_OpenSession(slot, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &session),
               p11_C_Login(session, CKU_USER, (CK_UTF8CHAR_PTR)pin, 4),
               generate("rsa", CKM_RSA_PKCS_KEY_PAIR_GEN, size, CK_FALSE),
               generate("ecc", CKM_EC_KEY_PAIR_GEN, curve, CK_FALSE),
               generate("careful", CKM_RSA_PKCS_KEY_PAIR_GEN, size, CK_TRUE)});
  }
  static void TearDownTestSuite() {
    if (!g_hModule) return;
    expect_ok({p11_C_Logout(session), p11_C_CloseSession(session), p11_C_Finalize(nullptr)});
    _unload_pkcs11_module();
    _assign_function_list();
  }
  void SetUp() override {
    if (!has_softhsm()) GTEST_SKIP() << "no SoftHSM2 here";
  }

  static CK_RV first_slot() {
    CK_SLOT_ID slots[8];
    CK_ULONG count = 8;
    const CK_RV answer = p11_C_GetSlotList(CK_TRUE, slots, &count);
    slot = slots[0];
    return answer;
  }
  static CK_RV generate(const char *name, CK_MECHANISM_TYPE type, const CK_ATTRIBUTE &size, CK_BBOOL careful) {
    CK_MECHANISM mechanism{type, nullptr, 0};
    CK_BBOOL yes = CK_TRUE;
    CK_ATTRIBUTE of_public[] = {size, attribute(CKA_VERIFY, yes), attribute(CKA_ENCRYPT, yes)};
    CK_ATTRIBUTE of_private[] = {attribute(CKA_SIGN, yes), attribute(CKA_DECRYPT, yes), attribute(CKA_PRIVATE, yes),
                                 attribute(CKA_ALWAYS_AUTHENTICATE, careful)};
    KeyPair &made = pairs[name];
    return p11_C_GenerateKeyPair(session, &mechanism, of_public, 3, of_private, 4, &made.public_key, &made.private_key);
  }
  // A key that signs in the token with a pair's private half; it refers to `by`, whose session and object are set.
  static Owned<ASYMMETRIC_KEY> key_of(const std::string &name, P11_KEY &by) {
    Owned<ASYMMETRIC_KEY> made;
    by.session = session;
    by.object = pairs.at(name).private_key;
    EXPECT_EQ(read_P11_KEY(&by, pairs.at(name).public_key, &made), 0) << name;
    return made;
  }
};

}  // namespace test
