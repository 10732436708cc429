// Certificates in and out of their bags.
#include "keys/internal/pkcs12.h"

namespace velpki {

namespace {

owned<ASN1_STRING> der_of(const X509_CERT &cert, int &code) noexcept {
  int length = 0;
  if (const uint8_t *received = get_X509_received(&cert, 0, &length)) {
    return owned<ASN1_STRING>(new_string(TYPE_OCTET_STRING, octets_of(received, length)));
  }
  DerWriter der;
  code = encode(cert, der);
  if (!code) code = der.result(F_X509_CERT_TO_CERTBAG);
  return owned<ASN1_STRING>(code ? nullptr : new_string(TYPE_OCTET_STRING, der.written()));
}

// In house form, and what that refuses in standard form: a file holds whatever certificates its owner has.
int read_cert(Octets der, X509_CERT **out) noexcept {
  int code = 0;
  for (Rules rules : {Rules(), kStandardRules}) {
    Tlv tlv;
    if (!Tlv::parse(der, rules, tlv)) return fail(F_CERTBAG_TO_X509_CERT, ERR_ASN1_DECODING);
    code = from_tlv(F_CERTBAG_TO_X509_CERT, tlv, out, decode);
    if (!code || reason_of(code) == kNoMemory) return code;
  }
  return fail(F_CERTBAG_TO_X509_CERT, ERR_ASN1_DECODING);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int X509_CERT_to_CertBag(X509_CERT *cert, P12_BAGS **bag) noexcept {
  if (!cert || !bag) return fail(F_X509_CERT_TO_CERTBAG, kNullArgument);
  int code = 0;
  owned<ASN1_STRING> der = der_of(*cert, code);
  if (code) return code;
  owned<P12_BAGS> fresh(der ? new_P12_BAGS() : nullptr);
  if (!fresh || !(fresh->certType = index_to_OBJECT_IDENTIFIER(row::kX509Certificate))) {
    return fail(F_X509_CERT_TO_CERTBAG, kNoMemory);
  }
  fresh->value = der.release();
  return store(std::move(fresh), bag);
}

int CertBag_to_X509_CERT(P12_BAGS *bag, X509_CERT **cert) noexcept {
  if (!bag || !cert) return fail(F_CERTBAG_TO_X509_CERT, kNullArgument);
  if (index_from_OBJECT_IDENTIFIER(bag->certType) != row::kX509Certificate) {
    return fail(F_CERTBAG_TO_X509_CERT, kUnsupported);
  }
  if (!bag->value) return fail(F_CERTBAG_TO_X509_CERT, ERR_ASN1_DECODING);
  return read_cert(octets(*bag->value), cert);
}
