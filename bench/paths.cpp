// A path of four certificates with RSA keys of 2048 bits, validated, beside its raw signature verifications.
#include <benchmark/benchmark.h>
#include <velpki/asn1_objects.h>
#include <velpki/cpv_validate.h>
#include <velpki/x509v3.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "libcrypto_side.h"
#include "sample.h"

namespace {

constexpr int kLength = 4;
constexpr int kSha256WithRsa = 668, kCommonName = 13, kBasicConstraints = 87, kKeyUsage = 83;  // registry rows

void require(bool holds) {
  if (!holds) std::abort();
}

void set_time(X509_CERT *cert, const char *text, int (*set)(X509_CERT *, const X509_TIME *)) {
  ASN1_TIME *instant = charToASN1_TIME(text);
  X509_TIME *time = asn1TimeToX509_TIME_RFC5280(instant);
  require(set(cert, time) == 0);
  free_X509_TIME(time);
  free_ASN1_TIME(instant);
}

void set_name(X509_CERT *cert, int number, int (*set)(X509_CERT *, const X509_NAME *)) {
  const std::string text = "certificate " + std::to_string(number);
  X509_NAME *name = new_X509_NAME();
  require(add_X509_NAME_child_OID_index(name, kCommonName, TYPE_UTF8_STRING,
                                        reinterpret_cast<const unsigned char *>(text.data()), int(text.size()),
                                        -1) == 0);
  require(set(cert, name) == 0);
  free_X509_NAME(name);
}

// What an authority has.
void set_extensions(X509_CERT *cert) {
  const unsigned char authority[] = {0x30, 3, 1, 1, 0xFF}, usage[] = {3, 2, 1, 6};
  X509_EXTENSIONS *list = nullptr;
  for (const auto &[row, value] : {std::pair{kBasicConstraints, new_OCTET_STRING(authority, sizeof authority)},
                                   std::pair{kKeyUsage, new_OCTET_STRING(usage, sizeof usage)}}) {
    X509_EXTENSION *extension = create_X509_EXTENSION_by_OID_index(nullptr, row, 1, value);
    require(add_X509_EXTENSION(&list, extension, -1) == 0);
    free_X509_EXTENSION(extension);
    free_ASN1_STRING(value);
  }
  require(set_X509_extensions(cert, list) == 0);
  free_X509_EXTENSIONS(list);
}

Certificate issue(int number, int issuer, RSA_UNIT *subject_key, RSA_UNIT *issuer_key) {
  Certificate cert(new_X509_CERT());
  X509_PUBKEY *pubkey = new_X509_PUBKEY();
  BIGINT *serial = PKV_New_BIGINT();
  OBJECT_IDENTIFIER *algorithm = index_to_OBJECT_IDENTIFIER(kSha256WithRsa);
  ASYMMETRIC_KEY *key = RSA_UNIT_to_ASYMMETRIC_KEY(issuer_key);
  require(set_X509_PUBKEY_rsa(pubkey, subject_key) == 0 && set_X509_pub_key(cert.get(), pubkey) == 0);
  require(PKV_Set_BIGINT_Word(serial, unsigned(number + 1)) == 0 && set_X509_serial(cert.get(), serial) == 0);
  require(set_X509_version(cert.get(), 2) == 0 && set_X509_signature(cert.get(), algorithm) == 0);
  set_name(cert.get(), issuer, set_X509_issuer);
  set_name(cert.get(), number, set_X509_subject);
  set_time(cert.get(), "2020-01-01,00:00:00", set_X509_notBefore);
  set_time(cert.get(), "2060-01-01,00:00:00", set_X509_notAfter);
  if (number) set_extensions(cert.get());
  require(gen_SIG_X509_Cert(cert.get(), key) == 0);
  free_ASYMMETRIC_KEY(key);
  free_OBJECT_IDENTIFIER(algorithm);
  PKV_Free_BIGINT(serial);
  free_X509_PUBKEY(pubkey);
  return cert;
}

// The end entity is number 0, the root the last. Decoded, as a path arrives.
std::vector<Bytes> make_path() {
  RSA_UNIT *keys[kLength];
  for (RSA_UNIT *&key : keys) require(PKV_Generate_RSA(key = PKV_New_RSA(), 2048, 0, nullptr, nullptr) == 0);
  std::vector<Bytes> path;
  for (int i = 0; i < kLength; ++i) {
    const int issuer = std::min(i + 1, kLength - 1);
    const Certificate cert = issue(i, issuer, keys[i], keys[issuer]);
    unsigned char *der = nullptr;
    const int length = writeDER_X509_CERT_to_Binary(cert.get(), &der);
    path.emplace_back(der, der + length);
    PKV_Free(der, __FILE__, __LINE__);
  }
  for (RSA_UNIT *key : keys) PKV_Free_RSA(key);
  return path;
}
const std::vector<Bytes> &sample_path() {
  static const std::vector<Bytes> path = make_path();
  return path;
}

struct ReleaseList {
  void operator()(STACK *list) const { free_X509_CERTIFICATES(list); }
};
using Path = std::unique_ptr<STACK, ReleaseList>;
Path decoded_path() {
  Path path(new_X509_CERTIFICATES());
  for (const Bytes &der : sample_path()) require(add_X509_CERTIFICATES(path.get(), decoded(der).get()) == 0);
  return path;
}

void validate(STACK *path) {
  node_LIST *tree = nullptr;
  require(validate_certpath(path, nullptr, &tree) == 0);
  free_node_LIST(tree);
}

// By RFC 5280, in standard form, to the root as an anchor: its own certificate is read and not verified.
void path_strict(benchmark::State &state) {
  const Path path(new_X509_CERTIFICATES());
  for (const Bytes &der : sample_path()) {
    X509_CERT *cert = nullptr;
    require(readDER_X509_CERT_from_Binary_RFC5280(&cert, der.data(), int(der.size())) == 0);
    require(push_STACK_value(path.get(), cert));
  }
  const auto *root = static_cast<const X509_CERT *>(path->data[kLength - 1]);
  TRUST_ANCHOR anchor{get_X509_subject(root), get_X509_SPKI(root)};
  TRUST_ANCHORS *anchors = new_TRUST_ANCHORS();
  require(add_TRUST_ANCHORS(anchors, &anchor) == 0);
  for (auto _ : state) require(validate_certpath_strict(path.get(), anchors, nullptr, nullptr) == 0);
  free_TRUST_ANCHORS(anchors);
}

// One path for all threads.
void path_velpki(benchmark::State &state) {
  static STACK *const path = decoded_path().release();
  validate(path);
  for (auto _ : state) validate(path);
}

void path_raw(benchmark::State &state) {
  const int signatures = int(state.range(0));
  const Path path = decoded_path();
  std::vector<std::unique_ptr<peer::Verifier>> issuers;
  for (int i = 0; i < kLength; ++i) {
    const auto *issuer = static_cast<const X509_CERT *>(path->data[std::min(i + 1, kLength - 1)]);
    const auto number = [issuer](PKV_RSA_COMPONENT which) {
      int length = 0;
      const RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(get_X509_SPKI(issuer)->key);
      const unsigned char *octets = PKV_Get_BIGINT_Octets(PKV_Get_RSA_Component(key, which), &length);
      return Bytes(octets, octets + length);
    };
    issuers.push_back(std::make_unique<peer::Verifier>(number(PKV_RSA_N), number(PKV_RSA_E)));
  }
  for (auto _ : state) {
    for (int i = 0; i < signatures; ++i) {
      const auto *cert = static_cast<const X509_CERT *>(path->data[i]);
      int length = 0;
      const unsigned char *tbs = get_X509_received(cert, 1, &length);
      const ASN1_STRING *signature = get_X509_sig_value(cert);
      require(issuers[size_t(i)]->verify_sha256(tbs, size_t(length), signature->data, size_t(signature->length)));
    }
  }
}

void path_libcrypto(benchmark::State &state) {
  const peer::Path path(sample_path());
  for (auto _ : state) require(path.verify());
}

BENCHMARK(path_velpki);
BENCHMARK(path_strict);
BENCHMARK(path_raw)->Arg(kLength)->Arg(kLength - 1);
BENCHMARK(path_libcrypto);
BENCHMARK(path_velpki)->Threads(2)->UseRealTime();
BENCHMARK(path_raw)->Arg(kLength)->Threads(2)->UseRealTime();

}  // namespace
