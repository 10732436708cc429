// DerWriter: the one growing buffer that all encodings are written to.
#pragma once

#include <velpki/asn1.h>

#include "asn1/internal/memory.h"
#include "asn1/internal/string.h"
#include "asn1/internal/tlv.h"

namespace velpki {

// Scopes of constructed values nest as C++ blocks do: a scope's length is patched in when it closes. Failure is sticky:
// after the first one every call does nothing, and one look at `status` at the end tells which it was. What a writer of
// secrets held is wiped wherever it was, but for a buffer that was handed over.
class DerWriter {
 public:
  explicit DerWriter(Rules rules = {}, Content content = Content::open) noexcept : rules_(rules), content_(content) {}
  DerWriter(const DerWriter &) = delete;
  DerWriter &operator=(const DerWriter &) = delete;
  ~DerWriter() { discard(); }

  class Scope {
   public:
    Scope(DerWriter &writer, size_t start) noexcept : writer_(writer), start_(start) {}
    Scope(const Scope &) = delete;
    Scope &operator=(const Scope &) = delete;
    ~Scope() { writer_.close(start_); }

   private:
    DerWriter &writer_;
    size_t start_;
  };

  [[nodiscard]] Scope constructed(uint8_t identifier) noexcept { return Scope(*this, open(identifier)); }
  [[nodiscard]] Scope sequence() noexcept { return constructed(tag::kSequence); }
  [[nodiscard]] Scope set() noexcept { return constructed(tag::kSet); }
  [[nodiscard]] Scope explicit_context(int n) noexcept { return constructed(tag::explicit_context(n)); }

  // A whole value.
  void primitive(uint8_t identifier, Octets content) noexcept;
  void boolean(bool value) noexcept;
  void null() noexcept;
  // INTEGERs have (bit length + 8) / 8 content octets: a magnitude with its top bit set gets a zero octet in front.
  // The standard form writes a negative number in two's complement.
  void integer(const BIGINT *value, uint8_t identifier = TYPE_INTEGER) noexcept;
  void integer(unsigned value, uint8_t identifier = TYPE_INTEGER) noexcept;
  void bits(const ASN1_STRING *value, uint8_t identifier = TYPE_BIT_STRING) noexcept;
  void bits(Octets data) noexcept;  // no unused bits
  void oid(const OBJECT_IDENTIFIER *value) noexcept;
  void oid_text(std::string_view text) noexcept;
  // The octets of a string under `identifier`, or under its own type by the rules of TYPE_ASN1_STRING.
  void octets_as(uint8_t identifier, const ASN1_STRING *value) noexcept;
  void string(const ASN1_STRING *value) noexcept;
  void unit(const ASN1_UNIT *value) noexcept;  // as it stands; an indefinite one with its end-of-contents octets
  void raw(Octets octets) noexcept;            // octets that are already encoded
  void octet(uint8_t value) noexcept {
    if (uint8_t *at = reserve(1)) at[0] = value, ++size_;
  }

  // Overwrites the identifier of a value that was written from `at` on.
  void retag(size_t at, uint8_t identifier) noexcept {
    if (!failed()) data_[at] = identifier;
  }

  // Puts the values written since `from` into the order of DER's SET OF (X.690 11.6).
  void sort_values(size_t from) noexcept;

  // What cannot be encoded is refused by whoever sees it, and so is told where memory ran out.
  void refuse() noexcept { fail(Read::malformed); }
  void run_out() noexcept { fail(Read::no_memory); }
  [[nodiscard]] Read status() const noexcept { return status_; }
  [[nodiscard]] bool failed() const noexcept { return status_ != Read::ok; }
  // 0, or the function's code for the failure: exhausted memory, or ERR_ASN1_ENCODING.
  [[nodiscard]] int result(int function) const noexcept;

  const Rules &rules() const noexcept { return rules_; }
  size_t size() const noexcept { return size_; }
  Octets written(size_t from = 0) const noexcept { return failed() ? Octets() : Octets(data_ + from, size_ - from); }
  // Hands the buffer over (one octet longer than `size`, the last one zero); null after a failure.
  owned<uint8_t> release() noexcept;

 private:
  friend class Scope;
  size_t open(uint8_t identifier) noexcept;
  void oid_content(std::string_view text) noexcept;
  void negative_integer(Octets magnitude, uint8_t identifier) noexcept;
  void close(size_t start) noexcept;
  void header(uint8_t identifier, size_t length) noexcept;
  // Room for `more` octets at the end, or null after a failure; the total stays below INT_MAX.
  uint8_t *reserve(size_t more) noexcept {
    if (more < room_ - size_) [[likely]]
      return data_ + size_;
    return grow(more);
  }
  uint8_t *grow(size_t more) noexcept;
  uint8_t *resize(size_t room) noexcept;
  void discard() noexcept {
    if (content_ == Content::secret) PKV_Wipe(data_, size_);
    velpki::release(data_);
  }
  void fail(Read status) noexcept {
    if (status_ == Read::ok) status_ = status;
    room_ = size_;
  }

  uint8_t *data_ = nullptr;
  size_t size_ = 0, room_ = 0;
  Read status_ = Read::ok;
  Rules rules_;
  Content content_;
};

// The octets of length that DER needs for `length`, written to `out`; their number (1 to 5).
size_t write_length(size_t length, uint8_t *out) noexcept;

// A new unit around the one value that `writer` holds; `unit` is set on success only.
int unit_from(DerWriter &writer, int function, ASN1_UNIT **unit) noexcept;

// Whether a string can be written under its own type, and with which content: shared by DerWriter and encodeToBER.
enum class StringForm { refused, integer, bits, oid, plain };
StringForm form_of(const ASN1_STRING &string, bool constructed_too) noexcept;

}  // namespace velpki
