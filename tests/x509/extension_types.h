// The types of extension values, by name, over untyped records.
#pragma once

#include <velpki/x509v3.h>

#include <functional>

#include "samples.h"

namespace test {

using Read = std::function<int(ASN1_UNIT *, void **)>;
using Write = std::function<int(const void *, ASN1_UNIT **)>;

// One type over an untyped record.
struct Type {
  Read read, read_standard;
  Write write, write_standard;
  std::function<void *(const void *)> copy;  // empty where there is none
  std::function<void(void *)> release;
};

template <class R>
Read reader(int (*decode)(ASN1_UNIT *, R **)) {
  return [decode](ASN1_UNIT *unit, void **record) {
    R *typed = nullptr;
    const int code = decode(unit, &typed);
    *record = typed;
    return code;
  };
}
template <class R>
Write writer(int (*encode)(const R *, ASN1_UNIT **)) {
  return [encode](const void *record, ASN1_UNIT **unit) { return encode(static_cast<const R *>(record), unit); };
}
template <class R>
std::function<void *(const void *)> copier(R *(*copy)(const R *)) {
  return [copy](const void *record) { return copy(static_cast<const R *>(record)); };
}
template <class R>
std::function<void(void *)> releaser(void (*release)(R *)) {
  return [release](void *record) { release(static_cast<R *>(record)); };
}

#define WITHOUT_COPY(T, name)                                                                                       \
  {                                                                                                                 \
#name, {                                                                                                        \
      reader(Seq_to_##name), reader(Seq_to_##name##_RFC5280), writer(name##_to_Seq), writer(name##_to_Seq_RFC5280), \
          nullptr, releaser(free_##T)                                                                               \
    }                                                                                                               \
  }
#define TYPE(T)                                                                                         \
  {                                                                                                     \
#T, {                                                                                               \
      reader(Seq_to_##T), reader(Seq_to_##T##_RFC5280), writer(T##_to_Seq), writer(T##_to_Seq_RFC5280), \
          copier(dup_##T), releaser(free_##T)                                                           \
    }                                                                                                   \
  }
#define STANDARD_ONLY(name, release)                                                                               \
  {                                                                                                                \
#name, {                                                                                                       \
      nullptr, reader(Seq_to_##name##_RFC5280), nullptr, writer(name##_to_Seq_RFC5280), nullptr, releaser(release) \
    }                                                                                                              \
  }
#define HOUSE_ONLY(name, T, copy)                                                                       \
  {                                                                                                     \
#name, { reader(Seq_to_##name), nullptr, writer(name##_to_Seq), nullptr, copy, releaser(free_##T) } \
  }

inline const Type &type_named(const std::string &name) {
  static const std::map<std::string, Type> all = {
      TYPE(GENERAL_NAME),
      TYPE(GENERAL_NAMES),
      TYPE(OTHERNAME),
      TYPE(EDIPARTYNAME),
      TYPE(AUTHORITY_KEYID),
      TYPE(BASIC_CONSTRAINTS),
      TYPE(POLICY_CONSTRAINTS),
      TYPE(GENERAL_SUBTREE),
      TYPE(GENERAL_SUBTREES),
      TYPE(NAME_CONSTRAINTS),
      TYPE(DIST_POINT),
      TYPE(CRL_DIST_POINTS),
      WITHOUT_COPY(ISSUING_DIST_POINT, issuing_DIST_POINT),
      HOUSE_ONLY(issuing_DIST_POINTS, ISSUING_DIST_POINTS, copier(dup_ISSUING_DIST_POINTS)),
      TYPE(NOTICE_NUMBERS),
      TYPE(NOTICE_REFERENCE),
      TYPE(USER_NOTICE),
      TYPE(POLICY_QUALIFIER_INFO),
      TYPE(POLICY_QUALIFIERS),
      TYPE(POLICY_INFO),
      TYPE(CERTIFICATE_POLICIES),
      TYPE(POLICY_MAPPING),
      TYPE(POLICY_MAPPINGS),
      TYPE(ACCESS_DESCRIPTION),
      WITHOUT_COPY(AUTHORITY_INFO_ACCESS, AUTHORITY_INFO_ACCESS),
      HOUSE_ONLY(X509_SIGN, X509_SIGN, nullptr),
      STANDARD_ONLY(EXTENDED_KEY_USAGE, free_EXTENDED_KEY_USAGE),
      STANDARD_ONLY(SUBJECT_KEYID, free_ASN1_STRING),
      STANDARD_ONLY(KEY_USAGE, free_ASN1_STRING),
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
  ASN1_UNIT *out = nullptr;
  const int code = copy ? write(copy, &out) : 0x3C;
  const Unit owner(out);
  if (copy && copy != record) type.release(copy);
  type.release(record);
  return code ? hex_code(code) : flat(out);
}

}  // namespace test
