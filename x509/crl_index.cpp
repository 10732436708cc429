// The index of a revocation list's serial numbers, and the look-ups over it.
//
// Open addressing with linear probing over 32-bit slots, at most half of them used. A slot holds an entry's position in
// its low bits and bits of its hash above them, so that the entries of other serial numbers are hardly ever looked at.
// The hash is keyed with random octets for each index: who chooses serial numbers cannot choose where they fall, and an
// equal serial number ends the search of its insertion. So probing stays short for every list.
#include <velpki/asn1_error.h>

#include <bit>

#include "x509/internal/crl.h"

struct x509_crl_index {
  // The list as it was. Changes by the functions of stack.h show in one of these.
  const STACK *list;
  void *const *slots_of_list;
  const void *last;
  int count, sorted;
  int fault;  // what entries_fault says

  uint64_t key[2];
  uint32_t mask;      // slots less one; a power of two less one
  int position_bits;  // the low bits of a slot
  // The slots follow.
};

namespace velpki {

namespace {

constexpr int kFewEntries = 16;  // walked, without an index

using Index = x509_crl_index;
using Slot = uint32_t;  // 0 when free

// SipHash-1-3 (Aumasson, Bernstein) of one serial number's magnitude.
class Hash {
 public:
  explicit Hash(const uint64_t (&key)[2]) noexcept
      : v0_(key[0] ^ 0x736f6d6570736575),
        v1_(key[1] ^ 0x646f72616e646f6d),
        v2_(key[0] ^ 0x6c7967656e657261),
        v3_(key[1] ^ 0x7465646279746573) {}

  uint64_t operator()(Octets octets) noexcept {
    const uint64_t length = uint64_t(octets.size()) << 56;
    for (; octets.size() >= 8; octets = octets.subspan(8)) mix(word_of(octets.data(), 8));
    mix(length | word_of(octets.data(), octets.size()));
    v2_ ^= 0xff;
    for (int i = 0; i < 3; ++i) round();
    return v0_ ^ v1_ ^ v2_ ^ v3_;
  }

 private:
  static uint64_t word_of(const uint8_t *octets, size_t count) noexcept {
    uint64_t word = 0;
    if (count) std::memcpy(&word, octets, count);
    return word;
  }
  void mix(uint64_t word) noexcept {
    v3_ ^= word;
    round();
    v0_ ^= word;
  }
  void round() noexcept {
    v0_ += v1_, v1_ = std::rotl(v1_, 13) ^ v0_, v0_ = std::rotl(v0_, 32);
    v2_ += v3_, v3_ = std::rotl(v3_, 16) ^ v2_;
    v0_ += v3_, v3_ = std::rotl(v3_, 21) ^ v0_;
    v2_ += v1_, v1_ = std::rotl(v1_, 17) ^ v2_, v2_ = std::rotl(v2_, 32);
  }
  uint64_t v0_, v1_, v2_, v3_;
};

Octets magnitude(const BIGINT *number) noexcept {
  int length = 0;
  const uint8_t *octets = PKV_Get_BIGINT_Octets(number, &length);
  return octets_of(octets, length);
}

Slot *slots(Index &index) noexcept { return reinterpret_cast<Slot *>(&index + 1); }
const Slot *slots(const Index &index) noexcept { return reinterpret_cast<const Slot *>(&index + 1); }

const BIGINT *serial_at(const STACK &list, int position) noexcept {
  const auto *entry = static_cast<const X509_REVOKED *>(list.data[position]);
  return entry ? entry->userCertificate : nullptr;
}

// Where the search for a serial number ends: at the slot of the first entry that has it, or at a free one.
struct Place {
  uint32_t at;
  Slot tag;
  int position;  // or -1
};
Place probe(const Index &index, const STACK &list, const BIGINT *serial) noexcept {
  const uint64_t hash = Hash(index.key)(magnitude(serial));
  const Slot positions = (Slot(1) << index.position_bits) - 1;
  const Slot tag = Slot(hash >> 32) & ~positions;
  uint32_t at = uint32_t(hash) & index.mask;
  for (Slot found; (found = slots(index)[at]) != 0; at = (at + 1) & index.mask) {
    if ((found & ~positions) != tag) continue;
    const int position = int(found & positions) - 1;
    if (PKV_Cmp_BIGINT(serial_at(list, position), serial) == 0) return {at, tag, position};
  }
  return {at, tag, -1};
}

// Null when memory or random octets do not suffice.
owned<Index> new_index(const STACK &list) noexcept {
  const size_t room = std::bit_ceil(size_t(list.count) * 2);
  if (room > UINT32_MAX) return nullptr;
  owned<Index> index(static_cast<Index *>(allocate_zeroed(sizeof(Index) + room * sizeof(Slot))));
  if (!index) return nullptr;
  index->list = &list;
  index->slots_of_list = list.data;
  index->last = list.data[list.count - 1];
  index->count = list.count;
  index->sorted = list.sorted;
  index->mask = uint32_t(room - 1);
  index->position_bits = int(std::bit_width(unsigned(list.count)));
  unsigned char random[sizeof index->key];
  if (PKV_Rand_Bytes(random, sizeof random)) return nullptr;
  std::memcpy(index->key, random, sizeof random);
  return index;
}

int fault_of(const STACK *extensions) noexcept {
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(extensions))
    if (const int fault = each && each->object ? fault_of_entry(*each) : 0) return fault;
  return 0;
}

// Every entry must belong to the CRL, so that a change of it drops the index.
bool fill(Index &index, const STACK &list, X509_CRL_KEPT *kept) noexcept {
  for (int i = 0; i < list.count; ++i) {
    auto *entry = static_cast<X509_REVOKED *>(list.data[i]);
    if (!entry || !entry->userCertificate) continue;
    if (!index.fault) index.fault = fault_of(entry->crlEntryExtensions);
    if (!link_entry(*entry, kept)) return false;
    const Place place = probe(index, list, entry->userCertificate);
    if (place.position < 0) slots(index)[place.at] = place.tag | Slot(i + 1);
  }
  return true;
}

// The published index, made when there is none. Of several makers the first one's stays.
const Index *index_of(X509_CRL_KEPT &kept, const STACK &list) noexcept {
  if (const Index *found = __atomic_load_n(&kept.index, __ATOMIC_ACQUIRE)) return found;
  owned<Index> made = new_index(list);
  if (!made || !fill(*made, list, &kept)) return nullptr;
  Index *expected = nullptr;
  if (__atomic_compare_exchange_n(&kept.index, &expected, made.get(), false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE)) {
    return made.release();
  }
  return expected;
}

bool describes(const Index &index, const STACK &list) noexcept {
  return index.list == &list && index.slots_of_list == list.data && index.count == list.count &&
         index.sorted == list.sorted && index.last == list.data[list.count - 1];
}

int walk(const STACK &list, const BIGINT *serial) noexcept {
  for (int i = 0; i < list.count; ++i)
    if (PKV_Cmp_BIGINT(serial_at(list, i), serial) == 0) return i;
  return -1;
}

// The index of a list that has any entries; null where it is to be walked.
const Index *usable_index(const X509_CRL &crl, const STACK &list) noexcept {
  const Index *index = crl.kept && list.count > kFewEntries ? index_of(*crl.kept, list) : nullptr;
  return index && describes(*index, list) ? index : nullptr;
}

// The position of the first entry with the serial number, or -1.
int position_of(const X509_CRL *crl, const BIGINT *serial) noexcept {
  const STACK *list = get_X509_CRL_revoked(crl);
  if (!list || !serial || list->count == 0) return -1;
  const Index *index = usable_index(*crl, *list);
  return index ? probe(*index, *list, serial).position : walk(*list, serial);
}

}  // namespace

// Critical ones are known when they are a reason code or an invalidity date.
int fault_of_entry(const X509_EXTENSION &extension) noexcept {
  const std::string_view oid = text(*extension.object);
  if (oid == "2.5.29.29") return ERR_CRL_INDIRECT;
  const bool known = oid == "2.5.29.21" || oid == "2.5.29.24";
  return extension.critical && !known ? ERR_UNKNOWN_EXTENSION : 0;
}

int entries_fault(const X509_CRL &crl) noexcept {
  const STACK *list = get_X509_CRL_revoked(&crl);
  if (!list || list->count == 0) return 0;
  if (const Index *index = usable_index(crl, *list)) return index->fault;
  int fault = 0;
  for (const X509_REVOKED *each : elements<X509_REVOKED>(list))
    if (each && !fault) fault = fault_of(each->crlEntryExtensions);
  return fault;
}

}  // namespace velpki

using namespace velpki;

X509_REVOKED *find_X509_CRL_revoked(const X509_CRL *crl, const BIGINT *serial) noexcept {
  const int position = position_of(crl, serial);
  return position < 0 ? nullptr : element<X509_REVOKED>(get_X509_CRL_revoked(crl), position);
}

int verify_CRL_X509_CERT(X509_CRL *crl, X509_CERT *cert) noexcept {
  const BIGINT *serial = get_X509_serial(cert);
  if (!crl || !serial) return -1;
  const int position = position_of(crl, serial);
  return position < 0 ? 0 : position;
}
