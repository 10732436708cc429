// Enveloping, encrypting, digesting and opening: steps, buffers, codes, damage.
#include "parties.h"

using namespace test;

namespace {

const Bytes kKey = hex("000102030405060708090a0b0c0d0e0f"), kIv = hex("101112131415161718191a1b1c1d1e1f");

Message enveloped(int padding = 32, const Party &party = first_party()) {
  Message p7 = message_of(PKCS7_ENVELOPED_DATA);
  add_PKCS7_Recipient_withEncryptedAlgorithm(p7, party.certificate(), padding, nullptr);
  return p7;
}
Bytes decrypted(const Message &p7, int *code = nullptr) {
  Bytes out(size_t(std::max(get_PKCS7_ENCRYPTED_CONTENT_length(p7), 1)));
  int length = 0;
  const int result = decrypt_PKCS7(p7, kKey.data(), nullptr, out.data(), &length);
  if (code) *code = result;
  out.resize(size_t(length));
  return out;
}
int seal_hundred(const Message &p7, int padding, const Bytes &iv = kIv) {
  return encrypt_PKCS7_userKEY(p7, nullptr, algorithm(419), document().data(), 100, kKey.data(), iv.data(), padding);
}
P7_ENCRYPTED_CONTENT_INFO *encrypted_of(const Message &p7) {
  return static_cast<P7_ENVELOPED_DATA *>(p7->content)->encryptedContentInfo;
}

TEST(Seal, PiecesGiveTheSameCiphertext) {
  VELPKI_NEED_OPENSSL;
  const std::vector<std::vector<int>> splits = {{33}, {15, 1, 17}, {0, 33, 0}, std::vector<int>(33, 1)};
  std::string wanted;
  for (const int detached : {0, 1})
    for (const auto &split : splits) {
      const Message p7 = enveloped();
      ASSERT_EQ(init_PKCS7_Encrypt(p7, nullptr, algorithm(419), detached, kKey.data(), kIv.data(), 0), 0);
      Bytes all;
      const uint8_t *at = document().data();
      for (const int length : split) {
        Bytes out(size_t(length) + 16);
        int written = int(out.size());
        ASSERT_EQ(update_PKCS7_encrypt(p7, at, length, out.data(), &written), 0);
        all.insert(all.end(), out.begin(), out.begin() + written);
        at += length;
      }
      Bytes last(16);
      int written = 16;
      ASSERT_EQ(final_PKCS7_Encrypt(p7, last.data(), &written), 0);
      all.insert(all.end(), last.begin(), last.begin() + written);
      if (wanted.empty()) wanted = to_hex(all);
      EXPECT_EQ(to_hex(all), wanted);
      EXPECT_EQ(get_PKCS7_ENCRYPTED_CONTENT_length(p7), detached ? 0 : 48);
      if (!detached) EXPECT_EQ(to_hex(decrypted(sent(p7))), to_hex(document().data(), 33));
    }
}

TEST(Seal, BuffersAndOrder) {
  VELPKI_NEED_OPENSSL;
  uint8_t out[32];
  int length = 15;
  const Message p7 = enveloped();
  const auto update = [&](int in, uint8_t *to, int *room) {
    return update_PKCS7_encrypt(p7, document().data(), in, to, room);
  };
  EXPECT_EQ(update(16, out, &length), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(final_PKCS7_Encrypt(p7, out, &length), F_P7_ENCRYPT | 0x49);
  ASSERT_EQ(init_PKCS7_Encrypt(p7, nullptr, algorithm(419), 1, kKey.data(), kIv.data(), 32), 0);
  EXPECT_EQ(update(16, out, &length), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(update(16, nullptr, &length), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(update(15, out, &length), 0);
  EXPECT_EQ(length, 0);
  length = 15;
  EXPECT_EQ(update(1, out, &length), F_P7_ENCRYPT | 0x49) << "room for the input, but not for the block";
  length = 16;
  EXPECT_EQ(update(1, out, &length), 0);
  EXPECT_EQ(length, 16);
  EXPECT_EQ(final_PKCS7_Encrypt(p7, out, &length), 0);
  EXPECT_EQ(final_PKCS7_Encrypt(p7, out, &length), F_P7_ENCRYPT | 0x49);
  const auto init = [&](const Message &message, int row, const uint8_t *key, const uint8_t *iv, int padding) {
    return init_PKCS7_Encrypt(message, nullptr, row ? algorithm(row) : nullptr, 0, key, iv, padding);
  };
  const uint8_t *key = kKey.data(), *iv = kIv.data();
  EXPECT_EQ(init(nullptr, 419, key, iv, 0), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(init(enveloped(), 419, key, iv, 1), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(init(enveloped(), 419, nullptr, iv, 0), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(init(enveloped(), 419, key, nullptr, 0), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(init(enveloped(), 0, key, iv, 0), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(init(message_of(PKCS7_ENVELOPED_DATA), 419, key, iv, 0), F_P7_ENCRYPT | 0x49);
  EXPECT_EQ(init(message_of(PKCS7_SIGNED_DATA), 419, key, iv, 0), F_P7_ENCRYPT | 0x48);
  for (const int row : {6, 64, 835}) EXPECT_EQ(init(enveloped(), row, key, iv, 0), F_P7_ENCRYPT | 0x48) << row;
}

TEST(Seal, EncryptedDataWithAndWithoutAKeyOfItsOwn) {
  const Message p7 = message_of(PKCS7_ENCRYPTED_DATA);
  ASSERT_EQ(set_PKCS7_Cipher(p7, algorithm(419)), 0);
  ASSERT_EQ(encrypt_PKCS7_userKEY(p7, nullptr, nullptr, document().data(), 100, kKey.data(), kIv.data(), 0), 0);
  EXPECT_EQ(decrypted(sent(p7)).size(), 100u);
  ASSERT_EQ(set_PKCS7_Cipher(p7, algorithm(419)), 0);
  EXPECT_EQ(get_PKCS7_ENCRYPTED_CONTENT_length(p7), 112) << "the octets stay";
  // A cipher that is there already is used, and the parameters of a password-based algorithm are kept.
  const Message own = message_of(PKCS7_ENCRYPTED_DATA);
  ASSERT_EQ(set_PKCS7_Cipher(own, algorithm(780)), 0);
  auto *info = static_cast<P7_ENCRYPTED_DATA *>(own->content)->encryptedContentInfo;
  info->cipher = PKV_New_BLOCK_CIPHER();
  ASSERT_EQ(PKV_Init_BLOCK_CIPHER(info->cipher, 0x04000120, kKey.data(), 16, kIv.data(), 16, 1), 0);
  ASSERT_EQ(encrypt_PKCS7(own, nullptr, nullptr, document().data(), 100, 0), 0);
  info = static_cast<P7_ENCRYPTED_DATA *>(own->content)->encryptedContentInfo;
  EXPECT_EQ(info->contentEncryptionAlgorithm->parameters->type, TYPE_NULL);
  uint8_t out[112];
  int length = 0;
  ASSERT_EQ(decrypt_PKCS7(own, kKey.data(), kIv.data(), out, &length), 0);
  EXPECT_EQ(to_hex(out, size_t(length)), to_hex(document().data(), 100));
}

TEST(Open, ParametersThatAreNoIv) {
  VELPKI_NEED_OPENSSL;
  for (const int length : {0, 1, 8, 15, 16, 17}) {
    const Message p7 = enveloped();
    ASSERT_EQ(seal_hundred(p7, 32, Bytes(16, 0)), 0);
    X509_ALGO_IDENTIFIER *algorithm = encrypted_of(p7)->contentEncryptionAlgorithm;
    set_ASN1_STRING_value(algorithm->parameters, TYPE_OCTET_STRING, Bytes(17, 0).data(), length);
    int code = -1, room = 200;
    uint8_t out[200];
    const Bytes plain = decrypted(p7, &code);
    EXPECT_EQ(code, length && length < 16 ? 1 : 0) << length;
    if (!code) EXPECT_EQ(to_hex(plain), to_hex(document().data(), 100));
    EXPECT_EQ(decrypt_PKCS7_strict(p7, first_party().certificate(), first_party().key(), out, &room),
              length == 16 ? 0 : 1)
        << length;
    for (const int row : {6, 64}) {
      const String oid(index_to_OBJECT_IDENTIFIER(row));
      set_X509_ALGO_IDENTIFIER_value(algorithm, oid, nullptr);
      decrypted(p7, &code);
      EXPECT_EQ(code, 1) << row;
    }
  }
}

TEST(Open, KeysOfTheWrongLength) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = first_party().certificate();
  const Owned<ASYMMETRIC_KEY> key = first_party().key();
  RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  for (const int size : {0, 15, 16, 17, 200}) {
    const Message p7 = enveloped();
    ASSERT_EQ(seal_hundred(p7, 0), 0);
    auto *recipient = item<P7_RECIPIENT_INFO>(static_cast<P7_ENVELOPED_DATA *>(p7->content)->recipientInfos, 0);
    Bytes encrypted(256);
    int length = 256;
    PKV_Init_RSAES(rsa, PKV_RSA_PKCS1_CRYPT, 1);
    ASSERT_EQ(PKV_Encrypt_RSAES(rsa, size == 16 ? kKey.data() : document().data(), size, encrypted.data(), &length), 0);
    set_ASN1_STRING_value(recipient->encryptedKey, TYPE_OCTET_STRING, encrypted.data(), length);
    uint8_t out[17];
    out[16] = 0x77;
    length = -5;
    EXPECT_EQ(decrypt_PKCS7_enveloped_CEK(p7, cert, key, out, &length, 32), size == 16 ? 0 : 0x12);
    EXPECT_EQ(length, size == 16 ? 16 : -5);
    EXPECT_EQ(out[16], 0x77);
    length = 15;
    EXPECT_EQ(decrypt_PKCS7_enveloped_CEK_n(p7, cert, key, out, &length, 32), 1);
    // Without an oracle: the same code as for content that does not fit the key, now and then rubbish.
    Bytes plain(112);
    int opened = 0;
    for (int i = 0; i < 8; ++i) {
      length = int(plain.size());
      opened += decrypt_PKCS7_strict(p7, cert, key, plain.data(), &length) == 0;
    }
    EXPECT_EQ(opened == 8, size == 16) << size;
  }
}

TEST(Open, DamagedContentHasOneCode) {
  VELPKI_NEED_OPENSSL;
  const Message p7 = enveloped(16);
  ASSERT_EQ(seal_hundred(p7, 16), 0);
  const Certificate cert = first_party().certificate(), other = second_party().certificate();
  const Owned<ASYMMETRIC_KEY> key = first_party().key();
  Bytes out(112);
  int length = 112;
  ASN1_STRING *content = encrypted_of(p7)->encryptedContent;
  EXPECT_EQ(decrypt_PKCS7_strict(p7, other, key, out.data(), &length), 1);
  content->length -= 1;
  EXPECT_EQ(decrypt_PKCS7_strict(p7, cert, key, out.data(), &length), PKV_ERR_FAILED);
  content->length += 1;
  content->data[95] ^= 0x40;
  EXPECT_EQ(decrypt_PKCS7_strict(p7, cert, key, out.data(), &length), PKV_ERR_FAILED);
  content->data[95] ^= 0x40;
  length = 111;
  EXPECT_EQ(decrypt_PKCS7_strict(p7, cert, key, out.data(), &length), 1);
  length = 112;
  ASSERT_EQ(decrypt_PKCS7_strict(p7, cert, key, out.data(), &length), 0);
  EXPECT_EQ(to_hex(out.data(), size_t(length)), to_hex(document().data(), 100));
  free_ASN1_STRING(std::exchange(encrypted_of(p7)->encryptedContent, nullptr));
  EXPECT_EQ(decrypt_PKCS7_strict(p7, cert, key, out.data(), &length), 1);
  EXPECT_EQ(get_PKCS7_ENCRYPTED_CONTENT_length(p7), 0);
}

enum class Variant { plain, sp, sp_ex };
int seal(const Message &p7, Variant variant) {
  const Owned<X509_ALGO_IDENTIFIER> aes = algorithm(419);
  const auto with = [&](auto function, auto... none) {
    return function(p7, none..., aes, document().data(), int(document().size()), kKey.data(), kIv.data(), 0);
  };
  return variant == Variant::plain ? with(sign_encrypt_PKCS7_userKEY, nullptr)
         : variant == Variant::sp  ? with(sign_encrypt_PKCS7_userKEY_SP, nullptr)
                                   : with(sign_encrypt_PKCS7_userKEY_SP_ex);
}

TEST(SignAndSeal, PlainAndSp) {
  VELPKI_NEED_OPENSSL;
  struct Case {
    Variant variant;
    const Party &signer;
    int sealed, plain;
    bool strict;
  };
  const Case cases[] = {
      {Variant::plain, first_party(), 0, 0, false},
      {Variant::sp, small_party(), 0, 0x5E, true},
      {Variant::sp, first_party(), F_P7_ENCRYPT | 0x2B, 0, false},
      {Variant::sp_ex, first_party(), 0, 0x5E, true},
  };
  for (const Case &c : cases) {
    const Message p7 = message_of(PKCS7_SIGNED_AND_ENVELOPED_DATA);
    const Certificate signer = c.signer.certificate(), recipient = second_party().certificate();
    ASSERT_NE(add_PKCS7_Signature(p7, signer, c.signer.key(), 672), nullptr);
    ASSERT_NE(add_PKCS7_Recipient(p7, recipient), nullptr);
    ASSERT_EQ(add_PKCS7_Certificate_ex(p7, signer), 0);
    EXPECT_EQ(seal(p7, c.variant), c.sealed);
    const Message back = sent(p7);
    Bytes out(6000);
    int length = 0;
    EXPECT_EQ(verify_decrypt_PKCS7(back, nullptr, kKey.data(), out.data(), &length), c.plain);
    EXPECT_EQ(length, c.plain ? 0 : 5000);
    length = 6000;
    EXPECT_EQ(verify_decrypt_PKCS7_strict(back, recipient, second_party().key(), nullptr, 0, out.data(), &length) == 0,
              c.strict);
    if (c.strict) EXPECT_EQ(to_hex(out.data(), size_t(length)), to_hex(document()));
  }
  const Message empty = message_of(PKCS7_SIGNED_AND_ENVELOPED_DATA);
  EXPECT_EQ(seal(empty, Variant::sp), F_P7_SIGN | 0x2B);
  EXPECT_EQ(sign_encrypt_PKCS7_SP(empty, nullptr, nullptr, document().data(), 1, 1), 0x4B00002B);
  EXPECT_EQ(sign_encrypt_PKCS7_userKEY_SP(empty, nullptr, nullptr, nullptr, 1, nullptr, nullptr, 1), 0x4B00002B);
  EXPECT_EQ(sign_encrypt_PKCS7(message_of(PKCS7_SIGNED_DATA), nullptr, nullptr, document().data(), 1, 0),
            F_P7_ENCRYPT | 0x48);
}

TEST(Digest, HoldsDataAndDigest) {
  const Message p7 = message_of(PKCS7_DIGESTED_DATA);
  EXPECT_EQ(digest_PKCS7(p7, 0x1234, document().data(), 10), 1);
  EXPECT_EQ(digest_PKCS7(message_of(PKCS7_DATA), PKV_DIGEST_SHA1, document().data(), 10), 1);
  ASSERT_EQ(digest_PKCS7(p7, PKV_DIGEST_SHA1, reinterpret_cast<const uint8_t *>("abc"), 3), 0);
  EXPECT_EQ(to_hex(written(p7)),
            "304506092a864886f70d010705a0383036020100300706052b0e03021a301206092a864886f70d010701a0050403616263"
            "0414a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST(Build, ContentsAndTheirOwners) {
  P7_CONTENT_INFO *data = nullptr;  // for `p7` to take over
  EXPECT_EQ(gen_PKCS7_DATA_from_Binary(nullptr, document().data(), 3), F_GET_PKCS7_DATA | 0x49);
  EXPECT_EQ(gen_PKCS7_DATA_from_Binary(&data, nullptr, 3), F_GET_PKCS7_DATA | 0x49);
  ASSERT_EQ(gen_PKCS7_DATA_from_Binary(&data, document().data(), 3), 0);
  EXPECT_EQ(to_hex(written(data)), "301206092a864886f70d010701a0050403" + to_hex(document().data(), 3));
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  for (const int row : {0, 20, 27, 837}) EXPECT_EQ(set_PKCS7_Type(p7, row), 1) << row;
  EXPECT_EQ(set_PKCS7_Content(p7, p7), 1);
  EXPECT_EQ(set_PKCS7_Content(data, p7), 1);
  EXPECT_EQ(set_PKCS7_Content(p7, data), 0);
  EXPECT_EQ(set_PKCS7_Content(p7, data), 1);
  EXPECT_EQ(new_PKCS7_Content(p7, 99), 1);
  EXPECT_EQ(new_PKCS7_Content(p7, PKCS7_SIGNED_DATA), 0);
  auto *inner = static_cast<P7_SIGNED_DATA *>(p7->content)->contentInfo;
  EXPECT_EQ(set_PKCS7_Content(inner, p7), 1) << "a ring";
  EXPECT_EQ(set_P7_version(message_of(PKCS7_DATA), 1), 1);
  EXPECT_EQ(get_PKCS7_ENCRYPTED_CONTENT_length(p7), -1);
  EXPECT_EQ(add_PKCS7_Recipient(p7, nullptr), nullptr);
}

TEST(Seal, SurvivesEachFailedAllocation) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = small_party().certificate();
  const Owned<ASYMMETRIC_KEY> key = small_party().key();
  const auto work = [&] {
    const Message p7 = message_of(PKCS7_ENVELOPED_DATA);
    const bool added = p7 && add_PKCS7_Recipient_withEncryptedAlgorithm(p7, cert, 16, nullptr);
    const Owned<X509_ALGO_IDENTIFIER> aes = algorithm(419);
    const int sealed = added && aes ? encrypt_PKCS7(p7, nullptr, aes, document().data(), 100, 16) : 1;
    const Message back = sealed ? nullptr : sent(p7);
    uint8_t out[112];
    int length = 112;
    return back && decrypt_PKCS7_strict(back, cert, key, out, &length) == 0 && length == 100;
  };
  ASSERT_TRUE(work());  // the first time the key prepares itself
  survive_each_failed_allocation(work);
}

}  // namespace
