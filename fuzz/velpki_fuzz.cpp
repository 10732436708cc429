// Fuzz targets: every decoder that takes octets. A target asserts properties, not only survival: what decodes can be
// copied; what encodes decodes again and then encodes to the same octets; a failure comes with a code.
#include <velpki/asn1_objects.h>
#include <velpki/base64.h>
#include <velpki/convert.h>
#include <velpki/der.h>
#include <velpki/issuer_and_serial_number.h>
#include <velpki/pem.h>
#include <velpki/pkcs1.h>
#include <velpki/pkcs10.h>
#include <velpki/x509.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool holds, const char *what) {
  if (holds) return;
  std::fprintf(stderr, "property violated: %s\n", what);
  std::abort();
}

struct Flat {
  unsigned char *data = nullptr;
  int length = -1;
  explicit Flat(const ASN1_UNIT *unit) : length(ASN1_to_binary(unit, &data)) {}
  ~Flat() { PKV_Free(data, __FILE__, __LINE__); }
  bool operator==(const Flat &other) const {
    return length == other.length && (length <= 0 || std::memcmp(data, other.data, size_t(length)) == 0);
  }
};

// When what was written has to be readable: always in standard form; in house form when the input was DER (the house
// measure of indefinite lengths depends on what stands around a value); never where an ECC point may be written short.
enum class Readable { always, from_der, perhaps };

bool must_be_readable(Readable when, const uint8_t *data, int size) {
  ASN1_UNIT *der = when == Readable::from_der ? decodeToDERSequence_strict(data, size) : nullptr;
  const bool is_der = der != nullptr;
  free_ASN1_UNIT(der);
  return when == Readable::always || is_der;
}

// The properties of a family. Reading what was written gives the same octets again.
template <class R>
void family(const uint8_t *data, int size, int (*from)(ASN1_UNIT *, R **), int (*to)(const R *, ASN1_UNIT **),
            R *(*copy)(const R *), void (*release)(R *), Readable when) {
  ASN1_UNIT *unit = decodeToBERSequence_n(data, size), *written = nullptr, *again = nullptr;
  R *record = nullptr, *back = nullptr;
  if (unit && from(unit, &record) == 0) {
    if (copy) {
      R *duplicate = copy(record);
      require(duplicate != nullptr, "what decodes can be copied");
      release(duplicate);
    }
    if (to(record, &written) == 0) {
      const bool read = from(written, &back) == 0;
      require(read || !must_be_readable(when, data, size), "what is written can be read");
      require(!read || to(back, &again) == 0, "and written again");
      require(!read || Flat(written) == Flat(again) || when != Readable::always, "to the same octets");
    }
  } else {
    require(record == nullptr, "failure leaves no record");
  }
  if (record) release(record);
  if (back) release(back);
  free_ASN1_UNIT(unit);
  free_ASN1_UNIT(written);
  free_ASN1_UNIT(again);
}

#define FAMILY(T, copy) \
  [](const uint8_t *d, int n) { family<T>(d, n, Seq_to_##T, T##_to_Seq, copy, free_##T, Readable::from_der); }
#define KEY_FAMILY(T, copy) \
  [](const uint8_t *d, int n) { family<T>(d, n, Seq_to_##T, T##_to_Seq, copy, free_##T, Readable::perhaps); }
#define STANDARD_FAMILY(T, copy)                                                                 \
  [](const uint8_t *d, int n) {                                                                  \
    family<T>(d, n, Seq_to_##T##_RFC5280, T##_to_Seq_RFC5280, copy, free_##T, Readable::always); \
  }

template <class K>
void key_octets(const uint8_t *data, int size, int (*read)(const ASN1_STRING *, K **),
                int (*write)(K *, ASN1_STRING **), void (*release)(K *)) {
  ASN1_STRING *bits = new_BIT_STRING(data, size), *written = nullptr;
  K *key = nullptr;
  if (bits && read(bits, &key) == 0 && write(key, &written) == 0) free_ASN1_STRING(written);
  release(key);
  free_ASN1_STRING(bits);
}

void units(const uint8_t *data, int size) {
  ASN1_UNIT *unit = decodeToBERSequence_n(data, size);
  if (unit) {
    const Flat flat(unit);
    require(flat.length > 0, "a decoded unit can be flattened");
    getSequenceChildNum(unit);
    getChildType(unit, 1);
    int cursor = 0;
    for (int i = 0; void *child = getBERChildOffset(unit, i, TYPE_ASN1_STRING, &cursor); ++i)
      free_ASN1_STRING(static_cast<ASN1_STRING *>(child));
    ASN1_UNIT *copy = dup_ASN1_UNIT(unit), *faithful = dup_ASN1_UNIT_strict(unit);
    require(faithful && Flat(faithful) == flat, "a faithful copy");
    if (copy) Flat{copy};
    free_ASN1_UNIT(copy);
    free_ASN1_UNIT(faithful);
  }
  free_ASN1_UNIT(unit);
  ASN1_UNIT *strict = decodeToDERSequence_strict(data, size);
  if (strict) require(Flat(strict).length == size, "DER comes back octet for octet");
  free_ASN1_UNIT(strict);
  free_ASN1_UNIT(decodeToBERSequence_strict(data, size));
}

void strings(const uint8_t *data, int size) {
  ASN1_STRING *value = decodeToBERASN1String_n(data, size);
  ASN1_UNIT *unit = nullptr;
  if (value && ASN1_STRING_to_Seq(value, &unit) == 0) require(Flat(unit).length >= 2, "an encoding");
  free_ASN1_UNIT(unit);
  free_ASN1_STRING(value);
  free_ASN1_STRING(decodeToBERBitString_n(data, size));
  PKV_Free_BIGINT(decodeToBERInteger_n(data, size));
}

void oids(const uint8_t *data, int size) {
  OBJECT_IDENTIFIER *oid = decodeToBERObjectIdentifier_n(data, size);
  if (oid) {
    require(oid->length < 100, "bounded text");
    get_DigestID_from_OID(oid);
    get_AlgorType_from_OID(oid);
  }
  free_OBJECT_IDENTIFIER(oid);
  free_OBJECT_IDENTIFIER(decodeToBERObjectIdentifier_RFC5280(data, size));
  free_OBJECT_IDENTIFIER(new_OBJECT_IDENTIFIER(reinterpret_cast<const char *>(data), size));
  ASN1_STRING raw{TYPE_OBJECT_IDENTIFIER, const_cast<uint8_t *>(data), size, 0};
  ASN1_UNIT *unit = new_ASN1_UNIT();
  encodeToBERObjectIdentifier(unit, 6, &raw, size, 1);
  encodeToBERObjectIdentifier_RFC5280(unit, 6, &raw, size, 1);
  free_ASN1_UNIT(unit);
}

void times(const uint8_t *data, int size) {
  ASN1_STRING raw{TYPE_UTC_TIME, const_cast<uint8_t *>(data), size, 0};
  free_ASN1_TIME(utcTimeToASN1_TIME(&raw));
  free_ASN1_TIME(utcTimeToASN1_TIME_RFC5280(&raw));
  raw.type = TYPE_GENERALIZED_TIME;
  ASN1_TIME *time = generalizedTimeToASN1_TIME(&raw);
  for (int form = 0; time && form < 4; ++form) {
    free_ASN1_STRING(asn1TimeToUTC_TIME(time, form));
    free_ASN1_STRING(asn1TimeToGENERALIZED_TIME(time, form));
  }
  free_ASN1_TIME(time);
  free_ASN1_TIME(generalizedTimeToASN1_TIME_RFC5280(&raw));
  const std::string text(reinterpret_cast<const char *>(data), size_t(size));
  free_ASN1_TIME(charToASN1_TIME(text.c_str()));
}

void texts(const uint8_t *data, int size) {
  const char *text = reinterpret_cast<const char *>(data);
  unsigned char *out = nullptr;
  if (decode_PEM(text, size, &out) > 0) PKV_Free(out, __FILE__, __LINE__);
  if (decode_PEM_strict(text, size, &out) > 0) PKV_Free(out, __FILE__, __LINE__);
  if (decode_Base64_strict(text, size, &out) > 0) PKV_Free(out, __FILE__, __LINE__);
  const int length = decode_Base64(text, size, &out);
  if (length <= 0) return;
  char *again = nullptr;
  unsigned char *back = nullptr;
  require(encode_Base64(out, length, &again, 1) > 0, "octets become text");
  require(decode_Base64(again, int(std::strlen(again)), &back) == length, "and octets again");
  require(std::memcmp(out, back, size_t(length)) == 0, "the same");
  PKV_Free(out, __FILE__, __LINE__);
  PKV_Free(back, __FILE__, __LINE__);
  PKV_Free(again, __FILE__, __LINE__);
}

void conversions(const uint8_t *data, int size) {
  const char *text = reinterpret_cast<const char *>(data);
  unsigned char *ucs2 = nullptr;
  char *back = nullptr;
  const int length = cp949ToUnicode(text, size, &ucs2);
  if (length > 0) {
    require(unicodeToCP949(ucs2, length, &back) == size, "CP949 comes back");
    require(std::memcmp(back, data, size_t(size)) == 0, "the same");
    PKV_Free(back, __FILE__, __LINE__);
  }
  if (length >= 0) PKV_Free(ucs2, __FILE__, __LINE__);
  if (cp949ToUTF8(text, size, &back) >= 0) PKV_Free(back, __FILE__, __LINE__);
  if (unicodeToCP949(data, size, &back) >= 0) PKV_Free(back, __FILE__, __LINE__);
  if (ascTouni(text, size, &ucs2) >= 0) PKV_Free(ucs2, __FILE__, __LINE__);
  if (uniToasc(data, size, &back) >= 0) PKV_Free(back, __FILE__, __LINE__);
}

// A certificate goes through everything that looks into it.
void certificates(const uint8_t *data, int size) {
  X509_CERT *cert = nullptr, *standard = nullptr;
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
  free_X509_CERT(cert);
  free_X509_CERT(standard);
}

// A request goes through everything that looks into it; what becomes of it is a certificate that can be written.
void requests(const uint8_t *data, int size) {
  PKCS10_X509_REQ *req = nullptr, *standard = nullptr;
  if (readDER_PKCS10_X509_REQ_from_Binary(&req, data, size) == 0) verify_SIG_PKCS10_X509_REQ(req);
  if (readDER_PKCS10_X509_REQ_from_Binary_RFC5280(&standard, data, size) == 0) {
    X509_CERT *cert = new_X509_CERT();
    OBJECT_IDENTIFIERS *allowed = new_OBJECT_IDENTIFIERS();
    for (const char *oid : {"2.5.29.14", "2.5.29.15", "2.5.29.17", "2.5.29.32", "2.5.29.37"})
      push_STACK_value(allowed, new_OBJECT_IDENTIFIER(oid, int(std::strlen(oid))));
    const int code = set_X509_CERT_from_PKCS10_X509_REQ(cert, standard, allowed);
    require(code != 0 || verify_SIG_PKCS10_X509_REQ_RFC5280(standard) == 0, "what is taken was verified");
    free_OBJECT_IDENTIFIERS(allowed);
    free_X509_CERT(cert);
  }
  free_PKCS10_X509_REQ(req);
  free_PKCS10_X509_REQ(standard);
}

// What parameters mean can be written again and means the same.
void rsa_parameters(const uint8_t *data, int size) {
  ASN1_UNIT *unit = decodeToBERSequence_n(data, size);
  RSASSA_PSS_PARAM *pss = nullptr, *made = new_RSASSA_PSS_PARAM();
  RSAES_OAEP_PARAM *oaep = nullptr;
  int digest, mask, salt, back = -1, length;
  const unsigned char *label;
  if (unit && Seq_to_RSASSA_PSS_PARAM(unit, &pss) == 0 && !get_RSASSA_PSS_PARAM_values(pss, &digest, &mask, &salt)) {
    require(set_RSASSA_PSS_PARAM_values(made, digest, mask, salt) == 0, "values can be set");
    require(get_RSASSA_PSS_PARAM_values(made, nullptr, nullptr, &back) == 0 && back == salt, "and are the same");
  }
  if (unit && Seq_to_RSAES_OAEP_PARAM(unit, &oaep) == 0) {
    get_RSAES_OAEP_PARAM_values(oaep, &digest, &mask, &label, &length);
  }
  free_ASN1_UNIT(unit);
  free_RSASSA_PSS_PARAM(pss);
  free_RSASSA_PSS_PARAM(made);
  free_RSAES_OAEP_PARAM(oaep);
}

void signature_values(const uint8_t *data, int size) {
  unsigned char r[66], s[66];
  int r_length = sizeof r, s_length = sizeof s;
  ASN1_STRING raw{TYPE_BIT_STRING, const_cast<uint8_t *>(data), size, 0};
  decode_KCDSASignatureValue(r, &r_length, s, &s_length, &raw);
  r_length = s_length = int(sizeof r);
  decode_ECDSA_SIGNATURE_VALUE(r, &r_length, s, &s_length, &raw);
}

struct Target {
  const char *name;
  void (*run)(const uint8_t *, int);
};

const Target kTargets[] = {
    {"unit", units},
    {"string", strings},
    {"oid", oids},
    {"time", times},
    {"pem", texts},
    {"cp949", conversions},
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

const Target *chosen = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
  const char *name = std::getenv("VELPKI_FUZZ_TARGET");
  const bool list = *argc > 1 && std::strcmp((*argv)[1], "--list") == 0;
  for (const Target &target : kTargets) {
    if (list) std::puts(target.name);
    if (name && std::strcmp(name, target.name) == 0) chosen = &target;
  }
  if (list) std::exit(0);
  if (chosen) return 0;
  std::fputs("VELPKI_FUZZ_TARGET names no target; --list shows them\n", stderr);
  std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size <= INT_MAX) chosen->run(data, int(size));
  return 0;
}
