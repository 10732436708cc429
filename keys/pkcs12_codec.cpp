// PFX and MacData: the outer records of PKCS#12.
#include "asn1/internal/io.h"
#include "keys/internal/pkcs12.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<PKCS12> = std::tuple(own(&PKCS12::version), own(&PKCS12::authSafe),
                                                        own(&PKCS12::macData));

namespace {

constexpr unsigned kVersion = 3;

// DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING }
bool read_digest_info(Cursor &in, P12_MAC_DATA &out) noexcept {
  Tlv info, algorithm;
  if (!in.next(TYPE_SEQUENCE, info)) return false;
  Cursor inside(info);
  if (!inside.next(TYPE_SEQUENCE, algorithm)) return in.absorb(inside);
  Cursor identifier(algorithm);
  const bool named =
      identifier.oid(out.digestAlgorithm) && (identifier.at_end() || identifier.any_string(out.digestParameters));
  if (!named) return in.absorb(identifier);
  return read_octets(inside, out.mac) || in.absorb(inside);
}

}  // namespace

// MacData ::= SEQUENCE { mac DigestInfo, macSalt OCTET STRING, iterations INTEGER DEFAULT 1 }
int decode(const Tlv &tlv, P12_MAC_DATA &out) noexcept {
  Cursor in(tlv);
  if (read_digest_info(in, out) && read_octets(in, out.salt) && !in.at_end()) in.integer(out.iteration);
  return in.result(F_SEQ_TO_P12_MAC_DATA);
}

int encode(const P12_MAC_DATA &mac, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  {
    const auto info = out.sequence();
    {
      const auto algorithm = out.sequence();
      out.oid(mac.digestAlgorithm);
      mac.digestParameters ? out.string(mac.digestParameters) : out.null();
    }
    out.octets_as(TYPE_OCTET_STRING, mac.mac);
  }
  out.octets_as(TYPE_OCTET_STRING, mac.salt);
  if (mac.iteration) out.integer(mac.iteration);
  return 0;
}

int decode_auth_safe(const Tlv &tlv, STACK &out) noexcept {
  return decode_list<P7_CONTENT_INFO>(tlv, out, F_SEQ_TO_P12_AUTH_SAFE, decode);
}
int encode_auth_safe(const STACK &safes, DerWriter &out) noexcept {
  return encode_list<P7_CONTENT_INFO>(safes, out, tag::kSequence, F_P12_AUTH_SAFE_TO_SEQ, encode);
}

void wipe_plain_content(P7_CONTENT_INFO *safe) noexcept {
  if (auto *content = content_of<ASN1_STRING>(safe, PKCS7_DATA)) {
    PKV_Wipe(content->data, content->data ? octets(*content).size() : 0);
  }
}

// PFX ::= SEQUENCE { version INTEGER { v3(3) }, authSafe ContentInfo, macData MacData OPTIONAL }
int decode(const Tlv &tlv, PKCS12 &out) noexcept {
  Cursor in(tlv);
  if (in.integer(out.version) && read_record(in, out.authSafe) && !in.at_end()) read_record(in, out.macData);
  return in.result(F_SEQ_TO_P12_PFX);
}

int encode(const PKCS12 &p12, DerWriter &out) noexcept {
  if (!p12.authSafe) return fail(F_P12_PFX_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  p12.version ? out.integer(p12.version) : out.integer(kVersion);
  if (const int code = encode(*p12.authSafe, out)) return code;
  return p12.macData ? encode(*p12.macData, out) : 0;
}

namespace {

constexpr Codec<PKCS12> kCodec{F_SEQ_TO_P12_PFX, F_P12_PFX_TO_SEQ, decode, encode, "PKCS12", Content::secret};

}  // namespace

}  // namespace velpki

using namespace velpki;

PKCS12 *new_PKCS12(void) noexcept {
  owned<PKCS12> fresh(blank<PKCS12>());
  return fresh && set_version(fresh->version, kVersion) ? fresh.release() : nullptr;
}
void free_PKCS12(PKCS12 *p) noexcept {
  if (p) wipe_plain_content(p->authSafe);
  destroy(p);
}
VELPKI_NEW_AND_FREE(P12_MAC_DATA)

P12_AUTH_SAFE *new_P12_AUTH_SAFE(void) noexcept { return new_STACK(); }
void free_P12_AUTH_SAFE(P12_AUTH_SAFE *list) noexcept {
  for (P7_CONTENT_INFO *safe : elements<P7_CONTENT_INFO>(list)) wipe_plain_content(safe);
  destroy_list<P7_CONTENT_INFO>(list);
}

int P12_PFX_to_Seq(const PKCS12 *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P12_PFX_TO_SEQ, in, out, encode, {}, Content::secret);
}
int Seq_to_P12_PFX(ASN1_UNIT *in, PKCS12 **out) noexcept { return from_seq(F_SEQ_TO_P12_PFX, in, out, decode); }
int P12_AUTH_SAFE_to_Seq(const P12_AUTH_SAFE *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P12_AUTH_SAFE_TO_SEQ, in, out, encode_auth_safe, {}, Content::secret);
}
int Seq_to_P12_AUTH_SAFE(ASN1_UNIT *in, P12_AUTH_SAFE **out) noexcept {
  return list_from_seq<P7_CONTENT_INFO>(F_SEQ_TO_P12_AUTH_SAFE, in, out, decode_auth_safe);
}
int P12_MAC_DATA_to_Seq(const P12_MAC_DATA *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_P12_MAC_DATA_TO_SEQ, in, out, encode);
}
int Seq_to_P12_MAC_DATA(ASN1_UNIT *in, P12_MAC_DATA **out) noexcept {
  return from_seq(F_SEQ_TO_P12_MAC_DATA, in, out, decode);
}

VELPKI_IO(PKCS12, kCodec)
