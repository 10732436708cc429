// The records of x509_crl.h from the inside: entries that share a block, what a CRL keeps beside its members, codecs.
#pragma once

#include <velpki/x509_crl.h>
#include <velpki/x509v3.h>

#include "x509/internal/received.h"
#include "x509/internal/x509.h"

// The index of serial numbers, see crl_index.cpp.
struct x509_crl_index;

// What a CRL keeps. Its entries hold it too, so that a change of an entry can drop the content; it is valid for the
// list as it was.
struct x509_crl_kept {
  int shares;               // holders beside the CRL
  X509_RECEIVED *received;  // null when the CRL was built or changed
  int received_count;       // entries in them
  bool standard;            // the members have all that they say
  x509_crl_index *index;    // null until the first look-up; set by one atomic exchange
};

namespace velpki {

// The code of functions that have no number of their own.
inline constexpr int kCrlModule = 0x48000000;

VELPKI_FLAT(X509_REVOKED)
VELPKI_FLAT(X509_CRL_INFO)
VELPKI_FLAT(X509_CRL)

template <>
struct Flat<x509_crl_index> {
  static void release(x509_crl_index *index) noexcept { velpki::release(index); }
};
template <>
struct Flat<X509_CRL_KEPT> {
  static X509_CRL_KEPT *make() noexcept { return allocate_record<X509_CRL_KEPT>(); }
  static void release(X509_CRL_KEPT *kept) noexcept;               // by the CRL: drops the content
  static X509_CRL_KEPT *copy(const X509_CRL_KEPT *kept) noexcept;  // received octets, no index
};
X509_CRL_KEPT *hold(X509_CRL_KEPT *kept) noexcept;  // by an entry; null is nothing
void let_go(X509_CRL_KEPT *kept) noexcept;
// Forgets received octets and index, as every change does.
void drop_content(X509_CRL_KEPT *kept) noexcept;

// The octets that the CRL's members still describe, or null.
const X509_RECEIVED *received_of(const X509_CRL &crl) noexcept;

// Entries. Those of a decoded list stand in one block, a group, with the records that they own; their serial numbers
// point into the received octets. An entry made alone is a group of one.
struct RevokedGroup;
// A group with room for `count` entries, held by the caller until `close_group`; null when memory is exhausted. It
// keeps shares of `octets` and `kept`, which may be null.
RevokedGroup *open_group(int count, const X509_RECEIVED *octets, X509_CRL_KEPT *kept) noexcept;
void close_group(RevokedGroup *group) noexcept;
// The entry at `slot`, empty. Each slot is taken once, and its entry released by free_X509_REVOKED.
X509_REVOKED *take_entry(RevokedGroup &group, int slot) noexcept;
// Fill an empty entry of a group from views into the group's `octets`. Entries with equal extensions share the list.
Read place_serial(X509_REVOKED &entry, const Tlv &number) noexcept;
Read place_date(X509_REVOKED &entry, int type, Octets text) noexcept;
int place_extensions(X509_REVOKED &entry, const Tlv &encoded) noexcept;
// Makes the extensions of an entry its own, for a change; false when that cannot be.
bool own_extensions(X509_REVOKED *entry) noexcept;
// An entry has changed: what its CRL keeps describes it no longer.
void changed(X509_REVOKED &entry) noexcept;
// Makes an entry part of the list of the CRL that keeps `kept`. False when it is part of another's.
bool link_entry(X509_REVOKED &entry, X509_CRL_KEPT *kept) noexcept;
X509_CRL_KEPT *kept_of(const X509_REVOKED &entry) noexcept;

// A list of entries, ordered by serial number when it is sorted.
STACK *new_revoked_list() noexcept;

// What speaks against using a list that has an entry with this extension: 0, ERR_CRL_INDIRECT (it names another issuer)
// or ERR_UNKNOWN_EXTENSION.
int fault_of_entry(const X509_EXTENSION &extension) noexcept;
// What speaks against using the list at all: 0, ERR_CRL_INDIRECT or ERR_UNKNOWN_EXTENSION of an entry.
int entries_fault(const X509_CRL &crl) noexcept;

// Codecs. The list's decoder takes a view into `octets`.
int decode_revoked(const Tlv &tlv, const X509_RECEIVED &octets, X509_CRL_KEPT *kept, STACK *&out) noexcept;
int encode_revoked(const STACK &revoked, DerWriter &out) noexcept;
int decode(const Tlv &tlv, X509_CRL_INFO &out) noexcept;
int encode(const X509_CRL_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, X509_CRL &out) noexcept;
int encode(const X509_CRL &crl, DerWriter &out) noexcept;
int decode_crls(const Tlv &tlv, STACK &list) noexcept;
int encode_crls(const STACK &list, DerWriter &out, uint8_t identifier) noexcept;

}  // namespace velpki
