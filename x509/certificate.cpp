// X509_CERT and its parts: their life, getters and setters.
#include <velpki/asn1_error.h>

#include "x509/internal/received.h"
#include "x509/internal/x509.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<X509_TIME> = std::tuple(own(&X509_TIME::time));
template <>
inline constexpr auto owned_fields<X509_AUX> = std::tuple(own(&X509_AUX::friendlyName), own(&X509_AUX::localKeyID));
template <>
inline constexpr auto owned_fields<X509_TBS_CERT> = std::tuple(
    own(&X509_TBS_CERT::serialNumber), own(&X509_TBS_CERT::signature), list_of<X509_NAME_CHILD>(&X509_TBS_CERT::issuer),
    own(&X509_TBS_CERT::notBefore), own(&X509_TBS_CERT::notAfter), list_of<X509_NAME_CHILD>(&X509_TBS_CERT::subject),
    own(&X509_TBS_CERT::subjectPublicKeyInfo), own(&X509_TBS_CERT::issuerUniqueID),
    own(&X509_TBS_CERT::subjectUniqueID), list_of<X509_EXTENSION>(&X509_TBS_CERT::extensions));
template <>
inline constexpr auto owned_fields<X509_CERT> = std::tuple(made(&X509_CERT::tbs), own(&X509_CERT::sig_alg),
                                                           own(&X509_CERT::sig_value), own(&X509_CERT::aux),
                                                           own(&X509_CERT::received));

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(X509_TIME)
VELPKI_LIFE_CYCLE(X509_AUX)
VELPKI_LIFE_CYCLE(X509_TBS_CERT)
VELPKI_LIFE_CYCLE(X509_CERT)

namespace velpki {

namespace {

// The TBS of a certificate that is about to change; a cleaned one gets a new TBS. Null for null or exhausted memory.
X509_TBS_CERT *tbs_of(X509_CERT *cert) noexcept {
  if (cert && !cert->tbs) cert->tbs = new_X509_TBS_CERT();
  return cert ? cert->tbs : nullptr;
}

// The end of a setter: what was received describes the certificate no longer, if it has changed.
bool changed(X509_CERT &cert, bool stored) noexcept {
  if (stored) drop_received(cert);
  return stored;
}

template <class T>
int set_field(int function, X509_CERT *cert, T *X509_TBS_CERT::*member, const T *value) noexcept {
  if (!cert || !value) return fail(function, kNullArgument);
  X509_TBS_CERT *tbs = tbs_of(cert);
  return changed(*cert, tbs && replace(*tbs, member, value)) ? 0 : fail(function, kNoMemory);
}

int set_name(int function, X509_CERT *cert, STACK *X509_TBS_CERT::*member, const X509_NAME *name) noexcept {
  if (!cert || !name) return fail(function, kNullArgument);
  X509_TBS_CERT *tbs = tbs_of(cert);
  return changed(*cert, tbs && replace_list<X509_NAME_CHILD>(*tbs, member, name)) ? 0 : fail(function, kNoMemory);
}

template <class T>
T *field(const X509_CERT *cert, T *X509_TBS_CERT::*member) noexcept {
  return cert && cert->tbs ? cert->tbs->*member : nullptr;
}

}  // namespace

}  // namespace velpki

int set_X509_version(X509_CERT *cert, int version) noexcept {
  if (!cert) return fail(F_SET_X509_VERSION, kNullArgument);
  if (version < 0 || version > 2) return fail(F_SET_X509_VERSION, kBadValue);
  X509_TBS_CERT *tbs = tbs_of(cert);
  if (!changed(*cert, tbs)) return fail(F_SET_X509_VERSION, kNoMemory);
  tbs->version = static_cast<unsigned char>(version);
  return 0;
}

int get_X509_version(const X509_CERT *cert) noexcept { return cert && cert->tbs ? cert->tbs->version : -1; }

int set_X509_serial(X509_CERT *cert, const BIGINT *serial) noexcept {
  return set_field(F_SET_X509_SERIAL, cert, &X509_TBS_CERT::serialNumber, serial);
}
BIGINT *get_X509_serial(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::serialNumber); }

int set_X509_signature(X509_CERT *cert, const OBJECT_IDENTIFIER *oid) noexcept {
  return set_field(F_SET_X509_SIGNATURE, cert, &X509_TBS_CERT::signature, oid);
}
OBJECT_IDENTIFIER *get_X509_signature(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::signature); }

int set_X509_issuer(X509_CERT *cert, const X509_NAME *issuer) noexcept {
  return set_name(F_SET_X509_ISSUER, cert, &X509_TBS_CERT::issuer, issuer);
}
X509_NAME *get_X509_issuer(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::issuer); }

int set_X509_subject(X509_CERT *cert, const X509_NAME *subject) noexcept {
  return set_name(F_SET_X509_SUBJECT, cert, &X509_TBS_CERT::subject, subject);
}
X509_NAME *get_X509_subject(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::subject); }

int set_X509_notBefore(X509_CERT *cert, const X509_TIME *time) noexcept {
  return set_field(F_SET_X509_NOTBEFORE, cert, &X509_TBS_CERT::notBefore, time);
}
X509_TIME *get_X509_notBefore(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::notBefore); }

int set_X509_notAfter(X509_CERT *cert, const X509_TIME *time) noexcept {
  return set_field(F_SET_X509_NOTAFTER, cert, &X509_TBS_CERT::notAfter, time);
}
X509_TIME *get_X509_notAfter(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::notAfter); }

int set_X509_pub_key(X509_CERT *cert, const X509_PUBKEY *pubkey) noexcept {
  return set_field(F_SET_X509_PUB_KEY, cert, &X509_TBS_CERT::subjectPublicKeyInfo, pubkey);
}
X509_PUBKEY *get_X509_SPKI(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::subjectPublicKeyInfo); }

int set_X509_extensions(X509_CERT *cert, const X509_EXTENSIONS *extensions) noexcept {
  X509_TBS_CERT *tbs = tbs_of(cert);
  if (!tbs) return 1;
  if (extensions) {
    return changed(*cert, replace_list<X509_EXTENSION>(*tbs, &X509_TBS_CERT::extensions, extensions)) ? 0 : 1;
  }
  free_X509_EXTENSIONS(std::exchange(tbs->extensions, nullptr));
  return changed(*cert, true), 0;
}
X509_EXTENSIONS *get_X509_extensions(const X509_CERT *cert) noexcept { return field(cert, &X509_TBS_CERT::extensions); }

OBJECT_IDENTIFIER *get_X509_sig_alg(const X509_CERT *cert) noexcept { return cert ? cert->sig_alg : nullptr; }
ASN1_STRING *get_X509_sig_value(const X509_CERT *cert) noexcept { return cert ? cert->sig_value : nullptr; }

const unsigned char *get_X509_received(const X509_CERT *cert, int tbs, int *length) noexcept {
  return lend_received(cert ? cert->received : nullptr, tbs, length);
}

// Auxiliary data.

namespace velpki {

namespace {

int set_aux(X509_CERT *cert, ASN1_STRING *X509_AUX::*member, const ASN1_STRING *value) noexcept {
  if (!cert) return 1;
  if (!cert->aux) cert->aux = new_X509_AUX();
  if (!cert->aux) return 1;
  if (value) return replace(*cert->aux, member, value) ? 0 : 1;
  free_ASN1_STRING(cert->aux->*member);
  cert->aux->*member = nullptr;
  return 0;
}

constexpr int kPlainFailure = 1;

int decode_aux(const Tlv &tlv, X509_AUX &out) noexcept {
  Cursor in(tlv);
  bool read = true;
  if (in.at(TYPE_UTF8_STRING)) read = in.string(TYPE_UTF8_STRING, out.friendlyName);
  if (read && in.at(tag::implicit_context(0))) read = in.string(TYPE_OCTET_STRING, out.localKeyID);
  return read && in.at_end() ? 0 : kPlainFailure;
}

int encode_aux(const X509_AUX &aux, DerWriter &out) noexcept {
  const auto sequence = out.sequence();
  if (aux.friendlyName) out.octets_as(TYPE_UTF8_STRING, aux.friendlyName);
  if (aux.localKeyID) out.octets_as(tag::implicit_context(0), aux.localKeyID);
  return 0;
}

}  // namespace

}  // namespace velpki

int set_X509_AUX_friendly(X509_CERT *cert, const UTF8_STRING *name) noexcept {
  return set_aux(cert, &X509_AUX::friendlyName, name);
}
UTF8_STRING *get_X509_AUX_friendly(const X509_CERT *cert) noexcept {
  return cert && cert->aux ? cert->aux->friendlyName : nullptr;
}
int set_X509_AUX_localkey(X509_CERT *cert, const OCTET_STRING *id) noexcept {
  return set_aux(cert, &X509_AUX::localKeyID, id);
}
OCTET_STRING *get_X509_AUX_localkey(const X509_CERT *cert) noexcept {
  return cert && cert->aux ? cert->aux->localKeyID : nullptr;
}

int X509_AUX_to_Seq(const X509_AUX *in, ASN1_UNIT **out) noexcept {
  return to_seq(0, in, out, encode_aux) ? kPlainFailure : 0;
}
int Seq_to_X509_AUX(ASN1_UNIT *in, X509_AUX **out) noexcept {
  return from_seq(0, in, out, decode_aux) ? kPlainFailure : 0;
}
