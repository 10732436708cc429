// Messages by libcrypto.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/cms.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <cstdlib>

#include "libcrypto_side.h"

namespace peer {

namespace {

BIGNUM *number(const Bytes &octets) { return BN_bin2bn(octets.data(), int(octets.size()), nullptr); }

}  // namespace

Bytes self_signed(const Bytes &n, const Bytes &e, const Bytes &d) {
  RSA *rsa = RSA_new();
  RSA_set0_key(rsa, number(n), number(e), number(d));
  EVP_PKEY *key = EVP_PKEY_new();
  EVP_PKEY_assign_RSA(key, rsa);
  X509 *cert = X509_new();
  X509_set_version(cert, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert), 5);
  X509_gmtime_adj(X509_getm_notBefore(cert), 0);
  X509_gmtime_adj(X509_getm_notAfter(cert), 86400);
  X509_NAME *name = X509_get_subject_name(cert);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("bench"), -1, -1, 0);
  X509_set_issuer_name(cert, name);
  X509_set_pubkey(cert, key);
  if (X509_sign(cert, key, EVP_sha256()) <= 0) std::abort();
  unsigned char *out = nullptr;
  const int length = i2d_X509(cert, &out);
  const Bytes der(out, out + length);
  OPENSSL_free(out);
  X509_free(cert);
  EVP_PKEY_free(key);
  return der;
}

bool verify_message(const Bytes &der) {
  const unsigned char *at = der.data();
  CMS_ContentInfo *message = d2i_CMS_ContentInfo(nullptr, &at, long(der.size()));
  const bool valid =
      message && CMS_verify(message, nullptr, nullptr, nullptr, nullptr, CMS_NO_SIGNER_CERT_VERIFY | CMS_BINARY) == 1;
  CMS_ContentInfo_free(message);
  return valid;
}

}  // namespace peer
