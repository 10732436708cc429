// Revocation lists.
#include <velpki/x509_crl.h>

#include "target.h"

namespace {

// The first entry that a walk finds is what the index finds; an entry that changes is found by its new number.
void look_up(X509_CRL *crl) {
  STACK *list = get_X509_CRL_revoked(crl);
  const int count = list ? get_X509_REVOKED_count(list) : 0;
  for (int i = 0; i < count && i < 100; ++i) {
    const BIGINT *serial = get_X509_REVOKED_userCert(get_X509_REVOKED(list, i));
    int first = 0;
    while (PKV_Cmp_BIGINT(get_X509_REVOKED_userCert(get_X509_REVOKED(list, first)), serial) != 0) ++first;
    require(find_X509_CRL_revoked(crl, serial) == get_X509_REVOKED(list, first), "the index finds the first");
  }
  if (!count) return;
  X509_REVOKED *last = get_X509_REVOKED(list, count - 1);
  const Owned<BIGINT> fresh(PKV_New_BIGINT());
  PKV_Decimal_To_BIGINT(fresh, "-1234567890123456789012345678901234567890");
  require(set_X509_REVOKED_userCert(last, fresh) == 0, "a new number");
  require(find_X509_CRL_revoked(crl, fresh) != nullptr, "is found");
  while (get_X509_REVOKED_ext_count(last) > 0) remove_X509_REVOKED_ext(last, 0);
  require(get_X509_CRL_received(crl, 0, nullptr) == nullptr, "a changed list keeps nothing");
  sort_X509_CRL_revoked(crl);
}

struct Authority {
  ASYMMETRIC_KEY *key;
  X509_PUBKEY *pubkey = new_X509_PUBKEY();
  Authority() {
    const Owned<ECC_UNIT> unit(PKV_New_ECC());
    const Owned<ECURVE> curve(PKV_New_ECURVE());
    PKV_Set_ECURVE_Named(curve, "prime256v1");
    PKV_Set_ECC_Curve(unit, curve);
    PKV_Generate_ECC(unit);
    key = ECC_UNIT_to_ASYMMETRIC_KEY(unit);
    set_X509_PUBKEY_ecc(pubkey, unit);
  }
};

// Signs the list and asks it for a certificate that has the list's extensions for its own.
void check(X509_CRL *crl) {
  static const Authority authority;
  const Owned<ASN1_STRING> algorithm(new_OBJECT_IDENTIFIER("1.2.840.10045.4.3.2", 19));
  set_X509_CRL_signature(crl, algorithm);
  const Owned<X509_CERT> cert(new_X509_CERT());
  const Owned<BIGINT> serial(PKV_New_BIGINT());
  PKV_Set_BIGINT_Word(serial, 5);
  set_X509_serial(cert, serial);
  set_X509_issuer(cert, get_X509_CRL_issuer(crl));
  set_X509_subject(cert, get_X509_CRL_issuer(crl));
  set_X509_pub_key(cert, authority.pubkey);
  set_X509_extensions(cert, crl->tbs->extensions);
  X509_REVOKED *entry = nullptr;
  if (gen_SIG_X509_CRL_RFC5280(crl, authority.key) == 0) {
    const int code = check_X509_CRL_revocation_strict(crl, cert, cert, get_X509_CRL_thisUpdate(crl), &entry);
    require(code != 0 || !entry, "an entry is a revocation");
  }
}

void lists(const uint8_t *data, int size) {
  X509_CRL *plain = nullptr, *standard = nullptr;
  readDER_X509_CRL_from_Binary(&plain, data, size);
  readDER_X509_CRL_from_Binary_RFC5280(&standard, data, size);
  for (X509_CRL *crl : {plain, standard}) {
    if (!crl) continue;
    const Owned<X509_CRL> copy(dup_X509_CRL(crl));
    require(copy != nullptr, "what decodes can be copied");
    look_up(crl);
    free_X509_CRL(crl);
    check(copy);
    look_up(copy);
  }
}

constexpr Target kTargets[] = {
    {"crl", lists},
    {"x509_crl", FAMILY(X509_CRL, dup_X509_CRL)},
    {"x509_crl_rfc5280", STANDARD_FAMILY(X509_CRL, dup_X509_CRL)},
    {"crl_info", FAMILY(X509_CRL_INFO, dup_X509_CRL_INFO)},
    {"crls", FAMILY(X509_CRLS, nullptr)},
    {"revoked", FAMILY_OF(STACK, Seq_to_X509_REVOKED, X509_REVOKED_to_Seq, nullptr, free_X509_REVOKED_LIST, from_der)},
};

const Registered kRegistered(kTargets);

}  // namespace
