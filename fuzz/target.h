// What fuzz targets are made of. A target asserts properties, not only survival: what decodes can be copied; what
// encodes decodes again and then encodes to the same octets; a failure comes with a code.
#pragma once

#include <velpki/der.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "../tests/support/owned.h"

using test::Owned;

struct Target {
  const char *name;
  void (*run)(const uint8_t *, int);
};

// A file's list, which velpki_fuzz.cpp finds.
struct Registered {
  explicit Registered(std::span<const Target> targets) : list(targets), next(std::exchange(first, this)) {}
  std::span<const Target> list;
  const Registered *next;
  static inline const Registered *first = nullptr;
};

inline void require(bool holds, const char *what) {
  if (holds) return;
  std::fprintf(stderr, "property violated: %s\n", what);
  std::abort();
}

struct Flat {
  Owned<unsigned char> data;
  int length = -1;
  explicit Flat(const ASN1_UNIT *unit) : length(ASN1_to_binary(unit, &data)) {}
  bool operator==(const Flat &other) const {
    return length == other.length && (length <= 0 || std::memcmp(data, other.data, size_t(length)) == 0);
  }
};

// When what was written has to be readable, and what was read from it written again: always in standard form; in house
// form when the input was DER (the house measure of indefinite lengths depends on what stands around a value); never
// where an ECC point may be written short.
enum class Readable { always, from_der, perhaps };

inline bool must_be_readable(Readable when, const uint8_t *data, int size) {
  const Owned<ASN1_UNIT> der(when == Readable::from_der ? decodeToDERSequence_strict(data, size) : nullptr);
  const bool is_der = der != nullptr;
  return when == Readable::always || is_der;
}

// The properties of a family. Reading what was written gives the same octets again.
template <class R>
void family(const uint8_t *data, int size, int (*from)(ASN1_UNIT *, R **), int (*to)(const R *, ASN1_UNIT **),
            R *(*copy)(const R *), void (*release)(R *), Readable when) {
  const Owned<ASN1_UNIT> unit(decodeToBERSequence_n(data, size));
  Owned<ASN1_UNIT> written, again;
  R *record = nullptr, *back = nullptr;
  if (unit && from(unit, &record) == 0) {
    if (copy) {
      R *duplicate = copy(record);
      require(duplicate != nullptr, "what decodes can be copied");
      release(duplicate);
    }
    if (to(record, &written) == 0) {
      const bool read = from(written, &back) == 0;
      require(read || !must_be_readable(when, data, size), "what is written can be read");
      const bool rewritten = read && to(back, &again) == 0;
      require(rewritten || !must_be_readable(when, data, size), "and written again");
      require(!rewritten || Flat(written) == Flat(again) || when != Readable::always, "to the same octets");
    }
  } else {
    require(record == nullptr, "failure leaves no record");
  }
  if (record) release(record);
  if (back) release(back);
}

#define FAMILY_OF(T, from, to, copy, release, when) \
  [](const uint8_t *d, int n) { family<T>(d, n, from, to, copy, release, Readable::when); }
#define FAMILY(T, copy) FAMILY_OF(T, Seq_to_##T, T##_to_Seq, copy, free_##T, from_der)
#define KEY_FAMILY(T, copy) FAMILY_OF(T, Seq_to_##T, T##_to_Seq, copy, free_##T, perhaps)
#define STANDARD_FAMILY_OF(T, copy, when) FAMILY_OF(T, Seq_to_##T##_RFC5280, T##_to_Seq_RFC5280, copy, free_##T, when)
#define STANDARD_FAMILY(T, copy) STANDARD_FAMILY_OF(T, copy, always)
