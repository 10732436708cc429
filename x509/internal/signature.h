// Signatures in standard form, over the octets as they are and with what the algorithm says, for everything that is
// signed like a certificate:
//
//   SEQUENCE { toBeSigned, signatureAlgorithm AlgorithmIdentifier, signature BIT STRING, ... }
//
// `function` is the code of the public function that runs them: with 49, 48 (an algorithm, or a key, that is not in the
// table), ERR_ALGORITHM_MISMATCH (algorithms that differ, parameters that do not fit, a key of another kind),
// ERR_UNUSED_BITS, ERR_ASN1_DECODING, ERR_ASN1_ENCODING or 3C. The provider's codes pass.
#pragma once

#include "x509/internal/received.h"
#include "x509/internal/x509.h"

namespace velpki {

// Finds the AlgorithmIdentifier inside toBeSigned, which must equal the outer one octet for octet. `in` stands before
// the first field. A record's own file has the one that fits its ASN.1.
using InnerAlgorithm = bool (*)(Cursor &in, Tlv &algorithm) noexcept;
inline constexpr InnerAlgorithm kNoInnerAlgorithm = nullptr;

// Verifies a whole signed structure; elements after the third are not looked at. 0 for valid.
int verify_signed(Octets whole, InnerAlgorithm inner, const X509_PUBKEY &key, int function) noexcept;
// The same for what a record keeps; null is 49.
int verify_received(const X509_RECEIVED *received, InnerAlgorithm inner, const X509_PUBKEY &key, int function) noexcept;
// Verifies one signature over `tbs` where algorithm and signature stand elsewhere. The view is of an
// AlgorithmIdentifier.
int verify_octets(Octets tbs, const Tlv &algorithm, Octets signature, const X509_PUBKEY &key, int function) noexcept;

// The length of the digest that a whole signed structure's algorithm takes; INT_MAX where it takes none (Ed25519).
int digest_length_of_signed(Octets whole, int function, int &length) noexcept;

// Whether sign_octets knows the algorithm: 0, or 49 for null and 48.
int check_signing_algorithm(const OBJECT_IDENTIFIER *oid, int function) noexcept;
// Appends the signature over `tbs`. The OID of RSASSA-PSS names no digest, so that comes beside it; MGF1 has the same,
// and the salt its length.
int sign_octets(Octets tbs, const OBJECT_IDENTIFIER &oid, const ASYMMETRIC_KEY &key, int function, DerWriter &out,
                int pss_digest_id = kPssDigest) noexcept;

// The same for records that keep the whole identifier: the one that a signature of this algorithm carries, and a
// verification by it.
int new_signature_algorithm(const OBJECT_IDENTIFIER &oid, int function, owned<X509_ALGO_IDENTIFIER> &out) noexcept;
int verify_bits(Octets tbs, const X509_ALGO_IDENTIFIER &algorithm, const ASN1_STRING &signature, const X509_PUBKEY &key,
                int function) noexcept;

// What signing puts into a record: the signature, its algorithm, and the whole finished structure as if received.
struct Signed {
  owned<OBJECT_IDENTIFIER> algorithm;
  owned<ASN1_STRING> signature;
  owned<X509_RECEIVED> received;
};
int sign_tbs(Octets tbs, const OBJECT_IDENTIFIER &oid, const ASYMMETRIC_KEY &key, int function, Signed &out,
             int pss_digest_id = kPssDigest) noexcept;

// Signs a record with members `sig_alg`, `sig_value` and `received`, whose `tbs` octets in standard form are given. On
// failure the record is as it was.
template <class R>
int sign_record(R &record, Octets tbs, const OBJECT_IDENTIFIER &oid, const ASYMMETRIC_KEY &key, int function,
                int pss_digest_id = kPssDigest) noexcept {
  Signed made;
  if (const int code = sign_tbs(tbs, oid, key, function, made, pss_digest_id)) return code;
  free_OBJECT_IDENTIFIER(std::exchange(record.sig_alg, made.algorithm.release()));
  free_ASN1_STRING(std::exchange(record.sig_value, made.signature.release()));
  drop_received(record);
  record.received = made.received.release();
  return 0;
}

}  // namespace velpki
