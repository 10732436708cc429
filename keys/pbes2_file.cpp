// What a PBES2 file says of its cipher, PRF and key length.
#include "keys/internal/pbe.h"

namespace velpki {

namespace {

struct Rc2 {
  unsigned version;  // of RC2-CBC-Parameter: what stands for the effective key bits
  int cipher_id, key_length;
};
constexpr Rc2 kRc2[] = {{160, 0x07000220, 5}, {120, 0x07000320, 8}, {58, 0x07000120, 16}};

bool is_octets(const ASN1_STRING *string) noexcept { return string && string->type == TYPE_OCTET_STRING; }

// RC2-CBC-Parameter ::= SEQUENCE { rc2ParameterVersion INTEGER, iv OCTET STRING (SIZE(8)) }
int read_rc2(const ASN1_STRING *parameters, Pbes2 &out) noexcept {
  if (!parameters || parameters->type != tag::kSequence) return kBadValue;
  Tlv version, iv;
  Cursor in(view_of(*parameters));
  if (!in.next(TYPE_INTEGER, version) || !in.next(TYPE_OCTET_STRING, iv)) return kBadValue;
  unsigned number = 0;
  for (const uint8_t octet : version.content) number = number << 8 | octet;
  if (version.content.size() > 2) return kBadValue;
  for (const Rc2 &each : kRc2) {
    if (each.version != number) continue;
    out.cipher_id = each.cipher_id;
    out.iv = iv.content;
    return 0;
  }
  return kUnsupported;
}

int read_cipher(const X509_ALGO_IDENTIFIER &scheme, Pbes2 &out) noexcept {
  if (index_from_OBJECT_IDENTIFIER(scheme.algorithm) == row::kRc2Cbc) return read_rc2(scheme.parameters, out);
  out.cipher_id = content_cipher_id(&scheme);
  if (!PKV_Get_BLOCK_CIPHER_Key_Length(out.cipher_id)) return kUnsupported;
  if (!is_octets(scheme.parameters)) return kBadValue;
  out.iv = octets(*scheme.parameters);
  return 0;
}

// Ciphers have one key length, but Blowfish and RC5 have several.
bool takes_key_of(int cipher_id, int length) noexcept {
  constexpr int kFamily = 0x7F000000, kRc5 = 0x05000000, kBlowfish = 0x06000000;
  const int family = cipher_id & kFamily;
  if (length == 0 || length == PKV_Get_BLOCK_CIPHER_Key_Length(cipher_id)) return true;
  return family == kBlowfish ? length >= 4 && length <= 56 : family == kRc5 && length <= 64;
}

}  // namespace

int read_pbes2(const P5_PBE_PARAM &param, Pbes2 &out) noexcept {
  if (!param.encryptionScheme) return kBadValue;
  if (const int reason = read_cipher(*param.encryptionScheme, out)) return reason;
  out.key_length = param.key_length;
  out.digest_id = prf_digest_id(param.prf);
  // A row that names cipher and digest together, as encrypt_PKCS5 writes it, states its PRF that way.
  const int own_digest = get_DigestID_from_OID(param.encryptionScheme->algorithm);
  if (!param.prf && own_digest) out.digest_id = own_digest;
  if (!out.digest_id) return kUnsupported;
  const bool fits = takes_key_of(out.cipher_id, out.key_length) &&
                    out.iv.size() == size_t(PKV_Get_BLOCK_CIPHER_IV_Length(out.cipher_id)) &&
                    out.iv.size() <= sizeof(KeyAndIv::iv);
  return fits ? 0 : kBadValue;
}

}  // namespace velpki
