// Safe bags: making them, and their attributes.
#include <velpki/convert.h>

#include "keys/internal/pkcs12.h"

namespace velpki {

namespace {

// A bag of a kind whose value changes hands on success only.
template <class T>
owned<P12_SAFEBAG> new_bag(int row, int kind, owned<T> value) noexcept {
  owned<P12_SAFEBAG> bag(value ? new_P12_SAFEBAG() : nullptr);
  if (!bag || !(bag->bagType = index_to_OBJECT_IDENTIFIER(row))) return nullptr;
  bag->kind = kind;
  bag->value = value.release();
  return bag;
}

owned<P12_SAFEBAG> new_key_bag(const P8_PRIV_KEY_INFO *key) noexcept {
  return new_bag(row::kKeyBag, P12_KIND_KEY, owned<P8_PRIV_KEY_INFO>(key ? dup_P8_PRIV_KEY_INFO(key) : nullptr));
}

owned<PKCS8> shroud(const Pkcs12Request &request, const P8_PRIV_KEY_INFO &key) noexcept {
  DerWriter der({}, Content::secret);
  Protected result;
  if (encode(key, der) || der.failed() || protect(request, der.written(), result)) return nullptr;
  owned<PKCS8> p8(new_PKCS8());
  if (!p8 || set_encryptedData_PKCS8(p8.get(), result.octets.get(), result.length)) return nullptr;
  p8->kind = request.pbe_index == row::kPbes2 ? PKCS8_PBES2 : PKCS8_PBES1;
  p8->algorithm = result.algorithm.release();
  return p8;
}

owned<P12_SAFEBAG> new_shrouded_bag(int pbe_index, const PasswordText &text, Octets salt, int salt_length,
                                    int iteration, const P8_PRIV_KEY_INFO *key) noexcept {
  Pkcs12Password password;
  if (!key || password.set(text)) return nullptr;
  return new_bag(row::kShroudedKeyBag, P12_KIND_SHROUDED,
                 shroud({pbe_index, &password, salt, salt_length, iteration}, *key));
}

// Puts a finished bag into the list; what is returned is lent.
P12_SAFEBAG *add_bag(STACK **bags, owned<P12_SAFEBAG> bag, Octets id) noexcept {
  if (!bag || (!id.empty() && add_PKCS12_LKID(bag.get(), id.data(), int(id.size())))) return nullptr;
  if (add_PKCS12_bag(bags, bag.get())) return nullptr;
  return bag.release();
}

P12_SAFEBAG *add_key(STACK **bags, const P8_PRIV_KEY_INFO *key, Octets id, const PasswordText &text, int pbe_index,
                     int iteration) noexcept {
  return add_bag(bags, pbe_index == -1 ? new_key_bag(key) : new_shrouded_bag(pbe_index, text, {}, 0, iteration, key),
                 id);
}

int add_attribute(P12_SAFEBAG *bag, int row, int type, Octets value) noexcept {
  if (!bag) return 1;
  const owned<ASN1_STRING> string(new_string(type, value));
  if (!string || (!bag->attributes && !(bag->attributes = new_STACK()))) return 1;
  return add_X509_ATTRIBUTES_OID_INDEX(bag->attributes, row, type, string.get(), -1);
}

}  // namespace

const ASN1_STRING *bag_string(const P12_SAFEBAG *bag, int row) noexcept {
  for (const X509_ATTRIBUTE *each : elements<X509_ATTRIBUTE>(bag ? bag->attributes : nullptr)) {
    if (!each || index_from_OBJECT_IDENTIFIER(each->type) != row) continue;
    const int type = get_X509_ATTRIBUTE_data_type(each, 0);
    if (type < 0 || type & tag::kConstructed) return nullptr;
    return static_cast<const ASN1_STRING *>(get_X509_ATTRIBUTE_data(each, 0));
  }
  return nullptr;
}

namespace {

// Whether the octets are characters of the basic plane.
bool is_bmp_text(Octets octets) noexcept {
  if (octets.size() % 2 != 0) return false;
  for (size_t i = 0; i < octets.size(); i += 2)
    if (octets[i] >= 0xD8 && octets[i] <= 0xDF) return false;
  return true;
}

}  // namespace

owned<char> name_text(const ASN1_STRING *name, int &length, bool &no_memory) noexcept {
  no_memory = false;
  if (!name || name->type != TYPE_BMP_STRING || !is_bmp_text(octets(*name))) return nullptr;
  char *text = nullptr;
  length = unicodeToUTF8(name->data, name->length, &text);
  no_memory = length < 0;
  return owned<char>(text);
}

}  // namespace velpki

using namespace velpki;

int add_PKCS12_bag(STACK **bags, P12_SAFEBAG *bag) noexcept {
  if (!bags || !bag) return fail(F_ADD_PKCS12_BAG, kNullArgument);
  STACK *fresh = *bags ? nullptr : new_STACK();
  STACK *list = *bags ? *bags : fresh;
  if (!list) return fail(F_ADD_PKCS12_BAG, kNoList);
  if (!push_STACK_value(list, bag)) return free_STACK(fresh), fail(F_ADD_PKCS12_BAG, ERR_STK_ERROR);
  *bags = list;
  return 0;
}

P12_SAFEBAG *get_PKCS12_keybag(P8_PRIV_KEY_INFO *key) noexcept { return new_key_bag(key).release(); }
P12_SAFEBAG *get_PKCS12_shr_keybag(int pbe_index, const char *password, int length, const unsigned char *salt,
                                   int salt_length, int iteration, P8_PRIV_KEY_INFO *key) noexcept {
  return new_shrouded_bag(pbe_index, {password, length, BmpPassword::Text::octets}, octets_of(salt, salt_length),
                          salt_length, iteration, key)
      .release();
}
P12_SAFEBAG *get_PKCS12_shr_keybag_UTF8(int pbe_index, const char *password, int length, const unsigned char *salt,
                                        int salt_length, int iteration, P8_PRIV_KEY_INFO *key) noexcept {
  return new_shrouded_bag(pbe_index, {password, length, BmpPassword::Text::utf8}, octets_of(salt, salt_length),
                          salt_length, iteration, key)
      .release();
}

P12_SAFEBAG *add_PKCS12_keyinfo(STACK **bags, P8_PRIV_KEY_INFO *key, const unsigned char *lkid, int lkid_length,
                                const char *password, int password_length, int pbe_index, int iteration) noexcept {
  return add_key(bags, key, octets_of(lkid, lkid_length), {password, password_length, BmpPassword::Text::octets},
                 pbe_index, iteration);
}
P12_SAFEBAG *add_PKCS12_keyinfo_UTF8(STACK **bags, P8_PRIV_KEY_INFO *key, const unsigned char *lkid, int lkid_length,
                                     const char *password, int password_length, int pbe_index, int iteration) noexcept {
  return add_key(bags, key, octets_of(lkid, lkid_length), {password, password_length, BmpPassword::Text::utf8},
                 pbe_index, iteration);
}

P12_SAFEBAG *add_PKCS12_cert(STACK **bags, X509_CERT *cert, const unsigned char *lkid, int lkid_length) noexcept {
  P12_BAGS *made = nullptr;
  if (X509_CERT_to_CertBag(cert, &made)) return nullptr;
  return add_bag(bags, new_bag(row::kCertBag, P12_KIND_CERT, owned<P12_BAGS>(made)), octets_of(lkid, lkid_length));
}

int add_PKCS12_LKID(P12_SAFEBAG *bag, const unsigned char *id, int length) noexcept {
  return id && length >= 0 ? add_attribute(bag, row::kLocalKeyId, TYPE_OCTET_STRING, octets_of(id, length)) : 1;
}
int add_PKCS12_friendlyname_ASC(P12_SAFEBAG *bag, const char *name, int length) noexcept {
  if (!name || length < -1) return 1;
  const size_t size = length < 0 ? std::strlen(name) : size_t(length);
  return add_attribute(bag, row::kFriendlyName, TYPE_BMP_STRING, octets_of_text({name, size}));
}
int add_PKCS12_friendlyname_UNI(P12_SAFEBAG *bag, const unsigned char *name, int length) noexcept {
  return name && length >= 0 ? add_attribute(bag, row::kFriendlyName, TYPE_BMP_STRING, octets_of(name, length)) : 1;
}
int add_PKCS12_friendlyname_UTF8(P12_SAFEBAG *bag, const char *name, int length) noexcept {
  unsigned char *wide = nullptr;
  const int size = name ? utf8ToUnicode(name, length, &wide) : -1;
  const owned<uint8_t> owner(wide);
  return size < 0 ? 1 : add_attribute(bag, row::kFriendlyName, TYPE_BMP_STRING, octets_of(wide, size));
}

X509_ATTRIBUTE *get_PKCS12_attribute(P12_SAFEBAG *bag, int oid_index) noexcept {
  for (X509_ATTRIBUTE *each : elements<X509_ATTRIBUTE>(bag ? bag->attributes : nullptr))
    if (each && oid_index > 0 && index_from_OBJECT_IDENTIFIER(each->type) == oid_index) return each;
  return nullptr;
}
char *get_PKCS12_friendlyname(P12_SAFEBAG *bag) noexcept {
  const ASN1_STRING *name = bag_string(bag, row::kFriendlyName);
  char *text = nullptr;
  return name && name->type == TYPE_BMP_STRING && uniToasc(name->data, name->length, &text) >= 0 ? text : nullptr;
}
char *get_PKCS12_friendlyname_UTF8(P12_SAFEBAG *bag) noexcept {
  int length = 0;
  bool no_memory = false;
  return name_text(bag_string(bag, row::kFriendlyName), length, no_memory).release();
}
