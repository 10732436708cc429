// The domain parameters that stand beside a KCDSA key.
#include <velpki/asn1_error.h>

#include "x509/internal/x509.h"

namespace velpki {

namespace {

// The seed and count of the domain parameters; `count` is above INT_MAX for a number that does not fit.
struct Seed {
  owned<OCTET_STRING> octets;
  unsigned count = 0;
};

// SEQUENCE { seed OCTET STRING, count INTEGER }
bool read_seed(Cursor &in, Seed &seed) noexcept {
  Tlv child;
  if (!in.next(TYPE_SEQUENCE, child)) return false;
  Cursor pair(child);
  OCTET_STRING *octets = nullptr;
  BIGINT *count = nullptr;
  const bool read = pair.string(TYPE_OCTET_STRING, octets) && pair.integer(count);
  seed.octets.reset(octets);
  const owned<BIGINT> number(count);
  if (!read) return in.absorb(pair);
  seed.count = PKV_Get_BIGINT_Word(count);
  return seed.count <= unsigned(INT_MAX) || in.stop(Read::malformed);
}

using Number = owned<BIGINT>;

bool read_number(Cursor &in, Number &out) noexcept {
  BIGINT *number = nullptr;
  if (!in.integer(number)) return false;
  out.reset(number);
  return true;
}

}  // namespace

// SEQUENCE { p, q, g INTEGER, j INTEGER OPTIONAL, SEQUENCE { seed, count } OPTIONAL }
int read_kcdsa_parameters(const Tlv &tlv, KCDSA_UNIT &key) noexcept {
  Cursor in(tlv);
  Number p, q, g, j;
  Seed seed;
  bool read = read_number(in, p) && read_number(in, q) && read_number(in, g);
  if (read && tag::number(in.peek()) == TYPE_INTEGER) read = read_number(in, j);
  if (read && !in.at_end()) read = read_seed(in, seed);
  if (!read) return in.result(F_SEQ_TO_X509_PUBKEY);
  const Octets octets = seed.octets ? velpki::octets(*seed.octets) : Octets();
  const int code = PKV_Set_KCDSA_Params(&key, p.get(), q.get(), g.get(), j.get(), nullptr, octets.data(),
                                        int(octets.size()), int(seed.count));
  return code ? fail(F_SEQ_TO_X509_PUBKEY, kNoMemory) : 0;
}

void write_kcdsa_parameters(const KCDSA_UNIT &key, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  for (const auto which : {PKV_KCDSA_P, PKV_KCDSA_Q, PKV_KCDSA_G}) out.integer(PKV_Get_KCDSA_Component(&key, which));
  if (const BIGINT *j = PKV_Get_KCDSA_Component(&key, PKV_KCDSA_J)) out.integer(j);
  int length = 0, count = 0;
  const uint8_t *seed = PKV_Get_KCDSA_Seed(&key, &length, &count);
  if (!seed) return;
  const auto validation = out.sequence();
  out.primitive(TYPE_OCTET_STRING, octets_of(seed, length));
  out.integer(unsigned(count));
}

}  // namespace velpki
