// Digested data.
#include "cms/internal/pkcs7.h"

using namespace velpki;

int digest_PKCS7(P7_CONTENT_INFO *p7, int digest_id, const unsigned char *data, int length) noexcept {
  P7_DIGESTED_DATA *digested = digested_data(p7);
  const owned<OBJECT_IDENTIFIER> oid = oid_of_row(get_OID_from_DigestID(digest_id));
  if (!digested || !oid || !data || length < 0) return 1;
  uint8_t octets[PKV_MAX_DIGEST_LENGTH];
  int digest_length = 0;
  if (const int code = PKV_DIGEST(digest_id, data, length, octets, &digest_length)) return code;
  owned<P7_CONTENT_INFO> content = new_data(octets_of(data, length));
  owned<X509_ALGO_IDENTIFIER> algorithm = new_bare_algorithm(oid.get());
  owned<ASN1_STRING> digest(new_string(TYPE_OCTET_STRING, octets_of(octets, digest_length)));
  if (!content || !algorithm || !digest) return 1;
  put(digested->digestAlgorithm, std::move(algorithm));
  put(digested->contentInfo, std::move(content));
  put(digested->digest, std::move(digest));
  return 0;
}
