// Finding the certificates of very many signers among very many certificates.
#pragma once

#include "cms/internal/message.h"

namespace velpki {

// How a signer names its certificate: by a subject key identifier, or by issuer and serial number, which strict
// verification compares as they were received.
struct SignerName {
  const ASN1_STRING *subject_key = nullptr;
  const X509_NAME *issuer = nullptr;
  const BIGINT *serial = nullptr;
  Octets received = {};
};

// The certificates of two lists by what a signer may call them, with the comparisons of plain or of strict
// verification. There is one for so many signers and certificates only that walking the lists would cost more.
class CertificateIndex {
 public:
  enum class Comparison : bool { plain, strict };
  CertificateIndex(const STACK *signers, const STACK *own, const STACK *more, Comparison comparison) noexcept;

  // The first certificate that has the name, or null. False when only a walk can tell: without an index, or when memory
  // ran out.
  bool find(const SignerName &name, const X509_CERT *&out) const noexcept;

 private:
  // A name of a certificate: octets in `names_`, the names in their order. `position` counts through both lists.
  struct Entry {
    size_t start, length;
    int position;
  };
  bool fill() noexcept;
  bool add(const X509_CERT &cert, int position) noexcept;
  bool close_entry(int position) noexcept;
  void sort() noexcept;
  // What the names looked for begin with, in two places where they may be of two kinds. False when memory ran out.
  bool write_subject_key(Octets key, DerWriter &out) const noexcept;
  bool write_issuer_and_serial(const SignerName &name, DerWriter &first, DerWriter &second) const noexcept;
  int first_beginning_with(Octets prefix) const noexcept;  // a position, or none that a list has
  int least_between(size_t from, size_t to) const noexcept;
  const X509_CERT *at(int position) const noexcept;

  const STACK *own_, *more_;
  Comparison comparison_;
  DerWriter names_;
  owned<uint8_t> entry_block_, least_block_;
  Entry *entries_ = nullptr;
  int *least_ = nullptr;  // the least positions, as a tree: of 2i and 2i + 1 at i, the entries from count_ on
  size_t count_ = 0;
};

}  // namespace velpki
