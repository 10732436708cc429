// Owners of what the interface gives to its caller.
#pragma once

#include <velpki/cms.h>
#include <velpki/cpv.h>
#include <velpki/ctl.h>
#include <velpki/issuer_and_serial_number.h>
#include <velpki/kisa.h>
#include <velpki/ocsp.h>
#include <velpki/pkcs10.h>
#include <velpki/pkcs12.h>
#include <velpki/pkcs5.h>
#include <velpki/pkv.h>
#include <velpki/x509_crl.h>

#include <cstddef>
#include <utility>

namespace test {

// The function that releases a type. Lists are one type, so their owners name it.
// clang-format off
#define VELPKI_RECORDS(X) \
  X(ASN1_UNIT) X(ASN1_STRING) X(ASN1_TIME) X(X509_CERT) X(X509_CRL) X(X509_REVOKED) X(X509_PUBKEY) X(X509_TIME) \
  X(X509_EXTENSION) X(X509_ATTRIBUTE) X(X509_ALGO_IDENTIFIER) X(X509_SIGN) X(ASYMMETRIC_KEY) \
  X(ISSUER_AND_SERIAL_NUMBER) X(GENERAL_NAME) X(PKCS10_X509_REQ) X(PKCS1_RSA_PRIVATE_KEY) X(PKCS1_RSA_PUBLIC_KEY) \
  X(RSAES_OAEP_PARAM) X(RSASSA_PSS_PARAM) X(P8_PRIV_KEY_INFO) X(PKCS8) X(P5_PBE_PARAM) X(PKCS12) X(P12_SAFEBAG) \
  X(P7_CONTENT_INFO) X(P7_SIGNER_INFO) X(CMS_CONTENT_INFO) X(CMS_SIGNER_INFO) X(OCSP_REQUEST) X(OCSP_RESPONSE) \
  X(BASIC_OCSP_RESPONSE) X(OCSP_RESPONSE_DATA) X(OCSP_SINGLE_RESPONSE) X(OCSP_REVOKED_INFO) X(CERT_TRUST_LIST) \
  X(KISA_IDENTIFY_DATA) X(KISA_HSM_SIGNATURE_TOKEN) X(VID) X(ISSUING_DIST_POINT) X(node_LIST)
#define VELPKI_PROVIDER_OBJECTS(X) \
  X(BIGINT, BIGINT) X(RSA_UNIT, RSA) X(KCDSA_UNIT, KCDSA) X(ECC_UNIT, ECC) X(ECURVE, ECURVE) X(ECC_POINT, ECC_POINT) \
  X(BLOCK_CIPHER_UNIT, BLOCK_CIPHER) X(DIGEST_UNIT, DIGEST) X(HMAC_UNIT, HMAC)
#define VELPKI_RELEASE(T) inline void release(T *p) { free_##T(p); }
#define VELPKI_RELEASE_OBJECT(T, name) inline void release(T *p) { PKV_Free_##name(p); }
// clang-format on
VELPKI_RECORDS(VELPKI_RELEASE)
VELPKI_PROVIDER_OBJECTS(VELPKI_RELEASE_OBJECT)
inline void release(char *p) { PKV_Free(p, __FILE__, __LINE__); }
inline void release(unsigned char *p) { PKV_Free(p, __FILE__, __LINE__); }

// Converts to the pointer that the interface takes; its address is that of the pointer, where the interface gives one.
template <class T, auto Free = static_cast<void (*)(T *)>(release)>
class Owned {
 public:
  Owned(std::nullptr_t = nullptr) {}
  explicit Owned(T *p) : p_(p) {}
  Owned(Owned &&other) noexcept : p_(other.release()) {}
  Owned &operator=(Owned &&other) noexcept { return reset(other.release()), *this; }
  ~Owned() { Free(p_); }
  operator T *() const { return p_; }
  T *operator->() const { return p_; }
  T **operator&() { return &p_; }
  T *get() const { return p_; }
  T *release() { return std::exchange(p_, nullptr); }
  void reset(T *p = nullptr) { Free(std::exchange(p_, p)); }

 private:
  T *p_ = nullptr;
};

}  // namespace test
