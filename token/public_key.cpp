// The public numbers of a token's key, and keys that sign in the token.
#include <array>

#include "asn1/internal/oid_codec.h"
#include "token/internal/token_key.h"
#include "x509/internal/x509.h"

namespace velpki {

namespace {

using Key = owned<ASYMMETRIC_KEY>;

// One attribute of an object, in a buffer for the longest that a key here may have.
struct Attribute {
  std::array<uint8_t, 2048 + 8> room;
  size_t length = 0;
  Octets value() const noexcept { return {room.data(), length}; }
};

CK_RV read_attribute(const P11_KEY &key, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, Attribute &out) noexcept {
  CK_ATTRIBUTE asked{type, out.room.data(), CK_ULONG(out.room.size())};
  if (const CK_RV result = p11_C_GetAttributeValue(key.session, object, &asked, 1)) return result;
  if (asked.ulValueLen > out.room.size()) return CKR_ATTRIBUTE_TYPE_INVALID;
  out.length = size_t(asked.ulValueLen);
  return CKR_OK;
}

CK_RV read_key_type(const P11_KEY &key, CK_OBJECT_HANDLE object, CK_KEY_TYPE &out) noexcept {
  Attribute type;
  if (const CK_RV result = read_attribute(key, object, CKA_KEY_TYPE, type)) return result;
  if (type.length != sizeof out) return CKR_ATTRIBUTE_TYPE_INVALID;
  std::memcpy(&out, type.room.data(), sizeof out);
  return CKR_OK;
}

int read_rsa(P11_KEY &key, CK_OBJECT_HANDLE object, Key &out) noexcept {
  Attribute n, e;
  if (const int code = answered(key, read_attribute(key, object, CKA_MODULUS, n))) return code;
  if (const int code = answered(key, read_attribute(key, object, CKA_PUBLIC_EXPONENT, e))) return code;
  const owned<RSA_UNIT> rsa(PKV_New_RSA());
  if (!rsa) return kNoMemory;
  const int code = PKV_Set_RSA_Public(rsa.get(), n.room.data(), int(n.length), e.room.data(), int(e.length));
  if (code) return code;
  out.reset(RSA_UNIT_to_ASYMMETRIC_KEY(rsa.get()));
  return out ? 0 : kNoMemory;
}

// CKA_EC_PARAMS has to be the OID of a curve; null for another, and for parameters in full.
const char *curve_of(Octets parameters) noexcept {
  Tlv tlv;
  Rules rules;
  char text[kOidTextRoom];
  if (!Tlv::parse(parameters, rules, tlv) || tlv.identifier != TYPE_OBJECT_IDENTIFIER) return nullptr;
  return curve_of_oid({text, oid_text(tlv.content, text)});
}

// CKA_EC_POINT is the point inside an OCTET STRING. Some tokens give it bare, and that can look like one.
int read_point(Octets value, const char *curve, ECC_UNIT &key) noexcept {
  Tlv tlv;
  Rules rules;
  const bool inside = Tlv::parse(value, rules, tlv) && tlv.identifier == TYPE_OCTET_STRING;
  if (inside && read_point_of(tlv.content, 0, curve, key) == 0) return PKV_Check_ECC(&key);
  if (const int code = read_point_of(value, 0, curve, key)) return code == kNoMemory ? kNoMemory : kBadValue;
  return PKV_Check_ECC(&key);
}

int read_ecc(P11_KEY &key, CK_OBJECT_HANDLE object, Key &out) noexcept {
  Attribute parameters, point;
  if (const int code = answered(key, read_attribute(key, object, CKA_EC_PARAMS, parameters))) return code;
  const char *curve = curve_of(parameters.value());
  if (!curve) return kUnsupported;
  if (const int code = answered(key, read_attribute(key, object, CKA_EC_POINT, point))) return code;
  const owned<ECC_UNIT> ecc(PKV_New_ECC());
  if (!ecc) return kNoMemory;
  if (const int code = read_point(point.value(), curve, *ecc)) return code;
  out.reset(ECC_UNIT_to_ASYMMETRIC_KEY(ecc.get()));
  return out ? 0 : kNoMemory;
}

int read_public(P11_KEY &key, CK_OBJECT_HANDLE object, Key &out) noexcept {
  CK_KEY_TYPE type = 0;
  if (const int code = answered(key, read_key_type(key, object, type))) return code;
  if (type == CKK_RSA) return read_rsa(key, object, out);
  return type == CKK_EC ? read_ecc(key, object, out) : int(kUnsupported);
}

bool same_number(const BIGINT *number, Octets octets) noexcept {
  const owned<BIGINT> other(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
  return number && other && PKV_Cmp_BIGINT(number, other.get()) == 0;
}

// Whether the private key can be that of `public_key`: what it shows of itself is its type and, for RSA, the modulus.
int check_pair(P11_KEY &key, const ASYMMETRIC_KEY &public_key) noexcept {
  CK_KEY_TYPE type = 0;
  if (const int code = answered(key, read_key_type(key, key.object, type))) return code;
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&public_key);
  if (type != (rsa ? CKK_RSA : CKK_EC)) return kMismatch;
  if (!rsa) return 0;
  Attribute modulus;
  if (const int code = answered(key, read_attribute(key, key.object, CKA_MODULUS, modulus))) return code;
  return same_number(PKV_Get_RSA_Component(rsa, PKV_RSA_N), modulus.value()) ? 0 : kMismatch;
}

int set_callback(P11_KEY &key, const ASYMMETRIC_KEY &made) noexcept {
  if (RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&made)) return PKV_Set_RSA_Callback(rsa, sign_P11_KEY, &key);
  if (ECC_UNIT *ecc = ASYMMETRIC_KEY_to_ECC_UNIT(&made)) return PKV_Set_ECC_Callback(ecc, sign_P11_KEY, &key);
  return kUnsupported;
}

int join(P11_KEY &key, Key public_key, ASYMMETRIC_KEY **out) noexcept {
  if (!public_key) return kNoMemory;
  if (const int code = set_callback(key, *public_key)) return code;
  if (const int code = check_pair(key, *public_key)) return code;
  *out = public_key.release();
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int read_P11_KEY(P11_KEY *key, CK_OBJECT_HANDLE public_object, ASYMMETRIC_KEY **out) noexcept {
  if (!key || !out) return kNullArgument;
  Key made;
  if (const int code = read_public(*key, public_object, made)) return code;
  return join(*key, std::move(made), out);
}

int join_P11_KEY(P11_KEY *key, const ASYMMETRIC_KEY *public_key, ASYMMETRIC_KEY **out) noexcept {
  if (!key || !public_key || !out) return kNullArgument;
  return join(*key, Key(dup_ASYMMETRIC_KEY(public_key)), out);
}
