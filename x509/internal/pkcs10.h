// Certification requests from the inside.
#pragma once

#include <velpki/pkcs10.h>

#include "x509/internal/received.h"
#include "x509/internal/x509.h"

namespace velpki {

VELPKI_FLAT(PKCS10_X509_REQ_INFO)
VELPKI_FLAT(PKCS10_X509_REQ)

// The code of everything here, which has no function code of its own.
inline constexpr int kRequest = 0x46000000;

int decode(const Tlv &tlv, PKCS10_X509_REQ_INFO &out) noexcept;
int encode(const PKCS10_X509_REQ_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, PKCS10_X509_REQ &out) noexcept;
int encode(const PKCS10_X509_REQ &req, DerWriter &out) noexcept;

// The signature of a request by the rules of the plain verification.
int verify_request(const PKCS10_X509_REQ &req) noexcept;
// Whether an attribute asks for extensions, by either of its OIDs.
bool is_extension_request(const X509_ATTRIBUTE &attribute) noexcept;

}  // namespace velpki
