// Records of any type behind one pair of functions, and octets that are damaged at every place.
#pragma once

#include <functional>

#include "support/asn1.h"

namespace test {

// The decoder and the encoder of a type, over untyped records.
using Read = std::function<int(ASN1_UNIT *, void **)>;
using Write = std::function<int(const void *, ASN1_UNIT **)>;
template <class R>
Read reader(int (*decode)(ASN1_UNIT *, R **)) {
  return [decode](ASN1_UNIT *unit, void **record) {
    R *typed = record ? static_cast<R *>(*record) : nullptr;
    const int code = decode(unit, record ? &typed : nullptr);
    if (record) *record = typed;
    return code;
  };
}
template <class R>
Write writer(int (*encode)(const R *, ASN1_UNIT **)) {
  return [encode](const void *record, ASN1_UNIT **unit) { return encode(static_cast<const R *>(record), unit); };
}

// Calls `run` with one octet changed, and with the rest cut off, at every place.
inline void each_damage(const Bytes &sample, const std::function<void(const Bytes &)> &run) {
  for (size_t i = 0; i < sample.size(); ++i) {
    for (const uint8_t change : {0x01, 0x20, 0x80, 0xFF}) {
      Bytes damaged = sample;
      damaged[i] ^= change;
      run(damaged);
    }
    run(Bytes(sample.begin(), sample.begin() + long(i)));
  }
}

}  // namespace test
