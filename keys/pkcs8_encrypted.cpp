// PKCS8: the encrypted container.
#include "asn1/internal/io.h"
#include "keys/internal/pbe_row.h"
#include "keys/internal/pkcs5.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<PKCS8> = std::tuple(own(&PKCS8::algorithm), own(&PKCS8::encryptedData));

namespace {

int kind_of(const OBJECT_IDENTIFIER *oid) noexcept {
  switch (index_from_OBJECT_IDENTIFIER(oid)) {
    case row::kSeedCbc:
    case row::kPbeSeed:
    case row::kPbeGpkiSeed:
    case row::kPbeAria:
      return PKCS8_NATIONAL;
    case row::kPbes2:
      return PKCS8_PBES2;
    default:
      return PKCS8_PBES1;
  }
}

}  // namespace

bool read_octets(Cursor &in, OCTET_STRING *&out) noexcept {
  Tlv child;
  return in.next(child) && (is_octet_string(child) || in.expect(child, TYPE_OCTET_STRING)) &&
         in.keep(read_joined_octets(child, out));
}

// EncryptedPrivateKeyInfo ::= SEQUENCE { encryptionAlgorithm AlgorithmIdentifier, encryptedData OCTET STRING }
int decode(const Tlv &tlv, PKCS8 &out) noexcept {
  Cursor in(tlv);
  if (read_record(in, out.algorithm) && read_octets(in, out.encryptedData)) {
    out.kind = kind_of(out.algorithm->algorithm);
  }
  return in.result(F_SEQ_TO_P8_ENCRYPTED_KEY);
}

int encode(const PKCS8 &p8, DerWriter &out) noexcept {
  if (!p8.algorithm) return fail(F_P8_ENCRYPTED_KEY_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = encode(*p8.algorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, p8.encryptedData);
  return 0;
}

namespace {

constexpr Codec<PKCS8> kCodec{F_SEQ_TO_P8_ENCRYPTED_KEY, F_P8_ENCRYPTED_KEY_TO_SEQ, decode, encode,
                              "ENCRYPTED PRIVATE KEY"};

// The algorithm of a container, made when it has none; null when memory is exhausted.
X509_ALGO_IDENTIFIER *algorithm_of(PKCS8 &p8) noexcept {
  if (!p8.algorithm) p8.algorithm = new_X509_ALGO_IDENTIFIER();
  return p8.algorithm;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(PKCS8)

OCTET_STRING *get_encryptedData_PKCS8(const PKCS8 *p8) noexcept { return p8 ? p8->encryptedData : nullptr; }
int set_encryptedData_PKCS8(PKCS8 *p8, const unsigned char *bytes, int length) noexcept {
  if (!p8 || length < 0 || (!bytes && length > 0)) return 1;
  OCTET_STRING *string = new_string(TYPE_OCTET_STRING, octets_of(bytes, length));
  if (!string) return 1;
  free_ASN1_STRING(std::exchange(p8->encryptedData, string));
  return 0;
}
OBJECT_IDENTIFIER *get_OID_PKCS8(const PKCS8 *p8) noexcept {
  return p8 && p8->algorithm ? p8->algorithm->algorithm : nullptr;
}
int set_OID_PKCS8(PKCS8 *p8, const OBJECT_IDENTIFIER *oid) noexcept {
  if (!p8 || !oid || !algorithm_of(*p8)) return 1;
  return replace(*p8->algorithm, &X509_ALGO_IDENTIFIER::algorithm, oid) ? 0 : 1;
}
P5_PBE_PARAM *get_PKCS8_P5_PBE_PARAM(const PKCS8 *p8) noexcept {
  return p8 ? get_P5_PBE_PARAM_from_X509_ALGO_IDENTIFIER(p8->algorithm) : nullptr;
}
int set_PKCS8_P5_PBE_PARAM(PKCS8 *p8, const P5_PBE_PARAM *param) noexcept {
  return p8 && param && algorithm_of(*p8) && store_pbe_param(*p8->algorithm, *param, {}) ? 0 : 1;
}

int P8_ENCRYPTED_KEY_to_Seq(const PKCS8 *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P8_ENCRYPTED_KEY_TO_SEQ, in, out, encode);
}
int Seq_to_P8_ENCRYPTED_KEY(ASN1_UNIT *in, PKCS8 **out) noexcept {
  return from_seq(F_SEQ_TO_P8_ENCRYPTED_KEY, in, out, decode);
}

VELPKI_IO(PKCS8, kCodec)
