// Identity data as a name in the subjectAltName of a certificate.
#include <velpki/asn1_error.h>

#include "korea/internal/kisa.h"

namespace velpki {

namespace {

constexpr int kNoOid = -2;  // a search by registry row could not make the row's OID
constexpr std::string_view kTypeOfRegistry = "1.2.410.200004.6.1";

bool is_identity_type(const OBJECT_IDENTIFIER *type) noexcept {
  return has_oid(type, KISA_OID_IDENTIFY_DATA) || has_oid(type, kTypeOfRegistry);
}

// The value of an otherName with identity data. Others, and what is no otherName at all, are passed over: they are
// somebody else's.
bool identity_in(const Tlv &name, owned<GENERAL_NAME> &out, bool &no_memory) noexcept {
  if (name.identifier != tag::explicit_context(0)) return false;
  owned<GENERAL_NAME> general(blank<GENERAL_NAME>());
  const int code = general ? decode(name, *general) : kNoMemory;
  no_memory = reason_of(code) == kNoMemory;
  if (code || !general->value) return false;
  if (!is_identity_type(static_cast<const OTHERNAME *>(general->value)->type_id)) return false;
  out = std::move(general);
  return true;
}

int find_identity(Octets names, owned<GENERAL_NAME> &out) noexcept {
  Rules rules;
  Tlv list, name;
  const bool whole = Tlv::parse(names, rules, list) && list.whole.size() == names.size();
  if (!whole || list.identifier != tag::kSequence) return fail(kKisa, ERR_ASN1_DECODING);
  Cursor in(list);
  for (bool no_memory = false; !in.at_end() && in.next(name);) {
    if (identity_in(name, out, no_memory)) return 0;
    if (no_memory) return fail(kKisa, kNoMemory);
  }
  return in.reason() == Read::ok ? fail(kKisa, ERR_NOT_FOUNDED) : in.result(kKisa);
}

int identity_of(const X509_CERT &cert, KISA_IDENTIFY_DATA **out) noexcept {
  const X509_EXTENSIONS *extensions = get_X509_extensions(&cert);
  const int index = get_X509_EXTENSION_index_by_OID_index(extensions, row::kSubjectAltName, -1);
  if (index == kNoOid) return fail(kKisa, kNoMemory);
  const X509_EXTENSION *extension = index < 0 ? nullptr : get_X509_EXTENSION(extensions, index);
  if (!extension || !extension->value) return fail(kKisa, ERR_NOT_FOUNDED);
  owned<GENERAL_NAME> name;
  if (const int code = find_identity(octets(*extension->value), name)) return code;
  const ASN1_STRING *value = static_cast<const OTHERNAME *>(name->value)->value;
  Rules rules;
  Tlv tlv;
  if (!Tlv::parse(octets(*value), rules, tlv)) return fail(F_SEQ_TO_KISA_IDENTIFY_DATA, ERR_ASN1_DECODING);
  return from_tlv(F_SEQ_TO_KISA_IDENTIFY_DATA, tlv, out, decode);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int get_X509_KISA_IDENTIFY_DATA(const X509_CERT *cert, KISA_IDENTIFY_DATA **out) noexcept {
  return cert && out ? identity_of(*cert, out) : fail(kKisa, kNullArgument);
}

int KISA_IDENTIFY_DATA_to_GENERAL_NAME(const KISA_IDENTIFY_DATA *in, GENERAL_NAME **out) noexcept {
  constexpr int kFunction = F_KISA_IDENTIFY_DATA_TO_SEQ;
  if (!in || !out) return fail(kFunction, kNullArgument);
  DerWriter value;
  if (const int code = encode(*in, value)) return code;
  owned<GENERAL_NAME> name(new_GENERAL_NAME());
  owned<OTHERNAME> other(blank<OTHERNAME>());
  if (!name || !other) return fail(kFunction, kNoMemory);
  constexpr std::string_view kType = KISA_OID_IDENTIFY_DATA;
  other->type_id = new_OBJECT_IDENTIFIER(kType.data(), int(kType.size()));
  other->value = new_string(TYPE_OCTET_STRING, value.written());
  if (!other->type_id || !other->value) return fail(kFunction, kNoMemory);
  name->type = GENERAL_NAME_OTHER;
  name->value = other.release();
  return store(std::move(name), out);
}
