// X509_REVOKED: entries of a revocation list, and the blocks that they stand in.
#include <velpki/asn1_error.h>

#include "x509/internal/crl.h"

namespace velpki {

namespace {

// Most entries have one of few extension lists, a reason code. Those with the same octets share one.
constexpr size_t kSharedLists = 16;
struct SharedList {
  Octets encoded;  // in the group's octets
  STACK *list;     // null when the slot is free
};

}  // namespace

// The head of a block of entries. It is released with the last of them.
struct RevokedGroup {
  int living;             // entries not released, and one while the group is open
  int room;               // slots
  X509_CRL_KEPT *kept;    // of the CRL that the entries belong to, or null
  X509_RECEIVED *octets;  // what placed serial numbers point into, or null
  SharedList shared[kSharedLists];
};

namespace {

constexpr size_t kShortDate = 15;  // GeneralizedTime with seconds, in UTC

// What stands at a slot, behind the serial number's record, whose size is the provider's: a search reads both together.
struct Entry {
  X509_REVOKED record;
  X509_TIME date;
  ASN1_STRING date_text;  // its octets follow, as those of every string
  uint8_t date_octets[kShortDate + 1];
};

size_t number_size() noexcept { return (PKV_Get_BIGINT_Size() + alignof(Entry) - 1) / alignof(Entry) * alignof(Entry); }
size_t stride() noexcept { return number_size() + sizeof(Entry); }

void *slot_of(RevokedGroup &group, int slot) noexcept {
  return reinterpret_cast<uint8_t *>(&group + 1) + size_t(slot) * stride() + number_size();
}
// Every X509_REVOKED was made at a slot and is the first member of what stands there.
Entry &entry_of(X509_REVOKED &record) noexcept { return *reinterpret_cast<Entry *>(&record); }
void *number_place(Entry &entry) noexcept { return reinterpret_cast<uint8_t *>(&entry) - number_size(); }
RevokedGroup &group_of(const X509_REVOKED &record) noexcept {
  Entry &entry = entry_of(const_cast<X509_REVOKED &>(record));
  auto *first = static_cast<uint8_t *>(number_place(entry)) - size_t(record.place / 2) * stride();
  return *(reinterpret_cast<RevokedGroup *>(first) - 1);
}

// `place` is the slot's number, doubled, and whether the extensions are the group's.
bool shares_extensions(const X509_REVOKED &record) noexcept { return record.place & 1; }

void release_hold(RevokedGroup &group) noexcept {
  if (__atomic_sub_fetch(&group.living, 1, __ATOMIC_ACQ_REL) > 0) return;
  let_go(group.kept);
  for (const SharedList &each : group.shared)
    if (each.list) free_X509_EXTENSIONS(each.list);
  if (group.octets) Flat<X509_RECEIVED>::release(group.octets);
  release(&group);
}

void drop_serial(Entry &entry) noexcept {
  if (entry.record.userCertificate == number_place(entry))
    PKV_Clear_BIGINT(entry.record.userCertificate);
  else
    PKV_Free_BIGINT(entry.record.userCertificate);
  entry.record.userCertificate = nullptr;
}

void drop_date(Entry &entry) noexcept {
  if (entry.record.revocationDate != &entry.date)
    free_X509_TIME(entry.record.revocationDate);
  else if (entry.date.time != &entry.date_text)
    free_ASN1_STRING(entry.date.time);
  else
    clean_ASN1_STRING(&entry.date_text);
  entry.record.revocationDate = nullptr;
}

void set_extensions(X509_REVOKED &record, STACK *list, bool shared) noexcept {
  if (record.crlEntryExtensions && !shares_extensions(record)) free_X509_EXTENSIONS(record.crlEntryExtensions);
  record.crlEntryExtensions = list;
  record.place = (record.place & ~1) | (shared ? 1 : 0);
}

void drop_members(Entry &entry) noexcept {
  drop_serial(entry);
  drop_date(entry);
  set_extensions(entry.record, nullptr, false);
}

// An entry is about to change: what its CRL keeps no longer describes it.
X509_REVOKED *changing(X509_REVOKED *entry) noexcept {
  if (entry) drop_content(group_of(*entry).kept);
  return entry;
}

int compare_entries(const void *a, const void *b) noexcept {
  const auto *left = *static_cast<const X509_REVOKED *const *>(a),
             *right = *static_cast<const X509_REVOKED *const *>(b);
  return PKV_Cmp_BIGINT(get_X509_REVOKED_userCert(left), get_X509_REVOKED_userCert(right));
}

}  // namespace

RevokedGroup *open_group(int count, const X509_RECEIVED *octets, X509_CRL_KEPT *kept) noexcept {
  if (size_t(count) > (size_t(PTRDIFF_MAX) - sizeof(RevokedGroup)) / stride()) return nullptr;
  auto *group = static_cast<RevokedGroup *>(allocate(sizeof(RevokedGroup) + size_t(count) * stride()));
  if (group) *group = {1, count, hold(kept), octets ? Flat<X509_RECEIVED>::copy(octets) : nullptr, {}};
  return group;
}

void close_group(RevokedGroup *group) noexcept {
  if (group) release_hold(*group);
}

X509_REVOKED *take_entry(RevokedGroup &group, int slot) noexcept {
  if (slot >= group.room) return nullptr;
  Entry *entry = static_cast<Entry *>(slot_of(group, slot));
  *entry = {};
  entry->record.place = slot * 2;
  ++group.living;
  return &entry->record;
}

// A negative number's magnitude does not stand in the octets.
Read place_serial(X509_REVOKED &entry, const Tlv &number) noexcept {
  if (number.content.empty()) return Read::malformed;
  if (number.rules.standard && number.content[0] & 0x80) return read_integer(number, entry.userCertificate);
  entry.userCertificate =
      PKV_Place_BIGINT(number_place(entry_of(entry)), number.content.data(), int(number.content.size()));
  return entry.userCertificate ? Read::ok : Read::malformed;
}

Read place_date(X509_REVOKED &record, int type, Octets text) noexcept {
  Entry &entry = entry_of(record);
  const int number = type == X509_TIME_UTC ? TYPE_UTC_TIME : TYPE_GENERALIZED_TIME;
  entry.date.type = type;
  if (text.size() > kShortDate) {
    entry.date.time = new_string(number, text, time_flag(number, text));
    if (!entry.date.time) return Read::no_memory;
  } else {
    entry.date.time = &entry.date_text;
    entry.date_text = {number, entry.date_octets, int(text.size()), time_flag(number, text)};
    copy_octets(entry.date_octets, text);
    entry.date_octets[text.size()] = 0;
  }
  record.revocationDate = &entry.date;
  return Read::ok;
}

int place_extensions(X509_REVOKED &entry, const Tlv &encoded) noexcept {
  const Octets whole = encoded.whole;
  SharedList &slot = group_of(entry).shared[(whole.size() + whole.back()) % kSharedLists];
  const bool same = slot.list && whole.size() == slot.encoded.size() &&
                    std::memcmp(whole.data(), slot.encoded.data(), whole.size()) == 0;
  if (same) return set_extensions(entry, slot.list, true), 0;
  STACK *list = new_STACK();
  if (!list) return fail(F_SEQ_TO_X509_REVOKED, kNoMemory);
  if (const int code = decode_extensions(encoded, *list)) return free_X509_EXTENSIONS(list), code;
  const bool shared = !slot.list;
  if (shared) slot = {whole, list};
  set_extensions(entry, list, shared);
  return 0;
}

void changed(X509_REVOKED &entry) noexcept { changing(&entry); }

// A shared list becomes one of its own.
bool own_extensions(X509_REVOKED *entry) noexcept {
  if (!entry || !shares_extensions(*entry)) return entry;
  STACK *copy = dup_X509_EXTENSIONS(entry->crlEntryExtensions);
  if (copy) set_extensions(*entry, copy, false);
  return copy != nullptr;
}

// Concurrent first look-ups link the same entry to the same CRL.
bool link_entry(X509_REVOKED &entry, X509_CRL_KEPT *kept) noexcept {
  RevokedGroup &group = group_of(entry);
  X509_CRL_KEPT *found = __atomic_load_n(&group.kept, __ATOMIC_ACQUIRE);
  if (found || !kept) return found == kept;
  hold(kept);
  if (__atomic_compare_exchange_n(&group.kept, &found, kept, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE)) return true;
  let_go(kept);
  return found == kept;
}

X509_CRL_KEPT *kept_of(const X509_REVOKED &entry) noexcept { return group_of(entry).kept; }

STACK *new_revoked_list() noexcept { return new_STACK_compare_func(compare_entries); }

}  // namespace velpki

using namespace velpki;

X509_REVOKED *new_X509_REVOKED(void) noexcept {
  RevokedGroup *group = open_group(1, nullptr, nullptr);
  X509_REVOKED *entry = group ? take_entry(*group, 0) : nullptr;
  close_group(group);
  return entry;
}

void clean_X509_REVOKED(X509_REVOKED *p) noexcept {
  if (!changing(p)) return;
  drop_members(entry_of(*p));
  p->sequence = 0;
}

void free_X509_REVOKED(X509_REVOKED *p) noexcept {
  if (!p) return;
  drop_members(entry_of(*p));
  release_hold(group_of(*p));
}

X509_REVOKED *dup_X509_REVOKED(const X509_REVOKED *p) noexcept {
  owned<X509_REVOKED> fresh(p ? new_X509_REVOKED() : nullptr);
  if (!fresh) return nullptr;
  if (p->userCertificate && set_X509_REVOKED_userCert(fresh.get(), p->userCertificate)) return nullptr;
  if (p->revocationDate && set_X509_REVOKED_revocationDate(fresh.get(), p->revocationDate)) return nullptr;
  set_extensions(*fresh, dup_X509_EXTENSIONS(p->crlEntryExtensions), false);
  if (p->crlEntryExtensions && !fresh->crlEntryExtensions) return nullptr;
  fresh->sequence = p->sequence;
  return fresh.release();
}

void free_X509_REVOKED_LIST(STACK *list) noexcept { destroy_list<X509_REVOKED>(list); }

BIGINT *get_X509_REVOKED_userCert(const X509_REVOKED *entry) noexcept {
  return entry ? entry->userCertificate : nullptr;
}
X509_TIME *get_X509_REVOKED_revocationDate(const X509_REVOKED *entry) noexcept {
  return entry ? entry->revocationDate : nullptr;
}

int set_X509_REVOKED_userCert(X509_REVOKED *entry, const BIGINT *serial) noexcept {
  BIGINT *copy = entry && serial ? PKV_Dup_BIGINT(serial) : nullptr;
  if (!copy) return 1;
  changing(entry);
  drop_serial(entry_of(*entry));
  entry->userCertificate = copy;
  return 0;
}

int set_X509_REVOKED_revocationDate(X509_REVOKED *entry, const X509_TIME *time) noexcept {
  X509_TIME *copy = entry && time ? dup_X509_TIME(time) : nullptr;
  if (!copy) return 1;
  changing(entry);
  drop_date(entry_of(*entry));
  if (copy->time && size_t(copy->time->length) <= kShortDate) {
    place_date(*entry, copy->type, octets(*copy->time));
    free_X509_TIME(copy);
  } else {
    entry->revocationDate = copy;
  }
  return 0;
}
