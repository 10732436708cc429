// A certificate with a dozen extensions, decoded with all of their values.
#include <benchmark/benchmark.h>
#include <velpki/x509v3.h>

#include <cstdlib>
#include <iterator>
#include <string_view>

#include "libcrypto_side.h"
#include "sample.h"

namespace {

template <class R>
bool read_value(const X509_EXTENSION *extension, int (*decode)(const X509_EXTENSION *, R **), void (*release)(R *)) {
  R *record = nullptr;
  const bool read = decode(extension, &record) == 0;
  release(record);
  return read;
}

#define READ(name, T) \
  [](const X509_EXTENSION *e) { return read_value<T>(e, X509_EXTENSION_to_##name##_RFC5280, free_##T); }
#define READ_STRING(name)                                                                    \
  [](const X509_EXTENSION *e) {                                                              \
    return read_value<ASN1_STRING>(e, X509_EXTENSION_to_##name##_RFC5280, free_ASN1_STRING); \
  }

struct Known {
  const char *oid, *value;  // the value in hex
  bool (*read)(const X509_EXTENSION *);
};
const Known kKnown[] = {
    {"2.5.29.14", "0414000102030405060708090a0b0c0d0e0f10111213", READ_STRING(SUBJECT_KEYID)},
    {"2.5.29.15", "03020106", READ_STRING(KEY_USAGE)},
    {"2.5.29.17", "301e8209612e6b722e746573748204622e6b72860b687474703a2f2f612e6b72",
     READ(GENERAL_NAMES, GENERAL_NAMES)},
    {"2.5.29.18", "300d860b687474703a2f2f612e6b72", READ(GENERAL_NAMES, GENERAL_NAMES)},
    {"2.5.29.19", "30060101ff020103", READ(BASIC_CONSTRAINTS, BASIC_CONSTRAINTS)},
    {"2.5.29.30", "3012a0103006820461 2e6b7230068204622e6b72", READ(NAME_CONSTRAINTS, NAME_CONSTRAINTS)},
    {"2.5.29.31", "301a 3018 a016 a014 8612 687474703a2f2f612e6b722f612e63726c31",
     READ(CRL_DIST_POINTS, CRL_DIST_POINTS)},
    {"2.5.29.32", "3021 301f 06022a03 3019 3017 06082b06010505070201 160b687474703a2f2f612e6b72",
     READ(CERTIFICATE_POLICIES, CERTIFICATE_POLICIES)},
    {"2.5.29.33", "300a300806022a0306022a04", READ(POLICY_MAPPINGS, POLICY_MAPPINGS)},
    {"2.5.29.35", "30168014000102030405060708090a0b0c0d0e0f10111213", READ(AUTHORITY_KEYID, AUTHORITY_KEYID)},
    {"2.5.29.36", "3006800100810101", READ(POLICY_CONSTRAINTS, POLICY_CONSTRAINTS)},
    {"2.5.29.37", "301406082b0601050507030106082b06010505070302", READ(EXTENDED_KEY_USAGE, EXTENDED_KEY_USAGE)},
    {"1.3.6.1.5.5.7.1.1", "3019 3017 06082b06010505073001 860b687474703a2f2f612e6b72",
     READ(AUTHORITY_INFO_ACCESS, AUTHORITY_INFO_ACCESS)},
};

Bytes octets_of(const char *hex) {
  Bytes out;
  for (; *hex; ++hex) {
    if (*hex == ' ') continue;
    const char pair[] = {hex[0], hex[1], 0};
    out.push_back(uint8_t(std::strtoul(pair, nullptr, 16)));
    ++hex;
  }
  return out;
}

// The sample certificate with the extensions above in place of its own.
Bytes certificate_with_extensions() {
  const Certificate cert = decoded(sample_certificate());
  X509_EXTENSIONS *list = nullptr;
  for (const Known &each : kKnown) {
    const Bytes value = octets_of(each.value);
    ASN1_STRING *octets = new_OCTET_STRING(value.data(), int(value.size()));
    OBJECT_IDENTIFIER *oid = new_OBJECT_IDENTIFIER(each.oid, int(std::string_view(each.oid).size()));
    X509_EXTENSION *extension = create_X509_EXTENSION_by_OID(nullptr, oid, 0, octets);
    if (add_X509_EXTENSION(&list, extension, -1)) std::abort();
    free_X509_EXTENSION(extension);
    free_OBJECT_IDENTIFIER(oid);
    free_ASN1_STRING(octets);
  }
  if (set_X509_extensions(cert.get(), list)) std::abort();
  free_X509_EXTENSIONS(list);
  unsigned char *der = nullptr;
  const int length = writeDER_X509_CERT_to_Binary(cert.get(), &der);
  const Bytes out(der, der + length);
  PKV_Free(der, __FILE__, __LINE__);
  return out;
}

const Bytes &sample() {
  static const Bytes der = certificate_with_extensions();
  return der;
}

void extensions_velpki(benchmark::State &state) {
  for (auto _ : state) {
    const Certificate cert = decoded(sample());
    const X509_EXTENSIONS *list = get_X509_extensions(cert.get());
    for (size_t i = 0; i < std::size(kKnown); ++i)
      if (!kKnown[i].read(get_X509_EXTENSION(list, int(i)))) std::abort();
  }
}

void extensions_libcrypto(benchmark::State &state) {
  for (auto _ : state)
    if (peer::decode_certificate_with_extensions(sample()) != int(std::size(kKnown))) std::abort();
}

BENCHMARK(extensions_velpki);
BENCHMARK(extensions_libcrypto);

}  // namespace
