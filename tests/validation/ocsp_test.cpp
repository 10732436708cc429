// Requests and answers as they are made and judged here: forms, codes, and what strict verification refuses.
#include "parties.h"

using namespace test;

namespace {

const Bytes kTime = TLV(0x18, "32303236303130313030303030305a"), kLater = TLV(0x18, "32303237303130313030303030305a");
const Bytes kId = TLV(0x30, TLV(0x30, "06052b0e03021a0500") + TLV(0x04, "aa") + TLV(0x04, "bb") + TLV(0x02, "05"));
const Bytes kExtensions = TLV(0x30, TLV(0x30, "06092b0601050507300102" + std::string("0402abcd")));

// What stands where the status does and behind thisUpdate, and what it means; type -1 is refused.
void check_single(const Row &row) {
  const std::string &what = row.at("what");
  const int type = number_in(row, "type");
  const Bytes status = hex(row.at("status")), single_octets = TLV(0x30, kId + status + kTime + hex(row.at("tail")));
  const auto single = decoded(Seq_to_OCSP_SINGLE_RESPONSE, single_octets);
  const Bytes data = TLV(0x30, TLV(0xA2, "0401aa") + kTime + TLV(0x30, single_octets));
  const Bytes basic = TLV(0x30, data + TLV(0x30, "06092a864886f70d01010b0500") + TLV(0x03, "00cc"));
  const Bytes bytes = TLV(0x30, hex("06092b0601050507300101") + TLV(0x04, basic));
  const auto response = decoded(Seq_to_OCSP_RESPONSE, TLV(0x30, hex("0a0100") + TLV(0xA0, bytes)));
  EXPECT_EQ(strict_basic(response) != nullptr, row.at("standard") == "1") << what;
  ASSERT_EQ(single != nullptr, type >= 0) << what;
  if (!single) return;
  EXPECT_EQ(single->certStatus->type, type) << what;
  const bool next = row.at("next") == "1", extensions = row.at("extensions") == "1";
  EXPECT_EQ(single->nextUpdate != nullptr, next) << what;
  EXPECT_EQ(single->singleExtensions != nullptr, extensions) << what;
  const Bytes written = type == OCSP_STATUS_REVOKED ? status : TLV(uint8_t(0x80 + type), "");
  const auto expected = [&](const Bytes &update, uint8_t identifier) {
    return TLV(0x30, kId + written + kTime + (next ? update : Bytes()) +
                         (extensions ? TLV(identifier, kExtensions) : Bytes()));
  };
  EXPECT_EQ(encoded(OCSP_SINGLE_RESPONSE_to_Seq, single), expected(kLater, 0xA2)) << what;
  EXPECT_EQ(encoded(OCSP_SINGLE_RESPONSE_to_Seq_strict, single), expected(TLV(0xA0, kLater), 0xA1)) << what;
}

TEST(OcspSingle, IsReadByItsIdentifiers) {
  for (const Row &row : table("ocsp_single")) check_single(row);
}

TEST(OcspRequest, TakesKeyIdentifiersForHashesAndDrawsANonce) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  Owned<OCSP_REQUEST> request;
  const auto generate = [&](X509_CERT *c, X509_CERT *issuer) {
    return generate_single_OCSP_REQUEST(&request, c, issuer, nullptr, 0);
  };
  EXPECT_EQ(generate_single_OCSP_REQUEST(nullptr, cert, nullptr, nullptr, 0), kOcsp | 0x12);
  EXPECT_EQ(generate(nullptr, nullptr), kOcsp | 0x11);
  EXPECT_EQ(request, nullptr);
  ASSERT_EQ(generate(cert, ca), 0);
  const auto first_id = [&] { return item<OCSP_SINGLE_REQUEST>(get_OCSP_REQUEST_list(request), 0)->reqCert; };
  const Bytes by_issuer = encoded(OCSP_CERT_ID_to_Seq, first_id());
  EXPECT_EQ(get_OCSP_REQUEST_nonce_length(request), 16);
  ASSERT_EQ(generate(cert, nullptr), 0);  // the same request, filled again
  EXPECT_EQ(encoded(OCSP_CERT_ID_to_Seq, first_id()), by_issuer);
  EXPECT_EQ(match_OCSP_CERT_ID(first_id(), cert, ca), 0);
  EXPECT_EQ(match_OCSP_CERT_ID(first_id(), cert, cert), kOcsp | ERR_OCSP_CERT_ID);
  EXPECT_EQ(set_X509_extensions(ca, nullptr), 0);
  EXPECT_EQ(generate(cert, ca), kOcsp | 0xFF);
  const Owned<STACK, free_STACK> certs(new_STACK()), issuers(new_STACK());
  push_STACK_value(certs, cert), push_STACK_value(certs, cert), push_STACK_value(issuers, nullptr);
  EXPECT_EQ(generate_multi_OCSP_REQUEST(&request, certs, issuers, hex("000102").data(), 3), 0);
  EXPECT_EQ(get_OCSP_REQUEST_list_count(request), 2);
  unsigned char nonce[3];
  EXPECT_EQ(get_OCSP_REQUEST_nonce(request, nonce, 2), kOcsp | 0x2B);
  EXPECT_EQ(get_OCSP_REQUEST_nonce(request, nonce, 3), 0);
  EXPECT_EQ(to_hex(nonce, 3), "000102");
  EXPECT_EQ(verify_OCSP_REQUEST(request, nullptr), kOcsp | 0x17);
  EXPECT_EQ(sign_OCSP_REQUEST_ex(request, party_key("good"), nullptr, PKV_DIGEST_HAS160), kOcsp | 0x2B);
  EXPECT_EQ(is_OCSP_REQUEST_signature(request), 0);
  ASSERT_EQ(sign_OCSP_REQUEST(request, party_key("good"), nullptr), 0);
  EXPECT_EQ(verify_OCSP_REQUEST(request, nullptr), kOcsp | 0x14);
  EXPECT_EQ(verify_OCSP_REQUEST(request, cert), 0);
  request->encoded->data[20] ^= 1;
  EXPECT_EQ(verify_OCSP_REQUEST(request, cert), PKV_ERR_MISMATCH);
}

// How an answer is made; each case changes something.
struct Answer {
  std::string signer = "ca", about = "good", carried = "ca";
  bool by_key = false, critical = false;
  std::string from = "20260101000000Z", until = "20400101000000Z", nonce = "0405aa00bb01cc";
  int damage = -1;
};

Basic made(const Answer &a, bool house = false, int digest = PKV_DIGEST_SHA256) {
  const Certificate ca = party_certificate("ca"), responder = party_certificate(a.signer),
                    cert = party_certificate(a.about);
  Owned<OCSP_REQUEST> request;
  EXPECT_EQ(generate_single_OCSP_REQUEST_strict(&request, cert, ca, PKV_DIGEST_SHA1, nullptr, 0), 0);
  const auto *single = item<OCSP_SINGLE_REQUEST>(get_OCSP_REQUEST_list(request), 0);
  Owned<X509_EXTENSION> extension;
  Owned<STACK, free_X509_EXTENSIONS> extensions;
  if (a.critical) {
    create_X509_EXTENSION_by_OID(&extension, oid("1.2.3"), 1, string(TYPE_OCTET_STRING, hex("0500")));
    add_X509_EXTENSION(&extensions, extension, -1);
  }
  Singles list;
  const String from = text_string(TYPE_GENERALIZED_TIME, a.from), until = text_string(TYPE_GENERALIZED_TIME, a.until);
  EXPECT_EQ(add_single_OCSP_RESPONSE(&list, single->reqCert, OCSP_STATUS_GOOD, nullptr, from,
                                     a.until.empty() ? nullptr : until.get(), extensions),
            0);
  const Bytes nonce = hex(a.nonce);
  Owned<OCSP_RESPONSE_DATA> data;
  EXPECT_EQ(generate_OCSP_RESPONSE_DATA(&data, responder, a.by_key, list, nonce.data(), int(nonce.size())), 0);
  Basic basic;
  const auto certs = list_with(party_certificate(a.carried));
  const auto key = party_key(a.signer);
  EXPECT_EQ(house ? generate_BASIC_OCSP_RESPONSE_ex(&basic, data, key, certs, digest)
                  : generate_BASIC_OCSP_RESPONSE_strict(&basic, data, key, certs, oid("1.2.840.113549.1.1.11")),
            0);
  if (a.damage >= 0) basic->signature->data[a.damage] ^= 1;
  return basic;
}

TEST(OcspVerify, StrictRefusesWhatThePlainOneLetsPass) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  const Bytes nonce = hex("aa00bb01cc"), raw = hex("0405aa00bb01cc");
  const auto strict = [&](const Answer &a, const char *time, const Bytes &asked, unsigned flags) {
    const OCSP_SINGLE_RESPONSE *answer = nullptr;
    const int code = verify_BASIC_OCSP_RESPONSE_strict(made(a), cert, ca, asked.empty() ? nullptr : asked.data(),
                                                       int(asked.size()), time_of(time), flags, &answer);
    EXPECT_EQ(answer != nullptr, code == 0);
    return code;
  };
  for (const Row &row : table("ocsp_answers")) {
    const Answer a{row.at("signer"),          row.at("about"), row.at("carried"), row.at("by_key") == "1",
                   row.at("critical") == "1", row.at("from"),  row.at("until"),   row.at("nonce")};
    const int expected = code_at(row, "strict");
    EXPECT_EQ(strict(a, "20280101000000Z", nonce, unsigned(number_in(row, "flags"))), expected ? kOcsp | expected : 0)
        << row.at("what");
    EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(made(a), nullptr, raw.data(), int(raw.size())), code_at(row, "plain"))
        << row.at("what");
  }
  for (const int length : {int(raw.size()) - 1, int(raw.size()) + 1})
    EXPECT_NE(verify_BASIC_OCSP_RESPONSE(made({}), nullptr, (raw + Bytes{0}).data(), length), 0) << length;
  Answer damaged, late;
  damaged.damage = 7;
  late.signer = late.carried = "responder";
  EXPECT_EQ(strict(damaged, "20280101000000Z", hex("01"), 0), PKV_ERR_MISMATCH);  // before the nonce
  EXPECT_EQ(strict(late, "20390101000000Z", {}, 0), kOcsp | ERR_OCSP_RESPONDER);
}

TEST(OcspVerify, GivesTheReasonsInOrder) {
  VELPKI_NEED_OPENSSL;
  const Certificate ca = party_certificate("ca");
  const Basic basic = made({}, true, PKV_DIGEST_MD5);
  EXPECT_EQ(text_of(basic->signatureAlgorithm->algorithm), "1.2.840.113549.1.1.4");
  const auto verify = [&](X509_CERT *signer) { return verfy_BASIC_OCSP_RESPONSE(basic, signer, nullptr, 0); };
  EXPECT_EQ(verify(nullptr), 0);
  EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(nullptr, ca, nullptr, 0), kOcsp | 0x49);
  // A signature failure comes before anything about the nonce.
  basic->signature->data[0] ^= 1;
  EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(basic, nullptr, hex("01").data(), 1), PKV_ERR_MISMATCH);
  free_OBJECT_IDENTIFIER(basic->signatureAlgorithm->algorithm);
  basic->signatureAlgorithm->algorithm = oid("1.2.3").release();
  EXPECT_EQ(verify(nullptr), kOcsp | 0x1B);
  free_ASN1_STRING(std::exchange(basic->signature, nullptr));
  EXPECT_EQ(verify(nullptr), kOcsp | 0x17);
  free_ASN1_STRING(std::exchange(basic->encoded, nullptr));
  EXPECT_EQ(verify(nullptr), kOcsp | 0x18);
  free_X509_CERTIFICATES(std::exchange(basic->certs, nullptr));
  EXPECT_EQ(verify(nullptr), kOcsp | 0x14);
  EXPECT_EQ(verify(ca), kOcsp | 0x18);
  EXPECT_EQ(get_CERT_STATUS_count_from_OCSP_RESPONSE(nullptr), -1);
  EXPECT_NE(get_CERT_STATUS_from_OCSP_RESPONSE(basic, nullptr), nullptr);
  Owned<OCSP_RESPONSE> response;
  EXPECT_EQ(generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, nullptr), kOcsp | 0x49);
  EXPECT_EQ(generate_OCSP_RESPONSE(&response, 4, nullptr), kOcsp | 0x2B);
  EXPECT_EQ(generate_OCSP_RESPONSE(&response, OCSP_TRY_LATER, nullptr), 0);
  EXPECT_EQ(to_hex(encoded(OCSP_RESPONSE_to_Seq, response)), "30030a0103");
}

TEST(OcspVerify, SurvivesEachFailedAllocation) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  const auto key = party_key("responder");
  Answer a;
  a.signer = a.carried = "responder";
  const Basic basic = made(a);
  verify_BASIC_OCSP_RESPONSE_strict(basic, cert, ca, nullptr, 0, nullptr, 0, nullptr);
  const auto all = [&] {
    Request request;
    Basic again;
    Response response;
    int code = generate_single_OCSP_REQUEST_strict(&request, cert, ca, PKV_DIGEST_SHA256, nullptr, 0);
    if (!code) code = sign_OCSP_REQUEST(request, key, cert);
    if (!code) code = generate_BASIC_OCSP_RESPONSE(&again, basic->tbsResponseData, key, basic->certs);
    if (!code) code = generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, again);
    if (!code) code = verify_BASIC_OCSP_RESPONSE_strict(basic, cert, ca, nullptr, 0, nullptr, 0, nullptr);
    return code == 0;
  };
  EXPECT_TRUE(all());  // and the keys keep what they prepared
  survive_each_failed_allocation(all);
}

}  // namespace
