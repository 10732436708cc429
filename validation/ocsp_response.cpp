// The responder's side of OCSP: responses made and signed.
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"

namespace velpki {

namespace {

int new_status(int type, const OCSP_REVOKED_INFO *revoked, owned<OCSP_CERT_STATUS> &out) noexcept {
  if (type < OCSP_STATUS_GOOD || type > OCSP_STATUS_UNKNOWN) return ocsp_failure(kBadValue);
  if (type == OCSP_STATUS_REVOKED && !revoked) return ocsp_failure(kNullArgument);
  out.reset(blank<OCSP_CERT_STATUS>());
  if (!out) return ocsp_failure(kNoMemory);
  out->type = type;
  if (type == OCSP_STATUS_REVOKED && !(out->revokedInfo = dup_OCSP_REVOKED_INFO(revoked))) {
    return ocsp_failure(kNoMemory);
  }
  return 0;
}

// A copy into a member; null is none.
template <class T>
bool copied(const T *source, T *&member) noexcept {
  return !source || (member = Flat<T>::copy(source));
}
bool copied_list(const X509_EXTENSIONS *source, X509_EXTENSIONS *&member) noexcept {
  return !source || (member = copy_list<X509_EXTENSION>(source));
}

constexpr int kSecondsAndZ = 2;

int set_now(GENERALIZED_TIME *&out) noexcept {
  const owned<ASN1_TIME> now(getCurrentGMTime());
  if (!now) return ocsp_failure(kFailedStep);
  out = asn1TimeToGENERALIZED_TIME(now.get(), kSecondsAndZ);
  return out ? 0 : ocsp_failure(kNoMemory);
}

int set_key_hash(const X509_CERT &responder, OCSP_RESPONDER_ID &id) noexcept {
  uint8_t hash[PKV_MAX_DIGEST_LENGTH];
  const int length = get_X509_PUBLIC_KEY_hash_RFC5280(&responder, PKV_DIGEST_SHA1, hash);
  if (length <= 0) return ocsp_failure(kNullArgument);
  id.type = OCSP_RESPONDER_BY_KEY;
  id.value = new_string(TYPE_OCTET_STRING, octets_of(hash, length));
  return id.value ? 0 : ocsp_failure(kNoMemory);
}
int set_name(const X509_CERT &responder, OCSP_RESPONDER_ID &id) noexcept {
  const X509_NAME *subject = get_X509_subject(&responder);
  if (!subject) return ocsp_failure(kNullArgument);
  id.type = OCSP_RESPONDER_BY_NAME;
  id.value = dup_X509_NAME(subject);
  return id.value ? 0 : ocsp_failure(kNoMemory);
}

// Signs encoded response data into a basic response with a copy of the data.
template <class Sign>
int sign_data(const OCSP_RESPONSE_DATA &data, const X509_CERTIFICATES *certs, Rules rules, Sign &&sign,
              BASIC_OCSP_RESPONSE **out) noexcept {
  DerWriter der(rules);
  HouseSigned made;
  if (const int code = encode(data, der)) return code;
  if (const int code = sign(der.written(), made)) return code;
  owned<BASIC_OCSP_RESPONSE> basic(blank<BASIC_OCSP_RESPONSE>());
  if (!basic) return ocsp_failure(kNoMemory);
  basic->tbsResponseData = dup_OCSP_RESPONSE_DATA(&data);
  basic->encoded = new_string(TYPE_OCTET_STRING, der.written());
  basic->signatureAlgorithm = made.algorithm.release();
  basic->signature = made.signature.release();
  if (!basic->tbsResponseData || !basic->encoded) return ocsp_failure(kNoMemory);
  if (certs && !(basic->certs = copy_list<X509_CERT>(certs))) return ocsp_failure(kNoMemory);
  return store(std::move(basic), out);
}

bool is_status(int status) noexcept {
  return status == OCSP_SIG_REQUIRED || status == OCSP_UNAUTHORIZED ||
         (status >= OCSP_SUCCESSFUL && status <= OCSP_TRY_LATER);
}

int new_bytes(const BASIC_OCSP_RESPONSE &basic, owned<OCSP_RESPONSE_BYTES> &out) noexcept {
  DerWriter der;
  if (const int code = encode(basic, der)) return code;
  out.reset(blank<OCSP_RESPONSE_BYTES>());
  if (!out) return ocsp_failure(kNoMemory);
  out->responseType = new_OBJECT_IDENTIFIER(kBasicOid.data(), int(kBasicOid.size()));
  out->response = new_string(TYPE_OCTET_STRING, der.written());
  return out->responseType && out->response ? 0 : ocsp_failure(kNoMemory);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int add_single_OCSP_RESPONSE(STACK **responses, const OCSP_CERT_ID *id, int status, const OCSP_REVOKED_INFO *revoked,
                             const GENERALIZED_TIME *this_update, const GENERALIZED_TIME *next_update,
                             const X509_EXTENSIONS *extensions) noexcept {
  if (!responses || !id || !this_update) return ocsp_failure(kNullArgument);
  owned<OCSP_CERT_STATUS> certStatus;
  if (const int code = new_status(status, revoked, certStatus)) return code;
  owned<OCSP_SINGLE_RESPONSE> single(blank<OCSP_SINGLE_RESPONSE>());
  if (!single) return ocsp_failure(kNoMemory);
  single->certStatus = certStatus.release();
  const bool whole = copied(id, single->certID) && copied(this_update, single->thisUpdate) &&
                     copied(next_update, single->nextUpdate) && copied_list(extensions, single->singleExtensions);
  if (!whole) return ocsp_failure(kNoMemory);
  STACK *const list = *responses ? *responses : new_STACK();
  if (!append(list, single)) {
    if (!*responses) free_STACK(list);
    return ocsp_failure(kNoMemory);
  }
  *responses = list;
  return 0;
}

int generate_OCSP_RESPONSE_DATA(OCSP_RESPONSE_DATA **data, X509_CERT *responder, int by_key, STACK *responses,
                                const unsigned char *nonce, int nonce_len) noexcept {
  if (!data || !responder || !responses) return ocsp_failure(kNullArgument);
  owned<OCSP_RESPONSE_DATA> made(blank<OCSP_RESPONSE_DATA>());
  if (!made || !(made->responderID = blank<OCSP_RESPONDER_ID>())) return ocsp_failure(kNoMemory);
  const auto set_id = by_key ? set_key_hash : set_name;
  if (const int code = set_id(*responder, *made->responderID)) return code;
  if (const int code = set_now(made->producedAt)) return code;
  if (!(made->responses = copy_list<OCSP_SINGLE_RESPONSE>(responses))) return ocsp_failure(kNoMemory);
  if (const Octets value = octets_of(nonce, nonce_len); !value.empty()) {
    if (const int code = add_nonce(made->responseExtensions, value)) return code;
  }
  return store(std::move(made), data);
}

int generate_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE **response, OCSP_RESPONSE_DATA *data, ASYMMETRIC_KEY *key,
                                 X509_CERTIFICATES *certs) noexcept {
  return generate_BASIC_OCSP_RESPONSE_ex(response, data, key, certs, PKV_DIGEST_SHA1);
}
int generate_BASIC_OCSP_RESPONSE_ex(BASIC_OCSP_RESPONSE **response, OCSP_RESPONSE_DATA *data, ASYMMETRIC_KEY *key,
                                    X509_CERTIFICATES *certs, int digest) noexcept {
  if (!response || !data || !key) return ocsp_failure(kNullArgument);
  return sign_data(
      *data, certs, {}, [&](Octets tbs, HouseSigned &out) { return sign_house(tbs, *key, digest, out); }, response);
}
int generate_BASIC_OCSP_RESPONSE_strict(BASIC_OCSP_RESPONSE **response, const OCSP_RESPONSE_DATA *data,
                                        const ASYMMETRIC_KEY *key, const X509_CERTIFICATES *certs,
                                        const OBJECT_IDENTIFIER *algorithm) noexcept {
  if (!response || !data || !key || !algorithm) return ocsp_failure(kNullArgument);
  return sign_data(
      *data, certs, kStandardRules,
      [&](Octets tbs, HouseSigned &out) { return sign_standard(tbs, *key, *algorithm, out); }, response);
}

int generate_OCSP_RESPONSE_BYTES(OCSP_RESPONSE_BYTES **bytes, BASIC_OCSP_RESPONSE *basic) noexcept {
  if (!bytes || !basic) return ocsp_failure(kNullArgument);
  owned<OCSP_RESPONSE_BYTES> made;
  const int code = new_bytes(*basic, made);
  return code ? code : store(std::move(made), bytes);
}

int generate_OCSP_RESPONSE(OCSP_RESPONSE **response, int status, BASIC_OCSP_RESPONSE *basic) noexcept {
  if (!response || (status == OCSP_SUCCESSFUL && !basic)) return ocsp_failure(kNullArgument);
  if (!is_status(status)) return ocsp_failure(kBadValue);
  owned<OCSP_RESPONSE> made(blank<OCSP_RESPONSE>());
  owned<OCSP_RESPONSE_BYTES> bytes;
  if (!made) return ocsp_failure(kNoMemory);
  if (status == OCSP_SUCCESSFUL)
    if (const int code = new_bytes(*basic, bytes)) return code;
  made->responseStatus = status;
  made->responseBytes = bytes.release();
  return store(std::move(made), response);
}
