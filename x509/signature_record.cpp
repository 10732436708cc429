// Signatures of records that keep a whole AlgorithmIdentifier beside them.
#include <velpki/asn1_error.h>

#include "x509/internal/signature.h"

namespace velpki {

int new_signature_algorithm(const OBJECT_IDENTIFIER &oid, int function, owned<X509_ALGO_IDENTIFIER> &out) noexcept {
  DerWriter written(kStandardRules);
  write_algorithm_with_null(oid, written);
  if (written.failed()) return written.result(function);
  owned<X509_ALGO_IDENTIFIER> algorithm(new_X509_ALGO_IDENTIFIER());
  if (!algorithm) return fail(function, kNoMemory);
  Rules rules = kStandardRules;
  Tlv tlv;
  if (!Tlv::parse(written.written(), rules, tlv)) return fail(function, ERR_ASN1_ENCODING);
  if (const int code = decode(tlv, *algorithm)) return fail(function, reason_of(code));
  out = std::move(algorithm);
  return 0;
}

int verify_bits(Octets tbs, const X509_ALGO_IDENTIFIER &algorithm, const ASN1_STRING &signature, const X509_PUBKEY &key,
                int function) noexcept {
  if (signature.unused_bits) return fail(function, ERR_UNUSED_BITS);
  DerWriter written(kStandardRules);
  if (const int code = encode(algorithm, written)) return fail(function, reason_of(code));
  if (written.failed()) return written.result(function);
  Rules rules = kStandardRules;
  Tlv tlv;
  if (!Tlv::parse(written.written(), rules, tlv)) return fail(function, ERR_ASN1_DECODING);
  return verify_octets(tbs, tlv, octets(signature), key, function);
}

}  // namespace velpki
