// Owners that the tests of this folder share.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/pem.h>
#include <velpki/pkcs1.h>
#include <velpki/pkcs12.h>
#include <velpki/pkcs5.h>

#include "support/asn1.h"

namespace test {

struct ReleaseKey {
  void operator()(PKCS1_RSA_PRIVATE_KEY *p) const { free_PKCS1_RSA_PRIVATE_KEY(p); }
  void operator()(PKCS1_RSA_PUBLIC_KEY *p) const { free_PKCS1_RSA_PUBLIC_KEY(p); }
  void operator()(RSAES_OAEP_PARAM *p) const { free_RSAES_OAEP_PARAM(p); }
  void operator()(RSASSA_PSS_PARAM *p) const { free_RSASSA_PSS_PARAM(p); }
  void operator()(X509_ALGO_IDENTIFIER *p) const { free_X509_ALGO_IDENTIFIER(p); }
  void operator()(P8_PRIV_KEY_INFO *p) const { free_P8_PRIV_KEY_INFO(p); }
  void operator()(PKCS8 *p) const { free_PKCS8(p); }
  void operator()(P5_PBE_PARAM *p) const { free_P5_PBE_PARAM(p); }
  void operator()(PKCS12 *p) const { free_PKCS12(p); }
  void operator()(RSA_UNIT *p) const { PKV_Free_RSA(p); }
};
template <class T>
using Owned = std::unique_ptr<T, ReleaseKey>;

// The DER and the label of the first block of a text that may begin with words.
inline Bytes der_of(const Bytes &text, std::string &label) {
  unsigned char *der = nullptr;
  const char *name = nullptr;
  int name_length = 0;
  const int length = decode_PEM_ex(reinterpret_cast<const char *>(text.data()), int(text.size()), nullptr, &name,
                                   &name_length, nullptr, &der);
  const Block owner(der);
  label.assign(name ? name : "", size_t(name_length));
  return length > 0 ? Bytes(der, der + length) : Bytes();
}

}  // namespace test
