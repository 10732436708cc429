// The types of extension values, by name, over untyped records.
#pragma once

#include <velpki/x509v3.h>

#include "samples.h"
#include "support/untyped.h"

namespace test {

// One type over an untyped record.
struct Type {
  Read read, read_standard;
  Write write, write_standard;
  std::function<void *(const void *)> copy;  // empty where there is none
  std::function<void(void *)> release;
};

template <class R>
Type type(int (*read)(ASN1_UNIT *, R **), int (*read_standard)(ASN1_UNIT *, R **),
          int (*write)(const R *, ASN1_UNIT **), int (*write_standard)(const R *, ASN1_UNIT **), void (*release)(R *),
          R *(*copy)(const R *) = nullptr) {
  Type made;
  if (read) made.read = reader(read), made.write = writer(write);
  if (read_standard) made.read_standard = reader(read_standard), made.write_standard = writer(write_standard);
  if (copy) made.copy = [copy](const void *record) { return copy(static_cast<const R *>(record)); };
  made.release = [release](void *record) { release(static_cast<R *>(record)); };
  return made;
}

#define BOTH_FORMS(name) Seq_to_##name, Seq_to_##name##_RFC5280, name##_to_Seq, name##_to_Seq_RFC5280
#define HOUSE_FORM(name) Seq_to_##name, nullptr, name##_to_Seq, nullptr
#define STANDARD_FORM(name) nullptr, Seq_to_##name##_RFC5280, nullptr, name##_to_Seq_RFC5280
#define EXTENSION_TYPE(T) {#T, type<T>(BOTH_FORMS(T), free_##T, dup_##T)},

inline const Type &type_named(const std::string &name) {
  static const std::map<std::string, Type> all = {
#include "support/extension_types_table.inc"
      {"issuing_DIST_POINT", type<ISSUING_DIST_POINT>(BOTH_FORMS(issuing_DIST_POINT), free_ISSUING_DIST_POINT)},
      {"issuing_DIST_POINTS",
       type<ISSUING_DIST_POINTS>(HOUSE_FORM(issuing_DIST_POINTS), free_ISSUING_DIST_POINTS, dup_ISSUING_DIST_POINTS)},
      {"AUTHORITY_INFO_ACCESS",
       type<AUTHORITY_INFO_ACCESS>(BOTH_FORMS(AUTHORITY_INFO_ACCESS), free_AUTHORITY_INFO_ACCESS)},
      {"X509_SIGN", type<X509_SIGN>(HOUSE_FORM(X509_SIGN), free_X509_SIGN)},
      {"EXTENDED_KEY_USAGE", type<STACK>(STANDARD_FORM(EXTENDED_KEY_USAGE), free_EXTENDED_KEY_USAGE)},
      {"SUBJECT_KEYID", type<ASN1_STRING>(STANDARD_FORM(SUBJECT_KEYID), free_ASN1_STRING)},
      {"KEY_USAGE", type<ASN1_STRING>(STANDARD_FORM(KEY_USAGE), free_ASN1_STRING)},
  };
  return all.at(name);
}

inline std::string hex_code(int code) {
  char text[9];
  snprintf(text, sizeof text, "%08x", unsigned(code));
  return text;
}

// What reading, copying and writing gives: the octets, or the code of the step that failed.
inline std::string passed_through(ASN1_UNIT *in, const Type &type, const Read &read, const Write &write) {
  void *record = nullptr;
  if (const int code = read(in, &record)) return record ? "a record and a code" : hex_code(code);
  void *copy = type.copy ? type.copy(record) : record;
  Unit out;
  const int code = copy ? write(copy, &out) : 0x3C;
  if (copy && copy != record) type.release(copy);
  type.release(record);
  return code ? hex_code(code) : flat(out);
}

}  // namespace test
