// OCTET STRINGs in segments.
#include "asn1/internal/cursor.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

// Appends the octets of a string, or of its segments in their order.
bool append_segments(const Tlv &tlv, DerWriter &out, Cursor &failure) noexcept {
  if (!(tlv.identifier & tag::kConstructed)) return out.raw(tlv.content), true;
  Cursor in(tlv);
  for (Tlv segment; !in.at_end();) {
    if (!in.next(segment)) return failure.absorb(in);
    if (segment.number() != TYPE_OCTET_STRING || tag::is_context_or_private(segment.identifier)) {
      return failure.stop(Read::malformed);
    }
    if (!append_segments(segment, out, failure)) return false;
  }
  return failure.absorb(in);
}

}  // namespace

Read read_joined_octets(const Tlv &tlv, ASN1_STRING *&out) noexcept {
  if (!(tlv.identifier & tag::kConstructed)) return read_string(tlv, TYPE_OCTET_STRING, out);
  DerWriter joined({}, Content::secret);
  Cursor outcome{Tlv()};
  if (!append_segments(tlv, joined, outcome)) return outcome.reason();
  if (joined.failed()) return joined.status();
  ASN1_STRING *string = new_string(TYPE_OCTET_STRING, joined.written());
  if (!string) return Read::no_memory;
  out = string;
  return Read::ok;
}

}  // namespace velpki
