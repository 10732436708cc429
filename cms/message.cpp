#include "cms/internal/message.h"

namespace velpki {

bool MessageReader::octets(ASN1_STRING *&out) noexcept {
  Tlv child;
  return next(child) &&
         (child.identifier == (TYPE_OCTET_STRING | tag::kConstructed) || expect(child, TYPE_OCTET_STRING)) &&
         keep(read_joined_octets(child, out));
}

bool MessageReader::optional_implicit_octets(int n, ASN1_STRING *&out) noexcept {
  while (at_optional(tag::implicit_context(n), out) || at_optional(tag::explicit_context(n), out)) {
    Tlv child;
    free_ASN1_STRING(std::exchange(out, nullptr));
    if (!next(child) || !keep(read_joined_octets(child, out))) return false;
  }
  return reason() == Read::ok;
}

bool set_version(BIGINT *&version, unsigned word) noexcept {
  owned<BIGINT> fresh(PKV_New_BIGINT());
  if (!fresh || PKV_Set_BIGINT_Word(fresh.get(), word)) return false;
  PKV_Free_BIGINT(version);
  version = fresh.release();
  return true;
}

void write_no_content(DerWriter &out) noexcept {
  const auto info = out.sequence();
  out.oid_text("1.2.840.113549.1.7.1");
}

int compare_issuer_and_serial(const X509_CERT *cert, const X509_NAME *issuer, const BIGINT *serial) noexcept {
  const BIGINT *own_serial = get_X509_serial(cert);
  const X509_NAME *own_issuer = get_X509_issuer(cert);
  if (!serial || !own_serial || PKV_Cmp_BIGINT(own_serial, serial) != 0) return -1;
  return issuer && own_issuer ? cmp_X509_NAME(own_issuer, issuer) : -1;
}

X509_CERT *find_certificate(const STACK *certificates, const X509_NAME *issuer, const BIGINT *serial) noexcept {
  for (X509_CERT *cert : elements<X509_CERT>(certificates))
    if (compare_issuer_and_serial(cert, issuer, serial) == 0) return cert;
  return nullptr;
}

int decode_algorithms(const Tlv &tlv, STACK &list) noexcept {
  return decode_list<X509_ALGO_IDENTIFIER>(tlv, list, F_SEQ_TO_X509_ALGO_IDENTIFIERS, decode);
}

int encode_algorithms(const STACK &list, DerWriter &out) noexcept {
  return encode_list<X509_ALGO_IDENTIFIER>(list, out, tag::kSet, F_X509_ALGO_IDENTIFIERS_TO_SEQ, encode);
}

}  // namespace velpki
