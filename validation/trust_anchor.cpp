// Trust anchors: a name and a key that are believed.
#include <velpki/asn1_error.h>

#include "validation/internal/ctl.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<TRUST_ANCHOR> = std::tuple(list_of<X509_NAME_CHILD>(&TRUST_ANCHOR::trustedCAName),
                                                              own(&TRUST_ANCHOR::trustedCAKey));

namespace {

// TrustAnchor ::= SEQUENCE { trustedCAName Name, trustedCAKey SubjectPublicKeyInfo }
int decode(const Tlv &tlv, TRUST_ANCHOR &out) noexcept {
  Cursor in(tlv);
  if (read_list(in, out.trustedCAName, decode_name)) read_record(in, out.trustedCAKey);
  return in.result(F_SEQ_TO_TRUST_ANCHOR);
}

int encode(const TRUST_ANCHOR &anchor, DerWriter &out) noexcept {
  if (!anchor.trustedCAName || !anchor.trustedCAKey) return fail(F_TRUST_ANCHOR_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  int code = encode_name(*anchor.trustedCAName, out);
  if (!code) code = encode(*anchor.trustedCAKey, out);
  if (!code) return out.result(F_TRUST_ANCHOR_TO_SEQ);
  return fail(F_TRUST_ANCHOR_TO_SEQ, reason_of(code) == kNoMemory ? kNoMemory : int(ERR_ASN1_ENCODING));
}

bool same_anchor(const TRUST_ANCHOR &a, const TRUST_ANCHOR &b) noexcept {
  return cmp_X509_NAME(a.trustedCAName, b.trustedCAName) == 0 && cmp_X509_PUBKEY(a.trustedCAKey, b.trustedCAKey) == 0;
}

// The subject and key of each certificate as an anchor, into `out`.
int collect_anchors(const X509_CERTIFICATES &certificates, TRUST_ANCHORS &out) noexcept {
  for (const X509_CERT *cert : elements<X509_CERT>(&certificates)) {
    TRUST_ANCHOR lent{get_X509_subject(cert), get_X509_SPKI(cert)};
    if (!lent.trustedCAName || !lent.trustedCAKey) return fail(F_ADD_TRUSTLIST, kUnreadable);
    if (add_TRUST_ANCHORS(&out, &lent)) return fail(F_ADD_TRUSTLIST, kUnreadable);
  }
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(TRUST_ANCHOR)
VELPKI_LIST(TRUST_ANCHORS, TRUST_ANCHOR)

int TRUST_ANCHOR_to_Seq(const TRUST_ANCHOR *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_TRUST_ANCHOR_TO_SEQ, in, out, encode);
}
int Seq_to_TRUST_ANCHOR(ASN1_UNIT *in, TRUST_ANCHOR **out) noexcept {
  return from_seq(F_SEQ_TO_TRUST_ANCHOR, in, out, decode);
}

int add_TRUST_ANCHORS(TRUST_ANCHORS *anchors, const TRUST_ANCHOR *anchor) noexcept {
  return insert_copy(anchors, anchor, -1) ? 0 : 1;
}

int get_TRUST_ANCHORS_index_by_TRUST_ANCHOR(const TRUST_ANCHORS *anchors, const TRUST_ANCHOR *anchor) noexcept {
  if (!anchors || !anchor) return -1;
  for (int i = 0; i < anchors->count; ++i) {
    const auto *each = element<TRUST_ANCHOR>(anchors, i);
    if (each && same_anchor(*each, *anchor)) return i;
  }
  return -1;
}

int add_TRUST_ANCHORS_from_CTL(TRUST_ANCHORS *anchors, P7_CONTENT_INFO *ctl_message) noexcept {
  const X509_CERTIFICATES *found = anchors ? certificates_of_list(ctl_message) : nullptr;
  if (!found) return fail(F_ADD_TRUSTLIST, kNullArgument);
  TRUST_ANCHORS *fresh = new_TRUST_ANCHORS();
  int code = fresh ? collect_anchors(*found, *fresh) : fail(F_ADD_TRUSTLIST, kUnreadable);
  if (!code && !move_elements(*fresh, *anchors)) code = fail(F_ADD_TRUSTLIST, kUnreadable);
  free_TRUST_ANCHORS(fresh);
  return code;
}
