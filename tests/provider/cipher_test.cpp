#include <velpki/pkv.h>

#include "provider/keys.h"

using namespace test;

namespace {

using Cipher = Owned<BLOCK_CIPHER_UNIT>;

constexpr int kModes[] = {PKV_MODE_ECB, PKV_MODE_CBC, PKV_MODE_CFB, PKV_MODE_OFB};
constexpr int kAes = 0x01000100, kAesCbc = kAes | PKV_MODE_CBC, kRc5 = 0x05000100;

// Names are those of the openssl command, but for RC5.
const struct Family {
  int id;
  const char *name;
  size_t key;
} kFamilies[] = {{0x01000100, "aes-128", 16},  {0x01000200, "aes-192", 24},  {0x01000300, "aes-256", 32},
                 {0x02000000, "des", 8},       {0x02000100, "des", 8},       {0x02000200, "des-ede", 16},
                 {0x02001200, "des-ede", 16},  {0x02010200, "des-ede3", 24}, {0x03000100, "aria-128", 16},
                 {0x03000200, "aria-192", 24}, {0x03000300, "aria-256", 32}, {0x04000100, "seed", 16},
                 {0x05000100, "rc5", 16},      {0x06000100, "bf", 16},       {0x07000100, "rc2", 16},
                 {0x07000200, "rc2-40", 5}};

Bytes pattern(size_t length, int seed) {
  Bytes out(length);
  for (size_t i = 0; i < length; ++i) out[i] = uint8_t(seed + 29 * int(i) + int(i * i));
  return out;
}
const Bytes kKey = pattern(16, 1), kIv = pattern(16, 2);

Bytes first(Bytes octets, size_t length) { return octets.resize(length), octets; }

Bytes crypt(bool encrypt, int id, const Bytes &key, const Bytes &iv, const Bytes &in, int expected = 0) {
  Output out(in.size() + 16);
  EXPECT_EQ(call(encrypt ? PKV_Encrypt_BLOCK_CIPHER : PKV_Decrypt_BLOCK_CIPHER, id, key, iv, in, out), expected);
  return expected ? Bytes() : out.written();
}

// The unit, fed `piece` octets at a time into room for not an octet more than is written.
Bytes in_pieces(bool encrypt, int id, const Bytes &key, const Bytes &iv, const Bytes &in, size_t piece) {
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  const size_t block = size_t(PKV_Get_BLOCK_CIPHER_Block_Length(id));
  EXPECT_EQ(call(PKV_Init_BLOCK_CIPHER, unit, id, key, iv, encrypt), 0);
  Bytes all;
  const auto append = [&](const Output &out) {
    all.insert(all.end(), out.octets.begin(), out.octets.begin() + out.length);
  };
  for (size_t at = 0; at < in.size(); at += piece) {
    const size_t now = std::min(piece, in.size() - at);
    Output out(now + block);
    EXPECT_EQ(call(PKV_Update_BLOCK_CIPHER, unit, in.data() + at, int(now), out), 0);
    append(out);
  }
  Output last(block), none(block);
  EXPECT_EQ(call(PKV_Final_BLOCK_CIPHER, unit, last), 0);
  EXPECT_EQ(call(PKV_Final_BLOCK_CIPHER, unit, none), PKV_ERR_FAILED);
  append(last);
  return all;
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

TEST(BlockCipher, CbcAgreesWithOpenssl) {
  if (run("openssl version").empty()) GTEST_SKIP() << "no openssl command";
  const Bytes plain = pattern(45, 4);
  const std::string in = temporary_path("plain");
  ASSERT_TRUE(write_file(in, plain.data(), plain.size()));
  for (const Family &family : kFamilies) {
    const int id = family.id | PKV_MODE_CBC;
    if (id == (kRc5 | PKV_MODE_CBC)) continue;
    const Bytes key = pattern(family.key, 5), iv = pattern(size_t(PKV_Get_BLOCK_CIPHER_IV_Length(id)), 6);
    const std::string sealed = run("openssl enc -provider legacy -provider default -" + std::string(family.name) +
                                   "-cbc -K " + to_hex(key) + " -iv " + to_hex(iv) + " -in " + in + " 2>/dev/null");
    EXPECT_EQ(crypt(true, id, key, iv, plain), Bytes(sealed.begin(), sealed.end())) << family.name;
  }
}

// RFC 2040 section 9, 12 rounds, and the published examples of the block cipher itself.
TEST(BlockCipher, Rc5KnownValues) {
  const char *const known[][3] = {{"0102030405", "ffffffffffffffff", "97e0787837ed317f"},
                                  {"00000000000000000000000000000000", "0000000000000000", "21a5dbee154b8f6d"},
                                  {"915f4619be41b2516355a50110a9ce91", "21a5dbee154b8f6d", "f7c013ac5b2b8952"},
                                  {"783348e75aeb0f2fd7b169bb8dc16787", "f7c013ac5b2b8952", "2f42b3b70369fc92"}};
  for (const auto &[key, plain, sealed] : known)
    EXPECT_EQ(first(crypt(true, kRc5, hex(key), {}, hex(plain)), 8), hex(sealed));
}

// The other modes, block by block from ECB.
TEST(BlockCipher, ModesFollowFromEcb) {
  for (const Family &family : kFamilies) {
    const size_t size = size_t(PKV_Get_BLOCK_CIPHER_Block_Length(family.id));
    const Bytes key = pattern(family.key, 7), iv = pattern(size, 8), plain = pattern(3 * size - 3, 9);
    Bytes padded = plain;
    padded.insert(padded.end(), 3, 3);
    for (const int mode : {PKV_MODE_CBC, PKV_MODE_CFB, PKV_MODE_OFB}) {
      Bytes block = iv, expected;
      for (size_t at = 0; at < padded.size(); at += size) {
        for (size_t i = 0; mode == PKV_MODE_CBC && i < size; ++i) block[i] ^= padded[at + i];
        block = first(crypt(true, family.id, key, {}, block), size);
        Bytes sealed = block;
        for (size_t i = 0; mode != PKV_MODE_CBC && i < size; ++i) sealed[i] ^= padded[at + i];
        if (mode == PKV_MODE_CFB) block = sealed;
        expected.insert(expected.end(), sealed.begin(), sealed.end());
      }
      if (mode != PKV_MODE_CBC) expected.resize(plain.size());
      EXPECT_EQ(crypt(true, family.id | mode, key, iv, plain), expected) << family.name << mode;
    }
  }
}

int id_of(const std::string &name) {
  const std::string mode = name.substr(name.size() - 3);
  const int low = mode == "cbc" ? PKV_MODE_CBC : mode == "cfb" ? PKV_MODE_CFB : mode == "ofb" ? PKV_MODE_OFB : 0;
  for (const Family &family : kFamilies) {
    if (name.starts_with(family.name)) return family.id | low;
  }
  return -1;
}

TEST(BlockCipher, KoreanVectors) {
  VELPKI_NEED_KOREAN;
  for (const Json &c : korean("ciphers").items) {
    const Bytes iv = c["iv"].text == "null" ? Bytes() : c["iv"].octets(), sealed = c["ciphertext"].octets();
    const Bytes out = crypt(true, id_of(c["cipher"].text), c["key"].octets(), iv, c["plaintext"].octets());
    EXPECT_EQ(c["padded"].text == "true" ? out : first(out, sealed.size()), sealed) << c["cipher"].text;
  }
}

TEST(BlockCipher, PaddingVectors) {
  VELPKI_NEED_VECTORS("sigs", folder);
  for (const auto &[name, base] : {std::pair("aes", 0x01000020), std::pair("aria", 0x03000020)}) {
    const auto id = [base = base](const Json &group) { return base | (group["keySize"].number() / 64 - 1) << 8; };
    each_vector(folder + "/" + name + "_cbc_pkcs5_test.json", id, [](int id, const Json &, const Json &c) {
      const bool valid = c["result"].text == "valid";
      const Bytes key = c["key"].octets(), iv = c["iv"].octets(), plain = c["msg"].octets(), sealed = c["ct"].octets();
      EXPECT_EQ(crypt(false, id, key, iv, sealed, valid ? 0 : PKV_ERR_FAILED), valid ? plain : Bytes());
      if (valid) EXPECT_EQ(crypt(true, id, key, iv, plain), sealed);
    });
  }
}

// All last blocks that differ from good padding in one octet, and all counts.
TEST(BlockCipher, OnlyExactPaddingIsAcceptedAndNothingElseIsWritten) {
  for (int count = 0; count < 256; ++count) {
    for (size_t wrong = 0; wrong <= 16; ++wrong) {
      Bytes plain = pattern(32, 3);
      for (int i = 0; i < std::min(count, 16); ++i) plain[size_t(31 - i)] = uint8_t(count);
      if (!count) plain[31] = 0;
      if (wrong < 16) plain[16 + wrong] ^= 0x40;
      const int last = plain[31];
      bool good = last >= 1 && last <= 16;
      for (int i = 1; good && i <= last; ++i) good = plain[size_t(32 - i)] == last;
      Output out(32);
      out.octets.assign(32, 0xEE);
      ASSERT_EQ(
          call(PKV_Decrypt_BLOCK_CIPHER, kAesCbc, kKey, kIv, first(crypt(true, kAesCbc, kKey, kIv, plain), 32), out),
          good ? 0 : PKV_ERR_FAILED);
      ASSERT_EQ(out.length, good ? 32 - last : 32);
      const size_t written = good ? size_t(out.length) : 0;
      std::fill(plain.begin() + long(written), plain.end(), 0xEE);
      ASSERT_EQ(out.octets, plain);
    }
  }
}

TEST(BlockCipher, BadArguments) {
  const Bytes key = pattern(255, 1), iv = pattern(17, 2);
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  for (const Row &row : table("cipher_lengths")) {
    Output out(32);
    const int id = code_at(row, "id"), expected = code_at(row, "code");
    const int key_length = number_in(row, "key"), iv_length = number_in(row, "iv");
    EXPECT_EQ(PKV_Init_BLOCK_CIPHER(unit, id, key.data(), key_length, iv.data(), iv_length, 1), expected)
        << row.at("id") << " " << key_length << " " << iv_length;
    EXPECT_EQ(call(PKV_Update_BLOCK_CIPHER, unit, Bytes(1), out), expected ? PKV_ERR_FAILED : 0);
  }
}

TEST(BlockCipher, CapacityIsCheckedBeforeAnythingIsWritten) {
  const Bytes plain = pattern(16, 2), sealed = crypt(true, kAes, kKey, {}, plain);
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  Output out(32);
  const auto needs = [&](int room, auto work) {
    const Bytes before = out.octets;
    out.length = room - 1;
    EXPECT_EQ(work(), PKV_ERR_BAD_VALUE);
    EXPECT_EQ(out.octets, before);
    out.length = room;
    EXPECT_EQ(work(), 0);
  };
  needs(32, [&] { return call(PKV_Encrypt_BLOCK_CIPHER, kAes, kKey, Bytes(), plain, out); });
  EXPECT_EQ(out.written(), sealed);
  needs(32, [&] { return call(PKV_Decrypt_BLOCK_CIPHER, kAes, kKey, Bytes(), out.octets, out); });
  EXPECT_EQ(out.written(), plain);
  ASSERT_EQ(call(PKV_Init_BLOCK_CIPHER, unit, kAes, kKey, Bytes(), 0), 0);
  needs(16, [&] { return call(PKV_Update_BLOCK_CIPHER, unit, sealed, out); });
  needs(16, [&] { return call(PKV_Final_BLOCK_CIPHER, unit, out); });
  EXPECT_EQ(out.length, 0);
}

TEST(BlockCipher, UnpaddedMessagesAndLentKeys) {
  const Cipher unit(PKV_New_BLOCK_CIPHER());
  EXPECT_EQ(PKV_Get_BLOCK_CIPHER_Key(unit, nullptr), nullptr);
  for (const size_t length : {32, 31}) {
    int key_length = 0, iv_length = 0;
    Output out(32), rest(0);
    const Bytes plain = pattern(length, 3);
    ASSERT_EQ(call(PKV_Init_BLOCK_CIPHER, unit, kAesCbc, kKey, kIv, 1), 0);
    const unsigned char *key = PKV_Get_BLOCK_CIPHER_Key(unit, &key_length);
    const unsigned char *iv = PKV_Get_BLOCK_CIPHER_IV(unit, &iv_length);
    ASSERT_EQ(PKV_Init_BLOCK_CIPHER(unit, kAesCbc, key, key_length, iv, iv_length, 1), 0);
    EXPECT_EQ(PKV_Set_BLOCK_CIPHER_Padding(unit, 0), 0);
    EXPECT_EQ(call(PKV_Update_BLOCK_CIPHER, unit, plain, out), 0);
    EXPECT_EQ(call(PKV_Final_BLOCK_CIPHER, unit, rest), length == 32 ? 0 : PKV_ERR_FAILED);
    EXPECT_EQ(out.written(), first(crypt(true, kAesCbc, kKey, kIv, plain), length / 16 * 16));
  }
}

TEST(Provider, ExhaustedMemoryIsReported) {
  const Bytes sealed = crypt(true, kAesCbc, kKey, {}, kKey);
  const auto work = [&] {
    const Cipher cipher(PKV_New_BLOCK_CIPHER());
    const Owned<DIGEST_UNIT> digest(PKV_New_DIGEST());
    const Owned<HMAC_UNIT> hmac(PKV_New_HMAC());
    if (!cipher || !digest || !hmac || call(PKV_Init_DIGEST, digest, PKV_DIGEST_HAS160)) return int(PKV_ERR_NO_MEMORY);
    const decltype(digest) copy(PKV_Dup_DIGEST(digest));
    Output out(32);
    return copy ? call(PKV_Decrypt_BLOCK_CIPHER, kAesCbc, kKey, Bytes(), sealed, out) : PKV_ERR_NO_MEMORY;
  };
  EXPECT_EQ(fail_each_allocation(work), 6);
}

// RFC 6229, and the key lengths at both ends.
TEST(Rc4, KnownValuesAndKeyLengths) {
  const Bytes longest = hex("0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f20");
  const std::pair<int, const char *> known[] = {{5, "b2396305f03dc027ccc3524a0a1118a8"},
                                                {32, "eaa6bd25880bf93d3f5d1e4ca2611d91"}};
  for (const auto &[length, stream] : known) {
    Bytes out(16);
    ASSERT_EQ(PKV_RC4(longest.data(), length, out.data(), 16, out.data()), 0);
    EXPECT_EQ(to_hex(out), stream);
  }
  for (const int length : {-1, 0, 4, 33}) {
    Bytes out(1);
    EXPECT_EQ(PKV_RC4(longest.data(), length, out.data(), 1, out.data()), PKV_ERR_BAD_VALUE);
  }
}

}  // namespace
