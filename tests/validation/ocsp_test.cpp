// Requests and answers as they are made and judged here: forms, codes, and what strict verification refuses.
#include "parties.h"

using namespace test;

namespace {

const Bytes kTime = TLV(0x18, "32303236303130313030303030305a"), kLater = TLV(0x18, "32303237303130313030303030305a");
const Bytes kId = TLV(0x30, TLV(0x30, "06052b0e03021a0500") + TLV(0x04, "aa") + TLV(0x04, "bb") + TLV(0x02, "05"));
const Bytes kExtensions = TLV(0x30, TLV(0x30, "06092b0601050507300102" + std::string("0402abcd")));

// What stands where the status does and behind thisUpdate, and what it means; -1 is refused.
TEST(OcspSingle, IsReadByItsIdentifiers) {
  struct {
    const char *what;
    Bytes status, tail;
    int type;
    bool next, extensions, standard;
  } cases[] = {
      {"good", TLV(0x80, ""), {}, OCSP_STATUS_GOOD, false, false, true},
      {"good, constructed", TLV(0xA0, ""), {}, OCSP_STATUS_GOOD, false, false, false},
      {"unknown", TLV(0x82, ""), {}, OCSP_STATUS_UNKNOWN, false, false, true},
      {"unknown, constructed", TLV(0xA2, ""), {}, OCSP_STATUS_UNKNOWN, false, false, false},
      {"revoked", TLV(0xA1, kTime), {}, OCSP_STATUS_REVOKED, false, false, true},
      {"revoked, primitive", TLV(0x81, kTime), {}, -1, false, false, false},
      {"revoked, empty", TLV(0xA1, ""), {}, -1, false, false, false},
      {"no such status", TLV(0x83, ""), {}, -1, false, false, false},
      {"universal null", TLV(0x05, ""), {}, -1, false, false, false},
      {"standard update", TLV(0x80, ""), TLV(0xA0, kLater), OCSP_STATUS_GOOD, true, false, true},
      {"bare update", TLV(0x80, ""), kLater, OCSP_STATUS_GOOD, true, false, false},
      {"standard extensions", TLV(0x80, ""), TLV(0xA1, kExtensions), OCSP_STATUS_GOOD, false, true, true},
      {"house extensions", TLV(0x80, ""), TLV(0xA2, kExtensions), OCSP_STATUS_GOOD, false, true, false},
      {"both, mixed", TLV(0x80, ""), TLV(0xA0, kLater) + TLV(0xA2, kExtensions), OCSP_STATUS_GOOD, true, true, false},
      {"extensions first", TLV(0x80, ""), TLV(0xA1, kExtensions) + TLV(0xA0, kLater), -1, false, false, false},
      {"two updates", TLV(0x80, ""), TLV(0xA0, kLater) + kLater, -1, false, false, false},
      {"update of another type", TLV(0x80, ""), TLV(0xA0, TLV(0x17, "00")), -1, false, false, false},
  };
  for (const auto &c : cases) {
    const auto single = decoded(Seq_to_OCSP_SINGLE_RESPONSE, TLV(0x30, kId + c.status + kTime + c.tail));
    ASSERT_EQ(single != nullptr, c.type >= 0) << c.what;
    const Bytes data = TLV(0x30, TLV(0xA2, "0401aa") + kTime + TLV(0x30, TLV(0x30, kId + c.status + kTime + c.tail)));
    const Bytes basic = TLV(0x30, data + TLV(0x30, "06092a864886f70d01010b0500") + TLV(0x03, "00cc"));
    const Bytes bytes = TLV(0x30, hex("06092b0601050507300101") + TLV(0x04, basic));
    const auto response = decoded(Seq_to_OCSP_RESPONSE, TLV(0x30, hex("0a0100") + TLV(0xA0, bytes)));
    EXPECT_EQ(strict_basic(response.get()) != nullptr, c.standard) << c.what;
    if (!single) continue;
    EXPECT_EQ(single->certStatus->type, c.type) << c.what;
    EXPECT_EQ(single->nextUpdate != nullptr, c.next) << c.what;
    EXPECT_EQ(single->singleExtensions != nullptr, c.extensions) << c.what;
    const Bytes status = c.type == 0 ? TLV(0x80, "") : c.type == 2 ? TLV(0x82, "") : c.status;
    const auto expected = [&](const Bytes &next, uint8_t extensions) {
      return TLV(0x30, kId + status + kTime + (c.next ? next : Bytes()) +
                           (c.extensions ? TLV(extensions, kExtensions) : Bytes()));
    };
    EXPECT_EQ(to_hex(encoded(OCSP_SINGLE_RESPONSE_to_Seq, single.get())), to_hex(expected(kLater, 0xA2))) << c.what;
    EXPECT_EQ(to_hex(encoded(OCSP_SINGLE_RESPONSE_to_Seq_strict, single.get())),
              to_hex(expected(TLV(0xA0, kLater), 0xA1)))
        << c.what;
  }
}

TEST(OcspRequest, TakesKeyIdentifiersForHashesAndDrawsANonce) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  OCSP_REQUEST *request = nullptr;
  const auto generate = [&](X509_CERT *c, X509_CERT *issuer) {
    return generate_single_OCSP_REQUEST(&request, c, issuer, nullptr, 0);
  };
  EXPECT_EQ(generate_single_OCSP_REQUEST(nullptr, cert.get(), nullptr, nullptr, 0), kOcsp | 0x12);
  EXPECT_EQ(generate(nullptr, nullptr), kOcsp | 0x11);
  EXPECT_EQ(request, nullptr);
  ASSERT_EQ(generate(cert.get(), ca.get()), 0);
  const Bytes by_issuer =
      encoded(OCSP_CERT_ID_to_Seq,
              static_cast<OCSP_SINGLE_REQUEST *>(get_STACK_value(get_OCSP_REQUEST_list(request), 0))->reqCert);
  EXPECT_EQ(get_OCSP_REQUEST_nonce_length(request), 16);
  ASSERT_EQ(generate(cert.get(), nullptr), 0);  // the same request, filled again
  const auto *single = static_cast<OCSP_SINGLE_REQUEST *>(get_STACK_value(get_OCSP_REQUEST_list(request), 0));
  EXPECT_EQ(encoded(OCSP_CERT_ID_to_Seq, single->reqCert), by_issuer);
  EXPECT_EQ(match_OCSP_CERT_ID(single->reqCert, cert.get(), ca.get()), 0);
  EXPECT_EQ(match_OCSP_CERT_ID(single->reqCert, cert.get(), cert.get()), kOcsp | ERR_OCSP_CERT_ID);
  EXPECT_EQ(set_X509_extensions(ca.get(), nullptr), 0);
  EXPECT_EQ(generate(cert.get(), ca.get()), kOcsp | 0xFF);
  STACK *certs = new_STACK(), *issuers = new_STACK();
  push_STACK_value(certs, cert.get()), push_STACK_value(certs, cert.get()), push_STACK_value(issuers, nullptr);
  EXPECT_EQ(generate_multi_OCSP_REQUEST(&request, certs, issuers, hex("000102").data(), 3), 0);
  EXPECT_EQ(get_OCSP_REQUEST_list_count(request), 2);
  unsigned char nonce[3];
  EXPECT_EQ(get_OCSP_REQUEST_nonce(request, nonce, 2), kOcsp | 0x2B);
  EXPECT_EQ(get_OCSP_REQUEST_nonce(request, nonce, 3), 0);
  EXPECT_EQ(to_hex(nonce, 3), "000102");
  free_STACK(certs), free_STACK(issuers);
  EXPECT_EQ(verify_OCSP_REQUEST(request, nullptr), kOcsp | 0x17);
  EXPECT_EQ(sign_OCSP_REQUEST_ex(request, party_key("good").get(), nullptr, PKV_DIGEST_HAS160), kOcsp | 0x2B);
  EXPECT_EQ(is_OCSP_REQUEST_signature(request), 0);
  ASSERT_EQ(sign_OCSP_REQUEST(request, party_key("good").get(), nullptr), 0);
  EXPECT_EQ(verify_OCSP_REQUEST(request, nullptr), kOcsp | 0x14);
  EXPECT_EQ(verify_OCSP_REQUEST(request, cert.get()), 0);
  request->encoded->data[20] ^= 1;
  EXPECT_EQ(verify_OCSP_REQUEST(request, cert.get()), PKV_ERR_MISMATCH);
  free_OCSP_REQUEST(request);
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
  OCSP_REQUEST *request = nullptr;
  EXPECT_EQ(generate_single_OCSP_REQUEST_strict(&request, cert.get(), ca.get(), PKV_DIGEST_SHA1, nullptr, 0), 0);
  const Request owner(request);
  const auto *single = static_cast<OCSP_SINGLE_REQUEST *>(get_STACK_value(get_OCSP_REQUEST_list(request), 0));
  X509_EXTENSION *extension = nullptr;
  X509_EXTENSIONS *extensions = nullptr;
  if (a.critical) {
    create_X509_EXTENSION_by_OID(&extension, oid("1.2.3").get(), 1, string(TYPE_OCTET_STRING, hex("0500")).get());
    add_X509_EXTENSION(&extensions, extension, -1);
  }
  STACK *list = nullptr;
  const String until = text_string(TYPE_GENERALIZED_TIME, a.until);
  EXPECT_EQ(add_single_OCSP_RESPONSE(&list, single->reqCert, OCSP_STATUS_GOOD, nullptr,
                                     text_string(TYPE_GENERALIZED_TIME, a.from).get(),
                                     a.until.empty() ? nullptr : until.get(), extensions),
            0);
  const Bytes nonce = hex(a.nonce);
  OCSP_RESPONSE_DATA *data = nullptr;
  EXPECT_EQ(generate_OCSP_RESPONSE_DATA(&data, responder.get(), a.by_key, list, nonce.data(), int(nonce.size())), 0);
  BASIC_OCSP_RESPONSE *basic = nullptr;
  const auto certs = list_with(party_certificate(a.carried).get());
  const auto key = party_key(a.signer);
  EXPECT_EQ(house ? generate_BASIC_OCSP_RESPONSE_ex(&basic, data, key.get(), certs.get(), digest)
                  : generate_BASIC_OCSP_RESPONSE_strict(&basic, data, key.get(), certs.get(),
                                                        oid("1.2.840.113549.1.1.11").get()),
            0);
  if (a.damage >= 0) basic->signature->data[a.damage] ^= 1;
  free_X509_EXTENSIONS(extensions), free_X509_EXTENSION(extension), free_OCSP_RESPONSE_DATA(data);
  free_STACK_values(list, [](void *each) { free_OCSP_SINGLE_RESPONSE(static_cast<OCSP_SINGLE_RESPONSE *>(each)); });
  return Basic(basic);
}

TEST(OcspVerify, StrictRefusesWhatThePlainOneLetsPass) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  struct Case {
    const char *what;
    int strict, plain;
    unsigned flags;
    Answer a;
  };
  std::vector<Case> cases;
  const auto add = [&](const char *what, int strict, auto &&change, int plain = 0, unsigned flags = 0) {
    Case c{what, strict ? kOcsp | strict : 0, plain, flags, {}};
    change(c.a);
    cases.push_back(c);
  };
  add("by the issuer", 0, [](Answer &) {});
  add("by its key", 0, [](Answer &a) { a.by_key = true; });
  add("by a delegate", 0, [](Answer &a) { a.signer = a.carried = "responder"; });
  add("by a delegate's key", 0, [](Answer &a) { a.signer = a.carried = "responder", a.by_key = true; });
  add(
      "delegate not carried", ERR_OCSP_RESPONDER, [](Answer &a) { a.signer = "responder"; }, PKV_ERR_MISMATCH);
  add("without the purpose", ERR_OCSP_RESPONDER, [](Answer &a) { a.signer = a.carried = "good"; });
  add("of another authority", ERR_OCSP_RESPONDER, [](Answer &a) { a.signer = a.carried = "stranger"; });
  add("anybody", ERR_OCSP_RESPONDER, [](Answer &a) { a.signer = a.carried = "other"; });
  add("another certificate", ERR_OCSP_CERT_ID, [](Answer &a) { a.about = "revoked"; });
  add("of the future", ERR_OCSP_THIS_UPDATE, [](Answer &a) { a.from = "20300101000000Z"; });
  add("no time", ERR_OCSP_THIS_UPDATE, [](Answer &a) { a.from = "2026"; });
  add("out of date", ERR_OCSP_NEXT_UPDATE, [](Answer &a) { a.until = "20260102000000Z"; });
  add("without end", ERR_OCSP_NEXT_UPDATE, [](Answer &a) { a.until.clear(); });
  add(
      "without end, allowed", 0, [](Answer &a) { a.until.clear(); }, 0, OCSP_ALLOW_NO_NEXT_UPDATE);
  add("critical", ERR_UNKNOWN_EXTENSION, [](Answer &a) { a.critical = true; });
  add(
      "no nonce", 0x1A, [](Answer &a) { a.nonce.clear(); }, kOcsp | 0x1A);
  add(
      "nonce not wrapped", 0x19, [](Answer &a) { a.nonce = "aa00bb01cc"; }, kOcsp | 0x19);
  add(
      "nonce of another length", 0x19, [](Answer &a) { a.nonce = "0404aa00bb01"; }, kOcsp | 0x19);
  add("nonce that differs behind a zero", 0x19, [](Answer &a) { a.nonce = "0405aa00bb02cc"; });
  add(
      "nonce that differs before it", 0x19, [](Answer &a) { a.nonce = "0405ab00bb01cc"; }, kOcsp | 0x19);
  const Bytes nonce = hex("aa00bb01cc"), raw = hex("0405aa00bb01cc");
  for (const Case &c : cases) {
    const Basic basic = made(c.a);
    const OCSP_SINGLE_RESPONSE *answer = nullptr;
    const auto time = time_of("20280101000000Z");
    EXPECT_EQ(verify_BASIC_OCSP_RESPONSE_strict(basic.get(), cert.get(), ca.get(), nonce.data(), int(nonce.size()),
                                                time.get(), c.flags, &answer),
              c.strict)
        << c.what;
    EXPECT_EQ(answer != nullptr, c.strict == 0) << c.what;
    EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(basic.get(), nullptr, raw.data(), int(raw.size())), c.plain) << c.what;
  }
  Answer damaged;
  damaged.damage = 7;
  EXPECT_EQ(
      verify_BASIC_OCSP_RESPONSE_strict(made(damaged).get(), cert.get(), ca.get(), nullptr, 0, nullptr, 0, nullptr),
      PKV_ERR_MISMATCH);
  Answer late;
  late.signer = late.carried = "responder";
  EXPECT_EQ(verify_BASIC_OCSP_RESPONSE_strict(made(late).get(), cert.get(), ca.get(), nullptr, 0,
                                              time_of("20390101000000Z").get(), 0, nullptr),
            kOcsp | ERR_OCSP_RESPONDER);
}

TEST(OcspVerify, GivesTheReasonsInOrder) {
  VELPKI_NEED_OPENSSL;
  const Certificate ca = party_certificate("ca");
  const Basic basic = made({}, true, PKV_DIGEST_MD5);
  EXPECT_EQ(text_of(basic->signatureAlgorithm->algorithm), "1.2.840.113549.1.1.4");
  const auto verify = [&](X509_CERT *signer) { return verfy_BASIC_OCSP_RESPONSE(basic.get(), signer, nullptr, 0); };
  EXPECT_EQ(verify(nullptr), 0);
  EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(nullptr, ca.get(), nullptr, 0), kOcsp | 0x49);
  // A signature failure comes before anything about the nonce.
  basic->signature->data[0] ^= 1;
  EXPECT_EQ(verify_BASIC_OCSP_RESPONSE(basic.get(), nullptr, hex("01").data(), 1), PKV_ERR_MISMATCH);
  free_OBJECT_IDENTIFIER(basic->signatureAlgorithm->algorithm);
  basic->signatureAlgorithm->algorithm = oid("1.2.3").release();
  EXPECT_EQ(verify(nullptr), kOcsp | 0x1B);
  free_ASN1_STRING(std::exchange(basic->signature, nullptr));
  EXPECT_EQ(verify(nullptr), kOcsp | 0x17);
  free_ASN1_STRING(std::exchange(basic->encoded, nullptr));
  EXPECT_EQ(verify(nullptr), kOcsp | 0x18);
  free_X509_CERTIFICATES(std::exchange(basic->certs, nullptr));
  EXPECT_EQ(verify(nullptr), kOcsp | 0x14);
  EXPECT_EQ(verify(ca.get()), kOcsp | 0x18);
  EXPECT_EQ(get_CERT_STATUS_count_from_OCSP_RESPONSE(nullptr), -1);
  EXPECT_NE(get_CERT_STATUS_from_OCSP_RESPONSE(basic.get(), nullptr), nullptr);
  OCSP_RESPONSE *response = nullptr;
  EXPECT_EQ(generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, nullptr), kOcsp | 0x49);
  EXPECT_EQ(generate_OCSP_RESPONSE(&response, 4, nullptr), kOcsp | 0x2B);
  EXPECT_EQ(generate_OCSP_RESPONSE(&response, OCSP_TRY_LATER, nullptr), 0);
  EXPECT_EQ(to_hex(encoded(OCSP_RESPONSE_to_Seq, response)), "30030a0103");
  free_OCSP_RESPONSE(response);
}

TEST(OcspVerify, SurvivesEachFailedAllocation) {
  VELPKI_NEED_OPENSSL;
  const Certificate cert = party_certificate("good"), ca = party_certificate("ca");
  const auto key = party_key("responder");
  Answer a;
  a.signer = a.carried = "responder";
  const Basic basic = made(a);
  verify_BASIC_OCSP_RESPONSE_strict(basic.get(), cert.get(), ca.get(), nullptr, 0, nullptr, 0, nullptr);
  int code = 1;
  for (long n = 0; code && n < 3000; ++n) {
    const size_t before = live_blocks();
    OCSP_REQUEST *request = nullptr;
    BASIC_OCSP_RESPONSE *again = nullptr;
    OCSP_RESPONSE *response = nullptr;
    fail_allocation(n);
    code = generate_single_OCSP_REQUEST_strict(&request, cert.get(), ca.get(), PKV_DIGEST_SHA256, nullptr, 0);
    if (!code) code = sign_OCSP_REQUEST(request, key.get(), cert.get());
    if (!code) {
      code = generate_BASIC_OCSP_RESPONSE(&again, basic->tbsResponseData, key.get(), basic->certs);
    }
    if (!code) code = generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, again);
    if (!code) {
      code = verify_BASIC_OCSP_RESPONSE_strict(basic.get(), cert.get(), ca.get(), nullptr, 0, nullptr, 0, nullptr);
    }
    fail_allocation(-1);
    free_OCSP_REQUEST(request), free_BASIC_OCSP_RESPONSE(again), free_OCSP_RESPONSE(response);
    ASSERT_LE(live_blocks(), before + 8) << "allocation " << n;  // a key keeps what it prepared
  }
  EXPECT_EQ(code, 0);
}

}  // namespace
