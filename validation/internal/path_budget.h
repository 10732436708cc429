// What one call may still do, and which certificates it has tried.
#pragma once

#include <velpki/cpv_validate.h>

#include <cstdint>

namespace velpki {

// Shared by all that runs under one call: the search for a path, walks, revocation, and the searches for the paths of
// those who signed lists. So what a stranger puts into certificates and lists cannot multiply.
class Budget {
 public:
  // `signatures` beside the usual ones; `items` are certificates, anchors and lists.
  Budget(int signatures, int64_t items) noexcept
      : signatures_(kSignatures + signatures), comparisons_(kComparisons + kComparisonsOfEach * items) {}
  Budget(const Budget &) = delete;
  Budget &operator=(const Budget &) = delete;

  // Whether one more may be done.
  bool signature() noexcept { return --signatures_ >= 0; }
  bool comparisons(int64_t count) noexcept { return (comparisons_ -= count) >= 0; }
  bool comparison() noexcept { return comparisons(1); }
  bool list_signer() noexcept { return --signers_ >= 0; }
  // Something was refused, and no answer may be had without it: what is cut short must not look like what was not
  // found.
  bool is_spent() const noexcept { return signatures_ < 0 || comparisons_ < 0 || signers_ < 0; }

 private:
  static constexpr int kSignatures = 512, kListSigners = 64;
  static constexpr int64_t kComparisons = 1 << 16, kComparisonsOfEach = 128;

  int signatures_, signers_ = kListSigners;
  int64_t comparisons_;
};

// The number of a list's elements; null has none.
inline int64_t items_of(const STACK *list) noexcept { return list ? list->count : 0; }

// Certificates that were tried for one purpose after the other. Those of the current purpose begin at a mark.
class TriedCerts {
 public:
  int mark() const noexcept { return count_; }
  void forget_from(int mark) noexcept { count_ = mark; }
  // False where an equal certificate was tried since the mark. What finds no room is tried again.
  bool add(const X509_CERT &cert, int mark, Budget &budget) noexcept;

 private:
  static constexpr int kRoom = 512;
  const X509_CERT *certs_[kRoom];
  int count_ = 0;
};

}  // namespace velpki
