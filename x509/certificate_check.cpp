// What is asked of a certificate: its dates, its digests, its key.
#include <velpki/asn1_error.h>

#include "asn1/internal/calendar.h"
#include "asn1/internal/encoded_time.h"
#include "x509/internal/received.h"
#include "x509/internal/x509.h"

namespace velpki {

owned<ASN1_TIME> time_of(const X509_TIME &time) noexcept {
  if (time.type == X509_TIME_UTC) return owned<ASN1_TIME>(utcTimeToASN1_TIME(time.time));
  if (time.type == X509_TIME_GENERALIZED) return owned<ASN1_TIME>(generalizedTimeToASN1_TIME(time.time));
  return nullptr;
}

bool standard_instant_of(const X509_TIME *time, int64_t &seconds) noexcept {
  if (!time || (time->type != X509_TIME_UTC && time->type != X509_TIME_GENERALIZED)) return false;
  const int type = time->type == X509_TIME_UTC ? TYPE_UTC_TIME : TYPE_GENERALIZED_TIME;
  return instant_of_certificate_time(type, time->time, seconds);
}

namespace {

constexpr auto validity_failure = [](int reason) { return fail(F_VERIFY_X509_VALIDITY, reason); };

// The time to compare with: the given one, or now.
int reference_time(const X509_TIME *time, owned<ASN1_TIME> &out) noexcept {
  out = time ? time_of(*time) : owned<ASN1_TIME>(getCurrentLocalTime());
  if (out) return 0;
  return validity_failure(time ? ERR_INVALID_X509_TIME_TYPE : kNoMemory);
}

// `side` is what comparing the reference with the date must give: 1 after notBefore, -1 before notAfter.
struct Bound {
  const X509_TIME *date;
  int side;
  int unreadable, outside;
};

int check_bound(const Bound &bound, const ASN1_TIME *now) noexcept {
  if (!bound.date) return 0;
  const owned<ASN1_TIME> date = time_of(*bound.date);
  if (!date) return validity_failure(bound.unreadable);
  return cmp_ASN1_TIME(now, date.get()) == bound.side ? 0 : validity_failure(bound.outside);
}

int check_bound_standard(const Bound &bound, const ASN1_TIME *now) noexcept {
  int64_t date, present;
  if (!standard_instant_of(bound.date, date)) return validity_failure(bound.unreadable);
  const bool inside = instant_of(*now, present) && (bound.side > 0 ? present >= date : present <= date);
  return inside ? 0 : validity_failure(bound.outside);
}

int check_validity(const X509_CERT *cert, const X509_TIME *time,
                   int (*check)(const Bound &, const ASN1_TIME *) noexcept) noexcept {
  if (!cert) return validity_failure(kNullArgument);
  owned<ASN1_TIME> now;
  if (const int code = reference_time(time, now)) return code;
  const Bound before{get_X509_notBefore(cert), 1, ERR_CERT_NOT_BEFORE, ERR_INVALID_CERT_NOT_BEFORE};
  const Bound after{get_X509_notAfter(cert), -1, ERR_CERT_NOT_AFTER, ERR_INVALID_CERT_NOT_AFTER};
  if (const int code = check(before, now.get())) return code;
  return check(after, now.get());
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int verify_X509_validity(const X509_CERT *cert, const X509_TIME *time) noexcept {
  return check_validity(cert, time, check_bound);
}
int verify_X509_validity_RFC5280(const X509_CERT *cert, const X509_TIME *time) noexcept {
  return check_validity(cert, time, check_bound_standard);
}

X509_TIME *asn1TimeToX509_TIME_RFC5280(const ASN1_TIME *time) noexcept {
  const owned<ASN1_TIME> in_utc(dup_ASN1_TIME(time));
  owned<X509_TIME> made(in_utc ? new_X509_TIME() : nullptr);
  if (!made) return nullptr;
  made->time = asn1TimeToUTC_TIME(in_utc.get(), 2);
  if (!made->time) {
    made->type = X509_TIME_GENERALIZED;
    made->time = asn1TimeToGENERALIZED_TIME(in_utc.get(), 2);
  }
  return made->time ? made.release() : nullptr;
}

int X509_CERT_digest(const X509_CERT *cert, int digest_id, unsigned char *out, int *out_length) noexcept {
  if (!cert || !out) return fail(F_X509_CERT_TO_SEQ, kNullArgument);
  DerWriter writer;
  if (const int code = encode(*cert, writer)) return code;
  if (const int code = writer.result(F_X509_CERT_TO_SEQ)) return code;
  return PKV_DIGEST(digest_id, writer.written().data(), int(writer.size()), out, out_length);
}

int X509_CERT_digest_RFC5280(const X509_CERT *cert, int digest_id, unsigned char *out, int *out_length) noexcept {
  if (!cert || !cert->received || !out) return X509_CERT_digest(cert, digest_id, out, out_length);
  const Octets whole = received_whole(*cert->received);
  return PKV_DIGEST(digest_id, whole.data(), int(whole.size()), out, out_length);
}

int get_X509_CERTS_index_by_X509_CERT(const X509_CERTIFICATES *certs, const X509_CERT *cert) noexcept {
  DerWriter wanted;
  const BIGINT *serial = get_X509_serial(cert);
  if (!certs || !serial || encode(*cert, wanted) || wanted.failed()) return -1;
  for (int i = 0; i < certs->count; ++i) {
    const auto *each = element<X509_CERT>(certs, i);
    if (!each || PKV_Cmp_BIGINT(get_X509_serial(each), serial) != 0) continue;
    DerWriter found;
    if (encode(*each, found) || found.failed() || found.size() != wanted.size()) continue;
    if (std::memcmp(found.written().data(), wanted.written().data(), wanted.size()) == 0) return i;
  }
  return -1;
}

namespace velpki {

namespace {

const ASYMMETRIC_KEY *key_of(const X509_CERT *cert) noexcept {
  const X509_PUBKEY *pubkey = get_X509_SPKI(cert);
  return pubkey ? pubkey->key : nullptr;
}

int digest_of(Octets octets, int digest_id, unsigned char *out) noexcept {
  int length = 0;
  return PKV_DIGEST(digest_id, octets.data(), int(octets.size()), out, &length) ? 0 : length;
}

}  // namespace

}  // namespace velpki

int get_X509_PUBLIC_KEY_hash(const X509_CERT *cert, int digest_id, unsigned char *out) noexcept {
  const ASYMMETRIC_KEY *key = key_of(cert);
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(key);
  const KCDSA_UNIT *kcdsa = ASYMMETRIC_KEY_to_KCDSA_UNIT(key);
  if (!out || (!rsa && !kcdsa)) return 0;
  DerWriter writer;
  if (rsa)
    write_rsa_key(*rsa, false, writer);
  else
    writer.integer(PKV_Get_KCDSA_Component(kcdsa, PKV_KCDSA_Y));
  return writer.failed() ? 0 : digest_of(writer.written(), digest_id, out);
}

int get_X509_PUBLIC_KEY_hash_RFC5280(const X509_CERT *cert, int digest_id, unsigned char *out) noexcept {
  const X509_PUBKEY *pubkey = get_X509_SPKI(cert);
  if (!out || !pubkey || !pubkey->subjectPublicKey) return 0;
  return digest_of(octets(*pubkey->subjectPublicKey), digest_id, out);
}

int check_X509_RSA_keypair(const X509_CERT *cert, RSA_UNIT *key) noexcept {
  const RSA_UNIT *own_key = ASYMMETRIC_KEY_to_RSA_UNIT(key_of(cert));
  return own_key && key && PKV_Cmp_RSA(own_key, key) == 0 ? 0 : 1;
}

int check_X509_KCDSA_keypair(const X509_CERT *cert, KCDSA_UNIT *key) noexcept {
  const KCDSA_UNIT *own_key = ASYMMETRIC_KEY_to_KCDSA_UNIT(key_of(cert));
  return own_key && key && PKV_Cmp_KCDSA(own_key, key) == 0 ? 0 : 1;
}

int check_X509_keypair(const X509_CERT *cert, ASYMMETRIC_KEY *key) noexcept {
  const X509_PUBKEY *pubkey = get_X509_SPKI(cert);
  switch (pubkey ? get_CipherID_from_OID(pubkey->algorithm) : 0) {
    case PKV_KEY_RSA:
      return check_X509_RSA_keypair(cert, ASYMMETRIC_KEY_to_RSA_UNIT(key));
    case PKV_KEY_KCDSA:
      return check_X509_KCDSA_keypair(cert, ASYMMETRIC_KEY_to_KCDSA_UNIT(key));
    default:
      return 1;
  }
}
