// The names of status codes.
#include <velpki/asn1_error.h>
#include <velpki/pkv.h>

#include <cstddef>
#include <cstring>
#include <string_view>

#define VELPKI_FUNCTION(code, name) {code, #name},
#define VELPKI_REASON(code, name) {code, #name},
constexpr ASN1_CODE_NAME asn1_function_codes[] = {
#include <velpki/error_codes_table.inc>
    {0, nullptr}};
constexpr ASN1_CODE_NAME asn1_reason_codes[] = {
#include <velpki/error_reasons_table.inc>
    {0, nullptr}};

namespace {

constexpr ASN1_CODE_NAME kSiblingReasons[] = {
#include <velpki/sibling_reasons_table.inc>
    {0, nullptr}};

constexpr ASN1_CODE_NAME kProviderReasons[] = {{PKV_ERR_FAILED, "PKV_ERR_FAILED"},
                                               {PKV_ERR_BAD_VALUE, "PKV_ERR_BAD_VALUE"},
                                               {PKV_ERR_NO_MEMORY, "PKV_ERR_NO_MEMORY"},
                                               {PKV_ERR_UNSUPPORTED, "PKV_ERR_UNSUPPORTED"},
                                               {PKV_ERR_NULL, "PKV_ERR_NULL"},
                                               {PKV_ERR_MISMATCH, "PKV_ERR_MISMATCH"},
                                               {0, nullptr}};
// What a code without a function is about.
constexpr ASN1_CODE_NAME kModules[] = {{0x46, "certificates and requests"},
                                       {0x47, "extensions and identity data"},
                                       {0x48, "revocation lists"},
                                       {0x4B, "PKCS#7 messages"},
                                       {0x4E, "DER and PEM input and output"},
                                       {0x50, "OCSP"},
                                       {0, nullptr}};

// Codes of one module follow each other, so a number given twice may stand apart by others of its module.
constexpr int repeated_codes() {
  int repeated = 0;
  for (const ASN1_CODE_NAME *a = asn1_function_codes; a->name; ++a)
    for (const ASN1_CODE_NAME *b = a + 1; b->name; ++b) repeated += a->code == b->code;
  return repeated;
}
constexpr bool modules_ascend() {
  for (const ASN1_CODE_NAME *row = asn1_function_codes + 1; row->name; ++row)
    if (row[-1].code >> 24 > row->code >> 24) return false;
  return true;
}
constexpr bool ascends(const ASN1_CODE_NAME *row) {
  for (++row; row->name; ++row)
    if (row[-1].code >= row->code) return false;
  return true;
}
static_assert(sizeof asn1_function_codes / sizeof *asn1_function_codes == 325 + 1);
static_assert(sizeof asn1_reason_codes / sizeof *asn1_reason_codes == 30 + 1);
static_assert(modules_ascend() && ascends(asn1_reason_codes) && ascends(kSiblingReasons));
static_assert(repeated_codes() == 2, "only 0x47270000 and 0x47280000 are given twice");

const ASN1_CODE_NAME *find(const ASN1_CODE_NAME *row, unsigned code) {
  while (row->name && row->code != code) ++row;
  return row->name ? row : nullptr;
}

// Text cut off at the end of the caller's room, which always holds a zero octet.
class Text {
 public:
  Text(char *out, size_t capacity) : out_(out), room_(capacity - 1) { *out = 0; }

  void add(std::string_view text) {
    const size_t fitting = text.size() < room_ - length_ ? text.size() : room_ - length_;
    cut_ |= fitting < text.size();
    std::memcpy(out_ + length_, text.data(), fitting);
    length_ += fitting;
    out_[length_] = 0;
  }
  void add_hex(unsigned value, int digits) {
    add("0x");
    while (digits--) add(std::string_view("0123456789ABCDEF").substr(value >> 4 * digits & 0xF, 1));
  }
  int result() const { return cut_ ? -1 : int(length_); }

 private:
  char *out_;
  size_t room_, length_ = 0;
  bool cut_ = false;
};

void add_function(Text &text, unsigned code) {
  const ASN1_CODE_NAME *row = find(asn1_function_codes, code);
  if (!row) {
    const ASN1_CODE_NAME *module = find(kModules, code >> 24);
    return module && !(code & 0xFF0000) ? text.add(module->name) : text.add_hex(code, 8);
  }
  text.add(row->name);
  while ((row = find(row + 1, code))) text.add(" or "), text.add(row->name);
}

void add_reason(Text &text, unsigned reason) {
  const ASN1_CODE_NAME *row = find(reason < 0x100 ? kProviderReasons : asn1_reason_codes, reason);
  if (!row) row = find(kSiblingReasons, reason);
  if (row) return text.add(row->name);
  text.add_hex(reason, reason < 0x100 ? 2 : 4);
}

void add_code(Text &text, unsigned function, unsigned reason) {
  if (function) add_function(text, function);
  if (function && reason) text.add(": ");
  if (reason) add_reason(text, reason);
}

}  // namespace

int describe_velpki_code(int code, char *out, int capacity) noexcept {
  if (!out || capacity < 1) return -1;
  Text text(out, size_t(capacity));
  const unsigned value = unsigned(code), function = value & 0xFFFF0000, reason = value & ERR_MASK;
  if (value == 0)
    text.add("success");
  else if (code == 1 || code == -1)
    text.add("failed");
  else
    add_code(text, function, reason);
  return text.result();
}
