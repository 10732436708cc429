// Curves: the known ones' values, and the objects that hold a curve's.
#include <openssl/obj_mac.h>

#include <string_view>

#include "provider/internal/ecc.h"

using namespace velcrypto;

namespace {

template <size_t length>
using Octets = std::array<uint8_t, length>;

constexpr uint8_t digit(char c) { return uint8_t(c <= '9' ? c - '0' : c - 'a' + 10); }

template <size_t length>
consteval Octets<length> octets_of(const char (&hex)[2 * length + 1]) {
  Octets<length> out{};
  for (size_t i = 0; i < length; ++i) out[i] = uint8_t(digit(hex[2 * i]) << 4 | digit(hex[2 * i + 1]));
  return out;
}

template <size_t length>
struct NamedCurve {
  Octets<length> a, b, p, x, y, n;
  constexpr KnownCurve describe(const char *name, int nid) const {
    return {name, nid, length, {a.data(), b.data(), p.data(), x.data(), y.data(), n.data()}};
  }
};

// SEC 2, sections 2.4.2, 2.5.1 and 2.6.1.
constexpr NamedCurve<32> kPrime256v1{
    octets_of<32>("ffffffff00000001000000000000000000000000fffffffffffffffffffffffc"),  // a
    octets_of<32>("5ac635d8aa3a93e7b3ebbd55769886bc651d06b0cc53b0f63bce3c3e27d2604b"),  // b
    octets_of<32>("ffffffff00000001000000000000000000000000ffffffffffffffffffffffff"),  // p
    octets_of<32>("6b17d1f2e12c4247f8bce6e563a440f277037d812deb33a0f4a13945d898c296"),  // x
    octets_of<32>("4fe342e2fe1a7f9b8ee7eb4a7c0f9e162bce33576b315ececbb6406837bf51f5"),  // y
    octets_of<32>("ffffffff00000000ffffffffffffffffbce6faada7179e84f3b9cac2fc632551"),  // n
};
constexpr NamedCurve<48> kSecp384r1{
    octets_of<48>(
        "fffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffeffffffff0000000000000000fffffffc"),  // a
    octets_of<48>(
        "b3312fa7e23ee7e4988e056be3f82d19181d9c6efe8141120314088f5013875ac656398d8a2ed19d2a85c8edd3ec2aef"),  // b
    octets_of<48>(
        "fffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffeffffffff0000000000000000ffffffff"),  // p
    octets_of<48>(
        "aa87ca22be8b05378eb1c71ef320ad746e1d3b628ba79b9859f741e082542a385502f25dbf55296c3a545e3872760ab7"),  // x
    octets_of<48>(
        "3617de4a96262c6f5d9e98bf9292dc29f8f41dbd289a147ce9da3113b5f0b8c00a60b1ce1d7e819d7a431d7c90ea0e5f"),  // y
    octets_of<48>(
        "ffffffffffffffffffffffffffffffffffffffffffffffffc7634d81f4372ddf581a0db248b0a77aecec196accc52973"),  // n
};
constexpr NamedCurve<66> kSecp521r1{
    octets_of<66>("01ffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffff"
                  "fffffffffffffffffffffffffffffffffffc"),  // a
    octets_of<66>("0051953eb9618e1c9a1f929a21a0b68540eea2da725b99b315f3b8b489918ef109e156193951ec7e937b1652c0bd3bb1"
                  "bf073573df883d2c34f1ef451fd46b503f00"),  // b
    octets_of<66>("01ffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffff"
                  "ffffffffffffffffffffffffffffffffffff"),  // p
    octets_of<66>("00c6858e06b70404e9cd9e3ecb662395b4429c648139053fb521f828af606b4d3dbaa14b5e77efe75928fe1dc127a2ff"
                  "a8de3348b3c1856a429bf97e7e31c2e5bd66"),  // x
    octets_of<66>("011839296a789a3bc0045c8a5fb42c7d1bd998f54449579b446817afbd17273e662c97ee72995ef42640c550b9013fad"
                  "0761353c7086a272c24088be94769fd16650"),  // y
    octets_of<66>("01fffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffa51868783bf2f966b7fcc0148f709"
                  "a5d03bb5c9b8899c47aebb6fb71e91386409"),  // n
};

constexpr KnownCurve kKnownCurves[] = {
    kPrime256v1.describe("prime256v1", NID_X9_62_prime256v1),
    kSecp384r1.describe("secp384r1", NID_secp384r1),
    kSecp521r1.describe("secp521r1", NID_secp521r1),
};

bool has_value(const BIGINT *n, const uint8_t *octets, size_t length) noexcept {
  const Number known = number_of(octets, int(length));
  return n && !n->negative && n->length == known.length &&
         std::memcmp(n->octets, known.octets, size_t(known.length)) == 0;
}

bool has_values(const CurvePart &part, const KnownCurve &known) noexcept {
  for (size_t i = 0; i < known.values.size(); ++i) {
    if (!has_value(part.number(i), known.values[i], known.length)) return false;
  }
  return true;
}

Number name_of(const char *name) noexcept {
  return {reinterpret_cast<const uint8_t *>(name), int(std::strlen(name) + 1), 0};
}

int replace(ECURVE *curve, int id, const std::array<Number, kCurveNumbers> &numbers) noexcept {
  Shared<CurvePart> part(CurvePart::make(numbers));
  if (!part) return PKV_ERR_NO_MEMORY;
  part->extra.id = id;
  curve->part = std::move(part);
  return 0;
}

}  // namespace

namespace velcrypto {

const KnownCurve *find_curve(const ECURVE &curve) noexcept {
  if (!curve.part) return nullptr;
  for (const KnownCurve &known : kKnownCurves) {
    if (has_values(*curve.part, known)) return &known;
  }
  return nullptr;
}

}  // namespace velcrypto

ECURVE *PKV_New_ECURVE(void) noexcept { return make<ECURVE>(); }

void PKV_Free_ECURVE(ECURVE *curve) noexcept { destroy(curve); }

ECURVE *PKV_Dup_ECURVE(const ECURVE *curve) noexcept {
  ECURVE *copy = curve ? PKV_New_ECURVE() : nullptr;
  if (copy) copy->part = curve->part;
  return copy;
}

int PKV_Set_ECURVE_Params(ECURVE *curve, int id, const char *name, const BIGINT *a, const BIGINT *b, const BIGINT *p,
                          const ECC_POINT *g, const BIGINT *n) noexcept {
  constexpr size_t kLongestName = 255;
  if (!curve || !name || !a || !b || !p || !g || !g->x || !g->y || !n) return PKV_ERR_NULL;
  if (strnlen(name, kLongestName + 1) > kLongestName) return PKV_ERR_BAD_VALUE;
  return replace(
      curve, id,
      {number_of(a), number_of(b), number_of(p), number_of(g->x), number_of(g->y), number_of(n), name_of(name)});
}

int PKV_Set_ECURVE_Named(ECURVE *curve, const char *name) noexcept {
  if (!curve || !name) return PKV_ERR_NULL;
  int id = 0;
  for (const KnownCurve &known : kKnownCurves) {
    if (std::strcmp(known.name, name) == 0) {
      std::array<Number, kCurveNumbers> numbers;
      for (size_t i = 0; i < known.values.size(); ++i) numbers[i] = number_of(known.values[i], int(known.length));
      numbers[kCurveName] = name_of(known.name);
      return replace(curve, id, numbers);
    }
    ++id;
  }
  return PKV_ERR_UNSUPPORTED;
}

const char *PKV_Get_ECURVE_Name(const ECURVE *curve) noexcept {
  if (!curve || !curve->part) return nullptr;
  return reinterpret_cast<const char *>(curve->part->number(kCurveName)->octets);
}

int PKV_Get_ECURVE_ID(const ECURVE *curve) noexcept { return curve && curve->part ? curve->part->extra.id : -1; }

int PKV_Get_ECURVE_Field_Length(const ECURVE *curve) noexcept {
  return curve && curve->part ? curve->part->number(kCurveP)->length : 0;
}
