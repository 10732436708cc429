// Signing and verifying: steps, versions, codes, attributes that are wrong, and what only the strict form refuses.
#include "parties.h"
#include "support/json.h"

using namespace test;

namespace {

P7_SIGNER_INFO *add_signer(const Message &p7, const Party &party, int digest_row = 672, int padding = 1) {
  const Certificate cert = party.certificate();
  add_PKCS7_Certificate_ex(p7, cert);
  return add_PKCS7_Signature_withEncryptedAlgorithm(p7, cert, party.key(), digest_row, padding, nullptr);
}
int sign(const Message &p7, bool detached = false) {
  return sign_PKCS7(p7, document().data(), int(document().size()), detached);
}
std::string algorithm_of(const P7_SIGNER_INFO *signer) { return text_of(signer->digestEncryptionAlgorithm->algorithm); }

TEST(Sign, EachStepHasItsCodes) {
  VELPKI_NEED_OPENSSL;
  const Message data = message_of(PKCS7_DATA), p7 = message_of(PKCS7_SIGNED_DATA);
  EXPECT_EQ(init_PKCS7_Sign(nullptr, 0), F_P7_SIGN | 0x49);
  EXPECT_EQ(init_PKCS7_Sign(data, 0), F_P7_SIGN | 0x48);
  EXPECT_EQ(init_PKCS7_Sign(p7, 0), F_P7_SIGN | 0x2B);
  const Certificate cert = first_party().certificate();
  P7_SIGNER_INFO *signer = add_PKCS7_Signature(p7, cert, nullptr, 672);
  ASSERT_NE(signer, nullptr);
  EXPECT_EQ(init_PKCS7_Sign(p7, 0), F_P7_SIGN | 0x48);
  const Message unknown = message_of(PKCS7_SIGNED_DATA);
  add_PKCS7_Signature(unknown, cert, nullptr, 3);
  EXPECT_EQ(init_PKCS7_Sign(unknown, 0), F_P7_SIGN | 0x2B);
  EXPECT_EQ(final_PKCS7_Sign(p7), F_P7_SIGN | 0x48);
  add_attributes(signer, PKV_DIGEST_SHA256);
  EXPECT_EQ(final_PKCS7_Sign(p7), 0x1C0048);
  const Message keyed = message_of(PKCS7_SIGNED_DATA);
  add_signer(keyed, first_party());
  EXPECT_EQ(final_PKCS7_Sign(keyed), F_P7_SIGN | 0x49);
  EXPECT_EQ(update_PKCS7_Sign(keyed, nullptr, 1), F_P7_SIGN | 0x49);
  EXPECT_EQ(update_PKCS7_Sign(keyed, document().data(), -1), F_P7_SIGN | 0x2B);
  EXPECT_EQ(set_PKCS7_P7_SIGNER_INFO(signer, cert, nullptr, 672, 3, nullptr), F_SET_PKCS7_P7_SIGNER_INFO | 0x49);
  EXPECT_EQ(set_PKCS7_P7_SIGNER_INFO(signer, nullptr, nullptr, 672, 1, nullptr), F_SET_PKCS7_P7_SIGNER_INFO | 0x49);
  EXPECT_EQ(set_PKCS7_P7_SIGNER_INFO(signer, cert, nullptr, 9999, 1, nullptr), F_SET_PKCS7_P7_SIGNER_INFO | 0x48);
}

TEST(Sign, DigestsNameTheirAlgorithms) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = first_party().certificate();
  const std::pair<int, int> rows[] = {{3, 7},     {4, 8},     {41, 42},   {64, 65}, {257, 396}, {672, 668},
                                      {673, 669}, {674, 670}, {675, 671}, {781, 6}, {95, 6}};
  for (const auto &[digest, wanted] : rows)
    for (const int padding : {1, 2}) {
      const Owned<P7_SIGNER_INFO> signer(new_P7_SIGNER_INFO());
      ASSERT_EQ(set_PKCS7_P7_SIGNER_INFO(signer, cert, nullptr, digest, padding, nullptr), 0);
      EXPECT_EQ(index_from_OBJECT_IDENTIFIER(signer->digestEncryptionAlgorithm->algorithm),
                padding == 2 ? 835 : wanted);
      EXPECT_EQ(signer->digestEncryptionAlgorithm->parameters->type, TYPE_NULL);
      EXPECT_EQ(index_from_OBJECT_IDENTIFIER(signer->digestAlgorithm->algorithm), digest);
      EXPECT_EQ(PKV_Get_BIGINT_Word(signer->version), 1u);
    }
}

TEST(Sign, ASecondTimeAddsNothing) {
  VELPKI_NEED_OPENSSL;
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  add_signer(p7, first_party());
  ASSERT_EQ(sign(p7), 0);
  const Bytes once = written(p7);
  EXPECT_EQ(sign(p7), 0);
  EXPECT_EQ(final_PKCS7_Sign(p7), 0);
  EXPECT_TRUE(written(p7) == once);
}

TEST(Sign, VersionsAndAlgorithms) {
  VELPKI_NEED_OPENSSL;
  for (const Row &row : table("sign_versions")) {
    const int version = number_in(row, "version"), padding = number_in(row, "padding");
    const bool attributes = row.at("attributes") == "yes";
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    P7_SIGNER_INFO *signer = add_signer(p7, first_party(), 672, padding);
    if (attributes) add_attributes(signer, PKV_DIGEST_SHA256, version ? document() : Bytes{1});
    ASSERT_EQ(set_P7_version(p7, version), 0);
    ASSERT_EQ(sign(p7), 0);
    EXPECT_EQ(algorithm_of(signer), row.at("algorithm"));
    EXPECT_EQ(PKV_Get_BIGINT_Word(signer->version), unsigned(version));
    EXPECT_EQ(verify(sent(p7)) == 0, row.at("verifies") == "yes") << version << padding << attributes;
  }
}

TEST(Sign, DetachedContentComesInAnyPieces) {
  VELPKI_NEED_OPENSSL;
  for (const int pieces : {1, 2, 7}) {
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    add_signer(p7, first_party());
    ASSERT_EQ(init_PKCS7_Sign(p7, 1), 0);
    const int size = int(document().size());
    for (int i = 0, at = 0; i < pieces; ++i) {
      const int next = i + 1 == pieces ? size : size * (i + 1) / pieces;
      ASSERT_EQ(update_PKCS7_Sign(p7, document().data() + at, next - at), 0);
      at = next;
    }
    ASSERT_EQ(final_PKCS7_Sign(p7), 0);
    EXPECT_EQ(verify(sent(p7), &document()), 0);
    EXPECT_EQ(verify_strictly(sent(p7), 0, &document()), 0);
    const Bytes changed(document().begin(), document().end() - 1);
    EXPECT_EQ(verify(sent(p7), &changed), PKV_ERR_MISMATCH);
  }
}

// With attributes made here, and attached content in pieces.
TEST(Sign, FurtherForms) {
  VELPKI_NEED_OPENSSL;
  for (const bool detached : {false, true}) {
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    add_signer(p7, first_party());
    P7_SIGNER_INFO *second = add_signer(p7, second_party(), 674);
    const Bytes note = hex("3230");
    ASSERT_EQ(add_PKCS7_Signed_Attribute(second, 49, TYPE_PRINTABLE_STRING, note.data(), 2), 0);
    ASSERT_EQ(sign_PKCS7_ex(p7, document().data(), int(document().size()), detached, PKCS7_SIGN_ATTRIBUTES), 0);
    EXPECT_EQ(second->authenticatedAttributes->count, 3);
    const std::string path = temporary_path("complete.der"), out = temporary_path("complete.out");
    writeDER_P7_CONTENT_INFO_to_FILE(p7, path.c_str());
    EXPECT_EQ(status_of("openssl cms -verify -noverify -binary -inform DER -in " + path +
                        (detached ? " -content " + document_path() : "") + " -out " + out),
              0);
    EXPECT_EQ(verify_strictly(sent(p7), 0, detached ? &document() : nullptr), 0);
  }
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  add_signer(p7, first_party());
  ASSERT_EQ(init_PKCS7_Sign(p7, 0), 0);
  for (size_t at = 0; at < document().size(); at += 1000)
    ASSERT_EQ(update_PKCS7_Sign_ex(p7, document().data() + at, 1000), 0);
  ASSERT_EQ(update_PKCS7_Sign(p7, document().data(), 1000), 0) << "ignored";
  ASSERT_EQ(final_PKCS7_Sign(p7), 0);
  EXPECT_EQ(verify_strictly(sent(p7), 0, &document()), 0);
}

// Attributes out of order and a number with its top bit set: what is written, in either form and also when something
// beside them has changed since, is what was signed.
TEST(Sign, WhatWasSignedIsWritten) {
  VELPKI_NEED_OPENSSL;
  const auto in_standard_form = [](const Message &p7) {
    return octets_by(writeDER_P7_CONTENT_INFO_to_Binary_RFC5280, p7.get());
  };
  const auto received = [](const Bytes &octets) {
    return Message(read_by(readBER_P7_CONTENT_INFO_from_Binary, octets));
  };
  const auto signer_of = [](const Message &p7) {
    return item<P7_SIGNER_INFO>(static_cast<P7_SIGNED_DATA *>(p7->content)->signerInfos, 0);
  };
  for (const bool standard : {false, true}) {
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    P7_SIGNER_INFO *signer = add_signer(p7, first_party());
    add_attributes(signer, PKV_DIGEST_SHA256);
    ASSERT_EQ(add_PKCS7_Signed_Attribute(signer, 49, TYPE_INTEGER, hex("80").data(), 1), 0);
    ASSERT_EQ(sign(p7), 0);
    const Message back = received(standard ? in_standard_form(p7) : written(p7));
    ASSERT_EQ(verify_strictly(back), 0);
    signer = signer_of(back);
    ASSERT_EQ(add_PKCS7_Unauthenticated_Attribute(signer, 49, 26, hex("41").data(), 1), 0);
    ASSERT_EQ(set_P7_version(back, 4), 0);
    EXPECT_EQ(verify_strictly(back), 0);
    const Message again = received(in_standard_form(back));
    EXPECT_EQ(verify_strictly(again), 0);
    EXPECT_EQ(PKV_Get_BIGINT_Word(signer_of(again)->version), 4u);
    ASSERT_EQ(add_PKCS7_Signed_Attribute(signer, 49, TYPE_INTEGER, hex("01").data(), 1), 0);
    EXPECT_EQ(verify_strictly(back), PKV_ERR_MISMATCH);
  }
}

// What came while a signer had attributes was not fed to its signature.
TEST(Sign, AttributesThatGoAway) {
  VELPKI_NEED_OPENSSL;
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  P7_SIGNER_INFO *signer = add_signer(p7, first_party());
  add_attributes(signer, PKV_DIGEST_SHA256);
  ASSERT_EQ(init_PKCS7_Sign(p7, 1), 0);
  ASSERT_EQ(update_PKCS7_Sign(p7, document().data(), 1000), 0);
  free_X509_ATTRIBUTES(std::exchange(signer->authenticatedAttributes, nullptr));
  EXPECT_EQ(final_PKCS7_Sign(p7), F_P7_SIGN | 0x2B);
}

TEST(Sign, EmptyContent) {
  VELPKI_NEED_OPENSSL;
  for (const bool detached : {false, true}) {
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    add_signer(p7, first_party());
    ASSERT_EQ(sign_PKCS7(p7, document().data(), 0, detached), 0);
    const Message back = sent(p7);
    EXPECT_EQ(verify_PKCS7(back, nullptr, detached ? document().data() : nullptr, 0), 0);
  }
}

TEST(Sign, KcdsaRoundTrip) {
  VELPKI_NEED_KOREAN;
  for (const Json &one : korean("kcdsa_keys").items) {
    const Owned<KCDSA_UNIT> key(PKV_New_KCDSA());
    PKV_Set_KCDSA_Params(key, number(one["p"].text), number(one["q"].text), number(one["g"].text),
                         number(one["j"].text), nullptr, nullptr, 0, 0);
    ASSERT_EQ(PKV_Set_KCDSA_Private(key, number(one["x"].text)), 0);
    const Certificate cert = read_certificate(CertificateParts().der());
    const Owned<ASYMMETRIC_KEY> wrapped(KCDSA_UNIT_to_ASYMMETRIC_KEY(key));
    ASSERT_EQ(set_X509_pub_key(cert, public_half(wrapped)), 0);
    for (const auto &[row, id] : {std::pair(64, PKV_DIGEST_SHA1), {781, PKV_DIGEST_HAS160}})
      for (const bool attributes : {false, true}) {
        const Message p7 = message_of(PKCS7_SIGNED_DATA);
        P7_SIGNER_INFO *signer = add_PKCS7_Signature(p7, cert, wrapped, row);
        ASSERT_NE(signer, nullptr);
        add_PKCS7_Certificate_ex(p7, cert);
        if (attributes) add_attributes(signer, id);
        ASSERT_EQ(sign(p7), 0);
        EXPECT_EQ(algorithm_of(signer), "1.2.410.200004.1.21");
        EXPECT_EQ(verify(sent(p7)), 0);
        EXPECT_EQ(verify_strictly(sent(p7), PKCS7_ALLOW_WEAK_DIGESTS), 0);
        signer->encryptedDigest->data[1] ^= 1;
        EXPECT_EQ(verify(p7), F_P7_VERIFY | 0x0E);
        signer->encryptedDigest->data[1] ^= 1;
        signer->encryptedDigest->data[signer->encryptedDigest->length - 1] ^= 1;
        EXPECT_EQ(verify(p7), PKV_ERR_MISMATCH);
      }
  }
}

// A message digest attribute that is not what it should be, by what is done to its record before it is signed.
TEST(Verify, MessageDigestAttributes) {
  VELPKI_NEED_OPENSSL;
  Bytes whole = digest(PKV_DIGEST_SHA256, document());
  whole.resize(64);
  for (const Row &row : table("digest_attributes")) {
    const int kind = number_in(row, "type"), values = number_in(row, "values");
    Bytes value(whole.begin(), whole.begin() + number_in(row, "length"));
    if (kind == TYPE_SEQUENCE) value = TLV(0x04, Bytes(value.begin(), value.begin() + 30));
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    P7_SIGNER_INFO *signer = add_signer(p7, first_party());
    add_content_type(signer);
    for (int i = 0; i < number_in(row, "copies"); ++i)
      ASSERT_EQ(add_PKCS7_Signed_Attribute(signer, 51, kind, value.data(), int(value.size())), 0);
    auto *attribute = get_X509_ATTRIBUTES_child(signer->authenticatedAttributes, 1);
    if (values == 0) free_X509_ATTRIBUTE_DATA(static_cast<X509_ATTRIBUTE_DATA *>(pop_STACK_value(attribute->values)));
    if (values == 2) add_X509_ATTRIBUTE_data(attribute, TYPE_OCTET_STRING, string(TYPE_OCTET_STRING, value));
    ASSERT_EQ(sign(p7), 0);
    EXPECT_EQ(verify(sent(p7)), code_at(row, "plain")) << row.at("why");
    EXPECT_EQ(verify_strictly(sent(p7)), code_at(row, "strict")) << row.at("why");
  }
}

// Each of these passes the plain form.
TEST(Verify, WhatOnlyTheStrictFormRefuses) {
  VELPKI_NEED_OPENSSL;
  const Message none = message_of(PKCS7_SIGNED_DATA);
  EXPECT_EQ(verify(none), 0);
  EXPECT_EQ(verify_strictly(none), F_P7_VERIFY | 0x49);
  new_PKCS7_Content(none, PKCS7_DATA);
  EXPECT_EQ(verify_strictly(none), F_P7_VERIFY | 0x2B);

  const Message bare = message_of(PKCS7_SIGNED_DATA);
  const Certificate first = first_party().certificate(), second = second_party().certificate();
  add_PKCS7_Signature(bare, first, first_party().key(), 672);
  ASSERT_EQ(sign(bare), 0);
  EXPECT_EQ(verify_PKCS7(bare, second, nullptr, 0), 0);
  EXPECT_EQ(verify_strictly(bare), F_P7_VERIFY | ERR_NO_SIGNER_CERTIFICATE);
  EXPECT_EQ(verify_strictly(bare, 0, nullptr, second), F_P7_VERIFY | 0x2B);
  EXPECT_EQ(verify_strictly(bare, 0, nullptr, first), 0);

  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  add_signer(p7, first_party(), 64);
  ASSERT_EQ(sign(p7), 0);
  const Bytes other{1, 2, 3};
  EXPECT_EQ(verify(p7, &other), 0);
  EXPECT_EQ(verify_strictly(p7, 1, &other), F_P7_VERIFY | ERR_CONTENT_MISMATCH);
  EXPECT_EQ(verify_strictly(p7), F_P7_VERIFY | ERR_WEAK_DIGEST);
  EXPECT_EQ(verify_strictly(p7, PKCS7_ALLOW_WEAK_DIGESTS), 0);
  P7_SIGNER_REPORT reports[2];
  int count = 2;
  add_signer(p7, second_party());
  ASSERT_EQ(sign(p7), 0);
  EXPECT_EQ(verify_PKCS7_strict(p7, nullptr, nullptr, nullptr, 0, 0, reports, &count), F_P7_VERIFY | ERR_WEAK_DIGEST);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(reports[0].code, F_P7_VERIFY | ERR_WEAK_DIGEST);
  EXPECT_EQ(reports[1].code, 0);
  EXPECT_EQ(cmp_X509_NAME(get_X509_subject(reports[1].certificate), get_X509_subject(second)), 0);
}

// The signed attributes of one message, taken for the content of another.
TEST(Verify, AttributesAreNoContent) {
  VELPKI_NEED_OPENSSL;
  const Message p7 = message_of(PKCS7_SIGNED_DATA);
  P7_SIGNER_INFO *signer = add_signer(p7, first_party());
  add_attributes(signer, PKV_DIGEST_SHA256);
  ASSERT_EQ(sign(p7, true), 0);
  const Bytes content = hex(hex_of(X509_ATTRIBUTES_to_Seq, signer->authenticatedAttributes));
  free_X509_ATTRIBUTES(std::exchange(signer->authenticatedAttributes, nullptr));
  const Message forged = sent(p7);
  EXPECT_EQ(verify(forged, &content), 0);
  EXPECT_EQ(verify_strictly(forged, 0, &content), F_P7_VERIFY | ERR_AMBIGUOUS_CONTENT);
}

TEST(Sign, SurvivesEachFailedAllocation) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = small_party().certificate();
  const Owned<ASYMMETRIC_KEY> key = small_party().key();
  const auto work = [&] {
    const Message p7 = message_of(PKCS7_SIGNED_DATA);
    P7_SIGNER_INFO *signer = p7 ? add_PKCS7_Signature(p7, cert, key, 672) : nullptr;
    const int added = signer ? add_PKCS7_Certificate_ex(p7, cert) : 1;
    if (signer) add_attributes(signer, PKV_DIGEST_SHA256);
    const int signed_code = added ? 1 : sign(p7);
    const Message back = signed_code ? nullptr : sent(p7);
    return back && signer->authenticatedAttributes && signer->authenticatedAttributes->count == 2 &&
           verify(back) == 0 && verify_strictly(back) == 0;
  };
  ASSERT_TRUE(work());  // the first time the key prepares itself
  survive_each_failed_allocation(work);
}

}  // namespace
