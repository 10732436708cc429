// Named curves: the list of the interface, with one entry, NIST P-256 (FIPS 186-4 D.1.2.3); and those of the standard
// form, which the provider knows by name.
#include <string_view>

#include "x509/internal/x509.h"

namespace velpki {

namespace {

constexpr int kFieldLength = 32;

struct NamedCurve {
  int id;
  int row;
  const char *name;
  uint8_t a[kFieldLength], b[kFieldLength], p[kFieldLength], gx[kFieldLength], gy[kFieldLength], n[kFieldLength];
};

// clang-format off
constexpr NamedCurve kCurves[] = {
    {0, row::kPrime256v1, "prime256v1",
     {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFC},
     {0x5A, 0xC6, 0x35, 0xD8, 0xAA, 0x3A, 0x93, 0xE7, 0xB3, 0xEB, 0xBD, 0x55, 0x76, 0x98, 0x86, 0xBC,
      0x65, 0x1D, 0x06, 0xB0, 0xCC, 0x53, 0xB0, 0xF6, 0x3B, 0xCE, 0x3C, 0x3E, 0x27, 0xD2, 0x60, 0x4B},
     {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
     {0x6B, 0x17, 0xD1, 0xF2, 0xE1, 0x2C, 0x42, 0x47, 0xF8, 0xBC, 0xE6, 0xE5, 0x63, 0xA4, 0x40, 0xF2,
      0x77, 0x03, 0x7D, 0x81, 0x2D, 0xEB, 0x33, 0xA0, 0xF4, 0xA1, 0x39, 0x45, 0xD8, 0x98, 0xC2, 0x96},
     {0x4F, 0xE3, 0x42, 0xE2, 0xFE, 0x1A, 0x7F, 0x9B, 0x8E, 0xE7, 0xEB, 0x4A, 0x7C, 0x0F, 0x9E, 0x16,
      0x2B, 0xCE, 0x33, 0x57, 0x6B, 0x31, 0x5E, 0xCE, 0xCB, 0xB6, 0x40, 0x68, 0x37, 0xBF, 0x51, 0xF5},
     {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
      0xBC, 0xE6, 0xFA, 0xAD, 0xA7, 0x17, 0x9E, 0x84, 0xF3, 0xB9, 0xCA, 0xC2, 0xFC, 0x63, 0x25, 0x51}},
};
// clang-format on

using Number = owned<BIGINT>;

Number number_of(const uint8_t (&octets)[kFieldLength]) noexcept {
  return Number(PKV_New_BIGINT_Binary(octets, kFieldLength));
}

struct ReleasePoint {
  void operator()(ECC_POINT *point) const noexcept { PKV_Free_ECC_POINT(point); }
};

bool load(const NamedCurve &entry, ECURVE *curve) noexcept {
  const Number a = number_of(entry.a), b = number_of(entry.b), p = number_of(entry.p), n = number_of(entry.n);
  const Number x = number_of(entry.gx), y = number_of(entry.gy);
  const std::unique_ptr<ECC_POINT, ReleasePoint> g(PKV_New_ECC_POINT());
  if (!a || !b || !p || !n || !x || !y || !g || PKV_Set_ECC_POINT(g.get(), x.get(), y.get())) return false;
  return PKV_Set_ECURVE_Params(curve, entry.id, entry.name, a.get(), b.get(), p.get(), g.get(), n.get()) == 0;
}

}  // namespace

namespace {

// The curves whose keys the standard form knows.
struct KnownCurve {
  std::string_view oid;
  const char *name;
};
constexpr KnownCurve kKnownCurves[] = {
    {"1.2.840.10045.3.1.7", "prime256v1"}, {"1.3.132.0.34", "secp384r1"}, {"1.3.132.0.35", "secp521r1"}};

}  // namespace

const char *curve_of_oid(std::string_view oid) noexcept {
  for (const KnownCurve &curve : kKnownCurves)
    if (curve.oid == oid) return curve.name;
  return nullptr;
}

void write_known_curve(std::string_view name, DerWriter &out) noexcept {
  for (const KnownCurve &curve : kKnownCurves)
    if (name == curve.name) return out.oid_text(curve.oid);
  out.refuse();
}

}  // namespace velpki

using namespace velpki;

int set_ECURVE_from_list(ECURVE **curve, int index) noexcept {
  if (!curve) return 1;
  for (const NamedCurve &entry : kCurves) {
    if (entry.row != index) continue;
    owned<ECURVE> fresh(*curve ? nullptr : PKV_New_ECURVE());
    ECURVE *target = *curve ? *curve : fresh.get();
    if (!target || !load(entry, target)) return 1;
    if (fresh) *curve = fresh.release();
    return 0;
  }
  return 1;
}

int get_ECURVE_OID_from_name(OBJECT_IDENTIFIER **oid, const char *name) noexcept {
  if (!oid || !name) return 1;
  for (const NamedCurve &entry : kCurves) {
    if (std::string_view(name) != entry.name) continue;
    owned<OBJECT_IDENTIFIER> fresh = oid_of_row(entry.row);
    if (!fresh) return 1;
    free_OBJECT_IDENTIFIER(*oid);
    *oid = fresh.release();
    return 0;
  }
  return 1;
}
