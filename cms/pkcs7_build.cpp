// Building a message: its type, content, certificates, signers and recipients.
#include "cms/internal/content_type.h"
#include "cms/internal/signature.h"
#include "cms/internal/signer_state.h"
#include "x509/internal/crl.h"

namespace velpki {

namespace {

// The lists of a message that has signers; all null for another type.
struct SignerLists {
  STACK **digest_algorithms = nullptr, **certificates = nullptr, **crls = nullptr, **signers = nullptr;
};

SignerLists signer_lists(P7_CONTENT_INFO *p7) noexcept {
  if (P7_SIGNED_DATA *data = signed_data(p7)) {
    return {&data->digestAlgorithms, &data->certificates, &data->crls, &data->signerInfos};
  }
  if (P7_SIGNED_AND_ENVELOPED_DATA *data = signed_and_enveloped_data(p7)) {
    return {&data->digestAlgorithms, &data->certificates, &data->crls, &data->signerInfos};
  }
  return {};
}

// Makes a list that is missing.
bool provide(STACK *&list) noexcept { return list || (list = new_STACK()); }

bool contains(const STACK *list, const void *element) noexcept {
  for (const void *each : elements<void>(list))
    if (each == element) return true;
  return false;
}

}  // namespace

P7_SIGNER_INFOS *signer_infos(const P7_CONTENT_INFO *p7) noexcept {
  if (const P7_SIGNED_DATA *data = signed_data(p7)) return data->signerInfos;
  const P7_SIGNED_AND_ENVELOPED_DATA *data = signed_and_enveloped_data(p7);
  return data ? data->signerInfos : nullptr;
}

X509_CERTIFICATES *certificates_of(const P7_CONTENT_INFO *p7) noexcept {
  if (const P7_SIGNED_DATA *data = signed_data(p7)) return data->certificates;
  const P7_SIGNED_AND_ENVELOPED_DATA *data = signed_and_enveloped_data(p7);
  return data ? data->certificates : nullptr;
}

P7_RECIPIENT_INFOS **recipient_list(const P7_CONTENT_INFO *p7) noexcept {
  if (P7_ENVELOPED_DATA *data = enveloped_data(p7)) return &data->recipientInfos;
  P7_SIGNED_AND_ENVELOPED_DATA *data = signed_and_enveloped_data(p7);
  return data ? &data->recipientInfos : nullptr;
}

P7_ENCRYPTED_CONTENT_INFO **encrypted_content(const P7_CONTENT_INFO *p7) noexcept {
  if (P7_ENVELOPED_DATA *data = enveloped_data(p7)) return &data->encryptedContentInfo;
  if (P7_SIGNED_AND_ENVELOPED_DATA *data = signed_and_enveloped_data(p7)) return &data->encryptedContentInfo;
  P7_ENCRYPTED_DATA *data = encrypted_data(p7);
  return data ? &data->encryptedContentInfo : nullptr;
}

P7_CONTENT_INFO **inner_content(const P7_CONTENT_INFO *p7) noexcept {
  if (P7_SIGNED_DATA *data = signed_data(p7)) return &data->contentInfo;
  P7_DIGESTED_DATA *data = digested_data(p7);
  return data ? &data->contentInfo : nullptr;
}

int content_row(const P7_CONTENT_INFO *p7) noexcept {
  return p7 && p7->contentType ? index_from_OBJECT_IDENTIFIER(p7->contentType) : 0;
}

owned<P7_CONTENT_INFO> new_data(Octets octets) noexcept {
  owned<P7_CONTENT_INFO> info(new_P7_CONTENT_INFO());
  owned<ASN1_STRING> string(info ? new_string(TYPE_OCTET_STRING, octets) : nullptr);
  if (!string || !(info->contentType = index_to_OBJECT_IDENTIFIER(PKCS7_DATA))) return nullptr;
  info->content = string.release();
  info->kind = PKCS7_DATA;
  return info;
}

bool set_issuer_and_serial(P7_ISSUER_AND_SERIAL_NUMBER *&out, const X509_CERT &cert) noexcept {
  owned<P7_ISSUER_AND_SERIAL_NUMBER> fresh(new_P7_ISSUER_AND_SERIAL_NUMBER());
  if (!fresh || !(fresh->issuer = dup_X509_NAME(get_X509_issuer(&cert)))) return false;
  if (!(fresh->serialNumber = PKV_Dup_BIGINT(get_X509_serial(&cert)))) return false;
  free_P7_ISSUER_AND_SERIAL_NUMBER(out);
  out = fresh.release();
  return true;
}

}  // namespace velpki

using namespace velpki;

int set_PKCS7_Type(P7_CONTENT_INFO *p7, int type_index) noexcept {
  const ContentType *type = content_type(type_index);
  if (!p7 || !type || !type->make) return 1;
  owned<OBJECT_IDENTIFIER> oid = oid_of_row(type_index);
  P7_CONTENT_INFO fresh{oid.get(), oid ? type->make() : nullptr, type_index};
  if (!fresh.content) return 1;
  if (BIGINT **version = version_of(fresh); version && !set_version(*version, unsigned(type->version))) {
    return drop_content(fresh), 1;
  }
  drop_content(*p7);
  free_OBJECT_IDENTIFIER(p7->contentType);
  static_cast<void>(oid.release());
  *p7 = fresh;
  return 0;
}

int set_PKCS7_Content(P7_CONTENT_INFO *p7, P7_CONTENT_INFO *content) noexcept {
  P7_CONTENT_INFO **place = inner_content(p7);
  if (!place || !content || *place == content) return 1;
  for (P7_CONTENT_INFO *inside = content, **next; inside; inside = (next = inner_content(inside)) ? *next : nullptr)
    if (inside == p7) return 1;
  free_P7_CONTENT_INFO(*place);
  *place = content;
  return 0;
}

int new_PKCS7_Content(P7_CONTENT_INFO *p7, int type_index) noexcept {
  owned<P7_CONTENT_INFO> content(new_P7_CONTENT_INFO());
  if (!content || set_PKCS7_Type(content.get(), type_index) || set_PKCS7_Content(p7, content.get())) return 1;
  static_cast<void>(content.release());
  return 0;
}

int gen_PKCS7_DATA_from_Binary(P7_CONTENT_INFO **p7, const unsigned char *bytes, int length) noexcept {
  if (!p7 || !bytes) return fail(F_GET_PKCS7_DATA, kNullArgument);
  if (length < 0) return fail(F_GET_PKCS7_DATA, kBadValue);
  owned<P7_CONTENT_INFO> fresh = new_data(octets_of(bytes, length));
  if (!fresh) return fail(F_GET_PKCS7_DATA, kNoMemory);
  return store(std::move(fresh), p7);
}

int add_PKCS7_Signer(P7_CONTENT_INFO *p7, P7_SIGNER_INFO *si) noexcept {
  const SignerLists lists = signer_lists(p7);
  if (!lists.signers || !si || contains(*lists.signers, si)) return 1;
  if (!provide(*lists.signers) || !provide(*lists.digest_algorithms)) return 1;
  if (!insert_copy(*lists.digest_algorithms, si->digestAlgorithm, -1)) return 1;
  if (push_STACK_value(*lists.signers, si)) return 0;
  free_X509_ALGO_IDENTIFIER(static_cast<X509_ALGO_IDENTIFIER *>(pop_STACK_value(*lists.digest_algorithms)));
  return 1;
}

// A copy that cannot be appended takes the caller's certificate with it.
int add_PKCS7_Certificate(P7_CONTENT_INFO *p7, X509_CERT *cert) noexcept {
  const SignerLists lists = signer_lists(p7);
  if (!lists.certificates || !cert || !provide(*lists.certificates)) return 1;
  owned<X509_CERT> copy(dup_X509_CERT(cert));
  if (!copy) return 1;
  if (append(*lists.certificates, copy)) return 0;
  free_X509_CERT(cert);
  return 1;
}

int add_PKCS7_Certificate_ex(P7_CONTENT_INFO *p7, const X509_CERT *cert) noexcept {
  const SignerLists lists = signer_lists(p7);
  if (!lists.certificates || !cert || !provide(*lists.certificates)) return 1;
  return insert_copy(*lists.certificates, cert, -1) ? 0 : 1;
}

int add_PKCS7_Crl(P7_CONTENT_INFO *p7, X509_CRL *crl) noexcept {
  const SignerLists lists = signer_lists(p7);
  if (!lists.crls || !crl || !provide(*lists.crls)) return 1;
  return insert_copy(*lists.crls, static_cast<const X509_CRL *>(crl), -1) ? 0 : 1;
}

int add_PKCS7_P7_RECIPIENT_INFO(P7_CONTENT_INFO *p7, P7_RECIPIENT_INFO *ri) noexcept {
  P7_RECIPIENT_INFOS **list = recipient_list(p7);
  if (!list || !ri || contains(*list, ri) || !provide(*list)) return 1;
  return push_STACK_value(*list, ri) ? 0 : 1;
}

int add_PKCS7_Signed_Attribute(P7_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                               int length) noexcept {
  if (!si || length < 0 || (!bytes && length > 0)) return 1;
  if (!add_attribute(si->authenticatedAttributes, oid_index, type, octets_of(bytes, length))) return 1;
  return change_attributes(*si), 0;
}

int add_PKCS7_Unauthenticated_Attribute(P7_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                                        int length) noexcept {
  if (!si || length < 0 || (!bytes && length > 0)) return 1;
  if (!add_attribute(si->unauthenticatedAttributes, oid_index, type, octets_of(bytes, length))) return 1;
  return change_beside_attributes(*si), 0;
}

int set_P7_version(P7_CONTENT_INFO *p7, int version) noexcept {
  BIGINT **own = p7 ? version_of(*p7) : nullptr;
  if (!own || version < 0) return 1;
  if (!set_version(*own, unsigned(version))) return 1;
  for (P7_SIGNER_INFO *each : elements<P7_SIGNER_INFO>(signer_infos(p7))) {
    if (!set_version(each->version, unsigned(version))) return 1;
    change_beside_attributes(*each);
  }
  P7_RECIPIENT_INFOS **recipients = recipient_list(p7);
  for (P7_RECIPIENT_INFO *each : elements<P7_RECIPIENT_INFO>(recipients ? *recipients : nullptr))
    if (!set_version(each->version, unsigned(version))) return 1;
  return 0;
}
