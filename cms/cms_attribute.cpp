// Attributes of signers and messages.
#include "cms/internal/cms.h"
#include "cms/internal/signature.h"
#include "cms/internal/signer_state.h"

namespace velpki {

namespace {

// The arguments of an attribute that is added to a set.
struct AttributeValue {
  int row, type;
  const unsigned char *bytes;
  int length;
};

int add_to(X509_ATTRIBUTES *&set, const AttributeValue &value, int function) noexcept {
  if (value.length < 0 || !oid_of_row(value.row)) return fail(function, kBadValue);
  if (!value.bytes && value.length > 0) return fail(function, kNullArgument);
  return add_attribute(set, value.row, value.type, octets_of(value.bytes, value.length)) ? 0
                                                                                         : fail(function, kNoMemory);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int add_CMS_Signed_Attribute(CMS_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                             int length) noexcept {
  if (!si) return fail(F_ADD_ATTRIBUTE, kNullArgument);
  const int code = add_to(si->signedAttrs, {oid_index, type, bytes, length}, F_ADD_ATTRIBUTE);
  if (!code) change_attributes(*si);
  return code;
}
int add_CMS_Unsigned_Attribute(CMS_SIGNER_INFO *si, int oid_index, int type, const unsigned char *bytes,
                               int length) noexcept {
  if (!si) return fail(F_ADD_ATTRIBUTE, kNullArgument);
  const int code = add_to(si->unsignedAttrs, {oid_index, type, bytes, length}, F_ADD_ATTRIBUTE);
  if (!code) change_beside_attributes(*si);
  return code;
}

int add_CMS_Unprotected_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type, const unsigned char *bytes,
                                  int length) noexcept {
  constexpr int kFunction = F_ADD_CMS_UNPROTECTED_ATTRIBUTE;
  if (!cms) return fail(kFunction, kNullArgument);
  CMS_ENVELOPED_DATA *enveloped = enveloped_data(cms);
  CMS_ENCRYPTED_DATA *encrypted = encrypted_data(cms);
  if (!enveloped && !encrypted) return fail(kFunction, kUnsupported);
  X509_ATTRIBUTES *&set = enveloped ? enveloped->unprotectedAttrs : encrypted->unprotectedAttrs;
  if (const int code = add_to(set, {oid_index, type, bytes, length}, kFunction)) return code;
  return raise_version(*version_of(*cms), 2) ? 0 : fail(kFunction, kNoMemory);
}

int add_CMS_Authenticated_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type, const unsigned char *bytes,
                                    int length) noexcept {
  constexpr int kFunction = F_ADD_CMS_AUTHENTICATED_ATTRIBUTE;
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, kFunction)) return code;
  return add_to(authenticated_data(cms)->authAttrs, {oid_index, type, bytes, length}, kFunction);
}
int add_CMS_Unauthenticated_Attribute(CMS_CONTENT_INFO *cms, int oid_index, int type, const unsigned char *bytes,
                                      int length) noexcept {
  constexpr int kFunction = F_ADD_CMS_UNAUTHENTICATED_ATTRIBUTE;
  if (const int code = check_type(cms, CMS_TYPE_AUTHENTICATED_DATA, kFunction)) return code;
  return add_to(authenticated_data(cms)->unauthAttrs, {oid_index, type, bytes, length}, kFunction);
}
