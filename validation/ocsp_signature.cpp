// Signatures over OCSP requests and responses.
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"
#include "x509/internal/signature.h"

namespace velpki {

namespace {

// The algorithm that is recorded for a digest.
struct Recorded {
  int digest_id, oid_row;
};
constexpr Recorded kRecorded[] = {{PKV_DIGEST_SHA1, 65},    {PKV_DIGEST_SHA224, 671}, {PKV_DIGEST_SHA256, 668},
                                  {PKV_DIGEST_SHA384, 669}, {PKV_DIGEST_SHA512, 670}, {PKV_DIGEST_MD5, 8}};

int recorded_row(int digest_id) noexcept {
  for (const Recorded &each : kRecorded)
    if (each.digest_id == digest_id) return each.oid_row;
  return 0;
}

int write_signature(Octets tbs, const ASYMMETRIC_KEY &key, int digest_id, DerWriter &out) noexcept {
  if (const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&key)) {
    return write_rsa_signature(tbs, rsa, digest_id, PKV_RSA_PKCS1, kOcsp, out);
  }
  if (const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(&key)) {
    return write_kcdsa_signature(tbs, kcdsa, 0, kOcsp, out);
  }
  return ocsp_failure(kOtherKey);
}

int keep_signature(const DerWriter &signature, HouseSigned &out) noexcept {
  out.signature.reset(new_string(TYPE_BIT_STRING, signature.written()));
  return out.signature ? 0 : ocsp_failure(kNoMemory);
}

}  // namespace

int sign_house(Octets tbs, const ASYMMETRIC_KEY &key, int digest_id, HouseSigned &out) noexcept {
  const int oid_row = recorded_row(digest_id);
  if (!oid_row) return ocsp_failure(kBadValue);
  DerWriter signature;
  if (const int code = write_signature(tbs, key, digest_id, signature)) return code;
  out.algorithm = new_algorithm(oid_of_row(oid_row).get());
  if (!out.algorithm) return ocsp_failure(kNoMemory);
  return keep_signature(signature, out);
}

int sign_standard(Octets tbs, const ASYMMETRIC_KEY &key, const OBJECT_IDENTIFIER &algorithm,
                  HouseSigned &out) noexcept {
  DerWriter signature;
  if (const int code = sign_octets(tbs, algorithm, key, kOcsp, signature)) return code;
  if (const int code = new_signature_algorithm(algorithm, kOcsp, out.algorithm)) return code;
  return keep_signature(signature, out);
}

namespace {

int verify_by_rsa(const RSA_UNIT &key, Octets tbs, const X509_ALGO_IDENTIFIER *algorithm, Octets signature) noexcept {
  const int digest_id = algorithm ? get_DigestID_from_OID(algorithm->algorithm) : 0;
  if (!digest_id) return ocsp_failure(kNoDigest);
  return PKV_RSASSA_VERIFY(&key, digest_id, PKV_RSA_PKCS1, tbs.data(), int(tbs.size()), signature.data(),
                           int(signature.size()));
}

int verify_by_kcdsa(const KCDSA_UNIT &key, Octets tbs, Octets signature) noexcept {
  SignatureHalves halves;
  if (!read_kcdsa_value(signature, halves)) return ocsp_failure(ERR_ASN1_DECODING);
  return PKV_KCDSA_VERIFY(&key, 0, tbs.data(), int(tbs.size()), halves.r.data(), int(halves.r.size()), halves.s.data(),
                          int(halves.s.size()));
}

}  // namespace

int verify_house(const X509_CERT &signer, const ASN1_STRING &tbs, const X509_ALGO_IDENTIFIER *algorithm,
                 const ASN1_STRING &signature) noexcept {
  const X509_PUBKEY *pubkey = get_X509_SPKI(&signer);
  const ASYMMETRIC_KEY *key = pubkey ? pubkey->key : nullptr;
  if (const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key)) {
    return verify_by_rsa(*rsa, octets(tbs), algorithm, octets(signature));
  }
  if (const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(key)) {
    return verify_by_kcdsa(*kcdsa, octets(tbs), octets(signature));
  }
  return ocsp_failure(kOtherKey);
}

int verify_standard(const X509_PUBKEY &key, const ASN1_STRING &tbs, const X509_ALGO_IDENTIFIER *algorithm,
                    const ASN1_STRING &signature) noexcept {
  if (!algorithm) return ocsp_failure(kNullArgument);
  return verify_bits(octets(tbs), *algorithm, signature, key, kOcsp);
}

X509_CERTIFICATES *list_of_one(const X509_CERT &cert) noexcept {
  STACK *list = new_STACK();
  if (list && insert_copy(list, &cert, -1)) return list;
  destroy_list<X509_CERT>(list);
  return nullptr;
}

}  // namespace velpki
