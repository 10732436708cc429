// PKCS10_X509_REQ and its info: their life, getters and setters.
#include <velpki/asn1_error.h>

#include "x509/internal/pkcs10.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<PKCS10_X509_REQ_INFO> = std::tuple(
    list_of<X509_NAME_CHILD>(&PKCS10_X509_REQ_INFO::subject), own(&PKCS10_X509_REQ_INFO::subjectPublicKeyInfo),
    list_of<X509_ATTRIBUTE>(&PKCS10_X509_REQ_INFO::attributes),
    list_of<X509_EXTENSION>(&PKCS10_X509_REQ_INFO::extensions));
template <>
inline constexpr auto owned_fields<PKCS10_X509_REQ> = std::tuple(made(&PKCS10_X509_REQ::info),
                                                                 own(&PKCS10_X509_REQ::sig_alg),
                                                                 own(&PKCS10_X509_REQ::sig_value),
                                                                 own(&PKCS10_X509_REQ::received));

namespace {

using Info = PKCS10_X509_REQ_INFO;

// A cleaned request gets a new info; null for exhausted memory.
Info *info_of(PKCS10_X509_REQ &req) noexcept {
  if (!req.info) req.info = new_PKCS10_X509_REQ_INFO();
  return req.info;
}

// The end of a setter: what was received describes the request no longer, if it has changed.
int changed(PKCS10_X509_REQ &req, bool stored) noexcept {
  if (!stored) return fail(kRequest, kNoMemory);
  drop_received(req);
  return 0;
}

// Null takes a list away, where it may be missing.
template <class E>
int set_list(PKCS10_X509_REQ *req, STACK *Info::*member, const STACK *value) noexcept {
  if (!req) return fail(kRequest, kNullArgument);
  Info *info = info_of(*req);
  if (info && value) return changed(*req, replace_list<E>(*info, member, value));
  if (info) destroy_list<E>(std::exchange(info->*member, nullptr));
  return changed(*req, info);
}

template <class E>
int add_to_list(PKCS10_X509_REQ *req, STACK *Info::*member, const E *value, int position) noexcept {
  if (!req || !value) return fail(kRequest, kNullArgument);
  Info *info = info_of(*req);
  if (info && !(info->*member)) info->*member = new_STACK();
  return changed(*req, info && insert_copy(info->*member, value, position));
}

template <class T>
T *field(const PKCS10_X509_REQ *req, T *Info::*member) noexcept {
  return req && req->info ? req->info->*member : nullptr;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(PKCS10_X509_REQ_INFO)
VELPKI_LIFE_CYCLE(PKCS10_X509_REQ)

int set_PKCS10_X509_REQ_version(PKCS10_X509_REQ *req, int version) noexcept {
  if (!req) return fail(kRequest, kNullArgument);
  if (version != 0) return fail(kRequest, kBadValue);
  Info *info = info_of(*req);
  if (info) info->version = 0;
  return changed(*req, info);
}
int get_PKCS10_X509_REQ_version(const PKCS10_X509_REQ *req) noexcept {
  return req && req->info ? req->info->version : -1;
}

int set_PKCS10_X509_REQ_subject(PKCS10_X509_REQ *req, const X509_NAME *subject) noexcept {
  return subject ? set_list<X509_NAME_CHILD>(req, &Info::subject, subject) : fail(kRequest, kNullArgument);
}
X509_NAME *get_PKCS10_X509_REQ_subject(const PKCS10_X509_REQ *req) noexcept { return field(req, &Info::subject); }

int set_PKCS10_X509_REQ_pub_key(PKCS10_X509_REQ *req, const X509_PUBKEY *pubkey) noexcept {
  if (!req || !pubkey) return fail(kRequest, kNullArgument);
  Info *info = info_of(*req);
  return changed(*req, info && replace(*info, &Info::subjectPublicKeyInfo, pubkey));
}
X509_PUBKEY *get_PKCS10_X509_REQ_SPKI(const PKCS10_X509_REQ *req) noexcept {
  return field(req, &Info::subjectPublicKeyInfo);
}

int set_PKCS10_X509_REQ_attributes(PKCS10_X509_REQ *req, const X509_ATTRIBUTES *attributes) noexcept {
  return set_list<X509_ATTRIBUTE>(req, &Info::attributes, attributes);
}
X509_ATTRIBUTES *get_PKCS10_X509_REQ_attributes(const PKCS10_X509_REQ *req) noexcept {
  return field(req, &Info::attributes);
}
int add_PKCS10_X509_REQ_attribute(PKCS10_X509_REQ *req, const X509_ATTRIBUTE *attribute, int position) noexcept {
  return add_to_list(req, &Info::attributes, attribute, position);
}

int set_PKCS10_X509_REQ_extensions(PKCS10_X509_REQ *req, const X509_EXTENSIONS *extensions) noexcept {
  return set_list<X509_EXTENSION>(req, &Info::extensions, extensions);
}
X509_EXTENSIONS *get_PKCS10_X509_REQ_extensions(const PKCS10_X509_REQ *req) noexcept {
  return field(req, &Info::extensions);
}
int add_PKCS10_X509_REQ_extension(PKCS10_X509_REQ *req, const X509_EXTENSION *extension, int position) noexcept {
  return add_to_list(req, &Info::extensions, extension, position);
}

int set_PKCS10_X509_REQ_sig_alg(PKCS10_X509_REQ *req, const OBJECT_IDENTIFIER *oid) noexcept {
  if (!req || !oid) return fail(kRequest, kNullArgument);
  return changed(*req, replace(*req, &PKCS10_X509_REQ::sig_alg, oid));
}
OBJECT_IDENTIFIER *get_PKCS10_X509_REQ_sig_alg(const PKCS10_X509_REQ *req) noexcept {
  return req ? req->sig_alg : nullptr;
}
ASN1_STRING *get_PKCS10_X509_REQ_sig_value(const PKCS10_X509_REQ *req) noexcept {
  return req ? req->sig_value : nullptr;
}
const unsigned char *get_PKCS10_X509_REQ_received(const PKCS10_X509_REQ *req, int info, int *length) noexcept {
  return lend_received(req ? req->received : nullptr, info, length);
}
