// Verification without tolerances, as PKCS#7 and CMS share it.
#pragma once

#include "cms/internal/signature.h"

namespace velpki {

// A signer whose attributes are the octets that were received, as the DER of their SET; empty when it has none.
struct StrictSigner {
  Octets attributes;
  const X509_ALGO_IDENTIFIER *digest_algorithm;
  const X509_ALGO_IDENTIFIER *signature_algorithm;
  const ASN1_STRING *signature;
};

// 0, or `function` with what is wrong: see verify_PKCS7_strict.
int verify_signer_strict(const StrictSigner &signer, const OBJECT_IDENTIFIER *content_type, const X509_PUBKEY &key,
                         bool weak_allowed, ContentDigests &digests, int function) noexcept;

// The part of that which binds the attributes, or their absence, to a content.
int check_binding(const StrictSigner &signer, const OBJECT_IDENTIFIER *content_type, ContentDigests &digests,
                  int function) noexcept;

// The attributes of a signer as a SET in DER, from the content of the SignerInfo that was received, or from the list
// where nothing was. False when they cannot be written; nothing is written for a signer without.
bool write_received_attributes(Octets received, const X509_ATTRIBUTES *attributes, DerWriter &out) noexcept;

// Whether a certificate has the issuer and serial number that were received, octet for octet; what was built here is
// compared by its members.
bool is_named(const X509_CERT &cert, Octets received_name, const X509_NAME *issuer, const BIGINT *serial) noexcept;

// The caller's reports on signers, as many as there is room for.
template <class Report>
class Reports {
 public:
  Reports(Report *out, int *count) noexcept : out_(count ? out : nullptr), count_(count) {
    if (count_) room_ = std::exchange(*count_, 0);
  }
  void add(const Report &report) noexcept {
    if (out_ && *count_ < room_) out_[*count_] = report;
    if (count_ && *count_ < room_) ++*count_;
  }
  bool wants_more() const noexcept { return count_ && *count_ < room_; }

 private:
  Report *out_;
  int *count_;
  int room_ = 0;
};

// Whether two runs of octets are equal.
inline bool equal_octets(Octets a, Octets b) noexcept {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

}  // namespace velpki
