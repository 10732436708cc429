// Whether an OCSP response is an authorised and current answer about one certificate (RFC 6960 3.2, 4.2.2).
#include <velpki/asn1_error.h>

#include "asn1/internal/calendar.h"
#include "asn1/internal/encoded_time.h"
#include "validation/internal/ocsp.h"

namespace velpki {

namespace {

struct Question {
  const BASIC_OCSP_RESPONSE &response;
  const X509_CERT &cert, &issuer;
  Octets nonce;
  const X509_TIME *time;
  unsigned flags;
};

// The responder.

constexpr int kMostCandidates = 8;  // certificates whose signature is looked at

bool names(const OCSP_RESPONDER_ID &id, const X509_CERT &cert) noexcept {
  if (!id.value) return false;
  if (id.type == OCSP_RESPONDER_BY_NAME) {
    return cmp_X509_NAME_RFC5280(static_cast<const X509_NAME *>(id.value), get_X509_subject(&cert)) == 0;
  }
  uint8_t hash[PKV_MAX_DIGEST_LENGTH];
  const int length = get_X509_PUBLIC_KEY_hash_RFC5280(&cert, PKV_DIGEST_SHA1, hash);
  const Octets theirs = octets(*static_cast<const ASN1_STRING *>(id.value));
  return length > 0 && theirs.size() == size_t(length) && std::memcmp(theirs.data(), hash, theirs.size()) == 0;
}

bool may_sign_ocsp(const X509_CERT &cert) noexcept {
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), "2.5.29.37");
  STACK *purposes = nullptr;
  if (!extension || X509_EXTENSION_to_EXTENDED_KEY_USAGE_RFC5280(extension, &purposes)) return false;
  bool found = false;
  for (const OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(purposes))
    found = found || (each && text(*each) == "1.3.6.1.5.5.7.3.9");
  free_EXTENDED_KEY_USAGE(purposes);
  return found;
}

// Where the certificate says what its key is for, signing must be among it.
bool may_sign(const X509_CERT &cert) noexcept {
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), "2.5.29.15");
  if (!extension) return true;
  BIT_STRING *read = nullptr;
  if (X509_EXTENSION_to_KEY_USAGE_RFC5280(extension, &read)) return false;
  const owned<ASN1_STRING> usage(read);
  return has_KEY_USAGE(read, KEY_USAGE_DIGITAL_SIGNATURE) || has_KEY_USAGE(read, KEY_USAGE_NON_REPUDIATION);
}

bool has_unknown_critical(const X509_EXTENSIONS *extensions, std::initializer_list<std::string_view> known) noexcept {
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(extensions)) {
    if (!each || !each->critical) continue;
    const std::string_view oid = each->object ? text(*each->object) : std::string_view();
    if (std::find(known.begin(), known.end(), oid) == known.end()) return true;
  }
  return false;
}

// A certificate that the issuer issued for answering in its place (RFC 6960 4.2.2.2).
bool is_delegated(const Question &asked, const X509_CERT &cert) noexcept {
  return cmp_X509_NAME_RFC5280(get_X509_issuer(&cert), get_X509_subject(&asked.issuer)) == 0 && may_sign_ocsp(cert) &&
         may_sign(cert) && verify_X509_validity_RFC5280(&cert, asked.time) == 0 &&
         !has_unknown_critical(get_X509_extensions(&cert), {"2.5.29.15", "2.5.29.19", "2.5.29.32", "2.5.29.37"}) &&
         verify_SIG_X509_CERT_RFC5280(&cert, get_X509_SPKI(&asked.issuer)) == 0;
}

int verify_by(const Question &asked, const X509_CERT &signer) noexcept {
  const X509_PUBKEY *key = get_X509_SPKI(&signer);
  if (!key) return ocsp_failure(kNullArgument);
  const BASIC_OCSP_RESPONSE &response = asked.response;
  return verify_standard(*key, *response.encoded, response.signatureAlgorithm, *response.signature);
}

// The first authorised signer that the responder ID names decides.
int check_responder(const Question &asked) noexcept {
  const OCSP_RESPONDER_ID *id = asked.response.tbsResponseData->responderID;
  if (!id) return ocsp_failure(ERR_OCSP_RESPONDER);
  int left = kMostCandidates, last = ocsp_failure(ERR_OCSP_RESPONDER);
  if (names(*id, asked.issuer) && !(last = verify_by(asked, asked.issuer))) return 0;
  for (const X509_CERT *each : elements<X509_CERT>(asked.response.certs)) {
    if (!each || !names(*id, *each)) continue;
    if (--left < 0) break;
    if (is_delegated(asked, *each)) return verify_by(asked, *each);
  }
  return last;
}

// The entry.

constexpr int kClockSkew = 300;  // seconds by which clocks may differ, where that is allowed

bool instant_of_update(const GENERALIZED_TIME *time, int64_t &instant) noexcept {
  return instant_of_certificate_time(TYPE_GENERALIZED_TIME, time, instant);
}

int check_time(const Question &asked, const OCSP_SINGLE_RESPONSE &single) noexcept {
  const owned<ASN1_TIME> time = asked.time ? time_of(*asked.time) : owned<ASN1_TIME>(getCurrentLocalTime());
  const int64_t skew = asked.flags & OCSP_ALLOW_CLOCK_SKEW ? kClockSkew : 0;
  int64_t now, from, until;
  if (!time) return ocsp_failure(asked.time ? ERR_INVALID_X509_TIME_TYPE : kNoMemory);
  if (!instant_of(*time, now)) return ocsp_failure(ERR_INVALID_X509_TIME_TYPE);
  if (!instant_of_update(single.thisUpdate, from) || from > now + skew) return ocsp_failure(ERR_OCSP_THIS_UPDATE);
  if (!single.nextUpdate && asked.flags & OCSP_ALLOW_NO_NEXT_UPDATE) return 0;
  const bool current = instant_of_update(single.nextUpdate, until) && until >= now - skew;
  return current ? 0 : ocsp_failure(ERR_OCSP_NEXT_UPDATE);
}

// The serial number is compared first: the hashes cost something, and a stranger's list may be long.
int find_entry(const Question &asked, const OCSP_SINGLE_RESPONSE *&out) noexcept {
  DerWriter issuer(kStandardRules);
  owned<BIGINT> serial;
  if (cmp_X509_NAME_RFC5280(get_X509_issuer(&asked.cert), get_X509_subject(&asked.issuer)) != 0) {
    return ocsp_failure(ERR_OCSP_CERT_ID);
  }
  if (const int code = read_issuer_and_serial(asked.cert, issuer, serial)) return code;
  for (const OCSP_SINGLE_RESPONSE *each : elements<OCSP_SINGLE_RESPONSE>(asked.response.tbsResponseData->responses)) {
    if (!each || !each->certID || PKV_Cmp_BIGINT(each->certID->serialNumber, serial.get()) != 0) continue;
    const int code = match_OCSP_CERT_ID(each->certID, &asked.cert, &asked.issuer);
    if (reason_of(code) == kNoMemory) return code;
    if (!code) return out = each, 0;
  }
  return ocsp_failure(ERR_OCSP_CERT_ID);
}

int check_entry(const Question &asked, const OCSP_SINGLE_RESPONSE *&out) noexcept {
  const OCSP_SINGLE_RESPONSE *found = nullptr;
  if (const int code = find_entry(asked, found)) return code;
  if (has_unknown_critical(found->singleExtensions, {})) return ocsp_failure(ERR_UNKNOWN_EXTENSION);
  if (const int code = check_time(asked, *found)) return code;
  if (!found->certStatus) return ocsp_failure(kNullArgument);
  out = found;
  return 0;
}

// The message.

// Nonce ::= OCTET STRING
int check_nonce(const Question &asked) noexcept {
  if (asked.nonce.empty()) return 0;
  const X509_EXTENSION *extension = find_nonce(asked.response.tbsResponseData->responseExtensions);
  if (!extension) return ocsp_failure(kNoNonce);
  Rules rules = kStandardRules;
  Tlv theirs;
  const Octets value = octets(*extension->value);
  const bool whole = Tlv::parse(value, rules, theirs) && theirs.identifier == TYPE_OCTET_STRING &&
                     theirs.whole.size() == value.size() && theirs.content.size() == asked.nonce.size();
  const bool same = whole && PKV_Equal_Secret(theirs.content.data(), asked.nonce.data(), asked.nonce.size());
  return same ? 0 : ocsp_failure(kOtherNonce);
}

int check_parts(const Question &asked) noexcept {
  const BASIC_OCSP_RESPONSE &response = asked.response;
  if (!response.tbsResponseData) return ocsp_failure(kNullArgument);
  if (!response.encoded) return ocsp_failure(kNoEncoding);
  return response.signature ? 0 : ocsp_failure(kNoSignature);
}

int check_extensions(const Question &asked) noexcept {
  const bool unknown = has_unknown_critical(asked.response.tbsResponseData->responseExtensions, {kNonceOid});
  return unknown ? ocsp_failure(ERR_UNKNOWN_EXTENSION) : check_nonce(asked);
}

int answer_to(const Question &asked, const OCSP_SINGLE_RESPONSE *&out) noexcept {
  const OCSP_SINGLE_RESPONSE *found = nullptr;
  for (const auto check : {check_parts, check_responder, check_extensions})
    if (const int code = check(asked)) return code;
  if (const int code = check_entry(asked, found)) return code;
  out = found;
  return 0;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int verify_BASIC_OCSP_RESPONSE_strict(const BASIC_OCSP_RESPONSE *response, const X509_CERT *cert,
                                      const X509_CERT *issuer, const unsigned char *nonce, int nonce_len,
                                      const X509_TIME *time, unsigned flags,
                                      const OCSP_SINGLE_RESPONSE **answer) noexcept {
  if (answer) *answer = nullptr;
  if (!response || !cert || !issuer) return ocsp_failure(kNullArgument);
  const Octets asked = octets_of(nonce, nonce_len);
  if (nonce && asked.empty()) return ocsp_failure(kBadValue);
  const OCSP_SINGLE_RESPONSE *found = nullptr;
  const int code = answer_to({*response, *cert, *issuer, asked, time, flags}, found);
  if (answer) *answer = found;
  return code;
}
