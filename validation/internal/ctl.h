// The records of ctl.h and the trust anchors of cpv.h from the inside.
#pragma once

#include <velpki/cpv.h>
#include <velpki/ctl.h>

#include "x509/internal/x509.h"

namespace velpki {

VELPKI_FLAT(TRUSTED_CERTIFICATE)
VELPKI_FLAT(CERT_TRUST_LIST)
VELPKI_FLAT(TRUST_ANCHOR)

// An extension value or a list entry that cannot be used.
inline constexpr int kUnreadable = 0x0E;

// The certificates of a message that verify_ctlSignedData takes; null where it does not.
const X509_CERTIFICATES *certificates_of_list(P7_CONTENT_INFO *ctl) noexcept;

// Moves all elements of a list to the end of another, all or none.
bool move_elements(STACK &from, STACK &to) noexcept;

}  // namespace velpki
