// The sets of certificates and CRLs that messages carry.
#pragma once

#include "cms/internal/message.h"
#include "x509/internal/crl.h"

namespace velpki {

inline bool has_elements(const STACK *list) noexcept { return list && list->count > 0; }

// Signed data that carry certificates or CRLs and sign nothing need no content.
template <class SignedData>
bool holds_certificates_only(const SignedData &data) noexcept {
  return !has_elements(data.signerInfos) && (has_elements(data.certificates) || has_elements(data.crls));
}

// Certificates [0] IMPLICIT and CRLs [1] IMPLICIT, both OPTIONAL, of a record with those four members.
// In standard form what is no certificate or CRL that can be read is kept as a unit.
template <class E>
bool read_choices(MessageReader &in, uint8_t identifier, STACK *&list, STACK *&others) noexcept;
template <class E>
int write_choices(uint8_t identifier, const STACK *list, const STACK *others, int function, DerWriter &out) noexcept;
template <class R>
bool read_sets(MessageReader &in, R &out) noexcept {
  return read_choices<X509_CERT>(in, tag::explicit_context(0), out.certificates, out.otherCertificates) &&
         read_choices<X509_CRL>(in, tag::explicit_context(1), out.crls, out.otherCrls);
}
template <class R>
int write_sets(const R &record, DerWriter &out) noexcept {
  const int code = write_choices<X509_CERT>(tag::explicit_context(0), record.certificates, record.otherCertificates,
                                            F_X509_CERT_TO_SEQ, out);
  return code ? code
              : write_choices<X509_CRL>(tag::explicit_context(1), record.crls, record.otherCrls, F_X509_CRLS_TO_SEQ,
                                        out);
}

}  // namespace velpki
