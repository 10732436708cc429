// Elliptic curves inside the provider: shapes of curve, point and key, and what finds a curve's arithmetic.
#pragma once

#include <openssl/ec.h>
#include <openssl/evp.h>

#include <span>

#include "provider/internal/key_part.h"

namespace velcrypto {

enum CurveNumber { kCurveA, kCurveB, kCurveP, kCurveX, kCurveY, kCurveN, kCurveName, kCurveNumbers };

struct CurveExtra {
  int id = -1;
};
// The six values, and the name with its zero octet.
using CurvePart = KeyPart<CurveExtra, kCurveNumbers>;

}  // namespace velcrypto

struct pkv_ecurve {
  velcrypto::Shared<velcrypto::CurvePart> part;
};
// The numbers belong to the point, or to the key part that the point is in.
struct pkv_ecc_point {
  const BIGINT *x = nullptr, *y = nullptr;
};

namespace velcrypto {

enum EccNumber { kEccX, kEccY, kEccD, kEccNumbers };

struct EccExtra {
  pkv_ecurve curve;
  pkv_ecc_point point;  // lent with its numbers in the part
  Prepared<EVP_PKEY, EVP_PKEY_free> key;
};
using EccPart = KeyPart<EccExtra, kEccNumbers>;

}  // namespace velcrypto

struct pkv_ecc {
  velcrypto::Shared<velcrypto::EccPart> part;
  velcrypto::Signer signer;
};

namespace velcrypto {

inline constexpr size_t kMaxFieldOctets = 66;

// A curve that the provider computes on. Field and order of each have equally many octets.
struct KnownCurve {
  const char *name;
  int nid;
  size_t length;                                   // octets of p and of n
  std::array<const uint8_t *, kCurveName> values;  // `length` octets each
};
// The known curve with these values, or null.
const KnownCurve *find_curve(const ECURVE &curve) noexcept;
const KnownCurve *find_curve(const ECC_UNIT &key) noexcept;

// The uncompressed form, 04 || x || y.
struct EncodedPoint {
  std::array<uint8_t, 1 + 2 * kMaxFieldOctets> octets;
  size_t length = 0;
};
// PKV_ERR_BAD_VALUE for coordinates that are missing, negative or too long.
int encode_point(const KnownCurve &curve, const BIGINT *x, const BIGINT *y, EncodedPoint &out) noexcept;

// A number of 1 to order - 1 to keep secret.
bool is_private_value(const KnownCurve &curve, const BIGINT *d) noexcept;

using PkeyOwner = owned<EVP_PKEY, EVP_PKEY_free>;
using PkeyContextOwner = owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;

// libcrypto's key of a point, which it checks to be on the curve, and of d unless that is null; null when it refuses.
PkeyOwner make_ec_key(const KnownCurve &curve, const EncodedPoint &point, const BIGINT *d) noexcept;

}  // namespace velcrypto
