#include "cms/internal/key_transport.h"

#include "x509/internal/rsa_parameters.h"

namespace velpki {

int set_key_encryption_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int padding, const RSAES_OAEP_PARAM *oaep,
                                 int function) noexcept {
  X509_ALGO_IDENTIFIER *fresh = nullptr;
  if (!set_algorithm(fresh, is_oaep(padding) ? row::kRsaesOaep : row::kRsaEncryption)) return fail(function, kNoMemory);
  owned<X509_ALGO_IDENTIFIER> owner(fresh);
  if (is_oaep(padding)) {
    DerWriter parameters;
    if (const int code = encode(oaep ? *oaep : RSAES_OAEP_PARAM(), parameters)) return code;
    if (const int code = parameters.result(function)) return code;
    if (!set_parameters(*fresh, parameters)) return fail(function, kNoMemory);
  }
  put(algorithm, std::move(owner));
  return 0;
}

namespace {

// Starts an operation of an RSA key that the caller owns alone.
int start_rsa(RSA_UNIT &key, const X509_ALGO_IDENTIFIER &algorithm, int padding, bool encrypt) noexcept {
  if (const int code = PKV_Init_RSAES(&key, padding, encrypt)) return code;
  Tlv parameters;
  const bool has_parameters = is_oaep(padding) && index_from_OBJECT_IDENTIFIER(algorithm.algorithm) == row::kRsaesOaep;
  if (!has_parameters || !parameters_view(algorithm, parameters)) return 0;
  const owned<RSAES_OAEP_PARAM> record(blank<RSAES_OAEP_PARAM>());
  if (!record) return PKV_ERR_NO_MEMORY;
  int digest_id = 0, mgf_digest_id = 0, label_length = 0;
  const uint8_t *label = nullptr;
  if (const int code = decode(parameters, *record)) return code;
  if (const int code = get_RSAES_OAEP_PARAM_values(record.get(), &digest_id, &mgf_digest_id, &label, &label_length)) {
    return code;
  }
  return PKV_Set_RSAES_OAEP(&key, digest_id, mgf_digest_id, label, label_length);
}

}  // namespace

int wrap_key(ASYMMETRIC_KEY *key, const X509_ALGO_IDENTIFIER &algorithm, int padding, Octets content_key, int function,
             owned<ASN1_STRING> &out) noexcept {
  RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  if (!rsa) return fail(function, kUnsupported);
  if (const int code = start_rsa(*rsa, algorithm, padding, true)) return code;
  int length = PKV_Get_RSA_Length(rsa);
  const owned<uint8_t> encrypted = new_octets(size_t(length));
  if (!encrypted) return fail(function, kNoMemory);
  const int code = PKV_Encrypt_RSAES(rsa, content_key.data(), int(content_key.size()), encrypted.get(), &length);
  if (code) return code;
  out.reset(new_string(TYPE_OCTET_STRING, octets_of(encrypted.get(), length)));
  return out ? 0 : fail(function, kNoMemory);
}

int unwrap_key(const RSA_UNIT &key, const X509_ALGO_IDENTIFIER &algorithm, int padding, Octets encrypted, int wanted,
               uint8_t *out) noexcept {
  const owned<RSA_UNIT> own(PKV_Dup_RSA(&key));
  const SecretOctets room(size_t(PKV_Get_RSA_Length(&key)) + 1);
  if (!own || !room) return PKV_ERR_NO_MEMORY;
  if (const int code = start_rsa(*own, algorithm, padding, false)) return code;
  int length = room.size();
  const int code = PKV_Decrypt_RSAES(own.get(), encrypted.data(), int(encrypted.size()), room.data(), &length);
  if (code) return code;
  if (length != wanted) return PKV_ERR_FAILED;
  copy_octets(out, octets_of(room.data(), length));
  return 0;
}

}  // namespace velpki
