// Import: the keys and certificates of a PFX, and which belong together.
#include "keys/internal/pkcs12.h"

namespace velpki {
namespace {

// A key that was found, with the local key identifier of its bag.
struct ImportedKey {
  P8_PRIV_KEY_INFO *key;
  OCTET_STRING *id;
};

}  // namespace

template <>
inline constexpr auto owned_fields<ImportedKey> = std::tuple(own(&ImportedKey::key), own(&ImportedKey::id));
template <>
struct Flat<ImportedKey> {
  static void release(ImportedKey *key) noexcept { destroy(key); }
};

namespace {

constexpr int failure(int reason) noexcept { return fail(F_IMPORT_PKCS12, reason); }
constexpr int kNoList = 0x3B;
constexpr int kNestedSafes = 8;
constexpr long long kPairs = 4000000;  // of keys and certificates that are compared

// A list that owns its elements.
template <class E>
struct List {
  List() noexcept = default;
  List(const List &) = delete;
  List &operator=(const List &) = delete;
  ~List() { destroy_list<E>(stack); }
  int count() const noexcept { return stack ? stack->count : 0; }
  E *take(int index) noexcept { return static_cast<E *>(std::exchange(stack->data[index], nullptr)); }
  // Takes the element over, on success only; room is doubled, so that many elements take linear time.
  bool add(owned<E> &element) noexcept {
    if (!stack && !(stack = new_STACK())) return false;
    if (stack->count == stack->capacity && !reserve_stack(stack, 2 * stack->capacity)) return false;
    return append(stack, element);
  }
  STACK *stack = nullptr;
};

struct Options {
  bool any_digest = false, utf8 = false, without_mac = false, skip_certs = false, strict = false;
  int maximum = PKCS5_MAX_ITERATIONS;
};

struct Import {
  explicit Import(const Options &with) noexcept : options(with), budget(with.maximum) {
    budget.pbes1 = with.any_digest;
  }
  Options options;
  Budget budget;
  List<ImportedKey> keys;
  List<X509_CERT> found;  // certificates in the order of the file
  List<X509_CERT> own, others;
  int skipped = 0;
};

// The reasons that are the caller's to know; all else is a file that cannot be read.
int shown(int reason) noexcept {
  switch (reason) {
    case 0:
    case kBadValue:
    case kNoList:
    case kNoMemory:
    case kUnsupported:
    case kMismatch:
      return reason;
    default:
      return ERR_ASN1_DECODING;
  }
}

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
  List<P12_SAFEBAG> bags;
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

int walk_file(Import &import, const Pkcs12Password &password, const PKCS12 &p12) noexcept {
  Octets octets;
  List<P7_CONTENT_INFO> safes;
  if (!auth_safe_octets(p12, octets)) return ERR_ASN1_DECODING;
  const int code = list_of_octets<P7_CONTENT_INFO>(octets, F_SEQ_TO_P12_AUTH_SAFE, decode_auth_safe, safes.stack);
  if (code) return reason_of(code);
  for (const P7_CONTENT_INFO *safe : elements<P7_CONTENT_INFO>(safes.stack))
    if (const int reason = walk_safe(import, password, *safe)) return reason;
  return 0;
}

bool same_id(const ImportedKey &key, const X509_CERT &cert) noexcept {
  return same_octets(key.id, get_X509_AUX_localkey(&cert));
}
bool same_key(const ImportedKey &key, const X509_CERT &cert) noexcept {
  const X509_PUBKEY *pubkey = get_X509_SPKI(&cert);
  return pubkey && cmp_ASYMMETRIC_KEY(key.key->key, pubkey->key) == 0;
}

// Moves the certificates that belong to a key by one rule; how many, or -1 when memory ends.
int claim(Import &import, const ImportedKey &key, bool (*belongs)(const ImportedKey &, const X509_CERT &)) noexcept {
  int claimed = 0;
  for (int i = 0; i < import.found.count(); ++i) {
    const auto *cert = element<X509_CERT>(import.found.stack, i);
    if (!cert || !belongs(key, *cert)) continue;
    owned<X509_CERT> taken(import.found.take(i));
    if (!import.own.add(taken)) return -1;
    ++claimed;
  }
  return claimed;
}

int sort_certificates(Import &import) noexcept {
  if (1LL * import.keys.count() * import.found.count() > kPairs) return kBadValue;
  for (const ImportedKey *key : elements<ImportedKey>(import.keys.stack)) {
    int claimed = key->id ? claim(import, *key, same_id) : 0;
    if (claimed == 0) claimed = claim(import, *key, same_key);
    if (claimed < 0) return kNoMemory;
  }
  for (int i = 0; i < import.found.count(); ++i) {
    owned<X509_CERT> rest(import.found.take(i));
    if (rest && !import.others.add(rest)) return kNoMemory;
  }
  return 0;
}

// A caller's list, made when it holds none, with room for what will be added.
class Output {
 public:
  explicit Output(STACK **place) noexcept : place_(place) {}
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;
  ~Output() { free_STACK(made_); }
  int prepare(int more) noexcept {
    if (!place_) return 0;
    if (!*place_ && !(made_ = new_STACK())) return kNoList;
    STACK *list = *place_ ? *place_ : made_;
    return more <= INT_MAX - list->count && reserve_stack(list, list->count + more) ? 0 : kNoMemory;
  }
  // Cannot fail after prepare.
  void add(void *element) noexcept { push_STACK_value(*place_ ? *place_ : made_, element); }
  void finish() noexcept {
    if (made_) *place_ = std::exchange(made_, nullptr);
  }
  bool wanted() const noexcept { return place_; }

 private:
  STACK **place_;
  STACK *made_ = nullptr;
};

void hand_over_certs(List<X509_CERT> &from, Output &to) noexcept {
  for (int i = 0; to.wanted() && i < from.count(); ++i) to.add(from.take(i));
}

int hand_over(Import &import, STACK **keys, STACK **certs, STACK **ca_certs) noexcept {
  Output key_list(keys), own_list(certs), other_list(ca_certs);
  if (const int reason = key_list.prepare(import.keys.count())) return reason;
  if (const int reason = own_list.prepare(import.own.count())) return reason;
  if (const int reason = other_list.prepare(import.others.count())) return reason;
  for (ImportedKey *key : elements<ImportedKey>(import.keys.stack))
    if (keys) key_list.add(std::exchange(key->key, nullptr));
  hand_over_certs(import.own, own_list);
  hand_over_certs(import.others, other_list);
  key_list.finish();
  own_list.finish();
  other_list.finish();
  return 0;
}

// Finds the form of the password that the MAC accepts: what is given, or else none and the empty one.
int verify(Import &import, const PKCS12 &p12, const char *password, int length, Pkcs12Password &out) noexcept {
  const auto form = import.options.utf8 ? BmpPassword::Text::utf8 : BmpPassword::Text::octets;
  if (const int code = out.set({password, length, form})) return code;
  if (!p12.macData) return import.options.without_mac || (!password && !import.options.strict) ? 0 : kMismatch;
  const int reason = check_mac(p12, out, import.options.any_digest, import.budget);
  if (password || reason != kMismatch) return reason;
  if (const int code = out.set({"", 0, form})) return code;
  return check_mac(p12, out, import.options.any_digest, import.budget);
}

bool is_version_3(const PKCS12 &p12) noexcept {
  return PKV_Get_BIGINT_Word(p12.version) == 3 && !PKV_Is_BIGINT_Negative(p12.version);
}

struct Outputs {
  STACK **keys, **certs, **ca_certs;
};

int run_import(Import &import, const PKCS12 &p12, const char *password, int length, const Outputs &out) noexcept {
  Pkcs12Password accepted;
  if (import.options.strict && !is_version_3(p12)) return kBadValue;
  if (const int reason = verify(import, p12, password, length, accepted)) return shown(reason);
  if (const int reason = walk_file(import, accepted, p12)) return shown(reason);
  if (const int reason = sort_certificates(import)) return reason;
  return hand_over(import, out.keys, out.certs, out.ca_certs);
}

void drop_keys(STACK **keys) noexcept {
  if (keys && *keys) destroy_list<P8_PRIV_KEY_INFO>(std::exchange(*keys, nullptr));
}
void drop_certs(STACK **certs) noexcept {
  if (certs && *certs) destroy_list<X509_CERT>(std::exchange(*certs, nullptr));
}

int import_plain(PKCS12 *p12, const char *password, int length, bool utf8, const Outputs &out) noexcept {
  if (!p12) return failure(kNullArgument);
  Options options;
  options.utf8 = utf8;
  Import import(options);
  const int reason = run_import(import, *p12, password, length, out);
  if (!reason) return 0;
  if (import.keys.count()) drop_keys(out.keys);
  if (import.own.count()) drop_certs(out.certs);
  if (import.others.count()) drop_certs(out.ca_certs);
  return failure(reason);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int import_PKCS12(PKCS12 *p12, const char *password, int password_length, STACK **keys, STACK **certs,
                  STACK **ca_certs) noexcept {
  return import_plain(p12, password, password_length, false, {keys, certs, ca_certs});
}
int import_PKCS12_UTF8(PKCS12 *p12, const char *password, int password_length, STACK **keys, STACK **certs,
                       STACK **ca_certs) noexcept {
  return import_plain(p12, password, password_length, true, {keys, certs, ca_certs});
}

int import_PKCS12_ex(PKCS12 *p12, const char *password, int password_length, int max_iterations, unsigned flags,
                     STACK **keys, STACK **certs, STACK **ca_certs, int *skipped) noexcept {
  if (!p12) return failure(kNullArgument);
  if (max_iterations < 0) return failure(kBadValue);
  Options options;
  options.any_digest = options.skip_certs = true;
  options.utf8 = flags & PKCS12_UTF8;
  options.without_mac = flags & PKCS12_WITHOUT_MAC;
  if (max_iterations) options.maximum = max_iterations;
  Import import(options);
  const int reason = run_import(import, *p12, password, password_length, {keys, certs, ca_certs});
  if (reason) return failure(reason);
  if (skipped) *skipped = import.skipped;
  return 0;
}

int import_PKCS12_strict(PKCS12 *p12, const char *password, int password_length, int max_iterations, STACK **keys,
                         STACK **certs, STACK **ca_certs) noexcept {
  if (!p12) return failure(kNullArgument);
  if (max_iterations < 0) return failure(kBadValue);
  Options options;
  options.any_digest = options.utf8 = options.strict = true;
  if (max_iterations) options.maximum = max_iterations;
  Import import(options);
  const int reason = run_import(import, *p12, password, password_length, {keys, certs, ca_certs});
  return reason ? failure(reason) : 0;
}
