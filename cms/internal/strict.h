// Verification without tolerances, as PKCS#7 and CMS share it.
#pragma once

#include "cms/internal/certificate_index.h"
#include "cms/internal/signer_state.h"

namespace velpki {

// A signer whose attributes are the octets that were received, as the DER of their SET; empty when it has none.
struct StrictSigner {
  Octets attributes;
  const X509_ALGO_IDENTIFIER *digest_algorithm;
  const X509_ALGO_IDENTIFIER *signature_algorithm;
  const ASN1_STRING *signature;
};

// Whether what a digest binds can be trusted no longer: an unknown one, or one that collisions are found for.
bool is_weak_digest(int digest_id) noexcept;

// 0, or `function` with what is wrong: see verify_PKCS7_strict.
int verify_signer_strict(const StrictSigner &signer, const OBJECT_IDENTIFIER *content_type, const X509_PUBKEY &key,
                         bool weak_allowed, ContentDigests &digests, int function) noexcept;

// The part of that which binds the attributes, or their absence, to a content.
int check_binding(const StrictSigner &signer, const OBJECT_IDENTIFIER *content_type, ContentDigests &digests,
                  int function) noexcept;

// The attributes of a signer as a SET in DER, from what is kept of it, or from the list where nothing is. False when
// they cannot be written, or are not those of the list; nothing is written for a signer without.
bool write_kept_attributes(const KeptOctets &kept, const X509_ATTRIBUTES *attributes, DerWriter &out) noexcept;

// Issuer and serial number of a certificate as they were received, each whole; false where it was built here.
bool name_of_certificate(const X509_CERT &cert, Octets &issuer, Octets &serial) noexcept;

// Whether a certificate has the subject key identifier, or the issuer and serial number that were received, octet for
// octet; what was built here is compared by its members.
bool is_named(const X509_CERT &cert, const SignerName &name) noexcept;

// What is signed: what the message holds, or else what the caller gives. Where there is both they have to agree.
int choose_content(const Octets *held, const Octets *given, int function, Octets &out) noexcept;

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

// Where the certificates of a message's signers are: a chosen one, else those of the message and more. Lent.
struct SignerCertificates {
  const X509_CERT *chosen;
  const STACK *own, *more;
};

// Verifies every signer, or with a chosen certificate those that it is named by, and reports each. The first failure,
// or `function` with 2B when there was none to verify. `task` holds what all signers share.
template <class Signer, class Report, class Task>
int verify_each(const STACK *signers, const SignerCertificates &certificates, const Task &task,
                Reports<Report> &reports, int function, SignerName (*name_of)(const Signer &) noexcept,
                int (*verify)(const Signer &, const Task &, const X509_CERT *) noexcept) noexcept {
  const CertificateIndex index(certificates.chosen ? nullptr : signers, certificates.own, certificates.more,
                               CertificateIndex::Comparison::strict);
  const auto find = [&](const SignerName &name) noexcept -> const X509_CERT * {
    const X509_CERT *found = nullptr;
    if (certificates.chosen) return is_named(*certificates.chosen, name) ? certificates.chosen : nullptr;
    if (index.find(name, found)) return found;
    for (const STACK *list : {certificates.own, certificates.more})
      for (const X509_CERT *cert : elements<X509_CERT>(list))
        if (cert && is_named(*cert, name)) return cert;
    return nullptr;
  };
  int verified = 0, first = 0;
  for (const Signer *signer : elements<Signer>(signers)) {
    const X509_CERT *cert = signer ? find(name_of(*signer)) : nullptr;
    if (!signer || (certificates.chosen && !cert)) continue;
    const int code = verify(*signer, task, cert);
    reports.add({signer, cert, digest_id_of(signer->digestAlgorithm), code});
    if (!first) first = code;
    ++verified;
    if (first && !reports.wants_more()) break;  // a stranger's message may have very many
  }
  return verified ? first : fail(function, kBadValue);
}

// Whether two runs of octets are equal.
inline bool equal_octets(Octets a, Octets b) noexcept {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

}  // namespace velpki
