// RSA key generation.
#include <openssl/core_names.h>
#include <openssl/rsa.h>

#include "provider/internal/libcrypto.h"
#include "provider/internal/rsa.h"

using namespace velcrypto;

namespace {

constexpr int kMinGeneratedBits = 1024;
constexpr unsigned kUsualExponent = 65537;

using PkeyOwner = owned<EVP_PKEY, EVP_PKEY_free>;
using PkeyContextOwner = owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;

struct Progress {
  PKV_PROGRESS *report;
  void *context;
  int count;
};

int report_progress(EVP_PKEY_CTX *generation) {
  auto *progress = static_cast<Progress *>(EVP_PKEY_CTX_get_app_data(generation));
  return progress->report(++progress->count, progress->context) == 0;
}

PkeyOwner generate(int bits, unsigned exponent, Progress &progress) noexcept {
  const PkeyContextOwner context(EVP_PKEY_CTX_new_from_name(library_context(), "RSA", nullptr));
  const BnOwner e(BN_new());
  if (!context || !e || !BN_set_word(e.get(), exponent)) return nullptr;
  if (EVP_PKEY_keygen_init(context.get()) <= 0 || EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), bits) <= 0 ||
      EVP_PKEY_CTX_set1_rsa_keygen_pubexp(context.get(), e.get()) <= 0) {
    return nullptr;
  }
  EVP_PKEY_CTX_set_app_data(context.get(), &progress);
  if (progress.report) EVP_PKEY_CTX_set_cb(context.get(), report_progress);
  EVP_PKEY *key = nullptr;
  return EVP_PKEY_keygen(context.get(), &key) > 0 ? PkeyOwner(key) : nullptr;
}

BigintOwner component(const EVP_PKEY *key, const char *name) noexcept {
  BIGNUM *number = nullptr;
  if (!EVP_PKEY_get_bn_param(key, name, &number)) return nullptr;
  const BnOwner owner(number);
  return BigintOwner(new_from_bn(number));
}

int take_numbers(RSA_UNIT *key, const EVP_PKEY *made) noexcept {
  constexpr const char *names[] = {OSSL_PKEY_PARAM_RSA_N,         OSSL_PKEY_PARAM_RSA_E,
                                   OSSL_PKEY_PARAM_RSA_D,         OSSL_PKEY_PARAM_RSA_FACTOR1,
                                   OSSL_PKEY_PARAM_RSA_FACTOR2,   OSSL_PKEY_PARAM_RSA_EXPONENT1,
                                   OSSL_PKEY_PARAM_RSA_EXPONENT2, OSSL_PKEY_PARAM_RSA_COEFFICIENT1};
  std::array<BigintOwner, 8> at;
  for (size_t i = 0; i < at.size(); ++i) {
    at[i] = component(made, names[i]);
    if (!at[i]) return PKV_ERR_NO_MEMORY;
  }
  return PKV_Set_RSA_Params(key, at[0].get(), at[1].get(), at[2].get(), at[3].get(), at[4].get(), at[5].get(),
                            at[6].get(), at[7].get());
}

}  // namespace

int PKV_Generate_RSA(RSA_UNIT *key, int bits, unsigned int exponent, PKV_PROGRESS *progress, void *context) noexcept {
  if (!key) return PKV_ERR_NULL;
  if (exponent == 0) exponent = kUsualExponent;
  if (bits < kMinGeneratedBits || bits > kMaxRsaBits || exponent % 2 == 0 || exponent < 3) return PKV_ERR_BAD_VALUE;
  ErrorScope errors;
  Progress reporting{progress, context, 0};
  const PkeyOwner made = generate(bits, exponent, reporting);
  return made ? take_numbers(key, made.get()) : PKV_ERR_FAILED;
}
