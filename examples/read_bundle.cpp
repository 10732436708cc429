// Reads every certificate of a PEM bundle, says what became of each, and verifies the ones that sign themselves with
// RSA: read_bundle [FILE]
#include <velpki/asn1_error.h>
#include <velpki/asn1_io.h>
#include <velpki/asn1_objects.h>
#include <velpki/pem.h>
#include <velpki/x509.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Octets = std::vector<unsigned char>;

std::string describe(int code) {
  char text[200] = "";
  describe_velpki_code(code, text, sizeof text);
  return text;
}

// The DER octets of every certificate in the text, one block after the other; a block that does not decode is left out.
std::vector<Octets> split_bundle(const char *text, int length) {
  std::vector<Octets> found;
  for (int at = 0; at < length;) {
    const char *label = nullptr;
    unsigned char *der = nullptr;
    int consumed = 0;
    const int size = decode_PEM_ex(text + at, length - at, "CERTIFICATE", &label, nullptr, &consumed, &der);
    if (!label || consumed < 1) break;
    if (size > 0) found.emplace_back(der, der + size);
    PKV_Free(der, __FILE__, __LINE__);
    at += consumed;
  }
  return found;
}

bool encodes_as_received(X509_CERT *cert, const Octets &der) {
  unsigned char *out = nullptr;
  const int length = writeDER_X509_CERT_to_Binary(cert, &out);
  const bool same = length == int(der.size()) && std::memcmp(out, der.data(), der.size()) == 0;
  PKV_Free(out, __FILE__, __LINE__);
  return same;
}

struct Summary {
  int decoded = 0, refused = 0, same = 0, verified = 0, not_verified = 0, not_tried = 0, standard = 0;
};

// The last attribute of a name, which is usually the common name.
std::string short_subject(const X509_CERT *cert) {
  const X509_NAME *name = get_X509_subject(cert);
  const ASN1_STRING *value = get_X509_NAME_CHILD_data(get_X509_NAME_CHILD(name, get_X509_NAME_count(name) - 1));
  if (!value) return "(empty)";
  std::string text(reinterpret_cast<const char *>(value->data), size_t(value->length));
  for (char &c : text)
    if (c >= 0 && c < ' ') c = '?';
  return text;
}

bool signs_itself(const X509_CERT *cert) { return cmp_X509_NAME(get_X509_issuer(cert), get_X509_subject(cert)) == 0; }

void show_decoded(X509_CERT *cert, const Octets &der, Summary &summary) {
  const bool same = encodes_as_received(cert, der);
  const X509_PUBKEY *pubkey = get_X509_SPKI(cert);
  ++summary.decoded;
  summary.same += same;
  std::string signature = "signature not tried";
  if (signs_itself(cert) && ASYMMETRIC_KEY_to_RSA_UNIT(pubkey->key)) {
    const int code = verify_SIG_X509_CERT(cert, pubkey->key);
    signature = code ? describe(code) : "signature verified";
    ++(code ? summary.not_verified : summary.verified);
  } else {
    ++summary.not_tried;
  }
  std::printf("decoded  %-52.52s octets %s, %s\n", short_subject(cert).c_str(), same ? "equal" : "differ",
              signature.c_str());
}

// A certificate that the house form refuses is read and verified in standard form.
void show_refused(int code, const Octets &der, Summary &summary) {
  X509_CERT *cert = nullptr;
  ++summary.refused;
  if (readDER_X509_CERT_from_Binary_RFC5280(&cert, der.data(), int(der.size())) == 0) {
    const bool verified = verify_SIG_X509_CERT_RFC5280(cert, get_X509_SPKI(cert)) == 0;
    summary.standard += verified;
    std::printf("refused  %-52.52s %s; standard form: %s\n", short_subject(cert).c_str(), describe(code).c_str(),
                verified ? "signature verified" : "read");
  } else {
    std::printf("refused  %s\n", describe(code).c_str());
  }
  free_X509_CERT(cert);
}

void show(const Octets &der, Summary &summary) {
  X509_CERT *cert = nullptr;
  const int code = readDER_X509_CERT_from_Binary(&cert, der.data(), int(der.size()));
  if (code)
    show_refused(code, der, summary);
  else
    show_decoded(cert, der, summary);
  free_X509_CERT(cert);
}

double certificates_per_second(const std::vector<Octets> &bundle) {
  const auto start = std::chrono::steady_clock::now();
  constexpr int kRounds = 200;
  for (int round = 0; round < kRounds; ++round) {
    for (const Octets &der : bundle) {
      X509_CERT *cert = nullptr;
      readDER_X509_CERT_from_Binary(&cert, der.data(), int(der.size()));
      free_X509_CERT(cert);
    }
  }
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  return kRounds * double(bundle.size()) / elapsed.count();
}

}  // namespace

int main(int argc, char **argv) {
  const char *path = argc > 1 ? argv[1] : "/etc/ssl/certs/ca-certificates.crt";
  unsigned char *text = nullptr;
  const int length = File_to_binary(path, &text);
  if (length < 0) return std::fprintf(stderr, "cannot read %s\n", path), 1;
  const std::vector<Octets> bundle = split_bundle(reinterpret_cast<const char *>(text), length);
  PKV_Free(text, __FILE__, __LINE__);
  Summary summary;
  for (const Octets &der : bundle) show(der, summary);
  std::printf("\n%s: %zu certificates\n", path, bundle.size());
  std::printf("  decoded %d, encoded again to the same octets %d\n", summary.decoded, summary.same);
  std::printf("  self-signed RSA: verified %d, not verified %d; other keys: %d\n", summary.verified,
              summary.not_verified, summary.not_tried);
  std::printf("  refused by the house form %d, of these verified in standard form %d\n", summary.refused,
              summary.standard);
  std::printf("  rate: %.0f certificates a second, decoded and released\n", certificates_per_second(bundle));
  return summary.decoded > 0 && summary.not_verified == 0 ? 0 : 1;
}
