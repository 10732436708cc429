#include <velpki/pkv.h>

#include "provider/keys.h"

namespace {

using test::Bytes;
using test::hex;
using test::Json;
using Cipher = std::unique_ptr<BLOCK_CIPHER_UNIT, test::Releases<PKV_Free_BLOCK_CIPHER>>;

constexpr int kModes[] = {PKV_MODE_ECB, PKV_MODE_CBC, PKV_MODE_CFB, PKV_MODE_OFB};

// Names are those of the openssl command; empty where it has none.
const struct Family {
  int id;
  const char *name;
  size_t key;
} kFamilies[] = {{0x01000100, "aes-128", 16},  {0x01000200, "aes-192", 24},  {0x01000300, "aes-256", 32},
                 {0x02000000, "des", 8},       {0x02000100, "des", 8},       {0x02000200, "des-ede", 16},
                 {0x02001200, "des-ede", 16},  {0x02010200, "des-ede3", 24}, {0x03000100, "aria-128", 16},
                 {0x03000200, "aria-192", 24}, {0x03000300, "aria-256", 32}, {0x04000100, "seed", 16},
                 {0x05000100, "", 16},         {0x06000100, "bf", 16},       {0x07000100, "rc2", 16},
                 {0x07000200, "rc2-40", 5}};

Bytes pattern(size_t length, int seed) {
  Bytes out(length);
  for (size_t i = 0; i < length; ++i) out[i] = uint8_t(seed + 29 * int(i) + int(i * i));
  return out;
}

Bytes crypt(bool encrypt, int id, const Bytes &key, const Bytes &iv, const Bytes &in, int expected = 0) {
  Bytes out(in.size() + 16);
  int length = int(out.size());
  const auto call = encrypt ? PKV_Encrypt_BLOCK_CIPHER : PKV_Decrypt_BLOCK_CIPHER;
  EXPECT_EQ(call(id, key.data(), int(key.size()), iv.empty() ? nullptr : iv.data(), int(iv.size()), in.data(),
                 int(in.size()), out.data(), &length),
            expected);
  out.resize(expected ? 0 : size_t(length));
  return out;
}

// The unit, fed `piece` octets at a time into room for not an octet more than is written.
Bytes in_pieces(bool encrypt, int id, const Bytes &key, const Bytes &iv, const Bytes &in, size_t piece) {
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  const size_t block = size_t(PKV_Get_BLOCK_CIPHER_Block_Length(id));
  EXPECT_EQ(PKV_Init_BLOCK_CIPHER(unit.get(), id, key.data(), int(key.size()), iv.data(), int(iv.size()), encrypt), 0);
  Bytes out;
  for (size_t at = 0; at < in.size(); at += piece) {
    const size_t now = std::min(piece, in.size() - at);
    Bytes room(now + block);
    int length = int(room.size());
    EXPECT_EQ(PKV_Update_BLOCK_CIPHER(unit.get(), in.data() + at, int(now), room.data(), &length), 0);
    out.insert(out.end(), room.begin(), room.begin() + length);
  }
  Bytes room(block);
  int length = int(block);
  EXPECT_EQ(PKV_Final_BLOCK_CIPHER(unit.get(), room.data(), &length), 0);
  EXPECT_EQ(PKV_Final_BLOCK_CIPHER(unit.get(), room.data(), &length), PKV_ERR_FAILED);
  out.insert(out.end(), room.begin(), room.begin() + length);
  return out;
}

TEST(BlockCipher, PiecesAndBack) {
  for (const Family &family : kFamilies) {
    for (const int mode : kModes) {
      const int id = family.id | mode;
      const Bytes key = pattern(family.key, 1), iv = pattern(size_t(PKV_Get_BLOCK_CIPHER_IV_Length(id)), 2);
      ASSERT_EQ(PKV_Get_BLOCK_CIPHER_Key_Length(id), int(family.key));
      for (const size_t length : {0, 1, 7, 8, 15, 16, 17, 32, 61}) {
        const Bytes plain = pattern(length, 3), sealed = crypt(true, id, key, iv, plain);
        ASSERT_EQ(crypt(false, id, key, iv, sealed), plain) << std::hex << id << " " << length;
        for (const size_t piece : {1, 5, 8, 16, 19}) {
          ASSERT_EQ(in_pieces(true, id, key, iv, plain, piece), sealed) << std::hex << id << " " << length;
          ASSERT_EQ(in_pieces(false, id, key, iv, sealed, piece), plain) << std::hex << id << " " << length;
        }
      }
    }
  }
}

Bytes openssl(const std::string &name, const Bytes &key, const Bytes &iv, const Bytes &plain) {
  const std::string in = test::temporary_path("plain"), out = test::temporary_path("sealed");
  EXPECT_TRUE(test::write_file(in, plain.data(), plain.size()));
  const std::string given = iv.empty() ? "" : " -iv " + test::to_hex(iv);
  test::run("openssl enc -provider legacy -provider default -" + name + " -K " + test::to_hex(key) + given + " -in " +
            in + " -out " + out + " 2>/dev/null");
  return test::read_file(out);
}

TEST(BlockCipher, AgreesWithOpenssl) {
  if (test::run("openssl version").empty()) GTEST_SKIP() << "no openssl command";
  const char *const modes[] = {"-ecb", "-cbc", "-cfb", "-ofb"};
  const Bytes plain = pattern(45, 4);
  for (const Family &family : kFamilies) {
    for (const int mode : kModes) {
      const std::string name = family.name;
      if (name.empty() || (name == "rc2-40" && mode != PKV_MODE_CBC)) continue;
      const Bytes key = pattern(family.key, 5);
      const Bytes iv = pattern(size_t(PKV_Get_BLOCK_CIPHER_IV_Length(family.id | mode)), 6);
      const bool bare = mode == PKV_MODE_ECB && name.starts_with("des-ede");
      EXPECT_EQ(crypt(true, family.id | mode, key, iv, plain),
                openssl(name + (bare ? "" : modes[mode / 32]), key, iv, plain))
          << name << modes[mode / 32];
    }
  }
}

// RFC 2040 section 9, 12 rounds, and the published examples of the block cipher itself.
TEST(BlockCipher, Rc5KnownValues) {
  const char *const known[][3] = {{"0102030405", "ffffffffffffffff", "97e0787837ed317f"},
                                  {"00000000000000000000000000000000", "0000000000000000", "21a5dbee154b8f6d"},
                                  {"915f4619be41b2516355a50110a9ce91", "21a5dbee154b8f6d", "f7c013ac5b2b8952"},
                                  {"783348e75aeb0f2fd7b169bb8dc16787", "f7c013ac5b2b8952", "2f42b3b70369fc92"}};
  for (const auto &[key, plain, sealed] : known) {
    EXPECT_EQ(test::to_hex(crypt(true, 0x05000100, hex(key), {}, hex(plain))).substr(0, 16), sealed);
  }
}

// The other modes of RC5, block by block from its ECB.
TEST(BlockCipher, Rc5Modes) {
  const Bytes key = pattern(16, 7), iv = pattern(8, 8), plain = pattern(24, 9);
  for (const int mode : {PKV_MODE_CBC, PKV_MODE_CFB, PKV_MODE_OFB}) {
    Bytes block = iv, expected;
    for (size_t at = 0; at < plain.size(); at += 8) {
      for (size_t i = 0; mode == PKV_MODE_CBC && i < 8; ++i) block[i] ^= plain[at + i];
      block = crypt(true, 0x05000100, key, {}, block);
      block.resize(8);
      Bytes sealed = block;
      for (size_t i = 0; mode != PKV_MODE_CBC && i < 8; ++i) sealed[i] ^= plain[at + i];
      if (mode == PKV_MODE_CFB) block = sealed;
      expected.insert(expected.end(), sealed.begin(), sealed.end());
    }
    Bytes out = crypt(true, 0x05000100 | mode, key, iv, plain);
    out.resize(24);
    EXPECT_EQ(out, expected) << mode;
  }
}

int id_of(const std::string &name) {
  const std::string mode = name.substr(name.size() - 3);
  const int low = mode == "cbc" ? PKV_MODE_CBC : mode == "cfb" ? PKV_MODE_CFB : mode == "ofb" ? PKV_MODE_OFB : 0;
  for (const Family &family : kFamilies) {
    if (name.starts_with(family.name) && *family.name) return family.id | low;
  }
  return -1;
}

TEST(BlockCipher, KoreanVectors) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const Json &c : test::read_json(file)["ciphers"].items) {
    const Bytes iv = c["iv"].text == "null" ? Bytes() : c["iv"].octets(), sealed = c["ciphertext"].octets();
    Bytes out = crypt(true, id_of(c["cipher"].text), c["key"].octets(), iv, c["plaintext"].octets());
    if (c["padded"].text != "true") out.resize(sealed.size());
    EXPECT_EQ(out, sealed) << c["cipher"].text;
  }
}

TEST(BlockCipher, PaddingVectors) {
  for (const auto &[name, base] : {std::pair("aes", 0x01000020), std::pair("aria", 0x03000020)}) {
    const std::string file = test::vectors(std::string("sigs/") + name + "_cbc_pkcs5_test.json");
    if (file.empty()) GTEST_SKIP() << "no vectors of " << name;
    for (const Json &group : test::read_json(file)["testGroups"].items) {
      const int id = base | (group["keySize"].number() / 64 - 1) << 8;
      for (const Json &c : group["tests"].items) {
        const bool valid = c["result"].text == "valid";
        const Bytes key = c["key"].octets(), iv = c["iv"].octets(), plain = c["msg"].octets(),
                    sealed = c["ct"].octets();
        const Bytes opened = crypt(false, id, key, iv, sealed, valid ? 0 : PKV_ERR_FAILED);
        if (valid) EXPECT_EQ(opened, plain) << name << c["tcId"].text;
        if (valid) EXPECT_EQ(crypt(true, id, key, iv, plain), sealed) << name << c["tcId"].text;
      }
    }
  }
}

// All last blocks that differ from good padding in one octet, and all counts.
TEST(BlockCipher, OnlyExactPaddingIsAcceptedAndNothingElseIsWritten) {
  const Bytes key = pattern(16, 1), iv = pattern(16, 2);
  const auto sealed_raw = [&](const Bytes &blocks) {
    Bytes sealed = crypt(true, 0x01000120, key, iv, blocks);
    sealed.resize(blocks.size());
    return sealed;
  };
  for (int count = 0; count < 256; ++count) {
    for (size_t wrong = 0; wrong <= 16; ++wrong) {
      Bytes plain = pattern(32, 3);
      for (int i = 0; i < std::min(count, 16); ++i) plain[size_t(31 - i)] = uint8_t(count);
      if (!count) plain[31] = 0;
      if (wrong < 16) plain[16 + wrong] ^= 0x40;
      const int last = plain[31];
      bool good = last >= 1 && last <= 16;
      for (int i = 1; good && i <= last; ++i) good = plain[size_t(32 - i)] == last;
      Bytes out(32, 0xEE);
      int length = 32;
      const Bytes sealed = sealed_raw(plain);
      ASSERT_EQ(
          PKV_Decrypt_BLOCK_CIPHER(0x01000120, key.data(), 16, iv.data(), 16, sealed.data(), 32, out.data(), &length),
          good ? 0 : PKV_ERR_FAILED);
      const size_t written = good ? size_t(32 - last) : 0;
      ASSERT_EQ(length, good ? int(written) : 32);
      ASSERT_TRUE(std::equal(plain.begin(), plain.begin() + long(written), out.begin()));
      ASSERT_EQ(Bytes(out.begin() + long(written), out.end()), Bytes(32 - written, 0xEE));
    }
  }
}

TEST(BlockCipher, BadArguments) {
  const Bytes key = pattern(255, 1), iv = pattern(17, 2);
  const struct {
    int id, key_length, iv_length, expected;
  } cases[] = {{0x01000120, 16, 16, 0},
               {0x01000120, 15, 16, PKV_ERR_BAD_VALUE},
               {0x01000120, 16, 8, PKV_ERR_BAD_VALUE},
               {0x01000120, 16, 17, PKV_ERR_BAD_VALUE},
               {0x01000100, 16, 16, PKV_ERR_BAD_VALUE},
               {0x01000130, 16, 16, PKV_ERR_UNSUPPORTED},
               {0x01000180, 16, 16, PKV_ERR_UNSUPPORTED},
               {0x01000420, 16, 16, PKV_ERR_UNSUPPORTED},
               {0x02010220, 16, 8, PKV_ERR_BAD_VALUE},
               {0x05000120, 0, 8, PKV_ERR_BAD_VALUE},
               {0x05000120, 1, 8, 0},
               {0x05000120, 255, 8, 0},
               {0x06000120, 3, 8, PKV_ERR_BAD_VALUE},
               {0x06000120, 4, 8, 0},
               {0x06000120, 56, 8, 0},
               {0x06000120, 57, 8, PKV_ERR_BAD_VALUE},
               {0x07000220, 16, 8, PKV_ERR_BAD_VALUE},
               {0x01000120, -1, 16, PKV_ERR_BAD_VALUE},
               {0x01000120, 16, -1, PKV_ERR_BAD_VALUE}};
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  uint8_t out[32];
  int length = 32;
  for (const auto &c : cases) {
    EXPECT_EQ(PKV_Init_BLOCK_CIPHER(unit.get(), c.id, key.data(), c.key_length, iv.data(), c.iv_length, 1), c.expected)
        << std::hex << c.id << " " << c.key_length << " " << c.iv_length;
    EXPECT_EQ(PKV_Update_BLOCK_CIPHER(unit.get(), out, 1, out, &(length = 32)), c.expected ? PKV_ERR_FAILED : 0);
  }
}

TEST(BlockCipher, CapacityIsCheckedBeforeAnythingIsWritten) {
  const Bytes key = pattern(16, 1), plain = pattern(16, 2), none;
  Bytes out(64, 0xEE);
  int length = 31;
  EXPECT_EQ(PKV_Encrypt_BLOCK_CIPHER(0x01000120, key.data(), 16, nullptr, 0, plain.data(), 16, out.data(), &length),
            PKV_ERR_BAD_VALUE);
  EXPECT_EQ(out, Bytes(64, 0xEE));
  EXPECT_EQ(
      PKV_Encrypt_BLOCK_CIPHER(0x01000120, key.data(), 16, nullptr, 0, plain.data(), 16, out.data(), &(length = 32)),
      0);
  EXPECT_EQ(Bytes(out.begin(), out.begin() + 32), crypt(true, 0x01000120, key, Bytes(16), plain));
  const Bytes sealed(out.begin(), out.begin() + 32);
  EXPECT_EQ(
      PKV_Decrypt_BLOCK_CIPHER(0x01000120, key.data(), 16, nullptr, 0, out.data(), 32, out.data(), &(length = 31)),
      PKV_ERR_BAD_VALUE);
  EXPECT_EQ(
      PKV_Decrypt_BLOCK_CIPHER(0x01000120, key.data(), 16, nullptr, 0, out.data(), 32, out.data(), &(length = 32)), 0);
  EXPECT_EQ(Bytes(out.begin(), out.begin() + length), plain);
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  ASSERT_EQ(PKV_Init_BLOCK_CIPHER(unit.get(), 0x01000120, key.data(), 16, nullptr, 0, 0), 0);
  EXPECT_EQ(PKV_Update_BLOCK_CIPHER(unit.get(), sealed.data(), 32, out.data(), &(length = 15)), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(PKV_Update_BLOCK_CIPHER(unit.get(), sealed.data(), 32, out.data(), &(length = 16)), 0);
  EXPECT_EQ(PKV_Final_BLOCK_CIPHER(unit.get(), out.data(), &(length = 15)), PKV_ERR_BAD_VALUE);
  EXPECT_EQ(PKV_Final_BLOCK_CIPHER(unit.get(), out.data(), &(length = 16)), 0);
  EXPECT_EQ(length, 0);
}

TEST(BlockCipher, UnpaddedMessagesAndLentKeys) {
  const Bytes key = pattern(16, 1), iv = pattern(16, 2), plain = pattern(32, 3);
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  EXPECT_EQ(PKV_Get_BLOCK_CIPHER_Key(unit.get(), nullptr), nullptr);
  ASSERT_EQ(PKV_Init_BLOCK_CIPHER(unit.get(), 0x01000120, key.data(), 16, iv.data(), 16, 1), 0);
  int key_length = 0, iv_length = 0, length = 32;
  const unsigned char *own_key = PKV_Get_BLOCK_CIPHER_Key(unit.get(), &key_length);
  const unsigned char *own_iv = PKV_Get_BLOCK_CIPHER_IV(unit.get(), &iv_length);
  ASSERT_EQ(PKV_Init_BLOCK_CIPHER(unit.get(), 0x01000120, own_key, key_length, own_iv, iv_length, 1), 0);
  EXPECT_EQ(PKV_Set_BLOCK_CIPHER_Padding(unit.get(), 0), 0);
  Bytes out(32);
  EXPECT_EQ(PKV_Update_BLOCK_CIPHER(unit.get(), plain.data(), 32, out.data(), &length), 0);
  EXPECT_EQ(PKV_Final_BLOCK_CIPHER(unit.get(), nullptr, &(length = 0)), 0);
  const Bytes padded = crypt(true, 0x01000120, key, iv, plain);
  EXPECT_EQ(out, Bytes(padded.begin(), padded.begin() + 32));
  ASSERT_EQ(PKV_Init_BLOCK_CIPHER(unit.get(), 0x01000120, key.data(), 16, iv.data(), 16, 1), 0);
  EXPECT_EQ(PKV_Set_BLOCK_CIPHER_Padding(unit.get(), 0), 0);
  EXPECT_EQ(PKV_Update_BLOCK_CIPHER(unit.get(), plain.data(), 31, out.data(), &(length = 32)), 0);
  EXPECT_EQ(PKV_Final_BLOCK_CIPHER(unit.get(), out.data(), &(length = 32)), PKV_ERR_FAILED);
}

TEST(Provider, ExhaustedMemoryIsReported) {
  const Bytes key = pattern(16, 1), sealed = crypt(true, 0x01000120, key, {}, key);
  EXPECT_EQ(test::fail_each_allocation([&] {
              const Cipher cipher(PKV_New_BLOCK_CIPHER());
              const std::unique_ptr<DIGEST_UNIT, test::Releases<PKV_Free_DIGEST>> digest(PKV_New_DIGEST());
              const std::unique_ptr<HMAC_UNIT, test::Releases<PKV_Free_HMAC>> hmac(PKV_New_HMAC());
              if (!cipher || !digest || !hmac || PKV_Init_DIGEST(digest.get(), PKV_DIGEST_HAS160))
                return int(PKV_ERR_NO_MEMORY);
              const decltype(digest) copy(PKV_Dup_DIGEST(digest.get()));
              Bytes out(32);
              int length = 32;
              return !copy ? PKV_ERR_NO_MEMORY
                           : PKV_Decrypt_BLOCK_CIPHER(0x01000120, key.data(), 16, nullptr, 0, sealed.data(), 32,
                                                      out.data(), &length);
            }),
            6);
}

// RFC 6229, and the key lengths at both ends.
TEST(Rc4, KnownValuesAndKeyLengths) {
  Bytes out(16);
  ASSERT_EQ(PKV_RC4(hex("0102030405").data(), 5, out.data(), 16, out.data()), 0);
  EXPECT_EQ(test::to_hex(out), "b2396305f03dc027ccc3524a0a1118a8");
  out.assign(16, 0);
  const Bytes key = hex("0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f20");
  ASSERT_EQ(PKV_RC4(key.data(), 32, out.data(), 16, out.data()), 0);
  EXPECT_EQ(test::to_hex(out), "eaa6bd25880bf93d3f5d1e4ca2611d91");
  for (const int length : {-1, 0, 4, 33})
    EXPECT_EQ(PKV_RC4(key.data(), length, key.data(), 1, out.data()), PKV_ERR_BAD_VALUE);
}

}  // namespace
