// The octets that a certificate was decoded from, kept beside its members.
#pragma once

#include "x509/internal/x509.h"

// One block: the octets stand behind the struct.
struct x509_received {
  int length;      // of the whole certificate
  int tbs_offset;  // where the TBS stands in it
  int tbs_length;
};

namespace velpki {

inline Octets received_whole(const X509_RECEIVED &received) noexcept {
  return {reinterpret_cast<const uint8_t *>(&received + 1), size_t(received.length)};
}
inline Octets received_tbs(const X509_RECEIVED &received) noexcept {
  return received_whole(received).subspan(size_t(received.tbs_offset), size_t(received.tbs_length));
}
// A copy of a decoded certificate's octets; `tbs` lies in its content.
X509_RECEIVED *new_received(const Tlv &certificate, Octets tbs) noexcept;

}  // namespace velpki
