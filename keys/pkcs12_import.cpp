// Import: the password, which certificates belong to which keys, and the lists of the caller.
#include "keys/internal/pkcs12_import.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(F_IMPORT_PKCS12, reason); }
constexpr long long kPairs = 4000000;  // of keys and certificates that are compared

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

void hand_over_certs(OwnedList<X509_CERT> &from, Output &to) noexcept {
  for (int i = 0; to.wanted() && i < from.count(); ++i) to.add(from.take(i));
}

// Both kinds of certificates may be for one list.
int hand_over(Import &import, STACK **keys, STACK **certs, STACK **ca_certs) noexcept {
  const bool one_list = certs == ca_certs;
  Output key_list(keys), own_list(certs), second_list(one_list ? nullptr : ca_certs);
  Output &other_list = one_list ? own_list : second_list;
  const int own = import.own.count(), others = import.others.count();
  if (const int reason = key_list.prepare(import.keys.count())) return reason;
  if (const int reason = own_list.prepare(one_list ? own + others : own)) return reason;
  if (const int reason = second_list.prepare(others)) return reason;
  for (ImportedKey *key : elements<ImportedKey>(import.keys.stack))
    if (keys) key_list.add(std::exchange(key->key, nullptr));
  hand_over_certs(import.own, own_list);
  hand_over_certs(import.others, other_list);
  key_list.finish();
  own_list.finish();
  second_list.finish();
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
  if (const int reason = read_contents(import, accepted, p12)) return shown(reason);
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
  ImportOptions options;
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
  ImportOptions options;
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
  ImportOptions options;
  options.any_digest = options.utf8 = options.strict = true;
  if (max_iterations) options.maximum = max_iterations;
  Import import(options);
  const int reason = run_import(import, *p12, password, password_length, {keys, certs, ca_certs});
  return reason ? failure(reason) : 0;
}
