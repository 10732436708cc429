// Digested data.
#include "cms/internal/cms.h"

using namespace velpki;

namespace {

owned<ENCAPSULATED_CONTENT_INFO> new_data_content(Octets octets) noexcept {
  owned<ENCAPSULATED_CONTENT_INFO> content(new_ENCAPSULATED_CONTENT_INFO());
  const bool made = content && (content->eContentType = oid_of_row(CMS_TYPE_DATA).release()) &&
                    (content->eContent = new_string(TYPE_OCTET_STRING, octets));
  return made ? std::move(content) : nullptr;
}

}  // namespace

int digest_CMS(CMS_CONTENT_INFO *cms, int digest_id, const unsigned char *data, int length) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_DIGESTED_DATA, F_DIGEST_CMS)) return code;
  if (length < 0 || (!data && length > 0)) return fail(F_DIGEST_CMS, kNullArgument);
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(get_OID_from_DigestID(digest_id));
  if (!oid) return fail(F_DIGEST_CMS, kUnsupported);
  uint8_t digest[PKV_MAX_DIGEST_LENGTH];
  int digest_length = PKV_MAX_DIGEST_LENGTH;
  if (const int code = PKV_DIGEST(digest_id, data, length, digest, &digest_length)) return code;
  owned<ENCAPSULATED_CONTENT_INFO> content = new_data_content(octets_of(data, length));
  owned<X509_ALGO_IDENTIFIER> algorithm = new_bare_algorithm(oid.get());
  owned<ASN1_STRING> value(new_string(TYPE_OCTET_STRING, octets_of(digest, digest_length)));
  if (!content || !algorithm || !value) return fail(F_DIGEST_CMS, kNoMemory);
  CMS_DIGESTED_DATA &out = *digested_data(cms);
  put(out.encapContentInfo, std::move(content));
  put(out.digestAlgorithm, std::move(algorithm));
  put(out.digest, std::move(value));
  return 0;
}
