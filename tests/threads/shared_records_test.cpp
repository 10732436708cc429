// Two threads read the same records at the same time, and get what one alone gets. What they are for is a build with
// the thread sanitizer, which sees a race also where it does no harm.
#include <velpki/asn1_error.h>

#include <thread>

#include "validation/paths.h"

using namespace test;

namespace {

// A root, an authority and a user, read from octets, so that no key was used before.
struct Shared : StrictPath {
  Shared() : StrictPath({{"user", "authority", 2, 1, {}, false}, {"authority", "root", 1, 0, kAuthority}, kRoot}) {}
  Bytes der = encoded(X509_CERT_to_Seq_RFC5280, at(2));
};

int verify(const Shared &shared) { return verify_SIG_X509_CERT_RFC5280(shared.at(0), get_X509_SPKI(shared.at(1))); }
int verify_house(const Shared &shared) { return verify_SIG_X509_CERT(shared.at(1), get_X509_SPKI(shared.at(2))->key); }
int validate(const Shared &shared) { return validate_certpath_strict(shared.certs, shared.anchors, nullptr, nullptr); }
int validate_house(const Shared &shared) {
  Tree tree;
  return validate_certpath(shared.certs, nullptr, &tree);
}
int build(const Shared &shared) {
  Certificates built;
  return build_certPath_strict(&built, shared.at(0), shared.certs, shared.anchors, nullptr, nullptr);
}
int decode(const Shared &shared) { return read_by(readDER_X509_CERT_from_Binary_RFC5280, shared.der) ? 0 : 1; }
int encode(const Shared &shared) { return encoded(X509_CERT_to_Seq_RFC5280, shared.at(2)) == shared.der ? 0 : 1; }
int copy(const Shared &shared) { return Certificate(dup_X509_CERT(shared.at(0))) ? 0 : 1; }
int compare_names(const Shared &shared) {
  return cmp_X509_NAME_RFC5280(get_X509_subject(shared.at(1)), get_X509_issuer(shared.at(0)));
}
int look_up(const Shared &) { return index_from_oid_string("1.2.410.200004", 14) == 773 ? 0 : 1; }
int describe(const Shared &) {
  char text[128];
  return describe_velpki_code(F_BUILD_CERTPATH | ERR_NOT_FOUNDED, text, sizeof text) > 0 ? 0 : 1;
}

class Threads : public WithThreeKeys {};

TEST_F(Threads, ReadTheSameRecords) {
  for (const auto work : {verify, verify_house, validate, validate_house, build, decode, encode, copy, compare_names,
                          look_up, describe}) {
    const Shared shared;  // anew for each, so that the first use is at the same time, too
    const auto often = [&] {
      int code = 0;
      for (int i = 0; i < 20 && !code; ++i) code = work(shared);
      return code;
    };
    int there = -1;
    std::thread other([&] { there = often(); });
    EXPECT_EQ(often(), 0);
    other.join();
    EXPECT_EQ(there, 0);
  }
}

}  // namespace
