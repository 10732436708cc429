// The octets of RSA, KCDSA and ECC keys, as they stand in the BIT STRING of a SubjectPublicKeyInfo.
#include <velpki/asn1_error.h>

#include <array>

#include "x509/internal/x509.h"

namespace velpki {

namespace {

using Number = owned<BIGINT>;

int code_of(int function, int provider_code) noexcept {
  if (provider_code == 0) return 0;
  return fail(function, provider_code == PKV_ERR_NO_MEMORY ? kNoMemory : ERR_ASN1_DECODING);
}

bool next_integer(Cursor &in, Tlv &out) noexcept {
  return in.next(TYPE_INTEGER, out) && (!out.content.empty() || in.stop(Read::malformed));
}

int read_public(Cursor &in, int function, RSA_UNIT &key) noexcept {
  Tlv n, e;
  if (!next_integer(in, n) || !next_integer(in, e)) return in.result(function);
  return code_of(function, PKV_Set_RSA_Public(&key, n.content.data(), int(n.content.size()), e.content.data(),
                                              int(e.content.size())));
}

// n, e, d and, with eight, the values of the Chinese remainder theorem.
int read_private(Cursor &in, int function, size_t count, RSA_UNIT &key) noexcept {
  std::array<Number, 8> numbers;
  for (size_t i = 0; i < count; ++i) {
    BIGINT *number = nullptr;
    if (!in.integer(number)) return in.result(function);
    numbers[i].reset(number);
  }
  const auto &[n, e, d, p, q, dp, dq, qinv] = numbers;
  return code_of(function,
                 PKV_Set_RSA_Params(&key, n.get(), e.get(), d.get(), p.get(), q.get(), dp.get(), dq.get(), qinv.get()));
}

}  // namespace

int read_rsa_key(Octets der, int function, bool strict, RSA_UNIT &key) noexcept {
  Tlv tlv;
  Rules rules;
  if (!Tlv::parse(der, rules, tlv)) return fail(function, ERR_ASN1_DECODING);
  if (strict && (tlv.identifier != tag::kSequence || tlv.whole.size() != der.size())) {
    return fail(function, ERR_ASN1_DECODING);
  }
  Cursor in(tlv);
  const int count = count_values(tlv.content, in.rules());
  if (count == 0) return fail(function, kBadValue);
  if (strict && count != 2 && count != 3 && count != 8) return fail(function, ERR_ASN1_DECODING);
  if (count == 2) return read_public(in, function, key);
  return read_private(in, function, count == 3 ? 3 : 8, key);
}

int write_rsa_key(const RSA_UNIT &key, bool public_only, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.integer(PKV_Get_RSA_Component(&key, PKV_RSA_N));
  out.integer(PKV_Get_RSA_Component(&key, PKV_RSA_E));
  const BIGINT *d = PKV_Get_RSA_Component(&key, PKV_RSA_D);
  if (public_only || !d) return 0;
  out.integer(d);
  if (!PKV_Get_RSA_Component(&key, PKV_RSA_P)) return 0;
  for (const auto which : {PKV_RSA_P, PKV_RSA_Q, PKV_RSA_DP, PKV_RSA_DQ, PKV_RSA_QINV}) {
    out.integer(PKV_Get_RSA_Component(&key, which));
  }
  return 0;
}

int read_kcdsa_value(Octets der, int function, KCDSA_UNIT &key) noexcept {
  Tlv tlv;
  Rules rules;
  BIGINT *y = nullptr;
  const bool is_integer = Tlv::parse(der, rules, tlv) && tlv.number() == TYPE_INTEGER;
  const Read outcome = is_integer ? read_integer(tlv, y) : Read::malformed;
  const Number owner(y);
  if (outcome != Read::ok) return fail(function, outcome == Read::no_memory ? kNoMemory : ERR_ASN1_DECODING);
  return code_of(function, PKV_Set_KCDSA_Params(&key, nullptr, nullptr, nullptr, nullptr, y, nullptr, 0, 0));
}

namespace {

// A reader's border: the caller's key, cleared, or a new one, is filled; on failure the caller's stays cleared and a
// new one goes.
template <class Unit>
int fill_key(int function, Octets der, bool given, Unit **out, Unit *(*make)() noexcept, void (*clear)(Unit *) noexcept,
             int (*read)(Octets, int, Unit &) noexcept) noexcept {
  if (!out || !given) return fail(function, kNullArgument);
  owned<Unit> fresh(*out ? nullptr : make());
  Unit *key = *out ? *out : fresh.get();
  if (!key) return fail(function, kNoMemory);
  clear(key);
  if (const int code = read(der, function, *key)) return clear(key), code;
  if (fresh) *out = fresh.release();
  return 0;
}

// A writer's border: the octets that `encode` writes become the data of a new BIT STRING.
template <class Unit>
int write_bits(int function, const Unit *key, ASN1_STRING **out,
               int (*encode)(const Unit &, DerWriter &) noexcept) noexcept {
  if (!key || !out) return fail(function, kNullArgument);
  DerWriter writer({}, Content::secret);
  if (const int code = encode(*key, writer)) return code;
  if (const int code = writer.result(function)) return code;
  ASN1_STRING *bits = new_string(TYPE_BIT_STRING, writer.written());
  if (!bits) return fail(function, kNoMemory);
  *out = bits;
  return 0;
}

int read_rsa(Octets der, int function, RSA_UNIT &key) noexcept { return read_rsa_key(der, function, false, key); }
int read_rsa_strict(Octets der, int function, RSA_UNIT &key) noexcept { return read_rsa_key(der, function, true, key); }
int read_rsa_public(Octets der, int function, RSA_UNIT &key) noexcept {
  if (const int code = read_rsa_key(der, function, true, key)) return code;
  return PKV_Is_RSA_Private(&key) ? fail(function, ERR_ASN1_DECODING) : 0;
}
int write_rsa(const RSA_UNIT &key, DerWriter &out) noexcept { return write_rsa_key(key, false, out); }
int write_rsa_public(const RSA_UNIT &key, DerWriter &out) noexcept { return write_rsa_key(key, true, out); }
int write_kcdsa(const KCDSA_UNIT &key, DerWriter &out) noexcept {
  out.integer(PKV_Get_KCDSA_Component(&key, PKV_KCDSA_Y));
  return 0;
}

Octets bits_of(const ASN1_STRING *string) noexcept { return string ? octets(*string) : Octets(); }

// The flat octets of a unit, for the readers that take one.
struct FlatUnit {
  FlatUnit(const FlatUnit &) = delete;
  FlatUnit &operator=(const FlatUnit &) = delete;
  explicit FlatUnit(const ASN1_UNIT *unit) noexcept {
    unsigned char *flat = nullptr;
    const int length = ASN1_to_binary(unit, &flat);
    block.reset(flat);
    der = octets_of(flat, length);
  }
  ~FlatUnit() { PKV_Wipe(block.get(), der.size()); }
  owned<uint8_t> block;
  Octets der;
};

}  // namespace

}  // namespace velpki

using namespace velpki;

int BITSTRING_to_RSA_KEY(const ASN1_STRING *in, RSA_UNIT **out) noexcept {
  return fill_key(F_BITSTRING_to_RSA_KEY, bits_of(in), in, out, PKV_New_RSA, PKV_Clear_RSA, read_rsa);
}
int BITSTRING_to_RSA_KEY_strict(const ASN1_STRING *in, RSA_UNIT **out) noexcept {
  return fill_key(F_BITSTRING_to_RSA_KEY, bits_of(in), in, out, PKV_New_RSA, PKV_Clear_RSA, read_rsa_public);
}
int RSA_KEY_to_BITSTRING(RSA_UNIT *in, ASN1_STRING **out) noexcept {
  return write_bits<RSA_UNIT>(F_RSA_KEY_to_BITSTRING, in, out, write_rsa);
}
int RSA_KEY_to_BITSTRING_strict(RSA_UNIT *in, ASN1_STRING **out) noexcept {
  return write_bits<RSA_UNIT>(F_RSA_KEY_to_BITSTRING, in, out, write_rsa_public);
}
int Seq_to_RSA_KEY(ASN1_UNIT *in, RSA_UNIT **out) noexcept {
  return fill_key(F_Seq_to_RSA_KEY, FlatUnit(in).der, in, out, PKV_New_RSA, PKV_Clear_RSA, read_rsa);
}
int Seq_to_RSA_KEY_strict(ASN1_UNIT *in, RSA_UNIT **out) noexcept {
  return fill_key(F_Seq_to_RSA_KEY, FlatUnit(in).der, in, out, PKV_New_RSA, PKV_Clear_RSA, read_rsa_strict);
}
int RSA_KEY_to_Seq(RSA_UNIT *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_RSA_KEY_to_Seq, in, out, write_rsa, {}, Content::secret);
}

int BITSTRING_to_KCDSA_KEY(const ASN1_STRING *in, KCDSA_UNIT **out) noexcept {
  return fill_key(F_BITSTRING_to_KCDSA_KEY, bits_of(in), in, out, PKV_New_KCDSA, PKV_Clear_KCDSA, read_kcdsa_value);
}
int KCDSA_KEY_to_BITSTRING(KCDSA_UNIT *in, ASN1_STRING **out) noexcept {
  return write_bits<KCDSA_UNIT>(F_KCDSA_KEY_to_BITSTRING, in, out, write_kcdsa);
}
int Seq_to_KCDSA_KEY(ASN1_UNIT *in, KCDSA_UNIT **out) noexcept {
  return fill_key(F_Seq_to_KCDSA_KEY, FlatUnit(in).der, in, out, PKV_New_KCDSA, PKV_Clear_KCDSA, read_kcdsa_value);
}
int KCDSA_KEY_to_Seq(KCDSA_UNIT *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_KCDSA_KEY_to_Seq, in, out, write_kcdsa);
}

namespace velpki {

namespace {

// ECC points (SEC 1 2.3.3, 2.3.4).

constexpr size_t kP256Length = 32;

Number number_of(Octets octets) noexcept { return Number(PKV_New_BIGINT_Binary(octets.data(), int(octets.size()))); }

int set_point(Octets halves, int function, const ECURVE *curve, ECC_UNIT &key) noexcept {
  const size_t half = halves.size() / 2;
  const Number x = number_of(halves.first(half)), y = number_of(halves.subspan(half));
  const bool set =
      curve && x && y && PKV_Set_ECC_Curve(&key, curve) == 0 && PKV_Set_ECC_Public(&key, x.get(), y.get()) == 0;
  return set ? 0 : fail(function, kNoMemory);
}

int read_point(Octets point, int function, ECC_UNIT &key) noexcept {
  if (point.size() < 3 || point[0] != 0x04 || point.size() % 2 == 0 || point.size() / 2 > kP256Length) {
    return fail(function, kNullArgument);
  }
  ECURVE *curve = nullptr;
  const int made = set_ECURVE_from_list(&curve, row::kPrime256v1);
  const owned<ECURVE> owner(curve);
  return set_point(point.subspan(1), function, made ? nullptr : curve, key);
}

int read_point_strict(Octets point, int function, ECC_UNIT &key) noexcept {
  if (point.size() != 1 + 2 * kP256Length) return fail(function, kNullArgument);
  if (const int code = read_point(point, function, key)) return code;
  return PKV_Check_ECC(&key) ? fail(function, ERR_ASN1_DECODING) : 0;
}

// A coordinate in `size` octets, or with 0 in as few as it needs.
void write_coordinate(const BIGINT *value, size_t size, DerWriter &out) noexcept {
  int length = 0;
  const uint8_t *magnitude = value ? PKV_Get_BIGINT_Octets(value, &length) : nullptr;
  if (!value || (size && size_t(length) > size)) return out.refuse();
  for (size_t i = size_t(length); i < size; ++i) out.octet(0);
  out.raw(octets_of(magnitude, length));
}

int write_point(const ECC_UNIT &key, size_t size, DerWriter &out) noexcept {
  const ECC_POINT *point = PKV_Get_ECC_Public(&key);
  if (!point) return out.refuse(), 0;
  out.octet(0x04);
  write_coordinate(PKV_Get_ECC_POINT_X(point), size, out);
  write_coordinate(PKV_Get_ECC_POINT_Y(point), size, out);
  return 0;
}

int write_short_point(const ECC_UNIT &key, DerWriter &out) noexcept { return write_point(key, 0, out); }
int write_whole_point(const ECC_UNIT &key, DerWriter &out) noexcept {
  return write_point(key, size_t(PKV_Get_ECURVE_Field_Length(PKV_Get_ECC_Curve(&key))), out);
}

}  // namespace

}  // namespace velpki

int velpki::read_point_of(Octets point, int function, const char *name, ECC_UNIT &key) noexcept {
  const owned<ECURVE> curve(PKV_New_ECURVE());
  if (!curve) return fail(function, kNoMemory);
  if (const int code = PKV_Set_ECURVE_Named(curve.get(), name)) return fail(function, code);
  const size_t field = size_t(PKV_Get_ECURVE_Field_Length(curve.get()));
  if (point.size() != 1 + 2 * field || point[0] != 0x04) return fail(function, ERR_ASN1_DECODING);
  return set_point(point.subspan(1), function, curve.get(), key);
}

int BITSTRING_to_ECC_KEY(const ASN1_STRING *in, ECC_UNIT **out) noexcept {
  return fill_key(F_BITSTRING_TO_ECC_KEY, bits_of(in), in, out, PKV_New_ECC, PKV_Clear_ECC, read_point);
}
int BITSTRING_to_ECC_KEY_strict(const ASN1_STRING *in, ECC_UNIT **out) noexcept {
  return fill_key(F_BITSTRING_TO_ECC_KEY, bits_of(in), in, out, PKV_New_ECC, PKV_Clear_ECC, read_point_strict);
}
int ECC_KEY_to_BITSTRING(ECC_UNIT *in, ASN1_STRING **out) noexcept {
  return write_bits<ECC_UNIT>(F_ECC_KEY_TO_BITSTRING, in, out, write_short_point);
}
int ECC_KEY_to_BITSTRING_RFC5280(ECC_UNIT *in, ASN1_STRING **out) noexcept {
  return write_bits<ECC_UNIT>(F_ECC_KEY_TO_BITSTRING, in, out, write_whole_point);
}
