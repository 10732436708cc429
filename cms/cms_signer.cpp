// Setting up a signer, and what names it.
#include "cms/internal/cms.h"
#include "cms/internal/ecdsa.h"
#include "cms/internal/signature.h"
#include "cms/internal/signer_state.h"

namespace velpki {

namespace {

constexpr int kSubjectKeyIdentifierRow = 82;
constexpr int kBySubjectKey = 1;  // of the flags

}  // namespace

bool view_subject_key_identifier(const X509_CERT &cert, Octets &out) noexcept {
  const X509_EXTENSIONS *extensions = get_X509_extensions(&cert);
  const int index = get_X509_EXTENSION_index_by_OID_index(extensions, kSubjectKeyIdentifierRow, -1);
  const auto *extension = index < 0 ? nullptr : element<X509_EXTENSION>(extensions, index);
  Tlv tlv;
  Rules rules = kStandardRules;
  if (!extension || !extension->value || !Tlv::parse(octets(*extension->value), rules, tlv)) return false;
  out = tlv.content;
  return tlv.identifier == TYPE_OCTET_STRING && tlv.whole.size() == size_t(extension->value->length);
}

int read_subject_key_identifier(const X509_CERT &cert, owned<ASN1_STRING> &out) noexcept {
  Octets identifier;
  if (!view_subject_key_identifier(cert, identifier)) return kBadValue;
  out.reset(new_string(TYPE_OCTET_STRING, identifier));
  return out ? 0 : kNoMemory;
}

int name_certificate(SIGNER_IDENTIFIER *&out, const X509_CERT &cert, bool by_subject_key, int function) noexcept {
  owned<SIGNER_IDENTIFIER> fresh(new_SIGNER_IDENTIFIER());
  if (!fresh) return fail(function, kNoMemory);
  if (by_subject_key) {
    owned<ASN1_STRING> identifier;
    if (const int reason = read_subject_key_identifier(cert, identifier)) return fail(function, reason);
    fresh->type = CMS_ID_SUBJECT_KEY;
    fresh->subjectKeyIdentifier = identifier.release();
  } else if (const int code = name_by_serial(fresh->issuerAndSerialNumber, cert, function)) {
    return code;
  }
  put(out, std::move(fresh));
  return 0;
}

int name_by_serial(ISSUER_AND_SERIAL_NUMBER *&out, const X509_CERT &cert, int function) noexcept {
  const X509_NAME *issuer = get_X509_issuer(&cert);
  const BIGINT *serial = get_X509_serial(&cert);
  if (!issuer || !serial) return fail(function, kNullArgument);
  owned<ISSUER_AND_SERIAL_NUMBER> fresh(new_ISSUER_AND_SERIAL_NUMBER());
  if (!fresh || !(fresh->issuer = dup_X509_NAME(issuer)) || !(fresh->serialNumber = PKV_Dup_BIGINT(serial))) {
    return fail(function, kNoMemory);
  }
  put(out, std::move(fresh));
  return 0;
}

namespace {

constexpr int failure(int reason) noexcept { return fail(F_SET_CMS_SIGNER_INFO, reason); }

// The arguments of a signer that is set up; `by_ex` those of the functions that know PSS parameters and curves.
struct SignerArguments {
  const X509_CERT *cert;
  const ASYMMETRIC_KEY *key;
  int flags, digest_row, padding;
  bool by_ex = false;
  const RSASSA_PSS_PARAM *pss = nullptr;
};

int check(const SignerArguments &from) noexcept {
  if (from.padding != PKV_RSA_PKCS1 && from.padding != PKV_RSA_PSS) return failure(kUnsupported);
  if (!from.cert) return failure(kNullArgument);
  const int type = from.key ? from.key->type : ASYMMETRIC_KEY_RSA;
  const bool on_curve = is_on_curve(from.key) && from.by_ex && from.padding == PKV_RSA_PKCS1;
  if (type != ASYMMETRIC_KEY_RSA && type != ASYMMETRIC_KEY_KCDSA && !on_curve) return failure(kUnsupported);
  return oid_of_row(from.digest_row) ? 0 : failure(kUnsupported);
}

int fill(const SignerArguments &from, CMS_SIGNER_INFO &out) noexcept {
  const bool by_subject_key = from.flags & kBySubjectKey;
  if (const int code = name_certificate(out.sid, *from.cert, by_subject_key, F_SET_CMS_SIGNER_INFO)) return code;
  const bool set = set_version(out.version, by_subject_key ? 3 : 1) &&
                   (!from.key || (out.privateKey = dup_ASYMMETRIC_KEY(from.key))) &&
                   set_algorithm(out.digestAlgorithm, from.digest_row) &&
                   set_algorithm(out.signatureAlgorithm, signature_row(from.digest_row, from.padding));
  if (!set) return failure(kNoMemory);
  if (is_on_curve(from.key)) {
    return set_ecdsa_algorithm(out.signatureAlgorithm, digest_id_of(out.digestAlgorithm), F_SET_CMS_SIGNER_INFO);
  }
  if (!from.by_ex || from.padding != PKV_RSA_PSS) return 0;
  return set_pss_parameters(from.pss, *out.digestAlgorithm, F_SET_CMS_SIGNER_INFO, *out.signatureAlgorithm);
}

int set_signer(CMS_SIGNER_INFO *si, const SignerArguments &from) noexcept {
  if (!si) return failure(kNullArgument);
  if (const int code = check(from)) return code;
  const owned<CMS_SIGNER_INFO> fresh(new_CMS_SIGNER_INFO());
  if (!fresh) return failure(kNoMemory);
  if (const int code = fill(from, *fresh)) return code;
  std::swap(*si, *fresh);
  return 0;
}

CMS_SIGNER_INFO *add_signer(CMS_CONTENT_INFO *cms, const SignerArguments &from) noexcept {
  owned<CMS_SIGNER_INFO> signer(new_CMS_SIGNER_INFO());
  if (!signer || set_signer(signer.get(), from) || add_CMS_SignerInfo(cms, signer.get())) return nullptr;
  return signer.release();
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int set_CMS_SubjectKeyIdentifier(OCTET_STRING **ski, X509_CERT *cert) noexcept {
  if (!ski || !cert) return fail(F_SET_CMS_SUBJECTKEYIDENTIFIER, kNullArgument);
  owned<ASN1_STRING> identifier;
  if (const int reason = read_subject_key_identifier(*cert, identifier)) {
    return fail(F_SET_CMS_SUBJECTKEYIDENTIFIER, reason);
  }
  put(*ski, std::move(identifier));
  return 0;
}

int set_CMS_IssuerAndSerialNumber(ISSUER_AND_SERIAL_NUMBER **issuer_and_serial, X509_CERT *cert) noexcept {
  if (!issuer_and_serial || !cert) return fail(F_SET_CMS_ISSUERANDSERIALNUMBER, kNullArgument);
  return name_by_serial(*issuer_and_serial, *cert, F_SET_CMS_ISSUERANDSERIALNUMBER);
}

int set_CMS_SIGNER_INFO(CMS_SIGNER_INFO *si, X509_CERT *cert, int flags, ASYMMETRIC_KEY *key, int digest_index,
                        int padding, RSASSA_PSS_PARAM *) noexcept {
  return set_signer(si, {cert, key, flags, digest_index, padding});
}
int set_CMS_SIGNER_INFO_ex(CMS_SIGNER_INFO *si, const X509_CERT *cert, int flags, const ASYMMETRIC_KEY *key,
                           int digest_index, int padding, const RSASSA_PSS_PARAM *pss) noexcept {
  return set_signer(si, {cert, key, flags, digest_index, padding, true, pss});
}

int add_CMS_SignerInfo(CMS_CONTENT_INFO *cms, CMS_SIGNER_INFO *si) noexcept {
  if (const int code = check_type(cms, CMS_TYPE_SIGNED_DATA, F_ADD_CMS_SIGNER)) return code;
  if (!si || !si->digestAlgorithm) return fail(F_ADD_CMS_SIGNER, kNullArgument);
  CMS_SIGNED_DATA &data = *signed_data(cms);
  if (!provide(data.digestAlgorithms) || !insert_copy(data.digestAlgorithms, si->digestAlgorithm, -1)) {
    return fail(F_ADD_CMS_SIGNER, kNoMemory);
  }
  int code = take(data.signerInfos, si, F_ADD_CMS_SIGNER);
  if (!code && PKV_Get_BIGINT_Word(si->version) == 3 && !raise_version(data.version, 3)) {
    pop_STACK_value(data.signerInfos);
    code = fail(F_ADD_CMS_SIGNER, kNoMemory);
  }
  if (code) free_X509_ALGO_IDENTIFIER(static_cast<X509_ALGO_IDENTIFIER *>(pop_STACK_value(data.digestAlgorithms)));
  return code;
}

CMS_SIGNER_INFO *add_CMS_Signature(CMS_CONTENT_INFO *cms, X509_CERT *cert, int flags, ASYMMETRIC_KEY *key,
                                   int digest_index, int padding, RSASSA_PSS_PARAM *) noexcept {
  return add_signer(cms, {cert, key, flags, digest_index, padding});
}
CMS_SIGNER_INFO *add_CMS_Signature_ex(CMS_CONTENT_INFO *cms, const X509_CERT *cert, int flags,
                                      const ASYMMETRIC_KEY *key, int digest_index, int padding,
                                      const RSASSA_PSS_PARAM *pss) noexcept {
  return add_signer(cms, {cert, key, flags, digest_index, padding, true, pss});
}
