#include "cms/internal/encrypted_content.h"

namespace velpki {

const X509_ALGO_IDENTIFIER *content_algorithm(const P7_ENCRYPTED_CONTENT_INFO *info,
                                              const X509_ALGO_IDENTIFIER *asked) noexcept {
  return asked ? asked : info ? info->contentEncryptionAlgorithm : nullptr;
}

namespace {

constexpr int kPasswordBased = 4;  // the class of algorithms whose parameters are not an IV

// Whether an IV becomes the parameters. Those of encrypted data are kept when they are there, and where the algorithm
// is password-based.
bool takes_iv(const X509_ALGO_IDENTIFIER &algorithm, bool encrypted_data) noexcept {
  if (!encrypted_data) return true;
  const bool empty = !algorithm.parameters || algorithm.parameters->type == TYPE_NULL;
  return empty && get_AlgorType_from_OID(algorithm.algorithm) != kPasswordBased;
}

int start_content(const X509_ALGO_IDENTIFIER &algorithm, const ContentArguments &with, int function,
                  P7_ENCRYPTED_CONTENT_INFO &fresh) noexcept {
  if (!fresh.cipher) {
    const int cipher_id = content_cipher_id(&algorithm);
    if (!cipher_id) return fail(function, kUnsupported);
    owned<BLOCK_CIPHER_UNIT> unit;
    if (const int code = start_content_cipher(cipher_id, with.key, with.iv, function, unit)) return code;
    fresh.cipher = unit.release();
  }
  fresh.contentType = index_to_OBJECT_IDENTIFIER(PKCS7_DATA);
  fresh.contentEncryptionAlgorithm = dup_X509_ALGO_IDENTIFIER(&algorithm);
  fresh.progress = allocate_record<CONTENT_ENCRYPTION>();
  if (!fresh.contentType || !fresh.contentEncryptionAlgorithm || !fresh.progress) return fail(function, kNoMemory);
  const bool stored =
      !takes_iv(algorithm, with.encrypted_data) || set_iv_parameters(*fresh.contentEncryptionAlgorithm, *fresh.cipher);
  return stored ? 0 : fail(function, kNoMemory);
}

}  // namespace

int replace_encrypted_content(P7_ENCRYPTED_CONTENT_INFO *&place, const ContentArguments &with, int function) noexcept {
  const X509_ALGO_IDENTIFIER *algorithm = content_algorithm(place, with.algorithm);
  if (!algorithm) return fail(function, kNullArgument);
  owned<P7_ENCRYPTED_CONTENT_INFO> fresh(new_P7_ENCRYPTED_CONTENT_INFO());
  if (!fresh) return fail(function, kNoMemory);
  const bool brought = with.encrypted_data && place && place->cipher;
  if (brought) fresh->cipher = place->cipher;
  const int code = start_content(*algorithm, with, function, *fresh);
  if (code && brought) fresh->cipher = nullptr;
  if (code) return code;
  if (brought) place->cipher = nullptr;
  put(place, std::move(fresh));
  return 0;
}

}  // namespace velpki
