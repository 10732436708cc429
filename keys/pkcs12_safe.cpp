// Safes: content infos of bags, and the file around them.
#include "keys/internal/pkcs12.h"

namespace velpki {

namespace {

constexpr int kUsualAlgorithm = row::kPbe3Des;
constexpr int kPlain = -1;

bool encode_bags(const STACK *bags, DerWriter &der) noexcept {
  return bags && encode_safe_bags(*bags, der) == 0 && !der.failed();
}

owned<P7_CONTENT_INFO> plain_safe(const STACK *bags) noexcept {
  DerWriter der({}, Content::secret);
  return encode_bags(bags, der) ? new_data(der.written()) : nullptr;
}

owned<P7_CONTENT_INFO> encrypted_safe(const Pkcs12Request &request, const STACK *bags) noexcept {
  DerWriter der({}, Content::secret);
  Protected result;
  if (!encode_bags(bags, der) || protect(request, der.written(), result)) return nullptr;
  owned<P7_CONTENT_INFO> p7(new_P7_CONTENT_INFO());
  if (!p7 || set_PKCS7_Type(p7.get(), PKCS7_ENCRYPTED_DATA)) return nullptr;
  P7_ENCRYPTED_CONTENT_INFO **place = encrypted_content(p7.get());
  if (!*place && !(*place = new_P7_ENCRYPTED_CONTENT_INFO())) return nullptr;
  const int code = set_PKCS7_P7_ENCRYPTED_CONTENT_INFO(*place, PKCS7_DATA, result.algorithm.get(), result.octets.get(),
                                                       result.length);
  return code ? nullptr : std::move(p7);
}

owned<P7_CONTENT_INFO> encrypted_safe(int pbe_index, const PasswordText &text, Octets salt, int salt_length,
                                      int iteration, const STACK *bags) noexcept {
  Pkcs12Password password;
  if (password.set(text)) return nullptr;
  return encrypted_safe({pbe_index, &password, salt, salt_length, iteration}, bags);
}

int add_safe(STACK **safes, const STACK *bags, int pbe_index, int iteration, const PasswordText &text) noexcept {
  if (!safes || !bags) return fail(F_PKCS12_ADD_SAFE, kNullArgument);
  const int index = pbe_index ? pbe_index : kUsualAlgorithm;
  owned<P7_CONTENT_INFO> safe =
      index == kPlain ? plain_safe(bags) : encrypted_safe(index, text, {}, 0, iteration, bags);
  if (!safe) return fail(F_PKCS12_ADD_SAFE, kFailedStep);
  STACK *fresh = *safes ? nullptr : new_STACK();
  STACK *list = *safes ? *safes : fresh;
  if (!list || !append(list, safe)) return free_STACK(fresh), fail(F_PKCS12_ADD_SAFE, kNoList);
  *safes = list;
  return 0;
}

P12_SAFEBAGS *open_safe(const P7_CONTENT_INFO *p7, const PasswordText &text) noexcept {
  Pkcs12Password password;
  Budget budget;
  P12_SAFEBAGS *bags = nullptr;
  if (!p7 || password.set(text)) return nullptr;
  return open_encrypted(*p7, password, budget, bags) ? nullptr : bags;
}

P8_PRIV_KEY_INFO *open_key(const P12_SAFEBAG *bag, const PasswordText &text) noexcept {
  Pkcs12Password password;
  Budget budget;
  owned<P8_PRIV_KEY_INFO> key;
  const auto *p8 = value_of<PKCS8>(bag, P12_KIND_SHROUDED);
  if (!p8 || password.set(text)) return nullptr;
  return open_shrouded(*p8, password, budget, key) ? nullptr : key.release();
}

}  // namespace

}  // namespace velpki

using namespace velpki;

P7_CONTENT_INFO *gen_PKCS12_p7data(STACK *bags) noexcept { return plain_safe(bags).release(); }
P7_CONTENT_INFO *gen_PKCS12_p7encdata(int pbe_index, const char *password, int password_length,
                                      const unsigned char *salt, int salt_length, int iteration, STACK *bags) noexcept {
  return encrypted_safe(pbe_index, {password, password_length, BmpPassword::Text::octets}, octets_of(salt, salt_length),
                        salt_length, iteration, bags)
      .release();
}
P7_CONTENT_INFO *gen_PKCS12_p7encdata_UTF8(int pbe_index, const char *password, int password_length,
                                           const unsigned char *salt, int salt_length, int iteration,
                                           STACK *bags) noexcept {
  return encrypted_safe(pbe_index, {password, password_length, BmpPassword::Text::utf8}, octets_of(salt, salt_length),
                        salt_length, iteration, bags)
      .release();
}

int PKCS12_add_safe(STACK **safes, STACK *bags, int pbe_index, int iteration, const char *password) noexcept {
  return add_safe(safes, bags, pbe_index, iteration, {password, -1, BmpPassword::Text::octets});
}
int PKCS12_add_safe_UTF8(STACK **safes, STACK *bags, int pbe_index, int iteration, const char *password) noexcept {
  return add_safe(safes, bags, pbe_index, iteration, {password, -1, BmpPassword::Text::utf8});
}

int P12_AUTH_SAFE_to_PKCS12(P12_AUTH_SAFE *safes, PKCS12 **p12) noexcept {
  if (!safes || !p12) return 1;
  DerWriter der({}, Content::secret);
  if (encode_auth_safe(*safes, der) || der.failed()) return 1;
  owned<P7_CONTENT_INFO> content = new_data(der.written());
  owned<PKCS12> fresh(*p12 ? nullptr : new_PKCS12());
  PKCS12 *target = *p12 ? *p12 : fresh.get();
  if (!content || !target) return 1;
  put(target->authSafe, std::move(content));
  free_P12_MAC_DATA(std::exchange(target->macData, nullptr));
  if (fresh) *p12 = fresh.release();
  return 0;
}
PKCS12 *PKCS12_add_safes(STACK *safes) noexcept {
  PKCS12 *p12 = nullptr;
  return P12_AUTH_SAFE_to_PKCS12(safes, &p12) ? nullptr : p12;
}

P12_AUTH_SAFE *PKCS12_to_P12_AUTH_SAFE(PKCS12 *p12) noexcept {
  Octets octets;
  STACK *safes = nullptr;
  if (!p12 || !auth_safe_octets(*p12, octets)) return nullptr;
  return list_of_octets<P7_CONTENT_INFO>(octets, F_SEQ_TO_P12_AUTH_SAFE, decode_auth_safe, safes) ? nullptr : safes;
}
P12_SAFEBAGS *get_PKCS12_p7data(P7_CONTENT_INFO *p7) noexcept {
  const auto *content = content_of<ASN1_STRING>(p7, PKCS7_DATA);
  STACK *bags = nullptr;
  if (!content) return nullptr;
  return list_of_octets<P12_SAFEBAG>(octets(*content), F_SEQ_TO_P12_SAFEBAGS, decode_safe_bags, bags) ? nullptr : bags;
}
P12_SAFEBAGS *get_PKCS12_p7encdata(P7_CONTENT_INFO *p7, const char *password, int length) noexcept {
  return open_safe(p7, {password, length, BmpPassword::Text::octets});
}
P12_SAFEBAGS *get_PKCS12_p7encdata_UTF8(P7_CONTENT_INFO *p7, const char *password, int length) noexcept {
  return open_safe(p7, {password, length, BmpPassword::Text::utf8});
}
P8_PRIV_KEY_INFO *get_PKCS12_shr_key(const P12_SAFEBAG *bag, const char *password, int length) noexcept {
  return open_key(bag, {password, length, BmpPassword::Text::octets});
}
P8_PRIV_KEY_INFO *get_PKCS12_shr_key_UTF8(const P12_SAFEBAG *bag, const char *password, int length) noexcept {
  return open_key(bag, {password, length, BmpPassword::Text::utf8});
}
