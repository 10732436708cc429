// Names, keys, certificates, lists and requests.
#include <velpki/issuer_and_serial_number.h>
#include <velpki/pkcs1.h>
#include <velpki/pkcs10.h>
#include <velpki/x509.h>

#include "target.h"

namespace {

template <class K>
void key_octets(const uint8_t *data, int size, int (*read)(const ASN1_STRING *, K **),
                int (*write)(K *, ASN1_STRING **), void (*release)(K *)) {
  const Owned<ASN1_STRING> bits(new_BIT_STRING(data, size));
  Owned<ASN1_STRING> written;
  K *key = nullptr;
  if (bits && read(bits, &key) == 0) write(key, &written);
  release(key);
}

// A certificate goes through everything that looks into it.
void certificates(const uint8_t *data, int size) {
  Owned<X509_CERT> cert, standard;
  if (readDER_X509_CERT_from_Binary(&cert, data, size) == 0) {
    unsigned char digest[PKV_MAX_DIGEST_LENGTH];
    int length = 0;
    verify_X509_validity(cert, nullptr);
    X509_CERT_digest_RFC5280(cert, PKV_DIGEST_SHA1, digest, &length);
    verify_SIG_X509_CERT(cert, get_X509_SPKI(cert)->key);
    cmp_X509_NAME(get_X509_issuer(cert), get_X509_subject(cert));
    cmp_X509_NAME_RFC5280(get_X509_issuer(cert), get_X509_subject(cert));
  }
  if (readDER_X509_CERT_from_Binary_RFC5280(&standard, data, size) == 0) {
    verify_SIG_X509_CERT_RFC5280(standard, get_X509_SPKI(standard));
  }
}

// A request goes through everything that looks into it; what becomes of it is a certificate that can be written.
void requests(const uint8_t *data, int size) {
  Owned<PKCS10_X509_REQ> req, standard;
  if (readDER_PKCS10_X509_REQ_from_Binary(&req, data, size) == 0) verify_SIG_PKCS10_X509_REQ(req);
  if (readDER_PKCS10_X509_REQ_from_Binary_RFC5280(&standard, data, size) == 0) {
    const Owned<X509_CERT> cert(new_X509_CERT());
    const Owned<STACK, free_OBJECT_IDENTIFIERS> allowed(new_OBJECT_IDENTIFIERS());
    for (const char *oid : {"2.5.29.14", "2.5.29.15", "2.5.29.17", "2.5.29.32", "2.5.29.37"})
      push_STACK_value(allowed, new_OBJECT_IDENTIFIER(oid, int(std::strlen(oid))));
    const int code = set_X509_CERT_from_PKCS10_X509_REQ(cert, standard, allowed);
    require(code != 0 || verify_SIG_PKCS10_X509_REQ_RFC5280(standard) == 0, "what is taken was verified");
  }
}

// What parameters mean can be written again and means the same.
void rsa_parameters(const uint8_t *data, int size) {
  const Owned<ASN1_UNIT> unit(decodeToBERSequence_n(data, size));
  Owned<RSASSA_PSS_PARAM> pss;
  const Owned<RSASSA_PSS_PARAM> made(new_RSASSA_PSS_PARAM());
  Owned<RSAES_OAEP_PARAM> oaep;
  int digest, mask, salt, back = -1, length;
  const unsigned char *label;
  if (unit && Seq_to_RSASSA_PSS_PARAM(unit, &pss) == 0 && !get_RSASSA_PSS_PARAM_values(pss, &digest, &mask, &salt)) {
    require(set_RSASSA_PSS_PARAM_values(made, digest, mask, salt) == 0, "values can be set");
    require(get_RSASSA_PSS_PARAM_values(made, nullptr, nullptr, &back) == 0 && back == salt, "and are the same");
  }
  if (unit && Seq_to_RSAES_OAEP_PARAM(unit, &oaep) == 0) {
    get_RSAES_OAEP_PARAM_values(oaep, &digest, &mask, &label, &length);
  }
}

void signature_values(const uint8_t *data, int size) {
  unsigned char r[66], s[66];
  int r_length = sizeof r, s_length = sizeof s;
  ASN1_STRING raw{TYPE_BIT_STRING, const_cast<uint8_t *>(data), size, 0};
  decode_KCDSASignatureValue(r, &r_length, s, &s_length, &raw);
  r_length = s_length = int(sizeof r);
  decode_ECDSA_SIGNATURE_VALUE(r, &r_length, s, &s_length, &raw);
}

constexpr Target kTargets[] = {
    {"certificate", certificates},
    {"request", requests},
    {"pkcs10", KEY_FAMILY(PKCS10_X509_REQ, dup_PKCS10_X509_REQ)},
    {"pkcs10_rfc5280", STANDARD_FAMILY(PKCS10_X509_REQ, dup_PKCS10_X509_REQ)},
    {"pkcs1_private", FAMILY(PKCS1_RSA_PRIVATE_KEY, dup_PKCS1_RSA_PRIVATE_KEY)},
    {"pkcs1_public", FAMILY(PKCS1_RSA_PUBLIC_KEY, dup_PKCS1_RSA_PUBLIC_KEY)},
    {"pss_param", FAMILY(RSASSA_PSS_PARAM, dup_RSASSA_PSS_PARAM)},
    {"oaep_param", FAMILY(RSAES_OAEP_PARAM, dup_RSAES_OAEP_PARAM)},
    {"rsa_parameters", rsa_parameters},
    {"signature_value", signature_values},
    {"x509_cert", KEY_FAMILY(X509_CERT, dup_X509_CERT)},
    {"x509_cert_rfc5280", STANDARD_FAMILY(X509_CERT, dup_X509_CERT)},
    {"tbs_cert", KEY_FAMILY(X509_TBS_CERT, dup_X509_TBS_CERT)},
    {"name", FAMILY(X509_NAME, dup_X509_NAME)},
    {"name_rfc5280", STANDARD_FAMILY(X509_NAME, dup_X509_NAME)},
    {"algorithm", FAMILY(X509_ALGO_IDENTIFIER, dup_X509_ALGO_IDENTIFIER)},
    {"algorithms", FAMILY(X509_ALGO_IDENTIFIERS, dup_X509_ALGO_IDENTIFIERS)},
    {"attribute", FAMILY(X509_ATTRIBUTE, dup_X509_ATTRIBUTE)},
    {"attributes", FAMILY(X509_ATTRIBUTES, dup_X509_ATTRIBUTES)},
    {"extensions", FAMILY(X509_EXTENSIONS, dup_X509_EXTENSIONS)},
    {"pubkey", KEY_FAMILY(X509_PUBKEY, dup_X509_PUBKEY)},
    {"pubkey_rfc5280", STANDARD_FAMILY(X509_PUBKEY, dup_X509_PUBKEY)},
    {"aux", FAMILY(X509_AUX, dup_X509_AUX)},
    {"certificates", KEY_FAMILY(X509_CERTIFICATES, nullptr)},
    {"cert_pair", KEY_FAMILY(X509_CERT_PAIR, dup_X509_CERT_PAIR)},
    {"issuer_and_serial", FAMILY(ISSUER_AND_SERIAL_NUMBER, nullptr)},
    {"rsa_key",
     [](const uint8_t *d, int n) { key_octets(d, n, BITSTRING_to_RSA_KEY, RSA_KEY_to_BITSTRING, PKV_Free_RSA); }},
    {"kcdsa_key",
     [](const uint8_t *d, int n) { key_octets(d, n, BITSTRING_to_KCDSA_KEY, KCDSA_KEY_to_BITSTRING, PKV_Free_KCDSA); }},
    {"ecc_key",
     [](const uint8_t *d, int n) { key_octets(d, n, BITSTRING_to_ECC_KEY, ECC_KEY_to_BITSTRING, PKV_Free_ECC); }},
};

const Registered kRegistered(kTargets);

}  // namespace
