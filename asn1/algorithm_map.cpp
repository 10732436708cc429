// Registry rows to the provider's identifiers and back.
#include <velpki/asn1_objects.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "asn1/internal/registry.h"

namespace {

struct Algorithm {
  int row, digest_id, cipher_id, algorithm_class;
};
struct RowOfId {
  int id, row;
};

#define ALGORITHM(row, digest_id, cipher_id, algorithm_class) {row, digest_id, cipher_id, algorithm_class},
#define DIGEST_ROW(id, row)
#define CIPHER_ROW(id, row)
constexpr Algorithm kAlgorithms[] = {
#include "asn1/algorithm_table.inc"
};
#undef ALGORITHM
#undef DIGEST_ROW
#define ALGORITHM(row, digest_id, cipher_id, algorithm_class)
#define DIGEST_ROW(id, row) {id, row},
constexpr RowOfId kDigestRows[] = {
#include "asn1/algorithm_table.inc"
};
#undef DIGEST_ROW
#undef CIPHER_ROW
#define DIGEST_ROW(id, row)
#define CIPHER_ROW(id, row) {id, row},
constexpr RowOfId kCipherRows[] = {
#include "asn1/algorithm_table.inc"
};

constexpr bool algorithms_ascend() {
  for (size_t i = 1; i < std::size(kAlgorithms); ++i)
    if (kAlgorithms[i - 1].row >= kAlgorithms[i].row) return false;
  return true;
}
constexpr bool ids_ascend(const RowOfId *rows, size_t count) {
  for (size_t i = 1; i < count; ++i)
    if (rows[i - 1].id >= rows[i].id) return false;
  return true;
}
static_assert(algorithms_ascend());
static_assert(ids_ascend(kDigestRows, std::size(kDigestRows)) && ids_ascend(kCipherRows, std::size(kCipherRows)));

// The place in kAlgorithms of every registry row, plus one; 0 for none.
constexpr auto kPlaces = [] {
  std::array<uint8_t, velpki::kRegistryRows> places{};
  for (size_t i = 0; i < std::size(kAlgorithms); ++i) places[size_t(kAlgorithms[i].row)] = uint8_t(i + 1);
  return places;
}();
static_assert(std::size(kAlgorithms) < 0xFF);

constexpr Algorithm algorithm_of(int row) {
  const size_t place = kPlaces[size_t(row)];
  return place ? kAlgorithms[place - 1] : Algorithm{row, 0, 0, 0};
}

constexpr int rows_that_do_not_map_back() {
  int count = 0;
  for (const RowOfId &each : kDigestRows) count += algorithm_of(each.row).digest_id != each.id;
  for (const RowOfId &each : kCipherRows) count += algorithm_of(each.row).cipher_id != each.id;
  return count;
}
static_assert(rows_that_do_not_map_back() == 2, "DES-EDE-CBC and ARIA-ECB, and no other");

Algorithm algorithm_of(const OBJECT_IDENTIFIER *oid) noexcept {
  return algorithm_of(index_from_OBJECT_IDENTIFIER(oid));
}

template <size_t n>
int row_of_id(const RowOfId (&rows)[n], int id) noexcept {
  const RowOfId *const at =
      std::lower_bound(rows, rows + n, id, [](const RowOfId &row, int wanted) { return row.id < wanted; });
  return at != rows + n && at->id == id ? at->row : 0;
}

}  // namespace

int get_DigestID_from_OID(const OBJECT_IDENTIFIER *oid) noexcept { return algorithm_of(oid).digest_id; }
int get_CipherID_from_OID(const OBJECT_IDENTIFIER *oid) noexcept { return algorithm_of(oid).cipher_id; }
int get_AlgorType_from_OID(const OBJECT_IDENTIFIER *oid) noexcept { return algorithm_of(oid).algorithm_class; }
int get_OID_from_DigestID(int digest_id) noexcept { return row_of_id(kDigestRows, digest_id); }
int get_OID_from_CipherID(int cipher_id) noexcept { return row_of_id(kCipherRows, cipher_id); }
