// Trust lists in signed messages.
#include <velpki/cpv.h>
#include <velpki/ctl.h>

#include "samples.h"
#include "support/json.h"

using namespace test;

namespace {

struct ReleaseList {
  void operator()(P7_CONTENT_INFO *p) const { free_P7_CONTENT_INFO(p); }
  void operator()(CERT_TRUST_LIST *p) const { free_CERT_TRUST_LIST(p); }
  void operator()(STACK *p) const { free_TRUST_ANCHORS(p); }
};
using Message = std::unique_ptr<P7_CONTENT_INFO, ReleaseList>;
using List = std::unique_ptr<CERT_TRUST_LIST, ReleaseList>;
using Anchors = std::unique_ptr<STACK, ReleaseList>;

std::string pem(const std::string &label, const std::string &base64) {
  std::string out = "-----BEGIN " + label + "-----\n";
  for (size_t i = 0; i < base64.size(); i += 64) out += base64.substr(i, 64) + "\n";
  return out + "-----END " + label + "-----\n";
}
Message message_in(const Json &sample) {
  const std::string text = pem("PKCS7", sample["message_base64"].text);
  P7_CONTENT_INFO *message = nullptr;
  readPEM_P7_CONTENT_INFO_from_Binary(&message, text.c_str(), int(text.size()));
  return Message(message);
}
Certificate signer_in(const Json &sample) {
  const std::string text = pem("CERTIFICATE", sample["signer_base64"].text);
  X509_CERT *cert = nullptr;
  readPEM_X509_CERT_from_Binary(&cert, text.c_str(), int(text.size()));
  return Certificate(cert);
}
P7_SIGNED_DATA *content_of(const Message &message) { return static_cast<P7_SIGNED_DATA *>(message->content); }

TEST(TrustList, SamplesAreReadAndVerify) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json samples = read_json(file)["ctl"];
  ASSERT_EQ(samples.items.size(), 4u);
  for (const Json &sample : samples.items) {
    SCOPED_TRACE(sample["name"].text);
    const Message message = message_in(sample);
    const Certificate signer = signer_in(sample);
    ASSERT_TRUE(message && signer);
    EXPECT_EQ(verify_ctlSignedData(message.get(), nullptr), 0);
    EXPECT_EQ(verify_ctlSignedData(message.get(), signer.get()), 0);
    CERT_TRUST_LIST *list = nullptr;
    ASSERT_EQ(P7_CONTENT_INFO_to_CERT_TRUST_LIST(message.get(), &list), 0);
    const List owner(list);
    EXPECT_EQ(PKV_Get_BIGINT_Word(list->sequenceNumber), 41u);
    EXPECT_EQ(get_STACK_count(list->trustedSubjects), 4);
    EXPECT_EQ(text_of(list->subjectAlgorithm), "1.3.14.3.2.26");
    EXPECT_EQ(text_of(static_cast<ASN1_STRING *>(get_STACK_value(list->subjectUsage, 0))), "1.2.410.200004.8.1.1.1");
    P7_CONTENT_INFO *again = nullptr;
    ASSERT_EQ(CERT_TRUST_LIST_to_P7_CONTENT_INFO(list, &again), 0);
    const Message content(again);
    if (list->version) EXPECT_EQ(flat(static_cast<ASN1_UNIT *>(again->content)), sample["list"].text);
    CERT_TRUST_LIST *back = nullptr;
    EXPECT_EQ(P7_CONTENT_INFO_to_CERT_TRUST_LIST(again, &back), 0);
    const List second(back);
  }
}

// What makes a message no signed list.
struct Fault {
  const char *name;
  int code;  // 0 for any
  void (*spoil)(P7_CONTENT_INFO *message, P7_SIGNED_DATA *content);
};
P7_SIGNER_INFO *first_signer(P7_SIGNED_DATA *content) {
  return static_cast<P7_SIGNER_INFO *>(get_STACK_value(content->signerInfos, 0));
}
const Fault kFaults[] = {
    {"no signer", F_P7_VERIFY | 0x2B,
     [](P7_CONTENT_INFO *, P7_SIGNED_DATA *content) {
       free_P7_SIGNER_INFO(first_signer(content)), content->signerInfos->count = 0;
     }},
    {"no certificates", F_P7_VERIFY | ERR_NO_SIGNER_CERTIFICATE,
     [](P7_CONTENT_INFO *, P7_SIGNED_DATA *content) {
       free_X509_CERTIFICATES(content->certificates), content->certificates = nullptr;
     }},
    {"another list", F_P7_VERIFY | 0x5E,
     [](P7_CONTENT_INFO *, P7_SIGNED_DATA *content) {
       auto *&unit = content->contentInfo->content;
       Bytes der = hex(flat(static_cast<ASN1_UNIT *>(unit)));
       der[30] ^= 1;
       free_ASN1_UNIT(static_cast<ASN1_UNIT *>(unit));
       unit = test::unit(der).release();
     }},
    {"another signature", 0,
     [](P7_CONTENT_INFO *, P7_SIGNED_DATA *content) { first_signer(content)->encryptedDigest->data[9] ^= 1; }},
    {"no list", F_ADD_TRUSTLIST | 0x48,
     [](P7_CONTENT_INFO *, P7_SIGNED_DATA *content) {
       free_P7_CONTENT_INFO(content->contentInfo), content->contentInfo = new_P7_CONTENT_INFO();
     }},
    {"the list alone", F_ADD_TRUSTLIST | 0x48,
     [](P7_CONTENT_INFO *message, P7_SIGNED_DATA *content) {
       P7_CONTENT_INFO *inner = std::exchange(content->contentInfo, nullptr);
       std::swap(*message, *inner);
       free_P7_CONTENT_INFO(inner);
     }},
};

TEST(TrustList, NothingUnsignedIsTaken) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json samples = read_json(file)["ctl"];
  const Json &sample = samples.items[0];
  for (const Fault &fault : kFaults) {
    SCOPED_TRACE(fault.name);
    const Message message = message_in(sample);
    fault.spoil(message.get(), content_of(message));
    const int code = verify_ctlSignedData(message.get(), nullptr);
    EXPECT_NE(code, 0);
    if (fault.code) EXPECT_EQ(code, fault.code);
    const Anchors anchors(new_TRUST_ANCHORS());
    EXPECT_EQ(add_TRUST_ANCHORS_from_CTL(anchors.get(), message.get()), F_ADD_TRUSTLIST | 0x49);
    EXPECT_EQ(add_CERTIFICATES_from_CTL(anchors.get(), message.get()), F_ADD_CERTLIST | 0x49);
    EXPECT_EQ(anchors->count, 0);
  }
  const Message message = message_in(sample);
  const auto *other = static_cast<X509_CERT *>(get_STACK_value(content_of(message)->certificates, 0));
  const Certificate stranger(dup_X509_CERT(other));
  const Number serial = number("7777");
  set_X509_serial(stranger.get(), serial.get());
  EXPECT_EQ(verify_ctlSignedData(message.get(), stranger.get()), F_P7_VERIFY | 0x2B);
  EXPECT_EQ(verify_ctlSignedData(nullptr, nullptr), F_ADD_TRUSTLIST | 0x49);
  EXPECT_EQ(add_TRUST_ANCHORS_from_CTL(nullptr, message.get()), F_ADD_TRUSTLIST | 0x49);
}

TEST(TrustList, CertificatesBecomeAnchorsAllOrNone) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json samples = read_json(file)["ctl"];
  const Message message = message_in(samples.items[0]);
  const X509_CERTIFICATES *carried = content_of(message)->certificates;
  const Anchors anchors(new_TRUST_ANCHORS());
  const Certificate first(dup_X509_CERT(static_cast<X509_CERT *>(get_STACK_value(carried, 0))));
  int code = verify_ctlSignedData(message.get(), nullptr) + 1;  // and the key is ready for use from then on
  for (long n = 0; code && n < 5000; ++n) {
    const size_t before = live_blocks();
    fail_allocation(n);
    code = add_TRUST_ANCHORS_from_CTL(anchors.get(), message.get());
    fail_allocation(-1);
    if (code) EXPECT_TRUE(live_blocks() == before && anchors->count == 0) << n;
  }
  EXPECT_EQ(code, 0);
  EXPECT_EQ(anchors->count, carried->count);
  TRUST_ANCHOR wanted{get_X509_subject(first.get()), get_X509_SPKI(first.get())};
  EXPECT_EQ(get_TRUST_ANCHORS_index_by_TRUST_ANCHOR(anchors.get(), &wanted), 0);
  const std::unique_ptr<STACK, ReleaseOcsp> certificates(new_X509_CERTIFICATES());
  EXPECT_EQ(add_CERTIFICATES_from_CTL(certificates.get(), message.get()), 0);
  EXPECT_EQ(certificates->count, carried->count);
}

TEST(TrustList, StrictlyOnlyWhatATrustedListNames) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json samples = read_json(file)["ctl"];
  const Message message = message_in(samples.items[0]);
  const Certificate signer = signer_in(samples.items[0]), stranger = signer_in(samples.items[0]);
  const Number serial = number("7777");
  set_X509_serial(stranger.get(), serial.get());
  const Anchors anchors(new_TRUST_ANCHORS());
  const auto add = [&](X509_CERT *by, const char *at) {
    return add_TRUST_ANCHORS_from_CTL_strict(anchors.get(), message.get(), by, at ? time_of(at).get() : nullptr);
  };
  EXPECT_EQ(add(nullptr, nullptr), F_ADD_TRUSTLIST | 0x49);
  EXPECT_EQ(add(stranger.get(), nullptr), F_P7_VERIFY | 0x2B);
  EXPECT_EQ(add(signer.get(), "19991231235959Z"), F_ADD_TRUSTLIST | ERR_TRUST_LIST_DATES);
  EXPECT_EQ(add(signer.get(), "20500101000001Z"), F_ADD_TRUSTLIST | ERR_TRUST_LIST_DATES);
  EXPECT_EQ(anchors->count, 0);
  // The list's own octets are signed, so what is named is changed by changing the certificates beside it.
  EXPECT_EQ(add(signer.get(), nullptr), 0);
  const int named = anchors->count;
  EXPECT_GT(named, 0);
  add_X509_CERTIFICATES(content_of(message)->certificates, stranger.get());
  EXPECT_EQ(add(signer.get(), nullptr), 0);
  EXPECT_EQ(anchors->count, 2 * named);
  X509_CERTIFICATES *certificates = content_of(message)->certificates;
  while (certificates->count) free_X509_CERT(static_cast<X509_CERT *>(pop_STACK_value(certificates)));
  EXPECT_EQ(add(signer.get(), nullptr), F_ADD_TRUSTLIST | ERR_NOT_FOUNDED);
}

}  // namespace
