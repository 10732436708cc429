// Verifying without the tolerances of verify_PKCS7.
#include "cms/internal/content_cipher.h"
#include "cms/internal/pkcs7_strict.h"
#include "cms/internal/signer_state.h"
#include "cms/internal/strict.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_P7_VERIFY, reason); }

// What all signers of a message share.
struct Task {
  const P7_CONTENT_INFO &p7;
  const OBJECT_IDENTIFIER *content_type;
  const OBJECT_IDENTIFIER *bare_type;  // the type that a signer without attributes is taken to sign
  ContentDigests &digests;
  bool weak_allowed;
  const DigestCipher *cipher = nullptr;
};

SignerName name_of(const P7_SIGNER_INFO &signer) noexcept {
  const P7_ISSUER_AND_SERIAL_NUMBER *name = signer.issuerAndSerialNumber;
  return name ? SignerName{nullptr, name->issuer, name->serialNumber, received_name(kept_of(signer))} : SignerName();
}

// The signer's signature out of the cipher that it may be in.
int open_signature(const ASN1_STRING *encrypted, const DigestCipher &cipher, owned<ASN1_STRING> &out) noexcept {
  if (!encrypted) return failure(kNullArgument);
  int length = 0;
  const owned<uint8_t> room = new_octets(size_t(encrypted->length) + 1);
  if (!room) return failure(kNoMemory);
  const int code = decrypt_content(cipher.cipher_id, cipher.key, cipher.iv, octets(*encrypted), room.get(), &length);
  if (code) return code;
  out.reset(new_string(TYPE_OCTET_STRING, octets_of(room.get(), length)));
  return out ? 0 : failure(kNoMemory);
}

int verify_one(const P7_SIGNER_INFO &signer, const Task &task, const X509_CERT *cert) noexcept {
  const X509_PUBKEY *key = get_X509_SPKI(cert);
  if (!key) return failure(ERR_NO_SIGNER_CERTIFICATE);
  DerWriter attributes;
  if (!write_kept_attributes(kept_of(signer), signer.authenticatedAttributes, attributes)) {
    return failure(ERR_ASN1_DECODING);
  }
  owned<ASN1_STRING> opened;
  if (task.cipher) {
    if (const int code = open_signature(signer.encryptedDigest, *task.cipher, opened)) return code;
  }
  const StrictSigner strict{attributes.written(), signer.digestAlgorithm, signer.digestEncryptionAlgorithm,
                            task.cipher ? opened.get() : signer.encryptedDigest};
  const OBJECT_IDENTIFIER *type = strict.attributes.empty() ? task.bare_type : task.content_type;
  return verify_signer_strict(strict, type, *key, task.weak_allowed, task.digests, F_P7_VERIFY);
}

int verify_all(const Task &task, const X509_CERT *chosen, const X509_CERTIFICATES *more,
               Reports<P7_SIGNER_REPORT> &reports) noexcept {
  return verify_each<P7_SIGNER_INFO>(signer_infos(&task.p7), {chosen, certificates_of(&task.p7), more}, task, reports,
                                     F_P7_VERIFY, name_of, verify_one);
}

}  // namespace

int verify_sealed(const P7_CONTENT_INFO &p7, const X509_CERTIFICATES *more, Octets content, int flags,
                  const DigestCipher &cipher) noexcept {
  ContentDigests digests(content);
  const owned<OBJECT_IDENTIFIER> type = oid_of_row(PKCS7_DATA);
  if (!type) return failure(kNoMemory);
  const bool weak_allowed = flags & PKCS7_ALLOW_WEAK_DIGESTS;
  Reports<P7_SIGNER_REPORT> none(nullptr, nullptr);
  return verify_all({p7, type.get(), type.get(), digests, weak_allowed, &cipher}, nullptr, more, none);
}

}  // namespace velpki

using namespace velpki;

int verify_PKCS7_strict(const P7_CONTENT_INFO *p7, const X509_CERT *cert, const X509_CERTIFICATES *more,
                        const unsigned char *data, int length, int flags, P7_SIGNER_REPORT *reports,
                        int *report_count) noexcept {
  Reports<P7_SIGNER_REPORT> made(reports, report_count);
  if (!p7 || length < 0) return failure(kNullArgument);
  const P7_SIGNED_DATA *signed_content = signed_data(p7);
  if (!signed_content && !signed_and_enveloped_data(p7)) return failure(kUnsupported);
  if (signed_content && !signed_content->contentInfo) return failure(kNullArgument);
  MessageContent content(kStandardRules);
  if (const int code = content.load(*p7)) return code;
  const Octets held = content.octets(), given = octets_of(data, length);
  Octets chosen;
  if (const int code =
          choose_content(content.present() ? &held : nullptr, data ? &given : nullptr, F_P7_VERIFY, chosen)) {
    return code;
  }
  ContentDigests digests(chosen);
  const owned<OBJECT_IDENTIFIER> data_type = oid_of_row(PKCS7_DATA);
  if (!data_type) return failure(kNoMemory);
  const OBJECT_IDENTIFIER *type = signed_content ? signed_content->contentInfo->contentType : data_type.get();
  const OBJECT_IDENTIFIER *bare_type = flags & PKCS7_ALLOW_BARE_SIGNERS ? data_type.get() : type;
  return verify_all({*p7, type, bare_type, digests, bool(flags & PKCS7_ALLOW_WEAK_DIGESTS)}, cert, more, made);
}
