// Setting up a recipient.
#include "cms/internal/key_transport.h"
#include "cms/internal/pkcs7.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_SET_PKCS7_P7_RECIPIENT_INFO, reason); }

int make_recipient(const X509_CERT &cert, int padding, const RSAES_OAEP_PARAM *oaep, P7_RECIPIENT_INFO &out) noexcept {
  const X509_PUBKEY *spki = get_X509_SPKI(&cert);
  if (!spki || !ASYMMETRIC_KEY_to_RSA_UNIT(spki->key)) return failure(kUnsupported);
  if (!set_version(out.version, 0) || !set_issuer_and_serial(out.issuerAndSerialNumber, cert)) {
    return failure(kNoMemory);
  }
  const int code =
      set_key_encryption_algorithm(out.keyEncryptionAlgorithm, padding, oaep, F_SET_PKCS7_P7_RECIPIENT_INFO);
  if (code) return code;
  out.publicKey = dup_ASYMMETRIC_KEY(spki->key);
  return out.publicKey ? 0 : failure(kNoMemory);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_PKCS7_P7_RECIPIENT_INFO(P7_RECIPIENT_INFO *ri, X509_CERT *cert, int padding, RSAES_OAEP_PARAM *oaep) noexcept {
  if (!ri || !cert || !get_X509_issuer(cert) || !get_X509_serial(cert)) return failure(kNullArgument);
  const owned<P7_RECIPIENT_INFO> fresh(new_P7_RECIPIENT_INFO());
  if (!fresh) return failure(kNoMemory);
  if (const int code = make_recipient(*cert, padding, oaep, *fresh)) return code;
  std::swap(*fresh, *ri);
  return 0;
}

P7_RECIPIENT_INFO *add_PKCS7_Recipient_withEncryptedAlgorithm(P7_CONTENT_INFO *p7, X509_CERT *cert, int padding,
                                                              RSAES_OAEP_PARAM *oaep) noexcept {
  owned<P7_RECIPIENT_INFO> recipient(new_P7_RECIPIENT_INFO());
  if (!recipient || set_PKCS7_P7_RECIPIENT_INFO(recipient.get(), cert, padding, oaep)) return nullptr;
  return add_PKCS7_P7_RECIPIENT_INFO(p7, recipient.get()) ? nullptr : recipient.release();
}

P7_RECIPIENT_INFO *add_PKCS7_Recipient(P7_CONTENT_INFO *p7, X509_CERT *cert) noexcept {
  return add_PKCS7_Recipient_withEncryptedAlgorithm(p7, cert, 0, nullptr);
}
