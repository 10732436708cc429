// Key containers: every decoder, and opening them under a fixed password.
#include <velpki/pkcs12.h>

#include "target.h"

namespace {

constexpr int kIterations = 2048;  // the usual count, so that the files of others open

void open_container(const uint8_t *data, int size) {
  PKCS8 *p8 = nullptr;
  P8_PRIV_KEY_INFO *strict = nullptr, *plain = nullptr;
  if (readDER_PKCS8_from_Binary(&p8, data, size)) return;
  PKCS5_SCHEME scheme = PKCS5_SCHEME_NONE;
  const int code = decrypt_PKCS5_strict(p8, &strict, "password", 8, kIterations, &scheme);
  require((code == 0) == (strict != nullptr), "a key or a code");
  require((code == 0) == (scheme != PKCS5_SCHEME_NONE), "a scheme with the key");
  P5_PBE_PARAM *param = get_PKCS8_P5_PBE_PARAM(p8);
  const bool short_work = param && PKV_Get_BIGINT_Word(param->iteration) <= unsigned(kIterations);
  if (short_work && decrypt_PKCS5(p8, &plain, "password", 8) == 0) require(code == 0, "strict opens what plain opens");
  free_P5_PBE_PARAM(param);
  free_P8_PRIV_KEY_INFO(plain);
  free_P8_PRIV_KEY_INFO(strict);
  free_PKCS8(p8);
}

void release_keys(STACK *keys) {
  free_STACK_values(keys, [](void *key) { free_P8_PRIV_KEY_INFO(static_cast<P8_PRIV_KEY_INFO *>(key)); });
}

void import(const uint8_t *data, int size) {
  PKCS12 *p12 = nullptr;
  if (readDER_PKCS12_from_Binary(&p12, data, size)) return;
  for (const char *password : {static_cast<const char *>(nullptr), "password"}) {
    STACK *keys = nullptr, *certs = nullptr, *others = nullptr;
    int skipped = -1;
    const int code = import_PKCS12_ex(p12, password, -1, kIterations, PKCS12_UTF8 | PKCS12_WITHOUT_MAC, &keys, &certs,
                                      &others, &skipped);
    require((code == 0) == (keys && certs && others), "all lists or none");
    require((code == 0) == (skipped >= 0), "and the count");
    release_keys(keys);
    free_X509_CERTIFICATES(certs);
    free_X509_CERTIFICATES(others);
  }
  free_PKCS12(p12);
}

// The octets of a list of bags, as they stand in a safe without encryption and MAC.
void import_bags(const uint8_t *data, int size) {
  STACK *safes = new_STACK(), *keys = nullptr;
  P7_CONTENT_INFO *safe = nullptr;
  gen_PKCS7_DATA_from_Binary(&safe, data, size);
  push_STACK_value(safes, safe);
  PKCS12 *p12 = PKCS12_add_safes(safes);
  const int code = import_PKCS12(p12, nullptr, 0, &keys, nullptr, nullptr);
  require((code == 0) == (keys != nullptr), "a list or a code");
  release_keys(keys);
  free_PKCS12(p12);
  free_P12_AUTH_SAFE(safes);
}

// Families whose encoders and decoders have names of their own.
void key_info(const uint8_t *data, int size) {
  family<P8_PRIV_KEY_INFO>(data, size, Seq_to_P8_PRIV_KEY_INFO, P8_PRIV_KEY_INFO_to_Seq, dup_P8_PRIV_KEY_INFO,
                           free_P8_PRIV_KEY_INFO, Readable::perhaps);
  family<P8_PRIV_KEY_INFO>(data, size, Seq_to_P8_PRIV_KEY_INFO_RFC5280, P8_PRIV_KEY_INFO_to_Seq, dup_P8_PRIV_KEY_INFO,
                           free_P8_PRIV_KEY_INFO, Readable::perhaps);
}
void pbe_param(const uint8_t *data, int size) {
  family<P5_PBE_PARAM>(data, size, Seq_to_P5_PBE_PARAM, P5_PBE_PARAM_to_Seq, dup_P5_PBE_PARAM, free_P5_PBE_PARAM,
                       Readable::perhaps);
  family<P5_PBE_PARAM>(data, size, Seq_to_P5_PBE_PARAM_RFC5280, P5_PBE_PARAM_to_Seq_RFC5280, dup_P5_PBE_PARAM,
                       free_P5_PBE_PARAM, Readable::perhaps);
}
void container(const uint8_t *data, int size) {
  family<PKCS8>(data, size, Seq_to_P8_ENCRYPTED_KEY, P8_ENCRYPTED_KEY_to_Seq, dup_PKCS8, free_PKCS8,
                Readable::from_der);
}
void pfx(const uint8_t *data, int size) {
  family<PKCS12>(data, size, Seq_to_P12_PFX, P12_PFX_to_Seq, nullptr, free_PKCS12, Readable::perhaps);
  family<P12_MAC_DATA>(data, size, Seq_to_P12_MAC_DATA, P12_MAC_DATA_to_Seq, nullptr, free_P12_MAC_DATA,
                       Readable::from_der);
}
void bags(const uint8_t *data, int size) {
  family<P12_SAFEBAGS>(data, size, Seq_to_P12_SAFEBAGS, P12_SAFEBAGS_to_Seq, nullptr, free_P12_SAFEBAGS,
                       Readable::perhaps);
  family<P12_BAGS>(data, size, Seq_to_P12_BAGS, P12_BAGS_to_Seq, nullptr, free_P12_BAGS, Readable::from_der);
}

constexpr Target kTargets[] = {
    {"pkcs5_open", open_container}, {"pkcs5_param", pbe_param}, {"pkcs8_key", key_info}, {"pkcs8_container", container},
    {"pkcs12_import", import},      {"pkcs12_bags", bags},      {"pkcs12_pfx", pfx},     {"pkcs12_safe", import_bags},
};

}  // namespace

Targets keys_targets() { return kTargets; }
