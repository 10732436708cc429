// Extension values: the first octet of the input chooses the type and the form, the rest is its encoding.
#include <velpki/x509v3.h>

#include <iterator>

#include "target.h"

namespace {

using Run = void (*)(const uint8_t *, int);

// A house value need not read back: names lose their wrapper or their kind.
#define EXTENSION_TYPE(T) KEY_FAMILY(T, dup_##T), STANDARD_FAMILY(T, dup_##T),

constexpr Run kTypes[] = {
#include "../tests/support/extension_types_table.inc"
    STANDARD_FAMILY(AUTHORITY_INFO_ACCESS, nullptr),
    STANDARD_FAMILY(EXTENDED_KEY_USAGE, nullptr),
    FAMILY_OF(ISSUING_DIST_POINT, Seq_to_issuing_DIST_POINT, issuing_DIST_POINT_to_Seq, nullptr,
              free_ISSUING_DIST_POINT, perhaps),
    FAMILY_OF(ISSUING_DIST_POINT, Seq_to_issuing_DIST_POINT_RFC5280, issuing_DIST_POINT_to_Seq_RFC5280, nullptr,
              free_ISSUING_DIST_POINT, perhaps),
    KEY_FAMILY(X509_SIGN, nullptr),
};

void extension_value(const uint8_t *data, int size) {
  if (size > 1) kTypes[data[0] % std::size(kTypes)](data + 1, size - 1);
}

constexpr Target kTargets[] = {{"extension_value", extension_value}};

const Registered kRegistered(kTargets);

}  // namespace
