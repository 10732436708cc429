// Points and keys on elliptic curves: life cycle, numbers, generation, consistency.
#include "provider/internal/ecc.h"

#include <openssl/core_names.h>
#include <openssl/param_build.h>

#include "provider/internal/libcrypto.h"

using namespace velcrypto;

namespace {

void free_number(const BIGINT *n) noexcept { PKV_Free_BIGINT(const_cast<BIGINT *>(n)); }

}  // namespace

ECC_POINT *PKV_New_ECC_POINT(void) noexcept { return make<ECC_POINT>(); }

void PKV_Free_ECC_POINT(ECC_POINT *point) noexcept {
  if (!point) return;
  free_number(point->x);
  free_number(point->y);
  destroy(point);
}

int PKV_Set_ECC_POINT(ECC_POINT *point, const BIGINT *x, const BIGINT *y) noexcept {
  if (!point || !x || !y) return PKV_ERR_NULL;
  BigintOwner x_copy(PKV_Dup_BIGINT(x)), y_copy(PKV_Dup_BIGINT(y));
  if (!x_copy || !y_copy) return PKV_ERR_NO_MEMORY;
  free_number(std::exchange(point->x, x_copy.release()));
  free_number(std::exchange(point->y, y_copy.release()));
  return 0;
}

const BIGINT *PKV_Get_ECC_POINT_X(const ECC_POINT *point) noexcept { return point ? point->x : nullptr; }
const BIGINT *PKV_Get_ECC_POINT_Y(const ECC_POINT *point) noexcept { return point ? point->y : nullptr; }

ECC_UNIT *PKV_New_ECC(void) noexcept { return make<ECC_UNIT>(); }

void PKV_Free_ECC(ECC_UNIT *key) noexcept { destroy(key); }

void PKV_Clear_ECC(ECC_UNIT *key) noexcept {
  if (!key) return;
  key->part = {};
  key->signer = {};
}

ECC_UNIT *PKV_Dup_ECC(const ECC_UNIT *key) noexcept {
  ECC_UNIT *copy = key ? PKV_New_ECC() : nullptr;
  if (!copy) return nullptr;
  copy->part = key->part;
  copy->signer = key->signer;
  return copy;
}

int PKV_Cmp_ECC(const ECC_UNIT *a, const ECC_UNIT *b) noexcept {
  const char *a_name = PKV_Get_ECURVE_Name(PKV_Get_ECC_Curve(a)), *b_name = PKV_Get_ECURVE_Name(PKV_Get_ECC_Curve(b));
  if (!a_name || !b_name || std::strcmp(a_name, b_name) != 0) return 1;
  return PKV_Cmp_BIGINT(a->part->number(kEccX), b->part->number(kEccX)) != 0 ||
         PKV_Cmp_BIGINT(a->part->number(kEccY), b->part->number(kEccY)) != 0;
}

namespace {

using Numbers = std::array<Number, kEccNumbers>;

Numbers numbers_held(const ECC_UNIT &key) noexcept {
  Numbers out;
  for (size_t i = 0; key.part && i < out.size(); ++i) out[i] = number_of(key.part->number(i));
  return out;
}

int replace_numbers(ECC_UNIT &key, const Numbers &numbers, const Shared<CurvePart> &curve) noexcept {
  Shared<EccPart> part(EccPart::make(numbers));
  if (!part) return PKV_ERR_NO_MEMORY;
  part->extra.curve.part = curve;
  part->extra.point = {part->number(kEccX), part->number(kEccY)};
  PKV_Clear_ECC(&key);
  key.part = std::move(part);
  return 0;
}

Shared<CurvePart> curve_held(const ECC_UNIT &key) noexcept {
  return key.part ? key.part->extra.curve.part : Shared<CurvePart>();
}

}  // namespace

int PKV_Set_ECC_Curve(ECC_UNIT *key, const ECURVE *curve) noexcept {
  if (!key || !curve) return PKV_ERR_NULL;
  return curve->part ? replace_numbers(*key, numbers_held(*key), curve->part) : PKV_ERR_BAD_VALUE;
}

int PKV_Set_ECC_Public(ECC_UNIT *key, const BIGINT *x, const BIGINT *y) noexcept {
  if (!key || !x || !y) return PKV_ERR_NULL;
  return replace_numbers(*key, {number_of(x), number_of(y), Number{}}, curve_held(*key));
}

int PKV_Set_ECC_Callback(ECC_UNIT *key, PKV_SIGN_CALLBACK *sign, void *context) noexcept {
  if (!key || !sign) return PKV_ERR_NULL;
  if (!PKV_Get_ECC_Public(key) || PKV_Get_ECC_Private(key)) return PKV_ERR_BAD_VALUE;
  key->signer = {sign, context};
  return 0;
}

const ECURVE *PKV_Get_ECC_Curve(const ECC_UNIT *key) noexcept {
  return key && key->part && key->part->extra.curve.part ? &key->part->extra.curve : nullptr;
}

const ECC_POINT *PKV_Get_ECC_Public(const ECC_UNIT *key) noexcept {
  return key && key->part && key->part->extra.point.x ? &key->part->extra.point : nullptr;
}

const BIGINT *PKV_Get_ECC_Private(const ECC_UNIT *key) noexcept {
  return key && key->part ? key->part->number(kEccD) : nullptr;
}

int PKV_Is_ECC_Private(const ECC_UNIT *key) noexcept { return key && (key->signer.sign || PKV_Get_ECC_Private(key)); }

namespace velcrypto {

const KnownCurve *find_curve(const ECC_UNIT &key) noexcept {
  const ECURVE *curve = PKV_Get_ECC_Curve(&key);
  return curve ? find_curve(*curve) : nullptr;
}

int encode_point(const KnownCurve &curve, const BIGINT *x, const BIGINT *y, EncodedPoint &out) noexcept {
  if (!x || !y || x->negative || y->negative) return PKV_ERR_BAD_VALUE;
  const auto length = int(curve.length);
  out.octets[0] = POINT_CONVERSION_UNCOMPRESSED;
  out.length = 1 + 2 * curve.length;
  if (int error = PKV_BIGINT_To_Binary(x, out.octets.data() + 1, length)) return error;
  return PKV_BIGINT_To_Binary(y, out.octets.data() + 1 + length, length);
}

bool is_private_value(const KnownCurve &curve, const BIGINT *d) noexcept {
  Wiped<std::array<uint8_t, kMaxFieldOctets>> octets;
  if (is_zero(d) || d->negative) return false;
  if (PKV_BIGINT_To_Binary(d, octets.value.data(), int(curve.length))) return false;
  return std::memcmp(octets.value.data(), curve.values[kCurveN], curve.length) < 0;
}

namespace {

// The private value goes in with a fixed width, whatever its leading zeros.
bool push_private(OSSL_PARAM_BLD *builder, const KnownCurve &curve, const BnOwner &d) noexcept {
  return d && OSSL_PARAM_BLD_push_BN_pad(builder, OSSL_PKEY_PARAM_PRIV_KEY, d.get(), curve.length);
}

void free_wiped(OSSL_PARAM *params) noexcept {
  for (OSSL_PARAM *one = params; one && one->key; ++one) PKV_Wipe(one->data, one->data_size);
  OSSL_PARAM_free(params);
}

}  // namespace

PkeyOwner make_ec_key(const KnownCurve &curve, const EncodedPoint &point, const BIGINT *d) noexcept {
  const owned<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free> builder(OSSL_PARAM_BLD_new());
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_name(library_context(), "EC", nullptr));
  const BnOwner secret = to_bn(d);
  if (!builder || !context) return nullptr;
  if (!OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, curve.name, 0) ||
      !OSSL_PARAM_BLD_push_octet_string(builder.get(), OSSL_PKEY_PARAM_PUB_KEY, point.octets.data(), point.length) ||
      (d && !push_private(builder.get(), curve, secret))) {
    return nullptr;
  }
  const owned<OSSL_PARAM, free_wiped> params(OSSL_PARAM_BLD_to_param(builder.get()));
  EVP_PKEY *key = nullptr;
  const bool made =
      params && EVP_PKEY_fromdata_init(context.get()) > 0 &&
      EVP_PKEY_fromdata(context.get(), &key, d ? EVP_PKEY_KEYPAIR : EVP_PKEY_PUBLIC_KEY, params.get()) > 0;
  return made ? PkeyOwner(key) : nullptr;
}

}  // namespace velcrypto

namespace {

using GroupOwner = owned<EC_GROUP, EC_GROUP_free>;
using PointOwner = owned<EC_POINT, EC_POINT_free>;

// d times the generator. libcrypto multiplies a generator by one scalar in constant time.
int multiply_generator(const KnownCurve &curve, const BIGINT *d, EncodedPoint &out) noexcept {
  const GroupOwner group(EC_GROUP_new_by_curve_name_ex(library_context(), nullptr, curve.nid));
  const PointOwner point(group ? EC_POINT_new(group.get()) : nullptr);
  const BnCtxOwner context(BN_CTX_new_ex(library_context()));
  const BnOwner scalar = to_bn(d);
  if (!point || !context || !scalar) return PKV_ERR_NO_MEMORY;
  BN_set_flags(scalar.get(), BN_FLG_CONSTTIME);
  if (!EC_POINT_mul(group.get(), point.get(), scalar.get(), nullptr, nullptr, context.get())) return PKV_ERR_NO_MEMORY;
  out.length = EC_POINT_point2oct(group.get(), point.get(), POINT_CONVERSION_UNCOMPRESSED, out.octets.data(),
                                  out.octets.size(), context.get());
  return out.length == 1 + 2 * curve.length ? 0 : PKV_ERR_FAILED;
}

int set_pair(ECC_UNIT &key, const KnownCurve &curve, const BIGINT *d) noexcept {
  EncodedPoint point;
  if (int error = multiply_generator(curve, d, point)) return error;
  const auto length = int(curve.length);
  return replace_numbers(
      key,
      {number_of(point.octets.data() + 1, length), number_of(point.octets.data() + 1 + length, length), number_of(d)},
      curve_held(key));
}

bool is_on_curve(const KnownCurve &curve, const EncodedPoint &point) noexcept {
  const GroupOwner group(EC_GROUP_new_by_curve_name_ex(library_context(), nullptr, curve.nid));
  const PointOwner decoded(group ? EC_POINT_new(group.get()) : nullptr);
  return decoded && EC_POINT_oct2point(group.get(), decoded.get(), point.octets.data(), point.length, nullptr);
}

}  // namespace

int PKV_Set_ECC_Private(ECC_UNIT *key, const BIGINT *d) noexcept {
  if (!key || !d) return PKV_ERR_NULL;
  const KnownCurve *curve = find_curve(*key);
  if (!curve) return PKV_ERR_UNSUPPORTED;
  if (!is_private_value(*curve, d)) return PKV_ERR_BAD_VALUE;
  if (!PKV_Get_ECC_Public(key)) return set_pair(*key, *curve, d);
  Numbers numbers = numbers_held(*key);
  numbers[kEccD] = number_of(d);
  return replace_numbers(*key, numbers, curve_held(*key));
}

int PKV_Check_ECC(const ECC_UNIT *key) noexcept {
  if (!key) return PKV_ERR_NULL;
  const KnownCurve *curve = find_curve(*key);
  if (!curve) return PKV_ERR_UNSUPPORTED;
  EncodedPoint point, expected;
  if (int error = encode_point(*curve, key->part->number(kEccX), key->part->number(kEccY), point)) return error;
  ErrorScope errors;
  if (!is_on_curve(*curve, point)) return code_of_failure(PKV_ERR_BAD_VALUE);
  const BIGINT *d = PKV_Get_ECC_Private(key);
  if (!d) return 0;
  if (!is_private_value(*curve, d)) return PKV_ERR_BAD_VALUE;
  if (int error = multiply_generator(*curve, d, expected)) return error;
  return std::memcmp(point.octets.data(), expected.octets.data(), point.length) == 0 ? 0 : PKV_ERR_MISMATCH;
}

int PKV_Generate_ECC(ECC_UNIT *key) noexcept {
  if (!key) return PKV_ERR_NULL;
  const KnownCurve *curve = find_curve(*key);
  if (!curve) return PKV_ERR_UNSUPPORTED;
  const BnOwner order(BN_bin2bn(curve->values[kCurveN], int(curve->length), nullptr));
  if (!order) return PKV_ERR_NO_MEMORY;
  int error = 0;
  const BnOwner d = random_exponent(order.get(), error);
  if (!d) return error;
  const BigintOwner secret(new_from_bn(d.get()));
  return secret ? set_pair(*key, *curve, secret.get()) : PKV_ERR_NO_MEMORY;
}
