// What names a certificate in OCSP: hashes of its issuer's name and key, and its serial number.
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"
#include "x509/internal/received.h"

namespace velpki {

namespace {

struct Digest {
  uint8_t octets[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  Octets view() const noexcept { return octets_of(octets, length); }
};

int digest_octets(int digest_id, Octets data, Digest &out) noexcept {
  return PKV_DIGEST(digest_id, data.data(), int(data.size()), out.octets, &out.length);
}

// The received octets of issuer and serial number.
bool find_received(const X509_RECEIVED &received, Tlv &issuer, Tlv &serial) noexcept {
  Rules rules = kStandardRules;
  Tlv tbs, skipped;
  if (!Tlv::parse(received_tbs(received), rules, tbs)) return false;
  Cursor in(tbs);
  if (in.at(tag::explicit_context(0)) && !in.next(skipped)) return false;
  return in.next(TYPE_INTEGER, serial) && in.next(skipped) && in.next(TYPE_SEQUENCE, issuer);
}

int copy_members(const X509_CERT &cert, DerWriter &issuer, owned<BIGINT> &serial) noexcept {
  const X509_NAME *name = get_X509_issuer(&cert);
  const BIGINT *number = get_X509_serial(&cert);
  if (!name || !number) return ocsp_failure(kNullArgument);
  if (const int code = encode_name(*name, issuer)) return as_ocsp(code);
  serial.reset(PKV_Dup_BIGINT(number));
  return serial ? issuer.result(kOcsp) : ocsp_failure(kNoMemory);
}

}  // namespace

int read_issuer_and_serial(const X509_CERT &cert, DerWriter &issuer, owned<BIGINT> &serial) noexcept {
  if (!cert.received) return copy_members(cert, issuer, serial);
  Tlv name, number;
  if (!find_received(*cert.received, name, number)) return ocsp_failure(ERR_ASN1_DECODING);
  BIGINT *read = nullptr;
  const Read outcome = read_integer(number, read);
  serial.reset(read);
  if (outcome != Read::ok) return ocsp_failure(outcome == Read::no_memory ? kNoMemory : ERR_ASN1_DECODING);
  issuer.raw(name.whole);
  return issuer.result(kOcsp);
}

int new_cert_id(const X509_CERT &cert, const X509_CERT &issuer, int digest_id, owned<OCSP_CERT_ID> &out) noexcept {
  const int row = get_OID_from_DigestID(digest_id);
  if (!row || !PKV_Get_DIGEST_Length(digest_id)) return ocsp_failure(kUnsupported);
  owned<OCSP_CERT_ID> id(blank<OCSP_CERT_ID>());
  DerWriter name(kStandardRules);
  owned<BIGINT> serial;
  Digest name_hash, key_hash;
  if (const int code = read_issuer_and_serial(cert, name, serial)) return code;
  if (const int code = digest_octets(digest_id, name.written(), name_hash)) return code;
  key_hash.length = get_X509_PUBLIC_KEY_hash_RFC5280(&issuer, digest_id, key_hash.octets);
  if (key_hash.length <= 0) return ocsp_failure(kNoKeyIdentifier);
  if (!id) return ocsp_failure(kNoMemory);
  id->hashAlgorithm = new_algorithm(oid_of_row(row).get()).release();
  id->issuerNameHash = new_string(TYPE_OCTET_STRING, name_hash.view());
  id->issuerKeyHash = new_string(TYPE_OCTET_STRING, key_hash.view());
  id->serialNumber = serial.release();
  if (!id->hashAlgorithm || !id->issuerNameHash || !id->issuerKeyHash) return ocsp_failure(kNoMemory);
  out = std::move(id);
  return 0;
}

bool same_cert_id(const OCSP_CERT_ID &a, const OCSP_CERT_ID &b) noexcept {
  return PKV_Cmp_BIGINT(a.serialNumber, b.serialNumber) == 0 && a.hashAlgorithm && b.hashAlgorithm &&
         cmp_OBJECT_IDENTIFIER(a.hashAlgorithm->algorithm, b.hashAlgorithm->algorithm) == 0 &&
         same_octets(a.issuerNameHash, b.issuerNameHash) && same_octets(a.issuerKeyHash, b.issuerKeyHash);
}

}  // namespace velpki

using namespace velpki;

int hash_X509_NAME(const X509_NAME *name, int digest, unsigned char *out, int *out_len) noexcept {
  if (!name || !out || !out_len) return ocsp_failure(kNullArgument);
  DerWriter der;
  if (const int code = encode_name(*name, der)) return as_ocsp(code);
  if (der.failed()) return der.result(kOcsp);
  const Octets octets = der.written();
  if (const int code = PKV_DIGEST(digest, octets.data(), int(octets.size()), out, out_len)) return code;
  return *out_len > 0 ? 0 : ocsp_failure(kFailedStep);
}

int match_OCSP_CERT_ID(const OCSP_CERT_ID *id, const X509_CERT *cert, const X509_CERT *issuer) noexcept {
  if (!id || !cert || !issuer || !id->hashAlgorithm) return ocsp_failure(kNullArgument);
  const int digest_id = get_DigestID_from_OID(id->hashAlgorithm->algorithm);
  if (!digest_id) return ocsp_failure(kUnsupported);
  owned<OCSP_CERT_ID> own;
  if (const int code = new_cert_id(*cert, *issuer, digest_id, own)) return code;
  return same_cert_id(*id, *own) ? 0 : ocsp_failure(ERR_OCSP_CERT_ID);
}
