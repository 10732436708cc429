// Messages between this library and the openssl command, both ways.
#include "parties.h"

using namespace test;

namespace {

struct SignCase {
  int digest_row, digest_id, padding;
  bool detached, attributes;
  int signers;
};
std::vector<SignCase> sign_cases() {
  std::vector<SignCase> cases;
  for (const auto &[row, id] : {std::pair(64, PKV_DIGEST_SHA1),
                                {675, PKV_DIGEST_SHA224},
                                {672, PKV_DIGEST_SHA256},
                                {673, PKV_DIGEST_SHA384},
                                {674, PKV_DIGEST_SHA512},
                                {4, PKV_DIGEST_MD5}}) {
    for (const int padding : {PKV_RSA_PKCS1, PKV_RSA_PSS}) {
      for (const int form : {0, 1, 2, 3})
        if (padding == PKV_RSA_PKCS1 || id != PKV_DIGEST_MD5)
          cases.push_back({row, id, padding, bool(form & 1), bool(form & 2), 1 + form % 2});
    }
  }
  return cases;
}

Message signed_by_us(const SignCase &c) {
  Message p7 = message_of(PKCS7_SIGNED_DATA);
  for (const Party *party : {&first_party(), &second_party()}) {
    if (party == &second_party() && c.signers == 1) break;
    const Certificate cert = party->certificate();
    P7_SIGNER_INFO *signer = add_PKCS7_Signature_ex(p7, cert, party->key(), c.digest_row, c.padding, nullptr);
    EXPECT_NE(signer, nullptr);
    EXPECT_EQ(add_PKCS7_Certificate(p7, cert), 0);
    if (c.attributes) add_attributes(signer, c.digest_id);
  }
  EXPECT_EQ(sign_PKCS7(p7, document().data(), int(document().size()), c.detached), 0);
  return p7;
}

TEST(Interop, OpensslVerifiesWhatIsSignedHere) {
  VELPKI_NEED_OPENSSL;
  for (const SignCase &c : sign_cases()) {
    const Message p7 = signed_by_us(c);
    const std::string path = temporary_path("signed.der"), out = temporary_path("verified");
    ASSERT_GT(writeDER_P7_CONTENT_INFO_to_FILE(p7, path.c_str()), 0);
    const std::string tool = c.padding == PKV_RSA_PSS ? "openssl cms" : "openssl smime";
    const int status = status_of(tool + " -verify -noverify -binary -inform DER -in " + path +
                                 (c.detached ? " -content " + document_path() : "") + " -out " + out);
    const std::string what = std::to_string(c.digest_row) + " padding " + std::to_string(c.padding) + " detached " +
                             std::to_string(c.detached) + " attributes " + std::to_string(c.attributes);
    EXPECT_EQ(status, 0) << what;
    EXPECT_TRUE(read_file(out) == document()) << what;
    const Message back = sent(p7);
    EXPECT_EQ(verify(back, c.detached ? &document() : nullptr), 0) << what;
    if (c.detached) {
      const Bytes other = damaged(document(), 77);
      EXPECT_NE(verify(back, &other), 0) << what;
      EXPECT_EQ(verify(back, nullptr), 1) << what;
    }
  }
}

TEST(Interop, WhatOpensslSignsIsVerifiedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("theirs");
  const std::string first = first_party().as_signer(), second = second_party().as_signer();
  const std::string in = " -sign -binary -in " + document_path() + " -out " + path;
  struct Case {
    std::string command, form;
    bool detached;
  };
  std::vector<Case> cases;
  for (const char *digest : {"md5", "sha1", "sha224", "sha256", "sha384", "sha512"})
    for (const char *options : {"", " -noattr", " -nodetach", " -nodetach -noattr"})
      for (const std::string &signers : {first, first + second}) {
        const bool detached = std::string(options).find("nodetach") == std::string::npos;
        cases.push_back({"openssl smime" + in + signers + " -md " + digest + options, "DER", detached});
      }
  cases.push_back({"openssl smime" + in + first + " -nodetach", "PEM", false});
  for (const char *salt : {"digest", "max", "20"})
    cases.push_back(
        {"openssl cms" + in + first + " -md sha256 -keyopt rsa_padding_mode:pss -keyopt rsa_pss_saltlen:" + salt, "DER",
         true});
  for (const Case &c : cases) {
    ASSERT_EQ(status_of(c.command + " -outform " + c.form), 0);
    const Message p7 =
        read_by(c.form == "DER" ? readDER_P7_CONTENT_INFO_from_File : readPEM_P7_CONTENT_INFO_from_File, path);
    ASSERT_TRUE(p7) << c.command;
    const Bytes other = damaged(document(), 4999);
    EXPECT_EQ(verify(p7, c.detached ? &document() : nullptr), 0) << c.command;
    EXPECT_EQ(static_cast<P7_SIGNED_DATA *>(p7->content)->detached, c.detached);
    if (c.detached) EXPECT_NE(verify(p7, &other), 0) << c.command;
    if (c.form == "DER") EXPECT_TRUE(written(p7) == read_file(path)) << c.command;
  }
}

// The content as the recipient finds it; empty when anything fails.
Bytes opened(const Message &p7, const Party &party, int padding) {
  uint8_t key[32];
  int key_length = 0, length = 0;
  const Certificate cert = party.certificate();
  if (decrypt_PKCS7_enveloped_CEK(p7, cert, party.key(), key, &key_length, padding)) return {};
  Bytes out(size_t(get_PKCS7_ENCRYPTED_CONTENT_length(p7)));
  if (decrypt_PKCS7(p7, key, nullptr, out.data(), &length)) return {};
  out.resize(size_t(length));
  return out;
}

TEST(Interop, OpensslOpensWhatIsSealedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("sealed.der"), out = temporary_path("opened");
  for (const Row &row : table("cms_ciphers"))
    for (const int padding : {PKV_RSA_PKCS1_CRYPT, PKV_RSA_OAEP}) {
      const Message p7 = message_of(PKCS7_ENVELOPED_DATA);
      for (const Party *party : {&first_party(), &second_party()})
        ASSERT_NE(add_PKCS7_Recipient_withEncryptedAlgorithm(p7, party->certificate(), padding, nullptr), nullptr);
      ASSERT_EQ(encrypt_PKCS7(p7, nullptr, algorithm(number_in(row, "row"), row.at("oid")), document().data(),
                              int(document().size()), padding),
                0)
          << row.at("openssl");
      ASSERT_GT(writeDER_P7_CONTENT_INFO_to_FILE(p7, path.c_str()), 0);
      for (const Party *party : {&first_party(), &second_party()}) {
        EXPECT_EQ(status_of("openssl cms -decrypt -inform DER" + std::string(kProviders) + "-in " + path +
                            party->as_recipient() + " -out " + out),
                  0);
        EXPECT_TRUE(read_file(out) == document()) << row.at("openssl") << " " << padding;
        EXPECT_TRUE(opened(sent(p7), *party, padding) == document()) << row.at("openssl") << " " << padding;
      }
    }
}

TEST(Interop, WhatOpensslSealsIsOpenedHere) {
  VELPKI_NEED_OPENSSL;
  const std::string path = temporary_path("sealed.theirs");
  const auto check = [&](const std::string &command, int padding) {
    if (status_of(command)) return false;
    const Message p7 = read_message(read_file(path));
    EXPECT_TRUE(opened(p7, second_party(), padding) == document()) << command;
    return true;
  };
  const std::string in = " -encrypt -binary -outform DER -in " + document_path() + " -out " + path + kProviders;
  for (const Row &row : table("cms_ciphers"))
    EXPECT_TRUE(check("openssl smime" + in + "-" + row.at("openssl") + " " + first_party().certificate_path + " " +
                          second_party().certificate_path,
                      PKV_RSA_PKCS1_CRYPT) ||
                !row.at("oid").empty())
        << row.at("openssl");
  for (const char *options :
       {"", " -keyopt rsa_oaep_md:sha256", " -keyopt rsa_oaep_md:sha256 -keyopt rsa_mgf1_md:sha512"})
    EXPECT_TRUE(check("openssl cms" + in + "-aes128 -recip " + second_party().certificate_path +
                          " -keyopt rsa_padding_mode:oaep" + options,
                      PKV_RSA_OAEP));
}

// Streams: indefinite lengths, segments, at sizes around those of openssl's pieces.
TEST(Interop, StreamsAreReadWhole) {
  VELPKI_NEED_OPENSSL;
  const std::string in = temporary_path("stream.in"), out = temporary_path("stream.out");
  for (const size_t size : {size_t(1), size_t(4095), size_t(4096), size_t(4097), size_t(20000)}) {
    Bytes content(size);
    for (size_t i = 0; i < size; ++i) content[i] = uint8_t(i);
    write_file(in, content.data(), size);
    const std::string common = " -binary -stream -in " + in + " -out " + out + " -outform ";
    for (const std::string form : {"DER", "PEM"}) {
      ASSERT_EQ(status_of("openssl smime -sign -nodetach" + first_party().as_signer() + common + form), 0);
      const Message p7 = read_by(readBER_P7_CONTENT_INFO_from_File, out);
      ASSERT_TRUE(p7) << size << form;
      EXPECT_EQ(verify(p7), 0) << size << form;
      EXPECT_EQ(verify_strictly(p7, 0, &content), 0) << size << form;
      ASSERT_EQ(status_of("openssl smime -encrypt -aes128" + common + form + " " + second_party().certificate_path), 0);
      const Message sealed = read_by(readBER_P7_CONTENT_INFO_from_File, out);
      ASSERT_TRUE(sealed) << size << form;
      EXPECT_TRUE(opened(sealed, second_party(), 32) == content) << size << form;
    }
  }
}

}  // namespace
