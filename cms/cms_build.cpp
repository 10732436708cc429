// Building a message: its type, content and certificates.
#include "cms/internal/cms.h"
#include "cms/internal/content_type.h"
#include "cms/internal/signer_state.h"

namespace velpki {

CMS_RECIPIENT_INFOS **recipient_list(const CMS_CONTENT_INFO *cms) noexcept {
  if (CMS_ENVELOPED_DATA *data = enveloped_data(cms)) return &data->recipientInfos;
  CMS_AUTHENTICATED_DATA *data = authenticated_data(cms);
  return data ? &data->recipientInfos : nullptr;
}

CMS_ENCRYPTED_CONTENT_INFO **encrypted_content(const CMS_CONTENT_INFO *cms) noexcept {
  if (CMS_ENVELOPED_DATA *data = enveloped_data(cms)) return &data->encryptedContentInfo;
  CMS_ENCRYPTED_DATA *data = encrypted_data(cms);
  return data ? &data->encryptedContentInfo : nullptr;
}

ENCAPSULATED_CONTENT_INFO **encapsulated_content(const CMS_CONTENT_INFO *cms) noexcept {
  if (CMS_SIGNED_DATA *data = signed_data(cms)) return &data->encapContentInfo;
  if (CMS_DIGESTED_DATA *data = digested_data(cms)) return &data->encapContentInfo;
  CMS_AUTHENTICATED_DATA *data = authenticated_data(cms);
  return data ? &data->encapContentInfo : nullptr;
}

CMS_ORIGINATOR_INFO **originator_info(const CMS_CONTENT_INFO *cms) noexcept {
  if (CMS_ENVELOPED_DATA *data = enveloped_data(cms)) return &data->originatorInfo;
  CMS_AUTHENTICATED_DATA *data = authenticated_data(cms);
  return data ? &data->originatorInfo : nullptr;
}

int content_row(const CMS_CONTENT_INFO *cms) noexcept {
  return cms && cms->contentType ? index_from_OBJECT_IDENTIFIER(cms->contentType) : 0;
}

int check_type(const CMS_CONTENT_INFO *cms, int row, int function) noexcept {
  if (!cms) return fail(function, kNullArgument);
  if (content_row(cms) != row) return fail(function, kUnsupported);
  return cms->content && cms->kind == row ? 0 : fail(function, kNullArgument);
}

bool is_typed(const ENCAPSULATED_CONTENT_INFO *info) noexcept {
  return info && info->eContentType && index_from_OBJECT_IDENTIFIER(info->eContentType) != CMS_TYPE_DATA;
}

ENCAPSULATED_CONTENT_INFO *provide_content(ENCAPSULATED_CONTENT_INFO *&info) noexcept {
  if (!info && !(info = new_ENCAPSULATED_CONTENT_INFO())) return nullptr;
  if (!info->eContentType) info->eContentType = index_to_OBJECT_IDENTIFIER(CMS_TYPE_DATA);
  return info->eContentType ? info : nullptr;
}

bool raise_version(BIGINT *&version, unsigned least) noexcept {
  return PKV_Get_BIGINT_Word(version) >= least || set_version(version, least);
}

int take(STACK *&list, void *element, int function) noexcept {
  for (const void *each : elements<void>(list))
    if (each == element) return fail(function, kBadValue);
  return provide(list) && push_STACK_value(list, element) ? 0 : fail(function, kNoMemory);
}

namespace {

// Replaces a member by a copy: 0, or the function's code.
template <class R, class T>
int set_member(R &record, T *R::*member, const T *value, int function) noexcept {
  if (!value) return fail(function, kNullArgument);
  return replace(record, member, value) ? 0 : fail(function, kNoMemory);
}

int set_octets(ASN1_STRING *&member, const unsigned char *bytes, int length, int function) noexcept {
  if (length < 0) return fail(function, kBadValue);
  if (!bytes && length > 0) return fail(function, kNullArgument);
  ASN1_STRING *fresh = new_string(TYPE_OCTET_STRING, octets_of(bytes, length));
  if (!fresh) return fail(function, kNoMemory);
  free_ASN1_STRING(std::exchange(member, fresh));
  return 0;
}

int set_oid(OBJECT_IDENTIFIER *&member, int row, int function) noexcept {
  owned<OBJECT_IDENTIFIER> oid = oid_of_row(row);
  if (!oid) return fail(function, kUnsupported);
  put(member, std::move(oid));
  return 0;
}

template <class E>
int append_copy(STACK *&list, const E *element, int function) noexcept {
  if (!element) return fail(function, kNullArgument);
  return provide(list) && insert_copy(list, element, -1) ? 0 : fail(function, kNoMemory);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_CMS_Type(CMS_CONTENT_INFO *cms, int type_index) noexcept {
  if (!cms) return fail(F_SET_CMS_TYPE, kNullArgument);
  const ContentType *type = cms_content_type(type_index);
  if (!type) return fail(F_SET_CMS_TYPE, kUnsupported);
  owned<OBJECT_IDENTIFIER> oid = oid_of_row(type_index);
  if (!oid) return fail(F_SET_CMS_TYPE, kNoMemory);
  CMS_CONTENT_INFO fresh{oid.get(), nullptr, 0};
  if (type->version >= 0) {
    fresh.content = type->make();
    fresh.kind = type_index;
    if (!fresh.content || !set_version(*version_of(fresh), unsigned(type->version))) {
      return drop_content(fresh), fail(F_SET_CMS_TYPE, kNoMemory);
    }
  }
  drop_content(*cms);
  free_OBJECT_IDENTIFIER(cms->contentType);
  static_cast<void>(oid.release());
  *cms = fresh;
  return 0;
}

namespace velpki {

namespace {

// The members of a message that have its version, each set by `set` until one fails.
template <class Set>
bool for_each_version(const CMS_CONTENT_INFO &cms, Set set) noexcept {
  if (!set(*version_of(cms))) return false;
  if (const CMS_SIGNED_DATA *data = signed_data(&cms)) {
    for (CMS_SIGNER_INFO *signer : elements<CMS_SIGNER_INFO>(data->signerInfos)) {
      if (!signer || !set(signer->version)) return false;
      change_beside_attributes(*signer);
    }
  }
  if (const CMS_ENVELOPED_DATA *data = enveloped_data(&cms)) {
    for (const CMS_RECIPIENT_INFO *recipient : elements<CMS_RECIPIENT_INFO>(data->recipientInfos)) {
      if (KEY_TRANS_RECIPIENT_INFO *info = key_trans(recipient); info && !set(info->version)) return false;
      if (PASSWORD_RECIPIENT_INFO *info = password(recipient); info && !set(info->version)) return false;
    }
  }
  return true;
}

}  // namespace

}  // namespace velpki

int set_CMS_version(CMS_CONTENT_INFO *cms, int version, int type_index) noexcept {
  constexpr int kFailedSet = 0x28;
  if (!cms) return fail(F_SET_CMS_VERSION, kNullArgument);
  if (!cms_content_type(type_index) || type_index == CMS_TYPE_DATA) return fail(F_SET_CMS_VERSION, kUnsupported);
  if (const int code = check_type(cms, type_index, F_SET_CMS_VERSION)) return code;
  if (type_index == CMS_TYPE_SIGNED_DATA && version != 1 && version != 3) return fail(F_SET_CMS_VERSION, kBadValue);
  const auto set = [version](BIGINT *&member) noexcept {
    return version >= 0 && set_version(member, unsigned(version));
  };
  return for_each_version(*cms, set) ? 0 : fail(F_SET_CMS_VERSION, kFailedSet);
}

int set_ENCAPSULATED_CONTENT_INFO(ENCAPSULATED_CONTENT_INFO *eci, int type_index, const unsigned char *bytes,
                                  int length) noexcept {
  constexpr int kFunction = F_SET_ENCAPSULATED_CONTENT_INFO;
  if (!eci) return fail(kFunction, kNullArgument);
  owned<ENCAPSULATED_CONTENT_INFO> fresh(new_ENCAPSULATED_CONTENT_INFO());
  if (!fresh) return fail(kFunction, kNoMemory);
  if (const int code = set_oid(fresh->eContentType, type_index, kFunction)) return code;
  if (bytes || length != 0) {
    if (const int code = set_octets(fresh->eContent, bytes, length, kFunction)) return code;
  }
  std::swap(*eci, *fresh);
  return 0;
}

int set_Content_Info(CMS_CONTENT_INFO *cms, ENCAPSULATED_CONTENT_INFO *eci) noexcept {
  if (!cms || !eci) return fail(F_SET_CMS_CONTENT, kNullArgument);
  ENCAPSULATED_CONTENT_INFO **place = encapsulated_content(cms);
  if (!place) return fail(F_SET_CMS_CONTENT, kUnsupported);
  if (*place == eci) return fail(F_SET_CMS_CONTENT, kBadValue);
  const unsigned least = !is_typed(eci) ? 0 : signed_data(cms) ? 3 : digested_data(cms) ? 2 : 0;
  if (!raise_version(*version_of(*cms), least)) return fail(F_SET_CMS_CONTENT, kNoMemory);
  free_ENCAPSULATED_CONTENT_INFO(std::exchange(*place, eci));
  return 0;
}

int set_CMS_ENCRYPTED_CONTENT_INFO(CMS_ENCRYPTED_CONTENT_INFO *eci, int type_index, X509_ALGO_IDENTIFIER *algorithm,
                                   const unsigned char *content, int length) noexcept {
  constexpr int kFunction = F_SET_CMS_ENCRYPTED_CONTENT_INFO;
  if (!eci || !algorithm) return fail(kFunction, kNullArgument);
  owned<CMS_ENCRYPTED_CONTENT_INFO> fresh(new_P7_ENCRYPTED_CONTENT_INFO());
  if (!fresh) return fail(kFunction, kNoMemory);
  if (const int code = set_oid(fresh->contentType, type_index, kFunction)) return code;
  if (!replace(*fresh, &CMS_ENCRYPTED_CONTENT_INFO::contentEncryptionAlgorithm, algorithm)) {
    return fail(kFunction, kNoMemory);
  }
  if (content || length != 0) {
    if (const int code = set_octets(fresh->encryptedContent, content, length, kFunction)) return code;
  }
  std::swap(*eci, *fresh);
  return 0;
}

int set_CMS_Cipher(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) noexcept {
  if (!cms || !algorithm) return fail(F_SET_CMS_CIPHER, kNullArgument);
  CMS_ENCRYPTED_CONTENT_INFO **place = encrypted_content(cms);
  if (!place) return fail(F_SET_CMS_CIPHER, kUnsupported);
  owned<CMS_ENCRYPTED_CONTENT_INFO> fresh(*place ? nullptr : new_P7_ENCRYPTED_CONTENT_INFO());
  CMS_ENCRYPTED_CONTENT_INFO *info = fresh ? fresh.get() : *place;
  if (!info || (!info->contentType && set_oid(info->contentType, CMS_TYPE_DATA, F_SET_CMS_CIPHER))) {
    return fail(F_SET_CMS_CIPHER, kNoMemory);
  }
  const int code =
      set_member(*info, &CMS_ENCRYPTED_CONTENT_INFO::contentEncryptionAlgorithm, algorithm, F_SET_CMS_CIPHER);
  if (!code && fresh) *place = fresh.release();
  return code;
}

int set_CMS_macAlgorithm(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, F_SET_CMS_MACALGORITHM)) return code;
  return set_member(*authenticated_data(cms), &CMS_AUTHENTICATED_DATA::macAlgorithm, algorithm, F_SET_CMS_MACALGORITHM);
}

int set_CMS_digestAlgorithm(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) noexcept {
  constexpr int kFunction = F_SET_CMS_DIGESTALGORITHM;
  if (CMS_DIGESTED_DATA *data = digested_data(cms)) {
    return set_member(*data, &CMS_DIGESTED_DATA::digestAlgorithm, algorithm, kFunction);
  }
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, kFunction)) return code;
  return set_member(*authenticated_data(cms), &CMS_AUTHENTICATED_DATA::digestAlgorithm, algorithm, kFunction);
}

int set_CMS_mac(CMS_CONTENT_INFO *cms, const unsigned char *bytes, int length) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, F_SET_CMS_MAC)) return code;
  if (!bytes) return fail(F_SET_CMS_MAC, kNullArgument);
  return set_octets(authenticated_data(cms)->mac, bytes, length, F_SET_CMS_MAC);
}

int add_CMS_DigestAlgoIdentifier(CMS_CONTENT_INFO *cms, X509_ALGO_IDENTIFIER *algorithm) noexcept {
  CMS_SIGNED_DATA *data = signed_data(cms);
  return data && !append_copy(data->digestAlgorithms, algorithm, 0) ? 0 : 1;
}

int add_CMS_Certificate(CMS_CONTENT_INFO *cms, X509_CERT *cert) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_ADD_CMS_CERTIFICATE)) return code;
  return append_copy(signed_data(cms)->certificates, cert, F_ADD_CMS_CERTIFICATE);
}

int add_CMS_CRL(CMS_CONTENT_INFO *cms, X509_CRL *crl) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_ADD_CMS_CRL)) return code;
  return append_copy(signed_data(cms)->crls, crl, F_ADD_CMS_CRL);
}

namespace velpki {

namespace {

template <class E>
int add_originator(CMS_CONTENT_INFO *cms, STACK *CMS_ORIGINATOR_INFO::*list, const E *element, int function) noexcept {
  if (!cms || !element) return fail(function, kNullArgument);
  CMS_ORIGINATOR_INFO **place = originator_info(cms);
  if (!place) return fail(function, kUnsupported);
  if (!*place && !(*place = new_CMS_ORIGINATOR_INFO())) return fail(function, kNoMemory);
  if (enveloped_data(cms) && !raise_version(*version_of(*cms), 2)) return fail(function, kNoMemory);
  return append_copy((*place)->*list, element, function);
}

}  // namespace

}  // namespace velpki

int add_CMS_Originator_Certificate(CMS_CONTENT_INFO *cms, X509_CERT *cert) noexcept {
  return add_originator(cms, &CMS_ORIGINATOR_INFO::certificates, cert, F_ADD_CMS_ORIGINATOR_CERTIFICATE);
}
int add_CMS_Originator_CRL(CMS_CONTENT_INFO *cms, X509_CRL *crl) noexcept {
  return add_originator(cms, &CMS_ORIGINATOR_INFO::crls, crl, F_ADD_CMS_ORIGINATOR_CRL);
}
