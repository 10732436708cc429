// The block of received octets.
#include "x509/internal/received.h"

namespace velpki {

void Flat<X509_RECEIVED>::release(X509_RECEIVED *received) noexcept {
  if (__atomic_fetch_sub(&received->shares, 1, __ATOMIC_ACQ_REL) <= 0) velpki::release(received);
}

X509_RECEIVED *Flat<X509_RECEIVED>::copy(const X509_RECEIVED *received) noexcept {
  auto *shared = const_cast<X509_RECEIVED *>(received);  // only the count changes
  __atomic_fetch_add(&shared->shares, 1, __ATOMIC_RELAXED);
  return shared;
}

// The view of a unit has no octets in one piece, so identifier, length octets and content are put together here.
X509_RECEIVED *new_received(const Tlv &record, Octets tbs) noexcept {
  const size_t header = 1 + record.header.size();
  const size_t length = header + record.content.size() + (record.indefinite ? 2 : 0);
  auto *received = static_cast<X509_RECEIVED *>(allocate(sizeof(X509_RECEIVED) + length));
  if (!received) return nullptr;
  *received = {0, int(length), int(header + size_t(tbs.data() - record.content.data())), int(tbs.size()),
               record.rules.standard};
  auto *at = reinterpret_cast<uint8_t *>(received + 1);
  at[0] = record.identifier;
  copy_octets(at + 1, record.header);
  copy_octets(at + header, record.content);
  if (record.indefinite) std::memset(at + length - 2, 0, 2);
  return received;
}

Tlv in_received(const Tlv &record, const X509_RECEIVED &received) noexcept {
  const Octets whole = received_whole(received);
  Tlv copy = record;
  copy.whole = whole;
  copy.header = whole.subspan(1, record.header.size());
  copy.content = whole.subspan(1 + record.header.size(), record.content.size());
  return copy;
}

const unsigned char *lend_received(const X509_RECEIVED *received, int tbs, int *length) noexcept {
  const Octets octets = !received ? Octets() : tbs ? received_tbs(*received) : received_whole(*received);
  if (length) *length = int(octets.size());
  return octets.data();
}

}  // namespace velpki
