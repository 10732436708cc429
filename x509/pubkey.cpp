// X509_PUBKEY: SubjectPublicKeyInfo.
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "x509/internal/x509.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_PUBKEY> = std::tuple(own(&X509_PUBKEY::algorithm),
                                                             own(&X509_PUBKEY::subjectPublicKey),
                                                             own(&X509_PUBKEY::key), own(&X509_PUBKEY::parameters));

namespace {

constexpr int kMalformed = F_SEQ_TO_X509_PUBKEY | ERR_ASN1_DECODING;
constexpr int kNoKeyInBits = F_SEQ_TO_X509_PUBKEY | 0x38;
constexpr int kOutOfMemory = F_SEQ_TO_X509_PUBKEY | kNoMemory;

// A provider key in its wrapper, both new.
template <class Unit>
Unit *attach_key(X509_PUBKEY &out, int type, Unit *(*make)() noexcept) noexcept {
  out.key = new_ASYMMETRIC_KEY();
  if (!out.key) return nullptr;
  Unit *key = make();
  if (key) *out.key = {type, key};
  return key;
}

int out_of_bits(int code) noexcept { return (code & 0xFFFF) == kNoMemory ? kOutOfMemory : kNoKeyInBits; }

// In standard form a public key and nothing else.
int read_rsa(X509_PUBKEY &out, bool standard) noexcept {
  RSA_UNIT *key = attach_key(out, ASYMMETRIC_KEY_RSA, PKV_New_RSA);
  if (!key) return kOutOfMemory;
  const int code = read_rsa_key(octets(*out.subjectPublicKey), F_BITSTRING_to_RSA_KEY, standard, *key);
  if (code) return out_of_bits(code);
  return standard && PKV_Is_RSA_Private(key) ? kNoKeyInBits : 0;
}

int read_kcdsa(Cursor &algorithm, X509_PUBKEY &out) noexcept {
  Tlv parameters;
  if (!algorithm.next(TYPE_SEQUENCE, parameters)) return algorithm.result(F_SEQ_TO_X509_PUBKEY);
  KCDSA_UNIT *key = attach_key(out, ASYMMETRIC_KEY_KCDSA, PKV_New_KCDSA);
  if (!key) return kOutOfMemory;
  const int code = read_kcdsa_value(octets(*out.subjectPublicKey), F_BITSTRING_to_KCDSA_KEY, *key);
  return code ? out_of_bits(code) : read_kcdsa_parameters(parameters, *key);
}

int read_known_curve(std::string_view oid, X509_PUBKEY &out) noexcept {
  const char *name = curve_of_oid(oid);
  if (!name) return kMalformed;
  ECC_UNIT *key = attach_key(out, ASYMMETRIC_KEY_ECC, PKV_New_ECC);
  return key ? read_point_of(octets(*out.subjectPublicKey), F_SEQ_TO_X509_PUBKEY, name, *key) : kOutOfMemory;
}

// namedCurve OBJECT IDENTIFIER (RFC 5480); anything but the listed curve fails in house form.
int read_ecc(Cursor &algorithm, X509_PUBKEY &out) noexcept {
  OBJECT_IDENTIFIER *curve = nullptr;
  if (!algorithm.oid(curve)) return algorithm.result(F_SEQ_TO_X509_PUBKEY);
  const owned<OBJECT_IDENTIFIER> owner(curve);
  if (algorithm.rules().standard) return read_known_curve(text(*curve), out);
  if (index_from_OBJECT_IDENTIFIER(curve) != row::kPrime256v1) return kMalformed;
  ECC_UNIT *key = attach_key(out, ASYMMETRIC_KEY_ECC, PKV_New_ECC);
  return key ? BITSTRING_to_ECC_KEY(out.subjectPublicKey, &key) : kOutOfMemory;
}

int read_key(Cursor &algorithm, X509_PUBKEY &out) noexcept {
  switch (index_from_OBJECT_IDENTIFIER(out.algorithm)) {
    case row::kRsassaPss:  // in standard form alone
      return algorithm.rules().standard ? read_rsa(out, true) : kMalformed;
    case row::kRsaEncryption:
      return read_rsa(out, algorithm.rules().standard);
    case row::kKcdsa1:
      return read_kcdsa(algorithm, out);
    case row::kEcPublicKey:
      return read_ecc(algorithm, out);
    default:
      return kMalformed;
  }
}

void drop_key(X509_PUBKEY &out) noexcept {
  free_ASYMMETRIC_KEY(out.key);
  out.key = nullptr;
}

// In standard form the parameters are kept, and a key that is not known or not good is no reason to refuse the record.
int read_any_key(const Cursor &algorithm, X509_PUBKEY &out) noexcept {
  Cursor parameters = algorithm;
  if (!parameters.at_end() && !parameters.any_string(out.parameters)) return parameters.result(F_SEQ_TO_X509_PUBKEY);
  if (!parameters.finish()) return parameters.result(F_SEQ_TO_X509_PUBKEY);
  if (out.subjectPublicKey->unused_bits) return 0;
  Cursor again = algorithm;
  if (const int code = read_key(again, out)) {
    drop_key(out);
    return (code & 0xFFFF) == kNoMemory ? code : 0;
  }
  return 0;
}

}  // namespace

// SubjectPublicKeyInfo ::= SEQUENCE { algorithm AlgorithmIdentifier, subjectPublicKey BIT STRING }
int decode(const Tlv &tlv, X509_PUBKEY &out) noexcept {
  Cursor in(tlv);
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return in.result(F_SEQ_TO_X509_PUBKEY);
  Cursor algorithm(child);
  if (!algorithm.oid(out.algorithm)) return algorithm.result(F_SEQ_TO_X509_PUBKEY);
  if (!in.string(TYPE_BIT_STRING, out.subjectPublicKey) || !in.finish()) return in.result(F_SEQ_TO_X509_PUBKEY);
  return in.rules().standard ? read_any_key(algorithm, out) : read_key(algorithm, out);
}

namespace {

void write_curve(const ECC_UNIT &key, DerWriter &out) noexcept {
  OBJECT_IDENTIFIER *oid = nullptr;
  const ECURVE *curve = PKV_Get_ECC_Curve(&key);
  const char *name = curve ? PKV_Get_ECURVE_Name(curve) : nullptr;
  if (name && out.rules().standard) return write_known_curve(name, out);
  if (get_ECURVE_OID_from_name(&oid, name)) return out.refuse();
  const owned<OBJECT_IDENTIFIER> owner(oid);
  out.oid(oid);
}

// The parameters and the key octets of a key whose algorithm has the given row.
struct KeyParts {
  const RSA_UNIT *rsa;
  const KCDSA_UNIT *kcdsa;
  ECC_UNIT *ecc;
};

bool write_parameters(int row, const KeyParts &key, DerWriter &out) noexcept {
  if (row == row::kRsaEncryption && key.rsa) return out.null(), true;
  if (row == row::kKcdsa1 && key.kcdsa) return write_kcdsa_parameters(*key.kcdsa, out), true;
  if (row == row::kEcPublicKey && key.ecc) return write_curve(*key.ecc, out), true;
  return false;
}

// The BIT STRING of RSA and KCDSA keys is written in place: one octet for unused bits, then the key's DER.
void write_key(const KeyParts &key, DerWriter &out) noexcept {
  if (key.ecc) {
    ASN1_STRING *bits = nullptr;
    const int code =
        out.rules().standard ? ECC_KEY_to_BITSTRING_RFC5280(key.ecc, &bits) : ECC_KEY_to_BITSTRING(key.ecc, &bits);
    if (code) return out.refuse();
    const owned<ASN1_STRING> owner(bits);
    return out.bits(bits);
  }
  const auto bits = out.constructed(TYPE_BIT_STRING);
  out.octet(0);
  if (key.rsa)
    write_rsa_key(*key.rsa, false, out);
  else
    out.integer(PKV_Get_KCDSA_Component(key.kcdsa, PKV_KCDSA_Y));
}

// In standard form what was read is written back.
int encode_received(const X509_PUBKEY &pubkey, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  {
    const auto algorithm = out.sequence();
    out.oid(pubkey.algorithm);
    if (pubkey.parameters) out.string(pubkey.parameters);
  }
  out.bits(pubkey.subjectPublicKey);
  return 0;
}

}  // namespace

int encode(const X509_PUBKEY &pubkey, DerWriter &out) noexcept {
  const int row = index_from_OBJECT_IDENTIFIER(pubkey.algorithm);
  const bool kept = pubkey.parameters || !pubkey.key || row == row::kRsassaPss;
  if (out.rules().standard && pubkey.subjectPublicKey && kept) {
    return encode_received(pubkey, out);
  }
  const KeyParts key{ASYMMETRIC_KEY_to_RSA_UNIT(pubkey.key), ASYMMETRIC_KEY_to_KCDSA_UNIT(pubkey.key),
                     ASYMMETRIC_KEY_to_ECC_UNIT(pubkey.key)};
  const auto sequence = out.sequence();
  {
    const auto algorithm = out.sequence();
    out.oid(pubkey.algorithm);
    if (!write_parameters(row, key, out)) {
      return fail(F_X509_PUBKEY_TO_SEQ, ERR_ASN1_ENCODING);
    }
  }
  write_key(key, out);
  return 0;
}

namespace {

constexpr Codec<X509_PUBKEY> kCodec{F_SEQ_TO_X509_PUBKEY, F_X509_PUBKEY_TO_SEQ, decode, encode, "PUBLIC KEY"};

// A caller's record is left cleared on failure.
int read_pubkey(ASN1_UNIT *in, X509_PUBKEY **out, Rules rules) noexcept {
  const int code = from_seq(F_SEQ_TO_X509_PUBKEY, in, out, decode, rules);
  if (code && in && out) clean(*out);
  return code;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE_WITHOUT_CLEAN(X509_PUBKEY)
VELPKI_IO(X509_PUBKEY, kCodec)

int cmp_X509_PUBKEY(const X509_PUBKEY *a, const X509_PUBKEY *b) noexcept {
  if (!a || !b || !same_octets(a->algorithm, b->algorithm)) return 1;
  if (a->key || b->key) return cmp_ASYMMETRIC_KEY(a->key, b->key);
  const bool same_parameters =
      !a->parameters == !b->parameters && (!a->parameters || cmp_ASN1_STRING_strict(a->parameters, b->parameters) == 0);
  return same_parameters && cmp_ASN1_STRING_strict(a->subjectPublicKey, b->subjectPublicKey) == 0 ? 0 : 1;
}

int Seq_to_X509_PUBKEY(ASN1_UNIT *in, X509_PUBKEY **out) noexcept { return read_pubkey(in, out, {}); }
int Seq_to_X509_PUBKEY_RFC5280(ASN1_UNIT *in, X509_PUBKEY **out) noexcept {
  return read_pubkey(in, out, kStandardRules);
}
int X509_PUBKEY_to_Seq(const X509_PUBKEY *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_PUBKEY_TO_SEQ, in, out, encode);
}
int X509_PUBKEY_to_Seq_RFC5280(const X509_PUBKEY *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_PUBKEY_TO_SEQ, in, out, encode, kStandardRules);
}
