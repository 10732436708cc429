// The status of one certificate in an OCSP response (RFC 6960 4.2.1).
#include <velpki/asn1_error.h>

#include "validation/internal/ocsp.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<OCSP_REVOKED_INFO> = std::tuple(own(&OCSP_REVOKED_INFO::revocationTime));
template <>
inline constexpr auto owned_fields<OCSP_CERT_STATUS> = std::tuple(own(&OCSP_CERT_STATUS::revokedInfo));
template <>
inline constexpr auto owned_fields<OCSP_SINGLE_RESPONSE> = std::tuple(
    own(&OCSP_SINGLE_RESPONSE::certID), own(&OCSP_SINGLE_RESPONSE::certStatus), own(&OCSP_SINGLE_RESPONSE::thisUpdate),
    own(&OCSP_SINGLE_RESPONSE::nextUpdate), list_of<X509_EXTENSION>(&OCSP_SINGLE_RESPONSE::singleExtensions));

namespace {

constexpr int kNoReason = -1;

// RevokedInfo ::= SEQUENCE { revocationTime GeneralizedTime, revocationReason [0] EXPLICIT CRLReason OPTIONAL }
int decode(const Tlv &tlv, OCSP_REVOKED_INFO &out) noexcept {
  Cursor in(tlv);
  Tlv time, reason;
  out.revocationReason = kNoReason;
  if (in.next(time) && read_time_text(in, time, out.revocationTime) && !in.at_end() && take_explicit(in, 0, reason) &&
      read_small_number(in, reason, TYPE_ENUMERATED, out.revocationReason)) {
    ends(in);
  }
  return in.result(kOcsp);
}

}  // namespace

int encode(const OCSP_REVOKED_INFO &info, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  out.octets_as(TYPE_GENERALIZED_TIME, info.revocationTime);
  if (info.revocationReason != kNoReason) {
    const auto wrapper = out.explicit_context(0);
    write_small_number(TYPE_ENUMERATED, info.revocationReason, out);
  }
  return out.result(kOcsp);
}

namespace {

// CertStatus ::= CHOICE { good [0] IMPLICIT NULL, revoked [1] IMPLICIT RevokedInfo, unknown [2] IMPLICIT NULL }
// The identifiers are taken as they are: a status that is none of these is an error, never good.
constexpr uint8_t kGood = tag::implicit_context(0), kRevoked = tag::explicit_context(1),
                  kUnknown = tag::implicit_context(2);

bool read_status(Cursor &in, OCSP_CERT_STATUS &out) noexcept {
  Tlv status;
  if (!in.next(status)) return false;
  out.type = status.number();
  if (status.identifier == kRevoked) {
    out.revokedInfo = blank<OCSP_REVOKED_INFO>();
    return in.made(out.revokedInfo) && in.absorb(decode(status, *out.revokedInfo));
  }
  const bool standard = in.rules().standard;
  const int identifier = standard ? status.identifier : status.identifier & ~tag::kConstructed;
  const bool known = identifier == kGood || identifier == kUnknown;
  return (known && (status.content.empty() || !standard)) || in.stop(Read::malformed);
}
int write_status(const OCSP_CERT_STATUS *status, DerWriter &out) noexcept {
  if (!status) return ocsp_failure(ERR_ASN1_ENCODING);
  if (status->type == OCSP_STATUS_GOOD) return out.primitive(kGood, {}), 0;
  if (status->type == OCSP_STATUS_UNKNOWN) return out.primitive(kUnknown, {}), 0;
  if (status->type != OCSP_STATUS_REVOKED || !status->revokedInfo) return ocsp_failure(ERR_ASN1_ENCODING);
  const size_t start = out.size();
  if (const int code = encode(*status->revokedInfo, out)) return code;
  out.retag(start, kRevoked);
  return 0;
}

// nextUpdate is [0] by the standard and bare in house form, the extensions [1] or [2].
bool read_next_update(Cursor &in, OCSP_SINGLE_RESPONSE &out) noexcept {
  Tlv time;
  if (in.at(TYPE_GENERALIZED_TIME) && !in.rules().standard) {
    return in.next(time) && read_time_text(in, time, out.nextUpdate);
  }
  if (!in.at(tag::explicit_context(0))) return true;
  return take_explicit(in, 0, time) && read_time_text(in, time, out.nextUpdate);
}
bool read_single_extensions(Cursor &in, OCSP_SINGLE_RESPONSE &out) noexcept {
  Tlv list;
  if (in.at_end()) return true;
  const int n = in.at(tag::explicit_context(2)) && !in.rules().standard ? 2 : 1;
  return take_explicit(in, n, list) && read_extensions(in, list, out.singleExtensions);
}

}  // namespace

// SingleResponse ::= SEQUENCE { certID CertID, certStatus CertStatus, thisUpdate GeneralizedTime,
//   nextUpdate [0] EXPLICIT GeneralizedTime OPTIONAL, singleExtensions [1] EXPLICIT Extensions OPTIONAL }
int decode(const Tlv &tlv, OCSP_SINGLE_RESPONSE &out) noexcept {
  Cursor in(tlv);
  Tlv id, time;
  if (take(in, tag::kSequence, id) && in.made(out.certID = blank<OCSP_CERT_ID>()) &&
      in.absorb(decode(id, *out.certID)) && in.made(out.certStatus = blank<OCSP_CERT_STATUS>()) &&
      read_status(in, *out.certStatus) && in.next(time) && read_time_text(in, time, out.thisUpdate) &&
      read_next_update(in, out) && read_single_extensions(in, out)) {
    ends(in);
  }
  return in.result(kOcsp);
}

namespace {

void write_next_update(const GENERALIZED_TIME *time, DerWriter &out) noexcept {
  if (!time) return;
  if (!out.rules().standard) return out.octets_as(TYPE_GENERALIZED_TIME, time);
  const auto wrapper = out.explicit_context(0);
  out.octets_as(TYPE_GENERALIZED_TIME, time);
}

}  // namespace

int encode(const OCSP_SINGLE_RESPONSE &response, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (const int code = write_member(response.certID, out)) return code;
  if (const int code = write_status(response.certStatus, out)) return code;
  out.octets_as(TYPE_GENERALIZED_TIME, response.thisUpdate);
  write_next_update(response.nextUpdate, out);
  const int n = out.rules().standard ? 1 : 2;
  if (const int code = write_extensions(n, response.singleExtensions, out)) return code;
  return out.result(kOcsp);
}

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(OCSP_CERT_STATUS)
VELPKI_LIFE_CYCLE(OCSP_SINGLE_RESPONSE)

// An empty RevokedInfo has no reason, which is not the reason 0.
OCSP_REVOKED_INFO *new_OCSP_REVOKED_INFO(void) noexcept {
  OCSP_REVOKED_INFO *info = blank<OCSP_REVOKED_INFO>();
  if (info) info->revocationReason = kNoReason;
  return info;
}
void clean_OCSP_REVOKED_INFO(OCSP_REVOKED_INFO *p) noexcept {
  clean(p);
  if (p) p->revocationReason = kNoReason;
}
void free_OCSP_REVOKED_INFO(OCSP_REVOKED_INFO *p) noexcept { destroy(p); }
OCSP_REVOKED_INFO *dup_OCSP_REVOKED_INFO(const OCSP_REVOKED_INFO *p) noexcept { return velpki::copy(p); }

int OCSP_REVOKED_INFO_to_Seq(const OCSP_REVOKED_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int Seq_to_OCSP_REVOKED_INFO(ASN1_UNIT *in, OCSP_REVOKED_INFO **out) noexcept {
  return from_seq(kOcsp, in, out, decode);
}
int OCSP_SINGLE_RESPONSE_to_Seq(const OCSP_SINGLE_RESPONSE *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode);
}
int OCSP_SINGLE_RESPONSE_to_Seq_strict(const OCSP_SINGLE_RESPONSE *in, ASN1_UNIT **out) noexcept {
  return to_seq(kOcsp, in, out, encode, kStandardRules);
}
int Seq_to_OCSP_SINGLE_RESPONSE(ASN1_UNIT *in, OCSP_SINGLE_RESPONSE **out) noexcept {
  return from_seq(kOcsp, in, out, decode);
}
