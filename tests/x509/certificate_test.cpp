// Certificates: codec, codes, signatures, dates, digests, and openssl as the other side.
#include <algorithm>

#include "samples.h"
#include "support/keys.h"

using namespace test;

namespace {

using SignedCertificates = WithKeys;

Owned<X509_TIME> time(const char *text) {
  const Time made(charToASN1_TIME(text));
  return Owned<X509_TIME>(asn1TimeToX509_TIME_RFC5280(made));
}

// A certificate with everything but a signature.
Certificate unsigned_certificate(int signature_row, bool with_kcdsa) {
  Certificate cert(new_X509_CERT());
  const String algorithm(index_to_OBJECT_IDENTIFIER(signature_row));
  const Name subject(new_X509_NAME());
  add_X509_NAME_child_OID_index(subject, 13, 12, reinterpret_cast<const unsigned char *>("velPKI"), -1, -1);
  EXPECT_EQ(set_X509_serial(cert, number("80")), 0);
  EXPECT_EQ(set_X509_signature(cert, algorithm), 0);
  EXPECT_EQ(set_X509_issuer(cert, subject), 0);
  EXPECT_EQ(set_X509_subject(cert, subject), 0);
  EXPECT_EQ(set_X509_notBefore(cert, time("2020-01-01,00:00:00")), 0);
  EXPECT_EQ(set_X509_notAfter(cert, time("2050-01-01,00:00:00")), 0);
  EXPECT_EQ(set_X509_pub_key(cert, public_half(with_kcdsa ? kcdsa() : rsa())), 0);
  return cert;
}

TEST_F(SignedCertificates, SignAndVerifyByKeyAndAlgorithm) {
  for (const Row &each : table("certificate_signatures")) {
    const int row = number_in(each, "algorithm"), code = code_at(each, "code");
    const bool with_kcdsa = each.at("key") == "kcdsa";
    const Certificate cert = unsigned_certificate(row, with_kcdsa);
    const Owned<ASYMMETRIC_KEY> key = with_kcdsa ? kcdsa() : rsa();
    EXPECT_EQ(gen_SIG_X509_Cert(cert, key), code) << row;
    if (code) continue;
    EXPECT_EQ(verify_SIG_X509_CERT(cert, key), 0) << row;
    const Certificate back = read_certificate(hex(written(cert)));
    ASSERT_TRUE(back) << row;
    EXPECT_EQ(verify_SIG_X509_CERT(back, get_X509_SPKI(back)->key), 0) << row;
    back->sig_value->data[back->sig_value->length - 1] ^= 1;
    EXPECT_EQ(verify_SIG_X509_CERT(back, key), PKV_ERR_MISMATCH) << row;
  }
}

TEST_F(SignedCertificates, StandardSigningUsesTheAlgorithmsDigest) {
  const Owned<ASYMMETRIC_KEY> ec_key = new_ec("prime256v1");
  const Owned<ASYMMETRIC_KEY> rsa_private = rsa(), kcdsa_private = kcdsa();
  for (const char *algorithm : {"1.2.840.10045.4.3.2", "1.2.840.10045.4.3.4", "1.2.840.113549.1.1.13",
                                "1.2.410.200004.1.22", "1.2.410.200004.1.23", "1.2.840.113549.1.1.10"}) {
    const std::string name = algorithm;
    const bool ec = name.find("10045") != name.npos, kc = name.find("410") != name.npos;
    const Certificate cert = unsigned_certificate(668, kc);
    set_X509_signature(cert, test::oid(name));
    if (ec) set_X509_pub_key(cert, public_half(ec_key));
    ASYMMETRIC_KEY *const key = ec ? ec_key : kc ? kcdsa_private : rsa_private;
    ASSERT_EQ(gen_SIG_X509_Cert_RFC5280_ex(cert, key, PKV_DIGEST_SHA384), 0) << name;
    EXPECT_EQ(verify_SIG_X509_CERT_RFC5280(cert, get_X509_SPKI(cert)), 0) << name;
    EXPECT_EQ(gen_SIG_X509_Cert_RFC5280(cert, (ec ? rsa_private : ec_key)),
              F_GEN_RSASIGN_TBS_CERT | ERR_ALGORITHM_MISMATCH);
    if (kc) continue;
    int length = 0;
    const unsigned char *der = get_X509_received(cert, 0, &length);
    ASSERT_TRUE(write_file(temporary_path("signed.der"), der, size_t(length)));
    const std::string verify = "openssl x509 -inform DER -in " + temporary_path("signed.der") + " -out " +
                               temporary_path("signed.pem") + " && openssl verify -check_ss_sig -CAfile " +
                               temporary_path("signed.pem") + " " + temporary_path("signed.pem") + " 2>&1";
    EXPECT_NE(run(verify).find("OK"), std::string::npos) << name;
  }
}

TEST_F(SignedCertificates, OtherKeysFailPlainly) {
  const Certificate cert = unsigned_certificate(840, false);
  const Owned<ASYMMETRIC_KEY> empty(new_ASYMMETRIC_KEY());
  EXPECT_EQ(gen_SIG_X509_Cert(cert, empty), 1);
  EXPECT_EQ(gen_SIG_X509_Cert(cert, nullptr), 1);
  EXPECT_EQ(verify_SIG_X509_CERT(cert, empty), 1);
  EXPECT_EQ(verify_RSA_SIG_X509_CERT(cert, nullptr), F_VERIFY_RSASIGN_TBS_CERT | 0x49);
  EXPECT_EQ(verify_KCDSA_SIG_X509_CERT(nullptr, kcdsa_key()), F_VERIFY_KCDSASIGN_TBS_CERT | 0x49);
  EXPECT_EQ(check_X509_keypair(cert, rsa()), 0);
  EXPECT_EQ(check_X509_keypair(cert, kcdsa()), 1);
  EXPECT_EQ(check_X509_keypair(cert, nullptr), 1);
}

TEST_F(SignedCertificates, MissingFieldsHaveTheirCodes) {
  const auto code = [](const X509_CERT *cert) {
    Unit out;
    return X509_CERT_to_Seq(cert, &out);
  };
  const Certificate cert(new_X509_CERT()), whole = unsigned_certificate(668, false);
  X509_TBS_CERT &tbs = *cert->tbs;
  const int f = F_X509_TBS_CERT_TO_SEQ;
  EXPECT_EQ(code(cert), f | ERR_TBS_CERT_SERIAL);
  tbs.serialNumber = PKV_Dup_BIGINT(whole->tbs->serialNumber);
  EXPECT_EQ(code(cert), f | ERR_TBS_CERT_SIGNATURE);
  tbs.signature = dup_ASN1_STRING(whole->tbs->signature);
  EXPECT_EQ(code(cert), f | ERR_TBS_CERT_ISSUER);
  tbs.issuer = dup_X509_NAME(whole->tbs->issuer);
  EXPECT_EQ(code(cert), f | ERR_TBS_CERT_VALIDITY);
  tbs.notBefore = dup_X509_TIME(whole->tbs->notBefore);
  tbs.notAfter = dup_X509_TIME(whole->tbs->notAfter);
  EXPECT_EQ(code(cert), f | ERR_TBS_CERT_SUBJECT);
  tbs.subject = dup_X509_NAME(whole->tbs->subject);
  EXPECT_EQ(code(cert), f | ERR_TBS_CERT_SPKI);
  tbs.subjectPublicKeyInfo = dup_X509_PUBKEY(whole->tbs->subjectPublicKeyInfo);
  EXPECT_EQ(code(cert), F_X509_CERT_TO_SEQ | ERR_ASN1_ENCODING);
  tbs.notAfter->type = 7;
  EXPECT_EQ(code(cert), f | ERR_ASN1_ENCODING);
  tbs.notAfter->type = X509_TIME_UTC;
  set_ASN1_STRING_value(tbs.signature, 6, reinterpret_cast<const unsigned char *>("1.2."), 4);
  EXPECT_EQ(code(cert), f | 0x3C);
  EXPECT_EQ(set_X509_version(cert, 3), F_SET_X509_VERSION | 0x2B);
  EXPECT_EQ(set_X509_notAfter(cert, nullptr), F_SET_X509_NOTAFTER | 0x49);
  clean_X509_CERT(cert);
  EXPECT_EQ(set_X509_version(cert, 1), 0);
  EXPECT_EQ(get_X509_version(cert), 1);
}

TEST(CertificateCodec, WhatIsReadAndWhatIsRefused) {
  for (const Row &row : table("certificate_forms")) {
    const std::string &why = row.at("why");
    CertificateParts parts;
    change(parts, row.at("changes"));
    int code = -1;
    const Bytes der = parts.der();
    const Certificate house = read_certificate(der, &code);
    EXPECT_EQ(code, code_at(row, "house")) << why;
    if (house) EXPECT_EQ(written(house) == to_hex(der), row.at("same") == "yes") << why;
    const Certificate standard = read_certificate_RFC5280(der, &code);
    EXPECT_EQ(code, code_at(row, "standard")) << why;
    if (standard) EXPECT_EQ(hex_of(X509_CERT_to_Seq_RFC5280, standard), to_hex(der)) << why;
  }
  EXPECT_EQ(Seq_to_X509_TBS_CERT(unit("0400"), std::make_unique<X509_TBS_CERT *>().get()),
            F_SEQ_TO_X509_TBS_CERT | 0x2B);
}

// Octets that were never signed: the house verification does not see them, the standard one does.
TEST_F(SignedCertificates, UnsignedChangesAndBothVerifications) {
  const Certificate cert = unsigned_certificate(668, false);
  ASSERT_EQ(gen_SIG_X509_Cert(cert, rsa()), 0);
  const Bytes der = hex(written(cert));
  const auto verify_both = [&](const Bytes &octets) {
    const Certificate house = read_certificate(octets), standard = read_certificate_RFC5280(octets);
    const Owned<X509_PUBKEY> issuer(dup_X509_PUBKEY(get_X509_SPKI(cert)));
    return std::pair(house ? verify_SIG_X509_CERT(house, rsa()) : -1,
                     standard ? verify_SIG_X509_CERT_RFC5280(standard, issuer) : -1);
  };
  EXPECT_EQ(verify_both(der), std::pair(0, 0));
  Bytes serial = der;  // the serial number's identifier stands behind the version
  const Bytes number = hex("02020080");
  const size_t at = size_t(std::search(der.begin(), der.end(), number.begin(), number.end()) - der.begin());
  ASSERT_LT(at, der.size());
  serial[at] = 0x82;
  EXPECT_EQ(verify_both(serial).first, 0);
  EXPECT_NE(verify_both(serial).second, 0);
  Bytes outer = der;  // the outer algorithm becomes that of another row
  const Bytes rsa_sha256 = hex("2a864886f70d01010b");
  const auto last = std::find_end(outer.begin(), outer.end(), rsa_sha256.begin(), rsa_sha256.end());
  last[8] = 0x0C;
  EXPECT_NE(verify_both(outer).first, 0);
  EXPECT_EQ(verify_both(outer).second, F_VERIFY_RSASIGN_TBS_CERT | ERR_ALGORITHM_MISMATCH);
  Bytes unused = der;  // bits that the signature does not use
  unused[der.size() - 129] = 1;
  EXPECT_EQ(verify_both(unused).second, F_VERIFY_RSASIGN_TBS_CERT | ERR_UNUSED_BITS);
}

TEST_F(SignedCertificates, SettersDropWhatWasReceived) {
  const Certificate cert = read_certificate(CertificateParts().der());
  int length = 0;
  ASSERT_TRUE(get_X509_received(cert, 1, &length));
  EXPECT_EQ(to_hex(get_X509_received(cert, 1, nullptr), size_t(length)), to_hex(CertificateParts().tbs()));
  const Certificate copy(dup_X509_CERT(cert));
  EXPECT_EQ(set_X509_serial(cert, get_X509_serial(cert)), 0);  // a member may be set to itself
  EXPECT_EQ(get_X509_received(cert, 0, &length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_TRUE(get_X509_received(copy, 0, &length));
}

TEST(CertificateValidity, BoundsByBothRules) {
  CertificateParts parts;  // 2026-01-01 to 2030-01-01
  const int f = F_VERIFY_X509_VALIDITY;
  for (const char *zone : {"UTC", "Asia/Seoul", "America/New_York"}) {
    setenv("TZ", zone, 1);
    for (const Row &row : table("certificate_validity")) {
      const std::string &now = row.at("now");
      const Certificate cert = read_certificate(parts.der());
      EXPECT_EQ(verify_X509_validity(cert, time(now.c_str())), code_at(row, "house")) << zone << now;
      EXPECT_EQ(verify_X509_validity_RFC5280(cert, time(now.c_str())), code_at(row, "standard")) << zone << now;
      EXPECT_EQ(verify_X509_validity(cert, nullptr), 0);
    }
  }
  unsetenv("TZ");
  const Certificate cert = read_certificate(parts.der());
  X509_TIME odd{7, nullptr};
  EXPECT_EQ(verify_X509_validity(cert, &odd), f | ERR_INVALID_X509_TIME_TYPE);
  EXPECT_EQ(verify_X509_validity(nullptr, nullptr), f | 0x49);
  free_X509_TIME(cert->tbs->notBefore);
  cert->tbs->notBefore = nullptr;
  EXPECT_EQ(verify_X509_validity(cert, nullptr), 0);
  EXPECT_EQ(verify_X509_validity_RFC5280(cert, nullptr), f | ERR_CERT_NOT_BEFORE);
}

TEST_F(SignedCertificates, OpensslTakesThem) {
  const Certificate cert = unsigned_certificate(668, false);
  set_X509_version(cert, 2);
  ASSERT_EQ(gen_SIG_X509_Cert(cert, rsa()), 0);
  const std::string path = temporary_path("own.pem"), key = temporary_path("own.key");
  ASSERT_GT(writePEM_X509_CERT_to_FILE(cert, path.c_str()), 1);
  const std::string shown =
      run("openssl x509 -in " + path + " -noout -subject -serial -dates -fingerprint -sha256 2>&1");
  for (const char *part : {"CN = velPKI", "serial=80", "notAfter=Jan  1 00:00:00 2050 GMT", "sha256 Fingerprint="})
    EXPECT_NE(shown.find(part), shown.npos) << part << shown;
  EXPECT_NE(run("openssl verify -CAfile " + path + " " + path + " 2>&1").find("OK"), std::string::npos);
  // And the other way: a certificate and its public key file by openssl.
  run("openssl req -x509 -newkey rsa:1024 -nodes -keyout " + key + " -out " + path +
      " -subj /O=peer/CN=other -days 3 2>&1");
  const Certificate peer = read_by(readPEM_X509_CERT_from_File, path);
  ASSERT_TRUE(peer);
  EXPECT_EQ(verify_SIG_X509_CERT(peer, get_X509_SPKI(peer)->key), 0);
  EXPECT_EQ(text_of(get_X509_NAME_CHILD_data(get_X509_NAME_CHILD(get_X509_subject(peer), 1))), "other");
  Owned<char> pem;
  ASSERT_GT(writePEM_X509_PUBKEY_to_Binary(get_X509_SPKI(peer), &pem), 1);
  EXPECT_EQ(pem.get(), run("openssl rsa -in " + key + " -pubout 2>/dev/null"));
}

TEST(CertificateLists, SearchAndPair) {
  const Certificates list(new_X509_CERTIFICATES());
  CertificateParts other;
  other.serial = TLV(0x02, "06");
  const Certificate a = read_certificate(CertificateParts().der()), b = read_certificate(other.der());
  EXPECT_EQ(add_X509_CERTIFICATES(list, a), 0);
  EXPECT_EQ(get_X509_CERTS_index_by_X509_CERT(list, b), -1);
  EXPECT_EQ(add_X509_CERTIFICATES(list, b), 0);
  EXPECT_EQ(get_X509_CERTS_index_by_X509_CERT(list, b), 1);
  EXPECT_EQ(add_X509_CERTIFICATES(nullptr, b), 1);
  const auto wanted = decoded(Seq_to_ISSUER_AND_SERIAL_NUMBER, TLV(0x30, other.issuer + other.serial));
  ASSERT_TRUE(wanted);
  EXPECT_EQ(find_X509_CERT_by_IssuerAndSerialNumber(list, wanted), get_STACK_value(list, 1));
  EXPECT_EQ(cmp_ISSUER_AND_SERIAL_NUMBER(a, wanted), -1);
  EXPECT_EQ(find_X509_CERT_by_IssuerAndSerialNumber(list, nullptr), nullptr);
  X509_CERT_PAIR *pair = nullptr;
  EXPECT_EQ(Seq_to_X509_CERT_PAIR(unit("3000"), &pair), F_SEQ_TO_X509_CERT_PAIR | ERR_ASN1_DECODING);
}

TEST(CertificatePrinting, ShowsHostileTextAsOctets) {
  CertificateParts parts;
  parts.subject = TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "411b5b324a0a25730a"))));
  const Certificate cert = read_certificate(parts.der());
  const std::string out = captured_stdout([&] { print_X509(cert); });
  EXPECT_NE(out.find("  - CN=A\\x1B[2J\\x0A%s\\x0A\n"), out.npos) << out;
  EXPECT_EQ(out.find('\x1b'), out.npos);
  for (const char *line : {"+ Version : 02\n+ Serial : 05\n", "+ Validity\n  -  notBefore : 260101000000Z\n",
                           "+ SPKI\n  -  1.2.840.113549.1.1.1 - rsaEncryption \n  -  n : C5:C5",
                           "  -  e : 01:00:01\n+ SIG and VALUE\n", "+ SPKI Hash\n  -  value : "})
    EXPECT_NE(out.find(line), out.npos) << line << out;
}

}  // namespace
