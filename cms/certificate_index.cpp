#include "cms/internal/certificate_index.h"

#include <algorithm>

#include "cms/internal/cms.h"
#include "cms/internal/strict.h"

namespace velpki {

namespace {

// What the octets of a name begin with: which comparison they are for. No name is the beginning of another.
enum Kind : uint8_t {
  kMembers,         // serial number and issuer, of a certificate that is compared by its members
  kDecodedMembers,  // the same of one that is compared by its octets, where the signer has octets too
  kReceived,        // serial number, and the octets of both
  kSubjectKey,      // the subject key identifier, in plain verification as text that ends in a zero octet
};

constexpr int kNamesOfCertificate = 3, kFewSigners = 16;
constexpr size_t kFewPairs = 10000;
constexpr int kNowhere = INT_MAX;

size_t count_of(const STACK *list) noexcept { return list ? size_t(list->count) : 0; }

bool comes_before(Octets a, Octets b) noexcept {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}
bool begins_with(Octets whole, Octets prefix) noexcept {
  return whole.size() >= prefix.size() && equal_octets(whole.first(prefix.size()), prefix);
}
Octets text_of(Octets octets) noexcept { return octets.first(size_t(std::ranges::find(octets, 0) - octets.begin())); }

void begin_name(Kind kind, const BIGINT *serial, DerWriter &out) noexcept {
  int length = 0;
  const uint8_t *magnitude = PKV_Get_BIGINT_Octets(serial, &length);
  out.octet(kind);
  out.octet(uint8_t(PKV_Is_BIGINT_Negative(serial)));
  out.primitive(TYPE_INTEGER, octets_of(magnitude, length));
}

// The octets are those that compare equal where cmp_X509_NAME and PKV_Cmp_BIGINT say so. What cannot be encoded names
// nothing, and nothing is written for it; false when memory ran out.
bool write_members(Kind kind, const X509_NAME *issuer, const BIGINT *serial, DerWriter &out) noexcept {
  DerWriter name;
  if (!issuer || !serial) return true;
  const int code = encode_name(*issuer, name);
  if (reason_of(code) == kNoMemory || name.status() == Read::no_memory) return false;
  if (code || name.failed()) return true;
  begin_name(kind, serial, out);
  out.raw(name.written());
  return !out.failed();
}

// The same octets are another number in house form and in standard form.
void write_received(const BIGINT *number, Octets issuer, Octets serial, DerWriter &out) noexcept {
  begin_name(kReceived, number, out);
  out.raw(issuer);
  out.raw(serial);
}

}  // namespace

CertificateIndex::CertificateIndex(const STACK *signers, const STACK *own, const STACK *more,
                                   Comparison comparison) noexcept
    : own_(own), more_(more), comparison_(comparison) {
  const size_t certificates = count_of(own) + count_of(more);
  const bool few = count_of(signers) < kFewSigners || count_of(signers) * certificates <= kFewPairs;
  if (!few && !fill()) entries_ = nullptr;
}

bool CertificateIndex::fill() noexcept {
  const size_t most = (count_of(own_) + count_of(more_)) * kNamesOfCertificate;
  entry_block_ = new_octets(most * sizeof(Entry));
  least_block_ = new_octets(most * 2 * sizeof(int));
  if (!entry_block_ || !least_block_) return false;
  entries_ = static_cast<Entry *>(static_cast<void *>(entry_block_.get()));
  least_ = static_cast<int *>(static_cast<void *>(least_block_.get()));
  int position = 0;
  for (const STACK *list : {own_, more_})
    for (const X509_CERT *cert : elements<X509_CERT>(list))
      if (const int here = position++; cert && !add(*cert, here)) return false;
  sort();
  return true;
}

bool CertificateIndex::add(const X509_CERT &cert, int position) noexcept {
  Octets issuer, serial, key;
  const bool strict = comparison_ == Comparison::strict;
  if (view_subject_key_identifier(cert, key)) {
    names_.octet(kSubjectKey);
    if (strict) names_.primitive(TYPE_OCTET_STRING, key);
    if (!strict) names_.raw(text_of(key)), names_.octet(0);
    if (!close_entry(position)) return false;
  }
  const bool received = strict && name_of_certificate(cert, issuer, serial);
  if (received) write_received(get_X509_serial(&cert), issuer, serial, names_);
  if (!close_entry(position)) return false;
  const Kind kind = received ? kDecodedMembers : kMembers;
  return write_members(kind, get_X509_issuer(&cert), get_X509_serial(&cert), names_) && close_entry(position);
}

// What was written since the last entry, if anything, is one.
bool CertificateIndex::close_entry(int position) noexcept {
  const size_t start = count_ ? entries_[count_ - 1].start + entries_[count_ - 1].length : 0;
  if (names_.failed()) return false;
  if (names_.size() > start) entries_[count_++] = {start, names_.size() - start, position};
  return true;
}

void CertificateIndex::sort() noexcept {
  std::sort(entries_, entries_ + count_, [all = names_.written()](const Entry &a, const Entry &b) {
    return comes_before(all.subspan(a.start, a.length), all.subspan(b.start, b.length));
  });
  for (size_t i = 0; i < count_; ++i) least_[count_ + i] = entries_[i].position;
  for (size_t i = count_; i-- > 1;) least_[i] = std::min(least_[2 * i], least_[2 * i + 1]);
}

int CertificateIndex::first_beginning_with(Octets prefix) const noexcept {
  const Octets all = names_.written();
  const auto octets = [&](const Entry &entry) noexcept { return all.subspan(entry.start, entry.length); };
  const auto before = [&](const Entry &entry) noexcept { return comes_before(octets(entry), prefix); };
  const auto inside = [&](const Entry &entry) noexcept { return begins_with(octets(entry), prefix); };
  if (prefix.empty()) return kNowhere;
  const Entry *const begin = entries_, *const end = begin + count_;
  const Entry *const from = std::partition_point(begin, end, before);
  return least_between(size_t(from - begin), size_t(std::partition_point(from, end, inside) - begin));
}

// A short identifier begins very many others, so their positions are not looked at one by one.
int CertificateIndex::least_between(size_t from, size_t to) const noexcept {
  int least = kNowhere;
  for (from += count_, to += count_; from < to; from /= 2, to /= 2) {
    if (from % 2) least = std::min(least, least_[from++]);
    if (to % 2) least = std::min(least, least_[--to]);
  }
  return least;
}

const X509_CERT *CertificateIndex::at(int position) const noexcept {
  if (position == kNowhere) return nullptr;
  const int own = int(count_of(own_));
  return position < own ? element<X509_CERT>(own_, position) : element<X509_CERT>(more_, position - own);
}

bool CertificateIndex::find(const SignerName &name, const X509_CERT *&out) const noexcept {
  if (!entries_) return false;
  DerWriter first, second;
  const bool written = name.subject_key ? write_subject_key(octets(*name.subject_key), first)
                                        : write_issuer_and_serial(name, first, second);
  if (!written) return false;
  out = at(std::min(first_beginning_with(first.written()), first_beginning_with(second.written())));
  return true;
}

bool CertificateIndex::write_subject_key(Octets key, DerWriter &out) const noexcept {
  const Octets text = text_of(key);
  out.octet(kSubjectKey);
  if (comparison_ == Comparison::strict) return out.primitive(TYPE_OCTET_STRING, key), !out.failed();
  out.raw(text);
  if (text.size() < key.size()) out.octet(0);
  return !out.failed();
}

bool CertificateIndex::write_issuer_and_serial(const SignerName &name, DerWriter &first,
                                               DerWriter &second) const noexcept {
  Tlv parent, issuer, serial;
  if (!name.serial) return true;
  if (!write_members(kMembers, name.issuer, name.serial, first)) return false;
  if (comparison_ == Comparison::plain) return true;
  if (name.received.empty()) return write_members(kDecodedMembers, name.issuer, name.serial, second);
  parent.content = name.received;
  Cursor in(parent);
  if (in.next(issuer) && in.next(serial)) write_received(name.serial, issuer.whole, serial.whole, second);
  return !second.failed();
}

}  // namespace velpki
