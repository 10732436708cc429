// The reason code of an entry of a revocation list (RFC 5280 5.3.1).
#include "x509/internal/crl.h"

namespace velpki {

namespace {

constexpr std::string_view kCrlReason = "2.5.29.21";
constexpr int kNoReason = -1, kBadReason = -2;

bool is_reason(const X509_EXTENSION *extension) noexcept {
  return extension && extension->object && extension->value && text(*extension->object) == kCrlReason;
}

bool read_reason(const X509_EXTENSION &extension, Rules rules, Tlv &out) noexcept {
  return Tlv::parse(octets(*extension.value), rules, out);
}

// CRLReason ::= ENUMERATED { unspecified (0) ... aACompromise (10) }, without 7.
int strict_reason(const X509_EXTENSION &extension) noexcept {
  Tlv value;
  const bool read = read_reason(extension, kStandardRules, value) && value.identifier == TYPE_ENUMERATED &&
                    int(value.whole.size()) == extension.value->length && value.content.size() == 1;
  const int reason = read ? value.content[0] : kBadReason;
  return reason > 10 || reason == 7 ? kBadReason : reason;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int get_X509_REVOKED_CRLreason(const X509_REVOKED *entry, int index) noexcept {
  const X509_EXTENSION *extension = get_X509_REVOKED_ext(entry, index);
  Tlv value;
  return is_reason(extension) && read_reason(*extension, {}, value) ? saturated_number(value.content) : 0;
}

int get_X509_REVOKED_CRLreason_strict(const X509_REVOKED *entry) noexcept {
  const X509_EXTENSION *found = nullptr;
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(entry ? entry->crlEntryExtensions : nullptr)) {
    if (!is_reason(each)) continue;
    if (found) return kBadReason;
    found = each;
  }
  return found ? strict_reason(*found) : kNoReason;
}
