// Revocation lists in the order in which they decide.
#include "validation/internal/path_lists.h"

#include <velpki/asn1_error.h>

namespace velpki {

namespace {

int64_t issued_at(const X509_CRL &crl) noexcept {
  int64_t seconds;
  return standard_instant_of(get_X509_CRL_thisUpdate(&crl), seconds) ? seconds : INT64_MIN;
}

PathList list_of(const X509_CRL &crl, int position, int fault) noexcept {
  PathList out;
  out.crl = &crl;
  out.fault = fault ? fault : find_list_extensions(crl, out.extensions);
  out.issued = issued_at(crl);
  out.number = number_in(out.extensions.number);
  out.position = position;
  return out;
}

// Complete lists stand before the deltas.
bool goes_before(const PathList &a, const PathList &b) noexcept {
  if (a.is_delta() != b.is_delta()) return b.is_delta();
  if (a.issued != b.issued) return a.issued > b.issued;
  if (is_less(a.number, b.number) || is_less(b.number, a.number)) return is_less(b.number, a.number);
  return a.position < b.position;
}

}  // namespace

ListNumber number_in(const X509_EXTENSION *extension) noexcept {
  Tlv value;
  Rules rules = kStandardRules;
  const bool read = extension && extension->value && Tlv::parse(octets(*extension->value), rules, value) &&
                    value.identifier == TYPE_INTEGER && !value.content.empty() && value.content[0] < 0x80;
  if (!read) return {};
  const auto first = std::find_if(value.content.begin(), value.content.end(), [](uint8_t octet) { return octet != 0; });
  return {true, Octets(first, value.content.end())};
}

bool is_less(const ListNumber &a, const ListNumber &b) noexcept {
  if (a.known != b.known) return b.known;
  if (a.digits.size() != b.digits.size()) return a.digits.size() < b.digits.size();
  return std::lexicographical_compare(a.digits.begin(), a.digits.end(), b.digits.begin(), b.digits.end());
}

int RevocationLists::standard_form_of(const X509_CRL *&crl) noexcept {
  const X509_RECEIVED *received = crl->kept && !crl->kept->standard ? received_of(*crl) : nullptr;
  if (!received) return 0;
  const Octets whole = received_whole(*received);
  X509_CRL *read = nullptr;
  if (const int code = readDER_X509_CRL_from_Binary_RFC5280(&read, whole.data(), int(whole.size()))) return code;
  owned<X509_CRL> made(read);
  if (!made_) made_ = new_STACK();
  if (!append(made_, made)) return fail(kCrlModule, kNoMemory);
  return crl = read, 0;
}

int RevocationLists::open(const STACK *crls) noexcept {
  const int count = crls ? crls->count : 0;
  if (count <= 0) return 0;
  lists_ = static_cast<PathList *>(allocate_zeroed(size_t(count) * sizeof(PathList)));
  if (!lists_) return fail(kCrlModule, kNoMemory);
  for (const X509_CRL *each : elements<X509_CRL>(crls)) {
    if (!each || !each->tbs) continue;
    const int code = standard_form_of(each);
    if (reason_of(code) == kNoMemory) return code;
    lists_[count_] = list_of(*each, count_, code);
    complete_ += lists_[count_++].is_delta() ? 0 : 1;
  }
  std::sort(lists_, lists_ + count_, goes_before);
  return 0;
}

}  // namespace velpki
