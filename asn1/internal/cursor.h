// Cursor: walks the children of an encoded value, one typed read per field.
#pragma once

#include "asn1/internal/memory.h"
#include "asn1/internal/status.h"
#include "asn1/internal/string.h"
#include "asn1/internal/tlv.h"

namespace velpki {

// Every read takes the next child, checks it against the expected type and advances; it returns false, and the cursor
// keeps the reason, when the child is missing, malformed or of another type, or memory ends. What was read is stored in
// the record at once and owned by it, so a decoder that stops early leaves nothing to clean.
class Cursor {
 public:
  explicit Cursor(const Tlv &parent) noexcept : rest_(parent.content), rules_(parent.rules) {
    if (rules_.depth == 0)
      stop(Read::malformed);
    else
      --rules_.depth;
  }

  bool at_end() const noexcept { return rest_.empty(); }
  // The identifier octet of the next child, or 0 at the end (no child has it).
  uint8_t peek() const noexcept { return rest_.empty() ? uint8_t(0) : rest_[0]; }
  bool at(uint8_t identifier) const noexcept { return peek() == identifier; }
  const Rules &rules() const noexcept { return rules_; }
  Octets rest() const noexcept { return rest_; }

  // The next child, whatever it is.
  bool next(Tlv &out) noexcept {
    if (!Tlv::parse(rest_, rules_, out)) [[unlikely]]
      return stop(Read::malformed);
    rest_ = rest_.subspan(out.whole.size());
    return true;
  }
  // The next child where `type` is expected. House form: a child of context-specific or private class is taken as any
  // type, else the tag numbers must be equal. Standard form: the whole identifier must be.
  bool next(int type, Tlv &out) noexcept { return next(out) && expect(out, type); }
  bool expect(const Tlv &child, int type) noexcept { return accepts(child, type) || stop(Read::malformed); }

  bool oid(OBJECT_IDENTIFIER *&out) noexcept {
    Tlv child;
    return next(TYPE_OBJECT_IDENTIFIER, child) && oid_content(child, out);
  }
  // The content of a child that was taken, as an OID.
  bool oid_content(const Tlv &child, OBJECT_IDENTIFIER *&out) noexcept { return keep(read_oid_by_rules(child, out)); }
  bool integer(BIGINT *&out) noexcept;
  bool string(int type, ASN1_STRING *&out) noexcept {
    Tlv child;
    return next(type, child) && keep(read_string(child, type, out));
  }
  bool any_string(ASN1_STRING *&out) noexcept {
    Tlv child;
    return next(child) && keep(read_any_string(child, out));
  }
  bool boolean(unsigned char &out) noexcept;  // the content octet as it is
  bool unit(ASN1_UNIT *&out) noexcept;        // the next child, whatever it is, as a unit

  // In standard form nothing may be left over; house form ignores it.
  bool finish() noexcept { return !rules_.standard || at_end() || stop(Read::malformed); }

  // Stores the outcome of a read; false unless it is ok.
  bool keep(Read outcome) noexcept { return outcome == Read::ok || stop(outcome); }
  bool stop(Read reason) noexcept {
    if (reason_ == Read::ok) reason_ = reason;
    return false;
  }
  // Takes over the failure of a cursor inside this one's value, or of a decoder that returned a code.
  bool absorb(const Cursor &inner) noexcept { return keep(inner.reason_); }
  bool absorb(int code) noexcept {
    return code == 0 || stop((code & 0xFFFF) == kNoMemory ? Read::no_memory : Read::malformed);
  }
  // Ends the walk with the code of an inner decoder, which goes up as it is.
  bool pass(int code) noexcept { return code == 0 || (code_ = code_ ? code_ : code, stop(Read::malformed)); }
  // A null that can only mean exhausted memory.
  template <class T>
  bool made(const T *pointer) noexcept {
    return pointer || stop(Read::no_memory);
  }

  Read reason() const noexcept { return reason_; }
  // The code of a decoder that read what it could: 0, the one passed up, or `function` with ERR_ASN1_DECODING or 3C.
  [[nodiscard]] int result(int function) const noexcept;

 private:
  bool accepts(const Tlv &child, int type) const noexcept {
    if (rules_.standard) [[unlikely]]
      return accepts_standard(child.identifier, type);
    return tag::is_context_or_private(child.identifier) || child.number() == (type & 0x1F);
  }
  static bool accepts_standard(uint8_t identifier, int type) noexcept;
  static Read read_oid_by_rules(const Tlv &child, OBJECT_IDENTIFIER *&out) noexcept;

  Octets rest_;
  Rules rules_;
  Read reason_ = Read::ok;
  int code_ = 0;
};

// The number of values that follow each other in `octets`, up to the first that does not fit.
int count_values(Octets octets, Rules rules) noexcept;

// Whether the octets are exactly one value with definite lengths of the fewest octets at every level.
bool is_der(Octets octets) noexcept;

// Reads the content of an INTEGER: as a magnitude in house form, with its sign in standard form.
Read read_integer(const Tlv &tlv, BIGINT *&out) noexcept;

// The content of a string that may be constructed of segments (X.690 8.7.3), as one OCTET STRING.
Read read_joined_octets(const Tlv &tlv, ASN1_STRING *&out) noexcept;

// A copy of a whole encoded value as a unit.
Read read_unit(const Tlv &tlv, ASN1_UNIT *&out) noexcept;

}  // namespace velpki
