#include <velpki/issuer_and_serial_number.h>

#include <velpki/asn1_error.h>

#include "x509/internal/issuer_and_serial_number.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<ISSUER_AND_SERIAL_NUMBER> = std::tuple(
    list_of<X509_NAME_CHILD>(&ISSUER_AND_SERIAL_NUMBER::issuer), own(&ISSUER_AND_SERIAL_NUMBER::serialNumber));

// IssuerAndSerialNumber ::= SEQUENCE { issuer Name, serialNumber INTEGER }
int decode(const Tlv &tlv, ISSUER_AND_SERIAL_NUMBER &out) noexcept {
  Cursor in(tlv);
  const bool whole = read_list(in, out.issuer, decode_name) && in.integer(out.serialNumber);
  if (whole && !in.at_end()) in.stop(Read::malformed);
  return in.result(F_SEQ_TO_ISSUER_AND_SERIAL_NUMBER);
}

int encode(const ISSUER_AND_SERIAL_NUMBER &record, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (record.issuer && encode_name(*record.issuer, out))
    return fail(F_ISSUER_AND_SERIAL_NUMBER_TO_SEQ, ERR_ASN1_ENCODING);
  if (record.serialNumber) out.integer(record.serialNumber);
  return 0;
}

}  // namespace velpki

using namespace velpki;

ISSUER_AND_SERIAL_NUMBER *new_ISSUER_AND_SERIAL_NUMBER(void) noexcept { return make<ISSUER_AND_SERIAL_NUMBER>(); }
void free_ISSUER_AND_SERIAL_NUMBER(ISSUER_AND_SERIAL_NUMBER *p) noexcept { destroy(p); }

int ISSUER_AND_SERIAL_NUMBER_to_Seq(const ISSUER_AND_SERIAL_NUMBER *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_ISSUER_AND_SERIAL_NUMBER_TO_SEQ, in, out, encode);
}
int Seq_to_ISSUER_AND_SERIAL_NUMBER(ASN1_UNIT *in, ISSUER_AND_SERIAL_NUMBER **out) noexcept {
  return from_seq(F_SEQ_TO_ISSUER_AND_SERIAL_NUMBER, in, out, decode);
}

int cmp_ISSUER_AND_SERIAL_NUMBER(const X509_CERT *cert, const ISSUER_AND_SERIAL_NUMBER *record) noexcept {
  const BIGINT *serial = get_X509_serial(cert);
  const X509_NAME *issuer = get_X509_issuer(cert);
  if (!record || !serial || !record->serialNumber || PKV_Cmp_BIGINT(serial, record->serialNumber) != 0) return -1;
  return issuer && record->issuer ? cmp_X509_NAME(issuer, record->issuer) : -1;
}

X509_CERT *find_X509_CERT_by_IssuerAndSerialNumber(const X509_CERTIFICATES *certs,
                                                   const ISSUER_AND_SERIAL_NUMBER *record) noexcept {
  for (X509_CERT *cert : elements<X509_CERT>(record ? certs : nullptr))
    if (cmp_ISSUER_AND_SERIAL_NUMBER(cert, record) == 0) return cert;
  return nullptr;
}
