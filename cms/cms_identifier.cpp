// What names a certificate or a key in a message.
#include "cms/internal/cms.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<SIGNER_IDENTIFIER> = std::tuple(own(&SIGNER_IDENTIFIER::issuerAndSerialNumber),
                                                                   own(&SIGNER_IDENTIFIER::subjectKeyIdentifier));

bool read_issuer_and_serial(MessageReader &in, ISSUER_AND_SERIAL_NUMBER *&out) noexcept { return in.record(out); }

int write_issuer_and_serial(const ISSUER_AND_SERIAL_NUMBER *record, DerWriter &out) noexcept {
  if (!record || !record->issuer || !record->serialNumber) return out.refuse(), 0;
  return encode(*record, out);
}

// SignerIdentifier, RecipientIdentifier ::= CHOICE { issuerAndSerialNumber, subjectKeyIdentifier [0] OCTET STRING }
bool read_identifier(MessageReader &in, SIGNER_IDENTIFIER *&out) noexcept {
  if (!in.made(out = blank<SIGNER_IDENTIFIER>())) return false;
  if (in.at(tag::kSequence)) return read_issuer_and_serial(in, out->issuerAndSerialNumber);
  out->type = CMS_ID_SUBJECT_KEY;
  return in.optional_implicit_octets(0, out->subjectKeyIdentifier) && out->subjectKeyIdentifier
             ? true
             : in.stop(Read::malformed);
}

int write_identifier(const SIGNER_IDENTIFIER *identifier, int function, DerWriter &out) noexcept {
  if (!identifier) return fail(function, ERR_ASN1_ENCODING);
  if (identifier->type != CMS_ID_SUBJECT_KEY) return write_issuer_and_serial(identifier->issuerAndSerialNumber, out);
  if (!identifier->subjectKeyIdentifier) return fail(function, ERR_ASN1_ENCODING);
  out.octets_as(tag::implicit_context(0), identifier->subjectKeyIdentifier);
  return 0;
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(SIGNER_IDENTIFIER)
RECIPIENT_IDENTIFIER *new_RECIPIENT_IDENTIFIER(void) noexcept { return new_SIGNER_IDENTIFIER(); }
void free_RECIPIENT_IDENTIFIER(RECIPIENT_IDENTIFIER *p) noexcept { free_SIGNER_IDENTIFIER(p); }
