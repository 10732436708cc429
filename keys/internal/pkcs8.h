// The records of pkcs8.h from the inside.
#pragma once

#include <velpki/pkcs8.h>

#include "x509/internal/x509.h"

// The encoded parameters of the algorithm, which may be absent, and the content of the privateKey OCTET STRING; they
// stand behind the struct, in one block.
struct p8_kept_key {
  size_t parameters, key;
};

namespace velpki {

VELPKI_FLAT(P8_PRIV_KEY_INFO)
VELPKI_FLAT(PKCS8)

template <>
struct Flat<P8_KEPT_KEY> {
  static void release(P8_KEPT_KEY *kept) noexcept;
  static P8_KEPT_KEY *copy(const P8_KEPT_KEY *kept) noexcept;
};

int decode(const Tlv &tlv, P8_PRIV_KEY_INFO &out) noexcept;
int encode(const P8_PRIV_KEY_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, PKCS8 &out) noexcept;
int encode(const PKCS8 &p8, DerWriter &out) noexcept;

// OCTET STRING, which in the files of some is in segments.
inline bool is_octet_string(const Tlv &tlv) noexcept {
  return tlv.identifier == TYPE_OCTET_STRING || tlv.identifier == (TYPE_OCTET_STRING | tag::kConstructed);
}
bool read_octets(Cursor &in, OCTET_STRING *&out) noexcept;

// The key octets of PrivateKeyInfo by the row of their algorithm: rsaEncryption, kcdsa1 or id-ecPublicKey. `algorithm`
// stands at the parameters. Reading fills `out`, whose owner releases it on failure, too. A failure stops the cursor.
bool read_private_key(Cursor &algorithm, int row, Octets octets, ASYMMETRIC_KEY &out) noexcept;
// The row of the algorithm of a key; 0 for one that is empty.
int row_of_key(const ASYMMETRIC_KEY *key) noexcept;
// AlgorithmIdentifier and privateKey; a key that cannot be written is refused.
void write_private_key(const ASYMMETRIC_KEY &key, DerWriter &out) noexcept;

}  // namespace velpki
