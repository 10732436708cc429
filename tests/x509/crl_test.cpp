// Revocation lists: both forms, entries and what changes drop, signatures with openssl as the other side, look-ups, and
// the strict check.
#include <functional>
#include <thread>

#include "samples.h"
#include "support/keys.h"

using namespace test;

namespace {

Number serial(unsigned value) {
  Number n(PKV_New_BIGINT());
  PKV_Set_BIGINT_Word(n, value);
  return n;
}
Owned<X509_REVOKED> new_entry(unsigned number, std::string_view date = "250101000000Z") {
  Owned<X509_REVOKED> entry(new_X509_REVOKED());
  EXPECT_EQ(set_X509_REVOKED_userCert(entry, serial(number)), 0);
  EXPECT_EQ(set_X509_REVOKED_revocationDate(entry, time_of(date)), 0);
  return entry;
}
// A list of `count` entries with the numbers 0, 3, 6 ... by `decode`, and then 3 again.
Bytes long_list(unsigned count) {
  CrlParts parts;
  parts.entries.clear();
  for (unsigned i = 0; i <= count; ++i) {
    const unsigned n = i == count ? 3 : 3 * i;
    const uint8_t octets[] = {0, uint8_t(n >> 16), uint8_t(n >> 8), uint8_t(n)};
    const Bytes reason = i % 2 ? TLV(0x30, extension("551d15", TLV(0x0A, i % 3 ? "01" : "04"))) : Bytes();
    parts.entries = std::move(parts.entries) + CrlParts::entry(to_hex(octets, 4), reason);
  }
  parts.revoked = TLV(0x30, parts.entries);
  return parts.der();
}
X509_REVOKED *at(const Crl &crl, int index) { return get_X509_REVOKED(get_X509_CRL_revoked(crl), index); }
unsigned number_of(const X509_REVOKED *entry) { return PKV_Get_BIGINT_Word(get_X509_REVOKED_userCert(entry)); }

TEST(Crl, BothFormsOfEachPart) {
  for (const Row &row : table("crl_forms")) {
    CrlParts parts;
    change(parts, row.at("changes"));
    int house_code = 0, code = 0;
    const Crl plain = read_crl(parts.der(), &house_code), crl = read_crl_RFC5280(parts.der(), &code);
    EXPECT_EQ(house_code, code_at(row, "house")) << row.at("what");
    EXPECT_EQ(code, code_at(row, "standard")) << row.at("what");
    if (plain) EXPECT_EQ(get_X509_CRL_ext_count(plain), number_in(row, "house_extensions")) << row.at("what");
    if (crl) EXPECT_EQ(get_X509_CRL_ext_count(crl), number_in(row, "standard_extensions")) << row.at("what");
    for (const Crl *each : {&plain, &crl}) {
      const STACK *list = get_X509_CRL_revoked(each->get());
      if (*each) EXPECT_EQ(list ? get_X509_REVOKED_count(list) : 0, number_in(row, "entries")) << row.at("what");
    }
  }
}

TEST(Crl, SerialNumbersInBothForms) {
  CrlParts parts;
  parts.revoked = TLV(0x30, parts.entry("80") + parts.entry("0080") + parts.entry("ff7f") + parts.entry("00"));
  const Crl plain = read_crl(parts.der()), crl = read_crl_RFC5280(parts.der());
  const char *const magnitudes[][2] = {{"80", "80"}, {"80", "80"}, {"ff7f", "81"}, {"", ""}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(PKV_Cmp_BIGINT(at(plain, i)->userCertificate, number(magnitudes[i][0])), 0) << i;
    const Number expected = number(magnitudes[i][1]);
    PKV_Set_BIGINT_Negative(expected, i == 0 || i == 2);
    EXPECT_EQ(PKV_Cmp_BIGINT(at(crl, i)->userCertificate, expected), 0) << i;
    EXPECT_EQ(find_X509_CRL_revoked(crl, expected), at(crl, i));
  }
}

// What the encoders need, and what they leave out.
TEST(Crl, EncodersRefuseWhatIsMissing) {
  constexpr int kInfo = F_X509_CRLINFO_TO_SEQ | ERR_ASN1_ENCODING, kEntry = F_X509_REVOKED_TO_SEQ | ERR_ASN1_ENCODING;
  const Crl whole = read_crl(CrlParts().der());
  X509_CRL_INFO *tbs = whole->tbs;
  Unit out;
  const auto without = [&](auto *X509_CRL_INFO::*member) {
    const auto held = std::exchange(tbs->*member, nullptr);
    const int code = X509_CRL_INFO_to_Seq(tbs, &out);
    tbs->*member = held;
    return code;
  };
  EXPECT_EQ(without(&X509_CRL_INFO::signature), kInfo);
  EXPECT_EQ(without(&X509_CRL_INFO::issuer), kInfo);
  EXPECT_EQ(without(&X509_CRL_INFO::thisUpdate), kInfo);
  EXPECT_EQ(without(&X509_CRL_INFO::nextUpdate), kInfo);
  EXPECT_EQ(X509_CRL_INFO_to_Seq(nullptr, &out), F_X509_CRLINFO_TO_SEQ | 0x49);
  for (const int choice : {2, -1}) {
    at(whole, 1)->revocationDate->type = choice;
    EXPECT_EQ(X509_CRL_to_Seq(whole, &out), kEntry);
    at(whole, 1)->revocationDate->type = 0;
  }
  clean_X509_REVOKED(at(whole, 0));
  EXPECT_EQ(X509_CRL_to_Seq(whole, &out), kEntry);
  const Crl fresh(new_X509_CRL());
  EXPECT_EQ(X509_CRL_to_Seq(fresh, &out), kInfo);
  const Owned<STACK, free_X509_CRLS> none(new_STACK());
  EXPECT_EQ(X509_REVOKED_to_Seq(none, &out), F_X509_REVOKED_TO_SEQ | 0x2B);
  EXPECT_EQ(X509_CRLS_to_Seq(none, &out), 0);
  EXPECT_EQ(flat(out), "3000");
  Owned<STACK, free_X509_CRLS> read;
  EXPECT_EQ(Seq_to_X509_CRLS(out, &read), 0);
  EXPECT_EQ(get_STACK_count(read), 0);
}

// A list that is built: its octets in house form, v1 with its version, and in standard form without.
TEST(Crl, BuiltByTheFunctions) {
  const CrlParts parts;
  const Crl model = read_crl(parts.der()), crl(new_X509_CRL());
  EXPECT_EQ(set_X509_CRL_signature(crl, model->tbs->signature), 0);
  EXPECT_EQ(set_X509_CRL_issuer(crl, model->tbs->issuer), 0);
  EXPECT_EQ(set_X509_CRL_thisUpdate(crl, model->tbs->thisUpdate), 0);
  EXPECT_EQ(set_X509_CRL_nextUpdate(crl, model->tbs->nextUpdate), 0);
  EXPECT_EQ(set_X509_CRL_sig_alg(crl, model->sig_alg), 0);
  EXPECT_EQ(set_X509_CRL_sig_value(crl, model->sig_value), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(add_X509_CRL_revoked(crl, at(model, i)), 0);
  EXPECT_EQ(add_X509_CRL_ext(crl, get_X509_CRL_ext(model, 0), -1), 0);
  CrlParts v1 = parts;
  for (const bool named : {true, false}) {
    v1.version = named ? TLV(0x02, "00") : Bytes();
    EXPECT_EQ(hex_of(named ? X509_CRL_to_Seq : X509_CRL_to_Seq_RFC5280, crl), to_hex(v1.der()));
  }
  EXPECT_EQ(set_X509_CRL_version(crl, 1), 0);
  EXPECT_EQ(hex_of(X509_CRL_to_Seq_RFC5280, crl), to_hex(parts.der()));
  EXPECT_EQ(set_X509_CRL_version(crl, 2), 1);
  EXPECT_EQ(get_X509_CRL_version(nullptr), -1);
  EXPECT_EQ(get_X509_CRL_ext_count(nullptr), -1);
  EXPECT_EQ(sort_X509_CRL_revoked(nullptr), 1);
  EXPECT_EQ(sort_X509_CRL_revoked(crl), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(at(crl, i)->sequence, i);
  EXPECT_EQ(number_of(at(crl, 0)), 0u);
  EXPECT_EQ(number_of(at(crl, 2)), 0x80u);
}

// Every function that changes a list drops what was received and the index; the others keep both.
TEST(Crl, ChangesDropWhatIsKept) {
  const Bytes der = long_list(40);
  const Owned<X509_REVOKED> entry = new_entry(1);
  const Crl other = read_crl_RFC5280(CrlParts().der());
  const X509_EXTENSION *extension = get_X509_CRL_ext(other, 0);
  const std::function<void(X509_CRL *, X509_REVOKED *)> changes[] = {
      [](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_version(c, 0); },
      [&](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_issuer(c, other->tbs->issuer); },
      [&](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_nextUpdate(c, other->tbs->thisUpdate); },
      [&](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_sig_value(c, other->sig_value); },
      [&](X509_CRL *c, X509_REVOKED *) { add_X509_CRL_ext(c, extension, 0); },
      [](X509_CRL *c, X509_REVOKED *) { remove_X509_CRL_ext(c, 0); },
      [&](X509_CRL *c, X509_REVOKED *) { add_X509_CRL_revoked(c, entry); },
      [&](X509_CRL *c, X509_REVOKED *) { add_X509_REVOKED_child(&c->tbs->revoked, entry, 2); },
      [](X509_CRL *c, X509_REVOKED *) { remove_X509_CRL_revoked(c, 5); },
      [](X509_CRL *c, X509_REVOKED *) { sort_X509_CRL_revoked(c); },
      [](X509_CRL *, X509_REVOKED *e) { set_X509_REVOKED_userCert(e, serial(1)); },
      [](X509_CRL *, X509_REVOKED *e) { set_X509_REVOKED_revocationDate(e, time_of("260101000000Z")); },
      [&](X509_CRL *, X509_REVOKED *e) { add_X509_REVOKED_ext(e, extension, 0); },
      [](X509_CRL *, X509_REVOKED *e) { remove_X509_REVOKED_ext(e, 0); },
      [](X509_CRL *, X509_REVOKED *e) { clean_X509_REVOKED(e); },
  };
  int which = 0;
  for (const auto &change : changes) {
    for (const bool copied : {false, true}) {
      Crl crl = read_crl_RFC5280(der);
      if (copied) crl.reset(dup_X509_CRL(crl));
      int length = 0;
      EXPECT_EQ(find_X509_CRL_revoked(crl, serial(9)), at(crl, 3));
      EXPECT_EQ(find_X509_CRL_revoked(crl, serial(1)), nullptr);
      EXPECT_NE(get_X509_CRL_received(crl, 0, &length), nullptr);
      EXPECT_EQ(size_t(length), der.size());
      // What fails or does nothing changes nothing.
      EXPECT_EQ(add_X509_CRL_ext(crl, nullptr, 0) + add_X509_REVOKED_ext(at(crl, 3), nullptr, 0), 2);
      remove_X509_CRL_ext(crl, 99), remove_X509_CRL_revoked(crl, 999), remove_X509_REVOKED_ext(at(crl, 3), 99);
      EXPECT_NE(get_X509_CRL_received(crl, 0, &length), nullptr);
      change(crl, at(crl, 3));
      EXPECT_EQ(get_X509_CRL_received(crl, 0, &length), nullptr) << which;
      // The answer is that of a walk.
      const auto walked = [&](unsigned n) {
        for (int i = 0; i < get_X509_REVOKED_count(crl->tbs->revoked); ++i)
          if (PKV_Cmp_BIGINT(get_X509_REVOKED_userCert(at(crl, i)), serial(n)) == 0) return at(crl, i);
        return static_cast<X509_REVOKED *>(nullptr);
      };
      for (const unsigned n : {0, 1, 3, 9, 15, 117, 118})
        EXPECT_EQ(find_X509_CRL_revoked(crl, serial(n)), walked(n)) << which << " " << n;
    }
    ++which;
  }
}

// Entries of one list share blocks and extensions; none of them notices the others.
TEST(Crl, EntriesOfOneBlockAreIndependent) {
  Crl crl = read_crl_RFC5280(long_list(40));
  ASSERT_EQ(get_X509_REVOKED_ext_count(at(crl, 1)), 1);
  remove_X509_REVOKED_ext(at(crl, 1), 0);
  EXPECT_EQ(get_X509_REVOKED_ext_count(at(crl, 1)), 0);
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(at(crl, 7)), 1);
  EXPECT_EQ(add_X509_REVOKED_ext(at(crl, 5), get_X509_REVOKED_ext(at(crl, 3), 0), 0), 0);
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(at(crl, 5)), -2) << "twice";
  EXPECT_EQ(get_X509_REVOKED_ext_count(at(crl, 11)), 1);
  // Dates longer than usual, set to themselves, and back.
  for (const char *date : {"2501010000+0900", "20250101000000.123456Z", "250101000000Z"}) {
    EXPECT_EQ(set_X509_REVOKED_revocationDate(at(crl, 2), time_of(date)), 0);
    EXPECT_EQ(set_X509_REVOKED_revocationDate(at(crl, 2), at(crl, 2)->revocationDate), 0);
    EXPECT_EQ(text_of(at(crl, 2)->revocationDate->time), date);
  }
  EXPECT_EQ(set_X509_REVOKED_userCert(at(crl, 2), at(crl, 2)->userCertificate), 0);
  EXPECT_EQ(number_of(at(crl, 2)), 6u);
  // One is taken out and outlives the rest.
  Owned<X509_REVOKED> out(static_cast<X509_REVOKED *>(remove_STACK_value(crl->tbs->revoked, 9)));
  crl.reset();
  EXPECT_EQ(number_of(out), 27u);
  EXPECT_EQ(text_of(out->revocationDate->time), "250101000000Z");
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(out), 4);
  const Owned<X509_REVOKED> copy(dup_X509_REVOKED(out));
  out.reset();
  EXPECT_EQ(number_of(copy), 27u);
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(copy), 4);
}

TEST(Crl, ReasonCodes) {
  for (const Row &row : table("crl_reasons")) {
    const std::string &octets = row.at("value");
    const Owned<X509_REVOKED> entry = new_entry(1);
    const String value = string(TYPE_OCTET_STRING, hex(octets)), kind = oid("2.5.29.21"), other = oid("2.5.29.24");
    const Owned<X509_EXTENSION> extension(create_X509_EXTENSION_by_OID(nullptr, kind, 0, value)),
        before(create_X509_EXTENSION_by_OID(nullptr, other, 0, value));
    EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(entry), -1);
    EXPECT_EQ(add_X509_REVOKED_ext(entry, before, -1), 0);
    EXPECT_EQ(add_X509_REVOKED_ext(entry, extension, -1), 0);
    EXPECT_EQ(get_X509_REVOKED_CRLreason(entry, 1), number_in(row, "plain")) << octets;
    EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(entry), number_in(row, "strict")) << octets;
    for (const int elsewhere : {-1, 0, 2}) EXPECT_EQ(get_X509_REVOKED_CRLreason(entry, elsewhere), 0);
  }
}

TEST(Crl, LookUps) {
  constexpr unsigned kEntries = 1200;
  const Crl crl = read_crl_RFC5280(long_list(kEntries));
  // Without memory for the index the list is walked, and nothing is missed.
  fail_allocation(0);
  EXPECT_EQ(number_of(find_X509_CRL_revoked(crl, at(crl, 900)->userCertificate)), 2700u);
  fail_allocation(-1);
  // The first look-ups at the same time.
  std::vector<std::thread> threads;
  std::vector<int> wrong(4);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (unsigned n = 0; n < 3 * kEntries; ++n) {
        const X509_REVOKED *found = find_X509_CRL_revoked(crl, serial(n));
        wrong[size_t(t)] += n % 3 ? found != nullptr : found != at(crl, int(n / 3));
      }
    });
  }
  for (std::thread &each : threads) each.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
  const Certificate cert = read_certificate(CertificateParts().der());
  const auto verify = [&](unsigned n) {
    EXPECT_EQ(set_X509_serial(cert, serial(n)), 0);
    return verify_CRL_X509_CERT(crl, cert);
  };
  EXPECT_EQ(verify(0), 0);
  EXPECT_EQ(verify(1), 0) << "not listed";
  EXPECT_EQ(verify(3), 1);
  EXPECT_EQ(verify(3 * kEntries - 3), int(kEntries) - 1);
  EXPECT_EQ(verify_CRL_X509_CERT(nullptr, cert), -1);
  clean_X509_CERT(cert);
  EXPECT_EQ(verify_CRL_X509_CERT(crl, cert), -1);
  EXPECT_EQ(find_X509_CRL_revoked(nullptr, serial(1)), nullptr);
  EXPECT_EQ(find_X509_CRL_revoked(crl, nullptr), nullptr);
  // A change by the functions of stack.h is noticed.
  Owned<X509_REVOKED> entry = new_entry(1);
  push_STACK_value(crl->tbs->revoked, entry);
  EXPECT_EQ(find_X509_CRL_revoked(crl, serial(1)), entry.release());
}

TEST(Crl, IsPrinted) {
  CrlParts parts;
  parts.issuer = TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "431b5b41"))));
  const Crl crl = read_crl(parts.der());
  const std::string text = captured_stdout([&] { print_X509_CRL(crl); });
  for (const char *words :
       {"C\\x1B[A", "+ Next Update : 20300101000000Z", "+ Revoked : 3", "serial : 80", "reason : 1", "crlNumber"})
    EXPECT_NE(text.find(words), std::string::npos) << words << text;
}

class CrlSignatures : public WithKeys {};

TEST_F(CrlSignatures, OfTheHouseForm) {
  const Bytes der = CrlParts().der();
  const Owned<ASYMMETRIC_KEY> rsa_private = rsa(), kcdsa_private = kcdsa(), ec = new_ec("prime256v1");
  Crl crl = read_crl(der);
  RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(rsa_private);
  EXPECT_EQ(gen_RSA_SIG_X509_CRL(nullptr, key), F_GEN_RSASIGN | 0x49);
  EXPECT_EQ(gen_RSA_SIG_X509_CRL(crl, key), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl, rsa_private), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl, kcdsa_private), F_VERIFY_KCDSASIGN | ERR_ASN1_DECODING);
  EXPECT_EQ(verify_SIG_X509_CRL(crl, ec), 1);
  EXPECT_EQ(verify_SIG_X509_CRL(nullptr, rsa_private), 1);
  find_X509_CRL_revoked(crl, serial(1));
  EXPECT_EQ(verify_SIG_X509_CRL(crl, rsa_private), 0);
  EXPECT_EQ(sort_X509_CRL_revoked(crl), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl, rsa_private), PKV_ERR_MISMATCH);
  EXPECT_EQ(set_X509_CRL_signature(crl, oid("1.2.410.200004.1.23")), 0);
  EXPECT_EQ(gen_KCDSA_SIG_X509_CRL(crl, ASYMMETRIC_KEY_to_KCDSA_UNIT(kcdsa_private)), 0);
  EXPECT_EQ(text_of(crl->sig_alg), "1.2.410.200004.1.23");
  EXPECT_EQ(verify_SIG_X509_CRL(crl, kcdsa_private), 0);
  EXPECT_EQ(set_X509_CRL_sig_alg(crl, oid("1.2.3")), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl, kcdsa_private), F_VERIFY_KCDSASIGN | 0x2B);
  EXPECT_EQ(verify_SIG_X509_CRL(crl, rsa_private), F_VERIFY_RSASIGN | 0x2B);
}

// An issuer's certificate for a key; it is no subject of these tests, so nobody signed it.
Certificate issuer_of(const ASYMMETRIC_KEY *key, const Bytes &tail = {}) {
  CertificateParts parts;
  parts.tail = tail;
  parts.spki = hex(hex_of(X509_PUBKEY_to_Seq_RFC5280, public_half(key)));
  return read_certificate_RFC5280(parts.der());
}

// What is signed in either form openssl accepts, and prints the same entries.
TEST_F(CrlSignatures, AreAcceptedByOpenssl) {
  const Owned<ASYMMETRIC_KEY> rsa_private = rsa(), ec = new_ec("prime256v1");
  const std::string ca = temporary_path("ca.pem"), der = temporary_path("ca.der"), file = temporary_path("list.der");
  struct {
    const ASYMMETRIC_KEY *key;
    const char *algorithm;
    bool standard;
  } const cases[] = {{rsa_private, "1.2.840.113549.1.1.11", false},
                     {rsa_private, "1.2.840.113549.1.1.11", true},
                     {rsa_private, "1.2.840.113549.1.1.10", true},
                     {ec, "1.2.840.10045.4.3.2", true}};
  for (const auto &c : cases) {
    const Bytes issuer_octets = hex(hex_of(X509_CERT_to_Seq_RFC5280, issuer_of(c.key)));
    write_file(der, issuer_octets.data(), issuer_octets.size());
    run("openssl x509 -inform DER -in " + der + " -out " + ca);
    const Crl crl = read_crl_RFC5280(CrlParts().der());
    EXPECT_EQ(set_X509_CRL_signature(crl, oid(c.algorithm)), 0);
    EXPECT_EQ(c.standard ? gen_SIG_X509_CRL_RFC5280(crl, c.key)
                         : gen_RSA_SIG_X509_CRL(crl, ASYMMETRIC_KEY_to_RSA_UNIT(c.key)),
              0);
    const Bytes octets = hex(hex_of(c.standard ? X509_CRL_to_Seq_RFC5280 : X509_CRL_to_Seq, crl));
    write_file(file, octets.data(), octets.size());
    const std::string said =
        run("openssl crl -inform DER -in " + file + " -CAfile " + ca + " -noout -text -verify 2>&1");
    for (const char *words : {"verify OK", "Serial Number: 80", "Key Compromise"})
      EXPECT_NE(said.find(words), std::string::npos) << said;
    EXPECT_EQ(verify_SIG_X509_CRL_RFC5280(read_crl_RFC5280(octets), public_half(c.key)), 0);
  }
}

TEST_F(CrlSignatures, StrictCheck) {
  const Owned<ASYMMETRIC_KEY> key = rsa();
  for (const Row &row : table("crl_checks")) {
    const std::string &what = row.at("what");
    CrlParts parts;
    parts.revoked = {};
    change(parts, row.at("list"));
    const Crl crl = read_crl_RFC5280(parts.der());
    ASSERT_TRUE(crl) << what;
    ASSERT_EQ(gen_SIG_X509_CRL_RFC5280(crl, key), 0) << what;
    CertificateParts certificate;
    certificate.tail = hex(row.at("certificate_tail"));
    const Certificate cert = read_certificate(certificate.der()), issuer = issuer_of(key, hex(row.at("issuer_tail")));
    const Owned<X509_TIME> time = time_of(row.at("time"));
    const int reason = code_at(row, "reason");
    X509_REVOKED *entry = nullptr;
    const int code = check_X509_CRL_revocation_strict(crl, cert, issuer, time, &entry);
    EXPECT_EQ(code, reason ? 0x48000000 | reason : 0) << what << std::hex << " " << code;
    EXPECT_EQ(entry != nullptr, reason == ERR_CERT_REVOKED) << what;
  }
}

// What the check needs besides: a list in standard form, the issuer's key, and the sign of a serial number.
TEST_F(CrlSignatures, StrictCheckOfOtherKinds) {
  const Owned<ASYMMETRIC_KEY> key = rsa(), other = kcdsa();
  const Certificate cert = read_certificate(CertificateParts().der()), issuer = issuer_of(key);
  const Owned<X509_TIME> time = time_of("260601000000Z");
  const auto check = [&](const X509_CRL *crl, const X509_CERT *by) {
    return check_X509_CRL_revocation_strict(crl, cert, by, time, nullptr);
  };
  const Crl crl = read_crl_RFC5280(CrlParts().der());
  EXPECT_EQ(check(crl, issuer), PKV_ERR_MISMATCH);
  EXPECT_EQ(gen_SIG_X509_CRL_RFC5280(crl, key), 0);
  EXPECT_EQ(check(crl, issuer), 0);
  EXPECT_EQ(check(crl, issuer_of(other)), F_VERIFY_RSASIGN | ERR_ALGORITHM_MISMATCH);
  EXPECT_EQ(check(nullptr, issuer), 0x48000049);
  EXPECT_EQ(check(read_crl(hex(hex_of(X509_CRL_to_Seq_RFC5280, crl))), issuer), 0x4800002B);
  CrlParts negative;
  negative.revoked = TLV(0x30, negative.entry("ff"));
  const Crl listed = read_crl_RFC5280(negative.der());
  EXPECT_EQ(gen_SIG_X509_CRL_RFC5280(listed, key), 0);
  CertificateParts parts;
  parts.serial = TLV(0x02, "ff");
  const Certificate read_as_255 = read_certificate(parts.der());
  EXPECT_EQ(check_X509_CRL_revocation_strict(listed, read_as_255, issuer, time, nullptr),
            0x48000000 | ERR_CERT_REVOKED);
}

}  // namespace
