// Owners and small helpers for tests over units, strings and numbers.
#pragma once

#include <velpki/asn1.h>
#include <velpki/ber.h>
#include <velpki/der.h>
#include <velpki/pem.h>

#include "support/owned.h"
#include "support/support.h"

namespace test {

using Unit = Owned<ASN1_UNIT>;
using String = Owned<ASN1_STRING>;
using Time = Owned<ASN1_TIME>;
using Number = Owned<BIGINT>;
using Block = Owned<unsigned char>;
using Text = Owned<char>;
using Certificate = Owned<X509_CERT>;
using Certificates = Owned<STACK, free_X509_CERTIFICATES>;

inline Unit unit(const Bytes &octets) { return Unit(decodeToBERSequence_n(octets.data(), int(octets.size()))); }
inline Unit unit(std::string_view hexadecimal) { return unit(hex(hexadecimal)); }
// The flat octets of a unit in hex; "-" when there are none.
inline std::string flat(const ASN1_UNIT *unit) {
  Block out;
  const int length = ASN1_to_binary(unit, &out);
  return length < 0 ? "-" : to_hex(out, size_t(length));
}
inline String string(int type, const Bytes &octets, int unused_bits = 0) {
  String made(new_ASN1_STRING());
  set_ASN1_STRING_value(made, type, octets.data(), int(octets.size()));
  made->unused_bits = unused_bits;
  return made;
}
inline String text_string(int type, std::string_view text) { return string(type, Bytes(text.begin(), text.end())); }
inline String oid(std::string_view text) { return String(new_OBJECT_IDENTIFIER(text.data(), int(text.size()))); }
inline std::string octets_hex(const ASN1_STRING *s) { return s ? to_hex(s->data, size_t(s->length)) : "-"; }
inline std::string text_of(const ASN1_STRING *s) {
  return s ? std::string(reinterpret_cast<const char *>(s->data), size_t(s->length)) : "-";
}
// A UTCTime where the text is short enough for one.
inline Owned<X509_TIME> time_of(std::string_view text) {
  Owned<X509_TIME> time(new_X509_TIME());
  time->type = text.size() > 13 ? X509_TIME_GENERALIZED : X509_TIME_UTC;
  time->time = text_string(time->type ? TYPE_GENERALIZED_TIME : TYPE_UTC_TIME, text).release();
  return time;
}
inline Number number(std::string_view hexadecimal) {
  const Bytes octets = hex(hexadecimal);
  return Number(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
}

// The unit that an encoder makes of a record, in hex; "-" with a code.
template <class R>
std::string hex_of(int (*encode)(R *, ASN1_UNIT **), const std::type_identity_t<R> *record, int *code = nullptr) {
  Unit out;
  const int result = encode(const_cast<R *>(record), &out);
  if (code) *code = result;
  return result ? "-" : flat(out);
}
// What a function gave that returns the number of octets.
inline Bytes octets(const Block &block, int length) { return block ? Bytes(block.get(), block + length) : Bytes(); }
// What a writer of octets gives; empty with a code.
template <class R>
Bytes octets_by(int (*write)(R *, unsigned char **), const std::type_identity_t<R> *record) {
  Block out;
  const int length = write(const_cast<R *>(record), &out);
  return octets(out, length);
}
// The DER, and the label, of the first block of a PEM text that may begin with words.
inline Bytes der_in(const Bytes &text, std::string *label = nullptr) {
  Block der;
  const char *name = nullptr;
  int size = 0;
  const int length = decode_PEM_ex(reinterpret_cast<const char *>(text.data()), int(text.size()), nullptr, &name, &size,
                                   nullptr, &der);
  if (label) label->assign(name ? name : "", size_t(size));
  return octets(der, length);
}
// The same of the file of a row of a manifest.
inline Bytes der_of(const std::string &folder, const Row &row, std::string *label = nullptr) {
  const Bytes file = read_file(folder + "/" + row.at("file"));
  return row.count("format") && row.at("format") == "PEM" ? der_in(file, label) : file;
}
inline Bytes from_base64(std::string text) {
  text = "-----BEGIN X-----\n" + text + "\n-----END X-----\n";
  return der_in(Bytes(text.begin(), text.end()));
}
inline Bytes digest(int id, const Bytes &content) {
  Bytes out(PKV_MAX_DIGEST_LENGTH);
  int length = 0;
  if (PKV_DIGEST(id, content.data(), int(content.size()), out.data(), &length)) length = 0;
  out.resize(size_t(length));
  return out;
}
// What a reader of octets, or of a file, makes; null with a code.
template <class R>
Owned<R> read_by(int (*read)(R **, const unsigned char *, int), const Bytes &octets, int *code = nullptr) {
  Owned<R> record;
  const int result = read(&record, octets.data(), int(octets.size()));
  if (code) *code = result;
  return record;
}
template <class R>
Owned<R> read_by(int (*read)(R **, const char *), const std::string &path, int *code = nullptr) {
  Owned<R> record;
  const int result = read(&record, path.c_str());
  if (code) *code = result;
  return record;
}
// What a decoder of units makes; null with a code.
template <class R>
Owned<R> decoded(int (*decode)(ASN1_UNIT *, R **), const Bytes &octets, int *code = nullptr) {
  Owned<R> record;
  const int result = decode(unit(octets), &record);
  if (code) *code = result;
  return record;
}
// An element of a list.
template <class T>
T *item(const STACK *list, int index) {
  return static_cast<T *>(get_STACK_value(list, index));
}
// Every damaged input of the vectors, at the end of a page, with its row in the manifest.
template <class Check>
void each_damaged(const std::string &folder, Check check) {
  GuardedBytes guarded(4 << 20);
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const Bytes octets = read_file(folder + "/" + row.at("file"));
    if (octets.size() <= 4 << 20) check(row, guarded.place(octets.data(), octets.size()), int(octets.size()));
  }
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
  else if (content.size() < 0x10000)
    out.insert(out.end(), {0x82, uint8_t(content.size() >> 8), uint8_t(content.size())});
  else
    out.insert(out.end(), {0x83, uint8_t(content.size() >> 16), uint8_t(content.size() >> 8), uint8_t(content.size())});
  out.insert(out.end(), content.begin(), content.end());
  return out;
}
inline Bytes TLV(uint8_t identifier, std::string_view content) { return TLV(identifier, hex(content)); }
inline Bytes operator+(Bytes a, const Bytes &b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
// An Extension by the hexadecimal octets of its OID.
inline Bytes extension(std::string_view oid, const Bytes &value, bool critical = false) {
  return TLV(0x30, TLV(0x06, oid) + (critical ? TLV(0x01, "ff") : Bytes()) + TLV(0x04, value));
}

}  // namespace test
