// The key octets inside PrivateKeyInfo, by kind of key.
#include <array>

#include "keys/internal/pkcs1.h"
#include "keys/internal/pkcs8.h"

namespace velpki {

namespace {

constexpr int kFunction = F_SEQ_TO_P8_PRIV_KEY_INFO;
constexpr int kRsaNumbers = 8;  // of an RSA key without version

bool parse_one(Octets der, int type, const Cursor &outer, Tlv &out) noexcept {
  Rules rules = outer.rules();
  return Tlv::parse(der, rules, out) && out.whole.size() == der.size() && out.number() == type;
}

template <class Unit>
void hand_over(owned<Unit> key, int type, ASYMMETRIC_KEY &out) noexcept {
  out = {type, key.release()};
}

// What the provider says about numbers: memory, or not a key.
bool accepted(Cursor &in, int code) noexcept {
  return code == 0 || in.stop(code == PKV_ERR_NO_MEMORY ? Read::no_memory : Read::malformed);
}

// RSAPrivateKey, or the same without version and with all eight numbers.
bool read_rsa(Cursor &algorithm, Octets octets, ASYMMETRIC_KEY &out) noexcept {
  Tlv tlv;
  if (!parse_one(octets, TYPE_SEQUENCE, algorithm, tlv)) return algorithm.stop(Read::malformed);
  owned<RSA_UNIT> key;
  if (count_values(tlv.content, tlv.rules) == kRsaNumbers) {
    key.reset(PKV_New_RSA());
    if (!algorithm.made(key.get()) || !algorithm.absorb(read_rsa_key(octets, kFunction, false, *key))) return false;
  } else {
    const owned<PKCS1_RSA_PRIVATE_KEY> numbers(blank<PKCS1_RSA_PRIVATE_KEY>());
    if (!algorithm.made(numbers.get()) || !algorithm.absorb(decode(tlv, *numbers))) return false;
    key.reset(get_RSA_UNIT_from_PRIV_KEY(numbers.get()));
  }
  if (!algorithm.made(key.get())) return false;
  hand_over(std::move(key), ASYMMETRIC_KEY_RSA, out);
  return true;
}

// x INTEGER; the provider computes y.
bool read_kcdsa(Cursor &algorithm, Octets octets, ASYMMETRIC_KEY &out) noexcept {
  Tlv parameters, tlv;
  owned<KCDSA_UNIT> key(PKV_New_KCDSA());
  if (!algorithm.made(key.get()) || !algorithm.next(TYPE_SEQUENCE, parameters)) return false;
  if (!algorithm.absorb(read_kcdsa_parameters(parameters, *key))) return false;
  if (!parse_one(octets, TYPE_INTEGER, algorithm, tlv)) return algorithm.stop(Read::malformed);
  BIGINT *x = nullptr;
  if (!algorithm.keep(read_integer(tlv, x))) return false;
  const owned<BIGINT> owner(x);
  if (!accepted(algorithm, PKV_Set_KCDSA_Private(key.get(), x))) return false;
  hand_over(std::move(key), ASYMMETRIC_KEY_KCDSA, out);
  return true;
}

// The curve of an ECPrivateKey: that of the algorithm, with which the key's own [0] must agree.
bool read_curve(Cursor &in, const char *&curve) noexcept {
  OBJECT_IDENTIFIER *oid = nullptr;
  if (!in.oid(oid)) return false;
  const owned<OBJECT_IDENTIFIER> owner(oid);
  const char *named = curve_of_oid(text(*oid));
  if (!named || (curve && curve != named)) return in.stop(Read::malformed);
  curve = named;
  return true;
}

owned<ECC_UNIT> new_key_of(const char *name, Cursor &in) noexcept {
  const owned<ECURVE> curve(PKV_New_ECURVE());
  owned<ECC_UNIT> key(PKV_New_ECC());
  if (!in.made(curve.get()) || !in.made(key.get())) return nullptr;
  if (!accepted(in, PKV_Set_ECURVE_Named(curve.get(), name))) return nullptr;
  return accepted(in, PKV_Set_ECC_Curve(key.get(), curve.get())) ? std::move(key) : nullptr;
}

// publicKey [1] BIT STRING: it must be the point of the private value.
bool same_point(Cursor &in, const ECC_UNIT &key, const char *curve) noexcept {
  Tlv wrapper, bits;
  if (!in.next(wrapper)) return false;
  Cursor inside(wrapper);
  const owned<ECC_UNIT> other(PKV_New_ECC());
  if (!in.made(other.get())) return false;
  if (!inside.next(TYPE_BIT_STRING, bits)) return in.absorb(inside);
  if (bits.content.size() < 2 || bits.content[0] != 0) return in.stop(Read::malformed);
  if (bits.content[1] != 4) return true;  // a compressed point says nothing that is needed
  return in.absorb(read_point_of(bits.content.subspan(1), kFunction, curve, *other)) &&
         (PKV_Cmp_ECC(other.get(), &key) == 0 || in.stop(Read::malformed));
}

// ECPrivateKey ::= SEQUENCE { version INTEGER { ecPrivkeyVer1(1) }, privateKey OCTET STRING, parameters [0]
// ECParameters OPTIONAL, publicKey [1] BIT STRING OPTIONAL }
bool read_ec_private_key(Cursor &in, const char *curve, owned<ECC_UNIT> &key) noexcept {
  Tlv version, octets, parameters;
  if (!in.next(TYPE_INTEGER, version) || !in.next(TYPE_OCTET_STRING, octets)) return false;
  if (version.content.size() != 1 || version.content[0] != 1) return in.stop(Read::malformed);
  if (in.at(tag::explicit_context(0))) {
    if (!in.next(parameters)) return false;
    Cursor inside(parameters);
    if (!read_curve(inside, curve)) return in.absorb(inside);
  }
  if (!curve || !(key = new_key_of(curve, in))) return in.stop(Read::malformed);
  const owned<BIGINT> d(PKV_New_BIGINT_Binary(octets.content.data(), int(octets.content.size())));
  if (!in.made(d.get()) || !accepted(in, PKV_Set_ECC_Private(key.get(), d.get()))) return false;
  return !in.at(tag::explicit_context(1)) || same_point(in, *key, curve);
}

bool read_ec(Cursor &algorithm, Octets octets, ASYMMETRIC_KEY &out) noexcept {
  const char *curve = nullptr;
  Tlv tlv;
  if (algorithm.at(TYPE_OBJECT_IDENTIFIER) && !read_curve(algorithm, curve)) return false;
  if (!parse_one(octets, TYPE_SEQUENCE, algorithm, tlv)) return algorithm.stop(Read::malformed);
  Cursor in(tlv);
  owned<ECC_UNIT> key;
  if (!read_ec_private_key(in, curve, key)) return algorithm.absorb(in);
  hand_over(std::move(key), ASYMMETRIC_KEY_ECC, out);
  return true;
}

}  // namespace

bool read_private_key(Cursor &algorithm, int row, Octets octets, ASYMMETRIC_KEY &out) noexcept {
  switch (row) {
    case row::kRsaEncryption:
    case row::kRsassaPss:
      return read_rsa(algorithm, octets, out);
    case row::kKcdsa1:
      return read_kcdsa(algorithm, octets, out);
    case row::kEcPublicKey:
      return read_ec(algorithm, octets, out);
    default:
      return algorithm.stop(Read::malformed);
  }
}

int row_of_key(const ASYMMETRIC_KEY *key) noexcept {
  if (ASYMMETRIC_KEY_to_RSA_UNIT(key)) return row::kRsaEncryption;
  if (ASYMMETRIC_KEY_to_KCDSA_UNIT(key)) return row::kKcdsa1;
  return ASYMMETRIC_KEY_to_ECC_UNIT(key) ? row::kEcPublicKey : 0;
}

namespace {

void write_rsa(const RSA_UNIT &key, DerWriter &out) noexcept {
  {
    const auto algorithm = out.sequence();
    out.oid_text("1.2.840.113549.1.1.1");
    out.null();
  }
  const auto octets = out.constructed(TYPE_OCTET_STRING);
  const auto sequence = out.sequence();
  out.integer(0u);
  constexpr PKV_RSA_COMPONENT kAll[] = {PKV_RSA_N, PKV_RSA_E,  PKV_RSA_D,  PKV_RSA_P,
                                        PKV_RSA_Q, PKV_RSA_DP, PKV_RSA_DQ, PKV_RSA_QINV};
  for (const PKV_RSA_COMPONENT which : kAll) out.integer(PKV_Get_RSA_Component(&key, which));
}

void write_kcdsa(const KCDSA_UNIT &key, DerWriter &out) noexcept {
  {
    const auto algorithm = out.sequence();
    out.oid_text("1.2.410.200004.1.21");
    write_kcdsa_parameters(key, out);
  }
  const auto octets = out.constructed(TYPE_OCTET_STRING);
  out.integer(PKV_Get_KCDSA_Component(&key, PKV_KCDSA_X));
}

// The private value in the octets of the order.
void write_private_value(const ECC_UNIT &key, DerWriter &out) noexcept {
  constexpr int kRoom = 66;
  std::array<uint8_t, kRoom> value;
  const WipeAtEnd wipe(value.data(), value.size());
  const BIGINT *d = PKV_Get_ECC_Private(&key);
  int length = 0, other = 0;
  if (!d || PKV_Get_ECC_Lengths(&key, &length, &other) || length > kRoom) return out.refuse();
  if (PKV_BIGINT_To_Binary(d, value.data(), length)) return out.refuse();
  out.primitive(TYPE_OCTET_STRING, octets_of(value.data(), length));
}

void write_ec(ECC_UNIT &key, DerWriter &out) noexcept {
  const ECURVE *curve = PKV_Get_ECC_Curve(&key);
  const char *name = curve ? PKV_Get_ECURVE_Name(curve) : nullptr;
  ASN1_STRING *point = nullptr;
  if (!name || ECC_KEY_to_BITSTRING_RFC5280(&key, &point)) return out.refuse();
  const owned<ASN1_STRING> owner(point);
  {
    const auto algorithm = out.sequence();
    out.oid_text("1.2.840.10045.2.1");
    write_known_curve(name, out);
  }
  const auto octets = out.constructed(TYPE_OCTET_STRING);
  const auto sequence = out.sequence();
  out.integer(1u);
  write_private_value(key, out);
  const auto wrapper = out.explicit_context(1);
  out.bits(point);
}

}  // namespace

void write_private_key(const ASYMMETRIC_KEY &key, DerWriter &out) noexcept {
  if (const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&key)) return write_rsa(*rsa, out);
  if (const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(&key)) return write_kcdsa(*kcdsa, out);
  if (ECC_UNIT *ecc = ASYMMETRIC_KEY_to_ECC_UNIT(&key)) return write_ec(*ecc, out);
  out.refuse();
}

}  // namespace velpki
