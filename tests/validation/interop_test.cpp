// OCSP messages between this library and the openssl command, both ways, by files.
#include "parties.h"

using namespace test;

namespace {

std::string in_pki(const std::string &command, int *status = nullptr) {
  return run("cd " + pki() + " && " + command + " 2>&1", status);
}
bool contains(const std::string &text, const std::string &part) { return text.find(part) != text.npos; }

TEST(OcspInterop, OpensslAnswersWhatIsAskedHere) {
  VELPKI_NEED_OPENSSL;
  const Certificate ca = party_certificate("ca");
  const Bytes nonce = hex("00aa00bb00cc");
  const auto ask = [&](const X509_CERT *cert, int digest, bool sign) {
    Owned<OCSP_REQUEST> request;
    EXPECT_EQ(generate_single_OCSP_REQUEST_strict(&request, cert, ca, digest, nonce.data(), int(nonce.size())), 0);
    if (sign) {
      EXPECT_EQ(sign_OCSP_REQUEST(request, party_key("good"), party_certificate("good")), 0);
    }
    EXPECT_GT(writeDER_OCSP_REQUEST_to_FILE(request, (pki() + "/ours.req").c_str()), 0);
  };
  for (const int digest : {PKV_DIGEST_SHA1, PKV_DIGEST_SHA256}) {
    for (const auto &[name, type] :
         {std::pair("good", OCSP_STATUS_GOOD), {"revoked", OCSP_STATUS_REVOKED}, {"absent", OCSP_STATUS_UNKNOWN}}) {
      for (const char *how :
           {"-rsigner ca.pem -rkey ca.p8", "-rsigner responder.pem -rkey responder.p8 -resp_key_id"}) {
        const Certificate cert = party_certificate(name);
        ask(cert, digest, digest == PKV_DIGEST_SHA1);
        const std::string said = in_pki(std::string("openssl ocsp -index index.txt -CA ca.pem -ndays 1 -reqin ours.req "
                                                    "-respout theirs.resp ") +
                                        how);
        const Response response = read_by(readDER_OCSP_RESPONSE_from_File, pki() + "/theirs.resp");
        const Basic basic = strict_basic(response);
        ASSERT_NE(basic, nullptr) << said;
        const OCSP_SINGLE_RESPONSE *answer = nullptr;
        EXPECT_EQ(
            verify_BASIC_OCSP_RESPONSE_strict(basic, cert, ca, nonce.data(), int(nonce.size()), nullptr, 0, &answer), 0)
            << name << " " << how;
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer->certStatus->type, type) << name;
        if (type == OCSP_STATUS_REVOKED) EXPECT_EQ(answer->certStatus->revokedInfo->revocationReason, 1);
        EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(basic, nullptr, nullptr, 0), 0);
      }
    }
  }
}

TEST(OcspInterop, OpensslVerifiesASignedRequestsForm) {
  VELPKI_NEED_OPENSSL;
  Owned<OCSP_REQUEST> request;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  ASSERT_EQ(generate_single_OCSP_REQUEST(&request, cert, ca, nullptr, 0), 0);
  ASSERT_EQ(sign_OCSP_REQUEST_ex(request, party_key("good"), cert, PKV_DIGEST_SHA256), 0);
  ASSERT_GT(writeDER_OCSP_REQUEST_to_FILE(request, (pki() + "/signed.req").c_str()), 0);
  const std::string text = in_pki("openssl ocsp -reqin signed.req -req_text");
  for (const char *part : {"Serial Number: 1001", "sha256WithRSAEncryption", "CN = good", "OCSP Nonce"})
    EXPECT_TRUE(contains(text, part)) << part << "\n" << text;
  const Request back = decoded(Seq_to_OCSP_REQUEST, read_file(pki() + "/signed.req"));
  EXPECT_EQ(verify_OCSP_REQUEST(back, cert), 0);
  EXPECT_EQ(verify_OCSP_REQUEST_strict(back, cert), 0);
  EXPECT_NE(verify_OCSP_REQUEST_strict(back, ca), 0);
}

// Answers each certificate that is asked about: good, or revoked for the one called so.
Basic answer_of_ours(const OCSP_REQUEST *request, const std::string &signer, bool by_key, const char *algorithm) {
  const Certificate ca = party_certificate("ca"), revoked = party_certificate("revoked"),
                    responder = party_certificate(signer);
  const String from = text_string(TYPE_GENERALIZED_TIME, "20260101000000Z"),
               until = text_string(TYPE_GENERALIZED_TIME, "20400101000000Z");
  const Owned<OCSP_REVOKED_INFO> info(new_OCSP_REVOKED_INFO());
  info->revocationTime = text_string(TYPE_GENERALIZED_TIME, "20240102030405Z").release();
  info->revocationReason = 4;
  Singles list;
  for (int i = 0; i < get_OCSP_REQUEST_list_count(request); ++i) {
    const auto *single = item<OCSP_SINGLE_REQUEST>(get_OCSP_REQUEST_list(request), i);
    const bool is_revoked = match_OCSP_CERT_ID(single->reqCert, revoked, ca) == 0;
    EXPECT_EQ(add_single_OCSP_RESPONSE(&list, single->reqCert, is_revoked ? OCSP_STATUS_REVOKED : OCSP_STATUS_GOOD,
                                       info, from, until, nullptr),
              0);
  }
  unsigned char nonce[64];
  const int length = get_OCSP_REQUEST_nonce_length(request);
  if (length) EXPECT_EQ(get_OCSP_REQUEST_nonce(request, nonce, sizeof nonce), 0);
  Owned<OCSP_RESPONSE_DATA> data;
  EXPECT_EQ(generate_OCSP_RESPONSE_DATA(&data, responder, by_key, list, nonce, length), 0);
  Basic basic;
  EXPECT_EQ(generate_BASIC_OCSP_RESPONSE_strict(&basic, data, party_key(signer), list_with(responder), oid(algorithm)),
            0);
  return basic;
}

// The house form of an entry is no answer for others.
TEST(OcspInterop, OpensslDoesNotReadTheHouseForm) {
  VELPKI_NEED_OPENSSL;
  in_pki("openssl ocsp -issuer ca.pem -cert good.pem -reqout their.req");
  const Request request = decoded(Seq_to_OCSP_REQUEST, read_file(pki() + "/their.req"));
  const Basic standard = answer_of_ours(request, "ca", false, "1.2.840.113549.1.1.11");
  Basic house;
  Response response;
  ASSERT_EQ(generate_BASIC_OCSP_RESPONSE(&house, standard->tbsResponseData, party_key("ca"), nullptr), 0);
  ASSERT_EQ(generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, house), 0);
  EXPECT_GT(writeDER_OCSP_RESPONSE_to_FILE(response, (pki() + "/house.resp").c_str()), 0);
  EXPECT_TRUE(contains(in_pki("openssl ocsp -respin house.resp -CAfile ca.pem"), "Error parsing response"));
  const Basic back(get_BASIC_OCSP_RESPONSE(response));
  EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(back, party_certificate("ca"), nullptr, 0), 0);
  EXPECT_EQ(strict_basic(response), nullptr);
}

TEST(OcspInterop, OpensslTakesOurAnswers) {
  VELPKI_NEED_OPENSSL;
  for (const char *signer : {"ca", "responder"})
    for (const char *algorithm : {"1.2.840.113549.1.1.11", "1.2.840.113549.1.1.10"})
      for (const char *request_options : {"-nonce", "-no_nonce -sha256"}) {
        in_pki(std::string("openssl ocsp -issuer ca.pem ") + (*request_options == '-' ? request_options : "") +
               " -cert good.pem -cert revoked.pem -reqout their.req");
        const Request request = decoded(Seq_to_OCSP_REQUEST, read_file(pki() + "/their.req"));
        ASSERT_EQ(get_OCSP_REQUEST_list_count(request), 2);
        const Basic basic = answer_of_ours(request, signer, *signer == 'r', algorithm);
        Owned<OCSP_RESPONSE> response;
        ASSERT_EQ(generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, basic), 0);
        EXPECT_GT(writeDER_OCSP_RESPONSE_to_FILE(response, (pki() + "/our.resp").c_str()), 0);
        const std::string said = in_pki("openssl ocsp -reqin their.req -respin our.resp -CAfile ca.pem -resp_text");
        EXPECT_TRUE(contains(said, "Response verify OK")) << signer << algorithm << said;
        EXPECT_TRUE(contains(said, "Cert Status: good") && contains(said, "Cert Status: revoked")) << said;
        EXPECT_TRUE(contains(said, "Revocation Reason: superseded (0x4)")) << said;
        EXPECT_TRUE(contains(said, "Next Update: Jan  1 00:00:00 2040 GMT")) << said;
        EXPECT_FALSE(contains(said, "Nonce Verify error")) << said;
      }
}

}  // namespace
