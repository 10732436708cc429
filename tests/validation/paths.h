// Paths and policy sets that the tests of this folder share.
#pragma once

#include <velpki/cpv_validate.h>

#include <atomic>

#include "samples.h"

namespace test {

// A user's policies, and the levels of a tree.
inline void free_policies(STACK *p) {
  free_STACK_values(p, [](void *oid) { free_OBJECT_IDENTIFIER(static_cast<OBJECT_IDENTIFIER *>(oid)); });
}
using Policies = Owned<STACK, free_policies>;
using Tree = Owned<node_LIST>;

inline Policies policies_of(const std::vector<std::string> &dotted) {
  Policies out(new_STACK());
  for (const std::string &each : dotted) push_STACK_value(out, oid(each).release());
  return out;
}

// The settings of one row; the usual ones come back at its end.
struct Settings {
  Settings(int explicit_policy, int any_policy_inhibit) {
    set_initial_explicit_policy(explicit_policy);
    set_initial_any_policy_inhibit(any_policy_inhibit);
  }
  ~Settings() {
    set_initial_explicit_policy(0);
    set_initial_any_policy_inhibit(0);
  }
};

// Tests over certificates that are made for them: three keys, for the time of one test.
inline std::vector<Owned<ASYMMETRIC_KEY>> test_keys;
inline ASYMMETRIC_KEY *test_key(int index) { return test_keys[size_t(index)]; }
class WithThreeKeys : public testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 3; ++i) test_keys.push_back(new_rsa());
  }
  void TearDown() override { test_keys.clear(); }
};

// A certificate that is made as it says.
struct Made {
  std::string subject, issuer;
  int key = 0, signer = 0;
  Bytes extensions{};                                // the list's content
  bool extended = true;                              // whether there is a list
  std::string until = "3430303130313030303030305a";  // of 2040
  uint8_t subject_type = 0x0C;
};
inline Bytes name_of(const std::string &text, uint8_t type = 0x0C) {
  return TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(type, Bytes(text.begin(), text.end())))));
}
inline Certificate make_certificate(const Made &made, bool standard = false) {
  static std::atomic<int> count{0};  // tests make certificates in several threads
  const Bytes algorithm = TLV(0x30, "06092a864886f70d01010b0500");
  const Bytes spki = TLV(0x30, TLV(0x30, "06092a864886f70d0101010500") + TLV(0x03, "00300602010b020103"));
  const Bytes dates = TLV(0x30, TLV(0x17, "3230303130313030303030305a") + TLV(0x17, made.until));
  const int serial = ++count;
  const Bytes number{uint8_t(1 + (serial >> 8) % 100), uint8_t(serial)};
  const Bytes tail = made.extended ? TLV(0xA3, TLV(0x30, made.extensions)) : Bytes();
  const Bytes tbs = TLV(0x30, TLV(0xA0, "020102") + TLV(0x02, number) + algorithm + name_of(made.issuer) + dates +
                                  name_of(made.subject, made.subject_type) + spki + tail);
  const Bytes der = TLV(0x30, tbs + algorithm + TLV(0x03, "00aa"));
  Certificate cert = read_by(standard ? readDER_X509_CERT_from_Binary_RFC5280 : readDER_X509_CERT_from_Binary, der);
  EXPECT_TRUE(cert);
  const Owned<X509_PUBKEY> key = public_half(test_key(made.key));
  set_X509_pub_key(cert, key);
  ASYMMETRIC_KEY *signer = test_key(made.signer);
  EXPECT_EQ(standard ? gen_SIG_X509_Cert_RFC5280(cert, signer) : gen_SIG_X509_Cert(cert, signer), 0);
  return cert;
}

// A path whose certificates are read in standard form, and its anchor.
struct StrictPath {
  Certificates certs{new_X509_CERTIFICATES()};
  Owned<STACK, free_TRUST_ANCHORS> anchors{new_TRUST_ANCHORS()};
  explicit StrictPath(const std::vector<Made> &made) {
    for (const Made &each : made) push_STACK_value(certs, make_certificate(each, true).release());
    const auto *root = item<X509_CERT>(certs, certs->count - 1);
    const TRUST_ANCHOR anchor{get_X509_subject(root), get_X509_SPKI(root)};
    add_TRUST_ANCHORS(anchors, &anchor);
  }
  X509_CERT *at(int index) const { return static_cast<X509_CERT *>(certs->data[index]); }
};

inline const Bytes kAuthority = extension("551d13", hex("30030101ff"), true);
inline const Made kRoot{"root", "root", 0, 0, kAuthority};

}  // namespace test
