// Certificates, revocation lists and names on standard output.
#include <velpki/asn1_objects.h>
#include <velpki/utils.h>

#include <cstdio>

#include "x509/internal/crl.h"
#include "x509/internal/print.h"

namespace velpki {

// The registry's short name of an OID, or its dotted text when it has no row.
std::string_view short_name(const OBJECT_IDENTIFIER &oid) noexcept {
  const char *name = sn_from_index(index_from_OBJECT_IDENTIFIER(&oid));
  return name ? std::string_view(name) : text(oid);
}

std::string_view long_name(const OBJECT_IDENTIFIER &oid) noexcept {
  const char *name = ln_from_index(index_from_OBJECT_IDENTIFIER(&oid));
  return name ? std::string_view(name) : text(oid);
}

namespace {

// UCS-2 becomes UTF-8 in a small buffer, a character at a time, so that it is shown like any other text.
void print_ucs2(Octets value) noexcept {
  for (; value.size() >= 2; value = value.subspan(2)) {
    const unsigned c = unsigned(value[0]) << 8 | value[1];
    uint8_t utf8[3] = {uint8_t(c)};
    size_t size = 1;
    if (c >= 0x800) {
      utf8[0] = uint8_t(0xE0 | c >> 12), utf8[1] = uint8_t(0x80 | (c >> 6 & 0x3F)),
      utf8[2] = uint8_t(0x80 | (c & 0x3F));
      size = 3;
    } else if (c >= 0x80) {
      utf8[0] = uint8_t(0xC0 | c >> 6), utf8[1] = uint8_t(0x80 | (c & 0x3F));
      size = 2;
    }
    print_visible(Octets(utf8, size));
  }
  print_visible(value);
}

}  // namespace

void print_value(const ASN1_STRING &value) noexcept {
  if (value.type == TYPE_BMP_STRING)
    print_ucs2(octets(value));
  else
    print_visible(octets(value));
}

void print_number(const BIGINT *number) noexcept {
  int length = 0;
  const uint8_t *octets = number ? PKV_Get_BIGINT_Octets(number, &length) : nullptr;
  const uint8_t zero = 0;
  print_hex_nl(length ? octets : &zero, length ? length : 1);
}

void print_time(const char *label, const X509_TIME *time) noexcept {
  std::fputs(label, stdout);
  if (time && time->time) print_visible(octets(*time->time));
  std::fputs("\n", stdout);
}

namespace {

void print_algorithm_line(const OBJECT_IDENTIFIER *oid) noexcept {
  if (!oid) return;
  std::fputs("  -  ", stdout);
  print_text(text(*oid));
  std::fputs(" - ", stdout);
  print_text(long_name(*oid));
  std::fputs(" \n", stdout);
}

void print_key(const X509_PUBKEY *pubkey) noexcept {
  std::fputs("+ SPKI\n", stdout);
  if (!pubkey) return;
  print_algorithm_line(pubkey->algorithm);
  const RSA_UNIT *rsa = ASYMMETRIC_KEY_to_RSA_UNIT(pubkey->key);
  if (!rsa) return;
  std::fputs("  -  n : ", stdout);
  print_number(PKV_Get_RSA_Component(rsa, PKV_RSA_N));
  std::fputs("  -  e : ", stdout);
  print_number(PKV_Get_RSA_Component(rsa, PKV_RSA_E));
}

void print_signature(const X509_CERT &cert) noexcept {
  std::fputs("+ SIG and VALUE\n", stdout);
  print_algorithm_line(cert.sig_alg);
  std::fputs("  -  value : ", stdout);
  if (cert.sig_value)
    print_hex_nl(cert.sig_value->data, cert.sig_value->length);
  else
    std::fputs("\n", stdout);
}

void print_key_hash(const X509_CERT &cert) noexcept {
  unsigned char digest[PKV_MAX_DIGEST_LENGTH];
  const int length = get_X509_PUBLIC_KEY_hash(&cert, PKV_DIGEST_SHA1, digest);
  std::fputs("+ SPKI Hash\n  -  value : ", stdout);
  if (length)
    print_hex_nl(digest, length);
  else
    std::fputs("\n", stdout);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

void print_X509_NAME(const X509_NAME *name) noexcept {
  for (const X509_NAME_CHILD *child : elements<X509_NAME_CHILD>(name)) {
    if (!child || !child->type || !child->value) continue;
    std::fputs("  - ", stdout);
    print_text(short_name(*child->type));
    std::fputs("=", stdout);
    print_value(*child->value);
    std::fputs("\n", stdout);
  }
}

void print_X509(const X509_CERT *cert) noexcept {
  if (!cert || !cert->tbs) return;
  const X509_TBS_CERT &tbs = *cert->tbs;
  std::printf("+ Version : %02X\n", unsigned(tbs.version));
  std::fputs("+ Serial : ", stdout);
  print_number(tbs.serialNumber);
  std::fputs("+ Signature : ", stdout);
  if (tbs.signature) print_text(long_name(*tbs.signature));
  std::fputs("\n+ Issuer : \n", stdout);
  print_X509_NAME(tbs.issuer);
  std::fputs("+ Validity\n", stdout);
  print_time("  -  notBefore : ", tbs.notBefore);
  print_time("  -  notAfter : ", tbs.notAfter);
  std::fputs("+ Subject : \n", stdout);
  print_X509_NAME(tbs.subject);
  print_key(tbs.subjectPublicKeyInfo);
  print_signature(*cert);
  print_key_hash(*cert);
}

void print_X509_CERTIFICATES(const X509_CERTIFICATES *certs) noexcept {
  const int count = certs ? certs->count : 0;
  for (int i = 0; i < count; ++i) {
    std::printf("\n\nX509_CERTS === [%d/%d]\n", i + 1, count);
    print_X509(element<X509_CERT>(certs, i));
  }
}

namespace velpki {

namespace {

constexpr int kShownEntries = 20;

void print_entry(const X509_REVOKED &entry) noexcept {
  print_time("  -  ", entry.revocationDate);
  std::fputs("     serial : ", stdout);
  print_number(entry.userCertificate);
  const int reason = get_X509_REVOKED_CRLreason_strict(&entry);
  if (reason >= 0) std::printf("     reason : %d\n", reason);
}

void print_entries(const STACK *revoked) noexcept {
  const int count = revoked ? revoked->count : 0;
  std::printf("+ Revoked : %d\n", count);
  for (int i = 0; i < count && i < kShownEntries; ++i)
    if (const X509_REVOKED *entry = get_X509_REVOKED(revoked, i)) print_entry(*entry);
  if (count > kShownEntries) std::fputs("  -  ...\n", stdout);
}

void print_extension_names(const X509_EXTENSIONS *extensions) noexcept {
  if (!extensions || !extensions->count) return;
  std::fputs("+ Extensions\n", stdout);
  for (const X509_EXTENSION *each : elements<X509_EXTENSION>(extensions)) {
    if (!each || !each->object) continue;
    std::fputs("  -  ", stdout);
    print_text(short_name(*each->object));
    std::fputs(each->critical ? ", critical\n" : "\n", stdout);
  }
}

}  // namespace

}  // namespace velpki

void print_X509_CRL(const X509_CRL *crl) noexcept {
  if (!crl || !crl->tbs) return;
  const X509_CRL_INFO &info = *crl->tbs;
  std::printf("+ Version : %02X\n+ Signature : ", unsigned(info.version));
  if (info.signature) print_text(long_name(*info.signature));
  std::fputs("\n+ Issuer : \n", stdout);
  print_X509_NAME(info.issuer);
  print_time("+ This Update : ", info.thisUpdate);
  print_time("+ Next Update : ", info.nextUpdate);
  print_entries(info.revoked);
  print_extension_names(info.extensions);
}
