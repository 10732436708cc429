// Key containers: every decoder, and opening them under a fixed password.
#include <velpki/pkcs12.h>

#include "target.h"

namespace {

constexpr int kIterations = 2048;  // the usual count, so that the files of others open

void open_container(const uint8_t *data, int size) {
  Owned<PKCS8> p8;
  Owned<P8_PRIV_KEY_INFO> strict, plain;
  if (readDER_PKCS8_from_Binary(&p8, data, size)) return;
  PKCS5_SCHEME scheme = PKCS5_SCHEME_NONE;
  const int code = decrypt_PKCS5_strict(p8, &strict, "password", 8, kIterations, &scheme);
  require((code == 0) == (strict != nullptr), "a key or a code");
  require((code == 0) == (scheme != PKCS5_SCHEME_NONE), "a scheme with the key");
  const Owned<P5_PBE_PARAM> param(get_PKCS8_P5_PBE_PARAM(p8));
  const bool short_work = param && PKV_Get_BIGINT_Word(param->iteration) <= unsigned(kIterations);
  // What the plain form opens the strict one need not: house rules take more, and one code stands for all failures.
  if (short_work) decrypt_PKCS5(p8, &plain, "password", 8);
}

void release_keys(STACK *keys) {
  free_STACK_values(keys, [](void *key) { free_P8_PRIV_KEY_INFO(static_cast<P8_PRIV_KEY_INFO *>(key)); });
}

void import(const uint8_t *data, int size) {
  Owned<PKCS12> p12;
  if (readDER_PKCS12_from_Binary(&p12, data, size)) return;
  for (const char *password : {static_cast<const char *>(nullptr), "password"}) {
    Owned<STACK, release_keys> keys;
    Owned<STACK, free_X509_CERTIFICATES> certs, others;
    int skipped = -1;
    const int code = import_PKCS12_ex(p12, password, -1, kIterations, PKCS12_UTF8 | PKCS12_WITHOUT_MAC, &keys, &certs,
                                      &others, &skipped);
    require((code == 0) == (keys && certs && others), "all lists or none");
    require((code == 0) == (skipped >= 0), "and the count");
  }
}

// The octets of a list of bags, as they stand in a safe without encryption and MAC.
void import_bags(const uint8_t *data, int size) {
  const Owned<STACK, free_P12_AUTH_SAFE> safes(new_STACK());
  Owned<STACK, release_keys> keys;
  P7_CONTENT_INFO *safe = nullptr;
  gen_PKCS7_DATA_from_Binary(&safe, data, size);
  push_STACK_value(safes, safe);
  const Owned<PKCS12> p12(PKCS12_add_safes(safes));
  const int code = import_PKCS12(p12, nullptr, 0, &keys, nullptr, nullptr);
  require((code == 0) == (keys != nullptr), "a list or a code");
}

#define AS_NAMED(T, name, copy, when) FAMILY_OF(T, Seq_to_##name, name##_to_Seq, copy, free_##T, when)

constexpr Target kTargets[] = {
    {"pkcs5_open", open_container},
    {"pkcs5_param", KEY_FAMILY(P5_PBE_PARAM, dup_P5_PBE_PARAM)},
    {"pkcs5_param_rfc5280", STANDARD_FAMILY_OF(P5_PBE_PARAM, dup_P5_PBE_PARAM, perhaps)},
    {"pkcs8_key", KEY_FAMILY(P8_PRIV_KEY_INFO, dup_P8_PRIV_KEY_INFO)},
    {"pkcs8_key_rfc5280", FAMILY_OF(P8_PRIV_KEY_INFO, Seq_to_P8_PRIV_KEY_INFO_RFC5280, P8_PRIV_KEY_INFO_to_Seq,
                                    dup_P8_PRIV_KEY_INFO, free_P8_PRIV_KEY_INFO, perhaps)},
    {"pkcs8_container", AS_NAMED(PKCS8, P8_ENCRYPTED_KEY, dup_PKCS8, from_der)},
    {"pkcs12_import", import},
    {"pkcs12_bags", KEY_FAMILY(P12_SAFEBAGS, nullptr)},
    {"pkcs12_bag", FAMILY(P12_BAGS, nullptr)},
    {"pkcs12_pfx", AS_NAMED(PKCS12, P12_PFX, nullptr, perhaps)},
    {"pkcs12_mac", FAMILY(P12_MAC_DATA, nullptr)},
    {"pkcs12_safe", import_bags},
};

const Registered kRegistered(kTargets);

}  // namespace
