// Asks an OCSP responder about a certificate. Transport is somebody else's (curl, say), so there are two steps:
//   ask_status CERTIFICATE.pem ISSUER.pem REQUEST.der                 writes the request
//   ask_status CERTIFICATE.pem ISSUER.pem REQUEST.der RESPONSE.der    verifies the answer and prints it
// And answers a request with the issuer's key, everything good:
//   ask_status --answer ISSUER.pem ISSUER_KEY.pem REQUEST.der RESPONSE.der
#include <velpki/ocsp.h>

#include <cstring>

#include "example.h"

namespace {

struct ReleaseOcsp {
  void operator()(OCSP_REQUEST *p) const { free_OCSP_REQUEST(p); }
  void operator()(OCSP_RESPONSE *p) const { free_OCSP_RESPONSE(p); }
  void operator()(OCSP_RESPONSE_DATA *p) const { free_OCSP_RESPONSE_DATA(p); }
  void operator()(BASIC_OCSP_RESPONSE *p) const { free_BASIC_OCSP_RESPONSE(p); }
  void operator()(STACK *p) const {
    free_STACK_values(p, [](void *each) { free_OCSP_SINGLE_RESPONSE(static_cast<OCSP_SINGLE_RESPONSE *>(each)); });
  }
};
template <class T>
using ocsp = std::unique_ptr<T, ReleaseOcsp>;

ocsp<OCSP_REQUEST> read_request(const char *path) {
  OCSP_REQUEST *request = nullptr;
  check(readDER_OCSP_REQUEST_from_File(&request, path), path);
  return ocsp<OCSP_REQUEST>(request);
}

void ask(const X509_CERT *cert, const X509_CERT *issuer, const char *path) {
  OCSP_REQUEST *request = nullptr;
  check(generate_single_OCSP_REQUEST_strict(&request, cert, issuer, PKV_DIGEST_SHA1, nullptr, 0), "the request");
  const ocsp<OCSP_REQUEST> owner(request);
  check_written(writeDER_OCSP_REQUEST_to_FILE(request, path), "writeDER_OCSP_REQUEST_to_FILE");
}

// The nonce that was asked with: the octets inside the OCTET STRING of the extension.
struct Nonce {
  unsigned char octets[64];
  int length;
  explicit Nonce(const OCSP_REQUEST *request) : length(get_OCSP_REQUEST_nonce_length(request) - 2) {
    unsigned char wrapped[66];
    check(get_OCSP_REQUEST_nonce(request, wrapped, sizeof wrapped), "get_OCSP_REQUEST_nonce");
    std::memcpy(octets, wrapped + 2, size_t(length));
  }
};

void judge(const X509_CERT *cert, const X509_CERT *issuer, const OCSP_REQUEST *request, const char *path) {
  OCSP_RESPONSE *response = nullptr;
  BASIC_OCSP_RESPONSE *basic = nullptr;
  check(readDER_OCSP_RESPONSE_from_File(&response, path), path);
  const ocsp<OCSP_RESPONSE> owner(response);
  check(get_BASIC_OCSP_RESPONSE_strict(response, &basic), "get_BASIC_OCSP_RESPONSE_strict");
  const ocsp<BASIC_OCSP_RESPONSE> basic_owner(basic);
  const Nonce nonce(request);
  const OCSP_SINGLE_RESPONSE *answer = nullptr;
  check(verify_BASIC_OCSP_RESPONSE_strict(basic, cert, issuer, nonce.octets, nonce.length, nullptr,
                                          OCSP_ALLOW_NO_NEXT_UPDATE, &answer),
        "verify_BASIC_OCSP_RESPONSE_strict");
  const OCSP_CERT_STATUS *status = answer->certStatus;
  const char *const names[] = {"good", "revoked", "unknown"};
  std::printf("  verified answer: %s", names[status->type]);
  if (status->revokedInfo) std::printf(", reason %d", status->revokedInfo->revocationReason);
  std::puts("");
}

ocsp<STACK> all_good(const OCSP_REQUEST *request) {
  const owned<ASN1_TIME> now(getCurrentGMTime());
  const owned<ASN1_STRING> time(asn1TimeToGENERALIZED_TIME(now.get(), 2));
  STACK *entries = nullptr;
  for (int i = 0; i < get_OCSP_REQUEST_list_count(request); ++i) {
    const auto *asked = static_cast<OCSP_SINGLE_REQUEST *>(get_STACK_value(get_OCSP_REQUEST_list(request), i));
    check(add_single_OCSP_RESPONSE(&entries, asked->reqCert, OCSP_STATUS_GOOD, nullptr, time.get(), nullptr, nullptr),
          "add_single_OCSP_RESPONSE");
  }
  return ocsp<STACK>(entries);
}

void answer(X509_CERT *issuer, const ASYMMETRIC_KEY *key, const OCSP_REQUEST *request, const char *path) {
  unsigned char nonce[66];
  const int length = get_OCSP_REQUEST_nonce_length(request);
  if (length) check(get_OCSP_REQUEST_nonce(request, nonce, sizeof nonce), "get_OCSP_REQUEST_nonce");
  OCSP_RESPONSE_DATA *data = nullptr;
  BASIC_OCSP_RESPONSE *basic = nullptr;
  OCSP_RESPONSE *response = nullptr;
  check(generate_OCSP_RESPONSE_DATA(&data, issuer, 0, all_good(request).get(), nonce, length), "the data");
  const ocsp<OCSP_RESPONSE_DATA> data_owner(data);
  const owned<ASN1_STRING> algorithm(new_OBJECT_IDENTIFIER("1.2.840.113549.1.1.11", 21));
  X509_CERTIFICATES *const certs = new_X509_CERTIFICATES();
  check(add_X509_CERTIFICATES(certs, issuer), "add_X509_CERTIFICATES");
  check(generate_BASIC_OCSP_RESPONSE_strict(&basic, data, key, certs, algorithm.get()), "the basic response");
  free_X509_CERTIFICATES(certs);
  const ocsp<BASIC_OCSP_RESPONSE> basic_owner(basic);
  check(generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, basic), "generate_OCSP_RESPONSE");
  const ocsp<OCSP_RESPONSE> owner(response);
  check_written(writeDER_OCSP_RESPONSE_to_FILE(response, path), "writeDER_OCSP_RESPONSE_to_FILE");
}

}  // namespace

int main(int argc, char **argv) {
  if (argc == 6 && std::strcmp(argv[1], "--answer") == 0) {
    answer(read_certificate(argv[2]).get(), read_key(argv[3]).get(), read_request(argv[4]).get(), argv[5]);
    return 0;
  }
  if (argc < 4) usage("ask_status CERTIFICATE.pem ISSUER.pem REQUEST.der [RESPONSE.der]");
  const auto cert = read_certificate(argv[1]), issuer = read_certificate(argv[2]);
  if (argc == 4)
    ask(cert.get(), issuer.get(), argv[3]);
  else
    judge(cert.get(), issuer.get(), read_request(argv[3]).get(), argv[4]);
  return 0;
}
