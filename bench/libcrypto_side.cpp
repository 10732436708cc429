#include "libcrypto_side.h"

#include <openssl/bio.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/objects.h>
#include <openssl/ocsp.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdlib>

namespace peer {

namespace {
X509 *decoded(const Bytes &der) {
  const unsigned char *at = der.data();
  X509 *cert = d2i_X509(nullptr, &at, long(der.size()));
  if (!cert) std::abort();
  return cert;
}
}  // namespace

void decode_certificate(const Bytes &der) { X509_free(decoded(der)); }

void decode_and_encode_certificate(const Bytes &der) {
  X509 *cert = decoded(der);
  unsigned char *out = nullptr;
  if (i2d_X509(cert, &out) < 1) std::abort();
  OPENSSL_free(out);
  X509_free(cert);
}

int decode_certificate_with_extensions(const Bytes &der) {
  X509 *cert = decoded(der);
  int read = 0;
  for (int i = 0; i < X509_get_ext_count(cert); ++i) {
    X509_EXTENSION *each = X509_get_ext(cert, i);
    void *value = X509V3_EXT_d2i(each);
    if (!value) continue;
    ++read;
    const X509V3_EXT_METHOD *method = X509V3_EXT_get(each);
    if (method->it)
      ASN1_item_free(static_cast<ASN1_VALUE *>(value), ASN1_ITEM_ptr(method->it));
    else
      method->ext_free(value);
  }
  X509_free(cert);
  return read;
}

Names::Names(const Bytes &der) {
  X509 *first = decoded(der), *second = decoded(der);
  a = X509_NAME_dup(X509_get_issuer_name(first));
  b = X509_NAME_dup(X509_get_issuer_name(second));
  X509_free(first);
  X509_free(second);
}
Names::~Names() {
  X509_NAME_free(static_cast<X509_NAME *>(a));
  X509_NAME_free(static_cast<X509_NAME *>(b));
}
int Names::compare() const { return X509_NAME_cmp(static_cast<X509_NAME *>(a), static_cast<X509_NAME *>(b)); }

std::string oid_to_text(const Bytes &der) {
  const unsigned char *at = der.data();
  ASN1_OBJECT *object = d2i_ASN1_OBJECT(nullptr, &at, long(der.size()));
  char text[100];
  OBJ_obj2txt(text, sizeof text, object, 1);
  ASN1_OBJECT_free(object);
  return text;
}
size_t text_to_oid(const char *text) {
  ASN1_OBJECT *object = OBJ_txt2obj(text, 1);
  const size_t length = OBJ_length(object);
  ASN1_OBJECT_free(object);
  return length;
}
int row_of_text(const char *text) { return OBJ_txt2nid(text); }

size_t decode_pem(const std::string &text) {
  BIO *in = BIO_new_mem_buf(text.data(), int(text.size()));
  char *name = nullptr, *header = nullptr;
  unsigned char *data = nullptr;
  long length = 0;
  if (PEM_read_bio(in, &name, &header, &data, &length) != 1) std::abort();
  OPENSSL_free(name);
  OPENSSL_free(header);
  OPENSSL_free(data);
  BIO_free(in);
  return size_t(length);
}
size_t encode_base64(const Bytes &octets) {
  std::string out(octets.size() * 4 / 3 + 8, 0);
  return size_t(EVP_EncodeBlock(reinterpret_cast<unsigned char *>(out.data()), octets.data(), int(octets.size())));
}

Verifier::Verifier(const Bytes &modulus, const Bytes &exponent) {
  OSSL_PARAM_BLD *build = OSSL_PARAM_BLD_new();
  BIGNUM *n = BN_bin2bn(modulus.data(), int(modulus.size()), nullptr);
  BIGNUM *e = BN_bin2bn(exponent.data(), int(exponent.size()), nullptr);
  OSSL_PARAM_BLD_push_BN(build, OSSL_PKEY_PARAM_RSA_N, n);
  OSSL_PARAM_BLD_push_BN(build, OSSL_PKEY_PARAM_RSA_E, e);
  OSSL_PARAM *parameters = OSSL_PARAM_BLD_to_param(build);
  EVP_PKEY_CTX *maker = EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr);
  EVP_PKEY *pkey = nullptr;
  if (EVP_PKEY_fromdata_init(maker) != 1 || EVP_PKEY_fromdata(maker, &pkey, EVP_PKEY_PUBLIC_KEY, parameters) != 1) {
    std::abort();
  }
  EVP_PKEY_CTX *verify = EVP_PKEY_CTX_new(pkey, nullptr);
  EVP_PKEY_verify_init(verify);
  EVP_PKEY_CTX_set_rsa_padding(verify, RSA_PKCS1_PADDING);
  EVP_PKEY_CTX_set_signature_md(verify, EVP_sha256());
  digest = EVP_MD_fetch(nullptr, "SHA256", nullptr);
  key = pkey;
  context = verify;
  EVP_PKEY_CTX_free(maker);
  OSSL_PARAM_free(parameters);
  OSSL_PARAM_BLD_free(build);
  BN_free(n);
  BN_free(e);
}
Verifier::~Verifier() {
  EVP_MD_free(static_cast<EVP_MD *>(digest));
  EVP_PKEY_CTX_free(static_cast<EVP_PKEY_CTX *>(context));
  EVP_PKEY_free(static_cast<EVP_PKEY *>(key));
}
bool Verifier::verify_sha256(const uint8_t *tbs, size_t tbs_length, const uint8_t *signature, size_t signature_length) {
  unsigned char hash[32];
  EVP_Digest(tbs, tbs_length, hash, nullptr, static_cast<EVP_MD *>(digest), nullptr);
  return EVP_PKEY_verify(static_cast<EVP_PKEY_CTX *>(context), signature, signature_length, hash, sizeof hash) == 1;
}

Path::Path(const std::vector<Bytes> &certificates) {
  STACK_OF(X509) *middle = sk_X509_new_null();
  X509_STORE *roots = X509_STORE_new();
  for (size_t i = 1; i + 1 < certificates.size(); ++i) sk_X509_push(middle, decoded(certificates[i]));
  X509 *root = decoded(certificates.back());
  X509_STORE_add_cert(roots, root);
  X509_free(root);
  end_entity = decoded(certificates.front());
  chain = middle;
  store = roots;
}
Path::~Path() {
  X509_free(static_cast<X509 *>(end_entity));
  sk_X509_pop_free(static_cast<STACK_OF(X509) *>(chain), X509_free);
  X509_STORE_free(static_cast<X509_STORE *>(store));
}
bool Path::verify() const {
  X509_STORE_CTX *context = X509_STORE_CTX_new();
  X509_STORE_CTX_init(context, static_cast<X509_STORE *>(store), static_cast<X509 *>(end_entity),
                      static_cast<STACK_OF(X509) *>(chain));
  X509_VERIFY_PARAM_set_flags(X509_STORE_CTX_get0_param(context), X509_V_FLAG_CHECK_SS_SIGNATURE);
  const bool valid = X509_verify_cert(context) == 1;
  X509_STORE_CTX_free(context);
  return valid;
}

RevocationList::RevocationList(const Bytes &der) {
  const unsigned char *at = der.data();
  list = d2i_X509_CRL(nullptr, &at, long(der.size()));
  if (!list) std::abort();
}
RevocationList::~RevocationList() { X509_CRL_free(static_cast<X509_CRL *>(list)); }
bool RevocationList::holds(const uint8_t *serial, size_t length) const {
  ASN1_INTEGER *number = ASN1_INTEGER_new();
  ASN1_STRING_set(number, serial, int(length));
  X509_REVOKED *found = nullptr;
  const int held = X509_CRL_get0_by_serial(static_cast<X509_CRL *>(list), &found, number);
  ASN1_INTEGER_free(number);
  return held == 1;
}
size_t RevocationList::encode() const {
  unsigned char *out = nullptr;
  const int length = i2d_re_X509_CRL_tbs(static_cast<X509_CRL *>(list), &out);
  OPENSSL_free(out);
  return size_t(length);
}

int decode_ocsp_response(const Bytes &der) {
  const unsigned char *at = der.data();
  OCSP_RESPONSE *response = d2i_OCSP_RESPONSE(nullptr, &at, long(der.size()));
  OCSP_BASICRESP *basic = OCSP_response_get1_basic(response);
  const int entries = basic ? OCSP_resp_count(basic) : -1;
  OCSP_BASICRESP_free(basic);
  OCSP_RESPONSE_free(response);
  return entries;
}

}  // namespace peer
