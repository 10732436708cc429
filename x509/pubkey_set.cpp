// X509_PUBKEY: filled with the public half of a provider's key.
#include "x509/internal/x509.h"

namespace velpki {

namespace {

// Fills the record with the public half of a key, at once or not at all.
int set_key(X509_PUBKEY *pubkey, int row, owned<ASYMMETRIC_KEY> key, owned<ASN1_STRING> bits) noexcept {
  const owned<X509_PUBKEY> fresh(pubkey && key && bits ? new_X509_PUBKEY() : nullptr);
  if (!fresh || !(fresh->algorithm = index_to_OBJECT_IDENTIFIER(row))) return 1;
  fresh->subjectPublicKey = bits.release();
  fresh->key = key.release();
  std::swap(*pubkey, *fresh);
  return 0;
}

template <class Unit>
owned<ASN1_STRING> bits_of(Unit *key, int (*write)(Unit *, ASN1_STRING **) noexcept) noexcept {
  ASN1_STRING *bits = nullptr;
  return owned<ASN1_STRING>(write(key, &bits) ? nullptr : bits);
}

owned<RSA_UNIT> public_half(const RSA_UNIT *key) noexcept {
  owned<RSA_UNIT> half(key ? PKV_New_RSA() : nullptr);
  if (!half) return nullptr;
  const int code =
      PKV_Set_RSA_Params(half.get(), PKV_Get_RSA_Component(key, PKV_RSA_N), PKV_Get_RSA_Component(key, PKV_RSA_E),
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  return code ? nullptr : std::move(half);
}

owned<KCDSA_UNIT> public_half(const KCDSA_UNIT *key) noexcept {
  owned<KCDSA_UNIT> half(key ? PKV_New_KCDSA() : nullptr);
  if (!half) return nullptr;
  const auto part = [key](PKV_KCDSA_COMPONENT which) { return PKV_Get_KCDSA_Component(key, which); };
  int length = 0, count = 0;
  const uint8_t *seed = PKV_Get_KCDSA_Seed(key, &length, &count);
  const int code = PKV_Set_KCDSA_Params(half.get(), part(PKV_KCDSA_P), part(PKV_KCDSA_Q), part(PKV_KCDSA_G),
                                        part(PKV_KCDSA_J), part(PKV_KCDSA_Y), seed, length, count);
  return code ? nullptr : std::move(half);
}

owned<ECC_UNIT> public_half(const ECC_UNIT *key) noexcept {
  const ECC_POINT *point = key ? PKV_Get_ECC_Public(key) : nullptr;
  owned<ECC_UNIT> half(point ? PKV_New_ECC() : nullptr);
  if (!half) return nullptr;
  const bool set = PKV_Set_ECC_Curve(half.get(), PKV_Get_ECC_Curve(key)) == 0 &&
                   PKV_Set_ECC_Public(half.get(), PKV_Get_ECC_POINT_X(point), PKV_Get_ECC_POINT_Y(point)) == 0;
  return set ? std::move(half) : nullptr;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_X509_PUBKEY_rsa(X509_PUBKEY *pubkey, RSA_UNIT *key) noexcept {
  const owned<RSA_UNIT> half = public_half(key);
  return set_key(pubkey, row::kRsaEncryption, owned<ASYMMETRIC_KEY>(RSA_UNIT_to_ASYMMETRIC_KEY(half.get())),
                 bits_of(half.get(), RSA_KEY_to_BITSTRING_strict));
}

int set_X509_PUBKEY_kcdsa(X509_PUBKEY *pubkey, KCDSA_UNIT *key) noexcept {
  const owned<KCDSA_UNIT> half = public_half(key);
  return set_key(pubkey, row::kKcdsa1, owned<ASYMMETRIC_KEY>(KCDSA_UNIT_to_ASYMMETRIC_KEY(half.get())),
                 bits_of(half.get(), KCDSA_KEY_to_BITSTRING));
}

int set_X509_PUBKEY_ecc(X509_PUBKEY *pubkey, ECC_UNIT *key) noexcept {
  const owned<ECC_UNIT> half = public_half(key);
  return set_key(pubkey, row::kEcPublicKey, owned<ASYMMETRIC_KEY>(ECC_UNIT_to_ASYMMETRIC_KEY(half.get())),
                 bits_of(half.get(), ECC_KEY_to_BITSTRING_RFC5280));
}
