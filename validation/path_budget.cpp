// Certificates that a validation has tried.
#include "validation/internal/path_budget.h"

#include "x509/internal/received.h"

namespace velpki {

namespace {

// Read by the same rules from the same octets.
bool same_certificate(const X509_CERT &a, const X509_CERT &b) noexcept {
  if (&a == &b) return true;
  if (!a.received || !b.received || a.received->standard != b.received->standard) return false;
  const Octets left = received_whole(*a.received), right = received_whole(*b.received);
  return left.size() == right.size() && std::memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

bool TriedCerts::add(const X509_CERT &cert, int mark, Budget &budget) noexcept {
  for (int i = mark; i < count_; ++i)
    if (!budget.comparison() || same_certificate(*certs_[i], cert)) return false;
  if (count_ < kRoom) certs_[count_++] = &cert;
  return true;
}

}  // namespace velpki
