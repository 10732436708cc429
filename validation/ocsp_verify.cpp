// What an OCSP message says and whether its signature is that of a given certificate.
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"

namespace velpki {

namespace {

// The parts of a signed message.
struct Message {
  const X509_CERT *signer;  // of the caller; null asks for the first one carried
  const STACK *carried;
  const ASN1_STRING *encoded;
  const X509_ALGO_IDENTIFIER *algorithm;
  const ASN1_STRING *signature;
};

int verify_message(const Message &message) noexcept {
  const X509_CERT *signer = message.signer ? message.signer : element<X509_CERT>(message.carried, 0);
  if (!signer) return ocsp_failure(kNoSigner);
  if (!message.encoded) return ocsp_failure(kNoEncoding);
  if (!message.signature) return ocsp_failure(kNoSignature);
  return verify_house(*signer, *message.encoded, message.algorithm, *message.signature);
}

// The length is compared in full, the octets up to the first zero.
int check_nonce(const BASIC_OCSP_RESPONSE &response, Octets nonce) noexcept {
  const OCSP_RESPONSE_DATA *data = response.tbsResponseData;
  const X509_EXTENSION *extension = data ? find_nonce(data->responseExtensions) : nullptr;
  if (!extension) return ocsp_failure(kNoNonce);
  const Octets theirs = octets(*extension->value);
  if (theirs.size() != nonce.size()) return ocsp_failure(kOtherNonce);
  const int difference = std::strncmp(reinterpret_cast<const char *>(theirs.data()),
                                      reinterpret_cast<const char *>(nonce.data()), nonce.size());
  return difference == 0 ? 0 : ocsp_failure(kOtherNonce);
}

// The record inside the response, decoded by the rules given.
int decode_basic(const OCSP_RESPONSE &response, Rules rules, BASIC_OCSP_RESPONSE **out) noexcept {
  const OCSP_RESPONSE_BYTES *bytes = response.responseBytes;
  if (response.responseStatus != OCSP_SUCCESSFUL) return ocsp_failure(ERR_OCSP_STATUS);
  if (!bytes || !bytes->responseType || !bytes->response) return ocsp_failure(kNullArgument);
  if (text(*bytes->responseType) != kBasicOid) return ocsp_failure(kUnsupported);
  Tlv tlv;
  const Octets octets = velpki::octets(*bytes->response);
  if (!Tlv::parse(octets, rules, tlv)) return ocsp_failure(ERR_ASN1_DECODING);
  if (rules.standard && tlv.whole.size() != octets.size()) return ocsp_failure(ERR_TRAILING_OCTETS);
  if (!tlv.fits(tag::kSequence)) return ocsp_failure(ERR_ASN1_DECODING);
  return from_tlv(kOcsp, tlv, out, decode);
}

const STACK *responses_of(const BASIC_OCSP_RESPONSE *response) noexcept {
  return response && response->tbsResponseData ? response->tbsResponseData->responses : nullptr;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

BASIC_OCSP_RESPONSE *get_BASIC_OCSP_RESPONSE(OCSP_RESPONSE *response) noexcept {
  BASIC_OCSP_RESPONSE *basic = nullptr;
  return response && decode_basic(*response, {}, &basic) == 0 ? basic : nullptr;
}
int get_BASIC_OCSP_RESPONSE_strict(const OCSP_RESPONSE *response, BASIC_OCSP_RESPONSE **out) noexcept {
  return response && out ? decode_basic(*response, kStandardRules, out) : ocsp_failure(kNullArgument);
}

int verify_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE *response, X509_CERT *signer_cert, const unsigned char *nonce,
                               int nonce_len) noexcept {
  if (!response) return ocsp_failure(kNullArgument);
  const int code = verify_message(
      {signer_cert, response->certs, response->encoded, response->signatureAlgorithm, response->signature});
  const Octets asked = octets_of(nonce, nonce_len);
  return code || asked.empty() ? code : check_nonce(*response, asked);
}
int verfy_BASIC_OCSP_RESPONSE(BASIC_OCSP_RESPONSE *response, X509_CERT *signer_cert, const unsigned char *nonce,
                              int nonce_len) noexcept {
  return verify_BASIC_OCSP_RESPONSE(response, signer_cert, nonce, nonce_len);
}

int verify_OCSP_REQUEST(OCSP_REQUEST *request, X509_CERT *signer) noexcept {
  if (!request) return ocsp_failure(kNullArgument);
  const OCSP_SIGNATURE *signature = request->optionalSignature;
  if (!signature) return ocsp_failure(kNoSignature);
  return verify_message(
      {signer, signature->certs, request->encoded, signature->signatureAlgorithm, signature->signature});
}
int verify_OCSP_REQUEST_strict(const OCSP_REQUEST *request, const X509_CERT *signer) noexcept {
  const X509_PUBKEY *key = get_X509_SPKI(signer);
  if (!request || !key) return ocsp_failure(kNullArgument);
  const OCSP_SIGNATURE *signature = request->optionalSignature;
  if (!signature || !signature->signature) return ocsp_failure(kNoSignature);
  if (!request->encoded) return ocsp_failure(kNoEncoding);
  return verify_standard(*key, *request->encoded, signature->signatureAlgorithm, *signature->signature);
}

int get_CERT_STATUS_count_from_OCSP_RESPONSE(const BASIC_OCSP_RESPONSE *response) noexcept {
  const STACK *list = responses_of(response);
  return response ? (list ? list->count : 0) : -1;
}
OCSP_CERT_STATUS *get_CERT_STATUS_from_OCSP_RESPONSE_index(const BASIC_OCSP_RESPONSE *response, int i) noexcept {
  const OCSP_SINGLE_RESPONSE *single = element<OCSP_SINGLE_RESPONSE>(responses_of(response), i);
  return single ? single->certStatus : nullptr;
}
OCSP_CERT_STATUS *get_CERT_STATUS_from_OCSP_RESPONSE(const BASIC_OCSP_RESPONSE *response,
                                                     const OCSP_CERT_ID *id) noexcept {
  const STACK *list = responses_of(response);
  if (!id) return list && list->count == 1 ? get_CERT_STATUS_from_OCSP_RESPONSE_index(response, 0) : nullptr;
  for (const OCSP_SINGLE_RESPONSE *each : elements<OCSP_SINGLE_RESPONSE>(list))
    if (each && each->certID && same_cert_id(*each->certID, *id)) return each->certStatus;
  return nullptr;
}
