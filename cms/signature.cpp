// Making and verifying signatures.
#include "cms/internal/signature.h"

namespace velpki {

namespace {

constexpr int kHalfRoom = 64;              // a half of a KCDSA signature has at most 32 octets
constexpr int kEmptyHalf = 0x54;           // one of the two numbers of a KCDSA signature is empty
constexpr int kMalformedSignature = 0x0E;  // what should be a KCDSA signature is none

}  // namespace

int ContentDigests::get(int digest_id, Octets &out) noexcept {
  Entry *entry = entries_;
  while (entry < entries_ + count_ && entry->digest_id != digest_id) ++entry;
  if (entry == entries_ + count_) {
    if (count_ == kRoom) --entry, --count_;
    const int code = PKV_DIGEST(digest_id, content_.data(), int(content_.size()), entry->octets, &entry->length);
    if (code) return code;
    entry->digest_id = digest_id;
    ++count_;
  }
  out = octets_of(entry->octets, entry->length);
  return 0;
}

namespace {

int start_rsa(RSA_UNIT &key, const SignatureScheme &scheme) noexcept {
  const int code = PKV_Init_RSASSA(&key, scheme.digest_id, scheme.scheme, 1);
  if (code || scheme.scheme != PKV_RSA_PSS || scheme.salt_length == PKV_RSA_ANY_SALT) return code;
  return PKV_Set_RSASSA_PSS(&key, scheme.mgf_digest_id, scheme.salt_length);
}

int start_kcdsa(KCDSA_UNIT &key, int digest_id) noexcept {
  const int code = PKV_Init_KCDSA(&key, 1);
  return code ? code : PKV_Set_KCDSA_DIGEST(&key, digest_id);
}

int finish_rsa(RSA_UNIT &key, int function, owned<ASN1_STRING> &out) noexcept {
  int length = PKV_Get_RSA_Length(&key) + 1;
  const owned<uint8_t> signature = new_octets(size_t(length));
  if (!signature) return fail(function, kNoMemory);
  if (const int code = PKV_Final_RSASSA(&key, signature.get(), &length)) return code;
  out.reset(new_string(TYPE_OCTET_STRING, octets_of(signature.get(), length)));
  return out ? 0 : fail(function, kNoMemory);
}

int finish_kcdsa(KCDSA_UNIT &key, int function, int encoding_code, owned<ASN1_STRING> &out) noexcept {
  uint8_t r[kHalfRoom], s[kHalfRoom];
  int r_length = 0, s_length = 0;
  if (const int code = PKV_Get_KCDSA_Lengths(&key, &r_length, &s_length)) return code;
  if (r_length < 1 || s_length < 1) return fail(function, kEmptyHalf);
  if (r_length > kHalfRoom || s_length > kHalfRoom) return fail(function, kBadValue);
  if (const int code = PKV_Final_KCDSA(&key, r, s)) return code;
  DerWriter value;
  write_kcdsa_value(octets_of(r, r_length), octets_of(s, s_length), value);
  if (value.failed()) return encoding_code;
  out.reset(new_string(TYPE_OCTET_STRING, value.written()));
  return out ? 0 : fail(function, kNoMemory);
}

}  // namespace

int start_signature(ASYMMETRIC_KEY &key, const SignatureScheme &scheme, int function) noexcept {
  if (RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&key)) return start_rsa(*rsa, scheme);
  if (KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(&key)) return start_kcdsa(*kcdsa, scheme.digest_id);
  return fail(function, kUnsupported);
}

int feed_signature(ASYMMETRIC_KEY &key, Octets data) noexcept {
  if (RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&key)) return PKV_Update_RSASSA(rsa, data.data(), int(data.size()));
  return PKV_Update_KCDSA(ASYMMETRIC_KEY_to_KCDSA_UNIT(&key), data.data(), int(data.size()));
}

int finish_signature(ASYMMETRIC_KEY &key, int function, int encoding_code, owned<ASN1_STRING> &out) noexcept {
  if (RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&key)) return finish_rsa(*rsa, function, out);
  return finish_kcdsa(*ASYMMETRIC_KEY_to_KCDSA_UNIT(&key), function, encoding_code, out);
}

namespace {

int verify_rsa(const RSA_UNIT &key, const SignatureScheme &scheme, ContentDigests &digests, Octets signature) noexcept {
  Octets digest;
  if (const int code = digests.get(scheme.digest_id, digest)) return code;
  return PKV_RSASSA_DIGEST_VERIFY(&key, scheme.digest_id, scheme.scheme, scheme.mgf_digest_id, scheme.salt_length,
                                  digest.data(), int(digest.size()), signature.data(), int(signature.size()));
}

// The lengths of both halves under a digest.
int kcdsa_lengths(const KCDSA_UNIT &key, int digest_id, int &r_length, int &s_length) noexcept {
  const owned<KCDSA_UNIT> own(PKV_Dup_KCDSA(&key));
  if (!own) return PKV_ERR_NO_MEMORY;
  if (const int code = PKV_Init_KCDSA(own.get(), 0)) return code;
  if (const int code = PKV_Set_KCDSA_DIGEST(own.get(), digest_id)) return code;
  return PKV_Get_KCDSA_Lengths(own.get(), &r_length, &s_length);
}

// r of any other than its one length, and a longer s, are malformed before anything is copied.
int verify_kcdsa(const KCDSA_UNIT &key, int digest_id, Octets content, Octets signature, int function) noexcept {
  SignatureHalves halves;
  int r_length = 0, s_length = 0;
  if (!read_kcdsa_value(signature, halves)) return fail(function, kMalformedSignature);
  if (const int code = kcdsa_lengths(key, digest_id, r_length, s_length)) return code;
  if (halves.r.size() != size_t(r_length) || halves.s.size() > size_t(s_length)) {
    return fail(function, kMalformedSignature);
  }
  return PKV_KCDSA_VERIFY(&key, digest_id, content.data(), int(content.size()), halves.r.data(), r_length,
                          halves.s.data(), int(halves.s.size()));
}

}  // namespace

int verify_signature(const ASYMMETRIC_KEY &key, const SignatureScheme &scheme, ContentDigests &digests,
                     const ASN1_STRING *signature, int function) noexcept {
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(&key);
  const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(&key);
  if (!rsa && !kcdsa) return fail(function, kUnsupported);
  if (!signature) return fail(function, kNullArgument);
  if (rsa) return verify_rsa(*rsa, scheme, digests, octets(*signature));
  return verify_kcdsa(*kcdsa, scheme.digest_id, digests.content(), octets(*signature), function);
}

namespace {

// A value that begins with the digest passes; anything shorter, constructed or missing does not.
bool begins_with(const X509_ATTRIBUTE &attribute, Octets digest) noexcept {
  const auto *data = element<X509_ATTRIBUTE_DATA>(attribute.values, 0);
  if (!data || data->type & tag::kConstructed || !data->value) return false;
  const Octets value = octets(*static_cast<const ASN1_STRING *>(data->value));
  return value.size() >= digest.size() && PKV_Equal_Secret(value.data(), digest.data(), digest.size());
}

int check_message_digest(const X509_ATTRIBUTES *attributes, const SignatureScheme &scheme, ContentDigests &digests,
                         int function) noexcept {
  const X509_ATTRIBUTE *attribute = find_attribute(attributes, row::kMessageDigest);
  Octets digest;
  if (const int code = digests.get(scheme.digest_id, digest)) return code;
  return !attribute || begins_with(*attribute, digest) ? 0 : fail(function, kMismatch);
}

}  // namespace

int verify_signer(const SignerParts &signer, const ASYMMETRIC_KEY &key, const SignatureScheme &scheme,
                  ContentDigests &digests, int function) noexcept {
  if (key.type != ASYMMETRIC_KEY_RSA && key.type != ASYMMETRIC_KEY_KCDSA) return fail(function, kUnsupported);
  const bool bare = PKV_Get_BIGINT_Bit_Length(signer.version) == 0 || !has_attributes(signer.attributes);
  if (bare) return verify_signature(key, scheme, digests, signer.signature, function);
  if (const int code = check_message_digest(signer.attributes, scheme, digests, function)) return code;
  DerWriter set;
  if (write_attribute_set(*signer.attributes, set) || set.failed()) return 1;
  ContentDigests attributes(set.written());
  return verify_signature(key, scheme, attributes, signer.signature, function);
}

}  // namespace velpki
