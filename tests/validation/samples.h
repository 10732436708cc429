// Owners and records that the tests of this folder share.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/asn1_objects.h>
#include <velpki/ocsp.h>
#include <velpki/pkcs1.h>

#include "support/asn1.h"

namespace test {

struct ReleaseOcsp {
  void operator()(OCSP_REQUEST *p) const { free_OCSP_REQUEST(p); }
  void operator()(OCSP_RESPONSE *p) const { free_OCSP_RESPONSE(p); }
  void operator()(BASIC_OCSP_RESPONSE *p) const { free_BASIC_OCSP_RESPONSE(p); }
  void operator()(OCSP_RESPONSE_DATA *p) const { free_OCSP_RESPONSE_DATA(p); }
  void operator()(OCSP_SINGLE_RESPONSE *p) const { free_OCSP_SINGLE_RESPONSE(p); }
  void operator()(OCSP_REVOKED_INFO *p) const { free_OCSP_REVOKED_INFO(p); }
  void operator()(X509_CERT *p) const { free_X509_CERT(p); }
  void operator()(X509_TIME *p) const { free_X509_TIME(p); }
  void operator()(ASYMMETRIC_KEY *p) const { free_ASYMMETRIC_KEY(p); }
  void operator()(RSA_UNIT *p) const { PKV_Free_RSA(p); }
  void operator()(STACK *p) const { free_X509_CERTIFICATES(p); }
};
template <class T>
using Owned = std::unique_ptr<T, ReleaseOcsp>;
using Certificate = Owned<X509_CERT>;
using Request = Owned<OCSP_REQUEST>;
using Response = Owned<OCSP_RESPONSE>;
using Basic = Owned<BASIC_OCSP_RESPONSE>;

constexpr int kOcsp = 0x50000000;

template <class T>
Owned<T> decoded(int (*from)(ASN1_UNIT *, T **), const Bytes &der, int *code = nullptr) {
  T *record = nullptr;
  const int result = from(unit(der).get(), &record);
  if (code) *code = result;
  return Owned<T>(record);
}
template <class T>
Bytes encoded(int (*to)(const T *, ASN1_UNIT **), const T *record) {
  ASN1_UNIT *out = nullptr;
  EXPECT_EQ(to(record, &out), 0);
  const Unit owner(out);
  return out ? hex(flat(out)) : Bytes();
}

inline Basic strict_basic(const OCSP_RESPONSE *response, int *code = nullptr) {
  BASIC_OCSP_RESPONSE *basic = nullptr;
  const int result = get_BASIC_OCSP_RESPONSE_strict(response, &basic);
  if (code) *code = result;
  return Basic(basic);
}

inline Owned<X509_TIME> time_of(std::string_view generalized) {
  Owned<X509_TIME> time(new_X509_TIME());
  time->type = X509_TIME_GENERALIZED;
  time->time = text_string(TYPE_GENERALIZED_TIME, generalized).release();
  return time;
}

}  // namespace test
