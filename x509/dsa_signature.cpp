// DSA signatures (RFC 3279 2.2.2), verified only. The key is none that X509_PUBKEY makes of its octets: its numbers are
// read here.
#include "x509/internal/dsa_signature.h"

#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

namespace {

struct DsaKey {
  owned<BIGINT> p, q, g, y;
};

bool take_number(Cursor &in, owned<BIGINT> &out) noexcept {
  BIGINT *read = nullptr;
  const bool ok = in.integer(read);
  out.reset(read);
  return ok;
}

// Dss-Parms ::= SEQUENCE { p INTEGER, q INTEGER, g INTEGER }. They may be left out where an issuer's are meant, which
// is not followed here.
int read_parameters(const X509_PUBKEY &pubkey, int function, DsaKey &key) noexcept {
  if (!pubkey.parameters || pubkey.parameters->type != tag::kSequence) return fail(function, kUnsupported);
  Tlv sequence;
  sequence.identifier = tag::kSequence;
  sequence.content = octets(*pubkey.parameters);
  sequence.rules = kStandardRules;
  Cursor in(sequence);
  if (take_number(in, key.p) && take_number(in, key.q)) take_number(in, key.g);
  return in.result(function);
}

// DSAPublicKey ::= INTEGER
int read_key(const X509_PUBKEY &pubkey, int function, DsaKey &key) noexcept {
  if (!pubkey.algorithm || text(*pubkey.algorithm) != "1.2.840.10040.4.1" || !pubkey.subjectPublicKey) {
    return fail(function, ERR_ALGORITHM_MISMATCH);
  }
  if (const int code = read_parameters(pubkey, function, key)) return code;
  Tlv bits;
  bits.content = octets(*pubkey.subjectPublicKey);
  bits.rules = kStandardRules;
  Cursor in(bits);
  take_number(in, key.y);
  return in.result(function);
}

}  // namespace

int verify_dsa(Octets tbs, Octets signature, const X509_PUBKEY &pubkey, int digest_id, int function) noexcept {
  DsaKey key;
  if (const int code = read_key(pubkey, function, key)) return code;
  SignatureHalves halves;
  if (!read_ecdsa_value(signature, halves)) return fail(function, ERR_ASN1_DECODING);
  return PKV_DSA_VERIFY(key.p.get(), key.q.get(), key.g.get(), key.y.get(), digest_id, tbs.data(), int(tbs.size()),
                        halves.r.data(), int(halves.r.size()), halves.s.data(), int(halves.s.size()));
}

}  // namespace velpki
