// OCSP: records, and messages through everything that looks into them.
#include <velpki/ocsp.h>

#include "target.h"

namespace {

void responses(const uint8_t *data, int size) {
  static const unsigned char nonce[4] = {1, 0, 2, 3};
  Owned<OCSP_RESPONSE> response;
  Owned<BASIC_OCSP_RESPONSE> strict;
  if (readDER_OCSP_RESPONSE_from_Binary(&response, data, size)) return require(!response, "failure leaves no record");
  const Owned<BASIC_OCSP_RESPONSE> basic(get_BASIC_OCSP_RESPONSE(response));
  verify_BASIC_OCSP_RESPONSE(basic, nullptr, nonce, sizeof nonce);
  get_CERT_STATUS_from_OCSP_RESPONSE(basic, nullptr);
  if (get_BASIC_OCSP_RESPONSE_strict(response, &strict) == 0 && strict->certs && strict->certs->count > 0) {
    auto *cert = static_cast<X509_CERT *>(get_STACK_value(strict->certs, 0));
    verify_BASIC_OCSP_RESPONSE_strict(strict, cert, cert, nullptr, 0, nullptr, 0, nullptr);
  }
}

void requests(const uint8_t *data, int size) {
  unsigned char nonce[8];
  Owned<OCSP_REQUEST> request;
  if (readDER_OCSP_REQUEST_from_Binary(&request, data, size)) return require(!request, "failure leaves no record");
  verify_OCSP_REQUEST(request, nullptr);
  verify_OCSP_REQUEST_strict(request, get_OCSP_REQUEST_signature_cert(request));
  const int length = get_OCSP_REQUEST_nonce_length(request);
  const int code = get_OCSP_REQUEST_nonce(request, nonce, sizeof nonce);
  require(code != 0 || length <= int(sizeof nonce), "no more than the room");
}

constexpr Target kTargets[] = {
    {"ocsp_response_message", responses},
    {"ocsp_request_message", requests},
    {"ocsp_request", FAMILY(OCSP_REQUEST, dup_OCSP_REQUEST)},
    {"ocsp_response_data", FAMILY(OCSP_RESPONSE_DATA, dup_OCSP_RESPONSE_DATA)},
    {"ocsp_basic", FAMILY(BASIC_OCSP_RESPONSE, dup_BASIC_OCSP_RESPONSE)},
};

const Registered kRegistered(kTargets);

}  // namespace
