// The records of pkcs12.h from the inside.
#pragma once

#include <velpki/pkcs12.h>

#include "cms/internal/pkcs7.h"
#include "keys/internal/pbe.h"

namespace velpki {

VELPKI_FLAT_WITHOUT_DUP(PKCS12)
VELPKI_FLAT_WITHOUT_DUP(P12_MAC_DATA)
VELPKI_FLAT_WITHOUT_DUP(P12_SAFEBAG)
VELPKI_FLAT_WITHOUT_DUP(P12_BAGS)

inline constexpr int kNoList = 0x3B;  // the reason for a list that could not be made

namespace row {
inline constexpr int kKeyBag = 150;
inline constexpr int kShroudedKeyBag = 151;
inline constexpr int kCertBag = 152;
inline constexpr int kSafeContentsBag = 155;
inline constexpr int kFriendlyName = 156;
inline constexpr int kLocalKeyId = 157;
inline constexpr int kX509Certificate = 158;
inline constexpr int kPbmac1 = 162;
}  // namespace row

template <>
inline constexpr auto owned_fields<P12_MAC_DATA> = std::tuple(own(&P12_MAC_DATA::digestAlgorithm),
                                                              own(&P12_MAC_DATA::mac), own(&P12_MAC_DATA::salt),
                                                              own(&P12_MAC_DATA::iteration),
                                                              own(&P12_MAC_DATA::digestParameters));

int decode(const Tlv &tlv, P12_MAC_DATA &out) noexcept;
int encode(const P12_MAC_DATA &mac, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P12_BAGS &out) noexcept;
int encode(const P12_BAGS &bag, DerWriter &out) noexcept;
int decode(const Tlv &tlv, P12_SAFEBAG &out) noexcept;
int encode(const P12_SAFEBAG &bag, DerWriter &out) noexcept;
int decode_safe_bags(const Tlv &tlv, STACK &out) noexcept;
int encode_safe_bags(const STACK &bags, DerWriter &out) noexcept;
int decode_auth_safe(const Tlv &tlv, STACK &out) noexcept;
int encode_auth_safe(const STACK &safes, DerWriter &out) noexcept;
int decode(const Tlv &tlv, PKCS12 &out) noexcept;
int encode(const PKCS12 &p12, DerWriter &out) noexcept;

// The value of a bag that is of the kind; null for another.
template <class T>
T *value_of(const P12_SAFEBAG *bag, int kind) noexcept {
  return bag && bag->kind == kind ? static_cast<T *>(bag->value) : nullptr;
}

// A list out of the octets of its encoding, as the decoders of a list give it. Codes have `function`.
template <class E>
int list_of_octets(Octets octets, int function, int (*decode)(const Tlv &, STACK &) noexcept, STACK *&out) noexcept {
  Tlv tlv;
  Rules rules;
  if (!Tlv::parse(octets, rules, tlv)) return fail(function, ERR_ASN1_DECODING);
  return list_from_tlv<E>(function, tlv, &out, decode);
}

// A password as a caller gives it.
struct PasswordText {
  const char *password;
  int length;
  BmpPassword::Text form;
};

// A password in both of its forms. PBES2 takes the octets, everything else the characters.
class Pkcs12Password {
 public:
  int set(const PasswordText &text) noexcept;
  Octets octets() const noexcept { return octets_; }
  Octets characters() const noexcept { return bmp_.octets(); }

 private:
  Octets octets_;
  BmpPassword bmp_;
};

// What derivations may do: the highest count of one, and what is left of the sum of all.
struct Budget {
  explicit Budget(int maximum = PKCS5_MAX_ITERATIONS) noexcept : maximum(maximum), left(10LL * maximum) {}
  bool spend(long long iterations) noexcept { return (left -= iterations) >= 0; }
  int maximum;
  long long left;
  bool pbes1 = false;  // the algorithms of PBES1 mean PBES1, as in the files of others
};

// Encryption by a registry row: the parameters go into `algorithm`. 0, 1 for a count that leaves no octets, or a
// PKV_ERR_ code.
struct Pkcs12Request {
  int pbe_index;
  const Pkcs12Password *password;
  Octets salt;
  int salt_length;  // of one to be drawn
  int iterations;
};
struct Protected {
  owned<X509_ALGO_IDENTIFIER> algorithm;
  owned<uint8_t> octets;
  int length = 0;
};
int protect(const Pkcs12Request &request, Octets in, Protected &out) noexcept;
// Decryption: 0, or a reason. `plain` has room for the ciphertext and is filled up to `length`.
int unprotect(const X509_ALGO_IDENTIFIER &algorithm, const Pkcs12Password &password, Budget &budget, Octets in,
              uint8_t *plain, int *length) noexcept;

// The bags of an encrypted content info: 0, or a reason.
int open_encrypted(const P7_CONTENT_INFO &p7, const Pkcs12Password &password, Budget &budget,
                   P12_SAFEBAGS *&out) noexcept;
// The key of a shrouded key bag: 0, or a reason.
int open_shrouded(const PKCS8 &p8, const Pkcs12Password &password, Budget &budget,
                  owned<P8_PRIV_KEY_INFO> &out) noexcept;

// Checks the MAC: 0, or a reason. `any_digest` takes every digest of the provider, and PBMAC1.
int check_mac(const PKCS12 &p12, const Pkcs12Password &password, bool any_digest, Budget &budget) noexcept;

// The first string value of an attribute of a bag; null when there is none.
const ASN1_STRING *bag_string(const P12_SAFEBAG *bag, int row) noexcept;
// A friendly name as UTF-8 text with a final zero octet: null, with `no_memory` set or not.
owned<char> name_text(const ASN1_STRING *name, int &length, bool &no_memory) noexcept;

// The octets of the authenticated safe; false for a file whose safe is none, or is signed.
bool auth_safe_octets(const PKCS12 &p12, Octets &out) noexcept;
// Keys may stand in content that is not encrypted; null is nothing.
void wipe_plain_content(P7_CONTENT_INFO *safe) noexcept;

}  // namespace velpki
