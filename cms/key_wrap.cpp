// Key wrapping by AlgorithmIdentifier, and recipients that share a key-encryption key.
#include "cms/internal/key_wrap.h"

namespace velpki {

namespace {

struct Wrap {
  std::string_view oid;
  int cipher_id;
};
// AES-128, 192 and 256, triple DES, SEED.
constexpr Wrap kWraps[] = {{"2.16.840.1.101.3.4.1.5", 0x01000100},
                           {"2.16.840.1.101.3.4.1.25", 0x01000200},
                           {"2.16.840.1.101.3.4.1.45", 0x01000300},
                           {"1.2.840.113549.1.9.16.3.6", kTripleDesWrap},
                           {"1.2.410.200004.7.1.1.1", 0x04000100}};

}  // namespace

std::string_view wrap_oid(int cipher_id) noexcept {
  for (const Wrap &each : kWraps)
    if (each.cipher_id == cipher_id) return each.oid;
  return {};
}

int wrap_cipher(const X509_ALGO_IDENTIFIER *algorithm) noexcept {
  for (const Wrap &each : kWraps)
    if (algorithm && algorithm->algorithm && text(*algorithm->algorithm) == each.oid) return each.cipher_id;
  return 0;
}

int set_algorithm_text(X509_ALGO_IDENTIFIER *&algorithm, std::string_view oid, Octets parameters,
                       int function) noexcept {
  const owned<OBJECT_IDENTIFIER> name(new_string(TYPE_OBJECT_IDENTIFIER, octets_of_text(oid)));
  owned<X509_ALGO_IDENTIFIER> fresh = new_bare_algorithm(name.get());
  if (!fresh) return fail(function, kNoMemory);
  Tlv tlv;
  Rules rules;
  if (Tlv::parse(parameters, rules, tlv) && !(fresh->parameters = new_string(tlv.identifier, tlv.content))) {
    return fail(function, kNoMemory);
  }
  put(algorithm, std::move(fresh));
  return 0;
}

void write_wrap_algorithm(int cipher_id, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.oid_text(wrap_oid(cipher_id));
  if (cipher_id == kTripleDesWrap) out.null();
}

int set_wrap_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int cipher_id, int function) noexcept {
  constexpr uint8_t kNull[] = {TYPE_NULL, 0};
  if (wrap_oid(cipher_id).empty()) return fail(function, kUnsupported);
  return set_algorithm_text(algorithm, wrap_oid(cipher_id), cipher_id == kTripleDesWrap ? Octets(kNull) : Octets(),
                            function);
}

int wrap(int cipher_id, Octets kek, Octets key, int function, ASN1_STRING *&out) noexcept {
  uint8_t wrapped[kMostWrapped];
  int length = int(kMostWrapped);
  const int code = PKV_Wrap_KEY(cipher_id, kek.data(), int(kek.size()), key.data(), int(key.size()), wrapped, &length);
  if (code) return code;
  ASN1_STRING *string = new_string(TYPE_OCTET_STRING, octets_of(wrapped, length));
  if (!string) return fail(function, kNoMemory);
  free_ASN1_STRING(std::exchange(out, string));
  return 0;
}

int unwrap(int cipher_id, Octets kek, const ASN1_STRING *wrapped, SecretOctets &out) noexcept {
  if (!wrapped || size_t(wrapped->length) < kLeastWrapped || size_t(wrapped->length) > kMostWrapped) {
    return PKV_ERR_FAILED;
  }
  const SecretOctets room(kMostWrapped);
  int length = room.size();
  if (!room) return PKV_ERR_NO_MEMORY;
  const int code =
      PKV_Unwrap_KEY(cipher_id, kek.data(), int(kek.size()), wrapped->data, wrapped->length, room.data(), &length);
  if (code) return code == PKV_ERR_BAD_VALUE ? int(PKV_ERR_FAILED) : code;
  if (length != out.size()) return PKV_ERR_FAILED;
  copy_octets(out.data(), octets_of(room.data(), length));
  return 0;
}

int wrap_for_key(KEK_RECIPIENT_INFO &info, Octets content_key, int function) noexcept {
  const int cipher_id = wrap_cipher(info.keyEncryptionAlgorithm);
  if (!info.key || !info.kekid) return fail(function, kNullArgument);
  if (!cipher_id) return fail(function, kUnsupported);
  return wrap(cipher_id, octets(*info.key), content_key, function, info.encryptedKey);
}

int unwrap_with_key(const KEK_RECIPIENT_INFO &info, Octets key, int function, SecretOctets &out) noexcept {
  const int cipher_id = wrap_cipher(info.keyEncryptionAlgorithm);
  return cipher_id ? unwrap(cipher_id, key, info.encryptedKey, out) : fail(function, kUnsupported);
}

}  // namespace velpki
