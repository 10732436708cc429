// The diagnostic printer of units.
#include <velpki/ber.h>
#include <velpki/utils.h>

#include <cstdio>

#include "asn1/internal/string.h"
#include "asn1/internal/tlv.h"

using namespace velpki;

void printBERData(const ASN1_UNIT *unit) noexcept {
  Tlv tlv;
  if (!unit) {
    std::fputs("Null Pointer", stdout);
    return;
  }
  if (!view(*unit, tlv)) return;
  std::printf("[Tag] %02X | [Length] ", unsigned(tlv.identifier));
  print_hex_no_nl(tlv.header.data(), int(tlv.header.size()));
  std::fputs(" | [Value] ", stdout);
  if (!tlv.indefinite) {
    if (tlv.content.empty()) std::fputs("\n", stdout);
    print_hex_nl(tlv.content.data(), int(tlv.content.size()));
    return;
  }
  print_hex_no_nl(tlv.content.data(), int(tlv.content.size()));
  std::fputs(" | [EOC] ", stdout);
  print_hex_nl(unit->eoc, 2);
}
