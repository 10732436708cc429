// CMS: versions, identifiers, hostile messages, and flows whose allocations fail.
#include <cstring>

#include "cms_parties.h"
#include "cms_samples.h"

using namespace test;

namespace {

constexpr int kTypes[] = {21, 22, 23, 25, 26, 205};

TEST(Cms, VersionsByTypeAndAgainstTheOthers) {
  for (const int type : kTypes) {
    const Cms cms = cms_of(type);
    ASSERT_NE(cms, nullptr);
    for (const int asked : kTypes) {
      const int result = set_CMS_version(cms, 3, asked);
      EXPECT_EQ(result, asked == type && type != 21 ? 0 : F_SET_CMS_VERSION | 0x48) << type << " as " << asked;
    }
    EXPECT_EQ(set_CMS_version(cms, -1, type), F_SET_CMS_VERSION | (type == 21 ? 0x48 : type == 22 ? 0x2B : 0x28));
  }
  EXPECT_EQ(set_CMS_Type(cms_of(21), 24), F_SET_CMS_TYPE | 0x48);
  EXPECT_EQ(set_CMS_Type(nullptr, 22), F_SET_CMS_TYPE | 0x49);
  EXPECT_EQ(set_CMS_version(nullptr, 1, 22), F_SET_CMS_VERSION | 0x49);
}

TEST(Cms, SignerVersionsFollowTheIdentifier) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = first_party().certificate();
  const Cms cms = cms_of(CMS_TYPE_SIGNED_DATA);
  CMS_SIGNER_INFO *plain = add_CMS_Signature(cms, cert, 0, nullptr, 672, 1, nullptr);
  const auto *data = content<CMS_SIGNED_DATA>(cms);
  EXPECT_EQ(PKV_Get_BIGINT_Word(data->version), 1u);
  CMS_SIGNER_INFO *by_key = add_CMS_Signature(cms, cert, 1, nullptr, 672, 1, nullptr);
  ASSERT_TRUE(plain && by_key);
  EXPECT_EQ(PKV_Get_BIGINT_Word(plain->version), 1u);
  EXPECT_EQ(PKV_Get_BIGINT_Word(by_key->version), 3u);
  EXPECT_EQ(PKV_Get_BIGINT_Word(data->version), 3u);
  EXPECT_EQ(set_CMS_version(cms, 2, 22), F_SET_CMS_VERSION | 0x2B);
  EXPECT_EQ(set_CMS_version(cms, 3, 22), 0);
  EXPECT_EQ(PKV_Get_BIGINT_Word(plain->version), 3u);
  EXPECT_EQ(set_CMS_SIGNER_INFO(plain, cert, 0, nullptr, 672, 3, nullptr), F_SET_CMS_SIGNER_INFO | 0x48);
  EXPECT_EQ(add_CMS_SignerInfo(cms, plain), F_ADD_CMS_SIGNER | 0x2B);
  EXPECT_EQ(data->digestAlgorithms->count, 2);
}

TEST(Cms, RecipientVersionsAndIdentifiers) {
  VELPKI_NEED_OPENSSL;
  const Certificate rsa = first_party().certificate(), curve = curve_party().certificate();
  const Cms cms = cms_of(CMS_TYPE_ENVELOPED_DATA);
  const auto *data = content<CMS_ENVELOPED_DATA>(cms);
  const auto *by_serial = static_cast<KEY_TRANS_RECIPIENT_INFO *>(add_CMS_Recipient(cms, rsa, 32, nullptr, 0)->info);
  EXPECT_EQ(PKV_Get_BIGINT_Word(by_serial->version), 0u);
  EXPECT_EQ(PKV_Get_BIGINT_Word(data->version), 0u);
  const auto *by_key = static_cast<KEY_TRANS_RECIPIENT_INFO *>(add_CMS_Recipient(cms, rsa, 8, nullptr, 1)->info);
  EXPECT_EQ(PKV_Get_BIGINT_Word(by_key->version), 2u);
  EXPECT_EQ(PKV_Get_BIGINT_Word(data->version), 2u);
  EXPECT_EQ(index_from_OBJECT_IDENTIFIER(by_key->keyEncryptionAlgorithm->algorithm), 832);
  for (const auto &[flags, originator, recipient] :
       {std::tuple(16, 0, 0), {17, 1, 1}, {18, 2, 0}, {19, 2, 1}, {48, 0, 0}}) {
    const CMS_RECIPIENT_INFO *made = add_CMS_Recipient(cms, curve, 0, nullptr, flags);
    ASSERT_NE(made, nullptr);
    const auto *info = static_cast<KEY_AGREE_RECIPIENT_INFO *>(made->info);
    EXPECT_EQ(PKV_Get_BIGINT_Word(info->version), 3u);
    EXPECT_EQ(info->originator->type, originator);
    EXPECT_EQ(item<RECIPIENT_ENCRYPTED_KEY>(info->recipientEncryptedKeys, 0)->rid->type, recipient);
    CMS_RECIPIENT_INFO *changeable = const_cast<CMS_RECIPIENT_INFO *>(made);
    const int result = encrypt_CMS_RecipientInfo(changeable, document().data(), 16, 0);
    EXPECT_EQ(result, originator == 2 ? 0 : F_ENCRYPT_CMS_RECIPIENTINFO | 0x48);
    EXPECT_EQ(info->originator->type, originator);
  }
  EXPECT_EQ(add_CMS_Recipient(cms, curve, 0, nullptr, 32)->kind, CMS_RECIPIENT_KEK);
  EXPECT_EQ(add_CMS_Recipient(cms, curve, 0, nullptr, 0), nullptr);
  EXPECT_EQ(set_CMS_version(cms, 5, 23), 0);
  EXPECT_EQ(PKV_Get_BIGINT_Word(by_key->version), 5u);
}

// Subject key identifiers as text in the plain functions, and as they are in the strict ones.
TEST(Cms, SubjectKeyIdentifierComparison) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = first_party().certificate();
  Owned<OCTET_STRING> own;
  ASSERT_EQ(set_CMS_SubjectKeyIdentifier(&own, cert), 0);
  const Bytes whole(own->data, own->data + own->length);
  struct Case {
    Bytes identifier;
    bool plain, strict;
  };
  const bool has_zero = std::find(whole.begin(), whole.end(), 0) != whole.end();  // where text ends
  const Bytes longer = whole + Bytes{7}, prefix(whole.begin(), whole.end() - 1), other(20, 0x7E);
  for (const Case &c : {Case{whole, true, true},
                        {prefix, true, false},
                        {{}, true, false},
                        {longer, has_zero, false},
                        {whole + Bytes{0}, true, false},
                        {other, false, false}}) {
    const Cms cms = cms_of(CMS_TYPE_SIGNED_DATA);
    CMS_SIGNER_INFO *signer = add_CMS_Signature(cms, cert, 1, first_party().key(), 672, 1, nullptr);
    ASSERT_NE(signer, nullptr);
    add_CMS_Certificate(cms, cert);
    ASSERT_EQ(sign_CMS(cms, document().data(), 5000, 0), 0);
    ASSERT_EQ(set_ASN1_STRING_value(signer->sid->subjectKeyIdentifier, TYPE_OCTET_STRING, c.identifier.data(),
                                    int(c.identifier.size())),
              0);
    EXPECT_EQ(verify(cms), c.plain ? 0 : 1) << to_hex(c.identifier);
    EXPECT_EQ(verify_strict(cms) == 0, c.strict) << to_hex(c.identifier);
  }
}

// What the plain function lets pass and the strict one does not.
TEST(Cms, StrictRefusesWhatPlainLetsPass) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = first_party().certificate(), other = second_party().certificate();
  const Cms empty = cms_of(CMS_TYPE_SIGNED_DATA);
  auto *content_info = new_ENCAPSULATED_CONTENT_INFO();
  ASSERT_EQ(set_ENCAPSULATED_CONTENT_INFO(content_info, 21, document().data(), 10), 0);
  ASSERT_EQ(set_Content_Info(empty, content_info), 0);
  EXPECT_EQ(verify_CMS(empty, cert, nullptr, 0), 0);
  EXPECT_EQ(verify_strict(empty), F_VERIFY_CMS | 0x2B);
  // Content of another type is bound by attributes, which are made without being asked for.
  const Cms typed = cms_of(CMS_TYPE_SIGNED_DATA);
  auto *typed_info = new_ENCAPSULATED_CONTENT_INFO();
  ASSERT_EQ(set_ENCAPSULATED_CONTENT_INFO(typed_info, 22, document().data(), 10), 0);
  ASSERT_EQ(set_Content_Info(typed, typed_info), 0);
  CMS_SIGNER_INFO *signer = add_CMS_Signature(typed, cert, 0, first_party().key(), 672, 1, nullptr);
  add_CMS_Certificate(typed, cert);
  ASSERT_EQ(sign_CMS(typed, nullptr, 0, 0), 0);
  EXPECT_EQ(signer->signedAttrs->count, 2);
  EXPECT_EQ(PKV_Get_BIGINT_Word(content<CMS_SIGNED_DATA>(typed)->version), 3u);
  EXPECT_EQ(verify_strict(sent(typed)), 0);
  EXPECT_EQ(verify_CMS(typed, other, nullptr, 0), 0);
  EXPECT_EQ(verify_CMS_strict(typed, other, nullptr, nullptr, 0, 0, nullptr, nullptr), F_VERIFY_CMS | 0x2B);
  // The same signature over the same octets under another content type.
  const Cms renamed = sent(typed);
  OBJECT_IDENTIFIER *&type = content<CMS_SIGNED_DATA>(renamed)->encapContentInfo->eContentType;
  free_OBJECT_IDENTIFIER(type);
  type = index_to_OBJECT_IDENTIFIER(23);
  EXPECT_EQ(verify(renamed), 0);
  EXPECT_EQ(verify_strict(renamed), F_VERIFY_CMS | ERR_CONTENT_TYPE_MISMATCH);
  // Attributes taken away and offered as the content.
  const Cms stripped = sent(typed);
  auto *data = content<CMS_SIGNED_DATA>(stripped);
  auto *victim = item<CMS_SIGNER_INFO>(data->signerInfos, 0);
  Bytes set = hex(hex_of(X509_ATTRIBUTES_to_Seq, victim->signedAttrs));
  set[0] = 0x31;
  auto *forged = new_CMS_SIGNER_INFO();
  std::swap(forged->version, victim->version), std::swap(forged->sid, victim->sid);
  std::swap(forged->digestAlgorithm, victim->digestAlgorithm);
  std::swap(forged->signatureAlgorithm, victim->signatureAlgorithm), std::swap(forged->signature, victim->signature);
  std::swap(*forged, *victim);
  free_CMS_SIGNER_INFO(forged);
  free_OBJECT_IDENTIFIER(data->encapContentInfo->eContentType);
  data->encapContentInfo->eContentType = index_to_OBJECT_IDENTIFIER(21);
  ASSERT_EQ(set_ASN1_STRING_value(data->encapContentInfo->eContent, TYPE_OCTET_STRING, set.data(), int(set.size())), 0);
  EXPECT_EQ(verify(stripped), 0);
  EXPECT_EQ(verify_strict(stripped), F_VERIFY_CMS | ERR_AMBIGUOUS_CONTENT);
}

// The attributes that are verified are those that were decoded, however the signer is named and whatever is repeated,
// which house form takes.
TEST(Cms, StrictVerifiesTheAttributesThatWereDecoded) {
  CmsParts parts;
  parts.certificate.tail = TLV(0xA3, TLV(0x30, extension("551d0e", TLV(0x04, "0102030405060708"))));
  const Bytes content_type = parts.attributes, name = parts.key_id,
              constructed = TLV(0xA0, TLV(0x04, "0102030405060708"));
  const Bytes all = content_type + TLV(0x30, TLV(0x06, "2a864886f70d010904") +
                                                 TLV(0x31, TLV(0x04, digest(PKV_DIGEST_SHA256, hex("68656c6c6f")))));
  const Bytes sha256 = parts.sha256;
  struct Case {
    Bytes name, before, attributes;
    int code;
  };
  for (const Case &c : {Case{name, {}, all, 0x5E},
                        {constructed, {}, all, 0x5E},
                        {name, TLV(0xA0, all), content_type, F_VERIFY_CMS | ERR_ATTRIBUTE_MISSING},
                        {name + name, {}, all, F_VERIFY_CMS | ERR_ASN1_DECODING}}) {
    parts.key_id = c.name, parts.sha256 = sha256 + c.before, parts.attributes = c.attributes;
    const Bytes data = TLV(0x30, TLV(0x02, "03") + TLV(0x31, Bytes()) + parts.encapsulated +
                                     TLV(0xA0, parts.certificate.der()) + TLV(0x31, parts.cms_signer()));
    const Cms cms(read_by(readDER_CMS_CONTENT_INFO_from_Binary, content_info(2, data)));
    ASSERT_TRUE(cms) << to_hex(c.name);
    EXPECT_EQ(verify_strict(cms), c.code) << to_hex(c.name);
  }
}

TEST(Cms, AuthenticatedDataWithAndWithoutAttributes) {
  const Bytes key(32, 0x31), id = {9};
  const CMS_RECIPIENT_OPTIONS options{
      .kind = 2, .secret = key.data(), .secret_length = 32, .key_id = id.data(), .key_id_length = 1};
  const CMS_OPENER opener{.kek = key.data(), .kek_length = 32};
  const Bytes wrong_key(32, 0x32);
  const CMS_OPENER wrong{.kek = wrong_key.data(), .kek_length = 32};
  for (const int digest : {PKV_DIGEST_SHA256, PKV_DIGEST_SHA384, PKV_DIGEST_SHA512}) {
    for (const int form : {0, 1, 2, 3}) {
      const Cms cms = cms_of(CMS_TYPE_AUTHENTICATED_DATA);
      ASSERT_NE(add_CMS_Recipient_ex(cms, &options), nullptr);
      if (form & 1) ASSERT_EQ(add_CMS_Authenticated_Attribute(cms, 52, TYPE_INTEGER, hex("80").data(), 1), 0);
      ASSERT_EQ(authenticate_CMS(cms, digest, PKV_DIGEST_SHA256, document().data(), 5000, form & 2, 0), 0);
      const Cms back = sent(cms);
      ASSERT_NE(back, nullptr);
      const uint8_t *data = form & 2 ? document().data() : nullptr;
      EXPECT_EQ(verify_authenticated_CMS(back, &opener, data, data ? 5000 : 0), 0);
      EXPECT_EQ(verify_authenticated_CMS(back, &wrong, data, data ? 5000 : 0), F_VERIFY_CMS | 0x5E);
      EXPECT_EQ(verify_authenticated_CMS(back, &opener, document().data(), 4999),
                F_VERIFY_CMS | (form & 2 ? 0x5E : ERR_CONTENT_MISMATCH));
      if (form & 2) EXPECT_EQ(verify_authenticated_CMS(back, &opener, nullptr, 0), F_VERIFY_CMS | ERR_NO_CONTENT);
      ASSERT_EQ(authenticate_CMS(cms, digest, PKV_DIGEST_SHA1, document().data(), 5000, 0, 0), 0);
      EXPECT_EQ(verify_authenticated_CMS(cms, &opener, nullptr, 0), form & 1 ? F_VERIFY_CMS | ERR_WEAK_DIGEST : 0);
    }
  }
}

// An enveloped message under a key-encryption key, of which one piece is replaced.
struct Sealed {
  Bytes key = Bytes(16, 0x21), wrapped, iv = TLV(0x04, Bytes(16, 0)), cipher = TLV(0x06, "608648016503040102");
  Bytes content = Bytes(16, 0xA5);
  explicit Sealed(size_t key_length = 16) : wrapped(64) {
    int length = 64;
    const Bytes secret(key_length, 0x5A);
    PKV_Wrap_KEY(0x01000100, key.data(), 16, secret.data(), int(secret.size()), wrapped.data(), &length);
    wrapped.resize(size_t(length));
  }
  Cms message(int *code = nullptr) const {
    const Bytes recipient =
        TLV(0xA2, TLV(0x02, "04") + TLV(0x30, "040109") + TLV(0x30, "0609608648016503040105") + TLV(0x04, wrapped));
    const Bytes info = TLV(0x30, TLV(0x06, "2a864886f70d010701") + TLV(0x30, cipher + iv) + TLV(0x80, content));
    const Bytes data = TLV(0x30, TLV(0x02, "02") + TLV(0x31, recipient) + info);
    return read_cms(TLV(0x30, TLV(0x06, "2a864886f70d010703") + TLV(0xA0, data)), code);
  }
  CMS_OPENER opener() const { return {.kek = key.data(), .kek_length = 16}; }
};

TEST(Cms, WrappedKeysAndIvsOfOtherLengths) {
  uint8_t key[64];
  for (const size_t length : {16, 24, 32}) {
    const Sealed sealed(length);
    const CMS_OPENER opener = sealed.opener();
    int room = 16;
    EXPECT_EQ(decrypt_content_encryption_key_ex(sealed.message(), &opener, key, &room),
              length == 16 ? 0 : PKV_ERR_FAILED);
    room = 15;
    EXPECT_EQ(decrypt_content_encryption_key_ex(sealed.message(), &opener, key, &room),
              F_DECRYPT_CONTENT_ENCRYPTION_KEY | 0x2B);
  }
  for (const size_t length : {0, 8, 16, 23, 25, 80}) {
    Sealed sealed;
    sealed.wrapped = Bytes(length, 1);
    const CMS_OPENER opener = sealed.opener();
    int room = 64;
    EXPECT_EQ(decrypt_content_encryption_key_ex(sealed.message(), &opener, key, &room), PKV_ERR_FAILED) << length;
  }
  const auto code_with = [](auto change) {
    Sealed sealed;
    change(sealed);
    Bytes out;
    return open_strict(sealed.message(), sealed.opener(), out);
  };
  for (const size_t length : {0, 1, 8, 15, 17, 50})
    EXPECT_EQ(code_with([&](Sealed &s) { s.iv = TLV(0x04, Bytes(length, 0)); }), F_DECRYPT_CMS | 0x2B) << length;
  for (const size_t length : {0, 1, 15, 17})
    EXPECT_NE(code_with([&](Sealed &s) { s.content = Bytes(length, 1); }), 0) << length;
  for (const char *oid : {"2a864886f70d010101", "608648016503040201", "2a0304"})
    EXPECT_EQ(code_with([&](Sealed &s) { s.cipher = TLV(0x06, oid); }), F_DECRYPT_CMS | 0x48) << oid;
}

TEST(Cms, ThousandsOfRecipientsAndNestedContents) {
  const CmsParts parts;
  Bytes recipients, signers;
  const Bytes recipient = parts.kek(), signer = parts.cms_signer();
  for (int i = 0; i < 5000; ++i) {
    recipients.insert(recipients.end(), recipient.begin(), recipient.end());
    signers.insert(signers.end(), signer.begin(), signer.end());
  }
  const Bytes enveloped = TLV(0x30, TLV(0x02, "02") + TLV(0x31, recipients) + parts.encrypted);
  int code = 0;
  const Cms many = read_cms(TLV(0x30, TLV(0x06, "2a864886f70d010703") + TLV(0xA0, enveloped)), &code);
  ASSERT_NE(many, nullptr) << std::hex << code;
  EXPECT_EQ(content<CMS_ENVELOPED_DATA>(many)->recipientInfos->count, 5000);
  const Bytes data = TLV(0x30, TLV(0x02, "03") + TLV(0x31, parts.sha256) + parts.encapsulated +
                                   TLV(0xA0, parts.certificate.der()) + TLV(0x31, signers));
  const Cms signed_by_many = read_cms(TLV(0x30, TLV(0x06, "2a864886f70d010702") + TLV(0xA0, data)));
  ASSERT_NE(signed_by_many, nullptr);
  EXPECT_NE(verify_strict(signed_by_many), 0);
  EXPECT_NE(verify(signed_by_many), 0);
  for (const char *content : {"a0020500", "a0023000", "a003020101", "a000", "a00a3008020100310031003000"}) {
    for (const uint8_t type : {2, 3, 5, 6}) {
      read_cms(TLV(0x30, TLV(0x06, hex("2a864886f70d0107") + Bytes{type}) + hex(content)), &code);
      EXPECT_NE(code, 0) << int(type) << " " << content;
    }
  }
}

// Every allocation of whole flows fails once; nothing leaks, and the flow ends with a code.
TEST(Cms, FlowsSurviveEachFailedAllocation) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = first_party().certificate(), curve = curve_party().certificate();
  const Owned<ASYMMETRIC_KEY> key = first_party().key(), curve_key = curve_party().key();
  const auto aes = algorithm(419);
  const Bytes kek(16, 2);
  const CMS_RECIPIENT_OPTIONS recipients[] = {
      {.kind = 0, .cert = cert, .flags = 1},
      {.kind = 1, .cert = curve, .flags = 2},
      {.kind = 2, .secret = kek.data(), .secret_length = 16, .key_id = kek.data(), .key_id_length = 2},
      {.kind = 3, .secret = kek.data(), .secret_length = 16, .iterations = 1}};
  const CMS_OPENER openers[] = {{.cert = cert, .key = key},
                                {.cert = curve, .key = curve_key},
                                {.kek = kek.data(), .kek_length = 16},
                                {.password = kek.data(), .password_length = 16}};
  const auto sign = [&]() -> int {
    const Cms cms = cms_of(CMS_TYPE_SIGNED_DATA);
    if (!cms || !add_CMS_Signature_ex(cms, cert, 1, key, 672, 2, nullptr)) return 0x3C;
    if (add_CMS_Certificate(cms, cert)) return 0x3C;
    auto *signer = item<CMS_SIGNER_INFO>(content<CMS_SIGNED_DATA>(cms)->signerInfos, 0);
    if (add_CMS_Signed_Attribute(signer, 52, TYPE_OCTET_STRING, kek.data(), 3)) return 0x3C;
    if (const int code = sign_CMS(cms, kek.data(), 16, 1)) return code;
    const Cms back = sent(cms);
    return back ? verify_strict(back, &kek, 0) : 0x3C;
  };
  const auto seal = [&]() -> int {
    const Cms cms = cms_of(CMS_TYPE_ENVELOPED_DATA);
    for (const CMS_RECIPIENT_OPTIONS &each : recipients)
      if (!cms || !add_CMS_Recipient_ex(cms, &each)) return 0x3C;
    if (const int code = encrypt_CMS(cms, nullptr, aes, kek.data(), 16, 0)) return code;
    for (const CMS_OPENER &each : openers) {
      uint8_t out[32];
      int length = 32;
      if (const int code = decrypt_CMS_strict(cms, &each, out, &length)) return code;
      if (length != 16 || std::memcmp(out, kek.data(), 16) != 0) return 0x3C;
    }
    return 0;
  };
  for (const auto &flow : {std::function<int()>(sign), std::function<int()>(seal)}) {
    ASSERT_EQ(flow(), 0);
    survive_each_failed_allocation([&] { return flow() == 0; });
  }
}

}  // namespace
