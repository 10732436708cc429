// Identity data in certificates, virtual identifiers and signed driver statements, over vectors made elsewhere.
#include <velpki/asn1_error.h>
#include <velpki/asn1_objects.h>
#include <velpki/base64.h>
#include <velpki/kisa.h>

#include "support/asn1.h"
#include "support/json.h"

using namespace test;

namespace {

struct ReleaseKisa {
  void operator()(KISA_IDENTIFY_DATA *p) const { free_KISA_IDENTIFY_DATA(p); }
  void operator()(VID *p) const { free_VID(p); }
  void operator()(KISA_HSM_SIGNATURE_TOKEN *p) const { free_KISA_HSM_SIGNATURE_TOKEN(p); }
  void operator()(GENERAL_NAME *p) const { free_GENERAL_NAME(p); }
  void operator()(X509_CERT *p) const { free_X509_CERT(p); }
  void operator()(STACK *p) const { free_X509_ATTRIBUTES(p); }
  void operator()(ASYMMETRIC_KEY *p) const { free_ASYMMETRIC_KEY(p); }
};
template <class T>
using Owned = std::unique_ptr<T, ReleaseKisa>;

constexpr char kFile[] = "../reference/korean_vectors.json";

const Json &vectors_of(const char *group) {
  static const Json all = read_json(test::vectors(kFile));
  return all[group];
}

// The identities that have a virtual identifier.
std::vector<Json> identities() {
  std::vector<Json> out;
  for (const Json &v : vectors_of("identity").items)
    if (v.has("vid")) out.push_back(v);
  EXPECT_GE(out.size(), 4u);
  return out;
}

int digest_of(const std::string &name) {
  static const std::map<std::string, int> ids = {
      {"sha1", PKV_DIGEST_SHA1}, {"sha256", PKV_DIGEST_SHA256}, {"has160", PKV_DIGEST_HAS160}};
  return ids.at(name);
}

Owned<X509_CERT> certificate_with(const Bytes &subject_alt_name) {
  Owned<X509_CERT> cert(new_X509_CERT());
  X509_EXTENSION *extension = nullptr;
  create_X509_EXTENSION_by_OID_index(&extension, 85, 0, string(TYPE_OCTET_STRING, subject_alt_name).get());
  X509_EXTENSIONS *list = nullptr;
  EXPECT_EQ(add_X509_EXTENSION(&list, extension, -1), 0);
  EXPECT_EQ(set_X509_extensions(cert.get(), list), 0);
  free_X509_EXTENSION(extension);
  free_X509_EXTENSIONS(list);
  return cert;
}

Owned<X509_CERT> certificate(const std::string &base64) {
  unsigned char *der = nullptr;
  const int length = decode_Base64_strict(base64.data(), int(base64.size()), &der);
  const Block owner(der);
  X509_CERT *cert = nullptr;
  EXPECT_EQ(readDER_X509_CERT_from_Binary(&cert, der, length), 0);
  return Owned<X509_CERT>(cert);
}

int check(const X509_CERT *cert, const std::string &number, const Bytes &random) {
  return check_VID(cert, number.data(), int(number.size()), random.data(), int(random.size()));
}

Owned<VID> made_vid(const Json &v) {
  const Bytes random = v["random_num"].octets();
  VID *vid = nullptr;
  EXPECT_EQ(gen_VID(&vid, v["idn"].text.c_str(), -1, random.data(), int(random.size()), digest_of(v["hash"].text)), 0);
  return Owned<VID>(vid);
}

std::string list_of(int (*to)(const GENERAL_NAME *, ASN1_UNIT **), const GENERAL_NAME *name) {
  return to_hex(TLV(0x30, hex_of(to, name)));
}

TEST(Identity, IsBuiltOctetForOctetInBothForms) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const Json &v : identities()) {
    const Owned<VID> vid = made_vid(v);
    EXPECT_EQ(hex_of(VID_to_Seq, vid.get()), v["vid"].text);
    const Owned<KISA_IDENTIFY_DATA> data(new_KISA_IDENTIFY_DATA());
    ASSERT_EQ(set_KISA_IDENTIFY_DATA_realName(data.get(), v["real_name"].text.c_str(), -1), 0);
    ASSERT_EQ(add_KISA_IDENTIFY_DATA_VID(data.get(), vid.get()), 0);
    GENERAL_NAME *name = nullptr;
    ASSERT_EQ(KISA_IDENTIFY_DATA_to_GENERAL_NAME(data.get(), &name), 0);
    const Owned<GENERAL_NAME> owner(name);
    EXPECT_EQ(list_of(GENERAL_NAME_to_Seq_RFC5280, name), v["subject_alt_name"].text);
    EXPECT_EQ(list_of(GENERAL_NAME_to_Seq, name), v["subject_alt_name_by_spec_encoder"].text);
  }
}

TEST(Identity, KeepsTheParametersThatItRead) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const Json &v : identities()) {
    VID *vid = nullptr;
    ASSERT_EQ(Seq_to_VID(unit(v["vid_with_null"].octets()).get(), &vid), 0);
    EXPECT_EQ(hex_of(VID_to_Seq, vid), v["vid_with_null"].text);
    free_VID(vid);
  }
}

TEST(CheckVid, ReadsBothFormsAndRefusesAnotherNumberOrRandom) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const Json &v : identities()) {
    for (const char *form : {"subject_alt_name", "subject_alt_name_by_spec_encoder"}) {
      const Owned<X509_CERT> cert = certificate_with(v[form].octets());
      const std::string number = v["idn"].text;
      Bytes random = v["random_num"].octets();
      EXPECT_EQ(check(cert.get(), number, random), 0) << form;
      EXPECT_EQ(check(cert.get(), number + "0", random), F_CHECK_VID | ERR_INVALID_VID_DATA);
      random.back() ^= 1;
      EXPECT_EQ(check(cert.get(), number, random), F_CHECK_VID | ERR_INVALID_VID_DATA);
    }
  }
  for (const Json &v : vectors_of("certificates").items) {
    if (!v.has("idn")) continue;
    const Owned<X509_CERT> cert = certificate(v["der_base64"].text);
    EXPECT_EQ(check(cert.get(), v["idn"].text, v["random_num"].octets()), 0) << v["name"].text;
    EXPECT_EQ(check(cert.get(), "0", v["random_num"].octets()), F_CHECK_VID | ERR_INVALID_VID_DATA);
  }
}

// What a subjectAltName may hold instead, and the code that follows.
TEST(CheckVid, SaysWhatIsWrong) {
  const Bytes random(20, 7);
  for (const Row &row : table("vid_checks"))
    EXPECT_EQ(check(certificate_with(TLV(0x30, row.at("names"))).get(), "1", random), code_at(row, "code"))
        << row.at("what");
  const Owned<X509_CERT> plain(new_X509_CERT());
  EXPECT_EQ(check(plain.get(), "1", random), F_CHECK_VID | ERR_NOT_FOUNDED);
  EXPECT_EQ(check(nullptr, "1", random), F_CHECK_VID | 0x49);
  EXPECT_EQ(check(plain.get(), "1_", random), F_CHECK_VID | 0x2B);
  EXPECT_EQ(check(plain.get(), "", random), F_CHECK_VID | 0x2B);
  VID *vid_out = nullptr;
  EXPECT_EQ(gen_VID(&vid_out, "1", 1, random.data(), 0, PKV_DIGEST_SHA256), 0x4700002B);
  EXPECT_EQ(gen_VID(&vid_out, "1", 1, random.data(), 20, 0x7777), 0x47000048);
  EXPECT_EQ(gen_VID(&vid_out, nullptr, 0, random.data(), 20, PKV_DIGEST_SHA256), 0x47000049);
  EXPECT_EQ(vid_out, nullptr);
}

TEST(CheckVid, TakesTheRandomFromTheKeysAttributes) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const char *group : {"identity", "identity_published"})
    for (const Json &v : vectors_of(group).items) {
      if (!v.has("private_key_attributes")) continue;
      Bytes set = v["private_key_attributes"].octets();
      set[0] = 0x31;
      X509_ATTRIBUTES *list = nullptr;
      ASSERT_EQ(Seq_to_X509_ATTRIBUTES(unit(set).get(), &list), 0);
      const Owned<STACK> owner(list);
      unsigned char out[20];
      int length = 19;
      EXPECT_EQ(get_VID_random(list, out, &length), 0x4700002B);
      ASSERT_EQ(get_VID_random(list, out, &length), 0);
      EXPECT_EQ(to_hex(out, size_t(length)), v["random_num"].text);
    }
}

TEST(CheckVid, SurvivesEachFailedAllocation) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json &v = vectors_of("identity").items[0];
  const Owned<X509_CERT> cert = certificate_with(v["subject_alt_name"].octets());
  const Bytes random = v["random_num"].octets();
  survive_each_failed_allocation([&] {
    VID *vid = nullptr;
    int code = check(cert.get(), v["idn"].text, random);
    if (!code) code = gen_VID(&vid, "1", 1, random.data(), 20, PKV_DIGEST_SHA1);
    if (code) EXPECT_EQ(code & 0xFFFF, 0x3C) << std::hex << code;
    free_VID(vid);
    return code == 0;
  });
}

TEST(TokenStatement, VerifiesAsSignedElsewhereAndHere) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Owned<X509_CERT> signer = certificate(vectors_of("certificates").items[1]["der_base64"].text);
  const Json &v = vectors_of("hsm_proposed").items[0];
  KISA_HSM_SIGNATURE_TOKEN *token = nullptr;
  ASSERT_EQ(Seq_to_KISA_HSM_SIGNATURE_TOKEN(unit(v["signature_token"].octets()).get(), &token), 0);
  const Owned<KISA_HSM_SIGNATURE_TOKEN> owner(token);
  EXPECT_EQ(verify_KISA_HSM_SIGNATURE_TOKEN(token, signer.get()), 0);
  auto *url = static_cast<ASN1_STRING *>(get_STACK_value(token->distributionURL->urls, 1));
  url->data[0] ^= 1;
  EXPECT_NE(verify_KISA_HSM_SIGNATURE_TOKEN(token, signer.get()), 0);
  EXPECT_EQ(verify_KISA_HSM_SIGNATURE_TOKEN(token, nullptr), 0x47000049);

  RSA_UNIT *rsa = PKV_New_RSA();
  ASSERT_EQ(PKV_Generate_RSA(rsa, 1024, 0, nullptr, nullptr), 0);
  const Owned<ASYMMETRIC_KEY> key(RSA_UNIT_to_ASYMMETRIC_KEY(rsa));
  X509_PUBKEY *pubkey = new_X509_PUBKEY();
  const Owned<X509_CERT> own(new_X509_CERT());
  EXPECT_EQ(set_X509_PUBKEY_rsa(pubkey, rsa), 0);
  EXPECT_EQ(set_X509_pub_key(own.get(), pubkey), 0);
  for (const char *algorithm : {"1.2.840.113549.1.1.11", "1.2.840.113549.1.1.10"}) {
    ASSERT_EQ(sign_KISA_HSM_SIGNATURE_TOKEN(token, key.get(), oid(algorithm).get()), 0) << algorithm;
    EXPECT_EQ(verify_KISA_HSM_SIGNATURE_TOKEN(token, own.get()), 0) << algorithm;
    EXPECT_NE(verify_KISA_HSM_SIGNATURE_TOKEN(token, signer.get()), 0);
  }
  EXPECT_EQ(sign_KISA_HSM_SIGNATURE_TOKEN(token, key.get(), oid("1.2.3").get()), 0x47000048);
  free_X509_PUBKEY(pubkey);
  PKV_Free_RSA(rsa);
}

}  // namespace
