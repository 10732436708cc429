// Korean records, and the search for identity data in a subjectAltName.
#include <velpki/kisa.h>

#include "target.h"

namespace {

// The input is the value of the extension.
void subject_alt_name(const uint8_t *data, int size) {
  static const unsigned char random[20] = {1};
  const Owned<X509_CERT> cert(new_X509_CERT());
  const Owned<ASN1_STRING> value(new_ASN1_STRING());
  Owned<X509_EXTENSION> extension;
  Owned<STACK, free_X509_EXTENSIONS> list;
  set_ASN1_STRING_value(value, TYPE_OCTET_STRING, data, size);
  create_X509_EXTENSION_by_OID_index(&extension, 85, 0, value);
  add_X509_EXTENSION(&list, extension, -1);
  set_X509_extensions(cert, list);
  require(check_VID(cert, "1", 1, random, sizeof random) != 0, "no digest is guessed");
}

constexpr Target kTargets[] = {
    {"kisa_subject_alt_name", subject_alt_name},
    {"kisa_identify_data", FAMILY(KISA_IDENTIFY_DATA, dup_KISA_IDENTIFY_DATA)},
    {"kisa_vid", FAMILY(VID, dup_VID)},
    {"kisa_hsm_token", FAMILY(KISA_HSM_SIGNATURE_TOKEN, dup_KISA_HSM_SIGNATURE_TOKEN)},
};

const Registered kRegistered(kTargets);

}  // namespace
