// Owners and small helpers for tests over units, strings and numbers.
#pragma once

#include <velpki/asn1.h>
#include <velpki/ber.h>
#include <velpki/der.h>

#include <memory>

#include "support/support.h"

namespace test {

struct Release {
  void operator()(ASN1_UNIT *p) const { free_ASN1_UNIT(p); }
  void operator()(ASN1_STRING *p) const { free_ASN1_STRING(p); }
  void operator()(ASN1_TIME *p) const { free_ASN1_TIME(p); }
  void operator()(BIGINT *p) const { PKV_Free_BIGINT(p); }
  void operator()(char *p) const { PKV_Free(p, __FILE__, __LINE__); }
  void operator()(unsigned char *p) const { PKV_Free(p, __FILE__, __LINE__); }
};
using Unit = std::unique_ptr<ASN1_UNIT, Release>;
using String = std::unique_ptr<ASN1_STRING, Release>;
using Time = std::unique_ptr<ASN1_TIME, Release>;
using Number = std::unique_ptr<BIGINT, Release>;
using Block = std::unique_ptr<unsigned char, Release>;

inline Unit unit(const Bytes &octets) { return Unit(decodeToBERSequence_n(octets.data(), int(octets.size()))); }
inline Unit unit(std::string_view hexadecimal) { return unit(hex(hexadecimal)); }
// The flat octets of a unit in hex; "-" when there are none.
inline std::string flat(const ASN1_UNIT *unit) {
  unsigned char *out = nullptr;
  const int length = ASN1_to_binary(unit, &out);
  const Block owner(out);
  return length < 0 ? "-" : to_hex(out, size_t(length));
}
inline String string(int type, const Bytes &octets, int unused_bits = 0) {
  String made(new_ASN1_STRING());
  set_ASN1_STRING_value(made.get(), type, octets.data(), int(octets.size()));
  made->unused_bits = unused_bits;
  return made;
}
inline String text_string(int type, std::string_view text) { return string(type, Bytes(text.begin(), text.end())); }
inline String oid(std::string_view text) { return String(new_OBJECT_IDENTIFIER(text.data(), int(text.size()))); }
inline std::string octets_hex(const ASN1_STRING *s) { return s ? to_hex(s->data, size_t(s->length)) : "-"; }
inline std::string text_of(const ASN1_STRING *s) {
  return s ? std::string(reinterpret_cast<const char *>(s->data), size_t(s->length)) : "-";
}
inline Number number(std::string_view hexadecimal) {
  const Bytes octets = hex(hexadecimal);
  return Number(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
}

// The unit that an encoder makes of a record, in hex; "-" with a code.
template <class Encode, class R>
std::string hex_of(const Encode &encode, R *record) {
  ASN1_UNIT *out = nullptr;
  const int code = encode(record, &out);
  const Unit owner(out);
  return code ? "-" : flat(out);
}
// What a writer of octets gives; empty with a code.
template <class Write, class R>
Bytes octets_by(const Write &write, R *record) {
  unsigned char *out = nullptr;
  const int length = write(record, &out);
  const Block owner(out);
  return out ? Bytes(out, out + length) : Bytes();
}
// What a reader of octets makes; null with a code.
template <class R>
R *read_by(int (*read)(R **, const unsigned char *, int), const Bytes &octets, int *code = nullptr) {
  R *record = nullptr;
  const int result = read(&record, octets.data(), int(octets.size()));
  if (code) *code = result;
  return record;
}
// Does `work` with the first allocation failing, then the second, and so on until it answers true. Nothing leaks.
template <class Work>
void survive_each_failed_allocation(Work work) {
  bool done = false;
  for (long n = 0; !done; ++n) {
    const size_t before = live_blocks();
    fail_allocation(n);
    done = work();
    fail_allocation(-1);
    ASSERT_EQ(live_blocks(), before) << "allocation " << n;
    ASSERT_LT(n, 3000);
  }
}

// DER by nesting: TLV(0x30, TLV(0x02, "05")).
inline Bytes TLV(uint8_t identifier, const Bytes &content) {
  Bytes out{identifier};
  if (content.size() < 0x80)
    out.push_back(uint8_t(content.size()));
  else if (content.size() < 0x100)
    out.insert(out.end(), {0x81, uint8_t(content.size())});
  else
    out.insert(out.end(), {0x82, uint8_t(content.size() >> 8), uint8_t(content.size())});
  out.insert(out.end(), content.begin(), content.end());
  return out;
}
inline Bytes TLV(uint8_t identifier, std::string_view content) { return TLV(identifier, hex(content)); }
inline Bytes operator+(Bytes a, const Bytes &b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace test
