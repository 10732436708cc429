#include <filesystem>
#include <thread>

#include "keys.h"

using namespace test;

namespace {

Rsa key_of(const Json &numbers) {
  Rsa key(PKV_New_RSA());
  const auto at = [&](const char *name) { return number(numbers[name].text); };
  EXPECT_EQ(0, PKV_Set_RSA_Params(key.get(), at("modulus").get(), at("publicExponent").get(),
                                  at("privateExponent").get(), at("prime1").get(), at("prime2").get(),
                                  at("exponent1").get(), at("exponent2").get(), at("coefficient").get()));
  return key;
}

// Calls `each` with every file of the folder whose name begins so.
template <class Each>
void for_each_file(const std::string &folder, const std::string &prefix, Each each) {
  int files = 0;
  for (const auto &entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename();
    if (name.rfind(prefix, 0) != 0 || entry.path().extension() != ".json") continue;
    ++files;
    each(name, read_json(entry.path()));
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

const uint8_t kMessage[] = {'m', 'e', 's', 's', 'a', 'g', 'e'};
constexpr int kLength = sizeof kMessage;

}  // namespace

TEST(Rsa, VerifiesPkcs1Vectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  for_each_file(folder, "rsa_signature", [](const std::string &file, const Json &vectors) {
    for (const Json &group : vectors["testGroups"].items) {
      const Rsa key = key_of(group["publicKey"]);
      for (const Json &one : group["tests"].items) {
        const Bytes message = one["msg"].octets(), signature = one["sig"].octets();
        const int result = PKV_RSASSA_VERIFY(key.get(), digest_id(group["sha"].text), PKV_RSA_PKCS1, message.data(),
                                             int(message.size()), signature.data(), int(signature.size()));
        EXPECT_EQ(result, should_pass(one) ? 0 : PKV_ERR_MISMATCH) << file << ' ' << one["tcId"].text;
      }
    }
  });
}

// The private keys have n, e and d only.
TEST(Rsa, SignsPkcs1Vectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  int done = 0;
  for (const char *bits : {"1024", "1536", "2048", "3072"}) {
    const Json vectors = read_json(folder + "/rsa_pkcs1_" + bits + "_sig_gen_test.json");
    for (const Json &group : vectors["testGroups"].items) {
      const Rsa key = key_of(group["privateKey"]);
      const int digest = digest_id(group["sha"].text);
      for (const Json &one : group["tests"].items) {
        const Bytes message = one["msg"].octets();
        Bytes signature(size_t(PKV_Get_RSA_Length(key.get())));
        int length = int(signature.size());
        const int result = PKV_RSASSA_SIGN(key.get(), digest, PKV_RSA_PKCS1, message.data(), int(message.size()),
                                           signature.data(), &length);
        ASSERT_EQ(result, digest ? 0 : PKV_ERR_UNSUPPORTED) << bits << ' ' << one["tcId"].text;
        if (!digest) continue;
        EXPECT_EQ(to_hex(signature), one["sig"].text) << bits << ' ' << one["tcId"].text;
        ++done;
      }
    }
  }
  EXPECT_GT(done, 60);
}

TEST(Rsa, VerifiesPssVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  for_each_file(folder, "rsa_pss", [](const std::string &file, const Json &vectors) {
    for (const Json &group : vectors["testGroups"].items) {
      const Rsa key = key_of(group["publicKey"]);
      const int digest = digest_id(group["sha"].text), mgf = digest_id(group["mgfSha"].text);
      for (const Json &one : group["tests"].items) {
        const Bytes message = one["msg"].octets(), signature = one["sig"].octets();
        const int result = PKV_RSASSA_PSS_VERIFY(key.get(), digest, mgf, group["sLen"].number(), message.data(),
                                                 int(message.size()), signature.data(), int(signature.size()));
        const bool known = digest && mgf && group["mgf"].text == "MGF1";
        EXPECT_EQ(result == 0, known && should_pass(one)) << file << ' ' << one["tcId"].text << ": " << result;
      }
    }
  });
}

// All failures look alike and write nothing.
TEST(Rsa, DecryptsVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const auto run = [](const std::string &file, const Json &vectors) {
    for (const Json &group : vectors["testGroups"].items) {
      const bool oaep = group.has("mgf");
      const int digest = digest_id(group["sha"].text), mgf = digest_id(group["mgfSha"].text);
      if (!group.has("privateKey") || group["tests"].items.at(0).has("sig") || (oaep && (!digest || !mgf))) continue;
      const Rsa key = key_of(group["privateKey"]);
      for (const Json &one : group["tests"].items) {
        const Bytes in = one["ct"].octets(), label = one["label"].octets(), expected = one["msg"].octets();
        ASSERT_EQ(0, PKV_Init_RSAES(key.get(), oaep ? PKV_RSA_OAEP : PKV_RSA_PKCS1_CRYPT, 0));
        ASSERT_EQ(oaep ? 0 : PKV_ERR_FAILED,
                  PKV_Set_RSAES_OAEP(key.get(), digest, mgf, label.data(), int(label.size())));
        Bytes out(1024, 0xA5);
        int length = int(out.size());
        const int result = PKV_Decrypt_RSAES(key.get(), in.data(), int(in.size()), out.data(), &length);
        ASSERT_EQ(result, should_pass(one) ? 0 : PKV_ERR_FAILED) << file << ' ' << one["tcId"].text;
        out.resize(size_t(length));
        EXPECT_EQ(out, result ? Bytes(1024, 0xA5) : expected) << file << ' ' << one["tcId"].text;
      }
    }
  };
  for_each_file(folder, "rsa_oaep", run);
  for_each_file(folder, "rsa_pkcs1", run);
}

TEST(Rsa, SignsWithEveryDigestAndScheme) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Rsa key = key_of(private_key());
  for (const int digest : {PKV_DIGEST_MD5, PKV_DIGEST_SHA1, PKV_DIGEST_SHA224, PKV_DIGEST_SHA256, PKV_DIGEST_SHA384,
                           PKV_DIGEST_SHA512, PKV_DIGEST_HAS160, PKV_DIGEST_MDC2}) {
    for (const int scheme : {PKV_RSA_PKCS1, PKV_RSA_PSS}) {
      Bytes signature(256);
      int length = 256;
      ASSERT_EQ(0, PKV_Init_RSASSA(key.get(), digest, scheme, 1));
      ASSERT_EQ(0, PKV_Update_RSASSA(key.get(), kMessage, 3));
      ASSERT_EQ(0, PKV_Update_RSASSA(key.get(), kMessage + 3, kLength - 3));
      ASSERT_EQ(0, PKV_Final_RSASSA(key.get(), signature.data(), &length));
      const auto verify = [&](int with) {
        return PKV_RSASSA_VERIFY(key.get(), with, scheme, kMessage, kLength, signature.data(), 256);
      };
      EXPECT_EQ(0, verify(digest)) << digest;
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(digest == PKV_DIGEST_SHA1 ? PKV_DIGEST_HAS160 : PKV_DIGEST_SHA1)) << digest;
      signature[255] ^= 1;
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(digest)) << digest;
    }
  }
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Init_RSASSA(key.get(), PKV_HMAC_FLAG | PKV_DIGEST_SHA1, PKV_RSA_PKCS1, 1));
  EXPECT_EQ(PKV_ERR_FAILED, PKV_Update_RSASSA(key.get(), kMessage, kLength)) << "no operation runs";
}

TEST(Rsa, EncryptsForItself) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Rsa key = key_of(private_key());
  for (const int scheme : {PKV_RSA_PKCS1_CRYPT, PKV_RSA_OAEP, PKV_RSA_OAEP_SET}) {
    const int longest = scheme == PKV_RSA_PKCS1_CRYPT ? 256 - 11 : 256 - 42;
    for (const int length : {0, 1, longest, longest + 1}) {
      Bytes in(size_t(length), 7), out(256), back(256);
      int out_length = 256, back_length = length;
      ASSERT_EQ(0, PKV_Init_RSAES(key.get(), scheme, 1));
      choose_random(Bytes(256 - 11 - std::min(length, longest), 0));  // padding octets drawn as 0 are drawn again
      ASSERT_EQ(length > longest ? PKV_ERR_BAD_VALUE : 0,
                PKV_Encrypt_RSAES(key.get(), in.data(), length, out.data(), &out_length));
      choose_random({});
      if (length > longest) continue;
      ASSERT_EQ(0, PKV_Init_RSAES(key.get(), scheme, 0));
      int too_few = length - 1;
      EXPECT_EQ(length ? PKV_ERR_FAILED : PKV_ERR_BAD_VALUE,
                PKV_Decrypt_RSAES(key.get(), out.data(), 256, back.data(), &too_few));
      ASSERT_EQ(0, PKV_Decrypt_RSAES(key.get(), out.data(), 256, back.data(), &back_length));
      EXPECT_EQ(Bytes(back.begin(), back.begin() + back_length), in);
    }
  }
}

TEST(Rsa, RefusesUnusableNumbers) {
  const std::string big(128, 'f');
  const struct {
    std::string n, e;
    const char *what;
  } cases[] = {{big.substr(0, 126), "03", "504 bits"},
               {big.substr(0, 127) + "e", "03", "even modulus"},
               {big, "02", "even exponent"},
               {big, "01", "exponent 1"},
               {big, big, "exponent not below the modulus"},
               {std::string(1024, 'f'), "01" + std::string(15, '0') + "1", "long exponent of a long modulus"},
               {std::string(4098, 'f'), "03", "16392 bits"}};
  for (const auto &one : cases) {
    const Rsa key(PKV_New_RSA());
    const Bytes signature(one.n.size() / 2);
    EXPECT_EQ(0, PKV_Set_RSA_Params(key.get(), number(one.n).get(), number(one.e).get(), nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr));
    EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_RSASSA_VERIFY(key.get(), PKV_DIGEST_SHA1, PKV_RSA_PKCS1, kMessage, kLength,
                                                   signature.data(), int(signature.size())))
        << one.what;
  }
}

// A wrong private number gives no signature rather than a wrong one, and the check finds it.
TEST(Rsa, KeepsBadSignaturesBack) {
  VELPKI_NEED_VECTORS("sigs", folder);
  EXPECT_EQ(0, PKV_Check_RSA(key_of(private_key()).get()));
  for (const char *name : {"privateExponent", "prime1", "prime2", "exponent1", "exponent2", "coefficient"}) {
    for (const bool whole : {true, false}) {
      Json wrong = private_key();
      wrong.fields[name].text.back() = wrong[name].text.back() == '5' ? '7' : '5';
      if (!whole) wrong.fields.erase("coefficient");
      if (!whole && wrong[name].text.empty()) continue;
      const Rsa key = key_of(wrong);
      Bytes signature(256);
      int length = 256;
      EXPECT_NE(0, PKV_Check_RSA(key.get())) << name;
      if (PKV_RSASSA_SIGN(key.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, kMessage, kLength, signature.data(), &length)) {
        EXPECT_EQ(signature, Bytes(256)) << name;
        continue;
      }
      EXPECT_EQ(0, PKV_RSASSA_VERIFY(key.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, kMessage, kLength, signature.data(),
                                     length))
          << name;
    }
  }
}

TEST(Rsa, CopiesShareNumbersAndSigner) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Bytes n = private_key()["modulus"].octets(), e = private_key()["publicExponent"].octets();
  Rsa key(PKV_New_RSA());
  ASSERT_EQ(0, PKV_Set_RSA_Public(key.get(), n.data(), int(n.size()), e.data(), int(e.size())));
  const auto sign = [](void *count, int kind, int digest, int scheme, const unsigned char *input, int input_length,
                       unsigned char *signature, int *length) {
    EXPECT_TRUE(kind == PKV_KEY_RSA && digest == PKV_DIGEST_SHA1 && scheme == PKV_RSA_PKCS1 && input_length == 20);
    memset(signature, input[0], 256);
    *length = ++*static_cast<int *>(count) == 1 ? 256 : 255;
    return 0;
  };
  int calls = 0, length = 256;
  ASSERT_EQ(0, PKV_Set_RSA_Callback(key.get(), sign, &calls));
  const Rsa copy(PKV_Dup_RSA(key.get()));
  key.reset();
  EXPECT_EQ(digits_of(PKV_Get_RSA_Component(copy.get(), PKV_RSA_N)), to_hex(n.data() + (n[0] == 0), 256));
  EXPECT_EQ(nullptr, PKV_Get_RSA_Component(copy.get(), PKV_RSA_D));
  EXPECT_EQ(1, PKV_Is_RSA_Private(copy.get()));
  EXPECT_EQ(0, PKV_Cmp_RSA(copy.get(), key_of(private_key()).get()));
  Bytes signature(256);
  const auto ask = [&] {
    return PKV_RSASSA_SIGN(copy.get(), PKV_DIGEST_SHA1, PKV_RSA_PKCS1, kMessage, kLength, signature.data(), &length);
  };
  EXPECT_EQ(0, ask());
  EXPECT_EQ(PKV_ERR_FAILED, ask()) << "a signature of the wrong length";
  ASSERT_EQ(0, PKV_Set_RSA_Public(copy.get(), n.data(), int(n.size()) - 1, e.data(), int(e.size())));
  EXPECT_EQ(0, PKV_Is_RSA_Private(copy.get())) << "another key's signer";
  EXPECT_EQ(1, PKV_Cmp_RSA(copy.get(), key_of(private_key()).get()));
}

TEST(Rsa, VerifiesInTwoThreadsFromTheFirstUse) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Json group = read_json(folder + "/rsa_signature_2048_sha256_test.json")["testGroups"].items.at(0);
  const Json &one = group["tests"].items.at(0);
  const Bytes message = one["msg"].octets(), signature = one["sig"].octets();
  for (int turn = 0; turn < 50; ++turn) {
    const Rsa key = key_of(group["publicKey"]);
    int results[2];
    const auto verify = [&](int *result) {
      *result = PKV_RSASSA_VERIFY(key.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, message.data(), int(message.size()),
                                  signature.data(), int(signature.size()));
    };
    std::thread other(verify, &results[1]);
    verify(&results[0]);
    other.join();
    ASSERT_TRUE(results[0] == 0 && results[1] == 0);
  }
}

TEST(Rsa, SurvivesExhaustedMemory) {
  VELPKI_NEED_VECTORS("sigs", folder);
  const Rsa source = key_of(private_key());
  Bytes block(256), back(256);
  const auto sign_and_verify = [&] {
    const Rsa key(PKV_Dup_RSA(source.get()));
    int length = 256;
    if (!key) return int(PKV_ERR_NO_MEMORY);
    if (int error = PKV_Init_RSASSA(key.get(), PKV_DIGEST_SHA256, PKV_RSA_PSS, 1)) return error;
    if (int error = PKV_Final_RSASSA(key.get(), block.data(), &length)) return error;
    return PKV_RSASSA_VERIFY(key.get(), PKV_DIGEST_SHA256, PKV_RSA_PSS, nullptr, 0, block.data(), 256);
  };
  EXPECT_GT(fail_each_allocation(sign_and_verify), 4);
  const auto encrypt_and_decrypt = [&] {
    int length = 256, back_length = 256;
    if (int error = PKV_Init_RSAES(source.get(), PKV_RSA_OAEP, 1)) return error;
    if (int error = PKV_Encrypt_RSAES(source.get(), kMessage, kLength, block.data(), &length)) return error;
    if (int error = PKV_Init_RSAES(source.get(), PKV_RSA_OAEP, 0)) return error;
    return PKV_Decrypt_RSAES(source.get(), block.data(), 256, back.data(), &back_length);
  };
  EXPECT_GT(fail_each_allocation(encrypt_and_decrypt), 4);
}

TEST(Rsa, GeneratesKeys) {
  const Rsa key(PKV_New_RSA());
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Generate_RSA(key.get(), 1023, 0, nullptr, nullptr));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Generate_RSA(key.get(), 1024, 4, nullptr, nullptr));
  EXPECT_EQ(PKV_ERR_FAILED, PKV_Generate_RSA(
                                key.get(), 1024, 0, [](int, void *) { return 1; }, nullptr));
  EXPECT_EQ(nullptr, PKV_Get_RSA_Component(key.get(), PKV_RSA_N));
  const auto grows = [](int count, void *last) {
    return count > std::exchange(*static_cast<int *>(last), count) ? 0 : 1;
  };
  int last = 0;
  ASSERT_EQ(0, PKV_Generate_RSA(key.get(), 1024, 3, grows, &last));
  EXPECT_GT(last, 1);
  EXPECT_EQ(0, PKV_Check_RSA(key.get()));
  EXPECT_EQ("03", digits_of(PKV_Get_RSA_Component(key.get(), PKV_RSA_E)));
#ifdef VELPKI_SLOW_TESTS
  ASSERT_EQ(0, PKV_Generate_RSA(key.get(), 3072, 0, nullptr, nullptr));
  EXPECT_EQ(384, PKV_Get_RSA_Length(key.get()));
  EXPECT_EQ(0, PKV_Check_RSA(key.get()));
#endif
}
