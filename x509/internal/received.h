// The octets that a signed record was decoded from, kept beside its members.
#pragma once

#include "x509/internal/x509.h"

// One block: the octets stand behind the struct. They never change, so copies of a record share them.
struct x509_received {
  int shares;      // further holders
  int length;      // of the whole record
  int tbs_offset;  // where the part that is signed stands in it
  int tbs_length;
  bool standard;  // whether the record was decoded by the rules of the standard
};

namespace velpki {

inline Octets received_whole(const X509_RECEIVED &received) noexcept {
  return {reinterpret_cast<const uint8_t *>(&received + 1), size_t(received.length)};
}
inline Octets received_tbs(const X509_RECEIVED &received) noexcept {
  return received_whole(received).subspan(size_t(received.tbs_offset), size_t(received.tbs_length));
}
// A copy of a decoded record's octets; `tbs` lies in its content.
X509_RECEIVED *new_received(const Tlv &record, Octets tbs) noexcept;
// The same value in the copy, so that what is decoded may point there.
Tlv in_received(const Tlv &record, const X509_RECEIVED &received) noexcept;
// What get_..._received functions lend: null, and 0 in `*length`, where nothing is kept.
const unsigned char *lend_received(const X509_RECEIVED *received, int tbs, int *length) noexcept;

// A record is about to change: what it keeps no longer describes it.
template <class R>
void drop_received(R &record) noexcept {
  if (record.received) Flat<X509_RECEIVED>::release(record.received);
  record.received = nullptr;
}

}  // namespace velpki
