// The parameters of password-based encryption from the inside.
#pragma once

#include <velpki/pkcs5.h>

#include "keys/internal/pkcs8.h"

namespace velpki {

VELPKI_FLAT(P5_PBE_PARAM)

int decode(const Tlv &tlv, P5_PBE_PARAM &out) noexcept;
int encode(const P5_PBE_PARAM &param, DerWriter &out) noexcept;

// The parameters of an algorithm by the rules: 0, or the code of a decoder.
int read_pbe_param(const X509_ALGO_IDENTIFIER &algorithm, Rules rules, owned<P5_PBE_PARAM> &out) noexcept;
// Puts parameters in place of what the algorithm has; false for those that cannot be written, or when memory ends.
bool store_pbe_param(X509_ALGO_IDENTIFIER &algorithm, const P5_PBE_PARAM &param, Rules rules) noexcept;

// The digest of a PRF, null meaning the default; 0 for one that is not known. And its OID, empty for none.
int prf_digest_id(const X509_ALGO_IDENTIFIER *prf) noexcept;
std::string_view prf_oid(int digest_id) noexcept;
// States the PRF of a digest that has an OID; SHA-1 is the default, which is not written. False when memory ends.
bool set_prf(P5_PBE_PARAM &param, int digest_id) noexcept;

// The octets in which the house form writes an iteration count: as many as it can be divided by 16 while above 16.
// Their number, 0 for counts up to 16.
inline constexpr int kIterationRoom = 7;
int iteration_octets(int iterations, uint8_t (&out)[kIterationRoom]) noexcept;
// The octets of the number itself.
int exact_iteration_octets(int iterations, uint8_t (&out)[kIterationRoom]) noexcept;

}  // namespace velpki
