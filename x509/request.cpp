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

// The info of a request that is about to change. A cleaned request gets a new one; null for exhausted memory.
Info *changing(PKCS10_X509_REQ &req) noexcept {
  if (!req.info) req.info = new_PKCS10_X509_REQ_INFO();
  drop_received(req);
  return req.info;
}

// Null takes a list away, where it may be missing.
template <class E>
int set_list(PKCS10_X509_REQ *req, STACK *Info::*member, const STACK *value) noexcept {
  if (!req) return fail(kRequest, kNullArgument);
  Info *info = changing(*req);
  if (!info) return fail(kRequest, kNoMemory);
  if (value) return replace_list<E>(*info, member, value) ? 0 : fail(kRequest, kNoMemory);
  destroy_list<E>(std::exchange(info->*member, nullptr));
  return 0;
}

template <class E>
int add_to_list(PKCS10_X509_REQ *req, STACK *Info::*member, const E *value, int position) noexcept {
  if (!req || !value) return fail(kRequest, kNullArgument);
  Info *info = changing(*req);
  if (!info) return fail(kRequest, kNoMemory);
  if (!(info->*member)) info->*member = new_STACK();
  return insert_copy(info->*member, value, position) ? 0 : fail(kRequest, kNoMemory);
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
  Info *info = changing(*req);
  if (!info) return fail(kRequest, kNoMemory);
  info->version = 0;
  return 0;
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
  Info *info = changing(*req);
  return info && replace(*info, &Info::subjectPublicKeyInfo, pubkey) ? 0 : fail(kRequest, kNoMemory);
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
  if (!replace(*req, &PKCS10_X509_REQ::sig_alg, oid)) return fail(kRequest, kNoMemory);
  drop_received(*req);
  return 0;
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
