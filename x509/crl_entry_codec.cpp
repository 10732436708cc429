// The codec of the entries of a revocation list.
#include <velpki/asn1_error.h>

#include <climits>

#include "x509/internal/crl.h"

namespace velpki {

namespace {

bool read_serial(Cursor &in, X509_REVOKED &out) noexcept {
  Tlv number;
  return in.next(TYPE_INTEGER, number) && in.keep(place_serial(out, number));
}

// The identifier itself decides between the two types.
bool read_date(Cursor &in, X509_REVOKED &out) noexcept {
  Tlv time;
  if (!in.next(time)) return false;
  if (time.identifier != TYPE_UTC_TIME && time.identifier != TYPE_GENERALIZED_TIME) return in.stop(Read::malformed);
  const int type = time.identifier == TYPE_UTC_TIME ? X509_TIME_UTC : X509_TIME_GENERALIZED;
  return in.keep(place_date(out, type, time.content));
}

// A failure inside the extensions has a code of its own.
int read_extensions(Cursor &in, X509_REVOKED &out) noexcept {
  Tlv list;
  return in.next(list) ? place_extensions(out, list) : 0;
}

// SEQUENCE { userCertificate INTEGER, revocationDate Time, crlEntryExtensions Extensions OPTIONAL }
// House form: elements after the known ones are ignored.
int decode_entry(const Tlv &tlv, X509_REVOKED &out) noexcept {
  Cursor in(tlv);
  if (read_serial(in, out) && read_date(in, out) && !in.at_end()) {
    const int code = in.at(tag::kSequence) ? read_extensions(in, out) : 0;
    if (code) return code;
    in.finish();
  }
  return in.result(F_SEQ_TO_X509_REVOKED);
}

int decode_entries(Cursor &in, RevokedGroup &group, STACK &list) noexcept {
  while (!in.at_end()) {
    Tlv child;
    if (!in.next(TYPE_SEQUENCE, child)) break;
    X509_REVOKED *entry = take_entry(group, list.count);
    if (!in.made(entry)) break;
    list.data[list.count++] = entry;
    if (const int code = decode_entry(child, *entry)) return code;
  }
  return in.result(F_SEQ_TO_X509_REVOKED);
}

}  // namespace

// revokedCertificates ::= SEQUENCE OF entry. All entries stand in one block, as do the list's slots.
int decode_revoked(const Tlv &tlv, const X509_RECEIVED &octets, X509_CRL_KEPT *kept, STACK *&out) noexcept {
  Cursor in(tlv);
  const int count = count_values(in.rest(), in.rules());
  out = new_revoked_list();
  RevokedGroup *group = reserve_stack(out, count) ? open_group(count, &octets, kept) : nullptr;
  if (!group) return fail(F_SEQ_TO_X509_REVOKED, kNoMemory);
  const int code = decode_entries(in, *group, *out);
  close_group(group);
  return code;
}

namespace {

int encode_entry(const X509_REVOKED *entry, DerWriter &out) noexcept {
  if (!entry || !entry->userCertificate || !entry->revocationDate)
    return fail(F_X509_REVOKED_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  out.integer(entry->userCertificate);
  write_time(*entry->revocationDate, out);
  const STACK *extensions = entry->crlEntryExtensions;
  return extensions && extensions->count ? encode_extensions(*extensions, out) : 0;
}

int encode_list_alone(const STACK &revoked, DerWriter &out) noexcept {
  return revoked.count ? encode_revoked(revoked, out) : fail(F_X509_REVOKED_TO_SEQ, kBadValue);
}

}  // namespace

int encode_revoked(const STACK &revoked, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  for (const X509_REVOKED *each : elements<X509_REVOKED>(&revoked))
    if (const int code = encode_entry(each, out)) return code;
  return out.result(F_X509_REVOKED_TO_SEQ);
}

}  // namespace velpki

using namespace velpki;

int X509_REVOKED_to_Seq(const STACK *revoked, ASN1_UNIT **out) noexcept {
  return to_seq(F_X509_REVOKED_TO_SEQ, revoked, out, encode_list_alone);
}

namespace velpki {

namespace {

int decode_list_alone(const Tlv &tlv, STACK *&out) noexcept {
  const owned<X509_RECEIVED> octets(new_received(tlv, tlv.content));
  if (!octets) return fail(F_SEQ_TO_X509_REVOKED, kNoMemory);
  return decode_revoked(in_received(tlv, *octets), *octets, nullptr, out);
}

// Moves the entries to the end of a list, all or nothing. What a CRL keeps of that one no longer describes it.
bool move_entries(STACK &from, STACK &to) noexcept {
  const X509_REVOKED *first = element<X509_REVOKED>(&to, 0);
  X509_CRL_KEPT *kept = first ? kept_of(*first) : nullptr;
  if (from.count > INT_MAX - to.count || !reserve_stack(&to, to.count + from.count)) return false;
  drop_content(kept);
  for (X509_REVOKED *each : elements<X509_REVOKED>(&from)) {
    link_entry(*each, kept);
    push_STACK_value(&to, each);
  }
  from.count = 0;
  return true;
}

}  // namespace

}  // namespace velpki

int Seq_to_X509_REVOKED(ASN1_UNIT *in, STACK **out) noexcept {
  if (!in || !out) return fail(F_SEQ_TO_X509_REVOKED, kNullArgument);
  Tlv tlv;
  if (!view(*in, tlv)) return fail(F_SEQ_TO_X509_REVOKED, ERR_ASN1_DECODING);
  STACK *fresh = nullptr;
  int code = decode_list_alone(tlv, fresh);
  if (!code && *out)
    code = move_entries(*fresh, **out) ? 0 : fail(F_SEQ_TO_X509_REVOKED, kNoMemory);
  else if (!code)
    *out = std::exchange(fresh, nullptr);
  free_X509_REVOKED_LIST(fresh);
  return code;
}
