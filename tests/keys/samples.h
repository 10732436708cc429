// Owners that the tests of this folder share.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/pkcs1.h>

#include "support/asn1.h"

namespace test {

struct ReleaseKey {
  void operator()(PKCS1_RSA_PRIVATE_KEY *p) const { free_PKCS1_RSA_PRIVATE_KEY(p); }
  void operator()(PKCS1_RSA_PUBLIC_KEY *p) const { free_PKCS1_RSA_PUBLIC_KEY(p); }
  void operator()(RSAES_OAEP_PARAM *p) const { free_RSAES_OAEP_PARAM(p); }
  void operator()(RSASSA_PSS_PARAM *p) const { free_RSASSA_PSS_PARAM(p); }
  void operator()(X509_ALGO_IDENTIFIER *p) const { free_X509_ALGO_IDENTIFIER(p); }
  void operator()(RSA_UNIT *p) const { PKV_Free_RSA(p); }
};
template <class T>
using Owned = std::unique_ptr<T, ReleaseKey>;

}  // namespace test
