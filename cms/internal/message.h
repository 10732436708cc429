// What the codecs of PKCS#7 and CMS messages are written with.
#pragma once

#include <atomic>

#include "x509/internal/x509.h"

namespace velpki {

// A Cursor whose result is the code of the record inside that failed, if one did.
class MessageReader : public Cursor {
 public:
  using Cursor::Cursor;

  bool inner(int code) noexcept {
    if (!code_) code_ = code;
    return code == 0 || stop(Read::malformed);
  }
  // Takes over the failure of a reader inside this one's value.
  bool join(const MessageReader &inside) noexcept {
    if (!code_) code_ = inside.code_;
    return absorb(inside);
  }
  // A record inside, which the caller's record owns at once.
  template <class R>
  bool record(R *&out) noexcept {
    Tlv child;
    return next(TYPE_SEQUENCE, child) && made(out = blank<R>()) && inner(decode(child, *out));
  }
  // SEQUENCE OF or SET OF behind `identifier`, which must be there.
  bool list(uint8_t identifier, STACK *&out, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
    Tlv child;
    if (!at(identifier)) return stop(Read::malformed);
    return next(child) && made(out = new_STACK()) && inner(decode(child, *out));
  }
  // Whether an optional element stands here that was read before already or not: house form lets the last one count,
  // standard form refuses a second.
  bool at_optional(uint8_t identifier, bool before) noexcept {
    return at(identifier) && (!before || !rules().standard || stop(Read::malformed));
  }
  // The same where it may be absent, or be repeated.
  template <class E>
  bool optional_list(uint8_t identifier, STACK *&out, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
    while (at_optional(identifier, out)) {
      if (out) destroy_list<E>(std::exchange(out, nullptr));
      if (!list(identifier, out, decode)) return false;
    }
    return reason() == Read::ok;
  }
  // The end of a record: standard form wants nothing after the known elements.
  bool end() noexcept { return reason() == Read::ok && (!rules().standard || at_end() || stop(Read::malformed)); }
  // OCTET STRING, its segments joined.
  bool octets(ASN1_STRING *&out) noexcept;
  bool optional_implicit_octets(int n, ASN1_STRING *&out) noexcept;
  bool name(X509_NAME *&out) noexcept {
    Tlv child;
    return next(TYPE_SEQUENCE, child) && made(out = new_STACK()) && inner(decode_name(child, *out));
  }

  [[nodiscard]] int result(int function) const noexcept {
    return code_ && reason() == Read::malformed ? code_ : Cursor::result(function);
  }

 private:
  int code_ = 0;
};

// A version; one that is missing counts as 0.
inline void write_version(const BIGINT *version, DerWriter &out) noexcept {
  version ? out.integer(version) : out.integer(0u);
}
bool set_version(BIGINT *&version, unsigned word) noexcept;

// An OPTIONAL [n] IMPLICIT OCTET STRING, for null absent.
inline void write_optional_octets(int n, const ASN1_STRING *value, DerWriter &out) noexcept {
  if (value) out.octets_as(tag::implicit_context(n), value);
}

// What signed data say of a content where they have none: the type data.
void write_no_content(DerWriter &out) noexcept;

// 0 when the certificate has this issuer and serial number; see cmp_P7_ISSUER_AND_SERIAL_NUMBER. The serial number is
// looked at first, so a search costs one comparison of names.
int compare_issuer_and_serial(const X509_CERT *cert, const X509_NAME *issuer, const BIGINT *serial) noexcept;
// The first certificate of the list that has them; null when there is none.
X509_CERT *find_certificate(const STACK *certificates, const X509_NAME *issuer, const BIGINT *serial) noexcept;

// SET OF AlgorithmIdentifier.
int decode_algorithms(const Tlv &tlv, STACK &list) noexcept;
int encode_algorithms(const STACK &list, DerWriter &out) noexcept;

// Marks a message as detached: verifying does so, in several threads perhaps.
inline void mark_detached(int &detached) noexcept {
  if (std::atomic_ref<int> mark(detached); !mark.load(std::memory_order_relaxed)) {
    mark.store(1, std::memory_order_relaxed);
  }
}

}  // namespace velpki
