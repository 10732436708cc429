// X509_REVOKED: lists of entries, and the extensions of one.
#include "x509/internal/crl.h"

using namespace velpki;

int get_X509_REVOKED_count(const STACK *revoked) noexcept { return get_STACK_count(revoked); }
X509_REVOKED *get_X509_REVOKED(const STACK *revoked, int index) noexcept {
  return element<X509_REVOKED>(revoked, index);
}

// The list does not know its CRL, but its entries do.
int add_X509_REVOKED_child(STACK **list, const X509_REVOKED *entry, int position) noexcept {
  owned<X509_REVOKED> copy(list ? dup_X509_REVOKED(entry) : nullptr);
  STACK *const fresh = copy && !*list ? new_revoked_list() : nullptr;
  STACK *const target = copy && *list ? *list : fresh;
  const X509_REVOKED *first = element<X509_REVOKED>(target, 0);
  X509_CRL_KEPT *kept = first ? kept_of(*first) : nullptr;
  if (!target || !insert_STACK_value(target, copy.get(), position)) return free_STACK(fresh), 1;
  drop_content(kept);
  link_entry(*copy.release(), kept);
  *list = target;
  return 0;
}

int get_X509_REVOKED_ext_count(const X509_REVOKED *entry) noexcept {
  if (!entry) return -1;
  return entry->crlEntryExtensions ? entry->crlEntryExtensions->count : 0;
}
int get_X509_REVOKED_ext_by_OID(const X509_REVOKED *entry, const OBJECT_IDENTIFIER *oid, int last) noexcept {
  return get_X509_EXTENSION_index_by_OID(entry ? entry->crlEntryExtensions : nullptr, oid, last);
}
int get_X509_REVOKED_ext_index_by_OID_index(const X509_REVOKED *entry, int oid_index, int last) noexcept {
  return get_X509_EXTENSION_index_by_OID_index(entry ? entry->crlEntryExtensions : nullptr, oid_index, last);
}
X509_EXTENSION *get_X509_REVOKED_ext(const X509_REVOKED *entry, int index) noexcept {
  return get_X509_EXTENSION(entry ? entry->crlEntryExtensions : nullptr, index);
}

void remove_X509_REVOKED_ext(X509_REVOKED *entry, int index) noexcept {
  if (!get_X509_REVOKED_ext(entry, index) || !own_extensions(entry)) return;
  remove_X509_EXTENSION(entry->crlEntryExtensions, index);
  changed(*entry);
}
int add_X509_REVOKED_ext(X509_REVOKED *entry, const X509_EXTENSION *extension, int position) noexcept {
  if (!own_extensions(entry) || add_X509_EXTENSION(&entry->crlEntryExtensions, extension, position)) return 1;
  return changed(*entry), 0;
}
