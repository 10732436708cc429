// The record families of this folder, through the tests that hold for all of them.
#include "support/family.h"

#include "cms_samples.h"

using namespace test;

namespace {

const std::vector<Family> &families() {
  static const CmsParts parts;
  static const std::vector<Family> all = {
      FAMILY(P7_ISSUER_AND_SERIAL_NUMBER, parts.issuer_and_serial, nullptr),
      FAMILY(P7_SIGNER_INFO, parts.signer(), nullptr),
      FAMILY(P7_SIGNER_INFOS, TLV(0x31, parts.signer() + parts.signer()), nullptr),
      FAMILY(P7_DIGEST_INFO, TLV(0x30, parts.sha256 + TLV(0x04, "0102")), nullptr),
      FAMILY(P7_SIGNED_DATA, parts.signed_data(), nullptr),
      FAMILY(P7_RECIPIENT_INFO, parts.recipient(), nullptr),
      FAMILY(P7_RECIPIENT_INFOS, TLV(0x31, parts.recipient() + parts.recipient()), nullptr),
      FAMILY(P7_ENCRYPTED_CONTENT_INFO, parts.encrypted, nullptr),
      FAMILY(P7_ENVELOPED_DATA, parts.enveloped_data(), nullptr),
      FAMILY(P7_SIGNED_AND_ENVELOPED_DATA, parts.signed_and_enveloped_data(), nullptr),
      FAMILY(P7_DIGESTED_DATA, parts.digested_data(), nullptr),
      FAMILY(P7_ENCRYPTED_DATA, TLV(0x30, TLV(0x02, "00") + parts.encrypted), nullptr),
      FAMILY(P7_CONTENT_INFO, content_info(2, parts.signed_data()), nullptr),
      FAMILY(ENCAPSULATED_CONTENT_INFO, parts.encapsulated, nullptr),
      FAMILY(CMS_SIGNER_INFO, parts.cms_signer(), nullptr),
      FAMILY(CMS_SIGNER_INFOS, TLV(0x31, parts.cms_signer() + parts.signer()), nullptr),
      FAMILY(CMS_SIGNED_DATA, parts.cms_signed_data(), nullptr),
      FAMILY(CMS_ORIGINATOR_INFO, TLV(0x30, parts.originator()), nullptr),
      FAMILY(CMS_RECIPIENT_INFO, parts.key_agree(parts.originator_key()), nullptr),
      FAMILY(CMS_RECIPIENT_INFOS, parts.recipients(), nullptr),
      FAMILY(CMS_ENCRYPTED_CONTENT_INFO, parts.encrypted, nullptr),
      FAMILY(CMS_ENVELOPED_DATA, parts.cms_enveloped_data(), nullptr),
      FAMILY(CMS_DIGESTED_DATA, TLV(0x30, TLV(0x02, "00") + parts.sha256 + parts.encapsulated + TLV(0x04, "0102")),
             nullptr),
      FAMILY(CMS_ENCRYPTED_DATA, TLV(0x30, TLV(0x02, "02") + parts.encrypted + TLV(0xA1, parts.attributes)), nullptr),
      FAMILY(CMS_AUTHENTICATED_DATA, parts.authenticated_data(), nullptr),
      FAMILY(CMS_CONTENT_INFO, authenticated_info(parts.authenticated_data()), nullptr),
  };
  return all;
}

INSTANTIATE_FAMILIES(Messages, families);

}  // namespace
