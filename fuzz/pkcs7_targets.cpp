// PKCS#7: records, messages in any BER, verification and decryption with a fixed key.
#include <velpki/pkcs7.h>

#include "target.h"

namespace {

void normalize(const uint8_t *data, int size) {
  Owned<unsigned char> out, again;
  const int length = normalize_BER(data, size, &out);
  if (length < 0) return require(out == nullptr, "failure stores nothing");
  const Owned<ASN1_UNIT> der(decodeToDERSequence_strict(out, length));
  require(der != nullptr || length > 0, "a result");
  require(normalize_BER(out, length, &again) == length, "the form is final");
  require(std::memcmp(out, again, size_t(length)) == 0, "octet for octet");
}

// A message goes through everything that looks into it.
void use(P7_CONTENT_INFO *p7, const uint8_t *data, int size) {
  static const unsigned char key[32] = {1, 2, 3};
  verify_PKCS7(p7, nullptr, data, size);
  P7_SIGNER_REPORT reports[4];
  int count = 4, length = 0;
  verify_PKCS7_strict(p7, nullptr, nullptr, nullptr, 0, PKCS7_ALLOW_WEAK_DIGESTS, reports, &count);
  require(count >= 0 && count <= 4, "reports within their room");
  const int room = get_PKCS7_ENCRYPTED_CONTENT_length(p7);
  if (room > 0) {
    const Owned<unsigned char> out(static_cast<unsigned char *>(PKV_Malloc(size_t(room), __FILE__, __LINE__)));
    if (decrypt_PKCS7(p7, key, nullptr, out, &length) == 0) require(length <= room, "no more than the ciphertext");
    verify_decrypt_PKCS7(p7, nullptr, key, out, &length);
  }
  final_PKCS7_Sign(p7);
  final_PKCS7_Encrypt(p7, nullptr, nullptr);
}

void messages(const uint8_t *data, int size) {
  Owned<P7_CONTENT_INFO> p7, standard;
  if (readDER_P7_CONTENT_INFO_from_Binary(&p7, data, size) == 0) use(p7, data, size);
  if (readBER_P7_CONTENT_INFO_from_Binary(&standard, data, size) == 0) use(standard, data, size);
}

constexpr Target kTargets[] = {
    {"normalize_ber", normalize},
    {"p7_message", messages},
    {"p7_content_info", KEY_FAMILY(P7_CONTENT_INFO, nullptr)},
    {"p7_content_info_rfc5280", STANDARD_FAMILY_OF(P7_CONTENT_INFO, nullptr, perhaps)},
    {"p7_signer_info", FAMILY(P7_SIGNER_INFO, nullptr)},
    {"p7_signer_infos", FAMILY(P7_SIGNER_INFOS, nullptr)},
    {"p7_recipient_info", FAMILY(P7_RECIPIENT_INFO, nullptr)},
    {"p7_recipient_infos", FAMILY(P7_RECIPIENT_INFOS, nullptr)},
    {"p7_issuer_and_serial", FAMILY(P7_ISSUER_AND_SERIAL_NUMBER, nullptr)},
    {"p7_encrypted_content", FAMILY(P7_ENCRYPTED_CONTENT_INFO, nullptr)},
    {"p7_signed_data", KEY_FAMILY(P7_SIGNED_DATA, nullptr)},
    {"p7_enveloped_data", FAMILY(P7_ENVELOPED_DATA, nullptr)},
    {"p7_signed_and_enveloped", KEY_FAMILY(P7_SIGNED_AND_ENVELOPED_DATA, nullptr)},
    {"p7_digested_data", KEY_FAMILY(P7_DIGESTED_DATA, nullptr)},
    {"p7_encrypted_data", FAMILY(P7_ENCRYPTED_DATA, nullptr)},
    {"p7_digest_info", FAMILY(P7_DIGEST_INFO, nullptr)},
};

const Registered kRegistered(kTargets);

}  // namespace
