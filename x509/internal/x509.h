// The records of x509.h from the inside: how they are owned, and their codecs on Tlv and DerWriter.
#pragma once

#include <velpki/asn1_objects.h>
#include <velpki/x509.h>

#include "asn1/internal/codec.h"

namespace velpki {

VELPKI_FLAT(X509_NAME_CHILD)
VELPKI_FLAT(X509_ALGO_IDENTIFIER)
VELPKI_FLAT(X509_ATTRIBUTE_DATA)
VELPKI_FLAT(X509_ATTRIBUTE)
VELPKI_FLAT(X509_EXTENSION)
VELPKI_FLAT(ASYMMETRIC_KEY)
VELPKI_FLAT(X509_PUBKEY)
VELPKI_FLAT(X509_TIME)
VELPKI_FLAT(X509_AUX)
VELPKI_FLAT(X509_TBS_CERT)
VELPKI_FLAT(X509_CERT)
VELPKI_FLAT(X509_CERT_PAIR)

template <>
struct Flat<RSA_UNIT> {
  static void release(RSA_UNIT *key) noexcept { PKV_Free_RSA(key); }
};
template <>
struct Flat<KCDSA_UNIT> {
  static void release(KCDSA_UNIT *key) noexcept { PKV_Free_KCDSA(key); }
};
template <>
struct Flat<ECC_UNIT> {
  static void release(ECC_UNIT *key) noexcept { PKV_Free_ECC(key); }
};
template <>
struct Flat<ECURVE> {
  static void release(ECURVE *curve) noexcept { PKV_Free_ECURVE(curve); }
};
template <>
struct Flat<X509_RECEIVED> {
  static void release(X509_RECEIVED *received) noexcept;
  static X509_RECEIVED *copy(const X509_RECEIVED *received) noexcept;
};

// A view of the value that a string of a constructed type holds.
inline Tlv view_of(const ASN1_STRING &string) noexcept {
  Tlv tlv;
  tlv.identifier = uint8_t(string.type);
  tlv.rules = kStandardRules;
  tlv.content = octets(string);
  return tlv;
}

// Registry rows that this library's code names.
namespace row {
inline constexpr int kRsaEncryption = 6;
inline constexpr int kMsExtensionRequest = 171;
inline constexpr int kExtensionRequest = 172;
inline constexpr int kEcPublicKey = 408;
inline constexpr int kPrime256v1 = 415;
inline constexpr int kKcdsa1 = 782;
inline constexpr int kRsassaPss = 835;
}  // namespace row

// The codecs. Decoders fill a blank record; encoders write one value. Both return 0 or a composite code; what a
// DerWriter refuses shows in its own result.
int decode_name(const Tlv &tlv, STACK &name) noexcept;
int encode_name(const STACK &name, DerWriter &out, uint8_t identifier = tag::kSequence) noexcept;
// The `rdn` of a child that stands for an RDN without attributes.
inline constexpr int kEmptyRdn = -1;
// One RDN: the attributes of `set`, whatever its identifier; and those from `index` on, which moves past them.
bool read_rdn(Cursor &in, const Tlv &set, STACK &name) noexcept;
int encode_rdn(const STACK &name, int &index, DerWriter &out, uint8_t identifier = tag::kSet) noexcept;
int decode(const Tlv &tlv, X509_ALGO_IDENTIFIER &out) noexcept;
int encode(const X509_ALGO_IDENTIFIER &identifier, DerWriter &out) noexcept;
int decode(const Tlv &tlv, X509_ATTRIBUTE &out) noexcept;
int encode(const X509_ATTRIBUTE &attribute, DerWriter &out) noexcept;
int decode_attributes(const Tlv &tlv, STACK &attributes) noexcept;
int encode_attributes(const STACK &attributes, DerWriter &out, uint8_t identifier = tag::kSet) noexcept;
int decode(const Tlv &tlv, X509_EXTENSION &out) noexcept;
int encode(const X509_EXTENSION &extension, DerWriter &out) noexcept;
int decode_extensions(const Tlv &tlv, STACK &extensions) noexcept;
int encode_extensions(const STACK &extensions, DerWriter &out) noexcept;
// Whether two extensions have the same OID, in n log n: a stranger's list may be long.
bool has_duplicates(const STACK &extensions, bool &no_memory) noexcept;
int decode(const Tlv &tlv, X509_PUBKEY &out) noexcept;
int encode(const X509_PUBKEY &pubkey, DerWriter &out) noexcept;
int decode(const Tlv &tlv, X509_TBS_CERT &out) noexcept;
int encode(const X509_TBS_CERT &tbs, DerWriter &out) noexcept;
int encode_tbs(const X509_TBS_CERT &tbs, DerWriter &out, int pss_digest_id) noexcept;
int decode(const Tlv &tlv, X509_CERT &out) noexcept;
int encode(const X509_CERT &cert, DerWriter &out) noexcept;

// A Time (RFC 5280 4.1.2.5) as the child of a cursor or writer.
bool read_time(Cursor &in, X509_TIME *&out) noexcept;
void write_time(const X509_TIME &time, DerWriter &out) noexcept;
// An AlgorithmIdentifier of which only the OID is kept.
bool read_algorithm_oid(Cursor &in, OBJECT_IDENTIFIER *&out) noexcept;
// The instant of a time, or null when its type or text is none.
owned<ASN1_TIME> time_of(const X509_TIME &time) noexcept;
// The instant of a time in the form of RFC 5280 4.1.2.5; false for null and any other form.
bool standard_instant_of(const X509_TIME *time, int64_t &seconds) noexcept;

// A SEQUENCE OF read into a list that belongs to a record, and the same for a record inside a record.
inline bool read_list(Cursor &in, STACK *&out, int (*decode)(const Tlv &, STACK &) noexcept) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  out = new_STACK();
  return in.made(out) && in.absorb(decode(child, *out));
}
template <class R>
bool read_record(Cursor &in, R *&out) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  out = blank<R>();
  return in.made(out) && in.absorb(decode(child, *out));
}

// The key octets inside a SubjectPublicKeyInfo. `function` is the code of the public function that runs them.
int read_rsa_key(Octets der, int function, bool strict, RSA_UNIT &key) noexcept;
int write_rsa_key(const RSA_UNIT &key, bool public_only, DerWriter &out) noexcept;
int read_kcdsa_value(Octets der, int function, KCDSA_UNIT &key) noexcept;
// An uncompressed point of a curve that the provider knows by name, in its full length.
int read_point_of(Octets point, int function, const char *curve, ECC_UNIT &key) noexcept;

// The domain parameters of a KCDSA key, as they stand in an AlgorithmIdentifier. What is read has the codes of
// F_SEQ_TO_X509_PUBKEY.
int read_kcdsa_parameters(const Tlv &tlv, KCDSA_UNIT &key) noexcept;
void write_kcdsa_parameters(const KCDSA_UNIT &key, DerWriter &out) noexcept;
// The curves that the provider and the standard form know, by OID and by the provider's name.
const char *curve_of_oid(std::string_view oid) noexcept;  // null for another
void write_known_curve(std::string_view name, DerWriter &out) noexcept;

// The provider's cipher of an algorithm, 0 when it is none that encrypts content.
int content_cipher_id(const X509_ALGO_IDENTIFIER *algorithm) noexcept;

// The value of an INTEGER's content taken without a sign, INT_MAX for everything above: a larger number must not wrap
// around into another.
inline int saturated_number(Octets content) noexcept {
  int64_t value = 0;
  for (const uint8_t octet : content)
    if ((value = value << 8 | octet) > INT_MAX) return INT_MAX;
  return int(value);
}

// An OID of a registry row as a new record.
inline owned<OBJECT_IDENTIFIER> oid_of_row(int index) noexcept {
  return owned<OBJECT_IDENTIFIER>(index_to_OBJECT_IDENTIFIER(index));
}
// A new AlgorithmIdentifier: with parameters, NULL for none; or bare of them. Null without an OID, and without memory.
owned<X509_ALGO_IDENTIFIER> new_algorithm(const OBJECT_IDENTIFIER *oid,
                                          const ASN1_STRING *parameters = nullptr) noexcept;
owned<X509_ALGO_IDENTIFIER> new_bare_algorithm(const OBJECT_IDENTIFIER *oid) noexcept;

// SEQUENCE { OID, NULL }, the form in which certificates and lists carry their signature algorithm. In standard form
// what the algorithm wants: a NULL for RSA and KCDSA, for RSASSA-PSS the usual parameters of a digest, else nothing.
inline constexpr int kPssDigest = PKV_DIGEST_SHA256;
void write_algorithm_with_null(const OBJECT_IDENTIFIER &oid, DerWriter &out, int pss_digest_id = kPssDigest) noexcept;
// The digest and scheme of a signature algorithm by the registry; false when it has none.
bool rsa_signature_scheme(const OBJECT_IDENTIFIER *oid, int &digest_id, int &scheme) noexcept;

// Signing and verifying octets, for everything that is signed like a certificate. `function` is the caller's code.
int sign_rsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const RSA_UNIT *key, int function, ASN1_STRING &out) noexcept;
int sign_kcdsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const KCDSA_UNIT *key, int function,
               ASN1_STRING &out) noexcept;
int verify_rsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const ASN1_STRING *signature, const RSA_UNIT *key,
               int function) noexcept;
int verify_kcdsa(Octets tbs, const OBJECT_IDENTIFIER *oid, const ASN1_STRING *signature, const KCDSA_UNIT *key,
                 int function) noexcept;

// The octets of one signature, appended to `out`: RSA's as they are, KCDSA's as a KCDSASignatureValue (`digest_id` 0 is
// the key's own). What goes wrong here and not in the provider has `function`.
int write_rsa_signature(Octets tbs, const RSA_UNIT *key, int digest_id, int scheme, int function,
                        DerWriter &out) noexcept;
int write_kcdsa_signature(Octets tbs, const KCDSA_UNIT *key, int digest_id, int function, DerWriter &out) noexcept;

// KCDSASignatureValue and ECDSA-Sig-Value.
struct SignatureHalves {
  Octets r, s;  // into the value that was read
};
bool read_kcdsa_value(Octets der, SignatureHalves &out) noexcept;
bool read_ecdsa_value(Octets der, SignatureHalves &out) noexcept;
void write_kcdsa_value(Octets r, Octets s, DerWriter &out) noexcept;
void write_ecdsa_value(Octets r, Octets s, DerWriter &out) noexcept;

}  // namespace velpki
