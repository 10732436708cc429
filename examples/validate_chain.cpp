// Finds and validates the path from a certificate to one of the roots in a bundle: validate_chain CERTIFICATE.pem
// INTERMEDIATES.pem BUNDLE.pem
#include <velpki/asn1_io.h>
#include <velpki/cpv.h>
#include <velpki/cpv_validate.h>

#include <string>

#include "example.h"

namespace {

struct ReleasePaths {
  void operator()(STACK *p) const { free_X509_CERTIFICATES(p); }
  void operator()(node_LIST *p) const { free_node_LIST(p); }
};
using Certificates = std::unique_ptr<STACK, ReleasePaths>;

// Appends the certificates of a PEM file that the library's own form knows, and, where they are roots, their anchors.
void read_file(const char *path, X509_CERTIFICATES *pool, TRUST_ANCHORS *anchors) {
  unsigned char *octets = nullptr;
  const int length = File_to_binary(path, &octets);
  if (length < 0) die(path);
  const owned<unsigned char> owner(octets);
  const std::string text(reinterpret_cast<char *>(octets), size_t(length)), end = "-----END CERTIFICATE-----";
  for (size_t at = 0; (at = text.find("-----BEGIN CERTIFICATE-----", at)) != text.npos;) {
    const size_t stop = text.find(end, at) + end.size();
    X509_CERT *read = nullptr;
    readPEM_X509_CERT_from_Binary(&read, text.data() + at, int(stop - at));
    at = stop;
    const owned<X509_CERT> cert(read);
    if (!cert) continue;
    check(add_X509_CERTIFICATES(pool, read), "add_X509_CERTIFICATES");
    TRUST_ANCHOR anchor{get_X509_subject(read), get_X509_SPKI(read)};
    if (anchors) check(add_TRUST_ANCHORS(anchors, &anchor), "add_TRUST_ANCHORS");
  }
}

void print_path(const STACK *path) {
  for (int i = 0; i < path->count; ++i) {
    std::printf("%d%s\n", i, i + 1 == path->count ? ", the root" : "");
    print_X509_NAME(get_X509_subject(static_cast<const X509_CERT *>(path->data[i])));
  }
}

// The verdict to rely on: RFC 5280, to one of the anchors.
void validate_strictly(const X509_CERT *cert, const STACK *pool, const TRUST_ANCHORS *anchors) {
  STACK *path = nullptr;
  CERTPATH_REPORT report;
  check(build_certPath_strict(&path, cert, pool, anchors, nullptr, &report), "build_certPath_strict");
  const Certificates owner(path);
  std::printf("by RFC 5280: valid, %d certificates below the anchor; policies", path->count);
  for (int i = 0; i < get_STACK_count(report.policies); ++i) {
    const auto *policy = static_cast<const OBJECT_IDENTIFIER *>(get_STACK_value(report.policies, i));
    std::printf(" %s", reinterpret_cast<const char *>(policy->data));
  }
  std::puts("");
  free_CERTPATH_POLICIES(report.policies);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 4) usage("validate_chain CERTIFICATE.pem INTERMEDIATES.pem BUNDLE.pem");
  const auto cert = read_certificate(argv[1]);
  const Certificates pool(new_X509_CERTIFICATES());
  TRUST_ANCHORS *anchors = new_TRUST_ANCHORS();
  read_file(argv[2], pool.get(), nullptr);
  read_file(argv[3], pool.get(), anchors);
  std::printf("%d certificates to choose from, %d of them trusted\n", pool->count, anchors->count);

  validate_strictly(cert.get(), pool.get(), anchors);

  // The house's own path and validation, which gives the tree of policies.
  STACK *path = nullptr;
  const int built = build_certPath(&path, cert.get(), pool.get(), anchors);
  free_TRUST_ANCHORS(anchors);
  check(built, "build_certPath");
  const Certificates owner(path);
  print_path(path);

  node_LIST *tree = nullptr;
  const int code = validate_certpath(path, nullptr, &tree);
  const std::unique_ptr<node_LIST, ReleasePaths> levels(tree);
  check(code, "validate_certpath");
  std::puts("by the rules of the house: valid; its policies, level by level");
  print_VALID_POLICY_TREE_LIST(tree);
  return 0;
}
