// Messages made to hurt: very many parts, deep nesting, content of the wrong type, missing members, signatures and
// ciphertexts of odd lengths. Each gives a code, in time.
#include "cms_parties.h"
#include "cms_samples.h"

using namespace test;

namespace {

Bytes many(const Bytes &element, int count, uint8_t identifier = 0x31) {
  Bytes all;
  all.reserve(element.size() * size_t(count));
  for (int i = 0; i < count; ++i) all.insert(all.end(), element.begin(), element.end());
  return TLV(identifier, all);
}

int code_of(const Bytes &der) {
  int code = 0;
  read_message(der, &code);
  return code;
}

}  // namespace

TEST(Hostile, VeryManyParts) {
  const MessageParts parts;
  const Bytes version = TLV(0x02, "01"), start = version + TLV(0x31, parts.sha256) + parts.data;
  const Bytes attributes = many(parts.attributes, 100000, 0xA0);
  const Bytes signer = TLV(
      0x30, version + parts.issuer_and_serial + parts.sha256 + attributes + parts.rsa + TLV(0x04, Bytes(5000, 0x5A)));
  for (const Bytes &signers : {many(parts.signer(), 20000), TLV(0x31, signer)}) {
    const Message p7 = read_message(content_info(2, TLV(0x30, start + TLV(0xA0, parts.certificate.der()) + signers)));
    ASSERT_TRUE(p7);
    EXPECT_TRUE(verify(p7) && verify_strictly(p7));
  }
  EXPECT_EQ(code_of(content_info(3, TLV(0x30, TLV(0x02, "00") + many(parts.recipient(), 50000) + parts.encrypted))), 0);
  EXPECT_EQ(code_of(content_info(2, TLV(0x30, start + many(parts.certificate.der(), 5000, 0xA0) + TLV(0x31, Bytes())))),
            0);
}

// Signers, in turn by number and by key, and the certificates in another order; a number and an issuer are those of
// two.
TEST(Hostile, VeryManySignersAndCertificates) {
  constexpr int kMany = 120;
  CmsParts parts;
  const auto message = [&](bool by_key) {
    Bytes certificates, signers;
    for (uint8_t i = 0; i < kMany; ++i) {
      parts.key_id = TLV(0x80, Bytes{i});
      parts.certificate.serial = TLV(0x02, Bytes{uint8_t(i / 2)});
      parts.certificate.issuer[parts.certificate.issuer.size() - 1] = uint8_t('a' + i % 2);
      parts.certificate.tail = TLV(0xA3, TLV(0x30, extension("551d0e", TLV(0x04, Bytes{i}))));
      parts.issuer_and_serial = TLV(0x30, parts.certificate.issuer + parts.certificate.serial);
      certificates = certificates + parts.certificate.der();
      signers = (by_key && i % 2 ? parts.cms_signer() : parts.signer()) + signers;
    }
    return content_info(2, TLV(0x30, TLV(0x02, "03") + TLV(0x31, parts.sha256) + parts.data + TLV(0xA0, certificates) +
                                         TLV(0x31, signers)));
  };
  const Cms cms = read_cms(message(true));
  const Message p7 = read_message(message(false));
  ASSERT_TRUE(cms && p7);
  STACK *certificates = content<CMS_SIGNED_DATA>(cms)->certificates,
        *others = static_cast<P7_SIGNED_DATA *>(p7->content)->certificates;
  CMS_SIGNER_REPORT reports[kMany];
  int count = kMany;
  EXPECT_NE(verify_CMS_strict(cms, nullptr, nullptr, nullptr, 0, 0, reports, &count), 0);
  ASSERT_EQ(count, kMany);
  for (int i = 0; i < kMany; ++i) EXPECT_EQ(reports[i].certificate, item<X509_CERT>(certificates, kMany - 1 - i)) << i;
  EXPECT_TRUE(verify(cms) != 1 && verify(p7) != 1) << "a signature that is none";
  for (STACK *list : {certificates, others}) free_X509_CERT(static_cast<X509_CERT *>(pop_STACK_value(list)));
  EXPECT_TRUE(verify(cms) == 1 && verify(p7) == 1) << "the certificate of the first signer is gone";
}

TEST(Hostile, Nesting) {
  const MessageParts parts;
  Bytes inner = parts.data;
  for (int level = 1; level < 40; ++level) {
    inner = content_info(2, TLV(0x30, TLV(0x02, "01") + TLV(0x31, Bytes()) + inner + TLV(0x31, Bytes())));
    int code = 0;
    const Message p7 = read_message(inner, &code);
    EXPECT_TRUE(level > 20 || code == 0) << level;
    EXPECT_TRUE(level < 22 || code != 0) << level;
    if (p7) EXPECT_EQ(verify_PKCS7(p7, nullptr, nullptr, 0), 0);
  }
}

TEST(Hostile, WrongAndMissingMembers) {
  const MessageParts parts;
  for (Bytes der = content_info(1, TLV(0x04, "05")); const uint8_t outer : {0x30, 0x31, 0xA0}) {
    der[0] = outer;
    Message p7;
    Cms cms;
    const int as_p7 = readBER_P7_CONTENT_INFO_from_Binary(&p7, der.data(), int(der.size())),
              as_cms = readBER_CMS_CONTENT_INFO_from_Binary(&cms, der.data(), int(der.size()));
    EXPECT_EQ(as_p7, outer == 0x30 ? 0 : F_SEQ_TO_P7_CONTENT_INFO | ERR_ASN1_DECODING);
    EXPECT_EQ(as_cms, outer == 0x30 ? 0 : F_SEQ_TO_CMS_CONTENT_INFO | ERR_ASN1_DECODING);
  }
  const Bytes integer = TLV(0x02, "05"), sequence = TLV(0x30, integer);
  for (uint8_t type = 1; type <= 6; ++type) {
    for (const Bytes &content : {integer, sequence, TLV(0x30, Bytes()), TLV(0x05, Bytes())}) {
      if (type == 1 && content[0] != 0x04) EXPECT_NE(code_of(content_info(type, content)), 0) << int(type);
      if (type > 1) EXPECT_NE(code_of(content_info(type, content)), 0) << int(type);
    }
    const Message p7 = read_message(content_info(type, {}));
    ASSERT_TRUE(p7) << int(type);
    uint8_t out[16];
    int length = 0;
    EXPECT_EQ(verify_PKCS7(p7, nullptr, out, 1), F_P7_VERIFY | (type == 2 || type == 4 ? 0x49 : 0x48));
    EXPECT_EQ(decrypt_PKCS7(p7, out, nullptr, out, &length), 1);
    EXPECT_EQ(digest_PKCS7(p7, PKV_DIGEST_SHA1, out, 1), 1);
    EXPECT_NE(init_PKCS7_Sign(p7, 0), 0);
    EXPECT_NE(init_PKCS7_Encrypt(p7, nullptr, nullptr, 0, out, out, 0), 0);
    EXPECT_NE(update_PKCS7_encrypt(p7, out, 1, out, &length), 0);
  }
  EXPECT_EQ(code_of(content_info(7, integer)), F_SEQ_TO_P7_CONTENT_INFO | 0x48);
  for (const size_t size : {size_t(0), size_t(15), size_t(17), size_t(48)}) {
    const Bytes encrypted = TLV(0x30, TLV(0x06, "2a864886f70d010701") + parts.aes128 + TLV(0x80, Bytes(size, 0x11)));
    const Message p7 = read_message(content_info(6, TLV(0x30, TLV(0x02, "00") + encrypted)));
    ASSERT_TRUE(p7);
    uint8_t key[16] = {}, out[48];
    int length = 48;
    EXPECT_NE(decrypt_PKCS7_n(p7, key, nullptr, out, &length), 0) << size;
  }
}
