// CMS: records, messages in any BER, verification, and decryption with fixed keys.
#include <velpki/cms.h>

#include "target.h"

namespace {

constexpr unsigned char kKey[32] = {1, 2, 3};

// A private key and a certificate that names no recipient: what is found by key identifier or password goes on.
void open_all(CMS_CONTENT_INFO *cms) {
  CMS_OPENER opener = {};
  opener.kek = kKey;
  opener.password = kKey;
  opener.password_length = 3;
  for (const int length : {16, 24, 32}) {
    unsigned char key[64], plain[4096];
    int key_length = int(sizeof key), plain_length = int(sizeof plain);
    opener.kek_length = length;
    if (decrypt_content_encryption_key_ex(cms, &opener, key, &key_length) == 0) {
      require(key_length <= int(sizeof key), "a key that fits");
    }
    if (decrypt_CMS_strict(cms, &opener, plain, &plain_length) == 0) {
      require(plain_length <= int(sizeof plain), "no more than the room");
    }
    plain_length = int(sizeof plain);
    decrypt_CMS_n(cms, kKey, nullptr, plain, &plain_length);
    verify_authenticated_CMS(cms, &opener, nullptr, 0);
  }
}

void use(CMS_CONTENT_INFO *cms, const uint8_t *data, int size) {
  verify_CMS(cms, nullptr, data, size);
  CMS_SIGNER_REPORT reports[4];
  int count = 4;
  verify_CMS_strict(cms, nullptr, nullptr, nullptr, 0, CMS_ALLOW_WEAK_DIGESTS, reports, &count);
  require(count >= 0 && count <= 4, "reports within their room");
  open_all(cms);
  final_CMS_Sign(cms);
  final_CMS_Encrypt(cms, nullptr, nullptr);
}

// Passwords with many iterations are slow by design: such messages are read, not opened.
bool is_slow(const uint8_t *data, int size) {
  for (int i = 0; i + 5 < size; ++i)
    if (data[i] == 2 && data[i + 1] >= 3 && data[i + 1] <= 4) return true;
  return false;
}

void messages(const uint8_t *data, int size) {
  Owned<CMS_CONTENT_INFO> cms, standard;
  if (is_slow(data, size)) return;
  if (readDER_CMS_CONTENT_INFO_from_Binary(&cms, data, size) == 0) use(cms, data, size);
  if (readBER_CMS_CONTENT_INFO_from_Binary(&standard, data, size) == 0) use(standard, data, size);
}

constexpr Target kTargets[] = {
    {"cms_message", messages},
    {"cms_content_info", KEY_FAMILY(CMS_CONTENT_INFO, nullptr)},
    {"cms_content_info_rfc5280", STANDARD_FAMILY_OF(CMS_CONTENT_INFO, nullptr, perhaps)},
    {"cms_signer_info", FAMILY(CMS_SIGNER_INFO, nullptr)},
    {"cms_signer_infos", FAMILY(CMS_SIGNER_INFOS, nullptr)},
    {"cms_recipient_info", FAMILY(CMS_RECIPIENT_INFO, nullptr)},
    {"cms_recipient_infos", FAMILY(CMS_RECIPIENT_INFOS, nullptr)},
    {"cms_signed_data", KEY_FAMILY(CMS_SIGNED_DATA, nullptr)},
    {"cms_originator_info", KEY_FAMILY(CMS_ORIGINATOR_INFO, nullptr)},
    {"cms_enveloped_data", KEY_FAMILY(CMS_ENVELOPED_DATA, nullptr)},
    {"cms_encrypted_data", FAMILY(CMS_ENCRYPTED_DATA, nullptr)},
    {"cms_encrypted_content_info", FAMILY(CMS_ENCRYPTED_CONTENT_INFO, nullptr)},
    {"cms_encapsulated_content_info", FAMILY(ENCAPSULATED_CONTENT_INFO, nullptr)},
    {"cms_digested_data", FAMILY(CMS_DIGESTED_DATA, nullptr)},
    {"cms_authenticated_data", KEY_FAMILY(CMS_AUTHENTICATED_DATA, nullptr)},
};

const Registered kRegistered(kTargets);

}  // namespace
