// The contents of a PFX: safes, their bags, and the keys and certificates in them.
#include "keys/internal/pkcs12_import.h"

namespace velpki {

namespace {

constexpr int kNestedSafes = 8;

int add_key(Import &import, owned<P8_PRIV_KEY_INFO> key, const P12_SAFEBAG &bag) noexcept {
  owned<ImportedKey> entry(blank<ImportedKey>());
  if (!entry) return kNoMemory;
  entry->key = key.release();
  const ASN1_STRING *id = bag_string(&bag, row::kLocalKeyId);
  if (id && id->length > 0 && !(entry->id = dup_ASN1_STRING(id))) return kNoMemory;
  return import.keys.add(entry) ? 0 : kNoMemory;
}

// Name and identifier of the bag go into the certificate's X509_AUX.
int set_aux(X509_CERT &cert, const P12_SAFEBAG &bag) noexcept {
  const ASN1_STRING *id = bag_string(&bag, row::kLocalKeyId);
  if (id && id->length > 0 && set_X509_AUX_localkey(&cert, id)) return kNoMemory;
  int length = 0;
  bool no_memory = false;
  const owned<char> text = name_text(bag_string(&bag, row::kFriendlyName), length, no_memory);
  if (no_memory) return kNoMemory;
  if (!text) return 0;
  const owned<ASN1_STRING> name(new_string(TYPE_UTF8_STRING, octets_of_text({text.get(), size_t(length)})));
  return name && set_X509_AUX_friendly(&cert, name.get()) == 0 ? 0 : kNoMemory;
}

int add_cert(Import &import, P12_BAGS &value, const P12_SAFEBAG &bag) noexcept {
  if (index_from_OBJECT_IDENTIFIER(value.certType) != row::kX509Certificate) return 0;
  X509_CERT *decoded = nullptr;
  const int code = CertBag_to_X509_CERT(&value, &decoded);
  owned<X509_CERT> cert(decoded);
  if (code && reason_of(code) != kNoMemory && import.options.skip_certs) return ++import.skipped, 0;
  if (code) return reason_of(code);
  if (const int reason = set_aux(*cert, bag)) return reason;
  return import.found.add(cert) ? 0 : kNoMemory;
}

int walk_bags(Import &import, const Pkcs12Password &password, STACK &bags, int depth) noexcept;

int walk_bag(Import &import, const Pkcs12Password &password, P12_SAFEBAG &bag, int depth) noexcept {
  owned<P8_PRIV_KEY_INFO> key;
  switch (bag.kind) {
    case P12_KIND_KEY:
      key.reset(static_cast<P8_PRIV_KEY_INFO *>(std::exchange(bag.value, nullptr)));
      bag.kind = P12_KIND_NONE;
      return add_key(import, std::move(key), bag);
    case P12_KIND_SHROUDED:
      if (const int reason = open_shrouded(*static_cast<PKCS8 *>(bag.value), password, import.budget, key)) {
        return reason;
      }
      return add_key(import, std::move(key), bag);
    case P12_KIND_CERT:
      return add_cert(import, *static_cast<P12_BAGS *>(bag.value), bag);
    case P12_KIND_SAFE_BAGS:
      if (depth == kNestedSafes) return ERR_ASN1_DECODING;
      return walk_bags(import, password, *static_cast<STACK *>(bag.value), depth + 1);
    default:
      return 0;
  }
}

int walk_bags(Import &import, const Pkcs12Password &password, STACK &bags, int depth) noexcept {
  for (P12_SAFEBAG *bag : elements<P12_SAFEBAG>(&bags))
    if (const int reason = bag ? walk_bag(import, password, *bag, depth) : 0) return reason;
  return 0;
}

int walk_safe(Import &import, const Pkcs12Password &password, const P7_CONTENT_INFO &safe) noexcept {
  OwnedList<P12_SAFEBAG> bags;
  if (encrypted_data(&safe)) {
    if (const int reason = open_encrypted(safe, password, import.budget, bags.stack)) return reason;
  } else if (const auto *content = content_of<ASN1_STRING>(&safe, PKCS7_DATA)) {
    const int code = list_of_octets<P12_SAFEBAG>(octets(*content), F_SEQ_TO_P12_SAFEBAGS, decode_safe_bags, bags.stack);
    if (code) return reason_of(code);
  } else {
    return ERR_ASN1_DECODING;
  }
  return walk_bags(import, password, *bags.stack, 0);
}

struct FreeAuthSafe {
  void operator()(P12_AUTH_SAFE *list) const noexcept { free_P12_AUTH_SAFE(list); }
};

}  // namespace

int read_contents(Import &import, const Pkcs12Password &password, const PKCS12 &p12) noexcept {
  Octets octets;
  if (!auth_safe_octets(p12, octets)) return ERR_ASN1_DECODING;
  STACK *list = nullptr;
  const int code = list_of_octets<P7_CONTENT_INFO>(octets, F_SEQ_TO_P12_AUTH_SAFE, decode_auth_safe, list);
  const std::unique_ptr<P12_AUTH_SAFE, FreeAuthSafe> safes(list);
  if (code) return reason_of(code);
  for (const P7_CONTENT_INFO *safe : elements<P7_CONTENT_INFO>(safes.get()))
    if (const int reason = walk_safe(import, password, *safe)) return reason;
  return 0;
}

}  // namespace velpki
