// PKCS#1: keys of others and to others, conversions, and the parameters of OAEP and PSS.
#include <velpki/asn1_error.h>

#include <functional>

#include "support/keys.h"

using namespace test;

namespace {

// A key made once; it lives to the end of the program and is no leak of the test that happens to make it first.
class Pkcs1 : public testing::Test {
 protected:
  static void SetUpTestSuite() { key(); }
  static const RSA_UNIT *key() {
    static RSA_UNIT *const made = generated_rsa().release();
    return made;
  }
};

Owned<PKCS1_RSA_PRIVATE_KEY> read_private(const Bytes &der, int *code = nullptr) {
  return read_by(readDER_PKCS1_RSA_PRIVATE_KEY_from_Binary, der, code);
}
std::string written(const PKCS1_RSA_PRIVATE_KEY *key) {
  return to_hex(octets_by(writeDER_PKCS1_RSA_PRIVATE_KEY_to_Binary, key));
}

// Every plain RSA key of others is read and written back octet for octet; no other kind of key is taken.
TEST(Pkcs1Vectors, ReadRsaKeysAndNoOthers) {
  VELPKI_NEED_VECTORS("pkcs1", folder);
  int keys = 0, others = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    if (row.at("encrypted") != "no" || row.at("decodes") != "yes") continue;
    std::string label;
    const Bytes der = der_of(folder, row, &label);
    const Owned<PKCS1_RSA_PRIVATE_KEY> read = read_private(der);
    const bool other = !label.empty() && label != "RSA PRIVATE KEY";
    EXPECT_FALSE(other && read) << row.at("file");
    if (label == "RSA PRIVATE KEY") EXPECT_TRUE(read) << row.at("file");
    ++(read ? keys : others);
    if (!read) continue;
    EXPECT_EQ(written(read), to_hex(der)) << row.at("file");
    EXPECT_TRUE(Owned<RSA_UNIT>(get_RSA_UNIT_from_PRIV_KEY(read))) << row.at("file");
  }
  std::printf("PKCS#1 keys: %d read, %d of other kinds\n", keys, others);
  EXPECT_GT(keys, 50);
}

TEST_F(Pkcs1, ConvertToProviderKeysAndBack) {
  const Owned<PKCS1_RSA_PRIVATE_KEY> record(new_PKCS1_RSA_PRIVATE_KEY());
  const Owned<PKCS1_RSA_PUBLIC_KEY> half(new_PKCS1_RSA_PUBLIC_KEY());
  ASSERT_EQ(set_RSA_UNIT_to_P1_PRIV_KEY(record, key()), 0);
  ASSERT_EQ(set_RSA_UNIT_to_P1_PUB_KEY(half, key()), 0);
  const Owned<RSA_UNIT> back(get_RSA_UNIT_from_PRIV_KEY(record)), open(get_RSA_UNIT_from_PUB_KEY(half));
  EXPECT_EQ(PKV_Check_RSA(back), 0);
  EXPECT_EQ(PKV_Cmp_RSA(open, key()), 0);
  EXPECT_FALSE(PKV_Is_RSA_Private(open));
  // A public key has no private numbers to give, and a record without one of its numbers is no key.
  EXPECT_EQ(set_RSA_UNIT_to_P1_PRIV_KEY(record, open), F_SET_RSA_UNIT_TO_P1_PRIV_KEY | 0x2B);
  EXPECT_NE(record->qInv, nullptr);
  PKV_Free_BIGINT(record->qInv);
  record->qInv = nullptr;
  EXPECT_EQ(get_RSA_UNIT_from_PRIV_KEY(record), nullptr);
  ASN1_UNIT *out = nullptr;
  EXPECT_EQ(PKCS1_RSA_PRIVATE_KEY_to_Seq(record, &out), F_P1_PRIV_KEY_INFO_TO_SEQ | ERR_ASN1_ENCODING);
  EXPECT_EQ(set_RSA_UNIT_to_P1_PUB_KEY(nullptr, key()), F_SET_RSA_UNIT_TO_P1_PUB_KEY | 0x49);
  EXPECT_EQ(get_RSA_UNIT_from_PUB_KEY(nullptr), nullptr);
}

TEST_F(Pkcs1, WriteTextWithTheirLabels) {
  const Owned<PKCS1_RSA_PRIVATE_KEY> record(new_PKCS1_RSA_PRIVATE_KEY());
  const Owned<PKCS1_RSA_PUBLIC_KEY> half(new_PKCS1_RSA_PUBLIC_KEY());
  ASSERT_EQ(set_RSA_UNIT_to_P1_PRIV_KEY(record, key()), 0);
  ASSERT_EQ(set_RSA_UNIT_to_P1_PUB_KEY(half, key()), 0);
  using Write = std::function<int(char **)>;
  const std::pair<const char *, Write> cases[] = {
      {"PKV_RSA PRIVATE KEY", [&](char **out) { return writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary(record, out); }},
      {"RSA PRIVATE KEY", [&](char **out) { return writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary_RFC7468(record, out); }},
      {"PKV_RSA PUBLIC KEY", [&](char **out) { return writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary(half, out); }},
      {"RSA PUBLIC KEY", [&](char **out) { return writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary_RFC7468(half, out); }}};
  for (const auto &[label, write] : cases) {
    Owned<char> text;
    const int length = write(&text);
    ASSERT_GT(length, 2) << label;
    EXPECT_EQ(std::string_view(text).substr(11, std::strlen(label) + 5), std::string(label) + "-----");
    const bool secret = std::strstr(label, "PRIVATE");
    Owned<PKCS1_RSA_PRIVATE_KEY> whole;
    Owned<PKCS1_RSA_PUBLIC_KEY> open;
    EXPECT_EQ(readPEM_PKCS1_RSA_PRIVATE_KEY_from_Binary(&whole, text, length) == 0, secret) << label;
    EXPECT_EQ(readPEM_PKCS1_RSA_PUBLIC_KEY_from_Binary(&open, text, length) == 0, !secret) << label;
    if (!std::strncmp(label, "RSA", 3)) {
      ASSERT_TRUE(write_file(temporary_path("key.pem"), text, size_t(length)));
      int status = 0;
      run("openssl rsa -in " + temporary_path("key.pem") + (secret ? " -check" : " -RSAPublicKey_in") + " -noout 2>&1",
          &status);
      EXPECT_EQ(status, 0) << label;
    }
  }
}

TEST(Pkcs1Keys, RefuseOtherShapes) {
  for (const Row &row : table("pkcs1_shapes")) {
    int code = 0;
    EXPECT_FALSE(read_private(TLV(0x30, row.at("content")), &code)) << row.at("why");
    EXPECT_EQ(code, F_SEQ_TO_P1_PRIV_KEY_INFO | ERR_ASN1_DECODING) << row.at("why");
  }
}

// Parameters: what they mean, and what is written for them.

const std::string kSha256 = "300d06096086480165030402010500";
std::string hex_tlv(uint8_t tag, const std::string &content) { return to_hex(TLV(tag, hex(content))); }
std::string mgf1(const std::string &hash) { return hex_tlv(0x30, "06092a864886f70d010108" + hash); }

// `decode` and `meaning` are reasons in hex; `written` is what other octets are written, "-" for none.
TEST(RsaParameters, OfPssMeanWhatTheySay) {
  const auto code = [](const std::string &reason) {
    return reason == "0" ? 0 : F_SEQ_TO_RSASSA_PSS_PARAM | std::stoi(reason, nullptr, 16);
  };
  for (const Row &row : table("pss_parameters")) {
    const std::string &why = row.at("why"), &content = row.at("content");
    Owned<RSASSA_PSS_PARAM> read;
    const Unit in = unit(TLV(0x30, content));
    ASSERT_EQ(Seq_to_RSASSA_PSS_PARAM(in, &read), code(row.at("decode"))) << why;
    if (!read) continue;
    int digest = 0, mask = 0, salt = 0;
    EXPECT_EQ(get_RSASSA_PSS_PARAM_values(read, &digest, &mask, &salt), code(row.at("meaning"))) << why;
    EXPECT_EQ(digest, digest_id(row.at("digest"))) << why;
    EXPECT_EQ(mask, digest_id(row.at("mask"))) << why;
    EXPECT_EQ(salt, number_in(row, "salt")) << why;
    Unit out;
    EXPECT_EQ(RSASSA_PSS_PARAM_to_Seq(read, &out), 0) << why;
    EXPECT_EQ(flat(out), hex_tlv(0x30, row.at("written") == "-" ? "" : content)) << why;
  }
}

TEST(RsaParameters, AreMadeFromTheProvidersTerms) {
  const Owned<RSASSA_PSS_PARAM> pss(new_RSASSA_PSS_PARAM());
  const Owned<RSAES_OAEP_PARAM> oaep(new_RSAES_OAEP_PARAM());
  const unsigned char label[] = {0xAB, 0xCD};
  int digest = 0, mask = 0, length = 0;
  const unsigned char *lent = nullptr;
  Unit out;
  ASSERT_EQ(set_RSASSA_PSS_PARAM_values(pss, PKV_DIGEST_SHA256, PKV_DIGEST_SHA1, 32), 0);
  ASSERT_EQ(RSASSA_PSS_PARAM_to_Seq(pss, &out), 0);
  EXPECT_EQ(flat(out), hex_tlv(0x30, hex_tlv(0xA0, kSha256) + "a203020120"));
  out.reset();
  ASSERT_EQ(set_RSAES_OAEP_PARAM_values(oaep, PKV_DIGEST_SHA1, PKV_DIGEST_SHA256, label, 2), 0);
  ASSERT_EQ(RSAES_OAEP_PARAM_to_Seq(oaep, &out), 0);
  EXPECT_EQ(flat(out), hex_tlv(0x30, hex_tlv(0xA1, mgf1(kSha256)) +
                                         hex_tlv(0xA2, hex_tlv(0x30, "06092a864886f70d0101090402abcd"))));
  ASSERT_EQ(get_RSAES_OAEP_PARAM_values(oaep, &digest, &mask, &lent, &length), 0);
  EXPECT_EQ(std::tuple(digest, mask, to_hex(lent, size_t(length))),
            std::tuple(int(PKV_DIGEST_SHA1), int(PKV_DIGEST_SHA256), std::string("abcd")));
  EXPECT_EQ(set_RSAES_OAEP_PARAM_pSourceAlgorithm(oaep, oaep->maskGenAlgorithm), 0);
  EXPECT_EQ(get_RSAES_OAEP_PARAM_values(oaep, &digest, &mask, &lent, &length), F_SEQ_TO_RSAES_OAEP_PARAM | 0x48);
  // Null members are the defaults.
  EXPECT_EQ(set_RSAES_OAEP_PARAM_maskGenAlgorithm(oaep, nullptr), 0);
  EXPECT_EQ(set_RSAES_OAEP_PARAM_pSourceAlgorithm(oaep, nullptr), 0);
  ASSERT_EQ(get_RSAES_OAEP_PARAM_values(oaep, &digest, &mask, nullptr, &length), 0);
  EXPECT_EQ(std::tuple(mask, length), std::tuple(int(PKV_DIGEST_SHA1), 0));

  for (const int digest : {7, PKV_DIGEST_SHA1 | PKV_HMAC_FLAG})
    EXPECT_EQ(set_RSASSA_PSS_PARAM_values(pss, digest, PKV_DIGEST_SHA1, 20),
              F_SET_RSASSA_PSS_PARAM_HASHALGORITHM | 0x48);
  EXPECT_EQ(set_RSASSA_PSS_PARAM_values(pss, PKV_DIGEST_SHA1, PKV_DIGEST_SHA1, -1),
            F_SET_RSASSA_PSS_PARAM_HASHALGORITHM | 0x2B);
  EXPECT_EQ(set_RSASSA_PSS_PARAM_hashAlgorithm(nullptr, nullptr), F_SET_RSASSA_PSS_PARAM_HASHALGORITHM | 0x49);
  EXPECT_EQ(set_RSASSA_PSS_PARAM_trailerField(pss, 2), F_SET_RSASSA_PSS_PARAM_TRAILERFIELD | 0x2B);
  EXPECT_EQ(set_RSASSA_PSS_PARAM_trailerField(nullptr, 1), F_SET_RSASSA_PSS_PARAM_TRAILERFIELD | 0x49);
  EXPECT_EQ(set_RSASSA_PSS_PARAM_saltLength(pss, -1), 1);
  EXPECT_EQ(set_RSASSA_PSS_PARAM_saltLength(pss, 0), 0);
  EXPECT_EQ(get_RSASSA_PSS_PARAM_values(pss, nullptr, nullptr, &length), 0);
  EXPECT_EQ(length, 0);
}

}  // namespace
