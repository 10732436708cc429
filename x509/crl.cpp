// X509_CRL and X509_CRL_INFO: their life, what a CRL keeps beside its members, setters and getters.
#include "x509/internal/crl.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_CRL_INFO> = std::tuple(own(&X509_CRL_INFO::signature),
                                                               list_of<X509_NAME_CHILD>(&X509_CRL_INFO::issuer),
                                                               own(&X509_CRL_INFO::thisUpdate),
                                                               own(&X509_CRL_INFO::nextUpdate),
                                                               list_of<X509_REVOKED>(&X509_CRL_INFO::revoked),
                                                               list_of<X509_EXTENSION>(&X509_CRL_INFO::extensions));
template <>
inline constexpr auto owned_fields<X509_CRL> = std::tuple(made(&X509_CRL::tbs), own(&X509_CRL::sig_alg),
                                                          own(&X509_CRL::sig_value), made(&X509_CRL::kept));

// Kept content.

X509_CRL_KEPT *hold(X509_CRL_KEPT *kept) noexcept {
  if (kept) __atomic_fetch_add(&kept->shares, 1, __ATOMIC_RELAXED);
  return kept;
}

void let_go(X509_CRL_KEPT *kept) noexcept {
  if (!kept || __atomic_fetch_sub(&kept->shares, 1, __ATOMIC_ACQ_REL) > 0) return;
  drop_content(kept);
  release(kept);
}

void drop_content(X509_CRL_KEPT *kept) noexcept {
  if (!kept) return;
  if (kept->received) Flat<X509_RECEIVED>::release(kept->received);
  kept->received = nullptr;
  release(kept->index);
  kept->index = nullptr;
}

void Flat<X509_CRL_KEPT>::release(X509_CRL_KEPT *kept) noexcept {
  drop_content(kept);
  let_go(kept);
}

X509_CRL_KEPT *Flat<X509_CRL_KEPT>::copy(const X509_CRL_KEPT *kept) noexcept {
  X509_CRL_KEPT *fresh = make();
  if (!fresh || !kept->received) return fresh;
  fresh->received = Flat<X509_RECEIVED>::copy(kept->received);
  fresh->received_count = kept->received_count;
  fresh->standard = kept->standard;
  return fresh;
}

const X509_RECEIVED *received_of(const X509_CRL &crl) noexcept {
  const bool same_list = crl.kept && crl.tbs && get_STACK_count(crl.tbs->revoked) == crl.kept->received_count;
  return same_list ? crl.kept->received : nullptr;
}

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(X509_CRL_INFO)

X509_CRL *new_X509_CRL(void) noexcept { return make<X509_CRL>(); }
void clean_X509_CRL(X509_CRL *p) noexcept { clean(p); }
void free_X509_CRL(X509_CRL *p) noexcept { destroy(p); }

X509_CRL *dup_X509_CRL(const X509_CRL *p) noexcept {
  X509_CRL *fresh = copy(p);
  for (X509_REVOKED *each : elements<X509_REVOKED>(get_X509_CRL_revoked(fresh)))
    if (each) link_entry(*each, fresh->kept);
  return fresh;
}

namespace velpki {

namespace {

// The body of a CRL that is about to change. A cleaned CRL gets a new body. Null for null or exhausted memory.
X509_CRL_INFO *body_of(X509_CRL *crl) noexcept {
  if (!crl) return nullptr;
  if (!crl->tbs) crl->tbs = new_X509_CRL_INFO();
  if (!crl->kept) crl->kept = Flat<X509_CRL_KEPT>::make();
  return crl->kept ? crl->tbs : nullptr;
}

// The end of a setter, 0 or 1: what was received and the index describe the CRL no longer, if it has changed.
int changed(X509_CRL *crl, bool stored) noexcept {
  if (stored) drop_content(crl->kept);
  return stored ? 0 : 1;
}

template <class T>
int set_field(X509_CRL *crl, T *X509_CRL_INFO::*member, const T *value) noexcept {
  X509_CRL_INFO *info = value ? body_of(crl) : nullptr;
  return changed(crl, info && replace(*info, member, value));
}
// The two members outside the body.
int set_outside(X509_CRL *crl, ASN1_STRING *X509_CRL::*member, const ASN1_STRING *value) noexcept {
  return changed(crl, value && body_of(crl) && replace(*crl, member, value));
}

template <class T>
T *field(const X509_CRL *crl, T *X509_CRL_INFO::*member) noexcept {
  return crl && crl->tbs ? crl->tbs->*member : nullptr;
}

X509_EXTENSIONS *extensions_of(const X509_CRL *crl) noexcept { return field(crl, &X509_CRL_INFO::extensions); }

}  // namespace

}  // namespace velpki

int set_X509_CRL_version(X509_CRL *crl, int version) noexcept {
  X509_CRL_INFO *info = version == 0 || version == 1 ? body_of(crl) : nullptr;
  if (info) info->version = version;
  return changed(crl, info);
}
int get_X509_CRL_version(const X509_CRL *crl) noexcept { return crl && crl->tbs ? crl->tbs->version : -1; }

int set_X509_CRL_signature(X509_CRL *crl, const OBJECT_IDENTIFIER *oid) noexcept {
  return set_field(crl, &X509_CRL_INFO::signature, oid);
}
OBJECT_IDENTIFIER *get_X509_CRL_signature(const X509_CRL *crl) noexcept {
  return field(crl, &X509_CRL_INFO::signature);
}

int set_X509_CRL_issuer(X509_CRL *crl, const X509_NAME *issuer) noexcept {
  STACK *copy = crl && issuer ? copy_list<X509_NAME_CHILD>(issuer) : nullptr;
  X509_CRL_INFO *info = copy ? body_of(crl) : nullptr;
  if (info) std::swap(info->issuer, copy);
  destroy_list<X509_NAME_CHILD>(copy);
  return changed(crl, info);
}
X509_NAME *get_X509_CRL_issuer(const X509_CRL *crl) noexcept { return field(crl, &X509_CRL_INFO::issuer); }

int set_X509_CRL_thisUpdate(X509_CRL *crl, const X509_TIME *time) noexcept {
  return set_field(crl, &X509_CRL_INFO::thisUpdate, time);
}
X509_TIME *get_X509_CRL_thisUpdate(const X509_CRL *crl) noexcept { return field(crl, &X509_CRL_INFO::thisUpdate); }

int set_X509_CRL_nextUpdate(X509_CRL *crl, const X509_TIME *time) noexcept {
  return set_field(crl, &X509_CRL_INFO::nextUpdate, time);
}
X509_TIME *get_X509_CRL_nextUpdate(const X509_CRL *crl) noexcept { return field(crl, &X509_CRL_INFO::nextUpdate); }

int set_X509_CRL_sig_alg(X509_CRL *crl, const OBJECT_IDENTIFIER *oid) noexcept {
  return set_outside(crl, &X509_CRL::sig_alg, oid);
}
OBJECT_IDENTIFIER *get_X509_CRL_sig_alg(const X509_CRL *crl) noexcept { return crl ? crl->sig_alg : nullptr; }

int set_X509_CRL_sig_value(X509_CRL *crl, const ASN1_STRING *value) noexcept {
  return set_outside(crl, &X509_CRL::sig_value, value);
}
ASN1_STRING *get_X509_CRL_sig_value(const X509_CRL *crl) noexcept { return crl ? crl->sig_value : nullptr; }

STACK *get_X509_CRL_revoked(const X509_CRL *crl) noexcept { return field(crl, &X509_CRL_INFO::revoked); }

const unsigned char *get_X509_CRL_received(const X509_CRL *crl, int tbs, int *length) noexcept {
  return lend_received(crl ? received_of(*crl) : nullptr, tbs, length);
}

int add_X509_CRL_revoked(X509_CRL *crl, const X509_REVOKED *entry) noexcept {
  X509_CRL_INFO *info = entry ? body_of(crl) : nullptr;
  if (changed(crl, info && !add_X509_REVOKED_child(&info->revoked, entry, -1))) return 1;
  link_entry(*element<X509_REVOKED>(info->revoked, info->revoked->count - 1), crl->kept);
  return 0;
}

void remove_X509_CRL_revoked(X509_CRL *crl, int index) noexcept {
  const owned<X509_REVOKED> entry(static_cast<X509_REVOKED *>(remove_STACK_value(get_X509_CRL_revoked(crl), index)));
  changed(crl, entry != nullptr);
}

int sort_X509_CRL_revoked(X509_CRL *crl) noexcept {
  if (!crl) return 1;
  STACK *list = get_X509_CRL_revoked(crl);
  drop_content(crl->kept);
  sort_STACK(list);
  int position = 0;
  for (X509_REVOKED *each : elements<X509_REVOKED>(list)) {
    if (each) each->sequence = position;
    ++position;
  }
  return 0;
}

// Extensions.

int get_X509_CRL_ext_count(const X509_CRL *crl) noexcept {
  if (!crl) return -1;
  const X509_EXTENSIONS *list = extensions_of(crl);
  return list ? list->count : 0;
}
int get_X509_CRL_ext_by_OBJ(const X509_CRL *crl, const OBJECT_IDENTIFIER *oid, int last) noexcept {
  return get_X509_EXTENSION_index_by_OID(extensions_of(crl), oid, last);
}
int get_X509_CRL_ext_index_by_OID_index(const X509_CRL *crl, int oid_index, int last) noexcept {
  return get_X509_EXTENSION_index_by_OID_index(extensions_of(crl), oid_index, last);
}
X509_EXTENSION *get_X509_CRL_ext(const X509_CRL *crl, int index) noexcept {
  return get_X509_EXTENSION(extensions_of(crl), index);
}
void remove_X509_CRL_ext(X509_CRL *crl, int index) noexcept {
  changed(crl, get_X509_CRL_ext(crl, index));
  remove_X509_EXTENSION(extensions_of(crl), index);
}
int add_X509_CRL_ext(X509_CRL *crl, const X509_EXTENSION *extension, int position) noexcept {
  X509_CRL_INFO *info = body_of(crl);
  return changed(crl, info && !add_X509_EXTENSION(&info->extensions, extension, position));
}
