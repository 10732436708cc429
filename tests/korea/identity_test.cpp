// Identity data in certificates, virtual identifiers and signed driver statements, over vectors made elsewhere.
#include <velpki/asn1_error.h>
#include <velpki/asn1_objects.h>
#include <velpki/kisa.h>

#include "support/json.h"
#include "support/keys.h"

using namespace test;

namespace {

// The identities that have a virtual identifier.
std::vector<Json> identities() {
  std::vector<Json> out;
  for (const Json &v : korean("identity").items)
    if (v.has("vid")) out.push_back(v);
  EXPECT_GE(out.size(), 4u);
  return out;
}

Certificate certificate_with(const Bytes &subject_alt_name) {
  Certificate cert(new_X509_CERT());
  Owned<X509_EXTENSION> extension;
  create_X509_EXTENSION_by_OID_index(&extension, 85, 0, string(TYPE_OCTET_STRING, subject_alt_name));
  Owned<STACK, free_X509_EXTENSIONS> list;
  EXPECT_EQ(add_X509_EXTENSION(&list, extension, -1), 0);
  EXPECT_EQ(set_X509_extensions(cert, list), 0);
  return cert;
}

Certificate certificate(const Json &v) {
  return read_by(readDER_X509_CERT_from_Binary, from_base64(v["der_base64"].text));
}

int check(const X509_CERT *cert, const std::string &number, const Bytes &random) {
  return check_VID(cert, number.data(), int(number.size()), random.data(), int(random.size()));
}

Owned<VID> made_vid(const Json &v) {
  const Bytes random = v["random_num"].octets();
  Owned<VID> vid;
  EXPECT_EQ(gen_VID(&vid, v["idn"].text.c_str(), -1, random.data(), int(random.size()), digest_id(v["hash"].text)), 0);
  return vid;
}

std::string list_of(int (*to)(const GENERAL_NAME *, ASN1_UNIT **), const GENERAL_NAME *name) {
  return to_hex(TLV(0x30, hex_of(to, name)));
}

TEST(Identity, IsBuiltOctetForOctetInBothForms) {
  VELPKI_NEED_KOREAN;
  for (const Json &v : identities()) {
    const Owned<VID> vid = made_vid(v);
    EXPECT_EQ(hex_of(VID_to_Seq, vid), v["vid"].text);
    const Owned<KISA_IDENTIFY_DATA> data(new_KISA_IDENTIFY_DATA());
    ASSERT_EQ(set_KISA_IDENTIFY_DATA_realName(data, v["real_name"].text.c_str(), -1), 0);
    ASSERT_EQ(add_KISA_IDENTIFY_DATA_VID(data, vid), 0);
    Owned<GENERAL_NAME> name;
    ASSERT_EQ(KISA_IDENTIFY_DATA_to_GENERAL_NAME(data, &name), 0);
    EXPECT_EQ(list_of(GENERAL_NAME_to_Seq_RFC5280, name), v["subject_alt_name"].text);
    EXPECT_EQ(list_of(GENERAL_NAME_to_Seq, name), v["subject_alt_name_by_spec_encoder"].text);
  }
}

TEST(Identity, KeepsTheParametersThatItRead) {
  VELPKI_NEED_KOREAN;
  for (const Json &v : identities()) {
    EXPECT_EQ(hex_of(VID_to_Seq, decoded(Seq_to_VID, v["vid_with_null"].octets())), v["vid_with_null"].text);
  }
}

TEST(CheckVid, ReadsBothFormsAndRefusesAnotherNumberOrRandom) {
  VELPKI_NEED_KOREAN;
  for (const Json &v : identities()) {
    for (const char *form : {"subject_alt_name", "subject_alt_name_by_spec_encoder"}) {
      const Certificate cert = certificate_with(v[form].octets());
      const std::string number = v["idn"].text;
      Bytes random = v["random_num"].octets();
      EXPECT_EQ(check(cert, number, random), 0) << form;
      EXPECT_EQ(check(cert, number + "0", random), F_CHECK_VID | ERR_INVALID_VID_DATA);
      random.back() ^= 1;
      EXPECT_EQ(check(cert, number, random), F_CHECK_VID | ERR_INVALID_VID_DATA);
    }
  }
  for (const Json &v : korean("certificates").items) {
    if (!v.has("idn")) continue;
    const Certificate cert = certificate(v);
    EXPECT_EQ(check(cert, v["idn"].text, v["random_num"].octets()), 0) << v["name"].text;
    EXPECT_EQ(check(cert, "0", v["random_num"].octets()), F_CHECK_VID | ERR_INVALID_VID_DATA);
  }
}

// What a subjectAltName may hold instead, and the code that follows.
TEST(CheckVid, SaysWhatIsWrong) {
  const Bytes random(20, 7);
  for (const Row &row : table("vid_checks"))
    EXPECT_EQ(check(certificate_with(TLV(0x30, row.at("names"))), "1", random), code_at(row, "code")) << row.at("what");
  const Certificate plain(new_X509_CERT());
  EXPECT_EQ(check(plain, "1", random), F_CHECK_VID | ERR_NOT_FOUNDED);
  EXPECT_EQ(check(nullptr, "1", random), F_CHECK_VID | 0x49);
  EXPECT_EQ(check(plain, "1_", random), F_CHECK_VID | 0x2B);
  EXPECT_EQ(check(plain, "", random), F_CHECK_VID | 0x2B);
  VID *vid_out = nullptr;
  EXPECT_EQ(gen_VID(&vid_out, "1", 1, random.data(), 0, PKV_DIGEST_SHA256), 0x4700002B);
  for (const int digest : {0x7777, PKV_DIGEST_SHA1 | PKV_HMAC_FLAG})
    EXPECT_EQ(gen_VID(&vid_out, "1", 1, random.data(), 20, digest), 0x47000048);
  EXPECT_EQ(gen_VID(&vid_out, nullptr, 0, random.data(), 20, PKV_DIGEST_SHA256), 0x47000049);
  EXPECT_EQ(vid_out, nullptr);
}

TEST(CheckVid, TakesTheRandomFromTheKeysAttributes) {
  VELPKI_NEED_KOREAN;
  for (const char *group : {"identity", "identity_published"})
    for (const Json &v : korean(group).items) {
      if (!v.has("private_key_attributes")) continue;
      Bytes set = v["private_key_attributes"].octets();
      set[0] = 0x31;
      Owned<STACK, free_X509_ATTRIBUTES> list;
      ASSERT_EQ(Seq_to_X509_ATTRIBUTES(unit(set), &list), 0);
      unsigned char out[20];
      int length = 19;
      EXPECT_EQ(get_VID_random(list, out, &length), 0x4700002B);
      ASSERT_EQ(get_VID_random(list, out, &length), 0);
      EXPECT_EQ(to_hex(out, size_t(length)), v["random_num"].text);
    }
}

TEST(CheckVid, SurvivesEachFailedAllocation) {
  VELPKI_NEED_KOREAN;
  const Json &v = korean("identity").items[0];
  const Certificate cert = certificate_with(v["subject_alt_name"].octets());
  const Bytes random = v["random_num"].octets();
  survive_each_failed_allocation([&] {
    Owned<VID> vid;
    int code = check(cert, v["idn"].text, random);
    if (!code) code = gen_VID(&vid, "1", 1, random.data(), 20, PKV_DIGEST_SHA1);
    if (code) EXPECT_EQ(code & 0xFFFF, 0x3C) << std::hex << code;
    return code == 0;
  });
}

TEST(TokenStatement, VerifiesAsSignedElsewhereAndHere) {
  VELPKI_NEED_KOREAN;
  const Certificate signer = certificate(korean("certificates").items[1]);
  const Json &v = korean("hsm_proposed").items[0];
  const auto token = decoded(Seq_to_KISA_HSM_SIGNATURE_TOKEN, v["signature_token"].octets());
  ASSERT_TRUE(token);
  EXPECT_EQ(verify_KISA_HSM_SIGNATURE_TOKEN(token, signer), 0);
  auto *url = item<ASN1_STRING>(token->distributionURL->urls, 1);
  url->data[0] ^= 1;
  EXPECT_NE(verify_KISA_HSM_SIGNATURE_TOKEN(token, signer), 0);
  EXPECT_EQ(verify_KISA_HSM_SIGNATURE_TOKEN(token, nullptr), 0x47000049);

  const Owned<ASYMMETRIC_KEY> key = new_rsa();
  const Certificate own(new_X509_CERT());
  EXPECT_EQ(set_X509_pub_key(own, public_half(key)), 0);
  for (const char *algorithm : {"1.2.840.113549.1.1.11", "1.2.840.113549.1.1.10"}) {
    ASSERT_EQ(sign_KISA_HSM_SIGNATURE_TOKEN(token, key, oid(algorithm)), 0) << algorithm;
    EXPECT_EQ(verify_KISA_HSM_SIGNATURE_TOKEN(token, own), 0) << algorithm;
    EXPECT_NE(verify_KISA_HSM_SIGNATURE_TOKEN(token, signer), 0);
  }
  EXPECT_EQ(sign_KISA_HSM_SIGNATURE_TOKEN(token, key, oid("1.2.3")), 0x47000048);
}

}  // namespace
