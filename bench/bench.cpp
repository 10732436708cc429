// Benchmarks of this library beside libcrypto. Ratios are made of them by scripts/measure.
#include <benchmark/benchmark.h>
#include <velpki/asn1_objects.h>
#include <velpki/base64.h>
#include <velpki/pem.h>
#include <velpki/x509.h>

#include <cstring>
#include <string>

#include "libcrypto_side.h"
#include "sample.h"

namespace {

const Bytes &sample() {
  static const Bytes der = sample_certificate();
  return der;
}

void decode_velpki(benchmark::State &state) {
  for (auto _ : state) decoded(sample());
}
void decode_libcrypto(benchmark::State &state) {
  for (auto _ : state) peer::decode_certificate(sample());
}

void decode_encode_velpki(benchmark::State &state) {
  for (auto _ : state) {
    const Certificate cert = decoded(sample());
    unsigned char *out = nullptr;
    benchmark::DoNotOptimize(writeDER_X509_CERT_to_Binary(cert.get(), &out));
    PKV_Free(out, __FILE__, __LINE__);
  }
}
void decode_encode_libcrypto(benchmark::State &state) {
  for (auto _ : state) peer::decode_and_encode_certificate(sample());
}

void name_compare_velpki(benchmark::State &state) {
  const Certificate a = decoded(sample()), b = decoded(sample());
  for (auto _ : state) benchmark::DoNotOptimize(cmp_X509_NAME(get_X509_issuer(a.get()), get_X509_issuer(b.get())));
}
void name_compare_libcrypto(benchmark::State &state) {
  const peer::Names names(sample());
  for (auto _ : state) benchmark::DoNotOptimize(names.compare());
}

const Bytes kOid = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B};
const Bytes kUnknownOid = {0x06, 0x0A, 0x2B, 0x06, 0x01, 0x04, 0x01, 0x86, 0x8D, 0x1F, 0x15, 0x07};
const char kOidText[] = "1.2.840.113549.1.1.11";

void oid_to_text(benchmark::State &state, const Bytes &octets) {
  for (auto _ : state) free_OBJECT_IDENTIFIER(decodeToBERObjectIdentifier_n(octets.data(), int(octets.size())));
}
void oid_to_text_libcrypto(benchmark::State &state, const Bytes &octets) {
  for (auto _ : state) benchmark::DoNotOptimize(peer::oid_to_text(octets));
}
void text_to_oid_velpki(benchmark::State &state) {
  OBJECT_IDENTIFIER *oid = new_OBJECT_IDENTIFIER(kOidText, int(sizeof kOidText - 1));
  for (auto _ : state) {
    ASN1_UNIT unit{};
    encodeToBERObjectIdentifier(&unit, 6, oid, oid->length, 0);
    clean_ASN1_UNIT(&unit);
  }
  free_OBJECT_IDENTIFIER(oid);
}
void text_to_oid_libcrypto(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(peer::text_to_oid(kOidText));
}
void registry_velpki(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(index_from_oid_string(kOidText, int(sizeof kOidText - 1)));
}
void registry_libcrypto(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(peer::row_of_text(kOidText));
}

// A PEM text of 1 MiB.
const std::string &large_pem() {
  static const std::string text = [] {
    const Bytes octets(1024 * 1024 / 4 * 3 / 65 * 64, 0xA7);
    char *out = nullptr;
    const int length = encode_PEM(octets.data(), int(octets.size()), "DATA", 4, &out, 1);
    std::string made(out, size_t(length));
    PKV_Free(out, __FILE__, __LINE__);
    return made;
  }();
  return text;
}
void pem_decode_velpki(benchmark::State &state) {
  for (auto _ : state) {
    unsigned char *out = nullptr;
    benchmark::DoNotOptimize(decode_PEM(large_pem().data(), int(large_pem().size()), &out));
    PKV_Free(out, __FILE__, __LINE__);
  }
  state.SetBytesProcessed(int64_t(state.iterations() * large_pem().size()));
}
void pem_decode_libcrypto(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(peer::decode_pem(large_pem()));
  state.SetBytesProcessed(int64_t(state.iterations() * large_pem().size()));
}
void pem_encode_velpki(benchmark::State &state) {
  const Bytes octets(786432, 0x5A);
  for (auto _ : state) {
    char *out = nullptr;
    benchmark::DoNotOptimize(encode_PEM(octets.data(), int(octets.size()), "DATA", 4, &out, 1));
    PKV_Free(out, __FILE__, __LINE__);
  }
  state.SetBytesProcessed(int64_t(state.iterations() * octets.size()));
}
void base64_encode_libcrypto(benchmark::State &state) {
  const Bytes octets(786432, 0x5A);
  for (auto _ : state) benchmark::DoNotOptimize(peer::encode_base64(octets));
  state.SetBytesProcessed(int64_t(state.iterations() * octets.size()));
}

Bytes component(const X509_CERT *cert, PKV_RSA_COMPONENT which) {
  int length = 0;
  const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(get_X509_SPKI(cert)->key);
  const unsigned char *octets = PKV_Get_BIGINT_Octets(PKV_Get_RSA_Component(key, which), &length);
  return Bytes(octets, octets + length);
}

// The peer's raw verification over the received TBS: hash and RSA, nothing else.
void verify_raw(benchmark::State &state) {
  const Certificate cert = decoded(sample());
  int length = 0;
  const unsigned char *tbs = get_X509_received(cert.get(), 1, &length);
  const ASN1_STRING *signature = get_X509_sig_value(cert.get());
  peer::Verifier verifier(component(cert.get(), PKV_RSA_N), component(cert.get(), PKV_RSA_E));
  for (auto _ : state) {
    if (!verifier.verify_sha256(tbs, size_t(length), signature->data, size_t(signature->length))) std::abort();
  }
}
void verify_used_key(benchmark::State &state) {
  const Certificate cert = decoded(sample());
  for (auto _ : state)
    if (verify_SIG_X509_CERT(cert.get(), get_X509_SPKI(cert.get())->key)) std::abort();
}
void verify_fresh_key(benchmark::State &state) {
  for (auto _ : state) {
    const Certificate cert = decoded(sample());
    if (verify_SIG_X509_CERT(cert.get(), get_X509_SPKI(cert.get())->key)) std::abort();
  }
}

BENCHMARK(decode_velpki);
BENCHMARK(decode_libcrypto);
BENCHMARK(decode_encode_velpki);
BENCHMARK(decode_encode_libcrypto);
BENCHMARK(name_compare_velpki);
BENCHMARK(name_compare_libcrypto);
BENCHMARK_CAPTURE(oid_to_text, velpki_known, kOid);
BENCHMARK_CAPTURE(oid_to_text, velpki_unknown, kUnknownOid);
BENCHMARK_CAPTURE(oid_to_text_libcrypto, known, kOid);
BENCHMARK(text_to_oid_velpki);
BENCHMARK(text_to_oid_libcrypto);
BENCHMARK(registry_velpki);
BENCHMARK(registry_libcrypto);
BENCHMARK(pem_decode_velpki);
BENCHMARK(pem_decode_libcrypto);
BENCHMARK(pem_encode_velpki);
BENCHMARK(base64_encode_libcrypto);
BENCHMARK(verify_raw);
BENCHMARK(verify_used_key);
BENCHMARK(verify_fresh_key);

}  // namespace

BENCHMARK_MAIN();
