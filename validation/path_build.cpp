// Building a path: from a certificate through a pool of others to a root that is a trust anchor.
#include <velpki/asn1_error.h>

#include <algorithm>

#include "validation/internal/cpv.h"

namespace velpki {

Octets subject_key_id(const X509_CERT &cert) noexcept {
  Tlv value;
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), "2.5.29.14");
  return extension && value_of(*extension, value) && value.identifier == TYPE_OCTET_STRING ? value.content : Octets();
}
Octets issuer_key_id(const X509_CERT &cert) noexcept {
  Tlv value, member;
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), "2.5.29.35");
  if (!extension || !value_of(*extension, value)) return {};
  Cursor in(value);
  while (!in.at_end() && in.next(member))
    if (member.identifier == tag::implicit_context(0)) return member.content;
  return {};
}

namespace {

constexpr int failure(int reason) noexcept { return fail(F_BUILD_CERTPATH, reason); }

constexpr int kLongest = 16;      // certificates of a path
constexpr int kSignatures = 256;  // that are verified at most
constexpr int kRanks = 12;        // see rank_of
constexpr int kUnknown = -1;

// A certificate of the pool, under the hash of its subject. What it says of itself is read when it is looked at first.
struct Candidate {
  uint64_t subject;
  X509_CERT *cert;
  int standing;   // 0 to 3: may issue certificates, and is valid now
  Octets key_id;  // its subject key identifier, empty for none
};

uint64_t add_to_hash(uint64_t hash, Octets octets) noexcept {
  for (const uint8_t octet : octets) hash = (hash ^ octet) * 0x100000001B3;
  return (hash ^ 0xFF) * 0x100000001B3;
}
// Equal names have equal hashes; that equal hashes are of equal names is looked at.
uint64_t hash_of(const X509_NAME *name) noexcept {
  uint64_t hash = 0xCBF29CE484222325;
  for (const X509_NAME_CHILD *child : elements<X509_NAME_CHILD>(name))
    if (child && child->value) hash = add_to_hash(hash, octets(*child->value));
  return hash;
}

bool same(Octets a, Octets b) noexcept { return std::equal(a.begin(), a.end(), b.begin(), b.end()); }

// Whether validation takes it as an issuer: constraints that say so and a key usage that does not speak against it.
bool may_issue(const X509_CERT &cert) noexcept {
  owned<BASIC_CONSTRAINTS> constraints;
  KeyUsage usage;
  if (!get_X509_extensions(&cert)) return true;
  if (read_basic_constraints(cert, F_BUILD_CERTPATH, constraints) || read_key_usage(cert, F_BUILD_CERTPATH, usage)) {
    return false;
  }
  return constraints && constraints->ca == kTrue && (!usage.present || usage.cert_sign);
}

void look_at(Candidate &candidate) noexcept {
  if (candidate.standing != kUnknown) return;
  const bool issuer = may_issue(*candidate.cert), valid = verify_X509_expireDate(candidate.cert) == 0;
  candidate.standing = (issuer ? 2 : 0) + (valid ? 1 : 0);
  candidate.key_id = subject_key_id(*candidate.cert);
}

// The key identifier counts most (the same, one missing, another), then whether it may issue, then its dates.
int rank_of(const Candidate &candidate, Octets wanted) noexcept {
  const bool missing = wanted.empty() || candidate.key_id.empty();
  return candidate.standing + 4 * (missing ? 1 : same(candidate.key_id, wanted) ? 2 : 0);
}

class Builder {
 public:
  Builder(std::span<Candidate> pool, const TRUST_ANCHORS &anchors) noexcept : pool_(pool), anchors_(anchors) {}

  // 0, with the path in `path()`, or the code for the lack of one.
  int run(X509_CERT *cert) noexcept {
    path_[length_++] = cert;
    if (extend()) return 0;
    if (no_memory_) return failure(kNoMemory);
    if (too_long_ || worked_out_) return failure(ERR_INVALID_MAX_PATH_LENGTH);
    return failure(other_root_ ? ERR_INVALID_TRUST_ANCHOR : ERR_NOT_FOUNDED);
  }
  std::span<X509_CERT *const> path() const noexcept { return {path_, size_t(length_)}; }

 private:
  // Goes on from the last certificate of the path.
  bool extend() noexcept {
    const X509_CERT &last = *path_[length_ - 1];
    if (!is_selfSigned(&last)) return ends_at(last);
    if (length_ == kLongest) return too_long_ = true, false;
    const std::span<Candidate> issuers = named(get_X509_issuer(&last));
    const Octets wanted = issuer_key_id(last);
    for (Candidate &each : issuers) look_at(each);
    for (int rank = kRanks - 1; rank >= 0; --rank) {
      for (const Candidate &each : issuers) {
        if (rank_of(each, wanted) == rank && try_issuer(each, last)) return true;
        if (stopped()) return false;
      }
    }
    return false;
  }

  bool try_issuer(const Candidate &issuer, const X509_CERT &last) noexcept {
    if (cmp_X509_NAME(get_X509_subject(issuer.cert), get_X509_issuer(&last)) || is_on_path(*issuer.cert)) return false;
    if (!verifies(last, *issuer.cert)) return false;
    path_[length_++] = issuer.cert;
    if (extend()) return true;
    --length_;
    return false;
  }

  bool ends_at(const X509_CERT &root) noexcept {
    const TRUST_ANCHOR anchor{get_X509_subject(&root), get_X509_SPKI(&root)};
    if (get_TRUST_ANCHORS_index_by_TRUST_ANCHOR(&anchors_, &anchor) >= 0) return verifies(root, root);
    other_root_ = true;
    return false;
  }

  // A name and key that are on the path already would only lead round.
  bool is_on_path(const X509_CERT &cert) const noexcept {
    for (const X509_CERT *each : path())
      if (cmp_X509_PUBKEY(get_X509_SPKI(each), get_X509_SPKI(&cert)) == 0 &&
          cmp_X509_NAME(get_X509_subject(each), get_X509_subject(&cert)) == 0)
        return true;
    return false;
  }

  bool verifies(const X509_CERT &cert, const X509_CERT &issuer) noexcept {
    if (signatures_left_ == 0) return worked_out_ = true, false;
    --signatures_left_;
    const X509_PUBKEY *key = get_X509_SPKI(&issuer);
    const int code = verify_SIG_X509_CERT(const_cast<X509_CERT *>(&cert), key ? key->key : nullptr);
    no_memory_ = no_memory_ || reason_of(code) == kNoMemory;
    return code == 0;
  }

  std::span<Candidate> named(const X509_NAME *subject) const noexcept {
    const auto before = [](const Candidate &a, const Candidate &b) { return a.subject < b.subject; };
    const auto [first, last] =
        std::equal_range(pool_.begin(), pool_.end(), Candidate{hash_of(subject), nullptr, 0, {}}, before);
    return {first, last};
  }

  bool stopped() const noexcept { return no_memory_ || worked_out_; }

  std::span<Candidate> pool_;
  const TRUST_ANCHORS &anchors_;
  X509_CERT *path_[kLongest];
  int length_ = 0;
  int signatures_left_ = kSignatures;
  bool too_long_ = false, worked_out_ = false, no_memory_ = false, other_root_ = false;
};

// The pool's certificates in the order of their subjects' hashes.
std::span<Candidate> index_pool(const STACK &pool, Candidate *room) noexcept {
  size_t count = 0;
  for (X509_CERT *cert : elements<X509_CERT>(&pool))
    if (cert) room[count++] = {hash_of(get_X509_subject(cert)), cert, kUnknown, {}};
  std::sort(room, room + count, [](const Candidate &a, const Candidate &b) { return a.subject < b.subject; });
  return {room, count};
}

STACK *copies_of(std::span<X509_CERT *const> path) noexcept {
  STACK *copies = new_STACK();
  for (X509_CERT *each : path)
    if (!insert_copy(copies, each, -1)) return destroy_list<X509_CERT>(copies), nullptr;
  return copies;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int build_certPath(STACK **path, X509_CERT *cert, STACK *pool, TRUST_ANCHORS *anchors) noexcept {
  if (!path || !cert || !pool || !anchors) return failure(kNullArgument);
  const owned<uint8_t> room = new_octets((size_t(pool->count) + 1) * sizeof(Candidate));
  if (!room) return failure(kNoMemory);
  Builder builder(index_pool(*pool, static_cast<Candidate *>(static_cast<void *>(room.get()))), *anchors);
  if (const int code = builder.run(cert)) return code;
  STACK *copies = copies_of(builder.path());
  if (!copies) return failure(kNoMemory);
  *path = copies;
  return 0;
}
