// SoftHSM2 with a token of its own, and two key pairs in it: what the tests of this folder sign with.
#pragma once

#include <velpki/token_key.h>

#include <filesystem>

#include "support/keys.h"

namespace test {

inline const char kSoftHsm[] = "/usr/lib/softhsm/libsofthsm2.so";
inline const char kPin[] = "1234";

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
  static inline KeyPair rsa, ecc, careful;  // the last wants permission for each signature

  static void SetUpTestSuite() {
    rsa_key(), kcdsa_key();
    if (!has_softhsm()) return;
    ASSERT_EQ(_load_pkcs11_module_ex(kSoftHsm), 0);
    open();
    CK_ULONG bits = 2048;
    CK_BYTE curve[] = {0x06, 0x05, 0x2B, 0x81, 0x04, 0x00, 0x22};  // secp384r1
    const CK_ATTRIBUTE rsa_size = attribute(CKA_MODULUS_BITS, bits), ecc_curve = attribute(CKA_EC_PARAMS, curve);
    rsa = generate(CKM_RSA_PKCS_KEY_PAIR_GEN, rsa_size, CK_FALSE);
    ecc = generate(CKM_EC_KEY_PAIR_GEN, ecc_curve, CK_FALSE);
    careful = generate(CKM_RSA_PKCS_KEY_PAIR_GEN, rsa_size, CK_TRUE);
  }
  static void TearDownTestSuite() {
    if (!g_hModule) return;
    EXPECT_EQ(p11_C_Logout(session), CKR_OK);
    EXPECT_EQ(p11_C_CloseSession(session), CKR_OK);
    EXPECT_EQ(p11_C_Finalize(nullptr), CKR_OK);
    _unload_pkcs11_module();
    _assign_function_list();
  }
  void SetUp() override {
    if (!has_softhsm()) GTEST_SKIP() << "no SoftHSM2 here";
  }

  static void open() {
    CK_ULONG count = 1;
    ASSERT_EQ(p11_C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(p11_C_GetSlotList(CK_TRUE, nullptr, &count), CKR_OK);
    std::vector<CK_SLOT_ID> slots(count);
    ASSERT_EQ(p11_C_GetSlotList(CK_TRUE, slots.data(), &count), CKR_OK);
    slot = slots.at(0);
    session = open_session();
    ASSERT_EQ(p11_C_Login(session, CKU_USER, (CK_UTF8CHAR_PTR)kPin, 4), CKR_OK);
  }
  static CK_SESSION_HANDLE open_session() {
    CK_SESSION_HANDLE opened = 0;
    EXPECT_EQ(p11_C_OpenSession(slot, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &opened), CKR_OK);
    return opened;
  }
  static KeyPair generate(CK_MECHANISM_TYPE type, const CK_ATTRIBUTE &size, CK_BBOOL careful) {
    CK_MECHANISM mechanism{type, nullptr, 0};
    CK_BBOOL yes = CK_TRUE;
    CK_ATTRIBUTE of_public[] = {size, attribute(CKA_VERIFY, yes), attribute(CKA_ENCRYPT, yes)};
    CK_ATTRIBUTE of_private[] = {attribute(CKA_SIGN, yes), attribute(CKA_DECRYPT, yes), attribute(CKA_PRIVATE, yes),
                                 attribute(CKA_ALWAYS_AUTHENTICATE, careful)};
    KeyPair made;
    EXPECT_EQ(
        p11_C_GenerateKeyPair(session, &mechanism, of_public, 3, of_private, 4, &made.public_key, &made.private_key),
        CKR_OK);
    return made;
  }
};

}  // namespace test
