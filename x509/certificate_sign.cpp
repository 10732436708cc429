// Signatures over certificates, and over everything that is signed like them.
#include <velpki/asn1_error.h>

#include "x509/internal/received.h"
#include "x509/internal/x509.h"

namespace velpki {

// The scheme is the low octet of the cipher identifier: 1 for PKCS#1 v1.5, 2 for PSS.
bool rsa_signature_scheme(const OBJECT_IDENTIFIER *oid, int &digest_id, int &scheme) noexcept {
  digest_id = get_DigestID_from_OID(oid);
  scheme = get_CipherID_from_OID(oid) & 0xFF;
  return digest_id && scheme;
}

namespace {

// The digest of KCDSA follows from the key; the algorithm has to be one that has a digest and a key type all the same.
bool is_signature_algorithm(const OBJECT_IDENTIFIER *oid) noexcept {
  return get_DigestID_from_OID(oid) && get_CipherID_from_OID(oid);
}

// Puts finished octets into the caller's BIT STRING.
int store_bits(Octets bits, int function, ASN1_STRING &out) noexcept {
  const int code = set_ASN1_STRING_value(&out, TYPE_BIT_STRING, bits.data(), int(bits.size()));
  return code ? fail(function, kNoMemory) : 0;
}

constexpr int kHalfRoom = 64;

}  // namespace

int write_rsa_signature(Octets tbs, const RSA_UNIT *key, int digest_id, int scheme, int function,
                        DerWriter &out) noexcept {
  int length = PKV_Get_RSA_Length(key);
  const owned<uint8_t> signature = new_octets(size_t(length) + 1);
  if (!signature) return fail(function, kNoMemory);
  const int code = PKV_RSASSA_SIGN(key, digest_id, scheme, tbs.data(), int(tbs.size()), signature.get(), &length);
  if (!code) out.raw(octets_of(signature.get(), length));
  return code ? code : out.result(function);
}

int write_kcdsa_signature(Octets tbs, const KCDSA_UNIT *key, int digest_id, int function, DerWriter &out) noexcept {
  uint8_t r[kHalfRoom], s[kHalfRoom];
  int r_length = 0, s_length = 0;
  if (const int code = PKV_Get_KCDSA_Lengths(key, &r_length, &s_length)) return code;
  if (r_length > kHalfRoom || s_length > kHalfRoom) return fail(function, kBadValue);
  if (const int code = PKV_KCDSA_SIGN(key, digest_id, tbs.data(), int(tbs.size()), r, s)) return code;
  write_kcdsa_value(octets_of(r, r_length), octets_of(s, s_length), out);
  return out.result(function);
}

int sign_rsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const RSA_UNIT *key, int function, ASN1_STRING &out) noexcept {
  int digest_id, scheme;
  if (!rsa_signature_scheme(oid, digest_id, scheme)) return fail(function, kBadValue);
  DerWriter signature;
  const int code = write_rsa_signature(tbs, key, digest_id, scheme, function, signature);
  return code ? code : store_bits(signature.written(), function, out);
}

int sign_kcdsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const KCDSA_UNIT *key, int function,
               ASN1_STRING &out) noexcept {
  if (!is_signature_algorithm(oid)) return fail(function, kBadValue);
  DerWriter signature;
  const int code = write_kcdsa_signature(tbs, key, 0, function, signature);
  return code ? code : store_bits(signature.written(), function, out);
}

int verify_rsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const ASN1_STRING *signature, const RSA_UNIT *key,
               int function) noexcept {
  int digest_id, scheme;
  if (!rsa_signature_scheme(oid, digest_id, scheme)) return fail(function, kBadValue);
  if (!signature) return fail(function, kNullArgument);
  const Octets bits = octets(*signature);
  return PKV_RSASSA_VERIFY(key, digest_id, scheme, tbs.data(), int(tbs.size()), bits.data(), int(bits.size()));
}

// r of any other than its one length, and a longer s, are malformed before anything is copied.
int verify_kcdsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const ASN1_STRING *signature, const KCDSA_UNIT *key,
                 int function) noexcept {
  if (!is_signature_algorithm(oid)) return fail(function, kBadValue);
  if (!signature) return fail(function, kNullArgument);
  SignatureHalves halves;
  int r_length = 0, s_length = 0;
  if (!read_kcdsa_value(octets(*signature), halves)) return fail(function, ERR_ASN1_DECODING);
  if (const int code = PKV_Get_KCDSA_Lengths(key, &r_length, &s_length)) return code;
  if (halves.r.size() != size_t(r_length) || halves.s.size() > size_t(s_length)) {
    return fail(function, ERR_ASN1_DECODING);
  }
  return PKV_KCDSA_VERIFY(key, 0, tbs.data(), int(tbs.size()), halves.r.data(), r_length, halves.s.data(),
                          int(halves.s.size()));
}

namespace {

template <class Unit>
int sign_tbs(const X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid, const Unit *key, int function,
             int (*sign)(Octets, const OBJECT_IDENTIFIER *, const Unit *, int, ASN1_STRING &) noexcept) noexcept {
  if (!tbs || !out || !oid || !key) return fail(function, kNullArgument);
  DerWriter writer;
  if (const int code = encode(*tbs, writer)) return code;
  return sign(writer.written(), oid, key, function, *out);
}

template <class Unit>
int verify_tbs(const X509_CERT *cert, const Unit *key, int function,
               int (*verify)(Octets, const OBJECT_IDENTIFIER *, const ASN1_STRING *, const Unit *,
                             int) noexcept) noexcept {
  if (!cert || !cert->tbs || !key) return fail(function, kNullArgument);
  DerWriter writer;
  if (const int code = encode(*cert->tbs, writer)) return code;
  return verify(writer.written(), cert->sig_alg, cert->sig_value, key, function);
}

// The signature and its algorithm take their places together.
int attach_signature(X509_CERT &cert, owned<ASN1_STRING> signature) noexcept {
  if (!replace(cert, &X509_CERT::sig_alg, cert.tbs->signature)) return 1;
  free_ASN1_STRING(cert.sig_value);
  cert.sig_value = signature.release();
  drop_received(cert);
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int gen_RSA_SIG_X509_TBS_CERT(X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid,
                              RSA_UNIT *key) noexcept {
  return sign_tbs<RSA_UNIT>(tbs, out, oid, key, F_GEN_RSASIGN_TBS_CERT, sign_rsa);
}

int gen_KCDSA_SIG_X509_TBS_CERT(X509_TBS_CERT *tbs, ASN1_STRING *out, const OBJECT_IDENTIFIER *oid,
                                KCDSA_UNIT *key) noexcept {
  return sign_tbs<KCDSA_UNIT>(tbs, out, oid, key, F_GEN_KCDSASIGN_TBS_CERT, sign_kcdsa);
}

int gen_SIG_X509_Cert(X509_CERT *cert, ASYMMETRIC_KEY *key) noexcept {
  if (!cert || !cert->tbs || !key) return 1;
  RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(key);
  owned<ASN1_STRING> signature(new_ASN1_STRING());
  if (!signature || (!rsa && !kcdsa)) return 1;
  const int code = rsa ? gen_RSA_SIG_X509_TBS_CERT(cert->tbs, signature.get(), cert->tbs->signature, rsa)
                       : gen_KCDSA_SIG_X509_TBS_CERT(cert->tbs, signature.get(), cert->tbs->signature, kcdsa);
  return code ? code : attach_signature(*cert, std::move(signature));
}

int verify_RSA_SIG_X509_CERT(X509_CERT *cert, RSA_UNIT *rsa_key) noexcept {
  return verify_tbs<RSA_UNIT>(cert, rsa_key, F_VERIFY_RSASIGN_TBS_CERT, verify_rsa);
}

int verify_KCDSA_SIG_X509_CERT(X509_CERT *cert, KCDSA_UNIT *kcdsa_key) noexcept {
  return verify_tbs<KCDSA_UNIT>(cert, kcdsa_key, F_VERIFY_KCDSASIGN_TBS_CERT, verify_kcdsa);
}

int verify_SIG_X509_CERT(X509_CERT *cert, ASYMMETRIC_KEY *key) noexcept {
  if (!cert || !key) return 1;
  if (RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key)) return verify_RSA_SIG_X509_CERT(cert, rsa);
  if (KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(key)) return verify_KCDSA_SIG_X509_CERT(cert, kcdsa);
  return 1;
}
