// The client's side of OCSP: requests made and signed; and the parts of a request, read by a responder.
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"

namespace velpki {

int add_nonce(X509_EXTENSIONS *&extensions, Octets value) noexcept {
  owned<X509_EXTENSION> nonce(blank<X509_EXTENSION>());
  if (!nonce) return ocsp_failure(kNoMemory);
  nonce->object = new_OBJECT_IDENTIFIER(kNonceOid.data(), int(kNonceOid.size()));
  nonce->value = new_string(TYPE_OCTET_STRING, value);
  if (!nonce->object || !nonce->value) return ocsp_failure(kNoMemory);
  if (!extensions && !(extensions = new_STACK())) return ocsp_failure(kNoMemory);
  return append(extensions, nonce) ? 0 : ocsp_failure(kNoMemory);
}

namespace {

constexpr std::string_view kSubjectKeyIdentifier = "2.5.29.14", kAuthorityKeyIdentifier = "2.5.29.35";
constexpr int kDrawnNonce = 16, kLongestNonce = 128;

// The nonce of the caller, or one that is drawn.
struct Nonce {
  uint8_t drawn[kDrawnNonce];
  Octets octets;
  int take(const unsigned char *given, int length) noexcept {
    octets = octets_of(given, length);
    if (!octets.empty()) return 0;
    octets = drawn;
    return PKV_Rand_Bytes(drawn, kDrawnNonce);
  }
};

// The one value of a certificate's extension; false when it is missing or unreadable.
bool extension_value(const X509_CERT &cert, std::string_view oid, Tlv &out) noexcept {
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), oid);
  Rules rules;
  return extension && Tlv::parse(octets(*extension->value), rules, out);
}

// What stands for the hash of the issuer's key: the key identifier of the issuer's certificate or, without that, the
// one by which the certificate names its issuer's key.
Octets key_identifier(const X509_CERT &cert, const X509_CERT *issuer) noexcept {
  Tlv value, member;
  if (issuer) {
    const bool found = extension_value(*issuer, kSubjectKeyIdentifier, value);
    return found && value.identifier == TYPE_OCTET_STRING ? value.content : Octets();
  }
  if (!extension_value(cert, kAuthorityKeyIdentifier, value)) return {};
  for (Cursor in(value); !in.at_end() && in.next(member);)
    if (member.identifier == tag::implicit_context(0)) return member.content;
  return {};
}

int house_cert_id(const X509_CERT &cert, const X509_CERT *issuer, owned<OCSP_CERT_ID> &out) noexcept {
  if (!get_X509_issuer(&cert) || !get_X509_serial(&cert)) return ocsp_failure(kNullArgument);
  owned<OCSP_CERT_ID> id(blank<OCSP_CERT_ID>());
  owned<X509_ALGO_IDENTIFIER> sha1 = new_algorithm(oid_of_row(get_OID_from_DigestID(PKV_DIGEST_SHA1)).get());
  if (!id || !sha1) return ocsp_failure(kNoMemory);
  id->hashAlgorithm = sha1.release();
  uint8_t hash[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  if (const int code = hash_X509_NAME(get_X509_issuer(&cert), PKV_DIGEST_SHA1, hash, &length)) return code;
  const Octets key = key_identifier(cert, issuer);
  if (key.empty()) return ocsp_failure(kNoKeyIdentifier);
  id->issuerNameHash = new_string(TYPE_OCTET_STRING, octets_of(hash, length));
  id->issuerKeyHash = new_string(TYPE_OCTET_STRING, key);
  id->serialNumber = PKV_Dup_BIGINT(get_X509_serial(&cert));
  if (!id->issuerNameHash || !id->issuerKeyHash || !id->serialNumber) return ocsp_failure(kNoMemory);
  out = std::move(id);
  return 0;
}

int new_request(owned<OCSP_REQUEST> &out) noexcept {
  out.reset(new_OCSP_REQUEST());
  if (!out || !(out->tbsRequest->requestList = new_STACK())) return ocsp_failure(kNoMemory);
  return 0;
}

int add_request(OCSP_REQUEST &request, owned<OCSP_CERT_ID> id) noexcept {
  owned<OCSP_SINGLE_REQUEST> single(blank<OCSP_SINGLE_REQUEST>());
  if (!single) return ocsp_failure(kNoMemory);
  single->reqCert = id.release();
  return append(request.tbsRequest->requestList, single) ? 0 : ocsp_failure(kNoMemory);
}

int add_house_request(OCSP_REQUEST &request, const X509_CERT &cert, const X509_CERT *issuer) noexcept {
  owned<OCSP_CERT_ID> id;
  const int code = house_cert_id(cert, issuer, id);
  return code ? code : add_request(request, std::move(id));
}

int add_request_nonce(OCSP_REQUEST &request, const unsigned char *given, int length) noexcept {
  Nonce nonce;
  const int code = nonce.take(given, length);
  return code ? code : add_nonce(request.tbsRequest->requestExtensions, nonce.octets);
}

// Nonce ::= OCTET STRING (RFC 8954 2.1)
int add_wrapped_nonce(OCSP_REQUEST &request, const unsigned char *given, int length) noexcept {
  Nonce nonce;
  if (length > kLongestNonce) return ocsp_failure(kBadValue);
  if (const int code = nonce.take(given, length)) return code;
  DerWriter value;
  value.primitive(TYPE_OCTET_STRING, nonce.octets);
  if (value.failed()) return value.result(kOcsp);
  return add_nonce(request.tbsRequest->requestExtensions, value.written());
}

int fill_multi(OCSP_REQUEST &request, const STACK &certs, const STACK *issuers) noexcept {
  for (int i = 0; i < certs.count; ++i) {
    const X509_CERT *cert = element<X509_CERT>(&certs, i);
    if (!cert) return ocsp_failure(kNoCertificate);
    const X509_CERT *issuer = issuers && i < issuers->count ? element<X509_CERT>(issuers, i) : nullptr;
    if (const int code = add_house_request(request, *cert, issuer)) return code;
  }
  return 0;
}

// The subject of the signer's certificate, where no requestor is named.
int name_requestor(OCSP_TBS_REQUEST &tbs, const X509_CERT *cert) noexcept {
  const X509_NAME *subject = get_X509_subject(cert);
  if (tbs.requestorName || !subject) return 0;
  owned<GENERAL_NAME> name(new_GENERAL_NAME());
  if (!name) return ocsp_failure(kNoMemory);
  name->type = GENERAL_NAME_DIRECTORY;
  name->value = dup_X509_NAME(subject);
  if (!name->value) return ocsp_failure(kNoMemory);
  tbs.requestorName = name.release();
  return 0;
}

int new_signature(HouseSigned made, const X509_CERT *cert, owned<OCSP_SIGNATURE> &out) noexcept {
  out.reset(blank<OCSP_SIGNATURE>());
  if (!out) return ocsp_failure(kNoMemory);
  out->signatureAlgorithm = made.algorithm.release();
  out->signature = made.signature.release();
  return !cert || (out->certs = list_of_one(*cert)) ? 0 : ocsp_failure(kNoMemory);
}

// Signs a copy, which takes the place of what the request holds when all is done.
template <class Sign>
int sign_request(OCSP_REQUEST &request, const X509_CERT *cert, Sign &&sign) noexcept {
  owned<OCSP_TBS_REQUEST> tbs(dup_OCSP_TBS_REQUEST(request.tbsRequest));
  if (!tbs) return ocsp_failure(kNoMemory);
  if (const int code = name_requestor(*tbs, cert)) return code;
  DerWriter der;
  HouseSigned made;
  owned<OCSP_SIGNATURE> signature;
  if (const int code = encode(*tbs, der)) return code;
  if (const int code = sign(der.written(), made)) return code;
  if (const int code = new_signature(std::move(made), cert, signature)) return code;
  owned<ASN1_STRING> encoded(new_string(TYPE_OCTET_STRING, der.written()));
  if (!encoded) return ocsp_failure(kNoMemory);
  free_OCSP_TBS_REQUEST(std::exchange(request.tbsRequest, tbs.release()));
  free_OCSP_SIGNATURE(std::exchange(request.optionalSignature, signature.release()));
  free_ASN1_STRING(std::exchange(request.encoded, encoded.release()));
  return 0;
}

const X509_EXTENSION *request_nonce(const OCSP_REQUEST *req) noexcept {
  return req && req->tbsRequest ? find_nonce(req->tbsRequest->requestExtensions) : nullptr;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int generate_single_OCSP_REQUEST(OCSP_REQUEST **request, X509_CERT *cert, X509_CERT *issuer_cert,
                                 const unsigned char *nonce, int nonce_len) noexcept {
  if (!request) return ocsp_failure(kNoSlot);
  if (!cert) return ocsp_failure(kNoCertificate);
  owned<OCSP_REQUEST> made;
  if (const int code = new_request(made)) return code;
  if (const int code = add_house_request(*made, *cert, issuer_cert)) return code;
  if (const int code = add_request_nonce(*made, nonce, nonce_len)) return code;
  return store(std::move(made), request);
}

int generate_single_OCSP_REQUEST_strict(OCSP_REQUEST **request, const X509_CERT *cert, const X509_CERT *issuer_cert,
                                        int digest, const unsigned char *nonce, int nonce_len) noexcept {
  if (!request) return ocsp_failure(kNoSlot);
  if (!cert || !issuer_cert) return ocsp_failure(kNoCertificate);
  owned<OCSP_REQUEST> made;
  owned<OCSP_CERT_ID> id;
  if (const int code = new_request(made)) return code;
  if (const int code = new_cert_id(*cert, *issuer_cert, digest, id)) return code;
  if (const int code = add_request(*made, std::move(id))) return code;
  if (const int code = add_wrapped_nonce(*made, nonce, nonce_len)) return code;
  return store(std::move(made), request);
}

int generate_multi_OCSP_REQUEST(OCSP_REQUEST **request, STACK *certs, STACK *issuers, const unsigned char *nonce,
                                int nonce_len) noexcept {
  if (!request) return ocsp_failure(kNoSlot);
  if (!certs || certs->count == 0) return ocsp_failure(kNoCertificate);
  owned<OCSP_REQUEST> made;
  if (const int code = new_request(made)) return code;
  if (const int code = fill_multi(*made, *certs, issuers)) return code;
  if (const int code = add_request_nonce(*made, nonce, nonce_len)) return code;
  return store(std::move(made), request);
}

int sign_OCSP_REQUEST(OCSP_REQUEST *request, ASYMMETRIC_KEY *key, X509_CERT *cert) noexcept {
  return sign_OCSP_REQUEST_ex(request, key, cert, PKV_DIGEST_SHA1);
}
int sign_OCSP_REQUEST_ex(OCSP_REQUEST *request, ASYMMETRIC_KEY *key, X509_CERT *cert, int digest) noexcept {
  if (!request || !request->tbsRequest || !key) return ocsp_failure(kNullArgument);
  return sign_request(*request, cert, [&](Octets tbs, HouseSigned &out) { return sign_house(tbs, *key, digest, out); });
}
int sign_OCSP_REQUEST_strict(OCSP_REQUEST *request, const ASYMMETRIC_KEY *key, const X509_CERT *cert,
                             const OBJECT_IDENTIFIER *algorithm) noexcept {
  if (!request || !request->tbsRequest || !key || !algorithm) return ocsp_failure(kNullArgument);
  return sign_request(*request, cert,
                      [&](Octets tbs, HouseSigned &out) { return sign_standard(tbs, *key, *algorithm, out); });
}

int is_OCSP_REQUEST_signature(const OCSP_REQUEST *req) noexcept { return req && req->optionalSignature ? 1 : 0; }
X509_CERT *get_OCSP_REQUEST_signature_cert(const OCSP_REQUEST *req) noexcept {
  return req && req->optionalSignature ? element<X509_CERT>(req->optionalSignature->certs, 0) : nullptr;
}
int get_OCSP_REQUEST_list_count(const OCSP_REQUEST *req) noexcept {
  const STACK *list = get_OCSP_REQUEST_list(req);
  return req ? (list ? list->count : 0) : -1;
}
STACK *get_OCSP_REQUEST_list(const OCSP_REQUEST *req) noexcept {
  return req && req->tbsRequest ? req->tbsRequest->requestList : nullptr;
}
int get_OCSP_REQUEST_nonce_length(const OCSP_REQUEST *req) noexcept {
  const X509_EXTENSION *nonce = request_nonce(req);
  return nonce ? nonce->value->length : 0;
}
int get_OCSP_REQUEST_nonce(const OCSP_REQUEST *req, unsigned char *out, int capacity) noexcept {
  if (!req || !out) return ocsp_failure(kNullArgument);
  const X509_EXTENSION *nonce = request_nonce(req);
  if (!nonce) return ocsp_failure(kNoNonce);
  if (nonce->value->length > capacity) return ocsp_failure(kBadValue);
  copy_octets(out, octets(*nonce->value));
  return 0;
}
