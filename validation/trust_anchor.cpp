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

int add_anchor(const X509_CERT &cert, TRUST_ANCHORS &out) noexcept {
  const TRUST_ANCHOR lent{get_X509_subject(&cert), get_X509_SPKI(&cert)};
  const bool whole = lent.trustedCAName && lent.trustedCAKey;
  return whole && add_TRUST_ANCHORS(&out, &lent) == 0 ? 0 : fail(F_ADD_TRUSTLIST, kUnreadable);
}

// Adds an anchor for each certificate that `wanted` says, all or none; their number.
template <class F>
int add_anchors(const X509_CERTIFICATES &certificates, TRUST_ANCHORS &out, int &added, F &&wanted) noexcept {
  TRUST_ANCHORS *fresh = new_TRUST_ANCHORS();
  int code = fresh ? 0 : fail(F_ADD_TRUSTLIST, kUnreadable);
  for (const X509_CERT *cert : elements<X509_CERT>(&certificates))
    if (!code && cert && wanted(*cert)) code = add_anchor(*cert, *fresh);
  added = fresh ? fresh->count : 0;
  if (!code && !move_elements(*fresh, out)) code = fail(F_ADD_TRUSTLIST, kUnreadable);
  free_TRUST_ANCHORS(fresh);
  return code;
}

// Whether the list's subjects name a certificate by its digest.
bool is_subject(const CERT_TRUST_LIST &list, int digest_id, const X509_CERT &cert) noexcept {
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  if (X509_CERT_digest_RFC5280(&cert, digest_id, digest, &length) || length <= 0) return false;
  for (const TRUSTED_CERTIFICATE *each : elements<TRUSTED_CERTIFICATE>(list.trustedSubjects)) {
    const ASN1_STRING *id = each ? each->subjectIdentifier : nullptr;
    if (id && id->length == length && std::memcmp(id->data, digest, size_t(length)) == 0) return true;
  }
  return false;
}

// Whether a time, null meaning now, lies between the list's dates. A list without next update has no end.
int check_dates(const CERT_TRUST_LIST &list, const X509_TIME *time) noexcept {
  const owned<ASN1_TIME> now = time ? time_of(*time) : owned<ASN1_TIME>(getCurrentLocalTime());
  const owned<ASN1_TIME> from = list.thisUpdate ? time_of(*list.thisUpdate) : nullptr;
  const owned<ASN1_TIME> until = list.nextUpdate ? time_of(*list.nextUpdate) : nullptr;
  if (!now) return fail(F_ADD_TRUSTLIST, ERR_INVALID_X509_TIME_TYPE);
  const bool begun = from && cmp_ASN1_TIME(now.get(), from.get()) >= 0;
  const bool over = list.nextUpdate && (!until || cmp_ASN1_TIME(now.get(), until.get()) > 0);
  return begun && !over ? 0 : fail(F_ADD_TRUSTLIST, ERR_TRUST_LIST_DATES);
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
  int added = 0;
  return add_anchors(*found, *anchors, added, [](const X509_CERT &) { return true; });
}

int add_TRUST_ANCHORS_from_CTL_strict(TRUST_ANCHORS *anchors, P7_CONTENT_INFO *ctl_message, X509_CERT *signer,
                                      const X509_TIME *time) noexcept {
  if (!anchors || !signer) return fail(F_ADD_TRUSTLIST, kNullArgument);
  if (const int code = verify_ctlSignedData(ctl_message, signer)) return code;
  CERT_TRUST_LIST *read = nullptr;
  if (const int code = P7_CONTENT_INFO_to_CERT_TRUST_LIST(ctl_message, &read)) return code;
  const owned<CERT_TRUST_LIST> list(read);
  if (const int code = check_dates(*list, time)) return code;
  const int digest_id = get_DigestID_from_OID(list->subjectAlgorithm);
  if (!digest_id) return fail(F_ADD_TRUSTLIST, kUnsupported);
  const X509_CERTIFICATES *carried = static_cast<const P7_SIGNED_DATA *>(ctl_message->content)->certificates;
  if (!carried) return fail(F_ADD_TRUSTLIST, ERR_NOT_FOUNDED);
  int added = 0;
  const int code =
      add_anchors(*carried, *anchors, added, [&](const X509_CERT &cert) { return is_subject(*list, digest_id, cert); });
  return code || added ? code : fail(F_ADD_TRUSTLIST, ERR_NOT_FOUNDED);
}
