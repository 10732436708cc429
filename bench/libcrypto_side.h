// The same operations by libcrypto. Octets in, nothing kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace peer {

using Bytes = std::vector<uint8_t>;

void decode_certificate(const Bytes &der);
void decode_and_encode_certificate(const Bytes &der);
int decode_certificate_with_extensions(const Bytes &der);  // the number of extension values read
int decode_ocsp_response(const Bytes &der);                // the number of entries
// Two decoded names of one certificate's issuer, compared.
struct Names {
  explicit Names(const Bytes &der);
  ~Names();
  int compare() const;
  void *a, *b;
};
std::string oid_to_text(const Bytes &der);
size_t text_to_oid(const char *text);
int row_of_text(const char *text);
size_t decode_pem(const std::string &text);
size_t encode_base64(const Bytes &octets);

// RSA verification of a certificate's signature with the key prepared before: raw, over the TBS octets.
struct Verifier {
  Verifier(const Bytes &modulus, const Bytes &exponent);
  ~Verifier();
  bool verify_sha256(const uint8_t *tbs, size_t tbs_length, const uint8_t *signature, size_t signature_length);
  void *key, *context, *digest;
};

// A path from the end entity to its root, verified with certificates that were decoded before.
struct Path {
  explicit Path(const std::vector<Bytes> &certificates);
  ~Path();
  bool verify() const;
  void *end_entity, *chain, *store;
};

// A revocation list: decoded and kept, searched, encoded anew.
struct RevocationList {
  explicit RevocationList(const Bytes &der);
  ~RevocationList();
  bool holds(const uint8_t *serial, size_t length) const;
  size_t encode() const;  // the whole list, from its entries
  void *list;
};

// A certificate with a key of those numbers that signs itself, and a signed message verified with the certificates in
// it, which are not.
Bytes self_signed(const Bytes &n, const Bytes &e, const Bytes &d);
bool verify_message(const Bytes &der);

}  // namespace peer
