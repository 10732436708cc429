// The signed statement of a token's drivers and where they come from.
#include <velpki/asn1_error.h>

#include "korea/internal/kisa.h"
#include "x509/internal/signature.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<KISA_HSM_DRIVER_INFO> = std::tuple(own(&KISA_HSM_DRIVER_INFO::tokenName),
                                                                      own(&KISA_HSM_DRIVER_INFO::osName),
                                                                      own(&KISA_HSM_DRIVER_INFO::driverVersion),
                                                                      own(&KISA_HSM_DRIVER_INFO::libraryName),
                                                                      own(&KISA_HSM_DRIVER_INFO::hashAlgorithm),
                                                                      own(&KISA_HSM_DRIVER_INFO::libraryHash));
template <>
inline constexpr auto owned_fields<KISA_HSM_TOKEN_DISTRIBUTION_URL> =
    std::tuple(list_of<ASN1_STRING>(&KISA_HSM_TOKEN_DISTRIBUTION_URL::urls));
template <>
inline constexpr auto owned_fields<KISA_HSM_SIGNATURE_VALUE> =
    std::tuple(own(&KISA_HSM_SIGNATURE_VALUE::signatureAlgorithm), own(&KISA_HSM_SIGNATURE_VALUE::signature));
template <>
inline constexpr auto owned_fields<KISA_HSM_SIGNATURE_TOKEN> =
    std::tuple(list_of<KISA_HSM_DRIVER_INFO>(&KISA_HSM_SIGNATURE_TOKEN::drivers),
               own(&KISA_HSM_SIGNATURE_TOKEN::distributionURL), own(&KISA_HSM_SIGNATURE_TOKEN::signatureValue));

namespace {

int write_algorithm(const X509_ALGO_IDENTIFIER *algorithm, DerWriter &out) noexcept {
  return algorithm ? encode(*algorithm, out) : fail(kKisa, ERR_ASN1_ENCODING);
}

// DriverInfo ::= SEQUENCE { tokenName UTF8String, osName UTF8String, driverVersion UTF8String, libraryName UTF8String,
//   hashAlgorithm AlgorithmIdentifier, libraryHash OCTET STRING }
constexpr UTF8_STRING *KISA_HSM_DRIVER_INFO::*kTexts[] = {
    &KISA_HSM_DRIVER_INFO::tokenName, &KISA_HSM_DRIVER_INFO::osName, &KISA_HSM_DRIVER_INFO::driverVersion,
    &KISA_HSM_DRIVER_INFO::libraryName};

int decode(const Tlv &tlv, KISA_HSM_DRIVER_INFO &out) noexcept {
  Cursor in(tlv);
  for (const auto text : kTexts)
    if (!in.string(TYPE_UTF8_STRING, out.*text)) return in.result(kKisa);
  if (read_algorithm(in, out.hashAlgorithm) && in.string(TYPE_OCTET_STRING, out.libraryHash)) ends(in);
  return in.result(kKisa);
}
int encode(const KISA_HSM_DRIVER_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  for (const auto text : kTexts) out.octets_as(TYPE_UTF8_STRING, info.*text);
  if (const int code = write_algorithm(info.hashAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, info.libraryHash);
  return out.result(kKisa);
}

// DistributionURL ::= SEQUENCE SIZE (1..MAX) OF IA5String
int decode(const Tlv &tlv, KISA_HSM_TOKEN_DISTRIBUTION_URL &out) noexcept {
  Cursor in(tlv);
  if (in.at_end()) return fail(kKisa, ERR_ASN1_DECODING);
  if (!in.made(out.urls = new_STACK()) || !reserve_stack(out.urls, count_values(in.rest(), in.rules()))) {
    return fail(kKisa, kNoMemory);
  }
  while (!in.at_end()) {
    ASN1_STRING *url = nullptr;
    if (!in.string(TYPE_IA5_STRING, url)) break;
    owned<ASN1_STRING> owner(url);
    if (!append(out.urls, owner)) return fail(kKisa, kNoMemory);
  }
  return in.result(kKisa);
}
int encode(const KISA_HSM_TOKEN_DISTRIBUTION_URL &url, DerWriter &out) noexcept {
  if (!url.urls || url.urls->count == 0) return fail(kKisa, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  for (const ASN1_STRING *each : elements<ASN1_STRING>(url.urls)) out.octets_as(TYPE_IA5_STRING, each);
  return out.result(kKisa);
}

// SignatureValue ::= SEQUENCE { signatureAlgorithm AlgorithmIdentifier, signature BIT STRING }
int decode(const Tlv &tlv, KISA_HSM_SIGNATURE_VALUE &out) noexcept {
  Cursor in(tlv);
  if (read_algorithm(in, out.signatureAlgorithm) && in.string(TYPE_BIT_STRING, out.signature)) ends(in);
  return in.result(kKisa);
}
int encode(const KISA_HSM_SIGNATURE_VALUE &value, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const int code = write_algorithm(value.signatureAlgorithm, out)) return code;
  out.bits(value.signature);
  return out.result(kKisa);
}

int decode_drivers(const Tlv &tlv, STACK &drivers) noexcept {
  return decode_list<KISA_HSM_DRIVER_INFO>(tlv, drivers, kKisa, decode);
}

template <class R>
bool read_member(Cursor &in, R *&out) noexcept {
  Tlv child;
  return in.next(TYPE_SEQUENCE, child) && in.made(out = blank<R>()) && in.pass(decode(child, *out));
}
template <class R>
int write_member(const R *member, DerWriter &out) noexcept {
  return member ? encode(*member, out) : fail(kKisa, ERR_ASN1_ENCODING);
}

bool read_version(Cursor &in) noexcept {
  Tlv version;
  if (!in.next(TYPE_INTEGER, version)) return false;
  return (version.content.size() == 1 && version.content[0] == 0) || in.stop(Read::malformed);
}

int write_drivers(const STACK *drivers, DerWriter &out) noexcept {
  if (!drivers) return fail(kKisa, ERR_ASN1_ENCODING);
  for (const KISA_HSM_DRIVER_INFO *each : elements<KISA_HSM_DRIVER_INFO>(drivers))
    if (const int code = write_member(each, out)) return code;
  return 0;
}

// What the signature covers: each driver and the URLs, without the header of the list of drivers.
int write_signed(const KISA_HSM_SIGNATURE_TOKEN &token, DerWriter &out) noexcept {
  if (const int code = write_drivers(token.drivers, out)) return code;
  if (const int code = write_member(token.distributionURL, out)) return code;
  return out.result(kKisa);
}

// SignatureToken ::= SEQUENCE { version INTEGER (0), drivers SEQUENCE OF DriverInfo, distributionURL DistributionURL,
//   signatureValue SignatureValue }
int decode(const Tlv &tlv, KISA_HSM_SIGNATURE_TOKEN &out) noexcept {
  Cursor in(tlv);
  Tlv drivers;
  if (read_version(in) && in.next(TYPE_SEQUENCE, drivers) && in.made(out.drivers = new_STACK()) &&
      in.pass(decode_drivers(drivers, *out.drivers)) && read_member(in, out.distributionURL) &&
      read_member(in, out.signatureValue)) {
    ends(in);
  }
  return in.result(kKisa);
}
int encode(const KISA_HSM_SIGNATURE_TOKEN &token, DerWriter &out) noexcept {
  if (token.version != 0) return fail(kKisa, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  out.integer(0u);
  {
    const auto drivers = out.sequence();
    if (const int code = write_drivers(token.drivers, out)) return code;
  }
  if (const int code = write_member(token.distributionURL, out)) return code;
  if (const int code = write_member(token.signatureValue, out)) return code;
  return out.result(kKisa);
}

int sign(KISA_HSM_SIGNATURE_TOKEN &token, const ASYMMETRIC_KEY &key, const OBJECT_IDENTIFIER &algorithm) noexcept {
  DerWriter content, signature;
  if (const int code = write_signed(token, content)) return code;
  if (const int code = sign_octets(content.written(), algorithm, key, kKisa, signature)) return code;
  owned<KISA_HSM_SIGNATURE_VALUE> value(blank<KISA_HSM_SIGNATURE_VALUE>());
  if (!value) return fail(kKisa, kNoMemory);
  owned<X509_ALGO_IDENTIFIER> identifier;
  if (const int code = new_signature_algorithm(algorithm, kKisa, identifier)) return code;
  value->signatureAlgorithm = identifier.release();
  value->signature = new_string(TYPE_BIT_STRING, signature.written());
  if (!value->signature) return fail(kKisa, kNoMemory);
  put(token.signatureValue, std::move(value));
  return 0;
}

int verify(const KISA_HSM_SIGNATURE_TOKEN &token, const X509_PUBKEY &key) noexcept {
  const KISA_HSM_SIGNATURE_VALUE &value = *token.signatureValue;
  DerWriter content;
  if (const int code = write_signed(token, content)) return code;
  return verify_bits(content.written(), *value.signatureAlgorithm, *value.signature, key, kKisa);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(KISA_HSM_DRIVER_INFO)
VELPKI_LIFE_CYCLE(KISA_HSM_TOKEN_DISTRIBUTION_URL)
VELPKI_LIFE_CYCLE(KISA_HSM_SIGNATURE_VALUE)
VELPKI_LIFE_CYCLE(KISA_HSM_SIGNATURE_TOKEN)

int KISA_HSM_DRIVER_INFO_to_Seq(const KISA_HSM_DRIVER_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(kKisa, in, out, encode);
}
int Seq_to_KISA_HSM_DRIVER_INFO(ASN1_UNIT *in, KISA_HSM_DRIVER_INFO **out) noexcept {
  return from_seq(kKisa, in, out, decode);
}
int KISA_HSM_TOKEN_DISTRIBUTION_URL_to_Seq(const KISA_HSM_TOKEN_DISTRIBUTION_URL *in, ASN1_UNIT **out) noexcept {
  return to_seq(kKisa, in, out, encode);
}
int Seq_to_KISA_HSM_TOKEN_DISTRIBUTION_URL(ASN1_UNIT *in, KISA_HSM_TOKEN_DISTRIBUTION_URL **out) noexcept {
  return from_seq(kKisa, in, out, decode);
}
int KISA_HSM_SIGNATURE_VALUE_to_Seq(const KISA_HSM_SIGNATURE_VALUE *in, ASN1_UNIT **out) noexcept {
  return to_seq(kKisa, in, out, encode);
}
int Seq_to_KISA_HSM_SIGNATURE_VALUE(ASN1_UNIT *in, KISA_HSM_SIGNATURE_VALUE **out) noexcept {
  return from_seq(kKisa, in, out, decode);
}
int KISA_HSM_SIGNATURE_TOKEN_to_Seq(const KISA_HSM_SIGNATURE_TOKEN *in, ASN1_UNIT **out) noexcept {
  return to_seq(kKisa, in, out, encode);
}
int Seq_to_KISA_HSM_SIGNATURE_TOKEN(ASN1_UNIT *in, KISA_HSM_SIGNATURE_TOKEN **out) noexcept {
  return from_seq(kKisa, in, out, decode);
}

int sign_KISA_HSM_SIGNATURE_TOKEN(KISA_HSM_SIGNATURE_TOKEN *token, const ASYMMETRIC_KEY *key,
                                  const OBJECT_IDENTIFIER *algorithm) noexcept {
  return token && key && algorithm ? sign(*token, *key, *algorithm) : fail(kKisa, kNullArgument);
}
int verify_KISA_HSM_SIGNATURE_TOKEN(const KISA_HSM_SIGNATURE_TOKEN *token, const X509_CERT *signer) noexcept {
  const X509_PUBKEY *key = get_X509_SPKI(signer);
  const KISA_HSM_SIGNATURE_VALUE *value = token ? token->signatureValue : nullptr;
  if (!key || !value || !value->signatureAlgorithm || !value->signature) return fail(kKisa, kNullArgument);
  return verify(*token, *key);
}
