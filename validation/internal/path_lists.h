// The revocation lists that a validation goes by, in the order in which they decide.
#pragma once

#include "x509/internal/crl_check.h"

namespace velpki {

// The number of a list, without leading zeros; one that is absent or unreadable is below all others.
struct ListNumber {
  bool known = false;
  Octets digits;
};
ListNumber number_in(const X509_EXTENSION *extension) noexcept;
bool is_less(const ListNumber &a, const ListNumber &b) noexcept;

struct PathList {
  const X509_CRL *crl = nullptr;
  ListExtensions extensions;
  int fault = 0;       // why it cannot be looked at
  int64_t issued = 0;  // thisUpdate
  ListNumber number;
  int position = 0;  // among all

  bool is_delta() const noexcept { return !fault && extensions.base; }
};

// Newer lists come first, by thisUpdate, then by number, wherever they stand: who supplies them does not choose which
// one decides. One that was not read by the standard's rules is read anew.
class RevocationLists {
 public:
  RevocationLists() noexcept = default;
  RevocationLists(const RevocationLists &) = delete;
  RevocationLists &operator=(const RevocationLists &) = delete;
  ~RevocationLists() {
    release(lists_);
    destroy_list<X509_CRL>(made_);
  }

  int open(const STACK *crls) noexcept;
  std::span<const PathList> complete() const noexcept { return {lists_, size_t(complete_)}; }
  std::span<const PathList> deltas() const noexcept { return {lists_ + complete_, size_t(count_ - complete_)}; }

 private:
  int standard_form_of(const X509_CRL *&crl) noexcept;

  STACK *made_ = nullptr;
  PathList *lists_ = nullptr;
  int count_ = 0, complete_ = 0;
};

}  // namespace velpki
