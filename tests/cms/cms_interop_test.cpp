// CMS messages between this library and the openssl command, both ways.
#include "cms_parties.h"

using namespace test;

namespace {

struct SignCase {
  int digest_row, padding, flags, signers;
  bool detached, attributes;
  bool on_curve = false;  // the first signer's key
};
std::vector<SignCase> sign_cases() {
  std::vector<SignCase> cases;
  for (const int row : {64, 675, 672, 673, 674})
    for (const int padding : {PKV_RSA_PKCS1, PKV_RSA_PSS})
      for (const int form : {0, 1, 2, 3}) cases.push_back({row, padding, form & 1, 1 + form / 2, form != 2, form != 1});
  for (const int row : {64, 675, 672, 673, 674})
    for (const int form : {0, 2, 3}) cases.push_back({row, 1, form & 1, 1 + form / 2, form != 2, form == 3, true});
  for (SignCase &each : cases) each.attributes |= each.on_curve && each.detached;
  return cases;
}

Cms signed_by_us(const SignCase &c) {
  Cms cms = cms_of(CMS_TYPE_SIGNED_DATA);
  const PartyFiles &first = c.on_curve ? static_cast<const PartyFiles &>(curve_party()) : first_party();
  for (const PartyFiles *party : {&first, static_cast<const PartyFiles *>(&second_party())}) {
    if (party == &second_party() && c.signers == 1) break;
    const Certificate cert = party->certificate();
    CMS_SIGNER_INFO *signer = add_CMS_Signature_ex(cms, cert, c.flags, party->key(), c.digest_row, c.padding, nullptr);
    EXPECT_NE(signer, nullptr);
    EXPECT_EQ(add_CMS_Certificate(cms, cert), 0);
    const std::string time = "260101000000Z";
    if (c.attributes) {
      EXPECT_EQ(add_CMS_Signed_Attribute(signer, 52, TYPE_UTC_TIME, reinterpret_cast<const uint8_t *>(time.data()),
                                         int(time.size())),
                0);
    }
  }
  EXPECT_EQ(sign_CMS(cms, document().data(), int(document().size()), c.detached), 0);
  return cms;
}

TEST(CmsInterop, OpensslVerifiesWhatIsSignedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("cms.der"), out = temporary_path("cms.out");
  const Bytes other = damaged(document(), 77);
  for (const SignCase &c : sign_cases()) {
    SCOPED_TRACE(std::to_string(c.digest_row) + " padding " + std::to_string(c.padding) + " flags " +
                 std::to_string(c.flags) + " detached " + std::to_string(c.detached));
    const Cms cms = signed_by_us(c);
    ASSERT_GT(writeDER_CMS_CONTENT_INFO_to_FILE(cms, path.c_str()), 0);
    EXPECT_EQ(status_of("openssl cms -verify -noverify -binary -inform DER -in " + path +
                        (c.detached ? " -content " + document_path() : "") + " -out " + out),
              0);
    EXPECT_TRUE(read_file(out) == document());
    const Cms back = sent(cms);
    ASSERT_NE(back, nullptr);
    const Bytes *data = c.detached ? &document() : nullptr;
    EXPECT_EQ(verify(back, data) == 0, !c.on_curve);
    EXPECT_EQ(verify_strict(back, data), 0);
    if (!c.detached) continue;
    EXPECT_NE(verify_CMS(back, nullptr, other.data(), int(other.size())), 0);
    EXPECT_NE(verify_strict(back, &other), 0);
  }
}

TEST(CmsInterop, DetachedContentComesInPieces) {
  for (const bool attributes : {false, true}) {
    for (const size_t piece : {1, 700, 5000}) {
      const Certificate cert = first_party().certificate();
      const Cms cms = cms_of(CMS_TYPE_SIGNED_DATA);
      CMS_SIGNER_INFO *signer = add_CMS_Signature(cms, cert, 0, first_party().key(), 672, PKV_RSA_PKCS1, nullptr);
      ASSERT_NE(signer, nullptr);
      add_CMS_Certificate(cms, cert);
      const uint8_t octet = 7;
      if (attributes) add_CMS_Signed_Attribute(signer, 52, TYPE_OCTET_STRING, &octet, 1);
      ASSERT_EQ(init_CMS_Sign(cms, 1), 0);
      for (size_t at = 0; at < document().size(); at += piece) {
        const size_t length = std::min(piece, document().size() - at);
        ASSERT_EQ(update_CMS_Sign(cms, document().data() + at, int(length)), 0);
      }
      ASSERT_EQ(final_CMS_Sign(cms), 0);
      EXPECT_EQ(verify_strict(sent(cms), &document()), 0);
    }
  }
}

TEST(CmsInterop, WhatOpensslSignsIsVerifiedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("theirs");
  const std::string first = first_party().as_signer(), second = second_party().as_signer(),
                    curve = curve_party().as_signer();
  struct Case {
    std::string options;
    bool detached, plain;  // whether verify_CMS can, too
  };
  std::vector<Case> cases;
  for (const std::string &signers : {first, first + second})
    for (const char *digest : {"sha1", "sha256", "sha512"})
      for (const char *options : {"", " -nodetach", " -nodetach -noattr", " -nodetach -keyid", " -nodetach -stream"}) {
        cases.push_back({signers + " -md " + digest + options, std::string(options).empty(), true});
      }
  for (const char *salt : {"digest", "max", "20"}) {
    cases.push_back({first + " -nodetach -keyopt rsa_padding_mode:pss -keyopt rsa_pss_saltlen:" + salt, false, true});
  }
  cases.push_back({curve + " -nodetach", false, false});
  cases.push_back({curve + " -md sha384", true, false});
  for (const Case &c : cases) {
    for (const char *form : {"DER", "PEM"}) {
      SCOPED_TRACE(c.options + form);
      ASSERT_EQ(status_of("openssl cms -sign -binary -in " + document_path() + " -out " + path + c.options +
                          " -outform " + form),
                0);
      const Cms cms = read_cms(read_file(path));
      ASSERT_NE(cms, nullptr);
      const Bytes *data = c.detached ? &document() : nullptr;
      EXPECT_EQ(verify_strict(cms, data), 0);
      if (c.plain) EXPECT_EQ(verify(cms, data), 0);
      if (!c.detached) EXPECT_TRUE(content<CMS_SIGNED_DATA>(cms)->encapContentInfo->eContent->length == 5000);
    }
  }
  ASSERT_EQ(status_of("openssl cms -sign -binary -nocerts -nodetach -outform DER -in " + document_path() + " -out " +
                      path + first),
            0);
  const Cms cms = read_cms(read_file(path));
  const Certificate cert = first_party().certificate(), other = second_party().certificate();
  EXPECT_EQ(verify_strict(cms), F_VERIFY_CMS | ERR_NO_SIGNER_CERTIFICATE);
  EXPECT_EQ(verify_CMS_strict(cms, cert, nullptr, nullptr, 0, 0, nullptr, nullptr), 0);
  EXPECT_EQ(verify_CMS_strict(cms, other, nullptr, nullptr, 0, 0, nullptr, nullptr), F_VERIFY_CMS | 0x2B);
  EXPECT_EQ(verify_CMS(cms, other, nullptr, 0), 0);
}

TEST(CmsInterop, CertificatesOnlyAsOpensslWritesThem) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("certificates");
  const Certificate cert = first_party().certificate();
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  const Cms cms = cms_of(CMS_TYPE_SIGNED_DATA);
  ASSERT_TRUE(add_PKCS7_Certificate_ex(p7, cert) == 0 && add_CMS_Certificate(cms, cert) == 0);
  run("openssl crl2pkcs7 -nocrl -outform DER -certfile " + first_party().certificate_path + " -out " + path);
  for (const Bytes &ours : {written(p7), written(cms)}) EXPECT_EQ(to_hex(ours), to_hex(read_file(path)));
}

// Recipients of every kind: how a message is made for them here and by openssl, and what opens it.
struct RecipientCase {
  std::string name, encrypt, decrypt;  // options of openssl
  CMS_RECIPIENT_OPTIONS options;
  CMS_OPENER opener;
};
const Bytes kKek(32, 0x4B), kKekId = {1, 2, 3, 4};
constexpr const char *kPassword = "open sesame";

class CmsRecipients : public testing::Test {
 protected:
  Certificate rsa_cert = first_party().certificate(), curve_cert = curve_party().certificate();
  Owned<ASYMMETRIC_KEY> rsa_key = first_party().key(), curve_key = curve_party().key();

  std::vector<RecipientCase> cases() const {
    const Party &rsa = first_party();
    const CurveParty &curve = curve_party();
    const std::string rsa_out = " -recip " + rsa.certificate_path, curve_out = " -recip " + curve.certificate_path;
    const std::string rsa_in = rsa.as_recipient(), curve_in = curve.as_recipient();
    const std::string kek = " -secretkey " + to_hex(kKek) + " -secretkeyid " + to_hex(kKekId);
    const std::string password = " -pwri_password '" + std::string(kPassword) + "'";
    const CMS_OPENER by_rsa{.cert = rsa_cert, .key = rsa_key};
    const CMS_OPENER by_curve{.cert = curve_cert, .key = curve_key};
    const CMS_OPENER by_kek{.kek = kKek.data(), .kek_length = 32, .kek_id = kKekId.data(), .kek_id_length = 4};
    const auto *text = reinterpret_cast<const uint8_t *>(kPassword);
    const CMS_OPENER by_password{.password = text, .password_length = 11};
    // clang-format off
    return {
        {"rsa", rsa_out, rsa_in, {.kind = 0, .cert = rsa_cert}, by_rsa},
        {"rsa by key", " -keyid" + rsa_out, rsa_in, {.kind = 0, .cert = rsa_cert, .flags = 1}, by_rsa},
        {"oaep", rsa_out + " -keyopt rsa_padding_mode:oaep -keyopt rsa_oaep_md:sha256", rsa_in,
         {.kind = 0, .cert = rsa_cert, .padding = PKV_RSA_OAEP}, by_rsa},
        {"curve sha256", curve_out + " -keyopt ecdh_kdf_md:sha256 -aes256-wrap", curve_in,
         {.kind = 1, .cert = curve_cert, .flags = 2}, by_curve},
        {"curve sha1", curve_out + " -keyopt ecdh_kdf_md:sha1", curve_in,
         {.kind = 1, .cert = curve_cert, .flags = 2, .digest_id = PKV_DIGEST_SHA1, .cipher_id = 0x01000100}, by_curve},
        {"curve with cofactor", curve_out + " -keyopt ecdh_kdf_md:sha512 -keyopt ecdh_cofactor_mode:1 -des3-wrap",
         curve_in, {.kind = 1, .cert = curve_cert, .flags = 3, .digest_id = PKV_DIGEST_SHA512, .cipher_id = 0x02010200},
         by_curve},
        {"kek", kek, kek,
         {.kind = 2, .secret = kKek.data(), .secret_length = 32, .key_id = kKekId.data(), .key_id_length = 4}, by_kek},
        {"password", password, password,
         {.kind = 3, .secret = text, .secret_length = 11, .iterations = 2000}, by_password},
    };
    // clang-format on
  }
};

TEST_F(CmsRecipients, OpensslOpensWhatIsSealedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("sealed.der"), out = temporary_path("opened");
  for (const RecipientCase &c : cases()) {
    SCOPED_TRACE(c.name);
    const Cms cms = cms_of(CMS_TYPE_ENVELOPED_DATA);
    ASSERT_NE(add_CMS_Recipient_ex(cms, &c.options), nullptr);
    const auto cipher = algorithm(c.name == "curve with cofactor" ? 44 : 427);
    ASSERT_EQ(encrypt_CMS(cms, nullptr, cipher, document().data(), 5000, c.options.padding), 0);
    ASSERT_GT(writeDER_CMS_CONTENT_INFO_to_FILE(cms, path.c_str()), 0);
    EXPECT_EQ(status_of("openssl cms -decrypt -binary -inform DER -in " + path + " -out " + out + c.decrypt), 0);
    EXPECT_TRUE(read_file(out) == document());
    Bytes opened;
    EXPECT_EQ(open_strict(sent(cms), c.opener, opened), 0);
    EXPECT_TRUE(opened == document());
  }
}

TEST_F(CmsRecipients, WhatOpensslSealsIsOpenedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("sealed.theirs");
  std::vector<std::string> ciphers = {"aes128", "aes192", "aes256", "des3", "seed", "aria-128-cbc", "aria-256-cbc"};
  for (const RecipientCase &c : cases()) {
    for (const std::string &cipher : ciphers) {
      if (c.name == "curve with cofactor" && cipher == "aes128") continue;  // a triple DES wrap takes more than that
      for (const char *options : {" -outform DER", " -outform PEM -stream"}) {
        SCOPED_TRACE(c.name + " " + cipher + options);
        ASSERT_EQ(status_of("openssl cms -encrypt -binary -in " + document_path() + " -out " + path + " -" + cipher +
                            kProviders + options + c.encrypt),
                  0);
        const Cms cms = read_cms(read_file(path));
        ASSERT_NE(cms, nullptr);
        Bytes opened;
        EXPECT_EQ(open_strict(cms, c.opener, opened), 0);
        EXPECT_TRUE(opened == document());
        uint8_t key[64];
        int length = 64;
        EXPECT_EQ(decrypt_content_encryption_key_ex(cms, &c.opener, key, &length), 0);
        if (c.name == "rsa") {
          uint8_t plain[64];
          int plain_length = 0;
          EXPECT_EQ(decrypt_content_encryption_key(cms, rsa_cert, rsa_key, plain, &plain_length, 0), 0);
          EXPECT_TRUE(Bytes(key, key + length) == Bytes(plain, plain + plain_length));
        }
        int size = 0;
        opened.assign(6000, 0);
        EXPECT_EQ(decrypt_CMS(cms, key, nullptr, opened.data(), &size), 0);
        EXPECT_EQ(size, 5000);
      }
      if (c.name != "rsa") break;
    }
  }
}

// Several recipients of one message, those with other secrets first; each opens it, and a wrong key opens nothing.
TEST_F(CmsRecipients, OneMessageForAll) {
  const Cms cms = cms_of(CMS_TYPE_ENVELOPED_DATA);
  const Bytes other(16, 2);
  const CMS_RECIPIENT_OPTIONS others[] = {
      {.kind = 2, .secret = other.data(), .secret_length = 16, .key_id = other.data(), .key_id_length = 1},
      {.kind = 3, .secret = other.data(), .secret_length = 7, .iterations = 1000}};
  for (const CMS_RECIPIENT_OPTIONS &each : others) ASSERT_NE(add_CMS_Recipient_ex(cms, &each), nullptr);
  for (const RecipientCase &c : cases())
    if (c.options.padding == 0 && c.options.cipher_id != 0x02010200) {
      ASSERT_NE(add_CMS_Recipient_ex(cms, &c.options), nullptr);
    }
  const auto cipher = algorithm(419);
  ASSERT_EQ(encrypt_CMS(cms, nullptr, cipher, document().data(), 5000, 0), 0);
  const Cms back = sent(cms);
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(PKV_Get_BIGINT_Word(content<CMS_ENVELOPED_DATA>(back)->version), 3u);
  for (RecipientCase &c : cases()) {
    Bytes opened;
    c.opener.kek_id = nullptr;
    EXPECT_EQ(open_strict(back, c.opener, opened), 0) << c.name;
    EXPECT_TRUE(opened == document()) << c.name;
  }
  const Bytes wrong(32, 1);
  const CMS_OPENER openers[] = {{.kek = wrong.data(), .kek_length = 32},
                                {.password = wrong.data(), .password_length = 5}};
  for (const CMS_OPENER &opener : openers) {
    uint8_t key[32];
    int length = 32;
    EXPECT_EQ(decrypt_content_encryption_key_ex(back, &opener, key, &length), PKV_ERR_FAILED);
    Bytes opened;
    open_strict(back, opener, opened);
    EXPECT_FALSE(opened == document());
  }
}

}  // namespace
