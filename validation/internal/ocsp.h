// The records of ocsp.h from the inside: their codecs, and what requests and responses share.
#pragma once

#include <velpki/ocsp.h>

#include "validation/internal/extension.h"
#include "x509/internal/x509v3.h"

namespace velpki {

VELPKI_FLAT(OCSP_CERT_ID)
VELPKI_FLAT(OCSP_SINGLE_REQUEST)
VELPKI_FLAT(OCSP_TBS_REQUEST)
VELPKI_FLAT(OCSP_SIGNATURE)
VELPKI_FLAT(OCSP_REQUEST)
VELPKI_FLAT(OCSP_REVOKED_INFO)
VELPKI_FLAT(OCSP_CERT_STATUS)
VELPKI_FLAT(OCSP_RESPONDER_ID)
VELPKI_FLAT(OCSP_SINGLE_RESPONSE)
VELPKI_FLAT(OCSP_RESPONSE_DATA)
VELPKI_FLAT(BASIC_OCSP_RESPONSE)
VELPKI_FLAT(OCSP_RESPONSE_BYTES)
VELPKI_FLAT(OCSP_RESPONSE)

inline constexpr int kOcsp = 0x50000000;
constexpr int ocsp_failure(int reason) noexcept { return fail(kOcsp, reason); }

// Reasons of this module that have no name elsewhere.
inline constexpr int kNoCertificate = 0x11, kNoSlot = 0x12, kNoSigner = 0x14, kNoSignature = 0x17, kNoEncoding = 0x18,
                     kOtherNonce = 0x19, kNoNonce = 0x1A, kNoDigest = 0x1B, kOtherKey = 0x29, kNoKeyIdentifier = 0xFF;

inline constexpr std::string_view kNonceOid = "1.3.6.1.5.5.7.48.1.2";
inline constexpr std::string_view kBasicOid = "1.3.6.1.5.5.7.48.1.1";

int decode(const Tlv &tlv, OCSP_CERT_ID &out) noexcept;
int encode(const OCSP_CERT_ID &id, DerWriter &out) noexcept;
int encode(const OCSP_TBS_REQUEST &tbs, DerWriter &out) noexcept;
int encode(const OCSP_REVOKED_INFO &info, DerWriter &out) noexcept;
int decode(const Tlv &tlv, OCSP_SINGLE_RESPONSE &out) noexcept;
int encode(const OCSP_SINGLE_RESPONSE &response, DerWriter &out) noexcept;
int decode(const Tlv &tlv, OCSP_RESPONSE_DATA &out) noexcept;
int encode(const OCSP_RESPONSE_DATA &data, DerWriter &out) noexcept;
int decode(const Tlv &tlv, BASIC_OCSP_RESPONSE &out) noexcept;
int encode(const BASIC_OCSP_RESPONSE &basic, DerWriter &out) noexcept;

// What the codecs share. Encoders of other modules give their own codes, which become this module's.
inline int as_ocsp(int code) noexcept {
  return code ? ocsp_failure(reason_of(code) == kNoMemory ? kNoMemory : ERR_ASN1_ENCODING) : 0;
}
inline bool take(Cursor &in, uint8_t identifier, Tlv &out) noexcept {
  return in.next(out) && (out.identifier == identifier || in.stop(Read::malformed));
}
inline bool ends(Cursor &in) noexcept { return in.at_end() || in.stop(Read::malformed); }
// The one value inside an explicit tag.
inline bool take_inside(Cursor &in, const Tlv &wrapper, Tlv &out) noexcept {
  Cursor inner(wrapper);
  return inner.next(out) && ends(inner) ? true : in.absorb(inner);
}
inline bool take_explicit(Cursor &in, int n, Tlv &out) noexcept {
  Tlv wrapper;
  return take(in, tag::explicit_context(n), wrapper) && take_inside(in, wrapper, out);
}
inline bool read_time_text(Cursor &in, const Tlv &tlv, ASN1_STRING *&out) noexcept {
  if (tlv.identifier != TYPE_GENERALIZED_TIME) return in.stop(Read::malformed);
  return in.keep(read_string(tlv, TYPE_GENERALIZED_TIME, out));
}
bool read_small_number(Cursor &in, const Tlv &tlv, int type, int &out) noexcept;
void write_small_number(int type, int number, DerWriter &out) noexcept;
bool read_version(Cursor &in, int &out) noexcept;  // [0] EXPLICIT INTEGER DEFAULT v1
int write_version(int version, DerWriter &out) noexcept;
bool read_extensions(Cursor &in, const Tlv &tlv, X509_EXTENSIONS *&out) noexcept;
int write_extensions(int n, const X509_EXTENSIONS *extensions, DerWriter &out) noexcept;  // nothing for an empty list
// [0] EXPLICIT SEQUENCE OF Certificate OPTIONAL, at the end.
bool read_certificates(Cursor &in, X509_CERTIFICATES *&out) noexcept;
int write_certificates(const X509_CERTIFICATES *certs, DerWriter &out) noexcept;

// A name or certificate inside a message has the standard form, whatever the message is written in.
inline Tlv in_standard_form(Tlv tlv) noexcept {
  tlv.rules.standard = tlv.rules.x690 = true;
  return tlv;
}
template <class F>
int write_in_standard_form(DerWriter &out, F &&write) noexcept {
  DerWriter own(kStandardRules);
  if (const int code = write(own)) return as_ocsp(code);
  if (own.failed()) return own.result(kOcsp);
  out.raw(own.written());
  return 0;
}
template <class R>
int write_member(const R *member, DerWriter &out) noexcept {
  return member ? as_ocsp(encode(*member, out)) : ocsp_failure(ERR_ASN1_ENCODING);
}

// Requests and responses as a caller's: a copy of a certificate as the only element of a list.
X509_CERTIFICATES *list_of_one(const X509_CERT &cert) noexcept;
// The nonce extension: found, or appended with these octets as its value.
inline const X509_EXTENSION *find_nonce(const X509_EXTENSIONS *extensions) noexcept {
  return find_extension(extensions, kNonceOid);
}
int add_nonce(X509_EXTENSIONS *&extensions, Octets value) noexcept;

// What a certificate says about itself in its received octets, or in its members where none are kept: the encoded
// issuer, and the serial number with its sign.
int read_issuer_and_serial(const X509_CERT &cert, DerWriter &issuer, owned<BIGINT> &serial) noexcept;
int new_cert_id(const X509_CERT &cert, const X509_CERT &issuer, int digest_id, owned<OCSP_CERT_ID> &out) noexcept;
bool same_cert_id(const OCSP_CERT_ID &a, const OCSP_CERT_ID &b) noexcept;

// Signatures in house form, where the algorithm follows from the digest and the key decides the rest.
struct HouseSigned {
  owned<X509_ALGO_IDENTIFIER> algorithm;
  owned<ASN1_STRING> signature;
};
int sign_house(Octets tbs, const ASYMMETRIC_KEY &key, int digest_id, HouseSigned &out) noexcept;
int sign_standard(Octets tbs, const ASYMMETRIC_KEY &key, const OBJECT_IDENTIFIER &algorithm, HouseSigned &out) noexcept;
int verify_house(const X509_CERT &signer, const ASN1_STRING &tbs, const X509_ALGO_IDENTIFIER *algorithm,
                 const ASN1_STRING &signature) noexcept;
int verify_standard(const X509_PUBKEY &key, const ASN1_STRING &tbs, const X509_ALGO_IDENTIFIER *algorithm,
                    const ASN1_STRING &signature) noexcept;

}  // namespace velpki
