// RSAPrivateKey and RSAPublicKey from the inside.
#pragma once

#include "x509/internal/rsa_parameters.h"

namespace velpki {

VELPKI_FLAT(PKCS1_RSA_PRIVATE_KEY)
VELPKI_FLAT(PKCS1_RSA_PUBLIC_KEY)

int decode(const Tlv &tlv, PKCS1_RSA_PRIVATE_KEY &out) noexcept;
int encode(const PKCS1_RSA_PRIVATE_KEY &key, DerWriter &out) noexcept;
int decode(const Tlv &tlv, PKCS1_RSA_PUBLIC_KEY &out) noexcept;
int encode(const PKCS1_RSA_PUBLIC_KEY &key, DerWriter &out) noexcept;

}  // namespace velpki
