// Trust lists in signed messages.
#include <velpki/cpv.h>
#include <velpki/ctl.h>

#include "samples.h"
#include "support/json.h"

using namespace test;

namespace {

using Message = Owned<P7_CONTENT_INFO>;
using List = Owned<CERT_TRUST_LIST>;
using Anchors = Owned<STACK, free_TRUST_ANCHORS>;

Message message_in(const Json &sample) {
  return read_by(readDER_P7_CONTENT_INFO_from_Binary, from_base64(sample["message_base64"].text));
}
Certificate signer_in(const Json &sample) {
  return read_by(readDER_X509_CERT_from_Binary, from_base64(sample["signer_base64"].text));
}
P7_SIGNED_DATA *content_of(const Message &message) { return static_cast<P7_SIGNED_DATA *>(message->content); }

TEST(TrustList, SamplesAreReadAndVerify) {
  VELPKI_NEED_KOREAN;
  const Json &samples = korean("ctl");
  ASSERT_EQ(samples.items.size(), 4u);
  for (const Json &sample : samples.items) {
    SCOPED_TRACE(sample["name"].text);
    const Message message = message_in(sample);
    const Certificate signer = signer_in(sample);
    ASSERT_TRUE(message && signer);
    EXPECT_EQ(verify_ctlSignedData(message, nullptr), 0);
    EXPECT_EQ(verify_ctlSignedData(message, signer), 0);
    List list;
    ASSERT_EQ(P7_CONTENT_INFO_to_CERT_TRUST_LIST(message, &list), 0);
    EXPECT_EQ(PKV_Get_BIGINT_Word(list->sequenceNumber), 41u);
    EXPECT_EQ(get_STACK_count(list->trustedSubjects), 4);
    EXPECT_EQ(text_of(list->subjectAlgorithm), "1.3.14.3.2.26");
    EXPECT_EQ(text_of(item<ASN1_STRING>(list->subjectUsage, 0)), "1.2.410.200004.8.1.1.1");
    Message again;
    ASSERT_EQ(CERT_TRUST_LIST_to_P7_CONTENT_INFO(list, &again), 0);
    if (list->version) EXPECT_EQ(flat(static_cast<ASN1_UNIT *>(again->content)), sample["list"].text);
    List back;
    EXPECT_EQ(P7_CONTENT_INFO_to_CERT_TRUST_LIST(again, &back), 0);
  }
}

// What makes a message no signed list.
struct Fault {
  const char *name;
  int code;  // 0 for any
  void (*spoil)(P7_CONTENT_INFO *message, P7_SIGNED_DATA *content);
};
P7_SIGNER_INFO *first_signer(P7_SIGNED_DATA *content) { return item<P7_SIGNER_INFO>(content->signerInfos, 0); }
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
  VELPKI_NEED_KOREAN;
  const Json &sample = korean("ctl").items[0];
  for (const Fault &fault : kFaults) {
    SCOPED_TRACE(fault.name);
    const Message message = message_in(sample);
    fault.spoil(message, content_of(message));
    const int code = verify_ctlSignedData(message, nullptr);
    EXPECT_NE(code, 0);
    if (fault.code) EXPECT_EQ(code, fault.code);
    const Anchors anchors(new_TRUST_ANCHORS());
    EXPECT_EQ(add_TRUST_ANCHORS_from_CTL(anchors, message), F_ADD_TRUSTLIST | 0x49);
    EXPECT_EQ(add_CERTIFICATES_from_CTL(anchors, message), F_ADD_CERTLIST | 0x49);
    EXPECT_EQ(anchors->count, 0);
  }
  const Message message = message_in(sample);
  const Certificate stranger(dup_X509_CERT(item<X509_CERT>(content_of(message)->certificates, 0)));
  set_X509_serial(stranger, number("7777"));
  EXPECT_EQ(verify_ctlSignedData(message, stranger), F_P7_VERIFY | 0x2B);
  EXPECT_EQ(verify_ctlSignedData(nullptr, nullptr), F_ADD_TRUSTLIST | 0x49);
  EXPECT_EQ(add_TRUST_ANCHORS_from_CTL(nullptr, message), F_ADD_TRUSTLIST | 0x49);
}

TEST(TrustList, CertificatesBecomeAnchorsAllOrNone) {
  VELPKI_NEED_KOREAN;
  const Json &sample = korean("ctl").items[0];
  const Message message = message_in(sample);
  const X509_CERTIFICATES *carried = content_of(message)->certificates;
  const Anchors anchors(new_TRUST_ANCHORS());
  const Certificate first(dup_X509_CERT(item<X509_CERT>(carried, 0)));
  EXPECT_EQ(verify_ctlSignedData(message, nullptr), 0);  // and the key is ready for use from then on
  survive_each_failed_allocation([&] {
    const Anchors fresh(new_TRUST_ANCHORS());
    const int code = fresh ? add_TRUST_ANCHORS_from_CTL(fresh, message) : -1;
    if (fresh) EXPECT_EQ(fresh->count, code ? 0 : carried->count);
    return code == 0;
  });
  EXPECT_EQ(add_TRUST_ANCHORS_from_CTL(anchors, message), 0);
  EXPECT_EQ(anchors->count, carried->count);
  TRUST_ANCHOR wanted{get_X509_subject(first), get_X509_SPKI(first)};
  EXPECT_EQ(get_TRUST_ANCHORS_index_by_TRUST_ANCHOR(anchors, &wanted), 0);
  const Certificates certificates(new_X509_CERTIFICATES());
  EXPECT_EQ(add_CERTIFICATES_from_CTL(certificates, message), 0);
  EXPECT_EQ(certificates->count, carried->count);
}

TEST(TrustList, StrictlyOnlyWhatATrustedListNames) {
  VELPKI_NEED_KOREAN;
  const Json &sample = korean("ctl").items[0];
  const Message message = message_in(sample);
  const Certificate signer = signer_in(sample), stranger = signer_in(sample);
  set_X509_serial(stranger, number("7777"));
  const Anchors anchors(new_TRUST_ANCHORS());
  const auto add = [&](X509_CERT *by, const char *at) {
    return add_TRUST_ANCHORS_from_CTL_strict(anchors, message, by, at ? time_of(at) : nullptr);
  };
  EXPECT_EQ(add(nullptr, nullptr), F_ADD_TRUSTLIST | 0x49);
  EXPECT_EQ(add(stranger, nullptr), F_P7_VERIFY | 0x2B);
  EXPECT_EQ(add(signer, "19991231235959Z"), F_ADD_TRUSTLIST | ERR_TRUST_LIST_DATES);
  EXPECT_EQ(add(signer, "20500101000001Z"), F_ADD_TRUSTLIST | ERR_TRUST_LIST_DATES);
  EXPECT_EQ(anchors->count, 0);
  // The list's own octets are signed, so what is named is changed by changing the certificates beside it.
  EXPECT_EQ(add(signer, nullptr), 0);
  const int named = anchors->count;
  EXPECT_GT(named, 0);
  add_X509_CERTIFICATES(content_of(message)->certificates, stranger);
  EXPECT_EQ(add(signer, nullptr), 0);
  EXPECT_EQ(anchors->count, 2 * named);
  X509_CERTIFICATES *certificates = content_of(message)->certificates;
  while (certificates->count) free_X509_CERT(static_cast<X509_CERT *>(pop_STACK_value(certificates)));
  EXPECT_EQ(add(signer, nullptr), F_ADD_TRUSTLIST | ERR_NOT_FOUNDED);
}

}  // namespace
