#include "cms/internal/ecdsa.h"

#include "cms/internal/key_wrap.h"
#include "x509/internal/signature.h"

namespace velpki {

namespace {

struct EcdsaAlgorithm {
  std::string_view oid;
  int digest_id;
};
constexpr EcdsaAlgorithm kAlgorithms[] = {
    {"1.2.840.10045.4.1", PKV_DIGEST_SHA1},     {"1.2.840.10045.4.3.1", PKV_DIGEST_SHA224},
    {"1.2.840.10045.4.3.2", PKV_DIGEST_SHA256}, {"1.2.840.10045.4.3.3", PKV_DIGEST_SHA384},
    {"1.2.840.10045.4.3.4", PKV_DIGEST_SHA512},
};

}  // namespace

int ecdsa_digest(const OBJECT_IDENTIFIER &oid) noexcept {
  for (const EcdsaAlgorithm &each : kAlgorithms)
    if (text(oid) == each.oid) return each.digest_id;
  return 0;
}

int set_ecdsa_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int digest_id, int function) noexcept {
  for (const EcdsaAlgorithm &each : kAlgorithms)
    if (digest_id == each.digest_id) return set_algorithm_text(algorithm, each.oid, {}, function);
  return fail(function, kUnsupported);
}

bool is_ecdsa(const X509_ALGO_IDENTIFIER *digest, const X509_ALGO_IDENTIFIER *signature) noexcept {
  const int named = signature && signature->algorithm ? ecdsa_digest(*signature->algorithm) : 0;
  return named && named == digest_id_of(digest);
}

int sign_on_curve(const ASYMMETRIC_KEY &key, const OBJECT_IDENTIFIER &algorithm, Octets octets, int function,
                  owned<ASN1_STRING> &out) noexcept {
  DerWriter signature;
  if (const int code = sign_octets(octets, algorithm, key, function, signature)) return code;
  out.reset(new_string(TYPE_OCTET_STRING, signature.written()));
  return out ? 0 : fail(function, kNoMemory);
}

}  // namespace velpki
