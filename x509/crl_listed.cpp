// Finding the entry of a certificate in a revocation list.
#include <velpki/asn1_error.h>

#include "x509/internal/crl_check.h"
#include "x509/internal/x509v3.h"

namespace velpki {

namespace {

constexpr int failure(int reason) noexcept { return fail(kCrlModule, reason); }

constexpr int kRemoveFromCrl = 8;

// An entry that takes back is rare, and another of the same number may not.
X509_REVOKED *find_entry(const X509_CRL &crl, const BIGINT *serial) noexcept {
  X509_REVOKED *found = find_X509_CRL_revoked(&crl, serial);
  if (!found || !takes_back(*found)) return found;
  for (X509_REVOKED *each : elements<X509_REVOKED>(crl.tbs->revoked))
    if (each && PKV_Cmp_BIGINT(each->userCertificate, serial) == 0 && !takes_back(*each)) return each;
  return found;
}

// The serial number with its sign, which a certificate that was read in house form has lost.
owned<BIGINT> signed_serial(const X509_CERT &cert) noexcept {
  owned<BIGINT> number;
  Tlv tbs, serial;
  Rules rules = kStandardRules;
  if (!cert.received || !Tlv::parse(received_tbs(*cert.received), rules, tbs)) return number;
  Cursor in(tbs);
  Tlv skipped;
  if (in.at(tag::explicit_context(0)) && !in.next(skipped)) return number;
  BIGINT *read = nullptr;
  if (in.next(TYPE_INTEGER, serial) && read_integer(serial, read) == Read::ok) number.reset(read);
  return number;
}

// The serial number that an entry of the certificate has: its own, or with its sign.
int serial_of(const X509_CERT &cert, const BIGINT *&out, owned<BIGINT> &owner) noexcept {
  out = get_X509_serial(&cert);
  if (!out) return failure(kNullArgument);
  if (!cert.received || cert.received->standard) return 0;
  owner = signed_serial(cert);
  if (!owner) return failure(kNoMemory);
  if (PKV_Is_BIGINT_Negative(owner.get())) out = owner.get();
  return 0;
}

// Follows the issuer that the entries of an indirect list are of: the list's own, until an entry names another.
class IssuerOfEntries {
 public:
  IssuerOfEntries(const X509_CRL &crl, const X509_NAME *wanted) noexcept
      : wanted_(wanted), matches_(is_wanted(get_X509_CRL_issuer(&crl))) {}

  int go_to(const X509_REVOKED &entry) noexcept {
    if (entry.crlEntryExtensions == last_) return 0;  // entries with equal extensions share them
    last_ = entry.crlEntryExtensions;
    for (const X509_EXTENSION *each : elements<X509_EXTENSION>(last_))
      if (const int code = each && each->object ? take(*each) : 0) return code;
    return 0;
  }
  bool matches() const noexcept { return matches_; }

 private:
  bool is_wanted(const X509_NAME *name) const noexcept { return cmp_X509_NAME_RFC5280(name, wanted_) == 0; }

  int take(const X509_EXTENSION &extension) noexcept {
    const int fault = fault_of_entry(extension);
    if (fault == ERR_CRL_INDIRECT) return take_issuer(extension);
    return fault ? failure(fault) : 0;
  }
  int take_issuer(const X509_EXTENSION &extension) noexcept {
    STACK *names = nullptr;
    if (const int code = X509_EXTENSION_to_GENERAL_NAMES_RFC5280(&extension, &names)) return code;
    matches_ = false;
    for (const GENERAL_NAME *each : elements<GENERAL_NAME>(names)) {
      const bool directory = each && each->type == GENERAL_NAME_DIRECTORY;
      matches_ |= directory && is_wanted(static_cast<const X509_NAME *>(each->value));
    }
    free_GENERAL_NAMES(names);
    return 0;
  }

  const X509_NAME *wanted_;
  const STACK *last_ = nullptr;
  bool matches_;
};

}  // namespace

bool takes_back(const X509_REVOKED &entry) noexcept {
  return get_X509_REVOKED_CRLreason_strict(&entry) == kRemoveFromCrl;
}

int find_listed(const X509_CRL &crl, const X509_CERT &cert, X509_REVOKED *&entry) noexcept {
  owned<BIGINT> owner;
  const BIGINT *serial = nullptr;
  if (const int code = serial_of(cert, serial, owner)) return code;
  entry = find_entry(crl, get_X509_serial(&cert));
  if (!entry) entry = find_entry(crl, serial);
  return 0;
}

int find_listed_of_issuer(const X509_CRL &crl, const X509_CERT &cert, X509_REVOKED *&entry) noexcept {
  owned<BIGINT> owner;
  const BIGINT *serial = nullptr;
  if (const int code = serial_of(cert, serial, owner)) return code;
  entry = nullptr;
  IssuerOfEntries issuer(crl, get_X509_issuer(&cert));
  for (X509_REVOKED *each : elements<X509_REVOKED>(crl.tbs->revoked)) {
    if (!each) continue;
    if (const int code = issuer.go_to(*each)) return code;
    if (!issuer.matches() || PKV_Cmp_BIGINT(each->userCertificate, serial) != 0) continue;
    if (!entry || takes_back(*entry)) entry = each;
  }
  return 0;
}

}  // namespace velpki
