// Big integers: storage, comparison and conversion. The few sums that the interface offers are libcrypto's.
#include "provider/internal/bigint.h"

#include <bit>
#include <climits>
#include <cstring>

#include "provider/internal/arguments.h"
#include "provider/internal/libcrypto.h"

namespace velcrypto {
namespace {

constexpr unsigned kRoomMask = (1u << 30) - 1;  // says that kMaxOctets fits `room`
constexpr int kDefaultRoom = 40;                // of numbers made empty: serials and words
constexpr int kMaxDigits = 20000;               // conversion takes quadratic time
constexpr int kMaxDecimalBits = 66439;          // no number of kMaxDigits digits has more

uint8_t *inner_octets(const BIGINT *n) noexcept { return reinterpret_cast<uint8_t *>(const_cast<BIGINT *>(n) + 1); }

BIGINT *allocate(int room) noexcept {
  auto *n = static_cast<BIGINT *>(PKV_Malloc(sizeof(BIGINT) + size_t(room), __builtin_FILE(), __builtin_LINE()));
  if (n) *n = BIGINT{inner_octets(n), 0, unsigned(room) & kRoomMask, false, false};
  return n;
}

// Leaves octets that do not stand behind the struct.
void leave_outside(BIGINT *n) noexcept {
  if (!n->borrowed && n->octets != inner_octets(n)) {
    PKV_Wipe(n->octets, size_t(n->length));
    PKV_Free(n->octets, __builtin_FILE(), __builtin_LINE());
  }
  n->borrowed = false;
  n->octets = inner_octets(n);
}

void wipe_octets(BIGINT *n) noexcept {
  PKV_Wipe(inner_octets(n), n->room);
  leave_outside(n);
}

struct Magnitude {
  const uint8_t *octets;
  int length;
};

Magnitude without_leading_zeros(const uint8_t *octets, int length) noexcept {
  while (length > 0 && *octets == 0) {
    ++octets;
    --length;
  }
  return {octets, length};
}

// The new octets may be a part of the old ones, so the old are released last.
int assign_outside(BIGINT *n, Magnitude value) noexcept {
  auto *block = static_cast<uint8_t *>(PKV_Malloc(size_t(value.length), __builtin_FILE(), __builtin_LINE()));
  if (!block) return PKV_ERR_NO_MEMORY;
  std::memcpy(block, value.octets, size_t(value.length));
  wipe_octets(n);
  n->octets = block;
  return 0;
}

void assign_inside(BIGINT *n, Magnitude value) noexcept {
  uint8_t *inner = inner_octets(n);
  if (value.length) std::memmove(inner, value.octets, size_t(value.length));
  PKV_Wipe(inner + value.length, size_t(n->room) - size_t(value.length));
  leave_outside(n);
}

int assign(BIGINT *n, const uint8_t *octets, int length, bool negative) noexcept {
  const Magnitude value = without_leading_zeros(octets, length);
  if (value.length > kMaxOctets) return PKV_ERR_BAD_VALUE;
  if (value.length <= int(n->room)) {
    assign_inside(n, value);
  } else if (int code = assign_outside(n, value)) {
    return code;
  }
  n->length = value.length;
  n->negative = negative && value.length;
  return 0;
}

int compare_magnitudes(const BIGINT *a, const BIGINT *b) noexcept {
  if (a->length != b->length) return a->length < b->length ? -1 : 1;
  const int order = a->length ? std::memcmp(a->octets, b->octets, size_t(a->length)) : 0;
  return (order > 0) - (order < 0);
}

// The count of digits, or 0 for a text that is no number within the bound.
int count_digits(const char *digits) noexcept {
  int count = 0;
  while (digits[count] >= '0' && digits[count] <= '9' && count <= kMaxDigits) ++count;
  return digits[count] || count > kMaxDigits ? 0 : count;
}

char *copy_text(const char *text, size_t length) noexcept {
  auto *copy = static_cast<char *>(PKV_Malloc(length + 1, __builtin_FILE(), __builtin_LINE()));
  if (copy) std::memcpy(copy, text, length + 1);
  return copy;
}

}  // namespace

BnOwner to_bn(const BIGINT *n) noexcept {
  if (!n) return nullptr;
  BnOwner out(BN_bin2bn(n->octets, n->length, nullptr));
  if (out) BN_set_negative(out.get(), n->negative);
  return out;
}

int from_bn(BIGINT *out, const BIGNUM *n) noexcept {
  if (!out || !n) return PKV_ERR_NULL;
  const int length = BN_num_bytes(n);
  SecretBuffer octets;
  if (!octets.resize(size_t(length))) return PKV_ERR_NO_MEMORY;
  BN_bn2bin(n, octets.data());
  return assign(out, octets.data(), length, BN_is_negative(n));
}

BIGINT *new_from_bn(const BIGNUM *n) noexcept {
  BIGINT *made = n ? allocate(BN_num_bytes(n)) : nullptr;
  if (!made) return nullptr;
  made->length = BN_bn2bin(n, made->octets);
  made->negative = BN_is_negative(n);
  return made;
}

}  // namespace velcrypto

using namespace velcrypto;

BIGINT *PKV_New_BIGINT(void) noexcept { return allocate(kDefaultRoom); }

BIGINT *PKV_New_BIGINT_Binary(const unsigned char *octets, int length) noexcept {
  if (check_octets(octets, length)) return nullptr;
  const Magnitude value = without_leading_zeros(octets, length);
  BIGINT *n = value.length <= kMaxOctets ? allocate(value.length) : nullptr;
  if (!n || !value.length) return n;
  std::memcpy(n->octets, value.octets, size_t(value.length));
  n->length = value.length;
  return n;
}

void PKV_Free_BIGINT(BIGINT *n) noexcept {
  if (!n) return;
  wipe_octets(n);
  PKV_Free(n, __builtin_FILE(), __builtin_LINE());
}

size_t PKV_Get_BIGINT_Size(void) noexcept { return sizeof(BIGINT); }

BIGINT *PKV_Place_BIGINT(void *place, const unsigned char *octets, int length) noexcept {
  if (!place || check_octets(octets, length) || length > kMaxOctets) return nullptr;
  auto *n = static_cast<BIGINT *>(place);
  const Magnitude value = without_leading_zeros(octets, length);
  uint8_t *start = value.length ? const_cast<uint8_t *>(value.octets) : inner_octets(n);  // only read while borrowed
  *n = BIGINT{start, value.length, 0, false, true};
  return n;
}

void PKV_Clear_BIGINT(BIGINT *n) noexcept {
  if (!n) return;
  wipe_octets(n);
  n->length = 0;
  n->negative = false;
}

BIGINT *PKV_Dup_BIGINT(const BIGINT *n) noexcept {
  BIGINT *copy = n ? PKV_New_BIGINT_Binary(n->octets, n->length) : nullptr;
  if (copy) copy->negative = n->negative;
  return copy;
}

int PKV_Copy_BIGINT(BIGINT *to, const BIGINT *from) noexcept {
  if (!to || !from) return PKV_ERR_NULL;
  return to == from ? 0 : assign(to, from->octets, from->length, from->negative);
}

int PKV_Binary_To_BIGINT(BIGINT *n, const unsigned char *octets, int length) noexcept {
  if (!n) return PKV_ERR_NULL;
  if (int code = check_octets(octets, length)) return code;
  return assign(n, octets, length, false);
}

int PKV_BIGINT_To_Binary(const BIGINT *n, unsigned char *out, int length) noexcept {
  if (!n) return PKV_ERR_NULL;
  if (int code = check_octets(out, length)) return code;
  if (n->length > length) return PKV_ERR_BAD_VALUE;
  const size_t zeros = size_t(length - n->length);
  if (zeros) std::memset(out, 0, zeros);
  if (n->length) std::memcpy(out + zeros, n->octets, size_t(n->length));
  return 0;
}

const unsigned char *PKV_Get_BIGINT_Octets(const BIGINT *n, int *length) noexcept {
  if (length) *length = n ? n->length : 0;
  return n ? n->octets : nullptr;
}

int PKV_Get_BIGINT_Bit_Length(const BIGINT *n) noexcept {
  if (is_zero(n)) return 0;
  return (n->length - 1) * 8 + int(std::bit_width(n->octets[0]));
}

int PKV_Is_BIGINT_Negative(const BIGINT *n) noexcept { return n ? n->negative : 0; }

int PKV_Set_BIGINT_Negative(BIGINT *n, int negative) noexcept {
  if (!n) return PKV_ERR_NULL;
  n->negative = negative && n->length;
  return 0;
}

int PKV_Set_BIGINT_Word(BIGINT *n, unsigned int word) noexcept {
  if (!n) return PKV_ERR_NULL;
  const uint8_t octets[4] = {uint8_t(word >> 24), uint8_t(word >> 16), uint8_t(word >> 8), uint8_t(word)};
  return assign(n, octets, 4, false);
}

unsigned int PKV_Get_BIGINT_Word(const BIGINT *n) noexcept {
  if (is_zero(n)) return 0;
  if (n->length > 4) return 0xFFFFFFFF;
  uint32_t word = 0;
  for (int i = 0; i < n->length; ++i) word = word << 8 | n->octets[i];
  return word;
}

int PKV_Decimal_To_BIGINT(BIGINT *n, const char *text) noexcept {
  if (!n || !text) return PKV_ERR_NULL;
  if (!count_digits(text + (*text == '-'))) return PKV_ERR_BAD_VALUE;
  const ErrorScope errors;
  BIGNUM *value = nullptr;
  const int read = BN_dec2bn(&value, text);
  const BnOwner owner(value);
  return read ? from_bn(n, value) : PKV_ERR_NO_MEMORY;
}

int PKV_BIGINT_To_Decimal(const BIGINT *n, char **text) noexcept {
  if (!n || !text) return PKV_ERR_NULL;
  if (PKV_Get_BIGINT_Bit_Length(n) > kMaxDecimalBits) return PKV_ERR_BAD_VALUE;
  const ErrorScope errors;
  const BnOwner value = to_bn(n);
  char *made = value ? BN_bn2dec(value.get()) : nullptr;
  if (!made) return PKV_ERR_NO_MEMORY;
  const size_t length = std::strlen(made);
  const bool too_long = length - size_t(n->negative) > size_t(kMaxDigits);
  char *copy = too_long ? nullptr : copy_text(made, length);
  OPENSSL_clear_free(made, length);
  if (copy) *text = copy;
  return too_long ? PKV_ERR_BAD_VALUE : copy ? 0 : PKV_ERR_NO_MEMORY;
}

int PKV_Cmp_BIGINT(const BIGINT *a, const BIGINT *b) noexcept {
  if (!a || !b) return a ? 1 : -1;
  if (a->negative != b->negative) return a->negative ? -1 : 1;
  const int order = compare_magnitudes(a, b);
  return a->negative ? -order : order;
}

int PKV_Add_BIGINT(BIGINT *sum, const BIGINT *a, const BIGINT *b) noexcept {
  if (!sum || !a || !b) return PKV_ERR_NULL;
  const ErrorScope errors;
  const BnOwner x = to_bn(a), y = to_bn(b);
  if (!x || !y || !BN_add(x.get(), x.get(), y.get())) return PKV_ERR_NO_MEMORY;
  return from_bn(sum, x.get());
}

int PKV_Mod_BIGINT(BIGINT *remainder, const BIGINT *a, const BIGINT *modulus) noexcept {
  if (!remainder || !a || !modulus) return PKV_ERR_NULL;
  if (is_zero(modulus) || modulus->negative) return PKV_ERR_BAD_VALUE;
  const ErrorScope errors;
  const BnOwner x = to_bn(a), m = to_bn(modulus);
  const BnCtxOwner context(BN_CTX_new_ex(library_context()));
  if (!x || !m || !context || !BN_nnmod(x.get(), x.get(), m.get(), context.get())) return PKV_ERR_NO_MEMORY;
  return from_bn(remainder, x.get());
}
