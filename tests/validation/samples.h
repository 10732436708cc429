// Owners and records that the tests of this folder share.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/asn1_objects.h>
#include <velpki/ocsp.h>
#include <velpki/pkcs1.h>

#include "support/keys.h"

namespace test {

using Request = Owned<OCSP_REQUEST>;
using Response = Owned<OCSP_RESPONSE>;
using Basic = Owned<BASIC_OCSP_RESPONSE>;

inline void free_singles(STACK *list) {
  free_STACK_values(list, [](void *each) { free_OCSP_SINGLE_RESPONSE(static_cast<OCSP_SINGLE_RESPONSE *>(each)); });
}
using Singles = Owned<STACK, free_singles>;

constexpr int kOcsp = 0x50000000;

template <class T>
Bytes encoded(int (*to)(const T *, ASN1_UNIT **), const std::type_identity_t<T> *record) {
  int code = 0;
  const std::string octets = hex_of(to, record, &code);
  EXPECT_EQ(code, 0);
  return code ? Bytes() : hex(octets);
}

inline Basic strict_basic(const OCSP_RESPONSE *response, int *code = nullptr) {
  Basic basic;
  const int result = get_BASIC_OCSP_RESPONSE_strict(response, &basic);
  if (code) *code = result;
  return basic;
}

}  // namespace test
