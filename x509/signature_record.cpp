// Signatures of records that keep a whole AlgorithmIdentifier beside them, and of those that keep what was signed.
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

namespace {

void write_signed(Octets tbs, const OBJECT_IDENTIFIER &oid, int pss_digest_id, Octets signature,
                  DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.raw(tbs);
  write_algorithm_with_null(oid, out, pss_digest_id);
  out.bits(signature);
}

int keep(const DerWriter &whole, int function, Signed &out) noexcept {
  if (const int code = whole.result(function)) return code;
  Tlv structure, tbs;
  Rules rules;
  if (!Tlv::parse(whole.written(), rules, structure) || !Cursor(structure).next(tbs)) {
    return fail(function, ERR_ASN1_ENCODING);
  }
  out.received.reset(new_received(structure, tbs.whole));
  return out.received && out.algorithm && out.signature ? 0 : fail(function, kNoMemory);
}

}  // namespace

int sign_tbs(Octets tbs, const OBJECT_IDENTIFIER &oid, const ASYMMETRIC_KEY &key, int function, Signed &out,
             int pss_digest_id) noexcept {
  DerWriter signature, whole(kStandardRules);
  if (const int code = sign_octets(tbs, oid, key, function, signature, pss_digest_id)) return code;
  write_signed(tbs, oid, pss_digest_id, signature.written(), whole);
  out.algorithm.reset(dup_OBJECT_IDENTIFIER(&oid));
  out.signature.reset(new_string(TYPE_BIT_STRING, signature.written()));
  return keep(whole, function, out);
}

}  // namespace velpki
