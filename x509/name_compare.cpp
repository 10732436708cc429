// Hash and comparison of names.
#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

namespace {

// Dotted text that encodes in one way only and surely does: digits, single dots, no leading zeros, arcs of at most nine
// digits, a second arc below 40 under 0 and 1.
bool is_plain_oid(std::string_view text) noexcept {
  size_t digits = 0;
  if (text.size() < 3 || text[0] > '2' || text[1] != '.') return false;
  const std::string_view second = text.substr(2, text.find('.', 2) - 2);
  if (text[0] < '2' && (second.size() > 2 || (second.size() == 2 && second[0] > '3'))) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '.') {
      if (digits == 0) return false;
      digits = 0;
      continue;
    }
    const bool leading_zero = digits == 1 && text[i - 1] == '0';
    if (text[i] < '0' || text[i] > '9' || leading_zero || ++digits > 9) return false;
  }
  return digits != 0;
}

// A child of which the encoding is surely possible and differs whenever type or value do.
bool is_plain(const X509_NAME_CHILD *child) noexcept {
  return child && child->type && child->value && form_of(*child->value, true) == StringForm::plain &&
         is_plain_oid(text(*child->type));
}

bool is_plain(const X509_NAME &name) noexcept {
  for (const X509_NAME_CHILD *child : elements<X509_NAME_CHILD>(&name))
    if (!is_plain(child)) return false;
  return true;
}

bool same_child(const X509_NAME_CHILD &a, const X509_NAME_CHILD &b) noexcept {
  return a.value->type == b.value->type && same_octets(a.value, b.value) && same_octets(a.type, b.type);
}

bool same_children(const X509_NAME &a, const X509_NAME &b) noexcept {
  for (int i = 0; i < a.count; ++i)
    if (!same_child(*element<X509_NAME_CHILD>(&a, i), *element<X509_NAME_CHILD>(&b, i))) return false;
  return true;
}

int compare_encodings(const X509_NAME &a, const X509_NAME &b) noexcept {
  DerWriter left, right;
  if (encode_name(a, left) || encode_name(b, right) || left.failed() || right.failed()) return 1;
  const Octets x = left.written(), y = right.written();
  return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size()) == 0 ? 0 : -1;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

// Names whose children are all plain have equal encodings exactly when their members are equal.
int cmp_X509_NAME(const X509_NAME *a, const X509_NAME *b) noexcept {
  if (!a || !b) return 1;
  if (a->count != b->count) return -1;
  if (!is_plain(*a) || !is_plain(*b)) return compare_encodings(*a, *b);
  return same_children(*a, *b) ? 0 : -1;
}

int get_X509_NAME_hash(const X509_NAME *name, int digest_id, unsigned char *out) noexcept {
  if (!name || !out || name->count < 1) return -1;
  DerWriter writer;
  int length = 0;
  if (encode_name(*name, writer) || writer.failed()) return -1;
  if (PKV_DIGEST(digest_id, writer.written().data(), int(writer.size()), out, &length)) return -1;
  return length;
}

namespace velpki {

namespace {

// RFC 5280 7.1.

constexpr int kUniversalString = 28, kNumericString = 18;

// The code points of a text value, whatever its string type, with ASCII letters in lower case and spaces folded: none
// at either end, one for a run.
class FoldedText {
 public:
  explicit FoldedText(const ASN1_STRING &value) noexcept : type_(value.type & 0x1F), rest_(octets(value)) {}
  // The next code point, or -1 at the end.
  int32_t next() noexcept {
    if (pending_ != kNothing) return std::exchange(pending_, kNothing);
    int32_t c = take();
    const bool space = c == ' ';
    while (c == ' ') c = take();
    if (!space || c < 0 || !std::exchange(started_, true)) return started_ = true, fold(c);
    pending_ = fold(c);
    return ' ';
  }

 private:
  static constexpr int32_t kNothing = -2;
  static constexpr int32_t kNoCodePoint = 0x110000;  // what follows stands for octets that are no text
  static int32_t fold(int32_t c) noexcept { return c >= 'A' && c <= 'Z' ? c + 32 : c; }
  int32_t take() noexcept {
    if (rest_.empty()) return -1;
    if (type_ == TYPE_UTF8_STRING) return take_utf8();
    return take_wide(type_ == TYPE_BMP_STRING ? 2 : type_ == kUniversalString ? 4 : 1);
  }
  int32_t take_wide(size_t size) noexcept {
    if (rest_.size() < size) return take_stray();
    uint32_t c = 0;
    for (const uint8_t octet : rest_.first(size)) c = c << 8 | octet;
    if (c >= uint32_t(kNoCodePoint)) return take_stray();
    rest_ = rest_.subspan(size);
    return int32_t(c);
  }
  int32_t take_utf8() noexcept {
    const uint8_t lead = rest_[0];
    const size_t size = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
    if (size == 0 || size > rest_.size()) return take_stray();
    int32_t c = size == 1 ? lead : lead & (0x7F >> size);
    bool proper = true;
    for (const uint8_t octet : rest_.subspan(1, size - 1)) {
      proper &= (octet & 0xC0) == 0x80;
      c = c << 6 | (octet & 0x3F);
    }
    constexpr int32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (!proper || c < kLeast[size] || c >= kNoCodePoint) return take_stray();
    rest_ = rest_.subspan(size);
    return c;
  }
  // An octet that is no text equals itself alone.
  int32_t take_stray() noexcept {
    const uint8_t octet = rest_[0];
    rest_ = rest_.subspan(1);
    return kNoCodePoint + octet;
  }

  int type_;
  Octets rest_;
  int32_t pending_ = kNothing;
  bool started_ = false;
};

bool is_text(int type) noexcept {
  switch (type) {
    case TYPE_UTF8_STRING:
    case TYPE_PRINTABLE_STRING:
    case TYPE_T61_STRING:
    case TYPE_IA5_STRING:
    case TYPE_VISIBLE_STRING:
    case TYPE_BMP_STRING:
    case kNumericString:
    case kUniversalString:
      return true;
    default:
      return false;
  }
}

bool same_text(const ASN1_STRING &a, const ASN1_STRING &b) noexcept {
  if (!is_text(a.type) || !is_text(b.type)) return cmp_ASN1_STRING_strict(&a, &b) == 0;
  FoldedText left(a), right(b);
  for (int32_t c = left.next();; c = left.next()) {
    if (c != right.next()) return false;
    if (c < 0) return true;
  }
}

bool same_attribute(const X509_NAME_CHILD *a, const X509_NAME_CHILD *b) noexcept {
  if (a && b && a->rdn == kEmptyRdn && b->rdn == kEmptyRdn) return true;
  return a && b && a->value && b->value && same_octets(a->type, b->type) && same_text(*a->value, *b->value);
}

// The end of the RDN that begins at `index`.
int rdn_end(const X509_NAME &name, int index) noexcept {
  const auto *first = element<X509_NAME_CHILD>(&name, index);
  int end = index + 1;
  while (end < name.count && first && first->rdn > 0 && element<X509_NAME_CHILD>(&name, end) &&
         element<X509_NAME_CHILD>(&name, end)->rdn == first->rdn)
    ++end;
  return end;
}

// Sets are compared in any order while they are small; a stranger's huge ones must stand in the same order.
constexpr int kLargestFreeSet = 32;

bool contains(const X509_NAME &name, int from, int end, const X509_NAME_CHILD *child) noexcept {
  for (int i = from; i < end; ++i)
    if (same_attribute(element<X509_NAME_CHILD>(&name, i), child)) return true;
  return false;
}

bool same_rdn(const X509_NAME &a, const X509_NAME &b, int from, int end) noexcept {
  const bool in_order = end - from > kLargestFreeSet;
  for (int i = from; i < end; ++i) {
    const int low = in_order ? i : from, high = in_order ? i + 1 : end;
    if (!contains(b, low, high, element<X509_NAME_CHILD>(&a, i))) return false;
    if (!contains(a, low, high, element<X509_NAME_CHILD>(&b, i))) return false;
  }
  return true;
}

}  // namespace

}  // namespace velpki

int cmp_X509_NAME_RFC5280(const X509_NAME *a, const X509_NAME *b) noexcept {
  if (!a || !b) return 1;
  if (a->count != b->count) return -1;
  for (int i = 0; i < a->count;) {
    const int end = rdn_end(*a, i);
    if (end != rdn_end(*b, i) || !same_rdn(*a, *b, i, end)) return -1;
    i = end;
  }
  return 0;
}
