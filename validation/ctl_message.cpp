// Trust lists inside signed messages.
#include <velpki/asn1_error.h>

#include "validation/internal/ctl.h"

namespace velpki {

VELPKI_FLAT_WITHOUT_DUP(P7_CONTENT_INFO)

namespace {

const P7_SIGNED_DATA *signed_data(const P7_CONTENT_INFO *message) noexcept {
  if (!message || message->kind != PKCS7_SIGNED_DATA) return nullptr;
  return static_cast<const P7_SIGNED_DATA *>(message->content);
}

// The list's octets, where the content info or the signed data in it has them; null for anything else.
const ASN1_UNIT *list_in(const P7_CONTENT_INFO *info) noexcept {
  if (const P7_SIGNED_DATA *outer = signed_data(info)) info = outer->contentInfo;
  if (!info || info->kind != PKCS7_TRUST_LIST) return nullptr;
  return static_cast<const ASN1_UNIT *>(info->content);
}

}  // namespace

const X509_CERTIFICATES *certificates_of_list(P7_CONTENT_INFO *ctl) noexcept {
  return verify_ctlSignedData(ctl, nullptr) ? nullptr : signed_data(ctl)->certificates;
}

bool move_elements(STACK &from, STACK &to) noexcept {
  if (from.count > INT_MAX - to.count || !reserve_stack(&to, to.count + from.count)) return false;
  for (int i = 0; i < from.count; ++i) push_STACK_value(&to, from.data[i]);
  from.count = 0;
  return true;
}

}  // namespace velpki

using namespace velpki;

int CERT_TRUST_LIST_to_P7_CONTENT_INFO(const CERT_TRUST_LIST *in, P7_CONTENT_INFO **out) noexcept {
  if (!in || !out) return fail(F_CERT_TRUST_LIST_TO_SEQ, kNullArgument);
  owned<P7_CONTENT_INFO> info(new_P7_CONTENT_INFO());
  ASN1_UNIT *unit = nullptr;
  if (const int code = CERT_TRUST_LIST_to_Seq(in, &unit)) return code;
  owned<ASN1_UNIT> content(unit);
  owned<OBJECT_IDENTIFIER> type = oid_of_row(PKCS7_TRUST_LIST);
  if (!info || !type) return fail(F_CERT_TRUST_LIST_TO_SEQ, kNoMemory);
  info->contentType = type.release();
  info->content = content.release();
  info->kind = PKCS7_TRUST_LIST;
  *out = info.release();
  return 0;
}

int P7_CONTENT_INFO_to_CERT_TRUST_LIST(const P7_CONTENT_INFO *in, CERT_TRUST_LIST **out) noexcept {
  if (!in || !out) return fail(F_SEQ_TO_CERT_TRUST_LIST, kNullArgument);
  const ASN1_UNIT *list = list_in(in);
  if (!list) return fail(F_SEQ_TO_CERT_TRUST_LIST, kUnsupported);
  return Seq_to_CERT_TRUST_LIST(const_cast<ASN1_UNIT *>(list), out);
}

int verify_ctlSignedData(P7_CONTENT_INFO *ctl, X509_CERT *signer) noexcept {
  if (!ctl) return fail(F_ADD_TRUSTLIST, kNullArgument);
  if (!signed_data(ctl) || !list_in(ctl)) return fail(F_ADD_TRUSTLIST, kUnsupported);
  constexpr int kFlags = PKCS7_ALLOW_WEAK_DIGESTS | PKCS7_ALLOW_BARE_SIGNERS;
  return verify_PKCS7_strict(ctl, signer, nullptr, nullptr, 0, kFlags, nullptr, nullptr);
}

int add_CERTIFICATES_from_CTL(X509_CERTIFICATES *certs, P7_CONTENT_INFO *ctl) noexcept {
  const X509_CERTIFICATES *found = certs ? certificates_of_list(ctl) : nullptr;
  if (!found) return fail(F_ADD_CERTLIST, kNullArgument);
  for (const X509_CERT *cert : elements<X509_CERT>(found))
    if (!get_X509_subject(cert)) return fail(F_ADD_CERTLIST, kUnreadable);
  STACK *copies = copy_list<X509_CERT>(found);
  const bool moved = copies && move_elements(*copies, *certs);
  destroy_list<X509_CERT>(copies);
  return moved ? 0 : fail(F_ADD_CERTLIST, kUnreadable);
}
