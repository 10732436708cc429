#include <filesystem>

#include "keys.h"

using namespace test;

namespace {

Rsa key_of(const Json &numbers) {
  Rsa key(PKV_New_RSA());
  const auto at = [&](const char *name) { return number(numbers[name].text); };
  EXPECT_EQ(0, call(PKV_Set_RSA_Params, key, at("modulus"), at("publicExponent"), at("privateExponent"), at("prime1"),
                    at("prime2"), at("exponent1"), at("exponent2"), at("coefficient")));
  return key;
}

// Calls `make` and `check` over every file of the folder whose name begins so.
template <class Make, class Check>
void each_file(const std::string &folder, const std::string &prefix, Make make, Check check) {
  int files = 0;
  for (const auto &entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().filename().string().rfind(prefix, 0) != 0) continue;
    each_vector(entry.path(), make, check);
    ++files;
  }
  EXPECT_GT(files, 2) << prefix;
}

// A DigestInfo without NULL is nothing that a signer writes: what the vectors leave open there is refused.
bool should_pass(const Json &one) {
  for (const Json &flag : one["flags"].items) {
    if (flag.text == "MissingNull") return false;
  }
  return one["result"].text != "invalid";
}

const Json &private_key() {
  static const Json group = read_json(vectors("sigs/rsa_oaep_2048_sha1_mgf1sha1_test.json"))["testGroups"].items.at(0);
  return group["privateKey"];
}
Rsa public_key_of(const Json &group) { return key_of(group["publicKey"]); }

const Bytes kMessage = {'m', 'e', 's', 's', 'a', 'g', 'e'};

}  // namespace

TEST(Rsa, VerifiesVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  each_file(folder, "rsa_signature", public_key_of, [](const Rsa &key, const Json &group, const Json &one) {
    EXPECT_EQ(call(PKV_RSASSA_VERIFY, key, digest_id(group["sha"].text), PKV_RSA_PKCS1, one["msg"].octets(),
                   one["sig"].octets()),
              should_pass(one) ? 0 : PKV_ERR_MISMATCH);
  });
  each_file(folder, "rsa_pss", public_key_of, [](const Rsa &key, const Json &group, const Json &one) {
    const int digest = digest_id(group["sha"].text), mgf = digest_id(group["mgfSha"].text);
    const bool known = digest && mgf && group["mgf"].text == "MGF1";
    EXPECT_EQ(0 == call(PKV_RSASSA_PSS_VERIFY, key, digest, mgf, group["sLen"].number(), one["msg"].octets(),
                        one["sig"].octets()),
              known && should_pass(one));
    if (!known || !should_pass(one)) return;
    const Bytes message = one["msg"].octets(), signature = one["sig"].octets();
    uint8_t octets[PKV_MAX_DIGEST_LENGTH];
    int length = 0;
    ASSERT_EQ(PKV_DIGEST(digest, message.data(), int(message.size()), octets, &length), 0);
    for (const bool damaged : {false, true}) {
      octets[0] ^= damaged;
      EXPECT_EQ(PKV_RSASSA_DIGEST_VERIFY(key, digest, PKV_RSA_PSS, mgf, PKV_RSA_ANY_SALT, octets, length,
                                         signature.data(), int(signature.size())),
                damaged ? PKV_ERR_MISMATCH : 0);
    }
  });
}

// The private keys have n, e and d only.
TEST(Rsa, SignsPkcs1Vectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  int done = 0;
  const auto make = [](const Json &group) { return key_of(group["privateKey"]); };
  for (const char *bits : {"1024", "1536", "2048", "3072"}) {
    each_vector(folder + "/rsa_pkcs1_" + bits + "_sig_gen_test.json", make,
                [&](const Rsa &key, const Json &group, const Json &one) {
                  const int digest = digest_id(group["sha"].text);
                  Output out(size_t(PKV_Get_RSA_Length(key)));
                  ASSERT_EQ(call(PKV_RSASSA_SIGN, key, digest, PKV_RSA_PKCS1, one["msg"].octets(), out),
                            digest ? 0 : PKV_ERR_UNSUPPORTED);
                  if (digest) EXPECT_EQ(to_hex(out.written()), one["sig"].text);
                  done += digest != 0;
                });
  }
  EXPECT_GT(done, 60);
}

// All failures look alike and write nothing.
TEST(Rsa, DecryptsVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const auto make = [](const Json &group) {
    const bool known = !group.has("mgf") || (digest_id(group["sha"].text) && digest_id(group["mgfSha"].text));
    const bool ours = known && group.has("privateKey") && !group["tests"].items.at(0).has("sig");
    return ours ? key_of(group["privateKey"]) : nullptr;
  };
  const auto check = [](const Rsa &key, const Json &group, const Json &one) {
    const bool oaep = group.has("mgf");
    ASSERT_EQ(0, PKV_Init_RSAES(key, oaep ? PKV_RSA_OAEP : PKV_RSA_PKCS1_CRYPT, 0));
    ASSERT_EQ(oaep ? 0 : PKV_ERR_FAILED, call(PKV_Set_RSAES_OAEP, key, digest_id(group["sha"].text),
                                              digest_id(group["mgfSha"].text), one["label"].octets()));
    Output out(1024);
    out.octets.assign(1024, 0xA5);
    const int result = call(PKV_Decrypt_RSAES, key, one["ct"].octets(), out);
    ASSERT_EQ(result, should_pass(one) ? 0 : PKV_ERR_FAILED);
    EXPECT_EQ(out.written(), result ? Bytes(1024, 0xA5) : one["msg"].octets());
  };
  each_file(folder, "rsa_oaep", make, check);
  each_file(folder, "rsa_pkcs1", make, check);
}

TEST(Rsa, SignsWithEveryDigestAndScheme) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Rsa key = key_of(private_key());
  for (const int digest : {PKV_DIGEST_MD5, PKV_DIGEST_SHA1, PKV_DIGEST_SHA224, PKV_DIGEST_SHA256, PKV_DIGEST_SHA384,
                           PKV_DIGEST_SHA512, PKV_DIGEST_HAS160, PKV_DIGEST_MDC2}) {
    for (const int scheme : {PKV_RSA_PKCS1, PKV_RSA_PSS}) {
      Output out(256);
      ASSERT_EQ(0, PKV_Init_RSASSA(key, digest, scheme, 1));
      ASSERT_EQ(0, PKV_Update_RSASSA(key, kMessage.data(), 3));
      ASSERT_EQ(0, PKV_Update_RSASSA(key, kMessage.data() + 3, 4));
      ASSERT_EQ(0, call(PKV_Final_RSASSA, key, out));
      const auto verify = [&](int with) { return call(PKV_RSASSA_VERIFY, key, with, scheme, kMessage, out.octets); };
      EXPECT_EQ(0, verify(digest)) << digest;
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(digest == PKV_DIGEST_SHA1 ? PKV_DIGEST_HAS160 : PKV_DIGEST_SHA1)) << digest;
      out.octets[255] ^= 1;
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(digest)) << digest;
    }
  }
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Init_RSASSA(key, PKV_HMAC_FLAG | PKV_DIGEST_SHA1, PKV_RSA_PKCS1, 1));
  EXPECT_EQ(PKV_ERR_FAILED, call(PKV_Update_RSASSA, key, kMessage)) << "no operation runs";
}

TEST(Rsa, EncryptsForItself) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Rsa key = key_of(private_key());
  for (const int scheme : {PKV_RSA_PKCS1_CRYPT, PKV_RSA_OAEP, PKV_RSA_OAEP_SET}) {
    const size_t longest = scheme == PKV_RSA_PKCS1_CRYPT ? 256 - 11 : 256 - 42;
    for (const size_t length : {size_t(0), size_t(1), longest, longest + 1}) {
      const Bytes in(length, 7);
      Output out(256), too_short(256), back(256);
      too_short.length = int(length) - 1, back.length = int(length);
      ASSERT_EQ(0, PKV_Init_RSAES(key, scheme, 1));
      choose_random(Bytes(256 - 11 - std::min(length, longest), 0));  // padding octets drawn as 0 are drawn again
      ASSERT_EQ(length > longest ? PKV_ERR_BAD_VALUE : 0, call(PKV_Encrypt_RSAES, key, in, out));
      choose_random({});
      if (length > longest) continue;
      ASSERT_EQ(0, PKV_Init_RSAES(key, scheme, 0));
      EXPECT_EQ(length ? PKV_ERR_FAILED : PKV_ERR_BAD_VALUE, call(PKV_Decrypt_RSAES, key, out.octets, too_short));
      ASSERT_EQ(0, call(PKV_Decrypt_RSAES, key, out.octets, back));
      EXPECT_EQ(back.written(), in);
    }
  }
}

TEST(Rsa, RefusesUnusableNumbers) {
  const std::string big(128, 'f');
  const std::string long_exponent = "01" + std::string(15, '0') + "1";
  const std::pair<std::string, std::string> cases[] = {{big.substr(0, 126), "03"},
                                                       {big.substr(0, 127) + "e", "03"},
                                                       {big, "02"},
                                                       {big, "01"},
                                                       {big, big},
                                                       {std::string(1024, 'f'), long_exponent},
                                                       {std::string(4098, 'f'), "03"}};
  for (const auto &[n, e] : cases) {
    const Rsa key = key_of(Json{"", {}, {{"modulus", Json{n, {}, {}}}, {"publicExponent", Json{e, {}, {}}}}});
    EXPECT_EQ(PKV_ERR_BAD_VALUE,
              call(PKV_RSASSA_VERIFY, key, PKV_DIGEST_SHA1, PKV_RSA_PKCS1, kMessage, Bytes(n.size() / 2)))
        << n << ", " << e;
  }
}

// A wrong private number gives no signature rather than a wrong one, and the check finds it.
TEST(Rsa, KeepsBadSignaturesBack) {
  VELPKI_NEED_VECTORS("sigs", folder);
  EXPECT_EQ(0, PKV_Check_RSA(key_of(private_key())));
  for (const char *name : {"privateExponent", "prime1", "prime2", "exponent1", "exponent2", "coefficient"}) {
    for (const bool whole : {true, false}) {
      Json wrong = private_key();
      wrong.fields[name].text.back() = wrong[name].text.back() == '5' ? '7' : '5';
      if (!whole) wrong.fields.erase("coefficient");
      if (!whole && wrong[name].text.empty()) continue;
      const Rsa key = key_of(wrong);
      Output out(256);
      EXPECT_NE(0, PKV_Check_RSA(key)) << name;
      if (call(PKV_RSASSA_SIGN, key, PKV_DIGEST_SHA256, PKV_RSA_PKCS1, kMessage, out))
        EXPECT_EQ(out.octets, Bytes(256)) << name;
      else
        EXPECT_EQ(0, call(PKV_RSASSA_VERIFY, key, PKV_DIGEST_SHA256, PKV_RSA_PKCS1, kMessage, out.octets)) << name;
    }
  }
}

TEST(Rsa, CopiesShareNumbersAndSigner) {
  VELPKI_NEED_VECTORS("sigs", folder);
  Bytes n = private_key()["modulus"].octets(), e = private_key()["publicExponent"].octets();
  Rsa key(PKV_New_RSA());
  ASSERT_EQ(0, call(PKV_Set_RSA_Public, key, n, e));
  const auto sign = [](void *count, int kind, int digest, int scheme, const unsigned char *input, int input_length,
                       unsigned char *signature, int *length) {
    EXPECT_TRUE(kind == PKV_KEY_RSA && digest == PKV_DIGEST_SHA1 && scheme == PKV_RSA_PKCS1 && input_length == 20);
    memset(signature, input[0], 256);
    *length = ++*static_cast<int *>(count) == 1 ? 256 : 255;
    return 0;
  };
  int calls = 0;
  ASSERT_EQ(0, PKV_Set_RSA_Callback(key, sign, &calls));
  const Rsa copy(PKV_Dup_RSA(key));
  key.reset();
  EXPECT_EQ(digits_of(PKV_Get_RSA_Component(copy, PKV_RSA_N)), to_hex(n.data() + (n[0] == 0), 256));
  EXPECT_EQ(nullptr, PKV_Get_RSA_Component(copy, PKV_RSA_D));
  EXPECT_EQ(1, PKV_Is_RSA_Private(copy));
  EXPECT_EQ(0, call(PKV_Cmp_RSA, copy, key_of(private_key())));
  Output out(256);
  for (const int result : {0, int(PKV_ERR_FAILED)})  // the second signature is of the wrong length
    EXPECT_EQ(result, call(PKV_RSASSA_SIGN, copy, PKV_DIGEST_SHA1, PKV_RSA_PKCS1, kMessage, out));
  n.pop_back();
  ASSERT_EQ(0, call(PKV_Set_RSA_Public, copy, n, e));
  EXPECT_EQ(0, PKV_Is_RSA_Private(copy)) << "another key's signer";
  EXPECT_EQ(1, call(PKV_Cmp_RSA, copy, key_of(private_key())));
}

TEST(Rsa, VerifiesInTwoThreadsFromTheFirstUse) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Json group = read_json(folder + "/rsa_signature_2048_sha256_test.json")["testGroups"].items.at(0);
  const Json &one = group["tests"].items.at(0);
  for (int turn = 0; turn < 50; ++turn) {
    const Rsa key = public_key_of(group);
    const auto verify = [&] {
      return call(PKV_RSASSA_VERIFY, key, PKV_DIGEST_SHA256, PKV_RSA_PKCS1, one["msg"].octets(), one["sig"].octets());
    };
    ASSERT_EQ(0, in_two_threads(verify));
  }
}

TEST(Rsa, SurvivesExhaustedMemory) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Rsa source = key_of(private_key());
  const auto sign_and_verify = [&] {
    const Rsa key(PKV_Dup_RSA(source));
    Output out(256);
    if (!key) return int(PKV_ERR_NO_MEMORY);
    if (int error = PKV_Init_RSASSA(key, PKV_DIGEST_SHA256, PKV_RSA_PSS, 1)) return error;
    if (int error = call(PKV_Final_RSASSA, key, out)) return error;
    return call(PKV_RSASSA_VERIFY, key, PKV_DIGEST_SHA256, PKV_RSA_PSS, Bytes(), out.octets);
  };
  EXPECT_GT(fail_each_allocation(sign_and_verify), 4);
  const auto encrypt_and_decrypt = [&] {
    Output out(256), back(256);
    if (int error = PKV_Init_RSAES(source, PKV_RSA_OAEP, 1)) return error;
    if (int error = call(PKV_Encrypt_RSAES, source, kMessage, out)) return error;
    if (int error = PKV_Init_RSAES(source, PKV_RSA_OAEP, 0)) return error;
    return call(PKV_Decrypt_RSAES, source, out.octets, back);
  };
  EXPECT_GT(fail_each_allocation(encrypt_and_decrypt), 4);
}

TEST(Rsa, GeneratesKeys) {
  const Rsa key(PKV_New_RSA());
  const auto stop = [](int, void *) { return 1; };
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Generate_RSA(key, 1023, 0, nullptr, nullptr));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Generate_RSA(key, 1024, 4, nullptr, nullptr));
  EXPECT_EQ(PKV_ERR_FAILED, PKV_Generate_RSA(key, 1024, 0, stop, nullptr));
  EXPECT_EQ(nullptr, PKV_Get_RSA_Component(key, PKV_RSA_N));
  const auto grows = [](int count, void *last) {
    return count > std::exchange(*static_cast<int *>(last), count) ? 0 : 1;
  };
  int last = 0;
  ASSERT_EQ(0, PKV_Generate_RSA(key, 1024, 3, grows, &last));
  EXPECT_GT(last, 1);
  EXPECT_EQ(0, PKV_Check_RSA(key));
  EXPECT_EQ("03", digits_of(PKV_Get_RSA_Component(key, PKV_RSA_E)));
#ifdef VELPKI_SLOW_TESTS
  ASSERT_EQ(0, PKV_Generate_RSA(key, 3072, 0, nullptr, nullptr));
  EXPECT_EQ(384, PKV_Get_RSA_Length(key));
  EXPECT_EQ(0, PKV_Check_RSA(key));
#endif
}
