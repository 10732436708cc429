#include "cms/internal/strict.h"

#include "cms/internal/cms.h"
#include "cms/internal/ecdsa.h"
#include "x509/internal/received.h"
#include "x509/internal/signature.h"

namespace velpki {

namespace {

constexpr uint8_t kContentTypeOid[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x03};
constexpr uint8_t kMessageDigestOid[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x04};
constexpr int kWeakDigestLength = 28;  // octets; shorter ones no longer resist collisions

// Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET OF ANY }
struct AttributeView {
  Octets type;
  Tlv values;
};
bool read_attribute(Cursor &set, AttributeView &out) noexcept {
  Tlv sequence, type;
  if (!set.next(TYPE_SEQUENCE, sequence)) return false;
  Cursor in(sequence);
  if (!in.next(TYPE_OBJECT_IDENTIFIER, type) || !in.next(TYPE_SET, out.values) || !in.at_end()) return false;
  out.type = type.content;
  return true;
}

bool view_set(Octets set, Tlv &out) noexcept {
  Rules rules = kStandardRules;
  return Tlv::parse(set, rules, out) && out.identifier == tag::kSet && out.whole.size() == set.size();
}

// The one value of the one attribute of a type.
int find_single(Octets set, Octets type, int function, Tlv &value) noexcept {
  Tlv whole;
  AttributeView attribute;
  if (!view_set(set, whole)) return fail(function, ERR_ASN1_DECODING);
  int found = 0;
  for (Cursor in(whole); !in.at_end();) {
    if (!read_attribute(in, attribute)) return fail(function, ERR_ASN1_DECODING);
    if (!equal_octets(attribute.type, type)) continue;
    Cursor values(attribute.values);
    if (found++ || !values.next(value) || !values.at_end()) return fail(function, ERR_ATTRIBUTE_NOT_SINGLE);
  }
  return found ? 0 : fail(function, ERR_ATTRIBUTE_MISSING);
}

int check_content_type(Octets set, const OBJECT_IDENTIFIER *wanted, int function) noexcept {
  Tlv value;
  if (const int code = find_single(set, kContentTypeOid, function, value)) return code;
  DerWriter encoded(kStandardRules);
  encoded.oid(wanted);
  return equal_octets(value.whole, encoded.written()) ? 0 : fail(function, ERR_CONTENT_TYPE_MISMATCH);
}

int check_message_digest(Octets set, int digest_id, ContentDigests &digests, int function) noexcept {
  Tlv value;
  Octets digest;
  if (const int code = find_single(set, kMessageDigestOid, function, value)) return code;
  if (const int code = digests.get(digest_id, digest)) return code;
  const bool same = value.identifier == TYPE_OCTET_STRING && equal_octets(value.content, digest);
  return same ? 0 : fail(function, kMismatch);
}

// Whether content could be taken for signed attributes that were stripped from their signer.
bool is_attribute_set(Octets content) noexcept {
  Tlv whole;
  AttributeView attribute;
  if (!view_set(content, whole)) return false;
  Cursor in(whole);
  if (in.at_end()) return false;
  while (!in.at_end())
    if (!read_attribute(in, attribute)) return false;
  return true;
}

// The digest that a signature algorithm itself names; 0 for one that leaves it to the digest algorithm.
int own_digest(const OBJECT_IDENTIFIER &oid) noexcept {
  const int digest_id = ecdsa_digest(oid);
  return digest_id ? digest_id : get_DigestID_from_OID(&oid);
}

int verify_with_registry(const StrictSigner &signer, const ASYMMETRIC_KEY &key, ContentDigests &digests,
                         int function) noexcept {
  SignatureScheme scheme;
  const bool known = signature_scheme(signer.digest_algorithm, signer.signature_algorithm, key.type, scheme);
  if (!known) return fail(function, ERR_ALGORITHM_MISMATCH);
  if (scheme.scheme == PKV_RSA_PSS && scheme.salt_length == PKV_RSA_ANY_SALT) {
    return fail(function, ERR_ALGORITHM_MISMATCH);
  }
  const int family = get_CipherID_from_OID(signer.signature_algorithm->algorithm) & 0x70000000;
  const int wanted = key.type == ASYMMETRIC_KEY_RSA ? PKV_KEY_RSA : PKV_KEY_KCDSA;
  if (family != wanted) return fail(function, ERR_ALGORITHM_MISMATCH);
  return verify_signature(key, scheme, digests, signer.signature, function);
}

int verify_with_table(const StrictSigner &signer, const X509_PUBKEY &key, Octets data, int function) noexcept {
  DerWriter encoded(kStandardRules);
  Tlv algorithm;
  Rules rules;
  if (const int code = encode(*signer.signature_algorithm, encoded)) return code;
  if (!Tlv::parse(encoded.written(), rules, algorithm)) return fail(function, ERR_ASN1_ENCODING);
  return verify_octets(data, algorithm, octets(*signer.signature), key, function);
}

int check_algorithms(const StrictSigner &signer, bool weak_allowed, int function) noexcept {
  if (!signer.digest_algorithm || !signer.signature_algorithm || !signer.signature) {
    return fail(function, kNullArgument);
  }
  const int digest_id = digest_id_of(signer.digest_algorithm);
  if (!digest_id) return fail(function, kUnsupported);
  if (!weak_allowed && is_weak_digest(digest_id)) return fail(function, ERR_WEAK_DIGEST);
  const int own = own_digest(*signer.signature_algorithm->algorithm);
  return !own || own == digest_id ? 0 : fail(function, ERR_ALGORITHM_MISMATCH);
}

}  // namespace

bool is_weak_digest(int digest_id) noexcept { return PKV_Get_DIGEST_Length(digest_id) < kWeakDigestLength; }

int check_binding(const StrictSigner &signer, const OBJECT_IDENTIFIER *content_type, ContentDigests &digests,
                  int function) noexcept {
  if (signer.attributes.empty()) {
    const bool data = content_type && text(*content_type) == "1.2.840.113549.1.7.1";
    if (!data) return fail(function, ERR_ATTRIBUTE_MISSING);
    return is_attribute_set(digests.content()) ? fail(function, ERR_AMBIGUOUS_CONTENT) : 0;
  }
  if (const int code = check_content_type(signer.attributes, content_type, function)) return code;
  return check_message_digest(signer.attributes, digest_id_of(signer.digest_algorithm), digests, function);
}

int verify_signer_strict(const StrictSigner &signer, const OBJECT_IDENTIFIER *content_type, const X509_PUBKEY &key,
                         bool weak_allowed, ContentDigests &digests, int function) noexcept {
  if (const int code = check_algorithms(signer, weak_allowed, function)) return code;
  if (const int code = check_binding(signer, content_type, digests, function)) return code;
  ContentDigests attributes(signer.attributes);
  ContentDigests &signed_octets = signer.attributes.empty() ? digests : attributes;
  const bool by_registry = key.key && key.key->type != ASYMMETRIC_KEY_ECC;
  return by_registry ? verify_with_registry(signer, *key.key, signed_octets, function)
                     : verify_with_table(signer, key, signed_octets.content(), function);
}

namespace {

// Octets that may be BER, in DER.
void write_definite(Octets value, DerWriter &out) noexcept {
  if (is_der(value)) return out.raw(value);
  unsigned char *definite = nullptr;
  const int length = normalize_BER(value.data(), int(value.size()), &definite);
  const owned<uint8_t> owner(definite);
  length < 0 ? out.refuse() : out.raw(octets_of(definite, length));
}

}  // namespace

bool write_kept_attributes(const KeptOctets &kept, const X509_ATTRIBUTES *attributes, DerWriter &out) noexcept {
  if (kept.kind == Kept::nothing) {
    if (has_attributes(attributes) && write_attribute_set(*attributes, out)) return false;
    return !out.failed();
  }
  Octets set;
  const bool found = find_kept_attributes(kept, set);
  if (found != (attributes != nullptr)) return false;
  if (!found) return true;
  DerWriter whole;
  whole.primitive(tag::kSet, set);
  if (!whole.failed()) write_definite(whole.written(), out);
  return !whole.failed() && !out.failed();
}

bool name_of_certificate(const X509_CERT &cert, Octets &issuer, Octets &serial) noexcept {
  Tlv tbs, child;
  Rules rules;
  if (!cert.received || !Tlv::parse(received_tbs(*cert.received), rules, tbs)) return false;
  Cursor in(tbs);
  if (in.at(tag::explicit_context(0)) && !in.next(child)) return false;
  if (!in.next(child)) return false;
  serial = child.whole;
  if (!in.next(child) || !in.next(child)) return false;
  issuer = child.whole;
  return true;
}

int choose_content(const Octets *held, const Octets *given, int function, Octets &out) noexcept {
  if (!held && !given) return fail(function, ERR_NO_CONTENT);
  if (held && given && !equal_octets(*held, *given)) return fail(function, ERR_CONTENT_MISMATCH);
  out = held ? *held : *given;
  return 0;
}

bool is_named(const X509_CERT &cert, const SignerName &name) noexcept {
  Octets issuer, serial;
  Tlv parent, named_issuer, named_serial;
  if (name.subject_key) return has_subject_key(cert, name.subject_key);
  if (!name.serial || PKV_Cmp_BIGINT(get_X509_serial(&cert), name.serial) != 0) return false;
  if (name.received.empty() || !name_of_certificate(cert, issuer, serial)) {
    return compare_issuer_and_serial(&cert, name.issuer, name.serial) == 0;
  }
  parent.content = name.received;
  Cursor in(parent);
  return in.next(named_issuer) && in.next(named_serial) && equal_octets(named_issuer.whole, issuer) &&
         equal_octets(named_serial.whole, serial);
}

}  // namespace velpki
