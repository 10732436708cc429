// An OCSP response that carries its signer's certificate, decoded down to its entries.
#include <benchmark/benchmark.h>
#include <velpki/ocsp.h>

#include <cstdlib>

#include "libcrypto_side.h"
#include "sample.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

ASYMMETRIC_KEY *new_key() {
  RSA_UNIT *rsa = PKV_New_RSA();
  require(PKV_Generate_RSA(rsa, 2048, 0, nullptr, nullptr) == 0);
  ASYMMETRIC_KEY *key = RSA_UNIT_to_ASYMMETRIC_KEY(rsa);
  PKV_Free_RSA(rsa);
  return key;
}

OCSP_RESPONSE_DATA *data_about(X509_CERT *cert, STACK *&entries) {
  OCSP_REQUEST *request = nullptr;
  require(generate_single_OCSP_REQUEST_strict(&request, cert, cert, PKV_DIGEST_SHA1, nullptr, 0) == 0);
  const auto *asked = static_cast<OCSP_SINGLE_REQUEST *>(get_STACK_value(get_OCSP_REQUEST_list(request), 0));
  const unsigned char time[] = "20260101000000Z";
  GENERALIZED_TIME *now = new_GENERALIZED_TIME(time, 15);
  require(add_single_OCSP_RESPONSE(&entries, asked->reqCert, OCSP_STATUS_GOOD, nullptr, now, now, nullptr) == 0);
  OCSP_RESPONSE_DATA *data = nullptr;
  require(generate_OCSP_RESPONSE_DATA(&data, cert, 0, entries, time, 15) == 0);
  free_GENERALIZED_TIME(now);
  free_OCSP_REQUEST(request);
  return data;
}

Bytes response_of(const BASIC_OCSP_RESPONSE *basic) {
  OCSP_RESPONSE *response = nullptr;
  unsigned char *der = nullptr;
  require(generate_OCSP_RESPONSE(&response, OCSP_SUCCESSFUL, const_cast<BASIC_OCSP_RESPONSE *>(basic)) == 0);
  const int length = writeDER_OCSP_RESPONSE_to_Binary(response, &der);
  const Bytes out(der, der + length);
  PKV_Free(der, __FILE__, __LINE__);
  free_OCSP_RESPONSE(response);
  return out;
}

Bytes make_sample() {
  const Certificate cert = decoded(sample_certificate());
  STACK *entries = nullptr;
  X509_CERTIFICATES *certs = new_X509_CERTIFICATES();
  require(add_X509_CERTIFICATES(certs, cert.get()) == 0);
  OCSP_RESPONSE_DATA *data = data_about(cert.get(), entries);
  ASYMMETRIC_KEY *key = new_key();
  OBJECT_IDENTIFIER *algorithm = new_OBJECT_IDENTIFIER("1.2.840.113549.1.1.11", 21);
  BASIC_OCSP_RESPONSE *basic = nullptr;
  require(generate_BASIC_OCSP_RESPONSE_strict(&basic, data, key, certs, algorithm) == 0);
  const Bytes der = response_of(basic);
  free_BASIC_OCSP_RESPONSE(basic);
  free_OBJECT_IDENTIFIER(algorithm);
  free_ASYMMETRIC_KEY(key);
  free_OCSP_RESPONSE_DATA(data);
  free_X509_CERTIFICATES(certs);
  free_STACK_values(entries, [](void *each) { free_OCSP_SINGLE_RESPONSE(static_cast<OCSP_SINGLE_RESPONSE *>(each)); });
  return der;
}

const Bytes &sample() {
  static const Bytes der = make_sample();
  return der;
}

void ocsp_decode_velpki(benchmark::State &state) {
  const Bytes &der = sample();
  for (auto _ : state) {
    OCSP_RESPONSE *response = nullptr;
    require(readDER_OCSP_RESPONSE_from_Binary(&response, der.data(), int(der.size())) == 0);
    BASIC_OCSP_RESPONSE *basic = get_BASIC_OCSP_RESPONSE(response);
    require(get_CERT_STATUS_count_from_OCSP_RESPONSE(basic) == 1);
    free_BASIC_OCSP_RESPONSE(basic);
    free_OCSP_RESPONSE(response);
  }
}

void ocsp_decode_libcrypto(benchmark::State &state) {
  const Bytes &der = sample();
  for (auto _ : state) require(peer::decode_ocsp_response(der) == 1);
}

BENCHMARK(ocsp_decode_velpki);
BENCHMARK(ocsp_decode_libcrypto);

}  // namespace
