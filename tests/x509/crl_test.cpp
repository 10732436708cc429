// Revocation lists: both forms, entries and what changes drop, signatures with openssl as the other side, look-ups, and
// the strict check.
#include <functional>
#include <thread>

#include "keys.h"

using namespace test;

namespace {

Crl house(const Bytes &der, int *code = nullptr) {
  X509_CRL *crl = nullptr;
  const int result = readDER_X509_CRL_from_Binary(&crl, der.data(), int(der.size()));
  if (code) *code = result;
  return Crl(crl);
}
Crl standard(const Bytes &der, int *code = nullptr) {
  X509_CRL *crl = nullptr;
  const int result = readDER_X509_CRL_from_Binary_RFC5280(&crl, der.data(), int(der.size()));
  if (code) *code = result;
  return Crl(crl);
}
Number serial(unsigned value) {
  Number n(PKV_New_BIGINT());
  PKV_Set_BIGINT_Word(n.get(), value);
  return n;
}
Owned<X509_TIME> time_of(std::string_view text) {
  Owned<X509_TIME> time(new_X509_TIME());
  time->type = text.size() > 13 ? X509_TIME_GENERALIZED : X509_TIME_UTC;
  time->time = text_string(time->type ? TYPE_GENERALIZED_TIME : TYPE_UTC_TIME, text).release();
  return time;
}
Owned<X509_REVOKED> new_entry(unsigned number, std::string_view date = "250101000000Z") {
  Owned<X509_REVOKED> entry(new_X509_REVOKED());
  EXPECT_EQ(set_X509_REVOKED_userCert(entry.get(), serial(number).get()), 0);
  EXPECT_EQ(set_X509_REVOKED_revocationDate(entry.get(), time_of(date).get()), 0);
  return entry;
}
// A list of `count` entries with the numbers 0, 3, 6 ... by `decode`, and then 3 again.
Bytes long_list(unsigned count) {
  CrlParts parts;
  parts.entries.clear();
  for (unsigned i = 0; i <= count; ++i) {
    const unsigned n = i == count ? 3 : 3 * i;
    const uint8_t octets[] = {0, uint8_t(n >> 16), uint8_t(n >> 8), uint8_t(n)};
    const Bytes reason = i % 2 ? TLV(0x30, CrlParts::extension("551d15", TLV(0x0A, i % 3 ? "01" : "04"))) : Bytes();
    parts.entries = std::move(parts.entries) + CrlParts::entry(to_hex(octets, 4), reason);
  }
  parts.revoked = TLV(0x30, parts.entries);
  return parts.der();
}
X509_REVOKED *at(const Crl &crl, int index) { return get_X509_REVOKED(get_X509_CRL_revoked(crl.get()), index); }
unsigned number_of(const X509_REVOKED *entry) { return PKV_Get_BIGINT_Word(get_X509_REVOKED_userCert(entry)); }

struct Form {
  const char *what;
  std::function<void(CrlParts &)> change;
  int house, standard;                   // codes
  int entries, house_ext, standard_ext;  // what decodes
};

TEST(Crl, BothFormsOfEachPart) {
  constexpr int kVersion = F_SEQ_TO_X509_CRLINFO | 0x2B, kInfo = F_SEQ_TO_X509_CRLINFO | ERR_ASN1_DECODING,
                kEntry = F_SEQ_TO_X509_REVOKED | ERR_ASN1_DECODING, kWhole = F_SEQ_TO_X509_CRL | ERR_ASN1_DECODING;
  const Bytes extension = CrlParts::extension("551d14", TLV(0x02, "05"));
  const auto one = [](CrlParts &p, const Bytes &entry) { p.revoked = TLV(0x30, entry); };
  const Form forms[] = {
      {"as it is", [](CrlParts &) {}, 0, 0, 3, 1, 1},
      {"no version", [](CrlParts &p) { p.version = {}; }, kVersion, 0, 3, 0, 1},
      {"version FFFF", [](CrlParts &p) { p.version = TLV(0x02, "00ffff"); }, 0, 0, 3, 1, 1},
      {"version 10000", [](CrlParts &p) { p.version = TLV(0x02, "010000"); }, kVersion, kVersion, 0, 0, 0},
      {"empty version", [](CrlParts &p) { p.version = TLV(0x02, ""); }, kVersion, kVersion, 0, 0, 0},
      {"v1 that says so", [](CrlParts &p) { p.version = TLV(0x02, "00"); }, 0, 0, 3, 1, 1},
      {"no nextUpdate", [](CrlParts &p) { p.next_update = {}; }, kInfo, 0, 3, 0, 1},
      {"nothing but extensions", [](CrlParts &p) { p.next_update = p.revoked = {}; }, kInfo, 0, 0, 0, 1},
      {"no list", [](CrlParts &p) { p.revoked = {}; }, 0, 0, 0, 1, 1},
      {"empty list", [](CrlParts &p) { p.revoked = TLV(0x30, ""); }, 0, 0, 0, 0, 1},
      {"no extensions", [](CrlParts &p) { p.tail = {}; }, 0, 0, 3, 0, 0},
      {"empty wrapper", [](CrlParts &p) { p.tail = TLV(0xA0, ""); }, 0, kInfo, 3, 0, 0},
      {"no SEQUENCE in the wrapper", [](CrlParts &p) { p.tail = TLV(0xA0, TLV(0x04, "00")); }, kInfo, kInfo, 0, 0, 0},
      {"more behind", [](CrlParts &p) { p.tail = p.tail + TLV(0x05, ""); }, 0, kInfo, 3, 1, 0},
      {"time under a context tag", [](CrlParts &p) { p.this_update[0] = 0x97; }, kInfo, kInfo, 0, 0, 0},
      {"a name that is none", [](CrlParts &p) { p.issuer = TLV(0x30, TLV(0x31, "")); },
       F_SEQ_TO_X509_NAME | ERR_ASN1_DECODING, F_SEQ_TO_X509_NAME | ERR_ASN1_DECODING, 0, 0, 0},
      {"no algorithm", [](CrlParts &p) { p.signature = {}; }, kInfo, kInfo, 0, 0, 0},
      {"no signature value", [](CrlParts &p) { p.value = {}; }, kWhole, kWhole, 0, 0, 0},
      {"more behind the value", [](CrlParts &p) { p.value = p.value + TLV(0x05, ""); }, 0, kWhole, 3, 1, 0},
      {"entry without date", [&](CrlParts &p) { one(p, TLV(0x30, TLV(0x02, "01"))); }, kEntry, kEntry, 0, 0, 0},
      {"empty serial number", [&](CrlParts &p) { one(p, p.entry("")); }, kEntry, kEntry, 0, 0, 0},
      {"date of text", [&](CrlParts &p) { one(p, TLV(0x30, TLV(0x02, "01") + TLV(0x0C, "41"))); }, kEntry, kEntry, 0, 0,
       0},
      {"entry with more", [&](CrlParts &p) { one(p, p.entry("01", TLV(0x05, ""))); }, 0, kEntry, 1, 1, 0},
      {"entry with a bad extension", [&](CrlParts &p) { one(p, p.entry("01", TLV(0x30, TLV(0x30, "060180")))); },
       F_SEQ_TO_X509_EXT | ERR_ASN1_DECODING, F_SEQ_TO_X509_EXT | ERR_ASN1_DECODING, 0, 0, 0},
  };
  for (const Form &form : forms) {
    CrlParts parts;
    form.change(parts);
    int code = 0;
    const Crl plain = house(parts.der(), &code);
    EXPECT_EQ(code, form.house) << form.what;
    if (plain) EXPECT_EQ(get_X509_CRL_ext_count(plain.get()), form.house_ext) << form.what;
    const Crl crl = standard(parts.der(), &code);
    EXPECT_EQ(code, form.standard) << form.what;
    if (crl) EXPECT_EQ(get_X509_CRL_ext_count(crl.get()), form.standard_ext) << form.what;
    for (const Crl *each : {&plain, &crl}) {
      const STACK *list = get_X509_CRL_revoked(each->get());
      if (*each) EXPECT_EQ(list ? get_X509_REVOKED_count(list) : 0, form.entries) << form.what;
    }
  }
}

TEST(Crl, SerialNumbersInBothForms) {
  CrlParts parts;
  parts.revoked = TLV(0x30, parts.entry("80") + parts.entry("0080") + parts.entry("ff7f") + parts.entry("00"));
  const Crl plain = house(parts.der()), crl = standard(parts.der());
  const char *const magnitudes[][2] = {{"80", "80"}, {"80", "80"}, {"ff7f", "81"}, {"", ""}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(PKV_Cmp_BIGINT(at(plain, i)->userCertificate, number(magnitudes[i][0]).get()), 0) << i;
    const Number expected = number(magnitudes[i][1]);
    PKV_Set_BIGINT_Negative(expected.get(), i == 0 || i == 2);
    EXPECT_EQ(PKV_Cmp_BIGINT(at(crl, i)->userCertificate, expected.get()), 0) << i;
    EXPECT_EQ(find_X509_CRL_revoked(crl.get(), expected.get()), at(crl, i));
  }
}

// What the encoders need, and what they leave out.
TEST(Crl, EncodersRefuseWhatIsMissing) {
  constexpr int kInfo = F_X509_CRLINFO_TO_SEQ | ERR_ASN1_ENCODING, kEntry = F_X509_REVOKED_TO_SEQ | ERR_ASN1_ENCODING;
  const Crl whole = house(CrlParts().der());
  X509_CRL_INFO *tbs = whole->tbs;
  ASN1_UNIT *out = nullptr;
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
    EXPECT_EQ(X509_CRL_to_Seq(whole.get(), &out), kEntry);
    at(whole, 1)->revocationDate->type = 0;
  }
  clean_X509_REVOKED(at(whole, 0));
  EXPECT_EQ(X509_CRL_to_Seq(whole.get(), &out), kEntry);
  const Crl fresh(new_X509_CRL());
  EXPECT_EQ(X509_CRL_to_Seq(fresh.get(), &out), kInfo);
  STACK *none = new_STACK();
  EXPECT_EQ(X509_REVOKED_to_Seq(none, &out), F_X509_REVOKED_TO_SEQ | 0x2B);
  EXPECT_EQ(X509_CRLS_to_Seq(none, &out), 0);
  EXPECT_EQ(flat(out), "3000");
  free_X509_CRLS(none);
  X509_CRLS *read = nullptr;
  EXPECT_EQ(Seq_to_X509_CRLS(out, &read), 0);
  EXPECT_EQ(get_STACK_count(read), 0);
  free_X509_CRLS(read);
  free_ASN1_UNIT(out);
}

// A list that is built: its octets in house form, v1 with its version, and in standard form without.
TEST(Crl, BuiltByTheFunctions) {
  const CrlParts parts;
  const Crl model = house(parts.der()), crl(new_X509_CRL());
  EXPECT_EQ(set_X509_CRL_signature(crl.get(), model->tbs->signature), 0);
  EXPECT_EQ(set_X509_CRL_issuer(crl.get(), model->tbs->issuer), 0);
  EXPECT_EQ(set_X509_CRL_thisUpdate(crl.get(), model->tbs->thisUpdate), 0);
  EXPECT_EQ(set_X509_CRL_nextUpdate(crl.get(), model->tbs->nextUpdate), 0);
  EXPECT_EQ(set_X509_CRL_sig_alg(crl.get(), model->sig_alg), 0);
  EXPECT_EQ(set_X509_CRL_sig_value(crl.get(), model->sig_value), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(add_X509_CRL_revoked(crl.get(), at(model, i)), 0);
  EXPECT_EQ(add_X509_CRL_ext(crl.get(), get_X509_CRL_ext(model.get(), 0), -1), 0);
  ASN1_UNIT *unit = nullptr;
  CrlParts v1 = parts;
  for (const bool named : {true, false}) {
    v1.version = named ? TLV(0x02, "00") : Bytes();
    EXPECT_EQ((named ? X509_CRL_to_Seq : X509_CRL_to_Seq_RFC5280)(crl.get(), &unit), 0);
    EXPECT_EQ(flat(unit), to_hex(v1.der()));
    free_ASN1_UNIT(unit);
  }
  EXPECT_EQ(set_X509_CRL_version(crl.get(), 1), 0);
  EXPECT_EQ(X509_CRL_to_Seq_RFC5280(crl.get(), &unit), 0);
  EXPECT_EQ(flat(unit), to_hex(parts.der()));
  free_ASN1_UNIT(unit);
  EXPECT_EQ(set_X509_CRL_version(crl.get(), 2), 1);
  EXPECT_EQ(get_X509_CRL_version(nullptr), -1);
  EXPECT_EQ(get_X509_CRL_ext_count(nullptr), -1);
  EXPECT_EQ(sort_X509_CRL_revoked(nullptr), 1);
  EXPECT_EQ(sort_X509_CRL_revoked(crl.get()), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(at(crl, i)->sequence, i);
  EXPECT_EQ(number_of(at(crl, 0)), 0u);
  EXPECT_EQ(number_of(at(crl, 2)), 0x80u);
}

// Every function that changes a list drops what was received and the index; the others keep both.
TEST(Crl, ChangesDropWhatIsKept) {
  const Bytes der = long_list(40);
  const Owned<X509_REVOKED> entry = new_entry(1);
  const Crl other = standard(CrlParts().der());
  const X509_EXTENSION *extension = get_X509_CRL_ext(other.get(), 0);
  const std::function<void(X509_CRL *, X509_REVOKED *)> changes[] = {
      [](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_version(c, 0); },
      [&](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_issuer(c, other->tbs->issuer); },
      [&](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_nextUpdate(c, other->tbs->thisUpdate); },
      [&](X509_CRL *c, X509_REVOKED *) { set_X509_CRL_sig_value(c, other->sig_value); },
      [&](X509_CRL *c, X509_REVOKED *) { add_X509_CRL_ext(c, extension, 0); },
      [](X509_CRL *c, X509_REVOKED *) { remove_X509_CRL_ext(c, 0); },
      [&](X509_CRL *c, X509_REVOKED *) { add_X509_CRL_revoked(c, entry.get()); },
      [&](X509_CRL *c, X509_REVOKED *) { add_X509_REVOKED_child(&c->tbs->revoked, entry.get(), 2); },
      [](X509_CRL *c, X509_REVOKED *) { remove_X509_CRL_revoked(c, 5); },
      [](X509_CRL *c, X509_REVOKED *) { sort_X509_CRL_revoked(c); },
      [](X509_CRL *, X509_REVOKED *e) { set_X509_REVOKED_userCert(e, serial(1).get()); },
      [](X509_CRL *, X509_REVOKED *e) { set_X509_REVOKED_revocationDate(e, time_of("260101000000Z").get()); },
      [&](X509_CRL *, X509_REVOKED *e) { add_X509_REVOKED_ext(e, extension, 0); },
      [](X509_CRL *, X509_REVOKED *e) { remove_X509_REVOKED_ext(e, 0); },
      [](X509_CRL *, X509_REVOKED *e) { clean_X509_REVOKED(e); },
  };
  int which = 0;
  for (const auto &change : changes) {
    for (const bool copied : {false, true}) {
      Crl crl = standard(der);
      if (copied) crl.reset(dup_X509_CRL(crl.get()));
      int length = 0;
      EXPECT_EQ(find_X509_CRL_revoked(crl.get(), serial(9).get()), at(crl, 3));
      EXPECT_EQ(find_X509_CRL_revoked(crl.get(), serial(1).get()), nullptr);
      EXPECT_NE(get_X509_CRL_received(crl.get(), 0, &length), nullptr);
      EXPECT_EQ(size_t(length), der.size());
      change(crl.get(), at(crl, 3));
      EXPECT_EQ(get_X509_CRL_received(crl.get(), 0, &length), nullptr) << which;
      // The answer is that of a walk.
      const auto walked = [&](unsigned n) {
        for (int i = 0; i < get_X509_REVOKED_count(crl->tbs->revoked); ++i)
          if (PKV_Cmp_BIGINT(get_X509_REVOKED_userCert(at(crl, i)), serial(n).get()) == 0) return at(crl, i);
        return static_cast<X509_REVOKED *>(nullptr);
      };
      for (const unsigned n : {0, 1, 3, 9, 15, 117, 118})
        EXPECT_EQ(find_X509_CRL_revoked(crl.get(), serial(n).get()), walked(n)) << which << " " << n;
    }
    ++which;
  }
}

// Entries of one list share blocks and extensions; none of them notices the others.
TEST(Crl, EntriesOfOneBlockAreIndependent) {
  Crl crl = standard(long_list(40));
  ASSERT_EQ(get_X509_REVOKED_ext_count(at(crl, 1)), 1);
  remove_X509_REVOKED_ext(at(crl, 1), 0);
  EXPECT_EQ(get_X509_REVOKED_ext_count(at(crl, 1)), 0);
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(at(crl, 7)), 1);
  EXPECT_EQ(add_X509_REVOKED_ext(at(crl, 5), get_X509_REVOKED_ext(at(crl, 3), 0), 0), 0);
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(at(crl, 5)), -2) << "twice";
  EXPECT_EQ(get_X509_REVOKED_ext_count(at(crl, 11)), 1);
  // Dates longer than usual, set to themselves, and back.
  for (const char *date : {"2501010000+0900", "20250101000000.123456Z", "250101000000Z"}) {
    EXPECT_EQ(set_X509_REVOKED_revocationDate(at(crl, 2), time_of(date).get()), 0);
    EXPECT_EQ(set_X509_REVOKED_revocationDate(at(crl, 2), at(crl, 2)->revocationDate), 0);
    EXPECT_EQ(text_of(at(crl, 2)->revocationDate->time), date);
  }
  EXPECT_EQ(set_X509_REVOKED_userCert(at(crl, 2), at(crl, 2)->userCertificate), 0);
  EXPECT_EQ(number_of(at(crl, 2)), 6u);
  // One is taken out and outlives the rest.
  Owned<X509_REVOKED> out(static_cast<X509_REVOKED *>(remove_STACK_value(crl->tbs->revoked, 9)));
  crl.reset();
  EXPECT_EQ(number_of(out.get()), 27u);
  EXPECT_EQ(text_of(out->revocationDate->time), "250101000000Z");
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(out.get()), 4);
  const Owned<X509_REVOKED> copy(dup_X509_REVOKED(out.get()));
  out.reset();
  EXPECT_EQ(number_of(copy.get()), 27u);
  EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(copy.get()), 4);
}

TEST(Crl, ReasonCodes) {
  struct Reason {
    const char *value;
    int plain, strict;
  };
  const Reason reasons[] = {{"0a0101", 1, 1},
                            {"0a010a", 10, 10},
                            {"0a0107", 7, -2},
                            {"0a010b", 11, -2},
                            {"020101", 1, -2},
                            {"0a00", 0, -2},
                            {"0a020001", 1, -2},
                            {"0a050100000001", INT_MAX, -2},
                            {"0a047fffffff", INT_MAX, -2},
                            {"0a010100", 1, -2},
                            {"0a02", 0, -2},
                            {"", 0, -2}};
  for (const Reason &reason : reasons) {
    const Owned<X509_REVOKED> entry = new_entry(1);
    const String value = string(TYPE_OCTET_STRING, hex(reason.value)), kind = oid("2.5.29.21"),
                 other = oid("2.5.29.24");
    const Owned<X509_EXTENSION> extension(create_X509_EXTENSION_by_OID(nullptr, kind.get(), 0, value.get())),
        before(create_X509_EXTENSION_by_OID(nullptr, other.get(), 0, value.get()));
    EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(entry.get()), -1);
    EXPECT_EQ(add_X509_REVOKED_ext(entry.get(), before.get(), -1), 0);
    EXPECT_EQ(add_X509_REVOKED_ext(entry.get(), extension.get(), -1), 0);
    EXPECT_EQ(get_X509_REVOKED_CRLreason(entry.get(), 1), reason.plain) << reason.value;
    EXPECT_EQ(get_X509_REVOKED_CRLreason_strict(entry.get()), reason.strict) << reason.value;
    for (const int elsewhere : {-1, 0, 2}) EXPECT_EQ(get_X509_REVOKED_CRLreason(entry.get(), elsewhere), 0);
  }
}

TEST(Crl, LookUps) {
  constexpr unsigned kEntries = 1200;
  const Crl crl = standard(long_list(kEntries));
  // Without memory for the index the list is walked, and nothing is missed.
  fail_allocation(0);
  EXPECT_EQ(number_of(find_X509_CRL_revoked(crl.get(), at(crl, 900)->userCertificate)), 2700u);
  fail_allocation(-1);
  // The first look-ups at the same time.
  std::vector<std::thread> threads;
  std::vector<int> wrong(4);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (unsigned n = 0; n < 3 * kEntries; ++n) {
        const X509_REVOKED *found = find_X509_CRL_revoked(crl.get(), serial(n).get());
        wrong[size_t(t)] += n % 3 ? found != nullptr : found != at(crl, int(n / 3));
      }
    });
  }
  for (std::thread &each : threads) each.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
  const Certificate cert = read_certificate(CertificateParts().der());
  const auto verify = [&](unsigned n) {
    EXPECT_EQ(set_X509_serial(cert.get(), serial(n).get()), 0);
    return verify_CRL_X509_CERT(crl.get(), cert.get());
  };
  EXPECT_EQ(verify(0), 0);
  EXPECT_EQ(verify(1), 0) << "not listed";
  EXPECT_EQ(verify(3), 1);
  EXPECT_EQ(verify(3 * kEntries - 3), int(kEntries) - 1);
  EXPECT_EQ(verify_CRL_X509_CERT(nullptr, cert.get()), -1);
  clean_X509_CERT(cert.get());
  EXPECT_EQ(verify_CRL_X509_CERT(crl.get(), cert.get()), -1);
  EXPECT_EQ(find_X509_CRL_revoked(nullptr, serial(1).get()), nullptr);
  EXPECT_EQ(find_X509_CRL_revoked(crl.get(), nullptr), nullptr);
  // A change by the functions of stack.h is noticed.
  Owned<X509_REVOKED> entry = new_entry(1);
  push_STACK_value(crl->tbs->revoked, entry.get());
  EXPECT_EQ(find_X509_CRL_revoked(crl.get(), serial(1).get()), entry.release());
}

class CrlSignatures : public WithKeys {};

TEST_F(CrlSignatures, OfTheHouseForm) {
  const Bytes der = CrlParts().der();
  const Owned<ASYMMETRIC_KEY> rsa_private = rsa(), kcdsa_private = kcdsa(), ec = new_ec("prime256v1");
  Crl crl = house(der);
  RSA_UNIT *key = ASYMMETRIC_KEY_to_RSA_UNIT(rsa_private.get());
  EXPECT_EQ(gen_RSA_SIG_X509_CRL(nullptr, key), F_GEN_RSASIGN | 0x49);
  EXPECT_EQ(gen_RSA_SIG_X509_CRL(crl.get(), key), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), rsa_private.get()), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), kcdsa_private.get()), F_VERIFY_KCDSASIGN | ERR_ASN1_DECODING);
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), ec.get()), 1);
  EXPECT_EQ(verify_SIG_X509_CRL(nullptr, rsa_private.get()), 1);
  find_X509_CRL_revoked(crl.get(), serial(1).get());
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), rsa_private.get()), 0);
  EXPECT_EQ(sort_X509_CRL_revoked(crl.get()), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), rsa_private.get()), PKV_ERR_MISMATCH);
  EXPECT_EQ(set_X509_CRL_signature(crl.get(), oid("1.2.410.200004.1.23").get()), 0);
  EXPECT_EQ(gen_KCDSA_SIG_X509_CRL(crl.get(), ASYMMETRIC_KEY_to_KCDSA_UNIT(kcdsa_private.get())), 0);
  EXPECT_EQ(text_of(crl->sig_alg), "1.2.410.200004.1.23");
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), kcdsa_private.get()), 0);
  EXPECT_EQ(set_X509_CRL_sig_alg(crl.get(), oid("1.2.3").get()), 0);
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), kcdsa_private.get()), F_VERIFY_KCDSASIGN | 0x2B);
  EXPECT_EQ(verify_SIG_X509_CRL(crl.get(), rsa_private.get()), F_VERIFY_RSASIGN | 0x2B);
}

// An issuer's certificate for a key; it is no subject of these tests, so nobody signed it.
Certificate issuer_of(const ASYMMETRIC_KEY *key, const Bytes &tail = {}) {
  CertificateParts parts;
  parts.tail = tail;
  ASN1_UNIT *unit = nullptr;
  EXPECT_EQ(X509_PUBKEY_to_Seq_RFC5280(public_half(key).get(), &unit), 0);
  parts.spki = hex(flat(unit));
  free_ASN1_UNIT(unit);
  X509_CERT *cert = nullptr;
  const Bytes der = parts.der();
  EXPECT_EQ(readDER_X509_CERT_from_Binary_RFC5280(&cert, der.data(), int(der.size())), 0);
  return Certificate(cert);
}

// What is signed in either form openssl accepts, and prints the same entries.
TEST_F(CrlSignatures, AreAcceptedByOpenssl) {
  const Owned<ASYMMETRIC_KEY> rsa_private = rsa(), ec = new_ec("prime256v1");
  for (const bool with_ec : {false, true}) {
    const ASYMMETRIC_KEY *key = with_ec ? ec.get() : rsa_private.get();
    const Owned<X509_PUBKEY> pubkey = public_half(key);
    const Certificate issuer = issuer_of(key);
    unsigned char *octets = nullptr;
    const int length = with_ec ? 0 : writeDER_X509_CERT_to_Binary(issuer.get(), &octets);
    const Block owner(octets);
    ASN1_UNIT *unit = nullptr;
    EXPECT_EQ(X509_CERT_to_Seq_RFC5280(issuer.get(), &unit), 0);
    const Bytes der = length > 0 ? Bytes(octets, octets + length) : hex(flat(unit));
    free_ASN1_UNIT(unit);
    const std::string ca = temporary_path("ca.pem"), file = temporary_path("list.pem");
    write_file(temporary_path("ca.der"), der.data(), der.size());
    run("openssl x509 -inform DER -in " + temporary_path("ca.der") + " -out " + ca);
    Crl crl = standard(CrlParts().der());
    if (with_ec) EXPECT_EQ(set_X509_CRL_signature(crl.get(), oid("1.2.840.10045.4.3.2").get()), 0);
    for (const bool in_standard_form : {false, true}) {
      if (with_ec && !in_standard_form) continue;
      ASN1_UNIT *list = nullptr;
      if (in_standard_form) {
        EXPECT_EQ(gen_SIG_X509_CRL_RFC5280(crl.get(), key), 0);
        EXPECT_EQ(verify_SIG_X509_CRL_RFC5280(crl.get(), pubkey.get()), 0);
        EXPECT_EQ(X509_CRL_to_Seq_RFC5280(crl.get(), &list), 0);
      } else {
        EXPECT_EQ(gen_RSA_SIG_X509_CRL(crl.get(), ASYMMETRIC_KEY_to_RSA_UNIT(key)), 0);
        EXPECT_EQ(X509_CRL_to_Seq(crl.get(), &list), 0);
      }
      const Bytes written = hex(flat(list));
      free_ASN1_UNIT(list);
      write_file(file, written.data(), written.size());
      const std::string said =
          run("openssl crl -inform DER -in " + file + " -CAfile " + ca + " -noout -text -verify 2>&1");
      EXPECT_NE(said.find("verify OK"), std::string::npos) << said;
      EXPECT_NE(said.find("Serial Number: 80"), std::string::npos);
      EXPECT_NE(said.find("Key Compromise"), std::string::npos);
      const Crl back = standard(written);
      EXPECT_EQ(verify_SIG_X509_CRL_RFC5280(back.get(), pubkey.get()), 0);
    }
  }
}

// One question, each of whose parts a case changes.
struct Case {
  const char *what;
  int reason;  // 0: not revoked
  std::function<void(CrlParts &)> list;
  unsigned number = 5;  // the certificate's
  Bytes certificate_tail = {};
  const char *time = "260601000000Z";
  Bytes issuer_tail = {};
};

Bytes idp(const Bytes &fields) { return TLV(0xA0, TLV(0x30, CrlParts::extension("551d1c", TLV(0x30, fields), true))); }
Bytes uri(std::string_view octets) { return TLV(0xA0, TLV(0xA0, TLV(0x86, octets))); }
Bytes tail_of(const Bytes &extension) { return TLV(0xA3, TLV(0x30, extension)); }
Bytes points(const Bytes &point) { return tail_of(CrlParts::extension("551d1f", TLV(0x30, TLV(0x30, point)))); }

TEST_F(CrlSignatures, StrictCheck) {
  const Bytes ca = tail_of(CrlParts::extension("551d13", TLV(0x30, TLV(0x01, "ff")))), yes = hex("ff");
  const auto with = [](Bytes tail) { return [tail](CrlParts &p) { p.tail = tail; }; };
  const auto listed = [](Bytes extensions) {
    return [extensions](CrlParts &p) { p.revoked = TLV(0x30, p.entry("05", extensions) + p.entry("06")); };
  };
  const auto same = [](CrlParts &) {};
  const auto reason = [](std::string_view r) { return TLV(0x30, CrlParts::extension("551d15", TLV(0x0A, r))); };
  const Bytes directory = TLV(0xA0, TLV(0xA0, TLV(0xA4, CertificateParts().issuer))),
              relative = TLV(0xA0, TLV(0xA1, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "5a")))),
              both = TLV(0x30, TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "4341"))) +
                                   TLV(0x31, TLV(0x30, TLV(0x06, "550403") + TLV(0x0C, "5a"))));
  const Case cases[] = {
      {"not listed", 0, same},
      {"listed", ERR_CERT_REVOKED, listed({})},
      {"listed with a reason", ERR_CERT_REVOKED, listed(reason("01"))},
      {"listed with a malformed reason", ERR_CERT_REVOKED, listed(reason("0101"))},
      {"taken back", 0, listed(reason("08"))},
      {"taken back, but listed too", ERR_CERT_REVOKED,
       [&](CrlParts &p) { p.revoked = TLV(0x30, p.entry("05", reason("08")) + p.entry("05")); }},
      {"another issuer", ERR_CRL_ISSUER, [&](CrlParts &p) { p.issuer = both; }},
      {"first instant", 0, same, 5, {}, "260101000000Z"},
      {"before", ERR_CRL_THIS_UPDATE, same, 5, {}, "251231235959Z"},
      {"last instant", 0, same, 5, {}, "300101000000Z"},
      {"after", ERR_CRL_NEXT_UPDATE, same, 5, {}, "300101000001Z"},
      {"no end", ERR_CRL_NEXT_UPDATE, [](CrlParts &p) { p.next_update = {}; }},
      {"an offset in thisUpdate", ERR_CRL_THIS_UPDATE,
       [](CrlParts &p) {
         p.this_update = TLV(0x17, Bytes{'2', '5', '0', '1', '0', '1', '0', '0', '0', '0', '+', '0', '0', '0', '0'});
       }},
      {"no time", ERR_INVALID_X509_TIME_TYPE, same, 5, {}, "yesterday"},
      {"keyUsage with cRLSign",
       0,
       same,
       5,
       {},
       "260601000000Z",
       tail_of(CrlParts::extension("551d0f", TLV(0x03, "0106")))},
      {"keyUsage without",
       ERR_CRL_SIGN,
       same,
       5,
       {},
       "260601000000Z",
       tail_of(CrlParts::extension("551d0f", TLV(0x03, "0780")))},
      {"delta", ERR_CRL_DELTA, with(TLV(0xA0, TLV(0x30, CrlParts::extension("551d1b", TLV(0x02, "01"), true))))},
      {"critical and unknown", ERR_UNKNOWN_EXTENSION,
       with(TLV(0xA0, TLV(0x30, CrlParts::extension("2a03", TLV(0x02, "01"), true))))},
      {"unknown only", 0, with(TLV(0xA0, TLV(0x30, CrlParts::extension("2a03", TLV(0x02, "01")))))},
      {"critical and unknown in an entry", ERR_UNKNOWN_EXTENSION,
       [](CrlParts &p) { p.revoked = TLV(0x30, p.entry("06", TLV(0x30, CrlParts::extension("2a03", {}, true)))); }},
      {"an entry of another issuer", ERR_CRL_INDIRECT,
       [](CrlParts &p) { p.revoked = TLV(0x30, p.entry("06", TLV(0x30, CrlParts::extension("551d1d", {}, true)))); }},
      {"indirect", ERR_CRL_INDIRECT, with(idp(TLV(0x84, yes)))},
      {"two scopes", ERR_DUPLICATE_EXTENSION,
       with(TLV(0xA0,
                TLV(0x30, CrlParts::extension("551d1c", hex("3000")) + CrlParts::extension("551d1c", hex("3000")))))},
      {"user certificates, of a user", 0, with(idp(TLV(0x81, yes)))},
      {"user certificates, of a CA", ERR_CRL_SCOPE, with(idp(TLV(0x81, yes))), 5, ca},
      {"CA certificates, of a user", ERR_CRL_SCOPE, with(idp(TLV(0x82, yes)))},
      {"CA certificates, of a CA", 0, with(idp(TLV(0x82, yes))), 5, ca},
      {"attribute certificates", ERR_CRL_SCOPE, with(idp(TLV(0x85, yes)))},
      {"some reasons", ERR_CRL_REASONS, with(idp(TLV(0x83, "0640")))},
      {"some reasons, listed", ERR_CERT_REVOKED, [&](CrlParts &p) { listed({})(p), p.tail = idp(TLV(0x83, "0640")); }},
      {"the point of the certificate", 0, with(idp(uri("75"))), 5, points(uri("75"))},
      {"another point", ERR_CRL_SCOPE, with(idp(uri("75"))), 5, points(uri("76"))},
      {"a point of another issuer", ERR_CRL_SCOPE, with(idp(uri("75"))), 5,
       points(uri("75") + TLV(0xA2, TLV(0x86, "75")))},
      {"a point for some reasons", ERR_CRL_REASONS, with(idp(uri("75"))), 5, points(uri("75") + TLV(0x81, "0640"))},
      {"a certificate without points", ERR_CRL_SCOPE, with(idp(uri("75")))},
      {"the issuer's name for a point", 0, with(idp(directory))},
      {"a relative name", 0, with(idp(relative)), 5, points(TLV(0xA0, TLV(0xA0, TLV(0xA4, both))))},
      {"a relative name for both", 0, with(idp(relative)), 5, points(relative)},
  };
  const Owned<ASYMMETRIC_KEY> key = rsa();
  for (const Case &c : cases) {
    CrlParts parts;
    parts.revoked = {};
    c.list(parts);
    const Crl crl = standard(parts.der());
    ASSERT_TRUE(crl) << c.what;
    ASSERT_EQ(gen_SIG_X509_CRL_RFC5280(crl.get(), key.get()), 0) << c.what;
    CertificateParts certificate;
    certificate.tail = c.certificate_tail;
    const Certificate cert = read_certificate(certificate.der()), issuer = issuer_of(key.get(), c.issuer_tail);
    X509_REVOKED *entry = nullptr;
    const int code =
        check_X509_CRL_revocation_strict(crl.get(), cert.get(), issuer.get(), time_of(c.time).get(), &entry);
    EXPECT_EQ(code, c.reason ? 0x48000000 | c.reason : 0) << c.what << std::hex << " " << code;
    EXPECT_EQ(entry != nullptr, c.reason == ERR_CERT_REVOKED) << c.what;
  }
}

// What the check needs besides: a list in standard form, the issuer's key, and the sign of a serial number.
TEST_F(CrlSignatures, StrictCheckOfOtherKinds) {
  const Owned<ASYMMETRIC_KEY> key = rsa(), other = kcdsa();
  const Certificate cert = read_certificate(CertificateParts().der()), issuer = issuer_of(key.get());
  const Owned<X509_TIME> time = time_of("260601000000Z");
  const auto check = [&](const X509_CRL *crl, const X509_CERT *by) {
    return check_X509_CRL_revocation_strict(crl, cert.get(), by, time.get(), nullptr);
  };
  const Crl crl = standard(CrlParts().der());
  EXPECT_EQ(check(crl.get(), issuer.get()), PKV_ERR_MISMATCH);
  EXPECT_EQ(gen_SIG_X509_CRL_RFC5280(crl.get(), key.get()), 0);
  EXPECT_EQ(check(crl.get(), issuer.get()), 0);
  EXPECT_EQ(check(crl.get(), issuer_of(other.get()).get()), F_VERIFY_RSASIGN | ERR_ALGORITHM_MISMATCH);
  EXPECT_EQ(check(nullptr, issuer.get()), 0x48000049);
  ASN1_UNIT *unit = nullptr;
  ASSERT_EQ(X509_CRL_to_Seq_RFC5280(crl.get(), &unit), 0);
  EXPECT_EQ(check(house(hex(flat(unit))).get(), issuer.get()), 0x4800002B);
  free_ASN1_UNIT(unit);
  CrlParts negative;
  negative.revoked = TLV(0x30, negative.entry("ff"));
  const Crl listed = standard(negative.der());
  EXPECT_EQ(gen_SIG_X509_CRL_RFC5280(listed.get(), key.get()), 0);
  CertificateParts parts;
  parts.serial = TLV(0x02, "ff");
  const Certificate read_as_255 = read_certificate(parts.der());
  EXPECT_EQ(check_X509_CRL_revocation_strict(listed.get(), read_as_255.get(), issuer.get(), time.get(), nullptr),
            0x48000000 | ERR_CERT_REVOKED);
}

}  // namespace
