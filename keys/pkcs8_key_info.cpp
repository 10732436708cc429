// P8_PRIV_KEY_INFO.
#include "asn1/internal/io.h"
#include "keys/internal/pkcs8.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<P8_PRIV_KEY_INFO> =
    std::tuple(own(&P8_PRIV_KEY_INFO::version), own(&P8_PRIV_KEY_INFO::algorithm), made(&P8_PRIV_KEY_INFO::key),
               made_list_of<X509_ATTRIBUTE>(&P8_PRIV_KEY_INFO::attributes), own(&P8_PRIV_KEY_INFO::kept));

namespace {

uint8_t *octets_behind(P8_KEPT_KEY *kept) noexcept { return reinterpret_cast<uint8_t *>(kept + 1); }
Octets parameters_of(const P8_KEPT_KEY &kept) noexcept {
  return {reinterpret_cast<const uint8_t *>(&kept + 1), kept.parameters};
}
Octets key_of(const P8_KEPT_KEY &kept) noexcept {
  return {reinterpret_cast<const uint8_t *>(&kept + 1) + kept.parameters, kept.key};
}

P8_KEPT_KEY *new_kept_key(Octets parameters, Octets key) noexcept {
  auto *kept = static_cast<P8_KEPT_KEY *>(allocate(sizeof(P8_KEPT_KEY) + parameters.size() + key.size()));
  if (!kept) return nullptr;
  *kept = {parameters.size(), key.size()};
  copy_octets(octets_behind(kept), parameters);
  copy_octets(octets_behind(kept) + parameters.size(), key);
  return kept;
}

}  // namespace

void Flat<P8_KEPT_KEY>::release(P8_KEPT_KEY *kept) noexcept {
  if (kept) PKV_Wipe(octets_behind(kept), kept->parameters + kept->key);
  velpki::release(kept);
}
P8_KEPT_KEY *Flat<P8_KEPT_KEY>::copy(const P8_KEPT_KEY *kept) noexcept {
  return kept ? new_kept_key(parameters_of(*kept), key_of(*kept)) : nullptr;
}

namespace {

bool read_version(Cursor &in, BIGINT *&version) noexcept {
  if (!in.integer(version)) return false;
  const bool known = PKV_Get_BIGINT_Word(version) <= 1 && !PKV_Is_BIGINT_Negative(version);
  return known || in.stop(Read::malformed);
}

// The key, or in standard form what stands for it when it is none that is known.
bool read_key(Cursor &in, const Tlv &algorithm, Octets octets, P8_PRIV_KEY_INFO &out) noexcept {
  Cursor inside(algorithm);
  if (!inside.oid(out.algorithm)) return in.absorb(inside);
  if (!in.made(out.key = new_ASYMMETRIC_KEY())) return false;
  const Octets parameters = inside.rest();
  const int row = index_from_OBJECT_IDENTIFIER(out.algorithm);
  const bool standard = in.rules().standard, pss = row == row::kRsassaPss;
  const bool known = (standard || !pss) && read_private_key(inside, row, octets, *out.key);
  if (known && !pss) return true;
  if (!standard || inside.reason() == Read::no_memory) return in.absorb(inside) && in.stop(Read::malformed);
  return in.made(out.kept = new_kept_key(parameters, octets));
}

bool read_optional(Cursor &in, P8_PRIV_KEY_INFO &out) noexcept {
  Tlv child;
  if (in.at(tag::explicit_context(0))) {
    if (!in.next(child) || !in.made(out.attributes = new_STACK())) return false;
    if (!in.absorb(decode_attributes(child, *out.attributes))) return false;
  }
  if (in.at(tag::implicit_context(1)) && !in.next(child)) return false;
  return !in.rules().standard || in.at_end() || in.stop(Read::malformed);
}

}  // namespace

// PrivateKeyInfo ::= SEQUENCE { version INTEGER, privateKeyAlgorithm AlgorithmIdentifier, privateKey OCTET STRING,
//   attributes [0] IMPLICIT SET OF Attribute OPTIONAL, publicKey [1] IMPLICIT BIT STRING OPTIONAL }
int decode(const Tlv &tlv, P8_PRIV_KEY_INFO &out) noexcept {
  Cursor in(tlv);
  Tlv algorithm, key;
  if (read_version(in, out.version) && in.next(TYPE_SEQUENCE, algorithm) && in.next(TYPE_OCTET_STRING, key)) {
    if (read_key(in, algorithm, key.content, out)) read_optional(in, out);
  }
  return in.result(F_SEQ_TO_P8_PRIV_KEY_INFO);
}

namespace {

void write_kept(const P8_PRIV_KEY_INFO &info, DerWriter &out) noexcept {
  {
    const auto algorithm = out.sequence();
    out.oid(info.algorithm);
    out.raw(parameters_of(*info.kept));
  }
  out.primitive(TYPE_OCTET_STRING, key_of(*info.kept));
}

bool agrees(const P8_PRIV_KEY_INFO &info) noexcept {
  const int row = row_of_key(info.key);
  return row && index_from_OBJECT_IDENTIFIER(info.algorithm) == row;
}

}  // namespace

int encode(const P8_PRIV_KEY_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.integer(info.version);
  if (info.kept)
    write_kept(info, out);
  else if (agrees(info))
    write_private_key(*info.key, out);
  else
    return fail(F_P8_PRIV_KEY_INFO_TO_SEQ, ERR_ASN1_ENCODING);
  if (!info.attributes || info.attributes->count == 0) return 0;
  return encode_attributes(*info.attributes, out, tag::explicit_context(0));
}

namespace {

constexpr Codec<P8_PRIV_KEY_INFO> kCodec{
    F_SEQ_TO_P8_PRIV_KEY_INFO, F_P8_PRIV_KEY_INFO_TO_SEQ, decode, encode, "PRIVATE KEY", Content::secret};

// The number that an accredited key keeps among its attributes is as secret as the key.
void wipe_attributes(const X509_ATTRIBUTES *attributes) noexcept {
  for (const X509_ATTRIBUTE *attribute : elements<X509_ATTRIBUTE>(attributes))
    for (const X509_ATTRIBUTE_DATA *data : elements<X509_ATTRIBUTE_DATA>(attribute ? attribute->values : nullptr)) {
      if (!data || !data->value || data->type & tag::kConstructed) continue;
      const auto *value = static_cast<const ASN1_STRING *>(data->value);
      PKV_Wipe(value->data, value->data ? size_t(value->length) : 0);
    }
}

}  // namespace

}  // namespace velpki

using namespace velpki;

P8_PRIV_KEY_INFO *new_P8_PRIV_KEY_INFO(void) noexcept {
  owned<P8_PRIV_KEY_INFO> fresh(make<P8_PRIV_KEY_INFO>());
  if (!fresh || !(fresh->version = PKV_New_BIGINT())) return nullptr;
  return fresh.release();
}
void clean_P8_PRIV_KEY_INFO(P8_PRIV_KEY_INFO *p) noexcept {
  if (p) wipe_attributes(p->attributes);
  clean(p);
}
void free_P8_PRIV_KEY_INFO(P8_PRIV_KEY_INFO *p) noexcept {
  if (p) wipe_attributes(p->attributes);
  destroy(p);
}
P8_PRIV_KEY_INFO *dup_P8_PRIV_KEY_INFO(const P8_PRIV_KEY_INFO *p) noexcept { return copy(p); }

P8_PRIV_KEY_INFO *gen_P8_PRIV_KEY_INFO(const ASYMMETRIC_KEY *key, const X509_ATTRIBUTES *attributes) noexcept {
  const int row = row_of_key(key);
  owned<P8_PRIV_KEY_INFO> fresh(row ? blank<P8_PRIV_KEY_INFO>() : nullptr);
  if (!fresh) return nullptr;
  fresh->version = PKV_New_BIGINT();
  fresh->algorithm = index_to_OBJECT_IDENTIFIER(row);
  fresh->key = dup_ASYMMETRIC_KEY(key);
  fresh->attributes = attributes ? dup_X509_ATTRIBUTES(attributes) : new_STACK();
  const bool whole = fresh->version && fresh->algorithm && fresh->key && fresh->attributes;
  return whole ? fresh.release() : nullptr;
}

BIGINT *get_PRIV_KEY_version(const P8_PRIV_KEY_INFO *key) noexcept { return key ? key->version : nullptr; }
int set_PRIV_KEY_version(P8_PRIV_KEY_INFO *key, const BIGINT *version) noexcept {
  return key && replace(*key, &P8_PRIV_KEY_INFO::version, version) ? 0 : 1;
}
OBJECT_IDENTIFIER *get_PRIV_KEY_OID(const P8_PRIV_KEY_INFO *key) noexcept { return key ? key->algorithm : nullptr; }
int set_PRIV_KEY_OID(P8_PRIV_KEY_INFO *key, const OBJECT_IDENTIFIER *oid) noexcept {
  return key && replace(*key, &P8_PRIV_KEY_INFO::algorithm, oid) ? 0 : 1;
}
ASYMMETRIC_KEY *get_PRIV_KEY_KeyParams(const P8_PRIV_KEY_INFO *key) noexcept { return key ? key->key : nullptr; }
int set_PRIV_KEY_KeyParams(P8_PRIV_KEY_INFO *key, const ASYMMETRIC_KEY *params) noexcept {
  if (!key || !replace(*key, &P8_PRIV_KEY_INFO::key, params)) return 1;
  if (key->kept) Flat<P8_KEPT_KEY>::release(std::exchange(key->kept, nullptr));
  return 0;
}
const unsigned char *get_PRIV_KEY_kept(const P8_PRIV_KEY_INFO *key, int *length) noexcept {
  const Octets octets = key && key->kept ? key_of(*key->kept) : Octets();
  if (length) *length = int(octets.size());
  return key && key->kept ? octets.data() : nullptr;
}

int P8_PRIV_KEY_INFO_to_Seq(const P8_PRIV_KEY_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P8_PRIV_KEY_INFO_TO_SEQ, in, out, encode, {}, Content::secret);
}
int Seq_to_P8_PRIV_KEY_INFO(ASN1_UNIT *in, P8_PRIV_KEY_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P8_PRIV_KEY_INFO, in, out, decode);
}
int Seq_to_P8_PRIV_KEY_INFO_RFC5280(ASN1_UNIT *in, P8_PRIV_KEY_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_P8_PRIV_KEY_INFO, in, out, decode, kStandardRules);
}

VELPKI_IO(P8_PRIV_KEY_INFO, kCodec)
