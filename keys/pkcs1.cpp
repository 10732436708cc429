// PKCS#1 key records (RFC 8017 A.1).
#include <velpki/asn1_error.h>

#include "asn1/internal/io.h"
#include "keys/internal/pkcs1.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<PKCS1_RSA_PRIVATE_KEY> =
    std::tuple(own(&PKCS1_RSA_PRIVATE_KEY::n), own(&PKCS1_RSA_PRIVATE_KEY::e), own(&PKCS1_RSA_PRIVATE_KEY::d),
               own(&PKCS1_RSA_PRIVATE_KEY::p), own(&PKCS1_RSA_PRIVATE_KEY::q), own(&PKCS1_RSA_PRIVATE_KEY::dP),
               own(&PKCS1_RSA_PRIVATE_KEY::dQ), own(&PKCS1_RSA_PRIVATE_KEY::qInv));
template <>
inline constexpr auto owned_fields<PKCS1_RSA_PUBLIC_KEY> = std::tuple(own(&PKCS1_RSA_PUBLIC_KEY::n),
                                                                      own(&PKCS1_RSA_PUBLIC_KEY::e));

namespace {

// The numbers of a record in the order of its encoding, which is that of the provider's components too.
constexpr BIGINT *PKCS1_RSA_PRIVATE_KEY::*kPrivateNumbers[] = {
    &PKCS1_RSA_PRIVATE_KEY::n, &PKCS1_RSA_PRIVATE_KEY::e,  &PKCS1_RSA_PRIVATE_KEY::d,  &PKCS1_RSA_PRIVATE_KEY::p,
    &PKCS1_RSA_PRIVATE_KEY::q, &PKCS1_RSA_PRIVATE_KEY::dP, &PKCS1_RSA_PRIVATE_KEY::dQ, &PKCS1_RSA_PRIVATE_KEY::qInv};
constexpr BIGINT *PKCS1_RSA_PUBLIC_KEY::*kPublicNumbers[] = {&PKCS1_RSA_PUBLIC_KEY::n, &PKCS1_RSA_PUBLIC_KEY::e};
constexpr PKV_RSA_COMPONENT kComponents[] = {PKV_RSA_N, PKV_RSA_E,  PKV_RSA_D,  PKV_RSA_P,
                                             PKV_RSA_Q, PKV_RSA_DP, PKV_RSA_DQ, PKV_RSA_QINV};

template <class R, size_t n>
bool read_numbers(Cursor &in, R &out, BIGINT *R::*const (&members)[n]) noexcept {
  for (BIGINT *R::*const member : members)
    if (!in.integer(out.*member)) return false;
  return in.at_end() || in.stop(Read::malformed);
}

template <class R, size_t n>
void write_numbers(const R &key, BIGINT *R::*const (&members)[n], DerWriter &out) noexcept {
  for (BIGINT *R::*const member : members) out.integer(key.*member);
}

// version Version: 0 for two primes.
bool read_version(Cursor &in) noexcept {
  Tlv version;
  if (!in.next(TYPE_INTEGER, version)) return false;
  return (version.content.size() == 1 && version.content[0] == 0) || in.stop(Read::malformed);
}

}  // namespace

// RSAPrivateKey ::= SEQUENCE { version Version, modulus INTEGER, publicExponent INTEGER, privateExponent INTEGER,
// prime1
//   INTEGER, prime2 INTEGER, exponent1 INTEGER, exponent2 INTEGER, coefficient INTEGER }
int decode(const Tlv &tlv, PKCS1_RSA_PRIVATE_KEY &out) noexcept {
  Cursor in(tlv);
  if (read_version(in)) read_numbers(in, out, kPrivateNumbers);
  return in.result(F_SEQ_TO_P1_PRIV_KEY_INFO);
}

int encode(const PKCS1_RSA_PRIVATE_KEY &key, DerWriter &out) noexcept {
  if (key.version != 0) return fail(F_P1_PRIV_KEY_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  out.integer(0u);
  write_numbers(key, kPrivateNumbers, out);
  return 0;
}

// RSAPublicKey ::= SEQUENCE { modulus INTEGER, publicExponent INTEGER }
int decode(const Tlv &tlv, PKCS1_RSA_PUBLIC_KEY &out) noexcept {
  Cursor in(tlv);
  read_numbers(in, out, kPublicNumbers);
  return in.result(F_SEQ_TO_P1_PUB_KEY_INFO);
}

int encode(const PKCS1_RSA_PUBLIC_KEY &key, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  write_numbers(key, kPublicNumbers, out);
  return 0;
}

namespace {

constexpr Codec<PKCS1_RSA_PRIVATE_KEY> private_codec(std::string_view label) noexcept {
  return {F_SEQ_TO_P1_PRIV_KEY_INFO, F_P1_PRIV_KEY_INFO_TO_SEQ, decode, encode, label, Content::secret};
}
constexpr Codec<PKCS1_RSA_PUBLIC_KEY> public_codec(std::string_view label) noexcept {
  return {F_SEQ_TO_P1_PUB_KEY_INFO, F_P1_PUB_KEY_INFO_TO_SEQ, decode, encode, label};
}
constexpr auto kPrivate = private_codec("PKV_RSA PRIVATE KEY"), kUsualPrivate = private_codec("RSA PRIVATE KEY");
constexpr auto kPublic = public_codec("PKV_RSA PUBLIC KEY"), kUsualPublic = public_codec("RSA PUBLIC KEY");

// Fills a record from a provider key, at once or not at all.
template <class R, size_t n>
int take_numbers(int function, R *record, const RSA_UNIT *key, BIGINT *R::*const (&members)[n]) noexcept {
  if (!record || !key) return fail(function, kNullArgument);
  owned<R> fresh(blank<R>());
  if (!fresh) return fail(function, kNoMemory);
  for (size_t i = 0; i < n; ++i) {
    const BIGINT *number = PKV_Get_RSA_Component(key, kComponents[i]);
    if (!number) return fail(function, kBadValue);
    if (!replace(*fresh, members[i], number)) return fail(function, kNoMemory);
  }
  std::swap(*record, *fresh);
  return 0;
}

// A new provider key of up to eight numbers; those that a record of fewer lacks are null.
RSA_UNIT *unit_of(const BIGINT *const (&number)[8]) noexcept {
  owned<RSA_UNIT> key(PKV_New_RSA());
  const bool set = key && PKV_Set_RSA_Params(key.get(), number[0], number[1], number[2], number[3], number[4],
                                             number[5], number[6], number[7]) == 0;
  return set ? key.release() : nullptr;
}

template <class R, size_t n>
RSA_UNIT *give_numbers(const R *record, BIGINT *R::*const (&members)[n]) noexcept {
  const BIGINT *numbers[8] = {};
  for (size_t i = 0; i < n; ++i) {
    numbers[i] = record ? record->*members[i] : nullptr;
    if (!numbers[i]) return nullptr;
  }
  return unit_of(numbers);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(PKCS1_RSA_PRIVATE_KEY)
VELPKI_LIFE_CYCLE(PKCS1_RSA_PUBLIC_KEY)
VELPKI_IO(PKCS1_RSA_PRIVATE_KEY, kPrivate)
VELPKI_IO(PKCS1_RSA_PUBLIC_KEY, kPublic)

int writePEM_PKCS1_RSA_PRIVATE_KEY_to_Binary_RFC7468(PKCS1_RSA_PRIVATE_KEY *in, char **out) noexcept {
  return write_pem(kUsualPrivate, in, out);
}
int writePEM_PKCS1_RSA_PUBLIC_KEY_to_Binary_RFC7468(PKCS1_RSA_PUBLIC_KEY *in, char **out) noexcept {
  return write_pem(kUsualPublic, in, out);
}

int PKCS1_RSA_PRIVATE_KEY_to_Seq(const PKCS1_RSA_PRIVATE_KEY *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P1_PRIV_KEY_INFO_TO_SEQ, in, out, encode, {}, Content::secret);
}
int Seq_to_PKCS1_RSA_PRIVATE_KEY(ASN1_UNIT *in, PKCS1_RSA_PRIVATE_KEY **out) noexcept {
  return from_seq(F_SEQ_TO_P1_PRIV_KEY_INFO, in, out, decode);
}
int PKCS1_RSA_PUBLIC_KEY_to_Seq(const PKCS1_RSA_PUBLIC_KEY *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P1_PUB_KEY_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_PKCS1_RSA_PUBLIC_KEY(ASN1_UNIT *in, PKCS1_RSA_PUBLIC_KEY **out) noexcept {
  return from_seq(F_SEQ_TO_P1_PUB_KEY_INFO, in, out, decode);
}

int set_RSA_UNIT_to_P1_PRIV_KEY(PKCS1_RSA_PRIVATE_KEY *record, const RSA_UNIT *key) noexcept {
  return take_numbers(F_SET_RSA_UNIT_TO_P1_PRIV_KEY, record, key, kPrivateNumbers);
}
int set_RSA_UNIT_to_P1_PUB_KEY(PKCS1_RSA_PUBLIC_KEY *record, const RSA_UNIT *key) noexcept {
  return take_numbers(F_SET_RSA_UNIT_TO_P1_PUB_KEY, record, key, kPublicNumbers);
}
RSA_UNIT *get_RSA_UNIT_from_PRIV_KEY(const PKCS1_RSA_PRIVATE_KEY *record) noexcept {
  return give_numbers(record, kPrivateNumbers);
}
RSA_UNIT *get_RSA_UNIT_from_PUB_KEY(const PKCS1_RSA_PUBLIC_KEY *record) noexcept {
  return give_numbers(record, kPublicNumbers);
}
