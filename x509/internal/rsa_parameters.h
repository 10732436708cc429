// The parameters of RSAES-OAEP and RSASSA-PSS from the inside. They belong to the keys' module; their codec stands
// here, below it, because signatures over certificates need it.
#pragma once

#include <velpki/pkcs1.h>

#include "x509/internal/x509.h"

namespace velpki {

VELPKI_FLAT(RSAES_OAEP_PARAM)
VELPKI_FLAT(RSASSA_PSS_PARAM)

int decode(const Tlv &tlv, RSAES_OAEP_PARAM &out) noexcept;
int encode(const RSAES_OAEP_PARAM &param, DerWriter &out) noexcept;
int decode(const Tlv &tlv, RSASSA_PSS_PARAM &out) noexcept;
int encode(const RSASSA_PSS_PARAM &param, DerWriter &out) noexcept;

// What the members mean, null being the default: 0, or `function` with 48 (an algorithm that is not known),
// ERR_ASN1_DECODING or 3C.
inline constexpr int kDefaultDigest = PKV_DIGEST_SHA1, kDefaultSalt = 20;
int read_hash(const X509_ALGO_IDENTIFIER *identifier, int function, int &digest_id) noexcept;
int read_mask_gen(const X509_ALGO_IDENTIFIER *identifier, int function, int &digest_id) noexcept;
int read_label(const X509_ALGO_IDENTIFIER *identifier, int function, Octets &label) noexcept;

// What RSASSA-PSS-params say, in the provider's terms.
struct PssValues {
  int digest_id;
  int mgf_digest_id;
  int salt_length;
};
// Reads the parameters of an AlgorithmIdentifier in standard form: 0, or `function` with 48 (a hash or mask generation
// that is not known), ERR_ASN1_DECODING or 3C.
int read_pss_values(const Tlv &parameters, int function, PssValues &out) noexcept;
// Appends RSASSA-PSS-params.
void write_pss_values(const PssValues &values, DerWriter &out) noexcept;
// The usual choice for a digest: MGF1 with the same, and a salt of its length.
PssValues usual_pss_values(int digest_id) noexcept;

}  // namespace velpki
